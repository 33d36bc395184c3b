/// \file
/// 8-bit planes for tests.
#ifndef Q_MUR_TESTS_REGION_PLANE_H
#define Q_MUR_TESTS_REGION_PLANE_H

#include "support/surface.h"

#include <vector>

namespace test {

/// An 8-bit plane of the size, pitch and margins of a Surface, whose low bytes it takes.
class Plane {
public:
    explicit Plane(const Surface &shape) : surface(shape) {
        for (const q_ulong word : shape.words())
            bytes.push_back(static_cast<unsigned char>(word));
    }

    unsigned char *pixels() { return &at(0, 0); }
    int width() const { return surface.width(); }
    int height() const { return surface.height(); }
    int pitch() const { return surface.pitch(); }

    unsigned char &at(int x, int y) { return bytes.at(index(x, y)); }

    /// The plane as words, margins included, to be compared as surfaces are.
    Surface words() const {
        Surface result = surface;
        for (int y = -Surface::margin; y < surface.height() + Surface::margin; ++y)
            for (int x = -Surface::margin; x < surface.pitch() - Surface::margin; ++x)
                result.at(x, y) = bytes.at(index(x, y));
        return result;
    }

private:
    std::size_t index(int x, int y) const {
        return static_cast<std::size_t>((y + Surface::margin) * surface.pitch() + x + Surface::margin);
    }

    Surface surface;
    std::vector<unsigned char> bytes;
};

} // namespace test

#endif
