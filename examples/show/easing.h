/// \file
/// Courses of a motion over its time from 0 to 1. Plain arithmetic only, so that every build counts the same.
#ifndef QMUR_SHOW_EASING_H
#define QMUR_SHOW_EASING_H

namespace show {

constexpr double clampUnit(double t) {
    return t < 0 ? 0 : t > 1 ? 1 : t;
}

/// Sets off and arrives gently.
constexpr double easeInOut(double t) {
    return t * t * (3 - 2 * t);
}

/// Sets off and arrives more gently still, and hurries in between.
constexpr double easeGently(double t) {
    return t * t * t * (t * (6 * t - 15) + 10);
}

/// Sets off gently.
constexpr double easeIn(double t) {
    return t * t;
}

/// Arrives gently.
constexpr double easeOut(double t) {
    return t * (2 - t);
}

constexpr double mix(double from, double to, double t) {
    return from + (to - from) * t;
}

/// How far `t` has come on its way from `from` to `to`, from 0 to 1.
constexpr double stretch(double t, double from, double to) {
    return clampUnit((t - from) / (to - from));
}

} // namespace show

#endif
