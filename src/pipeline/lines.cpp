#include "base/pixel.h"
#include "base/surface.h"
#include "base/wide.h"
#include "base/z_plane.h"
#include "mesh_light.h"
#include "q_Mur/pipeline.h"

namespace {

using namespace qmur;

/// Positions across a line have 8 fraction bits, and so has its depth.
constexpr int fractionBits = 8;

/// An end of a line: where it stands along the axis that is stepped, and across.
struct LineEnd {
    int along;
    int across;
    int depth;
};

unsigned lengthOf(int difference) {
    return static_cast<unsigned>(magnitudeOf(difference));
}

int slope(int difference, int length) {
    return wrapDivide(difference << fractionBits, length);
}

/// The destination and its Z plane, as a line walks over them.
struct Canvas {
    q_ulong *dst;
    DepthEntry *zBuffer;
    Distance stepAlong;
    Distance stepAcross;
    q_ulong colour;
};

/// Draws a line two pixels wide with a fringe on either side, from the end with the smaller coordinate up to, not
/// including, the other.
void drawLine(const Canvas &canvas, LineEnd a, LineEnd b, Span alongLimits, Span acrossLimits) {
    const auto [dst, zBuffer, stepAlong, stepAcross, colour] = canvas;
    const int length = wrapSubtract(b.along, a.along);
    if (length == 0)
        return;
    const int acrossSlope = slope(wrapSubtract(b.across, a.across), length);
    const int depthSlope = slope(wrapSubtract(b.depth, a.depth), length);
    const bool forward = b.along > a.along;
    const LineEnd &start = forward ? a : b;
    const LineEnd &end = forward ? b : a;
    const Span walk = intersection(alongLimits, {start.along, end.along});
    const int skipped = wrapSubtract(walk.begin, start.along);
    int across = wrapAdd(wrapMultiply(skipped, acrossSlope), start.across << fractionBits);
    int depth = wrapAdd(wrapMultiply(skipped, depthSlope), start.depth << fractionBits);

    for (int along = walk.begin; along < walk.end;
         ++along, across = wrapAdd(across, acrossSlope), depth = wrapAdd(depth, depthSlope)) {
        const int position = across >> fractionBits;
        if (!acrossLimits.contains(position))
            continue;
        const int z = depth >> fractionBits;
        const auto fraction = static_cast<q_ulong>(across & 255);
        const q_ulong rest = 256 - fraction;
        // Meant: there is no near limit, and a fringe pixel of weight 0 is treated like any other.
        const auto treat = [dst = dst, zBuffer = zBuffer, z](Distance i, auto store) {
            if (z < zBuffer[i]) {
                zBuffer[i] = static_cast<short>(z);
                store(dst[i]);
            }
        };
        const auto blend = [colour = colour](q_ulong dstWeight, q_ulong weight) {
            return [=](q_ulong &d) { d = blend256(d, dstWeight, colour, weight); };
        };
        const auto plain = [colour = colour](q_ulong &d) { d = colour; };
        const Distance i = along * stepAlong + position * stepAcross;
        treat(i - stepAcross, blend(fraction, rest));
        treat(i + 2 * stepAcross, blend(rest, fraction));
        treat(i, plain);
        treat(i + stepAcross, plain);
    }
}

_POINT3D wholePoint(const _POINT3DFLOAT &point) {
    return {truncateToInt(point.x), truncateToInt(point.y), truncateToInt(point.z), 0};
}

} // namespace

void VKD_3D_Line(_PRIVATE_QMGL_DATA *data, q_ulong *dst, tagRECT *clip, q_ulong pitch, _POINT3D *a, _POINT3D *b,
                 q_ulong *colourA, q_ulong *) {
    // The fringe reaches one pixel before the line and two behind it.
    const auto narrowed = [](Span limits) {
        return limits.begin + 1LL < limits.end - 2LL ? Span{limits.begin + 1, limits.end - 2} : Span{};
    };
    const Span columns = narrowed(columnsOf(*clip));
    const Span rows = narrowed(rowsOf(*clip));
    const Distance rowStep = asDistance(pitch);
    const bool steep = lengthOf(wrapSubtract(b->x, a->x)) <= lengthOf(wrapSubtract(b->y, a->y));
    if (steep)
        drawLine({.dst = dst, .zBuffer = data->zBuffer, .stepAlong = rowStep, .stepAcross = 1, .colour = *colourA},
                 {a->y, a->x, a->z}, {b->y, b->x, b->z}, rows, columns);
    else
        drawLine({.dst = dst, .zBuffer = data->zBuffer, .stepAlong = 1, .stepAcross = rowStep, .colour = *colourA},
                 {a->x, a->y, a->z}, {b->x, b->y, b->z}, columns, rows);
}

void VKD_Render_3D_Line(_PRIVATE_QMGL_DATA *data, q_ulong *dst, tagRECT *clip, q_ulong pitch, _POINT3DFLOAT *points,
                        q_ulong *colours, int wrapRows, int wrapColumns, int columns, int rows, _POINT3DFLOAT *light,
                        _POINT3D *, _POINT3D *ambientVector, float specular, int shininess, int) {
    if (!lightColours(points, colours, columns, rows, *light, *ambientVector, specular, shininess))
        return;
    const auto line = [=](Distance from, Distance to) {
        _POINT3D a = wholePoint(points[from]);
        _POINT3D b = wholePoint(points[to]);
        VKD_3D_Line(data, dst, clip, pitch, &a, &b, colours + from, colours + to);
    };
    const Distance rowLength = columns;
    const Distance lastColumn = rowLength - 1;
    const Distance lastRow = (rows - 1) * rowLength;
    for (Distance row = 0; row < lastRow; row += rowLength)
        for (Distance v = row; v < row + lastColumn; ++v) {
            line(v, v + rowLength);
            line(v, v + 1);
        }
    for (Distance row = 0; row < lastRow; row += rowLength)
        line(row + lastColumn, row + rowLength + lastColumn);
    for (Distance column = 0; column < lastColumn; ++column)
        line(lastRow + column, lastRow + column + 1);
    if (wrapRows == 1)
        for (Distance column = 0; column <= lastColumn; ++column)
            line(lastRow + column, column);
    if (wrapColumns == 1)
        for (Distance row = 0; row <= lastRow; row += rowLength)
            line(row + lastColumn, row);
}
