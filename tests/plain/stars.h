/// \file
/// Stars, lights, balls and crosses once more, pixel by pixel.
#ifndef Q_MUR_TESTS_PLAIN_STARS_H
#define Q_MUR_TESTS_PLAIN_STARS_H

#include "draw.h"

namespace plain {

namespace draw {

/// Half the columns of a disc's row, by the table.
inline Number halfChord(Number radius, Number dy) {
    return iSqrt[(radius * radius - dy * dy) / 16] / 256;
}

/// The product of the falls along x and along y, in 1/256.
inline Number starWeight(Number radius, Number dx, Number dy, q_ulong intensity) {
    const Number inverse = 1048576 / (radius * radius);
    const Number a = radius - std::abs(dy);
    const Number b = radius - std::abs(dx);
    const Number rowWeight = unsigned32(a * a * inverse * intensity) / 262144;
    return unsigned32(b * b * rowWeight * inverse) / 1048576;
}

/// Adds to the disc of a table's half chords, without its last row and column: `weight(dx, dy)` in 1/256.
template <class Weight>
void addDisc(Pixels surface, const Bounds &bounds, int cx, int cy, Number radius, q_ulong colour, Weight weight) {
    if (radius < 1)
        return;
    forOffsets(surface, common(bounds, around(cx, cy, radius)), cx, cy, [=](q_ulong &d, Number dx, Number dy) {
        if (dy == radius)
            return;
        const Number half = halfChord(radius, dy);
        if (dx >= -half && dx < half)
            d = added(d, colour, weight(dx, dy));
    });
}

inline void addStar(Pixels surface, const Bounds &bounds, int cx, int cy, Number radius, q_ulong colour,
                    q_ulong intensity) {
    addDisc(surface, bounds, cx, cy, radius, colour,
            [=](Number dx, Number dy) { return starWeight(radius, dx, dy, intensity); });
}

inline void addLight(Pixels surface, const Bounds &bounds, int cx, int cy, Number radius, q_ulong colour,
                     q_ulong intensity) {
    addDisc(surface, bounds, cx, cy, radius, colour, [=](Number dx, Number dy) {
        const Number square = radius * radius;
        return unsigned32((square - dy * dy - dx * dx) * (1048576 / square) * intensity) / 524288;
    });
}

inline void drawBall(Pixels surface, const Bounds &bounds, int cx, int cy, Number radius, q_ulong colour, q_ulong) {
    if (radius < 0)
        return;
    const Number r = std::clamp<Number>(radius, 1, 256);
    const Number q = 3 * r / 2;
    const Number h = r / 2;
    forOffsets(surface, common(bounds, around(cx, cy, r)), cx, cy, [=](q_ulong &d, Number dx, Number dy) {
        if (dx * dx + dy * dy > r * r)
            return;
        const Number light = (q * q - (h + dx) * (h + dx) - (h + dy) * (h + dy)) * (1048576 / (q * q));
        d = added(0, colour, light < 0 ? 0 : light / 2048);
    });
}

constexpr Number farthest = Number{1} << 40;
constexpr Bounds anywhere = {-farthest, -farthest, farthest, farthest};

using Glow = void(Pixels, const Bounds &, int cx, int cy, Number radius, q_ulong colour, q_ulong intensity);

template <Glow glow>
void withoutClip(q_ulong *surface, int pitch, int cx, int cy, int radius, q_ulong colour, q_ulong intensity) {
    glow({surface, pitch}, anywhere, cx, cy, radius, colour, intensity);
}
template <Glow glow>
void betweenSides(q_ulong *surface, int pitch, tagRECT *clip, int cx, int cy, int radius, q_ulong colour,
                  q_ulong intensity) {
    glow({surface, pitch}, strictlyInside(*clip), cx, cy, std::min(radius, 256), colour, intensity);
}

} // namespace draw

inline constexpr auto Draw_Star_Type1 = draw::withoutClip<draw::addStar>;
inline constexpr auto Draw_Star_Type1_Safe = draw::betweenSides<draw::addStar>;
inline constexpr auto Draw_Light = draw::withoutClip<draw::addLight>;
inline constexpr auto Draw_Light_Safe = draw::betweenSides<draw::addLight>;
inline constexpr auto Draw_3DBall = draw::withoutClip<draw::drawBall>;
inline constexpr auto Draw_3DBall_Safe = draw::betweenSides<draw::drawBall>;

inline void Draw_Star_Type2(q_ulong *surface, int pitch, int cx, int cy, int radius, q_ulong colour,
                            q_ulong intensity) {
    const Pixels pixels = {surface, pitch};
    for (Number dy = 0; dy < radius; ++dy)
        for (Number k = 0; k < draw::halfChord(radius, dy); ++k)
            for (const Number y : {cy + dy, cy - dy})
                for (const Number x : {cx + k, cx - k})
                    pixels.at(x, y) = draw::added(pixels.at(x, y), colour, draw::starWeight(radius, k, dy, intensity));
}

inline void Draw_Star_Type3(q_ulong *surface, int pitch, int cx, int cy, int radius, q_ulong colour,
                            q_ulong intensity) {
    const Number r = radius;
    if (r < 1)
        return;
    const Number inverse = 1024 / r;
    const Number core = r / 5;
    draw::forOffsets({surface, pitch}, draw::around(cx, cy, r), cx, cy, [=](q_ulong &d, Number dx, Number dy) {
        const Number a = std::abs(dy);
        const Number b = std::abs(dx);
        if (dx < a - r || dx >= r - a)
            return;
        const Number fall = a < core ? (r - 4 * a) * 4 : r - a;
        const Number f = unsigned32(fall * inverse * intensity) / 1024;
        // Only the core's product is a signed number.
        d = draw::added(d, colour,
                        b < core ? flooredQuotient(signed32((r - 4 * b) * f * inverse), 64)
                                 : unsigned32((r - b) * f * inverse) / 256,
                        11);
    });
}

inline void Draw_Circle_Light(q_ulong *surface, int pitch, int cx, int cy, int radius, unsigned char red,
                              unsigned char green, unsigned char blue) {
    const Number limit = Number{radius} * radius;
    draw::forOffsets({surface, pitch}, draw::around(cx, cy, radius), cx, cy, [=](q_ulong &d, Number dx, Number dy) {
        const Number square = dx * dx + dy * dy;
        if (limit == 0 || square > limit)
            return;
        const Number t = square * (65536 / limit) / 256 % 65536;
        const auto channel = [=](Number old, Number c) { return (old * t + c * (256 - t)) / 256 % 256; };
        d = pixelOf(channel(draw::upperHalfOf(d), red), channel(greenOf(d), green), channel(blueOf(d), blue));
    });
}

inline void Draw_One_Star_Add(q_ulong *surface, int pitch, tagRECT *clip, int x, int y, int size, int red, int green,
                              int blue) {
    const auto isInside = [](Number at, Number begin, Number end) { return at >= begin && at < end - 1; };
    if (size == 0 || !isInside(x, clip->left, clip->right) || !isInside(y, clip->top, clip->bottom))
        return;
    const auto add = [=](Number atX, Number atY, Number distance) {
        const auto channel = [=](Number old, Number c) {
            const Number taken = flooredQuotient(signed32(std::abs(distance) * (65536 / size) * c), 65536);
            return unsigned32(std::min<Number>(255, signed32(old + c - taken))) % 256;
        };
        q_ulong &d = Pixels{surface, pitch}.at(atX, atY);
        d = pixelOf(channel(redOf(d), red), channel(greenOf(d), green), channel(blueOf(d), blue));
    };
    const draw::Bounds spikes = common(draw::boundsOf(*clip), draw::around(x, y, size));
    for (Number i = spikes.left; i < spikes.right; ++i)
        add(i, y, i - x);
    for (Number j = spikes.top; j < spikes.bottom; ++j)
        add(x, j, j - y);
}

/// Columns and rows of the pixels of a cross, from its centre.
constexpr int crossed[][2] = {{0, -2}, {0, -1}, {-2, 0}, {-1, 0}, {0, 0}, {1, 0}, {2, 0}, {0, 1}, {0, 2}};

inline void Draw_Cross(q_ulong *surface, int pitch, int x, int y, q_ulong colour) {
    for (const auto &[dx, dy] : crossed) {
        q_ulong &d = Pixels{surface, pitch}.at(Number{x} + dx, Number{y} + dy);
        d = saturatedSum(d, colour);
    }
}

inline void Draw_Cross_Fast(q_ulong *surface, int pitch, int x, int y, q_ulong colour) {
    const Pixels pixels = {surface, pitch};
    const q_ulong sum = saturatedSum(pixels.at(x, y), colour);
    for (const auto &[dx, dy] : crossed)
        if (dx != 2)
            pixels.at(Number{x} + dx, Number{y} + dy) = sum;
}

} // namespace plain

#endif
