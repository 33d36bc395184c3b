/// \file
/// The two-tap line: a run along the major axis that carries its minor position in 24.8 fixed point. The fraction of
/// that position splits the colour between the two edge pixels of each cross-section.
#ifndef Q_MUR_DRAW_TWO_TAP_H
#define Q_MUR_DRAW_TWO_TAP_H

#include "base/pixel.h"
#include "walks/lines.h"

#include <limits>

namespace qmur {

/// A span that is shorter at both ends, or empty.
constexpr Span narrowed(Span span, int atBegin, int atEnd) {
    constexpr long long least = std::numeric_limits<int>::min();
    constexpr long long greatest = std::numeric_limits<int>::max();
    const long long begin = static_cast<long long>(span.begin) + atBegin;
    const long long end = static_cast<long long>(span.end) - atEnd;
    return {static_cast<int>(begin > greatest ? greatest : begin), static_cast<int>(end < least ? least : end)};
}

/// Where the two edges lie, in pixels from the minor position: one at -low and one at high. The margins that they keep
/// inside a clip make a test for each pixel unnecessary. A negative width turns the edges over and the margins
/// negative; the second terms keep it inside too.
struct TapOffsets {
    int low;
    int high;

    /// Major coordinates; the end is the last of them.
    constexpr Span majorLimits(Span clip) const { return narrowed(clip, larger(low + 1, 0), larger(high + 1, 1)); }

    /// Minor positions; the end is one behind the last of them.
    constexpr Span minorLimits(Span clip) const {
        return narrowed(clip, larger(low + 1, -high), larger(high + 1, -low));
    }
};

constexpr TapOffsets tapsOfWidth(int width) {
    return {width / 2, wrapAdd(width, 1) / 2};
}

/// Calls `section(pixel at the minor position, fraction in 1/256, major coordinate)` along the line.
/// A line whose ends coincide has no section.
template <class Section>
void forEachSection(q_ulong *surface, const Line &line, TapOffsets taps, Section section) {
    const auto [major, minor] = line;
    const int length = major.difference();
    if (length == 0)
        return;
    const int slope = wrapMultiply(minor.difference(), 256) / length;
    const bool rising = major.second > major.first;
    const int start = rising ? major.first : major.second;
    const int startMinor = rising ? minor.first : minor.second;
    const Span majorLimits = taps.majorLimits(major.clip);
    const Span minorLimits = taps.minorLimits(minor.clip);
    const int first = larger(majorLimits.begin, start);
    const int last = smaller(majorLimits.end, rising ? major.second : major.first);
    int position = wrapAdd(wrapMultiply(startMinor, 256), wrapMultiply(wrapSubtract(first, start), slope));
    // Meant: the major axis reaches its limit, the minor position stays below its own.
    for (int at = first; at <= last; ++at, position = wrapAdd(position, slope)) {
        const int whole = position >> 8;
        if (minorLimits.contains(whole))
            section(surface + (at * major.stride + whole * minor.stride), position & 255, at);
    }
}

/// Draws a line with `edge(pixel, weight in 1/256)` and, for the `width` - 1 pixels between the edges, `core(pixel)`.
template <class Edge, class Core>
void drawTwoTapLine(q_ulong *surface, const Line &line, int width, Edge edge, Core core) {
    const TapOffsets taps = tapsOfWidth(width);
    const Distance stride = line.minor.stride;
    forEachSection(surface, line, taps, [=](q_ulong *at, int fraction, int) {
        edge(at[-taps.low * stride], static_cast<q_ulong>(256 - fraction));
        edge(at[taps.high * stride], static_cast<q_ulong>(fraction));
        for (int offset = 1 - taps.low; offset < taps.high; ++offset)
            core(at[offset * stride]);
    });
}

} // namespace qmur

#endif
