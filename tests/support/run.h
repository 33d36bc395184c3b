/// \file
/// What programs of all tests have in common.
#ifndef Q_MUR_TESTS_RUN_H
#define Q_MUR_TESTS_RUN_H

namespace test {

/// Runs the tests that the arguments ask for, on the library as its set-up call leaves it.
int run(int argc, char **argv);

} // namespace test

#endif
