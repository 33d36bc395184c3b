#include "plane.h"
#include "support/deep_stack.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string_view>
#include <utility>
#include <vector>

namespace {

using test::Plane;
using test::Random;
using test::Surface;

constexpr q_ulong borderColor = 0x00FF00FF;
constexpr unsigned char borderValue = 7;

/// A picture drawn in characters: '#' is `border`, everything else 0.
Surface drawn(std::initializer_list<std::string_view> rows, q_ulong border) {
    Surface surface(static_cast<int>(rows.begin()->size()), static_cast<int>(rows.size()));
    int y = 0;
    for (const std::string_view row : rows) {
        for (int x = 0; x < surface.width(); ++x)
            if (row[static_cast<std::size_t>(x)] == '#')
                surface.at(x, y) = border;
        ++y;
    }
    return surface;
}

/// What stands where the picture has a '+', 0 elsewhere.
Surface marked(std::initializer_list<std::string_view> rows, q_ulong value) {
    Surface surface(static_cast<int>(rows.begin()->size()), static_cast<int>(rows.size()));
    int y = 0;
    for (const std::string_view row : rows) {
        for (int x = 0; x < surface.width(); ++x)
            if (row[static_cast<std::size_t>(x)] == '+')
                surface.at(x, y) = value;
        ++y;
    }
    return surface;
}

/// Fills from a seed what a picture of boundaries encloses, with colour 5 on another surface.
int fillPicture(Surface &dst, Surface test, tagRECT rect, int x, int y) {
    _PRIVATE_QMGP_DATA data = {};
    SetRegionFill(&data, dst.pixels(), dst.pitch(), test.pixels(), test.pitch());
    return Region_Fill(&data, x, y, 5, borderColor, 0, 0, 0, &rect);
}

void expectFill(std::initializer_list<std::string_view> boundaries, tagRECT rect, int x, int y,
                std::initializer_list<std::string_view> painted) {
    const Surface test = drawn(boundaries, borderColor);
    Surface dst(test.width(), test.height());
    fillPicture(dst, test, rect, x, y);
    EXPECT_EQ(dst.differenceFrom(marked(painted, 5)), "") << "from " << x << ", " << y;
}

// Set-up

TEST(SetRegionFill, stores_the_surfaces_and_leaves_the_plane) {
    q_ulong dst = 0;
    q_ulong tested = 0;
    unsigned char plane = 0;
    tagRECT rect = {};
    _PRIVATE_QMGP_DATA data = {};
    data.plane = &plane;
    data.planeRect = &rect;
    data.planePitch = 3;
    SetRegionFill(&data, &dst, 11, &tested, 12);
    EXPECT_EQ(data.destSurface, &dst);
    EXPECT_EQ(data.destPitch, 11);
    EXPECT_EQ(data.testSurface, &tested);
    EXPECT_EQ(data.testPitch, 12);
    EXPECT_EQ(data.plane, &plane);
    EXPECT_EQ(data.planeRect, &rect);
    EXPECT_EQ(data.planePitch, 3);
}

TEST(bSetRegionFill, stores_the_plane_and_leaves_the_surfaces) {
    q_ulong dst = 0;
    q_ulong tested = 0;
    unsigned char plane = 0;
    tagRECT rect = {};
    _PRIVATE_QMGP_DATA data = {nullptr, nullptr, &dst, &tested, 0, 11, 12};
    bSetRegionFill(&data, &plane, &rect, 13);
    EXPECT_EQ(data.plane, &plane);
    EXPECT_EQ(data.planeRect, &rect);
    EXPECT_EQ(data.planePitch, 13);
    EXPECT_EQ(data.destSurface, &dst);
    EXPECT_EQ(data.testSurface, &tested);
    EXPECT_EQ(data.destPitch, 11);
    EXPECT_EQ(data.testPitch, 12);
}

TEST(SetRegionSrcFill, stores_everything) {
    q_ulong dst = 0;
    q_ulong src = 0;
    unsigned char plane = 0;
    tagRECT rect = {};
    _PRIVATE_QMGP_DATA data = {};
    SetRegionSrcFill(&data, &dst, 11, &src, 12, &plane, &rect, 13);
    EXPECT_EQ(data.destSurface, &dst);
    EXPECT_EQ(data.destPitch, 11);
    EXPECT_EQ(data.testSurface, &src);
    EXPECT_EQ(data.testPitch, 12);
    EXPECT_EQ(data.plane, &plane);
    EXPECT_EQ(data.planeRect, &rect);
    EXPECT_EQ(data.planePitch, 13);
}

TEST(Region_Fill, works_on_the_block_that_the_block_manager_hands_out) {
    _TRANSFERDATA host = {};
    _PRIVATE_QMGP_DATA *const data = GetPrivate_QMGP_Data(&host, 0);
    ASSERT_NE(data, nullptr);
    Surface surface(5, 5);
    tagRECT rect = surface.rect();
    SetRegionFill(data, surface.pixels(), surface.pitch(), surface.pixels(), surface.pitch());
    const _PRIVATE_QMGP_DATA before = *data;
    Region_Fill(data, 2, 2, 1, 1, 0, 0, 0, &rect);
    EXPECT_EQ(surface.differenceFrom(marked({"+++++", "+++++", "+++++", "+++++", "+++++"}, 1)), "");
    EXPECT_EQ(data->plane, before.plane);
    EXPECT_EQ(data->planeRect, before.planeRect);
    EXPECT_EQ(data->destSurface, before.destSurface);
    EXPECT_EQ(data->testSurface, before.testSurface);
    EXPECT_EQ(data->planePitch, before.planePitch);
    EXPECT_EQ(data->destPitch, before.destPitch);
    EXPECT_EQ(data->testPitch, before.testPitch);
    DeleteMemoryBlocks(&host);
}

// Scans

struct ScannedRow {
    ScannedRow() : surface(drawn({"..........", "..#....#..", ".........."}, borderColor)) {
        SetRegionFill(&data, nullptr, 0, surface.pixels(), surface.pitch());
    }

    int left(int x, int limit) { return scan_left(&data, x, 1, borderColor, limit); }
    int right(int x, int limit) { return scan_right(&data, x, 1, borderColor, limit); }

    Surface surface;
    _PRIVATE_QMGP_DATA data = {};
};

TEST(scan_left, stops_behind_the_boundary_or_at_the_limit) {
    ScannedRow row;
    EXPECT_EQ(row.left(5, 0), 3);
    EXPECT_EQ(row.left(3, 0), 3);
    EXPECT_EQ(row.left(5, 4), 4); // the limit is included
    EXPECT_EQ(row.left(5, 5), 5);
    EXPECT_EQ(row.left(1, 0), 0);
}

TEST(scan_right, stops_before_the_boundary_or_before_the_limit) {
    ScannedRow row;
    EXPECT_EQ(row.right(4, 10), 6);
    EXPECT_EQ(row.right(6, 10), 6);
    EXPECT_EQ(row.right(4, 6), 5); // the limit is not included
    EXPECT_EQ(row.right(4, 5), 4);
    EXPECT_EQ(row.right(8, 10), 9);
}

TEST(scan_left, and_scan_right_cross_over_on_the_boundary_itself) {
    ScannedRow row;
    EXPECT_EQ(row.left(7, 0), 8);
    EXPECT_EQ(row.right(7, 10), 6);
}

TEST(scan_left, and_scan_right_stay_where_they_are_beyond_their_limit) {
    ScannedRow row;
    EXPECT_EQ(row.left(4, 6), 4);
    EXPECT_EQ(row.right(5, 4), 5);
    EXPECT_EQ(row.right(5, 5), 5);
}

TEST(scan_left, the_boundary_counts_in_all_32_bits) {
    ScannedRow row;
    row.surface.at(4, 1) = borderColor | 0x01000000;
    EXPECT_EQ(row.left(5, 0), 3);
}

// Fills

TEST(Region_Fill, paints_what_a_boundary_encloses) {
    expectFill({"..........", ".########.", ".#......#.", ".####.#.#.", ".#....#.#.", ".########.", ".........."},
               {0, 0, 10, 7}, 2, 4,
               {"..........", "..........", "..++++++..", ".....+.+..", "..++++.+..", "..........", ".........."});
}

TEST(Region_Fill, turns_back_where_a_span_overhangs_its_parent) {
    // From the seed at the foot of the left shaft: up, over, down the right shaft, and from there up the middle one.
    expectFill(
        {"###########", "#.........#", "#.###.###.#", "#.###.###.#", "#.####....#", "###########", "..........."},
        {0, 0, 11, 7}, 1, 4,
        {"...........", ".+++++++++.", ".+...+...+.", ".+...+...+.", ".+....++++.", "...........", "..........."});
}

TEST(Region_Fill, corners_do_not_connect) {
    expectFill({"########", "#..#...#", "#..#...#", "###....#", "#......#", "########", "........"}, {0, 0, 8, 7}, 1, 1,
               {"........", ".++.....", ".++.....", "........", "........", "........", "........"});
}

TEST(Region_Fill, the_left_limit_is_painted_and_the_right_one_is_not) {
    expectFill({".......", ".......", ".......", ".......", "......."}, {2, 0, 5, 5}, 3, 2,
               {"..+++..", "..+++..", "..+++..", "..+++..", "..+++.."});
}

TEST(Region_Fill, the_top_row_goes_to_row_0_of_the_surface) {
    // Row 2 is the first within the limits: its pixels are laid on row 0, and it stays as it was.
    expectFill({".......", ".......", "...#...", ".......", ".......", ".......", "......."}, {1, 2, 6, 7}, 3, 4,
               {".++.++.", ".......", ".......", ".+++++.", ".+++++.", ".+++++.", ".+++++."});
}

TEST(Region_Fill, the_last_row_is_painted_column_by_column_and_not_scanned) {
    // Beyond the boundary in row 4 the last row is open, but reached from above alone.
    expectFill({"#######", "#.....#", "#.....#", "#.....#", "##...##", "....#..", "......."}, {0, 0, 7, 6}, 3, 2,
               {".......", ".+++++.", ".+++++.", ".+++++.", "..+++..", "..++...", "......."});
}

TEST(Region_Fill, the_first_row_is_not_scanned_either) {
    expectFill({"..#....", "##...##", "#.....#", "#######", "......."}, {0, 0, 7, 5}, 3, 2,
               {"...++..", "..+++..", ".+++++.", ".......", "......."});
}

TEST(Region_Fill, a_seed_in_the_first_or_last_row_or_beyond_marks_one_pixel) {
    const Surface open = drawn({".....", ".....", ".....", ".....", ".....", "....."}, borderColor);
    const tagRECT rect = {0, 2, 5, 5};
    for (const auto &[seed, row] : {std::pair{2, 0}, {1, 0}, {-3, 0}, {4, 4}, {5, 4}, {9, 4}}) {
        Surface dst(5, 6);
        Surface expected = dst;
        expected.at(3, row) = 5;
        EXPECT_EQ(fillPicture(dst, open, rect, 3, seed), 3);
        EXPECT_EQ(dst.differenceFrom(expected), "") << seed;
    }
}

TEST(Region_Fill, a_seed_on_the_boundary_of_the_first_row_is_marked_all_the_same) {
    expectFill({"#####", ".....", "....."}, {0, 0, 5, 3}, 2, 0, {"..+..", ".....", "....."});
}

TEST(Region_Fill, a_seed_on_a_boundary_paints_nothing) {
    const Surface test = drawn({".....", ".....", "..#..", ".....", "....."}, borderColor);
    Surface dst(5, 5);
    EXPECT_EQ(fillPicture(dst, test, {0, 0, 5, 5}, 2, 2), 1);
    EXPECT_EQ(dst.differenceFrom(Surface(5, 5)), "");
}

TEST(Region_Fill, returns_the_last_column_of_the_seed_span) {
    const Surface test = drawn({"#######", "#.....#", "##...##", "#.....#", "......."}, borderColor);
    Surface dst(7, 5);
    EXPECT_EQ(fillPicture(dst, test, {0, 0, 7, 5}, 3, 2), 4);
}

TEST(Region_Fill, the_boundary_and_the_colour_count_in_all_32_bits) {
    Surface test = drawn({"#####", "#...#", "#...#", "#...#", "#####"}, borderColor);
    test.at(2, 2) = borderColor | 0x80000000; // no boundary
    Surface dst(5, 5);
    _PRIVATE_QMGP_DATA data = {};
    SetRegionFill(&data, dst.pixels(), dst.pitch(), test.pixels(), test.pitch());
    tagRECT rect = {0, 0, 5, 5};
    Region_Fill(&data, 1, 1, 0xFE010203, borderColor, 0, 0, 0, &rect);
    EXPECT_EQ(dst.differenceFrom(marked({".....", ".+++.", ".+++.", ".+++.", "....."}, 0xFE010203)), "");
}

TEST(Region_Fill, an_island_is_gone_round_if_what_is_painted_is_boundary) {
    Surface surface =
        drawn({"#########", "#.......#", "#.##.#..#", "#..#.##.#", "#.......#", "#########", "........."}, borderColor);
    _PRIVATE_QMGP_DATA data = {};
    SetRegionFill(&data, surface.pixels(), surface.pitch(), surface.pixels(), surface.pitch());
    tagRECT rect = surface.rect();
    Region_Fill(&data, 1, 1, borderColor, borderColor, 0, 0, 0, &rect);
    EXPECT_EQ(
        surface.differenceFrom(marked(
            {"+++++++++", "+++++++++", "+++++++++", "+++++++++", "+++++++++", "+++++++++", "........."}, borderColor)),
        "");
}

/// A fill on a plane that encloses an island; row 0 is the first row within the limits.
TEST(bRegion_Fill, an_island_is_gone_round) {
    Plane plane(drawn({".......", ".......", "..###..", "..#.#..", "..###..", ".......", "......."}, borderValue));
    _PRIVATE_QMGP_DATA data = {};
    tagRECT rect = {0, 0, 7, 7};
    bSetRegionFill(&data, plane.pixels(), &rect, plane.pitch());
    bRegion_Fill(&data, 0, 3, borderValue, 0, 0, 0);
    EXPECT_EQ(plane.words().differenceFrom(
                  marked({"+++++++", "+++++++", "+++++++", "+++.+++", "+++++++", "+++++++", "+++++++"}, borderValue)),
              "");
}

TEST(bRegion_Fill, a_second_fill_from_the_same_seed_paints_nothing) {
    Plane plane(drawn({"#######", "#..#..#", "#..#..#", "#######"}, borderValue));
    _PRIVATE_QMGP_DATA data = {};
    tagRECT rect = {0, 0, 7, 4};
    bSetRegionFill(&data, plane.pixels(), &rect, plane.pitch());
    EXPECT_EQ(bRegion_Fill(&data, 1, 1, borderValue, 0, 0, 0), 2);
    const Surface once = plane.words();
    EXPECT_EQ(once.at(2, 2), borderValue);
    EXPECT_EQ(bRegion_Fill(&data, 1, 1, borderValue, 0, 0, 0), 0);
    EXPECT_EQ(plane.words().differenceFrom(once), "");
}

TEST(bRegion_Fill, the_edges_go_to_row_0_and_to_the_last_row) {
    Plane plane(drawn({".....", ".....", ".....", ".....", ".....", "....."}, borderValue));
    _PRIVATE_QMGP_DATA data = {};
    tagRECT rect = {1, 1, 4, 5};
    bSetRegionFill(&data, plane.pixels(), &rect, plane.pitch());
    bRegion_Fill(&data, 2, 3, borderValue, 0, 0, 0);
    EXPECT_EQ(plane.words().differenceFrom(marked({".+++.", ".....", ".+++.", ".+++.", ".+++.", "....."}, borderValue)),
              "");
}

TEST(Region_Src_Fill, copies_the_region_and_marks_the_edge_rows_on_the_plane) {
    const Surface boundaries = drawn({".......", ".......", "#.....#", "##...##", "......."}, borderValue);
    Plane plane(boundaries);
    Surface src(7, 5);
    for (int y = 0; y < 5; ++y)
        for (int x = 0; x < 7; ++x)
            src.at(x, y) = 0xAB000000u + static_cast<q_ulong>(y * 16 + x);
    Surface dst(7, 5, 0x11);
    _PRIVATE_QMGP_DATA data = {};
    tagRECT rect = {0, 1, 7, 5};
    SetRegionSrcFill(&data, dst.pixels(), dst.pitch(), src.pixels(), src.pitch(), plane.pixels(), &rect, plane.pitch());
    EXPECT_EQ(Region_Src_Fill(&data, 3, 3, borderValue, 0, 0, 0), 4);

    Surface expectedDst(7, 5, 0x11);
    for (int x = 1; x <= 5; ++x)
        expectedDst.at(x, 2) = src.at(x, 2);
    for (int x = 2; x <= 4; ++x)
        expectedDst.at(x, 3) = src.at(x, 3);
    EXPECT_EQ(dst.differenceFrom(expectedDst), "");

    // The first row within the limits is 1: marked in row 0. The last one is 4.
    Surface expectedPlane = boundaries;
    for (int x = 1; x <= 5; ++x)
        expectedPlane.at(x, 0) = borderValue;
    for (int x = 2; x <= 4; ++x)
        expectedPlane.at(x, 4) = borderValue;
    EXPECT_EQ(plane.words().differenceFrom(expectedPlane), "");
}

TEST(Region_Src_Fill, the_rows_above_and_below_are_found_by_the_pitch_of_the_source) {
    // The plane's rows are 8 bytes long, the source's 10 words. Above the span of columns 2 to 7 in row 2 bytes 12 to
    // 17 are looked at, below it bytes 32 to 37. All of them are boundary, so the span is copied alone, though the
    // plane is open above and below it.
    std::vector<unsigned char> bytes(8 * 6, 0);
    for (int i = 12; i < 18; ++i)
        bytes[static_cast<std::size_t>(i)] = borderValue; // columns 0 and 1 of row 2 are among them
    for (int i = 32; i < 38; ++i)
        bytes[static_cast<std::size_t>(i)] = borderValue;
    const std::vector<unsigned char> before = bytes;
    std::vector<q_ulong> source(10 * 6, 0xCD);
    std::vector<q_ulong> dst(8 * 6, 0);
    _PRIVATE_QMGP_DATA data = {};
    tagRECT rect = {0, 0, 8, 6};
    SetRegionSrcFill(&data, dst.data(), 8, source.data(), 10, bytes.data(), &rect, 8);
    EXPECT_EQ(Region_Src_Fill(&data, 4, 2, borderValue, 0, 0, 0), 7);
    std::vector<q_ulong> expected(8 * 6, 0);
    for (int x = 2; x <= 7; ++x)
        expected[static_cast<std::size_t>(2 * 8 + x)] = 0xCD;
    EXPECT_EQ(dst, expected);
    EXPECT_EQ(bytes, before);
}

TEST(Region_Fill, direction_1_goes_up_and_looks_down_beside_its_parent_only) {
    const Surface open = drawn({".......", ".......", ".......", ".......", "......."}, borderColor);
    Surface dst(7, 5);
    Surface test = open;
    _PRIVATE_QMGP_DATA data = {};
    SetRegionFill(&data, dst.pixels(), dst.pitch(), test.pixels(), test.pitch());
    tagRECT rect = {0, 0, 7, 4};
    // Row 3 is the last: each of its columns is marked by itself.
    EXPECT_EQ(Region_Fill(&data, 3, 2, 5, borderColor, 2, 4, 1, &rect), 6);
    EXPECT_EQ(dst.differenceFrom(marked({"+++++++", "+++++++", "+++++++", "++...++", "......."}, 5)), "");
}

TEST(Region_Fill, direction_2_goes_down_and_looks_up_beside_its_parent_only) {
    const Surface open = drawn({".......", ".......", ".......", ".......", "......."}, borderColor);
    Surface dst(7, 5);
    Surface test = open;
    _PRIVATE_QMGP_DATA data = {};
    SetRegionFill(&data, dst.pixels(), dst.pitch(), test.pixels(), test.pitch());
    tagRECT rect = {0, 0, 7, 4};
    EXPECT_EQ(Region_Fill(&data, 3, 1, 5, borderColor, 2, 4, 2, &rect), 6);
    EXPECT_EQ(dst.differenceFrom(marked({"++...++", "+++++++", "+++++++", "+++++++", "......."}, 5)), "");
}

TEST(bRegion_Fill, paints_the_connected_region_and_what_touches_it_in_the_edge_rows) {
    constexpr int right = 12;
    constexpr int bottom = 11;
    for (std::uint64_t seed = 0; seed < 3000; ++seed) {
        Random random(seed);
        Surface surface(right + 2, bottom + 2);
        const int share = random.between(2, 12);
        for (int y = 0; y < bottom + 2; ++y)
            for (int x = 0; x < right + 2; ++x)
                surface.at(x, y) = random.oneIn(share) ? borderValue : 0;
        tagRECT limits = {random.between(0, 3), 0, right, bottom};
        const int seedX = random.between(3, right - 1);
        const int seedY = random.between(1, bottom - 2);
        surface.at(seedX, seedY) = 0;
        Plane plane(surface);
        Surface expected = surface;
        // A flood over pixels; the edge rows are entered, but not left again.
        std::vector<std::pair<int, int>> open = {{seedX, seedY}};
        while (!open.empty()) {
            const auto [x, y] = open.back();
            open.pop_back();
            if (x < limits.left || x >= right || expected.at(x, y) == borderValue)
                continue;
            expected.at(x, y) = borderValue;
            if (y > 0 && y < bottom - 1)
                open.insert(open.end(), {{x - 1, y}, {x + 1, y}, {x, y - 1}, {x, y + 1}});
        }
        _PRIVATE_QMGP_DATA data = {};
        bSetRegionFill(&data, plane.pixels(), &limits, plane.pitch());
        bRegion_Fill(&data, seedX, seedY, borderValue, 0, 0, 0);
        ASSERT_EQ(plane.words().differenceFrom(expected), "") << seed;
    }
}

// Deep regions

/// Bytes of stack that a level takes.
constexpr std::size_t levelBytes() {
#if defined(__SANITIZE_ADDRESS__) || defined(Q_MUR_TESTS_UNOPTIMISED_LIBRARY)
    return 512;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
    return 512;
#endif
#endif
#if defined(_WIN64)
    return 64;
#elif defined(_WIN32)
    return 48;
#elif defined(__x86_64__) || defined(__i386__)
    return 32;
#else
    return 512;
#endif
}

/// Shafts of one column side by side, joined at the top and at the foot by turns: the longest way through a region.
/// Each row of a shaft is a level.
struct Winding {
    static constexpr int width = 1001;
    static constexpr int height = 1003;
    static constexpr std::size_t levels = 501 * 1001;

    static bool open(int x, int y) {
        if (y < 1 || y > height - 2)
            return false;
        return x % 2 == 0 || y == (x % 4 == 1 ? 1 : height - 2);
    }
};

template <class Element>
std::vector<Element> windingPlane(Element border) {
    std::vector<Element> plane;
    for (int y = 0; y < Winding::height; ++y)
        for (int x = 0; x < Winding::width; ++x)
            plane.push_back(Winding::open(x, y) ? Element{0} : border);
    return plane;
}

TEST(Region_Fill, a_winding_region_of_a_million_pixels_takes_no_more_stack_than_documented) {
    std::vector<q_ulong> test = windingPlane<q_ulong>(borderColor);
    std::vector<q_ulong> dst(test.size(), 1);
    _PRIVATE_QMGP_DATA data = {};
    SetRegionFill(&data, dst.data(), Winding::width, test.data(), Winding::width);
    tagRECT rect = {0, 0, Winding::width, Winding::height};
    test::onStackOf(Winding::levels * levelBytes(),
                    [&] { Region_Fill(&data, 0, Winding::height - 2, 5, borderColor, 0, 0, 0, &rect); });
    for (std::size_t i = 0; i < dst.size(); ++i)
        ASSERT_EQ(dst[i], test[i] == 0 ? 5u : 1u) << i;
}

TEST(bRegion_Fill, a_winding_region_of_a_million_pixels_takes_no_more_stack_than_documented) {
    std::vector<unsigned char> plane = windingPlane<unsigned char>(borderValue);
    _PRIVATE_QMGP_DATA data = {};
    tagRECT rect = {0, 0, Winding::width, Winding::height};
    bSetRegionFill(&data, plane.data(), &rect, Winding::width);
    test::onStackOf(Winding::levels * levelBytes(),
                    [&] { bRegion_Fill(&data, 0, Winding::height - 2, borderValue, 0, 0, 0); });
    EXPECT_EQ(plane, std::vector<unsigned char>(plane.size(), borderValue));
}

TEST(Region_Src_Fill, a_winding_region_of_a_million_pixels_takes_no_more_stack_than_documented) {
    std::vector<unsigned char> plane = windingPlane<unsigned char>(borderValue);
    const std::vector<unsigned char> before = plane;
    std::vector<q_ulong> src(plane.size());
    for (std::size_t i = 0; i < src.size(); ++i)
        src[i] = static_cast<q_ulong>(i);
    std::vector<q_ulong> dst(plane.size(), 0xFFFFFFFF);
    _PRIVATE_QMGP_DATA data = {};
    tagRECT rect = {0, 0, Winding::width, Winding::height};
    SetRegionSrcFill(&data, dst.data(), Winding::width, src.data(), Winding::width, plane.data(), &rect,
                     Winding::width);
    test::onStackOf(Winding::levels * levelBytes(),
                    [&] { Region_Src_Fill(&data, 0, Winding::height - 2, borderValue, 0, 0, 0); });
    for (std::size_t i = 0; i < dst.size(); ++i)
        ASSERT_EQ(dst[i], plane[i] == borderValue ? 0xFFFFFFFFu : i) << i;
    EXPECT_EQ(plane, before);
}

TEST(bRegion_Fill, a_convex_region_of_a_thousand_rows_is_one_way_up_and_one_down) {
    // Half of the rows lie above the seed and half below: no way is longer than that.
    constexpr int side = 1001;
    std::vector<unsigned char> plane(side * side, 0);
    _PRIVATE_QMGP_DATA data = {};
    tagRECT rect = {0, 0, side, side};
    bSetRegionFill(&data, plane.data(), &rect, side);
    test::onStackOf(side / 2 * levelBytes(), [&] { bRegion_Fill(&data, 3, side / 2, borderValue, 0, 0, 0); });
    EXPECT_EQ(plane, std::vector<unsigned char>(plane.size(), borderValue));
}

} // namespace
