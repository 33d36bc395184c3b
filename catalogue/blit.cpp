#include "plain/blit.h"

#include "areas.h"
#include "arguments.h"
#include "plain/scaled_blit.h"

#include <cstring>

namespace catalogue {
namespace {

using plain::PositionFormat;

/// All areas of two kinds.
template <auto first, auto second>
Areas both(const Call &call) {
    Areas areas = first(call);
    for (const Area &area : second(call))
        areas.push_back(area);
    return areas;
}

/// What bounds the drawing: a rectangle, or a width and a height from (0, 0); `otherwise` where nothing does.
Box clipOf(const Call &call, const Box &otherwise) {
    if (call.row().argument("clipRect"))
        return call["clipRect"].rect();
    if (call.row().argument("clipWidth"))
        return {0, 0, call["clipWidth"].whole(), call["clipHeight"].whole()};
    return otherwise;
}

// Unscaled blits: an area of the source lies somewhere in the destination, pixel on pixel.

std::vector<Argument> placedArguments(std::initializer_list<Argument> more = {}) {
    std::vector<Argument> all = {destination(),
                                 source(),
                                 position("dstX", "dst", {0, 0}),
                                 position("dstY", "dst", {0, 0}),
                                 rectangle("srcRect", "src"),
                                 pitch("dstPitch", "dst"),
                                 pitch("srcPitch", "src")};
    all.insert(all.end(), more);
    return all;
}

std::vector<Argument> centredArguments() {
    return {destination(),
            source(),
            position("centreX", "dst"),
            position("centreY", "dst"),
            rectangle("srcRect", "src"),
            pitch("dstPitch", "dst"),
            pitch("srcPitch", "src"),
            extent("clipWidth", "dst"),
            extent("clipHeight", "dst")};
}

/// The part of the destination that is drawn, and how far from it the source's pixels lie.
struct Laid {
    Box part;
    std::int64_t dx;
    std::int64_t dy;
};

/// An area of the source with its corner on a place, clipped where the call has a clip.
Laid laidAt(const Call &call, std::int64_t x, std::int64_t y, const tagRECT &rect) {
    const Box target = boxOf(x, y, widthOf(rect), heightOf(rect));
    return {common(target, clipOf(call, target)), rect.left - x, rect.top - y};
}

Laid placed(const Call &call) {
    return laidAt(call, call["dstX"].whole(), call["dstY"].whole(), call["srcRect"].rect());
}

/// Of the source rectangle only the size counts.
Laid placedFromOrigin(const Call &call) {
    const tagRECT rect = call["srcRect"].rect();
    return laidAt(call, call["dstX"].whole(), call["dstY"].whole(), {0, 0, widthOf(rect), heightOf(rect)});
}

/// The same place on both surfaces.
Laid moved(const Call &call) {
    const tagRECT rect = call["rect"].rect();
    const Laid laid = laidAt(call, std::int64_t{rect.left} + call["offsetX"].whole(),
                             std::int64_t{rect.top} + call["offsetY"].whole(), rect);
    return {laid.part, 0, 0};
}

template <int rowsLeftOut>
Laid centred(const Call &call) {
    const tagRECT rect = call["srcRect"].rect();
    const int halfWidth = widthOf(rect) >> 1;
    const int halfHeight = heightOf(rect) >> 1;
    return laidAt(call, std::int64_t{call["centreX"].whole()} - halfWidth,
                  std::int64_t{call["centreY"].whole()} - halfHeight,
                  {rect.left, rect.top, rect.left + 2 * halfWidth, rect.top + 2 * halfHeight - rowsLeftOut});
}

/// Cut to half the source's diagonal.
Laid centredWithinDiagonal(const Call &call) {
    const tagRECT rect = call["srcRect"].rect();
    const std::int64_t x = call["centreX"].whole();
    const std::int64_t y = call["centreY"].whole();
    const std::int64_t reach = plain::halfDiagonal(rect);
    const Laid laid = laidAt(call, x - ((rect.left + rect.right) >> 1) + rect.left,
                             y - ((rect.top + rect.bottom) >> 1) + rect.top, rect);
    return {common(laid.part, {x - reach, y - reach, x + reach, y + reach}), laid.dx, laid.dy};
}

template <auto lay>
Areas drawsLaid(const Call &call) {
    return {{"dst", lay(call).part}};
}

/// The source below what is drawn, and so many pixels around it.
template <auto lay, int around = 0>
Areas seesLaid(const Call &call) {
    const auto [part, dx, dy] = lay(call);
    const Box seen = {part.left + dx, part.top + dy, part.right + dx, part.bottom + dy};
    return {{"src", grown(seen, around, around, around, around)}};
}

Areas writesRect(const Call &call) {
    return {{"dst", call["rect"].rect()}};
}

// Scaled blits: an area of the source is stretched over one of the destination.

std::vector<Argument> scaledArguments(std::initializer_list<Argument> more = {}) {
    std::vector<Argument> all = {destination(),
                                 source(),
                                 rectangle("dstRect", "dst"),
                                 rectangle("srcRect", "src"),
                                 pitch("dstPitch", "dst"),
                                 pitch("srcPitch", "src")};
    all.insert(all.end(), more);
    return all;
}

bool anySource(const tagRECT &) {
    return true;
}

/// What is drawn of the destination, if the source is one that is drawn at all.
template <auto isDrawn>
Areas drawsScaled(const Call &call) {
    const Box dstRect = call["dstRect"].rect();
    if (!isDrawn(call["srcRect"].rect()))
        return {};
    return {{"dst", dstRect.isEmpty() ? dstRect : common(dstRect, clipOf(call, dstRect))}};
}

/// From the first to the last pixel that a row or column of positions stands on.
struct Stretch {
    std::int64_t first;
    std::int64_t end;
};

Stretch stretchOf(std::int64_t begin, std::int64_t end, std::int64_t srcExtent, std::int64_t dstExtent,
                  PositionFormat format, std::int64_t start = 0) {
    const std::int64_t a = plain::positionOf(begin, srcExtent, dstExtent, format, start).pixel;
    const std::int64_t b = plain::positionOf(end - 1, srcExtent, dstExtent, format, start).pixel;
    return {std::min(a, b), std::max(a, b) + 1};
}

/// The source pixels that the part that is drawn looks at.
template <PositionFormat format, auto isDrawn = anySource>
Areas seesNearest(const Call &call) {
    const Areas drawn = drawsScaled<isDrawn>(call);
    if (drawn.empty() || drawn[0].part.isEmpty())
        return {};
    const Box part = drawn[0].part;
    const tagRECT dst = call["dstRect"].rect();
    const tagRECT src = call["srcRect"].rect();
    const Stretch x = stretchOf(part.left - dst.left, part.right - dst.left, widthOf(src), widthOf(dst), format);
    const Stretch y = stretchOf(part.top - dst.top, part.bottom - dst.top, heightOf(src), heightOf(dst), format);
    return {{"src", {src.left + x.first, src.top + y.first, src.left + x.end, src.top + y.end}}};
}

/// Each with its neighbours to the right and below.
template <PositionFormat format, auto isDrawn = anySource>
Areas seesFiltered(const Call &call) {
    Areas areas = seesNearest<format, isDrawn>(call);
    for (Area &area : areas)
        area.part = grown(area.part, 0, 0, 1, 1);
    return areas;
}

/// The same, but where the source has pixels the last column and row stand in for what lies behind them.
template <PositionFormat format, auto isDrawn = anySource>
Areas seesInside(const Call &call) {
    Areas areas = seesFiltered<format, isDrawn>(call);
    const tagRECT src = call["srcRect"].rect();
    for (Area &area : areas) {
        if (area.part.right == src.right + 1 && widthOf(src) > 0)
            --area.part.right;
        if (area.part.bottom == src.bottom + 1 && heightOf(src) > 0)
            --area.part.bottom;
    }
    return areas;
}

/// The same, but nothing below the last row, and nothing to its right where no pixel at least comes behind.
Areas seesAbove(const Call &call) {
    Areas areas = seesFiltered<plain::unsigned12_20>(call);
    const tagRECT src = call["srcRect"].rect();
    const int right = static_cast<int>(src.left) + std::max(widthOf(src), 1);
    const int bottom = static_cast<int>(src.top) + std::max(heightOf(src), 1);
    for (Area &area : areas) {
        if (area.part.bottom == bottom + 1)
            --area.part.bottom;
        if (area.part.bottom == bottom && area.part.right == right + 1 &&
            call["src"].plane().pitch() < widthOf(src) + 2)
            --area.part.right;
    }
    return areas;
}

bool haveEqualSizes(const tagRECT &a, const tagRECT &b) {
    return widthOf(a) == widthOf(b) && heightOf(a) == heightOf(b);
}

Areas seesAdaptively(const Call &call) {
    const tagRECT src = call["srcRect"].rect();
    return haveEqualSizes(call["dstRect"].rect(), src) ? Areas{{"src", src}} : seesAbove(call);
}

// Rectangles in sixteenths of a pixel.

Areas drawsSixteenths(const Call &call) {
    const tagRECT dst = call["dstRect"].rect();
    if (widthOf(dst) == 0 || heightOf(dst) == 0)
        return {};
    return {{"dst", boxOf(dst.left / 16, dst.top / 16, widthOf(dst) / 16 + 1, heightOf(dst) / 16 + 1)}};
}

Areas seesSixteenths(const Call &call) {
    const Areas drawn = drawsSixteenths(call);
    if (drawn.empty() || drawn[0].part.isEmpty())
        return {};
    const Box part = drawn[0].part;
    const tagRECT dst = call["dstRect"].rect();
    const tagRECT src = call["srcRect"].rect();
    const Stretch x = stretchOf(0, part.width(), widthOf(src), widthOf(dst), plain::signed15_17,
                                plain::perfectStart(src.left, dst.left));
    const Stretch y = stretchOf(0, part.height(), heightOf(src), heightOf(dst), plain::signed15_17,
                                plain::perfectStart(src.top, dst.top));
    const int left = static_cast<int>(src.left / 16);
    const int top = static_cast<int>(src.top / 16);
    return {{"src", {left + x.first, top + y.first, left + x.end + 1, top + y.end + 1}}};
}

// Random calls

/// A place around a surface, now and then one at the ends of the numbers or halfway there.
int anyPlace(Random &random) {
    if (!random.oneIn(12))
        return random.between(-14, 28);
    const double distance = random.between(0, 20);
    const double end = random.oneIn(2) ? anyInt.low + distance : anyInt.high - distance;
    return static_cast<int>(random.oneIn(2) ? end : end / 2);
}

void chooseClip(Call &call, Random &random) {
    if (!call.row().argument("clipWidth"))
        return;
    call["clipWidth"] = random.between(-1, call["dst"].plane().width());
    call["clipHeight"] = random.between(-1, call["dst"].plane().height());
}

/// Moves a random area to where it fits.
void place(Call &call, Random &random) {
    const Plane &dst = call["dst"].plane();
    tagRECT &rect = call["srcRect"].rect();
    rect = common(rect, {0, 0, rect.left + dst.width(), rect.top + dst.height()});
    call["dstX"] = random.between(0, dst.width() - std::max(widthOf(rect), 0));
    call["dstY"] = random.between(0, dst.height() - std::max(heightOf(rect), 0));
}

void placeAnywhere(Call &call, Random &random) {
    call["dstX"] = anyPlace(random);
    call["dstY"] = anyPlace(random);
    chooseClip(call, random);
}

/// Now and then the source begins before its surface, in the margin.
void centreAnywhere(Call &call, Random &random) {
    const int before = random.oneIn(4) ? random.between(0, 6) : 0;
    const tagRECT rect = call["srcRect"].rect();
    call["srcRect"] = tagRECT{rect.left - before, rect.top - before, rect.right - before, rect.bottom - before};
    call["centreX"] = anyPlace(random);
    call["centreY"] = anyPlace(random);
    chooseClip(call, random);
}

void moveRect(Call &call, Random &random) {
    const Plane &dst = call["dst"].plane();
    const Plane &src = call["src"].plane();
    const tagRECT rect =
        random.rectInsideOrEmpty(std::min(dst.width(), src.width()), std::min(dst.height(), src.height()));
    const int x = random.between(-30, 30);
    const int y = random.between(-30, 30);
    call["offsetX"] = x;
    call["offsetY"] = y;
    call["rect"] = tagRECT{rect.left - x, rect.top - y, rect.right - x, rect.bottom - y};
}

/// Pixels without a margin around them.
Plane tightSurface(Random &random, int width, int height, int extraPitch = 0) {
    Plane plane(4, width, height, 0, extraPitch);
    for (int i = 0; i < plane.pitch() * height; ++i)
        plane.at(i, 0) = random.pixel();
    return plane;
}

/// Now and then everything is drawn over everything, in surfaces whose rows follow each other without a gap.
void packSometimes(Call &call, Random &random) {
    if (!random.oneIn(8))
        return;
    const int width = random.between(1, 12);
    const int height = random.between(1, 12);
    for (std::size_t i = 0; i < call.size(); ++i) {
        const Argument &argument = call.row().arguments[i];
        if (call[i].is<Plane>())
            call[i] = tightSurface(random, width, height);
        else if (argument.kind == Kind::rectangle)
            call[i] = tagRECT{0, 0, width, height};
        else if (argument.kind == Kind::position)
            call[i] = 0;
        else if (argument.kind == Kind::extent)
            call[i] = 20;
    }
}

/// Now and then a long line, on which positions of other fraction bits would stand elsewhere here and there.
void scaleLongSometimes(Call &call, Random &random) {
    if (!random.oneIn(150))
        return;
    const bool upright = random.oneIn(2);
    const auto line = [&](int length) {
        return upright ? Plane::randomSurface(random, 1, length) : Plane::randomSurface(random, length, 1);
    };
    call["src"] = line(random.between(1000, 2000));
    call["dst"] = line(random.between(500, 1500));
    for (const char *rect : {"srcRect", "dstRect", "clipRect"})
        if (call.row().argument(rect))
            call[rect] = call[rect[0] == 's' ? "src" : "dst"].plane().rect();
    if (call.row().argument("clipWidth")) {
        call["clipWidth"] = call["dst"].plane().width();
        call["clipHeight"] = call["dst"].plane().height();
    }
}

/// A source turned inside out counts as huge: it is none.
void turnSourceOut(Call &call, Random &) {
    tagRECT &rect = call["srcRect"].rect();
    rect.right = std::max(rect.left, rect.right);
    rect.bottom = std::max(rect.top, rect.bottom);
}

/// Now and then a source that ends where its rectangle does.
void tightenSometimes(Call &call, Random &random) {
    if (!random.oneIn(4))
        return;
    const int width = random.between(1, 9);
    const int height = random.between(1, 9);
    call["src"] = tightSurface(random, width, height, random.between(0, 3));
    call["srcRect"] = tagRECT{0, 0, width, height};
}

void matchSizesSometimes(Call &call, Random &random) {
    if (!random.oneIn(6))
        return;
    const tagRECT dst = call["dstRect"].rect();
    const Plane &src = call["src"].plane();
    tagRECT rect = {0, 0, widthOf(dst), heightOf(dst)};
    if (rect.right <= src.width() && rect.bottom <= src.height())
        call["srcRect"] = rect;
}

/// Around the surface, and now and then far beyond it.
void scaleAnywhere(Call &call, Random &random) {
    const int beyond = random.oneIn(20) ? 1 << random.between(8, 29) : 0;
    const int left = random.between(-20, 20) - beyond;
    const int top = random.between(-20, 20) - beyond;
    call["dstRect"] =
        tagRECT{left, top, left + random.between(-2, 40) + 2 * beyond, top + random.between(-2, 40) + 2 * beyond};
    chooseClip(call, random);
}

/// Sixteenths of a pixel, now and then a little beyond the picture or without pixels.
void chooseSixteenths(Call &call, Random &random) {
    const auto rectOver = [&random](const Plane &plane) {
        tagRECT rect = random.rectInside(plane.width() * 16, plane.height() * 16);
        if (random.oneIn(8))
            rect.right = rect.left + random.between(-20, 20);
        if (random.oneIn(8))
            rect.bottom = rect.top + random.between(-20, 20);
        const int shift = random.oneIn(8) ? random.between(0, 60) : 0;
        return tagRECT{rect.left - shift, rect.top - shift, rect.right - shift, rect.bottom - shift};
    };
    if (random.oneIn(150)) { // long lines, in which every fraction bit counts
        call["src"] = Plane::randomSurface(random, random.between(300, 900), 1);
        call["dst"] = Plane::randomSurface(random, random.between(300, 900), 1);
    }
    call["dstRect"] = rectOver(call["dst"].plane());
    call["srcRect"] = rectOver(call["src"].plane());
}

/// Every other source has two colours only, one of them the key, so that filtering meets it often.
void meetKey(Call &call, Random &random) {
    q_ulong key = call["key"].word();
    if (random.oneIn(2))
        return;
    if (random.oneIn(2))
        key &= 0xFFFFFF;
    call["key"] = key;
    const q_ulong other = random.pixel();
    const Plane &src = call["src"].plane();
    for (int y = 0; y < src.height(); ++y)
        for (int x = 0; x < src.width(); ++x)
            src.at(x, y) = random.oneIn(3) ? other : key;
}

/// Every other source is a sprite, mostly of one piece.
void punchHoles(Call &call, Random &random) {
    const Plane &src = call["src"].plane();
    if (random.oneIn(2))
        return;
    for (int y = -1; y <= src.height(); ++y)
        for (int x = -1; x <= src.width(); ++x)
            src.at(x, y) = random.oneIn(6) ? 0 : src.at(x, y) | 0x01000000;
}

/// Mostly within 0 to 1, in steps of 1/256 and between them; else outside, sometimes far.
double anyAlpha(Random &random) {
    switch (random.between(0, 9)) {
    case 0:
        return random.between(-1024, 1280) / 256.0;
    case 1:
        return random.between(static_cast<int>(anyInt.low), static_cast<int>(anyInt.high)) / 64.0;
    case 2:
        return random.between(static_cast<int>(anyInt.low), static_cast<int>(anyInt.high)) * 1.0e5;
    default:
        return random.between(0, 4096) / 4096.0;
    }
}

void chooseAlpha(Call &call, Random &random) {
    call["alpha"] = anyAlpha(random);
}

/// Any alpha: it is not clamped.
Argument anyAlphaArgument() {
    Argument argument = alpha();
    argument.contract = anyReal;
    return argument;
}

// The whole of the source over the whole of the destination

void drawWhole(Call &call) {
    const Plane &dst = call["dst"].plane();
    for (std::size_t i = 0; i < call.size(); ++i) {
        const Argument &argument = call.row().arguments[i];
        const bool isCentre = argument.name.starts_with("centre");
        const bool isDown = argument.name.ends_with("Y") || argument.name == "clipHeight";
        const int size = isDown ? dst.height() : dst.width();
        if (argument.kind == Kind::rectangle || argument.kind == Kind::clip)
            call[i] = dst.rect();
        else if (argument.kind == Kind::extent)
            call[i] = size;
        else if (argument.kind == Kind::position)
            call[i] = isCentre ? size / 2 : 0;
    }
}

/// Writes one column and row more than the whole pixels.
void drawWholeSixteenths(Call &call) {
    const Plane &dst = call["dst"].plane();
    call["dstRect"] = call["srcRect"] = tagRECT{0, 0, (dst.width() - 1) * 16, (dst.height() - 1) * 16};
}

// Scenes: at their beginning they draw all over the stage.

void takeSprite(Call &call, const Stage &stage) {
    call["src"] = stage.sprite();
}

/// The source comes in from the left as far as the stage has room for it.
void slide(Call &call, const Stage &stage) {
    const int shift = static_cast<int>(stage.width * stage.within({0, 0.25}));
    call["dstX"] = shift;
    call["srcRect"] = tagRECT{0, 0, stage.width - shift, stage.height};
}

void slideCentre(Call &call, const Stage &stage) {
    call["centreX"] = static_cast<int>(stage.width * stage.within({0.5, 0.75}));
    call["centreY"] = stage.height / 2;
}

void shrink(Call &call, const Stage &stage) {
    const auto margin = static_cast<int>(stage.height * stage.within({0, 0.3}));
    call["rect"] = tagRECT{margin, margin, stage.width - margin, stage.height - margin};
}

/// An ever smaller part of the source's middle over the whole stage.
void zoom(Call &call, const Stage &stage) {
    const double share = stage.within({0.75, 0.25});
    const int width = static_cast<int>(stage.width * share);
    const int height = static_cast<int>(stage.height * share);
    const int left = (stage.width - width) / 2;
    const int top = (stage.height - height) / 2;
    call["srcRect"] = tagRECT{left, top, left + width, top + height};
}

/// A source that drifts by sixteenths of a pixel, no larger than the format of its positions allows.
void drift(Call &call, const Stage &stage) {
    const int columns = std::min(stage.width, 1000) - 4;
    const int rows = std::min(stage.height, 1000) - 4;
    const int left = 23 + static_cast<int>(stage.within({0, 32}));
    call["dstRect"] = tagRECT{3, 5, 3 + columns * 16, 5 + rows * 16};
    call["srcRect"] = tagRECT{left, 41, left + columns * 16, 41 + rows * 16};
}

void fadeGently(Call &call, const Stage &stage) {
    shrink(call, stage);
    call["factor"] = 0;
}

/// Surfaces whose rows follow each other without a gap.
void packAll(Call &call, const Stage &stage) {
    for (std::size_t i = 0; i < call.size(); ++i) {
        if (!call[i].is<Plane>())
            continue;
        const Plane packed(4, stage.width, stage.height);
        for (int y = 0; y < stage.height; ++y)
            std::copy_n(&call[i].plane().at(0, y), stage.width, &packed.at(0, y));
        call[i] = packed;
    }
}
constexpr std::string_view packedScene = "without gaps between rows";

// Texts

Plane characters(std::string_view text) {
    Plane plane(1, static_cast<int>(text.size()) + 1, 1);
    std::memcpy(plane.origin(), text.data(), text.size());
    return plane;
}

void chooseText(Call &call, Random &random) {
    constexpr std::string_view letters = "Hxgj.&\n\x80";
    std::string text;
    for (int count = random.between(0, 5); count > 0; --count)
        text += letters[static_cast<std::size_t>(random.between(0, static_cast<int>(letters.size()) - 1))];
    call["text"] = characters(text);
    call["fontName"] = characters("DejaVu Sans");
    call["colour"] = random.pixel() & 0xFFFFFF;
    call["fontHeight"] = random.between(6, 20);
    call["x"] = random.between(-20, 16);
    call["y"] = random.between(-20, 16);
}

/// Of the clip only the size counts.
Areas writesText(const Call &call) {
    const tagRECT clip = call["clipRect"].rect();
    return {{"dst", boxOf(0, 0, widthOf(clip), heightOf(clip))}};
}
Areas readsText(const Call &call) {
    return {{"text", call["text"].plane().rect()}, {"fontName", call["fontName"].plane().rect()}};
}

void writeLine(Call &call, const Stage &) {
    call["text"] = characters("Letters on a page");
    call["fontName"] = characters("DejaVu Sans");
    call["colour"] = 0xFFFFFF;
}

// Rows, one family after the other

std::vector<Row> copyRows() {
    return {
        {
            Q_MUR_FUNCTION(iBltFast32),
            .sentence = "Copies a rectangle.",
            .arguments = placedArguments(),
            .writes = drawsLaid<placed>,
            .reads = seesLaid<placed>,
            .topByte = TopByte::copied,
            .sums = Sums::stayInside,
            .arrange = inTurn(place, packSometimes),
            .pixelOnPixel = drawWhole,
            .scenes = {{.set = slide}, {.word = packedScene, .set = packAll}},
        },
        {
            Q_MUR_FUNCTION(iBltFast32_Advanced),
            .sentence = "Copies a rectangle, clipped to a width and a height.",
            .arguments = placedArguments({extent("clipWidth", "dst"), extent("clipHeight", "dst")}),
            .writes = drawsLaid<placed>,
            .reads = seesLaid<placed>,
            .topByte = TopByte::copied,
            .sums = Sums::stayInside,
            .arrange = inTurn(placeAnywhere, packSometimes),
            .pixelOnPixel = drawWhole,
            .scenes = {{.set = slide}, {.word = packedScene, .set = packAll}},
        },
        {
            Q_MUR_FUNCTION(iFillRect),
            .sentence = "Fills a rectangle with a colour, its top byte included.",
            .arguments = {destination(), rectangle("rect", "dst"), pitch("pitch", "dst"), colour()},
            .writes = writesRect,
            .topByte = TopByte::setByColour,
            .sums = Sums::none,
            .arrange = packSometimes,
            .pixelOnPixel = drawWhole,
            .scenes = {{.set = shrink}, {.word = packedScene, .set = packAll}},
        },
        {
            Q_MUR_FUNCTION(iFadeOut32),
            .sentence = "Scales the colours of a rectangle by a factor, or makes the gentlest fade step.",
            .arguments =
                {destination(),
                 rectangle("rect", "dst"),
                 pitch("pitch", "dst"),
                 {.name = "factor", .kind = Kind::weight, .unit = "1", .contract = anyReal, .drawn = {0.75, 0.25}}},
            .writes = writesRect,
            .reads = writesRect,
            .topByte = TopByte::cleared,
            .sums = Sums::carryOver,
            .arrange = [](Call &call, Random &random) { call["factor"] = anyAlpha(random); },
            .pixelOnPixel = drawWhole,
            .scenes = {{.set = shrink}, {.word = "gentle step", .set = fadeGently}},
        },
    };
}

std::vector<Row> scalingRows() {
    return {
        {
            Q_MUR_FUNCTION(iBltNear32),
            .sentence = "Scales a rectangle onto another, nearest pixel.",
            .arguments = scaledArguments(),
            .writes = drawsScaled<anySource>,
            .reads = seesNearest<plain::unsigned12_20>,
            .topByte = TopByte::copied,
            .sums = Sums::stayInside,
            .arrange = inTurn(turnSourceOut, scaleLongSometimes),
            .pixelOnPixel = drawWhole,
            .scenes = {{.set = zoom}},
        },
        {
            Q_MUR_FUNCTION(iBltNear32Safe),
            .sentence = "Scales a rectangle onto another, nearest pixel, inside a clip.",
            .arguments = {destination(), source(), rectangle("dstRect", "dst"), rectangle("srcRect", "src"),
                          clip("clipRect", "dst"), pitch("dstPitch", "dst"), pitch("srcPitch", "src")},
            .writes = drawsScaled<anySource>,
            .reads = seesNearest<plain::signed12_20>,
            .topByte = TopByte::copied,
            .sums = Sums::stayInside,
            .arrange = inTurn(scaleAnywhere, scaleLongSometimes),
            .pixelOnPixel = drawWhole,
            .scenes = {{.set = zoom}},
        },
        {
            Q_MUR_FUNCTION(iBltBilinear32),
            .sentence = "Scales a rectangle onto another, filtered; what lies beyond its edges bleeds in.",
            .arguments = scaledArguments(),
            .writes = drawsScaled<anySource>,
            .reads = seesFiltered<plain::unsigned12_20>,
            .topByte = TopByte::cleared,
            .sums = Sums::stayInside,
            .arrange = inTurn(turnSourceOut, scaleLongSometimes),
            .pixelOnPixel = drawWhole,
            .scenes = {{.set = zoom}},
        },
        {
            Q_MUR_FUNCTION(iBltBilinear32Safe),
            .sentence = "Scales a rectangle onto another, filtered but for the last source row, which is copied whole.",
            .arguments = scaledArguments(),
            .writes = drawsScaled<anySource>,
            .reads = seesAbove,
            .topByte = TopByte::cleared,
            .sums = Sums::stayInside,
            .arrange = inTurn(turnSourceOut, tightenSometimes, scaleLongSometimes),
            .pixelOnPixel = drawWhole,
            .scenes = {{.set = zoom}},
        },
        {
            Q_MUR_FUNCTION(iBltAdaptive32),
            .sentence = "Scales a rectangle onto another: filtered where it grows by half, else nearest pixel.",
            .arguments = scaledArguments(),
            .writes = drawsScaled<anySource>,
            .reads = seesAdaptively,
            .topByte = TopByte::copied,
            .sums = Sums::stayInside,
            .arrange = inTurn(turnSourceOut, tightenSometimes, matchSizesSometimes, scaleLongSometimes),
            .pixelOnPixel = drawWhole,
            .scenes = {{.set = zoom}},
        },
        {
            Q_MUR_FUNCTION(iBltPerfect32),
            .sentence = "Copies or scales a rectangle that is placed in sixteenths of a pixel, filtered.",
            .arguments = scaledArguments(),
            .writes = drawsSixteenths,
            .reads = seesSixteenths,
            .topByte = TopByte::cleared,
            .sums = Sums::stayInside,
            .arrange = chooseSixteenths,
            .pixelOnPixel = drawWholeSixteenths,
            .scenes = {{.set = drift}},
        },
    };
}

template <class... More>
using Placed = void(q_ulong *, q_ulong *, q_ulong, q_ulong, tagRECT *, q_ulong, q_ulong, More...);
template <class... More>
using Scaled = void(q_ulong *, q_ulong *, tagRECT *, tagRECT *, q_ulong, q_ulong, More...);

std::vector<Row> additiveRows() {
    using plain::hasExtent, plain::hasPixels, plain::signed16_16, plain::signed17_15, plain::unsigned17_15;
    using Byte = unsigned char;
    const std::initializer_list<Argument> scales = {channelWeight("scaleRed"), channelWeight("scaleGreen"),
                                                    channelWeight("scaleBlue")};
    return {
        {
            Q_MUR_OVERLOAD(iBltFast32_Add, Placed<>),
            .sentence = "Adds a rectangle.",
            .arguments = placedArguments(),
            .writes = drawsLaid<placed>,
            .reads = both<drawsLaid<placed>, seesLaid<placed>>,
            .topByte = TopByte::cleared,
            .sums = Sums::saturate,
            .arrange = place,
            .pixelOnPixel = drawWhole,
            .scenes = {{.set = slide}},
        },
        {
            Q_MUR_OVERLOAD(iBltFast32_Add, Placed<Byte, Byte, Byte>),
            .word = "scaled",
            .sentence = "Adds a rectangle scaled in brightness; red and green wrap, blue saturates.",
            .arguments = placedArguments(scales),
            .writes = drawsLaid<placed>,
            .reads = both<drawsLaid<placed>, seesLaid<placed>>,
            .topByte = TopByte::cleared,
            .sums = Sums::wrap,
            .arrange = place,
            .pixelOnPixel = drawWhole,
            .scenes = {{.set = slide}},
        },
        {
            Q_MUR_OVERLOAD(iBltNear32_Add, Scaled<>),
            .sentence = "Adds a rectangle scaled onto another, nearest pixel; a carry of blue sets green's lowest bit.",
            .arguments = scaledArguments(),
            .writes = drawsScaled<hasExtent>,
            .reads = both<drawsScaled<hasExtent>, seesNearest<signed17_15, hasExtent>>,
            .topByte = TopByte::cleared,
            .sums = Sums::carryOver,
            .arrange = scaleLongSometimes,
            .pixelOnPixel = drawWhole,
            .scenes = {{.set = zoom}},
        },
        {
            Q_MUR_OVERLOAD(iBltNear32_Add, Scaled<Byte, Byte, Byte>),
            .word = "scaled",
            .sentence = "The same scaled in brightness; red and green wrap, blue saturates.",
            .arguments = scaledArguments(scales),
            .writes = drawsScaled<hasPixels>,
            .reads = both<drawsScaled<hasPixels>, seesNearest<unsigned17_15, hasPixels>>,
            .topByte = TopByte::cleared,
            .sums = Sums::wrap,
            .arrange = scaleLongSometimes,
            .pixelOnPixel = drawWhole,
            .scenes = {{.set = zoom}},
        },
        {
            Q_MUR_OVERLOAD(iBltBilinear32_Add, Scaled<>),
            .sentence = "Adds a rectangle scaled onto another, filtered.",
            .arguments = scaledArguments(),
            .writes = drawsScaled<hasPixels>,
            .reads = both<drawsScaled<hasPixels>, seesInside<signed17_15, hasPixels>>,
            .topByte = TopByte::cleared,
            .sums = Sums::saturate,
            .arrange = scaleLongSometimes,
            .pixelOnPixel = drawWhole,
            .scenes = {{.set = zoom}},
        },
        {
            Q_MUR_OVERLOAD(iBltBilinear32_Add, Scaled<Byte, Byte, Byte>),
            .word = "scaled",
            .sentence = "The same scaled in brightness.",
            .arguments = scaledArguments(scales),
            .writes = drawsScaled<hasPixels>,
            .reads = both<drawsScaled<hasPixels>, seesInside<unsigned17_15, hasPixels>>,
            .topByte = TopByte::cleared,
            .sums = Sums::saturate,
            .arrange = scaleLongSometimes,
            .pixelOnPixel = drawWhole,
            .scenes = {{.set = zoom}},
        },
        {
            Q_MUR_FUNCTION(iBltFast32_KeySrc_Add),
            .sentence = "Adds the pixels of a rectangle that are not 0.",
            .arguments = placedArguments({unused("key")}),
            .writes = drawsLaid<placed>,
            .reads = both<drawsLaid<placed>, seesLaid<placed>>,
            .topByte = TopByte::cleared,
            .sums = Sums::saturate,
            .arrange = inTurn(place, punchHoles),
            .pixelOnPixel = drawWhole,
            .scenes = {{.set = inTurn(takeSprite, slide)}},
        },
        {
            Q_MUR_FUNCTION(iBltNear32SafeKeySrcAdd),
            .sentence = "Adds a rectangle scaled onto another, nearest pixel, without the pixels that are 0, clipped.",
            .arguments = scaledArguments({extent("clipWidth", "dst"), extent("clipHeight", "dst")}),
            .writes = drawsScaled<hasExtent>,
            .reads = both<drawsScaled<hasExtent>, seesNearest<signed16_16, hasExtent>>,
            .topByte = TopByte::cleared,
            .sums = Sums::saturate,
            .arrange = inTurn(scaleAnywhere, punchHoles, scaleLongSometimes),
            .pixelOnPixel = drawWhole,
            .scenes = {{.set = inTurn(takeSprite, zoom)}},
        },
        {
            Q_MUR_FUNCTION(iBltNear32_Add_KeySrc),
            .sentence = "Adds a rectangle around a centre, within half its diagonal, without the pixels that are 0.",
            .arguments = {destination(), pitch("dstPitch", "dst"), source(), pitch("srcPitch", "src"),
                          clip("clipRect", "dst"), rectangle("srcRect", "src"), position("centreX", "dst"),
                          position("centreY", "dst")},
            .writes = drawsLaid<centredWithinDiagonal>,
            .reads = both<drawsLaid<centredWithinDiagonal>, seesLaid<centredWithinDiagonal>>,
            .topByte = TopByte::cleared,
            .sums = Sums::saturate,
            .arrange = inTurn(centreAnywhere, punchHoles),
            .pixelOnPixel = drawWhole,
            .scenes = {{.set = inTurn(takeSprite, slideCentre)}},
        },
    };
}

std::vector<Row> colourKeyRows() {
    using plain::unsigned17_15;
    return {
        {
            Q_MUR_FUNCTION(iBltFast32_KeySrc),
            .sentence = "Copies a rectangle without the pixels that equal a key.",
            .arguments = placedArguments({key()}),
            .writes = drawsLaid<placed>,
            .reads = both<drawsLaid<placed>, seesLaid<placed>>,
            .topByte = TopByte::copied,
            .sums = Sums::stayInside,
            .arrange = inTurn(place, meetKey),
            .pixelOnPixel = drawWhole,
            .scenes = {{.set = inTurn(takeSprite, slide)}},
        },
        {
            Q_MUR_FUNCTION(iBltNear32_KeySrc),
            .sentence = "Scales a rectangle onto another, nearest pixel, without the pixels that equal a key.",
            .arguments = scaledArguments({key()}),
            .writes = drawsScaled<anySource>,
            .reads = both<drawsScaled<anySource>, seesNearest<unsigned17_15>>,
            .topByte = TopByte::copied,
            .sums = Sums::stayInside,
            .arrange = inTurn(turnSourceOut, meetKey, scaleLongSometimes),
            .pixelOnPixel = drawWhole,
            .scenes = {{.set = inTurn(takeSprite, zoom)}},
        },
        {
            Q_MUR_FUNCTION(iBltBilinear32_KeySrc),
            .sentence = "Scales a rectangle onto another, filtered, without what filters to exactly a key.",
            .arguments = scaledArguments({key()}),
            .writes = drawsScaled<anySource>,
            .reads = both<drawsScaled<anySource>, seesInside<unsigned17_15>>,
            .topByte = TopByte::cleared,
            .sums = Sums::stayInside,
            .arrange = inTurn(turnSourceOut, meetKey, scaleLongSometimes),
            .pixelOnPixel = drawWhole,
            .scenes = {{.set = inTurn(takeSprite, zoom)}},
        },
        {
            Q_MUR_FUNCTION(iBltFast32SafeKeySrc),
            .sentence = "Copies a rectangle around a centre without the pixels that are 0, clipped.",
            .arguments = centredArguments(),
            .writes = drawsLaid<centred<0>>,
            .reads = both<drawsLaid<centred<0>>, seesLaid<centred<0>>>,
            .topByte = TopByte::copied,
            .sums = Sums::stayInside,
            .arrange = inTurn(centreAnywhere, punchHoles),
            .pixelOnPixel = drawWhole,
            .scenes = {{.set = inTurn(takeSprite, slideCentre)}},
        },
    };
}

std::vector<Row> alphaRows() {
    return {
        {
            Q_MUR_FUNCTION(iBltFast32Alpha),
            .sentence = "Blends a rectangle of the source over the same place of the destination.",
            .arguments = {destination(), source(), position("offsetX", "dst", {0, 0}),
                          position("offsetY", "dst", {0, 0}), rectangle("rect", "dst"), pitch("dstPitch", "dst"),
                          pitch("srcPitch", "src"), anyAlphaArgument()},
            .writes = drawsLaid<moved>,
            .reads = both<drawsLaid<moved>, seesLaid<moved>>,
            .topByte = TopByte::cleared,
            .sums = Sums::carryOver,
            .arrange = inTurn(moveRect, chooseAlpha),
            .pixelOnPixel = drawWhole,
            .scenes = {{.set = nullptr}},
        },
        {
            Q_MUR_FUNCTION(iBltBilinear32_Alpha),
            .sentence = "Scales a rectangle onto another, filtered, and blends it over the destination.",
            .arguments = scaledArguments({anyAlphaArgument()}),
            .writes = drawsScaled<plain::hasPixels>,
            .reads = both<drawsScaled<plain::hasPixels>, seesFiltered<plain::unsigned12_20, plain::hasPixels>>,
            .topByte = TopByte::cleared,
            .sums = Sums::carryOver,
            .arrange = inTurn(chooseAlpha, scaleLongSometimes),
            .pixelOnPixel = drawWhole,
            .scenes = {{.set = zoom}},
        },
        {
            Q_MUR_FUNCTION(iBltFast32_KeySrc_AlphaFast),
            .sentence = "Mixes the pixels of a rectangle that are not 0 half and half with the destination.",
            .arguments = placedArguments({unused("key")}),
            .writes = drawsLaid<placed>,
            .reads = both<drawsLaid<placed>, seesLaid<placed>>,
            .topByte = TopByte::cleared,
            .sums = Sums::stayInside,
            .arrange = inTurn(place, punchHoles),
            .pixelOnPixel = drawWhole,
            .scenes = {{.set = inTurn(takeSprite, slide)}},
        },
        {
            Q_MUR_FUNCTION(iBltFast32_KeySrc_Alpha),
            .sentence = "Blends the pixels of a rectangle that are not 0 over the destination.",
            .arguments = placedArguments({unused("key"), anyAlphaArgument()}),
            .writes = drawsLaid<placed>,
            .reads = both<drawsLaid<placed>, seesLaid<placed>>,
            .topByte = TopByte::cleared,
            .sums = Sums::carryOver,
            .arrange = inTurn(place, punchHoles, chooseAlpha),
            .pixelOnPixel = drawWhole,
            .scenes = {{.set = inTurn(takeSprite, slide)}},
        },
        {
            Q_MUR_FUNCTION(iBltFast32SafeAlpha_Channel),
            .sentence = "Blends a rectangle around a centre by the top byte of each source pixel, clipped.",
            .arguments = centredArguments(),
            .writes = drawsLaid<centred<0>>,
            .reads = both<drawsLaid<centred<0>>, seesLaid<centred<0>>>,
            .topByte = TopByte::cleared,
            .sums = Sums::stayInside,
            .arrange = inTurn(centreAnywhere, punchHoles),
            .pixelOnPixel = drawWhole,
            .scenes = {{.set = inTurn(takeSprite, slideCentre)}},
        },
        {
            Q_MUR_FUNCTION(iBltFast32SafeKeySrcAntiAliasing),
            .sentence = "Copies a sprite around a centre and softens its outline, clipped and without its last row.",
            .arguments = centredArguments(),
            .writes = drawsLaid<centred<1>>,
            .reads = both<drawsLaid<centred<1>>, seesLaid<centred<1>, 1>>,
            .topByte = TopByte::copied,
            .sums = Sums::carryOver,
            .arrange = inTurn(centreAnywhere, punchHoles),
            .scenes = {{.set = inTurn(takeSprite, slideCentre)}},
        },
        {
            Q_MUR_FUNCTION(iBltFast32AlphaChannelSafe),
            .sentence = "Blends a source of a rectangle's size by the top byte of each of its pixels, inside a clip.",
            .arguments = {destination(), source(), position("dstX", "dst", {0, 0}), position("dstY", "dst", {0, 0}),
                          rectangle("srcRect", "src"), clip("clipRect", "dst"), pitch("dstPitch", "dst"),
                          pitch("srcPitch", "src")},
            .writes = drawsLaid<placedFromOrigin>,
            .reads = both<drawsLaid<placedFromOrigin>, seesLaid<placedFromOrigin>>,
            .topByte = TopByte::cleared,
            .sums = Sums::stayInside,
            .arrange = inTurn(placeAnywhere, punchHoles),
            .pixelOnPixel = drawWhole,
            .scenes = {{.set = inTurn(takeSprite, slide)}},
        },
    };
}

std::vector<Row> otherRows() {
    return {
        {
            Q_MUR_FUNCTION_WITHOUT_TWIN(iTextOut), // the letters are the platform's
            .sentence = "Writes a text in a bold face, clipped to a width and a height.",
            .arguments =
                {destination(),
                 clip("clipRect", "dst"),
                 pitch("pitch", "dst"),
                 {.name = "text", .kind = Kind::text, .unit = "characters of code page 1252", .mayBeNull = true},
                 {.name = "colour", .kind = Kind::colour, .unit = "0x00BBGGRR", .contract = {0, 0xFFFFFF}},
                 position("x", "dst", {0.05, 0.3}),
                 position("y", "dst", {0.2, 0.2}),
                 number("fontHeight", "pixels", anyInt, {40, 40}),
                 {.name = "fontName", .kind = Kind::text, .unit = "name of a face", .mayBeNull = true}},
            .writes = writesText,
            .reads = readsText,
            .topByte = TopByte::cleared,
            .arrange = chooseText,
            .scenes = {{.set = writeLine, .figures = 1, .figure = "texts"}},
        },
        {
            Q_MUR_FUNCTION(i3DBltNear32),
            .sentence = "Does nothing.",
        },
    };
}

} // namespace

std::vector<Row> blitRows() {
    std::vector<Row> rows;
    for (const auto family : {copyRows, scalingRows, additiveRows, colourKeyRows, alphaRows, otherRows})
        for (Row &row : family()) {
            if (row.argument("src")) // all blits run rows top to bottom and pixels left to right
                row.overlap = Overlap::rowOrder;
            rows.push_back(std::move(row));
        }
    return rows;
}

} // namespace catalogue
