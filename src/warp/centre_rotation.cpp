#include "base/rotation.h"
#include "base/sampling.h"
#include "base/scratch.h"
#include "base/wide.h"
#include "q_Mur/warp.h"
#include "walks/stretch.h"

#include <algorithm>

namespace {

using namespace qmur;

struct Point {
    int x;
    int y;

    Point turnedAbout(Point centre, unsigned short angle) const {
        Point turned = *this;
        turnAbout(turned.x, turned.y, TableTurn(angle), centre.x, centre.y);
        return turned;
    }
};

/// An angle in units of 65536 to the circle. The edge tracers turn the other way round than the direct mappers, whose
/// corners serve for a bounding box alone.
unsigned short tableAngle(double angle, double unitsPerRadian) {
    return atFullWidth(
        [=] { return static_cast<unsigned short>(truncateToInt(static_cast<Wide>(angle) * unitsPerRadian)); });
}

constexpr double unitsPerRadian = 10430.37806021874;

/// The corners of a rectangle around `centre`, turned about it, clockwise from the top left.
struct TurnedRectangle {
    Point corners[4];

    TurnedRectangle(Point centre, int width, int height, unsigned short angle) {
        const int left = wrapSubtract(centre.x, width / 2);
        const int top = wrapSubtract(centre.y, height / 2);
        const int right = wrapAdd(left, width);
        const int bottom = wrapAdd(top, height);
        const Point plain[4] = {{left, top}, {right, top}, {right, bottom}, {left, bottom}};
        for (int i = 0; i < 4; ++i)
            corners[i] = plain[i].turnedAbout(centre, angle);
    }
};

/// Where the outline of a figure crosses a row, and the source position there.
struct EdgeCrossing {
    int sourceU;
    int sourceV;
    int destX;
    int destY;
    int sortKey; ///< row and column in one number
};

/// A destination point and the source point that it shows.
struct Mapped {
    Point dest;
    Point source;
};

/// Traces source positions in sixteenths. What the division of a column loses is made good on the source column; meant:
/// on the row nothing is.
struct SixteenthTracing {
    static constexpr int bias = 2048;

    static int source(int start, int end, int t, int height) {
        const int scaled = wrapMultiply(wrapMultiply(t, wrapSubtract(end, start)), 16);
        return wrapAdd(scaled / height, wrapMultiply(start, 16));
    }

    static int correction(int product, int height) { return wrapMultiply(product % height, 16) / height; }
};

/// Traces source positions in whole pixels.
struct WholeTracing {
    static constexpr int bias = 1024;

    static int source(int start, int end, int t, int height) {
        return wrapAdd(wrapMultiply(t, wrapSubtract(end, start)) / height, start);
    }

    static int correction(int, int) { return 0; }
};

/// The crossings of a figure's edges, in one allocation.
class EdgeTable {
public:
    explicit EdgeTable(long long capacity) : entries(capacity), room(entries ? capacity : 0) {}

    /// Adds one crossing for each row of an edge, its lowest row left out when it goes down and its highest when it
    /// goes up: a corner's row counts once.
    template <class Tracing>
    void trace(const Mapped &from, const Mapped &to) {
        const int dx = wrapSubtract(to.dest.x, from.dest.x);
        const int dy = wrapSubtract(to.dest.y, from.dest.y);
        const Span rows = dy > 0 ? Span{from.dest.y, to.dest.y} : Span{wrapAdd(to.dest.y, 1), wrapAdd(from.dest.y, 1)};
        if (dy == 0)
            return;
        for (int y = rows.begin; y < rows.end && count < room; ++y) {
            const int t = wrapSubtract(y, from.dest.y);
            const int product = wrapMultiply(t, dx);
            const int x = wrapAdd(product / dy, from.dest.x);
            const int u = Tracing::source(from.source.x, to.source.x, t, dy);
            entries[count++] = {.sourceU = wrapSubtract(u, Tracing::correction(product, dy)),
                                .sourceV = Tracing::source(from.source.y, to.source.y, t, dy),
                                .destX = x,
                                .destY = y,
                                .sortKey = wrapAdd(y, Tracing::bias) << 16 | wrapAdd(x, Tracing::bias)};
        }
    }

    /// Calls `span(left crossing, right crossing)` for every pair of crossings of a row, rows from the top.
    template <class Draw>
    void forEachSpan(Draw span) {
        // A stable order makes crossings with equal keys the same on every platform.
        std::stable_sort(entries.data(), entries.data() + count, [](const EdgeCrossing &a, const EdgeCrossing &b) {
            return static_cast<unsigned>(a.sortKey) < static_cast<unsigned>(b.sortKey);
        });
        for (long long i = 0; i < count - 1;) {
            const EdgeCrossing &a = entries[i];
            const EdgeCrossing &b = entries[i + 1];
            if (a.destY == b.destY && a.destX != b.destX) {
                span(a, b);
                i += 2;
            } else {
                ++i;
            }
        }
    }

private:
    Scratch<EdgeCrossing> entries;
    long long room;
    long long count = 0;
};

/// Draws a span from one crossing to another, both columns included but for the clip. Source values are shifted left by
/// `shift`; `pixel(dst pixel, u, v)` stores one.
template <class Pixel>
void drawSpan(q_ulong *dst, Distance dstPitch, const tagRECT &clip, const EdgeCrossing &a, const EdgeCrossing &b,
              int shift, Pixel pixel) {
    if (a.destY < clip.top || a.destY >= clip.bottom)
        return;
    const int extent = wrapSubtract(b.destX, a.destX);
    const auto step = [extent, shift](int from, int to) {
        return wrapDivide(wrapSubtract(to, from) << shift, oneIfZero(extent));
    };
    const int stepU = step(a.sourceU, b.sourceU);
    const int stepV = step(a.sourceV, b.sourceV);
    const int start = larger(a.destX, static_cast<int>(clip.left));
    const int end = b.destX < clip.right ? b.destX + 1 : static_cast<int>(clip.right);
    const int skipped = wrapSubtract(start, a.destX);
    int u = wrapAdd(a.sourceU << shift, wrapMultiply(skipped, stepU));
    int v = wrapAdd(a.sourceV << shift, wrapMultiply(skipped, stepV));
    q_ulong *const row = pixelAt(dst, dstPitch, 0, a.destY);
    for (int x = start; x < end; ++x, u = wrapAdd(u, stepU), v = wrapAdd(v, stepV))
        pixel(row[x], u, v);
}

} // namespace

void iRotateMapping(q_ulong *dst, tagRECT *clipRect, int dstPitch, q_ulong *src, tagRECT *srcRect, int srcPitch,
                    int centreX, int centreY, double angle, int width, int height) {
    if (width == 0 || height == 0)
        return;
    const TurnedRectangle figure({centreX, centreY}, width, height, tableAngle(angle, -unitsPerRadian));
    const int left = static_cast<int>(srcRect->left);
    const int top = static_cast<int>(srcRect->top);
    const int right = wrapSubtract(static_cast<int>(srcRect->right), 1);
    const int bottom = wrapSubtract(static_cast<int>(srcRect->bottom), 1);
    const Point sources[4] = {{left, top}, {right, top}, {right, bottom}, {left, bottom}};

    const auto edgeRows = [&figure](int i) {
        const long long rows = static_cast<long long>(figure.corners[(i + 1) & 3].y) - figure.corners[i].y;
        return rows < 0 ? -rows : rows;
    };
    EdgeTable edges(edgeRows(0) + edgeRows(1) + edgeRows(2) + edgeRows(3));
    for (int i = 0; i < 4; ++i) {
        const int next = (i + 1) & 3;
        edges.trace<SixteenthTracing>({figure.corners[i], sources[i]}, {figure.corners[next], sources[next]});
    }

    const tagRECT clip = *clipRect;
    edges.forEachSpan([=](const EdgeCrossing &a, const EdgeCrossing &b) {
        drawSpan(dst, dstPitch, clip, a, b, 16, [src, srcPitch](q_ulong &d, int u, int v) {
            const q_ulong *const tap = pixelAt(src, srcPitch, u >> 20, v >> 20);
            d = fourTaps(tap, tap + srcPitch, static_cast<q_ulong>(u >> 16 & 15), static_cast<q_ulong>(v >> 16 & 15))
                    .pixel();
        });
    });
}

void iRotateCircleMapping(q_ulong *dst, tagRECT *clipRect, int dstPitch, q_ulong *src, tagRECT *, int srcPitch,
                          int centreX, int centreY, int radius, double angle) {
    const unsigned short turn = tableAngle(angle, -unitsPerRadian);
    const Point centre = {centreX, centreY};
    const Point start = {wrapSubtract(centreX, radius), centreY};
    EdgeTable edges(4LL * radius + 400);
    Point previous = start;
    for (int t = 0; t <= 65536; t += 512) {
        const Point next = start.turnedAbout(centre, static_cast<unsigned short>(t));
        edges.trace<WholeTracing>({previous, previous.turnedAbout(centre, turn)},
                                  {next, next.turnedAbout(centre, turn)});
        previous = next;
    }

    const tagRECT clip = *clipRect;
    edges.forEachSpan([=](const EdgeCrossing &a, const EdgeCrossing &b) {
        drawSpan(dst, dstPitch, clip, a, b, 18,
                 [src, srcPitch](q_ulong &d, int u, int v) { d = *pixelAt(src, srcPitch, u >> 18, v >> 18); });
    });
}

namespace {

/// The arguments that the direct mappers share.
struct Scene {
    q_ulong *dst;
    const tagRECT &clipRect;
    int dstPitch;
    const tagRECT &srcRect;
    int centreX;
    int centreY;
    double angle;
    int width;
    int height;
};

/// Maps every pixel of the turned rectangle's bounding box back into the source and calls `pixel(dst pixel, u, v)`
/// where the position, of `fractionBits`, lies from `before` pixels in front of the source rectangle up to `beyond`
/// pixels behind it.
template <class Pixel>
void mapBack(const Scene &scene, int fractionBits, int before, int beyond, Pixel pixel) {
    const auto &[dst, clipRect, dstPitch, srcRect, centreX, centreY, angle, width, height] = scene;
    if (width == 0 || height == 0)
        return;
    const TurnedRectangle figure({centreX, centreY}, width, height, tableAngle(angle, unitsPerRadian));
    Span columns = {figure.corners[0].x, figure.corners[0].x};
    Span rows = {figure.corners[0].y, figure.corners[0].y};
    for (const Point &corner : figure.corners) {
        columns = {smaller(columns.begin, corner.x), larger(columns.end, corner.x)};
        rows = {smaller(rows.begin, corner.y), larger(rows.end, corner.y)};
    }
    // Meant: the last column and the last row, of the clip as of the figure, are left out.
    const Window clip = windowOf(clipRect);
    if (clip.empty())
        return;
    columns = intersection(columns, {clip.columns.begin, clip.columns.end - 1});
    rows = intersection(rows, {clip.rows.begin, clip.rows.end - 1});
    if (columns.empty() || rows.empty())
        return;

    struct Steps {
        int a;
        int b;
        int d;
        int e;
    };
    const int scaledWidth = widthOf(srcRect) << fractionBits;
    const int scaledHeight = heightOf(srcRect) << fractionBits;
    const Steps steps = atFullWidth([=, angle = angle, width = width, height = height] {
        const SineCosine unit = sineCosine(angle);
        return Steps{truncateToInt(scaledWidth * unit.cosine / width), truncateToInt(scaledWidth * unit.sine / width),
                     truncateToInt(scaledHeight * unit.cosine / height),
                     truncateToInt(scaledHeight * unit.sine / height)};
    });

    // Meant: the centre of rotation is taken from the clip's size and not from the source rectangle.
    const int fromCentre = wrapSubtract(columns.begin, centreX);
    const int baseU = wrapAdd(widthOf(clipRect) << (fractionBits - 1), wrapMultiply(fromCentre, steps.a));
    const int baseV = wrapSubtract(heightOf(clipRect) << (fractionBits - 1), wrapMultiply(fromCentre, steps.e));
    const auto boundsOf = [=](Span span) {
        return Bounds{wrapSubtract(span.begin, before) << fractionBits, wrapAdd(span.end, beyond) << fractionBits};
    };
    const Bounds boundsU = boundsOf(columnsOf(srcRect));
    const Bounds boundsV = boundsOf(rowsOf(srcRect));
    for (int y = rows.begin; y < rows.end; ++y) {
        const int fromCentreY = wrapSubtract(y, centreY);
        // Meant: the step comes before the first pixel.
        const Track u = {wrapAdd(wrapAdd(baseU, wrapMultiply(fromCentreY, steps.b)), steps.a), steps.a, boundsU};
        const Track v = {wrapSubtract(wrapAdd(baseV, wrapMultiply(fromCentreY, steps.d)), steps.e),
                         wrapSubtract(0, steps.e), boundsV};
        q_ulong *const row = pixelAt(dst, dstPitch, columns.begin, y);
        forEachInside(u, v, columns.length(),
                      [row, pixel](int x, int uHere, int vHere) { pixel(row[x], uHere, vHere); });
    }
}

/// The four source pixels around a position of 20 fraction bits, and its fractions in sixteenths.
struct Taps {
    const q_ulong *upper;
    const q_ulong *lower;
    q_ulong fx;
    q_ulong fy;

    Taps(const q_ulong *src, Distance pitch, int u, int v)
        : upper(pixelAt(src, pitch, u >> 20, v >> 20)), lower(upper + pitch), fx(static_cast<q_ulong>(u >> 16 & 15)),
          fy(static_cast<q_ulong>(v >> 16 & 15)) {}

    q_ulong colour() const { return fourTaps(upper, lower, fx, fy).pixel(); }

    q_ulong coverage() const {
        const q_ulong ix = 16 - fx;
        const q_ulong iy = 16 - fy;
        return (topByteOf(upper[0]) * ix * iy + topByteOf(upper[1]) * fx * iy + topByteOf(lower[0]) * ix * fy +
                topByteOf(lower[1]) * fx * fy) >>
               8;
    }

    /// The largest of the four bytes under a mask, so that dark border pixels do not dim an edge.
    q_ulong largest(q_ulong mask) const {
        return std::max(std::max(upper[0] & mask, upper[1] & mask), std::max(lower[0] & mask, lower[1] & mask));
    }
};

} // namespace

void iRotate(q_ulong *dst, tagRECT *clipRect, int dstPitch, q_ulong *src, tagRECT *srcRect, int srcPitch, int centreX,
             int centreY, double angle, int width, int height) {
    mapBack({.dst = dst,
             .clipRect = *clipRect,
             .dstPitch = dstPitch,
             .srcRect = *srcRect,
             .centreX = centreX,
             .centreY = centreY,
             .angle = angle,
             .width = width,
             .height = height},
            16, 0, 0, [src, srcPitch](q_ulong &d, int u, int v) { d = *pixelAt(src, srcPitch, u >> 16, v >> 16); });
}

void iRotateLinear(q_ulong *dst, tagRECT *clipRect, int dstPitch, q_ulong *src, tagRECT *srcRect, int srcPitch,
                   int centreX, int centreY, double angle, int width, int height) {
    mapBack({.dst = dst,
             .clipRect = *clipRect,
             .dstPitch = dstPitch,
             .srcRect = *srcRect,
             .centreX = centreX,
             .centreY = centreY,
             .angle = angle,
             .width = width,
             .height = height},
            20, 0, -1, [src, srcPitch](q_ulong &d, int u, int v) { d = Taps(src, srcPitch, u, v).colour(); });
}

void iRotateLinearAA(q_ulong *dst, tagRECT *clipRect, int dstPitch, q_ulong *src, tagRECT *srcRect, int srcPitch,
                     int centreX, int centreY, double angle, int width, int height) {
    const Span columns = columnsOf(*srcRect);
    const Span rows = rowsOf(*srcRect);
    for (int y = rows.begin; y < rows.end; ++y) {
        q_ulong *const row = pixelAt(src, srcPitch, 0, y);
        for (int x = columns.begin; x < columns.end; ++x)
            row[x] |= 0xFF000000;
    }
    mapBack({.dst = dst,
             .clipRect = *clipRect,
             .dstPitch = dstPitch,
             .srcRect = *srcRect,
             .centreX = centreX,
             .centreY = centreY,
             .angle = angle,
             .width = width,
             .height = height},
            20, 2, 1, [src, srcPitch](q_ulong &d, int u, int v) {
                const Taps taps(src, srcPitch, u, v);
                const q_ulong coverage = taps.coverage();
                const q_ulong largest = taps.largest(redMask) | taps.largest(greenMask) | taps.largest(blueMask);
                d = coverage == 255 ? taps.colour() : blend256(d, 255 - coverage, largest, coverage);
            });
}
