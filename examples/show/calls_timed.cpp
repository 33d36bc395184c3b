/// \file
/// The linker leads the show's calls of the library here. While nobody wants to know how long they take, that costs a
/// glance at a flag. `q_Mur_calls.inc`, which the build writes from the list of exports, names each function.
#include "calls.h"

#include "q_Mur.h"

#include <atomic>
#include <chrono>

namespace show {

namespace {

using Clock = std::chrono::steady_clock;

bool isTiming = false; // set before any thread is started
std::atomic<std::size_t> functionsMet = 0;
thread_local std::vector<CallSum> sums;

class Call {
public:
    Call(std::size_t functionNumber, const char *functionName)
        : number(functionNumber), name(functionName), start(Clock::now()) {}
    ~Call() {
        const Clock::time_point end = Clock::now();
        if (sums.size() <= number)
            sums.resize(number + 1);
        CallSum &sum = sums[number];
        sum.function = name;
        ++sum.calls;
        sum.seconds += std::chrono::duration<double>(end - start).count();
    }
    Call(const Call &) = delete;
    Call &operator=(const Call &) = delete;

private:
    std::size_t number;
    const char *name;
    Clock::time_point start;
};

} // namespace

bool callsCanBeTimed() {
    return true;
}

void timeCalls() {
    isTiming = true;
}

std::vector<CallSum> takeCalls() {
    std::vector<CallSum> taken;
    if (!isTiming) // a thread's first look at its sums takes memory, or ends the program if there is none
        return taken;
    for (CallSum &sum : sums)
        if (sum.calls > 0) {
            taken.push_back(sum);
            sum = {};
        }
    return taken;
}

} // namespace show

#define Q_MUR_CALL(symbol, result, name, types, parameters, arguments)                                                 \
    namespace inside {                                                                                                 \
    result name types __asm__("__real_" symbol);                                                                       \
    }                                                                                                                  \
    namespace led {                                                                                                    \
    result name types __asm__("__wrap_" symbol);                                                                       \
    result name parameters {                                                                                           \
        if (!show::isTiming) [[likely]]                                                                                \
            return inside::name arguments;                                                                             \
        static const std::size_t number = show::functionsMet++;                                                        \
        const show::Call call(number, #name);                                                                          \
        return inside::name arguments;                                                                                 \
    }                                                                                                                  \
    }
#include <q_Mur_calls.inc>
