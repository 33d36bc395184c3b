/// \file
/// Surfaces for tests.
#ifndef Q_MUR_TESTS_SURFACE_H
#define Q_MUR_TESTS_SURFACE_H

#include "catalogue/plane.h"
#include "numbers.h"
#include "random.h"

#include <algorithm>
#include <cstddef>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace test {

/// A picture in the middle of a larger buffer, which is copied with it. Two surfaces are equal only if the margins
/// around their pictures are too, so a write beside the picture shows as a difference; a read a little beside it is
/// harmless and repeatable.
class Surface {
public:
    static constexpr int margin = catalogue::Plane::usualMargin;

    /// All pixels, margins included, are `value`.
    Surface(int width, int height, q_ulong value = 0, int extraPitch = 0)
        : plane(catalogue::Plane::surface(width, height, value, extraPitch)) {}
    Surface(const Surface &other) {
        catalogue::Copies copies;
        plane = other.plane.copy(copies);
    }
    Surface(Surface &&) = default;
    Surface &operator=(Surface other) {
        plane = std::move(other.plane);
        return *this;
    }

    /// A picture of random pixels and random size, up to `largest` in each direction, with a random pitch.
    static Surface random(Random &random, int largest = 16) {
        const int width = random.between(1, largest);
        const int height = random.between(1, largest);
        return randomOfSize(random, width, height);
    }
    static Surface randomOfSize(Random &random, int width, int height) {
        Surface surface(0, 0);
        surface.plane = catalogue::Plane::randomSurface(random, width, height);
        return surface;
    }

    /// The pixel at (0, 0), as it is handed to the library.
    q_ulong *pixels() { return &at(0, 0); }

    int width() const { return plane.width(); }
    int height() const { return plane.height(); }
    int pitch() const { return plane.pitch(); }
    tagRECT rect() const { return plane.rect(); }

    /// Any pixel of the picture or its margin.
    q_ulong &at(int x, int y) { return plane.at(x, y); }
    q_ulong at(int x, int y) const { return plane.at(x, y); }

    /// All pixels, margins included.
    std::span<const q_ulong> words() const {
        return {&plane.at(-margin, -margin), plane.bytes().size() / sizeof(q_ulong)};
    }

    friend bool operator==(const Surface &a, const Surface &b) { return a.differenceFrom(b).empty(); }

    /// What differs first from `expected`, in words; empty if nothing does.
    std::string differenceFrom(const Surface &expected) const { return plane.differenceFrom(expected.plane); }

private:
    catalogue::Plane plane;
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
