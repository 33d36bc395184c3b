/// \file
/// Surfaces for tests.
#ifndef Q_MUR_TESTS_SURFACE_H
#define Q_MUR_TESTS_SURFACE_H

#include "catalogue/plane.h"
#include "random.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

namespace test {

/// A picture in the middle of a larger buffer. Two surfaces are equal only if the margins around their pictures are
/// too, so a write beside the picture shows as a difference; a read a little beside it is harmless and repeatable.
class Surface {
public:
    static constexpr int margin = 8;

    /// All pixels, margins included, are `value`.
    Surface(int width, int height, q_ulong value = 0, int extraPitch = 0)
        : columns(width), rows(height), stride(width + 2 * margin + extraPitch),
          buffer(static_cast<std::size_t>(stride) * static_cast<std::size_t>(height + 2 * margin), value) {}

    /// A picture of random pixels and random size, up to `largest` in each direction, with a random pitch.
    static Surface random(Random &random, int largest = 16) {
        const int width = random.between(1, largest);
        const int height = random.between(1, largest);
        return randomOfSize(random, width, height);
    }

    static Surface randomOfSize(Random &random, int width, int height) {
        Surface surface(width, height, 0, random.between(0, 3));
        for (q_ulong &pixel : surface.buffer)
            pixel = random.pixel();
        return surface;
    }

    /// The pixel at (0, 0), as it is handed to the library.
    q_ulong *pixels() { return &at(0, 0); }

    int width() const { return columns; }
    int height() const { return rows; }
    int pitch() const { return stride; }
    tagRECT rect() const { return {0, 0, columns, rows}; }

    /// Any pixel of the picture or its margin.
    q_ulong &at(int x, int y) { return buffer.at(index(x, y)); }
    q_ulong at(int x, int y) const { return buffer.at(index(x, y)); }

    const std::vector<q_ulong> &words() const { return buffer; }

    friend bool operator==(const Surface &a, const Surface &b) { return a.stride == b.stride && a.buffer == b.buffer; }

    /// What differs first from `expected`, in words; empty if nothing does.
    std::string differenceFrom(const Surface &expected) const;

private:
    std::size_t index(int x, int y) const { return static_cast<std::size_t>((y + margin) * stride + x + margin); }

    int columns;
    int rows;
    int stride;
    std::vector<q_ulong> buffer;
};

/// Pixels whose last one ends where memory may no longer be read: a read beyond faults.
class PageEndPixels {
public:
    explicit PageEndPixels(std::size_t count) : memory(count * sizeof(q_ulong), catalogue::Fence::behind) {
        std::fill_n(data(), count, q_ulong{}); // pages are used again and again
    }

    q_ulong *data() { return reinterpret_cast<q_ulong *>(memory.data()); }

private:
    catalogue::Memory memory;
};

} // namespace test

#endif
