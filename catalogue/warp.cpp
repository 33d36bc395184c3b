#include "plain/centre_turns.h"
#include "plain/figures.h"
#include "plain/turns.h"

#include "areas.h"
#include "arguments.h"

#include <climits>
#include <cmath>

namespace catalogue {
namespace {

constexpr double quarterTurn = 1.5707963267948966;

/// An angle in radians: at or beside a multiple of a quarter turn or another limit, or anywhere.
double anyTurn(Random &random) {
    constexpr double beside[] = {0, 0, 0x1p-40, -0x1p-40, 0x1p-20, -0x1p-20, 0x1p-8, -0x1p-8};
    constexpr double limits[] = {1.570796, 4.712388, 6.283184, 0};
    switch (random.between(0, 3)) {
    case 0:
        return random.between(-6, 6) * quarterTurn + beside[random.between(0, 7)];
    case 1:
        return limits[random.between(0, 3)] + beside[random.between(0, 7)];
    case 2:
        return random.between(-1000000, 1000000) / 16384.0;
    default:
        return random.between(0, 6283184) / 1000000.0;
    }
}

/// Surfaces of one shape and so of one pitch.
void makeAlike(Call &call, Random &random, std::initializer_list<std::string_view> names) {
    static const std::vector<Plane> stock = [] { // making pictures takes longer than drawing them
        std::vector<Plane> made;
        for (int i = 0; i < 32; ++i) {
            Random pixels(static_cast<std::uint64_t>(1000 + i));
            made.push_back(Plane::surface(16, 13, 0, i / 8));
            for (int y = -Plane::usualMargin; y < 13 + Plane::usualMargin; ++y)
                for (int x = -Plane::usualMargin; x < made.back().pitch() - Plane::usualMargin; ++x)
                    made.back().at(x, y) = pixels.pixel();
        }
        return made;
    }();
    const int pitchClass = random.between(0, 3);
    for (const std::string_view name : names) {
        Copies copies;
        call[name] = stock[static_cast<std::size_t>(pitchClass * 8 + random.between(0, 7))].copy(copies);
    }
}

/// Surfaces that are handed over with one pitch have it.
bool shareOnePitch(const Call &call) {
    const int pitch = call["dst"].plane().pitch();
    for (const std::string_view name : {"front", "back", "background", "src", "scratch"})
        if (call.row().argument(name) && !call[name].plane().isNull() && call[name].plane().pitch() != pitch &&
            !(name == "src" && call.row().argument("srcPitch")))
            return false;
    return true;
}

tagRECT anyClip(const Call &call, std::string_view surface, Random &random) {
    const Plane &plane = call[surface].plane();
    return random.oneIn(3) ? random.rectInsideOrEmpty(plane.width(), plane.height()) : plane.rect();
}

Areas writesClip(const Call &call) {
    return {{"dst", call["clipRect"].rect()}};
}
Areas readsSrcRect(const Call &call) {
    return {{"src", call["srcRect"].rect()}};
}
Areas readsBoth(const Call &call) {
    return {{"src", call["srcRect"].rect()}, {"dst", call["clipRect"].rect()}};
}

/// A width or height of frames. Rows are gone through even where they hold no pixel, which takes its time.
Argument frameExtent(std::string_view name) {
    return {.name = name, .kind = Kind::extent, .unit = "pixels", .contract = {-4096, 4096}, .of = "dst"};
}

// About the Z axis.

std::vector<Argument> zArguments(bool hasAlpha) {
    std::vector<Argument> all = {
        destination(),
        pitch("dstPitch", "dst"),
        source(),
        pitch("srcPitch", "src"),
        clip("clipRect", "dst"),
        rectangle("srcRect", "src"),
        position("centreX", "dst"),
        position("centreY", "dst"),
        angle(),
        {.name = "scale", .kind = Kind::scale, .unit = "1", .contract = anyReal, .drawn = {0.4, 1.2}}};
    if (hasAlpha)
        all.push_back({.name = "alpha", .kind = Kind::alpha, .unit = "1", .contract = anyReal, .drawn = {0.75, 0.75}});
    return all;
}

/// Mostly turns like those of every day, with a share of everything that is unusual in one respect.
void arrangeZ(Call &call, Random &random) {
    const bool isLarge = random.oneIn(20); // wider or higher than the positions' format reaches
    if (isLarge) {
        const bool wide = random.oneIn(2);
        call["src"] = Plane::randomSurface(random, wide ? 2600 : 3, wide ? 3 : 2600);
        call["srcRect"] = call["src"].plane().rect();
    } else if (random.oneIn(4)) {
        call["srcRect"] = call["src"].plane().rect();
    }
    call["clipRect"] = anyClip(call, "dst", random);
    const Plane &dst = call["dst"].plane();
    call["centreX"] = random.between(-2, dst.width() + 2);
    call["centreY"] = random.between(-2, dst.height() + 2);
    if (random.oneIn(12))
        call[random.oneIn(2) ? "centreX" : "centreY"] =
            random.oneIn(2) ? random.between(-1000, 1000) : random.between(INT_MIN, INT_MAX);
    double turn = random.between(-4000000, 4000000) * 1e-6;
    if (random.oneIn(3))
        turn = quarterTurn / 2 * random.between(-8, 16);
    else if (random.oneIn(6))
        turn = random.oneIn(2) ? random.between(-100, 100) * 1e-9 : random.between(-1000000, 1000000) / 3.0;
    call["angle"] = static_cast<double>(static_cast<float>(turn));
    constexpr double special[] = {1, 1, 0.5, 2, 0, -0.7, -2.5, 40000, 1e-6, 3e-4};
    double scale = random.between(200, 4000) / 1000.0;
    if (random.oneIn(3))
        scale = special[random.between(0, 9)];
    if (isLarge) // a few pixels for thousands, or a part of them
        scale = random.between(10, 100) / (random.oneIn(4) ? 1000.0 : 10000.0);
    call["scale"] = static_cast<double>(static_cast<float>(scale));
    if (call.row().argument("alpha"))
        call["alpha"] = random.oneIn(8) ? random.between(-1024, 1280) / 256.0 : random.between(0, 256) / 256.0;
}

void wholeZ(Call &call) {
    call["srcRect"] = call["src"].plane().rect();
    call["clipRect"] = call["dst"].plane().rect();
    call["centreX"] = call["dst"].plane().width() / 2;
    call["centreY"] = call["dst"].plane().height() / 2;
    call["angle"] = 0;
    call["scale"] = 1;
}

/// A picture turning and growing in the middle, as large as the format of positions lets a row of it be.
void turningPart(Call &call, const Stage &stage) {
    const Stage part = {std::min(stage.width * 3 / 4, 860), std::min(stage.height * 3 / 4, 480), stage.time};
    call["src"] = call.row().name.find("KeySrc") == std::string_view::npos ? part.picture(1) : part.sprite();
    call["srcRect"] = call["src"].plane().rect();
}
/// Turned a little and enlarged until it covers the whole stage.
void turnedOverAll(Call &call, const Stage &stage) {
    constexpr double turn = 0.4;
    turningPart(call, stage);
    const Plane &src = call["src"].plane();
    const double across = stage.width * std::cos(turn) + stage.height * std::sin(turn);
    const double down = stage.width * std::sin(turn) + stage.height * std::cos(turn);
    call["angle"] = turn;
    call["scale"] = 1.05 * std::max(across / src.width(), down / src.height());
}
const std::vector<Scene> zScenes = {{"", turningPart}, {"over the whole picture", turnedOverAll}};

/// The six rotators about the Z axis differ in how they sample and store.
Row aboutZ(Bound bound, std::string_view name, std::string_view sentence, TopByte topByte, bool readsDst) {
    const bool hasAlpha = name.ends_with("_Alpha");
    return {
        .name = name,
        .call = std::move(bound),
        .sentence = sentence,
        .arguments = zArguments(hasAlpha),
        .writes = writesClip,
        .reads = readsDst ? readsBoth : readsSrcRect,
        .overlap = Overlap::rowOrder,
        .topByte = topByte,
        .sums = name.ends_with("_Add") ? Sums::saturate
                : hasAlpha             ? Sums::carryOver
                                       : Sums::stayInside,
        .arrange = arrangeZ,
        .pixelOnPixel = name.starts_with("iBltNear") ? wholeZ : nullptr,
        .scenes = zScenes,
    };
}

// About the X and the Y axis.

Argument facePlace(std::string_view name) {
    return {.name = name, .kind = Kind::point, .unit = "pixels", .of = "dst"};
}
Argument scaleOfTurn() {
    return {.name = "scale", .kind = Kind::scale, .unit = "1", .contract = {-1e6, 1e6}, .drawn = {0.8, 0.8}};
}
Argument perspectiveOfTurn() {
    return {.name = "perspective", .kind = Kind::number, .unit = "1", .contract = {-1e6, 1e6}, .drawn = {0.3, 0.3}};
}
/// An angle that is brought back into the circle step by step, so that it should be near to it.
Argument angleOfTurn() {
    return {.name = "angle", .kind = Kind::angle, .unit = "radians", .contract = {-1e4, 1e4}, .drawn = {0, 6.2831853}};
}
Argument optionalSource(std::string_view name) {
    return {.name = name, .kind = Kind::source, .unit = "pixels", .mayBeNull = true};
}

std::vector<Argument> faceArguments() {
    return {destination(),
            source("front"),
            optionalSource("back"),
            optionalSource("background"),
            angleOfTurn(),
            scaleOfTurn(),
            perspectiveOfTurn(),
            rectangle("srcRect", "front"),
            facePlace("destCentre"),
            facePlace("sourcePivot"),
            choice("clearOutside", anyInt, 1),
            colour("backColour"),
            unused("unused"),
            pitch("pitch", "dst"),
            frameExtent("width"),
            frameExtent("height")};
}

Areas writesFrame(const Call &call) {
    return {{"dst", boxOf(0, 0, call["width"].whole(), call["height"].whole())}};
}

/// The back is read one line further, counted from the picture's own first line.
Areas readsFaces(const Call &call) {
    const Box face = call["srcRect"].rect();
    const bool rows = call.row().name == "iBltNear32_X_Roto";
    const Box back =
        rows ? Box{face.left, 1, face.right, face.height() + 1} : Box{1, face.top, face.width() + 1, face.bottom};
    return {
        {"front", face}, {"back", back}, {"background", boxOf(0, 0, call["width"].whole(), call["height"].whole())}};
}

double anyTurnScale(Random &random) {
    constexpr double special[] = {0, 1, 1, 2, 0.5, -1, 1e-6, 1e-8, 300, 70000};
    return random.oneIn(3) ? special[random.between(0, 9)] : random.between(1, 4096) / 1024.0;
}

double anyPerspective(Random &random) {
    if (random.oneIn(3))
        return 0;
    return random.between(-1024, 1024) / (random.oneIn(3) ? 2.0 : 512.0);
}

void arrangeTurn(Call &call, Random &random) {
    call["angle"] = anyTurn(random);
    call["scale"] = anyTurnScale(random);
    call["perspective"] = anyPerspective(random);
    call["width"] = random.oneIn(4) ? random.between(0, 16) : 16;
    call["height"] = random.oneIn(4) ? random.between(0, 13) : 13;
}

void arrangeFaces(Call &call, Random &random) {
    makeAlike(call, random, {"dst", "front", "back", "background"});
    arrangeTurn(call, random);
    tagRECT &rect = call["srcRect"].rect();
    rect = random.rectInsideOrEmpty(16, 13);
    if (random.oneIn(10)) // a single pixel
        rect = {rect.left, rect.top, rect.left + 1, rect.top + 1};
    const int reach = random.oneIn(8) ? 1000 : 10;
    call["destCentre"] = tagPOINT{random.between(-reach, reach) + 8, random.between(-reach, reach) + 6};
    call["sourcePivot"] = random.oneIn(2) ? tagPOINT{(rect.left + rect.right) / 2, (rect.top + rect.bottom) / 2}
                                          : tagPOINT{random.between(-3, 19), random.between(-3, 16)};
    call["clearOutside"] = random.between(0, 2);
    const int faces = random.between(0, 2);
    if (faces < 2)
        call["back"] = faces == 0 ? Plane() : call["front"].plane();
    if (random.oneIn(2))
        call["background"] = Plane();
}

/// A picture with another on its back, turning in the middle of a third.
void turningPage(Call &call, const Stage &stage) {
    call["front"] = stage.picture(1);
    call["back"] = stage.picture(2);
    call["background"] = stage.picture(0);
    call["sourcePivot"] = call["destCentre"];
}
/// One face alone.
void turnedOnce(Call &call, const Stage &stage) {
    turningPage(call, stage);
    call["back"] = call["background"] = Plane();
    call["angle"] = 0.5;
    call["scale"] = 1.25;
    call["perspective"] = 0.25;
}
const std::vector<Scene> faceScenes = {{"", turningPage}, {"a front alone", turnedOnce}};

Row aboutAxis(Bound bound, std::string_view name, std::string_view sentence) {
    return {
        .name = name,
        .call = std::move(bound),
        .sentence = sentence,
        .arguments = faceArguments(),
        .writes = writesFrame,
        .reads = readsFaces,
        .allows = shareOnePitch,
        .overlap = Overlap::rowOrder,
        .topByte = TopByte::copied,
        .sums = Sums::stayInside,
        .arrange = arrangeFaces,
        .scenes = faceScenes,
    };
}

Areas readsFrames(const Call &call) {
    const Box frame = boxOf(0, 0, call["width"].whole(), call["height"].whole());
    Areas areas = {{"src", frame}};
    if (call.row().argument("background"))
        areas.push_back({"background", frame});
    return areas;
}

void arrangeFrameTurn(Call &call, Random &random) {
    makeAlike(call, random, {"dst", "src"});
    if (call.row().argument("background"))
        makeAlike(call, random, {"dst", "background"});
    arrangeTurn(call, random);
}

void stillFrame(Call &call, const Stage &) {
    call["angle"] = 0.5;
    call["scale"] = 1;
    call["perspective"] = 0.25;
}

std::vector<Argument> frameTurnArguments(bool hasBackground) {
    std::vector<Argument> all = {destination(), pitch("dstPitch", "dst"), source(), pitch("srcPitch", "src")};
    if (hasBackground)
        all.insert(all.end(), {source("background"), unused("unused")});
    all.insert(all.end(),
               {angleOfTurn(), scaleOfTurn(), perspectiveOfTurn(), frameExtent("width"), frameExtent("height")});
    return all;
}

Row frameTurn(Bound bound, std::string_view name, std::string_view word, std::string_view sentence) {
    return {
        .name = name,
        .call = std::move(bound),
        .word = word,
        .sentence = sentence,
        .arguments = frameTurnArguments(!word.empty()),
        .writes = writesFrame,
        .reads = readsFrames,
        .allows = shareOnePitch,
        .overlap = Overlap::rowOrder,
        .topByte = TopByte::copied,
        .sums = Sums::stayInside,
        .arrange = arrangeFrameTurn,
        .scenes = {{}, {"at an angle of 0.5", stillFrame}},
    };
}

// Quads. Corners run round the figure, those of the picture's top edge first.

constexpr Range nearCorner = {-16000, 16000};

std::vector<Argument> corners() {
    std::vector<Argument> all;
    for (const std::string_view name : {"x0", "x1", "x2", "x3", "y0", "y1", "y2", "y3"})
        all.push_back({.name = name, .kind = Kind::position, .unit = "pixels", .contract = nearCorner, .of = "dst"});
    return all;
}

std::vector<Argument> joined(std::vector<Argument> first, const std::vector<Argument> &second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

struct Quad {
    int x[4];
    int y[4];
};

void setCorners(Call &call, const Quad &quad) {
    for (int i = 0; i < 4; ++i) {
        call[std::string("x") + std::to_string(i)] = quad.x[i];
        call[std::string("y") + std::to_string(i)] = quad.y[i];
    }
}

/// A figure near a frame of 16 by 13: the frame itself turned or mirrored, bent a little, or anything.
Quad anyQuad(Random &random) {
    constexpr int frameX[] = {0, 16, 16, 0};
    constexpr int frameY[] = {0, 0, 13, 13};
    const int first = random.between(0, 3);
    const int direction = random.oneIn(4) ? 3 : 1;
    const int bend = random.between(0, 4);
    const int reach = bend == 4 ? 2000 : bend == 3 ? 40 : bend * 5;
    const bool isOutside = random.oneIn(10);
    const int away = isOutside ? random.between(-1, 1) * 3000 : 0;
    Quad quad = {};
    for (int i = 0; i < 4; ++i) {
        const int corner = (first + direction * i) & 3;
        quad.x[i] = frameX[corner] + random.between(-reach, reach) + away;
        quad.y[i] = frameY[corner] + random.between(-reach, reach) + (isOutside ? 3000 : 0);
    }
    if (random.oneIn(6)) {
        const int a = random.between(0, 3);
        const int b = random.between(0, 3);
        quad.x[a] = quad.x[b];
        quad.y[a] = quad.y[b];
    }
    return quad;
}

void arrangeQuad(Call &call, Random &random) {
    makeAlike(call, random, {"dst", "src"});
    if (call.row().argument("scratch"))
        makeAlike(call, random, {"dst", "src", "scratch"});
    call["width"] = random.oneIn(3) ? random.between(0, 16) : 16;
    call["height"] = random.oneIn(3) ? random.between(0, 13) : 13;
    setCorners(call, anyQuad(random));
}

Areas readsFrame(const Call &call) {
    return {{"src", boxOf(0, 0, call["width"].whole(), call["height"].whole())}};
}
Areas writesFrameAndScratch(const Call &call) {
    const Box frame = boxOf(0, 0, call["width"].whole(), call["height"].whole());
    return {{"dst", frame}, {"scratch", frame}};
}

/// A corner swings from near the stage's own to a quarter inside.
void swingingQuad(Call &call, const Stage &stage) {
    const int w = stage.width;
    const int h = stage.height;
    const int inX = static_cast<int>(w * (0.05 + 0.2 * stage.time));
    const int inY = static_cast<int>(h * (0.25 - 0.2 * stage.time));
    setCorners(call, {{inX, w - inX / 2, w - 10, inX / 4}, {inY, 10, h - inY, h - 10}});
    if (call.row().argument("fillColour"))
        call["fillColour"] = 0x203040;
}

void arrangeAffine(Call &call, Random &random) {
    makeAlike(call, random, {"dst", "src"});
    Quad quad = anyQuad(random);
    if (random.oneIn(2)) {
        quad.y[1] = quad.y[0];
        quad.y[3] = quad.y[2];
    } else if (!random.oneIn(8)) {
        quad.x[3] = quad.x[0];
        quad.x[2] = quad.x[1];
    }
    setCorners(call, quad);
    tagRECT rect = random.rectInsideOrEmpty(16, 13);
    rect.left = std::min<q_long>(rect.left, 6);
    rect.top = std::min<q_long>(rect.top, 6);
    call["srcRect"] = rect;
    call["clipRect"] = anyClip(call, "dst", random);
    call["brightnessAdd"] = random.oneIn(2) ? 0 : random.between(-300, 300);
    call["brightnessScale"] = random.oneIn(2) ? 256 : random.between(-300, 600);
}

/// The left and top of the source rectangle count twice along one of the axes, and one that is turned inside out is
/// walked backward.
Areas readsAffine(const Call &call) {
    const tagRECT &rect = call["srcRect"].rect();
    const bool isEmpty = rect.left >= rect.right || rect.top >= rect.bottom;
    const auto [left, right] = std::minmax({rect.left, rect.left * 2, rect.right, rect.right + rect.left});
    const auto [top, bottom] = std::minmax({rect.top, rect.top * 2, rect.bottom, rect.bottom + rect.top});
    const int beyond = isEmpty ? 2 : 0;
    return {{"src", Box{left - beyond, top - beyond, right + beyond, bottom + beyond}}};
}

void trapezoid(Call &call, const Stage &stage) {
    const int w = stage.width;
    const int h = stage.height;
    const int narrow = static_cast<int>(w * (0.05 + 0.25 * stage.time));
    setCorners(call, {{narrow, w - narrow, w - 5, 5}, {h / 20, h / 20, h - h / 20, h - h / 20}});
    call["brightnessAdd"] = 10;
    call["brightnessScale"] = 200;
}

// About a centre.

std::vector<Argument> centreArguments() {
    return {destination(),
            clip("clipRect", "dst"),
            pitch("dstPitch", "dst"),
            source(),
            rectangle("srcRect", "src"),
            pitch("srcPitch", "src"),
            {.name = "centreX",
             .kind = Kind::position,
             .unit = "pixels",
             .contract = nearCorner,
             .drawn = {0.5, 0.5},
             .of = "dst"},
            {.name = "centreY",
             .kind = Kind::position,
             .unit = "pixels",
             .contract = nearCorner,
             .drawn = {0.5, 0.5},
             .of = "dst"},
            {.name = "angle", .kind = Kind::angle, .unit = "radians", .contract = {-1e4, 1e4}, .drawn = {0, 6.2831853}},
            {.name = "width", .kind = Kind::extent, .unit = "pixels", .contract = {-2000, 2000}},
            {.name = "height", .kind = Kind::extent, .unit = "pixels", .contract = {-2000, 2000}}};
}

void arrangeCentre(Call &call, Random &random) {
    makeAlike(call, random, {"dst", "src"});
    call["clipRect"] = anyClip(call, "dst", random);
    tagRECT &rect = call["srcRect"].rect();
    rect = anyClip(call, "src", random);
    if (random.oneIn(8)) // a single pixel
        rect = {rect.left, rect.top, rect.left + 1, rect.top + 1};
    const int reach = random.oneIn(8) ? 200 : 12;
    call["centreX"] = 8 + random.between(-reach, reach);
    call["centreY"] = 6 + random.between(-reach, reach);
    call["angle"] = anyTurn(random);
    const int size = random.oneIn(8) ? 150 : 25;
    call["width"] = random.between(random.oneIn(6) ? -size : 0, size);
    call["height"] = random.between(random.oneIn(6) ? -size : 0, size);
}

/// Taps reach a pixel beyond the source at its right and bottom, and an empty source is read as if it were turned
/// round.
Areas readsTraced(const Call &call) {
    const tagRECT &rect = call["srcRect"].rect();
    return {{"src", Box{std::min(rect.left, rect.right) - 1, std::min(rect.top, rect.bottom) - 1,
                        std::max(rect.left, rect.right) + 2, std::max(rect.top, rect.bottom) + 2}}};
}
Areas readsSoftened(const Call &call) {
    const Box rect = call["srcRect"].rect();
    return {{"src", {rect.left - 2, rect.top - 2, rect.right + 2, rect.bottom + 2}}};
}
Areas writesClipAndCoverage(const Call &call) {
    return {{"dst", call["clipRect"].rect()}, {"src", call["srcRect"].rect()}};
}

void turningAroundCentre(Call &call, const Stage &stage) {
    const Stage part = {stage.width, stage.height, stage.time};
    call["src"] = part.picture(1);
    call["srcRect"] = part.picture(1).rect();
    call["width"] = stage.width * 2 / 3;
    call["height"] = stage.height * 2 / 3;
}
/// Stretched over most of the stage.
void turnedWide(Call &call, const Stage &stage) {
    turningAroundCentre(call, stage);
    call["angle"] = 0.4;
    call["width"] = stage.width * 5 / 4;
    call["height"] = stage.height * 5 / 4;
}

Row aboutCentre(Bound bound, std::string_view name, std::string_view sentence, TopByte topByte,
                Areas (*reads)(const Call &), Areas (*writes)(const Call &) = writesClip) {
    return {
        .name = name,
        .call = std::move(bound),
        .sentence = sentence,
        .arguments = centreArguments(),
        .writes = writes,
        .reads = reads,
        .overlap = Overlap::rowOrder,
        .topByte = topByte,
        .sums = Sums::stayInside,
        .arrange = arrangeCentre,
        .scenes = {{"", turningAroundCentre}, {"over the whole picture", turnedWide}},
    };
}

std::vector<Argument> discArguments() {
    std::vector<Argument> all = centreArguments();
    all[4] = {.name = "srcRect", .kind = Kind::unused, .unit = "", .mayBeNull = true};
    all.erase(all.end() - 3, all.end());
    all.push_back(radius("radius", {-300, 300}, {60, 60}));
    all.push_back(
        {.name = "angle", .kind = Kind::angle, .unit = "radians", .contract = {-1e4, 1e4}, .drawn = {0, 6.2831853}});
    return all;
}

/// The disc is read where it is written, and a little beside its rim.
Areas readsDisc(const Call &call) {
    return {{"src", around(call["centreX"].whole(), call["centreY"].whole(), std::abs(call["radius"].whole()) + 3)}};
}

void arrangeDisc(Call &call, Random &random) {
    constexpr int most = 20;
    makeAlike(call, random, {"dst"});
    call["srcRect"] = Value();
    call["src"] = Plane::randomSurface(random, 80, 80).movedBy(32, 32);
    call["clipRect"] = anyClip(call, "dst", random);
    call["centreX"] = 8 + random.between(-12, 12);
    call["centreY"] = 6 + random.between(-12, 12);
    call["radius"] = random.between(random.oneIn(8) ? -most : 0, most);
    call["angle"] = anyTurn(random);
}

void turningDisc(Call &call, const Stage &stage) {
    call["src"] = stage.picture(0);
    call["srcRect"] = Value();
    call["radius"] = std::min(stage.width, stage.height) * 2 / 5;
}

// Triangles and lines.

Argument corner(std::string_view name, std::string_view of) {
    return {.name = name, .kind = Kind::points, .unit = "pixels", .of = of};
}

void arrangeTriangle(Call &call, Random &random) {
    makeAlike(call, random, {"dst", "src"});
    call["clip"] = anyClip(call, "dst", random);
    const int reach = random.oneIn(5) ? 200 : 20;
    const int sourceReach = random.oneIn(5) ? 5000 : 4;
    _POINTINT p[3];
    _POINTINT t[3];
    for (int i = 0; i < 3; ++i) {
        p[i] = {8 + random.between(-reach, reach), 6 + random.between(-reach, reach)};
        t[i] = {random.between(-sourceReach, 15 + sourceReach), random.between(-sourceReach, 12 + sourceReach)};
    }
    if (random.oneIn(4))
        p[1].y = p[0].y;
    if (random.oneIn(4))
        p[2].y = p[random.oneIn(2) ? 1 : 0].y + random.between(0, 1);
    constexpr std::string_view names[] = {"p0", "p1", "p2", "t0", "t1", "t2"};
    for (std::size_t i = 0; i < 6; ++i)
        call[names[i]] = Plane::of(i < 3 ? p[i] : t[i - 3]);
}

Areas writesTriangle(const Call &call) {
    return {{"dst", call["clip"].rect()}};
}
/// Source positions are held to the clip.
Areas readsTriangle(const Call &call) {
    Areas areas = {{"src", call["clip"].rect()}};
    for (const std::string_view name : {"p0", "p1", "p2", "t0", "t1", "t2"})
        areas.push_back({name, boxOf(0, 0, 2, 1)});
    return areas;
}

void spinningTriangle(Call &call, const Stage &stage) {
    constexpr std::string_view names[] = {"p0", "p1", "p2"};
    constexpr std::string_view sources[] = {"t0", "t1", "t2"};
    for (int i = 0; i < 3; ++i) {
        const auto at = [&](double turn) {
            return _POINTINT{static_cast<int>(stage.width * (0.5 + 0.45 * std::cos(turn))),
                             static_cast<int>(stage.height * (0.5 + 0.45 * std::sin(turn)))};
        };
        call[names[i]] = Plane::of(at(2.0943951 * (i + stage.time) + 0.5));
        call[sources[i]] = Plane::of(at(2.0943951 * i + 0.5));
    }
}

Box strokeOf(const Call &call) {
    const int x1 = call["x1"].whole(), y1 = call["y1"].whole(), x2 = call["x2"].whole(), y2 = call["y2"].whole();
    const int width = call["width"].whole();
    if (width < 1)
        return {};
    const bool isSteep = std::abs(std::int64_t{x2} - x1) <= std::abs(std::int64_t{y2} - y1);
    const int low = width / 2;
    const int high = (width + 1) / 2 - 1;
    return grown(
        Box{std::min(x1, x2), std::min(y1, y2), std::int64_t{std::max(x1, x2)} + 1, std::int64_t{std::max(y1, y2)} + 1},
        isSteep ? low : 0, isSteep ? 0 : low, isSteep ? high : 0, isSteep ? 0 : high);
}
Areas writesStroke(const Call &call) {
    return {{"dst", strokeOf(call)}};
}
Areas readsStroke(const Call &call) {
    return {{"src", strokeOf(call)}};
}

void arrangeStroke(Call &call, Random &random) {
    makeAlike(call, random, {"dst", "src"});
    call["x1"] = random.between(0, 15);
    call["y1"] = random.between(0, 12);
    call["x2"] = random.oneIn(6) ? call["x1"].whole() : random.between(0, 15);
    call["y2"] = random.oneIn(6) ? call["y1"].whole() : random.between(0, 12);
    call["width"] = random.between(-2, 14);
}

void sweepingStroke(Call &call, const Stage &stage) {
    call["src"] = stage.picture(1);
    call["x1"] = stage.width / 10;
    call["y1"] = static_cast<int>(stage.height * (0.2 + 0.6 * stage.time));
    call["x2"] = stage.width * 9 / 10;
    call["y2"] = static_cast<int>(stage.height * (0.8 - 0.6 * stage.time));
    call["width"] = 41;
}

Argument strokeEnd(std::string_view name) {
    return {.name = name, .kind = Kind::position, .unit = "pixels", .contract = nearCorner, .of = "dst"};
}

} // namespace

std::vector<Row> warpRows() {
#define Q_MUR_BOUND(function) callOf(::function, plain::function), #function
    return {
        aboutZ(Q_MUR_BOUND(iBltNear32_Z_Roto), "Turns and scales a picture about its centre, nearest pixel.",
               TopByte::copied, false),
        aboutZ(Q_MUR_BOUND(iBltNear32_Z_Roto_KeySrc), "Turns and scales a picture, leaving out pixels that are 0.",
               TopByte::copied, false),
        aboutZ(Q_MUR_BOUND(iBltNear32_Z_Roto_KeySrc_Add),
               "Turns and scales a picture and adds it, leaving out pixels that are 0.", TopByte::cleared, true),
        aboutZ(Q_MUR_BOUND(iBltNear32_Z_Roto_Alpha), "Turns and scales a picture and blends it by one alpha.",
               TopByte::cleared, true),
        aboutZ(Q_MUR_BOUND(iBltLinear32_Z_Roto), "Turns and scales a picture about its centre, filtered.",
               TopByte::cleared, false),
        aboutZ(Q_MUR_BOUND(iBltLinear32_Z_Roto_Alpha),
               "Turns and scales a picture, filtered, and blends it by one alpha.", TopByte::cleared, true),
        aboutAxis(Q_MUR_BOUND(iBltNear32_X_Roto), "Turns a picture with two faces in depth about a horizontal axis."),
        aboutAxis(Q_MUR_BOUND(iBltNear32_Y_Roto), "Turns a picture with two faces in depth about a vertical axis."),
        frameTurn(callOfOverload<void(q_ulong *, int, q_ulong *, int, double, double, double, int, int)>(
                      iBltNear32_X_Roto_Fast, plain::iBltNear32_X_Roto_Fast),
                  "iBltNear32_X_Roto_Fast", "", "Turns a whole frame in depth about a horizontal axis."),
        frameTurn(
            callOfOverload<void(q_ulong *, int, q_ulong *, int, q_ulong *, int, double, double, double, int, int)>(
                iBltNear32_X_Roto_Fast, plain::iBltNear32_X_Roto_Fast),
            "iBltNear32_X_Roto_Fast", "background",
            "Turns a whole frame in depth about a horizontal axis, with a picture behind it."),
        frameTurn(Q_MUR_BOUND(iBltNear32_Y_Roto_Fast), "", "Turns a whole frame in depth about a vertical axis."),
#undef Q_MUR_BOUND
        {
            Q_MUR_FUNCTION(iBilinearMapping),
            .sentence = "Draws a picture into any four corners, the patch inverted exactly.",
            .arguments =
                joined({destination(), source(), pitch("pitch", "dst"), frameExtent("width"), frameExtent("height")},
                       corners()),
            .writes = writesFrame,
            .reads = readsFrame,
            .allows = shareOnePitch,
            .overlap = Overlap::rowOrder,
            .topByte = TopByte::copied,
            .sums = Sums::stayInside,
            .arrange = arrangeQuad,
            .scenes = {{"", swingingQuad}},
        },
        {
            Q_MUR_FUNCTION(iPsudoBilinearMapping),
            .sentence = "Draws a picture into four corners in two quick passes.",
            .arguments = joined({destination(), source(), scratch(), pitch("pitch", "dst"), frameExtent("width"),
                                 frameExtent("height"), colour("fillColour")},
                                corners()),
            .writes = writesFrameAndScratch,
            .reads = readsFrame,
            .allows = shareOnePitch,
            .overlap = Overlap::notPromised,
            .topByte = TopByte::copied,
            .sums = Sums::stayInside,
            .arrange = arrangeQuad,
            .scenes = {{"", swingingQuad}},
        },
        {
            Q_MUR_FUNCTION(iAffineMapping),
            .sentence = "Draws a picture into a trapezoid and brightens or darkens it.",
            .arguments = joined(joined({destination(), source(), pitch("pitch", "dst"), rectangle("srcRect", "src"),
                                        clip("clipRect", "dst")},
                                       corners()),
                                {number("brightnessAdd", "1", {-1000, 1000}, {10, 10}),
                                 number("brightnessScale", "1/256", {-1000, 1000}, {128, 256})}),
            .writes = writesClip,
            .reads = readsAffine,
            .allows = shareOnePitch,
            .overlap = Overlap::notPromised,
            .topByte = TopByte::disturbsRed,
            .sums = Sums::saturate,
            .arrange = arrangeAffine,
            .scenes = {{"", trapezoid}},
        },
        aboutCentre(callOf(::iRotateMapping, plain::iRotateMapping), "iRotateMapping",
                    "Stretches a picture onto a turned rectangle, filtered, along its traced edges.", TopByte::cleared,
                    readsTraced),
        {
            Q_MUR_FUNCTION(iRotateCircleMapping),
            .sentence = "Turns a disc of a picture on the spot.",
            .arguments = discArguments(),
            .writes = writesClip,
            .reads = readsDisc,
            .overlap = Overlap::notPromised,
            .topByte = TopByte::copied,
            .sums = Sums::stayInside,
            .arrange = arrangeDisc,
            .scenes = {{"", turningDisc}},
            .without = {{"every_place_and_size_over_a_small_surface", "larger than 4 x 4 pixels"}},
        },
        aboutCentre(callOf(::iRotate, plain::iRotate), "iRotate",
                    "Stretches a picture onto a turned rectangle, nearest pixel.", TopByte::copied, readsSrcRect),
        aboutCentre(callOf(::iRotateLinear, plain::iRotateLinear), "iRotateLinear",
                    "Stretches a picture onto a turned rectangle, filtered.", TopByte::cleared, readsSrcRect),
        aboutCentre(callOf(::iRotateLinearAA, plain::iRotateLinearAA), "iRotateLinearAA",
                    "Stretches a picture onto a turned rectangle with softened edges.", TopByte::cleared, readsSoftened,
                    writesClipAndCoverage),
        {
            Q_MUR_FUNCTION(Blt_Triangle),
            .sentence = "Maps a triangle of a picture onto another triangle.",
            .arguments = {destination(), clip("clip", "dst"), pitch("dstPitch", "dst"), corner("p0", "dst"),
                          corner("p1", "dst"), corner("p2", "dst"), source(), pitch("srcPitch", "src"),
                          corner("t0", "src"), corner("t1", "src"), corner("t2", "src")},
            .writes = writesTriangle,
            .reads = readsTriangle,
            .overlap = Overlap::rowOrder,
            .topByte = TopByte::copied,
            .sums = Sums::stayInside,
            .arrange = arrangeTriangle,
            .scenes = {{"", spinningTriangle}},
        },
        {
            Q_MUR_FUNCTION(ImageLine),
            .sentence = "Reveals another picture along a straight stroke.",
            .arguments = {destination(), source(), pitch("pitch", "dst"), strokeEnd("x1"), strokeEnd("y1"),
                          strokeEnd("x2"), strokeEnd("y2"), number("width", "pixels", nearCorner, {41, 41})},
            .writes = writesStroke,
            .reads = readsStroke,
            .allows = shareOnePitch,
            .overlap = Overlap::rowOrder,
            .topByte = TopByte::copied,
            .sums = Sums::stayInside,
            .arrange = arrangeStroke,
            .scenes = {{"", sweepingStroke}},
        },
    };
}

} // namespace catalogue
