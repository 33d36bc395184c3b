/// \file
/// The format of 64 bits of mantissa, computed plainly: exact numbers first, which are then rounded. Functions are
/// summed up to 320 bits.
#ifndef Q_MUR_TESTS_PLAIN_LONG_REAL_H
#define Q_MUR_TESTS_PLAIN_LONG_REAL_H

#include <algorithm>
#include <bit>
#include <cmath>
#include <concepts>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <limits>

namespace plain {

__extension__ typedef unsigned __int128 Number128;

/// `magnitude` times 2^unit with a sign.
class LongReal {
public:
    LongReal() : LongReal(0) {}
    LongReal(std::integral auto value) {
        negative = value < 0;
        magnitude = static_cast<std::uint64_t>(value);
        if (negative)
            magnitude = -magnitude;
    }
    LongReal(double value) {
        negative = std::signbit(value);
        kind = std::isnan(value) ? nothing : std::isinf(value) ? endless : number;
        if (kind == nothing) {
            std::uint64_t bits;
            std::memcpy(&bits, &value, sizeof bits);
            magnitude = bits << 11 | std::uint64_t{3} << 62;
        }
        if (kind == number) {
            magnitude = static_cast<std::uint64_t>(std::fabs(std::ldexp(std::frexp(value, &unit), 53)));
            unit -= 53;
        }
    }
    LongReal(long double) = delete;

    explicit operator double() const { return inFormat<double>(53, -1074); }
    explicit operator float() const { return inFormat<float>(24, -149); }

    /// Toward zero to 64 bits, of which the low 32 are kept; what 64 bits cannot hold is 0.
    friend int truncated(const LongReal &value) {
        if (value.kind != number || value.magnitude == 0 || value.topBit() > 63)
            return 0;
        if (value.topBit() == 63)
            return 0; // of what lies there 64 bits hold the least number, and its low half is 0
        const std::uint64_t whole = value.topBit() < 0 ? 0
                                    : value.unit < 0   ? value.magnitude >> -value.unit
                                                       : value.magnitude << value.unit;
        const auto low = static_cast<std::uint32_t>(value.negative ? -whole : whole);
        int result;
        std::memcpy(&result, &low, sizeof result);
        return result;
    }

    LongReal operator-() const {
        LongReal result = *this;
        result.negative = !negative;
        return result;
    }

    friend LongReal operator+(const LongReal &a, const LongReal &b) {
        if (a.kind == nothing || b.kind == nothing)
            return nothingOf(a, b);
        if (a.kind == endless || b.kind == endless)
            return a.kind == b.kind && a.negative != b.negative ? noNumber() : a.kind == endless ? a : b;
        if (a.magnitude == 0 && b.magnitude == 0)
            return a.negative ? b : a;
        if (a.magnitude == 0 || b.magnitude == 0)
            return a.magnitude == 0 ? b : a;
        const bool aIsHigher = a.topBit() >= b.topBit();
        const LongReal &high = aIsHigher ? a : b;
        const LongReal &low = aIsHigher ? b : a;
        // In units in which the higher number has its top bit at 126; what lies below those only tips the balance.
        const int common = high.topBit() - 126;
        const Number128 upper = exactIn(high, common);
        const Number128 lower = exactIn(low, common);
        if (a.negative == b.negative) {
            const Number128 sum = upper + lower;
            return rounded(sum, common, high.negative);
        }
        if (upper == lower)
            return {};
        return upper > lower ? rounded(upper - lower, common, high.negative)
                             : rounded(lower - upper, common, low.negative);
    }
    friend LongReal operator-(const LongReal &a, const LongReal &b) { return b.kind == nothing ? a + b : a + (-b); }

    friend LongReal operator*(const LongReal &a, const LongReal &b) {
        const bool sign = a.negative != b.negative;
        if (a.kind == nothing || b.kind == nothing)
            return nothingOf(a, b);
        if (a.kind == endless || b.kind == endless)
            return a.isZero() || b.isZero() ? noNumber() : infinite(sign);
        return rounded(static_cast<Number128>(a.magnitude) * b.magnitude, a.unit + b.unit, sign);
    }

    friend LongReal operator/(const LongReal &a, const LongReal &b) {
        const bool sign = a.negative != b.negative;
        if (a.kind == nothing || b.kind == nothing)
            return nothingOf(a, b);
        if (a.kind == endless)
            return b.kind == endless ? noNumber() : infinite(sign);
        if (b.kind == endless)
            return rounded(0, 0, sign);
        if (b.isZero())
            return a.isZero() ? noNumber() : infinite(sign);
        // Long division, three digits of 32 bits behind the first.
        const int shiftA = std::countl_zero(a.magnitude);
        const int shiftB = std::countl_zero(b.magnitude);
        const std::uint64_t divisor = b.magnitude << shiftB;
        Number128 rest = a.isZero() ? 0 : a.magnitude << shiftA;
        Number128 quotient = rest / divisor;
        rest %= divisor;
        for (int digit = 0; digit < 3; ++digit) {
            rest <<= 32;
            quotient = quotient << 32 | rest / divisor;
            rest %= divisor;
        }
        return rounded(quotient * 2 + (rest != 0), a.unit - shiftA - b.unit + shiftB - 97, sign);
    }

    LongReal &operator+=(const LongReal &other) { return *this = *this + other; }
    LongReal &operator-=(const LongReal &other) { return *this = *this - other; }
    LongReal &operator*=(const LongReal &other) { return *this = *this * other; }

    friend bool operator<(const LongReal &a, const LongReal &b) {
        if (a.kind == nothing || b.kind == nothing)
            return false;
        if (a.kind == endless || b.kind == endless)
            return a.kind == endless && b.kind == endless ? a.negative && !b.negative
                   : a.kind == endless                    ? a.negative
                                                          : !b.negative;
        const LongReal difference = a - b; // never rounds to 0
        return difference.negative && !difference.isZero();
    }
    friend bool operator>(const LongReal &a, const LongReal &b) { return b < a; }
    friend bool operator==(const LongReal &a, const LongReal &b) {
        return a.kind != nothing && b.kind != nothing && !(a < b) && !(b < a);
    }
    friend bool operator<=(const LongReal &a, const LongReal &b) { return a < b || a == b; }
    friend bool operator>=(const LongReal &a, const LongReal &b) { return b < a || a == b; }

    friend LongReal absolute(LongReal value) {
        value.negative = false;
        return value;
    }

    friend LongReal rootOf(const LongReal &value) {
        if (value.kind == nothing || value.isZero())
            return value;
        if (value.negative)
            return noNumber();
        if (value.kind == endless)
            return value;
        // Digit by digit, two of the square for one of the root.
        const int zeros = std::countl_zero(value.magnitude);
        int power = value.unit - zeros;
        Number128 rest = 0;
        Number128 square = static_cast<Number128>(value.magnitude) << zeros;
        if (power % 2 != 0) {
            square *= 2;
            power -= 1;
        }
        Number128 found = 0;
        for (int pair = 64; pair >= -66; pair -= 2) {
            rest = rest * 4 + (pair >= 0 ? static_cast<unsigned>(square >> pair) & 3 : 0);
            found *= 2;
            if (rest >= 2 * found + 1) {
                rest -= 2 * found + 1;
                found += 1;
            }
        }
        return rounded(found * 2 + (rest != 0), power / 2 - 34, false);
    }

    static LongReal rounded(Number128 exact, int unit, bool sign) {
        const auto upper = static_cast<std::uint64_t>(exact >> 64);
        const int excess = upper != 0 ? 64 - std::countl_zero(upper) : 0;
        const int lost = std::max(excess, leastUnit - unit);
        if (lost > 66 && excess > 0) // half of it beforehand
            return rounded(upper | (static_cast<std::uint64_t>(exact) != 0), unit + 64, sign);
        LongReal result;
        result.negative = sign;
        if (lost > 127) // nothing is left, nor half of the least number
            return result;
        if (lost > 0) {
            const Number128 half = Number128{1} << (lost - 1);
            const Number128 cut = exact & (2 * half - 1);
            exact >>= lost;
            unit += lost;
            if (cut > half || (cut == half && (exact & 1) != 0))
                exact += 1;
        }
        if (exact >> 64 != 0) {
            exact >>= 1;
            ++unit;
        }
        result.magnitude = static_cast<std::uint64_t>(exact);
        result.unit = exact == 0 ? 0 : unit;
        return result.topBit() > 16383 ? infinite(sign) : result;
    }

    /// What is left of a behind whole multiples of b, with the sign of a.
    friend LongReal remainderOf(const LongReal &a, const LongReal &b) {
        if (a.kind != number || b.kind != number || b.isZero())
            return noNumber();
        if (absolute(a) < absolute(b))
            return a;
        const int finest = std::min(a.unit, b.unit);
        const Number128 divisor = static_cast<Number128>(b.magnitude) << (b.unit - finest);
        Number128 rest = a.magnitude % divisor;
        for (int u = finest; u < a.unit; ++u)
            rest = rest * 2 % divisor;
        return rounded(rest, finest, a.negative);
    }

    bool isZero() const { return kind == number && magnitude == 0; }
    bool isNumber() const { return kind == number; }
    bool isNegative() const { return negative; }
    std::uint64_t wholeMagnitude() const { return magnitude; }
    int unitExponent() const { return unit; }
    /// The highest bit counts 2^topBit().
    int topBit() const { return unit + 63 - std::countl_zero(magnitude); }
    static LongReal noNumber() {
        LongReal result;
        result.kind = nothing;
        result.negative = true;
        result.magnitude = std::uint64_t{3} << 62;
        return result;
    }

private:
    enum Kind { number, endless, nothing };
    static constexpr int leastUnit = -16445;

    static LongReal infinite(bool sign) {
        LongReal result;
        result.kind = endless;
        result.negative = sign;
        return result;
    }
    static LongReal nothingOf(const LongReal &a, const LongReal &b) {
        if (a.kind != nothing || b.kind != nothing)
            return a.kind == nothing ? a : b;
        if (a.magnitude == b.magnitude)
            return a.negative ? b : a;
        return a.magnitude > b.magnitude ? a : b;
    }

    static Number128 exactIn(const LongReal &value, int common) {
        if (value.unit >= common)
            return static_cast<Number128>(value.magnitude) << (value.unit - common);
        const int lost = common - value.unit;
        if (lost > 63)
            return 1;
        const std::uint64_t kept = value.magnitude >> lost;
        return kept | (kept << lost != value.magnitude);
    }

    template <class Format>
    Format inFormat(int digits, int least) const {
        if (kind == nothing) {
            const std::uint64_t bits =
                magnitude >> 11 | (negative ? std::uint64_t{1} << 63 : 0) | static_cast<std::uint64_t>(0x7FF) << 52;
            double result;
            std::memcpy(&result, &bits, sizeof result);
            return static_cast<Format>(result);
        }
        Format result = std::numeric_limits<Format>::infinity();
        if (kind == number) {
            std::uint64_t kept = magnitude;
            int at = unit;
            bool cut = false;
            bool before = false;
            while (kept >> digits != 0 || (at < least && (kept != 0 || cut))) {
                before = before || cut;
                cut = (kept & 1) != 0;
                kept >>= 1;
                ++at;
            }
            kept += cut && (before || (kept & 1) != 0);
            result = static_cast<Format>(std::ldexp(static_cast<Format>(kept), kept == 0 ? 0 : at)); // exact
        }
        return negative ? -result : result;
    }

    Kind kind = number;
    bool negative = false;
    std::uint64_t magnitude = 0;
    int unit = 0;
};

// For numbers of the language's own types, too.
int truncated(const LongReal &value);
LongReal absolute(LongReal value);
LongReal rootOf(const LongReal &value);

/// A number of 64 bits before the point and 320 behind it, and its sign.
struct Long {
    static constexpr int count = 6;
    std::uint64_t digit[count] = {}; // the whole comes last
    bool negative = false;

    static Long of(const LongReal &value) {
        Long result;
        result.negative = value.isNegative();
        const int position = value.unitExponent() + 320; // of the lowest bit
        for (int bit = 0; bit < 64; ++bit)
            if ((value.wholeMagnitude() >> bit & 1) != 0 && position + bit >= 0)
                result.digit[(position + bit) / 64] |= std::uint64_t{1} << (position + bit) % 64;
        return result;
    }

    /// The nearest real, times 2^power.
    LongReal real(int power = 0) const {
        Long shifted = *this;
        int doublings = 0;
        while (!shifted.isZero() && shifted.digit[count - 1] >> 63 == 0) {
            shifted = shifted.withDigitsOf(shifted, 1);
            ++doublings;
        }
        Number128 exact = static_cast<Number128>(shifted.digit[5]) << 64 | shifted.digit[4];
        for (int i = 0; i < 4; ++i)
            exact |= shifted.digit[i] != 0;
        return LongReal::rounded(exact, power - 64 - doublings, negative);
    }

    bool isZero() const {
        return std::all_of(digit, digit + count, [](std::uint64_t d) { return d == 0; });
    }

    /// Whether the magnitude is below another's.
    bool isBelow(const Long &other) const {
        return std::lexicographical_compare(
            std::make_reverse_iterator(digit + count), std::make_reverse_iterator(digit),
            std::make_reverse_iterator(other.digit + count), std::make_reverse_iterator(other.digit));
    }

    /// The sum of the magnitudes, or with a factor of -1 their difference, which is not below 0.
    Long withDigitsOf(const Long &other, int factor) const {
        Long result;
        result.negative = negative;
        __extension__ __int128 carry = 0;
        for (int i = 0; i < count; ++i) {
            carry += digit[i];
            carry += factor < 0 ? -static_cast<decltype(carry)>(other.digit[i]) : other.digit[i];
            result.digit[i] = static_cast<std::uint64_t>(carry);
            carry >>= 64;
        }
        return result;
    }

    Long operator-() const {
        Long result = *this;
        result.negative = !negative;
        return result;
    }
    friend Long operator+(const Long &a, const Long &b) {
        if (a.negative == b.negative)
            return a.withDigitsOf(b, 1);
        return a.isBelow(b) ? b.withDigitsOf(a, -1) : a.withDigitsOf(b, -1);
    }
    friend Long operator-(const Long &a, const Long &b) { return a + -b; }
    friend Long operator*(const Long &a, const Long &b) {
        std::uint64_t product[2 * count] = {};
        for (int i = 0; i < count; ++i) {
            Number128 carry = 0;
            for (int j = 0; j < count; ++j) {
                carry += static_cast<Number128>(a.digit[i]) * b.digit[j] + product[i + j];
                product[i + j] = static_cast<std::uint64_t>(carry);
                carry >>= 64;
            }
            product[i + count] = static_cast<std::uint64_t>(carry);
        }
        Long result;
        result.negative = a.negative != b.negative;
        std::copy_n(product + count - 1, count, result.digit);
        return result;
    }
    Long over(std::uint64_t divisor) const {
        Long result;
        result.negative = negative;
        Number128 rest = 0;
        for (int i = count - 1; i >= 0; --i) {
            rest = rest << 64 | digit[i];
            result.digit[i] = static_cast<std::uint64_t>(rest / divisor);
            rest %= divisor;
        }
        return result;
    }
    friend Long operator/(const Long &a, const Long &b) { // of a quotient below 2
        Long result;
        Long rest = a;
        rest.negative = false;
        for (int bit = 320; bit >= 0; --bit) {
            if (!rest.isBelow(b)) {
                rest = rest.withDigitsOf(b, -1);
                result.digit[bit / 64] |= std::uint64_t{1} << bit % 64;
            }
            rest = rest.withDigitsOf(rest, 1);
        }
        result.negative = a.negative != b.negative;
        return result;
    }
};

/// The sum of a series: each term from the one before by `next(term, its number)`, until none is left.
template <class Next>
Long summed(Long term, const Next &next) {
    Long sum;
    for (std::uint64_t k = 1; !term.isZero(); ++k) {
        sum = sum + term;
        term = next(term, k);
    }
    return sum;
}

inline Long sineOf(const Long &x) {
    const Long square = x * x;
    return summed(x, [&](const Long &term, std::uint64_t k) { return -(term * square).over(2 * k * (2 * k + 1)); });
}
inline Long cosineOf(const Long &x) {
    const Long square = x * x;
    return summed(Long::of(1),
                  [&](const Long &term, std::uint64_t k) { return -(term * square).over((2 * k - 1) * 2 * k); });
}

/// An angle less its quarter turns. The processors' pi, by which they reduce, has 66 bits.
struct Turned {
    Long rest;
    int quarters = 0;

    explicit Turned(const LongReal &angle) : rest(Long::of(angle)) {
        if (angle.isZero() || angle.topBit() < -1)
            return;
        const Number128 quarter = static_cast<Number128>(3) << 64 | 0x243F6A8885A308D3; // in units of 2^-65
        Number128 units = 0;
        const int bits = 64 + angle.unitExponent() + 65;
        for (int i = 0; i < bits; ++i) {
            units = units * 2 + (i < 64 ? angle.wholeMagnitude() >> (63 - i) & 1 : 0);
            quarters = quarters * 2 % 4;
            if (units >= quarter) {
                units -= quarter;
                quarters = (quarters + 1) % 4;
            }
        }
        const bool isPast = units * 2 > quarter;
        if (isPast) {
            units = quarter - units;
            quarters = (quarters + 1) % 4;
        }
        if (angle.isNegative())
            quarters = (4 - quarters) % 4;
        rest = {};
        const Number128 shifted = units << 63; // units of 2^-65 in those of 2^-128
        rest.digit[3] = static_cast<std::uint64_t>(shifted);
        rest.digit[4] = static_cast<std::uint64_t>(shifted >> 64);
        rest.negative = angle.isNegative() != isPast;
    }
};

/// The sine of the angle and `more` quarter turns; what is far too small for 320 bits is its own sine.
inline LongReal sineBeyond(const LongReal &angle, int more) {
    if (!angle.isNumber())
        return LongReal::noNumber();
    if (angle.isZero() || angle.topBit() < -100)
        return more == 0 ? angle : LongReal(1);
    const Turned turned(angle);
    const int quarters = (turned.quarters + more) % 4;
    const LongReal result = (quarters % 2 == 0 ? sineOf(turned.rest) : cosineOf(turned.rest)).real();
    return quarters >= 2 ? -result : result;
}

inline LongReal tangentOf(const LongReal &angle) {
    if (!angle.isNumber())
        return LongReal::noNumber();
    if (angle.isZero() || angle.topBit() < -100)
        return angle;
    const Turned turned(angle);
    // Scaled by a power of 2 where the quotient would not stay below 2.
    const Long &x = turned.rest;
    const Long cosine = cosineOf(x);
    if (turned.quarters % 2 == 0)
        return (sineOf(x) / cosine).real();
    Long sine = sineOf(x);
    int power = 0;
    for (; sine.isBelow(cosine); ++power)
        sine = sine.withDigitsOf(sine, 1);
    return -(cosine / sine).real(power);
}

/// The angle of the point (x, y), of numbers: a guess in double, and what it lacks by the addition theorem.
inline LongReal angleOf(const LongReal &y, const LongReal &x) {
    if (y.isZero() && !x.isNegative())
        return y;
    if (y.isZero() && x.isZero())
        return angleOf(y, LongReal(-1));
    if (!x.isZero() && !x.isNegative() && y.topBit() - x.topBit() < -100) {
        const auto mantissaOf = [](const LongReal &value) {
            return Long::of(LongReal::rounded(value.wholeMagnitude(), value.unitExponent() - value.topBit(), false));
        };
        Long last; // the angle is below the quotient by less than any digit of it
        last.digit[0] = 1;
        const LongReal result = (mantissaOf(y) / mantissaOf(x) - last).real(y.topBit() - x.topBit());
        return y.isNegative() ? -result : result;
    }
    const int highest = x.isZero() ? y.topBit() : y.isZero() ? x.topBit() : std::max(x.topBit(), y.topBit());
    const auto scaled = [highest](const LongReal &value) {
        return LongReal::rounded(value.wholeMagnitude(), value.unitExponent() - highest - 1, value.isNegative());
    };
    const LongReal up = scaled(absolute(y));
    const LongReal across = scaled(x);
    const double guess = std::atan2(static_cast<double>(up), static_cast<double>(across));
    const Long angle = Long::of(guess);
    const Long cosine = cosineOf(angle);
    const Long sine = sineOf(angle);
    const Long longY = Long::of(up);
    const Long longX = Long::of(across);
    const Long t = (longY * cosine - longX * sine) / (longX * cosine + longY * sine);
    const Long cube = t * t * t;
    const LongReal result = (angle + t - cube.over(3) + (cube * t * t).over(5)).real();
    return y.isNegative() ? -result : result;
}

inline const Long &logarithmOf2() {
    static const Long logarithm = [] {
        Long sum;
        Long power = Long::of(1);
        for (std::uint64_t k = 1; !power.isZero(); ++k) {
            power = power.over(2);
            sum = sum + power.over(k);
        }
        return sum;
    }();
    return logarithm;
}

/// 2 to the power of a number from -1/2 to 1/2, less 1.
inline LongReal powerOf2Less1(const LongReal &power) {
    const Long rest = Long::of(absolute(power)) * logarithmOf2();
    const Long less1 = summed(rest, [&](const Long &term, std::uint64_t k) { return (term * rest).over(k + 1); });
    return power.isNegative() ? -(less1 / (Long::of(1) + less1)).real() : less1.real();
}

inline LongReal powerOfE(const LongReal &value) {
    if (absolute(value) > 12000)
        return value.isNegative() ? LongReal(0) : LongReal::noNumber();
    Long rest = Long::of(absolute(value));
    int halvings = std::max(truncated(absolute(value) * 1.44) - 1, 0);
    rest = rest - logarithmOf2() * Long::of(halvings);
    for (; !rest.isBelow(logarithmOf2()); ++halvings)
        rest = rest - logarithmOf2();
    const Long result = summed(Long::of(1), [&](const Long &term, std::uint64_t k) { return (term * rest).over(k); });
    return value.isNegative() ? (Long::of(1) / result).real(-halvings) : result.real(halvings);
}

} // namespace plain

#endif
