/// \file
/// Textured meshes once more, cell by cell, with their light.
#ifndef Q_MUR_TESTS_PLAIN_TEXTURE_RENDERERS_H
#define Q_MUR_TESTS_PLAIN_TEXTURE_RENDERERS_H

#include "textured_polygons.h"
#include "vectors.h"

namespace plain {

template <class Block>
void findLuminance(Block *data, _POINT3DFLOAT *points, int rows, int cols, _POINT3DFLOAT *light, int ambient,
                   int specular, int shininess) {
    forLitVertices(points, rows, cols, *light, ambient, specular, shininess,
                   [data](Number vertex, int multiplier, int highlight) {
                       data->vertexArray0[vertex] = highlight;
                       data->vertexArray1[vertex] = multiplier;
                   });
}
inline constexpr auto FindLuminenceTerm = findLuminance<_PRIVATE_QM3D_DATA>;
inline constexpr auto VKD_FindLuminenceTerm = findLuminance<_PRIVATE_QMGL_DATA>;

/// A cross that fades from its centre on, which is brightened by both of its arms.
inline void addFadingCross(Pixels dst, const tagRECT &clip, Number x, Number y, Number radius) {
    if (!contains(clip, x, y) || x == Number{clip.right} - 1 || y == Number{clip.bottom} - 1)
        return;
    const auto brighten = [&](Number column, Number row, Number distance) {
        if (!contains(clip, column, row))
            return;
        const Number t = distance * (65536 / radius);
        const auto brighter = [t](Number channel, Number by) {
            return std::min<Number>(255, channel + by - flooredQuotient(t * by, 65536));
        };
        q_ulong &d = dst.at(column, row);
        d = pixelOf(brighter(redOf(d), 0x40), brighter(greenOf(d), 0x40), brighter(blueOf(d), 0x100));
    };
    for (Number distance = -radius; distance <= radius; ++distance)
        brighten(x + distance, y, std::max(distance, -distance));
    for (Number distance = -radius; distance <= radius; ++distance)
        brighten(x, y + distance, std::max(distance, -distance));
}

inline void addGlint(Pixels dst, const tagRECT &clip, Number x, Number y, int highlight) {
    const Number radius = std::clamp(highlight, 8, 80) / 2;
    addFadingCross(dst, clip, x, y, radius);
    addFadingCross(dst, clip, x - 1, y - 1, 3 * radius / 4);
    addFadingCross(dst, clip, x - 2, y - 2, 2 * radius / 4);
    addFadingCross(dst, clip, x + 1, y + 1, 3 * radius / 2);
    addFadingCross(dst, clip, x + 2, y + 2, 2 * radius / 4);
}

inline bool facesViewer(const _POINT3DFLOAT &p1, const _POINT3DFLOAT &p2, const _POINT3DFLOAT &p3) {
    const FullWidth scope;
    const Real across = (Real{p1.x} - p2.x) * (Real{p1.y} - p3.y);
    return across - (Real{p1.x} - p3.x) * (Real{p1.y} - p2.y) > 0;
}

struct TexturedMesh {
    _POINT3DFLOAT *points;
    int rows;
    int cols;
};

/// What is read of the vertices' light, and from what length of the ambient colour and strength of the highlight.
template <class Block>
bool lightMesh(Block *data, const TexturedMesh &mesh, _POINT3DFLOAT *light, const _POINT3D &ambientColor,
               float specular, int shininess) {
    if (mesh.rows < 2 || mesh.cols < 2)
        return false;
    const FullWidth scope;
    const auto square = [](Number component) { return component * component; };
    const auto squares =
        static_cast<float>(int32(square(ambientColor.x) + square(ambientColor.y) + square(ambientColor.z)));
    findLuminance(data, mesh.points, mesh.rows, mesh.cols, light, truncated(rootOf(Real{squares})),
                  truncated(Real{specular} * 256), shininess);
    return true;
}

enum class Cells { quads, triangles };

/// Draws the cells from `tex`, or from a back texture, if there is one, where they are turned away.
/// \return the vertex that a glint stands on
template <Cells cells, class Block>
int drawCells(Block *data, const TexturedScene &scene, q_ulong *backTex, const tagRECT &texRect,
              const TexturedMesh &mesh, q_ulong flags) {
    int best = 0;
    const auto part = [](Number index, Number count, Number extent) { return int32(index * extent / (count - 1)); };
    for (int i = 0; i < mesh.rows - 1; ++i)
        for (int j = 0; j < mesh.cols - 1; ++j) {
            const int row = part(i, mesh.rows, heightOf(texRect));
            const int column = part(j, mesh.cols, widthOf(texRect));
            const int height = (part(i + 1, mesh.rows, heightOf(texRect)) - row) * 16;
            int width = (part(j + 1, mesh.cols, widthOf(texRect)) - column) * 16;
            const int k = i * mesh.cols + j;
            const int indices[4] = {k, k + 1, k + mesh.cols + 1, k + mesh.cols};
            const auto point = [&](int corner) -> const _POINT3DFLOAT & { return mesh.points[indices[corner]]; };

            TexturedScene cell = scene;
            const bool isBack = backTex && !facesViewer(point(0), point(1), point(2));
            if (isBack)
                width = -width;
            cell.tex = (isBack ? backTex + texRect.right - column : scene.tex + texRect.left + column) +
                       (texRect.top + row) * signed32(scene.texPitch);
            const auto corner = [&](int number, int u, int v) {
                const int index = indices[number];
                return TexturedCorner(point(number), {u, v}, data->vertexArray0[index], data->vertexArray1[index]);
            };
            const TexturedCorner a = corner(0, 0, 0);
            const TexturedCorner b = corner(1, width, 0);
            const TexturedCorner c = corner(2, width, height);
            const TexturedCorner d = corner(3, 0, height);
            if constexpr (cells == Cells::quads) {
                drawTexturedQuad(*data, cell, {a, b, c, d}, flags);
            } else {
                drawTexturedTriangle(
                    *data, cell, fromTopToBottom<TexturedCorner>({a, b, d}, point(0).y, point(1).y, point(3).y), flags);
                drawTexturedTriangle(
                    *data, cell, fromTopToBottom<TexturedCorner>({d, b, c}, point(3).y, point(1).y, point(2).y), flags);
            }
            if (data->vertexArray0[k] > best) // a highlight against an index
                best = k;
        }
    return best;
}

template <class Block, Cells cells, q_ulong flags, bool hasGlint = false>
void renderTexture(Block *data, q_ulong *dst, q_ulong *tex, tagRECT *clip, tagRECT *texRect, q_ulong dstPitch,
                   q_ulong texPitch, _POINT3DFLOAT *points, int rows, int cols, _POINT3DFLOAT *light, _POINT3D *,
                   _POINT3D *ambientColor, float specular, int shininess) {
    const TexturedMesh mesh = {points, rows, cols};
    if (!lightMesh(data, mesh, light, *ambientColor, specular, shininess))
        return;
    const int best = drawCells<cells>(data, {dst, tex, clip, dstPitch, texPitch}, nullptr, *texRect, mesh, flags);
    const int highlight = data->vertexArray0[best];
    if (hasGlint && highlight > 0)
        addGlint({dst, signed32(dstPitch)}, *clip, truncated(points[best].x), truncated(points[best].y), highlight);
}

inline constexpr auto Render_Texture_3D = renderTexture<_PRIVATE_QM3D_DATA, Cells::quads, litMode>;
inline constexpr auto Render_Texture_3D_KeySrc = renderTexture<_PRIVATE_QM3D_DATA, Cells::quads, keyedMode>;
inline constexpr auto Render_Texture_3D_Tri = renderTexture<_PRIVATE_QM3D_DATA, Cells::triangles, litMode, true>;
inline constexpr auto VKD_Render_Texture_3D_KeySrc = renderTexture<_PRIVATE_QMGL_DATA, Cells::quads, keyedMode>;
inline constexpr auto VKD_Render_Texture_3D_Tri = renderTexture<_PRIVATE_QMGL_DATA, Cells::triangles, litMode>;

inline void VKD_Render_Texture_3D(_PRIVATE_QMGL_DATA *data, q_ulong *dst, q_ulong *tex, tagRECT *clip, tagRECT *texRect,
                                  q_ulong dstPitch, q_ulong texPitch, _POINT3DFLOAT *points, int rows, int cols,
                                  _POINT3DFLOAT *light, _POINT3D *lightColor, _POINT3D *ambientColor, float specular,
                                  int shininess) {
    renderTexture<_PRIVATE_QMGL_DATA, Cells::quads, litMode>(data, dst, tex, clip, texRect, dstPitch, texPitch, points,
                                                             rows, cols, light, lightColor, ambientColor, specular,
                                                             shininess);
}

inline void VKD_Render_Texture_3D(_PRIVATE_QMGL_DATA *data, q_ulong *dst, q_ulong *tex, q_ulong *backTex, tagRECT *clip,
                                  tagRECT *texRect, q_ulong dstPitch, q_ulong texPitch, _POINT3DFLOAT *points, int rows,
                                  int cols, _POINT3DFLOAT *light, _POINT3D *, _POINT3D *ambientColor, float specular,
                                  int shininess) {
    const TexturedMesh mesh = {points, rows, cols};
    if (lightMesh(data, mesh, light, *ambientColor, specular, shininess))
        drawCells<Cells::quads>(data, {dst, tex, clip, dstPitch, texPitch}, backTex, *texRect, mesh, litMode);
}

} // namespace plain

#endif
