#include "host.h"
#include "plain/bands.h"
#include "support/screen.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstring>

namespace {

using plain::Band;
using test::painted;
using test::Screen;
using test::Surface;
using test::Way;

constexpr Way allWays[] = {Way::draw, Way::blend, Way::mix, Way::add};

void render(Screen &screen, tagRECT clip, const Band &v, Way way = Way::draw, int opacity = 0) {
    using Draw = decltype(&VKD_3D_Render_Alpha);
    const auto &[x, y, r, g, b, z] = v;
    const auto call = [&, &x = x, &y = y, &r = r, &g = g, &b = b](auto function, auto... last) {
        function(screen.surface.pixels(), &clip, screen.pitch(), x.a0, x.a1, x.b0, x.b1, y.a0, y.a1, y.b0, y.b1, r.a0,
                 r.a1, r.b0, r.b1, g.a0, g.a1, g.b0, g.b1, b.a0, b.a1, b.b0, b.b1, last...);
    };
    const auto callWithDepth = [&, &z = z](auto function, auto... last) {
        call([&](auto... all) { function(&screen.pipeline, all...); }, z.a0, z.a1, z.b0, z.b1, last...);
    };
    if (way == Way::draw)
        callWithDepth(static_cast<Draw>(VKD_3D_Render));
    else if (way == Way::blend)
        callWithDepth([](auto... all) { VKD_3D_Render(all...); }, opacity);
    else if (way == Way::mix)
        callWithDepth(VKD_3D_Render_Alpha);
    else
        call(VKD_3D_Render_Add);
}
/// Without a clip.
void render(Screen &screen, const Band &band, Way way = Way::draw, int opacity = 0) {
    render(screen, screen.surface.rect(), band, way, opacity);
}

/// Columns `left` up to `right` of `rows` rows in one colour and depth.
Band block(int left, int right, int rows, int red, int green, int blue, int depth) {
    return {{left, left, right, right},   {0, rows, 0, rows},       {red, red, red, red},
            {green, green, green, green}, {blue, blue, blue, blue}, {depth, depth, depth, depth}};
}

/// Edges that move from (x.a0, x.b0) at row 0 to (x.a1, x.b1) at row `rows`, red from one edge to the other.
Band slanting(const plain::Ends &x, int rows, int redLeft, int redRight) {
    return {x, {0, rows, 0, rows}, {redLeft, redLeft, redRight, redRight}, {}, {}, {}};
}

TEST(VKD_3D_Render, left_column_and_first_row_belong_to_the_band_right_and_last_do_not) {
    for (const Way way : allWays) {
        Screen screen(8, 8, 0);
        Band band = block(2, 5, 4, 0x80, 0, 0, 1);
        band.y = {1, 4, 1, 4};
        render(screen, band, way, 128);
        const q_ulong red = way == Way::blend || way == Way::mix ? 0x400000 : 0x800000;
        EXPECT_EQ(screen.surface.differenceFrom(painted(Surface(8, 8), {2, 1, 5, 4}, red)), "");
    }
}

TEST(VKD_3D_Render, a_z_plane_within_the_picture_is_read_and_written_pixel_by_pixel) {
    constexpr int width = 40, height = 6;
    test::Random random(77);
    for (int offset = -200; offset <= 200; ++offset) { // in depths from the picture's first pixel on
        Surface memory = Surface::randomOfSize(random, width, height + 20);
        Surface expected = memory;
        const q_ulong colour = random.word() & 0x7F7F7F;
        const int depth = random.between(-20000, 20000);
        const auto dstOf = [](Surface &surface) { return &surface.at(0, 10); };
        char *const depths = reinterpret_cast<char *>(dstOf(expected)) + 2 * offset;
        for (int y = 0; y < height; ++y)
            for (int x = 3; x < width; ++x) {
                const std::ptrdiff_t place = static_cast<std::ptrdiff_t>(y) * expected.pitch() + x;
                const auto drawn = static_cast<short>(depth);
                short found = 0;
                std::memcpy(&found, depths + 2 * place, sizeof(found));
                if (depth >= found)
                    continue;
                std::memcpy(dstOf(expected) + place, &colour, sizeof(colour));
                std::memcpy(depths + 2 * place, &drawn, sizeof(drawn));
            }
        for (const bool isBlended : {false, true}) { // an opacity of 256 gives the colour itself
            Surface surface = memory;
            _PRIVATE_QMGL_DATA data = {};
            data.nearLimit = -0x8000;
            data.zBuffer = reinterpret_cast<short *>(dstOf(surface)) + offset;
            tagRECT clip = {0, 0, width, height};
            const auto pitch = static_cast<q_ulong>(surface.pitch());
            const int red = static_cast<int>(colour >> 16), green = static_cast<int>(colour >> 8 & 0xFF),
                      blue = static_cast<int>(colour & 0xFF);
            const auto render = [&](auto... opacity) {
                VKD_3D_Render(&data, dstOf(surface), &clip, pitch, 3, 3, width, width, 0, height, 0, height, red, red,
                              red, red, green, green, green, green, blue, blue, blue, blue, depth, depth, depth, depth,
                              opacity...);
            };
            if (isBlended)
                render(256);
            else
                render();
            ASSERT_EQ(surface.differenceFrom(expected), "") << offset << (isBlended ? ", blended" : "");
        }
    }
}

TEST(VKD_3D_Render, a_row_within_one_column_draws_nothing) {
    // The edges part by a tenth of a pixel per row and both stay in column 3.
    Screen screen(8, 10, 0);
    render(screen, slanting({3, 3, 3, 4}, 10, 9, 9));
    EXPECT_EQ(screen.surface.differenceFrom(Surface(8, 10)), "");
}

TEST(VKD_3D_Render, a_negative_column_is_drawn_from_the_clip_on_with_the_values_it_has_there) {
    Screen screen(8, 8, 0);
    render(screen, {2, 0, 8, 8}, slanting({-4, -4, 4, 4}, 8, 0, 64));
    EXPECT_EQ(screen.surface.at(1, 0), 0u);
    EXPECT_EQ(screen.surface.at(2, 0), 48u << 16);
    EXPECT_EQ(screen.surface.at(3, 0), 56u << 16);
}

TEST(VKD_3D_Render, the_width_is_that_of_the_fixed_point_edges_not_of_the_columns) {
    // In row 1 the edges stand at about 0.9 and 2.1: columns 0 and 1, but a width of 1, so that the step is the whole
    // difference and the second pixel has the value of the right edge. At 0.9 and 1.1 the width is 0 and becomes 1.
    Screen screen(8, 10, 0);
    render(screen, {0, 1, 8, 2}, slanting({0, 9, 0, 21}, 10, 0, 200));
    EXPECT_EQ(screen.surface.at(0, 1), 0u);
    EXPECT_EQ(screen.surface.at(1, 1), 200u << 16);
    EXPECT_EQ(screen.depths.at(1, 1), 0);
    EXPECT_EQ(screen.depths.at(2, 1), 0x7FFF);
    Screen narrow(8, 10, 0);
    render(narrow, {0, 1, 8, 2}, slanting({0, 9, 0, 11}, 10, 50, 200));
    EXPECT_EQ(narrow.surface.at(0, 1), 50u << 16);
    EXPECT_EQ(narrow.depths.at(1, 1), 0x7FFF);
}

TEST(VKD_3D_Render, of_equal_depths_the_first_drawn_stays) {
    Screen screen(4, 1, 0);
    render(screen, block(0, 4, 1, 1, 2, 3, 50));
    render(screen, block(0, 4, 1, 9, 9, 9, 50));
    EXPECT_EQ(screen.surface.at(0, 0), 0x010203u);
    render(screen, block(0, 4, 1, 9, 9, 9, 49));
    EXPECT_EQ(screen.surface.at(0, 0), 0x090909u);
    EXPECT_EQ(screen.depths.at(0, 0), 49);
}

TEST(VKD_3D_Render, only_what_is_beyond_the_near_limit_and_before_an_empty_entry_is_drawn) {
    const auto isDrawn = [](int depth) {
        Screen screen(1, 1, 0);
        screen.pipeline.nearLimit = -20;
        render(screen, block(0, 1, 1, 1, 1, 1, depth));
        EXPECT_EQ(screen.depths.at(0, 0), screen.surface.at(0, 0) ? depth : 0x7FFF);
        return screen.surface.at(0, 0) != 0;
    };
    EXPECT_FALSE(isDrawn(-21));
    EXPECT_FALSE(isDrawn(-20));
    EXPECT_TRUE(isDrawn(-19));
    EXPECT_TRUE(isDrawn(32766));
    EXPECT_FALSE(isDrawn(32767));
    EXPECT_FALSE(isDrawn(40000));
}

TEST(VKD_3D_Render, entries_are_read_with_their_sign_and_take_16_bits) {
    Screen screen(1, 1, 0);
    screen.pipeline.nearLimit = -100000;
    screen.depths.at(0, 0) = -5;
    render(screen, block(0, 1, 1, 1, 1, 1, -4));
    EXPECT_EQ(screen.surface.at(0, 0), 0u);
    render(screen, block(0, 1, 1, 1, 1, 1, -65530));
    EXPECT_EQ(screen.surface.at(0, 0), 0x010101u);
    EXPECT_EQ(screen.depths.at(0, 0), 6);
}

TEST(VKD_3D_Render, crossing_edges_draw_only_where_the_first_is_on_the_left) {
    Screen screen(8, 8, 0);
    render(screen, slanting({0, 8, 8, 0}, 8, 9, 9));
    for (int y = 0; y < 8; ++y)
        for (int x = 0; x < 8; ++x)
            EXPECT_EQ(screen.surface.at(x, y) != 0, x >= y && x < 8 - y) << x << ", " << y;
}

TEST(VKD_3D_Render, half_opacity_knows_no_depth_and_every_other_writes_it_too) {
    const auto blended = [](int opacity, short before) {
        Screen screen(1, 1, 0);
        screen.surface.at(0, 0) = 0xFF010305;
        screen.depths.at(0, 0) = before;
        render(screen, block(0, 1, 1, 201, 101, 51, 50), Way::blend, opacity);
        EXPECT_EQ(screen.depths.at(0, 0), opacity != 128 && before > 50 ? 50 : before);
        return screen.surface.at(0, 0);
    };
    // Halves of 201, 101 and 51 and of 1, 3 and 5, the odd bits lost; the top byte is dropped.
    EXPECT_EQ(blended(128, 10), 0x64331Bu);
    EXPECT_EQ(blended(128, 0x7FFF), 0x64331Bu);
    for (const int opacity : {0, 127, 129, 256})
        EXPECT_EQ(blended(opacity, 10), 0xFF010305u) << opacity;
    EXPECT_EQ(blended(256, 0x7FFF) & 0xFFFF, 0x6533u);
    EXPECT_EQ(blended(0, 0x7FFF) & 0xFFFF, 0x0305u);
}

TEST(VKD_3D_Render, opacity_carries_the_destinations_top_byte_into_red) {
    Screen screen(1, 1, 0);
    screen.surface.at(0, 0) = 0x02030405;
    render(screen, block(0, 1, 1, 100, 0, 0, 0), Way::blend, 64);
    // Red in place: 0x190000 + 0x020300 * 192 = 0x19B4000. Green is 4 * 192 / 256, blue 5 * 192 / 256.
    EXPECT_EQ(screen.surface.at(0, 0), 0x019B0303u);
}

TEST(VKD_3D_Render_Alpha, needs_no_Z_plane) {
    Screen screen(2, 1, 0);
    screen.pipeline.zBuffer = nullptr;
    screen.pipeline.nearLimit = 5;
    screen.surface.at(0, 0) = 0xFF808080;
    screen.surface.at(1, 0) = 0xFF808080;
    render(screen, {0, 0, 1, 1}, block(0, 1, 1, 255, 255, 255, 6), Way::mix);
    render(screen, {1, 0, 2, 1}, block(1, 2, 1, 255, 255, 255, 5), Way::mix);
    EXPECT_EQ(screen.surface.at(0, 0), 0xBFBFBFu);
    EXPECT_EQ(screen.surface.at(1, 0), 0xFF808080u) << "at the near limit";
}

TEST(VKD_3D_Render_Add, saturates_above_255_and_below_0) {
    Screen screen(3, 1, 0);
    screen.surface.at(0, 0) = 0x00F010F0;
    screen.surface.at(1, 0) = 0x00050505;
    screen.surface.at(2, 0) = 0x01000000;
    render(screen, {0, 0, 1, 1}, block(0, 1, 1, 15, 16, 100, 0), Way::add);
    EXPECT_EQ(screen.surface.at(0, 0), 0xFF20FFu);
    render(screen, {1, 0, 2, 1}, block(1, 2, 1, -5, -6, -7, 0), Way::add);
    EXPECT_EQ(screen.surface.at(1, 0), 0x00FFFFu);
    render(screen, {2, 0, 3, 1}, block(2, 3, 1, 0, 1, 2, 0), Way::add);
    EXPECT_EQ(screen.surface.at(2, 0), 0xFF0102u) << "a top byte saturates red";
}

TEST(VKD_3D_Render_Add, columns_beyond_8191_wrap_and_those_of_the_others_do_not) {
    std::vector<q_ulong> row(8200);
    Screen screen(1, 1, 0);
    std::vector<short> plane(8200, 0x7FFF);
    screen.pipeline.zBuffer = plane.data();
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
    VKD_3D_Render(&screen.pipeline, row.data(), &clip, 8200, 8180, 8180, 8192, 8192, 0, 1, 0, 1, 9, 9, 9, 9, 9, 9, 9, 9,
                  9, 9, 9, 9, z.a0, z.a1, z.b0, z.b1);
    EXPECT_EQ(count(), 12);
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
            Screen screen(4, 4, 0);
            Screen expected(4, 4, 0);
            screen.pipeline.nearLimit = expected.pipeline.nearLimit = INT_MIN;
            const tagRECT clip = screen.surface.rect();
            const plain::Pixels dst = {expected.surface.pixels(), expected.surface.pitch()};
            if (way == Way::draw)
                plain::drawBand(expected.pipeline, dst, clip, band);
            else if (way == Way::blend)
                plain::drawBand(expected.pipeline, dst, clip, band, 3);
            else if (way == Way::mix)
                plain::mixBand(expected.pipeline, dst, clip, band);
            else
                plain::addBand(dst, clip, band);
            render(screen, clip, band, way, 3);
            EXPECT_EQ(screen.surface.differenceFrom(expected.surface), "");
            EXPECT_TRUE(screen.depths == expected.depths);
        }
}

} // namespace
