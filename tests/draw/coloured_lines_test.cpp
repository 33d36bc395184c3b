#include "plain/blended_lines.h"
#include "support/surface.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

using plain::draw::shade;
using test::Surface;

void drawFat(Surface &s, tagRECT clip, int x1, int y1, int x2, int y2, q_ulong colour, int halfWidth) {
    DDLine_Fat(s.pixels(), &clip, s.pitch(), x1, y1, x2, y2, colour, halfWidth);
}

TEST(DDLine_Fat, runs_from_white_through_the_colour_to_black_with_red_and_blue_exchanged) {
    // Four shades with a step of 512. Blue 0x60 goes 255, 255 - 79, 48, 0; green 0x40 goes 255, 255 - 95, 32, 0;
    // red 0x20 goes 255, 255 - 111, 16, 0.
    Surface surface(9, 3, 0xFFAAAAAA);
    Surface expected = surface;
    const q_ulong shades[] = {0xFFFFFF, 0xB0A090, 0x302010, 0x000000};
    for (int k = 0; k < 4; ++k)
        expected.at(4 - k, 1) = expected.at(4 + k, 1) = shades[k];
    drawFat(surface, surface.rect(), 4, 1, 4, 1, 0xFF204060, 3);
    EXPECT_EQ(surface.differenceFrom(expected), "");
}

TEST(DDLine_Fat, ends_that_coincide_draw_one_section) {
    Surface surface(9, 9, 0xFFAAAAAA);
    Surface expected = surface;
    for (int k = 0; k <= 2; ++k)
        expected.at(4 - k, 4) = expected.at(4 + k, 4) = shade(0x123456, 2, k);
    drawFat(surface, surface.rect(), 4, 4, 4, 4, 0x123456, 2);
    EXPECT_EQ(surface.differenceFrom(expected), "");
}

TEST(DDLine_Fat, half_width_0_is_a_black_line) {
    Surface surface(9, 9, 0xFFAAAAAA);
    Surface expected = surface;
    for (int x = 2; x <= 6; ++x)
        expected.at(x, 4) = 0;
    drawFat(surface, surface.rect(), 2, 4, 6, 4, 0xFFFFFF, 0);
    EXPECT_EQ(surface.differenceFrom(expected), "");
}

TEST(DDLine_Fat, negative_half_widths_draw_nothing) {
    const Surface fresh(9, 9, 0xFFAAAAAA);
    for (const int halfWidth : {-1, -2, -3, -100, std::numeric_limits<int>::min()}) {
        Surface surface = fresh;
        drawFat(surface, surface.rect(), 2, 4, 6, 4, 0xFFFFFF, halfWidth);
        EXPECT_EQ(surface.differenceFrom(fresh), "");
    }
}

TEST(DDLine_Fat, a_first_end_outside_along_the_major_axis_draws_nothing) {
    const Surface fresh(9, 9, 0xFFAAAAAA);
    Surface surface = fresh;
    drawFat(surface, surface.rect(), 4, -1, 4, 8, 0xFFFFFF, 2);
    drawFat(surface, surface.rect(), 4, 9, 4, 0, 0xFFFFFF, 2);
    drawFat(surface, surface.rect(), -1, 4, 8, 4, 0xFFFFFF, 2);
    drawFat(surface, surface.rect(), 9, 4, 0, 4, 0xFFFFFF, 2);
    EXPECT_EQ(surface.differenceFrom(fresh), "");
}

TEST(DDLine_Fat, a_second_end_outside_draws_the_part_inside) {
    Surface surface(9, 9, 0xFFAAAAAA);
    Surface expected = surface;
    for (int y = 5; y < 9; ++y)
        expected.at(4, y) = 0xFFFFFF, expected.at(3, y) = expected.at(5, y) = 0;
    drawFat(surface, surface.rect(), 4, 5, 4, 20, 0x808080, 1);
    EXPECT_EQ(surface.differenceFrom(expected), "");
}

TEST(DDLine_Fat, sections_outside_are_left_out_and_the_line_goes_on) {
    // Along y, from row 3 to row 6 of a clip that ends at row 5: two rows, whichever columns they lie in.
    Surface surface(12, 12, 0xFFAAAAAA);
    Surface expected = surface;
    tagRECT clip = {0, 3, 12, 5};
    plain::DDLine_Fat(expected.pixels(), &clip, expected.pitch(), 4, 3, 6, 8, 0x808080, 1);
    drawFat(surface, {0, 3, 12, 5}, 4, 3, 6, 8, 0x808080, 1);
    EXPECT_EQ(surface.differenceFrom(expected), "");
    EXPECT_EQ(surface.at(4, 3), 0xFFFFFFu);
    EXPECT_EQ(surface.at(5, 5), 0xFFAAAAAAu);
}

TEST(DDLine_Fat, near_the_clip_outer_shades_are_lost_on_both_sides_at_once) {
    Surface surface(12, 3, 0xFFAAAAAA);
    Surface expected = surface;
    for (int k = 0; k <= 1; ++k) // column 1: a shade at distance 2 would lie at -1
        expected.at(1 - k, 1) = expected.at(1 + k, 1) = shade(0x808080, 4, k);
    drawFat(surface, surface.rect(), 1, 1, 1, 1, 0x808080, 4);
    EXPECT_EQ(surface.differenceFrom(expected), "");
}

TEST(DDLine_Fat, the_centre_is_not_clipped_along_the_minor_axis) {
    Surface surface(9, 9, 0xFFAAAAAA);
    Surface expected = surface;
    for (int y = 2; y <= 4; ++y)
        expected.at(-3, y) = 0xFFFFFF;
    for (int x = 2; x <= 5; ++x)
        expected.at(x, 11) = 0xFFFFFF;
    drawFat(surface, surface.rect(), -3, 2, -3, 4, 0x808080, 4);
    drawFat(surface, surface.rect(), 2, 11, 5, 11, 0x808080, 4);
    EXPECT_EQ(surface.differenceFrom(expected), "");
}

TEST(DDLine_Fat, beyond_2047_shades_the_step_is_0) {
    Surface surface(10, 1, 0xFFAAAAAA);
    drawFat(surface, {-4000, 0, 4000, 1}, 5, 0, 5, 0, 0x808080, 0); // black
    EXPECT_EQ(surface.at(5, 0), 0u);
    drawFat(surface, surface.rect(), 5, 0, 5, 0, 0x123456, 3000);
    for (int k = -4; k <= 4; ++k)
        EXPECT_EQ(surface.at(5 + k, 0), 0xFFFFFFu);
    EXPECT_EQ(surface.at(0, 0), 0xFFAAAAAAu);
}

void changeColour(Surface &s, int x1, int y1, int x2, int y2, q_ulong colour1, q_ulong colour2) {
    DDLine_Color_Change(s.pixels(), s.pitch(), x1, y1, x2, y2, colour1, colour2);
}

TEST(DDLine_Color_Change, the_second_pixel_repeats_the_first_colour_and_the_second_colour_is_not_reached) {
    Surface surface(8, 3, 0xFFAAAAAA);
    Surface expected = surface;
    const q_ulong pixels[] = {0x77004000, 0x00004000, 0x00003020, 0x00002040, 0x00001060};
    for (int x = 0; x < 5; ++x)
        expected.at(1 + x, 1) = pixels[x];
    changeColour(surface, 1, 1, 5, 1, 0x77004000, 0x77000080);
    EXPECT_EQ(surface.differenceFrom(expected), "");
}

TEST(DDLine_Color_Change, ends_that_coincide_write_one_pixel_as_given) {
    Surface surface(5, 5, 0xFFAAAAAA);
    Surface expected = surface;
    expected.at(2, 3) = 0x12345678;
    changeColour(surface, 2, 3, 2, 3, 0x12345678, 0);
    EXPECT_EQ(surface.differenceFrom(expected), "");
}

TEST(DDLine_Color_Change, falling_channels_are_truncated_towards_zero) {
    Surface surface(8, 1, 0);
    changeColour(surface, 0, 0, 4, 0, 0x010101, 0x000000);
    for (int x = 1; x <= 4; ++x)
        EXPECT_EQ(surface.at(x, 0), 0x010101u);
}

TEST(DDLine_Color_Change, a_top_byte_bends_the_change_of_red) {
    // Upper halves go from 0 to 256 in four steps.
    Surface surface(8, 1, 0xFFAAAAAA);
    changeColour(surface, 0, 0, 4, 0, 0x00000000, 0x01000000);
    EXPECT_EQ(surface.at(2, 0), 0x400000u);
    EXPECT_EQ(surface.at(3, 0), 0x800000u);
    EXPECT_EQ(surface.at(4, 0), 0xC00000u);
}

void addSome(Surface &s, int x1, int y1, int x2, int y2, q_ulong colour) {
    iLineAddSome(s.pixels(), s.pitch(), x1, y1, x2, y2, colour, s.width(), s.height());
}

TEST(iLineAddSome, the_first_end_is_not_drawn_and_the_pixel_after_it_gets_the_whole_colour) {
    Surface surface(8, 3, 0xFF010203);
    Surface expected = surface;
    const q_ulong gains[] = {0x804020, 0x603018, 0x402010, 0x201008};
    for (int i = 0; i < 4; ++i)
        expected.at(2 + i, 1) = 0x010203 + gains[i];
    addSome(surface, 1, 1, 5, 1, 0x804020);
    EXPECT_EQ(surface.differenceFrom(expected), "");
}

TEST(iLineAddSome, one_step_draws_the_far_end_alone_with_the_whole_colour) {
    Surface surface(8, 8, 0);
    Surface expected = surface;
    expected.at(4, 5) = 0x123456;
    addSome(surface, 3, 4, 4, 5, 0x123456);
    EXPECT_EQ(surface.differenceFrom(expected), "");
}

TEST(iLineAddSome, ends_that_coincide_draw_nothing) {
    const Surface fresh(8, 8, 0xFF112233);
    Surface surface = fresh;
    addSome(surface, 4, 4, 4, 4, 0xFFFFFF);
    EXPECT_EQ(surface.differenceFrom(fresh), "");
}

TEST(iLineAddSome, fades_on_while_outside) {
    Surface surface(4, 1, 0);
    addSome(surface, -5, 0, 3, 0, 0x000080); // eight steps of 16, the first four at -4 to -1
    EXPECT_EQ(surface.at(0, 0), 0x40u);
    EXPECT_EQ(surface.at(3, 0), 0x10u);
    EXPECT_EQ(surface.at(-1, 0), 0u);
}

TEST(iLineAddSome, old_red_is_a_byte_and_the_colours_red_its_upper_half) {
    Surface surface(4, 1, 0xFF100000);
    addSome(surface, 0, 0, 1, 0, 0x00200000);
    EXPECT_EQ(surface.at(1, 0), 0x00300000u);
    addSome(surface, 1, 0, 2, 0, 0x01000000);
    EXPECT_EQ(surface.at(2, 0), 0x00FF0000u);
}

TEST(iLineAddSome, the_accumulator_is_signed) {
    // Of 0xFFFF in 512 steps of 128 / 65536 each, 128 are left at the end; but beyond 2^31 the fall turns negative.
    Surface surface(520, 1, 0);
    addSome(surface, 0, 0, 512, 0, 0xFFFF0000);
    EXPECT_EQ(surface.at(512, 0), 0x00FF0000u);
}

} // namespace
