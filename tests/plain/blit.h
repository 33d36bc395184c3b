/// \file
/// The unscaled blits once more, pixel by pixel and without regard to speed; the scaled ones stand in scaled_blit.h.
#ifndef Q_MUR_TESTS_PLAIN_BLIT_H
#define Q_MUR_TESTS_PLAIN_BLIT_H

#include "real.h"
#include "words.h"

namespace plain {

// What happens to a pixel: each gets the destination's and the source's.

constexpr auto copied = [](q_ulong &d, q_ulong s) { d = s; };

constexpr auto added = [](q_ulong &d, q_ulong s) { d = saturatedSum(d, s); };

/// Leaves the destination as it is where the source equals a key, in all 32 bits.
template <class Store>
auto unless(q_ulong key, Store store) {
    return [key, store](q_ulong &d, q_ulong s) {
        if (s != key)
            store(d, s);
    };
}

/// Adds the source channels times scale / 256. Blue is capped, red and green drop their carry.
inline auto addedScaled(Number scaleRed, Number scaleGreen, Number scaleBlue) {
    return [=](q_ulong &d, q_ulong s) {
        d = pixelOf((redOf(d) + redOf(s) * scaleRed / 256) % 256, (greenOf(d) + greenOf(s) * scaleGreen / 256) % 256,
                    std::min<Number>(255, blueOf(d) + blueOf(s) * scaleBlue / 256));
    };
}

/// Each channel in its place under its mask, in 32 bits.
inline q_ulong blended(q_ulong d, Number dWeight, q_ulong s, Number sWeight) {
    const auto sum = [&](Number mask) {
        return unsigned32((static_cast<Number>(d) & mask) * dWeight + (static_cast<Number>(s) & mask) * sWeight);
    };
    return word(((sum(0xFF0000) & 0xFF0000FF) | (sum(0xFF00) & 0xFF0000) | sum(0xFF)) / 256);
}

inline auto blendedBy(float alpha) {
    const Number weight = weightOf(alpha);
    return [weight](q_ulong &d, q_ulong s) { d = blended(d, 256 - weight, s, weight); };
}

// Walks: rows top to bottom and columns left to right.

/// An area of the source with its corner on (dstX, dstY), inside `clip`.
template <class Store>
void forPlaced(Pixels dst, Number dstX, Number dstY, Pixels src, const tagRECT &rect, const tagRECT &clip,
               Store store) {
    for (Number y = std::max<Number>(dstY, clip.top); y < std::min<Number>(dstY + heightOf(rect), clip.bottom); ++y)
        for (Number x = std::max<Number>(dstX, clip.left); x < std::min<Number>(dstX + widthOf(rect), clip.right); ++x)
            store(dst.at(x, y), src.at(rect.left + x - dstX, rect.top + y - dstY));
}

template <class Store>
void forPlaced(Pixels dst, Number dstX, Number dstY, Pixels src, const tagRECT &rect, Store store) {
    for (Number y = 0; y < heightOf(rect); ++y)
        for (Number x = 0; x < widthOf(rect); ++x)
            store(dst.at(dstX + x, dstY + y), src.at(rect.left + x, rect.top + y));
}

/// An area of the source around a centre, without its last odd column and row and `rowsLeftOut` more; `store` gets the
/// destination's pixel, and the column and row of the source's.
template <class Store>
void forCentred(Pixels dst, Number centreX, Number centreY, const tagRECT &rect, Number rowsLeftOut, Number clipWidth,
                Number clipHeight, Store store) {
    const Number halfWidth = flooredQuotient(widthOf(rect), 2);
    const Number halfHeight = flooredQuotient(heightOf(rect), 2);
    const Number left = centreX - halfWidth;
    const Number top = centreY - halfHeight;
    for (Number y = std::max<Number>(top, 0); y < std::min(centreY + halfHeight - rowsLeftOut, clipHeight); ++y)
        for (Number x = std::max<Number>(left, 0); x < std::min(centreX + halfWidth, clipWidth); ++x)
            store(dst.at(x, y), rect.left + x - left, rect.top + y - top);
}

// Copy and fill

inline void iBltFast32(q_ulong *dst, q_ulong *src, q_ulong dstX, q_ulong dstY, tagRECT *srcRect, int dstPitch,
                       int srcPitch) {
    forPlaced({dst, dstPitch}, signed32(dstX), signed32(dstY), {src, srcPitch}, *srcRect, copied);
}

inline void iBltFast32_Advanced(q_ulong *dst, q_ulong *src, int dstX, int dstY, tagRECT *srcRect, int dstPitch,
                                int srcPitch, int clipWidth, int clipHeight) {
    forPlaced({dst, dstPitch}, dstX, dstY, {src, srcPitch}, *srcRect, {0, 0, clipWidth, clipHeight}, copied);
}

inline void iFillRect(q_ulong *dst, tagRECT *rect, int pitch, q_ulong colour) {
    forPlaced({dst, pitch}, rect->left, rect->top, {dst, pitch}, *rect, [=](q_ulong &d, q_ulong) { d = colour; });
}

inline void iFadeOut32(q_ulong *dst, tagRECT *rect, int pitch, float factor) {
    const Number scale = weightOf(factor);
    forPlaced({dst, pitch}, rect->left, rect->top, {dst, pitch}, *rect, [scale](q_ulong &d, q_ulong) {
        if (scale == 0)
            d = eachChannel(d, d, [](Number c, Number) { return c / 16 * 15; });
        else
            d = blended(0, 0, d, scale);
    });
}

// Additive blits

inline void iBltFast32_Add(q_ulong *dst, q_ulong *src, q_ulong dstX, q_ulong dstY, tagRECT *srcRect, q_ulong dstPitch,
                           q_ulong srcPitch) {
    forPlaced({dst, signed32(dstPitch)}, signed32(dstX), signed32(dstY), {src, signed32(srcPitch)}, *srcRect, added);
}

inline void iBltFast32_Add(q_ulong *dst, q_ulong *src, q_ulong dstX, q_ulong dstY, tagRECT *srcRect, q_ulong dstPitch,
                           q_ulong srcPitch, unsigned char scaleRed, unsigned char scaleGreen,
                           unsigned char scaleBlue) {
    forPlaced({dst, signed32(dstPitch)}, signed32(dstX), signed32(dstY), {src, signed32(srcPitch)}, *srcRect,
              addedScaled(scaleRed, scaleGreen, scaleBlue));
}

inline void iBltFast32_KeySrc_Add(q_ulong *dst, q_ulong *src, int dstX, int dstY, tagRECT *srcRect, int dstPitch,
                                  int srcPitch, q_ulong) {
    forPlaced({dst, dstPitch}, dstX, dstY, {src, srcPitch}, *srcRect, unless(0, added));
}

/// Half the diagonal of a rectangle in whole pixels: the largest number that is not above it.
constexpr Number halfDiagonal(const tagRECT &rect) {
    const Number squares = widthOf(rect) * widthOf(rect) + heightOf(rect) * heightOf(rect);
    Number half = 0;
    while (4 * (half + 1) * (half + 1) <= squares)
        ++half;
    return half;
}

inline void iBltNear32_Add_KeySrc(q_ulong *dst, int dstPitch, q_ulong *src, int srcPitch, tagRECT *clipRect,
                                  tagRECT *srcRect, int centreX, int centreY) {
    const Pixels to = {dst, dstPitch};
    const Pixels from = {src, srcPitch};
    const Number reach = halfDiagonal(*srcRect);
    const Number middleX = flooredQuotient(Number{srcRect->left} + srcRect->right, 2);
    const Number middleY = flooredQuotient(Number{srcRect->top} + srcRect->bottom, 2);
    for (Number y = centreY - reach; y < centreY + reach; ++y)
        for (Number x = centreX - reach; x < centreX + reach; ++x) {
            const Number srcX = x + middleX - centreX;
            const Number srcY = y + middleY - centreY;
            if (contains(*clipRect, x, y) && contains(*srcRect, srcX, srcY))
                unless(0, added)(to.at(x, y), from.at(srcX, srcY));
        }
}

// Colour-key blits

inline void iBltFast32_KeySrc(q_ulong *dst, q_ulong *src, q_ulong dstX, q_ulong dstY, tagRECT *srcRect,
                              q_ulong dstPitch, q_ulong srcPitch, q_ulong key) {
    forPlaced({dst, signed32(dstPitch)}, signed32(dstX), signed32(dstY), {src, signed32(srcPitch)}, *srcRect,
              unless(key, copied));
}

inline void iBltFast32SafeKeySrc(q_ulong *dst, q_ulong *src, int centreX, int centreY, tagRECT *srcRect, int dstPitch,
                                 int srcPitch, int clipWidth, int clipHeight) {
    const Pixels from = {src, srcPitch};
    forCentred({dst, dstPitch}, centreX, centreY, *srcRect, 0, clipWidth, clipHeight,
               [from](q_ulong &d, Number x, Number y) { unless(0, copied)(d, from.at(x, y)); });
}

// Alpha blits

inline void iBltFast32Alpha(q_ulong *dst, q_ulong *src, int offsetX, int offsetY, tagRECT *rect, int dstPitch,
                            int srcPitch, float alpha) {
    const auto blend = blendedBy(alpha);
    for (Number y = Number{rect->top} + offsetY; y < Number{rect->bottom} + offsetY; ++y)
        for (Number x = Number{rect->left} + offsetX; x < Number{rect->right} + offsetX; ++x)
            blend(Pixels{dst, dstPitch}.at(x, y), Pixels{src, srcPitch}.at(x, y));
}

inline void iBltFast32_KeySrc_AlphaFast(q_ulong *dst, q_ulong *src, int dstX, int dstY, tagRECT *srcRect, int dstPitch,
                                        int srcPitch, q_ulong) {
    forPlaced({dst, dstPitch}, dstX, dstY, {src, srcPitch}, *srcRect,
              unless(0, [](q_ulong &d, q_ulong s) { d = halfMix(d, s); }));
}

inline void iBltFast32_KeySrc_Alpha(q_ulong *dst, q_ulong *src, int dstX, int dstY, tagRECT *srcRect, int dstPitch,
                                    int srcPitch, q_ulong, float alpha) {
    forPlaced({dst, dstPitch}, dstX, dstY, {src, srcPitch}, *srcRect, unless(0, blendedBy(alpha)));
}

inline void iBltFast32SafeAlpha_Channel(q_ulong *dst, q_ulong *src, int centreX, int centreY, tagRECT *srcRect,
                                        int dstPitch, int srcPitch, int clipWidth, int clipHeight) {
    const Pixels from = {src, srcPitch};
    forCentred({dst, dstPitch}, centreX, centreY, *srcRect, 0, clipWidth, clipHeight,
               [from](q_ulong &d, Number x, Number y) {
                   const q_ulong s = from.at(x, y);
                   const Number alpha = topByteOf(s);
                   if (s != 0)
                       d = alpha == 255 ? s : blended(d, 255 - alpha, s, alpha);
               });
}

inline void iBltFast32SafeKeySrcAntiAliasing(q_ulong *dst, q_ulong *src, int centreX, int centreY, tagRECT *srcRect,
                                             int dstPitch, int srcPitch, int clipWidth, int clipHeight) {
    const Pixels from = {src, srcPitch};
    forCentred(
        {dst, dstPitch}, centreX, centreY, *srcRect, 1, clipWidth, clipHeight, [from](q_ulong &d, Number x, Number y) {
            const q_ulong s = from.at(x, y);
            if (s == 0)
                return;
            if (from.at(x - 1, y) != 0 && from.at(x + 1, y) != 0 && from.at(x, y - 1) != 0 && from.at(x, y + 1) != 0) {
                d = s;
                return;
            }
            Number count = 0;
            for (Number dy = -1; dy <= 1; ++dy)
                for (Number dx = -1; dx <= 1; ++dx)
                    count += from.at(x + dx, y + dy) != 0;
            const Number coverage = 42 * (count - 1);
            d = blended(d, 256 - coverage, s, coverage);
        });
}

inline void iBltFast32AlphaChannelSafe(q_ulong *dst, q_ulong *src, int dstX, int dstY, tagRECT *srcRect,
                                       tagRECT *clipRect, int dstPitch, int srcPitch) {
    const tagRECT size = {0, 0, srcRect->right - srcRect->left, srcRect->bottom - srcRect->top};
    forPlaced({dst, dstPitch}, dstX, dstY, {src, srcPitch}, size, *clipRect, [](q_ulong &d, q_ulong s) {
        const Number alpha = topByteOf(s);
        if (alpha != 0)
            d = blended(d, 256 - alpha, s, alpha);
    });
}

inline void i3DBltNear32() {}

} // namespace plain

#endif
