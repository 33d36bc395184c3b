#include "exif.h"

#include "numbers.h"

namespace show {

namespace {

using namespace std::string_view_literals;

constexpr auto heading = "Exif\0\0"sv;

enum Tag : std::uint32_t {
    orientationTag = 0x0112,
    changedTag = 0x0132,
    exifDirectoryTag = 0x8769,
    takenTag = 0x9003,
};

/// A date and time that sorts as text, or nothing.
std::string dateAt(const Numbers &numbers, std::size_t entry) {
    constexpr auto pattern = "0000:00:00 00:00:00"sv;
    const Bytes found = part(numbers.bytes, numbers.at(entry + 8, 4), pattern.size());
    const bool isDate = found.size() == pattern.size() &&
                        std::equal(found.begin(), found.end(), pattern.begin(), [](unsigned char have, char want) {
                            return want == '0' ? have >= '0' && have <= '9' : have == static_cast<unsigned char>(want);
                        });
    const std::string date = isDate ? std::string(found.begin(), found.end()) : "";
    return date.starts_with("0000") ? "" : date;
}

} // namespace

ExifNotes readExif(Bytes bytes) {
    ExifNotes notes;
    const Bytes tiff = standsAt(bytes, 0, heading) ? bytes.subspan(heading.size()) : bytes;
    if (!standsAt(tiff, 0, "MM\0*"sv) && !standsAt(tiff, 0, "II*\0"sv))
        return notes;
    const Numbers numbers = {tiff, tiff[0] == 'I'};
    std::string changed;
    std::size_t exifDirectory = 0;
    const auto readDirectory = [&](std::size_t directory) {
        const std::uint32_t entries = numbers.at(directory, 2);
        for (std::uint32_t i = 0; i < entries; ++i) {
            const std::size_t entry = directory + 2 + 12 * static_cast<std::size_t>(i);
            switch (numbers.at(entry, 2)) {
            case orientationTag:
                if (const std::uint32_t value = numbers.at(entry + 8, 2); value >= 1 && value <= 8)
                    notes.orientation = static_cast<int>(value);
                break;
            case changedTag:
                changed = dateAt(numbers, entry);
                break;
            case takenTag:
                notes.taken = dateAt(numbers, entry);
                break;
            case exifDirectoryTag:
                exifDirectory = numbers.at(entry + 8, 4);
                break;
            }
        }
    };
    readDirectory(numbers.at(4, 4));
    if (exifDirectory != 0)
        readDirectory(exifDirectory);
    if (notes.taken.empty())
        notes.taken = changed;
    return notes;
}

Bytes exifOfJpeg(Bytes file) {
    constexpr std::uint32_t startOfScan = 0xDA;
    constexpr std::uint32_t applicationSegment1 = 0xE1;
    const Numbers numbers = {file, false};
    for (std::size_t place = 2; place + 4 <= file.size();) {
        if (file[place] != 0xFF)
            break;
        const std::uint32_t marker = file[place + 1];
        if (marker == 0xFF) { // any number of these may stand before a marker
            ++place;
            continue;
        }
        const std::size_t length = numbers.at(place + 2, 2);
        if (marker == startOfScan || length < 2)
            break;
        const Bytes segment = part(file, place + 4, length - 2);
        if (marker == applicationSegment1 && standsAt(segment, 0, heading))
            return segment;
        place += 2 + length;
    }
    return {};
}

Bytes exifOfPng(Bytes file) {
    const Numbers numbers = {file, false};
    for (std::size_t place = 8; place + 12 <= file.size();) {
        const std::size_t length = numbers.at(place, 4);
        if (standsAt(file, place + 4, "eXIf"))
            return part(file, place + 8, length);
        if (length > file.size() - place - 12)
            break;
        place += 12 + length;
    }
    return {};
}

Bytes exifOfWebp(Bytes file) {
    const Numbers numbers = {file, true};
    for (std::size_t place = 12; place + 8 <= file.size();) {
        const std::size_t length = numbers.at(place + 4, 4);
        if (standsAt(file, place, "EXIF"))
            return part(file, place + 8, length);
        if (length > file.size() - place - 8)
            break;
        place += 8 + length + length % 2;
    }
    return {};
}

} // namespace show
