#include "plain/curves.h"
#include "plain/region_fill.h"

#include "areas.h"
#include "arguments.h"

#include <cmath>
#include <numeric>

namespace catalogue {
namespace {

/// A byte for each pixel of a surface, its margin included.
Plane bytesOf(const Plane &surface) {
    constexpr int margin = Plane::usualMargin;
    Plane plane(1, surface.width(), surface.height(), margin, surface.pitch() - surface.width() - 2 * margin);
    for (int y = -margin; y < surface.height() + margin; ++y)
        for (int x = -margin; x < surface.pitch() - margin; ++x)
            plane.as<unsigned char>()[y * plane.pitch() + x] = static_cast<unsigned char>(surface.at(x, y));
    return plane;
}

Plane randomSurface(Random &random) {
    const int width = random.between(1, 16);
    const int height = random.between(1, 16);
    return Plane::randomSurface(random, width, height);
}

Argument bytePlane() {
    return {.name = "plane", .kind = Kind::plane, .unit = "bytes"};
}
Argument byteValue() {
    return number("value", "", anyByte, {255, 255});
}

// Lines and curves: the first argument is what is drawn on.

std::string_view target(const Call &call) {
    return call.row().arguments.front().name;
}
bool drawsBytes(const Call &call) {
    return call.row().arguments.front().kind == Kind::plane;
}
Areas writesClip(const Call &call) {
    return {{target(call), call["clip"].rect()}};
}
Areas writesClippedLine(const Call &call) {
    const auto [left, right] = std::minmax({call["x1"].whole(), call["x2"].whole()});
    const auto [top, bottom] = std::minmax({call["y1"].whole(), call["y2"].whole()});
    return {{target(call), common(call["clip"].rect(), Box{left, top, std::int64_t{right} + 1, bottom + 1LL})}};
}
Areas readsPoints(const Call &call) {
    const Box points = {0, 0, call["count"].whole(), 1};
    return {{"xs", points}, {"ys", points}};
}
bool lineIsNoLongerThanItsFormat(const Call &call) {
    const Box line = {call["x1"].whole(), call["y1"].whole(), call["x2"].whole(), call["y2"].whole()};
    return std::max(std::abs(line.width()), std::abs(line.height())) <= 1 << 30;
}

void makePlane(Call &call, Random &random) {
    if (!drawsBytes(call))
        return;
    const Plane plane = bytesOf(randomSurface(random));
    call["plane"] = plane;
    call["clip"] = random.rectInsideOrEmpty(plane.width(), plane.height());
}
void arrangeLine(Call &call, Random &random) {
    makePlane(call, random);
    const int reach = random.oneIn(50) ? 5000 : 20;
    for (const char *name : {"x1", "y1", "x2", "y2"})
        call[name] = random.between(-reach, reach + 16);
}
constexpr const char *columnNames[] = {"x0", "x1", "x2", "x3"};
constexpr const char *rowNames[] = {"y0", "y1", "y2", "y3"};
void arrangeCurve(Call &call, Random &random) {
    makePlane(call, random);
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
    makePlane(call, random);
    const int count = random.between(1, 6);
    const int reach = random.oneIn(50) ? 32000 : random.oneIn(6) ? 100 : 12;
    call["xs"] = Plane(2, count, 1);
    call["ys"] = Plane(2, count, 1);
    for (const char *name : {"xs", "ys"})
        for (int i = 0; i < count; ++i)
            call[name].plane().as<short>()[i] = static_cast<short>(random.between(-reach, reach + 16));
    call["count"] = random.oneIn(50) ? random.between(-3, 0) : count;
    if (random.oneIn(4))
        call["openCurve"] = random.between(-2, 2);
}

void makePlane(Call &call, const Stage &stage) {
    if (drawsBytes(call) && stage.call == 0)
        call["plane"] = Plane(1, stage.width, stage.height, Plane::usualMargin);
    if (!drawsBytes(call))
        call["color"] = 0x402010 + 0x0A0805 * std::floor(stage.time * 16);
}
/// A fan of lines from the middle all around.
void setLine(Call &call, const Stage &stage) {
    makePlane(call, stage);
    const double angle = stage.time * 6.2831853;
    call["x1"] = stage.width / 2;
    call["y1"] = stage.height / 2;
    call["x2"] = std::floor(stage.width * (0.5 + 0.45 * std::cos(angle)));
    call["y2"] = std::floor(stage.height * (0.5 + 0.45 * std::sin(angle)));
}
/// A ribbon of curves.
void setCurve(Call &call, const Stage &stage) {
    makePlane(call, stage);
    constexpr Range columns[] = {{0, 0.1}, {0.5, 0.2}, {0.3, 1.1}, {1, 0.9}};
    constexpr Range rows[] = {{0.8, 0.1}, {-0.3, 0.4}, {1.3, 0.8}, {0.1, 0.9}};
    for (int i = 0; i < 4; ++i) {
        call[columnNames[i]] = std::floor(stage.width * stage.within(columns[i]));
        call[rowNames[i]] = std::floor(stage.height * stage.within(rows[i]));
    }
}
/// A blossom.
void setSmoothCurve(Call &call, const Stage &stage) {
    makePlane(call, stage);
    constexpr int count = 24;
    call["xs"] = Plane(2, count, 1);
    call["ys"] = Plane(2, count, 1);
    for (int i = 0; i < count; ++i) {
        const double radius = i % 2 == 0 ? 0.45 : 0.15 + 0.15 * stage.time;
        const double angle = i * 6.2831853 / count;
        call["xs"].plane().as<short>()[i] = static_cast<short>(stage.width * (0.5 + radius * std::cos(angle)));
        call["ys"].plane().as<short>()[i] = static_cast<short>(stage.height * (0.5 + radius * std::sin(angle)));
    }
    call["count"] = count;
    call["openCurve"] = 0;
}

const std::vector<Exception> stepsOutsideToo = {
    {"numbers_at_their_ends", "a line is walked outside of its clip too, so that ends far away take seconds"}};

// What the form for pixels and the one for bytes have in common.

Row line(Row row, const Argument &drawnOn, const Argument &value) {
    const std::string_view of = drawnOn.name;
    row.arguments = {drawnOn, position("x1", of)};
    for (const char *name : {"y1", "x2", "y2"})
        row.arguments.push_back(position(name, of));
    row.arguments.insert(row.arguments.end(), {value, clip("clip", of), pitch("pitch", of)});
    row.writes = writesClippedLine;
    row.allows = lineIsNoLongerThanItsFormat;
    row.arrange = arrangeLine;
    row.scenes = {{.set = setLine, .figures = 720, .figure = "lines", .calls = 720}};
    row.without = stepsOutsideToo;
    return row;
}
Row curve(Row row, const Argument &drawnOn, const Argument &value) {
    const std::string_view of = drawnOn.name;
    row.arguments = {drawnOn};
    for (int i = 0; i < 4; ++i)
        row.arguments.insert(row.arguments.end(), {position(columnNames[i], of), position(rowNames[i], of)});
    row.arguments.insert(row.arguments.end(), {value, clip("clip", of), pitch("pitch", of)});
    row.writes = writesClip;
    row.arrange = arrangeCurve;
    row.scenes = {{.set = setCurve, .figures = 100, .figure = "curves", .calls = 100}};
    row.without = stepsOutsideToo;
    return row;
}
Row smoothCurve(Row row, const Argument &drawnOn, const Argument &value) {
    const std::string_view of = drawnOn.name;
    const Argument xs = {.name = "xs", .kind = Kind::points, .unit = "pixels"};
    const Argument ys = {.name = "ys", .kind = Kind::points, .unit = "pixels"};
    const Argument count = {.name = "count", .kind = Kind::count, .unit = "points"};
    row.arguments = {drawnOn, clip("clip", of), pitch("pitch", of), xs, ys, count, value, choice("openCurve", anyInt)};
    row.writes = writesClip;
    row.reads = readsPoints;
    row.arrange = arrangeSmoothCurve;
    row.scenes = {{.set = setSmoothCurve, .figures = 24, .figure = "curves"}};
    return row;
}

// Region fills: what they work on stands in the private block.

Argument block() {
    return {.name = "data", .kind = Kind::privateBlock, .unit = "_PRIVATE_QMGP_DATA"};
}
RegionBlock &blockOf(Call &call) {
    return call["data"].get<RegionBlock>();
}
const RegionBlock &blockOf(const Call &call) {
    return call["data"].get<RegionBlock>();
}

void arrangeStorage(Call &call, Random &random) {
    const auto anyPlane = [&random](int bytes) { return Plane(bytes, random.between(1, 99), 1); };
    call["data"] = RegionBlock{.plane = anyPlane(1), .destSurface = anyPlane(4), .testSurface = anyPlane(4)};
    if (call.row().argument("destSurface")) {
        call["destSurface"] = anyPlane(4);
        call["testSurface"] = anyPlane(4);
    }
    if (call.row().argument("plane"))
        call["plane"] = anyPlane(1);
}
/// The block as it comes, everything in it null.
void setStorage(Call &call, const Stage &stage) {
    call["data"] = RegionBlock();
    if (call.row().argument("plane"))
        call["plane"] = Plane(1, stage.width, stage.height);
}

/// A surface on which `border` is no rarity.
Plane boundaries(Random &random, q_ulong border) {
    Plane surface = randomSurface(random);
    const int share = random.between(2, 12);
    for (int y = 0; y < surface.height(); ++y)
        for (int x = 0; x < surface.width(); ++x)
            if (random.oneIn(share))
                surface.at(x, y) = border;
    return surface;
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
    call["x"] = random.between(0, surface.width() - 1);
    call["y"] = random.between(0, surface.height() - 1);
    if (!onPlane)
        call["limit"] = call.row().name == "scan_left" ? left : right;
}
/// A scan from one side of an open row to the other.
void setScan(Call &call, const Stage &stage) {
    const Plane open = Plane::surface(stage.width, 1);
    call["data"] = RegionBlock{.plane = bytesOf(open), .planeRect = open.rect(), .testSurface = open};
    const bool toTheLeft = call.row().name.find("left") != std::string_view::npos;
    call["x"] = toTheLeft ? stage.width - 1 : 0;
    call["y"] = 0;
    if (call.row().argument("limit")) {
        call["limit"] = toTheLeft ? 0 : stage.width;
        call["border"] = 1;
    }
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
/// The seed lies inside the limits, the limits with row 0 and a pixel on either side inside the surface, and between
/// the ends of the parent's span there is the seed.
bool liesInside(const Call &call, const Plane &surface) {
    const tagRECT &limits = limitsOf(call);
    const Box around = grown(limits, 1, 0, 1, 0);
    const int x = call["x"].whole();
    const int parentLeft = call["parentLeft"].whole();
    const int parentRight = call["parentRight"].whole();
    const bool hasParent = call["direction"].whole() == 0 || (parentLeft >= limits.left && parentLeft <= x &&
                                                              parentRight >= x && parentRight < limits.right);
    return Box(limits).contains({x, call["y"].whole()}) && surface.holds(around) &&
           surface.holds({around.left, 0, around.right, 1}) && hasParent;
}
bool colourFillEnds(const Call &call) {
    if (!liesInside(call, blockOf(call).testSurface) || !liesInside(call, blockOf(call).destSurface))
        return false;
    Call trial = call;
    return ends(
        plain::colourFill(*blockOf(trial).settled(), limitsOf(call), call["fill"].word(), call["border"].word()),
        trial);
}
bool planeFillIsInside(const Call &call) {
    return liesInside(call, blockOf(call).plane);
}
bool sourceFillEnds(const Call &call) {
    const RegionBlock &data = blockOf(call);
    if (!liesInside(call, data.plane) || !liesInside(call, data.destSurface) || !liesInside(call, data.testSurface))
        return false;
    Call trial = call;
    return data.plane.pitch() == data.testSurface.pitch() &&
           ends(plain::sourceFill(*blockOf(trial).settled(), static_cast<unsigned char>(call["value"].word())), trial);
}

/// A seed somewhere within limits somewhere on the surface, at times as a fill calls itself.
tagRECT arrangeSeed(Call &call, Random &random, const Plane &surface) {
    tagRECT limits = random.oneIn(3) ? surface.rect() : random.rectInside(surface.width(), surface.height());
    if (random.oneIn(2))
        limits.top = 0;
    const int left = static_cast<int>(limits.left);
    const int right = static_cast<int>(limits.right) - 1;
    const int x = random.between(left, right);
    call["x"] = x;
    call["y"] = random.between(static_cast<int>(limits.top), static_cast<int>(limits.bottom) - 1);
    call["direction"] = random.oneIn(6) ? random.between(1, 2) : 0;
    call["parentLeft"] = random.between(left, x);
    call["parentRight"] = random.between(x, right);
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
        const int extraPitch = src.pitch() - src.width() - 2 * Plane::usualMargin;
        blockOf(call).plane = bytesOf(Plane::surface(src.width(), src.height(), call["value"].word() ^ 1, extraPitch));
    }
}

constexpr q_ulong wall = 1;

Plane openField(const Stage &stage) {
    Plane plane = Plane::surface(stage.width, stage.height, wall);
    for (int y = 1; y < stage.height - 1; ++y)
        for (int x = 1; x < stage.width - 1; ++x)
            plane.at(x, y) = 0;
    return plane;
}

/// Corridors three pixels wide. Walls fall in any order, but only between parts that are not joined yet: so one way
/// leads from each place to each, and there are no islands.
Plane maze(const Stage &stage) {
    constexpr int cell = 4;
    const int columns = (stage.width - 1) / cell;
    const int rows = (stage.height - 1) / cell;
    Plane plane = Plane::surface(stage.width, stage.height, wall);
    for (int y = 0; y < rows * cell; ++y)
        for (int x = 0; x < columns * cell; ++x)
            plane.at(x, y) = x % cell == 0 || y % cell == 0 ? wall : 0;
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
    RegionBlock data = {.plane = bytesOf(walls), .planeRect = walls.rect(), .destSurface = stage.picture()};
    data.testSurface = call.row().argument("rect") ? walls : stage.picture(1);
    call["data"] = data;
    call["x"] = call["y"] = 2;
    call["direction"] = call["parentLeft"] = call["parentRight"] = 0;
    if (call.row().argument("rect")) {
        call["rect"] = walls.rect();
        call["border"] = static_cast<double>(wall);
    } else {
        call["value"] = static_cast<double>(wall);
    }
}
std::vector<Scene> fillScenes(bool isRestored) {
    return {{.set = setFill<maze>, .figures = 1, .figure = "fills", .isRestored = isRestored},
            {.word = "open", .set = setFill<openField>, .figures = 1, .figure = "fills", .isRestored = isRestored}};
}

Argument column(std::string_view name) {
    return position(name, "");
}
const std::vector<Argument> scanArguments = {block(), column("x"), column("y"), key("border"), column("limit")};
const std::vector<Argument> byteScanArguments = {block(), column("x"), column("y"), byteValue()};
const std::vector<Argument> byteFillArguments = {block(),
                                                 column("x"),
                                                 column("y"),
                                                 byteValue(),
                                                 column("parentLeft"),
                                                 column("parentRight"),
                                                 choice("direction", {0, 2})};

} // namespace

std::vector<Row> regionRows() {
    return {
        line({Q_MUR_FUNCTION(iLine), .sentence = "Draws a line.", .topByte = TopByte::setByColour},
             destination("surface"), colour("color")),
        line({Q_MUR_FUNCTION(bLine), .sentence = "Draws a line on an 8-bit plane."}, bytePlane(), byteValue()),
        curve({Q_MUR_FUNCTION(iBesierLine), .sentence = "Draws a cubic Bezier curve as 15 chords.",
               .topByte = TopByte::setByColour},
              destination("surface"), colour("color")),
        curve({Q_MUR_FUNCTION(bBesierLine), .sentence = "Draws a cubic Bezier curve as 15 chords on an 8-bit plane."},
              bytePlane(), byteValue()),
        smoothCurve({Q_MUR_FUNCTION(iPolyBesier), .sentence = "Draws a smooth curve through points.",
                     .topByte = TopByte::setByColour},
                    destination("surface"), colour("color")),
        smoothCurve({Q_MUR_FUNCTION(bPolyBesier), .sentence = "Draws a smooth curve through points on an 8-bit plane."},
                    bytePlane(), byteValue()),
        {
            Q_MUR_FUNCTION(SetRegionFill),
            .sentence = "Stores the surfaces of a fill with a colour.",
            .arguments = {block(), destination("destSurface"), pitch("destPitch", "destSurface"), source("testSurface"),
                          pitch("testPitch", "testSurface")},
            .arrange = arrangeStorage,
            .scenes = {{.set = setStorage}},
        },
        {
            Q_MUR_FUNCTION(bSetRegionFill),
            .sentence = "Stores the plane of a fill.",
            .arguments = {block(), bytePlane(), rectangle("planeRect", "plane"), pitch("planePitch", "plane")},
            .arrange = arrangeStorage,
            .scenes = {{.set = setStorage}},
        },
        {
            Q_MUR_FUNCTION(SetRegionSrcFill),
            .sentence = "Stores the surfaces and the plane of a fill with the pixels of a source.",
            .arguments = {block(), destination("destSurface"), pitch("destPitch", "destSurface"), source("testSurface"),
                          pitch("testPitch", "testSurface"), bytePlane(), rectangle("planeRect", "plane"),
                          pitch("planePitch", "plane")},
            .arrange = arrangeStorage,
            .scenes = {{.set = setStorage}},
        },
        {
            Q_MUR_FUNCTION(scan_left),
            .sentence = "Finds the first column of a span between boundaries.",
            .arguments = scanArguments,
            .allows = scanIsInside<true>,
            .arrange = arrangeScan,
            .scenes = {{.set = setScan}},
        },
        {
            Q_MUR_FUNCTION(scan_right),
            .sentence = "Finds the last column of a span between boundaries.",
            .arguments = scanArguments,
            .allows = scanIsInside<false>,
            .arrange = arrangeScan,
            .scenes = {{.set = setScan}},
        },
        {
            Q_MUR_FUNCTION(bscan_left),
            .sentence = "Finds the first column of a span on an 8-bit plane.",
            .arguments = byteScanArguments,
            .allows = scanIsInside<true>,
            .arrange = arrangeScan,
            .scenes = {{.set = setScan}},
        },
        {
            Q_MUR_FUNCTION(bscan_right),
            .sentence = "Finds the last column of a span on an 8-bit plane.",
            .arguments = byteScanArguments,
            .allows = scanIsInside<false>,
            .arrange = arrangeScan,
            .scenes = {{.set = setScan}},
        },
        {
            Q_MUR_FUNCTION(Region_Fill),
            .sentence = "Paints the region around a pixel up to a boundary with a colour.",
            .arguments = {block(), column("x"), column("y"), colour("fill"), key("border"), column("parentLeft"),
                          column("parentRight"), choice("direction", {0, 2}), rectangle("rect", "")},
            .allows = colourFillEnds,
            .topByte = TopByte::setByColour,
            .arrange = arrangeColourFill,
            .scenes = fillScenes(false),
        },
        {
            Q_MUR_FUNCTION(bRegion_Fill),
            .sentence = "Paints the region around an element of an 8-bit plane with the value that bounds it.",
            .arguments = byteFillArguments,
            .allows = planeFillIsInside,
            .arrange = arrangePlaneFill,
            .scenes = fillScenes(true),
        },
        {
            Q_MUR_FUNCTION(Region_Src_Fill),
            .sentence = "Copies the region around a pixel, bounded on an 8-bit plane, from a surface to another.",
            .arguments = byteFillArguments,
            .allows = sourceFillEnds,
            .topByte = TopByte::copied,
            .arrange = arrangeSourceFill,
            .scenes = fillScenes(false),
        },
    };
}

} // namespace catalogue
