#include "plain/span_mappers.h"
#include "support/screen.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <numeric>

namespace {

using plain::flatMode, plain::keyedMode, plain::litMode, plain::unlitMode;
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

constexpr q_ulong allModes[] = {litMode, keyedMode, unlitMode, flatMode};

/// Expects the same of all orders of a polygon's corners.
template <class Corners, class Draw>
void expectSameInAnyOrder(const Corners &corners, Draw draw) {
    Screen expected;
    draw(expected, corners);
    EXPECT_NE(expected.surface.at(7, 5), test::background);
    std::array<std::size_t, std::tuple_size_v<Corners>> order;
    std::iota(order.begin(), order.end(), 0U);
    while (std::next_permutation(order.begin(), order.end())) {
        Corners shuffled;
        for (std::size_t i = 0; i < order.size(); ++i)
            shuffled[i] = corners[order[i]];
        Screen screen;
        draw(screen, shuffled);
        EXPECT_EQ(screen.surface.differenceFrom(expected.surface), "");
        EXPECT_TRUE(screen.depths == expected.depths);
    }
}

TEST(i3D_Blt_Rect, corners_in_any_order_draw_the_same_polygon) {
    test::Random random(1);
    Surface texels = Surface::randomOfSize(random, 16, 16);
    for (const q_ulong flags : allModes) {
        const int unit = flags == unlitMode ? 1 : 16;
        QuadCorners corners = cornersOf(0, 0, 0, 0, 12 * unit, 12 * unit);
        constexpr float places[4][2] = {{7, 1}, {14, 6}, {9, 15}, {1, 8}}; // no two of one height
        for (std::size_t i = 0; i < 4; ++i) {
            corners[i].point = {places[i][0], places[i][1], static_cast<float>(i * 10), 0};
            corners[i].add = static_cast<int>(i * 5);
            corners[i].mul = static_cast<int>(200 + i * 20);
        }
        expectSameInAnyOrder(corners, [&](Screen &screen, const QuadCorners &shuffled) {
            drawQuad(Module::older, screen, texels, shuffled, flags);
        });
        expectSameInAnyOrder(triangleOf(corners, 0, 1, 3), [&](Screen &screen, const TriangleCorners &shuffled) {
            drawTriangle(Module::older, screen, texels, shuffled, flags);
        });
    }
}

TEST(i3D_Blt_Rect, the_lower_row_and_the_right_column_are_not_drawn) {
    Surface texels(4, 4, 0x123456);
    for (const q_ulong flags : allModes) {
        Screen screen;
        drawQuad(Module::older, screen, texels, cornersOf(2, 3, 6, 8), flags | 0xFFF0000F); // further bits are ignored
        EXPECT_EQ(screen.surface.differenceFrom(painted(Screen().surface, {2, 3, 6, 8}, 0x123456)), "");
        Screen flat;
        drawQuad(Module::older, flat, texels, cornersOf(2, 5, 9, 5), flags);
        EXPECT_TRUE(flat.untouched()) << "all corners on one row";
    }
}

TEST(i3D_Blt_Rect, a_quad_rejected_by_its_rows_leaves_the_slot_as_it_was) {
    Surface texels(4, 4, 0x123456);
    for (const Module module : {Module::older, Module::pipeline}) {
        const auto fillsSlot = [&](float top, float bottom) {
            Screen screen;
            drawQuad(module, screen, texels, cornersOf(2, top, 6, bottom), litMode, {0, 4, 16, 8});
            EXPECT_TRUE(screen.untouched());
            return screen.older.spanMapper || screen.pipeline.spanMapper;
        };
        EXPECT_FALSE(fillsSlot(0, 3));
        EXPECT_TRUE(fillsSlot(0, 4));  // touching the top is no rejection, and draws nothing
        EXPECT_TRUE(fillsSlot(8, 12)); // nor is touching the bottom
        EXPECT_FALSE(fillsSlot(9, 12));
    }
}

TEST(i3D_Blt_Tri, triangles_are_not_rejected_by_their_rows) {
    Surface texels(4, 4, 0x123456);
    const TriangleCorners above = triangleOf(cornersOf(2, -9, 6, -3), 0, 1, 2);
    Screen screen;
    drawTriangle(Module::older, screen, texels, above, litMode);
    drawTriangle(Module::pipeline, screen, texels, above, litMode);
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
    drawQuad(Module::older, screen, texels, corners, litMode);
    EXPECT_EQ(screen.surface.at(3, 2), 0x123456u);
    EXPECT_EQ(screen.surface.at(3, 8), 0x123456u);
    EXPECT_EQ(screen.surface.at(4, 4), test::background);
    // Without the left corner there is nothing between the edges: both chains stand on the line.
    corners[3].point = {4, 8, 0, 0};
    Screen flat;
    drawQuad(Module::older, flat, texels, corners, litMode);
    EXPECT_TRUE(flat.untouched());
}

/// Whether a quad is drawn by a filtered mapper.
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
    EXPECT_TRUE(drawsFiltered(Module::older, just, litMode));
    EXPECT_FALSE(drawsFiltered(Module::older, over, litMode));
    EXPECT_FALSE(drawsFiltered(Module::older, cornersOf(0, 0, 16.5F, 8.9F, 129, 128), litMode)) << "in whole pixels";
    EXPECT_TRUE(drawsFiltered(Module::older, just, flatMode));
    EXPECT_FALSE(drawsFiltered(Module::older, over, flatMode));
    EXPECT_TRUE(drawsFiltered(Module::pipeline, just, litMode));
    EXPECT_FALSE(drawsFiltered(Module::pipeline, over, litMode));
    // The other modes do not look at the shrink.
    EXPECT_TRUE(drawsFiltered(Module::older, over, keyedMode));
    EXPECT_TRUE(drawsFiltered(Module::pipeline, over, keyedMode));
}

TEST(i3D_Blt_Rect, a_polygon_without_area_goes_nearest_unless_its_texture_has_none_either) {
    const auto slotOf = [](const QuadCorners &corners) {
        Screen screen;
        Surface texels(70, 70);
        drawQuad(Module::older, screen, texels, corners, litMode);
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
    drawQuad(Module::older, screen, texels, corners, litMode, everywhere, {2, 0});
    EXPECT_EQ(screen.surface.at(5, 5), 2u);
    drawQuad(Module::pipeline, screen, texels, cornersOf(8, 8, 9, 9, 16, 64), litMode, everywhere, {2, 0});
    EXPECT_EQ(screen.surface.at(8, 8), 3u);
}

TEST(i3D_Blt_Rect, plain_texels_take_positions_in_whole_texels) {
    // Positions in sixteenths would lead sixteen times too far.
    test::Random random(1);
    Surface texels = Surface::randomOfSize(random, 40, 4);
    Screen screen;
    drawQuad(Module::older, screen, texels, cornersOf(0, 0, 2, 2, 32, 2), unlitMode);
    EXPECT_EQ(screen.surface.at(1, 1), texels.at(16, 1));
}

TEST(i3D_Blt_Rect, every_other_mode_draws_nothing_and_leaves_the_slot_as_it_was) {
    Surface texels(4, 4, 0x123456);
    const QuadCorners corners = cornersOf(2, 3, 6, 8);
    Screen screen;
    for (q_ulong mode = 0; mode <= 0xFFFF0; mode += 0x10) {
        const bool known = std::count(std::begin(allModes), std::end(allModes), mode) != 0;
        const bool knownToPipeline = mode == litMode || mode == keyedMode;
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
    drawQuad(Module::older, screen, texels, corners, unlitMode);
    const QM3DSpanMapper before = screen.older.spanMapper;
    drawQuad(Module::older, screen, texels, corners, 0);
    EXPECT_TRUE(before != nullptr && screen.older.spanMapper == before);
}

/// What a mapper was handed instead of drawing: its first position and the columns of its edges.
struct MapperCall {
    int u;
    int left0;
    int left1;
    int right1;
};
std::vector<MapperCall> recordedCalls;

void recordingMapper(_PRIVATE_QMGL_DATA *, q_ulong *, q_ulong *, tagRECT *, q_ulong, q_ulong, int uL0, int, int, int,
                     int, int, int, int, int xL0, int xL1, int, int xR1, int, int, int, int, int, int, int, int, int,
                     int, int, int, int, int, int, int) {
    recordedCalls.push_back({uL0, xL0, xL1, xR1});
}

/// Draws with that mapper in the slot, and tells what is there afterwards.
QMGLSpanMapper drawRecorded(const TriangleCorners &corners, q_ulong mode) {
    Surface texels(4, 4);
    Screen screen;
    screen.pipeline.spanMapper = recordingMapper;
    recordedCalls.clear();
    drawTriangle(Module::pipeline, screen, texels, corners, mode);
    return screen.pipeline.spanMapper;
}

TEST(VKD_i3D_Blt_Tri, any_mode_but_one_calls_what_is_in_the_slot) {
    QuadCorners corners = cornersOf(2, 3, 6, 8, 4000, 4000);
    for (PolygonCorner &corner : corners)
        corner.tex.x += 160;
    for (const q_ulong mode : std::initializer_list<q_ulong>{0, keyedMode, unlitMode, flatMode, 0x100, 0xFFFF0}) {
        EXPECT_TRUE(drawRecorded(triangleOf(corners, 0, 1, 2), mode) == &recordingMapper);
        ASSERT_EQ(recordedCalls.size(), 2u);
        EXPECT_EQ(recordedCalls[1].u, 160); // not shifted, however small the triangle
    }
    // The one mode replaces it.
    EXPECT_TRUE(drawRecorded(triangleOf(cornersOf(2, 3, 6, 8), 0, 1, 2), litMode) == &VKD_i3D_Mapping_Linear_HPE);
    EXPECT_TRUE(recordedCalls.empty());
    // And an empty slot draws nothing.
    Surface texels(4, 4, 0x123456);
    Screen screen;
    drawTriangle(Module::pipeline, screen, texels, triangleOf(cornersOf(2, 3, 6, 8), 0, 1, 2), keyedMode);
    EXPECT_TRUE(screen.untouched());
}

TEST(VKD_i3D_Blt_Rect, the_slot_holds_the_mapper_that_drew) {
    Surface texels(70, 70, 0x123456);
    Screen screen;
    drawQuad(Module::pipeline, screen, texels, cornersOf(2, 3, 6, 8), litMode);
    EXPECT_TRUE(screen.pipeline.spanMapper == &VKD_i3D_Mapping_Linear_HPE);
    drawQuad(Module::pipeline, screen, texels, cornersOf(2, 3, 6, 8, 1000, 1000), litMode);
    EXPECT_TRUE(screen.pipeline.spanMapper == &VKD_i3D_Mapping_Near_HPE);
    drawQuad(Module::pipeline, screen, texels, cornersOf(2, 3, 6, 8, 1000, 1000), keyedMode);
    EXPECT_TRUE(screen.pipeline.spanMapper == &VKD_i3D_Mapping_Linear_HPE_KeySrc);
}

using Columns = std::vector<int>;

/// The columns of the corners at (8, y0), (2, y1) and (14, y2) as they stand from top to bottom.
Columns sortedColumns(float y0, float y1, float y2) {
    TriangleCorners corners = triangleOf(cornersOf(0, 0, 0, 0), 0, 1, 2);
    corners[0].point = {8, y0, 0, 0};
    corners[1].point = {2, y1, 0, 0};
    corners[2].point = {14, y2, 0, 0};
    drawRecorded(corners, 0);
    const MapperCall upperBand = recordedCalls.at(0);
    const int bottom = recordedCalls.at(1).left1;
    return {upperBand.left0, upperBand.left1 == bottom ? upperBand.right1 : upperBand.left1, bottom};
}

TEST(VKD_i3D_Blt_Tri, rows_are_compared_as_given_and_the_third_with_the_others_in_whole_pixels) {
    EXPECT_EQ(sortedColumns(5.25F, 5.75F, 9), (Columns{8, 2, 14}));
    EXPECT_EQ(sortedColumns(5.75F, 5.25F, 9), (Columns{2, 8, 14}));
    EXPECT_EQ(sortedColumns(5.5F, 5.5F, 9), (Columns{2, 8, 14})); // of two equal ones the second
    EXPECT_EQ(sortedColumns(0, 5.75F, 6), (Columns{8, 2, 14}));
    EXPECT_EQ(sortedColumns(0, 5.75F, 5.25F), (Columns{8, 2, 14})); // above 5.75, and for all that below 5
    EXPECT_EQ(sortedColumns(0, 5.75F, 5), (Columns{8, 14, 2}));
    EXPECT_EQ(sortedColumns(5.75F, 9, 5.25F), (Columns{8, 14, 2}));
    EXPECT_EQ(sortedColumns(5.75F, 9, 5), (Columns{14, 8, 2}));
}

TEST(i3D_Blt_Tri, polygons_that_share_edges_leave_no_gap_and_do_not_overlap) {
    // A grid of points with random jogs, its border on the border of the screen; all cells stay convex. Each polygon is
    // drawn on a black screen of its own.
    constexpr int cells = 4;
    constexpr int size = 36;
    constexpr tagRECT whole = {0, 0, size, size};
    Surface texels(4, 4, 0x010101);
    for (int seed = 0; seed < 20; ++seed) {
        test::Random random(static_cast<std::uint64_t>(seed));
        PolygonCorner grid[cells + 1][cells + 1];
        for (int i = 0; i <= cells; ++i)
            for (int j = 0; j <= cells; ++j) {
                const float dx = j % cells == 0 ? 0 : random.realBetween(-1.8F, 1.8F);
                const float dy = i % cells == 0 ? 0 : random.realBetween(-1.8F, 1.8F);
                grid[i][j] = {{static_cast<float>(9 * j) + dx, static_cast<float>(9 * i) + dy, 100, 0}, {0, 0}, 0, 256};
            }
        for (const q_ulong flags : {litMode, flatMode}) {
            Surface counts(size, size);
            const auto count = [&](const Screen &screen) {
                counts = painted(counts, whole, [&](int x, int y) {
                    return counts.at(x, y) + (screen.surface.at(x, y) != 0 ? 1 : 0);
                });
            };
            for (int i = 0; i < cells; ++i)
                for (int j = 0; j < cells; ++j) {
                    const QuadCorners cell = {grid[i][j], grid[i][j + 1], grid[i + 1][j + 1], grid[i + 1][j]};
                    Screen upper(size, size, 0);
                    Screen lower(size, size, 0);
                    Screen quad(size, size, 0);
                    drawTriangle(Module::older, upper, texels, triangleOf(cell, 0, 1, 3), flags, whole);
                    drawTriangle(Module::older, lower, texels, triangleOf(cell, 3, 1, 2), flags, whole);
                    drawQuad(Module::pipeline, quad, texels, cell, litMode, whole);
                    count(upper);
                    count(lower);
                    count(quad);
                }
            ASSERT_EQ(counts.differenceFrom(painted(Surface(size, size), whole, 2)), "") << "once each, seed " << seed;
        }
    }
}

} // namespace
