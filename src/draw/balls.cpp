#include "blending.h"
#include "q_Mur/draw.h"
#include "walks/round.h"

namespace {

using namespace qmur;

void drawBall(const Centre &centre, const Window &offsets, int radius, q_ulong colour) {
    if (radius < 0)
        return;
    const int r = radius == 0 ? 1 : smaller(radius, 256);
    const int reach = 3 * r / 2; // of the light, from the highlight
    const int reachSquare = reach * reach;
    const int inverse = 1048576 / reachSquare;
    const int highlight = -(r >> 1);
    const auto chord = [r](int dy) {
        const int half = halfChord(r * r, dy * dy);
        return Span{-half, half + 1};
    };
    forEachRun(centre, squareThrough(r).within(offsets), chord, [=](q_ulong *first, Span columns, int dy) {
        const int rowLight = reachSquare - (dy - highlight) * (dy - highlight);
        for (int dx = columns.begin; dx < columns.end; ++dx, ++first) {
            const int light = (rowLight - (dx - highlight) * (dx - highlight)) * inverse >> 11;
            *first = scaledAdd<8>(0, colour, static_cast<q_ulong>(larger(light, 0)));
        }
    });
}

} // namespace

void Draw_3DBall(q_ulong *surface, int pitch, int cx, int cy, int radius, q_ulong colour, q_ulong) {
    drawBall({surface, pitch, cx, cy}, unclipped, radius, colour);
}

void Draw_3DBall_Safe(q_ulong *surface, int pitch, tagRECT *clip, int cx, int cy, int radius, q_ulong colour, q_ulong) {
    const Centre centre = {surface, pitch, cx, cy};
    drawBall(centre, offsetsFrom(centre, interiorOf(*clip)), radius, colour);
}
