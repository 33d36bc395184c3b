/// \file
/// Colours of pixels: red, green and blue in the three lower bytes, and 0 or an opacity in the top byte.
#ifndef QMUR_SHOW_COLOUR_H
#define QMUR_SHOW_COLOUR_H

#include "easing.h"

#include "q_Mur.h"

#include <algorithm>

namespace show {

/// The channel that stands `shift` bits high.
constexpr int channelOf(q_ulong pixel, int shift) {
    return static_cast<int>(pixel >> shift & 0xFF);
}

/// A share from 0 to 1 of a channel, rounded.
constexpr q_ulong levelOf(double share) {
    return static_cast<q_ulong>(clampUnit(share) * 255 + 0.5);
}

/// The same as the library takes the brightness of blits that add.
constexpr unsigned char brightnessOf(double share) {
    return static_cast<unsigned char>(levelOf(share));
}

/// A colour whose channels `level` says, from 0 to 255 for 16, 8 and 0 bits.
template <class Level>
constexpr q_ulong eachChannel(Level level) {
    q_ulong pixel = 0;
    for (const int shift : {16, 8, 0})
        pixel |= static_cast<q_ulong>(std::clamp(static_cast<int>(level(shift)), 0, 255)) << shift;
    return pixel;
}

/// Channels from 0 to 255; what lies beyond is cut off.
constexpr q_ulong colourOf(double red, double green, double blue) {
    const auto level = [](double value) { return static_cast<q_ulong>(std::clamp(value, 0.0, 255.0)); };
    return level(red) << 16 | level(green) << 8 | level(blue);
}

constexpr q_ulong greyOf(double level) {
    return colourOf(level, level, level);
}

/// An opacity from 0 to 255 as the top byte of a pixel.
constexpr q_ulong opacityOf(double level) {
    return static_cast<q_ulong>(level) << 24;
}

/// A colour on its way to another.
constexpr q_ulong mixColours(q_ulong from, q_ulong to, double t) {
    const double share = clampUnit(t);
    return eachChannel([=](int shift) { return mix(channelOf(from, shift), channelOf(to, shift), share); });
}

constexpr q_ulong dimmed(q_ulong colour, double share) {
    return mixColours(0, colour, share);
}

/// Channels of a colour, in 1/256 of what they are. They stay within their bytes up to 256.
constexpr q_ulong scaled(q_ulong colour, q_ulong share) {
    return ((colour & 0xFF00FF) * share >> 8 & 0xFF00FF) | ((colour & 0xFF00) * share >> 8 & 0xFF00);
}

} // namespace show

#endif
