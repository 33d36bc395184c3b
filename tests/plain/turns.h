/// \file
/// The rotators about the Z, the X and the Y axis once more, position by position.
#ifndef Q_MUR_TESTS_PLAIN_TURNS_H
#define Q_MUR_TESTS_PLAIN_TURNS_H

#include "real.h"
#include "sampling.h"
#include "words.h"

#include <cmath>

namespace plain {

// About the Z axis.

struct ZTurn {
    tagRECT clip;
    tagRECT src;
    Number centreX;
    Number centreY;
    float angle;
    float scale;
};

/// Calls `pixel(x, y, u, v)` for every pixel of the walk, with positions from the source's centre in 2^-21 of a pixel.
/// Whole numbers are cut to 32 bits after each operation.
template <class Pixel>
void walkZ(const ZTurn &turn, Pixel pixel) {
    if (turn.scale == 0 || turn.clip.left >= turn.clip.right || turn.clip.top >= turn.clip.bottom)
        return;
    const FullWidth fullWidth;
    const Real scale = turn.scale;
    const Real sineOfAngle = sine(turn.angle);
    const Real cosineOfAngle = cosine(turn.angle);
    const Number inverseScale = truncated(32768 / scale);
    const Number width = signed32(widthOf(turn.src));
    const Number height = signed32(heightOf(turn.src));
    const Number radius = truncated(rootOf(Real(signed32(width * width + height * height))) * scale * 0.5);

    const auto lowBound = [radius](Number centre, Number low, Number high) {
        const Number bound = std::max(signed32(centre - radius), low);
        return bound > high ? high - 1 : bound;
    };
    const auto highBound = [radius](Number centre, Number low, Number high) {
        return std::min(std::max(signed32(centre + radius), low), high);
    };
    const Number x0 = lowBound(turn.centreX, turn.clip.left, turn.clip.right);
    const Number x1 = highBound(turn.centreX, turn.clip.left, turn.clip.right);
    const Number y0 = lowBound(turn.centreY, turn.clip.top, turn.clip.bottom);
    const Number y1 = highBound(turn.centreY, turn.clip.top, turn.clip.bottom);

    const Number a = signed32(signed32(x0 - turn.centreX) * inverseScale);
    const Number b = signed32(signed32(x1 - turn.centreX) * inverseScale);
    const Number p = truncated(a * (cosineOfAngle * 64));
    const Number q = truncated(b * (cosineOfAngle * 64));
    const Number r = truncated(a * (sineOfAngle * 64));
    const Number t = truncated(b * (sineOfAngle * 64));
    const Number divisor = std::max<Number>(x1 - x0, 1);
    const Number stepU = signed32(q - p) / divisor;
    const Number stepV = signed32(t - r) / divisor;
    for (Number y = y0; y < y1; ++y) {
        const Number rowTerm =
            flooredQuotient(signed32(signed32(y * inverseScale) - signed32(turn.centreY * inverseScale)), 256);
        Number u = signed32(rowTerm * truncated(sineOfAngle * 16384) + p);
        Number v = signed32(rowTerm * truncated(cosineOfAngle * 16384) - r);
        for (Number x = x0; x < x1; ++x) {
            pixel(x, y, u, v);
            u = signed32(u + stepU);
            v = signed32(v - stepV);
        }
    }
}

/// Calls `store(destination's pixel, source's pixel)` wherever the nearest one lies inside the source.
template <class Store>
void turnNearest(Pixels dst, Pixels src, const ZTurn &turn, Store store) {
    const Number centreX = flooredQuotient(signed32(Number{turn.src.left} + turn.src.right), 2);
    const Number centreY = flooredQuotient(signed32(Number{turn.src.top} + turn.src.bottom), 2);
    walkZ(turn, [&](Number x, Number y, Number u, Number v) {
        const Number column = centreX + flooredQuotient(u, 1 << 21);
        const Number row = centreY + flooredQuotient(v, 1 << 21);
        if (contains(turn.src, column, row))
            store(dst.at(x, y), src.at(column, row));
    });
}

/// The same with the colour of four taps, which have to lie inside.
template <class Store>
void turnFiltered(Pixels dst, Pixels src, const ZTurn &turn, Store store) {
    const Number centreX = flooredQuotient(signed32(Number{turn.src.left} + turn.src.right), 2);
    const Number centreY = flooredQuotient(signed32(Number{turn.src.top} + turn.src.bottom), 2);
    const tagRECT inside = {turn.src.left * 16, turn.src.top * 16, turn.src.right * 16 - 16, turn.src.bottom * 16 - 16};
    walkZ(turn, [&](Number x, Number y, Number u, Number v) {
        const Number column = flooredQuotient(u, 1 << 17) + centreX * 16;
        const Number row = flooredQuotient(v, 1 << 17) + centreY * 16;
        if (contains(inside, column, row))
            store(dst.at(x, y),
                  fourTaps(src, flooredQuotient(column, 16), flooredQuotient(row, 16), column & 15, row & 15).pixel());
    });
}

inline void turned(q_ulong &d, q_ulong s) {
    d = s;
}
inline void turnedKeyed(q_ulong &d, q_ulong s) {
    d = s == 0 ? d : s;
}
inline void turnedKeyedAdd(q_ulong &d, q_ulong s) {
    d = s == 0 ? d : saturatedSum(d, s);
}

template <bool isFiltered, class Store>
void turnAll(q_ulong *dst, int dstPitch, q_ulong *src, int srcPitch, const ZTurn &turn, Store store) {
    if constexpr (isFiltered)
        turnFiltered({dst, dstPitch}, {src, srcPitch}, turn, store);
    else
        turnNearest({dst, dstPitch}, {src, srcPitch}, turn, store);
}
template <bool isFiltered, void (*store)(q_ulong &, q_ulong)>
void turnByStore(q_ulong *dst, int dstPitch, q_ulong *src, int srcPitch, tagRECT *clip, tagRECT *srcRect, int centreX,
                 int centreY, float angle, float scale) {
    turnAll<isFiltered>(dst, dstPitch, src, srcPitch, {*clip, *srcRect, centreX, centreY, angle, scale}, store);
}
template <bool isFiltered>
void turnByAlpha(q_ulong *dst, int dstPitch, q_ulong *src, int srcPitch, tagRECT *clip, tagRECT *srcRect, int centreX,
                 int centreY, float angle, float scale, float alpha) {
    turnAll<isFiltered>(dst, dstPitch, src, srcPitch, {*clip, *srcRect, centreX, centreY, angle, scale},
                        [weight = weightOf(alpha)](q_ulong &d, q_ulong s) { d = blendWithOpenBlue(d, s, weight); });
}
inline constexpr auto iBltNear32_Z_Roto = turnByStore<false, turned>;
inline constexpr auto iBltNear32_Z_Roto_KeySrc = turnByStore<false, turnedKeyed>;
inline constexpr auto iBltNear32_Z_Roto_KeySrc_Add = turnByStore<false, turnedKeyedAdd>;
inline constexpr auto iBltNear32_Z_Roto_Alpha = turnByAlpha<false>;
inline constexpr auto iBltLinear32_Z_Roto = turnByStore<true, turned>;
inline constexpr auto iBltLinear32_Z_Roto_Alpha = turnByAlpha<true>;

// About the X and the Y axis. Lines are rows for X and columns for Y; what is told of a line's places runs along it.

enum class Axis { x, y };

/// A surface by line and place along the line.
struct Lines {
    Pixels pixels;
    Axis axis;

    q_ulong &at(Number line, Number along) const {
        return axis == Axis::x ? pixels.at(along, line) : pixels.at(line, along);
    }
};

/// The place along a line that stands on another, its distance from the middle of either being stretched by depth.
inline Number alongSource(Number fromCentre, Number fromMiddle, Number tangentQ, Number scaleQ) {
    const Number slope = flooredQuotient(signed32(fromCentre * tangentQ), 32768) + 1024;
    const Number depth = flooredQuotient(signed32(signed32(slope) * scaleQ), 32768);
    return flooredQuotient(signed32(fromMiddle * (33554432 / (depth == 0 ? 1 : depth))), 32768);
}

/// Computes the walk's limits step by step, then asks every pixel by itself what becomes of it.
template <Axis axis>
void turnFaces(q_ulong *dstPixels, q_ulong *front, q_ulong *back, q_ulong *background, double angle, double scale,
               double perspective, tagRECT srcRect, tagPOINT destCentre, tagPOINT pivot, int clearOutside,
               q_ulong backColour, int, int pitch, int width, int height) {
    if (width < 1 || height < 1 || scale == 0)
        return;
    const bool rows = axis == Axis::x;
    const Number first = rows ? srcRect.top : srcRect.left; // of the source's lines
    const Number end = rows ? srcRect.bottom : srcRect.right;
    const Number firstAlong = rows ? srcRect.left : srcRect.top;
    const Number endAlong = rows ? srcRect.right : srcRect.bottom;
    const Number centre = rows ? destCentre.y : destCentre.x;
    const Number centreAlong = rows ? destCentre.x : destCentre.y;
    const Number pivotLine = rows ? pivot.y : pivot.x;
    const Number limit = rows ? height : width;
    const Number limitAlong = rows ? width : height;

    const FullWidth fullWidth;
    const Real cosineOfAngle = cosine(angle);
    if (absolute(cosineOfAngle) < 1e-07)
        return;
    const Number scaleQ = truncated(Real{scale} * 32768);
    const Number tangentQ = truncated(tangent(angle) * perspective * 32768);
    const Number inverseQ = truncated(32768 / cosineOfAngle / scale);
    Real reduced = angle;
    while (reduced > 6.283184)
        reduced -= 6.283184;
    while (reduced < 0)
        reduced += 6.283184;
    const bool backView = reduced > 1.570796 && reduced < 4.712388;
    const Real up = int32(pivotLine - first);
    const Real down = int32(end - pivotLine);
    const Real c = absolute(cosine(reduced));
    const Number above = truncated((backView ? down : up) * c * scale);
    const Number below = truncated((backView ? up : down) * c * scale);
    const Real reach = std::max(up * scale, down * scale);
    const Real half = 0.5 * (Real{scale} * int32(endAlong - firstAlong)) * (Real{perspective} + 1);
    const auto held = [](Number value, Number most, Number otherwise) {
        value = std::max<Number>(value, 0);
        return value > most ? otherwise : value;
    };
    const Number bandTop = held(truncated(centre - reach), limit, limit - 1);
    const Number bandBottom = held(truncated(centre + reach), limit, limit);
    const Number faceTop = held(signed32(centre - above), limit, limit);
    const Number faceBottom = held(signed32(centre + below), limit, limit - 1);
    const Number alongFirst = held(truncated(centreAlong - half), limitAlong, limitAlong - 1);
    const Number alongEnd = held(truncated(centreAlong + half), limitAlong, limitAlong);

    const Lines dst = {{dstPixels, pitch}, axis};
    const auto storeOutside = [&](Number line, Number along) {
        if (background)
            dst.at(line, along) = Lines{{background, pitch}, axis}.at(line, along);
        else if (clearOutside)
            dst.at(line, along) = 0;
    };
    const auto clear = [&](Number from, Number to) {
        for (Number line = from; line < to; ++line)
            for (Number along = alongFirst; along < alongEnd; ++along)
                storeOutside(line, along);
    };
    clear(bandTop, faceTop);
    clear(faceBottom, bandBottom);
    for (Number line = faceTop; line < faceBottom; ++line)
        for (Number along = alongFirst; along < alongEnd; ++along) {
            const Number fromCentre = signed32(line - centre);
            Number source = signed32(flooredQuotient(signed32(fromCentre * inverseQ), 32768) + pivotLine);
            const Number sourceAlong =
                alongSource(fromCentre, signed32(along - centreAlong), tangentQ, scaleQ) + (firstAlong + endAlong) / 2;
            if (backView && front == back)
                source = end - source;
            if (sourceAlong < firstAlong || sourceAlong >= endAlong || source < first || source >= end)
                storeOutside(line, along);
            else if (!backView)
                dst.at(line, along) = Lines{{front, pitch}, axis}.at(source, sourceAlong);
            else
                dst.at(line, along) = back ? Lines{{back, pitch}, axis}.at(end - source, sourceAlong) : backColour;
        }
}

inline constexpr auto iBltNear32_X_Roto = turnFaces<Axis::x>;
inline constexpr auto iBltNear32_Y_Roto = turnFaces<Axis::y>;

/// A whole frame. `inside` is the first source line and place along it that is shown.
inline void turnFrame(const Lines &dst, const Lines &src, const Lines *background, Number inside, double angle,
                      double scale, double perspective, Number limit, Number limitAlong) {
    if (limit < 1 || limitAlong < 1 || scale == 0)
        return;
    const FullWidth fullWidth;
    const Real shrunk = cosine(angle) * scale;
    if (absolute(shrunk) < 1e-07)
        return;
    const Number half = limit / 2;
    const Number halfAlong = limitAlong / 2;
    const Number scaleQ = truncated(Real{scale} * 32768);
    const Number tangentQ = truncated(tangent(angle) * perspective * 32768);
    const Number inverseQ = truncated(32768 / shrunk);
    const Number margin = truncated((1 - absolute(shrunk)) * half);
    const Number top = std::min(margin, half);
    const Number bottom = std::max(limit - margin - 1, half + 1);
    const auto draw = [&](bool wantsFace) {
        for (Number line = 0; line < limit; ++line) {
            if ((line >= top && line < bottom) != wantsFace)
                continue;
            for (Number along = 0; along < limitAlong; ++along) {
                const Number source = flooredQuotient(signed32((line - half) * inverseQ), 32768) + half;
                const Number sourceAlong = alongSource(line - half, along - halfAlong, tangentQ, scaleQ) + halfAlong;
                const bool shown = wantsFace && source >= inside && source < limit && sourceAlong >= inside &&
                                   sourceAlong < limitAlong;
                dst.at(line, along) = shown        ? src.at(source, sourceAlong)
                                      : background ? background->at(line, along)
                                                   : 0;
            }
        }
    };
    draw(false); // both margins before the face
    draw(true);
}

inline void iBltNear32_X_Roto_Fast(q_ulong *dst, int dstPitch, q_ulong *src, int srcPitch, double angle, double scale,
                                   double perspective, int width, int height) {
    turnFrame({{dst, dstPitch}, Axis::x}, {{src, srcPitch}, Axis::x}, nullptr, 1, angle, scale, perspective, height,
              width);
}

inline void iBltNear32_X_Roto_Fast(q_ulong *dst, int dstPitch, q_ulong *src, int srcPitch, q_ulong *background, int,
                                   double angle, double scale, double perspective, int width, int height) {
    const Lines uncovered = {{background, dstPitch}, Axis::x};
    turnFrame({{dst, dstPitch}, Axis::x}, {{src, srcPitch}, Axis::x}, &uncovered, 0, angle, scale, perspective, height,
              width);
}

inline void iBltNear32_Y_Roto_Fast(q_ulong *dst, int dstPitch, q_ulong *src, int srcPitch, double angle, double scale,
                                   double perspective, int width, int height) {
    turnFrame({{dst, dstPitch}, Axis::y}, {{src, srcPitch}, Axis::y}, nullptr, 0, angle, scale, perspective, width,
              height);
}

} // namespace plain

#endif
