#include "plain/curves.h"
#include "plain/region_fill.h"

#include "areas.h"
#include "arguments.h"

#include <cmath>
#include <numeric>

namespace catalogue {
namespace {

using enum TopByte;

/// A byte for each pixel of a surface, its margin included.
Plane bytesOf(const Plane &surface) {
    constexpr int margin = Plane::usualMargin;
    const Plane plane(1, surface.width(), surface.height(), margin, surface.extraPitch());
    return plane.fill<unsigned char>({-margin, -margin, surface.pitch() - margin, surface.height() + margin},
                                     [&surface](int x, int y) { return surface.at(x, y); });
}

Plane randomSurface(Random &random) {
    const int width = random.between(1, 16);
    const int height = random.between(1, 16);
    return Plane::randomSurface(random, width, height);
}

// Lines and curves, on pixels or on an 8-bit plane.

bool drawsBytes(const Call &call) {
    return call.row().arguments.front().kind == Kind::plane;
}
bool lineIsNoLongerThanItsFormat(const Call &call) {
    const Box box = lineBox(call);
    return std::max(box.width(), box.height()) - 1 <= 1 << 30;
}

void makePlane(Call &call, Random &random) {
    if (!drawsBytes(call))
        return;
    const Plane plane = bytesOf(randomSurface(random));
    call.set({{"plane", plane}, {"clip", plane.rect()}});
    if (random.oneIn(2))
        call["clip"] = random.rectInsideOrEmpty(plane.width(), plane.height());
}
void arrangeLine(Call &call, Random &random) {
    const int reach = random.oneIn(50) ? 5000 : random.oneIn(2) ? 4 : 20;
    chooseWhole({"x1", "y1", "x2", "y2"}, -reach, reach + 16)(call, random);
}
constexpr const char *columnNames[] = {"x0", "x1", "x2", "x3"};
constexpr const char *rowNames[] = {"y0", "y1", "y2", "y3"};
void arrangeCurve(Call &call, Random &random) {
    const int reach = random.oneIn(4) ? 400 : 24;
    const bool endsEarly = random.oneIn(4);
    const bool isLevel = random.oneIn(8);
    for (int i = 0; i < 4; ++i) {
        call[columnNames[i]] = random.between(-reach, reach + 16);
        call[rowNames[i]] = random.between(-reach, reach + 16);
        if (endsEarly && i > 1)
            call[columnNames[i]] = Value(call["x1"]);
        if (isLevel && i > 0)
            call[rowNames[i]] = Value(call["y0"]);
    }
}
void arrangeSmoothCurve(Call &call, Random &random) {
    const int count = random.between(1, 6);
    const int reach = random.oneIn(50) ? 32000 : random.oneIn(6) ? 100 : 12;
    for (const char *name : {"xs", "ys"})
        call[name] = Plane(2, count, 1).fill<short>({0, 0, count, 1}, [&](int, int) {
            return random.between(-reach, reach + 16);
        });
    call["count"] = random.oneIn(50) ? random.between(-3, 0) : count;
    if (random.oneIn(4))
        call["openCurve"] = random.between(-2, 2);
}

void setColour(Call &call, const Stage &stage) {
    if (drawsBytes(call) && stage.call == 0)
        call["plane"] = Plane(1, stage.width, stage.height, Plane::usualMargin);
    if (!drawsBytes(call))
        call["color"] = 0x907050 + 0x070605 * std::floor(stage.time * 16);
}
/// A fan of lines from the middle all around.
void setLine(Call &call, const Stage &stage) {
    const double angle = stage.time * fullTurn;
    call.set({{"x1", stage.width / 2}, {"y1", stage.height / 2}});
    call["x2"] = std::floor(stage.width * (0.5 + 0.45 * std::cos(angle)));
    call["y2"] = std::floor(stage.height * (0.5 + 0.45 * std::sin(angle)));
}
/// A ribbon of curves.
void setCurve(Call &call, const Stage &stage) {
    constexpr Way columns[] = {{0, 0.1}, {0.5, 0.2}, {0.3, 1.1}, {1, 0.9}};
    constexpr Way rows[] = {{0.8, 0.1}, {-0.3, 0.4}, {1.3, 0.8}, {0.1, 0.9}};
    for (int i = 0; i < 4; ++i) {
        call[columnNames[i]] = std::floor(stage.width * stage.along(columns[i]));
        call[rowNames[i]] = std::floor(stage.height * stage.along(rows[i]));
    }
}
/// A blossom.
void setSmoothCurve(Call &call, const Stage &stage) {
    constexpr int count = 24;
    const auto around = [&stage](int extent, double quarters) {
        return Plane(2, count, 1).fill<short>({0, 0, count, 1}, [=](int i, int) {
            const double radius = i % 2 == 0 ? 0.45 : 0.15 + 0.15 * stage.time;
            return extent * (0.5 + radius * std::cos(i * fullTurn / count - quarters * quarterTurn));
        });
    };
    call.set({{"xs", around(stage.width, 0)}, {"ys", around(stage.height, 1)}, {"count", count}, {"openCurve", 0}});
}

/// What is drawn on, with its arguments before, between and behind those of the figure.
struct Target {
    Argument on;
    Argument value;
    TopByte topByte;
};
const Target onPixels = {destination("surface"), colour("color"), setByColour};
const Target onBytes = {plane("plane"), number("value", "", anyByte, {255, 255}), noPixels};

Row strokes(const Target &target, std::string_view unit, double figures, Row row) {
    row.writes = row.writes ? row.writes : on(target.on.name, "clip");
    row.topByte = target.topByte;
    row.arrange = inTurn(makePlane, row.arrange);
    row.scenes.front().set = inTurn(setColour, row.scenes.front().set);
    row.scenes.front().figures = figures;
    row.scenes.front().figure = unit;
    return row;
}
constexpr std::string_view farAwayTakesSeconds =
    "a line is walked outside of its clip too, so that ends far away take seconds";

/// A row of lines or curves through the places of the names.
Row stroke(const Target &target, std::initializer_list<std::string_view> names, Row row) {
    const std::string_view of = target.on.name;
    row.arguments = target.on + each(names, position("", of)) + target.value + clip("clip", of) + pitch("pitch", of);
    row.waived = {{"numbers_at_their_ends", farAwayTakesSeconds},
                  {"clips_hold_at_the_ends_of_numbers", farAwayTakesSeconds},
                  {"empty_clips_at_the_ends_of_numbers", farAwayTakesSeconds}};
    return row;
}
Row line(const Target &target, Row row) {
    row.writes = on(target.on.name, inside("clip", lineBox));
    row.rules = {{"the ends lie more than 2^30 apart", lineIsNoLongerThanItsFormat}};
    row.arrange = arrangeLine;
    row.scenes = {{.set = setLine, .calls = 720}};
    return strokes(target, "lines", 720, stroke(target, {"x1", "y1", "x2", "y2"}, std::move(row)));
}
Row curve(const Target &target, Row row) {
    row.arrange = arrangeCurve;
    row.scenes = {{.set = setCurve, .calls = 100}};
    row = stroke(target, {"x0", "y0", "x1", "y1", "x2", "y2", "x3", "y3"}, std::move(row));
    if (target.on.kind == Kind::destination)
        row.waived.push_back({"places_are_bounded_by_clips_alone", "places are truncated toward 0"});
    return strokes(target, "curves", 100, std::move(row));
}
Row smoothCurve(const Target &target, Row row) {
    const std::string_view of = target.on.name;
    row.arguments = {target.on,    clip("clip", of),         pitch("pitch", of), points("xs"),
                     points("ys"), count("count", "points"), target.value,       choice("openCurve")};
    row.reads = [](const Call &call) {
        const int count = call["count"].whole();
        return Areas{words("xs", count), words("ys", count)};
    };
    row.arrange = arrangeSmoothCurve;
    row.scenes = {{.set = setSmoothCurve}};
    row.waived = {{"clips_hold_at_the_ends_of_numbers", farAwayTakesSeconds},
                  {"empty_clips_at_the_ends_of_numbers", farAwayTakesSeconds}};
    return strokes(target, "curves", 24, std::move(row));
}

// Region fills: what they work on stands in the private block.

const Argument block = privateBlock("data", "_PRIVATE_QMGP_DATA");
const Argument place = position("", "");

RegionBlock &blockOf(Call &call) {
    return call["data"].get<RegionBlock>();
}
const RegionBlock &blockOf(const Call &call) {
    return call["data"].get<RegionBlock>();
}

const Rule surfacesAreSet = {"data has no surfaces, which a Set function gives it", [](const Call &call) {
                                 return !blockOf(call).destSurface.isNull() && !blockOf(call).testSurface.isNull();
                             }};
const Rule planeIsSet = {"data has no plane with limits, which a Set function gives it",
                         [](const Call &call) { return !blockOf(call).plane.isNull(); }};
const Rule testSurfaceIsSet = {"data has no surfaces, which a Set function gives it",
                               [](const Call &call) { return !blockOf(call).testSurface.isNull(); }};
const Rule &toBeScanned(bool onPlane) {
    return onPlane ? planeIsSet : testSurfaceIsSet;
}

void arrangeStorage(Call &call, Random &random) {
    const auto anyPlane = [&random](int bytes) { return Plane(bytes, random.between(1, 99), 1); };
    call["data"] = RegionBlock{.plane = anyPlane(1), .destSurface = anyPlane(4), .testSurface = anyPlane(4)};
    for (const char *name : {"destSurface", "testSurface", "plane"})
        if (call.row().argument(name))
            call[name] = anyPlane(name == std::string_view("plane") ? 1 : 4);
}
/// The block as it comes, everything in it null.
void setStorage(Call &call, const Stage &stage) {
    call["data"] = RegionBlock();
    if (call.row().argument("plane"))
        call["plane"] = Plane(1, stage.width, stage.height);
}

Row storing(Row row) {
    row.arguments = block + row.arguments;
    row.arrange = arrangeStorage;
    row.scenes = {{.set = setStorage}};
    row.figure = Figure::storage;
    return row;
}

/// A surface on which `border` is no rarity.
Plane boundaries(Random &random, q_ulong border) {
    const Plane surface = randomSurface(random);
    const int share = random.between(2, 12);
    return surface.fill(surface.rect(), [&](int x, int y) { return random.oneIn(share) ? border : surface.at(x, y); });
}

/// Scans look at the pixel where they begin, the one beside it, and all up to the one behind the limit.
template <bool toTheLeft>
bool scanIsInside(const Call &call) {
    const RegionBlock &data = blockOf(call);
    const bool onPlane = !call.row().argument("limit");
    const std::int64_t x = call["x"].whole();
    const std::int64_t y = call["y"].whole();
    const std::int64_t limit = !onPlane    ? call["limit"].whole()
                               : toTheLeft ? data.planeRect.left
                                           : data.planeRect.right;
    const Box seen =
        toTheLeft ? Box{std::min(x, limit) - 1, y, x + 1, y + 1} : Box{x, y, std::max(x + 1, limit) + 1, y + 1};
    return (onPlane ? data.plane : data.testSurface).holds(seen);
}
void arrangeScan(Call &call, Random &random) {
    const bool onPlane = !call.row().argument("limit");
    const Plane surface = boundaries(random, call[onPlane ? "value" : "border"].word());
    const int left = random.between(-3, surface.width());
    const int right = random.between(0, surface.width() + 3);
    call["data"] = RegionBlock{.plane = bytesOf(surface), .planeRect = {left, 0, right, 0}, .testSurface = surface};
    call.set({{"x", random.between(0, surface.width() - 1)}, {"y", random.between(0, surface.height() - 1)}});
    if (!onPlane)
        call["limit"] = call.row().name == "scan_left" ? left : right;
}
/// A scan from one side of an open row to the other.
void setScan(Call &call, const Stage &stage) {
    const Plane open = Plane::surface(stage.width, 1);
    call["data"] = RegionBlock{.plane = bytesOf(open), .planeRect = open.rect(), .testSurface = open};
    const bool toTheLeft = call.row().name.find("left") != std::string_view::npos;
    call.set({{"x", toTheLeft ? stage.width - 1 : 0}, {"y", 0}});
    if (call.row().argument("limit")) {
        call.set({{"limit", toTheLeft ? 0 : stage.width}, {"border", 1}});
    }
}

/// A scan over a short row with a boundary on either side.
void setScanBetween(Call &call, const Stage &stage) {
    constexpr int columns = 25, reach = 4;
    const int shift = static_cast<int>(stage.along({0, reach}));
    const Plane row = Plane::surface(columns, 1);
    row.at(reach - shift, 0) = row.at(columns - reach + shift, 0) = 1;
    call["data"] = RegionBlock{.plane = bytesOf(row), .planeRect = row.rect(), .testSurface = row};
    call.set({{"x", columns / 2}, {"y", 0}});
    if (call.row().argument("limit"))
        call.set({{"limit", call.row().name == "scan_left" ? 0 : columns}, {"border", 1}});
    else
        call["value"] = 1;
}

/// Scans begin at a pixel and end at a boundary or at a limit, which the block has for bytes.
template <bool toTheLeft>
Row scan(const Arguments &others, Row row) {
    row.arguments = block + each({"x", "y"}, place) + others;
    row.rules = {toBeScanned(!row.argument("limit")), {"the scan leaves its memory", scanIsInside<toTheLeft>}};
    row.arrange = arrangeScan;
    row.scenes = {{.set = setScan}};
    row.figure = Figure::scan;
    row.picture = Scene{.set = setScanBetween};
    return row;
}

const tagRECT &limitsOf(const Call &call) {
    return call.row().argument("rect") ? call["rect"].rect() : blockOf(call).planeRect;
}
bool ends(plain::Fill fill, const Call &call) {
    fill.callsLeft = 64LL + 4LL * widthOf(fill.limits) * heightOf(fill.limits);
    fill.from(call["x"].whole(), call["y"].whole(), call["parentLeft"].whole(), call["parentRight"].whole(),
              call["direction"].whole());
    return fill.callsLeft >= 0;
}
/// A fill that goes on from a parent's span begins between the ends of it.
const Rule hasParent = {"{x} is not within the parent's span, {parentLeft} to {parentRight}", [](const Call &call) {
                            const int x = call["x"].whole();
                            return call["direction"].whole() == 0 ||
                                   (call["parentLeft"].whole() <= x && call["parentRight"].whole() >= x);
                        }};
const Rule parentIsInside = {
    "the parent's span, {parentLeft} to {parentRight}, leaves the limits", [](const Call &call) {
        const tagRECT &limits = limitsOf(call);
        return call["direction"].whole() == 0 ||
               (call["parentLeft"].whole() >= limits.left && call["parentRight"].whole() < limits.right);
    }};
const Rule pitchesAreEqual = {"the pitches of the plane and of the test surface differ", [](const Call &call) {
                                  return blockOf(call).plane.pitch() == blockOf(call).testSurface.pitch();
                              }};

/// The seed lies inside the limits, and the limits with row 0 inside the surface.
bool liesInside(const Call &call, const Plane &surface) {
    const tagRECT &limits = limitsOf(call);
    return Box(limits).contains({call["x"].whole(), call["y"].whole()}) && surface.holds(limits) &&
           surface.holds({limits.left, 0, limits.right, 1}) && hasParent.holds(call) && parentIsInside.holds(call);
}
bool colourFillIsInside(const Call &call) {
    return liesInside(call, blockOf(call).testSurface) && liesInside(call, blockOf(call).destSurface);
}
bool colourFillEnds(const Call &call) {
    if (!colourFillIsInside(call))
        return false;
    Call trial = call;
    return ends(
        plain::colourFill(*blockOf(trial).settled(), limitsOf(call), call["fill"].word(), call["border"].word()),
        trial);
}
bool planeFillIsInside(const Call &call) {
    return liesInside(call, blockOf(call).plane);
}
bool sourceFillIsInside(const Call &call) {
    const RegionBlock &data = blockOf(call);
    return pitchesAreEqual.holds(call) && liesInside(call, data.plane) && liesInside(call, data.destSurface) &&
           liesInside(call, data.testSurface);
}
bool sourceFillEnds(const Call &call) {
    if (!sourceFillIsInside(call))
        return false;
    Call trial = call;
    return ends(plain::sourceFill(*blockOf(trial).settled(), static_cast<unsigned char>(call["value"].word())), trial);
}

/// A seed somewhere within limits somewhere on the surface, at times as a fill calls itself.
tagRECT arrangeSeed(Call &call, Random &random, const Plane &surface) {
    tagRECT limits = random.oneIn(3) ? surface.rect() : random.rectInside(surface.width(), surface.height());
    if (random.oneIn(2))
        limits.top = 0;
    const int left = static_cast<int>(limits.left);
    const int right = static_cast<int>(limits.right) - 1;
    const int x = random.between(left, right);
    call.set({{"x", x}, {"y", random.between(static_cast<int>(limits.top), static_cast<int>(limits.bottom) - 1)}});
    call["direction"] = random.oneIn(6) ? random.between(1, 2) : 0;
    call.set({{"parentLeft", random.between(left, x)}, {"parentRight", random.between(x, right)}});
    return limits;
}
void arrangeColourFill(Call &call, Random &random) {
    const Plane test = boundaries(random, call["border"].word());
    call["rect"] = arrangeSeed(call, random, test);
    Plane dst = Plane::randomSurface(random, test.width(), test.height());
    call["data"] = RegionBlock{.destSurface = dst, .testSurface = test};
    if (random.oneIn(4) || !colourFillEnds(call)) { // what is painted is boundary
        blockOf(call).destSurface = test;
        call["fill"] = Value(call["border"]);
    }
}
void arrangePlaneFill(Call &call, Random &random) {
    const Plane surface = boundaries(random, call["value"].word());
    call["data"] = RegionBlock{.plane = bytesOf(surface), .planeRect = arrangeSeed(call, random, surface)};
}
void arrangeSourceFill(Call &call, Random &random) {
    const Plane src = boundaries(random, call["value"].word());
    RegionBlock data = {.plane = bytesOf(src), .planeRect = arrangeSeed(call, random, src), .testSurface = src};
    data.destSurface = Plane::randomSurface(random, src.width(), src.height());
    call["data"] = data;
    if (!sourceFillEnds(call)) { // away with all boundaries
        blockOf(call).plane = bytesOf(src.alike(call["value"].word() ^ 1));
    }
}

constexpr q_ulong wall = 1;

Plane openField(const Stage &stage) {
    const Plane plane = Plane::surface(stage.width, stage.height, wall);
    return plane.fill({1, 1, stage.width - 1, stage.height - 1}, [](int, int) { return 0; });
}

/// Corridors three pixels wide. Walls fall in any order, but only between parts that are not joined yet: so one way
/// leads from each place to each, and there are no islands.
Plane maze(const Stage &stage) {
    constexpr int cell = 4;
    const int columns = (stage.width - 1) / cell;
    const int rows = (stage.height - 1) / cell;
    const Plane plane = Plane::surface(stage.width, stage.height, wall);
    plane.fill({0, 0, columns * cell, rows * cell},
               [](int x, int y) { return x % cell == 0 || y % cell == 0 ? wall : 0; });
    std::vector<int> parts(static_cast<std::size_t>(columns * rows)); // each names another of its part, but for one
    std::iota(parts.begin(), parts.end(), 0);
    const auto partOf = [&](int column, int row) {
        int at = row * columns + column;
        while (parts[static_cast<std::size_t>(at)] != at)
            at = parts[static_cast<std::size_t>(at)];
        return at;
    };
    Random random(1);
    for (int joined = 1; joined < columns * rows;) {
        const int column = random.between(0, columns - 1);
        const int row = random.between(0, rows - 1);
        const bool toTheRight = random.oneIn(2);
        if (toTheRight ? column == columns - 1 : row == rows - 1)
            continue;
        const int here = partOf(column, row);
        const int there = toTheRight ? partOf(column + 1, row) : partOf(column, row + 1);
        if (here == there)
            continue;
        parts[static_cast<std::size_t>(here)] = there;
        ++joined;
        for (int i = 1; i < cell; ++i)
            plane.at(column * cell + (toTheRight ? cell : i), row * cell + (toTheRight ? i : cell)) = 0;
    }
    return plane;
}

template <Plane (*boundaries)(const Stage &)>
void setFill(Call &call, const Stage &stage) {
    const Plane walls = boundaries(stage);
    const bool toColour = call.row().argument("rect");
    call["data"] = RegionBlock{.plane = bytesOf(walls),
                               .planeRect = walls.rect(),
                               .destSurface = stage.picture(),
                               .testSurface = toColour ? walls : stage.picture(1)};
    call["x"] = call["y"] = 2;
    call["direction"] = call["parentLeft"] = call["parentRight"] = 0;
    call[toColour ? "border" : "value"] = static_cast<double>(wall);
    if (toColour)
        call["rect"] = walls.rect();
}
/// A blossom in a field: the fill begins in its middle.
Plane blossom(const Stage &stage) {
    const Plane plane = openField(stage);
    for (int i = 0; i < 4000; ++i) {
        const double angle = i * fullTurn / 4000;
        const double radius = 0.32 + 0.12 * std::cos(6 * angle + 2 * stage.time);
        const int x = static_cast<int>(stage.width / 2 + stage.height * radius * std::cos(angle));
        const int y = static_cast<int>(stage.height / 2 + stage.height * radius * std::sin(angle));
        plane.fill({x, y, x + 2, y + 2}, [](int, int) { return wall; });
    }
    return plane;
}
void setBlossom(Call &call, const Stage &stage) {
    setFill<blossom>(call, stage);
    for (const char *name : {"x", "parentLeft", "parentRight"})
        call[name] = stage.width / 2;
    call["y"] = stage.height / 2;
    auto &data = blockOf(call);
    if (!call.row().argument("rect"))
        return;
    const Plane walls = data.testSurface;
    data.destSurface.fill(walls.rect(),
                          [&](int x, int y) { return walls.at(x, y) == wall ? 0xFFFFFF : data.destSurface.at(x, y); });
}
void setBlossomOnPlane(Call &call, const Stage &stage) {
    setBlossom(call, stage);
    blockOf(call).destSurface = Plane();
}

Row fill(const Arguments &what, Row row, bool isRestored = false) {
    row.arguments = block + each({"x", "y"}, place) + what + each({"parentLeft", "parentRight"}, place) +
                    choice("direction", {0, 2}) + row.arguments;
    row.scenes = {
        {.set = setFill<maze>, .figures = 1, .figure = "fills", .isRestored = isRestored},
        {.label = "open", .set = setFill<openField>, .figures = 1, .figure = "fills", .isRestored = isRestored}};
    row.picture = Scene{.set = isRestored ? setBlossomOnPlane : setBlossom};
    return row;
}

} // namespace

std::vector<Row> regionRows() {
    const Arguments limited = {key("border"), position("limit", "")};
    const Arguments toValue = {onBytes.value};
    const Arguments dst = {destination("destSurface"), pitch("destPitch", "destSurface")};
    const Arguments test = {source("testSurface"), pitch("testPitch", "testSurface")};
    const Arguments onPlane = {plane("plane"), rectangle("planeRect", "plane"), pitch("planePitch", "plane")};
    return {
        line(onPixels, {Q_MUR_FUNCTION(iLine), .sentence = "Draws a line."}),
        line(onBytes, {Q_MUR_FUNCTION(bLine), .sentence = "Draws a line on an 8-bit plane."}),
        curve(onPixels, {Q_MUR_FUNCTION(iBesierLine), .sentence = "Draws a cubic Bezier curve as 15 chords."}),
        curve(onBytes,
              {Q_MUR_FUNCTION(bBesierLine), .sentence = "Draws a cubic Bezier curve as 15 chords on an 8-bit plane."}),
        smoothCurve(onPixels, {Q_MUR_FUNCTION(iPolyBesier), .sentence = "Draws a smooth curve through points."}),
        smoothCurve(onBytes, {Q_MUR_FUNCTION(bPolyBesier),
                              .sentence = "Draws a smooth curve through points on an 8-bit plane."}),
        storing({Q_MUR_FUNCTION(SetRegionFill), .sentence = "Stores the surfaces of a fill with a colour.",
                 .arguments = dst + test}),
        storing({Q_MUR_FUNCTION(bSetRegionFill), .sentence = "Stores the plane of a fill.", .arguments = onPlane}),
        storing({Q_MUR_FUNCTION(SetRegionSrcFill),
                 .sentence = "Stores the surfaces and the plane of a fill with the pixels of a source.",
                 .arguments = dst + test + onPlane}),
        scan<true>(limited,
                   {Q_MUR_FUNCTION(scan_left), .sentence = "Finds the first column of a span between boundaries."}),
        scan<false>(limited,
                    {Q_MUR_FUNCTION(scan_right), .sentence = "Finds the last column of a span between boundaries."}),
        scan<true>(toValue,
                   {Q_MUR_FUNCTION(bscan_left), .sentence = "Finds the first column of a span on an 8-bit plane.",
                    .looksLike = "Does on bytes what `scan_left()` does on pixels."}),
        scan<false>(toValue,
                    {Q_MUR_FUNCTION(bscan_right), .sentence = "Finds the last column of a span on an 8-bit plane.",
                     .looksLike = "Does on bytes what `scan_right()` does on pixels."}),
        fill({colour("fill"), key("border")},
             {Q_MUR_FUNCTION(Region_Fill),
              .sentence = "Paints the region around a pixel up to a boundary with a colour.",
              .arguments = {rectangle("rect", "")},
              .rules = {surfacesAreSet,
                        hasParent,
                        parentIsInside,
                        {"the seed or the limits lie outside", colourFillIsInside},
                        {"the fill never ends", colourFillEnds, true}},
              .topByte = setByColour, .arrange = arrangeColourFill}),
        fill(toValue,
             {Q_MUR_FUNCTION(bRegion_Fill),
              .sentence = "Paints the region around an element of an 8-bit plane with the value that bounds it.",
              .rules =
                  {planeIsSet, hasParent, parentIsInside, {"the seed or the limits lie outside", planeFillIsInside}},
              .arrange = arrangePlaneFill},
             true),
        fill(toValue,
             {Q_MUR_FUNCTION(Region_Src_Fill),
              .sentence = "Copies the region around a pixel, bounded on an 8-bit plane, from a surface to another.",
              .rules = {surfacesAreSet,
                        planeIsSet,
                        pitchesAreEqual,
                        hasParent,
                        parentIsInside,
                        {"the seed or the limits lie outside", sourceFillIsInside},
                        {"the fill never ends", sourceFillEnds, true}},
              .topByte = copied, .lookup = Lookup::nearest, .arrange = arrangeSourceFill}),
    };
}

} // namespace catalogue
