/// \file
/// Bands: what lies between two edges of a shaded polygon, row by row. Each of the four ways to draw one.
#ifndef Q_MUR_PIPELINE_SPANS_H
#define Q_MUR_PIPELINE_SPANS_H

#include "walks/bands.h"

namespace qmur {

/// A column with its colour and depth. Whole numbers at the ends of an edge, fixed point between them.
struct ShadedColumn {
    int x;
    int red;
    int green;
    int blue;
    int depth;

    template <class Operation, class... Columns>
    static constexpr ShadedColumn each(Operation operation, const Columns &...c) {
        return {.x = operation(c.x...),
                .red = operation(c.red...),
                .green = operation(c.green...),
                .blue = operation(c.blue...),
                .depth = operation(c.depth...)};
    }
};

constexpr Corner<ShadedColumn> shadedCorner(int x, int y, int red, int green, int blue, int depth) {
    return {y, {.x = x, .red = red, .green = green, .blue = blue, .depth = depth}};
}

using ShadedEdge = Edge<ShadedColumn>;

/// Replaces pixels that are nearer than the Z plane and beyond the near limit.
void drawBand(const _PRIVATE_QMGL_DATA &data, q_ulong *dst, const tagRECT &clip, q_ulong pitch, const ShadedEdge &left,
              const ShadedEdge &right);

/// The same, blended by `opacity` in 1/256. Meant: half opacity, 128, goes a way of its own that knows no depth at all.
void drawBand(const _PRIVATE_QMGL_DATA &data, q_ulong *dst, const tagRECT &clip, q_ulong pitch, const ShadedEdge &left,
              const ShadedEdge &right, int opacity);

/// Mixes half and half with pixels beyond the near limit. Neither reads nor writes the Z plane.
void mixBand(const _PRIVATE_QMGL_DATA &data, q_ulong *dst, const tagRECT &clip, q_ulong pitch, const ShadedEdge &left,
             const ShadedEdge &right);

/// Adds to the pixels, saturating. Knows no depth.
void addBand(q_ulong *dst, const tagRECT &clip, q_ulong pitch, const ShadedEdge &left, const ShadedEdge &right);

} // namespace qmur

#endif
