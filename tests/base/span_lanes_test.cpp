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
