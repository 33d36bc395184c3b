#include "plain/blurs.h"
#include "support/painting.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace {

using test::painted;
using test::Surface;

/// The low two bits of the number that `rand` gives first after `seed`.
int firstDrawAfter(unsigned seed) {
    std::srand(seed);
    return std::rand() & 3;
}

/// A seed after which the first draw ends in these two bits.
unsigned seedFor(int direction) {
    for (unsigned seed = 1; seed < 1000; ++seed)
        if (firstDrawAfter(seed) == direction)
            return seed;
    ADD_FAILURE() << "no seed draws direction " << direction;
    return 0;
}

Surface fastBlur(Surface surface, tagRECT rect, unsigned seed) {
    std::srand(seed);
    FastBlur_Rect(surface.pixels(), &rect, surface.pitch());
    return surface;
}

/// Blurs by the neighbours of a phase and expects the other one to be next.
Surface crossBlur(Surface surface, tagRECT rect, int phase) {
    _PRIVATE_LUT_DATA lut = {phase};
    CrossBlur_Rect(&lut, surface.pixels(), &rect, surface.pitch());
    EXPECT_EQ(lut.phase, 1 - phase);
    return surface;
}

/// Three rows of three blues, all pairs and fours of which have sums of their own.
Surface nineBlues() {
    constexpr q_ulong blues[9] = {2, 4, 8, 16, 32, 64, 128, 192, 224};
    return painted(Surface(3, 3), {0, 0, 3, 3}, [&](int x, int y) { return 0xFF000000u | blues[3 * y + x]; });
}

TEST(FastBlur_Rect, each_draw_takes_its_own_two_neighbours) {
    constexpr q_ulong means[4] = {(16 + 64) / 2, (4 + 192) / 2, (8 + 128) / 2, (2 + 224) / 2};
    const Surface white(5, 4, 0xFFFFFFFF);
    for (int direction = 0; direction < 4; ++direction) {
        SCOPED_TRACE(direction);
        const Surface blurred = fastBlur(nineBlues(), {0, 0, 3, 3}, seedFor(direction));
        EXPECT_EQ(blurred.differenceFrom(painted(nineBlues(), {1, 1, 2, 2}, means[direction])), "");
        // White falls to 0xFEFEFE inside and stays on the frame.
        const Surface fallen = fastBlur(white, white.rect(), seedFor(direction));
        EXPECT_EQ(fallen.differenceFrom(painted(white, {1, 1, 4, 3}, 0x00FEFEFE)), "");
    }
}

TEST(FastBlur_Rect, agrees_with_a_naive_average_in_every_direction) {
    // Where the one tap of each direction lies; the other lies opposite.
    constexpr int directions[4][2] = {{1, 0}, {0, 1}, {1, -1}, {1, 1}};
    test::Random random(61);
    for (unsigned seed = 1; seed <= 4000; ++seed) {
        const Surface before = Surface::random(random, 12);
        const tagRECT rect = random.rectInsideOrEmpty(before.width(), before.height());
        const auto [dx, dy] = directions[firstDrawAfter(seed)];
        const int secondDraw = std::rand();
        Surface expected = before;
        plain::blurAlong({expected.pixels(), expected.pitch()}, rect, dx, dy);
        ASSERT_EQ(fastBlur(before, rect, seed).differenceFrom(expected), "") << "towards " << dx << ", " << dy;
        ASSERT_EQ(std::rand(), secondDraw) << "one number is drawn on every call";
    }
}

TEST(FastBlur_Rect, reads_no_pixel_behind_the_last_row_of_the_surface) {
    // The rectangle ends in the last row, and its left is not 0. All the averages of a plane are the plane itself.
    test::PageEndPixels pixels(8 * 5);
    for (int i = 0; i < 8 * 5; ++i)
        pixels.data()[i] = static_cast<q_ulong>(i) * 0x020202;
    for (int direction = 0; direction < 4; ++direction) {
        tagRECT rect = {4, 1, 8, 5};
        std::srand(seedFor(direction));
        FastBlur_Rect(pixels.data(), &rect, 8);
    }
    for (int i = 0; i < 8 * 5; ++i)
        ASSERT_EQ(pixels.data()[i], static_cast<q_ulong>(i) * 0x020202);
}

TEST(CrossBlur_Rect, calls_take_the_edge_neighbours_and_the_corner_neighbours_in_turn) {
    constexpr q_ulong means[2] = {4 / 4 + 16 / 4 + 64 / 4 + 192 / 4, 2 / 4 + 8 / 4 + 128 / 4 + 224 / 4};
    const Surface white(4, 3, 0xFFFFFFFF);
    for (int phase = 0; phase < 2; ++phase) {
        const Surface blurred = crossBlur(nineBlues(), {0, 0, 3, 3}, phase);
        EXPECT_EQ(blurred.differenceFrom(painted(nineBlues(), {1, 1, 2, 2}, means[phase])), "");
        EXPECT_EQ(crossBlur(white, white.rect(), phase).differenceFrom(painted(white, {1, 1, 3, 2}, 0x00FCFCFC)), "");
    }
}

TEST(CrossBlur_Rect, rectangles_without_interior_stay_but_take_their_turn) {
    test::Random random(64);
    const Surface before = Surface::randomOfSize(random, 6, 6);
    for (const tagRECT &rect : {tagRECT{0, 0, 6, 2}, tagRECT{0, 0, 2, 6}, tagRECT{3, 3, 3, 3}, tagRECT{5, 5, 1, 1}})
        for (int phase = 0; phase < 2; ++phase) {
            EXPECT_EQ(crossBlur(before, rect, phase).differenceFrom(before), "");
            EXPECT_EQ(fastBlur(before, rect, seedFor(phase)).differenceFrom(before), "");
        }
}

} // namespace
