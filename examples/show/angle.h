/// \file
/// Sines and cosines of angles in turns, from the library's tables, so that every build counts the same.
#ifndef QMUR_SHOW_ANGLE_H
#define QMUR_SHOW_ANGLE_H

#include "easing.h"

#include "q_Mur.h"

#include <cmath>

namespace show {

/// Between two entries of a table that goes round once in 8192.
inline double betweenEntries(const int *table, double turns) {
    const double entries = (turns - std::floor(turns)) * 8192;
    const int index = static_cast<int>(entries);
    return mix(table[index & 8191], table[(index + 1) & 8191], entries - index) / 32768;
}

inline double sineOf(double turns) {
    return betweenEntries(iSin, turns);
}

inline double cosineOf(double turns) {
    return betweenEntries(iCos, turns);
}

} // namespace show

#endif
