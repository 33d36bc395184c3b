#include "plain/blurs.h"
#include "support/surface.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace {

using test::Surface;

struct Step {
    int dx;
    int dy;
};

/// Where the one tap of each direction lies; the other lies opposite.
constexpr Step directions[4] = {{1, 0}, {0, 1}, {1, -1}, {1, 1}};

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

/// Three rows of three blues, all pairs and fours of which have sums of their own.
Surface nineBlues() {
    constexpr q_ulong blues[9] = {2, 4, 8, 16, 32, 64, 128, 192, 224};
    Surface surface(3, 3);
    for (int i = 0; i < 9; ++i)
        surface.at(i % 3, i / 3) = 0xFF000000u | blues[i];
    return surface;
}

TEST(FastBlur_Rect, each_draw_takes_its_own_two_neighbours) {
    constexpr q_ulong means[4] = {(16 + 64) / 2, (4 + 192) / 2, (8 + 128) / 2, (2 + 224) / 2};
    for (int direction = 0; direction < 4; ++direction) {
        SCOPED_TRACE(direction);
        Surface surface = nineBlues();
        Surface expected = surface;
        expected.at(1, 1) = means[direction];
        tagRECT rect = surface.rect();
        std::srand(seedFor(direction));
        FastBlur_Rect(surface.pixels(), &rect, surface.pitch());
        EXPECT_EQ(surface.differenceFrom(expected), "");
    }
}

TEST(FastBlur_Rect, agrees_with_a_naive_average_in_every_direction) {
    test::Random random(61);
    int met[4] = {};
    for (unsigned seed = 1; seed <= 4000; ++seed) {
        Surface surface = Surface::random(random, 12);
        tagRECT rect = random.rectInsideOrEmpty(surface.width(), surface.height());
        const int direction = firstDrawAfter(seed);
        const int secondDraw = std::rand();
        ++met[direction];
        Surface expected = surface;
        plain::blurAlong({expected.pixels(), expected.pitch()}, rect, directions[direction].dx,
                         directions[direction].dy);
        std::srand(seed);
        FastBlur_Rect(surface.pixels(), &rect, surface.pitch());
        ASSERT_EQ(surface.differenceFrom(expected), "") << "direction " << direction;
        ASSERT_EQ(std::rand(), secondDraw) << "one number is drawn on every call";
    }
    for (const int count : met)
        EXPECT_GT(count, 100);
}

TEST(FastBlur_Rect, white_falls_to_0xFEFEFE_inside_and_stays_on_the_frame) {
    for (int direction = 0; direction < 4; ++direction) {
        Surface surface(5, 4, 0xFFFFFFFF);
        Surface expected = surface;
        for (int y = 1; y < 3; ++y)
            for (int x = 1; x < 4; ++x)
                expected.at(x, y) = 0x00FEFEFE;
        tagRECT rect = surface.rect();
        std::srand(seedFor(direction));
        FastBlur_Rect(surface.pixels(), &rect, surface.pitch());
        EXPECT_EQ(surface.differenceFrom(expected), "");
    }
}

TEST(FastBlur_Rect, rectangles_without_interior_stay_but_draw_their_number) {
    test::Random random(62);
    const Surface before = Surface::randomOfSize(random, 6, 6);
    for (tagRECT rect : {tagRECT{0, 0, 6, 2}, tagRECT{0, 0, 2, 6}, tagRECT{1, 1, 2, 2}, tagRECT{3, 3, 3, 3},
                         tagRECT{5, 5, 1, 1}, tagRECT{0, 0, 6, 0}, tagRECT{4, 0, 1, 6}}) {
        Surface surface = before;
        firstDrawAfter(7);
        const int secondDraw = std::rand();
        std::srand(7);
        FastBlur_Rect(surface.pixels(), &rect, surface.pitch());
        EXPECT_EQ(surface.differenceFrom(before), "");
        EXPECT_EQ(std::rand(), secondDraw);
    }
}

TEST(FastBlur_Rect, reads_no_pixel_behind_the_last_row_of_the_surface) {
    // The rectangle ends in the last row, and its left is not 0.
    test::PageEndPixels pixels(8 * 5);
    for (int i = 0; i < 8 * 5; ++i)
        pixels.data()[i] = static_cast<q_ulong>(i) * 0x020202;
    for (int direction = 0; direction < 4; ++direction) {
        tagRECT rect = {4, 1, 8, 5};
        std::srand(seedFor(direction));
        FastBlur_Rect(pixels.data(), &rect, 8);
    }
    // All the averages of a plane are the plane itself.
    for (int i = 0; i < 8 * 5; ++i)
        ASSERT_EQ(pixels.data()[i], static_cast<q_ulong>(i) * 0x020202);
}

TEST(CrossBlur_Rect, three_by_three_pixels_have_one_inside) {
    constexpr q_ulong means[2] = {4 / 4 + 16 / 4 + 64 / 4 + 192 / 4, 2 / 4 + 8 / 4 + 128 / 4 + 224 / 4};
    for (int phase = 0; phase < 2; ++phase) {
        Surface surface = nineBlues();
        Surface expected = surface;
        expected.at(1, 1) = means[phase];
        tagRECT rect = surface.rect();
        _PRIVATE_LUT_DATA lut = {phase};
        CrossBlur_Rect(&lut, surface.pixels(), &rect, surface.pitch());
        EXPECT_EQ(surface.differenceFrom(expected), "");
        EXPECT_EQ(lut.phase, 1 - phase);
    }
}

TEST(CrossBlur_Rect, white_falls_to_0xFCFCFC_inside) {
    for (int phase = 0; phase < 2; ++phase) {
        Surface surface(4, 3, 0xFFFFFFFF);
        Surface expected = surface;
        expected.at(1, 1) = expected.at(2, 1) = 0x00FCFCFC;
        tagRECT rect = surface.rect();
        _PRIVATE_LUT_DATA lut = {phase};
        CrossBlur_Rect(&lut, surface.pixels(), &rect, surface.pitch());
        EXPECT_EQ(surface.differenceFrom(expected), "");
    }
}

TEST(CrossBlur_Rect, calls_take_the_edge_neighbours_and_the_corner_neighbours_in_turn) {
    test::Random random(63);
    Surface surface = Surface::randomOfSize(random, 9, 7);
    Surface expected = surface;
    tagRECT rect = surface.rect();
    _PRIVATE_LUT_DATA lut = {0};
    for (int call = 0; call < 6; ++call) {
        _PRIVATE_LUT_DATA turn = {call % 2};
        plain::CrossBlur_Rect(&turn, expected.pixels(), &rect, expected.pitch());
        CrossBlur_Rect(&lut, surface.pixels(), &rect, surface.pitch());
        ASSERT_EQ(surface.differenceFrom(expected), "");
        ASSERT_EQ(lut.phase, 1 - call % 2);
    }
}

TEST(CrossBlur_Rect, rectangles_without_interior_stay_but_take_their_turn) {
    test::Random random(64);
    const Surface before = Surface::randomOfSize(random, 6, 6);
    for (tagRECT rect : {tagRECT{0, 0, 6, 2}, tagRECT{0, 0, 2, 6}, tagRECT{3, 3, 3, 3}, tagRECT{5, 5, 1, 1}})
        for (int phase = 0; phase < 2; ++phase) {
            Surface surface = before;
            _PRIVATE_LUT_DATA lut = {phase};
            CrossBlur_Rect(&lut, surface.pixels(), &rect, surface.pitch());
            EXPECT_EQ(surface.differenceFrom(before), "");
            EXPECT_EQ(lut.phase, 1 - phase);
        }
}

} // namespace
