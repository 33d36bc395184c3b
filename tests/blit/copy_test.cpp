#include "blits.h"

namespace {

using namespace test;

TEST(iBltFast32, copies_all_32_bits) {
    Surface dst(2, 1, 0x11111111);
    Surface src = rowOf({0xFF123456, 0x80000000});
    place(iBltFast32, dst, 0, 0, src, src.rect());
    EXPECT_EQ(pixelsOf(dst), (Pixels{0xFF123456, 0x80000000}));
}

TEST(iBltFast32, pictures_without_a_margin_are_copied_in_row_and_column_order_too) {
    // Pitches equal to the width: the rows follow each other without a gap, and so do the source's and their copies.
    for (int distance = -13; distance <= 13; ++distance) {
        Pixels pixels = pixelsOf(numbered(46, 1));
        Pixels expected = pixels;
        for (int i = 0; i < 20; ++i)
            expected[static_cast<std::size_t>(13 + distance + i)] = expected[static_cast<std::size_t>(13 + i)];
        tagRECT rect = {0, 0, 4, 5};
        iBltFast32(pixels.data() + 13 + distance, pixels.data() + 13, 0, 0, &rect, 4, 4);
        EXPECT_EQ(pixels, expected) << distance;
    }
}

TEST(PlacedBlits, positions_and_pitches_below_0_mean_what_they_say) {
    const auto expectTurned = [](auto blit, auto... more) {
        Surface src = numbered(3, 2);
        Surface dst(6, 4);
        const Surface expected = showing(showing(dst, 1, 3, src, {0, 0, 3, 1}), 1, 2, src, {0, 1, 3, 2});
        tagRECT rect = src.rect();
        blit(&dst.at(4, 2), src.pixels(), unsignedOf(-3), unsignedOf(-1), &rect, unsignedOf(-dst.pitch()), pitchOf(src),
             more...);
        EXPECT_EQ(dst.differenceFrom(expected), "");
    };
    expectTurned(
        [](q_ulong *dst, q_ulong *src, q_ulong x, q_ulong y, tagRECT *rect, q_ulong dstPitch, q_ulong srcPitch) {
            iBltFast32(dst, src, x, y, rect, static_cast<int>(dstPitch), static_cast<int>(srcPitch));
        });
    expectTurned(PlacedAdd{iBltFast32_Add});
    expectTurned(iBltFast32_KeySrc, q_ulong{0});
    expectTurned(iBltFast32_KeySrc_Add, q_ulong{0});
}

TEST(iBltFast32_Advanced, starting_left_of_the_surface_leaves_out_source_columns) {
    Surface dst(8, 1, 0xAAAAAAAA);
    Surface src = numbered(8, 1);
    place(iBltFast32_Advanced, dst, -5, 0, src, src.rect(), 8, 1);
    EXPECT_EQ(dst.differenceFrom(showing(Surface(8, 1, 0xAAAAAAAA), 0, 0, src, {5, 0, 8, 1})), "");
}

} // namespace
