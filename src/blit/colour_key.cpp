#include "base/channels.h"
#include "q_Mur/blit.h"
#include "walks/placed.h"
#include "walks/scaled.h"

namespace {

using namespace qmur;

constexpr auto copyUnless(q_ulong key) {
    return
        [key]<int count>(Numbers<count> d, Numbers<count> s) { return selectEqual(s, Numbers<count>::all(key), d, s); };
}

} // namespace

void iBltFast32_KeySrc(q_ulong *dst, q_ulong *src, q_ulong dstX, q_ulong dstY, tagRECT *srcRect, q_ulong dstPitch,
                       q_ulong srcPitch, q_ulong key) {
    combinePixels(
        placedAt({dst, asDistance(dstPitch), src, asDistance(srcPitch)}, asDistance(dstX), asDistance(dstY), *srcRect),
        copyUnless(key));
}

void iBltNear32_KeySrc(q_ulong *dst, q_ulong *src, tagRECT *dstRect, tagRECT *srcRect, q_ulong dstPitch,
                       q_ulong srcPitch, q_ulong key) {
    combineNearest(scaledOnto<Unsigned17_15>(dst, asDistance(dstPitch), *dstRect, src, asDistance(srcPitch), *srcRect),
                   copyUnless(key));
}

void iBltBilinear32_KeySrc(q_ulong *dst, q_ulong *src, tagRECT *dstRect, tagRECT *srcRect, q_ulong dstPitch,
                           q_ulong srcPitch, q_ulong key) {
    // The key is compared with the filtered colour: only what filters to exactly the key is left out.
    const auto walk =
        scaledOnto<Unsigned17_15>(dst, asDistance(dstPitch), *dstRect, src, asDistance(srcPitch), *srcRect);
    const auto operation = [copy = copyUnless(key)]<int count>(Numbers<count> d, PixelWords<count> sums) {
        return copy(d, pixelsOf(sums));
    };
    if (!drawFilteredInside(walk, *srcRect, operation))
        forEachFilteredInside(walk, *srcRect, [key](q_ulong &d, ChannelSums sums) {
            const q_ulong s = sums.pixel();
            d = s == key ? d : s;
        });
}

void iBltFast32SafeKeySrc(q_ulong *dst, q_ulong *src, int centreX, int centreY, tagRECT *srcRect, int dstPitch,
                          int srcPitch, int clipWidth, int clipHeight) {
    combinePixels(
        centredAt({dst, dstPitch, src, srcPitch}, centreX, centreY, *srcRect, windowOf(clipWidth, clipHeight)),
        copyUnless(0));
}
