#include "glint.h"

#include "walks/spikes.h"

void qmur::drawGlint(q_ulong *dst, const tagRECT &clip, q_ulong pitch, int x, int y, int highlight) {
    constexpr SpikeColour glintColour = {0x40, 0x40, 0x100}; // blue stands one above the largest channel
    const int radius = smaller(larger(highlight, 8), 80) / 2;
    const auto cross = [&](int offset, int size) {
        addSpikes({dst, asDistance(pitch), wrapAdd(x, offset), wrapAdd(y, offset)}, windowOf(clip), size, glintColour);
    };
    cross(0, radius);
    cross(-1, 3 * radius / 4);
    cross(-2, 2 * radius / 4);
    cross(1, 3 * radius / 2); // Meant: twice the length of its counterpart.
    cross(2, 2 * radius / 4);
}
