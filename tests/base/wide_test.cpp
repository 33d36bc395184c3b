#include "base/wide.h"
#include "support/numbers.h"

#include <q_Mur.h>

#include "support/precision.h"

#include <gtest/gtest.h>

#include <cfenv>
#include <cstdint>
#include <limits>
#include <type_traits>
#include <vector>

namespace {

using test::leastInt;
using namespace qmur;

template <class Real>
void expectTruncation() {
    const std::pair<double, int> truncations[] = {
        {1.75, 1},   {-1.75, -1},   {-0.75, 0},  {0x1p31, leastInt},   {-0x1p31, leastInt},
        {0x1p32, 0}, {0x1.8p33, 0}, {0x1p62, 0}, {0x1.000002p32, 512}, {-0x1.000002p32, -512}};
    for (const auto &[value, truncated] : truncations)
        EXPECT_EQ(truncateToInt(static_cast<Real>(value)), truncated) << value;
    using Limits = std::numeric_limits<std::conditional_t<std::is_floating_point_v<Real>, Real, double>>;
    for (const Real value :
         {Real(0x1p63), Real(-0x1p63), Real(0x1.8p64), Real(-0x1.8p80), Real(Limits::max()), Real(Limits::lowest()),
          Real(Limits::infinity()), Real(-Limits::infinity()), Real(Limits::quiet_NaN())})
        EXPECT_EQ(truncateToInt(value), 0) << static_cast<double>(value);
}

TEST(TruncateToInt, cuts_toward_zero_to_64_bits_and_keeps_the_low_32_or_is_0_where_64_cannot_hold_it) {
    expectTruncation<float>();
    expectTruncation<double>();
    expectTruncation<Wide>();
    EXPECT_EQ(truncateToInt(4294967301.9), 5);
    EXPECT_EQ(truncateToInt(-4294967301.9), -5);
    EXPECT_EQ(truncateToInt(2147483648.5), leastInt);
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

#if defined(FE_DOWNWARD) // where a processor has another
TEST(AtFullWidth, draws_the_same_under_every_rounding_of_the_host) {
    constexpr int side = 80;
    std::vector<q_ulong> picture(side * side);
    for (int i = 0; i < side * side; ++i)
        picture[static_cast<std::size_t>(i)] = static_cast<q_ulong>(i);
    const auto drawn = [&picture](int rounding) {
        std::vector<q_ulong> bubble(side * side);
        std::vector<q_ulong> shape(side * side);
        for (int i = 0; i < side * side; ++i)
            shape[static_cast<std::size_t>(i)] =
                (i % side - 40) * (i % side - 40) + (i / side - 40) * (i / side - 40) < 1400;
        tagRECT rect = {0, 0, side, side};
        std::fesetround(rounding);
        for (int size = 20; size <= side; size += 3)
            MakeBubbleResource(bubble.data() + (side - size) * (side + 1), side, 0, 0, size, 1);
        std::vector<q_ulong> mapped(side * side * 40);
        for (int i = 0; i < 40; ++i)
            iBilinearMapping(mapped.data() + side * side * i, picture.data(), side, side, side, i, side, side - i,
                             i / 2, 0, i / 3, side, side - i);
        ConvertBlock2LightInfom(shape.data(), &rect, side, 64, 40, 0, 1000000);
        std::fesetround(FE_TONEAREST);
        bubble.insert(bubble.end(), shape.begin(), shape.end());
        bubble.insert(bubble.end(), mapped.begin(), mapped.end());
        return bubble;
    };
    const std::vector<q_ulong> expected = drawn(FE_TONEAREST);
    for (const int rounding : {FE_DOWNWARD, FE_UPWARD, FE_TOWARDZERO})
        EXPECT_EQ(drawn(rounding), expected) << rounding;
}
#endif

} // namespace
