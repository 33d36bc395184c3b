/// \file
/// The sparkle over the brightest part of a mesh.
#ifndef Q_MUR_TEXTURED_GLINT_H
#define Q_MUR_TEXTURED_GLINT_H

#include "q_Mur/types.h"

namespace qmur {

/// Adds five crosses around (x, y), inside `clip`. They grow with the highlight's level, from 8 to 80.
void drawGlint(q_ulong *dst, const tagRECT &clip, q_ulong pitch, int x, int y, int highlight);

} // namespace qmur

#endif
