#include "base/surface.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

using namespace qmur;

TEST(Distance, of_an_unsigned_pitch_keeps_the_sign_it_was_given) {
    EXPECT_EQ(asDistance(static_cast<q_ulong>(-640)), -640);
    EXPECT_EQ(asDistance(q_ulong{640}), 640);
    EXPECT_EQ(asDistance(-640), -640);
}

TEST(PixelAt, steps_back_with_negative_coordinates_and_pitches) {
    int plane[100] = {};
    EXPECT_EQ(pixelAt(plane + 50, 10, -2, -3), plane + 18);
    EXPECT_EQ(pixelAt(plane + 50, -10, 1, 3), plane + 21);
}

TEST(Spans, intersect_and_are_empty_from_their_end_on) {
    const Span both = intersection({-5, 10}, {3, 20});
    EXPECT_EQ(both.begin, 3);
    EXPECT_EQ(both.end, 10);
    EXPECT_EQ(both.length(), 7);
    EXPECT_FALSE(both.empty());
    EXPECT_TRUE(intersection({0, 3}, {3, 6}).empty());
    EXPECT_TRUE((Span{5, 2}).empty());
}

TEST(Spans, contain_their_begin_and_not_their_end) {
    const Span span = {-2, 3};
    for (int position = -4; position < 6; ++position)
        EXPECT_EQ(span.contains(position),
                  position == -2 || position == -1 || position == 0 || position == 1 || position == 2)
            << position;
    EXPECT_FALSE((Span{5, 2}).contains(3));
}

TEST(Windows, share_the_columns_and_rows_that_both_have) {
    const Window shared = Window{{0, 10}, {-3, 4}}.within({{-1, 6}, {2, 9}});
    EXPECT_EQ(shared.columns.begin, 0);
    EXPECT_EQ(shared.columns.end, 6);
    EXPECT_EQ(shared.rows.begin, 2);
    EXPECT_EQ(shared.rows.end, 4);
    EXPECT_FALSE(shared.empty());
    EXPECT_TRUE(shared.contains(0, 3));
    EXPECT_FALSE(shared.contains(6, 3));
    EXPECT_FALSE(shared.contains(0, 4));
    EXPECT_TRUE((Window{{0, 1}, {2, 2}}).empty());
    EXPECT_TRUE((Window{{1, 1}, {2, 3}}).empty());
}

TEST(Rectangles, have_the_size_of_their_exclusive_edges) {
    const tagRECT rect = {-3, 5, 7, 6};
    EXPECT_EQ(widthOf(rect), 10);
    EXPECT_EQ(heightOf(rect), 1);
    EXPECT_FALSE(isEmpty(rect));
    for (const tagRECT empty : {tagRECT{1, 1, 1, 5}, {1, 1, 5, 1}, {5, 1, 1, 5}, {1, 5, 5, 1}})
        EXPECT_TRUE(isEmpty(empty));
    constexpr int least = std::numeric_limits<int>::min();
    constexpr int largest = std::numeric_limits<int>::max();
    EXPECT_EQ(widthOf({least, 0, largest, 1}), -1); // wider than an int counts
}

} // namespace
