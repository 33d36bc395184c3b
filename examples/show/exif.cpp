#include "exif.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace show {

namespace {

/// Numbers of either byte order at places that may lie outside the bytes; there they are 0.
struct Numbers {
    std::span<const unsigned char> bytes;
    bool littleEndian;

    unsigned at(std::size_t place, int size) const {
        if (place > bytes.size() || bytes.size() - place < static_cast<std::size_t>(size))
            return 0;
        unsigned value = 0;
        for (int i = 0; i < size; ++i)
            value = value << 8 | bytes[place + static_cast<std::size_t>(littleEndian ? size - 1 - i : i)];
        return value;
    }
};

/// Looks for the tag 0x0112 in the first directory of a TIFF structure.
int tiffOrientation(std::span<const unsigned char> tiff) {
    if (tiff.size() < 8)
        return 1;
    const Numbers numbers = {tiff, tiff[0] == 'I'};
    const std::size_t directory = numbers.at(4, 4);
    const unsigned entries = numbers.at(directory, 2);
    for (unsigned i = 0; i < entries; ++i) {
        const std::size_t entry = directory + 2 + 12 * static_cast<std::size_t>(i);
        if (numbers.at(entry, 2) == 0x0112) {
            const unsigned orientation = numbers.at(entry + 8, 2);
            return orientation >= 1 && orientation <= 8 ? static_cast<int>(orientation) : 1;
        }
    }
    return 1;
}

} // namespace

int exifOrientation(std::span<const unsigned char> file) {
    using namespace std::string_view_literals;
    constexpr auto heading = "Exif\0\0"sv;
    constexpr unsigned startOfScan = 0xFFDA;
    constexpr unsigned applicationSegment1 = 0xFFE1;
    const Numbers numbers = {file, false};
    if (numbers.at(0, 2) != 0xFFD8)
        return 1;
    for (std::size_t place = 2; place + 4 <= file.size();) {
        const unsigned marker = numbers.at(place, 2);
        const std::size_t length = numbers.at(place + 2, 2);
        if (marker < 0xFF00 || marker == startOfScan || length < 2)
            return 1;
        const auto segment = file.subspan(place + 4, std::min(length - 2, file.size() - place - 4));
        if (marker == applicationSegment1 && segment.size() > heading.size() &&
            std::equal(heading.begin(), heading.end(), segment.begin(),
                       [](char a, unsigned char b) { return static_cast<unsigned char>(a) == b; }))
            return tiffOrientation(segment.subspan(heading.size()));
        place += 2 + length;
    }
    return 1;
}

} // namespace show
