/// \file
/// The stretch of a straight walk that lies between two bounds, worked out before the walk, so that no pixel is tested.
#ifndef Q_MUR_WALKS_STRETCH_H
#define Q_MUR_WALKS_STRETCH_H

#include "base/surface.h"

#include <limits>

namespace qmur {

/// Values from `low` up to, not including, `high`.
struct Bounds {
    long long low;
    long long high;

    constexpr bool empty() const { return low >= high; }
    constexpr bool contain(int value) const { return low <= value && value < high; }
};

constexpr Bounds everyInt = {std::numeric_limits<int>::min(), std::numeric_limits<int>::max() + 1LL};

/// Whether `start + x * step` stays within 32 bits for x from 0 up to, not including, `count`.
constexpr bool staysIn32Bits(long long start, long long step, int count) {
    const long long last = start + step * (count - 1);
    return last == static_cast<int>(last);
}

/// The part of `within`, a span that begins at 0 or later, in which `start + x * step` lies inside `bounds`, which must
/// not be empty. The value must stay within 32 bits on the way.
constexpr Span stretchInside(long long start, long long step, Bounds bounds, Span within) {
    // Most walks lie inside at both ends; that saves them the divisions.
    const auto liesInside = [=](long long x) {
        return bounds.low <= start + x * step && start + x * step < bounds.high;
    };
    if (liesInside(within.begin) && liesInside(within.end - 1LL))
        return within;
    const auto ceilingOf = [](long long numerator, long long divisor) { // of their quotient; the divisor is above 0
        return numerator > 0 ? (numerator + divisor - 1) / divisor : -(-numerator / divisor);
    };
    const auto bounded = [within](long long x) {
        return static_cast<int>(x < within.begin ? within.begin : x > within.end ? within.end : x);
    };
    if (step == 0)
        return bounds.low <= start && start < bounds.high ? within : Span{within.begin, within.begin};
    if (step > 0)
        return {bounded(ceilingOf(bounds.low - start, step)), bounded(ceilingOf(bounds.high - start, step))};
    return {bounded(ceilingOf(start - bounds.high + 1, -step)), bounded(ceilingOf(start - bounds.low + 1, -step))};
}

/// A value that grows by one step for each pixel, in 32 bits that wrap, and the bounds within which a pixel counts.
struct Track {
    int start;
    int step;
    Bounds bounds;

    constexpr int at(int x) const { return wrapAdd(start, wrapMultiply(step, x)); }
};

/// Calls `pixel(x, u, v)` for x from 0 up to, not including, `count` wherever both values lie within their bounds, and
/// `outside(x)` elsewhere. If neither wraps on the way, the stretch inside is worked out first and walked without a
/// test.
template <class Pixel, class Outside>
void forEachInside(const Track &trackU, const Track &trackV, int count, Pixel pixel, Outside outside) {
    if (count < 1)
        return;
    const int stepU = trackU.step;
    const int stepV = trackV.step;
    if (trackU.bounds.empty() || trackV.bounds.empty()) {
        for (int x = 0; x < count; ++x)
            outside(x);
    } else if (staysIn32Bits(trackU.start, stepU, count) && staysIn32Bits(trackV.start, stepV, count)) {
        Span inside = stretchInside(trackU.start, stepU, trackU.bounds, {0, count});
        inside = stretchInside(trackV.start, stepV, trackV.bounds, inside);
        for (int x = 0; x < inside.begin; ++x)
            outside(x);
        int u = wrapAdd(trackU.start, wrapMultiply(stepU, inside.begin));
        int v = wrapAdd(trackV.start, wrapMultiply(stepV, inside.begin));
        for (int x = inside.begin; x < inside.end; ++x, u = wrapAdd(u, stepU), v = wrapAdd(v, stepV))
            pixel(x, u, v);
        for (int x = inside.end; x < count; ++x)
            outside(x);
    } else {
        int u = trackU.start;
        int v = trackV.start;
        for (int x = 0; x < count; ++x, u = wrapAdd(u, stepU), v = wrapAdd(v, stepV))
            if (trackU.bounds.contain(u) && trackV.bounds.contain(v))
                pixel(x, u, v);
            else
                outside(x);
    }
}

/// The same with nothing outside.
template <class Pixel>
void forEachInside(const Track &trackU, const Track &trackV, int count, Pixel pixel) {
    forEachInside(trackU, trackV, count, pixel, [](int) {});
}

/// The bounds of a fixed-point value whose whole part, moved by `offset`, lies from `first` up to, not including,
/// `end`.
constexpr Bounds scaledBounds(long long first, long long end, long long offset, int fractionBits) {
    return {(first - offset) * (1LL << fractionBits), (end - offset) * (1LL << fractionBits)};
}

} // namespace qmur

#endif
