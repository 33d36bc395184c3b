#include "host.h"
#include "support/screen.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <utility>

namespace {

using test::painted;
using test::Screen;
using test::Surface;
using test::Way;

struct Triangle {
    _POINT3DFLOAT points[3];
    q_ulong colours[3];
};

void draw(Screen &screen, tagRECT clip, Triangle t, Way way = Way::draw, int opacity = 0) {
    auto &[p, c] = t;
    const int pitch = screen.surface.pitch();
    if (way == Way::draw)
        VKD_Render_Tri(&screen.pipeline, screen.surface.pixels(), &clip, pitch, &p[0], &p[1], &p[2], &c[0], &c[1],
                       &c[2]);
    else if (way == Way::blend)
        VKD_Render_Tri(&screen.pipeline, screen.surface.pixels(), &clip, pitch, &p[0], &p[1], &p[2], &c[0], &c[1],
                       &c[2], opacity);
    else if (way == Way::mix)
        VKD_Render_Tri_Alpha(&screen.pipeline, screen.surface.pixels(), &clip, pitch, &p[0], &p[1], &p[2], &c[0], &c[1],
                             &c[2]);
    else
        VKD_Render_Tri_Add(screen.surface.pixels(), &clip, screen.pitch(), &p[0], &p[1], &p[2], &c[0], &c[1], &c[2]);
}

/// Without a clip.
void draw(Screen &screen, const Triangle &triangle, Way way = Way::draw, int opacity = 0) {
    draw(screen, screen.surface.rect(), triangle, way, opacity);
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
    Screen screen(16, 12, 0);
    draw(screen, plain({2, 1, 0, 0}, {2, 9, 0, 0}, {10, 9, 0, 0}, 9));
    const Surface expected = painted(Surface(16, 12), {2, 1, 16, 9}, [](int x, int y) { return x <= y ? 9 : 0; });
    EXPECT_EQ(screen.surface.differenceFrom(expected), "");
}

TEST(VKD_Render_Tri, the_order_of_points_does_not_matter) {
    const Triangle flatTop = {{{2, 1, 5, 0}, {10, 1, 9, 0}, {6, 7, 0, 0}}, {0x100000, 0x001000, 0x000010}};
    const Triangle slanted = {{{1, 2, 10, 0}, {14, 5, 90, 0}, {6, 15, 40, 0}}, {0xFF0000, 0x00FF00, 0x0000FF}};
    for (const auto &[points, colours] : {flatTop, slanted}) {
        Screen screen(16, 16, 0);
        draw(screen, {{points[0], points[1], points[2]}, {colours[0], colours[1], colours[2]}});
        int order[] = {0, 1, 2};
        while (std::next_permutation(order, order + 3)) {
            const auto [a, b, c] = order;
            Screen shuffled(16, 16, 0);
            draw(shuffled, {{points[a], points[b], points[c]}, {colours[a], colours[b], colours[c]}});
            EXPECT_EQ(shuffled.surface.differenceFrom(screen.surface), "");
            EXPECT_TRUE(shuffled.depths == screen.depths);
        }
    }
    Screen screen(16, 16, 0);
    draw(screen, flatTop);
    EXPECT_EQ(paintedColumns(screen.surface, 1), Columns(2, 9));
    EXPECT_EQ(screen.surface.at(2, 1), 0x100000u);
    EXPECT_EQ(paintedColumns(screen.surface, 7), Columns(0, -1));
}

TEST(VKD_Render_Tri, points_that_end_on_one_row_make_a_flat_top) {
    Screen screen(16, 24, 0);
    draw(screen, plain({3, 10.9F, 0, 0}, {11, 10.1F, 0, 0}, {3, 20, 0, 0}, 9));
    EXPECT_EQ(paintedColumns(screen.surface, 9), Columns(0, -1));
    EXPECT_EQ(paintedColumns(screen.surface, 10), Columns(3, 10));
    EXPECT_EQ(paintedColumns(screen.surface, 18), Columns(3, 3));
    EXPECT_EQ(paintedColumns(screen.surface, 19), Columns(0, -1)) << "both edges in column 3";
}

TEST(VKD_Render_Tri, coordinates_are_truncated_toward_zero) {
    Screen screen(8, 8, 0);
    draw(screen, plain({-0.9F, -0.9F, -0.9F, 0}, {-0.5F, 4.9F, 0, 0}, {5.9F, -0.1F, 0.9F, 0}, 9));
    Screen whole(8, 8, 0);
    draw(whole, plain({0, 0, 0, 0}, {0, 4, 0, 0}, {5, 0, 0, 0}, 9));
    EXPECT_EQ(screen.surface.differenceFrom(whole.surface), "");
    EXPECT_TRUE(screen.depths == whole.depths);
    EXPECT_EQ(paintedColumns(screen.surface, 0), Columns(0, 4));
    EXPECT_EQ(screen.depths.at(0, 0), 0);
}

TEST(VKD_Render_Tri, a_middle_point_on_the_long_edge_draws_nothing) {
    Screen screen(8, 8, 0);
    draw(screen, plain({1, 1, 0, 0}, {3, 3, 0, 0}, {6, 6, 0, 0}, 9));
    draw(screen, plain({1, 4, 0, 0}, {7, 4, 0, 0}, {3, 4, 0, 0}, 9));
    EXPECT_EQ(screen.surface.differenceFrom(Surface(8, 8)), "");
}

TEST(VKD_Render_Tri, triangles_beside_the_clip_draw_nothing) {
    const tagRECT clip = {2, 2, 6, 6};
    for (const Way way : {Way::draw, Way::blend, Way::mix, Way::add}) {
        Screen screen(8, 8, 0);
        for (const float offset : {-30.0F, 30.0F}) {
            draw(screen, clip, plain({offset, 0, 0, 0}, {offset, 8, 0, 0}, {offset + 8, 4, 0, 0}, 9), way, 9);
            draw(screen, clip, plain({0, offset, 0, 0}, {8, offset, 0, 0}, {4, offset + 8, 0, 0}, 9), way, 9);
        }
        // The lower end on the clip's first row, which is not drawn.
        draw(screen, clip, plain({2, -4, 0, 0}, {6, -4, 0, 0}, {4, 2, 0, 0}, 9), way, 9);
        EXPECT_EQ(screen.surface.differenceFrom(Surface(8, 8)), "");
    }
}

TEST(VKD_Render_Tri, red_is_taken_with_the_top_byte) {
    Screen screen(4, 4, 0);
    draw(screen, plain({0, 0, 0, 0}, {0, 4, 0, 0}, {4, 0, 0, 0}, 0x01FF0000));
    EXPECT_EQ(screen.surface.at(0, 0), 0x01FF0000u);
}

TEST(VKD_Render_Tri, half_opacity_draws_through_nearer_pixels) {
    for (const int opacity : {127, 128}) {
        Screen screen(4, 4, 0);
        screen.depths.at(0, 0) = -50;
        draw(screen, plain({0, 0, 0, 0}, {0, 4, 0, 0}, {4, 0, 0, 0}, 0x204060), Way::blend, opacity);
        EXPECT_EQ(screen.surface.at(0, 0), opacity == 128 ? 0x102030u : 0u);
        EXPECT_EQ(screen.depths.at(0, 0), -50);
        EXPECT_EQ(screen.depths.at(1, 0), opacity == 128 ? 0x7FFF : 0);
    }
}

TEST(VKD_Render_Tri_Add, triangles_that_share_edges_cover_each_pixel_exactly_once) {
    // Cells of jittered points, each cut along a random diagonal; points on the outline move along it alone.
    for (int seed = 0; seed < 100; ++seed) {
        test::Random random(static_cast<std::uint64_t>(seed));
        constexpr int cells = 4;
        const int cell = random.between(3, 14);
        const auto jittered = [&](int i, int other) {
            const int jitter = i % cells == 0 ? 0 : random.between(-cell / 3, cell / 3);
            const float fraction = i % cells == 0 || other % cells == 0 ? 0 : random.realBetween(0, 0.9F);
            return static_cast<float>(i * cell + jitter) + fraction;
        };
        _POINT3DFLOAT grid[cells + 1][cells + 1];
        for (int row = 0; row <= cells; ++row)
            for (int column = 0; column <= cells; ++column)
                grid[row][column] = {jittered(column, row), jittered(row, column), 0, 0};
        Screen screen(cells * cell + 4, cells * cell + 4, 0);
        const auto add = [&](const _POINT3DFLOAT &a, const _POINT3DFLOAT &b, const _POINT3DFLOAT &c) {
            draw(screen, {-4, -4, cells * cell + 4, cells * cell + 4},
                 random.oneIn(2) ? plain(a, b, c, 1) : plain(b, a, c, 1), Way::add);
        };
        for (int row = 0; row < cells; ++row)
            for (int column = 0; column < cells; ++column) {
                const _POINT3DFLOAT corners[4] = {grid[row][column], grid[row][column + 1], grid[row + 1][column + 1],
                                                  grid[row + 1][column]};
                const std::size_t first = random.oneIn(2) ? 0 : 1;
                add(corners[first], corners[first + 1], corners[first + 2]);
                add(corners[first], corners[(first + 3) % 4], corners[first + 2]);
            }
        const Surface once =
            painted(Surface(cells * cell + 4, cells * cell + 4), {0, 0, cells * cell, cells * cell}, 1);
        ASSERT_EQ(screen.surface.differenceFrom(once), "") << "seed " << seed;
    }
}

} // namespace
