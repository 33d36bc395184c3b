#include "support/numbers.h"
#include "walks/stretch.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

namespace {

using namespace qmur;

TEST(stretchInside, is_what_a_test_at_each_position_finds) {
    for (int start = -6; start <= 6; ++start)
        for (int step = -3; step <= 3; ++step)
            for (int low = -4; low <= 4; ++low)
                for (int high = low + 1; high <= 5; ++high)
                    for (int begin = 0; begin <= 5; ++begin)
                        for (int end = begin; end <= 5; ++end) {
                            const Span found = stretchInside(start, step, {low, high}, {begin, end});
                            for (int x = begin; x < end; ++x) {
                                const int value = start + x * step;
                                ASSERT_EQ(found.begin <= x && x < found.end, low <= value && value < high)
                                    << start << " + " << x << " * " << step << " in " << low << " to " << high;
                            }
                            ASSERT_GE(found.begin, begin);
                            ASSERT_LE(found.end, end);
                        }
}

/// A letter for each position that is called, in the order of the calls.
std::string walked(const Track &u, const Track &v, int count) {
    std::string calls;
    forEachInside(
        u, v, count,
        [&](int x, int atU, int atV) {
            calls += static_cast<char>('A' + x);
            EXPECT_EQ(atU, static_cast<std::int32_t>(u.start + std::int64_t{u.step} * x));
            EXPECT_EQ(atV, static_cast<std::int32_t>(v.start + std::int64_t{v.step} * x));
        },
        [&](int x) { calls += static_cast<char>('a' + x); });
    return calls;
}

TEST(forEachInside, calls_one_of_the_two_for_each_position_in_order_where_a_wrapped_value_counts_as_what_it_is) {
    const Track everywhere = {0, 0, {0, 1}};
    EXPECT_EQ(walked(everywhere, everywhere, 5), "ABCDE");
    EXPECT_EQ(walked({0, 10, {10, 40}}, everywhere, 6), "aBCDef");
    EXPECT_EQ(walked({0, 10, {10, 40}}, {50, -10, {10, 40}}, 6), "abCDef");
    EXPECT_EQ(walked({0, 10, {0, 20}}, {0, 10, {30, 60}}, 6), "abcdef");
    EXPECT_EQ(walked({0, 10, {5, 5}}, everywhere, 3), "abc");
    EXPECT_EQ(walked(everywhere, everywhere, 0), "");
    EXPECT_EQ(walked(everywhere, everywhere, -1), "");
    EXPECT_EQ(
        walked({test::greatestInt - 1, 1, {-1LL - test::greatestInt, -1LL - test::greatestInt + 2}}, everywhere, 5),
        "abCDe");
}

} // namespace
