/// \file
/// Points that lie between the pixels, angles in turns, and the unit of lengths.
#ifndef QMUR_SHOW_POINT_H
#define QMUR_SHOW_POINT_H

#include "easing.h"

#include "q_Mur.h"

#include <algorithm>
#include <cmath>

namespace show {

struct Point {
    double x;
    double y;
};

inline Point between(Point from, Point to, double t) {
    return {mix(from.x, to.x, t), mix(from.y, to.y, t)};
}

inline double distance(Point a, Point b) {
    return std::sqrt((b.x - a.x) * (b.x - a.x) + (b.y - a.y) * (b.y - a.y));
}

/// What measures a pixel in a frame of 1280 by 720 measures this in one of another size.
inline double unitOf(int width, int height) {
    return std::min(width, height) / 720.0;
}

inline int rounded(double value) {
    return static_cast<int>(std::floor(value + 0.5));
}

/// The pixel nearest to the point.
inline tagPOINT pixelAt(Point point) {
    return {rounded(point.x), rounded(point.y)};
}

/// What an angle in turns has between two entries of one of the library's tables, which hold one turn in 8192 steps and
/// 1 as 32768. The language's own sines end in other bits on other systems.
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
