/// \file
/// Surfaces, triangle by triangle.
#ifndef Q_MUR_TESTS_PIPELINE_NAIVE_SURFACE_H
#define Q_MUR_TESTS_PIPELINE_NAIVE_SURFACE_H

#include "mesh.h"

#include <array>
#include <utility>
#include <vector>

namespace naive::meshes {

using test::Mesh;
using test::Surface;
using test::Way;

/// The triangles of a grid, in the order in which they are drawn.
inline std::vector<std::array<std::size_t, 3>> trianglesOf(const Mesh &mesh) {
    std::vector<std::array<std::size_t, 3>> triangles;
    const int R = mesh.rows - 1;
    const int K = mesh.columns - 1;
    const auto add = [&](std::pair<int, int> a, std::pair<int, int> b, std::pair<int, int> c) {
        triangles.push_back(
            {mesh.index(a.first, a.second), mesh.index(b.first, b.second), mesh.index(c.first, c.second)});
    };
    for (int r = 0; r <= mesh.rows - 2; ++r)
        for (int c = 0; c <= mesh.columns - 2; ++c) {
            add({r, c}, {r, c + 1}, {r + 1, c});
            add({r, c + 1}, {r + 1, c}, {r + 1, c + 1});
        }
    if (mesh.wrapRows == 1)
        for (int c = 0; c <= mesh.columns - 2; ++c) {
            add({R, c}, {R, c + 1}, {0, c});
            add({R, c + 1}, {0, c}, {0, c + 1});
        }
    if (mesh.wrapColumns == 1)
        for (int r = 0; r <= mesh.rows - 2; ++r) {
            add({r, K}, {r, 0}, {r + 1, K});
            add({r, 0}, {r + 1, K}, {r + 1, 0});
        }
    if (mesh.wrapRows == 1 && mesh.wrapColumns == 1) {
        add({0, 0}, {0, K}, {R, 0});
        add({0, K}, {R, 0}, {R, K});
    }
    return triangles;
}

inline void naiveSurface(Surface &picture, Surface &depths, const tagRECT &clip, const Mesh &mesh,
                         const std::vector<q_ulong> &colours, int nearLimit, Way way, int opacity) {
    for (const auto &triangle : trianglesOf(mesh)) {
        _POINT3DFLOAT points[3];
        q_ulong corners[3];
        for (std::size_t k = 0; k < 3; ++k) {
            points[k] = mesh.points[triangle[k]];
            corners[k] = colours[triangle[k]];
        }
        naiveTriangle(picture, depths, clip, points, corners, nearLimit, way, opacity);
    }
}

} // namespace naive::meshes

#endif
