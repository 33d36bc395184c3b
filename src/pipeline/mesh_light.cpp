#include "mesh_light.h"

#include "base/pixel.h"
#include "q_Mur/math3d.h"
#include "walks/lighting.h"

namespace qmur {
namespace {

/// Capped at 255. A channel below 0 stays as it is and runs into those above it.
q_ulong litChannel(q_ulong channel, VertexLight light) {
    const q_ulong scaledChannel = channel * static_cast<q_ulong>(light.multiplier) >> 8;
    return static_cast<q_ulong>(smaller(wrapAdd(static_cast<int>(scaledChannel), light.highlight), 255));
}

/// Meant: red is taken with the top byte.
q_ulong litColour(q_ulong colour, VertexLight light) {
    return litChannel(colour >> 16, light) << 16 | litChannel(greenOf(colour), light) << 8 |
           litChannel(blueOf(colour), light);
}

} // namespace

bool lightColours(const _POINT3DFLOAT *points, q_ulong *colours, int columns, int rows, const _POINT3DFLOAT &light,
                  const _POINT3D &ambient, float specular, int shininess) {
    if (columns < 2 || rows < 2)
        return false;
    _POINT3D ambientVector = ambient;
    const int squares = iDot_Product(&ambientVector, &ambientVector);
    const int ambientLevel = atFullWidth([=] { return truncateToInt(squareRoot(squares)); });
    const int specularLevel = truncateToInt(specular * 256);
    lightVertices(points, columns, rows, light, ambientLevel, specularLevel, shininess,
                  [colours](Distance vertex, VertexLight vertexLight) {
                      colours[vertex] = litColour(colours[vertex], vertexLight);
                  });
    return true;
}

} // namespace qmur
