/// \file
/// Shaded bands and triangles once more: each pixel is computed from the corners of its band alone.
#ifndef Q_MUR_TESTS_PLAIN_BANDS_H
#define Q_MUR_TESTS_PLAIN_BANDS_H

#include "lines.h"
#include "real.h"

namespace plain {

/// Empties entries in pairs, from the one that the first entry belongs to.
template <class Block>
int resetDepths(Block *data, tagRECT *rect, int pitch) {
    if (!data->zBuffer)
        return 0;
    const Number first = flooredQuotient(signed32(signed32(Number{rect->top} * pitch) + rect->left), 2);
    const Number pairs = unsigned32(flooredQuotient(signed32(widthOf(*rect)), 2));
    const Number rows = pairs == 0 ? 0 : unsigned32(heightOf(*rect)); // billions without an entry take a while
    for (Number row = 0; row < rows; ++row)
        for (Number pair = 0; pair < pairs; ++pair)
            for (const Number entry : {0, 1})
                data->zBuffer[2 * (first + row * flooredQuotient(pitch, 2) + pair) + entry] = 0x7FFF;
    return 1;
}
inline constexpr auto ResetZBuffer = resetDepths<_PRIVATE_QM3D_DATA>;
inline constexpr auto VKD_ResetZBuffer = resetDepths<_PRIVATE_QMGL_DATA>;

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

inline void drawBand(_PRIVATE_QMGL_DATA &data, Pixels dst, const tagRECT &clip, const Band &band, Number opacity) {
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

/// Of numbers in the order of the arguments: those of four after four make `Band`.
template <class Band, std::size_t... index>
Band bandOf(const int *n, std::index_sequence<index...>) {
    return {Ends{n[4 * index], n[4 * index + 1], n[4 * index + 2], n[4 * index + 3]}...};
}
inline Band bandOf(const int *n) {
    return bandOf<Band>(n, std::make_index_sequence<6>());
}

/// All but the last of these end with the 24 numbers of a band, a number behind them being the opacity.
template <class... Numbers>
void VKD_3D_Render(_PRIVATE_QMGL_DATA *data, q_ulong *dst, tagRECT *clip, q_ulong pitch, Numbers... numbers) {
    const int all[] = {numbers...};
    const Pixels pixels = {dst, signed32(pitch)};
    if constexpr (sizeof...(numbers) == 24)
        drawBand(*data, pixels, *clip, bandOf(all));
    else
        drawBand(*data, pixels, *clip, bandOf(all), all[24]);
}

template <class... Numbers>
void VKD_3D_Render_Alpha(_PRIVATE_QMGL_DATA *data, q_ulong *dst, tagRECT *clip, q_ulong pitch, Numbers... numbers) {
    const int all[] = {numbers...};
    mixBand(*data, {dst, signed32(pitch)}, *clip, bandOf(all));
}

/// There is no depth.
template <class... Numbers>
void VKD_3D_Render_Add(q_ulong *dst, tagRECT *clip, q_ulong pitch, Numbers... numbers) {
    const int all[] = {numbers..., 0, 0, 0, 0};
    addBand({dst, signed32(pitch)}, *clip, bandOf(all));
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
    const auto corners = fromTopToBottom<Corner>(
        {cornerOf(*points[0], *colours[0]), cornerOf(*points[1], *colours[1]), cornerOf(*points[2], *colours[2])},
        points[0]->y, points[1]->y, points[2]->y);
    forBandsBetween(corners, [&](const Corner &left0, const Corner &left1, const Corner &right0, const Corner &right1) {
        const auto ends = [&](int Corner::*k) { return Ends{left0.*k, left1.*k, right0.*k, right1.*k}; };
        paint(Band{ends(&Corner::x), ends(&Corner::y), ends(&Corner::red), ends(&Corner::green), ends(&Corner::blue),
                   ends(&Corner::z)});
    });
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

/// At the end there may stand an opacity.
template <class... Opacity>
void VKD_Render_Tri(_PRIVATE_QMGL_DATA *data, q_ulong *dst, tagRECT *clip, int pitch, _POINT3DFLOAT *p1,
                    _POINT3DFLOAT *p2, _POINT3DFLOAT *p3, q_ulong *c1, q_ulong *c2, q_ulong *c3, Opacity... opacity) {
    const Triangle triangle = {{p1, p2, p3}, {c1, c2, c3}};
    if (!isBeside(*clip, triangle))
        forBandsOf(triangle, [&](const Band &band) { drawBand(*data, {dst, pitch}, *clip, band, opacity...); });
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
