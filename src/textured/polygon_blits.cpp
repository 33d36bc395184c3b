#include "base/wide.h"
#include "q_Mur/textured.h"
#include "span_mappers.h"

namespace {

using namespace qmur;

/// The bits of a mode that are looked at, and the four modes.
constexpr q_ulong modeMask = 0xFFFF0;
constexpr q_ulong interpolatedLight = 0x200;
constexpr q_ulong keyed = 0x10100;
constexpr q_ulong plainTexels = 0x1010;
constexpr q_ulong flatLight = 0x2210;

/// The mapper of a mode, and the nearest one that takes its place where the texture is shrunk. Null means none.
template <class Mapper>
struct MapperChoice {
    Mapper mapper;
    Mapper shrunk;
};

MapperChoice<QM3DSpanMapper> olderChoice(q_ulong flags) {
    switch (flags & modeMask) {
    case interpolatedLight:
        return {mapLinearHPE, mapNearHPE};
    case keyed:
        return {mapLinearHPEKeySrc, nullptr};
    case plainTexels:
        return {mapNearNoLightNoHPE, nullptr};
    case flatLight:
        return {mapLinearNoHPE, mapNearNoHPE};
    default:
        return {};
    }
}

MapperChoice<QMGLSpanMapper> pipelineChoice(q_ulong flags) {
    switch (flags & modeMask) {
    case interpolatedLight:
        return {shownLinearHPE, shownNearHPE};
    case keyed:
        return {shownLinearHPEKeySrc, nullptr};
    default:
        return {};
    }
}

template <std::size_t count>
using Corners = std::array<Corner<MappedColumn>, count>;

Corner<MappedColumn> cornerOf(const _POINT3DFLOAT &point, const _POINTINT &texel, int add, int mul) {
    return {
        truncateToInt(point.y),
        {.x = truncateToInt(point.x), .u = texel.x, .v = texel.y, .z = truncateToInt(point.z), .add = add, .mul = mul}};
}

/// The distance between the least and the greatest of a value over all corners.
template <std::size_t count>
int extentOf(const Corners<count> &corners, int MappedColumn::*value) {
    int least = corners[0].at.*value;
    int greatest = least;
    for (const Corner<MappedColumn> &corner : corners) {
        least = smaller(least, corner.at.*value);
        greatest = larger(greatest, corner.at.*value);
    }
    return wrapSubtract(greatest, least);
}

/// Whether more than one texel, of 16 by 16 units, comes to two pixels of the bounding box.
template <std::size_t count>
bool isShrunk(const Corners<count> &corners) {
    const int texArea = wrapMultiply(extentOf(corners, &MappedColumn::u), extentOf(corners, &MappedColumn::v));
    const int height = wrapSubtract(corners.back().y, corners.front().y);
    const int screenArea = wrapMultiply(extentOf(corners, &MappedColumn::x), height);
    return texArea > wrapMultiply(screenArea, 128);
}

/// Fills the slot. False if the mode has no mapper: the slot stays as it is.
template <class Mapper, std::size_t count>
bool selectMapper(Mapper &slot, MapperChoice<Mapper> choice, Corners<count> &corners) {
    if (!choice.mapper)
        return false;
    if (!choice.shrunk || !isShrunk(corners)) {
        slot = choice.mapper;
        return true;
    }
    slot = choice.shrunk;
    for (Corner<MappedColumn> &corner : corners) {
        corner.at.u >>= 4;
        corner.at.v >>= 4;
    }
    return true;
}

/// Where to draw and from which texture.
struct Scene {
    q_ulong *dst;
    q_ulong *tex;
    tagRECT *clip;
    q_ulong dstPitch;
    q_ulong texPitch;
};

/// Hands the bands to the mapper in the slot.
template <class Data, std::size_t count>
void mapBands(Data &data, const Scene &scene, const Corners<count> &corners) {
    const auto mapper = data.spanMapper;
    if (!mapper)
        return;
    forEachBand(corners, isLeftOfLine, [&](const Edge<MappedColumn> &left, const Edge<MappedColumn> &right) {
        const auto &[yL0, l0] = left.upper;
        const auto &[yL1, l1] = left.lower;
        const auto &[yR0, r0] = right.upper;
        const auto &[yR1, r1] = right.lower;
        mapper(&data, scene.dst, scene.tex, scene.clip, scene.dstPitch, scene.texPitch, l0.u, l1.u, r0.u, r1.u, l0.v,
               l1.v, r0.v, r1.v, l0.x, l1.x, r0.x, r1.x, yL0, yL1, yR0, yR1, l0.add, l1.add, r0.add, r1.add, l0.mul,
               l1.mul, r0.mul, r1.mul, l0.z, l1.z, r0.z, r1.z);
    });
}

template <class Data, class Mapper>
void drawQuad(Data &data, const Scene &scene, const Quad<MappedColumn> &given, MapperChoice<Mapper> choice) {
    Quad<MappedColumn> corners = sortedQuad(given);
    if (areBeyond(corners, rowsOf(*scene.clip)))
        return;
    if (selectMapper(data.spanMapper, choice, corners))
        mapBands(data, scene, corners);
}

} // namespace

void i3D_Blt_Rect(_PRIVATE_QM3D_DATA *data, q_ulong *dst, _POINT3DFLOAT *p0, _POINT3DFLOAT *p1, _POINT3DFLOAT *p2,
                  _POINT3DFLOAT *p3, q_ulong *tex, _POINTINT *t0, _POINTINT *t1, _POINTINT *t2, _POINTINT *t3,
                  tagRECT *clip, q_ulong dstPitch, q_ulong texPitch, int add0, int add1, int add2, int add3, int mul0,
                  int mul1, int mul2, int mul3, q_ulong flags) {
    drawQuad(*data, {.dst = dst, .tex = tex, .clip = clip, .dstPitch = dstPitch, .texPitch = texPitch},
             {cornerOf(*p0, *t0, add0, mul0), cornerOf(*p1, *t1, add1, mul1), cornerOf(*p2, *t2, add2, mul2),
              cornerOf(*p3, *t3, add3, mul3)},
             olderChoice(flags));
}

void VKD_i3D_Blt_Rect(_PRIVATE_QMGL_DATA *data, q_ulong *dst, _POINT3DFLOAT *p0, _POINT3DFLOAT *p1, _POINT3DFLOAT *p2,
                      _POINT3DFLOAT *p3, q_ulong *tex, _POINTINT *t0, _POINTINT *t1, _POINTINT *t2, _POINTINT *t3,
                      tagRECT *clip, q_ulong dstPitch, q_ulong texPitch, int add0, int add1, int add2, int add3,
                      int mul0, int mul1, int mul2, int mul3, q_ulong flags) {
    drawQuad(*data, {.dst = dst, .tex = tex, .clip = clip, .dstPitch = dstPitch, .texPitch = texPitch},
             {cornerOf(*p0, *t0, add0, mul0), cornerOf(*p1, *t1, add1, mul1), cornerOf(*p2, *t2, add2, mul2),
              cornerOf(*p3, *t3, add3, mul3)},
             pipelineChoice(flags));
}

void i3D_Blt_Tri(_PRIVATE_QM3D_DATA *data, q_ulong *dst, _POINT3DFLOAT *p0, _POINT3DFLOAT *p1, _POINT3DFLOAT *p2,
                 q_ulong *tex, _POINTINT *t0, _POINTINT *t1, _POINTINT *t2, tagRECT *clip, q_ulong dstPitch,
                 q_ulong texPitch, int add0, int add1, int add2, int mul0, int mul1, int mul2, q_ulong flags) {
    // Meant: the rows are compared as they are given, and the third with what the others are in whole pixels.
    const _POINT3DFLOAT *const points[] = {p0, p1, p2};
    const _POINTINT *const texels[] = {t0, t1, t2};
    const int adds[] = {add0, add1, add2};
    const int muls[] = {mul0, mul1, mul2};
    Triangle<MappedColumn> corners =
        sortedTriangle(p0->y, p1->y, p2->y, [&](int i) { return cornerOf(*points[i], *texels[i], adds[i], muls[i]); });
    if (selectMapper(data->spanMapper, olderChoice(flags), corners))
        mapBands(*data, {.dst = dst, .tex = tex, .clip = clip, .dstPitch = dstPitch, .texPitch = texPitch}, corners);
}

void VKD_i3D_Blt_Tri(_PRIVATE_QMGL_DATA *data, q_ulong *dst, _POINT3DFLOAT *p0, _POINT3DFLOAT *p1, _POINT3DFLOAT *p2,
                     q_ulong *tex, _POINTINT *t0, _POINTINT *t1, _POINTINT *t2, tagRECT *clip, q_ulong dstPitch,
                     q_ulong texPitch, int add0, int add1, int add2, int mul0, int mul1, int mul2, q_ulong flags) {
    // Meant: the rows are compared as they are given, and the third with what the others are in whole pixels.
    const _POINT3DFLOAT *const points[] = {p0, p1, p2};
    const _POINTINT *const texels[] = {t0, t1, t2};
    const int adds[] = {add0, add1, add2};
    const int muls[] = {mul0, mul1, mul2};
    Triangle<MappedColumn> corners =
        sortedTriangle(p0->y, p1->y, p2->y, [&](int i) { return cornerOf(*points[i], *texels[i], adds[i], muls[i]); });
    // Meant: in any other mode the mapper of an earlier call draws.
    if ((flags & modeMask) == interpolatedLight)
        selectMapper(data->spanMapper, pipelineChoice(flags), corners);
    mapBands(*data, {.dst = dst, .tex = tex, .clip = clip, .dstPitch = dstPitch, .texPitch = texPitch}, corners);
}
