/// \file
/// Round things laid over a picture at places and sizes between whole pixels: the library draws them at a size that it
/// holds, and they are brought to the one that is wanted, by iBltPerfect32() and iBltFast32AlphaChannelSafe().
#ifndef QMUR_SHOW_DISC_H
#define QMUR_SHOW_DISC_H

#include "painting.h"
#include "picture.h"

#include <algorithm>
#include <cmath>

namespace show {

/// A disc in a picture. Whole coordinates are the middles of pixels.
struct Disc {
    double x;
    double y;
    double radius;

    bool touches(const Surface &surface) const {
        return x + radius > -1 && y + radius > -1 && x - radius < surface.width && y - radius < surface.height;
    }
};

/// Covers the disc `place` of `out` with what `part` of `picture` shows, and that with an opacity from 0 to 255 for
/// each pixel: `opacity(colour, distance)`, where the distance is to the middle of the disc, in pixels of `out`. It may
/// change the colour.
///
/// Around `part` the picture should go on for three pixels of `out` and one of its own. If there is less, as around
/// discs of a few pixels, the rim of `part` is cut off.
template <class Opacity>
void layDisc(const Surface &out, const Disc &place, const Surface &picture, const Disc &part, Opacity opacity) {
    if (!place.touches(out))
        return;
    const int left = static_cast<int>(std::floor(place.x - place.radius));
    const int top = static_cast<int>(std::floor(place.y - place.radius));
    const int side = static_cast<int>(2 * place.radius) + 3;
    const double reach = std::min({part.x, part.y, picture.width - 1 - part.x, picture.height - 1 - part.y}) - 1;
    const double scale = std::min(part.radius / place.radius, reach / (place.radius + 3));
    const Canvas sprite(side, side);
    const Surface pixels = sprite.surface();
    drawView(pixels, picture,
             {part.x + (left - place.x) * scale, part.y + (top - place.y) * scale, side * scale, side * scale});
    for (int y = 0; y < side; ++y) {
        const double dy = top + y - place.y;
        for (int x = 0; x < side; ++x) {
            const double dx = left + x - place.x;
            q_ulong &pixel = *pixels.at(x, y);
            pixel |= opacityOf(opacity(pixel, std::sqrt(dx * dx + dy * dy)));
        }
    }
    lay(out, pixels, left, top);
}

/// The same, opaque up to a rim that is softened over one pixel.
inline void layDisc(const Surface &out, const Disc &place, const Surface &picture, const Disc &part) {
    layDisc(out, place, picture, part, [&](q_ulong, double distance) {
        return static_cast<int>(clampUnit(place.radius + 0.5 - distance) * 255 + 0.5);
    });
}

} // namespace show

#endif
