#include "walks/bands.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace qmur;

/// A corner's letter goes with it.
struct Lettered {
    int x;
    int letter;

    template <class Operation, class... Columns>
    static constexpr Lettered each(Operation operation, const Columns &...c) {
        return {operation(c.x...), operation(c.letter...)};
    }
};

template <std::size_t count>
std::string lettersOf(const std::array<Corner<Lettered>, count> &corners) {
    std::string letters;
    for (const Corner<Lettered> &corner : corners)
        letters += static_cast<char>(corner.at.letter);
    return letters;
}

/// The corners of each band's left and right edge, as in "AB AC, BC AC".
template <std::size_t count>
std::string bandsOf(const std::array<Corner<Lettered>, count> &corners) {
    std::string bands;
    forEachBand(corners, isLeftOfLine, [&bands](const Edge<Lettered> &left, const Edge<Lettered> &right) {
        const auto name = [](const Edge<Lettered> &edge) {
            return std::string{static_cast<char>(edge.upper.at.letter), static_cast<char>(edge.lower.at.letter)};
        };
        bands += (bands.empty() ? "" : ", ") + name(left) + " " + name(right);
    });
    return bands;
}

std::string bandsOfTriangle(int middleX) {
    return bandsOf(Triangle<Lettered>{{{0, {0, 'A'}}, {5, {middleX, 'B'}}, {10, {0, 'C'}}}});
}

std::string bandsOfQuad(int upperX, int lowerX) {
    return bandsOf(Quad<Lettered>{{{0, {0, 'A'}}, {4, {upperX, 'B'}}, {7, {lowerX, 'C'}}, {10, {0, 'D'}}}});
}

TEST(forEachBand, hands_over_whole_edges_on_either_side_of_the_line_with_a_corner_on_it_on_the_right) {
    EXPECT_EQ(bandsOfTriangle(-5), "AB AC, BC AC");
    EXPECT_EQ(bandsOfTriangle(5), "AC AB, AC BC");
    EXPECT_EQ(bandsOfQuad(-5, -5), "AB AD, BC AD, CD AD");
    EXPECT_EQ(bandsOfQuad(-5, 5), "AB AC, BD AC, BD CD");
    EXPECT_EQ(bandsOfQuad(5, -5), "AC AB, AC BD, CD BD");
    EXPECT_EQ(bandsOfQuad(5, 5), "AD AB, AD BC, AD CD");
    EXPECT_EQ(bandsOfTriangle(0), "AC AB, AC BC");
    EXPECT_EQ(bandsOfQuad(0, -5), "AC AB, AC BD, CD BD");
}

std::string sortedRows(int a, int b, int c, int d) {
    return lettersOf(sortedQuad(Quad<Lettered>{{{a, {0, 'a'}}, {b, {0, 'b'}}, {c, {0, 'c'}}, {d, {0, 'd'}}}}));
}

TEST(sortedQuad, exchanges_the_pairs_in_their_order) {
    EXPECT_EQ(sortedRows(1, 2, 3, 4), "abcd");
    EXPECT_EQ(sortedRows(4, 3, 2, 1), "dcba");
    EXPECT_EQ(sortedRows(5, 5, 5, 5), "abcd");
    EXPECT_EQ(sortedRows(2, 2, 1, 3), "cbad"); // the first of the equal two is thrown behind the second
}

std::string sortedPoints(float a, float b, float c) {
    const float rows[] = {a, b, c};
    const auto corner = [&rows](int i) { return Corner<Lettered>{static_cast<int>(rows[i]), {0, 'a' + i}}; };
    return lettersOf(sortedTriangle(a, b, c, corner));
}

TEST(sortedTriangle, puts_the_later_of_equal_rows_above_and_compares_the_third_with_whole_rows) {
    EXPECT_EQ(sortedPoints(1, 2, 3), "abc");
    EXPECT_EQ(sortedPoints(3, 2, 1), "cba");
    EXPECT_EQ(sortedPoints(5, 5, 9), "bac");
    EXPECT_EQ(sortedPoints(5, 9, 9), "acb");
    EXPECT_EQ(sortedPoints(5, 5, 5), "cba");
    EXPECT_EQ(sortedPoints(10.9F, 20, 10.1F), "acb"); // above the first as given, below its whole row
    EXPECT_EQ(sortedPoints(10.9F, 10.1F, 20), "bac"); // the first two as given
}

} // namespace
