#include "support/surface.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using test::Surface;

q_ulong sumOf(q_ulong old, q_ulong colour) {
    Surface one(1, 1, old);
    Draw_Pixel_Add(one.pixels(), one.pitch(), 0, 0, colour);
    return one.at(0, 0);
}

TEST(Draw_Pixel_Add, every_pair_of_channel_values_saturates_in_its_channel) {
    for (q_ulong a = 0; a < 256; ++a)
        for (q_ulong b = 0; b < 256; ++b) {
            const q_ulong sum = std::min<q_ulong>(a + b, 255);
            ASSERT_EQ(sumOf(a << 16, b << 16), sum << 16);
            ASSERT_EQ(sumOf(a << 8, b << 8), sum << 8);
            ASSERT_EQ(sumOf(a, b), sum);
        }
}

TEST(Draw_Pixel_Add, top_bytes_are_cleared_and_have_no_influence) {
    EXPECT_EQ(sumOf(0xFF102030, 0x80010203), 0x00112233u);
}

TEST(Draw_Pixel_Add, writes_one_pixel_alone) {
    Surface surface(5, 4, 0x11111111);
    Surface expected = surface;
    expected.at(3, 2) = 0x00121314;
    Draw_Pixel_Add(surface.pixels(), surface.pitch(), 3, 2, 0x010203);
    EXPECT_EQ(surface.differenceFrom(expected), "");
}

} // namespace
