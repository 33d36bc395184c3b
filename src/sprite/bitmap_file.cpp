#include "base/pixel.h"
#include "base/surface.h"
#include "q_Mur/sprite.h"

#include <cstdio>
#include <cstdlib>

namespace {

using namespace qmur;

constexpr int pathSize = 512;
constexpr int fileHeaderSize = 14;
constexpr int headerSize = fileHeaderSize + 40;

/// Characters that stand before every file name. They fill the block, without an end, if they were too many.
char *spriteDirectory;

/// Copies characters behind the first `length` of a path. Returns the length there is then; `pathSize` is too long.
int append(char *path, int length, const char *text) {
    for (; length < pathSize; ++length, ++text) {
        path[length] = *text;
        if (*text == 0)
            break;
    }
    return length;
}

q_ulong littleEndian16(const unsigned char *bytes) {
    return q_ulong{bytes[0]} | q_ulong{bytes[1]} << 8;
}

q_ulong littleEndian32(const unsigned char *bytes) {
    return littleEndian16(bytes) | littleEndian16(bytes + 2) << 16;
}

/// Where the rows of a picture lie in its file, from the bottom row on.
struct Rows {
    long long offset;
    long long stride;
};

/// Reads and judges the header. False if the file holds no picture of that size.
bool readHeader(std::FILE *file, int width, int height, Rows &rows) {
    unsigned char header[headerSize];
    if (std::fread(header, 1, headerSize, file) != headerSize)
        return false;
    const q_ulong fileSize = littleEndian32(header + 2);
    const q_ulong dataOffset = littleEndian32(header + 10);
    const unsigned char *const picture = header + fileHeaderSize;
    const bool isAsked = littleEndian16(header) == 0x4D42 && littleEndian16(picture + 14) == 24 &&
                         littleEndian32(picture + 4) == static_cast<q_ulong>(width) &&
                         littleEndian32(picture + 8) == static_cast<q_ulong>(height);
    if (!isAsked || width < 0 || height < 1 || fileSize < dataOffset)
        return false;
    const long long dataSize = fileSize - dataOffset;
    const long long rowSize = width * 3LL;
    // Not multiplied by the height: 64 bits may be too few for that.
    if (rowSize > dataSize / height)
        return false;
    // Meant: rows lie as far apart as the size field says, not at the next multiple of 4 bytes.
    rows = {static_cast<long long>(dataOffset), dataSize / height};
    return true;
}

/// Reads a row of `width` pixels. They arrive at the row's start, three bytes each, and are spread from the last one
/// on, so that none is overwritten before it is read. Those that are missing are black.
void readRow(std::FILE *file, long long position, q_ulong *row, int width) {
    auto *const bytes = reinterpret_cast<unsigned char *>(row);
    Distance count = 0;
    // What the seek of the shortest `long` reaches is what every build reads.
    if (position <= 0x7FFFFFFF && std::fseek(file, static_cast<long>(position), SEEK_SET) == 0)
        count = static_cast<Distance>(std::fread(bytes, 3, static_cast<std::size_t>(width), file));
    for (Distance x = width; x-- > count;)
        row[x] = 0;
    for (Distance x = count; x-- > 0;)
        row[x] = pixelOf(bytes[x * 3 + 2], bytes[x * 3 + 1], bytes[x * 3]);
}

} // namespace

void SetSpriteDir(char *path) {
    if (!spriteDirectory)
        spriteDirectory = static_cast<char *>(std::malloc(pathSize));
    if (spriteDirectory)
        append(spriteDirectory, 0, path);
}

int LoadBitmap24(q_ulong *dst, char *name, int width, int height) {
    char path[pathSize];
    const int prefix = spriteDirectory ? append(path, 0, spriteDirectory) : 0;
    if (append(path, prefix, name) == pathSize)
        return 0;
    std::FILE *const file = std::fopen(path, "rb");
    if (!file)
        return 0;
    Rows rows;
    const bool isPicture = readHeader(file, width, height, rows);
    if (isPicture && width > 0) // a file may claim any number of rows without a pixel
        for (Distance y = 0; y < height; ++y)
            readRow(file, rows.offset + y * rows.stride, dst + (height - 1 - y) * Distance{width}, width);
    std::fclose(file);
    return isPicture ? 1 : 0;
}
