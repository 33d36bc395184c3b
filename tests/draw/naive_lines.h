/// \file
/// Anti-aliased lines, section by section.
#ifndef Q_MUR_TESTS_DRAW_NAIVE_LINES_H
#define Q_MUR_TESTS_DRAW_NAIVE_LINES_H

#include "naive.h"

namespace naive::lines {

using test::Surface;

/// A member of the family, called alike.
using Draw = void (*)(q_ulong *, tagRECT *, int, int, int, int, int, q_ulong, int);

struct Ends {
    int x1;
    int y1;
    int x2;
    int y2;
};

/// The rounded-down quotient.
inline Number floored(Number value, Number divisor) {
    return value >= 0 ? value / divisor : -((-value + divisor - 1) / divisor);
}

/// Walks a line and calls `edge(x, y, weight, major coordinate)` for its edge pixels and `core(x, y)` between them.
/// Sections of which an edge would lie outside the clip are left out: the margins see to that, except where a negative
/// width turns them over.
template <class Edge, class Core>
void naiveLine(const tagRECT &clip, Ends ends, int width, Edge edge, Core core) {
    const Number halfLow = width / 2;
    const Number halfHigh = naive::signed32(Number{width} + 1) / 2;
    const Number minX = clip.left + halfLow + 1;
    const Number minY = clip.top + halfLow + 1;
    const Number maxX = clip.right - halfHigh - 1;
    const Number maxY = clip.bottom - halfHigh - 1;
    const Number dx = Number{ends.x2} - ends.x1;
    const Number dy = Number{ends.y2} - ends.y1;
    const bool alongX = std::abs(dx) > std::abs(dy);
    if (dx == 0 && dy == 0)
        return;
    const Number slope = alongX ? naive::signed32(dy * 256) / dx : naive::signed32(dx * 256) / dy;
    const bool fromFirst = alongX ? dx > 0 : dy > 0;
    const Number startX = fromFirst ? ends.x1 : ends.x2;
    const Number startY = fromFirst ? ends.y1 : ends.y2;
    const Number endX = fromFirst ? ends.x2 : ends.x1;
    const Number endY = fromFirst ? ends.y2 : ends.y1;
    for (Number at = alongX ? startX : startY; at <= (alongX ? endX : endY); ++at) {
        if (at < (alongX ? minX : minY) || at > (alongX ? maxX : maxY))
            continue;
        const Number position = alongX ? startY * 256 + (at - startX) * slope : startX * 256 + (at - startY) * slope;
        const Number whole = floored(position, 256);
        const Number fraction = position - whole * 256;
        if (whole < (alongX ? minY : minX) || whole >= (alongX ? maxY : maxX))
            continue;
        const auto x = [&](Number offset) { return static_cast<int>(alongX ? at : whole + offset); };
        const auto y = [&](Number offset) { return static_cast<int>(alongX ? whole + offset : at); };
        if (!naive::inside(clip, x(-halfLow), y(-halfLow)) || !naive::inside(clip, x(halfHigh), y(halfHigh)))
            continue;
        edge(x(-halfLow), y(-halfLow), 256 - fraction, at);
        edge(x(halfHigh), y(halfHigh), fraction, at);
        for (Number offset = 1 - halfLow; width > 1 && offset <= halfHigh - 1; ++offset)
            core(x(offset), y(offset));
    }
}

inline void naiveCovering(Surface &s, const tagRECT &clip, Ends ends, q_ulong colour, int width) {
    naiveLine(
        clip, ends, width,
        [&](int x, int y, Number weight, Number) { s.at(x, y) = naive::mixed(s.at(x, y), colour, weight); },
        [&](int x, int y) { s.at(x, y) = colour; });
}

inline void naiveAlpha(Surface &s, const tagRECT &clip, Ends ends, q_ulong colour, int width) {
    const auto eighths = [](Number o, Number c) { return o / 8 * 7 + c / 8; };
    naiveLine(
        clip, ends, width,
        [&](int x, int y, Number weight, Number) { s.at(x, y) = naive::mixed(s.at(x, y), colour, weight / 8); },
        [&](int x, int y) {
            q_ulong &d = s.at(x, y);
            d = naive::packed(eighths(naive::red(d), naive::red(colour)),
                              eighths(naive::green(d), naive::green(colour)),
                              eighths(naive::blue(d), naive::blue(colour)));
        });
}

inline void naiveAdd(Surface &s, const tagRECT &clip, Ends ends, q_ulong colour, int width) {
    naiveLine(
        clip, ends, width,
        [&](int x, int y, Number weight, Number) { s.at(x, y) = naive::addedByUpperHalf(s.at(x, y), colour, weight); },
        [&](int x, int y) { s.at(x, y) = naive::addedByUpperHalf(s.at(x, y), colour, 256); });
}

inline void naiveMax(Surface &s, const tagRECT &clip, Ends ends, q_ulong colour, int width) {
    const auto edge = [&](int x, int y, Number weight, Number) {
        q_ulong &d = s.at(x, y);
        d = naive::packed(std::max(naive::upperHalf(d), weight * naive::upperHalf(colour) / 256),
                          std::max(naive::green(d), weight * naive::green(colour) / 256),
                          std::max(naive::blue(d), weight * naive::blue(colour) / 256));
    };
    naiveLine(clip, ends, width, edge, [&](int x, int y) { edge(x, y, 256, 0); });
}

inline void naiveAddSome(Surface &s, const tagRECT &clip, Ends ends, q_ulong colour, int width) {
    const Number dx = Number{ends.x2} - ends.x1;
    const Number dy = Number{ends.y2} - ends.y1;
    const bool alongX = std::abs(dx) > std::abs(dy);
    const Number length = alongX ? dx : dy;
    const Number fade = length == 0 ? 1024 : 1024 / length;
    naiveLine(
        clip, ends, width,
        [&](int x, int y, Number weight, Number at) {
            const Number left = (alongX ? ends.x2 : ends.y2) - at;
            s.at(x, y) = naive::addedByUpperHalf(s.at(x, y), colour, floored(left * weight * fade, 1024));
        },
        [](int, int) {});
}

struct Member {
    const char *name;
    Draw draw;
    void (*compute)(Surface &, const tagRECT &, Ends, q_ulong, int);
};

const Member members[] = {
    {"iLine_AntiAliasing", iLine_AntiAliasing, naiveCovering},
    {"iLine_AntiAliasing_Alpha", iLine_AntiAliasing_Alpha, naiveAlpha},
    {"iLine_AntiAliasing_Add", iLine_AntiAliasing_Add, naiveAdd},
    {"iLine_AntiAliasing_Max", iLine_AntiAliasing_Max, naiveMax},
    {"iLine_AntiAliasing_AddSome", iLine_AntiAliasing_AddSome, naiveAddSome},
};

} // namespace naive::lines

#endif
