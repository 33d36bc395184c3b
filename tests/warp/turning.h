/// \file
/// Angles where turns break.
#ifndef Q_MUR_TESTS_WARP_TURNING_H
#define Q_MUR_TESTS_WARP_TURNING_H

#include "support/random.h"

namespace test {

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

} // namespace test

#endif
