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

} // namespace
