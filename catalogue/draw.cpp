#include "plain/blended_lines.h"
#include "plain/bubbles.h"
#include "plain/convex_quad.h"
#include "plain/round_shapes.h"
#include "plain/stars.h"

#include "areas.h"
#include "arguments.h"

#include <cmath>

namespace catalogue {
namespace {

using enum TopByte;
using enum Sum;
using Fractions::cutOff, Fractions::notCounted, Fractions::roundedUp;
using Uniform::darkens, Uniform::stays;

// What rows of all kinds begin with, in the orders in which functions take it.

const Arguments surface = {destination("surface")};
const Arguments itsPitch = {pitch("pitch", "surface")};
const Arguments itsClip = {clip("clip", "surface")};

/// Completes a row by what its scenes draw.
Row figure(std::string_view unit, Row row) {
    if (row.scenes.empty())
        row.scenes = {{}};
    for (Scene &scene : row.scenes) {
        scene.figures = 1;
        scene.figure = unit;
    }
    return row;
}
/// A row that reads where it writes.
Row mixed(Row row) {
    row.reads = row.writes;
    return row;
}

/// How far a shape may reach to each side of a centre, so that it fits into the surface with its margins.
int roomIn(const Plane &plane) {
    return (std::min(plane.width(), plane.height()) + 2 * Plane::usualMargin - 1) / 2;
}
/// A place that has so many pixels before it and behind it, margins included.
void place(Call &call, Random &random, std::array<std::string_view, 2> names, int before, int behind) {
    const Plane &plane = call["surface"].plane();
    const int low = before - Plane::usualMargin;
    const int high = Plane::usualMargin - 1 - behind;
    call[names[0]] = random.between(low, plane.width() + high);
    call[names[1]] = random.between(low, plane.height() + high);
}
void openClipSometimes(Call &call, Random &random, int oneIn) {
    if (random.oneIn(oneIn))
        call["clip"] = call["surface"].plane().rect();
}

// Single pixels and crosses

auto dotGrown(int left, int up, int right, int down) {
    return on("surface", [=](const Call &call) {
        return grown(boxOf(call["x"].whole(), call["y"].whole(), 1, 1), left, up, right, down);
    });
}
const Region dot = dotGrown(0, 0, 0, 0);

/// Places on a spiral around the middle.
void spiral(Call &call, const Stage &stage) {
    const double angle = 5 * fullTurn * stage.time;
    const double radius = stage.height * (0.05 + 0.38 * stage.time);
    call["x"] = std::floor(stage.width / 2 + 1.6 * radius * std::cos(angle));
    call["y"] = std::floor(stage.height / 2 + radius * std::sin(angle));
}

Row dotted(Row row, int reach) {
    row.arguments = surface + itsPitch + position("x", "surface", {0.3, 0.7}) + position("y", "surface") + colour();
    row.topByte = cleared;
    row.sums = saturate;
    row.arrange = [reach](Call &call, Random &random) { place(call, random, {"x", "y"}, reach, reach); };
    if (reach > 0)
        row.waived = {{"every_place_and_size_over_a_small_surface", "larger than the surface"}};
    row.picture = Scene{.set = spiral, .calls = reach > 0 ? 150 : 1200};
    return figure(reach > 0 ? "crosses" : "pixels", std::move(row));
}

// Lines

Arguments ends(Range contract) {
    return each({"x1", "y1", "x2", "y2"}, position("", "surface", {0.5, 0.5}, contract));
}
/// The ends' differences stay within a 24.8 number.
constexpr Range fixedPointEnds = {-4194303, 4194303};
/// Lines are walked from end to end, what lies outside included.
constexpr Range walkedEnds = {-16383, 16383, true};

const Arguments blendedLine = surface + itsClip + itsPitch + ends(fixedPointEnds) + colour();

void setEnds(Call &call, int x1, int y1, int x2, int y2) {
    call.set({{"x1", x1}, {"y1", y1}, {"x2", x2}, {"y2", y2}});
}
/// Ends around the surface, and some far away.
void scatterEnds(Call &call, Random &random, int farthest) {
    if (random.oneIn(2)) { // from one side to the other
        openWide(call, random, 7, "surface");
        const Plane &plane = call["surface"].plane();
        const int ends[] = {random.between(-3, 3), random.between(-3, 3)};
        const int places[] = {random.between(2, plane.height() - 3), random.between(2, plane.width() - 3)};
        if (random.oneIn(2))
            setEnds(call, ends[0], places[0], plane.width() + ends[1], random.between(1, plane.height() - 2));
        else
            setEnds(call, places[1], plane.height() + ends[1], random.between(1, plane.width() - 2), ends[0]);
        return;
    }
    const int reach = random.oneIn(16) ? farthest : 28;
    chooseWhole({"x1", "y1", "x2", "y2"}, 8 - reach, 8 + reach)(call, random);
}
void arrangeBlended(Call &call, Random &random) {
    scatterEnds(call, random, 70000);
    if (call.row().argument("width")) {
        const int most = random.oneIn(2) ? 3 : 6;
        call["width"] = random.between(random.oneIn(8) ? -3 : 0, most);
    }
}
/// A line through the middle that turns once.
void turningLine(Call &call, const Stage &stage) {
    const double angle = fullTurn * stage.time + 0.4;
    const int dx = static_cast<int>(0.4 * stage.height * std::cos(angle));
    const int dy = static_cast<int>(0.4 * stage.height * std::sin(angle));
    setEnds(call, stage.width / 2 - dx, stage.height / 2 - dy, stage.width / 2 + dx, stage.height / 2 + dy);
}
/// Lines from about the middle outwards, in all directions; those of any width grow wider.
constexpr int rays = 36;
void setRay(Call &call, const Stage &stage) {
    const double angle = fullTurn * stage.time + 0.03;
    const auto at = [&](double share, double (*wave)(double), int extent) {
        return static_cast<int>(std::lround(extent / 2 + share * stage.height * wave(angle)));
    };
    setEnds(call, at(0.06, std::cos, stage.width), at(0.06, std::sin, stage.height), at(0.46, std::cos, stage.width),
            at(0.46, std::sin, stage.height));
    if (call.row().argument("colour2"))
        call.set({{"colour1", 0xFFE060}, {"colour2", 0x4060FF}});
}

Region lineInClip(int (*reachOf)(const Call &)) {
    return on("surface", inside("clip", [reachOf](const Call &call) {
                  const int reach = reachOf(call);
                  return grown(lineBox(call), reach, reach, reach, reach);
              }));
}
Row wideLine(Row row) {
    row.arguments = blendedLine + radius("width", {-4096, 4096, true}, {1, 9});
    row.writes = lineInClip(
        [](const Call &call) { return static_cast<int>(std::abs(std::int64_t{call["width"].whole()}) / 2 + 1); });
    row.arrange = arrangeBlended;
    row.scenes = {{"", inTurn(turningLine, set("width", 1))}, {"of width 3", inTurn(turningLine, set("width", 3))}};
    row.picture = Scene{.set = setRay, .calls = rays};
    return figure("lines", mixed(std::move(row)));
}
Row line(Row row) {
    row.scenes = {{.set = turningLine}};
    row.picture = Scene{.set = setRay, .calls = rays};
    return figure("lines", std::move(row));
}

/// The side shades inside the clip, the centres wherever they lie across the line.
Areas tube(const Call &call) {
    const Box clip = call["clip"].rect();
    const Box box = lineBox(call);
    const int reach = call["halfWidth"].whole();
    const bool alongX = box.width() > box.height();
    const tagPOINT first = {call["x1"].whole(), call["y1"].whole()};
    const Box strip =
        alongX ? Box{clip.left, box.top, clip.right, box.bottom} : Box{box.left, clip.top, box.right, clip.bottom};
    const Box centres = common(box, strip);
    if (!strip.contains(first))
        return {};
    const Box shades = alongX ? grown(centres, 0, reach, 0, reach) : grown(centres, reach, 0, reach, 0);
    return {{"surface", centres}, {"surface", common(clip, shades)}};
}
/// Ends on the surface and its margin, at times the same.
void arrangeEndsInside(Call &call, Random &random) {
    place(call, random, {"x1", "y1"}, 0, 0);
    const Plane &plane = call["surface"].plane();
    const auto other = [&](const char *first, int extent) {
        constexpr int margin = Plane::usualMargin;
        return random.oneIn(20) ? call[first].whole() : random.between(-margin, extent + margin - 1);
    };
    call.set({{"x2", other("x1", plane.width())}, {"y2", other("y1", plane.height())}});
}
void arrangeTube(Call &call, Random &random) {
    arrangeEndsInside(call, random);
    call["halfWidth"] = random.oneIn(32) ? random.between(10, 4095) : random.between(0, 9);
}
void arrangeLineOnSurface(Call &call, Random &random) {
    scatterEnds(call, random, 2000);
    call["width"] = random.between(-1, call["surface"].plane().width());
    call["height"] = random.between(-1, call["surface"].plane().height());
}

// Round shapes

const Arguments centre = each({"cx", "cy"}, position("", "surface"));
const Arguments centred = surface + itsPitch + centre;
const Arguments clippedCircle = surface + itsClip + itsPitch + centre;
const Arguments clippedStar = surface + itsPitch + itsClip + centre;

Argument radiusUpTo(double highest) {
    return meant(radius("radius", {anyInt.low, highest}, {20, 70}), {0, highest});
}
Argument radiusBeyond(double highest) {
    Argument argument = radiusUpTo(highest);
    argument.contract.isASample = true;
    return argument;
}
Argument thicknessWithin(Range contract) {
    return radius("thickness", contract, {2, 8});
}
const Arguments softBand = {meant(radius("radius", {-181, 181}, {20, 70}), {0, 181}),
                            idle(thicknessWithin({1, 90}), {0, 0}), colour()};
Arguments channels(Range contract) {
    return {number("red", "1/255", contract, {255, 255}), number("green", "1/255", contract, {176, 176}),
            number("blue", "1/255", contract, {96, 96})};
}

template <class Reach>
auto aroundCentre(Reach reach) {
    return [=](const Call &call) { return around(call["cx"].whole(), call["cy"].whole(), reach(call)); };
}
/// Inside the clip, but for its first column and row.
template <class MakeBox>
Region betweenSides(MakeBox box) {
    return on("surface", [=](const Call &call) {
        const tagRECT clip = call["clip"].rect();
        return common(Box{clip.left + 1LL, clip.top + 1LL, clip.right, clip.bottom}, box(call));
    });
}
std::int64_t radiusOf(const Call &call) {
    return call["radius"].whole();
}
std::int64_t radiusOfBall(const Call &call) {
    return radiusOf(call) < 0 ? radiusOf(call) : std::clamp<std::int64_t>(radiusOf(call), 1, 256);
}
std::int64_t reachOfBand(const Call &call) {
    return radiusOf(call) + 2 * std::int64_t{call["thickness"].whole()};
}
const Region disc = on("surface", aroundCentre(radiusOf));
const Region clippedDisc = on("surface", inside("clip", aroundCentre(radiusOf)));

/// Any radius that fits, and at times one below 0.
void arrangeDisc(Call &call, Random &random) {
    const int radius = random.between(-1, roomIn(call["surface"].plane()));
    call["radius"] = radius;
    place(call, random, {"cx", "cy"}, std::max(radius, 1), std::max(radius, 1));
}
/// Anywhere over and beyond the clip; at times so large that only the rim crosses the surface.
void arrangeClippedDisc(Call &call, Random &random) {
    const Plane &plane = call["surface"].plane();
    const bool large = random.oneIn(16);
    const int radius = large ? random.between(40, 500) : random.between(-1, random.oneIn(8) ? 40 : 14);
    const int direction = large ? random.between(-1, 1) : 0;
    call["radius"] = radius;
    call["cx"] = random.between(-10, plane.width() + 9) + direction * radius;
    call["cy"] = random.between(-10, plane.height() + 9);
    openClipSometimes(call, random, 3);
}
/// Some squares beyond 32 bits, too.
void arrangeFilledDisc(Call &call, Random &random) {
    arrangeClippedDisc(call, random);
    if (random.oneIn(16)) {
        const int radius = random.between(30000, 70000);
        call.set({{"radius", radius}, {"cx", random.between(-20, 20) - radius}});
    }
    if (call.row().argument("alpha"))
        call["alpha"] = random.oneIn(4) ? static_cast<int>(random.word()) : random.between(0, 256);
}
void arrangeOutline(Call &call, Random &random) {
    arrangeDisc(call, random);
    call["thickness"] = random.between(-2, 2 * call["radius"].whole() + 4);
}
void arrangeBand(Call &call, Random &random) {
    const int reach = random.between(1, roomIn(call["surface"].plane()));
    const int thickness = random.between(1, 3);
    call.set({{"thickness", thickness}, {"radius", reach - 2 * thickness}});
    place(call, random, {"cx", "cy"}, reach, reach);
}
void arrangeClippedBand(Call &call, Random &random) {
    arrangeClippedDisc(call, random);
    call["radius"] = std::min(call["radius"].whole(), 141);
    call["thickness"] = random.between(1, random.oneIn(4) ? 20 : 4);
}
void chooseIntensity(Call &call, Random &random) {
    call["intensity"] = random.oneIn(4) ? random.word() : static_cast<double>(random.between(0, 300));
}

/// What glows: its largest radius, and the intensity that is the full colour.
Row glowing(std::string_view unit, Row row, double largest, double full) {
    const bool isClipped = row.name.ends_with("_Safe");
    const Arguments light = {meant(radiusUpTo(largest), {1, largest}), colour(),
                             number("intensity", "1", anyWord, {full, 2 * full})};
    row.arguments = (isClipped ? clippedStar : centred) + light;
    row.topByte = cleared;
    row.sums = saturate;
    row.fractions = cutOff;
    row.readsTables = row.name != "Draw_Ring" && row.name != "Draw_Star_Type3";
    row.arrange = inTurn(isClipped ? arrangeClippedDisc : arrangeDisc, chooseIntensity);
    return figure(unit, mixed(std::move(row)));
}
/// Without its last column and row.
Row spot(std::string_view unit, Row row, double largest, double full) {
    row.writes = on("surface", [](const Call &call) {
        const std::int64_t reach = radiusOf(call);
        return boxOf(call["cx"].whole() - reach, call["cy"].whole() - reach, 2 * reach, 2 * reach);
    });
    return glowing(unit, std::move(row), largest, full);
}
Row clippedSpot(std::string_view unit, Row row, double full) {
    row.writes =
        betweenSides(aroundCentre([](const Call &call) { return std::min<std::int64_t>(radiusOf(call), 256); }));
    return glowing(unit, std::move(row), anyInt.high, full);
}

// Ellipses around a box

/// The clip, and the column of the vertical axis from row 0 on.
Areas clipAndColumn(const Call &call) {
    const tagRECT clip = call["clip"].rect();
    const tagRECT box = call["box"].rect();
    if (Box(clip).isEmpty())
        return {};
    const int axis = plain::int32(std::int64_t{box.left} + box.right) >> 1;
    const q_long column = std::clamp<q_long>(axis, clip.left, clip.right - 1);
    return {{"surface", clip}, {"surface", {column, 0, column + 1, clip.bottom}}};
}
void arrangeEllipse(Call &call, Random &random) {
    if (random.oneIn(2)) { // around the middle
        const Plane &plane = call["surface"].plane();
        const tagPOINT middle = {plane.width() / 2, plane.height() / 2};
        call["box"] =
            tagRECT{random.between(-2, static_cast<int>(middle.x)), random.between(-2, static_cast<int>(middle.y)),
                    middle.x + random.between(1, 8), middle.y + random.between(1, 8)};
        return;
    }
    const int left = random.between(-20, 20);
    const int top = random.between(-20, 20);
    call["box"] = tagRECT{left, top, left + random.between(-2, 30), top + random.between(-2, 30)};
}
const Rule isWithinFormat = {"{box} is 2048 pixels wide or wider, beyond the format of positions",
                             [](const Call &call) { return Box(call["box"].rect()).width() < 2048; }};
/// Its box in the middle grows wide and flat.
Row ellipse(Row row) {
    row.arguments = surface + itsPitch + itsClip + rectangle("box", "surface") + row.arguments;
    row.arrange = inTurn(arrangeEllipse, row.arrange);
    row.scenes = {{.set = [](Call &call, const Stage &stage) {
        const int w = static_cast<int>(stage.height * (0.15 + 0.3 * stage.time));
        const int h = static_cast<int>(stage.height * (0.3 - 0.2 * stage.time));
        call["box"] = tagRECT{stage.width / 2 - w, stage.height / 2 - h, stage.width / 2 + w, stage.height / 2 + h};
    }}};
    return figure("ellipses", std::move(row));
}

// Stars of two spikes

Areas spikes(const Call &call) {
    const Box clip = call["clip"].rect();
    const std::int64_t x = call["x"].whole();
    const std::int64_t y = call["y"].whole();
    const std::int64_t size = call["size"].whole();
    if (x < clip.left || x >= clip.right - 1 || y < clip.top || y >= clip.bottom - 1)
        return {};
    return {{"surface", common(clip, Box{x - size, y, x + size + 1, y + 1})},
            {"surface", common(clip, Box{x, y - size, x + 1, y + size + 1})}};
}
void arrangeSpikes(Call &call, Random &random) {
    const Plane &plane = call["surface"].plane();
    const auto about = [&](int extent) {
        return random.oneIn(4) ? random.between(-10, extent + 9) : random.between(0, extent);
    };
    call.set({{"x", about(plane.width())}, {"y", about(plane.height())}});
    call["size"] = random.between(-1, random.oneIn(8) ? 40 : 14);
    for (const auto channel : {"red", "green", "blue"})
        call[channel] = random.oneIn(10) ? random.between(-600, 900) : random.between(0, 255);
    openClipSometimes(call, random, 2);
}

// Quads

constexpr std::string_view corners[] = {"p0", "p1", "p2", "p3"};

/// A corner that lies further from another than 18 fraction bits and a sign leave room for may be joined to it by way
/// of any column.
Box quadBox(const Call &call) {
    const auto p = [&call](std::size_t i) { return call[corners[i]].point(); };
    const auto [left, right] = std::minmax<std::int64_t>({p(0).x, p(1).x, p(2).x, p(3).x});
    const auto [top, bottom] = std::minmax<std::int64_t>({p(0).y, p(1).y, p(2).y, p(3).y});
    constexpr std::int64_t end = 8192;
    constexpr std::int64_t anywhere = std::int64_t{1} << 32;
    if (right - left < end && bottom - top < end)
        return {left, top, right + 1, bottom + 1};
    return {-anywhere, top, anywhere, bottom + 1};
}
void arrangeQuad(Call &call, Random &random) {
    const int reach = random.oneIn(16) ? 4000 : random.oneIn(4) ? 200 : 30;
    for (const std::string_view corner : corners)
        call[corner] = tagPOINT{random.between(-reach, reach), random.between(-reach, reach)};
    if (random.oneIn(4))
        call["p1"].point().y = call["p0"].point().y;
    call["color"] = Plane::of(random.pixel());
}
void turningQuad(Call &call, const Stage &stage) {
    for (std::size_t i = 0; i < 4; ++i) {
        const double angle = quarterTurn * (stage.time + static_cast<double>(i));
        call[corners[i]] = tagPOINT{stage.width / 2 + static_cast<int>(0.45 * stage.height * std::cos(angle)),
                                    stage.height / 2 + static_cast<int>(0.3 * stage.height * std::sin(angle))};
    }
    call["color"] = Plane::of(q_ulong{0xFFB060});
}

// On which side of a line a point lies

const std::initializer_list<std::string_view> coordinates = {"px", "py", "ax", "ay", "bx", "by"};

/// Small numbers, any, and those whose products end where 32 bits do.
void arrangeSide(Call &call, Random &random) {
    const int kind = random.between(0, 3);
    for (const std::string_view name : coordinates)
        call[name] = Plane::of(kind == 0   ? random.between(-100, 100)
                               : kind == 1 ? static_cast<int>(random.word())
                                           : random.between(-2, 1) * (1 << (kind == 2 ? 15 : 30)));
}
Row side(Row row) {
    row.arguments = each(coordinates, numbers("", "pixels"));
    row.reads = [](const Call &) {
        Areas all;
        for (const std::string_view name : coordinates)
            all.push_back(words(name, 1));
        return all;
    };
    row.sums = wrap;
    row.arrange = arrangeSide;
    row.figure = Figure::side;
    row.picture = Scene{.set = [](Call &call, const Stage &stage) {
        const int numbers[] = {static_cast<int>(stage.along({0.2, 0.8}) * stage.width),
                               stage.height / 2,
                               stage.width * 3 / 8,
                               stage.height * 7 / 8,
                               stage.width * 5 / 8,
                               stage.height / 8};
        for (std::size_t i = 0; i < 6; ++i)
            call[i] = Plane::of(numbers[i]);
    }};
    row.scenes = {{.set = [](Call &call, const Stage &stage) {
        const int numbers[] = {static_cast<int>(stage.time * stage.width), 40, 30, 0, 60, 100};
        for (std::size_t i = 0; i < 6; ++i)
            call[i] = Plane::of(numbers[i]);
    }}};
    return figure("points", std::move(row));
}

// Bubbles

Row resource(Row row) {
    row.arguments = surface + itsPitch + each({"x", "y"}, position("", "surface", {0, 0})) +
                    radius("size", {anyInt.low, 5793}, {160, 160}) + choice("secondHighlight", anyInt, 1);
    row.writes = on("surface", [](const Call &call) {
        const int size = call["size"].whole();
        return size < 2 ? Box() : boxOf(call["x"].whole(), call["y"].whole(), size, size);
    });
    row.topByte = cleared;
    row.fractions = notCounted;
    row.arrange = [](Call &call, Random &random) {
        const int size = random.between(-1, random.oneIn(8) ? 16 : 9);
        call["size"] = size;
        place(call, random, {"x", "y"}, 0, std::max(size, 1) - 1);
        call["secondHighlight"] = random.between(-1, 1);
    };
    row.scenes = {{}};
    return row;
}

/// The square around a bubble as far as it lies on the surface.
Box bubbleBox(const Call &call) {
    const std::int64_t size = call["size"].whole();
    const std::int64_t half = size >> 1;
    return common(frameOf(call), boxOf(call["cx"].whole() - half, call["cy"].whole() - half, size, size));
}
/// A word of the scratch for each pixel of the disc in the square.
Box scratchWords(const Call &call) {
    const Box box = bubbleBox(call);
    const std::int64_t cx = call["cx"].whole();
    const std::int64_t cy = call["cy"].whole();
    const std::int64_t radius = call["size"].whole() >> 1;
    std::int64_t words = 0;
    if (!call["surface"].plane().holds(box))
        return {};
    for (std::int64_t y = box.top - cy; y < box.bottom - cy; ++y)
        for (std::int64_t x = box.left - cx; x < box.right - cx; ++x)
            words += x * x + y * y < radius * radius;
    return {0, 0, words, 1};
}
/// Where rays come from: at the rim they are bent outward, to 164 / 128 of their distance.
Box refracted(const Call &call) {
    const std::int64_t reach = (call["size"].whole() >> 1) * std::int64_t{164} / 128 + 1;
    const Box seen = common(frameOf(call), around(call["cx"].whole(), call["cy"].whole(), reach));
    return bubbleBox(call).isEmpty() ? Box() : seen;
}

/// A bubble's resource has rows as long as it is wide, or as those of the surface.
enum class Rows { ofResource, ofSurface };

/// Words up to the largest highlight, tint and light that are rendered, or any.
void arrangeBubble(Call &call, Random &random, Rows rows) {
    const Plane &plane = call["surface"].plane();
    const int size = random.between(1, 12);
    const q_ulong kept = random.oneIn(4) ? 0xFFFFFFFF : 0x00C77FFF;
    call["resource"] = Plane::array<q_ulong>(size * (rows == Rows::ofSurface ? plane.pitch() : size),
                                             [&](int) { return random.word() & kept; });
    call["resourceSize"] = size;
    call["size"] = random.between(-1, random.oneIn(32) ? 60 : 24);
    call.set({{"cx", random.between(-10, plane.width() + 10)}, {"cy", random.between(-10, plane.height() + 10)}});
    call["width"] = plane.width() - (random.oneIn(4) ? random.between(0, 3) : 0);
    call["height"] = plane.height() - (random.oneIn(4) ? random.between(0, 3) : 0);
    if (call.row().argument("scratch"))
        call["scratch"] = Plane(4, 16 * 16, 1);
}
/// A rendered resource in place of a picture.
void setResource(Call &call, const Stage &stage, Rows rows) {
    const int size = std::min({stage.width, stage.height, 200});
    const int rowLength = rows == Rows::ofSurface ? call["surface"].plane().pitch() : size;
    Plane rendered(4, rowLength * size, 1);
    MakeBubbleResource(rendered.as<q_ulong>(), rowLength, 0, 0, size, 1);
    call.set({{"resource", std::move(rendered)}, {"resourceSize", size}});
    call.set({{"width", stage.width}, {"height", stage.height}});
}
Row bubble(Row row, double largestSize, double largestResource, Rows rows = Rows::ofResource) {
    row.arguments = surface + row.arguments + itsPitch + centre + radius("size", {anyInt.low, largestSize}, {60, 150}) +
                    source("resource") + extent("resourceSize", "resource", {1, largestResource}) + colour("color") +
                    extent("width", "surface") + extent("height", "surface");
    row.writes = on("surface", bubbleBox);
    row.reads = on("resource", [rows](const Call &call) -> Box {
        const std::int64_t size = call["resourceSize"].whole();
        const std::int64_t rowLength = rows == Rows::ofSurface ? call["surface"].plane().pitch() : size;
        const auto [low, high] = std::minmax<std::int64_t>({0, (size - 1) * rowLength}); // it may be bottom-up, too
        return bubbleBox(call).isEmpty() ? Box() : Box{low, 0, high + size, 1};
    });
    if (row.argument("scratch")) {
        row.writes = row.writes + on("scratch", scratchWords);
        row.reads = on("surface", refracted) + row.reads;
    }
    row.overlap = Overlap::rowOrder;
    row.topByte = cleared;
    row.sums = saturate;
    row.fractions = notCounted;
    row.arrange = [rows](Call &call, Random &random) { arrangeBubble(call, random, rows); };
    row.scenes = {{.set = [rows](Call &call, const Stage &stage) { setResource(call, stage, rows); }}};
    return figure("bubbles", std::move(row));
}

} // namespace

std::vector<Row> drawRows() {
    using Line = void(q_ulong *, tagRECT *, int, int, int, int, int, q_ulong);
    using WideLine = void(q_ulong *, tagRECT *, int, int, int, int, int, q_ulong, int);
    return {
        mixed(dotted({Q_MUR_FUNCTION(Draw_Pixel_Add), .sentence = "Adds a colour to a pixel.", .writes = dot}, 0)),
        mixed(line({Q_MUR_OVERLOAD(iLine_AntiAliasing, Line), .sentence = "Draws an anti-aliased line, one pixel wide.",
                    .arguments = blendedLine, .writes = lineInClip([](const Call &) { return 1; }), .topByte = cleared,
                    .sums = stayInside, .fractions = cutOff, .uniform = stays, .arrange = arrangeBlended})),
        wideLine({Q_MUR_OVERLOAD(iLine_AntiAliasing, WideLine), .label = "wide",
                  .sentence = "Draws an anti-aliased line of any width.", .topByte = setByColour, .sums = stayInside,
                  .fractions = cutOff, .uniform = stays}),
        wideLine({Q_MUR_FUNCTION(iLine_AntiAliasing_Alpha),
                  .sentence = "Draws an anti-aliased line at one eighth of full strength.", .topByte = cleared,
                  .sums = stayInside, .fractions = cutOff, .uniform = darkens}),
        wideLine({Q_MUR_FUNCTION(iLine_AntiAliasing_Add), .sentence = "Adds an anti-aliased line.",
                  .topByte = disturbsRed, .sums = saturate, .fractions = cutOff}),
        wideLine(
            {Q_MUR_FUNCTION(iLine_AntiAliasing_Max),
             .sentence = "Draws an anti-aliased line wherever it is brighter than the picture, channel by channel.",
             .topByte = disturbsRed, .sums = stayInside, .fractions = cutOff, .uniform = stays}),
        wideLine({Q_MUR_FUNCTION(iLine_AntiAliasing_AddSome),
                  .sentence =
                      "Adds the edges of an anti-aliased line that fades from its first end to nothing at the other.",
                  .topByte = disturbsRed, .sums = saturate, .fractions = cutOff}),
        line({Q_MUR_FUNCTION(DDLine_Fat),
              .sentence = "Draws a shaded tube, from white in its middle through the colour to black.",
              .arguments =
                  surface + itsClip + itsPitch + ends(walkedEnds) + colour() + radius("halfWidth", {0, 4095}, {2, 12}),
              .writes = tube, .topByte = cleared, .fractions = notCounted, .arrange = arrangeTube,
              .waived = {{"clips_hold_at_the_ends_of_numbers", "the middle lies where the line does"}}}),
        line({Q_MUR_FUNCTION(DDLine_Color_Change),
              .sentence = "Draws a line that changes from one colour towards another.",
              .arguments = surface + itsPitch + ends(walkedEnds) + each({"colour1", "colour2"}, colour()),
              .writes = on("surface", lineBox), .topByte = setByColour, .sums = {wrap, stayInside, stayInside},
              .fractions = notCounted, .uniform = stays, .arrange = arrangeEndsInside}),
        mixed(line({Q_MUR_FUNCTION(iLineAddSome), .sentence = "Adds a line that fades to nothing.",
                    .arguments = surface + itsPitch + ends(walkedEnds) + colour() +
                                 each({"width", "height"}, extent("", "surface")),
                    .writes = on("surface", [](const Call &call) { return common(frameOf(call), lineBox(call)); }),
                    .topByte = cleared, .sums = saturate, .fractions = roundedUp, .arrange = arrangeLineOnSurface})),
        figure("circles", {Q_MUR_FUNCTION(Draw_Circle_FillInside), .sentence = "Fills a disc.",
                           .arguments = centred + radiusUpTo(anyInt.high) + colour(), .writes = disc,
                           .topByte = setByColour, .arrange = arrangeDisc}),
        figure("circles", {Q_MUR_FUNCTION(Draw_Circle_NoFillInside), .sentence = "Draws a circle of any thickness.",
                           .arguments = centred + radiusUpTo(32767) + thicknessWithin(anyInt) + colour(),
                           .writes = disc, .topByte = setByColour, .arrange = arrangeOutline}),
        figure("circles", {Q_MUR_FUNCTION(iFill_Circle_Safe), .sentence = "Fills a disc inside a clip.",
                           .arguments = clippedCircle + radiusUpTo(anyInt.high - 1) + colour(), .writes = clippedDisc,
                           .topByte = setByColour, .arrange = arrangeFilledDisc}),
        figure("circles", mixed({Q_MUR_FUNCTION(iFill_Circle_Alpha),
                                 .sentence = "Blends a disc inside a clip with one alpha for all pixels.",
                                 .arguments = clippedCircle + radiusUpTo(anyInt.high - 1) + colour() +
                                              meant(number("alpha", "1/256", anyInt, {40, 200}), {0, 256}),
                                 .writes = clippedDisc, .topByte = cleared, .sums = wrap, .fractions = cutOff,
                                 .uniform = stays, .arrange = arrangeFilledDisc})),
        figure("circles", mixed({Q_MUR_FUNCTION(Draw_Bubble_Circle),
                                 .sentence = "Blends a disc that is clear at its centre and solid at its rim.",
                                 .arguments = clippedCircle + radiusBeyond(32767) + colour(), .writes = clippedDisc,
                                 .topByte = cleared, .sums = stayInside, .fractions = cutOff, .uniform = stays,
                                 .arrange = arrangeClippedDisc})),
        figure("circles", {Q_MUR_FUNCTION(Draw_Metal_Circle),
                           .sentence = "Fills a disc that goes from white at its centre to the colour at its rim.",
                           .arguments = centred + radiusUpTo(32767) + colour(), .writes = disc, .topByte = disturbsRed,
                           .fractions = notCounted, .arrange = arrangeDisc}),
        figure("circles",
               mixed({Q_MUR_FUNCTION(Draw_Anti_Aliasing_Circle_NoFillInside),
                      .sentence = "Blends a soft band around a circle.", .arguments = centred + softBand,
                      .writes = on("surface", aroundCentre(reachOfBand)), .topByte = disturbsRed, .sums = stayInside,
                      .fractions = cutOff, .uniform = stays, .readsTables = true, .arrange = arrangeBand})),
        spot("rings", {Q_MUR_FUNCTION(Draw_Ring), .sentence = "Adds a soft ring inside a circle."}, 32767, 128),
        figure("rings",
               mixed({Q_MUR_FUNCTION(Draw_Ring_Safe), .sentence = "Adds a soft band around a circle inside a clip.",
                      .arguments = clippedStar + softBand,
                      .writes = on("surface", inside("clip", aroundCentre(reachOfBand))), .topByte = disturbsRed,
                      .sums = saturate, .fractions = cutOff, .readsTables = true, .arrange = arrangeClippedBand})),
        ellipse({Q_MUR_FUNCTION(Draw_Outer_Ellipse_NoFillInside),
                 .sentence = "Draws the outline of the ellipse through the corners of a box.",
                 .arguments = {thicknessWithin(anyInt), colour()}, .writes = on("surface", "clip"),
                 .meant = {isWithinFormat}, .topByte = setByColour, .arrange = chooseWhole({"thickness"}, -1, 20)}),
        mixed(ellipse({Q_MUR_FUNCTION(Draw_Outer_Ellipse_AlphaFast),
                       .sentence = "Fills the ellipse through the corners of a box at half strength.",
                       .arguments = {unused("unused"), colour()}, .writes = clipAndColumn, .topByte = cleared,
                       .sums = stayInside, .fractions = cutOff, .uniform = darkens,
                       .waived = {{"clips_hold_at_the_ends_of_numbers", "the axis is drawn from row 0 on"},
                                  {"places_are_bounded_by_clips_alone", "the axis is drawn from row 0 on"}}})),
        spot("stars", {Q_MUR_FUNCTION(Draw_Star_Type1), .sentence = "Adds a star with four spikes."}, 362, 64),
        clippedSpot("stars",
                    {Q_MUR_FUNCTION(Draw_Star_Type1_Safe),
                     .sentence = "Adds a star with four spikes between the sides of a clip."},
                    64),
        // Without its first column and row either.
        glowing("stars",
                {Q_MUR_FUNCTION(Draw_Star_Type2), .sentence = "Adds a star with four spikes and a brighter cross.",
                 .writes = on("surface", aroundCentre([](const Call &call) { return radiusOf(call) - 1; }))},
                362, 64),
        spot("stars", {Q_MUR_FUNCTION(Draw_Star_Type3), .sentence = "Adds a diamond with a sharp core."}, anyInt.high,
             32),
        spot("lights", {Q_MUR_FUNCTION(Draw_Light), .sentence = "Adds a round light."}, 362, 128),
        clippedSpot("lights",
                    {Q_MUR_FUNCTION(Draw_Light_Safe), .sentence = "Adds a round light between the sides of a clip."},
                    128),
        figure("balls", {Q_MUR_FUNCTION(Draw_3DBall), .sentence = "Draws an opaque ball, lit from the upper left.",
                         .arguments = centred + radiusUpTo(anyInt.high) + colour() + unused("unused"),
                         .writes = on("surface", aroundCentre(radiusOfBall)), .topByte = cleared, .sums = saturate,
                         .fractions = cutOff, .arrange = arrangeDisc}),
        figure("balls", {Q_MUR_FUNCTION(Draw_3DBall_Safe),
                         .sentence = "Draws an opaque ball, lit from the upper left, between the sides of a clip.",
                         .arguments = clippedStar + radiusUpTo(anyInt.high) + colour() + unused("unused"),
                         .writes = betweenSides(aroundCentre(radiusOfBall)), .topByte = cleared, .sums = saturate,
                         .fractions = cutOff, .arrange = arrangeClippedDisc}),
        figure("lights",
               mixed({Q_MUR_FUNCTION(Draw_Circle_Light),
                      .sentence = "Blends a disc that is solid at its centre and clear at its rim.",
                      .arguments = centred + radiusUpTo(32767) + channels(anyByte), .writes = disc,
                      .topByte = disturbsRed, .sums = stayInside, .fractions = cutOff, .arrange = arrangeDisc})),
        figure("stars",
               mixed({Q_MUR_FUNCTION(Draw_One_Star_Add),
                      .sentence = "Adds a horizontal and a vertical spike, one pixel wide.",
                      .arguments = surface + itsPitch + itsClip + position("x", "surface", {0.3, 0.7}) +
                                   position("y", "surface") + radius("size", anyInt, {20, 80}) + channels(anyInt),
                      .writes = spikes, .topByte = cleared, .sums = saturate, .fractions = roundedUp,
                      .arrange = arrangeSpikes})),
        mixed(dotted({Q_MUR_FUNCTION(Draw_Cross), .sentence = "Adds a colour to the nine pixels of a cross.",
                      .writes = dotGrown(2, 0, 2, 0) + dotGrown(0, 2, 0, 2)},
                     2)),
        dotted({Q_MUR_FUNCTION(Draw_Cross_Fast),
                .sentence = "Adds a colour to a pixel and writes the sum over a cross without its right tip.",
                .writes = dotGrown(2, 0, 1, 0) + dotGrown(0, 2, 0, 2), .reads = dot},
               2),
        figure("quads", {Q_MUR_FUNCTION(Rect_Safe), .sentence = "Fills a convex shape of four corners inside a clip.",
                         .arguments = surface + itsClip + itsPitch +
                                      each({"p0", "p1", "p2", "p3"}, point("", "surface")) + colours("color"),
                         .writes = on("surface", inside("clip", quadBox)), .reads = always({words("color", 1)}),
                         .topByte = setByColour, .arrange = arrangeQuad, .scenes = {{.set = turningQuad}}}),
        side({Q_MUR_FUNCTION(DecisionLine2), .sentence = "Tells on which side of a line a point lies.",
              .aliases = {"DecisionLines", "VKD_DecisionLines"}}),
        side({Q_MUR_FUNCTION(DecisionLine),
              .sentence = "Tells on which side of a line a point lies, with the factors turned round.",
              .looksLike = "Answers as `DecisionLine2()` does, but where a product leaves 32 bits."}),
        resource({Q_MUR_FUNCTION(MakeBubbleResource),
                  .sentence = "Renders a bubble's resource: a sphere with light and highlight at the upper left."}),
        resource({Q_MUR_FUNCTION(MakeBubbleResource2),
                  .sentence = "Renders a bubble's resource from spots of light of a fixed extent."}),
        bubble({Q_MUR_FUNCTION(DrawRealBubble),
                .sentence = "Draws a glass bubble that refracts the picture behind it, with a soft rim.",
                .arguments = {scratch()}, .readsTables = true},
               181, 8191),
        bubble({Q_MUR_FUNCTION(DrawRealBubbleOld),
                .sentence = "Draws a glass bubble with a hard rim from a resource in an image as wide as the surface.",
                .arguments = {scratch()},
                .waived = {{"pictures_stored_bottom_up", "its resource has the surface's pitch"}}},
               65535, 32767, Rows::ofSurface),
        bubble({Q_MUR_FUNCTION(DrawReal3DBall), .sentence = "Draws a solid ball from a bubble's resource."}, 65535,
               2047),
    };
}

} // namespace catalogue
