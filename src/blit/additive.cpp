#include "base/channels.h"
#include "base/wide.h"
#include "q_Mur/blit.h"
#include "walks/placed.h"
#include "walks/scaled.h"

namespace {

using namespace qmur;

/// Brightness factors of the scaled adds, in 1/256.
struct ChannelScales {
    q_ulong red;
    q_ulong green;
    q_ulong blue;
};

constexpr auto addPixel = [](q_ulong &d, q_ulong s) { d = saturatingAdd(d, s); };

/// A pixel of 0 leaves the destination as it is, its top byte included.
constexpr auto addUnlessZero = [](q_ulong &d, q_ulong s) { d = s == 0 ? d : saturatingAdd(d, s); };

/// Adds a pixel scaled channel by channel: blue saturates, red and green lose their carry.
constexpr auto addScaled(ChannelScales scales) {
    return [scales](q_ulong &d, q_ulong s) {
        const q_ulong red = (d & redMask) + ((s & redMask) * scales.red >> 8);
        const q_ulong green = (d & greenMask) + ((s & greenMask) * scales.green >> 8);
        const q_ulong blue = (d & blueMask) + ((s & blueMask) * scales.blue >> 8);
        d = (red & redMask) | (green & greenMask) | (blue > blueMask ? blueMask : blue);
    };
}

/// Whether a source is without pixels. One whose end lies before its start is none: it is walked left or up.
bool lacksExtent(const tagRECT &srcRect) {
    return srcRect.left == srcRect.right || srcRect.top == srcRect.bottom;
}

/// The walk of a scaled add. Unlike in the scaling copies, a source without pixels adds nothing.
template <class Position>
ScaledWalk<Position> addedOnto(q_ulong *dst, q_ulong dstPitch, const tagRECT &dstRect, const q_ulong *src,
                               q_ulong srcPitch, const tagRECT &srcRect) {
    if (isEmpty(srcRect))
        return {};
    return scaledOnto<Position>(dst, asDistance(dstPitch), dstRect, src, asDistance(srcPitch), srcRect);
}

} // namespace

void iBltFast32_Add(q_ulong *dst, q_ulong *src, q_ulong dstX, q_ulong dstY, tagRECT *srcRect, q_ulong dstPitch,
                    q_ulong srcPitch) {
    forEachPixel(
        placedAt({dst, asDistance(dstPitch), src, asDistance(srcPitch)}, asDistance(dstX), asDistance(dstY), *srcRect),
        addPixel);
}

void iBltFast32_Add(q_ulong *dst, q_ulong *src, q_ulong dstX, q_ulong dstY, tagRECT *srcRect, q_ulong dstPitch,
                    q_ulong srcPitch, unsigned char scaleRed, unsigned char scaleGreen, unsigned char scaleBlue) {
    forEachPixel(
        placedAt({dst, asDistance(dstPitch), src, asDistance(srcPitch)}, asDistance(dstX), asDistance(dstY), *srcRect),
        addScaled({scaleRed, scaleGreen, scaleBlue}));
}

void iBltNear32_Add(q_ulong *dst, q_ulong *src, tagRECT *dstRect, tagRECT *srcRect, q_ulong dstPitch,
                    q_ulong srcPitch) {
    if (lacksExtent(*srcRect))
        return;
    forEachNearest(scaledOnto<Signed17_15>(dst, asDistance(dstPitch), *dstRect, src, asDistance(srcPitch), *srcRect),
                   [](q_ulong &d, q_ulong s) {
                       // Meant: blue is not capped, and its carry is or-ed onto the lowest bit of green.
                       d = (saturatingBytes(d, s) & (redMask | greenMask)) | (blueOf(d) + blueOf(s));
                   });
}

void iBltNear32_Add(q_ulong *dst, q_ulong *src, tagRECT *dstRect, tagRECT *srcRect, q_ulong dstPitch, q_ulong srcPitch,
                    unsigned char scaleRed, unsigned char scaleGreen, unsigned char scaleBlue) {
    forEachNearest(addedOnto<Unsigned17_15>(dst, dstPitch, *dstRect, src, srcPitch, *srcRect),
                   addScaled({scaleRed, scaleGreen, scaleBlue}));
}

void iBltBilinear32_Add(q_ulong *dst, q_ulong *src, tagRECT *dstRect, tagRECT *srcRect, q_ulong dstPitch,
                        q_ulong srcPitch) {
    forEachFilteredInside(addedOnto<Signed17_15>(dst, dstPitch, *dstRect, src, srcPitch, *srcRect), *srcRect,
                          [](q_ulong &d, ChannelSums sums) { d = saturatingAdd(d, sums.pixel()); });
}

void iBltBilinear32_Add(q_ulong *dst, q_ulong *src, tagRECT *dstRect, tagRECT *srcRect, q_ulong dstPitch,
                        q_ulong srcPitch, unsigned char scaleRed, unsigned char scaleGreen, unsigned char scaleBlue) {
    const ChannelScales scales = {scaleRed, scaleGreen, scaleBlue};
    forEachFilteredInside(addedOnto<Unsigned17_15>(dst, dstPitch, *dstRect, src, srcPitch, *srcRect), *srcRect,
                          [scales](q_ulong &d, ChannelSums sums) {
                              const q_ulong red = sums.redSum() * scales.red & redMask;
                              const q_ulong green = sums.greenSum() * scales.green >> 8 & greenMask;
                              const q_ulong blue = sums.blueSum() * scales.blue >> 16 & blueMask;
                              d = saturatingAdd(d, red | green | blue);
                          });
}

void iBltFast32_KeySrc_Add(q_ulong *dst, q_ulong *src, int dstX, int dstY, tagRECT *srcRect, int dstPitch, int srcPitch,
                           q_ulong) {
    forEachPixel(placedAt({dst, dstPitch, src, srcPitch}, dstX, dstY, *srcRect), addUnlessZero);
}

void iBltNear32SafeKeySrcAdd(q_ulong *dst, q_ulong *src, tagRECT *dstRect, tagRECT *srcRect, int dstPitch, int srcPitch,
                             int clipWidth, int clipHeight) {
    if (lacksExtent(*srcRect))
        return;
    forEachNearest(
        scaledWithin<Signed16_16>(windowOf(clipWidth, clipHeight), dst, dstPitch, *dstRect, src, srcPitch, *srcRect),
        addUnlessZero);
}

void iBltNear32_Add_KeySrc(q_ulong *dst, int dstPitch, q_ulong *src, int srcPitch, tagRECT *clipRect, tagRECT *srcRect,
                           int centreX, int centreY) {
    const int width = widthOf(*srcRect);
    const int height = heightOf(*srcRect);
    const int radius = atFullWidth([=] {
        const int squares = wrapAdd(wrapMultiply(width, width), wrapMultiply(height, height));
        return truncateToInt(squareRoot(squares) * 0.5L);
    });
    // The destination column and row of the source's column 0 and row 0.
    const int originX = wrapSubtract(centreX, wrapAdd(srcRect->left, srcRect->right) >> 1);
    const int originY = wrapSubtract(centreY, wrapAdd(srcRect->top, srcRect->bottom) >> 1);
    const Window target = {{wrapAdd(originX, srcRect->left), wrapAdd(originX, srcRect->right)},
                           {wrapAdd(originY, srcRect->top), wrapAdd(originY, srcRect->bottom)}};
    const Window reach = {{wrapSubtract(centreX, radius), wrapAdd(centreX, radius)},
                          {wrapSubtract(centreY, radius), wrapAdd(centreY, radius)}};
    forEachPixel(placedWithin({dst, dstPitch, src, srcPitch}, target, srcRect->left, srcRect->top,
                              reach.within(windowOf(*clipRect))),
                 addUnlessZero);
}
