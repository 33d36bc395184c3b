/// \file
/// A mapped triangle, pixel by pixel.
#ifndef Q_MUR_TESTS_WARP_NAIVE_TRIANGLE_H
#define Q_MUR_TESTS_WARP_NAIVE_TRIANGLE_H

#include "turning.h"

#include <algorithm>
#include <array>

namespace naive::triangle {

using test::low32;
using test::product32;
using test::Surface;

/// A corner on the destination and on the source.
struct Corner {
    int x;
    int y;
    int u;
    int v;
};

using Corners = std::array<Corner, 3>;

inline void draw(Surface &dst, tagRECT clip, Surface &src, const Corners &corners) {
    _POINTINT screen[3];
    _POINTINT source[3];
    for (std::size_t i = 0; i < 3; ++i) {
        screen[i] = {corners[i].x, corners[i].y};
        source[i] = {corners[i].u, corners[i].v};
    }
    Blt_Triangle(dst.pixels(), &clip, dst.pitch(), &screen[0], &screen[1], &screen[2], src.pixels(), src.pitch(),
                 &source[0], &source[1], &source[2]);
}

inline Corners sortedByRow(const Corners &p) {
    const Corner first = p[0].y < p[1].y ? p[0] : p[1];
    const Corner second = p[0].y < p[1].y ? p[1] : p[0];
    if (p[2].y > second.y)
        return {first, second, p[2]};
    if (p[2].y > first.y)
        return {first, p[2], second};
    return {p[2], first, second};
}

inline int inverse20(int d) {
    return 1048576 / (d == 0 ? 1 : d);
}

/// `value` of a corner at row y on the edge between two of them.
inline int onEdge(const Corner &upper, const Corner &lower, int Corner::*value, int y) {
    const int product =
        product32(product32(lower.*value - upper.*value, y - upper.y), inverse20(lower.y - upper.y - 1));
    return (product >> 20) + upper.*value;
}

/// Asks every pixel of the surface whether and what the triangle shows there.
inline void naiveTriangle(Surface &dst, const tagRECT &clip, const Surface &src, const Corners &corners) {
    const auto [top, mid, bottom] = sortedByRow(corners);
    const bool midOnLeft = product32(bottom.x - top.x, top.y - mid.y) < product32(top.y - bottom.y, mid.x - top.x);
    for (int y = std::max(top.y, low32(clip.top)); y < std::min(bottom.y, low32(clip.bottom)); ++y) {
        const bool upperPart = y < mid.y;
        const Corner &shortUpper = upperPart ? top : mid;
        const Corner &shortLower = upperPart ? mid : bottom;
        const auto left = [&, &t = top, &b = bottom](int Corner::*value) {
            return midOnLeft ? onEdge(shortUpper, shortLower, value, y) : onEdge(t, b, value, y);
        };
        const auto right = [&, &t = top, &b = bottom](int Corner::*value) {
            return midOnLeft ? onEdge(t, b, value, y) : onEdge(shortUpper, shortLower, value, y);
        };
        const int xL = left(&Corner::x);
        const int xR = right(&Corner::x);
        const int invS = inverse20(xR - xL - 1);
        for (int x = 0; x < dst.width(); ++x) {
            if (x < xL || x >= xR || x < clip.left || x >= clip.right)
                continue;
            const auto across = [&](int Corner::*value) {
                return (product32(x - xL, product32(right(value) - left(value), invS)) >> 20) + left(value);
            };
            const int u = across(&Corner::u);
            const int v = across(&Corner::v);
            if (v >= clip.top && v < clip.bottom && u >= clip.left && u < clip.right)
                dst.at(x, y) = src.at(u, v);
        }
    }
}

} // namespace naive::triangle

#endif
