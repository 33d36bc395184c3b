/// \file
/// Walks of round shapes: runs of columns, given as offsets from a centre, row by row.
#ifndef Q_MUR_WALKS_ROUND_H
#define Q_MUR_WALKS_ROUND_H

#include "base/surface.h"
#include "base/wide.h"
#include "q_Mur/frame.h"
#include "walks/fill.h"

#include <cmath>
#include <limits>

namespace qmur {

/// Where a shape stands on a surface.
struct Centre {
    q_ulong *surface;
    Distance pitch;
    int x;
    int y;

    q_ulong *pixel(int dx, int dy) const {
        return pixelAt(surface, pitch, static_cast<Distance>(x) + dx, static_cast<Distance>(y) + dy);
    }
};

/// Offsets that leave nothing out.
constexpr Window unclipped = {{std::numeric_limits<int>::min(), std::numeric_limits<int>::max()},
                              {std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}};

/// A span of coordinates as offsets from a centre.
constexpr Span offsetsFrom(int centre, Span span) {
    const auto offset = [centre](int coordinate) {
        constexpr long long least = std::numeric_limits<int>::min();
        constexpr long long greatest = std::numeric_limits<int>::max();
        const long long exact = static_cast<long long>(coordinate) - centre;
        return static_cast<int>(exact < least ? least : exact > greatest ? greatest : exact);
    };
    return {offset(span.begin), offset(span.end)};
}

constexpr Window offsetsFrom(const Centre &centre, const Window &window) {
    return {offsetsFrom(centre.x, window.columns), offsetsFrom(centre.y, window.rows)};
}

/// A clip without its first column and its first row.
constexpr Window interiorOf(const tagRECT &clip) {
    const Window whole = windowOf(clip);
    return {{nextOrLargest(whole.columns.begin), whole.columns.end}, {nextOrLargest(whole.rows.begin), whole.rows.end}};
}

/// Offsets from -radius to radius, both included, in either direction. Not for negative radii.
constexpr Window squareThrough(int radius) {
    const Span span = {-radius, nextOrLargest(radius)};
    return {span, span};
}

/// Offsets from -radius up to, not including, radius. Not for negative radii.
constexpr Window squareUpTo(int radius) {
    return {{-radius, radius}, {-radius, radius}};
}

/// The greatest h with h * h + rowSquare at most `limit`; -1 if there is none.
inline int halfChord(int limit, int rowSquare) {
    if (limit < rowSquare)
        return -1;
    // The double root of a 32-bit number truncates as the exact root does.
    return truncateToInt(std::sqrt(static_cast<double>(limit) - rowSquare));
}

/// The half-chord over a squared length as the table has it: four times the root of a sixteenth, so 0 below 16.
inline int tableHalfChord(int square) {
    const unsigned index = static_cast<unsigned>(square) >> 4;
    return iSqrt[index < 8192 ? index : 8191] >> 8;
}

/// Calls `run(first pixel, offsets of the columns, dy)` for each row of a shape; `chord(dy)` gives its columns.
template <class Chord, class Run>
void forEachRun(const Centre &centre, const Window &offsets, Chord chord, Run run) {
    for (int dy = offsets.rows.begin; dy < offsets.rows.end; ++dy) {
        const Span columns = intersection(chord(dy), offsets.columns);
        if (!columns.empty())
            run(centre.pixel(columns.begin, dy), columns, dy);
    }
}

/// Beyond it the squared distance of a disc's square's corners, twice that of the radius, wraps.
constexpr int largestExactRadius = 32767;

/// The columns of a disc's row `dy`.
constexpr auto discChord(int radius) {
    return [radiusSquare = radius * radius](int dy) {
        const int half = halfChord(radiusSquare, dy * dy);
        return Span{-half, half + 1};
    };
}

/// Calls `pixel(pixel, squared distance)` for every pixel of a disc, rim included.
template <class Pixel>
void forEachInDisc(const Centre &centre, int radius, const Window &within, Pixel pixel) {
    if (radius < 0)
        return;
    const Window offsets = squareThrough(radius).within(within);
    if (radius <= largestExactRadius) {
        forEachRun(centre, offsets, discChord(radius), [&pixel](q_ulong *at, Span columns, int dy) {
            for (int dx = columns.begin; dx < columns.end; ++dx, ++at)
                pixel(*at, dx * dx + dy * dy);
        });
        return;
    }
    // From here on the squares wrap, and the shape is what they leave of it.
    const auto wholeRow = [columns = offsets.columns](int) { return columns; };
    const int radiusSquare = wrapMultiply(radius, radius);
    forEachRun(centre, offsets, wholeRow, [&pixel, radiusSquare](q_ulong *at, Span columns, int dy) {
        for (int dx = columns.begin; dx < columns.end; ++dx, ++at) {
            const int square = wrapAdd(wrapMultiply(dx, dx), wrapMultiply(dy, dy));
            if (square <= radiusSquare)
                pixel(*at, square);
        }
    });
}

/// Fills a disc, rim included.
inline void fillDisc(const Centre &centre, int radius, const Window &within, q_ulong colour) {
    if (radius > largestExactRadius)
        return forEachInDisc(centre, radius, within, [colour](q_ulong &d, int) { d = colour; });
    if (radius < 0)
        return;
    // No processor sees which rows are next: they are too far apart, and too short.
    constexpr int ahead = 4;
    const Window offsets = squareThrough(radius).within(within);
    forEachRun(centre, offsets, discChord(radius), [=, pitch = centre.pitch](q_ulong *at, Span columns, int dy) {
        if (dy < offsets.rows.end - ahead)
            for (int x = 0; x < columns.length(); x += 16)
                willWrite(at + ahead * pitch + x);
        fillRun(at, columns.length(), colour);
    });
}

/// Calls `pixel(pixel, squared distance)` for every pixel whose squared distance lies from `low` to `high`, both
/// included, each row from left to right.
template <class Pixel>
void forEachInRing(const Centre &centre, const Window &offsets, int low, int high, Pixel pixel) {
    const auto walk = [&](Span run, int dy) {
        const Span columns = intersection(run, offsets.columns);
        if (columns.empty())
            return;
        q_ulong *at = centre.pixel(columns.begin, dy);
        for (int dx = columns.begin; dx < columns.end; ++dx, ++at)
            pixel(*at, dx * dx + dy * dy);
    };
    const int reach = halfChord(high, 0);
    const Span rows = intersection(offsets.rows, {-reach, reach + 1});
    for (int dy = rows.begin; dy < rows.end; ++dy) {
        const int outer = halfChord(high, dy * dy);
        const int hole = halfChord(low - 1, dy * dy);
        if (hole < 0) {
            walk({-outer, outer + 1}, dy);
        } else {
            walk({-outer, -hole}, dy);
            walk({hole + 1, outer + 1}, dy);
        }
    }
}

} // namespace qmur

#endif
