/// \file
/// Rows of a picture that lies askew in its source: each row looks along a straight line of source positions, and takes
/// as many pixels at once as the target has lanes for.
#ifndef Q_MUR_WALKS_TURNED_H
#define Q_MUR_WALKS_TURNED_H

#include "base/extent.h"
#include "base/lanes.h"
#include "base/sampling.h"
#include "walks/stretch.h"

#include <cstdint>
#include <limits>

namespace qmur {

/// A source in which positions of `fraction` bits behind the point are looked up, `beyond` further pixels to the right
/// and below along with them.
template <int fraction, int beyond>
struct TurnedSource {
    static constexpr int fractionBits = fraction;

    const q_ulong *origin; ///< the pixel at position (0, 0)
    Distance pitch;

    const q_ulong *pixelOf(int u, int v) const { return pixelAt(origin, pitch, u >> fraction, v >> fraction); }

    /// How far from the origin several source pixels lie. The pitch must fit 16 bits, as a position's whole part does.
    template <int count>
    Numbers<count> distancesOf(Numbers<count> u, Numbers<count> v) const {
        static_assert(fraction >= 16);
        using Several = Numbers<count>;
        const auto columns = shiftedSigned(u, fraction) & Several::all(0xFFFF);
        const auto rows = shiftedSigned(v, fraction - 16) & Several::all(0xFFFF0000);
        const auto strides = Several::all(static_cast<std::uint32_t>(pitch) << 16 | 1);
        return pairSums(as<std::uint16_t>(columns | rows), as<std::uint16_t>(strides));
    }

    /// Whether the stretch `drawn` of a row shows no pixel of its own, and several may be looked up at once.
    bool allowsGroups(const q_ulong *row, Span drawn, const Track &u, const Track &v) const {
        const auto seen = [drawn](const Track &track) {
            const int first = track.at(drawn.begin) >> fraction;
            const int last = track.at(drawn.end - 1) >> fraction;
            return Span{smaller(first, last), larger(first, last) + beyond + 1};
        };
        constexpr int most = std::numeric_limits<std::int16_t>::max();
        return pitch >= -most && pitch <= most &&
               extentOf(row, 0, {drawn, {0, 1}}).isApartFrom(extentOf(origin, pitch, {seen(u), seen(v)}));
    }
};

/// Draws a row wherever the source positions lie within their bounds. `sampling` has a source and is called with
/// (dst pixel, u, v) from left to right or, where no order can be told, with (first dst pixel, u, v) for as many pixels
/// side by side as its `count` says, unless that is 1. What lies `nextRow` pixels further on is fetched for the row
/// that follows.
template <class Sampling>
void forEachTurned(q_ulong *row, Distance nextRow, const Track &u, const Track &v, int width,
                   const Sampling &sampling) {
    constexpr int count = Sampling::count;
    using Several = Numbers<count>;
    if (width < count || u.bounds.empty() || v.bounds.empty() || !staysIn32Bits(u.start, u.step, width) ||
        !staysIn32Bits(v.start, v.step, width))
        return forEachInside(u, v, width,
                             [row, &sampling](int x, int uHere, int vHere) { sampling(row[x], uHere, vHere); });
    Span inside = stretchInside(u.start, u.step, u.bounds, {0, width});
    inside = stretchInside(v.start, v.step, v.bounds, inside);
    int x = inside.begin;
    if constexpr (count > 1) {
        if (inside.length() >= count && sampling.source.allowsGroups(row, inside, u, v)) {
            const auto all = [](int number) { return Several::all(static_cast<std::uint32_t>(number)); };
            const auto from = [&all, x](const Track &track) {
                return all(track.at(x)) + Several::counted() * all(track.step);
            };
            const Several growthU = all(wrapMultiply(u.step, count));
            const Several growthV = all(wrapMultiply(v.step, count));
            Several uHere = from(u);
            Several vHere = from(v);
            for (; x <= inside.end - count; x += count) {
                willWrite(row + nextRow + x);
                sampling(row + x, uHere, vHere);
                uHere = uHere + growthU;
                vHere = vHere + growthV;
            }
        }
    }
    for (; x < inside.end; ++x)
        sampling(row[x], u.at(x), v.at(x));
}

/// As many pixels as are looked up at once: the widest registers are slower.
constexpr int nearestCount = sizeof(Pixels) / sizeof(std::uint32_t);
constexpr int filteredCount = sumsPairs ? nearestCount : 4;

/// Several nearest pixels, written one after the other: where they are put together in a register first, that is what
/// takes the time.
template <class Source, int count>
void copyTurned(q_ulong *to, const Source &source, Numbers<count> u, Numbers<count> v) {
    const Spilled<count> distances(source.distancesOf(u, v));
    for (int lane = 0; lane < count; ++lane)
        to[lane] = source.origin[distances[lane]];
}

/// Several filtered pixels, their top bytes filtered as well.
template <class Source, int count>
[[gnu::always_inline]] inline Numbers<count> filteredTurned(const Source &source, Numbers<count> u, Numbers<count> v) {
    const auto fractionOf = [](Numbers<count> position, int unit) {
        return position >> (Source::fractionBits - 4 - unit) & Numbers<count>::all(15U << unit);
    };
    if constexpr (sumsPairs)
        return manySamples(source.origin, source.pitch, source.distancesOf(u, v), fractionOf(u, 0), fractionOf(v, 0));
    else
        return fourSamples(source.origin, source.pitch, source.distancesOf(u, v), fractionOf(u, 3), fractionOf(v, 3));
}

/// The channel sums of one filtered pixel.
template <class Source>
ChannelSums filteredTurned(const Source &source, int u, int v) {
    const auto fractionOf = [](int position) {
        return static_cast<q_ulong>(position >> (Source::fractionBits - 4) & 15);
    };
    const q_ulong *const tap = source.pixelOf(u, v);
    return fourTaps(tap, tap + source.pitch, fractionOf(u), fractionOf(v));
}

} // namespace qmur

#endif
