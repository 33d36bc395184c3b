#include <q_Mur.h>

#include <gtest/gtest.h>

#include <vector>

namespace {

/// The two arrays of a grid's vertices.
struct VertexLights {
    std::vector<int> add;
    std::vector<int> mul;
};

using Points = std::vector<_POINT3DFLOAT>;

VertexLights lights(Points points, int rows, int cols, _POINT3DFLOAT light, int ambient, int specular, int shininess) {
    VertexLights found = {std::vector<int>(points.size(), -7), std::vector<int>(points.size(), -7)};
    _PRIVATE_QM3D_DATA data = {};
    data.vertexArray0 = found.add.data();
    data.vertexArray1 = found.mul.data();
    FindLuminenceTerm(&data, points.data(), rows, cols, &light, ambient, specular, shininess);
    return found;
}

/// A grid one unit wide in each direction, its height as a function of row and column.
template <class Height>
Points grid(int rows, int cols, Height height) {
    Points points;
    for (int i = 0; i < rows; ++i)
        for (int j = 0; j < cols; ++j)
            points.push_back({static_cast<float>(j), static_cast<float>(i), height(i, j), 0});
    return points;
}

Points flatGrid(int rows, int cols) {
    return grid(rows, cols, [](int, int) { return 0.0F; });
}

/// A grid of which each column lies 0.75 nearer than the one before it: its normal is (0.6, 0, 0.8).
Points tiltedGrid(int rows, int cols) {
    return grid(rows, cols, [](int, int j) { return -0.75F * static_cast<float>(j); });
}

constexpr _POINT3DFLOAT towardViewer = {0, 0, 1, 0};

TEST(FindLuminenceTerm, the_smallest_grid_has_one_normal_whatever_its_fourth_corner) {
    for (const float fourth : {-1.5F, 0.0F, 100.0F}) {
        Points points = tiltedGrid(2, 2);
        points[3].z = fourth;
        const VertexLights result = lights(points, 2, 2, towardViewer, 0, 0, 0);
        EXPECT_EQ(result.mul, std::vector<int>(4, 204)); // 0.8 * 256 = 204.8
    }
}

TEST(FindLuminenceTerm, a_flat_grid_facing_light_and_viewer_has_all_of_both) {
    const VertexLights result = lights(flatGrid(4, 5), 4, 5, towardViewer, 30, 90, 3);
    EXPECT_EQ(result.mul, std::vector<int>(20, 286));
    EXPECT_EQ(result.add, std::vector<int>(20, 90));
    EXPECT_EQ(lights(flatGrid(3, 3), 3, 3, towardViewer, 0, 0, 2).add, std::vector<int>(9, 0)) << "without specular";
}

TEST(FindLuminenceTerm, a_grid_facing_away_has_ambient_light_alone) {
    Points points = flatGrid(3, 3);
    for (_POINT3DFLOAT &point : points)
        point.x = -point.x;
    const VertexLights result = lights(points, 3, 3, towardViewer, 30, 90, 3);
    EXPECT_EQ(result.mul, std::vector<int>(9, 30));
    EXPECT_EQ(result.add, std::vector<int>(9, 0));
}

TEST(FindLuminenceTerm, shininess_counts_squarings) {
    const auto highlight = [](int shininess) {
        return lights(tiltedGrid(2, 2), 2, 2, towardViewer, 0, 1000, shininess).add[0];
    };
    EXPECT_EQ(highlight(-5), 800);
    EXPECT_EQ(highlight(0), 800);
    EXPECT_EQ(highlight(1), 640);
    EXPECT_EQ(highlight(2), 409); // 0.8 ^ 4 = 0.4096
    EXPECT_EQ(highlight(3), 167); // 0.8 ^ 8 = 0.16777
    EXPECT_EQ(highlight(5), 0);   // 0.8 ^ 32 = 0.00079
}

TEST(FindLuminenceTerm, the_highlight_stands_halfway_between_light_and_viewer) {
    // Light from (0.96, 0, 0.28): halfway to (0, 0, 1) lies (0.96, 0, 1.28) / 1.6 = (0.6, 0, 0.8), the grid's normal.
    const VertexLights result = lights(tiltedGrid(2, 2), 2, 2, {0.96F, 0, 0.28F, 0}, 0, 2560, 4);
    EXPECT_GE(result.add[0], 2559);
    EXPECT_LE(result.add[0], 2560);
    EXPECT_EQ(result.mul[0], 204); // 0.96 * 0.6 + 0.28 * 0.8 = 0.8
}

TEST(FindLuminenceTerm, a_light_that_points_away_from_the_lamp_lights_the_upper_left_of_a_bulge) {
    // Left of and above its middle a bulge comes nearer to the right and downward: the normal is (1, 1, 1) / sqrt(3).
    const auto side = [](float sign) {
        return grid(2, 2, [sign](int i, int j) { return sign * static_cast<float>(i + j); });
    };
    const Points upperLeft = side(-1);
    const Points lowerRight = side(1);
    constexpr int full = 443; // sqrt(3) * 256
    EXPECT_EQ(lights(upperLeft, 2, 2, {1, 1, 1, 0}, 0, 0, 0).mul[0], full);
    EXPECT_EQ(lights(lowerRight, 2, 2, {1, 1, 1, 0}, 0, 0, 0).mul[0], 0);
    EXPECT_EQ(lights(upperLeft, 2, 2, {-1, -1, 1, 0}, 0, 0, 0).mul[0], 0);
    EXPECT_EQ(lights(lowerRight, 2, 2, {-1, -1, 1, 0}, 0, 0, 0).mul[0], full);
    EXPECT_EQ(lights(upperLeft, 2, 2, {-1, -1, -1, 0}, 0, 0, 0).mul[0], 0);
}

TEST(FindLuminenceTerm, where_rows_run_upward_the_light_points_toward_the_lamp) {
    Points upperLeft = grid(2, 2, [](int i, int j) { return static_cast<float>(i - j); });
    for (_POINT3DFLOAT &point : upperLeft)
        point.y = -point.y;
    EXPECT_EQ(lights(upperLeft, 2, 2, {-1, -1, -1, 0}, 0, 255, 0).mul[0], 443);
    EXPECT_EQ(lights(upperLeft, 2, 2, {-1, -1, -1, 0}, 0, 255, 0).add[0], 208) << "255 * sqrt(2 / 3), from the side";
    EXPECT_EQ(lights(upperLeft, 2, 2, {1, 1, 1, 0}, 0, 255, 0).mul[0], 0);
}

TEST(FindLuminenceTerm, nothing_is_clamped_above) {
    const VertexLights result = lights(flatGrid(2, 2), 2, 2, {0, 0, 3, 0}, 10, 1000, 0);
    EXPECT_EQ(result.mul, std::vector<int>(4, 778));
    EXPECT_EQ(result.add, std::vector<int>(4, 1000));
}

TEST(FindLuminenceTerm, an_interior_vertex_takes_the_two_cells_to_its_right) {
    // A flat half and a tilted half, with the fold at the middle column.
    const auto fold = [](bool tiltedOnTheRight) {
        return grid(3, 3, [tiltedOnTheRight](int, int j) {
            return tiltedOnTheRight ? (j == 2 ? -0.75F : 0.0F) : (j == 0 ? 0.75F : 0.0F);
        });
    };
    EXPECT_EQ(lights(fold(true), 3, 3, towardViewer, 0, 0, 0).mul[4], 204);
    EXPECT_EQ(lights(fold(false), 3, 3, towardViewer, 0, 0, 0).mul[4], 256);
    // Up and down both count: a tilt in the lower row alone is halved, (0, 0, 1) and (0.6, 0, 0.8) making 0.9.
    Points points = flatGrid(3, 3);
    points[5].z = -0.75F;
    EXPECT_EQ(lights(points, 3, 3, towardViewer, 0, 0, 0).mul[4], 230);
}

TEST(FindLuminenceTerm, a_border_vertex_takes_both_cells_beside_it_and_darkens_at_a_fold) {
    // Normals (0, 0, 1) and (0.6, 0, 0.8): their mean is not brought back to length 1, so 0.9 * 256 = 230.4.
    const Points points = grid(3, 3, [](int, int j) { return j == 2 ? -0.75F : 0.0F; });
    const std::vector<int> mul = lights(points, 3, 3, towardViewer, 0, 0, 0).mul;
    EXPECT_EQ(mul, (std::vector<int>{256, 230, 204, 256, 204, 204, 256, 230, 204}));
}

TEST(FindLuminenceTerm, what_has_no_direction_gives_no_light_of_its_own) {
    // Halfway between the viewer and a light straight behind there is nothing, and cells without area face nowhere.
    const VertexLights behind = lights(flatGrid(2, 2), 2, 2, {0, 0, -1, 0}, 5, 100, 2);
    EXPECT_EQ(behind.mul, std::vector<int>(4, 5));
    EXPECT_EQ(behind.add, std::vector<int>(4, 0));
    const VertexLights degenerate = lights(Points(9, {1, 2, 3, 0}), 3, 3, towardViewer, 30, 90, 0);
    EXPECT_EQ(degenerate.mul, std::vector<int>(9, 30));
    EXPECT_EQ(degenerate.add, std::vector<int>(9, 0));
}

} // namespace
