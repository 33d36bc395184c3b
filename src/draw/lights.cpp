#include "blending.h"
#include "q_Mur/draw.h"
#include "walks/round.h"

namespace {

using namespace qmur;

/// Meant: the light's last column and last row are left out.
void addLight(const Centre &centre, const Window &offsets, int radius, q_ulong colour, q_ulong intensity) {
    const int radiusSquare = radius * radius;
    const q_ulong scale = static_cast<q_ulong>(1048576 / radiusSquare) * intensity;
    const auto chord = [radiusSquare](int dy) {
        const int half = tableHalfChord(radiusSquare - dy * dy);
        return Span{-half, half};
    };
    forEachRun(centre, squareUpTo(radius).within(offsets), chord, [=](q_ulong *first, Span columns, int dy) {
        const int chordSquare = radiusSquare - dy * dy;
        addRun<8>(first, columns, colour,
                  [=](int dx) { return static_cast<q_ulong>(chordSquare - dx * dx) * scale >> 19; });
    });
}

} // namespace

void Draw_Light(q_ulong *surface, int pitch, int cx, int cy, int radius, q_ulong colour, q_ulong intensity) {
    if (radius < 1)
        return;
    addLight({surface, pitch, cx, cy}, unclipped, radius, colour, intensity);
}

void Draw_Light_Safe(q_ulong *surface, int pitch, tagRECT *clip, int cx, int cy, int radius, q_ulong colour,
                     q_ulong intensity) {
    if (radius < 1)
        return;
    const Centre centre = {surface, pitch, cx, cy};
    addLight(centre, offsetsFrom(centre, interiorOf(*clip)), smaller(radius, 256), colour, intensity);
}

void Draw_Circle_Light(q_ulong *surface, int pitch, int cx, int cy, int radius, unsigned char red, unsigned char green,
                       unsigned char blue) {
    if (radius < 1)
        return;
    const auto inverse = static_cast<q_ulong>(65536 / (radius * radius));
    forEachInDisc({surface, pitch, cx, cy}, radius, unclipped, [=](q_ulong &d, int square) {
        const q_ulong oldShare = static_cast<q_ulong>(square) * inverse >> 8 & 0xFFFF;
        // Meant: old red is the whole upper half, so a top byte disturbs it.
        d = (mixture256(red, upperHalfOf(d), oldShare) << 8 & redMask) |
            (mixture256(green, greenOf(d), oldShare) & greenMask) | mixture256(blue, blueOf(d), oldShare) >> 8;
    });
}
