#include "base/integers.h"
#include "support/numbers.h"

#include <gtest/gtest.h>

namespace {

using test::greatestInt, test::leastInt;
using namespace qmur;

TEST(Arithmetic, wraps_at_the_ends_of_the_numbers_and_truncates_toward_zero) {
    EXPECT_EQ(wrapAdd(greatestInt, 1), leastInt);
    EXPECT_EQ(wrapSubtract(leastInt, 1), greatestInt);
    EXPECT_EQ(wrapMultiply(65536, 32768), leastInt);
    EXPECT_EQ(wrapMultiply(46341, -46341), 2147479015); // -2147488281 + 2^32
    EXPECT_EQ(wrapDivide(leastInt, -1), leastInt);
    EXPECT_EQ(wrapDivide(-7, 2), -3);
    EXPECT_EQ(wrapDivide(leastInt, 1LL << 32), 0);
    EXPECT_EQ(wrapDivide(q_ulong{0xFFFFFFFF}, q_ulong{2}), q_ulong{0x7FFFFFFF});
    EXPECT_EQ(oneIfZero(0), 1);
    EXPECT_EQ(oneIfZero(-1), -1);
    EXPECT_EQ(oneIfZero(leastInt), leastInt);
    EXPECT_EQ(oneIfZero(greatestInt), greatestInt);
    EXPECT_EQ(oneIfZero(1LL << 32), 1LL << 32);
    EXPECT_EQ(magnitudeOf(-5), 5);
    EXPECT_EQ(magnitudeOf(leastInt + 1), greatestInt);
    EXPECT_EQ(magnitudeOf(leastInt), leastInt);
}

} // namespace
