#include "worker.h"

#include <pixman.h>

#include <cmath>
#include <memory>

namespace peers {
namespace {

using Image = std::shared_ptr<pixman_image_t>;

Image image(pixman_format_code_t format, const Surface &surface) {
    return {pixman_image_create_bits(format, surface.width, surface.height, surface.pixels, surface.pitch()),
            pixman_image_unref};
}

Image solid(int alpha) {
    const pixman_color_t colour = {0, 0, 0, static_cast<std::uint16_t>(alpha * 0xFFFF / 256)};
    return {pixman_image_create_solid_fill(&colour), pixman_image_unref};
}

Run composite(const Stage &stage, pixman_op_t operation, const Image &src, const Image &mask = nullptr) {
    const Image dst = image(PIXMAN_x8r8g8b8, stage.dst);
    return [dst, src, mask, operation, width = stage.dst.width, height = stage.dst.height] {
        pixman_image_composite32(operation, src.get(), mask.get(), dst.get(), 0, 0, 0, 0, 0, 0, width, height);
    };
}

Run fill(const Stage &stage) {
    return [dst = stage.dst] { pixman_fill(dst.pixels, dst.width, 32, 0, 0, dst.width, dst.height, fillColour); };
}

Run copy(const Stage &stage) {
    return composite(stage, PIXMAN_OP_SRC, image(PIXMAN_x8r8g8b8, stage.src));
}

Run add(const Stage &stage) {
    const Image dst = image(PIXMAN_a8r8g8b8, stage.dst), src = image(PIXMAN_a8r8g8b8, stage.src);
    return [dst, src, width = stage.dst.width, height = stage.dst.height] {
        pixman_image_composite32(PIXMAN_OP_ADD, src.get(), nullptr, dst.get(), 0, 0, 0, 0, 0, 0, width, height);
    };
}

Run fade(const Stage &stage) {
    return composite(stage, PIXMAN_OP_OVER, solid(256 - fadeFactor));
}

Run blendConstant(const Stage &stage) {
    return composite(stage, PIXMAN_OP_OVER, image(PIXMAN_x8r8g8b8, stage.src), solid(constantAlpha));
}

Run blend(const Stage &stage) {
    premultiply(stage.src);
    return composite(stage, PIXMAN_OP_OVER, image(PIXMAN_a8r8g8b8, stage.src));
}

pixman_fixed_t fixed(double value) {
    return static_cast<pixman_fixed_t>(std::lround(value * 65536));
}

template <pixman_filter_t filter>
Run scale(const Stage &stage) {
    const Image src = image(PIXMAN_x8r8g8b8, stage.src);
    pixman_transform_t transform;
    pixman_transform_init_scale(&transform, fixed(static_cast<double>(stage.src.width) / stage.dst.width),
                                fixed(static_cast<double>(stage.src.height) / stage.dst.height));
    pixman_image_set_transform(src.get(), &transform);
    pixman_image_set_filter(src.get(), filter, nullptr, 0);
    pixman_image_set_repeat(src.get(), PIXMAN_REPEAT_PAD);
    return composite(stage, PIXMAN_OP_SRC, src);
}

template <pixman_filter_t filter>
Run rotate(const Stage &stage) {
    const Image src = image(PIXMAN_a8r8g8b8, stage.src);
    const double cosine = std::cos(rotationAngle) / rotationScale, sine = std::sin(rotationAngle) / rotationScale;
    const double x = stage.dst.width / 2.0, y = stage.dst.height / 2.0;
    const pixman_transform_t transform = {
        {{fixed(cosine), fixed(sine), fixed(stage.src.width / 2.0 - cosine * x - sine * y)},
         {fixed(-sine), fixed(cosine), fixed(stage.src.height / 2.0 + sine * x - cosine * y)},
         {0, 0, pixman_fixed_1}}};
    pixman_image_set_transform(src.get(), &transform);
    pixman_image_set_filter(src.get(), filter, nullptr, 0);
    return composite(stage, PIXMAN_OP_OVER, src); // what lies outside is clear
}

} // namespace

Peer peer(const std::string &) {
    return {std::string("pixman ") + pixman_version_string(),
            {{"fill", "pixman_fill", fill},
             {"copy", "PIXMAN_OP_SRC", copy},
             {"add", "PIXMAN_OP_ADD", add},
             {"fade", "PIXMAN_OP_OVER of black", fade},
             {"constant alpha", "PIXMAN_OP_OVER with a mask", blendConstant},
             {"pixel alpha", "PIXMAN_OP_OVER", blend, "premultiplied"},
             {"nearest", "PIXMAN_OP_SRC, PIXMAN_FILTER_NEAREST", scale<PIXMAN_FILTER_NEAREST>},
             {"bilinear", "PIXMAN_OP_SRC, PIXMAN_FILTER_BILINEAR", scale<PIXMAN_FILTER_BILINEAR>},
             {"rotation, nearest", "PIXMAN_OP_OVER, PIXMAN_FILTER_NEAREST", rotate<PIXMAN_FILTER_NEAREST>},
             {"rotation, bilinear", "PIXMAN_OP_OVER, PIXMAN_FILTER_BILINEAR", rotate<PIXMAN_FILTER_BILINEAR>}}};
}

} // namespace peers
