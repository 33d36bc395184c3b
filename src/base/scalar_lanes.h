/// \file
/// The scalar twins of the vector lanes: the same type and the same primitives, an element at a time. They say what
/// each primitive means, and serve targets that have no vector instructions or are not to use them.
#ifndef Q_MUR_BASE_SCALAR_LANES_H
#define Q_MUR_BASE_SCALAR_LANES_H

#include <bit>
#include <cstdint>
#include <cstring>
#include <type_traits>

namespace qmur::scalar {

/// `count` numbers side by side: std::uint8_t, std::uint16_t or std::uint32_t. Sums and products wrap.
template <class Number, int count>
struct Lanes {
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

    void store(void *to) const { std::memcpy(to, lanes, sizeof(lanes)); }
    void storeEightBytes(void *to) const { std::memcpy(to, lanes, 8); }

    Number operator[](int lane) const { return lanes[lane]; }

    friend Lanes operator+(Lanes a, Lanes b) {
        return filled([&](int lane) { return 0U + a[lane] + b[lane]; });
    }
    friend Lanes operator-(Lanes a, Lanes b) {
        return filled([&](int lane) { return 0U + a[lane] - b[lane]; });
    }
    friend Lanes operator*(Lanes a, Lanes b) {
        return filled([&](int lane) { return 1U * a[lane] * b[lane]; });
    }
    friend Lanes operator&(Lanes a, Lanes b) {
        return filled([&](int lane) { return a[lane] & b[lane]; });
    }
    friend Lanes operator>>(Lanes a, int bits) {
        return filled([&](int lane) { return a[lane] >> bits; });
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

/// Bit `lane` is set where that lane, as a signed number, is negative.
template <int count>
unsigned negativeLanes(Lanes<std::uint32_t, count> a) {
    unsigned bits = 0;
    for (int lane = 0; lane < count; ++lane)
        bits |= a[lane] >> 31 << lane;
    return bits;
}

// Widening and narrowing stay within each 16 bytes of lanes, as the instructions of most targets do: a half of these 16
// bytes becomes 16 bytes of the result, and narrowed() puts both halves back into their places.

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

// Spans of pixels: groups of lanes of which a span may use some. Bit `lane` of a set of lanes stands for that lane.

template <class Number, int count>
Lanes<Number, count> operator|(Lanes<Number, count> a, Lanes<Number, count> b) {
    return Lanes<Number, count>::filled([&](int lane) { return a[lane] | b[lane]; });
}

template <class Number, int count>
Lanes<Number, count> operator<<(Lanes<Number, count> a, int bits) {
    return Lanes<Number, count>::filled([&](int lane) { return a[lane] << bits; });
}

/// Each lane times its index.
template <int count>
Lanes<std::uint32_t, count> timesIndex(Lanes<std::uint32_t, count> a) {
    return Lanes<std::uint32_t, count>::filled([&](int lane) { return a[lane] * static_cast<unsigned>(lane); });
}

/// The lanes where `a`, as a signed number, is below `b`.
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

/// Numbers from memory in a set of lanes; what is in the other lanes is not said. Where readsSomeLanes is false, these
/// are read as well.
template <int count>
void loadWhere(unsigned, const void *from, Lanes<std::uint32_t, count> &to) {
    to = Lanes<std::uint32_t, count>::load(from);
}

/// The same from numbers of 16 bits, with their sign.
template <int count>
void loadSignedWhere(unsigned, const short *from, Lanes<std::uint32_t, count> &to) {
    to = Lanes<std::uint32_t, count>::filled([from](int lane) { return from[lane]; });
}

/// Writes a set of lanes, and nothing to the places of the others.
template <int count>
void storeWhere(unsigned lanes, Lanes<std::uint32_t, count> a, void *to) {
    for (int lane = 0; lane < count; ++lane)
        if (lanes >> lane & 1)
            std::memcpy(static_cast<char *>(to) + 4 * lane, &a.lanes[lane], 4);
}

/// The same with the low 16 bits of each lane.
template <int count>
void storeLowWhere(unsigned lanes, Lanes<std::uint32_t, count> a, short *to) {
    for (int lane = 0; lane < count; ++lane)
        if (lanes >> lane & 1)
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
