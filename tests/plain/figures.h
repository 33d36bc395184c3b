/// \file
/// The mappings onto quads and triangles and the stroke of an image once more, pixel by pixel.
#ifndef Q_MUR_TESTS_PLAIN_FIGURES_H
#define Q_MUR_TESTS_PLAIN_FIGURES_H

#include "lines.h"
#include "real.h"

namespace plain {

/// Finds the place in the patch of every pixel by itself.
inline void iBilinearMapping(q_ulong *dst, q_ulong *src, int pitch, int width, int height, int x0, int x1, int x2,
                             int x3, int y0, int y1, int y2, int y3) {
    const FullWidth fullWidth;
    const Real offset = 0.0001;
    const Real A = int32(Number{x0} - x1 - x3 + x2) + offset;
    const Real B = int32(Number{x1} - x0) + offset;
    const Real G = int32(Number{x3} - x0) + offset;
    const Real D = int32(Number{y0} - y1 - y3 + y2) + offset;
    const Real E = int32(Number{y1} - y0) + offset;
    const Real F = int32(Number{y3} - y0) + offset;
    const Real X0 = x0 + offset;
    const Real Y0 = y0 + offset;
    const Real q = E * A - D * B;
    const Real K1 = E * G + Y0 * A - D * X0 - F * B;
    const Real K2 = Y0 * G - F * X0;
    for (int r = 0; r < height; ++r)
        for (int c = 0; c < width; ++c) {
            const Real b = c * D + K1 - r * A;
            const Real e = c * F + K2 - r * G;
            Real root = 0;
            Real s = -b / (2 * q);
            if (e * (4 * q) <= b * b) {
                root = rootOf(b * b - e * (4 * q)) / (2 * q);
                s = -b / (2 * q) + root;
            }
            if ((s <= 0 || s >= 1) && e * (4 * q) < b * b)
                s = -b / (2 * q) - root;
            Real denominator = s * A + G;
            if (denominator == 0)
                denominator = 1e-09;
            const int x = truncated(width * s + 0.5);
            const int y = truncated(height * (c - s * B - X0) / denominator + 0.5);
            Pixels{dst, pitch}.at(c, r) = x >= 0 && x < width && y >= 0 && y < height ? Pixels{src, pitch}.at(x, y) : 0;
        }
}

/// Which corner begins the image's top edge.
inline int orientationOf(const std::array<Number, 4> &x) {
    if (signed32(signed32(x[0] - x[1]) * signed32(x[3] - x[2])) >
        signed32(signed32(x[1] - x[2]) * signed32(x[0] - x[3])))
        return x[0] < x[2] ? 0 : 2;
    return x[1] < x[3] ? 1 : 3;
}

/// Both passes, pixel by pixel.
inline void iPsudoBilinearMapping(q_ulong *dstPixels, q_ulong *srcPixels, q_ulong *scratchPixels, int pitch, int width,
                                  int height, q_ulong fillColour, int cornerX0, int cornerX1, int cornerX2,
                                  int cornerX3, int cornerY0, int cornerY1, int cornerY2, int cornerY3) {
    const Pixels dst = {dstPixels, pitch};
    const Pixels src = {srcPixels, pitch};
    const Pixels scratch = {scratchPixels, pitch};
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            dst.at(x, y) = fillColour;
    const std::array<Number, 4> xs = {cornerX0, cornerX1, cornerX2, cornerX3};
    const std::array<Number, 4> ys = {cornerY0, cornerY1, cornerY2, cornerY3};
    const int o = orientationOf(xs);
    const auto xOf = [&](int i) { return xs[static_cast<std::size_t>((o + i) % 4)]; };
    const auto yOf = [&](int i) { return ys[static_cast<std::size_t>((o + i) % 4)]; };
    const Number x0 = xOf(0), x1 = xOf(1), x2 = xOf(2), x3 = xOf(3);
    const Number y0 = yOf(0), y1 = yOf(1), y2 = yOf(2), y3 = yOf(3);

    const FullWidth fullWidth;
    const auto orTiny = [](Number value) { return value == 0 ? Real{1e-11} : Real(signed32(value)); };
    const Real a = orTiny(x1 - x0), b = orTiny(x3 - x2), c = orTiny(x3 - x0), d = orTiny(x2 - x1);
    const Real e = orTiny(y1 - y0), f = orTiny(y3 - y2), g = orTiny(y3 - y0), h = orTiny(y1 - y2);
    const Real H = height;
    const Real S = x0 * e / a;
    const Real P = (g / c - e / a) * H;
    const Real Q = (y3 - x3 * g / c - y0 + S) * H;
    const Real T = f / b - e / a;
    const Real U = y3 - x3 * f / b - y0 + S;
    const Real V = (-h / d - e / a) * H;
    const Real W = (x1 * h / d + y1 - y0 + S) * H;
    for (int i = 0; i < height; ++i) {
        const Number left = truncated((Q - i * U) / (i * T - P));
        const Number right = truncated((W - i * U) / (i * T - V));
        if (right <= left)
            continue;
        const Number step = signed32((o % 2 == 0 ? width : height) * 32768) / signed32(left - right);
        for (Number x = std::max<Number>(left, 0); x < std::min<Number>(right, width); ++x) {
            const Number p = flooredQuotient(signed32(signed32(left - x) * step), 32768);
            const Number row = i;
            scratch.at(x, row) = o == 0   ? src.at(p, row)
                                 : o == 1 ? src.at(width - 1 - row * width / height, p)
                                 : o == 2 ? src.at(width - 1 - p, height - 1 - row)
                                          : src.at(row * width / height, height - 1 - p);
        }
    }
    const Number minX = std::min<Number>(1024, *std::min_element(xs.begin(), xs.end()));
    const Number maxX = std::max<Number>(-1024, *std::max_element(xs.begin(), xs.end()));
    if (maxX == minX)
        return;
    const auto orOne = [](Number value) { return value == 0 ? 1 : signed32(value); };
    for (Number x = std::max<Number>(minX, 0); x < std::min<Number>(width, maxX); ++x) {
        const Number top = signed32(signed32(signed32(x - x0) * signed32(y1 - y0)) / orOne(x1 - x0) + y0);
        const Number bottom = signed32(signed32(signed32(x - x3) * signed32(y2 - y3)) / orOne(x2 - x3) + y3);
        if (top >= bottom)
            continue;
        const Number step = signed32(height * 32768) / (bottom - top);
        for (Number y = std::max<Number>(top, 0); y < std::min<Number>(height, bottom); ++y)
            dst.at(x, y) = scratch.at(x, flooredQuotient(signed32((y - top) * step), 32768));
    }
}

inline q_ulong brightened(q_ulong p, Number add, Number scale) {
    const auto channel = [=](Number value, Number unit) {
        return std::min<Number>(unsigned32(unsigned32(value * scale) / unit + add), 255);
    };
    return pixelOf(channel(p / 65536, 256), channel(greenOf(p) * 256, 65536), channel(blueOf(p), 256));
}

/// Asks of every pixel of the clip whether one of the two shapes shows something there.
inline void iAffineMapping(q_ulong *dst, q_ulong *src, int pitch, tagRECT *srcRect, tagRECT *clipRect, int x0, int x1,
                           int x2, int x3, int y0, int y1, int y2, int y3, int brightnessAdd, int brightnessScale) {
    const Number left = srcRect->left, top = srcRect->top, right = srcRect->right, bottom = srcRect->bottom;
    struct Shape {
        Number first, last, start, slope, otherStart, otherSlope, source, sourceEnd;
    } shape;
    const bool horizontal = y0 == y1 && y2 == y3;
    if (horizontal && y0 < y3)
        shape = {y0, y3, x0, Number{x3} - x0, x1, Number{x2} - x1, top, bottom};
    else if (horizontal)
        shape = {y3, y0, x3, Number{x0} - x3, x2, Number{x1} - x2, bottom - 1, top};
    else if (x0 == x3 && x1 == x2 && x0 < x1)
        shape = {x0, x1, y0, Number{y1} - y0, y3, Number{y2} - y3, left, right};
    else if (x0 == x3 && x1 == x2 && y3 < y0)
        shape = {x1, x0, y1, Number{y0} - y1, y2, Number{y3} - y2, right - 1, left};
    else
        return;
    const Number n = shape.last - shape.first;
    for (Number y = clipRect->top; y < clipRect->bottom; ++y)
        for (Number x = clipRect->left; x < clipRect->right; ++x) {
            const Number t = (horizontal ? y : x) - shape.first;
            const Number along = horizontal ? x : y;
            if (t < 0 || t >= n)
                continue;
            const Number from = t * shape.slope / n + shape.start;
            const Number to = t * shape.otherSlope / n + shape.otherStart;
            if (along < from || along >= to)
                continue;
            const Number extent = horizontal ? right - left : bottom - top;
            const Number step = signed32(extent * 262144) / (to - from);
            const Number sourceLine = (shape.sourceEnd - shape.source) * t / n + shape.source;
            const Number sourceAlong = flooredQuotient(signed32((along - from) * step), 262144);
            Pixels{dst, pitch}.at(x, y) =
                brightened(horizontal ? Pixels{src, pitch}.at(left + sourceAlong, top + sourceLine)
                                      : Pixels{src, pitch}.at(left + sourceLine, top + sourceAlong),
                           brightnessAdd, brightnessScale);
        }
}

inline void Blt_Triangle(q_ulong *dst, tagRECT *clip, int dstPitch, _POINTINT *p0, _POINTINT *p1, _POINTINT *p2,
                         q_ulong *src, int srcPitch, _POINTINT *t0, _POINTINT *t1, _POINTINT *t2) {
    const auto sorted = fromTopToBottom<TexelCorner>(
        {{{p0->x, p0->y, t0->x, t0->y}, {p1->x, p1->y, t1->x, t1->y}, {p2->x, p2->y, t2->x, t2->y}}}, p0->y, p1->y,
        p2->y);
    const TexelCorner &top = sorted[0], &mid = sorted[1], &bottom = sorted[2];
    const bool midIsLeft =
        wrappedProduct(bottom.x, top.x, top.y, mid.y) < wrappedProduct(top.y, bottom.y, mid.x, top.x);
    const auto draw = [&](const TexelCorner &from, const TexelCorner &to, auto... edges) {
        drawTexelBand({dst, dstPitch}, {src, srcPitch}, *clip, 20, from.y, to.y, edges..., [](q_ulong &) {});
    };
    for (std::size_t i = 0; i < 2; ++i)
        if (midIsLeft)
            draw(sorted[i], sorted[i + 1], sorted[i], sorted[i + 1], top, bottom);
        else
            draw(sorted[i], sorted[i + 1], top, bottom, sorted[i], sorted[i + 1]);
}

/// Copies a run across the line at each of its positions.
inline void ImageLine(q_ulong *dst, q_ulong *src, int pitch, int x1, int y1, int x2, int y2, int width) {
    const bool yMajor = std::abs(Number{x2} - x1) <= std::abs(Number{y2} - y1);
    forBresenham(x1, y1, x2, y2, [=](Number x, Number y, Number) {
        for (Number across = -(width / 2); across < (width + 1) / 2; ++across) {
            const Number column = yMajor ? x + across : x;
            const Number row = yMajor ? y : y + across;
            Pixels{dst, pitch}.at(column, row) = Pixels{src, pitch}.at(column, row);
        }
    });
}

} // namespace plain

#endif
