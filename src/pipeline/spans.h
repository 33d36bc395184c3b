/// \file
/// Bands: what lies between two edges of a shaded polygon, row by row. Each of the four ways to draw one.
#ifndef Q_MUR_PIPELINE_SPANS_H
#define Q_MUR_PIPELINE_SPANS_H

#include "walks/bands.h"

namespace qmur {

/// A column with, side by side, red, green, blue and depth. Whole numbers at the ends of an edge, fixed point between
/// them.
struct ShadedColumn {
    int x;
    Numbers<4> shade;

    template <class Operation, class... Columns>
    static ShadedColumn each(Operation operation, const Columns &...c) {
        return {operation(c.x...), operation(c.shade...)};
    }
};

inline Corner<ShadedColumn> shadedCorner(int x, int y, int red, int green, int blue, int depth) {
    return {y, {x, Numbers<4>::of(red, green, blue, depth)}};
}

/// Bits of fixed point with and without a depth. The ways with a depth reach 524288 pixels far, the other 8192.
constexpr int depthFractionBits = 12;
constexpr int additiveFractionBits = 18;

using ShadedEdge = SteppedEdge<depthFractionBits, ShadedColumn>;
using AdditiveEdge = SteppedEdge<additiveFractionBits, ShadedColumn>;

/// Whether nothing wraps along edges between these corners, so that their colours stay between those of the corners,
/// and whether those are numbers of 15 bits.
template <class... Corners>
bool areModest(const Corners &...corners) {
    const auto outside = [](int number, int limit) {
        return static_cast<unsigned>(wrapAdd(number, limit)) / (2U * limit);
    };
    const auto excess = [outside](const Corner<ShadedColumn> &corner) {
        const Numbers<4> shade = corner.at.shade;
        return outside(corner.y, 1 << 29) | outside(corner.at.x, 1 << 17) | (shade[0] | shade[1] | shade[2]) >> 15;
    };
    return (excess(corners) | ...) == 0;
}

/// Replaces pixels that are nearer than the Z plane and beyond the near limit.
void drawBand(const _PRIVATE_QMGL_DATA &data, q_ulong *dst, const tagRECT &clip, q_ulong pitch, const ShadedEdge &left,
              const ShadedEdge &right);

/// The same, blended by `opacity` in 1/256; `isModest` says that areModest() holds for the corners. Meant: half
/// opacity, 128, goes a way of its own that knows no depth at all.
void drawBand(const _PRIVATE_QMGL_DATA &data, q_ulong *dst, const tagRECT &clip, q_ulong pitch, const ShadedEdge &left,
              const ShadedEdge &right, int opacity, bool isModest);

/// Mixes half and half with pixels beyond the near limit. Neither reads nor writes the Z plane.
void mixBand(const _PRIVATE_QMGL_DATA &data, q_ulong *dst, const tagRECT &clip, q_ulong pitch, const ShadedEdge &left,
             const ShadedEdge &right);

/// Adds to the pixels, saturating. Knows no depth.
void addBand(q_ulong *dst, const tagRECT &clip, q_ulong pitch, const AdditiveEdge &left, const AdditiveEdge &right);

} // namespace qmur

#endif
