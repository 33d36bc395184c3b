/// \file
/// The rotators about a centre: outlines traced crossing by crossing, and positions pixel by pixel.
#ifndef Q_MUR_TESTS_WARP_NAIVE_CENTRE_ROTATION_H
#define Q_MUR_TESTS_WARP_NAIVE_CENTRE_ROTATION_H

#include "turning.h"

#include <algorithm>
#include <vector>

namespace naive::centreRotation {

using test::low32;
using test::product32;
using test::Real;
using test::Surface;
using test::truncated;

inline int toInt(q_long value) {
    return static_cast<int>(value);
}

/// The arguments that four of the five functions share.
struct Scene {
    tagRECT clip = {};
    tagRECT srcRect = {};
    int centreX = 0;
    int centreY = 0;
    double angle = 0;
    int width = 0;
    int height = 0;
};

using Rotator = void(q_ulong *, tagRECT *, int, q_ulong *, tagRECT *, int, int, int, double, int, int);

inline void draw(Rotator *rotator, Surface &dst, Surface &src, Scene scene) {
    rotator(dst.pixels(), &scene.clip, dst.pitch(), src.pixels(), &scene.srcRect, src.pitch(), scene.centreX,
            scene.centreY, scene.angle, scene.width, scene.height);
}

struct Point {
    int x;
    int y;
};

inline Point turned(Point p, Point centre, int units) {
    const std::int64_t s = iSin[(units & 0xFFFF) >> 3];
    const std::int64_t c = iCos[(units & 0xFFFF) >> 3];
    const std::int64_t x = low32(static_cast<std::int64_t>(p.x) - centre.x);
    const std::int64_t y = low32(static_cast<std::int64_t>(p.y) - centre.y);
    return {low32(static_cast<std::int64_t>(low32(x * c + y * s) >> 15) + centre.x),
            low32(static_cast<std::int64_t>(low32(y * c - x * s) >> 15) + centre.y)};
}

inline int tableUnits(double angle, double factor) {
    return qmur::atFullWidth([=] { return truncated(static_cast<Real>(angle) * factor); });
}

inline std::vector<Point> cornersOf(const Scene &scene, double factor) {
    const int left = scene.centreX - scene.width / 2;
    const int top = scene.centreY - scene.height / 2;
    const Point centre = {scene.centreX, scene.centreY};
    std::vector<Point> corners = {
        {left, top}, {left + scene.width, top}, {left + scene.width, top + scene.height}, {left, top + scene.height}};
    for (Point &corner : corners)
        corner = turned(corner, centre, tableUnits(scene.angle, factor));
    return corners;
}

inline q_ulong naiveTaps(const Surface &src, int column, int row, q_ulong fx, q_ulong fy) {
    q_ulong result = 0;
    for (int shift = 0; shift < 24; shift += 8) {
        const auto byte = [&](int dx, int dy) { return src.at(column + dx, row + dy) >> shift & 0xFF; };
        const q_ulong sum = byte(0, 0) * (16 - fx) * (16 - fy) + byte(1, 0) * fx * (16 - fy) +
                            byte(0, 1) * (16 - fx) * fy + byte(1, 1) * fx * fy;
        result |= sum / 256 << shift;
    }
    return result;
}

inline q_ulong sixteenths(int position, int fractionBits) {
    return static_cast<q_ulong>(position >> (fractionBits - 4) & 15);
}

/// One crossing of the outline with a row.
struct Crossing {
    int u;
    int v;
    int x;
    int y;
    std::uint32_t key;
};

inline void traceNaively(std::vector<Crossing> &crossings, Point from, Point to, Point sourceFrom, Point sourceTo,
                         bool inSixteenths) {
    const int dx = to.x - from.x;
    const int dy = to.y - from.y;
    const int bias = inSixteenths ? 2048 : 1024;
    const int unit = inSixteenths ? 16 : 1;
    for (int y = std::min(from.y, to.y); y <= std::max(from.y, to.y); ++y) {
        if (dy == 0 || (dy > 0 && y == to.y) || (dy < 0 && y == to.y))
            continue;
        const int t = y - from.y;
        const int quotient = t * dx / dy;
        const int correction = !inSixteenths ? 0 : qmur::atFullWidth([=] {
            return truncated((static_cast<Real>(quotient) - static_cast<Real>(t * dx) / dy) * -16.0L);
        });
        const int x = quotient + from.x;
        crossings.push_back({t * (sourceTo.x - sourceFrom.x) * unit / dy - correction + sourceFrom.x * unit,
                             t * (sourceTo.y - sourceFrom.y) * unit / dy + sourceFrom.y * unit, x, y,
                             static_cast<std::uint32_t>(y + bias) << 16 | static_cast<std::uint32_t>(x + bias)});
    }
}

/// Calls `store(x, y, u, v)` for every place of `dst` that a span covers.
template <class Store>
void fillNaively(std::vector<Crossing> crossings, const Surface &dst, const tagRECT &clip, int shift, Store store) {
    std::stable_sort(crossings.begin(), crossings.end(),
                     [](const Crossing &a, const Crossing &b) { return a.key < b.key; });
    for (std::size_t i = 0; i + 1 < crossings.size();) {
        const Crossing a = crossings[i];
        const Crossing b = crossings[i + 1];
        if (a.y != b.y || a.x == b.x) {
            ++i;
            continue;
        }
        i += 2;
        if (a.y < clip.top || a.y >= clip.bottom)
            continue;
        const int n = b.x - a.x;
        const int stepU = low32(static_cast<std::int64_t>(b.u - a.u) << shift) / n;
        const int stepV = low32(static_cast<std::int64_t>(b.v - a.v) << shift) / n;
        for (int x = 0; x < dst.width(); ++x)
            if (x >= a.x && x <= b.x && x >= clip.left && x < clip.right)
                store(x, a.y, low32((static_cast<std::int64_t>(a.u) << shift) + product32(x - a.x, stepU)),
                      low32((static_cast<std::int64_t>(a.v) << shift) + product32(x - a.x, stepV)));
    }
}

inline void naiveMapping(Surface &dst, const Surface &src, const Scene &scene) {
    if (scene.width == 0 || scene.height == 0)
        return;
    const std::vector<Point> corners = cornersOf(scene, -10430.37806021874);
    const int left = toInt(scene.srcRect.left);
    const int top = toInt(scene.srcRect.top);
    const int right = toInt(scene.srcRect.right) - 1;
    const int bottom = toInt(scene.srcRect.bottom) - 1;
    std::vector<Crossing> crossings;
    traceNaively(crossings, corners[0], corners[1], {left, top}, {right, top}, true);
    traceNaively(crossings, corners[1], corners[2], {right, top}, {right, bottom}, true);
    traceNaively(crossings, corners[2], corners[3], {right, bottom}, {left, bottom}, true);
    traceNaively(crossings, corners[3], corners[0], {left, bottom}, {left, top}, true);
    fillNaively(crossings, dst, scene.clip, 16, [&](int x, int y, int u, int v) {
        dst.at(x, y) = naiveTaps(src, u >> 20, v >> 20, sixteenths(u, 20), sixteenths(v, 20));
    });
}

/// `origin` is the place in `src` of the source's (0, 0).
inline void naiveCircle(Surface &dst, const Surface &src, Point origin, const tagRECT &clip, Point centre, int radius,
                        double angle) {
    const int units = tableUnits(angle, -10430.37806021874);
    std::vector<Crossing> crossings;
    const Point start = {centre.x - radius, centre.y};
    for (int t = 512; t <= 65536; t += 512) {
        const Point from = turned(start, centre, t - 512);
        const Point to = turned(start, centre, t);
        traceNaively(crossings, from, to, turned(from, centre, units), turned(to, centre, units), false);
    }
    fillNaively(crossings, dst, clip, 18,
                [&](int x, int y, int u, int v) { dst.at(x, y) = src.at(origin.x + (u >> 18), origin.y + (v >> 18)); });
}

enum Mapper { nearest, linear, softened };

inline void naiveMapper(Mapper mapper, Surface &dst, Surface &src, const Scene &scene) {
    const int left = toInt(scene.srcRect.left);
    const int top = toInt(scene.srcRect.top);
    const int right = toInt(scene.srcRect.right);
    const int bottom = toInt(scene.srcRect.bottom);
    if (mapper == softened)
        for (int y = top; y < bottom; ++y)
            for (int x = left; x < right; ++x)
                src.at(x, y) |= 0xFF000000;
    if (scene.width == 0 || scene.height == 0)
        return;
    int xs[4];
    int ys[4];
    const std::vector<Point> corners = cornersOf(scene, 10430.37806021874);
    for (std::size_t i = 0; i < 4; ++i) {
        xs[i] = corners[i].x;
        ys[i] = corners[i].y;
    }
    std::sort(xs, xs + 4);
    std::sort(ys, ys + 4);
    const int xLow = std::max(toInt(scene.clip.left), xs[0]);
    const int xHigh = std::min(toInt(scene.clip.right) - 1, xs[3]);
    const int yLow = std::max(toInt(scene.clip.top), ys[0]);
    const int yHigh = std::min(toInt(scene.clip.bottom) - 1, ys[3]);

    const int bits = mapper == nearest ? 16 : 20;
    struct Steps {
        int a, b, e, d;
    };
    const Steps s = qmur::atFullWidth([=] {
        const auto [sine, cosine] = qmur::sineCosine(scene.angle);
        const Real w = low32(static_cast<std::int64_t>(right - left) << bits);
        const Real h = low32(static_cast<std::int64_t>(bottom - top) << bits);
        return Steps{truncated(w * cosine / scene.width), truncated(w * sine / scene.width),
                     truncated(h * sine / scene.height), truncated(h * cosine / scene.height)};
    });
    const std::int64_t clipWidth = scene.clip.right - scene.clip.left;
    const std::int64_t clipHeight = scene.clip.bottom - scene.clip.top;
    const int baseU = low32((clipWidth << (bits - 1)) + static_cast<std::int64_t>(xLow - scene.centreX) * s.a);
    const int baseV = low32((clipHeight << (bits - 1)) - static_cast<std::int64_t>(xLow - scene.centreX) * s.e);

    for (int y = yLow; y < yHigh; ++y)
        for (int x = xLow; x < xHigh; ++x) {
            const std::int64_t taken = x - xLow + 1;
            const int u = low32(baseU + static_cast<std::int64_t>(y - scene.centreY) * s.b + taken * s.a);
            const int v = low32(baseV + static_cast<std::int64_t>(y - scene.centreY) * s.d - taken * s.e);
            const int before = mapper == softened ? 2 : 0;
            const int beyond = mapper == softened ? 1 : mapper == linear ? -1 : 0;
            const auto scaled = [bits](int bound) { return low32(static_cast<std::int64_t>(bound) << bits); };
            if (u < scaled(left - before) || u >= scaled(right + beyond) || v < scaled(top - before) ||
                v >= scaled(bottom + beyond))
                continue;
            const int column = u >> bits;
            const int row = v >> bits;
            q_ulong &d = dst.at(x, y);
            if (mapper == nearest) {
                d = src.at(column, row);
                continue;
            }
            const q_ulong fx = sixteenths(u, 20);
            const q_ulong fy = sixteenths(v, 20);
            const auto top8 = [&](int dx, int dy) { return src.at(column + dx, row + dy) >> 24; };
            const q_ulong coverage = (top8(0, 0) * (16 - fx) * (16 - fy) + top8(1, 0) * fx * (16 - fy) +
                                      top8(0, 1) * (16 - fx) * fy + top8(1, 1) * fx * fy) >>
                                     8;
            if (mapper == linear || coverage == 255) {
                d = naiveTaps(src, column, row, fx, fy);
                continue;
            }
            q_ulong result = 0;
            for (int shift = 0; shift < 24; shift += 8) {
                q_ulong most = 0;
                for (int dy = 0; dy < 2; ++dy)
                    for (int dx = 0; dx < 2; ++dx)
                        most = std::max(most, src.at(column + dx, row + dy) >> shift & 0xFF);
                result |= (most * coverage + (d >> shift & 0xFF) * (255 - coverage)) >> 8 << shift;
            }
            d = result;
        }
}

} // namespace naive::centreRotation

#endif
