#include "directions.h"
#include "plain/blurs.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using test::another;
using test::painted;
using test::Surface;

using Blur = test::Blur<int>;
constexpr Blur blurs[] = {{"Hor_Blur", Hor_Blur, plain::Hor_Blur, false},
                          {"Ver_Blur", Ver_Blur, plain::Ver_Blur, true},
                          {"Hor_Blur32", Hor_Blur32, plain::Hor_Blur32, false, 0xFFFFFFFF},
                          {"Ver_Blur32", Ver_Blur32, plain::Ver_Blur32, true, 0xFFFFFFFF}};

constexpr int least = -0x7FFFFFFF - 1;

Surface blurRect(Surface surface, tagRECT rect, int radius) {
    Blur_Rect(surface.pixels(), &rect, surface.pitch(), radius);
    return surface;
}
Surface blurRectPlainly(Surface surface, tagRECT rect, int radius) {
    plain::Blur_Rect(surface.pixels(), &rect, surface.pitch(), radius);
    return surface;
}

TEST(Blur_Rect, radius_0_clears_the_top_byte_and_changes_nothing_else) {
    test::Random random(67);
    const Surface before = Surface::randomOfSize(random, 9, 7);
    const tagRECT rect = {1, 2, 8, 7};
    const Surface cleared = painted(before, rect, [&](int x, int y) { return before.at(x, y) & 0xFFFFFF; });
    EXPECT_EQ(blurRect(before, rect, 0).differenceFrom(cleared), "");
}

TEST(Blur_Rect, radius_1_leaves_white_at_255_in_the_corners_254_along_the_edges_and_253_inside) {
    const Surface white(6, 5, 0xFFFFFFFF);
    const Surface expected = painted(white, white.rect(), [](int x, int y) {
        const int edges = (x == 0 || x == 5) + (y == 0 || y == 4);
        return edges == 2 ? 0xFFFFFFu : edges == 1 ? 0xFEFEFEu : 0xFDFDFDu;
    });
    EXPECT_EQ(blurRect(white, white.rect(), 1).differenceFrom(expected), "");
}

TEST(Blur_Rect, edges_are_true_means_over_the_pixels_that_exist) {
    constexpr q_ulong reds[2][3] = {{10, 20, 33}, {0, 0, 0}};
    const Surface surface = painted(Surface(3, 2), {0, 0, 3, 2}, [&](int x, int y) { return reds[y][x] << 16; });
    // Along the rows: (10 + 20) / 2, 63 * 21845 / 65536 and (20 + 33) / 2; then each column is halved twice.
    constexpr q_ulong means[3] = {15 / 2, 20 / 2, 26 / 2};
    const Surface expected = painted(surface, surface.rect(), [&](int x, int) { return means[x] << 16; });
    EXPECT_EQ(blurRect(surface, surface.rect(), 1).differenceFrom(expected), "");
}

TEST(Blur_Rect, a_radius_above_half_the_rectangle_or_below_0_draws_nothing) {
    test::Random random(68);
    const Surface before = Surface::randomOfSize(random, 8, 8);
    EXPECT_EQ(blurRect(before, {0, 0, 8, 5}, 3).differenceFrom(before), "");
    EXPECT_EQ(blurRect(before, {0, 0, 5, 8}, 3).differenceFrom(before), "");
    for (const int radius : {0x7FFFFFFF, -1, least})
        EXPECT_EQ(blurRect(before, before.rect(), radius).differenceFrom(before), "") << radius;
}

TEST(Hor_Blur, size_0_copies_what_the_blur_knows_of_a_pixel) {
    test::Random random(69);
    const Surface src = Surface::randomOfSize(random, 9, 5);
    const Surface before = another(random, src);
    for (const Blur &blur : blurs) {
        const Surface copy = painted(before, src.rect(), [&](int x, int y) { return src.at(x, y) & blur.mask; });
        EXPECT_EQ(blur.blurred(before, src, 0).differenceFrom(copy), "") << blur.name;
    }
}

TEST(Hor_Blur, size_1_averages_each_pixel_with_the_next_one) {
    constexpr q_ulong greens[4] = {10, 21, 200, 255};
    constexpr q_ulong means[4] = {15, 110, 227, 255}; // the last has no neighbour
    for (const Blur &blur : blurs) {
        const Surface src = blur.line(4, [&](int i) { return greens[i] << 8; });
        const Surface expected = blur.line(4, [&](int i) { return means[i] << 8; });
        EXPECT_EQ(blur.blurred(src, src, 1).differenceFrom(expected), "") << blur.name;
    }
}

TEST(Hor_Blur, an_odd_size_leans_one_pixel_forward) {
    // One bright pixel is seen by those that reach it: two pixels behind it, one before it.
    for (const Blur &blur : blurs) {
        const Surface src = blur.line(9, [](int i) { return i == 4 ? 0x80 : 0; });
        const Surface expected = blur.line(9, [](int i) { return i >= 2 && i <= 5 ? 0x20 : 0; });
        EXPECT_EQ(blur.blurred(src, src, 3).differenceFrom(expected), "") << blur.name;
    }
}

TEST(Hor_Blur, white_stays_255_only_where_the_count_is_a_power_of_two) {
    constexpr int length = 40;
    for (int blurSize = 0; blurSize < length; ++blurSize)
        for (const Blur &blur : blurs) {
            const Surface white = blur.line(length, [](int) { return 0xFFFFFFFF; });
            const Surface expected = blur.line(length, [&](int i) {
                int count = 0;
                for (int k = i - blurSize / 2; k <= i + (blurSize + 1) / 2; ++k)
                    count += k >= 0 && k < length;
                const bool isPowerOfTwo = (count & (count - 1)) == 0;
                return (isPowerOfTwo ? 0xFFFFFFFF : 0xFEFEFEFE) & blur.mask;
            });
            ASSERT_EQ(blur.blurred(white, white, blurSize).differenceFrom(expected), "")
                << blur.name << ", size " << blurSize;
        }
}

TEST(Hor_Blur, the_largest_window_and_pictures_of_several_hundred_columns) {
    test::Random random(71);
    const Surface src = Surface::randomOfSize(random, 281, 259);
    for (const Blur &blur : blurs)
        for (const int blurSize : {254, 255})
            EXPECT_EQ(blur.blurred(src, src, blurSize).differenceFrom(blur.blurredPlainly(src, src, blurSize)), "")
                << blur.name << ", size " << blurSize;
}

TEST(Hor_Blur, sizes_above_255_and_below_0_and_no_lines_draw_nothing) {
    test::Random random(72);
    const Surface src = Surface::randomOfSize(random, 300, 300);
    const Surface before = another(random, src);
    for (const Blur &blur : blurs) {
        for (const int blurSize : {256, 299, 0x7FFFFFFF, -1, -2, least})
            EXPECT_EQ(blur.blurred(before, src, blurSize).differenceFrom(before), "")
                << blur.name << ", size " << blurSize;
        for (const int lines : {0, -1, least}) {
            const Surface drawn =
                blur.alongColumns ? blur.blurred(before, src, 4, lines, 8) : blur.blurred(before, src, 4, 8, lines);
            EXPECT_EQ(drawn.differenceFrom(before), "") << blur.name;
        }
    }
}

TEST(Hor_Blur, lines_without_pixels_still_get_their_first_edge) {
    // Lines of no length: the edge runs its blurSize / 2 steps all the same, over pixels behind the line's end, and
    // gives what a longer line has there.
    test::Random random(74);
    const Surface src = Surface::randomOfSize(random, 8, 8);
    const Surface before = another(random, src);
    for (const Blur &blur : blurs)
        for (const int length : {0, -1, least})
            for (int blurSize = 0; blurSize <= 5; ++blurSize) {
                const Surface longer = blur.blurredPlainly(before, src, blurSize);
                const int edge = blurSize / 2;
                const tagRECT drawn = blur.alongColumns ? tagRECT{0, 0, 3, edge} : tagRECT{0, 0, edge, 3};
                const Surface expected = painted(before, drawn, [&](int x, int y) { return longer.at(x, y); });
                const Surface result = blur.alongColumns ? blur.blurred(before, src, blurSize, 3, length)
                                                         : blur.blurred(before, src, blurSize, length, 3);
                ASSERT_EQ(result.differenceFrom(expected), "") << blur.name << ", size " << blurSize;
            }
}

TEST(Hor_Blur, lines_are_finished_one_after_the_other_where_rows_run_into_each_other) {
    for (const Blur &blur : blurs)
        for (const int pitch : {1, 7, 39, 40, 0, -1, -13, -40})
            for (const int size : {0, 1, 4, 9})
                blur.expectRowsMayRunIntoEachOther(size, 40, 33, pitch);
}

TEST(Blur_Rect, columns_are_written_one_after_the_other_where_rows_run_into_each_other) {
    test::Random random(87);
    for (const int pitch : {1, 7, 39})
        for (const int radius : {0, 1, 4, 16}) {
            std::vector<q_ulong> pixels(static_cast<std::size_t>(40 + 32 * pitch));
            for (q_ulong &pixel : pixels)
                pixel = random.word();
            std::vector<q_ulong> expected = pixels;
            tagRECT rect = {0, 0, 40, 33};
            Blur_Rect(pixels.data(), &rect, pitch, radius);
            plain::Blur_Rect(expected.data(), &rect, pitch, radius);
            EXPECT_EQ(pixels, expected) << "pitch " << pitch << ", radius " << radius;
        }
}

TEST(Ver_Blur, the_later_column_is_seen_where_two_rows_share_a_pixel) {
    // Two columns of three pixels, each row beginning at the second pixel of the one above. Means with the pixel below
    // are 20, 40 and 50 in the first column, 40, 60 and 70 in the second, which is written later.
    std::vector<q_ulong> src = {10, 30, 50, 70};
    std::vector<q_ulong> dst(4);
    Ver_Blur(dst.data(), src.data(), 1, 2, 3, 1);
    EXPECT_EQ(dst, (std::vector<q_ulong>{20, 40, 60, 70}));
}

TEST(Hor_Blur, means_of_every_sum_of_every_window) {
    // Each value as often as the window is wide: from one pixel to the next a sum grows by 1, from 0 to 255 each.
    for (int count = 1; count <= 256; ++count) {
        const int length = count * 256;
        const int blurSize = count - 1;
        // Four lines and more, so that they can be taken together; the last of them are the same upside down.
        constexpr int lines = 17;
        Surface src(length, lines);
        for (int y = 0; y < lines; ++y)
            for (int x = 0; x < length; ++x) {
                const q_ulong value = static_cast<q_ulong>((y < 8 ? x : length - 1 - x) / count);
                src.at(x, y) = value * 0x10101 | (255 - value) << 24;
            }
        Surface dst(length, lines);
        Hor_Blur32(dst.pixels(), src.pixels(), blurSize, length, lines, src.pitch());
        const q_ulong reciprocal = 65536 / static_cast<q_ulong>(count);
        for (const int y : {0, 7, 15, 16})
            for (int x = blurSize / 2; x < length - (blurSize + 1) / 2; ++x) {
                const int first = x - blurSize / 2;
                const q_ulong sum = static_cast<q_ulong>(y < 8 ? first : length - count - first);
                const q_ulong mean = sum * reciprocal >> 16;
                const q_ulong rest = 255 * static_cast<q_ulong>(count) - sum;
                ASSERT_EQ(dst.at(x, y), mean * 0x10101 | (rest * reciprocal >> 16) << 24) << count << ' ' << sum;
            }
    }
}

TEST(Blur_Rect, means_of_every_sum_of_every_window) {
    // The sizes that Hor_Blur32() has not been asked for, and some that it has.
    for (const int radius : {1, 2, 15, 127, 128}) {
        const int count = 2 * radius + 1;
        const int length = count * 256;
        // All rows are the same: along the columns each sum is its mean times the rows that there are.
        const int lines = 2 * radius;
        const auto value = [count](int x) { return static_cast<q_ulong>(x / count); };
        std::vector<q_ulong> pixels(static_cast<std::size_t>(length) * static_cast<std::size_t>(lines));
        for (std::size_t i = 0; i < pixels.size(); ++i)
            pixels[i] = value(static_cast<int>(i % static_cast<std::size_t>(length))) * 0x10101;
        tagRECT rect = {0, 0, length, lines};
        Blur_Rect(pixels.data(), &rect, length, radius);
        for (const int y : {0, radius, lines - 1})
            for (int x = radius; x < length - radius; ++x) {
                const q_ulong sum = static_cast<q_ulong>(x - radius);
                const q_ulong mean = sum * (65536 / static_cast<q_ulong>(count)) >> 16;
                ASSERT_EQ(pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(length) +
                                 static_cast<std::size_t>(x)],
                          mean * 0x10101)
                    << radius << ' ' << sum;
            }
    }
}

TEST(Blur_Rect, true_means_of_every_sum_at_the_edges) {
    // Under a window of `radius` + 1 to 2 `radius` pixels, which is all that a picture twice the radius wide has.
    for (int radius = 1; radius <= 128; ++radius) {
        const int width = 2 * radius;
        constexpr int lines = 256;
        for (int start = 0; start < 2; ++start) {
            Surface surface(width, lines);
            for (int y = 0; y < lines; ++y)
                for (int x = 0; x < width; ++x)
                    surface.at(x, y) = static_cast<q_ulong>((x + start) % 2 == 0 ? y : (y * 7 + x) % 256) * 0x10101;
            const tagRECT rect = surface.rect();
            ASSERT_EQ(blurRect(surface, rect, radius).differenceFrom(blurRectPlainly(surface, rect, radius)), "")
                << "radius " << radius;
        }
    }
}

} // namespace
