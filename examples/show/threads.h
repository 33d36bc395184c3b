/// \file
/// Threads that are there to the end of a scope.
#ifndef QMUR_SHOW_THREADS_H
#define QMUR_SHOW_THREADS_H

#include "failure.h"
#include "interruption.h"

#include <cstdlib>
#include <mutex>
#include <new>
#include <system_error>
#include <thread>
#include <vector>

namespace show {

class Threads {
public:
    /// Runs `work(started)` in up to `count` threads, of which so many were started; where the system grants fewer,
    /// these must do. None works before all have been started, and so that they do not take all memory for themselves,
    /// so many bytes are left over as `room` says, unless one thread is all there is. Throws Failure if there is none.
    /// Signals do not reach them.
    Threads(int count, std::size_t room, const auto &work) {
        threads.reserve(static_cast<std::size_t>(count));
        const auto begin = [this, work] {
            starting.lock();
            starting.unlock();
            work(static_cast<int>(threads.size()));
        };
        const std::lock_guard lock(starting);
        const Reserve kept(room);
        const SignalsBlocked blocked;
        for (int i = 0; i < (kept.isThere() ? count : 1); ++i)
            try {
                threads.emplace_back(begin);
            } catch (const std::system_error &error) {
                if (threads.empty())
                    throw Failure("cannot start a thread: " + error.code().message());
                break;
            } catch (const std::bad_alloc &) {
                if (threads.empty())
                    throw;
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
    /// Memory that nobody else gets.
    class Reserve {
    public:
        explicit Reserve(std::size_t bytes) : memory(std::malloc(bytes)) {}
        ~Reserve() { std::free(memory); }
        Reserve(const Reserve &) = delete;
        Reserve &operator=(const Reserve &) = delete;

        bool isThere() const { return memory != nullptr; }

    private:
        void *volatile memory; // or the compiler sees that nobody uses it, and asks for none
    };

    std::mutex starting;
    std::vector<std::thread> threads;
};

} // namespace show

#endif
