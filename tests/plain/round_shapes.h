/// \file
/// Circles, rings and ellipses once more, pixel by pixel.
#ifndef Q_MUR_TESTS_PLAIN_ROUND_SHAPES_H
#define Q_MUR_TESTS_PLAIN_ROUND_SHAPES_H

#include "draw.h"

#include <cmath>

namespace plain {

inline void Draw_Circle_FillInside(q_ulong *surface, int pitch, int cx, int cy, int radius, q_ulong colour) {
    draw::forOffsets({surface, pitch}, draw::around(cx, cy, radius), cx, cy, [=](q_ulong &d, Number dx, Number dy) {
        d = dx * dx + dy * dy <= Number{radius} * radius ? colour : d;
    });
}

namespace draw {

/// The four pixels that mirror each other in a centre's column and row: upper row first, each left before right.
template <class Visit>
void forMirrored(Number cx, Number cy, Number dx, Number dy, Visit visit) {
    visit(cx + dx, cy + dy);
    visit(cx - dx, cy + dy);
    visit(cx + dx, cy - dy);
    visit(cx - dx, cy - dy);
}

/// Rows from the rim to the first pixel of the hole, that pixel included. `height(dy)` scales a row's distance.
template <class Height, class Visit>
void forOutline(Number cx, Number cy, Number a, Number b, Number inner, Height height, Visit visit) {
    for (Number dy = -b; dy <= 0; ++dy)
        for (Number dx = -a; dx <= 0; ++dx) {
            const Number square = dx * dx + height(dy) * height(dy);
            if (square > a * a)
                continue;
            forMirrored(cx, cy, dx, dy, visit);
            if (square <= inner)
                break;
        }
}

} // namespace draw

inline void Draw_Circle_NoFillInside(q_ulong *surface, int pitch, int cx, int cy, int radius, int thickness,
                                     q_ulong colour) {
    const Number hole = signed32(Number{radius} - thickness);
    draw::forOutline(
        cx, cy, radius, radius, signed32(hole * hole), [](Number dy) { return dy; },
        [=](Number x, Number y) {
            Pixels{surface, pitch}.at(x, y) = colour;
        });
}

namespace draw {

/// Sets each pixel of a disc inside a clip to `value(pixel, squared distance)`, with squares of 32 bits.
template <class Value>
void fillDisc(Pixels surface, const tagRECT &clip, Number cx, Number cy, Number radius, Value value) {
    const Number limit = signed32(radius * radius);
    forOffsets(surface, common(boundsOf(clip), around(cx, cy, radius)), cx, cy, [=](q_ulong &d, Number dx, Number dy) {
        const Number square = signed32(dx * dx + dy * dy);
        d = square <= limit ? value(d, square) : d;
    });
}

} // namespace draw

inline void iFill_Circle_Safe(q_ulong *surface, tagRECT *clip, int pitch, int cx, int cy, int radius, q_ulong colour) {
    draw::fillDisc({surface, pitch}, *clip, cx, cy, radius, [=](q_ulong, Number) { return colour; });
}

inline void iFill_Circle_Alpha(q_ulong *surface, tagRECT *clip, int pitch, int cx, int cy, int radius, q_ulong colour,
                               int alpha) {
    draw::fillDisc({surface, pitch}, *clip, cx, cy, radius, [=](q_ulong old, Number) {
        return eachChannel(old, colour, [=](Number o, Number c) {
            return unsigned32(o * (256 - Number{alpha}) + c * alpha) / 256 % 256;
        });
    });
}

namespace draw {

/// Bits 8 to 23 of a squared distance in 1 / radius^2 with 16 fraction bits: 256 times its share of the rim's.
inline Number shareOf(Number square, Number radius) {
    return unsigned32(square * (65536 / signed32(radius * radius))) / 256 % 65536;
}

} // namespace draw

inline void Draw_Bubble_Circle(q_ulong *surface, tagRECT *clip, int pitch, int cx, int cy, int radius, q_ulong colour) {
    if (signed32(Number{radius} * radius) == 0)
        return;
    draw::fillDisc({surface, pitch}, *clip, cx, cy, radius, [=](q_ulong old, Number square) {
        return draw::mixedPixel(old, colour, draw::shareOf(square, radius));
    });
}

inline void Draw_Metal_Circle(q_ulong *surface, int pitch, int cx, int cy, int radius, q_ulong colour) {
    const Number limit = Number{radius} * radius;
    draw::forOffsets({surface, pitch}, draw::around(cx, cy, radius), cx, cy, [=](q_ulong &d, Number dx, Number dy) {
        const Number square = dx * dx + dy * dy;
        if (limit == 0 || square > limit)
            return;
        const auto channel = [=](Number c) {
            return flooredQuotient(signed32(square * (c - 255) * (65536 / limit)), 65536) + 255;
        };
        d = pixelOf(channel(draw::upperHalfOf(colour)), channel(greenOf(colour)), channel(blueOf(colour)));
    });
}

namespace draw {

/// The weight of a band around a circle at an offset, or -1 outside of it and of the table.
inline Number bandWeight(Number radius, Number thickness, Number dx, Number dy) {
    const Number index = (dx * dx + dy * dy) / 4;
    if (index > 8191)
        return -1;
    const Number e = std::abs(radius * 512 - iSqrt[index]);
    const Number band = thickness * 1024;
    return e < band ? (band - e) * (32768 / (2 * thickness)) / 65536 : -1;
}

} // namespace draw

inline void Draw_Anti_Aliasing_Circle_NoFillInside(q_ulong *surface, int pitch, int cx, int cy, int radius,
                                                   int thickness, q_ulong colour) {
    const Number reach = radius + 2 * Number{thickness};
    const auto blend = [=](Number dx, Number dy) {
        const Number weight = draw::bandWeight(radius, thickness, dx, dy);
        if (weight < 0)
            return;
        q_ulong &d = Pixels{surface, pitch}.at(cx + dx, cy + dy);
        d = pixelOf(draw::mixed(draw::upperHalfOf(d), draw::upperHalfOf(colour), weight),
                    draw::mixed(greenOf(d), greenOf(colour), weight), draw::mixed(blueOf(d), blueOf(colour), weight));
    };
    for (Number dy = -reach; dy <= -1; ++dy)
        for (Number dx = -reach; dx <= -1; ++dx)
            draw::forMirrored(0, 0, dx, dy, blend);
    for (Number k = -reach; k <= 0; ++k)
        blend(k, 0), blend(-k, 0), blend(0, k), blend(0, -k);
}

inline void Draw_Ring(q_ulong *surface, int pitch, int cx, int cy, int radius, q_ulong colour, q_ulong intensity) {
    if (radius < 1)
        return;
    const Number inner = std::max(radius - 16, radius / 2);
    const Number mid = (inner + radius) / 2;
    const Number halfBand = radius - mid;
    const Number step = halfBand == 0 ? -1 : 65536 / halfBand;
    const draw::Bounds bounds = {Number{cx} - radius, Number{cy} - radius, Number{cx} + radius, Number{cy} + radius};
    draw::forOffsets({surface, pitch}, bounds, cx, cy, [=](q_ulong &d, Number dx, Number dy) {
        const Number square = dx * dx + dy * dy;
        if (square > Number{radius} * radius || square < inner * inner)
            return;
        const auto distance = static_cast<Number>(std::sqrt(static_cast<double>(square)));
        d = draw::added(d, colour, unsigned32((halfBand - std::abs(mid - distance)) * step * intensity) / 65536, 7);
    });
}

inline void Draw_Ring_Safe(q_ulong *surface, int pitch, tagRECT *clip, int cx, int cy, int radius, int thickness,
                           q_ulong colour) {
    const Number reach = radius + 2 * Number{thickness};
    draw::forOffsets({surface, pitch}, common(draw::boundsOf(*clip), draw::around(cx, cy, reach)), cx, cy,
                     [=](q_ulong &d, Number dx, Number dy) {
                         const Number weight = draw::bandWeight(radius, thickness, dx, dy);
                         d = weight < 0 ? d : draw::addedByUpperHalf(d, colour, weight);
                     });
}

namespace draw {

/// The ellipse through the corners of a box.
struct Ellipse {
    Number x;
    Number y;
    Number ratio; ///< columns to a row, in 20 fraction bits
    Number a;
    Number b;
    bool exists;

    explicit Ellipse(const tagRECT &box) {
        const Number w = signed32(widthOf(box));
        const Number h = signed32(heightOf(box));
        x = flooredQuotient(signed32(Number{box.left} + box.right), 2);
        y = flooredQuotient(signed32(Number{box.top} + box.bottom), 2);
        const Number width = signed32(w * 370728); // 1 / sqrt(2) in 19 fraction bits
        const Number height = signed32(h * 370728);
        exists = h != 0 && flooredQuotient(width, 262144) != 0;
        ratio = exists ? signed32(signed32(w * 1048576) / h) : 0;
        a = flooredQuotient(width, 524288);
        b = exists ? flooredQuotient(height, 262144) * a / flooredQuotient(width, 262144) : 0;
    }

    /// A row's distance from the centre in columns.
    Number scaled(Number dy) const { return flooredQuotient(signed32(dy * ratio), 1048576); }
};

} // namespace draw

inline void Draw_Outer_Ellipse_NoFillInside(q_ulong *surface, int pitch, tagRECT *clip, tagRECT *box, int thickness,
                                            q_ulong colour) {
    const draw::Ellipse ellipse(*box);
    if (!ellipse.exists)
        return;
    const Number hole = signed32(ellipse.a - thickness);
    draw::forOutline(
        ellipse.x, ellipse.y, ellipse.a, ellipse.b, signed32(hole * hole),
        [&](Number dy) { return ellipse.scaled(dy); },
        [&](Number x, Number y) {
            if (contains(*clip, x, y))
                Pixels{surface, pitch}.at(x, y) = colour;
        });
}

inline void Draw_Outer_Ellipse_AlphaFast(q_ulong *surface, int pitch, tagRECT *clip, tagRECT *box, int,
                                         q_ulong colour) {
    const draw::Ellipse ellipse(*box);
    if (!ellipse.exists || clip->left >= clip->right || clip->top >= clip->bottom)
        return;
    const auto blend = [=](Number x, Number y) {
        q_ulong &d = Pixels{surface, pitch}.at(x, y);
        d = halfMix(d, colour);
    };
    for (Number dy = -ellipse.b; dy <= -1; ++dy)
        for (Number dx = -ellipse.a; dx <= -1; ++dx)
            if (dx * dx + ellipse.scaled(dy) * ellipse.scaled(dy) <= ellipse.a * ellipse.a)
                draw::forMirrored(ellipse.x, ellipse.y, dx, dy, [&](Number x, Number y) {
                    if (contains(*clip, x, y))
                        blend(x, y);
                });
    const Number column = std::clamp<Number>(ellipse.x, clip->left, clip->right - 1);
    const Number lastRow = std::min(clip->bottom - ellipse.y, ellipse.b);
    for (Number dy = std::max(-ellipse.y, -ellipse.b); dy < lastRow; ++dy)
        blend(column, ellipse.y + dy);
    const Number row = std::clamp<Number>(ellipse.y, clip->top, clip->bottom - 1);
    const Number lastColumn = std::min(clip->right - ellipse.x, ellipse.a);
    for (Number dx = std::max(clip->left - ellipse.x, -ellipse.a); dx < lastColumn; ++dx)
        blend(ellipse.x + dx, row);
}

} // namespace plain

#endif
