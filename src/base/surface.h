/// \file
/// Positions on surfaces, and the spans of columns and rows that clipping leaves.
#ifndef Q_MUR_BASE_SURFACE_H
#define Q_MUR_BASE_SURFACE_H

#include "base/integers.h"
#include "q_Mur/types.h"

#include <cstddef>

namespace qmur {

/// A distance in pixels: a pitch, or an index on a surface.
using Distance = std::ptrdiff_t;

/// A pitch or coordinate as the interface hands it over. An unsigned one is read as signed, so that a negative value
/// means the same on 64-bit builds as where addresses wrap.
constexpr Distance asDistance(int value) {
    return value;
}
constexpr Distance asDistance(q_ulong value) {
    return static_cast<q_long>(value);
}

/// The pixel at (x, y).
template <class Pixel>
Pixel *pixelAt(Pixel *surface, Distance pitch, Distance x, Distance y) {
    return surface + (y * pitch + x);
}

/// Columns or rows from `begin` up to, not including, `end`.
struct Span {
    int begin;
    int end;

    constexpr bool empty() const { return begin >= end; }
    constexpr int length() const { return wrapSubtract(end, begin); }
    constexpr bool contains(int position) const { return begin <= position && position < end; }
};

constexpr Span intersection(Span a, Span b) {
    return {larger(a.begin, b.begin), smaller(a.end, b.end)};
}

constexpr Span columnsOf(const tagRECT &rect) {
    return {static_cast<int>(rect.left), static_cast<int>(rect.right)};
}

constexpr Span rowsOf(const tagRECT &rect) {
    return {static_cast<int>(rect.top), static_cast<int>(rect.bottom)};
}

/// Columns and rows of a surface, most often those that may be written.
struct Window {
    Span columns;
    Span rows;

    constexpr bool empty() const { return columns.empty() || rows.empty(); }
    constexpr bool contains(int x, int y) const { return columns.contains(x) && rows.contains(y); }
    /// The part that lies in another window too.
    constexpr Window within(const Window &other) const {
        return {intersection(columns, other.columns), intersection(rows, other.rows)};
    }
};

/// The window of a clip width and height.
constexpr Window windowOf(int clipWidth, int clipHeight) {
    return {{0, clipWidth}, {0, clipHeight}};
}

constexpr Window windowOf(const tagRECT &rect) {
    return {columnsOf(rect), rowsOf(rect)};
}

constexpr int widthOf(const tagRECT &rect) {
    return wrapSubtract(static_cast<int>(rect.right), static_cast<int>(rect.left));
}

constexpr int heightOf(const tagRECT &rect) {
    return wrapSubtract(static_cast<int>(rect.bottom), static_cast<int>(rect.top));
}

/// True for a rectangle that covers no pixel, or more columns or rows than an int counts.
constexpr bool isEmpty(const tagRECT &rect) {
    return widthOf(rect) < 1 || heightOf(rect) < 1;
}

} // namespace qmur

#endif
