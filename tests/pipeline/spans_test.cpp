#include "host.h"
#include "plain/bands.h"

#include <gtest/gtest.h>

#include <climits>
#include <initializer_list>

namespace {

using plain::Band;
using test::Canvas;
using test::Surface;
using test::Way;

void render(Canvas &canvas, tagRECT clip, const Band &v, Way way, int opacity = 0) {
    const auto &[x, y, r, g, b, z] = v;
    if (way == Way::draw)
        VKD_3D_Render(canvas.data, canvas.pixels(), &clip, canvas.pitch(), x.a0, x.a1, x.b0, x.b1, y.a0, y.a1, y.b0,
                      y.b1, r.a0, r.a1, r.b0, r.b1, g.a0, g.a1, g.b0, g.b1, b.a0, b.a1, b.b0, b.b1, z.a0, z.a1, z.b0,
                      z.b1);
    else if (way == Way::blend)
        VKD_3D_Render(canvas.data, canvas.pixels(), &clip, canvas.pitch(), x.a0, x.a1, x.b0, x.b1, y.a0, y.a1, y.b0,
                      y.b1, r.a0, r.a1, r.b0, r.b1, g.a0, g.a1, g.b0, g.b1, b.a0, b.a1, b.b0, b.b1, z.a0, z.a1, z.b0,
                      z.b1, opacity);
    else if (way == Way::mix)
        VKD_3D_Render_Alpha(canvas.data, canvas.pixels(), &clip, canvas.pitch(), x.a0, x.a1, x.b0, x.b1, y.a0, y.a1,
                            y.b0, y.b1, r.a0, r.a1, r.b0, r.b1, g.a0, g.a1, g.b0, g.b1, b.a0, b.a1, b.b0, b.b1, z.a0,
                            z.a1, z.b0, z.b1);
    else
        VKD_3D_Render_Add(canvas.pixels(), &clip, canvas.pitch(), x.a0, x.a1, x.b0, x.b1, y.a0, y.a1, y.b0, y.b1, r.a0,
                          r.a1, r.b0, r.b1, g.a0, g.a1, g.b0, g.b1, b.a0, b.a1, b.b0, b.b1);
}

/// Columns `left` up to `right` of `rows` rows in one colour and depth.
Band block(int left, int right, int rows, int red, int green, int blue, int depth) {
    return {{left, left, right, right},   {0, rows, 0, rows},       {red, red, red, red},
            {green, green, green, green}, {blue, blue, blue, blue}, {depth, depth, depth, depth}};
}

constexpr std::initializer_list<Way> allWays = {Way::draw, Way::blend, Way::mix, Way::add};

TEST(VKD_3D_Render, left_column_and_first_row_belong_to_the_band_right_and_last_do_not) {
    for (const Way way : allWays) {
        Canvas canvas(8, 8);
        render(canvas, canvas.picture.rect(), {{2, 2, 5, 5}, {1, 4, 1, 4}, {99, 99, 99, 99}, {}, {}, {1, 1, 1, 1}}, way,
               200);
        for (int y = 0; y < 8; ++y)
            for (int x = 0; x < 8; ++x)
                EXPECT_EQ(canvas.picture.at(x, y) != 0, x >= 2 && x < 5 && y >= 1 && y < 4) << x << ", " << y;
    }
}

TEST(VKD_3D_Render, rows_are_those_that_both_edges_cover) {
    Canvas canvas(8, 8);
    Band band = block(1, 3, 8, 10, 10, 10, 0);
    band.y = {2, 7, 0, 5};
    render(canvas, canvas.picture.rect(), band, Way::draw);
    for (int y = 0; y < 8; ++y)
        EXPECT_EQ(canvas.picture.at(1, y) != 0, y >= 2 && y < 5) << y;
}

TEST(VKD_3D_Render, a_row_within_one_column_draws_nothing) {
    Canvas canvas(8, 10);
    // The edges part by a tenth of a pixel per row and both stay in column 3.
    render(canvas, canvas.picture.rect(), {{3, 3, 3, 4}, {0, 10, 0, 10}, {9, 9, 9, 9}, {}, {}, {}}, Way::draw);
    EXPECT_EQ(canvas.picture.differenceFrom(Surface(8, 10)), "");
}

TEST(VKD_3D_Render, the_width_is_that_of_the_fixed_point_edges_not_of_the_columns) {
    // In row 1 the edges stand at about 0.9 and 2.1: columns 0 and 1, but a width of 1, so that the step is the whole
    // difference and the second pixel has the value of the right edge.
    Canvas canvas(8, 10);
    render(canvas, {0, 1, 8, 2}, {{0, 9, 0, 21}, {0, 10, 0, 10}, {0, 0, 200, 200}, {}, {}, {}}, Way::draw);
    EXPECT_EQ(canvas.picture.at(0, 1), 0u);
    EXPECT_EQ(canvas.picture.at(1, 1), 200u << 16);
    EXPECT_EQ(canvas.depth(1, 1), 0);
    EXPECT_EQ(canvas.depth(2, 1), 0x7FFF);

    // At 0.9 and 1.1 the width is 0 and becomes 1.
    Canvas narrow(8, 10);
    render(narrow, {0, 1, 8, 2}, {{0, 9, 0, 11}, {0, 10, 0, 10}, {50, 50, 200, 200}, {}, {}, {}}, Way::draw);
    EXPECT_EQ(narrow.picture.at(0, 1), 50u << 16);
    EXPECT_EQ(narrow.depth(1, 1), 0x7FFF);
}

TEST(VKD_3D_Render, of_equal_depths_the_first_drawn_stays) {
    Canvas canvas(4, 1);
    render(canvas, canvas.picture.rect(), block(0, 4, 1, 1, 2, 3, 50), Way::draw);
    render(canvas, canvas.picture.rect(), block(0, 4, 1, 9, 9, 9, 50), Way::draw);
    EXPECT_EQ(canvas.picture.at(0, 0), 0x010203u);
    render(canvas, canvas.picture.rect(), block(0, 4, 1, 9, 9, 9, 49), Way::draw);
    EXPECT_EQ(canvas.picture.at(0, 0), 0x090909u);
    EXPECT_EQ(canvas.depth(0, 0), 49);
}

TEST(VKD_3D_Render, only_what_is_beyond_the_near_limit_and_before_an_empty_entry_is_drawn) {
    const auto isDrawn = [](int depth) {
        Canvas canvas(1, 1);
        canvas.data->nearLimit = -20;
        render(canvas, canvas.picture.rect(), block(0, 1, 1, 1, 1, 1, depth), Way::draw);
        EXPECT_EQ(canvas.depth(0, 0), canvas.picture.at(0, 0) ? depth : 0x7FFF);
        return canvas.picture.at(0, 0) != 0;
    };
    EXPECT_FALSE(isDrawn(-21));
    EXPECT_FALSE(isDrawn(-20));
    EXPECT_TRUE(isDrawn(-19));
    EXPECT_TRUE(isDrawn(32766));
    EXPECT_FALSE(isDrawn(32767));
    EXPECT_FALSE(isDrawn(40000));
}

TEST(VKD_3D_Render, entries_are_read_with_their_sign_and_take_16_bits) {
    Canvas canvas(1, 1);
    canvas.data->nearLimit = -100000;
    canvas.depth(0, 0) = -5;
    render(canvas, canvas.picture.rect(), block(0, 1, 1, 1, 1, 1, -4), Way::draw);
    EXPECT_EQ(canvas.picture.at(0, 0), 0u);
    render(canvas, canvas.picture.rect(), block(0, 1, 1, 1, 1, 1, -65530), Way::draw);
    EXPECT_EQ(canvas.picture.at(0, 0), 0x010101u);
    EXPECT_EQ(canvas.depth(0, 0), 6);
}

TEST(VKD_3D_Render, channels_are_not_masked) {
    Canvas canvas(1, 1);
    render(canvas, canvas.picture.rect(), block(0, 1, 1, 0x1FF, 0x112, 0x234, 0), Way::draw);
    EXPECT_EQ(canvas.picture.at(0, 0), ((0x1FFu << 8 | 0x112u) << 8) | 0x234u);
}

TEST(VKD_3D_Render, crossing_edges_draw_only_where_the_first_is_on_the_left) {
    Canvas canvas(8, 8);
    render(canvas, canvas.picture.rect(), {{0, 8, 8, 0}, {0, 8, 0, 8}, {9, 9, 9, 9}, {}, {}, {}}, Way::draw);
    for (int y = 0; y < 8; ++y)
        for (int x = 0; x < 8; ++x)
            EXPECT_EQ(canvas.picture.at(x, y) != 0, x >= y && x < 8 - y) << x << ", " << y;
}

TEST(VKD_3D_Render, half_opacity_knows_no_depth) {
    for (const int opacity : {127, 128, 129}) {
        Canvas canvas(1, 1);
        canvas.depth(0, 0) = 10;
        canvas.data->nearLimit = 100;
        canvas.picture.at(0, 0) = 0xFF010305;
        render(canvas, canvas.picture.rect(), block(0, 1, 1, 201, 101, 51, 50), Way::blend, opacity);
        // Halves of 201, 101 and 51 and of 1, 3 and 5, the odd bits lost; the top byte is dropped.
        EXPECT_EQ(canvas.picture.at(0, 0), opacity == 128 ? 0x64331Bu : 0xFF010305u);
        EXPECT_EQ(canvas.depth(0, 0), 10);
    }
}

TEST(VKD_3D_Render, opacities_of_0_and_256_write_the_depth_too) {
    for (const int opacity : {0, 256}) {
        Canvas canvas(1, 1);
        canvas.picture.at(0, 0) = 0x112233;
        render(canvas, canvas.picture.rect(), block(0, 1, 1, 0xAA, 0xBB, 0xCC, 77), Way::blend, opacity);
        EXPECT_EQ(canvas.picture.at(0, 0), opacity == 0 ? 0x112233u : 0xAABBCCu);
        EXPECT_EQ(canvas.depth(0, 0), 77);
    }
}

TEST(VKD_3D_Render, opacity_carries_the_destinations_top_byte_into_red) {
    Canvas canvas(1, 1);
    canvas.picture.at(0, 0) = 0x02030405;
    render(canvas, canvas.picture.rect(), block(0, 1, 1, 100, 0, 0, 0), Way::blend, 64);
    // Red in place: 0x190000 + 0x020300 * 192 = 0x19B4000. Green is 4 * 192 / 256, blue 5 * 192 / 256.
    EXPECT_EQ(canvas.picture.at(0, 0), 0x019B0303u);
}

TEST(VKD_3D_Render_Alpha, needs_no_Z_plane) {
    Canvas canvas(2, 1);
    canvas.data->zBuffer = nullptr;
    canvas.data->nearLimit = 5;
    canvas.picture.at(0, 0) = 0xFF808080;
    canvas.picture.at(1, 0) = 0xFF808080;
    render(canvas, {0, 0, 1, 1}, block(0, 1, 1, 255, 255, 255, 6), Way::mix);
    render(canvas, {1, 0, 2, 1}, block(1, 2, 1, 255, 255, 255, 5), Way::mix);
    canvas.data->zBuffer = canvas.data->zPlane;
    EXPECT_EQ(canvas.picture.at(0, 0), 0xBFBFBFu);
    EXPECT_EQ(canvas.picture.at(1, 0), 0xFF808080u) << "at the near limit";
}

TEST(VKD_3D_Render_Add, saturates_above_255_and_below_0) {
    Canvas canvas(3, 1);
    canvas.picture.at(0, 0) = 0x00F010F0;
    canvas.picture.at(1, 0) = 0x00050505;
    canvas.picture.at(2, 0) = 0x01000000;
    render(canvas, {0, 0, 1, 1}, block(0, 1, 1, 15, 16, 100, 0), Way::add);
    EXPECT_EQ(canvas.picture.at(0, 0), 0xFF20FFu);
    render(canvas, {1, 0, 2, 1}, block(1, 2, 1, -5, -6, -7, 0), Way::add);
    EXPECT_EQ(canvas.picture.at(1, 0), 0x00FFFFu);
    render(canvas, {2, 0, 3, 1}, block(2, 3, 1, 0, 1, 2, 0), Way::add);
    EXPECT_EQ(canvas.picture.at(2, 0), 0xFF0102u) << "a top byte saturates red";
}

TEST(VKD_3D_Render_Add, columns_beyond_8191_wrap_and_those_of_the_others_do_not) {
    std::vector<q_ulong> row(8200);
    Canvas canvas(1, 1);
    std::vector<short> plane(8200, 0x7FFF);
    short *const before = std::exchange(canvas.data->zBuffer, plane.data());
    tagRECT clip = {8000, 0, 8200, 1};
    const auto count = [&row] {
        int painted = 0;
        for (q_ulong &pixel : row)
            painted += std::exchange(pixel, 0u) != 0;
        return painted;
    };
    const auto [x, y, r, g, b, z] = block(8180, 8191, 1, 9, 9, 9, 1);
    VKD_3D_Render_Add(row.data(), &clip, 8200, x.a0, x.a1, x.b0, x.b1, 0, 1, 0, 1, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9);
    EXPECT_EQ(count(), 11);
    // The right edge at 8192 is -8192 in 14 bits.
    VKD_3D_Render_Add(row.data(), &clip, 8200, 8180, 8180, 8192, 8192, 0, 1, 0, 1, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9);
    EXPECT_EQ(count(), 0);
    VKD_3D_Render(canvas.data, row.data(), &clip, 8200, 8180, 8180, 8192, 8192, 0, 1, 0, 1, 9, 9, 9, 9, 9, 9, 9, 9, 9,
                  9, 9, 9, z.a0, z.a1, z.b0, z.b1);
    EXPECT_EQ(count(), 12);
    canvas.data->zBuffer = before;
}

TEST(VKD_3D_Render, the_least_number_over_minus_1_wraps) {
    constexpr int beyond = 524288; // the least int with 12 fraction bits
    // A height of -1 modulo 2^32, and a width of -1 modulo 2^20.
    const Band tall = {{0, 0, 4, 4}, {INT_MIN, INT_MAX, 0, 4}, {beyond, 0, 7, 7}, {9, 5, 7, 7}, {0, beyond, 9, 9}, {}};
    const Band wide = {{-beyond, -beyond, beyond - 1, beyond - 1},
                       {0, 4, 0, 4},
                       {0, 0, beyond, beyond},
                       {beyond, beyond, 0, 0},
                       {},
                       {}};
    for (const Band &band : {tall, wide})
        for (const Way way : allWays) {
            Canvas canvas(4, 4);
            Canvas expected(4, 4);
            canvas.data->nearLimit = expected.data->nearLimit = INT_MIN;
            const tagRECT clip = canvas.picture.rect();
            const plain::Pixels dst = {expected.picture.pixels(), expected.picture.pitch()};
            if (way == Way::draw)
                plain::drawBand(*expected.data, dst, clip, band);
            else if (way == Way::blend)
                plain::blendBand(*expected.data, dst, clip, band, 3);
            else if (way == Way::mix)
                plain::mixBand(*expected.data, dst, clip, band);
            else
                plain::addBand(dst, clip, band);
            render(canvas, clip, band, way, 3);
            EXPECT_EQ(canvas.picture.differenceFrom(expected.picture), "");
            EXPECT_EQ(canvas.depths().differenceFrom(expected.depths()), "");
        }
}

TEST(VKD_3D_Render, pictures_stored_bottom_up_have_a_negative_pitch) {
    Canvas canvas(2, 2);
    Canvas expected(2, 2);
    const Band band = {{0, 0, 2, 2}, {0, 2, 0, 2}, {1, 3, 1, 3}, {}, {}, {7, 9, 7, 9}};
    render(expected, expected.picture.rect(), band, Way::draw);
    tagRECT clip = canvas.picture.rect();
    canvas.data->zBuffer += canvas.picture.pitch();
    VKD_3D_Render(canvas.data, &canvas.picture.at(0, 1), &clip, static_cast<q_ulong>(-canvas.picture.pitch()), 0, 0, 2,
                  2, 0, 2, 0, 2, 1, 3, 1, 3, 0, 0, 0, 0, 0, 0, 0, 0, 7, 9, 7, 9);
    canvas.data->zBuffer -= canvas.picture.pitch();
    for (int y = 0; y < 2; ++y)
        for (int x = 0; x < 2; ++x) {
            EXPECT_EQ(canvas.picture.at(x, y), expected.picture.at(x, 1 - y));
            EXPECT_EQ(canvas.depth(x, y), expected.depth(x, 1 - y));
        }
}

} // namespace
