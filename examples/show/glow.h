/// \file
/// What shines: light is drawn on a black surface, and what it does to the picture is made of that surface.
#ifndef QMUR_SHOW_GLOW_H
#define QMUR_SHOW_GLOW_H

#include "painting.h"
#include "picture.h"

namespace show {

/// The light at half its size and softened, in the upper left of `plane`. Writes the light's margin.
inline Surface softened(const Surface &plane, const Surface &light, int radius) {
    const Surface half = plane.cropped((light.width + 1) / 2, (light.height + 1) / 2);
    drawHalved(half, light);
    blur(half, radius, 2);
    return half;
}

/// Adds the light, stretched over `out`, at a strength from 0 to 1.
inline void addLight(const Surface &out, const Surface &light, double strength) {
    const double share = static_cast<int>(clampUnit(strength) * 255) / 255.0;
    addStretched(out, out.rect(), light, light.rect(), share, share, share);
}

} // namespace show

#endif
