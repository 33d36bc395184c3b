#include "support/surface.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

using test::Surface;

/// A member of the family, called alike.
using Draw = void (*)(q_ulong *, tagRECT *, int, int, int, int, int, q_ulong, int);

const Draw members[] = {iLine_AntiAliasing, iLine_AntiAliasing_Alpha, iLine_AntiAliasing_Add, iLine_AntiAliasing_Max,
                        iLine_AntiAliasing_AddSome};

struct Ends {
    int x1;
    int y1;
    int x2;
    int y2;
};

void draw(Draw member, Surface &surface, tagRECT clip, Ends ends, q_ulong colour, int width) {
    member(surface.pixels(), &clip, surface.pitch(), ends.x1, ends.y1, ends.x2, ends.y2, colour, width);
}

/// One pixel of a core or an edge at full weight: a vertical line across a surface of one colour.
q_ulong drawnOver(Draw member, q_ulong old, q_ulong colour, int width) {
    Surface surface(12, 8, old);
    draw(member, surface, surface.rect(), {5, 0, 5, 7}, colour, width);
    return surface.at(5, 4);
}

TEST(iLine_AntiAliasing, extreme_ends_and_widths_write_nothing_outside_the_clip) {
    constexpr int least = std::numeric_limits<int>::min();
    constexpr int greatest = std::numeric_limits<int>::max();
    const Surface fresh(9, 9, 0x80112233);
    constexpr int coordinates[] = {least, least + 1, -8388608, -1, 5, 8388607, greatest - 1, greatest};
    for (const Draw member : members)
        for (const int width : {least, -100, -5, 0, 1, 3, 100, greatest})
            for (const int x1 : coordinates)
                for (const int y1 : coordinates)
                    for (const int x2 : coordinates)
                        for (const int y2 : coordinates) {
                            Surface surface = fresh;
                            draw(member, surface, {1, 2, 8, 7}, {x1, y1, x2, y2}, 0xFFFFFF, width);
                            for (int y = 2; y < 7; ++y)
                                for (int x = 1; x < 8; ++x)
                                    surface.at(x, y) = 0x80112233;
                            ASSERT_TRUE(surface == fresh)
                                << "from " << x1 << ", " << y1 << " to " << x2 << ", " << y2 << " of width " << width
                                << ": " << surface.differenceFrom(fresh);
                        }
}

TEST(iLine_AntiAliasing, ends_that_coincide_draw_nothing_in_any_member) {
    const Surface fresh(9, 9, 0xFF112233);
    for (const Draw member : members)
        for (int width = 0; width <= 4; ++width) {
            Surface surface = fresh;
            draw(member, surface, surface.rect(), {4, 4, 4, 4}, 0xFFFFFF, width);
            EXPECT_EQ(surface.differenceFrom(fresh), "") << "of width " << width;
        }
}

TEST(iLine_AntiAliasing, equal_extents_run_along_y) {
    Surface surface(10, 10, 0xFF112233);
    Surface expected = surface;
    for (int i = 2; i <= 6; ++i) {
        expected.at(i, i) = 0x00ABCDEF;
        expected.at(i + 1, i) = 0x00112233; // beside it, not below
    }
    draw(iLine_AntiAliasing, surface, surface.rect(), {2, 2, 6, 6}, 0xABCDEF, 1);
    EXPECT_EQ(surface.differenceFrom(expected), "");

    Surface falling(10, 10, 0xFF112233);
    expected = falling;
    for (int i = 2; i <= 6; ++i) {
        expected.at(8 - i, i) = 0x00ABCDEF;
        expected.at(9 - i, i) = 0x00112233;
    }
    draw(iLine_AntiAliasing, falling, falling.rect(), {2, 6, 6, 2}, 0xABCDEF, 1);
    EXPECT_EQ(falling.differenceFrom(expected), "");
}

TEST(iLine_AntiAliasing, vertical_line_of_width_1_is_solid_and_clears_the_top_bytes_beside_it) {
    Surface surface(10, 10, 0xFF112233);
    Surface expected = surface;
    for (int y = 2; y <= 7; ++y) {
        expected.at(4, y) = 0x00ABCDEF;
        expected.at(5, y) = 0x00112233;
    }
    draw(iLine_AntiAliasing, surface, surface.rect(), {4, 7, 4, 2}, 0x77ABCDEF, 1);
    EXPECT_EQ(surface.differenceFrom(expected), "");
}

TEST(iLine_AntiAliasing, half_a_pixel_splits_the_colour_between_both_edges) {
    Surface surface(10, 10, 0);
    draw(iLine_AntiAliasing, surface, surface.rect(), {2, 3, 4, 4}, 0xFF8001, 1); // slope 128
    EXPECT_EQ(surface.at(2, 3), 0xFF8001u);
    EXPECT_EQ(surface.at(3, 3), 0x7F4000u); // 255 * 128 / 256 = 127.5
    EXPECT_EQ(surface.at(3, 4), 0x7F4000u);
    EXPECT_EQ(surface.at(4, 4), 0xFF8001u);
    EXPECT_EQ(surface.at(4, 3), 0u);
}

TEST(iLine_AntiAliasing, slopes_are_truncated_towards_zero) {
    // -256 / 3 is -85, so the fractions are 256 - 85 and 256 - 170; rounding down would give -86.
    Surface surface(12, 12, 0);
    draw(iLine_AntiAliasing, surface, surface.rect(), {2, 6, 5, 5}, 0xFF, 1);
    EXPECT_EQ(surface.at(3, 5), 255u * 85 / 256);
    EXPECT_EQ(surface.at(3, 6), 255u * 171 / 256);
    EXPECT_EQ(surface.at(4, 5), 255u * 170 / 256);
    EXPECT_EQ(surface.at(5, 5), 255u * 255 / 256);
    EXPECT_EQ(surface.at(5, 6), 255u * 1 / 256);
}

TEST(iLine_AntiAliasing, major_axis_reaches_its_limit_while_the_minor_position_stays_below_it) {
    const auto pixelsInRow = [](int y, Ends ends) {
        Surface surface(10, 10, 0);
        draw(iLine_AntiAliasing, surface, surface.rect(), ends, 0xFFFFFF, 1);
        int count = 0;
        for (int x = -8; x < 18; ++x)
            count += surface.at(x, y) != 0;
        return count;
    };
    // Of the rows 0 to 9 an upright line reaches 1 to 8, a level one lies in 1 to 7.
    EXPECT_EQ(pixelsInRow(0, {4, -5, 4, 15}), 0);
    EXPECT_EQ(pixelsInRow(1, {4, -5, 4, 15}), 1);
    EXPECT_EQ(pixelsInRow(8, {4, -5, 4, 15}), 1);
    EXPECT_EQ(pixelsInRow(9, {4, -5, 4, 15}), 0);
    EXPECT_EQ(pixelsInRow(0, {-5, 0, 15, 0}), 0);
    EXPECT_EQ(pixelsInRow(1, {-5, 1, 15, 1}), 8);
    EXPECT_EQ(pixelsInRow(7, {-5, 7, 15, 7}), 8);
    EXPECT_EQ(pixelsInRow(8, {-5, 8, 15, 8}), 0);
}

TEST(iLine_AntiAliasing, clipping_does_not_bend_a_line) {
    for (const Ends ends : {Ends{-17, 3, 40, 19}, Ends{40, 2, -17, 22}, Ends{5, -21, 18, 50}, Ends{20, 44, 3, -13}}) {
        Surface clipped(24, 24, 0x112233);
        Surface whole(120, 120, 0x112233);
        draw(iLine_AntiAliasing, clipped, clipped.rect(), ends, 0xFFEEDD, 3);
        draw(iLine_AntiAliasing, whole, whole.rect(), {ends.x1 + 40, ends.y1 + 40, ends.x2 + 40, ends.y2 + 40},
             0xFFEEDD, 3);
        int drawn = 0;
        for (int y = 4; y < 20; ++y)
            for (int x = 4; x < 20; ++x) {
                ASSERT_EQ(clipped.at(x, y), whole.at(x + 40, y + 40)) << x << ", " << y;
                drawn += clipped.at(x, y) != 0x112233;
            }
        EXPECT_GT(drawn, 16);
    }
}

TEST(iLine_AntiAliasing, width_spreads_the_edges_around_the_core) {
    // Width 4: edges at -2 and +2, core -1 to 1, stored whole.
    Surface surface(16, 9, 0xFF112233);
    Surface expected = surface;
    for (int y = 3; y <= 5; ++y) {
        expected.at(5, y) = 0x00ABCDEF;
        for (int x = 6; x <= 8; ++x)
            expected.at(x, y) = 0x77ABCDEF;
        expected.at(9, y) = 0x00112233;
    }
    draw(iLine_AntiAliasing, surface, surface.rect(), {7, 3, 7, 5}, 0x77ABCDEF, 4);
    EXPECT_EQ(surface.differenceFrom(expected), "");
}

TEST(iLine_AntiAliasing, width_0_blends_the_second_edge_onto_the_first) {
    // Half a pixel: 200 half over 0 is 100, and 200 half over that 150.
    Surface surface(10, 10, 0);
    draw(iLine_AntiAliasing, surface, surface.rect(), {2, 3, 4, 4}, 200, 0);
    EXPECT_EQ(surface.at(3, 3), 150u);
    EXPECT_EQ(surface.at(3, 4), 0u);
}

TEST(iLine_AntiAliasing, width_0_reaches_the_right_and_bottom_side_less_one) {
    Surface surface(10, 10, 0);
    draw(iLine_AntiAliasing, surface, surface.rect(), {-5, 8, 15, 8}, 0xFF, 0);
    EXPECT_EQ(surface.at(0, 8), 0u);
    EXPECT_EQ(surface.at(1, 8), 0xFFu);
    EXPECT_EQ(surface.at(9, 8), 0xFFu);
    Surface below(10, 10, 0);
    draw(iLine_AntiAliasing, below, below.rect(), {-5, 9, 15, 9}, 0xFF, 0);
    EXPECT_EQ(below.differenceFrom(Surface(10, 10, 0)), "");
}

TEST(iLine_AntiAliasing_Alpha, white_drawn_over_white_settles_at_0xF8_in_the_core) {
    EXPECT_EQ(drawnOver(iLine_AntiAliasing_Alpha, 0xFFFFFFFF, 0xFFFFFF, 3), 0x00F8F8F8u);
    EXPECT_EQ(drawnOver(iLine_AntiAliasing_Alpha, 0x00F8F8F8, 0xFFFFFF, 3), 0x00F8F8F8u);
}

TEST(iLine_AntiAliasing_Alpha, edges_are_an_eighth_of_full_coverage_at_most) {
    EXPECT_EQ(drawnOver(iLine_AntiAliasing_Alpha, 0xFF000000, 0xFF8008, 1), 0x001F1001u); // 255 * 32 / 256 = 31.9
}

TEST(iLine_AntiAliasing_Add, core_and_full_edge_add_the_colour_and_saturate) {
    for (const int width : {1, 3})
        EXPECT_EQ(drawnOver(iLine_AntiAliasing_Add, 0x001080F0, 0x00208020, width), 0x0030FFFFu);
}

TEST(iLine_AntiAliasing_Add, a_top_byte_in_the_pixel_drives_red_to_255) {
    for (const int width : {1, 3})
        EXPECT_EQ(drawnOver(iLine_AntiAliasing_Add, 0x01000000, 0x00010203, width), 0x00FF0203u);
}

TEST(iLine_AntiAliasing_Add, a_top_byte_in_the_colour_is_a_very_large_red) {
    for (const int width : {1, 3})
        EXPECT_EQ(drawnOver(iLine_AntiAliasing_Add, 0x00000000, 0x01000203, width), 0x00FF0203u);
}

TEST(iLine_AntiAliasing_Max, the_greater_channel_stays) {
    for (const int width : {1, 3})
        EXPECT_EQ(drawnOver(iLine_AntiAliasing_Max, 0x00805010, 0x00409010, width), 0x00809010u);
}

TEST(iLine_AntiAliasing_Max, edges_do_not_raise_a_channel_beyond_their_coverage) {
    Surface surface(10, 10, 0x404040);
    draw(iLine_AntiAliasing_Max, surface, surface.rect(), {2, 3, 4, 4}, 0xFF6000, 1);
    EXPECT_EQ(surface.at(3, 3), 0x7F4040u);
    EXPECT_EQ(surface.at(3, 4), 0x7F4040u);
}

TEST(iLine_AntiAliasing_Max, the_winner_of_red_brings_its_top_byte_along) {
    for (const int width : {1, 3}) {
        EXPECT_EQ(drawnOver(iLine_AntiAliasing_Max, 0x01000000, 0x00FF0000, width), 0x01000000u);
        EXPECT_EQ(drawnOver(iLine_AntiAliasing_Max, 0x00FF0000, 0x01000000, width), 0x01000000u);
        EXPECT_EQ(drawnOver(iLine_AntiAliasing_Max, 0x00FF0000, 0x00FE0000, width), 0x00FF0000u);
    }
}

TEST(iLine_AntiAliasing_AddSome, fades_from_the_first_end_whichever_end_the_run_starts_from) {
    // 600 pixels: 1024 / 600 is 1, so the line starts at 600 / 1024 of full, a weight of 150.
    for (const bool downwards : {true, false}) {
        Surface surface(8, 620, 0);
        const int y1 = downwards ? 5 : 605;
        const int y2 = downwards ? 605 : 5;
        draw(iLine_AntiAliasing_AddSome, surface, surface.rect(), {3, y1, 3, y2}, 0x00FF00, 1);
        EXPECT_EQ(surface.at(3, y1), 255u * 150 / 256 << 8);
        EXPECT_EQ(surface.at(3, 305), 255u * 75 / 256 << 8);
        EXPECT_EQ(surface.at(3, y2), 0u);
    }
}

TEST(iLine_AntiAliasing_AddSome, fades_along_x_as_along_y) {
    for (const bool rightwards : {true, false}) {
        Surface surface(40, 8, 0);
        const int x1 = rightwards ? 3 : 35;
        const int x2 = rightwards ? 35 : 3;
        draw(iLine_AntiAliasing_AddSome, surface, surface.rect(), {x1, 3, x2, 3}, 0x00FF00, 1);
        EXPECT_EQ(surface.at(x1, 3), 0xFF00u); // 32 * 32 is 1024
        EXPECT_EQ(surface.at(19, 3), 0x7F00u);
        EXPECT_EQ(surface.at(x2, 3), 0u);
    }
}

TEST(iLine_AntiAliasing_AddSome, lines_beyond_1024_pixels_add_no_colour_but_rewrite_what_they_touch) {
    Surface surface(8, 1040, 0);
    for (int y = 0; y < 1040; ++y) {
        surface.at(3, y) = 0x00112233;
        surface.at(4, y) = 0x01112233;
    }
    Surface expected = surface;
    for (int y = 5; y <= 1030; ++y)
        expected.at(4, y) = 0x00FF2233;
    draw(iLine_AntiAliasing_AddSome, surface, surface.rect(), {3, 5, 3, 1030}, 0xFFFFFF, 1);
    EXPECT_EQ(surface.differenceFrom(expected), "");

    draw(iLine_AntiAliasing_AddSome, surface, surface.rect(), {3, 5, 3, 1029}, 0x0000CC, 1); // 1024 pixels
    EXPECT_EQ(surface.at(3, 5), 0x001122FFu);
}

TEST(iLine_AntiAliasing_AddSome, has_no_core) {
    Surface surface(16, 9, 0xFF112233);
    Surface expected = surface;
    const q_ulong faded[] = {0xFF3243, 0xFF2A3B, 0xFF2233};
    for (int y = 3; y <= 5; ++y) {
        expected.at(5, y) = faded[y - 3];
        expected.at(9, y) = 0x00FF2233;
    }
    draw(iLine_AntiAliasing_AddSome, surface, surface.rect(), {7, 3, 7, 5}, 0x101010, 4);
    EXPECT_EQ(surface.differenceFrom(expected), "");
}

} // namespace
