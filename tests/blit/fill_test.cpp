#include "support/pictures.h"

#include <climits>
#include <limits>

namespace {

using namespace test;

TEST(iFillRect, an_empty_rectangle_keeps_all_pixels_and_so_does_a_faded_one) {
    const Surface before(4, 4, 0xAABBCCDD);
    for (const tagRECT empty :
         {tagRECT{1, 1, 1, 3}, {1, 1, 3, 1}, {3, 1, 1, 3}, {1, 3, 3, 1}, {greatestInt, 0, 0, 4}}) {
        Surface dst = before;
        tagRECT rect = empty;
        iFillRect(dst.pixels(), &rect, dst.pitch(), 0xFE112233);
        iFadeOut32(dst.pixels(), &rect, dst.pitch(), 0.0F);
        iFadeOut32(dst.pixels(), &rect, dst.pitch(), 0.5F);
        EXPECT_EQ(dst.differenceFrom(before), "");
    }
}

q_ulong fadedOnce(q_ulong pixel, float factor) {
    tagRECT one = {0, 0, 1, 1};
    iFadeOut32(&pixel, &one, 1, factor);
    return pixel;
}

TEST(iFadeOut32, factors_that_truncate_to_0_are_a_gentle_step_and_no_clear) {
    using Limits = std::numeric_limits<float>;
    for (const float factor : {0.0F, 0.00390F, -0.00390F, -0.0F, 1e-30F, 1e30F, -1e30F, Limits::infinity(),
                               -Limits::infinity(), Limits::quiet_NaN()})
        for (q_ulong c = 0; c < 256; ++c)
            ASSERT_EQ(fadedOnce(0xFF000000 | c * 0x10101, factor), c / 16 * 15 * 0x10101) << factor;
    EXPECT_EQ(fadedOnce(0xFFFFFFFF, 0.0F), 0x00E1E1E1u); // 15 * 15 is 225
    EXPECT_EQ(fadedOnce(0xFFFFFFFF, 1.0F / 256), 0u);    // 255 / 256
}

TEST(iFadeOut32, factor_1_keeps_the_colours_one_half_halves_them_and_2_wraps_drops_and_spills) {
    EXPECT_EQ(fadedOnce(0xFF123456, 1.0F), 0x00123456u);
    EXPECT_EQ(fadedOnce(0x80FFFFFF, 1.0F), 0x00FFFFFFu);
    EXPECT_EQ(fadedOnce(0x00FF0301, 0.5F), 0x007F0100u);
    // Scale 512: red 0xC0 << 25 keeps one bit of its two, green 0x80 << 17 stands above green's mask, and blue
    // 0xC0 << 9 is 0x18000, which the shift makes 0x180.
    EXPECT_EQ(fadedOnce(0x00C080C0, 2.0F), 0x00800180u);
}

} // namespace
