/// \file
/// How long the library's functions take whom the show calls.
#ifndef QMUR_SHOW_CALLS_H
#define QMUR_SHOW_CALLS_H

#include <vector>

namespace show {

/// A function, how often it was called, and how long that took by the clock on the wall.
struct CallSum {
    const char *function;
    int calls;
    double seconds;
};

/// Whether this build can time calls.
bool callsCanBeTimed();

/// From here on they are timed.
void timeCalls();

/// What the calling thread has called since it asked last; empty unless calls are timed.
std::vector<CallSum> takeCalls();

} // namespace show

#endif
