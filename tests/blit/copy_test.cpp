#include "blits.h"

namespace {

using namespace test;

TEST(iBltFast32, rows_of_a_source_without_a_margin_go_to_rows_with_one) {
    Pixels src = pixelsOf(numbered(4, 5));
    Surface dst(4, 5);
    tagRECT rect = dst.rect();
    iBltFast32(dst.pixels(), src.data(), 0, 0, &rect, dst.pitch(), 4);
    EXPECT_EQ(dst.differenceFrom(numbered(4, 5)), "");
}

TEST(iBltFast32_Advanced, starting_left_of_the_surface_leaves_out_source_columns) {
    Surface dst(8, 1, 0xAAAAAAAA);
    Surface src = numbered(8, 1);
    place(iBltFast32_Advanced, dst, -5, 0, src, src.rect(), 8, 1);
    EXPECT_EQ(dst.differenceFrom(showing(Surface(8, 1, 0xAAAAAAAA), 0, 0, src, {5, 0, 8, 1})), "");
}

} // namespace
