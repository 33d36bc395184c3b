/// \file
/// The meshes of the 3D rows.
#ifndef Q_MUR_BENCH_GRID_H
#define Q_MUR_BENCH_GRID_H

#include "support/surface.h"

#include <array>
#include <string>
#include <vector>

namespace bench {

/// Points over a square of `extent` pixels, row after row. The inner ones are moved a little and all have depths of
/// their own, so that the cells are quads of any slope, which together cover the square once.
struct Grid {
    static constexpr int extent = 700;

    int rows;
    int columns;
    std::vector<_POINT3DFLOAT> points;

    Grid(int rowCount, int columnCount);

    /// Four corners of a cell, clockwise from the upper left.
    std::array<std::size_t, 4> cornersOf(int row, int column) const;

    /// Both triangles of every cell.
    std::vector<std::array<std::size_t, 3>> triangles() const;

    int cellCount() const { return (rows - 1) * (columns - 1); }
};

/// A grid whose triangles have so many pixels on the average.
struct TriangleSize {
    int pixels;
    int cells; ///< along either side

    std::string work() const { return "triangles of " + std::to_string(pixels) + " pixels"; }
    std::string quadWork() const { return "quads of " + std::to_string(2 * pixels) + " pixels"; }
    Grid grid() const { return {cells + 1, cells + 1}; }
};

inline constexpr TriangleSize triangleSizes[] = {{50, 70}, {5000, 7}};

} // namespace bench

#endif
