/// \file
/// From the corners of a convex polygon, given in any order, to the bands between two edges that it is drawn in.
#ifndef Q_MUR_TEXTURED_OUTLINE_H
#define Q_MUR_TEXTURED_OUTLINE_H

#include "base/wide.h"
#include "q_Mur/draw.h"

#include <array>
#include <cstddef>
#include <utility>

namespace qmur {

/// A corner in whole pixels and depths, with all that travels with it.
struct Corner {
    int x;
    int y;
    int z;
    int u;
    int v;
    int add;
    int mul;
};

inline Corner cornerOf(const _POINT3DFLOAT &point, const _POINTINT &texPosition, int add, int mul) {
    return {
        truncateToInt(point.x), truncateToInt(point.y), truncateToInt(point.z), texPosition.x, texPosition.y, add, mul};
}

using Triangle = std::array<Corner, 3>;
using Quad = std::array<Corner, 4>;

/// From top to bottom; the exchanges decide how corners of one height come to stand.
inline void sortByHeight(Quad &corners) {
    for (std::size_t i = 0; i < corners.size(); ++i)
        for (std::size_t j = i + 1; j < corners.size(); ++j)
            if (corners[j].y < corners[i].y)
                std::swap(corners[i], corners[j]);
}

/// An edge, from its upper to its lower corner.
struct Edge {
    const Corner &upper;
    const Corner &lower;
};

/// Calls `band(left edge, right edge)` for the rows between each corner and the next lower one. An edge is handed over
/// whole: the band is what both edges cover. The corners between top and bottom make a chain of edges on whichever side
/// of the line from top to bottom they lie; a corner on the line belongs to the right.
template <std::size_t count, class Band>
void forEachBand(const std::array<Corner, count> &corners, Band band) {
    std::array<bool, count> isLeft = {};
    for (std::size_t k = 1; k < count - 1; ++k) {
        Corner corner = corners[k];
        Corner top = corners[0];
        Corner bottom = corners[count - 1];
        isLeft[k] = DecisionLine2(&corner.x, &corner.y, &top.x, &top.y, &bottom.x, &bottom.y) != 0;
    }
    const auto edgeThrough = [&](std::size_t upper, bool side) {
        std::size_t lower = upper + 1;
        while (upper > 0 && isLeft[upper] != side)
            --upper;
        while (lower < count - 1 && isLeft[lower] != side)
            ++lower;
        return Edge{corners[upper], corners[lower]};
    };
    for (std::size_t k = 0; k < count - 1; ++k)
        band(edgeThrough(k, true), edgeThrough(k, false));
}

} // namespace qmur

#endif
