#include "webp.h"

#include <webp/encode.h>
#include <webp/mux.h>

#include <algorithm>
#include <fstream>
#include <memory>
#include <stdexcept>

namespace gallery {
namespace {

using catalogue::Box;
using catalogue::Plane;

[[noreturn]] void fail() {
    throw std::runtime_error("libwebp cannot write the picture");
}

/// What differs between two pictures of one size, from an even place on, as frames of a film are placed.
Box changed(const Plane &before, const Plane &after) {
    int left = after.width(), top = after.height(), right = 0, bottom = 0;
    for (int y = 0; y < after.height(); ++y)
        for (int x = 0; x < after.width(); ++x)
            if (((before.at(x, y) ^ after.at(x, y)) & 0xFFFFFF) != 0) {
                left = std::min(left, x & ~1), right = std::max(right, x + 1);
                top = std::min(top, y & ~1), bottom = std::max(bottom, y + 1);
            }
    return {left, top, right, bottom};
}

struct Encoded {
    WebPMemoryWriter writer;

    Encoded(const Plane &plane, const Box &part, const WebPConfig &config) {
        std::vector<std::uint32_t> pixels;
        for (auto y = part.top; y < part.bottom; ++y)
            for (auto x = part.left; x < part.right; ++x)
                pixels.push_back(
                    static_cast<std::uint32_t>(plane.at(static_cast<int>(x), static_cast<int>(y)) & 0xFFFFFF) |
                    0xFF000000u);
        WebPMemoryWriterInit(&writer);
        WebPPicture picture;
        if (!WebPPictureInit(&picture))
            fail();
        picture.use_argb = 1;
        picture.width = static_cast<int>(part.width());
        picture.height = static_cast<int>(part.height());
        picture.argb = pixels.data();
        picture.argb_stride = picture.width;
        picture.writer = WebPMemoryWrite;
        picture.custom_ptr = &writer;
        const bool isEncoded = WebPEncode(&config, &picture);
        WebPPictureFree(&picture);
        if (!isEncoded) {
            WebPMemoryWriterClear(&writer);
            fail();
        }
    }
    Encoded(const Encoded &) = delete;
    Encoded &operator=(const Encoded &) = delete;
    ~Encoded() { WebPMemoryWriterClear(&writer); }

    WebPData data() const { return {writer.mem, writer.size}; }
};

/// Without a loss where that costs little.
std::unique_ptr<Encoded> encoded(const Plane &plane, const Box &part) {
    WebPConfig exact, lossy;
    if (!WebPConfigInit(&exact) || !WebPConfigInit(&lossy) || !WebPConfigLosslessPreset(&exact, 3))
        fail();
    lossy.quality = 86;
    lossy.method = 3;
    lossy.use_sharp_yuv = 1;
    auto small = std::make_unique<Encoded>(plane, part, lossy);
    auto whole = std::make_unique<Encoded>(plane, part, exact);
    return whole->writer.size <= small->writer.size * 5 / 4 ? std::move(whole) : std::move(small);
}

} // namespace

// Each frame holds all that has changed since the one before, and nothing else: an encoder that leaves out what it
// takes for small would let it add up.
void writeWebP(const std::filesystem::path &file, const std::vector<Plane> &pictures, int milliseconds) {
    const std::unique_ptr<WebPMux, decltype(&WebPMuxDelete)> mux(WebPMuxNew(), WebPMuxDelete);
    const Box whole = pictures.front().rect();
    if (pictures.size() == 1) {
        const auto picture = encoded(pictures.front(), whole);
        const WebPData data = picture->data();
        if (WebPMuxSetImage(mux.get(), &data, 1) != WEBP_MUX_OK)
            fail();
    } else {
        for (std::size_t i = 0; i < pictures.size(); ++i) {
            Box part = i == 0 ? whole : changed(pictures[i - 1], pictures[i]);
            if (part.isEmpty())
                part = {0, 0, 1, 1};
            const auto picture = encoded(pictures[i], part);
            WebPMuxFrameInfo frame = {};
            frame.bitstream = picture->data();
            frame.x_offset = static_cast<int>(part.left);
            frame.y_offset = static_cast<int>(part.top);
            frame.duration = milliseconds;
            frame.id = WEBP_CHUNK_ANMF;
            frame.dispose_method = WEBP_MUX_DISPOSE_NONE;
            frame.blend_method = WEBP_MUX_NO_BLEND;
            if (WebPMuxPushFrame(mux.get(), &frame, 1) != WEBP_MUX_OK)
                fail();
        }
        const WebPMuxAnimParams forEver = {0xFF000000u, 0};
        if (WebPMuxSetAnimationParams(mux.get(), &forEver) != WEBP_MUX_OK)
            fail();
    }
    WebPData data;
    if (WebPMuxAssemble(mux.get(), &data) != WEBP_MUX_OK)
        fail();
    std::ofstream out(file, std::ios::binary);
    out.write(reinterpret_cast<const char *>(data.bytes), static_cast<std::streamsize>(data.size));
    WebPDataClear(&data);
    if (!out.flush())
        throw std::runtime_error("cannot write " + file.string());
}

} // namespace gallery
