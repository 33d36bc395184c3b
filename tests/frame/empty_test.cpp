#include "support/surface.h"

#include <gtest/gtest.h>

namespace {

TEST(EmptyFunctions, change_nothing_whatever_their_arguments) {
    test::Random random(1);
    const auto before = test::Surface::randomOfSize(random, 8, 8);
    test::Surface surface = before;
    tagRECT rect = surface.rect();
    Blur_Ring(surface.pixels(), {4, 4}, 1, 3, 8, surface.pitch());
    Blur_Parallelogram(surface.pixels(), 0, 1, 2, 3, 4, 5, &rect, 8, surface.pitch());
    i3DBltNear32();
    EXPECT_EQ(surface.differenceFrom(before), "");
    EXPECT_EQ(rect.right, 8);
    Blur_Ring(nullptr, {-1, 0x7FFFFFFF}, 0, -1, 0, 0);
    Blur_Parallelogram(nullptr, 0, 0, 0, 0, 0, 0, nullptr, 0, 0);
}

} // namespace
