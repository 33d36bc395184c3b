/// \file
/// Pixel arithmetic for walks that meet one pixel at a time: all channels at once, in the lanes of one register.
#ifndef Q_MUR_BASE_ONE_PIXEL_H
#define Q_MUR_BASE_ONE_PIXEL_H

#include "base/alpha.h"
#include "base/pixel.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace qmur {

#if defined(__SSE2__)

namespace detail {

inline __m128i loaded(q_ulong pixel) {
    return _mm_cvtsi32_si128(static_cast<int>(pixel));
}
inline q_ulong stored(__m128i pixel) {
    return static_cast<q_ulong>(_mm_cvtsi128_si32(pixel));
}

} // namespace detail

/// min(d + s, 255) in each byte, the top one included.
inline q_ulong saturatingBytes(q_ulong d, q_ulong s) {
    return detail::stored(_mm_adds_epu8(detail::loaded(d), detail::loaded(s)));
}

/// blend256() with weights from 0 to 256.
class OnePixelBlend {
public:
    explicit OnePixelBlend(AlphaWeights weights) {
        const auto src = static_cast<short>(weights.src);
        const auto dst = static_cast<short>(weights.dst);
        pairs = _mm_set_epi16(0, 0, src, dst, src, dst, src, dst);
    }

    q_ulong operator()(q_ulong d, q_ulong s) const {
        // The two bytes of a channel side by side become its weighted sum.
        const __m128i bytes = _mm_unpacklo_epi8(detail::loaded(d), detail::loaded(s));
        const __m128i sums = _mm_madd_epi16(_mm_unpacklo_epi8(bytes, _mm_setzero_si128()), pairs);
        const __m128i means = _mm_srli_epi32(sums, 8);
        return detail::stored(_mm_packus_epi16(_mm_packs_epi32(means, means), means));
    }

private:
    __m128i pairs; ///< the weights of destination and source, for each channel; the top byte's are 0
};

#else

/// min(d + s, 255) in each byte, the top one included.
constexpr q_ulong saturatingBytes(q_ulong d, q_ulong s) {
    const q_ulong top = topByteOf(d) + topByteOf(s);
    return saturatingAdd(d, s) | (top > 255 ? 255 : top) << 24;
}

/// blend256() with weights from 0 to 256.
class OnePixelBlend {
public:
    constexpr explicit OnePixelBlend(AlphaWeights of) : weights(of) {}

    constexpr q_ulong operator()(q_ulong d, q_ulong s) const { return blend256(d, weights.dst, s, weights.src); }

private:
    AlphaWeights weights;
};

#endif

} // namespace qmur

#endif
