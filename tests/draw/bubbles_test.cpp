#include "support/painting.h"
#include "support/pictures.h"

namespace {

using namespace test;

q_ulong lightOf(q_ulong word) {
    return word & 0xFF;
}
q_ulong tintOf(q_ulong word) {
    return word >> 8 & 0xFF;
}
q_ulong highlightOf(q_ulong word) {
    return word >> 16 & 0xFF;
}

/// A resource alone on a surface.
Surface sphere(int size, int secondHighlight) {
    return drawnOn(Surface(size, size), MakeBubbleResource, 0, 0, size, secondHighlight);
}

Surface spots(int size, int secondHighlight) {
    return drawnOn(Surface(size, size), MakeBubbleResource2, 0, 0, size, secondHighlight);
}

// The resource with normals

TEST(MakeBubbleResource, the_centre_the_corners_and_the_tint_by_hand) {
    // Heights 32, sqrt(1023) and sqrt(1023): with d = 0.015628 the normal is (d, d, -1) turned up, V . N =
    // (1 + 2 d) / sqrt(1 + 2 d^2) = 1.0310, times 80 is 82.48. W . N = 0.829, whose 128th power is nothing.
    EXPECT_EQ(sphere(64, 0).at(32, 32), 80u + 82u);
    // V . N = 1. tint = ((32^2 + 32^2) << 7) / 32^2 = 256 at the corner, which carries into the highlight.
    EXPECT_EQ(sphere(64, 0).at(0, 0), 160u | 256u << 8);
    const Surface resource = sphere(64, 0);
    EXPECT_EQ(tintOf(resource.at(48, 32)), 32u);  // 16 * 16 * 128 / 1024
    EXPECT_EQ(tintOf(resource.at(12, 22)), 62u);  // (400 + 100) / 8 is 62.5
    EXPECT_EQ(tintOf(resource.at(32, 63)), 120u); // 31 * 31 / 8 is 120.1
}

TEST(MakeBubbleResource, the_light_comes_from_the_upper_left) {
    // Brightest where the normal is (-1, -1, 1) / sqrt(3): 48 / sqrt(3) = 27.7 from the centre; 80 sqrt(3) = 138.6. The
    // highlight of 200 is where it is (-1, -1, 2) / sqrt(6): 48 / sqrt(6) = 19.6 from the centre, but for the half
    // pixel that a facet lies further.
    const Surface resource = sphere(96, 0);
    EXPECT_EQ(lightOf(resource.at(48 - 28, 48 - 28)), 218u);
    EXPECT_NEAR(static_cast<double>(highlightOf(resource.at(48 - 20, 48 - 20))), 190, 10);
    // The dark side has the light of the surroundings alone.
    EXPECT_EQ(resource.at(48 + 30, 48 + 30) & 0xFF00FF, 80u);
}

TEST(MakeBubbleResource, the_second_highlight_changes_the_lower_right_quadrant_alone) {
    for (const int size : {33, 64}) {
        const Surface without = sphere(size, 0);
        const Surface with = sphere(size, -3);
        int changed = 0;
        for (int j = 0; j < size; ++j)
            for (int i = 0; i < size; ++i) {
                const bool isInQuadrant = i > size / 2 && j > size / 2;
                changed += with.at(i, j) != without.at(i, j);
                EXPECT_TRUE(isInQuadrant || with.at(i, j) == without.at(i, j)) << i << ", " << j;
            }
        EXPECT_GT(changed, 10);
    }
}

// The resource with spots

TEST(MakeBubbleResource2, the_spots_have_these_centres_and_keep_their_extent_whatever_the_size) {
    // R = 90: the first highlight is at (120, 60), 1800 from the light at (150, 30): 200 cos(0.34515) = 188.2. The tint
    // there is (1800 << 7) / 8100 = 28, at the light (7200 << 7) / 8100 = 113.
    EXPECT_EQ(spots(180, 1).at(120, 60), 200u << 16 | 28u << 8 | (55u + 188u));
    EXPECT_EQ(spots(180, 1).at(150, 30), 113u << 8 | (55u + 200u));
    EXPECT_EQ(highlightOf(spots(180, 1).at(60, 120)), 64u);
    EXPECT_EQ(highlightOf(spots(180, 0).at(60, 120)), 0u);
    // 22^2 is below 512, 23^2 is not: at 484 the highlight is 200 cos(1.48489)^16, nothing as a whole number; at 10^2
    // it is 200 cos(0.3068)^16 = 93.0 or a little more. 90^2 is below 8192: 200 cos(1.55316) = 3.5.
    for (const int size : {180, 240, 300}) {
        const Surface resource = spots(size, 0);
        const int radius = size / 2;
        const int x = radius + radius / 3;
        const int y = radius - radius / 3;
        EXPECT_EQ(highlightOf(resource.at(x - 10, y)), 93u) << size;
        EXPECT_EQ(highlightOf(resource.at(x - 22, y)), 0u) << size;
        const int lightX = radius + 2 * radius / 3;
        const int lightY = radius - 2 * radius / 3;
        EXPECT_EQ(lightOf(resource.at(lightX - 90, lightY)), 55u + 3u) << size;
        EXPECT_EQ(lightOf(resource.at(lightX - 91, lightY)), 55u) << size;
    }
}

TEST(MakeBubbleResource2, the_second_highlight_goes_before_the_first_where_they_overlap) {
    // R = 6: the highlights are at (8, 4) and (4, 8), 32 from each other. cos(32 a)^16 is 0.926: 59 of 64, 185 of 200.
    EXPECT_EQ(highlightOf(spots(12, 1).at(8, 4)), 59u);
    EXPECT_EQ(highlightOf(spots(12, 1).at(4, 8)), 64u);
    EXPECT_EQ(highlightOf(spots(12, 0).at(8, 4)), 200u);
    EXPECT_EQ(highlightOf(spots(12, 0).at(4, 8)), 185u);
}

// Drawing

constexpr q_ulong resourceWord(q_ulong light, q_ulong tint, q_ulong highlight) {
    return light | tint << 8 | highlight << 16;
}

using DrawBubble = void (*)(q_ulong *, q_ulong *, int, int, int, int, q_ulong *, int, q_ulong, int, int);

/// A surface with a bubble whose resource is the same word all over.
Surface bubbleOn(const Surface &surface, DrawBubble draw, int cx, int cy, int size, q_ulong word, q_ulong color) {
    Surface dst = surface;
    Pixels scratch(static_cast<std::size_t>(size * size));
    Pixels resource(static_cast<std::size_t>(dst.pitch() * 4), word);
    draw(dst.pixels(), scratch.data(), dst.pitch(), cx, cy, size, resource.data(), 4, color, dst.width(), dst.height());
    return dst;
}

const DrawBubble bubbles[] = {DrawRealBubble, DrawRealBubbleOld};

TEST(DrawRealBubble, refracts_by_hand_worked_values) {
    for (const DrawBubble draw : bubbles) {
        const Surface dst = bubbleOn(placesOf(200, 200), draw, 100, 100, 64, resourceWord(128, 0, 0), 0);
        EXPECT_EQ(dst.at(100, 100), 100u << 8 | 100u); // the centre shows what lies under it
        // unit = 65536 / 4096 = 16. At (16, 0): s = 4096, k = 48 + 29 = 77, 16 * 77 / 128 = 9.6.
        EXPECT_EQ(dst.at(116, 100), 100u << 8 | 109u);
        EXPECT_EQ(dst.at(84, 100), 100u << 8 | 90u); // -9.6 goes down to -10
        EXPECT_EQ(dst.at(100, 116), 109u << 8 | 100u);
        EXPECT_EQ(dst.at(100, 84), 90u << 8 | 100u);
        // At (1, 0): s = 16, -29 * 16 >> 12 = -1, k = 49: 0.38 and -0.38.
        EXPECT_EQ(dst.at(101, 100), 100u << 8 | 100u);
        EXPECT_EQ(dst.at(99, 100), 100u << 8 | 99u);
        // At (24, 12): d2 = 720, s = 11520, -29 * 11520 >> 12 = -82, k = 130: 24.4 and 12.2.
        EXPECT_EQ(dst.at(124, 112), 112u << 8 | 124u);
    }
}

TEST(DrawRealBubble, shows_black_where_the_ray_leaves_the_surface) {
    // The bubble's own pixel (4, 50) is on the surface, at dx = -30: s = 900 * 16 = 14400, k = 48 + 102 = 150, so the
    // background is sought at 34 - 36 = -2.
    for (const DrawBubble draw : bubbles) {
        const Surface dst = bubbleOn(Surface(200, 100, 0xFFFFFFFF), draw, 34, 50, 64, resourceWord(128, 0, 0), 0);
        EXPECT_EQ(dst.at(4, 50), 0u);
        // At (-28, 0): s = 12544, k = 48 + 89 = 137, the ray comes from 34 - 30 = 4.
        EXPECT_EQ(dst.at(6, 50), 0x00FFFFFFu);
    }
}

TEST(DrawRealBubble, light_tint_and_highlight_by_hand_without_which_the_colour_does_not_matter) {
    // Colour (200, 100, 50) lit by 192 / 128 is (255, 150, 75). Background (10, 20, 30), tint 64:
    // (10 * 192 + 255 * 64) / 256 = 71, (20 * 192 + 150 * 64) / 256 = 52, (30 * 192 + 75 * 64) / 256 = 41; plus 200
    // saturated: 255, 252, 241. The top byte becomes 0.
    const q_ulong word = resourceWord(192, 64, 200) | 0xEE000000;
    for (const DrawBubble draw : bubbles)
        EXPECT_EQ(bubbleOn(Surface(60, 60, 0xAB0A141E), draw, 30, 30, 16, word, 0x77C86432).at(30, 30), 0x00FFFCF1u);
    const Surface black = bubbleOn(placesOf(100, 100), DrawRealBubble, 50, 50, 40, resourceWord(255, 0, 0), 0);
    const Surface white = bubbleOn(placesOf(100, 100), DrawRealBubble, 50, 50, 40, resourceWord(255, 0, 0), 0xFFFFFF);
    EXPECT_EQ(black.differenceFrom(white), "");
    EXPECT_EQ(black.at(50, 50), 50u << 8 | 50u);
}

TEST(DrawRealBubble, the_rim_is_softened_over_one_pixel_and_that_of_the_older_one_is_hard) {
    const Surface soft =
        bubbleOn(Surface(200, 200, 0xFF808080), DrawRealBubble, 100, 100, 64, resourceWord(128, 0, 64), 0);
    const Surface hard =
        bubbleOn(Surface(200, 200, 0xFF808080), DrawRealBubbleOld, 100, 100, 64, resourceWord(128, 0, 64), 0);
    // At (31, 7) of a radius of 32: sqrt(1010) = 31.7805, e = 8192 - 8135 = 57. The word there is the background
    // plus 64.
    EXPECT_EQ(soft.at(131, 107), 0x8E8E8Eu); // (128 * 199 + 192 * 57) / 256 = 142.25
    EXPECT_EQ(hard.at(131, 107), 0xC0C0C0u);
    // At (31, 0) e is 256, and the word stands as it is; one pixel further the surface does.
    for (const Surface &surface : {soft, hard}) {
        EXPECT_EQ(surface.at(131, 100), 0xC0C0C0u);
        EXPECT_EQ(surface.at(68, 100), 0xFF808080u);
    }
}

TEST(DrawRealBubbleOld, a_radius_beyond_90_needs_no_table) {
    // Beyond 256 the refraction is the same all over: 48 / 128.
    const Surface dst =
        bubbleOn(Surface(300, 300, 0x808080), DrawRealBubbleOld, 150, 150, 260, resourceWord(128, 0, 64), 0);
    EXPECT_EQ(dst.at(150 + 129, 150), 0xC0C0C0u);
    EXPECT_EQ(dst.at(150 - 129, 150), 0xC0C0C0u);
    EXPECT_EQ(dst.at(150 - 130, 150), 0x808080u);
}

TEST(DrawRealBubbleOld, reads_the_resource_by_the_pitch_of_the_surface) {
    // A resource of 2 by 2 has its second row behind the first, where the older one does not look for it.
    Surface dst(17, 17);
    Pixels scratch(16 * 16);
    Pixels resource(static_cast<std::size_t>(dst.pitch()) + 2, resourceWord(0, 0, 10));
    resource[2] = resource[3] = resourceWord(0, 0, 20);
    resource[resource.size() - 2] = resource[resource.size() - 1] = resourceWord(0, 0, 30);
    for (const auto &[draw, lower] : {std::pair{bubbles[0], 20u}, {bubbles[1], 30u}}) {
        dst = Surface(17, 17);
        draw(dst.pixels(), scratch.data(), dst.pitch(), 8, 8, 16, resource.data(), 2, 0, 17, 17);
        EXPECT_EQ(dst.at(8, 4), 10u * 0x10101);
        EXPECT_EQ(dst.at(8, 12), lower * 0x10101);
    }
}

Surface ballOn(Surface dst, int cx, int cy, int size, q_ulong word, q_ulong color) {
    Pixels resource(16, word);
    DrawReal3DBall(dst.pixels(), dst.pitch(), cx, cy, size, resource.data(), 4, color, dst.width(), dst.height());
    return dst;
}

TEST(DrawReal3DBall, lights_the_colour_and_adds_the_highlight) {
    // (200, 100, 50) * 192 / 128 = (300, 150, 75), plus 30, saturated; the tint is ignored and the top byte is 0.
    const Surface dst = ballOn(Surface(20, 20, 0xFFFFFFFF), 10, 10, 9, resourceWord(192, 127, 30), 0xFFC86432);
    EXPECT_EQ(dst.at(10, 10), 0x00FFB469u);
}

TEST(DrawReal3DBall, pixels_exactly_on_the_rim_belong_to_it_and_not_to_a_bubble) {
    // Of an even size the ball ends a pixel before the rim at the right and the bottom; a size of 1 is one pixel.
    const auto rowOfBall = [](int size) {
        return rowsOf(ballOn(Surface(13, 13), 6, 6, size, resourceWord(128, 0, 0), 0xFFFFFF),
                      {{'.', 0}, {'#', 0xFFFFFF}});
    };
    EXPECT_EQ(rowOfBall(11)[6], ".###########.");
    EXPECT_EQ(rowOfBall(11)[2], "...#######..."); // (3, 4) is at 5
    EXPECT_EQ(rowOfBall(11)[1], "......#......");
    EXPECT_EQ(rowOfBall(10)[6], ".##########..");
    EXPECT_EQ(rowOfBall(10)[11], ".............");
    EXPECT_EQ(rowOfBall(1)[6], "......#......");
    for (const DrawBubble draw : bubbles) {
        const Surface bubble = bubbleOn(Surface(13, 13), draw, 6, 6, 11, resourceWord(128, 0, 255), 0);
        EXPECT_EQ(bubble.at(1, 6), 0u);
        EXPECT_NE(bubble.at(2, 6), 0u);
        const Surface none = bubbleOn(Surface(13, 13), draw, 6, 6, 1, resourceWord(128, 0, 255), 0xFFFFFF);
        EXPECT_EQ(none.differenceFrom(Surface(13, 13)), "");
    }
}

TEST(DrawReal3DBall, the_whole_resource_lies_over_the_whole_ball) {
    // A size of 8 shows each word of a resource of 4 by 4 on 2 by 2 pixels, within a distance of 4 from the middle.
    Pixels resource;
    for (q_ulong i = 1; i <= 16; ++i)
        resource.push_back(resourceWord(0, 0, i));
    Surface dst(8, 8);
    DrawReal3DBall(dst.pixels(), dst.pitch(), 4, 4, 8, resource.data(), 4, 0, 8, 8);
    Colours letters = {{'.', 0}};
    for (q_ulong i = 1; i <= 16; ++i)
        letters[static_cast<char>('A' + i - 1)] = i * 0x10101;
    // x and y from -4 to 3: a row of distance 4 has one pixel, one of 3 reaches 2 to either side.
    EXPECT_EQ(rowsOf(dst, letters),
              (Rows{"....C...", "..BBCCD.", ".EFFGGHH", ".EFFGGHH", "IIJJKKLL", ".IJJKKLL", ".MNNOOPP", "..NNOOP."}));
}

} // namespace
