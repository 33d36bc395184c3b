#include "q_Mur/frame.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace {

constexpr int slotCount = 16;

/// What a size argument asks for.
struct Request {
    std::size_t bytes;
    std::size_t origin; ///< bytes from the start to the work pointer
};

/// Widened with its sign: what is negative is more than every heap has, and an origin may lie before its plane.
std::size_t widened(int count) {
    return static_cast<std::size_t>(static_cast<std::ptrdiff_t>(count));
}

Request requestOf(const _TRANSFERDATA &data, int size) {
    const auto plane = [&data](std::size_t elementSize) {
        const TransferFrameGeometry &frame = *data.frameGeometry;
        return Request{widened(frame.planeElements) * elementSize, widened(frame.originElement) * elementSize};
    };
    switch (size) {
    case -1:
        return plane(4);
    case -2:
        return plane(2);
    case -3:
        return plane(1);
    default:
        return {widened(size), 0};
    }
}

bool makeBlock(_TRANSFERDATA &data, int slot, int size) {
    auto *block = static_cast<MemoryBlock *>(std::malloc(sizeof(MemoryBlock)));
    data.blocks[slot] = block;
    if (!block)
        return false;
    *block = {};

    const Request request = requestOf(data, size);
    block->start = std::malloc(request.bytes);
    block->work = reinterpret_cast<void *>(reinterpret_cast<std::uintptr_t>(block->start) + request.origin);
    if (!block->start)
        return false;
    block->size = static_cast<q_ulong>(request.bytes);
    return true;
}

/// Takes a plain block that holds one zeroed record.
template <class Record>
Record *makePrivateBlock(_TRANSFERDATA *data, int slot) {
    void *block = FindNotUsedMemory(data, slot, static_cast<int>(sizeof(Record)));
    return block ? static_cast<Record *>(std::memset(block, 0, sizeof(Record))) : nullptr;
}

} // namespace

void BeginMemoryManager(_TRANSFERDATA *data) {
    data->memoryUsedFlag = 0;
}

void NoticeMemUsed(_TRANSFERDATA *data) {
    data->memoryUsedFlag = 1;
}

void EndMemoryManager(_TRANSFERDATA *data) {
    if (data->memoryUsedFlag == 0)
        DeleteMemoryBlocks(data);
}

void *FindNotUsedMemory(_TRANSFERDATA *data, int slot, int size) {
    if (slot == 0)
        DeleteMemoryBlocks(data);
    if (!makeBlock(*data, slot, size)) {
        DeleteMemoryBlocks(data);
        return nullptr;
    }
    ++data->blockCount;
    return data->blocks[slot]->work;
}

void ClearMemory(_TRANSFERDATA *data, int slot) {
    const MemoryBlock &block = *data->blocks[slot];
    std::memset(block.start, 0, block.size);
}

void FreeMemoryBlocks(_TRANSFERDATA *data) {
    DeleteMemoryBlocks(data);
}

void DeleteMemoryBlocks(_TRANSFERDATA *data) {
    if (!data)
        return;
    for (int slot = 0; slot < slotCount && data->blocks[slot]; ++slot) {
        std::free(data->blocks[slot]->start);
        std::free(data->blocks[slot]);
        data->blocks[slot] = nullptr;
    }
    data->blockCount = 0;
}

_PRIVATE_QMGP_DATA *GetPrivate_QMGP_Data(_TRANSFERDATA *data, int slot) {
    return makePrivateBlock<_PRIVATE_QMGP_DATA>(data, slot);
}

_PRIVATE_LUT_DATA *GetPrivate_LUT_Data(_TRANSFERDATA *data, int slot) {
    return makePrivateBlock<_PRIVATE_LUT_DATA>(data, slot);
}
