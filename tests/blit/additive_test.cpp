#include "frame/x87.h"
#include "pictures.h"

#include <functional>

namespace {

using test::numbered;
using test::pictureOf;
using test::pitchOf;
using test::Pixels;
using test::pixelsOf;
using test::rowOf;
using test::showing;
using test::Surface;
using test::unsignedOf;

using Byte = unsigned char;

struct Scales {
    Byte red;
    Byte green;
    Byte blue;
};
constexpr Scales brightest = {255, 255, 255};

// The adds of a source rectangle to one of the destination, whose size does not count in the unscaled ones.

using Add = std::function<void(Surface &dst, tagRECT dstRect, Surface &src, tagRECT srcRect)>;

void fastAdd(Surface &dst, tagRECT dstRect, Surface &src, tagRECT srcRect) {
    iBltFast32_Add(dst.pixels(), src.pixels(), static_cast<q_ulong>(dstRect.left), static_cast<q_ulong>(dstRect.top),
                   &srcRect, pitchOf(dst), pitchOf(src));
}

Add fastAddScaled(Scales scales) {
    return [scales](Surface &dst, tagRECT dstRect, Surface &src, tagRECT srcRect) {
        iBltFast32_Add(dst.pixels(), src.pixels(), static_cast<q_ulong>(dstRect.left),
                       static_cast<q_ulong>(dstRect.top), &srcRect, pitchOf(dst), pitchOf(src), scales.red,
                       scales.green, scales.blue);
    };
}

void nearAdd(Surface &dst, tagRECT dstRect, Surface &src, tagRECT srcRect) {
    iBltNear32_Add(dst.pixels(), src.pixels(), &dstRect, &srcRect, pitchOf(dst), pitchOf(src));
}

Add nearAddScaled(Scales scales) {
    return [scales](Surface &dst, tagRECT dstRect, Surface &src, tagRECT srcRect) {
        iBltNear32_Add(dst.pixels(), src.pixels(), &dstRect, &srcRect, pitchOf(dst), pitchOf(src), scales.red,
                       scales.green, scales.blue);
    };
}

void bilinearAdd(Surface &dst, tagRECT dstRect, Surface &src, tagRECT srcRect) {
    iBltBilinear32_Add(dst.pixels(), src.pixels(), &dstRect, &srcRect, pitchOf(dst), pitchOf(src));
}

Add bilinearAddScaled(Scales scales) {
    return [scales](Surface &dst, tagRECT dstRect, Surface &src, tagRECT srcRect) {
        iBltBilinear32_Add(dst.pixels(), src.pixels(), &dstRect, &srcRect, pitchOf(dst), pitchOf(src), scales.red,
                           scales.green, scales.blue);
    };
}

/// Clipped to the destination's picture.
void safeKeyAdd(Surface &dst, tagRECT dstRect, Surface &src, tagRECT srcRect) {
    iBltNear32SafeKeySrcAdd(dst.pixels(), src.pixels(), &dstRect, &srcRect, dst.pitch(), src.pitch(), dst.width(),
                            dst.height());
}

/// The source over the whole of a destination.
Pixels sum(Surface dst, Surface src, const Add &add) {
    add(dst, dst.rect(), src, src.rect());
    return pixelsOf(dst);
}

q_ulong sum(q_ulong d, q_ulong s, const Add &add) {
    return sum(Surface(1, 1, d), Surface(1, 1, s), add)[0];
}

TEST(iBltFast32_Add, caps_200_on_100_at_255_in_every_channel) {
    for (int shift = 0; shift < 24; shift += 8)
        EXPECT_EQ(sum(q_ulong{100} << shift, q_ulong{200} << shift, fastAdd), q_ulong{255} << shift);
    EXPECT_EQ(sum(0xFF000000, 0xFF000000, fastAdd), 0u);
}

TEST(iBltFast32_Add, negative_coordinates_and_pitches_pass_as_unsigned_numbers) {
    Surface dst(4, 4, 0x010101);
    Surface src = pictureOf(2, {0x020202, 0x020202, 0x050505, 0x020202});
    tagRECT rect = src.rect();
    iBltFast32_Add(&dst.at(2, 3), &src.at(0, 1), unsignedOf(-2), 0, &rect, unsignedOf(-dst.pitch()),
                   unsignedOf(-src.pitch()));
    EXPECT_EQ(pixelsOf(dst), (Pixels{0x010101, 0x010101, 0x010101, 0x010101, 0x010101, 0x010101, 0x010101, 0x010101,
                                     0x030303, 0x030303, 0x010101, 0x010101, 0x060606, 0x030303, 0x010101, 0x010101}));
}

TEST(iBltFast32_Add_scaled, red_and_green_wrap_and_blue_is_capped) {
    for (const Add &add : {fastAddScaled(brightest), nearAddScaled(brightest)}) {
        EXPECT_EQ(sum(0x640000, 0xC80000, add), 0x2B0000u); // 200 becomes 199, and 299 wraps to 43
        EXPECT_EQ(sum(0x006400, 0x00C800, add), 0x002B00u);
        EXPECT_EQ(sum(0x000064, 0x0000C8, add), 0x0000FFu);
    }
}

TEST(iBltFast32_Add_scaled, a_scale_of_255_leaves_a_channel_slightly_below_its_value) {
    EXPECT_EQ(sum(0, 0xFF01FF, fastAddScaled(brightest)), 0xFE00FEu);
    EXPECT_EQ(sum(0, 0xFFFFFF, fastAddScaled({0, 0, 0})), 0u);
}

TEST(iBltFast32_Add_scaled, every_value_under_every_scale_is_the_truncated_product) {
    for (unsigned scale = 0; scale < 256; ++scale) {
        const auto byte = static_cast<Byte>(scale);
        Pixels values, products;
        for (unsigned value = 0; value < 256; ++value) {
            values.push_back(value * 0x10101);
            products.push_back(value * scale / 256 * 0x10101);
        }
        ASSERT_EQ(sum(Surface(256, 1), rowOf(values), fastAddScaled({byte, byte, byte})), products) << scale;
    }
}

TEST(iBltNear32_Add, a_carry_of_blue_sets_the_lowest_bit_of_green) {
    EXPECT_EQ(sum(0x000064, 0x0000C8, nearAdd), 0x00012Cu); // 300 is 256 + 44
    EXPECT_EQ(sum(0x000164, 0x0000C8, nearAdd), 0x00012Cu); // or-ed, not added
    EXPECT_EQ(sum(0x00FE64, 0x0000C8, nearAdd), 0x00FF2Cu);
    EXPECT_EQ(sum(0xC8C8FF, 0xC8C8FF, nearAdd), 0xFFFFFEu); // 510 is the largest sum
}

TEST(iBltNear32_Add, positions_reach_to_65535_columns_and_unsigned_ones_twice_as_far) {
    EXPECT_EQ(sum(Surface(3, 1), numbered(60000, 1), nearAdd), (Pixels{1, 20001, 40001}));
    // Of 75001, 0x0124F9, 255 / 256 are 0x0023F8.
    EXPECT_EQ(sum(Surface(4, 1), numbered(100000, 1), nearAddScaled(brightest))[3], 0x0023F8u);
    EXPECT_EQ(sum(Surface(4, 1), numbered(100000, 1), bilinearAddScaled(brightest))[3], 0x0023F8u);
}

/// Every value of every tap under all 256 pairs of fractions. The source is two by two pixels and enlarged by 16, so
/// that its upper left quarter has both fractions.
void compareAllWeights(const Add &add, unsigned scaleRed, unsigned scaleGreen, unsigned scaleBlue) {
    for (unsigned tap = 0; tap < 4; ++tap)
        for (unsigned value = 0; value < 256; ++value) {
            Surface src(2, 2);
            src.at(tap % 2, static_cast<int>(tap / 2)) = 0x77000000 | value << 16 | (255 - value) << 8 | value;
            const Pixels pixels = sum(Surface(32, 32, 0x99000000), src, add);
            for (unsigned y = 0; y < 16; ++y)
                for (unsigned x = 0; x < 16; ++x) {
                    const unsigned weight = (tap % 2 ? x : 16 - x) * (tap / 2 ? y : 16 - y);
                    ASSERT_EQ(pixels[y * 32 + x], value * weight * scaleRed / 65536 << 16 |
                                                      (255 - value) * weight * scaleGreen / 65536 << 8 |
                                                      value * weight * scaleBlue / 65536)
                        << x << ", " << y << " of tap " << tap << " with value " << value;
                }
        }
}

TEST(iBltBilinear32_Add, every_value_under_every_weight_of_each_tap_is_the_truncated_product) {
    compareAllWeights(bilinearAdd, 256, 256, 256);
    for (const Scales scales : {brightest, {128, 1, 77}, {0, 254, 3}})
        compareAllWeights(bilinearAddScaled(scales), scales.red, scales.green, scales.blue);
}

TEST(iBltBilinear32_Add, the_last_column_and_row_stand_in_for_what_lies_behind_them) {
    EXPECT_EQ(sum(Surface(4, 4), pictureOf(2, {0x10, 0x20, 0x30, 0x40}), bilinearAdd),
              (Pixels{0x10, 0x18, 0x20, 0x20, 0x20, 0x28, 0x30, 0x30, 0x30, 0x38, 0x40, 0x40, 0x30, 0x38, 0x40, 0x40}));
}

TEST(iBltBilinear32_Add_scaled, all_channels_are_capped) {
    EXPECT_EQ(sum(0x646464, 0xC8C8C8, bilinearAddScaled(brightest)), 0xFFFFFFu);
    EXPECT_EQ(sum(0x010101, 0xFFFFFF, bilinearAddScaled(brightest)), 0xFFFFFFu); // 254 + 1
}

TEST(ScaledAdds, an_empty_source_or_destination_writes_nothing) {
    test::Random random(1);
    Surface src = Surface::randomOfSize(random, 8, 8);
    const Surface untouched = Surface::randomOfSize(random, 8, 8);
    const auto writesNothing = [&](const Add &add, const tagRECT &dstRect, const tagRECT &srcRect) {
        Surface dst = untouched;
        add(dst, dstRect, src, srcRect);
        EXPECT_EQ(dst.differenceFrom(untouched), "");
    };
    const tagRECT drawn = {1, 1, 6, 7};
    const tagRECT withoutExtent[] = {{3, 2, 3, 5}, {3, 2, 5, 2}, {5, 2, 5, 1}, {5, 2, 3, 2}, {4, 4, 4, 4}};
    const tagRECT insideOut[] = {{5, 2, 3, 5}, {3, 5, 5, 2}, {5, 5, 3, 2}};
    const Add adds[] = {nearAddScaled(brightest), bilinearAdd, bilinearAddScaled(brightest), nearAdd, safeKeyAdd};
    for (const Add &add : adds) {
        for (const tagRECT &empty : withoutExtent) {
            writesNothing(add, drawn, empty);
            writesNothing(add, empty, drawn);
        }
        for (const tagRECT &empty : insideOut)
            writesNothing(add, empty, drawn);
    }
    for (const Add &add : {adds[0], adds[1], adds[2]}) // the other two walk such a source to the left or up
        for (const tagRECT &empty : insideOut)
            writesNothing(add, drawn, empty);
}

TEST(iBltNear32_Add, a_source_turned_inside_out_is_walked_to_the_left_or_up) {
    for (const Add &add : {Add(nearAdd), Add(safeKeyAdd)}) {
        Surface src = numbered(6, 1);
        src.at(-1, 0) = 0x70;
        const auto drawn = [&](int width, int height, Surface &from, tagRECT srcRect) {
            Surface dst(width, height);
            add(dst, dst.rect(), from, srcRect);
            return pixelsOf(dst);
        };
        // A step of -4 / 4: from column 5, the sixth pixel, to the left.
        EXPECT_EQ(drawn(4, 1, src, {5, 0, 1, 1}), (Pixels{6, 5, 4, 3}));
        // A step of -4 / 2.
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

TEST(iBltFast32_KeySrc_Add, leaves_out_exactly_the_pixels_that_are_0_whatever_the_key) {
    for (const q_ulong key : {0u, 0x112233u, 0xFF00FFu, 0xFFFFFFFFu}) {
        Surface dst(4, 1, 0xAA010203);
        Surface src = rowOf({0, 0x112233, 0xFF000000, 0xFF00FF});
        tagRECT rect = src.rect();
        iBltFast32_KeySrc_Add(dst.pixels(), src.pixels(), 0, 0, &rect, dst.pitch(), src.pitch(), key);
        // Black with a top byte is no 0: the destination's top byte goes.
        EXPECT_EQ(pixelsOf(dst), (Pixels{0xAA010203, 0x00122436, 0x00010203, 0x00FF02FF}));
    }
}

TEST(iBltNear32SafeKeySrcAdd, leaves_out_exactly_the_pixels_that_are_0) {
    EXPECT_EQ(sum(0xAA010203, 0, safeKeyAdd), 0xAA010203u);
    EXPECT_EQ(sum(0xAA010203, 0x01000000, safeKeyAdd), 0x00010203u);
    EXPECT_EQ(sum(0xAA646464, 0x00C8C800, safeKeyAdd), 0x00FFFF64u);
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

TEST(iBltNear32_Add_KeySrc, draws_a_squarish_source_whole) {
    for (const auto &[width, height] : {std::pair{4, 4}, {5, 5}, {5, 4}, {4, 5}, {3, 3}}) {
        const Surface src(width, height, 0x010101);
        const Surface expected = showing(Surface(16, 16), 8 - width / 2, 8 - height / 2, src, src.rect());
        EXPECT_EQ(centredSum(Surface(16, 16), src, 8, 8).differenceFrom(expected), "") << width << " x " << height;
    }
}

TEST(iBltNear32_Add_KeySrc, half_a_truncated_diagonal_cuts_thin_and_tiny_sources) {
    const Surface one(1, 1, 0x010101); // half of the root of 2 is no whole pixel
    EXPECT_EQ(centredSum(Surface(16, 16), one, 8, 8).differenceFrom(Surface(16, 16)), "");

    const Surface thin(7, 1, 0x010101); // half of the root of 50 is 3 and a half: columns 5 to 10 of 5 to 11
    const Surface expected = showing(Surface(16, 16), 5, 8, thin, {0, 0, 6, 1});
    EXPECT_EQ(centredSum(Surface(16, 16), thin, 8, 8).differenceFrom(expected), "");
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
    for (const unsigned short word : {test::precision24Bits, test::precision53Bits, test::precision64Bits}) {
        Surface dst(4, 1);
        tagRECT clip = dst.rect();
        const test::X87ControlWord host(word);
        iBltNear32_Add_KeySrc(dst.pixels(), dst.pitch(), row.data(), 0, &clip, &srcRect, 2 - 2550, 0);
        EXPECT_EQ(test::X87ControlWord::current(), word);
        EXPECT_EQ(dst.at(1, 0), 0x010101u);
        EXPECT_EQ(dst.at(2, 0), 0u);
    }
}
#endif

} // namespace
