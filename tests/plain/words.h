/// \file
/// The words that the plain twins are written in: numbers of 64 bits, cut to 32 where the contract wraps, and one pixel
/// or element at a time. They owe nothing to the library's own code.
#ifndef Q_MUR_TESTS_PLAIN_WORDS_H
#define Q_MUR_TESTS_PLAIN_WORDS_H

#include <q_Mur.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

namespace plain {

using Number = std::int64_t;

constexpr Number two32 = Number{1} << 32;

/// What 32 bits keep of a number, without and with a sign.
constexpr Number unsigned32(Number value) {
    return ((value % two32) + two32) % two32;
}
constexpr Number signed32(Number value) {
    const Number low = unsigned32(value);
    return low >= two32 / 2 ? low - two32 : low;
}
constexpr int int32(Number value) {
    return static_cast<int>(signed32(value));
}
constexpr q_ulong word(Number value) {
    return static_cast<q_ulong>(unsigned32(value));
}

/// The quotient that is rounded down, as arithmetic shifts do; the divisor is above 0.
constexpr Number flooredQuotient(Number value, Number divisor) {
    return value >= 0 ? value / divisor : -((-value + divisor - 1) / divisor);
}

constexpr Number redOf(q_ulong pixel) {
    return pixel / 65536 % 256;
}
constexpr Number greenOf(q_ulong pixel) {
    return pixel / 256 % 256;
}
constexpr Number blueOf(q_ulong pixel) {
    return pixel % 256;
}
constexpr Number topByteOf(q_ulong pixel) {
    return pixel / 16777216;
}

/// red * 65536 + green * 256 + blue in 32 bits: numbers that leave a channel reach into the next.
constexpr q_ulong pixelOf(Number red, Number green, Number blue) {
    return word(red * 65536 + green * 256 + blue);
}

/// A pixel whose channels are each computed from the like channels of two others; its top byte is 0.
template <class Channel>
constexpr q_ulong eachChannel(q_ulong d, q_ulong s, Channel channel) {
    return pixelOf(channel(redOf(d), redOf(s)), channel(greenOf(d), greenOf(s)), channel(blueOf(d), blueOf(s)));
}

/// min(d + s, 255) in each channel.
constexpr q_ulong saturatedSum(q_ulong d, q_ulong s) {
    return eachChannel(d, s, [](Number a, Number b) { return std::min<Number>(255, a + b); });
}

/// d / 2 + s / 2 in each channel.
constexpr q_ulong halfMix(q_ulong d, q_ulong s) {
    return eachChannel(d, s, [](Number a, Number b) { return a / 2 + b / 2; });
}

/// Elements by column and row.
template <class Element>
struct View {
    Element *origin;
    Number pitch;

    Element &at(Number x, Number y) const { return origin[y * pitch + x]; }
};

using Pixels = View<q_ulong>;

constexpr Number widthOf(const tagRECT &rect) {
    return Number{rect.right} - rect.left;
}
constexpr Number heightOf(const tagRECT &rect) {
    return Number{rect.bottom} - rect.top;
}
constexpr bool contains(const tagRECT &rect, Number x, Number y) {
    return x >= rect.left && x < rect.right && y >= rect.top && y < rect.bottom;
}

} // namespace plain

#endif
