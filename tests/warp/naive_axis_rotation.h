/// \file
/// The rotators about the X and the Y axis, pixel by pixel.
#ifndef Q_MUR_TESTS_WARP_NAIVE_AXIS_ROTATION_H
#define Q_MUR_TESTS_WARP_NAIVE_AXIS_ROTATION_H

#include "turning.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace naive::axisRotation {

using test::low32;
using test::product32;
using test::Real;
using test::Surface;
using test::truncated;

enum Axis { axisX, axisY };

inline int toInt(q_long value) {
    return static_cast<int>(value);
}

/// The pixel of a line at a place along it: lines are rows for X and columns for Y.
inline q_ulong &pixelOf(Surface &surface, Axis axis, int line, int along, tagPOINT origin = {}) {
    const int x = (axis == axisX ? along : line) + toInt(origin.x);
    const int y = (axis == axisX ? line : along) + toInt(origin.y);
    return surface.at(x, y);
}

inline q_ulong *pixelsAt(Surface *surface, tagPOINT origin) {
    return surface ? &surface->at(toInt(origin.x), toInt(origin.y)) : nullptr;
}

/// A full turn and its surfaces.
struct Turn {
    double angle = 0;
    double scale = 1;
    double perspective = 0;
    tagRECT srcRect = {};
    tagPOINT destCentre = {};
    tagPOINT pivot = {};
    int clearOutside = 0;
    q_ulong backColour = 0;
    int width = 0;
    int height = 0;
    Surface *front = nullptr;
    Surface *back = nullptr;
    Surface *background = nullptr;
    tagPOINT dstOrigin = {}; ///< what is handed over as the corner of a surface
    tagPOINT faceOrigin = {};
    tagPOINT backgroundOrigin = {};

    void draw(Axis axis, Surface &dst) const {
        const auto blit = axis == axisX ? iBltNear32_X_Roto : iBltNear32_Y_Roto;
        blit(pixelsAt(&dst, dstOrigin), pixelsAt(front, faceOrigin), pixelsAt(back, faceOrigin),
             pixelsAt(background, backgroundOrigin), angle, scale, perspective, srcRect, destCentre, pivot,
             clearOutside, backColour, 0x5A5A5A5A, dst.pitch(), width, height);
    }

    void drawNaively(Axis axis, Surface &dst) const;
};

/// Computes the walk's limits step by step, then asks for every pixel by itself what becomes of it.
inline void Turn::drawNaively(Axis axis, Surface &dst) const {
    const bool rows = axis == axisX;
    const int first = toInt(rows ? srcRect.top : srcRect.left); // of the source lines
    const int end = toInt(rows ? srcRect.bottom : srcRect.right);
    const int firstAlong = toInt(rows ? srcRect.left : srcRect.top);
    const int endAlong = toInt(rows ? srcRect.right : srcRect.bottom);
    const int centre = toInt(rows ? destCentre.y : destCentre.x);
    const int centreAlong = toInt(rows ? destCentre.x : destCentre.y);
    const int pivotLine = toInt(rows ? pivot.y : pivot.x);
    const int limit = rows ? height : width;
    const int limitAlong = rows ? width : height;
    if (width < 1 || height < 1 || scale == 0.0)
        return;

    struct Numbers {
        bool edgeOn, backView;
        int scaleQ, tanQ, inverseQ;
        int bandTop, bandBottom, rowTop, rowBottom, columnLeft, columnRight;
    };
    const Numbers n = qmur::atFullWidth([=, *this] {
        Numbers numbers = {};
        const Real cosine = qmur::sineCosine(angle).cosine;
        numbers.edgeOn = std::fabs(cosine) < 1e-07;
        numbers.scaleQ = truncated(static_cast<Real>(scale) * 32768);
        numbers.tanQ = truncated(qmur::tangent(angle) * perspective * 32768);
        numbers.inverseQ = truncated(32768 / cosine / scale);
        Real reduced = angle;
        while (reduced > 6.283184)
            reduced -= 6.283184;
        while (reduced < 0)
            reduced += 6.283184;
        numbers.backView = reduced > 1.570796 && reduced < 4.712388;
        const Real up = pivotLine - first;
        const Real down = end - pivotLine;
        const Real c = std::fabs(qmur::sineCosine(reduced).cosine);
        const int above = truncated((numbers.backView ? down : up) * c * scale);
        const int below = truncated((numbers.backView ? up : down) * c * scale);
        const Real reach = std::max(up * scale, down * scale);
        const Real half =
            0.5L * (static_cast<Real>(scale) * (endAlong - firstAlong)) * (static_cast<Real>(perspective) + 1);
        const auto clamped = [](int value, int most, int otherwise) {
            if (value < 0)
                value = 0;
            return value > most ? otherwise : value;
        };
        numbers.bandTop = clamped(truncated(centre - reach), limit, limit - 1);
        numbers.bandBottom = clamped(truncated(centre + reach), limit, limit);
        numbers.rowTop = clamped(low32(static_cast<std::int64_t>(centre) - above), limit, limit);
        numbers.rowBottom = clamped(low32(static_cast<std::int64_t>(centre) + below), limit, limit - 1);
        numbers.columnLeft = clamped(truncated(centreAlong - half), limitAlong, limitAlong - 1);
        numbers.columnRight = clamped(truncated(centreAlong + half), limitAlong, limitAlong);
        return numbers;
    });
    if (n.edgeOn)
        return;

    const auto storeOutside = [&](int line, int along) {
        if (background)
            pixelOf(dst, axis, line, along, dstOrigin) = pixelOf(*background, axis, line, along, backgroundOrigin);
        else if (clearOutside)
            pixelOf(dst, axis, line, along, dstOrigin) = 0;
    };
    const auto clear = [&](int firstLine, int endLine) {
        for (int line = firstLine; line < endLine; ++line)
            for (int along = n.columnLeft; along < n.columnRight; ++along)
                storeOutside(line, along);
    };
    clear(n.bandTop, n.rowTop);
    clear(n.rowBottom, n.bandBottom);
    for (int line = n.rowTop; line < n.rowBottom; ++line)
        for (int along = n.columnLeft; along < n.columnRight; ++along) {
            q_ulong &pixel = pixelOf(dst, axis, line, along, dstOrigin);
            const std::int64_t fromCentre = static_cast<std::int64_t>(line) - centre;
            int source = (product32(fromCentre, n.inverseQ) >> 15) + pivotLine;
            int depth = product32((product32(fromCentre, n.tanQ) >> 15) + 1024, n.scaleQ) >> 15;
            if (depth == 0)
                depth = 1;
            const int step = 33554432 / depth;
            const int sourceAlong =
                (product32(static_cast<std::int64_t>(along) - centreAlong, step) >> 15) + (firstAlong + endAlong) / 2;
            if (n.backView && front == back)
                source = end - source;
            if (sourceAlong < firstAlong || sourceAlong >= endAlong || source < first || source >= end)
                storeOutside(line, along);
            else if (!n.backView)
                pixel = pixelOf(*front, axis, source, sourceAlong, faceOrigin);
            else if (!back)
                pixel = backColour;
            else
                pixel = pixelOf(*back, axis, end - source, sourceAlong, faceOrigin);
        }
}

/// A blit of a whole frame.
struct FrameTurn {
    enum Kind { oneFace, withBackground, aboutY };

    Kind kind = oneFace;
    double angle = 0;
    double scale = 1;
    double perspective = 0;
    int width = 0;
    int height = 0;
    Surface *src = nullptr;
    Surface *background = nullptr;
    tagPOINT dstOrigin = {}; ///< what is handed over as the corner of a surface
    tagPOINT srcOrigin = {};

    void draw(Surface &dst) const {
        q_ulong *const dstPixels = pixelsAt(&dst, dstOrigin);
        q_ulong *const srcPixels = pixelsAt(src, srcOrigin);
        if (kind == oneFace)
            iBltNear32_X_Roto_Fast(dstPixels, dst.pitch(), srcPixels, src->pitch(), angle, scale, perspective, width,
                                   height);
        else if (kind == withBackground)
            iBltNear32_X_Roto_Fast(dstPixels, dst.pitch(), srcPixels, src->pitch(), background->pixels(), -999, angle,
                                   scale, perspective, width, height);
        else
            iBltNear32_Y_Roto_Fast(dstPixels, dst.pitch(), srcPixels, src->pitch(), angle, scale, perspective, width,
                                   height);
    }

    void drawNaively(Surface &dst) const {
        const Axis axis = kind == aboutY ? axisY : axisX;
        const int limit = axis == axisX ? height : width;
        const int limitAlong = axis == axisX ? width : height;
        const int half = limit >> 1;
        const int halfAlong = limitAlong >> 1;
        if (width < 1 || height < 1 || scale == 0.0)
            return;
        struct Numbers {
            bool edgeOn;
            int scaleQ, tanQ, inverseQ, margin;
        };
        const Numbers n = qmur::atFullWidth([=, *this] {
            const Real shrunk = qmur::sineCosine(angle).cosine * scale;
            return Numbers{std::fabs(shrunk) < 1e-07, truncated(static_cast<Real>(scale) * 32768),
                           truncated(qmur::tangent(angle) * perspective * 32768), truncated(32768 / shrunk),
                           truncated((1.0L - std::fabs(shrunk)) * half)};
        });
        if (n.edgeOn)
            return;
        const std::int64_t top = std::min(n.margin, half);
        const std::int64_t bottom = std::max(limit - std::int64_t{n.margin} - 1, std::int64_t{half} + 1);
        const int inside = kind == oneFace ? 1 : 0;
        // Both margins before the face.
        std::vector<int> order;
        for (int line = 0; line < limit; ++line)
            if (line < top || line >= bottom)
                order.push_back(line);
        for (int line = 0; line < limit; ++line)
            if (line >= top && line < bottom)
                order.push_back(line);
        for (const int line : order)
            for (int along = 0; along < limitAlong; ++along) {
                const std::int64_t fromCentre = static_cast<std::int64_t>(line) - half;
                const int source = (product32(fromCentre, n.inverseQ) >> 15) + half;
                int depth = product32((product32(fromCentre, n.tanQ) >> 15) + 1024, n.scaleQ) >> 15;
                if (depth == 0)
                    depth = 1;
                const int sourceAlong = (product32(along - halfAlong, 33554432 / depth) >> 15) + halfAlong;
                const bool shown = line >= top && line < bottom && source >= inside && source < limit &&
                                   sourceAlong >= inside && sourceAlong < limitAlong;
                pixelOf(dst, axis, line, along, dstOrigin) = shown ? pixelOf(*src, axis, source, sourceAlong, srcOrigin)
                                                             : kind == withBackground
                                                                 ? pixelOf(*background, axis, line, along)
                                                                 : 0;
            }
    }
};

} // namespace naive::axisRotation

#endif
