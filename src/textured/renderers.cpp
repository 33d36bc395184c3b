#include "base/surface.h"
#include "base/vector.h"
#include "base/wide.h"
#include "glint.h"
#include "q_Mur/textured.h"

namespace {

using namespace qmur;

constexpr q_ulong interpolatedLight = 0x200;
constexpr q_ulong keyed = 0x10100;

struct OlderModule {
    using Data = _PRIVATE_QM3D_DATA;
    static constexpr auto findLuminence = FindLuminenceTerm;
    static constexpr auto bltRect = i3D_Blt_Rect;
    static constexpr auto bltTri = i3D_Blt_Tri;
};

struct PipelineModule {
    using Data = _PRIVATE_QMGL_DATA;
    static constexpr auto findLuminence = VKD_FindLuminenceTerm;
    static constexpr auto bltRect = VKD_i3D_Blt_Rect;
    static constexpr auto bltTri = VKD_i3D_Blt_Tri;
};

struct Mesh {
    _POINT3DFLOAT *points;
    int rows;
    int cols;

    bool hasCells() const { return rows >= 2 && cols >= 2; }
};

/// A cell: the index of its first vertex, and its part of the texture.
struct Cell {
    int vertex;
    int column; ///< texels from the left of the texture rectangle
    int row;    ///< texels from its top
    int width;  ///< sixteenths of a texel
    int height;
};

/// Calls `draw(cell)` for the cells of a mesh, row by row. The texture rectangle is divided evenly, truncated to
/// texels.
template <class Draw>
void forEachCell(const Mesh &mesh, const tagRECT &texRect, Draw draw) {
    const int width = widthOf(texRect);
    const int height = heightOf(texRect);
    const auto boundary = [](int index, int extent, int cells) { return wrapMultiply(index, extent) / cells; };
    const auto sixteenths = [](int from, int to) { return wrapMultiply(wrapSubtract(to, from), 16); };
    for (int i = 0; i < mesh.rows - 1; ++i) {
        const int row = boundary(i, height, mesh.rows - 1);
        const int nextRow = boundary(i + 1, height, mesh.rows - 1);
        for (int j = 0; j < mesh.cols - 1; ++j) {
            const int column = boundary(j, width, mesh.cols - 1);
            const int nextColumn = boundary(j + 1, width, mesh.cols - 1);
            draw(Cell{.vertex = i * mesh.cols + j,
                      .column = column,
                      .row = row,
                      .width = sixteenths(column, nextColumn),
                      .height = sixteenths(row, nextRow)});
        }
    }
}

/// What the cells of a call share.
template <class Module>
struct Scene {
    typename Module::Data *data;
    q_ulong *dst;
    tagRECT *clip;
    tagRECT *texRect;
    q_ulong dstPitch;
    q_ulong texPitch;
    Mesh mesh;

    // A texture is handed to a blit moved to where a cell's texels begin, so that positions stay small.

    q_ulong *frontTexels(q_ulong *tex, const Cell &cell) const {
        return texelsAt(tex, static_cast<Distance>(texRect->left) + cell.column, cell);
    }

    /// Meant: mirrored texels begin at the right side itself, one beyond the last column.
    q_ulong *backTexels(q_ulong *tex, const Cell &cell) const {
        return texelsAt(tex, static_cast<Distance>(texRect->right) - cell.column, cell);
    }

private:
    q_ulong *texelsAt(q_ulong *tex, Distance column, const Cell &cell) const {
        return pixelAt(tex, asDistance(texPitch), column, static_cast<Distance>(texRect->top) + cell.row);
    }
};

int ambientLevel(_POINT3D *colour) {
    const auto squares = static_cast<float>(dotProduct(*colour, *colour));
    return atFullWidth([squares] { return truncateToInt(squareRoot(squares)); });
}

/// Lights the vertices. False if there is nothing to draw.
template <class Module>
bool lightMesh(const Scene<Module> &scene, _POINT3DFLOAT *light, _POINT3D *ambientColor, float specular,
               int shininess) {
    if (!scene.mesh.hasCells())
        return false;
    const int specularLevel = truncateToInt(static_cast<double>(specular) * 256.0);
    Module::findLuminence(scene.data, scene.mesh.points, scene.mesh.rows, scene.mesh.cols, light,
                          ambientLevel(ambientColor), specularLevel, shininess);
    return true;
}

/// Draws a cell as a quad. A negative `texWidth` shows its texels from right to left.
template <class Module>
void drawQuad(const Scene<Module> &scene, const Cell &cell, q_ulong *tex, int texWidth, q_ulong mode) {
    const int v0 = cell.vertex;
    const int v1 = v0 + 1;
    const int v2 = v1 + scene.mesh.cols;
    const int v3 = v0 + scene.mesh.cols;
    _POINTINT t0 = {0, 0};
    _POINTINT t1 = {texWidth, 0};
    _POINTINT t2 = {texWidth, cell.height};
    _POINTINT t3 = {0, cell.height};
    _POINT3DFLOAT *const points = scene.mesh.points;
    const int *const add = scene.data->vertexArray0;
    const int *const mul = scene.data->vertexArray1;
    Module::bltRect(scene.data, scene.dst, points + v0, points + v1, points + v2, points + v3, tex, &t0, &t1, &t2, &t3,
                    scene.clip, scene.dstPitch, scene.texPitch, add[v0], add[v1], add[v2], add[v3], mul[v0], mul[v1],
                    mul[v2], mul[v3], mode);
}

template <class Module>
void drawQuads(const Scene<Module> &scene, q_ulong *tex, q_ulong mode) {
    forEachCell(scene.mesh, *scene.texRect,
                [&](const Cell &cell) { drawQuad(scene, cell, scene.frontTexels(tex, cell), cell.width, mode); });
}

/// Draws a cell as two triangles.
template <class Module>
void drawTriangles(const Scene<Module> &scene, const Cell &cell, q_ulong *tex) {
    const int v0 = cell.vertex;
    const int v1 = v0 + 1;
    const int v2 = v1 + scene.mesh.cols;
    const int v3 = v0 + scene.mesh.cols;
    _POINTINT t0 = {0, 0};
    _POINTINT t1 = {cell.width, 0};
    _POINTINT t2 = {cell.width, cell.height};
    _POINTINT t3 = {0, cell.height};
    const auto draw = [&](int a, int b, int c, _POINTINT *ta, _POINTINT *tb, _POINTINT *tc) {
        _POINT3DFLOAT *const points = scene.mesh.points;
        const int *const add = scene.data->vertexArray0;
        const int *const mul = scene.data->vertexArray1;
        Module::bltTri(scene.data, scene.dst, points + a, points + b, points + c, tex, ta, tb, tc, scene.clip,
                       scene.dstPitch, scene.texPitch, add[a], add[b], add[c], mul[a], mul[b], mul[c],
                       interpolatedLight);
    };
    draw(v0, v1, v3, &t0, &t1, &t3);
    draw(v3, v1, v2, &t3, &t1, &t2);
}

/// Draws all cells as triangles and calls `drawn(cell)` after each.
template <class Module, class Drawn>
void drawTriangleMesh(const Scene<Module> &scene, q_ulong *tex, Drawn drawn) {
    forEachCell(scene.mesh, *scene.texRect, [&](const Cell &cell) {
        drawTriangles(scene, cell, scene.frontTexels(tex, cell));
        drawn(cell);
    });
}

} // namespace

void Render_Texture_3D(_PRIVATE_QM3D_DATA *data, q_ulong *dst, q_ulong *tex, tagRECT *clip, tagRECT *texRect,
                       q_ulong dstPitch, q_ulong texPitch, _POINT3DFLOAT *points, int rows, int cols,
                       _POINT3DFLOAT *light, _POINT3D *, _POINT3D *ambientColor, float specular, int shininess) {
    const Scene<OlderModule> scene = {.data = data,
                                      .dst = dst,
                                      .clip = clip,
                                      .texRect = texRect,
                                      .dstPitch = dstPitch,
                                      .texPitch = texPitch,
                                      .mesh = {points, rows, cols}};
    if (lightMesh(scene, light, ambientColor, specular, shininess))
        drawQuads(scene, tex, interpolatedLight);
}

void Render_Texture_3D_KeySrc(_PRIVATE_QM3D_DATA *data, q_ulong *dst, q_ulong *tex, tagRECT *clip, tagRECT *texRect,
                              q_ulong dstPitch, q_ulong texPitch, _POINT3DFLOAT *points, int rows, int cols,
                              _POINT3DFLOAT *light, _POINT3D *, _POINT3D *ambientColor, float specular, int shininess) {
    const Scene<OlderModule> scene = {.data = data,
                                      .dst = dst,
                                      .clip = clip,
                                      .texRect = texRect,
                                      .dstPitch = dstPitch,
                                      .texPitch = texPitch,
                                      .mesh = {points, rows, cols}};
    if (lightMesh(scene, light, ambientColor, specular, shininess))
        drawQuads(scene, tex, keyed);
}

void Render_Texture_3D_Tri(_PRIVATE_QM3D_DATA *data, q_ulong *dst, q_ulong *tex, tagRECT *clip, tagRECT *texRect,
                           q_ulong dstPitch, q_ulong texPitch, _POINT3DFLOAT *points, int rows, int cols,
                           _POINT3DFLOAT *light, _POINT3D *, _POINT3D *ambientColor, float specular, int shininess) {
    const Scene<OlderModule> scene = {.data = data,
                                      .dst = dst,
                                      .clip = clip,
                                      .texRect = texRect,
                                      .dstPitch = dstPitch,
                                      .texPitch = texPitch,
                                      .mesh = {points, rows, cols}};
    if (!lightMesh(scene, light, ambientColor, specular, shininess))
        return;
    // Meant: a highlight is compared with the index held, not with the highlight there.
    int best = 0;
    drawTriangleMesh(scene, tex, [&best, data](const Cell &cell) {
        if (data->vertexArray0[cell.vertex] > best)
            best = cell.vertex;
    });
    const int highlight = data->vertexArray0[best];
    if (highlight > 0)
        drawGlint(dst, *clip, dstPitch, truncateToInt(points[best].x), truncateToInt(points[best].y), highlight);
}

void VKD_Render_Texture_3D(_PRIVATE_QMGL_DATA *data, q_ulong *dst, q_ulong *tex, tagRECT *clip, tagRECT *texRect,
                           q_ulong dstPitch, q_ulong texPitch, _POINT3DFLOAT *points, int rows, int cols,
                           _POINT3DFLOAT *light, _POINT3D *, _POINT3D *ambientColor, float specular, int shininess) {
    const Scene<PipelineModule> scene = {.data = data,
                                         .dst = dst,
                                         .clip = clip,
                                         .texRect = texRect,
                                         .dstPitch = dstPitch,
                                         .texPitch = texPitch,
                                         .mesh = {points, rows, cols}};
    if (lightMesh(scene, light, ambientColor, specular, shininess))
        drawQuads(scene, tex, interpolatedLight);
}

void VKD_Render_Texture_3D(_PRIVATE_QMGL_DATA *data, q_ulong *dst, q_ulong *tex, q_ulong *backTex, tagRECT *clip,
                           tagRECT *texRect, q_ulong dstPitch, q_ulong texPitch, _POINT3DFLOAT *points, int rows,
                           int cols, _POINT3DFLOAT *light, _POINT3D *, _POINT3D *ambientColor, float specular,
                           int shininess) {
    const Scene<PipelineModule> scene = {.data = data,
                                         .dst = dst,
                                         .clip = clip,
                                         .texRect = texRect,
                                         .dstPitch = dstPitch,
                                         .texPitch = texPitch,
                                         .mesh = {points, rows, cols}};
    if (!lightMesh(scene, light, ambientColor, specular, shininess))
        return;
    forEachCell(scene.mesh, *texRect, [&](const Cell &cell) {
        _POINT3DFLOAT *const corner = points + cell.vertex;
        if (atFullWidth([=] { return facesFront(corner[0], corner[1], corner[cols + Distance{1}]); }))
            drawQuad(scene, cell, scene.frontTexels(tex, cell), cell.width, interpolatedLight);
        else
            drawQuad(scene, cell, scene.backTexels(backTex, cell), wrapSubtract(0, cell.width), interpolatedLight);
    });
}

void VKD_Render_Texture_3D_KeySrc(_PRIVATE_QMGL_DATA *data, q_ulong *dst, q_ulong *tex, tagRECT *clip, tagRECT *texRect,
                                  q_ulong dstPitch, q_ulong texPitch, _POINT3DFLOAT *points, int rows, int cols,
                                  _POINT3DFLOAT *light, _POINT3D *, _POINT3D *ambientColor, float specular,
                                  int shininess) {
    const Scene<PipelineModule> scene = {.data = data,
                                         .dst = dst,
                                         .clip = clip,
                                         .texRect = texRect,
                                         .dstPitch = dstPitch,
                                         .texPitch = texPitch,
                                         .mesh = {points, rows, cols}};
    if (lightMesh(scene, light, ambientColor, specular, shininess))
        drawQuads(scene, tex, keyed);
}

void VKD_Render_Texture_3D_Tri(_PRIVATE_QMGL_DATA *data, q_ulong *dst, q_ulong *tex, tagRECT *clip, tagRECT *texRect,
                               q_ulong dstPitch, q_ulong texPitch, _POINT3DFLOAT *points, int rows, int cols,
                               _POINT3DFLOAT *light, _POINT3D *, _POINT3D *ambientColor, float specular,
                               int shininess) {
    const Scene<PipelineModule> scene = {.data = data,
                                         .dst = dst,
                                         .clip = clip,
                                         .texRect = texRect,
                                         .dstPitch = dstPitch,
                                         .texPitch = texPitch,
                                         .mesh = {points, rows, cols}};
    // Meant: no glint.
    if (lightMesh(scene, light, ambientColor, specular, shininess))
        drawTriangleMesh(scene, tex, [](const Cell &) {});
}
