#include "plain/centre_turns.h"
#include "plain/figures.h"
#include "plain/turns.h"

#include "areas.h"
#include "arguments.h"

#include <climits>
#include <cmath>

namespace catalogue {
namespace {

using enum TopByte;
using enum Sum;
using Fractions::cutOff, Fractions::notCounted;
using Uniform::darkens, Uniform::stays;

const Arguments onePitch = {pitch("pitch", "dst")};
const Arguments withPitches = {destination(), pitch("dstPitch", "dst"), source(), pitch("srcPitch", "src")};
constexpr Range nearCircle = {-1e4, 1e4, true}; ///< for angles that are brought back into the circle step by step
constexpr Range nearSurface = {-16000, 16000, true};

/// Surfaces of one shape and so of one pitch: small ones, or of the destination's size where that is large.
void makeAlike(Call &call, Random &random, std::initializer_list<std::string_view> names) {
    if (const Plane dst = call["dst"].plane(); std::max(dst.width(), dst.height()) > 16) {
        constexpr int margin = Plane::usualMargin;
        for (const std::string_view name : names)
            call[name] = dst.alike().fill({-margin, -margin, dst.width() + margin, dst.height() + margin},
                                          [&random](int, int) { return random.pixel(); });
        return;
    }
    static const std::vector<Plane> stock = [] { // making pictures takes longer than drawing them
        std::vector<Plane> made;
        for (int i = 0; i < 32; ++i) {
            Random pixels(static_cast<std::uint64_t>(1000 + i));
            constexpr int margin = Plane::usualMargin;
            const Plane plane = Plane::surface(16, 13, 0, i / 8);
            made.push_back(plane.fill({-margin, -margin, plane.pitch() - margin, 13 + margin},
                                      [&pixels](int, int) { return pixels.pixel(); }));
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

const Rule onePitchForAll = {"surfaces of one pitch have different ones", shareOnePitch};

tagRECT anyClip(const Call &call, std::string_view surface, Random &random) {
    const Plane &plane = call[surface].plane();
    return random.oneIn(3) ? random.rectInsideOrEmpty(plane.width(), plane.height()) : plane.rect();
}

/// A single pixel of a rectangle.
tagRECT pixelOf(const tagRECT &rect) {
    return {rect.left, rect.top, rect.left + 1, rect.top + 1};
}

// About the Z axis.

/// Mostly turns like those of every day, with a share of everything that is unusual in one respect.
void arrangeZ(Call &call, Random &random) {
    const bool isLarge = random.oneIn(20); // wider or higher than the positions' format reaches
    if (isLarge) {
        const bool wide = random.oneIn(2);
        call["src"] = Plane::randomSurface(random, wide ? 2600 : 3, wide ? 3 : 2600);
        call["srcRect"] = call["src"].plane().rect();
    } else if (random.oneIn(2)) {
        call["srcRect"] = call["src"].plane().rect();
    }
    call["clipRect"] = anyClip(call, "dst", random);
    const Plane &dst = call["dst"].plane();
    call.set({{"centreX", random.between(-2, dst.width() + 2)}, {"centreY", random.between(-2, dst.height() + 2)}});
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
    const Plane &dst = call["dst"].plane();
    call["srcRect"] = call["src"].plane().rect();
    call.set({{"clipRect", dst.rect()}, {"centreX", dst.width() / 2}, {"centreY", dst.height() / 2}, {"angle", 0}});
    call["scale"] = 1;
}

/// A row counts how far it goes through the source from its beginning to its end.
bool rowsAreWithinFormat(const Call &call) {
    const Box source = call["srcRect"].rect();
    const Box clip = call["clipRect"].rect();
    const double scale = call["scale"].number();
    const double angle = call["angle"].number();
    const auto middle = static_cast<double>(call["centreX"].whole());
    const double reach =
        std::hypot(static_cast<double>(source.width()), static_cast<double>(source.height())) * scale / 2;
    const double begin = std::max(middle - reach, static_cast<double>(clip.left));
    const double end = std::min(middle + reach, static_cast<double>(clip.right));
    const double slope = std::max(std::fabs(std::cos(angle)), std::fabs(std::sin(angle)));
    return !(begin < end) || clip.isEmpty() ||
           (end - begin) * slope <= scale * static_cast<double>(call.row().positions->end());
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
    call.set({{"angle", turn}, {"scale", 1.05 * std::max(across / src.width(), down / src.height())}});
}

/// The six rotators about the Z axis differ in how they sample and store.
Row aboutZ(Row row) {
    row.arguments = withPitches + clip("clipRect", "dst") + rectangle("srcRect", "src") + position("centreX", "dst") +
                    position("centreY", "dst") + angle() + scale("scale", anyReal, {0.4, 1.2}) + row.arguments;
    row.writes = on("dst", "clipRect");
    row.reads = on("src", "srcRect") + row.reads;
    row.positions = signedBits(11, 21); // from the middle
    row.meant = {
        {"a row goes through more source pixels than the format of their positions holds", rowsAreWithinFormat}};
    row.arrange = arrangeZ;
    if (row.name.starts_with("iBltNear"))
        row.pixelOnPixel = wholeZ;
    row.scenes = {{"", turningPart}, {"over the whole picture", turnedOverAll}};
    return row;
}

// About the X and the Y axis.

const Arguments turn = {angle("angle", nearCircle), scale("scale", {-1e6, 1e6, true}, {0.8, 0.8}),
                        number("perspective", "1", {-1e6, 1e6, true}, {0.3, 0.3})};
/// Rows are gone through even where they hold no pixel, which takes its time.
const Arguments frameSize = each({"width", "height"}, extent("", "dst", {-4096, 4096, true}));
const Region frame = on("dst", frameOf);

/// The back is read one line further, counted from the picture's own first line.
template <bool aboutX>
Box backBox(const Call &call) {
    const Box face = call["srcRect"].rect();
    return aboutX ? Box{face.left, 1, face.right, face.height() + 1} : Box{1, face.top, face.width() + 1, face.bottom};
}

void arrangeTurn(Call &call, Random &random) {
    constexpr double special[] = {0, 1, 1, 2, 0.5, -1, 1e-6, 1e-8, 300, 70000};
    call["angle"] = anyTurn(random);
    call["scale"] = random.oneIn(3) ? special[random.between(0, 9)] : random.between(1, 4096) / 1024.0;
    call["perspective"] = random.oneIn(3) ? 0 : random.between(-1024, 1024) / (random.oneIn(3) ? 2.0 : 512.0);
    const Plane &dst = call["dst"].plane();
    call["width"] = random.oneIn(4) ? random.between(0, dst.width()) : dst.width();
    call["height"] = random.oneIn(4) ? random.between(0, dst.height()) : dst.height();
}

void arrangeFaces(Call &call, Random &random) {
    makeAlike(call, random, {"dst", "front", "back", "background"});
    arrangeTurn(call, random);
    tagRECT &rect = call["srcRect"].rect();
    const auto [width, height] = std::pair{call["dst"].plane().width(), call["dst"].plane().height()};
    rect = random.rectInsideOrEmpty(width, height);
    if (random.oneIn(10))
        rect = pixelOf(rect);
    const int reach = random.oneIn(8) ? 1000 : 10;
    call["destCentre"] =
        tagPOINT{random.between(-reach, reach) + width / 2, random.between(-reach, reach) + height / 2};
    call["sourcePivot"] = random.oneIn(2) ? tagPOINT{(rect.left + rect.right) / 2, (rect.top + rect.bottom) / 2}
                                          : tagPOINT{random.between(-3, width + 3), random.between(-3, height + 3)};
    call["clearOutside"] = random.between(0, 2);
    const int faces = random.between(0, 2);
    if (faces < 2)
        call["back"] = faces == 0 ? Plane() : call["front"].plane();
    if (random.oneIn(2))
        call["background"] = Plane();
}

/// A picture with another on its back, turning in the middle of a third.
void turningPage(Call &call, const Stage &stage) {
    call.set({{"front", stage.picture(1)}, {"back", stage.picture(2)}, {"background", stage.picture(0)}});
}
/// One face alone.
void turnedOnce(Call &call, const Stage &) {
    call["back"] = call["background"] = Plane();
    call.set({{"angle", 0.5}, {"scale", 1.25}, {"perspective", 0.25}});
}

template <bool aboutX>
Row aboutAxis(Row row) {
    row.arguments = destination() + source("front") + orNull(source("back")) + orNull(source("background")) + turn +
                    rectangle("srcRect", "front") + point("destCentre", "dst") + point("sourcePivot", "dst") +
                    choice("clearOutside", anyInt, 1) + colour("backColour") + unused("unused") + onePitch + frameSize;
    row.writes = frame;
    row.reads = on("front", "srcRect") + on("back", backBox<aboutX>) + on("background", frameOf);
    row.rules = {onePitchForAll};
    row.topByte = copied;
    row.sums = stayInside;
    row.lookup = Lookup::nearest;
    row.arrange = arrangeFaces;
    row.scenes = {{"", turningPage}, {"a front alone", inTurn(turningPage, turnedOnce)}};
    return row;
}

void arrangeFrames(Call &call, Random &random) {
    makeAlike(call, random, {"dst", "src"});
    if (call.row().argument("background"))
        makeAlike(call, random, {"dst", "background"});
    arrangeTurn(call, random);
}

Row frameTurn(Row row) {
    const bool hasBackground = !row.arguments.empty();
    row.arguments = withPitches + row.arguments + turn + frameSize;
    row.writes = frame;
    row.reads = on("src", frameOf) + (hasBackground ? on("background", frameOf) : Region());
    row.rules = {onePitchForAll};
    row.topByte = copied;
    row.sums = stayInside;
    row.lookup = Lookup::nearest;
    row.arrange = arrangeFrames;
    row.scenes = {{}, {"at an angle of 0.5", inTurn(set("angle", 0.5), set("scale", 1), set("perspective", 0.25))}};
    return row;
}

// Quads. Corners run round the figure, those of the picture's top edge first.

const Arguments corners =
    each({"x0", "x1", "x2", "x3", "y0", "y1", "y2", "y3"}, position("", "dst", {0, 0}, nearSurface));

struct Quad {
    int x[4];
    int y[4];
};

void setCorners(Call &call, const Quad &quad) {
    for (int i = 0; i < 4; ++i) {
        call["x" + std::to_string(i)] = quad.x[i];
        call["y" + std::to_string(i)] = quad.y[i];
    }
}

/// A figure near a frame of 16 by 13: the frame itself turned or mirrored, bent a little, or anything.
Quad anyQuad(Random &random, bool isNear = false) {
    constexpr int frameX[] = {0, 16, 16, 0};
    constexpr int frameY[] = {0, 0, 13, 13};
    const int first = random.between(0, 3);
    const int direction = random.oneIn(4) ? 3 : 1;
    const int bend = random.between(0, isNear ? 1 : 4);
    const int reach = bend == 4 ? 2000 : bend == 3 ? 40 : bend * 5;
    const bool isOutside = !isNear && random.oneIn(10);
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
    Quad quad = anyQuad(random, random.oneIn(2));
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
/// walked backward. A line of it that is beyond the format of positions, 18 bits of which are for fractions, may be
/// read anywhere in it.
Box affineSource(const Call &call) {
    const Box rect = call["srcRect"].rect();
    const auto [left, right] = std::minmax({rect.left, rect.left * 2, rect.right, rect.right + rect.left});
    const auto [top, bottom] = std::minmax({rect.top, rect.top * 2, rect.bottom, rect.bottom + rect.top});
    const int beyond = rect.isEmpty() ? 2 : 0;
    constexpr std::int64_t end = 8192;
    const std::int64_t aside = std::abs(rect.width()) < end ? 0 : end;
    const std::int64_t above = std::abs(rect.height()) < end ? 0 : end;
    return {left - beyond - aside, top - beyond - above, right + beyond + aside, bottom + beyond + above};
}

void trapezoid(Call &call, const Stage &stage) {
    const int w = stage.width;
    const int h = stage.height;
    const int narrow = static_cast<int>(w * (0.05 + 0.25 * stage.time));
    setCorners(call, {{narrow, w - narrow, w - 5, 5}, {h / 20, h / 20, h - h / 20, h - h / 20}});
}

// About a centre.

Arguments centreArguments(const Argument &srcRect) {
    return {destination(),
            clip("clipRect", "dst"),
            pitch("dstPitch", "dst"),
            source(),
            srcRect,
            pitch("srcPitch", "src"),
            position("centreX", "dst", {0.5, 0.5}, nearSurface),
            position("centreY", "dst", {0.5, 0.5}, nearSurface)};
}

void arrangeCentre(Call &call, Random &random) {
    makeAlike(call, random, {"dst", "src"});
    call["clipRect"] = anyClip(call, "dst", random);
    tagRECT &rect = call["srcRect"].rect();
    rect = anyClip(call, "src", random);
    if (random.oneIn(8))
        rect = pixelOf(rect);
    const int reach = random.oneIn(8) ? 200 : 12;
    call.set({{"centreX", 8 + random.between(-reach, reach)}, {"centreY", 6 + random.between(-reach, reach)}});
    call["angle"] = anyTurn(random);
    const int size = random.oneIn(8) ? 150 : 25;
    const auto extent = [&] { return random.between(random.oneIn(2) ? 6 : random.oneIn(3) ? -size : 0, size); };
    call["width"] = extent();
    call["height"] = extent();
}

/// The first whole position for which 20 fraction bits and a sign leave no room.
constexpr std::int64_t endOfPositions = 2048;

/// What is read of a source whose pixels from `first` to `last` are traced along the edges of a figure, each of at most
/// so many rows. Columns are corrected by less than a pixel, and taps reach one further. What the format does not hold,
/// a position or the way from one to another, may come out anywhere in it.
std::pair<std::int64_t, std::int64_t> traced(std::int64_t first, std::int64_t last, std::int64_t rows) {
    const auto [low, high] = std::minmax(first, last);
    const bool isHeld = low > -endOfPositions && high < endOfPositions && high - low < endOfPositions &&
                        (high - low) * rows < std::int64_t{1} << 27; // in sixteenths
    return isHeld ? std::pair(low - 1, high + 2) : std::pair(-endOfPositions, endOfPositions + 1);
}
Box tracedSource(const Call &call) {
    const Box rect = call["srcRect"].rect();
    const std::int64_t rows =
        std::abs(std::int64_t{call["width"].whole()}) + std::abs(std::int64_t{call["height"].whole()});
    const auto [left, right] = traced(rect.left, rect.right - 1, rows);
    const auto [top, bottom] = traced(rect.top, rect.bottom - 1, rows);
    return {left, top, right, bottom};
}

/// What is left of a position in 32 bits, so many of them for fractions.
constexpr std::int64_t kept(std::int64_t position, int fractionBits) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(position) << fractionBits) >> fractionBits;
}

/// Where a direct mapper's test lets positions through, from so many pixels before the source to so many behind it.
/// The bounds that it tests are positions as well. Taps reach a pixel further.
template <int fractionBits, int before, int behind>
Box mappedSource(const Call &call) {
    const Box rect = call["srcRect"].rect();
    constexpr int taps = fractionBits > 16 ? 1 : 0;
    return grown({kept(rect.left - before, fractionBits), kept(rect.top - before, fractionBits),
                  kept(rect.right + behind, fractionBits), kept(rect.bottom + behind, fractionBits)},
                 0, 0, taps, taps);
}

/// Of positions with 20 fraction bits.
const Rule sourceIsSmall = {beyondFormat, [](const Call &call) {
                                const Box rect = call["srcRect"].rect();
                                return std::max(rect.width(), rect.height()) < endOfPositions;
                            }};

/// A scene of the source's width and height as a part of the stage's.
template <int over, int under>
void sized(Call &call, const Stage &stage) {
    call.set({{"width", stage.width * over / under}, {"height", stage.height * over / under}});
}

Row aboutCentre(Row row) {
    row.arguments = centreArguments(rectangle("srcRect", "src")) + angle("angle", nearCircle) +
                    each({"width", "height"}, extent("", "", {-2000, 2000, true}));
    row.writes = on("dst", "clipRect") + row.writes;
    row.sums = stayInside;
    row.readsTables = true;
    row.arrange = arrangeCentre;
    row.scenes = {{"", sized<2, 3>}, {"over the whole picture", inTurn(sized<5, 4>, set("angle", 0.4))}};
    return row;
}

/// The disc is read where it is written, and a little beside its rim.
Box discBox(const Call &call) {
    return around(call["centreX"].whole(), call["centreY"].whole(), std::abs(std::int64_t{call["radius"].whole()}) + 3);
}

void arrangeDisc(Call &call, Random &random) {
    constexpr int most = 20;
    makeAlike(call, random, {"dst"});
    call.set({{"srcRect", Value()}, {"src", Plane::randomSurface(random, 80, 80).movedBy(32, 32)}});
    call["clipRect"] = anyClip(call, "dst", random);
    call.set({{"centreX", 8 + random.between(-12, 12)}, {"centreY", 6 + random.between(-12, 12)}});
    call.set({{"radius", random.between(random.oneIn(8) ? -most : 0, most)}, {"angle", anyTurn(random)}});
}

void turningDisc(Call &call, const Stage &stage) {
    call.set({{"src", stage.picture(0)}, {"srcRect", Value()}});
    call["radius"] = std::min(stage.width, stage.height) * 2 / 5;
}

// Triangles and lines.

constexpr std::string_view triangleCorners[] = {"p0", "p1", "p2", "t0", "t1", "t2"};

void arrangeTriangle(Call &call, Random &random) {
    makeAlike(call, random, {"dst", "src"});
    call["clip"] = anyClip(call, "dst", random);
    const int reach = random.oneIn(5) ? 200 : random.oneIn(2) ? 9 : 20;
    const int sourceReach = random.oneIn(5) ? 5000 : 4;
    _POINTINT p[6];
    for (int i = 0; i < 3; ++i) {
        p[i] = {8 + random.between(-reach, reach), 6 + random.between(-reach, reach)};
        p[i + 3] = {random.between(-sourceReach, 15 + sourceReach), random.between(-sourceReach, 12 + sourceReach)};
    }
    if (random.oneIn(4))
        p[1].y = p[0].y;
    if (random.oneIn(4))
        p[2].y = p[random.oneIn(2) ? 1 : 0].y + random.between(0, 1);
    for (std::size_t i = 0; i < 6; ++i)
        call[triangleCorners[i]] = Plane::of(p[i]);
}

/// Source positions are held to the clip.
Areas readsTriangle(const Call &call) {
    Areas areas = {{"src", call["clip"].rect(), true}};
    for (const std::string_view name : triangleCorners)
        areas.push_back(words(name, 2));
    return areas;
}

/// The corners of the source stand, those of the destination turn.
void spinningTriangle(Call &call, const Stage &stage) {
    for (std::size_t i = 0; i < 6; ++i) {
        const double angle = 2.0943951 * (static_cast<int>(i % 3) + (i < 3 ? stage.time : 0)) + 0.5;
        call[triangleCorners[i]] =
            Plane::of(_POINTINT{static_cast<int>(stage.width * (0.5 + 0.45 * std::cos(angle))),
                                static_cast<int>(stage.height * (0.5 + 0.45 * std::sin(angle)))});
    }
}

Box strokeBox(const Call &call) {
    const int width = call["width"].whole();
    if (width < 1)
        return {};
    const Box line = lineBox(call);
    const bool isSteep = line.width() <= line.height();
    const int low = width / 2;
    const int high = (width + 1) / 2 - 1;
    return grown(line, isSteep ? low : 0, isSteep ? 0 : low, isSteep ? high : 0, isSteep ? 0 : high);
}

void arrangeStroke(Call &call, Random &random) {
    makeAlike(call, random, {"dst", "src"});
    call.set({{"x1", random.between(0, 15)}, {"y1", random.between(0, 12)}});
    call["x2"] = random.oneIn(6) ? call["x1"].whole() : random.between(0, 15);
    call["y2"] = random.oneIn(6) ? call["y1"].whole() : random.between(0, 12);
    call["width"] = random.between(-2, 14);
}

} // namespace

std::vector<Row> warpRows() {
    using FrameTurn = void(q_ulong *, int, q_ulong *, int, double, double, double, int, int);
    using FrameTurnBefore = void(q_ulong *, int, q_ulong *, int, q_ulong *, int, double, double, double, int, int);
    const Region mixed = on("dst", "clipRect");
    std::vector<Row> rows = {
        aboutZ({Q_MUR_FUNCTION(iBltNear32_Z_Roto),
                .sentence = "Turns and scales a picture about its centre, nearest pixel.", .topByte = copied,
                .sums = stayInside, .lookup = Lookup::nearest}),
        aboutZ({Q_MUR_FUNCTION(iBltNear32_Z_Roto_KeySrc),
                .sentence = "Turns and scales a picture, leaving out pixels that are 0.", .topByte = copied,
                .sums = stayInside, .lookup = Lookup::nearest}),
        aboutZ({Q_MUR_FUNCTION(iBltNear32_Z_Roto_KeySrc_Add),
                .sentence = "Turns and scales a picture and adds it, leaving out pixels that are 0.", .reads = mixed,
                .topByte = cleared, .sums = saturate, .lookup = Lookup::nearest}),
        aboutZ({Q_MUR_FUNCTION(iBltNear32_Z_Roto_Alpha),
                .sentence = "Turns and scales a picture and blends it by one alpha.",
                .arguments = {alpha({0.75, 0.75})}, .reads = mixed, .topByte = cleared, .sums = {wrap, wrap, carryOver},
                .fractions = cutOff, .uniform = stays, .lookup = Lookup::nearest}),
        aboutZ({Q_MUR_FUNCTION(iBltLinear32_Z_Roto),
                .sentence = "Turns and scales a picture about its centre, filtered.", .topByte = cleared,
                .sums = stayInside, .fractions = cutOff, .uniform = stays, .lookup = Lookup::filtered}),
        aboutZ({Q_MUR_FUNCTION(iBltLinear32_Z_Roto_Alpha),
                .sentence = "Turns and scales a picture, filtered, and blends it by one alpha.",
                .arguments = {alpha({0.75, 0.75})}, .reads = mixed, .topByte = cleared, .sums = {wrap, wrap, carryOver},
                .fractions = cutOff, .uniform = stays, .lookup = Lookup::filtered}),
        aboutAxis<true>({Q_MUR_FUNCTION(iBltNear32_X_Roto),
                         .sentence = "Turns a picture with two faces in depth about a horizontal axis."}),
        aboutAxis<false>({Q_MUR_FUNCTION(iBltNear32_Y_Roto),
                          .sentence = "Turns a picture with two faces in depth about a vertical axis."}),
        frameTurn({Q_MUR_OVERLOAD(iBltNear32_X_Roto_Fast, FrameTurn),
                   .sentence = "Turns a whole frame in depth about a horizontal axis."}),
        frameTurn({Q_MUR_OVERLOAD(iBltNear32_X_Roto_Fast, FrameTurnBefore), .label = "background",
                   .sentence = "Turns a whole frame in depth about a horizontal axis, with a picture behind it.",
                   .arguments = {source("background"), unused("unused")}}),
        frameTurn({Q_MUR_FUNCTION(iBltNear32_Y_Roto_Fast),
                   .sentence = "Turns a whole frame in depth about a vertical axis."}),
        {Q_MUR_FUNCTION(iBilinearMapping),
         .sentence = "Draws a picture into any four corners, the patch inverted exactly.",
         .arguments = destination() + source() + onePitch + frameSize + corners, .writes = frame,
         .reads = on("src", frameOf), .rules = {onePitchForAll}, .topByte = copied, .sums = stayInside,
         .lookup = Lookup::nearest, .arrange = arrangeQuad, .scenes = {{"", swingingQuad}}},
        apart(
            {Q_MUR_FUNCTION(iPsudoBilinearMapping),
             .sentence = "Draws a picture into four corners in two quick passes.",
             .arguments = destination() + source() + scratch() + onePitch + frameSize + colour("fillColour") + corners,
             .writes = frame + on("scratch", frameOf), .reads = on("src", frameOf), .rules = {onePitchForAll},
             .topByte = copied, .sums = stayInside, .lookup = Lookup::nearest, .arrange = arrangeQuad,
             .scenes = {{"", swingingQuad}}}),
        apart({Q_MUR_FUNCTION(iAffineMapping),
               .sentence = "Draws a picture into a trapezoid and brightens or darkens it.",
               .arguments = destination() + source() + onePitch + rectangle("srcRect", "src") +
                            clip("clipRect", "dst") + corners +
                            number("brightnessAdd", "1", {-1000, 1000, true}, {10, 10}) +
                            number("brightnessScale", "1/256", {-1000, 1000, true}, {128, 256}),
               .writes = on("dst", "clipRect"), .reads = on("src", affineSource), .rules = {onePitchForAll},
               .topByte = disturbsRed, .sums = saturate, .fractions = notCounted, .arrange = arrangeAffine,
               .scenes = {{"", trapezoid}}}),
        aboutCentre({Q_MUR_FUNCTION(iRotateMapping),
                     .sentence = "Stretches a picture onto a turned rectangle, filtered, along its traced edges.",
                     .reads = on("src", tracedSource), .topByte = cleared, .fractions = cutOff, .uniform = stays,
                     .lookup = Lookup::filtered}),
        {Q_MUR_FUNCTION(iRotateCircleMapping), .sentence = "Turns a disc of a picture on the spot.",
         .arguments = centreArguments(orNull(unused("srcRect"))) +
                      meant(radius("radius", {-50, 300, true}, {60, 60}), {0, anyInt.high}) +
                      angle("angle", nearCircle),
         .writes = on("dst", "clipRect"), .reads = atMost(on("src", discBox)), .overlap = Overlap::notPromised,
         .topByte = copied, .sums = stayInside, .lookup = Lookup::nearest, .readsTables = true, .arrange = arrangeDisc,
         .scenes = {{"", turningDisc}},
         .waived = {{"every_place_and_size_over_a_small_surface", "larger than 4 x 4 pixels"},
                    {"places_are_bounded_by_clips_alone", "sources are read at the same places"}}},
        aboutCentre({Q_MUR_FUNCTION(iRotate), .sentence = "Stretches a picture onto a turned rectangle, nearest pixel.",
                     .reads = on("src", mappedSource<16, 0, 0>), .topByte = copied, .lookup = Lookup::nearest}),
        aboutCentre({Q_MUR_FUNCTION(iRotateLinear),
                     .sentence = "Stretches a picture onto a turned rectangle, filtered.",
                     .reads = on("src", mappedSource<20, 0, -1>), .meant = {sourceIsSmall}, .topByte = cleared,
                     .fractions = cutOff, .uniform = stays, .lookup = Lookup::filtered}),
        aboutCentre({Q_MUR_FUNCTION(iRotateLinearAA),
                     .sentence = "Stretches a picture onto a turned rectangle with softened edges.",
                     .writes = on("src", "srcRect"), .reads = on("src", mappedSource<20, 2, 1>),
                     .meant = {sourceIsSmall}, .topByte = cleared, .fractions = cutOff, .uniform = darkens,
                     .lookup = Lookup::filtered}),
        {Q_MUR_FUNCTION(Blt_Triangle), .sentence = "Maps a triangle of a picture onto another triangle.",
         .arguments = destination() + clip("clip", "dst") + pitch("dstPitch", "dst") +
                      each({"p0", "p1", "p2"}, points("", "pixels", "dst")) + source() + pitch("srcPitch", "src") +
                      each({"t0", "t1", "t2"}, points("", "pixels", "src")),
         .writes = on("dst", "clip"), .reads = readsTriangle, .topByte = copied, .sums = stayInside,
         .lookup = Lookup::nearest, .arrange = arrangeTriangle, .scenes = {{"", spinningTriangle}}},
        {Q_MUR_FUNCTION(ImageLine), .sentence = "Reveals another picture along a straight stroke.",
         .arguments = destination() + source() + onePitch + position("x1", "dst", {0.1, 0.1}, nearSurface) +
                      position("y1", "dst", {0.2, 0.8}, nearSurface) + position("x2", "dst", {0.9, 0.9}, nearSurface) +
                      position("y2", "dst", {0.8, 0.2}, nearSurface) + number("width", "pixels", nearSurface, {41, 41}),
         .writes = on("dst", strokeBox), .reads = on("src", strokeBox), .rules = {onePitchForAll}, .topByte = copied,
         .sums = stayInside, .lookup = Lookup::nearest, .arrange = arrangeStroke,
         .waived = {{"places_are_bounded_by_clips_alone", "sources are read at the same places"}}},
    };
    for (Row &row : rows) // what else is promised runs rows top to bottom and pixels left to right
        if (row.overlap != Overlap::notPromised)
            row.overlap = Overlap::rowOrder;
    return rows;
}

} // namespace catalogue
