// BMP by the header-only reader, in every build.

#include "../failure.h"
#include "../numbers.h"
#include "plain_reader.h"

namespace show {

namespace {

bool recognises(Bytes start) {
    return standsAt(start, 0, "BM");
}

PictureSize sizeOf(Bytes file) {
    constexpr std::uint32_t oldHeader = 12;
    const Numbers numbers = {file, true};
    const std::uint64_t pixels = numbers.at(10, 4);
    const bool isOld = numbers.at(14, 4) == oldHeader;
    const std::uint64_t bits = isOld ? numbers.at(24, 2) : numbers.at(28, 2);
    const auto width = static_cast<std::int32_t>(isOld ? numbers.at(18, 2) : numbers.at(18, 4));
    const auto height = static_cast<std::int32_t>(isOld ? numbers.at(20, 2) : numbers.at(22, 4));
    if (width <= 0 || height == 0 || height == INT32_MIN || bits > 32)
        throw Failure("the BMP picture is damaged (its header)");
    constexpr std::uint32_t runLengths4 = 2;
    if (const std::uint32_t compression = isOld ? 0 : numbers.at(30, 4); compression > 0 && compression <= runLengths4)
        throw Failure("the BMP picture is compressed, which is not read here");
    const std::uint64_t rows = static_cast<std::uint64_t>(height < 0 ? -height : height);
    const std::uint64_t rowBytes = (static_cast<std::uint64_t>(width) * bits + 31) / 32 * 4;
    if (pixels > file.size() || rowBytes * rows > file.size() - pixels)
        throw Failure("the BMP picture is cut off");
    return {width, static_cast<int>(rows)};
}

void decode(Bytes file, const Surface &picture) {
    readPlainly("BMP", file, picture);
}

ExifNotes notes(Bytes) {
    return {};
}

} // namespace

const Decoder bmpDecoder = {"BMP", recognises, sizeOf, decode, notes, nullptr};

} // namespace show
