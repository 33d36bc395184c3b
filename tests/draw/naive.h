/// \file
/// Words that the naive second computations of the drawing tests are written in: plain 64-bit numbers, cut to 32 bits
/// where the library's own wrap, and one pixel at a time.
#ifndef Q_MUR_TESTS_DRAW_NAIVE_H
#define Q_MUR_TESTS_DRAW_NAIVE_H

#include "support/cases.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <initializer_list>
#include <limits>
#include <string>

namespace naive {

using Number = std::int64_t;

/// The signed 32-bit number that is left of a larger one.
inline Number signed32(Number value) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(value));
}

/// The unsigned one.
inline Number unsigned32(Number value) {
    return static_cast<std::uint32_t>(value);
}

inline Number red(q_ulong pixel) {
    return pixel / 65536 % 256;
}
inline Number green(q_ulong pixel) {
    return pixel / 256 % 256;
}
inline Number blue(q_ulong pixel) {
    return pixel % 256;
}
inline Number upperHalf(q_ulong pixel) {
    return pixel / 65536;
}

inline q_ulong packed(Number upper, Number middle, Number lower) {
    return static_cast<q_ulong>(unsigned32(upper * 65536 + middle * 256 + lower));
}

/// (old * (256 - weight) + c * weight) / 256 in each channel.
inline q_ulong mixed(q_ulong old, q_ulong colour, Number weight) {
    const auto channel = [weight](Number o, Number c) { return (o * (256 - weight) + c * weight) / 256; };
    return packed(channel(red(old), red(colour)), channel(green(old), green(colour)), channel(blue(old), blue(colour)));
}

/// min(old + weight * c / 2^shift, 255) in each channel.
inline q_ulong added(q_ulong old, q_ulong colour, Number weight, int shift) {
    const auto channel = [=](Number o, Number c) {
        return std::min<Number>(255, o + (unsigned32(weight * c) >> shift));
    };
    return packed(channel(red(old), red(colour)), channel(green(old), green(colour)), channel(blue(old), blue(colour)));
}

/// The same in 1/256, with the whole upper half of either word as its red.
inline q_ulong addedByUpperHalf(q_ulong old, q_ulong colour, Number weight) {
    const auto channel = [=](Number o, Number c) { return std::min<Number>(255, o + weight * c / 256); };
    return packed(channel(upperHalf(old), upperHalf(colour)), channel(green(old), green(colour)),
                  channel(blue(old), blue(colour)));
}

inline bool inside(const tagRECT &rect, Number x, Number y) {
    return x >= rect.left && x < rect.right && y >= rect.top && y < rect.bottom;
}

/// Inside and neither in the first nor the last row or column that the sides name.
inline bool strictlyInside(const tagRECT &rect, Number x, Number y) {
    return x > rect.left && x < rect.right && y > rect.top && y < rect.bottom;
}

/// Sets every pixel of a surface, its margin included, to `value(pixel, x - cx, y - cy, x, y)`.
template <class Value>
void forAll(test::Surface &surface, int cx, int cy, Value value) {
    constexpr int margin = test::Surface::margin;
    for (int y = -margin; y < surface.height() + margin; ++y)
        for (int x = -margin; x < surface.width() + margin; ++x) {
            q_ulong &d = surface.at(x, y);
            d = value(d, Number{x} - cx, Number{y} - cy, x, y);
        }
}

} // namespace naive

namespace test {

/// A surface and a round shape that fits in it, margins included.
struct Shape {
    explicit Shape(Random &random, int largestRadius = 12)
        : surface(Surface::random(random)), radius(0), x(0), y(0), colour(random.pixel()) {
        constexpr int reach = Surface::margin;
        const int room = (std::min(surface.width(), surface.height()) + 2 * reach - 1) / 2;
        radius = random.between(0, std::min(room, largestRadius));
        x = random.between(radius - reach, surface.width() + reach - 1 - radius);
        y = random.between(radius - reach, surface.height() + reach - 1 - radius);
    }

    Surface surface;
    int radius;
    int x;
    int y;
    q_ulong colour;
};

/// A surface, a clip inside it, and a round shape that may lie anywhere.
struct ClippedShape {
    explicit ClippedShape(Random &random)
        : surface(Surface::random(random)), clip(random.rectInsideOrEmpty(surface.width(), surface.height())),
          radius(random.between(-1, random.oneIn(8) ? 40 : 14)), x(random.between(-10, surface.width() + 9)),
          y(random.between(-10, surface.height() + 9)), colour(random.pixel()) {}

    Surface surface;
    tagRECT clip;
    int radius;
    int x;
    int y;
    q_ulong colour;
};

/// Draws a clipped shape with centres over and beyond a small surface and its clip, with radii from negative to ones
/// that cover everything, and compares each with the naive computation, beyond the clip too.
/// `draw(Surface &, tagRECT *clip, x, y, radius)` and `compute(...)` draw it.
template <class Draw, class Compute>
std::string sweep(std::initializer_list<int> radii, Draw draw, Compute compute) {
    Random random(4);
    const Surface fresh = Surface::randomOfSize(random, 9, 7);
    for (const tagRECT &rect : {tagRECT{0, 0, 9, 7}, tagRECT{2, 1, 7, 6}, tagRECT{4, 3, 5, 4}, tagRECT{4, 3, 4, 6}})
        for (const int radius : radii)
            for (int y = -7; y <= 13; ++y)
                for (int x = -7; x <= 15; ++x) {
                    Surface surface = fresh;
                    Surface expected = fresh;
                    tagRECT clip = rect;
                    compute(expected, clip, x, y, radius);
                    draw(surface, &clip, x, y, radius);
                    if (!(surface == expected))
                        return "radius " + std::to_string(radius) + " at " + std::to_string(x) + ", " +
                               std::to_string(y) + ": " + surface.differenceFrom(expected);
                }
    return {};
}

} // namespace test

#endif
