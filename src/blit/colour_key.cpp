#include "q_Mur/blit.h"
#include "walks/placed.h"
#include "walks/scaled.h"

namespace {

using namespace qmur;

constexpr auto copyUnless(q_ulong key) {
    return [key](q_ulong &d, q_ulong s) { d = s == key ? d : s; };
}

} // namespace

void iBltFast32_KeySrc(q_ulong *dst, q_ulong *src, q_ulong dstX, q_ulong dstY, tagRECT *srcRect, q_ulong dstPitch,
                       q_ulong srcPitch, q_ulong key) {
    forEachPixel(
        placedAt({dst, asDistance(dstPitch), src, asDistance(srcPitch)}, asDistance(dstX), asDistance(dstY), *srcRect),
        copyUnless(key));
}

void iBltNear32_KeySrc(q_ulong *dst, q_ulong *src, tagRECT *dstRect, tagRECT *srcRect, q_ulong dstPitch,
                       q_ulong srcPitch, q_ulong key) {
    forEachNearest(scaledOnto<Unsigned17_15>(dst, asDistance(dstPitch), *dstRect, src, asDistance(srcPitch), *srcRect),
                   copyUnless(key));
}

void iBltBilinear32_KeySrc(q_ulong *dst, q_ulong *src, tagRECT *dstRect, tagRECT *srcRect, q_ulong dstPitch,
                           q_ulong srcPitch, q_ulong key) {
    // The key is compared with the filtered colour: only what filters to exactly the key is left out.
    forEachFilteredInside(
        scaledOnto<Unsigned17_15>(dst, asDistance(dstPitch), *dstRect, src, asDistance(srcPitch), *srcRect), *srcRect,
        [store = copyUnless(key)](q_ulong &d, ChannelSums sums) { store(d, sums.pixel()); });
}

void iBltFast32SafeKeySrc(q_ulong *dst, q_ulong *src, int centreX, int centreY, tagRECT *srcRect, int dstPitch,
                          int srcPitch, int clipWidth, int clipHeight) {
    forEachPixel(centredAt({dst, dstPitch, src, srcPitch}, centreX, centreY, *srcRect, windowOf(clipWidth, clipHeight)),
                 copyUnless(0));
}
