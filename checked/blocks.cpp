#include "blocks.h"

#include "memory.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <deque>
#include <mutex>
#include <set>

namespace checked {
namespace {

using catalogue::Row;
using RecordBlocks = catalogue::Blocks;

constexpr int slots = 16;

struct Blocks {
    std::mutex guard;
    std::set<const MemoryBlock *> held;
    std::set<const MemoryBlock *> freed;
    std::deque<void *> kept; ///< the memory of freed blocks, which nobody else is to get for a while
};
constexpr std::size_t mostKept = 16;
Blocks &blocks() {
    static auto *all = new Blocks; // outlives what calls at the very end
    return *all;
}

/// The blocks of a record up to its first empty slot, as they are before a call that may free them.
struct Doomed {
    MemoryBlock *block;
    MemoryBlock content;
};
/// Like all memory here it needs no destruction, since hosts call at the very end, too.
struct DoomedBlocks {
    std::array<Doomed, slots> blocks;
    std::size_t count;

    const Doomed *begin() const { return blocks.data(); }
    const Doomed *end() const { return begin() + count; }
};
thread_local constinit DoomedBlocks doomed = {};

bool isHeld(const MemoryBlock *block) {
    const std::lock_guard<std::mutex> lock(blocks().guard);
    return blocks().held.contains(block);
}

/// Takes down that the blocks are freed.
void retireDoomed() {
    const std::lock_guard<std::mutex> lock(blocks().guard);
    for (const auto &[block, content] : doomed) {
        forget(content.start, content.size);
        blocks().held.erase(block);
        blocks().freed.insert(block);
    }
    doomed.count = 0;
}

/// Has the library free other memory in place of the blocks' own, so that a pointer to it stays one to what is gone.
void keepDoomed() {
    const std::lock_guard<std::mutex> lock(blocks().guard);
    for (const Doomed &each : doomed) {
        each.block->start = std::malloc(1);
        blocks().kept.push_back(each.content.start);
    }
    for (; blocks().kept.size() > mostKept; blocks().kept.pop_front())
        std::free(blocks().kept.front());
}

_TRANSFERDATA *recordOf(std::span<const Given> given) {
    for (const Given &argument : given)
        if (argument.target == Target::hostRecord)
            return static_cast<_TRANSFERDATA *>(argument.pointer);
    return nullptr;
}
int slotOf(const Row &row, std::span<const Given> given) {
    for (std::size_t i = 0; i < given.size(); ++i)
        if (row.arguments[i].name == "slot")
            return static_cast<int>(given[i].value.number());
    return -1;
}

/// Whether a call frees all blocks up to the first empty slot.
bool freesBlocks(const Row &row, std::span<const Given> given) {
    switch (row.blocks) {
    case RecordBlocks::kept:
        return false;
    case RecordBlocks::freed:
        return true;
    case RecordBlocks::freedUnlessUsed:
        return recordOf(given)->memoryUsedFlag == 0;
    case RecordBlocks::allocated:
        return slotOf(row, given) == 0;
    }
    return false;
}

std::string placeOf(int slot) {
    return "data.blocks[" + std::to_string(slot) + "]";
}

/// What is wrong with the block of a slot that is not empty.
std::string faultOfSlot(const _TRANSFERDATA &data, int slot) {
    const MemoryBlock *block = data.blocks[slot];
    if (blocks().held.contains(block))
        return {};
    return placeOf(slot) +
           (blocks().freed.contains(block) ? " has been freed before" : " is no block: the record was not cleared");
}

/// What a private block of the modules that draw in three dimensions is cut from.
std::string faultOfLimits(const _TRANSFERDATA &data) {
    if (!data.limits3D)
        return "limits3D is null";
    if (!data.frameGeometry)
        return "frameGeometry is null";
    if (data.limits3D->vertexArrayEntries < 0)
        return "limits3D.vertexArrayEntries " + std::to_string(data.limits3D->vertexArrayEntries) + " is below 0";
    if (data.limits3D->matrixStackDepth < 0)
        return "limits3D.matrixStackDepth " + std::to_string(data.limits3D->matrixStackDepth) + " is below 0";
    if (data.frameGeometry->planeElements < 0)
        return "frameGeometry.planeElements " + std::to_string(data.frameGeometry->planeElements) + " is below 0";
    return {};
}

bool isOf3D(const Row &row) {
    return row.name == "GetPrivate_QMGL_Data" || row.name == "GetPrivate_QM3D_Data";
}

template <class Element>
void rememberArray(Element *begin, std::byte *end) {
    auto *first = reinterpret_cast<std::byte *>(begin);
    if (first < end)
        remember({first, static_cast<std::size_t>(end - first)});
}

/// The pieces follow each other, the Z plane up to the end. It holds what a reset or a host overwrites.
template <class Data>
void rememberPieces(Data &data, std::byte *end) {
    rememberArray(data.vertexArray0, reinterpret_cast<std::byte *>(data.vertexArray1));
    rememberArray(data.vertexArray1, reinterpret_cast<std::byte *>(data.zPlane));
    rememberArray(data.zPlane, end);
    if (auto *const zEnd = reinterpret_cast<short *>(end); data.zPlane < zEnd)
        std::fill(data.zPlane, zEnd, neverReset);
}

} // namespace

std::string faultOfRecord(const Row &row, std::span<const Given> given) {
    const _TRANSFERDATA *data = recordOf(given);
    if (!data)
        return {};
    const std::lock_guard<std::mutex> lock(blocks().guard);
    if (freesBlocks(row, given))
        for (int slot = 0; slot < slots && data->blocks[slot]; ++slot)
            if (std::string found = faultOfSlot(*data, slot); !found.empty())
                return found;
    if (row.name == "ClearMemory") {
        const int slot = slotOf(row, given);
        if (slot >= 0 && slot < slots)
            return data->blocks[slot] ? faultOfSlot(*data, slot) : placeOf(slot) + " is empty";
    }
    if (row.name == "FindNotUsedMemory" && !data->frameGeometry) {
        const double size = given[2].value.number();
        if (size < 0)
            return "frameGeometry is null, of which size " + std::to_string(static_cast<int>(size)) + " asks a plane";
    }
    return isOf3D(row) ? faultOfLimits(*data) : std::string();
}

std::string faultOfBlock(std::string_view name, const void *block) {
    const std::lock_guard<std::mutex> lock(blocks().guard);
    const auto &kept = blocks().kept;
    const bool isGone = block && std::find(kept.begin(), kept.end(), block) != kept.end();
    return isGone ? std::string(name) + " has been freed with its record's blocks" : std::string();
}

void noteBefore(const Row &row, std::span<const Given> given) {
    const _TRANSFERDATA *data = recordOf(given);
    doomed.count = 0;
    if (!data || row.blocks == RecordBlocks::kept)
        return;
    for (int slot = 0; slot < slots && data->blocks[slot]; ++slot)
        if (isHeld(data->blocks[slot]))
            doomed.blocks[doomed.count++] = {data->blocks[slot], *data->blocks[slot]};
    if (!freesBlocks(row, given))
        return;
    keepDoomed();
    retireDoomed();
}

void noteAfter(const Row &row, std::span<const Given> given, const void *allocated) {
    const _TRANSFERDATA *data = recordOf(given);
    if (!data || row.blocks != RecordBlocks::allocated)
        return;
    if (!allocated) { // all blocks of the record have gone with the one that could not be had
        retireDoomed();
        return;
    }
    const std::lock_guard<std::mutex> lock(blocks().guard);
    const MemoryBlock *block = data->blocks[slotOf(row, given)];
    blocks().held.insert(block);
    blocks().freed.erase(block);
    auto *begin = static_cast<std::byte *>(block->start);
    if (row.name == "GetPrivate_QMGL_Data") {
        auto &pipeline = *static_cast<_PRIVATE_QMGL_DATA *>(block->start);
        rememberArray(pipeline.modelStack, reinterpret_cast<std::byte *>(pipeline.viewStack));
        rememberArray(pipeline.viewStack, reinterpret_cast<std::byte *>(pipeline.vertexArray0));
        rememberPieces(pipeline, begin + block->size);
    } else if (row.name == "GetPrivate_QM3D_Data") {
        rememberPieces(*static_cast<_PRIVATE_QM3D_DATA *>(block->start), begin + block->size);
    } else {
        remember({begin, block->size});
    }
}

} // namespace checked
