#include "base/pixel.h"
#include "base/wide.h"
#include "q_Mur/pipeline.h"
#include "spans.h"

namespace {

using namespace qmur;

Corner<ShadedColumn> cornerOf(const _POINT3DFLOAT &point, q_ulong colour) {
    return shadedCorner(truncateToInt(point.x), truncateToInt(point.y), static_cast<int>(colour >> 16),
                        static_cast<int>(greenOf(colour)), static_cast<int>(blueOf(colour)), truncateToInt(point.z));
}

/// Meant: the rows are compared as they are given, and the third with what has become of the others in whole pixels.
Triangle<ShadedColumn> cornersOf(const _POINT3DFLOAT &p1, const _POINT3DFLOAT &p2, const _POINT3DFLOAT &p3, q_ulong c1,
                                 q_ulong c2, q_ulong c3) {
    const _POINT3DFLOAT *const points[] = {&p1, &p2, &p3};
    const q_ulong colours[] = {c1, c2, c3};
    return sortedTriangle(p1.y, p2.y, p3.y, [&](int i) { return cornerOf(*points[i], colours[i]); });
}

} // namespace

void VKD_Render_Tri(_PRIVATE_QMGL_DATA *data, q_ulong *dst, tagRECT *clip, int pitch, _POINT3DFLOAT *p1,
                    _POINT3DFLOAT *p2, _POINT3DFLOAT *p3, q_ulong *c1, q_ulong *c2, q_ulong *c3) {
    const Triangle<ShadedColumn> corners = cornersOf(*p1, *p2, *p3, *c1, *c2, *c3);
    if (areBeyond(corners, rowsOf(*clip)))
        return;
    forEachSteppedBand<depthFractionBits>(corners, isLeftOfLine, [=](const ShadedEdge &left, const ShadedEdge &right) {
        drawBand(*data, dst, *clip, static_cast<q_ulong>(pitch), left, right);
    });
}

void VKD_Render_Tri(_PRIVATE_QMGL_DATA *data, q_ulong *dst, tagRECT *clip, int pitch, _POINT3DFLOAT *p1,
                    _POINT3DFLOAT *p2, _POINT3DFLOAT *p3, q_ulong *c1, q_ulong *c2, q_ulong *c3, int opacity) {
    const Triangle<ShadedColumn> corners = cornersOf(*p1, *p2, *p3, *c1, *c2, *c3);
    if (areBeyond(corners, rowsOf(*clip)))
        return;
    const bool isModest = areModest(corners[0], corners[1], corners[2]);
    forEachSteppedBand<depthFractionBits>(corners, isLeftOfLine, [=](const ShadedEdge &left, const ShadedEdge &right) {
        drawBand(*data, dst, *clip, static_cast<q_ulong>(pitch), left, right, opacity, isModest);
    });
}

void VKD_Render_Tri_Alpha(_PRIVATE_QMGL_DATA *data, q_ulong *dst, tagRECT *clip, int pitch, _POINT3DFLOAT *p1,
                          _POINT3DFLOAT *p2, _POINT3DFLOAT *p3, q_ulong *c1, q_ulong *c2, q_ulong *c3) {
    const Triangle<ShadedColumn> corners = cornersOf(*p1, *p2, *p3, *c1, *c2, *c3);
    if (areBeyond(corners, rowsOf(*clip)))
        return;
    forEachSteppedBand<depthFractionBits>(corners, isLeftOfLine, [=](const ShadedEdge &left, const ShadedEdge &right) {
        mixBand(*data, dst, *clip, static_cast<q_ulong>(pitch), left, right);
    });
}

void VKD_Render_Tri_Add(q_ulong *dst, tagRECT *clip, q_ulong pitch, _POINT3DFLOAT *p1, _POINT3DFLOAT *p2,
                        _POINT3DFLOAT *p3, q_ulong *c1, q_ulong *c2, q_ulong *c3) {
    forEachSteppedBand<additiveFractionBits>(
        cornersOf(*p1, *p2, *p3, *c1, *c2, *c3), isLeftOfLine,
        [=](const AdditiveEdge &left, const AdditiveEdge &right) { addBand(dst, *clip, pitch, left, right); });
}
