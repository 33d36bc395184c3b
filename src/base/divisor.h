/// \file
/// Many numbers divided by one of them.
#ifndef Q_MUR_BASE_DIVISOR_H
#define Q_MUR_BASE_DIVISOR_H

#include "base/lanes.h"

namespace qmur {

/// Divides signed 32-bit numbers toward zero, as wrapDivide() does, by way of the divisor's reciprocal.
///
/// For n and d other than 0 of 32 bits, (|n| + 1/2) / |d| lies at least 1 / (2 |d|) away from any whole number and has
/// the same whole part as |n| / |d|. The product with the rounded reciprocal is off by less than 2^-51 of itself, which
/// is less than 1 / (2^19 |d|), so that it has that whole part too. The least number over -1 comes out as 2^31 and
/// wraps.
class Divisor {
public:
    explicit Divisor(int divisor) : reciprocal(1.0 / divisor) {}

    friend Numbers<4> operator/(Numbers<4> numbers, const Divisor &divisor) {
        return scaledTowardZero(numbers, divisor.reciprocal);
    }
    friend int operator/(int number, const Divisor &divisor) {
        return static_cast<int>(
            scaledTowardZero(Numbers<4>::front(static_cast<std::uint32_t>(number)), divisor.reciprocal)[0]);
    }

private:
    double reciprocal;
};

} // namespace qmur

#endif
