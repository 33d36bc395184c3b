#include "base/integers.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

using namespace qmur;

constexpr int least = std::numeric_limits<int>::min();
constexpr int largest = std::numeric_limits<int>::max();

TEST(Arithmetic, wraps_at_the_ends_of_the_numbers_and_truncates_toward_zero) {
    EXPECT_EQ(wrapAdd(largest, 1), least);
    EXPECT_EQ(wrapSubtract(least, 1), largest);
    EXPECT_EQ(wrapMultiply(65536, 32768), least);
    EXPECT_EQ(wrapMultiply(46341, -46341), 2147479015); // -2147488281 + 2^32
    EXPECT_EQ(wrapDivide(least, -1), least);
    EXPECT_EQ(wrapDivide(-7, 2), -3);
    EXPECT_EQ(wrapDivide(least, 1LL << 32), 0);
    EXPECT_EQ(wrapDivide(q_ulong{0xFFFFFFFF}, q_ulong{2}), q_ulong{0x7FFFFFFF});
    EXPECT_EQ(oneIfZero(0), 1);
    EXPECT_EQ(oneIfZero(1LL << 32), 1LL << 32);
    EXPECT_EQ(magnitudeOf(-5), 5);
    EXPECT_EQ(magnitudeOf(least + 1), largest);
    EXPECT_EQ(magnitudeOf(least), least);
}

} // namespace
