#include "plain/blurs.h"
#include "support/surface.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace {

using test::Surface;

using Blur = void (*)(q_ulong *, q_ulong *, int, int, int, int);

struct Variant {
    Blur blur;
    Blur plainBlur;
    bool alongColumns;
    q_ulong mask;
};

constexpr Variant rows = {Hor_Blur, plain::Hor_Blur, false, 0xFFFFFF};
constexpr Variant columns = {Ver_Blur, plain::Ver_Blur, true, 0xFFFFFF};
constexpr Variant rows32 = {Hor_Blur32, plain::Hor_Blur32, false, 0xFFFFFFFF};
constexpr Variant columns32 = {Ver_Blur32, plain::Ver_Blur32, true, 0xFFFFFFFF};

/// A picture of the same size and pitch with other pixels.
Surface another(test::Random &random, const Surface &surface) {
    Surface other = surface;
    for (int y = -Surface::margin; y < surface.height() + Surface::margin; ++y)
        for (int x = -Surface::margin; x < surface.width() + Surface::margin; ++x)
            other.at(x, y) = random.word();
    return other;
}

TEST(Blur_Rect, windows_up_to_257_pixels_and_pictures_of_several_hundred_columns) {
    test::Random random(66);
    for (const int radius : {3, 15, 60, 127, 128}) {
        Surface surface = Surface::randomOfSize(random, 301, 263);
        tagRECT rect = {3, 2, 299, 262};
        Surface expected = surface;
        plain::Blur_Rect(expected.pixels(), &rect, expected.pitch(), radius);
        Blur_Rect(surface.pixels(), &rect, surface.pitch(), radius);
        ASSERT_EQ(surface.differenceFrom(expected), "") << "radius " << radius;
    }
    Surface white(260, 257, 0xFFFFFFFF);
    Surface expected = white;
    tagRECT rect = white.rect();
    plain::Blur_Rect(expected.pixels(), &rect, expected.pitch(), 128);
    Blur_Rect(white.pixels(), &rect, white.pitch(), 128);
    EXPECT_EQ(white.differenceFrom(expected), "");
}

TEST(Blur_Rect, radius_0_clears_the_top_byte_and_changes_nothing_else) {
    test::Random random(67);
    Surface surface = Surface::randomOfSize(random, 9, 7);
    Surface expected = surface;
    for (int y = 2; y < 7; ++y)
        for (int x = 1; x < 8; ++x)
            expected.at(x, y) &= 0xFFFFFF;
    tagRECT rect = {1, 2, 8, 7};
    Blur_Rect(surface.pixels(), &rect, surface.pitch(), 0);
    EXPECT_EQ(surface.differenceFrom(expected), "");
}

TEST(Blur_Rect, radius_1_leaves_white_at_255_in_the_corners_254_along_the_edges_and_253_inside) {
    Surface surface(6, 5, 0xFFFFFFFF);
    Surface expected(6, 5, 0xFFFFFFFF);
    for (int y = 0; y < 5; ++y)
        for (int x = 0; x < 6; ++x) {
            const int edges = (x == 0 || x == 5) + (y == 0 || y == 4);
            expected.at(x, y) = edges == 2 ? 0xFFFFFF : edges == 1 ? 0xFEFEFE : 0xFDFDFD;
        }
    tagRECT rect = surface.rect();
    Blur_Rect(surface.pixels(), &rect, surface.pitch(), 1);
    EXPECT_EQ(surface.differenceFrom(expected), "");
}

TEST(Blur_Rect, edges_are_true_means_over_the_pixels_that_exist) {
    Surface surface(3, 2, 0);
    const q_ulong reds[2][3] = {{10, 20, 33}, {0, 0, 0}};
    for (int y = 0; y < 2; ++y)
        for (int x = 0; x < 3; ++x)
            surface.at(x, y) = reds[y][x] << 16;
    // Along the rows: (10 + 20) / 2, 63 * 21845 / 65536 and (20 + 33) / 2; then each column is halved twice.
    Surface expected = surface;
    for (int y = 0; y < 2; ++y) {
        expected.at(0, y) = (15 / 2) << 16;
        expected.at(1, y) = (20 / 2) << 16;
        expected.at(2, y) = (26 / 2) << 16;
    }
    tagRECT rect = surface.rect();
    Blur_Rect(surface.pixels(), &rect, surface.pitch(), 1);
    EXPECT_EQ(surface.differenceFrom(expected), "");
}

TEST(Blur_Rect, a_radius_above_half_the_rectangle_or_below_0_draws_nothing) {
    test::Random random(68);
    const Surface before = Surface::randomOfSize(random, 8, 8);
    const auto expectUntouched = [&before](tagRECT rect, int radius) {
        Surface surface = before;
        Blur_Rect(surface.pixels(), &rect, surface.pitch(), radius);
        EXPECT_EQ(surface.differenceFrom(before), "") << radius;
    };
    expectUntouched({0, 0, 8, 5}, 3);
    expectUntouched({0, 0, 5, 8}, 3);
    expectUntouched({0, 0, 8, 8}, 0x7FFFFFFF);
    expectUntouched({0, 0, 8, 8}, -1);
    expectUntouched({0, 0, 8, 8}, -0x7FFFFFFF - 1);
    expectUntouched({3, 3, 3, 8}, 0);
    expectUntouched({3, 3, 8, 3}, 0);
    expectUntouched({5, 5, 1, 1}, 0);
}

TEST(Hor_Blur, size_0_copies_and_clears_the_top_byte) {
    test::Random random(69);
    for (const Variant &variant : {rows, columns}) {
        Surface src = Surface::randomOfSize(random, 9, 5);
        Surface dst = another(random, src);
        Surface expected = dst;
        for (int y = 0; y < 5; ++y)
            for (int x = 0; x < 9; ++x)
                expected.at(x, y) = src.at(x, y) & 0xFFFFFF;
        variant.blur(dst.pixels(), src.pixels(), 0, 9, 5, src.pitch());
        EXPECT_EQ(dst.differenceFrom(expected), "");
    }
}

TEST(Hor_Blur32, size_0_copies_whole) {
    test::Random random(70);
    for (const Variant &variant : {rows32, columns32}) {
        Surface src = Surface::randomOfSize(random, 9, 5);
        Surface dst = another(random, src);
        Surface expected = dst;
        for (int y = 0; y < 5; ++y)
            for (int x = 0; x < 9; ++x)
                expected.at(x, y) = src.at(x, y);
        variant.blur(dst.pixels(), src.pixels(), 0, 9, 5, src.pitch());
        EXPECT_EQ(dst.differenceFrom(expected), "");
    }
}

TEST(Hor_Blur, size_1_averages_each_pixel_with_its_right_neighbour) {
    Surface src(4, 1);
    Surface dst = src;
    Surface expected = dst;
    const q_ulong greens[4] = {10, 21, 200, 255};
    for (int x = 0; x < 4; ++x)
        src.at(x, 0) = greens[x] << 8;
    const q_ulong means[4] = {15, 110, 227, 255}; // the last has no neighbour
    for (int x = 0; x < 4; ++x)
        expected.at(x, 0) = means[x] << 8;
    Hor_Blur(dst.pixels(), src.pixels(), 1, 4, 1, src.pitch());
    EXPECT_EQ(dst.differenceFrom(expected), "");
}

TEST(Ver_Blur, size_1_averages_each_pixel_with_the_one_below) {
    Surface src(1, 4);
    Surface dst = src;
    Surface expected = dst;
    const q_ulong greens[4] = {10, 21, 200, 255};
    const q_ulong means[4] = {15, 110, 227, 255};
    for (int y = 0; y < 4; ++y) {
        src.at(0, y) = greens[y] << 8;
        expected.at(0, y) = means[y] << 8;
    }
    Ver_Blur(dst.pixels(), src.pixels(), 1, 1, 4, src.pitch());
    EXPECT_EQ(dst.differenceFrom(expected), "");
}

TEST(Hor_Blur, an_odd_size_leans_one_pixel_forward) {
    // One bright pixel is seen by those that reach it: two pixels behind it, one before it.
    Surface src(9, 1);
    src.at(4, 0) = 0x80;
    Surface dst(9, 1);
    Surface expected(9, 1);
    for (int x = 2; x <= 5; ++x)
        expected.at(x, 0) = 0x20;
    Hor_Blur(dst.pixels(), src.pixels(), 3, 9, 1, src.pitch());
    EXPECT_EQ(dst.differenceFrom(expected), "");
}

TEST(Hor_Blur, white_stays_255_only_where_the_count_is_a_power_of_two) {
    constexpr int length = 40;
    for (int blurSize = 0; blurSize < length; ++blurSize)
        for (const Variant &variant : {rows, columns, rows32, columns32}) {
            const int width = variant.alongColumns ? 1 : length;
            const int height = variant.alongColumns ? length : 1;
            Surface src(width, height, 0xFFFFFFFF);
            Surface dst(width, height);
            Surface expected(width, height);
            for (int i = 0; i < length; ++i) {
                int count = 0;
                for (int k = i - blurSize / 2; k <= i + (blurSize + 1) / 2; ++k)
                    count += k >= 0 && k < length;
                const bool powerOfTwo = (count & (count - 1)) == 0;
                expected.at(variant.alongColumns ? 0 : i, variant.alongColumns ? i : 0) =
                    (powerOfTwo ? 0xFFFFFFFF : 0xFEFEFEFE) & variant.mask;
            }
            variant.blur(dst.pixels(), src.pixels(), blurSize, width, height, src.pitch());
            ASSERT_EQ(dst.differenceFrom(expected), "") << "size " << blurSize;
        }
}

TEST(Hor_Blur32, the_top_byte_is_blurred_like_a_colour) {
    for (const Variant &variant : {rows32, columns32}) {
        const int width = variant.alongColumns ? 2 : 3;
        const int height = variant.alongColumns ? 3 : 2;
        Surface src(width, height, 0xC0000000);
        Surface dst(width, height, 1);
        Surface expected(width, height, 1);
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x) {
                const int i = variant.alongColumns ? y : x;
                // 192 * 3 * 21845 / 65536 is 191; two pixels at either end give 192 * 2 * 32768 / 65536.
                expected.at(x, y) = i == 1 ? 0xBF000000 : 0xC0000000;
            }
        variant.blur(dst.pixels(), src.pixels(), 2, width, height, src.pitch());
        EXPECT_EQ(dst.differenceFrom(expected), "");
    }
}

TEST(Hor_Blur, the_largest_window_and_pictures_of_several_hundred_columns) {
    test::Random random(71);
    for (const Variant &variant : {rows, columns, rows32, columns32})
        for (const int blurSize : {254, 255}) {
            Surface src = Surface::randomOfSize(random, 281, 259);
            Surface dst = another(random, src);
            Surface expected = dst;
            variant.plainBlur(expected.pixels(), src.pixels(), blurSize, 281, 259, src.pitch());
            variant.blur(dst.pixels(), src.pixels(), blurSize, 281, 259, src.pitch());
            ASSERT_EQ(dst.differenceFrom(expected), "") << "size " << blurSize;
        }
}

TEST(Hor_Blur, sizes_above_255_and_below_0_draw_nothing) {
    test::Random random(72);
    Surface src = Surface::randomOfSize(random, 300, 300);
    const Surface before = another(random, src);
    for (const Variant &variant : {rows, columns, rows32, columns32})
        for (const int blurSize : {256, 299, 0x7FFFFFFF, -1, -2, -0x7FFFFFFF - 1}) {
            Surface dst = before;
            variant.blur(dst.pixels(), src.pixels(), blurSize, 300, 300, src.pitch());
            ASSERT_EQ(dst.differenceFrom(before), "") << "size " << blurSize;
        }
}

TEST(Hor_Blur, without_lines_nothing_is_drawn) {
    test::Random random(73);
    Surface src = Surface::randomOfSize(random, 8, 8);
    const Surface before = another(random, src);
    for (const Variant &variant : {rows, columns, rows32, columns32})
        for (const int lines : {0, -1, -0x7FFFFFFF - 1}) {
            Surface dst = before;
            const int width = variant.alongColumns ? lines : 8;
            const int height = variant.alongColumns ? 8 : lines;
            variant.blur(dst.pixels(), src.pixels(), 4, width, height, src.pitch());
            EXPECT_EQ(dst.differenceFrom(before), "");
        }
}

TEST(Hor_Blur, lines_without_pixels_still_get_their_first_edge) {
    // Lines of no length: the edge runs its blurSize / 2 steps all the same, over pixels behind the line's end.
    test::Random random(74);
    Surface src = Surface::randomOfSize(random, 8, 8);
    const Surface before = another(random, src);
    for (const Variant &variant : {rows, columns, rows32, columns32})
        for (const int length : {0, -1, -0x7FFFFFFF - 1})
            for (int blurSize = 0; blurSize <= 5; ++blurSize) {
                Surface dst = before;
                Surface longer = before; // whose lines have the same first edge
                Surface expected = before;
                variant.plainBlur(longer.pixels(), src.pixels(), blurSize, 8, 8, src.pitch());
                for (int other = 0; other < 3; ++other)
                    for (int i = 0; i < blurSize / 2; ++i) {
                        const int x = variant.alongColumns ? other : i;
                        const int y = variant.alongColumns ? i : other;
                        expected.at(x, y) = longer.at(x, y);
                    }
                const int width = variant.alongColumns ? 3 : length;
                const int height = variant.alongColumns ? length : 3;
                variant.blur(dst.pixels(), src.pixels(), blurSize, width, height, src.pitch());
                ASSERT_EQ(dst.differenceFrom(expected), "") << "size " << blurSize;
            }
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
            Surface expected = surface;
            tagRECT rect = surface.rect();
            plain::Blur_Rect(expected.pixels(), &rect, expected.pitch(), radius);
            Blur_Rect(surface.pixels(), &rect, surface.pitch(), radius);
            ASSERT_EQ(surface.differenceFrom(expected), "") << "radius " << radius;
        }
    }
}

TEST(Blur_Rect, every_size_up_to_more_than_two_registers) {
    test::Random random(75);
    for (int width = 1; width <= 37; ++width)
        for (int height = 1; height <= 37; ++height) {
            const int radius = random.between(0, std::min(width, height) / 2);
            Surface surface = Surface::randomOfSize(random, width, height);
            Surface expected = surface;
            tagRECT rect = surface.rect();
            plain::Blur_Rect(expected.pixels(), &rect, expected.pitch(), radius);
            Blur_Rect(surface.pixels(), &rect, surface.pitch(), radius);
            ASSERT_EQ(surface.differenceFrom(expected), "") << width << ' ' << height << ' ' << radius;
            for (const Variant &variant : {rows, columns, rows32, columns32}) {
                const int blurSize = random.between(0, (variant.alongColumns ? height : width) - 1);
                Surface dst = another(random, surface);
                Surface wanted = dst;
                variant.plainBlur(wanted.pixels(), surface.pixels(), blurSize, width, height, surface.pitch());
                variant.blur(dst.pixels(), surface.pixels(), blurSize, width, height, surface.pitch());
                ASSERT_EQ(dst.differenceFrom(wanted), "") << width << ' ' << height << ' ' << blurSize;
            }
        }
}

} // namespace
