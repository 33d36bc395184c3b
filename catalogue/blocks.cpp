#include "blocks.h"

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

} // namespace

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
    c.fields("spanMapper", data.spanMapper, expected.data.spanMapper);
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
