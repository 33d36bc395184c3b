/// \file
/// What ends the program with one line on standard error.
#ifndef QMUR_SHOW_FAILURE_H
#define QMUR_SHOW_FAILURE_H

#include <stdexcept>

namespace show {

/// Says what went wrong and why, in one line.
class Failure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The run was ended by a signal.
struct Interrupted {
    int signal;
};

} // namespace show

#endif
