#include "meshes.h"
#include "plain/bands.h"
#include "plain/matrices.h"
#include "plain/meshes.h"

namespace catalogue {
namespace {

using enum TopByte;
using enum Sum;
using Fractions::cutOff, Fractions::notCounted;
using Uniform::darkens, Uniform::stays;

_PRIVATE_QMGL_DATA &dataOf(Call &call) {
    return call["data"].get<PipelineBlock>().data;
}

// Matrices and stacks: numbers in, a matrix out.

constexpr Range anyLength = {-1e9, 1e9, true};

Argument matrix(std::string_view name) {
    return {.name = name, .kind = Kind::matrix, .unit = "1"};
}
Argument real(std::string_view name, Way inScene = {1, 2}, std::string_view unit = "1") {
    return number(name, unit, anyLength, inScene);
}
Argument degrees(std::string_view name) {
    return {.name = name, .kind = Kind::angle, .unit = "degrees", .contract = anyLength, .inScene = {10, 80}};
}

/// Numbers of all sizes for what is a float.
void chooseReals(Call &call, Random &random, int reach = 10) {
    for (std::size_t i = 0; i < call.size(); ++i)
        if (call.row().isReal(i) && !(call.row().arguments[i].kind == Kind::angle && random.oneIn(4)))
            call[i] = random.real(reach);
}
void arrangeReals(Call &call, Random &random) {
    chooseReals(call, random);
}
void arrangeRotation(Call &call, Random &random) {
    call["axis"] = Plane::array<float>(4, [&](int) { return random.real(); });
    if (random.oneIn(16))
        call["axis"] = Plane(4, 4, 1);
    if (random.oneIn(2))
        call["radians"] = random.real(4);
}
const _PRIVATE_QMGL_DATA &dataOf(const Call &call) {
    return call["data"].get<PipelineBlock>().data;
}
const Rule viewportIsSet = {"no viewport has been set", [](const Call &call) {
                                const _PRIVATE_QMGL_DATA &data = dataOf(call);
                                return data.viewportLeft != 0 || data.viewportTop != 0 || data.viewportRight != 0 ||
                                       data.viewportBottom != 0;
                            }};

const Plane &currentStack(const Call &call) {
    const auto &block = call["data"].get<PipelineBlock>();
    return block.data.matrixMode == 1 ? block.modelStack : block.viewStack;
}
int currentDepth(const Call &call) {
    const _PRIVATE_QMGL_DATA &data = dataOf(call);
    return data.matrixMode == 1 ? data.modelDepth : data.viewDepth;
}
/// Whether a stack holds its top, or so many entries above it.
bool isHeld(const Plane &stack, std::int64_t depth, int above = 0) {
    return depth >= 0 && stack.holds({16 * depth, 0, 16 * (depth + 1 + above), 1});
}
bool viewIsHeld(const Call &call) {
    return isHeld(call["data"].get<PipelineBlock>().viewStack, dataOf(call).viewDepth);
}
bool viewAndModelAreHeld(const Call &call) {
    return viewIsHeld(call) && isHeld(call["data"].get<PipelineBlock>().modelStack, dataOf(call).modelDepth);
}
const Rule currentIsHeld = {"the current stack has no entry of its depth",
                            [](const Call &call) { return isHeld(currentStack(call), currentDepth(call)); }};
const Rule stackHasRoom = {"the current stack holds no further matrix",
                           [](const Call &call) { return isHeld(currentStack(call), currentDepth(call), 1); }};
const Rule stackHasEntryBelow = {"the current stack holds one matrix alone",
                                 [](const Call &call) { return currentDepth(call) >= 1; }};

/// Depths of both stacks, from `low` on, so that there is an entry above or below.
auto arrangeDepths(int low) {
    return [low](Call &call, Random &random) {
        dataOf(call).modelDepth = random.between(low, low + 1);
        dataOf(call).viewDepth = random.between(low, low + 1);
    };
}

/// Cameras of all kinds, but for those that look along world Y under a like up vector: nothing they make is finite.
void arrangeView(Call &call, Random &random) {
    chooseReals(call, random, 5);
    const auto at = [&call](std::string_view name) { return static_cast<float>(call[name].number()); };
    const int kind = random.between(0, 15);
    if (kind < 2) { // up along the line of sight, or nearly so
        call.set({{"upX", (at("centerX") - at("eyeX")) * 2}, {"upY", (at("centerY") - at("eyeY")) * 2}});
        call["upZ"] = (at("centerZ") - at("eyeZ")) * 2;
    } else if (kind < 4) { // up and line of sight nearly along world Y
        call["eyeX"] = call["eyeZ"] = call["upX"] = call["upZ"] = 0;
        call.set({{"centerX", random.oneIn(2) ? 0.0000002F : 0.0F}, {"centerY", at("eyeY") + 1}});
        call["centerZ"] = 0.0000001F;
    } else if (kind == 4) {
        call.set({{"centerX", at("eyeX")}, {"centerY", at("eyeY")}, {"centerZ", at("eyeZ")}});
    }
}

/// As many elements as a grid has points.
std::int64_t pointsOf(const Call &call) {
    const std::int64_t rows = call["rows"].whole();
    const std::int64_t columns = call["columns"].whole();
    return rows > 0 && columns > 0 ? rows * columns : 0;
}
Areas gridPoints(const Call &call) {
    return {records("points", pointsOf(call))};
}
Areas gridColours(const Call &call) {
    return {words("colours", pointsOf(call))};
}
void arrangeMapping(Call &call, Random &random) {
    const int rows = random.between(-1, 2);
    const int columns = random.between(-1, 3);
    call.set({{"rows", rows}, {"columns", columns}});
    call["points"] = Plane::array<Point>(std::max(rows * columns, 1), [&random](int) {
        const float x = random.real();
        const float y = random.real();
        return Point{x, y, random.real(), 42};
    });
}
/// A cloth and its colours.
template <int rows, int columns>
void setGrid(Call &call, const Stage &stage) {
    for (const auto &[name, count] : {std::pair("rows", rows), std::pair("columns", columns)})
        if (call.row().argument(name))
            call[name] = count;
    call["points"] = wavingGrid(stage, rows, columns);
    if (call.row().argument("colours"))
        call["colours"] = patternOfColours(rows * columns, columns);
}
/// Cells of all slopes and depths instead of a cloth.
template <int rows, int columns>
void crumple(Call &call, const Stage &stage) {
    call["points"] = coveringGrid(stage, rows, columns);
}

// Pictures of what matrices do to a cube.

/// A scaling and a move.
_I3DMATRIX placing(float scale, float x, float y) {
    return {{scale, 0, 0, x, 0, scale, 0, y, 0, 0, scale, 0, 0, 0, 0, 1}};
}
_I3DMATRIX turning(double angle) {
    const auto c = static_cast<float>(std::cos(angle)), s = static_cast<float>(std::sin(angle));
    return {{c, -s, 0, 0, s, c, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}};
}
/// A viewport that is the stage, and in the model stack something other than an identity.
void setStacks(Call &call, const Stage &stage) {
    auto &block = call["data"].get<PipelineBlock>();
    block = PipelineBlock::fresh(Plane::surface(stage.width, stage.height));
    auto *model = block.modelStack.as<_I3DMATRIX>();
    model[0] = placing(0.7F, -20, 10);
    model[1] = turning(0.5);
    block.data.focalLength = 400;
    if (call.row().argument("m"))
        call["m"] = Plane::of(turning(fullTurn * stage.time));
}
void setTwoEntries(Call &call, const Stage &stage) {
    setStacks(call, stage);
    dataOf(call).modelDepth = 1;
}
void setMove(Call &call, const Stage &stage) {
    setStacks(call, stage);
    call.set({{"x", stage.along({-20, 60})}, {"y", stage.along({10, -40})}, {"z", 0}});
}
void setMode(Call &call, const Stage &stage) {
    setStacks(call, stage);
    call["mode"] = stage.time < 0.5 ? 1 : 2;
}
void setViewport(Call &call, const Stage &stage) {
    setStacks(call, stage);
    call.set({{"left", std::floor(stage.along({0, 120}))}, {"top", std::floor(stage.along({0, 40}))}});
    call.set({{"right", stage.width}, {"bottom", std::floor(stage.along({225, 180}))}});
}
void setProduct(Call &call, const Stage &stage) {
    call.set({{"a", Plane::of(placing(1.5F, 10, 0))}, {"b", Plane::of(turning(fullTurn * stage.time))}});
}
/// A sheet in model space that turns before the viewer.
void setSheet(Call &call, const Stage &stage) {
    setStacks(call, stage);
    auto &block = call["data"].get<PipelineBlock>();
    block.modelStack.as<_I3DMATRIX>()[0] = placing(1, 0, 0);
    const double angle = fullTurn * stage.time;
    call["points"] = Plane::array<Point>(64 * 64, [angle](int i) {
        const double x = (i % 64 / 63.0 - 0.5) * 260;
        const double y = (i / 64 / 63.0 - 0.5) * 150;
        const double z = 20 * std::sin(x / 20);
        return Point{static_cast<float>(x * std::cos(angle) - z * std::sin(angle)), static_cast<float>(y),
                     static_cast<float>(x * std::sin(angle) + z * std::cos(angle)), 0};
    });
}

/// A row that only changes the block.
Row ofBlock(Row row) {
    row.arguments = blockOf() + row.arguments;
    if (row.figure == Figure::none)
        row.figure = Figure::matrix;
    if (!row.picture)
        row.picture = Scene{.set = setStacks};
    return row;
}
/// The same, each call going on from what the last has left.
Row ofStack(Row row) {
    if (row.scenes.empty())
        row.scenes = {{}};
    row.scenes.front().isRestored = true;
    if (!row.arrange)
        row.arrange = arrangeReals;
    if (row.rules.empty())
        row.rules = {currentIsHeld};
    return ofBlock(std::move(row));
}

// Bands, triangles, surfaces and lines: what is drawn within a clip, with a Z plane or without one.

const Arguments surfaceAlone = {destination(), clip("clip", "dst"), pitch("pitch", "dst")};
const Arguments surfaceWithDepths = blockOf("dst") + surfaceAlone;
const Arguments opacity = {meant(number("opacity", "1/256", anyInt, {64, 192}), {0, 256})};

/// The numbers of a band: a quad that leans over.
Arguments bandArguments(bool hasDepths) {
    const auto places = [](std::string_view name, double begin, double end) {
        return position(name, "dst", {begin, end});
    };
    const auto level = [](std::string_view name, double inScene) {
        return number(name, "levels", anyInt, {inScene, inScene});
    };
    const Arguments colours = {
        places("xA0", 0.1, 0.3), places("xA1", 0.3, 0.1), places("xB0", 0.7, 0.9), places("xB1", 0.9, 0.7),
        places("yA0", 0.1, 0.1), places("yA1", 0.9, 0.9), places("yB0", 0.1, 0.1), places("yB1", 0.9, 0.9),
        level("rA0", 255),       level("rA1", 0),         level("rB0", 40),        level("rB1", 255),
        level("gA0", 40),        level("gA1", 255),       level("gB0", 0),         level("gB1", 220),
        level("bA0", 0),         level("bA1", 60),        level("bB0", 255),       level("bB1", 0)};
    return hasDepths ? colours + each({"zA0", "zA1", "zB0", "zB1"}, number("", "depths", anyInt, {0, 0})) : colours;
}

/// At times half opacity, which knows no depth.
void chooseOpacity(Call &call, Random &random) {
    if (call.row().argument("opacity"))
        call["opacity"] = random.oneIn(4) ? 128 : random.between(0, 256);
}

/// Edges to the left and right of the middle, the one or the other at times the first.
void standOverMiddle(Call &call, Random &random) {
    openWide(call, random, 3);
    const Plane &dst = call["dst"].plane();
    const auto before = [&random](int extent) { return random.between(-4, (extent - 1) / 2); };
    const auto behind = [&random](int extent) { return random.between(extent / 2 + 1, extent + 4); };
    for (const std::string_view end : {"0", "1"}) {
        call["xA" + std::string(end)] = before(dst.width());
        call["xB" + std::string(end)] = behind(dst.width());
    }
    for (const std::string_view edge : {"A", "B"}) {
        call["y" + std::string(edge) + "0"] = before(dst.height());
        call["y" + std::string(edge) + "1"] = behind(dst.height());
    }
}

/// Mostly numbers that make sense on a small surface; at times anything.
void arrangeBand(Call &call, Random &random) {
    const bool isWild = random.oneIn(20);
    const int reach = random.oneIn(4) ? 2000 : 15;
    const auto choose = [&](char name, int low, int high, bool wild) {
        const auto number = [&] { return wild ? static_cast<int>(random.word()) : random.between(low, high); };
        const int a0 = number();
        const int a1 = random.oneIn(4) ? a0 : number();
        const int b0 = random.oneIn(4) ? a0 : number();
        const std::string begin(1, name);
        call[begin + "A0"] = a0;
        call[begin + "A1"] = a1;
        call[begin + "B0"] = b0;
        call[begin + "B1"] = number();
    };
    choose('x', -reach, reach, isWild);
    choose('y', -5, 15, random.oneIn(40));
    choose('r', 0, 255, isWild);
    choose('g', 0, 255, isWild);
    choose('b', random.oneIn(4) ? -300 : 0, 255, isWild);
    if (call.row().argument("zA0"))
        choose('z', -100, random.oneIn(4) ? 40000 : 400, isWild);
    chooseOpacity(call, random);
    if (random.oneIn(2))
        standOverMiddle(call, random);
}

// Triangles.

constexpr std::string_view pointNames[] = {"p1", "p2", "p3"};
constexpr std::string_view colourNames[] = {"c1", "c2", "c3"};
const Arguments triangleArguments = each({"p1", "p2", "p3"}, points("")) + each({"c1", "c2", "c3"}, colours(""));
const Region readsTriangle =
    always({records("p1", 1), records("p2", 1), records("p3", 1), words("c1", 1), words("c2", 1), words("c3", 1)});

void arrangeTriangle(Call &call, Random &random) {
    const float reach = random.oneIn(4) ? 900.0F : 15.0F;
    Point corners[3];
    const bool isAround = random.oneIn(2); // the middle
    if (isAround)
        openWide(call, random, 5);
    const Plane &dst = call["dst"].plane();
    for (int i = 0; i < 3; ++i) {
        corners[i] = randomPoint(random, reach, {-100, 400});
        if (isAround) {
            corners[i].x = random.realBetween(i == 1 ? static_cast<float>(dst.width() / 2) : -6.0F,
                                              i == 0 ? 2.0F : static_cast<float>(dst.width() + 6));
            corners[i].y = random.realBetween(i == 2 ? static_cast<float>(dst.height() / 2) : -6.0F,
                                              i == 2 ? static_cast<float>(dst.height() + 6) : 2.0F);
        }
    }
    if (random.oneIn(6))
        corners[random.between(1, 2)].y = corners[0].y;
    if (random.oneIn(6))
        for (Point &point : corners)
            point.y = std::trunc(point.y);
    for (std::size_t i = 0; i < 3; ++i)
        call[pointNames[i]] = Plane::of(corners[i]);
    for (const std::string_view name : colourNames)
        call[name] = randomColours(random, 1);
    chooseOpacity(call, random);
}

/// One triangle that turns.
void setTriangle(Call &call, const Stage &stage) {
    constexpr q_ulong colours[] = {0xFF4020, 0x20E040, 0x3050FF};
    for (std::size_t i = 0; i < 3; ++i) {
        const double angle = fullTurn * (stage.time + static_cast<double>(i) / 3);
        call[pointNames[i]] = Plane::of(Point{static_cast<float>(stage.width * (0.5 + 0.3 * std::cos(angle))),
                                              static_cast<float>(stage.height * (0.5 + 0.45 * std::sin(angle))), 0, 0});
        call[colourNames[i]] = Plane::of(colours[i]);
    }
}

/// One triangle after the other of a grid. All points are one array, in the first call's first point, and all colours
/// another.
void setTriangleOfGrid(Call &call, const Stage &stage, int side) {
    const int columns = side + 1;
    if (stage.call == 0) {
        call["p1"] = coveringGrid(stage, columns, columns);
        Random random(static_cast<std::uint64_t>(side));
        call["c1"] = Plane::array<q_ulong>(columns * columns, [&](int) { return q_ulong{random.word() & 0xFFFFFF}; });
    }
    const Plane grid = call["p1"].plane();
    const Plane colours = call["c1"].plane();
    const auto corners = cornersInGrid(stage.call, side, false);
    for (std::size_t i = 0; i < 3; ++i) {
        call[pointNames[i]] = grid.movedBy(4 * corners[i], 0);
        call[colourNames[i]] = colours.movedBy(corners[i], 0);
    }
}
void setHalfOpaqueTriangle(Call &call, const Stage &stage, int side) {
    setTriangleOfGrid(call, stage, side);
    call["opacity"] = 128;
}

Row triangle(Row row) {
    row.topByte = disturbsRed;
    row.arrange = arrangeTriangle;
    row.scenes = {{.set = setTriangle},
                  polygonsOfGrid("", 70, false, setTriangleOfGrid),
                  polygonsOfGrid("", 7, false, setTriangleOfGrid)};
    if (row.argument("opacity"))
        for (const int side : {70, 7})
            row.scenes.push_back(polygonsOfGrid("half opaque ", side, false, setHalfOpaqueTriangle));
    return row;
}

// Lit grids.

const Arguments gridArguments = {points("points"), colours("colours")};
const Arguments wrapping = each({"wrapRows", "wrapColumns"}, choice(""));
const Arguments gridSize = each({"columns", "rows"}, count("", "points", {-32768, 65535, true}, {64, 64}));
const Arguments meshSize =
    each({"columns", "rows"}, meant(count("", "points", {-32768, 65535, true}, {64, 64}), {2, 65535}));

Areas litColours(const Call &call) {
    const bool hasCells = call["rows"].whole() >= 2 && call["columns"].whole() >= 2;
    return hasCells ? gridColours(call) : Areas{};
}
Areas writesLit(const Call &call) {
    const Areas areas = litColours(call);
    return areas.empty() ? areas : areas + onDst(call) + onDepths(call);
}
Areas readsLit(const Call &call) {
    const Areas areas = writesLit(call);
    return areas.empty() ? areas : areas + gridPoints(call) + Areas{records("light", 1), records("ambientVector", 1)};
}
void arrangeLit(Call &call, Random &random) {
    const int rows = random.between(2, 4);
    const int columns = random.between(2, 4);
    call.set({{"rows", rows}, {"columns", columns}});
    if (random.oneIn(30))
        call[random.oneIn(2) ? "rows" : "columns"] = random.between(-1, 1);
    call.set({{"points", crumpledGrid(random, rows, columns, 5)}, {"colours", randomColours(random, rows * columns)}});
    chooseWhole({"wrapRows", "wrapColumns"}, 0, 2)(call, random);
    call["light"] = Plane::of(randomLight(random));
    call["ambientVector"] = Plane::array<int>(4, [&random](int) { return random.between(-60, 60); });
    call.set({{"specular", random.realBetween(0, 2)}, {"shininess", random.between(-1, 5)}});
    chooseOpacity(call, random);
}
void setLight(Call &call, const Stage &) {
    call["light"] = lightFromAbove();
    call["ambientVector"] = Plane::of(_POINT3D{60, 60, 60, 0});
}
template <int rows = 64, int columns = 64>
constexpr auto setLit = [](Call &call, const Stage &stage) {
    setGrid<rows, columns>(call, stage);
    setLight(call, stage);
};

Scene mesh(std::string label, std::function<void(Call &, const Stage &)> setting) {
    return {.label = std::move(label),
            .set = inTurn(setLit<>, crumple<64, 64>, std::move(setting)),
            .figures = 2 * 63 * 63,
            .figure = "Mtriangles",
            .isRestored = true};
}
Row lit(Row row) {
    row.arguments = surfaceWithDepths + gridArguments + wrapping + meshSize + points("light", "1") +
                    unused("unusedVector") + numbers("ambientVector", "1/256") + specular() + shininess() +
                    unused("unusedValue") + row.arguments;
    row.writes = writesLit;
    row.reads = readsLit;
    row.sums = saturate;
    row.arrange = arrangeLit;
    return row;
}

// A grid of a fixed size.

constexpr int alphaRows = 20;
constexpr int alphaColumns = 64;

void arrangeAlpha(Call &call, Random &random) {
    const Plane grid = crumpledGrid(random, alphaRows, alphaColumns, 1);
    for (Point &point : std::span(grid.as<Point>(), alphaRows * alphaColumns)) {
        point.x /= 2;
        point.z *= 10;
    }
    call.set({{"points", grid}, {"colours", randomColours(random, alphaRows * alphaColumns)}});
    chooseWhole({"wrapRows", "wrapColumns"}, 0, 2)(call, random);
}

// Dots and lines.

Box crossBox(const Call &call) {
    const Box clip = call["clip"].rect();
    const std::int64_t x = call["x"].whole();
    const std::int64_t y = call["y"].whole();
    if (x < clip.left + 3 || x > clip.right - 4 || y < clip.top + 3 || y > clip.bottom - 4)
        return {};
    return {x - 2, y - 2, x + 2, y + 3};
}
void arrangeCross(Call &call, Random &random) {
    if (random.oneIn(2)) {
        openWide(call, random, 7);
        call["x"] = random.between(3, call["dst"].plane().width() - 4);
        call["y"] = random.between(3, call["dst"].plane().height() - 4);
        return;
    }
    call["x"] = random.oneIn(20) ? static_cast<int>(random.word()) : random.between(-2, 16);
    call["y"] = random.between(-2, 16);
}
/// A spiral.
void setCross(Call &call, const Stage &stage) {
    const double angle = 0.5 * stage.call;
    const double radius = stage.height * 0.45 * stage.time;
    call["x"] = std::floor(stage.width / 2 + 1.6 * radius * std::cos(angle));
    call["y"] = std::floor(stage.height / 2 + radius * std::sin(angle));
    call["colour"] = 0x604020 + stage.call % 64 * 0x010201;
}

void arrangeDots(Call &call, Random &random) {
    const int rows = random.between(1, 4);
    const int columns = random.between(1, 4);
    call["rows"] = random.oneIn(20) ? random.between(-2, 0) : rows;
    call["columns"] = random.oneIn(20) ? random.between(-2, 0) : columns;
    const bool isInside = random.oneIn(2);
    if (isInside)
        openWide(call, random, 7);
    const Plane &dst = call["dst"].plane();
    const auto place = [&](int extent) {
        return isInside ? random.realBetween(3, static_cast<float>(extent - 4)) : random.realBetween(-3, 20);
    };
    call["points"] = Plane::array<Point>(rows * columns, [&](int) {
        const float x = place(dst.width());
        return Point{x, place(dst.height()), 0, 0};
    });
    call["colours"] = randomColours(random, rows * columns);
}
void arrangeLine(Call &call, Random &random) {
    const bool isWild = random.oneIn(20);
    const int reach = random.oneIn(4) ? 2000 : 20;
    const auto number = [&](int low, int high) {
        return isWild && random.oneIn(3) ? static_cast<int>(random.word()) : random.between(low, high);
    };
    _POINT3D ends[2];
    for (_POINT3D &end : ends)
        end = {number(-reach / 2, reach), number(-reach / 2, reach), number(-200, 400), 0};
    if (random.oneIn(2)) { // on either side of the middle, one way or the other
        openWide(call, random, 7);
        const Plane &dst = call["dst"].plane();
        const bool isSteep = random.oneIn(2);
        const int extent = isSteep ? dst.height() : dst.width();
        const int side = random.between(0, 1);
        (isSteep ? ends[side].y : ends[side].x) = random.between(-2, extent / 2 - 1);
        (isSteep ? ends[1 - side].y : ends[1 - side].x) = random.between(extent / 2 + 1, extent + 2);
        for (_POINT3D &end : ends)
            (isSteep ? end.x : end.y) = random.between(1, (isSteep ? dst.width() : dst.height()) - 3);
    }
    if (random.oneIn(8))
        ends[1].x = ends[0].x;
    if (random.oneIn(8))
        ends[1].y = ends[0].y;
    call.set({{"a", Plane::of(ends[0])}, {"b", Plane::of(ends[1])}, {"colourA", randomColours(random, 1)}});
    if (random.oneIn(2))
        call["colourB"] = randomColours(random, 1);
}
/// A fan of lines, each over half of the stage. Both ends of all of them are one array.
void setLines(Call &call, const Stage &stage) {
    constexpr int lines = 500;
    if (stage.call == 0) {
        call["a"] = Plane::array<_POINT3D>(2 * lines, [&stage](int i) {
            const double angle = fullTurn * (i / 2) / lines;
            const double radius = stage.height * (i % 2 ? 0.48 : 0.1);
            return _POINT3D{static_cast<int>(stage.width / 2 + radius * std::cos(angle)),
                            static_cast<int>(stage.height / 2 + radius * std::sin(angle)), i % 100, 0};
        });
        call["colourA"] =
            Plane::array<q_ulong>(lines, [](int i) { return static_cast<q_ulong>(0x4080FF + i % 128 * 0x10000); });
    }
    const Plane ends = call["a"].plane();
    call["a"] = ends.movedBy(8 * stage.call, 0);
    call["b"] = ends.movedBy(8 * stage.call + 4, 0);
    call["colourA"] = call["colourA"].plane().movedBy(stage.call, 0);
}

} // namespace

std::vector<Row> pipelineRows() {
    using Block = _PRIVATE_QMGL_DATA *;
    using Surface = q_ulong *;
    using Colours = q_ulong *;
    using Band = void(Block, Surface, tagRECT *, q_ulong, int, int, int, int, int, int, int, int, int, int, int, int,
                      int, int, int, int, int, int, int, int, int, int, int, int);
    using BandWithOpacity = void(Block, Surface, tagRECT *, q_ulong, int, int, int, int, int, int, int, int, int, int,
                                 int, int, int, int, int, int, int, int, int, int, int, int, int, int, int);
    using Triangle = void(Block, Surface, tagRECT *, int, Point *, Point *, Point *, Colours, Colours, Colours);
    using TriangleWithOpacity =
        void(Block, Surface, tagRECT *, int, Point *, Point *, Point *, Colours, Colours, Colours, int);
    using Lit = void(Block, Surface, tagRECT *, q_ulong, Point *, Colours, int, int, int, int, Point *, _POINT3D *,
                     _POINT3D *, float, int, int);
    using LitWithOpacity = void(Block, Surface, tagRECT *, q_ulong, Point *, Colours, int, int, int, int, Point *,
                                _POINT3D *, _POINT3D *, float, int, int, int);
    const Region m = always({words("m", 16)});
    const Arguments xyz = {real("x"), real("y"), real("z")};
    const Argument place = position("", "dst", {0.1, 0.9});
    return {
        allocating("transfer",
                   {Q_MUR_FUNCTION_WITHOUT_TWIN(GetPrivate_QMGL_Data),
                    .sentence = "Allocates the private block of the pipeline in a slot of the host's record."}),
        emptying<PipelineBlock>(
            {Q_MUR_FUNCTION(VKD_ResetZBuffer), .sentence = "Empties a rectangle of the Z plane, in pairs of entries."}),
        {Q_MUR_FUNCTION(SetIdentityMatrix), .sentence = "Sets the identity.", .arguments = {matrix("m")}, .writes = m,
         .figure = Figure::matrix},
        {Q_MUR_FUNCTION(SetRotationMatrix), .sentence = "Sets a rotation about an axis of any length.",
         .arguments = {matrix("m"), points("axis", "1"), angle("radians", anyLength, {0, 6})}, .writes = m,
         .reads = always({records("axis", 1)}), .arrange = arrangeRotation,
         .scenes = {{.set = set("axis", Plane::of(_I3DVECTOR{1, 2, 3, 0}))}}, .figure = Figure::matrix},
        {Q_MUR_FUNCTION(MatrixMultiply), .sentence = "Multiplies two matrices.",
         .arguments = each({"out", "a", "b"}, matrix("")), .writes = always({words("out", 16)}),
         .reads = always({words("a", 16), words("b", 16)}), .figure = Figure::matrix,
         .picture = Scene{.set = setProduct}},
        ofBlock({Q_MUR_FUNCTION(VKD_glMatrixMode), .sentence = "Chooses the model stack or the view stack.",
                 .arguments = {choice("mode", anyInt, 1)}, .picture = Scene{.set = setMode}}),
        ofBlock({Q_MUR_FUNCTION(VKD_glLoadIdentity), .sentence = "Sets the current matrix to the identity.",
                 .rules = {currentIsHeld}}),
        ofBlock({Q_MUR_FUNCTION(glLoadMatrixf), .sentence = "Sets the current matrix to 16 floats, row after row.",
                 .arguments = {matrix("m")}, .reads = m, .rules = {currentIsHeld}}),
        ofStack({Q_MUR_FUNCTION(glMultMatrixf), .sentence = "Lets a matrix of 16 floats act behind the current one.",
                 .arguments = {matrix("m")}, .reads = m}),
        ofStack({Q_MUR_FUNCTION(VKD_glPushMatrix),
                 .sentence = "Copies the current matrix to the next entry of its stack, which becomes the top.",
                 .rules = {stackHasRoom}, .arrange = arrangeDepths(0)}),
        ofStack({Q_MUR_FUNCTION(VKD_glPopMatrix), .sentence = "Goes back to the entry below the current matrix.",
                 .rules = {stackHasEntryBelow}, .arrange = arrangeDepths(1),
                 .scenes = {{.set = [](Call &call, const Stage &) { dataOf(call).modelDepth = 1; }}},
                 .picture = Scene{.set = setTwoEntries}}),
        ofStack({Q_MUR_FUNCTION(VKD_glRotatef), .sentence = "Turns about an axis by an angle in degrees.",
                 .arguments = degrees("angleDegrees") + xyz}),
        ofStack({Q_MUR_FUNCTION(VKD_glTranslatef), .sentence = "Moves by (x, y, z).", .arguments = xyz,
                 .picture = Scene{.set = setMove}}),
        ofStack({Q_MUR_FUNCTION(VKD_glScalef), .sentence = "Scales by x, y and z.", .arguments = xyz}),
        ofBlock({Q_MUR_FUNCTION(VKD_glViewPort), .sentence = "Places the picture.",
                 .arguments = {number("left", "pixels", anyInt, {0, 0}), number("top", "pixels", anyInt, {0, 0}),
                               number("right", "pixels", anyInt, {640, 640}),
                               number("bottom", "pixels", anyInt, {480, 480})},
                 .figure = Figure::projection, .picture = Scene{.set = setViewport}}),
        ofBlock({Q_MUR_FUNCTION(VKD_gluPerspective),
                 .sentence = "Sets the focal length, so that the viewport has an opening angle, and the depth limit.",
                 .arguments = {degrees("fovyDegrees"), real("aspect"), real("zNear"), real("zFar")},
                 .rules = {viewportIsSet}, .arrange = arrangeReals, .figure = Figure::projection}),
        ofStack({Q_MUR_FUNCTION(VKD_gluLookAt), .sentence = "Moves the camera to the eye and turns it to the centre.",
                 .arguments = real("eyeX", {0, 90}, "units") + real("eyeY", {0, 0}, "units") +
                              real("eyeZ", {100, 10}, "units") +
                              each({"centerX", "centerY", "centerZ"}, real("", {0, 0}, "units")) + real("upX", {0, 0}) +
                              real("upY", {1, 1}) + real("upZ", {0, 0}),
                 .rules = {{"the view stack has no entry of its depth", viewIsHeld}}, .arrange = arrangeView}),
        ofStack(
            {Q_MUR_FUNCTION(VKD_Mapping3Dto2D),
             .sentence = "Brings a grid of points from model space to the screen, in place.",
             .arguments =
                 points("points", "units") + each({"rows", "columns"}, count("", "points", {-32768, 65535}, {64, 64})),
             .writes = gridPoints, .reads = gridPoints,
             .rules = {viewportIsSet, {"the view or the model stack has no entry of its depth", viewAndModelAreHeld}},
             .arrange = arrangeMapping, .scenes = {{.set = setGrid<64, 64>, .figures = 64 * 64, .figure = "Mpoints"}},
             .figure = Figure::grid, .picture = Scene{.set = setSheet}}),
        {Q_MUR_OVERLOAD(VKD_3D_Render, Band), .sentence = "Draws a shaded band between two edges, depth tested.",
         .arguments = surfaceWithDepths + bandArguments(true), .writes = onDst + onDepths, .reads = onDepths,
         .topByte = cleared, .sums = carryOver, .fractions = notCounted, .arrange = arrangeBand,
         .scenes = {{.isRestored = true}}},
        {Q_MUR_OVERLOAD(VKD_3D_Render, BandWithOpacity), .label = "opacity",
         .sentence = "Blends a shaded band over the destination, depth tested.",
         .arguments = surfaceWithDepths + bandArguments(true) + opacity, .writes = onDst + onDepths,
         .reads = onDst + onDepths, .topByte = disturbsRed, .sums = carryOver, .fractions = notCounted,
         .arrange = arrangeBand, .scenes = {{.isRestored = true}}},
        {Q_MUR_FUNCTION(VKD_3D_Render_Alpha),
         .sentence = "Mixes a shaded band half and half with the destination, beyond the near limit.",
         .arguments = surfaceWithDepths + bandArguments(true), .writes = onDst, .reads = onDst, .topByte = cleared,
         .sums = carryOver, .fractions = notCounted, .arrange = arrangeBand},
        {Q_MUR_FUNCTION(VKD_3D_Render_Add), .sentence = "Adds a shaded band to the destination.",
         .arguments = surfaceAlone + bandArguments(false), .writes = onDst, .reads = onDst, .topByte = disturbsRed,
         .sums = saturate, .fractions = notCounted, .arrange = arrangeBand},
        triangle({Q_MUR_OVERLOAD(VKD_Render_Tri, Triangle), .sentence = "Draws a shaded triangle, depth tested.",
                  .arguments = surfaceWithDepths + triangleArguments, .writes = onDst + onDepths,
                  .reads = readsTriangle + onDepths, .sums = stayInside, .fractions = notCounted, .uniform = stays}),
        triangle({Q_MUR_OVERLOAD(VKD_Render_Tri, TriangleWithOpacity), .label = "opacity",
                  .sentence = "Blends a shaded triangle over the destination, depth tested.",
                  .arguments = surfaceWithDepths + triangleArguments + opacity, .writes = onDst + onDepths,
                  .reads = readsTriangle + onDst + onDepths, .sums = carryOver, .fractions = notCounted,
                  .uniform = darkens}),
        triangle({Q_MUR_FUNCTION(VKD_Render_Tri_Alpha),
                  .sentence = "Mixes a shaded triangle half and half with the destination, beyond the near limit.",
                  .arguments = surfaceWithDepths + triangleArguments, .writes = onDst, .reads = readsTriangle + onDst,
                  .sums = stayInside, .fractions = notCounted, .uniform = darkens}),
        triangle({Q_MUR_FUNCTION(VKD_Render_Tri_Add), .sentence = "Adds a shaded triangle to the destination.",
                  .arguments = surfaceAlone + triangleArguments, .writes = onDst, .reads = readsTriangle + onDst,
                  .sums = saturate, .fractions = notCounted}),
        lit({Q_MUR_OVERLOAD(VKD_Render_3D_Surface, Lit),
             .sentence = "Lights a grid of points and draws it as triangles, depth tested.", .topByte = cleared,
             .fractions = notCounted, .scenes = {{.set = setLit<>, .isRestored = true}, mesh("mesh of 64 x 64", {})}}),
        lit({Q_MUR_OVERLOAD(VKD_Render_3D_Surface, LitWithOpacity), .label = "opacity",
             .sentence = "Lights a grid of points and blends it over the destination, depth tested.",
             .arguments = opacity, .topByte = disturbsRed, .fractions = notCounted,
             .scenes = {{.set = inTurn(setLit<>, set("opacity", 180)), .isRestored = true},
                        mesh("mesh of 64 x 64", set("opacity", 96)),
                        mesh("half opaque mesh of 64 x 64", set("opacity", 128))}}),
        {Q_MUR_FUNCTION(VKD_Render_3D_Surface_Alpha),
         .sentence = "Mixes a grid of 20 rows of 64 points with the destination, unlit.",
         .arguments = surfaceWithDepths + gridArguments + each({"unusedRows", "unusedColumns"}, unused("")) + wrapping,
         .writes = onDst,
         .reads =
             onDst + always({records("points", alphaRows * alphaColumns), words("colours", alphaRows * alphaColumns)}),
         .topByte = disturbsRed, .sums = stayInside, .fractions = cutOff, .uniform = darkens, .arrange = arrangeAlpha,
         .scenes = {{.set = setGrid<alphaRows, alphaColumns>},
                    {"mesh of 20 x 64", inTurn(setGrid<alphaRows, alphaColumns>, crumple<alphaRows, alphaColumns>),
                     2 * 19 * 63, "Mtriangles"}},
         .cases = 2000},
        {Q_MUR_FUNCTION(VKD_3D_Draw_Cross), .sentence = "Adds a colour to a pixel and draws a small cross of the sum.",
         .arguments = surfaceAlone + each({"x", "y"}, place) + colour(), .writes = on("dst", crossBox),
         .reads = on("dst", crossBox), .topByte = cleared, .sums = saturate, .arrange = arrangeCross,
         .scenes = {{.set = setCross, .figure = "crosses", .calls = 500}}},
        {Q_MUR_FUNCTION(VKD_Render_3D_Dot_Add), .sentence = "Draws a small cross at every point of a grid.",
         .arguments = surfaceAlone + gridArguments + gridSize, .writes = onDst,
         .reads = onDst + gridPoints + gridColours, .topByte = cleared, .sums = saturate, .arrange = arrangeDots,
         .scenes = {{.set = setGrid<18, 32>, .figures = 18 * 32, .figure = "crosses"}}},
        {Q_MUR_FUNCTION(VKD_3D_Line), .sentence = "Draws an anti-aliased line of three pixels' width, depth tested.",
         .arguments = surfaceWithDepths + each({"a", "b"}, points("")) + colours("colourA") + orNull(unused("colourB")),
         .writes = onDst + onDepths,
         .reads = onDst + onDepths + always({records("a", 1), records("b", 1), words("colourA", 1)}),
         .topByte = setByColour, .sums = stayInside, .fractions = cutOff, .uniform = stays, .arrange = arrangeLine,
         .scenes = {{.set = setLines, .figure = "lines", .calls = 500, .isRestored = true}}},
        lit({Q_MUR_FUNCTION(VKD_Render_3D_Line),
             .sentence = "Lights a grid of points and draws its lines, depth tested.", .topByte = cleared,
             .fractions = notCounted,
             .scenes = {{.set = setLit<14, 24>, .isRestored = true},
                        {.label = "mesh of 64 x 64",
                         .set = setLit<>,
                         .figures = 64 * 63 * 2,
                         .figure = "lines",
                         .isRestored = true}}}),
    };
}

} // namespace catalogue
