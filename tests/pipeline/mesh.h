/// \file
/// Grids of points with colours and a light, for the tests of the surface and line renderers.
#ifndef Q_MUR_TESTS_PIPELINE_MESH_H
#define Q_MUR_TESTS_PIPELINE_MESH_H

#include "plain/meshes.h"
#include "support/random.h"

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

    /// The colours as they are lit.
    std::vector<q_ulong> lit() const {
        Mesh copy = *this;
        plain::light({copy.points.data(), copy.colours.data(), rows, columns}, light, ambient, specular, shininess);
        return copy.colours;
    }
};

/// A crumpled grid under any light.
inline Mesh randomMesh(Random &random, int largest, int cell) {
    const int columns = random.between(2, largest);
    const int rows = random.between(2, largest);
    Mesh mesh(columns, rows, cell);
    const float amount = random.oneIn(4) ? static_cast<float>(3 * cell) : static_cast<float>(cell) / 2;
    for (_POINT3DFLOAT &point : mesh.points) {
        point.x += random.realBetween(-amount, amount) - 3;
        point.y += random.realBetween(-amount, amount) - 3;
        point.z += random.realBetween(-amount, amount) * 3;
    }
    for (q_ulong &colour : mesh.colours)
        colour = random.pixel();
    mesh.light = {random.realBetween(-1, 1), random.realBetween(-1, 1), random.realBetween(-0.5F, 1), 0};
    mesh.ambient = {random.between(-60, 60), random.between(-60, 60), random.between(-60, 60), 0};
    mesh.specular = random.realBetween(0, 2);
    mesh.shininess = random.between(-1, 5);
    mesh.wrapRows = random.between(0, 2);
    mesh.wrapColumns = random.between(0, 2);
    return mesh;
}

} // namespace test

#endif
