#include "base/channels.h"
#include "base/sampling.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using namespace qmur;

TEST(Pixel, is_taken_apart_and_made_of_unmasked_channels) {
    EXPECT_EQ(upperHalfOf(0x11223344), 0x1122u);
    EXPECT_EQ(topByteOf(0x11223344), 0x11u);
    EXPECT_EQ(pixelOf(0x1122, 0x33, 0x44), 0x11223344u);
    EXPECT_EQ(pixelOf(0, 0x133, 0x44), 0x013344u);
    const auto difference = [](q_ulong d, q_ulong s) { return d - s; };
    EXPECT_EQ(channelwise(difference, q_ulong{0x11223344}, q_ulong{0x55010203}), 0x213141u);
    EXPECT_EQ(upperHalfChannelwise(difference, q_ulong{0x11223344}, q_ulong{0x01010203}), 0x10213141u);
}

TEST(Pixel, sums_mixes_and_blends_of_every_pair_of_bytes_keep_to_their_channels) {
    for (q_ulong a = 0; a < 256; ++a)
        for (q_ulong b = 0; b < 256; ++b) {
            const q_ulong d = 0xAA000000 | a << 16 | b << 8 | a;
            const q_ulong s = 0x55000000 | b << 16 | a << 8 | b;
            const q_ulong sum = std::min<q_ulong>(a + b, 255);
            ASSERT_EQ(saturatingAdd(d, s), sum * 0x10101);
            ASSERT_EQ(saturatingAdd(d, 0xFFFF00), 0xFFFF00 | a);
            ASSERT_EQ(saturatingAdd(a << 8, b << 8), sum << 8);
            ASSERT_EQ(saturatingBytes(d, s), 0xFF000000 | sum * 0x10101);
            ASSERT_EQ(saturatingBytes(a << 16 | b, b << 16), sum << 16 | b);
            ASSERT_EQ(halfMix(d, s), (a / 2 + b / 2) * 0x10101);
            for (const q_ulong weight : {0u, 1u, 77u, 128u, 255u, 256u}) {
                const q_ulong mean = (a * (256 - weight) + b * weight) / 256;
                const q_ulong opposite = (b * (256 - weight) + a * weight) / 256;
                ASSERT_EQ(blend256(d, 256 - weight, s, weight), mean << 16 | opposite << 8 | mean) << weight;
                ASSERT_EQ(PixelBlend({weight, 256 - weight})(d, s), mean << 16 | opposite << 8 | mean) << weight;
            }
        }
}

TEST(AlphaWeights, count_truncated_256ths_and_are_not_clamped) {
    for (const auto &[alpha, weight] :
         {std::pair{0.0F, 0}, {1.0F, 256}, {0.4999F, 127}, {2.0F, 512}, {-1.0F, -256}, {-0.5039F, -128}}) {
        EXPECT_EQ(alphaWeights(alpha).src, static_cast<q_ulong>(weight)) << alpha;
        EXPECT_EQ(alphaWeights(alpha).dst, static_cast<q_ulong>(256 - weight)) << alpha;
    }
}

TEST(Sampling, four_taps_weigh_each_channel_alone_and_two_are_four_of_one_column) {
    constexpr q_ulong taps[4] = {0xEEFFFF01, 0xEE00FFFF, 0xEE11FE80, 0xEEC8FF4D};
    constexpr q_ulong upper[2] = {taps[0], taps[0]};
    constexpr q_ulong lower[2] = {taps[3], taps[3]};
    for (q_ulong fy = 0; fy < 16; ++fy)
        for (q_ulong fx = 0; fx < 16; ++fx) {
            const auto sumOf = [=](int shift) { // 256 times the weighted mean of a channel
                const auto tap = [=](int i) { return taps[i] >> shift & 0xFF; };
                return tap(0) * (16 - fx) * (16 - fy) + tap(1) * fx * (16 - fy) + tap(2) * (16 - fx) * fy +
                       tap(3) * fx * fy;
            };
            const ChannelSums sums = fourTaps(taps, taps + 2, fx, fy);
            ASSERT_EQ(sums.redSum(), sumOf(16));
            ASSERT_EQ(sums.greenSum(), sumOf(8));
            ASSERT_EQ(sums.blueSum(), sumOf(0));
            ASSERT_EQ(sums.pixel(), (sumOf(16) / 256) << 16 | (sumOf(8) / 256) << 8 | sumOf(0) / 256);
            ASSERT_EQ(twoTaps(taps[0], taps[3], fy).pixel(), fourTaps(upper, lower, fx, fy).pixel());
        }
}

} // namespace
