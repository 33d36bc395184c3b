#include "blit/text.h"
#include "support/cases.h"
#include "support/pictures.h"
#include "support/sanitizer.h"

#include <algorithm>
#include <tuple>

#if !defined(__wasm__)
#include <thread>
#endif

#if defined(_WIN32)
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>
#endif

#if defined(Q_MUR_TESTS_ADDRESS_SANITIZER) && defined(__clang__)
#define Q_MUR_TESTS_DETECT_LEAKS
#include <sanitizer/lsan_interface.h>
#endif

namespace {

using namespace test;

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

    static inline std::tuple<const char *, q_ulong, int, const char *> asked;
    static inline qmur::TextRaster letters = {};
    static inline bool isAlive = false;
};

/// Draws a picture without margins, as rasterisers deliver it.
int drawFake(Surface &dst, Pixels letters, int width, int x, int y, const tagRECT &clip) {
    FakeText::letters = {letters.data(), width, static_cast<int>(letters.size()) / width};
    return qmur::drawText<FakeText>(dst.pixels(), clip, dst.pitch(), "text", white, x, y, 16, "face");
}

TEST(iTextOut_placing, hands_over_its_arguments_as_they_stand_and_answers_0_without_pixels) {
    Surface dst(4, 4);
    q_ulong letters[4] = {};
    FakeText::letters = {letters, 2, 2};
    const char text[] = "words";
    const char name[] = "face";
    qmur::drawText<FakeText>(dst.pixels(), dst.rect(), dst.pitch(), text, 0x89ABCDEF, 0, 0, -17, name);
    EXPECT_EQ(FakeText::asked, std::tuple(text, q_ulong{0x89ABCDEF}, -17, name));
    EXPECT_FALSE(FakeText::isAlive) << "the rasteriser must go with the call";
    dst = Surface(4, 4, ground);
    FakeText::letters = {nullptr, 2, 2};
    EXPECT_EQ(qmur::drawText<FakeText>(dst.pixels(), dst.rect(), dst.pitch(), "", white, 0, 0, 16, ""), 0);
    EXPECT_EQ(dst.differenceFrom(Surface(4, 4, ground)), "");
    EXPECT_FALSE(FakeText::isAlive);
}

TEST(iTextOut_placing, odd_width_loses_last_column_and_odd_height_last_row) {
    Surface dst(8, 8, ground);
    const Surface letters = numbered(5, 3);
    const Surface expected = showing(dst, 1, 2, letters, {0, 0, 4, 2});
    EXPECT_EQ(drawFake(dst, pixelsOf(letters), 5, 1, 2, dst.rect()), 1);
    EXPECT_EQ(dst.differenceFrom(expected), "");
}

TEST(iTextOut_placing, positions_at_the_ends_of_the_numbers_draw_nothing) {
    for (int width = 1; width <= 5; ++width)
        for (int distance = 0; distance < 8; ++distance)
            for (const int end : {leastInt + distance, greatestInt - distance}) {
                Surface dst(4, 4, ground);
                const Pixels letters(static_cast<std::size_t>(width * (6 - width)), white);
                for (const auto &[x, y] : {std::pair{end, 0}, {0, end}, {end, end}})
                    EXPECT_EQ(drawFake(dst, letters, width, x, y, dst.rect()), 1);
                ASSERT_EQ(dst.differenceFrom(Surface(4, 4, ground)), "") << width << " columns at " << end;
            }
}

TEST(iTextOut_placing, rasters_have_pixels_and_no_more_bytes_than_an_int_counts) {
    // 536870911 is (2^31 - 1) / 4, and 16384 by 32768 pixels have 2^31 bytes.
    for (const auto &[width, height] : {std::pair{1LL, 1LL}, {536870911, 1}, {16384, 32767}})
        EXPECT_TRUE(qmur::canBeRaster(width, height)) << width;
    for (const auto &[width, height] :
         {std::pair{0LL, 16LL}, {16, 0}, {-4, -4}, {536870912, 1}, {16384, 32768}, {1LL << 40, 1LL << 40}})
        EXPECT_FALSE(qmur::canBeRaster(width, height)) << width;
}

/// Every pixel that is not 0, but for a last odd column and row, where it lies in the clip's width and height.
TEST(iTextOut_placing, agrees_with_a_naive_placing) {
    forEachCase("iTextOut placing", [](Case &c) {
        Surface dst = Surface::random(c.random);
        const int width = c.random.between(1, 16);
        const int height = c.random.between(1, 16);
        Pixels letters(static_cast<std::size_t>(width * height));
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

/// The smallest rectangle around all ink from a row on; empty where there is none.
struct Ink {
    explicit Ink(const Surface &surface, int firstRow = 0) : left(surface.width()), top(surface.height()) {
        for (int y = firstRow; y < surface.height(); ++y)
            for (int x = 0; x < surface.width(); ++x)
                if (surface.at(x, y) != ground) {
                    left = std::min(left, x), right = std::max(right, x + 1);
                    top = std::min(top, y), bottom = std::max(bottom, y + 1);
                }
    }

    int width() const { return right - left; }
    int height() const { return bottom - top; }

    int left;
    int top;
    int right = 0;
    int bottom = 0;
};

Ink inkOf(const std::string &text, int fontHeight = 40, const std::string &face = sans) {
    return Ink(page(text, fontHeight, face));
}

int countOf(const Surface &surface, q_ulong pixel) {
    return static_cast<int>(std::count(surface.words().begin(), surface.words().end(), pixel));
}

TEST(iTextOut, ink_lies_in_the_line_behind_the_corner) {
    for (const int height : {12, 16, 25, 40, 64}) {
        const Ink ink = inkOf("Hxgj", height);
        EXPECT_GE(ink.left, 20) << height;
        EXPECT_LE(ink.right, 20 + 4 * height) << height;
        EXPECT_GE(ink.top, 30) << height;
        EXPECT_LE(ink.bottom, 30 + height + 1) << height;
        EXPECT_GE(ink.height(), height / 2) << height;
        EXPECT_GE(ink.width(), height / 2) << height;
    }
}

#if !defined(_WIN32) // where GDI places letters and reads characters by itself
TEST(iTextOut, letters_are_whole_at_the_corner_and_behind_it) {
    for (int height = 8; height <= 24; ++height) {
        const auto inkedPixels = [height](const std::string &text) {
            const Surface surface = page(text, height);
            return static_cast<int>(surface.words().size()) - countOf(surface, ground);
        };
        // The space behind it keeps the letter out of an odd last column, which is lost.
        EXPECT_EQ(inkedPixels(" l "), inkedPixels("l ")) << height;
        EXPECT_EQ(inkedPixels("\nl "), inkedPixels("l ")) << height;
    }
}

TEST(iTextOut, a_repeated_letter_looks_like_its_first) {
    for (int height = 8; height <= 60; height += 4) {
        const Surface alone = page("g ", height);
        const Surface twice = page("g g ", height);
        const Ink ink(alone);
        const int step = Ink(twice).right - ink.right;
        ASSERT_GT(step, ink.width()) << height;
        for (int y = ink.top; y < ink.bottom; ++y)
            for (int x = ink.left; x < ink.right; ++x) {
                ASSERT_EQ(twice.at(x, y), alone.at(x, y)) << height;
                ASSERT_EQ(twice.at(x + step, y), alone.at(x, y)) << height;
            }
    }
}

TEST(iTextOut, letters_with_marks_are_those_of_code_page_1252) {
    for (const auto &[letter, marked] :
         {std::pair{"S", "\x8A"}, {"s", "\x9A"}, {"Z", "\x8E"}, {"z", "\x9E"}, {"Y", "\x9F"}}) {
        EXPECT_LT(inkOf(marked, 60).top, inkOf(letter, 60).top) << letter; // with a caron or two dots
        EXPECT_EQ(inkOf(marked, 60).bottom, inkOf(letter, 60).bottom) << letter;
        EXPECT_NEAR(inkOf(marked, 60).width(), inkOf(letter, 60).width(), 2) << letter;
    }
    EXPECT_LT(inkOf("\x9C", 60).height(), inkOf("\x8C", 60).height()); // oe and OE
}
#endif

TEST(iTextOut, negative_height_is_that_of_the_letters_and_larger_and_0_is_what_is_usual) {
    EXPECT_GT(inkOf("H", -60).height(), inkOf("H", 60).height());
    EXPECT_LT(inkOf("H", -60).height(), 60);
    EXPECT_GT(inkOf("Hxg", 0).height(), 5);
    EXPECT_LT(inkOf("Hxg", 0).height(), 60);
}

TEST(iTextOut, colour_has_red_in_its_lowest_byte_and_0_draws_nothing_and_answers_1) {
    EXPECT_EQ(page("HHH", 40, sans, 0).differenceFrom(Surface(400, 200, ground)), "");
    for (const auto &[colour, pixel] :
         {std::pair{0x0000FFu, 0xFF0000u}, {0x00FF00, 0x00FF00}, {0xFF0000, 0x0000FF}, {0x204080, 0x804020}}) {
        const Surface surface = page("HHH", 60, sans, colour);
        EXPECT_GT(countOf(surface, pixel), 300) << colour;
        for (const q_ulong word : surface.words())
            for (const q_ulong channel : {0xFFu, 0xFF00u, 0xFFFF0000u}) {
                EXPECT_TRUE(word == ground || (word & channel) <= (pixel & channel)) << word;
            }
    }
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

TEST(iTextOut, letters_are_bold_and_have_holes) {
    // A stem of this face has less than an eighth of the line's height in the regular weight, more in the bold one.
    const auto middleRow = [](const Surface &surface) {
        return rowIn(surface, (Ink(surface).top + Ink(surface).bottom) / 2);
    };
    const Pixels stem = middleRow(page("I", 100));
    EXPECT_NEAR(static_cast<double>(std::count(stem.begin(), stem.end(), white)), 19, 6);
    const Ink ring = inkOf("O", 60);
    const Pixels hole = middleRow(page("O", 60));
    const auto middle = hole.begin() + (ring.left + ring.right) / 2;
    EXPECT_EQ(std::count(middle - 3, middle + 4, ground), 7);
    EXPECT_GT(countOf(page("O", 60), white), 200);
}

TEST(iTextOut, the_name_chooses_the_face_and_an_unknown_empty_or_missing_one_falls_back) {
    EXPECT_EQ(inkOf("iiii|", 30, mono).right, inkOf("WWWW|", 30, mono).right);
    EXPECT_LT(inkOf("iiii|", 30, sans).right, inkOf("WWWW|", 30, sans).right);
    for (const std::string &face :
         {std::string("There Is No Such Face"), std::string(), std::string(5000, 'n'), std::string("\xFF\xC3")}) {
        EXPECT_GT(inkOf("Hxg", 40, face).width(), 20);
        EXPECT_GT(inkOf("Hxg", 40, face).height(), 15);
    }
    Surface surface(200, 80, ground);
    tagRECT clip = surface.rect();
    char text[] = "Hxg";
    EXPECT_EQ(iTextOut(surface.pixels(), &clip, surface.pitch(), text, white, 2, 3, 40, nullptr), 1);
    EXPECT_GT(countOf(surface, white), 100);
}

TEST(iTextOut, empty_text_answers_0_beyond_the_clip_1_and_both_write_nothing) {
    Surface surface(60, 40, ground);
    EXPECT_EQ(write(surface, "", white, 0, 0, 16, sans), 0);
    tagRECT clip = surface.rect();
    char face[] = "";
    EXPECT_EQ(iTextOut(surface.pixels(), &clip, surface.pitch(), nullptr, white, 0, 0, 16, face), 0);
    EXPECT_EQ(surface.differenceFrom(Surface(60, 40, ground)), "");
    for (const auto &[x, y] : {std::pair{60, 0},
                               {0, 40},
                               {-2000, 0},
                               {0, -2000},
                               {leastInt, leastInt},
                               {greatestInt, greatestInt},
                               {greatestInt - 5, 3}}) {
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
    const auto writtenIn = [](tagRECT clip) {
        Surface surface(100, 60, ground);
        char text[] = "Hxgh";
        char face[] = "DejaVu Sans";
        EXPECT_EQ(iTextOut(surface.pixels(), &clip, surface.pitch(), text, white, 5, 6, 30, face), 1);
        return surface;
    };
    const Surface atOrigin = writtenIn({0, 0, 50, 25});
    EXPECT_EQ(writtenIn({1000, -70, 1050, -45}).differenceFrom(atOrigin), "");
    EXPECT_EQ(Ink(atOrigin).right, 50);
    EXPECT_EQ(Ink(atOrigin).bottom, 25);
}

TEST(iTextOut, characters_are_those_of_code_page_1252) {
    EXPECT_LT(inkOf("\xC4", 60).top, inkOf("A", 60).top); // A with its two dots
    EXPECT_EQ(inkOf("\xC4", 60).bottom, inkOf("A", 60).bottom);
    EXPECT_GT(inkOf("\xC7", 60).bottom, inkOf("C", 60).bottom); // C with its cedilla
    EXPECT_NEAR(inkOf("\x80", 60).top, inkOf("C", 60).top, 2);  // the euro
    EXPECT_NEAR(inkOf("\x80", 60).bottom, inkOf("C", 60).bottom, 2);
    EXPECT_FALSE(page("\x80", 60) == page("C", 60));
    // Each dash is as wide as it is called, and no box that stands for a lacking character.
    EXPECT_LT(inkOf("-", 60).width(), inkOf("\x96", 60).width());
    EXPECT_LT(inkOf("\x96", 60).width(), inkOf("\x97", 60).width());
    EXPECT_LT(inkOf("\x97", 60).height(), 12);
}

// GDI rounds a font's em and with it the height of its lines.
#if defined(_WIN32)
constexpr double lineHeightError = 1.0;
#else
constexpr double lineHeightError = 0.0;
#endif

TEST(iTextOut, lines_are_centred_as_far_apart_as_a_positive_height_says) {
    for (int height = 8; height <= 64; ++height) {
        const Ink one = inkOf("H", height);
        const Ink two = inkOf("H\nH", height);
        EXPECT_EQ(two.top, one.top) << height;
        EXPECT_NEAR(two.bottom - one.bottom, height, lineHeightError) << height;
    }
    const Ink first = inkOf("HHHHHH", 30);
    const Ink second(page("HHHHHH\nH", 30), first.bottom);
    EXPECT_NEAR(second.bottom - first.bottom, 30, lineHeightError);
    EXPECT_NEAR(second.left + second.right, first.left + first.right, 3);
}

TEST(iTextOut, an_ampersand_underlines_and_two_stand_for_one) {
    const Surface plain = page("HIH");
    const Surface underlined = page("H&IH");
    EXPECT_GT(Ink(underlined).bottom, Ink(plain).bottom);
    EXPECT_EQ(Ink(underlined).right, Ink(plain).right);
    const tagRECT line = {0, 0, plain.width(), Ink(plain).bottom};
    EXPECT_EQ(showing(underlined, 0, 0, plain, line).differenceFrom(underlined), "");
    EXPECT_GT(inkOf("H&&H").right, inkOf("HH").right + 10);
}

TEST(iTextOut, breaks_and_ampersands_mean_the_same_in_any_company) {
    const std::pair<const char *, const char *> equal[] = {
        // Breaks of all systems, and one at the end.
        {"HHH\r\nH", "HHH\nH"},
        {"HHH\rH", "HHH\nH"},
        {"HHH\nH\n", "HHH\nH"},
        // Of several ampersands in a line the last one underlines, in each line.
        {"H&I&H", "HI&H"},
        {"&H&&&I&&H", "H&&&I&&H"},
        {"&H&I\n&I&H", "H&I\nI&H"},
        // One before a break is dropped, and one at the end is a character.
        {"H&\nIH", "H\nIH"},
        {"H&\rIH", "H\nIH"},
        {"H&\r\nIH", "H\nIH"},
        {"H&I&\nHH", "H&I\nHH"},
        {"H&I&\r\nHH", "H&I\nHH"},
        {"H&", "H&&"},
        {"H&I&", "H&I&&"},
        {"H\n&", "H\n&&"}};
    for (const auto &[text, other] : equal)
        EXPECT_EQ(page(text).differenceFrom(page(other)), "") << text;
    const std::pair<const char *, const char *> different[] = {
        {"HHH\n\nH", "HHH\nH"}, {"H&I&H", "H&IH"}, {"H&I\nI&H", "H&I\nIH"}, {"H&I\nI&H", "HI\nI&H"}};
    for (const auto &[text, other] : different)
        EXPECT_FALSE(page(text) == page(other)) << text;
}

#if !defined(__wasm__) // where a program is one thread
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
#endif

/// Whether a call answers 0 or 1, writes nothing with an answer of 0, and never beside a clip of 10 by 8.
void expectInside(const std::string &text, q_ulong colour, int x, int y, int fontHeight, const std::string &face) {
    const Surface before(30, 20, ground);
    Surface surface = before;
    tagRECT clip = {0, 0, 10, 8};
    const int result = iTextOut(surface.pixels(), &clip, surface.pitch(), std::string(text).data(), colour, x, y,
                                fontHeight, std::string(face).data());
    EXPECT_TRUE(result == 0 || result == 1);
    const tagRECT unwritten = {0, 0, result == 0 ? 0 : 10, 8};
    EXPECT_EQ(showing(surface, 0, 0, before, unwritten).differenceFrom(before), "");
}

TEST(iTextOut, sizes_beyond_reason_write_inside_the_clip_or_nothing) {
    for (const int height :
         {leastInt, leastInt + 1, -1000000, -70000, -30000, -1, 1, 2, 30000, 70000, 1000000, greatestInt}) {
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

TEST(iTextOut, each_call_gives_its_objects_back) {
    // All GDI objects that a program may have, 10,000 or more, are taken but for a hundred.
    constexpr std::size_t all = 0x10000; // a handle has 16 bits for its index
    std::vector<HBRUSH> taken;
    HBRUSH brush;
    while (taken.size() < all && (brush = CreateSolidBrush(0)) != nullptr)
        taken.push_back(brush);
    const bool isScarce = taken.size() < all;
    for (int i = 0; i < 100; ++i, taken.pop_back())
        DeleteObject(taken.back());
    Surface surface(40, 16, ground);
    int written = 0;
    while (isScarce && written < 12000 && write(surface, "H&x", white, 1, 1, 8, sans) == 1)
        ++written;
    for (const HBRUSH other : taken)
        DeleteObject(other);
    EXPECT_EQ(written, 12000) << (isScarce ? "" : "there is no end of objects here");
}

#endif

TEST(iTextOut, any_bytes_stay_inside_the_clip) {
    for (int seed = 0; seed < 300; ++seed) {
        SCOPED_TRACE(seed);
        Random random(static_cast<std::uint64_t>(seed));
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
