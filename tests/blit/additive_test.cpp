#include "blits.h"
#include "support/precision.h"

#include <algorithm>
#include <array>
#include <functional>
#include <vector>

namespace {

using namespace test;

const Add nearAdd = iBltNear32_Add;
const Add bilinearAdd = iBltBilinear32_Add;
const ScaledAdd nearScaledAdd = iBltNear32_Add;

// What comes of one pixel added to another.

q_ulong fastSum(q_ulong d, q_ulong s) {
    tagRECT one = {0, 0, 1, 1};
    iBltFast32_Add(&d, &s, 0, 0, &one, 1, 1);
    return d;
}

q_ulong fastScaledSum(q_ulong d, q_ulong s) {
    tagRECT one = {0, 0, 1, 1};
    iBltFast32_Add(&d, &s, 0, 0, &one, 1, 1, 255, 255, 255);
    return d;
}

q_ulong nearScaledSum(q_ulong d, q_ulong s) {
    return over(Surface(1, 1, d), Surface(1, 1, s), nearScaledAdd, 255, 255, 255)[0];
}

q_ulong nearSum(q_ulong d, q_ulong s) {
    return over(Surface(1, 1, d), Surface(1, 1, s), nearAdd)[0];
}

TEST(iBltFast32_Add, caps_200_on_100_at_255_in_every_channel) {
    for (int shift = 0; shift < 24; shift += 8)
        EXPECT_EQ(fastSum(q_ulong{100} << shift, q_ulong{200} << shift), q_ulong{255} << shift);
    EXPECT_EQ(fastSum(0xFF000000, 0xFF000000), 0u);
}

TEST(iBltFast32_Add, keeps_the_order_of_pixels_where_pictures_fill_more_than_the_nearer_caches) {
    constexpr int width = 1021, height = 517, pitch = 1030;
    constexpr int apart = pitch * height;
    constexpr int room = 64;
    const auto capped = [](q_ulong d, q_ulong s) {
        q_ulong sum = 0;
        for (int shift = 0; shift < 24; shift += 8)
            sum |= std::min((d >> shift & 255) + (s >> shift & 255), q_ulong{255}) << shift;
        return sum;
    };
    for (const int ahead : {0, 3, 4, 8, 16, 40, -5, -40, apart}) {
        std::vector<q_ulong> sheet(2 * apart + room);
        for (std::size_t i = 0; i < sheet.size(); ++i)
            sheet[i] = static_cast<q_ulong>(i * 0x9E3779B1) & 0x3F3F3F3F;
        std::vector<q_ulong> expected = sheet;
        const auto added = [&](std::vector<q_ulong> &to) { return to.data() + room; };
        tagRECT all = {0, 0, width, height};
        iBltFast32_Add(added(sheet) + ahead, added(sheet), 0, 0, &all, pitch, pitch);
        for (int y = 0; y < height; ++y)
            for (int i = y * pitch; i < y * pitch + width; ++i) {
                q_ulong &d = added(expected)[i + ahead];
                d = capped(d, added(expected)[i]);
            }
        EXPECT_TRUE(sheet == expected) << ahead;
    }
}

TEST(iBltFast32_Add_scaled, red_and_green_wrap_blue_is_capped_and_a_scale_of_255_takes_a_little) {
    for (const auto sum : {fastScaledSum, nearScaledSum}) {
        EXPECT_EQ(sum(0x640000, 0xC80000), 0x2B0000u); // 200 becomes 199, and 299 wraps to 43
        EXPECT_EQ(sum(0x006400, 0x00C800), 0x002B00u);
        EXPECT_EQ(sum(0x000064, 0x0000C8), 0x0000FFu);
    }
    EXPECT_EQ(fastScaledSum(0, 0xFF01FF), 0xFE00FEu);
}

TEST(iBltNear32_Add, a_carry_of_blue_sets_the_lowest_bit_of_green) {
    EXPECT_EQ(nearSum(0x000064, 0x0000C8), 0x00012Cu); // 300 is 256 + 44
    EXPECT_EQ(nearSum(0x000164, 0x0000C8), 0x00012Cu); // or-ed, not added
    EXPECT_EQ(nearSum(0x00FE64, 0x0000C8), 0x00FF2Cu);
    EXPECT_EQ(nearSum(0xC8C8FF, 0xC8C8FF), 0xFFFFFEu); // 510 is the largest sum
}

TEST(iBltBilinear32_Add, the_last_column_and_row_stand_in_for_what_lies_behind_them) {
    EXPECT_EQ(over(Surface(4, 4), pictureOf(2, {0x10, 0x20, 0x30, 0x40}), bilinearAdd),
              (Pixels{0x10, 0x18, 0x20, 0x20, 0x20, 0x28, 0x30, 0x30, 0x30, 0x38, 0x40, 0x40, 0x30, 0x38, 0x40, 0x40}));
}

TEST(iBltBilinear32_Add, whole_steps_add_what_they_show) {
    atWholeSteps(0xFFFFFFFF, [](Surface &src, const Surface &shown, Surface dst) {
        const Surface expected = mixed(dst, shown, [](q_ulong d, q_ulong s) { return std::min<q_ulong>(d + s, 255); });
        stretch(bilinearAdd, dst, dst.rect(), src, src.rect());
        EXPECT_EQ(dst.differenceFrom(expected), "");
    });
}

// A source whose right lies left of its left, or its bottom above its top.

using AnyAdd = std::function<void(Surface &dst, tagRECT dstRect, Surface &src, tagRECT srcRect)>;

void safeKeyAdd(Surface &dst, tagRECT dstRect, Surface &src, tagRECT srcRect) {
    stretch(iBltNear32SafeKeySrcAdd, dst, dstRect, src, srcRect, dst.width(), dst.height());
}

TEST(iBltNear32_Add, a_source_turned_inside_out_is_walked_to_the_left_or_up) {
    const AnyAdd plainAdd = [](Surface &dst, tagRECT dstRect, Surface &src, tagRECT srcRect) {
        stretch(nearAdd, dst, dstRect, src, srcRect);
    };
    for (const AnyAdd &add : {plainAdd, AnyAdd(safeKeyAdd)}) {
        const auto drawn = [&](int width, int height, Surface &src, tagRECT srcRect) {
            Surface dst(width, height);
            add(dst, dst.rect(), src, srcRect);
            return pixelsOf(dst);
        };
        Surface src = numbered(6, 1);
        src.at(-1, 0) = 0x70;
        // A step of -4 / 4: from column 5, the sixth pixel, to the left; and one of -4 / 2.
        EXPECT_EQ(drawn(4, 1, src, {5, 0, 1, 1}), (Pixels{6, 5, 4, 3}));
        EXPECT_EQ(drawn(2, 1, src, {5, 0, 1, 1}), (Pixels{6, 4}));
        // A step of -2 / 4: the positions -1/2 and -3/2 are rounded down, to -1 and -2.
        EXPECT_EQ(drawn(4, 1, src, {5, 0, 3, 1}), (Pixels{6, 5, 5, 4}));
        // A step of -2 / 3, which the division truncates toward 0: -0.67 and -1.33.
        EXPECT_EQ(drawn(3, 1, src, {5, 0, 3, 1}), (Pixels{6, 5, 4}));
        // The column where the rectangle ends is reached where the last position is rounded down to it.
        EXPECT_EQ(drawn(4, 1, src, {0, 0, -1, 1}), (Pixels{1, 0x70, 0x70, 0x70}));

        Surface high = pictureOf(2, {1, 0x100, 2, 0x200, 3, 0x300, 4, 0x400, 5, 0x500, 6, 0x600});
        EXPECT_EQ(drawn(2, 4, high, {0, 5, 2, 3}), (Pixels{6, 0x600, 5, 0x500, 5, 0x500, 4, 0x400}));
        EXPECT_EQ(drawn(2, 2, high, {1, 5, -1, 3}), (Pixels{0x600, 6, 0x500, 5})); // left and up at once
    }
}

TEST(iBltNear32SafeKeySrcAdd, a_source_turned_inside_out_is_clipped_as_any_other) {
    // The destination begins two columns before the surface: its third pixel shows the third source pixel to the left.
    Surface src = numbered(6, 1);
    Surface dst(3, 1);
    safeKeyAdd(dst, {-2, 0, 4, 1}, src, {5, 0, -1, 1});
    EXPECT_EQ(pixelsOf(dst), (Pixels{4, 3, 2}));
    EXPECT_EQ(dst.at(3, 0), 0u);
}

// Adds that leave out a key

TEST(iBltFast32_KeySrc_Add, leaves_out_exactly_the_pixels_that_are_0_whatever_the_key) {
    for (const q_ulong key : {0u, 0x112233u, 0xFF00FFu, 0xFFFFFFFFu}) {
        Surface dst(4, 1, 0xAA010203);
        Surface src = rowOf({0, 0x112233, 0xFF000000, 0xFF00FF});
        place(iBltFast32_KeySrc_Add, dst, 0, 0, src, src.rect(), key);
        // Black with a top byte is no 0: the destination's top byte goes.
        EXPECT_EQ(pixelsOf(dst), (Pixels{0xAA010203, 0x00122436, 0x00010203, 0x00FF02FF}));
    }
}

TEST(iBltNear32SafeKeySrcAdd, leaves_out_exactly_the_pixels_that_are_0) {
    Surface dst(3, 1, 0xAA646464);
    Surface src = rowOf({0, 0x01000000, 0x00C8C800});
    safeKeyAdd(dst, dst.rect(), src, src.rect());
    EXPECT_EQ(pixelsOf(dst), (Pixels{0xAA646464, 0x00646464, 0x00FFFF64}));
}

Surface centredSum(Surface dst, Surface src, int centreX, int centreY) {
    tagRECT clip = dst.rect();
    tagRECT srcRect = src.rect();
    iBltNear32_Add_KeySrc(dst.pixels(), dst.pitch(), src.pixels(), src.pitch(), &clip, &srcRect, centreX, centreY);
    return dst;
}

TEST(iBltNear32_Add_KeySrc, puts_the_middle_of_the_source_on_the_centre) {
    Surface src(4, 4);
    src.at(2, 2) = 0x010203;
    Surface expected(9, 9);
    expected.at(5, 6) = 0x010203;
    EXPECT_EQ(centredSum(Surface(9, 9), src, 5, 6).differenceFrom(expected), "");
}

TEST(iBltNear32_Add_KeySrc, half_a_truncated_diagonal_cuts_thin_and_tiny_sources_and_no_squarish_ones) {
    // Half of the root of 2 is no whole pixel, and half of the root of 50 is 3 and a half: columns 5 to 10 of 5 to 11.
    for (const auto &[width, height, shown] : {std::array{1, 1, 0}, {7, 1, 6}, {4, 4, 4}, {5, 4, 5}, {3, 3, 3}}) {
        const Surface src(width, height, 0x010101);
        const Surface expected =
            showing(Surface(16, 16), 8 - width / 2, 8 - height / 2, src, {0, 0, shown, shown ? height : 0});
        EXPECT_EQ(centredSum(Surface(16, 16), src, 8, 8).differenceFrom(expected), "") << width << " x " << height;
    }
}

TEST(iBltNear32_Add_KeySrc, leaves_out_exactly_the_pixels_that_are_0) {
    EXPECT_EQ(pixelsOf(centredSum(Surface(2, 2, 0xAA010203), pictureOf(2, {0, 0xFF000000, 0x00FFFFFF, 0}), 1, 1)),
              (Pixels{0xAA010203, 0x00010203, 0x00FFFFFF, 0xAA010203}));
}

#if Q_MUR_TESTS_X87
TEST(iBltNear32_Add_KeySrc, measures_the_diagonal_at_full_precision_and_leaves_the_unit_as_it_was) {
    // The diagonal of 5101 by 101 pixels is the root of 5102 * 5102 - 2: with 24 bits it would round up to 5102, and
    // the last column, 2550 right of the centre, would be drawn.
    Pixels row(5101, 0x010101);
    tagRECT srcRect = {0, 0, 5101, 101};
    for (const unsigned short word : {precision24Bits, precision53Bits, precision64Bits}) {
        Surface dst(4, 1);
        tagRECT clip = dst.rect();
        const X87ControlWord host(word);
        iBltNear32_Add_KeySrc(dst.pixels(), dst.pitch(), row.data(), 0, &clip, &srcRect, 2 - 2550, 0);
        EXPECT_EQ(X87ControlWord::current(), word);
        EXPECT_EQ(dst.at(1, 0), 0x010101u);
        EXPECT_EQ(dst.at(2, 0), 0u);
    }
}
#endif

} // namespace
