#include "blit/text.h"
#include "support/cases.h"
#include "support/pictures.h"

#include <algorithm>
#include <array>
#include <limits>
#include <thread>

#if defined(_WIN32)
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>
#endif

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define Q_MUR_TESTS_DETECT_LEAKS
#include <sanitizer/lsan_interface.h>
#endif
#endif

namespace {

using test::Case;
using test::Surface;

constexpr int lowest = std::numeric_limits<int>::min();
constexpr int highest = std::numeric_limits<int>::max();
constexpr q_ulong ground = 0x5A102030;
constexpr q_ulong white = 0xFFFFFF;

// The placing, which is common to all rasterisers, with one that delivers what a test lays down.

class FakeText {
public:
    FakeText(const char *text, q_ulong colour, int fontHeight, const char *fontName) {
        asked = {text, colour, fontHeight, fontName};
        isAlive = true;
    }
    ~FakeText() { isAlive = false; }
    FakeText(const FakeText &) = delete;
    FakeText &operator=(const FakeText &) = delete;

    qmur::TextRaster raster() const { return letters; }

    struct Request {
        const char *text;
        q_ulong colour;
        int fontHeight;
        const char *fontName;
    };
    static inline Request asked = {};
    static inline qmur::TextRaster letters = {};
    static inline bool isAlive = false;
};

/// Draws a picture without margins, as rasterisers deliver it.
int drawFake(Surface &dst, test::Pixels letters, int width, int x, int y, const tagRECT &clip) {
    FakeText::letters = {letters.data(), width, static_cast<int>(letters.size()) / width};
    return qmur::drawText<FakeText>(dst.pixels(), clip, dst.pitch(), "text", white, x, y, 16, "face");
}

TEST(iTextOut_placing, hands_over_text_colour_height_and_name_as_they_stand) {
    Surface dst(4, 4);
    q_ulong letters[4] = {};
    FakeText::letters = {letters, 2, 2};
    const char text[] = "words";
    const char name[] = "face";
    qmur::drawText<FakeText>(dst.pixels(), dst.rect(), dst.pitch(), text, 0x89ABCDEF, 0, 0, -17, name);
    EXPECT_EQ(FakeText::asked.text, text);
    EXPECT_EQ(FakeText::asked.colour, 0x89ABCDEFu);
    EXPECT_EQ(FakeText::asked.fontHeight, -17);
    EXPECT_EQ(FakeText::asked.fontName, name);
    EXPECT_FALSE(FakeText::isAlive) << "the rasteriser must go with the call";
}

TEST(iTextOut_placing, answers_0_and_writes_nothing_without_pixels) {
    Surface dst(4, 4, ground);
    FakeText::letters = {nullptr, 2, 2};
    EXPECT_EQ(qmur::drawText<FakeText>(dst.pixels(), dst.rect(), dst.pitch(), "", white, 0, 0, 16, ""), 0);
    EXPECT_EQ(dst.differenceFrom(Surface(4, 4, ground)), "");
    EXPECT_FALSE(FakeText::isAlive);
}

TEST(iTextOut_placing, odd_width_loses_last_column_and_odd_height_last_row) {
    Surface dst(8, 8, ground);
    const Surface letters = test::numbered(5, 3);
    const Surface expected = test::showing(dst, 1, 2, letters, {0, 0, 4, 2});
    EXPECT_EQ(drawFake(dst, pixelsOf(letters), 5, 1, 2, dst.rect()), 1);
    EXPECT_EQ(dst.differenceFrom(expected), "");
}

TEST(iTextOut_placing, positions_at_the_ends_of_the_numbers_draw_nothing) {
    for (int width = 1; width <= 5; ++width)
        for (int distance = 0; distance < 8; ++distance)
            for (const int end : {lowest + distance, highest - distance}) {
                Surface dst(4, 4, ground);
                const test::Pixels letters(static_cast<std::size_t>(width * (6 - width)), white);
                for (const auto &[x, y] : {std::pair{end, 0}, {0, end}, {end, end}})
                    EXPECT_EQ(drawFake(dst, letters, width, x, y, dst.rect()), 1);
                ASSERT_EQ(dst.differenceFrom(Surface(4, 4, ground)), "") << width << " columns at " << end;
            }
}

TEST(iTextOut_placing, rasters_have_pixels_and_no_more_bytes_than_an_int_counts) {
    EXPECT_TRUE(qmur::canBeRaster(1, 1));
    EXPECT_FALSE(qmur::canBeRaster(0, 16));
    EXPECT_FALSE(qmur::canBeRaster(16, 0));
    EXPECT_FALSE(qmur::canBeRaster(-4, -4));
    EXPECT_TRUE(qmur::canBeRaster(536870911, 1)); // (2^31 - 1) / 4
    EXPECT_FALSE(qmur::canBeRaster(536870912, 1));
    EXPECT_TRUE(qmur::canBeRaster(16384, 32767));
    EXPECT_FALSE(qmur::canBeRaster(16384, 32768)); // 2^31 bytes
    EXPECT_FALSE(qmur::canBeRaster(1LL << 40, 1LL << 40));
}

/// Every pixel that is not 0, but for a last odd column and row, where it lies in the clip's width and height.
TEST(iTextOut_placing, agrees_with_a_naive_placing) {
    test::forEachCase("iTextOut placing", [](Case &c) {
        Surface dst = Surface::random(c.random);
        const int width = c.random.between(1, 16);
        const int height = c.random.between(1, 16);
        test::Pixels letters(static_cast<std::size_t>(width * height));
        for (q_ulong &pixel : letters)
            pixel = c.random.pixel();
        const int x = c.random.between(-18, 18);
        const int y = c.random.between(-18, 18);
        const int left = c.random.between(-50, 50);
        const int top = c.random.between(-50, 50);
        const int clipWidth = c.random.between(-1, dst.width());
        const int clipHeight = c.random.between(-1, dst.height());
        Surface expected = dst;
        for (int row = 0; row < height - height % 2; ++row)
            for (int column = 0; column < width - width % 2; ++column) {
                const q_ulong pixel = letters[static_cast<std::size_t>(row * width + column)];
                const int dstX = x + column;
                const int dstY = y + row;
                if (dstX >= 0 && dstX < clipWidth && dstY >= 0 && dstY < clipHeight && pixel != 0)
                    expected.at(dstX, dstY) = pixel;
            }
        const int result = drawFake(dst, letters, width, x, y, {left, top, left + clipWidth, top + clipHeight});
        c.expectEqual(std::int64_t{result}, std::int64_t{1});
        c.expectEqual(dst, expected);
    });
}

// The function itself, with the platform's letters.

int write(Surface &dst, std::string text, q_ulong colour, int x, int y, int fontHeight, std::string face) {
    tagRECT clip = dst.rect();
    return iTextOut(dst.pixels(), &clip, dst.pitch(), text.data(), colour, x, y, fontHeight, face.data());
}

#if Q_MUR_TESTS_TEXT

constexpr char sans[] = "DejaVu Sans";
constexpr char mono[] = "DejaVu Sans Mono";

#if defined(Q_MUR_TESTS_DETECT_LEAKS)

/// fontconfig reads its settings in the first call and keeps them behind offsets that a leak detector does not follow.
/// That call is made before the tests and not looked at; what later calls leave behind is a leak.
class FirstCall : public testing::Environment {
    void SetUp() override {
        const __lsan::ScopedDisabler disabler;
        Surface surface(8, 8);
        write(surface, "text", white, 0, 0, 16, sans);
    }
};

testing::Environment *const firstCall = testing::AddGlobalTestEnvironment(new FirstCall);

#endif

/// A surface with a text on it.
Surface page(const std::string &text, int fontHeight = 40, const std::string &face = sans, q_ulong colour = white) {
    Surface surface(400, 200, ground);
    EXPECT_EQ(write(surface, text, colour, 20, 30, fontHeight, face), 1) << text;
    return surface;
}

bool isInked(const Surface &surface, int x, int y) {
    return surface.at(x, y) != ground;
}

/// The smallest rectangle around all ink; empty where there is none.
tagRECT inkOf(const Surface &surface) {
    tagRECT box = {surface.width(), surface.height(), 0, 0};
    for (int y = 0; y < surface.height(); ++y)
        for (int x = 0; x < surface.width(); ++x)
            if (isInked(surface, x, y))
                box = {std::min<q_long>(box.left, x), std::min<q_long>(box.top, y), std::max<q_long>(box.right, x + 1),
                       std::max<q_long>(box.bottom, y + 1)};
    return box;
}

int countOf(const Surface &surface, q_ulong pixel) {
    return static_cast<int>(std::count(surface.words().begin(), surface.words().end(), pixel));
}

TEST(iTextOut, ink_lies_in_the_line_behind_the_corner) {
    for (const int height : {12, 16, 25, 40, 64}) {
        const tagRECT ink = inkOf(page("Hxgj", height));
        EXPECT_GE(ink.left, 20) << height;
        EXPECT_LE(ink.right, 20 + 4 * height) << height;
        EXPECT_GE(ink.top, 30) << height;
        EXPECT_LE(ink.bottom, 30 + height + 1) << height;
        EXPECT_GE(ink.bottom - ink.top, height / 2) << height;
        EXPECT_GE(ink.right - ink.left, height / 2) << height;
    }
}

TEST(iTextOut, negative_height_is_that_of_the_letters_and_larger) {
    const tagRECT line = inkOf(page("H", 60));
    const tagRECT letters = inkOf(page("H", -60));
    EXPECT_GT(letters.bottom - letters.top, line.bottom - line.top);
    EXPECT_LT(letters.bottom - letters.top, 60);
}

TEST(iTextOut, colour_has_red_in_its_lowest_byte) {
    const struct {
        q_ulong colour, pixel;
    } pairs[] = {{0x0000FF, 0xFF0000}, {0x00FF00, 0x00FF00}, {0xFF0000, 0x0000FF}, {0x204080, 0x804020}};
    for (const auto &pair : pairs) {
        const Surface surface = page("HHH", 60, sans, pair.colour);
        EXPECT_GT(countOf(surface, pair.pixel), 300) << pair.colour;
        for (const q_ulong word : surface.words()) {
            if (word == ground)
                continue;
            EXPECT_LE(word & 0xFF, pair.pixel & 0xFF);
            EXPECT_LE(word & 0xFF00, pair.pixel & 0xFF00);
            EXPECT_LE(word & 0xFFFF0000, pair.pixel & 0xFF0000);
        }
    }
}

TEST(iTextOut, colour_0_draws_nothing_and_answers_1) {
    EXPECT_EQ(page("HHH", 40, sans, 0).differenceFrom(Surface(400, 200, ground)), "");
}

TEST(iTextOut, edges_are_smooth_and_replace_what_lies_below) {
    Surface dark(120, 80, 0x5A000000);
    Surface bright(120, 80, 0xA5FFFFFF);
    EXPECT_EQ(write(dark, "OSX", 0x0000FF, 3, 4, 40, sans), 1);
    EXPECT_EQ(write(bright, "OSX", 0x0000FF, 3, 4, 40, sans), 1);
    int full = 0;
    int partial = 0;
    for (int y = 0; y < 80; ++y)
        for (int x = 0; x < 120; ++x) {
            if (dark.at(x, y) == 0x5A000000) {
                EXPECT_EQ(bright.at(x, y), 0xA5FFFFFFu) << x << ", " << y;
                continue;
            }
            EXPECT_EQ(bright.at(x, y), dark.at(x, y)) << x << ", " << y;
            ++(dark.at(x, y) == 0xFF0000 ? full : partial);
        }
    EXPECT_GT(full, 100);
    EXPECT_GT(partial, 30);
}

TEST(iTextOut, the_hole_of_a_letter_stays) {
    const Surface surface = page("O", 60);
    const tagRECT ink = inkOf(surface);
    for (int i = 0; i < 49; ++i)
        EXPECT_FALSE(isInked(surface, static_cast<int>(ink.left + ink.right) / 2 - 3 + i % 7,
                             static_cast<int>(ink.top + ink.bottom) / 2 - 3 + i / 7));
    EXPECT_GT(countOf(surface, white), 200);
}

TEST(iTextOut, letters_are_bold) {
    // A stem of this face has less than an eighth of the line's height in the regular weight, more in the bold one.
    const Surface surface = page("I", 100);
    const tagRECT ink = inkOf(surface);
    const test::Pixels row = rowIn(surface, static_cast<int>(ink.top + ink.bottom) / 2);
    const auto thickness = std::count(row.begin(), row.end(), white);
    EXPECT_GE(thickness, 13);
    EXPECT_LE(thickness, 25);
}

TEST(iTextOut, the_name_chooses_the_face) {
    const auto endOf = [](const std::string &text, const char *face) { return inkOf(page(text, 30, face)).right; };
    EXPECT_EQ(endOf("iiii|", mono), endOf("WWWW|", mono));
    EXPECT_LT(endOf("iiii|", sans), endOf("WWWW|", sans));
}

TEST(iTextOut, an_unknown_empty_or_missing_name_falls_back) {
    for (const std::string &face :
         {std::string("There Is No Such Face"), std::string(), std::string(5000, 'n'), std::string("\xFF\xC3")}) {
        const tagRECT ink = inkOf(page("Hxg", 40, face));
        EXPECT_GT(ink.right - ink.left, 20);
        EXPECT_GT(ink.bottom - ink.top, 15);
    }
    Surface surface(200, 80, ground);
    tagRECT clip = surface.rect();
    char text[] = "Hxg";
    EXPECT_EQ(iTextOut(surface.pixels(), &clip, surface.pitch(), text, white, 2, 3, 40, nullptr), 1);
    EXPECT_GT(countOf(surface, white), 100);
}

TEST(iTextOut, height_0_is_what_is_usual) {
    const tagRECT ink = inkOf(page("Hxg", 0));
    EXPECT_GT(ink.bottom - ink.top, 5);
    EXPECT_LT(ink.bottom - ink.top, 60);
}

TEST(iTextOut, empty_text_answers_0_and_writes_nothing) {
    Surface surface(60, 40, ground);
    EXPECT_EQ(write(surface, "", white, 0, 0, 16, sans), 0);
    tagRECT clip = surface.rect();
    char face[] = "";
    EXPECT_EQ(iTextOut(surface.pixels(), &clip, surface.pitch(), nullptr, white, 0, 0, 16, face), 0);
    EXPECT_EQ(surface.differenceFrom(Surface(60, 40, ground)), "");
}

TEST(iTextOut, beyond_the_clip_answers_1_and_writes_nothing) {
    Surface surface(60, 40, ground);
    for (const auto &[x, y] :
         {std::pair{60, 0}, {0, 40}, {-2000, 0}, {0, -2000}, {lowest, lowest}, {highest, highest}, {highest - 5, 3}}) {
        EXPECT_EQ(write(surface, "HHH", white, x, y, 16, sans), 1);
        EXPECT_EQ(surface.differenceFrom(Surface(60, 40, ground)), "") << x << ", " << y;
    }
}

TEST(iTextOut, every_side_of_the_clip_cuts_what_would_stand_there) {
    const Surface whole = page("Hxg", 30);
    for (int y = -34; y <= 22; y += 7)
        for (int x = -90; x <= 42; x += 11) {
            Surface surface(40, 20, ground);
            Surface expected = surface;
            for (int row = 0; row < 20; ++row)
                for (int column = 0; column < 40; ++column)
                    if (row - y + 30 >= 0 && column - x + 20 >= 0)
                        expected.at(column, row) = whole.at(column - x + 20, row - y + 30);
            EXPECT_EQ(write(surface, "Hxg", white, x, y, 30, sans), 1);
            EXPECT_EQ(surface.differenceFrom(expected), "") << x << ", " << y;
        }
}

TEST(iTextOut, of_the_clip_only_width_and_height_count) {
    Surface atOrigin(100, 60, ground);
    Surface elsewhere = atOrigin;
    char text[] = "Hxgh";
    char face[] = "DejaVu Sans";
    tagRECT clip = {0, 0, 50, 25};
    tagRECT moved = {1000, -70, 1050, -45};
    EXPECT_EQ(iTextOut(atOrigin.pixels(), &clip, atOrigin.pitch(), text, white, 5, 6, 30, face), 1);
    EXPECT_EQ(iTextOut(elsewhere.pixels(), &moved, elsewhere.pitch(), text, white, 5, 6, 30, face), 1);
    EXPECT_EQ(elsewhere.differenceFrom(atOrigin), "");
    const tagRECT ink = inkOf(atOrigin);
    EXPECT_EQ(ink.right, 50);
    EXPECT_EQ(ink.bottom, 25);
}

TEST(iTextOut, characters_are_those_of_code_page_1252) {
    EXPECT_LT(inkOf(page("\xC4", 60)).top, inkOf(page("A", 60)).top); // A with its two dots
    EXPECT_EQ(inkOf(page("\xC4", 60)).bottom, inkOf(page("A", 60)).bottom);
    EXPECT_GT(inkOf(page("\xC7", 60)).bottom, inkOf(page("C", 60)).bottom); // C with its cedilla
    const tagRECT euro = inkOf(page("\x80", 60));
    const tagRECT letter = inkOf(page("C", 60));
    EXPECT_NEAR(static_cast<double>(euro.top), static_cast<double>(letter.top), 2.0);
    EXPECT_NEAR(static_cast<double>(euro.bottom), static_cast<double>(letter.bottom), 2.0);
    EXPECT_FALSE(page("\x80", 60) == page("C", 60));
    // Each dash is as wide as it is called, and no box that stands for a lacking character.
    const tagRECT hyphen = inkOf(page("-", 60)), en = inkOf(page("\x96", 60)), em = inkOf(page("\x97", 60));
    EXPECT_LT(hyphen.right - hyphen.left, en.right - en.left);
    EXPECT_LT(en.right - en.left, em.right - em.left);
    EXPECT_LT(em.bottom - em.top, 12);
}

// GDI rounds a font's em and with it the height of its lines.
#if defined(_WIN32)
constexpr double lineHeightError = 1.0;
#else
constexpr double lineHeightError = 0.0;
#endif

TEST(iTextOut, a_positive_height_is_the_distance_of_lines) {
    for (int height = 8; height <= 64; ++height) {
        const tagRECT one = inkOf(page("H", height));
        const tagRECT two = inkOf(page("H\nH", height));
        EXPECT_EQ(two.top, one.top) << height;
        EXPECT_NEAR(static_cast<double>(two.bottom - one.bottom), height, lineHeightError) << height;
    }
}

TEST(iTextOut, line_breaks_begin_lines_that_are_centred) {
    const Surface two = page("HHHHHH\nH", 30);
    const tagRECT first = inkOf(page("HHHHHH", 30));
    const tagRECT both = inkOf(two);
    EXPECT_EQ(both.top, first.top);
    EXPECT_NEAR(static_cast<double>(both.bottom - first.bottom), 30.0, lineHeightError);
    q_long left = two.width(), right = 0;
    for (int y = static_cast<int>(first.bottom); y < two.height(); ++y)
        for (int x = 0; x < two.width(); ++x)
            if (isInked(two, x, y)) {
                left = std::min<q_long>(left, x);
                right = std::max<q_long>(right, x + 1);
            }
    EXPECT_NEAR(static_cast<double>(left + right), static_cast<double>(first.left + first.right), 3.0);

    EXPECT_EQ(page("HHHHHH\r\nH", 30).differenceFrom(two), "");
    EXPECT_EQ(page("HHHHHH\rH", 30).differenceFrom(two), "");
    EXPECT_EQ(page("HHHHHH\nH\n", 30).differenceFrom(two), "");
    EXPECT_FALSE(page("HHHHHH\n\nH", 30) == two);
}

TEST(iTextOut, an_ampersand_underlines_and_two_stand_for_one) {
    const Surface plain = page("HIH", 40);
    const Surface underlined = page("H&IH", 40);
    const tagRECT ink = inkOf(plain);
    EXPECT_GT(inkOf(underlined).bottom, ink.bottom);
    EXPECT_EQ(inkOf(underlined).right, ink.right);
    for (int y = 0; y < ink.bottom; ++y)
        for (int x = 0; x < plain.width(); ++x)
            ASSERT_EQ(underlined.at(x, y), plain.at(x, y)) << x << ", " << y;
    EXPECT_GT(inkOf(page("H&&H", 40)).right, inkOf(page("HH", 40)).right + 10);
}

TEST(iTextOut, of_several_ampersands_in_a_line_the_last_one_underlines) {
    const Surface several = page("H&I&H", 40);
    const tagRECT plain = inkOf(page("HIH", 40));
    const tagRECT before = inkOf(page("HI", 40));
    bool isUnderlined = false;
    for (int y = static_cast<int>(plain.bottom); y < several.height(); ++y)
        for (int x = 0; x < several.width(); ++x)
            if (isInked(several, x, y)) {
                EXPECT_GE(x, before.right) << y;
                isUnderlined = true;
            }
    EXPECT_TRUE(isUnderlined);
    EXPECT_FALSE(several == page("H&IH", 40));
    EXPECT_EQ(several.differenceFrom(page("HI&H", 40)), "");
    EXPECT_EQ(page("&H&&&I&&H", 40).differenceFrom(page("H&&&I&&H", 40)), "");
}

TEST(iTextOut, each_line_has_its_own_underlined_character) {
    EXPECT_EQ(page("&H&I\n&I&H", 30).differenceFrom(page("H&I\nI&H", 30)), "");
    EXPECT_FALSE(page("H&I\nI&H", 30) == page("H&I\nIH", 30));
    EXPECT_FALSE(page("H&I\nI&H", 30) == page("HI\nI&H", 30));
}

TEST(iTextOut, an_ampersand_before_a_break_is_dropped_and_one_at_the_end_is_a_character) {
    for (const std::string lineBreak : {"\n", "\r", "\r\n"}) {
        EXPECT_EQ(page("H&" + lineBreak + "IH").differenceFrom(page("H\nIH")), "");
        EXPECT_EQ(page("H&I&" + lineBreak + "HH").differenceFrom(page("H&I\nHH")), "");
    }
    EXPECT_EQ(page("H&").differenceFrom(page("H&&")), "");
    EXPECT_EQ(page("H&I&").differenceFrom(page("H&I&&")), "");
    EXPECT_EQ(page("H\n&").differenceFrom(page("H\n&&")), "");
}

TEST(iTextOut, equal_calls_write_equal_bytes_also_at_the_same_time) {
    const Surface expected = page("Quartz");
    std::vector<Surface> surfaces(4, Surface(400, 200, ground));
    std::vector<std::thread> threads;
    for (Surface &surface : surfaces)
        threads.emplace_back([&surface] {
            for (int i = 0; i < 8; ++i)
                write(surface, "Quartz", white, 20, 30, 40, sans);
        });
    for (std::thread &thread : threads)
        thread.join();
    for (const Surface &surface : surfaces)
        EXPECT_EQ(surface.differenceFrom(expected), "");
}

/// Whether a call answers 0 or 1, writes nothing with an answer of 0, and never beside a clip of 10 by 8.
void expectInside(const std::string &text, q_ulong colour, int x, int y, int fontHeight, const std::string &face) {
    const Surface before(30, 20, ground);
    Surface surface = before;
    tagRECT clip = {0, 0, 10, 8};
    const int result = iTextOut(surface.pixels(), &clip, surface.pitch(), std::string(text).data(), colour, x, y,
                                fontHeight, std::string(face).data());
    EXPECT_TRUE(result == 0 || result == 1);
    const tagRECT unwritten = {0, 0, result == 0 ? 0 : 10, 8};
    EXPECT_EQ(test::showing(surface, 0, 0, before, unwritten).differenceFrom(before), "");
}

TEST(iTextOut, sizes_beyond_reason_write_inside_the_clip_or_nothing) {
    for (const int height : {lowest, lowest + 1, -1000000, -70000, -30000, -1, 1, 2, 30000, 70000, 1000000, highest}) {
        SCOPED_TRACE(height);
        expectInside("AgW.", white, -4, -3, height, sans);
    }
}

TEST(iTextOut, a_text_of_many_characters_begins_as_a_short_one) {
    const std::string text(20000, 'm');
    const Surface shorter = page(text.substr(0, 60), 16);
    EXPECT_EQ(page(text, 16).differenceFrom(shorter), "");
}

#if defined(_WIN32)

/// Takes all GDI objects that a program may have, 10,000 or more, but for a few.
class ScarceObjects {
public:
    explicit ScarceObjects(int left) {
        constexpr std::size_t all = 0x10000; // a handle has 16 bits for its index
        while (taken.size() < all) {
            const HBRUSH brush = CreateSolidBrush(0);
            if (!brush)
                break;
            taken.push_back(brush);
        }
        isScarce = taken.size() < all;
        for (; left > 0 && !taken.empty(); --left) {
            DeleteObject(taken.back());
            taken.pop_back();
        }
    }
    ~ScarceObjects() {
        for (const HBRUSH brush : taken)
            DeleteObject(brush);
    }
    ScarceObjects(const ScarceObjects &) = delete;
    ScarceObjects &operator=(const ScarceObjects &) = delete;

    bool isScarce = false;

private:
    std::vector<HBRUSH> taken;
};

TEST(iTextOut, each_call_gives_its_objects_back) {
    Surface surface(40, 16, ground);
    const ScarceObjects scarce(100);
    ASSERT_TRUE(scarce.isScarce);
    for (int i = 0; i < 12000; ++i)
        ASSERT_EQ(write(surface, "H&x", white, 1, 1, 8, sans), 1) << i;
}

#endif

TEST(iTextOut, any_bytes_stay_inside_the_clip) {
    for (int seed = 0; seed < 300; ++seed) {
        SCOPED_TRACE(seed);
        test::Random random(static_cast<std::uint64_t>(seed));
        const auto bytes = [&random](int most) {
            std::string text(static_cast<std::size_t>(random.between(0, most)), ' ');
            for (char &character : text)
                character =
                    static_cast<char>(random.oneIn(6) ? "&\n\r\t "[random.between(0, 4)] : random.between(1, 255));
            return text;
        };
        const std::string face = random.oneIn(2) ? bytes(40) : std::string(mono);
        expectInside(bytes(24), random.word(), random.between(-60, 15), random.between(-40, 14),
                     random.between(-40, 40), face);
    }
}

#else

TEST(iTextOut, without_a_rasteriser_answers_0_and_draws_nothing) {
    Surface surface(200, 60, ground);
    for (const char *text : {"Hxg", "", "a longer text\nin two lines"})
        for (const char *face : {"DejaVu Sans", "There Is No Such Face", ""})
            for (const int height : {-40, 0, 1, 16, 40})
                EXPECT_EQ(write(surface, text, white, 2, 3, height, face), 0) << text;
    EXPECT_EQ(surface.differenceFrom(Surface(200, 60, ground)), "");
}

#endif

} // namespace
