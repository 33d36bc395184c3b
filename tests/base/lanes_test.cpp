#include "lane_samples.h"

#include <cmath>

namespace {

using namespace lanes;

template <class Pixels>
class Lanes : public testing::Test {};

/// Every kind of lanes in use: 16 bytes and what the target takes at once, and scalar twins.
using Kinds = testing::Types<Numbers<4>, Pixels, scalar::Lanes<std::uint32_t, 4>, scalar::Lanes<std::uint32_t, 8>>;
TYPED_TEST_SUITE(Lanes, Kinds);

template <class Kind, class Number>
void checkArithmetic() {
    using Wide = unsigned long long;
    forEachSample<typename LanesOf<Kind>::template Same<Number>>([](const auto &a, const auto &b,
                                                                    test::Random &random) {
        const auto expect = [&](auto lanes, auto operation) {
            ASSERT_EQ(stored(lanes), naive<Number>(std::size(a.numbers),
                                                   [&](int i) { return operation(Wide{a.numbers[i]}, b.numbers[i]); }));
        };
        expect(a.lanes + b.lanes, [](Wide x, Wide y) { return x + y; });
        expect(a.lanes - b.lanes, [](Wide x, Wide y) { return x - y; });
        expect(a.lanes & b.lanes, [](Wide x, Wide y) { return x & y; });
        if constexpr (sizeof(Number) > 1) {
            const int bits = random.between(0, sizeof(Number) * 8 - 1);
            expect(a.lanes * b.lanes, [](Wide x, Wide y) { return x * y; });
            expect(a.lanes >> bits, [bits](Wide x, Wide) { return x >> bits; });
        }
    });
}

TYPED_TEST(Lanes, sums_and_products_wrap_and_shifts_bring_in_zeros) {
    checkArithmetic<TypeParam, std::uint8_t>();
    checkArithmetic<TypeParam, std::uint16_t>();
    checkArithmetic<TypeParam, std::uint32_t>();
}

template <class Kind, class Number>
void checkMoves() {
    using Tested = typename LanesOf<Kind>::template Same<Number>;
    static constexpr int bytes = LanesOf<Kind>::bytes;
    static constexpr int count = bytes / static_cast<int>(sizeof(Number));
    forEachSample<Tested>([](const auto &a, const auto &, test::Random &random) {
        const auto number = numberFrom<Number>(random);
        const auto expect = [](Tested lanes, auto numberOf) {
            ASSERT_EQ(stored(lanes), naive<Number>(count, numberOf));
        };
        expect(Tested::all(number), [&](int) { return number; });
        expect(Tested::front(number), [&](int i) { return i == 0 ? number : 0; });
        expect(withLane<2>(a.lanes, number), [&](int i) { return i == 2 ? number : a.numbers[i]; });
        expect(broadcast<0>(a.lanes), [&](int) { return a.numbers[0]; });
        expect(broadcast<3>(a.lanes), [&](int) { return a.numbers[3]; });
        expect(fourthInFours(a.lanes), [&](int i) { return a.numbers[i / 4 * 4 + 3]; });
        if constexpr (bytes == 16)
            expect(swappedHalves(a.lanes), [&](int i) { return a.numbers[(i + count / 2) % count]; });
        for (int lane = 0; lane < count; ++lane)
            ASSERT_EQ(a.lanes[lane], a.numbers[lane]);
        // Memory of any alignment, and nothing beyond.
        const auto at = static_cast<std::size_t>(random.between(1, 7));
        std::vector<unsigned char> memory(bytes + 9, 0xA5);
        std::vector<unsigned char> expected = memory;
        std::memcpy(&expected[at], a.numbers, 8);
        a.lanes.storeEightBytes(&memory[at]);
        ASSERT_EQ(memory, expected);
        std::memcpy(&expected[at], a.numbers, bytes);
        a.lanes.store(&memory[at]);
        ASSERT_EQ(memory, expected);
        expect(Tested::load(&memory[at]), [&](int i) { return a.numbers[i]; });
        expect(Tested::loadEightBytes(&memory[at]),
               [&](int i) { return i < static_cast<int>(8 / sizeof(Number)) ? a.numbers[i] : 0; });
    });
}

TYPED_TEST(Lanes, are_loaded_stored_and_moved_about) {
    checkMoves<TypeParam, std::uint8_t>();
    checkMoves<TypeParam, std::uint16_t>();
    checkMoves<TypeParam, std::uint32_t>();
}

TYPED_TEST(Lanes, are_listed_in_their_order) {
    using Four = typename LanesOf<TypeParam>::template Same<std::uint32_t>;
    if constexpr (LanesOf<TypeParam>::bytes == 16) {
        EXPECT_EQ(stored(Four::of(1, -2, 3U, 0x80000000)), (std::vector<std::uint32_t>{1, 0xFFFFFFFE, 3, 0x80000000}));
    }
}

TYPED_TEST(Lanes, of_another_width_are_the_same_bytes) {
    forEachSample<TypeParam>([](const auto &a, const auto &, test::Random &) {
        const auto bytesOf = [&](int i) { return a.numbers[i / 4] >> i % 4 * 8; };
        const auto wordsOf = [&](int i) { return a.numbers[i / 2] >> i % 2 * 16; };
        ASSERT_EQ(stored(as<std::uint8_t>(a.lanes)), naive<std::uint8_t>(sizeof(a.lanes), bytesOf));
        ASSERT_EQ(stored(as<std::uint16_t>(a.lanes)), naive<std::uint16_t>(sizeof(a.lanes) / 2, wordsOf));
        ASSERT_EQ(stored(as<std::uint32_t>(as<std::uint8_t>(a.lanes))), stored(a.lanes));
    });
}

TYPED_TEST(Lanes, are_selected_where_others_are_equal) {
    forEachSample<TypeParam>([](const auto &a, const auto &b, test::Random &random) {
        std::vector<std::uint32_t> c = stored(b.lanes);
        std::vector<std::uint32_t> expected;
        for (std::size_t i = 0; i < c.size(); ++i) {
            c[i] = random.oneIn(2) ? a.numbers[i] : c[i];
            expected.push_back(c[i] == a.numbers[i] ? b.numbers[i] : a.numbers[i]);
        }
        ASSERT_EQ(stored(selectEqual(a.lanes, TypeParam::load(c.data()), b.lanes, a.lanes)), expected);
    });
}

TYPED_TEST(Lanes, taken_as_signed_numbers_round_down_and_say_which_are_negative) {
    forEachSample<TypeParam>([](const auto &a, const auto &, test::Random &random) {
        const int bits = random.between(0, 31);
        // Rounded down by a division with a remainder that is never negative.
        const auto floored = [bits](long long number) {
            const long long divisor = 1LL << bits;
            const long long remainder = (number % divisor + divisor) % divisor;
            return (number - remainder) / divisor;
        };
        ASSERT_EQ(stored(shiftedSigned(a.lanes, bits)),
                  naive<std::uint32_t>(std::size(a.numbers), [&](int i) { return floored(asSigned(a.numbers[i])); }));
        if constexpr (LanesOf<TypeParam>::bytes == 16) {
            unsigned expected = 0;
            for (int i = 0; i < 4; ++i)
                expected += asSigned(a.numbers[i]) < 0 ? 1U << i : 0;
            ASSERT_EQ(negativeLanes(a.lanes), expected);
        }
    });
}

TYPED_TEST(Lanes, saturating_sums_of_bytes_end_at_255) {
    using Bytes = typename LanesOf<TypeParam>::template Same<std::uint8_t>;
    forEachSample<Bytes>([](const auto &a, const auto &b, test::Random &) {
        ASSERT_EQ(stored(saturatingSum(a.lanes, b.lanes)), naive<std::uint8_t>(sizeof(Bytes), [&](int i) {
                      return std::min(a.numbers[i] + b.numbers[i], 255);
                  }));
    });
}

/// Widened and narrowed within each 16 bytes: the lower and the upper 8 of them go to different results.
template <class Wider, class Narrow>
void checkWidths(int least, int most) {
    using Number = std::remove_cvref_t<decltype(Narrow()[0])>;
    using WideNumber = std::remove_cvref_t<decltype(Wider()[0])>;
    constexpr int half = 8 / static_cast<int>(sizeof(Number));
    constexpr int count = static_cast<int>(sizeof(Narrow) / sizeof(Number));
    forEachSample<Narrow>([=](const auto &a, const auto &, test::Random &random) {
        std::vector<WideNumber> low;
        std::vector<WideNumber> high;
        for (int i = 0; i < count; ++i)
            (i / half % 2 == 0 ? low : high).push_back(a.numbers[i]);
        ASSERT_EQ(stored(widenedLow(a.lanes)), low);
        ASSERT_EQ(stored(widenedHigh(a.lanes)), high);

        const Sample<Wider> b(random);
        const Sample<Wider> c(random);
        std::vector<Number> held;
        for (int block = 0; block < count; block += 2 * half)
            for (const auto &part : {b, c})
                for (int i = 0; i < half; ++i) {
                    const long long number = asSigned(part.numbers[block / 2 + i]);
                    held.push_back(static_cast<Number>(std::clamp<long long>(number, least, most)));
                }
        ASSERT_EQ(stored(narrowed(b.lanes, c.lanes)), held);
    });
}

TYPED_TEST(Lanes, are_widened_and_narrowed_within_each_16_bytes) {
    using Of = LanesOf<TypeParam>;
    checkWidths<typename Of::template Same<std::uint16_t>, typename Of::template Same<std::uint8_t>>(0, 255);
    checkWidths<typename Of::template Same<std::uint32_t>, typename Of::template Same<std::uint16_t>>(-32768, 32767);
}

template <class Doubles>
class LanesOfDoubles : public testing::Test {};

using KindsOfDoubles =
    testing::Types<Doubles, scalar::Lanes<double, 2>, scalar::Lanes<double, 4>, scalar::Lanes<double, 8>>;
TYPED_TEST_SUITE(LanesOfDoubles, KindsOfDoubles);

/// What `numberOf(lane)` gives for each lane; one not-a-number is as good as another.
template <class Lanes, class NumberOf>
void expectDoubles(Lanes lanes, NumberOf numberOf) {
    const std::vector<double> numbers = stored(lanes);
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        const double expected = numberOf(i);
        ASSERT_TRUE(std::isnan(expected) ? std::isnan(numbers[i])
                                         : numbers[i] == expected && std::signbit(numbers[i]) == std::signbit(expected))
            << numbers[i] << " in place of " << expected;
    }
}

TYPED_TEST(LanesOfDoubles, are_computed_each_as_one_number_is) {
    forEachSample<TypeParam>([](const auto &a, const auto &b, test::Random &random) {
        const Sample<TypeParam> c(random);
        const auto &x = a.numbers;
        const auto &y = b.numbers;
        expectDoubles(TypeParam::all(x[0]), [&](std::size_t) { return x[0]; });
        expectDoubles(a.lanes + b.lanes, [&](std::size_t i) { return x[i] + y[i]; });
        expectDoubles(a.lanes - b.lanes, [&](std::size_t i) { return x[i] - y[i]; });
        expectDoubles(a.lanes * b.lanes, [&](std::size_t i) { return x[i] * y[i]; });
        expectDoubles(a.lanes / b.lanes, [&](std::size_t i) { return x[i] / y[i]; });
        expectDoubles(squareRoot(a.lanes), [&](std::size_t i) { return std::sqrt(x[i]); });
        expectDoubles(selectBelow(a.lanes, b.lanes, c.lanes, a.lanes),
                      [&](std::size_t i) { return x[i] < y[i] ? c.numbers[i] : x[i]; });
    });
}

template <class Numbers>
class ScaledLanes : public testing::Test {};

using ScaledKinds = testing::Types<Numbers<4>, scalar::Lanes<std::uint32_t, 4>>;
TYPED_TEST_SUITE(ScaledLanes, ScaledKinds);

TYPED_TEST(ScaledLanes, are_moved_away_from_0_by_a_half_and_cut_toward_zero) {
    forEachSeed([](test::Random &random) {
        const Sample<TypeParam> a(random);
        const long long numerator = random.between(-0xFFFFF, 0xFFFFF);
        const int bits = random.between(0, 31);
        const auto scaled = [&](int i) {
            const long long number = asSigned(a.numbers[i]);
            const long long result = (2 * number + (number < 0 ? -1 : 1)) * numerator / (2LL << bits);
            return result < -0x80000000LL || result > 0x7FFFFFFF ? -0x80000000LL : result;
        };
        const double factor = static_cast<double>(numerator) / static_cast<double>(1ULL << bits);
        ASSERT_EQ(stored(scaledTowardZero(a.lanes, factor)), naive<std::uint32_t>(4, scaled));
    });
}

TYPED_TEST(ScaledLanes, that_32_bits_cannot_hold_are_the_least_number) {
    const auto numbers = TypeParam::of(1U, ~0U, 0x7FFFFFFFU, 0x80000000U);
    const auto scaled = [&numbers](double factor) { return stored(scaledTowardZero(numbers, factor)); };
    using Expected = std::vector<std::uint32_t>;
    EXPECT_EQ(scaled(1), Expected({1, ~0U, 0x7FFFFFFF, 0x80000000}));
    EXPECT_EQ(scaled(-1), Expected({~0U, 1, 0x80000001, 0x80000000}));
    EXPECT_EQ(scaled(2), Expected({3, ~0U - 2, 0x80000000, 0x80000000}));
    EXPECT_EQ(scaled(0x1p31), Expected(4, 0x80000000));
    EXPECT_EQ(scaled(0x1p62), Expected(4, 0x80000000)); // 1.5 * 2^62 fits 64 bits and ends in zeros
    EXPECT_EQ(scaled(1e300), Expected(4, 0x80000000));
    EXPECT_EQ(scaled(0), Expected(4, 0));
    constexpr double infinity = std::numeric_limits<double>::infinity();
    for (const double factor : {infinity, -infinity, std::numeric_limits<double>::quiet_NaN()})
        EXPECT_EQ(scaled(factor), Expected(4, 0x80000000));
}

} // namespace
