#include <q_Mur.h>

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace {

using Grid = std::vector<_POINT3DFLOAT>;

/// A grid with a fence of one point behind it.
Grid emptyGrid(int columns, int rows) {
    return Grid(static_cast<std::size_t>(columns * rows + 1), {7, 7, 7, 42});
}

TEST(Flat3D, a_sheet_is_centred_on_the_origin) {
    Grid grid = emptyGrid(2, 2);
    Flat3D(grid.data(), 2, 2, 1, 0, 0, 0, 0, 0, 0, 1000000, 100, 100);
    const float corners[4][2] = {{-50, -50}, {50, -50}, {-50, 50}, {50, 50}};
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_NEAR(grid[i].x, corners[i][0], 0.01);
        EXPECT_NEAR(grid[i].y, corners[i][1], 0.01);
        EXPECT_EQ(grid[i].z, 0);
        EXPECT_EQ(grid[i].w, 42);
    }
    EXPECT_EQ(grid[4].x, 7);
}

TEST(Flat3D, an_odd_width_lies_half_a_unit_off_the_centre) {
    // Halved toward zero.
    Grid grid = emptyGrid(2, 2);
    Flat3D(grid.data(), 2, 2, 1, 0, 0, 0, 0, 0, 0, 1000, 101, 100);
    EXPECT_EQ(grid[0].x, -50);
    EXPECT_EQ(grid[1].x, 51);
    EXPECT_EQ(grid[0].y, -50);
    EXPECT_EQ(grid[2].y, 50);
    Flat3D(grid.data(), 2, 2, 1, 0, 0, 0, 0, 0, 0, 1000, -101, 100);
    EXPECT_EQ(grid[0].x, 50);
    EXPECT_EQ(grid[1].x, -51);
}

TEST(Flat3D, no_rows_or_columns_write_nothing) {
    for (const auto &[columns, rows] : {std::pair(0, 3), std::pair(3, 0), std::pair(-2, 3), std::pair(3, -2)}) {
        Grid grid = emptyGrid(3, 3);
        Flat3D(grid.data(), columns, rows, 1, 0, 0, 0, 0, 0, 0, 1000, 100, 100);
        Post3D(grid.data(), columns, rows, 1, 0, 0, 0, 0, 0, 0, 1000, 100, 100);
        Interpolate3DPoint(grid.data(), grid.data(), grid.data(), columns, rows, 2);
        for (const _POINT3DFLOAT &point : grid)
            EXPECT_EQ(point.x, 7);
    }
}

TEST(Flat3D, a_single_column_has_no_finite_step) {
    Grid grid = emptyGrid(1, 2);
    Flat3D(grid.data(), 1, 2, 1, 0, 0, 0, 0, 0, 0, 1000, 100, 100);
    EXPECT_TRUE(std::isnan(grid[0].x));
    EXPECT_TRUE(std::isnan(grid[1].x));
    EXPECT_EQ(grid[2].x, 7);
}

TEST(Post3D, the_first_and_last_column_meet_at_x_0_in_front) {
    Grid grid = emptyGrid(5, 2);
    Post3D(grid.data(), 5, 2, 0.5F, 0, 0, 0, 0, 0, 0, 1000000, 12345, 60);
    EXPECT_EQ(grid[0].x, 0);
    EXPECT_EQ(grid[0].z, 90);
    EXPECT_NEAR(grid[0].y, -15, 0.01);
    EXPECT_NEAR(grid[5].y, 15, 0.01);
    EXPECT_NEAR(grid[1].x, -90, 0.02) << "the columns run toward negative x first";
    EXPECT_NEAR(grid[1].z, 0, 0.001);
    EXPECT_NEAR(grid[2].z, -90, 0.001);
    EXPECT_NEAR(grid[3].x, 90, 0.02);
    EXPECT_NEAR(grid[4].x, 0, 0.001);
    EXPECT_NEAR(grid[4].z, 90, 0.001);
    EXPECT_EQ(grid[9].w, 42);
    EXPECT_EQ(grid[10].x, 7);
}

TEST(Interpolate3DPoint, gives_both_ends_and_goes_beyond_them) {
    Grid a = {{1, 2, 3, 42}};
    Grid b = {{5, -6, 3, 43}};
    Grid out = {{0, 0, 0, 44}};
    const auto at = [&](float t) {
        Interpolate3DPoint(out.data(), a.data(), b.data(), 1, 1, t);
        return out[0];
    };
    EXPECT_EQ(at(0).x, 1);
    EXPECT_EQ(at(0).y, 2);
    EXPECT_EQ(at(1).x, 5);
    EXPECT_EQ(at(1).y, -6);
    EXPECT_EQ(at(2).x, 9);
    EXPECT_EQ(at(-0.5F).y, 6);
    EXPECT_EQ(at(0.3F).z, 3);
    EXPECT_EQ(out[0].w, 44);
    Interpolate3DPoint(a.data(), a.data(), b.data(), 1, 1, 0.5F);
    EXPECT_EQ(a[0].x, 3) << "in place";
    EXPECT_EQ(a[0].w, 42);
}

} // namespace
