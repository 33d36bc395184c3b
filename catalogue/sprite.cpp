#include "plain/sprite.h"

#include "areas.h"
#include "arguments.h"

#include <limits>

namespace catalogue {
namespace {

// Sprites

Areas writesSprite(const Call &call) {
    return {{"dst", boxOf(0, 0, call["width"].whole(), call["height"].whole())}};
}

/// Small in one direction at least, at times a little beyond the sprite's own size, and rarely the whole of it.
template <int spriteWidth, int spriteHeight>
void arrangeSprite(Call &call, Random &random) {
    int width = random.between(-1, 12);
    int height = random.between(-1, 12);
    if (random.oneIn(2000)) {
        width = spriteWidth;
        height = spriteHeight;
    } else if (random.oneIn(40)) {
        width = spriteWidth + random.between(-4, 20);
    } else if (random.oneIn(40)) {
        height = spriteHeight + random.between(-4, 20);
    }
    call["width"] = width;
    call["height"] = height;
    call["dst"] = Plane::randomSurface(random, std::max(width, 1), std::max(height, 1));
}

template <int spriteWidth, int spriteHeight>
void drawSprite(Call &call, const Stage &) {
    call["dst"] = Plane::surface(spriteWidth, spriteHeight, 0x203040);
    call["width"] = spriteWidth;
    call["height"] = spriteHeight;
}

/// Sizes below 1 draw nothing; the rows that are not drawn are counted all the same.
Argument spriteSize(std::string_view name) {
    return {.name = name, .kind = Kind::extent, .unit = "pixels", .contract = {anyInt.low, 65535}, .of = "dst"};
}

/// The beginning of a row, completed with what all sprites share.
template <int spriteWidth, int spriteHeight>
Row sprite(Row row) {
    row.arguments = {destination(), spriteSize("width"), spriteSize("height"), pitch("pitch", "dst")};
    row.writes = writesSprite;
    row.topByte = TopByte::cleared;
    row.sums = Sums::stayInside;
    row.arrange = arrangeSprite<spriteWidth, spriteHeight>;
    row.scenes = {{.set = drawSprite<spriteWidth, spriteHeight>}};
    return row;
}

// Bitmap files

Argument ownText(std::string_view name) {
    return {.name = name, .kind = Kind::text, .unit = "path"};
}
template <int index>
void drawEmptyText(Call &call, const Stage &) {
    call[index] = Plane(1, 1, 1);
}

// Raw pixels

Areas writesFitted(const Call &call) {
    return {{"dst", boxOf(0, 0, call["dstWidth"].whole(), call["dstHeight"].whole())}};
}
Areas readsFitted(const Call &call) {
    const int width = call["dstWidth"].whole();
    const int height = call["dstHeight"].whole();
    const auto right = plain::fittedPlace(width - 1, call["srcWidth"].whole(), width);
    const auto bottom = plain::fittedPlace(height - 1, call["srcHeight"].whole(), height);
    return {{"src", {0, 0, 3 * (right + 1), bottom + 1}}};
}

/// A size of the destination; the sizes of a source may be 0, where its first column or row is repeated.
Argument fittedTo(std::string_view name) {
    return {.name = name, .kind = Kind::extent, .unit = "pixels", .contract = {1, anyInt.high}, .of = "dst"};
}
Argument fittedFrom(std::string_view name) {
    return {.name = name, .kind = Kind::extent, .unit = "pixels", .contract = {0, 65535}};
}

void arrangeFit(Call &call, Random &random) {
    const Plane &dst = call["dst"].plane();
    call["dstWidth"] = random.between(1, dst.width());
    call["dstHeight"] = random.between(1, dst.height());
    const int width = random.between(0, 24);
    const int height = random.between(0, 24);
    call["srcWidth"] = width;
    call["srcHeight"] = height;
    Plane src(1, std::max(3 * width, 3), std::max(height, 1), 0, random.between(0, 5));
    for (int i = 0; i < src.pitch() * src.height(); ++i)
        src.as<unsigned char>()[i] = static_cast<unsigned char>(random.word());
    call["src"] = src;
}

/// A picture of half the size.
void drawFit(Call &call, const Stage &stage) {
    const Plane picture = stage.picture();
    Plane src(1, stage.width / 2 * 3, stage.height / 2);
    for (int y = 0; y < src.height(); ++y)
        for (int x = 0; x < src.width(); ++x)
            src.as<unsigned char>()[y * src.pitch() + x] =
                static_cast<unsigned char>(picture.at(x / 3 * 2, y * 2) >> (x % 3 * 8));
    call["src"] = src;
    call["srcWidth"] = stage.width / 2;
    call["srcHeight"] = stage.height / 2;
}

} // namespace

std::vector<Row> spriteRows() {
    return {
        sprite<156, 114>({Q_MUR_FUNCTION(LoadResourceAirplane), .sentence = "Writes an airliner in the climb."}),
        sprite<512, 384>({Q_MUR_FUNCTION(LoadResourceChristmasTree), .sentence = "Writes a Christmas tree."}),
        sprite<122, 166>({Q_MUR_FUNCTION(LoadResourceFootMark), .sentence = "Writes the print of a bare foot."}),
        sprite<128, 128>({Q_MUR_FUNCTION(LoadResourceMusicSymbol), .sentence = "Writes two beamed notes."}),
        sprite<330, 360>({Q_MUR_FUNCTION(LoadResourceRedFires), .sentence = "Writes red flames."}),
        {Q_MUR_FUNCTION_WITHOUT_TWIN(SetSpriteInstance), .sentence = "Takes the module handle down.",
         .arguments = {unused("module")}, .without = {{"every proof", "nothing reads it"}}},
        {Q_MUR_FUNCTION_WITHOUT_TWIN(SetSpriteDir), .sentence = "Sets what stands before the name of a bitmap file.",
         .arguments = {ownText("path")}, .scenes = {{.set = drawEmptyText<0>}},
         .without = {{"every proof", "a global"}}},
        {Q_MUR_FUNCTION_WITHOUT_TWIN(LoadBitmap24), .sentence = "Reads a bitmap file of 24 bits.",
         .arguments = {destination(), ownText("name"), extent("width", "dst"), extent("height", "dst")},
         .topByte = TopByte::cleared, .scenes = {{.set = drawEmptyText<1>}}, .without = {{"every proof", "a file"}}},
        {Q_MUR_FUNCTION(_FitOn32RAW_24RAW_Nearest), .sentence = "Fits raw 24-bit pixels onto a surface.",
         .arguments = {destination(),
                       fittedTo("dstWidth"),
                       fittedTo("dstHeight"),
                       {.name = "dstPitchBytes", .kind = Kind::pitch, .unit = "bytes", .of = "dst"},
                       {.name = "src", .kind = Kind::plane, .unit = "bytes"},
                       fittedFrom("srcWidth"),
                       fittedFrom("srcHeight"),
                       {.name = "srcPitchBytes", .kind = Kind::pitch, .unit = "bytes", .of = "src"}},
         .writes = writesFitted, .reads = readsFitted, .overlap = Overlap::notPromised, .topByte = TopByte::cleared,
         .sums = Sums::stayInside, .arrange = arrangeFit, .scenes = {{.set = drawFit}}},
    };
}

} // namespace catalogue
