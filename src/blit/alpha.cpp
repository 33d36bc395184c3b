#include "base/four_pixels.h"
#include "base/one_pixel.h"
#include "q_Mur/blit.h"
#include "walks/placed.h"
#include "walks/scaled.h"

namespace {

using namespace qmur;

/// Source over destination with the same weights for every pixel.
struct ConstantBlend {
    AlphaWeights weights;

    explicit ConstantBlend(float alpha) : weights(alphaWeights(alpha)) {}

    q_ulong one(q_ulong d, q_ulong s) const { return blend256(d, weights.dst, s, weights.src); }
#if defined(__SSE2__)
    FourPixels four(FourPixels d, FourPixels s) const {
        const LaneWeights lanes = {_mm_set1_epi16(static_cast<short>(weights.src)),
                                   _mm_set1_epi16(static_cast<short>(weights.dst))};
        return blendFour(d, s, [lanes](__m128i) { return lanes; });
    }
#endif
};

/// Leaves the destination as it is where the source is 0.
template <class Operation>
struct UnlessZero {
    Operation operation;

    q_ulong one(q_ulong d, q_ulong s) const { return s == 0 ? d : operation.one(d, s); }
#if defined(__SSE2__)
    FourPixels four(FourPixels d, FourPixels s) const {
        return selectEqual(s, _mm_setzero_si128(), d, operation.four(d, s));
    }
#endif
};

/// Source over destination by the top byte of each source pixel; the weights add up to `total`.
template <int total>
struct ChannelBlend {
    q_ulong one(q_ulong d, q_ulong s) const {
        const q_ulong alpha = topByteOf(s);
        return blend256(d, total - alpha, s, alpha);
    }
#if defined(__SSE2__)
    FourPixels four(FourPixels d, FourPixels s) const {
        return blendFour(d, s, [](__m128i lanes) {
            const __m128i alpha = topByteInLanes(lanes);
            return LaneWeights{alpha, _mm_sub_epi16(_mm_set1_epi16(total), alpha)};
        });
    }
#endif
};

/// Meant: the weights add up to 255, which leaves the blend slightly dark; a pixel of alpha 255 is copied whole.
struct ChannelBlendOrCopy : ChannelBlend<255> {
    q_ulong one(q_ulong d, q_ulong s) const { return topByteOf(s) == 255 ? s : ChannelBlend::one(d, s); }
#if defined(__SSE2__)
    FourPixels four(FourPixels d, FourPixels s) const {
        return selectEqual(_mm_srli_epi32(s, 24), _mm_set1_epi32(255), s, ChannelBlend::four(d, s));
    }
#endif
};

/// Leaves the destination as it is where the source's alpha is 0.
struct ChannelBlendUnlessClear : ChannelBlend<256> {
    q_ulong one(q_ulong d, q_ulong s) const { return topByteOf(s) == 0 ? d : ChannelBlend::one(d, s); }
#if defined(__SSE2__)
    FourPixels four(FourPixels d, FourPixels s) const {
        return selectEqual(_mm_srli_epi32(s, 24), _mm_setzero_si128(), d, ChannelBlend::four(d, s));
    }
#endif
};

/// Draws with constant weights; those outside 0 to 256 are left to the masks, pixel by pixel.
template <class Operation>
void combineConstant(const Placement &placement, const ConstantBlend &blend, Operation operation) {
    if (blend.weights.areWithinRange())
        combineRows(placement, operation);
    else
        forEachPixel(placement, [operation](q_ulong &d, q_ulong s) { d = operation.one(d, s); });
}

/// The non-empty pixels in the 3 by 3 block around a pixel, itself included.
int neighbourCount(const q_ulong *s, Distance pitch) {
    int count = 0;
    for (const q_ulong *row : {s - pitch, s, s + pitch})
        count += (row[-1] != 0) + (row[0] != 0) + (row[1] != 0);
    return count;
}

} // namespace

void iBltFast32Alpha(q_ulong *dst, q_ulong *src, int offsetX, int offsetY, tagRECT *rect, int dstPitch, int srcPitch,
                     float alpha) {
    const tagRECT moved = {wrapAdd(rect->left, offsetX), wrapAdd(rect->top, offsetY), wrapAdd(rect->right, offsetX),
                           wrapAdd(rect->bottom, offsetY)};
    const ConstantBlend blend(alpha);
    combineConstant(placedAt({dst, dstPitch, src, srcPitch}, moved.left, moved.top, moved), blend, blend);
}

void iBltBilinear32_Alpha(q_ulong *dst, q_ulong *src, tagRECT *dstRect, tagRECT *srcRect, q_ulong dstPitch,
                          q_ulong srcPitch, float alpha) {
    if (isEmpty(*srcRect))
        return;
    const AlphaWeights weights = alphaWeights(alpha);
    const auto walk =
        scaledOnto<Unsigned12_20>(dst, asDistance(dstPitch), *dstRect, src, asDistance(srcPitch), *srcRect);
    if (weights.areWithinRange())
        forEachFiltered(walk,
                        [blend = OnePixelBlend(weights)](q_ulong &d, ChannelSums sums) { d = blend(d, sums.pixel()); });
    else
        forEachFiltered(walk, [weights](q_ulong &d, ChannelSums sums) {
            const q_ulong s = sums.pixel();
            // Meant: blue is not masked. Outside 0 to 1 it runs over into green and red, but not into the top byte.
            d = mixedRedGreen(d, s, weights) | weightedByte(blueOf(d), blueOf(s), weights) >> 8;
        });
}

void iBltFast32_KeySrc_AlphaFast(q_ulong *dst, q_ulong *src, int dstX, int dstY, tagRECT *srcRect, int dstPitch,
                                 int srcPitch, q_ulong) {
    forEachPixel(placedAt({dst, dstPitch, src, srcPitch}, dstX, dstY, *srcRect),
                 [](q_ulong &d, q_ulong s) { d = s == 0 ? d : halfMix(d, s); });
}

void iBltFast32_KeySrc_Alpha(q_ulong *dst, q_ulong *src, int dstX, int dstY, tagRECT *srcRect, int dstPitch,
                             int srcPitch, q_ulong, float alpha) {
    const ConstantBlend blend(alpha);
    combineConstant(placedAt({dst, dstPitch, src, srcPitch}, dstX, dstY, *srcRect), blend,
                    UnlessZero<ConstantBlend>{blend});
}

void iBltFast32SafeAlpha_Channel(q_ulong *dst, q_ulong *src, int centreX, int centreY, tagRECT *srcRect, int dstPitch,
                                 int srcPitch, int clipWidth, int clipHeight) {
    combineRows(centredAt({dst, dstPitch, src, srcPitch}, centreX, centreY, *srcRect, windowOf(clipWidth, clipHeight)),
                UnlessZero<ChannelBlendOrCopy>{});
}

void iBltFast32SafeKeySrcAntiAliasing(q_ulong *dst, q_ulong *src, int centreX, int centreY, tagRECT *srcRect,
                                      int dstPitch, int srcPitch, int clipWidth, int clipHeight) {
    Window target = {centredSpan(centreX, widthOf(*srcRect)), centredSpan(centreY, heightOf(*srcRect))};
    target.rows.end = wrapSubtract(target.rows.end, 1);
    const Placement placement = placedWithin({dst, dstPitch, src, srcPitch}, target, srcRect->left, srcRect->top,
                                             windowOf(clipWidth, clipHeight));
    forEachPixel(placement, [pitch = placement.srcPitch](q_ulong &d, const q_ulong &s) {
        if (s == 0)
            return;
        const q_ulong *const around = &s;
        if (around[-1] != 0 && around[1] != 0 && around[-pitch] != 0 && around[pitch] != 0) {
            d = s;
            return;
        }
        // Of up to eight pixels the highest coverages exceed 256; the products wrap under their masks.
        const auto coverage = static_cast<q_ulong>(42 * (neighbourCount(around, pitch) - 1));
        d = blend256(d, 256 - coverage, s, coverage);
    });
}

void iBltFast32AlphaChannelSafe(q_ulong *dst, q_ulong *src, int dstX, int dstY, tagRECT *srcRect, tagRECT *clipRect,
                                int dstPitch, int srcPitch) {
    const Window target = {{dstX, wrapAdd(dstX, widthOf(*srcRect))}, {dstY, wrapAdd(dstY, heightOf(*srcRect))}};
    // Only the size of the source rectangle counts: reading starts at the surface's own corner.
    combineRows(placedWithin({dst, dstPitch, src, srcPitch}, target, 0, 0, windowOf(*clipRect)),
                ChannelBlendUnlessClear{});
}
