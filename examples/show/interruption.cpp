#include "interruption.h"

#include "failure.h"

#include <csignal>

namespace show {

namespace {

volatile std::sig_atomic_t notedSignal = 0;

extern "C" void noteSignal(int signal) {
    notedSignal = signal;
}

} // namespace

void throwIfInterrupted() {
    if (const int signal = notedSignal)
        throw Interrupted{signal};
}

#ifdef _WIN32

void catchSignals() {
    std::signal(SIGINT, noteSignal);
    std::signal(SIGTERM, noteSignal);
}

SignalsBlocked::SignalsBlocked() {}
SignalsBlocked::~SignalsBlocked() {}

#else

void catchSignals() {
    struct sigaction action = {};
    action.sa_handler = noteSignal; // without SA_RESTART: a write that waits is to return
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
    action.sa_handler = SIG_IGN;
    sigaction(SIGPIPE, &action, nullptr);
}

namespace {

void setMask(int how) {
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGINT);
    sigaddset(&set, SIGTERM);
    pthread_sigmask(how, &set, nullptr);
}

} // namespace

SignalsBlocked::SignalsBlocked() {
    setMask(SIG_BLOCK);
}
SignalsBlocked::~SignalsBlocked() {
    setMask(SIG_UNBLOCK);
}

#endif

} // namespace show
