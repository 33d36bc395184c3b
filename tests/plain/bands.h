/// \file
/// Shaded bands and triangles once more: each pixel is computed from the corners of its band alone.
#ifndef Q_MUR_TESTS_PLAIN_BANDS_H
#define Q_MUR_TESTS_PLAIN_BANDS_H

#include "real.h"
#include "words.h"

#include <utility>

namespace plain {

/// The ends of one number on both edges, in the order of the arguments.
struct Ends {
    int a0;
    int a1;
    int b0;
    int b1;
};

/// A signed division toward zero in 32 bits; by 1 instead of by 0.
inline Number per(Number value, Number divisor) {
    return signed32(value / (divisor == 0 ? 1 : divisor));
}

/// A number with `bits` fraction bits on a row of an edge that runs from `begin` on the row `from` to `end` on `to`.
inline Number alongEdge(Number begin, Number end, Number from, Number to, Number row, int bits) {
    const Number one = Number{1} << bits;
    const Number step = per(signed32(signed32(end - begin) * one), signed32(to - from));
    return signed32(signed32(row - from) * step + begin * one);
}

/// Calls `pixel(x, y, at)` for each pixel of a band within the clip; `at(ends)` is what a number comes to there.
template <class Pixel>
void forBand(const tagRECT &clip, const Ends &x, const Ends &y, int bits, Pixel pixel) {
    const Number first = std::max<Number>({y.a0, y.b0, clip.top});
    const Number last = std::min<Number>({y.a1, y.b1, clip.bottom});
    for (Number row = first; row < last; ++row) {
        const auto onA = [&](const Ends &ends) { return alongEdge(ends.a0, ends.a1, y.a0, y.a1, row, bits); };
        const auto onB = [&](const Ends &ends) { return alongEdge(ends.b0, ends.b1, y.b0, y.b1, row, bits); };
        const Number left = onA(x) >> bits;
        const Number right = onB(x) >> bits;
        const Number width = signed32(onB(x) - onA(x)) >> bits;
        for (Number column = std::max<Number>(left, clip.left); column < std::min<Number>(right, clip.right); ++column)
            pixel(column, row, [&](const Ends &ends) {
                const Number step = per(signed32(onB(ends) - onA(ends)), width);
                return signed32(onA(ends) + (column - left) * step);
            });
    }
}

struct Band {
    Ends x;
    Ends y;
    Ends red;
    Ends green;
    Ends blue;
    Ends depth;
};

/// Three numbers in the places of channels, none of them masked.
inline q_ulong joined(Number red, Number green, Number blue) {
    return word((red * 256 | green) * 256 | blue);
}

inline void drawBand(_PRIVATE_QMGL_DATA &data, Pixels dst, const tagRECT &clip, const Band &band) {
    const View<short> depths = {data.zBuffer, dst.pitch};
    forBand(clip, band.x, band.y, 12, [&](Number x, Number y, auto at) {
        const Number z = at(band.depth) >> 12;
        if (z <= data.nearLimit || z >= depths.at(x, y))
            return;
        depths.at(x, y) = static_cast<short>(z);
        dst.at(x, y) = joined(at(band.red) >> 12, at(band.green) >> 12, at(band.blue) >> 12);
    });
}

inline q_ulong halfOfBoth(q_ulong d, Number red, Number green, Number blue) {
    return word(Number{d / 2 & 0x7F7F7F} + joined(red >> 13, green >> 13, blue >> 13));
}

inline void blendBand(_PRIVATE_QMGL_DATA &data, Pixels dst, const tagRECT &clip, const Band &band, Number opacity) {
    const View<short> depths = {data.zBuffer, dst.pitch};
    const Number rest = 256 - opacity;
    forBand(clip, band.x, band.y, 12, [&](Number x, Number y, auto at) {
        q_ulong &d = dst.at(x, y);
        const Number red = at(band.red);
        const Number green = at(band.green);
        const Number blue = at(band.blue);
        if (opacity == 128) {
            d = halfOfBoth(d, red, green, blue);
            return;
        }
        const Number z = at(band.depth) >> 12;
        if (z <= data.nearLimit || z >= depths.at(x, y))
            return;
        depths.at(x, y) = static_cast<short>(z);
        // Red in its place, with the destination's top byte above it.
        const q_ulong upper = word((red >> 12) * opacity * 256 + Number{d / 256 & 0xFFFF00} * rest);
        const q_ulong middle = word((green >> 12) * opacity + greenOf(d) * rest);
        const q_ulong lower = word((blue >> 12) * opacity + blueOf(d) * rest);
        d = (upper & 0xFFFF00FF) | (middle & 0xFFFFFF00) | lower / 256;
    });
}

inline void mixBand(_PRIVATE_QMGL_DATA &data, Pixels dst, const tagRECT &clip, const Band &band) {
    forBand(clip, band.x, band.y, 12, [&](Number x, Number y, auto at) {
        if (at(band.depth) >> 12 > data.nearLimit)
            dst.at(x, y) = halfOfBoth(dst.at(x, y), at(band.red), at(band.green), at(band.blue));
    });
}

inline void addBand(Pixels dst, const tagRECT &clip, const Band &band) {
    forBand(clip, band.x, band.y, 18, [&](Number x, Number y, auto at) {
        q_ulong &d = dst.at(x, y);
        const auto sum = [&](const Ends &ends, Number channel) {
            return std::min<Number>(255, unsigned32((at(ends) >> 18) + channel));
        };
        d = pixelOf(sum(band.red, d / 65536), sum(band.green, greenOf(d)), sum(band.blue, blueOf(d)));
    });
}

inline void VKD_3D_Render(_PRIVATE_QMGL_DATA *data, q_ulong *dst, tagRECT *clip, q_ulong pitch, int xA0, int xA1,
                          int xB0, int xB1, int yA0, int yA1, int yB0, int yB1, int rA0, int rA1, int rB0, int rB1,
                          int gA0, int gA1, int gB0, int gB1, int bA0, int bA1, int bB0, int bB1, int zA0, int zA1,
                          int zB0, int zB1) {
    drawBand(*data, {dst, signed32(pitch)}, *clip,
             {{xA0, xA1, xB0, xB1},
              {yA0, yA1, yB0, yB1},
              {rA0, rA1, rB0, rB1},
              {gA0, gA1, gB0, gB1},
              {bA0, bA1, bB0, bB1},
              {zA0, zA1, zB0, zB1}});
}

inline void VKD_3D_Render(_PRIVATE_QMGL_DATA *data, q_ulong *dst, tagRECT *clip, q_ulong pitch, int xA0, int xA1,
                          int xB0, int xB1, int yA0, int yA1, int yB0, int yB1, int rA0, int rA1, int rB0, int rB1,
                          int gA0, int gA1, int gB0, int gB1, int bA0, int bA1, int bB0, int bB1, int zA0, int zA1,
                          int zB0, int zB1, int opacity) {
    blendBand(*data, {dst, signed32(pitch)}, *clip,
              {{xA0, xA1, xB0, xB1},
               {yA0, yA1, yB0, yB1},
               {rA0, rA1, rB0, rB1},
               {gA0, gA1, gB0, gB1},
               {bA0, bA1, bB0, bB1},
               {zA0, zA1, zB0, zB1}},
              opacity);
}

inline void VKD_3D_Render_Alpha(_PRIVATE_QMGL_DATA *data, q_ulong *dst, tagRECT *clip, q_ulong pitch, int xA0, int xA1,
                                int xB0, int xB1, int yA0, int yA1, int yB0, int yB1, int rA0, int rA1, int rB0,
                                int rB1, int gA0, int gA1, int gB0, int gB1, int bA0, int bA1, int bB0, int bB1,
                                int zA0, int zA1, int zB0, int zB1) {
    mixBand(*data, {dst, signed32(pitch)}, *clip,
            {{xA0, xA1, xB0, xB1},
             {yA0, yA1, yB0, yB1},
             {rA0, rA1, rB0, rB1},
             {gA0, gA1, gB0, gB1},
             {bA0, bA1, bB0, bB1},
             {zA0, zA1, zB0, zB1}});
}

inline void VKD_3D_Render_Add(q_ulong *dst, tagRECT *clip, q_ulong pitch, int xA0, int xA1, int xB0, int xB1, int yA0,
                              int yA1, int yB0, int yB1, int rA0, int rA1, int rB0, int rB1, int gA0, int gA1, int gB0,
                              int gB1, int bA0, int bA1, int bB0, int bB1) {
    addBand({dst, signed32(pitch)}, *clip,
            {{xA0, xA1, xB0, xB1},
             {yA0, yA1, yB0, yB1},
             {rA0, rA1, rB0, rB1},
             {gA0, gA1, gB0, gB1},
             {bA0, bA1, bB0, bB1},
             {}});
}

/// A point in whole pixels and depths, its colour in channels.
struct Corner {
    int x;
    int y;
    int z;
    int red;
    int green;
    int blue;
};

inline Corner cornerOf(const _POINT3DFLOAT &point, q_ulong colour) {
    return {truncated(point.x),          truncated(point.y),     truncated(point.z),
            int32(Number{colour} >> 16), int32(greenOf(colour)), int32(blueOf(colour))};
}

/// The three corners of a triangle and their colours.
struct Triangle {
    const _POINT3DFLOAT *points[3];
    const q_ulong *colours[3];
};

/// Sorts three points and hands `paint` the bands above and below the one in the middle.
template <class Paint>
void forBandsOf(const Triangle &triangle, Paint paint) {
    const auto &[points, colours] = triangle;
    Corner top = cornerOf(*points[0], *colours[0]);
    Corner middle = cornerOf(*points[1], *colours[1]);
    Corner bottom = cornerOf(*points[2], *colours[2]);
    if (!(points[0]->y < points[1]->y))
        std::swap(top, middle);
    // The third is compared, untruncated, with the truncated others.
    if (!(static_cast<float>(middle.y) < points[2]->y)) {
        std::swap(middle, bottom);
        if (!(static_cast<float>(top.y) < points[2]->y))
            std::swap(top, middle);
    }
    const auto product = [](Number a, Number b) { return signed32(signed32(a) * signed32(b)); };
    const bool middleIsLeft = product(Number{middle.y} - top.y, Number{bottom.x} - top.x) >
                              product(Number{bottom.y} - top.y, Number{middle.x} - top.x);
    for (const auto &[from, to] : {std::pair(top, middle), std::pair(middle, bottom)}) {
        const auto ends = [&, begin = from, end = to](int Corner::*k) {
            return middleIsLeft ? Ends{begin.*k, end.*k, top.*k, bottom.*k} : Ends{top.*k, bottom.*k, begin.*k, end.*k};
        };
        paint(Band{ends(&Corner::x), ends(&Corner::y), ends(&Corner::red), ends(&Corner::green), ends(&Corner::blue),
                   ends(&Corner::z)});
    }
}

/// Whether a triangle lies above or below the clip.
inline bool isBeside(const tagRECT &clip, const Triangle &triangle) {
    Number top = two32;
    Number bottom = -two32;
    for (const _POINT3DFLOAT *point : triangle.points) {
        top = std::min<Number>(top, truncated(point->y));
        bottom = std::max<Number>(bottom, truncated(point->y));
    }
    return bottom < clip.top || top > clip.bottom;
}

inline void VKD_Render_Tri(_PRIVATE_QMGL_DATA *data, q_ulong *dst, tagRECT *clip, int pitch, _POINT3DFLOAT *p1,
                           _POINT3DFLOAT *p2, _POINT3DFLOAT *p3, q_ulong *c1, q_ulong *c2, q_ulong *c3) {
    const Triangle triangle = {{p1, p2, p3}, {c1, c2, c3}};
    if (!isBeside(*clip, triangle))
        forBandsOf(triangle, [&](const Band &band) { drawBand(*data, {dst, pitch}, *clip, band); });
}

inline void VKD_Render_Tri(_PRIVATE_QMGL_DATA *data, q_ulong *dst, tagRECT *clip, int pitch, _POINT3DFLOAT *p1,
                           _POINT3DFLOAT *p2, _POINT3DFLOAT *p3, q_ulong *c1, q_ulong *c2, q_ulong *c3, int opacity) {
    const Triangle triangle = {{p1, p2, p3}, {c1, c2, c3}};
    if (!isBeside(*clip, triangle))
        forBandsOf(triangle, [&](const Band &band) { blendBand(*data, {dst, pitch}, *clip, band, opacity); });
}

inline void VKD_Render_Tri_Alpha(_PRIVATE_QMGL_DATA *data, q_ulong *dst, tagRECT *clip, int pitch, _POINT3DFLOAT *p1,
                                 _POINT3DFLOAT *p2, _POINT3DFLOAT *p3, q_ulong *c1, q_ulong *c2, q_ulong *c3) {
    const Triangle triangle = {{p1, p2, p3}, {c1, c2, c3}};
    if (!isBeside(*clip, triangle))
        forBandsOf(triangle, [&](const Band &band) { mixBand(*data, {dst, pitch}, *clip, band); });
}

inline void VKD_Render_Tri_Add(q_ulong *dst, tagRECT *clip, q_ulong pitch, _POINT3DFLOAT *p1, _POINT3DFLOAT *p2,
                               _POINT3DFLOAT *p3, q_ulong *c1, q_ulong *c2, q_ulong *c3) {
    forBandsOf({{p1, p2, p3}, {c1, c2, c3}}, [&](const Band &band) { addBand({dst, signed32(pitch)}, *clip, band); });
}

} // namespace plain

#endif
