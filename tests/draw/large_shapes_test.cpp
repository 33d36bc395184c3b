#include "proofs/proofs.h"

#include <limits>
#include <utility>

namespace {

using catalogue::Call;
using catalogue::Plane;
using catalogue::Random;
using catalogue::Row;

using Changes = std::vector<std::pair<std::string_view, int>>;

/// A call of a function in the middle of a square picture, with some of its arguments set.
Call largeCall(const Row &row, int side, const Changes &changes) {
    Random random(1);
    Call call = catalogue::randomCall(row, random);
    call["surface"] = Plane::surface(side, side, 0xFF204060);
    if (row.argument("clip"))
        call["clip"] = call["surface"].plane().rect();
    for (const std::string_view place : {"cx", "cy", "x1", "y1"})
        if (row.argument(place))
            call[place] = side / 2;
    for (const auto &[name, value] : changes)
        call[name] = value;
    call.settle();
    return call;
}

bool agrees(const Call &call) {
    return catalogue::keepsToContract(call) && proofs::agree(call, call.row().fullName());
}

bool agrees(std::string_view name, int side, const Changes &changes) {
    bool same = false;
    catalogue::forEachRow([&](const Row &row) {
        if (row.fullName() == name)
            same = agrees(largeCall(row, side, changes));
    });
    return same;
}

TEST(Large, discs_and_stars_of_every_radius_up_to_120_agree_with_their_twins) {
    for (const auto name : {"Draw_Circle_FillInside", "Draw_Metal_Circle", "Draw_Ring", "Draw_Star_Type3",
                            "Draw_3DBall", "Draw_Circle_Light"})
        for (int radius = 0; radius <= 120; ++radius)
            ASSERT_TRUE(agrees(name, 241, {{"radius", radius}}));
}

TEST(Large, circles_of_every_radius_and_thickness_up_to_70_agree_with_their_twin) {
    for (int radius = -1; radius <= 30; ++radius)
        for (int thickness = -3; thickness <= 70; ++thickness)
            ASSERT_TRUE(agrees("Draw_Circle_NoFillInside", 61, {{"radius", radius}, {"thickness", thickness}}));
}

TEST(Large, radii_as_far_as_the_table_goes_agree_with_their_twins) {
    for (const auto name : {"Draw_Star_Type1", "Draw_Star_Type2", "Draw_Light"})
        for (const int radius : {50, 100, 181, 255, 256, 300, 361, 362})
            ASSERT_TRUE(agrees(name, 740, {{"radius", radius}, {"intensity", 64}}));
}

TEST(Large, radii_that_are_cut_to_256_agree_with_their_twins) {
    for (const auto name : {"Draw_Star_Type1_Safe", "Draw_Light_Safe", "Draw_3DBall", "Draw_3DBall_Safe"})
        for (const int radius : {256, 257, 1000, std::numeric_limits<int>::max()})
            ASSERT_TRUE(agrees(name, 530, {{"radius", radius}}));
}

TEST(Large, every_band_that_the_table_holds_agrees_with_its_twin) {
    for (const auto name : {"Draw_Anti_Aliasing_Circle_NoFillInside", "Draw_Ring_Safe"})
        for (int thickness = 1; thickness <= 64; thickness += thickness < 4 ? 1 : 12)
            for (int radius = -2 * thickness - 1; radius + 2 * thickness <= 127; radius += radius < 8 ? 1 : 17)
                ASSERT_TRUE(agrees(name, 255, {{"radius", radius}, {"thickness", thickness}}));
}

TEST(Large, tubes_of_every_half_width_up_to_60_agree_with_their_twin) {
    for (int halfWidth = 0; halfWidth <= 60; ++halfWidth)
        ASSERT_TRUE(agrees("DDLine_Fat", 130, {{"halfWidth", halfWidth}, {"x2", 70}, {"y2", 80}}));
}

TEST(Large, resources_of_every_size_up_to_64_and_larger_ones_agree_with_their_twins) {
    for (const auto name : {"MakeBubbleResource", "MakeBubbleResource2"})
        for (int size = 2; size <= 240; size += size < 64 ? 1 : 44)
            for (const int second : {0, 1})
                ASSERT_TRUE(agrees(name, size, {{"x", 0}, {"y", 0}, {"size", size}, {"secondHighlight", second}}));
}

TEST(Large, bubbles_of_every_size_up_to_40_and_larger_ones_agree_with_their_twins) {
    Random random(3);
    const Plane resource = Plane::randomSurface(random, 200, 40);
    const Plane scratch = Plane::randomSurface(random, 190, 190);
    catalogue::forEachRow([&](const Row &row) {
        if (!row.argument("resourceSize"))
            return;
        for (int size = 1; size <= 181; size += size < 41 ? 1 : 7) {
            Call call = largeCall(row, 190, {{"size", size}, {"resourceSize", 1}, {"width", 190}, {"height", 186}});
            call["resource"] = resource;
            call["resourceSize"] = 40;
            if (row.argument("scratch"))
                call["scratch"] = scratch;
            ASSERT_TRUE(agrees(call)) << "size " << size;
        }
    });
}

TEST(Large, boxes_at_the_ends_of_the_numbers_agree_with_the_twins) {
    constexpr int sides[] = {std::numeric_limits<int>::min(), -2048, -1, 3, 700, std::numeric_limits<int>::max()};
    catalogue::forEachRow([&](const Row &row) {
        if (!row.argument("box") || !row.argument("clip"))
            return;
        Random random(1);
        Call call = catalogue::randomCall(row, random);
        call["surface"] = Plane::randomSurface(random, 6, 6);
        call["clip"] = tagRECT{1, 2, 5, 4};
        call.settle();
        for (const int left : sides)
            for (const int top : sides)
                for (const int right : sides)
                    for (const int bottom : sides) {
                        call["box"] = tagRECT{left, top, right, bottom};
                        ASSERT_TRUE(agrees(call));
                    }
    });
}

TEST(Large, clips_inverted_at_the_ends_of_the_numbers_agree_with_the_twins) {
    constexpr int least = std::numeric_limits<int>::min();
    constexpr int greatest = std::numeric_limits<int>::max();
    constexpr tagRECT clips[] = {{greatest, 0, 9, 9},
                                 {0, greatest, 9, 9},
                                 {0, 0, least, 9},
                                 {0, 0, 9, least},
                                 {greatest, greatest, least, least}};
    for (const catalogue::Subsystem &subsystem : catalogue::subsystems())
        for (const Row &row : subsystem.rows) {
            if (subsystem.name != "draw" || !row.argument("clip"))
                continue;
            for (const tagRECT &clip : clips)
                for (int number = 0; number < 20; ++number) {
                    Random random(static_cast<std::uint64_t>(number));
                    Call call = catalogue::randomCall(row, random);
                    call["clip"] = clip;
                    ASSERT_TRUE(proofs::agree(call, row.fullName()));
                }
        }
}

} // namespace
