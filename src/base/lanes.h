/// \file
/// Four numbers of 32 bits side by side: what a mapper walks at each pixel, and the channels of a pixel in the light.
#ifndef Q_MUR_BASE_LANES_H
#define Q_MUR_BASE_LANES_H

#include "base/integers.h"
#include "q_Mur/types.h"

#include <bit>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace qmur {

/// Unsigned, so that sums and products wrap.
using Lanes = unsigned __attribute__((vector_size(16)));

/// The same bits as signed numbers.
using SignedLanes = int __attribute__((vector_size(16)));

inline SignedLanes asSigned(Lanes lanes) {
    return std::bit_cast<SignedLanes>(lanes);
}

inline Lanes asUnsigned(SignedLanes lanes) {
    return std::bit_cast<Lanes>(lanes);
}

inline Lanes lanesOf(int a, int b, int c, int d) {
    return asUnsigned(SignedLanes{a, b, c, d});
}

/// One lane in all four.
template <int lane>
Lanes broadcast(Lanes lanes) {
    return __builtin_shufflevector(lanes, lanes, lane, lane, lane, lane);
}

/// Blue, green, red and the top byte.
inline Lanes channelsOf(q_ulong pixel) {
#if defined(__SSE2__)
    const __m128i zero = _mm_setzero_si128();
    const __m128i words = _mm_unpacklo_epi8(_mm_cvtsi32_si128(static_cast<int>(pixel)), zero);
    return std::bit_cast<Lanes>(_mm_unpacklo_epi16(words, zero));
#else
    const auto bits = static_cast<unsigned>(pixel);
    return Lanes{bits & 0xFF, bits >> 8 & 0xFF, bits >> 16 & 0xFF, bits >> 24};
#endif
}

/// The pixel of blue, green and red, capped above only: a negative channel spills over those above it.
inline q_ulong packedPixel(Lanes channels) {
#if defined(__SSE2__)
    const auto lanes = std::bit_cast<__m128i>(channels);
    const bool anyNegative = (_mm_movemask_ps(_mm_castsi128_ps(lanes)) & 7) != 0;
    if (!anyNegative) [[likely]] {
        const __m128i words = _mm_packs_epi32(lanes, lanes);
        return static_cast<q_ulong>(_mm_cvtsi128_si32(_mm_packus_epi16(words, words))) & 0xFFFFFF;
    }
#endif
    const auto capped = [channels](int lane) { return smaller(static_cast<int>(channels[lane]), 255); };
    return static_cast<q_ulong>(capped(2) << 16 | capped(1) << 8 | capped(0));
}

} // namespace qmur

#endif
