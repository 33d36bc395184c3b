#include "host.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace {

using test::Canvas;
using test::Surface;
using test::Way;

struct Triangle {
    _POINT3DFLOAT points[3];
    q_ulong colours[3];
};

void draw(Canvas &canvas, tagRECT clip, Triangle t, Way way, int opacity = 0) {
    auto &[p, c] = t;
    const int pitch = canvas.picture.pitch();
    if (way == Way::draw)
        VKD_Render_Tri(canvas.data, canvas.pixels(), &clip, pitch, &p[0], &p[1], &p[2], &c[0], &c[1], &c[2]);
    else if (way == Way::blend)
        VKD_Render_Tri(canvas.data, canvas.pixels(), &clip, pitch, &p[0], &p[1], &p[2], &c[0], &c[1], &c[2], opacity);
    else if (way == Way::mix)
        VKD_Render_Tri_Alpha(canvas.data, canvas.pixels(), &clip, pitch, &p[0], &p[1], &p[2], &c[0], &c[1], &c[2]);
    else
        VKD_Render_Tri_Add(canvas.pixels(), &clip, canvas.pitch(), &p[0], &p[1], &p[2], &c[0], &c[1], &c[2]);
}

Triangle plain(_POINT3DFLOAT p1, _POINT3DFLOAT p2, _POINT3DFLOAT p3, q_ulong colour) {
    return {{p1, p2, p3}, {colour, colour, colour}};
}

/// First and last painted column of a row; {0, -1} for none.
std::pair<int, int> paintedColumns(const Surface &picture, int y) {
    int first = 0;
    int last = -1;
    for (int x = 0; x < picture.width(); ++x)
        if (picture.at(x, y) != 0) {
            if (last < 0)
                first = x;
            last = x;
        }
    return {first, last};
}

using Columns = std::pair<int, int>;

TEST(VKD_Render_Tri, covers_from_the_floor_of_the_left_edge_up_to_that_of_the_right) {
    Canvas canvas(16, 12);
    draw(canvas, canvas.picture.rect(), plain({2, 1, 0, 0}, {2, 9, 0, 0}, {10, 9, 0, 0}, 9), Way::draw);
    for (int y = 0; y < 12; ++y) {
        const Columns expected = y > 1 && y < 9 ? Columns(2, y) : Columns(0, -1);
        EXPECT_EQ(paintedColumns(canvas.picture, y), expected) << y;
    }
}

TEST(VKD_Render_Tri, a_flat_top_is_the_same_whichever_of_its_points_comes_first) {
    Triangle triangle = {{{2, 1, 5, 0}, {10, 1, 9, 0}, {6, 7, 0, 0}}, {0x100000, 0x001000, 0x000010}};
    Canvas canvas(16, 8);
    draw(canvas, canvas.picture.rect(), triangle, Way::draw);
    EXPECT_EQ(paintedColumns(canvas.picture, 1), Columns(2, 9));
    EXPECT_EQ(canvas.picture.at(2, 1), 0x100000u);
    EXPECT_EQ(paintedColumns(canvas.picture, 7), Columns(0, -1));
    std::swap(triangle.points[0], triangle.points[1]);
    std::swap(triangle.colours[0], triangle.colours[1]);
    Canvas swapped(16, 8);
    draw(swapped, swapped.picture.rect(), triangle, Way::draw);
    EXPECT_EQ(swapped.picture.differenceFrom(canvas.picture), "");
    EXPECT_EQ(swapped.depths().differenceFrom(canvas.depths()), "");
}

TEST(VKD_Render_Tri, points_that_end_on_one_row_make_a_flat_top) {
    Canvas canvas(16, 24);
    draw(canvas, canvas.picture.rect(), plain({3, 10.9F, 0, 0}, {11, 10.1F, 0, 0}, {3, 20, 0, 0}, 9), Way::draw);
    EXPECT_EQ(paintedColumns(canvas.picture, 9), Columns(0, -1));
    EXPECT_EQ(paintedColumns(canvas.picture, 10), Columns(3, 10));
    EXPECT_EQ(paintedColumns(canvas.picture, 18), Columns(3, 3));
    EXPECT_EQ(paintedColumns(canvas.picture, 19), Columns(0, -1)) << "both edges in column 3";
}

TEST(VKD_Render_Tri, coordinates_are_truncated_toward_zero) {
    Canvas canvas(8, 8);
    draw(canvas, canvas.picture.rect(), plain({-0.9F, -0.9F, -0.9F, 0}, {-0.5F, 4.9F, 0, 0}, {5.9F, -0.1F, 0.9F, 0}, 9),
         Way::draw);
    Canvas whole(8, 8);
    draw(whole, whole.picture.rect(), plain({0, 0, 0, 0}, {0, 4, 0, 0}, {5, 0, 0, 0}, 9), Way::draw);
    EXPECT_EQ(canvas.picture.differenceFrom(whole.picture), "");
    EXPECT_EQ(canvas.depths().differenceFrom(whole.depths()), "");
    EXPECT_EQ(paintedColumns(canvas.picture, 0), Columns(0, 4));
    EXPECT_EQ(canvas.depth(0, 0), 0);
}

TEST(VKD_Render_Tri, a_middle_point_on_the_long_edge_draws_nothing) {
    Canvas canvas(8, 8);
    draw(canvas, canvas.picture.rect(), plain({1, 1, 0, 0}, {3, 3, 0, 0}, {6, 6, 0, 0}, 9), Way::draw);
    draw(canvas, canvas.picture.rect(), plain({1, 4, 0, 0}, {7, 4, 0, 0}, {3, 4, 0, 0}, 9), Way::draw);
    EXPECT_EQ(canvas.picture.differenceFrom(Surface(8, 8)), "");
}

TEST(VKD_Render_Tri, triangles_beside_the_clip_draw_nothing) {
    for (const Way way : {Way::draw, Way::blend, Way::mix, Way::add}) {
        Canvas canvas(8, 8);
        for (const float offset : {-30.0F, 30.0F}) {
            draw(canvas, {2, 2, 6, 6}, plain({offset, 0, 0, 0}, {offset, 8, 0, 0}, {offset + 8, 4, 0, 0}, 9), way, 9);
            draw(canvas, {2, 2, 6, 6}, plain({0, offset, 0, 0}, {8, offset, 0, 0}, {4, offset + 8, 0, 0}, 9), way, 9);
        }
        // The lower end on the clip's first row, which is not drawn.
        draw(canvas, {2, 2, 6, 6}, plain({2, -4, 0, 0}, {6, -4, 0, 0}, {4, 2, 0, 0}, 9), way, 9);
        EXPECT_EQ(canvas.picture.differenceFrom(Surface(8, 8)), "");
    }
}

TEST(VKD_Render_Tri, red_is_taken_with_the_top_byte) {
    Canvas canvas(4, 4);
    draw(canvas, canvas.picture.rect(), plain({0, 0, 0, 0}, {0, 4, 0, 0}, {4, 0, 0, 0}, 0x01FF0000), Way::draw);
    EXPECT_EQ(canvas.picture.at(0, 0), 0x01FF0000u);
}

TEST(VKD_Render_Tri, half_opacity_draws_through_nearer_pixels) {
    for (const int opacity : {127, 128}) {
        Canvas canvas(4, 4);
        canvas.depth(0, 0) = -50;
        draw(canvas, canvas.picture.rect(), plain({0, 0, 0, 0}, {0, 4, 0, 0}, {4, 0, 0, 0}, 0x204060), Way::blend,
             opacity);
        EXPECT_EQ(canvas.picture.at(0, 0), opacity == 128 ? 0x102030u : 0u);
        EXPECT_EQ(canvas.depth(0, 0), -50);
        EXPECT_EQ(canvas.depth(1, 0), opacity == 128 ? 0x7FFF : 0);
    }
}

TEST(VKD_Render_Tri, both_senses_are_drawn_alike) {
    Canvas clockwise(16, 16);
    Canvas other(16, 16);
    Triangle t = {{{1, 2, 10, 0}, {14, 5, 90, 0}, {6, 15, 40, 0}}, {0xFF0000, 0x00FF00, 0x0000FF}};
    draw(clockwise, clockwise.picture.rect(), t, Way::draw);
    std::swap(t.points[1], t.points[2]);
    std::swap(t.colours[1], t.colours[2]);
    draw(other, other.picture.rect(), t, Way::draw);
    EXPECT_EQ(clockwise.picture.differenceFrom(other.picture), "");
    EXPECT_EQ(clockwise.depths().differenceFrom(other.depths()), "");
    EXPECT_NE(clockwise.picture.at(6, 8), 0u);
}

/// A rectangle cut into cells along jittered points, and each cell into two triangles along a random diagonal.
std::vector<Triangle> randomMesh(test::Random &random, int columns, int rows, int cell, q_ulong colour) {
    const auto jitter = [&random, cell](int i, int count, int other, int otherCount) {
        // Points on the outline move along it alone, corners not at all.
        const bool fixed = i == 0 || i == count;
        const bool onOutline = other == 0 || other == otherCount;
        const float fraction = random.realBetween(0, 0.9F);
        const int most = fixed ? 0 : cell / 3;
        return static_cast<float>(i * cell + random.between(-most, most)) + (fixed || onOutline ? 0 : fraction);
    };
    std::vector<_POINT3DFLOAT> points;
    for (int row = 0; row <= rows; ++row)
        for (int column = 0; column <= columns; ++column) {
            const float x = jitter(column, columns, row, rows);
            const float y = jitter(row, rows, column, columns);
            points.push_back({x, y, static_cast<float>(random.between(0, 1000)), 0});
        }
    std::vector<Triangle> mesh;
    for (int row = 0; row < rows; ++row)
        for (int column = 0; column < columns; ++column) {
            const auto corner = [&](int right, int down) {
                return points[static_cast<std::size_t>((row + down) * (columns + 1) + column + right)];
            };
            Triangle halves[2];
            if (random.oneIn(2)) {
                halves[0] = plain(corner(0, 0), corner(1, 0), corner(0, 1), colour);
                halves[1] = plain(corner(1, 0), corner(0, 1), corner(1, 1), colour);
            } else {
                halves[0] = plain(corner(0, 0), corner(1, 0), corner(1, 1), colour);
                halves[1] = plain(corner(0, 0), corner(0, 1), corner(1, 1), colour);
            }
            for (Triangle &triangle : halves) {
                std::rotate(triangle.points, triangle.points + random.between(0, 2), triangle.points + 3);
                if (random.oneIn(2))
                    std::swap(triangle.points[0], triangle.points[1]);
                mesh.push_back(triangle);
            }
        }
    return mesh;
}

TEST(VKD_Render_Tri_Add, meshes_of_triangles_cover_each_pixel_exactly_once) {
    for (int seed = 0; seed < 300; ++seed) {
        test::Random random(static_cast<std::uint64_t>(seed));
        const int columns = random.between(1, 6);
        const int rows = random.between(1, 6);
        const int cell = random.between(3, 14);
        Canvas canvas(columns * cell + 4, rows * cell + 4);
        const tagRECT clip = {-4, -4, canvas.picture.width(), canvas.picture.height()};
        for (const Triangle &triangle : randomMesh(random, columns, rows, cell, 1))
            draw(canvas, clip, triangle, Way::add);
        for (int y = -4; y < canvas.picture.height(); ++y)
            for (int x = -4; x < canvas.picture.width(); ++x) {
                const bool inside = x >= 0 && x < columns * cell && y >= 0 && y < rows * cell;
                ASSERT_EQ(canvas.picture.at(x, y), inside ? 1u : 0u) << "seed " << seed << " at " << x << ", " << y;
            }
    }
}

TEST(VKD_Render_Tri, a_turning_cube_never_shows_a_hole) {
    constexpr int size = 64;
    constexpr int faces[6][4] = {{0, 1, 3, 2}, {4, 5, 7, 6}, {0, 1, 5, 4}, {2, 3, 7, 6}, {0, 2, 6, 4}, {1, 3, 7, 5}};
    for (int degrees = 0; degrees < 360; ++degrees) {
        Canvas canvas(size, size);
        VKD_glViewPort(canvas.data, 0, 0, size, size);
        VKD_gluPerspective(canvas.data, 60, 1, 10, 1000);
        VKD_glRotatef(canvas.data, static_cast<float>(degrees), 1, 2, 3);
        VKD_glTranslatef(canvas.data, 0, 0, 20);
        _POINT3DFLOAT corners[8];
        for (int i = 0; i < 8; ++i)
            corners[i] = {i & 1 ? 16.0F : -16.0F, i & 2 ? 16.0F : -16.0F, i & 4 ? 16.0F : -16.0F, 0};
        VKD_Mapping3Dto2D(canvas.data, corners, 1, 8);
        for (int face = 0; face < 6; ++face) {
            const auto &[a, b, c, d] = faces[face];
            const auto colour = static_cast<q_ulong>(face + 1);
            draw(canvas, canvas.picture.rect(), plain(corners[a], corners[b], corners[c], colour), Way::draw);
            draw(canvas, canvas.picture.rect(), plain(corners[a], corners[d], corners[c], colour), Way::draw);
        }
        int rowsPainted = 0;
        int lastRow = 0;
        for (int y = 0; y < size; ++y) {
            const auto [first, last] = paintedColumns(canvas.picture, y);
            for (int x = first; x <= last; ++x)
                ASSERT_NE(canvas.picture.at(x, y), 0u) << degrees << " degrees at " << x << ", " << y;
            if (last >= first) {
                ASSERT_TRUE(rowsPainted == 0 || lastRow == y - 1) << degrees << " degrees above row " << y;
                lastRow = y;
                ++rowsPainted;
            }
        }
        ASSERT_GT(rowsPainted, 20);
    }
}

} // namespace
