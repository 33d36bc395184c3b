#include "base/channels.h"
#include "support/random.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using namespace qmur;

TEST(PixelBlend, of_every_pair_of_bytes_under_every_weight_is_the_truncated_mean) {
    for (q_ulong src = 0; src <= 256; ++src) {
        const PixelBlend blend({src, 256 - src});
        for (q_ulong d = 0; d < 256; ++d)
            for (q_ulong s = 0; s < 256; ++s) {
                const q_ulong mean = (d * (256 - src) + s * src) / 256;
                ASSERT_EQ(blend(d * 0x1010101, s * 0x1010101), mean * 0x10101) << d << ", " << s << " by " << src;
            }
    }
}

TEST(PixelBlend, keeps_channels_to_themselves) {
    test::Random random(1);
    for (int i = 0; i < 20000; ++i) {
        const q_ulong d = random.pixel();
        const q_ulong s = random.pixel();
        const auto src = static_cast<q_ulong>(random.between(0, 256));
        q_ulong expected = 0;
        for (int shift = 0; shift < 24; shift += 8)
            expected |= ((d >> shift & 0xFF) * (256 - src) + (s >> shift & 0xFF) * src) / 256 << shift;
        ASSERT_EQ(PixelBlend({src, 256 - src})(d, s), expected);
    }
}

TEST(SaturatingBytes, adds_every_byte_by_itself) {
    test::Random random(2);
    for (int i = 0; i < 20000; ++i) {
        const q_ulong d = random.pixel();
        const q_ulong s = random.pixel();
        q_ulong expected = 0;
        for (int shift = 0; shift < 32; shift += 8)
            expected |= std::min<q_ulong>((d >> shift & 0xFF) + (s >> shift & 0xFF), 255) << shift;
        ASSERT_EQ(saturatingBytes(d, s), expected);
    }
}

} // namespace
