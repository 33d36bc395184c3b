/// \file
/// The rotators about the Z axis, position by position.
#ifndef Q_MUR_TESTS_WARP_NAIVE_Z_ROTATION_H
#define Q_MUR_TESTS_WARP_NAIVE_Z_ROTATION_H

#include "support/surface.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace naive::zRotation {

using test::Surface;

inline std::int64_t cut(std::int64_t value) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(value));
}

inline std::int64_t truncated(long double value) {
    return value > -9.2e18L && value < 9.2e18L ? cut(static_cast<std::int64_t>(value)) : 0;
}

struct Scene {
    tagRECT clip;
    tagRECT srcRect;
    int centreX;
    int centreY;
    float angle;
    float scale;
    float alpha = 1;
};

/// Which of the two kinds of rows the random cases met: rows that draw and whose positions leave 32 bits on the way,
/// and rows that draw and stay within.
struct RowCount {
    int wrapping = 0;
    int plain = 0;
};

/// Calls `pixel(x, y, u, v)` for every pixel of the walk, with positions from the source's centre in 2^-21 of a pixel.
/// `pixel` answers whether it drew. Whole numbers are cut to 32 bits after each operation; u and v wrap.
template <class Pixel>
void naiveWalk(const Scene &scene, RowCount &rows, Pixel pixel) {
    const tagRECT &clip = scene.clip;
    const tagRECT &src = scene.srcRect;
    if (scene.scale == 0 || clip.left >= clip.right || clip.top >= clip.bottom)
        return;
    const long double scale = scene.scale;
    const long double angle = scene.angle;
    const std::int64_t inverseScale = truncated(32768 / scale);
    const std::int64_t width = cut(src.right - src.left);
    const std::int64_t height = cut(src.bottom - src.top);
    const auto squares = static_cast<long double>(cut(width * width + height * height));
    const std::int64_t radius = truncated(std::sqrt(squares) * scale * 0.5L);

    const auto lowBound = [radius](std::int64_t centre, std::int64_t low, std::int64_t high) {
        std::int64_t bound = cut(centre - radius);
        if (bound < low)
            bound = low;
        return bound > high ? high - 1 : bound;
    };
    const auto highBound = [radius](std::int64_t centre, std::int64_t low, std::int64_t high) {
        std::int64_t bound = cut(centre + radius);
        if (bound < low)
            bound = low;
        return bound > high ? high : bound;
    };
    const std::int64_t x0 = lowBound(scene.centreX, clip.left, clip.right);
    const std::int64_t x1 = highBound(scene.centreX, clip.left, clip.right);
    const std::int64_t y0 = lowBound(scene.centreY, clip.top, clip.bottom);
    const std::int64_t y1 = highBound(scene.centreY, clip.top, clip.bottom);

    const std::int64_t sine = truncated(std::sin(angle) * 16384);
    const std::int64_t cosine = truncated(std::cos(angle) * 16384);
    const std::int64_t a = cut(cut(x0 - scene.centreX) * inverseScale);
    const std::int64_t b = cut(cut(x1 - scene.centreX) * inverseScale);
    const long double c = std::cos(angle) * 64;
    const long double s = std::sin(angle) * 64;
    const std::int64_t p = truncated(static_cast<long double>(a) * c);
    const std::int64_t q = truncated(static_cast<long double>(b) * c);
    const std::int64_t r = truncated(static_cast<long double>(a) * s);
    const std::int64_t t = truncated(static_cast<long double>(b) * s);
    const std::int64_t divisor = x1 - x0 < 1 ? 1 : x1 - x0;
    const std::int64_t stepU = cut(q - p) / divisor;
    const std::int64_t stepV = cut(t - r) / divisor;

    for (std::int64_t y = y0; y < y1; ++y) {
        const std::int64_t rowTerm = cut(cut(y * inverseScale) - cut(scene.centreY * inverseScale)) >> 8;
        std::int64_t u = cut(rowTerm * sine + p);
        std::int64_t v = cut(rowTerm * cosine - r);
        bool wrapped = false;
        bool drawn = false;
        for (std::int64_t x = x0; x < x1; ++x) {
            if (pixel(static_cast<int>(x), static_cast<int>(y), u, v))
                drawn = true;
            wrapped = wrapped || (x + 1 < x1 && (cut(u + stepU) != u + stepU || cut(v - stepV) != v - stepV));
            u = cut(u + stepU);
            v = cut(v - stepV);
        }
        rows.wrapping += drawn && wrapped ? 1 : 0;
        rows.plain += drawn && !wrapped ? 1 : 0;
    }
}

using NaiveStore = void (*)(q_ulong &d, q_ulong s, float alpha);

/// Finds the source pixel of a position and stores it, or the filtered colour of four.
inline void naiveRotation(Surface &dst, const Surface &src, const Scene &scene, bool filtered, NaiveStore store,
                          RowCount &rows) {
    const tagRECT &rect = scene.srcRect;
    const std::int64_t centreX = cut(rect.left + rect.right) >> 1;
    const std::int64_t centreY = cut(rect.top + rect.bottom) >> 1;
    naiveWalk(scene, rows, [&](int x, int y, std::int64_t u, std::int64_t v) {
        if (!filtered) {
            const std::int64_t column = u >> 21;
            const std::int64_t row = v >> 21;
            if (column < rect.left - centreX || column >= rect.right - centreX || row < rect.top - centreY ||
                row >= rect.bottom - centreY)
                return false;
            store(dst.at(x, y), src.at(static_cast<int>(centreX + column), static_cast<int>(centreY + row)),
                  scene.alpha);
            return true;
        }
        const std::int64_t column = (u >> 17) + centreX * 16;
        const std::int64_t row = (v >> 17) + centreY * 16;
        if (column < rect.left * 16 || column >= rect.right * 16 - 16 || row < rect.top * 16 ||
            row >= rect.bottom * 16 - 16)
            return false;
        const auto fx = static_cast<q_ulong>(column & 15);
        const auto fy = static_cast<q_ulong>(row & 15);
        q_ulong colour = 0;
        for (int shift = 0; shift < 24; shift += 8) {
            const auto tap = [&](int dx, int dy) {
                return src.at(static_cast<int>(column >> 4) + dx, static_cast<int>(row >> 4) + dy) >> shift & 0xFF;
            };
            const q_ulong sum = tap(0, 0) * (16 - fx) * (16 - fy) + tap(1, 0) * fx * (16 - fy) +
                                tap(0, 1) * (16 - fx) * fy + tap(1, 1) * fx * fy;
            colour |= sum / 256 << shift;
        }
        store(dst.at(x, y), colour, scene.alpha);
        return true;
    });
}

inline void naiveCopy(q_ulong &d, q_ulong s, float) {
    d = s;
}

inline void naiveKeyedCopy(q_ulong &d, q_ulong s, float) {
    if (s != 0)
        d = s;
}

inline void naiveKeyedAdd(q_ulong &d, q_ulong s, float) {
    if (s == 0)
        return;
    q_ulong sum = 0;
    for (int shift = 0; shift < 24; shift += 8)
        sum |= std::min<q_ulong>((d >> shift & 0xFF) + (s >> shift & 0xFF), 255) << shift;
    d = sum;
}

/// Each channel as a byte of its own; blue unmasked, its word shifted without a sign.
inline void naiveBlend(q_ulong &d, q_ulong s, float alpha) {
    const std::int64_t a = truncated(static_cast<long double>(alpha) * 256);
    const auto sum = [&](int shift) {
        return static_cast<std::uint32_t>(static_cast<std::int64_t>(s >> shift & 0xFF) * a +
                                          static_cast<std::int64_t>(d >> shift & 0xFF) * (256 - a));
    };
    d = (sum(16) & 0xFF00) << 8 | (sum(8) & 0xFF00) | sum(0) >> 8;
}

/// One of the six rotators with what it is expected to do.
struct Rotator {
    const char *name;
    void (*draw)(Surface &dst, q_ulong *src, int srcPitch, Scene scene);
    bool filtered;
    NaiveStore store;
};

constexpr Rotator nearest = {"iBltNear32_Z_Roto",
                             [](Surface &dst, q_ulong *src, int srcPitch, Scene scene) {
                                 iBltNear32_Z_Roto(dst.pixels(), dst.pitch(), src, srcPitch, &scene.clip,
                                                   &scene.srcRect, scene.centreX, scene.centreY, scene.angle,
                                                   scene.scale);
                             },
                             false, naiveCopy};

constexpr Rotator keyed = {"iBltNear32_Z_Roto_KeySrc",
                           [](Surface &dst, q_ulong *src, int srcPitch, Scene scene) {
                               iBltNear32_Z_Roto_KeySrc(dst.pixels(), dst.pitch(), src, srcPitch, &scene.clip,
                                                        &scene.srcRect, scene.centreX, scene.centreY, scene.angle,
                                                        scene.scale);
                           },
                           false, naiveKeyedCopy};

constexpr Rotator keyedAdd = {"iBltNear32_Z_Roto_KeySrc_Add",
                              [](Surface &dst, q_ulong *src, int srcPitch, Scene scene) {
                                  iBltNear32_Z_Roto_KeySrc_Add(dst.pixels(), dst.pitch(), src, srcPitch, &scene.clip,
                                                               &scene.srcRect, scene.centreX, scene.centreY,
                                                               scene.angle, scene.scale);
                              },
                              false, naiveKeyedAdd};

constexpr Rotator nearestAlpha = {"iBltNear32_Z_Roto_Alpha",
                                  [](Surface &dst, q_ulong *src, int srcPitch, Scene scene) {
                                      iBltNear32_Z_Roto_Alpha(dst.pixels(), dst.pitch(), src, srcPitch, &scene.clip,
                                                              &scene.srcRect, scene.centreX, scene.centreY, scene.angle,
                                                              scene.scale, scene.alpha);
                                  },
                                  false, naiveBlend};

constexpr Rotator linear = {"iBltLinear32_Z_Roto",
                            [](Surface &dst, q_ulong *src, int srcPitch, Scene scene) {
                                iBltLinear32_Z_Roto(dst.pixels(), dst.pitch(), src, srcPitch, &scene.clip,
                                                    &scene.srcRect, scene.centreX, scene.centreY, scene.angle,
                                                    scene.scale);
                            },
                            true, naiveCopy};

constexpr Rotator linearAlpha = {"iBltLinear32_Z_Roto_Alpha",
                                 [](Surface &dst, q_ulong *src, int srcPitch, Scene scene) {
                                     iBltLinear32_Z_Roto_Alpha(dst.pixels(), dst.pitch(), src, srcPitch, &scene.clip,
                                                               &scene.srcRect, scene.centreX, scene.centreY,
                                                               scene.angle, scene.scale, scene.alpha);
                                 },
                                 true, naiveBlend};

constexpr Rotator rotators[] = {nearest, keyed, keyedAdd, nearestAlpha, linear, linearAlpha};

} // namespace naive::zRotation

#endif
