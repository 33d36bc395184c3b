/// \file
/// The textured renderers, cell by cell.
#ifndef Q_MUR_TESTS_TEXTURED_NAIVE_RENDERER_H
#define Q_MUR_TESTS_TEXTURED_NAIVE_RENDERER_H

#include "naive.h"

#include <algorithm>
#include <cmath>

namespace naive::renderers {

using test::DepthPlane;
using test::Mapper;
using test::PolygonCorner;
using test::Surface;
using test::Target;
using test::Texture;
using test::VertexLights;

using Points = std::vector<_POINT3DFLOAT>;

enum class Cells { quads, triangles };

/// What sets one renderer apart from the others.
struct Renderer {
    const char *name;
    bool pipeline;
    Cells cells;
    q_ulong mode;
    bool twoTextures;
    bool glint;
};

constexpr Renderer olderQuads = {"Render_Texture_3D", false, Cells::quads, 0x200, false, false};
constexpr Renderer olderKeyed = {"Render_Texture_3D_KeySrc", false, Cells::quads, 0x10100, false, false};
constexpr Renderer olderTriangles = {"Render_Texture_3D_Tri", false, Cells::triangles, 0x200, false, true};
constexpr Renderer pipelineQuads = {"VKD_Render_Texture_3D", true, Cells::quads, 0x200, false, false};
constexpr Renderer pipelineTwoTextures = {"VKD_Render_Texture_3D two textures", true, Cells::quads, 0x200, true, false};
constexpr Renderer pipelineKeyed = {"VKD_Render_Texture_3D_KeySrc", true, Cells::quads, 0x10100, false, false};
constexpr Renderer pipelineTriangles = {"VKD_Render_Texture_3D_Tri", true, Cells::triangles, 0x200, false, false};

constexpr Renderer allRenderers[] = {olderQuads,          olderKeyed,    olderTriangles,   pipelineQuads,
                                     pipelineTwoTextures, pipelineKeyed, pipelineTriangles};

/// A mesh and its light.
struct Mesh {
    Points points;
    int rows;
    int cols;
    _POINT3DFLOAT light = {0, 0, 1, 0};
    _POINT3D ambientColor = {0, 0, 0, 0};
    float specular = 0;
    int shininess = 0;
};

/// Textures, of which the back one has the pitch of the front one, and their part.
struct Textures {
    Surface front;
    Surface back;
    tagRECT rect;
};

/// Draws with the library.
inline void render(const Renderer &renderer, Target target, Textures &textures, tagRECT clip, Mesh mesh) {
    std::vector<int> add(mesh.points.size());
    std::vector<int> mul(mesh.points.size());
    q_ulong *const dst = target.surface.pixels();
    q_ulong *const tex = textures.front.pixels();
    tagRECT rect = textures.rect;
    const auto dstPitch = static_cast<q_ulong>(target.surface.pitch());
    const auto texPitch = static_cast<q_ulong>(textures.front.pitch());
    const auto call = [&](auto function, auto &data) {
        function(&data, dst, tex, &clip, &rect, dstPitch, texPitch, mesh.points.data(), mesh.rows, mesh.cols,
                 &mesh.light, nullptr, &mesh.ambientColor, mesh.specular, mesh.shininess);
    };
    if (renderer.pipeline) {
        auto data = test::blockOver<_PRIVATE_QMGL_DATA>(target.depths);
        data.vertexArray0 = add.data();
        data.vertexArray1 = mul.data();
        data.nearLimit = target.nearLimit;
        using OneTexture = void (*)(_PRIVATE_QMGL_DATA *, q_ulong *, q_ulong *, tagRECT *, tagRECT *, q_ulong, q_ulong,
                                    _POINT3DFLOAT *, int, int, _POINT3DFLOAT *, _POINT3D *, _POINT3D *, float, int);
        if (renderer.twoTextures)
            VKD_Render_Texture_3D(&data, dst, tex, textures.back.pixels(), &clip, &rect, dstPitch, texPitch,
                                  mesh.points.data(), mesh.rows, mesh.cols, &mesh.light, nullptr, &mesh.ambientColor,
                                  mesh.specular, mesh.shininess);
        else if (renderer.mode == 0x10100)
            call(VKD_Render_Texture_3D_KeySrc, data);
        else if (renderer.cells == Cells::triangles)
            call(VKD_Render_Texture_3D_Tri, data);
        else
            call(static_cast<OneTexture>(VKD_Render_Texture_3D), data);
    } else {
        auto data = test::blockOver<_PRIVATE_QM3D_DATA>(target.depths);
        data.vertexArray0 = add.data();
        data.vertexArray1 = mul.data();
        if (renderer.mode == 0x10100)
            call(Render_Texture_3D_KeySrc, data);
        else if (renderer.cells == Cells::triangles)
            call(Render_Texture_3D_Tri, data);
        else
            call(Render_Texture_3D, data);
    }
}

inline void naiveCross(Surface &dst, const tagRECT &clip, int x, int y, int radius) {
    if (x < clip.left || x >= clip.right - 1 || y < clip.top || y >= clip.bottom - 1)
        return;
    const int step = 65536 / radius;
    const auto brighten = [&](int column, int row, int distance) {
        if (column < clip.left || column >= clip.right || row < clip.top || row >= clip.bottom)
            return;
        const int t = distance * step;
        q_ulong pixel = 0;
        const int colour[3] = {0x100, 0x40, 0x40}; // blue first
        for (int channel = 0; channel < 3; ++channel) {
            const int before = static_cast<int>(dst.at(column, row) >> 8 * channel & 0xFF);
            const int after = std::min(255, before + colour[channel] - ((t * colour[channel]) >> 16));
            pixel |= static_cast<q_ulong>(after) << 8 * channel;
        }
        dst.at(column, row) = pixel;
    };
    for (int d = -radius; d <= radius; ++d)
        brighten(x + d, y, std::abs(d));
    for (int d = -radius; d <= radius; ++d)
        brighten(x, y + d, std::abs(d));
}

inline void naiveGlint(Surface &dst, const tagRECT &clip, int x, int y, int highlight) {
    const int r = std::clamp(highlight, 8, 80) / 2;
    naiveCross(dst, clip, x, y, r);
    naiveCross(dst, clip, x - 1, y - 1, (3 * r) / 4);
    naiveCross(dst, clip, x - 2, y - 2, (2 * r) / 4);
    naiveCross(dst, clip, x + 1, y + 1, (3 * r) / 2);
    naiveCross(dst, clip, x + 2, y + 2, (2 * r) / 4);
}

inline bool facesViewer(const _POINT3DFLOAT &p1, const _POINT3DFLOAT &p2, const _POINT3DFLOAT &p3) {
    const auto across = [](float a, float b) { return static_cast<double>(a) - static_cast<double>(b); };
    return across(p1.x, p2.x) * across(p1.y, p3.y) - across(p1.x, p3.x) * across(p1.y, p2.y) > 0;
}

/// Draws cell by cell, each by the naive blits.
inline void naiveRender(const Renderer &renderer, Target target, Textures &textures, const tagRECT &clip,
                        const Mesh &mesh) {
    const auto squares =
        static_cast<float>(mesh.ambientColor.x * mesh.ambientColor.x + mesh.ambientColor.y * mesh.ambientColor.y +
                           mesh.ambientColor.z * mesh.ambientColor.z);
    const int ambient = static_cast<int>(std::sqrt(static_cast<long double>(squares)));
    const int specular = static_cast<int>(mesh.specular * 256.0);
    const VertexLights lights =
        test::naiveLights(mesh.points, mesh.rows, mesh.cols, mesh.light, ambient, specular, mesh.shininess);

    const auto cornerAt = [&](int index, int u, int v) {
        const auto i = static_cast<std::size_t>(index);
        return PolygonCorner{mesh.points[i], {u, v}, lights.add[i], lights.mul[i]};
    };
    const int width = static_cast<int>(textures.rect.right - textures.rect.left);
    const int height = static_cast<int>(textures.rect.bottom - textures.rect.top);
    const Mapper *slot = nullptr;
    int best = 0;
    for (int i = 0; i < mesh.rows - 1; ++i)
        for (int j = 0; j < mesh.cols - 1; ++j) {
            const int r0 = i * height / (mesh.rows - 1);
            const int r1 = (i + 1) * height / (mesh.rows - 1);
            const int c0 = j * width / (mesh.cols - 1);
            const int c1 = (j + 1) * width / (mesh.cols - 1);
            const int ch = (r1 - r0) * 16;
            int cw = (c1 - c0) * 16;
            const int k = i * mesh.cols + j;
            const int top = static_cast<int>(textures.rect.top) + r0;
            Texture texture = {textures.front, static_cast<int>(textures.rect.left) + c0, top};
            const auto point = [&](int index) { return mesh.points[static_cast<std::size_t>(index)]; };
            Texture backTexture = {textures.back, static_cast<int>(textures.rect.right) - c0, top};
            const bool back = renderer.twoTextures && !facesViewer(point(k), point(k + 1), point(k + mesh.cols + 1));
            if (back)
                cw = -cw;
            const PolygonCorner corners[4] = {cornerAt(k, 0, 0), cornerAt(k + 1, cw, 0),
                                              cornerAt(k + mesh.cols + 1, cw, ch), cornerAt(k + mesh.cols, 0, ch)};
            if (renderer.cells == Cells::quads) {
                naiveQuad(renderer.pipeline, target, back ? backTexture : texture, clip,
                          {corners[0], corners[1], corners[2], corners[3]}, renderer.mode);
            } else {
                naiveTriangle(renderer.pipeline, target, texture, clip, {corners[0], corners[1], corners[3]}, 0x200,
                              slot);
                naiveTriangle(renderer.pipeline, target, texture, clip, {corners[3], corners[1], corners[2]}, 0x200,
                              slot);
            }
            if (lights.add[static_cast<std::size_t>(k)] > best)
                best = k;
        }
    const auto chosen = static_cast<std::size_t>(best);
    if (renderer.glint && lights.add[chosen] > 0)
        naiveGlint(target.surface, clip, static_cast<int>(mesh.points[chosen].x),
                   static_cast<int>(mesh.points[chosen].y), lights.add[chosen]);
}

} // namespace naive::renderers

#endif
