/// \file
/// Calls that need more stack than a test has, or must get along with just so much.
#ifndef Q_MUR_TESTS_DEEP_STACK_H
#define Q_MUR_TESTS_DEEP_STACK_H

#include <cstddef>
#include <functional>

namespace test {

/// Runs `body` on a thread whose stack has room for `bytes`, and waits for its end. A full stack ends the program.
void onStackOf(std::size_t bytes, std::function<void()> body);

} // namespace test

#endif
