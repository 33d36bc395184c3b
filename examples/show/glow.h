/// \file
/// What shines: light is drawn on a black surface, and what it does to the picture is made of that surface.
#ifndef QMUR_SHOW_GLOW_H
#define QMUR_SHOW_GLOW_H

#include "painting.h"
#include "picture.h"
#include "random.h"

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

/// Adds a light of a radius around a point, which fades from its middle, where it has the strength, to nothing. Its
/// steps are spread over the pixels, so that a wide and faint one shows no rings.
inline void addGlow(const Surface &out, Point at, double radius, q_ulong colour, double strength) {
    const int left = std::max(static_cast<int>(at.x - radius), 0);
    const int top = std::max(static_cast<int>(at.y - radius), 0);
    const int right = std::min(static_cast<int>(at.x + radius) + 2, out.width);
    const int bottom = std::min(static_cast<int>(at.y + radius) + 2, out.height);
    const double scale = 1 / (radius * radius);
    const std::uint64_t seed = seedOf(static_cast<std::uint64_t>(left), top); // lights that overlap must not agree
    for (int y = top; y < bottom; ++y)
        for (int x = left; x < right; ++x) {
            const double dx = x - at.x;
            const double dy = y - at.y;
            const double away = (dx * dx + dy * dy) * scale;
            if (away >= 1)
                continue;
            const double level = strength * (1 - away) * (1 - away) / (1 + 8 * away);
            const double threshold = Random(seedOf(seed, y * out.width + x)).unit();
            q_ulong &pixel = *out.at(x, y);
            pixel = eachChannel([&](int shift) {
                return channelOf(pixel, shift) + static_cast<int>(channelOf(colour, shift) * level + threshold);
            });
        }
}

} // namespace show

#endif
