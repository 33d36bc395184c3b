#include "support/surface.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>

namespace {

using test::Surface;

/// A corner in whole pixels and texels.
struct Corner {
    int x;
    int y;
    int u;
    int v;
};
using Corners = std::array<Corner, 4>;

using Function = decltype(&i3D_Blt_Rect_Nearest_NoLight_NoHPE_Safe);

constexpr Function safe = i3D_Blt_Rect_Nearest_NoLight_NoHPE_Safe;
constexpr Function safeBlack = i3D_Blt_Rect_Nearest_NoLight_NoHPE_SafeBlack;

void draw(Function function, Surface &dst, Surface &tex, tagRECT clip, const Corners &c) {
    std::array<_POINT3DFLOAT, 4> points = {};
    std::array<_POINTINT, 4> positions = {};
    for (std::size_t i = 0; i < 4; ++i) {
        points[i] = {static_cast<float>(c[i].x), static_cast<float>(c[i].y), 0, 0};
        positions[i] = {c[i].u, c[i].v};
    }
    function(dst.pixels(), &points[0], &points[1], &points[2], &points[3], tex.pixels(), &positions[0], &positions[1],
             &positions[2], &positions[3], &clip, static_cast<q_ulong>(dst.pitch()), static_cast<q_ulong>(tex.pitch()));
}

/// A rectangle of the screen with a rectangle of the texture, both with the far sides left out.
Corners rectangle(int left, int top, int right, int bottom, int u0, int v0, int u1, int v1) {
    return {{{left, top, u0, v0}, {right, top, u1, v0}, {right, bottom, u1, v1}, {left, bottom, u0, v1}}};
}

/// Each texel tells its place.
Surface numbered(int width, int height) {
    Surface surface(width, height);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            surface.at(x, y) = static_cast<q_ulong>(0x77000000 + y * 256 + x);
    return surface;
}

TEST(i3D_Blt_Rect_Nearest_NoLight_NoHPE_Safe, the_last_row_and_column_show_the_far_texels) {
    // 9 pixels over 0 to 8, a reciprocal without remainder: every texel once, the last one included.
    Surface tex = numbered(16, 16);
    Surface dst(16, 16, 0x55555555);
    draw(safe, dst, tex, dst.rect(), rectangle(2, 3, 11, 12, 0, 0, 8, 8));
    for (int y = 0; y < 9; ++y)
        for (int x = 0; x < 9; ++x)
            EXPECT_EQ(dst.at(2 + x, 3 + y), tex.at(x, y)); // top byte included
    EXPECT_EQ(dst.at(11, 5), 0x55555555u);
    EXPECT_EQ(dst.at(5, 12), 0x55555555u);
}

TEST(i3D_Blt_Rect_Nearest_NoLight_NoHPE_Safe, a_single_row_and_a_single_column_show_the_first_texels) {
    Surface tex = numbered(16, 16);
    Surface dst(16, 16, 0x55555555);
    draw(safe, dst, tex, dst.rect(), rectangle(2, 3, 3, 4, 5, 6, 9, 9));
    EXPECT_EQ(dst.at(2, 3), tex.at(5, 6));
    EXPECT_EQ(dst.at(3, 3), 0x55555555u);
    EXPECT_EQ(dst.at(2, 4), 0x55555555u);
}

TEST(i3D_Blt_Rect_Nearest_NoLight_NoHPE_Safe, of_two_pixels_the_second_shows_the_far_texel) {
    Surface tex = numbered(16, 16);
    Surface dst(16, 16, 0x55555555);
    draw(safe, dst, tex, dst.rect(), rectangle(2, 3, 4, 5, 5, 6, 9, 10));
    EXPECT_EQ(dst.at(2, 3), tex.at(5, 6));
    EXPECT_EQ(dst.at(3, 3), tex.at(9, 6));
    EXPECT_EQ(dst.at(2, 4), tex.at(5, 10));
    EXPECT_EQ(dst.at(3, 4), tex.at(9, 10));
}

TEST(i3D_Blt_Rect_Nearest_NoLight_NoHPE_Safe, four_corners_on_one_row_draw_nothing) {
    Surface tex = numbered(16, 16);
    Surface dst(16, 16, 0x55555555);
    draw(safe, dst, tex, dst.rect(), rectangle(2, 3, 9, 3, 0, 0, 8, 8));
    draw(safeBlack, dst, tex, dst.rect(), rectangle(2, 3, 9, 3, 0, 0, 8, 8));
    EXPECT_EQ(dst.differenceFrom(Surface(16, 16, 0x55555555)), "");
}

TEST(i3D_Blt_Rect_Nearest_NoLight_NoHPE_Safe, the_clip_bounds_texture_and_destination_alike) {
    Surface tex = numbered(16, 16);
    const tagRECT clip = {3, 4, 9, 11};
    for (const bool black : {false, true}) {
        Surface dst(16, 16, 0x55555555);
        // Each pixel shows the texel one column further left and two rows further up.
        draw(black ? safeBlack : safe, dst, tex, clip, rectangle(0, 0, 16, 16, -1, -2, 14, 13));
        const auto in = [](int position, q_long begin, q_long end) { return position >= begin && position < end; };
        for (int y = 0; y < 16; ++y)
            for (int x = 0; x < 16; ++x) {
                // 0x40000 / 15 is cut: from the second step on a position falls just short of the next texel.
                const int u = x == 0 ? -1 : x - 2;
                const int v = y == 0 ? -2 : y - 3;
                const bool pixelIn = in(x, 3, 9) && in(y, 4, 11);
                const bool texelIn = in(u, 3, 9) && in(v, 4, 11);
                const q_ulong outside = pixelIn && black ? 0 : 0x55555555;
                EXPECT_EQ(dst.at(x, y), pixelIn && texelIn ? tex.at(u, v) : outside) << x << ", " << y;
            }
    }
}

TEST(i3D_Blt_Rect_Nearest_NoLight_NoHPE_Safe, corners_in_any_order_draw_the_same_quad) {
    Surface tex = numbered(16, 16);
    Corners corners = {{{7, 1, 0, 0}, {14, 6, 15, 2}, {9, 15, 12, 15}, {1, 8, 3, 9}}};
    Surface expected(16, 16, 0x55555555);
    draw(safe, expected, tex, expected.rect(), corners);
    EXPECT_NE(expected.at(7, 8), 0x55555555u);
    std::array<std::size_t, 4> order = {0, 1, 2, 3};
    do {
        Surface dst(16, 16, 0x55555555);
        draw(safe, dst, tex, dst.rect(), {corners[order[0]], corners[order[1]], corners[order[2]], corners[order[3]]});
        EXPECT_EQ(dst.differenceFrom(expected), "");
    } while (std::next_permutation(order.begin(), order.end()));
}

TEST(i3D_Blt_Rect_Nearest_NoLight_NoHPE_SafeBlack, a_quad_outside_its_texture_turns_black_and_nothing_else) {
    Surface tex = numbered(16, 16);
    Surface dst(16, 16, 0x55555555);
    draw(safeBlack, dst, tex, dst.rect(), rectangle(2, 3, 11, 12, 100, 100, 108, 108));
    for (int y = 0; y < 16; ++y)
        for (int x = 0; x < 16; ++x)
            EXPECT_EQ(dst.at(x, y), x >= 2 && x < 11 && y >= 3 && y < 12 ? 0u : 0x55555555u);
}

} // namespace
