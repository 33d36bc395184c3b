#include "exif.h"

#include "numbers.h"
#include "text.h"

#include <map>

namespace show {

namespace {

using namespace std::string_view_literals;

constexpr auto heading = "Exif\0\0"sv;

enum Tag : std::uint32_t {
    descriptionTag = 0x010E,
    orientationTag = 0x0112,
    changedTag = 0x0132,
    exifDirectoryTag = 0x8769,
    takenTag = 0x9003,
    commentTag = 0x9286,
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

std::string_view textOf(Bytes bytes) {
    return {reinterpret_cast<const char *>(bytes.data()), bytes.size()};
}

/// What the entry holds: up to four bytes stand in the entry itself.
Bytes textAt(const Numbers &numbers, std::size_t entry) {
    const std::size_t count = numbers.at(entry + 4, 4);
    return part(numbers.bytes, count > 4 ? numbers.at(entry + 8, 4) : entry + 8, count);
}

std::string withoutWhatCamerasWrite(std::string line) {
    const auto cameras = {"OLYMPUS DIGITAL CAMERA", "MINOLTA DIGITAL CAMERA", "SONY DSC", "DCIM", "Exif_JPEG_PICTURE"};
    return std::find(cameras.begin(), cameras.end(), line) == cameras.end() ? line : "";
}

/// A comment begins with the name of its alphabet, in eight bytes.
std::string commentAt(const Numbers &numbers, std::size_t entry) {
    const Bytes found = textAt(numbers, entry);
    const Bytes text = part(found, 8, found.size());
    if (!standsAt(found, 0, "UNICODE\0"sv))
        return standsAt(found, 0, "JIS\0"sv) ? "" : lineOf(textOf(text));
    std::string letters;
    const Numbers units = {text, numbers.littleEndian};
    for (std::size_t place = 0; place + 1 < text.size(); place += 2) {
        const std::uint32_t letter = units.at(place, 2);
        if (letter < 0x80)
            letters += static_cast<char>(letter);
        else if (letter < 0x800)
            (letters += static_cast<char>(0xC0 | letter >> 6)) += static_cast<char>(0x80 | (letter & 0x3F));
        else
            ((letters += static_cast<char>(0xE0 | letter >> 12)) += static_cast<char>(0x80 | (letter >> 6 & 0x3F))) +=
                static_cast<char>(0x80 | (letter & 0x3F));
    }
    return lineOf(letters);
}

/// Calls `visit(marker, segment)` for each segment before the coded picture until it answers false.
void visitHeader(Bytes jpeg, const auto &visit) {
    constexpr std::uint32_t startOfScan = 0xDA;
    const Numbers numbers = {jpeg, false};
    for (std::size_t place = 2; place + 4 <= jpeg.size();) {
        if (jpeg[place] != 0xFF)
            break;
        const std::uint32_t marker = jpeg[place + 1];
        if (marker == 0xFF) { // any number of these may stand before a marker
            ++place;
            continue;
        }
        const std::size_t length = numbers.at(place + 2, 2);
        if (marker == startOfScan || length < 2 || !visit(marker, part(jpeg, place + 4, length - 2)))
            break;
        place += 2 + length;
    }
}

/// The caption among the data sets of an IPTC record.
std::string captionIn(Bytes record) {
    constexpr std::uint32_t captionSet = 0x1C0278; // a mark, the record's number and the set's
    const Numbers numbers = {record, false};
    for (std::size_t place = 0; place + 5 <= record.size();) {
        const std::size_t length = numbers.at(place + 3, 2);
        if (numbers.at(place, 3) == captionSet)
            return lineOf(textOf(part(record, place + 5, length)));
        place += 5 + length;
    }
    return "";
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
            case descriptionTag:
                notes.comment = withoutWhatCamerasWrite(lineOf(textOf(textAt(numbers, entry))));
                break;
            case commentTag:
                if (notes.comment.empty())
                    notes.comment = commentAt(numbers, entry);
                break;
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

std::string captionOfJpeg(Bytes file) {
    constexpr std::uint32_t applicationSegment13 = 0xED;
    constexpr std::uint32_t iptcRecord = 0x0404;
    constexpr auto segmentHeading = "Photoshop 3.0\0"sv;
    constexpr auto blockHeading = "8BIM"sv;
    std::string caption;
    visitHeader(file, [&](std::uint32_t marker, Bytes segment) {
        if (marker != applicationSegment13 || !standsAt(segment, 0, segmentHeading))
            return true;
        const Numbers numbers = {segment, false};
        for (std::size_t place = segmentHeading.size(); standsAt(segment, place, blockHeading);) {
            // Behind its kind a block has a name and its length; name and content end at even places.
            const std::size_t behindName = place + 6 + (numbers.at(place + 6, 1) + 2) / 2 * 2;
            const std::size_t length = numbers.at(behindName, 4);
            if (numbers.at(place + 4, 2) == iptcRecord)
                caption = captionIn(part(segment, behindName + 4, length));
            if (length > segment.size())
                break;
            place = behindName + 4 + length + length % 2;
        }
        return caption.empty();
    });
    return caption;
}

Bytes exifOfJpeg(Bytes file) {
    constexpr std::uint32_t applicationSegment1 = 0xE1;
    Bytes found;
    visitHeader(file, [&](std::uint32_t marker, Bytes segment) {
        if (marker == applicationSegment1 && standsAt(segment, 0, heading))
            found = segment;
        return found.empty();
    });
    return found;
}

std::vector<unsigned char> profileOfJpeg(Bytes file) {
    constexpr std::uint32_t applicationSegment2 = 0xE2;
    constexpr auto profileHeading = "ICC_PROFILE\0"sv; // the part's number, and how many there are, follow
    std::map<unsigned, Bytes> parts;
    std::size_t count = 0;
    visitHeader(file, [&](std::uint32_t marker, Bytes segment) {
        const std::size_t start = profileHeading.size() + 2;
        if (marker == applicationSegment2 && standsAt(segment, 0, profileHeading) && segment.size() > start) {
            parts[segment[start - 2]] = segment.subspan(start);
            count = segment[start - 1];
        }
        return true;
    });
    std::vector<unsigned char> profile;
    if (parts.size() == count)
        for (const auto &[number, bytes] : parts)
            profile.insert(profile.end(), bytes.begin(), bytes.end());
    return profile;
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

Bytes chunkOfWebp(Bytes file, std::string_view name) {
    const Numbers numbers = {file, true};
    for (std::size_t place = 12; place + 8 <= file.size();) {
        const std::size_t length = numbers.at(place + 4, 4);
        if (standsAt(file, place, name))
            return part(file, place + 8, length);
        if (length > file.size() - place - 8)
            break;
        place += 8 + length + length % 2;
    }
    return {};
}

} // namespace show
