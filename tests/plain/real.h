/// \file
/// The twins' arithmetic at full width: the x87 unit's, with its full precision wherever the host left it, or where the
/// library does without that unit their own.
#ifndef Q_MUR_TESTS_PLAIN_REAL_H
#define Q_MUR_TESTS_PLAIN_REAL_H

#include "words.h"

#include <cmath>

#if (defined(__i386__) || defined(__x86_64__)) && !defined(Q_MUR_SOFT_WIDE)
#define Q_MUR_PLAIN_X87 1
#else
#define Q_MUR_PLAIN_X87 0
#include "long_real.h"
#endif

namespace plain {

/// The format of 64 bits of mantissa.
#if Q_MUR_PLAIN_X87
using Real = long double;
#else
using Real = LongReal;
#endif

/// While it lives, the floating unit has its full precision. It stands in a scope around whatever computes with Real.
class [[maybe_unused]] FullWidth {
public:
#if defined(__i386__) || defined(__x86_64__)
    FullWidth() {
        constexpr unsigned short full = 0x037F;
        asm volatile("fnstcw %0\n\tfldcw %1" : "=&m"(before) : "m"(full) : "memory");
    }
    ~FullWidth() {
        asm volatile("fnclex\n\tfldcw %0" : : "m"(before) : "memory");
    }

private:
    unsigned short before;
#else
    FullWidth() = default;
#endif

public:
    FullWidth(const FullWidth &) = delete;
    FullWidth &operator=(const FullWidth &) = delete;
};

/// What `compute` gives with the floating unit at its full precision. It is called where the compiler cannot see into
/// it, so that none of its arithmetic is moved out of there.
template <class Compute>
auto wide(const Compute &compute) {
    const FullWidth full;
    auto(*volatile unseen)(const Compute &) = +[](const Compute &seen) { return seen(); };
    return unseen(compute);
}

#if Q_MUR_PLAIN_X87
/// Toward zero to 64 bits, of which the low 32 are kept; what 64 bits cannot hold is 0.
inline int truncated(Real value) {
    if (!(value >= -9223372036854775808.0L && value < 9223372036854775808.0L))
        return 0;
    return int32(static_cast<Number>(value));
}

inline Real absolute(Real value) {
    return std::fabs(value);
}
inline Real rootOf(Real value) {
    return std::sqrt(value);
}
inline Real remainderOf(Real a, Real b) {
    return std::fmod(a, b);
}
inline Real powerOfE(Real value) {
    return std::exp(value);
}
#endif

/// An alpha as a weight in 1/256.
inline Number weightOf(float alpha) {
    const FullWidth precision;
    return truncated(Real{alpha} * 256);
}

/// An angle that the processor's instructions take.
inline Real turnable(Real angle) {
    if (angle < 0x1p63 && angle > -0x1p63)
        return angle;
#if Q_MUR_PLAIN_X87
    return remainderOf(angle, 6.283185307179586476925286766559L);
#else
    return remainderOf(angle, Real(0xC90FDAA22168C235) / Real(0x1p61));
#endif
}

/// The functions as the processor computes them, the same under every compiler and system.
inline Real sine(Real angle) {
    Real result = turnable(angle);
#if Q_MUR_PLAIN_X87
    asm("fsin" : "+t"(result));
    return result;
#else
    return sineBeyond(result, 0);
#endif
}

inline Real cosine(Real angle) {
    Real result = turnable(angle);
#if Q_MUR_PLAIN_X87
    asm("fcos" : "+t"(result));
    return result;
#else
    return sineBeyond(result, 1);
#endif
}

inline Real tangent(Real angle) {
    Real result = turnable(angle);
#if Q_MUR_PLAIN_X87
    Real one;
    asm("fptan" : "=t"(one), "=u"(result) : "0"(result));
    return result;
#else
    return tangentOf(result);
#endif
}

/// The angle of the point (x, y), from -pi to pi.
inline Real arcTangent(Real y, Real x) {
#if Q_MUR_PLAIN_X87
    Real result;
    asm("fpatan" : "=t"(result) : "0"(x), "u"(y) : "st(1)");
    return result;
#else
    return angleOf(y, x);
#endif
}

} // namespace plain

#endif
