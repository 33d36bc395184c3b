/// \file
/// The seeded random numbers of the catalogue, in the tests' own words.
#ifndef Q_MUR_TESTS_RANDOM_H
#define Q_MUR_TESTS_RANDOM_H

#include "catalogue/random.h"

namespace test {

using catalogue::anyTurn;
using catalogue::Random;

} // namespace test

#endif
