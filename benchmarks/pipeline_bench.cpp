#include "pipeline/host.h"
#include "pipeline/naive_surface.h"
#include "support/grid.h"
#include "support/job.h"
#include "support/row.h"

#include <algorithm>

namespace bench {
namespace {

using test::Canvas;
using test::Mesh;
using test::Surface;
using test::Way;

constexpr short emptyDepth = 0x7FFF;

/// What a family does with its colours, and how it is called.
struct Kind {
    const char *word; ///< behind the name, for an overload
    Way way;
    int opacity = 0;
};

constexpr Kind drawn = {"", Way::draw};
constexpr Kind blended = {" opacity", Way::blend, 96};
constexpr Kind halved = {" half opacity", Way::blend, 128};
constexpr Kind mixed = {"_Alpha", Way::mix};
constexpr Kind added = {"_Add", Way::add};

/// A job on a picture of noise with a Z plane, which is emptied before each run.
/// \param colours those of the points, when they are drawn
template <class Draw>
Job onCanvas(const std::vector<_POINT3DFLOAT> &points, const std::vector<q_ulong> &colours,
             const std::vector<std::array<std::size_t, 3>> &triangles, Kind kind, Draw draw) {
    const Surface empty(Grid::extent, Grid::extent, emptyDepth);
    auto canvas = std::make_shared<Canvas>(noise(Grid::extent, Grid::extent), empty);
    auto run = [canvas, draw]() mutable {
        tagRECT all = canvas->picture.rect();
        VKD_ResetZBuffer(canvas->data, &all, canvas->picture.pitch());
        draw(*canvas);
    };
    auto check = [=]() mutable {
        const Surface before = canvas->picture;
        Surface expected = before;
        Surface depths = empty;
        for (const auto &corners : triangles) {
            _POINT3DFLOAT p[3];
            q_ulong c[3];
            for (std::size_t i = 0; i < 3; ++i) {
                p[i] = points[corners[i]];
                c[i] = colours[corners[i]];
            }
            // The naive triangle asks every pixel of its clip.
            const auto [left, right] = std::minmax({p[0].x, p[1].x, p[2].x});
            const auto [top, bottom] = std::minmax({p[0].y, p[1].y, p[2].y});
            const tagRECT around = {static_cast<int>(left), static_cast<int>(top), static_cast<int>(right) + 1,
                                    static_cast<int>(bottom) + 1};
            naiveTriangle(expected, depths, around, p, c, canvas->data->nearLimit, kind.way, kind.opacity);
        }
        run();
        Outcome outcome = compared(canvas->picture, expected, before);
        if (outcome.wrong.empty() && !(canvas->depths() == depths))
            outcome.wrong = "Z plane: " + canvas->depths().differenceFrom(depths);
        return outcome;
    };
    return {run, check, static_cast<double>(triangles.size())};
}

std::vector<q_ulong> anyColours(std::size_t count) {
    test::Random random(count);
    std::vector<q_ulong> colours;
    while (colours.size() < count)
        colours.push_back(random.word() & 0xFFFFFF);
    return colours;
}

Job triangleJob(const Grid &grid, Kind kind) {
    const std::vector<q_ulong> colours = anyColours(grid.points.size());
    const auto triangles = grid.triangles();
    return onCanvas(grid.points, colours, triangles, kind,
                    [p = grid.points, c = colours, triangles, kind](Canvas &canvas) mutable {
                        tagRECT clip = canvas.picture.rect();
                        const int pitch = canvas.picture.pitch();
                        for (const auto &[i, j, k] : triangles) {
                            if (kind.way == Way::draw)
                                VKD_Render_Tri(canvas.data, canvas.pixels(), &clip, pitch, &p[i], &p[j], &p[k], &c[i],
                                               &c[j], &c[k]);
                            else if (kind.way == Way::blend)
                                VKD_Render_Tri(canvas.data, canvas.pixels(), &clip, pitch, &p[i], &p[j], &p[k], &c[i],
                                               &c[j], &c[k], kind.opacity);
                            else if (kind.way == Way::mix)
                                VKD_Render_Tri_Alpha(canvas.data, canvas.pixels(), &clip, pitch, &p[i], &p[j], &p[k],
                                                     &c[i], &c[j], &c[k]);
                            else
                                VKD_Render_Tri_Add(canvas.pixels(), &clip, canvas.pitch(), &p[i], &p[j], &p[k], &c[i],
                                                   &c[j], &c[k]);
                        }
                    });
}

Job surfaceJob(int rows, int columns, Kind kind) {
    Mesh mesh(columns, rows);
    mesh.points = Grid(rows, columns).points;
    mesh.colours = anyColours(mesh.points.size());
    mesh.light = {0.36F, 0.48F, 0.8F, 0};
    mesh.ambient = {60, 60, 60, 0};
    mesh.specular = 0.5F;
    mesh.shininess = 3;
    const bool lit = kind.way != Way::mix;
    return onCanvas(
        mesh.points, lit ? mesh.litNaively() : mesh.colours, naive::meshes::trianglesOf(mesh), kind,
        [mesh, kind, colours = mesh.colours](Canvas &canvas) mutable {
            tagRECT clip = canvas.picture.rect();
            mesh.colours = colours; // lighting replaces them
            if (kind.way == Way::draw)
                VKD_Render_3D_Surface(canvas.data, canvas.pixels(), &clip, canvas.pitch(), mesh.points.data(),
                                      mesh.colours.data(), 0, 0, mesh.columns, mesh.rows, &mesh.light, nullptr,
                                      &mesh.ambient, mesh.specular, mesh.shininess, 0);
            else if (kind.way == Way::blend)
                VKD_Render_3D_Surface(canvas.data, canvas.pixels(), &clip, canvas.pitch(), mesh.points.data(),
                                      mesh.colours.data(), 0, 0, mesh.columns, mesh.rows, &mesh.light, nullptr,
                                      &mesh.ambient, mesh.specular, mesh.shininess, 0, kind.opacity);
            else
                VKD_Render_3D_Surface_Alpha(canvas.data, canvas.pixels(), &clip, canvas.pitch(), mesh.points.data(),
                                            mesh.colours.data(), 0, 0, 0, 0);
        });
}

} // namespace

void addPipelineRows() {
    std::vector<JobRow> rows;
    for (const Kind &kind : {drawn, blended, halved, mixed, added})
        for (const TriangleSize &size : triangleSizes)
            rows.push_back({std::string("VKD_Render_Tri") + kind.word, size.work(), "Mtriangles",
                            [size, kind] { return triangleJob(size.grid(), kind); }});
    for (const Kind &kind : {drawn, blended, halved})
        rows.push_back({std::string("VKD_Render_3D_Surface") + kind.word, "mesh of 64 x 64 on 700 x 700", "Mtriangles",
                        [kind] { return surfaceJob(64, 64, kind); }});
    rows.push_back({"VKD_Render_3D_Surface_Alpha", "mesh of 20 x 64 on 700 x 700", "Mtriangles",
                    [] { return surfaceJob(20, 64, mixed); }});
    addJobs(rows);
}

} // namespace bench
