/// \file
/// Lanes of random numbers, and what is asked of them naively.
#ifndef Q_MUR_TESTS_LANE_SAMPLES_H
#define Q_MUR_TESTS_LANE_SAMPLES_H

#include "base/lanes.h"

#include "support/random.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>
#include <type_traits>
#include <vector>

namespace lanes {

using namespace qmur;

/// Numbers with many at the ends of their range.
template <class Number>
Number numberFrom(test::Random &random) {
    constexpr auto half = static_cast<Number>(Number{1} << (sizeof(Number) * 8 - 1));
    constexpr Number ends[] = {0, 1, 127, 128, 255, half - 1, half, half + 1, static_cast<Number>(~Number{0})};
    return random.oneIn(3) ? ends[random.between(0, 8)] : static_cast<Number>(random.word());
}

template <>
inline double numberFrom<double>(test::Random &random) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    constexpr double few[] = {0, -0.0, 1, -1, 0.5, 2, infinity, -infinity, std::numeric_limits<double>::quiet_NaN()};
    return random.oneIn(3) ? few[random.between(0, 8)] : random.between(-1000000, 1000000) / 8.0;
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
std::vector<Number> naive(std::size_t count, NumberOf numberOf) {
    std::vector<Number> numbers;
    for (std::size_t lane = 0; lane < count; ++lane)
        numbers.push_back(static_cast<Number>(numberOf(static_cast<int>(lane))));
    return numbers;
}

/// A number as its own width's signed number.
template <class Number>
long long asSigned(Number number) {
    return static_cast<std::make_signed_t<Number>>(number);
}

/// Calls `check` with the generators of many seeds.
template <class Check>
void forEachSeed(Check check) {
    for (std::uint64_t seed = 0; seed < 2000 && !testing::Test::HasFatalFailure(); ++seed) {
        SCOPED_TRACE(seed);
        test::Random random(seed);
        check(random);
    }
}

/// Calls `check` with two sets of lanes of many seeds, and the generator.
template <class Lanes, class Check>
void forEachSample(Check check) {
    forEachSeed([&check](test::Random &random) {
        const Sample<Lanes> a(random);
        const Sample<Lanes> b(random);
        check(a, b, random);
    });
}

/// Lanes of as many bytes whose numbers are of another type.
template <class Lanes>
struct LanesOf;
template <template <class, int> class LanesTemplate, class Number, int lanes>
struct LanesOf<LanesTemplate<Number, lanes>> {
    static constexpr int bytes = lanes * static_cast<int>(sizeof(Number));
    template <class Of>
    using Same = LanesTemplate<Of, bytes / static_cast<int>(sizeof(Of))>;
};

} // namespace lanes

#endif
