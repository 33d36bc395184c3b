#include "support/painting.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>

namespace {

using test::blank;
using test::painted;
using test::place;
using test::placesOf;
using test::Surface;
using test::untouched;

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

/// A quad of texels that tell their place, on 16 by 16 pixels.
Surface drawn(Function function, const Corners &c, tagRECT clip = {0, 0, 16, 16}) {
    Surface dst = blank(16, 16);
    Surface tex = placesOf(16, 16);
    std::array<_POINT3DFLOAT, 4> points = {};
    std::array<_POINTINT, 4> positions = {};
    for (std::size_t i = 0; i < 4; ++i) {
        points[i] = {static_cast<float>(c[i].x), static_cast<float>(c[i].y), 0, 0};
        positions[i] = {c[i].u, c[i].v};
    }
    function(dst.pixels(), &points[0], &points[1], &points[2], &points[3], tex.pixels(), &positions[0], &positions[1],
             &positions[2], &positions[3], &clip, static_cast<q_ulong>(dst.pitch()), static_cast<q_ulong>(tex.pitch()));
    return dst;
}

/// A rectangle of the screen with a rectangle of the texture, both with the far sides left out.
Corners rectangle(int left, int top, int right, int bottom, int u0, int v0, int u1, int v1) {
    return {{{left, top, u0, v0}, {right, top, u1, v0}, {right, bottom, u1, v1}, {left, bottom, u0, v1}}};
}

TEST(i3D_Blt_Rect_Nearest_NoLight_NoHPE_Safe, the_last_row_and_column_show_the_far_texels) {
    // 9 pixels over 0 to 8, a reciprocal without remainder: every texel once, the last one and its top byte included.
    const Surface dst = drawn(safe, rectangle(2, 3, 11, 12, 0, 0, 8, 8));
    const Surface expected = painted(blank(16, 16), {2, 3, 11, 12}, [](int x, int y) { return place(x - 2, y - 3); });
    EXPECT_EQ(dst.differenceFrom(expected), "");
}

TEST(i3D_Blt_Rect_Nearest_NoLight_NoHPE_Safe, one_pixel_shows_the_first_texel_and_of_two_the_second_shows_the_far_one) {
    const Surface one = drawn(safe, rectangle(2, 3, 3, 4, 5, 6, 9, 9));
    EXPECT_EQ(one.differenceFrom(painted(blank(16, 16), {2, 3, 3, 4}, place(5, 6))), "");
    const Surface two = drawn(safe, rectangle(2, 3, 4, 5, 5, 6, 9, 10));
    EXPECT_EQ(two.at(2, 3), place(5, 6));
    EXPECT_EQ(two.at(3, 3), place(9, 6));
    EXPECT_EQ(two.at(2, 4), place(5, 10));
    EXPECT_EQ(two.at(3, 4), place(9, 10));
}

TEST(i3D_Blt_Rect_Nearest_NoLight_NoHPE_Safe, four_corners_on_one_row_draw_nothing) {
    for (const Function function : {safe, safeBlack})
        EXPECT_EQ(drawn(function, rectangle(2, 3, 9, 3, 0, 0, 8, 8)).differenceFrom(blank(16, 16)), "");
}

TEST(i3D_Blt_Rect_Nearest_NoLight_NoHPE_Safe, the_clip_bounds_texture_and_destination_alike) {
    const tagRECT clip = {3, 4, 9, 11};
    const auto isInside = [&clip](int x, int y) {
        return x >= clip.left && x < clip.right && y >= clip.top && y < clip.bottom;
    };
    for (const Function function : {safe, safeBlack}) {
        const Surface expected = painted(blank(16, 16), clip, [&](int x, int y) {
            // Each pixel shows the texel one column further left and two rows further up. 0x40000 / 15 is cut: from the
            // second step on a position falls just short of the next texel.
            return isInside(x - 2, y - 3) ? place(x - 2, y - 3) : function == safeBlack ? 0 : untouched;
        });
        EXPECT_EQ(drawn(function, rectangle(0, 0, 16, 16, -1, -2, 14, 13), clip).differenceFrom(expected), "");
    }
}

TEST(i3D_Blt_Rect_Nearest_NoLight_NoHPE_Safe, corners_in_any_order_draw_the_same_quad) {
    const Corners corners = {{{7, 1, 0, 0}, {14, 6, 15, 2}, {9, 15, 12, 15}, {1, 8, 3, 9}}};
    const Surface expected = drawn(safe, corners);
    EXPECT_NE(expected.at(7, 8), untouched);
    std::array<std::size_t, 4> order = {0, 1, 2, 3};
    while (std::next_permutation(order.begin(), order.end())) {
        const Corners shuffled = {corners[order[0]], corners[order[1]], corners[order[2]], corners[order[3]]};
        EXPECT_EQ(drawn(safe, shuffled).differenceFrom(expected), "");
    }
}

TEST(i3D_Blt_Rect_Nearest_NoLight_NoHPE_SafeBlack, a_quad_outside_its_texture_turns_black_and_nothing_else) {
    const Surface dst = drawn(safeBlack, rectangle(2, 3, 11, 12, 100, 100, 108, 108));
    EXPECT_EQ(dst.differenceFrom(painted(blank(16, 16), {2, 3, 11, 12}, 0)), "");
}

} // namespace
