/// \file
/// Bubbles and their resources once more, pixel by pixel.
#ifndef Q_MUR_TESTS_PLAIN_BUBBLES_H
#define Q_MUR_TESTS_PLAIN_BUBBLES_H

#include "draw.h"
#include "vectors.h"

namespace plain {

namespace draw {

inline Number specularOf(const Vector &n, Real peak) {
    const Real root = rootOf(Real{6});
    Real s = n.x * (-1 / root) + n.y * (-1 / root) + n.z * (2 / root);
    if (!(s > 0))
        return 0;
    for (int squarings = 0; squarings < 7; ++squarings)
        s *= s;
    return truncated(peak * s);
}

constexpr Number squares(Number a, Number b) {
    return a * a + b * b;
}

/// The three maps of a resource in one word; a tint of 256 reaches into the highlight.
inline q_ulong maps(Number diffuse, Number tint, Number specular) {
    return word(diffuse) | word(tint * 256) | word(specular * 65536);
}

inline q_ulong sphereWord(Number dx, Number dy, Number radius, bool secondHighlight) {
    const auto point = [=](Number a, Number b) {
        const Number below = radius * radius - squares(a, b);
        const Real height = below > 0 ? rootOf(static_cast<Real>(below)) : 0;
        return Vector{static_cast<float>(a), static_cast<float>(b), static_cast<float>(height)};
    };
    const Vector n = faceNormal(point(dx, dy), point(dx - 1, dy), point(dx, dy - 1));
    const Real light = -Real{n.x} - n.y + n.z;
    const bool isMirrored = secondHighlight && dx > 0 && dy > 0;
    return maps(80 + (light >= 0 ? truncated(80 * light) : 0), squares(dx, dy) * 128 / (radius * radius),
                isMirrored ? specularOf({-n.x, -n.y, n.z}, 50) : specularOf(n, 200));
}

inline q_ulong spotsWord(Number dx, Number dy, Number radius, bool secondHighlight) {
    const Number i = radius + dx;
    const Number j = radius + dy;
    const Number third = radius / 3;
    const Number thirds = 2 * radius / 3;
    const Real a = Real{0.00306796096265316F};
    const Real b = Real{0.0001917475601658225F};
    const auto spot = [=](Real peak, Number square) {
        Real power = cosine(static_cast<Real>(square) * a);
        for (int squarings = 0; squarings < 4; ++squarings)
            power *= power;
        return truncated(peak * power);
    };
    const Number first = squares(i - (radius + third), j - (radius - third));
    const Number second = squares(i - (radius - third), j - (radius + third));
    const Number light = squares(i - (radius + thirds), j - (radius - thirds));
    const Number specular = second < 512 && secondHighlight ? spot(64, second) : first < 512 ? spot(200, first) : 0;
    const Number lit = light < 8192 ? truncated(200 * cosine(static_cast<Real>(light) * b)) : 0;
    return maps(55 + std::max<Number>(lit, 0), squares(dx, dy) * 128 / (radius * radius), specular);
}

} // namespace draw

template <q_ulong (*wordAt)(Number dx, Number dy, Number radius, bool secondHighlight)>
void makeBubbleResource(q_ulong *surface, int pitch, int x, int y, int size, int secondHighlight) {
    const FullWidth width;
    const Number radius = size / 2;
    for (Number j = 0; j < size && size > 1; ++j)
        for (Number i = 0; i < size; ++i)
            Pixels{surface, pitch}.at(x + i, y + j) = wordAt(i - radius, j - radius, radius, secondHighlight != 0);
}
inline constexpr auto MakeBubbleResource = makeBubbleResource<draw::sphereWord>;
inline constexpr auto MakeBubbleResource2 = makeBubbleResource<draw::spotsWord>;

namespace draw {

/// Calls `visit(pixel, texel, dx, dy)` for the pixels of a window around a centre that lie in a square; the texel is
/// that of a resource stretched over the square with steps of so many fraction bits.
template <class Visit>
void forTexels(Pixels surface, int cx, int cy, int size, View<q_ulong> resource, int resourceSize, int fractionBits,
               int width, int height, Visit visit) {
    if (size < 1)
        return;
    const Number one = Number{1} << fractionBits;
    const Number step = signed32(resourceSize * one) / size;
    const Number radius = size / 2;
    const Number left = cx - radius;
    const Number top = cy - radius;
    forOffsets(surface, common({0, 0, width, height}, {left, top, left + size, top + size}), left, top,
               [&](q_ulong &d, Number i, Number j) {
                   const Number u = flooredQuotient(signed32(i * step), one);
                   const Number v = flooredQuotient(signed32(j * step), one);
                   visit(d, resource.at(u, v), i - radius, j - radius);
               });
}

/// A channel of the lit colour.
constexpr Number lit(Number c, q_ulong texel) {
    return std::min<Number>(255, c * blueOf(texel) / 128);
}

inline void drawGlass(Pixels surface, q_ulong *scratch, int cx, int cy, int size, View<q_ulong> resource,
                      int resourceSize, int fractionBits, q_ulong color, int width, int height, bool isSoft) {
    const Number radius = size / 2;
    const Number unit = size == 0 ? 0 : 65536 / (Number{size} * size);
    q_ulong *next = scratch;
    const auto refract = [&](q_ulong &, q_ulong texel, Number dx, Number dy) {
        const Number square = squares(dx, dy);
        if (square >= radius * radius)
            return;
        const Number k = 48 - flooredQuotient(-29 * square * unit, 4096);
        const Number x = cx + flooredQuotient(dx * k, 128);
        const Number y = cy + flooredQuotient(dy * k, 128);
        const bool isVisible = x >= 0 && x < width && y >= 0 && y < height;
        *next++ = eachChannel(isVisible ? surface.at(x, y) : 0, color, [=](Number background, Number c) {
            return std::min<Number>(255, mixed(background, lit(c, texel), greenOf(texel)) + redOf(texel));
        });
    };
    forTexels(surface, cx, cy, size, resource, resourceSize, fractionBits, width, height, refract);
    next = scratch;
    const auto store = [&](q_ulong &d, q_ulong, Number dx, Number dy) {
        const Number square = squares(dx, dy);
        if (square >= radius * radius)
            return;
        const Number rim = isSoft ? radius * 256 - iSqrt[square] / 4 : 256;
        d = rim < 256 ? mixedPixel(d, *next, rim) : *next;
        ++next;
    };
    forTexels(surface, cx, cy, size, resource, resourceSize, fractionBits, width, height, store);
}

} // namespace draw

inline void DrawRealBubble(q_ulong *surface, q_ulong *scratch, int pitch, int cx, int cy, int size, q_ulong *resource,
                           int resourceSize, q_ulong color, int width, int height) {
    draw::drawGlass({surface, pitch}, scratch, cx, cy, size, {resource, resourceSize}, resourceSize, 18, color, width,
                    height, true);
}

inline void DrawRealBubbleOld(q_ulong *surface, q_ulong *scratch, int pitch, int cx, int cy, int size,
                              q_ulong *resource, int resourceSize, q_ulong color, int width, int height) {
    draw::drawGlass({surface, pitch}, scratch, cx, cy, size, {resource, pitch}, resourceSize, 16, color, width, height,
                    false);
}

inline void DrawReal3DBall(q_ulong *surface, int pitch, int cx, int cy, int size, q_ulong *resource, int resourceSize,
                           q_ulong color, int width, int height) {
    const Number radius = size / 2;
    const auto light = [=](q_ulong &d, q_ulong texel, Number dx, Number dy) {
        if (draw::squares(dx, dy) > radius * radius)
            return;
        d = eachChannel(
            0, color, [=](Number, Number c) { return std::min<Number>(255, c * blueOf(texel) / 128 + redOf(texel)); });
    };
    draw::forTexels({surface, pitch}, cx, cy, size, {resource, resourceSize}, resourceSize, 20, width, height, light);
}

} // namespace plain

#endif
