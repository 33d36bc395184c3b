#include "decoder.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <new>
#include <vector>

namespace show {

namespace {

const std::vector<const Decoder *> &decoders() {
    static const std::vector<const Decoder *> list = {
        &jpegDecoder, &pngDecoder, &bmpDecoder,
#ifdef QMUR_SHOW_WEBP
        &webpDecoder,
#endif
#ifdef QMUR_SHOW_HEIF
        &heifDecoder,
#endif
    };
    return list;
}

} // namespace

const Decoder *findDecoder(Bytes start) {
    const auto found =
        std::find_if(decoders().begin(), decoders().end(), [&](const Decoder *one) { return one->recognises(start); });
    return found == decoders().end() ? nullptr : *found;
}

std::string decoderNames() {
    std::string names;
    for (const Decoder *const decoder : decoders())
        names += std::string(names.empty() ? "" : decoder == decoders().back() ? " or " : ", ") + decoder->name;
    return names;
}

void checkMemoryFor(PictureSize size) {
    constexpr std::uint64_t fixed = 32 << 20; // a thread's stack, and much more than tables take
    constexpr std::uint64_t bytesInPixel = 16;
    const std::uint64_t pixels = static_cast<std::uint64_t>(size.width) * static_cast<std::uint64_t>(size.height);
    constexpr std::uint64_t most = std::numeric_limits<std::size_t>::max() / 2;
    void *volatile const memory = std::malloc(static_cast<std::size_t>(std::min(fixed + bytesInPixel * pixels, most)));
    if (!memory)
        throw std::bad_alloc();
    std::free(memory);
}

} // namespace show
