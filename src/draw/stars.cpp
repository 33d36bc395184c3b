#include "blending.h"
#include "q_Mur/draw.h"
#include "walks/round.h"
#include "walks/spikes.h"

#include <initializer_list>

namespace {

using namespace qmur;

/// A star whose weight falls along either axis with the square of the distance from the rim.
struct Star {
    int radius;
    q_ulong colour;
    q_ulong intensity;
    q_ulong inverse; ///< of the squared radius, 20 fraction bits

    int halfChordAt(int dy) const { return tableHalfChord(radius * radius - dy * dy); }

    /// Adds the columns of a row.
    void addRow(q_ulong *first, Span columns, int dy) const {
        const auto fromRim = [rim = radius](int offset) { return static_cast<q_ulong>(rim - magnitudeOf(offset)); };
        const q_ulong rowWeight = (fromRim(dy) * fromRim(dy) * inverse * intensity >> 18) * inverse;
        addRun<8>(first, columns, colour, [=](int dx) { return fromRim(dx) * fromRim(dx) * rowWeight >> 20; });
    }
};

Star starOf(int radius, q_ulong colour, q_ulong intensity) {
    return {radius, colour, intensity, static_cast<q_ulong>(1048576 / (radius * radius))};
}

/// Meant: the star's last column and last row are left out.
void addStar(const Centre &centre, const Window &offsets, const Star &star) {
    const auto chord = [&star](int dy) {
        const int half = star.halfChordAt(dy);
        return Span{-half, half};
    };
    forEachRun(centre, squareUpTo(star.radius).within(offsets), chord,
               [&star](q_ulong *first, Span columns, int dy) { star.addRow(first, columns, dy); });
}

} // namespace

void Draw_Star_Type1(q_ulong *surface, int pitch, int cx, int cy, int radius, q_ulong colour, q_ulong intensity) {
    if (radius < 1)
        return;
    addStar({surface, pitch, cx, cy}, unclipped, starOf(radius, colour, intensity));
}

void Draw_Star_Type1_Safe(q_ulong *surface, int pitch, tagRECT *clip, int cx, int cy, int radius, q_ulong colour,
                          q_ulong intensity) {
    if (radius < 1)
        return;
    const Centre centre = {surface, pitch, cx, cy};
    addStar(centre, offsetsFrom(centre, interiorOf(*clip)), starOf(smaller(radius, 256), colour, intensity));
}

void Draw_Star_Type2(q_ulong *surface, int pitch, int cx, int cy, int radius, q_ulong colour, q_ulong intensity) {
    if (radius < 1)
        return;
    const Centre centre = {surface, pitch, cx, cy};
    const Star star = starOf(radius, colour, intensity);
    for (int dy = 0; dy < radius; ++dy) {
        const int half = star.halfChordAt(dy);
        // Meant: four quadrants that share their axes, which take the add twice, and the centre, which takes it four
        // times.
        for (const int mirrored : {dy, -dy}) {
            star.addRow(centre.pixel(0, mirrored), {0, half}, dy);
            star.addRow(centre.pixel(1 - half, mirrored), {1 - half, 1}, dy);
        }
    }
}

void Draw_Star_Type3(q_ulong *surface, int pitch, int cx, int cy, int radius, q_ulong colour, q_ulong intensity) {
    if (radius < 1)
        return;
    const auto inverse = static_cast<q_ulong>(1024 / radius);
    const int core = radius / 5;
    const Span coreColumns = {smaller(1 - core, 0), core};
    const auto fromRim = [radius](int distance) { return static_cast<q_ulong>(radius - distance); };
    // Meant: the diamond's first column is included, its last one not.
    const auto chord = [radius](int dy) {
        const int half = radius - magnitudeOf(dy);
        return Span{-half, half};
    };
    forEachRun({surface, pitch, cx, cy}, squareUpTo(radius), chord, [=](q_ulong *first, Span columns, int dy) {
        const int row = magnitudeOf(dy);
        const q_ulong steepness = row < core ? fromRim(4 * row) * 4 : fromRim(row);
        const q_ulong scale = (steepness * inverse * intensity >> 10) * inverse;
        const auto outer = [=](int dx) { return fromRim(magnitudeOf(dx)) * scale >> 8; };
        const auto inner = [=](int dx) {
            return static_cast<q_ulong>(static_cast<int>(fromRim(4 * magnitudeOf(dx)) * scale) >> 6);
        };
        const auto add = [=](Span part, auto weight) {
            const Span run = intersection(part, columns);
            addRun<11>(first + (run.begin - columns.begin), run, colour, weight);
        };
        add({columns.begin, coreColumns.begin}, outer);
        add(coreColumns, inner);
        add({coreColumns.end, columns.end}, outer);
    });
}

void Draw_One_Star_Add(q_ulong *surface, int pitch, tagRECT *clip, int x, int y, int size, int red, int green,
                       int blue) {
    if (size < 1)
        return;
    addSpikes({surface, pitch, x, y}, windowOf(*clip), size, {red, green, blue});
}
