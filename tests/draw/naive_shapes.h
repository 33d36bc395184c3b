/// \file
/// Circles, rings, stars, lights and balls, pixel by pixel.
#ifndef Q_MUR_TESTS_DRAW_NAIVE_SHAPES_H
#define Q_MUR_TESTS_DRAW_NAIVE_SHAPES_H

#include "naive.h"

namespace naive::shapes {

using test::Surface;

/// 256 times the share of the colour at a squared distance, with 16 fraction bits of 1 / r^2.
inline Number naiveShare(Number square, int radius) {
    return square * (65536 / (Number{radius} * radius)) / 256 % 65536;
}

inline void naiveFill(Surface &s, int x, int y, int radius, q_ulong colour) {
    for (int dy = -radius; dy <= 0; ++dy)
        for (int dx = -radius; dx <= 0; ++dx)
            if (dx * dx + dy * dy <= radius * radius)
                s.at(x + dx, y + dy) = s.at(x - dx, y + dy) = s.at(x + dx, y - dy) = s.at(x - dx, y - dy) = colour;
}

inline void naiveOutline(Surface &s, int x, int y, int radius, int thickness, q_ulong colour) {
    const int inner = (radius - thickness) * (radius - thickness);
    for (int dy = -radius; dy <= 0; ++dy)
        for (int dx = -radius; dx <= 0; ++dx) {
            const int square = dx * dx + dy * dy;
            if (square > radius * radius)
                continue;
            s.at(x + dx, y + dy) = s.at(x - dx, y + dy) = s.at(x + dx, y - dy) = s.at(x - dx, y - dy) = colour;
            if (square <= inner)
                break;
        }
}

/// Sets each pixel of a clipped disc to `value(pixel, squared distance)`, with 32-bit squares.
template <class Value>
void naiveDisc(Surface &s, const tagRECT &clip, int cx, int cy, int radius, Value value) {
    const Number limit = naive::signed32(Number{radius} * radius);
    naive::forAll(s, cx, cy, [&](q_ulong old, Number dx, Number dy, int x, int y) {
        const Number square = naive::signed32(dx * dx + dy * dy);
        const bool within = std::abs(dx) <= radius && std::abs(dy) <= radius && square <= limit;
        return naive::inside(clip, x, y) && within ? value(old, square) : old;
    });
}

/// Each channel of a blend masked to its byte.
inline q_ulong naiveAlpha(q_ulong old, q_ulong colour, Number alpha) {
    const auto channel = [alpha](Number o, Number c) {
        return naive::unsigned32(o * (256 - alpha) + c * alpha) / 256 % 256;
    };
    return naive::packed(channel(naive::red(old), naive::red(colour)), channel(naive::green(old), naive::green(colour)),
                         channel(naive::blue(old), naive::blue(colour)));
}

inline q_ulong naiveMetal(Number square, int radius, q_ulong colour) {
    const Number step = 65536 / (Number{radius} * radius);
    const auto channel = [&](Number c) {
        const Number product = naive::signed32(square * (c - 255) * step);
        return (product >= 0 ? product / 65536 : -((-product + 65535) / 65536)) + 255;
    };
    return naive::packed(channel(naive::upperHalf(colour)), channel(naive::green(colour)),
                         channel(naive::blue(colour)));
}

/// The weight of a band at an offset, or -1 outside of it.
inline Number naiveBandWeight(int radius, int thickness, Number dx, Number dy) {
    const Number index = (dx * dx + dy * dy) / 4;
    const Number e = std::abs(Number{radius} * 512 - iSqrt[index]);
    const Number band = Number{thickness} * 1024;
    return e < band ? (band - e) * (32768 / (2 * Number{thickness})) / 65536 : -1;
}

/// The blend with red and top byte as one number.
inline q_ulong naiveSoft(q_ulong old, q_ulong colour, Number weight) {
    const auto channel = [weight](Number o, Number c) { return (o * (256 - weight) + c * weight) / 256; };
    return naive::packed(channel(naive::upperHalf(old), naive::upperHalf(colour)),
                         channel(naive::green(old), naive::green(colour)),
                         channel(naive::blue(old), naive::blue(colour)));
}

inline void naiveSoftCircle(Surface &s, int x, int y, int radius, int thickness, q_ulong colour) {
    const int reach = radius + 2 * thickness;
    const auto blend = [&](int dx, int dy) {
        const Number weight = naiveBandWeight(radius, thickness, dx, dy);
        if (weight >= 0)
            s.at(x + dx, y + dy) = naiveSoft(s.at(x + dx, y + dy), colour, weight);
    };
    for (int dy = -reach; dy <= -1; ++dy)
        for (int dx = -reach; dx <= -1; ++dx)
            blend(dx, dy), blend(-dx, dy), blend(dx, -dy), blend(-dx, -dy);
    for (int k = -reach; k <= 0; ++k)
        blend(k, 0), blend(-k, 0), blend(0, k), blend(0, -k);
}

inline void naiveRingSafe(Surface &s, const tagRECT &clip, int cx, int cy, int radius, int thickness, q_ulong colour) {
    const Number reach = radius + 2 * thickness;
    naive::forAll(s, cx, cy, [&](q_ulong old, Number dx, Number dy, int x, int y) {
        if (!naive::inside(clip, x, y) || std::abs(dx) > reach || std::abs(dy) > reach)
            return old;
        const Number weight = naiveBandWeight(radius, thickness, dx, dy);
        return weight < 0 ? old : naive::addedByUpperHalf(old, colour, weight);
    });
}

inline void naiveRing(Surface &s, int x, int y, int radius, q_ulong colour, q_ulong intensity) {
    const Number inner = std::max(radius - 16, radius >> 1);
    const Number mid = (inner + radius) / 2;
    const Number halfBand = radius - mid;
    const Number step = halfBand == 0 ? -1 : 65536 / halfBand;
    for (int dy = -radius; dy < radius; ++dy)
        for (int dx = -radius; dx < radius; ++dx) {
            const Number square = dx * dx + dy * dy;
            if (square > Number{radius} * radius || square < inner * inner)
                continue;
            Number distance = 0;
            while ((distance + 1) * (distance + 1) <= square)
                ++distance;
            const Number weight = naive::unsigned32((halfBand - std::abs(mid - distance)) * step * intensity) / 65536;
            q_ulong &d = s.at(x + dx, y + dy);
            d = naive::added(d, colour, weight, 7);
        }
}

/// Half the columns of a star's row, by the table.
inline Number naiveHalf(Number radius, Number dy) {
    return iSqrt[(radius * radius - dy * dy) / 16] / 256;
}

inline Number naiveWeight(Number radius, Number dx, Number dy, q_ulong intensity) {
    const Number inverse = 1048576 / (radius * radius);
    const Number a = radius - std::abs(dy);
    const Number b = radius - std::abs(dx);
    const Number rowWeight = naive::unsigned32(a * a * inverse * intensity) >> 18;
    return naive::unsigned32(b * b * rowWeight * inverse) >> 20;
}

/// The star of type 1 wherever `mayWrite(x, y)`.
template <class MayWrite>
void naiveType1(Surface &s, int cx, int cy, int radius, q_ulong colour, q_ulong intensity, MayWrite mayWrite) {
    if (radius < 1)
        return;
    naive::forAll(s, cx, cy, [&](q_ulong old, Number dx, Number dy, int x, int y) {
        if (!mayWrite(x, y) || dy < -radius || dy >= radius)
            return old;
        const Number half = naiveHalf(radius, dy);
        if (dx < -half || dx >= half)
            return old;
        return naive::added(old, colour, naiveWeight(radius, dx, dy, intensity), 8);
    });
}

inline bool anywhere(int, int) {
    return true;
}

inline void naiveType1Safe(Surface &s, const tagRECT &clip, int cx, int cy, int radius, q_ulong colour,
                           q_ulong intensity) {
    naiveType1(s, cx, cy, std::min(radius, 256), colour, intensity,
               [&clip](int x, int y) { return naive::strictlyInside(clip, x, y); });
}

inline void naiveType2(Surface &s, int cx, int cy, int radius, q_ulong colour, q_ulong intensity) {
    for (int dy = 0; dy < radius; ++dy)
        for (int k = 0; k < naiveHalf(radius, dy); ++k)
            for (const int y : {cy + dy, cy - dy})
                for (const int x : {cx + k, cx - k})
                    s.at(x, y) = naive::added(s.at(x, y), colour, naiveWeight(radius, k, dy, intensity), 8);
}

inline void naiveType3(Surface &s, int cx, int cy, int radius, q_ulong colour, q_ulong intensity) {
    const Number r = radius;
    const Number inverse = r == 0 ? 0 : 1024 / r;
    const Number core = r / 5;
    for (int dy = -radius; dy < radius; ++dy) {
        const int a = std::abs(dy);
        const Number f = a < core ? naive::unsigned32((r - 4 * a) * inverse * intensity * 4) >> 10
                                  : naive::unsigned32((r - a) * inverse * intensity) >> 10;
        for (int dx = a - radius; dx < radius - a; ++dx) {
            const Number b = std::abs(dx);
            // Only the core's product is a signed number.
            const Number product =
                b < core ? naive::signed32((r - 4 * b) * f * inverse) : naive::unsigned32((r - b) * f * inverse);
            const Number divisor = b < core ? 64 : 256;
            const Number weight = product >= 0 ? product / divisor : -((-product + divisor - 1) / divisor);
            s.at(cx + dx, cy + dy) = naive::added(s.at(cx + dx, cy + dy), colour, weight, 11);
        }
    }
}

/// The light wherever `mayWrite(x, y)`.
template <class MayWrite>
void naiveLight(Surface &s, int cx, int cy, int radius, q_ulong colour, q_ulong intensity, MayWrite mayWrite) {
    if (radius < 1)
        return;
    const Number square = Number{radius} * radius;
    naive::forAll(s, cx, cy, [&](q_ulong old, Number dx, Number dy, int x, int y) {
        if (!mayWrite(x, y) || dy < -radius || dy >= radius)
            return old;
        const Number chordSquare = square - dy * dy;
        const Number half = iSqrt[chordSquare / 16] / 256;
        if (dx < -half || dx >= half)
            return old;
        const Number product = (chordSquare - dx * dx) * (1048576 / square);
        return naive::added(old, colour, naive::unsigned32(product * intensity) >> 19, 8);
    });
}

inline void naiveLightSafe(Surface &s, const tagRECT &clip, int cx, int cy, int radius, q_ulong colour,
                           q_ulong intensity) {
    naiveLight(s, cx, cy, std::min(radius, 256), colour, intensity,
               [&clip](int x, int y) { return naive::strictlyInside(clip, x, y); });
}

inline void naiveCircleLight(Surface &s, int cx, int cy, int radius, Number red, Number green, Number blue) {
    const Number square = Number{radius} * radius;
    for (int dy = -radius; dy <= radius; ++dy)
        for (int dx = -radius; dx <= radius; ++dx) {
            const Number d2 = dx * dx + dy * dy;
            if (square == 0 || d2 > square)
                continue;
            const Number t = d2 * (65536 / square) / 256 % 65536;
            const Number u = 256 - t;
            q_ulong &d = s.at(cx + dx, cy + dy);
            d = naive::packed((naive::upperHalf(d) * t + red * u) / 256 % 256,
                              (naive::green(d) * t + green * u) / 256 % 256, (naive::blue(d) * t + blue * u) / 256);
        }
}

/// The ball wherever `mayWrite(x, y)`.
template <class MayWrite>
void naiveBall(Surface &s, int cx, int cy, int radius, q_ulong colour, MayWrite mayWrite) {
    if (radius < 0)
        return;
    const Number r = std::clamp(radius, 1, 256);
    const Number q = 3 * r / 2;
    const Number h = r / 2;
    naive::forAll(s, cx, cy, [&](q_ulong old, Number dx, Number dy, int x, int y) {
        if (!mayWrite(x, y) || dx * dx + dy * dy > r * r)
            return old;
        const Number product = (q * q - (h + dx) * (h + dx) - (h + dy) * (h + dy)) * (1048576 / (q * q));
        return naive::added(0, colour, product < 0 ? 0 : product / 2048, 8);
    });
}

inline void naiveBallSafe(Surface &s, const tagRECT &clip, int cx, int cy, int radius, q_ulong colour) {
    naiveBall(s, cx, cy, radius, colour, [&clip](int x, int y) { return naive::strictlyInside(clip, x, y); });
}

} // namespace naive::shapes

#endif
