/// \file
/// This program's own `rand`: what the library draws is known.
#ifndef Q_MUR_TESTS_FRAME_GENERATOR_H
#define Q_MUR_TESTS_FRAME_GENERATOR_H

#include <cstdint>
#include <vector>

namespace test {

/// From here on `rand` follows the generator of the runtime that most hosts bring along: bits 16 to 30 of a linear
/// congruence.
void seedDraws(std::uint32_t seed);

/// From here on `rand` returns these numbers, and 0 when they are used up.
void scriptDraws(std::vector<int> draws);

/// Calls of `rand` since the last seedDraws() or scriptDraws().
int drawsTaken();

} // namespace test

#endif
