#include "decoder.h"

#include <algorithm>
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

} // namespace show
