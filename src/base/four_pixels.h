/// \file
/// Blends of four pixels at a time, in 16-bit lanes: the weights are 0 to 256, so no weighted sum leaves its lane.
#ifndef Q_MUR_BASE_FOUR_PIXELS_H
#define Q_MUR_BASE_FOUR_PIXELS_H

#include "walks/placed.h"

#include <cstdint>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace qmur {

#if defined(__SSE2__)

/// Four pixels side by side.
using FourPixels = __m128i;

inline FourPixels fourTimes(q_ulong pixel) {
    return _mm_set1_epi32(static_cast<int>(pixel));
}

/// `ifSo` where the pixel equals `value`, else `ifNot`.
inline FourPixels selectEqual(FourPixels pixels, FourPixels value, FourPixels ifSo, FourPixels ifNot) {
    const __m128i mask = _mm_cmpeq_epi32(pixels, value);
    return _mm_or_si128(_mm_and_si128(mask, ifSo), _mm_andnot_si128(mask, ifNot));
}

/// blend256() of four pixels. `weightsOf(s)` gives, for two source pixels in 16-bit lanes, the weights of source and
/// destination in the same lanes.
template <class WeightsOf>
FourPixels blendFour(FourPixels d, FourPixels s, WeightsOf weightsOf) {
    const __m128i zero = _mm_setzero_si128();
    const auto blendTwo = [&weightsOf](__m128i dLanes, __m128i sLanes) {
        const auto weights = weightsOf(sLanes);
        return _mm_srli_epi16(_mm_add_epi16(_mm_mullo_epi16(dLanes, weights.dst), _mm_mullo_epi16(sLanes, weights.src)),
                              8);
    };
    const __m128i low = blendTwo(_mm_unpacklo_epi8(d, zero), _mm_unpacklo_epi8(s, zero));
    const __m128i high = blendTwo(_mm_unpackhi_epi8(d, zero), _mm_unpackhi_epi8(s, zero));
    return _mm_and_si128(_mm_packus_epi16(low, high), fourTimes(0xFFFFFF));
}

/// Weights in 16-bit lanes.
struct LaneWeights {
    __m128i src;
    __m128i dst;
};

/// The top byte of each of two pixels in all of its lanes.
inline __m128i topByteInLanes(__m128i lanes) {
    return _mm_shufflehi_epi16(_mm_shufflelo_epi16(lanes, _MM_SHUFFLE(3, 3, 3, 3)), _MM_SHUFFLE(3, 3, 3, 3));
}

#endif

/// As forEachPixel(), with `operation.one(d, s)` for a pixel and `operation.four(d, s)` for four. A row whose
/// destination starts within four pixels behind its source feeds on what it has just written and is done pixel by
/// pixel.
template <class Operation>
void combineRows(const Placement &placement, Operation operation) {
    const auto [firstDst, dstPitch, firstSrc, srcPitch, width, height] = placement;
    for (Distance y = 0; y < height; ++y) {
        q_ulong *const dst = firstDst + y * dstPitch;
        const q_ulong *const src = firstSrc + y * srcPitch;
        Distance x = 0;
#if defined(__SSE2__)
        const auto ahead = reinterpret_cast<std::uintptr_t>(dst) - reinterpret_cast<std::uintptr_t>(src);
        const Distance wholeFours = ahead == 0 || ahead >= sizeof(FourPixels) ? width - 3 : 0;
        for (; x < wholeFours; x += 4) {
            auto *const to = static_cast<FourPixels *>(static_cast<void *>(dst + x));
            const auto *const from = static_cast<const FourPixels *>(static_cast<const void *>(src + x));
            _mm_storeu_si128(to, operation.four(_mm_loadu_si128(to), _mm_loadu_si128(from)));
        }
#endif
        for (; x < width; ++x)
            dst[x] = operation.one(dst[x], src[x]);
    }
}

} // namespace qmur

#endif
