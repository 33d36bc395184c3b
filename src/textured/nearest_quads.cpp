#include "base/wide.h"
#include "q_Mur/textured.h"
#include "walks/texel_bands.h"

namespace {

using namespace qmur;

Corner<TexelColumn> cornerOf(const _POINT3DFLOAT &point, const _POINTINT &texel) {
    return {truncateToInt(point.y), {truncateToInt(point.x), texel.x, texel.y}};
}

template <class Outside>
void drawQuad(q_ulong *dst, q_ulong dstPitch, const q_ulong *tex, q_ulong texPitch, const tagRECT &clip,
              const Quad<TexelColumn> &corners, Outside outside) {
    const auto draw = [&](const Edge<TexelColumn> &left, const Edge<TexelColumn> &right) {
        drawTexelBand<18>(dst, asDistance(dstPitch), tex, asDistance(texPitch), windowOf(clip), left, right, outside);
    };
    forEachBand(sortedQuad(corners), isLeftOfLine, draw);
}

} // namespace

void i3D_Blt_Rect_Nearest_NoLight_NoHPE_Safe(q_ulong *dst, _POINT3DFLOAT *p0, _POINT3DFLOAT *p1, _POINT3DFLOAT *p2,
                                             _POINT3DFLOAT *p3, q_ulong *tex, _POINTINT *t0, _POINTINT *t1,
                                             _POINTINT *t2, _POINTINT *t3, tagRECT *clip, q_ulong dstPitch,
                                             q_ulong texPitch) {
    drawQuad(dst, dstPitch, tex, texPitch, *clip,
             {cornerOf(*p0, *t0), cornerOf(*p1, *t1), cornerOf(*p2, *t2), cornerOf(*p3, *t3)}, [](q_ulong &) {});
}

void i3D_Blt_Rect_Nearest_NoLight_NoHPE_SafeBlack(q_ulong *dst, _POINT3DFLOAT *p0, _POINT3DFLOAT *p1, _POINT3DFLOAT *p2,
                                                  _POINT3DFLOAT *p3, q_ulong *tex, _POINTINT *t0, _POINTINT *t1,
                                                  _POINTINT *t2, _POINTINT *t3, tagRECT *clip, q_ulong dstPitch,
                                                  q_ulong texPitch) {
    drawQuad(dst, dstPitch, tex, texPitch, *clip,
             {cornerOf(*p0, *t0), cornerOf(*p1, *t1), cornerOf(*p2, *t2), cornerOf(*p3, *t3)},
             [](q_ulong &pixel) { pixel = 0; });
}
