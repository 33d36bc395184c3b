/// \file
/// Has the library run on an instruction set that it would not choose by itself. Only programs of the static library
/// can: nothing that is exported does it.
#ifndef Q_MUR_TESTS_CHOSEN_SET_H
#define Q_MUR_TESTS_CHOSEN_SET_H

#include <string>
#include <string_view>

namespace test {

/// Sets the library up for the set of that name: "sse2", "v3" or "v4".
/// \return in plain words why it cannot be had; empty if it can
std::string runOnSet(std::string_view name);

/// The set that the library runs on, and those that it holds.
std::string setInUse();

} // namespace test

#endif
