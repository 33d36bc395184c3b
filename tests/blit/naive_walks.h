/// \file
/// The walks of the scaling blits once more, pixel by pixel and without regard to speed, for comparison.
#ifndef Q_MUR_TESTS_BLIT_NAIVE_WALKS_H
#define Q_MUR_TESTS_BLIT_NAIVE_WALKS_H

#include "support/surface.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace test {

/// How a family counts source positions.
struct PositionFormat {
    int fraction;
    bool isSigned;
};

/// A source position split up: the pixel, and the sixteenths on the way to the next.
struct SourcePosition {
    std::int64_t pixel;
    std::int64_t sixteenths;
};

/// Where the destination pixel `index` of `dstExtent` looks at a source of `srcExtent`, starting from `start`.
inline SourcePosition sourcePosition(std::int64_t index, std::int64_t srcExtent, std::int64_t dstExtent,
                                     PositionFormat format, std::int64_t start = 0) {
    constexpr std::int64_t numbers = std::int64_t{1} << 32;
    const auto inFormat = [format](std::int64_t value) {
        const std::int64_t low = ((value % numbers) + numbers) % numbers;
        return format.isSigned && low >= numbers / 2 ? low - numbers : low;
    };
    const std::int64_t one = std::int64_t{1} << format.fraction;
    const std::int64_t step = inFormat(srcExtent * one) / dstExtent;
    const std::int64_t position = inFormat(start + index * step);
    const std::int64_t pixel = (position - ((position % one) + one) % one) / one;
    return {pixel, (position - pixel * one) / (one / 16)};
}

inline int widthOf(const tagRECT &rect) {
    return static_cast<int>(rect.right - rect.left);
}

inline int heightOf(const tagRECT &rect) {
    return static_cast<int>(rect.bottom - rect.top);
}

inline bool isInside(const tagRECT &rect, int x, int y) {
    return x >= rect.left && x < rect.right && y >= rect.top && y < rect.bottom;
}

constexpr tagRECT unclipped = {-100000, -100000, 100000, 100000};

/// Calls `visit(x, y, column position, row position)` for the destination pixels inside `clip`, rows top to bottom and
/// columns left to right.
template <class Visit>
void visitScaled(const tagRECT &dstRect, const tagRECT &srcRect, PositionFormat format, const tagRECT &clip,
                 Visit visit) {
    for (int y = static_cast<int>(dstRect.top); y < dstRect.bottom; ++y)
        for (int x = static_cast<int>(dstRect.left); x < dstRect.right; ++x)
            if (isInside(clip, x, y))
                visit(x, y, sourcePosition(x - dstRect.left, widthOf(srcRect), widthOf(dstRect), format),
                      sourcePosition(y - dstRect.top, heightOf(srcRect), heightOf(dstRect), format));
}

/// Calls `store(dst pixel, src pixel)` with the nearest source pixel.
template <class Store>
void naiveNearest(Surface &dst, Surface &src, const tagRECT &dstRect, const tagRECT &srcRect, PositionFormat format,
                  const tagRECT &clip, Store store) {
    visitScaled(dstRect, srcRect, format, clip, [&](int x, int y, SourcePosition column, SourcePosition row) {
        store(dst.at(x, y), src.at(static_cast<int>(srcRect.left + column.pixel), //
                                   static_cast<int>(srcRect.top + row.pixel)));
    });
}

/// The weighted sums of blue, green and red, 256 times the channel.
using NaiveSums = std::array<std::int64_t, 3>;

inline void addTap(NaiveSums &sums, q_ulong pixel, std::int64_t weight) {
    for (int channel = 0; channel < 3; ++channel)
        sums[static_cast<std::size_t>(channel)] += static_cast<std::int64_t>(pixel >> (8 * channel) & 0xFF) * weight;
}

/// Four taps with their upper left one at (x, y).
inline NaiveSums naiveTaps(const Surface &src, int x, int y, std::int64_t fx, std::int64_t fy) {
    NaiveSums sums{};
    addTap(sums, src.at(x, y), (16 - fx) * (16 - fy));
    addTap(sums, src.at(x + 1, y), fx * (16 - fy));
    addTap(sums, src.at(x, y + 1), (16 - fx) * fy);
    addTap(sums, src.at(x + 1, y + 1), fx * fy);
    return sums;
}

/// As naiveTaps(), but at the last column and the last row of `srcRect` these stand in for what lies behind them.
inline NaiveSums naiveTapsInside(const Surface &src, const tagRECT &srcRect, SourcePosition column,
                                 SourcePosition row) {
    const int x = static_cast<int>(srcRect.left + column.pixel);
    const int y = static_cast<int>(srcRect.top + row.pixel);
    const int below = row.pixel == heightOf(srcRect) - 1 ? y : y + 1;
    NaiveSums sums{};
    if (column.pixel == widthOf(srcRect) - 1) {
        addTap(sums, src.at(x, y), 16 * (16 - row.sixteenths));
        addTap(sums, src.at(x, below), 16 * row.sixteenths);
        return sums;
    }
    addTap(sums, src.at(x, y), (16 - column.sixteenths) * (16 - row.sixteenths));
    addTap(sums, src.at(x + 1, y), column.sixteenths * (16 - row.sixteenths));
    addTap(sums, src.at(x, below), (16 - column.sixteenths) * row.sixteenths);
    addTap(sums, src.at(x + 1, below), column.sixteenths * row.sixteenths);
    return sums;
}

/// The filtered colour: each sum divided by 256 and truncated, top byte 0.
inline q_ulong filteredPixel(const NaiveSums &sums) {
    return static_cast<q_ulong>(sums[2] / 256 * 0x10000 + sums[1] / 256 * 0x100 + sums[0] / 256);
}

} // namespace test

#endif
