#include "q_Mur/textured.h"
#include "walks/lighting.h"

namespace {

using namespace qmur;

template <class Data>
void lightMesh(const Data &data, const _POINT3DFLOAT *points, int rows, int cols, const _POINT3DFLOAT &light,
               int ambient, int specular, int shininess) {
    int *const highlights = data.vertexArray0;
    int *const multipliers = data.vertexArray1;
    lightVertices(points, cols, rows, light, ambient, specular, shininess,
                  [highlights, multipliers](Distance vertex, VertexLight vertexLight) {
                      highlights[vertex] = vertexLight.highlight;
                      multipliers[vertex] = vertexLight.multiplier;
                  });
}

} // namespace

void FindLuminenceTerm(_PRIVATE_QM3D_DATA *data, _POINT3DFLOAT *points, int rows, int cols, _POINT3DFLOAT *light,
                       int ambient, int specular, int shininess) {
    lightMesh(*data, points, rows, cols, *light, ambient, specular, shininess);
}

void VKD_FindLuminenceTerm(_PRIVATE_QMGL_DATA *data, _POINT3DFLOAT *points, int rows, int cols, _POINT3DFLOAT *light,
                           int ambient, int specular, int shininess) {
    lightMesh(*data, points, rows, cols, *light, ambient, specular, shininess);
}
