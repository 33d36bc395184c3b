#include "mesh.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

using test::Mesh;
using test::painted;
using test::Screen;
using test::Surface;

/// The second colour is not read.
void line(Screen &screen, tagRECT clip, _POINT3D a, _POINT3D b, q_ulong colour) {
    VKD_3D_Line(&screen.pipeline, screen.surface.pixels(), &clip, screen.pitch(), &a, &b, &colour, nullptr);
}
/// Without a clip.
void line(Screen &screen, const _POINT3D &a, const _POINT3D &b, q_ulong colour) {
    line(screen, screen.surface.rect(), a, b, colour);
}

TEST(VKD_3D_Line, the_lower_end_is_not_drawn) {
    for (const bool backward : {false, true}) {
        Screen screen(32, 24, 0);
        line(screen, {backward ? 20 : 10, 10, 5, 0}, {backward ? 10 : 20, 10, 5, 0}, 0xFFFFFF);
        EXPECT_EQ(screen.surface.differenceFrom(painted(Surface(32, 24), {10, 9, 20, 12}, 0xFFFFFF)), "");
        for (int y = 0; y < 24; ++y)
            for (int x = 0; x < 32; ++x)
                EXPECT_EQ(screen.depths.at(x, y), x >= 10 && x < 20 && y >= 9 && y < 13 ? 5 : test::emptyDepth)
                    << "with the fringe of weight 0: " << x << ", " << y;
    }
}

TEST(VKD_3D_Line, a_fringe_pixel_of_weight_0_writes_its_depth_and_clears_the_top_byte) {
    Screen screen(12, 12, 0);
    screen.surface.at(4, 6) = 0xFF123456;
    line(screen, {4, 4, 7, 0}, {8, 4, 7, 0}, 0xABFFFFFF);
    EXPECT_EQ(screen.surface.at(4, 6), 0x123456u);
    EXPECT_EQ(screen.depths.at(4, 6), 7);
    EXPECT_EQ(screen.surface.at(4, 3), 0xFFFFFFu) << "the fringe of full weight has no top byte";
    EXPECT_EQ(screen.surface.at(4, 4), 0xABFFFFFFu) << "the core is the colour's word";
    EXPECT_EQ(screen.surface.at(4, 5), 0xABFFFFFFu);
}

TEST(VKD_3D_Line, a_z_plane_within_the_picture_is_read_and_written_pixel_by_pixel) {
    constexpr int row = 10, depth = 1000;
    constexpr q_ulong colour = 0xABCDEF12;
    test::Random random(79);
    Screen screen(40, 24, 0);
    for (int offset = 300; offset < 1000; ++offset) { // in depths from the picture's first pixel on
        Surface expected = Surface::randomOfSize(random, 40, 24);
        screen.surface = expected;
        auto *const pixels = reinterpret_cast<char *>(expected.pixels());
        for (int x = 3; x < 37; ++x)
            for (const int side : {-1, 2, 0, 1}) {
                const std::ptrdiff_t place = static_cast<std::ptrdiff_t>(row + side) * expected.pitch() + x;
                const short drawn = depth;
                short found = 0;
                std::memcpy(&found, pixels + 2 * (offset + place), sizeof(found));
                if (depth >= found)
                    continue;
                std::memcpy(pixels + 2 * (offset + place), &drawn, sizeof(drawn));
                q_ulong pixel = 0;
                std::memcpy(&pixel, pixels + 4 * place, sizeof(pixel));
                pixel = side == 2 ? pixel & 0xFFFFFF : side == -1 ? colour & 0xFFFFFF : colour;
                std::memcpy(pixels + 4 * place, &pixel, sizeof(pixel));
            }
        screen.pipeline.zBuffer = reinterpret_cast<short *>(screen.surface.pixels()) + offset;
        line(screen, {3, row, depth, 0}, {37, row, depth, 0}, colour);
        ASSERT_EQ(screen.surface.differenceFrom(expected), "") << offset;
    }
}

TEST(VKD_3D_Line, the_fringe_slides_with_the_fraction) {
    Screen screen(16, 16, 0);
    line(screen, {4, 4, 0, 0}, {8, 6, 0, 0}, 0x00FF80);
    // Column 5 stands half a pixel down.
    EXPECT_EQ(screen.surface.at(5, 3), 0x007F40u);
    EXPECT_EQ(screen.surface.at(5, 4), 0x00FF80u);
    EXPECT_EQ(screen.surface.at(5, 5), 0x00FF80u);
    EXPECT_EQ(screen.surface.at(5, 6), 0x007F40u);
    EXPECT_EQ(screen.surface.at(6, 4), 0x00FF80u) << "column 6 a whole pixel";
    EXPECT_EQ(screen.surface.at(6, 3), 0u);
}

TEST(VKD_3D_Line, an_exact_diagonal_is_steep) {
    Screen screen(16, 16, 0);
    line(screen, {4, 4, 0, 0}, {8, 8, 0, 0}, 9);
    EXPECT_EQ(screen.surface.at(5, 4), 9u) << "two pixels beside each other";
    EXPECT_EQ(screen.surface.at(3, 4), 9u);
    EXPECT_EQ(screen.surface.at(4, 3), 0u);
    EXPECT_EQ(screen.surface.at(4, 6), 0u);
}

TEST(VKD_3D_Line, a_line_without_length_draws_nothing) {
    Screen screen(16, 16, 0);
    line(screen, {5, 5, 0, 0}, {5, 5, 100, 0}, 9);
    EXPECT_EQ(screen.surface.differenceFrom(Surface(16, 16)), "");
    EXPECT_EQ(screen.depths.at(5, 5), 0x7FFF);
}

TEST(VKD_3D_Line, of_equal_depths_the_first_stands) {
    Screen screen(16, 16, 0);
    line(screen, {4, 4, 3, 0}, {9, 4, 3, 0}, 1);
    line(screen, {4, 4, 3, 0}, {9, 4, 3, 0}, 2);
    EXPECT_EQ(screen.surface.at(5, 4), 1u);
    line(screen, {4, 4, 2, 0}, {9, 4, 2, 0}, 2);
    EXPECT_EQ(screen.surface.at(5, 4), 2u);
}

TEST(VKD_3D_Line, the_near_limit_plays_no_part) {
    Screen screen(16, 16, 0);
    screen.pipeline.nearLimit = 1000;
    line(screen, {4, 4, -7, 0}, {9, 4, -7, 0}, 1);
    EXPECT_EQ(screen.surface.at(5, 4), 1u);
    EXPECT_EQ(screen.depths.at(5, 4), -7);
}

TEST(VKD_3D_Line, the_fringe_stays_inside_the_clip) {
    for (int x = -3; x < 20; ++x) {
        Screen screen(16, 16, 0);
        const tagRECT clip = {3, 3, 12, 12};
        line(screen, clip, {x, 0, 0, 0}, {x, 16, 0, 0}, 9);
        const bool drawn = x >= 4 && x < 10; // clip left + 1 up to clip right - 2
        for (int row = 0; row < 16; ++row)
            for (int column = 0; column < 16; ++column) {
                const bool touched = drawn && row >= 4 && row < 10 && column >= x - 1 && column <= x + 2;
                ASSERT_EQ(screen.depths.at(column, row) != 0x7FFF, touched) << x << ": " << column << ", " << row;
            }
    }
    Screen screen(16, 16, 0);
    line(screen, {3, 3, 5, 12}, {4, 0, 0, 0}, {4, 16, 0, 0}, 9);
    EXPECT_EQ(screen.surface.differenceFrom(Surface(16, 16)), "") << "a clip narrower than its margins";
}

TEST(VKD_3D_Line, depth_runs_along_the_longer_axis) {
    Screen screen(16, 16, 0);
    line(screen, {2, 4, 100, 0}, {12, 4, 0, 0}, 9);
    for (int x = 2; x < 12; ++x)
        EXPECT_EQ(screen.depths.at(x, 4), 100 - 10 * (x - 2)) << x;
}

TEST(VKD_3D_Line, numbers_beyond_the_format_wrap_and_do_not_trap) {
    Screen screen(8, 8, 0);
    // 8388608 << 8 is the least int, and the length is -1.
    line(screen, {3, 5, 8388608, 0}, {3, 4, 0, 0}, 9);
    EXPECT_EQ(screen.surface.at(3, 4), 9u);
    EXPECT_EQ(screen.depths.at(3, 4), 0);
}

TEST(VKD_Render_3D_Line, each_line_has_the_colour_of_its_first_point) {
    Mesh mesh(2, 2);
    for (std::size_t i = 0; i < 4; ++i) {
        mesh.points[i].x += 4;
        mesh.points[i].y += 4;
        mesh.colours[i] = static_cast<q_ulong>(i + 1) * 16;
    }
    Screen screen(24, 24, 0);
    renderLit(VKD_Render_3D_Line, screen, screen.surface.rect(), mesh);
    EXPECT_EQ(screen.surface.at(9, 4), 16u);
    EXPECT_EQ(screen.surface.at(4, 9), 16u);
    EXPECT_EQ(screen.surface.at(14, 9), 32u);
    EXPECT_EQ(screen.surface.at(9, 14), 48u);
}

TEST(VKD_Render_3D_Line, wrap_lines_join_the_ends) {
    for (int flag = 0; flag <= 2; ++flag) {
        // Three points to a side: the line that closes a row lies over its other two, but nearer.
        Mesh mesh(3, 3);
        for (int row = 0; row < 3; ++row)
            for (int column = 0; column < 3; ++column) {
                _POINT3DFLOAT &p = mesh.point(row, column);
                p = {p.x + 4, p.y + 4, row == 1 || column == 1 ? 100.0F : 0.0F, 0};
                mesh.colour(row, column) = 0x10;
            }
        mesh.light = {0, 0, -0.5F, 0};
        mesh.ambient = {256, 0, 0, 0};
        mesh.wrapColumns = flag;
        Screen screen(40, 40, 0);
        renderLit(VKD_Render_3D_Line, screen, screen.surface.rect(), mesh);
        EXPECT_EQ(screen.depths.at(14, 4), flag == 1 ? 0 : 100) << flag;
        EXPECT_EQ(screen.depths.at(4, 14), 100) << flag;
    }
}

} // namespace
