#include "mesh_light.h"

#include "base/pixel.h"
#include "walks/lighting.h"

namespace qmur {
namespace {

/// Capped at 255. A channel below 0 stays as it is and runs into those above it. Meant: red is taken with the top byte.
q_ulong litColour(q_ulong colour, VertexLight light) {
    const auto lit = [light](q_ulong channel) {
        const q_ulong product = channel * static_cast<q_ulong>(light.multiplier) >> 8;
        return static_cast<q_ulong>(smaller(wrapAdd(static_cast<int>(product), light.highlight), 255));
    };
    return upperHalfChannelwise(lit, colour);
}

} // namespace

bool lightColours(const _POINT3DFLOAT *points, q_ulong *colours, int columns, int rows, const _POINT3DFLOAT &light,
                  const _POINT3D &ambient, float specular, int shininess) {
    if (columns < 2 || rows < 2)
        return false;
    const int squares = dotProduct(ambient, ambient);
    const int ambientLevel = atFullWidth([=] { return truncateToInt(squareRoot(squares)); });
    const int specularLevel = truncateToInt(specular * 256);
    lightVertices(points, columns, rows, light, ambientLevel, specularLevel, shininess,
                  [colours](Distance vertex, VertexLight vertexLight) {
                      colours[vertex] = litColour(colours[vertex], vertexLight);
                  });
    return true;
}

} // namespace qmur
