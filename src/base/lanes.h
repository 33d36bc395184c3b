/// \file
/// Numbers side by side in a vector register, and the primitives that kernels are written in. All that knows of a
/// processor's vector instructions is here; what each primitive means stands with its scalar twin.
///
/// A kernel is a template on the number of its lanes, or has the 16 bytes of one pixel's channels. A further target
/// needs its own of the primitives under "Per target", everything else is left to the compiler.
#ifndef Q_MUR_BASE_LANES_H
#define Q_MUR_BASE_LANES_H

#include "base/scalar_lanes.h"

#include <cstdint>

// Whether the target's instructions are used; the build says 0 for the scalar twins.
#ifndef Q_MUR_LANES
#define Q_MUR_LANES 1
#endif

#if Q_MUR_LANES && defined(__SSE2__)
#include <immintrin.h>

#include <utility>

namespace qmur::vector {

template <class Number, int count>
struct Lanes {
    using Vector __attribute__((vector_size(sizeof(Number) * count))) = Number;
    using Unaligned __attribute__((vector_size(sizeof(Number) * count), aligned(1), may_alias)) = Number;

    Vector vector;

    template <class... Numbers>
    static Lanes of(Numbers... numbers) {
        static_assert(sizeof...(numbers) == count);
        return {Vector{static_cast<Number>(numbers)...}};
    }
    static Lanes all(Number number) { return {Vector{} + number}; }
    static Lanes front(Number number) { return {Vector{number}}; }

    // Not std::memcpy, which is made of 16 bytes at a time: to read these as one, the processor waits for all of them.
    static Lanes load(const void *from) { return {*static_cast<const Unaligned *>(from)}; }
    static Lanes loadEightBytes(const void *from) {
        using Eights __attribute__((vector_size(sizeof(Vector)))) = std::uint64_t;
        std::uint64_t eight;
        std::memcpy(&eight, from, sizeof(eight));
        return {reinterpret_cast<Vector>(Eights{eight})};
    }
    void store(void *to) const { *static_cast<Unaligned *>(to) = vector; }
    void storeEightBytes(void *to) const { std::memcpy(to, &vector, 8); }

    Number operator[](int lane) const { return vector[lane]; }

    friend Lanes operator+(Lanes a, Lanes b) { return {a.vector + b.vector}; }
    friend Lanes operator-(Lanes a, Lanes b) { return {a.vector - b.vector}; }
    friend Lanes operator*(Lanes a, Lanes b) { return {a.vector * b.vector}; }
    friend Lanes operator&(Lanes a, Lanes b) { return {a.vector & b.vector}; }
    friend Lanes operator>>(Lanes a, int bits) { return {a.vector >> static_cast<Number>(bits)}; }
};

template <class To, class From, int count>
auto as(Lanes<From, count> a) {
    using Result = Lanes<To, count *static_cast<int>(sizeof(From)) / static_cast<int>(sizeof(To))>;
    return Result{reinterpret_cast<typename Result::Vector>(a.vector)};
}

template <class Number, int count>
Lanes<Number, count> selectEqual(Lanes<Number, count> a, Lanes<Number, count> b, Lanes<Number, count> ifSo,
                                 Lanes<Number, count> ifNot) {
    return {a.vector == b.vector ? ifSo.vector : ifNot.vector};
}

template <int count>
Lanes<std::uint32_t, count> shiftedSigned(Lanes<std::uint32_t, count> a, int bits) {
    using Signed __attribute__((vector_size(4 * count))) = std::int32_t;
    return {reinterpret_cast<typename Lanes<std::uint32_t, count>::Vector>(reinterpret_cast<Signed>(a.vector) >> bits)};
}

namespace detail {

/// The lane that `IndexOf` names for each place.
template <class IndexOf, class Number, int... places>
Lanes<Number, sizeof...(places)> shuffled(Lanes<Number, sizeof...(places)> a, std::integer_sequence<int, places...>) {
    return {__builtin_shufflevector(a.vector, a.vector, IndexOf::at(places)...)};
}

template <class IndexOf, class Number, int count>
Lanes<Number, count> shuffled(Lanes<Number, count> a) {
    return shuffled<IndexOf>(a, std::make_integer_sequence<int, count>());
}

template <int lane>
struct Always {
    static constexpr int at(int) { return lane; }
};

struct Fourth {
    static constexpr int at(int place) { return place | 3; }
};

} // namespace detail

template <int lane, class Number, int count>
Lanes<Number, count> broadcast(Lanes<Number, count> a) {
    return detail::shuffled<detail::Always<lane>>(a);
}

template <class Number, int count>
Lanes<Number, count> fourthInFours(Lanes<Number, count> a) {
    return detail::shuffled<detail::Fourth>(a);
}

template <int lane, class Number, int count>
Lanes<Number, count> withLane(Lanes<Number, count> a, Number number) {
    a.vector[lane] = number;
    return a;
}

// Per target: what no compiler makes well of plain C++.

namespace detail {

/// The lanes of a vector of any type.
template <class Number, class Register>
auto lanesOf(Register bits) {
    using Result = Lanes<Number, sizeof(Register) / sizeof(Number)>;
    return Result{reinterpret_cast<typename Result::Vector>(bits)};
}

} // namespace detail

#if defined(__SSE2__)

namespace detail {

template <class Number, int count>
__m128i bits128(Lanes<Number, count> a) {
    return reinterpret_cast<__m128i>(a.vector);
}

} // namespace detail

inline Lanes<std::uint8_t, 16> saturatingSum(Lanes<std::uint8_t, 16> a, Lanes<std::uint8_t, 16> b) {
    return detail::lanesOf<std::uint8_t>(_mm_adds_epu8(detail::bits128(a), detail::bits128(b)));
}

/// From the compiler it would be an instruction for reals, which costs a step between the two kinds of unit.
template <class Number, int count>
Lanes<Number, count> swappedHalves(Lanes<Number, count> a) {
    return detail::lanesOf<Number>(_mm_shuffle_epi32(detail::bits128(a), _MM_SHUFFLE(1, 0, 3, 2)));
}

inline unsigned negativeLanes(Lanes<std::uint32_t, 4> a) {
    return static_cast<unsigned>(_mm_movemask_ps(_mm_castsi128_ps(detail::bits128(a))));
}

inline Lanes<std::uint16_t, 8> widenedLow(Lanes<std::uint8_t, 16> a) {
    return detail::lanesOf<std::uint16_t>(_mm_unpacklo_epi8(detail::bits128(a), _mm_setzero_si128()));
}

inline Lanes<std::uint16_t, 8> widenedHigh(Lanes<std::uint8_t, 16> a) {
    return detail::lanesOf<std::uint16_t>(_mm_unpackhi_epi8(detail::bits128(a), _mm_setzero_si128()));
}

inline Lanes<std::uint32_t, 4> widenedLow(Lanes<std::uint16_t, 8> a) {
    return detail::lanesOf<std::uint32_t>(_mm_unpacklo_epi16(detail::bits128(a), _mm_setzero_si128()));
}

inline Lanes<std::uint32_t, 4> widenedHigh(Lanes<std::uint16_t, 8> a) {
    return detail::lanesOf<std::uint32_t>(_mm_unpackhi_epi16(detail::bits128(a), _mm_setzero_si128()));
}

inline Lanes<std::uint8_t, 16> narrowed(Lanes<std::uint16_t, 8> low, Lanes<std::uint16_t, 8> high) {
    return detail::lanesOf<std::uint8_t>(_mm_packus_epi16(detail::bits128(low), detail::bits128(high)));
}

inline Lanes<std::uint16_t, 8> narrowed(Lanes<std::uint32_t, 4> low, Lanes<std::uint32_t, 4> high) {
    return detail::lanesOf<std::uint16_t>(_mm_packs_epi32(detail::bits128(low), detail::bits128(high)));
}

#endif

// GCC does not align 32 bytes on the stack of 64-bit Windows.
#if defined(__AVX2__) && !defined(_WIN64)

namespace detail {

template <class Number, int count>
__m256i bits256(Lanes<Number, count> a) {
    return reinterpret_cast<__m256i>(a.vector);
}

} // namespace detail

inline Lanes<std::uint8_t, 32> saturatingSum(Lanes<std::uint8_t, 32> a, Lanes<std::uint8_t, 32> b) {
    return detail::lanesOf<std::uint8_t>(_mm256_adds_epu8(detail::bits256(a), detail::bits256(b)));
}

inline Lanes<std::uint16_t, 16> widenedLow(Lanes<std::uint8_t, 32> a) {
    return detail::lanesOf<std::uint16_t>(_mm256_unpacklo_epi8(detail::bits256(a), _mm256_setzero_si256()));
}

inline Lanes<std::uint16_t, 16> widenedHigh(Lanes<std::uint8_t, 32> a) {
    return detail::lanesOf<std::uint16_t>(_mm256_unpackhi_epi8(detail::bits256(a), _mm256_setzero_si256()));
}

inline Lanes<std::uint32_t, 8> widenedLow(Lanes<std::uint16_t, 16> a) {
    return detail::lanesOf<std::uint32_t>(_mm256_unpacklo_epi16(detail::bits256(a), _mm256_setzero_si256()));
}

inline Lanes<std::uint32_t, 8> widenedHigh(Lanes<std::uint16_t, 16> a) {
    return detail::lanesOf<std::uint32_t>(_mm256_unpackhi_epi16(detail::bits256(a), _mm256_setzero_si256()));
}

inline Lanes<std::uint8_t, 32> narrowed(Lanes<std::uint16_t, 16> low, Lanes<std::uint16_t, 16> high) {
    return detail::lanesOf<std::uint8_t>(_mm256_packus_epi16(detail::bits256(low), detail::bits256(high)));
}

inline Lanes<std::uint16_t, 16> narrowed(Lanes<std::uint32_t, 8> low, Lanes<std::uint32_t, 8> high) {
    return detail::lanesOf<std::uint16_t>(_mm256_packs_epi32(detail::bits256(low), detail::bits256(high)));
}

/// The bytes that the target takes at once.
constexpr int registerBytes = 32;

#else

constexpr int registerBytes = 16;

#endif

// For kernels that take lines of a picture side by side, in every width up to `widestBytes`.

template <class Number, int count>
Lanes<Number, count> eitherOf(Lanes<Number, count> a, Lanes<Number, count> b) {
    return {a.vector | b.vector};
}

template <class Number, int count>
Lanes<Number, count> raised(Lanes<Number, count> a, int bits) {
    return {a.vector << static_cast<Number>(bits)};
}

namespace detail {

/// Where in `a` and then `b` the lanes come from that are taken of either in turn, within each 16 bytes.
template <class Number, int count, bool high>
struct InTurn {
    static constexpr int block = 16 / sizeof(Number);
    static constexpr int at(int place) {
        return place / block * block + (place % block + (high ? block : 0)) / 2 + (place % 2 == 0 ? 0 : count);
    }
};

template <class IndexOf, class Number, int... places>
Lanes<Number, sizeof...(places)> merged(Lanes<Number, sizeof...(places)> a, Lanes<Number, sizeof...(places)> b,
                                        std::integer_sequence<int, places...>) {
    return {__builtin_shufflevector(a.vector, b.vector, IndexOf::at(places)...)};
}

} // namespace detail

template <class Number, int count>
Lanes<Number, count> interleavedLow(Lanes<Number, count> a, Lanes<Number, count> b) {
    return detail::merged<detail::InTurn<Number, count, false>>(a, b, std::make_integer_sequence<int, count>());
}

template <class Number, int count>
Lanes<Number, count> interleavedHigh(Lanes<Number, count> a, Lanes<Number, count> b) {
    return detail::merged<detail::InTurn<Number, count, true>>(a, b, std::make_integer_sequence<int, count>());
}

inline Lanes<std::uint16_t, 8> upperProduct(Lanes<std::uint16_t, 8> a, Lanes<std::uint16_t, 8> b) {
    return detail::lanesOf<std::uint16_t>(_mm_mulhi_epu16(detail::bits128(a), detail::bits128(b)));
}

inline Lanes<std::uint16_t, 8> upperSignedProduct(Lanes<std::uint16_t, 8> a, Lanes<std::uint16_t, 8> b) {
    return detail::lanesOf<std::uint16_t>(_mm_mulhi_epi16(detail::bits128(a), detail::bits128(b)));
}

#if defined(__AVX2__) && !defined(_WIN64)

inline Lanes<std::uint16_t, 16> upperProduct(Lanes<std::uint16_t, 16> a, Lanes<std::uint16_t, 16> b) {
    return detail::lanesOf<std::uint16_t>(_mm256_mulhi_epu16(detail::bits256(a), detail::bits256(b)));
}

inline Lanes<std::uint16_t, 16> upperSignedProduct(Lanes<std::uint16_t, 16> a, Lanes<std::uint16_t, 16> b) {
    return detail::lanesOf<std::uint16_t>(_mm256_mulhi_epi16(detail::bits256(a), detail::bits256(b)));
}

#endif

#if defined(__AVX512BW__) && !defined(_WIN64)

namespace detail {

template <class Number, int count>
__m512i bits512(Lanes<Number, count> a) {
    return reinterpret_cast<__m512i>(a.vector);
}

} // namespace detail

inline Lanes<std::uint16_t, 32> upperProduct(Lanes<std::uint16_t, 32> a, Lanes<std::uint16_t, 32> b) {
    return detail::lanesOf<std::uint16_t>(_mm512_mulhi_epu16(detail::bits512(a), detail::bits512(b)));
}

inline Lanes<std::uint16_t, 32> upperSignedProduct(Lanes<std::uint16_t, 32> a, Lanes<std::uint16_t, 32> b) {
    return detail::lanesOf<std::uint16_t>(_mm512_mulhi_epi16(detail::bits512(a), detail::bits512(b)));
}

constexpr int widestBytes = 64;

#else

constexpr int widestBytes = registerBytes;

#endif

namespace detail {

template <int bytes>
using Longs __attribute__((vector_size(bytes))) = std::uint64_t;

inline Longs<16> sixteenAt(const void *first, std::ptrdiff_t stride, int block) {
    Longs<16> sixteen;
    std::memcpy(&sixteen, static_cast<const char *>(first) + block * stride, sizeof(sixteen));
    return sixteen;
}

template <class Vector>
auto joined(Vector low, Vector high) {
    if constexpr (sizeof(Vector) == 16)
        return __builtin_shufflevector(low, high, 0, 1, 2, 3);
    else
        return __builtin_shufflevector(low, high, 0, 1, 2, 3, 4, 5, 6, 7);
}

template <int bytes>
auto sixteensAt(const void *first, std::ptrdiff_t stride, int block) {
    if constexpr (bytes == 16)
        return sixteenAt(first, stride, block);
    else
        return joined(sixteensAt<bytes / 2>(first, stride, block),
                      sixteensAt<bytes / 2>(first, stride, block + bytes / 32));
}

template <int block, class Vector>
void storeSixteenAt(void *first, std::ptrdiff_t stride, Vector vector) {
    const Longs<16> sixteen = __builtin_shufflevector(vector, vector, 2 * block, 2 * block + 1);
    std::memcpy(static_cast<char *>(first) + block * stride, &sixteen, sizeof(sixteen));
}

} // namespace detail

template <class Result>
Result loadSixteens(const void *first, std::ptrdiff_t stride) {
    return {reinterpret_cast<decltype(Result::vector)>(detail::sixteensAt<sizeof(Result)>(first, stride, 0))};
}

template <class Number, int count>
void storeSixteens(void *first, std::ptrdiff_t stride, Lanes<Number, count> a) {
    const auto bits = reinterpret_cast<detail::Longs<sizeof(a)>>(a.vector);
    detail::storeSixteenAt<0>(first, stride, bits);
    if constexpr (sizeof(a) > 16)
        detail::storeSixteenAt<1>(first, stride, bits);
    if constexpr (sizeof(a) > 32) {
        detail::storeSixteenAt<2>(first, stride, bits);
        detail::storeSixteenAt<3>(first, stride, bits);
    }
}

} // namespace qmur::vector

namespace qmur {
namespace target = vector;
}

#else

namespace qmur {
namespace target = scalar;
}

#endif

namespace qmur {

using target::as;
using target::broadcast;
using target::loadSixteens;
using target::registerBytes;
using target::widestBytes;
using target::withLane;

template <int count>
using Bytes = target::Lanes<std::uint8_t, count>;
template <int count>
using Words = target::Lanes<std::uint16_t, count>;
template <int count>
using Numbers = target::Lanes<std::uint32_t, count>;

/// As many pixels as the target takes at once.
using Pixels = Numbers<registerBytes / 4>;

} // namespace qmur

#endif
