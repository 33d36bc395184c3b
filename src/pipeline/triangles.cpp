#include "base/pixel.h"
#include "base/wide.h"
#include "q_Mur/draw.h"
#include "q_Mur/pipeline.h"
#include "spans.h"

namespace {

using namespace qmur;

EdgeEnd vertexOf(const _POINT3DFLOAT &point, q_ulong colour) {
    const Shade shade = {static_cast<int>(colour >> 16), static_cast<int>(greenOf(colour)),
                         static_cast<int>(blueOf(colour)), truncateToInt(point.z)};
    return {truncateToInt(point.x), truncateToInt(point.y), shade};
}

/// The vertices from top to bottom, on whole pixels.
struct Triangle {
    EdgeEnd top;
    EdgeEnd middle;
    EdgeEnd bottom;

    bool misses(const tagRECT &clip) const { return bottom.y < clip.top || top.y > clip.bottom; }

    bool middleIsLeft() { return DecisionLine2(&middle.x, &middle.y, &top.x, &top.y, &bottom.x, &bottom.y) == 1; }

    /// Calls `band(left edge, right edge)` for the rows above and below the middle vertex. The long edge is handed over
    /// whole both times, so that it runs through the boundary without a seam.
    template <class Band>
    void forEachBand(Band band) {
        const ShadedEdge longEdge = {top, bottom};
        const ShadedEdge upperEdge = {top, middle};
        const ShadedEdge lowerEdge = {middle, bottom};
        if (middleIsLeft()) {
            band(upperEdge, longEdge);
            band(lowerEdge, longEdge);
        } else {
            band(longEdge, upperEdge);
            band(longEdge, lowerEdge);
        }
    }
};

/// The first two points are compared as they are, the third with what has become of their rows: of points on one whole
/// row any may be on top, and at equality the later one is.
Triangle sortedTriangle(const _POINT3DFLOAT &p1, const _POINT3DFLOAT &p2, const _POINT3DFLOAT &p3, q_ulong c1,
                        q_ulong c2, q_ulong c3) {
    const bool firstIsP1 = p1.y < p2.y;
    const EdgeEnd first = firstIsP1 ? vertexOf(p1, c1) : vertexOf(p2, c2);
    const EdgeEnd second = firstIsP1 ? vertexOf(p2, c2) : vertexOf(p1, c1);
    const EdgeEnd third = vertexOf(p3, c3);
    if (static_cast<float>(second.y) < p3.y)
        return {first, second, third};
    if (static_cast<float>(first.y) < p3.y)
        return {first, third, second};
    return {third, first, second};
}

} // namespace

void VKD_Render_Tri(_PRIVATE_QMGL_DATA *data, q_ulong *dst, tagRECT *clip, int pitch, _POINT3DFLOAT *p1,
                    _POINT3DFLOAT *p2, _POINT3DFLOAT *p3, q_ulong *c1, q_ulong *c2, q_ulong *c3) {
    Triangle triangle = sortedTriangle(*p1, *p2, *p3, *c1, *c2, *c3);
    if (triangle.misses(*clip))
        return;
    triangle.forEachBand([=](const ShadedEdge &left, const ShadedEdge &right) {
        drawBand(*data, dst, *clip, static_cast<q_ulong>(pitch), left, right);
    });
}

void VKD_Render_Tri(_PRIVATE_QMGL_DATA *data, q_ulong *dst, tagRECT *clip, int pitch, _POINT3DFLOAT *p1,
                    _POINT3DFLOAT *p2, _POINT3DFLOAT *p3, q_ulong *c1, q_ulong *c2, q_ulong *c3, int opacity) {
    Triangle triangle = sortedTriangle(*p1, *p2, *p3, *c1, *c2, *c3);
    if (triangle.misses(*clip))
        return;
    triangle.forEachBand([=](const ShadedEdge &left, const ShadedEdge &right) {
        drawBand(*data, dst, *clip, static_cast<q_ulong>(pitch), left, right, opacity);
    });
}

void VKD_Render_Tri_Alpha(_PRIVATE_QMGL_DATA *data, q_ulong *dst, tagRECT *clip, int pitch, _POINT3DFLOAT *p1,
                          _POINT3DFLOAT *p2, _POINT3DFLOAT *p3, q_ulong *c1, q_ulong *c2, q_ulong *c3) {
    Triangle triangle = sortedTriangle(*p1, *p2, *p3, *c1, *c2, *c3);
    if (triangle.misses(*clip))
        return;
    triangle.forEachBand([=](const ShadedEdge &left, const ShadedEdge &right) {
        mixBand(*data, dst, *clip, static_cast<q_ulong>(pitch), left, right);
    });
}

void VKD_Render_Tri_Add(q_ulong *dst, tagRECT *clip, q_ulong pitch, _POINT3DFLOAT *p1, _POINT3DFLOAT *p2,
                        _POINT3DFLOAT *p3, q_ulong *c1, q_ulong *c2, q_ulong *c3) {
    Triangle triangle = sortedTriangle(*p1, *p2, *p3, *c1, *c2, *c3);
    triangle.forEachBand(
        [=](const ShadedEdge &left, const ShadedEdge &right) { addBand(dst, *clip, pitch, left, right); });
}
