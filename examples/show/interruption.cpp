#include "interruption.h"

#include "failure.h"

#include <csignal>
#include <initializer_list>

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
    for (const int signal : {SIGINT, SIGTERM, SIGBREAK})
        std::signal(signal, noteSignal);
}

SignalsBlocked::SignalsBlocked() {}
SignalsBlocked::~SignalsBlocked() {}

#else

namespace {

/// What ends a program that does not look, and leaves it time to clear up.
constexpr auto endingSignals = {SIGHUP,  SIGINT,  SIGQUIT,   SIGTERM, SIGALRM, SIGUSR1,
                                SIGUSR2, SIGPROF, SIGVTALRM, SIGXCPU, SIGIO};

void setMask(int how) {
    sigset_t set;
    sigemptyset(&set);
    for (const int signal : endingSignals)
        sigaddset(&set, signal);
    pthread_sigmask(how, &set, nullptr);
}

} // namespace

void catchSignals() {
    for (const int signal : endingSignals) {
        struct sigaction inherited = {};
        sigaction(signal, nullptr, &inherited);
        if (inherited.sa_handler == SIG_IGN) // somebody wants the run to go on, as nohup does
            continue;
        struct sigaction action = {};
        action.sa_handler = noteSignal; // without SA_RESTART: a call that waits is to return
        sigaction(signal, &action, nullptr);
    }
    std::signal(SIGCHLD, SIG_DFL); // programs that were started are waited for
    // These come as errors of the calls that raise them.
    for (const int signal : {SIGPIPE, SIGXFSZ})
        std::signal(signal, SIG_IGN);
}

SignalsBlocked::SignalsBlocked() {
    setMask(SIG_BLOCK);
}
SignalsBlocked::~SignalsBlocked() {
    setMask(SIG_UNBLOCK);
}

#endif

} // namespace show
