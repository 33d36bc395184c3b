/// \file
/// Where scaled pictures are sampled, and what four neighbouring pixels weigh.
#ifndef Q_MUR_TESTS_PLAIN_SAMPLING_H
#define Q_MUR_TESTS_PLAIN_SAMPLING_H

#include "words.h"

namespace plain {

/// How a family counts source positions, in 32 bits with or without a sign.
struct PositionFormat {
    int fraction;
    bool isSigned;

    constexpr Number one() const { return Number{1} << fraction; }
    constexpr Number kept(Number value) const { return isSigned ? signed32(value) : unsigned32(value); }
};

constexpr PositionFormat unsigned12_20 = {20, false};
constexpr PositionFormat signed12_20 = {20, true};
constexpr PositionFormat unsigned17_15 = {15, false};
constexpr PositionFormat signed17_15 = {15, true};
constexpr PositionFormat signed16_16 = {16, true};
constexpr PositionFormat signed15_17 = {17, true};

/// A source position split up: the pixel, and the sixteenths on the way to the next.
struct Position {
    Number pixel;
    Number sixteenths;
};

/// Where pixel `index` of a destination of `dstExtent` looks at a source of `srcExtent`, beginning from `start`.
constexpr Position positionOf(Number index, Number srcExtent, Number dstExtent, PositionFormat format,
                              Number start = 0) {
    const Number one = format.one();
    const Number step = format.kept(srcExtent * one) / dstExtent;
    const Number position = format.kept(start + index * step);
    const Number pixel = flooredQuotient(position, one);
    return {pixel, (position - pixel * one) / (one / 16)};
}

/// Filtered channels, each 256 times as large.
struct Sums {
    Number red = 0;
    Number green = 0;
    Number blue = 0;

    constexpr void add(q_ulong pixel, Number weight) {
        red += redOf(pixel) * weight;
        green += greenOf(pixel) * weight;
        blue += blueOf(pixel) * weight;
    }
    constexpr q_ulong pixel() const { return pixelOf(red / 256, green / 256, blue / 256); }
};

/// Each channel as a byte of its own; blue is not masked: it may reach into green and red, but not into the top byte.
inline q_ulong blendWithOpenBlue(q_ulong d, q_ulong s, Number weight) {
    const auto sum = [&](Number a, Number b) { return unsigned32(b * weight + a * (256 - weight)); };
    return word((sum(redOf(d), redOf(s)) & 0xFF00) * 256 + (sum(greenOf(d), greenOf(s)) & 0xFF00)) |
           word(sum(blueOf(d), blueOf(s)) / 256);
}

/// Four pixels with their upper left one at (x, y).
inline Sums fourTaps(Pixels src, Number x, Number y, Number fx, Number fy) {
    Sums sums;
    sums.add(src.at(x, y), (16 - fx) * (16 - fy));
    sums.add(src.at(x + 1, y), fx * (16 - fy));
    sums.add(src.at(x, y + 1), (16 - fx) * fy);
    sums.add(src.at(x + 1, y + 1), fx * fy);
    return sums;
}

/// The same at a place in `rect`, whose last column and last row stand in for what lies behind them.
inline Sums tapsInside(Pixels src, const tagRECT &rect, Position column, Position row) {
    const Number x = rect.left + column.pixel;
    const Number y = rect.top + row.pixel;
    const Number right = column.pixel == widthOf(rect) - 1 ? x : x + 1;
    const Number below = row.pixel == heightOf(rect) - 1 ? y : y + 1;
    Sums sums;
    sums.add(src.at(x, y), (16 - column.sixteenths) * (16 - row.sixteenths));
    sums.add(src.at(right, y), column.sixteenths * (16 - row.sixteenths));
    sums.add(src.at(x, below), (16 - column.sixteenths) * row.sixteenths);
    sums.add(src.at(right, below), column.sixteenths * row.sixteenths);
    return sums;
}

} // namespace plain

#endif
