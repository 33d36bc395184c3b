#include "blocks.h"

#include <algorithm>

namespace catalogue {
namespace {

constexpr int stackDepth = 3;
constexpr int vertexEntries = 64;
constexpr short emptyDepth = 0x7FFF;

/// A Z plane of the shape of a surface; what its margins hold is no depth that matters.
Plane depthsFor(const Plane &surface) {
    const int margin = std::min(Plane::usualMargin, (surface.pitch() - surface.width()) / 2);
    return {2, surface.width(), surface.height(), margin, surface.pitch() - surface.width() - 2 * margin};
}

template <class Depth>
Plane filledDepths(const Plane &surface, Depth depth) {
    const Plane plane = depthsFor(surface);
    return plane.fill<short>(plane.rect(), depth);
}

/// Empty, anything, or near what is drawn.
short anyDepth(Random &random) {
    switch (random.between(0, 3)) {
    case 0:
        return emptyDepth;
    case 1:
        return static_cast<short>(random.word());
    default:
        return static_cast<short>(random.between(0, 300));
    }
}

Plane randomStack(Random &random) {
    return Plane::array<float>(16 * stackDepth, [&random](int) { return random.real(4); });
}

Plane stackOfIdentities() {
    return Plane::array<float>(16 * stackDepth, [](int i) { return i % 16 % 5 == 0 ? 1.0F : 0.0F; });
}

} // namespace

template <class Record>
void DrawingBlock<Record>::makeRandom(Random &random, const Plane &surface) {
    data.vertexArrayEntries = vertexEntries;
    random.inBulk([&](Random &drawn) {
        for (Plane *array : {&vertexArray0, &vertexArray1})
            *array = Plane::array<int>(vertexEntries, [&drawn](int) { return drawn.between(-50, 300); });
        depths = filledDepths(surface, [&drawn](int, int) { return anyDepth(drawn); });
    });
}

template <class Record>
void DrawingBlock<Record>::makeFresh(const Plane &surface) {
    data.vertexArrayEntries = vertexEntries;
    vertexArray0 = Plane(4, vertexEntries, 1);
    vertexArray1 = Plane(4, vertexEntries, 1);
    depths = filledDepths(surface, [](int, int) { return emptyDepth; });
}

template <class Record>
Record *DrawingBlock<Record>::settled() {
    data.vertexArray0 = vertexArray0.as<int>();
    data.vertexArray1 = vertexArray1.as<int>();
    void *first = depths.bytes().data();
    data.zPlane = static_cast<short *>(first);
    data.zBuffer = depths.as<short>();
    return &data;
}

template struct DrawingBlock<_PRIVATE_QM3D_DATA>;
template struct DrawingBlock<_PRIVATE_QMGL_DATA>;

TexturedBlock TexturedBlock::random(Random &random, const Plane &surface) {
    TexturedBlock block;
    block.makeRandom(random, surface);
    return block;
}

TexturedBlock TexturedBlock::fresh(const Plane &surface) {
    TexturedBlock block;
    block.makeFresh(surface);
    return block;
}

PipelineBlock PipelineBlock::random(Random &random, const Plane &surface) {
    PipelineBlock block;
    std::generate_n(block.data.workMatrix.m, 16, [&random] { return random.real(4); });
    block.data.workAxis = {random.real(4), random.real(4), random.real(4), 0};
    block.data.modelDepth = random.between(0, stackDepth - 1);
    block.data.viewDepth = random.between(0, stackDepth - 1);
    block.data.matrixMode = random.between(0, 2);
    block.data.viewportLeft = random.between(-999, 999);
    block.data.viewportRight = random.between(-999, 999);
    block.data.viewportTop = random.between(-999, 999);
    block.data.viewportBottom = random.between(-999, 999);
    block.data.nearLimit = random.between(-100, 100);
    block.data.farLimit = random.between(-999, 999);
    block.data.focalLength = random.between(-100, 1000);
    block.modelStack = randomStack(random);
    block.viewStack = randomStack(random);
    block.makeRandom(random, surface);
    return block;
}

PipelineBlock PipelineBlock::fresh(const Plane &surface) {
    PipelineBlock block;
    block.data.matrixMode = 1;
    block.data.viewportRight = surface.width();
    block.data.viewportBottom = surface.height();
    block.data.nearLimit = -surface.height();
    block.data.focalLength = surface.height();
    block.modelStack = stackOfIdentities();
    block.viewStack = stackOfIdentities();
    block.makeFresh(surface);
    return block;
}

PipelineBlock::Data *PipelineBlock::settled() {
    data.modelStack = modelStack.as<_I3DMATRIX>();
    data.viewStack = viewStack.as<_I3DMATRIX>();
    return DrawingBlock::settled();
}

RegionBlock::Data *RegionBlock::settled() {
    data.plane = plane.as<unsigned char>();
    data.planeRect = &planeRect;
    data.destSurface = destSurface.as<q_ulong>();
    data.testSurface = testSurface.as<q_ulong>();
    data.planePitch = plane.pitch();
    data.destPitch = destSurface.pitch();
    data.testPitch = testSurface.pitch();
    return &data;
}

void fitDepths(Plane &depths, const Plane &surface) {
    if (depths.isNull() ||
        (depths.width() == surface.width() && depths.height() == surface.height() && depths.pitch() == surface.pitch()))
        return;
    depths = filledDepths(surface, [&depths](int x, int y) {
        return depths.as<short>()[y % depths.height() * depths.pitch() + x % depths.width()];
    });
}

} // namespace catalogue
