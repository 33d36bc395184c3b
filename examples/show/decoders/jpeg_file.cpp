#include "jpeg_file.h"

#include "../failure.h"
#include "../numbers.h"

#include <array>
#include <utility>

namespace show {

namespace {

enum Marker : std::uint32_t {
    defineHuffmanTables = 0xC4,
    reservedForExtensions = 0xC8,
    defineArithmeticConditioning = 0xCC,
    firstRestart = 0xD0,
    endOfImage = 0xD9,
    startOfScan = 0xDA,
    temporary = 0x01,
};

bool isStartOfFrame(std::uint32_t marker) {
    return marker >= 0xC0 && marker <= 0xCF && marker != defineHuffmanTables && marker != reservedForExtensions &&
           marker != defineArithmeticConditioning;
}

bool standsAlone(std::uint32_t marker) {
    return marker == temporary || (marker >= firstRestart && marker <= endOfImage);
}

[[noreturn]] void failCutOff() {
    throw Failure("the JPEG picture is cut off");
}

/// Calls `visit(marker, segment)` for each segment up to the end of the picture, or until it answers false. What lies
/// between segments, which is the coded picture behind a start of scan, is passed over.
void visitSegments(Bytes file, const auto &visit) {
    const Numbers numbers = {file, false};
    for (std::size_t place = 2;;) {
        while (place + 1 < file.size() && !(file[place] == 0xFF && file[place + 1] != 0 && file[place + 1] != 0xFF))
            ++place;
        if (place + 1 >= file.size())
            failCutOff();
        const std::uint32_t marker = file[place + 1];
        place += 2;
        std::size_t length = 0;
        if (!standsAlone(marker)) {
            length = numbers.at(place, 2);
            if (length < 2 || length > file.size() - place)
                failCutOff();
        }
        if (!visit(marker, length < 2 ? Bytes() : file.subspan(place + 2, length - 2)) || marker == endOfImage)
            return;
        place += length;
    }
}

struct Tables {
    std::array<std::array<bool, 4>, 2> defined = {};
    bool hasFrame = false;

    void define(Bytes segment) {
        while (!segment.empty()) {
            if (segment.size() < 17)
                fail();
            const unsigned kind = segment[0] >> 4;
            const unsigned number = segment[0] & 15;
            if (kind > 1 || number > 3)
                fail();
            std::size_t symbols = 0;
            unsigned code = 0;
            for (unsigned length = 1; length <= 16; ++length) {
                symbols += segment[length];
                code += segment[length];
                if (code > 1U << length)
                    fail();
                code *= 2;
            }
            if (symbols > 256 || symbols > segment.size() - 17)
                fail();
            constexpr unsigned longestDifference = 15;
            for (const unsigned char symbol : segment.subspan(17, symbols))
                if (kind == 0 && symbol > longestDifference)
                    fail();
            defined[kind][number] = true;
            segment = segment.subspan(17 + symbols);
        }
    }

    void checkScan(Bytes segment) const {
        if (!hasFrame || segment.empty() || segment.size() < 4 + 2 * static_cast<std::size_t>(segment[0]))
            fail();
        const std::size_t components = segment[0];
        const unsigned firstCoefficient = segment[1 + 2 * components];
        const unsigned lastCoefficient = segment[2 + 2 * components];
        for (std::size_t i = 0; i < components; ++i) {
            const unsigned differences = segment[2 + 2 * i] >> 4;
            const unsigned coefficients = segment[2 + 2 * i] & 15;
            if (differences > 3 || coefficients > 3 || (firstCoefficient == 0 && !defined[0][differences]) ||
                (lastCoefficient > 0 && !defined[1][coefficients]))
                fail();
        }
    }

    [[noreturn]] static void fail() { throw Failure("the JPEG picture is damaged (its tables of codes)"); }
};

} // namespace

bool isJpeg(Bytes start) {
    return standsAt(start, 0, "\xFF\xD8\xFF");
}

PictureSize sizeOfJpeg(Bytes file) {
    PictureSize size = {0, 0};
    visitSegments(file, [&](std::uint32_t marker, Bytes segment) {
        if (isStartOfFrame(marker)) {
            const Numbers numbers = {segment, false};
            size = {static_cast<int>(numbers.at(3, 2)), static_cast<int>(numbers.at(1, 2))};
        }
        return !isStartOfFrame(marker) && marker != startOfScan;
    });
    if (size.width == 0 || size.height == 0)
        throw Failure("the JPEG picture is damaged (it has no size)");
    // The largest unit of coding is 32 pixels wide and high, and takes a bit at the very least.
    constexpr long long mostPixelsInByte = 8LL * 32 * 32;
    if (static_cast<long long>(size.width) * size.height / mostPixelsInByte > static_cast<long long>(file.size()))
        failCutOff();
    return size;
}

ExifNotes notesOfJpeg(Bytes file) {
    ExifNotes notes = readExif(exifOfJpeg(file));
    if (std::string caption = captionOfJpeg(file); !caption.empty())
        notes.comment = std::move(caption);
    return notes;
}

void checkJpegTables(Bytes file) {
    Tables tables;
    visitSegments(file, [&](std::uint32_t marker, Bytes segment) {
        if (isStartOfFrame(marker))
            tables.hasFrame = true;
        else if (marker == defineHuffmanTables)
            tables.define(segment);
        else if (marker == startOfScan)
            tables.checkScan(segment);
        return true;
    });
}

} // namespace show
