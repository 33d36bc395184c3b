#include "q_Mur/warp.h"
#include "walks/texel_bands.h"

namespace {

using namespace qmur;

Corner<TexelColumn> cornerOf(const _POINTINT &screen, const _POINTINT &texel) {
    return {screen.y, {screen.x, texel.x, texel.y}};
}

} // namespace

void Blt_Triangle(q_ulong *dst, tagRECT *clip, int dstPitch, _POINTINT *p0, _POINTINT *p1, _POINTINT *p2, q_ulong *src,
                  int srcPitch, _POINTINT *t0, _POINTINT *t1, _POINTINT *t2) {
    const _POINTINT *const points[] = {p0, p1, p2};
    const _POINTINT *const texels[] = {t0, t1, t2};
    const Triangle<TexelColumn> corners =
        sortedTriangle(p0->y, p1->y, p2->y, [&](int i) { return cornerOf(*points[i], *texels[i]); });
    const auto draw = [&](const Edge<TexelColumn> &left, const Edge<TexelColumn> &right) {
        drawTexelBand<20>(dst, dstPitch, src, srcPitch, windowOf(*clip), left, right, [](q_ulong &) {});
    };
    // Meant: the other form of the side test, which no other polygon takes.
    forEachBand(corners, isLeftOfLineTurned, draw);
}
