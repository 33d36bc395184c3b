#include "lane_samples.h"

namespace {

using namespace lanes;

template <class Pixels>
class LanesAbreast : public testing::Test {};

using KindsAbreast = testing::Types<Numbers<4>, Pixels, Numbers<widestBytes / 4>, scalar::Lanes<std::uint32_t, 4>,
                                    scalar::Lanes<std::uint32_t, 8>, scalar::Lanes<std::uint32_t, 16>>;
TYPED_TEST_SUITE(LanesAbreast, KindsAbreast);

template <class Kind, class Number>
void checkBitsAndOrder() {
    using Tested = typename LanesOf<Kind>::template Same<Number>;
    constexpr int count = LanesOf<Kind>::bytes / static_cast<int>(sizeof(Number));
    constexpr int block = 16 / static_cast<int>(sizeof(Number));
    forEachSample<Tested>([](const auto &a, const auto &b, [[maybe_unused]] test::Random &random) {
        const auto expected = [](auto numberOf) { return naive<Number>(count, numberOf); };
        ASSERT_EQ(stored(a.lanes | b.lanes), expected([&](int i) { return a.numbers[i] | b.numbers[i]; }));
        ASSERT_EQ(stored(a.lanes ^ b.lanes), expected([&](int i) { return a.numbers[i] ^ b.numbers[i]; }));
        if constexpr (sizeof(Number) > 1) {
            const int bits = random.between(0, sizeof(Number) * 8 - 1);
            ASSERT_EQ(stored(a.lanes << bits),
                      expected([&](int i) { return static_cast<unsigned long long>(a.numbers[i]) << bits; }));
        }
        std::vector<Number> low;
        std::vector<Number> high;
        for (int start = 0; start < count; start += block)
            for (int i = 0; i < block / 2; ++i) {
                low.insert(low.end(), {a.numbers[start + i], b.numbers[start + i]});
                high.insert(high.end(), {a.numbers[start + block / 2 + i], b.numbers[start + block / 2 + i]});
            }
        ASSERT_EQ(stored(interleavedLow(a.lanes, b.lanes)), low);
        ASSERT_EQ(stored(interleavedHigh(a.lanes, b.lanes)), high);
    });
}

TYPED_TEST(LanesAbreast, are_joined_shifted_and_taken_in_turn) {
    checkBitsAndOrder<TypeParam, std::uint8_t>();
    checkBitsAndOrder<TypeParam, std::uint16_t>();
    checkBitsAndOrder<TypeParam, std::uint32_t>();
}

TYPED_TEST(LanesAbreast, of_8_bytes_are_taken_in_turn) {
    using Longs = typename LanesOf<TypeParam>::template Same<std::uint64_t>;
    forEachSample<Longs>([](const auto &a, const auto &b, test::Random &) {
        std::vector<std::uint64_t> low;
        std::vector<std::uint64_t> high;
        for (std::size_t i = 0; i < std::size(a.numbers); i += 2) {
            low.insert(low.end(), {a.numbers[i], b.numbers[i]});
            high.insert(high.end(), {a.numbers[i + 1], b.numbers[i + 1]});
        }
        ASSERT_EQ(stored(interleavedLow(a.lanes, b.lanes)), low);
        ASSERT_EQ(stored(interleavedHigh(a.lanes, b.lanes)), high);
    });
}

TYPED_TEST(LanesAbreast, upper_halves_of_products) {
    using Words = typename LanesOf<TypeParam>::template Same<std::uint16_t>;
    forEachSample<Words>([](const auto &a, const auto &b, test::Random &) {
        ASSERT_EQ(stored(highProduct(a.lanes, b.lanes)), naive<std::uint16_t>(std::size(a.numbers), [&](int i) {
                      return static_cast<unsigned long long>(a.numbers[i]) * b.numbers[i] / 65536;
                  }));
        const auto floored = [](long long number) { return (number - (number % 65536 + 65536) % 65536) / 65536; };
        ASSERT_EQ(stored(highSignedProduct(a.lanes, b.lanes)), naive<std::uint16_t>(std::size(a.numbers), [&](int i) {
                      return floored(asSigned(a.numbers[i]) * asSigned(b.numbers[i]));
                  }));
    });
}

TYPED_TEST(LanesAbreast, every_16_bytes_have_a_place_of_their_own) {
    constexpr int blocks = LanesOf<TypeParam>::bytes / 16;
    forEachSample<TypeParam>([](const auto &a, const auto &, test::Random &random) {
        const int stride = random.between(16, 40) * (random.oneIn(2) ? 1 : -1);
        std::vector<unsigned char> memory(40 * 4 + 16, 0xA5);
        const int first = stride > 0 ? 0 : -stride * (blocks - 1);
        std::vector<unsigned char> expected = memory;
        for (int block = 0; block < blocks; ++block)
            std::memcpy(&expected[static_cast<std::size_t>(first + block * stride)], a.numbers + block * 4, 16);
        storeSixteens(&memory[static_cast<std::size_t>(first)], stride, a.lanes);
        ASSERT_EQ(memory, expected);
        if constexpr (std::is_same_v<TypeParam, scalar::Lanes<std::uint32_t, blocks * 4>>)
            ASSERT_EQ(stored(scalar::loadSixteens<TypeParam>(&memory[static_cast<std::size_t>(first)], stride)),
                      stored(a.lanes));
        else
            ASSERT_EQ(stored(loadSixteens<TypeParam>(&memory[static_cast<std::size_t>(first)], stride)),
                      stored(a.lanes));
    });
}

} // namespace
