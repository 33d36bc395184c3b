/// \file
/// Bilinear sampling with four-bit weights: the four weights are products of numbers up to 16 and add up to 256, so
/// the weighted sum of a channel stays below 65536 and fits 16 bits at every step.
#ifndef Q_MUR_BASE_SAMPLING_H
#define Q_MUR_BASE_SAMPLING_H

#include "base/channels.h"
#include "base/surface.h"

namespace qmur {

/// Weighted channel sums of a sample, each channel times 256.
class ChannelSums {
public:
    /// The sums are the first four lanes: blue, green, red and the top byte.
    explicit ChannelSums(Words<8> sums) : lanes(sums) {}

    q_ulong topByteSum() const { return lanes[3]; }
    q_ulong redSum() const { return lanes[2]; }
    q_ulong greenSum() const { return lanes[1]; }
    q_ulong blueSum() const { return lanes[0]; }

    /// Each sum divided by 256, truncated; top byte 0.
    q_ulong pixel() const { return pixelOf(lanes >> 8) & 0xFFFFFF; }

    /// The same in 32 bits each, the top byte's as well.
    Numbers<4> numbers() const { return widenedLow(lanes >> 8); }

private:
    Words<8> lanes;
};

namespace detail {

/// The weights 16 - f and f of two pixels side by side.
struct PairWeights {
    alignas(16) std::uint16_t lanes[16 * 8];

    constexpr PairWeights() : lanes() {
        for (unsigned f = 0; f < 16; ++f)
            for (unsigned lane = 0; lane < 8; ++lane)
                lanes[f * 8 + lane] = static_cast<std::uint16_t>(lane < 4 ? 16 - f : f);
    }

    Words<8> of(q_ulong f) const { return Words<8>::load(lanes + f * 8); }
};

inline constexpr PairWeights pairWeights;

/// The weights of two rows of pixels, as mixedRows() of two pixels side by side takes them.
struct RowWeights {
    alignas(16) std::uint16_t lanes[16 * 8];

    constexpr RowWeights() : lanes() {
        for (unsigned f = 0; f < 16; ++f)
            for (unsigned lane = 0; lane < 8; ++lane)
                lanes[f * 8 + lane] = static_cast<std::uint16_t>(sumsPairs ? 16 - f + (f << 8) : f);
    }
};

inline constexpr RowWeights rowWeights;

/// The weights of a fraction that is given as the place of its first lane among all of a table's.
template <class Table>
Words<8> weightsAt(const Table &table, std::int32_t place) {
    return Words<8>::load(table.lanes + place);
}

/// upper * (16 - fy) + lower * fy in every lane.
inline Words<8> mixedRows(Words<8> upper, Words<8> lower, q_ulong fy) {
    const auto weight = static_cast<std::uint16_t>(fy);
    return upper * Words<8>::all(static_cast<std::uint16_t>(16 - weight)) + lower * Words<8>::all(weight);
}

/// Two pixels side by side mixed with those of the row below. A template, so that targets which lack pairSums() of
/// bytes do not compile it.
template <int count>
Words<count> mixedRows(const q_ulong *upper, const q_ulong *lower, Words<count> weights) {
    using Two = Bytes<count * 2>;
    if constexpr (sumsPairs) {
        return pairSums(interleavedLow(Two::loadEightBytes(upper), Two::loadEightBytes(lower)),
                        as<std::uint8_t>(weights));
    } else {
        const Words<count> above = channelWordsOfTwo(upper);
        return (above << 4) + (channelWordsOfTwo(lower) - above) * weights;
    }
}

} // namespace detail

/// Weights of pixels of which two are mixed, for the lower and the upper half of each 16 bytes: eight bytes to a pixel,
/// those of the one and the other in turn.
template <int count>
struct MixWeights {
    Bytes<count * 4> low;
    Bytes<count * 4> high;

    static MixWeights all(q_ulong fraction) {
        const auto both = as<std::uint8_t>(Words<count * 2>::all(static_cast<std::uint16_t>(pair(fraction))));
        return {both, both};
    }
    static constexpr q_ulong pair(q_ulong fraction) { return 16 - fraction + (fraction << 8); }
};

/// Channels of pixels as words, of the lower and the upper half of each 16 bytes.
template <int count>
struct PixelWords {
    Words<count * 2> low;
    Words<count * 2> high;
};

/// Pixels mixed with others by sixteenths: each channel times 16.
template <int count>
PixelWords<count> mixedPixels(Numbers<count> a, Numbers<count> b, MixWeights<count> weights) {
    const auto aBytes = as<std::uint8_t>(a);
    const auto bBytes = as<std::uint8_t>(b);
    if constexpr (sumsPairs) {
        return {pairSums(interleavedLow(aBytes, bBytes), weights.low),
                pairSums(interleavedHigh(aBytes, bBytes), weights.high)};
    } else {
        using Half = Words<count * 2>;
        const auto mixed = [](Half aWords, Half bWords, Bytes<count * 4> pairs) {
            const auto words = as<std::uint16_t>(pairs);
            return aWords * (words & Half::all(0xFF)) + bWords * (words >> 8);
        };
        return {mixed(widenedLow(aBytes), widenedLow(bBytes), weights.low),
                mixed(widenedHigh(aBytes), widenedHigh(bBytes), weights.high)};
    }
}

/// Sums of samples divided by 256, truncated; top byte 0.
template <int count>
Numbers<count> pixelsOf(PixelWords<count> sums) {
    return as<std::uint32_t>(narrowed(sums.low >> 8, sums.high >> 8)) & Numbers<count>::all(0xFFFFFF);
}

/// The four taps at the start of two rows; `fx` and `fy` are the fractions in sixteenths.
inline ChannelSums fourTaps(const q_ulong *row0, const q_ulong *row1, q_ulong fx, q_ulong fy) {
    const Words<8> rows =
        detail::mixedRows(row0, row1, detail::weightsAt(detail::rowWeights, static_cast<std::int32_t>(fy * 8)));
    const Words<8> products = rows * detail::pairWeights.of(fx);
    return ChannelSums(products + swappedHalves(products));
}

/// Four samples side by side: the taps of each start at `first + distances[lane]`, and a row lower `pitch` further on.
/// Every channel is divided by 256 and truncated, the top byte as well. Fractions are given eight times as large as
/// sixteenths.
[[gnu::always_inline]] inline Numbers<4> fourSamples(const q_ulong *first, Distance pitch, Numbers<4> distances,
                                                     Numbers<4> fx, Numbers<4> fy) {
    const Spilled<4> places(distances);
    const Spilled<4> across(fx);
    const Spilled<4> down(fy);
    const auto products = [&](int lane) {
        const q_ulong *const taps = first + places[lane];
        const auto rows = detail::mixedRows(taps, taps + pitch, detail::weightsAt(detail::rowWeights, down[lane]));
        return as<std::uint64_t>(rows * detail::weightsAt(detail::pairWeights, across[lane]));
    };
    // What the two pixels of a sample contribute lies in the two halves.
    const auto twoSums = [&](int lane) {
        const auto a = products(lane);
        const auto b = products(lane + 1);
        return as<std::uint16_t>(interleavedLow(a, b)) + as<std::uint16_t>(interleavedHigh(a, b));
    };
    return as<std::uint32_t>(narrowed(twoSums(0) >> 8, twoSums(2) >> 8));
}

/// As many samples as a register holds pixels, from the same numbers but for the fractions, which are sixteenths.
template <int count>
[[gnu::always_inline]] inline Numbers<count> manySamples(const q_ulong *first, Distance pitch, Numbers<count> distances,
                                                         Numbers<count> fx, Numbers<count> fy) {
    const Spilled<count> places(distances);
    const auto upper = loadPairs<count>(first, places.numbers);
    const auto lower = loadPairs<count>(first + pitch, places.numbers);
    const auto inWords = [](Numbers<count> numbers) { return numbers | numbers << 16; };
    const Numbers<count> across = inWords((fx << 8) - fx + Numbers<count>::all(MixWeights<count>::pair(0)));
    const Numbers<count> down = inWords(fy);
    const auto mixed = [](Numbers<count> a, Numbers<count> b, Numbers<count> pairs, Numbers<count> weights) {
        const auto row = [pairs](Numbers<count> pixels) {
            return pairSums(pairedBytes(as<std::uint8_t>(pixels)), as<std::uint8_t>(pairs));
        };
        const auto above = row(a);
        return ((above << 4) + (row(b) - above) * as<std::uint16_t>(weights)) >> 8;
    };
    return as<std::uint32_t>(narrowed(mixed(upper.low, lower.low, doubledLow(across), doubledLow(down)),
                                      mixed(upper.high, lower.high, doubledHigh(across), doubledHigh(down))));
}

/// The two taps of one column, where there is no column to the right.
inline ChannelSums twoTaps(q_ulong upper, q_ulong lower, q_ulong fy) {
    return ChannelSums(detail::mixedRows(channelWords(upper), channelWords(lower), fy) * Words<8>::all(16));
}

} // namespace qmur

#endif
