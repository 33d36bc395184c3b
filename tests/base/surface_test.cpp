#include "base/surface.h"

#include "base/extent.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

using namespace qmur;

TEST(Surfaces, are_walked_back_by_negative_coordinates_and_pitches_of_either_type) {
    int plane[100] = {};
    EXPECT_EQ(pixelAt(plane + 50, 10, -2, -3), plane + 18);
    EXPECT_EQ(pixelAt(plane + 50, -10, 1, 3), plane + 21);
    EXPECT_EQ(asDistance(static_cast<q_ulong>(-640)), -640);
    EXPECT_EQ(asDistance(q_ulong{640}), 640);
    EXPECT_EQ(asDistance(-640), -640);
}

TEST(Spans, contain_their_begin_and_not_their_end) {
    const Span span = {-2, 3};
    for (int position = -4; position < 6; ++position)
        EXPECT_EQ(span.contains(position), position >= -2 && position <= 2) << position;
    EXPECT_EQ(span.length(), 5);
    EXPECT_FALSE((Span{5, 2}).contains(3));
    EXPECT_TRUE((Span{5, 2}).empty());
    EXPECT_TRUE(intersection({0, 3}, {3, 6}).empty());
}

TEST(Windows, share_the_columns_and_rows_that_both_have) {
    const Window shared = Window{{0, 10}, {-3, 4}}.within({{-1, 6}, {2, 9}});
    for (int y = -5; y < 12; ++y)
        for (int x = -5; x < 12; ++x)
            EXPECT_EQ(shared.contains(x, y), x >= 0 && x < 6 && y >= 2 && y < 4) << x << ", " << y;
    EXPECT_FALSE(shared.empty());
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
    // Wider than an int counts.
    EXPECT_EQ(widthOf({std::numeric_limits<int>::min(), 0, std::numeric_limits<int>::max(), 1}), -1);
}

TEST(Extents, reach_from_the_first_to_behind_the_last_pixel_with_either_sign_of_the_pitch) {
    alignas(8) const q_ulong plane[100] = {};
    const Window window = {{2, 5}, {-1, 3}};
    const long long origin = extentOf(plane, 1, {{0, 1}, {0, 1}}).begin;
    const Extent down = extentOf(plane + 50, 10, window);
    EXPECT_EQ(down.begin - origin, 50 - 10 + 2);
    EXPECT_EQ(down.end - origin, 50 + 20 + 5);
    const Extent up = extentOf(plane + 50, -10, window);
    EXPECT_EQ(up.begin - origin, 50 - 20 + 2);
    EXPECT_EQ(up.end - origin, 50 + 10 + 5);
}

TEST(Extents, of_any_two_areas_are_apart_only_if_no_pixel_is_in_both) {
    const q_ulong plane[64] = {};
    const Window pair = {{0, 2}, {0, 1}};
    EXPECT_TRUE(extentOf(plane, 1, pair).isApartFrom(extentOf(plane + 2, 1, pair))); // they touch
    for (const int pitch : {-7, -3, 0, 3, 7})
        for (int height = 1; height <= 3; ++height)
            for (int width = 1; width <= 3; ++width)
                for (int first = 20; first < 44; ++first) {
                    const Extent area = extentOf(plane + 32, pitch, {{0, width}, {0, height}});
                    const Extent other = extentOf(plane + first, 1, pair);
                    bool shares = false;
                    for (int y = 0; y < height; ++y)
                        for (int x = 0; x < width; ++x)
                            shares |= 32 + y * pitch + x == first || 32 + y * pitch + x == first + 1;
                    EXPECT_FALSE(shares && area.isApartFrom(other));
                    EXPECT_EQ(area.isApartFrom(other), other.isApartFrom(area));
                }
}

TEST(Pitches, keep_pixels_apart_from_the_width_on) {
    EXPECT_TRUE(keepsPixelsApart(5, 5));
    EXPECT_TRUE(keepsPixelsApart(-5, 5));
    EXPECT_FALSE(keepsPixelsApart(4, 5));
    EXPECT_FALSE(keepsPixelsApart(-4, 5));
    EXPECT_FALSE(keepsPixelsApart(0, 1));
}

} // namespace
