/// \file
/// The two-tap line: a run along the major axis that carries its minor position in 24.8 fixed point. The fraction of
/// that position splits the colour between the two edge pixels of each cross-section.
#ifndef Q_MUR_DRAW_TWO_TAP_H
#define Q_MUR_DRAW_TWO_TAP_H

#include "base/channels.h"
#include "blending.h"
#include "walks/lines.h"
#include "walks/stretch.h"

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
    if (first > last)
        return;
    const int position = wrapAdd(wrapMultiply(startMinor, 256), wrapMultiply(wrapSubtract(first, start), slope));
    const auto draw = [&section, surface, along = major.stride, across = minor.stride](int at, int here) {
        section(surface + (at * along + (here >> 8) * across), here & 255, at);
    };
    // Meant: the major axis reaches its limit, the minor position stays below its own.
    const int steps = wrapSubtract(last, first);
    if (steps >= 0 && steps < std::numeric_limits<int>::max() && !minorLimits.empty() &&
        staysIn32Bits(position, slope, steps + 1)) {
        const Bounds bounds = scaledBounds(minorLimits.begin, minorLimits.end, 0, 8);
        const Span inside = stretchInside(position, slope, bounds, {0, steps + 1});
        int here = wrapAdd(position, wrapMultiply(inside.begin, slope));
        for (int step = inside.begin; step < inside.end; ++step, here = wrapAdd(here, slope))
            draw(first + step, here);
        return;
    }
    for (int at = first, here = position;; ++at, here = wrapAdd(here, slope)) {
        if (minorLimits.contains(here >> 8))
            draw(at, here);
        if (at == last)
            return;
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

/// Covers both edges of a line with a colour, by what `weightOf` makes of their weights, and calls `core(pixel)` for
/// the pixels between them.
template <class WeightOf, class Core>
void drawCoveredLine(q_ulong *surface, const Line &line, int width, q_ulong colour, WeightOf weightOf, Core core) {
    const TapOffsets taps = tapsOfWidth(width);
    const Distance stride = line.minor.stride;
    const int apart = wrapAdd(taps.low, taps.high);
    if (apart == 0 || stride == 0) // edges of one pixel are drawn one after the other
        return drawTwoTapLine(
            surface, line, width, [=](q_ulong &d, q_ulong weight) { d = cover256(d, colour, weightOf(weight)); }, core);
    const auto drawWith = [&](auto load, auto store) {
        const Words<8> colours = widenedLow(as<std::uint8_t>(Numbers<4>::all(colour & 0xFFFFFF)));
        const Numbers<4> kept = Numbers<4>::all(0xFFFFFF);
        // The weight of the one edge is 256 - fraction, that of the other the fraction.
        const Words<8> turned = Words<8>::of(0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0, 0, 0, 0);
        const Words<8> whole = Words<8>::of(257, 257, 257, 257, 0, 0, 0, 0);
        forEachSection(surface, line, taps, [=](q_ulong *at, int fraction, int) {
            q_ulong *const low = at - taps.low * stride;
            q_ulong *const high = at + taps.high * stride;
            const Words<8> weights = weightOf((Words<8>::all(static_cast<std::uint16_t>(fraction)) ^ turned) + whole);
            const Words<8> d = widenedLow(as<std::uint8_t>(load(low, high) & kept));
            const Words<8> mixed = ((d << 8) + (colours - d) * weights) >> 8;
            store(low, high, as<std::uint32_t>(narrowed(mixed, mixed)));
            for (int offset = 1 - taps.low; offset < taps.high; ++offset)
                core(at[offset * stride]);
        });
    };
    if (stride == 1 && apart == 1)
        drawWith([](const q_ulong *low, const q_ulong *) { return Numbers<4>::loadEightBytes(low); },
                 [](q_ulong *low, q_ulong *, Numbers<4> pixels) { pixels.storeEightBytes(low); });
    else
        drawWith([](const q_ulong *low, const q_ulong *high) { return Numbers<4>::of(*low, *high, 0, 0); },
                 [](q_ulong *low, q_ulong *high, Numbers<4> pixels) {
                     *low = pixels[0];
                     *high = pixels[1];
                 });
}

} // namespace qmur

#endif
