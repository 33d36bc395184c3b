/// \file
/// The private blocks that calls take, with the memory that they point to.
#ifndef Q_MUR_CATALOGUE_BLOCKS_H
#define Q_MUR_CATALOGUE_BLOCKS_H

#include "plane.h"

namespace catalogue {

/// What the modules that draw in three dimensions both have: arrays of vertices and the Z plane of one destination.
template <class Record>
struct DrawingBlock {
    using Data = Record;

    Data data{};
    Plane vertexArray0; ///< ints
    Plane vertexArray1; ///< ints
    Plane depths;       ///< shorts; a null plane where the block has none

    /// Anything in the arrays, and depths of all kinds in a Z plane of the shape of a surface.
    void makeRandom(Random &random, const Plane &surface);

    /// Zeros, and an empty Z plane.
    void makeFresh(const Plane &surface);

    /// The record with its pointers set.
    Data *settled();

    /// Calls `visit(name, part)` for what the module's functions change.
    template <class Block, class Visit>
    static void eachPart(Block &block, Visit visit) {
        visit("vertexArray0", block.vertexArray0);
        visit("vertexArray1", block.vertexArray1);
        visit("zPlane", block.depths);
    }

    /// The same for what must stay as it was.
    template <class Block, class Visit>
    static void eachKept(Block &block, Visit visit) {
        visit("limitValue0", block.data.limitValue0);
        visit("limitValue1", block.data.limitValue1);
        visit("vertexArrayEntries", block.data.vertexArrayEntries);
    }
};

/// #_PRIVATE_QM3D_DATA.
struct TexturedBlock : DrawingBlock<_PRIVATE_QM3D_DATA> {
    static TexturedBlock random(Random &random, const Plane &surface);
    static TexturedBlock fresh(const Plane &surface);
};

/// #_PRIVATE_QMGL_DATA: matrix stacks besides.
struct PipelineBlock : DrawingBlock<_PRIVATE_QMGL_DATA> {
    Plane modelStack; ///< matrices of 16 floats
    Plane viewStack;  ///< likewise

    /// Stacks of three matrices each, anything in all of them.
    static PipelineBlock random(Random &random, const Plane &surface);

    /// Identities, and a viewport that is the surface.
    static PipelineBlock fresh(const Plane &surface);

    Data *settled();

    template <class Block, class Visit>
    static void eachPart(Block &block, Visit visit) {
        auto &data = block.data;
        visit("workMatrix", data.workMatrix);
        visit("workAxis", data.workAxis);
        visit("modelDepth", data.modelDepth);
        visit("viewDepth", data.viewDepth);
        visit("matrixMode", data.matrixMode);
        visit("viewportLeft", data.viewportLeft);
        visit("viewportRight", data.viewportRight);
        visit("viewportTop", data.viewportTop);
        visit("viewportBottom", data.viewportBottom);
        visit("nearLimit", data.nearLimit);
        visit("farLimit", data.farLimit);
        visit("focalLength", data.focalLength);
        visit("modelStack", block.modelStack);
        visit("viewStack", block.viewStack);
        DrawingBlock::eachPart(block, visit);
    }
    template <class Block, class Visit>
    static void eachKept(Block &block, Visit visit) {
        DrawingBlock::eachKept(block, visit);
        visit("spanMapper", block.data.spanMapper);
    }
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

    template <class Block, class Visit>
    static void eachPart(Block &block, Visit visit) {
        visit("planePitch", block.data.planePitch);
        visit("destPitch", block.data.destPitch);
        visit("testPitch", block.data.testPitch);
        visit("plane", block.plane);
        visit("destSurface", block.destSurface);
        visit("testSurface", block.testSurface);
    }
    template <class Block, class Visit>
    static void eachKept(Block &block, Visit visit) {
        visit("planeRect", block.planeRect);
    }
};

/// #_PRIVATE_LUT_DATA: the phase of a blur.
struct PhaseBlock {
    using Data = _PRIVATE_LUT_DATA;

    Data data{};

    Data *settled() { return &data; }

    template <class Block, class Visit>
    static void eachPart(Block &block, Visit visit) {
        visit("phase", block.data.phase);
    }
    template <class Block, class Visit>
    static void eachKept(Block &, Visit) {}
};

template <class Held>
concept IsBlock = requires {
    typename Held::Data;
};

/// Lays a Z plane out anew, the depths repeated, if a surface has another shape.
void fitDepths(Plane &depths, const Plane &surface);

} // namespace catalogue

#endif
