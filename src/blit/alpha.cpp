#include "base/channels.h"
#include "q_Mur/blit.h"
#include "walks/placed.h"
#include "walks/scaled.h"

namespace {

using namespace qmur;

/// With weights beyond 0 to 256: the products wrap, and the masks decide.
constexpr auto wrappedBlend(AlphaWeights weights) {
    return [weights](q_ulong d, q_ulong s) { return blend256(d, weights.dst, s, weights.src); };
}

struct HalfMix {
    template <int count>
    Numbers<count> operator()(Numbers<count> d, Numbers<count> s) const {
        const auto half = [](Numbers<count> pixels) { return pixels >> 1 & Numbers<count>::all(0x7F7F7F); };
        return half(d) + half(s);
    }
};

/// Source over destination by the top byte of each source pixel; the weights add up to `total`. Where they are to add
/// up to 256, an alpha of 0 gives no pixel.
template <int total>
struct ChannelBlend {
    template <int count>
    Numbers<count> operator()(Numbers<count> d, Numbers<count> s) const {
        if constexpr (sumsPairs) {
            return blendByShares<total>(d, s, fourthInFours(as<std::uint8_t>(s)));
        } else {
            return blendPixels(d, s, []<int words>(Words<words> channels) {
                const Words<words> alpha = fourthInFours(channels);
                return WordWeights<words>{alpha, Words<words>::all(total) - alpha};
            });
        }
    }
};

/// Meant: the weights add up to 255, which leaves the blend slightly dark; a pixel of alpha 255 is copied whole.
struct ChannelBlendOrCopy {
    template <int count>
    Numbers<count> operator()(Numbers<count> d, Numbers<count> s) const {
        return selectEqual(s >> 24, Numbers<count>::all(255), s, ChannelBlend<255>()(d, s));
    }
};

/// Leaves the destination as it is where the source's alpha is 0.
struct ChannelBlendUnlessClear {
    template <int count>
    Numbers<count> operator()(Numbers<count> d, Numbers<count> s) const {
        return selectEqual(s >> 24, Numbers<count>::all(0), d, ChannelBlend<256>()(d, s));
    }
};

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
    const AlphaWeights weights = alphaWeights(alpha);
    const Placement placement = placedAt({dst, dstPitch, src, srcPitch}, moved.left, moved.top, moved);
    if (weights.areWithinRange())
        withBlend(weights, [&placement](auto blend) { combinePixels(placement, blend); });
    else
        forEachPixel(placement, [blend = wrappedBlend(weights)](q_ulong &d, q_ulong s) { d = blend(d, s); });
}

void iBltBilinear32_Alpha(q_ulong *dst, q_ulong *src, tagRECT *dstRect, tagRECT *srcRect, q_ulong dstPitch,
                          q_ulong srcPitch, float alpha) {
    if (isEmpty(*srcRect))
        return;
    const AlphaWeights weights = alphaWeights(alpha);
    const auto walk =
        scaledOnto<Unsigned12_20>(dst, asDistance(dstPitch), *dstRect, src, asDistance(srcPitch), *srcRect);
    if (weights.areWithinRange())
        withBlend(weights, [&](auto blend) {
            const auto operation = [blend]<int count>(Numbers<count> d, PixelWords<count> sums) {
                return blend(d, pixelsOf(sums));
            };
            if (!drawFiltered(walk, operation))
                forEachFiltered(
                    walk, [mix = PixelBlend(weights)](q_ulong &d, ChannelSums sums) { d = mix(d, sums.pixel()); });
        });
    else
        forEachFiltered(walk, [weights](q_ulong &d, ChannelSums sums) {
            const q_ulong s = sums.pixel();
            // Meant: blue is not masked. Outside 0 to 1 it runs over into green and red, but not into the top byte.
            d = mixedRedGreen(d, s, weights) | weightedByte(blueOf(d), blueOf(s), weights) >> 8;
        });
}

void iBltFast32_KeySrc_AlphaFast(q_ulong *dst, q_ulong *src, int dstX, int dstY, tagRECT *srcRect, int dstPitch,
                                 int srcPitch, q_ulong) {
    combinePixels(placedAt({dst, dstPitch, src, srcPitch}, dstX, dstY, *srcRect), UnlessZero<HalfMix>());
}

void iBltFast32_KeySrc_Alpha(q_ulong *dst, q_ulong *src, int dstX, int dstY, tagRECT *srcRect, int dstPitch,
                             int srcPitch, q_ulong, float alpha) {
    const AlphaWeights weights = alphaWeights(alpha);
    const Placement placement = placedAt({dst, dstPitch, src, srcPitch}, dstX, dstY, *srcRect);
    if (weights.areWithinRange())
        withBlend(weights,
                  [&placement]<class Blend>(Blend blend) { combinePixels(placement, UnlessZero<Blend>{blend}); });
    else
        forEachPixel(placement,
                     [blend = wrappedBlend(weights)](q_ulong &d, q_ulong s) { d = s == 0 ? d : blend(d, s); });
}

void iBltFast32SafeAlpha_Channel(q_ulong *dst, q_ulong *src, int centreX, int centreY, tagRECT *srcRect, int dstPitch,
                                 int srcPitch, int clipWidth, int clipHeight) {
    combinePixels(
        centredAt({dst, dstPitch, src, srcPitch}, centreX, centreY, *srcRect, windowOf(clipWidth, clipHeight)),
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
    combinePixels(placedWithin({dst, dstPitch, src, srcPitch}, target, 0, 0, windowOf(*clipRect)),
                  ChannelBlendUnlessClear{});
}
