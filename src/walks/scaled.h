/// \file
/// The walks of the scaling blits. A source position starts at 0, grows by one step for each destination pixel, and is
/// a fixed-point number; how many fraction bits it has, and whether it is signed, belongs to each family.
#ifndef Q_MUR_WALKS_SCALED_H
#define Q_MUR_WALKS_SCALED_H

#include "base/sampling.h"
#include "base/surface.h"

namespace qmur {

/// A source position. `Integer` is int or q_ulong and decides between signed and unsigned division and shift.
template <class Integer, int fractionBits>
struct FixedPoint {
    static constexpr int fraction = fractionBits;

    q_ulong bits = 0;

    constexpr Integer whole() const { return static_cast<Integer>(bits) >> fractionBits; }
    constexpr q_ulong sixteenths() const { return bits >> (fractionBits - 4) & 15; }
    constexpr FixedPoint plus(FixedPoint step) const { return {bits + step.bits}; }
    constexpr FixedPoint times(int count) const { return {bits * static_cast<q_ulong>(count)}; }

    /// Source pixels for one destination pixel; the destination extent must not be 0.
    static constexpr FixedPoint step(int srcExtent, int dstExtent) {
        const auto scaled = static_cast<Integer>(static_cast<q_ulong>(srcExtent) << fractionBits);
        return {static_cast<q_ulong>(wrapDivide(scaled, static_cast<Integer>(dstExtent)))};
    }
};

using Unsigned12_20 = FixedPoint<q_ulong, 20>;
using Signed12_20 = FixedPoint<int, 20>;
using Unsigned17_15 = FixedPoint<q_ulong, 15>;
using Signed17_15 = FixedPoint<int, 15>;
using Signed16_16 = FixedPoint<int, 16>;
using Signed15_17 = FixedPoint<int, 17>;

/// A walk over a destination rectangle with the source positions it starts from and the steps it takes.
template <class Position>
struct ScaledWalk {
    q_ulong *dst;
    Distance dstPitch;
    const q_ulong *src;
    Distance srcPitch;
    int width;
    int height;
    Position startX;
    Position startY;
    Position stepX;
    Position stepY;
};

/// The walk that shows the whole of `srcRect` on the whole of `dstRect`.
template <class Position>
ScaledWalk<Position> scaledOnto(q_ulong *dst, Distance dstPitch, const tagRECT &dstRect, const q_ulong *src,
                                Distance srcPitch, const tagRECT &srcRect) {
    const int width = widthOf(dstRect);
    const int height = heightOf(dstRect);
    if (width < 1 || height < 1)
        return {};
    return {.dst = pixelAt(dst, dstPitch, dstRect.left, dstRect.top),
            .dstPitch = dstPitch,
            .src = pixelAt(src, srcPitch, srcRect.left, srcRect.top),
            .srcPitch = srcPitch,
            .width = width,
            .height = height,
            .startX = {},
            .startY = {},
            .stepX = Position::step(widthOf(srcRect), width),
            .stepY = Position::step(heightOf(srcRect), height)};
}

/// The part of that walk whose destination lies within `window`. Nothing outside it is so much as pointed at: a corner
/// of `dstRect` may lie beyond all memory.
template <class Position>
ScaledWalk<Position> scaledWithin(const Window &window, q_ulong *dst, Distance dstPitch, const tagRECT &dstRect,
                                  const q_ulong *src, Distance srcPitch, const tagRECT &srcRect) {
    const int width = widthOf(dstRect);
    const int height = heightOf(dstRect);
    const auto [columns, rows] = windowOf(dstRect).within(window);
    if (width < 1 || height < 1 || columns.empty() || rows.empty())
        return {};
    const Position stepX = Position::step(widthOf(srcRect), width);
    const Position stepY = Position::step(heightOf(srcRect), height);
    return {.dst = pixelAt(dst, dstPitch, columns.begin, rows.begin),
            .dstPitch = dstPitch,
            .src = pixelAt(src, srcPitch, srcRect.left, srcRect.top),
            .srcPitch = srcPitch,
            .width = columns.length(),
            .height = rows.length(),
            .startX = stepX.times(wrapSubtract(columns.begin, dstRect.left)),
            .startY = stepY.times(wrapSubtract(rows.begin, dstRect.top)),
            .stepX = stepX,
            .stepY = stepY};
}

/// Calls `store(dst pixel, nearest src pixel)` for every pixel.
template <class Position, class Store>
void forEachNearest(const ScaledWalk<Position> &walk, Store store) {
    const auto [firstDst, dstPitch, firstSrc, srcPitch, width, height, startX, startY, stepX, stepY] = walk;
    Position positionY = startY;
    for (Distance y = 0; y < height; ++y, positionY = positionY.plus(stepY)) {
        q_ulong *const dst = firstDst + y * dstPitch;
        const q_ulong *const src = firstSrc + static_cast<Distance>(positionY.whole()) * srcPitch;
        Position positionX = startX;
        for (Distance x = 0; x < width; ++x, positionX = positionX.plus(stepX))
            store(dst[x], src[positionX.whole()]);
    }
}

/// Calls `store(dst pixel, channel sums)` for `count` pixels of a row, sampled with four taps. Reads the column right
/// of the last one it stands on, and both rows.
template <class Position, class Store>
void filterRow(q_ulong *dst, int count, const q_ulong *row0, const q_ulong *row1, q_ulong fy, Position start,
               Position step, Store store) {
    Position position = start;
    for (Distance x = 0; x < count; ++x, position = position.plus(step)) {
        const Distance column = position.whole();
        store(dst[x], fourTaps(row0 + column, row1 + column, position.sixteenths(), fy));
    }
}

/// How many of the positions 0, step, 2 step ... stand before a source column, of `count` at most.
template <class Position>
int countBefore(Distance column, Position step, int count) {
    if (column <= 0)
        return 0;
    if (static_cast<int>(step.bits) <= 0)
        return count;
    const auto target = static_cast<unsigned long long>(column) << Position::fraction;
    const unsigned long long before = (target + step.bits - 1) / step.bits;
    return before < static_cast<unsigned long long>(count) ? static_cast<int>(before) : count;
}

/// Calls `store(dst pixel, channel sums)` for every pixel, four taps everywhere.
template <class Position, class Store>
void forEachFiltered(const ScaledWalk<Position> &walk, Store store) {
    const auto [firstDst, dstPitch, firstSrc, srcPitch, width, height, startX, startY, stepX, stepY] = walk;
    Position positionY = startY;
    for (Distance y = 0; y < height; ++y, positionY = positionY.plus(stepY)) {
        const q_ulong *const row0 = firstSrc + static_cast<Distance>(positionY.whole()) * srcPitch;
        filterRow(firstDst + y * dstPitch, width, row0, row0 + srcPitch, positionY.sixteenths(), startX, stepX, store);
    }
}

/// Calls `store(dst pixel, channel sums)` for every pixel and reads nothing outside the source: the last row and the
/// last column stand in for what would lie behind them. Positions start at 0.
template <class Position, class Store>
void forEachFilteredInside(const ScaledWalk<Position> &walk, const tagRECT &srcRect, Store store) {
    const auto [firstDst, dstPitch, firstSrc, srcPitch, width, height, startX, startY, stepX, stepY] = walk;
    const Distance lastColumn = widthOf(srcRect) - Distance{1};
    const Distance lastRow = heightOf(srcRect) - Distance{1};
    const int inner = lastColumn < 0 ? width : countBefore(lastColumn, stepX, width);
    Position positionY = startY;
    for (Distance y = 0; y < height; ++y, positionY = positionY.plus(stepY)) {
        const Distance row = positionY.whole();
        const q_ulong fy = positionY.sixteenths();
        const q_ulong *const row0 = firstSrc + row * srcPitch;
        const q_ulong *const row1 = row == lastRow ? row0 : row0 + srcPitch;
        q_ulong *const dst = firstDst + y * dstPitch;
        filterRow(dst, inner, row0, row1, fy, startX, stepX, store);
        for (Distance x = inner; x < width; ++x)
            store(dst[x], twoTaps(row0[lastColumn], row1[lastColumn], fy));
    }
}

} // namespace qmur

#endif
