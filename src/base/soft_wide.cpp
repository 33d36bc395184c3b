#include "base/soft_wide.h"

#include <array>

// The functions are computed twice as wide as their results. Where that leaves open to which side a result is rounded,
// which is once in some 2^46 calls, they are computed four times as wide (Ziv's strategy).

// In how many of the last bits the narrower computation is mistrusted. It loses far less; the tests compile this file
// once more with more of them, so that the wider one is asked often enough.
#ifndef Q_MUR_SOFT_WIDE_DOUBT_BITS
#define Q_MUR_SOFT_WIDE_DOUBT_BITS 16
#endif

namespace qmur {

namespace {

/// A number from 0 up to 2, of `words` words, the lowest first; the highest bit counts 1. What is below its last bit is
/// cut off.
template <int words>
struct Fixed {
    std::array<std::uint64_t, words> word{};

    static constexpr int bits = 64 * words;

    constexpr bool isZero() const {
        for (const std::uint64_t w : word)
            if (w != 0)
                return false;
        return true;
    }

    friend constexpr Fixed operator+(const Fixed &a, const Fixed &b) {
        Fixed sum;
        TwoWords carry = 0;
        for (int i = 0; i < words; ++i, carry >>= 64)
            sum.word[i] = static_cast<std::uint64_t>(carry += static_cast<TwoWords>(a.word[i]) + b.word[i]);
        return sum;
    }

    friend constexpr Fixed operator-(const Fixed &a, const Fixed &b) {
        Fixed difference;
        std::uint64_t borrow = 0;
        for (int i = 0; i < words; ++i) {
            const TwoWords d = static_cast<TwoWords>(a.word[i]) - b.word[i] - borrow;
            difference.word[i] = static_cast<std::uint64_t>(d);
            borrow = static_cast<std::uint64_t>(d >> 64) & 1;
        }
        return difference;
    }

    friend constexpr Fixed operator*(const Fixed &a, const Fixed &b) {
        std::array<std::uint64_t, 2 * words> product{};
        for (int i = 0; i < words; ++i) {
            std::uint64_t carry = 0;
            for (int j = 0; j < words; ++j) {
                const TwoWords sum = static_cast<TwoWords>(a.word[i]) * b.word[j] + product[i + j] + carry;
                product[i + j] = static_cast<std::uint64_t>(sum);
                carry = static_cast<std::uint64_t>(sum >> 64);
            }
            product[i + words] = carry;
        }
        Fixed upper;
        for (int i = 0; i < words; ++i)
            upper.word[i] = product[words + i] << 1 | product[words + i - 1] >> 63;
        return upper;
    }

    friend constexpr Fixed operator>>(const Fixed &a, int count) {
        Fixed shifted;
        if (count >= bits)
            return shifted;
        const int whole = count / 64;
        const int part = count % 64;
        for (int i = 0; i + whole < words; ++i) {
            shifted.word[i] = a.word[i + whole] >> part;
            if (part != 0 && i + whole + 1 < words)
                shifted.word[i] |= a.word[i + whole + 1] << (64 - part);
        }
        return shifted;
    }

    constexpr Fixed doubled() const { return *this + *this; }

    constexpr Fixed dividedBy(std::uint64_t divisor) const {
        Fixed quotient;
        TwoWords rest = 0;
        for (int i = words - 1; i >= 0; --i) {
            rest = rest << 64 | word[i];
            quotient.word[i] = static_cast<std::uint64_t>(rest / divisor);
            rest %= divisor;
        }
        return quotient;
    }

    friend constexpr bool operator>=(const Fixed &a, const Fixed &b) {
        for (int i = words - 1; i > 0; --i)
            if (a.word[i] != b.word[i])
                return a.word[i] > b.word[i];
        return a.word[0] >= b.word[0];
    }

    template <int fewer>
    constexpr Fixed<fewer> cut() const {
        Fixed<fewer> upper;
        for (int i = 0; i < fewer; ++i)
            upper.word[i] = word[words - fewer + i];
        return upper;
    }
};

template <int words>
constexpr Fixed<words> one = [] {
    Fixed<words> number;
    number.word[words - 1] = std::uint64_t{1} << 63;
    return number;
}();

/// The number just below 1 with which a series starts whose other terms lessen it: where they are too small to be seen,
/// a product with it still rounds as if they were there.
template <int words>
constexpr Fixed<words> belowOne = [] {
    Fixed<words> number;
    number.word.fill(UINT64_MAX);
    return number >> 1;
}();

/// a / b for an `a` below 2 b.
template <int words>
Fixed<words> quotientOf(const Fixed<words> &a, const Fixed<words> &b) {
    Fixed<words> rest = a >> 1;
    const Fixed<words> divisor = b >> 1;
    Fixed<words> quotient;
    for (int bit = Fixed<words>::bits - 1; bit >= 0; --bit) {
        if (rest >= divisor) {
            rest = rest - divisor;
            quotient.word[bit / 64] |= std::uint64_t{1} << bit % 64;
        }
        rest = rest.doubled();
    }
    return quotient;
}

/// A fixed number times 2 to the power of an exponent.
template <int words>
struct Scaled {
    Fixed<words> fraction;
    int exponent;

    /// From a mantissa whose highest bit is set and counts 1.
    Scaled(TwoWords mantissa, int power) : exponent(power) {
        fraction.word[words - 1] = static_cast<std::uint64_t>(mantissa >> 64);
        fraction.word[words - 2] = static_cast<std::uint64_t>(mantissa);
    }
    Scaled(const Fixed<words> &number, int power) : fraction(number), exponent(power) {}

    /// The number itself, which is below 2.
    Fixed<words> fixed() const { return exponent > 0 ? fraction : fraction >> -exponent; }

    /// With the highest bit set.
    Scaled normal() const {
        Scaled result = *this;
        while (result.fraction.word[words - 1] == 0 && !result.fraction.isZero()) {
            for (int i = words - 1; i > 0; --i)
                result.fraction.word[i] = result.fraction.word[i - 1];
            result.fraction.word[0] = 0;
            result.exponent -= 64;
        }
        while (result.fraction.word[words - 1] >> 63 == 0 && !result.fraction.isZero()) {
            result.fraction = result.fraction.doubled();
            --result.exponent;
        }
        return result;
    }

    friend Scaled operator*(const Scaled &a, const Fixed<words> &b) { return {a.fraction * b, a.exponent}; }
    friend Scaled operator/(const Scaled &a, const Scaled &b) {
        const Scaled dividend = a.normal();
        const Scaled divisor = b.normal();
        return {quotientOf(dividend.fraction, divisor.fraction), dividend.exponent - divisor.exponent};
    }
};

/// Rounds what `compute`, called for a number of words, returns.
template <class Compute>
SoftWide roundedFrom(Compute compute, bool isNegative) {
    const auto rounded = [isNegative]<int words>(const Scaled<words> &number) {
        TwoWords mantissa = static_cast<TwoWords>(number.fraction.word[words - 1]) << 64;
        mantissa |= number.fraction.word[words - 2];
        for (int i = 0; i < words - 2; ++i)
            mantissa |= number.fraction.word[i] != 0;
        return SoftWide::rounded(mantissa, number.exponent, isNegative);
    };
    const Scaled<2> narrow = compute.template operator()<2>().normal();
    constexpr std::uint64_t doubt = std::uint64_t{1} << Q_MUR_SOFT_WIDE_DOUBT_BITS;
    constexpr std::uint64_t half = std::uint64_t{1} << 63;
    const bool isSubnormal = narrow.exponent <= -SoftWide::bias; // rounded further up
    if (!isSubnormal && narrow.fraction.word[0] - (half - doubt) > 2 * doubt)
        return rounded(narrow);
    return rounded(compute.template operator()<4>().normal());
}

/// The factors of a power series, as many as the width asks for.
template <int words, class FactorOf>
constexpr auto factors(FactorOf factorOf) {
    std::array<Fixed<words>, words == 2 ? 28 : 50> result;
    for (std::size_t k = 0; k < result.size(); ++k)
        result[k] = factorOf(static_cast<std::uint64_t>(k), k == 0 ? Fixed<words>() : result[k - 1]);
    return result;
}

template <int words>
constexpr auto sineFactors = factors<words>([](std::uint64_t k, const Fixed<words> &before) { // 1 / (2 k + 1)!
    return k == 0 ? belowOne<words> : before.dividedBy(2 * k * (2 * k + 1));
});
template <int words>
constexpr auto cosineFactors = factors<words>([](std::uint64_t k, const Fixed<words> &before) { // 1 / (2 k)!
    return k == 0 ? belowOne<words> : before.dividedBy((2 * k - 1) * 2 * k);
});
template <int words>
constexpr auto arcFactors = factors<words>([](std::uint64_t k, const Fixed<words> &) { // 1 / (2 k + 1)
    return k == 0 ? belowOne<words> : one<words>.dividedBy(2 * k + 1);
});
template <int words>
constexpr auto powerFactors = factors<words>([](std::uint64_t k, const Fixed<words> &before) { // 1 / (k + 1)!
    return k == 0 ? one<words> : before.dividedBy(k + 1);
});

/// f0 - f1 x + f2 x^2 - ..., or with `isAdding` the plain sum, by Horner's rule.
template <class Factors, int words>
Fixed<words> seriesOf(const Factors &factors, int count, const Fixed<words> &x, bool isAdding = false) {
    Fixed<words> sum = factors[count - 1];
    for (int k = count - 2; k >= 0; --k)
        sum = isAdding ? factors[k] + sum * x : factors[k] - sum * x;
    return sum;
}

// Pi and the logarithm of 2 are written down to 256 bits, the former as a half and a quarter of it are needed.
constexpr Fixed<4> halfPi = {{0x020BBEA63B139B22, 0x29024E088A67CC74, 0xC4C6628B80DC1CD1, 0xC90FDAA22168C234}};
constexpr Fixed<4> logarithmOf2 = {{0xC5068BADC5D57D15, 0xA079A193394C5B16, 0xE4F1D9CC01F97B57, 0x58B90BFBE8E7BCD5}};

/// An angle less as many quarter turns as leave the least. The rest is exact: the unit's pi has 66 bits, so that both
/// are multiples of 2^-65.
struct Reduced {
    TwoWords rest; // with its highest bit set, unless it is 0
    int exponent;
    bool isNegative;
    unsigned quarters;

    explicit Reduced(SoftWide angle)
        : rest(static_cast<TwoWords>(angle.normalMantissa()) << 64), exponent(angle.normalExponent()),
          isNegative(angle.isNegative()), quarters(0) {
        constexpr TwoWords quarter = static_cast<TwoWords>(3) << 64 | 0x243F6A8885A308D3; // in units of 2^-65
        if (exponent < -1)
            return;
        TwoWords units = static_cast<TwoWords>(angle.normalMantissa()) << (exponent + 2);
        const TwoWords whole = units / quarter + (units % quarter > quarter / 2);
        quarters = static_cast<unsigned>(whole) & 3;
        units -= whole * quarter;
        const bool isBelow = units >> 127 != 0;
        if (isBelow)
            units = -units;
        if (isNegative)
            quarters = -quarters & 3;
        isNegative ^= isBelow;
        const int zeros = leadingZeros(units);
        rest = units << zeros;
        exponent = 62 - zeros;
    }

    template <int words>
    Scaled<words> sine() const {
        const Scaled<words> r(rest, exponent);
        return r * seriesOf(sineFactors<words>, words == 2 ? 18 : 31, r.fixed() * r.fixed());
    }
    template <int words>
    Scaled<words> cosine() const {
        const Scaled<words> r(rest, exponent);
        return {seriesOf(cosineFactors<words>, words == 2 ? 18 : 31, r.fixed() * r.fixed()), 0};
    }
    SoftWide roundedSine(bool reversed) const {
        return roundedFrom([this]<int words>() { return sine<words>(); }, isNegative != reversed);
    }
    SoftWide roundedCosine(bool reversed) const {
        return roundedFrom([this]<int words>() { return cosine<words>(); }, reversed);
    }
};

/// The angles of the slopes 2^-i, from i = 1 on.
constexpr int slopeCount = 8;
constexpr auto slopeAngles = [] {
    std::array<Fixed<4>, slopeCount> angles;
    for (int i = 1; i <= slopeCount; ++i) {
        Fixed<5> sum;
        for (int k = 0; 2 * k * i < Fixed<5>::bits; ++k) {
            const int power = 2 * k + 1;
            const Fixed<5> term = (one<5> >> i * power).dividedBy(static_cast<std::uint64_t>(power));
            sum = k % 2 == 0 ? sum + term : sum - term;
        }
        angles[static_cast<std::size_t>(i - 1)] = sum.cut<4>();
    }
    return angles;
}();

/// The angle of a slope of at most 1, given as a quotient of positive numbers. As long as its tangent is large, the
/// point is turned back by angles whose tangents are powers of 2 (Volder's CORDIC); a short series ends it.
template <int words>
Scaled<words> angleOf(SoftWide rise, SoftWide run) {
    const auto scaled = [](SoftWide number, int exponent) {
        return Scaled<words>(static_cast<TwoWords>(number.normalMantissa()) << 64, exponent);
    };
    const int exponent = rise.normalExponent() - run.normalExponent();
    const auto angleOfSmall = [](const Scaled<words> &slope) {
        const Fixed<words> fixed = slope.fixed();
        return slope * seriesOf(arcFactors<words>, words == 2 ? 10 : 18, fixed * fixed);
    };
    Fixed<words> y = scaled(rise, exponent).fixed() >> 2;
    Fixed<words> x = scaled(run, 0).fixed() >> 2;
    Fixed<words> turned;
    for (int i = 1; i <= slopeCount; ++i)
        if (const Fixed<words> step = x >> i; y >= step) {
            x = x + (y >> i);
            y = y - step;
            turned = turned + slopeAngles[static_cast<std::size_t>(i - 1)].cut<words>();
        }
    if (turned.isZero())
        return angleOfSmall(scaled(rise, exponent) / scaled(run, 0));
    return {turned + angleOfSmall({quotientOf(y, x), 0}).fixed(), 0};
}

} // namespace

SoftSineCosine softSineCosine(SoftWide angle) {
    if (angle.isNotANumber())
        return {angle, angle};
    if (angle.isInfinite())
        return {SoftWide::notANumber(), SoftWide::notANumber()};
    if (angle.isZero())
        return {angle, 1};
    const Reduced reduced(angle);
    const bool pastHalf = reduced.quarters >= 2;
    if (reduced.quarters % 2 == 0)
        return {reduced.roundedSine(pastHalf), reduced.roundedCosine(pastHalf)};
    return {reduced.roundedCosine(pastHalf), reduced.roundedSine(!pastHalf)};
}

SoftWide softTangent(SoftWide angle) {
    if (angle.isNotANumber() || angle.isZero())
        return angle;
    if (angle.isInfinite())
        return SoftWide::notANumber();
    const Reduced reduced(angle);
    const bool isOdd = reduced.quarters % 2 != 0;
    return roundedFrom(
        [&]<int words>() {
            const Scaled<words> sine = reduced.sine<words>();
            const Scaled<words> cosine = reduced.cosine<words>();
            return isOdd ? cosine / sine : sine / cosine;
        },
        reduced.isNegative != isOdd);
}

SoftWide softArcTangent(SoftWide y, SoftWide x) {
    if (y.isNotANumber() || x.isNotANumber())
        return x + y;
    const auto eighths = [&y](int count) { // of the full circle
        return roundedFrom(
            [count]<int words>() {
                Fixed<words> half;
                for (int i = 0; i < count; ++i)
                    half = half + (halfPi.cut<words>() >> 2);
                return Scaled<words>(half, 1);
            },
            y.isNegative());
    };
    if (y.isZero() || (x.isInfinite() && !y.isInfinite()))
        return x.isNegative() ? eighths(4) : y.isNegative() ? -SoftWide(0) : SoftWide(0);
    if (x.isZero() || (y.isInfinite() && !x.isInfinite()))
        return eighths(2);
    if (y.isInfinite())
        return eighths(x.isNegative() ? 3 : 1);
    const bool isSteep = absolute(y) > absolute(x);
    const SoftWide rise = isSteep ? x : y;
    const SoftWide run = isSteep ? y : x;
    return roundedFrom(
        [&]<int words>() {
            const Scaled<words> angle = angleOf<words>(rise, run);
            if (!isSteep && !x.isNegative())
                return angle;
            // Halved, for sums may reach pi.
            const Fixed<words> base = halfPi.cut<words>() >> (isSteep ? 1 : 0);
            const Fixed<words> half = angle.fixed() >> 1;
            return Scaled<words>(isSteep && x.isNegative() ? base + half : base - half, 1);
        },
        y.isNegative());
}

SoftWide softPowerOf2Less1(SoftWide power) {
    if (power.isNotANumber() || power.isZero())
        return power;
    return roundedFrom(
        [power]<int words>() {
            const Scaled<words> mantissa(static_cast<TwoWords>(power.normalMantissa()) << 64, power.normalExponent());
            const Scaled<words> t = mantissa * logarithmOf2.cut<words>();
            return t * seriesOf(powerFactors<words>, words == 2 ? 28 : 50, t.fixed(), !power.isNegative());
        },
        power.isNegative());
}

SoftWide softExponential(SoftWide value) {
    const SoftWide power = value * SoftWide::of(0xB8AA3B295C17F0BC, 0); // log2(e)
    const SoftWide whole = nearestWhole(power);
    const SoftWide scaled = softPowerOf2Less1(power - whole) + 1;
    if (scaled.isNotANumber())
        return scaled;
    constexpr int farthest = 40000; // nothing is left there, or everything too much
    const int exponent = whole < -farthest ? -farthest : whole > farthest ? farthest : truncateToInt(whole);
    return SoftWide::rounded(static_cast<TwoWords>(scaled.normalMantissa()) << 64, scaled.normalExponent() + exponent,
                             false);
}

} // namespace qmur
