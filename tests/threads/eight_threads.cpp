/// \file
/// Eight threads make calls of every row at the same time, each on surfaces and records of its own, and draw what one
/// thread draws. What shares state by contract is named, and called by one thread alone. The thread sanitizer watches.
#include "proofs/regions.h"

#include <algorithm>
#include <atomic>
#include <barrier>
#include <cstdio>
#include <cstdlib>
#include <thread>
#include <vector>

namespace {

using namespace proofs;

constexpr int threads = 8;
constexpr int calls = 6; ///< of each row by each thread

/// Why a row's calls have state in common; empty if they have none.
std::string_view reasonForOneThread(const Row &row) {
    if (row.drawsRandomNumbers)
        return "one generator";
    for (const catalogue::Waiver &waiver : row.waived)
        if (waiver.proof == "two_threads_on_separate_surfaces" || waiver.reason == "a global")
            return waiver.reason;
    return {};
}

/// Records are filled and emptied by calls of more than one row.
bool isOfRecords(const Row &row) {
    return std::any_of(row.arguments.begin(), row.arguments.end(),
                       [](const Argument &argument) { return argument.kind == Kind::hostRecord; });
}

bool needsFile(const Row &row) {
    return std::any_of(row.waived.begin(), row.waived.end(),
                       [](const catalogue::Waiver &waiver) { return waiver.reason == "a file"; });
}

std::atomic<int> faults = 0;

void fail(const Row &row, const std::string &what) {
    std::fprintf(stderr, "%s: %s\n", row.fullName().c_str(), what.c_str());
    ++faults;
}

Call callOf(const Row &row, int number) {
    Random random(static_cast<std::uint64_t>(number));
    return catalogue::randomCall(row, random);
}

struct Expected {
    const Row *row;
    std::vector<Call> results;
};

void tryRow(const Expected &expected) {
    for (int number = 0; number < calls; ++number) {
        Call call = callOf(*expected.row, number);
        expected.row->functions.library(call)();
        const std::string difference = call.differenceFrom(expected.results[static_cast<std::size_t>(number)]);
        if (!difference.empty())
            fail(*expected.row, difference + ": " + described(call));
    }
}

/// A frame of a host's record, from notice to end.
void tryRecord() {
    TransferFrameGeometry geometry = {{}, 300, 20};
    TransferLimits3D limits = {0, 0, 16, 2};
    _TRANSFERDATA record = {};
    record.frameGeometry = &geometry;
    record.limits3D = &limits;
    BeginMemoryManager(&record);
    const bool isThere = FindNotUsedMemory(&record, 0, -1) && GetPrivate_QMGP_Data(&record, 1) &&
                         GetPrivate_LUT_Data(&record, 2) && GetPrivate_QMGL_Data(&record, 3) &&
                         GetPrivate_QM3D_Data(&record, 4);
    if (!isThere || record.blockCount != 5)
        ++faults;
    ClearMemory(&record, 0);
    NoticeMemUsed(&record);
    EndMemoryManager(&record);
    if (record.blockCount != 5)
        ++faults;
    FreeMemoryBlocks(&record);
    DeleteMemoryBlocks(&record);
    if (record.blockCount != 0)
        ++faults;
}

/// All threads are in the same row, and then each in another one.
void tryAll(std::size_t thread, const std::vector<Expected> &all, std::barrier<> &together) {
    for (const Expected &expected : all) {
        together.arrive_and_wait();
        tryRow(expected);
    }
    for (std::size_t i = 0; i < all.size(); ++i)
        tryRow(all[(i + thread * all.size() / threads) % all.size()]);
    for (int i = 0; i < calls; ++i)
        tryRecord();
}

} // namespace

int main() {
    Init_qMur_GlobalData(nullptr, nullptr);
    std::vector<Expected> all;
    catalogue::forEachRow([&all](const Row &row) {
        const std::string_view reason = reasonForOneThread(row);
        if (!reason.empty())
            std::printf("one thread alone: %s (%s)\n", row.fullName().c_str(), std::string(reason).c_str());
        if (isOfRecords(row) || needsFile(row) || row.name == "SetSpriteDir")
            return;
        Expected expected = {&row, {}};
        for (int number = 0; number < calls; ++number) {
            expected.results.push_back(callOf(row, number));
            runSeeded(row.functions.library, expected.results.back(), 1);
        }
        if (reason.empty())
            all.push_back(std::move(expected));
    });
    std::barrier together(threads);
    std::vector<std::thread> running;
    for (std::size_t thread = 0; thread < threads; ++thread)
        running.emplace_back([&, thread] { tryAll(thread, all, together); });
    for (std::thread &thread : running)
        thread.join();
    std::printf("%zu rows in %d threads, %d faults\n", all.size(), threads, faults.load());
    return faults == 0 && all.size() > 200 ? EXIT_SUCCESS : EXIT_FAILURE;
}
