#include "naive.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace test {
namespace {

/// The low 32 bits, as all arithmetic of the mappers keeps them.
int wrapped(std::uint64_t value) {
    return static_cast<int>(static_cast<std::uint32_t>(value));
}

std::uint64_t wide(int value) {
    return static_cast<std::uint64_t>(static_cast<std::int64_t>(value));
}

int plus(int a, int b) {
    return wrapped(wide(a) + wide(b));
}

int minus(int a, int b) {
    return wrapped(wide(a) - wide(b));
}

int times(int a, int b) {
    return wrapped(wide(a) * wide(b));
}

int dividedBy(int a, int b) {
    return wrapped(static_cast<std::uint64_t>(static_cast<std::int64_t>(a) / b));
}

enum Quantity { U, V, X, Y, ADD, MUL, Z };

class NaiveBand {
public:
    NaiveBand(const BandEnds &all, int bits) : ends(all), fractionBits(bits) {}

    int start(Quantity q, int side) const { return ends[static_cast<std::size_t>(q * 4 + side * 2)]; }
    int end(Quantity q, int side) const { return ends[static_cast<std::size_t>(q * 4 + side * 2 + 1)]; }

    /// The value on an edge (0 left, 1 right) at a row.
    int onEdge(Quantity q, int side, int y) const {
        const int height = minus(end(Y, side), start(Y, side));
        const int shifted = wrapped(wide(minus(end(q, side), start(q, side))) << fractionBits);
        const int slope = dividedBy(shifted, height == 0 ? 1 : height);
        return plus(wrapped(wide(start(q, side)) << fractionBits), times(minus(y, start(Y, side)), slope));
    }

    int firstColumn(int y) const { return onEdge(X, 0, y) >> fractionBits; }
    int endColumn(int y) const { return onEdge(X, 1, y) >> fractionBits; }

    /// The value at a pixel, without its fraction.
    int at(Quantity q, int x, int y) const {
        int width = minus(onEdge(X, 1, y), onEdge(X, 0, y)) >> fractionBits;
        if (width == 0)
            width = 1;
        const int step = dividedBy(minus(onEdge(q, 1, y), onEdge(q, 0, y)), width);
        return plus(onEdge(q, 0, y), times(minus(x, firstColumn(y)), step)) >> fractionBits;
    }

private:
    const BandEnds &ends;
    int fractionBits;
};

/// The four texels around a position in sixteenths.
struct Taps {
    std::uint32_t t00, t10, t01, t11;
    std::uint32_t fu, fv;

    Taps(const Texture &texture, int u, int v)
        : t00(texture.texel(u >> 4, v >> 4)), t10(texture.texel((u >> 4) + 1, v >> 4)),
          t01(texture.texel(u >> 4, (v >> 4) + 1)), t11(texture.texel((u >> 4) + 1, (v >> 4) + 1)),
          fu(static_cast<std::uint32_t>(u & 15)), fv(static_cast<std::uint32_t>(v & 15)) {}

    bool allZero() const { return t00 == 0 && t10 == 0 && t01 == 0 && t11 == 0; }

    int channel(int shift) const {
        const auto byte = [shift](std::uint32_t texel) { return texel >> shift & 0xFF; };
        return static_cast<int>((byte(t00) * (16 - fv) * (16 - fu) + byte(t10) * (16 - fv) * fu +
                                 byte(t01) * fv * (16 - fu) + byte(t11) * fv * fu) /
                                256);
    }
};

int capped(int channel) {
    return channel > 255 ? 255 : channel;
}

q_ulong packed(int red, int green, int blue) {
    return (static_cast<std::uint32_t>(capped(red)) << 16) | (static_cast<std::uint32_t>(capped(green)) << 8) |
           static_cast<std::uint32_t>(capped(blue));
}

q_ulong litFiltered(const Taps &taps, int mul, int add) {
    const auto lit = [=](int channel) { return plus(times(channel, mul) >> 8, add); };
    return packed(lit(taps.channel(16)), lit(taps.channel(8)), lit(taps.channel(0)));
}

q_ulong litNearest(std::uint32_t texel, bool redIsUpperHalf, int mul, int add) {
    const auto m = static_cast<std::uint32_t>(mul);
    const std::uint32_t red = redIsUpperHalf ? texel >> 16 : texel >> 16 & 0xFF;
    return packed(plus(static_cast<int>(red * m >> 8), add), plus(static_cast<int>((texel & 0xFF00) * m >> 16), add),
                  plus(static_cast<int>((texel & 0xFF) * m >> 8), add));
}

void naivePixel(const Mapper &mapper, Target target, Texture texture, const NaiveBand &band, int x, int y) {
    const int depth = band.at(Z, x, y);
    if (mapper.testsNearLimit && depth <= target.nearLimit)
        return;
    if (mapper.testsDepth && depth >= target.depths.at(x, y))
        return;
    const int mul = mapper.light == Light::flat ? band.start(MUL, 0) : band.at(MUL, x, y);
    const int add = mapper.light == Light::flat ? band.start(ADD, 0) : band.at(ADD, x, y);
    q_ulong &pixel = target.surface.at(x, y);
    if (mapper.filtered) {
        const Taps taps(texture, band.at(U, x, y), band.at(V, x, y));
        if (mapper.keyed && taps.allZero())
            return;
        pixel = litFiltered(taps, mul, add);
    } else {
        const q_ulong texel = texture.texel(band.at(U, x, y), band.at(V, x, y));
        pixel = mapper.light == Light::none
                    ? texel
                    : litNearest(static_cast<std::uint32_t>(texel), mapper.redIsUpperHalf, mul, add);
    }
    if (mapper.testsDepth)
        target.depths.at(x, y) = static_cast<short>(depth);
}

/// The older module's mappers have no names of their own: a blit over no columns leaves one in the slot.
QM3DSpanMapper olderMapper(const Mapper &mapper) {
    q_ulong flags = 0x200;
    if (mapper.keyed)
        flags = 0x10100;
    else if (mapper.light == Light::none)
        flags = 0x1010;
    else if (mapper.light == Light::flat)
        flags = 0x2210;
    _PRIVATE_QM3D_DATA data = {};
    tagRECT clip = {0, 0, 0, 1};
    _POINT3DFLOAT points[] = {{0, 0, 0, 0}, {1, 0, 0, 0}, {1, 1, 0, 0}, {0, 1, 0, 0}};
    const int texExtent = mapper.filtered ? 0 : 16;
    _POINTINT positions[] = {{0, 0}, {texExtent, 0}, {texExtent, texExtent}, {0, texExtent}};
    i3D_Blt_Rect(&data, nullptr, &points[0], &points[1], &points[2], &points[3], nullptr, &positions[0], &positions[1],
                 &positions[2], &positions[3], &clip, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, flags);
    return data.spanMapper;
}

QMGLSpanMapper pipelineMapper(const Mapper &mapper) {
    if (mapper.keyed)
        return VKD_i3D_Mapping_Linear_HPE_KeySrc;
    return mapper.filtered ? VKD_i3D_Mapping_Linear_HPE : VKD_i3D_Mapping_Near_HPE;
}

template <class Function, class Data, std::size_t... I>
void callWith(Function function, Data &data, Target target, Texture texture, tagRECT clip, const BandEnds &ends,
              std::index_sequence<I...>) {
    function(&data, target.surface.pixels(), texture.pixels(), &clip, static_cast<q_ulong>(target.surface.pitch()),
             texture.pitch(), ends[I]...);
}

struct NaiveCorner {
    int x, y, z, u, v, add, mul;

    NaiveCorner(const PolygonCorner &corner)
        : x(static_cast<int>(corner.point.x)), y(static_cast<int>(corner.point.y)), z(static_cast<int>(corner.point.z)),
          u(corner.tex.x), v(corner.tex.y), add(corner.add), mul(corner.mul) {}
};

BandEnds endsOf(const NaiveCorner &l0, const NaiveCorner &l1, const NaiveCorner &r0, const NaiveCorner &r1) {
    return {l0.u, l1.u, r0.u,   r1.u,   l0.v,   l1.v,   r0.v,   r1.v,   l0.x,   l1.x,   r0.x, r1.x, l0.y, l1.y,
            r0.y, r1.y, l0.add, l1.add, r0.add, r1.add, l0.mul, l1.mul, r0.mul, r1.mul, l0.z, l1.z, r0.z, r1.z};
}

bool leftOfLine(const NaiveCorner &p, const NaiveCorner &a, const NaiveCorner &b) {
    return times(minus(p.y, a.y), minus(b.x, a.x)) > times(minus(b.y, a.y), minus(p.x, a.x));
}

template <std::size_t count>
bool shrinks(const std::array<NaiveCorner, count> &corners) {
    const auto extent = [&corners](auto value) {
        int least = value(corners[0]);
        int most = least;
        for (const NaiveCorner &corner : corners) {
            least = std::min(least, value(corner));
            most = std::max(most, value(corner));
        }
        return minus(most, least);
    };
    const int texArea =
        times(extent([](const NaiveCorner &c) { return c.u; }), extent([](const NaiveCorner &c) { return c.v; }));
    const int screenArea =
        times(extent([](const NaiveCorner &c) { return c.x; }), extent([](const NaiveCorner &c) { return c.y; }));
    return texArea > times(screenArea, 128);
}

/// The mapper of a mode; positions turn into whole texels where a nearest mapper was reached by the shrink test.
template <std::size_t count>
const Mapper *select(bool pipeline, q_ulong flags, std::array<NaiveCorner, count> &corners) {
    const q_ulong mode = flags & 0xFFFF0;
    const auto byShrink = [&corners](const Mapper &nearest, const Mapper &filtered) {
        if (!shrinks(corners))
            return &filtered;
        for (NaiveCorner &corner : corners) {
            corner.u >>= 4;
            corner.v >>= 4;
        }
        return &nearest;
    };
    if (mode == 0x200)
        return pipeline ? byShrink(pipelineNearHPE, pipelineLinearHPE) : byShrink(nearHPE, linearHPE);
    if (mode == 0x10100)
        return pipeline ? &pipelineLinearHPEKeySrc : &linearHPEKeySrc;
    if (!pipeline && mode == 0x1010)
        return &nearNoLightNoHPE;
    if (!pipeline && mode == 0x2210)
        return byShrink(nearNoHPE, linearNoHPE);
    return nullptr;
}

/// The widest format; what is not stored as a float keeps it.
using Real = long double;

Real dot(const _POINT3DFLOAT &a, const _POINT3DFLOAT &b) {
    return Real{a.z} * b.z + Real{a.y} * b.y + Real{a.x} * b.x;
}

/// The normal of a cell, that is of its upper left triangle.
_POINT3DFLOAT faceNormal(const _POINT3DFLOAT &p1, const _POINT3DFLOAT &p2, const _POINT3DFLOAT &p3) {
    const float ax = p1.x - p2.x, ay = p1.y - p2.y, az = p1.z - p2.z;
    const float bx = p1.x - p3.x, by = p1.y - p3.y, bz = p1.z - p3.z;
    const _POINT3DFLOAT cross = {static_cast<float>(Real{ay} * bz - Real{az} * by),
                                 static_cast<float>(Real{az} * bx - Real{ax} * bz),
                                 static_cast<float>(Real{ax} * by - Real{ay} * bx), 0};
    const Real length = std::sqrt(dot(cross, cross));
    const Real factor = length == 0 ? Real{32768} : 1 / length;
    return {static_cast<float>(cross.x * factor), static_cast<float>(cross.y * factor),
            static_cast<float>(cross.z * factor), 0};
}

/// The sum of the normals over their number.
_POINT3DFLOAT meanOf(const std::vector<_POINT3DFLOAT> &normals) {
    Real x = 0, y = 0, z = 0;
    for (const _POINT3DFLOAT &normal : normals) {
        x += normal.x;
        y += normal.y;
        z += normal.z;
    }
    const auto count = static_cast<Real>(normals.size());
    return {static_cast<float>(x / count), static_cast<float>(y / count), static_cast<float>(z / count), 0};
}

} // namespace

VertexLights naiveLights(const std::vector<_POINT3DFLOAT> &points, int rows, int cols, const _POINT3DFLOAT &light,
                         int ambient, int specular, int shininess) {
    const auto point = [&](int i, int j) { return points.at(static_cast<std::size_t>(i * cols + j)); };
    const auto cell = [&](int i, int j) { return faceNormal(point(i, j), point(i, j + 1), point(i + 1, j)); };
    const auto normalAt = [&](int i, int j) {
        const int bottom = rows - 1;
        const int right = cols - 1;
        const int cellRow = std::min(i, rows - 2);
        const int cellColumn = std::min(j, cols - 2);
        if ((i == 0 || i == bottom) && (j == 0 || j == right))
            return cell(cellRow, cellColumn);
        if (i == 0 || i == bottom)
            return meanOf({cell(cellRow, j - 1), cell(cellRow, j)});
        if (j == 0 || j == right)
            return meanOf({cell(i - 1, cellColumn), cell(i, cellColumn)});
        return meanOf({cell(i - 1, j), cell(i - 1, j), cell(i, j), cell(i, j)});
    };
    const _POINT3DFLOAT toward = {light.x, light.y, static_cast<float>(light.z + 1.0F), 0};
    const Real length = std::sqrt(dot(toward, toward));
    const _POINT3DFLOAT half = {static_cast<float>(toward.x / length), static_cast<float>(toward.y / length),
                                static_cast<float>(toward.z / length), 0};
    VertexLights lights;
    for (int i = 0; i < rows; ++i)
        for (int j = 0; j < cols; ++j) {
            const _POINT3DFLOAT normal = normalAt(i, j);
            const Real d = dot(light, normal) * 256;
            lights.mul.push_back(plus(d < 0 ? 0 : static_cast<int>(d), ambient));
            Real s = dot(half, normal);
            for (int k = 0; k < shininess && s > 0; ++k)
                s *= s;
            lights.add.push_back(s > 0 ? static_cast<int>(specular * s) : 0);
        }
    return lights;
}

BandEnds Band::ends() const {
    BandEnds all;
    std::size_t i = 0;
    for (const Ends &q : {u, v, x, y, add, mul, z})
        for (const int value : {q.left0, q.left1, q.right0, q.right1})
            all[i++] = value;
    return all;
}

Band bandOf(const tagRECT &rect, int u, int v) {
    const int left = static_cast<int>(rect.left);
    const int top = static_cast<int>(rect.top);
    const int right = static_cast<int>(rect.right);
    const int bottom = static_cast<int>(rect.bottom);
    Band band;
    band.u = {u, u, u, u};
    band.v = {v, v, v, v};
    band.x = {left, left, right, right};
    band.y = {top, bottom, top, bottom};
    return band;
}

void naiveMap(const Mapper &mapper, Target target, Texture texture, const tagRECT &clip, const BandEnds &ends) {
    const NaiveBand band(ends, mapper.fractionBits);
    const int firstRow = std::max({band.start(Y, 0), band.start(Y, 1), static_cast<int>(clip.top)});
    const int endRow = std::min({band.end(Y, 0), band.end(Y, 1), static_cast<int>(clip.bottom)});
    for (int y = firstRow; y < endRow; ++y) {
        const int first = std::max(band.firstColumn(y), static_cast<int>(clip.left));
        const int end = std::min(band.endColumn(y), static_cast<int>(clip.right));
        for (int x = first; x < end; ++x)
            naivePixel(mapper, target, texture, band, x, y);
    }
}

void callMapper(const Mapper &mapper, Target target, Texture texture, const tagRECT &clip, const BandEnds &ends) {
    constexpr auto indexes = std::make_index_sequence<28>();
    if (mapper.pipeline) {
        auto data = blockOver<_PRIVATE_QMGL_DATA>(target.depths);
        data.nearLimit = target.nearLimit;
        callWith(pipelineMapper(mapper), data, target, texture, clip, ends, indexes);
    } else {
        auto data = blockOver<_PRIVATE_QM3D_DATA>(target.depths);
        callWith(olderMapper(mapper), data, target, texture, clip, ends, indexes);
    }
}

const Mapper *naiveQuad(bool pipeline, Target target, Texture texture, const tagRECT &clip,
                        const std::array<PolygonCorner, 4> &given, q_ulong flags) {
    std::array<NaiveCorner, 4> corners = {given[0], given[1], given[2], given[3]};
    constexpr std::pair<std::size_t, std::size_t> exchanges[] = {{0, 1}, {0, 2}, {0, 3}, {1, 2}, {1, 3}, {2, 3}};
    for (const auto &[i, j] : exchanges)
        if (corners[j].y < corners[i].y)
            std::swap(corners[i], corners[j]);
    if (corners[3].y < clip.top || clip.bottom < corners[0].y)
        return nullptr;
    const bool sideU = leftOfLine(corners[1], corners[0], corners[3]);
    const bool sideL = leftOfLine(corners[2], corners[0], corners[3]);
    const Mapper *mapper = select(pipeline, flags, corners);
    if (!mapper)
        return nullptr;
    const auto &[T, UPPER, L, B] = corners;
    const auto draw = [&](const NaiveCorner &l0, const NaiveCorner &l1, const NaiveCorner &r0, const NaiveCorner &r1) {
        naiveMap(*mapper, target, texture, clip, endsOf(l0, l1, r0, r1));
    };
    if (sideU && sideL) {
        draw(T, UPPER, T, B);
        draw(UPPER, L, T, B);
        draw(L, B, T, B);
    } else if (sideU) {
        draw(T, UPPER, T, L);
        draw(UPPER, B, T, L);
        draw(UPPER, B, L, B);
    } else if (sideL) {
        draw(T, L, T, UPPER);
        draw(T, L, UPPER, B);
        draw(L, B, UPPER, B);
    } else {
        draw(T, B, T, UPPER);
        draw(T, B, UPPER, L);
        draw(T, B, L, B);
    }
    return mapper;
}

void naiveTriangle(bool pipeline, Target target, Texture texture, const tagRECT &clip,
                   const std::array<PolygonCorner, 3> &given, q_ulong flags, const Mapper *&slot) {
    const bool inOrder = given[0].point.y < given[1].point.y;
    const NaiveCorner first = given[inOrder ? 0 : 1];
    const NaiveCorner second = given[inOrder ? 1 : 0];
    const NaiveCorner third = given[2];
    const float y2 = given[2].point.y;
    std::array<NaiveCorner, 3> corners = {third, first, second};
    if (static_cast<float>(second.y) < y2)
        corners = {first, second, third};
    else if (static_cast<float>(first.y) < y2)
        corners = {first, third, second};

    const bool side = leftOfLine(corners[1], corners[0], corners[2]);
    const bool maySelect = !pipeline || (flags & 0xFFFF0) == 0x200;
    const Mapper *selected = maySelect ? select(pipeline, flags, corners) : nullptr;
    if (selected)
        slot = selected;
    else if (!pipeline || !slot)
        return;
    const auto &[T, M, B] = corners;
    const auto draw = [&](const NaiveCorner &l0, const NaiveCorner &l1, const NaiveCorner &r0, const NaiveCorner &r1) {
        naiveMap(*slot, target, texture, clip, endsOf(l0, l1, r0, r1));
    };
    if (side) {
        draw(T, M, T, B);
        draw(M, B, T, B);
    } else {
        draw(T, B, T, M);
        draw(T, B, M, B);
    }
}

} // namespace test
