#include "naive.h"

#include <gtest/gtest.h>

namespace {

using naive::Number;
using test::Case;
using test::forEachCase;
using test::Surface;

constexpr int greatest = std::numeric_limits<int>::max();

/// The quotient by a power of two, rounded down.
Number shifted(Number value, int bits) {
    const Number divisor = Number{1} << bits;
    return value >= 0 ? value / divisor : -((-value + divisor - 1) / divisor);
}

struct Ellipse {
    Number x;
    Number y;
    Number ratio;
    Number a;
    Number b;
    bool exists;

    explicit Ellipse(const tagRECT &box) {
        const Number w = naive::signed32(Number{box.right} - box.left);
        const Number h = naive::signed32(Number{box.bottom} - box.top);
        x = shifted(naive::signed32(Number{box.left} + box.right), 1);
        y = shifted(naive::signed32(Number{box.top} + box.bottom), 1);
        const Number width = naive::signed32(w * 370728);
        const Number height = naive::signed32(h * 370728);
        exists = h != 0 && shifted(width, 18) != 0;
        ratio = exists ? naive::signed32(naive::signed32(w << 20) / h) : 0;
        a = shifted(width, 19);
        b = exists ? shifted(height, 18) * a / shifted(width, 18) : 0;
    }

    Number scaledSquare(Number dy) const {
        const Number e = shifted(naive::signed32(dy * ratio), 20);
        return e * e;
    }
};

void naiveOutline(Surface &s, const tagRECT &clip, const tagRECT &box, int thickness, q_ulong colour) {
    const Ellipse ellipse(box);
    if (!ellipse.exists)
        return;
    const Number inner = naive::signed32((ellipse.a - thickness) * (ellipse.a - thickness));
    for (Number dy = -ellipse.b; dy <= 0; ++dy)
        for (Number dx = -ellipse.a; dx <= 0; ++dx) {
            const Number square = dx * dx + ellipse.scaledSquare(dy);
            if (square > ellipse.a * ellipse.a)
                continue;
            for (const Number x : {ellipse.x + dx, ellipse.x - dx})
                for (const Number y : {ellipse.y + dy, ellipse.y - dy})
                    if (naive::inside(clip, x, y))
                        s.at(static_cast<int>(x), static_cast<int>(y)) = colour;
            if (square <= inner)
                break;
        }
}

void naiveHalfStrength(Surface &s, const tagRECT &clip, const tagRECT &box, q_ulong colour) {
    const Ellipse ellipse(box);
    if (!ellipse.exists || clip.left >= clip.right || clip.top >= clip.bottom)
        return;
    const auto blend = [&](Number x, Number y) {
        q_ulong &d = s.at(static_cast<int>(x), static_cast<int>(y));
        d = naive::packed(naive::red(d) / 2 + naive::red(colour) / 2, naive::green(d) / 2 + naive::green(colour) / 2,
                          naive::blue(d) / 2 + naive::blue(colour) / 2);
    };
    for (Number dy = -ellipse.b; dy <= -1; ++dy)
        for (Number dx = -ellipse.a; dx <= -1; ++dx)
            if (dx * dx + ellipse.scaledSquare(dy) <= ellipse.a * ellipse.a)
                for (const Number x : {ellipse.x + dx, ellipse.x - dx})
                    for (const Number y : {ellipse.y + dy, ellipse.y - dy})
                        if (naive::inside(clip, x, y))
                            blend(x, y);
    const Number column = std::clamp<Number>(ellipse.x, clip.left, clip.right - 1);
    for (Number dy = std::max(-ellipse.y, -ellipse.b); dy < std::min(clip.bottom - ellipse.y, ellipse.b); ++dy)
        blend(column, ellipse.y + dy);
    const Number row = std::clamp<Number>(ellipse.y, clip.top, clip.bottom - 1);
    for (Number dx = std::max(clip.left - ellipse.x, -ellipse.a); dx < std::min(clip.right - ellipse.x, ellipse.a);
         ++dx)
        blend(ellipse.x + dx, row);
}

void drawOutline(Surface &s, tagRECT clip, tagRECT box, int thickness, q_ulong colour) {
    Draw_Outer_Ellipse_NoFillInside(s.pixels(), s.pitch(), &clip, &box, thickness, colour);
}

void drawHalfStrength(Surface &s, tagRECT clip, tagRECT box, q_ulong colour) {
    Draw_Outer_Ellipse_AlphaFast(s.pixels(), s.pitch(), &clip, &box, 12345, colour);
}

/// Boxes over and beyond a 9 x 7 surface, inverted ones included.
template <class Check>
void forBoxes(Check check) {
    for (const tagRECT &clip : {tagRECT{0, 0, 9, 7}, tagRECT{2, 1, 7, 6}, tagRECT{4, 3, 5, 4}, tagRECT{4, 3, 4, 6}})
        for (int top = -8; top <= 10; top += 2)
            for (int left = -9; left <= 12; left += 3)
                for (int height = -3; height <= 19; ++height)
                    for (int width = -2; width <= 17; ++width)
                        check(clip, tagRECT{left, top, left + width, top + height});
}

TEST(Draw_Outer_Ellipse_NoFillInside, a_square_box_of_side_100_has_a_ring_of_radius_70) {
    Surface surface(160, 160, 0);
    drawOutline(surface, surface.rect(), {30, 30, 130, 130}, 1, 0x7F000001);
    for (const int d : {-70, 70}) {
        EXPECT_EQ(surface.at(80 + d, 80), 0x7F000001u);
        EXPECT_EQ(surface.at(80, 80 + d), 0x7F000001u);
        EXPECT_EQ(surface.at(80 + d + (d < 0 ? -1 : 1), 80), 0u);
        EXPECT_EQ(surface.at(80, 80 + d + (d < 0 ? -1 : 1)), 0u);
    }
    // With 70 in place of the radius it is the circle's own walk.
    Surface circle(160, 160, 0);
    Draw_Circle_NoFillInside(circle.pixels(), circle.pitch(), 80, 80, 70, 1, 0x7F000001);
    EXPECT_EQ(surface.differenceFrom(circle), "");
}

TEST(Draw_Outer_Ellipse_NoFillInside, thickness_is_squeezed_with_the_ellipse) {
    // 80 by 20: A is 56 and B 28 * 56 / 113. A thickness of 24 is 25 pixels across, but the rows 13 to 8 down.
    Surface surface(160, 60, 0);
    drawOutline(surface, surface.rect(), {40, 20, 120, 40}, 24, 1);
    int across = 0;
    for (int x = 0; x < 80; ++x)
        across += surface.at(x, 30) != 0;
    int down = 0;
    for (int y = 0; y < 30; ++y)
        down += surface.at(80, y) != 0;
    EXPECT_EQ(across, 25);
    EXPECT_EQ(down, 6);
}

TEST(Draw_Outer_Ellipse_NoFillInside, boxes_of_no_width_or_height_draw_nothing) {
    const Surface fresh(9, 9, 0xFF112233);
    Surface surface = fresh;
    for (const tagRECT &box : {tagRECT{4, 2, 4, 6}, tagRECT{2, 4, 6, 4}, tagRECT{4, 4, 4, 4}}) {
        drawOutline(surface, surface.rect(), box, 1, 0);
        drawHalfStrength(surface, surface.rect(), box, 0);
    }
    EXPECT_EQ(surface.differenceFrom(fresh), "");
}

TEST(Draw_Outer_Ellipse_NoFillInside, writes_nothing_outside_the_clip) {
    const Surface fresh(9, 7, 0);
    forBoxes([&](const tagRECT &clip, const tagRECT &box) {
        for (const int thickness : {-1, 1, 3, 40}) {
            Surface surface = fresh;
            Surface expected = fresh;
            naiveOutline(expected, clip, box, thickness, 0x7F123456);
            drawOutline(surface, clip, box, thickness, 0x7F123456);
            ASSERT_TRUE(surface == expected) << box.left << ", " << box.top << ", " << box.right << ", " << box.bottom
                                             << ": " << surface.differenceFrom(expected);
        }
    });
}

TEST(Draw_Outer_Ellipse_NoFillInside, extreme_boxes_stay_inside_the_clip) {
    const Surface fresh(6, 6, 0x80112233);
    constexpr int sides[] = {-greatest - 1, -6000, -2048, -1, 3, 2048, 6000, greatest};
    for (const int left : sides)
        for (const int top : sides)
            for (const int right : sides)
                for (const int bottom : sides)
                    for (const int thickness : {-greatest - 1, 1, greatest}) {
                        Surface surface = fresh;
                        Surface expected = fresh;
                        naiveOutline(expected, {1, 2, 5, 4}, {left, top, right, bottom}, thickness, 0);
                        drawOutline(surface, {1, 2, 5, 4}, {left, top, right, bottom}, thickness, 0);
                        ASSERT_EQ(surface.differenceFrom(expected), "")
                            << left << ", " << top << ", " << right << ", " << bottom;
                    }
}

TEST(Draw_Outer_Ellipse_NoFillInside, agrees_with_a_naive_outline) {
    forEachCase("Draw_Outer_Ellipse_NoFillInside", [](Case &c) {
        Surface surface = Surface::random(c.random);
        const tagRECT clip = c.random.rectInsideOrEmpty(surface.width(), surface.height());
        const int left = c.random.between(-20, 20);
        const int top = c.random.between(-20, 20);
        const tagRECT box = {left, top, left + c.random.between(-2, 30), top + c.random.between(-2, 30)};
        const int thickness = c.random.between(-1, 20);
        const q_ulong colour = c.random.pixel();
        Surface expected = surface;
        naiveOutline(expected, clip, box, thickness, colour);
        drawOutline(surface, clip, box, thickness, colour);
        c.expectEqual(surface, expected);
    });
}

TEST(Draw_Outer_Ellipse_AlphaFast, blends_at_half_strength_and_the_centre_twice) {
    Surface surface(31, 31, 0xFF804020);
    drawHalfStrength(surface, surface.rect(), {10, 10, 20, 20}, 0x77101010);
    EXPECT_EQ(surface.at(14, 14), 0x00482818u);
    EXPECT_EQ(surface.at(15, 14), 0x00482818u);
    EXPECT_EQ(surface.at(14, 15), 0x00482818u);
    EXPECT_EQ(surface.at(15, 15), 0x002C1C14u); // half of 0x482818 and 0x080808 again
}

TEST(Draw_Outer_Ellipse_AlphaFast, axes_stop_short_of_their_far_ends) {
    // A square box of side 10 has A and B of 7.
    Surface surface(31, 31, 0xFFFFFFFF);
    drawHalfStrength(surface, surface.rect(), {10, 10, 20, 20}, 0);
    EXPECT_EQ(surface.at(8, 15), 0x007F7F7Fu);
    EXPECT_EQ(surface.at(22, 15), 0xFFFFFFFFu);
    EXPECT_EQ(surface.at(15, 8), 0x007F7F7Fu);
    EXPECT_EQ(surface.at(15, 22), 0xFFFFFFFFu);
    EXPECT_EQ(surface.at(21, 15), 0x007F7F7Fu);
    EXPECT_EQ(surface.at(15, 21), 0x007F7F7Fu);
}

TEST(Draw_Outer_Ellipse_AlphaFast, a_box_left_of_the_clip_still_blends_a_column_on_its_edge) {
    Surface surface(12, 31, 0xFFFFFFFF);
    Surface expected = surface;
    for (int y = 8; y < 22; ++y)
        expected.at(3, y) = 0x007F7F7F;
    drawHalfStrength(surface, {3, 2, 12, 29}, {-40, 10, -30, 20}, 0);
    EXPECT_EQ(surface.differenceFrom(expected), "");
}

TEST(Draw_Outer_Ellipse_AlphaFast, a_box_below_the_clip_still_blends_a_row_on_its_edge) {
    Surface surface(31, 12, 0xFFFFFFFF);
    Surface expected = surface;
    for (int x = 8; x < 22; ++x)
        expected.at(x, 9) = 0x007F7F7F;
    drawHalfStrength(surface, {2, 3, 29, 10}, {10, 40, 20, 50}, 0);
    EXPECT_EQ(surface.differenceFrom(expected), "");
}

TEST(Draw_Outer_Ellipse_AlphaFast, the_vertical_axis_starts_at_row_0_not_at_the_top_of_the_clip) {
    Surface surface(31, 31, 0xFFFFFFFF);
    drawHalfStrength(surface, {0, 12, 31, 31}, {10, -2, 20, 18}, 0); // B is 14 around row 8
    for (int y = -8; y < 0; ++y)
        EXPECT_EQ(surface.at(15, y), 0xFFFFFFFFu) << y;
    for (int y = 0; y < 12; ++y) {
        EXPECT_EQ(surface.at(15, y), 0x007F7F7Fu) << y;
        EXPECT_EQ(surface.at(14, y), 0xFFFFFFFFu) << y;
    }
}

TEST(Draw_Outer_Ellipse_AlphaFast, an_empty_clip_writes_nothing) {
    const Surface fresh(31, 31, 0xFFFFFFFF);
    for (const tagRECT &clip :
         {tagRECT{5, 5, 5, 20}, tagRECT{5, 5, 20, 5}, tagRECT{20, 20, 5, 25}, tagRECT{5, 25, 20, 9}}) {
        Surface surface = fresh;
        drawHalfStrength(surface, clip, {10, 10, 20, 20}, 0);
        EXPECT_EQ(surface.differenceFrom(fresh), "");
    }
}

TEST(Draw_Outer_Ellipse_AlphaFast, writes_nothing_outside_the_clip_but_its_column) {
    test::Random random(3);
    const Surface fresh = Surface::randomOfSize(random, 9, 7);
    forBoxes([&](const tagRECT &clip, const tagRECT &box) {
        Surface surface = fresh;
        Surface expected = fresh;
        naiveHalfStrength(expected, clip, box, 0x7F123456);
        drawHalfStrength(surface, clip, box, 0x7F123456);
        ASSERT_TRUE(surface == expected) << box.left << ", " << box.top << ", " << box.right << ", " << box.bottom
                                         << ": " << surface.differenceFrom(expected);
    });
}

TEST(Draw_Outer_Ellipse_AlphaFast, extreme_boxes_stay_inside_the_clip_and_its_column) {
    const Surface fresh(6, 6, 0x80112233);
    constexpr int sides[] = {-greatest - 1, -2048, -1, 3, 700, greatest};
    for (const int left : sides)
        for (const int top : sides)
            for (const int right : sides)
                for (const int bottom : sides) {
                    Surface surface = fresh;
                    Surface expected = fresh;
                    naiveHalfStrength(expected, {1, 2, 5, 4}, {left, top, right, bottom}, 0);
                    drawHalfStrength(surface, {1, 2, 5, 4}, {left, top, right, bottom}, 0);
                    ASSERT_EQ(surface.differenceFrom(expected), "")
                        << left << ", " << top << ", " << right << ", " << bottom;
                }
}

TEST(Draw_Outer_Ellipse_AlphaFast, agrees_with_a_naive_ellipse) {
    forEachCase("Draw_Outer_Ellipse_AlphaFast", [](Case &c) {
        Surface surface = Surface::random(c.random);
        const tagRECT clip = c.random.rectInsideOrEmpty(surface.width(), surface.height());
        const int left = c.random.between(-20, 20);
        const int top = c.random.between(-20, 20);
        const tagRECT box = {left, top, left + c.random.between(-2, 30), top + c.random.between(-2, 30)};
        const q_ulong colour = c.random.pixel();
        Surface expected = surface;
        naiveHalfStrength(expected, clip, box, colour);
        drawHalfStrength(surface, clip, box, colour);
        c.expectEqual(surface, expected);
    });
}

} // namespace
