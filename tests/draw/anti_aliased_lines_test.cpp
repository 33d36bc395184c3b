#include "support/pictures.h"

namespace {

using namespace test;

/// A member of the family, called alike.
using Draw = void (*)(q_ulong *, tagRECT *, int, int, int, int, int, q_ulong, int);

const Draw plainLine = iLine_AntiAliasing;
const Draw members[] = {plainLine, iLine_AntiAliasing_Alpha, iLine_AntiAliasing_Add, iLine_AntiAliasing_Max,
                        iLine_AntiAliasing_AddSome};

struct Ends {
    int x1;
    int y1;
    int x2;
    int y2;
};

/// A surface with a line from one end to the other, clipped to it.
Surface lineOn(const Surface &surface, Draw member, Ends ends, q_ulong colour, int width) {
    return drawnOn(surface, member, surface.rect(), ends.x1, ends.y1, ends.x2, ends.y2, colour, width);
}

/// One pixel of a core or an edge at full weight: a vertical line across a surface of one colour.
q_ulong drawnOver(Draw member, q_ulong old, q_ulong colour, int width) {
    return lineOn(Surface(12, 8, old), member, {5, 0, 5, 7}, colour, width).at(5, 4);
}

TEST(iLine_AntiAliasing, ends_that_coincide_draw_nothing_in_any_member) {
    const Surface fresh(9, 9, 0xFF112233);
    for (const Draw member : members)
        for (int width = 0; width <= 4; ++width)
            EXPECT_EQ(lineOn(fresh, member, {4, 4, 4, 4}, 0xFFFFFF, width).differenceFrom(fresh), "") << width;
}

const Colours solidAndBlended = {{'.', 0xFF112233}, {'#', 0x00ABCDEF}, {'o', 0x00112233}};

TEST(iLine_AntiAliasing, equal_extents_run_along_y_and_an_upright_line_is_solid_and_clears_the_top_bytes_beside_it) {
    // The second edge lies beside the first, not below.
    EXPECT_EQ(rowsOf(lineOn(Surface(6, 6, 0xFF112233), plainLine, {1, 1, 3, 3}, 0xABCDEF, 1), solidAndBlended),
              (Rows{"......", ".#o...", "..#o..", "...#o.", "......", "......"}));
    EXPECT_EQ(rowsOf(lineOn(Surface(6, 6, 0xFF112233), plainLine, {1, 3, 3, 1}, 0xABCDEF, 1), solidAndBlended),
              (Rows{"......", "...#o.", "..#o..", ".#o...", "......", "......"}));
    EXPECT_EQ(rowsOf(lineOn(Surface(5, 5, 0xFF112233), plainLine, {2, 3, 2, 1}, 0x77ABCDEF, 1), solidAndBlended),
              (Rows{".....", "..#o.", "..#o.", "..#o.", "....."}));
}

TEST(iLine_AntiAliasing, slopes_split_the_colour_between_both_edges_and_are_truncated_towards_zero) {
    const Surface surface = lineOn(Surface(10, 10), plainLine, {2, 3, 4, 4}, 0xFF8001, 1); // slope 128
    EXPECT_EQ(surface.at(2, 3), 0xFF8001u);
    EXPECT_EQ(surface.at(3, 3), 0x7F4000u); // 255 * 128 / 256 = 127.5
    EXPECT_EQ(surface.at(3, 4), 0x7F4000u);
    EXPECT_EQ(surface.at(4, 4), 0xFF8001u);
    EXPECT_EQ(surface.at(4, 3), 0u);
    // -256 / 3 is -85, so the fractions are 256 - 85 and 256 - 170; rounding down would give -86.
    const Surface flat = lineOn(Surface(12, 12), plainLine, {2, 6, 5, 5}, 0xFF, 1);
    EXPECT_EQ(flat.at(3, 5), 255u * 85 / 256);
    EXPECT_EQ(flat.at(3, 6), 255u * 171 / 256);
    EXPECT_EQ(flat.at(4, 5), 255u * 170 / 256);
    EXPECT_EQ(flat.at(5, 5), 255u * 255 / 256);
    EXPECT_EQ(flat.at(5, 6), 255u * 1 / 256);
}

TEST(iLine_AntiAliasing, major_axis_reaches_its_limit_while_the_minor_position_stays_below_it) {
    // Of the rows 0 to 5 an upright line reaches 1 to 4, a level one lies in 1 to 3; the edge beside it goes along.
    const auto drawn = [](Ends ends) {
        return rowsOf(lineOn(Surface(6, 6, 0xFF112233), plainLine, ends, 0xABCDEF, 1), solidAndBlended);
    };
    EXPECT_EQ(drawn({2, -5, 2, 15}), (Rows{"......", "..#o..", "..#o..", "..#o..", "..#o..", "......"}));
    EXPECT_EQ(drawn({-5, 0, 15, 0}), Rows(6, "......"));
    EXPECT_EQ(drawn({-5, 1, 15, 1}), (Rows{"......", ".####.", ".oooo.", "......", "......", "......"}));
    EXPECT_EQ(drawn({-5, 3, 15, 3}), (Rows{"......", "......", "......", ".####.", ".oooo.", "......"}));
    EXPECT_EQ(drawn({-5, 4, 15, 4}), Rows(6, "......"));
}

TEST(iLine_AntiAliasing, width_spreads_the_edges_around_the_core) {
    // Width 4: edges at -2 and +2, core -1 to 1, stored whole.
    const Surface surface = lineOn(Surface(9, 8, 0xFF112233), plainLine, {4, 3, 4, 4}, 0x77ABCDEF, 4);
    Colours colours = solidAndBlended;
    colours['c'] = 0x77ABCDEF;
    const std::string none = ".........";
    EXPECT_EQ(rowsOf(surface, colours), (Rows{none, none, none, "..#ccco..", "..#ccco..", none, none, none}));
}

TEST(iLine_AntiAliasing, width_0_blends_the_second_edge_onto_the_first_and_reaches_the_right_and_bottom_side_less_one) {
    // Half a pixel: 200 half over 0 is 100, and 200 half over that 150.
    const Surface surface = lineOn(Surface(10, 10), plainLine, {2, 3, 4, 4}, 200, 0);
    EXPECT_EQ(surface.at(3, 3), 150u);
    EXPECT_EQ(surface.at(3, 4), 0u);
    const auto rowDrawn = [](int y) { return rowIn(lineOn(Surface(6, 6), plainLine, {-5, y, 15, y}, 0xFF, 0), y); };
    EXPECT_EQ(rowDrawn(4), (Pixels{0, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}));
    EXPECT_EQ(rowDrawn(5), Pixels(6, 0));
}

TEST(iLine_AntiAliasing_Alpha, white_over_white_settles_at_0xF8_in_the_core_and_edges_are_an_eighth_of_that_coverage) {
    EXPECT_EQ(drawnOver(iLine_AntiAliasing_Alpha, 0xFFFFFFFF, 0xFFFFFF, 3), 0x00F8F8F8u);
    EXPECT_EQ(drawnOver(iLine_AntiAliasing_Alpha, 0x00F8F8F8, 0xFFFFFF, 3), 0x00F8F8F8u);
    EXPECT_EQ(drawnOver(iLine_AntiAliasing_Alpha, 0xFF000000, 0xFF8008, 1), 0x001F1001u); // 255 * 32 / 256 = 31.9
}

TEST(iLine_AntiAliasing_Add, core_and_full_edge_saturate_and_a_top_byte_is_a_very_large_red) {
    for (const int width : {1, 3}) {
        EXPECT_EQ(drawnOver(iLine_AntiAliasing_Add, 0x001080F0, 0x00208020, width), 0x0030FFFFu);
        EXPECT_EQ(drawnOver(iLine_AntiAliasing_Add, 0x01000000, 0x00010203, width), 0x00FF0203u);
        EXPECT_EQ(drawnOver(iLine_AntiAliasing_Add, 0x00000000, 0x01000203, width), 0x00FF0203u);
    }
}

TEST(iLine_AntiAliasing_Max, the_greater_channel_stays_and_the_winner_of_red_brings_its_top_byte_along) {
    for (const int width : {1, 3}) {
        EXPECT_EQ(drawnOver(iLine_AntiAliasing_Max, 0x00805010, 0x00409010, width), 0x00809010u);
        EXPECT_EQ(drawnOver(iLine_AntiAliasing_Max, 0x01000000, 0x00FF0000, width), 0x01000000u);
        EXPECT_EQ(drawnOver(iLine_AntiAliasing_Max, 0x00FF0000, 0x01000000, width), 0x01000000u);
        EXPECT_EQ(drawnOver(iLine_AntiAliasing_Max, 0x00FF0000, 0x00FE0000, width), 0x00FF0000u);
    }
}

TEST(iLine_AntiAliasing_Max, edges_do_not_raise_a_channel_beyond_their_coverage) {
    const Surface surface = lineOn(Surface(10, 10, 0x404040), iLine_AntiAliasing_Max, {2, 3, 4, 4}, 0xFF6000, 1);
    EXPECT_EQ(surface.at(3, 3), 0x7F4040u);
    EXPECT_EQ(surface.at(3, 4), 0x7F4040u);
}

TEST(iLine_AntiAliasing_AddSome, fades_from_the_first_end_whichever_end_the_run_starts_from) {
    for (const auto &[first, second] : {std::pair{5, 605}, {605, 5}}) {
        // 600 pixels: 1024 / 600 is 1, so the line starts at 600 / 1024 of full, a weight of 150.
        const Surface upright = lineOn(Surface(8, 620), iLine_AntiAliasing_AddSome, {3, first, 3, second}, 0x00FF00, 1);
        EXPECT_EQ(upright.at(3, first), 255u * 150 / 256 << 8);
        EXPECT_EQ(upright.at(3, 305), 255u * 75 / 256 << 8);
        EXPECT_EQ(upright.at(3, second), 0u);
    }
    for (const auto &[first, second] : {std::pair{3, 35}, {35, 3}}) {
        const Surface level = lineOn(Surface(40, 8), iLine_AntiAliasing_AddSome, {first, 3, second, 3}, 0x00FF00, 1);
        EXPECT_EQ(level.at(first, 3), 0xFF00u); // 32 * 32 is 1024
        EXPECT_EQ(level.at(19, 3), 0x7F00u);
        EXPECT_EQ(level.at(second, 3), 0u);
    }
}

TEST(iLine_AntiAliasing_AddSome, lines_beyond_1024_pixels_add_no_colour_but_rewrite_what_they_touch) {
    Surface surface = showing(Surface(8, 1040), 3, 0, Surface(1, 1040, 0x00112233), {0, 0, 1, 1040});
    surface = showing(surface, 4, 0, Surface(1, 1040, 0x01112233), {0, 0, 1, 1040});
    const Surface expected = showing(surface, 4, 5, Surface(1, 1026, 0x00FF2233), {0, 0, 1, 1026});
    surface = lineOn(surface, iLine_AntiAliasing_AddSome, {3, 5, 3, 1030}, 0xFFFFFF, 1);
    EXPECT_EQ(surface.differenceFrom(expected), "");
    surface = lineOn(surface, iLine_AntiAliasing_AddSome, {3, 5, 3, 1029}, 0x0000CC, 1); // 1024 pixels
    EXPECT_EQ(surface.at(3, 5), 0x001122FFu);
}

TEST(iLine_AntiAliasing_AddSome, has_no_core) {
    const Surface surface = lineOn(Surface(8, 9, 0xFF112233), iLine_AntiAliasing_AddSome, {3, 3, 3, 5}, 0x101010, 4);
    constexpr q_ulong old = 0xFF112233;
    EXPECT_EQ(rowIn(surface, 3), (Pixels{old, 0xFF3243, old, old, old, 0x00FF2233, old, old}));
    EXPECT_EQ(rowIn(surface, 4), (Pixels{old, 0xFF2A3B, old, old, old, 0x00FF2233, old, old}));
    EXPECT_EQ(rowIn(surface, 5), (Pixels{old, 0xFF2233, old, old, old, 0x00FF2233, old, old}));
}

} // namespace
