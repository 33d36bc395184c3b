/// \file
/// Bitmap files for tests, true and false ones, and a second reader of them.
#ifndef Q_MUR_TESTS_SPRITE_BITMAP_H
#define Q_MUR_TESTS_SPRITE_BITMAP_H

#include <q_Mur.h>

#include <cstdint>
#include <optional>
#include <vector>

namespace test {

using Bytes = std::vector<unsigned char>;

/// What is read of the two headers, and what stands behind them. Nothing has to be true.
struct Bitmap {
    std::uint32_t magic = 19778;
    std::uint32_t fileSize = 0;
    std::uint32_t dataOffset = 54;
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint32_t bitCount = 24;
    Bytes data;

    /// A true header for rows `stride` bytes long, whose bytes are counted up from 1.
    static Bitmap ofSize(int width, int height, int stride);

    Bytes file() const;
};

/// The pixels of a file held in memory, top row first; nothing if it does not hold a picture of that size. A file's
/// pixels that are missing are black. Each one is looked up by itself.
std::optional<std::vector<q_ulong>> naivePixels(const Bytes &file, int width, int height);

} // namespace test

#endif
