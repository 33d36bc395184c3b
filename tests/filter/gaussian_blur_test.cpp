#include "directions.h"
#include "plain/blurs.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

using test::another;
using test::painted;
using test::Surface;

using Blur = test::Blur<float>;
constexpr Blur blurs[] = {{"Hor_GaussBlur", Hor_GaussBlur, plain::Hor_GaussBlur, false},
                          {"Ver_GaussBlur", Ver_GaussBlur, plain::Ver_GaussBlur, true}};

/// A black line with one bright pixel.
Surface brightAt(const Blur &blur, int length, int place, q_ulong colour) {
    return blur.line(length, [=](int i) { return i == place ? colour : 0; });
}

TEST(Hor_GaussBlur, the_weights_are_those_of_the_density_for_every_sigma) {
    // One white pixel far from the ends is seen through the weights, mirrored: weight * 255 / 256 is weight - 1, or 0.
    constexpr int length = 520;
    for (int step = 1; step <= 440; ++step) {
        const float sigma = static_cast<float>(step) / 10;
        const plain::GaussWeights weights = plain::gaussWeightsOf(sigma);
        const Blur &blur = blurs[step % 2];
        const Surface expected = blur.line(length, [&](int i) {
            const int k = std::abs(i - length / 2);
            if (weights.radius >= 128 || k > weights.radius)
                return 0;
            const int weight = k == 0 ? weights.centre : weights.side[k];
            return weight > 0 ? weight - 1 : 0;
        });
        const Surface black = brightAt(blur, length, 0, 0);
        ASSERT_EQ(blur.blurred(black, brightAt(blur, length, length / 2, 0xFF), sigma).differenceFrom(expected), "")
            << "sigma " << sigma;
    }
}

TEST(Hor_GaussBlur, weights_of_sigma_1_by_hand) {
    // The densities 0.3989, 0.2420, 0.0540, 0.0044 and 0.0001338 add up, both sides counted, to 1.0000; the next,
    // 0.0000015, ends the search. Times 256 and truncated: 61, 13, 1 and 0; the centre gets 256 - 2 * 75.
    constexpr int weights[5] = {106, 61, 13, 1, 0};
    for (const Blur &blur : blurs) {
        const Surface src = brightAt(blur, 21, 10, 0xFF8000);
        const Surface expected = blur.line(21, [&](int i) {
            const int weight = std::abs(i - 10) < 5 ? weights[std::abs(i - 10)] : 0;
            return weight * 255 / 256 << 16 | weight * 128 / 256 << 8;
        });
        EXPECT_EQ(blur.blurred(src, src, 1).differenceFrom(expected), "") << blur.name;
    }
}

TEST(Hor_GaussBlur, uniform_areas_keep_their_colours_and_lose_their_top_byte) {
    for (const Blur &blur : blurs)
        for (const float sigma : {0.01F, 0.3F, 1.0F, 5.0F, 20.0F, 42.0F, 4000.0F})
            for (const q_ulong colour : {0xFFFFFFFFu, 0x80010203u, 0x00FEDCBAu, 0xFF000000u, 0x7F0000FFu}) {
                const Surface src = blur.line(260, [colour](int) { return colour; });
                const Surface expected = blur.line(260, [colour](int) { return colour & 0xFFFFFF; });
                ASSERT_EQ(blur.blurred(src, src, sigma).differenceFrom(expected), "")
                    << blur.name << ", sigma " << sigma;
            }
}

TEST(Hor_GaussBlur, a_very_small_sigma_copies_and_clears_the_top_byte) {
    test::Random random(82);
    const Surface src = Surface::randomOfSize(random, 6, 5);
    const Surface before = another(random, src);
    const Surface copy = painted(before, src.rect(), [&](int x, int y) { return src.at(x, y) & 0xFFFFFF; });
    for (const Blur &blur : blurs)
        for (const float sigma : {0.25F, 0.1F, 0.001F, 1e-15F})
            EXPECT_EQ(blur.blurred(before, src, sigma).differenceFrom(copy), "") << blur.name << ", sigma " << sigma;
}

TEST(Hor_GaussBlur, the_start_mirrors_about_the_first_pixel_and_the_end_behind_the_last) {
    // Weights 106, 61, 13 and 1. A pixel beside the first one is seen twice by it, the first one itself once; at the
    // end the last pixel is seen again as its own neighbour.
    constexpr int length = 12;
    for (const Blur &blur : blurs) {
        const auto seen = [&blur](int bright, int at) {
            const Surface src = brightAt(blur, length, bright, 0x80);
            const Surface result = blur.blurred(src, src, 1);
            return blur.alongColumns ? result.at(0, at) : result.at(at, 0);
        };
        EXPECT_EQ(seen(0, 0), 106u / 2);
        EXPECT_EQ(seen(0, 1), 61u / 2);
        EXPECT_EQ(seen(1, 0), 61u);
        EXPECT_EQ(seen(1, 1), (106u + 13) / 2); // the second pixel sees itself two before, at -1
        EXPECT_EQ(seen(length - 1, length - 1), (106u + 61) / 2);
        EXPECT_EQ(seen(length - 1, length - 2), (61u + 13) / 2);
        EXPECT_EQ(seen(length - 2, length - 1), (61u + 13) / 2);
    }
}

TEST(Hor_GaussBlur, the_widest_kernel_has_127_pixels_on_either_side_and_a_wider_one_draws_nothing) {
    EXPECT_EQ(plain::gaussWeightsOf(42.05F).radius, 127);
    EXPECT_EQ(plain::gaussWeightsOf(42.15F).radius, 128);
    for (const Blur &blur : blurs) {
        const Surface src = blur.line(254, [](int) { return 0x102030; });
        const Surface before = blur.line(254, [](int) { return 7; });
        EXPECT_EQ(blur.blurred(before, src, 42.05F).differenceFrom(src), "");
        for (const float sigma :
             {42.15F, 42.2F, 50.0F, 100.0F, 1000.0F, 3980.0F, std::numeric_limits<float>::quiet_NaN()})
            EXPECT_EQ(blur.blurred(before, src, sigma).differenceFrom(before), "") << sigma;
    }
}

TEST(Hor_GaussBlur, a_sigma_so_large_that_the_first_weight_ends_the_search_takes_thirds) {
    // From about 3990 upward the density is below 0.0001 throughout: one neighbour on either side, each a third.
    for (const Blur &blur : blurs)
        for (const float sigma : {4000.0F, 1e6F}) {
            const Surface src = brightAt(blur, 5, 2, 0x80);
            const Surface expected = blur.line(5, [](int i) {
                return i == 2 ? 86 / 2 : i == 1 || i == 3 ? 85 / 2 : 0;
            });
            EXPECT_EQ(blur.blurred(src, src, sigma).differenceFrom(expected), "") << blur.name;
        }
}

TEST(Hor_GaussBlur, every_kernel_on_lines_enough_to_be_taken_together) {
    test::Random random(83);
    for (int step = 1; step <= 425; ++step) {
        const float sigma = static_cast<float>(step) / 10;
        const Blur &blur = blurs[step % 2];
        const int length = random.between(1, 300);
        const int lines = random.between(32, 70);
        Surface src = blur.alongColumns ? Surface::randomOfSize(random, lines, length)
                                        : Surface::randomOfSize(random, length, lines);
        if (step % 3 == 0)
            src = Surface(src.width(), src.height(), 0xFFFFFFFF);
        const Surface dst = another(random, src);
        ASSERT_EQ(blur.blurred(dst, src, sigma).differenceFrom(blur.blurredPlainly(dst, src, sigma)), "")
            << blur.name << ", sigma " << sigma;
    }
}

TEST(Hor_GaussBlur, rows_and_columns_of_several_stretches) {
    test::Random random(85);
    for (const float sigma : {0.5F, 0.9F, 1.4F, 2.0F, 2.7F, 4.0F, 6.5F, 8.0F, 13.0F, 20.0F, 40.0F})
        for (const Blur &blur : blurs) {
            const int width = random.between(1030, 2100);
            Surface src = Surface::randomOfSize(random, width, random.between(33, 45));
            src = painted(src, src.rect(), [&](int x, int y) { return x / 100 % 3 == 0 ? 0xFFFFFFFF : src.at(x, y); });
            const Surface dst = another(random, src);
            ASSERT_EQ(blur.blurred(dst, src, sigma).differenceFrom(blur.blurredPlainly(dst, src, sigma)), "")
                << blur.name << ", sigma " << sigma;
        }
}

TEST(Hor_GaussBlur, pictures_of_few_rows_or_columns) {
    test::Random random(86);
    for (int step = 0; step < 400; ++step) {
        const Blur &blur = blurs[step % 2];
        const float sigma = static_cast<float>(random.between(3, 120)) / 10;
        const int few = random.between(1, 36);
        const int many = random.between(1, 200);
        const bool isWide = random.between(0, 1) == 0;
        const Surface src = Surface::randomOfSize(random, isWide ? many : few, isWide ? few : many);
        const Surface dst = another(random, src);
        ASSERT_EQ(blur.blurred(dst, src, sigma).differenceFrom(blur.blurredPlainly(dst, src, sigma)), "")
            << blur.name << ", sigma " << sigma << ", " << src.width() << " x " << src.height();
    }
}

TEST(Hor_GaussBlur, lines_are_finished_one_after_the_other_where_rows_run_into_each_other) {
    for (const Blur &blur : blurs)
        for (const int pitch : {1, 7, 39, 40, 0, -1, -13, -40})
            for (const float sigma : {0.1F, 1.0F, 2.0F, 8.0F, 13.0F})
                blur.expectRowsMayRunIntoEachOther(sigma, 40, 65, pitch);
}

} // namespace
