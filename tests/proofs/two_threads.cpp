#include "proofs.h"

#include <atomic>
#include <thread>

namespace proofs {
namespace {

std::string_view reason(const Row &row) {
    return row.drawsRandomNumbers ? "one generator" : "";
}

std::vector<Call> calls(const Row &row, int count) {
    std::vector<Call> made;
    for (int number = 0; number < count; ++number) {
        Random random(static_cast<std::uint64_t>(number));
        made.push_back(catalogue::randomCall(row, random));
    }
    return made;
}

/// Two threads with surfaces of their own draw what one draws alone.
void prove(const Row &row) {
    constexpr int count = 200;
    std::vector<Call> expected = calls(row, count);
    std::vector<Call> first = calls(row, count);
    std::vector<Call> second = calls(row, count);
    const auto runAll = [&row](std::vector<Call> &all) {
        for (Call &call : all)
            row.functions.library(call)();
    };
    runAll(expected);
    std::atomic<int> ready = 0; // a thread takes longer to start than many of the calls take
    const auto begin = [&ready] {
        for (++ready; ready < 2;)
            std::this_thread::yield();
    };
    std::thread other([&] {
        begin();
        runAll(second);
    });
    begin();
    runAll(first);
    other.join();
    for (std::size_t i = 0; i < expected.size(); ++i) {
        ASSERT_EQ(first[i].differenceFrom(expected[i]), "") << described(expected[i]);
        ASSERT_EQ(second[i].differenceFrom(expected[i]), "") << described(expected[i]);
    }
}

} // namespace

const Proof twoThreads = {"two_threads_on_separate_surfaces", reason, prove};

} // namespace proofs
