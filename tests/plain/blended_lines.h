/// \file
/// Single pixels, anti-aliased lines and coloured lines once more, step by step.
#ifndef Q_MUR_TESTS_PLAIN_BLENDED_LINES_H
#define Q_MUR_TESTS_PLAIN_BLENDED_LINES_H

#include "draw.h"
#include "lines.h"

namespace plain {

inline void Draw_Pixel_Add(q_ulong *surface, int pitch, int x, int y, q_ulong colour) {
    q_ulong &d = Pixels{surface, pitch}.at(x, y);
    d = saturatedSum(d, colour);
}

namespace draw {

/// Walks a line and calls `edge(pixel, weight, coordinate along the line)` for its edge pixels and `core(pixel)` for
/// those between. The margins keep both edges inside the clip, except where a negative width turns them over: a section
/// of which an edge would lie outside is left out.
template <class Edge, class Core>
void forSections(Pixels surface, const tagRECT &clip, Number x1, Number y1, Number x2, Number y2, Number width,
                 Edge edge, Core core) {
    if (x1 == x2 && y1 == y2)
        return;
    const Number low = width / 2;
    const Number high = signed32(width + 1) / 2;
    const bool alongX = std::abs(x2 - x1) > std::abs(y2 - y1);
    const Number majorExtent = alongX ? x2 - x1 : y2 - y1;
    const Number minorExtent = alongX ? y2 - y1 : x2 - x1;
    const Number slope = signed32(minorExtent * 256) / majorExtent;
    const bool fromFirst = majorExtent > 0;
    const Number startX = fromFirst ? x1 : x2;
    const Number startY = fromFirst ? y1 : y2;
    const Number start = alongX ? startX : startY;
    const Number end = start + std::abs(majorExtent);
    const Number minX = clip.left + low + 1;
    const Number minY = clip.top + low + 1;
    const Number maxX = clip.right - high - 1;
    const Number maxY = clip.bottom - high - 1;
    const Number last = std::min(end, alongX ? maxX : maxY);
    for (Number at = std::max(start, alongX ? minX : minY); at <= last; ++at) {
        const Number position = (alongX ? startY : startX) * 256 + (at - start) * slope;
        const Number whole = flooredQuotient(position, 256);
        const Number fraction = position - whole * 256;
        if (whole < (alongX ? minY : minX) || whole >= (alongX ? maxY : maxX))
            continue;
        const auto isInside = [&](Number offset) {
            return alongX ? contains(clip, at, whole + offset) : contains(clip, whole + offset, at);
        };
        const auto pixel = [&](Number offset) -> q_ulong & {
            return alongX ? surface.at(at, whole + offset) : surface.at(whole + offset, at);
        };
        if (!isInside(-low) || !isInside(high))
            continue;
        edge(pixel(-low), 256 - fraction, at);
        edge(pixel(high), fraction, at);
        for (Number offset = 1 - low; width > 1 && offset < high; ++offset)
            core(pixel(offset));
    }
}

} // namespace draw

inline void iLine_AntiAliasing(q_ulong *surface, tagRECT *clip, int pitch, int x1, int y1, int x2, int y2,
                               q_ulong colour, int width) {
    draw::forSections(
        {surface, pitch}, *clip, x1, y1, x2, y2, width,
        [=](q_ulong &d, Number weight, Number) { d = draw::mixedPixel(d, colour, weight); },
        [=](q_ulong &d) { d = colour; });
}

inline void iLine_AntiAliasing(q_ulong *surface, tagRECT *clip, int pitch, int x1, int y1, int x2, int y2,
                               q_ulong colour) {
    plain::iLine_AntiAliasing(surface, clip, pitch, x1, y1, x2, y2, colour, 1);
}

inline void iLine_AntiAliasing_Alpha(q_ulong *surface, tagRECT *clip, int pitch, int x1, int y1, int x2, int y2,
                                     q_ulong colour, int width) {
    draw::forSections(
        {surface, pitch}, *clip, x1, y1, x2, y2, width,
        [=](q_ulong &d, Number weight, Number) { d = draw::mixedPixel(d, colour, weight / 8); },
        [=](q_ulong &d) { d = eachChannel(d, colour, [](Number o, Number c) { return o / 8 * 7 + c / 8; }); });
}

inline void iLine_AntiAliasing_Add(q_ulong *surface, tagRECT *clip, int pitch, int x1, int y1, int x2, int y2,
                                   q_ulong colour, int width) {
    draw::forSections(
        {surface, pitch}, *clip, x1, y1, x2, y2, width,
        [=](q_ulong &d, Number weight, Number) { d = draw::addedByUpperHalf(d, colour, weight); },
        [=](q_ulong &d) { d = draw::addedByUpperHalf(d, colour, 256); });
}

inline void iLine_AntiAliasing_Max(q_ulong *surface, tagRECT *clip, int pitch, int x1, int y1, int x2, int y2,
                                   q_ulong colour, int width) {
    const auto edge = [=](q_ulong &d, Number weight, Number) {
        const auto greater = [=](Number old, Number c) { return std::max(old, weight * c / 256); };
        d = pixelOf(greater(draw::upperHalfOf(d), draw::upperHalfOf(colour)), greater(greenOf(d), greenOf(colour)),
                    greater(blueOf(d), blueOf(colour)));
    };
    draw::forSections({surface, pitch}, *clip, x1, y1, x2, y2, width, edge, [=](q_ulong &d) { edge(d, 256, 0); });
}

inline void iLine_AntiAliasing_AddSome(q_ulong *surface, tagRECT *clip, int pitch, int x1, int y1, int x2, int y2,
                                       q_ulong colour, int width) {
    const Number dx = Number{x2} - x1;
    const Number dy = Number{y2} - y1;
    const bool alongX = std::abs(dx) > std::abs(dy);
    const Number length = alongX ? dx : dy;
    const Number fade = length == 0 ? 1024 : 1024 / length;
    draw::forSections(
        {surface, pitch}, *clip, x1, y1, x2, y2, width,
        [=](q_ulong &d, Number weight, Number at) {
            const Number left = (alongX ? x2 : y2) - at;
            d = draw::addedByUpperHalf(d, colour, flooredQuotient(left * weight * fade, 1024));
        },
        [](q_ulong &) {});
}

namespace draw {

inline Number stepsBetween(int x1, int y1, int x2, int y2) {
    return std::max(std::abs(Number{x2} - x1), std::abs(Number{y2} - y1));
}

/// A shade of a tube, red and blue exchanged.
inline q_ulong shade(q_ulong colour, Number halfWidth, Number i) {
    const Number n = halfWidth + 1;
    const Number step = 2048 / n;
    const auto channel = [=](Number c) {
        const Number value = i < n / 2 ? 255 + (c - 255) * step * i / 1024 : (halfWidth - i) * step * c / 1024;
        return (value % 256 + 256) % 256;
    };
    return pixelOf(channel(blueOf(colour)), channel(greenOf(colour)), channel(redOf(colour)));
}

} // namespace draw

inline void DDLine_Fat(q_ulong *surface, tagRECT *clip, int pitch, int x1, int y1, int x2, int y2, q_ulong colour,
                       int halfWidth) {
    const Pixels pixels = {surface, pitch};
    const bool alongX = std::abs(Number{x2} - x1) > std::abs(Number{y2} - y1);
    const auto isInside = [&](Number x, Number y) {
        return alongX ? x >= clip->left && x < clip->right : y >= clip->top && y < clip->bottom;
    };
    if (!isInside(x1, y1))
        return;
    forBresenham(x1, y1, x2, y2, [&](Number x, Number y, Number) {
        if (!isInside(x, y))
            return;
        pixels.at(x, y) = draw::shade(colour, halfWidth, 0);
        for (Number k = 1; k <= halfWidth; ++k) {
            const bool fits =
                alongX ? y >= clip->top + k && y < clip->bottom - k : x >= clip->left + k && x < clip->right - k;
            if (!fits)
                break;
            const Number dx = alongX ? 0 : k;
            const Number dy = alongX ? k : 0;
            pixels.at(x - dx, y - dy) = pixels.at(x + dx, y + dy) = draw::shade(colour, halfWidth, k);
        }
    });
}

inline void DDLine_Color_Change(q_ulong *surface, int pitch, int x1, int y1, int x2, int y2, q_ulong colour1,
                                q_ulong colour2) {
    const Number n = draw::stepsBetween(x1, y1, x2, y2);
    forBresenham(x1, y1, x2, y2, [=](Number x, Number y, Number i) {
        const auto channel = [=](Number from, Number to) {
            const Number change = signed32((to - from) * (65536 / n) * (i - 1));
            return ((change / 65536 + from) % 256 + 256) % 256;
        };
        Pixels{surface, pitch}.at(x, y) =
            i == 0 ? colour1
                   : pixelOf(channel(draw::upperHalfOf(colour1), draw::upperHalfOf(colour2)),
                             channel(greenOf(colour1), greenOf(colour2)), channel(blueOf(colour1), blueOf(colour2)));
    });
}

inline void iLineAddSome(q_ulong *surface, int pitch, int x1, int y1, int x2, int y2, q_ulong colour, int width,
                         int height) {
    const Number n = draw::stepsBetween(x1, y1, x2, y2);
    forBresenham(x1, y1, x2, y2, [=](Number x, Number y, Number i) {
        if (i == 0 || x < 0 || x >= width || y < 0 || y >= height)
            return;
        const auto channel = [=](Number c, Number old) {
            return std::min<Number>(255, c - flooredQuotient(signed32(65536 / n * c * (i - 1)), 65536) + old);
        };
        q_ulong &d = Pixels{surface, pitch}.at(x, y);
        d = pixelOf(channel(draw::upperHalfOf(colour), redOf(d)), channel(greenOf(colour), greenOf(d)),
                    channel(blueOf(colour), blueOf(d)));
    });
}

} // namespace plain

#endif
