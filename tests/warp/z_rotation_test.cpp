#include "plain/turns.h"
#include "support/surface.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

using test::Surface;

/// A turn and its arguments.
struct Scene {
    tagRECT clip;
    tagRECT srcRect;
    int centreX;
    int centreY;
    float angle;
    float scale;
    float alpha = 1;
};

/// One of the six rotators, or its plain twin.
struct Rotator {
    using Turn = void(q_ulong *, int, q_ulong *, int, tagRECT *, tagRECT *, int, int, float, float);
    using AlphaTurn = void(q_ulong *, int, q_ulong *, int, tagRECT *, tagRECT *, int, int, float, float, float);

    const char *name;
    Turn *turn;
    AlphaTurn *alphaTurn = nullptr;

    void draw(Surface &dst, q_ulong *src, int srcPitch, Scene s) const {
        if (turn)
            turn(dst.pixels(), dst.pitch(), src, srcPitch, &s.clip, &s.srcRect, s.centreX, s.centreY, s.angle, s.scale);
        else
            alphaTurn(dst.pixels(), dst.pitch(), src, srcPitch, &s.clip, &s.srcRect, s.centreX, s.centreY, s.angle,
                      s.scale, s.alpha);
    }
};

constexpr Rotator nearest = {"iBltNear32_Z_Roto", iBltNear32_Z_Roto};
constexpr Rotator keyed = {"iBltNear32_Z_Roto_KeySrc", iBltNear32_Z_Roto_KeySrc};
constexpr Rotator keyedAdd = {"iBltNear32_Z_Roto_KeySrc_Add", iBltNear32_Z_Roto_KeySrc_Add};
constexpr Rotator nearestAlpha = {"iBltNear32_Z_Roto_Alpha", nullptr, iBltNear32_Z_Roto_Alpha};
constexpr Rotator linear = {"iBltLinear32_Z_Roto", iBltLinear32_Z_Roto};
constexpr Rotator linearAlpha = {"iBltLinear32_Z_Roto_Alpha", nullptr, iBltLinear32_Z_Roto_Alpha};
const Rotator rotators[] = {nearest, keyed, keyedAdd, nearestAlpha, linear, linearAlpha};
const Rotator twins[] = {{"", plain::iBltNear32_Z_Roto},
                         {"", plain::iBltNear32_Z_Roto_KeySrc},
                         {"", plain::iBltNear32_Z_Roto_KeySrc_Add},
                         {"", nullptr, plain::iBltNear32_Z_Roto_Alpha},
                         {"", plain::iBltLinear32_Z_Roto},
                         {"", nullptr, plain::iBltLinear32_Z_Roto_Alpha}};

constexpr int lowest = std::numeric_limits<int>::min();
constexpr int highest = std::numeric_limits<int>::max();
constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr float quarterTurn = 1.57079632679489661923F;
constexpr float halfTurn = 3.14159265358979323846F;
constexpr float threeQuarterTurn = 4.71238898038468985769F;

constexpr q_ulong untouched = 0x77777777;

/// A picture of the pixels 1, 2, 3 ... in reading order.
Surface numbered(int width, int height) {
    Surface surface(width, height);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            surface.at(x, y) = static_cast<q_ulong>(y * width + x + 1);
    return surface;
}

TEST(Z_Roto, angle_0_and_scale_1_show_the_source_centred) {
    for (const Rotator &rotator : {nearest, keyed}) {
        Surface src = numbered(6, 4);
        Surface dst(14, 12, untouched);
        Surface expected = dst;
        for (int y = 0; y < 4; ++y)
            for (int x = 0; x < 6; ++x)
                expected.at(7 - 3 + x, 6 - 2 + y) = src.at(x, y);
        rotator.draw(dst, src.pixels(), src.pitch(), {dst.rect(), src.rect(), 7, 6, 0, 1});
        EXPECT_EQ(dst.differenceFrom(expected), "") << rotator.name;
    }
}

TEST(Z_Roto, filtered_sampling_ends_one_pixel_earlier_at_the_right_and_bottom) {
    Surface src = numbered(6, 4);
    Surface dst(14, 12, untouched);
    Surface expected = dst;
    for (int y = 0; y < 3; ++y)
        for (int x = 0; x < 5; ++x)
            expected.at(7 - 3 + x, 6 - 2 + y) = src.at(x, y);
    linear.draw(dst, src.pixels(), src.pitch(), {dst.rect(), src.rect(), 7, 6, 0, 1});
    EXPECT_EQ(dst.differenceFrom(expected), "");
}

TEST(Z_Roto, an_odd_size_centres_on_the_pixel_left_of_and_above_its_true_centre) {
    Surface src = numbered(5, 5);
    Surface dst(13, 13, untouched);
    Surface expected = dst;
    for (int y = 0; y < 5; ++y)
        for (int x = 0; x < 5; ++x)
            expected.at(6 - 2 + x, 6 - 2 + y) = src.at(x, y);
    nearest.draw(dst, src.pixels(), src.pitch(), {dst.rect(), src.rect(), 6, 6, 0, 1});
    EXPECT_EQ(dst.differenceFrom(expected), "");
}

TEST(Z_Roto, a_centre_left_of_and_above_the_surface_rounds_downward_too) {
    // From -4 up to 1 the sum is -3, half of which is -2.
    Surface src = numbered(9, 9);
    Surface dst(13, 13, untouched);
    Surface expected = dst;
    for (int y = -4; y < 1; ++y)
        for (int x = -4; x < 1; ++x)
            expected.at(6 + 2 + x, 6 + 2 + y) = src.at(4 + x, 4 + y);
    nearest.draw(dst, &src.at(4, 4), src.pitch(), {dst.rect(), {-4, -4, 1, 1}, 6, 6, 0, 1});
    EXPECT_EQ(dst.differenceFrom(expected), "");
}

TEST(Z_Roto, quarter_turns_bring_the_right_half_down_left_and_up) {
    // Quadrants of a 16 by 16 source, looked at well inside of each.
    constexpr q_ulong upperLeft = 0xAA000001;
    constexpr q_ulong upperRight = 0xBB000002;
    constexpr q_ulong lowerLeft = 0xCC000003;
    constexpr q_ulong lowerRight = 0xDD000004;
    Surface src(16, 16);
    for (int y = 0; y < 16; ++y)
        for (int x = 0; x < 16; ++x)
            src.at(x, y) = y < 8 ? (x < 8 ? upperLeft : upperRight) : (x < 8 ? lowerLeft : lowerRight);
    struct Turn {
        float angle;
        q_ulong quadrants[4]; // what stands upper left, upper right, lower left and lower right
    };
    constexpr Turn turns[] = {{0, {upperLeft, upperRight, lowerLeft, lowerRight}},
                              {quarterTurn, {lowerLeft, upperLeft, lowerRight, upperRight}},
                              {halfTurn, {lowerRight, lowerLeft, upperRight, upperLeft}},
                              {threeQuarterTurn, {upperRight, lowerRight, upperLeft, lowerLeft}},
                              {-quarterTurn, {upperRight, lowerRight, upperLeft, lowerLeft}}};
    for (const Turn &turn : turns) {
        Surface dst(24, 24);
        nearest.draw(dst, src.pixels(), src.pitch(), {dst.rect(), src.rect(), 12, 12, turn.angle, 1});
        for (int i = 0; i < 4; ++i)
            EXPECT_EQ(dst.at(i % 2 ? 16 : 8, i / 2 ? 16 : 8), turn.quadrants[i]) << turn.angle << ", quadrant " << i;
    }
}

TEST(Z_Roto, scale_2_repeats_each_pixel_and_scale_one_half_takes_every_second) {
    Surface src = numbered(6, 6);
    Surface doubled(20, 20, untouched);
    Surface expectedDoubled = doubled;
    for (int y = 0; y < 12; ++y)
        for (int x = 0; x < 12; ++x)
            expectedDoubled.at(10 - 6 + x, 10 - 6 + y) = src.at(x / 2, y / 2);
    nearest.draw(doubled, src.pixels(), src.pitch(), {doubled.rect(), src.rect(), 10, 10, 0, 2});
    EXPECT_EQ(doubled.differenceFrom(expectedDoubled), "");
    Surface halved(20, 20, untouched);
    Surface expectedHalved = halved;
    for (int y = -1; y < 2; ++y) // the half diagonal is 2.1, and -2 maps to -4, outside
        for (int x = -1; x < 2; ++x)
            expectedHalved.at(10 + x, 10 + y) = src.at(3 + 2 * x, 3 + 2 * y);
    nearest.draw(halved, src.pixels(), src.pitch(), {halved.rect(), src.rect(), 10, 10, 0, 0.5F});
    EXPECT_EQ(halved.differenceFrom(expectedHalved), "");
}

TEST(Z_Roto, the_walk_ends_at_the_half_diagonal) {
    // Of a single pixel that is 0.7, so nothing is drawn; doubled it is 1.4, and the one pixel before the centre maps
    // outside.
    Surface src(1, 1, 0x123456);
    Surface dst(6, 6, untouched);
    Surface expected = dst;
    nearest.draw(dst, src.pixels(), src.pitch(), {dst.rect(), src.rect(), 3, 3, 0, 1});
    EXPECT_EQ(dst.differenceFrom(expected), "");
    expected.at(3, 3) = 0x123456;
    nearest.draw(dst, src.pixels(), src.pitch(), {dst.rect(), src.rect(), 3, 3, 0, 2});
    EXPECT_EQ(dst.differenceFrom(expected), "");
    // 5 by 1: half of 5.1 is 2, which the last of the five columns would exceed.
    Surface wide = numbered(5, 1);
    Surface row(11, 5, untouched);
    Surface expectedRow = row;
    for (int x = 0; x < 4; ++x)
        expectedRow.at(5 - 2 + x, 2) = wide.at(x, 0);
    nearest.draw(row, wide.pixels(), wide.pitch(), {row.rect(), wide.rect(), 5, 2, 0, 1});
    EXPECT_EQ(row.differenceFrom(expectedRow), "");
}

TEST(Z_Roto, a_cosine_just_below_1_is_cut_and_costs_the_rows_below_the_centre) {
    // cos(1e-8) is 1 - 5e-17, which 64 bits of mantissa can tell from 1: 16383 of 16384. A row of the destination is
    // then 128 units short of a source pixel, so row 1 still shows row 0, and so on downward; upward nothing changes.
    // In a row the ends at -4 and 4 pixels are cut by one unit and the step by one more: at the centre -3 units are
    // left of -4 pixels and four steps, which is the column before the source's centre.
    Surface src = numbered(4, 8);
    Surface dst(12, 14, untouched);
    nearest.draw(dst, src.pixels(), src.pitch(), {dst.rect(), src.rect(), 6, 7, 1.0e-8F, 1});
    constexpr int rowsShown[] = {0, 1, 2, 3, 4, 4, 5, 6}; // for the rows 3 to 10 of the destination
    for (int i = 0; i < 8; ++i)
        EXPECT_EQ(dst.at(6, 3 + i), src.at(1, rowsShown[i])) << i;
}

TEST(Z_Roto, what_is_no_angle_shows_the_centre_pixel_everywhere) {
    Surface src = numbered(4, 4);
    for (const float angle : {infinity, -infinity, std::numeric_limits<float>::quiet_NaN()}) {
        Surface dst(10, 10, untouched);
        Surface expected = dst;
        for (int y = 3; y < 7; ++y)
            for (int x = 3; x < 7; ++x)
                expected.at(x, y) = src.at(2, 2);
        nearest.draw(dst, src.pixels(), src.pitch(), {dst.rect(), src.rect(), 5, 5, angle, 1});
        EXPECT_EQ(dst.differenceFrom(expected), "") << angle;
    }
}

TEST(Z_Roto, scale_0_draws_nothing) {
    Surface src = numbered(6, 6);
    const Surface before(12, 12, untouched);
    for (const Rotator &rotator : rotators)
        for (const float scale : {0.0F, -0.0F}) {
            Surface dst = before;
            rotator.draw(dst, src.pixels(), src.pitch(), {dst.rect(), src.rect(), 6, 6, 0.5F, scale});
            EXPECT_EQ(dst.differenceFrom(before), "") << rotator.name;
        }
}

TEST(Z_Roto, a_centre_far_outside_draws_at_most_the_clamped_column_or_row) {
    Surface src = numbered(6, 6);
    const Surface before(12, 12, untouched);
    for (const Rotator &rotator : rotators)
        for (const int y : {lowest, -100000, 6, 100000, highest})
            for (const int x : {lowest, -100000, 6, 100000, highest}) {
                if (x == 6 && y == 6)
                    continue;
                Surface dst = before;
                rotator.draw(dst, src.pixels(), src.pitch(), {dst.rect(), src.rect(), x, y, 0.7F, 1});
                EXPECT_EQ(dst.differenceFrom(before), "") << rotator.name << " around " << x << ", " << y;
            }
    // At a scale above 32768 every position is the source's centre, so the source test lets all pixels through: beyond
    // the right and bottom one column and one row are walked, beyond the left and top none.
    Surface one(1, 1, 0x123456);
    Surface dst = before;
    Surface expected = before;
    const tagRECT clip = {2, 3, 8, 9};
    for (int y = 3; y < 9; ++y)
        expected.at(7, y) = 0x123456;
    nearest.draw(dst, one.pixels(), one.pitch(), {clip, one.rect(), 1000000, 5, 0.7F, 40000});
    EXPECT_EQ(dst.differenceFrom(expected), "");
    for (int x = 2; x < 8; ++x)
        expected.at(x, 8) = 0x123456;
    nearest.draw(dst, one.pixels(), one.pitch(), {clip, one.rect(), 5, 1000000, 0.7F, 40000});
    EXPECT_EQ(dst.differenceFrom(expected), "");
    nearest.draw(dst, one.pixels(), one.pitch(), {clip, one.rect(), -1000000, 5, 0.7F, 40000});
    nearest.draw(dst, one.pixels(), one.pitch(), {clip, one.rect(), 5, -1000000, 0.7F, 40000});
    EXPECT_EQ(dst.differenceFrom(expected), "");
}

TEST(Z_Roto, a_negative_scale_draws_nothing_but_for_the_clamped_corner) {
    Surface src = numbered(6, 6);
    Surface dst(12, 12, untouched);
    Surface expected = dst;
    for (const float scale : {-0.001F, -0.5F, -1.0F, -3.0F, -40000.0F})
        for (const int centre : {-100000, 0, 6, 11})
            nearest.draw(dst, src.pixels(), src.pitch(), {dst.rect(), src.rect(), centre, 6, 0.7F, scale});
    EXPECT_EQ(dst.differenceFrom(expected), "");
    expected.at(11, 11) = src.at(3, 3);
    nearest.draw(dst, src.pixels(), src.pitch(), {dst.rect(), src.rect(), 1000000, 1000000, 0.7F, -40000.0F});
    EXPECT_EQ(dst.differenceFrom(expected), "");
}

TEST(Z_Roto, empty_sources_and_clips_draw_nothing) {
    Surface src = numbered(6, 6);
    const Surface before(12, 12, untouched);
    for (const Rotator &rotator : rotators)
        for (int extent = -3; extent <= 0; ++extent)
            for (const float angle : {0.0F, 0.7F, halfTurn}) {
                Surface dst = before;
                const tagRECT whole = dst.rect();
                rotator.draw(dst, src.pixels(), src.pitch(), {whole, {3, 0, 3 + extent, 6}, 6, 6, angle, 2});
                rotator.draw(dst, src.pixels(), src.pitch(), {whole, {0, 3, 6, 3 + extent}, 6, 6, angle, 2});
                rotator.draw(dst, src.pixels(), src.pitch(), {{6, 0, 6 + extent, 12}, src.rect(), 6, 6, angle, 2});
                rotator.draw(dst, src.pixels(), src.pitch(), {{0, 6, 12, 6 + extent}, src.rect(), 6, 6, angle, 2});
                EXPECT_EQ(dst.differenceFrom(before), "") << rotator.name;
            }
    for (const Rotator &rotator : {linear, linearAlpha}) { // four taps need two pixels in each direction
        Surface dst = before;
        rotator.draw(dst, src.pixels(), src.pitch(), {dst.rect(), {2, 2, 3, 6}, 6, 6, 0.7F, 3});
        rotator.draw(dst, src.pixels(), src.pitch(), {dst.rect(), {2, 2, 6, 3}, 6, 6, 0.7F, 3});
        EXPECT_EQ(dst.differenceFrom(before), "") << rotator.name;
    }
}

TEST(Z_Roto, the_key_variants_leave_out_0_and_draw_black_with_a_top_byte) {
    Surface src(4, 1);
    src.at(1, 0) = 0x01000000;
    src.at(2, 0) = 0x00000001;
    Surface dst(8, 3, untouched);
    Surface expected = dst;
    expected.at(3, 1) = 0x01000000;
    expected.at(4, 1) = 0x00000001;
    keyed.draw(dst, src.pixels(), src.pitch(), {dst.rect(), src.rect(), 4, 1, 0, 1});
    EXPECT_EQ(dst.differenceFrom(expected), "");
    Surface sum(8, 3, untouched);
    Surface expectedSum = sum;
    expectedSum.at(3, 1) = 0x00777777; // adding black clears the top byte
    expectedSum.at(4, 1) = 0x00777778;
    keyedAdd.draw(sum, src.pixels(), src.pitch(), {sum.rect(), src.rect(), 4, 1, 0, 1});
    EXPECT_EQ(sum.differenceFrom(expectedSum), "");
}

TEST(Z_Roto, alpha_1_is_the_plain_colour_with_top_byte_0) {
    test::Random random(1);
    Surface src = Surface::randomOfSize(random, 9, 7);
    const Surface before = Surface::randomOfSize(random, 20, 20);
    const Scene scene = {before.rect(), src.rect(), 10, 10, 0.6F, 1.5F, 1.0F};
    Surface copied = before;
    nearest.draw(copied, src.pixels(), src.pitch(), scene);
    Surface blended = before;
    nearestAlpha.draw(blended, src.pixels(), src.pitch(), scene);
    Surface filtered = before;
    linear.draw(filtered, src.pixels(), src.pitch(), scene);
    Surface filteredBlended = before;
    linearAlpha.draw(filteredBlended, src.pixels(), src.pitch(), scene);
    int drawn = 0;
    for (int y = 0; y < 20; ++y)
        for (int x = 0; x < 20; ++x)
            if (copied.at(x, y) != before.at(x, y)) {
                ++drawn;
                EXPECT_EQ(blended.at(x, y), copied.at(x, y) & 0xFFFFFF);
            }
    EXPECT_GT(drawn, 80);
    EXPECT_EQ(filteredBlended.differenceFrom(filtered), "");
}

q_ulong blendedOnce(const Rotator &rotator, q_ulong d, q_ulong s, float alpha) {
    Surface dst(1, 1, d);
    Surface src(3, 3, s);
    rotator.draw(dst, src.pixels(), src.pitch(), {dst.rect(), src.rect(), 0, 0, 0, 1, alpha});
    return dst.at(0, 0);
}

TEST(Z_Roto, alpha_below_0_lets_blue_fill_the_colours_but_not_the_top_byte) {
    for (const Rotator &rotator : {nearestAlpha, linearAlpha}) {
        // 1 * 512 - 3 * 256 = -256, shifted as a word without a sign
        EXPECT_EQ(blendedOnce(rotator, 0x000001, 0x000003, -1.0F), 0x00FFFFFFu);
        EXPECT_EQ(blendedOnce(rotator, 0x102000, 0x010101, -1.0F), 0x00FFFFFFu);
        EXPECT_EQ(blendedOnce(rotator, 0x102030, 0x010100, -1.0F), 0x001F3F60u); // 2 d - s
    }
}

TEST(Z_Roto, alpha_beyond_1_wraps_red_and_green_in_place_and_blue_runs_upward) {
    for (const Rotator &rotator : {nearestAlpha, linearAlpha}) {
        EXPECT_EQ(blendedOnce(rotator, 0, 0x808000, 2.0F), 0u);
        EXPECT_EQ(blendedOnce(rotator, 0, 0x0000FF, 2.0F), 0x000001FEu);
        EXPECT_EQ(blendedOnce(rotator, 0, 0x402010, 2.0F), 0x00804020u);
    }
}

TEST(Z_Roto, every_weight_from_far_below_0_to_far_above_1) {
    for (const Rotator &rotator : {nearestAlpha, linearAlpha})
        for (int weight = -1024; weight <= 1280; ++weight)
            for (const q_ulong d : {0x00FF8001u, 0x12345678u})
                for (const q_ulong s : {0xFF01FF80u, 0x00FFFFFFu}) {
                    const float alpha = static_cast<float>(weight) / 256;
                    ASSERT_EQ(blendedOnce(rotator, d, s, alpha), plain::turnBlend(d, s, weight))
                        << rotator.name << " " << weight;
                }
}

TEST(Z_Roto, every_pair_of_bytes_in_both_filtered_stores) {
    // One column and row more than the pairs, for the filtered forms end earlier.
    Surface src(257, 257);
    Surface before(256, 256);
    for (q_ulong y = 0; y < 256; ++y)
        for (q_ulong x = 0; x < 256; ++x) {
            before.at(static_cast<int>(x), static_cast<int>(y)) = 0xC3000000 | y << 16 | y << 8 | (255 - y);
            src.at(static_cast<int>(x), static_cast<int>(y)) = 0x80000000 | x << 16 | (255 - x) << 8 | x;
        }
    for (const Rotator &rotator : {linear, linearAlpha})
        for (const int weight : {0, 1, 64, 127, 128, 200, 255, 256}) {
            Surface dst = before;
            Surface expected = before;
            for (int y = 0; y < 256; ++y)
                for (int x = 0; x < 256; ++x) {
                    const q_ulong s = src.at(x, y);
                    const q_ulong d = before.at(x, y);
                    q_ulong colour = s & 0xFFFFFF;
                    if (rotator.alphaTurn) {
                        colour = 0;
                        for (int shift = 0; shift < 24; shift += 8)
                            colour |= ((s >> shift & 0xFF) * static_cast<q_ulong>(weight) +
                                       (d >> shift & 0xFF) * static_cast<q_ulong>(256 - weight)) /
                                          256
                                      << shift;
                    }
                    expected.at(x, y) = colour;
                }
            rotator.draw(dst, src.pixels(), src.pitch(),
                         {dst.rect(), src.rect(), 128, 128, 0, 1, static_cast<float>(weight) / 256});
            ASSERT_EQ(dst.differenceFrom(expected), "") << rotator.name << " " << weight;
        }
}

TEST(Z_Roto, every_size_at_every_quarter_turn_and_scale) {
    test::Random random(2);
    const Surface before = Surface::randomOfSize(random, 16, 16);
    Surface src = Surface::randomOfSize(random, 7, 7);
    for (std::size_t i = 0; i < 6; ++i)
        for (int height = 0; height <= 7; ++height)
            for (int width = 0; width <= 7; ++width)
                for (const float angle : {0.0F, quarterTurn / 2, quarterTurn, halfTurn, threeQuarterTurn, 2 * halfTurn,
                                          -quarterTurn, -halfTurn})
                    for (const float scale : {-1.0F, 1.0e-6F, 0.25F, 0.5F, 1.0F, 1.5F, 2.0F, 1000.0F, 1.0e9F}) {
                        const Scene scene = {{1, 2, 15, 14}, {0, 0, width, height}, 8, 7, angle, scale, 0.3F};
                        Surface dst = before;
                        Surface expected = before;
                        rotators[i].draw(dst, src.pixels(), src.pitch(), scene);
                        twins[i].draw(expected, src.pixels(), src.pitch(), scene);
                        ASSERT_EQ(dst.differenceFrom(expected), "") << rotators[i].name << " " << width << " x "
                                                                    << height << " at " << angle << " and " << scale;
                    }
}

TEST(Z_Roto, huge_angles_draw_pixels_of_the_source_inside_the_clip) {
    Surface src = numbered(6, 6);
    for (float angle = 100; angle < 1.0e38F; angle *= 7) {
        Surface dst(12, 12, untouched);
        nearest.draw(dst, src.pixels(), src.pitch(), {{1, 1, 11, 11}, src.rect(), 6, 6, angle, 1});
        // Truncation moves the source's centre by up to one pixel.
        const q_ulong centre = dst.at(6, 6);
        EXPECT_TRUE(centre == src.at(3, 3) || centre == src.at(2, 3) || centre == src.at(3, 2) ||
                    centre == src.at(2, 2))
            << angle;
        for (int y = -2; y < 14; ++y)
            for (int x = -2; x < 14; ++x) {
                const bool inside = x >= 1 && x < 11 && y >= 1 && y < 11;
                EXPECT_TRUE(dst.at(x, y) == untouched || (inside && dst.at(x, y) >= 1 && dst.at(x, y) <= 36)) << angle;
            }
    }
}

TEST(Z_Roto, surfaces_stored_bottom_up_have_negative_pitches) {
    Surface src = numbered(6, 6);
    Surface dst(8, 8, untouched);
    Surface expected = dst;
    for (int y = 0; y < 6; ++y)
        for (int x = 0; x < 6; ++x)
            expected.at(1 + x, 7 - (1 + y)) = src.at(x, 5 - y);
    tagRECT clip = dst.rect();
    tagRECT rect = src.rect();
    iBltNear32_Z_Roto(&dst.at(0, 7), -dst.pitch(), &src.at(0, 5), -src.pitch(), &clip, &rect, 4, 4, 0, 1);
    EXPECT_EQ(dst.differenceFrom(expected), "");
}

} // namespace
