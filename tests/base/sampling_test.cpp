#include "base/sampling.h"

#include <gtest/gtest.h>

namespace {

using namespace qmur;

/// Four taps of one channel's byte each, 256 times their weighted mean.
q_ulong sumOf(const q_ulong (&taps)[4], q_ulong fx, q_ulong fy) {
    return taps[0] * (16 - fx) * (16 - fy) + taps[1] * fx * (16 - fy) + taps[2] * (16 - fx) * fy + taps[3] * fx * fy;
}

TEST(Sampling, four_taps_weigh_each_channel_alone) {
    const q_ulong red[4] = {255, 0, 17, 200};
    const q_ulong green[4] = {255, 255, 254, 255};
    const q_ulong blue[4] = {1, 255, 128, 77};
    q_ulong taps[4];
    for (int i = 0; i < 4; ++i)
        taps[i] = 0xEE000000 | red[i] << 16 | green[i] << 8 | blue[i];
    for (q_ulong fy = 0; fy < 16; ++fy)
        for (q_ulong fx = 0; fx < 16; ++fx) {
            const ChannelSums sums = fourTaps(taps, taps + 2, fx, fy);
            ASSERT_EQ(sums.redSum(), sumOf(red, fx, fy));
            ASSERT_EQ(sums.greenSum(), sumOf(green, fx, fy));
            ASSERT_EQ(sums.blueSum(), sumOf(blue, fx, fy));
            ASSERT_EQ(sums.pixel(),
                      (sumOf(red, fx, fy) / 256) << 16 | (sumOf(green, fx, fy) / 256) << 8 | sumOf(blue, fx, fy) / 256);
        }
}

TEST(Sampling, two_taps_are_four_of_one_column) {
    for (q_ulong fy = 0; fy < 16; ++fy)
        for (q_ulong fx = 0; fx < 16; ++fx) {
            const q_ulong upper[2] = {0x12FF34AB, 0x12FF34AB};
            const q_ulong lower[2] = {0xFF00FFFF, 0xFF00FFFF};
            ASSERT_EQ(twoTaps(upper[0], lower[0], fy).pixel(), fourTaps(upper, lower, fx, fy).pixel());
        }
}

} // namespace
