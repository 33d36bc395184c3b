/// \file
/// Grids of points with colours and a light, for the tests of renderers.
#ifndef Q_MUR_TESTS_PIPELINE_MESH_H
#define Q_MUR_TESTS_PIPELINE_MESH_H

#include "support/screen.h"

#include <cstddef>
#include <vector>

namespace test {

struct Mesh {
    int columns;
    int rows;
    std::vector<_POINT3DFLOAT> points;
    std::vector<q_ulong> colours;
    _POINT3DFLOAT light = {0, 0, 1, 0};
    _POINT3D ambient = {0, 0, 0, 0};
    float specular = 0;
    int shininess = 0;
    int wrapRows = 0;
    int wrapColumns = 0;

    /// Flat and upright, facing the viewer, in cells of so many pixels from a place on.
    Mesh(int columnCount, int rowCount, const tagPOINT &cell, const tagPOINT &first)
        : columns(columnCount), rows(rowCount) {
        for (int row = 0; row < rows; ++row)
            for (int column = 0; column < columns; ++column)
                points.push_back(
                    {static_cast<float>(first.x + column * cell.x), static_cast<float>(first.y + row * cell.y), 0, 0});
    }
    /// In squares and in one colour.
    Mesh(int columnCount, int rowCount, int cell = 10, q_ulong colour = 0x804020)
        : Mesh(columnCount, rowCount, {cell, cell}, {0, 0}) {
        colours.assign(points.size(), colour);
    }

    std::size_t index(int row, int column) const { return static_cast<std::size_t>(row * columns + column); }
    _POINT3DFLOAT &point(int row, int column) { return points.at(index(row, column)); }
    q_ulong &colour(int row, int column) { return colours.at(index(row, column)); }
};

/// Calls a renderer of lit grids, with an opacity where it takes one.
template <class... Opacity>
void renderLit(void (*render)(_PRIVATE_QMGL_DATA *, q_ulong *, tagRECT *, q_ulong, _POINT3DFLOAT *, q_ulong *, int, int,
                              int, int, _POINT3DFLOAT *, _POINT3D *, _POINT3D *, float, int, int, Opacity...),
               Screen &screen, tagRECT clip, Mesh &mesh, Opacity... opacity) {
    render(&screen.pipeline, screen.surface.pixels(), &clip, screen.pitch(), mesh.points.data(), mesh.colours.data(),
           mesh.wrapRows, mesh.wrapColumns, mesh.columns, mesh.rows, &mesh.light, nullptr, &mesh.ambient, mesh.specular,
           mesh.shininess, 0, opacity...);
}

} // namespace test

#endif
