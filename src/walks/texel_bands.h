/// \file
/// Bands of plain texels, which are read inside the clip alone.
#ifndef Q_MUR_WALKS_TEXEL_BANDS_H
#define Q_MUR_WALKS_TEXEL_BANDS_H

#include "walks/bands.h"
#include "walks/stretch.h"

namespace qmur {

/// A column with the texel that it shows.
struct TexelColumn {
    int x;
    int u;
    int v;

    template <class Operation, class... Columns>
    static constexpr TexelColumn each(Operation operation, const Columns &...c) {
        return {operation(c.x...), operation(c.u...), operation(c.v...)};
    }
};

/// Meant: what runs over a distance is interpolated over one less, so that the last row or pixel before the end shows
/// what stands at the end.
constexpr int oneLess(int distance) {
    return wrapSubtract(distance, 1);
}

/// Copies the texels of a band. `outside(dst pixel)` says what becomes of a pixel whose texel lies outside the window,
/// by which destination and texture are clipped alike.
template <int fractionBits, class Outside>
void drawTexelBand(q_ulong *dst, Distance dstPitch, const q_ulong *tex, Distance texPitch, Window window,
                   const Edge<TexelColumn> &left, const Edge<TexelColumn> &right, Outside outside) {
    const SlopedEdge<fractionBits, TexelColumn> leftEdge(left, oneLess(heightOf(left)));
    const SlopedEdge<fractionBits, TexelColumn> rightEdge(right, oneLess(heightOf(right)));
    const Span rows = intersection(rowsOf(left, right), window.rows);
    for (int y = rows.begin; y < rows.end; ++y) {
        const TexelColumn start = leftEdge.at(y);
        const TexelColumn end = rightEdge.at(y);
        const Span columns = intersection({start.x, end.x}, window.columns);
        if (columns.empty())
            continue;
        const TexelColumn step = (end - start) * reciprocal<fractionBits>(oneLess(wrapSubtract(end.x, start.x)));
        const int skipped = wrapSubtract(columns.begin, start.x);
        const auto track = [skipped](int from, int gain, Span bounds) {
            return Track{wrapMultiply(skipped, gain), gain, scaledBounds(bounds.begin, bounds.end, from, fractionBits)};
        };
        q_ulong *const row = pixelAt(dst, dstPitch, columns.begin, y);
        const Distance first = start.v * texPitch + start.u;
        forEachInside(
            track(start.u, step.u, window.columns), track(start.v, step.v, window.rows), columns.length(),
            [=](int x, int u, int v) { row[x] = tex[first + (v >> fractionBits) * texPitch + (u >> fractionBits)]; },
            [row, outside](int x) { outside(row[x]); });
    }
}

} // namespace qmur

#endif
