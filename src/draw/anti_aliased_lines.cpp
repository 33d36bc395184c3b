#include "blending.h"
#include "q_Mur/draw.h"
#include "two_tap.h"

namespace {

using namespace qmur;

/// The greater of a pixel and weight / 256 of a colour, in each channel.
/// Meant: red is the whole upper half of either word, so the winner brings its top byte along.
constexpr q_ulong upperHalfMaximum(q_ulong d, q_ulong colour, q_ulong weight) {
    const auto greater = [weight](q_ulong old, q_ulong c) {
        const q_ulong weighted = weight * c >> 8;
        return old < weighted ? weighted : old;
    };
    return upperHalfChannelwise(greater, d, colour);
}

} // namespace

void iLine_AntiAliasing(q_ulong *surface, tagRECT *clip, int pitch, int x1, int y1, int x2, int y2, q_ulong colour) {
    iLine_AntiAliasing(surface, clip, pitch, x1, y1, x2, y2, colour, 1);
}

void iLine_AntiAliasing(q_ulong *surface, tagRECT *clip, int pitch, int x1, int y1, int x2, int y2, q_ulong colour,
                        int width) {
    drawCoveredLine(
        surface, lineBetween(x1, y1, x2, y2, pitch, windowOf(*clip)), width, colour, [](auto weight) { return weight; },
        [colour](q_ulong &d) { d = colour; });
}

void iLine_AntiAliasing_Alpha(q_ulong *surface, tagRECT *clip, int pitch, int x1, int y1, int x2, int y2,
                              q_ulong colour, int width) {
    drawCoveredLine(
        surface, lineBetween(x1, y1, x2, y2, pitch, windowOf(*clip)), width, colour,
        [](auto weight) { return weight >> 3; },
        // Meant: the packed eighths lose their low bits, so no channel rises above 0xF8.
        [colour](q_ulong &d) { d = (d >> 3 & 0x1F1F1F) * 7 + (colour >> 3 & 0x1F1F1F); });
}

void iLine_AntiAliasing_Add(q_ulong *surface, tagRECT *clip, int pitch, int x1, int y1, int x2, int y2, q_ulong colour,
                            int width) {
    drawTwoTapLine(
        surface, lineBetween(x1, y1, x2, y2, pitch, windowOf(*clip)), width,
        [colour](q_ulong &d, q_ulong weight) { d = upperHalfAdd(d, colour, weight); },
        [colour](q_ulong &d) { d = upperHalfAdd(d, colour, 256); });
}

void iLine_AntiAliasing_Max(q_ulong *surface, tagRECT *clip, int pitch, int x1, int y1, int x2, int y2, q_ulong colour,
                            int width) {
    drawTwoTapLine(
        surface, lineBetween(x1, y1, x2, y2, pitch, windowOf(*clip)), width,
        [colour](q_ulong &d, q_ulong weight) { d = upperHalfMaximum(d, colour, weight); },
        [colour](q_ulong &d) { d = upperHalfMaximum(d, colour, 256); });
}

void iLine_AntiAliasing_AddSome(q_ulong *surface, tagRECT *clip, int pitch, int x1, int y1, int x2, int y2,
                                q_ulong colour, int width) {
    const Line line = lineBetween(x1, y1, x2, y2, pitch, windowOf(*clip));
    const TapOffsets taps = tapsOfWidth(width);
    const Distance stride = line.minor.stride;
    const int length = line.major.difference();
    const int end = line.major.second;
    // Meant: a whole number, so long lines start below full strength and those of more than 1024 steps add nothing.
    const int fade = length == 0 ? 1024 : 1024 / length;
    forEachSection(surface, line, taps, [=](q_ulong *at, int fraction, int major) {
        const int strength = wrapMultiply(wrapSubtract(end, major), fade);
        const auto faded = [strength](int weight) {
            return static_cast<q_ulong>(wrapMultiply(strength, weight) >> 10);
        };
        q_ulong &low = at[-taps.low * stride];
        low = upperHalfAdd(low, colour, faded(256 - fraction));
        q_ulong &high = at[taps.high * stride];
        high = upperHalfAdd(high, colour, faded(fraction));
    });
}
