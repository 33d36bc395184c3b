/// \file
/// What the tests of floating point share: the widest format, a floating unit left at less, and random floats.
#ifndef Q_MUR_TESTS_MATH3D_FULL_WIDTH_H
#define Q_MUR_TESTS_MATH3D_FULL_WIDTH_H

#include "base/wide.h"
#include "support/cases.h"

#include <cmath>
#include <optional>

namespace test {

using Real = long double;

/// Leaves the floating unit at 53 bits, as a host on Windows may.
class ShortPrecision {
public:
#if Q_MUR_X87
    ShortPrecision() {
        asm volatile("fnstcw %0" : "=m"(before));
        const auto control = static_cast<unsigned short>((before & ~0x300) | 0x200);
        asm volatile("fldcw %0" : : "m"(control) : "memory");
    }
    ~ShortPrecision() {
        asm volatile("fldcw %0" : : "m"(before) : "memory");
    }
#else
    ShortPrecision() = default;
#endif
    ShortPrecision(const ShortPrecision &) = delete;
    ShortPrecision &operator=(const ShortPrecision &) = delete;

private:
#if Q_MUR_X87
    unsigned short before;
#endif
};

/// Calls the library; in every other case from a host that has left the floating unit at 53 bits.
template <class Call>
void callAtAnyPrecision(const Case &c, Call call) {
    std::optional<ShortPrecision> precision;
    if (c.number % 2 == 1)
        precision.emplace();
    call();
}

/// A float of up to 24 random bits and a size from about `2^-reach` to `2^reach`; once in a while zero.
inline float anyFloat(Random &random, int reach = 10) {
    if (random.oneIn(16))
        return 0;
    const int mantissa = random.between(-0xFFFFFF, 0xFFFFFF);
    return std::ldexp(static_cast<float>(mantissa), random.between(-reach, reach) - 24);
}

inline _POINT3DFLOAT anyPoint(Random &random, int reach = 10) {
    const float x = anyFloat(random, reach);
    const float y = anyFloat(random, reach);
    const float z = anyFloat(random, reach);
    return {x, y, z, 0};
}

/// An angle in radians, at times a multiple of a quarter turn.
inline float anyAngle(Random &random) {
    if (random.oneIn(4))
        return static_cast<float>(random.between(-8, 8)) * 1.5707964F;
    return anyFloat(random, 4);
}

inline void expectEqualPoints(Case &c, const _POINT3DFLOAT &result, const _POINT3DFLOAT &expected) {
    c.expectEqual(result.x, expected.x);
    c.expectEqual(result.y, expected.y);
    c.expectEqual(result.z, expected.z);
}

inline void expectEqualPoints(Case &c, const _POINT3D &result, const _POINT3D &expected) {
    c.expectEqual(static_cast<std::int64_t>(result.x), static_cast<std::int64_t>(expected.x));
    c.expectEqual(static_cast<std::int64_t>(result.y), static_cast<std::int64_t>(expected.y));
    c.expectEqual(static_cast<std::int64_t>(result.z), static_cast<std::int64_t>(expected.z));
}

/// Cuts a number to its low 32 bits.
inline int low32(std::int64_t value) {
    return static_cast<int>(static_cast<std::uint32_t>(value));
}

} // namespace test

#endif
