// WebP by libwebp.

#include "../failure.h"
#include "../numbers.h"
#include "decoder.h"

#include <bit>
#include <new>

#include <webp/decode.h>

namespace show {

namespace {

void check(VP8StatusCode status) {
    switch (status) {
    case VP8_STATUS_OK:
        return;
    case VP8_STATUS_OUT_OF_MEMORY:
        throw std::bad_alloc();
    case VP8_STATUS_NOT_ENOUGH_DATA:
    case VP8_STATUS_SUSPENDED:
        throw Failure("the WebP picture is cut off");
    default:
        throw Failure("the WebP picture is damaged");
    }
}

bool recognises(Bytes start) {
    return standsAt(start, 0, "RIFF") && standsAt(start, 8, "WEBP");
}

PictureSize sizeOf(Bytes file) {
    if (Numbers{file, true}.at(4, 4) + std::uint64_t{8} > file.size())
        throw Failure("the WebP picture is cut off");
    WebPBitstreamFeatures features;
    check(WebPGetFeatures(file.data(), file.size(), &features));
    if (features.has_animation)
        throw Failure("the WebP file holds a moving picture");
    if (features.width <= 0 || features.height <= 0)
        throw Failure("the WebP picture is damaged (its header)");
    return {features.width, features.height};
}

void decode(Bytes file, const Surface &picture) {
    WebPDecoderConfig config;
    if (!WebPInitDecoderConfig(&config))
        throw Failure("the library for WebP is of another version");
    config.output.colorspace = std::endian::native == std::endian::little ? MODE_BGRA : MODE_ARGB;
    config.output.is_external_memory = 1;
    config.output.u.RGBA.rgba = reinterpret_cast<unsigned char *>(picture.at(0, 0));
    config.output.u.RGBA.stride = picture.pitch * 4;
    config.output.u.RGBA.size = static_cast<std::size_t>(picture.pitch) * 4 * static_cast<std::size_t>(picture.height);
    const VP8StatusCode status = WebPDecode(file.data(), file.size(), &config);
    WebPFreeDecBuffer(&config.output);
    if (status == VP8_STATUS_BITSTREAM_ERROR)
        checkMemoryFor({picture.width, picture.height});
    check(status);
}

ExifNotes notes(Bytes file) {
    return readExif(chunkOfWebp(file, "EXIF"));
}

std::vector<unsigned char> profile(Bytes file) {
    const Bytes found = chunkOfWebp(file, "ICCP");
    return {found.begin(), found.end()};
}

} // namespace

const Decoder webpDecoder = {"WebP", recognises, sizeOf, decode, notes, profile};

} // namespace show
