/// \file
/// The scaled blits once more, pixel by pixel and without regard to speed.
#ifndef Q_MUR_TESTS_PLAIN_SCALED_BLIT_H
#define Q_MUR_TESTS_PLAIN_SCALED_BLIT_H

#include "blit.h"
#include "sampling.h"

namespace plain {

/// Calls `store` with the pixels of `dstRect` inside `clip` and the places at which they look into the source, rows top
/// to bottom and columns left to right.
template <class Store>
void forScaled(Pixels dst, const tagRECT &dstRect, const tagRECT &srcRect, PositionFormat format, const tagRECT &clip,
               Store store) {
    for (Number y = std::max(dstRect.top, clip.top); y < std::min(dstRect.bottom, clip.bottom); ++y)
        for (Number x = std::max(dstRect.left, clip.left); x < std::min(dstRect.right, clip.right); ++x)
            store(dst.at(x, y), positionOf(x - dstRect.left, widthOf(srcRect), widthOf(dstRect), format),
                  positionOf(y - dstRect.top, heightOf(srcRect), heightOf(dstRect), format));
}

/// Calls `store` with the destination's pixel and the nearest of the source.
template <class Store>
void forNearest(Pixels dst, const tagRECT &dstRect, Pixels src, const tagRECT &srcRect, PositionFormat format,
                const tagRECT &clip, Store store) {
    forScaled(dst, dstRect, srcRect, format, clip, [&](q_ulong &d, Position column, Position row) {
        store(d, src.at(srcRect.left + column.pixel, srcRect.top + row.pixel));
    });
}

/// Calls `store` with the destination's pixel and four taps, which may lie outside of the source.
template <class Store>
void forFiltered(Pixels dst, const tagRECT &dstRect, Pixels src, const tagRECT &srcRect, Store store) {
    forScaled(dst, dstRect, srcRect, unsigned12_20, dstRect, [&](q_ulong &d, Position column, Position row) {
        store(d, fourTaps(src, srcRect.left + column.pixel, srcRect.top + row.pixel, column.sixteenths, row.sixteenths)
                     .pixel());
    });
}

/// Whether a rectangle has pixels.
constexpr bool hasPixels(const tagRECT &rect) {
    return widthOf(rect) > 0 && heightOf(rect) > 0;
}

/// Whether a rectangle has an extent, be it that of a source turned inside out.
constexpr bool hasExtent(const tagRECT &rect) {
    return widthOf(rect) != 0 && heightOf(rect) != 0;
}

// Scaling copies

inline void iBltNear32(q_ulong *dst, q_ulong *src, tagRECT *dstRect, tagRECT *srcRect, int dstPitch, int srcPitch) {
    forNearest({dst, dstPitch}, *dstRect, {src, srcPitch}, *srcRect, unsigned12_20, *dstRect, copied);
}

inline void iBltNear32Safe(q_ulong *dst, q_ulong *src, tagRECT *dstRect, tagRECT *srcRect, tagRECT *clipRect,
                           int dstPitch, int srcPitch) {
    forNearest({dst, dstPitch}, *dstRect, {src, srcPitch}, *srcRect, signed12_20, *clipRect, copied);
}

inline void iBltBilinear32(q_ulong *dst, q_ulong *src, tagRECT *dstRect, tagRECT *srcRect, q_ulong dstPitch,
                           q_ulong srcPitch) {
    forFiltered({dst, signed32(dstPitch)}, *dstRect, {src, signed32(srcPitch)}, *srcRect, copied);
}

/// The bytes of the rows and the end of the area are counted from the source's corner.
inline void iBltBilinear32Safe(q_ulong *dst, q_ulong *src, tagRECT *dstRect, tagRECT *srcRect, q_ulong dstPitch,
                               q_ulong srcPitch) {
    const Pixels from = {src, signed32(srcPitch)};
    const Number limit = heightOf(*srcRect) * from.pitch * 4 - 4;
    forScaled({dst, signed32(dstPitch)}, *dstRect, *srcRect, unsigned12_20, *dstRect,
              [&](q_ulong &d, Position column, Position row) {
                  const Number x = srcRect->left + column.pixel;
                  const Number y = srcRect->top + row.pixel;
                  const Number row0 = row.pixel * from.pitch * 4;
                  const Number row1 = row0 + from.pitch * 4;
                  if (row1 + 4 * column.pixel + 5 >= limit || row0 + 4 * column.pixel + 4 >= limit)
                      d = from.at(x, y);
                  else
                      d = fourTaps(from, x, y, column.sixteenths, row.sixteenths).pixel();
              });
}

inline void iBltAdaptive32(q_ulong *dst, q_ulong *src, tagRECT *dstRect, tagRECT *srcRect, q_ulong dstPitch,
                           q_ulong srcPitch) {
    const Number dstArea = signed32(signed32(2 * widthOf(*dstRect)) * heightOf(*dstRect));
    const Number srcArea = signed32(signed32(3 * widthOf(*srcRect)) * heightOf(*srcRect));
    if (widthOf(*dstRect) == widthOf(*srcRect) && heightOf(*dstRect) == heightOf(*srcRect))
        plain::iBltFast32(dst, src, word(dstRect->left), word(dstRect->top), srcRect, int32(dstPitch), int32(srcPitch));
    else if (dstArea >= srcArea)
        plain::iBltBilinear32Safe(dst, src, dstRect, srcRect, dstPitch, srcPitch);
    else
        plain::iBltNear32(dst, src, dstRect, srcRect, int32(dstPitch), int32(srcPitch));
}

/// How much further into its pixel the source begins than the destination, in 17 fraction bits.
constexpr Number perfectStart(Number srcEdge, Number dstEdge) {
    return (unsigned32(srcEdge) % 16 - unsigned32(dstEdge) % 16) * 8192;
}

inline void iBltPerfect32(q_ulong *dst, q_ulong *src, tagRECT *dstRect, tagRECT *srcRect, q_ulong dstPitch,
                          q_ulong srcPitch) {
    const Pixels to = {dst, signed32(dstPitch)};
    const Pixels from = {src, signed32(srcPitch)};
    const Number width = widthOf(*dstRect);
    const Number height = heightOf(*dstRect);
    if (width == 0 || height == 0)
        return;
    for (Number y = 0; y < height / 16 + 1; ++y)
        for (Number x = 0; x < width / 16 + 1; ++x) {
            const Position column =
                positionOf(x, widthOf(*srcRect), width, signed15_17, perfectStart(srcRect->left, dstRect->left));
            const Position row =
                positionOf(y, heightOf(*srcRect), height, signed15_17, perfectStart(srcRect->top, dstRect->top));
            to.at(dstRect->left / 16 + x, dstRect->top / 16 + y) =
                fourTaps(from, srcRect->left / 16 + column.pixel, srcRect->top / 16 + row.pixel, column.sixteenths,
                         row.sixteenths)
                    .pixel();
        }
}

// Additive blits

inline void iBltNear32_Add(q_ulong *dst, q_ulong *src, tagRECT *dstRect, tagRECT *srcRect, q_ulong dstPitch,
                           q_ulong srcPitch) {
    if (hasExtent(*srcRect))
        forNearest({dst, signed32(dstPitch)}, *dstRect, {src, signed32(srcPitch)}, *srcRect, signed17_15, *dstRect,
                   [](q_ulong &d, q_ulong s) {
                       d = (saturatedSum(d, s) & 0xFFFF00) | word(blueOf(d) + blueOf(s)); // blue reaches into green
                   });
}

inline void iBltNear32_Add(q_ulong *dst, q_ulong *src, tagRECT *dstRect, tagRECT *srcRect, q_ulong dstPitch,
                           q_ulong srcPitch, unsigned char scaleRed, unsigned char scaleGreen,
                           unsigned char scaleBlue) {
    if (hasPixels(*srcRect))
        forNearest({dst, signed32(dstPitch)}, *dstRect, {src, signed32(srcPitch)}, *srcRect, unsigned17_15, *dstRect,
                   addedScaled(scaleRed, scaleGreen, scaleBlue));
}

/// Adds filtered channels, 256 times as large, times scale / 256.
inline void addFiltered(q_ulong *dst, q_ulong *src, const tagRECT &dstRect, const tagRECT &srcRect, q_ulong dstPitch,
                        q_ulong srcPitch, PositionFormat format, Number scaleRed, Number scaleGreen, Number scaleBlue) {
    const Pixels from = {src, signed32(srcPitch)};
    if (hasPixels(srcRect))
        forScaled({dst, signed32(dstPitch)}, dstRect, srcRect, format, dstRect,
                  [&](q_ulong &d, Position column, Position row) {
                      const Sums sums = tapsInside(from, srcRect, column, row);
                      d = saturatedSum(d, pixelOf(sums.red * scaleRed / 65536, sums.green * scaleGreen / 65536,
                                                  sums.blue * scaleBlue / 65536));
                  });
}

inline void iBltBilinear32_Add(q_ulong *dst, q_ulong *src, tagRECT *dstRect, tagRECT *srcRect, q_ulong dstPitch,
                               q_ulong srcPitch) {
    addFiltered(dst, src, *dstRect, *srcRect, dstPitch, srcPitch, signed17_15, 256, 256, 256);
}

inline void iBltBilinear32_Add(q_ulong *dst, q_ulong *src, tagRECT *dstRect, tagRECT *srcRect, q_ulong dstPitch,
                               q_ulong srcPitch, unsigned char scaleRed, unsigned char scaleGreen,
                               unsigned char scaleBlue) {
    addFiltered(dst, src, *dstRect, *srcRect, dstPitch, srcPitch, unsigned17_15, scaleRed, scaleGreen, scaleBlue);
}

inline void iBltNear32SafeKeySrcAdd(q_ulong *dst, q_ulong *src, tagRECT *dstRect, tagRECT *srcRect, int dstPitch,
                                    int srcPitch, int clipWidth, int clipHeight) {
    if (hasExtent(*srcRect))
        forNearest({dst, dstPitch}, *dstRect, {src, srcPitch}, *srcRect, signed16_16, {0, 0, clipWidth, clipHeight},
                   unless(0, added));
}

// Colour-key blits

inline void iBltNear32_KeySrc(q_ulong *dst, q_ulong *src, tagRECT *dstRect, tagRECT *srcRect, q_ulong dstPitch,
                              q_ulong srcPitch, q_ulong key) {
    forNearest({dst, signed32(dstPitch)}, *dstRect, {src, signed32(srcPitch)}, *srcRect, unsigned17_15, *dstRect,
               unless(key, copied));
}

inline void iBltBilinear32_KeySrc(q_ulong *dst, q_ulong *src, tagRECT *dstRect, tagRECT *srcRect, q_ulong dstPitch,
                                  q_ulong srcPitch, q_ulong key) {
    const Pixels from = {src, signed32(srcPitch)};
    forScaled({dst, signed32(dstPitch)}, *dstRect, *srcRect, unsigned17_15, *dstRect,
              [&](q_ulong &d, Position column, Position row) {
                  unless(key, copied)(d, tapsInside(from, *srcRect, column, row).pixel());
              });
}

// Alpha blits

inline void iBltBilinear32_Alpha(q_ulong *dst, q_ulong *src, tagRECT *dstRect, tagRECT *srcRect, q_ulong dstPitch,
                                 q_ulong srcPitch, float alpha) {
    const Number weight = weightOf(alpha);
    if (!hasPixels(*srcRect))
        return;
    forFiltered({dst, signed32(dstPitch)}, *dstRect, {src, signed32(srcPitch)}, *srcRect,
                [weight](q_ulong &d, q_ulong s) { d = blendWithOpenBlue(d, s, weight); });
}

} // namespace plain

#endif
