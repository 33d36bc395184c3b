#include "base/doubled.h"

#include "support/random.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>

namespace {

using qmur::Doubled;

/// A double whose last 29 bits, those that a float loses, stand some units beside one half.
double besideHalf(test::Random &random, int units) {
    const double number = random.realBetween(1.0F, 2.0F) * (random.oneIn(2) ? 1 : -1);
    const auto bits = std::bit_cast<std::uint64_t>(number) & ~std::uint64_t{0x1FFFFFFF};
    return std::bit_cast<double>(bits + 0x10000000 + static_cast<std::uint64_t>(units));
}

TEST(Doubled, is_in_doubt_about_what_lies_within_16_units_of_the_middle_between_two_floats) {
    test::Random random(7);
    for (int i = 0; i < 2000; ++i) {
        for (const int units : {-8, -3, -1, 0, 1, 3, 8})
            ASSERT_NE(Doubled(besideHalf(random, units)).doubt(), 0) << units;
        for (const int units : {-1000, -40, 40, 1000})
            ASSERT_EQ(Doubled(besideHalf(random, units)).doubt(), 0) << units;
    }
    EXPECT_EQ(Doubled(0).doubt(), 0);
}

TEST(Doubled, without_doubt_numbers_a_few_units_away_round_to_the_same_float) {
    test::Random random(8);
    int settled = 0;
    for (int i = 0; i < 200000; ++i) {
        const int units = random.between(-60, 60);
        const double number = besideHalf(random, units);
        const Doubled doubled(number);
        if (!doubled.isSettled())
            continue;
        ++settled;
        for (int away = -8; away <= 8; ++away) {
            const double other = number + away * std::ldexp(std::fabs(number), -53);
            ASSERT_EQ(static_cast<float>(other), doubled.nearest());
        }
    }
    EXPECT_GT(settled, 80000);
}

} // namespace
