#include "base/private_block.h"
#include "base/z_plane.h"
#include "q_Mur/frame.h"
#include "q_Mur/pipeline.h"

using namespace qmur;

_PRIVATE_QMGL_DATA *GetPrivate_QMGL_Data(_TRANSFERDATA *transfer, int slot) {
    if (!transfer)
        return nullptr;
    const TransferLimits3D limits = *transfer->limits3D;
    const TransferFrameGeometry frame = *transfer->frameGeometry;
    const Distance depth = limits.matrixStackDepth;
    const Distance entries = limits.vertexArrayEntries;

    // The pieces follow each other without padding: none is more strictly aligned than the one before it.
    static_assert(alignof(_PRIVATE_QMGL_DATA) >= alignof(_I3DMATRIX) && alignof(_I3DMATRIX) >= alignof(int));
    const auto bytesOf = [](std::size_t element, long long count) { return static_cast<long long>(element) * count; };
    void *const block = FindNotUsedMemory(
        transfer, slot,
        requestedBytes(bytesOf(sizeof(_PRIVATE_QMGL_DATA), 1) + bytesOf(sizeof(_I3DMATRIX), 2LL * depth) +
                       bytesOf(sizeof(int), 2LL * entries) + bytesOf(sizeof(short), frame.planeElements)));
    if (!block)
        return nullptr;

    auto *const data = static_cast<_PRIVATE_QMGL_DATA *>(block);
    *data = {};
    data->modelStack = reinterpret_cast<_I3DMATRIX *>(data + 1);
    data->viewStack = data->modelStack + depth;
    data->vertexArray0 = reinterpret_cast<int *>(data->viewStack + depth);
    data->vertexArray1 = data->vertexArray0 + entries;
    data->zPlane = reinterpret_cast<short *>(data->vertexArray1 + entries);
    data->zBuffer = data->zPlane + frame.originElement;
    data->limitValue0 = limits.value0;
    data->limitValue1 = limits.value1;
    data->vertexArrayEntries = limits.vertexArrayEntries;
    data->matrixMode = 1;
    if (depth > 0) {
        SetIdentityMatrix(*data->modelStack);
        SetIdentityMatrix(*data->viewStack);
    }
    return data;
}

int VKD_ResetZBuffer(_PRIVATE_QMGL_DATA *data, tagRECT *rect, int pitch) {
    return clearDepths(data->zBuffer, *rect, pitch);
}
