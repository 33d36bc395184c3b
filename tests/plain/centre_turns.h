/// \file
/// The rotators about a centre once more: outlines traced crossing by crossing, and positions pixel by pixel.
#ifndef Q_MUR_TESTS_PLAIN_CENTRE_TURNS_H
#define Q_MUR_TESTS_PLAIN_CENTRE_TURNS_H

#include "turns.h"

#include <algorithm>
#include <vector>

namespace plain {

struct Place {
    Number x;
    Number y;
};

inline Place turnedBy(Place p, Place centre, Number units) {
    const Number s = iSin[unsigned32(units) % 65536 / 8];
    const Number c = iCos[unsigned32(units) % 65536 / 8];
    const Number x = signed32(p.x - centre.x);
    const Number y = signed32(p.y - centre.y);
    return {signed32(flooredQuotient(signed32(x * c + y * s), 32768) + centre.x),
            signed32(flooredQuotient(signed32(y * c - x * s), 32768) + centre.y)};
}

inline Number tableUnits(double angle, double factor) {
    const FullWidth fullWidth;
    return truncated(Real{angle} * factor);
}

/// The corners of an upright rectangle around a centre, clockwise from the upper left, turned.
inline std::array<Place, 4> turnedCorners(Number centreX, Number centreY, Number width, Number height, Number units) {
    const Number left = centreX - width / 2;
    const Number top = centreY - height / 2;
    std::array<Place, 4> corners = {
        {{left, top}, {left + width, top}, {left + width, top + height}, {left, top + height}}};
    for (Place &corner : corners)
        corner = turnedBy(corner, {centreX, centreY}, units);
    return corners;
}

/// One crossing of an outline with a row.
struct Crossing {
    Number u;
    Number v;
    Number x;
    Number y;
    Number key;
};

/// The crossings of an edge, its lower end left out, and where they lie in the source: in sixteenths with a correction,
/// or in whole pixels.
inline void trace(std::vector<Crossing> &crossings, Place from, Place to, Place sourceFrom, Place sourceTo,
                  bool inSixteenths) {
    const FullWidth fullWidth;
    const Number dx = to.x - from.x;
    const Number dy = to.y - from.y;
    const Number bias = inSixteenths ? 2048 : 1024;
    const Number unit = inSixteenths ? 16 : 1;
    for (Number y = std::min(from.y, to.y); y <= std::max(from.y, to.y); ++y) {
        if (y == to.y)
            continue;
        const Number t = y - from.y;
        const Number quotient = t * dx / dy;
        const Number correction = inSixteenths ? truncated((Real(quotient) - Real(t * dx) / dy) * -16) : Number{0};
        const Number x = quotient + from.x;
        crossings.push_back({.u = t * (sourceTo.x - sourceFrom.x) * unit / dy - correction + sourceFrom.x * unit,
                             .v = t * (sourceTo.y - sourceFrom.y) * unit / dy + sourceFrom.y * unit,
                             .x = x,
                             .y = y,
                             .key = unsigned32((y + bias) * 65536) | unsigned32(x + bias)});
    }
}

/// Calls `store(x, y, u, v)` for every place inside `clip` that a span between two crossings of a row covers.
template <class Store>
void fillSpans(std::vector<Crossing> crossings, const tagRECT &clip, Number unit, Store store) {
    std::stable_sort(crossings.begin(), crossings.end(),
                     [](const Crossing &a, const Crossing &b) { return a.key < b.key; });
    for (std::size_t i = 0; i + 1 < crossings.size();) {
        const Crossing &a = crossings[i];
        const Crossing &b = crossings[i + 1];
        if (a.y != b.y || a.x == b.x) {
            ++i;
            continue;
        }
        i += 2;
        const Number n = b.x - a.x;
        const Number stepU = signed32((b.u - a.u) * unit) / n;
        const Number stepV = signed32((b.v - a.v) * unit) / n;
        for (Number x = std::max<Number>(a.x, clip.left); x <= std::min<Number>(b.x, Number{clip.right} - 1); ++x)
            if (contains(clip, x, a.y))
                store(x, a.y, signed32(a.u * unit + signed32((x - a.x) * stepU)),
                      signed32(a.v * unit + signed32((x - a.x) * stepV)));
    }
}

inline void iRotateMapping(q_ulong *dst, tagRECT *clipRect, int dstPitch, q_ulong *src, tagRECT *srcRect, int srcPitch,
                           int centreX, int centreY, double angle, int width, int height) {
    if (width == 0 || height == 0)
        return;
    const Pixels from = {src, srcPitch};
    const Pixels to = {dst, dstPitch};
    const auto corners = turnedCorners(centreX, centreY, width, height, tableUnits(angle, -10430.37806021874));
    const Number left = srcRect->left;
    const Number top = srcRect->top;
    const Number right = Number{srcRect->right} - 1;
    const Number bottom = Number{srcRect->bottom} - 1;
    const Place source[] = {{left, top}, {right, top}, {right, bottom}, {left, bottom}};
    std::vector<Crossing> crossings;
    for (std::size_t i = 0; i < 4; ++i)
        trace(crossings, corners[i], corners[(i + 1) % 4], source[i], source[(i + 1) % 4], true);
    fillSpans(crossings, *clipRect, 65536, [&](Number x, Number y, Number u, Number v) {
        to.at(x, y) = fourTaps(from, flooredQuotient(u, 1 << 20), flooredQuotient(v, 1 << 20),
                               flooredQuotient(u, 65536) & 15, flooredQuotient(v, 65536) & 15)
                          .pixel();
    });
}

inline void iRotateCircleMapping(q_ulong *dst, tagRECT *clipRect, int dstPitch, q_ulong *src, tagRECT *, int srcPitch,
                                 int centreX, int centreY, int radius, double angle) {
    const Place centre = {centreX, centreY};
    const Place start = {Number{centreX} - radius, centreY};
    const Number units = tableUnits(angle, -10430.37806021874);
    std::vector<Crossing> crossings;
    for (Number t = 512; t <= 65536; t += 512) {
        const Place from = turnedBy(start, centre, t - 512);
        const Place to = turnedBy(start, centre, t);
        trace(crossings, from, to, turnedBy(from, centre, units), turnedBy(to, centre, units), false);
    }
    fillSpans(crossings, *clipRect, 1 << 18, [&](Number x, Number y, Number u, Number v) {
        Pixels{dst, dstPitch}.at(x, y) =
            Pixels{src, srcPitch}.at(flooredQuotient(u, 1 << 18), flooredQuotient(v, 1 << 18));
    });
}

/// The mappers that go over a bounding box. `pixel(d, column, row, fx, fy)` gets the source's pixel and the sixteenths
/// on the way to the next; positions from `before` pixels before the source to `behind` behind it count.
template <class Pixel>
void mapBack(Pixels dst, const tagRECT &clip, const tagRECT &srcRect, Number centreX, Number centreY, double angle,
             Number width, Number height, Number one, Number before, Number behind, Pixel pixel) {
    if (width == 0 || height == 0)
        return;
    const auto corners = turnedCorners(centreX, centreY, width, height, tableUnits(angle, 10430.37806021874));
    const auto [xLeast, xMost] = std::minmax({corners[0].x, corners[1].x, corners[2].x, corners[3].x});
    const auto [yLeast, yMost] = std::minmax({corners[0].y, corners[1].y, corners[2].y, corners[3].y});
    const Number xLow = std::max<Number>(clip.left, xLeast);
    const Number xHigh = std::min(Number{clip.right} - 1, xMost);
    const Number yLow = std::max<Number>(clip.top, yLeast);
    const Number yHigh = std::min(Number{clip.bottom} - 1, yMost);

    const FullWidth fullWidth;
    const Real across = signed32(widthOf(srcRect) * one);
    const Real down = signed32(heightOf(srcRect) * one);
    const Number a = truncated(across * cosine(angle) / width);
    const Number b = truncated(across * sine(angle) / width);
    const Number e = truncated(down * sine(angle) / height);
    const Number d = truncated(down * cosine(angle) / height);
    const Number baseU = signed32(widthOf(clip) * (one / 2) + (xLow - centreX) * a);
    const Number baseV = signed32(heightOf(clip) * (one / 2) - (xLow - centreX) * e);
    for (Number y = yLow; y < yHigh; ++y)
        for (Number x = xLow; x < xHigh; ++x) {
            const Number taken = x - xLow + 1;
            const Number u = signed32(baseU + (y - centreY) * b + taken * a);
            const Number v = signed32(baseV + (y - centreY) * d - taken * e);
            if (u < signed32((srcRect.left - before) * one) || u >= signed32((srcRect.right + behind) * one) ||
                v < signed32((srcRect.top - before) * one) || v >= signed32((srcRect.bottom + behind) * one))
                continue;
            pixel(dst.at(x, y), flooredQuotient(u, one), flooredQuotient(v, one), flooredQuotient(u, one / 16) & 15,
                  flooredQuotient(v, one / 16) & 15);
        }
}

template <bool isFiltered>
void rotate(q_ulong *dst, tagRECT *clipRect, int dstPitch, q_ulong *src, tagRECT *srcRect, int srcPitch, int centreX,
            int centreY, double angle, int width, int height) {
    const Pixels from = {src, srcPitch};
    mapBack({dst, dstPitch}, *clipRect, *srcRect, centreX, centreY, angle, width, height,
            isFiltered ? 1 << 20 : 1 << 16, 0, isFiltered ? -1 : 0,
            [&](q_ulong &d, Number column, Number row, Number fx, Number fy) {
                d = isFiltered ? fourTaps(from, column, row, fx, fy).pixel() : from.at(column, row);
            });
}
inline constexpr auto iRotate = rotate<false>;
inline constexpr auto iRotateLinear = rotate<true>;

inline void iRotateLinearAA(q_ulong *dst, tagRECT *clipRect, int dstPitch, q_ulong *src, tagRECT *srcRect, int srcPitch,
                            int centreX, int centreY, double angle, int width, int height) {
    const Pixels from = {src, srcPitch};
    for (Number y = srcRect->top; y < srcRect->bottom; ++y)
        for (Number x = srcRect->left; x < srcRect->right; ++x)
            from.at(x, y) |= 0xFF000000;
    mapBack(
        {dst, dstPitch}, *clipRect, *srcRect, centreX, centreY, angle, width, height, 1 << 20, 2, 1,
        [&](q_ulong &d, Number column, Number row, Number fx, Number fy) {
            const q_ulong taps[] = {from.at(column, row), from.at(column + 1, row), from.at(column, row + 1),
                                    from.at(column + 1, row + 1)};
            const Number coverage = (topByteOf(taps[0]) * (16 - fx) * (16 - fy) + topByteOf(taps[1]) * fx * (16 - fy) +
                                     topByteOf(taps[2]) * (16 - fx) * fy + topByteOf(taps[3]) * fx * fy) /
                                    256;
            if (coverage == 255) {
                d = fourTaps(from, column, row, fx, fy).pixel();
                return;
            }
            const auto most = [&](Number (*channelOf)(q_ulong)) {
                return std::max({channelOf(taps[0]), channelOf(taps[1]), channelOf(taps[2]), channelOf(taps[3])});
            };
            d = eachChannel(d, pixelOf(most(redOf), most(greenOf), most(blueOf)), [=](Number old, Number brightest) {
                return (brightest * coverage + old * (255 - coverage)) / 256;
            });
        });
}

} // namespace plain

#endif
