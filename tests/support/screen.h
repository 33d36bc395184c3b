/// \file
/// What the modules draw on that know depths.
#ifndef Q_MUR_TESTS_SCREEN_H
#define Q_MUR_TESTS_SCREEN_H

#include "painting.h"

#include <vector>

namespace test {

constexpr short emptyDepth = 0x7FFF;

/// A Z plane of the shape of a surface, margins included.
class DepthPlane {
public:
    explicit DepthPlane(const Surface &surface, short value = emptyDepth)
        : stride(surface.pitch()), buffer(surface.words().size(), value) {}

    /// The entry of pixel (0, 0), as it is handed to the library.
    short *entries() { return &at(0, 0); }

    short &at(int x, int y) { return buffer.at(index(x, y)); }
    short at(int x, int y) const { return buffer.at(index(x, y)); }

    friend bool operator==(const DepthPlane &a, const DepthPlane &b) { return a.buffer == b.buffer; }

private:
    std::size_t index(int x, int y) const {
        return static_cast<std::size_t>((y + Surface::margin) * stride + x + Surface::margin);
    }

    int stride;
    std::vector<short> buffer;
};

/// A private block that holds nothing but a plane.
template <class Data>
Data blockOver(DepthPlane &plane) {
    Data data = {};
    data.zBuffer = plane.entries();
    return data;
}

constexpr q_ulong background = 0x55555555;

/// A surface, its Z plane and both modules' blocks over it.
struct Screen {
    Surface surface;
    DepthPlane depths;
    _PRIVATE_QM3D_DATA older;
    _PRIVATE_QMGL_DATA pipeline;

    explicit Screen(int width = 16, int height = 16, q_ulong colour = background, short depth = emptyDepth)
        : surface(width, height, colour), depths(surface, depth), older(blockOver<_PRIVATE_QM3D_DATA>(depths)),
          pipeline(blockOver<_PRIVATE_QMGL_DATA>(depths)) {
        pipeline.nearLimit = -0x7FFFFFFF;
    }
    Screen(const Screen &) = delete;
    Screen &operator=(const Screen &) = delete;

    q_ulong pitch() const { return static_cast<q_ulong>(surface.pitch()); }
    bool untouched() const {
        const Screen fresh(surface.width(), surface.height());
        return surface == fresh.surface && depths == fresh.depths;
    }
};

} // namespace test

#endif
