#include "base/lanes.h"

#include "support/random.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <type_traits>
#include <vector>

namespace {

using namespace qmur;

/// Numbers with many at the ends of their range.
template <class Number>
Number numberFrom(test::Random &random) {
    constexpr auto half = static_cast<Number>(Number{1} << (sizeof(Number) * 8 - 1));
    constexpr Number ends[] = {0, 1, 127, 128, 255, half - 1, half, half + 1, static_cast<Number>(~Number{0})};
    return random.oneIn(3) ? ends[random.between(0, 8)] : static_cast<Number>(random.word());
}

/// A set of lanes and the numbers that it was loaded from.
template <class Lanes>
struct Sample;

template <template <class, int> class Lanes, class Number, int count>
struct Sample<Lanes<Number, count>> {
    Number numbers[count];
    Lanes<Number, count> lanes;

    explicit Sample(test::Random &random) {
        for (Number &number : numbers)
            number = numberFrom<Number>(random);
        lanes = Lanes<Number, count>::load(numbers);
    }
};

/// The numbers in `lanes`, by way of memory.
template <template <class, int> class Lanes, class Number, int count>
std::vector<Number> stored(Lanes<Number, count> lanes) {
    std::vector<Number> numbers(count);
    lanes.store(numbers.data());
    return numbers;
}

/// What `numberOf(lane)` gives for each lane.
template <class Number, class NumberOf>
std::vector<Number> naive(int count, NumberOf numberOf) {
    std::vector<Number> numbers;
    for (int lane = 0; lane < count; ++lane)
        numbers.push_back(static_cast<Number>(numberOf(lane)));
    return numbers;
}

/// A number as its own width's signed number.
template <class Number>
long long asSigned(Number number) {
    return static_cast<std::make_signed_t<Number>>(number);
}

/// Calls `check(random)` for many seeds.
template <class Check>
void forEachSeed(Check check) {
    for (std::uint64_t seed = 0; seed < 2000; ++seed) {
        SCOPED_TRACE(seed);
        test::Random random(seed);
        check(random);
        if (testing::Test::HasFatalFailure())
            return;
    }
}

/// Every kind of lanes in use: 16 bytes and what the target takes at once, and scalar twins.
template <class Lanes>
struct LanesOf;
template <template <class, int> class LanesTemplate, class Number, int lanes>
struct LanesOf<LanesTemplate<Number, lanes>> {
    static constexpr int bytes = lanes * static_cast<int>(sizeof(Number));
    template <class Of>
    using Same = LanesTemplate<Of, bytes / static_cast<int>(sizeof(Of))>;
};

template <class Pixels>
class Lanes : public testing::Test {};

using Kinds = testing::Types<Numbers<4>, Pixels, scalar::Lanes<std::uint32_t, 4>, scalar::Lanes<std::uint32_t, 8>>;
TYPED_TEST_SUITE(Lanes, Kinds);

template <class Kind, class Number>
void checkArithmetic() {
    using Tested = typename LanesOf<Kind>::template Same<Number>;
    constexpr int count = LanesOf<Kind>::bytes / static_cast<int>(sizeof(Number));
    using Wide = unsigned long long;
    forEachSeed([](test::Random &random) {
        const Sample<Tested> a(random);
        const Sample<Tested> b(random);
        const auto expected = [](auto numberOf) { return naive<Number>(count, numberOf); };
        ASSERT_EQ(stored(a.lanes + b.lanes), expected([&](int i) { return Wide{a.numbers[i]} + b.numbers[i]; }));
        ASSERT_EQ(stored(a.lanes - b.lanes), expected([&](int i) { return Wide{a.numbers[i]} - b.numbers[i]; }));
        ASSERT_EQ(stored(a.lanes & b.lanes), expected([&](int i) { return a.numbers[i] & b.numbers[i]; }));
        if constexpr (sizeof(Number) > 1) {
            const int bits = random.between(0, sizeof(Number) * 8 - 1);
            ASSERT_EQ(stored(a.lanes * b.lanes), expected([&](int i) { return Wide{a.numbers[i]} * b.numbers[i]; }));
            ASSERT_EQ(stored(a.lanes >> bits), expected([&](int i) { return a.numbers[i] >> bits; }));
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
    constexpr int bytes = LanesOf<Kind>::bytes;
    constexpr int count = bytes / static_cast<int>(sizeof(Number));
    forEachSeed([](test::Random &random) {
        const Sample<Tested> a(random);
        const auto number = numberFrom<Number>(random);
        const auto expected = [](auto numberOf) { return naive<Number>(count, numberOf); };
        ASSERT_EQ(stored(Tested::all(number)), expected([&](int) { return number; }));
        ASSERT_EQ(stored(Tested::front(number)), expected([&](int i) { return i == 0 ? number : 0; }));
        ASSERT_EQ(stored(a.lanes), expected([&](int i) { return a.numbers[i]; }));
        for (int lane = 0; lane < count; ++lane)
            ASSERT_EQ(a.lanes[lane], a.numbers[lane]);
        ASSERT_EQ(stored(withLane<2>(a.lanes, number)),
                  expected([&](int i) { return i == 2 ? number : a.numbers[i]; }));
        ASSERT_EQ(stored(broadcast<0>(a.lanes)), expected([&](int) { return a.numbers[0]; }));
        ASSERT_EQ(stored(broadcast<3>(a.lanes)), expected([&](int) { return a.numbers[3]; }));
        ASSERT_EQ(stored(fourthInFours(a.lanes)), expected([&](int i) { return a.numbers[i / 4 * 4 + 3]; }));
        if constexpr (bytes == 16) {
            ASSERT_EQ(stored(swappedHalves(a.lanes)), expected([&](int i) {
                          return i < count / 2 ? a.numbers[i + count / 2] : a.numbers[i - count / 2];
                      }));
        }
        // Memory of any alignment, and nothing beyond.
        unsigned char memory[bytes + 9];
        std::memset(memory, 0xA5, sizeof(memory));
        const int offset = random.between(1, 7);
        a.lanes.store(memory + offset);
        for (int i = 0; i < bytes + 9; ++i) {
            if (i < offset || i >= offset + bytes) {
                ASSERT_EQ(memory[i], 0xA5) << i;
            }
        }
        ASSERT_EQ(std::memcmp(memory + offset, a.numbers, bytes), 0);
        ASSERT_EQ(stored(Tested::load(memory + offset)), stored(a.lanes));
        ASSERT_EQ(stored(Tested::loadEightBytes(memory + offset)),
                  expected([&](int i) { return i < static_cast<int>(8 / sizeof(Number)) ? a.numbers[i] : 0; }));
        std::memset(memory, 0xA5, sizeof(memory));
        a.lanes.storeEightBytes(memory + offset);
        ASSERT_EQ(std::memcmp(memory + offset, a.numbers, 8), 0);
        ASSERT_EQ(memory[offset - 1], 0xA5);
        ASSERT_EQ(memory[offset + 8], 0xA5);
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
    forEachSeed([](test::Random &random) {
        const Sample<TypeParam> a(random);
        const auto bytesOf = [&](int i) { return a.numbers[i / 4] >> i % 4 * 8; };
        const auto wordsOf = [&](int i) { return a.numbers[i / 2] >> i % 2 * 16; };
        ASSERT_EQ(stored(as<std::uint8_t>(a.lanes)), naive<std::uint8_t>(sizeof(a.lanes), bytesOf));
        ASSERT_EQ(stored(as<std::uint16_t>(a.lanes)), naive<std::uint16_t>(sizeof(a.lanes) / 2, wordsOf));
        ASSERT_EQ(stored(as<std::uint32_t>(as<std::uint8_t>(a.lanes))), stored(a.lanes));
    });
}

TYPED_TEST(Lanes, are_selected_where_others_are_equal) {
    forEachSeed([](test::Random &random) {
        const Sample<TypeParam> a(random);
        const Sample<TypeParam> b(random);
        Sample<TypeParam> c(random);
        for (std::size_t i = 0; i < std::size(c.numbers); ++i) {
            if (random.oneIn(2))
                c.numbers[i] = a.numbers[i];
        }
        c.lanes = TypeParam::load(c.numbers);
        ASSERT_EQ(stored(selectEqual(a.lanes, c.lanes, b.lanes, a.lanes)),
                  naive<std::uint32_t>(std::size(c.numbers), [&](int i) {
                      return a.numbers[i] == c.numbers[i] ? b.numbers[i] : a.numbers[i];
                  }));
    });
}

TYPED_TEST(Lanes, shifted_as_signed_numbers_round_down) {
    forEachSeed([](test::Random &random) {
        const Sample<TypeParam> a(random);
        const int bits = random.between(0, 31);
        // Rounded down by a division with a remainder that is never negative.
        const auto floored = [bits](long long number) {
            const long long divisor = 1LL << bits;
            const long long remainder = (number % divisor + divisor) % divisor;
            return (number - remainder) / divisor;
        };
        ASSERT_EQ(stored(shiftedSigned(a.lanes, bits)),
                  naive<std::uint32_t>(std::size(a.numbers), [&](int i) { return floored(asSigned(a.numbers[i])); }));
    });
}

TYPED_TEST(Lanes, say_which_are_negative) {
    if constexpr (LanesOf<TypeParam>::bytes == 16) {
        forEachSeed([](test::Random &random) {
            const Sample<TypeParam> a(random);
            unsigned expected = 0;
            for (int i = 0; i < 4; ++i)
                expected += asSigned(a.numbers[i]) < 0 ? 1U << i : 0;
            ASSERT_EQ(negativeLanes(a.lanes), expected);
        });
    }
}

TYPED_TEST(Lanes, saturating_sums_of_bytes_end_at_255) {
    using Bytes = typename LanesOf<TypeParam>::template Same<std::uint8_t>;
    for (int a = 0; a < 256; ++a)
        for (int b = 0; b < 256; ++b) {
            const Bytes sum =
                saturatingSum(Bytes::all(static_cast<std::uint8_t>(a)), Bytes::all(static_cast<std::uint8_t>(b)));
            ASSERT_EQ(stored(sum), naive<std::uint8_t>(sizeof(Bytes), [&](int) { return std::min(a + b, 255); }));
        }
    forEachSeed([](test::Random &random) {
        const Sample<Bytes> a(random);
        const Sample<Bytes> b(random);
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
    forEachSeed([=](test::Random &random) {
        const Sample<Narrow> a(random);
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

template <class Pixels>
class SpanLanes : public testing::Test {};

using SpanKinds = testing::Types<Numbers<4>, Pixels, SpanPixels, OnePixel, scalar::Lanes<std::uint32_t, 4>>;
TYPED_TEST_SUITE(SpanLanes, SpanKinds);

TYPED_TEST(SpanLanes, are_joined_shifted_up_counted_and_capped) {
    forEachSeed([](test::Random &random) {
        const Sample<TypeParam> a(random);
        const Sample<TypeParam> b(random);
        const int bits = random.between(0, 31);
        const auto expected = [&](auto numberOf) { return naive<std::uint32_t>(std::size(a.numbers), numberOf); };
        ASSERT_EQ(stored(a.lanes | b.lanes), expected([&](int i) { return a.numbers[i] | b.numbers[i]; }));
        ASSERT_EQ(stored(a.lanes << bits), expected([&](int i) { return a.numbers[i] * (1ULL << bits); }));
        ASSERT_EQ(stored(timesIndex(a.lanes)), expected([&](int i) { return 1ULL * a.numbers[i] * i; }));
        ASSERT_EQ(stored(cappedAt255(a.lanes)), expected([&](int i) { return std::min(a.numbers[i], 255U); }));
        unsigned below = 0;
        for (std::size_t i = 0; i < std::size(a.numbers); ++i)
            below += asSigned(a.numbers[i]) < asSigned(b.numbers[i]) ? 1U << i : 0;
        ASSERT_EQ(lanesBelow(a.lanes, b.lanes), below);
    });
}

TYPED_TEST(SpanLanes, read_and_write_the_places_of_a_set_alone) {
    forEachSeed([](test::Random &random) {
        const Sample<TypeParam> a(random);
        constexpr int count = sizeof(TypeParam) / 4;
        const unsigned lanes = random.oneIn(3) ? (1U << count) - 1 : random.word() & ((1U << count) - 1);
        q_ulong pixels[count + 2];
        short depths[count + 2];
        for (int i = 0; i < count + 2; ++i) {
            pixels[i] = random.word();
            depths[i] = static_cast<short>(random.word());
        }
        TypeParam numbers;
        TypeParam halves;
        loadWhere(lanes, pixels + 1, numbers);
        loadSignedWhere(lanes, depths + 1, halves);
        for (int i = 0; i < count; ++i)
            if (lanes >> i & 1) {
                ASSERT_EQ(numbers[i], pixels[1 + i]);
                ASSERT_EQ(static_cast<int>(halves[i]), depths[1 + i]);
            }
        q_ulong expectedPixels[count + 2];
        short expectedDepths[count + 2];
        std::copy(std::begin(pixels), std::end(pixels), expectedPixels);
        std::copy(std::begin(depths), std::end(depths), expectedDepths);
        for (int i = 0; i < count; ++i)
            if (lanes >> i & 1) {
                expectedPixels[1 + i] = a.numbers[i];
                expectedDepths[1 + i] = static_cast<short>(a.numbers[i] & 0xFFFF);
            }
        storeWhere(lanes, a.lanes, pixels + 1);
        storeLowWhere(lanes, a.lanes, depths + 1);
        ASSERT_TRUE(std::equal(std::begin(pixels), std::end(pixels), expectedPixels));
        ASSERT_TRUE(std::equal(std::begin(depths), std::end(depths), expectedDepths));
    });
}

} // namespace
