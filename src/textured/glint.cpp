#include "glint.h"

#include "base/pixel.h"
#include "base/surface.h"

#include <cstdlib>

namespace {

using namespace qmur;

/// What a cross adds at its centre. The full blue stands one above the largest channel.
struct Colour {
    int red;
    int green;
    int blue;
};

constexpr Colour glintColour = {0x40, 0x40, 0x100};

/// Adds the colour faded by `fade`, of which 65536 leaves nothing. Caps at 255; top byte 0.
void addFaded(q_ulong &pixel, Colour colour, int fade) {
    const auto added = [fade](q_ulong channel, int full) {
        return static_cast<q_ulong>(smaller(static_cast<int>(channel) + full - (fade * full >> 16), 255));
    };
    pixel = added(redOf(pixel), colour.red) << 16 | added(greenOf(pixel), colour.green) << 8 |
            added(blueOf(pixel), colour.blue);
}

/// A cross that fades along its arms. The centre lies on both and is added twice. Meant: no cross stands on the last
/// column or row of the clip.
void addCross(q_ulong *dst, Window clip, Distance pitch, int x, int y, int radius, Colour colour) {
    const auto [columns, rows] = clip;
    const auto standsIn = [](int position, Span span) {
        return position >= span.begin && position < wrapSubtract(span.end, 1);
    };
    if (!standsIn(x, columns) || !standsIn(y, rows))
        return;
    const int step = 65536 / radius;
    const auto armIn = [radius](int centre, Span span) {
        return intersection({wrapSubtract(centre, radius), wrapAdd(wrapAdd(centre, radius), 1)}, span);
    };
    const Span horizontal = armIn(x, columns);
    for (int column = horizontal.begin; column < horizontal.end; ++column)
        addFaded(*pixelAt(dst, pitch, column, y), colour, std::abs(column - x) * step);
    const Span vertical = armIn(y, rows);
    for (int row = vertical.begin; row < vertical.end; ++row)
        addFaded(*pixelAt(dst, pitch, x, row), colour, std::abs(row - y) * step);
}

} // namespace

void qmur::drawGlint(q_ulong *dst, const tagRECT &clip, q_ulong pitch, int x, int y, int highlight) {
    const int radius = smaller(larger(highlight, 8), 80) / 2;
    const auto cross = [&](int offset, int crossRadius) {
        addCross(dst, windowOf(clip), asDistance(pitch), wrapAdd(x, offset), wrapAdd(y, offset), crossRadius,
                 glintColour);
    };
    cross(0, radius);
    cross(-1, 3 * radius / 4);
    cross(-2, 2 * radius / 4);
    cross(1, 3 * radius / 2); // Meant: twice the length of its counterpart.
    cross(2, 2 * radius / 4);
}
