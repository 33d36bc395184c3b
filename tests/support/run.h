/// \file
/// What programs of all tests have in common.
#ifndef Q_MUR_TESTS_RUN_H
#define Q_MUR_TESTS_RUN_H

namespace test {

/// Takes the options of the tests themselves. Those of GoogleTest are gone before it.
/// \return whether all of them are known
bool takesArguments(int argc, char **argv);

/// Runs the tests that the arguments ask for, on the library as its set-up call leaves it.
int run(int argc, char **argv);

} // namespace test

#endif
