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

#include <cstddef>
#include <cstdint>

// Whether the target's instructions are used; the build says 0 for the scalar twins.
#ifndef Q_MUR_LANES
#define Q_MUR_LANES 1
#endif

#if Q_MUR_LANES && (defined(__SSE2__) || defined(__aarch64__) || defined(__wasm_simd128__))
#if defined(__SSE2__)
#include <immintrin.h>
#elif defined(__aarch64__)
#include <arm_neon.h>
#else
#include <wasm_simd128.h>
#endif

#include <type_traits>
#include <utility>

namespace qmur::vector {

namespace detail {

/// A number that is to fill lanes. For WebAssembly, Clang 14 would fetch it from memory in the same step and move that
/// behind stores.
template <class Number>
Number fetched(Number number) {
#if defined(__wasm__)
    if (!__builtin_constant_p(number))
        asm("" : "+r"(number));
#endif
    return number;
}

} // namespace detail

template <int count>
struct LaneSet;

template <class Number, int count>
struct Lanes {
    using Set = LaneSet<count>;
    using Vector __attribute__((vector_size(sizeof(Number) * count))) = Number;
    /// A vector anywhere in memory. A copy by bytes would be made in pieces, for which the load then waits.
    using Anywhere __attribute__((aligned(1), may_alias)) = Vector;

    Vector vector;

    template <class... Numbers>
    static Lanes of(Numbers... numbers) {
        static_assert(sizeof...(numbers) == count);
        return {Vector{static_cast<Number>(numbers)...}};
    }
    static Lanes all(Number number) { return {detail::fetched(number) - Vector{}}; }
    static Lanes front(Number number) { return {Vector{detail::fetched(number)}}; }
    static Lanes counted();

    static Lanes load(const void *from) { return {*static_cast<const Anywhere *>(from)}; }
    static Lanes loadEightBytes(const void *from) {
        using Eights __attribute__((vector_size(sizeof(Vector)))) = std::uint64_t;
        std::uint64_t eight;
        std::memcpy(&eight, from, sizeof(eight));
        return {reinterpret_cast<Vector>(Eights{detail::fetched(eight)})};
    }
    static Lanes loadFirst(const void *from, int numbers);
    void store(void *to) const { *static_cast<Anywhere *>(to) = vector; }
    void storeFirst(void *to, int numbers) const;
    void storeEightBytes(void *to) const { std::memcpy(to, &vector, 8); }

    Number operator[](int lane) const { return vector[lane]; }

    friend Lanes operator+(Lanes a, Lanes b) { return {a.vector + b.vector}; }
    friend Lanes operator-(Lanes a, Lanes b) { return {a.vector - b.vector}; }
    friend Lanes operator*(Lanes a, Lanes b) { return {a.vector * b.vector}; }
    friend Lanes operator/(Lanes a, Lanes b) { return {a.vector / b.vector}; }
    friend Lanes operator&(Lanes a, Lanes b) { return {a.vector & b.vector}; }
    friend Lanes operator|(Lanes a, Lanes b) { return {a.vector | b.vector}; }
    friend Lanes operator^(Lanes a, Lanes b) { return {a.vector ^ b.vector}; }
    friend Lanes operator<<(Lanes a, int bits) { return {a.vector << static_cast<Number>(bits)}; }
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
Lanes<double, count> selectBelow(Lanes<double, count> a, Lanes<double, count> b, Lanes<double, count> ifSo,
                                 Lanes<double, count> ifNot) {
    return {a.vector < b.vector ? ifSo.vector : ifNot.vector};
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

struct Paired {
    static constexpr int at(int place) { return place / 8 * 8 + place % 2 * 4 + place % 8 / 2; }
};

struct Unpaired {
    static constexpr int at(int place) { return place / 8 * 8 + place % 4 * 2 + place % 8 / 4; }
};

template <int first>
struct Doubled {
    static constexpr int at(int place) { return place / 4 * 4 + first + place % 4 / 2; }
};

template <class Number, int... places>
Lanes<Number, sizeof...(places)> counted(std::integer_sequence<int, places...>) {
    return Lanes<Number, sizeof...(places)>::of(places...);
}

} // namespace detail

template <int lane, class Number, int count>
Lanes<Number, count> broadcast(Lanes<Number, count> a) {
    return detail::shuffled<detail::Always<lane>>(a);
}

template <class Number, int count>
Lanes<Number, count> fourthInFours(Lanes<Number, count> a) {
    return detail::shuffled<detail::Fourth>(a);
}

template <class Number, int count>
Lanes<Number, count> doubledLow(Lanes<Number, count> a) {
    return detail::shuffled<detail::Doubled<0>>(a);
}
template <class Number, int count>
Lanes<Number, count> doubledHigh(Lanes<Number, count> a) {
    return detail::shuffled<detail::Doubled<2>>(a);
}

template <int count>
Lanes<std::uint8_t, count> pairedBytes(Lanes<std::uint8_t, count> a) {
    return detail::shuffled<detail::Paired>(a);
}

template <int count>
Lanes<std::uint8_t, count> unpairedBytes(Lanes<std::uint8_t, count> a) {
    return detail::shuffled<detail::Unpaired>(a);
}

template <class Number, int count>
Lanes<Number, count> Lanes<Number, count>::counted() {
    return detail::counted<Number>(std::make_integer_sequence<int, count>());
}

template <int lane, class Number, int count>
Lanes<Number, count> withLane(Lanes<Number, count> a, Number number) {
    a.vector[lane] = number;
    return a;
}

template <int count>
struct Spilled {
    std::int32_t numbers[count];

    explicit Spilled(Lanes<std::uint32_t, count> a) {
        a.store(numbers);
        asm("" : "+m"(numbers)); // or the compiler fetches them out of the register all the same
    }
    std::int32_t operator[](int lane) const { return numbers[lane]; }
};

/// Pixels and those that lie to the right of them.
template <int count>
struct Neighbours {
    Lanes<std::uint32_t, count> left;
    Lanes<std::uint32_t, count> right;
};

template <int count>
Neighbours<count> loadNeighbours(const void *row, const std::int32_t *columns);

/// Pixels and those that lie to the right of them, side by side.
template <int count>
struct Pairs {
    Lanes<std::uint32_t, count> low;
    Lanes<std::uint32_t, count> high;
};

template <int count>
Pairs<count> loadPairs(const void *row, const std::int32_t *columns);

// Per target: what no compiler makes well of plain C++.

namespace detail {

/// How a set of lanes loads and stores its first numbers.
template <class Number, int count>
struct FirstLanes {
    static Lanes<Number, count> load(const void *from, int numbers) {
        Lanes<Number, count> result = {};
        std::memcpy(&result, from, static_cast<std::size_t>(numbers) * sizeof(Number));
        return result;
    }
    static void store(Lanes<Number, count> a, void *to, int numbers) {
        std::memcpy(to, &a, static_cast<std::size_t>(numbers) * sizeof(Number));
    }
};

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

inline unsigned lanesBelow(Lanes<std::uint32_t, 4> a, Lanes<std::uint32_t, 4> b) {
    return static_cast<unsigned>(
        _mm_movemask_ps(_mm_castsi128_ps(_mm_cmplt_epi32(detail::bits128(a), detail::bits128(b)))));
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

inline Lanes<std::uint16_t, 8> highProduct(Lanes<std::uint16_t, 8> a, Lanes<std::uint16_t, 8> b) {
    return detail::lanesOf<std::uint16_t>(_mm_mulhi_epu16(detail::bits128(a), detail::bits128(b)));
}

inline Lanes<std::uint16_t, 8> highSignedProduct(Lanes<std::uint16_t, 8> a, Lanes<std::uint16_t, 8> b) {
    return detail::lanesOf<std::uint16_t>(_mm_mulhi_epi16(detail::bits128(a), detail::bits128(b)));
}

inline Lanes<double, 2> squareRoot(Lanes<double, 2> a) {
    return {_mm_sqrt_pd(a.vector)};
}

inline Lanes<std::uint32_t, 4> pairSums(Lanes<std::uint16_t, 8> a, Lanes<std::uint16_t, 8> b) {
    return detail::lanesOf<std::uint32_t>(_mm_madd_epi16(detail::bits128(a), detail::bits128(b)));
}

namespace detail {

inline __m128i twoFrom(const void *row, std::int32_t column) {
    return bits128(
        Lanes<std::uint32_t, 4>::loadEightBytes(static_cast<const char *>(row) + std::ptrdiff_t{4} * column));
}

} // namespace detail

template <>
inline Neighbours<4> loadNeighbours<4>(const void *row, const std::int32_t *columns) {
    const auto at = [=](int lane) { return detail::twoFrom(row, columns[lane]); };
    const __m128i first = _mm_unpacklo_epi32(at(0), at(1));
    const __m128i last = _mm_unpacklo_epi32(at(2), at(3));
    return {detail::lanesOf<std::uint32_t>(_mm_unpacklo_epi64(first, last)),
            detail::lanesOf<std::uint32_t>(_mm_unpackhi_epi64(first, last))};
}

#elif defined(__aarch64__)

namespace detail {

template <class Number, int count>
uint8x16_t bytes128(Lanes<Number, count> a) {
    return reinterpret_cast<uint8x16_t>(a.vector);
}
template <class Number, int count>
uint16x8_t words128(Lanes<Number, count> a) {
    return reinterpret_cast<uint16x8_t>(a.vector);
}
template <class Number, int count>
int16x8_t signedWords128(Lanes<Number, count> a) {
    return reinterpret_cast<int16x8_t>(a.vector);
}
template <class Number, int count>
uint32x4_t numbers128(Lanes<Number, count> a) {
    return reinterpret_cast<uint32x4_t>(a.vector);
}
template <class Number, int count>
int32x4_t signedNumbers128(Lanes<Number, count> a) {
    return reinterpret_cast<int32x4_t>(a.vector);
}

/// Bit `lane` is set where all bits of that lane are.
inline unsigned setOf(uint32x4_t lanes) {
    constexpr uint32x4_t bits = {1, 2, 4, 8};
    return vaddvq_u32(vandq_u32(lanes, bits));
}

} // namespace detail

inline Lanes<std::uint8_t, 16> saturatingSum(Lanes<std::uint8_t, 16> a, Lanes<std::uint8_t, 16> b) {
    return detail::lanesOf<std::uint8_t>(vqaddq_u8(detail::bytes128(a), detail::bytes128(b)));
}

template <class Number, int count>
Lanes<Number, count> swappedHalves(Lanes<Number, count> a) {
    return detail::lanesOf<Number>(vextq_u8(detail::bytes128(a), detail::bytes128(a), 8));
}

inline unsigned negativeLanes(Lanes<std::uint32_t, 4> a) {
    return detail::setOf(vcltzq_s32(detail::signedNumbers128(a)));
}

inline unsigned lanesBelow(Lanes<std::uint32_t, 4> a, Lanes<std::uint32_t, 4> b) {
    return detail::setOf(vcltq_s32(detail::signedNumbers128(a), detail::signedNumbers128(b)));
}

inline Lanes<std::uint16_t, 8> widenedLow(Lanes<std::uint8_t, 16> a) {
    return detail::lanesOf<std::uint16_t>(vmovl_u8(vget_low_u8(detail::bytes128(a))));
}

inline Lanes<std::uint16_t, 8> widenedHigh(Lanes<std::uint8_t, 16> a) {
    return detail::lanesOf<std::uint16_t>(vmovl_high_u8(detail::bytes128(a)));
}

inline Lanes<std::uint32_t, 4> widenedLow(Lanes<std::uint16_t, 8> a) {
    return detail::lanesOf<std::uint32_t>(vmovl_u16(vget_low_u16(detail::words128(a))));
}

inline Lanes<std::uint32_t, 4> widenedHigh(Lanes<std::uint16_t, 8> a) {
    return detail::lanesOf<std::uint32_t>(vmovl_high_u16(detail::words128(a)));
}

inline Lanes<std::uint8_t, 16> narrowed(Lanes<std::uint16_t, 8> low, Lanes<std::uint16_t, 8> high) {
    return detail::lanesOf<std::uint8_t>(
        vqmovun_high_s16(vqmovun_s16(detail::signedWords128(low)), detail::signedWords128(high)));
}

inline Lanes<std::uint16_t, 8> narrowed(Lanes<std::uint32_t, 4> low, Lanes<std::uint32_t, 4> high) {
    return detail::lanesOf<std::uint16_t>(
        vqmovn_high_s32(vqmovn_s32(detail::signedNumbers128(low)), detail::signedNumbers128(high)));
}

inline Lanes<std::uint16_t, 8> highProduct(Lanes<std::uint16_t, 8> a, Lanes<std::uint16_t, 8> b) {
    const uint16x8_t x = detail::words128(a);
    const uint16x8_t y = detail::words128(b);
    return detail::lanesOf<std::uint16_t>(vuzp2q_u16(vreinterpretq_u16_u32(vmull_u16(vget_low_u16(x), vget_low_u16(y))),
                                                     vreinterpretq_u16_u32(vmull_high_u16(x, y))));
}

namespace detail {

/// The products of the lower and of the upper lanes, all of them signed.
struct Products {
    int32x4_t low, high;

    Products(Lanes<std::uint16_t, 8> a, Lanes<std::uint16_t, 8> b)
        : low(vmull_s16(vget_low_s16(signedWords128(a)), vget_low_s16(signedWords128(b)))),
          high(vmull_high_s16(signedWords128(a), signedWords128(b))) {}
};

} // namespace detail

inline Lanes<std::uint16_t, 8> highSignedProduct(Lanes<std::uint16_t, 8> a, Lanes<std::uint16_t, 8> b) {
    const detail::Products products(a, b);
    return detail::lanesOf<std::uint16_t>(
        vuzp2q_s16(vreinterpretq_s16_s32(products.low), vreinterpretq_s16_s32(products.high)));
}

inline Lanes<double, 2> squareRoot(Lanes<double, 2> a) {
    return detail::lanesOf<double>(vsqrtq_f64(reinterpret_cast<float64x2_t>(a.vector)));
}

inline Lanes<std::uint32_t, 4> pairSums(Lanes<std::uint16_t, 8> a, Lanes<std::uint16_t, 8> b) {
    const detail::Products products(a, b);
    return detail::lanesOf<std::uint32_t>(vpaddq_s32(products.low, products.high));
}

template <>
inline Neighbours<4> loadNeighbours<4>(const void *row, const std::int32_t *columns) {
    const auto at = [=](int lane) {
        return vreinterpret_u32_u8(vld1_u8(static_cast<const std::uint8_t *>(row) + std::ptrdiff_t{4} * columns[lane]));
    };
    const uint32x4_t first = vcombine_u32(at(0), at(1));
    const uint32x4_t last = vcombine_u32(at(2), at(3));
    return {detail::lanesOf<std::uint32_t>(vuzp1q_u32(first, last)),
            detail::lanesOf<std::uint32_t>(vuzp2q_u32(first, last))};
}

#else

namespace detail {

template <class Number, int count>
v128_t bits128(Lanes<Number, count> a) {
    return reinterpret_cast<v128_t>(a.vector);
}

/// The upper halves of products of 32 bits.
inline Lanes<std::uint16_t, 8> upperHalves(v128_t low, v128_t high) {
    return lanesOf<std::uint16_t>(wasm_i16x8_shuffle(low, high, 1, 3, 5, 7, 9, 11, 13, 15));
}

} // namespace detail

inline Lanes<std::uint8_t, 16> saturatingSum(Lanes<std::uint8_t, 16> a, Lanes<std::uint8_t, 16> b) {
    return detail::lanesOf<std::uint8_t>(wasm_u8x16_add_sat(detail::bits128(a), detail::bits128(b)));
}

template <class Number, int count>
Lanes<Number, count> swappedHalves(Lanes<Number, count> a) {
    return detail::lanesOf<Number>(wasm_i64x2_shuffle(detail::bits128(a), detail::bits128(a), 1, 0));
}

inline unsigned negativeLanes(Lanes<std::uint32_t, 4> a) {
    return static_cast<unsigned>(wasm_i32x4_bitmask(detail::bits128(a)));
}

inline unsigned lanesBelow(Lanes<std::uint32_t, 4> a, Lanes<std::uint32_t, 4> b) {
    return static_cast<unsigned>(wasm_i32x4_bitmask(wasm_i32x4_lt(detail::bits128(a), detail::bits128(b))));
}

inline Lanes<std::uint16_t, 8> widenedLow(Lanes<std::uint8_t, 16> a) {
    return detail::lanesOf<std::uint16_t>(wasm_u16x8_extend_low_u8x16(detail::bits128(a)));
}

inline Lanes<std::uint16_t, 8> widenedHigh(Lanes<std::uint8_t, 16> a) {
    return detail::lanesOf<std::uint16_t>(wasm_u16x8_extend_high_u8x16(detail::bits128(a)));
}

inline Lanes<std::uint32_t, 4> widenedLow(Lanes<std::uint16_t, 8> a) {
    return detail::lanesOf<std::uint32_t>(wasm_u32x4_extend_low_u16x8(detail::bits128(a)));
}

inline Lanes<std::uint32_t, 4> widenedHigh(Lanes<std::uint16_t, 8> a) {
    return detail::lanesOf<std::uint32_t>(wasm_u32x4_extend_high_u16x8(detail::bits128(a)));
}

inline Lanes<std::uint8_t, 16> narrowed(Lanes<std::uint16_t, 8> low, Lanes<std::uint16_t, 8> high) {
    return detail::lanesOf<std::uint8_t>(wasm_u8x16_narrow_i16x8(detail::bits128(low), detail::bits128(high)));
}

inline Lanes<std::uint16_t, 8> narrowed(Lanes<std::uint32_t, 4> low, Lanes<std::uint32_t, 4> high) {
    return detail::lanesOf<std::uint16_t>(wasm_i16x8_narrow_i32x4(detail::bits128(low), detail::bits128(high)));
}

inline Lanes<std::uint16_t, 8> highProduct(Lanes<std::uint16_t, 8> a, Lanes<std::uint16_t, 8> b) {
    return detail::upperHalves(wasm_u32x4_extmul_low_u16x8(detail::bits128(a), detail::bits128(b)),
                               wasm_u32x4_extmul_high_u16x8(detail::bits128(a), detail::bits128(b)));
}

inline Lanes<std::uint16_t, 8> highSignedProduct(Lanes<std::uint16_t, 8> a, Lanes<std::uint16_t, 8> b) {
    return detail::upperHalves(wasm_i32x4_extmul_low_i16x8(detail::bits128(a), detail::bits128(b)),
                               wasm_i32x4_extmul_high_i16x8(detail::bits128(a), detail::bits128(b)));
}

inline Lanes<double, 2> squareRoot(Lanes<double, 2> a) {
    return detail::lanesOf<double>(wasm_f64x2_sqrt(detail::bits128(a)));
}

inline Lanes<std::uint32_t, 4> pairSums(Lanes<std::uint16_t, 8> a, Lanes<std::uint16_t, 8> b) {
    return detail::lanesOf<std::uint32_t>(wasm_i32x4_dot_i16x8(detail::bits128(a), detail::bits128(b)));
}

template <>
inline Neighbours<4> loadNeighbours<4>(const void *row, const std::int32_t *columns) {
    const auto at = [=](int lane) {
        return wasm_v128_load64_zero(static_cast<const char *>(row) + std::ptrdiff_t{4} * columns[lane]);
    };
    const v128_t first = wasm_i64x2_shuffle(at(0), at(1), 0, 2);
    const v128_t last = wasm_i64x2_shuffle(at(2), at(3), 0, 2);
    return {detail::lanesOf<std::uint32_t>(wasm_i32x4_shuffle(first, last, 0, 2, 4, 6)),
            detail::lanesOf<std::uint32_t>(wasm_i32x4_shuffle(first, last, 1, 3, 5, 7))};
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

inline Lanes<std::uint16_t, 16> highProduct(Lanes<std::uint16_t, 16> a, Lanes<std::uint16_t, 16> b) {
    return detail::lanesOf<std::uint16_t>(_mm256_mulhi_epu16(detail::bits256(a), detail::bits256(b)));
}

inline Lanes<std::uint16_t, 8> pairSums(Lanes<std::uint8_t, 16> a, Lanes<std::uint8_t, 16> b) {
    return detail::lanesOf<std::uint16_t>(_mm_maddubs_epi16(detail::bits128(a), detail::bits128(b)));
}

inline Lanes<std::uint16_t, 16> pairSums(Lanes<std::uint8_t, 32> a, Lanes<std::uint8_t, 32> b) {
    return detail::lanesOf<std::uint16_t>(_mm256_maddubs_epi16(detail::bits256(a), detail::bits256(b)));
}

inline Lanes<double, 4> squareRoot(Lanes<double, 4> a) {
    return {_mm256_sqrt_pd(a.vector)};
}

inline Lanes<std::uint32_t, 8> pairSums(Lanes<std::uint16_t, 16> a, Lanes<std::uint16_t, 16> b) {
    return detail::lanesOf<std::uint32_t>(_mm256_madd_epi16(detail::bits256(a), detail::bits256(b)));
}

inline Lanes<std::uint32_t, 8> picked(Lanes<std::uint32_t, 8> a, Lanes<std::uint32_t, 8> places) {
    return detail::lanesOf<std::uint32_t>(_mm256_permutevar8x32_epi32(detail::bits256(a), detail::bits256(places)));
}

inline Lanes<std::uint32_t, 8> picked(Lanes<std::uint32_t, 8> a, Lanes<std::uint32_t, 8> b,
                                      Lanes<std::uint32_t, 8> places) {
    const auto reals = [](__m256i bits) { return _mm256_castsi256_ps(bits); };
    // The bit that tells the two apart becomes the sign, by which reals are selected.
    const __m256 which = reals(_mm256_slli_epi32(detail::bits256(places), 28));
    return detail::lanesOf<std::uint32_t>(
        _mm256_blendv_ps(reals(detail::bits256(picked(a, places))), reals(detail::bits256(picked(b, places))), which));
}

template <>
inline Neighbours<8> loadNeighbours<8>(const void *row, const std::int32_t *columns) {
    const auto at = [=](int lane) { return detail::twoFrom(row, columns[lane]); };
    const auto two = [&](int lane) { return _mm_unpacklo_epi64(at(lane), at(lane + 1)); };
    const auto four = [&](int lane) { return _mm256_castsi256_ps(_mm256_set_m128i(two(lane + 4), two(lane))); };
    const __m256 first = four(0);
    const __m256 last = four(2);
    return {detail::lanesOf<std::uint32_t>(_mm256_shuffle_ps(first, last, _MM_SHUFFLE(2, 0, 2, 0))),
            detail::lanesOf<std::uint32_t>(_mm256_shuffle_ps(first, last, _MM_SHUFFLE(3, 1, 3, 1)))};
}

namespace detail {

template <>
struct FirstLanes<std::uint32_t, 8> {
    static __m256i mask(int numbers) {
        return _mm256_cmpgt_epi32(_mm256_set1_epi32(numbers), _mm256_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7));
    }
    static Lanes<std::uint32_t, 8> load(const void *from, int numbers) {
        return lanesOf<std::uint32_t>(_mm256_maskload_epi32(static_cast<const int *>(from), mask(numbers)));
    }
    static void store(Lanes<std::uint32_t, 8> a, void *to, int numbers) {
        _mm256_maskstore_epi32(static_cast<int *>(to), mask(numbers), bits256(a));
    }
};

} // namespace detail

/// The bytes that the target takes at once.
constexpr int registerBytes = 32;
constexpr bool sumsPairs = true;

#else

constexpr int registerBytes = 16;
constexpr bool sumsPairs = false;

#endif

// For kernels that take lines of a picture side by side, in every width up to `widestBytes`.

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

#if defined(__AVX2__) && !defined(_WIN64)

inline Lanes<std::uint16_t, 16> highSignedProduct(Lanes<std::uint16_t, 16> a, Lanes<std::uint16_t, 16> b) {
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

inline Lanes<std::uint8_t, 64> saturatingSum(Lanes<std::uint8_t, 64> a, Lanes<std::uint8_t, 64> b) {
    return detail::lanesOf<std::uint8_t>(_mm512_adds_epu8(detail::bits512(a), detail::bits512(b)));
}

inline Lanes<std::uint16_t, 32> widenedLow(Lanes<std::uint8_t, 64> a) {
    return detail::lanesOf<std::uint16_t>(_mm512_unpacklo_epi8(detail::bits512(a), _mm512_setzero_si512()));
}

inline Lanes<std::uint16_t, 32> widenedHigh(Lanes<std::uint8_t, 64> a) {
    return detail::lanesOf<std::uint16_t>(_mm512_unpackhi_epi8(detail::bits512(a), _mm512_setzero_si512()));
}

inline Lanes<std::uint32_t, 16> widenedLow(Lanes<std::uint16_t, 32> a) {
    return detail::lanesOf<std::uint32_t>(_mm512_unpacklo_epi16(detail::bits512(a), _mm512_setzero_si512()));
}

inline Lanes<std::uint32_t, 16> widenedHigh(Lanes<std::uint16_t, 32> a) {
    return detail::lanesOf<std::uint32_t>(_mm512_unpackhi_epi16(detail::bits512(a), _mm512_setzero_si512()));
}

inline Lanes<std::uint8_t, 64> narrowed(Lanes<std::uint16_t, 32> low, Lanes<std::uint16_t, 32> high) {
    return detail::lanesOf<std::uint8_t>(_mm512_packus_epi16(detail::bits512(low), detail::bits512(high)));
}

inline Lanes<std::uint16_t, 32> narrowed(Lanes<std::uint32_t, 16> low, Lanes<std::uint32_t, 16> high) {
    return detail::lanesOf<std::uint16_t>(_mm512_packs_epi32(detail::bits512(low), detail::bits512(high)));
}

inline Lanes<std::uint16_t, 32> highProduct(Lanes<std::uint16_t, 32> a, Lanes<std::uint16_t, 32> b) {
    return detail::lanesOf<std::uint16_t>(_mm512_mulhi_epu16(detail::bits512(a), detail::bits512(b)));
}

inline Lanes<std::uint16_t, 32> pairSums(Lanes<std::uint8_t, 64> a, Lanes<std::uint8_t, 64> b) {
    return detail::lanesOf<std::uint16_t>(_mm512_maddubs_epi16(detail::bits512(a), detail::bits512(b)));
}

inline Lanes<double, 8> squareRoot(Lanes<double, 8> a) {
    return {_mm512_maskz_sqrt_pd(0xFF, a.vector)};
}

inline Lanes<std::uint32_t, 16> pairSums(Lanes<std::uint16_t, 32> a, Lanes<std::uint16_t, 32> b) {
    return detail::lanesOf<std::uint32_t>(_mm512_madd_epi16(detail::bits512(a), detail::bits512(b)));
}

inline Lanes<std::uint32_t, 16> picked(Lanes<std::uint32_t, 16> a, Lanes<std::uint32_t, 16> places) {
    return detail::lanesOf<std::uint32_t>(
        _mm512_maskz_permutexvar_epi32(0xFFFF, detail::bits512(places), detail::bits512(a)));
}

inline Lanes<std::uint32_t, 16> picked(Lanes<std::uint32_t, 16> a, Lanes<std::uint32_t, 16> b,
                                       Lanes<std::uint32_t, 16> places) {
    return detail::lanesOf<std::uint32_t>(
        _mm512_permutex2var_epi32(detail::bits512(a), detail::bits512(places), detail::bits512(b)));
}

template <>
inline Neighbours<16> loadNeighbours<16>(const void *row, const std::int32_t *columns) {
    const auto [firstLeft, firstRight] = loadNeighbours<8>(row, columns);
    const auto [lastLeft, lastRight] = loadNeighbours<8>(row, columns + 8);
    const auto both = [](Lanes<std::uint32_t, 8> first, Lanes<std::uint32_t, 8> last) {
        return detail::lanesOf<std::uint32_t>(
            _mm512_maskz_inserti64x4(0xFF, _mm512_castsi256_si512(detail::bits256(first)), detail::bits256(last), 1));
    };
    return {both(firstLeft, lastLeft), both(firstRight, lastRight)};
}

namespace detail {

template <>
struct FirstLanes<std::uint32_t, 16> {
    static __mmask16 mask(int numbers) { return static_cast<__mmask16>((1U << numbers) - 1); }
    static Lanes<std::uint32_t, 16> load(const void *from, int numbers) {
        return lanesOf<std::uint32_t>(_mm512_maskz_loadu_epi32(mask(numbers), from));
    }
    static void store(Lanes<std::uint32_t, 16> a, void *to, int numbers) {
        _mm512_mask_storeu_epi32(to, mask(numbers), bits512(a));
    }
};

} // namespace detail

inline Lanes<std::uint16_t, 32> highSignedProduct(Lanes<std::uint16_t, 32> a, Lanes<std::uint16_t, 32> b) {
    return detail::lanesOf<std::uint16_t>(_mm512_mulhi_epi16(detail::bits512(a), detail::bits512(b)));
}

/// The widest register, which does not serve every kernel best. Long arrays on the stack that it is loaded from are
/// aligned to it: a register across two cache lines takes two accesses.
constexpr int widestBytes = 64;

#else

constexpr int widestBytes = registerBytes;

#endif

template <class Number, int count>
Lanes<Number, count> Lanes<Number, count>::loadFirst(const void *from, int numbers) {
    return detail::FirstLanes<Number, count>::load(from, numbers);
}

template <class Number, int count>
void Lanes<Number, count>::storeFirst(void *to, int numbers) const {
    detail::FirstLanes<Number, count>::store(*this, to, numbers);
}

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

/// The numbers at two columns of a row, and the next ones.
inline Longs<16> pairsAt(const void *row, const std::int32_t *columns) {
    const auto pair = [row](std::ptrdiff_t column) {
        std::uint64_t numbers;
        std::memcpy(&numbers, static_cast<const char *>(row) + 4 * column, sizeof(numbers));
        return numbers;
    };
    return Longs<16>{pair(columns[0]), pair(columns[1])};
}

/// Lanes of `a` and then `b`, in blocks of 16 bytes.
template <class Number, int count, int blocks>
struct MovedUp {
    static constexpr int at(int place) {
        constexpr int moved = blocks * 16 / static_cast<int>(sizeof(Number));
        return place < moved ? count + place : place - moved;
    }
};

template <class Number, int count>
struct LastBlock {
    static constexpr int at(int place) {
        constexpr int block = 16 / static_cast<int>(sizeof(Number));
        return count - block + place % block;
    }
};

template <int lane>
struct InFours {
    static constexpr int at(int place) { return place / 4 * 4 + lane; }
};

/// Every second lane.
template <int count, int first>
struct EverySecond {
    static constexpr int at(int place) { return place / 4 * 4 + first + place % 2 * 2 + (place % 4 < 2 ? 0 : count); }
};

} // namespace detail

template <int blocks, class Number, int count>
Lanes<Number, count> sixteensMovedUp(Lanes<Number, count> a) {
    const auto longs = as<std::uint64_t>(a); // compilers move few and long lanes in fewer steps
    using Longs = std::remove_const_t<decltype(longs)>;
    constexpr int longCount = sizeof(a) / sizeof(std::uint64_t);
    if constexpr (blocks * 2 >= longCount)
        return Lanes<Number, count>::all(0);
    else
        return as<Number>(detail::merged<detail::MovedUp<std::uint64_t, longCount, blocks>>(
            longs, Longs::all(0), std::make_integer_sequence<int, longCount>()));
}

template <class Number, int count>
Lanes<Number, count> lastSixteen(Lanes<Number, count> a) {
    constexpr int longCount = sizeof(a) / sizeof(std::uint64_t);
    return as<Number>(detail::shuffled<detail::LastBlock<std::uint64_t, longCount>>(as<std::uint64_t>(a)));
}

template <int lane, int count>
Lanes<std::uint32_t, count> broadcastInFours(Lanes<std::uint32_t, count> a) {
    return detail::shuffled<detail::InFours<lane>>(a);
}

template <int count>
Lanes<std::uint32_t, count> evenLanes(Lanes<std::uint32_t, count> a, Lanes<std::uint32_t, count> b) {
    return detail::merged<detail::EverySecond<count, 0>>(a, b, std::make_integer_sequence<int, count>());
}
template <int count>
Lanes<std::uint32_t, count> oddLanes(Lanes<std::uint32_t, count> a, Lanes<std::uint32_t, count> b) {
    return detail::merged<detail::EverySecond<count, 1>>(a, b, std::make_integer_sequence<int, count>());
}

template <>
inline Pairs<4> loadPairs<4>(const void *row, const std::int32_t *columns) {
    return {detail::lanesOf<std::uint32_t>(detail::pairsAt(row, columns)),
            detail::lanesOf<std::uint32_t>(detail::pairsAt(row, columns + 2))};
}

#if defined(__AVX2__) && !defined(_WIN64)

template <>
inline Pairs<8> loadPairs<8>(const void *row, const std::int32_t *columns) {
    const auto four = [=](int lane) {
        const auto two = [&](int first) { return reinterpret_cast<__m128i>(detail::pairsAt(row, columns + first)); };
        return detail::lanesOf<std::uint32_t>(_mm256_set_m128i(two(lane + 4), two(lane)));
    };
    return {four(0), four(2)};
}

#endif

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

// Spans of pixels.

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

#if defined(__AVX2__) && !defined(_WIN64)

inline unsigned negativeLanes(Lanes<std::uint32_t, 8> a) {
    return static_cast<unsigned>(_mm256_movemask_ps(_mm256_castsi256_ps(detail::bits256(a))));
}

inline unsigned lanesBelow(Lanes<std::uint32_t, 8> a, Lanes<std::uint32_t, 8> b) {
    return negativeLanes(detail::lanesOf<std::uint32_t>(_mm256_cmpgt_epi32(detail::bits256(b), detail::bits256(a))));
}

#endif

/// The lanes of a set have all bits, the others none.
template <int count>
struct LaneSet {
    using Numbers = Lanes<std::uint32_t, count>;
    using Signed = detail::SignedNumbers<count>;

    Signed bits;

    static LaneSet all() { return {~Signed{}}; }
    static LaneSet first(int lanes) {
        return below(Numbers::counted(), Numbers::all(static_cast<std::uint32_t>(lanes)));
    }
    static LaneSet below(Numbers a, Numbers b) {
        return {reinterpret_cast<Signed>(a.vector) < reinterpret_cast<Signed>(b.vector)};
    }

    bool empty() const { return negativeLanes(detail::lanesOf<std::uint32_t>(bits)) == 0; }
    Numbers chosen(Numbers ifIn, Numbers ifNot) const {
#if defined(__AVX2__)
        return {bits < 0 ? ifIn.vector : ifNot.vector}; // an instruction that looks at signs
#else
        const Numbers mask = detail::lanesOf<std::uint32_t>(bits);
        return {(ifIn.vector & mask.vector) | (ifNot.vector & ~mask.vector)};
#endif
    }
    friend LaneSet operator&(LaneSet a, LaneSet b) {
        return {a.bits & b.bits};
    }
};

template <int count>
void loadWhere(LaneSet<count>, const void *from, Lanes<std::uint32_t, count> &to) {
    to = Lanes<std::uint32_t, count>::load(from);
}

template <int count>
void storeWhere(LaneSet<count> lanes, Lanes<std::uint32_t, count> a, Lanes<std::uint32_t, count> old, q_ulong *to) {
    lanes.chosen(a, old).store(to);
}

template <int count>
void loadSignedWhere(LaneSet<count>, const short *from, Lanes<std::uint32_t, count> &to) {
    detail::SignedHalves<count> halves;
    std::memcpy(&halves, from, sizeof(halves));
    to = detail::lanesOf<std::uint32_t>(__builtin_convertvector(halves, detail::SignedNumbers<count>));
}

template <int count>
void storeLowWhere(LaneSet<count> lanes, Lanes<std::uint32_t, count> a, Lanes<std::uint32_t, count> old, short *to) {
    const auto low = __builtin_convertvector(lanes.chosen(a, old).vector, detail::SignedHalves<count>);
    std::memcpy(to, &low, sizeof(low));
}

#if defined(__SSE2__)

inline void loadSignedWhere(LaneSet<4>, const short *from, Lanes<std::uint32_t, 4> &to) {
    const __m128i halves = detail::bits128(Lanes<std::uint32_t, 4>::loadEightBytes(from));
    to = detail::lanesOf<std::uint32_t>(_mm_srai_epi32(_mm_unpacklo_epi16(halves, halves), 16));
}

inline void storeLowWhere(LaneSet<4> lanes, Lanes<std::uint32_t, 4> a, Lanes<std::uint32_t, 4> old, short *to) {
    const __m128i low = _mm_srai_epi32(_mm_slli_epi32(detail::bits128(lanes.chosen(a, old)), 16), 16);
    detail::lanesOf<std::uint32_t>(_mm_packs_epi32(low, low)).storeEightBytes(to);
}

#endif

#if defined(__AVX2__) && !defined(_WIN64)

inline Lanes<std::uint32_t, 4> scaledTowardZero(Lanes<std::uint32_t, 4> a, double factor) {
    const __m256d numbers = _mm256_cvtepi32_pd(detail::bits128(a));
    const __m256d half = _mm256_or_pd(_mm256_and_pd(numbers, _mm256_set1_pd(-0.0)), _mm256_set1_pd(0.5));
    __m256d products = _mm256_mul_pd(_mm256_add_pd(numbers, half), _mm256_set1_pd(factor));
    asm("" : "+x"(products)); // a compiler that knows them would fold those beyond 32 bits its own way
    return detail::lanesOf<std::uint32_t>(_mm256_cvttpd_epi32(products));
}

#elif defined(__SSE2__)

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

#elif defined(__aarch64__)

inline Lanes<std::uint32_t, 4> scaledTowardZero(Lanes<std::uint32_t, 4> a, double factor) {
    const auto scaled = [factor](int32x2_t pair) {
        const float64x2_t numbers = vcvtq_f64_s64(vmovl_s32(pair));
        const float64x2_t half = vbslq_f64(vdupq_n_u64(0x8000000000000000), numbers, vdupq_n_f64(0.5));
        const float64x2_t products = vmulq_n_f64(vaddq_f64(numbers, half), factor);
        const uint64x2_t fits =
            vandq_u64(vcgtq_f64(products, vdupq_n_f64(-2147483649.0)), vcltq_f64(products, vdupq_n_f64(2147483648.0)));
        return vmovn_s64(vcvtq_s64_f64(vbslq_f64(fits, products, vdupq_n_f64(-2147483648.0))));
    };
    const int32x4_t numbers = detail::signedNumbers128(a);
    return detail::lanesOf<std::uint32_t>(vcombine_s32(scaled(vget_low_s32(numbers)), scaled(vget_high_s32(numbers))));
}

#else

inline Lanes<std::uint32_t, 4> scaledTowardZero(Lanes<std::uint32_t, 4> a, double factor) {
    const auto scaled = [factor](v128_t pair) {
        const v128_t numbers = wasm_f64x2_convert_low_i32x4(pair);
        const v128_t half = wasm_v128_bitselect(numbers, wasm_f64x2_const_splat(0.5), wasm_f64x2_const_splat(-0.0));
        const v128_t products =
            wasm_f64x2_mul(wasm_f64x2_add(numbers, half), wasm_f64x2_splat(detail::fetched(factor)));
        const v128_t fits = wasm_v128_and(wasm_f64x2_gt(products, wasm_f64x2_const_splat(-2147483649.0)),
                                          wasm_f64x2_lt(products, wasm_f64x2_const_splat(2147483648.0)));
        return wasm_i32x4_trunc_sat_f64x2_zero(
            wasm_v128_bitselect(products, wasm_f64x2_const_splat(-2147483648.0), fits));
    };
    return detail::lanesOf<std::uint32_t>(
        wasm_i64x2_shuffle(scaled(detail::bits128(a)), scaled(detail::bits128(swappedHalves(a))), 0, 2));
}

#endif

#if defined(__AVX512BW__) && defined(__AVX512VL__) && !defined(_WIN64)

inline unsigned lanesBelow(Lanes<std::uint32_t, 16> a, Lanes<std::uint32_t, 16> b) {
    return _mm512_cmplt_epi32_mask(detail::bits512(a), detail::bits512(b));
}

template <>
struct LaneSet<16> {
    __mmask16 bits;

    static LaneSet all() { return {0xFFFF}; }
    static LaneSet first(int lanes) { return {static_cast<__mmask16>((1U << lanes) - 1)}; }
    static LaneSet below(Lanes<std::uint32_t, 16> a, Lanes<std::uint32_t, 16> b) {
        return {_mm512_cmplt_epi32_mask(detail::bits512(a), detail::bits512(b))};
    }

    bool empty() const { return bits == 0; }
    friend LaneSet operator&(LaneSet a, LaneSet b) { return {static_cast<__mmask16>(a.bits & b.bits)}; }
};

inline void loadWhere(LaneSet<16> lanes, const void *from, Lanes<std::uint32_t, 16> &to) {
    to = detail::lanesOf<std::uint32_t>(_mm512_maskz_loadu_epi32(lanes.bits, from));
}

inline void loadSignedWhere(LaneSet<16> lanes, const short *from, Lanes<std::uint32_t, 16> &to) {
    const __m256i halves = _mm256_maskz_loadu_epi16(lanes.bits, from);
    to = detail::lanesOf<std::uint32_t>(_mm512_maskz_cvtepi16_epi32(0xFFFF, halves));
}

inline void storeWhere(LaneSet<16> lanes, Lanes<std::uint32_t, 16> a, Lanes<std::uint32_t, 16>, q_ulong *to) {
    _mm512_mask_storeu_epi32(to, lanes.bits, detail::bits512(a));
}

inline void storeLowWhere(LaneSet<16> lanes, Lanes<std::uint32_t, 16> a, Lanes<std::uint32_t, 16>, short *to) {
    _mm256_mask_storeu_epi16(to, lanes.bits, _mm512_maskz_cvtepi32_epi16(0xFFFF, detail::bits512(a)));
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
using target::loadNeighbours;
using target::loadPairs;
using target::loadSixteens;
using target::registerBytes;
using target::sumsPairs;
using target::widestBytes;
using target::withLane;

template <int count>
using Bytes = target::Lanes<std::uint8_t, count>;
template <int count>
using Words = target::Lanes<std::uint16_t, count>;
template <int count>
using Numbers = target::Lanes<std::uint32_t, count>;
template <int count>
using Spilled = target::Spilled<count>;

/// As many doubles as the widest register holds.
using Doubles = target::Lanes<double, target::widestBytes / 8>;

#if defined(__wasm__)
constexpr bool isWebAssembly = true;
#else
constexpr bool isWebAssembly = false;
#endif

/// Whether channels are multiplied where they stand, red beside blue and green alone: neither upper halves of products
/// nor widening and narrowing are cheap in WebAssembly.
constexpr bool multipliesInPlace = isWebAssembly;

/// Whether code is kept small where it may: a WebAssembly module is fetched before it is run.
constexpr bool staysSmall = isWebAssembly;

/// Fetches memory that is soon to be read or written.
inline void willRead(const void *memory) {
    __builtin_prefetch(memory, 0);
}
inline void willWrite(const void *memory) {
    __builtin_prefetch(memory, 1);
}

/// As many pixels as the target takes at once.
using Pixels = Numbers<registerBytes / 4>;
using MostPixels = Numbers<widestBytes / 4>;

/// As many pixels of a span as the target takes at once, some of which may be left out, and one pixel alone.
using SpanPixels = Numbers<target::spanLanes>;
using SinglePixel = scalar::Lanes<std::uint32_t, 1>;

/// Whether only the lanes of a set are read from memory and written to it.
template <class Lanes>
constexpr bool touchesSomeLanes = sizeof(Lanes) == sizeof(SinglePixel) || target::masksMemory;

} // namespace qmur

#endif
