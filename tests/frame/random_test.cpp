#include "frame/at_load.h"
#include "frame/generator.h"
#include "plain/frame.h"
#include "support/cases.h"
#include "support/numbers.h"
#include "support/precision.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <tuple>

namespace {

using test::Case;
using test::drawsTaken;
using test::greatestInt, test::leastInt;
using test::scriptDraws;
using test::seedDraws;

/// What a function returns for these draws; all of them must be taken.
template <class Result, class... Parameters>
Result with(std::vector<int> draws, Result (*function)(Parameters...), std::type_identity_t<Parameters>... arguments) {
    const auto count = static_cast<int>(draws.size());
    scriptDraws(std::move(draws));
    const Result result = function(arguments...);
    EXPECT_EQ(drawsTaken(), count);
    return result;
}

TEST(rand, of_this_program_is_the_one_that_the_library_calls_for_15_bits) {
    EXPECT_EQ(with({1, 2, 3}, randColor), 0x010203u);
    seedDraws(1);
    EXPECT_EQ(randInt(0, 32768), 41); // the well-known first numbers of this generator
    EXPECT_EQ(randInt(0, 32768), 18467);
    EXPECT_EQ(randInt(0, 32768), 6334);
    constexpr int wide = 0x7FFF8000;
    EXPECT_EQ(with({wide | 7}, randInt, 0, 32768), 7);
    EXPECT_EQ(with({wide | 32767}, randFloat, 0, 1), 1.0F);
    EXPECT_EQ(with({wide}, randFloat, 3, 9), 3.0F);
    EXPECT_EQ(with({wide | 32767}, randDouble, 0, 1), 1.0);
    EXPECT_EQ(with({wide | 32767, wide}, randIntGauss, 0, 100, 2), 50);
    EXPECT_EQ(with({wide | 32767, wide}, randFloatGauss, 0, 1, 2), 0.5F);
    EXPECT_EQ(with({wide | 32767, wide}, randDoubleGauss, 0, 1, 2), 0.5);
    EXPECT_EQ(with({wide | 0x1FF, wide | 2, wide | 3}, randColor), 0xFF0203u);
    EXPECT_EQ(with({wide}, randRainbowColor), 0x01008000u);
}

TEST(GaussRand, runs_through_its_table_in_a_cycle_of_16_from_load_on_without_a_draw) {
    constexpr int table[] = {0, -2, 0, 0, 0, 1, 0, -1, 0, 0, 0, 2, 0, 0, 0, 0};
    scriptDraws({});
    for (int i = 0; i < 40; ++i)
        EXPECT_EQ(test::atLoad.gaussRand[i], table[i % 16]) << i;
    for (int i = 40; i < 80; ++i)
        EXPECT_EQ(GaussRand(), table[i % 16]) << i;
    EXPECT_EQ(drawsTaken(), 0);
}

// Whole numbers

TEST(randInt, rejects_draws_beyond_the_span_under_its_mask_so_that_a_span_of_1_is_the_lower_bound) {
    EXPECT_EQ(with({3, 7, 32767, 6}, randInt, 5, 8), 7); // 6 is 2 under the mask 3
    EXPECT_EQ(with({4}, randInt, 5, 8), 5);
    EXPECT_EQ(with({1}, randInt, 5, 8), 6);
    EXPECT_EQ(with({1, 3, 32767, 2}, randInt, 0, 1), 0); // odd draws are rejected under the mask 1
    EXPECT_EQ(with({0}, randInt, -5, -4), -5);
}

TEST(randInt, the_ladder_of_masks_has_no_rung_for_4095) {
    // The largest span of each mask. 2049 has the mask of 4096.
    const std::pair<int, int> rungs[] = {{2, 1},       {4, 3},       {8, 7},        {16, 15},      {32, 31},
                                         {64, 63},     {128, 127},   {256, 255},    {512, 511},    {1024, 1023},
                                         {2048, 2047}, {4096, 8191}, {8192, 16383}, {32768, 32767}};
    int smaller = 0;
    for (const auto &[largestSpan, mask] : rungs) {
        for (const int span : {smaller + 1, largestSpan}) {
            const auto drawn = [span](int draw, bool accepted) {
                return with(accepted ? std::vector{draw} : std::vector{draw, 0}, randInt, 0, span);
            };
            // The mask's uppermost bit is kept, and rejected unless the span reaches beyond it; the bit above it is
            // dropped; all bits of the mask are kept.
            const int top = (mask + 1) / 2;
            EXPECT_EQ(drawn(top, top < span), top < span ? top : 0) << span;
            EXPECT_EQ(drawn((mask + 1) & 32767, true), 0) << span;
            EXPECT_EQ(drawn(32767, mask < span), mask < span ? mask : 0) << span;
        }
        smaller = largestSpan;
    }
}

TEST(randInt, spans_above_32768_are_not_covered_and_bounds_exchanged_are_such) {
    EXPECT_EQ(with({32767}, randInt, 0, 1000000), 32767);
    EXPECT_EQ(with({32767}, randInt, -1000000, 1000000), -967233);
    EXPECT_EQ(with({32767}, randInt, 10, 5), 32777);
    EXPECT_EQ(with({0}, randInt, 10, 5), 10);
    EXPECT_EQ(with({1}, randInt, greatestInt, greatestInt - 1), leastInt);
}

TEST(randIntGauss, is_the_truncated_mean_of_its_draws_reaches_both_ends_and_wraps_at_32_bits) {
    EXPECT_EQ(with({32767}, randIntGauss, 0, 100, 1), 100);
    EXPECT_EQ(with({0}, randIntGauss, 0, 100, 1), 0);
    EXPECT_EQ(with({32767, 32767, 32767}, randIntGauss, 10, 20, 3), 20);
    EXPECT_EQ(with({16384}, randIntGauss, 0, 100, 1), 50);                   // 50.0015
    EXPECT_EQ(with({32767, 0}, randIntGauss, 0, 100, 2), 50);                // exactly
    EXPECT_EQ(with({32766}, randIntGauss, 0, 100, 1), 99);                   // 99.997
    EXPECT_EQ(with({100}, randIntGauss, 10, -90, 1), 10);                    // -0.3 toward zero
    EXPECT_EQ(with({32766}, randIntGauss, 10, -90, 1), -89);                 // -99.997 toward zero
    EXPECT_EQ(with({1000, 2000, 3000, 4000}, randIntGauss, 0, 1000, 4), 76); // 10000000 / 131068
    // 32767 * 100000 is 3276700000, which is -1018267296; over 32767 that is -31076.0001.
    EXPECT_EQ(with({32767}, randIntGauss, 0, 100000, 1), -31076);
    EXPECT_EQ(with({32767}, randIntGauss, 7, 100007, 1), -31069);
    // 65540 * 32767 is above 2^31: sum and divisor wrap alike, and their quotient is still 1.
    EXPECT_EQ(with(std::vector<int>(65540, 32767), randIntGauss, 0, 1, 65540), 1);
}

#if defined(GTEST_HAS_DEATH_TEST) && !defined(_WIN32) && (defined(__i386__) || defined(__x86_64__))
TEST(randIntGaussDeathTest, a_count_of_0_faults) {
    EXPECT_DEATH(randIntGauss(0, 1, 0), "");
}
#endif

// Real numbers

TEST(randFloat, reaches_both_ends_by_the_reciprocal_in_its_own_type) {
    EXPECT_EQ(with({32767}, randFloat, 0, 1), 1.0F);
    EXPECT_EQ(with({0}, randFloat, 0, 1), 0.0F);
    EXPECT_EQ(with({32767}, randFloat, -2, 6), 6.0F);
    EXPECT_EQ(with({0}, randFloat, -2, 6), -2.0F);
    EXPECT_EQ(with({32767}, randFloat, 6, -2), -2.0F);
    EXPECT_EQ(with({123}, randFloat, 5, 5), 5.0F);
    EXPECT_EQ(with({32767}, randDouble, -2, 6), 6.0);
    EXPECT_EQ(with({0}, randDouble, -2, 6), -2.0);
    // 16384 draws times 2^-15 + 2^-30; a true 32767th would give 0.50001526.. with more digits.
    EXPECT_EQ(with({16384}, randFloat, 0, 1), 0x1.0002p-1F);
    EXPECT_EQ(with({1}, randFloat, 0, 1), std::bit_cast<float>(0x38000100));
    EXPECT_EQ(with({1}, randDouble, 0, 1), 3.051850947599719e-05);
    EXPECT_EQ(with({16384}, randDouble, 0, 1), 0x1.000200040008p-1);
}

TEST(randFloat, and_its_kin_are_computed_at_full_width_and_rounded_once) {
    // 32767 draws are (1 + 2^-30) (1 - 2^-30), which is 1 - 2^-60: with 53 bits it would be 1.
    EXPECT_EQ(with({32767}, randFloat, -1, 0x1p-30F), -0x1p-60F);
    // With 53 bits throughout, the last digits would be 990.
    EXPECT_EQ(with({15357}, randDouble, -0x1.7733333333333p+5, 0x1.0e83a83a83a83p+5), -0x1.2249057c19993p+3);
    EXPECT_EQ(with({32767}, randFloatGauss, -1, 0x1p-60F, 1), 0x1p-60F);
    EXPECT_EQ(with({32767}, randDoubleGauss, -1, 0x1p-60, 1), 0x1p-60);
}

template <class Real>
void expectScaledMean(Real (*gauss)(Real, Real, int)) {
    EXPECT_EQ(with({32767}, gauss, 0, 1, 1), 1);
    EXPECT_EQ(with({0}, gauss, 3, 9, 1), 3);
    EXPECT_EQ(with({32767, 0}, gauss, 2, 6, 2), 4);
    EXPECT_EQ(with({1}, gauss, 0, 32767, 1), 1);
    EXPECT_EQ(with({1}, gauss, 0, 1, 1), Real{1} / 32767);
    EXPECT_TRUE(std::isnan(with({}, gauss, 0, 1, 0))) << "a count of 0 is no number and no fault";
    // 65540 * 32767 is 2147549180, which as a 32-bit number would be -2147418116: the divisor never wraps, the sum
    // does.
    std::vector<int> draws(65540, 0);
    draws.front() = 32767;
    EXPECT_EQ(with(draws, gauss, 0, 65540, 65540), 1);
    draws.assign(65540, 32767);
    EXPECT_EQ(with(draws, gauss, 0, 1, 65540), static_cast<Real>(-2147418116.0 / 2147549180));
    // 131076 * 32767 is 2^32 - 4, which would be -4.
    EXPECT_EQ(with(std::vector<int>(131076, 1), gauss, 0, 32767, 131076), 1);
}

TEST(randFloatGauss, is_the_scaled_mean_of_its_draws) {
    expectScaledMean(randFloatGauss);
    expectScaledMean(randDoubleGauss);
}

TEST(randIntGauss, and_its_kin_with_a_count_below_0_are_the_lower_bound_without_a_draw) {
    EXPECT_EQ(with({}, randIntGauss, 10, 20, -1), 10);
    EXPECT_EQ(with({}, randIntGauss, 10, 20, leastInt), 10);
    EXPECT_EQ(with({}, randFloatGauss, 10, 20, -1), 10.0F);
    EXPECT_EQ(with({}, randDoubleGauss, 10, 20, -1), 10.0);
}

/// A number of any sign and of moderate size, with all its bits.
double anyReal(test::Random &random) {
    const double upper = random.between(leastInt, greatestInt);
    const double mantissa = upper + std::ldexp(random.between(0, 0x1FFFFF), -21);
    return std::ldexp(mantissa, random.between(-40, -20));
}

float anyFloat(test::Random &random) {
    const int mantissa = random.between(-0xFFFFFF, 0xFFFFFF);
    return static_cast<float>(std::ldexp(mantissa, random.between(-30, -10)));
}

#if Q_MUR_TESTS_X87
TEST(randFloat, and_its_kin_are_the_same_at_any_precision_of_the_host_and_leave_the_unit_as_it_was) {
    for (const unsigned short word : {test::precision24Bits, test::precision53Bits, test::precision64Bits}) {
        const test::X87ControlWord host(word);
        scriptDraws({32767, 15357, 32767, 32767});
        const auto results =
            std::tuple{randFloat(-1, 0x1p-30F), randDouble(-0x1.7733333333333p+5, 0x1.0e83a83a83a83p+5),
                       randFloatGauss(-1, 0x1p-60F, 1), randDoubleGauss(-1, 0x1p-60, 1)};
        EXPECT_EQ(test::X87ControlWord::current(), word);
        EXPECT_EQ(results, std::tuple(-0x1p-60F, -0x1.2249057c19993p+3, 0x1p-60F, 0x1p-60)) << word;
    }
}
#endif

// Colours

TEST(randColor, draws_red_then_green_then_blue_of_which_the_low_8_bits_count) {
    EXPECT_EQ(with({0x7F12, 0x0034, 0x0156}, randColor), 0x123456u);
    EXPECT_EQ(with({0x7FFF, 0x7FFF, 0x7FFF}, randColor), 0xFFFFFFu);
}

TEST(randRainbowColor, is_grey_before_the_tables_are_filled) {
    EXPECT_EQ(test::atLoad.rainbowColour, 0x808080u);
}

TEST(randRainbowColor, peaks_carry_into_the_channel_above_and_between_them_is_a_mixture) {
    EXPECT_EQ(with({0}, randRainbowColor), 0x01008000u);   // red 256, green 128, blue 0
    EXPECT_EQ(with({8192}, randRainbowColor), 0x810080u);  // red 128, green 256, blue 128
    EXPECT_EQ(with({16384}, randRainbowColor), 0x008100u); // red 0, green 128, blue 256
    EXPECT_EQ(with({24576}, randRainbowColor), 0x800080u); // red 128, green 0, blue 128
    // An eighth of the circle: 23170 / 256 is 90, on the opposite side -90.
    EXPECT_EQ(with({4096}, randRainbowColor), 0xDADA26u);
    EXPECT_EQ(with({4097}, randRainbowColor), 0xDADA26u); // the index drops three bits of the angle
}

/// Compares what a function and its twin give for arguments made from each case, from the same seed of this program's
/// generator. Elsewhere they draw from the platform's, whose results have no checksum.
template <class Result, class... Parameters, class Arguments>
void agree(const char *name, Result (*function)(Parameters...), Result (*twin)(Parameters...),
           Arguments argumentsFrom) {
    test::forEachCase(name, [=](Case &c) {
        const std::tuple<Parameters...> arguments = argumentsFrom(c.random);
        const std::uint32_t seed = c.random.word();
        seedDraws(seed);
        const Result result = std::apply(function, arguments);
        seedDraws(seed);
        const Result expected = std::apply(twin, arguments);
        if constexpr (std::is_same_v<Result, float>)
            c.expectEqual(result, expected);
        else if constexpr (std::is_same_v<Result, double>)
            c.expectEqual(std::bit_cast<std::int64_t>(result), std::bit_cast<std::int64_t>(expected));
        else
            c.expectEqual(static_cast<std::int64_t>(result), static_cast<std::int64_t>(expected));
    });
}

TEST(random_numbers, agree_with_their_twins_under_a_known_generator) {
    using test::Random;
    agree("randInt", randInt, plain::randInt, [](Random &random) {
        const int low = random.oneIn(10) ? random.between(leastInt, greatestInt) : random.between(-40000, 40000);
        const int bits = random.between(0, 16);
        const std::int64_t extent = random.between(1, 1 << bits);
        return std::pair{low, plain::int32(random.oneIn(10) ? low - extent : low + extent)};
    });
    agree("randIntGauss", randIntGauss, plain::randIntGauss, [](Random &random) {
        const int low = random.between(-1000, 1000);
        const int high = random.oneIn(5) ? random.between(leastInt, greatestInt) : random.between(-5000, 5000);
        return std::tuple{low, high, random.oneIn(20) ? random.between(-3, -1) : random.between(1, 12)};
    });
    const auto twoFloats = [](Random &random) {
        const float low = anyFloat(random);
        return std::pair{low, anyFloat(random)};
    };
    const auto twoDoubles = [](Random &random) {
        const double low = anyReal(random);
        return std::pair{low, anyReal(random)};
    };
    const auto withCount = [](auto two) {
        return [two](Random &random) {
            const auto [low, high] = two(random);
            return std::tuple{low, high, random.between(1, 12)};
        };
    };
    agree("randFloat", randFloat, plain::randFloat, twoFloats);
    agree("randDouble", randDouble, plain::randDouble, twoDoubles);
    agree("randFloatGauss", randFloatGauss, plain::randFloatGauss, withCount(twoFloats));
    agree("randDoubleGauss", randDoubleGauss, plain::randDoubleGauss, withCount(twoDoubles));
    const auto nothing = [](Random &) { return std::tuple<>(); };
    agree("randColor", randColor, plain::randColor, nothing);
    agree("randRainbowColor", randRainbowColor, plain::randRainbowColor, nothing);
}

} // namespace
