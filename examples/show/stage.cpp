#include "stage.h"

#include "space.h"

#include <new>

namespace show {

namespace {

constexpr int planeOfPixels = -1;
constexpr int usableSlots = 15;

constexpr int vertexArrayEntries = 65536;
constexpr int matrixStackDepth = 32;

} // namespace

Stage::Stage(int width, int height)
    : layout{width, height}, frameCanvas(width, height), frameSurface(frameCanvas.surface()) {
    geometry.planeElements = layout.elements();
    geometry.originElement = layout.origin();
    limits.vertexArrayEntries = vertexArrayEntries;
    limits.matrixStackDepth = matrixStackDepth;
    record.frameGeometry = &geometry;
    record.limits3D = &limits;
}

Stage::~Stage() {
    FreeMemoryBlocks(&record);
}

Space &Stage::space() {
    if (!ownSpace)
        ownSpace = std::make_unique<Space>(layout.width, layout.height);
    return *ownSpace;
}

Stage::Plane::Plane(Stage &owner) : stage(owner) {
    // Planes are taken and returned like a stack, so the slots fill from 0 upward without a hole.
    const int slot = stage.planesInUse;
    if (slot >= usableSlots)
        throw std::bad_alloc();
    const MemoryBlock *const block = stage.record.blocks[slot];
    void *const work = block ? block->work : FindNotUsedMemory(&stage.record, slot, planeOfPixels);
    if (!work)
        throw std::bad_alloc();
    NoticeMemUsed(&stage.record);
    ++stage.planesInUse;
    surface = stage.layout.at(static_cast<q_ulong *>(work));
}

} // namespace show
