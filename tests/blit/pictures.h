/// \file
/// Small pictures for values worked out by hand.
#ifndef Q_MUR_TESTS_BLIT_PICTURES_H
#define Q_MUR_TESTS_BLIT_PICTURES_H

#include "support/random.h"
#include "support/surface.h"

#include <gtest/gtest.h>

#include <vector>

namespace test {

using Pixels = std::vector<q_ulong>;

inline q_ulong unsignedOf(int value) {
    return static_cast<q_ulong>(value);
}

inline q_ulong pitchOf(const Surface &surface) {
    return unsignedOf(surface.pitch());
}

/// A picture by its pixels in reading order, on a ground of 0.
inline Surface pictureOf(int width, const Pixels &pixels) {
    Surface surface(width, static_cast<int>(pixels.size()) / width);
    for (int i = 0; i < static_cast<int>(pixels.size()); ++i)
        surface.at(i % width, i / width) = pixels[static_cast<std::size_t>(i)];
    return surface;
}

inline Surface rowOf(const Pixels &pixels) {
    return pictureOf(static_cast<int>(pixels.size()), pixels);
}

/// A picture of the pixels 1, 2, 3 ... in reading order.
inline Surface numbered(int width, int height) {
    Pixels pixels;
    for (int i = 1; i <= width * height; ++i)
        pixels.push_back(unsignedOf(i));
    return pictureOf(width, pixels);
}

inline Pixels pixelsOf(const Surface &surface) {
    Pixels pixels;
    for (int y = 0; y < surface.height(); ++y)
        for (int x = 0; x < surface.width(); ++x)
            pixels.push_back(surface.at(x, y));
    return pixels;
}

/// A surface with a part of a picture on it.
inline Surface showing(Surface surface, int x, int y, const Surface &picture, const tagRECT &part) {
    for (int row = 0; row < part.bottom - part.top; ++row)
        for (int column = 0; column < part.right - part.left; ++column)
            surface.at(x + column, y + row) =
                picture.at(static_cast<int>(part.left) + column, static_cast<int>(part.top) + row);
    return surface;
}

} // namespace test

#endif
