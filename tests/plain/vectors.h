/// \file
/// Vectors of three floats, and the light on the vertices of a grid: all of it to be used at full width.
#ifndef Q_MUR_TESTS_PLAIN_VECTORS_H
#define Q_MUR_TESTS_PLAIN_VECTORS_H

#include "real.h"

namespace plain {

struct Vector {
    float x;
    float y;
    float z;
};

/// A vector out of each component of others, rounded to float.
template <class Component>
Vector eachComponent(Component component) {
    return {static_cast<float>(component(&Vector::x)), static_cast<float>(component(&Vector::y)),
            static_cast<float>(component(&Vector::z))};
}

template <class Point>
Vector vectorOf(const Point &point) {
    return {point.x, point.y, point.z};
}

inline Vector difference(const Vector &a, const Vector &b) {
    return eachComponent([&](float Vector::*k) { return Real{a.*k} - Real{b.*k}; });
}
inline Vector quotient(const Vector &v, Real divisor) {
    return eachComponent([&](float Vector::*k) { return Real{v.*k} / divisor; });
}

template <class Point>
Real dot(const Point &a, const Point &b) {
    return Real{a.z} * Real{b.z} + Real{a.y} * Real{b.y} + Real{a.x} * Real{b.x};
}
template <class Point>
Real lengthOf(const Point &v) {
    return rootOf(dot(v, v));
}

template <class Point>
Vector cross(const Point &a, const Point &b) {
    const auto minor = [](float p, float q, float r, float s) {
        return static_cast<float>(Real{p} * Real{q} - Real{r} * Real{s});
    };
    return {minor(a.y, b.z, a.z, b.y), minor(a.z, b.x, a.x, b.z), minor(a.x, b.y, a.y, b.x)};
}

/// Of length 1; without length it stays so.
template <class Point>
Vector unit(const Point &v) {
    const Real length = lengthOf(v);
    const Real factor = length == 0 ? 32768 : 1 / length;
    return {static_cast<float>(v.x * factor), static_cast<float>(v.y * factor), static_cast<float>(v.z * factor)};
}

template <class Point>
Vector faceNormal(const Point &p1, const Point &p2, const Point &p3) {
    return unit(cross(difference(vectorOf(p1), vectorOf(p2)), difference(vectorOf(p1), vectorOf(p3))));
}

inline Vector mean(const Vector &a, const Vector &b) {
    return eachComponent([&](float Vector::*k) { return (Real{a.*k} + Real{b.*k}) / 2; });
}

/// The normal of a vertex of a grid: of its cell at a corner, of two cells at a border and of the two to the right of a
/// vertex inside, each counted twice.
inline Vector vertexNormal(const _POINT3DFLOAT *points, Number rows, Number columns, Number row, Number column) {
    const auto cell = [=](Number i, Number j) {
        const _POINT3DFLOAT *corner = points + (i * columns + j);
        return faceNormal(corner[0], corner[1], corner[columns]);
    };
    const auto above = std::max<Number>(row - 1, 0);
    const auto below = std::min(row, rows - 2);
    const auto left = std::max<Number>(column - 1, 0);
    const auto right = std::min(column, columns - 2);
    if (above != below && left != right) {
        const Vector a = cell(above, column);
        const Vector b = cell(below, column);
        return eachComponent([&](float Vector::*k) { return (Real{a.*k} + Real{a.*k} + Real{b.*k} + Real{b.*k}) / 4; });
    }
    if (above == below && left == right)
        return cell(above, left);
    return mean(cell(above, left), cell(below, right));
}

/// Calls `store(index, multiplier, highlight)` for each vertex of a grid of at least 2 x 2 points.
template <class Store>
void forLitVertices(const _POINT3DFLOAT *points, int rows, int columns, const _POINT3DFLOAT &towardLight, int ambient,
                    int specular, int shininess, Store store) {
    if (rows < 2 || columns < 2)
        return;
    const FullWidth scope;
    const Vector light = vectorOf(towardLight);
    const Vector sum = {light.x, light.y, static_cast<float>(Real{light.z} + 1)};
    const Vector half = quotient(sum, lengthOf(sum));
    for (Number row = 0; row < rows; ++row)
        for (Number column = 0; column < columns; ++column) {
            const Vector normal = vertexNormal(points, rows, columns, row, column);
            const Real diffuse = dot(light, normal) * 256;
            Real shine = dot(half, normal);
            for (int i = 0; i < shininess; ++i)
                shine = shine > 0 ? shine * shine : shine;
            store(row * columns + column, int32(Number{diffuse < 0 ? 0 : truncated(diffuse)} + ambient),
                  shine > 0 ? truncated(specular * shine) : 0);
        }
}

} // namespace plain

#endif
