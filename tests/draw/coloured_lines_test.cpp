#include "support/pictures.h"

#include <array>

namespace {

using namespace test;

constexpr q_ulong old = 0xFFAAAAAA;

/// A line with its shades on a surface, clipped to it.
Surface fatOn(const Surface &surface, int x1, int y1, int x2, int y2, q_ulong colour, int halfWidth) {
    return drawnOn(surface, DDLine_Fat, surface.rect(), x1, y1, x2, y2, colour, halfWidth);
}

TEST(DDLine_Fat, runs_from_white_through_the_colour_to_black_with_red_and_blue_exchanged) {
    // Ends that coincide draw one section. Four shades with a step of 512: blue 0x60 goes 255, 255 - 79, 48, 0; green
    // 0x40 goes 255, 255 - 95, 32, 0; red 0x20 goes 255, 255 - 111, 16, 0.
    const Surface surface = fatOn(Surface(9, 3, old), 4, 1, 4, 1, 0xFF204060, 3);
    EXPECT_EQ(rowIn(surface, 0), Pixels(9, old));
    EXPECT_EQ(rowIn(surface, 1), (Pixels{old, 0, 0x302010, 0xB0A090, 0xFFFFFF, 0xB0A090, 0x302010, 0, old}));
    EXPECT_EQ(rowIn(surface, 2), Pixels(9, old));
}

const Colours shades = {{'.', old}, {'w', 0xFFFFFF}, {'b', 0}};

TEST(DDLine_Fat, half_width_0_is_a_black_line_and_below_0_there_is_none) {
    EXPECT_EQ(rowsOf(fatOn(Surface(5, 3, old), 1, 1, 3, 1, 0xFFFFFF, 0), shades), (Rows{".....", ".bbb.", "....."}));
    for (const int halfWidth : {-1, -100, leastInt})
        EXPECT_EQ(rowsOf(fatOn(Surface(5, 3, old), 1, 1, 3, 1, 0xFFFFFF, halfWidth), shades), Rows(3, "....."));
}

TEST(DDLine_Fat, a_first_end_outside_along_the_major_axis_draws_nothing_and_a_second_one_the_part_inside) {
    const Surface fresh(9, 9, old);
    for (const auto &[x1, y1, x2, y2] : {std::array{4, -1, 4, 8}, {4, 9, 4, 0}, {-1, 4, 8, 4}, {9, 4, 0, 4}})
        EXPECT_EQ(fatOn(fresh, x1, y1, x2, y2, 0xFFFFFF, 2).differenceFrom(fresh), "") << x1 << ", " << y1;
    EXPECT_EQ(rowsOf(fatOn(Surface(5, 5, old), 2, 2, 2, 20, 0x808080, 1), shades),
              (Rows{".....", ".....", ".bwb.", ".bwb.", ".bwb."}));
}

TEST(DDLine_Fat, near_the_clip_outer_shades_are_lost_on_both_sides_at_once) {
    // In column 1 a shade at distance 2 would lie at -1. The one beside the centre is the second of three with steps of
    // 2048 / 3, one step before black: 0x80 * 682 / 1024.
    EXPECT_EQ(rowIn(fatOn(Surface(4, 3, old), 1, 1, 1, 1, 0x808080, 2), 1),
              (Pixels{0x555555, 0xFFFFFF, 0x555555, old}));
}

TEST(DDLine_Fat, the_centre_is_not_clipped_along_the_minor_axis) {
    Surface surface(9, 9, old);
    Surface expected = showing(surface, -3, 2, Surface(1, 3, 0xFFFFFF), {0, 0, 1, 3});
    expected = showing(expected, 2, 11, Surface(4, 1, 0xFFFFFF), {0, 0, 4, 1});
    surface = fatOn(fatOn(surface, -3, 2, -3, 4, 0x808080, 4), 2, 11, 5, 11, 0x808080, 4);
    EXPECT_EQ(surface.differenceFrom(expected), "");
}

TEST(DDLine_Fat, beyond_2047_shades_the_step_is_0) {
    const Surface black = drawnOn(Surface(10, 1, old), DDLine_Fat, {-4000, 0, 4000, 1}, 5, 0, 5, 0, 0x808080, 0);
    EXPECT_EQ(black.at(5, 0), 0u);
    EXPECT_EQ(rowsOf(fatOn(black, 5, 0, 5, 0, 0x123456, 3000), shades), (Rows{".wwwwwwwww"}));
}

Surface changingOn(const Surface &surface, int x1, int y1, int x2, int y2, q_ulong colour1, q_ulong colour2) {
    return drawnOn(surface, DDLine_Color_Change, x1, y1, x2, y2, colour1, colour2);
}

TEST(DDLine_Color_Change, the_second_pixel_repeats_the_first_colour_and_the_second_colour_is_not_reached) {
    EXPECT_EQ(rowIn(changingOn(Surface(7, 1, old), 1, 0, 5, 0, 0x77004000, 0x77000080), 0),
              (Pixels{old, 0x77004000, 0x00004000, 0x00003020, 0x00002040, 0x00001060, old}));
    EXPECT_EQ(rowIn(changingOn(Surface(3, 1, old), 1, 0, 1, 0, 0x12345678, 0), 0), (Pixels{old, 0x12345678, old}));
}

TEST(DDLine_Color_Change, falling_channels_are_truncated_towards_zero_and_a_top_byte_bends_the_change_of_red) {
    EXPECT_EQ(rowIn(changingOn(Surface(5, 1), 0, 0, 4, 0, 0x010101, 0), 0), Pixels(5, 0x010101));
    // Upper halves go from 0 to 256 in four steps.
    EXPECT_EQ(rowIn(changingOn(Surface(5, 1, old), 0, 0, 4, 0, 0, 0x01000000), 0),
              (Pixels{0, 0, 0x400000, 0x800000, 0xC00000}));
}

Surface addedOn(const Surface &surface, int x1, int y1, int x2, int y2, q_ulong colour) {
    return drawnOn(surface, iLineAddSome, x1, y1, x2, y2, colour, surface.width(), surface.height());
}

TEST(iLineAddSome, the_first_end_is_not_drawn_and_the_pixel_after_it_gets_the_whole_colour) {
    EXPECT_EQ(rowIn(addedOn(Surface(7, 1, 0xFF010203), 1, 0, 5, 0, 0x804020), 0),
              (Pixels{0xFF010203, 0xFF010203, 0x814223, 0x61321B, 0x412213, 0x21120B, 0xFF010203}));
}

TEST(iLineAddSome, one_step_draws_the_far_end_alone_with_the_whole_colour_and_no_step_nothing) {
    EXPECT_EQ(pixelsOf(addedOn(Surface(2, 2), 0, 0, 1, 1, 0x123456)), (Pixels{0, 0, 0, 0x123456}));
    EXPECT_EQ(pixelsOf(addedOn(Surface(2, 2), 1, 1, 1, 1, 0x123456)), Pixels(4, 0));
}

TEST(iLineAddSome, fades_on_while_outside) {
    // Eight steps of 16, the first four at -4 to -1.
    const Surface surface = addedOn(Surface(4, 1), -5, 0, 3, 0, 0x000080);
    EXPECT_EQ(rowIn(surface, 0), (Pixels{0x40, 0x30, 0x20, 0x10}));
    EXPECT_EQ(surface.at(-1, 0), 0u);
}

TEST(iLineAddSome, old_red_is_a_byte_and_the_colours_red_its_upper_half) {
    EXPECT_EQ(addedOn(Surface(4, 1, 0xFF100000), 0, 0, 1, 0, 0x00200000).at(1, 0), 0x00300000u);
    EXPECT_EQ(addedOn(Surface(4, 1, 0xFF100000), 0, 0, 1, 0, 0x01000000).at(1, 0), 0x00FF0000u);
}

TEST(iLineAddSome, the_accumulator_is_signed) {
    // Of 0xFFFF in 512 steps of 128 / 65536 each, 128 are left at the end; but beyond 2^31 the fall turns negative.
    EXPECT_EQ(addedOn(Surface(520, 1), 0, 0, 512, 0, 0xFFFF0000).at(512, 0), 0x00FF0000u);
}

} // namespace
