#include "bitmap.h"

#include <cstddef>

namespace test {
namespace {

/// `count` bytes from a position on, the lowest first.
std::uint32_t number(const Bytes &bytes, std::size_t position, int count) {
    std::uint32_t value = 0;
    for (int i = count; i-- > 0;)
        value = value * 256 + bytes.at(position + static_cast<std::size_t>(i));
    return value;
}

} // namespace

Bitmap Bitmap::ofSize(int width, int height, int stride) {
    Bitmap bitmap;
    bitmap.width = static_cast<std::uint32_t>(width);
    bitmap.height = static_cast<std::uint32_t>(height);
    for (int i = 0; i < height * stride; ++i)
        bitmap.data.push_back(static_cast<unsigned char>(i + 1));
    bitmap.fileSize = static_cast<std::uint32_t>(54 + bitmap.data.size());
    return bitmap;
}

Bytes Bitmap::file() const {
    const struct {
        std::uint32_t value;
        int bytes;
    } fields[] = {{magic, 2},    {fileSize, 4}, {0, 4}, {dataOffset, 4}, {40, 4},   {width, 4}, {height, 4}, {1, 2},
                  {bitCount, 2}, {0, 4},        {0, 4}, {2835, 4},       {2835, 4}, {0, 4},     {0, 4}};
    Bytes bytes;
    for (const auto &field : fields)
        for (int i = 0; i < field.bytes; ++i)
            bytes.push_back(static_cast<unsigned char>(field.value >> 8 * i & 0xFF));
    bytes.insert(bytes.end(), data.begin(), data.end());
    return bytes;
}

std::optional<std::vector<q_ulong>> naivePixels(const Bytes &file, int width, int height) {
    if (file.size() < 14 + 40 || number(file, 0, 2) != 19778 || number(file, 28, 2) != 24)
        return std::nullopt;
    if (width < 0 || height < 1 || number(file, 18, 4) != static_cast<std::uint32_t>(width) ||
        number(file, 22, 4) != static_cast<std::uint32_t>(height))
        return std::nullopt;
    const std::uint64_t fileSize = number(file, 2, 4);
    const std::uint64_t offset = number(file, 10, 4);
    const std::uint64_t rows = static_cast<std::uint64_t>(height);
    const std::uint64_t columns = static_cast<std::uint64_t>(width);
    if (offset + columns * rows * 3 > fileSize)
        return std::nullopt;
    const std::uint64_t padding = (fileSize - columns * rows * 3 - offset) / rows;

    std::vector<q_ulong> pixels;
    for (std::uint64_t y = 0; y < rows; ++y)
        for (std::uint64_t x = 0; x < columns; ++x) {
            const std::uint64_t position = offset + (rows - 1 - y) * (columns * 3 + padding) + x * 3;
            const bool isThere = position + 3 <= file.size();
            pixels.push_back(isThere ? number(file, static_cast<std::size_t>(position), 3) : 0);
        }
    return pixels;
}

} // namespace test
