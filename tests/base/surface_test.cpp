#include "base/surface.h"
#include "support/numbers.h"

#include "base/extent.h"

#include <gtest/gtest.h>

namespace {

using namespace qmur;

TEST(Surfaces, are_walked_back_by_negative_coordinates_and_pitches_of_either_type) {
    int plane[100] = {};
    EXPECT_EQ(pixelAt(plane + 50, 10, -2, -3), plane + 18);
    EXPECT_EQ(pixelAt(plane + 50, -10, 1, 3), plane + 21);
    EXPECT_EQ(asDistance(static_cast<q_ulong>(-640)), -640);
    EXPECT_EQ(asDistance(-640), -640);
}

TEST(Rectangles, have_the_size_of_their_exclusive_edges) {
    EXPECT_EQ(widthOf({-3, 5, 7, 6}), 10);
    EXPECT_EQ(heightOf({-3, 5, 7, 6}), 1);
    // Wider than an int counts.
    EXPECT_EQ(widthOf({test::leastInt, 0, test::greatestInt, 1}), -1);
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

TEST(Extents, that_touch_are_apart_and_those_that_share_a_pixel_are_not) {
    const q_ulong plane[64] = {};
    const Window pair = {{0, 2}, {0, 1}};
    EXPECT_TRUE(extentOf(plane, 1, pair).isApartFrom(extentOf(plane + 2, 1, pair)));
    for (const int pitch : {-7, -3, 0, 3, 7})
        for (int first = 20; first < 44; ++first) {
            const Extent area = extentOf(plane + 32, pitch, {{0, 3}, {0, 3}});
            const Extent other = extentOf(plane + first, 1, pair);
            for (int i = 0; i < 9; ++i)
                for (const int pixel : {first, first + 1})
                    EXPECT_FALSE(32 + i / 3 * pitch + i % 3 == pixel && area.isApartFrom(other)) << pitch;
            EXPECT_EQ(area.isApartFrom(other), other.isApartFrom(area));
        }
}

TEST(Pitches, keep_pixels_apart_from_the_width_on) {
    EXPECT_TRUE(keepsPixelsApart(5, 5));
    EXPECT_TRUE(keepsPixelsApart(-5, 5));
    EXPECT_FALSE(keepsPixelsApart(4, 5));
    EXPECT_FALSE(keepsPixelsApart(-4, 5));
}

} // namespace
