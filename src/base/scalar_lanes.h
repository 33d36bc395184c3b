/// \file
/// The scalar twins of the vector lanes: the same type and the same primitives, an element at a time. They say what
/// each primitive means, and serve targets that have no vector instructions or are not to use them.
#ifndef Q_MUR_BASE_SCALAR_LANES_H
#define Q_MUR_BASE_SCALAR_LANES_H

#include "q_Mur/types.h"

#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

namespace qmur::scalar {

template <int count>
struct LaneSet;

/// `count` numbers side by side: std::uint8_t to std::uint64_t, whose sums and products wrap, or double.
template <class Number, int count>
struct Lanes {
    using Set = LaneSet<count>;

    Number lanes[count];

    template <class... Numbers>
    static Lanes of(Numbers... numbers) {
        static_assert(sizeof...(numbers) == count);
        return {{static_cast<Number>(numbers)...}};
    }

    static Lanes all(Number number) {
        return filled([number](int) { return number; });
    }

    /// A number in the first lane, 0 in the others.
    static Lanes front(Number number) { return {{number}}; }

    /// Memory of any alignment, here and below.
    static Lanes load(const void *from) {
        Lanes result;
        std::memcpy(result.lanes, from, sizeof(lanes));
        return result;
    }

    /// The first 8 bytes from memory, 0 in the others.
    static Lanes loadEightBytes(const void *from) {
        Lanes result = {};
        std::memcpy(result.lanes, from, 8);
        return result;
    }

    /// The first `numbers` lanes from memory, 0 in the others; nothing behind them is read.
    static Lanes loadFirst(const void *from, int numbers) {
        Lanes result = {};
        std::memcpy(result.lanes, from, static_cast<std::size_t>(numbers) * sizeof(Number));
        return result;
    }

    void store(void *to) const { std::memcpy(to, lanes, sizeof(lanes)); }
    void storeFirst(void *to, int numbers) const {
        std::memcpy(to, lanes, static_cast<std::size_t>(numbers) * sizeof(Number));
    }
    void storeEightBytes(void *to) const { std::memcpy(to, lanes, 8); }

    Number operator[](int lane) const { return lanes[lane]; }

    friend Lanes operator+(Lanes a, Lanes b) {
        return filled([&](int lane) { return a[lane] + b[lane]; });
    }
    friend Lanes operator-(Lanes a, Lanes b) {
        return filled([&](int lane) { return a[lane] - b[lane]; });
    }
    friend Lanes operator*(Lanes a, Lanes b) {
        return filled([&](int lane) { return 1U * a[lane] * b[lane]; });
    }
    friend Lanes operator/(Lanes a, Lanes b) {
        return filled([&](int lane) { return a[lane] / b[lane]; });
    }
    friend Lanes operator&(Lanes a, Lanes b) {
        return filled([&](int lane) { return a[lane] & b[lane]; });
    }
    friend Lanes operator|(Lanes a, Lanes b) {
        return filled([&](int lane) { return a[lane] | b[lane]; });
    }
    friend Lanes operator^(Lanes a, Lanes b) {
        return filled([&](int lane) { return a[lane] ^ b[lane]; });
    }
    friend Lanes operator<<(Lanes a, int bits) {
        return filled([&](int lane) { return 1U * a[lane] << bits; });
    }
    friend Lanes operator>>(Lanes a, int bits) {
        return filled([&](int lane) { return a[lane] >> bits; });
    }

    /// 0, 1, 2 and so on.
    static Lanes counted() {
        return filled([](int lane) { return lane; });
    }

    /// The lanes that `numberOf(lane)` gives.
    template <class NumberOf>
    static Lanes filled(NumberOf numberOf) {
        Lanes result;
        for (int lane = 0; lane < count; ++lane)
            result.lanes[lane] = static_cast<Number>(numberOf(lane));
        return result;
    }
};

/// The same bits as lanes of another width.
template <class To, class From, int count>
auto as(Lanes<From, count> a) {
    return std::bit_cast<Lanes<To, count *static_cast<int>(sizeof(From)) / static_cast<int>(sizeof(To))>>(a);
}

/// `ifSo` in the lanes where `a` equals `b`, `ifNot` in the others.
template <class Number, int count>
Lanes<Number, count> selectEqual(Lanes<Number, count> a, Lanes<Number, count> b, Lanes<Number, count> ifSo,
                                 Lanes<Number, count> ifNot) {
    return Lanes<Number, count>::filled([&](int lane) { return a[lane] == b[lane] ? ifSo[lane] : ifNot[lane]; });
}

/// `ifSo` in the lanes where `a` is below `b`, `ifNot` in the others, also where either is no number.
template <int count>
Lanes<double, count> selectBelow(Lanes<double, count> a, Lanes<double, count> b, Lanes<double, count> ifSo,
                                 Lanes<double, count> ifNot) {
    return Lanes<double, count>::filled([&](int lane) { return a[lane] < b[lane] ? ifSo[lane] : ifNot[lane]; });
}

/// The square roots.
template <int count>
Lanes<double, count> squareRoot(Lanes<double, count> a) {
    return Lanes<double, count>::filled([&](int lane) { return std::sqrt(a[lane]); });
}

/// Shifted to the right as signed numbers.
template <int count>
Lanes<std::uint32_t, count> shiftedSigned(Lanes<std::uint32_t, count> a, int bits) {
    return Lanes<std::uint32_t, count>::filled([&](int lane) { return static_cast<std::int32_t>(a[lane]) >> bits; });
}

/// One lane in all of them.
template <int lane, class Number, int count>
Lanes<Number, count> broadcast(Lanes<Number, count> a) {
    return Lanes<Number, count>::all(a[lane]);
}

/// The fourth of every four lanes in all four.
template <class Number, int count>
Lanes<Number, count> fourthInFours(Lanes<Number, count> a) {
    return Lanes<Number, count>::filled([&](int lane) { return a[lane | 3]; });
}

/// The first two of every four lanes, each of them twice, and the last two.
template <class Number, int count>
Lanes<Number, count> doubledLow(Lanes<Number, count> a) {
    return Lanes<Number, count>::filled([&](int lane) { return a[lane / 4 * 4 + lane % 4 / 2]; });
}
template <class Number, int count>
Lanes<Number, count> doubledHigh(Lanes<Number, count> a) {
    return Lanes<Number, count>::filled([&](int lane) { return a[lane / 4 * 4 + 2 + lane % 4 / 2]; });
}

/// The bytes of each two numbers of 32 bits, one of either in turn.
template <int count>
Lanes<std::uint8_t, count> pairedBytes(Lanes<std::uint8_t, count> a) {
    return Lanes<std::uint8_t, count>::filled([&](int lane) { return a[lane / 8 * 8 + lane % 2 * 4 + lane % 8 / 2]; });
}

/// The bytes of pairs back in their numbers.
template <int count>
Lanes<std::uint8_t, count> unpairedBytes(Lanes<std::uint8_t, count> a) {
    return Lanes<std::uint8_t, count>::filled([&](int lane) { return a[lane / 8 * 8 + lane % 4 * 2 + lane % 8 / 4]; });
}

/// The same lanes but for one of them.
template <int lane, class Number, int count>
Lanes<Number, count> withLane(Lanes<Number, count> a, Number number) {
    a.lanes[lane] = number;
    return a;
}

/// The upper half of the lanes before the lower.
template <class Number, int count>
Lanes<Number, count> swappedHalves(Lanes<Number, count> a) {
    return Lanes<Number, count>::filled([&](int lane) { return a[(lane + count / 2) % count]; });
}

/// min(a + b, 255) in each lane.
template <int count>
Lanes<std::uint8_t, count> saturatingSum(Lanes<std::uint8_t, count> a, Lanes<std::uint8_t, count> b) {
    return Lanes<std::uint8_t, count>::filled(
        [&](int lane) { return a[lane] + b[lane] > 255 ? 255 : a[lane] + b[lane]; });
}

/// The upper 16 bits of each product.
template <int count>
Lanes<std::uint16_t, count> highProduct(Lanes<std::uint16_t, count> a, Lanes<std::uint16_t, count> b) {
    return Lanes<std::uint16_t, count>::filled([&](int lane) { return 1U * a[lane] * b[lane] >> 16; });
}

/// a * b of each two neighbours added up, where the numbers of `b` are signed. No sum may leave 16 bits with a sign.
template <int count>
Lanes<std::uint16_t, count / 2> pairSums(Lanes<std::uint8_t, count> a, Lanes<std::uint8_t, count> b) {
    const auto product = [&](int lane) { return a[lane] * static_cast<std::int8_t>(b[lane]); };
    return Lanes<std::uint16_t, count / 2>::filled([&](int lane) { return product(2 * lane) + product(2 * lane + 1); });
}

/// a * b of each two neighbours added up, all numbers signed. No sum may leave 32 bits with a sign.
template <int count>
Lanes<std::uint32_t, count / 2> pairSums(Lanes<std::uint16_t, count> a, Lanes<std::uint16_t, count> b) {
    const auto product = [&](int lane) {
        return static_cast<std::int16_t>(a[lane]) * static_cast<std::int16_t>(b[lane]);
    };
    return Lanes<std::uint32_t, count / 2>::filled([&](int lane) { return product(2 * lane) + product(2 * lane + 1); });
}

/// The lanes of `a` that `places` name, each counted modulo `count`.
template <int count>
Lanes<std::uint32_t, count> picked(Lanes<std::uint32_t, count> a, Lanes<std::uint32_t, count> places) {
    return Lanes<std::uint32_t, count>::filled([&](int lane) { return a[places[lane] % count]; });
}

/// The same from the lanes of `a` and those of `b` behind them.
template <int count>
Lanes<std::uint32_t, count> picked(Lanes<std::uint32_t, count> a, Lanes<std::uint32_t, count> b,
                                   Lanes<std::uint32_t, count> places) {
    return Lanes<std::uint32_t, count>::filled(
        [&](int lane) { return places[lane] / count % 2 == 0 ? a[places[lane] % count] : b[places[lane] % count]; });
}

/// Signed numbers in memory, where each is at hand by itself: fetched out of a register one by one they are slow.
template <int count>
struct Spilled {
    std::int32_t numbers[count];

    explicit Spilled(Lanes<std::uint32_t, count> a) { a.store(numbers); }
    std::int32_t operator[](int lane) const { return numbers[lane]; }
};

/// Pixels and those that lie to the right of them.
template <int count>
struct Neighbours {
    Lanes<std::uint32_t, count> left;
    Lanes<std::uint32_t, count> right;
};

/// The numbers of 32 bits at `columns` of a row, and the next ones.
template <int count>
Neighbours<count> loadNeighbours(const void *row, const std::int32_t *columns) {
    const auto at = [row](std::ptrdiff_t column) {
        std::uint32_t number;
        std::memcpy(&number, static_cast<const char *>(row) + column * 4, 4);
        return number;
    };
    return {Lanes<std::uint32_t, count>::filled([=](int lane) { return at(columns[lane]); }),
            Lanes<std::uint32_t, count>::filled([=](int lane) { return at(columns[lane] + std::ptrdiff_t{1}); })};
}

/// Pixels and those that lie to the right of them, side by side.
template <int count>
struct Pairs {
    Lanes<std::uint32_t, count> low;
    Lanes<std::uint32_t, count> high;
};

/// The numbers of 32 bits at the first two of every four `columns` of a row, each followed by the next one, and those
/// at the last two.
template <int count>
Pairs<count> loadPairs(const void *row, const std::int32_t *columns) {
    const auto pairsFrom = [row, columns](int first) {
        return Lanes<std::uint32_t, count>::filled([=](int lane) {
            std::uint32_t number;
            const std::ptrdiff_t column = columns[lane / 4 * 4 + first + lane % 4 / 2];
            std::memcpy(&number, static_cast<const char *>(row) + 4 * (column + lane % 2), 4);
            return number;
        });
    };
    return {pairsFrom(0), pairsFrom(2)};
}

/// Bit `lane` is set where that lane, as a signed number, is negative.
template <int count>
unsigned negativeLanes(Lanes<std::uint32_t, count> a) {
    unsigned bits = 0;
    for (int lane = 0; lane < count; ++lane)
        bits |= a[lane] >> 31 << lane;
    return bits;
}

// Widening, interleaving and narrowing stay within each 16 bytes of lanes, as the instructions of most targets do: a
// half of these 16 bytes becomes 16 bytes of the result, and narrowed() puts both halves back into their places.

namespace detail {

/// Where in the wider lanes a lane is found again: which half it goes to, and its place there.
template <class Number>
struct Widened {
    int inBlock, place;

    explicit Widened(int lane) {
        constexpr int block = 16 / sizeof(Number);
        inBlock = lane % block;
        place = lane / block * (block / 2) + inBlock % (block / 2);
    }
    bool isHigh() const { return inBlock >= 8 / static_cast<int>(sizeof(Number)); }
};

/// The lanes of the lower or the upper halves as numbers of `Wider`.
template <class Wider, bool high, class Number, int count>
auto widenedHalf(Lanes<Number, count> a) {
    Lanes<Wider, count / 2> result;
    for (int lane = 0; lane < count; ++lane) {
        const Widened<Number> to(lane);
        if (to.isHigh() == high)
            result.lanes[to.place] = a[lane];
    }
    return result;
}

/// Both halves as numbers of `Narrower`, each taken as a signed number and held between `least` and `most`.
template <class Narrower, int least, int most, class Number, int count>
auto narrowedHalves(Lanes<Number, count> low, Lanes<Number, count> high) {
    return Lanes<Narrower, count * 2>::filled([&](int lane) {
        const Widened<Narrower> from(lane);
        const int number = static_cast<std::make_signed_t<Number>>((from.isHigh() ? high : low)[from.place]);
        return number < least ? least : number > most ? most : number;
    });
}

} // namespace detail

template <int count>
Lanes<std::uint16_t, count / 2> widenedLow(Lanes<std::uint8_t, count> a) {
    return detail::widenedHalf<std::uint16_t, false>(a);
}

template <int count>
Lanes<std::uint16_t, count / 2> widenedHigh(Lanes<std::uint8_t, count> a) {
    return detail::widenedHalf<std::uint16_t, true>(a);
}

template <int count>
Lanes<std::uint32_t, count / 2> widenedLow(Lanes<std::uint16_t, count> a) {
    return detail::widenedHalf<std::uint32_t, false>(a);
}

template <int count>
Lanes<std::uint32_t, count / 2> widenedHigh(Lanes<std::uint16_t, count> a) {
    return detail::widenedHalf<std::uint32_t, true>(a);
}

/// Taken as signed numbers and held between 0 and 255.
template <int count>
Lanes<std::uint8_t, count * 2> narrowed(Lanes<std::uint16_t, count> low, Lanes<std::uint16_t, count> high) {
    return detail::narrowedHalves<std::uint8_t, 0, 255>(low, high);
}

/// Taken as signed numbers and held between -32768 and 32767.
template <int count>
Lanes<std::uint16_t, count * 2> narrowed(Lanes<std::uint32_t, count> low, Lanes<std::uint32_t, count> high) {
    return detail::narrowedHalves<std::uint16_t, -32768, 32767>(low, high);
}

constexpr int registerBytes = 16;
constexpr int widestBytes = 16;

/// Whether pairSums() of bytes and picked() are instructions.
constexpr bool sumsPairs = true;

// For kernels that take lines of a picture side by side.

/// The same of signed numbers, rounded down.
template <int count>
Lanes<std::uint16_t, count> highSignedProduct(Lanes<std::uint16_t, count> a, Lanes<std::uint16_t, count> b) {
    return Lanes<std::uint16_t, count>::filled(
        [&](int lane) { return static_cast<std::int16_t>(a[lane]) * static_cast<std::int16_t>(b[lane]) >> 16; });
}

/// The lower halves of each 16 bytes of `a` and `b`, a lane of either in turn.
template <class Number, int count>
Lanes<Number, count> interleavedLow(Lanes<Number, count> a, Lanes<Number, count> b) {
    constexpr int block = 16 / sizeof(Number);
    return Lanes<Number, count>::filled(
        [&](int lane) { return (lane % 2 == 0 ? a : b)[lane / block * block + lane % block / 2]; });
}

/// The same with the upper halves.
template <class Number, int count>
Lanes<Number, count> interleavedHigh(Lanes<Number, count> a, Lanes<Number, count> b) {
    constexpr int block = 16 / sizeof(Number);
    return Lanes<Number, count>::filled(
        [&](int lane) { return (lane % 2 == 0 ? a : b)[lane / block * block + (lane % block + block) / 2]; });
}

/// Every 16 bytes in the place of those `blocks` times 16 bytes behind them, and 0 in the first.
template <int blocks, class Number, int count>
Lanes<Number, count> sixteensMovedUp(Lanes<Number, count> a) {
    constexpr int moved = blocks * 16 / static_cast<int>(sizeof(Number));
    return Lanes<Number, count>::filled([&](int lane) { return lane < moved ? Number{0} : a[lane - moved]; });
}

/// The last 16 bytes in all their places.
template <class Number, int count>
Lanes<Number, count> lastSixteen(Lanes<Number, count> a) {
    constexpr int block = 16 / static_cast<int>(sizeof(Number));
    return Lanes<Number, count>::filled([&](int lane) { return a[count - block + lane % block]; });
}

/// One of every four lanes in all four.
template <int lane, int count>
Lanes<std::uint32_t, count> broadcastInFours(Lanes<std::uint32_t, count> a) {
    return Lanes<std::uint32_t, count>::filled([&](int place) { return a[place / 4 * 4 + lane]; });
}

/// The first and the third of every four lanes of `a` and then of `b`; the second and the fourth.
template <int count>
Lanes<std::uint32_t, count> evenLanes(Lanes<std::uint32_t, count> a, Lanes<std::uint32_t, count> b) {
    return Lanes<std::uint32_t, count>::filled(
        [&](int lane) { return (lane % 4 < 2 ? a : b)[lane / 4 * 4 + lane % 2 * 2]; });
}
template <int count>
Lanes<std::uint32_t, count> oddLanes(Lanes<std::uint32_t, count> a, Lanes<std::uint32_t, count> b) {
    return Lanes<std::uint32_t, count>::filled(
        [&](int lane) { return (lane % 4 < 2 ? a : b)[lane / 4 * 4 + lane % 2 * 2 + 1]; });
}

/// Lanes whose every 16 bytes come from a place of their own, `stride` bytes behind that of the 16 before.
template <class Result>
Result loadSixteens(const void *first, std::ptrdiff_t stride) {
    Result result;
    for (std::size_t block = 0; block < sizeof(Result) / 16; ++block)
        std::memcpy(reinterpret_cast<char *>(&result) + block * 16,
                    static_cast<const char *>(first) + static_cast<std::ptrdiff_t>(block) * stride, 16);
    return result;
}

/// The same the other way round.
template <class Number, int count>
void storeSixteens(void *first, std::ptrdiff_t stride, Lanes<Number, count> a) {
    for (std::size_t block = 0; block < sizeof(a) / 16; ++block)
        std::memcpy(static_cast<char *>(first) + static_cast<std::ptrdiff_t>(block) * stride,
                    reinterpret_cast<const char *>(&a) + block * 16, 16);
}

// Spans of pixels: groups of lanes of which a span may use some.

/// Each lane times its index.
template <int count>
Lanes<std::uint32_t, count> timesIndex(Lanes<std::uint32_t, count> a) {
    return Lanes<std::uint32_t, count>::filled([&](int lane) { return a[lane] * static_cast<unsigned>(lane); });
}

/// Bit `lane` is set where that lane of `a`, as a signed number, is below that of `b`.
template <int count>
unsigned lanesBelow(Lanes<std::uint32_t, count> a, Lanes<std::uint32_t, count> b) {
    return negativeLanes(Lanes<std::uint32_t, count>::filled(
        [&](int lane) { return static_cast<std::int32_t>(a[lane]) < static_cast<std::int32_t>(b[lane]) ? ~0U : 0U; }));
}

/// 255 where a lane is greater.
template <int count>
Lanes<std::uint32_t, count> cappedAt255(Lanes<std::uint32_t, count> a) {
    return Lanes<std::uint32_t, count>::filled([&](int lane) { return a[lane] > 255 ? 255 : a[lane]; });
}

/// A set of lanes, in the form in which memory is read and written by it.
template <int count>
struct LaneSet {
    unsigned bits;

    static LaneSet all() { return {(1U << count) - 1}; }
    /// The first few.
    static LaneSet first(int lanes) { return {(1U << lanes) - 1}; }
    /// The lanes where `a`, as a signed number, is below `b`.
    static LaneSet below(Lanes<std::uint32_t, count> a, Lanes<std::uint32_t, count> b) { return {lanesBelow(a, b)}; }

    bool empty() const { return bits == 0; }
    friend LaneSet operator&(LaneSet a, LaneSet b) { return {a.bits & b.bits}; }
};

/// Numbers from memory in a set of lanes; what is in the other lanes is not said. Where touchesSomeLanes is false,
/// these are read as well.
template <int count>
void loadWhere(LaneSet<count>, const void *from, Lanes<std::uint32_t, count> &to) {
    to = Lanes<std::uint32_t, count>::load(from);
}

/// The same from numbers of 16 bits, with their sign.
template <int count>
void loadSignedWhere(LaneSet<count>, const short *from, Lanes<std::uint32_t, count> &to) {
    to = Lanes<std::uint32_t, count>::filled([from](int lane) { return from[lane]; });
}

/// Writes a set of lanes. The places of the others keep what they hold, which is what `old` has in these lanes: where
/// touchesSomeLanes is false, it may be written back.
template <int count>
void storeWhere(LaneSet<count> lanes, Lanes<std::uint32_t, count> a, Lanes<std::uint32_t, count>, q_ulong *to) {
    for (int lane = 0; lane < count; ++lane)
        if (lanes.bits >> lane & 1)
            std::memcpy(to + lane, &a.lanes[lane], sizeof(*to));
}

/// The same with the low 16 bits of each lane.
template <int count>
void storeLowWhere(LaneSet<count> lanes, Lanes<std::uint32_t, count> a, Lanes<std::uint32_t, count>, short *to) {
    for (int lane = 0; lane < count; ++lane)
        if (lanes.bits >> lane & 1)
            to[lane] = static_cast<short>(a[lane]);
}

/// a * factor truncated toward zero, each signed lane moved away from 0 by a half before. What 32 bits cannot hold
/// gives the least number.
inline Lanes<std::uint32_t, 4> scaledTowardZero(Lanes<std::uint32_t, 4> a, double factor) {
    return Lanes<std::uint32_t, 4>::filled([&](int lane) {
        const auto number = static_cast<std::int32_t>(a[lane]);
        const double product = (number + (number < 0 ? -0.5 : 0.5)) * factor;
        return product > -2147483649.0 && product < 2147483648.0 ? static_cast<std::int32_t>(product)
                                                                 : std::int32_t{-2147483647 - 1};
    });
}

/// How many pixels of a span are taken at once.
constexpr int spanLanes = 4;
constexpr bool masksMemory = false;

} // namespace qmur::scalar

#endif
