#include "support/row.h"

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <string>

namespace bench {
namespace {

int draw() {
    return std::rand() & 32767;
}

/// Whether a function gives what `expected` gives on the same draws.
template <class Result, class Function, class Expected>
bool sameOnSameDraws(Function function, Expected expected) {
    for (unsigned seed = 1; seed <= 1000; ++seed) {
        std::srand(seed);
        const Result result = function();
        std::srand(seed);
        if (result != static_cast<Result>(expected()))
            return false;
    }
    return true;
}

int sumOf(int count) {
    int sum = 0;
    while (count-- > 0)
        sum += draw();
    return sum;
}

bool tablesHold() {
    return iSin[0] == 0 && iSin[2048] == 32768 && iSin[1024] == 23170 && iCos[4096] == -32768 && iSqrt[8191] == 92676;
}

void addRandomRows() {
    addCall(
        "GaussRand", [] { benchmark::DoNotOptimize(GaussRand()); },
        [] { // sixteen results in a row, from wherever the cycle stands
            const int cycle[] = {0, -2, 0, 0, 0, 1, 0, -1, 0, 0, 0, 2, 0, 0, 0, 0};
            int results[16];
            std::generate(std::begin(results), std::end(results), GaussRand);
            int rotated[16];
            for (int shift = 0; shift < 16; ++shift) {
                std::rotate_copy(cycle, cycle + shift, cycle + 16, rotated);
                if (std::equal(results, results + 16, rotated))
                    return true;
            }
            return false;
        });
    addCall(
        "randInt", [] { benchmark::DoNotOptimize(randInt(0, 640)); },
        [] {
            return sameOnSameDraws<int>([] { return randInt(0, 640); },
                                        [] {
                                            int drawn;
                                            do
                                                drawn = draw() % 1024;
                                            while (drawn >= 640);
                                            return drawn;
                                        });
        });
    addCall(
        "randFloat", [] { benchmark::DoNotOptimize(randFloat(-1, 3)); },
        [] {
            return sameOnSameDraws<float>([] { return randFloat(-1, 3); },
                                          [] { return -1 + draw() * 4.0L * 3.0518509e-05F; });
        });
    addCall(
        "randDouble", [] { benchmark::DoNotOptimize(randDouble(-1, 3)); },
        [] {
            return sameOnSameDraws<double>([] { return randDouble(-1, 3); },
                                           [] { return -1 + draw() * 4.0L * 3.051850947599719e-05; });
        });
    addCall(
        "randIntGauss", [] { benchmark::DoNotOptimize(randIntGauss(0, 1000, 4)); },
        [] {
            return sameOnSameDraws<int>([] { return randIntGauss(0, 1000, 4); },
                                        [] { return sumOf(4) * 1000 / (4 * 32767); });
        });
    addCall(
        "randFloatGauss", [] { benchmark::DoNotOptimize(randFloatGauss(-1, 3, 4)); },
        [] {
            return sameOnSameDraws<float>([] { return randFloatGauss(-1, 3, 4); },
                                          [] { return -1 + sumOf(4) * 4.0L / (4 * 32767); });
        });
    addCall(
        "randDoubleGauss", [] { benchmark::DoNotOptimize(randDoubleGauss(-1, 3, 4)); },
        [] {
            return sameOnSameDraws<double>([] { return randDoubleGauss(-1, 3, 4); },
                                           [] { return -1 + sumOf(4) * 4.0L / (4 * 32767); });
        });
    addCall(
        "randColor", [] { benchmark::DoNotOptimize(randColor()); },
        [] {
            return sameOnSameDraws<q_ulong>(randColor, [] {
                const int red = draw() % 256;
                const int green = draw() % 256;
                return red * 65536 + green * 256 + draw() % 256;
            });
        });
    addCall(
        "randRainbowColor", [] { benchmark::DoNotOptimize(randRainbowColor()); },
        [] {
            return sameOnSameDraws<q_ulong>(randRainbowColor, [] {
                const int index = draw() / 4;
                const int opposite = (index + 4096) % 8192;
                return (iCos[index] / 256 + 128) << 16 | (iSin[index] / 256 + 128) << 8 | (iCos[opposite] / 256 + 128);
            });
        });
}

/// A host's record with a plane of 640 by 480 pixels in slot 0.
struct Host {
    TransferFrameGeometry geometry = {{}, 640 * 480, 0};
    _TRANSFERDATA data = {};

    explicit Host(int memoryUsedFlag) {
        data.memoryUsedFlag = memoryUsedFlag;
        data.frameGeometry = &geometry;
        FindNotUsedMemory(&data, 0, -1);
    }
    ~Host() { DeleteMemoryBlocks(&data); }
    Host(const Host &) = delete;
    Host &operator=(const Host &) = delete;

    int blocks() const { return data.blockCount; }
    const MemoryBlock *first() const { return data.blocks[0]; }
};

/// Adds a row that calls `call(record)`; `holds(host)` says whether a call did to a fresh host what it should.
template <class Call, class Check>
void addBlockRow(const std::string &name, Call call, Check holds, int memoryUsedFlag = 0) {
    addCall(
        name, [host = std::make_shared<Host>(memoryUsedFlag), call] { call(&host->data); },
        [call, holds, memoryUsedFlag] {
            Host host(memoryUsedFlag);
            call(&host.data);
            return holds(host);
        });
}

void addBlockRows() {
    const auto emptied = [](const Host &host) { return host.blocks() == 0 && !host.first(); };
    addBlockRow(
        "BeginMemoryManager", BeginMemoryManager,
        [](const Host &host) { return host.data.memoryUsedFlag == 0 && host.blocks() == 1; }, 1);
    addBlockRow("NoticeMemUsed", NoticeMemUsed,
                [](const Host &host) { return host.data.memoryUsedFlag == 1 && host.blocks() == 1; });
    addBlockRow("EndMemoryManager", EndMemoryManager, emptied);
    addBlockRow("DeleteMemoryBlocks", DeleteMemoryBlocks, emptied);
    addBlockRow("FreeMemoryBlocks", FreeMemoryBlocks, emptied);
    addBlockRow(
        "FindNotUsedMemory", [](_TRANSFERDATA *data) { FindNotUsedMemory(data, 0, -1); },
        [](const Host &host) { return host.blocks() == 1 && host.first()->size == 640 * 480 * 4; });
    addBlockRow(
        "ClearMemory", [](_TRANSFERDATA *data) { ClearMemory(data, 0); },
        [](const Host &host) {
            const auto *bytes = static_cast<const char *>(host.first()->start);
            return std::all_of(bytes, bytes + 640 * 480 * 4, [](char byte) { return byte == 0; });
        });
    addBlockRow(
        "GetPrivate_QMGP_Data", [](_TRANSFERDATA *data) { GetPrivate_QMGP_Data(data, 0); },
        [](const Host &host) {
            const auto *block = static_cast<const _PRIVATE_QMGP_DATA *>(host.first()->work);
            return host.blocks() == 1 && !block->plane && block->testPitch == 0;
        });
    addBlockRow(
        "GetPrivate_LUT_Data", [](_TRANSFERDATA *data) { GetPrivate_LUT_Data(data, 0); },
        [](const Host &host) {
            const auto *block = static_cast<const _PRIVATE_LUT_DATA *>(host.first()->work);
            return host.blocks() == 1 && block->phase == 0;
        });
}

} // namespace

void addFrameRows() {
    addCall("PrepareSinTable", PrepareSinTable, tablesHold);
    addCall(
        "Init_qMur_GlobalData", [] { Init_qMur_GlobalData(nullptr, nullptr); }, tablesHold);
    addBlockRows();
    addRandomRows();
}

} // namespace bench
