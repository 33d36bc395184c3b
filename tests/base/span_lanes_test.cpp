#include "lane_samples.h"

namespace {

using namespace lanes;

template <class Pixels>
class SpanLanes : public testing::Test {};

using SpanKinds = testing::Types<Numbers<4>, Pixels, SpanPixels, SinglePixel, scalar::Lanes<std::uint32_t, 4>>;
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

/// The set of those lanes of which `bits` have one.
template <class Lanes>
typename Lanes::Set setOf(unsigned bits) {
    std::uint32_t lanes[sizeof(Lanes) / 4];
    for (std::size_t i = 0; i < std::size(lanes); ++i)
        lanes[i] = bits >> i & 1;
    return Lanes::Set::below(Lanes::all(0), Lanes::load(lanes));
}

/// Bit `lane` is set where the set has that lane: seen by what is stored.
template <class Lanes>
unsigned bitsOf(typename Lanes::Set set) {
    q_ulong stored[sizeof(Lanes) / 4] = {};
    storeWhere(set, Lanes::all(1), Lanes::all(0), stored);
    unsigned bits = 0;
    for (std::size_t i = 0; i < std::size(stored); ++i)
        bits |= static_cast<unsigned>(stored[i]) << i;
    return bits;
}

TYPED_TEST(SpanLanes, are_all_the_first_those_below_or_those_of_two_sets) {
    using Set = typename TypeParam::Set;
    constexpr int count = sizeof(TypeParam) / 4;
    constexpr unsigned all = (1U << count) - 1;
    EXPECT_EQ(bitsOf<TypeParam>(Set::all()), all);
    EXPECT_FALSE(Set::all().empty());
    for (int lanes = 0; lanes < count; ++lanes) {
        EXPECT_EQ(bitsOf<TypeParam>(Set::first(lanes)), (1U << lanes) - 1);
        EXPECT_EQ(Set::first(lanes).empty(), lanes == 0);
    }
    forEachSeed([](test::Random &random) {
        const Sample<TypeParam> a(random);
        const Sample<TypeParam> b(random);
        unsigned below = 0;
        for (std::size_t i = 0; i < std::size(a.numbers); ++i)
            below |= asSigned(a.numbers[i]) < asSigned(b.numbers[i]) ? 1U << i : 0;
        ASSERT_EQ(bitsOf<TypeParam>(Set::below(a.lanes, b.lanes)), below);
        ASSERT_EQ(Set::below(a.lanes, b.lanes).empty(), below == 0);
        const unsigned one = random.word() & all;
        const unsigned other = random.word() & all;
        ASSERT_EQ(bitsOf<TypeParam>(setOf<TypeParam>(one) & setOf<TypeParam>(other)), one & other);
    });
}

TYPED_TEST(SpanLanes, read_and_write_the_places_of_a_set_and_keep_the_others) {
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
        const typename TypeParam::Set set = setOf<TypeParam>(lanes);
        TypeParam numbers;
        TypeParam halves;
        loadWhere(set, pixels + 1, numbers);
        loadSignedWhere(set, depths + 1, halves);
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
        storeWhere(set, a.lanes, numbers, pixels + 1);
        storeLowWhere(set, a.lanes, halves, depths + 1);
        ASSERT_TRUE(std::equal(std::begin(pixels), std::end(pixels), expectedPixels));
        ASSERT_TRUE(std::equal(std::begin(depths), std::end(depths), expectedDepths));
    });
}

} // namespace
