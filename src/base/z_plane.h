/// \file
/// The Z planes of the 3D modules: signed 16-bit depths, one for each pixel of a destination, smaller is nearer.
#ifndef Q_MUR_BASE_Z_PLANE_H
#define Q_MUR_BASE_Z_PLANE_H

#include "base/surface.h"

#include <algorithm>

namespace qmur {

constexpr short emptyDepth = 0x7FFF;

/// A depth where pixels may lie as well: the compiler keeps its reads and writes among theirs.
using DepthEntry __attribute__((may_alias)) = short;

/// Empties a rectangle of a plane that starts at pixel (0, 0). Returns 1, or 0 if there is no plane.
///
/// Meant: entries are emptied in pairs, which the shifts by one bit place. An odd left starts one entry early, an odd
/// width loses its last entry, and an odd pitch drifts by one entry every other row.
inline int clearDepths(short *zBuffer, const tagRECT &rect, int pitch) {
    if (!zBuffer)
        return 0;
    const int firstPair = wrapAdd(wrapMultiply(static_cast<int>(rect.top), pitch), static_cast<int>(rect.left)) >> 1;
    const Distance pairsPerRow = widthOf(rect) >> 1;
    const Distance rowStep = pitch >> 1;
    Distance pair = firstPair;
    for (int rows = heightOf(rect); rows > 0 && pairsPerRow > 0; --rows, pair += rowStep)
        std::fill_n(zBuffer + 2 * pair, 2 * pairsPerRow, emptyDepth);
    return 1;
}

} // namespace qmur

#endif
