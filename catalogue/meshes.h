/// \file
/// What the rows of both modules that draw in three dimensions share: points, colours and grids of them.
#ifndef Q_MUR_CATALOGUE_MESHES_H
#define Q_MUR_CATALOGUE_MESHES_H

#include "areas.h"
#include "arguments.h"

#include <cmath>

namespace catalogue {

/// Numbers of 32 bits that `make(index)` makes.
template <class Element, class Make>
Plane arrayOf(int count, Make make) {
    Plane plane(4, count, 1);
    for (int i = 0; i < count; ++i)
        plane.as<Element>()[i] = make(i);
    return plane;
}

/// An array of points that `make(index)` makes.
template <class Point, class Make>
Plane pointsOf(int count, Make make) {
    Plane plane(4, 4 * count, 1);
    for (int i = 0; i < count; ++i)
        plane.as<Point>()[i] = make(i);
    return plane;
}

/// A grid over the whole stage. The points inside are moved a little and all have depths of their own, so that cells
/// are quads of any slope, which together cover the stage once.
inline Plane coveringGrid(const Stage &stage, int rows, int columns) {
    Random random(static_cast<std::uint64_t>(rows * columns));
    const auto placed = [&random](int i, int count, int extent) {
        const bool isInside = i > 0 && i < count - 1;
        const float shift = isInside ? random.realBetween(-0.3F, 0.3F) : 0;
        return (static_cast<float>(i) + shift) * static_cast<float>(extent) / static_cast<float>(count - 1);
    };
    return pointsOf<_POINT3DFLOAT>(rows * columns, [&](int i) {
        const float x = placed(i % columns, columns, stage.width);
        const float y = placed(i / columns, rows, stage.height);
        return _POINT3DFLOAT{x, y, random.realBetween(0, 1000), 0};
    });
}

/// A cloth in the wind, as it is seen on the stage.
inline Plane wavingGrid(const Stage &stage, int rows, int columns) {
    return pointsOf<_POINT3DFLOAT>(rows * columns, [&](int i) {
        const double u = static_cast<double>(i % columns) / (columns - 1);
        const double v = static_cast<double>(i / columns) / (rows - 1);
        const double wave = std::sin(9 * u + 3 * v - 6.2831853 * stage.time);
        return _POINT3DFLOAT{static_cast<float>(stage.width * (0.1 + 0.8 * u)),
                             static_cast<float>(stage.height * (0.15 + 0.7 * v + 0.05 * wave * u)),
                             static_cast<float>(stage.height * 0.1 * wave * u), 0};
    });
}

/// A colour for each of so many points in rows of `columns`.
inline Plane patternOfColours(int count, int columns) {
    return arrayOf<q_ulong>(count, [columns](int i) {
        const bool isLight = (i % columns / 4 + i / columns / 4) % 2 == 0;
        return static_cast<q_ulong>(isLight ? 0xF0E0C0 : 0x3060A0);
    });
}

/// A light from the upper left in front of the surface.
inline Plane lightFromAbove() {
    return Plane::of(_POINT3DFLOAT{0.36F, 0.48F, 0.8F, 0});
}

inline _POINT3DFLOAT randomPoint(Random &random, float reach) {
    const float x = random.realBetween(-reach, reach);
    const float y = random.realBetween(-reach, reach);
    return {x, y, random.realBetween(-100, 400), 0};
}

/// A crumpled grid of points some pixels apart.
inline Plane crumpledGrid(Random &random, int rows, int columns, int cell) {
    const float amount = static_cast<float>(random.oneIn(4) ? 3 * cell : cell) / 2;
    return pointsOf<_POINT3DFLOAT>(rows * columns, [&](int i) {
        const float x = static_cast<float>(i % columns * cell - 3) + random.realBetween(-amount, amount);
        const float y = static_cast<float>(i / columns * cell - 3) + random.realBetween(-amount, amount);
        return _POINT3DFLOAT{x, y, random.realBetween(-amount, amount) * 3, 0};
    });
}

inline Plane randomLight(Random &random) {
    const float x = random.realBetween(-1, 1);
    const float y = random.realBetween(-1, 1);
    return Plane::of(_POINT3DFLOAT{x, y, random.realBetween(-0.5F, 1), 0});
}

inline Plane randomColours(Random &random, int count) {
    return arrayOf<q_ulong>(count, [&random](int) { return random.pixel(); });
}

// Emptying a part of a Z plane, in pairs of entries.

inline Areas writesPairs(const Call &call) {
    const auto half = [](std::int64_t value) { return value >> 1; };
    const tagRECT rect = call["rect"].rect();
    const std::int64_t pitch = call["pitch"].whole();
    const std::int64_t pairs = half(std::int64_t{rect.right} - rect.left);
    const std::int64_t rows = std::int64_t{rect.bottom} - rect.top;
    if (!call["data"].surface() || pairs == 0 || rows == 0)
        return {};
    if (pairs < 0 || rows < 0) // read without a sign: far too many
        return {{"data", {0, 0, std::int64_t{1} << 32, 1}}};
    Areas areas;
    for (std::int64_t row = 0; row < rows; ++row) {
        const std::int64_t first = 2 * (half(rect.top * pitch + rect.left) + row * half(pitch));
        areas.push_back({"data", {first, 0, first + 2 * pairs, 1}});
    }
    return areas;
}

template <class Block>
void arrangeReset(Call &call, Random &random) {
    Block &block = call["data"].get<Block>();
    constexpr int before = 250;
    block.depths = Plane(2, 600, 1).movedBy(before, 0);
    std::fill_n(block.depths.template as<short>() - before, 600, static_cast<short>(random.between(-1, 1)));
    if (random.oneIn(10))
        block.depths = Plane();
    call["pitch"] = random.between(-12, 12);
    const int left = random.between(-4, 8);
    const int top = random.between(-3, 6);
    call["rect"] = tagRECT{left, top, random.between(std::max(left, 2), 12), random.between(std::max(top, 2), 9)};
}

template <class Block>
void resetStage(Call &call, const Stage &stage) {
    const Plane shape = Plane::surface(stage.width, stage.height);
    call["data"] = Block::fresh(shape);
    call["pitch"] = shape.pitch();
}

} // namespace catalogue

#endif
