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
    const auto corners = fromTopToBottom<tagPOINT>({*p0, *p1, *p2, *p3});
    const bool areBothLeft =
        isLeftOfLine(corners[1], corners[0], corners[3]) && isLeftOfLine(corners[2], corners[0], corners[3]);
    std::size_t band = 0;
    forBandsBetween(corners, [&](const auto &left0, const auto &left1, const auto &right0, const auto &right1) {
        const Number end = areBothLeft && band > 0 ? 0 : 1; // behind the right side, which may stop short
        const Number lastRow = std::min<Number>(corners[band + 1].y, Number{clip->bottom} - 1);
        for (Number y = std::max(corners[band].y, clip->top); y <= lastRow; ++y)
            for (Number x = draw::edgeAt(left0, left1, y); x < draw::edgeAt(right0, right1, y) + end; ++x)
                if (x >= clip->left && x < clip->right)
                    Pixels{surface, pitch}.at(x, y) = *color;
        ++band;
    });
}

} // namespace plain

#endif
