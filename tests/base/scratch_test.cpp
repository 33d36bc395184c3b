#include "base/scratch.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

namespace {

using qmur::Scratch;

TEST(Scratch, holds_as_many_elements_as_were_asked_for_and_zeros_where_that_was_asked_for) {
    const Scratch<int> scratch(1000);
    const auto zeros = Scratch<double>::zeroed(1000);
    ASSERT_TRUE(scratch && zeros);
    for (int i = 0; i < 1000; ++i)
        scratch[i] = i;
    for (int i = 0; i < 1000; ++i) {
        ASSERT_EQ(scratch.data()[i], i);
        ASSERT_EQ(zeros[i], 0.0);
    }
}

TEST(Scratch, starts_on_a_cache_line) {
    for (int count = 1; count < 200; ++count) {
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(Scratch<int>(count).data()) % 64, 0u) << count;
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(Scratch<double>::zeroed(count).data()) % 64, 0u) << count;
    }
}

TEST(Scratch, is_empty_for_fewer_than_one_element_and_for_more_than_there_is_room_for) {
    constexpr long long most = std::numeric_limits<long long>::max();
    for (const long long count : {0LL, -1LL, most, most / 4}) {
        EXPECT_FALSE(Scratch<double>(count)) << count;
        EXPECT_FALSE(Scratch<double>::zeroed(count)) << count;
    }
    EXPECT_FALSE(Scratch<int>());
}

} // namespace
