#include "base/wide.h"

#include "support/precision.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

namespace {

using namespace qmur;

template <class Real>
void expectTruncation() {
    const std::pair<double, int> truncations[] = {{1.75, 1},
                                                  {-1.75, -1},
                                                  {-0.75, 0},
                                                  {0x1p31, std::numeric_limits<int>::min()},
                                                  {-0x1p31, std::numeric_limits<int>::min()},
                                                  {0x1p32, 0},
                                                  {0x1.8p33, 0},
                                                  {0x1p62, 0},
                                                  {0x1.000002p32, 512},
                                                  {-0x1.000002p32, -512}};
    for (const auto &[value, truncated] : truncations)
        EXPECT_EQ(truncateToInt(static_cast<Real>(value)), truncated) << value;
    using Limits = std::numeric_limits<Real>;
    for (const Real value : {Real(0x1p63), Real(-0x1p63), Real(0x1.8p64), Real(-0x1.8p80), Limits::max(),
                             Limits::lowest(), Limits::infinity(), -Limits::infinity(), Limits::quiet_NaN()})
        EXPECT_EQ(truncateToInt(value), 0) << static_cast<double>(value);
}

TEST(TruncateToInt, cuts_toward_zero_to_64_bits_and_keeps_the_low_32_or_is_0_where_64_cannot_hold_it) {
    expectTruncation<float>();
    expectTruncation<double>();
    expectTruncation<Wide>();
    EXPECT_EQ(truncateToInt(4294967301.9), 5);
    EXPECT_EQ(truncateToInt(-4294967301.9), -5);
    EXPECT_EQ(truncateToInt(2147483648.5), std::numeric_limits<int>::min());
}

#if Q_MUR_TESTS_X87
TEST(AtFullWidth, computes_with_64_bits_rounds_once_and_restores_what_it_found) {
    for (const unsigned short word :
         {test::precision24Bits, test::precision53Bits, test::precision64Bits, static_cast<unsigned short>(0x0E7F)}) {
        const test::X87ControlWord host(word);
        const volatile float close = -0x1p-60F; // 1 and this number need 61 bits
        const volatile float beyond = -0x1p-66F;
        const auto differenceWith = [](float number) { return [=] { return (1 + static_cast<Wide>(number)) - 1; }; };
        EXPECT_EQ(atFullWidth([&] { return static_cast<float>(differenceWith(close)()); }), -0x1p-60F) << word;
        EXPECT_EQ(atFullWidth([&] { return static_cast<double>(differenceWith(close)()); }), -0x1p-60) << word;
        EXPECT_EQ(atFullWidth([&] { return static_cast<double>(differenceWith(beyond)()); }), 0) << word;
        EXPECT_EQ(test::X87ControlWord::current(), word);
    }
}
#endif

constexpr Wide pi = 3.14159265358979323846264338327950288L;

void expectClose(Wide value, Wide expected) {
    EXPECT_LE(std::abs(value - expected), 0x1p-60L) << static_cast<double>(expected);
}

TEST(SineCosine, hit_the_known_points) {
    const Wide points[][3] = {
        {0, 0, 1},
        {pi / 6, 0.5L, 0.866025403784438646763723170752936183L},
        {pi / 4, 0.707106781186547524400844362104849039L, 0.707106781186547524400844362104849039L},
        {pi / 2, 1, 0},
        {-pi / 2, -1, 0},
        {1, 0.841470984807896506652502321630298999L, 0.540302305868139717400936607442976603L}};
    for (const auto &[angle, sine, cosine] : points) {
        expectClose(sineCosine(angle).sine, sine);
        expectClose(sineCosine(angle).cosine, cosine);
    }
    // Beyond the angles of the processor's instructions, too, they are sines and cosines.
    for (const Wide angle : {0x1p63L, -0x1p63L, 0x1p100L, -0x1p100L}) {
        const SineCosine result = sineCosine(angle);
        expectClose(result.sine * result.sine + result.cosine * result.cosine, 1);
        EXPECT_FALSE(std::isnan(tangent(angle)));
    }
}

TEST(Tangent, and_arc_tangent_hit_the_known_points_and_roots_of_squares_are_exact) {
    expectClose(tangent(pi / 4), 1);
    expectClose(tangent(-pi / 4), -1);
    expectClose(tangent(1), 1.55740772465490223050697480745836017L);
    EXPECT_EQ(tangent(0), 0);
    EXPECT_EQ(arcTangent(0, 1), 0);
    expectClose(arcTangent(1, 1), pi / 4);
    expectClose(arcTangent(1, 0), pi / 2);
    expectClose(arcTangent(1, -1), 3 * pi / 4);
    expectClose(arcTangent(-1, -1), -3 * pi / 4);
    expectClose(arcTangent(-1, 1), -pi / 4);
    for (int i = 0; i < 1000; ++i)
        EXPECT_EQ(squareRoot(Wide(i) * i), i);
}

} // namespace
