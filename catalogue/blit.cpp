#include "plain/blit.h"

#include "areas.h"
#include "arguments.h"
#include "plain/scaled_blit.h"

#include <cstring>

namespace catalogue {
namespace {

using enum TopByte;
using enum Sum;
using Fractions::cutOff, Fractions::notCounted;
using plain::hasExtent, plain::hasPixels, plain::PositionFormat;
using plain::signed12_20, plain::signed16_16, plain::signed17_15, plain::unsigned12_20, plain::unsigned17_15;
using Uniform::darkens, Uniform::stays;

/// What bounds the drawing: a rectangle, or a width and a height from (0, 0); `otherwise` where nothing does.
Box clipOf(const Call &call, const Box &otherwise) {
    if (call.row().argument("clipRect"))
        return call["clipRect"].rect();
    if (call.row().argument("clipWidth"))
        return {0, 0, call["clipWidth"].whole(), call["clipHeight"].whole()};
    return otherwise;
}

// Unscaled blits: an area of the source lies somewhere in the destination, pixel on pixel.

/// A source as it lies on the destination: the part that is drawn, and how far from it the source's pixels lie.
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

Laid atPlace(const Call &call) {
    return laidAt(call, call["dstX"].whole(), call["dstY"].whole(), call["srcRect"].rect());
}

/// Of the source rectangle only the size counts.
Laid fromOrigin(const Call &call) {
    const tagRECT rect = call["srcRect"].rect();
    return laidAt(call, call["dstX"].whole(), call["dstY"].whole(), {0, 0, widthOf(rect), heightOf(rect)});
}

/// The same place on both surfaces.
Laid moved(const Call &call) {
    const tagRECT rect = call["rect"].rect();
    const std::int64_t x = rect.left + std::int64_t{call["offsetX"].whole()};
    const std::int64_t y = rect.top + std::int64_t{call["offsetY"].whole()};
    return {laidAt(call, x, y, rect).part, 0, 0};
}

template <int rowsLeftOut>
Laid aroundCentre(const Call &call) {
    const tagRECT rect = call["srcRect"].rect();
    const int halfWidth = widthOf(rect) >> 1;
    const int halfHeight = heightOf(rect) >> 1;
    const auto right = static_cast<q_long>(plain::signed32(rect.left + 2LL * halfWidth));
    const auto bottom = static_cast<q_long>(plain::signed32(rect.top + 2LL * halfHeight - rowsLeftOut));
    return laidAt(call, std::int64_t{call["centreX"].whole()} - halfWidth,
                  std::int64_t{call["centreY"].whole()} - halfHeight, {rect.left, rect.top, right, bottom});
}

/// The squares are added in 32 bits.
bool diagonalIsWithinFormat(const Call &call) {
    const Box rect = call["srcRect"].rect();
    constexpr std::int64_t end = std::int64_t{1} << 31;
    constexpr std::int64_t most = 46340; // whose square is below the end
    return std::max(std::abs(rect.width()), std::abs(rect.height())) <= most &&
           rect.width() * rect.width() + rect.height() * rect.height() < end;
}

/// Cut to half the source's diagonal.
Laid withinDiagonal(const Call &call) {
    const tagRECT rect = call["srcRect"].rect();
    const std::int64_t x = call["centreX"].whole();
    const std::int64_t y = call["centreY"].whole();
    const std::int64_t reach = plain::halfDiagonal(rect);
    const Laid laid = laidAt(call, x - ((std::int64_t{rect.left} + rect.right) >> 1) + rect.left,
                             y - ((std::int64_t{rect.top} + rect.bottom) >> 1) + rect.top, rect);
    return {common(laid.part, {x - reach, y - reach, x + reach, y + reach}), laid.dx, laid.dy};
}

// Scaled blits: an area of the source is stretched over one of the destination.

bool anySource(const tagRECT &) {
    return true;
}
using IsDrawn = bool (*)(const tagRECT &);

/// What is drawn of the destination, if the source is one that is drawn at all.
Region stretched(IsDrawn isDrawn = anySource) {
    return on("dst", [isDrawn](const Call &call) -> Box {
        const Box rect = call["dstRect"].rect();
        if (!isDrawn(call["srcRect"].rect()))
            return {};
        return rect.isEmpty() ? rect : common(rect, clipOf(call, rect));
    });
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

/// The source pixels that the part that is drawn looks at, and so many beside and below them.
Box seen(const Call &call, PositionFormat format, IsDrawn isDrawn, int beyond) {
    const Box part = stretched(isDrawn)(call).front().part;
    if (part.isEmpty())
        return {};
    const tagRECT dst = call["dstRect"].rect();
    const tagRECT src = call["srcRect"].rect();
    const Stretch x = stretchOf(part.left - dst.left, part.right - dst.left, widthOf(src), widthOf(dst), format);
    const Stretch y = stretchOf(part.top - dst.top, part.bottom - dst.top, heightOf(src), heightOf(dst), format);
    return {src.left + x.first, src.top + y.first, src.left + x.end + beyond, src.top + y.end + beyond};
}

Region nearest(PositionFormat format, IsDrawn isDrawn = anySource) {
    return on("src", [=](const Call &call) { return seen(call, format, isDrawn, 0); });
}
Region filtered(PositionFormat format, IsDrawn isDrawn = anySource) {
    return on("src", [=](const Call &call) { return seen(call, format, isDrawn, 1); });
}

/// Where the source has pixels its last column and row stand in for what lies behind them.
Region filteredInside(PositionFormat format, IsDrawn isDrawn = anySource) {
    return on("src", [=](const Call &call) {
        const Box src = call["srcRect"].rect();
        Box box = seen(call, format, isDrawn, 1);
        box.right -= box.right == src.right + 1 && src.width() > 0;
        box.bottom -= box.bottom == src.bottom + 1 && src.height() > 0;
        return box;
    });
}

/// Nothing below the last row, and nothing to its right where no pixel at least comes behind.
Box filteredAbove(const Call &call) {
    const tagRECT src = call["srcRect"].rect();
    const std::int64_t right = src.left + std::max<std::int64_t>(widthOf(src), 1);
    const std::int64_t bottom = src.top + std::max<std::int64_t>(heightOf(src), 1);
    Box box = seen(call, unsigned12_20, anySource, 1);
    if (heightOf(src) < 0 && call["src"].plane().pitch() < 0) // the product that tells the last row is above 0
        return box;
    box.bottom -= box.bottom == bottom + 1;
    if (box.bottom == bottom && box.right == right + 1 && call["src"].plane().pitch() < widthOf(src) + 2LL)
        --box.right;
    return box;
}

bool sizesAreEqual(const Call &call) {
    const tagRECT dst = call["dstRect"].rect();
    const tagRECT src = call["srcRect"].rect();
    return widthOf(dst) == widthOf(src) && heightOf(dst) == heightOf(src);
}
Box adaptively(const Call &call) {
    return sizesAreEqual(call) ? Box(call["srcRect"].rect()) : filteredAbove(call);
}

/// Positions hold the source, wherever something is drawn.
bool sourceIsWithinFormat(const Call &call) {
    const Box source = call["srcRect"].rect();
    const std::int64_t end = call.row().positions->end();
    const auto holds = [end](std::int64_t extent) { return extent < end && extent >= -end; };
    return (holds(source.width()) && holds(source.height())) || call.row().writes(call).front().part.isEmpty();
}
bool isCopiedOrWithinFormat(const Call &call) {
    return sizesAreEqual(call) || sourceIsWithinFormat(call);
}

// Rectangles in sixteenths of a pixel.

Box drawnSixteenths(const Call &call) {
    const tagRECT dst = call["dstRect"].rect();
    if (widthOf(dst) == 0 || heightOf(dst) == 0)
        return {};
    return boxOf(dst.left / 16, dst.top / 16, widthOf(dst) / 16 + 1, heightOf(dst) / 16 + 1);
}

Box seenSixteenths(const Call &call) {
    const Box part = drawnSixteenths(call);
    if (part.isEmpty())
        return {};
    const tagRECT dst = call["dstRect"].rect();
    const tagRECT src = call["srcRect"].rect();
    const Stretch x = stretchOf(0, part.width(), widthOf(src), widthOf(dst), plain::signed15_17,
                                plain::perfectStart(src.left, dst.left));
    const Stretch y = stretchOf(0, part.height(), heightOf(src), heightOf(dst), plain::signed15_17,
                                plain::perfectStart(src.top, dst.top));
    const int left = static_cast<int>(src.left / 16);
    const int top = static_cast<int>(src.top / 16);
    return {left + x.first, top + y.first, left + x.end + 1, top + y.end + 1};
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
    const Plane &dst = call["dst"].plane();
    const bool isOpen = random.oneIn(2);
    call["clipWidth"] = isOpen ? dst.width() : random.between(-1, dst.width());
    call["clipHeight"] = isOpen ? dst.height() : random.between(-1, dst.height());
}

/// Places from which so many columns and rows reach the clip.
tagPOINT placeOnClip(const Call &call, Random &random, int width, int height) {
    const Box clip = common(Box(call["dst"].plane().rect()), clipOf(call, call["dst"].plane().rect()));
    const auto place = [&random](std::int64_t begin, std::int64_t end, int extent) {
        const auto low = static_cast<int>(begin) - std::max(extent, 1) + 1;
        return random.between(low, std::max(static_cast<int>(end) - 1, low));
    };
    const int x = place(clip.left, clip.right, width);
    return {x, place(clip.top, clip.bottom, height)};
}

/// Moves a random area to where it fits; where there is a clip, anywhere.
void place(Call &call, Random &random) {
    const Plane &dst = call["dst"].plane();
    const bool isClipped = call.row().argument("clipWidth") || call.row().argument("clipRect");
    tagRECT &rect = call["srcRect"].rect();
    if (!isClipped)
        rect = common(rect, {0, 0, rect.left + dst.width(), rect.top + dst.height()});
    chooseClip(call, random);
    if (isClipped && random.oneIn(2)) {
        const tagPOINT corner = placeOnClip(call, random, widthOf(rect), heightOf(rect));
        call.set({{"dstX", corner.x}, {"dstY", corner.y}});
        return;
    }
    call["dstX"] = isClipped ? anyPlace(random) : random.between(0, dst.width() - std::max(widthOf(rect), 0));
    call["dstY"] = isClipped ? anyPlace(random) : random.between(0, dst.height() - std::max(heightOf(rect), 0));
}

/// Now and then the source begins before its surface, in the margin.
void centre(Call &call, Random &random) {
    if (random.oneIn(2))
        call["srcRect"] = call["src"].plane().rect();
    const int before = random.oneIn(4) ? random.between(0, 6) : 0;
    const tagRECT rect = call["srcRect"].rect();
    call["srcRect"] = tagRECT{rect.left - before, rect.top - before, rect.right - before, rect.bottom - before};
    chooseClip(call, random);
    if (random.oneIn(2)) {
        const int halfWidth = widthOf(rect) >> 1;
        const int halfHeight = heightOf(rect) >> 1;
        const tagPOINT corner = placeOnClip(call, random, 2 * halfWidth, 2 * halfHeight);
        call.set({{"centreX", static_cast<int>(corner.x) + halfWidth},
                  {"centreY", static_cast<int>(corner.y) + halfHeight}});
        return;
    }
    call.set({{"centreX", anyPlace(random)}, {"centreY", anyPlace(random)}});
}

void moveRect(Call &call, Random &random) {
    const tagRECT both = common(call["dst"].plane().rect(), call["src"].plane().rect());
    const tagRECT rect = random.rectInsideOrEmpty(widthOf(both), heightOf(both));
    const int x = random.between(-30, 30);
    const int y = random.between(-30, 30);
    call.set({{"offsetX", x}, {"offsetY", y}});
    call["rect"] = tagRECT{rect.left - x, rect.top - y, rect.right - x, rect.bottom - y};
}

/// Pixels without a margin around them.
Plane tightSurface(Random &random, int width, int height, int extraPitch = 0) {
    const Plane plane(4, width, height, 0, extraPitch);
    return plane.fill({0, 0, plane.pitch(), height}, [&random](int, int) { return random.pixel(); });
}

/// Now and then everything is drawn over everything, in surfaces whose rows follow each other without a gap.
void packSometimes(Call &call, Random &random) {
    if (!random.oneIn(8))
        return;
    const int width = random.between(1, 12);
    const int height = random.between(1, 12);
    for (std::size_t i = 0; i < call.size(); ++i) {
        const Kind kind = call.row().arguments[i].kind;
        if (call[i].is<Plane>())
            call[i] = tightSurface(random, width, height);
        else if (kind == Kind::rectangle)
            call[i] = tagRECT{0, 0, width, height};
        else if (kind == Kind::position || kind == Kind::extent)
            call[i] = kind == Kind::extent ? 20 : 0;
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
    call.set({{"src", line(random.between(1000, 2000))}, {"dst", line(random.between(500, 1500))}});
    for (const char *rect : {"srcRect", "dstRect", "clipRect"})
        if (call.row().argument(rect))
            call[rect] = call[rect[0] == 's' ? "src" : "dst"].plane().rect();
    if (call.row().argument("clipWidth")) {
        call["clipWidth"] = call["dst"].plane().width();
        call["clipHeight"] = call["dst"].plane().height();
    }
}

/// A source turned inside out counts as huge, so the contract has none.
void keepUpright(Call &call, Random &) {
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
    const tagRECT dst = call["dstRect"].rect();
    const tagRECT rect = {0, 0, widthOf(dst), heightOf(dst)};
    const Plane &src = call["src"].plane();
    if (random.oneIn(6) && rect.right <= src.width() && rect.bottom <= src.height())
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
    if (random.oneIn(2))
        return;
    const int width = random.between(1, 40);
    const int height = random.between(1, 40);
    const tagPOINT corner = placeOnClip(call, random, width, height);
    call["dstRect"] = tagRECT{corner.x, corner.y, corner.x + width, corner.y + height};
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
    if (random.oneIn(2))
        return;
    const q_ulong key = call["key"].word() & (random.oneIn(2) ? 0xFFFFFF : 0xFFFFFFFF);
    const q_ulong other = random.pixel();
    call["key"] = key;
    const Plane &src = call["src"].plane();
    src.fill(src.rect(), [&](int, int) { return random.oneIn(3) ? other : key; });
}

/// Every other source is a sprite, mostly of one piece.
void punchHoles(Call &call, Random &random) {
    if (random.oneIn(2))
        return;
    const Plane &src = call["src"].plane();
    src.fill({-1, -1, src.width() + 1, src.height() + 1},
             [&](int x, int y) { return random.oneIn(6) ? 0 : src.at(x, y) | 0x01000000; });
}

/// Mostly within 0 to 1, in steps of 1/256 and between them; else outside, sometimes far.
auto chooseReal(std::string_view name) {
    return [name](Call &call, Random &random) {
        const int kind = random.between(0, 9);
        const auto anything = [&] {
            return random.between(static_cast<int>(anyInt.low), static_cast<int>(anyInt.high));
        };
        call[name] = kind == 0   ? random.between(-1024, 1280) / 256.0
                     : kind == 1 ? anything() / 64.0
                     : kind == 2 ? anything() * 1.0e5
                                 : random.between(0, 4096) / 4096.0;
    };
}
const auto chooseAlpha = chooseReal("alpha");

// The whole of the source over the whole of the destination

void drawWhole(Call &call) {
    const Plane &dst = call["dst"].plane();
    for (std::size_t i = 0; i < call.size(); ++i) {
        const Argument &argument = call.row().arguments[i];
        const bool isDown = argument.name.ends_with("Y") || argument.name == "clipHeight";
        const int size = isDown ? dst.height() : dst.width();
        if (argument.kind == Kind::rectangle || argument.kind == Kind::clip)
            call[i] = dst.rect();
        else if (argument.kind == Kind::extent)
            call[i] = size;
        else if (argument.kind == Kind::position)
            call[i] = argument.name.starts_with("centre") ? size / 2 : 0;
    }
}

/// Writes one column and row more than the whole pixels.
void drawWholeSixteenths(Call &call) {
    const Plane &dst = call["dst"].plane();
    call["dstRect"] = call["srcRect"] = tagRECT{0, 0, (dst.width() - 1) * 16, (dst.height() - 1) * 16};
}

// Scenes: at their beginning they draw all over the stage.

/// The source comes in from the left as far as the stage has room for it.
void slide(Call &call, const Stage &stage) {
    const int shift = static_cast<int>(stage.width * stage.along({0, 0.25}));
    call["dstX"] = shift;
    call["srcRect"] = tagRECT{0, 0, stage.width - shift, stage.height};
}

void shrink(Call &call, const Stage &stage) {
    const auto margin = static_cast<int>(stage.height * stage.along({0, 0.3}));
    call["rect"] = tagRECT{margin, margin, stage.width - margin, stage.height - margin};
}

/// An ever smaller part of the source's middle over the whole stage.
void zoom(Call &call, const Stage &stage) {
    const double share = stage.along({0.75, 0.25});
    const int width = static_cast<int>(stage.width * share);
    const int height = static_cast<int>(stage.height * share);
    const int left = (stage.width - width) / 2;
    const int top = (stage.height - height) / 2;
    call["srcRect"] = tagRECT{left, top, left + width, top + height};
}

/// So small a part that its pixels can be told from each other.
void zoomIn(Call &call, const Stage &stage) {
    const double share = stage.along({0.4, 0.06});
    const int width = static_cast<int>(stage.width * share);
    const int height = static_cast<int>(stage.height * share);
    const int left = static_cast<int>(stage.width * 0.49 - width / 2);
    const int top = static_cast<int>(stage.height * 0.28 - height / 4);
    call["srcRect"] = tagRECT{left, top, left + width, top + height};
}

/// A source that drifts by sixteenths of a pixel, no larger than the format of its positions allows.
void drift(Call &call, const Stage &stage) {
    const int columns = std::min(stage.width, 1000) - 4;
    const int rows = std::min(stage.height, 1000) - 4;
    const int left = 23 + static_cast<int>(stage.along({0, 32}));
    call["dstRect"] = tagRECT{3, 5, 3 + columns * 16, 5 + rows * 16};
    call["srcRect"] = tagRECT{left, 41, left + columns * 16, 41 + rows * 16};
}

/// The same, so large that the steps are seen.
void driftMagnified(Call &call, const Stage &stage) {
    const int left = 190 * 16 + static_cast<int>(stage.along({0, 32}));
    call["dstRect"] = tagRECT{20 * 16 + 3, 12 * 16 + 5, (stage.width - 20) * 16 + 3, (stage.height - 12) * 16 + 5};
    call["srcRect"] = tagRECT{left, 72 * 16, left + 36 * 16, 92 * 16};
}

const Scene ofSprite = {.set = [](Call &call, const Stage &stage) { call["src"] = stage.sprite(); }};

const Scene packed = {"without gaps between rows", [](Call &call, const Stage &stage) {
                          for (std::size_t i = 0; i < call.size(); ++i) {
                              if (!call[i].is<Plane>())
                                  continue;
                              const Plane from = call[i].plane();
                              const Plane plane(4, stage.width, stage.height);
                              call[i] = plane.fill(plane.rect(), [&from](int x, int y) { return from.at(x, y); });
                          }
                      }};

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
    call.set({{"text", characters(text)}, {"fontName", characters("DejaVu Sans")}});
    call.set({{"colour", random.pixel() & 0xFFFFFF}, {"fontHeight", random.between(6, 20)}});
    const bool isNear = random.oneIn(2);
    chooseWhole({"x", "y"}, isNear ? -2 : -20, isNear ? 2 : 16)(call, random);
}

/// Of the clip only the size counts.
Box textBox(const Call &call) {
    const tagRECT clip = call["clipRect"].rect();
    return boxOf(0, 0, widthOf(clip), heightOf(clip));
}
Areas readsText(const Call &call) {
    return {{"text", call["text"].plane().rect()}, {"fontName", call["fontName"].plane().rect()}};
}

void writeLine(Call &call, const Stage &) {
    call.set({{"text", characters("Letters on a page")}, {"fontName", characters("DejaVu Sans")}});
    call["colour"] = 0xFFFFFF;
}

// What the rows of a family have in common, which completes the rest of a row. What is its own stands behind the
// arguments of the family.

/// A scene in which the source moves, too.
Row moving(Row row, void (*move)(Call &, const Stage &)) {
    if (row.scenes.empty())
        row.scenes = {{}};
    row.scenes.front().set = inTurn(row.scenes.front().set, move);
    return row;
}

/// Pixel on pixel, where `lay` says, and the source's neighbours `around` them.
template <class Lay>
Row laid(Row row, Lay lay, int around = 0) {
    row.writes = on("dst", [lay](const Call &call) { return lay(call).part; });
    row.reads = on("src", [lay, around](const Call &call) {
        const auto [part, dx, dy] = lay(call);
        const Box below = {part.left + dx, part.top + dy, part.right + dx, part.bottom + dy};
        return grown(below, around, around, around, around);
    });
    return row;
}

const Arguments surfaces = {destination(), source()};
const Arguments pitches = {pitch("dstPitch", "dst"), pitch("srcPitch", "src")};
const Arguments clipSize = each({"clipWidth", "clipHeight"}, extent("", "dst"));
const Arguments corner = each({"dstX", "dstY"}, position("", "dst", {0, 0}));
const Arguments centreInSlide = {position("centreX", "dst", {0.5, 0.75}), position("centreY", "dst")};
const Arguments srcRect = {rectangle("srcRect", "src")};
const Arguments dstRect = {rectangle("dstRect", "dst")};

Row placed(Row row) {
    row.arguments = surfaces + corner + srcRect + pitches + row.arguments;
    row.arrange = inTurn(place, row.arrange);
    row.pixelOnPixel = drawWhole;
    return moving(laid(std::move(row), atPlace), slide);
}

template <int rowsLeftOut = 0>
Row centred(Row row, int around = 0) {
    row.arguments = surfaces + centreInSlide + srcRect + pitches + clipSize;
    row.arrange = inTurn(centre, punchHoles);
    row.scenes = {ofSprite};
    return laid(std::move(row), aroundCentre<rowsLeftOut>, around);
}

Row scaled(Row row, IsDrawn isDrawn = anySource) {
    row.arguments = surfaces + dstRect + srcRect + pitches + row.arguments;
    row.writes = stretched(isDrawn);
    row.arrange = inTurn(row.arrange, scaleLongSometimes);
    row.pixelOnPixel = drawWhole;
    if (row.scenes.empty() || !row.scenes.front().set)
        row.picture = Scene{.set = zoomIn};
    return moving(std::move(row), zoom);
}

/// Rows that read what they draw over.
std::vector<Row> mixing(std::vector<Row> rows) {
    for (Row &row : rows)
        row.reads = row.writes + row.reads;
    return rows;
}

// Rows, one family after the other

std::vector<Row> copyRows() {
    const Arguments filled = {destination(), rectangle("rect", "dst"), pitch("pitch", "dst")};
    const Argument factor = {.name = "factor",
                             .kind = Kind::weight,
                             .unit = "1",
                             .contract = anyReal,
                             .inScene = {0.75, 0.25},
                             .meant = {0, 1},
                             .fractionBits = 8};
    return {
        placed({Q_MUR_FUNCTION(iBltFast32), .sentence = "Copies a rectangle.", .topByte = copied, .sums = stayInside,
                .lookup = Lookup::nearest, .arrange = packSometimes, .scenes = {{}, packed}}),
        placed({Q_MUR_FUNCTION(iBltFast32_Advanced), .sentence = "Copies a rectangle, clipped to a width and a height.",
                .arguments = clipSize, .topByte = copied, .sums = stayInside, .lookup = Lookup::nearest,
                .arrange = packSometimes, .scenes = {{}, packed}}),
        {Q_MUR_FUNCTION(iFillRect), .sentence = "Fills a rectangle with a colour, its top byte included.",
         .arguments = filled + colour(), .writes = on("dst", "rect"), .topByte = setByColour, .arrange = packSometimes,
         .pixelOnPixel = drawWhole, .scenes = {{.set = shrink}, packed}},
        {Q_MUR_FUNCTION(iFadeOut32),
         .sentence = "Scales the colours of a rectangle by a factor, or makes the gentlest fade step.",
         .arguments = filled + factor, .writes = on("dst", "rect"), .reads = on("dst", "rect"), .topByte = cleared,
         .sums = {wrap, wrap, carryOver}, .fractions = cutOff, .arrange = chooseReal("factor"),
         .pixelOnPixel = drawWhole, .scenes = {{.set = shrink}, {"gentle step", inTurn(shrink, set("factor", 0))}}},
    };
}

std::vector<Row> scalingRows() {
    const Waiver unfilteredBottomUp = {"pictures_stored_bottom_up", "a source stored bottom-up is not filtered"};
    return {
        scaled({Q_MUR_FUNCTION(iBltNear32), .sentence = "Scales a rectangle onto another, nearest pixel.",
                .reads = nearest(unsigned12_20), .topByte = copied, .sums = stayInside, .lookup = Lookup::nearest,
                .positions = unsignedBits(12, 20), .arrange = keepUpright}),
        moving({Q_MUR_FUNCTION(iBltNear32Safe),
                .sentence = "Scales a rectangle onto another, nearest pixel, inside a clip.",
                .arguments = surfaces + dstRect + srcRect + clip("clipRect", "dst") + pitches, .writes = stretched(),
                .reads = nearest(signed12_20), .topByte = copied, .sums = stayInside, .lookup = Lookup::nearest,
                .positions = signedBits(12, 20), .arrange = inTurn(scaleAnywhere, scaleLongSometimes),
                .pixelOnPixel = drawWhole},
               zoom),
        scaled({Q_MUR_FUNCTION(iBltBilinear32),
                .sentence = "Scales a rectangle onto another, filtered; what lies beyond its edges bleeds in.",
                .reads = filtered(unsigned12_20), .topByte = cleared, .sums = stayInside, .fractions = cutOff,
                .uniform = stays, .lookup = Lookup::filtered, .positions = unsignedBits(12, 20),
                .arrange = keepUpright}),
        scaled({Q_MUR_FUNCTION(iBltBilinear32Safe),
                .sentence =
                    "Scales a rectangle onto another, filtered but for the last source row, which is copied whole.",
                .reads = on("src", filteredAbove), .topByte = copied, .sums = stayInside, .fractions = cutOff,
                .uniform = stays, .lookup = Lookup::filtered, .positions = unsignedBits(12, 20),
                .arrange = inTurn(keepUpright, tightenSometimes), .waived = {unfilteredBottomUp}}),
        scaled({Q_MUR_FUNCTION(iBltAdaptive32),
                .sentence = "Scales a rectangle onto another: filtered where it grows by half, else nearest pixel.",
                .reads = on("src", adaptively), .meant = {{beyondFormat, isCopiedOrWithinFormat}}, .topByte = copied,
                .sums = stayInside, .fractions = cutOff, .uniform = stays, .lookup = Lookup::filtered,
                .positions = unsignedBits(12, 20),
                .arrange = inTurn(keepUpright, tightenSometimes, matchSizesSometimes), .waived = {unfilteredBottomUp},
                .looksLike = "Where the area grows by half or more it is `iBltBilinear32Safe()`."}),
        {Q_MUR_FUNCTION(iBltPerfect32),
         .sentence = "Copies or scales a rectangle that is placed in sixteenths of a pixel, filtered.",
         .arguments = surfaces + dstRect + srcRect + pitches, .writes = on("dst", drawnSixteenths),
         .reads = on("src", seenSixteenths), .topByte = cleared, .sums = stayInside, .fractions = cutOff,
         .uniform = stays, .lookup = Lookup::filtered, .positions = signedBits(15, 17), .arrange = chooseSixteenths,
         .pixelOnPixel = drawWholeSixteenths, .scenes = {{.set = drift}},
         .waived = {{"places_are_bounded_by_clips_alone", "places are truncated toward 0"}},
         .picture = Scene{.set = driftMagnified}},
    };
}

template <class... More>
using Placed = void(q_ulong *, q_ulong *, q_ulong, q_ulong, tagRECT *, q_ulong, q_ulong, More...);
template <class... More>
using Scaled = void(q_ulong *, q_ulong *, tagRECT *, tagRECT *, q_ulong, q_ulong, More...);

std::vector<Row> additiveRows() {
    using Byte = unsigned char;
    const Arguments scales = each({"scaleRed", "scaleGreen", "scaleBlue"}, channelWeight(""));
    return mixing({
        placed({Q_MUR_OVERLOAD(iBltFast32_Add, Placed<>), .sentence = "Adds a rectangle.", .topByte = cleared,
                .sums = saturate, .lookup = Lookup::nearest}),
        placed({Q_MUR_OVERLOAD(iBltFast32_Add, Placed<Byte, Byte, Byte>), .label = "scaled",
                .sentence = "Adds a rectangle scaled in brightness; red and green wrap, blue saturates.",
                .arguments = scales, .topByte = cleared, .sums = {wrap, wrap, saturate}, .fractions = cutOff,
                .lookup = Lookup::nearest}),
        scaled({Q_MUR_OVERLOAD(iBltNear32_Add, Scaled<>),
                .sentence =
                    "Adds a rectangle scaled onto another, nearest pixel; a carry of blue sets green's lowest bit.",
                .reads = nearest(signed17_15, hasExtent), .topByte = cleared, .sums = {saturate, saturate, carryOver},
                .lookup = Lookup::nearest, .positions = signedBits(17, 15)},
               hasExtent),
        scaled({Q_MUR_OVERLOAD(iBltNear32_Add, Scaled<Byte, Byte, Byte>), .label = "scaled",
                .sentence = "Adds a rectangle scaled onto another and in brightness, nearest pixel; red and green "
                            "wrap, blue saturates.",
                .arguments = scales, .reads = nearest(unsigned17_15, hasPixels), .topByte = cleared,
                .sums = {wrap, wrap, saturate}, .fractions = cutOff, .lookup = Lookup::nearest,
                .positions = unsignedBits(17, 15)},
               hasPixels),
        scaled({Q_MUR_OVERLOAD(iBltBilinear32_Add, Scaled<>),
                .sentence = "Adds a rectangle scaled onto another, filtered.",
                .reads = filteredInside(signed17_15, hasPixels), .topByte = cleared, .sums = saturate,
                .fractions = cutOff, .lookup = Lookup::filtered, .positions = signedBits(17, 15)},
               hasPixels),
        scaled({Q_MUR_OVERLOAD(iBltBilinear32_Add, Scaled<Byte, Byte, Byte>), .label = "scaled",
                .sentence = "Adds a rectangle scaled onto another and in brightness, filtered.", .arguments = scales,
                .reads = filteredInside(unsigned17_15, hasPixels), .topByte = cleared, .sums = saturate,
                .fractions = cutOff, .lookup = Lookup::filtered, .positions = unsignedBits(17, 15)},
               hasPixels),
        placed({Q_MUR_FUNCTION(iBltFast32_KeySrc_Add), .sentence = "Adds the pixels of a rectangle that are not 0.",
                .arguments = {unused("key")}, .topByte = cleared, .sums = saturate, .lookup = Lookup::nearest,
                .arrange = punchHoles, .scenes = {ofSprite}}),
        scaled(
            {Q_MUR_FUNCTION(iBltNear32SafeKeySrcAdd),
             .sentence = "Adds a rectangle scaled onto another, nearest pixel, without the pixels that are 0, clipped.",
             .arguments = clipSize, .reads = nearest(signed16_16, hasExtent), .topByte = cleared, .sums = saturate,
             .lookup = Lookup::nearest, .positions = signedBits(16, 16), .arrange = inTurn(scaleAnywhere, punchHoles),
             .scenes = {ofSprite}},
            hasExtent),
        laid({Q_MUR_FUNCTION(iBltNear32_Add_KeySrc),
              .sentence = "Adds a rectangle around a centre, within half its diagonal, without the pixels that are 0.",
              .arguments = destination() + pitch("dstPitch", "dst") + source() + pitch("srcPitch", "src") +
                           clip("clipRect", "dst") + srcRect + centreInSlide,
              .rules = {{"{srcRect} has a diagonal of 46341 pixels or more", diagonalIsWithinFormat}},
              .topByte = cleared, .sums = saturate, .lookup = Lookup::nearest, .arrange = inTurn(centre, punchHoles),
              .pixelOnPixel = drawWhole, .scenes = {ofSprite},
              .looksLike = "Placed by its centre, and clipped, what `iBltFast32_KeySrc_Add()` adds by its corner."},
             withinDiagonal),
    });
}

std::vector<Row> colourKeyRows() {
    return mixing({
        placed({Q_MUR_FUNCTION(iBltFast32_KeySrc),
                .sentence = "Copies a rectangle without the pixels that equal a key.", .arguments = {key()},
                .topByte = copied, .sums = stayInside, .lookup = Lookup::nearest, .arrange = meetKey,
                .scenes = {ofSprite}}),
        scaled({Q_MUR_FUNCTION(iBltNear32_KeySrc),
                .sentence = "Scales a rectangle onto another, nearest pixel, without the pixels that equal a key.",
                .arguments = {key()}, .reads = nearest(unsigned17_15), .topByte = copied, .sums = stayInside,
                .lookup = Lookup::nearest, .positions = unsignedBits(17, 15), .arrange = inTurn(keepUpright, meetKey),
                .scenes = {ofSprite}}),
        scaled({Q_MUR_FUNCTION(iBltBilinear32_KeySrc),
                .sentence = "Scales a rectangle onto another, filtered, without what filters to exactly a key.",
                .arguments = {key()}, .reads = filteredInside(unsigned17_15), .topByte = cleared, .sums = stayInside,
                .fractions = cutOff, .uniform = stays, .lookup = Lookup::filtered, .positions = unsignedBits(17, 15),
                .arrange = inTurn(keepUpright, meetKey), .scenes = {ofSprite}}),
        centred({Q_MUR_FUNCTION(iBltFast32SafeKeySrc),
                 .sentence = "Copies a rectangle around a centre without the pixels that are 0, clipped.",
                 .topByte = copied, .sums = stayInside, .lookup = Lookup::nearest, .pixelOnPixel = drawWhole}),
    });
}

std::vector<Row> alphaRows() {
    return mixing({
        laid({Q_MUR_FUNCTION(iBltFast32Alpha),
              .sentence = "Blends a rectangle of the source over the same place of the destination.",
              .arguments = surfaces + each({"offsetX", "offsetY"}, position("", "dst", {0, 0})) +
                           rectangle("rect", "dst") + pitches + alpha(),
              .topByte = cleared, .sums = {wrap, wrap, carryOver}, .fractions = cutOff, .uniform = stays,
              .lookup = Lookup::nearest, .arrange = inTurn(moveRect, chooseAlpha), .pixelOnPixel = drawWhole,
              .waived = {{"places_are_bounded_by_clips_alone", "sources are read at the same places"}}},
             moved),
        scaled({Q_MUR_FUNCTION(iBltBilinear32_Alpha),
                .sentence = "Scales a rectangle onto another, filtered, and blends it over the destination.",
                .arguments = {alpha()}, .reads = filtered(unsigned12_20, hasPixels), .topByte = cleared,
                .sums = {wrap, wrap, carryOver}, .fractions = cutOff, .uniform = stays, .lookup = Lookup::filtered,
                .positions = unsignedBits(12, 20), .arrange = chooseAlpha},
               hasPixels),
        placed({Q_MUR_FUNCTION(iBltFast32_KeySrc_AlphaFast),
                .sentence = "Mixes the pixels of a rectangle that are not 0 half and half with the destination.",
                .arguments = {unused("key")}, .topByte = cleared, .sums = stayInside, .fractions = cutOff,
                .uniform = darkens, .lookup = Lookup::nearest, .arrange = punchHoles, .scenes = {ofSprite}}),
        placed({Q_MUR_FUNCTION(iBltFast32_KeySrc_Alpha),
                .sentence = "Blends the pixels of a rectangle that are not 0 over the destination.",
                .arguments = {unused("key"), alpha()}, .topByte = cleared, .sums = {wrap, wrap, carryOver},
                .fractions = cutOff, .uniform = stays, .lookup = Lookup::nearest,
                .arrange = inTurn(punchHoles, chooseAlpha), .scenes = {ofSprite}}),
        centred({Q_MUR_FUNCTION(iBltFast32SafeAlpha_Channel),
                 .sentence = "Blends a rectangle around a centre by the top byte of each source pixel, clipped.",
                 .topByte = cleared, .sums = stayInside, .fractions = cutOff, .uniform = darkens,
                 .lookup = Lookup::nearest, .pixelOnPixel = drawWhole}),
        centred<1>(
            {Q_MUR_FUNCTION(iBltFast32SafeKeySrcAntiAliasing),
             .sentence = "Copies a sprite around a centre and softens its outline, clipped and without its last row.",
             .topByte = copied, .sums = {wrap, wrap, carryOver}, .fractions = notCounted, .lookup = Lookup::nearest},
            1),
        moving(laid({Q_MUR_FUNCTION(iBltFast32AlphaChannelSafe),
                     .sentence =
                         "Blends a source of a rectangle's size by the top byte of each of its pixels, inside a clip.",
                     .arguments = surfaces + corner + srcRect + clip("clipRect", "dst") + pitches, .topByte = cleared,
                     .sums = stayInside, .fractions = cutOff, .uniform = stays, .lookup = Lookup::nearest,
                     .arrange = inTurn(place, punchHoles), .pixelOnPixel = drawWhole, .scenes = {ofSprite}},
                    fromOrigin),
               slide),
    });
}

std::vector<Row> otherRows() {
    Argument blueFirst = colour();
    blueFirst.unit = "0x00BBGGRR";
    blueFirst.contract = {0, 0xFFFFFF, true};
    blueFirst.meant = {0, 0xFFFFFF};
    return {
        // The letters are the platform's.
        {Q_MUR_FUNCTION_WITHOUT_TWIN(iTextOut),
         .sentence = "Writes a text in a bold face, clipped to a width and a height.",
         .arguments = {destination(), clip("clipRect", "dst"), pitch("pitch", "dst"),
                       orNull(text("text", "characters of code page 1252")), blueFirst,
                       position("x", "dst", {0.05, 0.3}), position("y", "dst", {0.2, 0.2}),
                       number("fontHeight", "pixels", anyInt, {40, 40}), orNull(text("fontName", "name of a face"))},
         .writes = on("dst", textBox), .reads = readsText, .topByte = cleared, .fractions = notCounted,
         .arrange = chooseText, .scenes = {{.set = writeLine, .figures = 1, .figure = "texts"}},
         .waived = {{"places_are_bounded_by_clips_alone", "of the clip the size counts alone"}},
         .picture = Scene{.set = inTurn(writeLine, set("fontHeight", 32))}},
        {Q_MUR_FUNCTION(i3DBltNear32), .sentence = "Does nothing.", .figure = Figure::nothing},
    };
}

} // namespace

std::vector<Row> blitRows() {
    std::vector<Row> rows;
    for (const auto family : {copyRows, scalingRows, additiveRows, colourKeyRows, alphaRows, otherRows})
        for (Row &row : family()) {
            if (row.argument("src")) // all blits run rows top to bottom and pixels left to right
                row.overlap = Overlap::rowOrder;
            if (row.positions && row.meant.empty())
                row.meant = {{beyondFormat, sourceIsWithinFormat}};
            rows.push_back(std::move(row));
        }
    return rows;
}

} // namespace catalogue
