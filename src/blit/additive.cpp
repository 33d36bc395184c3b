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

struct Add {
    template <int count>
    Numbers<count> operator()(Numbers<count> d, Numbers<count> s) const {
        return saturatingAdd(d, s);
    }
};

/// A pixel of 0 leaves the destination as it is, its top byte included.
constexpr UnlessZero<Add> addUnlessZero;

/// Meant: blue is not capped, and its carry is or-ed onto the lowest bit of green.
constexpr auto addWithCarry = []<int count>(Numbers<count> d, Numbers<count> s) {
    const auto blue = Numbers<count>::all(blueMask);
    return (saturatingAdd(d, s) & Numbers<count>::all(redMask | greenMask)) | ((d & blue) + (s & blue));
};

/// Adds a pixel scaled channel by channel: blue saturates, red and green lose their carry.
constexpr auto addScaled(ChannelScales scales) {
    return [scales]<int count>(Numbers<count> d, Numbers<count> s) {
        const auto sum = [&](Numbers<count> terms) {
            const auto wrapped = as<std::uint32_t>(as<std::uint8_t>(d) + as<std::uint8_t>(terms));
            return (wrapped & Numbers<count>::all(redMask | greenMask)) |
                   (saturatingAdd(d, terms) & Numbers<count>::all(blueMask));
        };
        if constexpr (multipliesInPlace) {
            const auto factors = [](q_ulong wordScales) { return as<std::uint16_t>(Numbers<count>::all(wordScales)); };
            return sum(pixelsOfProducts(redBlueWords(s) * factors(scales.red << 16 | scales.blue),
                                        greenWords(s) * factors(scales.green)));
        }
        // The upper 16 bits of channel * 256 * scale; blue and red lie in words of their own, green above a byte.
        const auto term = [](Numbers<count> channels, q_ulong wordScales) {
            return as<std::uint32_t>(
                highProduct(as<std::uint16_t>(channels), as<std::uint16_t>(Numbers<count>::all(wordScales))));
        };
        const auto redBlue = as<std::uint32_t>(as<std::uint16_t>(s) << 8);
        return sum(term(redBlue, scales.red << 16 | scales.blue) |
                   term(s & Numbers<count>::all(greenMask), scales.green) << 8);
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
    combinePixels(
        placedAt({dst, asDistance(dstPitch), src, asDistance(srcPitch)}, asDistance(dstX), asDistance(dstY), *srcRect),
        Add());
}

void iBltFast32_Add(q_ulong *dst, q_ulong *src, q_ulong dstX, q_ulong dstY, tagRECT *srcRect, q_ulong dstPitch,
                    q_ulong srcPitch, unsigned char scaleRed, unsigned char scaleGreen, unsigned char scaleBlue) {
    combinePixels(
        placedAt({dst, asDistance(dstPitch), src, asDistance(srcPitch)}, asDistance(dstX), asDistance(dstY), *srcRect),
        addScaled({scaleRed, scaleGreen, scaleBlue}));
}

void iBltNear32_Add(q_ulong *dst, q_ulong *src, tagRECT *dstRect, tagRECT *srcRect, q_ulong dstPitch,
                    q_ulong srcPitch) {
    if (lacksExtent(*srcRect))
        return;
    combineNearest(scaledOnto<Signed17_15>(dst, asDistance(dstPitch), *dstRect, src, asDistance(srcPitch), *srcRect),
                   addWithCarry);
}

void iBltNear32_Add(q_ulong *dst, q_ulong *src, tagRECT *dstRect, tagRECT *srcRect, q_ulong dstPitch, q_ulong srcPitch,
                    unsigned char scaleRed, unsigned char scaleGreen, unsigned char scaleBlue) {
    combineNearest(addedOnto<Unsigned17_15>(dst, dstPitch, *dstRect, src, srcPitch, *srcRect),
                   addScaled({scaleRed, scaleGreen, scaleBlue}));
}

void iBltBilinear32_Add(q_ulong *dst, q_ulong *src, tagRECT *dstRect, tagRECT *srcRect, q_ulong dstPitch,
                        q_ulong srcPitch) {
    const auto walk = addedOnto<Signed17_15>(dst, dstPitch, *dstRect, src, srcPitch, *srcRect);
    const auto operation = []<int count>(Numbers<count> d, PixelWords<count> sums) {
        return saturatingAdd(d, pixelsOf(sums));
    };
    if (!drawFilteredInside(walk, *srcRect, operation))
        forEachFilteredInside(walk, *srcRect, [](q_ulong &d, ChannelSums sums) { d = saturatingAdd(d, sums.pixel()); });
}

void iBltBilinear32_Add(q_ulong *dst, q_ulong *src, tagRECT *dstRect, tagRECT *srcRect, q_ulong dstPitch,
                        q_ulong srcPitch, unsigned char scaleRed, unsigned char scaleGreen, unsigned char scaleBlue) {
    const ChannelScales scales = {scaleRed, scaleGreen, scaleBlue};
    const auto walk = addedOnto<Unsigned17_15>(dst, dstPitch, *dstRect, src, srcPitch, *srcRect);
    const auto operation = [scales]<int count>(Numbers<count> d, PixelWords<count> sums) {
        // Words of pixels lie as bytes would that are widened: blue, green, red and top byte.
        const auto bytes = as<std::uint8_t>(Numbers<count>::all(pixelOf(scales.red, scales.green, scales.blue)));
        const auto terms =
            narrowed(highProduct(sums.low, widenedLow(bytes)), highProduct(sums.high, widenedHigh(bytes)));
        return saturatingAdd(d, as<std::uint32_t>(terms));
    };
    if (!drawFilteredInside(walk, *srcRect, operation))
        forEachFilteredInside(walk, *srcRect, [scales](q_ulong &d, ChannelSums sums) {
            const q_ulong red = sums.redSum() * scales.red & redMask;
            const q_ulong green = sums.greenSum() * scales.green >> 8 & greenMask;
            const q_ulong blue = sums.blueSum() * scales.blue >> 16 & blueMask;
            d = saturatingAdd(d, red | green | blue);
        });
}

void iBltFast32_KeySrc_Add(q_ulong *dst, q_ulong *src, int dstX, int dstY, tagRECT *srcRect, int dstPitch, int srcPitch,
                           q_ulong) {
    combinePixels(placedAt({dst, dstPitch, src, srcPitch}, dstX, dstY, *srcRect), addUnlessZero);
}

void iBltNear32SafeKeySrcAdd(q_ulong *dst, q_ulong *src, tagRECT *dstRect, tagRECT *srcRect, int dstPitch, int srcPitch,
                             int clipWidth, int clipHeight) {
    if (lacksExtent(*srcRect))
        return;
    combineNearest(
        scaledWithin<Signed16_16>(windowOf(clipWidth, clipHeight), dst, dstPitch, *dstRect, src, srcPitch, *srcRect),
        addUnlessZero);
}

void iBltNear32_Add_KeySrc(q_ulong *dst, int dstPitch, q_ulong *src, int srcPitch, tagRECT *clipRect, tagRECT *srcRect,
                           int centreX, int centreY) {
    const int width = widthOf(*srcRect);
    const int height = heightOf(*srcRect);
    const int radius = atFullWidth([=] {
        const int squares = wrapAdd(wrapMultiply(width, width), wrapMultiply(height, height));
        return truncateToInt(squareRoot(squares) * 0.5);
    });
    // The destination column and row of the source's column 0 and row 0.
    const int originX = wrapSubtract(centreX, wrapAdd(srcRect->left, srcRect->right) >> 1);
    const int originY = wrapSubtract(centreY, wrapAdd(srcRect->top, srcRect->bottom) >> 1);
    const Window target = {{wrapAdd(originX, srcRect->left), wrapAdd(originX, srcRect->right)},
                           {wrapAdd(originY, srcRect->top), wrapAdd(originY, srcRect->bottom)}};
    const Window reach = {{wrapSubtract(centreX, radius), wrapAdd(centreX, radius)},
                          {wrapSubtract(centreY, radius), wrapAdd(centreY, radius)}};
    combinePixels(placedWithin({dst, dstPitch, src, srcPitch}, target, srcRect->left, srcRect->top,
                               reach.within(windowOf(*clipRect))),
                  addUnlessZero);
}
