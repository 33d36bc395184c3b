#include "plain/sprite.h"

#include "areas.h"
#include "arguments.h"

#include <cstring>
#include <fstream>
#if !defined(__wasm__) // whose library knows no directories
#include <filesystem>
#endif

namespace catalogue {
namespace {

// Sprites

/// Completes the beginning of a row by what all sprites share. Cases are small in one direction at least, at times a
/// little beyond the sprite's own size, and rarely the whole of it.
template <int spriteWidth, int spriteHeight>
Row sprite(Row row) {
    // Sizes below 1 draw nothing; the rows that are not drawn are counted all the same.
    row.arguments =
        destination() + each({"width", "height"}, extent("", "dst", {anyInt.low, 65535, true})) + pitch("pitch", "dst");
    row.writes = on("dst", frameOf);
    row.topByte = TopByte::cleared;
    row.fractions = Fractions::notCounted;
    row.arrange = [](Call &call, Random &random) {
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
        call.set({{"width", width}, {"height", height}});
        call["dst"] = Plane::randomSurface(random, std::max(width, 1), std::max(height, 1));
    };
    row.scenes = {{.set = [](Call &call, const Stage &) {
        call["dst"] = Plane::surface(spriteWidth, spriteHeight, 0x203040);
        call.set({{"width", spriteWidth}, {"height", spriteHeight}});
    }}};
    return row;
}

// Raw pixels

/// In bytes where rows do not begin at whole pixels.
Box fittedBox(const Call &call) {
    const std::int64_t elements = call["dst"].plane().elementBytes() == 1 ? 4 : 1;
    return boxOf(0, 0, elements * call["dstWidth"].whole(), call["dstHeight"].whole());
}
Box readBox(const Call &call) {
    const int width = call["dstWidth"].whole();
    const int height = call["dstHeight"].whole();
    const auto right = plain::fittedPlace(width - 1, call["srcWidth"].whole(), width);
    const auto bottom = plain::fittedPlace(height - 1, call["srcHeight"].whole(), height);
    return {0, 0, 3 * (right + 1), bottom + 1};
}

Argument bytePitch(std::string_view name, std::string_view of) {
    return {.name = name, .kind = Kind::pitch, .unit = "bytes", .of = of};
}

void arrangeFit(Call &call, Random &random) {
    const Plane &dst = call["dst"].plane();
    call.set({{"dstWidth", random.between(1, dst.width())}, {"dstHeight", random.between(1, dst.height())}});
    const int width = random.between(0, 24);
    const int height = random.between(0, 24);
    call.set({{"srcWidth", width}, {"srcHeight", height}});
    const Plane src(1, std::max(3 * width, 3), std::max(height, 1), 0, random.between(0, 5));
    call["src"] = src.fill<unsigned char>({0, 0, src.pitch(), src.height()}, [&](int, int) { return random.word(); });
}

Plane characters(std::string_view text) {
    Plane plane(1, static_cast<int>(text.size()) + 1, 1);
    std::memcpy(plane.origin(), text.data(), text.size());
    return plane;
}
/// The directory for files that are not kept, with what parts it from their names.
std::string directoryForFiles() {
#if defined(__wasm__)
    return "";
#else
    return (std::filesystem::temp_directory_path() / "").string();
#endif
}
/// A file of its own.
void setFile(Call &call, const Stage &stage) {
    constexpr std::string_view name = "q_Mur_picture.bmp";
    std::string directory = directoryForFiles();
    const Plane picture = stage.picture(2);
    const int width = stage.width / 4 * 4; // so that rows have no gaps
    std::ofstream out(directory + std::string(name), std::ios::binary);
    const auto write = [&out](std::initializer_list<int> numbers) {
        for (const int number : numbers)
            for (int byte = 0; byte < 4; ++byte)
                out.put(static_cast<char>(number >> 8 * byte));
    };
    constexpr int header = 54;
    out.write("BM", 2);
    write({header + 3 * width * stage.height, 0, header, 40, width, stage.height, 24 << 16 | 1, 0, 0, 0, 0, 0, 0});
    for (int y = stage.height; y-- > 0;) // bottom row first
        for (int x = 0; x < width; ++x)
            for (const int shift : {0, 8, 16})
                out.put(static_cast<char>(picture.at(x, y) >> shift));
    SetSpriteDir(directory.data());
    call.set({{"dst", Plane(4, width, stage.height)}, {"name", characters(name)}});
    call.set({{"width", width}, {"height", stage.height}});
}

/// No file that there is, and a size of which nothing is drawn.
void setNoFile(Call &call, const Stage &) {
    call["name"] = Plane(1, 1, 1);
    call.set({{"width", 0}, {"height", 0}});
}

/// Every so many columns and rows of a picture.
void setFitBy(int step, Call &call, const Stage &stage) {
    const Plane picture = stage.picture(1);
    const int width = stage.width / step, height = stage.height / step;
    const Plane src(1, width * 3, height);
    call["src"] = src.fill<unsigned char>(
        src.rect(), [&](int x, int y) { return picture.at(x / 3 * step, y * step) >> (x % 3 * 8); });
    call.set({{"srcWidth", width}, {"srcHeight", height}});
}
void setFit(Call &call, const Stage &stage) {
    setFitBy(2, call, stage);
}
/// From coarse to fine.
void setFiner(Call &call, const Stage &stage) {
    setFitBy(static_cast<int>(stage.along({20, 1})), call, stage);
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
         .arguments = {unused("module")}, .waived = {{"every proof", "nothing reads it"}}, .figure = Figure::nothing},
        {Q_MUR_FUNCTION_WITHOUT_TWIN(SetSpriteDir), .sentence = "Sets what stands before the name of a bitmap file.",
         .arguments = {text("path", "path")}, .scenes = {{.set = set("path", Plane(1, 1, 1))}},
         .waived = {{"every proof", "a global"}}, .figure = Figure::nothing},
        {Q_MUR_FUNCTION_WITHOUT_TWIN(LoadBitmap24), .sentence = "Reads a bitmap file of 24 bits.",
         .arguments = destination() + text("name", "path") + each({"width", "height"}, extent("", "dst")),
         .writes = [](const Call &call) -> Areas {
             const Box frame = frameOf(call);
             constexpr std::int64_t mostBytes = 0xFFFFFFFF; // of a file, whatever it says
             const bool fits = !frame.isEmpty() && 3 * frame.width() <= mostBytes / frame.height();
             return {words("dst", fits ? frame.width() * frame.height() : 0)}; // there is no gap between rows
         },
         .topByte = TopByte::cleared, .scenes = {{.set = setNoFile}}, .waived = {{"every proof", "a file"}},
         .picture = Scene{.set = setFile}},
        // The sizes of a source may be 0, where its first column or row is repeated.
        apart({Q_MUR_FUNCTION(_FitOn32RAW_24RAW_Nearest), .sentence = "Fits raw 24-bit pixels onto a surface.",
               .arguments =
                   destination() +
                   each({"dstWidth", "dstHeight"}, idle(extent("", "dst", {1, anyInt.high}), {anyInt.low, -1})) +
                   bytePitch("dstPitchBytes", "dst") + plane("src") +
                   each({"srcWidth", "srcHeight"}, extent("", "", {0, 65535})) + bytePitch("srcPitchBytes", "src"),
               .writes = on("dst", fittedBox), .reads = on("src", readBox), .topByte = TopByte::cleared,
               .sums = Sum::stayInside, .arrange = arrangeFit, .scenes = {{.set = setFit}},
               .picture = Scene{.set = setFiner}}),
    };
}

} // namespace catalogue
