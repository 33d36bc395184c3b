/// \file
/// The outline of a circle or of an ellipse that is scaled to one.
#ifndef Q_MUR_DRAW_OUTLINE_H
#define Q_MUR_DRAW_OUTLINE_H

#include "walks/round.h"

#include <algorithm>
#include <initializer_list>

namespace qmur {

/// Draws each row from the rim towards the axis, up to and including the first pixel at or inside the hole, and its
/// three mirror images. `scaledRow(dy)` is the row's distance from the axis in horizontal pixels.
template <class ScaledRow>
void drawOutline(const Centre &centre, const Window &offsets, int halfWidth, int halfHeight, int thickness,
                 q_ulong colour, ScaledRow scaledRow) {
    if (halfWidth < 0)
        return;
    // Meant: squared with its sign, so a thickness beyond the half width narrows the hole again.
    const int holeHalfWidth = wrapSubtract(halfWidth, thickness);
    const int hole = wrapMultiply(holeHalfWidth, holeHalfWidth);
    const int rim = wrapMultiply(halfWidth, halfWidth);
    const auto fill = [&](Span run, int dy) {
        const Span columns = intersection(run, offsets.columns);
        if (!columns.empty() && offsets.rows.contains(dy))
            std::fill_n(centre.pixel(columns.begin, dy), columns.length(), colour);
    };
    for (int dy = -halfHeight; dy <= 0; ++dy) {
        const int row = scaledRow(dy);
        const int rowSquare = wrapMultiply(row, row);
        const int outer = halfChord(rim, rowSquare);
        if (outer < 0)
            continue;
        const int inner = std::clamp(halfChord(hole, rowSquare), 0, outer);
        for (const int mirrored : {dy, -dy}) {
            fill({-outer, -inner + 1}, mirrored);
            fill({inner, outer + 1}, mirrored);
        }
    }
}

} // namespace qmur

#endif
