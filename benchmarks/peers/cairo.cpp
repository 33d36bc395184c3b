#include "worker.h"

#include <cairo.h>

#include <memory>

// Its pictures are painted by pixman, which is in the comparison itself; figures are its own.

namespace peers {
namespace {

using Context = std::shared_ptr<cairo_t>;

Context context(const Surface &surface) {
    cairo_surface_t *target = cairo_image_surface_create_for_data(surface.bytes(), CAIRO_FORMAT_RGB24, surface.width,
                                                                  surface.height, surface.pitch());
    Context made(cairo_create(target), cairo_destroy);
    cairo_surface_destroy(target); // the context holds it
    return made;
}

void setColour(cairo_t *cairo, Pixel colour) {
    cairo_set_source_rgb(cairo, (colour >> 16 & 0xFF) / 255.0, (colour >> 8 & 0xFF) / 255.0, (colour & 0xFF) / 255.0);
}

Run drawLines(const Stage &stage) {
    const Context cairo = context(stage.dst);
    cairo_set_line_width(cairo.get(), 1);
    return [cairo] {
        for (const Line &line : lines()) { // its pixels' middles are at halves
            setColour(cairo.get(), line.colour);
            cairo_move_to(cairo.get(), line.x1 + 0.5, line.y1 + 0.5);
            cairo_line_to(cairo.get(), line.x2 + 0.5, line.y2 + 0.5);
            cairo_stroke(cairo.get());
        }
    };
}

Run drawCircles(const Stage &stage) {
    const Context cairo = context(stage.dst);
    cairo_set_antialias(cairo.get(), CAIRO_ANTIALIAS_NONE);
    return [cairo] {
        for (const Circle &circle : circles()) {
            setColour(cairo.get(), circle.colour);
            cairo_arc(cairo.get(), circle.x + 0.5, circle.y + 0.5, circle.radius, 0, 6.283185307179586);
            cairo_fill(cairo.get());
        }
    };
}

} // namespace

Peer peer(const std::string &) {
    return {std::string("Cairo ") + cairo_version_string(),
            {{"lines", "cairo_stroke", drawLines}, {"circles", "cairo_fill, CAIRO_ANTIALIAS_NONE", drawCircles}}};
}

} // namespace peers
