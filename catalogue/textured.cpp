#include "meshes.h"
#include "plain/nearest_quads.h"
#include "plain/texture_renderers.h"

namespace catalogue {
namespace {

using enum TopByte;
using enum Sum;
using Fractions::cutOff;

/// What no texture holds: the texels of positions that leave the format wrap.
constexpr Box everything = {-plain::two32, -plain::two32, plain::two32, plain::two32};

/// From the least to the greatest of some numbers.
struct Reach {
    std::int64_t least = 0;
    std::int64_t greatest = 0;

    template <class Numbers>
    explicit Reach(const Numbers &numbers)
        : least(*std::min_element(std::begin(numbers), std::end(numbers))),
          greatest(*std::max_element(std::begin(numbers), std::end(numbers))) {}

    /// Whether the numbers and their differences fit 32 bits together with their fraction bits.
    bool fits(int fractionBits) const {
        const std::int64_t limit = std::int64_t{1} << (31 - fractionBits);
        return least > -limit && greatest < limit && greatest - least < limit;
    }
};

/// The texels between positions: in sixteenths, with those to the right and below, or whole.
Box texelsBetween(const Reach &u, const Reach &v, bool isFiltered) {
    if (isFiltered)
        return {u.least >> 4, v.least >> 4, (u.greatest >> 4) + 2, (v.greatest >> 4) + 2};
    return {u.least, v.least, u.greatest + 1, v.greatest + 1};
}

/// Small textures, of which the texels to the right and below belong to the margin, and their first texel somewhere.
/// Where texels of 0 matter, there are some.
constexpr int texels = 8;
Plane randomTexture(Random &random, bool hasHoles) {
    const Plane texture = Plane::randomSurface(random, texels, texels);
    if (hasHoles)
        texture.fill(texture.rect(), [&](int x, int y) { return random.oneIn(4) ? texture.at(x, y) : 0; });
    return texture;
}

bool isKeyed(const Row &row) {
    return row.name.ends_with("KeySrc");
}
/// What is drawn with where a scene needs a texture.
Plane textureOf(const Stage &stage, bool hasHoles) {
    return hasHoles ? stage.sprite() : stage.picture(1);
}

const Arguments surfaces = {blockOf("dst"), destination(), source("tex")};
const Arguments pitches = {pitch("dstPitch", "dst"), pitch("texPitch", "tex")};
const Arguments clipArgument = {clip("clip", "dst")};
const Arguments gridSize =
    each({"rows", "cols"}, meant(count("", "points", {-32768, 32767, true}, {64, 64}), {2, 32767}));

// Light.

bool hasCells(const Call &call) {
    return call["rows"].whole() >= 2 && call["cols"].whole() >= 2;
}
template <class Block>
bool arraysHoldGrid(const Call &call) {
    const auto &block = call["data"].get<Block>();
    const Box entries = words("", hasCells(call) ? std::int64_t{call["rows"].whole()} * call["cols"].whole() : 0).part;
    return block.vertexArray0.holds(entries) && block.vertexArray1.holds(entries);
}
template <class Block>
const Rule arraysAreLargeEnough = {"the vertex arrays of data hold fewer entries than the grid has points",
                                   arraysHoldGrid<Block>};

Areas readsGrid(const Call &call) {
    const std::int64_t count = std::int64_t{call["rows"].whole()} * call["cols"].whole();
    return hasCells(call) ? Areas{records("points", count), records("light", 1)} : Areas{};
}

void arrangeLight(Call &call, Random &random) {
    const int rows = random.between(2, 5);
    const int cols = random.between(2, 5);
    call["rows"] = random.oneIn(40) ? random.between(-1, 1) : rows;
    call["cols"] = random.oneIn(40) ? random.between(-1, 1) : cols;
    Point last = {};
    call["points"] = Plane::array<Point>(rows * cols, [&](int) {
        if (!random.oneIn(12)) {
            last.x = random.real(6);
            last.y = random.real(6);
            last.z = random.real(6);
        }
        return last;
    });
    Point light = {random.real(1), random.real(1), random.real(1), 0};
    if (light.x == 0 && light.y == 0)
        light.x = 0.5F;
    call.set({{"light", Plane::of(light)}, {"ambient", random.between(-100, 300)}});
    call.set({{"specular", random.between(-50, 600)}, {"shininess", random.between(-1, 6)}});
}

template <class Block>
void setMeshLight(Call &call, const Stage &stage) {
    call.set({{"points", wavingGrid(stage, 64, 64)}, {"light", lightFromAbove()}});
    call["data"].get<Block>().vertexArray0 = Plane(4, 64 * 64, 1);
    call["data"].get<Block>().vertexArray1 = Plane(4, 64 * 64, 1);
}

template <class Block>
Row lighting(Row row) {
    row.arguments = blockOf() + points("points") + gridSize + points("light", "1") +
                    number("ambient", "1/256", anyInt, {64, 64}) + number("specular", "levels", anyInt, {128, 128}) +
                    shininess();
    row.reads = readsGrid;
    row.rules = {arraysAreLargeEnough<Block>};
    row.arrange = arrangeLight;
    row.scenes = {{.set = setMeshLight<Block>}};
    row.figure = Figure::litGrid;
    return row;
}

// Span mappers: 28 numbers, the ends of 7 on both edges. Those whose names have HPE test depths and write them, those
// with NoHPE do neither. Also the older module's, which have no row, are asked for here: tests give them rows under
// their names.

bool isFilteredMapper(const Row &row) {
    return row.name.find("Linear") != std::string_view::npos;
}
int fractionBitsOf(const Row &row) {
    if (isKeyed(row) || row.name == "i3D_Mapping_Linear_HPE")
        return 16;
    if (!row.name.starts_with("VKD"))
        return 18;
    return isFilteredMapper(row) ? 14 : 12;
}

using Four = std::array<int, 4>;

/// The names of the four ends of a number.
std::array<std::string, 4> endsOf(std::string_view number) {
    const std::string name(number);
    return {name + "L0", name + "L1", name + "R0", name + "R1"};
}
Reach reachOf(const Call &call, std::string_view number) {
    std::vector<std::int64_t> values;
    for (const std::string &end : endsOf(number))
        values.push_back(call[end].whole());
    return Reach(values);
}
void setFour(Call &call, std::string_view number, const Four &values) {
    const auto names = endsOf(number);
    for (std::size_t i = 0; i < 4; ++i)
        call[names[i]] = values[i];
}

/// Everything within the clip, and the depths there but for mappers without them.
Areas writesBand(const Call &call) {
    const bool hasDepths = call.row().name.find("NoHPE") == std::string_view::npos;
    return hasDepths ? onDst(call) + onDepths(call) : onDst(call);
}
Areas readsTexture(const Call &call) {
    const Reach u = reachOf(call, "u");
    const Reach v = reachOf(call, "v");
    const int bits = fractionBitsOf(call.row());
    const bool isStill = u.least == u.greatest && v.least == v.greatest;
    const bool isPlaced = reachOf(call, "x").fits(bits) && reachOf(call, "y").fits(0);
    const bool isKnown = u.fits(bits) && v.fits(bits) && (isStill || isPlaced);
    return {{"tex", isKnown ? texelsBetween(u, v, isFilteredMapper(call.row())) : everything}};
}

/// Bands of all kinds: within the formats and far beyond them. Texels are trusted: a position may not leave the
/// texture, and where other numbers run wild, it stands.
void arrangeBand(Call &call, Random &random) {
    const int unit = isFilteredMapper(call.row()) ? 16 : 1;
    const bool isWild = random.oneIn(8);
    const bool isSmall = random.oneIn(3);
    const tagPOINT first = {isSmall ? 0 : random.between(0, texels - 1), isSmall ? 0 : random.between(0, texels - 1)};
    call["tex"] =
        randomTexture(random, isKeyed(call.row())).movedBy(static_cast<int>(first.x), static_cast<int>(first.y));
    const auto four = [&](std::string_view number, int low, int high, bool wild, bool same = false) {
        const auto one = [&] { return wild ? static_cast<int>(random.word()) : random.between(low, high); };
        const int all = one();
        setFour(call, number, same ? Four{all, all, all, all} : Four{all, one(), one(), one()});
    };
    const auto fourTexels = [&](std::string_view number, q_long origin) {
        const int low = static_cast<int>(-origin);
        four(number, low * unit, (low + (isSmall ? 2 : texels - 1)) * unit, false, isWild);
    };
    const auto wildOne = [&] { return isWild && random.oneIn(2); };
    fourTexels("u", first.x);
    fourTexels("v", first.y);
    four("x", -4, 14, wildOne());
    if (random.oneIn(2)) { // most often the right edge stands to the right
        call["xR0"] = random.between(std::min(call["xL0"].whole(), 14), 14);
        call["xR1"] = random.between(std::min(call["xL1"].whole(), 14), 14);
    }
    four("y", -4, 14, wildOne());
    if (!isWild) {
        call["yL1"] = random.between(call["yL0"].whole(), 16);
        call["yR1"] = random.between(call["yR0"].whole(), 16);
    }
    const bool isNear = random.oneIn(2);
    if (!isWild && random.oneIn(2)) { // an upright one over the middle
        openWide(call, random, 3);
        const Plane &dst = call["dst"].plane();
        for (const auto &[sides, extent] : {std::pair(std::array{"xL0", "xL1", "xR0", "xR1"}, dst.width()),
                                            std::pair(std::array{"yL0", "yR0", "yL1", "yR1"}, dst.height())})
            for (std::size_t i = 0; i < 4; ++i)
                call[sides[i]] =
                    i < 2 ? random.between(-4, (extent - 1) / 2) : random.between(extent / 2 + 1, extent + 4);
    }
    four("add", -40, 300, wildOne());
    four("mul", -100, 600, wildOne());
    four("z", isNear ? -200 : 0, isNear ? 500 : 3000, wildOne());
}

/// A quad between slanting edges, lit from the left, before the Z plane.
void setBand(Call &call, const Stage &stage) {
    const bool isFiltered = isFilteredMapper(call.row());
    const auto part = [&stage](double share) { return static_cast<int>(stage.width * share); };
    const int unit = isFiltered ? 16 : 1;
    const int right = (stage.width - 1) * unit;
    const int bottom = (stage.height - 1) * unit;
    const int lean = part(0.2 * stage.time);
    call["tex"] = textureOf(stage, isKeyed(call.row()));
    setFour(call, "u", {0, 0, right, right});
    setFour(call, "v", {0, bottom, 0, bottom});
    setFour(call, "x", {part(0.05) + lean, part(0.25) - lean, part(0.75) + lean, part(0.95) - lean});
    setFour(call, "y", {stage.height / 10, stage.height * 9 / 10, stage.height / 10, stage.height * 9 / 10});
    setFour(call, "add", {40, 0, 0, 0});
    setFour(call, "mul", {256, 256, 128, 128});
}

Row ofBand(Row row) {
    const Argument texel = number("", "1/16 texels", anyInt, {0, 0});
    const Argument place = position("", "dst", {0, 0});
    row.arguments = surfaces + clipArgument + pitches + each({"uL0", "uL1", "uR0", "uR1"}, texel) +
                    each({"vL0", "vL1", "vR0", "vR1"}, texel) + each({"xL0", "xL1", "xR0", "xR1"}, place) +
                    each({"yL0", "yL1", "yR0", "yR1"}, place) +
                    each({"addL0", "addL1", "addR0", "addR1"}, number("", "levels", anyInt, {0, 0})) +
                    each({"mulL0", "mulL1", "mulR0", "mulR1"}, number("", "1/256", anyInt, {0, 0})) +
                    each({"zL0", "zL1", "zR0", "zR1"}, number("", "depths", anyInt, {0, 0}));
    row.writes = writesBand;
    row.reads = Region(writesBand) + readsTexture;
    row.topByte = clearedByLight;
    row.sums = saturate;
    row.fractions = cutOff;
    row.lookup = row.name.find("Near") == std::string_view::npos ? Lookup::filtered : Lookup::nearest;
    row.arrange = arrangeBand;
    row.scenes = {{.set = setBand, .isRestored = true}};
    return row;
}

// Quads and triangles.

constexpr std::string_view pointNames[] = {"p0", "p1", "p2", "p3"};
constexpr std::string_view texelNames[] = {"t0", "t1", "t2", "t3"};
constexpr std::string_view addNames[] = {"add0", "add1", "add2", "add3"};
constexpr std::string_view mulNames[] = {"mul0", "mul1", "mul2", "mul3"};

std::size_t cornersOf(const Row &row) {
    return row.argument("p3") ? 4 : 3;
}
const Point &pointOf(const Call &call, std::size_t corner) {
    return *call[pointNames[corner]].plane().as<Point>();
}
const _POINTINT &texelOf(const Call &call, std::size_t corner) {
    return *call[texelNames[corner]].plane().as<_POINTINT>();
}

/// What a polygon's corners hold of a number.
template <class Number>
Reach reachOf(const Call &call, Number number) {
    std::vector<std::int64_t> values;
    for (std::size_t i = 0; i < cornersOf(call.row()); ++i)
        values.push_back(number(i));
    return Reach(values);
}

q_ulong modeOf(const Call &call) {
    return plain::modeOf(call["flags"].word());
}
bool isPipeline(const Call &call) {
    return call["data"].is<PipelineBlock>();
}

enum class Sampling { none, filtered, nearest, wholeTexels };

/// How a call takes its texels: by its mode, or by what an earlier call has left in the pipeline's slot.
Sampling samplingOf(const Call &call, const Box &screen, const Reach &u, const Reach &v) {
    const q_ulong mode = modeOf(call);
    if (mode == plain::litMode || (mode == plain::flatMode && !isPipeline(call))) {
        // Wide numbers: corners at the ends of all numbers have areas beyond 64 bits.
        const double seen = static_cast<double>(u.greatest - u.least) * static_cast<double>(v.greatest - v.least);
        const double drawn = static_cast<double>(screen.width()) * static_cast<double>(screen.height());
        return seen > drawn * 128 ? Sampling::nearest : Sampling::filtered;
    }
    if (isPipeline(call) && cornersOf(call.row()) == 3) {
        const QMGLSpanMapper slot = call["data"].get<PipelineBlock>().data.spanMapper;
        return !slot ? Sampling::none : slot == VKD_i3D_Mapping_Near_HPE ? Sampling::wholeTexels : Sampling::filtered;
    }
    if (mode == plain::keyedMode)
        return Sampling::filtered;
    return mode == plain::unlitMode && !isPipeline(call) ? Sampling::wholeTexels : Sampling::none;
}

template <int wordsOfPoint>
Areas readsCorners(const Call &call) {
    Areas areas;
    for (std::size_t i = 0; i < cornersOf(call.row()); ++i) {
        areas.push_back(words(pointNames[i], wordsOfPoint));
        areas.push_back(words(texelNames[i], 2));
    }
    return areas;
}

/// Whether the places of all corners can be looked at; that the corners are whole is asked for by their own areas.
bool holdsCorners(const Call &call) {
    const Box place = words("", 2).part;
    for (std::size_t i = 0; i < cornersOf(call.row()); ++i)
        if (!call[pointNames[i]].plane().holds(place) || !call[texelNames[i]].plane().holds(place))
            return false;
    return true;
}

Areas readsTexels(const Call &call) {
    if (!holdsCorners(call))
        return {};
    const Reach x = reachOf(call, [&](std::size_t i) { return plain::truncated(pointOf(call, i).x); });
    const Reach y = reachOf(call, [&](std::size_t i) { return plain::truncated(pointOf(call, i).y); });
    const Reach u = reachOf(call, [&](std::size_t i) { return texelOf(call, i).x; });
    const Reach v = reachOf(call, [&](std::size_t i) { return texelOf(call, i).y; });
    const Sampling sampling = samplingOf(call, {x.least, y.least, x.greatest, y.greatest}, u, v);
    if (sampling == Sampling::none)
        return {};
    if (!x.fits(18) || !u.fits(18) || !v.fits(18))
        return {{"tex", everything}};
    if (sampling == Sampling::nearest)
        return {{"tex", {u.least >> 4, v.least >> 4, (u.greatest >> 4) + 1, (v.greatest >> 4) + 1}}};
    return {{"tex", texelsBetween(u, v, sampling == Sampling::filtered)}};
}

q_ulong randomFlags(Random &random) {
    constexpr q_ulong known[] = {plain::litMode, plain::keyedMode, plain::unlitMode, plain::flatMode};
    if (random.oneIn(20))
        return random.word();
    const q_ulong ignored = random.oneIn(2) ? random.word() & 0xFFF0000F : 0;
    return known[random.between(0, 3)] | ignored;
}

void arrangePolygon(Call &call, Random &random) {
    const Plane &dst = call["dst"].plane();
    const bool isSmall = random.oneIn(3);
    call["tex"] = randomTexture(random, random.oneIn(3));
    call["flags"] = random.oneIn(2) ? plain::litMode : randomFlags(random);
    bool isNearest = modeOf(call) == plain::unlitMode;
    if (isPipeline(call)) {
        constexpr QMGLSpanMapper slots[] = {nullptr, VKD_i3D_Mapping_Linear_HPE, VKD_i3D_Mapping_Near_HPE,
                                            VKD_i3D_Mapping_Linear_HPE_KeySrc};
        const QMGLSpanMapper slot = slots[random.between(0, 3)];
        call["data"].get<PipelineBlock>().data.spanMapper = slot;
        isNearest = slot == VKD_i3D_Mapping_Near_HPE && modeOf(call) != plain::litMode && cornersOf(call.row()) == 3;
    }
    const int last = (isSmall ? 2 : texels - 1) * (isNearest ? 1 : 16);
    const bool isOneTexel = random.oneIn(4); // never shrunk, unless the polygon has no area either
    const bool isWhole = random.oneIn(3);
    for (std::size_t i = 0; i < cornersOf(call.row()); ++i) {
        Point point = {};
        point.x = random.realBetween(-6, static_cast<float>(dst.width()) + 6);
        point.y = random.realBetween(-6, static_cast<float>(dst.height()) + 6);
        point.z = random.realBetween(-50, 400);
        if (isWhole)
            point = {std::trunc(point.x), std::trunc(point.y), point.z, 0};
        const int u = random.between(0, last);
        call[pointNames[i]] = Plane::of(point);
        call[texelNames[i]] = Plane::of(isOneTexel && i > 0 ? texelOf(call, 0) : _POINTINT{u, random.between(0, last)});
        call[addNames[i]] = random.between(-20, 200);
        call[mulNames[i]] = random.between(-50, 400);
    }
}

/// What a scene draws with: a mode, the texture units to a pixel, and what its polygons are called. At half a texel or
/// below it is filtered where the mode has a choice.
struct Mode {
    q_ulong flags;
    int unitsOfPixel;
    const char *name;
};
constexpr Mode modes[] = {{plain::litMode, 8, "filtered "},       {plain::litMode, 16, "nearest "},
                          {plain::keyedMode, 8, "keyed "},        {plain::flatMode, 8, "filtered flat "},
                          {plain::flatMode, 16, "nearest flat "}, {plain::unlitMode, 1, "unlit "}};
constexpr Mode plainQuad[] = {{0, 1, ""}}; ///< without a mode, a fourth reaching beyond the texture

void setCorner(Call &call, std::size_t corner, const Plane &points, const Plane &positions, int index) {
    call[pointNames[corner]] = points.movedBy(4 * index, 0);
    call[texelNames[corner]] = positions.movedBy(2 * index, 0);
    if (call.row().argument("add0")) {
        call[addNames[corner]] = index % 50;
        call[mulNames[corner]] = 180 + 2 * (index % 50);
    }
}

/// A quad, or the half of it, that turns and leans.
void setPolygon(Call &call, const Stage &stage, const Mode &mode, double share = 0.75, double size = 1) {
    const double turn = 0.6 * stage.time;
    const Plane points = Plane::array<Point>(4, [&](int i) {
        const double angle = turn + quarterTurn * i + 3.9269908;
        return Point{static_cast<float>(stage.width * (0.5 + 0.55 * size * std::cos(angle))),
                     static_cast<float>(stage.height * (0.5 + 0.6 * size * std::sin(angle))), 0, 0};
    });
    const int right = static_cast<int>(stage.width * mode.unitsOfPixel * share);
    const int bottom = static_cast<int>(stage.height * mode.unitsOfPixel * share);
    const _POINTINT positions[] = {{0, 0}, {right, 0}, {right, bottom}, {0, bottom}};
    if (mode.flags != 0)
        call["flags"] = mode.flags;
    call["tex"] = textureOf(stage, mode.flags == plain::keyedMode);
    for (std::size_t i = 0; i < cornersOf(call.row()); ++i)
        setCorner(call, i, points, Plane::of(positions), static_cast<int>(i));
}

/// One polygon after the other of a grid. All points are one array, in the first call's first point, and all positions
/// another.
void setPolygonOfGrid(Call &call, const Stage &stage, int side, const Mode &mode) {
    const int columns = side + 1;
    if (stage.call == 0) {
        const Plane grid = coveringGrid(stage, columns, columns);
        const int beyond = mode.flags == 0 ? stage.width / 4 : 0;
        call.set({{"tex", textureOf(stage, mode.flags == plain::keyedMode)}, {"p0", grid}});
        call["t0"] = Plane::array<_POINTINT>(columns * columns, [&](int i) {
            const Point &point = grid.as<Point>()[i];
            return _POINTINT{static_cast<int>(point.x) * mode.unitsOfPixel + beyond,
                             static_cast<int>(point.y) * mode.unitsOfPixel};
        });
    }
    if (mode.flags != 0)
        call["flags"] = mode.flags;
    const Plane grid = call["p0"].plane();
    const Plane positions = call["t0"].plane();
    const std::size_t count = cornersOf(call.row());
    const auto corners = cornersInGrid(stage.call, side, count == 4);
    for (std::size_t i = 0; i < count; ++i)
        setCorner(call, i, grid, positions, corners[i]);
}

/// First one polygon, then grids of small and of large ones in each mode.
std::vector<Scene> polygonScenes(std::span<const Mode> kinds, bool isQuad) {
    const auto one = [mode = kinds.front()](Call &call, const Stage &stage) { setPolygon(call, stage, mode); };
    std::vector<Scene> scenes = {{.set = one, .isRestored = true}};
    for (const Mode &mode : kinds)
        for (const int side : {70, 7})
            scenes.push_back(polygonsOfGrid(mode.name, side, isQuad, [mode](Call &call, const Stage &stage, int cells) {
                setPolygonOfGrid(call, stage, cells, mode);
            }));
    return scenes;
}

Arguments first(std::size_t count, const std::string_view (&names)[4], const Argument &argument) {
    Arguments all = each({names[0], names[1], names[2], names[3]}, argument);
    all.resize(count, argument);
    return all;
}
/// Corners, texture and their positions there, clip and pitches.
Arguments polygonArguments(std::size_t count) {
    return Arguments{destination()} + first(count, pointNames, points("")) + source("tex") +
           first(count, texelNames, points("", "1/16 texels")) + clipArgument + pitches;
}
/// A quad or a triangle; the pipeline draws with fewer modes than the older module.
Row ofPolygon(std::size_t corners, std::size_t modeCount, Row row) {
    const bool isQuad = corners == 4;
    row.arguments =
        blockOf("dst") + polygonArguments(corners) + first(corners, addNames, number("", "levels", anyInt, {0, 0})) +
        first(corners, mulNames, number("", "1/256", anyInt, {0, 0})) + choice("flags", anyWord, plain::litMode);
    row.writes = onDst + onDepths;
    row.reads = onDst + onDepths + readsCorners<3> + readsTexels;
    row.topByte = clearedByLight;
    row.sums = saturate;
    row.fractions = cutOff;
    row.lookup = Lookup::filtered;
    row.arrange = arrangePolygon;
    row.scenes = polygonScenes(std::span(modes).first(modeCount), isQuad);
    row.picture = Scene{.set = [](Call &call, const Stage &stage) {
        setPolygon(call, stage, {plain::litMode, 16, ""}, 0.95, 0.75);
    }};
    return row;
}

// Quads of plain texels: the clip bounds the texture, too.

void arrangePlainQuad(Call &call, Random &random) {
    const Plane &dst = call["dst"].plane();
    call["tex"] = Plane::randomSurface(random, dst.width(), dst.height());
    // Far beyond products wrap, and 16384 texels on they come back to where they were.
    const int reach = random.oneIn(20) ? 20000 : 6;
    const int lap = random.oneIn(8) ? 16384 : 0;
    const bool isUpright = random.oneIn(4);
    const auto within = [&random](int extent) { return random.realBetween(-6, static_cast<float>(extent) + 6); };
    const float sides[] = {within(dst.width()), within(dst.width())};
    const float ends[] = {within(dst.height()), within(dst.height())};
    for (std::size_t i = 0; i < 4; ++i) {
        const int right = isUpright ? static_cast<int>(i == 1 || i == 2) : random.between(-1, 1);
        const int lower = isUpright ? static_cast<int>(i >= 2) : random.between(-1, 1);
        const float x = isUpright ? sides[right] : within(dst.width());
        const float y = isUpright ? ends[lower] : within(dst.height());
        const int u = random.between(-reach, dst.width() + reach) + lap * right;
        const int v = random.between(-reach, dst.height() + reach) + lap * lower;
        call[pointNames[i]] = Plane::of(Point{x, y, 0, 0});
        call[texelNames[i]] = Plane::of(_POINTINT{u, v});
    }
}

Row ofPlainQuad(Row row) {
    row.arguments = polygonArguments(4);
    row.writes = onDst;
    row.reads = readsCorners<2> + atMost(on("tex", "clip"));
    row.topByte = copied;
    row.sums = stayInside;
    row.lookup = Lookup::nearest;
    row.arrange = arrangePlainQuad;
    row.scenes = polygonScenes(plainQuad, true);
    row.picture = Scene{.set = [](Call &call, const Stage &stage) {
        setPolygon(call, stage, plainQuad[0], 1.2);
        call["clip"] = call["tex"].plane().rect();
    }};
    return row;
}

// Meshes.

Areas writesMesh(const Call &call) {
    return hasCells(call) ? onDst(call) + onDepths(call) : Areas{};
}
Areas readsMesh(const Call &call) {
    if (!hasCells(call))
        return {};
    const tagRECT rect = call["texRect"].rect();
    const Box read = {std::min(rect.left, rect.right), std::min(rect.top, rect.bottom),
                      std::int64_t{std::max(rect.left, rect.right)} + 2,
                      std::int64_t{std::max(rect.top, rect.bottom)} + 2};
    Areas areas = writesMesh(call) + readsGrid(call) + Areas{words("ambientColor", 3), {"tex", read, true}};
    if (call.row().argument("backTex"))
        areas.push_back({"backTex", read, true});
    return areas;
}

/// A mesh that stands roughly upright over the destination, sometimes turned over, with random jogs.
void arrangeMesh(Call &call, Random &random) {
    const Plane &dst = call["dst"].plane();
    const Plane texture = randomTexture(random, isKeyed(call.row()) || random.oneIn(4));
    call["tex"] = texture;
    if (call.row().argument("backTex")) { // of the same pitch
        Copies copies;
        const Plane back = texture.copy(copies);
        call["backTex"] = back.fill(back.rect(), [&random](int, int) { return random.pixel(); });
    }
    const int side = random.oneIn(3) ? 2 : texels;
    call["texRect"] = random.rectInside(side, side);
    const int rows = random.between(2, 4);
    const int cols = random.between(2, 4);
    call.set({{"rows", random.oneIn(40) ? 1 : rows}, {"cols", random.oneIn(40) ? 1 : cols}});
    const bool isMirrored = random.oneIn(3);
    const float jog = random.oneIn(5) ? 20 : 2;
    const auto place = [&](int index, int count, int extent) {
        return static_cast<float>(index * extent / (count - 1)) + random.realBetween(-jog, jog);
    };
    call["points"] = Plane::array<Point>(rows * cols, [&](int i) {
        const float x = place(isMirrored ? cols - 1 - i % cols : i % cols, cols, dst.width());
        const float y = place(i / cols, rows, dst.height());
        return Point{x, y, random.realBetween(-3, 20), 0};
    });
    const float x = random.realBetween(-1, 1);
    const float y = random.realBetween(-1, 1);
    call["light"] = Plane::of(Point{x, y, random.realBetween(0, 1), 0});
    const int red = random.between(0, 150);
    const int green = random.between(-150, 150);
    call["ambientColor"] = Plane::of(_POINT3D{red, green, random.between(0, 150), 0});
    call.set({{"specular", random.realBetween(0, 1)}, {"shininess", random.between(0, 4)}});
}

/// A mesh before a texture of `halves` times half the stage's size, or the whole of it on a cloth.
template <class Block>
auto setMesh(int halves) {
    return [halves](Call &call, const Stage &stage) {
        setMeshLight<Block>(call, stage);
        call["tex"] = textureOf(stage, isKeyed(call.row()));
        if (call.row().argument("backTex"))
            call["backTex"] = stage.picture(2);
        if (halves > 0) {
            call["texRect"] = tagRECT{0, 0, stage.width * halves / 2, stage.height * halves / 2};
            call["points"] = coveringGrid(stage, 64, 64);
        }
        call["ambientColor"] = Plane::of(_POINT3D{60, 60, 60, 0});
    };
}

/// The cloth turns about its upright axis, so that its other side is seen.
void turnRound(Call &call, const Stage &stage) {
    const double angle = fullTurn * stage.time;
    const Plane grid = call["points"].plane();
    for (Point &point : std::span(grid.as<Point>(), 64 * 64)) {
        const double x = static_cast<double>(point.x) - stage.width / 2.0;
        point.x = static_cast<float>(stage.width / 2.0 + 0.8 * x * std::cos(angle));
        point.z = static_cast<float>(0.8 * x * std::sin(angle));
    }
}

/// Cells are drawn as quads or as two triangles each, and from `Block`. Those of a texture with holes are filtered
/// always.
template <class Block>
Row ofMesh(std::string_view figure, Row row) {
    const auto ofGrid = [figure](const char *label, int halves) -> Scene {
        return {.label = label,
                .set = setMesh<Block>(halves),
                .figures = 63.0 * 63 * (figure == "Mtriangles" ? 2 : 1),
                .figure = figure,
                .isRestored = true};
    };
    row.arguments = surfaces + row.arguments + clipArgument + rectangle("texRect", "tex") + pitches + points("points") +
                    gridSize + points("light", "1") + unused("lightColor") + numbers("ambientColor", "1/256") +
                    specular() + shininess();
    row.writes = writesMesh;
    row.reads = readsMesh;
    row.rules = {arraysAreLargeEnough<Block>};
    row.topByte = cleared;
    row.sums = saturate;
    row.fractions = cutOff;
    row.lookup = Lookup::filtered;
    row.arrange = arrangeMesh;
    row.scenes = {{.set = setMesh<Block>(0), .isRestored = true}, ofGrid("filtered mesh of 64 x 64", 1)};
    if (row.argument("backTex"))
        row.picture = Scene{.set = inTurn(setMesh<Block>(0), turnRound), .isRestored = true};
    if (!isKeyed(row))
        row.scenes.push_back(ofGrid("nearest mesh of 64 x 64", 2));
    return row;
}

} // namespace

std::vector<Row> texturedRows() {
    using Block = _PRIVATE_QMGL_DATA *;
    using Mesh = void(Block, q_ulong *, q_ulong *, tagRECT *, tagRECT *, q_ulong, q_ulong, Point *, int, int, Point *,
                      _POINT3D *, _POINT3D *, float, int);
    using MeshWithBack = void(Block, q_ulong *, q_ulong *, q_ulong *, tagRECT *, tagRECT *, q_ulong, q_ulong, Point *,
                              int, int, Point *, _POINT3D *, _POINT3D *, float, int);
    std::vector<Row> rows = {
        allocating("data",
                   {Q_MUR_FUNCTION_WITHOUT_TWIN(GetPrivate_QM3D_Data),
                    .sentence = "Allocates the private block of the older module in a slot of the host's record."}),
        emptying<TexturedBlock>({Q_MUR_FUNCTION(ResetZBuffer),
                                 .sentence = "Empties a rectangle of the Z plane, in pairs of entries.",
                                 .looksLike = "What `VKD_ResetZBuffer()` does, for the older module's block."}),
        lighting<TexturedBlock>(
            {Q_MUR_FUNCTION(FindLuminenceTerm),
             .sentence = "Lights a grid of points: a highlight and a multiplier for each of them."}),
        lighting<PipelineBlock>({Q_MUR_FUNCTION(VKD_FindLuminenceTerm),
                                 .sentence = "Lights a grid of points: a highlight and a multiplier for each of them.",
                                 .looksLike = "What `FindLuminenceTerm()` does, for the matrix pipeline's block."}),
        ofBand({Q_MUR_FUNCTION(VKD_i3D_Mapping_Linear_HPE),
                .sentence = "Fills the area between two edges with a filtered, lit texture, depth tested."}),
        ofBand({Q_MUR_FUNCTION(VKD_i3D_Mapping_Linear_HPE_KeySrc),
                .sentence =
                    "Fills the area between two edges with a filtered, lit texture but for its holes, depth tested."}),
        ofBand({Q_MUR_FUNCTION(VKD_i3D_Mapping_Near_HPE),
                .sentence = "Fills the area between two edges with a lit texture's nearest texels, depth tested."}),
        ofPolygon(4, 6, {Q_MUR_FUNCTION(i3D_Blt_Rect), .sentence = "Draws a textured quad in one of four modes."}),
        ofPolygon(4, 3,
                  {Q_MUR_FUNCTION(VKD_i3D_Blt_Rect),
                   .sentence = "Draws a textured quad, depth tested, in one of two modes."}),
        ofPolygon(3, 6, {Q_MUR_FUNCTION(i3D_Blt_Tri), .sentence = "Draws a textured triangle in one of four modes."}),
        ofPolygon(3, 2,
                  {Q_MUR_FUNCTION(VKD_i3D_Blt_Tri),
                   .sentence =
                       "Draws a textured triangle, depth tested, with the mapper of its mode or of an earlier call."}),
        ofPlainQuad({Q_MUR_FUNCTION(i3D_Blt_Rect_Nearest_NoLight_NoHPE_Safe),
                     .sentence = "Copies a quad out of a texture and leaves out what lies outside of it."}),
        ofPlainQuad({Q_MUR_FUNCTION(i3D_Blt_Rect_Nearest_NoLight_NoHPE_SafeBlack),
                     .sentence = "Copies a quad out of a texture and draws what lies outside of it black."}),
        ofMesh<TexturedBlock>(
            "Mquads", {Q_MUR_FUNCTION(Render_Texture_3D),
                       .sentence = "Lights a grid of points and draws its cells as textured quads, depth tested."}),
        ofMesh<TexturedBlock>(
            "Mquads",
            {Q_MUR_FUNCTION(Render_Texture_3D_KeySrc),
             .sentence =
                 "Lights a grid of points and draws its cells as quads of a texture with holes, depth tested."}),
        ofMesh<TexturedBlock>(
            "Mtriangles",
            {Q_MUR_FUNCTION(Render_Texture_3D_Tri),
             .sentence = "Lights a grid of points and draws its cells as textured triangles, then a glint over all."}),
        ofMesh<PipelineBlock>(
            "Mquads", {Q_MUR_OVERLOAD(VKD_Render_Texture_3D, Mesh),
                       .sentence = "Lights a grid of points and draws its cells as textured quads, depth tested.",
                       .looksLike = "What `Render_Texture_3D()` draws, for the matrix pipeline's block."}),
        ofMesh<PipelineBlock>(
            "Mquads",
            {Q_MUR_OVERLOAD(VKD_Render_Texture_3D, MeshWithBack), .label = "two textures",
             .sentence = "Draws a lit grid with one texture where it faces the viewer and another where it does not.",
             .arguments = {alike(source("backTex"), "tex")}}),
        ofMesh<PipelineBlock>(
            "Mquads",
            {Q_MUR_FUNCTION(VKD_Render_Texture_3D_KeySrc),
             .sentence = "Lights a grid of points and draws its cells as quads of a texture with holes, depth tested.",
             .looksLike = "What `Render_Texture_3D_KeySrc()` draws, for the matrix pipeline's block."}),
        ofMesh<PipelineBlock>(
            "Mtriangles",
            {Q_MUR_FUNCTION(VKD_Render_Texture_3D_Tri),
             .sentence = "Lights a grid of points and draws its cells as textured triangles, depth tested."}),
    };
    for (Row &row : rows) // whatever draws runs rows top to bottom and pixels left to right
        if (row.topByte != noPixels)
            row.overlap = Overlap::rowOrder;
    return rows;
}

} // namespace catalogue
