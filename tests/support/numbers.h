/// \file
/// The ends of the numbers.
#ifndef Q_MUR_TESTS_NUMBERS_H
#define Q_MUR_TESTS_NUMBERS_H

#include <limits>

namespace test {

inline constexpr int leastInt = std::numeric_limits<int>::min();
inline constexpr int greatestInt = std::numeric_limits<int>::max();

} // namespace test

#endif
