/// \file
/// Floating point at full width, and the one conversion from a real number to an int.
///
/// Where the library promises "full width" it means the x87 format with its 64-bit mantissa. A host
/// or a thread of Windows starts with the unit's precision control at 53 bits, and the platforms' long double sine,
/// cosine and tangent differ in the last bit, whereas the processor's own instructions are the same under every
/// compiler and system: both are dealt with here. Where there is no such unit, integers stand in for it.
#ifndef Q_MUR_BASE_WIDE_H
#define Q_MUR_BASE_WIDE_H

#include <cmath>
#include <utility>

#if defined(__GNUC__) && (defined(__i386__) || defined(__x86_64__))
#define Q_MUR_X86 1
#else
#define Q_MUR_X86 0
#endif
#if Q_MUR_X86 && !defined(Q_MUR_SOFT_WIDE)
#define Q_MUR_X87 1
#else
#define Q_MUR_X87 0
#include "base/soft_wide.h"
#endif

namespace qmur {

/// A number at full width.
#if Q_MUR_X87
using Wide = long double;
#else
using Wide = SoftWide;
#endif

/// A sine and a cosine of one angle.
struct SineCosine {
    Wide sine;
    Wide cosine;
};

namespace detail {

/// Calls `compute` where the compiler can neither move its arithmetic out nor see through it.
template <class Compute>
[[gnu::noinline]] auto outOfLine(Compute &compute) {
#if defined(__GNUC__)
    asm volatile("" ::: "memory");
#endif
    return compute();
}

#if Q_MUR_X86
/// The state of the unit that the format is made for: 64 bits, rounded to nearest, no exception taken. The same of the
/// vector unit, whose doubles stand in for the format where they are known to lead to the same.
class FullPrecision {
public:
    FullPrecision() : vectorsBefore(__builtin_ia32_stmxcsr()) {
        asm volatile("fnstcw %0" : "=m"(before));
        if (before != full)
            asm volatile("fldcw %0" : : "m"(full) : "memory");
        if (changesVectors())
            __builtin_ia32_ldmxcsr(fullVectors);
    }
    ~FullPrecision() {
        if (before != full) // a host that takes exceptions must not be handed ours
            asm volatile("fnclex\n\tfldcw %0" : : "m"(before) : "memory");
        if (changesVectors())
            __builtin_ia32_ldmxcsr(vectorsBefore);
    }
    FullPrecision(const FullPrecision &) = delete;
    FullPrecision &operator=(const FullPrecision &) = delete;

private:
    static constexpr unsigned short full = 0x37F;
    static constexpr unsigned fullVectors = 0x1F80;
    static constexpr unsigned vectorFlags = 0x3F;

    bool changesVectors() const { return (vectorsBefore & ~vectorFlags) != fullVectors; }

    unsigned short before;
    unsigned vectorsBefore;
};
#elif defined(__GNUC__) && defined(__aarch64__)
/// The state in which doubles stand in for the format where they are known to lead to the same: rounded to nearest, no
/// subnormal number taken for 0, no exception taken.
class FullPrecision {
public:
    FullPrecision() {
        asm volatile("mrs %0, fpcr" : "=r"(before));
        if (before != full)
            asm volatile("msr fpcr, %0" : : "r"(full) : "memory");
    }
    ~FullPrecision() {
        if (before != full)
            asm volatile("msr fpcr, %0" : : "r"(before) : "memory");
    }
    FullPrecision(const FullPrecision &) = delete;
    FullPrecision &operator=(const FullPrecision &) = delete;

private:
    static constexpr unsigned long long full = 0;

    unsigned long long before;
};
#else
/// A processor that computes in no other way.
struct [[maybe_unused]] FullPrecision {};
#endif

} // namespace detail

/// Runs `compute` with the floating unit at its full precision and returns what it returns.
/// All arithmetic on #Wide values stands inside such a call; its result should be ints, floats or doubles.
template <class Compute>
auto atFullWidth(Compute compute) {
    const detail::FullPrecision fullPrecision;
    return detail::outOfLine(compute);
}

#if Q_MUR_X87
inline Wide absolute(Wide value) {
    return std::fabs(value);
}

/// The larger number, and of a number and a not-a-number the number.
inline Wide largerOf(Wide a, Wide b) {
    return std::fmax(a, b);
}

/// The remainder of a / b truncated.
inline Wide remainderOf(Wide a, Wide b) {
    return std::fmod(a, b);
}

inline Wide squareRoot(Wide value) {
    return std::sqrt(value);
}
#else
inline Wide largerOf(Wide a, Wide b) {
    return a < b || a.isNotANumber() ? b : a;
}
#endif

namespace detail {

/// Brings an angle into the range of the processor's instructions, which end at 2^63.
inline Wide reducedAngle(Wide angle) {
    constexpr Wide limit = 0x1p63;
#if Q_MUR_X87
    constexpr Wide fullCircle = 6.283185307179586476925286766559L;
#else
    constexpr Wide fullCircle = Wide::of(0xC90FDAA22168C235, 2);
#endif
    return angle < limit && angle > -limit ? angle : remainderOf(angle, fullCircle);
}

} // namespace detail

inline SineCosine sineCosine(Wide angle) {
    angle = detail::reducedAngle(angle);
#if Q_MUR_X87
    SineCosine result;
    asm("fsincos" : "=t"(result.cosine), "=u"(result.sine) : "0"(angle));
    return result;
#else
    const SoftSineCosine result = softSineCosine(angle);
    return {result.sine, result.cosine};
#endif
}

inline Wide tangent(Wide angle) {
    angle = detail::reducedAngle(angle);
#if Q_MUR_X87
    Wide result;
    Wide one;
    asm("fptan" : "=t"(one), "=u"(result) : "0"(angle));
    return result;
#else
    return softTangent(angle);
#endif
}

/// The angle of the point (x, y), from -pi to pi.
inline Wide arcTangent(Wide y, Wide x) {
#if Q_MUR_X87
    Wide result;
    asm("fpatan" : "=t"(result) : "0"(x), "u"(y) : "st(1)");
    return result;
#else
    return softArcTangent(y, x);
#endif
}

/// e to the power of `value`, 0 where that is too small to matter.
inline Wide exponential(Wide value) {
    if (value < -11000)
        return 0;
#if Q_MUR_X87
    const Wide power = value * 1.442695040888963407359924681001892137L; // log2(e)
    const Wide whole = std::nearbyint(power);
    Wide fraction;
    Wide result;
    asm("f2xm1" : "=t"(fraction) : "0"(power - whole));
    asm("fscale" : "=t"(result) : "0"(fraction + 1), "u"(whole));
    return result;
#else
    return softExponential(value);
#endif
}

/// Truncates toward zero to 64 bits and keeps the low 32; what 64 bits cannot hold gives 0.
template <class Real>
int truncateToInt(Real value) {
    constexpr Real limit = static_cast<Real>(0x1p63);
    if (!(value >= -limit && value < limit))
        return 0;
    return static_cast<int>(static_cast<unsigned>(static_cast<unsigned long long>(static_cast<long long>(value))));
}

} // namespace qmur

#endif
