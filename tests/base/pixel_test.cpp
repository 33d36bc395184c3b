#include "base/pixel.h"

#include "base/alpha.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace {

using namespace qmur;

TEST(Pixel, bytes_are_blue_green_red_and_top) {
    EXPECT_EQ(blueOf(0x11223344), 0x44u);
    EXPECT_EQ(greenOf(0x11223344), 0x33u);
    EXPECT_EQ(redOf(0x11223344), 0x22u);
    EXPECT_EQ(topByteOf(0x11223344), 0x11u);
}

TEST(Pixel, is_made_of_unmasked_channels) {
    EXPECT_EQ(pixelOf(0x22, 0x33, 0x44), 0x223344u);
    EXPECT_EQ(pixelOf(0x1122, 0x33, 0x44), 0x11223344u);
    EXPECT_EQ(pixelOf(0, 0x133, 0x44), 0x013344u);
    EXPECT_EQ(upperHalfOf(0x11223344), 0x1122u);
    EXPECT_EQ(cappedAt255(255), 255u);
    EXPECT_EQ(cappedAt255(256), 255u);
    EXPECT_EQ(cappedAt255(254), 254u);
}

TEST(Pixel, is_treated_channel_by_channel) {
    const auto difference = [](q_ulong d, q_ulong s) { return d - s; };
    EXPECT_EQ(channelwise(difference, q_ulong{0x11223344}, q_ulong{0x55010203}), 0x213141u);
    EXPECT_EQ(upperHalfChannelwise(difference, q_ulong{0x11223344}, q_ulong{0x01010203}), 0x10213141u);
    EXPECT_EQ(channelwise([](q_ulong channel) { return channel / 2; }, q_ulong{0x11223344}), 0x111922u);
    EXPECT_EQ(upperHalfChannelwise([](q_ulong channel) { return channel + 1; }, q_ulong{0x11223344}), 0x11233445u);
}

TEST(Pixel, sums_saturate_in_each_channel_alone) {
    for (q_ulong a = 0; a < 256; ++a)
        for (q_ulong b = 0; b < 256; ++b) {
            const q_ulong sum = a + b > 255 ? 255 : a + b;
            ASSERT_EQ(saturatingAdd(a, b), sum);
            ASSERT_EQ(saturatingAdd(a << 8, b << 8), sum << 8);
            ASSERT_EQ(saturatingAdd(a << 16, b << 16), sum << 16);
            ASSERT_EQ(saturatingAdd(0xFFFF00FF | a << 8, 0xFFFF00FF | b << 8), 0xFF00FF | sum << 8);
            ASSERT_EQ(saturatingAdd(0x8000FF00 | a << 16 | b, 0x80000100 | b << 16 | a), 0xFF00 | sum << 16 | sum);
        }
}

TEST(Pixel, half_mixes_drop_the_lowest_bits_first) {
    for (q_ulong a = 0; a < 256; ++a)
        for (q_ulong b = 0; b < 256; ++b)
            ASSERT_EQ(halfMix(0xFF000000 | a << 16 | b << 8 | a, b << 16 | a << 8 | b), (a / 2 + b / 2) * 0x10101);
}

TEST(Pixel, blends_are_truncated_weighted_means) {
    for (q_ulong weight = 0; weight <= 256; ++weight)
        for (q_ulong a = 0; a < 256; a += 3)
            for (q_ulong b = 0; b < 256; b += 5) {
                const q_ulong mean = (a * (256 - weight) + b * weight) / 256;
                const q_ulong opposite = (b * (256 - weight) + a * weight) / 256;
                ASSERT_EQ(blend256(0xAA000000 | a << 16 | b << 8 | a, 256 - weight, 0x55000000 | b << 16 | a << 8 | b,
                                   weight),
                          mean << 16 | opposite << 8 | mean);
            }
}

TEST(Pixel, weights_out_of_range_leave_what_the_masks_leave) {
    for (int weight = -600; weight <= 900; ++weight) {
        const q_ulong d = 0x00C86496;
        const q_ulong s = 0x0064C80A;
        const auto product = [](q_ulong channel, int by) { return static_cast<std::int64_t>(channel) * by; };
        const std::int64_t red = product(d & 0xFF0000, 256 - weight) + product(s & 0xFF0000, weight);
        const std::int64_t green = product(d & 0xFF00, 256 - weight) + product(s & 0xFF00, weight);
        const std::int64_t blue = product(d & 0xFF, 256 - weight) + product(s & 0xFF, weight);
        const std::int64_t word = (red & 0xFF0000FF) | (green & 0xFF0000) | (blue & 0xFFFFFFFF);
        ASSERT_EQ(blend256(d, static_cast<q_ulong>(256 - weight), s, static_cast<q_ulong>(weight)),
                  static_cast<q_ulong>(word / 256));
    }
}

TEST(AlphaWeights, count_truncated_256ths_and_are_not_clamped) {
    EXPECT_EQ(alphaWeights(0.0F).src, 0u);
    EXPECT_EQ(alphaWeights(0.0F).dst, 256u);
    EXPECT_EQ(alphaWeights(1.0F).src, 256u);
    EXPECT_EQ(alphaWeights(1.0F).dst, 0u);
    EXPECT_EQ(alphaWeights(0.4999F).src, 127u);
    EXPECT_EQ(alphaWeights(2.0F).src, 512u);
    EXPECT_EQ(alphaWeights(2.0F).dst, static_cast<q_ulong>(-256));
    EXPECT_EQ(alphaWeights(-0.5039F).src, static_cast<q_ulong>(-128));
    EXPECT_EQ(alphaWeights(-0.5039F).dst, 384u);
}

} // namespace
