#include "support/surface.h"

#include <gtest/gtest.h>

namespace {

using test::Surface;

struct Offset {
    int x;
    int y;
};

constexpr Offset arms[] = {{0, -2}, {0, -1}, {-2, 0}, {-1, 0}, {0, 0}, {1, 0}, {2, 0}, {0, 1}, {0, 2}};

TEST(Draw_Cross, adds_to_nine_pixels_and_clears_their_top_bytes) {
    Surface surface(7, 7, 0xFF80F010);
    Surface expected = surface;
    for (const Offset arm : arms)
        expected.at(3 + arm.x, 3 + arm.y) = 0x0090FF50;
    Draw_Cross(surface.pixels(), surface.pitch(), 3, 3, 0x77102040);
    EXPECT_EQ(surface.differenceFrom(expected), "");
}

TEST(Draw_Cross_Fast, lacks_the_right_tip) {
    Surface surface(7, 7, 0);
    Surface expected = surface;
    for (const Offset arm : arms)
        expected.at(3 + arm.x, 3 + arm.y) = arm.x == 2 ? 0u : 0xFF0000u;
    Draw_Cross_Fast(surface.pixels(), surface.pitch(), 3, 3, 0xFF0000);
    EXPECT_EQ(surface.differenceFrom(expected), "");
}

TEST(Draw_Cross_Fast, overwrites_the_arms_with_the_sum_at_the_centre) {
    Surface surface(7, 7, 0x00FFFFFF);
    surface.at(3, 3) = 0xAA102030;
    Draw_Cross_Fast(surface.pixels(), surface.pitch(), 3, 3, 0x010203);
    for (const Offset arm : arms)
        EXPECT_EQ(surface.at(3 + arm.x, 3 + arm.y), arm.x == 2 ? 0xFFFFFFu : 0x112233u);
}

} // namespace
