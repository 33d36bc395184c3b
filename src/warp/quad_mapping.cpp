#include "base/lanes.h"
#include "base/pixel.h"
#include "base/surface.h"
#include "base/wide.h"
#include "q_Mur/warp.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>

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

namespace {

/// A source pixel, which may lie outside the source.
struct SourcePlace {
    int x;
    int y;
};

/// The patch P0 + s (P1 - P0) + t (P3 - P0) + s t (P0 - P1 - P3 + P2), which is a quadratic in s.
struct Patch {
    int width;
    int height;
    Wide a, b, g, startX;
    Wide d, e, f, startY;
    Wide q, k1, k2;

    Patch(int sourceWidth, int sourceHeight, const int (&x)[4], const int (&y)[4])
        : width(sourceWidth), height(sourceHeight) {
        // The small addition keeps the leading term from vanishing for a parallelogram or an upright edge.
        static constexpr Wide offset = 0.0001;
        const auto twist = [](const int(&p)[4]) {
            return wrapAdd(wrapSubtract(wrapSubtract(p[0], p[1]), p[3]), p[2]) + offset;
        };
        a = twist(x);
        b = wrapSubtract(x[1], x[0]) + offset;
        g = wrapSubtract(x[3], x[0]) + offset;
        d = twist(y);
        e = wrapSubtract(y[1], y[0]) + offset;
        f = wrapSubtract(y[3], y[0]) + offset;
        startX = x[0] + offset;
        startY = y[0] + offset;
        q = e * a - d * b;
        k1 = e * g + startY * a - d * startX - f * b;
        k2 = startY * g - f * startX;
    }

    /// The source pixel that a destination pixel shows.
    SourcePlace placeOf(int column, int row) const {
        const Wide twoQ = 2 * q;
        const Wide linear = column * d + k1 - row * a;
        const Wide constant = column * f + k2 - row * g;
        const Wide square = linear * linear;
        const Wide product = constant * (4 * q);
        const Wide middle = -linear / twoQ;
        const Wide root = product <= square ? squareRoot(square - product) / twoQ : 0;
        Wide s = middle + root;
        if ((s <= 0 || s >= 1) && product < square)
            s = middle - root;
        Wide denominator = s * a + g;
        if (denominator == 0)
            denominator = 1e-09;
        return {truncateToInt(width * s + 0.5), truncateToInt(height * (column - s * b - startX) / denominator + 0.5)};
    }

    bool contains(SourcePlace place) const {
        return place.x >= 0 && place.x < width && place.y >= 0 && place.y < height;
    }
};

/// A patch in doubles, with bounds on how far these may lie from what full width makes of the same formulas. Each is
/// counted in units of rounding errors and somewhat too large, so that full width's own errors are within. A result
/// that lies nearer than that to where it would become another is left open, as is all that is no number. What the
/// formulas call s is counted in source columns.
class DoubledPatch {
public:
    DoubledPatch(const Patch &patch, int surfacePitch)
        : width(patch.width), height(patch.height), pitch(surfacePitch), rootSign(patch.q < 0 ? -1 : 1),
          a(doubled(patch.a / patch.width)), g(doubled(patch.g)), b(doubled(patch.b * patch.height / patch.width)),
          start(doubled(patch.startX * patch.height)) {
        const Wide perTwoQ = patch.width / (2 * patch.q);
        const Wide perQ = perTwoQ * patch.width * 2;
        middle = {doubled(-patch.d * perTwoQ), doubled(-patch.k1 * perTwoQ), doubled(patch.a * perTwoQ)};
        product = {doubled(patch.f * perQ), doubled(patch.k2 * perQ), doubled(-patch.g * perQ)};

        const double largestMiddle = largest(middle);
        const double squares = largestMiddle * largestMiddle + largest(product);
        const double ofSquares = 20 * unit * squares;
        const double ofPlace = 24 * unit * (largestMiddle + std::sqrt(squares) + width);
        // Where indices are no whole numbers to a double, all is left open.
        mostFraction = std::fabs(pitch) * height < outside ? 0.5 - ofPlace : -1;
        // No less than tells the sign of the root's argument.
        rootDoubt = std::max(ofSquares, std::sqrt(ofSquares) / 2);

        // Of rows within the source; what lies further away has doubts that grow more slowly than its distance.
        const double rows = height + 2;
        const double perPlace = std::fabs(b) + rows * std::fabs(a);
        const double ofNumerator = 16 * unit * (height * width + 2 * std::fabs(b) * width + std::fabs(start));
        const double ofDenominator = 16 * unit * (mostS * std::fabs(a) * width + std::fabs(g));
        // The true denominator is at least half of this one where the doubt of y counts, which is doubled for that.
        plainDoubtY = 2 * (perPlace * ofPlace + ofNumerator + rows * ofDenominator);
        rootDoubtY = 2 * perPlace * rootDoubt;
        leavesRowsOpen = !(plainDoubtY < (mostS * std::fabs(a) * width + std::fabs(g)) / 2);
    }

    /// So many columns are worked out side by side: what is known of them stays in the nearest cache.
    static constexpr int mostColumns = 64;

    /// Indices beyond those of pixels: the column shows none, or that is left open.
    static constexpr std::int64_t outside = std::int64_t{1} << 50;
    static constexpr std::int64_t open = outside + 1;

    /// What is known of some columns of a row: s and the nearest whole number; whether s is known to be nearest to
    /// that, as a number above 0; and the root that doubts are multiplied by, which saves a division.
    struct Places {
        double s[mostColumns];
        double x[mostColumns];
        double spareX[mostColumns];
        double extents[mostColumns];

        /// Whether a column lies so far away that it shows nothing, although ints wrap.
        bool isFarOutside(int i, int sourceWidth) const {
            if (!(spareX[i] > 0 && std::fabs(x[i]) >= wrapping))
                return false;
            const int wrapped = truncateToInt(x[i]);
            return wrapped < -1 || wrapped >= sourceWidth;
        }
    };

    /// Works out the columns from `first` on, `count` of them and some more up to a whole number of lanes, and writes
    /// the indices of their pixels in the source. In two goes: a processor does not look ahead far enough to do much
    /// else while it waits for all of a column's results.
    void find(Places &places, std::int64_t *indices, int first, int count, int row) const {
        const Doubles columns = all(first) + Doubles::counted();
        findX(places, columns, count, row);
        const auto settle = [&places, indices, this](int i, Doubles x, Doubles inside) {
            const Doubles fromMiddle = magnitudeOf(x - all(width / 2 - 1));
            const Doubles found = settled(fromMiddle, Doubles::load(places.spareX + i), width, inside);
            const auto bits = as<std::uint64_t>(found + all(wholeNumbers));
            (bits - decltype(bits)::all(std::bit_cast<std::uint64_t>(wholeNumbers))).store(indices + i);
        };
        if (leavesRowsOpen) {
            for (int i = 0; i < count; i += lanes)
                settle(i, Doubles::load(places.x + i), all(open));
            return;
        }
        Doubles column = columns;
        for (int i = 0; i < count; i += lanes, column = column + all(lanes)) {
            const Doubles s = Doubles::load(places.s + i);
            const Doubles denominator = s * all(a) + all(g);
            const Doubles quotient = (column * all(height) - s * all(b) - all(start)) / denominator;
            const Doubles y = wholeNumber(quotient);
            const Doubles fromHalves = all(0.5) - magnitudeOf(quotient - y);
            const Doubles spareY =
                (fromHalves * magnitudeOf(denominator) - all(plainDoubtY)) * Doubles::load(places.extents + i) -
                all(rootDoubtY);
            const Doubles x = Doubles::load(places.x + i);
            const Doubles index = greater(y, all(0)) * all(pitch) + greater(x, all(0));
            settle(i, x, settled(magnitudeOf(y - all(height / 2 - 1)), spareY, height, index));
        }
    }

private:
    static constexpr int lanes = sizeof(Doubles) / sizeof(double);
    static constexpr double unit = 0x1p-53;
    static constexpr double mostS = 2;               ///< more than any s of a place within the source
    static constexpr double wrapping = 0x1p30;       ///< no int of up to so much has wrapped
    static constexpr double wholeNumbers = 0x1.8p52; ///< so large that only whole numbers are left of what is added

    /// What changes evenly over columns and rows.
    struct Plane {
        double perColumn;
        double first;
        double perRow;
    };

    void findX(Places &places, Doubles column, int count, int row) const {
        const Doubles firstMiddle = all(middle.first + row * middle.perRow);
        const Doubles firstProduct = all(product.first + row * product.perRow);
        for (int i = 0; i < count; i += lanes, column = column + all(lanes)) {
            const Doubles middles = column * all(middle.perColumn) + firstMiddle;
            const Doubles discriminant = middles * middles - (column * all(product.perColumn) + firstProduct);
            const Doubles extent = squareRoot(magnitudeOf(discriminant));
            const Doubles root = selectBelow(all(0), discriminant, extent, all(0)) * all(rootSign);
            const Doubles oneS = middles + root;
            const Doubles fromEnds = all(width / 2) - magnitudeOf(oneS - all(width / 2)); // above 0 between the ends
            const Doubles s = selectBelow(all(0), fromEnds, oneS, middles - root);
            const Doubles x = wholeNumber(s);
            const Doubles fraction = greater(all(0.5) - magnitudeOf(fromEnds), magnitudeOf(s - x));
            const Doubles spareX = (all(mostFraction) - fraction) * extent - all(rootDoubt);
            s.store(places.s + i);
            x.store(places.x + i);
            spareX.store(places.spareX + i);
            extent.store(places.extents + i);
        }
    }

    /// What comes of whole numbers that are so far from the middle of a source's extent, which reaches from -1, as half
    /// is added and cut off, up to its last pixel.
    static Doubles settled(Doubles fromMiddle, Doubles spare, double extent, Doubles inside) {
        const Doubles known = smaller(all(wrapping) - fromMiddle, spare);
        return selectBelow(all(0), known, selectBelow(fromMiddle, all(extent / 2 + 0.25), inside, all(outside)),
                           all(open));
    }

    double largest(const Plane &plane) const {
        return width * std::fabs(plane.perColumn) + std::fabs(plane.first) + height * std::fabs(plane.perRow);
    }
    static double doubled(Wide value) { return static_cast<double>(value); }

    static Doubles all(double number) { return Doubles::all(number); }
    static Doubles magnitudeOf(Doubles value) {
        const auto bits = as<std::uint64_t>(value);
        return as<double>(bits & decltype(bits)::all(~std::uint64_t{0} >> 1));
    }
    // Where the second is no number, it is what both return.
    static Doubles greater(Doubles a, Doubles b) { return selectBelow(b, a, a, b); }
    static Doubles smaller(Doubles a, Doubles b) { return selectBelow(a, b, a, b); }
    static Doubles wholeNumber(Doubles value) { return value + all(wholeNumbers) - all(wholeNumbers); }

    double width;
    double height;
    double pitch;
    double rootSign;
    double a, g, b, start; ///< of rows: (column * height - s * b - start) / (s * a + g)
    Plane middle;
    Plane product;
    double mostFraction; ///< so far from the nearest whole number s may be
    double rootDoubt;    ///< of s, times the root
    double plainDoubtY;  ///< of y, times the denominator
    double rootDoubtY;   ///< of y, times the denominator and the root
    bool leavesRowsOpen; ///< no denominator is large enough for a y to be known, as for an upright rectangle
};

} // namespace

void iBilinearMapping(q_ulong *dst, q_ulong *src, int pitch, int width, int height, int x0, int x1, int x2, int x3,
                      int y0, int y1, int y2, int y3) {
    atFullWidth([=] {
        const Patch patch(width, height, {x0, x1, x2, x3}, {y0, y1, y2, y3});
        const DoubledPatch doubled(patch, pitch);
        // Pixels are asked for so many columns before they are read: what takes its time is to wait for them.
        constexpr int stretch = 8 * DoubledPatch::mostColumns;
        DoubledPatch::Places places;
        std::int64_t indices[stretch];
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
