#include "plain/turns.h"
#include "support/painting.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

using namespace test;

/// A turn and its arguments; the clip is all that is drawn on, unless it is another.
struct Scene {
    int centreX;
    int centreY;
    float angle = 0;
    float scale = 1;
    float alpha = 1;
    tagRECT clip = {0, 0, -1, -1};
};

/// One of the six rotators.
struct Rotator {
    using Turn = void(q_ulong *, int, q_ulong *, int, tagRECT *, tagRECT *, int, int, float, float);
    using AlphaTurn = void(q_ulong *, int, q_ulong *, int, tagRECT *, tagRECT *, int, int, float, float, float);

    const char *name;
    Turn *turn;
    AlphaTurn *alphaTurn = nullptr;

    /// Turns a part of `src`, or all of it.
    Surface drawn(Surface on, Surface &src, Scene s, tagRECT part = {0, 0, -1, -1}) const {
        if (s.clip.right < 0)
            s.clip = on.rect();
        if (part.right < 0)
            part = src.rect();
        if (turn)
            turn(on.pixels(), on.pitch(), src.pixels(), src.pitch(), &s.clip, &part, s.centreX, s.centreY, s.angle,
                 s.scale);
        else
            alphaTurn(on.pixels(), on.pitch(), src.pixels(), src.pitch(), &s.clip, &part, s.centreX, s.centreY, s.angle,
                      s.scale, s.alpha);
        return on;
    }
};

constexpr Rotator nearest = {"iBltNear32_Z_Roto", iBltNear32_Z_Roto};
constexpr Rotator keyed = {"iBltNear32_Z_Roto_KeySrc", iBltNear32_Z_Roto_KeySrc};
constexpr Rotator keyedAdd = {"iBltNear32_Z_Roto_KeySrc_Add", iBltNear32_Z_Roto_KeySrc_Add};
constexpr Rotator nearestAlpha = {"iBltNear32_Z_Roto_Alpha", nullptr, iBltNear32_Z_Roto_Alpha};
constexpr Rotator linear = {"iBltLinear32_Z_Roto", iBltLinear32_Z_Roto};
constexpr Rotator linearAlpha = {"iBltLinear32_Z_Roto_Alpha", nullptr, iBltLinear32_Z_Roto_Alpha};
constexpr Rotator rotators[] = {nearest, keyed, keyedAdd, nearestAlpha, linear, linearAlpha};

constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr float quarterTurn = 1.57079632679489661923F;

TEST(Z_Roto, angle_0_and_scale_1_show_the_source_centred) {
    // An odd size centres on the pixel left of and above its true centre.
    for (const auto &[width, height] : {std::pair(6, 4), std::pair(5, 5)}) {
        Surface src = placesOf(width, height);
        const int left = 7 - width / 2;
        const int top = 6 - height / 2;
        const Surface expected = painted(blank(14, 12), {left, top, left + width, top + height},
                                         [&](int x, int y) { return place(x - left, y - top); });
        for (const Rotator &rotator : {nearest, keyed})
            EXPECT_EQ(rotator.drawn(blank(14, 12), src, {7, 6}).differenceFrom(expected), "") << rotator.name;
    }
}

TEST(Z_Roto, filtered_sampling_ends_one_pixel_earlier_at_the_right_and_bottom) {
    Surface src = placesOf(6, 4);
    const Surface expected =
        painted(blank(14, 12), {4, 4, 9, 7}, [](int x, int y) { return place(x - 4, y - 4) & 0xFFFFFF; });
    EXPECT_EQ(linear.drawn(blank(14, 12), src, {7, 6}).differenceFrom(expected), "");
}

TEST(Z_Roto, a_centre_left_of_and_above_the_surface_rounds_downward_too) {
    // From -4 up to 1 the sum is -3, half of which is -2.
    Surface src = placesOf(9, 9);
    const Surface expected = painted(blank(13, 13), {4, 4, 9, 9}, [](int x, int y) { return place(x - 8, y - 8); });
    EXPECT_EQ(nearest.drawn(blank(13, 13), src, {6, 6}, {-4, -4, 1, 1}).differenceFrom(expected), "");
}

TEST(Z_Roto, quarter_turns_bring_the_right_half_down_left_and_up) {
    // Quadrants of a 16 by 16 source, looked at well inside of each.
    constexpr q_ulong upperLeft = 0xAA000001;
    constexpr q_ulong upperRight = 0xBB000002;
    constexpr q_ulong lowerLeft = 0xCC000003;
    constexpr q_ulong lowerRight = 0xDD000004;
    Surface src = painted(Surface(16, 16), {0, 0, 16, 16}, [](int x, int y) {
        return y < 8 ? (x < 8 ? upperLeft : upperRight) : (x < 8 ? lowerLeft : lowerRight);
    });
    struct Turn {
        float angle;
        q_ulong quadrants[4]; // what stands upper left, upper right, lower left and lower right
    };
    constexpr Turn turns[] = {{0, {upperLeft, upperRight, lowerLeft, lowerRight}},
                              {quarterTurn, {lowerLeft, upperLeft, lowerRight, upperRight}},
                              {2 * quarterTurn, {lowerRight, lowerLeft, upperRight, upperLeft}},
                              {3 * quarterTurn, {upperRight, lowerRight, upperLeft, lowerLeft}},
                              {-quarterTurn, {upperRight, lowerRight, upperLeft, lowerLeft}}};
    for (const Turn &turn : turns) {
        const Surface dst = nearest.drawn(blank(24, 24), src, {12, 12, turn.angle});
        for (int i = 0; i < 4; ++i)
            EXPECT_EQ(dst.at(i % 2 ? 16 : 8, i / 2 ? 16 : 8), turn.quadrants[i]) << turn.angle << ", quadrant " << i;
    }
}

TEST(Z_Roto, scale_2_repeats_each_pixel_and_scale_one_half_takes_every_second) {
    Surface src = placesOf(6, 6);
    const Surface doubled =
        painted(blank(20, 20), {4, 4, 16, 16}, [](int x, int y) { return place(x / 2 - 2, y / 2 - 2); });
    EXPECT_EQ(nearest.drawn(blank(20, 20), src, {10, 10, 0, 2}).differenceFrom(doubled), "");
    // The half diagonal is 2.1, and -2 maps to -4, outside.
    const Surface halved =
        painted(blank(20, 20), {9, 9, 12, 12}, [](int x, int y) { return place(2 * x - 17, 2 * y - 17); });
    EXPECT_EQ(nearest.drawn(blank(20, 20), src, {10, 10, 0, 0.5F}).differenceFrom(halved), "");
}

TEST(Z_Roto, the_walk_ends_at_the_half_diagonal) {
    // Of a single pixel that is 0.7, so nothing is drawn; doubled it is 1.4, and the one pixel before the centre maps
    // outside.
    Surface src(1, 1, 0x123456);
    EXPECT_EQ(nearest.drawn(blank(6, 6), src, {3, 3}).differenceFrom(blank(6, 6)), "");
    const Surface doubled = painted(blank(6, 6), {3, 3, 4, 4}, 0x123456);
    EXPECT_EQ(nearest.drawn(blank(6, 6), src, {3, 3, 0, 2}).differenceFrom(doubled), "");
    // 5 by 1: half of 5.1 is 2, which the last of the five columns would exceed.
    Surface wide = placesOf(5, 1);
    const Surface row = painted(blank(11, 5), {3, 2, 7, 3}, [](int x, int) { return place(x - 3, 0); });
    EXPECT_EQ(nearest.drawn(blank(11, 5), wide, {5, 2}).differenceFrom(row), "");
}

TEST(Z_Roto, a_cosine_just_below_1_is_cut_and_costs_the_rows_below_the_centre) {
    // cos(1e-8) is 1 - 5e-17, which 64 bits of mantissa can tell from 1: 16383 of 16384. A row of the destination is
    // then 128 units short of a source pixel, so row 1 still shows row 0, and so on downward; upward nothing changes.
    // In a row the ends at -4 and 4 pixels are cut by one unit and the step by one more: at the centre -3 units are
    // left of -4 pixels and four steps, which is the column before the source's centre.
    Surface src = placesOf(4, 8);
    const Surface dst = nearest.drawn(blank(12, 14), src, {6, 7, 1.0e-8F});
    constexpr int rowsShown[] = {0, 1, 2, 3, 4, 4, 5, 6}; // for the rows 3 to 10 of the destination
    for (int i = 0; i < 8; ++i)
        EXPECT_EQ(dst.at(6, 3 + i), place(1, rowsShown[i])) << i;
}

TEST(Z_Roto, what_is_no_angle_shows_the_centre_pixel_everywhere) {
    Surface src = placesOf(4, 4);
    const Surface expected = painted(blank(10, 10), {3, 3, 7, 7}, place(2, 2));
    for (const float angle : {infinity, -infinity, std::numeric_limits<float>::quiet_NaN()})
        EXPECT_EQ(nearest.drawn(blank(10, 10), src, {5, 5, angle}).differenceFrom(expected), "") << angle;
}

TEST(Z_Roto, scale_0_draws_nothing) {
    Surface src = placesOf(6, 6);
    for (const Rotator &rotator : rotators)
        for (const float scale : {0.0F, -0.0F})
            EXPECT_EQ(rotator.drawn(blank(12, 12), src, {6, 6, 0.5F, scale}).differenceFrom(blank(12, 12)), "")
                << rotator.name;
}

TEST(Z_Roto, a_centre_far_outside_draws_at_most_the_clamped_column_or_row) {
    Surface src = placesOf(6, 6);
    for (const Rotator &rotator : rotators)
        for (const int y : {leastInt, -100000, 6, 100000, greatestInt})
            for (const int x : {leastInt, -100000, 6, 100000, greatestInt})
                if (x != 6 || y != 6) {
                    EXPECT_EQ(rotator.drawn(blank(12, 12), src, {x, y, 0.7F}).differenceFrom(blank(12, 12)), "")
                        << rotator.name << " around " << x << ", " << y;
                }
    // At a scale above 32768 every position is the source's centre, so the source test lets all pixels through: beyond
    // the right and bottom one column and one row are walked, beyond the left and top none.
    Surface one(1, 1, 0x123456);
    const auto expectDrawn = [&](int x, int y, const tagRECT &part) {
        const Scene scene = {x, y, 0.7F, 40000, 1, {2, 3, 8, 9}};
        EXPECT_EQ(nearest.drawn(blank(12, 12), one, scene).differenceFrom(painted(blank(12, 12), part, 0x123456)), "");
    };
    expectDrawn(1000000, 5, {7, 3, 8, 9});
    expectDrawn(5, 1000000, {2, 8, 8, 9});
    expectDrawn(-1000000, 5, {});
    expectDrawn(5, -1000000, {});
}

TEST(Z_Roto, a_negative_scale_draws_nothing_but_for_the_clamped_corner) {
    Surface src = placesOf(6, 6);
    for (const float scale : {-0.001F, -0.5F, -1.0F, -3.0F, -40000.0F})
        for (const int centre : {-100000, 0, 6, 11})
            EXPECT_EQ(nearest.drawn(blank(12, 12), src, {centre, 6, 0.7F, scale}).differenceFrom(blank(12, 12)), "");
    const Surface corner = painted(blank(12, 12), {11, 11, 12, 12}, place(3, 3));
    EXPECT_EQ(nearest.drawn(blank(12, 12), src, {1000000, 1000000, 0.7F, -40000}).differenceFrom(corner), "");
}

TEST(Z_Roto, the_key_variants_leave_out_0_and_draw_black_with_a_top_byte) {
    Surface src(4, 1);
    src.at(1, 0) = 0x01000000;
    src.at(2, 0) = 0x00000001;
    const Surface dst = keyed.drawn(blank(8, 3), src, {4, 1});
    const Surface sum = keyedAdd.drawn(blank(8, 3), src, {4, 1});
    EXPECT_EQ(dst.at(2, 1), untouched);
    EXPECT_EQ(dst.at(3, 1), 0x01000000u);
    EXPECT_EQ(dst.at(4, 1), 0x00000001u);
    EXPECT_EQ(sum.at(2, 1), untouched);
    EXPECT_EQ(sum.at(3, 1), 0x00777777u) << "adding black clears the top byte";
    EXPECT_EQ(sum.at(4, 1), 0x00777778u);
}

TEST(Z_Roto, alpha_1_is_the_plain_colour_with_top_byte_0) {
    Surface src = placesOf(9, 7);
    const Surface before = blank(20, 20);
    const Scene scene = {10, 10, 0.6F, 1.5F};
    const Surface copied = nearest.drawn(before, src, scene);
    const Surface opaque = painted(copied, before.rect(), [&](int x, int y) {
        return copied.at(x, y) == untouched ? untouched : copied.at(x, y) & 0xFFFFFF;
    });
    EXPECT_GT(drawnInRow(copied, 10), 10);
    EXPECT_EQ(nearestAlpha.drawn(before, src, scene).differenceFrom(opaque), "");
    EXPECT_EQ(linearAlpha.drawn(before, src, scene).differenceFrom(linear.drawn(before, src, scene)), "");
}

TEST(Z_Roto, an_alpha_outside_0_to_1_runs_out_of_its_channel) {
    for (const Rotator &rotator : {nearestAlpha, linearAlpha}) {
        const auto blended = [&rotator](q_ulong d, q_ulong s, float alpha) {
            Surface src(3, 3, s);
            return rotator.drawn(Surface(1, 1, d), src, {0, 0, 0, 1, alpha}).at(0, 0);
        };
        // Below 0, blue fills the colours but not the top byte: 1 * 512 - 3 * 256 = -256, shifted without a sign.
        EXPECT_EQ(blended(0x000001, 0x000003, -1), 0x00FFFFFFu);
        EXPECT_EQ(blended(0x102000, 0x010101, -1), 0x00FFFFFFu);
        EXPECT_EQ(blended(0x102030, 0x010100, -1), 0x001F3F60u); // 2 d - s
        // Beyond 1, red and green wrap in place and blue runs upward.
        EXPECT_EQ(blended(0, 0x808000, 2), 0u);
        EXPECT_EQ(blended(0, 0x0000FF, 2), 0x000001FEu);
        EXPECT_EQ(blended(0, 0x402010, 2), 0x00804020u);
    }
}

TEST(Z_Roto, every_pair_of_bytes_in_both_filtered_stores) {
    // One column and row more than the pairs, for the filtered forms end earlier.
    Surface src = painted(Surface(257, 257), {0, 0, 256, 256}, [](int x, int) {
        const auto byte = static_cast<q_ulong>(x);
        return 0x80000000 | byte << 16 | (255 - byte) << 8 | byte;
    });
    const Surface before = painted(Surface(256, 256), {0, 0, 256, 256}, [](int, int y) {
        const auto byte = static_cast<q_ulong>(y);
        return 0xC3000000 | byte << 16 | byte << 8 | (255 - byte);
    });
    for (const int weight : {0, 1, 64, 127, 128, 200, 255, 256}) {
        const Scene scene = {128, 128, 0, 1, static_cast<float>(weight) / 256};
        const Surface plainStore =
            painted(before, before.rect(), [&](int x, int y) { return src.at(x, y) & 0xFFFFFF; });
        const Surface blend = painted(before, before.rect(), [&](int x, int y) {
            return plain::blendWithOpenBlue(before.at(x, y), src.at(x, y), weight);
        });
        EXPECT_EQ(linear.drawn(before, src, scene).differenceFrom(plainStore), "");
        EXPECT_EQ(linearAlpha.drawn(before, src, scene).differenceFrom(blend), "") << weight;
    }
}

} // namespace
