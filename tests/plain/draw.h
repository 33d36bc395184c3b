/// \file
/// Words that the twins of the drawing functions share.
#ifndef Q_MUR_TESTS_PLAIN_DRAW_H
#define Q_MUR_TESTS_PLAIN_DRAW_H

#include "words.h"

#include <cstdlib>

namespace plain::draw {

/// Red together with the top byte.
constexpr Number upperHalfOf(q_ulong pixel) {
    return pixel / 65536;
}

/// (old * (256 - weight) + c * weight) / 256.
constexpr Number mixed(Number old, Number c, Number weight) {
    return (old * (256 - weight) + c * weight) / 256;
}
inline q_ulong mixedPixel(q_ulong old, q_ulong colour, Number weight) {
    return eachChannel(old, colour, [=](Number o, Number c) { return mixed(o, c, weight); });
}

/// min(old + weight * c / 2^shift, 255) in each channel, the products in 32 bits.
inline q_ulong added(q_ulong old, q_ulong colour, Number weight, int shift = 8) {
    return eachChannel(old, colour, [=](Number o, Number c) {
        return std::min<Number>(255, o + unsigned32(weight * c) / (Number{1} << shift));
    });
}

/// The same in 1/256, with the whole upper half of either word as its red.
inline q_ulong addedByUpperHalf(q_ulong old, q_ulong colour, Number weight) {
    const auto channel = [=](Number o, Number c) { return std::min<Number>(255, o + weight * c / 256); };
    return pixelOf(channel(upperHalfOf(old), upperHalfOf(colour)), channel(greenOf(old), greenOf(colour)),
                   channel(blueOf(old), blueOf(colour)));
}

/// Columns and rows; the first are included, the last are not.
struct Bounds {
    Number left;
    Number top;
    Number right;
    Number bottom;
};

constexpr Bounds boundsOf(const tagRECT &rect) {
    return {rect.left, rect.top, rect.right, rect.bottom};
}

/// Between the sides of a clip, and on none of them.
constexpr Bounds strictlyInside(const tagRECT &clip) {
    return {Number{clip.left} + 1, Number{clip.top} + 1, clip.right, clip.bottom};
}

constexpr Bounds common(const Bounds &a, const Bounds &b) {
    return {std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right), std::min(a.bottom, b.bottom)};
}

/// As many pixels to each side of a centre, and the centre itself.
constexpr Bounds around(Number cx, Number cy, Number reach) {
    return {cx - reach, cy - reach, cx + reach + 1, cy + reach + 1};
}

/// Calls `visit(pixel, dx, dy)` for all pixels with their offsets from a centre, rows top to bottom.
template <class Visit>
void forOffsets(Pixels surface, const Bounds &bounds, Number cx, Number cy, Visit visit) {
    for (Number y = bounds.top; y < bounds.bottom; ++y)
        for (Number x = bounds.left; x < bounds.right; ++x)
            visit(surface.at(x, y), x - cx, y - cy);
}

} // namespace plain::draw

#endif
