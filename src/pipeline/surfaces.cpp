#include "base/surface.h"
#include "mesh_light.h"
#include "q_Mur/pipeline.h"

namespace {

using namespace qmur;

/// Calls `triangle(vertex, vertex, vertex)` for the two triangles of every cell of a grid and of those that close it.
template <class Triangle>
void forEachTriangle(Distance columns, Distance rows, int wrapRows, int wrapColumns, Triangle triangle) {
    const Distance lastColumn = columns - 1;
    const Distance lastRow = (rows - 1) * columns;
    for (Distance row = 0; row < lastRow; row += columns)
        for (Distance v = row; v < row + lastColumn; ++v) {
            triangle(v, v + 1, v + columns);
            triangle(v + 1, v + columns, v + columns + 1);
        }
    if (wrapRows == 1)
        for (Distance column = 0; column < lastColumn; ++column) {
            triangle(lastRow + column, lastRow + column + 1, column);
            triangle(lastRow + column + 1, column, column + 1);
        }
    if (wrapColumns == 1)
        for (Distance row = 0; row < lastRow; row += columns) {
            triangle(row + lastColumn, row, row + columns + lastColumn);
            triangle(row, row + columns + lastColumn, row + columns);
        }
    if (wrapRows == 1 && wrapColumns == 1) {
        triangle(0, lastColumn, lastRow);
        triangle(lastColumn, lastRow, lastRow + lastColumn);
    }
}

} // namespace

void VKD_Render_3D_Surface(_PRIVATE_QMGL_DATA *data, q_ulong *dst, tagRECT *clip, q_ulong pitch, _POINT3DFLOAT *points,
                           q_ulong *colours, int wrapRows, int wrapColumns, int columns, int rows, _POINT3DFLOAT *light,
                           _POINT3D *, _POINT3D *ambientVector, float specular, int shininess, int) {
    if (!lightColours(points, colours, columns, rows, *light, *ambientVector, specular, shininess))
        return;
    forEachTriangle(columns, rows, wrapRows, wrapColumns, [=](Distance a, Distance b, Distance c) {
        VKD_Render_Tri(data, dst, clip, static_cast<int>(pitch), points + a, points + b, points + c, colours + a,
                       colours + b, colours + c);
    });
}

void VKD_Render_3D_Surface(_PRIVATE_QMGL_DATA *data, q_ulong *dst, tagRECT *clip, q_ulong pitch, _POINT3DFLOAT *points,
                           q_ulong *colours, int wrapRows, int wrapColumns, int columns, int rows, _POINT3DFLOAT *light,
                           _POINT3D *, _POINT3D *ambientVector, float specular, int shininess, int, int opacity) {
    if (!lightColours(points, colours, columns, rows, *light, *ambientVector, specular, shininess))
        return;
    forEachTriangle(columns, rows, wrapRows, wrapColumns, [=](Distance a, Distance b, Distance c) {
        VKD_Render_Tri(data, dst, clip, static_cast<int>(pitch), points + a, points + b, points + c, colours + a,
                       colours + b, colours + c, opacity);
    });
}

// Meant: the grid has a size of its own, and the two numbers in the place of its size are not read.
void VKD_Render_3D_Surface_Alpha(_PRIVATE_QMGL_DATA *data, q_ulong *dst, tagRECT *clip, q_ulong pitch,
                                 _POINT3DFLOAT *points, q_ulong *colours, int, int, int wrapRows, int wrapColumns) {
    constexpr int rows = 20;
    constexpr int columns = 64;
    forEachTriangle(columns, rows, wrapRows, wrapColumns, [=](Distance a, Distance b, Distance c) {
        VKD_Render_Tri_Alpha(data, dst, clip, static_cast<int>(pitch), points + a, points + b, points + c, colours + a,
                             colours + b, colours + c);
    });
}
