/// \file
/// The light on a grid of points: one directional light with one highlight from a half vector, at each vertex.
#ifndef Q_MUR_WALKS_LIGHTING_H
#define Q_MUR_WALKS_LIGHTING_H

#include "base/integers.h"
#include "base/surface.h"
#include "base/vector.h"

namespace qmur {

/// What a vertex does to a colour channel: times `multiplier` / 256, plus `highlight`.
struct VertexLight {
    int multiplier;
    int highlight;
};

/// A light with the terms that are the same for all vertices. Stands, and is used, inside atFullWidth().
class GridLight {
public:
    /// `timesSquared` is how often the highlight is squared.
    GridLight(const _POINT3DFLOAT &towardLight, int ambientLevel, int specularLevel, int timesSquared)
        : direction(towardLight), ambient(ambientLevel), specular(specularLevel), squarings(timesSquared) {
        // The viewer stands along +Z. A light from straight behind the surface divides by 0.
        const _POINT3DFLOAT sum = {direction.x, direction.y, direction.z + 1.0F, 0};
        half = dividedBy(sum, magnitude(sum));
    }

    VertexLight on(const _POINT3DFLOAT &normal) const {
        const Wide diffuse = dotProduct(direction, normal) * 256;
        VertexLight light = {wrapAdd(truncateToInt(diffuse < 0 ? 0 : diffuse), ambient), 0};
        Wide shine = dotProduct(half, normal);
        if (shine > 0) {
            for (int i = 0; i < squarings; ++i)
                shine *= shine;
            light.highlight = truncateToInt(specular * shine);
        }
        return light;
    }

private:
    _POINT3DFLOAT direction;
    _POINT3DFLOAT half;
    int ambient;
    int specular;
    int squarings;
};

/// Calls `store(index of the vertex, its light)` for every vertex of a grid of at least 2 by 2 points.
///
/// The normal of a cell is that of its upper left triangle. A vertex at a corner of the grid has the normal of its cell
/// and one at a border the mean of its two cells. Meant: a vertex inside has the mean of the two cells to its right,
/// and no mean is brought back to length 1.
template <class Store>
void lightVertices(const _POINT3DFLOAT *points, int columns, int rows, const _POINT3DFLOAT &direction, int ambient,
                   int specular, int squarings, Store store) {
    if (columns < 2 || rows < 2)
        return;
    atFullWidth([=] {
        const GridLight light(direction, ambient, specular, squarings);
        const Distance rowStep = columns;
        const auto cellNormal = [points, rowStep](Distance row, Distance column) {
            const _POINT3DFLOAT *corner = points + (row * rowStep + column);
            return faceNormal(corner[0], corner[1], corner[rowStep]);
        };
        const Distance lastRow = rows - 1;
        const Distance lastColumn = columns - 1;
        // Down the columns, for there a cell serves the vertices above and below it.
        for (Distance column = 0; column <= lastColumn; ++column) {
            const bool inside = column > 0 && column < lastColumn;
            const Distance cellColumn = column < lastColumn ? column : lastColumn - 1;
            const auto borderNormal = [&](const _POINT3DFLOAT &cell, Distance row) {
                return inside ? meanOf(cell, cellNormal(row, column - 1)) : cell;
            };
            _POINT3DFLOAT above = cellNormal(0, cellColumn);
            store(column, light.on(borderNormal(above, 0)));
            for (Distance row = 1; row < lastRow; ++row) {
                const _POINT3DFLOAT below = cellNormal(row, cellColumn);
                store(row * rowStep + column,
                      light.on(inside ? meanOf(above, above, below, below) : meanOf(above, below)));
                above = below;
            }
            store(lastRow * rowStep + column, light.on(borderNormal(above, lastRow - 1)));
        }
    });
}

} // namespace qmur

#endif
