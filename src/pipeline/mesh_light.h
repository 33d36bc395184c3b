/// \file
/// The light on the colours of a grid.
#ifndef Q_MUR_PIPELINE_MESH_LIGHT_H
#define Q_MUR_PIPELINE_MESH_LIGHT_H

#include "q_Mur/types.h"

namespace qmur {

/// Replaces the colour of each vertex by its lit one. False, and nothing done, for a grid smaller than 2 by 2.
bool lightColours(const _POINT3DFLOAT *points, q_ulong *colours, int columns, int rows, const _POINT3DFLOAT &light,
                  const _POINT3D &ambient, float specular, int shininess);

} // namespace qmur

#endif
