#include "png_file.h"

#include "../failure.h"
#include "../numbers.h"

namespace show {

namespace {

/// The bytes of the compressed picture. Throws Failure if a chunk or the end of the file is missing.
std::size_t compressedBytes(Bytes file) {
    const Numbers numbers = {file, false};
    std::size_t compressed = 0;
    for (std::size_t place = 8; place + 12 <= file.size();) {
        const std::size_t length = numbers.at(place, 4);
        if (length > file.size() - place - 12)
            break;
        if (standsAt(file, place + 4, "IDAT"))
            compressed += length;
        if (standsAt(file, place + 4, "IEND"))
            return compressed;
        place += 12 + length;
    }
    throw Failure("the PNG picture is cut off");
}

int channelsOf(std::uint32_t colourType) {
    switch (colourType) {
    case 2:
        return 3;
    case 4:
        return 2;
    case 6:
        return 4;
    default:
        return 1;
    }
}

} // namespace

bool isPng(Bytes start) {
    return standsAt(start, 0, "\x89PNG\r\n\x1A\n");
}

PictureSize sizeOfPng(Bytes file) {
    const Numbers numbers = {file, false};
    const std::uint32_t width = numbers.at(16, 4);
    const std::uint32_t height = numbers.at(20, 4);
    if (!standsAt(file, 12, "IHDR") || width - 1 >= 0x7FFFFFFF || height - 1 >= 0x7FFFFFFF)
        throw Failure("the PNG picture is damaged (its header)");
    // No compressed byte stands for more than 1032 bytes.
    constexpr std::uint64_t mostExpansion = 1032;
    const std::uint64_t bits = static_cast<std::uint64_t>(numbers.at(24, 1)) * channelsOf(numbers.at(25, 1));
    const std::uint64_t rowBytes = (width * bits + 7) / 8;
    if (rowBytes / mostExpansion * height > compressedBytes(file))
        throw Failure("the PNG picture is cut off");
    return {static_cast<int>(width), static_cast<int>(height)};
}

ExifNotes notesOfPng(Bytes file) {
    return readExif(exifOfPng(file));
}

} // namespace show
