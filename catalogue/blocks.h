/// \file
/// The private blocks that calls take, with the memory that they point to.
#ifndef Q_MUR_CATALOGUE_BLOCKS_H
#define Q_MUR_CATALOGUE_BLOCKS_H

#include "plane.h"

#include <string>

namespace catalogue {

/// #_PRIVATE_QMGL_DATA: matrix stacks, arrays of vertices and the Z plane of one destination.
struct PipelineBlock {
    using Data = _PRIVATE_QMGL_DATA;

    Data data{};
    Plane modelStack;   ///< matrices of 16 floats
    Plane viewStack;    ///< likewise
    Plane vertexArray0; ///< ints
    Plane vertexArray1; ///< ints
    Plane depths;       ///< shorts; a null plane where the block has none

    /// Stacks of three matrices each, anything in all of them, and a Z plane of the shape of a surface with depths of
    /// all kinds.
    static PipelineBlock random(Random &random, const Plane &surface);

    /// Identities, an empty Z plane and a viewport that is the surface.
    static PipelineBlock fresh(const Plane &surface);

    /// Lays the Z plane out anew if the surface has another shape.
    void fitTo(const Plane &surface);

    /// The record with its pointers set.
    Data *settled();
    PipelineBlock copy(Copies &copies) const;
    void restore(const PipelineBlock &earlier);
    std::string differenceFrom(const PipelineBlock &expected) const;
};

/// #_PRIVATE_QM3D_DATA: arrays of vertices and the Z plane of one destination.
struct TexturedBlock {
    using Data = _PRIVATE_QM3D_DATA;

    Data data{};
    Plane vertexArray0;
    Plane vertexArray1;
    Plane depths;

    static TexturedBlock random(Random &random, const Plane &surface);
    static TexturedBlock fresh(const Plane &surface);
    void fitTo(const Plane &surface);
    Data *settled();
    TexturedBlock copy(Copies &copies) const;
    void restore(const TexturedBlock &earlier);
    std::string differenceFrom(const TexturedBlock &expected) const;
};

/// #_PRIVATE_QMGP_DATA: the surfaces and the plane of a region fill.
struct RegionBlock {
    using Data = _PRIVATE_QMGP_DATA;

    Data data{};
    Plane plane;
    tagRECT planeRect{};
    Plane destSurface;
    Plane testSurface;

    Data *settled();
    RegionBlock copy(Copies &copies) const;
    void restore(const RegionBlock &earlier);
    std::string differenceFrom(const RegionBlock &expected) const;
};

/// #_PRIVATE_LUT_DATA: the phase of a blur.
struct PhaseBlock {
    using Data = _PRIVATE_LUT_DATA;

    Data data{};

    Data *settled() { return &data; }
    PhaseBlock copy(Copies &) const { return *this; }
    void restore(const PhaseBlock &earlier) { data = earlier.data; }
    std::string differenceFrom(const PhaseBlock &expected) const;
};

} // namespace catalogue

#endif
