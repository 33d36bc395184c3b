#include "blending.h"
#include "outline.h"
#include "q_Mur/draw.h"
#include "walks/round.h"

using namespace qmur;

void Draw_Circle_FillInside(q_ulong *surface, int pitch, int cx, int cy, int radius, q_ulong colour) {
    fillDisc({surface, pitch, cx, cy}, radius, unclipped, colour);
}

void Draw_Circle_NoFillInside(q_ulong *surface, int pitch, int cx, int cy, int radius, int thickness, q_ulong colour) {
    drawOutline({surface, pitch, cx, cy}, unclipped, radius, radius, thickness, colour, [](int dy) { return dy; });
}

void iFill_Circle_Safe(q_ulong *surface, tagRECT *clip, int pitch, int cx, int cy, int radius, q_ulong colour) {
    const Centre centre = {surface, pitch, cx, cy};
    fillDisc(centre, radius, offsetsFrom(centre, windowOf(*clip)), colour);
}

void iFill_Circle_Alpha(q_ulong *surface, tagRECT *clip, int pitch, int cx, int cy, int radius, q_ulong colour,
                        int alpha) {
    const Centre centre = {surface, pitch, cx, cy};
    const auto weight = static_cast<q_ulong>(alpha);
    forEachInDisc(centre, radius, offsetsFrom(centre, windowOf(*clip)), [=](q_ulong &d, int) {
        d = channelwise([weight](q_ulong old, q_ulong c) { return mixture256(old, c, weight) >> 8 & 0xFF; }, d, colour);
    });
}

void Draw_Bubble_Circle(q_ulong *surface, tagRECT *clip, int pitch, int cx, int cy, int radius, q_ulong colour) {
    const Centre centre = {surface, pitch, cx, cy};
    const int radiusSquare = wrapMultiply(radius, radius);
    if (radiusSquare == 0)
        return;
    const auto inverse = static_cast<q_ulong>(65536 / radiusSquare);
    forEachInDisc(centre, radius, offsetsFrom(centre, windowOf(*clip)), [=](q_ulong &d, int square) {
        d = cover256(d, colour, static_cast<q_ulong>(square) * inverse >> 8 & 0xFFFF);
    });
}

void Draw_Metal_Circle(q_ulong *surface, int pitch, int cx, int cy, int radius, q_ulong colour) {
    const int radiusSquare = wrapMultiply(radius, radius);
    if (radiusSquare == 0)
        return;
    const auto inverse = static_cast<q_ulong>(65536 / radiusSquare);
    forEachInDisc({surface, pitch, cx, cy}, radius, unclipped, [=](q_ulong &d, int square) {
        const auto shade = [share = static_cast<q_ulong>(square) * inverse](q_ulong c) {
            return static_cast<q_ulong>(static_cast<int>(share * (c - 255)) >> 16) + 255;
        };
        // Meant: red is the colour's upper half, and 16 bits of what becomes of it are kept.
        d = upperHalfChannelwise(shade, colour);
    });
}
