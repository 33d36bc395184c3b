#include "support/grid.h"
#include "support/job.h"
#include "support/row.h"
#include "textured/naive_nearest_quad.h"
#include "textured/naive_renderer.h"

#include <algorithm>
#include <utility>

namespace bench {
namespace {

using test::DepthPlane;
using test::PolygonCorner;
using test::Surface;
using test::Target;
using test::Texture;

constexpr tagRECT everywhere = {0, 0, Grid::extent, Grid::extent};

/// A job on a picture of noise with a Z plane, which is emptied before each run: `draw(target)` is timed,
/// `compute(target)` draws the same the plain way.
template <class Draw, class Compute>
Job onScreen(Draw draw, Compute compute, double figures) {
    auto surface = std::make_shared<Surface>(noise(Grid::extent, Grid::extent));
    auto depths = std::make_shared<DepthPlane>(*surface);
    auto run = [=]() mutable {
        std::fill(depths->all().begin(), depths->all().end(), test::emptyDepth);
        draw(Target{*surface, *depths});
    };
    auto check = [=]() mutable {
        const Surface before = *surface;
        Surface expected = before;
        DepthPlane expectedDepths(expected);
        compute(Target{expected, expectedDepths});
        run();
        Outcome outcome = compared(*surface, expected, before);
        if (outcome.wrong.empty() && !(*depths == expectedDepths))
            outcome.wrong = "the Z planes differ";
        return outcome;
    };
    return {run, check, figures};
}

/// Texels with a hole of zeros in every square of 32.
Surface anyTexels(int extent) {
    Surface texels = noise(extent, extent, 2);
    for (int y = 0; y < extent; ++y)
        for (int x = 0; x < extent; ++x)
            texels.at(x, y) = x % 32 < 12 && y % 32 < 12 ? 0 : texels.at(x, y) | 1;
    return texels;
}

/// A mode of the blits, and the texture units for a pixel: at half a texel or below it filters where it has a choice.
struct Mode {
    const char *words;
    bool pipeline;
    q_ulong flags;
    int unitsPerPixel;
};

// Together they take each span mapper once.
constexpr Mode modes[] = {
    {" filtered", false, 0x200, 8},
    {" nearest", false, 0x200, 16},
    {" key", false, 0x10100, 8},
    {" filtered, flat light", false, 0x2210, 8},
    {" nearest, flat light", false, 0x2210, 16},
    {" nearest, no light", false, 0x1010, 1},
    {" filtered", true, 0x200, 8},
    {" nearest", true, 0x200, 16},
    {" key", true, 0x10100, 8},
};

template <std::size_t count>
using Polygon = std::array<PolygonCorner, count>;

/// Both kinds of blits take each attribute of all corners in turn.
template <class Function, class Data, std::size_t... I>
void blit(Function function, Data &data, Target target, Texture texture, Polygon<sizeof...(I)> &c, q_ulong flags,
          std::index_sequence<I...>) {
    tagRECT clip = everywhere;
    function(&data, target.surface.pixels(), &c[I].point..., texture.pixels(), &c[I].tex..., &clip,
             static_cast<q_ulong>(target.surface.pitch()), texture.pitch(), c[I].add..., c[I].mul..., flags);
}

template <class Data, class Function, std::size_t count>
void blitAll(Function function, Target target, Texture texture, std::vector<Polygon<count>> &polygons, q_ulong flags) {
    auto data = test::blockOver<Data>(target.depths);
    if constexpr (requires { data.nearLimit; })
        data.nearLimit = target.nearLimit;
    for (Polygon<count> &polygon : polygons)
        blit(function, data, target, texture, polygon, flags, std::make_index_sequence<count>());
}

PolygonCorner cornerAt(const Grid &grid, std::size_t index, int unitsPerPixel) {
    const _POINT3DFLOAT &point = grid.points[index];
    const int light = static_cast<int>(index % 50);
    return {point,
            {static_cast<int>(point.x) * unitsPerPixel, static_cast<int>(point.y) * unitsPerPixel},
            light,
            180 + 2 * light};
}

Job triangleJob(const Grid &grid, const Mode &mode) {
    std::vector<Polygon<3>> polygons;
    for (const auto &[i, j, k] : grid.triangles())
        polygons.push_back({cornerAt(grid, i, mode.unitsPerPixel), cornerAt(grid, j, mode.unitsPerPixel),
                            cornerAt(grid, k, mode.unitsPerPixel)});
    const auto texels = std::make_shared<Surface>(anyTexels(Grid::extent));
    return onScreen(
        [=](Target target) mutable {
            if (mode.pipeline)
                blitAll<_PRIVATE_QMGL_DATA>(VKD_i3D_Blt_Tri, target, {*texels}, polygons, mode.flags);
            else
                blitAll<_PRIVATE_QM3D_DATA>(i3D_Blt_Tri, target, {*texels}, polygons, mode.flags);
        },
        [=](Target target) {
            const test::Mapper *slot = nullptr;
            for (const Polygon<3> &polygon : polygons)
                naiveTriangle(mode.pipeline, target, {*texels}, everywhere, polygon, mode.flags, slot);
        },
        static_cast<double>(polygons.size()));
}

Job quadJob(const Grid &grid, const Mode &mode) {
    std::vector<Polygon<4>> polygons;
    for (int row = 0; row < grid.rows - 1; ++row)
        for (int column = 0; column < grid.columns - 1; ++column) {
            Polygon<4> polygon;
            const auto corners = grid.cornersOf(row, column);
            for (std::size_t i = 0; i < 4; ++i)
                polygon[i] = cornerAt(grid, corners[i], mode.unitsPerPixel);
            polygons.push_back(polygon);
        }
    const auto texels = std::make_shared<Surface>(anyTexels(Grid::extent));
    return onScreen(
        [=](Target target) mutable {
            if (mode.pipeline)
                blitAll<_PRIVATE_QMGL_DATA>(VKD_i3D_Blt_Rect, target, {*texels}, polygons, mode.flags);
            else
                blitAll<_PRIVATE_QM3D_DATA>(i3D_Blt_Rect, target, {*texels}, polygons, mode.flags);
        },
        [=](Target target) {
            for (const Polygon<4> &polygon : polygons)
                naiveQuad(mode.pipeline, target, {*texels}, everywhere, polygon, mode.flags);
        },
        static_cast<double>(polygons.size()));
}

/// Quads of plain texels, one for each pixel; every fourth reaches over the end of the texture.
Job plainQuadJob(const Grid &grid, bool black) {
    using namespace ::naive::nearestQuad;
    std::vector<Corners> quads;
    for (int row = 0; row < grid.rows - 1; ++row)
        for (int column = 0; column < grid.columns - 1; ++column) {
            Corners quad;
            const auto corners = grid.cornersOf(row, column);
            for (std::size_t i = 0; i < 4; ++i) {
                const int x = static_cast<int>(grid.points[corners[i]].x);
                const int y = static_cast<int>(grid.points[corners[i]].y);
                quad[i] = {x, y, x + Grid::extent / 4, y};
            }
            quads.push_back(quad);
        }
    const auto texels = std::make_shared<Surface>(anyTexels(Grid::extent));
    const auto function =
        black ? i3D_Blt_Rect_Nearest_NoLight_NoHPE_SafeBlack : i3D_Blt_Rect_Nearest_NoLight_NoHPE_Safe;
    return drawing(
        noise(Grid::extent, Grid::extent),
        [=](Surface &dst) {
            tagRECT clip = everywhere;
            for (const Corners &quad : quads) {
                _POINT3DFLOAT p[4];
                _POINTINT t[4];
                for (std::size_t i = 0; i < 4; ++i) {
                    p[i] = {static_cast<float>(quad[i].x), static_cast<float>(quad[i].y), 0, 0};
                    t[i] = {quad[i].u, quad[i].v};
                }
                function(dst.pixels(), &p[0], &p[1], &p[2], &p[3], texels->pixels(), &t[0], &t[1], &t[2], &t[3], &clip,
                         static_cast<q_ulong>(dst.pitch()), static_cast<q_ulong>(texels->pitch()));
            }
        },
        [=](Surface &dst) {
            for (const Corners &quad : quads)
                naiveQuad(dst, *texels, everywhere, quad, black);
        },
        static_cast<double>(quads.size()));
}

Job meshJob(const ::naive::renderers::Renderer &renderer, int texRectExtent) {
    using namespace ::naive::renderers;
    const Grid grid(64, 64);
    Mesh mesh = {grid.points, grid.rows, grid.columns};
    mesh.light = {0.36F, 0.48F, 0.8F, 0};
    mesh.ambientColor = {60, 60, 60, 0};
    mesh.specular = 0.5F;
    mesh.shininess = 3;
    const Surface texels = anyTexels(Grid::extent);
    Textures textures = {texels, texels, {0, 0, texRectExtent, texRectExtent}};
    return onScreen([=](Target target) mutable { render(renderer, target, textures, everywhere, mesh); },
                    [=](Target target) mutable { naiveRender(renderer, target, textures, everywhere, mesh); },
                    grid.cellCount() * (renderer.cells == Cells::triangles ? 2 : 1));
}

} // namespace

void addTexturedRows() {
    std::vector<JobRow> rows;
    for (const TriangleSize &size : triangleSizes) {
        for (const Mode &mode : modes) {
            const std::string prefix = mode.pipeline ? "VKD_i3D_Blt_" : "i3D_Blt_";
            rows.push_back({prefix + "Rect" + mode.words, size.quadWork(), "Mquads",
                            [size, mode] { return quadJob(size.grid(), mode); }});
            if (!mode.pipeline || mode.flags == 0x200) // the pipeline's triangles know no other mode
                rows.push_back({prefix + "Tri" + mode.words, size.work(), "Mtriangles",
                                [size, mode] { return triangleJob(size.grid(), mode); }});
        }
        for (const bool black : {false, true})
            rows.push_back({std::string("i3D_Blt_Rect_Nearest_NoLight_NoHPE_Safe") + (black ? "Black" : ""),
                            size.quadWork(), "Mquads", [size, black] { return plainQuadJob(size.grid(), black); }});
    }
    for (const auto &renderer : ::naive::renderers::allRenderers)
        for (const bool filtered : {true, false}) {
            if (!filtered && renderer.mode != 0x200) // which always filters
                continue;
            rows.push_back({std::string(renderer.name) + (filtered ? "" : " nearest"), "mesh of 64 x 64 on 700 x 700",
                            renderer.cells == ::naive::renderers::Cells::triangles ? "Mtriangles" : "Mquads",
                            [renderer, filtered] { return meshJob(renderer, Grid::extent / (filtered ? 2 : 1)); }});
        }
    addJobs(rows);
}

} // namespace bench
