/// \file
/// What the tests of the warps share: pictures of one shape, angles where rotators break, and numbers cut to 32 bits.
#ifndef Q_MUR_TESTS_WARP_TURNING_H
#define Q_MUR_TESTS_WARP_TURNING_H

#include "math3d/full_width.h"
#include "support/cases.h"

#include <cmath>
#include <vector>

namespace test {

/// A picture from a stock of random ones. All have one shape and so one pitch, margins of random pixels included.
inline const Surface &anyPicture(Random &random) {
    static const std::vector<Surface> pictures = [] {
        std::vector<Surface> made;
        for (int i = 0; i < 12; ++i) {
            Random pixels(static_cast<std::uint64_t>(1000 + i));
            Surface picture(16, 13, 0, 1);
            for (int y = -Surface::margin; y < picture.height() + Surface::margin; ++y)
                for (int x = -Surface::margin; x < picture.pitch() - Surface::margin; ++x)
                    picture.at(x, y) = pixels.pixel();
            made.push_back(picture);
        }
        return made;
    }();
    return pictures[static_cast<std::size_t>(random.between(0, 11))];
}

/// An angle in radians: at or beside a multiple of a quarter turn, or anywhere.
inline double anyTurn(Random &random) {
    constexpr double quarter = 1.5707963267948966;
    constexpr double beside[] = {0, 0, 0x1p-40, -0x1p-40, 0x1p-20, -0x1p-20, 0x1p-8, -0x1p-8};
    switch (random.between(0, 3)) {
    case 0:
        return random.between(-6, 6) * quarter + beside[random.between(0, 7)];
    case 1: {
        constexpr double limits[] = {1.570796, 4.712388, 6.283184, 0};
        return limits[random.between(0, 3)] + beside[random.between(0, 7)];
    }
    case 2:
        return random.between(-1000000, 1000000) / 16384.0;
    default:
        return random.between(0, 6283184) / 1000000.0;
    }
}

/// Truncates toward zero and cuts to 32 bits.
inline int truncated(Real value) {
    return std::fabs(value) < 0x1p63L ? low32(static_cast<std::int64_t>(value)) : 0;
}

/// The product of two ints, cut to 32 bits.
inline int product32(std::int64_t a, std::int64_t b) {
    return low32(a * b);
}

} // namespace test

#endif
