#include "base/extent.h"

#include <gtest/gtest.h>

namespace {

using namespace qmur;

TEST(Extents, reach_from_the_first_to_behind_the_last_pixel_with_either_sign_of_the_pitch) {
    alignas(8) const q_ulong plane[100] = {};
    const q_ulong *const middle = plane + 50;
    const Window window = {{2, 5}, {-1, 3}};
    const long long origin = extentOf(plane, 1, {{0, 1}, {0, 1}}).begin;
    const Extent down = extentOf(middle, 10, window);
    EXPECT_EQ(down.begin - origin, 50 - 10 + 2);
    EXPECT_EQ(down.end - origin, 50 + 20 + 5);
    const Extent up = extentOf(middle, -10, window);
    EXPECT_EQ(up.begin - origin, 50 - 20 + 2);
    EXPECT_EQ(up.end - origin, 50 + 10 + 5);
}

TEST(Extents, of_any_two_areas_are_apart_only_if_no_pixel_is_in_both) {
    const q_ulong plane[64] = {};
    for (int pitch : {-7, -3, 0, 3, 7})
        for (int height = 1; height <= 3; ++height)
            for (int width = 1; width <= 3; ++width)
                for (int first = 20; first < 44; ++first) {
                    const Extent area = extentOf(plane + 32, pitch, {{0, width}, {0, height}});
                    const Extent other = extentOf(plane + first, 1, {{0, 2}, {0, 1}});
                    bool shares = false;
                    for (int y = 0; y < height; ++y)
                        for (int x = 0; x < width; ++x)
                            shares |= 32 + y * pitch + x == first || 32 + y * pitch + x == first + 1;
                    EXPECT_FALSE(shares && area.isApartFrom(other));
                    EXPECT_EQ(area.isApartFrom(other), other.isApartFrom(area));
                }
}

TEST(Extents, that_touch_are_apart) {
    const q_ulong plane[8] = {};
    const Window pair = {{0, 2}, {0, 1}};
    EXPECT_TRUE(extentOf(plane, 1, pair).isApartFrom(extentOf(plane + 2, 1, pair)));
    EXPECT_FALSE(extentOf(plane, 1, pair).isApartFrom(extentOf(plane + 1, 1, pair)));
}

TEST(Pitches, keep_pixels_apart_from_the_width_on) {
    EXPECT_TRUE(keepsPixelsApart(5, 5));
    EXPECT_TRUE(keepsPixelsApart(-5, 5));
    EXPECT_FALSE(keepsPixelsApart(4, 5));
    EXPECT_FALSE(keepsPixelsApart(-4, 5));
    EXPECT_FALSE(keepsPixelsApart(0, 1));
}

} // namespace
