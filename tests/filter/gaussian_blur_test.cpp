#include "plain/blurs.h"
#include "support/surface.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

using test::Surface;

using Blur = void (*)(q_ulong *, q_ulong *, float, int, int, int);

struct Variant {
    Blur blur;
    Blur plainBlur;
    bool alongColumns;
};

constexpr Variant alongRows = {Hor_GaussBlur, plain::Hor_GaussBlur, false};
constexpr Variant alongColumns = {Ver_GaussBlur, plain::Ver_GaussBlur, true};

/// A picture of the same size and pitch with other pixels.
Surface another(test::Random &random, const Surface &surface) {
    Surface other = surface;
    for (int y = -Surface::margin; y < surface.height() + Surface::margin; ++y)
        for (int x = -Surface::margin; x < surface.width() + Surface::margin; ++x)
            other.at(x, y) = random.word();
    return other;
}

/// A line of `length` pixels along the variant's direction.
Surface lineOf(const Variant &variant, int length, q_ulong value = 0) {
    return variant.alongColumns ? Surface(1, length, value) : Surface(length, 1, value);
}

q_ulong &pixelOf(Surface &line, const Variant &variant, int i) {
    return variant.alongColumns ? line.at(0, i) : line.at(i, 0);
}

TEST(Hor_GaussBlur, pictures_of_several_hundred_pixels_and_wide_kernels) {
    test::Random random(81);
    for (const Variant &variant : {alongRows, alongColumns})
        for (const float sigma : {0.5F, 2.0F, 8.0F, 20.0F, 42.0F}) {
            const int width = variant.alongColumns ? 67 : 541;
            const int height = variant.alongColumns ? 541 : 67;
            Surface src = Surface::randomOfSize(random, width, height);
            Surface dst = another(random, src);
            Surface expected = dst;
            variant.plainBlur(expected.pixels(), src.pixels(), sigma, width, height, src.pitch());
            variant.blur(dst.pixels(), src.pixels(), sigma, width, height, src.pitch());
            ASSERT_EQ(dst.differenceFrom(expected), "") << "sigma " << sigma;
        }
}

TEST(Hor_GaussBlur, the_weights_are_those_of_the_density_for_every_sigma) {
    // One white pixel far from the ends is seen through the weights, mirrored: weight * 255 / 256 is weight - 1, or 0.
    constexpr int length = 520;
    for (int step = 1; step <= 440; ++step) {
        const float sigma = static_cast<float>(step) / 10;
        const plain::GaussWeights weights = plain::gaussWeightsOf(sigma);
        const Variant &variant = step % 2 == 0 ? alongRows : alongColumns;
        Surface src = lineOf(variant, length);
        Surface dst = src;
        Surface expected = src;
        pixelOf(src, variant, length / 2) = 0xFF;
        const auto seen = [](int weight) { return static_cast<q_ulong>(weight == 0 ? 0 : weight - 1); };
        if (weights.radius < 128)
            for (int k = -weights.radius; k <= weights.radius; ++k)
                pixelOf(expected, variant, length / 2 + k) = seen(k == 0 ? weights.centre : weights.side[std::abs(k)]);
        variant.blur(dst.pixels(), src.pixels(), sigma, src.width(), src.height(), src.pitch());
        ASSERT_EQ(dst.differenceFrom(expected), "") << "sigma " << sigma;
    }
}

TEST(Hor_GaussBlur, weights_of_sigma_1_by_hand) {
    // The densities 0.3989, 0.2420, 0.0540, 0.0044 and 0.0001338 add up, both sides counted, to 1.0000; the next,
    // 0.0000015, ends the search. Times 256 and truncated: 61, 13, 1 and 0; the centre gets 256 - 2 * 75.
    const int weights[5] = {106, 61, 13, 1, 0};
    for (const Variant &variant : {alongRows, alongColumns}) {
        Surface src = lineOf(variant, 21);
        Surface dst = src;
        Surface expected = src;
        pixelOf(src, variant, 10) = 0xFF8000;
        for (int k = -4; k <= 4; ++k) {
            const int weight = weights[std::abs(k)];
            pixelOf(expected, variant, 10 + k) =
                static_cast<q_ulong>(weight * 255 / 256 << 16 | weight * 128 / 256 << 8);
        }
        variant.blur(dst.pixels(), src.pixels(), 1, src.width(), src.height(), src.pitch());
        EXPECT_EQ(dst.differenceFrom(expected), "");
    }
}

TEST(Hor_GaussBlur, uniform_areas_keep_their_colours_and_lose_their_top_byte) {
    for (const Variant &variant : {alongRows, alongColumns})
        for (const float sigma : {0.01F, 0.3F, 1.0F, 5.0F, 20.0F, 42.0F, 4000.0F})
            for (const q_ulong colour : {0xFFFFFFFFu, 0x80010203u, 0x00FEDCBAu, 0xFF000000u, 0x7F0000FFu}) {
                Surface src = lineOf(variant, 260, colour);
                Surface dst = lineOf(variant, 260, 0x12345678);
                Surface expected = dst;
                for (int i = 0; i < 260; ++i)
                    pixelOf(expected, variant, i) = colour & 0xFFFFFF;
                variant.blur(dst.pixels(), src.pixels(), sigma, src.width(), src.height(), src.pitch());
                ASSERT_EQ(dst.differenceFrom(expected), "") << "sigma " << sigma;
            }
}

TEST(Hor_GaussBlur, a_very_small_sigma_copies_and_clears_the_top_byte) {
    test::Random random(82);
    for (const Variant &variant : {alongRows, alongColumns})
        for (const float sigma : {0.25F, 0.1F, 0.001F, 1e-15F}) {
            Surface src = Surface::randomOfSize(random, 6, 5);
            Surface dst = another(random, src);
            Surface expected = dst;
            for (int y = 0; y < 5; ++y)
                for (int x = 0; x < 6; ++x)
                    expected.at(x, y) = src.at(x, y) & 0xFFFFFF;
            variant.blur(dst.pixels(), src.pixels(), sigma, 6, 5, src.pitch());
            ASSERT_EQ(dst.differenceFrom(expected), "") << "sigma " << sigma;
        }
}

TEST(Hor_GaussBlur, the_start_mirrors_about_the_first_pixel_and_the_end_behind_the_last) {
    // Weights 256 - 2 * 75, 61, 13 and 1. A pixel beside the first one is seen twice by it, the first one itself once;
    // at the end the last pixel is seen again as its own neighbour.
    for (const Variant &variant : {alongRows, alongColumns}) {
        constexpr int length = 12;
        const auto filtered = [&variant](int bright) {
            Surface src = lineOf(variant, length);
            Surface dst = src;
            pixelOf(src, variant, bright) = 0x80;
            variant.blur(dst.pixels(), src.pixels(), 1, src.width(), src.height(), src.pitch());
            return dst;
        };
        Surface first = filtered(0);
        EXPECT_EQ(pixelOf(first, variant, 0), 106u / 2);
        EXPECT_EQ(pixelOf(first, variant, 1), 61u / 2);
        Surface second = filtered(1);
        EXPECT_EQ(pixelOf(second, variant, 0), 61u);
        EXPECT_EQ(pixelOf(second, variant, 1), (106u + 13) / 2); // the second pixel sees itself two before, at -1
        Surface last = filtered(length - 1);
        EXPECT_EQ(pixelOf(last, variant, length - 1), (106u + 61) / 2);
        EXPECT_EQ(pixelOf(last, variant, length - 2), (61u + 13) / 2);
        Surface nextToLast = filtered(length - 2);
        EXPECT_EQ(pixelOf(nextToLast, variant, length - 1), (61u + 13) / 2);
    }
}

TEST(Hor_GaussBlur, a_kernel_too_wide_for_its_room_draws_nothing) {
    test::Random random(83);
    for (const Variant &variant : {alongRows, alongColumns}) {
        Surface src = Surface::randomOfSize(random, 20, 20);
        const Surface before = another(random, src);
        for (const float sigma : {42.2F, 50.0F, 100.0F, 1000.0F, 3980.0F, std::numeric_limits<float>::quiet_NaN()}) {
            Surface dst = before;
            variant.blur(dst.pixels(), src.pixels(), sigma, 20, 20, src.pitch());
            ASSERT_EQ(dst.differenceFrom(before), "") << "sigma " << sigma;
        }
    }
}

TEST(Hor_GaussBlur, the_widest_kernel_has_127_pixels_on_either_side) {
    EXPECT_EQ(plain::gaussWeightsOf(42.05F).radius, 127);
    EXPECT_EQ(plain::gaussWeightsOf(42.15F).radius, 128);
    for (const Variant &variant : {alongRows, alongColumns})
        for (const bool drawn : {true, false}) {
            Surface src = lineOf(variant, 254, 0x102030);
            Surface dst = lineOf(variant, 254, 7);
            const Surface expected = [&] {
                Surface surface = dst;
                for (int i = 0; i < 254; ++i)
                    pixelOf(surface, variant, i) = drawn ? 0x102030 : 7;
                return surface;
            }();
            variant.blur(dst.pixels(), src.pixels(), drawn ? 42.05F : 42.15F, src.width(), src.height(), src.pitch());
            EXPECT_EQ(dst.differenceFrom(expected), "");
        }
}

TEST(Hor_GaussBlur, a_sigma_so_large_that_the_first_weight_ends_the_search_takes_thirds) {
    // From about 3990 upward the density is below 0.0001 throughout: one neighbour on either side, each a third.
    for (const Variant &variant : {alongRows, alongColumns})
        for (const float sigma : {4000.0F, 1e6F}) {
            Surface src = lineOf(variant, 5);
            Surface dst = src;
            Surface expected = src;
            pixelOf(src, variant, 2) = 0x80;
            pixelOf(expected, variant, 1) = pixelOf(expected, variant, 3) = 85 / 2;
            pixelOf(expected, variant, 2) = 86 / 2;
            variant.blur(dst.pixels(), src.pixels(), sigma, src.width(), src.height(), src.pitch());
            EXPECT_EQ(dst.differenceFrom(expected), "");
        }
}

TEST(Hor_GaussBlur, every_kernel_on_lines_enough_to_be_taken_together) {
    test::Random random(83);
    for (int step = 1; step <= 425; ++step) {
        const float sigma = static_cast<float>(step) / 10;
        const Variant &variant = step % 2 == 0 ? alongRows : alongColumns;
        const int length = random.between(1, 300);
        const int lines = random.between(32, 70);
        Surface src = variant.alongColumns ? Surface::randomOfSize(random, lines, length)
                                           : Surface::randomOfSize(random, length, lines);
        if (step % 3 == 0)
            src = Surface(src.width(), src.height(), 0xFFFFFFFF);
        Surface dst = another(random, src);
        Surface expected = dst;
        variant.plainBlur(expected.pixels(), src.pixels(), sigma, src.width(), src.height(), src.pitch());
        variant.blur(dst.pixels(), src.pixels(), sigma, src.width(), src.height(), src.pitch());
        ASSERT_EQ(dst.differenceFrom(expected), "") << "sigma " << sigma;
    }
}

TEST(Hor_GaussBlur, every_size_up_to_more_than_two_registers) {
    test::Random random(84);
    for (int width = 1; width <= 37; ++width)
        for (int height = 1; height <= 37; ++height)
            for (const Variant &variant : {alongRows, alongColumns}) {
                const float sigma = random.realBetween(0.1F, 12);
                Surface src = Surface::randomOfSize(random, width, height);
                Surface dst = another(random, src);
                Surface expected = dst;
                variant.plainBlur(expected.pixels(), src.pixels(), sigma, width, height, src.pitch());
                variant.blur(dst.pixels(), src.pixels(), sigma, width, height, src.pitch());
                ASSERT_EQ(dst.differenceFrom(expected), "") << width << ' ' << height << ' ' << sigma;
            }
}

} // namespace
