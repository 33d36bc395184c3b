#include "../frame/stretch.h"
#include "../frame/wide.h"
#include "q_Mur/warp.h"

#include <cmath>

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
struct Line {
    int source; ///< the source line
    int step;   ///< source pixels for one destination pixel

    static Line at(int outer, const Turn &turn, int centre, int sourceCentre) {
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

    /// Treats a run of destination pixels whose first one has the given index.
    void store(q_ulong *dst, Distance index, Distance stride, int count) const {
        if (background)
            for (; count > 0; --count, index += stride)
                dst[index] = background[index];
        else if (filled)
            for (; count > 0; --count, index += stride)
                dst[index] = 0;
    }
};

/// How the pixels along a line find their source.
struct InnerAxis {
    int destCentre;
    int sourceCentre;
    Bounds source; ///< the source pixels that are shown
};

/// Draws the pixels `inner` of one line: `inside(dst pixel, source position)` where the source is shown, `outside`
/// elsewhere. `index` belongs to the inner coordinate 0.
template <class Inside>
void drawLine(q_ulong *dst, Distance index, Distance stride, Span inner, int step, const InnerAxis &axis,
              const Outside &outside, Inside inside) {
    const int sourceCentre = axis.sourceCentre;
    const int start = wrapSubtract(wrapMultiply(inner.begin, step), wrapMultiply(axis.destCentre, step));
    const int count = inner.length();
    index += inner.begin * stride;
    if (staysIn32Bits(start, step, count)) {
        const Bounds scaled = {(axis.source.low - sourceCentre) * 32768, (axis.source.high - sourceCentre) * 32768};
        const Span stretch = stretchInside(start, step, scaled, {0, count});
        outside.store(dst, index, stride, stretch.begin);
        int position = wrapAdd(start, wrapMultiply(step, stretch.begin));
        Distance at = index + stretch.begin * stride;
        for (int x = stretch.begin; x < stretch.end; ++x, at += stride, position = wrapAdd(position, step))
            inside(dst[at], (position >> 15) + sourceCentre);
        outside.store(dst, at, stride, count - stretch.end);
        return;
    }
    int position = start;
    for (int x = 0; x < count; ++x, index += stride, position = wrapAdd(position, step)) {
        const int source = wrapAdd(position >> 15, sourceCentre);
        if (axis.source.contain(source))
            inside(dst[index], source);
        else
            outside.store(dst, index, stride, 1);
    }
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
    if (std::fabs(angle) > 0x1p20L)
        angle = std::fmod(angle, static_cast<Wide>(fullCircle));
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
        if (scale == 0.0 || !std::isfinite(angle) || std::fabs(cosine) < 1e-07)
            return reach;
        const Wide wideScale = scale;
        reach.drawn = true;
        reach.turn = {truncateToInt(wideScale * 32768), truncateToInt(tangent(angle) * perspective * 32768),
                      truncateToInt(32768 / cosine / wideScale)};

        const Wide turned = reduced(angle);
        reach.backView = turned > 1.570796 && turned < 4.712388;
        const Wide foreshortening = std::fabs(sineCosine(turned).cosine);
        const int before = wrapSubtract(faces.pivot, faces.srcOuter.begin);
        const int behind = wrapSubtract(faces.srcOuter.end, faces.pivot);
        const int above = truncateToInt((reach.backView ? behind : before) * foreshortening * wideScale);
        const int below = truncateToInt((reach.backView ? before : behind) * foreshortening * wideScale);
        const Wide farthest = std::fmax(before * wideScale, behind * wideScale);
        const Wide half = 0.5L * (wideScale * wrapSubtract(faces.srcInner.end, faces.srcInner.begin)) *
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
    q_ulong *const dst = faces.dst;
    const Distance outerStride = faces.strides.outer;
    const Distance innerStride = faces.strides.inner;
    const Distance firstInner = reach.inner.begin * innerStride;

    const auto clear = [&](Span lines) {
        for (int outer = lines.begin; outer < lines.end; ++outer)
            faces.outside.store(dst, outer * outerStride + firstInner, innerStride, reach.inner.length());
    };
    clear({reach.band.begin, reach.face.begin});
    clear({reach.face.end, reach.band.end});

    const InnerAxis axis = {faces.destCentre.inner,
                            wrapAdd(faces.srcInner.begin, faces.srcInner.end) / 2,
                            {faces.srcInner.begin, faces.srcInner.end}};
    const Bounds outerBounds = {faces.srcOuter.begin, faces.srcOuter.end};
    for (int outer = reach.face.begin; outer < reach.face.end; ++outer) {
        Line line = Line::at(outer, reach.turn, faces.destCentre.outer, faces.pivot);
        if (reach.backView && faces.front == faces.back)
            line.source = wrapSubtract(faces.srcOuter.end, line.source);
        const Distance index = outer * outerStride;
        if (!outerBounds.contain(line.source) || axis.source.empty()) {
            faces.outside.store(dst, index + firstInner, innerStride, reach.inner.length());
        } else if (!reach.backView) {
            const q_ulong *const source = faces.front + line.source * outerStride;
            drawLine(dst, index, innerStride, reach.inner, line.step, axis, faces.outside,
                     [source, innerStride](q_ulong &d, int s) { d = source[s * innerStride]; });
        } else if (faces.back) {
            const q_ulong *const source = faces.back + wrapSubtract(faces.srcOuter.end, line.source) * outerStride;
            drawLine(dst, index, innerStride, reach.inner, line.step, axis, faces.outside,
                     [source, innerStride](q_ulong &d, int s) { d = source[s * innerStride]; });
        } else {
            drawLine(dst, index, innerStride, reach.inner, line.step, axis, faces.outside,
                     [colour = faces.backColour](q_ulong &d, int) { d = colour; });
        }
    }
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
        if (scale == 0.0 || !std::isfinite(angle) || std::fabs(scaledCosine) < 1e-07)
            return FrameTurn{};
        return FrameTurn{true,
                         {truncateToInt(scale * 32768.0L), truncateToInt(tangent(angle) * perspective * 32768),
                          truncateToInt(32768 / scaledCosine)},
                         larger(truncateToInt((1.0L - std::fabs(scaledCosine)) * outerHalf), 0)};
    });
    if (!frameTurn.drawn)
        return;
    const int last = frame.outerExtent - frameTurn.margin - 1;
    const Span face = {smaller(frameTurn.margin, outerHalf), last > outerHalf ? last : outerHalf + 1};

    q_ulong *const dst = frame.dst;
    const Distance dstStride = frame.dstStrides.inner;
    const Distance srcStride = frame.srcStrides.inner;
    const Span inner = {0, frame.innerExtent};
    const Bounds outerBounds = {frame.firstInside, frame.outerExtent};
    const InnerAxis axis = {innerHalf, innerHalf, {frame.firstInside, frame.innerExtent}};
    for (int outer = 0; outer < frame.outerExtent; ++outer) {
        const Distance index = outer * frame.dstStrides.outer;
        const Line line = Line::at(outer, frameTurn.turn, outerHalf, outerHalf);
        if (outer < face.begin || outer >= face.end || !outerBounds.contain(line.source) || axis.source.empty()) {
            frame.outside.store(dst, index, dstStride, inner.length());
            continue;
        }
        const q_ulong *const source = frame.src + line.source * frame.srcStrides.outer;
        drawLine(dst, index, dstStride, inner, line.step, axis, frame.outside,
                 [source, srcStride](q_ulong &d, int s) { d = source[s * srcStride]; });
    }
}

} // namespace

void iBltNear32_X_Roto(q_ulong *dst, q_ulong *front, q_ulong *back, q_ulong *background, double angle, double scale,
                       double perspective, tagRECT srcRect, tagPOINT destCentre, tagPOINT sourcePivot, int clearOutside,
                       q_ulong backColour, int, int pitch, int width, int height) {
    turn({dst,
          front,
          back,
          {pitch, 1},
          rowsOf(srcRect),
          columnsOf(srcRect),
          {static_cast<int>(destCentre.y), static_cast<int>(destCentre.x)},
          static_cast<int>(sourcePivot.y),
          {background, clearOutside != 0},
          backColour,
          height,
          width},
         angle, scale, perspective);
}

void iBltNear32_Y_Roto(q_ulong *dst, q_ulong *front, q_ulong *back, q_ulong *background, double angle, double scale,
                       double perspective, tagRECT srcRect, tagPOINT destCentre, tagPOINT sourcePivot, int clearOutside,
                       q_ulong backColour, int, int pitch, int width, int height) {
    turn({dst,
          front,
          back,
          {1, pitch},
          columnsOf(srcRect),
          rowsOf(srcRect),
          {static_cast<int>(destCentre.x), static_cast<int>(destCentre.y)},
          static_cast<int>(sourcePivot.x),
          {background, clearOutside != 0},
          backColour,
          width,
          height},
         angle, scale, perspective);
}

void iBltNear32_X_Roto_Fast(q_ulong *dst, int dstPitch, q_ulong *src, int srcPitch, double angle, double scale,
                            double perspective, int width, int height) {
    // Meant: source row 0 and column 0 are never shown here.
    turnFrame({dst, {dstPitch, 1}, src, {srcPitch, 1}, height, width, 1, {nullptr, true}}, angle, scale, perspective);
}

void iBltNear32_X_Roto_Fast(q_ulong *dst, int dstPitch, q_ulong *src, int srcPitch, q_ulong *background, int,
                            double angle, double scale, double perspective, int width, int height) {
    turnFrame({dst, {dstPitch, 1}, src, {srcPitch, 1}, height, width, 0, {background, true}}, angle, scale,
              perspective);
}

void iBltNear32_Y_Roto_Fast(q_ulong *dst, int dstPitch, q_ulong *src, int srcPitch, double angle, double scale,
                            double perspective, int width, int height) {
    turnFrame({dst, {1, dstPitch}, src, {1, srcPitch}, width, height, 0, {nullptr, true}}, angle, scale, perspective);
}
