#include "proofs/proofs.h"
#include "support/numbers.h"

#include <utility>

namespace {

using catalogue::Call;
using catalogue::Plane;
using catalogue::Random;
using catalogue::Row;
using test::greatestInt, test::leastInt;

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

/// From `first` to `last`, in larger steps from `wide` on.
std::vector<int> steps(int first, int last, int wide, int step) {
    std::vector<int> all;
    for (int i = first; i <= last; i += i < wide ? 1 : step)
        all.push_back(i);
    return all;
}

std::vector<int> all(int first, int last) {
    return steps(first, last, last, 1);
}

/// Figures in the middle of a square, with an argument that takes each of some values.
struct Family {
    std::vector<std::string_view> names;
    int side;
    std::string_view argument;
    std::vector<int> values;
    Changes others = {};
};

TEST(Large, figures_beyond_the_small_surfaces_of_the_proofs_agree_with_their_twins) {
    const Family families[] = {
        {{"Draw_Circle_FillInside", "Draw_Metal_Circle", "Draw_Ring", "Draw_Star_Type3", "Draw_3DBall",
          "Draw_Circle_Light"},
         241,
         "radius",
         all(0, 120)},
        {{"Draw_Star_Type1", "Draw_Star_Type2", "Draw_Light"},
         740,
         "radius", // as far as the table goes
         {50, 100, 181, 255, 256, 300, 361, 362},
         {{"intensity", 64}}},
        {{"Draw_Star_Type1_Safe", "Draw_Light_Safe", "Draw_3DBall", "Draw_3DBall_Safe"},
         530,
         "radius", // cut to 256
         {256, 257, 1000, greatestInt}},
        {{"DDLine_Fat"}, 130, "halfWidth", all(0, 60), {{"x2", 70}, {"y2", 80}}},
        {{"MakeBubbleResource", "MakeBubbleResource2"},
         240,
         "size",
         steps(2, 240, 40, 13),
         {{"x", 0}, {"y", 0}, {"secondHighlight", 0}}},
        {{"MakeBubbleResource", "MakeBubbleResource2"},
         240,
         "size",
         steps(2, 240, 40, 13),
         {{"x", 0}, {"y", 0}, {"secondHighlight", 1}}},
    };
    for (const Family &family : families)
        for (const std::string_view name : family.names)
            for (const int value : family.values) {
                Changes changes = family.others;
                changes.emplace_back(family.argument, value);
                ASSERT_TRUE(agrees(name, family.side, changes)) << name << ": " << value;
            }
}

TEST(Large, bands_of_every_radius_and_thickness_agree_with_their_twins) {
    for (int radius = -1; radius <= 30; ++radius)
        for (int thickness = -3; thickness <= 70; ++thickness)
            ASSERT_TRUE(agrees("Draw_Circle_NoFillInside", 61, {{"radius", radius}, {"thickness", thickness}}));
    // As far as the table goes.
    for (const auto name : {"Draw_Anti_Aliasing_Circle_NoFillInside", "Draw_Ring_Safe"})
        for (const int thickness : steps(1, 64, 4, 12))
            for (const int radius : steps(-2 * thickness - 1, 127 - 2 * thickness, 8, 17))
                ASSERT_TRUE(agrees(name, 255, {{"radius", radius}, {"thickness", thickness}}));
}

TEST(Large, bubbles_of_every_size_agree_with_their_twins_over_the_edges_too) {
    Random random(3);
    const Plane resource = Plane::randomSurface(random, 200, 40);
    const Plane scratch = Plane::randomSurface(random, 190, 190);
    catalogue::forEachRow([&](const Row &row) {
        if (!row.argument("resourceSize"))
            return;
        for (int size = 1; size <= (row.readsTables ? 181 : 380); size += size < 330 ? 1 : 3) {
            const int width = random.between(1, 190);
            const int height = random.between(1, 190);
            Call call = largeCall(row, 190,
                                  {{"size", size},
                                   {"resourceSize", random.between(1, 40)},
                                   {"width", width},
                                   {"height", height},
                                   {"cx", random.between(-40, width + 40)},
                                   {"cy", random.between(-40, height + 40)}});
            call["resource"] = resource;
            if (row.argument("scratch"))
                call["scratch"] = scratch;
            ASSERT_TRUE(agrees(call)) << "size " << size;
        }
    });
}

TEST(Large, boxes_at_the_ends_of_the_numbers_agree_with_the_twins) {
    constexpr int sides[] = {leastInt, -2048, -1, 3, 700, greatestInt};
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

} // namespace
