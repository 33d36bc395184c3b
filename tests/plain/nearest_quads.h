/// \file
/// Quads of plain texels once more: each pixel's texel is computed from the corners alone.
#ifndef Q_MUR_TESTS_PLAIN_NEAREST_QUADS_H
#define Q_MUR_TESTS_PLAIN_NEAREST_QUADS_H

#include "textured_polygons.h"

namespace plain {

template <bool isBlackOutside>
void bltPlainQuad(q_ulong *dst, _POINT3DFLOAT *p0, _POINT3DFLOAT *p1, _POINT3DFLOAT *p2, _POINT3DFLOAT *p3,
                  q_ulong *tex, _POINTINT *t0, _POINTINT *t1, _POINTINT *t2, _POINTINT *t3, tagRECT *clip,
                  q_ulong dstPitch, q_ulong texPitch) {
    const auto corner = [](const _POINT3DFLOAT &point, const _POINTINT &texel) {
        return TexelCorner{truncated(point.x), truncated(point.y), texel.x, texel.y};
    };
    const auto corners =
        fromTopToBottom<TexelCorner>({corner(*p0, *t0), corner(*p1, *t1), corner(*p2, *t2), corner(*p3, *t3)});
    std::size_t band = 0;
    forBandsBetween(corners, [&](const auto &...edges) {
        const Number first = corners[band].y;
        drawTexelBand({dst, signed32(dstPitch)}, {tex, signed32(texPitch)}, *clip, 18, first, corners[++band].y,
                      edges..., [](q_ulong &d) { d = isBlackOutside ? 0 : d; });
    });
}

inline constexpr auto i3D_Blt_Rect_Nearest_NoLight_NoHPE_Safe = bltPlainQuad<false>;
inline constexpr auto i3D_Blt_Rect_Nearest_NoLight_NoHPE_SafeBlack = bltPlainQuad<true>;

} // namespace plain

#endif
