/// \file
/// What shines: light is drawn on a black surface, and what it does to the picture is made of that surface.
#ifndef QMUR_SHOW_GLOW_H
#define QMUR_SHOW_GLOW_H

#include "easing.h"
#include "picture.h"

#include <algorithm>

namespace show {

inline void clear(const Surface &surface) {
    tagRECT rect = surface.rect();
    iFillRect(surface.pixels, &rect, surface.pitch, 0);
}

/// The light at half its size and softened, in the upper left of `plane`. Writes the light's margin.
inline Surface softened(const Surface &plane, const Surface &light, int radius) {
    const Surface half = plane.cropped((light.width + 1) / 2, (light.height + 1) / 2);
    drawHalved(half, light);
    tagRECT rect = half.rect();
    const int possible = std::min({radius, half.width / 2, half.height / 2, 128});
    for (int i = 0; i < 2; ++i)
        Blur_Rect(half.pixels, &rect, half.pitch, possible);
    return half;
}

/// Adds the light, stretched over `out`, at a strength from 0 to 1.
inline void addLight(const Surface &out, const Surface &light, double strength) {
    tagRECT frame = out.rect();
    tagRECT whole = light.rect();
    const auto scale = static_cast<unsigned char>(clampUnit(strength) * 255);
    iBltBilinear32_Add(out.pixels, light.pixels, &frame, &whole, static_cast<q_ulong>(out.pitch),
                       static_cast<q_ulong>(light.pitch), scale, scale, scale);
}

/// Adds the light pixel by pixel.
inline void addLight(const Surface &out, const Surface &light) {
    tagRECT whole = light.rect();
    iBltFast32_Add(out.pixels, light.pixels, 0, 0, &whole, static_cast<q_ulong>(out.pitch),
                   static_cast<q_ulong>(light.pitch));
}

/// A colour on its way to another.
inline q_ulong mixColours(q_ulong from, q_ulong to, double t) {
    q_ulong mixed = 0;
    for (int shift = 0; shift < 24; shift += 8)
        mixed |= static_cast<q_ulong>(mix(from >> shift & 0xFF, to >> shift & 0xFF, clampUnit(t))) << shift;
    return mixed;
}

} // namespace show

#endif
