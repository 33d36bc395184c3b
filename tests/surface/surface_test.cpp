#define Q_MUR_SURFACE_CHECKED 1
#include <q_Mur/surface.hpp>

#include "catalogue/random.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <limits>
#include <type_traits>
#include <utility>
#include <vector>

namespace {

using q_Mur::ConstView;
using q_Mur::Rect;
using q_Mur::Surface;
using q_Mur::View;

Surface randomPicture(catalogue::Random &random, int width, int height) {
    Surface picture(width, height);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            picture.at(x, y) = random.word();
    return picture;
}

TEST(surface, rectangles_are_values) {
    constexpr Rect rect = Rect::sized(2, 3, 10, 20);
    static_assert(rect == Rect{2, 3, 12, 23});
    static_assert(rect.width() == 10 && rect.height() == 20 && !rect.isEmpty());
    static_assert(rect.moved(-2, 1) == Rect{0, 4, 10, 24});
    static_assert(rect.inside({0, 0, 5, 5}) == Rect{2, 3, 5, 5});
    static_assert(rect.holds({2, 3, 12, 23}) && !rect.holds({1, 3, 12, 23}) && rect.holds({90, 90, 90, 99}));
}

TEST(surface, what_is_read_may_be_constant_and_what_is_drawn_may_not) {
    static_assert(std::is_convertible_v<View, ConstView> && !std::is_convertible_v<ConstView, View>);
    static_assert(std::is_convertible_v<const Surface &, ConstView> && !std::is_convertible_v<const Surface &, View>);
    static_assert(std::is_convertible_v<Surface &, View>);
}

TEST(surface, parts_share_the_pixels_of_the_whole) {
    Surface surface(8, 6);
    const View part = surface.part({2, 1, 7, 5});
    q_Mur::fill(part, 0x112233);
    for (int y = 0; y < 6; ++y)
        for (int x = 0; x < 8; ++x)
            EXPECT_EQ(surface.at(x, y), x >= 2 && x < 7 && y >= 1 && y < 5 ? 0x112233U : 0U) << x << " " << y;
}

TEST(surface, a_view_may_be_stored_bottom_up) {
    std::vector<q_ulong> pixels(4 * 3);
    const View view(pixels.data() + 8, 4, 3, -4);
    view.at(1, 2) = 5;
    EXPECT_EQ(pixels[1], 5U);
}

TEST(surface, copies_are_those_of_the_flat_calls) {
    catalogue::Random random(1);
    const Surface from = randomPicture(random, 9, 7);
    Surface to = randomPicture(random, 12, 10);
    const Surface before = to;
    q_Mur::copy(to, 3, 2, from, {1, 1, 8, 6});
    for (int y = 0; y < 10; ++y)
        for (int x = 0; x < 12; ++x) {
            const bool isInside = x >= 3 && x < 10 && y >= 2 && y < 7;
            EXPECT_EQ(to.at(x, y), isInside ? from.at(x - 2, y - 1) : before.at(x, y));
        }
    q_Mur::copyClipped(to, -4, 8, from, from.rect());
    EXPECT_EQ(to.at(0, 8), from.at(4, 0));
    EXPECT_EQ(to.at(4, 9), from.at(8, 1));
    EXPECT_EQ(to.at(5, 9), before.at(5, 9));
}

TEST(surface, a_blend_takes_its_source_from_anywhere) {
    Surface from(6, 6, 0);
    from.at(4, 5) = 0xFF8040;
    Surface to(6, 6, 0x204060);
    q_Mur::blend(to, 1, 0, from, {4, 5, 5, 6}, 0.25F);
    // 64 / 256 of the source and 192 / 256 of the destination, cut off: 0x20 * 3 / 4 + 255 / 4 and so on
    EXPECT_EQ(to.at(1, 0), 0x575058U);
    EXPECT_EQ(to.at(0, 0), 0x204060U);
    EXPECT_EQ(to.at(1, 1), 0x204060U);
}

TEST(surface, enlarging_lets_nothing_bleed_in) {
    Surface sheet(8, 8, 0xFFFFFF);
    q_Mur::fill(sheet, {2, 2, 6, 6}, 0x102030);
    Surface to(32, 32);
    q_Mur::enlarge(to, to.rect(), sheet, {2, 2, 6, 6});
    for (int y = 0; y < 32; ++y)
        for (int x = 0; x < 32; ++x)
            ASSERT_EQ(to.at(x, y), 0x102030U) << x << " " << y;
}

/// Two surfaces whose sizes and pitches all differ, and the destination as a flat call is to leave it.
struct Pair {
    static constexpr int width = 24;
    static constexpr int height = 20;
    static constexpr int pitch = 31;
    static constexpr int fromWidth = 13;
    static constexpr int fromHeight = 11;
    static constexpr int fromPitch = 17;

    explicit Pair(std::uint64_t seed)
        : random(seed), fromPixels(words(fromPitch * fromHeight)), pixels(words(pitch * height)), expected(pixels),
          before(pixels) {}
    std::vector<q_ulong> words(int count) {
        std::vector<q_ulong> made(static_cast<std::size_t>(count));
        for (q_ulong &word : made)
            word = random.word();
        return made;
    }
    View to() { return {pixels.data(), width, height, pitch}; }
    ConstView from() const { return {fromPixels.data(), fromWidth, fromHeight, fromPitch}; }
    /// Something is drawn, and every word of the buffer, those between rows included, is what it is to be.
    void expectAsFlat() const {
        EXPECT_NE(expected, before);
        EXPECT_EQ(pixels, expected);
    }

    catalogue::Random random;
    std::vector<q_ulong> fromPixels;
    std::vector<q_ulong> pixels;
    std::vector<q_ulong> expected;
    std::vector<q_ulong> before;
};

TEST(surface, fading_and_blurring_are_the_flat_calls) {
    tagRECT area = {2, 3, 21, 18};
    Pair faded(1);
    q_Mur::fade(faded.to(), {2, 3, 21, 18}, 0.375F);
    iFadeOut32(faded.expected.data(), &area, 31, 0.375F);
    faded.expectAsFlat();
    Pair blurred(2);
    q_Mur::blur(blurred.to(), {2, 3, 21, 18}, 3);
    Blur_Rect(blurred.expected.data(), &area, 31, 3);
    blurred.expectAsFlat();
}

TEST(surface, keyed_and_added_copies_are_the_flat_calls) {
    tagRECT area = {1, 2, 12, 9};
    Pair keyed(3);
    const q_ulong key = keyed.from().at(5, 5);
    q_Mur::copyKeyed(keyed.to(), 9, 4, keyed.from(), {1, 2, 12, 9}, key);
    iBltFast32_KeySrc(keyed.expected.data(), keyed.fromPixels.data(), 9, 4, &area, 31, 17, key);
    keyed.expectAsFlat();
    EXPECT_EQ(keyed.to().at(13, 7), keyed.before[7 * 31 + 13]); // the key's place: (5, 5) moved by (8, 2)
    Pair added(4);
    q_Mur::add(added.to(), 9, 4, added.from(), {1, 2, 12, 9});
    iBltFast32_Add(added.expected.data(), added.fromPixels.data(), 9, 4, &area, 31, 17);
    added.expectAsFlat();
}

TEST(surface, a_blend_by_the_top_byte_is_the_flat_call_and_ends_at_the_edges) {
    Pair pair(5);
    q_Mur::blendByTopByte(pair.to(), 16, -3, pair.from());
    tagRECT area = {0, 0, 13, 11};
    tagRECT clip = {0, 0, 24, 20};
    iBltFast32AlphaChannelSafe(pair.expected.data(), pair.fromPixels.data(), 16, -3, &area, &clip, 31, 17);
    pair.expectAsFlat();
}

TEST(surface, scaling_is_the_flat_call) {
    Pair pair(6);
    q_Mur::scale(pair.to(), {3, 1, 22, 18}, pair.from(), {2, 1, 12, 10});
    tagRECT target = {3, 1, 22, 18};
    tagRECT area = {2, 1, 12, 10};
    iBltNear32(pair.expected.data(), pair.fromPixels.data(), &target, &area, 31, 17);
    pair.expectAsFlat();
}

TEST(surface, turning_is_the_flat_call) {
    Pair pair(7);
    q_Mur::turn(pair.to(), 10, 12, pair.from(), {2, 1, 12, 10}, 0.7F, 1.5F);
    tagRECT clip = {0, 0, 24, 20};
    tagRECT area = {2, 1, 12, 10};
    iBltLinear32_Z_Roto(pair.expected.data(), 31, pair.fromPixels.data(), 17, &clip, &area, 10, 12, 0.7F, 1.5F);
    pair.expectAsFlat();
}

TEST(surface, a_row_of_a_turn_goes_through_up_to_1024_pixels) {
    const Surface from(1200, 900, 0x445566);
    Surface to(1024, 8);
    q_Mur::turn(to, 512, 4, from, from.rect(), 0);
    EXPECT_EQ(to.at(0, 4), 0x445566U);
    EXPECT_EQ(to.at(1023, 4), 0x445566U);
    Surface wide(1400, 8);
    q_Mur::turn(wide, 700, 4, from, from.rect(), 0.7854F); // 990 columns and as many rows
    EXPECT_EQ(wide.at(700, 4), 0x445566U);
    q_Mur::turn(wide, 700, 4, from, from.rect(), 0, 0);
    EXPECT_EQ(wide.at(700, 4), 0x445566U);
    q_Mur::turn(wide, 700, 4, from, {1200, 0, 0, 900}, 0);
    q_Mur::turn(wide.view().part({0, 0, 1400, 0}), 700, 0, from, from.rect(), 0);
}

TEST(surface, what_is_moved_from_has_no_pixels) {
    Surface first(5, 4, 7);
    Surface second = std::move(first);
    EXPECT_EQ(second.at(4, 3), 7U);
    EXPECT_EQ(first.rect(), Rect{});
    Surface third(2, 2);
    third = std::move(second);
    EXPECT_EQ(third.rect(), (Rect{0, 0, 5, 4}));
    EXPECT_EQ(third.at(4, 3), 7U);
    EXPECT_EQ(second.rect(), Rect{});
    second = third;
    EXPECT_EQ(second.at(4, 3), 7U);
    EXPECT_EQ(third.at(4, 3), 7U);
}

TEST(surface, what_is_empty_draws_nothing_anywhere) {
    Surface to(8, 6, 3);
    const Surface from(4, 4, 5);
    q_Mur::fill(to, {20, 0, -100000, 9}, 7);
    q_Mur::copy(to, INT_MAX, INT_MIN, from, {3, 0, 3, 4});
    q_Mur::blend(to, INT_MIN, INT_MIN, from, {4, 4, 0, 0}, 0.5F);
    q_Mur::scale(to, {5, 5, 5, 6}, from, from.rect());
    for (int y = 0; y < 6; ++y)
        for (int x = 0; x < 8; ++x)
            EXPECT_EQ(to.at(x, y), 3U) << x << " " << y;
}

/// The region around a place, one pixel after the other.
void fillNaively(Surface &surface, int x, int y, q_ulong colour, q_ulong border) {
    std::vector<char> isReached(static_cast<std::size_t>(surface.width() * surface.height()));
    const auto reached = [&](int column, int row) -> char & {
        return isReached[static_cast<std::size_t>(row * surface.width() + column)];
    };
    const Surface before = surface;
    if (before.at(x, y) == border)
        return;
    reached(x, y) = 1;
    for (bool grows = true; grows;) {
        grows = false;
        for (int row = 0; row < surface.height(); ++row)
            for (int column = 0; column < surface.width(); ++column) {
                const bool isBeside = (column > 0 && reached(column - 1, row)) ||
                                      (row > 0 && reached(column, row - 1)) ||
                                      (column + 1 < surface.width() && reached(column + 1, row)) ||
                                      (row + 1 < surface.height() && reached(column, row + 1));
                if (isBeside && !reached(column, row) && before.at(column, row) != border) {
                    reached(column, row) = 1;
                    grows = true;
                }
            }
    }
    for (int row = 0; row < surface.height(); ++row)
        for (int column = 0; column < surface.width(); ++column)
            if (reached(column, row))
                surface.at(column, row) = colour;
}

TEST(surface, fills_any_region_to_its_border) {
    constexpr q_ulong border = 0xFF0000;
    for (int number = 0; number < 300; ++number) {
        catalogue::Random random(static_cast<std::uint64_t>(number));
        const int width = random.between(1, 24);
        const int height = random.between(1, 24);
        Surface filled(width, height);
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                filled.at(x, y) = random.oneIn(3) ? border : static_cast<q_ulong>(random.between(0, 3));
        Surface expected = filled;
        const int x = random.between(0, width - 1);
        const int y = random.between(0, height - 1);
        const q_ulong colour = random.oneIn(4) ? border : 2;
        q_Mur::fillSafely(filled, x, y, colour, border);
        fillNaively(expected, x, y, colour, border);
        for (int row = 0; row < height; ++row)
            for (int column = 0; column < width; ++column)
                ASSERT_EQ(filled.at(column, row), expected.at(column, row)) << number << ": " << column << " " << row;
    }
}

TEST(surface, fills_what_winds_for_half_a_million_rows_and_goes_round_islands) {
    constexpr int size = 1001;
    Surface maze(size, size, 0);
    for (int x = 1; x < size; x += 2)
        q_Mur::fill(maze, x % 4 == 1 ? Rect{x, 0, x + 1, size - 1} : Rect{x, 1, x + 1, size}, 1);
    q_Mur::fillSafely(maze, 0, 0, 7, 1);
    EXPECT_EQ(maze.at(size - 1, size - 1), 7U);
    Surface ring(9, 9, 0);
    ring.at(4, 4) = 1;
    q_Mur::fillSafely(ring, 0, 0, 7, 1);
    EXPECT_EQ(ring.at(8, 8), 7U);
    EXPECT_EQ(ring.at(4, 4), 1U);
}

TEST(surface, seeds_outside_of_a_surface_paint_nothing) {
    Surface surface(9, 7, 3);
    constexpr std::pair<int, int> seeds[] = {{9, 0},       {0, 7},       {-1, 0},      {0, -1},
                                             {INT_MAX, 0}, {0, INT_MAX}, {INT_MIN, 0}, {0, INT_MIN}};
    for (const auto &[x, y] : seeds)
        q_Mur::fillSafely(surface, x, y, 5, 1);
    for (int y = 0; y < 7; ++y)
        for (int x = 0; x < 9; ++x)
            EXPECT_EQ(surface.at(x, y), 3U) << x << " " << y;
}

TEST(surface, texts_are_utf_8) {
    EXPECT_EQ(q_Mur::textOf("Ab 1"), "Ab 1");
    EXPECT_EQ(q_Mur::textOf("\xC3\xA9\xC2\xA3"), "\xE9\xA3");         // e with an acute accent, pound
    EXPECT_EQ(q_Mur::textOf("\xE2\x82\xAC\xE2\x80\x93"), "\x80\x96"); // euro, dash
    EXPECT_EQ(q_Mur::textOf("\xC5\xB8"), "\x9F");                     // Y with two dots
    EXPECT_EQ(q_Mur::textOf("\xE6\xBC\xA2\xF0\x9F\x98\x80x"), "??x"); // none of code page 1252
    EXPECT_EQ(q_Mur::textOf("\xC3"), "?");                            // cut off
    EXPECT_EQ(q_Mur::textOf("\x80\xFFz"), "??z");                     // no beginnings
    EXPECT_EQ(q_Mur::textOf("\xC1\x81"), "?");                        // longer than it need be
    EXPECT_EQ(q_Mur::textOf("\xC3(x"), "?(x");
    EXPECT_EQ(q_Mur::textOf("\xC2\x80\xC2\x81"), "??"); // controls that the code page has no place for
}

TEST(surface, texts_have_the_colour_that_they_are_given) {
    constexpr q_Mur::Rgb colour = {255, 128, 0};
    static_assert(colour.pixel() == 0xFF8000 && colour.blueFirst() == 0x0080FF);
    Surface surface(80, 30);
    const bool isDrawn = q_Mur::drawText(surface, 0, 0, "Hm", colour, 24, "DejaVu Sans");
    EXPECT_EQ(isDrawn, Q_MUR_TESTS_TEXT != 0);
    bool isFull = false;
    for (int y = 0; y < 30; ++y)
        for (int x = 0; x < 80; ++x)
            isFull = isFull || surface.at(x, y) == colour.pixel();
    EXPECT_EQ(isFull, isDrawn);
}

TEST(surface, records_and_blocks_free_themselves) {
    q_Mur::Record record(32, 16);
    ASSERT_NE(record.allocate(0, 1000), nullptr);
    ASSERT_NE(record.allocate(1, -1), nullptr);
    EXPECT_EQ(record.get()->blockCount, 2);
    q_Mur::PipelineBlock pipeline(32, 16, 64, 3);
    ASSERT_NE(pipeline.get(), nullptr);
    EXPECT_EQ(pipeline->vertexArrayEntries, 64);
    VKD_glPushMatrix(pipeline);
    EXPECT_EQ(pipeline->modelDepth, 1);
    q_Mur::Block<_PRIVATE_LUT_DATA> phase(1, 1);
    EXPECT_EQ(phase->phase, 0);
}

#ifdef GTEST_HAS_DEATH_TEST
TEST(surface, wrong_places_end_the_program_with_a_line) {
    Surface surface(8, 6);
    const Surface source(4, 4);
    EXPECT_DEATH(surface.at(8, 0) = 1, "a pixel lies outside of its surface");
    EXPECT_DEATH(surface.at(0, -1) = 1, "a pixel lies outside of its surface");
    EXPECT_DEATH(static_cast<void>(surface.part({0, 0, 8, 7})), "a part lies outside of its surface");
    EXPECT_DEATH(q_Mur::fill(surface, {0, 0, 9, 6}, 1), "what is filled lies outside of its surface");
    EXPECT_DEATH(q_Mur::copy(surface, 5, 0, source), "what is drawn lies outside of its surface");
    EXPECT_DEATH(q_Mur::copy(surface, 0, 0, source, {0, 0, 5, 4}), "what is read lies outside of its surface");
    EXPECT_DEATH(q_Mur::blend(surface, 0, 0, source, source.rect(), 2), "an alpha lies outside of 0 to 1");
    EXPECT_DEATH(q_Mur::enlarge(surface, surface.rect(), source, {}), "a source has no pixels");
    EXPECT_DEATH(q_Mur::copy(surface, -1, 0, source), "what is drawn lies outside of its surface");
    EXPECT_DEATH(q_Mur::copy(surface, 0, 3, source), "what is drawn lies outside of its surface");
}

TEST(surface, places_at_the_ends_of_numbers_are_refused_like_others) {
    Surface surface(32, 32);
    const Surface source(8, 8);
    EXPECT_DEATH(q_Mur::copy(surface, INT_MAX - 2, 0, source), "what is drawn lies outside of its surface");
    EXPECT_DEATH(q_Mur::add(surface, 0, INT_MAX, source, source.rect()), "what is drawn lies outside of its surface");
    EXPECT_DEATH(q_Mur::blend(surface, INT_MAX - 2, 0, source, source.rect(), 1),
                 "what is drawn lies outside of its surface");
    EXPECT_DEATH(static_cast<void>(Rect::sized(INT_MAX - 2, 0, 8, 8)), "a side of a rectangle is beyond all numbers");
    EXPECT_DEATH(static_cast<void>(Rect{0, 0, 8, 8}.moved(0, INT_MAX)), "a side of a rectangle is beyond all numbers");
    // Turned inside out so far that the difference of its sides would be a size.
    EXPECT_DEATH(q_Mur::fill(surface, {2000000000, 0, -2000000000, 9}, 7), "what is filled lies outside");
    EXPECT_DEATH(q_Mur::fill(surface, {0, 2000000000, 9, -2000000000}, 7), "what is filled lies outside");
}

TEST(surface, sources_without_pixels_are_not_scaled) {
    Surface surface(32, 32);
    const Surface source(8, 8);
    const Rect empty = {1000000000, 1000000, 1000000000, 1000000};
    for (const Rect &area : {Rect{100000, 0, 0, 8}, empty, Rect{0, 3, 8, 3}})
        EXPECT_DEATH(q_Mur::scale(surface, surface.rect(), source, area), "a source has no pixels");
}

TEST(surface, sources_beyond_the_formats_of_positions_are_refused) {
    const std::vector<q_ulong> row(131072, 9);
    const ConstView wide(row.data(), 131072, 1);
    Surface to(8, 1);
    q_Mur::enlarge(to, to.rect(), wide, {0, 0, 131071, 1});
    q_Mur::scale(to, to.rect(), wide, {0, 0, 4095, 1});
    constexpr const char *line = "a source is larger than the format of positions";
    EXPECT_DEATH(q_Mur::enlarge(to, wide), line);
    EXPECT_DEATH(q_Mur::enlarge(to, ConstView(row.data(), 1, 131072)), line);
    EXPECT_DEATH(q_Mur::scale(to, to.rect(), wide, {0, 0, 4096, 1}), line);
    const Surface from(1200, 900);
    Surface frame(1026, 8);
    constexpr const char *turned = "a row of a turn goes through more than 1024 pixels of its source";
    EXPECT_DEATH(q_Mur::turn(frame, 513, 4, from, from.rect(), 0), turned);
    EXPECT_DEATH(q_Mur::turn(frame, 513, 4, from, from.rect(), 0.5F, 0.75F), turned);
    EXPECT_DEATH(q_Mur::turn(frame, 513, 4, from, from.rect(), std::numeric_limits<float>::quiet_NaN()), turned);
}

TEST(surface, frames_beyond_what_a_record_counts_are_refused) {
    q_Mur::Record record(46340, 46340);
    EXPECT_EQ(record.get()->frameGeometry->planeElements, 2147395600);
    constexpr const char *line = "a frame has more pixels than a record counts";
    EXPECT_DEATH(q_Mur::Record(70000, 70000), line);
    EXPECT_DEATH(q_Mur::Record(-1, 16), line);
    EXPECT_DEATH(q_Mur::PipelineBlock(70000, 70000), line);
}
#endif

} // namespace
