#include "blits.h"

#include <limits>

namespace {

using namespace test;

void stretchSafe(Surface &dst, tagRECT dstRect, Surface &src, tagRECT srcRect, tagRECT clip) {
    iBltNear32Safe(dst.pixels(), src.pixels(), &dstRect, &srcRect, &clip, dst.pitch(), src.pitch());
}

Pixels overSafe(Surface dst, Surface src, const tagRECT &srcRect) {
    stretchSafe(dst, dst.rect(), src, srcRect, dst.rect());
    return pixelsOf(dst);
}

TEST(iBltNear32, one_pixel_is_repeated_over_any_rectangle) {
    for (int height = 1; height <= 6; ++height)
        for (int width = 1; width <= 6; ++width)
            EXPECT_EQ(over(Surface(width, height), Surface(1, 1, 0x80FF1234), iBltNear32),
                      Pixels(static_cast<std::size_t>(width * height), 0x80FF1234));
}

TEST(iBltNear32, each_pixel_shows_the_source_pixel_at_or_left_of_its_place) {
    // Steps of 5/8: 0, 0.625, 1.25, 1.875, 2.5, 3.125, 3.75, 4.375
    EXPECT_EQ(over(Surface(8, 1), numbered(5, 1), iBltNear32), (Pixels{1, 1, 2, 2, 3, 4, 4, 5}));
    EXPECT_EQ(over(Surface(2, 1), numbered(5, 1), iBltNear32), (Pixels{1, 3}));    // steps of 2.5
    EXPECT_EQ(over(Surface(3, 1), numbered(5, 1), iBltNear32), (Pixels{1, 2, 4})); // 5/3: 0, 1.67, 3.33
    // 1/3 in 20 fraction bits is 349525, and three of them are one unit below 1; 3/9 likewise.
    EXPECT_EQ(over(Surface(9, 1), numbered(3, 1), iBltNear32), (Pixels{1, 1, 1, 1, 2, 2, 2, 3, 3}));
}

TEST(iBltNear32, a_source_without_width_or_height_repeats_its_first_column_or_row) {
    EXPECT_EQ(areaOver(Surface(2, 3), numbered(4, 4), {1, 0, 1, 3}, iBltNear32), (Pixels{2, 2, 6, 6, 10, 10}));
    EXPECT_EQ(areaOver(Surface(3, 2), numbered(4, 4), {0, 2, 3, 2}, iBltNear32), (Pixels{9, 10, 11, 9, 10, 11}));
    EXPECT_EQ(areaOver(Surface(2, 3), numbered(4, 4), {1, 0, 1, 3}, iBltNear32_KeySrc, 0),
              (Pixels{2, 2, 6, 6, 10, 10}));
}

// Clipped

TEST(iBltNear32Safe, a_source_turned_inside_out_is_walked_to_the_left) {
    EXPECT_EQ(overSafe(Surface(4, 1), numbered(8, 1), {5, 0, 1, 1}), (Pixels{6, 5, 4, 3}));
}

TEST(iBltNear32Safe, destinations_far_beyond_the_surface_show_their_part_of_the_source) {
    // 2^30 rows stand above the one that is seen, and with this pitch the first of them lies before all memory. The
    // step of 4 * 2^20 / (2^31 - 1) is 0.
    constexpr int rows = 1 << 30;
    constexpr int pitch = 1 << 20;
    Surface src(4, 4, 0x00123456);
    tagRECT dstRect = {-rows, -rows, rows - 1, rows - 1};
    tagRECT srcRect = src.rect();
    tagRECT clip = {0, 0, 4, 1};
    const Surface expected = showing(Surface(5, 2), 0, 0, src, clip);
    Surface copied(5, 2);
    iBltNear32Safe(copied.pixels(), src.pixels(), &dstRect, &srcRect, &clip, pitch, src.pitch());
    EXPECT_EQ(copied.differenceFrom(expected), "");
    Surface added(5, 2);
    iBltNear32SafeKeySrcAdd(added.pixels(), src.pixels(), &dstRect, &srcRect, pitch, src.pitch(), 4, 1);
    EXPECT_EQ(added.differenceFrom(expected), "");
}

TEST(iBltNear32Safe, coordinates_at_the_end_of_the_numbers_write_nothing_outside_the_clip) {
    // What spans the whole of the numbers has no width that an int counts.
    constexpr int least = std::numeric_limits<int>::min();
    constexpr int largest = std::numeric_limits<int>::max();
    const int ends[] = {least, least + 1, least + 5, largest - 5, largest - 1, largest};
    Surface src(4, 4, 0x00123456);
    Surface dst(4, 4, 0xAAAAAAAA);
    for (const int low : ends)
        for (const int high : ends)
            for (const tagRECT dstRect : {tagRECT{low, 0, high, 4}, {0, low, 4, high}, {low, low, high, high}}) {
                stretchSafe(dst, dstRect, src, src.rect(), dst.rect());
                stretch(iBltNear32SafeKeySrcAdd, dst, dstRect, src, src.rect(), 4, 4);
                ASSERT_EQ(dst.differenceFrom(Surface(4, 4, 0xAAAAAAAA)), "") << low << " to " << high;
            }
}

// Filtered

TEST(iBltBilinear32, the_last_column_and_row_read_one_pixel_beyond_the_source_and_the_safe_form_the_column) {
    Surface src(2, 2);
    src.at(2, 0) = 0x0000FF;
    src.at(0, 2) = 0x00FF00;
    const Pixels pixels = over(Surface(4, 4), src, iBltBilinear32);
    EXPECT_EQ(pixels[3], 0x00007Fu);
    EXPECT_EQ(pixels[12], 0x007F00u);
    EXPECT_EQ(over(Surface(4, 3), src, iBltBilinear32Safe)[3], 0x00007Fu);
}

TEST(iBltBilinear32, whole_steps_show_pixels_as_they_are_and_halves_of_rows_the_mean_with_those_below) {
    atWholeSteps(0xFFFFFFFF, [](Surface &src, const Surface &shown, Surface dst) {
        stretch(iBltBilinear32, dst, dst.rect(), src, src.rect());
        EXPECT_EQ(dst.differenceFrom(shown), "");
    });
}

TEST(iBltBilinear32Safe, a_uniform_colour_loses_its_top_byte_except_on_the_last_source_row_wherever_that_lies) {
    Pixels expected(48, 0x00112233);
    expected.resize(64, 0x80112233);
    EXPECT_EQ(over(Surface(8, 8), Surface(4, 4, 0x80112233), iBltBilinear32Safe), expected);
    // The area is counted from the rectangle's corner, so it ends beside the rectangle's last row, not with it: of an
    // enlarged row the last one is copied, the one above filtered with it.
    expected.assign(80, 0);
    expected.resize(100, 0x80000000);
    EXPECT_EQ(areaOver(Surface(10, 10), Surface(9, 9, 0x80000000), {3, 2, 8, 7}, iBltBilinear32Safe), expected);
}

TEST(iBltBilinear32Safe, a_pitch_equal_to_the_width_also_catches_the_end_of_the_last_row_but_one) {
    // A source without a border is enlarged two by two. A row's taps end at the same column one row below: of the row
    // above the last one, what lies within two pixels of the area's end is copied.
    for (int margin = 0; margin <= 3; ++margin) {
        const int pitch = 4 + margin;
        Pixels src(static_cast<std::size_t>(pitch * 4), 0x80000000);
        Surface dst(8, 6);
        tagRECT srcRect = {0, 0, 4, 3};
        tagRECT dstRect = dst.rect();
        iBltBilinear32Safe(dst.pixels(), src.data(), &dstRect, &srcRect, pitchOf(dst), unsignedOf(pitch));
        const Rows ends[] = {{"....####", "########"}, {"......##", "########"}, {"........", "########"}};
        const Rows &end = ends[std::min(margin, 2)];
        EXPECT_EQ(rowsOf(dst, {{'.', 0}, {'#', 0x80000000}}),
                  (Rows{"........", "........", end[0], end[0], end[1], end[1]}))
            << margin;
    }
}

TEST(iBltBilinear32Safe, a_bottom_up_source_comes_out_unfiltered) {
    // Its area ends before its first row, in terms of addresses.
    Surface src = pictureOf(2, {0x80000003, 0x80000004, 0x80000001, 0x80000002});
    Surface dst(4, 4);
    tagRECT dstRect = dst.rect();
    tagRECT srcRect = src.rect();
    iBltBilinear32Safe(dst.pixels(), &src.at(0, 1), &dstRect, &srcRect, pitchOf(dst), unsignedOf(-src.pitch()));
    EXPECT_EQ(rowsOf(dst, {{'1', 0x80000001}, {'2', 0x80000002}, {'3', 0x80000003}, {'4', 0x80000004}}),
              (Rows{"1122", "1122", "3344", "3344"}));
}

TEST(iBltAdaptive32, copies_equal_sizes_filters_from_twice_the_area_on_and_takes_the_nearest_pixel_between) {
    Surface src(4, 3, 0xC0112233);
    Surface dst(6, 6);
    stretch(iBltAdaptive32, dst, {1, 2, 5, 5}, src, src.rect());
    EXPECT_EQ(dst.differenceFrom(showing(Surface(6, 6), 1, 2, src, src.rect())), "");
    Pixels expected(16, 0x00112233);
    expected.resize(24, 0xC0112233);
    EXPECT_EQ(over(Surface(8, 3), src, iBltAdaptive32), expected);
    EXPECT_EQ(over(Surface(5, 2), numbered(4, 2), iBltAdaptive32), (Pixels{1, 1, 2, 3, 4, 5, 5, 6, 7, 8}));
}

TEST(iBltAdaptive32, areas_wrap_in_32_bits) {
    // 3 * 30000 * 30000 is above 2^31 and counts as negative: the reduction to one pixel looks like an enlargement.
    const Surface src(2, 2, 0xC0112233);
    EXPECT_EQ(areaOver(Surface(1, 1), src, {0, 0, 30000, 30000}, iBltAdaptive32)[0], 0x00112233u);
    EXPECT_EQ(areaOver(Surface(1, 1), src, {0, 0, 20000, 20000}, iBltAdaptive32)[0], 0xC0112233u); // 1.2 * 10^9 fits
}

// Positioned to a sixteenth of a pixel

TEST(iBltPerfect32, equal_sizes_write_one_column_and_row_more_than_the_whole_pixels) {
    Surface src = numbered(8, 8);
    for (const int phase : {0, 1, 15})
        for (int size = 16; size <= 5 * 16; ++size) {
            Surface dst(10, 10, 0xAAAAAAAA);
            const Surface expected = showing(dst, 1, 2, src, {0, 0, size / 16 + 1, size / 16 + 1});
            stretch(iBltPerfect32, dst, {16 + phase, 32 + phase, 16 + phase + size, 32 + phase + size}, src,
                    {phase, phase, phase + size, phase + size});
            ASSERT_EQ(dst.differenceFrom(expected), "") << size << " from " << phase;
        }
}

TEST(iBltPerfect32, a_phase_reads_between_two_columns_and_one_beyond_the_sources_to_the_left_and_above) {
    Surface columns = rowOf({0xFF000000, 0x0000FF, 0x00FF00});
    Surface means(2, 1);
    stretch(iBltPerfect32, means, {0, 0, 16, 16}, columns, {8, 0, 24, 16});
    EXPECT_EQ(pixelsOf(means), (Pixels{0x00007F, 0x007F7F}));
    Surface src(2, 2);
    src.at(-1, 0) = 0x0000FF;
    src.at(0, -1) = 0x00FF00;
    Surface dst(3, 3);
    stretch(iBltPerfect32, dst, {8, 0, 24, 16}, src, {0, 0, 16, 16}); // starts half a pixel before column 0
    EXPECT_EQ(dst.at(0, 0), 0x00007Fu);
    EXPECT_EQ(dst.at(1, 0), 0u);
    stretch(iBltPerfect32, dst, {0, 4, 16, 20}, src, {0, 0, 16, 16}); // a quarter of a pixel before row 0
    EXPECT_EQ(dst.at(0, 0), 0x003F00u);
    EXPECT_EQ(dst.at(0, 1), 0u);
}

TEST(iBltPerfect32, negative_coordinates_are_divided_toward_zero) {
    // -8 sixteenths are pixel 0 with the phase 8; -24 are pixel -1 with the phase 8.
    Surface src = numbered(4, 4);
    Surface dst(4, 4, 0xAAAAAAAA);
    const Surface expected = showing(dst, 0, -1, src, {0, 0, 2, 2});
    stretch(iBltPerfect32, dst, {-8, -24, 8, -8}, src, {8, 8, 24, 24});
    EXPECT_EQ(dst.differenceFrom(expected), "");
}

TEST(iBltPerfect32, extents_above_minus_one_pixel_write_one_column_and_0_writes_none) {
    Surface src = numbered(4, 4);
    const auto expectWritten = [&](int width, int height, const tagRECT &part) {
        Surface dst(4, 4, 0xAAAAAAAA);
        const Surface expected = showing(dst, 1, 1, src, part);
        stretch(iBltPerfect32, dst, {16, 16, 16 + width, 16 + height}, src, {0, 0, 16, 16});
        EXPECT_EQ(dst.differenceFrom(expected), "") << width << " by " << height;
    };
    for (int extent = -40; extent <= 15; ++extent) {
        const int written = extent == 0 || extent <= -16 ? 0 : 1;
        expectWritten(extent, 16, {0, 0, written, 2});
        expectWritten(16, extent, {0, 0, 2, written});
    }
}

} // namespace
