#include "webp.h"

#include <webp/encode.h>
#include <webp/mux.h>

#include <cstdio>
#include <fstream>
#include <memory>
#include <stdexcept>

namespace gallery {
namespace {

using catalogue::Plane;

/// The pixels of a plane without its margins.
std::vector<std::uint32_t> pixelsOf(const Plane &plane) {
    std::vector<std::uint32_t> pixels;
    for (int y = 0; y < plane.height(); ++y)
        for (int x = 0; x < plane.width(); ++x)
            pixels.push_back(static_cast<std::uint32_t>(plane.at(x, y) & 0xFFFFFF) | 0xFF000000u);
    return pixels;
}

void add(WebPAnimEncoder *encoder, const Plane &plane, int time, const WebPConfig &config) {
    std::vector<std::uint32_t> pixels = pixelsOf(plane);
    WebPPicture picture;
    if (!WebPPictureInit(&picture))
        throw std::runtime_error("another version of libwebp");
    picture.use_argb = 1;
    picture.width = plane.width();
    picture.height = plane.height();
    picture.argb = pixels.data();
    picture.argb_stride = plane.width();
    const bool added = WebPAnimEncoderAdd(encoder, &picture, time, &config);
    WebPPictureFree(&picture);
    if (!added)
        throw std::runtime_error(WebPAnimEncoderGetError(encoder));
}

} // namespace

void writeWebP(const std::filesystem::path &file, const std::vector<Plane> &pictures, int milliseconds) {
    WebPAnimEncoderOptions options;
    WebPConfig config;
    if (!WebPAnimEncoderOptionsInit(&options) || !WebPConfigInit(&config))
        throw std::runtime_error("another version of libwebp");
    options.allow_mixed = 1;
    config.quality = 84;
    config.method = 3;
    config.use_sharp_yuv = 1;
    const std::unique_ptr<WebPAnimEncoder, decltype(&WebPAnimEncoderDelete)> encoder(
        WebPAnimEncoderNew(pictures.front().width(), pictures.front().height(), &options), WebPAnimEncoderDelete);
    int time = 0;
    for (const Plane &picture : pictures) {
        add(encoder.get(), picture, time, config);
        time += milliseconds;
    }
    WebPData data;
    WebPDataInit(&data);
    if (!WebPAnimEncoderAdd(encoder.get(), nullptr, time, nullptr) || !WebPAnimEncoderAssemble(encoder.get(), &data))
        throw std::runtime_error(WebPAnimEncoderGetError(encoder.get()));
    std::ofstream out(file, std::ios::binary);
    out.write(reinterpret_cast<const char *>(data.bytes), static_cast<std::streamsize>(data.size));
    WebPDataClear(&data);
    if (!out.flush())
        throw std::runtime_error("cannot write " + file.string());
}

} // namespace gallery
