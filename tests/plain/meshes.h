/// \file
/// Lit surfaces, lines and dots once more.
#ifndef Q_MUR_TESTS_PLAIN_MESHES_H
#define Q_MUR_TESTS_PLAIN_MESHES_H

#include "bands.h"
#include "vectors.h"

namespace plain {

struct Grid {
    _POINT3DFLOAT *points;
    q_ulong *colours;
    Number rows;
    Number columns;

    _POINT3DFLOAT *point(Number row, Number column) const { return points + (row * columns + column); }
    q_ulong *colour(Number row, Number column) const { return colours + (row * columns + column); }
};

/// Replaces the colours of a grid by lit ones.
inline void light(const Grid &grid, const _POINT3DFLOAT &towardLight, const _POINT3D &ambient, float specular,
                  int shininess) {
    const Number squares = signed32(Number{ambient.x} * ambient.x) + signed32(Number{ambient.y} * ambient.y) +
                           signed32(Number{ambient.z} * ambient.z);
    int ambientLevel = 0;
    int specularLevel = 0;
    {
        const FullWidth scope;
        ambientLevel = truncated(rootOf(static_cast<Real>(signed32(squares))));
        specularLevel = truncated(Real{specular} * 256);
    }
    forLitVertices(grid.points, static_cast<int>(grid.rows), static_cast<int>(grid.columns), towardLight, ambientLevel,
                   specularLevel, shininess, [&](Number index, Number multiplier, Number highlight) {
                       q_ulong &c = grid.colours[index];
                       const auto lit = [&](Number channel) {
                           return std::min<Number>(255, signed32(unsigned32(channel * multiplier) / 256 + highlight));
                       };
                       c = word(lit(c / 65536) << 16 | lit(greenOf(c)) << 8 | lit(blueOf(c)));
                   });
}

/// Calls `draw(row, column, row, column, row, column)` for each triangle of a grid.
template <class Draw>
void forTriangles(Number rows, Number columns, bool wrapsRows, bool wrapsColumns, Draw draw) {
    const Number lastRow = rows - 1;
    const Number lastColumn = columns - 1;
    for (Number r = 0; r < lastRow; ++r)
        for (Number c = 0; c < lastColumn; ++c) {
            draw(r, c, r, c + 1, r + 1, c);
            draw(r, c + 1, r + 1, c, r + 1, c + 1);
        }
    for (Number c = 0; wrapsRows && c < lastColumn; ++c) {
        draw(lastRow, c, lastRow, c + 1, 0, c);
        draw(lastRow, c + 1, 0, c, 0, c + 1);
    }
    for (Number r = 0; wrapsColumns && r < lastRow; ++r) {
        draw(r, lastColumn, r, 0, r + 1, lastColumn);
        draw(r, 0, r + 1, lastColumn, r + 1, 0);
    }
    if (wrapsRows && wrapsColumns) {
        draw(0, 0, 0, lastColumn, lastRow, 0);
        draw(0, lastColumn, lastRow, 0, lastRow, lastColumn);
    }
}

/// Hands `draw` three points and three colours for each triangle of a grid.
template <class Draw>
void drawTriangles(const Grid &grid, int wrapRows, int wrapColumns, Draw draw) {
    forTriangles(grid.rows, grid.columns, wrapRows == 1, wrapColumns == 1,
                 [&](Number r1, Number c1, Number r2, Number c2, Number r3, Number c3) {
                     draw(grid.point(r1, c1), grid.point(r2, c2), grid.point(r3, c3), grid.colour(r1, c1),
                          grid.colour(r2, c2), grid.colour(r3, c3));
                 });
}

/// At the end there may stand an opacity.
template <class... Opacity>
void VKD_Render_3D_Surface(_PRIVATE_QMGL_DATA *data, q_ulong *dst, tagRECT *clip, q_ulong pitch, _POINT3DFLOAT *points,
                           q_ulong *colours, int wrapRows, int wrapColumns, int columns, int rows,
                           _POINT3DFLOAT *towardLight, _POINT3D *, _POINT3D *ambientVector, float specular,
                           int shininess, int, Opacity... opacity) {
    if (rows < 2 || columns < 2)
        return;
    const Grid grid = {points, colours, rows, columns};
    light(grid, *towardLight, *ambientVector, specular, shininess);
    drawTriangles(grid, wrapRows, wrapColumns, [&](auto... corners) {
        plain::VKD_Render_Tri(data, dst, clip, int32(pitch), corners..., opacity...);
    });
}

inline void VKD_Render_3D_Surface_Alpha(_PRIVATE_QMGL_DATA *data, q_ulong *dst, tagRECT *clip, q_ulong pitch,
                                        _POINT3DFLOAT *points, q_ulong *colours, int, int, int wrapRows,
                                        int wrapColumns) {
    drawTriangles({points, colours, 20, 64}, wrapRows, wrapColumns,
                  [&](auto... corners) { plain::VKD_Render_Tri_Alpha(data, dst, clip, int32(pitch), corners...); });
}

inline void VKD_3D_Draw_Cross(q_ulong *dst, tagRECT *clip, q_ulong pitch, int x, int y, q_ulong colour) {
    if (x < Number{clip->left} + 3 || x > Number{clip->right} - 4 || y < Number{clip->top} + 3 ||
        y > Number{clip->bottom} - 4)
        return;
    const Pixels pixels = {dst, signed32(pitch)};
    const q_ulong sum = saturatedSum(pixels.at(x, y), colour);
    constexpr int shape[8][2] = {{0, -2}, {0, -1}, {-2, 0}, {-1, 0}, {0, 0}, {1, 0}, {0, 1}, {0, 2}};
    for (const auto &[dx, dy] : shape)
        pixels.at(Number{x} + dx, Number{y} + dy) = sum;
}

inline void VKD_Render_3D_Dot_Add(q_ulong *dst, tagRECT *clip, q_ulong pitch, _POINT3DFLOAT *points, q_ulong *colours,
                                  int columns, int rows) {
    for (Number i = 0; i < Number{rows} * columns && rows > 0; ++i)
        plain::VKD_3D_Draw_Cross(dst, clip, pitch, truncated(points[i].x), truncated(points[i].y), colours[i]);
}

inline void VKD_3D_Line(_PRIVATE_QMGL_DATA *data, q_ulong *dst, tagRECT *clip, q_ulong pitch, _POINT3D *a, _POINT3D *b,
                        q_ulong *colourA, q_ulong *) {
    const Pixels pixels = {dst, signed32(pitch)};
    const View<short> depths = {data->zBuffer, pixels.pitch};
    const auto magnitude = [](Number value) { return value < 0 ? -value : value; };
    const Number dx = signed32(Number{b->x} - a->x);
    const Number dy = signed32(Number{b->y} - a->y);
    // Along the line's longer axis and across it; a diagonal is steep.
    const bool isSteep = magnitude(dx) <= magnitude(dy);
    const auto along = [=](const _POINT3D *point) { return Number{isSteep ? point->y : point->x}; };
    const auto across = [=](const _POINT3D *point) { return Number{isSteep ? point->x : point->y}; };
    const Number length = isSteep ? dy : dx;
    if (length == 0)
        return;
    const auto slope = [=](Number begin, Number end) {
        return signed32(signed32(signed32(end - begin) * 256) / length);
    };
    const Number acrossStep = slope(across(a), across(b));
    const Number depthStep = slope(a->z, b->z);
    const _POINT3D *begin = along(b) > along(a) ? a : b;
    const _POINT3D *end = begin == a ? b : a;
    const Number lowX = Number{clip->left} + 1;
    const Number highX = Number{clip->right} - 2;
    const Number lowY = Number{clip->top} + 1;
    const Number highY = Number{clip->bottom} - 2;
    const Number first = std::max(isSteep ? lowY : lowX, along(begin));
    const Number last = std::min(isSteep ? highY : highX, along(end));
    for (Number step = first; step < last; ++step) {
        const Number steps = signed32(step - along(begin));
        const Number position = signed32(steps * acrossStep + across(begin) * 256);
        const Number z = signed32(steps * depthStep + Number{begin->z} * 256) >> 8;
        const Number place = position >> 8;
        const Number fraction = position % 256 < 0 ? position % 256 + 256 : position % 256;
        if (place < (isSteep ? lowX : lowY) || place >= (isSteep ? highX : highY))
            continue;
        const auto draw = [&](Number offset, auto colour) {
            const Number x = isSteep ? place + offset : step;
            const Number y = isSteep ? step : place + offset;
            if (z >= depths.at(x, y))
                return;
            depths.at(x, y) = static_cast<short>(z);
            pixels.at(x, y) = colour(pixels.at(x, y));
        };
        const auto mixed = [&](Number weight) {
            return [=](q_ulong d) {
                return eachChannel(d, *colourA, [=](Number under, Number over) {
                    return (under * weight + over * (256 - weight)) / 256;
                });
            };
        };
        const auto plainColour = [=](q_ulong) { return *colourA; };
        draw(-1, mixed(fraction));
        draw(2, mixed(256 - fraction));
        draw(0, plainColour);
        draw(1, plainColour);
    }
}

inline void VKD_Render_3D_Line(_PRIVATE_QMGL_DATA *data, q_ulong *dst, tagRECT *clip, q_ulong pitch,
                               _POINT3DFLOAT *points, q_ulong *colours, int wrapRows, int wrapColumns, int columns,
                               int rows, _POINT3DFLOAT *towardLight, _POINT3D *, _POINT3D *ambientVector,
                               float specular, int shininess, int) {
    if (rows < 2 || columns < 2)
        return;
    const Grid grid = {points, colours, rows, columns};
    light(grid, *towardLight, *ambientVector, specular, shininess);
    const auto draw = [&](Number fromRow, Number fromColumn, Number toRow, Number toColumn) {
        const auto whole = [](const _POINT3DFLOAT *p) {
            return _POINT3D{truncated(p->x), truncated(p->y), truncated(p->z), 0};
        };
        _POINT3D from = whole(grid.point(fromRow, fromColumn));
        _POINT3D to = whole(grid.point(toRow, toColumn));
        plain::VKD_3D_Line(data, dst, clip, pitch, &from, &to, grid.colour(fromRow, fromColumn), nullptr);
    };
    const Number lastRow = rows - 1;
    const Number lastColumn = columns - 1;
    for (Number r = 0; r < lastRow; ++r)
        for (Number c = 0; c < lastColumn; ++c) {
            draw(r, c, r + 1, c);
            draw(r, c, r, c + 1);
        }
    for (Number r = 0; r < lastRow; ++r)
        draw(r, lastColumn, r + 1, lastColumn);
    for (Number c = 0; c < lastColumn; ++c)
        draw(lastRow, c, lastRow, c + 1);
    for (Number c = 0; wrapRows == 1 && c <= lastColumn; ++c)
        draw(lastRow, c, 0, c);
    for (Number r = 0; wrapColumns == 1 && r <= lastRow; ++r)
        draw(r, lastColumn, r, 0);
}

} // namespace plain

#endif
