/// \file
/// Numbers side by side in a vector register, and the primitives that kernels are written in. All that knows of a
/// processor's vector instructions is here; what each primitive means stands with its scalar twin.
///
/// A kernel is a template on the number of its lanes, or has the 16 bytes of one pixel's channels. A further target
/// needs its own of the primitives under "Per target", everything else is left to the compiler.
#ifndef Q_MUR_BASE_LANES_H
#define Q_MUR_BASE_LANES_H

#include "base/scalar_lanes.h"
#include "q_Mur/types.h"

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

    Vector vector;

    template <class... Numbers>
    static Lanes of(Numbers... numbers) {
        static_assert(sizeof...(numbers) == count);
        return {Vector{static_cast<Number>(numbers)...}};
    }
    static Lanes all(Number number) { return {Vector{} + number}; }
    static Lanes front(Number number) { return {Vector{number}}; }

    static Lanes load(const void *from) {
        Lanes result;
        std::memcpy(&result, from, sizeof(result));
        return result;
    }
    static Lanes loadEightBytes(const void *from) {
        using Eights __attribute__((vector_size(sizeof(Vector)))) = std::uint64_t;
        std::uint64_t eight;
        std::memcpy(&eight, from, sizeof(eight));
        return {reinterpret_cast<Vector>(Eights{eight})};
    }
    void store(void *to) const { std::memcpy(to, &vector, sizeof(vector)); }
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

// Spans of pixels.

template <class Number, int count>
Lanes<Number, count> operator|(Lanes<Number, count> a, Lanes<Number, count> b) {
    return {a.vector | b.vector};
}

template <class Number, int count>
Lanes<Number, count> operator<<(Lanes<Number, count> a, int bits) {
    return {a.vector << static_cast<Number>(bits)};
}

namespace detail {

template <int... lanes>
Lanes<std::uint32_t, sizeof...(lanes)> indices(std::integer_sequence<int, lanes...>) {
    return Lanes<std::uint32_t, sizeof...(lanes)>::of(lanes...);
}

template <int count>
using SignedHalves __attribute__((vector_size(2 * count))) = short;
template <int count>
using SignedNumbers __attribute__((vector_size(4 * count))) = std::int32_t;

} // namespace detail

template <int count>
Lanes<std::uint32_t, count> timesIndex(Lanes<std::uint32_t, count> a) {
    return a * detail::indices(std::make_integer_sequence<int, count>());
}

template <int count>
Lanes<std::uint32_t, count> cappedAt255(Lanes<std::uint32_t, count> a) {
    const auto most = Lanes<std::uint32_t, count>::all(255);
    return {a.vector > most.vector ? most.vector : a.vector};
}

inline unsigned lanesBelow(Lanes<std::uint32_t, 4> a, Lanes<std::uint32_t, 4> b) {
    return static_cast<unsigned>(
        _mm_movemask_ps(_mm_castsi128_ps(_mm_cmplt_epi32(detail::bits128(a), detail::bits128(b)))));
}

template <int count>
void loadWhere(unsigned, const void *from, Lanes<std::uint32_t, count> &to) {
    to = Lanes<std::uint32_t, count>::load(from);
}

template <int count>
void loadSignedWhere(unsigned, const short *from, Lanes<std::uint32_t, count> &to) {
    detail::SignedHalves<count> halves;
    std::memcpy(&halves, from, sizeof(halves));
    to = detail::lanesOf<std::uint32_t>(__builtin_convertvector(halves, detail::SignedNumbers<count>));
}

namespace detail {

/// Writes a set of lanes, each as a `Number`.
template <class Number, int count, class Vector>
void storeWhere(unsigned lanes, Vector a, Number *to) {
    constexpr unsigned all = (1U << count) - 1;
    if (lanes == all) {
        using Unaligned __attribute__((vector_size(sizeof(Vector)), aligned(1), may_alias)) = Number;
        *reinterpret_cast<Unaligned *>(to) = reinterpret_cast<Unaligned>(a);
        return;
    }
    Number numbers[count];
    std::memcpy(numbers, &a, sizeof(a));
    for (; lanes != 0; lanes &= lanes - 1) {
        const int lane = __builtin_ctz(lanes);
        to[lane] = numbers[lane];
    }
}

} // namespace detail

template <int count>
void storeWhere(unsigned lanes, Lanes<std::uint32_t, count> a, q_ulong *to) {
    detail::storeWhere<q_ulong, count>(lanes, a.vector, to);
}

template <int count>
void storeLowWhere(unsigned lanes, Lanes<std::uint32_t, count> a, short *to) {
    detail::storeWhere<short, count>(lanes, __builtin_convertvector(a.vector, detail::SignedHalves<count>), to);
}

#if defined(__AVX2__) && !defined(_WIN64)

inline void loadWhere(unsigned, const void *from, Lanes<std::uint32_t, 8> &to) {
    to = detail::lanesOf<std::uint32_t>(_mm256_loadu_si256(static_cast<const __m256i *>(from)));
}

inline unsigned lanesBelow(Lanes<std::uint32_t, 8> a, Lanes<std::uint32_t, 8> b) {
    return static_cast<unsigned>(
        _mm256_movemask_ps(_mm256_castsi256_ps(_mm256_cmpgt_epi32(detail::bits256(b), detail::bits256(a)))));
}

inline Lanes<std::uint32_t, 4> scaledTowardZero(Lanes<std::uint32_t, 4> a, double factor) {
    const __m256d numbers = _mm256_cvtepi32_pd(detail::bits128(a));
    const __m256d half = _mm256_or_pd(_mm256_and_pd(numbers, _mm256_set1_pd(-0.0)), _mm256_set1_pd(0.5));
    __m256d products = _mm256_mul_pd(_mm256_add_pd(numbers, half), _mm256_set1_pd(factor));
    asm("" : "+x"(products)); // a compiler that knows them would fold those beyond 32 bits its own way
    return detail::lanesOf<std::uint32_t>(_mm256_cvttpd_epi32(products));
}

#else

inline Lanes<std::uint32_t, 4> scaledTowardZero(Lanes<std::uint32_t, 4> a, double factor) {
    const auto scaled = [factor](__m128i pair) {
        const __m128d numbers = _mm_cvtepi32_pd(pair);
        const __m128d half = _mm_or_pd(_mm_and_pd(numbers, _mm_set1_pd(-0.0)), _mm_set1_pd(0.5));
        __m128d products = _mm_mul_pd(_mm_add_pd(numbers, half), _mm_set1_pd(factor));
        asm("" : "+x"(products)); // a compiler that knows them would fold those beyond 32 bits its own way
        return _mm_cvttpd_epi32(products);
    };
    return detail::lanesOf<std::uint32_t>(
        _mm_unpacklo_epi64(scaled(detail::bits128(a)), scaled(detail::bits128(swappedHalves(a)))));
}

#endif

#if defined(__AVX512BW__) && defined(__AVX512VL__) && !defined(_WIN64)

namespace detail {

inline __m512i bits512(Lanes<std::uint32_t, 16> a) {
    return reinterpret_cast<__m512i>(a.vector);
}

} // namespace detail

inline unsigned lanesBelow(Lanes<std::uint32_t, 16> a, Lanes<std::uint32_t, 16> b) {
    return _mm512_cmplt_epi32_mask(detail::bits512(a), detail::bits512(b));
}

inline void loadWhere(unsigned lanes, const void *from, Lanes<std::uint32_t, 16> &to) {
    to = detail::lanesOf<std::uint32_t>(_mm512_maskz_loadu_epi32(static_cast<__mmask16>(lanes), from));
}

inline void loadSignedWhere(unsigned lanes, const short *from, Lanes<std::uint32_t, 16> &to) {
    const auto halves =
        reinterpret_cast<detail::SignedHalves<16>>(_mm256_maskz_loadu_epi16(static_cast<__mmask16>(lanes), from));
    to = detail::lanesOf<std::uint32_t>(__builtin_convertvector(halves, detail::SignedNumbers<16>));
}

inline void storeWhere(unsigned lanes, Lanes<std::uint32_t, 16> a, q_ulong *to) {
    _mm512_mask_storeu_epi32(to, static_cast<__mmask16>(lanes), detail::bits512(a));
}

inline void storeLowWhere(unsigned lanes, Lanes<std::uint32_t, 16> a, short *to) {
    const auto low = __builtin_convertvector(a.vector, detail::SignedHalves<16>);
    _mm256_mask_storeu_epi16(to, static_cast<__mmask16>(lanes), reinterpret_cast<__m256i>(low));
}

constexpr int spanLanes = 16;
constexpr bool masksMemory = true;

#else

constexpr int spanLanes = registerBytes / 4;
constexpr bool masksMemory = false;

#endif

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
using target::registerBytes;
using target::withLane;

template <int count>
using Bytes = target::Lanes<std::uint8_t, count>;
template <int count>
using Words = target::Lanes<std::uint16_t, count>;
template <int count>
using Numbers = target::Lanes<std::uint32_t, count>;

/// As many pixels as the target takes at once.
using Pixels = Numbers<registerBytes / 4>;

/// As many pixels of a span as the target takes at once, some of which may be left out, and one pixel alone.
using SpanPixels = Numbers<target::spanLanes>;
using OnePixel = scalar::Lanes<std::uint32_t, 1>;

/// Whether loadWhere() and loadSignedWhere() read only the lanes that they are asked for.
template <class Lanes>
constexpr bool readsSomeLanes = sizeof(Lanes) == sizeof(OnePixel) || target::masksMemory;

} // namespace qmur

#endif
