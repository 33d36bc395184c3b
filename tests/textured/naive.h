/// \file
/// The textured modules a second time: pixel by pixel, every value worked out from the corners, nothing carried along.
#ifndef Q_MUR_TESTS_TEXTURED_NAIVE_H
#define Q_MUR_TESTS_TEXTURED_NAIVE_H

#include "support/cases.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace test {

constexpr short emptyDepth = 0x7FFF;

/// A Z plane of the shape of a surface, margins included.
class DepthPlane {
public:
    explicit DepthPlane(const Surface &surface, short value = emptyDepth)
        : columns(surface.width()), rows(surface.height()), stride(surface.pitch()),
          buffer(surface.words().size(), value) {}

    /// The entry of pixel (0, 0), as it is handed to the library.
    short *entries() { return &at(0, 0); }

    short &at(int x, int y) { return buffer.at(index(x, y)); }
    short at(int x, int y) const { return buffer.at(index(x, y)); }

    int width() const { return columns; }
    int height() const { return rows; }
    std::vector<short> &all() { return buffer; }

    friend bool operator==(const DepthPlane &a, const DepthPlane &b) { return a.buffer == b.buffer; }

private:
    std::size_t index(int x, int y) const {
        return static_cast<std::size_t>((y + Surface::margin) * stride + x + Surface::margin);
    }

    int columns;
    int rows;
    int stride;
    std::vector<short> buffer;
};

/// Compares two planes, margins included, and folds the picture into the checksum.
inline void expectEqual(Case &c, const DepthPlane &result, const DepthPlane &expected) {
    const auto checksum = [](const DepthPlane &plane) {
        std::uint64_t sum = 0;
        for (int y = 0; y < plane.height(); ++y)
            for (int x = 0; x < plane.width(); ++x)
                sum = sum * 0x100000001B3u + static_cast<std::uint16_t>(plane.at(x, y));
        return static_cast<std::int64_t>(sum);
    };
    if (!(result == expected)) {
        for (int y = -Surface::margin; y < result.height() + Surface::margin; ++y)
            for (int x = -Surface::margin; x < result.width() + Surface::margin; ++x)
                if (result.at(x, y) != expected.at(x, y)) {
                    c.expectEqual(std::int64_t{result.at(x, y)}, std::int64_t{expected.at(x, y)});
                    return;
                }
        c.expectEqual(std::int64_t{0}, std::int64_t{1}); // behind the margin of a row
    }
    c.expectEqual(checksum(result), checksum(expected));
}

/// A private block that holds nothing but a plane.
template <class Data>
Data blockOver(DepthPlane &plane) {
    Data data = {};
    data.zBuffer = plane.entries();
    return data;
}

/// A place on a surface from which texels are counted, downward or, with a row step of -1, upward.
struct Texture {
    Surface &surface;
    int x = 0;
    int y = 0;
    int rowStep = 1;

    q_ulong *pixels() const { return &surface.at(x, y); }
    q_ulong pitch() const { return static_cast<q_ulong>(surface.pitch() * rowStep); }
    q_ulong texel(int column, int row) const { return surface.at(x + column, y + row * rowStep); }
    Texture movedBy(int column, int row) const { return {surface, x + column, y + row * rowStep, rowStep}; }
};

/// What is drawn on.
struct Target {
    Surface &surface;
    DepthPlane &depths;
    int nearLimit = -0x7FFFFFFF;
};

enum class Light { none, flat, interpolated };

/// What sets one mapper apart from the others.
struct Mapper {
    const char *name;
    bool pipeline;
    int fractionBits;
    bool filtered;
    Light light;
    bool testsDepth;
    bool testsNearLimit;
    bool keyed;
    bool redIsUpperHalf;
};

inline constexpr Mapper linearHPE = {
    "i3D_Mapping_Linear_HPE", false, 16, true, Light::interpolated, true, false, false, false};
inline constexpr Mapper pipelineLinearHPE = {
    "VKD_i3D_Mapping_Linear_HPE", true, 14, true, Light::interpolated, true, true, false, false};
inline constexpr Mapper linearHPEKeySrc = {
    "i3D_Mapping_Linear_HPE_KeySrc", false, 16, true, Light::interpolated, true, false, true, false};
inline constexpr Mapper pipelineLinearHPEKeySrc = {
    "VKD_i3D_Mapping_Linear_HPE_KeySrc", true, 16, true, Light::interpolated, true, false, true, false};
inline constexpr Mapper nearHPE = {
    "i3D_Mapping_Near_HPE", false, 18, false, Light::interpolated, true, false, false, false};
inline constexpr Mapper pipelineNearHPE = {
    "VKD_i3D_Mapping_Near_HPE", true, 12, false, Light::interpolated, true, true, false, true};
inline constexpr Mapper linearNoHPE = {
    "i3D_Mapping_Linear_NoHPE", false, 18, true, Light::flat, false, false, false, false};
inline constexpr Mapper nearNoHPE = {
    "i3D_Mapping_Near_NoHPE", false, 18, false, Light::flat, false, false, false, false};
inline constexpr Mapper nearNoLightNoHPE = {
    "i3D_Mapping_Near_NoLight_NoHPE", false, 18, false, Light::none, false, false, false, false};

inline constexpr Mapper allMappers[] = {
    linearHPE,       pipelineLinearHPE, linearHPEKeySrc, pipelineLinearHPEKeySrc, nearHPE,
    pipelineNearHPE, linearNoHPE,       nearNoHPE,       nearNoLightNoHPE,
};

/// The quantities of a band, each at the upper and lower end of the left edge and of the right edge: u, v, x, y, add,
/// mul and z, four numbers each.
using BandEnds = std::array<int, 28>;

/// One quantity of a band at its four ends.
struct Ends {
    int left0;
    int left1;
    int right0;
    int right1;
};

/// A band, named.
struct Band {
    Ends u = {0, 0, 0, 0};
    Ends v = {0, 0, 0, 0};
    Ends x = {0, 0, 0, 0};
    Ends y = {0, 0, 0, 0};
    Ends add = {0, 0, 0, 0};
    Ends mul = {256, 256, 256, 256};
    Ends z = {0, 0, 0, 0};

    BandEnds ends() const;
};

/// A rectangle of the screen as a band; u and v the same everywhere.
Band bandOf(const tagRECT &rect, int u = 0, int v = 0);

/// The four texels' mean by their sixteenths, channel by channel; the texel itself for a mapper that does not filter.
void naiveMap(const Mapper &mapper, Target target, Texture texture, const tagRECT &clip, const BandEnds &ends);

/// Calls the library's mapper.
void callMapper(const Mapper &mapper, Target target, Texture texture, const tagRECT &clip, const BandEnds &ends);

/// What lights the vertices of a grid: the two per-vertex arrays.
struct VertexLights {
    std::vector<int> add;
    std::vector<int> mul;

    friend bool operator==(const VertexLights &, const VertexLights &) = default;
};

VertexLights naiveLights(const std::vector<_POINT3DFLOAT> &points, int rows, int cols, const _POINT3DFLOAT &light,
                         int ambient, int specular, int shininess);

/// A corner of a polygon as it is handed to the library.
struct PolygonCorner {
    _POINT3DFLOAT point;
    _POINTINT tex;
    int add;
    int mul;
};

/// Returns the mapper that draws, or null if nothing is selected.
const Mapper *naiveQuad(bool pipeline, Target target, Texture texture, const tagRECT &clip,
                        const std::array<PolygonCorner, 4> &corners, q_ulong flags);

/// `slot` is the mapper of an earlier call, or null; it receives the mapper that is selected.
void naiveTriangle(bool pipeline, Target target, Texture texture, const tagRECT &clip,
                   const std::array<PolygonCorner, 3> &corners, q_ulong flags, const Mapper *&slot);

} // namespace test

#endif
