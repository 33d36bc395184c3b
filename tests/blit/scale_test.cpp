#include "pictures.h"
#include "plain/scaled_blit.h"

#include <limits>

namespace {

using test::numbered;
using test::pictureOf;
using test::pitchOf;
using test::Pixels;
using test::pixelsOf;
using test::rowOf;
using test::showing;
using test::Surface;

constexpr int least = std::numeric_limits<int>::min();
constexpr int largest = std::numeric_limits<int>::max();

void nearest(Surface &dst, tagRECT dstRect, Surface &src, tagRECT srcRect) {
    iBltNear32(dst.pixels(), src.pixels(), &dstRect, &srcRect, dst.pitch(), src.pitch());
}

void nearestSafe(Surface &dst, tagRECT dstRect, Surface &src, tagRECT srcRect, tagRECT clip) {
    iBltNear32Safe(dst.pixels(), src.pixels(), &dstRect, &srcRect, &clip, dst.pitch(), src.pitch());
}

void safeKeyAdd(Surface &dst, tagRECT dstRect, Surface &src, tagRECT srcRect, tagRECT clip) {
    iBltNear32SafeKeySrcAdd(dst.pixels(), src.pixels(), &dstRect, &srcRect, dst.pitch(), src.pitch(),
                            static_cast<int>(clip.right), static_cast<int>(clip.bottom));
}

void bilinear(Surface &dst, tagRECT dstRect, Surface &src, tagRECT srcRect) {
    iBltBilinear32(dst.pixels(), src.pixels(), &dstRect, &srcRect, pitchOf(dst), pitchOf(src));
}

void bilinearSafe(Surface &dst, tagRECT dstRect, Surface &src, tagRECT srcRect) {
    iBltBilinear32Safe(dst.pixels(), src.pixels(), &dstRect, &srcRect, pitchOf(dst), pitchOf(src));
}

void adaptive(Surface &dst, tagRECT dstRect, Surface &src, tagRECT srcRect) {
    iBltAdaptive32(dst.pixels(), src.pixels(), &dstRect, &srcRect, pitchOf(dst), pitchOf(src));
}

void perfect(Surface &dst, tagRECT dstRect, Surface &src, tagRECT srcRect) {
    iBltPerfect32(dst.pixels(), src.pixels(), &dstRect, &srcRect, pitchOf(dst), pitchOf(src));
}

using Scaler = void (*)(Surface &dst, tagRECT dstRect, Surface &src, tagRECT srcRect);

/// An area of the source over the whole of a destination.
Pixels scaled(Scaler scale, Surface dst, Surface src, const tagRECT &srcRect) {
    scale(dst, dst.rect(), src, srcRect);
    return pixelsOf(dst);
}

Pixels scaled(Scaler scale, const Surface &dst, const Surface &src) {
    return scaled(scale, dst, src, src.rect());
}

TEST(iBltNear32, one_pixel_is_repeated_over_any_rectangle) {
    for (int height = 1; height <= 6; ++height)
        for (int width = 1; width <= 6; ++width)
            EXPECT_EQ(scaled(nearest, Surface(width, height), Surface(1, 1, 0x80FF1234)),
                      Pixels(static_cast<std::size_t>(width * height), 0x80FF1234));
}

TEST(iBltNear32, each_pixel_shows_the_source_pixel_at_or_left_of_its_place) {
    // Steps of 5/8: 0, 0.625, 1.25, 1.875, 2.5, 3.125, 3.75, 4.375
    EXPECT_EQ(scaled(nearest, Surface(8, 1), numbered(5, 1)), (Pixels{1, 1, 2, 2, 3, 4, 4, 5}));
    EXPECT_EQ(scaled(nearest, Surface(2, 1), numbered(5, 1)), (Pixels{1, 3}));    // steps of 2.5
    EXPECT_EQ(scaled(nearest, Surface(3, 1), numbered(5, 1)), (Pixels{1, 2, 4})); // 5/3: 0, 1.67, 3.33
}

TEST(iBltNear32, truncated_steps_fall_short_of_a_whole_pixel) {
    // 1/3 in 20 fraction bits is 349525, and three of them are one unit below 1; 3/9 likewise.
    EXPECT_EQ(scaled(nearest, Surface(9, 1), numbered(3, 1)), (Pixels{1, 1, 1, 1, 2, 2, 2, 3, 3}));
}

TEST(iBltNear32, a_source_without_width_or_height_repeats_its_first_column_or_row) {
    EXPECT_EQ(scaled(nearest, Surface(2, 3), numbered(4, 4), {1, 0, 1, 3}), (Pixels{2, 2, 6, 6, 10, 10}));
    EXPECT_EQ(scaled(nearest, Surface(3, 2), numbered(4, 4), {0, 2, 3, 2}), (Pixels{9, 10, 11, 9, 10, 11}));
}

TEST(iBltNear32, sources_of_4095_columns_fit_the_format_and_4097_count_as_one) {
    EXPECT_EQ(scaled(nearest, Surface(3, 1), numbered(4097, 1), {0, 0, 4095, 1}), (Pixels{1, 1366, 2731}));
    EXPECT_EQ(scaled(nearest, Surface(3, 1), numbered(4097, 1)), (Pixels{1, 1, 1}));
}

TEST(iBltNear32, bottom_up_surfaces_have_a_negative_pitch) {
    Surface src = numbered(2, 2);
    Surface dst(2, 4);
    tagRECT dstRect = dst.rect();
    tagRECT srcRect = src.rect();
    iBltNear32(&dst.at(0, 3), &src.at(0, 1), &dstRect, &srcRect, -dst.pitch(), -src.pitch());
    EXPECT_EQ(pixelsOf(dst), (Pixels{1, 2, 1, 2, 3, 4, 3, 4}));
}

TEST(iBltNear32Safe, a_clip_beside_the_destination_writes_nothing) {
    Surface src = numbered(4, 4);
    Surface dst(12, 12, 0xAAAAAAAA);
    for (const tagRECT clip : {tagRECT{0, 0, 4, 12},
                               {8, 0, 12, 12},
                               {0, 0, 12, 4},
                               {0, 8, 12, 12},
                               {5, 5, 5, 8},
                               {5, 5, 8, 5},
                               {8, 8, 5, 5}})
        nearestSafe(dst, {4, 4, 8, 8}, src, src.rect(), clip);
    EXPECT_EQ(dst.differenceFrom(Surface(12, 12, 0xAAAAAAAA)), "");
}

TEST(iBltNear32Safe, shows_inside_the_clip_what_stands_there_unclipped) {
    Surface src = numbered(5, 7);
    const tagRECT dstRect = {1, 2, 9, 8};
    Surface whole(10, 10);
    nearest(whole, dstRect, src, src.rect());
    for (int top = -1; top <= 10; ++top)
        for (int bottom = -1; bottom <= 11; ++bottom)
            for (int left = -1; left <= 10; ++left)
                for (int right = -1; right <= 11; ++right) {
                    Surface dst(10, 10);
                    const tagRECT clip = {left, top, right, bottom};
                    nearestSafe(dst, dstRect, src, src.rect(), clip);
                    ASSERT_EQ(dst.differenceFrom(showing(Surface(10, 10), left, top, whole, clip)), "")
                        << left << ", " << top << ", " << right << ", " << bottom;
                }
}

TEST(iBltNear32Safe, a_source_turned_inside_out_is_walked_to_the_left) {
    Surface src = numbered(8, 1);
    Surface dst(4, 1);
    nearestSafe(dst, dst.rect(), src, {5, 0, 1, 1}, dst.rect());
    EXPECT_EQ(pixelsOf(dst), (Pixels{6, 5, 4, 3}));
}

TEST(iBltNear32Safe, sources_of_2047_columns_fit_the_format) {
    Surface src = numbered(2047, 1);
    Surface dst(3, 1);
    nearestSafe(dst, dst.rect(), src, src.rect(), dst.rect());
    EXPECT_EQ(pixelsOf(dst), (Pixels{1, 683, 1365}));
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
    Surface src(4, 4, 0x00123456);
    Surface dst(4, 4, 0xAAAAAAAA);
    const int ends[] = {least, least + 1, least + 5, largest - 5, largest - 1, largest};
    for (const int low : ends)
        for (const int high : ends)
            for (const tagRECT dstRect : {tagRECT{low, 0, high, 4}, {0, low, 4, high}, {low, low, high, high}}) {
                nearestSafe(dst, dstRect, src, src.rect(), dst.rect());
                safeKeyAdd(dst, dstRect, src, src.rect(), dst.rect());
                ASSERT_EQ(dst.differenceFrom(Surface(4, 4, 0xAAAAAAAA)), "") << low << " to " << high;
            }
}

TEST(iBltBilinear32, a_uniform_colour_stays_under_all_weights) {
    // One pixel in sixteen steps: all 256 pairs of fractions.
    for (q_ulong c = 0; c < 256; ++c)
        ASSERT_EQ(scaled(bilinear, Surface(16, 16), Surface(1, 1, 0xEE000000 | c * 0x10101)), Pixels(256, c * 0x10101));
}

TEST(iBltBilinear32, every_value_under_every_weight_of_each_tap_is_the_truncated_product) {
    for (int tap = 0; tap < 4; ++tap)
        for (q_ulong c = 0; c < 256; ++c) {
            Surface src(1, 1);
            src.at(tap % 2, tap / 2) = c << 16 | (255 - c) << 8 | c;
            Pixels products;
            for (q_ulong y = 0; y < 16; ++y)
                for (q_ulong x = 0; x < 16; ++x) {
                    const q_ulong weight = (tap % 2 ? x : 16 - x) * (tap / 2 ? y : 16 - y);
                    products.push_back((c * weight / 256) << 16 | ((255 - c) * weight / 256) << 8 | c * weight / 256);
                }
            ASSERT_EQ(scaled(bilinear, Surface(16, 16), src), products) << "tap " << tap << " with value " << c;
        }
}

TEST(iBltBilinear32, the_last_column_and_row_read_one_pixel_beyond_the_source) {
    Surface src(2, 2);
    src.at(2, 0) = 0x0000FF;
    src.at(0, 2) = 0x00FF00;
    const Pixels pixels = scaled(bilinear, Surface(4, 4), src);
    EXPECT_EQ(pixels[3], 0x00007Fu);
    EXPECT_EQ(pixels[12], 0x007F00u);
}

TEST(iBltBilinear32, only_four_bits_of_the_fraction_count) {
    // Steps of 1/64: four pixels each share a weight.
    Surface src(1, 1);
    src.at(1, 0) = 0xFF;
    const Pixels pixels = scaled(bilinear, Surface(64, 1), src);
    for (q_ulong x = 0; x < 64; ++x)
        EXPECT_EQ(pixels[x], 255 * (x / 4) / 16) << x;
}

TEST(iBltBilinear32, an_empty_destination_writes_nothing) {
    Surface src = numbered(4, 4);
    Surface dst(4, 4, 0xAAAAAAAA);
    for (const tagRECT rect : {tagRECT{1, 1, 1, 3}, {1, 1, 3, 1}, {3, 1, 1, 3}, {1, 3, 3, 1}})
        for (const Scaler scale : {bilinear, bilinearSafe, nearest, adaptive})
            scale(dst, rect, src, src.rect());
    EXPECT_EQ(dst.differenceFrom(Surface(4, 4, 0xAAAAAAAA)), "");
}

TEST(iBltBilinear32, bottom_up_surfaces_have_a_negative_pitch_though_it_is_unsigned) {
    Surface src(3, 3);
    Surface turned(3, 3);
    for (int y = -1; y <= 3; ++y)
        for (int x = -1; x <= 3; ++x)
            turned.at(x, 2 - y) = src.at(x, y) = static_cast<q_ulong>((x + 1) * 0x30003 + (y + 1) * 0x3355);
    Surface dst(6, 6);
    tagRECT dstRect = dst.rect();
    tagRECT srcRect = src.rect();
    iBltBilinear32(dst.pixels(), &turned.at(0, 2), &dstRect, &srcRect, pitchOf(dst),
                   static_cast<q_ulong>(-turned.pitch()));
    EXPECT_EQ(pixelsOf(dst), scaled(bilinear, Surface(6, 6), src));
}

TEST(iBltBilinear32Safe, a_uniform_colour_loses_its_top_byte_except_on_the_last_source_row) {
    Surface expected(8, 8, 0x00112233);
    expected = showing(expected, 0, 6, Surface(8, 2, 0x80112233), {0, 0, 8, 2});
    EXPECT_EQ(scaled(bilinearSafe, Surface(8, 8), Surface(4, 4, 0x80112233)), pixelsOf(expected));
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
        iBltBilinear32Safe(dst.pixels(), src.data(), &dstRect, &srcRect, pitchOf(dst), static_cast<q_ulong>(pitch));
        for (int y = 0; y < 6; ++y)
            for (int x = 0; x < 8; ++x) {
                const bool isCopied = y / 2 == 2 || (y / 2 == 1 && x / 2 >= 2 + margin);
                EXPECT_EQ(dst.at(x, y) != 0, isCopied) << x << ", " << y << " with " << margin << " to the right";
            }
    }
}

TEST(iBltBilinear32Safe, a_source_rectangle_within_its_surface_has_an_area_of_whole_pitches) {
    // The area is counted from the rectangle's corner, so it ends beside the rectangle's last row, not with it: of an
    // enlarged row the last one is copied, the one above filtered with it.
    Surface src(9, 9, 0x80000000);
    const Pixels pixels = scaled(bilinearSafe, Surface(10, 10), src, {3, 2, 8, 7});
    for (std::size_t i = 0; i < 100; ++i)
        EXPECT_EQ(pixels[i], i < 80 ? 0 : 0x80000000u) << i;
}

TEST(iBltBilinear32Safe, the_right_edge_still_reads_one_pixel_beyond) {
    Surface src(2, 3);
    src.at(2, 0) = 0x0000FF;
    EXPECT_EQ(scaled(bilinearSafe, Surface(4, 3), src)[3], 0x00007Fu);
}

TEST(iBltBilinear32Safe, a_bottom_up_source_comes_out_unfiltered) {
    // Its area ends before its first row, in terms of addresses.
    Surface src = pictureOf(2, {0x80000003, 0x80000004, 0x80000001, 0x80000002});
    Surface dst(4, 4);
    tagRECT dstRect = dst.rect();
    tagRECT srcRect = src.rect();
    iBltBilinear32Safe(dst.pixels(), &src.at(0, 1), &dstRect, &srcRect, pitchOf(dst),
                       static_cast<q_ulong>(-src.pitch()));
    Surface expected(4, 4);
    nearest(expected, dstRect, src, srcRect);
    const tagRECT upper = {0, 0, 4, 2};
    const tagRECT lower = {0, 2, 4, 4};
    EXPECT_EQ(dst.differenceFrom(showing(showing(Surface(4, 4), 0, 0, expected, lower), 0, 2, expected, upper)), "");
}

TEST(iBltAdaptive32, equal_sizes_copy_the_top_byte) {
    Surface src(4, 3, 0xC0112233);
    Surface dst(6, 6);
    adaptive(dst, {1, 2, 5, 5}, src, src.rect());
    EXPECT_EQ(dst.differenceFrom(showing(Surface(6, 6), 1, 2, src, src.rect())), "");
}

TEST(iBltAdaptive32, twice_the_width_is_filtered_without_reading_below) {
    Surface src(4, 3, 0xC0112233);
    Surface expected(8, 3, 0x00112233);
    expected = showing(expected, 0, 2, Surface(8, 1, 0xC0112233), {0, 0, 8, 1});
    EXPECT_EQ(scaled(adaptive, Surface(8, 3), src), pixelsOf(expected));
}

TEST(iBltAdaptive32, one_and_a_quarter_of_the_width_takes_the_nearest_pixel) {
    EXPECT_EQ(scaled(adaptive, Surface(5, 2), numbered(4, 2)), (Pixels{1, 1, 2, 3, 4, 5, 5, 6, 7, 8}));
}

TEST(iBltAdaptive32, every_pair_of_small_sizes_chooses_by_area) {
    test::Random random(1);
    Surface src = Surface::randomOfSize(random, 5, 5);
    for (int sizes = 0; sizes < 6 * 6 * 6 * 6; ++sizes) {
        tagRECT dstRect = {0, 0, sizes % 6, sizes / 6 % 6};
        tagRECT srcRect = {0, 0, sizes / 36 % 6, sizes / 216};
        Surface dst(5, 5);
        Surface expected(5, 5);
        adaptive(dst, dstRect, src, srcRect);
        plain::iBltAdaptive32(expected.pixels(), src.pixels(), &dstRect, &srcRect, pitchOf(expected), pitchOf(src));
        ASSERT_EQ(dst.differenceFrom(expected), "") << sizes;
    }
}

TEST(iBltAdaptive32, areas_wrap_in_32_bits) {
    // 3 * 30000 * 30000 is above 2^31 and counts as negative: the reduction to one pixel looks like an enlargement.
    const Surface src(2, 2, 0xC0112233);
    EXPECT_EQ(scaled(adaptive, Surface(1, 1), src, {0, 0, 30000, 30000})[0], 0x00112233u);
    EXPECT_EQ(scaled(adaptive, Surface(1, 1), src, {0, 0, 20000, 20000})[0], 0xC0112233u); // 1.2 * 10^9 still fits
}

TEST(iBltPerfect32, writes_one_column_and_row_more_than_the_whole_pixels) {
    Surface src = numbered(8, 8);
    for (int size = 16; size <= 5 * 16; ++size) {
        Surface dst(10, 10, 0xAAAAAAAA);
        const Surface expected = showing(dst, 1, 2, src, {0, 0, size / 16 + 1, size / 16 + 1});
        perfect(dst, {16, 32, 16 + size, 32 + size}, src, {0, 0, size, size});
        ASSERT_EQ(dst.differenceFrom(expected), "") << size;
    }
}

TEST(iBltPerfect32, equal_phases_of_any_size_copy_the_colours) {
    Surface src(4, 4, 0xFF112233);
    src.at(2, 1) = 0x80445566;
    for (int phase = 0; phase < 16; ++phase) {
        Surface dst(4, 4);
        perfect(dst, {phase, phase, phase + 48, phase + 48}, src, {phase, phase, phase + 48, phase + 48});
        Surface expected(4, 4);
        expected = showing(expected, 0, 0, Surface(4, 4, 0x00112233), {0, 0, 4, 4});
        expected.at(2, 1) = 0x00445566;
        EXPECT_EQ(dst.differenceFrom(expected), "") << phase;
    }
}

TEST(iBltPerfect32, a_source_half_a_pixel_further_right_shows_the_mean_of_two_columns) {
    Surface src = rowOf({0x000000, 0x0000FF, 0x00FF00});
    Surface dst(2, 2);
    perfect(dst, {0, 0, 16, 16}, src, {8, 0, 24, 16});
    EXPECT_EQ(dst.at(0, 0), 0x00007Fu);
    EXPECT_EQ(dst.at(1, 0), 0x007F7Fu);
}

TEST(iBltPerfect32, a_destination_phase_beyond_the_sources_reads_to_the_left_and_above) {
    Surface src(2, 2);
    src.at(-1, 0) = 0x0000FF;
    src.at(0, -1) = 0x00FF00;
    Surface dst(3, 3);
    perfect(dst, {8, 0, 24, 16}, src, {0, 0, 16, 16}); // starts half a pixel before column 0
    EXPECT_EQ(dst.at(0, 0), 0x00007Fu);
    EXPECT_EQ(dst.at(1, 0), 0u);
    perfect(dst, {0, 4, 16, 20}, src, {0, 0, 16, 16}); // a quarter of a pixel before row 0
    EXPECT_EQ(dst.at(0, 0), 0x003F00u);
    EXPECT_EQ(dst.at(0, 1), 0u);
}

TEST(iBltPerfect32, negative_coordinates_are_divided_toward_zero) {
    // -8 sixteenths are pixel 0 with the phase 8; -24 are pixel -1 with the phase 8.
    Surface src = numbered(4, 4);
    Surface dst(4, 4, 0xAAAAAAAA);
    const Surface expected = showing(dst, 0, -1, src, {0, 0, 2, 2});
    perfect(dst, {-8, -24, 8, -8}, src, {8, 8, 24, 24});
    EXPECT_EQ(dst.differenceFrom(expected), "");
}

TEST(iBltPerfect32, extents_above_minus_one_pixel_write_one_column_and_0_writes_none) {
    Surface src = numbered(4, 4);
    for (int extent = -40; extent <= 15; ++extent) {
        const int written = extent == 0 || extent <= -16 ? 0 : 1;
        Surface dst(4, 4, 0xAAAAAAAA);
        Surface expected = showing(dst, 1, 1, src, {0, 0, written, 2});
        perfect(dst, {16, 16, 16 + extent, 32}, src, {0, 0, 16, 16});
        EXPECT_EQ(dst.differenceFrom(expected), "") << "width " << extent;

        dst = Surface(4, 4, 0xAAAAAAAA);
        expected = showing(dst, 1, 1, src, {0, 0, 2, written});
        perfect(dst, {16, 16, 32, 16 + extent}, src, {0, 0, 16, 16});
        EXPECT_EQ(dst.differenceFrom(expected), "") << "height " << extent;
    }
}

} // namespace
