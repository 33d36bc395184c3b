/// \file
/// Quads of plain texels once more: each pixel's texel is computed from the corners alone.
#ifndef Q_MUR_TESTS_PLAIN_NEAREST_QUADS_H
#define Q_MUR_TESTS_PLAIN_NEAREST_QUADS_H

#include "textured_polygons.h"

namespace plain {

/// In whole pixels and texels.
struct PlainCorner {
    int x;
    int y;
    int u;
    int v;
};

/// Where an edge stands on a row, from 18 fraction bits of a reciprocal.
inline Number onPlainEdge(const PlainCorner &from, const PlainCorner &to, int PlainCorner::*value, Number y) {
    const Number reciprocal = per(0x40000, signed32(Number{to.y} - from.y - 1));
    const Number t = signed32((y - from.y) * reciprocal);
    return signed32((signed32(signed32(Number{to.*value} - from.*value) * t) >> 18) + from.*value);
}

inline void drawPlainQuad(Pixels dst, Pixels tex, const tagRECT &clip, const std::array<PlainCorner, 4> &given,
                          bool isBlackOutside) {
    const std::array<PlainCorner, 4> corners = fromTopToBottom(given);
    int band = 0;
    forBandsBetween(corners, [&](const auto &l0, const auto &l1, const auto &r0, const auto &r1) {
        const Number first = std::max<Number>(corners[static_cast<std::size_t>(band)].y, clip.top);
        const Number end = std::min<Number>(corners[static_cast<std::size_t>(++band)].y, clip.bottom);
        for (Number y = first; y < end; ++y) {
            const auto onLeft = [&](int PlainCorner::*value) { return onPlainEdge(l0, l1, value, y); };
            const auto onRight = [&](int PlainCorner::*value) { return onPlainEdge(r0, r1, value, y); };
            const Number left = onLeft(&PlainCorner::x);
            const Number right = onRight(&PlainCorner::x);
            for (Number x = std::max<Number>(left, clip.left); x < std::min<Number>(right, clip.right); ++x) {
                const auto between = [&](int PlainCorner::*value) {
                    const Number t = signed32((x - left) * per(0x40000, signed32(right - left - 1)));
                    return signed32((signed32(t * signed32(onRight(value) - onLeft(value))) >> 18) + onLeft(value));
                };
                const Number u = between(&PlainCorner::u);
                const Number v = between(&PlainCorner::v);
                if (contains(clip, u, v))
                    dst.at(x, y) = tex.at(u, v);
                else if (isBlackOutside)
                    dst.at(x, y) = 0;
            }
        }
    });
}

template <bool isBlackOutside>
void bltPlainQuad(q_ulong *dst, _POINT3DFLOAT *p0, _POINT3DFLOAT *p1, _POINT3DFLOAT *p2, _POINT3DFLOAT *p3,
                  q_ulong *tex, _POINTINT *t0, _POINTINT *t1, _POINTINT *t2, _POINTINT *t3, tagRECT *clip,
                  q_ulong dstPitch, q_ulong texPitch) {
    const auto corner = [](const _POINT3DFLOAT &point, const _POINTINT &texel) {
        return PlainCorner{truncated(point.x), truncated(point.y), texel.x, texel.y};
    };
    drawPlainQuad({dst, signed32(dstPitch)}, {tex, signed32(texPitch)}, *clip,
                  {corner(*p0, *t0), corner(*p1, *t1), corner(*p2, *t2), corner(*p3, *t3)}, isBlackOutside);
}

inline constexpr auto i3D_Blt_Rect_Nearest_NoLight_NoHPE_Safe = bltPlainQuad<false>;
inline constexpr auto i3D_Blt_Rect_Nearest_NoLight_NoHPE_SafeBlack = bltPlainQuad<true>;

} // namespace plain

#endif
