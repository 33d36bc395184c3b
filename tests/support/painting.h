/// \file
/// Pictures that tests draw from and compare with.
#ifndef Q_MUR_TESTS_PAINTING_H
#define Q_MUR_TESTS_PAINTING_H

#include "surface.h"

#include <type_traits>

namespace test {

/// What stands where nothing has been drawn.
inline constexpr q_ulong untouched = 0x77777777;

inline Surface blank(int width, int height) {
    return {width, height, untouched};
}

/// `surface` with a part of it painted in one colour, or in that of `colour(x, y)`.
template <class Colour>
Surface painted(Surface surface, const tagRECT &part, Colour colour) {
    for (int y = static_cast<int>(part.top); y < part.bottom; ++y)
        for (int x = static_cast<int>(part.left); x < part.right; ++x)
            if constexpr (std::is_integral_v<Colour>)
                surface.at(x, y) = static_cast<q_ulong>(colour);
            else
                surface.at(x, y) = colour(x, y);
    return surface;
}

/// A pixel that tells its place: row in the second byte, column in the lowest.
inline q_ulong place(int x, int y) {
    return 0xFF000000 | static_cast<q_ulong>((y & 255) << 8 | (x & 255));
}

/// A picture of such pixels, margin included.
inline Surface placesOf(int width, int height) {
    constexpr int margin = Surface::margin;
    return painted(Surface(width, height), {-margin, -margin, width + margin, height + margin}, place);
}

/// A picture of the same size and pitch with other pixels.
inline Surface another(Random &random, const Surface &surface) {
    constexpr int margin = Surface::margin;
    return painted(surface, {-margin, -margin, surface.width() + margin, surface.height() + margin},
                   [&random](int, int) { return random.word(); });
}

/// How many pixels of a row have been drawn.
inline int drawnInRow(const Surface &surface, int y) {
    int count = 0;
    for (int x = 0; x < surface.width(); ++x)
        count += surface.at(x, y) != untouched;
    return count;
}

} // namespace test

#endif
