/// \file
/// A host's record as calls one after the other fill and empty it, beside what is expected of it.
#ifndef Q_MUR_TESTS_FUZZ_RECORDS_H
#define Q_MUR_TESTS_FUZZ_RECORDS_H

#include "input.h"

#include <cstring>
#include <memory>
#include <string_view>

namespace fuzz {

class Record {
public:
    Record() {
        record.frameGeometry = &geometry;
        record.limits3D = &limits;
    }
    Record(const Record &) = delete;
    Record &operator=(const Record &) = delete;
    ~Record() { DeleteMemoryBlocks(&record); }

    /// Whether a function takes a host's record.
    static bool concerns(const catalogue::Row &row) {
        return std::any_of(row.arguments.begin(), row.arguments.end(), [](const catalogue::Argument &argument) {
            return argument.kind == catalogue::Kind::hostRecord;
        });
    }

    /// Makes a call that the record allows, and ends the program where something else becomes of it than is expected.
    void tryCall(const catalogue::Row &row, catalogue::Random &random) {
        chooseSizes(random);
        const bool clears = row.name == "ClearMemory";
        if (clears && held.empty())
            return;
        const int last = static_cast<int>(held.size()) - 1;
        const int slot = clears ? random.between(0, last) : random.oneIn(4) || last == lastSlot ? 0 : last + 1;
        const int size = random.oneIn(2) ? random.between(-3, -1) : random.between(0, 0xFFF);
        catalogue::Call call = callOf(row, slot, size);
        if (tellsCalls())
            std::fprintf(stderr, "%s: slot %d, size %d\n", row.fullName().c_str(), slot, size);
        row.functions.library(call)();
        using catalogue::Blocks;
        if (row.name == "BeginMemoryManager" || row.name == "NoticeMemUsed")
            isUsed = row.name == "NoticeMemUsed";
        const bool isFreed = row.blocks == Blocks::freed || (row.blocks == Blocks::freedUnlessUsed && !isUsed) ||
                             (row.blocks == Blocks::allocated && slot == 0);
        if (isFreed)
            held.clear();
        if (clears)
            held[static_cast<std::size_t>(slot)].content = 0;
        if (row.blocks == Blocks::allocated)
            take(row, size, call);
        demandAsExpected(row);
        for (Block &block : held)
            block.content = random.between(0, 255);
        for (std::size_t i = 0; i < held.size(); ++i)
            std::memset(record.blocks[i]->start, held[i].content, held[i].bytes);
    }

private:
    static constexpr int lastSlot = 14;

    struct Block {
        std::size_t bytes;
        int content; ///< of each byte; -1 where it is anything
    };

    /// Blocks that are held keep the sizes that they have.
    void chooseSizes(catalogue::Random &random) {
        geometry.planeElements = random.between(1, 0x100);
        geometry.originElement = random.between(0, geometry.planeElements - 1);
        limits.vertexArrayEntries = random.between(0, 63);
        limits.matrixStackDepth = random.between(1, 4);
    }

    catalogue::Call callOf(const catalogue::Row &row, int slot, int size) {
        catalogue::Call call(row);
        const auto memory = std::make_shared<catalogue::Memory>(reinterpret_cast<std::byte *>(&record), sizeof record);
        for (std::size_t i = 0; i < call.size(); ++i) {
            const catalogue::Argument &argument = row.arguments[i];
            if (argument.kind == catalogue::Kind::hostRecord)
                call[i] = catalogue::Plane::over(&record, 4, sizeof record / 4, memory);
            else
                call[i] = argument.name == "slot" ? slot : size;
        }
        return call;
    }

    /// Takes down what has been allocated. The pieces of a private block follow each other up to its end.
    void take(const catalogue::Row &row, int size, const catalogue::Call &call) {
        const auto count = static_cast<std::size_t>(geometry.planeElements);
        const std::size_t arrays = 2 * static_cast<std::size_t>(limits.vertexArrayEntries) * sizeof(int);
        const std::size_t stacks = 2 * static_cast<std::size_t>(limits.matrixStackDepth) * sizeof(_I3DMATRIX);
        std::size_t bytes = 0;
        int content = -1;
        if (row.name == "FindNotUsedMemory") {
            bytes = size >= 0 ? static_cast<std::size_t>(size) : count * (size == -1 ? 4 : size == -2 ? 2 : 1);
        } else if (row.name == "GetPrivate_QMGL_Data") {
            bytes = sizeof(_PRIVATE_QMGL_DATA) + stacks + arrays + count * sizeof(short);
        } else if (row.name == "GetPrivate_QM3D_Data") {
            bytes = sizeof(_PRIVATE_QM3D_DATA) + arrays + count * sizeof(short);
        } else {
            bytes = row.name == "GetPrivate_QMGP_Data" ? sizeof(_PRIVATE_QMGP_DATA) : sizeof(_PRIVATE_LUT_DATA);
            content = 0;
        }
        held.push_back({bytes, content});
        const MemoryBlock *block = record.blocks[held.size() - 1];
        if (!block || block->size != bytes)
            fail(row, "the block is not as large as it was to be");
        const auto *origin = static_cast<const std::byte *>(block->start);
        if (row.name == "FindNotUsedMemory" && size < 0)
            origin += static_cast<std::size_t>(geometry.originElement) * (size == -1 ? 4 : size == -2 ? 2 : 1);
        if (call.returned<const std::byte *>() != origin)
            fail(row, "the pointer leads elsewhere");
    }

    void demandAsExpected(const catalogue::Row &row) const {
        if (record.blockCount != static_cast<int>(held.size()))
            fail(row, "the count of blocks is " + std::to_string(record.blockCount));
        for (int slot = 0; slot <= lastSlot + 1; ++slot)
            if (!record.blocks[slot] != (slot >= static_cast<int>(held.size())))
                fail(row, "slot " + std::to_string(slot) + " is not as expected");
        for (std::size_t i = 0; i < held.size(); ++i) {
            const auto *bytes = static_cast<const unsigned char *>(record.blocks[i]->start);
            const int content = held[i].content;
            if (content >= 0 && !std::all_of(bytes, bytes + held[i].bytes, [content](int b) { return b == content; }))
                fail(row, "the block of slot " + std::to_string(i) + " has changed");
        }
    }

    TransferFrameGeometry geometry = {};
    TransferLimits3D limits = {};
    _TRANSFERDATA record = {};
    std::vector<Block> held;
    bool isUsed = false;
};

} // namespace fuzz

#endif
