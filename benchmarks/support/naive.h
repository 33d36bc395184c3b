/// \file
/// Pixel arithmetic the plain way, byte by byte, to check results with: nothing here is the library's.
#ifndef Q_MUR_BENCH_NAIVE_H
#define Q_MUR_BENCH_NAIVE_H

#include "scene.h"

#include <cstdint>

namespace bench::naive {

/// The bytes of a pixel, widened.
struct Channels {
    int red;
    int green;
    int blue;
};

inline Channels channelsOf(q_ulong pixel) {
    return {static_cast<int>(pixel >> 16 & 255), static_cast<int>(pixel >> 8 & 255), static_cast<int>(pixel & 255)};
}

inline int alphaOf(q_ulong pixel) {
    return static_cast<int>(pixel >> 24);
}

/// A pixel of three bytes, top byte 0.
inline q_ulong pixelOf(Channels c) {
    return static_cast<q_ulong>(c.red) << 16 | static_cast<q_ulong>(c.green) << 8 | static_cast<q_ulong>(c.blue);
}

/// Applies an operation of two bytes to each channel.
template <class Operation>
q_ulong perChannel(q_ulong a, q_ulong b, Operation operation) {
    const Channels x = channelsOf(a);
    const Channels y = channelsOf(b);
    return pixelOf({operation(x.red, y.red), operation(x.green, y.green), operation(x.blue, y.blue)});
}

inline q_ulong saturatedSum(q_ulong d, q_ulong s) {
    return perChannel(d, s, [](int a, int b) { return a + b > 255 ? 255 : a + b; });
}

/// (d * dWeight + s * sWeight) / divisor in each channel.
inline q_ulong weightedMean(q_ulong d, int dWeight, q_ulong s, int sWeight, int divisor = 256) {
    return perChannel(d, s, [=](int a, int b) { return (a * dWeight + b * sWeight) / divisor; });
}

/// The weighted channel sums of the four pixels around a position in sixteenths; each up to 255 * 256. Beyond `lastX`
/// and `lastY` the last column and row stand in.
inline Channels filteredSums(const Surface &src, int sixteenthsX, int sixteenthsY, int lastX = 1 << 20,
                             int lastY = 1 << 20) {
    Channels sum = {};
    for (int tap = 0; tap < 4; ++tap) {
        const int right = tap & 1;
        const int below = tap >> 1;
        const int x = sixteenthsX / 16 + right;
        const int y = sixteenthsY / 16 + below;
        const int weightX = right ? sixteenthsX % 16 : 16 - sixteenthsX % 16;
        const int weightY = below ? sixteenthsY % 16 : 16 - sixteenthsY % 16;
        const Channels c = channelsOf(src.at(x > lastX ? lastX : x, y > lastY ? lastY : y));
        sum.red += c.red * weightX * weightY;
        sum.green += c.green * weightX * weightY;
        sum.blue += c.blue * weightX * weightY;
    }
    return sum;
}

inline q_ulong filtered(const Surface &src, int sixteenthsX, int sixteenthsY, int lastX = 1 << 20,
                        int lastY = 1 << 20) {
    const Channels sum = filteredSums(src, sixteenthsX, sixteenthsY, lastX, lastY);
    return pixelOf({sum.red / 256, sum.green / 256, sum.blue / 256});
}

/// A source position: `count` steps of `srcExtent / dstExtent`, the step truncated to `fractionBits`; the result is
/// truncated to `keptBits` of fraction.
inline int scaledPosition(int count, int srcExtent, int dstExtent, int fractionBits, int keptBits) {
    const std::int64_t step = (static_cast<std::int64_t>(srcExtent) << fractionBits) / dstExtent;
    return static_cast<int>(step * count >> (fractionBits - keptBits));
}

} // namespace bench::naive

#endif
