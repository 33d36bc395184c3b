/// \file
/// Packed-channel arithmetic: what the blits do to a pixel, each operation once.
///
/// d is the destination pixel and s the source pixel. Unless said otherwise the top byte of a result is 0 and the top
/// bytes of d and s have no influence.
#ifndef Q_MUR_BASE_PIXEL_H
#define Q_MUR_BASE_PIXEL_H

#include "q_Mur/types.h"

namespace qmur {

constexpr q_ulong redMask = 0xFF0000;
constexpr q_ulong greenMask = 0xFF00;
constexpr q_ulong blueMask = 0xFF;
constexpr q_ulong redBlueMask = 0xFF00FF;

constexpr q_ulong redOf(q_ulong pixel) {
    return pixel >> 16 & 0xFF;
}
constexpr q_ulong greenOf(q_ulong pixel) {
    return pixel >> 8 & 0xFF;
}
constexpr q_ulong blueOf(q_ulong pixel) {
    return pixel & 0xFF;
}
constexpr q_ulong topByteOf(q_ulong pixel) {
    return pixel >> 24;
}

/// Red where a function takes it without a mask: with the top byte above it, the whole upper half of the word.
constexpr q_ulong upperHalfOf(q_ulong pixel) {
    return pixel >> 16;
}

/// The pixel of three channels. They are not masked: one above 255 reaches into those above it.
constexpr q_ulong pixelOf(q_ulong red, q_ulong green, q_ulong blue) {
    return red << 16 | green << 8 | blue;
}

constexpr q_ulong cappedAt255(q_ulong value) {
    return value > 255 ? 255 : value;
}

/// The pixel whose channels are what `operation` makes of those of one or more pixels.
template <class Operation, class... Pixels>
constexpr q_ulong channelwise(Operation operation, Pixels... pixels) {
    return pixelOf(operation(redOf(pixels)...), operation(greenOf(pixels)...), operation(blueOf(pixels)...));
}

/// The same where red is the whole upper half of each pixel.
template <class Operation, class... Pixels>
constexpr q_ulong upperHalfChannelwise(Operation operation, Pixels... pixels) {
    return pixelOf(operation(upperHalfOf(pixels)...), operation(greenOf(pixels)...), operation(blueOf(pixels)...));
}

/// d / 2 + s / 2 in each channel; the lowest bit of either is dropped first.
constexpr q_ulong halfMix(q_ulong d, q_ulong s) {
    return (d >> 1 & 0x7F7F7F) + (s >> 1 & 0x7F7F7F);
}

/// min(d + s, 255) in each channel.
constexpr q_ulong saturatingAdd(q_ulong d, q_ulong s) {
    // Of the two halves each leaves eight bits or more free above its channels: a carry stays beside its channel, where
    // a subtraction turns it into a mask of that channel without a compare.
    const q_ulong redBlue = (d & redBlueMask) + (s & redBlueMask);
    const q_ulong green = (d & greenMask) + (s & greenMask);
    const q_ulong carries = (redBlue & 0x1000100) | (green & 0x10000);
    return (redBlue & redBlueMask) | (green & greenMask) | (carries - (carries >> 8));
}

/// (d * dWeight + s * sWeight) / 256, truncated, in each channel for weights from 0 to 256 that add up to 256 at most.
/// Beyond that the products wrap and the masks decide what is left of them.
constexpr q_ulong blend256(q_ulong d, q_ulong dWeight, q_ulong s, q_ulong sWeight) {
    const q_ulong red = ((d & redMask) * dWeight + (s & redMask) * sWeight) & 0xFF0000FF;
    const q_ulong green = ((d & greenMask) * dWeight + (s & greenMask) * sWeight) & 0xFF0000;
    const q_ulong blue = (d & blueMask) * dWeight + (s & blueMask) * sWeight;
    return (red | green | blue) >> 8;
}

} // namespace qmur

#endif
