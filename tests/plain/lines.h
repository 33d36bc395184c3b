/// \file
/// The straight line that every figure walks, the side of it on which a point lies, and polygons cut into bands.
#ifndef Q_MUR_TESTS_PLAIN_LINES_H
#define Q_MUR_TESTS_PLAIN_LINES_H

#include "words.h"

#include <array>
#include <cstdlib>
#include <utility>

namespace plain {

/// Calls `visit(x, y, step)` for the first end with a step of 0 and for each Bresenham step from there.
template <class Visit>
void forBresenham(Number x1, Number y1, Number x2, Number y2, Visit visit) {
    const Number adx = std::abs(x2 - x1);
    const Number ady = std::abs(y2 - y1);
    const bool alongX = adx > ady;
    const Number major = std::max(adx, ady);
    const Number minor = std::min(adx, ady);
    const Number sx = x2 < x1 ? -1 : 1;
    const Number sy = y2 < y1 ? -1 : 1;
    Number d = 2 * minor - major;
    visit(x1, y1, Number{0});
    for (Number step = 1; step <= major; ++step) {
        const bool moves = d >= 0;
        x1 += alongX || moves ? sx : 0;
        y1 += !alongX || moves ? sy : 0;
        d += moves ? 2 * (minor - major) : 2 * minor;
        visit(x1, y1, step);
    }
}

/// The product of two differences; each of the three wraps at 32 bits.
inline Number wrappedProduct(Number a, Number b, Number c, Number d) {
    return signed32(signed32(a - b) * signed32(c - d));
}

template <class Point>
bool isLeftOfLine(const Point &p, const Point &from, const Point &to) {
    return wrappedProduct(p.y, from.y, to.x, from.x) > wrappedProduct(to.y, from.y, p.x, from.x);
}

/// Three corners from top to bottom, of one row the later one above. The first two are compared as they are given, the
/// third with their rows in whole pixels.
template <class Corner, class Row>
std::array<Corner, 3> fromTopToBottom(const std::array<Corner, 3> &given, Row y0, Row y1, Row y2) {
    const bool isInOrder = y0 < y1;
    const Corner &first = given[isInOrder ? 0 : 1];
    const Corner &second = given[isInOrder ? 1 : 0];
    if (static_cast<Row>(second.y) < y2)
        return {first, second, given[2]};
    if (static_cast<Row>(first.y) < y2)
        return {first, given[2], second};
    return {given[2], first, second};
}

/// Four corners from top to bottom, ties in the order that six exchanges leave.
template <class Corner>
std::array<Corner, 4> fromTopToBottom(std::array<Corner, 4> corners) {
    constexpr std::size_t exchanges[6][2] = {{0, 1}, {0, 2}, {0, 3}, {1, 2}, {1, 3}, {2, 3}};
    for (const auto &[i, j] : exchanges)
        if (corners[j].y < corners[i].y)
            std::swap(corners[i], corners[j]);
    return corners;
}

/// Calls `draw(left0, left1, right0, right1)` for the bands between sorted corners.
template <class Corner, class Draw>
void forBandsBetween(const std::array<Corner, 4> &corners, Draw draw) {
    const auto &[top, upper, lower, bottom] = corners;
    const bool upperIsLeft = isLeftOfLine(upper, top, bottom);
    const bool lowerIsLeft = isLeftOfLine(lower, top, bottom);
    if (upperIsLeft && lowerIsLeft) {
        draw(top, upper, top, bottom);
        draw(upper, lower, top, bottom);
        draw(lower, bottom, top, bottom);
    } else if (upperIsLeft) {
        draw(top, upper, top, lower);
        draw(upper, bottom, top, lower);
        draw(upper, bottom, lower, bottom);
    } else if (lowerIsLeft) {
        draw(top, lower, top, upper);
        draw(top, lower, upper, bottom);
        draw(lower, bottom, upper, bottom);
    } else {
        draw(top, bottom, top, upper);
        draw(top, bottom, upper, lower);
        draw(top, bottom, lower, bottom);
    }
}
template <class Corner, class Draw>
void forBandsBetween(const std::array<Corner, 3> &corners, Draw draw) {
    const auto &[top, middle, bottom] = corners;
    if (isLeftOfLine(middle, top, bottom)) {
        draw(top, middle, top, bottom);
        draw(middle, bottom, top, bottom);
    } else {
        draw(top, bottom, top, middle);
        draw(top, bottom, middle, bottom);
    }
}

/// A corner on the destination and on the source.
struct TexelCorner {
    Number x;
    Number y;
    Number u;
    Number v;
};

/// What `steps` of so many come to on the way from one number to another, by a reciprocal of one step less.
inline Number shortenedWay(Number from, Number to, Number steps, Number length, int bits) {
    const Number rest = signed32(length - 1);
    const Number reciprocal = (Number{1} << bits) / (rest == 0 ? 1 : rest);
    const Number gained = signed32(signed32(signed32(to - from) * signed32(steps)) * reciprocal);
    return signed32(flooredQuotient(gained, Number{1} << bits) + from);
}

/// Draws the nearest texels on the rows between two edges; texels outside the clip leave the pixel to `outside`.
template <class Outside>
void drawTexelBand(Pixels dst, Pixels tex, const tagRECT &clip, int bits, Number firstRow, Number endRow,
                   const TexelCorner &left0, const TexelCorner &left1, const TexelCorner &right0,
                   const TexelCorner &right1, Outside outside) {
    for (Number y = std::max<Number>(firstRow, clip.top); y < std::min<Number>(endRow, clip.bottom); ++y) {
        const auto onEdge = [=](const TexelCorner &upper, const TexelCorner &lower, Number TexelCorner::*value) {
            return shortenedWay(upper.*value, lower.*value, y - upper.y, lower.y - upper.y, bits);
        };
        const Number left = onEdge(left0, left1, &TexelCorner::x);
        const Number right = onEdge(right0, right1, &TexelCorner::x);
        for (Number x = std::max<Number>(left, clip.left); x < std::min<Number>(right, clip.right); ++x) {
            const auto between = [&](Number TexelCorner::*value) {
                return shortenedWay(onEdge(left0, left1, value), onEdge(right0, right1, value), x - left, right - left,
                                    bits);
            };
            const Number u = between(&TexelCorner::u);
            const Number v = between(&TexelCorner::v);
            if (contains(clip, u, v))
                dst.at(x, y) = tex.at(u, v);
            else
                outside(dst.at(x, y));
        }
    }
}

} // namespace plain

#endif
