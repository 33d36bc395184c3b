/// \file
/// Points that lie between the pixels, and the unit of lengths.
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

/// The nearest whole number; halves go up.
inline int rounded(double value) {
    return static_cast<int>(std::floor(value + 0.5));
}

/// The pixel nearest to the point.
inline tagPOINT pixelAt(Point point) {
    return {rounded(point.x), rounded(point.y)};
}

/// The pixel whose upper left corner is nearest to the upper left of the point.
inline tagPOINT pixelUnder(Point point) {
    return {static_cast<q_long>(std::floor(point.x)), static_cast<q_long>(std::floor(point.y))};
}

} // namespace show

#endif
