#include "base/private_block.h"
#include "base/z_plane.h"
#include "q_Mur/frame.h"
#include "q_Mur/textured.h"

using namespace qmur;

_PRIVATE_QM3D_DATA *GetPrivate_QM3D_Data(_TRANSFERDATA *data, int slot) {
    if (!data)
        return nullptr;
    const TransferLimits3D limits = *data->limits3D;
    const TransferFrameGeometry frame = *data->frameGeometry;
    const Distance entries = limits.vertexArrayEntries;

    // Each piece is no more strictly aligned than the one before it, so that no padding is needed between them.
    const long long arrayBytes = static_cast<long long>(sizeof(int)) * entries;
    const long long planeBytes = static_cast<long long>(sizeof(short)) * frame.planeElements;
    const long long recordBytes = static_cast<long long>(sizeof(_PRIVATE_QM3D_DATA));
    void *const memory = FindNotUsedMemory(data, slot, requestedBytes(recordBytes + 2 * arrayBytes + planeBytes));
    if (!memory)
        return nullptr;

    auto *const block = static_cast<_PRIVATE_QM3D_DATA *>(memory);
    block->limitValue0 = limits.value0;
    block->limitValue1 = limits.value1;
    block->vertexArrayEntries = limits.vertexArrayEntries;
    block->spanMapper = nullptr;
    block->vertexArray0 = reinterpret_cast<int *>(block + 1);
    block->vertexArray1 = block->vertexArray0 + entries;
    block->zPlane = reinterpret_cast<short *>(block->vertexArray1 + entries);
    block->zBuffer = block->zPlane + frame.originElement;
    return block;
}

int ResetZBuffer(_PRIVATE_QM3D_DATA *data, tagRECT *rect, int pitch) {
    return clearDepths(data->zBuffer, *rect, pitch);
}
