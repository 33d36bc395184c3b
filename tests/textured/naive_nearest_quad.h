/// \file
/// Quads of plain texels, pixel by pixel.
#ifndef Q_MUR_TESTS_TEXTURED_NAIVE_NEAREST_QUAD_H
#define Q_MUR_TESTS_TEXTURED_NAIVE_NEAREST_QUAD_H

#include "support/surface.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace naive::nearestQuad {

using test::Surface;

/// A corner in whole pixels and texels.
struct Corner {
    int x;
    int y;
    int u;
    int v;
};

using Corners = std::array<Corner, 4>;

inline int wrapped(std::uint64_t value) {
    return static_cast<int>(static_cast<std::uint32_t>(value));
}

inline int times(int a, int b) {
    return wrapped(static_cast<std::uint64_t>(static_cast<std::int64_t>(a)) *
                   static_cast<std::uint64_t>(static_cast<std::int64_t>(b)));
}

/// Where an edge stands at a row. `value` picks x, u or v.
inline int onEdge(const Corner &p, const Corner &q, int Corner::*value, int y) {
    const int n = q.y - p.y - 1;
    const int reciprocal = n == 0 ? 0x40000 : 0x40000 / n;
    const int t = times(y - p.y, reciprocal);
    return (times(q.*value - p.*value, t) >> 18) + p.*value;
}

inline void naiveBand(Surface &dst, const Surface &tex, const tagRECT &clip, bool black, int firstRow, int endRow,
                      const Corner &l0, const Corner &l1, const Corner &r0, const Corner &r1) {
    for (int y = std::max(firstRow, static_cast<int>(clip.top)); y < std::min(endRow, static_cast<int>(clip.bottom));
         ++y) {
        const int left = onEdge(l0, l1, &Corner::x, y);
        const int right = onEdge(r0, r1, &Corner::x, y);
        const int uL = onEdge(l0, l1, &Corner::u, y);
        const int vL = onEdge(l0, l1, &Corner::v, y);
        const int du = onEdge(r0, r1, &Corner::u, y) - uL;
        const int dv = onEdge(r0, r1, &Corner::v, y) - vL;
        for (int x = left; x < right; ++x) {
            if (x < clip.left || x >= clip.right)
                continue;
            const int w = right - left - 1 == 0 ? 1 : right - left - 1;
            const int q = 0x40000 / w;
            const int column = (times(times(x - left, q), du) >> 18) + uL;
            const int row = (times(times(x - left, q), dv) >> 18) + vL;
            if (row >= clip.top && row < clip.bottom && column >= clip.left && column < clip.right)
                dst.at(x, y) = tex.at(column, row);
            else if (black)
                dst.at(x, y) = 0;
        }
    }
}

inline bool leftOfLine(const Corner &p, const Corner &a, const Corner &b) {
    return times(p.y - a.y, b.x - a.x) > times(b.y - a.y, p.x - a.x);
}

inline void naiveQuad(Surface &dst, const Surface &tex, const tagRECT &clip, Corners c, bool black) {
    constexpr std::size_t exchanges[6][2] = {{0, 1}, {0, 2}, {0, 3}, {1, 2}, {1, 3}, {2, 3}};
    for (const auto &pair : exchanges)
        if (c[pair[1]].y < c[pair[0]].y)
            std::swap(c[pair[0]], c[pair[1]]);
    const auto &[top, upper, lower, bottom] = c;
    const bool sideUpper = leftOfLine(upper, top, bottom);
    const bool sideLower = leftOfLine(lower, top, bottom);
    const auto band = [&](int from, int to, const Corner &l0, const Corner &l1, const Corner &r0, const Corner &r1) {
        naiveBand(dst, tex, clip, black, from, to, l0, l1, r0, r1);
    };
    if (sideUpper && sideLower) {
        band(top.y, upper.y, top, upper, top, bottom);
        band(upper.y, lower.y, upper, lower, top, bottom);
        band(lower.y, bottom.y, lower, bottom, top, bottom);
    } else if (sideUpper) {
        band(top.y, upper.y, top, upper, top, lower);
        band(upper.y, lower.y, upper, bottom, top, lower);
        band(lower.y, bottom.y, upper, bottom, lower, bottom);
    } else if (sideLower) {
        band(top.y, upper.y, top, lower, top, upper);
        band(upper.y, lower.y, top, lower, upper, bottom);
        band(lower.y, bottom.y, lower, bottom, upper, bottom);
    } else {
        band(top.y, upper.y, top, bottom, top, upper);
        band(upper.y, lower.y, top, bottom, upper, lower);
        band(lower.y, bottom.y, top, bottom, lower, bottom);
    }
}

} // namespace naive::nearestQuad

#endif
