/// \file
/// Signals that ask the program to end.
#ifndef QMUR_SHOW_INTERRUPTION_H
#define QMUR_SHOW_INTERRUPTION_H

namespace show {

/// From here on, the signals that would end the program are noted instead; those that were ignored before stay so.
void catchSignals();

/// Throws Interrupted if a signal was noted.
void throwIfInterrupted();

/// Keeps the signals away from the threads that are started while it lives, so that they reach the calling thread and
/// wake it where it waits.
class SignalsBlocked {
public:
    SignalsBlocked();
    ~SignalsBlocked();
    SignalsBlocked(const SignalsBlocked &) = delete;
    SignalsBlocked &operator=(const SignalsBlocked &) = delete;
};

} // namespace show

#endif
