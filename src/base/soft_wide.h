/// \file
/// The x87 format in integers, for processors without that unit: a mantissa of 64 bits, an exponent of 15, results
/// rounded to nearest, ties to even. No floating point of the host takes part, and every operation gives the bits that
/// the unit gives with its exceptions masked, down to subnormal numbers and the payloads of not-a-numbers.
#ifndef Q_MUR_BASE_SOFT_WIDE_H
#define Q_MUR_BASE_SOFT_WIDE_H

#include <bit>
#include <compare>
#include <concepts>
#include <cstdint>

namespace qmur {

__extension__ typedef unsigned __int128 TwoWords;

constexpr int leadingZeros(TwoWords value) {
    const auto high = static_cast<std::uint64_t>(value >> 64);
    return high != 0 ? std::countl_zero(high) : 64 + std::countl_zero(static_cast<std::uint64_t>(value));
}

/// Shifted to the right; what falls out stays as a lowest bit that is 1, which is all that rounding asks of it.
constexpr TwoWords shiftedOut(TwoWords value, int bits) {
    if (bits == 0)
        return value;
    if (bits > 127)
        return value != 0;
    return value >> bits | ((value << (128 - bits)) != 0);
}

class SoftWide {
public:
    static constexpr int bias = 16383;

    SoftWide() = default;
    // Numbers of the language become wide as they do with long double, without being asked.
    constexpr SoftWide(std::integral auto value) : SoftWide(ofInteger(value)) {}
    constexpr SoftWide(float value) : SoftWide(ofFormat(std::bit_cast<std::uint32_t>(value), 24, 8)) {}
    constexpr SoftWide(double value) : SoftWide(ofFormat(std::bit_cast<std::uint64_t>(value), 53, 11)) {}
    SoftWide(long double) = delete; // which is another format on every system

    constexpr explicit operator float() const {
        return std::bit_cast<float>(static_cast<std::uint32_t>(toFormat(24, 8)));
    }
    constexpr explicit operator double() const { return std::bit_cast<double>(toFormat(53, 11)); }
    /// Truncated toward zero; the least number where that does not fit.
    constexpr explicit operator long long() const {
        if (exponent < bias)
            return 0;
        if (exponent >= bias + 63)
            return INT64_MIN;
        const auto magnitude = static_cast<long long>(mantissa >> (bias + 63 - exponent));
        return negative ? -magnitude : magnitude;
    }

    /// The number `mantissa` times 2 to the power of `exponent` - 63, whose highest bit is set.
    static constexpr SoftWide of(std::uint64_t mantissa, int exponent, bool negative = false) {
        return {mantissa, exponent + bias, negative};
    }
    /// The same of a mantissa of 128 bits, or more whose last one says so, rounded and in range.
    static constexpr SoftWide rounded(TwoWords mantissa, int exponent, bool negative) {
        return pack(mantissa, exponent + bias, negative);
    }
    static constexpr SoftWide infinity(bool negative) { return {highestBit, infiniteExponent, negative}; }
    /// What the unit answers where there is no answer.
    static constexpr SoftWide notANumber() { return {highestBit | quietBit, infiniteExponent, true}; }

    constexpr bool isNegative() const { return negative; }
    constexpr bool isZero() const { return mantissa == 0; }
    constexpr bool isInfinite() const { return exponent == infiniteExponent && mantissa == highestBit; }
    constexpr bool isNotANumber() const { return exponent == infiniteExponent && mantissa != highestBit; }
    /// The mantissa with its highest bit set and the exponent that goes with it, as of() takes them; not of 0.
    constexpr std::uint64_t normalMantissa() const { return mantissa << std::countl_zero(mantissa); }
    constexpr int normalExponent() const { return scale() - bias - std::countl_zero(mantissa); }
    /// As the unit stores them.
    constexpr std::uint64_t storedMantissa() const { return mantissa; }
    constexpr unsigned storedExponent() const { return static_cast<unsigned>(exponent) | (negative ? 0x8000U : 0U); }

    constexpr SoftWide operator-() const { return {mantissa, exponent, !negative}; }

    friend constexpr SoftWide operator+(SoftWide a, SoftWide b) {
        if (a.exponent == infiniteExponent || b.exponent == infiniteExponent) {
            if (a.isNotANumber() || b.isNotANumber())
                return carriedOn(a, b);
            return a.isInfinite() && b.isInfinite() && a.negative != b.negative ? notANumber() : a.isInfinite() ? a : b;
        }
        if (a.exponent < b.exponent || (a.exponent == b.exponent && a.mantissa < b.mantissa)) {
            const SoftWide smaller = a;
            a = b;
            b = smaller;
        }
        // 62 bits behind the mantissa suffice: if the first is lost, the difference keeps at least 63 in front of them.
        const TwoWords larger = static_cast<TwoWords>(a.mantissa) << 62;
        const TwoWords smaller = shiftedOut(static_cast<TwoWords>(b.mantissa) << 62, a.scale() - b.scale());
        if (a.negative == b.negative)
            return pack(larger + smaller, a.scale() + 2, a.negative);
        return larger == smaller ? SoftWide(0) : pack(larger - smaller, a.scale() + 2, a.negative);
    }
    friend constexpr SoftWide operator-(SoftWide a, SoftWide b) {
        return b.isNotANumber() ? a + b : a + -b; // a payload is carried on with its sign
    }

    friend constexpr SoftWide operator*(SoftWide a, SoftWide b) {
        const bool isBelow0 = a.negative != b.negative;
        if (a.exponent == infiniteExponent || b.exponent == infiniteExponent) {
            if (a.isNotANumber() || b.isNotANumber())
                return carriedOn(a, b);
            return a.isZero() || b.isZero() ? notANumber() : infinity(isBelow0);
        }
        return pack(static_cast<TwoWords>(a.mantissa) * b.mantissa, a.scale() + b.scale() - bias + 1, isBelow0);
    }

    friend constexpr SoftWide operator/(SoftWide a, SoftWide b) {
        const bool isBelow0 = a.negative != b.negative;
        if (a.exponent == infiniteExponent || b.exponent == infiniteExponent) {
            if (a.isNotANumber() || b.isNotANumber())
                return carriedOn(a, b);
            return !a.isInfinite() ? SoftWide{0, 0, isBelow0} : b.isInfinite() ? notANumber() : infinity(isBelow0);
        }
        if (b.isZero())
            return a.isZero() ? notANumber() : infinity(isBelow0);
        if (a.isZero())
            return {0, 0, isBelow0};
        const std::uint64_t dividend = a.normalMantissa();
        const std::uint64_t divisor = b.normalMantissa();
        const bool halved = dividend >= divisor; // so that the quotient has 64 bits
        const TwoWords shifted = static_cast<TwoWords>(dividend) << (halved ? 63 : 64);
        const auto quotient = static_cast<std::uint64_t>(shifted / divisor);
        const TwoWords twiceRest = (shifted - static_cast<TwoWords>(quotient) * divisor) * 2;
        return pack(static_cast<TwoWords>(quotient) << 64 | againstHalf(twiceRest, divisor),
                    a.normalExponent() - b.normalExponent() + bias - (halved ? 0 : 1), isBelow0);
    }

    constexpr SoftWide &operator+=(SoftWide other) { return *this = *this + other; }
    constexpr SoftWide &operator-=(SoftWide other) { return *this = *this - other; }
    constexpr SoftWide &operator*=(SoftWide other) { return *this = *this * other; }
    constexpr SoftWide &operator/=(SoftWide other) { return *this = *this / other; }

    friend constexpr bool operator==(SoftWide a, SoftWide b) { return std::is_eq(a <=> b); }
    friend constexpr std::partial_ordering operator<=>(SoftWide a, SoftWide b) {
        if (a.isNotANumber() || b.isNotANumber())
            return std::partial_ordering::unordered;
        if (a.isZero() && b.isZero())
            return std::partial_ordering::equivalent;
        if (a.negative != b.negative)
            return a.negative ? std::partial_ordering::less : std::partial_ordering::greater;
        const SoftWide &high = a.negative ? b : a;
        const SoftWide &low = a.negative ? a : b;
        return high.exponent != low.exponent ? high.exponent <=> low.exponent : high.mantissa <=> low.mantissa;
    }

    friend constexpr SoftWide absolute(SoftWide value) { return {value.mantissa, value.exponent, false}; }

    /// The remainder of a / b truncated, exact.
    friend constexpr SoftWide remainderOf(SoftWide a, SoftWide b) {
        if (a.isNotANumber() || b.isNotANumber())
            return carriedOn(a, b);
        if (a.isInfinite() || b.isZero())
            return notANumber();
        if (a.isZero() || b.isInfinite() || absolute(a) < absolute(b))
            return a;
        const std::uint64_t divisor = b.normalMantissa();
        std::uint64_t rest = a.normalMantissa() % divisor;
        for (int bits = a.normalExponent() - b.normalExponent(); bits > 0; bits -= 64)
            rest = static_cast<std::uint64_t>((static_cast<TwoWords>(rest) << (bits < 64 ? bits : 64)) % divisor);
        return pack(static_cast<TwoWords>(rest) << 64, b.normalExponent() + bias, a.negative);
    }

    /// The nearest whole number, of two the even one.
    friend constexpr SoftWide nearestWhole(SoftWide value) {
        const int fractionBits = bias + 63 - value.exponent;
        if (fractionBits <= 0)
            return value;
        if (fractionBits > 64)
            return {0, 0, value.negative};
        const TwoWords shifted = static_cast<TwoWords>(value.mantissa) << (64 - fractionBits);
        auto whole = static_cast<std::uint64_t>(shifted >> 64);
        whole += roundsUp(whole, static_cast<std::uint64_t>(shifted));
        return pack(static_cast<TwoWords>(whole) << 64, bias + 63, value.negative);
    }

    friend constexpr SoftWide squareRoot(SoftWide value) {
        if (value.isNotANumber() || value.isZero())
            return value;
        if (value.negative)
            return notANumber();
        if (value.isInfinite())
            return value;
        const bool isOdd = (value.normalExponent() & 1) != 0;
        const TwoWords square = static_cast<TwoWords>(value.normalMantissa()) << (isOdd ? 64 : 63);
        const std::uint64_t root = rootOf(square);
        const TwoWords rest = square - static_cast<TwoWords>(root) * root;
        const std::uint64_t behind = rest > root ? highestBit | 1 : rest != 0; // (root + 1/2)^2 is no whole number
        return pack(static_cast<TwoWords>(root) << 64 | behind, (value.normalExponent() >> 1) + bias, false);
    }

private:
    static constexpr int infiniteExponent = 0x7FFF;
    static constexpr std::uint64_t highestBit = std::uint64_t{1} << 63;
    static constexpr std::uint64_t quietBit = highestBit >> 1;

    constexpr SoftWide(std::uint64_t digits, int biasedExponent, bool isBelow0)
        : mantissa(digits), exponent(static_cast<std::int16_t>(biasedExponent)), negative(isBelow0) {}

    /// What the mantissa's highest bit counts; that of subnormal numbers counts as much as in the least exponent.
    constexpr int scale() const { return exponent == 0 ? 1 : exponent; }

    /// Whether `behind`, in 2^-64, rounds up what stands before it.
    static constexpr bool roundsUp(std::uint64_t whole, std::uint64_t behind) {
        return behind > highestBit || (behind == highestBit && (whole & 1) != 0);
    }

    /// What stands behind a quotient, as far as rounding asks: twice the rest compared to the divisor.
    static constexpr std::uint64_t againstHalf(TwoWords twiceRest, std::uint64_t divisor) {
        if (twiceRest == 0)
            return 0;
        return twiceRest < divisor ? 1 : twiceRest == divisor ? highestBit : highestBit | 1;
    }

    /// The mantissa's highest bit counts 2 to the power of the exponent less its bias, wherever the first 1 stands.
    static constexpr SoftWide pack(TwoWords digits, int biased, bool isNegative) {
        if (digits == 0)
            return {0, 0, isNegative};
        const int zeros = leadingZeros(digits);
        digits <<= zeros;
        biased -= zeros;
        if (biased < 1) {
            digits = shiftedOut(digits, 1 - biased);
            biased = 0;
        }
        auto high = static_cast<std::uint64_t>(digits >> 64);
        if (roundsUp(high, static_cast<std::uint64_t>(digits)) && ++high == 0) {
            high = highestBit;
            ++biased;
        }
        if (biased == 0 && high >= highestBit)
            biased = 1;
        return biased >= infiniteExponent ? infinity(isNegative) : SoftWide(high, biased, isNegative);
    }

    /// Of two not-a-numbers the one with the larger payload, of like ones the positive.
    static constexpr SoftWide carriedOn(SoftWide a, SoftWide b) {
        if (!a.isNotANumber())
            return b;
        if (!b.isNotANumber())
            return a;
        return a.mantissa != b.mantissa ? (a.mantissa > b.mantissa ? a : b) : (a.negative ? b : a);
    }

    static constexpr SoftWide ofInteger(std::integral auto value) {
        const bool isNegative = value < 0;
        const auto magnitude =
            isNegative ? 0 - static_cast<std::uint64_t>(value) : static_cast<std::uint64_t>(value); // also of the least
        if (magnitude == 0)
            return {0, 0, false};
        const int zeros = std::countl_zero(magnitude);
        return {magnitude << zeros, bias + 63 - zeros, isNegative};
    }

    /// From and to the formats of `float` and `double`: a mantissa of so many digits, its first unsaid, and an
    /// exponent.
    static constexpr SoftWide ofFormat(std::uint64_t bits, int digits, int exponentBits) {
        const int highest = (1 << exponentBits) - 1;
        const auto biased = static_cast<int>(bits >> (digits - 1)) & highest;
        const std::uint64_t fraction = bits << (65 - digits) >> 1;
        const bool isNegative = (bits >> (digits - 1 + exponentBits) & 1) != 0;
        if (biased == highest)
            return {fraction == 0 ? highestBit : highestBit | quietBit | fraction, infiniteExponent, isNegative};
        if (biased != 0)
            return {highestBit | fraction, biased - highest / 2 + bias, isNegative};
        return pack(static_cast<TwoWords>(fraction) << 64, 1 - highest / 2 + bias, isNegative);
    }

    constexpr std::uint64_t toFormat(int digits, int exponentBits) const {
        const int highest = (1 << exponentBits) - 1;
        const std::uint64_t sign = static_cast<std::uint64_t>(negative) << (digits - 1 + exponentBits);
        const std::uint64_t infinite = static_cast<std::uint64_t>(highest) << (digits - 1);
        if (exponent == infiniteExponent)
            return sign | infinite | (mantissa << 1 >> (65 - digits));
        const int biased = exponent - bias + highest / 2;
        const TwoWords shifted =
            shiftedOut(static_cast<TwoWords>(mantissa) << 64, 64 - digits + (biased < 1 ? 1 - biased : 0));
        auto result = static_cast<std::uint64_t>(shifted >> 64);
        result += roundsUp(result, static_cast<std::uint64_t>(shifted));
        if (biased > 1) // the mantissa's first bit adds the 1 that is missing
            result += biased < highest ? static_cast<std::uint64_t>(biased - 1) << (digits - 1) : infinite;
        return sign | (result < infinite ? result : infinite);
    }

    /// The square root of at least 2^126, rounded down, by Zimmermann's "Karatsuba square root": half the digits from
    /// the upper half of the square, the others by one division.
    static constexpr std::uint64_t rootOf(TwoWords square) {
        const auto upper = static_cast<std::uint64_t>(square >> 64);
        std::uint64_t root = 0; // of `upper`, bit by bit
        for (std::uint64_t bit = std::uint64_t{1} << 31; bit != 0; bit >>= 1)
            if ((root | bit) * (root | bit) <= upper)
                root |= bit;
        const std::uint64_t rest = upper - root * root;
        const auto middle = static_cast<std::uint64_t>(square) >> 32;
        const TwoWords twiceRest = static_cast<TwoWords>(rest) << 32 | middle;
        const TwoWords quotient = twiceRest / (2 * root);
        TwoWords result = (static_cast<TwoWords>(root) << 32) + quotient;
        while (result > UINT64_MAX || result * result > square)
            --result;
        return static_cast<std::uint64_t>(result);
    }

    std::uint64_t mantissa;
    std::int16_t exponent; // biased; all bytes of a positive 0 are 0
    bool negative;
};

// For arguments of the language's own types, too.
constexpr SoftWide absolute(SoftWide value);
constexpr SoftWide remainderOf(SoftWide a, SoftWide b);
constexpr SoftWide nearestWhole(SoftWide value);
constexpr SoftWide squareRoot(SoftWide value);

constexpr int truncateToInt(SoftWide value) {
    // The least number stands for what does not fit, and its low 32 bits are 0.
    return static_cast<int>(static_cast<unsigned>(static_cast<unsigned long long>(static_cast<long long>(value))));
}

struct SoftSineCosine {
    SoftWide sine;
    SoftWide cosine;
};

// As the unit's instructions give them, correctly rounded: of angles below 2^63, with a pi of 66 bits.
SoftSineCosine softSineCosine(SoftWide angle);
SoftWide softTangent(SoftWide angle);
SoftWide softArcTangent(SoftWide y, SoftWide x);
/// 2 to the power of a number from -1/2 to 1/2, less 1.
SoftWide softPowerOf2Less1(SoftWide power);

/// e to the power of a number, from the instruction before in the same steps as on the unit.
SoftWide softExponential(SoftWide value);

} // namespace qmur

#endif
