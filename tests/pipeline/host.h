/// \file
/// Hosts for the tests of the matrix pipeline, and what is done to pixels in these.
#ifndef Q_MUR_TESTS_PIPELINE_HOST_H
#define Q_MUR_TESTS_PIPELINE_HOST_H

#include <q_Mur.h>

#include <cstdint>

namespace test {

/// A host's record with a frame and limits of its own.
struct HostRecord {
    TransferFrameGeometry geometry = {};
    TransferLimits3D limits;
    _TRANSFERDATA record = {};

    HostRecord(int planeElements, int originElement, int stackDepth, int vertexEntries)
        : limits{11, 22, vertexEntries, stackDepth} {
        geometry.planeElements = planeElements;
        geometry.originElement = originElement;
        record.frameGeometry = &geometry;
        record.limits3D = &limits;
    }
    ~HostRecord() { DeleteMemoryBlocks(&record); }
    HostRecord(const HostRecord &) = delete;
    HostRecord &operator=(const HostRecord &) = delete;
};

inline std::uintptr_t addressOf(const void *pointer) {
    return reinterpret_cast<std::uintptr_t>(pointer);
}

/// The same with one private block.
struct Host : HostRecord {
    _PRIVATE_QMGL_DATA *data;

    explicit Host(int planeElements = 64, int originElement = 0, int stackDepth = 4, int vertexEntries = 4)
        : HostRecord(planeElements, originElement, stackDepth, vertexEntries), data(GetPrivate_QMGL_Data(&record, 0)) {}
};

/// What a band or a triangle does to a pixel.
enum class Way { draw, blend, mix, add };

} // namespace test

#endif
