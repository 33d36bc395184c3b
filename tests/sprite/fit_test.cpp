#include "support/surface.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

namespace {

using test::Surface;
using Bytes = std::vector<unsigned char>;

constexpr int least = std::numeric_limits<int>::min();

unsigned char *bytesOf(Surface &surface) {
    return reinterpret_cast<unsigned char *>(surface.pixels());
}

TEST(FitOn32RAW_24RAW_Nearest, equal_sizes_copy_each_triple_to_a_pixel) {
    Surface dst(2, 2, 0xAAAAAAAA);
    Bytes src = {0x56, 0x34, 0x12, 0xFF, 0x00, 0x80, 1, 2, 3, 4, 5, 6};
    _FitOn32RAW_24RAW_Nearest(bytesOf(dst), 2, 2, dst.pitch() * 4, src.data(), 2, 2, 6);
    EXPECT_EQ(dst.at(0, 0), 0x123456u);
    EXPECT_EQ(dst.at(1, 0), 0x8000FFu);
    EXPECT_EQ(dst.at(0, 1), 0x030201u);
    EXPECT_EQ(dst.at(1, 1), 0x060504u);
    EXPECT_EQ(dst.at(2, 0), 0xAAAAAAAAu);
    EXPECT_EQ(dst.at(0, 2), 0xAAAAAAAAu);
}

TEST(FitOn32RAW_24RAW_Nearest, takes_the_pixel_at_or_left_of_and_above_the_position) {
    // 5 columns on 3: 54613 fraction units a step (163840 / 3), so columns 0, 1 (1.66) and 3 (3.33).
    Surface dst(3, 1);
    Bytes src;
    for (int i = 0; i < 15; ++i)
        src.push_back(static_cast<unsigned char>(i / 3));
    _FitOn32RAW_24RAW_Nearest(bytesOf(dst), 3, 1, dst.pitch() * 4, src.data(), 5, 1, 15);
    EXPECT_EQ(dst.at(0, 0), 0u);
    EXPECT_EQ(dst.at(1, 0), 0x010101u);
    EXPECT_EQ(dst.at(2, 0), 0x030303u);
}

TEST(FitOn32RAW_24RAW_Nearest, reads_three_bytes_of_the_last_pixel_and_no_more) {
    test::PageEndPixels src(3); // twelve bytes: a picture of 2 by 2
    unsigned char *const bytes = reinterpret_cast<unsigned char *>(src.data());
    for (int i = 0; i < 12; ++i)
        bytes[i] = static_cast<unsigned char>(i);
    Surface dst(4, 4);
    _FitOn32RAW_24RAW_Nearest(bytesOf(dst), 4, 4, dst.pitch() * 4, bytes, 2, 2, 6);
    EXPECT_EQ(dst.at(3, 3), 0x0B0A09u);
}

TEST(FitOn32RAW_24RAW_Nearest, pitches_count_bytes_and_need_not_be_whole_pixels) {
    Bytes dst(3 + 2 * 7, 0xAA);
    Bytes src = {1, 2, 3, 0, 4, 5, 6};
    _FitOn32RAW_24RAW_Nearest(dst.data() + 1, 1, 2, 7, src.data(), 1, 2, 4);
    EXPECT_EQ(dst, (Bytes{0xAA, 1, 2, 3, 0, 0xAA, 0xAA, 0xAA, 4, 5, 6, 0, 0xAA, 0xAA, 0xAA, 0xAA, 0xAA}));
}

TEST(FitOn32RAW_24RAW_Nearest, negative_pitches_turn_the_picture_over) {
    Bytes src = {1, 1, 1, 2, 2, 2};
    Surface dst(1, 2);
    _FitOn32RAW_24RAW_Nearest(bytesOf(dst), 1, 2, dst.pitch() * 4, src.data() + 3, 1, 2, -3);
    EXPECT_EQ(dst.at(0, 0), 0x020202u);
    EXPECT_EQ(dst.at(0, 1), 0x010101u);
}

TEST(FitOn32RAW_24RAW_Nearest, negative_sizes_write_nothing) {
    Bytes src(3);
    const Surface before(2, 2, 0xAAAAAAAA);
    for (const int width : {least, -1, 2})
        for (const int height : {least, -1, 2}) {
            if (width > 0 && height > 0)
                continue;
            Surface dst = before;
            // 65536 shifted by 15 is the least number, which 32 bits cannot divide by -1.
            _FitOn32RAW_24RAW_Nearest(bytesOf(dst), width, height, dst.pitch() * 4, src.data(), 65536, 65536, 3);
            EXPECT_EQ(dst.differenceFrom(before), "") << width << " by " << height;
        }
}

TEST(FitOn32RAW_24RAW_Nearest, a_source_of_65536_columns_is_walked_backwards) {
    // 65536 shifted by 15 is -2^31, a step of half of it leads 32768 columns to the left, and the third is there again.
    Bytes src(32768 * 3 + 3);
    src[0] = 1;
    src[32768 * 3] = 2;
    Surface dst(2, 1);
    _FitOn32RAW_24RAW_Nearest(bytesOf(dst), 2, 1, dst.pitch() * 4, src.data() + 32768 * 3, 65536, 1, 0);
    EXPECT_EQ(dst.at(0, 0), 2u);
    EXPECT_EQ(dst.at(1, 0), 1u);
}

} // namespace
