#include <q_Mur.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <ostream>
#include <vector>

namespace {

/// What a search of one ring tells.
struct Found {
    int goesOn;
    int distanceSquare;

    friend bool operator==(const Found &, const Found &) = default;
    friend std::ostream &operator<<(std::ostream &out, const Found &found) {
        return out << (found.goesOn ? "going on at " : "ending at ") << found.distanceSquare;
    }
};

using Words = std::vector<q_ulong>;

/// Searches a block of words around one of them.
Found withLimit(Words &words, int index, int pitch, int ring, int limit) {
    Found found = {-1, -1};
    found.goesOn = FindNearBlackDistanceSquare(words.data(), static_cast<int>(words.size()), index, pitch, ring,
                                               &found.distanceSquare, limit);
    return found;
}
Found withoutLimit(Words &words, int index, int pitch, int ring) {
    Found found = {-1, -1};
    found.goesOn = FindNearBlackDistanceSquare(words.data(), static_cast<int>(words.size()), index, pitch, ring,
                                               &found.distanceSquare);
    return found;
}

/// Searches a surface of rows without margin for a colour.
Found searchColour(Words words, int width, int x, int y, int ring) {
    Found found = {-1, -1};
    found.goesOn = FindNearSrcDistanceSquare(words.data(), width, static_cast<int>(words.size()) / width, x, y, ring,
                                             &found.distanceSquare);
    return found;
}

/// A block of words that are not black, 9 by 9 with one row behind another, but for those at the given places.
struct Field {
    static constexpr int pitch = 9;
    static constexpr int middle = 4 * pitch + 4;
    Words words = Words(81, 1);

    Field &blacken(int dx, int dy) {
        words[static_cast<std::size_t>(middle + dy * pitch + dx)] = 0;
        return *this;
    }
    Found withLimit(int ring, int limit) { return ::withLimit(words, middle, pitch, ring, limit); }
    Found withoutLimit(int ring) { return ::withoutLimit(words, middle, pitch, ring); }
};

TEST(FindNearBlackDistanceSquare, with_a_limit_reports_the_nearest_black_of_the_ring) {
    EXPECT_EQ(Field().blacken(2, -1).withLimit(2, 100), (Found{0, 5}));
    EXPECT_EQ(Field().blacken(2, -1).blacken(-2, 0).withLimit(2, 100), (Found{0, 4}));
    EXPECT_EQ(Field().blacken(2, 2).withLimit(2, 100), (Found{0, 8}));
    EXPECT_EQ(Field().blacken(-2, 2).blacken(1, 2).withLimit(2, 100), (Found{0, 5}));
    EXPECT_EQ(Field().blacken(1, 0).withLimit(1, 100), (Found{0, 1}));
}

TEST(FindNearBlackDistanceSquare, with_a_limit_reports_no_more_than_that) {
    EXPECT_EQ(Field().blacken(2, 2).withLimit(2, 7), (Found{0, 7}));
    EXPECT_EQ(Field().blacken(2, 2).withLimit(2, 8), (Found{0, 8}));
    EXPECT_EQ(Field().blacken(1, 0).withLimit(1, 0), (Found{0, 0}));
    EXPECT_EQ(Field().blacken(1, 0).withLimit(1, -5), (Found{0, -5}));
}

TEST(FindNearBlackDistanceSquare, a_limit_below_1000000_ends_the_search_at_the_first_empty_ring) {
    EXPECT_EQ(Field().blacken(2, 0).withLimit(1, 50), (Found{0, 50}));
    EXPECT_EQ(Field().withLimit(1, 999999), (Found{0, 999999}));
    EXPECT_EQ(Field().withLimit(1, -1), (Found{0, -1}));
}

TEST(FindNearBlackDistanceSquare, a_limit_of_1000000_and_above_lets_the_search_go_on) {
    EXPECT_EQ(Field().withLimit(1, 1000000), (Found{1, 1000000}));
    EXPECT_EQ(Field().withLimit(1, 1000001), (Found{1, 1000000}));
    EXPECT_EQ(Field().withLimit(1, 0x7FFFFFFF), (Found{1, 1000000}));
    EXPECT_EQ(Field().blacken(2, 1).withLimit(2, 1000000), (Found{0, 5}));
}

TEST(FindNearBlackDistanceSquare, without_a_limit_reports_the_square_of_the_ring_in_any_case) {
    EXPECT_EQ(Field().blacken(2, -1).withoutLimit(2), (Found{0, 4}));
    EXPECT_EQ(Field().blacken(-3, 3).withoutLimit(3), (Found{0, 9}));
    EXPECT_EQ(Field().blacken(2, 0).withoutLimit(1), (Found{1, 1}));
    EXPECT_EQ(Field().withoutLimit(4), (Found{1, 16}));
}

TEST(FindNearBlackDistanceSquare, ring_0_is_the_word_itself) {
    EXPECT_EQ(Field().blacken(0, 0).withoutLimit(0), (Found{0, 0}));
    EXPECT_EQ(Field().blacken(1, 0).withoutLimit(0), (Found{1, 0}));
    EXPECT_EQ(Field().blacken(0, 0).withLimit(0, 9), (Found{0, 0}));
    EXPECT_EQ(Field().blacken(1, 0).withLimit(0, 9), (Found{0, 9}));
}

TEST(FindNearBlackDistanceSquare, a_ring_is_an_outline) {
    for (int dy = -4; dy <= 4; ++dy)
        for (int dx = -4; dx <= 4; ++dx) {
            const int on = std::abs(dx) > std::abs(dy) ? std::abs(dx) : std::abs(dy);
            Field field;
            field.blacken(dx, dy);
            // Beyond ring 4 the index wraps round the rows, and meets the word on another ring.
            for (int ring = 0; ring <= 4; ++ring) {
                const bool hit = ring == on;
                EXPECT_EQ(field.withLimit(ring, 60), (Found{0, hit ? dx * dx + dy * dy : 60}));
                EXPECT_EQ(field.withoutLimit(ring), (Found{hit ? 0 : 1, ring * ring}));
            }
        }
}

TEST(FindNearBlackDistanceSquare, a_top_byte_alone_is_not_black) {
    Field field;
    field.words[Field::middle + 1] = 0x01000000;
    EXPECT_EQ(field.withoutLimit(1), (Found{1, 1}));
    EXPECT_EQ(field.withLimit(1, 50), (Found{0, 50}));
    field.words[Field::middle + 1] = 0;
    EXPECT_EQ(field.withoutLimit(1), (Found{0, 1}));
}

TEST(FindNearBlackDistanceSquare, rings_wrap_round_at_the_ends_of_rows) {
    // Three rows of four: the word before the start of the second row is the end of the first.
    Words words(12, 5);
    words[3] = 0;
    EXPECT_EQ(withoutLimit(words, 4, 4, 1), (Found{0, 1}));
    EXPECT_EQ(withLimit(words, 4, 4, 1, 50), (Found{0, 1})); // at (-1, 0)
    EXPECT_EQ(withLimit(words, 8, 4, 1, 50), (Found{0, 2})); // at (-1, -1)
    words[3] = 5;
    words[8] = 0;
    EXPECT_EQ(withLimit(words, 7, 4, 1, 50), (Found{0, 1})); // at (1, 0)
    EXPECT_EQ(withLimit(words, 3, 4, 1, 50), (Found{0, 2})); // at (1, 1)
}

TEST(FindNearBlackDistanceSquare, squares_of_1000000_and_above_do_not_count) {
    // In a row of words whose pitch is larger than the row, the other rows of the ring lie outside.
    Words words(1002, 1);
    words[0] = 0;
    EXPECT_EQ(withLimit(words, 999, 5000, 999, 0x7FFFFFFF), (Found{0, 999 * 999}));
    EXPECT_EQ(withoutLimit(words, 999, 5000, 999), (Found{0, 999 * 999}));
    EXPECT_EQ(withLimit(words, 1000, 5000, 1000, 0x7FFFFFFF), (Found{1, 1000000}));
    EXPECT_EQ(withoutLimit(words, 1000, 5000, 1000), (Found{1, 1000000}));
    // Nor do those beyond 32 bits.
    words.assign(100001, 1);
    words[0] = 0;
    EXPECT_EQ(withLimit(words, 100000, 1, 50000, 0x7FFFFFFF), (Found{1, 1000000}));
    EXPECT_EQ(withoutLimit(words, 100000, 1, 50000).goesOn, 1);
}

TEST(FindNearSrcDistanceSquare, a_top_byte_alone_is_no_colour) {
    EXPECT_EQ(searchColour({0, 0xFF000000, 0, 0, 0, 0, 0, 0, 0}, 3, 1, 1, 1), (Found{1, 1000000}));
    EXPECT_EQ(searchColour({0, 0x00010000, 0, 0, 0, 0, 0, 0, 0}, 3, 1, 1, 1), (Found{0, 1}));
}

TEST(FindNearSrcDistanceSquare, rings_end_at_the_sides_of_the_surface) {
    // The end of one row does not neighbour the start of the next.
    const Words words = {0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0};
    for (const int ring : {1, 2, 4})
        EXPECT_EQ(searchColour(words, 4, 0, 1, ring), (Found{1, 1000000}));
    EXPECT_EQ(searchColour(words, 4, 0, 1, 3), (Found{0, 10}));
}

TEST(FindNearSrcDistanceSquare, squares_of_1000000_and_above_do_not_count) {
    Words words(1002);
    words[0] = 1;
    EXPECT_EQ(searchColour(words, 1002, 999, 0, 999), (Found{0, 999 * 999}));
    EXPECT_EQ(searchColour(words, 1002, 1000, 0, 1000), (Found{1, 1000000}));
}

} // namespace
