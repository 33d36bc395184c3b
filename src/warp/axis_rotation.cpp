#include "base/extent.h"
#include "base/wide.h"
#include "q_Mur/warp.h"
#include "walks/stretch.h"

#include <algorithm>
#include <cmath>
#include <initializer_list>

namespace {

using namespace qmur;

// A turn about the X axis walks rows, each with one source row and one source step along it; a turn about the Y axis is
// the same with columns. Both are told here in one set of words: the outer axis is the one that is walked, the inner
// one runs along the axis of the turn.

/// The two strides of a surface: from one line of the walk to the next, and from pixel to pixel along a line.
struct Strides {
    Distance outer;
    Distance inner;
};

/// An image that turns in depth: everything that the lines of a turn have in common, in 15 fraction bits.
struct Turn {
    int scale;
    int tangent;
    int inverse; ///< source lines for one destination line
};

/// A position on the outer axis and one on the inner.
struct Position {
    int outer;
    int inner;
};

/// Where one destination line finds its source.
struct SourceLine {
    int line;
    int step; ///< source pixels for one destination pixel

    static SourceLine at(int outer, const Turn &turn, int centre, int sourceCentre) {
        const auto growth = [outer, centre](int factor) {
            return wrapSubtract(wrapMultiply(outer, factor), wrapMultiply(centre, factor)) >> 15;
        };
        const int depth = wrapMultiply(wrapAdd(growth(turn.tangent), 1024), turn.scale) >> 15;
        return {wrapAdd(growth(turn.inverse), sourceCentre), 33554432 / (depth == 0 ? 1 : depth)};
    }
};

/// What stands outside the face: the background's pixel, a plain colour, or nothing new.
struct Outside {
    const q_ulong *background; ///< may be null
    bool filled;

    /// Hands `use` the function that treats the destination pixel of an index, so that nothing is decided per pixel.
    template <class Use>
    void forPixelsOf(q_ulong *dst, Use use) const {
        if (background)
            use([dst, from = background](Distance index) { dst[index] = from[index]; });
        else if (filled)
            use([dst](Distance index) { dst[index] = 0; });
        else
            use([](Distance) {});
    }

    /// Treats a run of destination pixels whose first one has the given index.
    void store(q_ulong *dst, Distance index, Distance stride, int count) const {
        forPixelsOf(dst, [index, stride, count](auto storeAt) {
            Distance at = index;
            for (int i = 0; i < count; ++i, at += stride)
                storeAt(at);
        });
    }
};

/// How the pixels along a line find their source.
struct InnerAxis {
    int destCentre;
    int sourceCentre;
    Bounds source;         ///< the source pixels that are shown
    Distance sourceStride; ///< 0: a line is of one colour

    /// How far the source of a line's pixel lies from the centre, in 15 fraction bits.
    int positionAt(int inner, int step) const {
        return wrapSubtract(wrapMultiply(inner, step), wrapMultiply(destCentre, step));
    }
    int sourceAt(int position) const { return wrapAdd(position >> 15, sourceCentre); }
};

/// What one destination line shows.
struct ShownLine {
    const q_ulong *source;
    int step;
    bool ofFace; ///< not only what stands outside
};

/// What the lines of a walk have in common.
struct Walk {
    q_ulong *dst;
    Strides strides;
    Span inner; ///< the pixels of each line
    InnerAxis axis;
    Outside outside;
};

void drawLine(const Walk &walk, int outer, const ShownLine &line) {
    const auto [dst, strides, inner, axis, outside] = walk;
    const Distance stride = strides.inner;
    const int step = line.step;
    const int start = axis.positionAt(inner.begin, step);
    const int count = inner.length();
    Distance index = outer * strides.outer + inner.begin * stride;
    if (!line.ofFace) {
        outside.store(dst, index, stride, count);
    } else if (staysIn32Bits(start, step, count)) {
        const Bounds scaled = scaledBounds(axis.source.low, axis.source.high, axis.sourceCentre, 15);
        const Span stretch = stretchInside(start, step, scaled, {0, count});
        outside.store(dst, index, stride, stretch.begin);
        index += stretch.begin * stride;
        int position = wrapAdd(start, wrapMultiply(step, stretch.begin));
        for (int x = stretch.begin; x < stretch.end; ++x, index += stride, position = wrapAdd(position, step))
            dst[index] = line.source[axis.sourceAt(position) * axis.sourceStride];
        outside.store(dst, index, stride, count - stretch.end);
    } else {
        int position = start;
        for (int x = 0; x < count; ++x, index += stride, position = wrapAdd(position, step)) {
            const int source = axis.sourceAt(position);
            if (axis.source.contain(source))
                dst[index] = line.source[source * axis.sourceStride];
            else
                outside.store(dst, index, stride, 1);
        }
    }
}

/// Draws the lines, which are columns, in groups, and each group row by row, as it lies in memory.
/// `storeOutside(index)` treats a pixel outside the face.
template <class LineAt, class StoreOutside>
void drawColumnsByRows(const Walk &walk, Span columns, LineAt lineAt, StoreOutside storeOutside) {
    constexpr int groupSize = 256; // a few kilobytes of state, and long enough runs of memory
    q_ulong *const dst = walk.dst;
    const Distance pitch = walk.strides.inner;
    const Span inner = walk.inner;
    const InnerAxis axis = walk.axis;
    const auto lowest = static_cast<unsigned>(axis.source.low);
    const auto extent = static_cast<unsigned>(axis.source.high - axis.source.low);
    int positions[groupSize];
    int steps[groupSize];
    unsigned extents[groupSize]; // 0 for a line that only shows what stands outside
    const q_ulong *sources[groupSize];
    for (int first = columns.begin, count = 0; first < columns.end; first += count) {
        count = smaller(groupSize, columns.end - first);
        for (int x = 0; x < count; ++x) {
            const ShownLine line = lineAt(first + x);
            positions[x] = axis.positionAt(inner.begin, line.step);
            steps[x] = line.step;
            extents[x] = line.ofFace ? extent : 0;
            sources[x] = line.source;
        }
        for (int y = inner.begin; y < inner.end; ++y) {
            const Distance row = y * pitch + first;
            for (int x = 0; x < count; ++x) {
                const int source = axis.sourceAt(positions[x]);
                positions[x] = wrapAdd(positions[x], steps[x]);
                if (static_cast<unsigned>(source) - lowest < extents[x])
                    dst[row + x] = sources[x][source * axis.sourceStride];
                else
                    storeOutside(row + x);
            }
        }
    }
}

/// Whether the lines are columns that may be drawn row by row: none of the pixels that are read is one of those of the
/// frame, of so many columns and rows, that may be written. A picture that is not `shown` is not read.
struct ReadPart {
    bool shown;
    const q_ulong *picture;
    Distance pitch;
    Window part;
};

bool mayGoByRows(const Walk &walk, int columns, int rows, std::initializer_list<ReadPart> readParts) {
    const Distance pitch = walk.strides.inner;
    if (walk.strides.outer != 1 || !keepsPixelsApart(pitch, columns))
        return false;
    const Extent written = extentOf(walk.dst, pitch, windowOf(columns, rows));
    return std::all_of(readParts.begin(), readParts.end(), [written](const ReadPart &read) {
        return !read.shown || written.isApartFrom(extentOf(read.picture, read.pitch, read.part));
    });
}

/// Draws lines in their order; or `byRows`, for columns of which no pixel is read or written again after it was
/// written, so that nothing tells the order.
template <class LineAt>
void drawLines(const Walk &walk, Span lines, bool byRows, LineAt lineAt) {
    if (byRows)
        walk.outside.forPixelsOf(walk.dst,
                                 [&](auto storeOutside) { drawColumnsByRows(walk, lines, lineAt, storeOutside); });
    else
        for (int outer = lines.begin; outer < lines.end; ++outer)
            drawLine(walk, outer, lineAt(outer));
}

/// The arguments of a full turn, on the outer and inner axes.
struct TwoFaces {
    q_ulong *dst;
    const q_ulong *front;
    const q_ulong *back; ///< may be null
    Strides strides;
    Span srcOuter;
    Span srcInner;
    Position destCentre;
    int pivot; ///< source line about which the image turns
    Outside outside;
    q_ulong backColour;
    int outerLimit;
    int innerLimit;
};

/// The lines and pixels that a full turn writes.
struct Reach {
    bool drawn;
    bool backView;
    Turn turn;
    Span band;  ///< lines that the face could ever cover
    Span face;  ///< lines that it covers now
    Span inner; ///< pixels along a line
};

/// The constants carry six decimals only; they are the limits to use.
constexpr double fullCircle = 6.283184;

Wide reduced(Wide angle) {
    // Beyond this a step of the loop below no longer means anything.
    if (absolute(angle) > 0x1p20)
        angle = remainderOf(angle, fullCircle);
    while (angle > fullCircle)
        angle -= fullCircle;
    while (angle < 0)
        angle += fullCircle;
    return angle;
}

Reach reachOf(const TwoFaces &faces, double angle, double scale, double perspective) {
    return atFullWidth([=] {
        Reach reach = {};
        const Wide cosine = sineCosine(angle).cosine;
        if (scale == 0.0 || !std::isfinite(angle) || absolute(cosine) < 1e-07)
            return reach;
        const Wide wideScale = scale;
        reach.drawn = true;
        reach.turn = {truncateToInt(wideScale * 32768), truncateToInt(tangent(angle) * perspective * 32768),
                      truncateToInt(32768 / cosine / wideScale)};

        const Wide turned = reduced(angle);
        reach.backView = turned > 1.570796 && turned < 4.712388;
        const Wide foreshortening = absolute(sineCosine(turned).cosine);
        const int before = wrapSubtract(faces.pivot, faces.srcOuter.begin);
        const int behind = wrapSubtract(faces.srcOuter.end, faces.pivot);
        const int above = truncateToInt((reach.backView ? behind : before) * foreshortening * wideScale);
        const int below = truncateToInt((reach.backView ? before : behind) * foreshortening * wideScale);
        const Wide farthest = largerOf(before * wideScale, behind * wideScale);
        const Wide half = 0.5 * (wideScale * wrapSubtract(faces.srcInner.end, faces.srcInner.begin)) *
                          (static_cast<Wide>(perspective) + 1);

        // A bound beyond the frame is set on its edge, some of them one short of it.
        const auto clamped = [](int value, int limit, int beyond) {
            return value < 0 ? 0 : value > limit ? beyond : value;
        };
        const int lines = faces.outerLimit;
        const int pixels = faces.innerLimit;
        const Position centre = faces.destCentre;
        reach.band = {clamped(truncateToInt(centre.outer - farthest), lines, lines - 1),
                      clamped(truncateToInt(centre.outer + farthest), lines, lines)};
        reach.face = {clamped(wrapSubtract(centre.outer, above), lines, lines),
                      clamped(wrapAdd(centre.outer, below), lines, lines - 1)};
        reach.inner = {clamped(truncateToInt(centre.inner - half), pixels, pixels - 1),
                       clamped(truncateToInt(centre.inner + half), pixels, pixels)};
        return reach;
    });
}

void turn(const TwoFaces &faces, double angle, double scale, double perspective) {
    if (faces.outerLimit < 1 || faces.innerLimit < 1)
        return;
    const Reach reach = reachOf(faces, angle, scale, perspective);
    if (!reach.drawn || reach.inner.empty())
        return;
    const bool showsColour = reach.backView && !faces.back;
    const Walk walk = {.dst = faces.dst,
                       .strides = faces.strides,
                       .inner = reach.inner,
                       .axis = {.destCentre = faces.destCentre.inner,
                                .sourceCentre = wrapAdd(faces.srcInner.begin, faces.srcInner.end) / 2,
                                .source = {faces.srcInner.begin, faces.srcInner.end},
                                .sourceStride = showsColour ? 0 : faces.strides.inner},
                       .outside = faces.outside};
    const Distance pitch = faces.strides.inner;
    // The back view counts its lines from the end on, down to 1.
    const Window backLines = {{1, wrapAdd(faces.srcOuter.length(), 1)}, faces.srcInner};
    const bool byRows = mayGoByRows(walk, faces.outerLimit, faces.innerLimit,
                                    {{faces.outside.background != nullptr, faces.outside.background, pitch,
                                      windowOf(faces.outerLimit, faces.innerLimit)},
                                     {!reach.backView, faces.front, pitch, {faces.srcOuter, faces.srcInner}},
                                     {reach.backView && faces.back, faces.back, pitch, backLines}});
    const auto clear = [&](Span lines) { drawLines(walk, lines, byRows, [](int) { return ShownLine{}; }); };
    clear({reach.band.begin, reach.face.begin});
    clear({reach.face.end, reach.band.end});

    const Bounds outerBounds = {faces.srcOuter.begin, faces.srcOuter.end};
    drawLines(walk, reach.face, byRows, [&](int outer) {
        auto [line, step] = SourceLine::at(outer, reach.turn, faces.destCentre.outer, faces.pivot);
        if (reach.backView && faces.front == faces.back)
            line = wrapSubtract(faces.srcOuter.end, line);
        if (!outerBounds.contain(line) || faces.srcInner.empty())
            return ShownLine{};
        if (showsColour)
            return ShownLine{&faces.backColour, step, true};
        if (reach.backView)
            return ShownLine{faces.back + wrapSubtract(faces.srcOuter.end, line) * faces.strides.outer, step, true};
        return ShownLine{faces.front + line * faces.strides.outer, step, true};
    });
}

/// The arguments of a turn of a whole frame with one face.
struct WholeFrame {
    q_ulong *dst;
    Strides dstStrides;
    const q_ulong *src;
    Strides srcStrides;
    int outerExtent;
    int innerExtent;
    int firstInside; ///< the first source line and pixel that are shown
    Outside outside;
};

void turnFrame(const WholeFrame &frame, double angle, double scale, double perspective) {
    if (frame.outerExtent < 1 || frame.innerExtent < 1)
        return;
    const int outerHalf = frame.outerExtent / 2;
    const int innerHalf = frame.innerExtent / 2;
    struct FrameTurn {
        bool drawn;
        Turn turn;
        int margin;
    };
    const FrameTurn frameTurn = atFullWidth([=] {
        const Wide scaledCosine = sineCosine(angle).cosine * scale;
        if (scale == 0.0 || !std::isfinite(angle) || absolute(scaledCosine) < 1e-07)
            return FrameTurn{};
        return FrameTurn{true,
                         {truncateToInt(static_cast<Wide>(scale) * 32768),
                          truncateToInt(tangent(angle) * perspective * 32768), truncateToInt(32768 / scaledCosine)},
                         truncateToInt((1 - absolute(scaledCosine)) * outerHalf)};
    });
    if (!frameTurn.drawn)
        return;
    // Meant: a margin of 0 still clears the last line. That of an enlarged frame is negative, and its face, which ends
    // beyond the frame, shows there.
    const long long end = frame.outerExtent - static_cast<long long>(frameTurn.margin) - 1;
    const int heldEnd = end > frame.outerExtent ? frame.outerExtent : static_cast<int>(end);
    const Span face = {larger(smaller(frameTurn.margin, outerHalf), 0), larger(heldEnd, outerHalf + 1)};

    const Bounds outerBounds = {frame.firstInside, frame.outerExtent};
    const Bounds innerBounds = {frame.firstInside, frame.innerExtent};
    const Walk walk = {.dst = frame.dst,
                       .strides = frame.dstStrides,
                       .inner = {0, frame.innerExtent},
                       .axis = {.destCentre = innerHalf,
                                .sourceCentre = innerHalf,
                                .source = innerBounds,
                                .sourceStride = frame.srcStrides.inner},
                       .outside = frame.outside};
    const Window whole = windowOf(frame.outerExtent, frame.innerExtent);
    const bool byRows =
        mayGoByRows(walk, frame.outerExtent, frame.innerExtent,
                    {{frame.outside.background != nullptr, frame.outside.background, frame.dstStrides.inner, whole},
                     {true, frame.src, frame.srcStrides.inner, whole}});
    // Both margins come before the face: where a frame is turned in place, the face shows them.
    const auto margin = [](int) { return ShownLine{}; };
    drawLines(walk, {0, face.begin}, byRows, margin);
    drawLines(walk, {face.end, frame.outerExtent}, byRows, margin);
    drawLines(walk, face, byRows, [&](int outer) {
        const auto [line, step] = SourceLine::at(outer, frameTurn.turn, outerHalf, outerHalf);
        if (!outerBounds.contain(line) || innerBounds.empty())
            return ShownLine{};
        return ShownLine{frame.src + line * frame.srcStrides.outer, step, true};
    });
}

} // namespace

void iBltNear32_X_Roto(q_ulong *dst, q_ulong *front, q_ulong *back, q_ulong *background, double angle, double scale,
                       double perspective, tagRECT srcRect, tagPOINT destCentre, tagPOINT sourcePivot, int clearOutside,
                       q_ulong backColour, int, int pitch, int width, int height) {
    turn({.dst = dst,
          .front = front,
          .back = back,
          .strides = {pitch, 1},
          .srcOuter = rowsOf(srcRect),
          .srcInner = columnsOf(srcRect),
          .destCentre = {static_cast<int>(destCentre.y), static_cast<int>(destCentre.x)},
          .pivot = static_cast<int>(sourcePivot.y),
          .outside = {background, clearOutside != 0},
          .backColour = backColour,
          .outerLimit = height,
          .innerLimit = width},
         angle, scale, perspective);
}

void iBltNear32_Y_Roto(q_ulong *dst, q_ulong *front, q_ulong *back, q_ulong *background, double angle, double scale,
                       double perspective, tagRECT srcRect, tagPOINT destCentre, tagPOINT sourcePivot, int clearOutside,
                       q_ulong backColour, int, int pitch, int width, int height) {
    turn({.dst = dst,
          .front = front,
          .back = back,
          .strides = {1, pitch},
          .srcOuter = columnsOf(srcRect),
          .srcInner = rowsOf(srcRect),
          .destCentre = {static_cast<int>(destCentre.x), static_cast<int>(destCentre.y)},
          .pivot = static_cast<int>(sourcePivot.x),
          .outside = {background, clearOutside != 0},
          .backColour = backColour,
          .outerLimit = width,
          .innerLimit = height},
         angle, scale, perspective);
}

void iBltNear32_X_Roto_Fast(q_ulong *dst, int dstPitch, q_ulong *src, int srcPitch, double angle, double scale,
                            double perspective, int width, int height) {
    // Meant: source row 0 and column 0 are never shown here.
    turnFrame({.dst = dst,
               .dstStrides = {dstPitch, 1},
               .src = src,
               .srcStrides = {srcPitch, 1},
               .outerExtent = height,
               .innerExtent = width,
               .firstInside = 1,
               .outside = {nullptr, true}},
              angle, scale, perspective);
}

void iBltNear32_X_Roto_Fast(q_ulong *dst, int dstPitch, q_ulong *src, int srcPitch, q_ulong *background, int,
                            double angle, double scale, double perspective, int width, int height) {
    turnFrame({.dst = dst,
               .dstStrides = {dstPitch, 1},
               .src = src,
               .srcStrides = {srcPitch, 1},
               .outerExtent = height,
               .innerExtent = width,
               .firstInside = 0,
               .outside = {background, true}},
              angle, scale, perspective);
}

void iBltNear32_Y_Roto_Fast(q_ulong *dst, int dstPitch, q_ulong *src, int srcPitch, double angle, double scale,
                            double perspective, int width, int height) {
    turnFrame({.dst = dst,
               .dstStrides = {1, dstPitch},
               .src = src,
               .srcStrides = {1, srcPitch},
               .outerExtent = width,
               .innerExtent = height,
               .firstInside = 0,
               .outside = {nullptr, true}},
              angle, scale, perspective);
}
