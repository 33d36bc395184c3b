#include "base/channels.h"
#include "base/rotation.h"
#include "base/scratch.h"
#include "base/wide.h"
#include "q_Mur/warp.h"
#include "walks/turned.h"

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

/// Draws a span from one crossing to another, both columns included but for the clip. Source values are those of
/// positions shifted right by `shift`; `sampling` is as forEachTurned() asks for it.
template <class Sampling>
void drawSpan(q_ulong *dst, Distance dstPitch, const tagRECT &clip, const EdgeCrossing &a, const EdgeCrossing &b,
              int shift, const Sampling &sampling) {
    if (a.destY < clip.top || a.destY >= clip.bottom)
        return;
    const int extent = wrapSubtract(b.destX, a.destX);
    const int start = larger(a.destX, static_cast<int>(clip.left));
    const int end = b.destX < clip.right ? b.destX + 1 : static_cast<int>(clip.right);
    const auto trackOf = [=, skipped = wrapSubtract(start, a.destX)](int from, int to) {
        const int step = wrapDivide(wrapSubtract(to, from) << shift, oneIfZero(extent));
        return Track{wrapAdd(from << shift, wrapMultiply(skipped, step)), step, everyInt};
    };
    if (start < end)
        forEachTurned(pixelAt(dst, dstPitch, start, a.destY), dstPitch, trackOf(a.sourceU, b.sourceU),
                      trackOf(a.sourceV, b.sourceV), wrapSubtract(end, start), sampling);
}

using WholePositions = TurnedSource<16, 0>;
using DiscPositions = TurnedSource<18, 0>;
using FilteredPositions = TurnedSource<20, 1>;

/// What the samplings do to a pixel and to several side by side, for forEachTurned().
template <class Source>
struct Nearest {
    static constexpr int count = nearestCount;
    Source source;

    void operator()(q_ulong &d, int u, int v) const { d = *source.pixelOf(u, v); }
    void operator()(q_ulong *first, Numbers<count> u, Numbers<count> v) const { copyTurned(first, source, u, v); }
};

struct Filtered {
    static constexpr int count = filteredCount;
    FilteredPositions source;

    void operator()(q_ulong &d, int u, int v) const { d = filteredTurned(source, u, v).pixel(); }
    void operator()(q_ulong *first, Numbers<count> u, Numbers<count> v) const {
        (filteredTurned(source, u, v) & Numbers<count>::all(0xFFFFFF)).store(first);
    }
};

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
    const Filtered sampling = {{src, srcPitch}};
    edges.forEachSpan(
        [=](const EdgeCrossing &a, const EdgeCrossing &b) { drawSpan(dst, dstPitch, clip, a, b, 16, sampling); });
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
    const Nearest<DiscPositions> sampling = {{src, srcPitch}};
    edges.forEachSpan(
        [=](const EdgeCrossing &a, const EdgeCrossing &b) { drawSpan(dst, dstPitch, clip, a, b, 18, sampling); });
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

/// Maps every pixel of the turned rectangle's bounding box back into the source and draws it, as forEachTurned() does,
/// where the position lies from `before` pixels in front of the source rectangle up to `behind` pixels behind it.
template <class Sampling>
void mapBack(const Scene &scene, int before, int behind, const Sampling &sampling) {
    constexpr int fractionBits = decltype(sampling.source)::fractionBits;
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
        return Bounds{wrapSubtract(span.begin, before) << fractionBits, wrapAdd(span.end, behind) << fractionBits};
    };
    const Bounds boundsU = boundsOf(columnsOf(srcRect));
    const Bounds boundsV = boundsOf(rowsOf(srcRect));
    for (int y = rows.begin; y < rows.end; ++y) {
        const int fromCentreY = wrapSubtract(y, centreY);
        // Meant: the step comes before the first pixel.
        const Track u = {wrapAdd(wrapAdd(baseU, wrapMultiply(fromCentreY, steps.b)), steps.a), steps.a, boundsU};
        const Track v = {wrapSubtract(wrapAdd(baseV, wrapMultiply(fromCentreY, steps.d)), steps.e),
                         wrapSubtract(0, steps.e), boundsV};
        forEachTurned(pixelAt(dst, dstPitch, columns.begin, y), dstPitch, u, v, columns.length(), sampling);
    }
}

/// A source whose top bytes say how much of each pixel there is: the plain filtered colour where there is all of it.
struct Covered {
    static constexpr int count = filteredCount;
    FilteredPositions source;

    void operator()(q_ulong &d, int u, int v) const {
        const ChannelSums filtered = filteredTurned(source, u, v);
        const q_ulong coverage = filtered.topByteSum() >> 8;
        const q_ulong *const tap = source.pixelOf(u, v);
        const q_ulong largest = largestOf(tap, redMask) | largestOf(tap, greenMask) | largestOf(tap, blueMask);
        d = coverage == 255 ? filtered.pixel() : blend256(d, 255 - coverage, largest, coverage);
    }

    void operator()(q_ulong *first, Numbers<count> u, Numbers<count> v) const {
        const Numbers<count> filtered = filteredTurned(source, u, v);
        const auto signBit = Numbers<count>::all(0x80000000);
        const bool isWhole = lanesBelow(filtered ^ signBit, Numbers<count>::all(0xFF000000) ^ signBit) == 0;
        if (isWhole)
            (filtered & Numbers<count>::all(0xFFFFFF)).store(first);
        for (int lane = 0; !isWhole && lane < count; ++lane)
            (*this)(first[lane], static_cast<int>(u[lane]), static_cast<int>(v[lane]));
    }

private:
    /// The largest byte of the four taps under a mask, so that dark border pixels do not dim an edge.
    q_ulong largestOf(const q_ulong *tap, q_ulong mask) const {
        const q_ulong *const below = tap + source.pitch;
        return std::max(std::max(tap[0] & mask, tap[1] & mask), std::max(below[0] & mask, below[1] & mask));
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
            0, 0, Nearest<WholePositions>{{src, srcPitch}});
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
            0, -1, Filtered{{src, srcPitch}});
}

void iRotateLinearAA(q_ulong *dst, tagRECT *clipRect, int dstPitch, q_ulong *src, tagRECT *srcRect, int srcPitch,
                     int centreX, int centreY, double angle, int width, int height) {
    const Span columns = columnsOf(*srcRect);
    const Span rows = rowsOf(*srcRect);
    for (int y = rows.begin; y < rows.end && !columns.empty(); ++y) {
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
            2, 1, Covered{{src, srcPitch}});
}
