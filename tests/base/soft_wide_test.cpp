#include "base/soft_wide.h"
#include "base/wide.h"

#include "plain/long_real.h"
#include "support/cases.h"
#include "support/precision.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <limits>
#include <map>
#include <string>
#include <utility>

namespace qmur {

// As doubting_soft_wide.cpp compiles them.
SoftSineCosine doubtingSineCosine(SoftWide angle);
SoftWide doubtingTangent(SoftWide angle);
SoftWide doubtingArcTangent(SoftWide y, SoftWide x);
SoftWide doubtingPowerOf2Less1(SoftWide power);

} // namespace qmur

namespace {

using namespace qmur;

struct Stored {
    std::uint64_t mantissa;
    unsigned exponent;

    explicit Stored(SoftWide value) : mantissa(value.storedMantissa()), exponent(value.storedExponent()) {}
    Stored(std::uint64_t m, unsigned e) : mantissa(m), exponent(e) {}
    bool operator==(const Stored &) const = default;

    std::string text() const {
        char buffer[32];
        std::snprintf(buffer, sizeof buffer, "%04x:%016llx", exponent, static_cast<unsigned long long>(mantissa));
        return buffer;
    }
};

SoftWide numberOf(std::uint64_t mantissa, int exponent, bool isNegative) {
    return SoftWide::rounded(static_cast<TwoWords>(mantissa) << 64, exponent, isNegative);
}

std::uint64_t twoWords(test::Random &random) {
    return static_cast<std::uint64_t>(random.word()) << 32 | random.word();
}

/// Numbers of every size, more often near 1 and at both ends of the range, and with mantissas that make ties likely.
SoftWide anyNumber(test::Random &random) {
    std::uint64_t mantissa = twoWords(random);
    if (random.oneIn(2))
        mantissa &= ~std::uint64_t{0} << random.between(0, 63);
    else if (random.oneIn(8))
        mantissa |= ~std::uint64_t{0} >> random.between(0, 63);
    int exponent = random.between(-40, 40);
    switch (random.between(0, 7)) {
    case 0:
        exponent = random.between(-16445, 16383);
        break;
    case 1:
        exponent = random.between(-16450, -16370);
        break;
    case 2:
        exponent = random.between(16300, 16384);
        break;
    default:
        break;
    }
    const bool isNegative = random.oneIn(2);
    if (random.oneIn(200))
        return isNegative ? -SoftWide(0) : SoftWide(0);
    if (random.oneIn(200))
        return SoftWide::infinity(isNegative);
    if (random.oneIn(200)) // with a payload
        return {std::bit_cast<double>(std::uint64_t{0x7FF8} << 48 | (mantissa >> 13) |
                                      static_cast<std::uint64_t>(isNegative) << 63)};
    return numberOf(mantissa == 0 ? 1 : mantissa, exponent, isNegative);
}

/// A number whose sum or difference with `other` cancels.
SoftWide closeTo(SoftWide other, test::Random &random) {
    if (other.isZero() || other.isInfinite() || other.isNotANumber())
        return other;
    return numberOf(other.normalMantissa() ^ static_cast<std::uint64_t>(random.between(0, 3)),
                    other.normalExponent() + random.between(-1, 1), random.oneIn(2));
}

/// Angles of all sizes below 2^63, and close to multiples of a quarter turn.
SoftWide anyAngle(test::Random &random) {
    const bool isNegative = random.oneIn(2);
    switch (random.between(0, 3)) {
    case 0:
        return numberOf(twoWords(random) | 1, random.between(-70, 62), isNegative);
    case 1: {
        const SoftWide other =
            SoftWide(random.between(1, 1000000)) * SoftWide::of(0xC90FDAA22168C235, random.between(-1, 1));
        const std::uint64_t beside = other.normalMantissa() + static_cast<std::uint64_t>(random.between(0, 4)) - 2;
        return SoftWide::of(beside | 1ULL << 63, other.normalExponent(), isNegative);
    }
    case 2:
        return random.realBetween(-100, 100);
    default:
        return numberOf(twoWords(random) | 1, random.between(-8, 6), isNegative);
    }
}

SoftWide coordinate(test::Random &random) {
    return random.oneIn(2) ? anyNumber(random)
                           : numberOf(twoWords(random) | 1, random.between(-10, 10), random.oneIn(2));
}

SoftWide smallPower(test::Random &random) {
    return numberOf(twoWords(random) | 1, -2 - (random.oneIn(4) ? random.between(0, 90) : random.between(0, 8)),
                    random.oneIn(2));
}

TEST(SoftWide, is_all_zero_bytes_for_0_and_converts_what_the_language_converts) {
    SoftWide zero;
    std::memset(static_cast<void *>(&zero), 0, sizeof zero);
    EXPECT_EQ(Stored(zero), Stored(SoftWide(0)));
    EXPECT_EQ(Stored(SoftWide(1)), Stored(0x8000000000000000, 0x3FFF));
    EXPECT_EQ(Stored(SoftWide(-3)), Stored(0xC000000000000000, 0xC000));
    EXPECT_EQ(Stored(SoftWide(std::numeric_limits<std::uint64_t>::max())), Stored(0xFFFFFFFFFFFFFFFF, 0x403E));
    EXPECT_EQ(Stored(SoftWide(std::numeric_limits<std::int64_t>::min())), Stored(0x8000000000000000, 0xC03E));
    EXPECT_EQ(Stored(SoftWide(0x1p-1074)), Stored(0x8000000000000000, 0x3FFF - 1074));
    EXPECT_EQ(Stored(SoftWide(0.1F)), Stored(0xCCCCCD0000000000, 0x3FFB));
    EXPECT_EQ(static_cast<float>(SoftWide(0x1.000001p0)), 1.0F);                        // a tie goes to the even one
    EXPECT_EQ(static_cast<float>(SoftWide(0x1.000003p0)), 0x1.000004p0F);               // and here up
    EXPECT_EQ(static_cast<double>(SoftWide::of(0xC000000000000000, -1075)), 0x1p-1074); // 0.75 of the least
    EXPECT_EQ(static_cast<double>(SoftWide::of(0x8000000000000000, -1075)), 0.0);       // ties to the even one
    EXPECT_EQ(static_cast<double>(SoftWide::of(0xC000000000000000, -1074)), 0x1p-1073);
    EXPECT_EQ(static_cast<float>(SoftWide::of(0x8000000000000000, -150)), 0.0F);
    EXPECT_EQ(static_cast<float>(SoftWide::of(0xC000000000000000, -149)), 0x1p-148F);
    EXPECT_EQ(static_cast<float>(SoftWide(1e39)), std::numeric_limits<float>::infinity());
    EXPECT_EQ(static_cast<long long>(SoftWide(-1.75)), -1);
    EXPECT_FALSE(SoftWide(std::nan("")) == SoftWide(std::nan("")));
    EXPECT_TRUE(SoftWide(0) == -SoftWide(0));
}

/// The twins' arithmetic, which is a second one, from the bits of the first.
plain::LongReal plainOf(SoftWide value) {
    if (value.isNotANumber())
        return plain::LongReal::noNumber();
    if (value.isInfinite())
        return value.isNegative() ? -HUGE_VAL : HUGE_VAL;
    if (value.isZero())
        return plain::LongReal::rounded(0, 0, value.isNegative());
    return plain::LongReal::rounded(value.normalMantissa(), value.normalExponent() - 63, value.isNegative());
}

void expectPlain(test::Case &c, const char *operation, SoftWide result, const plain::LongReal &expected, SoftWide a,
                 SoftWide b) {
    const plain::LongReal plain = plainOf(result);
    const bool areNone = result.isNotANumber() && !(expected == expected);
    if (!areNone && !(plain == expected && plain.isNegative() == expected.isNegative()))
        c.report(std::string(operation) + " of " + Stored(a).text() + " and " + Stored(b).text() + " is " +
                 Stored(result).text());
}

TEST(SoftWide, computes_what_the_twins_own_arithmetic_computes) {
    test::forEachCaseUnsummed([](test::Case &c) {
        for (int i = 0; i < 20; ++i) {
            const SoftWide a = anyNumber(c.random);
            const SoftWide b = c.random.oneIn(8) ? closeTo(a, c.random) : anyNumber(c.random);
            const plain::LongReal x = plainOf(a);
            const plain::LongReal y = plainOf(b);
            expectPlain(c, "sum", a + b, x + y, a, b);
            expectPlain(c, "difference", a - b, x - y, a, b);
            expectPlain(c, "product", a * b, x * y, a, b);
            expectPlain(c, "quotient", a / b, x / y, a, b);
            expectPlain(c, "root", squareRoot(a), rootOf(x), a, b);
            if (!a.isNotANumber() && // the language's own have payloads, the twins' have none
                (std::bit_cast<std::uint32_t>(static_cast<float>(a)) !=
                     std::bit_cast<std::uint32_t>(static_cast<float>(x)) ||
                 std::bit_cast<std::uint64_t>(static_cast<double>(a)) !=
                     std::bit_cast<std::uint64_t>(static_cast<double>(x))))
                c.report("float or double of " + Stored(a).text());
            if (i == 0 && !a.isInfinite() && !b.isInfinite()) // long divisions are slow
                expectPlain(c, "remainder", remainderOf(a, b), remainderOf(x, y), a, b);
            if ((a < b) != (x < y) || (a > b) != (x > y) || (a <= b) != (x <= y) || (a >= b) != (x >= y) ||
                (a == b) != (x == y) || truncateToInt(a) != truncated(x))
                c.report("comparison of " + Stored(a).text() + " and " + Stored(b).text());
        }
    });
}

struct Functions {
    SoftSineCosine (*sineCosine)(SoftWide angle);
    SoftWide (*tangent)(SoftWide angle);
    SoftWide (*arcTangent)(SoftWide y, SoftWide x);
    SoftWide (*powerOf2Less1)(SoftWide power);
};
// The narrower computation decides nearly all of the former's results and few of the latter's.
constexpr Functions bothWidths[] = {{softSineCosine, softTangent, softArcTangent, softPowerOf2Less1},
                                    {doubtingSineCosine, doubtingTangent, doubtingArcTangent, doubtingPowerOf2Less1}};

/// An arc tangent that is subnormal, or as small as a number can be just before that; at times the quotient is a tie.
std::pair<SoftWide, SoftWide> flatSlope(test::Random &random) {
    const auto mantissa = [&random] {
        return random.oneIn(2) ? twoWords(random) | 1ULL << 63 : ~std::uint64_t{0} << random.between(56, 63);
    };
    return {SoftWide::of(mantissa(), random.between(-16382, -16290), random.oneIn(2)),
            SoftWide::of(mantissa(), random.between(40, 100))};
}

TEST(SoftWide, rounds_functions_as_the_twins_own_arithmetic_does) {
    test::forEachCaseUnsummed([](test::Case &c) {
        const SoftWide angle = c.number == 0 ? SoftWide::of(~std::uint64_t{0}, 62) : anyAngle(c.random); // the largest
        const plain::LongReal x = plainOf(angle);
        auto [a, b] = c.random.oneIn(4) ? flatSlope(c.random) : std::pair(coordinate(c.random), coordinate(c.random));
        if (a.isInfinite() || a.isNotANumber() || b.isInfinite() || b.isNotANumber())
            a = b = 1;
        const SoftWide power = smallPower(c.random);
        for (const Functions &functions : bothWidths) {
            const SoftSineCosine both = functions.sineCosine(angle);
            expectPlain(c, "sine", both.sine, sineBeyond(x, 0), angle, 0);
            expectPlain(c, "cosine", both.cosine, sineBeyond(x, 1), angle, 0);
            expectPlain(c, "tangent", functions.tangent(angle), tangentOf(x), angle, 0);
            expectPlain(c, "arc tangent", functions.arcTangent(a, b), angleOf(plainOf(a), plainOf(b)), a, b);
            expectPlain(c, "power of 2 less 1", functions.powerOf2Less1(power), powerOf2Less1(plainOf(power)), power,
                        0);
        }
    });
}

#if Q_MUR_TESTS_X87

/// Reports what differs, with what it was computed from.
void expectSame(test::Case &c, const char *operation, Stored result, Stored expected, SoftWide a, SoftWide b) {
    if (!(result == expected))
        c.report(std::string(operation) + " of " + Stored(a).text() + " and " + Stored(b).text() + " is " +
                 result.text() + ", not " + expected.text());
}

long double unitOf(SoftWide value) {
    const std::uint64_t mantissa = value.storedMantissa();
    const auto exponent = static_cast<std::uint16_t>(value.storedExponent());
    long double result = 0;
    std::memcpy(&result, &mantissa, sizeof mantissa);
    std::memcpy(reinterpret_cast<char *>(&result) + sizeof mantissa, &exponent, sizeof exponent);
    return result;
}

Stored storedOf(long double value) {
    Stored result(0, 0);
    std::uint16_t exponent;
    std::memcpy(&result.mantissa, &value, sizeof result.mantissa);
    std::memcpy(&exponent, reinterpret_cast<const char *>(&value) + sizeof result.mantissa, sizeof exponent);
    result.exponent = exponent;
    return result;
}

// 20,000 cases are 11 million operations and comparisons, and 3 million calls of functions.

TEST(SoftWide, gives_every_bit_that_the_unit_gives) {
    const test::X87ControlWord full(test::precision64Bits);
    test::forEachCaseUnsummed([](test::Case &c) {
        for (int i = 0; i < 25; ++i) {
            const SoftWide a = anyNumber(c.random);
            const SoftWide b = c.random.oneIn(8) ? closeTo(a, c.random) : anyNumber(c.random);
            const volatile long double x = unitOf(a);
            const volatile long double y = unitOf(b);
            const auto expect = [&](const char *operation, SoftWide result, long double expected) {
                expectSame(c, operation, Stored(result), storedOf(expected), a, b);
            };
            expect("sum", a + b, x + y);
            expect("difference", a - b, x - y);
            expect("product", a * b, x * y);
            expect("quotient", a / b, x / y);
            expect("root", squareRoot(a), [&] {
                long double root = x;
                asm("fsqrt" : "+t"(root));
                return root;
            }());
            expect("whole", nearestWhole(a), [&] {
                long double whole = x;
                asm("frndint" : "+t"(whole));
                return whole;
            }());
            if (!a.isNotANumber() && !b.isNotANumber() && i == 0)
                expect("remainder", remainderOf(a, b), std::fmod(x, y));
            expect("sign", -a, -x);
            expect("magnitude", absolute(a), std::fabs(x));
            const auto asFloat = static_cast<float>(x);
            const auto asDouble = static_cast<double>(x);
            if (std::bit_cast<std::uint32_t>(static_cast<float>(a)) != std::bit_cast<std::uint32_t>(asFloat) ||
                std::bit_cast<std::uint64_t>(static_cast<double>(a)) != std::bit_cast<std::uint64_t>(asDouble))
                c.report("float or double of " + Stored(a).text());
            expect("float", asFloat, asFloat);
            expect("double", asDouble, asDouble);
            long long whole;
            asm("fisttpll %0" : "=m"(whole) : "t"(static_cast<long double>(x)) : "st");
            if (whole != static_cast<long long>(a))
                c.report("whole of " + Stored(a).text());
            expect("long long", whole, static_cast<long double>(whole));
            expect("unsigned long long", static_cast<unsigned long long>(whole),
                   static_cast<long double>(static_cast<unsigned long long>(whole)));
            expect("int", static_cast<int>(whole), static_cast<long double>(static_cast<int>(whole)));
            if ((a < b) != (x < y) || (a > b) != (x > y) || (a <= b) != (x <= y) || (a >= b) != (x >= y) ||
                (a == b) != (x == y) || (a != b) != (x != y))
                c.report("comparison of " + Stored(a).text() + " and " + Stored(b).text());
        }
    });
}

/// How often the unit's last bit differs from the rounded one.
class LastBits {
public:
    void compare(test::Case &c, const char *function, SoftWide result, long double expected, SoftWide a, SoftWide b) {
        Count &count = counts[function];
        ++count.all;
        const Stored ours(result);
        const Stored theirs = storedOf(expected);
        if (ours == theirs)
            return;
        ++count.differing;
        // As 80 bits, so that neighbours are neighbours across powers of 2 as well.
        const auto distance = (static_cast<__int128_t>(ours.exponent) << 63 | (ours.mantissa & (~0ULL >> 1))) -
                              (static_cast<__int128_t>(theirs.exponent) << 63 | (theirs.mantissa & (~0ULL >> 1)));
        if (distance < -1 || distance > 1)
            expectSame(c, function, ours, theirs, a, b);
    }

    void print() const {
        for (const auto &[function, count] : counts) {
            std::printf("%s: the last bit differs in %lld of %lld\n", function, count.differing, count.all);
            testing::Test::RecordProperty(function,
                                          std::to_string(count.differing) + " of " + std::to_string(count.all));
        }
    }

private:
    struct Count {
        long long all;
        long long differing;
    };
    std::map<const char *, Count> counts;
};

TEST(SoftWide, differs_from_the_units_functions_in_the_last_bit_at_most) {
    const test::X87ControlWord full(test::precision64Bits);
    LastBits lastBits;
    test::forEachCaseUnsummed([&](test::Case &c) {
        for (int i = 0; i < 25; ++i) {
            const SoftWide angle = anyAngle(c.random);
            const long double x = unitOf(angle);
            long double sine;
            long double cosine;
            long double tangent;
            long double one;
            asm("fsincos" : "=t"(cosine), "=u"(sine) : "0"(x));
            asm("fptan" : "=t"(one), "=u"(tangent) : "0"(x));
            const SoftSineCosine both = softSineCosine(angle);
            lastBits.compare(c, "sine", both.sine, sine, angle, 0);
            lastBits.compare(c, "cosine", both.cosine, cosine, angle, 0);
            lastBits.compare(c, "tangent", softTangent(angle), tangent, angle, 0);
            const SoftWide a = coordinate(c.random);
            const SoftWide b = coordinate(c.random);
            long double arc;
            asm("fpatan" : "=t"(arc) : "0"(unitOf(b)), "u"(unitOf(a)) : "st(1)");
            lastBits.compare(c, "arc tangent", softArcTangent(a, b), arc, a, b);
            const SoftWide power = smallPower(c.random);
            long double less1;
            asm("f2xm1" : "=t"(less1) : "0"(unitOf(power)));
            lastBits.compare(c, "power of 2 less 1", softPowerOf2Less1(power), less1, power, 0);
#if Q_MUR_X87
            const SoftWide exponent = -SoftWide(c.random.between(0, 1 << 20)) / c.random.between(100, 100000);
            lastBits.compare(c, "exponential", softExponential(exponent), exponential(unitOf(exponent)), exponent, 0);
#endif
        }
    });
    lastBits.print();
}

TEST(SoftWide, reduces_angles_by_the_units_pi) {
    const test::X87ControlWord full(test::precision64Bits);
    test::forEachCaseUnsummed([](test::Case &c) {
        for (int i = 0; i < 25; ++i) {
            // A multiple of pi, rounded: next to nothing is left of most, and all of it comes from the pi.
            const SoftWide angle = SoftWide(c.random.between(1, 1 << 30)) * SoftWide::of(0xC90FDAA22168C235, 1);
            long double sine = unitOf(angle);
            asm("fsin" : "+t"(sine));
            expectSame(c, "sine", Stored(softSineCosine(angle).sine), storedOf(sine), angle, 0);
        }
    });
}

#endif

} // namespace
