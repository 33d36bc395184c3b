#include "base/integers.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

namespace {

using namespace qmur;

constexpr int least = std::numeric_limits<int>::min();
constexpr int largest = std::numeric_limits<int>::max();

TEST(Arithmetic, is_the_low_32_bits_of_the_true_result) {
    const int numbers[] = {0,      1,     -1,         2,       -2,          7,     -7,       46341,
                           -46341, 65536, 0x12345678, largest, largest - 1, least, least + 1};
    for (const int x : numbers)
        for (const int y : numbers) {
            const std::int64_t a = x;
            const std::int64_t b = y;
            EXPECT_EQ(wrapAdd(x, y), static_cast<std::int32_t>(a + b));
            EXPECT_EQ(wrapSubtract(x, y), static_cast<std::int32_t>(a - b));
            EXPECT_EQ(wrapMultiply(x, y), static_cast<std::int32_t>(a * b));
            EXPECT_EQ(wrapDivide(x, oneIfZero(y)), static_cast<std::int32_t>(a / (b == 0 ? 1 : b)));
            EXPECT_EQ(wrapDivide(x, oneIfZero(static_cast<long long>(y))), wrapDivide(x, oneIfZero(y)));
            EXPECT_EQ(smaller(x, y), a < b ? a : b);
            EXPECT_EQ(larger(x, y), a < b ? b : a);
        }
    EXPECT_EQ(wrapDivide(least, 1LL << 32), 0);
    EXPECT_EQ(wrapDivide(q_ulong{0xFFFFFFFF}, q_ulong{2}), q_ulong{0x7FFFFFFF});
    EXPECT_EQ(wrapAdd(largest, 1), least);
    EXPECT_EQ(wrapSubtract(least, 1), largest);
    EXPECT_EQ(wrapMultiply(65536, 32768), least);
    EXPECT_EQ(wrapDivide(least, -1), least);
    EXPECT_EQ(wrapDivide(-7, 2), -3);
    EXPECT_EQ(magnitudeOf(-5), 5);
    EXPECT_EQ(magnitudeOf(5), 5);
    EXPECT_EQ(magnitudeOf(least + 1), largest);
    EXPECT_EQ(magnitudeOf(least), least);
}

} // namespace
