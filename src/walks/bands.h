/// \file
/// Convex polygons, band by band: between the rows of one corner and of the next lower one, a polygon is what lies
/// between two straight edges.
///
/// Corners carry what their family likes: a struct of ints with a column `x` among them, and a static function
/// `each(operation, carried...)` that makes such a struct of what the operation makes of each member.
#ifndef Q_MUR_WALKS_BANDS_H
#define Q_MUR_WALKS_BANDS_H

#include "base/surface.h"

#include <array>
#include <concepts>
#include <cstddef>
#include <utility>

namespace qmur {

template <class Type>
concept Carried = requires(const Type &carried) {
    { carried.x } -> std::same_as<const int &>;
    { Type::each(wrapAdd, carried, carried) } -> std::same_as<Type>;
};

template <Carried Type>
constexpr Type operator+(const Type &a, const Type &b) {
    return Type::each(wrapAdd, a, b);
}

template <Carried Type>
constexpr Type operator-(const Type &a, const Type &b) {
    return Type::each(wrapSubtract, a, b);
}

template <Carried Type>
constexpr Type operator*(const Type &a, int factor) {
    return Type::each([factor](int value) { return wrapMultiply(value, factor); }, a);
}

template <Carried Type>
constexpr Type operator/(const Type &a, int divisor) {
    return Type::each([divisor](int value) { return wrapDivide(value, divisor); }, a);
}

template <Carried Type>
constexpr Type operator<<(const Type &a, int bits) {
    return Type::each([bits](int value) { return value << bits; }, a);
}

template <Carried Type>
constexpr Type operator>>(const Type &a, int bits) {
    return Type::each([bits](int value) { return value >> bits; }, a);
}

/// A corner in whole pixels, with what it carries.
template <Carried Type>
struct Corner {
    int y;
    Type at;
};

/// Corners from top to bottom.
template <Carried Type>
using Triangle = std::array<Corner<Type>, 3>;
template <Carried Type>
using Quad = std::array<Corner<Type>, 4>;

/// An edge, from its upper to its lower corner.
template <Carried Type>
struct Edge {
    const Corner<Type> &upper;
    const Corner<Type> &lower;
};

/// Whether a point lies to the left of a line that goes down.
constexpr bool isLeftOfLine(_POINTINT point, _POINTINT from, _POINTINT to) {
    return wrapMultiply(wrapSubtract(point.y, from.y), wrapSubtract(to.x, from.x)) >
           wrapMultiply(wrapSubtract(to.y, from.y), wrapSubtract(point.x, from.x));
}

/// The same with the factors turned round. Meant: the two tests part where a product wraps.
constexpr bool isLeftOfLineTurned(_POINTINT point, _POINTINT from, _POINTINT to) {
    return wrapMultiply(wrapSubtract(to.x, from.x), wrapSubtract(from.y, point.y)) <
           wrapMultiply(wrapSubtract(from.y, to.y), wrapSubtract(point.x, from.x));
}

/// From top to bottom; these very exchanges decide how corners of one row come to stand, and so on their sides.
template <Carried Type>
Quad<Type> sortedQuad(Quad<Type> corners) {
    for (std::size_t upper = 0; upper < 3; ++upper)
        for (std::size_t lower = upper + 1; lower < 4; ++lower)
            if (corners[lower].y < corners[upper].y)
                std::swap(corners[upper], corners[lower]);
    return corners;
}

/// From top to bottom; of one row, the later stands above. The first two are compared by the rows `y0` and `y1` as they
/// are given, the third's `y2` with the rows as they stand in the other two corners.
template <class Row, Carried Type>
Triangle<Type> sortedTriangle(Row y0, Row y1, Row y2, const Corner<Type> &c0, const Corner<Type> &c1,
                              const Corner<Type> &c2) {
    const bool inOrder = y0 < y1;
    const Corner<Type> &first = inOrder ? c0 : c1;
    const Corner<Type> &second = inOrder ? c1 : c0;
    if (static_cast<Row>(second.y) < y2)
        return {first, second, c2};
    if (static_cast<Row>(first.y) < y2)
        return {first, c2, second};
    return {c2, first, second};
}

/// Whether sorted corners lie wholly above or below, not so much as touching a boundary.
template <Carried Type, std::size_t count>
bool areBeyond(const std::array<Corner<Type>, count> &corners, Span rows) {
    return corners.back().y < rows.begin || rows.end < corners.front().y;
}

/// Calls `band(left edge, right edge)` for the rows between each of the sorted corners and the next. An edge is handed
/// over whole: the band is what both edges cover, and what runs along an edge passes from band to band without a seam.
/// The corners between top and bottom make a chain of edges on whichever side of the line from top to bottom they lie;
/// a corner on the line belongs to the right.
template <Carried Type, std::size_t count, class IsLeft, class Band>
void forEachBand(const std::array<Corner<Type>, count> &corners, IsLeft isLeftOf, Band band) {
    constexpr std::size_t last = count - 1;
    const auto point = [&corners](std::size_t k) { return _POINTINT{corners[k].at.x, corners[k].y}; };
    std::array<bool, count> isLeft = {};
    for (std::size_t k = 1; k < last; ++k)
        isLeft[k] = isLeftOf(point(k), point(0), point(last));
    const auto edgeThrough = [&](std::size_t upper, bool left) {
        std::size_t lower = upper + 1;
        while (upper > 0 && isLeft[upper] != left)
            --upper;
        while (lower < last && isLeft[lower] != left)
            ++lower;
        return Edge<Type>{corners[upper], corners[lower]};
    };
    for (std::size_t k = 0; k < last; ++k)
        band(edgeThrough(k, true), edgeThrough(k, false));
}

template <Carried Type>
constexpr int heightOf(const Edge<Type> &edge) {
    return wrapSubtract(edge.lower.y, edge.upper.y);
}

/// The rows that both edges cover.
template <Carried Type>
constexpr Span rowsOf(const Edge<Type> &left, const Edge<Type> &right) {
    return intersection({left.upper.y, left.lower.y}, {right.upper.y, right.lower.y});
}

// The first way to walk a band: in steps, which add up what they lose.

/// What is carried, in fixed point, and what it gains with each row or pixel.
template <Carried Type>
struct Running {
    Type value;
    Type step;

    constexpr void advance() { value = value + step; }
};

/// An edge at a row, wherever its walk begins: it starts from its own upper corner, so that it passes through the same
/// values under every clip.
template <int fractionBits, Carried Type>
constexpr Running<Type> steppedFrom(const Edge<Type> &edge, int row) {
    const auto &[upper, lower] = edge;
    const Type step = ((lower.at - upper.at) << fractionBits) / oneIfZero(heightOf(edge));
    return {(upper.at << fractionBits) + step * wrapSubtract(row, upper.y), step};
}

/// Calls `row(y, columns, running)` for the rows of a band inside the window: `running` stands at the first column.
/// Columns are floors, from the left edge's up to, not including, the right edge's, so that bands which share an edge
/// meet without a gap or an overlap.
template <int fractionBits, Carried Type, class Row>
void forEachSteppedRow(const Edge<Type> &leftEdge, const Edge<Type> &rightEdge, Window window, Row row) {
    const Span rows = intersection(rowsOf(leftEdge, rightEdge), window.rows);
    if (rows.empty())
        return;
    Running<Type> left = steppedFrom<fractionBits>(leftEdge, rows.begin);
    Running<Type> right = steppedFrom<fractionBits>(rightEdge, rows.begin);
    for (int y = rows.begin; y < rows.end; ++y, left.advance(), right.advance()) {
        const int first = left.value.x >> fractionBits;
        const Span columns = intersection({first, right.value.x >> fractionBits}, window.columns);
        if (columns.empty())
            continue;
        // The width is that of the fixed-point numbers; it may differ from that of the columns by one.
        const int width = oneIfZero(wrapSubtract(right.value.x, left.value.x) >> fractionBits);
        const Type step = (right.value - left.value) / width;
        row(y, columns, Running<Type>{left.value + step * wrapSubtract(columns.begin, first), step});
    }
}

// The second: each row anew from a reciprocal, which the whole edge shares.

/// 1 / distance with so many fraction bits, 1 standing in for a distance of 0.
template <int fractionBits>
constexpr int reciprocal(int distance) {
    return (1 << fractionBits) / oneIfZero(distance);
}

/// An edge that tells what it carries at any row, interpolated over the distance given.
template <int fractionBits, Carried Type>
class SlopedEdge {
public:
    SlopedEdge(const Edge<Type> &edge, int distance)
        : upper(edge.upper), slope((edge.lower.at - edge.upper.at) * reciprocal<fractionBits>(distance)) {}

    Type at(int y) const { return (slope * wrapSubtract(y, upper.y) >> fractionBits) + upper.at; }

private:
    Corner<Type> upper;
    Type slope;
};

} // namespace qmur

#endif
