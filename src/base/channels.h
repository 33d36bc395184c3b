/// \file
/// Pixel arithmetic with all channels at once, on lanes: of a single pixel, for walks that meet one at a time, and of
/// several side by side. No weighted sum leaves its 16 bits, for weights are 0 to 256 and together 256 at most.
#ifndef Q_MUR_BASE_CHANNELS_H
#define Q_MUR_BASE_CHANNELS_H

#include "base/alpha.h"
#include "base/integers.h"
#include "base/lanes.h"
#include "base/pixel.h"

namespace qmur {

/// A pixel's blue, green, red and top byte in the first four lanes, 0 in the others.
inline Words<8> channelWords(q_ulong pixel) {
    return widenedLow(as<std::uint8_t>(Numbers<4>::front(pixel)));
}

/// The same for two pixels side by side in memory.
inline Words<8> channelWordsOfTwo(const q_ulong *pixels) {
    return widenedLow(Bytes<16>::loadEightBytes(pixels));
}

/// A pixel's blue, green, red and top byte in 32 bits each.
inline Numbers<4> channelNumbers(q_ulong pixel) {
    return widenedLow(channelWords(pixel));
}

/// The pixel whose bytes are the first four lanes, of 255 at most.
inline q_ulong pixelOf(Words<8> channels) {
    return as<std::uint32_t>(narrowed(channels, channels))[0];
}

/// The pixel of blue, green and red, capped above only: a negative channel spills over those above it.
inline q_ulong packedPixel(Numbers<4> channels) {
    const bool anyNegative = (negativeLanes(channels) & 7) != 0;
    if (!anyNegative) [[likely]]
        return pixelOf(narrowed(channels, channels)) & 0xFFFFFF;
    const auto capped = [channels](int lane) { return smaller(static_cast<int>(channels[lane]), 255); };
    return static_cast<q_ulong>(capped(2) << 16 | capped(1) << 8 | capped(0));
}

/// Red and blue of pixels, or green alone, in words of their own.
template <int count>
Words<count * 2> redBlueWords(Numbers<count> pixels) {
    return as<std::uint16_t>(pixels & Numbers<count>::all(redMask | blueMask));
}
template <int count>
Words<count * 2> greenWords(Numbers<count> pixels) {
    return as<std::uint16_t>(pixels >> 8 & Numbers<count>::all(0xFF));
}

/// Pixels of 256 times their channels, which stand in words of their own.
template <int words>
Numbers<words / 2> pixelsOfProducts(Words<words> redBlue, Words<words> green) {
    return as<std::uint32_t>(redBlue >> 8) | as<std::uint32_t>(green & Words<words>::all(0xFF00));
}

/// min(d + s, 255) in each byte, the top one included.
inline q_ulong saturatingBytes(q_ulong d, q_ulong s) {
    const auto bytes = [](q_ulong pixel) { return as<std::uint8_t>(Numbers<4>::front(pixel)); };
    return as<std::uint32_t>(saturatingSum(bytes(d), bytes(s)))[0];
}

/// The weights of source and destination, in 1/256.
template <int count>
struct WordWeights {
    Words<count> src;
    Words<count> dst;
};

/// The weighted mean in each lane, truncated.
template <int count>
Words<count> weightedMean(Words<count> d, Words<count> s, WordWeights<count> weights) {
    return (d * weights.dst + s * weights.src) >> 8;
}

/// blend256() with weights from 0 to 256.
class PixelBlend {
public:
    explicit PixelBlend(AlphaWeights of)
        : weights{Words<8>::of(of.src, of.src, of.src, 0, 0, 0, 0, 0),
                  Words<8>::of(of.dst, of.dst, of.dst, 0, 0, 0, 0, 0)} {}

    q_ulong operator()(q_ulong d, q_ulong s) const {
        return pixelOf(weightedMean(channelWords(d), channelWords(s), weights));
    }

private:
    WordWeights<8> weights;
};

/// blend256() of several pixels. `weightsOf(s)` gives the weights for source pixels whose channels lie in `s`.
template <int count, class WeightsOf>
Numbers<count> blendPixels(Numbers<count> d, Numbers<count> s, WeightsOf weightsOf) {
    const auto dBytes = as<std::uint8_t>(d);
    const auto sBytes = as<std::uint8_t>(s);
    const auto mean = [weightsOf](auto dWords, auto sWords) { return weightedMean(dWords, sWords, weightsOf(sWords)); };
    const auto low = mean(widenedLow(dBytes), widenedLow(sBytes));
    const auto high = mean(widenedHigh(dBytes), widenedHigh(sBytes));
    return as<std::uint32_t>(narrowed(low, high)) & Numbers<count>::all(0xFFFFFF);
}

/// blend256() of several pixels, `shares` being weights of the source from 1 to 255 for each channel. The destination's
/// weight is what they lack of `total`, 255 or 256.
template <int total, int count>
Numbers<count> blendByShares(Numbers<count> d, Numbers<count> s, Bytes<count * 4> shares) {
    using All = Bytes<count * 4>;
    using Half = Words<count * 2>;
    // Channels less 128 are numbers with a sign; the products lack 128 times the weights.
    const auto less = [](Numbers<count> pixels) { return as<std::uint8_t>(pixels ^ Numbers<count>::all(0x80808080)); };
    const All others = total == 256 ? All::all(0) - shares : shares ^ All::all(0xFF);
    const auto mean = [](All weights, All channels) {
        return (pairSums(weights, channels) + Half::all(128 * total)) >> 8;
    };
    const auto low = mean(interleavedLow(shares, others), interleavedLow(less(s), less(d)));
    const auto high = mean(interleavedHigh(shares, others), interleavedHigh(less(s), less(d)));
    return as<std::uint32_t>(narrowed(low, high)) & Numbers<count>::all(0xFFFFFF);
}

/// min(d + s, 255) in each channel of several pixels.
template <int count>
Numbers<count> saturatingAdd(Numbers<count> d, Numbers<count> s) {
    return as<std::uint32_t>(saturatingSum(as<std::uint8_t>(d), as<std::uint8_t>(s))) & Numbers<count>::all(0xFFFFFF);
}

/// Leaves the destination as it is where the source is 0.
template <class Operation>
struct UnlessZero {
    Operation operation;

    template <int count>
    Numbers<count> operator()(Numbers<count> d, Numbers<count> s) const {
        return selectEqual(s, Numbers<count>::all(0), d, operation(d, s));
    }
};

/// Source over destination with the same weights from 0 to 256 for every pixel.
struct ConstantBlend {
    AlphaWeights weights;

    template <int count>
    Numbers<count> operator()(Numbers<count> d, Numbers<count> s) const {
        if constexpr (sumsPairs) {
            const auto shares = Bytes<count * 4>::all(static_cast<std::uint8_t>(weights.src));
            return blendByShares<256>(d, s, shares);
        } else {
            return blendPixels(d, s, [of = weights]<int words>(Words<words>) {
                return WordWeights<words>{Words<words>::all(static_cast<std::uint16_t>(of.src)),
                                          Words<words>::all(static_cast<std::uint16_t>(of.dst))};
            });
        }
    }
};

/// The one of two surfaces' pixels alone, which is what a blend comes to at its ends.
template <bool isSource>
struct OnePixel {
    template <int count>
    Numbers<count> operator()(Numbers<count> d, Numbers<count> s) const {
        return (isSource ? s : d) & Numbers<count>::all(0xFFFFFF);
    }
};

/// Calls `draw` with the blend of weights from 0 to 256.
template <class Draw>
void withBlend(AlphaWeights weights, Draw draw) {
    if (weights.src == 0)
        draw(OnePixel<false>());
    else if (weights.dst == 0)
        draw(OnePixel<true>());
    else
        draw(ConstantBlend{weights});
}

} // namespace qmur

#endif
