/// \file
/// The constant alpha of a whole call.
#ifndef Q_MUR_BASE_ALPHA_H
#define Q_MUR_BASE_ALPHA_H

#include "base/pixel.h"
#include "base/wide.h"

namespace qmur {

/// The weights of source and destination, in 1/256; together 256. An alpha outside 0 to 1 is not clamped.
struct AlphaWeights {
    q_ulong src;
    q_ulong dst;

    /// Whether the weights are from 0 to 256, so that no channel reaches into its neighbour.
    constexpr bool areWithinRange() const { return src <= 256; }
};

inline AlphaWeights alphaWeights(float alpha) {
    const auto src = static_cast<q_ulong>(truncateToInt(static_cast<double>(alpha) * 256));
    return {src, 256 - src};
}

/// s * src + d * dst for one channel's byte.
constexpr q_ulong weightedByte(q_ulong d, q_ulong s, AlphaWeights weights) {
    return s * weights.src + d * weights.dst;
}

/// The weighted means of red and green in their places; blue is left to the caller, for families differ in it.
constexpr q_ulong mixedRedGreen(q_ulong d, q_ulong s, AlphaWeights weights) {
    return (weightedByte(redOf(d), redOf(s), weights) & 0xFF00) << 8 |
           (weightedByte(greenOf(d), greenOf(s), weights) & 0xFF00);
}

} // namespace qmur

#endif
