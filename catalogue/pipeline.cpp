#include "meshes.h"
#include "plain/bands.h"
#include "plain/matrices.h"
#include "plain/meshes.h"

namespace catalogue {
namespace {

Argument ownBlock(std::string_view of = {}) {
    return {.name = "data", .kind = Kind::privateBlock, .unit = "", .of = of};
}
_PRIVATE_QMGL_DATA &blockOf(Call &call) {
    return call["data"].get<PipelineBlock>().data;
}

// Matrices and stacks: numbers in, a matrix out.

constexpr Range anyLength = {-1e9, 1e9};

Argument matrix(std::string_view name) {
    return {.name = name, .kind = Kind::matrix, .unit = "1"};
}
Argument real(std::string_view name, Range drawn = {1, 2}, std::string_view unit = "1") {
    return {.name = name, .kind = Kind::number, .unit = unit, .contract = anyLength, .drawn = drawn};
}
Argument degrees(std::string_view name) {
    return {.name = name, .kind = Kind::angle, .unit = "degrees", .contract = anyLength, .drawn = {10, 80}};
}

Plane randomMatrix(Random &random) {
    return arrayOf<float>(16, [&random](int) { return random.real(); });
}
Plane sceneMatrix() {
    return arrayOf<float>(16, [](int i) { return i % 5 == 0 ? 1.0F : 0.25F; });
}

/// Numbers of all sizes for what is a float.
void drawReals(Call &call, Random &random, int reach = 10) {
    for (std::size_t i = 0; i < call.size(); ++i)
        if (call.row().call.types[i] == "float" && !(call.row().arguments[i].kind == Kind::angle && random.oneIn(4)))
            call[i] = random.real(reach);
}
void arrangeReals(Call &call, Random &random) {
    drawReals(call, random);
}
void arrangeMatrices(Call &call, Random &random) {
    for (std::size_t i = 0; i < call.size(); ++i)
        if (call.row().arguments[i].kind == Kind::matrix)
            call[i] = randomMatrix(random);
}
void setMatrices(Call &call, const Stage &) {
    for (std::size_t i = 0; i < call.size(); ++i)
        if (call.row().arguments[i].kind == Kind::matrix)
            call[i] = sceneMatrix();
}
void arrangeRotation(Call &call, Random &random) {
    call["m"] = randomMatrix(random);
    call["axis"] = arrayOf<float>(4, [&](int) { return random.real(); });
    if (random.oneIn(16))
        call["axis"] = Plane(4, 4, 1);
    if (random.oneIn(2))
        call["radians"] = random.real(4);
}
void setRotation(Call &call, const Stage &) {
    call["m"] = sceneMatrix();
    call["axis"] = Plane::of(_I3DVECTOR{1, 2, 3, 0});
}
void arrangePush(Call &call, Random &random) {
    blockOf(call).modelDepth = random.between(0, 1);
    blockOf(call).viewDepth = random.between(0, 1);
}
void arrangePop(Call &call, Random &random) {
    blockOf(call).modelDepth = random.between(1, 2);
    blockOf(call).viewDepth = random.between(1, 2);
}
void setPop(Call &call, const Stage &) {
    blockOf(call).modelDepth = 1;
}

/// Cameras of all kinds, but for those that look along world Y under a like up vector: nothing they make is finite.
void arrangeView(Call &call, Random &random) {
    drawReals(call, random, 5);
    const auto at = [&call](std::string_view name) { return static_cast<float>(call[name].number()); };
    const int kind = random.between(0, 15);
    if (kind < 2) { // up along the line of sight, or nearly so
        call["upX"] = (at("centerX") - at("eyeX")) * 2;
        call["upY"] = (at("centerY") - at("eyeY")) * 2;
        call["upZ"] = (at("centerZ") - at("eyeZ")) * 2;
    } else if (kind < 4) { // up and line of sight nearly along world Y
        call["eyeX"] = call["eyeZ"] = call["upX"] = call["upZ"] = 0;
        call["centerX"] = random.oneIn(2) ? 0.0000002F : 0.0F;
        call["centerY"] = at("eyeY") + 1;
        call["centerZ"] = 0.0000001F;
    } else if (kind == 4) {
        call["centerX"] = at("eyeX");
        call["centerY"] = at("eyeY");
        call["centerZ"] = at("eyeZ");
    }
}

Areas mappedPoints(const Call &call) {
    const std::int64_t rows = call["rows"].whole();
    const std::int64_t columns = call["columns"].whole();
    return rows > 0 && columns > 0 ? Areas{records("points", rows * columns)} : Areas{};
}
void arrangeMapping(Call &call, Random &random) {
    const int rows = random.between(-1, 2);
    const int columns = random.between(-1, 3);
    call["rows"] = rows;
    call["columns"] = columns;
    call["points"] = pointsOf<_POINT3DFLOAT>(std::max(rows * columns, 1), [&random](int) {
        const float x = random.real();
        const float y = random.real();
        return _POINT3DFLOAT{x, y, random.real(), 42};
    });
}
void setMapping(Call &call, const Stage &stage) {
    call["rows"] = 64;
    call["columns"] = 64;
    call["points"] = wavingGrid(stage, 64, 64);
}

// Bands, triangles, surfaces and lines: what is drawn within a clip, with a Z plane or without one.

Areas onDst(const Call &call) {
    return {{"dst", call["clip"].rect()}};
}
Areas onDstAndDepths(const Call &call) {
    return {{"dst", call["clip"].rect()}, {"data", call["clip"].rect()}};
}
Areas onDepths(const Call &call) {
    return {{"data", call["clip"].rect()}};
}

Argument opacity() {
    return number("opacity", "1/256", anyInt, {64, 192});
}

/// The numbers of a band behind the arguments of its surface: a quad that leans over.
std::vector<Argument> bandArguments(std::vector<Argument> arguments, bool hasDepths) {
    const auto add = [&arguments](std::array<Argument, 4> ends) {
        arguments.insert(arguments.end(), ends.begin(), ends.end());
    };
    const auto place = [](std::string_view name, double begin, double end) {
        return position(name, "dst", {begin, end});
    };
    const auto level = [](std::string_view name, double drawn) {
        return number(name, "levels", anyInt, {drawn, drawn});
    };
    const auto depth = [](std::string_view name) { return number(name, "depths", anyInt, {0, 0}); };
    add({place("xA0", 0.1, 0.3), place("xA1", 0.3, 0.1), place("xB0", 0.7, 0.9), place("xB1", 0.9, 0.7)});
    add({place("yA0", 0.1, 0.1), place("yA1", 0.9, 0.9), place("yB0", 0.1, 0.1), place("yB1", 0.9, 0.9)});
    add({level("rA0", 255), level("rA1", 0), level("rB0", 40), level("rB1", 255)});
    add({level("gA0", 40), level("gA1", 255), level("gB0", 0), level("gB1", 220)});
    add({level("bA0", 0), level("bA1", 60), level("bB0", 255), level("bB1", 0)});
    if (hasDepths)
        add({depth("zA0"), depth("zA1"), depth("zB0"), depth("zB1")});
    return arguments;
}
std::vector<Argument> with(std::vector<Argument> arguments, const Argument &last) {
    arguments.push_back(last);
    return arguments;
}

const std::vector<Argument> surfaceWithDepths = {ownBlock("dst"), destination(), clip("clip", "dst"),
                                                 pitch("pitch", "dst")};
const std::vector<Argument> surfaceAlone = {destination(), clip("clip", "dst"), pitch("pitch", "dst")};

/// At times half opacity, which knows no depth.
void drawOpacity(Call &call, Random &random) {
    if (call.row().argument("opacity"))
        call["opacity"] = random.oneIn(4) ? 128 : random.between(0, 256);
}

/// Mostly numbers that make sense on a small surface; at times anything.
void arrangeBand(Call &call, Random &random) {
    const bool isWild = random.oneIn(20);
    const int reach = random.oneIn(4) ? 2000 : 15;
    const auto draw = [&](char name, int low, int high, bool wild) {
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
    draw('x', -reach, reach, isWild);
    draw('y', -5, 15, random.oneIn(40));
    draw('r', 0, 255, isWild);
    draw('g', 0, 255, isWild);
    draw('b', random.oneIn(4) ? -300 : 0, 255, isWild);
    if (call.row().argument("zA0"))
        draw('z', -100, random.oneIn(4) ? 40000 : 400, isWild);
    drawOpacity(call, random);
}

/// The points and colours of a triangle behind the arguments of its surface.
std::vector<Argument> triangleArguments(std::vector<Argument> arguments) {
    for (const std::string_view name : {"p1", "p2", "p3"})
        arguments.push_back({.name = name, .kind = Kind::points, .unit = "pixels"});
    for (const std::string_view name : {"c1", "c2", "c3"})
        arguments.push_back({.name = name, .kind = Kind::colours, .unit = "0x00RRGGBB"});
    return arguments;
}
Areas readsTriangle(const Call &) {
    return {records("p1", 1), records("p2", 1), records("p3", 1), words("c1", 1), words("c2", 1), words("c3", 1)};
}
void arrangeTriangle(Call &call, Random &random) {
    const float reach = random.oneIn(4) ? 900.0F : 15.0F;
    _POINT3DFLOAT points[3];
    for (_POINT3DFLOAT &point : points)
        point = randomPoint(random, reach);
    if (random.oneIn(6))
        points[random.between(1, 2)].y = points[0].y;
    if (random.oneIn(6))
        for (_POINT3DFLOAT &point : points)
            point.y = std::trunc(point.y);
    call["p1"] = Plane::of(points[0]);
    call["p2"] = Plane::of(points[1]);
    call["p3"] = Plane::of(points[2]);
    for (const std::string_view name : {"c1", "c2", "c3"})
        call[name] = randomColours(random, 1);
    drawOpacity(call, random);
}

/// One triangle that turns.
void setTriangle(Call &call, const Stage &stage) {
    const auto corner = [&stage](double turn) {
        const double angle = 6.2831853 * (stage.time + turn);
        return Plane::of(_POINT3DFLOAT{static_cast<float>(stage.width * (0.5 + 0.3 * std::cos(angle))),
                                       static_cast<float>(stage.height * (0.5 + 0.45 * std::sin(angle))), 0, 0});
    };
    call["p1"] = corner(0);
    call["p2"] = corner(1.0 / 3);
    call["p3"] = corner(2.0 / 3);
    call["c1"] = Plane::of(q_ulong{0xFF4020});
    call["c2"] = Plane::of(q_ulong{0x20E040});
    call["c3"] = Plane::of(q_ulong{0x3050FF});
}

/// One triangle after the other of a grid of `side` times `side` cells. All points are one array, in the first call's
/// first point, and all colours another.
template <int side>
void setTriangleOfGrid(Call &call, const Stage &stage) {
    constexpr int columns = side + 1;
    if (stage.call == 0) {
        call["p1"] = coveringGrid(stage, columns, columns);
        Random random(side);
        call["c1"] = arrayOf<q_ulong>(columns * columns, [&](int) { return q_ulong{random.word() & 0xFFFFFF}; });
    }
    const Plane points = call["p1"].plane();
    const Plane colours = call["c1"].plane();
    const int cell = stage.call / 2;
    const int corner = cell / side * columns + cell % side;
    const bool isUpper = stage.call % 2 == 0;
    const int corners[] = {isUpper ? corner : corner + 1, isUpper ? corner + 1 : corner + columns,
                           isUpper ? corner + columns : corner + columns + 1};
    constexpr std::string_view pointNames[] = {"p1", "p2", "p3"};
    constexpr std::string_view colourNames[] = {"c1", "c2", "c3"};
    for (std::size_t i = 0; i < 3; ++i) {
        call[pointNames[i]] = points.movedBy(4 * corners[i], 0);
        call[colourNames[i]] = colours.movedBy(corners[i], 0);
    }
}
template <int side>
void setHalfOpaqueTriangleOfGrid(Call &call, const Stage &stage) {
    setTriangleOfGrid<side>(call, stage);
    call["opacity"] = 128;
}

const std::vector<Scene> triangleScenes = {
    {.set = setTriangle},
    {.word = "triangles of 50 pixels",
     .set = setTriangleOfGrid<70>,
     .figure = "Mtriangles",
     .calls = 2 * 70 * 70,
     .isRestored = true},
    {.word = "triangles of 5000 pixels",
     .set = setTriangleOfGrid<7>,
     .figure = "Mtriangles",
     .calls = 2 * 7 * 7,
     .isRestored = true},
};
std::vector<Scene> opaqueTriangleScenes() {
    std::vector<Scene> scenes = triangleScenes;
    for (const Scene &scene : triangleScenes)
        if (scene.calls > 1) {
            scenes.push_back(scene);
            scenes.back().word =
                scene.calls > 100 ? "half opaque triangles of 50 pixels" : "half opaque triangles of 5000 pixels";
            scenes.back().set = scene.calls > 100 ? setHalfOpaqueTriangleOfGrid<70> : setHalfOpaqueTriangleOfGrid<7>;
        }
    return scenes;
}

// Lit grids.

const Argument pointGrid = {.name = "points", .kind = Kind::points, .unit = "pixels"};
const Argument colourGrid = {.name = "colours", .kind = Kind::colours, .unit = "0x00RRGGBB"};

Argument ownCount(std::string_view name) {
    return {.name = name, .kind = Kind::count, .unit = "points", .contract = {-32768, 65535}, .drawn = {64, 64}};
}
Argument flag(std::string_view name) {
    return choice(name, {-2147483648.0, 2147483647.0});
}
std::vector<Argument> litArguments() {
    std::vector<Argument> arguments = surfaceWithDepths;
    for (const Argument &argument : {
             pointGrid,
             colourGrid,
             flag("wrapRows"),
             flag("wrapColumns"),
             ownCount("columns"),
             ownCount("rows"),
             Argument{.name = "light", .kind = Kind::points, .unit = "1"},
             unused("unusedVector"),
             Argument{.name = "ambientVector", .kind = Kind::numbers, .unit = "1/256"},
             number("specular", "256 levels", {-8, 8}, {0.5, 0.5}),
             number("shininess", "squarings", {-2147483648.0, 64}, {3, 3}),
             unused("unusedValue"),
         })
        arguments.push_back(argument);
    return arguments;
}
Areas litColours(const Call &call) {
    const std::int64_t rows = call["rows"].whole();
    const std::int64_t columns = call["columns"].whole();
    return rows < 2 || columns < 2 ? Areas{} : Areas{words("colours", rows * columns)};
}
Areas writesLit(const Call &call) {
    Areas areas = litColours(call);
    if (!areas.empty())
        areas.insert(areas.end(), {{"dst", call["clip"].rect()}, {"data", call["clip"].rect()}});
    return areas;
}
Areas readsLit(const Call &call) {
    Areas areas = writesLit(call);
    if (!areas.empty())
        areas.insert(areas.end(),
                     {records("points", areas.front().part.width()), records("light", 1), records("ambientVector", 1)});
    return areas;
}
void arrangeLit(Call &call, Random &random) {
    const int rows = random.between(2, 4);
    const int columns = random.between(2, 4);
    call["rows"] = rows;
    call["columns"] = columns;
    if (random.oneIn(30))
        call[random.oneIn(2) ? "rows" : "columns"] = random.between(-1, 1);
    call["points"] = crumpledGrid(random, rows, columns, 5);
    call["colours"] = randomColours(random, rows * columns);
    call["wrapRows"] = random.between(0, 2);
    call["wrapColumns"] = random.between(0, 2);
    call["light"] = randomLight(random);
    call["ambientVector"] = arrayOf<int>(4, [&random](int) { return random.between(-60, 60); });
    call["specular"] = random.realBetween(0, 2);
    call["shininess"] = random.between(-1, 5);
    drawOpacity(call, random);
}
template <int drawnOpacity, int rows = 64, int columns = 64>
void setLit(Call &call, const Stage &stage) {
    call["rows"] = rows;
    call["columns"] = columns;
    call["points"] = wavingGrid(stage, rows, columns);
    call["colours"] = patternOfColours(rows * columns, columns);
    call["light"] = lightFromAbove();
    call["ambientVector"] = Plane::of(_POINT3D{60, 60, 60, 0});
    if (drawnOpacity > 0)
        call["opacity"] = drawnOpacity;
}
/// Cells of all slopes and depths instead of a cloth.
template <int drawnOpacity>
void setCrumpled(Call &call, const Stage &stage) {
    setLit<drawnOpacity>(call, stage);
    call["points"] = coveringGrid(stage, 64, 64);
}
constexpr double trianglesOfLit = 2 * 63 * 63;

constexpr int alphaRows = 20;
constexpr int alphaColumns = 64;

Areas readsAlpha(const Call &call) {
    Areas areas = onDst(call);
    areas.push_back(records("points", alphaRows * alphaColumns));
    areas.push_back(words("colours", alphaRows * alphaColumns));
    return areas;
}
void arrangeAlpha(Call &call, Random &random) {
    Plane points = crumpledGrid(random, alphaRows, alphaColumns, 1);
    for (int i = 0; i < alphaRows * alphaColumns; ++i) {
        _POINT3DFLOAT &point = points.as<_POINT3DFLOAT>()[i];
        point.x /= 2;
        point.z *= 10;
    }
    call["points"] = points;
    call["colours"] = randomColours(random, alphaRows * alphaColumns);
    call["wrapRows"] = random.between(0, 2);
    call["wrapColumns"] = random.between(0, 2);
}
template <bool isCrumpled>
void setAlpha(Call &call, const Stage &stage) {
    call["points"] =
        isCrumpled ? coveringGrid(stage, alphaRows, alphaColumns) : wavingGrid(stage, alphaRows, alphaColumns);
    call["colours"] = patternOfColours(alphaRows * alphaColumns, alphaColumns);
}

// Dots and lines.

Areas writesCross(const Call &call) {
    const Box clip = call["clip"].rect();
    const std::int64_t x = call["x"].whole();
    const std::int64_t y = call["y"].whole();
    if (x < clip.left + 3 || x > clip.right - 4 || y < clip.top + 3 || y > clip.bottom - 4)
        return {};
    return {{"dst", {x - 2, y - 2, x + 2, y + 3}}};
}
void arrangeCross(Call &call, Random &random) {
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

Areas readsDots(const Call &call) {
    Areas areas = onDst(call);
    const std::int64_t rows = call["rows"].whole();
    const std::int64_t columns = call["columns"].whole();
    if (rows > 0 && columns > 0)
        areas.insert(areas.end(), {records("points", rows * columns), words("colours", rows * columns)});
    return areas;
}
void arrangeDots(Call &call, Random &random) {
    const int rows = random.between(1, 4);
    const int columns = random.between(1, 4);
    call["rows"] = random.oneIn(20) ? random.between(-2, 0) : rows;
    call["columns"] = random.oneIn(20) ? random.between(-2, 0) : columns;
    call["points"] = pointsOf<_POINT3DFLOAT>(rows * columns, [&random](int) {
        const float x = random.realBetween(-3, 20);
        return _POINT3DFLOAT{x, random.realBetween(-3, 20), 0, 0};
    });
    call["colours"] = randomColours(random, rows * columns);
}
void setDots(Call &call, const Stage &stage) {
    call["rows"] = 18;
    call["columns"] = 32;
    call["points"] = wavingGrid(stage, 18, 32);
    call["colours"] = patternOfColours(18 * 32, 32);
}

Areas readsLine(const Call &call) {
    Areas areas = onDstAndDepths(call);
    areas.insert(areas.end(), {records("a", 1), records("b", 1), words("colourA", 1)});
    return areas;
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
    if (random.oneIn(8))
        ends[1].x = ends[0].x;
    if (random.oneIn(8))
        ends[1].y = ends[0].y;
    call["a"] = Plane::of(ends[0]);
    call["b"] = Plane::of(ends[1]);
    call["colourA"] = randomColours(random, 1);
    if (random.oneIn(2))
        call["colourB"] = randomColours(random, 1);
}
/// A fan of lines, each over half of the stage. Both ends of all of them are one array.
void setLines(Call &call, const Stage &stage) {
    constexpr int lines = 500;
    if (stage.call == 0) {
        call["a"] = pointsOf<_POINT3D>(2 * lines, [&stage](int i) {
            const double angle = 6.2831853 * (i / 2) / lines;
            const double radius = stage.height * (i % 2 ? 0.48 : 0.1);
            return _POINT3D{static_cast<int>(stage.width / 2 + radius * std::cos(angle)),
                            static_cast<int>(stage.height / 2 + radius * std::sin(angle)), i % 100, 0};
        });
        call["colourA"] =
            arrayOf<q_ulong>(lines, [](int i) { return static_cast<q_ulong>(0x4080FF + i % 128 * 0x10000); });
    }
    const Plane ends = call["a"].plane();
    call["a"] = ends.movedBy(8 * stage.call, 0);
    call["b"] = ends.movedBy(8 * stage.call + 4, 0);
    call["colourA"] = call["colourA"].plane().movedBy(stage.call, 0);
}

} // namespace

std::vector<Row> pipelineRows() {
    return {
        {
            Q_MUR_FUNCTION_WITHOUT_TWIN(GetPrivate_QMGL_Data),
            .sentence = "Allocates the private block of the pipeline in a slot of the host's record.",
            .arguments = {{.name = "transfer", .kind = Kind::hostRecord, .unit = "", .mayBeNull = true},
                          number("slot", "", {0, 14}, {0, 0})},
            .without = {{"every proof", "allocates"}},
        },
        {
            Q_MUR_FUNCTION(VKD_ResetZBuffer),
            .sentence = "Empties a rectangle of the Z plane, in pairs of entries.",
            .arguments = {ownBlock(), rectangle("rect", ""), number("pitch", "entries", {-4096, 4096}, {0, 0})},
            .writes = writesPairs,
            .arrange = arrangeReset<PipelineBlock>,
            .scenes = {{.set = resetStage<PipelineBlock>}},
        },
        {
            Q_MUR_FUNCTION(SetIdentityMatrix),
            .sentence = "Sets the identity.",
            .arguments = {matrix("m")},
            .writes = [](const Call &) -> Areas { return {words("m", 16)}; },
            .arrange = arrangeMatrices,
            .scenes = {{.set = setMatrices}},
        },
        {
            Q_MUR_FUNCTION(SetRotationMatrix),
            .sentence = "Sets a rotation about an axis of any length.",
            .arguments =
                {matrix("m"),
                 {.name = "axis", .kind = Kind::points, .unit = "1"},
                 {.name = "radians", .kind = Kind::angle, .unit = "radians", .contract = anyLength, .drawn = {0, 6}}},
            .writes = [](const Call &) -> Areas { return {words("m", 16)}; },
            .reads = [](const Call &) -> Areas { return {records("axis", 1)}; },
            .arrange = arrangeRotation,
            .scenes = {{.set = setRotation}},
        },
        {
            Q_MUR_FUNCTION(MatrixMultiply),
            .sentence = "Multiplies two matrices.",
            .arguments = {matrix("out"), matrix("a"), matrix("b")},
            .writes = [](const Call &) -> Areas { return {words("out", 16)}; },
            .reads = [](const Call &) -> Areas {
                return {words("a", 16), words("b", 16)};
            },
            .arrange = arrangeMatrices,
            .scenes = {{.set = setMatrices}},
        },
        {
            Q_MUR_FUNCTION(VKD_glMatrixMode),
            .sentence = "Chooses the model stack or the view stack.",
            .arguments = {ownBlock(), choice("mode", anyInt, 1)},
        },
        {
            Q_MUR_FUNCTION(VKD_glLoadIdentity),
            .sentence = "Sets the current matrix to the identity.",
            .arguments = {ownBlock()},
        },
        {
            Q_MUR_FUNCTION(glLoadMatrixf),
            .sentence = "Sets the current matrix to 16 floats, row after row.",
            .arguments = {ownBlock(), matrix("m")},
            .reads = [](const Call &) -> Areas { return {words("m", 16)}; },
            .arrange = arrangeMatrices,
            .scenes = {{.set = setMatrices}},
        },
        {
            Q_MUR_FUNCTION(glMultMatrixf),
            .sentence = "Lets a matrix of 16 floats act behind the current one.",
            .arguments = {ownBlock(), matrix("m")},
            .reads = [](const Call &) -> Areas { return {words("m", 16)}; },
            .arrange = arrangeMatrices,
            .scenes = {{.set = setMatrices, .isRestored = true}},
        },
        {
            Q_MUR_FUNCTION(VKD_glPushMatrix),
            .sentence = "Copies the current matrix to the next entry of its stack, which becomes the top.",
            .arguments = {ownBlock()},
            .arrange = arrangePush,
            .scenes = {{.isRestored = true}},
        },
        {
            Q_MUR_FUNCTION(VKD_glPopMatrix),
            .sentence = "Goes back to the entry below the current matrix.",
            .arguments = {ownBlock()},
            .arrange = arrangePop,
            .scenes = {{.set = setPop, .isRestored = true}},
        },
        {
            Q_MUR_FUNCTION(VKD_glRotatef),
            .sentence = "Turns about an axis by an angle in degrees.",
            .arguments = {ownBlock(), degrees("angleDegrees"), real("x"), real("y"), real("z")},
            .arrange = arrangeReals,
            .scenes = {{.isRestored = true}},
        },
        {
            Q_MUR_FUNCTION(VKD_glTranslatef),
            .sentence = "Moves by (x, y, z).",
            .arguments = {ownBlock(), real("x"), real("y"), real("z")},
            .arrange = arrangeReals,
            .scenes = {{.isRestored = true}},
        },
        {
            Q_MUR_FUNCTION(VKD_glScalef),
            .sentence = "Scales by x, y and z.",
            .arguments = {ownBlock(), real("x"), real("y"), real("z")},
            .arrange = arrangeReals,
            .scenes = {{.isRestored = true}},
        },
        {
            Q_MUR_FUNCTION(VKD_glViewPort),
            .sentence = "Places the picture.",
            .arguments = {ownBlock(), number("left", "pixels", anyInt, {0, 0}), number("top", "pixels", anyInt, {0, 0}),
                          number("right", "pixels", anyInt, {640, 640}),
                          number("bottom", "pixels", anyInt, {480, 480})},
        },
        {
            Q_MUR_FUNCTION(VKD_gluPerspective),
            .sentence = "Sets the focal length, so that the viewport has an opening angle, and the depth limit.",
            .arguments = {ownBlock(), degrees("fovyDegrees"), real("aspect"), real("zNear"), real("zFar")},
            .arrange = arrangeReals,
        },
        {
            Q_MUR_FUNCTION(VKD_gluLookAt),
            .sentence = "Moves the camera to the eye and turns it to the centre.",
            .arguments = {ownBlock(), real("eyeX", {0, 90}, "units"), real("eyeY", {0, 0}, "units"),
                          real("eyeZ", {100, 10}, "units"), real("centerX", {0, 0}, "units"),
                          real("centerY", {0, 0}, "units"), real("centerZ", {0, 0}, "units"), real("upX", {0, 0}),
                          real("upY", {1, 1}), real("upZ", {0, 0})},
            .arrange = arrangeView,
            .scenes = {{.isRestored = true}},
        },
        {
            Q_MUR_FUNCTION(VKD_Mapping3Dto2D),
            .sentence = "Brings a grid of points from model space to the screen, in place.",
            .arguments = {ownBlock(),
                          {.name = "points", .kind = Kind::points, .unit = "units"},
                          ownCount("rows"),
                          ownCount("columns")},
            .writes = mappedPoints,
            .reads = mappedPoints,
            .arrange = arrangeMapping,
            .scenes = {{.set = setMapping, .figures = 64 * 64, .figure = "Mpoints", .isRestored = true}},
        },
        {
            Q_MUR_OVERLOAD(VKD_3D_Render,
                           void(_PRIVATE_QMGL_DATA *, q_ulong *, tagRECT *, q_ulong, int, int, int, int, int, int, int,
                                int, int, int, int, int, int, int, int, int, int, int, int, int, int, int, int, int)),
            .sentence = "Draws a shaded band between two edges, depth tested.",
            .arguments = bandArguments(surfaceWithDepths, true),
            .writes = onDstAndDepths,
            .reads = onDepths,
            .topByte = TopByte::cleared,
            .sums = Sums::carryOver,
            .arrange = arrangeBand,
            .scenes = {{.isRestored = true}},
        },
        {
            Q_MUR_OVERLOAD(VKD_3D_Render, void(_PRIVATE_QMGL_DATA *, q_ulong *, tagRECT *, q_ulong, int, int, int, int,
                                               int, int, int, int, int, int, int, int, int, int, int, int, int, int,
                                               int, int, int, int, int, int, int)),
            .word = "opacity",
            .sentence = "Blends a shaded band over the destination, depth tested.",
            .arguments = with(bandArguments(surfaceWithDepths, true), opacity()),
            .writes = onDstAndDepths,
            .reads = onDstAndDepths,
            .topByte = TopByte::disturbsRed,
            .sums = Sums::carryOver,
            .arrange = arrangeBand,
            .scenes = {{.isRestored = true}},
        },
        {
            Q_MUR_FUNCTION(VKD_3D_Render_Alpha),
            .sentence = "Mixes a shaded band half and half with the destination, beyond the near limit.",
            .arguments = bandArguments(surfaceWithDepths, true),
            .writes = onDst,
            .reads = onDst,
            .topByte = TopByte::cleared,
            .sums = Sums::carryOver,
            .arrange = arrangeBand,
        },
        {
            Q_MUR_FUNCTION(VKD_3D_Render_Add),
            .sentence = "Adds a shaded band to the destination.",
            .arguments = bandArguments(surfaceAlone, false),
            .writes = onDst,
            .reads = onDst,
            .topByte = TopByte::disturbsRed,
            .sums = Sums::saturate,
            .arrange = arrangeBand,
        },
        {
            Q_MUR_OVERLOAD(VKD_Render_Tri, void(_PRIVATE_QMGL_DATA *, q_ulong *, tagRECT *, int, _POINT3DFLOAT *,
                                                _POINT3DFLOAT *, _POINT3DFLOAT *, q_ulong *, q_ulong *, q_ulong *)),
            .sentence = "Draws a shaded triangle, depth tested.",
            .arguments = triangleArguments(surfaceWithDepths),
            .writes = onDstAndDepths,
            .reads =
                [](const Call &call) {
                    Areas areas = readsTriangle(call);
                    areas.push_back(onDepths(call).front());
                    return areas;
                },
            .topByte = TopByte::disturbsRed,
            .sums = Sums::carryOver,
            .arrange = arrangeTriangle,
            .scenes = triangleScenes,
        },
        {
            Q_MUR_OVERLOAD(VKD_Render_Tri,
                           void(_PRIVATE_QMGL_DATA *, q_ulong *, tagRECT *, int, _POINT3DFLOAT *, _POINT3DFLOAT *,
                                _POINT3DFLOAT *, q_ulong *, q_ulong *, q_ulong *, int)),
            .word = "opacity",
            .sentence = "Blends a shaded triangle over the destination, depth tested.",
            .arguments = with(triangleArguments(surfaceWithDepths), opacity()),
            .writes = onDstAndDepths,
            .reads = readsTriangle,
            .topByte = TopByte::disturbsRed,
            .sums = Sums::carryOver,
            .arrange = arrangeTriangle,
            .scenes = opaqueTriangleScenes(),
        },
        {
            Q_MUR_FUNCTION(VKD_Render_Tri_Alpha),
            .sentence = "Mixes a shaded triangle half and half with the destination, beyond the near limit.",
            .arguments = triangleArguments(surfaceWithDepths),
            .writes = onDst,
            .reads = readsTriangle,
            .topByte = TopByte::disturbsRed,
            .sums = Sums::carryOver,
            .arrange = arrangeTriangle,
            .scenes = triangleScenes,
        },
        {
            Q_MUR_FUNCTION(VKD_Render_Tri_Add),
            .sentence = "Adds a shaded triangle to the destination.",
            .arguments = triangleArguments(surfaceAlone),
            .writes = onDst,
            .reads = readsTriangle,
            .topByte = TopByte::disturbsRed,
            .sums = Sums::saturate,
            .arrange = arrangeTriangle,
            .scenes = triangleScenes,
        },
        {
            Q_MUR_OVERLOAD(VKD_Render_3D_Surface,
                           void(_PRIVATE_QMGL_DATA *, q_ulong *, tagRECT *, q_ulong, _POINT3DFLOAT *, q_ulong *, int,
                                int, int, int, _POINT3DFLOAT *, _POINT3D *, _POINT3D *, float, int, int)),
            .sentence = "Lights a grid of points and draws it as triangles, depth tested.",
            .arguments = litArguments(),
            .writes = writesLit,
            .reads = readsLit,
            .topByte = TopByte::cleared,
            .sums = Sums::saturate,
            .arrange = arrangeLit,
            .scenes = {{.set = setLit<0>, .isRestored = true},
                       {.word = "mesh of 64 x 64",
                        .set = setCrumpled<0>,
                        .figures = trianglesOfLit,
                        .figure = "Mtriangles",
                        .isRestored = true}},
        },
        {
            Q_MUR_OVERLOAD(VKD_Render_3D_Surface,
                           void(_PRIVATE_QMGL_DATA *, q_ulong *, tagRECT *, q_ulong, _POINT3DFLOAT *, q_ulong *, int,
                                int, int, int, _POINT3DFLOAT *, _POINT3D *, _POINT3D *, float, int, int, int)),
            .word = "opacity",
            .sentence = "Lights a grid of points and blends it over the destination, depth tested.",
            .arguments = with(litArguments(), opacity()),
            .writes = writesLit,
            .reads = readsLit,
            .topByte = TopByte::disturbsRed,
            .sums = Sums::saturate,
            .arrange = arrangeLit,
            .scenes = {{.set = setLit<180>, .isRestored = true},
                       {.word = "mesh of 64 x 64",
                        .set = setCrumpled<96>,
                        .figures = trianglesOfLit,
                        .figure = "Mtriangles",
                        .isRestored = true},
                       {.word = "half opaque mesh of 64 x 64",
                        .set = setCrumpled<128>,
                        .figures = trianglesOfLit,
                        .figure = "Mtriangles",
                        .isRestored = true}},
        },
        {
            Q_MUR_FUNCTION(VKD_Render_3D_Surface_Alpha),
            .sentence = "Mixes a grid of 20 rows of 64 points with the destination, unlit.",
            .arguments = {ownBlock("dst"), destination(), clip("clip", "dst"), pitch("pitch", "dst"), pointGrid,
                          colourGrid, unused("unusedRows"), unused("unusedColumns"), flag("wrapRows"),
                          flag("wrapColumns")},
            .writes = onDst,
            .reads = readsAlpha,
            .topByte = TopByte::disturbsRed,
            .sums = Sums::carryOver,
            .arrange = arrangeAlpha,
            .scenes =
                {{.set = setAlpha<false>},
                 {.word = "mesh of 20 x 64", .set = setAlpha<true>, .figures = 2 * 19 * 63, .figure = "Mtriangles"}},
            .cases = 2000,
        },
        {
            Q_MUR_FUNCTION(VKD_3D_Draw_Cross),
            .sentence = "Adds a colour to a pixel and draws a small cross of the sum.",
            .arguments = {destination(), clip("clip", "dst"), pitch("pitch", "dst"), position("x", "dst", {0.1, 0.9}),
                          position("y", "dst", {0.1, 0.9}), colour()},
            .writes = writesCross,
            .reads = writesCross,
            .topByte = TopByte::cleared,
            .sums = Sums::saturate,
            .arrange = arrangeCross,
            .scenes = {{.set = setCross, .figure = "crosses", .calls = 500}},
        },
        {
            Q_MUR_FUNCTION(VKD_Render_3D_Dot_Add),
            .sentence = "Draws a small cross at every point of a grid.",
            .arguments = {destination(), clip("clip", "dst"), pitch("pitch", "dst"), pointGrid, colourGrid,
                          ownCount("columns"), ownCount("rows")},
            .writes = onDst,
            .reads = readsDots,
            .topByte = TopByte::cleared,
            .sums = Sums::saturate,
            .arrange = arrangeDots,
            .scenes = {{.set = setDots, .figures = 18 * 32, .figure = "crosses"}},
        },
        {
            Q_MUR_FUNCTION(VKD_3D_Line),
            .sentence = "Draws an anti-aliased line of three pixels' width, depth tested.",
            .arguments = {ownBlock("dst"),
                          destination(),
                          clip("clip", "dst"),
                          pitch("pitch", "dst"),
                          {.name = "a", .kind = Kind::points, .unit = "pixels"},
                          {.name = "b", .kind = Kind::points, .unit = "pixels"},
                          {.name = "colourA", .kind = Kind::colours, .unit = "0x00RRGGBB"},
                          {.name = "colourB", .kind = Kind::unused, .unit = "", .mayBeNull = true}},
            .writes = onDstAndDepths,
            .reads = readsLine,
            .topByte = TopByte::setByColour,
            .sums = Sums::stayInside,
            .arrange = arrangeLine,
            .scenes = {{.set = setLines, .figure = "lines", .calls = 500, .isRestored = true}},
        },
        {
            Q_MUR_FUNCTION(VKD_Render_3D_Line),
            .sentence = "Lights a grid of points and draws its lines, depth tested.",
            .arguments = litArguments(),
            .writes = writesLit,
            .reads = readsLit,
            .topByte = TopByte::cleared,
            .sums = Sums::saturate,
            .arrange = arrangeLit,
            .scenes = {{.set = setLit<0, 14, 24>, .isRestored = true},
                       {.word = "mesh of 64 x 64",
                        .set = setLit<0>,
                        .figures = 64 * 63 * 2,
                        .figure = "lines",
                        .isRestored = true}},
        },
    };
}

} // namespace catalogue
