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

using Arguments = std::vector<Argument>;

Arguments joined(Arguments first, const Arguments &then) {
    first.insert(first.end(), then.begin(), then.end());
    return first;
}

Box clipOf(const Call &call) {
    return call["clip"].rect();
}

/// How far a shape may reach to each side of a centre, so that it fits into the surface with its margins.
int roomIn(const Plane &surface) {
    return (std::min(surface.width(), surface.height()) + 2 * Plane::usualMargin - 1) / 2;
}

/// A column or row that has so many before it and behind it, margins included.
int anyPlace(Random &random, int extent, int before, int behind) {
    return random.between(before - Plane::usualMargin, extent + Plane::usualMargin - 1 - behind);
}

// Single pixels and crosses

Arguments dotArguments() {
    return {destination("surface"), pitch("pitch", "surface"), position("x", "surface", {0.3, 0.7}),
            position("y", "surface"), colour()};
}
Box boxAtDot(const Call &call, int left, int up, int right, int down) {
    return grown(boxOf(call["x"].whole(), call["y"].whole(), 1, 1), left, up, right, down);
}
Areas dot(const Call &call) {
    return {{"surface", boxAtDot(call, 0, 0, 0, 0)}};
}
Areas cross(const Call &call) {
    return {{"surface", boxAtDot(call, 2, 0, 2, 0)}, {"surface", boxAtDot(call, 0, 2, 0, 2)}};
}
Areas crossWithoutRightTip(const Call &call) {
    return {{"surface", boxAtDot(call, 2, 0, 1, 0)}, {"surface", boxAtDot(call, 0, 2, 0, 2)}};
}
template <int reach>
void arrangeDot(Call &call, Random &random) {
    const Plane &surface = call["surface"].plane();
    call["x"] = anyPlace(random, surface.width(), reach, reach);
    call["y"] = anyPlace(random, surface.height(), reach, reach);
}

// Lines

Arguments lineEnds(Range contract) {
    Arguments ends = {position("x1", "surface"), position("y1", "surface"), position("x2", "surface"),
                      position("y2", "surface")};
    for (Argument &end : ends)
        end.contract = contract;
    return ends;
}

/// The ends' differences stay within a 24.8 number.
constexpr Range fixedPointEnds = {-4194303, 4194303};
/// Lines are walked from end to end, what lies outside included.
constexpr Range walkedEnds = {-16383, 16383};

Arguments thinLineArguments() {
    return joined(
        joined({destination("surface"), clip("clip", "surface"), pitch("pitch", "surface")}, lineEnds(fixedPointEnds)),
        {colour()});
}
Arguments wideLineArguments() {
    return joined(thinLineArguments(), {radius("width", {-4096, 4096}, {1, 9})});
}

Box ownLineBox(const Call &call) {
    const auto [left, right] = std::minmax({call["x1"].whole(), call["x2"].whole()});
    const auto [top, bottom] = std::minmax({call["y1"].whole(), call["y2"].whole()});
    return {left, top, right + std::int64_t{1}, bottom + std::int64_t{1}};
}
Areas insideClip(const Call &call, int reach) {
    return {{"surface", common(clipOf(call), grown(ownLineBox(call), reach, reach, reach, reach))}};
}
Areas thinLine(const Call &call) {
    return insideClip(call, 1);
}
Areas wideLineBox(const Call &call) {
    return insideClip(call, std::abs(call["width"].whole()) / 2 + 1);
}
void setEnds(Call &call, int x1, int y1, int x2, int y2) {
    call["x1"] = x1, call["y1"] = y1, call["x2"] = x2, call["y2"] = y2;
}
/// Ends around the surface, and some far away.
void scatterEnds(Call &call, Random &random, int farthest) {
    const int reach = random.oneIn(16) ? farthest : 28;
    for (const auto end : {"x1", "y1", "x2", "y2"})
        call[end] = random.between(8 - reach, 8 + reach);
}
void arrangeEnds(Call &call, Random &random) {
    scatterEnds(call, random, 70000);
    if (random.oneIn(2))
        call["clip"] = call["surface"].plane().rect();
}
void arrangeWideLine(Call &call, Random &random) {
    arrangeEnds(call, random);
    call["width"] = random.between(random.oneIn(8) ? -3 : 0, 6);
}

/// A line through the middle that turns once.
void turningLine(Call &call, const Stage &stage) {
    const double angle = 6.2831853 * stage.time + 0.4;
    const int dx = static_cast<int>(0.4 * stage.height * std::cos(angle));
    const int dy = static_cast<int>(0.4 * stage.height * std::sin(angle));
    setEnds(call, stage.width / 2 - dx, stage.height / 2 - dy, stage.width / 2 + dx, stage.height / 2 + dy);
}
template <int width>
void turningLineOfWidth(Call &call, const Stage &stage) {
    turningLine(call, stage);
    call["width"] = width;
}
std::vector<Scene> lineScenes() {
    return {{"", turningLine, 1, "lines"}};
}
std::vector<Scene> wideLineScenes() {
    return {{"", turningLineOfWidth<1>, 1, "lines"}, {"of width 3", turningLineOfWidth<3>, 1, "lines"}};
}

/// The side shades inside the clip, the centres wherever they lie across the line.
Areas tube(const Call &call) {
    const tagRECT clip = call["clip"].rect();
    const Box box = ownLineBox(call);
    const int reach = call["halfWidth"].whole();
    const bool alongX = box.width() > box.height();
    const std::int64_t x1 = call["x1"].whole();
    const std::int64_t y1 = call["y1"].whole();
    if (alongX ? x1 < clip.left || x1 >= clip.right : y1 < clip.top || y1 >= clip.bottom)
        return {};
    const Box centres = common(box, alongX ? Box{clip.left, box.top, clip.right, box.bottom}
                                           : Box{box.left, clip.top, box.right, clip.bottom});
    return {{"surface", centres},
            {"surface",
             common(clipOf(call), alongX ? grown(centres, 0, reach, 0, reach) : grown(centres, reach, 0, reach, 0))}};
}
/// Ends on the surface and its margin, at times the same.
void arrangeEndsInside(Call &call, Random &random) {
    const Plane &surface = call["surface"].plane();
    const int x1 = anyPlace(random, surface.width(), 0, 0);
    const int y1 = anyPlace(random, surface.height(), 0, 0);
    const int x2 = random.oneIn(20) ? x1 : anyPlace(random, surface.width(), 0, 0);
    const int y2 = random.oneIn(20) ? y1 : anyPlace(random, surface.height(), 0, 0);
    setEnds(call, x1, y1, x2, y2);
}
void arrangeTube(Call &call, Random &random) {
    arrangeEndsInside(call, random);
    call["halfWidth"] = random.oneIn(32) ? random.between(10, 4095) : random.between(0, 9);
}
Areas unclippedLine(const Call &call) {
    return {{"surface", ownLineBox(call)}};
}
Areas lineOnSurface(const Call &call) {
    return {{"surface", common(boxOf(0, 0, call["width"].whole(), call["height"].whole()), ownLineBox(call))}};
}
void arrangeLineOnSurface(Call &call, Random &random) {
    scatterEnds(call, random, 2000);
    const Plane &surface = call["surface"].plane();
    call["width"] = random.between(-1, surface.width());
    call["height"] = random.between(-1, surface.height());
}

// Round shapes

Arguments centre() {
    return {position("cx", "surface", {0.5, 0.5}), position("cy", "surface", {0.5, 0.5})};
}
Arguments centred(const Arguments &then) {
    return joined(joined({destination("surface"), pitch("pitch", "surface")}, centre()), then);
}
/// Clip and pitch, in the order of the circles.
Arguments clippedCircle(const Arguments &then) {
    return joined(joined({destination("surface"), clip("clip", "surface"), pitch("pitch", "surface")}, centre()), then);
}
/// The same in that of the rings and stars.
Arguments clippedStar(const Arguments &then) {
    return joined(joined({destination("surface"), pitch("pitch", "surface"), clip("clip", "surface")}, centre()), then);
}

Argument radiusUpTo(double highest) {
    return radius("radius", {anyInt.low, highest}, {20, 70});
}
Argument thicknessWithin(Range contract) {
    return radius("thickness", contract, {2, 8});
}
Argument intensity(double full) {
    return number("intensity", "1", anyWord, {full, 2 * full});
}

Box aroundCentre(const Call &call, std::int64_t reach) {
    return around(call["cx"].whole(), call["cy"].whole(), reach);
}
Areas disc(const Call &call) {
    return {{"surface", aroundCentre(call, call["radius"].whole())}};
}
Areas clippedDisc(const Call &call) {
    return {{"surface", common(clipOf(call), aroundCentre(call, call["radius"].whole()))}};
}
/// Without its last column and row.
Areas halfOpenDisc(const Call &call) {
    const std::int64_t reach = call["radius"].whole();
    return {{"surface", boxOf(call["cx"].whole() - reach, call["cy"].whole() - reach, 2 * reach, 2 * reach)}};
}
/// Without its first column and row either.
Areas openDisc(const Call &call) {
    return {{"surface", aroundCentre(call, call["radius"].whole() - std::int64_t{1})}};
}
/// Inside the clip, but for its first column and row.
Areas insideSides(const Call &call, std::int64_t reach) {
    const tagRECT clip = call["clip"].rect();
    const Box inner = {clip.left + std::int64_t{1}, clip.top + std::int64_t{1}, clip.right, clip.bottom};
    return {{"surface", common(inner, aroundCentre(call, reach))}};
}
Areas strictlyClippedDisc(const Call &call) {
    return insideSides(call, std::min(call["radius"].whole(), 256));
}
std::int64_t ballRadius(const Call &call) {
    const int radius = call["radius"].whole();
    return radius < 0 ? radius : std::clamp(radius, 1, 256);
}
Areas ball(const Call &call) {
    return {{"surface", aroundCentre(call, ballRadius(call))}};
}
Areas strictlyClippedBall(const Call &call) {
    return insideSides(call, ballRadius(call));
}
std::int64_t bandReach(const Call &call) {
    return call["radius"].whole() + 2 * std::int64_t{call["thickness"].whole()};
}
Areas band(const Call &call) {
    return {{"surface", aroundCentre(call, bandReach(call))}};
}
Areas clippedBand(const Call &call) {
    return {{"surface", common(clipOf(call), aroundCentre(call, bandReach(call)))}};
}

void fitCentre(Call &call, Random &random, int reach) {
    const Plane &surface = call["surface"].plane();
    call["cx"] = anyPlace(random, surface.width(), reach, reach);
    call["cy"] = anyPlace(random, surface.height(), reach, reach);
}
/// Any radius that fits, and at times one below 0.
void arrangeDisc(Call &call, Random &random) {
    const int radius = random.between(-1, roomIn(call["surface"].plane()));
    call["radius"] = radius;
    fitCentre(call, random, std::max(radius, 1));
}
/// Anywhere over and beyond the clip; at times so large that only the rim crosses the surface.
void arrangeClippedDisc(Call &call, Random &random) {
    const Plane &surface = call["surface"].plane();
    const bool large = random.oneIn(16);
    const int radius = large ? random.between(40, 500) : random.between(-1, random.oneIn(8) ? 40 : 14);
    const int direction = large ? random.between(-1, 1) : 0;
    call["radius"] = radius;
    call["cx"] = random.between(-10, surface.width() + 9) + direction * radius;
    call["cy"] = random.between(-10, surface.height() + 9);
    if (random.oneIn(3))
        call["clip"] = surface.rect();
}
/// Some squares beyond 32 bits, too.
void arrangeFilledDisc(Call &call, Random &random) {
    arrangeClippedDisc(call, random);
    if (random.oneIn(16)) {
        const int radius = random.between(30000, 70000);
        call["radius"] = radius;
        call["cx"] = random.between(-20, 20) - radius;
    }
}
void arrangeBlendedDisc(Call &call, Random &random) {
    arrangeFilledDisc(call, random);
    call["alpha"] = random.oneIn(4) ? static_cast<int>(random.word()) : random.between(0, 256);
}
void arrangeOutline(Call &call, Random &random) {
    arrangeDisc(call, random);
    call["thickness"] = random.between(-2, 2 * call["radius"].whole() + 4);
}
void arrangeBand(Call &call, Random &random) {
    const int reach = random.between(1, roomIn(call["surface"].plane()));
    const int thickness = random.between(1, 3);
    call["thickness"] = thickness;
    call["radius"] = reach - 2 * thickness;
    fitCentre(call, random, reach);
}
void arrangeClippedBand(Call &call, Random &random) {
    arrangeClippedDisc(call, random);
    call["radius"] = std::min(call["radius"].whole(), 141);
    call["thickness"] = random.between(1, random.oneIn(4) ? 20 : 4);
}
double anyIntensity(Random &random) {
    return random.oneIn(4) ? random.word() : static_cast<double>(random.between(0, 300));
}
void arrangeSpot(Call &call, Random &random) {
    arrangeDisc(call, random);
    call["intensity"] = anyIntensity(random);
}
void arrangeClippedSpot(Call &call, Random &random) {
    arrangeClippedDisc(call, random);
    call["intensity"] = anyIntensity(random);
}

std::vector<Scene> scenesOf(std::string_view figure) {
    return {{"", nullptr, 1, figure}};
}

// Ellipses around a box

Arguments ellipseArguments(const Arguments &then) {
    return joined(
        {destination("surface"), pitch("pitch", "surface"), clip("clip", "surface"), rectangle("box", "surface")},
        then);
}
Areas wholeClip(const Call &call) {
    return {{"surface", clipOf(call)}};
}
/// The clip, and the column of the vertical axis from row 0 on.
Areas clipAndColumn(const Call &call) {
    const tagRECT clip = call["clip"].rect();
    const tagRECT box = call["box"].rect();
    if (Box(clip).isEmpty())
        return {};
    const int centre = plain::int32(std::int64_t{box.left} + box.right) >> 1;
    const q_long column = std::clamp<q_long>(centre, clip.left, clip.right - 1);
    return {{"surface", clip}, {"surface", {column, 0, column + 1, clip.bottom}}};
}
void arrangeEllipse(Call &call, Random &random) {
    const int left = random.between(-20, 20);
    const int top = random.between(-20, 20);
    call["box"] = tagRECT{left, top, left + random.between(-2, 30), top + random.between(-2, 30)};
}
void arrangeEllipseOutline(Call &call, Random &random) {
    arrangeEllipse(call, random);
    call["thickness"] = random.between(-1, 20);
}
/// A box in the middle that grows wide and flat.
void squeezedBox(Call &call, const Stage &stage) {
    const int w = static_cast<int>(stage.height * (0.15 + 0.3 * stage.time));
    const int h = static_cast<int>(stage.height * (0.3 - 0.2 * stage.time));
    call["box"] = tagRECT{stage.width / 2 - w, stage.height / 2 - h, stage.width / 2 + w, stage.height / 2 + h};
}

// Stars of two spikes

Areas spikes(const Call &call) {
    const Box clip = clipOf(call);
    const Box inner = {clip.left, clip.top, clip.right - 1, clip.bottom - 1};
    const std::int64_t x = call["x"].whole();
    const std::int64_t y = call["y"].whole();
    if (!common(inner, boxOf(x, y, 1, 1)).isEmpty()) {
        const std::int64_t size = call["size"].whole();
        return {{"surface", common(clip, Box{x - size, y, x + size + 1, y + 1})},
                {"surface", common(clip, Box{x, y - size, x + 1, y + size + 1})}};
    }
    return {};
}
void arrangeSpikes(Call &call, Random &random) {
    const Plane &surface = call["surface"].plane();
    const auto place = [&](int extent) {
        return random.oneIn(4) ? random.between(-10, extent + 9) : random.between(0, extent);
    };
    call["x"] = place(surface.width());
    call["y"] = place(surface.height());
    call["size"] = random.between(-1, random.oneIn(8) ? 40 : 14);
    for (const auto channel : {"red", "green", "blue"})
        call[channel] = random.oneIn(10) ? random.between(-600, 900) : random.between(0, 255);
    if (random.oneIn(2))
        call["clip"] = surface.rect();
}

// Quads

Arguments quadArguments() {
    Arguments all = {destination("surface"), clip("clip", "surface"), pitch("pitch", "surface")};
    for (const auto name : {"p0", "p1", "p2", "p3"})
        all.push_back({.name = name, .kind = Kind::point, .unit = "pixels", .of = "surface"});
    all.push_back({.name = "color", .kind = Kind::colours, .unit = "0x00RRGGBB"});
    return all;
}
Areas quad(const Call &call) {
    const auto p = [&call](const char *name) { return call[name].point(); };
    const auto [left, right] = std::minmax({p("p0").x, p("p1").x, p("p2").x, p("p3").x});
    const auto [top, bottom] = std::minmax({p("p0").y, p("p1").y, p("p2").y, p("p3").y});
    return {{"surface", common(clipOf(call), Box{left, top, right + std::int64_t{1}, bottom + std::int64_t{1}})}};
}
Areas quadColour(const Call &) {
    return {{"color", {0, 0, 1, 1}}};
}
void arrangeQuad(Call &call, Random &random) {
    const int reach = random.oneIn(16) ? 4000 : random.oneIn(4) ? 200 : 30;
    for (const auto name : {"p0", "p1", "p2", "p3"})
        call[name] = tagPOINT{random.between(-reach, reach), random.between(-reach, reach)};
    if (random.oneIn(4))
        call["p1"].point().y = call["p0"].point().y;
    call["color"] = Plane::of(random.pixel());
}
void turningQuad(Call &call, const Stage &stage) {
    for (int i = 0; i < 4; ++i) {
        const double angle = 1.5707963 * (stage.time + i);
        call[std::string_view("p0p1p2p3").substr(static_cast<std::size_t>(2 * i), 2)] =
            tagPOINT{stage.width / 2 + static_cast<int>(0.45 * stage.height * std::cos(angle)),
                     stage.height / 2 + static_cast<int>(0.3 * stage.height * std::sin(angle))};
    }
    call["color"] = Plane::of(q_ulong{0xFFB060});
}

constexpr const char *coordinates[] = {"px", "py", "ax", "ay", "bx", "by"};

Arguments sideArguments() {
    Arguments all;
    for (const char *name : coordinates)
        all.push_back({.name = name, .kind = Kind::numbers, .unit = "pixels"});
    return all;
}
Areas sixNumbers(const Call &) {
    Areas all;
    for (const char *name : coordinates)
        all.push_back({name, {0, 0, 1, 1}});
    return all;
}
/// Small numbers, any, and those whose products end where 32 bits do.
void arrangeSide(Call &call, Random &random) {
    const int kind = random.between(0, 3);
    for (const char *name : coordinates) {
        const int value = kind == 0   ? random.between(-100, 100)
                          : kind == 1 ? static_cast<int>(random.word())
                                      : random.between(-2, 1) * (1 << (kind == 2 ? 15 : 30));
        call[name] = Plane::of(value);
    }
}
void besideALine(Call &call, const Stage &stage) {
    const int numbers[] = {static_cast<int>(stage.time * stage.width), 40, 30, 0, 60, 100};
    for (std::size_t i = 0; i < 6; ++i)
        call[coordinates[i]] = Plane::of(numbers[i]);
}

// Bubbles

Arguments resourceArguments() {
    return {destination("surface"),
            pitch("pitch", "surface"),
            position("x", "surface", {0, 0}),
            position("y", "surface", {0, 0}),
            radius("size", {anyInt.low, 5793}, {160, 160}),
            choice("secondHighlight", anyInt, 1)};
}
Areas resourceSquare(const Call &call) {
    const int size = call["size"].whole();
    if (size < 2)
        return {};
    return {{"surface", boxOf(call["x"].whole(), call["y"].whole(), size, size)}};
}
void arrangeResource(Call &call, Random &random) {
    const Plane &surface = call["surface"].plane();
    const int size = random.between(-1, random.oneIn(8) ? 16 : 9);
    call["size"] = size;
    call["x"] = anyPlace(random, surface.width(), 0, std::max(size, 1) - 1);
    call["y"] = anyPlace(random, surface.height(), 0, std::max(size, 1) - 1);
    call["secondHighlight"] = random.between(-1, 1);
}

Arguments bubbleArguments(double largestSize, double largestResource) {
    Arguments all = centred({radius("size", {anyInt.low, largestSize}, {60, 150}), source("resource"),
                             extent("resourceSize", "resource"), colour("color"), extent("width", "surface"),
                             extent("height", "surface")});
    all[6].contract = {1, largestResource};
    return all;
}
Arguments glassArguments(double largestSize, double largestResource) {
    Arguments all = bubbleArguments(largestSize, largestResource);
    all.insert(all.begin() + 1, scratch());
    return all;
}

/// The square around a bubble as far as it lies on the surface.
Box bubbleBox(const Call &call) {
    const std::int64_t size = call["size"].whole();
    return common(boxOf(0, 0, call["width"].whole(), call["height"].whole()),
                  boxOf(call["cx"].whole() - (size >> 1), call["cy"].whole() - (size >> 1), size, size));
}
/// Words of a resource with rows of a length, which lie one behind the other.
Area resourceWords(const Call &call, std::int64_t rowLength) {
    const std::int64_t size = call["resourceSize"].whole();
    return {"resource", bubbleBox(call).isEmpty() ? Box() : Box{0, 0, (size - 1) * rowLength + size, 1}};
}
Areas ballSquare(const Call &call) {
    return {{"surface", bubbleBox(call)}};
}
Areas ballResource(const Call &call) {
    return {resourceWords(call, call["resourceSize"].whole())};
}
/// The square, and a word of the scratch for each pixel of the disc in it.
Areas glass(const Call &call) {
    const Box box = bubbleBox(call);
    if (!call["surface"].plane().holds(box))
        return {{"surface", box}};
    const std::int64_t radius = call["size"].whole() >> 1;
    std::int64_t words = 0;
    for (std::int64_t y = box.top - call["cy"].whole(); y < box.bottom - call["cy"].whole(); ++y)
        for (std::int64_t x = box.left - call["cx"].whole(); x < box.right - call["cx"].whole(); ++x)
            words += x * x + y * y < radius * radius;
    return {{"surface", box}, {"scratch", {0, 0, words, 1}}};
}
/// Where rays come from: at the rim they are bent outward, to 164 / 128 of their distance.
Area refracted(const Call &call) {
    const std::int64_t reach = (call["size"].whole() >> 1) * std::int64_t{164} / 128 + 1;
    const Box seen = common(boxOf(0, 0, call["width"].whole(), call["height"].whole()), aroundCentre(call, reach));
    return {"surface", bubbleBox(call).isEmpty() ? Box() : seen};
}
Areas seenThroughGlass(const Call &call) {
    return {refracted(call), resourceWords(call, call["resourceSize"].whole())};
}
Areas seenThroughOldGlass(const Call &call) {
    return {refracted(call), resourceWords(call, call["surface"].plane().pitch())};
}

/// A resource in rows as long as it is wide, or as those of the surface, of words as they are rendered or any.
void arrangeBubble(Call &call, Random &random, bool rowsOfSurface) {
    const Plane &surface = call["surface"].plane();
    const int resourceSize = random.between(1, 12);
    const int words = rowsOfSurface ? resourceSize * surface.pitch() : resourceSize * resourceSize;
    Plane resource(4, words, 1);
    const q_ulong kept = random.oneIn(4) ? 0xFFFFFFFF : 0x00C77FFF;
    for (int i = 0; i < words; ++i)
        resource.at(i, 0) = random.word() & kept;
    call["resource"] = std::move(resource);
    call["resourceSize"] = resourceSize;
    call["size"] = random.between(-1, random.oneIn(32) ? 60 : 24);
    call["cx"] = random.between(-10, surface.width() + 10);
    call["cy"] = random.between(-10, surface.height() + 10);
    call["width"] = surface.width() - (random.oneIn(4) ? random.between(0, 3) : 0);
    call["height"] = surface.height() - (random.oneIn(4) ? random.between(0, 3) : 0);
}
void arrangeBall(Call &call, Random &random) {
    arrangeBubble(call, random, false);
}
void arrangeGlass(Call &call, Random &random) {
    arrangeBubble(call, random, false);
    call["scratch"] = Plane(4, 16 * 16, 1);
}
void arrangeOldGlass(Call &call, Random &random) {
    arrangeBubble(call, random, true);
    call["scratch"] = Plane(4, 16 * 16, 1);
}

/// A rendered resource in place of a picture.
void setResource(Call &call, const Stage &stage, bool rowsOfSurface) {
    const int size = std::min({stage.width, stage.height, 200});
    const int rowLength = rowsOfSurface ? call["surface"].plane().pitch() : size;
    Plane resource(4, rowLength * size, 1);
    MakeBubbleResource(resource.as<q_ulong>(), rowLength, 0, 0, size, 1);
    call["resource"] = std::move(resource);
    call["resourceSize"] = size;
    call["width"] = stage.width;
    call["height"] = stage.height;
}
std::vector<Scene> bubbleScenes() {
    return {{"", [](Call &call, const Stage &stage) { setResource(call, stage, false); }, 1, "bubbles"}};
}
std::vector<Scene> oldBubbleScenes() {
    return {{"", [](Call &call, const Stage &stage) { setResource(call, stage, true); }, 1, "bubbles"}};
}

// Rows that differ in little

Row wideLine(Row row) {
    row.arguments = wideLineArguments();
    row.writes = row.reads = wideLineBox;
    row.arrange = arrangeWideLine;
    row.scenes = wideLineScenes();
    return row;
}
/// What glows: its largest radius, the intensity that is the full colour, and what it is called.
Row spot(Row row, double largest, double full, std::string_view figure) {
    row.arguments = centred({radiusUpTo(largest), colour(), intensity(full)});
    row.writes = row.reads = halfOpenDisc;
    row.topByte = TopByte::cleared;
    row.sums = Sums::saturate;
    row.arrange = arrangeSpot;
    row.scenes = scenesOf(figure);
    return row;
}
/// The same between the sides of a clip.
Row clippedSpot(Row row, double full, std::string_view figure) {
    row = spot(std::move(row), anyInt.high, full, figure);
    row.arguments = clippedStar({radiusUpTo(anyInt.high), colour(), intensity(full)});
    row.writes = row.reads = strictlyClippedDisc;
    row.arrange = arrangeClippedSpot;
    return row;
}

} // namespace

std::vector<Row> drawRows() {
    return {
        {
            Q_MUR_FUNCTION(Draw_Pixel_Add),
            .sentence = "Adds a colour to a pixel.",
            .arguments = dotArguments(),
            .writes = dot,
            .reads = dot,
            .topByte = TopByte::cleared,
            .sums = Sums::saturate,
            .arrange = arrangeDot<0>,
            .scenes = scenesOf("pixels"),
        },
        {
            Q_MUR_OVERLOAD(iLine_AntiAliasing, void(q_ulong *, tagRECT *, int, int, int, int, int, q_ulong)),
            .sentence = "Draws an anti-aliased line, one pixel wide.",
            .arguments = thinLineArguments(),
            .writes = thinLine,
            .reads = thinLine,
            .topByte = TopByte::cleared,
            .sums = Sums::stayInside,
            .arrange = arrangeEnds,
            .scenes = lineScenes(),
        },
        wideLine({
            Q_MUR_OVERLOAD(iLine_AntiAliasing, void(q_ulong *, tagRECT *, int, int, int, int, int, q_ulong, int)),
            .word = "wide",
            .sentence = "Draws an anti-aliased line of any width.",
            .topByte = TopByte::setByColour,
            .sums = Sums::stayInside,
        }),
        wideLine({
            Q_MUR_FUNCTION(iLine_AntiAliasing_Alpha),
            .sentence = "Draws an anti-aliased line at one eighth of full strength.",
            .topByte = TopByte::cleared,
            .sums = Sums::stayInside,
        }),
        wideLine({
            Q_MUR_FUNCTION(iLine_AntiAliasing_Add),
            .sentence = "Adds an anti-aliased line.",
            .topByte = TopByte::disturbsRed,
            .sums = Sums::saturate,
        }),
        wideLine({
            Q_MUR_FUNCTION(iLine_AntiAliasing_Max),
            .sentence = "Draws an anti-aliased line wherever it is brighter than the picture, channel by channel.",
            .topByte = TopByte::disturbsRed,
            .sums = Sums::stayInside,
        }),
        wideLine({
            Q_MUR_FUNCTION(iLine_AntiAliasing_AddSome),
            .sentence = "Adds the edges of an anti-aliased line that fades from its first end to nothing at the other.",
            .topByte = TopByte::disturbsRed,
            .sums = Sums::saturate,
        }),
        {
            Q_MUR_FUNCTION(DDLine_Fat),
            .sentence = "Draws a shaded tube, from white in its middle through the colour to black.",
            .arguments = joined(joined({destination("surface"), clip("clip", "surface"), pitch("pitch", "surface")},
                                       lineEnds(walkedEnds)),
                                {colour(), radius("halfWidth", {0, 4095}, {2, 12})}),
            .writes = tube,
            .topByte = TopByte::cleared,
            .sums = Sums::none,
            .arrange = arrangeTube,
            .scenes = lineScenes(),
        },
        {
            Q_MUR_FUNCTION(DDLine_Color_Change),
            .sentence = "Draws a line that changes from one colour towards another.",
            .arguments = joined(joined({destination("surface"), pitch("pitch", "surface")}, lineEnds(walkedEnds)),
                                {colour("colour1"), colour("colour2")}),
            .writes = unclippedLine,
            .topByte = TopByte::setByColour,
            .sums = Sums::wrap,
            .arrange = arrangeEndsInside,
            .scenes = lineScenes(),
        },
        {
            Q_MUR_FUNCTION(iLineAddSome),
            .sentence = "Adds a line that fades to nothing.",
            .arguments = joined(joined({destination("surface"), pitch("pitch", "surface")}, lineEnds(walkedEnds)),
                                {colour(), extent("width", "surface"), extent("height", "surface")}),
            .writes = lineOnSurface,
            .reads = lineOnSurface,
            .topByte = TopByte::cleared,
            .sums = Sums::saturate,
            .arrange = arrangeLineOnSurface,
            .scenes = lineScenes(),
        },
        {
            Q_MUR_FUNCTION(Draw_Circle_FillInside),
            .sentence = "Fills a disc.",
            .arguments = centred({radiusUpTo(anyInt.high), colour()}),
            .writes = disc,
            .topByte = TopByte::setByColour,
            .arrange = arrangeDisc,
            .scenes = scenesOf("circles"),
        },
        {
            Q_MUR_FUNCTION(Draw_Circle_NoFillInside),
            .sentence = "Draws a circle of any thickness.",
            .arguments = centred({radiusUpTo(32767), thicknessWithin(anyInt), colour()}),
            .writes = disc,
            .topByte = TopByte::setByColour,
            .arrange = arrangeOutline,
            .scenes = scenesOf("circles"),
        },
        {
            Q_MUR_FUNCTION(iFill_Circle_Safe),
            .sentence = "Fills a disc inside a clip.",
            .arguments = clippedCircle({radiusUpTo(anyInt.high - 1), colour()}),
            .writes = clippedDisc,
            .topByte = TopByte::setByColour,
            .arrange = arrangeFilledDisc,
            .scenes = scenesOf("circles"),
        },
        {
            Q_MUR_FUNCTION(iFill_Circle_Alpha),
            .sentence = "Blends a disc inside a clip with one alpha for all pixels.",
            .arguments =
                clippedCircle({radiusUpTo(anyInt.high - 1), colour(), number("alpha", "1/256", anyInt, {40, 200})}),
            .writes = clippedDisc,
            .reads = clippedDisc,
            .topByte = TopByte::cleared,
            .sums = Sums::wrap,
            .arrange = arrangeBlendedDisc,
            .scenes = scenesOf("circles"),
        },
        {
            Q_MUR_FUNCTION(Draw_Bubble_Circle),
            .sentence = "Blends a disc that is clear at its centre and solid at its rim.",
            .arguments = clippedCircle({radiusUpTo(32767), colour()}),
            .writes = clippedDisc,
            .reads = clippedDisc,
            .topByte = TopByte::cleared,
            .sums = Sums::stayInside,
            .arrange = arrangeClippedDisc,
            .scenes = scenesOf("circles"),
        },
        {
            Q_MUR_FUNCTION(Draw_Metal_Circle),
            .sentence = "Fills a disc that goes from white at its centre to the colour at its rim.",
            .arguments = centred({radiusUpTo(32767), colour()}),
            .writes = disc,
            .topByte = TopByte::disturbsRed,
            .sums = Sums::carryOver,
            .arrange = arrangeDisc,
            .scenes = scenesOf("circles"),
        },
        {
            Q_MUR_FUNCTION(Draw_Anti_Aliasing_Circle_NoFillInside),
            .sentence = "Blends a soft band around a circle.",
            .arguments = centred({radius("radius", {-181, 181}, {20, 70}), thicknessWithin({1, 90}), colour()}),
            .writes = band,
            .reads = band,
            .topByte = TopByte::blended,
            .sums = Sums::stayInside,
            .arrange = arrangeBand,
            .scenes = scenesOf("circles"),
        },
        spot({Q_MUR_FUNCTION(Draw_Ring), .sentence = "Adds a soft ring inside a circle."}, 32767, 128, "rings"),
        {
            Q_MUR_FUNCTION(Draw_Ring_Safe),
            .sentence = "Adds a soft band around a circle inside a clip.",
            .arguments = clippedStar({radius("radius", {-181, 181}, {20, 70}), thicknessWithin({1, 90}), colour()}),
            .writes = clippedBand,
            .reads = clippedBand,
            .topByte = TopByte::disturbsRed,
            .sums = Sums::saturate,
            .arrange = arrangeClippedBand,
            .scenes = scenesOf("rings"),
        },
        {
            Q_MUR_FUNCTION(Draw_Outer_Ellipse_NoFillInside),
            .sentence = "Draws the outline of the ellipse through the corners of a box.",
            .arguments = ellipseArguments({thicknessWithin(anyInt), colour()}),
            .writes = wholeClip,
            .topByte = TopByte::setByColour,
            .arrange = arrangeEllipseOutline,
            .scenes = {{"", squeezedBox, 1, "ellipses"}},
        },
        {
            Q_MUR_FUNCTION(Draw_Outer_Ellipse_AlphaFast),
            .sentence = "Fills the ellipse through the corners of a box at half strength.",
            .arguments = ellipseArguments({unused("unused"), colour()}),
            .writes = clipAndColumn,
            .reads = clipAndColumn,
            .topByte = TopByte::cleared,
            .sums = Sums::stayInside,
            .arrange = arrangeEllipse,
            .scenes = {{"", squeezedBox, 1, "ellipses"}},
        },
        spot({Q_MUR_FUNCTION(Draw_Star_Type1), .sentence = "Adds a star with four spikes."}, 362, 64, "stars"),
        clippedSpot({Q_MUR_FUNCTION(Draw_Star_Type1_Safe),
                     .sentence = "Adds a star with four spikes between the sides of a clip."},
                    64, "stars"),
        {
            Q_MUR_FUNCTION(Draw_Star_Type2),
            .sentence = "Adds a star with four spikes and a brighter cross.",
            .arguments = centred({radiusUpTo(362), colour(), intensity(64)}),
            .writes = openDisc,
            .reads = openDisc,
            .topByte = TopByte::cleared,
            .sums = Sums::saturate,
            .arrange = arrangeSpot,
            .scenes = scenesOf("stars"),
        },
        spot({Q_MUR_FUNCTION(Draw_Star_Type3), .sentence = "Adds a diamond with a sharp core."}, anyInt.high, 32,
             "stars"),
        spot({Q_MUR_FUNCTION(Draw_Light), .sentence = "Adds a round light."}, 362, 128, "lights"),
        clippedSpot({Q_MUR_FUNCTION(Draw_Light_Safe), .sentence = "Adds a round light between the sides of a clip."},
                    128, "lights"),
        {
            Q_MUR_FUNCTION(Draw_3DBall),
            .sentence = "Draws an opaque ball, lit from the upper left.",
            .arguments = centred({radiusUpTo(anyInt.high), colour(), unused("unused")}),
            .writes = ball,
            .topByte = TopByte::cleared,
            .sums = Sums::saturate,
            .arrange = arrangeDisc,
            .scenes = scenesOf("balls"),
        },
        {
            Q_MUR_FUNCTION(Draw_3DBall_Safe),
            .sentence = "Draws an opaque ball, lit from the upper left, between the sides of a clip.",
            .arguments = clippedStar({radiusUpTo(anyInt.high), colour(), unused("unused")}),
            .writes = strictlyClippedBall,
            .topByte = TopByte::cleared,
            .sums = Sums::saturate,
            .arrange = arrangeClippedDisc,
            .scenes = scenesOf("balls"),
        },
        {
            Q_MUR_FUNCTION(Draw_Circle_Light),
            .sentence = "Blends a disc that is solid at its centre and clear at its rim.",
            .arguments =
                centred({radiusUpTo(32767), number("red", "1/255", anyByte, {255, 255}),
                         number("green", "1/255", anyByte, {176, 176}), number("blue", "1/255", anyByte, {96, 96})}),
            .writes = disc,
            .reads = disc,
            .topByte = TopByte::disturbsRed,
            .sums = Sums::stayInside,
            .arrange = arrangeDisc,
            .scenes = scenesOf("lights"),
        },
        {
            Q_MUR_FUNCTION(Draw_One_Star_Add),
            .sentence = "Adds a horizontal and a vertical spike, one pixel wide.",
            .arguments = {destination("surface"), pitch("pitch", "surface"), clip("clip", "surface"),
                          position("x", "surface", {0.3, 0.7}), position("y", "surface"),
                          radius("size", anyInt, {20, 80}), number("red", "1/255", anyInt, {255, 255}),
                          number("green", "1/255", anyInt, {176, 176}), number("blue", "1/255", anyInt, {96, 96})},
            .writes = spikes,
            .reads = spikes,
            .topByte = TopByte::cleared,
            .sums = Sums::saturate,
            .arrange = arrangeSpikes,
            .scenes = scenesOf("stars"),
        },
        {
            Q_MUR_FUNCTION(Draw_Cross),
            .sentence = "Adds a colour to the nine pixels of a cross.",
            .arguments = dotArguments(),
            .writes = cross,
            .reads = cross,
            .topByte = TopByte::cleared,
            .sums = Sums::saturate,
            .arrange = arrangeDot<2>,
            .scenes = scenesOf("crosses"),
            .without = {{"every_place_and_size_over_a_small_surface", "larger than the surface"}},
        },
        {
            Q_MUR_FUNCTION(Draw_Cross_Fast),
            .sentence = "Adds a colour to a pixel and writes the sum over a cross without its right tip.",
            .arguments = dotArguments(),
            .writes = crossWithoutRightTip,
            .reads = dot,
            .topByte = TopByte::cleared,
            .sums = Sums::saturate,
            .arrange = arrangeDot<2>,
            .scenes = scenesOf("crosses"),
            .without = {{"every_place_and_size_over_a_small_surface", "larger than the surface"}},
        },
        {
            Q_MUR_FUNCTION(Rect_Safe),
            .sentence = "Fills a convex shape of four corners inside a clip.",
            .arguments = quadArguments(),
            .writes = quad,
            .reads = quadColour,
            .topByte = TopByte::setByColour,
            .arrange = arrangeQuad,
            .scenes = {{"", turningQuad, 1, "quads"}},
        },
        {
            Q_MUR_FUNCTION(DecisionLine2),
            .sentence = "Tells on which side of a line a point lies.",
            .arguments = sideArguments(),
            .aliases = {"DecisionLines", "VKD_DecisionLines"},
            .reads = sixNumbers,
            .sums = Sums::wrap,
            .arrange = arrangeSide,
            .scenes = {{"", besideALine, 1, "points"}},
        },
        {
            Q_MUR_FUNCTION(DecisionLine),
            .sentence = "Tells on which side of a line a point lies, with the factors turned round.",
            .arguments = sideArguments(),
            .reads = sixNumbers,
            .sums = Sums::wrap,
            .arrange = arrangeSide,
            .scenes = {{"", besideALine, 1, "points"}},
        },
        {
            Q_MUR_FUNCTION(MakeBubbleResource),
            .sentence = "Renders a bubble's resource: a sphere with light and highlight at the upper left.",
            .arguments = resourceArguments(),
            .writes = resourceSquare,
            .topByte = TopByte::cleared,
            .sums = Sums::carryOver,
            .arrange = arrangeResource,
            .scenes = {{"", nullptr}},
        },
        {
            Q_MUR_FUNCTION(MakeBubbleResource2),
            .sentence = "Renders a bubble's resource from spots of light of a fixed extent.",
            .arguments = resourceArguments(),
            .writes = resourceSquare,
            .topByte = TopByte::cleared,
            .sums = Sums::carryOver,
            .arrange = arrangeResource,
            .scenes = {{"", nullptr}},
        },
        {
            Q_MUR_FUNCTION(DrawRealBubble),
            .sentence = "Draws a glass bubble that refracts the picture behind it, with a soft rim.",
            .arguments = glassArguments(181, 8191),
            .writes = glass,
            .reads = seenThroughGlass,
            .overlap = Overlap::rowOrder,
            .topByte = TopByte::cleared,
            .sums = Sums::saturate,
            .arrange = arrangeGlass,
            .scenes = bubbleScenes(),
        },
        {
            Q_MUR_FUNCTION(DrawRealBubbleOld),
            .sentence = "Draws a glass bubble with a hard rim from a resource in an image as wide as the surface.",
            .arguments = glassArguments(65535, 32767),
            .writes = glass,
            .reads = seenThroughOldGlass,
            .overlap = Overlap::rowOrder,
            .topByte = TopByte::cleared,
            .sums = Sums::saturate,
            .arrange = arrangeOldGlass,
            .scenes = oldBubbleScenes(),
        },
        {
            Q_MUR_FUNCTION(DrawReal3DBall),
            .sentence = "Draws a solid ball from a bubble's resource.",
            .arguments = bubbleArguments(65535, 2047),
            .writes = ballSquare,
            .reads = ballResource,
            .overlap = Overlap::rowOrder,
            .topByte = TopByte::cleared,
            .sums = Sums::saturate,
            .arrange = arrangeBall,
            .scenes = bubbleScenes(),
        },
    };
}

} // namespace catalogue
