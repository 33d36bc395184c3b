#include "support/deep_stack.h"
#include "support/pictures.h"
#include "support/sanitizer.h"

#include <algorithm>
#include <cstddef>

namespace {

using namespace test;

using Bytes = std::vector<unsigned char>;

constexpr q_ulong borderColor = 0x00FF00FF;
constexpr unsigned char borderValue = 7;
const Colours boundary = {{'#', borderColor}};
const Colours paint = {{'.', 0}, {'+', 5}};

/// A fill with colour 5 on a surface of its own, between the boundaries of another one.
struct Fill {
    explicit Fill(const Rows &boundaries) : test(pictureOf(boundaries, boundary)), dst(test.width(), test.height()) {
        SetRegionFill(&data, dst.pixels(), dst.pitch(), test.pixels(), test.pitch());
    }

    int from(int x, int y, tagRECT rect, int parentLeft = 0, int parentRight = 0, int direction = 0) {
        return Region_Fill(&data, x, y, 5, borderColor, parentLeft, parentRight, direction, &rect);
    }

    Surface test;
    Surface dst;
    _PRIVATE_QMGP_DATA data = {};
};

/// What a fill from a seed paints.
Rows painted(const Rows &boundaries, tagRECT rect, int x, int y) {
    Fill fill(boundaries);
    fill.from(x, y, rect);
    return rowsOf(fill.dst, paint);
}

/// A plane of bytes by its rows; '#' is the boundary.
Bytes planeOf(const Rows &rows) {
    Bytes bytes;
    for (const std::string &row : rows)
        for (const char c : row)
            bytes.push_back(c == '#' ? borderValue : 0);
    return bytes;
}

/// The plane after a fill with the boundary's own value, and the fill's answer.
std::pair<Rows, int> filledPlane(Rows rows, tagRECT rect, int x, int y) {
    const int width = static_cast<int>(rows[0].size());
    Bytes plane = planeOf(rows);
    _PRIVATE_QMGP_DATA data = {};
    bSetRegionFill(&data, plane.data(), &rect, width);
    const int answer = bRegion_Fill(&data, x, y, borderValue, 0, 0, 0);
    for (std::size_t i = 0; i < plane.size(); ++i)
        rows[i / rows[0].size()][i % rows[0].size()] = plane[i] == borderValue ? '#' : '.';
    return {rows, answer};
}

TEST(Region_Fill, works_on_the_block_of_the_block_manager) {
    _TRANSFERDATA host = {};
    _PRIVATE_QMGP_DATA *const data = GetPrivate_QMGP_Data(&host, 0);
    ASSERT_NE(data, nullptr);
    Surface surface(5, 5);
    tagRECT rect = surface.rect();
    SetRegionFill(data, surface.pixels(), surface.pitch(), surface.pixels(), surface.pitch());
    Region_Fill(data, 2, 2, 5, 5, 0, 0, 0, &rect);
    EXPECT_EQ(rowsOf(surface, paint), Rows(5, "+++++"));
    DeleteMemoryBlocks(&host);
}

TEST(Region_Fill, boundaries_count_in_all_32_bits) {
    Fill fill({"#####", "#...#", "#...#", "#...#", "#####"});
    fill.test.at(2, 2) = borderColor | 0x80000000; // no boundary
    fill.from(1, 1, {0, 0, 5, 5});
    EXPECT_EQ(rowsOf(fill.dst, paint), (Rows{".....", ".+++.", ".+++.", ".+++.", "....."}));
}

TEST(Scans, stop_beside_the_boundary_or_at_their_limits_of_which_the_left_one_is_included) {
    Fill fill({"..........", "..#....#..", ".........."});
    fill.test.at(4, 0) = borderColor | 0x01000000; // no boundary: that counts in all 32 bits
    const auto left = [&](int x, int limit, int y = 1) { return scan_left(&fill.data, x, y, borderColor, limit); };
    const auto right = [&](int x, int limit) { return scan_right(&fill.data, x, 1, borderColor, limit); };
    EXPECT_EQ(left(5, 0), 3);
    EXPECT_EQ(left(3, 0), 3);
    EXPECT_EQ(left(5, 4), 4);
    EXPECT_EQ(left(5, 5), 5);
    EXPECT_EQ(left(1, 0), 0);
    EXPECT_EQ(left(5, 0, 0), 0);
    EXPECT_EQ(right(4, 10), 6);
    EXPECT_EQ(right(6, 10), 6);
    EXPECT_EQ(right(4, 6), 5);
    EXPECT_EQ(right(4, 5), 4);
    EXPECT_EQ(right(8, 10), 9);
    // On the boundary itself they cross over, and beyond their limit they stay where they are.
    EXPECT_EQ(left(7, 0), 8);
    EXPECT_EQ(right(7, 10), 6);
    EXPECT_EQ(left(4, 6), 4);
    EXPECT_EQ(right(5, 4), 5);
    EXPECT_EQ(right(5, 5), 5);
}

/// Scans a row, on whichever surface its elements lie, with the boundary's colour or value.
int scanned(catalogue::Plane &row, int x, int limit, bool toTheLeft) {
    _PRIVATE_QMGP_DATA data = {};
    if (row.elementBytes() == 4) {
        SetRegionFill(&data, nullptr, 0, row.as<q_ulong>(), row.pitch());
        return (toTheLeft ? scan_left : scan_right)(&data, x, 0, borderColor, limit);
    }
    tagRECT limits = toTheLeft ? tagRECT{limit, 0, x, 1} : tagRECT{x, 0, limit, 1};
    bSetRegionFill(&data, row.as<unsigned char>(), &limits, row.pitch());
    return (toTheLeft ? bscan_left : bscan_right)(&data, x, 0, borderValue);
}

/// The boundary at every place among the elements that are compared at once, behind an open stretch of any length, and
/// with limits before and behind it. Where it is the last element, none can be read behind it.
void expectScansOfAnyLength(int elementBytes, bool toTheLeft) {
    constexpr int length = 320;
    catalogue::Plane row(elementBytes, length, 1);
    row = row.cutTo(row.rect(), toTheLeft ? catalogue::Fence::before : catalogue::Fence::behind);
    const auto set = [&](int x, bool isBoundary) {
        if (elementBytes == 4)
            row.as<q_ulong>()[x] = isBoundary ? borderColor : 0;
        else
            row.as<unsigned char>()[x] = isBoundary ? borderValue : 0;
    };
    const int step = toTheLeft ? -1 : 1;
    for (int behind = 0; behind < 64; ++behind) {
        const int wall = toTheLeft ? behind : length - 1 - behind;
        set(wall, true);
        for (int open = 1; open <= length - 64; ++open) {
            const int x = wall - open * step;
            ASSERT_EQ(scanned(row, x, wall + 1000 * step, toTheLeft), wall - step) << x << " to " << wall;
            for (const int ahead : {0, 1, open / 2}) { // the left limit itself is open, the right one is not
                const int limit = wall - ahead * step;
                const int last = toTheLeft ? std::max(limit, wall + 1) : std::max(limit - 1, x);
                ASSERT_EQ(scanned(row, x, limit, toTheLeft), last) << x << " to " << wall << " within " << limit;
            }
        }
        set(wall, false);
    }
}

TEST(Scans, of_any_length_find_the_boundary_and_read_nothing_behind_it) {
    for (const bool toTheLeft : {true, false})
        for (const int elementBytes : {1, 4})
            expectScansOfAnyLength(elementBytes, toTheLeft);
}

// Fills

TEST(Region_Fill, paints_what_a_boundary_encloses_and_corners_do_not_connect) {
    EXPECT_EQ(
        painted({"..........", ".########.", ".#......#.", ".####.#.#.", ".#....#.#.", ".########.", ".........."},
                {0, 0, 10, 7}, 2, 4),
        (Rows{"..........", "..........", "..++++++..", ".....+.+..", "..++++.+..", "..........", ".........."}));
    EXPECT_EQ(painted({"########", "#..#...#", "#..#...#", "###....#", "#......#", "########"}, {0, 0, 8, 6}, 1, 1),
              (Rows{"........", ".++.....", ".++.....", "........", "........", "........"}));
}

TEST(Region_Fill, turns_back_where_a_span_overhangs_its_parent) {
    // From the seed at the foot of the left shaft: up, over, down the right shaft, and from there up the middle one.
    EXPECT_EQ(painted({"###########", "#.........#", "#.###.###.#", "#.###.###.#", "#.####....#", "###########",
                       "..........."},
                      {0, 0, 11, 7}, 1, 4),
              (Rows{"...........", ".+++++++++.", ".+...+...+.", ".+...+...+.", ".+....++++.", "...........",
                    "..........."}));
}

TEST(Region_Fill, the_left_limit_is_painted_the_right_one_is_not_and_the_top_row_goes_to_row_0_of_the_surface) {
    EXPECT_EQ(painted(Rows(5, "......."), {2, 0, 5, 5}, 3, 2), Rows(5, "..+++.."));
    // Row 2 is the first within the limits: its pixels are laid on row 0, and it stays as it was.
    EXPECT_EQ(
        painted({".......", ".......", "...#...", ".......", ".......", ".......", "......."}, {1, 2, 6, 7}, 3, 4),
        (Rows{".++.++.", ".......", ".......", ".+++++.", ".+++++.", ".+++++.", ".+++++."}));
}

TEST(Region_Fill, the_first_and_the_last_row_are_painted_column_by_column_and_not_scanned) {
    // Beyond the boundary in row 4 the last row is open, but reached from above alone.
    EXPECT_EQ(
        painted({"#######", "#.....#", "#.....#", "#.....#", "##...##", "....#..", "......."}, {0, 0, 7, 6}, 3, 2),
        (Rows{".......", ".+++++.", ".+++++.", ".+++++.", "..+++..", "..++...", "......."}));
    EXPECT_EQ(painted({"..#....", "##...##", "#.....#", "#######", "......."}, {0, 0, 7, 5}, 3, 2),
              (Rows{"...++..", "..+++..", ".+++++.", ".......", "......."}));
}

TEST(Region_Fill, a_seed_in_the_first_or_last_row_or_beyond_marks_one_pixel) {
    for (const auto &[seed, row] : {std::pair{2, 0}, {1, 0}, {-3, 0}, {4, 4}, {5, 4}, {9, 4}}) {
        Fill fill(Rows(6, "....."));
        EXPECT_EQ(fill.from(3, seed, {0, 2, 5, 5}), 3);
        Rows expected(6, ".....");
        expected[static_cast<std::size_t>(row)] = "...+.";
        EXPECT_EQ(rowsOf(fill.dst, paint), expected) << seed;
    }
    // On the boundary of the first row, too.
    EXPECT_EQ(painted({"#####", ".....", "....."}, {0, 0, 5, 3}, 2, 0), (Rows{"..+..", ".....", "....."}));
}

TEST(Region_Fill, a_seed_on_a_boundary_is_answered_the_column_before_it_and_any_other_the_last_of_its_span) {
    Fill fill({".....", ".....", "..#..", ".....", "....."});
    EXPECT_EQ(fill.from(2, 2, {0, 0, 5, 5}), 1);
    EXPECT_EQ(rowsOf(fill.dst, paint), Rows(5, "....."));
    EXPECT_EQ(Fill({"#######", "#.....#", "##...##", "#.....#", "......."}).from(3, 2, {0, 0, 7, 5}), 4);
}

TEST(Region_Fill, directions_go_up_or_down_and_look_back_beside_their_parent_only) {
    // Rows 0 and 3 are the edges: each of their columns is marked by itself.
    Fill up(Rows(5, "......."));
    EXPECT_EQ(up.from(3, 2, {0, 0, 7, 4}, 2, 4, 1), 6);
    EXPECT_EQ(rowsOf(up.dst, paint), (Rows{"+++++++", "+++++++", "+++++++", "++...++", "......."}));
    Fill down(Rows(5, "......."));
    EXPECT_EQ(down.from(3, 1, {0, 0, 7, 4}, 2, 4, 2), 6);
    EXPECT_EQ(rowsOf(down.dst, paint), (Rows{"++...++", "+++++++", "+++++++", "+++++++", "......."}));
}

TEST(Region_Fill, an_island_is_gone_round_if_what_is_painted_is_boundary) {
    Fill fill({"#########", "#.......#", "#.##.#..#", "#..#.##.#", "#.......#", "#########", "........."});
    SetRegionFill(&fill.data, fill.test.pixels(), fill.test.pitch(), fill.test.pixels(), fill.test.pitch());
    tagRECT rect = fill.test.rect();
    Region_Fill(&fill.data, 1, 1, borderColor, borderColor, 0, 0, 0, &rect);
    Rows expected(7, "#########");
    expected[6] = ".........";
    EXPECT_EQ(rowsOf(fill.test, {{'.', 0}, {'#', borderColor}}), expected);
}

TEST(bRegion_Fill, an_island_is_gone_round_and_the_edges_go_to_row_0_and_to_the_last_row) {
    EXPECT_EQ(
        filledPlane({".......", ".......", "..###..", "..#.#..", "..###..", ".......", "......."}, {0, 0, 7, 7}, 0, 3)
            .first,
        (Rows{"#######", "#######", "#######", "###.###", "#######", "#######", "#######"}));
    EXPECT_EQ(filledPlane(Rows(6, "....."), {1, 1, 4, 5}, 2, 3).first,
              (Rows{".###.", ".....", ".###.", ".###.", ".###.", "....."}));
}

TEST(bRegion_Fill, a_second_fill_from_the_same_seed_paints_nothing) {
    const auto [once, first] = filledPlane({"#######", "#..#..#", "#..#..#", "#######"}, {0, 0, 7, 4}, 1, 1);
    EXPECT_EQ(once, (Rows{"#######", "####..#", "####..#", "#######"}));
    EXPECT_EQ(first, 2);
    const auto [twice, second] = filledPlane(once, {0, 0, 7, 4}, 1, 1);
    EXPECT_EQ(twice, once);
    EXPECT_EQ(second, 0);
}

TEST(Region_Src_Fill, copies_the_region_and_marks_the_edge_rows_on_the_plane) {
    // The first row within the limits is 1: marked in row 0. The last one is 4.
    Bytes plane = planeOf({".......", ".......", "#.....#", "##...##", "......."});
    Pixels src = pixelsOf(numbered(7, 5));
    Pixels dst(7 * 5);
    _PRIVATE_QMGP_DATA data = {};
    tagRECT rect = {0, 1, 7, 5};
    SetRegionSrcFill(&data, dst.data(), 7, src.data(), 7, plane.data(), &rect, 7);
    EXPECT_EQ(Region_Src_Fill(&data, 3, 3, borderValue, 0, 0, 0), 4);
    Pixels expected(7 * 5);
    for (const auto &[first, count] : {std::pair{2 * 7 + 1, 5}, {3 * 7 + 2, 3}})
        std::copy_n(src.begin() + first, count, expected.begin() + first);
    EXPECT_EQ(dst, expected);
    EXPECT_EQ(plane, planeOf({".#####.", ".......", "#.....#", "##...##", "..###.."}));
}

TEST(Region_Src_Fill, the_rows_above_and_below_are_found_by_the_pitch_of_the_source) {
    // The plane's rows are 8 bytes long, the source's 10 words. Above the span of columns 2 to 7 in row 2 bytes 12 to
    // 17 are looked at, below it bytes 32 to 37. All of them are boundary, so the span is copied alone, though the
    // plane is open above and below it.
    Bytes plane(8 * 6, 0);
    for (const int first : {12, 32}) // columns 0 and 1 of row 2 are among them
        std::fill_n(plane.begin() + first, 6, borderValue);
    const Bytes before = plane;
    Pixels source(10 * 6, 0xCD);
    Pixels dst(8 * 6);
    _PRIVATE_QMGP_DATA data = {};
    tagRECT rect = {0, 0, 8, 6};
    SetRegionSrcFill(&data, dst.data(), 8, source.data(), 10, plane.data(), &rect, 8);
    EXPECT_EQ(Region_Src_Fill(&data, 4, 2, borderValue, 0, 0, 0), 7);
    Pixels expected(8 * 6);
    std::fill_n(expected.begin() + 2 * 8 + 2, 6, 0xCD);
    EXPECT_EQ(dst, expected);
    EXPECT_EQ(plane, before);
}

// Deep regions

/// Bytes of stack that a level takes.
constexpr std::size_t levelBytes() {
#if defined(Q_MUR_TESTS_ADDRESS_SANITIZER) || defined(Q_MUR_TESTS_UNOPTIMISED_LIBRARY)
    return 512;
#elif defined(_WIN64)
    return 64;
#elif defined(_WIN32)
    return 48;
#elif defined(__x86_64__) || defined(__i386__)
    return 32;
#elif defined(__aarch64__)
    return 48;
#else
    return 512;
#endif
}

/// Shafts of one column side by side, joined at the top and at the foot by turns: the longest way through a region.
/// Each row of a shaft is a level.
constexpr int width = 1001;
constexpr int height = 1003;
constexpr std::size_t levels = 501 * 1001;
tagRECT windingLimits = {0, 0, width, height};

template <class Element>
std::vector<Element> windingPlane(Element border) {
    std::vector<Element> plane(std::size_t{width} * height, border);
    for (int y = 1; y < height - 1; ++y)
        for (int x = 0; x < width; ++x)
            if (x % 2 == 0 || y == (x % 4 == 1 ? 1 : height - 2))
                plane[static_cast<std::size_t>(y * width + x)] = 0;
    return plane;
}

TEST(DeepFills, of_a_winding_region_of_a_million_pixels_take_no_more_stack_than_documented) {
    Pixels boundaries = windingPlane<q_ulong>(borderColor);
    Pixels painted(boundaries.size(), 1);
    _PRIVATE_QMGP_DATA data = {};
    SetRegionFill(&data, painted.data(), width, boundaries.data(), width);
    onStackOf(levels * levelBytes(),
              [&] { Region_Fill(&data, 0, height - 2, 5, borderColor, 0, 0, 0, &windingLimits); });
    for (std::size_t i = 0; i < painted.size(); ++i)
        ASSERT_EQ(painted[i], boundaries[i] == 0 ? 5u : 1u) << i;

    Bytes plane = windingPlane<unsigned char>(borderValue);
    const Bytes before = plane;
    Pixels src(plane.size());
    for (std::size_t i = 0; i < src.size(); ++i)
        src[i] = static_cast<q_ulong>(i);
    Pixels copied(plane.size(), 0xFFFFFFFF);
    SetRegionSrcFill(&data, copied.data(), width, src.data(), width, plane.data(), &windingLimits, width);
    onStackOf(levels * levelBytes(), [&] { Region_Src_Fill(&data, 0, height - 2, borderValue, 0, 0, 0); });
    for (std::size_t i = 0; i < copied.size(); ++i)
        ASSERT_EQ(copied[i], plane[i] == borderValue ? 0xFFFFFFFFu : i) << i;
    EXPECT_EQ(plane, before);

    onStackOf(levels * levelBytes(), [&] { bRegion_Fill(&data, 0, height - 2, borderValue, 0, 0, 0); });
    EXPECT_EQ(plane, Bytes(plane.size(), borderValue));
}

TEST(DeepFills, of_a_convex_region_of_a_thousand_rows_are_one_way_up_and_one_down) {
    // Half of the rows lie above the seed and half below: no way is longer than that.
    constexpr int side = 1001;
    Bytes plane(side * side, 0);
    _PRIVATE_QMGP_DATA data = {};
    tagRECT rect = {0, 0, side, side};
    bSetRegionFill(&data, plane.data(), &rect, side);
    onStackOf(side / 2 * levelBytes(), [&] { bRegion_Fill(&data, 3, side / 2, borderValue, 0, 0, 0); });
    EXPECT_EQ(plane, Bytes(plane.size(), borderValue));
}

} // namespace
