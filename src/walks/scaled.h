/// \file
/// The walks of the scaling blits. A source position starts at 0, grows by one step for each destination pixel, and is
/// a fixed-point number; how many fraction bits it has, and whether it is signed, belongs to each family.
#ifndef Q_MUR_WALKS_SCALED_H
#define Q_MUR_WALKS_SCALED_H

#include "base/extent.h"
#include "base/sampling.h"
#include "base/surface.h"
#include "walks/columns.h"
#include "walks/placed.h"

#include <cstdint>
#include <cstring>
#include <limits>

namespace qmur {

/// A source position. `Integer` is int or q_ulong and decides between signed and unsigned division and shift.
template <class Integer, int fractionBits>
struct FixedPoint {
    static constexpr int fraction = fractionBits;

    q_ulong bits = 0;

    static constexpr long long most = std::numeric_limits<Integer>::max();

    constexpr long long value() const { return static_cast<Integer>(bits); }
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

/// The source pixels from the first to the last of `count` positions, if they rise all the way; else an empty span.
template <class Position>
Span stoodOn(Position start, Position step, int count) {
    const long long last = start.value() + step.value() * (count - 1LL);
    if (count < 1 || step.value() < 0 || last > Position::most)
        return {};
    const auto wholeOf = [](long long value) { return static_cast<int>(value >> Position::fraction); };
    return {wholeOf(start.value()), wholeOf(last) + 1};
}

/// Whether a walk that reads these source pixels, none if they are unknown, draws the same in every order.
template <class Position>
bool isFreeOfOrder(const ScaledWalk<Position> &walk, const Window &seen) {
    if (walk.width < 1 || walk.height < 1 || seen.empty() || !keepsPixelsApart(walk.dstPitch, walk.width))
        return false;
    return extentOf(walk.dst, walk.dstPitch, windowOf(walk.width, walk.height))
        .isApartFrom(extentOf(walk.src, walk.srcPitch, seen));
}

/// Calls `block(begin, count)` for stretches of columns of a width, all of about the same length.
template <class Block>
void forEachColumnBlock(int width, int most, Block block) {
    constexpr int cacheLine = 64 / sizeof(q_ulong);
    const int blocks = (width - 1) / most + 1;
    const int length = ((width - 1) / blocks / cacheLine + 1) * cacheLine;
    for (int begin = 0; begin < width; begin += length)
        block(begin, smaller(length, width - begin));
}

/// The picked columns of such a stretch.
template <class Position>
PickedColumns pickedColumns(const ScaledWalk<Position> &walk, Span seen, int begin, int count) {
    return PickedColumns(count, seen, 0, [start = walk.startX.plus(walk.stepX.times(begin)), step = walk.stepX](int x) {
        return static_cast<std::int32_t>(start.plus(step.times(x)).whole());
    });
}

/// Calls `shows(dst row, src row, distance from it to the next src row, whether it is the one of the dst row before)`
/// for each row.
template <class Position, class Shows>
void forEachShownRow(const ScaledWalk<Position> &walk, Shows shows) {
    Position positionY = walk.startY;
    Distance before = -1;
    for (Distance y = 0; y < walk.height; ++y) {
        const Distance row = positionY.whole();
        positionY = positionY.plus(walk.stepY);
        const Distance next = y + 1 < walk.height ? positionY.whole() : row;
        shows(walk.dst + y * walk.dstPitch, walk.src + row * walk.srcPitch, (next - row) * walk.srcPitch,
              y > 0 && row == before);
        before = row;
    }
}

/// Calls `store(dst pixel, nearest src pixel)` for every pixel in the order that is promised.
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

/// Copies the nearest source pixel to every pixel. A row that is shown again is copied from where it was drawn.
template <class Position>
void copyNearest(const ScaledWalk<Position> &walk) {
    const Window seen = {stoodOn(walk.startX, walk.stepX, walk.width), stoodOn(walk.startY, walk.stepY, walk.height)};
    if (!isFreeOfOrder(walk, seen))
        return forEachNearest(walk, [](q_ulong &d, q_ulong s) { d = s; });
    forEachColumnBlock(walk.width, mostColumns, [&](int begin, int count) {
        const PickedColumns columns = pickedColumns(walk, seen.columns, begin, count);
        withWindowLoads(columns.loads(), [&](auto loads) {
            forEachShownRow(walk, [&, dstPitch = walk.dstPitch](q_ulong *dst, const q_ulong *src, Distance ahead,
                                                                bool isShownAgain) {
                if (isShownAgain)
                    std::memcpy(dst + begin, dst + begin - dstPitch, static_cast<std::size_t>(count) * sizeof(q_ulong));
                else
                    columns.writePixels<loads()>(src, dst + begin, ahead);
            });
        });
    });
}

/// Stores `operation(dst pixel, nearest src pixel)`, which works on lanes, in every pixel.
template <class Position, class Operation>
void combineNearest(const ScaledWalk<Position> &walk, Operation operation) {
    const Window seen = {stoodOn(walk.startX, walk.stepX, walk.width), stoodOn(walk.startY, walk.stepY, walk.height)};
    if (!isFreeOfOrder(walk, seen))
        return forEachNearest(walk, [operation](q_ulong &d, q_ulong s) { d = ofOnePixel(operation, d, s); });
    alignas(widestBytes) q_ulong shown[mostColumns];
    forEachColumnBlock(walk.width, mostColumns, [&](int begin, int count) {
        const PickedColumns columns = pickedColumns(walk, seen.columns, begin, count);
        withWindowLoads(columns.loads(), [&](auto loads) {
            forEachShownRow(walk, [&](q_ulong *dst, const q_ulong *src, Distance ahead, bool isShownAgain) {
                if (!isShownAgain)
                    columns.writePixels<loads()>(src, shown, ahead);
                combineRow(dst + begin, shown, count, operation);
            });
        });
    });
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

/// The weighed columns of a stretch of destination columns: for each row of the source, what lies between its pixels.
class WeighedColumns {
public:
    static constexpr int size = PickedColumns::size;
    /// Two rows of so many columns and their weights leave the nearest cache room for what is read and written.
    static constexpr int most = sumsPairs ? mostColumns / 2 : mostColumns;

    /// `fractionOf(x)` is how far a column stands to the right of its pixel, in sixteenths from 0 to 16.
    template <class ColumnOf, class FractionOf>
    WeighedColumns(int count, Span readable, ColumnOf columnOf, FractionOf fractionOf)
        : columns(count, readable, 1, columnOf) {
        q_ulong any = 0;
        for (int x = 0; x < count; ++x)
            any |= fractionOf(x);
        areWhole = any == 0;
        if (areWhole)
            return;
        for (int x = 0; x < columns.groupCount() * size; ++x) {
            // Pixels 0 and 1 of each four are the lower half of 16 bytes, 2 and 3 the upper.
            const int group = x / size;
            const int place = x % size / 4 * 2 + x % 2;
            const int half = x % 4 / 2;
            weights[(group * 2 + half) * (size / 2) + place] =
                MixWeights<size>::pair(x < count ? fractionOf(x) : 0) * 0x1000100010001ULL;
        }
    }

    /// Stores `operation(dst pixels, sums of their samples)` in these columns of a walk, from `begin` on. The row below
    /// `lastRow` is that row itself.
    template <class Position, class Operation>
    void draw(const ScaledWalk<Position> &walk, int begin, Distance lastRow, Operation operation) {
        withWindowLoads(columns.loads(), [&](auto loads) {
            if (areWhole)
                drawRows<loads(), true>(walk, begin, lastRow, operation);
            else
                drawRows<loads(), false>(walk, begin, lastRow, operation);
        });
    }

private:
    using Group = PickedColumns::Group;
    using Half = Words<size * 2>;

    /// Mixes each pixel of a row with the next one.
    template <int loads>
    void writeMixed(const q_ulong *src, q_ulong *to, Distance ahead) const {
        for (int group = 0; group < columns.groupCount(); ++group) {
            columns.fetch<loads>(src + ahead, group);
            const auto [left, right] = columns.neighbours<loads>(src, group);
            const std::uint64_t *const ofGroup = weights + group * size;
            const PixelWords<size> mixed = mixedPixels(
                left, right,
                MixWeights<size>{Bytes<size * 4>::load(ofGroup), Bytes<size * 4>::load(ofGroup + size / 2)});
            mixed.low.store(to + group * 2 * size);
            mixed.high.store(to + group * 2 * size + size);
        }
    }

    /// Mixes a group of two such rows.
    static PixelWords<size> mixedSums(const q_ulong *upper, const q_ulong *lower, q_ulong fy, int group) {
        const auto low = [group](const q_ulong *row) { return Half::load(row + group * 2 * size); };
        const auto high = [group](const q_ulong *row) { return Half::load(row + group * 2 * size + size); };
        if (fy == 0)
            return {low(upper) << 4, high(upper) << 4};
        const Half upperWeight = Half::all(static_cast<std::uint16_t>(16 - fy));
        const Half lowerWeight = Half::all(static_cast<std::uint16_t>(fy));
        return {low(upper) * upperWeight + low(lower) * lowerWeight,
                high(upper) * upperWeight + high(lower) * lowerWeight};
    }

    /// Mixes a group of two rows of pixels.
    static PixelWords<size> mixedWhole(const q_ulong *upper, const q_ulong *lower, q_ulong fy, int group) {
        const auto at = [group](const q_ulong *row) { return Group::load(row + group * size); };
        if (fy == 0)
            return wholeSums(at(upper));
        const PixelWords<size> mixed = mixedPixels(at(upper), at(lower), MixWeights<size>::all(fy));
        return {mixed.low << 4, mixed.high << 4};
    }

    /// The sums of a group of pixels that are shown as they are.
    static PixelWords<size> wholeSums(Group pixels) {
        const auto none = as<std::uint8_t>(Group::all(0));
        return {as<std::uint16_t>(interleavedLow(none, as<std::uint8_t>(pixels))),
                as<std::uint16_t>(interleavedHigh(none, as<std::uint8_t>(pixels)))};
    }

    /// Stores `operation(dst pixels, sumsOf(group))` in all groups of a row, and fetches those of the row `ahead`.
    template <class Operation, class Sums>
    [[gnu::always_inline]] void drawRow(q_ulong *dst, Distance ahead, Operation operation, Sums sumsOf) const {
        const int whole = columns.count() / size;
        const int rest = columns.count() % size;
        for (int group = 0; group < whole; ++group) {
            q_ulong *const at = dst + group * size;
            willWrite(at + ahead);
            operation(Group::load(at), sumsOf(group)).store(at);
        }
        if (rest != 0) {
            q_ulong *const at = dst + whole * size;
            operation(Group::loadFirst(at, rest), sumsOf(whole)).storeFirst(at, rest);
        }
    }

    template <int loads, bool columnsAreWhole, class Position, class Operation>
    void drawRows(const ScaledWalk<Position> &walk, int begin, Distance lastRow, Operation operation) {
        const auto [firstDst, dstPitch, firstSrc, srcPitch, width, height, startX, startY, stepX, stepY] = walk;
        constexpr Distance none = PTRDIFF_MIN;
        Distance held[2] = {none, none};
        const Distance end = startY.plus(stepY.times(height - 1)).whole() + Distance{1};
        Distance rowsAhead = 1;
        const auto rowAt = [&, src = firstSrc, pitch = srcPitch](Distance row) {
            // A row and the next one never share a place.
            q_ulong *const place = rows[row & 1];
            const Distance ahead = (row + rowsAhead <= end ? rowsAhead : 0) * pitch;
            if (held[row & 1] != row) {
                if constexpr (columnsAreWhole)
                    columns.writePixels<loads>(src + row * pitch, place, ahead);
                else
                    writeMixed<loads>(src + row * pitch, place, ahead);
            }
            held[row & 1] = row;
            return place;
        };
        Position positionY = startY;
        for (Distance y = 0; y < height; ++y, positionY = positionY.plus(stepY)) {
            const Distance row = positionY.whole();
            const q_ulong fy = positionY.sixteenths();
            rowsAhead = static_cast<Distance>(positionY.plus(stepY).whole()) - row;
            rowsAhead = rowsAhead < 1 ? 1 : rowsAhead;
            q_ulong *const dst = firstDst + y * dstPitch + begin;
            const Distance ahead = y + 1 < height ? dstPitch : 0;
            if constexpr (columnsAreWhole && loads > 0)
                if (fy == 0) { // all are shown as they are, without a row in between
                    const q_ulong *const shown = firstSrc + row * srcPitch;
                    const Distance next = (row + rowsAhead <= end ? rowsAhead : 0) * srcPitch;
                    drawRow(dst, ahead, operation, [this, shown, next](int group) {
                        columns.fetch<loads>(shown + next, group);
                        return wholeSums(columns.pixels<loads>(shown, group));
                    });
                    continue;
                }
            const q_ulong *const upper = rowAt(row);
            const q_ulong *const lower = fy == 0 || row == lastRow ? upper : rowAt(row + 1);
            drawRow(dst, ahead, operation, [upper, lower, fy](int group) {
                return columnsAreWhole ? mixedWhole(upper, lower, fy, group) : mixedSums(upper, lower, fy, group);
            });
        }
    }

    PickedColumns columns;
    bool areWhole;
    alignas(widestBytes) std::uint64_t weights[most];
    alignas(widestBytes) q_ulong rows[2][most * 2]; ///< pixels, or twice as many words
};

/// Calls `store(dst pixel, channel sums)` for every pixel in the order that is promised, four taps everywhere.
template <class Position, class Store>
void forEachFiltered(const ScaledWalk<Position> &walk, Store store) {
    const auto [firstDst, dstPitch, firstSrc, srcPitch, width, height, startX, startY, stepX, stepY] = walk;
    Position positionY = startY;
    for (Distance y = 0; y < height; ++y, positionY = positionY.plus(stepY)) {
        const q_ulong *const row0 = firstSrc + static_cast<Distance>(positionY.whole()) * srcPitch;
        filterRow(firstDst + y * dstPitch, width, row0, row0 + srcPitch, positionY.sixteenths(), startX, stepX, store);
    }
}

/// Stores `operation(dst pixels, sums of their samples)`, which works on lanes, wherever nothing depends on the order
/// of pixels. Says whether it did; otherwise nothing is drawn.
template <class Position, class Operation>
bool drawFiltered(const ScaledWalk<Position> &walk, Operation operation) {
    Window seen = {stoodOn(walk.startX, walk.stepX, walk.width), stoodOn(walk.startY, walk.stepY, walk.height)};
    if (seen.empty())
        return false;
    ++seen.columns.end;
    ++seen.rows.end;
    if (!isFreeOfOrder(walk, seen))
        return false;
    forEachColumnBlock(walk.width, WeighedColumns::most, [&](int begin, int count) {
        const auto positionAt = [start = walk.startX.plus(walk.stepX.times(begin)), step = walk.stepX](int x) {
            return start.plus(step.times(x));
        };
        WeighedColumns columns(
            count, seen.columns, [&](int x) { return static_cast<std::int32_t>(positionAt(x).whole()); },
            [&](int x) { return positionAt(x).sixteenths(); });
        columns.draw(walk, begin, PTRDIFF_MIN, operation);
    });
    return true;
}

/// The same with nothing read outside the source: the last row and the last column stand in for what would lie behind
/// them. Positions start at 0.
template <class Position, class Operation>
bool drawFilteredInside(const ScaledWalk<Position> &walk, const tagRECT &srcRect, Operation operation) {
    if (isEmpty(srcRect))
        return false;
    const int lastColumn = widthOf(srcRect) - 1;
    const int lastRow = heightOf(srcRect) - 1;
    Window seen = {stoodOn(walk.startX, walk.stepX, walk.width), stoodOn(walk.startY, walk.stepY, walk.height)};
    if (seen.empty() || lastColumn < 1)
        return false;
    seen.columns.end = smaller(seen.columns.end, lastColumn) + 1;
    seen.rows.end = smaller(seen.rows.end, lastRow) + 1;
    if (!isFreeOfOrder(walk, seen))
        return false;
    forEachColumnBlock(walk.width, WeighedColumns::most, [&](int begin, int count) {
        const auto positionAt = [start = walk.startX.plus(walk.stepX.times(begin)), step = walk.stepX](int x) {
            return start.plus(step.times(x));
        };
        // On the last column stands the right neighbour of the one before, with the whole weight.
        const auto columnAt = [&](int x) { return static_cast<std::int32_t>(positionAt(x).whole()); };
        WeighedColumns columns(
            count, seen.columns, [&](int x) { return smaller(columnAt(x), lastColumn - 1); },
            [&](int x) { return columnAt(x) < lastColumn ? positionAt(x).sixteenths() : 16; });
        columns.draw(walk, begin, lastRow, operation);
    });
    return true;
}

/// Calls `store(dst pixel, channel sums)` for every pixel in the order that is promised, and reads nothing outside the
/// source in the same way.
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
