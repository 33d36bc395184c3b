#include "base/surface.h"
#include "outline.h"
#include "q_Mur/textured.h"

namespace {

using namespace qmur;

constexpr int fractionBits = 18;
constexpr int one = 1 << fractionBits;

/// Of one less than a distance. Meant: the last row or pixel before the end shows what stands at the end.
constexpr int reciprocalOf(int distance) {
    const int divisor = wrapSubtract(distance, 1);
    return divisor == 0 ? one : one / divisor;
}

/// An edge's values at a row.
struct EdgePoint {
    int x;
    int u;
    int v;
};

EdgePoint pointAt(const Edge &edge, int reciprocal, int y) {
    const int t = wrapMultiply(wrapSubtract(y, edge.upper.y), reciprocal);
    const auto between = [t](int from, int to) {
        return wrapAdd(wrapMultiply(wrapSubtract(to, from), t) >> fractionBits, from);
    };
    return {between(edge.upper.x, edge.lower.x), between(edge.upper.u, edge.lower.u),
            between(edge.upper.v, edge.lower.v)};
}

/// Whether a position lies in a span, in one comparison.
constexpr bool contains(int begin, unsigned length, int position) {
    return static_cast<unsigned>(wrapSubtract(position, begin)) < length;
}

/// `outside(dst pixel)` says what becomes of a pixel whose texel lies outside the clip.
template <class Outside>
void drawBand(q_ulong *dst, Distance dstPitch, const q_ulong *tex, Distance texPitch, Window window, const Edge &left,
              const Edge &right, Outside outside) {
    const Span rows =
        intersection(intersection({left.upper.y, left.lower.y}, {right.upper.y, right.lower.y}), window.rows);
    const int firstColumn = window.columns.begin;
    const int firstRow = window.rows.begin;
    const auto columnCount = static_cast<unsigned>(wrapSubtract(window.columns.end, firstColumn));
    const auto rowCount = static_cast<unsigned>(wrapSubtract(window.rows.end, firstRow));
    const int leftReciprocal = reciprocalOf(wrapSubtract(left.lower.y, left.upper.y));
    const int rightReciprocal = reciprocalOf(wrapSubtract(right.lower.y, right.upper.y));
    for (int y = rows.begin; y < rows.end; ++y) {
        const EdgePoint start = pointAt(left, leftReciprocal, y);
        const EdgePoint end = pointAt(right, rightReciprocal, y);
        const Span pixels = intersection({start.x, end.x}, window.columns);
        if (pixels.empty())
            continue;
        const int reciprocal = reciprocalOf(wrapSubtract(end.x, start.x));
        const int stepU = wrapMultiply(reciprocal, wrapSubtract(end.u, start.u));
        const int stepV = wrapMultiply(reciprocal, wrapSubtract(end.v, start.v));
        const int skipped = wrapSubtract(pixels.begin, start.x);
        int u = wrapMultiply(skipped, stepU);
        int v = wrapMultiply(skipped, stepV);
        q_ulong *const row = dst + y * dstPitch;
        for (int x = pixels.begin; x < pixels.end; ++x, u = wrapAdd(u, stepU), v = wrapAdd(v, stepV)) {
            const int column = wrapAdd(u >> fractionBits, start.u);
            const int texRow = wrapAdd(v >> fractionBits, start.v);
            if (contains(firstRow, rowCount, texRow) && contains(firstColumn, columnCount, column))
                row[x] = *pixelAt(tex, texPitch, column, texRow);
            else
                outside(row[x]);
        }
    }
}

template <class Outside>
void drawQuad(q_ulong *dst, q_ulong dstPitch, const q_ulong *tex, q_ulong texPitch, const tagRECT &clip, Quad corners,
              Outside outside) {
    sortByHeight(corners);
    forEachBand(corners, [&](const Edge &left, const Edge &right) {
        drawBand(dst, asDistance(dstPitch), tex, asDistance(texPitch), windowOf(clip), left, right, outside);
    });
}

/// A corner without depth and light.
Corner plainCorner(const _POINT3DFLOAT &point, const _POINTINT &texPosition) {
    return {truncateToInt(point.x), truncateToInt(point.y), 0, texPosition.x, texPosition.y, 0, 0};
}

} // namespace

void i3D_Blt_Rect_Nearest_NoLight_NoHPE_Safe(q_ulong *dst, _POINT3DFLOAT *p0, _POINT3DFLOAT *p1, _POINT3DFLOAT *p2,
                                             _POINT3DFLOAT *p3, q_ulong *tex, _POINTINT *t0, _POINTINT *t1,
                                             _POINTINT *t2, _POINTINT *t3, tagRECT *clip, q_ulong dstPitch,
                                             q_ulong texPitch) {
    drawQuad(dst, dstPitch, tex, texPitch, *clip,
             {plainCorner(*p0, *t0), plainCorner(*p1, *t1), plainCorner(*p2, *t2), plainCorner(*p3, *t3)},
             [](q_ulong &) {});
}

void i3D_Blt_Rect_Nearest_NoLight_NoHPE_SafeBlack(q_ulong *dst, _POINT3DFLOAT *p0, _POINT3DFLOAT *p1, _POINT3DFLOAT *p2,
                                                  _POINT3DFLOAT *p3, q_ulong *tex, _POINTINT *t0, _POINTINT *t1,
                                                  _POINTINT *t2, _POINTINT *t3, tagRECT *clip, q_ulong dstPitch,
                                                  q_ulong texPitch) {
    drawQuad(dst, dstPitch, tex, texPitch, *clip,
             {plainCorner(*p0, *t0), plainCorner(*p1, *t1), plainCorner(*p2, *t2), plainCorner(*p3, *t3)},
             [](q_ulong &pixel) { pixel = 0; });
}
