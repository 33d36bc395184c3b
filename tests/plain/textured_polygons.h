/// \file
/// Textured quads and triangles once more.
#ifndef Q_MUR_TESTS_PLAIN_TEXTURED_POLYGONS_H
#define Q_MUR_TESTS_PLAIN_TEXTURED_POLYGONS_H

#include "span_mappers.h"

#include <type_traits>

namespace plain {

/// A corner in whole pixels and depths.
struct TexturedCorner {
    int x;
    int y;
    int z;
    int u;
    int v;
    int add;
    int mul;

    TexturedCorner(const _POINT3DFLOAT &point, const _POINTINT &texel, int highlight, int multiplier)
        : x(truncated(point.x)), y(truncated(point.y)), z(truncated(point.z)), u(texel.x), v(texel.y), add(highlight),
          mul(multiplier) {}
};

template <std::size_t count>
using TexturedCorners = std::array<TexturedCorner, count>;

/// The distance of the least and the greatest of a number of the corners.
template <std::size_t count>
Number spread(const TexturedCorners<count> &corners, int TexturedCorner::*value) {
    const auto [least, greatest] =
        std::minmax_element(corners.begin(), corners.end(),
                            [value](const TexturedCorner &a, const TexturedCorner &b) { return a.*value < b.*value; });
    return signed32(Number{(*greatest).*value} - (*least).*value);
}

/// Whether more than one texel, of 16 by 16 units, comes to two pixels of the bounding box.
template <std::size_t count>
bool isShrunk(const TexturedCorners<count> &corners) {
    const auto area = [&corners](int TexturedCorner::*width, int TexturedCorner::*height) {
        return signed32(spread(corners, width) * spread(corners, height));
    };
    return area(&TexturedCorner::u, &TexturedCorner::v) > signed32(area(&TexturedCorner::x, &TexturedCorner::y) * 128);
}

/// The mapper of a mode and the one that takes its place where the texture is shrunk; null where there is none.
template <class Mapper>
struct MapperPair {
    Mapper mapper = nullptr;
    Mapper shrunk = nullptr;
};

inline MapperPair<QM3DSpanMapper> mappersOf(const _PRIVATE_QM3D_DATA &, q_ulong flags) {
    switch (modeOf(flags)) {
    case litMode:
        return {i3D_Mapping_Linear_HPE, i3D_Mapping_Near_HPE};
    case keyedMode:
        return {i3D_Mapping_Linear_HPE_KeySrc};
    case unlitMode:
        return {i3D_Mapping_Near_NoLight_NoHPE};
    case flatMode:
        return {i3D_Mapping_Linear_NoHPE, i3D_Mapping_Near_NoHPE};
    default:
        return {};
    }
}

/// The slot of a host holds the library's mappers, which have names in this module.
inline MapperPair<QMGLSpanMapper> mappersOf(const _PRIVATE_QMGL_DATA &, q_ulong flags) {
    switch (modeOf(flags)) {
    case litMode:
        return {::VKD_i3D_Mapping_Linear_HPE, ::VKD_i3D_Mapping_Near_HPE};
    case keyedMode:
        return {::VKD_i3D_Mapping_Linear_HPE_KeySrc};
    default:
        return {};
    }
}

/// The plain twin of what is in a slot.
inline QM3DSpanMapper plainMapper(QM3DSpanMapper slot) {
    return slot;
}
inline QMGLSpanMapper plainMapper(QMGLSpanMapper slot) {
    if (slot == ::VKD_i3D_Mapping_Linear_HPE)
        return VKD_i3D_Mapping_Linear_HPE;
    if (slot == ::VKD_i3D_Mapping_Linear_HPE_KeySrc)
        return VKD_i3D_Mapping_Linear_HPE_KeySrc;
    return slot == ::VKD_i3D_Mapping_Near_HPE ? VKD_i3D_Mapping_Near_HPE : slot;
}

/// Puts the mapper of the mode into the slot, if there is one, and shifts the positions to whole texels for a nearest
/// mapper that the shrink has chosen.
template <class Block, std::size_t count>
bool selectMapper(Block &block, q_ulong flags, TexturedCorners<count> &corners) {
    const auto [mapper, shrunk] = mappersOf(block, flags);
    if (!mapper)
        return false;
    const bool takesNearest = shrunk && isShrunk(corners);
    block.spanMapper = takesNearest ? shrunk : mapper;
    for (TexturedCorner &corner : corners)
        if (takesNearest) {
            corner.u >>= 4;
            corner.v >>= 4;
        }
    return true;
}

/// The surfaces of a blit.
struct TexturedScene {
    q_ulong *dst;
    q_ulong *tex;
    tagRECT *clip;
    q_ulong dstPitch;
    q_ulong texPitch;
};

template <class Block, std::size_t count>
void drawBands(Block &block, const TexturedScene &scene, const TexturedCorners<count> &corners) {
    const auto mapper = plainMapper(block.spanMapper);
    if (!mapper)
        return;
    forBandsBetween(corners, [&](const auto &l0, const auto &l1, const auto &r0, const auto &r1) {
        mapper(&block, scene.dst, scene.tex, scene.clip, scene.dstPitch, scene.texPitch, l0.u, l1.u, r0.u, r1.u, l0.v,
               l1.v, r0.v, r1.v, l0.x, l1.x, r0.x, r1.x, l0.y, l1.y, r0.y, r1.y, l0.add, l1.add, r0.add, r1.add, l0.mul,
               l1.mul, r0.mul, r1.mul, l0.z, l1.z, r0.z, r1.z);
    });
}

template <class Block>
void drawTexturedQuad(Block &block, const TexturedScene &scene, const TexturedCorners<4> &given, q_ulong flags) {
    TexturedCorners<4> corners = fromTopToBottom(given);
    if (corners[3].y < scene.clip->top || scene.clip->bottom < corners[0].y)
        return;
    if (selectMapper(block, flags, corners))
        drawBands(block, scene, corners);
}

/// The pipeline's triangles know one mode; in any other they draw with what is in the slot.
template <class Block>
void drawTexturedTriangle(Block &block, const TexturedScene &scene, const TexturedCorners<3> &sorted, q_ulong flags) {
    TexturedCorners<3> corners = sorted;
    constexpr bool isPipeline = std::is_same_v<Block, _PRIVATE_QMGL_DATA>;
    if (isPipeline && modeOf(flags) != litMode)
        drawBands(block, scene, corners);
    else if (selectMapper(block, flags, corners))
        drawBands(block, scene, corners);
}

template <class Block>
void bltRect(Block *data, q_ulong *dst, _POINT3DFLOAT *p0, _POINT3DFLOAT *p1, _POINT3DFLOAT *p2, _POINT3DFLOAT *p3,
             q_ulong *tex, _POINTINT *t0, _POINTINT *t1, _POINTINT *t2, _POINTINT *t3, tagRECT *clip, q_ulong dstPitch,
             q_ulong texPitch, int add0, int add1, int add2, int add3, int mul0, int mul1, int mul2, int mul3,
             q_ulong flags) {
    drawTexturedQuad(*data, {dst, tex, clip, dstPitch, texPitch},
                     {{{*p0, *t0, add0, mul0}, {*p1, *t1, add1, mul1}, {*p2, *t2, add2, mul2}, {*p3, *t3, add3, mul3}}},
                     flags);
}

template <class Block>
void bltTri(Block *data, q_ulong *dst, _POINT3DFLOAT *p0, _POINT3DFLOAT *p1, _POINT3DFLOAT *p2, q_ulong *tex,
            _POINTINT *t0, _POINTINT *t1, _POINTINT *t2, tagRECT *clip, q_ulong dstPitch, q_ulong texPitch, int add0,
            int add1, int add2, int mul0, int mul1, int mul2, q_ulong flags) {
    drawTexturedTriangle(
        *data, {dst, tex, clip, dstPitch, texPitch},
        fromTopToBottom<TexturedCorner>({{{*p0, *t0, add0, mul0}, {*p1, *t1, add1, mul1}, {*p2, *t2, add2, mul2}}},
                                        p0->y, p1->y, p2->y),
        flags);
}

inline constexpr auto i3D_Blt_Rect = bltRect<_PRIVATE_QM3D_DATA>;
inline constexpr auto VKD_i3D_Blt_Rect = bltRect<_PRIVATE_QMGL_DATA>;
inline constexpr auto i3D_Blt_Tri = bltTri<_PRIVATE_QM3D_DATA>;
inline constexpr auto VKD_i3D_Blt_Tri = bltTri<_PRIVATE_QMGL_DATA>;

} // namespace plain

#endif
