#include "support/pictures.h"

namespace {

using namespace test;
using Bytes = std::vector<unsigned char>;

/// The pixels of a size that a source of another size gives.
Pixels fitted(int width, int height, Bytes src, int srcWidth, int srcHeight) {
    Pixels dst(static_cast<std::size_t>(width * height));
    _FitOn32RAW_24RAW_Nearest(reinterpret_cast<unsigned char *>(dst.data()), width, height, width * 4, src.data(),
                              srcWidth, srcHeight, srcWidth * 3);
    return dst;
}

TEST(FitOn32RAW_24RAW_Nearest, equal_sizes_copy_each_triple_and_others_the_one_at_or_left_of_and_above_the_position) {
    EXPECT_EQ(fitted(2, 2, {0x56, 0x34, 0x12, 0xFF, 0x00, 0x80, 1, 2, 3, 4, 5, 6}, 2, 2),
              (Pixels{0x123456, 0x8000FF, 0x030201, 0x060504}));
    // 5 columns on 3: 54613 fraction units a step (163840 / 3), so columns 0, 1 (1.66) and 3 (3.33).
    EXPECT_EQ(fitted(3, 1, {0, 0, 0, 1, 1, 1, 2, 2, 2, 3, 3, 3, 4, 4, 4}, 5, 1), (Pixels{0, 0x010101, 0x030303}));
}

TEST(FitOn32RAW_24RAW_Nearest, pitches_count_bytes_and_may_be_negative) {
    Bytes dst(3 + 2 * 7, 0xAA);
    Bytes src = {1, 2, 3, 0, 4, 5, 6};
    _FitOn32RAW_24RAW_Nearest(dst.data() + 1, 1, 2, 7, src.data(), 1, 2, 4);
    EXPECT_EQ(dst, (Bytes{0xAA, 1, 2, 3, 0, 0xAA, 0xAA, 0xAA, 4, 5, 6, 0, 0xAA, 0xAA, 0xAA, 0xAA, 0xAA}));
    _FitOn32RAW_24RAW_Nearest(dst.data() + 1, 1, 2, 7, src.data() + 4, 1, 2, -4); // turned over
    EXPECT_EQ(dst, (Bytes{0xAA, 4, 5, 6, 0, 0xAA, 0xAA, 0xAA, 1, 2, 3, 0, 0xAA, 0xAA, 0xAA, 0xAA, 0xAA}));
}

TEST(FitOn32RAW_24RAW_Nearest, negative_sizes_write_nothing) {
    unsigned char src[3] = {};
    Pixels dst(4, 0xAAAAAAAA);
    for (const auto &[width, height] :
         {std::pair{leastInt, 2}, {2, leastInt}, {-1, 2}, {2, -1}, {leastInt, leastInt}, {-1, -1}})
        // 65536 shifted by 15 is the least number, which 32 bits cannot divide by -1.
        _FitOn32RAW_24RAW_Nearest(reinterpret_cast<unsigned char *>(dst.data()), width, height, 8, src, 65536, 65536,
                                  3);
    EXPECT_EQ(dst, Pixels(4, 0xAAAAAAAA));
}

TEST(FitOn32RAW_24RAW_Nearest, rows_without_columns_are_not_looked_for) {
    Bytes dst(4, 0xAA), src(3, 1); // 2^16 rows, 2^47 bytes: sanitizers see where a row is looked for
    _FitOn32RAW_24RAW_Nearest(dst.data(), -1, 1 << 16, leastInt, src.data(), 1, 1, leastInt);
    EXPECT_EQ(dst, Bytes(4, 0xAA));
}

TEST(FitOn32RAW_24RAW_Nearest, a_source_of_65536_columns_is_walked_backwards) {
    // 65536 shifted by 15 is -2^31, a step of half of it leads 32768 columns to the left, and the third is there again.
    Bytes src(32768 * 3 + 3);
    src[0] = 1;
    src[32768 * 3] = 2;
    Pixels dst(2);
    _FitOn32RAW_24RAW_Nearest(reinterpret_cast<unsigned char *>(dst.data()), 2, 1, 8, src.data() + 32768 * 3, 65536, 1,
                              0);
    EXPECT_EQ(dst, (Pixels{2, 1}));
}

} // namespace
