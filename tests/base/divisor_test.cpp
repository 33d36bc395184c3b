#include "base/divisor.h"
#include "support/numbers.h"

#include "support/random.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace {

using test::greatestInt, test::leastInt;
using namespace qmur;

/// The quotient in 64 bits, of which the low 32 are kept.
int naiveQuotient(int number, int divisor) {
    return static_cast<int>(static_cast<std::uint32_t>(static_cast<long long>(number) / divisor));
}

void check(const int (&numbers)[4], int divisor) {
    const Divisor by(divisor);
    const Numbers<4> quotients = Numbers<4>::of(numbers[0], numbers[1], numbers[2], numbers[3]) / by;
    for (int lane = 0; lane < 4; ++lane) {
        const int expected = naiveQuotient(numbers[lane], divisor);
        ASSERT_EQ(static_cast<int>(quotients[lane]), expected) << numbers[lane] << " / " << divisor;
        ASSERT_EQ(numbers[lane] / by, expected) << numbers[lane] << " / " << divisor;
    }
}

TEST(Divisor, divides_multiples_and_their_neighbours_exactly) {
    test::Random random(1);
    for (int i = 0; i < 300000; ++i) {
        const int bits = random.between(0, 30);
        const auto word = static_cast<int>(random.word());
        const int divisor = word >> bits == 0 ? 1 : word >> bits;
        const auto multiple = [&] {
            const int most =
                static_cast<int>(greatestInt / (static_cast<long long>(divisor) < 0 ? -1LL * divisor : divisor));
            const int times = most == 0 ? 0 : static_cast<int>(random.word()) % most;
            return divisor * times;
        };
        const int exact = multiple();
        check({exact, exact == leastInt ? exact : exact - 1, exact == greatestInt ? exact : exact + 1,
               static_cast<int>(random.word())},
              divisor);
        if (HasFatalFailure())
            return;
    }
}

TEST(Divisor, divides_the_ends_of_numbers_by_each_other) {
    const int ends[] = {leastInt, leastInt + 1, -65537, -2, -1, 1, 2, 3, 65537, greatestInt - 1, greatestInt};
    for (const int divisor : ends)
        for (const int number : ends) {
            check({number, 0, number == leastInt ? 7 : -number, number / 2}, divisor);
            if (HasFatalFailure())
                return;
        }
}

TEST(Divisor, wraps_the_least_number_over_minus_1) {
    EXPECT_EQ(leastInt / Divisor(-1), leastInt);
}

} // namespace
