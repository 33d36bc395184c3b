/// \file
/// The mappings onto quads, pixel by pixel.
#ifndef Q_MUR_TESTS_WARP_NAIVE_QUAD_MAPPING_H
#define Q_MUR_TESTS_WARP_NAIVE_QUAD_MAPPING_H

#include "turning.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace naive::quadMapping {

using test::low32;
using test::product32;
using test::Real;
using test::Surface;
using test::truncated;

inline int toInt(q_long value) {
    return static_cast<int>(value);
}

struct Corner {
    int x;
    int y;
};

using Quad = std::array<Corner, 4>;

/// The corners of an upright rectangle, from the top left clockwise.
inline Quad upright(int left, int top, int right, int bottom) {
    return {{{left, top}, {right, top}, {right, bottom}, {left, bottom}}};
}

/// The same figure with another corner first.
inline Quad cycled(const Quad &quad, std::size_t first) {
    return {{quad[first & 3], quad[(first + 1) & 3], quad[(first + 2) & 3], quad[(first + 3) & 3]}};
}

inline void drawBilinear(Surface &dst, Surface &src, int width, int height, const Quad &p) {
    iBilinearMapping(dst.pixels(), src.pixels(), dst.pitch(), width, height, p[0].x, p[1].x, p[2].x, p[3].x, p[0].y,
                     p[1].y, p[2].y, p[3].y);
}

inline void drawPseudo(Surface &dst, Surface &src, Surface &scratch, int width, int height, q_ulong fill,
                       const Quad &p) {
    iPsudoBilinearMapping(dst.pixels(), src.pixels(), scratch.pixels(), dst.pitch(), width, height, fill, p[0].x,
                          p[1].x, p[2].x, p[3].x, p[0].y, p[1].y, p[2].y, p[3].y);
}

inline void drawAffine(Surface &dst, Surface &src, tagRECT srcRect, tagRECT clip, const Quad &p, int add = 0,
                       int scale = 256) {
    iAffineMapping(dst.pixels(), src.pixels(), dst.pitch(), &srcRect, &clip, p[0].x, p[1].x, p[2].x, p[3].x, p[0].y,
                   p[1].y, p[2].y, p[3].y, add, scale);
}

/// Finds the place in the patch of every pixel by itself.
inline void naiveBilinear(Surface &dst, const Surface &src, int width, int height, const Quad &p) {
    qmur::atFullWidth([&] {
        const auto fourCorners = [](std::int64_t p0, std::int64_t p1, std::int64_t p2, std::int64_t p3) {
            return low32(p0 - p1 - p3 + p2);
        };
        const auto difference = [](std::int64_t a, std::int64_t b) { return low32(a - b); };
        constexpr Real offset = 0.0001;
        const Real A = fourCorners(p[0].x, p[1].x, p[2].x, p[3].x) + offset;
        const Real B = difference(p[1].x, p[0].x) + offset;
        const Real G = difference(p[3].x, p[0].x) + offset;
        const Real D = fourCorners(p[0].y, p[1].y, p[2].y, p[3].y) + offset;
        const Real E = difference(p[1].y, p[0].y) + offset;
        const Real F = difference(p[3].y, p[0].y) + offset;
        const Real X0 = p[0].x + offset;
        const Real Y0 = p[0].y + offset;
        const Real q = E * A - D * B;
        const Real K1 = E * G + Y0 * A - D * X0 - F * B;
        const Real K2 = Y0 * G - F * X0;
        for (int r = 0; r < height; ++r)
            for (int c = 0; c < width; ++c) {
                const Real b = c * D + K1 - r * A;
                const Real e = c * F + K2 - r * G;
                Real root = 0;
                Real s = -b / (2 * q);
                if (e * (4 * q) <= b * b) {
                    root = std::sqrt(b * b - e * (4 * q)) / (2 * q);
                    s = -b / (2 * q) + root;
                }
                if ((s <= 0 || s >= 1) && e * (4 * q) < b * b)
                    s = -b / (2 * q) - root;
                Real denominator = s * A + G;
                if (denominator == 0)
                    denominator = 1e-09;
                const int x = truncated(width * s + 0.5L);
                const int y = truncated(height * (c - s * B - X0) / denominator + 0.5L);
                dst.at(c, r) = x >= 0 && x < width && y >= 0 && y < height ? src.at(x, y) : 0;
            }
    });
}

inline int divided(std::int64_t value, std::int64_t divisor) {
    return low32(value / divisor);
}

inline int shifted15(int value) {
    return low32(static_cast<std::int64_t>(value) << 15);
}

inline int orientationOf(const Quad &p) {
    if (product32(p[0].x - p[1].x, p[3].x - p[2].x) > product32(p[1].x - p[2].x, p[0].x - p[3].x))
        return p[0].x < p[2].x ? 0 : 2;
    return p[1].x < p[3].x ? 1 : 3;
}

/// Both passes, pixel by pixel.
inline void naivePseudo(Surface &dst, const Surface &src, Surface &scratch, int width, int height, q_ulong fill,
                        const Quad &quad) {
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            dst.at(x, y) = fill;
    int minX = 1024;
    int maxX = -1024;
    for (const Corner &corner : quad) {
        minX = std::min(minX, corner.x);
        maxX = std::max(maxX, corner.x);
    }
    const int o = orientationOf(quad);
    const auto [p0, p1, p2, p3] = cycled(quad, static_cast<std::size_t>(o));
    const int x0 = p0.x, x1 = p1.x, x2 = p2.x, x3 = p3.x;
    const int y0 = p0.y, y1 = p1.y, y2 = p2.y, y3 = p3.y;

    struct RowSpan {
        int left, right;
    };
    const auto spanOf = [=](int i) {
        return qmur::atFullWidth([=] {
            const auto orTiny = [](int value) {
                return value == 0 ? static_cast<Real>(1e-11) : static_cast<Real>(value);
            };
            const Real a = orTiny(x1 - x0), b = orTiny(x3 - x2), c = orTiny(x3 - x0), d = orTiny(x2 - x1);
            const Real e = orTiny(y1 - y0), f = orTiny(y3 - y2), g = orTiny(y3 - y0), h = orTiny(y1 - y2);
            const Real H = height;
            const Real S = x0 * e / a;
            const Real P = (g / c - e / a) * H;
            const Real Q = (y3 - x3 * g / c - y0 + S) * H;
            const Real T = f / b - e / a;
            const Real U = y3 - x3 * f / b - y0 + S;
            const Real V = (-h / d - e / a) * H;
            const Real W = (x1 * h / d + y1 - y0 + S) * H;
            return RowSpan{truncated((Q - i * U) / (i * T - P)), truncated((W - i * U) / (i * T - V))};
        });
    };
    for (int i = 0; i < height; ++i) {
        const auto [left, right] = spanOf(i);
        if (right <= left)
            continue;
        const int extent = o == 0 || o == 2 ? width : height;
        const int step = divided(shifted15(extent), low32(static_cast<std::int64_t>(left) - right));
        for (int x = std::max(left, 0); x < std::min(right, width); ++x) {
            const int p = product32(static_cast<std::int64_t>(left) - x, step) >> 15;
            switch (o) {
            case 0:
                scratch.at(x, i) = src.at(p, i);
                break;
            case 1:
                scratch.at(x, i) = src.at(width - 1 - i * width / height, p);
                break;
            case 2:
                scratch.at(x, i) = src.at(width - 1 - p, height - 1 - i);
                break;
            default:
                scratch.at(x, i) = src.at(i * width / height, height - 1 - p);
            }
        }
    }
    if (maxX == minX)
        return;
    for (int x = std::max(minX, 0); x < std::min(width, maxX); ++x) {
        const int top = divided(product32(x - x0, y1 - y0), x1 == x0 ? 1 : x1 - x0) + y0;
        const int bottom = divided(product32(x - x3, y2 - y3), x2 == x3 ? 1 : x2 - x3) + y3;
        if (top >= bottom)
            continue;
        const int step = divided(shifted15(height), bottom - top);
        for (int y = std::max(top, 0); y < std::min(height, bottom); ++y)
            dst.at(x, y) = scratch.at(x, product32(y - top, step) >> 15);
    }
}

inline q_ulong brightened(q_ulong p, int add, int scale) {
    const std::uint32_t pixel = static_cast<std::uint32_t>(p);
    const std::uint32_t factor = static_cast<std::uint32_t>(scale);
    const std::uint32_t plus = static_cast<std::uint32_t>(add);
    const std::uint32_t red = (((pixel >> 16) * factor) >> 8) + plus;
    const std::uint32_t green = (((pixel & 0xFF00) * factor) >> 16) + plus;
    const std::uint32_t blue = (((pixel & 0xFF) * factor) >> 8) + plus;
    return std::min(red, 255U) << 16 | std::min(green, 255U) << 8 | std::min(blue, 255U);
}

/// Asks for every pixel whether one of the two shapes shows something there.
inline void naiveAffine(Surface &dst, const Surface &src, const tagRECT &srcRect, const tagRECT &clip, const Quad &p,
                        int add, int scale) {
    const int left = toInt(srcRect.left);
    const int top = toInt(srcRect.top);
    const int right = toInt(srcRect.right);
    const int bottom = toInt(srcRect.bottom);
    const auto [x0, y0] = p[0];
    const auto [x1, y1] = p[1];
    const auto [x2, y2] = p[2];
    const auto [x3, y3] = p[3];
    const bool horizontal = y0 == y1 && y2 == y3;
    int first = 0, last = 0, start = 0, slope = 0, otherStart = 0, otherSlope = 0, source = 0, sourceEnd = 0;
    if (horizontal) {
        if (y0 < y3) {
            first = y0, last = y3, start = x0, slope = x3 - x0, otherStart = x1, otherSlope = x2 - x1;
            source = top, sourceEnd = bottom;
        } else {
            first = y3, last = y0, start = x3, slope = x0 - x3, otherStart = x2, otherSlope = x1 - x2;
            source = bottom - 1, sourceEnd = top;
        }
    } else if (x0 == x3 && x1 == x2) {
        if (x0 < x1) {
            first = x0, last = x1, start = y0, slope = y1 - y0, otherStart = y3, otherSlope = y2 - y3;
            source = left, sourceEnd = right;
        } else if (y3 < y0) {
            first = x1, last = x0, start = y1, slope = y0 - y1, otherStart = y2, otherSlope = y3 - y2;
            source = right - 1, sourceEnd = left;
        } else {
            return;
        }
    } else {
        return;
    }
    const int n = last - first;
    for (int y = 0; y < dst.height(); ++y)
        for (int x = 0; x < dst.width(); ++x) {
            if (y < clip.top || y >= clip.bottom || x < clip.left || x >= clip.right)
                continue;
            const int line = horizontal ? y : x;
            const int along = horizontal ? x : y;
            if (line < first || line >= last)
                continue;
            const int t = line - first;
            const int from = t * slope / n + start;
            const int to = t * otherSlope / n + otherStart;
            if (along < from || along >= to)
                continue;
            const int extent = horizontal ? right - left : bottom - top;
            const int step = low32(static_cast<std::int64_t>(extent) << 18) / (to == from ? 1 : to - from);
            const int sourceLine = (sourceEnd - source) * t / n + source;
            const int sourceAlong = product32(along - from, step) >> 18;
            dst.at(x, y) = brightened(horizontal ? src.at(left + sourceAlong, top + sourceLine)
                                                 : src.at(left + sourceLine, top + sourceAlong),
                                      add, scale);
        }
}

} // namespace naive::quadMapping

#endif
