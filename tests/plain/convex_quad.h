/// \file
/// The convex quad and the side of a line once more.
#ifndef Q_MUR_TESTS_PLAIN_CONVEX_QUAD_H
#define Q_MUR_TESTS_PLAIN_CONVEX_QUAD_H

#include "draw.h"
#include "lines.h"

namespace plain {

namespace draw {

/// Where an edge that goes down from a to b crosses a row.
inline Number edgeAt(const tagPOINT &a, const tagPOINT &b, Number y) {
    const Number rows = Number{b.y} - a.y;
    const Number inverse = rows == 0 ? 262144 : 262144 / rows;
    const Number columns = signed32(signed32(signed32(Number{b.x} - a.x) * (y - a.y)) * inverse);
    return signed32(flooredQuotient(columns, 262144) + a.x);
}

} // namespace draw

inline int DecisionLine2(int *px, int *py, int *ax, int *ay, int *bx, int *by) {
    return wrappedProduct(*py, *ay, *bx, *ax) > wrappedProduct(*by, *ay, *px, *ax) ? 1 : 0;
}

inline int DecisionLine(int *px, int *py, int *ax, int *ay, int *bx, int *by) {
    return wrappedProduct(*bx, *ax, *ay, *py) < wrappedProduct(*ay, *by, *px, *ax) ? 1 : 0;
}

inline void Rect_Safe(q_ulong *surface, tagRECT *clip, int pitch, tagPOINT *p0, tagPOINT *p1, tagPOINT *p2,
                      tagPOINT *p3, q_ulong *color) {
    std::array<tagPOINT, 4> p = {*p0, *p1, *p2, *p3};
    for (std::size_t i = 0; i < 3; ++i)
        for (std::size_t j = i + 1; j < 4; ++j)
            if (p[i].y > p[j].y)
                std::swap(p[i], p[j]);
    // The corners that the left and the right side of each band run between, by which of the middle corners lie left.
    struct Sides {
        std::size_t leftFrom, leftTo, rightFrom, rightTo;
    };
    constexpr Sides sides[2][2][3] = {
        {{{0, 3, 0, 1}, {0, 3, 1, 2}, {0, 3, 2, 3}}, {{0, 2, 0, 1}, {0, 2, 1, 3}, {2, 3, 1, 3}}},
        {{{0, 1, 0, 2}, {1, 3, 0, 2}, {1, 3, 2, 3}}, {{0, 1, 0, 3}, {1, 2, 0, 3}, {2, 3, 0, 3}}},
    };
    const bool first = isLeftOfLine(p[1], p[0], p[3]);
    const bool second = isLeftOfLine(p[2], p[0], p[3]);
    for (std::size_t band = 0; band < 3; ++band) {
        const Sides &side = sides[first][second][band];
        const bool stopsShort = first && second && band > 0;
        const Number lastRow = std::min<Number>(p[band + 1].y, Number{clip->bottom} - 1);
        for (Number y = std::max(p[band].y, clip->top); y <= lastRow; ++y) {
            const Number left = draw::edgeAt(p[side.leftFrom], p[side.leftTo], y);
            const Number right = draw::edgeAt(p[side.rightFrom], p[side.rightTo], y);
            for (Number x = left; x <= (stopsShort ? right - 1 : right); ++x)
                if (x >= clip->left && x < clip->right)
                    Pixels{surface, pitch}.at(x, y) = *color;
        }
    }
}

} // namespace plain

#endif
