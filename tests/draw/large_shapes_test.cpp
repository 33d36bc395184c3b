#include "proofs/proofs.h"

#include <limits>
#include <utility>

namespace {

using catalogue::Call;
using catalogue::Plane;
using catalogue::Random;
using catalogue::Row;

using Changes = std::vector<std::pair<std::string_view, int>>;

constexpr int least = std::numeric_limits<int>::min();
constexpr int greatest = std::numeric_limits<int>::max();

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
         {256, 257, 1000, greatest}},
        {{"DDLine_Fat"}, 130, "halfWidth", all(0, 60), {{"x2", 70}, {"y2", 80}}},
        {{"MakeBubbleResource", "MakeBubbleResource2"},
         240,
         "size",
         steps(2, 240, 64, 44),
         {{"x", 0}, {"y", 0}, {"secondHighlight", 0}}},
        {{"MakeBubbleResource", "MakeBubbleResource2"},
         240,
         "size",
         steps(2, 240, 64, 44),
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

TEST(Large, bubbles_of_every_size_up_to_40_and_larger_ones_agree_with_their_twins) {
    Random random(3);
    const Plane resource = Plane::randomSurface(random, 200, 40);
    const Plane scratch = Plane::randomSurface(random, 190, 190);
    catalogue::forEachRow([&](const Row &row) {
        if (!row.argument("resourceSize"))
            return;
        for (const int size : steps(1, 181, 41, 7)) {
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
    constexpr int sides[] = {least, -2048, -1, 3, 700, greatest};
    catalogue::forEachRow([&](const Row &row) {
        if (!row.argument("box") || !row.argument("clip"))
            return;
        Random random(1);
        Call call = catalogue::randomCall(row, random);
        call["surface"] = Plane::randomSurface(random, 6, 6);
        call["clip"] = tagRECT{1, 2, 5, 4};
        call.settle();
        for (int i = 0; i < 6 * 6 * 6 * 6; ++i) {
            call["box"] = tagRECT{sides[i % 6], sides[i / 6 % 6], sides[i / 36 % 6], sides[i / 216]};
            ASSERT_TRUE(agrees(call));
        }
    });
}

TEST(Large, clips_inverted_at_the_ends_of_the_numbers_agree_with_the_twins) {
    constexpr tagRECT clips[] = {{greatest, 0, 9, 9},
                                 {0, greatest, 9, 9},
                                 {0, 0, least, 9},
                                 {0, 0, 9, least},
                                 {greatest, greatest, least, least}};
    for (const catalogue::Subsystem &subsystem : catalogue::subsystems())
        for (const Row &row : subsystem.rows) {
            if (subsystem.name != "draw" || !row.argument("clip"))
                continue;
            for (int i = 0; i < 5 * 20; ++i) {
                Random random(static_cast<std::uint64_t>(i / 5));
                Call call = catalogue::randomCall(row, random);
                call["clip"] = clips[i % 5];
                ASSERT_TRUE(proofs::agree(call, row.fullName()));
            }
        }
}

} // namespace
