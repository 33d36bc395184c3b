#include "base/wide.h"

#include "support/precision.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

namespace {

using namespace qmur;

template <class Real>
void expectTruncation() {
    EXPECT_EQ(truncateToInt(Real(1.75)), 1);
    EXPECT_EQ(truncateToInt(Real(-1.75)), -1);
    EXPECT_EQ(truncateToInt(Real(-0.75)), 0);
    EXPECT_EQ(truncateToInt(Real(0x1p31)), std::numeric_limits<int>::min());
    EXPECT_EQ(truncateToInt(Real(-0x1p31)), std::numeric_limits<int>::min());
    EXPECT_EQ(truncateToInt(Real(0x1p32)), 0);
    EXPECT_EQ(truncateToInt(Real(0x1.8p33)), 0);
    EXPECT_EQ(truncateToInt(Real(0x1.000002p32)), 512);
    EXPECT_EQ(truncateToInt(Real(-0x1.000002p32)), -512);
    EXPECT_EQ(truncateToInt(Real(0x1p62)), 0);
}

TEST(TruncateToInt, cuts_toward_zero_to_64_bits_and_keeps_the_low_32) {
    expectTruncation<float>();
    expectTruncation<double>();
    expectTruncation<Wide>();
    EXPECT_EQ(truncateToInt(4294967301.9), 5);
    EXPECT_EQ(truncateToInt(-4294967301.9), -5);
    EXPECT_EQ(truncateToInt(2147483648.5), std::numeric_limits<int>::min());
}

template <class Real>
void expectNothingOutOfRange() {
    using Limits = std::numeric_limits<Real>;
    for (const Real value : {Real(0x1p63), Real(-0x1p63), Real(0x1.8p64), Real(-0x1.8p80), Limits::max(),
                             Limits::lowest(), Limits::infinity(), -Limits::infinity(), Limits::quiet_NaN()})
        EXPECT_EQ(truncateToInt(value), 0) << static_cast<double>(value);
}

TEST(TruncateToInt, of_what_64_bits_cannot_hold_is_0) {
    expectNothingOutOfRange<float>();
    expectNothingOutOfRange<double>();
    expectNothingOutOfRange<Wide>();
}

#if Q_MUR_TESTS_X87

/// Bits of the mantissa in which `1 + 2^-bits` still differs from 1.
int precisionInBits() {
    return atFullWidth([] {
        volatile Wide one = 1;
        Wide step = 1;
        int bits = 0;
        for (; bits < 80; ++bits, step /= 2) {
            const volatile Wide sum = one + step;
            if (sum == one)
                break;
        }
        return bits;
    });
}

TEST(AtFullWidth, computes_with_64_bits_and_restores_what_it_found) {
    for (const unsigned short word :
         {test::precision24Bits, test::precision53Bits, test::precision64Bits, static_cast<unsigned short>(0x0E7F)}) {
        const test::X87ControlWord host(word);
        EXPECT_EQ(precisionInBits(), 64) << word;
        EXPECT_EQ(test::X87ControlWord::current(), word);
    }
}

TEST(AtFullWidth, floats_come_back_rounded_once) {
    for (const unsigned short word : {test::precision24Bits, test::precision53Bits, test::precision64Bits}) {
        const volatile float close = -0x1p-60F;
        float result;
        double wider;
        {
            const test::X87ControlWord host(word);
            const float difference = close;
            result = atFullWidth([=] { return static_cast<float>((1 + static_cast<Wide>(difference)) - 1); });
            wider = atFullWidth([=] { return static_cast<double>((1 + static_cast<Wide>(difference)) - 1); });
        }
        EXPECT_EQ(result, -0x1p-60F) << word;
        EXPECT_EQ(wider, -0x1p-60) << word;
    }
}

#endif

constexpr Wide pi = 3.14159265358979323846264338327950288L;
constexpr Wide close = 0x1p-60L;

TEST(SineCosine, hit_the_known_points) {
    const struct {
        Wide angle;
        Wide sine;
        Wide cosine;
    } points[] = {{0, 0, 1},
                  {pi / 6, 0.5L, 0.866025403784438646763723170752936183L},
                  {pi / 4, 0.707106781186547524400844362104849039L, 0.707106781186547524400844362104849039L},
                  {pi / 2, 1, 0},
                  {-pi / 2, -1, 0},
                  {1, 0.841470984807896506652502321630298999L, 0.540302305868139717400936607442976603L}};
    for (const auto &point : points) {
        const SineCosine result = sineCosine(point.angle);
        EXPECT_LE(std::abs(result.sine - point.sine), close);
        EXPECT_LE(std::abs(result.cosine - point.cosine), close);
    }
}

TEST(SineCosine, of_angles_beyond_the_instructions_are_still_sines_and_cosines) {
    for (const Wide angle : {0x1p63L, -0x1p63L, 0x1p100L, -0x1p100L}) {
        const SineCosine result = sineCosine(angle);
        EXPECT_LE(std::abs(result.sine * result.sine + result.cosine * result.cosine - 1), close);
        EXPECT_FALSE(std::isnan(tangent(angle)));
    }
}

TEST(Tangent, hits_the_known_points) {
    EXPECT_EQ(tangent(0), 0);
    EXPECT_LE(std::abs(tangent(pi / 4) - 1), close);
    EXPECT_LE(std::abs(tangent(-pi / 4) + 1), close);
    EXPECT_LE(std::abs(tangent(1) - 1.55740772465490223050697480745836017L), close);
}

TEST(ArcTangent, knows_the_quadrant) {
    EXPECT_EQ(arcTangent(0, 1), 0);
    EXPECT_LE(std::abs(arcTangent(1, 1) - pi / 4), close);
    EXPECT_LE(std::abs(arcTangent(1, 0) - pi / 2), close);
    EXPECT_LE(std::abs(arcTangent(1, -1) - 3 * pi / 4), close);
    EXPECT_LE(std::abs(arcTangent(-1, -1) + 3 * pi / 4), close);
    EXPECT_LE(std::abs(arcTangent(-1, 1) + pi / 4), close);
}

TEST(SquareRoot, of_squares_is_exact) {
    for (int i = 0; i < 1000; ++i)
        EXPECT_EQ(squareRoot(Wide(i) * i), i);
}

} // namespace
