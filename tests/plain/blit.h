/// \file
/// The blits once more, pixel by pixel and without regard to speed.
#ifndef Q_MUR_TESTS_PLAIN_BLIT_H
#define Q_MUR_TESTS_PLAIN_BLIT_H

#include "real.h"
#include "words.h"

namespace plain {

/// Rows top to bottom and columns left to right over an area of the source; `store` gets the destination's pixel and
/// the source's.
template <class Store>
void forPlaced(Pixels dst, Number dstX, Number dstY, Pixels src, const tagRECT &rect, Store store) {
    for (Number y = 0; y < heightOf(rect); ++y)
        for (Number x = 0; x < widthOf(rect); ++x)
            store(dst.at(dstX + x, dstY + y), src.at(rect.left + x, rect.top + y));
}

inline void iBltFast32(q_ulong *dst, q_ulong *src, q_ulong dstX, q_ulong dstY, tagRECT *srcRect, int dstPitch,
                       int srcPitch) {
    forPlaced({dst, dstPitch}, signed32(dstX), signed32(dstY), {src, srcPitch}, *srcRect,
              [](q_ulong &d, q_ulong s) { d = s; });
}

inline void iFillRect(q_ulong *dst, tagRECT *rect, int pitch, q_ulong colour) {
    forPlaced({dst, pitch}, rect->left, rect->top, {dst, pitch}, *rect, [=](q_ulong &d, q_ulong) { d = colour; });
}

/// The weight of the source in 1/256.
inline Number weightOf(float alpha) {
    return truncated(Real{alpha} * 256);
}

/// Each channel in its place under its mask, in 32 bits.
inline q_ulong blended(q_ulong d, Number dWeight, q_ulong s, Number sWeight) {
    const auto sum = [&](Number mask) {
        return unsigned32((static_cast<Number>(d) & mask) * dWeight + (static_cast<Number>(s) & mask) * sWeight);
    };
    return word(((sum(0xFF0000) & 0xFF0000FF) | (sum(0xFF00) & 0xFF0000) | sum(0xFF)) / 256);
}

inline void iBltFast32Alpha(q_ulong *dst, q_ulong *src, int offsetX, int offsetY, tagRECT *rect, int dstPitch,
                            int srcPitch, float alpha) {
    const Number weight = weightOf(alpha);
    forPlaced({dst, dstPitch}, Number{rect->left} + offsetX, Number{rect->top} + offsetY, {src, srcPitch}, *rect,
              [=](q_ulong &d, q_ulong s) { d = blended(d, 256 - weight, s, weight); });
}

} // namespace plain

#endif
