/// \file
/// Hosts and destinations for the tests of the matrix pipeline.
#ifndef Q_MUR_TESTS_PIPELINE_HOST_H
#define Q_MUR_TESTS_PIPELINE_HOST_H

#include "support/painting.h"

#include <cstdint>
#include <utility>

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

/// A picture with a Z plane of the same shape, margins included. Each depth stands, sign-extended, in one word of
/// `depths`, so that two planes compare like two pictures.
class Canvas {
public:
    Canvas(Surface startPicture, Surface startDepths)
        : picture(std::move(startPicture)),
          host(static_cast<int>(picture.words().size()), Surface::margin * picture.pitch() + Surface::margin) {
        data = host.data;
        data->nearLimit = -0x8000;
        for (std::size_t i = 0; i < picture.words().size(); ++i)
            data->zPlane[i] = static_cast<short>(startDepths.words()[i]);
    }

    /// Black, with an empty Z plane.
    Canvas(int width, int height) : Canvas(Surface(width, height), Surface(width, height, 0x7FFF)) {}

    short &depth(int x, int y) { return data->zBuffer[y * picture.pitch() + x]; }

    Surface depths() const {
        Surface result = picture;
        for (int y = -Surface::margin; y < picture.height() + Surface::margin; ++y)
            for (int x = -Surface::margin; x < picture.pitch() - Surface::margin; ++x)
                result.at(x, y) = static_cast<q_ulong>(data->zBuffer[y * picture.pitch() + x]);
        return result;
    }

    q_ulong *pixels() { return picture.pixels(); }
    q_ulong pitch() const { return static_cast<q_ulong>(picture.pitch()); }

    Surface picture;
    _PRIVATE_QMGL_DATA *data;

private:
    Host host;
};

} // namespace test

#endif
