/// \file
/// Sine and cosine from the library's tables, the same to the last bit in every build.
#ifndef QMUR_SHOW_TABLE_ANGLE_H
#define QMUR_SHOW_TABLE_ANGLE_H

#include "q_Mur.h"

#include <cmath>

namespace show {

inline constexpr double halfCircle = 3.141592653589793;

/// The place in the tables of an angle in radians.
inline int tableIndex(double angle) {
    return static_cast<int>(std::floor(angle / halfCircle * 4096 + 0.5)) & 8191;
}

inline double cosine(double angle) {
    return iCos[tableIndex(angle)] / 32768.0;
}

inline double sine(double angle) {
    return iSin[tableIndex(angle)] / 32768.0;
}

} // namespace show

#endif
