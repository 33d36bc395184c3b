/// \file
/// What shines: light is drawn on a black surface, and what it does to the picture is made of that surface.
#ifndef QMUR_SHOW_GLOW_H
#define QMUR_SHOW_GLOW_H

#include "painting.h"
#include "picture.h"
#include "random.h"

#include <algorithm>
#include <array>

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

/// How a light fades: at a share of the square of its radius, in 1/4096 of what it is in its middle.
struct Fading {
    static constexpr int steps = 2048;

    Fading() {
        for (int i = 0; i < steps; ++i) {
            const double away = static_cast<double>(i) / steps;
            levels[static_cast<std::size_t>(i)] =
                static_cast<int>(4096 * (1 - away) * (1 - away) / (1 + 8 * away) + 0.5);
        }
    }

    std::array<int, steps> levels;
};

/// Thresholds for levels between two steps, in 1 / 2^20: a square of them, to be repeated.
struct Thresholds {
    static constexpr int side = 128;

    Thresholds() {
        Random random(0);
        for (int &value : values)
            value = random.below(1 << 20);
    }

    const int *row(int y) const { return values.data() + y % side * side; }

    std::array<int, static_cast<std::size_t>(side) * side> values;
};

/// Adds a light of a radius around a point, which fades from its middle, where it has the strength, up to 7, to
/// nothing. Its steps are spread over the pixels, so that a wide and faint one shows no rings.
inline void addGlow(const Surface &out, Point at, double radius, q_ulong colour, double strength) {
    if (strength <= 0)
        return;
    static const Fading fading;
    static const Thresholds thresholds;
    const int left = std::max(static_cast<int>(at.x - radius), 0);
    const int top = std::max(static_cast<int>(at.y - radius), 0);
    const int right = std::min(static_cast<int>(at.x + radius) + 2, out.width);
    const int bottom = std::min(static_cast<int>(at.y + radius) + 2, out.height);
    const double scale = Fading::steps / (radius * radius);
    // Lights that overlap must not agree in their thresholds.
    Random random(seedOf(static_cast<std::uint64_t>(left), top));
    const int shiftX = random.below(Thresholds::side);
    const int shiftY = random.below(Thresholds::side);
    const auto strengthOf = [&](int shift) { return static_cast<int>(256 * strength * channelOf(colour, shift)); };
    const int red = strengthOf(16);
    const int green = strengthOf(8);
    const int blue = strengthOf(0);
    for (int y = top; y < bottom; ++y) {
        const int *const threshold = thresholds.row(y + shiftY);
        q_ulong *const row = out.at(0, y);
        const double dy = y - at.y;
        for (int x = left; x < right; ++x) {
            const double dx = x - at.x;
            const auto away = static_cast<int>((dx * dx + dy * dy) * scale);
            if (away >= Fading::steps)
                continue;
            const int level = fading.levels[static_cast<std::size_t>(away)];
            const int rest = threshold[(x + shiftX) % Thresholds::side];
            const auto sum = [&](int shift, int channel) {
                const int lit = channelOf(row[x], shift) + ((channel * level + rest) >> 20);
                return static_cast<q_ulong>(std::min(lit, 255)) << shift;
            };
            row[x] = sum(16, red) | sum(8, green) | sum(0, blue);
        }
    }
}

} // namespace show

#endif
