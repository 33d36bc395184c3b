/// \file
/// Threads that are there to the end of a scope.
#ifndef QMUR_SHOW_THREADS_H
#define QMUR_SHOW_THREADS_H

#include "failure.h"
#include "interruption.h"

#include <system_error>
#include <thread>
#include <vector>

namespace show {

class Threads {
public:
    /// Runs `work` in up to `count` threads; where the system grants fewer, these must do. Throws Failure if it grants
    /// none. Signals do not reach them.
    Threads(int count, const auto &work) {
        threads.reserve(static_cast<std::size_t>(count));
        const SignalsBlocked blocked;
        for (int i = 0; i < count; ++i)
            try {
                threads.emplace_back(work);
            } catch (const std::system_error &error) {
                if (threads.empty())
                    throw Failure("cannot start a thread: " + error.code().message());
                break;
            }
    }

    ~Threads() { wait(); }

    Threads(const Threads &) = delete;
    Threads &operator=(const Threads &) = delete;

    void wait() {
        for (std::thread &thread : threads)
            if (thread.joinable())
                thread.join();
    }

private:
    std::vector<std::thread> threads;
};

} // namespace show

#endif
