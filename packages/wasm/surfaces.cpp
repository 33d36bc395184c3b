/// \file
/// Memory for what a host of the module hands to its functions: surfaces, records, texts. It lies in the module's own,
/// where the host sees it.
#include <cstdlib>
#include <q_Mur.h>

namespace {

/// A host's record with what it leads to.
struct Transfer {
    _TRANSFERDATA record;
    TransferFrameGeometry geometry;
    TransferLimits3D limits;
};

} // namespace

extern "C" {

/// So many bytes, all 0, at a multiple of 16; a null pointer if there are not so many.
__attribute__((export_name("q_MurAllocate"))) void *q_MurAllocate(unsigned bytes) {
    return std::calloc(bytes, 1);
}

/// Gives back what q_MurAllocate() gave. A null pointer is nothing.
__attribute__((export_name("q_MurRelease"))) void q_MurRelease(void *memory) {
    std::free(memory);
}

/// A host's record of these sizes, with empty slots; a null pointer if there is no memory. q_MurRelease() gives it
/// back.
__attribute__((export_name("q_MurTransfer"))) _TRANSFERDATA *
q_MurTransfer(int planeElements, int originElement, int vertexArrayEntries, int matrixStackDepth) {
    auto *transfer = static_cast<Transfer *>(std::calloc(1, sizeof(Transfer)));
    if (!transfer)
        return nullptr;
    transfer->geometry.planeElements = planeElements;
    transfer->geometry.originElement = originElement;
    transfer->limits.vertexArrayEntries = vertexArrayEntries;
    transfer->limits.matrixStackDepth = matrixStackDepth;
    transfer->record.frameGeometry = &transfer->geometry;
    transfer->record.limits3D = &transfer->limits;
    return &transfer->record;
}
}
