/// \file
/// What the rows of both modules that draw in three dimensions share: points, colours and grids of them.
#ifndef Q_MUR_CATALOGUE_MESHES_H
#define Q_MUR_CATALOGUE_MESHES_H

#include "areas.h"
#include "arguments.h"

#include <array>
#include <cmath>

namespace catalogue {

// Points and colours

using Point = _POINT3DFLOAT;

/// A point between -`reach` and `reach`, and as deep as `depth` says.
inline Point randomPoint(Random &random, float reach, Range depth) {
    const float x = random.realBetween(-reach, reach);
    const float y = random.realBetween(-reach, reach);
    return {x, y, random.realBetween(static_cast<float>(depth.low), static_cast<float>(depth.high)), 0};
}

inline Point randomLight(Random &random) {
    const float x = random.realBetween(-1, 1);
    const float y = random.realBetween(-1, 1);
    return {x, y, random.realBetween(-0.5F, 1), 0};
}

inline Plane randomColours(Random &random, int count) {
    return Plane::array<q_ulong>(count, [&random](int) { return random.pixel(); });
}

/// A colour for each of so many points in rows of `columns`.
inline Plane patternOfColours(int count, int columns) {
    return Plane::array<q_ulong>(count, [columns](int i) {
        const bool isLight = (i % columns / 4 + i / columns / 4) % 2 == 0;
        return static_cast<q_ulong>(isLight ? 0xF0E0C0 : 0x3060A0);
    });
}

/// A light from the upper left in front of the surface.
inline Plane lightFromAbove() {
    return Plane::of(Point{0.36F, 0.48F, 0.8F, 0});
}

// Grids of points

/// A grid over the whole stage. The points inside are moved a little and all have depths of their own, so that cells
/// are quads of any slope, which together cover the stage once.
inline Plane coveringGrid(const Stage &stage, int rows, int columns) {
    Random random(static_cast<std::uint64_t>(rows * columns));
    const auto placed = [&random](int i, int count, int extent) {
        const bool isInside = i > 0 && i < count - 1;
        const float shift = isInside ? random.realBetween(-0.3F, 0.3F) : 0;
        return (static_cast<float>(i) + shift) * static_cast<float>(extent) / static_cast<float>(count - 1);
    };
    return Plane::array<Point>(rows * columns, [&](int i) {
        const float x = placed(i % columns, columns, stage.width);
        const float y = placed(i / columns, rows, stage.height);
        return Point{x, y, random.realBetween(0, 1000), 0};
    });
}

/// A cloth in the wind, as it is seen on the stage.
inline Plane wavingGrid(const Stage &stage, int rows, int columns) {
    return Plane::array<Point>(rows * columns, [&](int i) {
        const double u = static_cast<double>(i % columns) / (columns - 1);
        const double v = static_cast<double>(i / columns) / (rows - 1);
        const double wave = std::sin(9 * u + 3 * v - fullTurn * stage.time);
        return Point{static_cast<float>(stage.width * (0.1 + 0.8 * u)),
                     static_cast<float>(stage.height * (0.15 + 0.7 * v + 0.05 * wave * u)),
                     static_cast<float>(stage.height * 0.1 * wave * u), 0};
    });
}

/// A crumpled grid of points some pixels apart.
inline Plane crumpledGrid(Random &random, int rows, int columns, int cell) {
    const float amount = static_cast<float>(random.oneIn(4) ? 3 * cell : cell) / 2;
    return Plane::array<Point>(rows * columns, [&](int i) {
        const float x = static_cast<float>(i % columns * cell - 3) + random.realBetween(-amount, amount);
        const float y = static_cast<float>(i / columns * cell - 3) + random.realBetween(-amount, amount);
        return Point{x, y, random.realBetween(-amount, amount) * 3, 0};
    });
}

/// Where the corners of one polygon after the other stand in a grid of `side` times `side` cells, each of them a quad
/// or two triangles.
inline std::array<int, 4> cornersInGrid(int polygon, int side, bool isQuad) {
    const int columns = side + 1;
    const int cell = isQuad ? polygon : polygon / 2;
    const int first = cell / side * columns + cell % side;
    if (isQuad)
        return {first, first + 1, first + columns + 1, first + columns};
    return polygon % 2 == 0 ? std::array{first, first + 1, first + columns, 0}
                            : std::array{first + 1, first + columns, first + columns + 1, 0};
}

/// A scene of all polygons of such a grid, each set by a step of its own. Grids of 7 and of 70 cells have quads of
/// about 10000 and 100 pixels.
template <class SetPolygon>
Scene polygonsOfGrid(const std::string &kind, int side, bool isQuad, SetPolygon setPolygon) {
    const int pixels = (side == 7 ? 10000 : 100) / (isQuad ? 1 : 2);
    return {.label = kind + (isQuad ? "quads of " : "triangles of ") + std::to_string(pixels) + " pixels",
            .set = [=](Call &call, const Stage &stage) { setPolygon(call, stage, side); },
            .figure = isQuad ? "Mquads" : "Mtriangles",
            .calls = (isQuad ? 1 : 2) * side * side,
            .isRestored = true};
}

// Arguments

inline Argument blockOf(std::string_view surface = {}) {
    return privateBlock("data", "", surface);
}
inline Argument shininess() {
    return number("shininess", "squarings", {anyInt.low, 64}, {3, 3});
}
inline Argument specular() {
    return number("specular", "256 levels", {-8, 8, true}, {0.5, 0.5});
}

inline const Region onDst = on("dst", "clip");
inline const Region onDepths = on("data", "clip");

// Rows that both modules have.

/// Allocates a private block.
inline Row allocating(std::string_view record, Row row) {
    row.arguments = {orNull(hostRecord(record, "")), number("slot", "", {0, 14}, {0, 0})};
    row.waived = {{"every proof", "allocates"}};
    row.blocks = Blocks::allocated;
    row.figure = Figure::record;
    return row;
}

inline Areas writesPairs(const Call &call) {
    const auto half = [](std::int64_t value) { return value >> 1; };
    const tagRECT rect = call["rect"].rect();
    const std::int64_t pitch = call["pitch"].whole();
    const std::int64_t pairs = half(std::int64_t{rect.right} - rect.left);
    const std::int64_t rows = std::int64_t{rect.bottom} - rect.top;
    if (!call["data"].surface() || pairs == 0 || rows == 0)
        return {};
    constexpr std::int64_t mostRows = 1 << 20;
    if (pairs < 0 || rows < 0 || rows > mostRows) // far too many; less than none are read without a sign
        return {{"data", {0, 0, std::int64_t{1} << 32, 1}}};
    Areas areas;
    for (std::int64_t row = 0; row < rows; ++row) {
        const std::int64_t first = 2 * (half(rect.top * pitch + rect.left) + row * half(pitch));
        areas.push_back({"data", {first, 0, first + 2 * pairs, 1}});
    }
    return areas;
}

/// Empties a part of a Z plane, in pairs of entries.
template <class Block>
Row emptying(Row row) {
    row.arguments = {blockOf(), rectangle("rect", ""), number("pitch", "entries", {-4096, 4096, true}, {0, 0})};
    row.writes = writesPairs;
    row.figure = Figure::depths;
    row.picture = Scene{.set = [](Call &call, const Stage &stage) {
        const Plane depths(2, stage.width, stage.height);
        depths.fill<short>(depths.rect(), [](int x, int y) { return 40 * x + 60 * y; });
        call["data"].get<Block>().depths = depths;
        const int right = static_cast<int>(stage.along({0.35, 0.85}) * stage.width) / 2 * 2;
        call["rect"] = tagRECT{60, 40, right, stage.height - 40};
        call["pitch"] = stage.width;
    }};
    row.arrange = [](Call &call, Random &random) {
        constexpr int before = 250;
        const Plane depths = Plane(2, 600, 1).movedBy(before, 0);
        const auto depth = static_cast<short>(random.between(-1, 1));
        depths.fill<short>({-before, 0, 600 - before, 1}, [depth](int, int) { return depth; });
        call["data"].get<Block>().depths = random.oneIn(10) ? Plane() : depths;
        call["pitch"] = random.between(-12, 12);
        const int left = random.between(-4, 8);
        const int top = random.between(-3, 6);
        call["rect"] = tagRECT{left, top, random.between(std::max(left, 2), 12), random.between(std::max(top, 2), 9)};
    };
    row.scenes = {{.set = [](Call &call, const Stage &stage) {
        const Plane shape = Plane::surface(stage.width, stage.height);
        call.set({{"data", Block::fresh(shape)}, {"pitch", shape.pitch()}});
    }}};
    return row;
}

} // namespace catalogue

#endif
