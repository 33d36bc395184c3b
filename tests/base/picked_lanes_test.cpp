#include "lane_samples.h"

namespace {

using namespace lanes;

template <class Pixels>
class PickedLanes : public testing::Test {};

using Kinds =
    testing::Types<Numbers<4>, Pixels, MostPixels, scalar::Lanes<std::uint32_t, 4>, scalar::Lanes<std::uint32_t, 8>>;
TYPED_TEST_SUITE(PickedLanes, Kinds);

TYPED_TEST(PickedLanes, of_words_with_a_sign_are_multiplied_and_added_up_in_pairs) {
    using Words = typename LanesOf<TypeParam>::template Same<std::uint16_t>;
    constexpr int count = sizeof(TypeParam) / 4;
    forEachSample<Words>([](const auto &a, auto b, test::Random &) {
        for (int i = 0; i < count; ++i) // all four the least number is what 32 bits cannot hold
            if (b.numbers[2 * i] == 0x8000 && b.numbers[2 * i + 1] == 0x8000)
                b.numbers[2 * i] = 0x8001;
        const auto product = [&](int i) { return asSigned(a.numbers[i]) * asSigned(b.numbers[i]); };
        ASSERT_EQ(stored(pairSums(a.lanes, Words::load(b.numbers))),
                  naive<std::uint32_t>(count, [&](int i) { return product(2 * i) + product(2 * i + 1); }));
    });
}

TYPED_TEST(PickedLanes, are_at_hand_one_by_one_in_memory) {
    if constexpr (std::is_same_v<TypeParam, Numbers<sizeof(TypeParam) / 4>>)
        forEachSample<TypeParam>([](const auto &a, const auto &, test::Random &) {
            const Spilled<sizeof(TypeParam) / 4> spilled(a.lanes);
            for (int i = 0; i < static_cast<int>(sizeof(TypeParam) / 4); ++i)
                ASSERT_EQ(spilled[i], asSigned(a.numbers[i]));
        });
}

TYPED_TEST(PickedLanes, are_counted_and_doubled_in_fours) {
    forEachSeed([](test::Random &random) {
        const Sample<TypeParam> a(random);
        constexpr int count = sizeof(TypeParam) / 4;
        ASSERT_EQ(stored(TypeParam::counted()), naive<std::uint32_t>(count, [](int i) { return i; }));
        constexpr int low[] = {0, 0, 1, 1};
        ASSERT_EQ(stored(doubledLow(a.lanes)),
                  naive<std::uint32_t>(count, [&](int i) { return a.numbers[i - i % 4 + low[i % 4]]; }));
        ASSERT_EQ(stored(doubledHigh(a.lanes)),
                  naive<std::uint32_t>(count, [&](int i) { return a.numbers[i - i % 4 + low[i % 4] + 2]; }));
    });
}

TYPED_TEST(PickedLanes, are_loaded_and_stored_in_part) {
    static constexpr int count = sizeof(TypeParam) / 4;
    forEachSeed([](test::Random &random) {
        const Sample<TypeParam> a(random);
        const int part = random.between(0, count - 1);
        ASSERT_EQ(stored(TypeParam::loadFirst(a.numbers, part)),
                  naive<std::uint32_t>(count, [&](int i) { return i < part ? a.numbers[i] : 0; }));
        std::vector<std::uint32_t> memory(count, 0xA5A5A5A5);
        a.lanes.storeFirst(memory.data(), part);
        ASSERT_EQ(memory, naive<std::uint32_t>(count, [&](int i) { return i < part ? a.numbers[i] : 0xA5A5A5A5; }));
    });
}

TYPED_TEST(PickedLanes, of_neighbours_come_from_any_columns) {
    constexpr int count = sizeof(TypeParam) / 4;
    if constexpr (std::is_same_v<TypeParam, Numbers<count>>) {
        forEachSeed([](test::Random &random) {
            std::uint32_t row[64];
            for (std::uint32_t &number : row)
                number = random.word();
            std::int32_t columns[count];
            for (std::int32_t &column : columns)
                column = random.between(-10, 52);
            const auto [left, right] = loadNeighbours<count>(row + 10, columns);
            ASSERT_EQ(stored(left), naive<std::uint32_t>(count, [&](int i) { return row[10 + columns[i]]; }));
            ASSERT_EQ(stored(right), naive<std::uint32_t>(count, [&](int i) { return row[11 + columns[i]]; }));
        });
    }
}

TYPED_TEST(PickedLanes, of_pairs_come_from_two_of_every_four_columns) {
    constexpr int count = sizeof(TypeParam) / 4;
    if constexpr (std::is_same_v<TypeParam, Numbers<count>> && sizeof(TypeParam) <= registerBytes) {
        forEachSeed([](test::Random &random) {
            std::uint32_t row[64];
            for (std::uint32_t &number : row)
                number = random.word();
            std::int32_t columns[count];
            for (std::int32_t &column : columns)
                column = random.between(-10, 52);
            const auto pairsFrom = [&](int first) {
                return naive<std::uint32_t>(
                    count, [&](int i) { return row[10 + columns[i / 4 * 4 + first + i % 4 / 2] + i % 2]; });
            };
            const auto [low, high] = loadPairs<count>(row + 10, columns);
            ASSERT_EQ(stored(low), pairsFrom(0));
            ASSERT_EQ(stored(high), pairsFrom(2));
        });
    }
}

TYPED_TEST(PickedLanes, of_two_pixels_are_paired_byte_by_byte) {
    using Bytes = typename LanesOf<TypeParam>::template Same<std::uint8_t>;
    forEachSeed([](test::Random &random) {
        const Sample<Bytes> a(random);
        constexpr int places[] = {0, 4, 1, 5, 2, 6, 3, 7};
        ASSERT_EQ(stored(pairedBytes(a.lanes)),
                  naive<std::uint8_t>(sizeof(Bytes), [&](int i) { return a.numbers[i / 8 * 8 + places[i % 8]]; }));
    });
}

TYPED_TEST(PickedLanes, of_paired_bytes_are_two_pixels_again) {
    using Bytes = typename LanesOf<TypeParam>::template Same<std::uint8_t>;
    forEachSeed([](test::Random &random) {
        const Sample<Bytes> a(random);
        constexpr int places[] = {0, 2, 4, 6, 1, 3, 5, 7};
        ASSERT_EQ(stored(unpairedBytes(a.lanes)),
                  naive<std::uint8_t>(sizeof(Bytes), [&](int i) { return a.numbers[i / 8 * 8 + places[i % 8]]; }));
    });
}

/// What only some targets have as instructions, and every scalar twin.
template <class Kind>
constexpr bool picksAndSums =
    !std::is_same_v<Kind, Numbers<sizeof(Kind) / 4>> || (sumsPairs && sizeof(Kind) >= registerBytes);

TYPED_TEST(PickedLanes, are_picked_by_their_places) {
    if constexpr (picksAndSums<TypeParam>) {
        constexpr int count = sizeof(TypeParam) / 4;
        forEachSeed([](test::Random &random) {
            const Sample<TypeParam> a(random);
            const Sample<TypeParam> b(random);
            Sample<TypeParam> places(random);
            for (std::uint32_t &place : places.numbers)
                place = random.word() % (2 * count);
            places.lanes = TypeParam::load(places.numbers);
            ASSERT_EQ(stored(picked(a.lanes, places.lanes)),
                      naive<std::uint32_t>(count, [&](int i) { return a.numbers[places.numbers[i] % count]; }));
            ASSERT_EQ(stored(picked(a.lanes, b.lanes, places.lanes)), naive<std::uint32_t>(count, [&](int i) {
                          const auto place = places.numbers[i];
                          return place < count ? a.numbers[place] : b.numbers[place - count];
                      }));
        });
    }
}

TYPED_TEST(PickedLanes, of_bytes_are_weighed_and_summed_in_pairs) {
    if constexpr (picksAndSums<TypeParam>) {
        using Bytes = typename LanesOf<TypeParam>::template Same<std::uint8_t>;
        constexpr int count = sizeof(TypeParam);
        forEachSeed([](test::Random &random) {
            const Sample<Bytes> a(random);
            Sample<Bytes> b(random);
            for (int i = 0; i < count; ++i) // so that no sum leaves 16 bits
                b.numbers[i] = static_cast<std::uint8_t>(i % 2 == 0 ? b.numbers[i] : b.numbers[i] % 2);
            b.lanes = Bytes::load(b.numbers);
            const auto product = [&](int i) { return a.numbers[i] * asSigned(b.numbers[i]); };
            ASSERT_EQ(stored(pairSums(a.lanes, b.lanes)),
                      naive<std::uint16_t>(count / 2, [&](int i) { return product(2 * i) + product(2 * i + 1); }));
        });
    }
}

} // namespace
