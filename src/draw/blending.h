/// \file
/// What the drawing functions do to a pixel with a weighted colour.
#ifndef Q_MUR_DRAW_BLENDING_H
#define Q_MUR_DRAW_BLENDING_H

#include "base/pixel.h"
#include "base/surface.h"

namespace qmur {

/// old * (256 - weight) + c * weight, in one product; wraps at 32 bits.
constexpr q_ulong mixture256(q_ulong old, q_ulong c, q_ulong weight) {
    return (old << 8) + (c - old) * weight;
}

/// (d * (256 - weight) + c * weight) / 256, truncated, in each channel, for weights from 0 to 256; top byte 0.
constexpr q_ulong cover256(q_ulong d, q_ulong colour, q_ulong weight) {
    // Either sum of red and blue fits the 16 bits up to the next channel.
    return (mixture256(d & redBlueMask, colour & redBlueMask, weight) >> 8 & redBlueMask) |
           (mixture256(d & greenMask, colour & greenMask, weight) >> 8 & greenMask);
}

/// min(d + weight * c / 2^shift, 255) in each channel; top byte 0. The product wraps at 32 bits.
template <int shift>
constexpr q_ulong scaledAdd(q_ulong d, q_ulong colour, q_ulong weight) {
    return channelwise([weight](q_ulong old, q_ulong c) { return cappedAt255(old + (weight * c >> shift)); }, d,
                       colour);
}

/// min(d + weight * c / 256, 255) in each channel, for weights from 0 to 256; top byte 0.
/// Meant: red is the whole upper half of either word, so that a top byte drives it to 255.
constexpr q_ulong upperHalfAdd(q_ulong d, q_ulong colour, q_ulong weight) {
    return upperHalfChannelwise([weight](q_ulong old, q_ulong c) { return cappedAt255(old + (weight * c >> 8)); }, d,
                                colour);
}

/// Adds `weight(dx)` / 2^shift of a colour to a run of pixels, the first of which is `first`.
template <int shift, class Weight>
void addRun(q_ulong *first, Span offsets, q_ulong colour, Weight weight) {
    for (int dx = offsets.begin; dx < offsets.end; ++dx, ++first)
        *first = scaledAdd<shift>(*first, colour, weight(dx));
}

} // namespace qmur

#endif
