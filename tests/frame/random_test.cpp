#include "frame/at_load.h"
#include "frame/generator.h"
#include "support/precision.h"
#include "plain/frame.h"
#include "support/cases.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>

namespace {

using test::Case;
using test::drawsTaken;
using test::forEachCase;
using test::scriptDraws;
using test::seedDraws;

constexpr int least = std::numeric_limits<int>::min();
constexpr int largest = std::numeric_limits<int>::max();

/// What `random(...)` returns for these draws; all of them must be taken.
template <class Function>
auto with(std::vector<int> draws, Function function) {
    const auto count = static_cast<int>(draws.size());
    scriptDraws(std::move(draws));
    const auto result = function();
    EXPECT_EQ(drawsTaken(), count);
    return result;
}

/// A float of any sign and of moderate size, with a full mantissa.
float anyFloat(test::Random &random) {
    const int mantissa = random.between(-0xFFFFFF, 0xFFFFFF);
    return static_cast<float>(std::ldexp(mantissa, random.between(-30, -10)));
}

double anyDouble(test::Random &random) {
    const double upper = random.between(least, largest);
    const double mantissa = upper + std::ldexp(random.between(0, 0x1FFFFF), -21);
    return std::ldexp(mantissa, random.between(-40, -20));
}

// ---------------------------------------------------------------------------------------------------------------------

TEST(rand, of_this_program_is_the_one_that_the_library_calls) {
    scriptDraws({1, 2, 3});
    EXPECT_EQ(randColor(), 0x010203u);
    EXPECT_EQ(drawsTaken(), 3);
    seedDraws(1);
    EXPECT_EQ(randInt(0, 32768), 41); // the well-known first numbers of this generator
    EXPECT_EQ(randInt(0, 32768), 18467);
    EXPECT_EQ(randInt(0, 32768), 6334);
}

TEST(rand, bits_above_the_fifteenth_are_dropped) {
    constexpr int wide = 0x7FFF8000;
    EXPECT_EQ(with({wide | 7}, [] { return randInt(0, 32768); }), 7);
    EXPECT_EQ(with({wide | 32767}, [] { return randFloat(0, 1); }), 1.0F);
    EXPECT_EQ(with({wide}, [] { return randFloat(3, 9); }), 3.0F);
    EXPECT_EQ(with({wide | 32767}, [] { return randDouble(0, 1); }), 1.0);
    EXPECT_EQ(with({wide | 32767, wide}, [] { return randIntGauss(0, 100, 2); }), 50);
    EXPECT_EQ(with({wide | 32767, wide}, [] { return randFloatGauss(0, 1, 2); }), 0.5F);
    EXPECT_EQ(with({wide | 32767, wide}, [] { return randDoubleGauss(0, 1, 2); }), 0.5);
    EXPECT_EQ(with({wide | 0x1FF, wide | 2, wide | 3}, [] { return randColor(); }), 0xFF0203u);
    EXPECT_EQ(with({wide}, [] { return randRainbowColor(); }), 0x01008000u);
}

// ---------------------------------------------------------------------------------------------------------------------

TEST(GaussRand, runs_through_its_table_in_a_cycle_of_16_from_load_on) {
    constexpr int table[] = {0, -2, 0, 0, 0, 1, 0, -1, 0, 0, 0, 2, 0, 0, 0, 0};
    for (int i = 0; i < 40; ++i)
        EXPECT_EQ(test::atLoad.gaussRand[i], table[i % 16]) << i;
}

TEST(GaussRand, draws_nothing_and_goes_on_where_it_was) {
    scriptDraws({});
    int results[32];
    for (int &result : results)
        result = GaussRand();
    EXPECT_EQ(drawsTaken(), 0);
    int sum = 0;
    for (int i = 0; i < 16; ++i) {
        EXPECT_EQ(results[i], results[i + 16]);
        sum += results[i];
    }
    EXPECT_EQ(sum, 0);
}

// ---------------------------------------------------------------------------------------------------------------------

TEST(randInt, of_a_span_of_1_is_always_the_lower_bound) {
    EXPECT_EQ(with({1, 3, 32767, 2}, [] { return randInt(0, 1); }), 0); // odd draws are rejected under the mask 1
    EXPECT_EQ(with({0}, [] { return randInt(-5, -4); }), -5);
}

TEST(randInt, rejects_draws_that_stand_beyond_the_span_under_its_mask) {
    EXPECT_EQ(with({3, 7, 32767, 6}, [] { return randInt(5, 8); }), 7); // 6 is 2 under the mask 3
    EXPECT_EQ(with({4}, [] { return randInt(5, 8); }), 5);
    EXPECT_EQ(with({1}, [] { return randInt(5, 8); }), 6);
}

TEST(randInt, the_ladder_of_masks_has_no_rung_for_4095) {
    const struct {
        int span;
        int mask;
    } rungs[] = {{1, 1},        {2, 1},        {3, 3},        {4, 3},         {5, 7},        {8, 7},
                 {9, 15},       {16, 15},      {17, 31},      {32, 31},       {33, 63},      {64, 63},
                 {65, 127},     {128, 127},    {129, 255},    {256, 255},     {257, 511},    {512, 511},
                 {513, 1023},   {1024, 1023},  {1025, 2047},  {2048, 2047},   {2049, 8191},  {4096, 8191},
                 {4097, 16383}, {8192, 16383}, {8193, 32767}, {16384, 32767}, {32768, 32767}};
    for (const auto &[span, mask] : rungs) {
        const auto drawn = [s = span](int draw, bool accepted) {
            return with(accepted ? std::vector{draw} : std::vector{draw, 0}, [s] { return randInt(0, s); });
        };
        // The mask's uppermost bit is kept, and rejected unless the span reaches beyond it.
        const int top = (mask + 1) / 2;
        EXPECT_EQ(drawn(top, top < span), top < span ? top : 0) << span;
        // The bit above it is dropped.
        EXPECT_EQ(drawn((mask + 1) & 32767, true), 0) << span;
        // All bits of the mask are kept.
        EXPECT_EQ(drawn(32767, mask < span), mask < span ? mask : 0) << span;
    }
}

TEST(randInt, spans_above_32768_are_not_covered) {
    EXPECT_EQ(with({32767}, [] { return randInt(0, 1000000); }), 32767);
    EXPECT_EQ(with({32767}, [] { return randInt(-1000000, 1000000); }), -967233);
}

TEST(randInt, with_the_bounds_exchanged_is_the_first_plus_a_whole_draw) {
    EXPECT_EQ(with({32767}, [] { return randInt(10, 5); }), 32777);
    EXPECT_EQ(with({0}, [] { return randInt(10, 5); }), 10);
    EXPECT_EQ(with({1}, [] { return randInt(largest, largest - 1); }), least);
}

// ---------------------------------------------------------------------------------------------------------------------

TEST(randFloat, reaches_both_ends) {
    EXPECT_EQ(with({32767}, [] { return randFloat(0, 1); }), 1.0F);
    EXPECT_EQ(with({0}, [] { return randFloat(0, 1); }), 0.0F);
    EXPECT_EQ(with({32767}, [] { return randFloat(-2, 6); }), 6.0F);
    EXPECT_EQ(with({0}, [] { return randFloat(-2, 6); }), -2.0F);
    EXPECT_EQ(with({32767}, [] { return randFloat(6, -2); }), -2.0F);
    EXPECT_EQ(with({123}, [] { return randFloat(5, 5); }), 5.0F);
}

TEST(randFloat, takes_the_reciprocal_as_a_float) {
    // 16384 draws times 2^-15 + 2^-30; a true 32767th would give 0.50001526.. with more digits.
    EXPECT_EQ(with({16384}, [] { return randFloat(0, 1); }), 0x1.0002p-1F);
    EXPECT_EQ(with({1}, [] { return randFloat(0, 1); }), std::bit_cast<float>(0x38000100));
}

TEST(randFloat, is_computed_at_full_width_and_rounded_once) {
    // 32767 draws are (1 + 2^-30) (1 - 2^-30), which is 1 - 2^-60: with 53 bits it would be 1.
    EXPECT_EQ(with({32767}, [] { return randFloat(-1, 0x1p-30F); }), -0x1p-60F);
}

TEST(randDouble, reaches_both_ends) {
    EXPECT_EQ(with({32767}, [] { return randDouble(0, 1); }), 1.0);
    EXPECT_EQ(with({0}, [] { return randDouble(0, 1); }), 0.0);
    EXPECT_EQ(with({32767}, [] { return randDouble(-2, 6); }), 6.0);
    EXPECT_EQ(with({0}, [] { return randDouble(-2, 6); }), -2.0);
}

TEST(randDouble, takes_the_reciprocal_as_a_double) {
    EXPECT_EQ(with({1}, [] { return randDouble(0, 1); }), 3.051850947599719e-05);
    EXPECT_EQ(with({16384}, [] { return randDouble(0, 1); }), 0x1.000200040008p-1);
}

TEST(randDouble, is_computed_at_full_width_and_rounded_once) {
    // With 53 bits throughout, the last digits would be 990.
    EXPECT_EQ(with({15357}, [] { return randDouble(-0x1.7733333333333p+5, 0x1.0e83a83a83a83p+5); }),
              -0x1.2249057c19993p+3);
}

// ---------------------------------------------------------------------------------------------------------------------

TEST(randIntGauss, reaches_both_ends) {
    EXPECT_EQ(with({32767}, [] { return randIntGauss(0, 100, 1); }), 100);
    EXPECT_EQ(with({0}, [] { return randIntGauss(0, 100, 1); }), 0);
    EXPECT_EQ(with({32767, 32767, 32767}, [] { return randIntGauss(10, 20, 3); }), 20);
}

TEST(randIntGauss, is_the_truncated_mean_of_its_draws) {
    EXPECT_EQ(with({16384}, [] { return randIntGauss(0, 100, 1); }), 50);                   // 50.0015
    EXPECT_EQ(with({32767, 0}, [] { return randIntGauss(0, 100, 2); }), 50);                // exactly
    EXPECT_EQ(with({32766}, [] { return randIntGauss(0, 100, 1); }), 99);                   // 99.997
    EXPECT_EQ(with({100}, [] { return randIntGauss(10, -90, 1); }), 10);                    // -0.3 toward zero
    EXPECT_EQ(with({32766}, [] { return randIntGauss(10, -90, 1); }), -89);                 // -99.997 toward zero
    EXPECT_EQ(with({1000, 2000, 3000, 4000}, [] { return randIntGauss(0, 1000, 4); }), 76); // 10000000 / 131068
}

TEST(randIntGauss, wraps_where_the_product_leaves_32_bits) {
    // 32767 * 100000 is 3276700000, which is -1018267296; over 32767 that is -31076.0001.
    EXPECT_EQ(with({32767}, [] { return randIntGauss(0, 100000, 1); }), -31076);
    EXPECT_EQ(with({32767}, [] { return randIntGauss(7, 100007, 1); }), -31069);
}

TEST(randIntGauss, with_a_count_below_0_is_the_lower_bound_without_a_draw) {
    EXPECT_EQ(with({}, [] { return randIntGauss(10, 20, -1); }), 10);
    EXPECT_EQ(with({}, [] { return randIntGauss(10, 20, least); }), 10);
}

#if defined(GTEST_HAS_DEATH_TEST) && !defined(_WIN32)
TEST(randIntGaussDeathTest, a_count_of_0_faults) {
    EXPECT_DEATH(randIntGauss(0, 1, 0), "");
}
#endif

TEST(randFloatGauss, is_the_scaled_mean_of_its_draws) {
    EXPECT_EQ(with({32767}, [] { return randFloatGauss(0, 1, 1); }), 1.0F);
    EXPECT_EQ(with({0}, [] { return randFloatGauss(3, 9, 1); }), 3.0F);
    EXPECT_EQ(with({32767, 0}, [] { return randFloatGauss(2, 6, 2); }), 4.0F);
    EXPECT_EQ(with({1}, [] { return randFloatGauss(0, 32767, 1); }), 1.0F);
    EXPECT_EQ(with({1}, [] { return randFloatGauss(0, 1, 1); }), 1.0F / 32767);
}

TEST(randFloatGauss, is_computed_at_full_width_and_rounded_once) {
    EXPECT_EQ(with({32767}, [] { return randFloatGauss(-1, 0x1p-60F, 1); }), 0x1p-60F);
    EXPECT_EQ(with({32767}, [] { return randDoubleGauss(-1, 0x1p-60, 1); }), 0x1p-60);
}

TEST(randFloatGauss, with_a_count_of_0_is_no_number_and_no_fault) {
    EXPECT_TRUE(std::isnan(with({}, [] { return randFloatGauss(0, 1, 0); })));
    EXPECT_TRUE(std::isnan(with({}, [] { return randDoubleGauss(0, 1, 0); })));
}

TEST(randFloatGauss, with_a_count_below_0_is_the_lower_bound_without_a_draw) {
    EXPECT_EQ(with({}, [] { return randFloatGauss(10, 20, -1); }), 10.0F);
    EXPECT_EQ(with({}, [] { return randDoubleGauss(10, 20, -1); }), 10.0);
}

TEST(randFloatGauss, the_divisor_never_wraps) {
    // 65540 * 32767 is 2147549180, which as a 32-bit number would be -2147418116.
    std::vector<int> draws(65540, 0);
    draws.front() = 32767;
    EXPECT_EQ(with(draws, [] { return randFloatGauss(0, 65540, 65540); }), 1.0F);
    EXPECT_EQ(with(draws, [] { return randDoubleGauss(0, 65540, 65540); }), 1.0);
    // 131076 * 32767 is 2^32 - 4, which would be -4.
    EXPECT_EQ(with(std::vector<int>(131076, 1), [] { return randDoubleGauss(0, 32767, 131076); }), 1.0);
}

TEST(randFloatGauss, the_sum_is_a_32_bit_number) {
    // Of 65540 draws of 32767 it is 2147549180, which wraps to -2147418116.
    const std::vector<int> draws(65540, 32767);
    EXPECT_EQ(with(draws, [] { return randFloatGauss(0, 1, 65540); }), static_cast<float>(-2147418116.0 / 2147549180));
    EXPECT_EQ(with(draws, [] { return randDoubleGauss(0, 1, 65540); }), -2147418116.0 / 2147549180);
}

TEST(randIntGauss, sum_and_divisor_are_32_bit_numbers) {
    // 65540 * 32767 is above 2^31: both wrap alike, and their quotient is still 1.
    EXPECT_EQ(with(std::vector<int>(65540, 32767), [] { return randIntGauss(0, 1, 65540); }), 1);
}

TEST(randDoubleGauss, is_the_scaled_mean_of_its_draws) {
    EXPECT_EQ(with({32767}, [] { return randDoubleGauss(0, 1, 1); }), 1.0);
    EXPECT_EQ(with({32767, 0}, [] { return randDoubleGauss(2, 6, 2); }), 4.0);
    EXPECT_EQ(with({1}, [] { return randDoubleGauss(0, 1, 1); }), 1.0 / 32767);
}

#if Q_MUR_TESTS_X87
TEST(randFloat, and_its_kin_are_the_same_at_any_precision_of_the_host_and_leave_the_unit_as_it_was) {
    struct Results {
        float uniformFloat;
        double uniformDouble;
        float bellFloat;
        double bellDouble;
        float closeFloat;
        float closeBellFloat;
        double closeBellDouble;

        bool operator==(const Results &) const = default;
    };
    const auto resultsAt = [](unsigned short word, int seed) {
        test::Random random(static_cast<std::uint64_t>(seed));
        const float low = anyFloat(random);
        const float high = anyFloat(random);
        const double lowDouble = anyDouble(random);
        const double highDouble = anyDouble(random);
        Results results;
        const test::X87ControlWord host(word);
        seedDraws(random.word());
        results.uniformFloat = randFloat(low, high);
        results.uniformDouble = randDouble(lowDouble, highDouble);
        results.bellFloat = randFloatGauss(low, high, 3);
        results.bellDouble = randDoubleGauss(lowDouble, highDouble, 3);
        scriptDraws({32767, 32767, 32767});
        results.closeFloat = randFloat(-1, 0x1p-30F);
        results.closeBellFloat = randFloatGauss(-1, 0x1p-60F, 1);
        results.closeBellDouble = randDoubleGauss(-1, 0x1p-60, 1);
        EXPECT_EQ(test::X87ControlWord::current(), word);
        return results;
    };
    for (int seed = 0; seed < 2000; ++seed) {
        const Results expected = resultsAt(test::precision64Bits, seed);
        ASSERT_EQ(expected.closeFloat, -0x1p-60F);
        ASSERT_EQ(expected.closeBellFloat, 0x1p-60F);
        ASSERT_EQ(expected.closeBellDouble, 0x1p-60);
        ASSERT_EQ(resultsAt(test::precision53Bits, seed), expected) << seed;
        ASSERT_EQ(resultsAt(test::precision24Bits, seed), expected) << seed;
    }
}
#endif

// ---------------------------------------------------------------------------------------------------------------------

TEST(randColor, draws_red_then_green_then_blue_of_which_the_low_8_bits_count) {
    EXPECT_EQ(with({0x7F12, 0x0034, 0x0156}, [] { return randColor(); }), 0x123456u);
    EXPECT_EQ(with({0x7FFF, 0x7FFF, 0x7FFF}, [] { return randColor(); }), 0xFFFFFFu);
}

TEST(randRainbowColor, is_grey_before_the_tables_are_filled) {
    EXPECT_EQ(test::atLoad.rainbowColour, 0x808080u);
}

TEST(randRainbowColor, peaks_carry_into_the_channel_above) {
    EXPECT_EQ(with({0}, [] { return randRainbowColor(); }), 0x01008000u);   // red 256, green 128, blue 0
    EXPECT_EQ(with({8192}, [] { return randRainbowColor(); }), 0x810080u);  // red 128, green 256, blue 128
    EXPECT_EQ(with({16384}, [] { return randRainbowColor(); }), 0x008100u); // red 0, green 128, blue 256
    EXPECT_EQ(with({24576}, [] { return randRainbowColor(); }), 0x800080u); // red 128, green 0, blue 128
}

TEST(randRainbowColor, between_the_peaks_is_a_mixture) {
    // An eighth of the circle: 23170 / 256 is 90, on the opposite side -90.
    EXPECT_EQ(with({4096}, [] { return randRainbowColor(); }), 0xDADA26u);
    EXPECT_EQ(with({4097}, [] { return randRainbowColor(); }), 0xDADA26u); // the index drops three bits of the angle
}

TEST(randRainbowColor, every_draw_gives_the_colour_of_its_angle) {
    for (int draw = 0; draw < 32768; ++draw) {
        const int index = draw / 4;
        const int opposite = (draw / 4 + 4096) % 8192;
        const int red = iCos[index] / 256 + 128;
        const int green = iSin[index] / 256 + 128;
        const int blue = iCos[opposite] / 256 + 128;
        ASSERT_EQ(with({draw}, [] { return randRainbowColor(); }),
                  static_cast<q_ulong>(red * 65536 | green * 256 | blue))
            << draw;
    }
}

// ---------------------------------------------------------------------------------------------------------------------

/// Compares what a function and its twin give from the same seed of this program's generator. Elsewhere they draw from
/// the platform's, whose results have no checksum.
template <class Draw, class Twin>
void compare(Case &c, Draw draw, Twin twin) {
    const std::uint32_t seed = c.random.word();
    seedDraws(seed);
    const auto result = draw();
    seedDraws(seed);
    const auto expected = twin();
    if constexpr (std::is_same_v<decltype(draw()), float>)
        c.expectEqual(result, expected);
    else if constexpr (std::is_same_v<decltype(draw()), double>)
        c.expectEqual(std::bit_cast<std::int64_t>(result), std::bit_cast<std::int64_t>(expected));
    else
        c.expectEqual(static_cast<std::int64_t>(result), static_cast<std::int64_t>(expected));
}

TEST(random_numbers, agree_with_their_twins_under_a_known_generator) {
    forEachCase("randInt", [](Case &c) {
        const int low = c.random.oneIn(10) ? c.random.between(least, largest) : c.random.between(-40000, 40000);
        const int bits = c.random.between(0, 16);
        const std::int64_t extent = c.random.between(1, 1 << bits);
        const int high = plain::int32(c.random.oneIn(10) ? low - extent : low + extent);
        compare(
            c, [=] { return randInt(low, high); }, [=] { return plain::randInt(low, high); });
    });
    forEachCase("randIntGauss", [](Case &c) {
        const int low = c.random.between(-1000, 1000);
        const int high = c.random.oneIn(5) ? c.random.between(least, largest) : c.random.between(-5000, 5000);
        const int count = c.random.oneIn(20) ? c.random.between(-3, -1) : c.random.between(1, 12);
        compare(
            c, [=] { return randIntGauss(low, high, count); }, [=] { return plain::randIntGauss(low, high, count); });
    });
    forEachCase("randFloat", [](Case &c) {
        const float low = anyFloat(c.random);
        const float high = anyFloat(c.random);
        compare(
            c, [=] { return randFloat(low, high); }, [=] { return plain::randFloat(low, high); });
    });
    forEachCase("randDouble", [](Case &c) {
        const double low = anyDouble(c.random);
        const double high = anyDouble(c.random);
        compare(
            c, [=] { return randDouble(low, high); }, [=] { return plain::randDouble(low, high); });
    });
    forEachCase("randFloatGauss", [](Case &c) {
        const float low = anyFloat(c.random);
        const float high = anyFloat(c.random);
        const int count = c.random.between(1, 12);
        compare(
            c, [=] { return randFloatGauss(low, high, count); },
            [=] { return plain::randFloatGauss(low, high, count); });
    });
    forEachCase("randDoubleGauss", [](Case &c) {
        const double low = anyDouble(c.random);
        const double high = anyDouble(c.random);
        const int count = c.random.between(1, 12);
        compare(
            c, [=] { return randDoubleGauss(low, high, count); },
            [=] { return plain::randDoubleGauss(low, high, count); });
    });
    forEachCase("randColor", [](Case &c) { compare(c, ::randColor, plain::randColor); });
    forEachCase("randRainbowColor", [](Case &c) { compare(c, ::randRainbowColor, plain::randRainbowColor); });
}

} // namespace
