#include "screen.h"
#include "support/random.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace {

using test::DepthPlane;
using test::Screen;
using test::Surface;

/// A corner of a polygon as it is handed to the library.
struct PolygonCorner {
    _POINT3DFLOAT point;
    _POINTINT tex;
    int add;
    int mul;
};

using QuadCorners = std::array<PolygonCorner, 4>;
using TriangleCorners = std::array<PolygonCorner, 3>;

constexpr tagRECT everywhere = {0, 0, 16, 16};

/// The texels count from (u, v) on.
template <class Function, class Data>
void drawQuad(Function function, Data &data, Screen &screen, Surface &texels, QuadCorners c, q_ulong flags,
              tagRECT clip, tagPOINT first) {
    function(&data, screen.surface.pixels(), &c[0].point, &c[1].point, &c[2].point, &c[3].point,
             &texels.at(static_cast<int>(first.x), static_cast<int>(first.y)), &c[0].tex, &c[1].tex, &c[2].tex,
             &c[3].tex, &clip, screen.pitch(), static_cast<q_ulong>(texels.pitch()), c[0].add, c[1].add, c[2].add,
             c[3].add, c[0].mul, c[1].mul, c[2].mul, c[3].mul, flags);
}
template <class Function, class Data>
void drawTriangle(Function function, Data &data, Screen &screen, Surface &texels, TriangleCorners c, q_ulong flags,
                  tagRECT clip) {
    function(&data, screen.surface.pixels(), &c[0].point, &c[1].point, &c[2].point, texels.pixels(), &c[0].tex,
             &c[1].tex, &c[2].tex, &clip, screen.pitch(), static_cast<q_ulong>(texels.pitch()), c[0].add, c[1].add,
             c[2].add, c[0].mul, c[1].mul, c[2].mul, flags);
}

enum class Module { older, pipeline };

void drawQuad(Module module, Screen &screen, Surface &texels, const QuadCorners &corners, q_ulong flags,
              const tagRECT &clip = everywhere, tagPOINT first = {0, 0}) {
    if (module == Module::older)
        drawQuad(i3D_Blt_Rect, screen.older, screen, texels, corners, flags, clip, first);
    else
        drawQuad(VKD_i3D_Blt_Rect, screen.pipeline, screen, texels, corners, flags, clip, first);
}
void drawTriangle(Module module, Screen &screen, Surface &texels, const TriangleCorners &corners, q_ulong flags,
                  const tagRECT &clip = everywhere) {
    if (module == Module::older)
        drawTriangle(i3D_Blt_Tri, screen.older, screen, texels, corners, flags, clip);
    else
        drawTriangle(VKD_i3D_Blt_Tri, screen.pipeline, screen, texels, corners, flags, clip);
}

/// The corners of a rectangle, clockwise, with a texture of so many units.
QuadCorners cornersOf(float left, float top, float right, float bottom, int width = 0, int height = 0) {
    return {{{{left, top, 0, 0}, {0, 0}, 0, 256},
             {{right, top, 0, 0}, {width, 0}, 0, 256},
             {{right, bottom, 0, 0}, {width, height}, 0, 256},
             {{left, bottom, 0, 0}, {0, height}, 0, 256}}};
}

TriangleCorners triangleOf(const QuadCorners &corners, std::size_t a, std::size_t b, std::size_t c) {
    return {corners[a], corners[b], corners[c]};
}

constexpr q_ulong allModes[] = {0x200, 0x10100, 0x1010, 0x2210};

TEST(i3D_Blt_Rect, corners_in_any_order_draw_the_same_quad) {
    test::Random random(1);
    Surface texels = Surface::randomOfSize(random, 16, 16);
    for (const q_ulong flags : allModes) {
        const int unit = flags == 0x1010 ? 1 : 16;
        QuadCorners corners = cornersOf(0, 0, 0, 0, 12 * unit, 12 * unit);
        const float places[4][2] = {{7, 1}, {14, 6}, {9, 15}, {1, 8}}; // no two of one height
        for (std::size_t i = 0; i < 4; ++i) {
            corners[i].point = {places[i][0], places[i][1], static_cast<float>(i * 10), 0};
            corners[i].add = static_cast<int>(i * 5);
            corners[i].mul = static_cast<int>(200 + i * 20);
        }
        Screen expected;
        drawQuad(Module::older, expected, texels, corners, flags);
        EXPECT_NE(expected.surface.at(7, 8), test::background);
        std::array<std::size_t, 4> order = {0, 1, 2, 3};
        do {
            Screen screen;
            const QuadCorners shuffled = {corners[order[0]], corners[order[1]], corners[order[2]], corners[order[3]]};
            drawQuad(Module::older, screen, texels, shuffled, flags);
            EXPECT_EQ(screen.surface.differenceFrom(expected.surface), "");
            EXPECT_TRUE(screen.depths == expected.depths);
        } while (std::next_permutation(order.begin(), order.end()));
    }
}

TEST(i3D_Blt_Tri, corners_in_any_order_draw_the_same_triangle) {
    test::Random random(1);
    Surface texels = Surface::randomOfSize(random, 16, 16);
    QuadCorners corners = cornersOf(0, 0, 0, 0, 12 * 16, 12 * 16);
    corners[0].point = {7, 1, 3, 0};
    corners[1].point = {14, 6, 9, 0};
    corners[2].point = {2, 15, 40, 0};
    Screen expected;
    drawTriangle(Module::older, expected, texels, triangleOf(corners, 0, 1, 2), 0x200);
    EXPECT_NE(expected.surface.at(7, 8), test::background);
    std::array<std::size_t, 3> order = {0, 1, 2};
    do {
        Screen screen;
        const TriangleCorners shuffled = triangleOf(corners, order[0], order[1], order[2]);
        drawTriangle(Module::older, screen, texels, shuffled, 0x200);
        EXPECT_EQ(screen.surface.differenceFrom(expected.surface), "");
    } while (std::next_permutation(order.begin(), order.end()));
}

TEST(i3D_Blt_Rect, four_corners_on_one_row_draw_nothing) {
    Surface texels(4, 4, 0x123456);
    for (const q_ulong flags : allModes) {
        Screen screen;
        drawQuad(Module::older, screen, texels, cornersOf(2, 5, 9, 5), flags);
        EXPECT_TRUE(screen.untouched());
    }
}

TEST(i3D_Blt_Rect, the_lower_row_and_the_right_column_are_not_drawn) {
    Surface texels(4, 4, 0x123456);
    for (const q_ulong flags : allModes) {
        Screen screen;
        drawQuad(Module::older, screen, texels, cornersOf(2, 3, 6, 8), flags);
        for (int y = 0; y < 16; ++y)
            for (int x = 0; x < 16; ++x)
                EXPECT_EQ(screen.surface.at(x, y) == 0x123456, x >= 2 && x < 6 && y >= 3 && y < 8);
    }
}

/// Draws a quad between two rows in mode 0x200 and tells whether a mapper was put into the slot.
bool fillsSlot(Module module, float top, float bottom, const tagRECT &clip) {
    Screen screen;
    Surface texels(4, 4, 0x123456);
    drawQuad(module, screen, texels, cornersOf(2, top, 6, bottom), 0x200, clip);
    return screen.older.spanMapper || screen.pipeline.spanMapper;
}

TEST(i3D_Blt_Rect, a_quad_rejected_by_its_rows_leaves_the_slot_as_it_was) {
    const tagRECT clip = {0, 4, 16, 8};
    for (const Module module : {Module::older, Module::pipeline}) {
        EXPECT_FALSE(fillsSlot(module, 0, 3, clip));
        EXPECT_TRUE(fillsSlot(module, 0, 4, clip));  // touching the top is no rejection
        EXPECT_TRUE(fillsSlot(module, 8, 12, clip)); // nor is touching the bottom
        EXPECT_FALSE(fillsSlot(module, 9, 12, clip));
    }
}

TEST(i3D_Blt_Rect, a_quad_that_touches_the_clip_from_outside_draws_nothing) {
    Surface texels(4, 4, 0x123456);
    const tagRECT clip = {0, 4, 16, 8};
    Screen screen;
    drawQuad(Module::older, screen, texels, cornersOf(2, 0, 6, 4), 0x200, clip);
    drawQuad(Module::older, screen, texels, cornersOf(2, 8, 6, 12), 0x200, clip);
    EXPECT_TRUE(screen.untouched());
}

TEST(i3D_Blt_Tri, triangles_are_not_rejected_by_their_rows) {
    Surface texels(4, 4, 0x123456);
    const TriangleCorners above = triangleOf(cornersOf(2, -9, 6, -3), 0, 1, 2);
    Screen screen;
    drawTriangle(Module::older, screen, texels, above, 0x200);
    drawTriangle(Module::pipeline, screen, texels, above, 0x200);
    EXPECT_TRUE(screen.older.spanMapper != nullptr);
    EXPECT_TRUE(screen.pipeline.spanMapper != nullptr);
    EXPECT_TRUE(screen.untouched());
}

TEST(i3D_Blt_Rect, a_corner_on_the_line_from_top_to_bottom_lies_to_the_right) {
    // A triangle with a corner in the middle of its left side. To the right of that side it would close the quad.
    Surface texels(4, 4, 0x123456);
    QuadCorners corners = cornersOf(0, 0, 0, 0);
    corners[0].point = {4, 0, 0, 0};
    corners[1].point = {4, 4, 0, 0}; // on the line
    corners[2].point = {4, 12, 0, 0};
    corners[3].point = {0, 8, 0, 0}; // left of it
    Screen screen;
    drawQuad(Module::older, screen, texels, corners, 0x200);
    EXPECT_EQ(screen.surface.at(3, 2), 0x123456u);
    EXPECT_EQ(screen.surface.at(3, 8), 0x123456u);
    EXPECT_EQ(screen.surface.at(4, 4), test::background);
    // Without the left corner there is nothing between the edges: both chains stand on the line.
    corners[3].point = {4, 8, 0, 0};
    Screen flat;
    drawQuad(Module::older, flat, texels, corners, 0x200);
    EXPECT_TRUE(flat.untouched());
}

/// The name of the mapper in a slot, found by what is drawn with it: true for a filtered one.
bool drawsFiltered(Module module, const QuadCorners &corners, q_ulong flags) {
    // Columns of black and white: between texels a filtered mapper finds greys, a nearest one never.
    Surface texels(70, 70, 0x000001);
    for (int y = 0; y < 70; ++y)
        for (int x = 0; x < 70; x += 2)
            texels.at(x, y) = 0xFFFFFF;
    Screen screen;
    QuadCorners shifted = corners;
    for (PolygonCorner &corner : shifted)
        corner.tex.x += 8; // half a texel
    drawQuad(module, screen, texels, shifted, flags);
    const q_ulong pixel = screen.surface.at(static_cast<int>(corners[0].point.x), static_cast<int>(corners[0].point.y));
    return pixel != 0xFFFFFF && pixel != 0x000001;
}

TEST(i3D_Blt_Rect, more_than_a_texel_for_two_pixels_is_sampled_nearest) {
    // 16 x 8 pixels: 64 texels are the most that is filtered, that is 16384 units of texture.
    const QuadCorners just = cornersOf(0, 0, 16, 8, 128, 128);
    const QuadCorners over = cornersOf(0, 0, 16, 8, 129, 128);
    EXPECT_TRUE(drawsFiltered(Module::older, just, 0x200));
    EXPECT_FALSE(drawsFiltered(Module::older, over, 0x200));
    EXPECT_TRUE(drawsFiltered(Module::older, just, 0x2210));
    EXPECT_FALSE(drawsFiltered(Module::older, over, 0x2210));
    EXPECT_TRUE(drawsFiltered(Module::pipeline, just, 0x200));
    EXPECT_FALSE(drawsFiltered(Module::pipeline, over, 0x200));
    // The other modes do not look at the shrink.
    EXPECT_TRUE(drawsFiltered(Module::older, over, 0x10100));
    EXPECT_TRUE(drawsFiltered(Module::pipeline, over, 0x10100));
}

TEST(i3D_Blt_Rect, the_shrink_is_measured_in_whole_pixels) {
    // 8.9 rows are 8.
    const QuadCorners over = cornersOf(0, 0, 16.5F, 8.9F, 129, 128);
    EXPECT_FALSE(drawsFiltered(Module::older, over, 0x200));
}

TEST(i3D_Blt_Rect, a_polygon_without_area_goes_nearest_unless_its_texture_has_none_either) {
    const auto slotOf = [](const QuadCorners &corners) {
        Screen screen;
        Surface texels(70, 70);
        drawQuad(Module::older, screen, texels, corners, 0x200);
        return screen.older.spanMapper;
    };
    const QM3DSpanMapper nearest = slotOf(cornersOf(0, 0, 4, 4, 1000, 1000));
    const QM3DSpanMapper filtered = slotOf(cornersOf(0, 0, 4, 4, 16, 16));
    EXPECT_TRUE(nearest != filtered);
    EXPECT_TRUE(slotOf(cornersOf(0, 4, 4, 4, 1, 1)) == nearest);
    EXPECT_TRUE(slotOf(cornersOf(4, 0, 4, 4, 1, 1)) == nearest);
    EXPECT_TRUE(slotOf(cornersOf(4, 0, 4, 4, 0, 1)) == filtered);
    EXPECT_TRUE(slotOf(cornersOf(4, 4, 4, 4, 0, 0)) == filtered);
}

TEST(i3D_Blt_Rect, shrunk_positions_are_rounded_down) {
    // From -1 / 16 of a texel it is the texel to the left, not the first one.
    Surface texels(4, 4);
    for (int x = 0; x < 4; ++x)
        for (int y = 0; y < 4; ++y)
            texels.at(x, y) = static_cast<q_ulong>(x + 1);
    QuadCorners corners = cornersOf(5, 5, 6, 6, 16, 64);
    for (PolygonCorner &corner : corners)
        corner.tex.x -= 1;
    Screen screen;
    drawQuad(Module::older, screen, texels, corners, 0x200, everywhere, {2, 0});
    EXPECT_EQ(screen.surface.at(5, 5), 2u);
    drawQuad(Module::pipeline, screen, texels, cornersOf(8, 8, 9, 9, 16, 64), 0x200, everywhere, {2, 0});
    EXPECT_EQ(screen.surface.at(8, 8), 3u);
}

TEST(i3D_Blt_Rect, plain_texels_take_positions_in_whole_texels) {
    // Positions in sixteenths would lead sixteen times too far.
    test::Random random(1);
    Surface texels = Surface::randomOfSize(random, 40, 4);
    Screen screen;
    drawQuad(Module::older, screen, texels, cornersOf(0, 0, 2, 2, 32, 2), 0x1010);
    EXPECT_EQ(screen.surface.at(1, 1), texels.at(16, 1));
}

TEST(i3D_Blt_Rect, bits_outside_the_four_nibbles_are_ignored) {
    Surface texels(4, 4, 0x123456);
    for (const q_ulong flags : allModes) {
        Screen screen;
        drawQuad(Module::older, screen, texels, cornersOf(2, 3, 6, 8), flags | 0xFFF0000F);
        EXPECT_EQ(screen.surface.at(3, 4), 0x123456u);
    }
}

TEST(i3D_Blt_Rect, every_other_mode_draws_nothing) {
    Surface texels(4, 4, 0x123456);
    const QuadCorners corners = cornersOf(2, 3, 6, 8);
    Screen screen;
    for (q_ulong mode = 0; mode <= 0xFFFF0; mode += 0x10) {
        const bool known = std::count(std::begin(allModes), std::end(allModes), mode) != 0;
        const bool knownToPipeline = mode == 0x200 || mode == 0x10100;
        if (!known) {
            drawQuad(Module::older, screen, texels, corners, mode);
            drawTriangle(Module::older, screen, texels, triangleOf(corners, 0, 1, 2), mode);
        }
        if (!knownToPipeline)
            drawQuad(Module::pipeline, screen, texels, corners, mode);
    }
    EXPECT_TRUE(screen.untouched());
    EXPECT_TRUE(screen.older.spanMapper == nullptr);
    EXPECT_TRUE(screen.pipeline.spanMapper == nullptr);
}

TEST(i3D_Blt_Rect, an_unknown_mode_leaves_the_slot_as_it_was) {
    Surface texels(4, 4, 0x123456);
    Screen screen;
    drawQuad(Module::older, screen, texels, cornersOf(2, 3, 6, 8), 0x1010);
    const QM3DSpanMapper before = screen.older.spanMapper;
    drawQuad(Module::older, screen, texels, cornersOf(8, 8, 12, 12), 0);
    EXPECT_TRUE(before != nullptr && screen.older.spanMapper == before);
    EXPECT_EQ(screen.surface.at(9, 9), test::background);
}

/// Counts its calls instead of drawing, and keeps the first position it was handed.
int callsOfSlot = 0;
int firstPosition = 0;

void countingMapper(_PRIVATE_QMGL_DATA *, q_ulong *, q_ulong *, tagRECT *, q_ulong, q_ulong, int uL0, int, int, int,
                    int, int, int, int, int, int, int, int, int, int, int, int, int, int, int, int, int, int, int, int,
                    int, int, int, int) {
    ++callsOfSlot;
    firstPosition = uL0;
}

TEST(VKD_i3D_Blt_Tri, any_mode_but_one_calls_what_is_in_the_slot) {
    QuadCorners corners = cornersOf(2, 3, 6, 8, 4000, 4000);
    for (PolygonCorner &corner : corners)
        corner.tex.x += 160;
    Surface texels(4, 4);
    for (const q_ulong mode : {0x0u, 0x10100u, 0x1010u, 0x2210u, 0x100u, 0xFFFF0u}) {
        Screen screen;
        screen.pipeline.spanMapper = countingMapper;
        callsOfSlot = 0;
        drawTriangle(Module::pipeline, screen, texels, triangleOf(corners, 0, 1, 2), mode);
        EXPECT_EQ(callsOfSlot, 2);
        EXPECT_EQ(firstPosition, 160); // not shifted, however small the triangle
        EXPECT_TRUE(screen.pipeline.spanMapper == &countingMapper);
    }
    // The one mode replaces it.
    Screen screen;
    screen.pipeline.spanMapper = countingMapper;
    callsOfSlot = 0;
    corners = cornersOf(2, 3, 6, 8);
    drawTriangle(Module::pipeline, screen, texels, triangleOf(corners, 0, 1, 2), 0x200);
    EXPECT_EQ(callsOfSlot, 0);
    EXPECT_TRUE(screen.pipeline.spanMapper == &VKD_i3D_Mapping_Linear_HPE);
}

TEST(VKD_i3D_Blt_Tri, an_empty_slot_draws_nothing) {
    Surface texels(4, 4, 0x123456);
    Screen screen;
    drawTriangle(Module::pipeline, screen, texels, triangleOf(cornersOf(2, 3, 6, 8), 0, 1, 2), 0x10100);
    EXPECT_TRUE(screen.untouched());
}

TEST(VKD_i3D_Blt_Rect, the_slot_holds_the_mapper_that_drew) {
    Surface texels(70, 70, 0x123456);
    Screen screen;
    drawQuad(Module::pipeline, screen, texels, cornersOf(2, 3, 6, 8), 0x200);
    EXPECT_TRUE(screen.pipeline.spanMapper == &VKD_i3D_Mapping_Linear_HPE);
    drawQuad(Module::pipeline, screen, texels, cornersOf(2, 3, 6, 8, 1000, 1000), 0x200);
    EXPECT_TRUE(screen.pipeline.spanMapper == &VKD_i3D_Mapping_Near_HPE);
    drawQuad(Module::pipeline, screen, texels, cornersOf(2, 3, 6, 8, 1000, 1000), 0x10100);
    EXPECT_TRUE(screen.pipeline.spanMapper == &VKD_i3D_Mapping_Linear_HPE_KeySrc);
}

struct EdgeColumns {
    int left0;
    int left1;
    int right0;
    int right1;
};

/// The columns of the edges that a mapper was handed, call by call.
std::vector<EdgeColumns> recordedColumns;

void recordingMapper(_PRIVATE_QMGL_DATA *, q_ulong *, q_ulong *, tagRECT *, q_ulong, q_ulong, int, int, int, int, int,
                     int, int, int, int xL0, int xL1, int xR0, int xR1, int, int, int, int, int, int, int, int, int,
                     int, int, int, int, int, int, int) {
    recordedColumns.push_back({xL0, xL1, xR0, xR1});
}

/// The columns of the corners at (8, y0), (2, y1) and (14, y2) as they stand from top to bottom.
std::vector<int> sortedColumns(float y0, float y1, float y2) {
    TriangleCorners corners = triangleOf(cornersOf(0, 0, 0, 0), 0, 1, 2);
    corners[0].point = {8, y0, 0, 0};
    corners[1].point = {2, y1, 0, 0};
    corners[2].point = {14, y2, 0, 0};
    Surface texels(4, 4);
    Screen screen;
    screen.pipeline.spanMapper = recordingMapper;
    recordedColumns.clear();
    drawTriangle(Module::pipeline, screen, texels, corners, 0);
    const EdgeColumns upperBand = recordedColumns.at(0);
    const int bottom = recordedColumns.at(1).left1;
    const int middle = upperBand.left1 == bottom ? upperBand.right1 : upperBand.left1;
    return {upperBand.left0, middle, bottom};
}

TEST(VKD_i3D_Blt_Tri, the_third_corner_is_compared_with_the_other_two_in_whole_pixels) {
    using Columns = std::vector<int>;
    EXPECT_EQ(sortedColumns(0, 5.75F, 6), (Columns{8, 2, 14}));
    EXPECT_EQ(sortedColumns(0, 5.75F, 5.25F), (Columns{8, 2, 14})); // above 5.75, and for all that below 5
    EXPECT_EQ(sortedColumns(0, 5.75F, 5), (Columns{8, 14, 2}));
    EXPECT_EQ(sortedColumns(5.75F, 9, 5.25F), (Columns{8, 14, 2}));
    EXPECT_EQ(sortedColumns(5.75F, 9, 5), (Columns{14, 8, 2}));
}

TEST(VKD_i3D_Blt_Tri, the_first_two_corners_are_compared_as_they_are_given) {
    using Columns = std::vector<int>;
    EXPECT_EQ(sortedColumns(5.25F, 5.75F, 9), (Columns{8, 2, 14}));
    EXPECT_EQ(sortedColumns(5.75F, 5.25F, 9), (Columns{2, 8, 14}));
    EXPECT_EQ(sortedColumns(5.5F, 5.5F, 9), (Columns{2, 8, 14})); // of two equal ones the second
}

/// A grid of points with random jogs, its border on the border of the screen.
std::vector<_POINT3DFLOAT> jogged(test::Random &random, int cells, int cellSize) {
    std::vector<_POINT3DFLOAT> points;
    for (int i = 0; i <= cells; ++i)
        for (int j = 0; j <= cells; ++j) {
            const float jog = static_cast<float>(cellSize) / 5; // all cells stay convex
            const float dx = j == 0 || j == cells ? 0 : random.realBetween(-jog, jog);
            const float dy = i == 0 || i == cells ? 0 : random.realBetween(-jog, jog);
            points.push_back({static_cast<float>(j * cellSize) + dx, static_cast<float>(i * cellSize) + dy, 100, 0});
        }
    return points;
}

/// How often each pixel of the screen is drawn by `draw(data, target, depths)`, counted by drawing over black with a
/// mapper that keeps no depth: each polygon is drawn on a screen of its own.
template <class ForEachPolygon>
void expectEachPixelDrawnOnce(int size, ForEachPolygon forEachPolygon) {
    std::vector<int> counts(static_cast<std::size_t>(size * size));
    forEachPolygon([&](auto draw) {
        Screen screen(size, size, 0);
        draw(screen);
        for (int y = 0; y < size; ++y)
            for (int x = 0; x < size; ++x)
                if (screen.surface.at(x, y) != 0)
                    ++counts[static_cast<std::size_t>(y * size + x)];
    });
    for (int y = 0; y < size; ++y)
        for (int x = 0; x < size; ++x)
            ASSERT_EQ(counts[static_cast<std::size_t>(y * size + x)], 1) << x << ", " << y;
}

TEST(i3D_Blt_Tri, triangles_that_share_edges_leave_no_gap_and_do_not_overlap) {
    Surface texels(4, 4, 0x010101);
    for (int seed = 0; seed < 20; ++seed) {
        test::Random random(static_cast<std::uint64_t>(seed));
        const int cells = 4;
        const int cellSize = 9;
        const auto points = jogged(random, cells, cellSize);
        const tagRECT clip = {0, 0, cells * cellSize, cells * cellSize};
        for (const q_ulong flags : {0x200u, 0x2210u})
            expectEachPixelDrawnOnce(cells * cellSize, [&](auto polygon) {
                for (int i = 0; i < cells; ++i)
                    for (int j = 0; j < cells; ++j) {
                        const auto k = static_cast<std::size_t>(i * (cells + 1) + j);
                        const std::size_t indexes[2][3] = {{k, k + 1, k + cells + 1},
                                                           {k + cells + 1, k + 1, k + cells + 2}};
                        for (const auto &index : indexes)
                            polygon([&](Screen &screen) {
                                TriangleCorners corners;
                                for (std::size_t c = 0; c < 3; ++c)
                                    corners[c] = {points[index[c]], {0, 0}, 0, 256};
                                drawTriangle(Module::older, screen, texels, corners, flags, clip);
                            });
                    }
            });
    }
}

TEST(VKD_i3D_Blt_Rect, quads_that_share_edges_leave_no_gap_and_do_not_overlap) {
    Surface texels(4, 4, 0x010101);
    for (int seed = 0; seed < 20; ++seed) {
        test::Random random(static_cast<std::uint64_t>(seed));
        const int cells = 4;
        const int cellSize = 9;
        const auto points = jogged(random, cells, cellSize);
        const tagRECT clip = {0, 0, cells * cellSize, cells * cellSize};
        expectEachPixelDrawnOnce(cells * cellSize, [&](auto polygon) {
            for (int i = 0; i < cells; ++i)
                for (int j = 0; j < cells; ++j) {
                    const auto k = static_cast<std::size_t>(i * (cells + 1) + j);
                    const std::size_t index[4] = {k, k + 1, k + cells + 2, k + cells + 1};
                    polygon([&](Screen &screen) {
                        QuadCorners corners;
                        for (std::size_t c = 0; c < 4; ++c)
                            corners[c] = {points[index[c]], {0, 0}, 0, 256};
                        drawQuad(Module::pipeline, screen, texels, corners, 0x200, clip);
                    });
                }
        });
    }
}

TEST(i3D_Blt_Rect, a_turning_cube_never_shows_a_hole) {
    // Its outline is convex: in each row, what is drawn has no gap.
    Surface texels(4, 4, 0x123456);
    for (int step = 0; step < 360; ++step) {
        const double turn = step * 3.14159265358979 / 180;
        const auto corner = [turn](int index) { // bits 0 to 2 choose the side of each axis
            const double x = index & 1 ? 20 : -20;
            const double y = index & 2 ? 20 : -20;
            const double z = index & 4 ? 20 : -20;
            const double x1 = x * std::cos(turn) - z * std::sin(turn);
            const double z1 = x * std::sin(turn) + z * std::cos(turn);
            const double y2 = y * std::cos(turn * 2) - z1 * std::sin(turn * 2);
            const double z2 = y * std::sin(turn * 2) + z1 * std::cos(turn * 2);
            return PolygonCorner{
                {static_cast<float>(40 + x1), static_cast<float>(40 + y2), static_cast<float>(z2), 0}, {0, 0}, 0, 256};
        };
        constexpr int faces[6][4] = {{0, 1, 3, 2}, {4, 5, 7, 6}, {0, 1, 5, 4},
                                     {2, 3, 7, 6}, {0, 2, 6, 4}, {1, 3, 7, 5}};
        Screen screen(80, 80, 0);
        for (const auto &face : faces)
            drawQuad(Module::older, screen, texels,
                     {corner(face[0]), corner(face[1]), corner(face[2]), corner(face[3])}, 0x200,
                     screen.surface.rect());
        int drawnRows = 0;
        for (int y = 0; y < 80; ++y) {
            int changes = 0;
            for (int x = 1; x < 80; ++x)
                changes += screen.surface.at(x, y) != screen.surface.at(x - 1, y);
            ASSERT_TRUE(changes == 0 || changes == 2) << "row " << y << " at " << step << " degrees";
            drawnRows += changes == 2;
        }
        EXPECT_GE(drawnRows, 38);
    }
}

TEST(i3D_Blt_Rect, what_lies_nearer_stays_whatever_the_order_of_drawing) {
    test::Random random(1);
    Surface texels = Surface::randomOfSize(random, 16, 16);
    for (int seed = 0; seed < 30; ++seed) {
        test::Random shapes(static_cast<std::uint64_t>(seed));
        std::array<QuadCorners, 3> quads;
        for (std::size_t q = 0; q < 3; ++q) {
            const float left = shapes.realBetween(0, 8);
            const float top = shapes.realBetween(0, 8);
            const float right = shapes.realBetween(9, 16);
            const float bottom = shapes.realBetween(9, 16);
            quads[q] = cornersOf(left, top, right, bottom, 200, 200);
            for (PolygonCorner &corner : quads[q]) { // no two of the quads meet in depth
                corner.point.z = static_cast<float>(q * 1000) + shapes.realBetween(0, 900);
                corner.add = shapes.between(0, 30);
            }
        }
        std::array<std::size_t, 3> order = {0, 1, 2};
        Screen expected;
        for (const std::size_t q : order)
            drawQuad(Module::older, expected, texels, quads[q], 0x200);
        while (std::next_permutation(order.begin(), order.end())) {
            Screen screen;
            for (const std::size_t q : order)
                drawQuad(Module::older, screen, texels, quads[q], 0x200);
            EXPECT_EQ(screen.surface.differenceFrom(expected.surface), "");
            EXPECT_TRUE(screen.depths == expected.depths);
        }
    }
}

} // namespace
