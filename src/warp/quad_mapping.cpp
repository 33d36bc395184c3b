#include "base/pixel.h"
#include "base/surface.h"
#include "bilinear_patch.h"
#include "q_Mur/warp.h"

#include <algorithm>
#include <cmath>

namespace {

using namespace qmur;

/// The source step of a stretch of `length` destination pixels. A length that wrapped would step out of the source.
int stepOver(int scaledExtent, long long length) {
    return wrapDivide(scaledExtent, oneIfZero(length));
}

constexpr long long lengthOf(Span span) {
    return static_cast<long long>(span.end) - span.begin;
}

} // namespace

void iBilinearMapping(q_ulong *dst, q_ulong *src, int pitch, int width, int height, int x0, int x1, int x2, int x3,
                      int y0, int y1, int y2, int y3) {
    atFullWidth([=] {
        const BilinearPatch patch(width, height, {x0, x1, x2, x3}, {y0, y1, y2, y3});
        const DoubledPatch doubled(patch, pitch);
        // Pixels are asked for so many columns before they are read: what takes its time is to wait for them.
        constexpr int stretch = 8 * DoubledPatch::mostColumns;
        DoubledPatch::Places places;
        alignas(widestBytes) std::int64_t indices[stretch];
        const auto lookUp = [&](std::int64_t *to, int first, int count, int r) {
            doubled.find(places, to, first, count, r);
            for (int i = 0; i < count; ++i) {
                std::int64_t index = to[i];
                if (index == DoubledPatch::open && !places.isFarOutside(i, width)) {
                    const SourcePlace place = patch.placeOf(first + i, r);
                    index = patch.contains(place) ? place.y * std::int64_t{pitch} + place.x : DoubledPatch::outside;
                    to[i] = index;
                }
                if (index < DoubledPatch::outside)
                    willRead(src + index);
            }
        };
        for (int r = 0; r < height; ++r) {
            q_ulong *const row = pixelAt(dst, pitch, 0, r);
            for (int begin = 0, count; begin < width; begin += count) {
                count = smaller(stretch, width - begin);
                for (int i = 0; i < count; i += DoubledPatch::mostColumns)
                    lookUp(indices + i, begin + i, smaller(DoubledPatch::mostColumns, count - i), r);
                for (int i = 0; i < count; ++i)
                    row[begin + i] = indices[i] < DoubledPatch::outside ? src[indices[i]] : 0;
            }
        }
    });
}

namespace {

struct Corner {
    int x;
    int y;
};

/// What the row pass of the two-pass mapping covers in row i: columns from (q - i u) / (i t - p) up to
/// (w - i u) / (i t - v).
struct RowEdges {
    Wide p;
    Wide q;
    Wide t;
    Wide u;
    Wide v;
    Wide w;

    Span at(int i) const {
        return {truncateToInt((q - i * u) / (i * t - p)), truncateToInt((w - i * u) / (i * t - v))};
    }
};

RowEdges rowEdgesOf(const Corner (&corners)[4], int height) {
    const auto [p0, p1, p2, p3] = corners;
    const auto difference = [](int minuend, int subtrahend) -> Wide {
        const int value = wrapSubtract(minuend, subtrahend);
        return value == 0 ? static_cast<Wide>(1e-11) : value;
    };
    const Wide a = difference(p1.x, p0.x);
    const Wide b = difference(p3.x, p2.x);
    const Wide c = difference(p3.x, p0.x);
    const Wide d = difference(p2.x, p1.x);
    const Wide e = difference(p1.y, p0.y);
    const Wide f = difference(p3.y, p2.y);
    const Wide g = difference(p3.y, p0.y);
    const Wide h = difference(p1.y, p2.y); // meant: the other way round than its fellows
    const Wide rows = height;
    const Wide s = p0.x * e / a;
    return {.p = (g / c - e / a) * rows,
            .q = (p3.y - p3.x * g / c - p0.y + s) * rows,
            .t = f / b - e / a,
            .u = p3.y - p3.x * f / b - p0.y + s,
            .v = (-h / d - e / a) * rows,
            .w = (p1.x * h / d + p1.y - p0.y + s) * rows};
}

/// Source pixels as the row pass reads them: along a row by position, and from row to row.
struct SourceWalk {
    Distance first;
    Distance alongRow;
};

/// The source walk of row i for an orientation.
SourceWalk sourceWalkOf(int orientation, int i, int pitch, int width, int height) {
    const Distance stride = pitch;
    switch (orientation) {
    case 0:
        return {i * stride, 1};
    case 1:
        return {width - 1 - static_cast<Distance>(wrapDivide(wrapMultiply(i, width), height)), stride};
    case 2:
        return {(height - 1 - i) * stride + width - 1, -1};
    default:
        return {(height - 1) * stride + wrapDivide(wrapMultiply(i, width), height), -stride};
    }
}

} // namespace

void iPsudoBilinearMapping(q_ulong *dst, q_ulong *src, q_ulong *scratch, int pitch, int width, int height,
                           q_ulong fillColour, int x0, int x1, int x2, int x3, int y0, int y1, int y2, int y3) {
    const Corner given[4] = {{x0, y0}, {x1, y1}, {x2, y2}, {x3, y3}};
    for (int y = 0; y < height; ++y)
        std::fill_n(pixelAt(dst, pitch, 0, y), larger(width, 0), fillColour);

    int minX = 1024;
    int maxX = -1024;
    for (const Corner &corner : given) {
        minX = smaller(minX, corner.x);
        maxX = larger(maxX, corner.x);
    }

    const auto product = [](int a, int b, int c, int d) {
        return wrapMultiply(wrapSubtract(a, b), wrapSubtract(c, d));
    };
    const bool upright = product(x0, x1, x3, x2) > product(x1, x2, x0, x3);
    const int orientation = upright ? (x0 < x2 ? 0 : 2) : (x1 < x3 ? 1 : 3);
    Corner corners[4];
    for (int i = 0; i < 4; ++i)
        corners[i] = given[(orientation + i) & 3];
    const auto [p0, p1, p2, p3] = corners;

    const int extent = orientation % 2 == 0 ? width : height;
    atFullWidth([=, &corners] {
        const RowEdges edges = rowEdgesOf(corners, height);
        for (int i = 0; i < height; ++i) {
            const Span covered = edges.at(i);
            if (covered.empty())
                continue;
            const int step = stepOver(extent << 15, lengthOf(covered));
            const auto [start, end] = intersection(covered, {0, width});
            const SourceWalk walk = sourceWalkOf(orientation, i, pitch, width, height);
            const q_ulong *const source = src + walk.first;
            q_ulong *const row = pixelAt(scratch, pitch, 0, i);
            int position = wrapMultiply(wrapSubtract(start, covered.begin), step);
            for (int x = start; x < end; ++x, position = wrapAdd(position, step))
                row[x] = source[(position >> 15) * walk.alongRow];
        }
    });

    if (maxX == minX)
        return;
    const int lastColumn = smaller(width, maxX);
    for (int x = larger(minX, 0); x < lastColumn; ++x) {
        const auto edgeAt = [x](Corner from, Corner to) {
            return wrapAdd(wrapDivide(wrapMultiply(wrapSubtract(x, from.x), wrapSubtract(to.y, from.y)),
                                      oneIfZero(wrapSubtract(to.x, from.x))),
                           from.y);
        };
        const Span covered = {edgeAt(p0, p1), edgeAt(p3, p2)};
        if (covered.empty())
            continue;
        const int step = stepOver(height << 15, lengthOf(covered));
        const Span rows = intersection(covered, {0, height});
        for (int y = rows.begin; y < rows.end; ++y) {
            const int row = wrapMultiply(wrapSubtract(y, covered.begin), step) >> 15;
            *pixelAt(dst, pitch, x, y) = *pixelAt(scratch, pitch, x, row);
        }
    }
}

namespace {

/// A trapezoid between two parallel sides. The outer axis leads from one of them to the other, the inner one runs along
/// them; strides are those of the surfaces.
struct Trapezoid {
    Span lines;     ///< on the outer axis
    int firstStart; ///< where the two other sides start on the inner axis, and by how much they move on the way
    int firstSlope;
    int secondStart;
    int secondSlope;
    int sourceStart; ///< source lines at the two parallel sides
    int sourceEnd;
    int sourceExtent; ///< source pixels along a line
    Span clipLines;
    Span clipInner;
    Distance outerStride;
    Distance innerStride;
};

/// Multiplies and shifts each channel. The top byte goes into the product of red.
struct Brightness {
    q_ulong add;
    q_ulong scale;

    q_ulong of(q_ulong pixel) const {
        // As unsigned numbers, so that what falls below 0 is capped as well.
        const q_ulong red = (upperHalfOf(pixel) * scale >> 8) + add;
        const q_ulong green = ((pixel & greenMask) * scale >> 16) + add;
        const q_ulong blue = ((pixel & blueMask) * scale >> 8) + add;
        return pixelOf(cappedAt255(red), cappedAt255(green), cappedAt255(blue));
    }
};

void drawTrapezoid(q_ulong *dst, const q_ulong *source, const Trapezoid &shape, Brightness brightness) {
    const int lines = wrapSubtract(shape.lines.end, shape.lines.begin);
    if (lines == 0)
        return;
    const Span walked = intersection(shape.lines, shape.clipLines);
    for (int line = walked.begin; line < walked.end; ++line) {
        const int t = wrapSubtract(line, shape.lines.begin);
        const int first = wrapAdd(wrapDivide(wrapMultiply(t, shape.firstSlope), lines), shape.firstStart);
        const int second = wrapAdd(wrapDivide(wrapMultiply(t, shape.secondSlope), lines), shape.secondStart);
        const int step = stepOver(shape.sourceExtent << 18, lengthOf({first, second}));
        // Meant: the source line is counted from the source rectangle's corner, so its own start counts twice.
        const int sourceLine = wrapAdd(
            wrapDivide(wrapMultiply(wrapSubtract(shape.sourceEnd, shape.sourceStart), t), lines), shape.sourceStart);
        const Span inner = intersection({first, second}, shape.clipInner);
        const q_ulong *const from = source + sourceLine * shape.outerStride;
        q_ulong *const to = dst + line * shape.outerStride;
        const Distance stride = shape.innerStride;
        int position = wrapSubtract(wrapMultiply(inner.begin, step), wrapMultiply(first, step));
        for (int x = inner.begin; x < inner.end; ++x, position = wrapAdd(position, step))
            to[x * stride] = brightness.of(from[(position >> 18) * stride]);
    }
}

} // namespace

void iAffineMapping(q_ulong *dst, q_ulong *src, int pitch, tagRECT *srcRect, tagRECT *clipRect, int x0, int x1, int x2,
                    int x3, int y0, int y1, int y2, int y3, int brightnessAdd, int brightnessScale) {
    const q_ulong *const source = pixelAt(src, pitch, srcRect->left, srcRect->top);
    const Brightness brightness = {static_cast<q_ulong>(brightnessAdd), static_cast<q_ulong>(brightnessScale)};
    const Span columns = columnsOf(*srcRect);
    const Span rows = rowsOf(*srcRect);

    Trapezoid shape = {};
    if (y0 == y1 && y2 == y3) {
        shape.sourceExtent = widthOf(*srcRect);
        shape.clipLines = rowsOf(*clipRect);
        shape.clipInner = columnsOf(*clipRect);
        shape.outerStride = pitch;
        shape.innerStride = 1;
        if (y0 < y3) {
            shape.lines = {y0, y3};
            shape.firstStart = x0;
            shape.firstSlope = wrapSubtract(x3, x0);
            shape.secondStart = x1;
            shape.secondSlope = wrapSubtract(x2, x1);
            shape.sourceStart = rows.begin;
            shape.sourceEnd = rows.end;
        } else if (y3 < y0) {
            shape.lines = {y3, y0};
            shape.firstStart = x3;
            shape.firstSlope = wrapSubtract(x0, x3);
            shape.secondStart = x2;
            shape.secondSlope = wrapSubtract(x1, x2);
            shape.sourceStart = wrapSubtract(rows.end, 1);
            shape.sourceEnd = rows.begin;
        } else {
            return;
        }
    } else if (x0 == x3 && x1 == x2) {
        shape.sourceExtent = heightOf(*srcRect);
        shape.clipLines = columnsOf(*clipRect);
        shape.clipInner = rowsOf(*clipRect);
        shape.outerStride = 1;
        shape.innerStride = pitch;
        if (x0 < x1) {
            shape.lines = {x0, x1};
            shape.firstStart = y0;
            shape.firstSlope = wrapSubtract(y1, y0);
            shape.secondStart = y3;
            shape.secondSlope = wrapSubtract(y2, y3);
            shape.sourceStart = columns.begin;
            shape.sourceEnd = columns.end;
        } else if (y3 < y0) { // meant: of the two rows, not of the two columns
            shape.lines = {x1, x0};
            shape.firstStart = y1;
            shape.firstSlope = wrapSubtract(y0, y1);
            shape.secondStart = y2;
            shape.secondSlope = wrapSubtract(y3, y2);
            shape.sourceStart = wrapSubtract(columns.end, 1);
            shape.sourceEnd = columns.begin;
        } else {
            return;
        }
    } else {
        return;
    }
    drawTrapezoid(dst, source, shape, brightness);
}
