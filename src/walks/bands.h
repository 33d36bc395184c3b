/// \file
/// Convex polygons, band by band: between the rows of one corner and of the next lower one, a polygon is what lies
/// between two straight edges.
///
/// Corners carry what their family likes: a struct of ints, a column `x` among them, and lanes of ints, and a static
/// function `each(operation, carried...)` that makes such a struct of what the operation makes of each member.
#ifndef Q_MUR_WALKS_BANDS_H
#define Q_MUR_WALKS_BANDS_H

#include "base/divisor.h"
#include "base/surface.h"

#include <array>
#include <concepts>
#include <cstddef>
#include <utility>

namespace qmur {

namespace detail {

/// Wrapping sums and differences of what is carried, number by number and lanes by lanes.
struct Sum {
    constexpr int operator()(int a, int b) const { return wrapAdd(a, b); }
    Numbers<4> operator()(Numbers<4> a, Numbers<4> b) const { return a + b; }
};
struct Difference {
    constexpr int operator()(int a, int b) const { return wrapSubtract(a, b); }
    Numbers<4> operator()(Numbers<4> a, Numbers<4> b) const { return a - b; }
};
struct Product {
    int factor;
    constexpr int operator()(int value) const { return wrapMultiply(value, factor); }
    Numbers<4> operator()(Numbers<4> values) const {
        return values * Numbers<4>::all(static_cast<std::uint32_t>(factor));
    }
};

} // namespace detail

template <class Type>
concept Carried = requires(const Type &carried) {
    { carried.x } -> std::same_as<const int &>;
    { Type::each(detail::Sum(), carried, carried) } -> std::same_as<Type>;
};

template <Carried Type>
constexpr Type operator+(const Type &a, const Type &b) {
    return Type::each(detail::Sum(), a, b);
}

template <Carried Type>
constexpr Type operator-(const Type &a, const Type &b) {
    return Type::each(detail::Difference(), a, b);
}

template <Carried Type>
constexpr Type operator*(const Type &a, int factor) {
    return Type::each(detail::Product{factor}, a);
}

template <Carried Type>
Type operator/(const Type &a, const Divisor &divisor) {
    return Type::each([&divisor](auto value) { return value / divisor; }, a);
}

template <Carried Type>
constexpr Type operator<<(const Type &a, int bits) {
    return Type::each([bits](auto value) { return value << bits; }, a);
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

/// Three corners from top to bottom, made by `cornerOf(index)`; of one row, the later stands above. The first two are
/// compared by the rows `y0` and `y1` as they are given, the third's `y2` with the rows as they stand in the other two
/// corners.
///
/// Corners are made in the places where they stay: copies of what was just written in parts would wait for it.
template <class Row, class CornerOf>
auto sortedTriangle(Row y0, Row y1, Row y2, CornerOf cornerOf) -> Triangle<decltype(cornerOf(0).at)> {
    const int first = y0 < y1 ? 0 : 1;
    const int second = 1 - first;
    const bool isLast = static_cast<Row>(cornerOf(second).y) < y2;
    const bool isTop = !isLast && !(static_cast<Row>(cornerOf(first).y) < y2);
    return {cornerOf(isTop ? 2 : first), cornerOf(isLast ? second : isTop ? first : 2), cornerOf(isLast ? 2 : second)};
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
    constexpr void advance(int times) { value = value + step * times; }
};

/// An edge that tells where it stands at any row: it starts from its own upper corner, so that it passes through the
/// same values under every clip and in every band.
template <int fractionBits, Carried Type>
class SteppedEdge {
public:
    explicit SteppedEdge(const Edge<Type> &edge)
        : rows{edge.upper.y, edge.lower.y}, start(edge.upper.at << fractionBits),
          step(((edge.lower.at - edge.upper.at) << fractionBits) / Divisor(oneIfZero(heightOf(edge)))) {}

    Running<Type> from(int row) const { return {start + step * wrapSubtract(row, rows.begin), step}; }
    Span covered() const { return rows; }

private:
    Span rows;
    Type start;
    Type step;
};

/// Calls `band(left, right)` as forEachBand() does for a triangle, with edges that are set up once.
template <int fractionBits, Carried Type, class IsLeft, class Band>
void forEachSteppedBand(const Triangle<Type> &corners, IsLeft isLeftOf, Band band) {
    using Stepped = SteppedEdge<fractionBits, Type>;
    const auto &[top, middle, bottom] = corners;
    const Stepped whole(Edge<Type>{top, bottom});
    const Stepped parts[] = {Stepped(Edge<Type>{top, middle}), Stepped(Edge<Type>{middle, bottom})};
    const bool isLeft = isLeftOf({middle.at.x, middle.y}, {top.at.x, top.y}, {bottom.at.x, bottom.y});
    for (const Stepped &part : parts)
        band(isLeft ? part : whole, isLeft ? whole : part);
}

/// Calls `row(y, columns, running)` for the rows of a band inside the window: `running` stands at the first column, but
/// for its `x`, which the columns have told already. `approach(y, column)` hears a while before where a row begins.
/// Columns are floors, from the left edge's up to, not including, the right edge's, so that bands which share an edge
/// meet without a gap or an overlap.
///
/// Called, it would wait for what `row` has captured to be copied.
template <int fractionBits, Carried Type, class Row, class Approach>
[[gnu::always_inline]] inline void forEachSteppedRow(const SteppedEdge<fractionBits, Type> &leftEdge,
                                                     const SteppedEdge<fractionBits, Type> &rightEdge, Window window,
                                                     Row row, Approach approach) {
    const Span rows = intersection(intersection(leftEdge.covered(), rightEdge.covered()), window.rows);
    if (rows.empty() || window.columns.empty())
        return;
    Running<Type> left = leftEdge.from(rows.begin);
    Running<Type> right = rightEdge.from(rows.begin);
    // Several rows are set up before the first of them is drawn: the divisions of one then do not wait for the
    // branches of another.
    struct Start {
        int y;
        Span columns;
        Running<Type> running;
    };
    constexpr int atOnce = 8;
    std::array<Start, atOnce> starts;
    for (int y = rows.begin; y < rows.end;) {
        int count = 0;
        for (int taken = 0; taken < atOnce && y < rows.end; ++taken, ++y, left.advance(), right.advance()) {
            const int first = left.value.x >> fractionBits;
            const Span columns = intersection({first, right.value.x >> fractionBits}, window.columns);
            // The width is that of the fixed-point numbers; it may differ from that of the columns by one.
            const Divisor width(oneIfZero(wrapSubtract(right.value.x, left.value.x) >> fractionBits));
            Running<Type> running = {left.value, (right.value - left.value) / width};
            running.step.x = 0;
            if (columns.begin != first)
                running.advance(wrapSubtract(columns.begin, first));
            starts[count] = {y, columns, running};
            approach(y, columns.empty() ? window.columns.begin : columns.begin);
            count += columns.empty() ? 0 : 1;
        }
        for (int i = 0; i < count; ++i)
            row(starts[i].y, starts[i].columns, starts[i].running);
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
