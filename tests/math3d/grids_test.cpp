#include "full_width.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace {

using test::anyAngle;
using test::anyFloat;
using test::anyPoint;
using test::callAtAnyPrecision;
using test::Case;
using test::expectEqualPoints;
using test::forEachCase;
using test::Real;

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
    Grid grid = emptyGrid(2, 2);
    Flat3D(grid.data(), 2, 2, 1, 0, 0, 0, 0, 0, 0, 1000, 101, 100);
    EXPECT_EQ(grid[0].x, -50);
    EXPECT_EQ(grid[1].x, 51);
    EXPECT_EQ(grid[0].y, -50);
    EXPECT_EQ(grid[2].y, 50);
}

TEST(Flat3D, a_negative_odd_width_is_halved_toward_zero) {
    Grid grid = emptyGrid(2, 2);
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

TEST(Post3D, the_unused_width_is_not_read) {
    Grid one = emptyGrid(7, 4);
    Grid other = one;
    Post3D(one.data(), 7, 4, 1.5F, 0.1F, 0.2F, 0.3F, 10, 20, 30, 400, 0, 99);
    Post3D(other.data(), 7, 4, 1.5F, 0.1F, 0.2F, 0.3F, 10, 20, 30, 400, -77777, 99);
    for (std::size_t i = 0; i < one.size(); ++i) {
        EXPECT_EQ(one[i].x, other[i].x);
        EXPECT_EQ(one[i].y, other[i].y);
        EXPECT_EQ(one[i].z, other[i].z);
    }
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

/// Arguments that both grid makers share.
struct Scene {
    int columns;
    int rows;
    float scale;
    float angles[3];
    int offsets[3];
    int distance;
    int width;
    int height;

    explicit Scene(test::Random &random)
        : columns(random.between(2, 6)), rows(random.between(2, 6)),
          scale(anyFloat(random, 2)), angles{anyAngle(random), anyAngle(random), anyAngle(random)},
          offsets{random.between(-300, 300), random.between(-300, 300), random.between(-300, 300)},
          distance(random.between(10, 1000)), width(random.between(-20, 500)), height(random.between(-20, 500)) {}

    void place(_POINT3DFLOAT &point) const {
        fMapping3D(&point.x, &point.y, &point.z, angles[0], angles[1], angles[2], offsets[0], offsets[1], offsets[2],
                   distance);
    }
};

float naiveStep(Real length, int count) {
    return qmur::atFullWidth([=] { return static_cast<float>(length / (count - 1)); });
}

float naivePlace(int index, float step, int half, float scale) {
    return qmur::atFullWidth([=] { return static_cast<float>((index * static_cast<Real>(step) - half) * scale); });
}

template <class Make, class Point>
void checkGrid(const char *name, Make make, Point naivePoint) {
    forEachCase(
        name,
        [&](Case &c) {
            const Scene scene(c.random);
            Grid grid = emptyGrid(scene.columns, scene.rows);
            callAtAnyPrecision(c, [&] { make(grid.data(), scene); });
            for (int row = 0; row < scene.rows; ++row)
                for (int column = 0; column < scene.columns; ++column) {
                    _POINT3DFLOAT expected = naivePoint(scene, row, column);
                    scene.place(expected);
                    expectEqualPoints(c, grid[static_cast<std::size_t>(row * scene.columns + column)], expected);
                }
            c.expectEqual(grid.back().x, 7.0F);
        },
        4000);
}

TEST(Flat3D, agrees_with_a_naive_sheet) {
    checkGrid(
        "Flat3D",
        [](_POINT3DFLOAT *grid, const Scene &s) {
            Flat3D(grid, s.columns, s.rows, s.scale, s.angles[0], s.angles[1], s.angles[2], s.offsets[0], s.offsets[1],
                   s.offsets[2], s.distance, s.width, s.height);
        },
        [](const Scene &s, int row, int column) {
            return _POINT3DFLOAT{naivePlace(column, naiveStep(s.width, s.columns), s.width / 2, s.scale),
                                 naivePlace(row, naiveStep(s.height, s.rows), s.height / 2, s.scale), 0, 0};
        });
}

TEST(Post3D, agrees_with_a_naive_cylinder) {
    checkGrid(
        "Post3D",
        [](_POINT3DFLOAT *grid, const Scene &s) {
            Post3D(grid, s.columns, s.rows, s.scale, s.angles[0], s.angles[1], s.angles[2], s.offsets[0], s.offsets[1],
                   s.offsets[2], s.distance, s.width, s.height);
        },
        [](const Scene &s, int row, int column) {
            _POINT3DFLOAT point = {0, naivePlace(row, naiveStep(s.height, s.rows), s.height / 2, s.scale),
                                   s.scale * 180.0F, 0};
            const float step = naiveStep(6.2831855F, s.columns);
            fRotate3DByY(&point.x, &point.z, static_cast<float>(column) * step);
            return point;
        });
}

TEST(Interpolate3DPoint, agrees_with_a_naive_blend) {
    forEachCase("Interpolate3DPoint", [](Case &c) {
        const int columns = c.random.between(1, 3);
        const int rows = c.random.between(1, 3);
        Grid a = emptyGrid(columns, rows);
        Grid b = a;
        Grid out = a;
        for (std::size_t i = 0; i + 1 < a.size(); ++i) {
            a[i] = anyPoint(c.random);
            b[i] = anyPoint(c.random);
        }
        const float t = anyFloat(c.random, 2);
        callAtAnyPrecision(c, [&] { Interpolate3DPoint(out.data(), a.data(), b.data(), columns, rows, t); });
        const auto blend = [t](float p, float q) {
            return qmur::atFullWidth([=] {
                const Real difference = static_cast<Real>(q) - static_cast<Real>(p);
                return static_cast<float>(difference * t + p);
            });
        };
        for (std::size_t i = 0; i + 1 < a.size(); ++i)
            expectEqualPoints(c, out[i], {blend(a[i].x, b[i].x), blend(a[i].y, b[i].y), blend(a[i].z, b[i].z), 0});
        c.expectEqual(out.back().x, 7.0F);
    });
}

} // namespace
