/// \file
/// Grids of points with colours and a light, for the tests of the surface and line renderers.
#ifndef Q_MUR_TESTS_PIPELINE_MESH_H
#define Q_MUR_TESTS_PIPELINE_MESH_H

#include <q_Mur.h>

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

    /// Flat and upright, facing the viewer, with points `cell` pixels apart.
    Mesh(int columnCount, int rowCount, int cell = 10, q_ulong colour = 0x804020)
        : columns(columnCount), rows(rowCount) {
        for (int row = 0; row < rows; ++row)
            for (int column = 0; column < columns; ++column)
                points.push_back({static_cast<float>(column * cell), static_cast<float>(row * cell), 0, 0});
        colours.assign(points.size(), colour);
    }

    std::size_t index(int row, int column) const { return static_cast<std::size_t>(row * columns + column); }
    _POINT3DFLOAT &point(int row, int column) { return points.at(index(row, column)); }
    q_ulong &colour(int row, int column) { return colours.at(index(row, column)); }
};

} // namespace test

#endif
