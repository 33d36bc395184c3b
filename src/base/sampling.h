/// \file
/// Bilinear sampling with four-bit weights: the four weights are products of numbers up to 16 and add up to 256, so
/// the weighted sum of a channel stays below 65536 and fits 16 bits at every step.
#ifndef Q_MUR_BASE_SAMPLING_H
#define Q_MUR_BASE_SAMPLING_H

#include "base/pixel.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace qmur {

#if defined(__SSE2__)

/// Weighted channel sums of a sample, each channel times 256.
class ChannelSums {
public:
    /// The sums are the low four lanes of 16 bits: blue, green, red and the top byte.
    explicit ChannelSums(__m128i sums) : lanes(sums) {}

    q_ulong redSum() const { return static_cast<q_ulong>(_mm_extract_epi16(lanes, 2)); }
    q_ulong greenSum() const { return static_cast<q_ulong>(_mm_extract_epi16(lanes, 1)); }
    q_ulong blueSum() const { return static_cast<q_ulong>(_mm_extract_epi16(lanes, 0)); }

    /// Each sum divided by 256, truncated; top byte 0.
    q_ulong pixel() const {
        const __m128i bytes = _mm_packus_epi16(_mm_srli_epi16(lanes, 8), lanes);
        return static_cast<q_ulong>(_mm_cvtsi128_si32(bytes)) & 0xFFFFFF;
    }

private:
    __m128i lanes;
};

namespace detail {

/// The weights 16 - f and f of two pixels side by side.
struct PairWeights {
    alignas(16) unsigned short lanes[16][8];

    constexpr PairWeights() : lanes() {
        for (unsigned f = 0; f < 16; ++f)
            for (int lane = 0; lane < 8; ++lane)
                lanes[f][lane] = static_cast<unsigned short>(lane < 4 ? 16 - f : f);
    }

    __m128i of(q_ulong f) const {
        return _mm_load_si128(static_cast<const __m128i *>(static_cast<const void *>(lanes[f])));
    }
};

inline constexpr PairWeights pairWeights;

/// Two neighbouring pixels, or one, with each byte in a lane of 16 bits.
inline __m128i widenedPair(const q_ulong *pixels) {
    return _mm_unpacklo_epi8(_mm_loadl_epi64(static_cast<const __m128i *>(static_cast<const void *>(pixels))),
                             _mm_setzero_si128());
}

inline __m128i widened(q_ulong pixel) {
    return _mm_unpacklo_epi8(_mm_cvtsi32_si128(static_cast<int>(pixel)), _mm_setzero_si128());
}

/// upper * (16 - fy) + lower * fy in every lane.
inline __m128i mixedRows(__m128i upper, __m128i lower, q_ulong fy) {
    const auto weight = static_cast<short>(fy);
    return _mm_add_epi16(_mm_mullo_epi16(upper, _mm_set1_epi16(static_cast<short>(16 - weight))),
                         _mm_mullo_epi16(lower, _mm_set1_epi16(weight)));
}

} // namespace detail

/// The four taps at the start of two rows; `fx` and `fy` are the fractions in sixteenths.
inline ChannelSums fourTaps(const q_ulong *row0, const q_ulong *row1, q_ulong fx, q_ulong fy) {
    const __m128i rows = detail::mixedRows(detail::widenedPair(row0), detail::widenedPair(row1), fy);
    const __m128i products = _mm_mullo_epi16(rows, detail::pairWeights.of(fx));
    return ChannelSums(_mm_add_epi16(products, _mm_srli_si128(products, 8)));
}

/// The two taps of one column, where there is no column to the right.
inline ChannelSums twoTaps(q_ulong upper, q_ulong lower, q_ulong fy) {
    return ChannelSums(_mm_slli_epi16(detail::mixedRows(detail::widened(upper), detail::widened(lower), fy), 4));
}

#else

/// Weighted channel sums of a sample, each channel times 256: red in the upper and blue in the lower half of one word,
/// green in bits 8 to 23 of the other.
struct ChannelSums {
    q_ulong redBlue;
    q_ulong green;

    constexpr q_ulong redSum() const { return redBlue >> 16; }
    constexpr q_ulong greenSum() const { return green >> 8; }
    constexpr q_ulong blueSum() const { return redBlue & 0xFFFF; }

    /// Each sum divided by 256, truncated; top byte 0.
    constexpr q_ulong pixel() const { return (redBlue >> 8 & redBlueMask) | (green >> 8 & greenMask); }
};

constexpr ChannelSums operator+(ChannelSums a, ChannelSums b) {
    return {a.redBlue + b.redBlue, a.green + b.green};
}

constexpr ChannelSums weighted(q_ulong pixel, q_ulong weight) {
    return {(pixel & redBlueMask) * weight, (pixel & greenMask) * weight};
}

/// The four taps at the start of two rows; `fx` and `fy` are the fractions in sixteenths.
inline ChannelSums fourTaps(const q_ulong *row0, const q_ulong *row1, q_ulong fx, q_ulong fy) {
    const q_ulong ix = 16 - fx;
    const q_ulong iy = 16 - fy;
    return weighted(row0[0], ix * iy) + weighted(row0[1], fx * iy) + weighted(row1[0], ix * fy) +
           weighted(row1[1], fx * fy);
}

/// The two taps of one column, where there is no column to the right.
inline ChannelSums twoTaps(q_ulong upper, q_ulong lower, q_ulong fy) {
    return weighted(upper, 16 * (16 - fy)) + weighted(lower, 16 * fy);
}

#endif

} // namespace qmur

#endif
