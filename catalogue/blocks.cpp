#include "blocks.h"

#include <algorithm>
#include <cstring>

namespace catalogue {
namespace {

/// Names the first plane of two records that differs.
class Comparison {
public:
    void planes(const char *name, const Plane &result, const Plane &expected) {
        const std::string difference = result.differenceFrom(expected);
        if (found.empty() && !difference.empty())
            found = std::string(name) + ": " + difference;
    }

    template <class Field>
    void fields(const char *name, const Field &result, const Field &expected) {
        if (found.empty() && std::memcmp(&result, &expected, sizeof(Field)) != 0)
            found = std::string(name) + " differs";
    }

    std::string found;
};

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
    Plane plane = depthsFor(surface);
    for (int y = 0; y < plane.height(); ++y)
        for (int x = 0; x < plane.width(); ++x)
            plane.as<short>()[y * plane.pitch() + x] = depth(x, y);
    return plane;
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

Plane randomDepths(Random &random, const Plane &surface) {
    return filledDepths(surface, [&random](int, int) { return anyDepth(random); });
}

Plane emptyDepths(const Plane &surface) {
    return filledDepths(surface, [](int, int) { return emptyDepth; });
}

/// The depths of a plane, repeated over a surface of another shape.
void fit(Plane &depths, const Plane &surface) {
    if (depths.isNull() ||
        (depths.width() == surface.width() && depths.height() == surface.height() && depths.pitch() == surface.pitch()))
        return;
    depths = filledDepths(surface, [&depths](int x, int y) {
        return depths.as<short>()[y % depths.height() * depths.pitch() + x % depths.width()];
    });
}

Plane randomNumbers(Random &random, int count) {
    Plane plane(4, count, 1);
    std::generate_n(plane.as<int>(), count, [&random] { return random.between(-50, 300); });
    return plane;
}

Plane randomStack(Random &random) {
    Plane plane(4, 16 * stackDepth, 1);
    std::generate_n(plane.as<float>(), 16 * stackDepth, [&random] { return random.real(4); });
    return plane;
}

Plane stackOfIdentities() {
    Plane plane(4, 16 * stackDepth, 1);
    for (int i = 0; i < 16 * stackDepth; ++i)
        plane.as<float>()[i] = i % 16 % 5 == 0 ? 1.0F : 0.0F;
    return plane;
}

} // namespace

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
    block.data.vertexArrayEntries = vertexEntries;
    block.modelStack = randomStack(random);
    block.viewStack = randomStack(random);
    block.vertexArray0 = randomNumbers(random, vertexEntries);
    block.vertexArray1 = randomNumbers(random, vertexEntries);
    block.depths = randomDepths(random, surface);
    return block;
}

PipelineBlock PipelineBlock::fresh(const Plane &surface) {
    PipelineBlock block;
    block.data.matrixMode = 1;
    block.data.viewportRight = surface.width();
    block.data.viewportBottom = surface.height();
    block.data.nearLimit = -surface.height();
    block.data.focalLength = surface.height();
    block.data.vertexArrayEntries = vertexEntries;
    block.modelStack = stackOfIdentities();
    block.viewStack = stackOfIdentities();
    block.vertexArray0 = Plane(4, vertexEntries, 1);
    block.vertexArray1 = Plane(4, vertexEntries, 1);
    block.depths = emptyDepths(surface);
    return block;
}

void PipelineBlock::fitTo(const Plane &surface) {
    fit(depths, surface);
}

PipelineBlock::Data *PipelineBlock::settled() {
    data.modelStack = modelStack.as<_I3DMATRIX>();
    data.viewStack = viewStack.as<_I3DMATRIX>();
    data.vertexArray0 = vertexArray0.as<int>();
    data.vertexArray1 = vertexArray1.as<int>();
    data.zPlane = depths.isNull()
                      ? nullptr
                      : static_cast<short *>(static_cast<void *>(const_cast<std::byte *>(depths.bytes().data())));
    data.zBuffer = depths.as<short>();
    return &data;
}

PipelineBlock PipelineBlock::copy(Copies &copies) const {
    return {data,
            modelStack.copy(copies),
            viewStack.copy(copies),
            vertexArray0.copy(copies),
            vertexArray1.copy(copies),
            depths.copy(copies)};
}

void PipelineBlock::restore(const PipelineBlock &earlier) {
    data = earlier.data;
    modelStack.restore(earlier.modelStack);
    viewStack.restore(earlier.viewStack);
    vertexArray0.restore(earlier.vertexArray0);
    vertexArray1.restore(earlier.vertexArray1);
    depths.restore(earlier.depths);
    settled();
}

std::string PipelineBlock::differenceFrom(const PipelineBlock &expected) const {
    Comparison c;
    c.fields("workMatrix", data.workMatrix, expected.data.workMatrix);
    c.fields("workAxis", data.workAxis, expected.data.workAxis);
    c.fields("modelDepth", data.modelDepth, expected.data.modelDepth);
    c.fields("viewDepth", data.viewDepth, expected.data.viewDepth);
    c.fields("matrixMode", data.matrixMode, expected.data.matrixMode);
    c.fields("viewportLeft", data.viewportLeft, expected.data.viewportLeft);
    c.fields("viewportRight", data.viewportRight, expected.data.viewportRight);
    c.fields("viewportTop", data.viewportTop, expected.data.viewportTop);
    c.fields("viewportBottom", data.viewportBottom, expected.data.viewportBottom);
    c.fields("nearLimit", data.nearLimit, expected.data.nearLimit);
    c.fields("farLimit", data.farLimit, expected.data.farLimit);
    c.fields("focalLength", data.focalLength, expected.data.focalLength);
    c.fields("limitValue0", data.limitValue0, expected.data.limitValue0);
    c.fields("limitValue1", data.limitValue1, expected.data.limitValue1);
    c.fields("vertexArrayEntries", data.vertexArrayEntries, expected.data.vertexArrayEntries);
    c.fields("spanMapper", data.spanMapper, expected.data.spanMapper);
    c.planes("modelStack", modelStack, expected.modelStack);
    c.planes("viewStack", viewStack, expected.viewStack);
    c.planes("vertexArray0", vertexArray0, expected.vertexArray0);
    c.planes("vertexArray1", vertexArray1, expected.vertexArray1);
    c.planes("zPlane", depths, expected.depths);
    return c.found;
}

TexturedBlock TexturedBlock::random(Random &random, const Plane &surface) {
    TexturedBlock block;
    block.data.vertexArrayEntries = vertexEntries;
    block.vertexArray0 = randomNumbers(random, vertexEntries);
    block.vertexArray1 = randomNumbers(random, vertexEntries);
    block.depths = randomDepths(random, surface);
    return block;
}

TexturedBlock TexturedBlock::fresh(const Plane &surface) {
    TexturedBlock block;
    block.data.vertexArrayEntries = vertexEntries;
    block.vertexArray0 = Plane(4, vertexEntries, 1);
    block.vertexArray1 = Plane(4, vertexEntries, 1);
    block.depths = emptyDepths(surface);
    return block;
}

void TexturedBlock::fitTo(const Plane &surface) {
    fit(depths, surface);
}

TexturedBlock::Data *TexturedBlock::settled() {
    data.vertexArray0 = vertexArray0.as<int>();
    data.vertexArray1 = vertexArray1.as<int>();
    data.zPlane = depths.isNull()
                      ? nullptr
                      : static_cast<short *>(static_cast<void *>(const_cast<std::byte *>(depths.bytes().data())));
    data.zBuffer = depths.as<short>();
    return &data;
}

TexturedBlock TexturedBlock::copy(Copies &copies) const {
    return {data, vertexArray0.copy(copies), vertexArray1.copy(copies), depths.copy(copies)};
}

void TexturedBlock::restore(const TexturedBlock &earlier) {
    data = earlier.data;
    vertexArray0.restore(earlier.vertexArray0);
    vertexArray1.restore(earlier.vertexArray1);
    depths.restore(earlier.depths);
    settled();
}

std::string TexturedBlock::differenceFrom(const TexturedBlock &expected) const {
    Comparison c;
    c.fields("limitValue0", data.limitValue0, expected.data.limitValue0);
    c.fields("limitValue1", data.limitValue1, expected.data.limitValue1);
    c.fields("vertexArrayEntries", data.vertexArrayEntries, expected.data.vertexArrayEntries);
    // The mappers of this module have no names: a twin can say no more than whether there is one.
    c.fields("spanMapper", data.spanMapper != nullptr, expected.data.spanMapper != nullptr);
    c.planes("vertexArray0", vertexArray0, expected.vertexArray0);
    c.planes("vertexArray1", vertexArray1, expected.vertexArray1);
    c.planes("zPlane", depths, expected.depths);
    return c.found;
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

RegionBlock RegionBlock::copy(Copies &copies) const {
    return {data, plane.copy(copies), planeRect, destSurface.copy(copies), testSurface.copy(copies)};
}

void RegionBlock::restore(const RegionBlock &earlier) {
    data = earlier.data;
    plane.restore(earlier.plane);
    destSurface.restore(earlier.destSurface);
    testSurface.restore(earlier.testSurface);
    planeRect = earlier.planeRect;
    settled();
}

std::string RegionBlock::differenceFrom(const RegionBlock &expected) const {
    Comparison c;
    c.fields("planeRect", planeRect, expected.planeRect);
    c.fields("planePitch", data.planePitch, expected.data.planePitch);
    c.fields("destPitch", data.destPitch, expected.data.destPitch);
    c.fields("testPitch", data.testPitch, expected.data.testPitch);
    c.planes("plane", plane, expected.plane);
    c.planes("destSurface", destSurface, expected.destSurface);
    c.planes("testSurface", testSurface, expected.testSurface);
    return c.found;
}

std::string PhaseBlock::differenceFrom(const PhaseBlock &expected) const {
    Comparison c;
    c.fields("phase", data.phase, expected.data.phase);
    return c.found;
}

} // namespace catalogue
