#include "naive.h"

#include "base/wide.h"
#include "math3d/full_width.h"

#include <algorithm>
#include <cmath>

namespace test {
namespace {

int quotient(int numerator, int divisor) {
    return low32(static_cast<std::int64_t>(numerator) / (divisor == 0 ? 1 : divisor));
}

int minus(int a, int b) {
    return low32(static_cast<std::int64_t>(a) - b);
}

/// s at `from`, e at `to`, in fixed point at `row`.
int alongEdge(int s, int e, int from, int to, int row, int bits) {
    const std::int64_t one = std::int64_t{1} << bits;
    const int step = quotient(low32(minus(e, s) * one), minus(to, from));
    return low32(static_cast<std::int64_t>(minus(row, from)) * step + s * one);
}

struct RowValues {
    int a;
    int b;
};

RowValues onRow(const Ends &value, const Ends &y, int row, int bits) {
    return {alongEdge(value.a0, value.a1, y.a0, y.a1, row, bits), alongEdge(value.b0, value.b1, y.b0, y.b1, row, bits)};
}

q_ulong unsignedOf(int value) {
    return static_cast<q_ulong>(value);
}

/// ((red << 8 | green) << 8) | blue without any mask.
q_ulong joined(int red, int green, int blue) {
    return ((unsignedOf(red) << 8 | unsignedOf(green)) << 8) | unsignedOf(blue);
}

q_ulong limited(q_ulong value) {
    return value > 255 ? 255 : value;
}

} // namespace

void naiveBand(Surface &picture, Surface &depths, const tagRECT &clip, const Band &band, int nearLimit, Way way,
               int opacity) {
    const int bits = way == Way::add ? 18 : 12;
    const int first = std::max({band.y.a0, band.y.b0, static_cast<int>(clip.top)});
    const int last = std::min({band.y.a1, band.y.b1, static_cast<int>(clip.bottom)});
    for (int y = static_cast<int>(clip.top); y < clip.bottom; ++y) {
        if (y < first || y >= last)
            continue;
        const RowValues x = onRow(band.x, band.y, y, bits);
        const RowValues red = onRow(band.red, band.y, y, bits);
        const RowValues green = onRow(band.green, band.y, y, bits);
        const RowValues blue = onRow(band.blue, band.y, y, bits);
        const RowValues depth = onRow(band.depth, band.y, y, bits);
        const int width = minus(x.b, x.a) >> bits;
        for (int column = static_cast<int>(clip.left); column < clip.right; ++column) {
            if (column < x.a >> bits || column >= x.b >> bits)
                continue;
            const auto at = [&](RowValues value) {
                const std::int64_t step = quotient(minus(value.b, value.a), width);
                return low32(value.a + step * (column - (x.a >> bits)));
            };
            q_ulong &d = picture.at(column, y);
            q_ulong &entry = depths.at(column, y);
            const int z = at(depth) >> 12;
            const int r = at(red);
            const int g = at(green);
            const int b = at(blue);
            const bool tested = way == Way::draw || (way == Way::blend && opacity != 128);
            if (tested) {
                if (!(z > nearLimit && z < static_cast<q_long>(entry)))
                    continue;
                entry = unsignedOf(static_cast<short>(z));
            }
            if (way == Way::draw) {
                d = joined(r >> 12, g >> 12, b >> 12);
            } else if (way == Way::add) {
                const q_ulong sumRed = unsignedOf(r >> 18) + (d >> 16);
                const q_ulong sumGreen = unsignedOf(g >> 18) + (d >> 8) % 256;
                const q_ulong sumBlue = unsignedOf(b >> 18) + d % 256;
                d = limited(sumRed) << 16 | limited(sumGreen) << 8 | limited(sumBlue);
            } else if (way == Way::mix || opacity == 128) {
                if (way == Way::mix && !(z > nearLimit))
                    continue;
                d = (d >> 1 & 0x7F7F7F) + joined(r >> 13, g >> 13, b >> 13);
            } else {
                const q_ulong a = unsignedOf(opacity);
                const q_ulong n = 256 - a;
                const q_ulong w = ((unsignedOf(r >> 12) * a << 8) + (d >> 8 & 0xFFFF00) * n) & ~q_ulong{0xFF00};
                const q_ulong v = (unsignedOf(g >> 12) * a + (d >> 8 & 0xFF) * n) & ~q_ulong{0xFF};
                const q_ulong u = (unsignedOf(b >> 12) * a + (d & 0xFF) * n) >> 8;
                d = w | v | u;
            }
        }
    }
}

namespace {

struct Vertex {
    int x;
    int y;
    int z;
    int red;
    int green;
    int blue;
};

Vertex vertexOf(const _POINT3DFLOAT &point, q_ulong colour) {
    return {static_cast<int>(point.x),      static_cast<int>(point.y),           static_cast<int>(point.z),
            static_cast<int>(colour >> 16), static_cast<int>(colour >> 8 & 255), static_cast<int>(colour & 255)};
}

Ends ends(int Vertex::*k, const Vertex &a0, const Vertex &a1, const Vertex &b0, const Vertex &b1) {
    return {a0.*k, a1.*k, b0.*k, b1.*k};
}

} // namespace

void naiveTriangle(Surface &picture, Surface &depths, const tagRECT &clip, const _POINT3DFLOAT *points,
                   const q_ulong *colours, int nearLimit, Way way, int opacity) {
    Vertex order[3] = {vertexOf(points[0], colours[0]), vertexOf(points[1], colours[1]),
                       vertexOf(points[2], colours[2])};
    if (!(points[0].y < points[1].y))
        std::swap(order[0], order[1]);
    if (!(static_cast<float>(order[1].y) < points[2].y)) {
        std::swap(order[1], order[2]);
        if (!(static_cast<float>(order[0].y) < points[2].y))
            std::swap(order[0], order[1]);
    }
    const Vertex &top = order[0];
    const Vertex &middle = order[1];
    const Vertex &bottom = order[2];
    if (way != Way::add && (bottom.y < clip.top || top.y > clip.bottom))
        return;
    const std::int64_t left = low32(static_cast<std::int64_t>(middle.y - top.y) * (bottom.x - top.x));
    const std::int64_t right = low32(static_cast<std::int64_t>(bottom.y - top.y) * (middle.x - top.x));
    for (const auto &[from, to] : {std::pair(top, middle), std::pair(middle, bottom)}) {
        const auto numbers = [&, from = from, to = to](int Vertex::*k) {
            return left > right ? ends(k, from, to, top, bottom) : ends(k, top, bottom, from, to);
        };
        naiveBand(picture, depths, clip,
                  {numbers(&Vertex::x), numbers(&Vertex::y), numbers(&Vertex::red), numbers(&Vertex::green),
                   numbers(&Vertex::blue), numbers(&Vertex::z)},
                  nearLimit, way, opacity);
    }
}

namespace {

struct Normal {
    float x;
    float y;
    float z;
};

/// To be used at full width, like all that follows.
Normal faceNormal(const _POINT3DFLOAT &p1, const _POINT3DFLOAT &p2, const _POINT3DFLOAT &p3) {
    const Real a[3] = {p1.x - p2.x, p1.y - p2.y, p1.z - p2.z};
    const Real b[3] = {p1.x - p3.x, p1.y - p3.y, p1.z - p3.z};
    const Real x = static_cast<float>(a[1] * b[2] - a[2] * b[1]);
    const Real y = static_cast<float>(a[2] * b[0] - a[0] * b[2]);
    const Real z = static_cast<float>(a[0] * b[1] - a[1] * b[0]);
    const Real length = std::sqrt(z * z + y * y + x * x);
    const Real k = length == 0 ? 32768 : 1 / length;
    return {static_cast<float>(x * k), static_cast<float>(y * k), static_cast<float>(z * k)};
}

Normal mean(const Normal &a, const Normal &b) {
    const auto half = [](float p, float q) { return static_cast<float>((static_cast<Real>(p) + q) / 2); };
    return {half(a.x, b.x), half(a.y, b.y), half(a.z, b.z)};
}

Normal meanOfDoubled(const Normal &a, const Normal &b) {
    const auto quarter = [](Real p, Real q) { return static_cast<float>((p + p + q + q) / 4); };
    return {quarter(a.x, b.x), quarter(a.y, b.y), quarter(a.z, b.z)};
}

Real dot(const _POINT3DFLOAT &a, const Normal &b) {
    return static_cast<Real>(a.z) * b.z + static_cast<Real>(a.y) * b.y + static_cast<Real>(a.x) * b.x;
}

} // namespace

std::vector<q_ulong> naiveLight(const std::vector<_POINT3DFLOAT> &points, std::vector<q_ulong> colours, int columns,
                                int rows, const _POINT3DFLOAT &light, const _POINT3D &ambient, float specular,
                                int shininess) {
    const int R = rows - 1;
    const int K = columns - 1;
    qmur::atFullWidth([&] {
        const int specularLevel = static_cast<int>(static_cast<Real>(specular) * 256);
        const int squares =
            low32(static_cast<std::int64_t>(ambient.x) * ambient.x + static_cast<std::int64_t>(ambient.y) * ambient.y +
                  static_cast<std::int64_t>(ambient.z) * ambient.z);
        const int ambientLevel = static_cast<int>(std::sqrt(static_cast<Real>(squares)));
        const Real hx = light.x;
        const Real hy = light.y;
        const Real hz = static_cast<float>(light.z + 1.0F);
        const Real length = std::sqrt(hz * hz + hy * hy + hx * hx);
        const _POINT3DFLOAT H = {static_cast<float>(hx / length), static_cast<float>(hy / length),
                                 static_cast<float>(hz / length), 0};
        const auto P = [&](int i, int j) { return points.at(static_cast<std::size_t>(i * columns + j)); };
        const auto F = [&](int i, int j) { return faceNormal(P(i, j), P(i, j + 1), P(i + 1, j)); };
        const auto vertexNormal = [&](int i, int j) {
            const bool middleRow = i > 0 && i < R;
            const bool middleColumn = j > 0 && j < K;
            if (middleRow && middleColumn)
                return meanOfDoubled(F(i - 1, j), F(i, j));
            if (middleColumn && i == 0)
                return mean(F(0, j), F(0, j - 1));
            if (middleColumn)
                return mean(F(R - 1, j), F(R - 1, j - 1));
            if (middleRow && j == 0)
                return mean(F(i - 1, 0), F(i, 0));
            if (middleRow)
                return mean(F(i - 1, K - 1), F(i, K - 1));
            return F(i == 0 ? 0 : R - 1, j == 0 ? 0 : K - 1);
        };
        for (int i = 0; i < rows; ++i)
            for (int j = 0; j < columns; ++j) {
                const Normal N = vertexNormal(i, j);
                const Real d = std::max(dot(light, N) * 256, Real{0});
                const q_ulong multiplier = static_cast<q_ulong>(static_cast<int>(d) + ambientLevel);
                Real s = dot(H, N);
                int highlight = 0;
                if (s > 0) {
                    for (int k = 0; k < shininess; ++k)
                        s = s * s;
                    highlight = static_cast<int>(specularLevel * s);
                }
                const auto channel = [&](q_ulong value) {
                    const int lit = static_cast<int>(value * multiplier >> 8) + highlight;
                    return static_cast<q_ulong>(lit > 255 ? 255 : lit);
                };
                q_ulong &c = colours.at(static_cast<std::size_t>(i * columns + j));
                c = channel(c >> 16) << 16 | channel(c >> 8 & 0xFF) << 8 | channel(c & 0xFF);
            }
    });
    return colours;
}

} // namespace test
