/// \file
/// Small pictures for values worked out by hand, and calls that draw on them.
#ifndef Q_MUR_TESTS_PICTURES_H
#define Q_MUR_TESTS_PICTURES_H

#include "surface.h"

#include <gtest/gtest.h>

#include <map>
#include <type_traits>

namespace test {

using Pixels = std::vector<q_ulong>;

/// A picture by its rows, each character a pixel, and what the characters stand for.
using Rows = std::vector<std::string>;
using Colours = std::map<char, q_ulong>;

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

/// A picture by its rows, on a ground of the colour of '.', or of 0.
inline Surface pictureOf(const Rows &rows, const Colours &colours) {
    const auto ground = colours.find('.');
    Surface surface(static_cast<int>(rows[0].size()), static_cast<int>(rows.size()),
                    ground == colours.end() ? 0 : ground->second);
    for (int y = 0; y < surface.height(); ++y)
        for (int x = 0; x < surface.width(); ++x)
            if (const char c = rows[static_cast<std::size_t>(y)][static_cast<std::size_t>(x)]; c != '.')
                surface.at(x, y) = colours.at(c);
    return surface;
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

/// The pixels of one row.
inline Pixels rowIn(const Surface &surface, int y) {
    Pixels pixels;
    for (int x = 0; x < surface.width(); ++x)
        pixels.push_back(surface.at(x, y));
    return pixels;
}

inline Pixels columnIn(const Surface &surface, int x) {
    Pixels pixels;
    for (int y = 0; y < surface.height(); ++y)
        pixels.push_back(surface.at(x, y));
    return pixels;
}

/// The rows of a picture, as text: '?' where no character stands for a pixel.
inline Rows rowsOf(const Surface &surface, const Colours &colours) {
    Rows rows;
    for (int y = 0; y < surface.height(); ++y) {
        rows.emplace_back();
        for (int x = 0; x < surface.width(); ++x) {
            char found = '?';
            for (const auto &[character, colour] : colours)
                if (surface.at(x, y) == colour)
                    found = character;
            rows.back() += found;
        }
    }
    return rows;
}

/// A surface with a part of a picture on it.
inline Surface showing(Surface surface, int x, int y, const Surface &picture, const tagRECT &part) {
    for (int row = 0; row < part.bottom - part.top; ++row)
        for (int column = 0; column < part.right - part.left; ++column)
            surface.at(x + column, y + row) =
                picture.at(static_cast<int>(part.left) + column, static_cast<int>(part.top) + row);
    return surface;
}

/// An argument as a function takes it: rectangles by their address.
template <class Argument>
Argument &passed(Argument &argument) {
    return argument;
}
inline tagRECT *passed(tagRECT &rect) {
    return &rect;
}

/// A surface on which a function has drawn that takes it, its pitch and then these arguments.
template <class... Parameters, class... Arguments>
Surface drawnOn(Surface surface, void (*draw)(q_ulong *, int, Parameters...), Arguments... arguments) {
    draw(surface.pixels(), surface.pitch(), static_cast<Parameters>(passed(arguments))...);
    return surface;
}

/// The same for functions that take a clip before the pitch.
template <class... Parameters, class... Arguments>
Surface drawnOn(Surface surface, void (*draw)(q_ulong *, tagRECT *, int, Parameters...), tagRECT clip,
                Arguments... arguments) {
    draw(surface.pixels(), &clip, surface.pitch(), static_cast<Parameters>(passed(arguments))...);
    return surface;
}

} // namespace test

#endif
