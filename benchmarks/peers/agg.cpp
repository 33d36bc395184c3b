#include "worker.h"

#include <agg_conv_transform.h>
#include <agg_image_accessors.h>
#include <agg_path_storage.h>
#include <agg_pixfmt_rgba.h>
#include <agg_rasterizer_outline_aa.h>
#include <agg_rasterizer_scanline_aa.h>
#include <agg_renderer_base.h>
#include <agg_renderer_outline_aa.h>
#include <agg_renderer_primitives.h>
#include <agg_renderer_scanline.h>
#include <agg_scanline_u.h>
#include <agg_span_allocator.h>
#include <agg_span_image_filter_rgba.h>
#include <agg_span_interpolator_linear.h>

#include <memory>
#include <string>

namespace peers {
namespace {

using Format = agg::pixfmt_bgra32_plain;
using Renderer = agg::renderer_base<Format>;

/// A picture as it wants it.
struct Image {
    explicit Image(const Surface &surface)
        : rows(surface.bytes(), static_cast<unsigned>(surface.width), static_cast<unsigned>(surface.height),
               surface.pitch()),
          format(rows), renderer(format) {}

    agg::rendering_buffer rows;
    Format format;
    Renderer renderer;
};

agg::rgba8 colourOf(Pixel colour) {
    return agg::rgba8(colour >> 16 & 0xFF, colour >> 8 & 0xFF, colour & 0xFF, 255);
}

Run fill(const Stage &stage) {
    return [dst = std::make_shared<Image>(stage.dst)] { dst->renderer.clear(colourOf(fillColour)); };
}

Run copy(const Stage &stage) {
    return [dst = std::make_shared<Image>(stage.dst), src = std::make_shared<Image>(stage.src)] {
        dst->renderer.copy_from(src->rows);
    };
}

Run blendConstant(const Stage &stage) {
    return [dst = std::make_shared<Image>(stage.dst), src = std::make_shared<Image>(stage.src)] {
        dst->renderer.blend_from(src->format, nullptr, 0, 0, constantAlpha);
    };
}

Run blend(const Stage &stage) {
    return [dst = std::make_shared<Image>(stage.dst), src = std::make_shared<Image>(stage.src)] {
        dst->renderer.blend_from(src->format);
    };
}

/// The outline of the turned picture, filled with spans of it.
template <template <class, class> class Filter>
Run rotate(const Stage &stage) {
    using Source = agg::image_accessor_clone<Format>;
    using Interpolator = agg::span_interpolator_linear<>;
    using Generator = Filter<Source, Interpolator>;
    return [stage, dst = std::make_shared<Image>(stage.dst), src = std::make_shared<Image>(stage.src)] {
        agg::trans_affine turn = agg::trans_affine_translation(-stage.src.width / 2, -stage.src.height / 2);
        turn *= agg::trans_affine_scaling(rotationScale);
        turn *= agg::trans_affine_rotation(rotationAngle);
        turn *= agg::trans_affine_translation(stage.dst.width / 2, stage.dst.height / 2);
        agg::trans_affine back = turn;
        back.invert();
        agg::path_storage outline;
        outline.move_to(0, 0);
        outline.line_to(stage.src.width, 0);
        outline.line_to(stage.src.width, stage.src.height);
        outline.line_to(0, stage.src.height);
        agg::conv_transform<agg::path_storage> turned(outline, turn);
        agg::rasterizer_scanline_aa<> rasterizer;
        rasterizer.add_path(turned);
        Source source(src->format);
        Interpolator interpolator(back);
        Generator generator(source, interpolator);
        agg::span_allocator<Format::color_type> allocator;
        agg::scanline_u8 scanline;
        agg::render_scanlines_aa(rasterizer, scanline, dst->renderer, allocator, generator);
    };
}

Run drawLines(const Stage &stage) {
    return [dst = std::make_shared<Image>(stage.dst)] {
        agg::line_profile_aa profile(1, agg::gamma_none());
        agg::renderer_outline_aa<Renderer> renderer(dst->renderer, profile);
        agg::rasterizer_outline_aa<agg::renderer_outline_aa<Renderer>> rasterizer(renderer);
        for (const Line &line : lines()) { // its pixels' middles are at halves
            renderer.color(colourOf(line.colour));
            rasterizer.move_to_d(line.x1 + 0.5, line.y1 + 0.5);
            rasterizer.line_to_d(line.x2 + 0.5, line.y2 + 0.5);
            rasterizer.render(false);
        }
    };
}

Run drawCircles(const Stage &stage) {
    return [dst = std::make_shared<Image>(stage.dst)] {
        agg::renderer_primitives<Renderer> renderer(dst->renderer);
        for (const Circle &circle : circles()) {
            renderer.fill_color(colourOf(circle.colour));
            renderer.solid_ellipse(circle.x, circle.y, circle.radius, circle.radius);
        }
    };
}

} // namespace

Peer peer(const std::string &) {
    return {"AGG",
            {{"fill", "renderer_base::clear", fill},
             {"copy", "renderer_base::copy_from", copy},
             {"constant alpha", "renderer_base::blend_from with a cover", blendConstant},
             {"pixel alpha", "renderer_base::blend_from", blend},
             {"rotation, nearest", "span_image_filter_rgba_nn", rotate<agg::span_image_filter_rgba_nn>},
             {"rotation, bilinear", "span_image_filter_rgba_bilinear", rotate<agg::span_image_filter_rgba_bilinear>},
             {"lines", "rasterizer_outline_aa", drawLines},
             {"circles", "renderer_primitives::solid_ellipse", drawCircles}}};
}

} // namespace peers
