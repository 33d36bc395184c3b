#include "base/integers.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

namespace {

constexpr int least = std::numeric_limits<int>::min();
constexpr int largest = std::numeric_limits<int>::max();

TEST(Arithmetic, wraps_around_like_the_low_32_bits_of_the_true_result) {
    const int numbers[] = {0, 1, -1, 2, 46341, -46341, 65536, 0x12345678, largest, largest - 1, least, least + 1};
    for (const std::int64_t a : numbers)
        for (const std::int64_t b : numbers) {
            const int x = static_cast<int>(a);
            const int y = static_cast<int>(b);
            EXPECT_EQ(qmur::wrapAdd(x, y), static_cast<std::int32_t>(a + b));
            EXPECT_EQ(qmur::wrapSubtract(x, y), static_cast<std::int32_t>(a - b));
            EXPECT_EQ(qmur::wrapMultiply(x, y), static_cast<std::int32_t>(a * b));
            if (b != 0) {
                EXPECT_EQ(qmur::wrapDivide(x, y), static_cast<std::int32_t>(a / b));
            }
            EXPECT_EQ(qmur::smaller(x, y), a < b ? a : b);
            EXPECT_EQ(qmur::larger(x, y), a < b ? b : a);
        }
}

TEST(Arithmetic, wraps_at_the_ends_of_the_numbers) {
    EXPECT_EQ(qmur::wrapAdd(largest, 1), least);
    EXPECT_EQ(qmur::wrapSubtract(least, 1), largest);
    EXPECT_EQ(qmur::wrapMultiply(least, -1), least);
    EXPECT_EQ(qmur::wrapDivide(least, -1), least);
    EXPECT_EQ(qmur::wrapMultiply(65536, 65536), 0);
    EXPECT_EQ(qmur::wrapMultiply(65536, 32768), least);
}

TEST(Arithmetic, quotients_truncate_toward_zero_and_wrap_instead_of_trapping) {
    const int numbers[] = {0, 1, -1, 2, -2, 7, -7, 46341, 0x12345678, largest, least, least + 1};
    for (const std::int64_t a : numbers)
        for (const std::int64_t b : numbers) {
            if (b == 0)
                continue;
            const auto expected = static_cast<std::int32_t>(a / b);
            EXPECT_EQ(qmur::wrapDivide(static_cast<int>(a), static_cast<int>(b)), expected);
            EXPECT_EQ(qmur::wrapDivide(static_cast<int>(a), static_cast<long long>(b)), expected);
        }
    EXPECT_EQ(qmur::wrapDivide(least, -1), least);
    EXPECT_EQ(qmur::wrapDivide(-7, 2), -3);
    EXPECT_EQ(qmur::wrapDivide(least, 1LL << 32), 0);
    EXPECT_EQ(qmur::wrapDivide(q_ulong{0xFFFFFFFF}, q_ulong{2}), q_ulong{0x7FFFFFFF});
}

TEST(Arithmetic, only_a_divisor_of_0_is_replaced) {
    EXPECT_EQ(qmur::oneIfZero(0), 1);
    EXPECT_EQ(qmur::oneIfZero(1), 1);
    EXPECT_EQ(qmur::oneIfZero(-1), -1);
    EXPECT_EQ(qmur::oneIfZero(0LL), 1LL);
    EXPECT_EQ(qmur::oneIfZero(1LL << 32), 1LL << 32);
}

TEST(Arithmetic, the_magnitude_of_the_least_number_wraps_to_itself) {
    EXPECT_EQ(qmur::magnitudeOf(0), 0);
    EXPECT_EQ(qmur::magnitudeOf(5), 5);
    EXPECT_EQ(qmur::magnitudeOf(-5), 5);
    EXPECT_EQ(qmur::magnitudeOf(largest), largest);
    EXPECT_EQ(qmur::magnitudeOf(least + 1), largest);
    EXPECT_EQ(qmur::magnitudeOf(least), least);
}

} // namespace
