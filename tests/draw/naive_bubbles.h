/// \file
/// Bubbles and their resources, pixel by pixel, from their definition.
#ifndef Q_MUR_TESTS_DRAW_NAIVE_BUBBLES_H
#define Q_MUR_TESTS_DRAW_NAIVE_BUBBLES_H

#include "math3d/full_width.h"
#include "support/surface.h"

#include <algorithm>
#include <cmath>

namespace naive::bubbles {

using test::Real;
using test::Surface;

struct Vector {
    float x;
    float y;
    float z;
};

/// The normal (p1 - p2) x (p1 - p3), rounded to float where a coordinate is stored.
inline Vector naiveNormal(const Vector &p1, const Vector &p2, const Vector &p3) {
    const Vector a = {p1.x - p2.x, p1.y - p2.y, p1.z - p2.z};
    const Vector b = {p1.x - p3.x, p1.y - p3.y, p1.z - p3.z};
    const auto crossed = [](float p, float q, float r, float s) {
        return static_cast<float>(Real{p} * q - Real{r} * s);
    };
    const Vector n = {crossed(a.y, b.z, a.z, b.y), crossed(a.z, b.x, a.x, b.z), crossed(a.x, b.y, a.y, b.x)};
    const Real m = std::sqrt(Real{n.z} * n.z + Real{n.y} * n.y + Real{n.x} * n.x);
    const Real k = m == 0 ? 32768 : 1 / m;
    return {static_cast<float>(n.x * k), static_cast<float>(n.y * k), static_cast<float>(n.z * k)};
}

inline q_ulong naiveSphereWord(int i, int j, int size, int secondHighlight) {
    const int radius = size >> 1;
    const int r2 = radius * radius;
    const int dx = i - radius;
    const int dy = j - radius;
    const auto point = [r2](int a, int b) {
        const int squared = a * a + b * b;
        const Real height = squared < r2 ? std::sqrt(static_cast<Real>(r2 - squared)) : 0;
        return Vector{static_cast<float>(a), static_cast<float>(b), static_cast<float>(height)};
    };
    Vector n = naiveNormal(point(dx, dy), point(dx - 1, dy), point(dx, dy - 1));
    const Real cosine = -Real{n.x} - n.y + n.z;
    const int diffuse = 80 + (cosine >= 0 ? static_cast<int>(80 * cosine) : 0);
    const auto specularOf = [&n](Real peak) {
        const Real root = std::sqrt(Real{6});
        Real s = n.x * (-1 / root) + n.y * (-1 / root) + n.z * (2 / root);
        if (!(s > 0))
            return 0;
        for (int k = 0; k < 7; ++k)
            s *= s;
        return static_cast<int>(peak * s);
    };
    int specular = specularOf(200);
    if (secondHighlight != 0 && i > radius && j > radius) {
        n.x = -n.x;
        n.y = -n.y;
        specular = specularOf(50);
    }
    const int tint = ((dx * dx + dy * dy) << 7) / r2;
    return static_cast<q_ulong>(diffuse | tint << 8 | specular << 16);
}

inline q_ulong naiveSpotsWord(int i, int j, int size, int secondHighlight) {
    const int radius = size >> 1;
    const int nearer = radius - radius / 3;
    const int farther = radius + radius / 3;
    const int rim0 = radius - 2 * radius / 3;
    const int rim1 = radius + 2 * radius / 3;
    const auto squared = [](int a, int b) { return a * a + b * b; };
    // The angles are exact in a double: a float times a small whole number.
    const double a = static_cast<double>(0.00306796096265316F);
    const double b = static_cast<double>(0.0001917475601658225F);
    const int e1 = squared(i - farther, j - nearer);
    const int e2 = squared(i - nearer, j - farther);
    const int e3 = squared(i - rim1, j - rim0);
    int specular = 0;
    if (e1 < 512)
        specular = static_cast<int>(200 * std::pow(std::cos(e1 * a), 16));
    if (e2 < 512 && secondHighlight != 0)
        specular = static_cast<int>(64 * std::pow(std::cos(e2 * a), 16));
    const int diffuse = 55 + (e3 < 8192 ? std::max(0, static_cast<int>(200 * std::cos(e3 * b))) : 0);
    const int tint = (squared(i - radius, j - radius) << 7) / (radius * radius);
    return static_cast<q_ulong>(diffuse | tint << 8 | specular << 16);
}

struct NaiveBubble {
    int cx;
    int cy;
    int size;
    const q_ulong *resource;
    int resourcePitch;
    int resourceSize;
    q_ulong color;
    int width;
    int height;
};

inline q_ulong naiveChannels(const auto &channel) {
    q_ulong result = 0;
    for (int shift = 0; shift < 24; shift += 8)
        result |= static_cast<q_ulong>(channel(shift)) << shift;
    return result;
}

inline int byteAt(q_ulong word, int shift) {
    return static_cast<int>(word >> shift & 0xFF);
}

/// Returns how many words of the scratch it takes.
inline int naiveGlass(Surface &dst, const NaiveBubble &b, int fraction, bool soft) {
    if (b.size == 0)
        return 0;
    const int step = (b.resourceSize << fraction) / b.size;
    const int radius = b.size >> 1;
    const int left = b.cx - radius;
    const int top = b.cy - radius;
    const int unit = 65536 / (b.size * b.size);
    const Surface before = dst;
    int words = 0;
    for (int y = 0; y < b.height; ++y)
        for (int x = 0; x < b.width; ++x) {
            if (x < left || x >= left + b.size || y < top || y >= top + b.size)
                continue;
            const int dx = x - left - radius;
            const int dy = y - top - radius;
            const int d2 = dx * dx + dy * dy;
            if (d2 >= radius * radius)
                continue;
            ++words;
            const q_ulong texel =
                b.resource[((y - top) * step >> fraction) * b.resourcePitch + ((x - left) * step >> fraction)];
            const int k = 48 - (-29 * (d2 * unit) >> 12);
            const int fromX = b.cx + (dx * k >> 7);
            const int fromY = b.cy + (dy * k >> 7);
            const bool visible = fromX >= 0 && fromX < b.width && fromY >= 0 && fromY < b.height;
            const q_ulong background = visible ? before.at(fromX, fromY) : 0;
            const int diffuse = byteAt(texel, 0);
            const int tint = byteAt(texel, 8);
            const int specular = byteAt(texel, 16);
            q_ulong word = naiveChannels([&](int shift) {
                const int tinted = std::min(255, byteAt(b.color, shift) * diffuse >> 7);
                return std::min(255, ((byteAt(background, shift) * (256 - tint) + tinted * tint) >> 8) + specular);
            });
            if (soft) {
                const int e = (radius << 8) - (static_cast<int>(std::sqrt(static_cast<double>(d2)) * 1024) >> 2);
                if (e < 256)
                    word = naiveChannels([&](int shift) {
                        return (byteAt(before.at(x, y), shift) * (256 - e) + byteAt(word, shift) * e) >> 8;
                    });
            }
            dst.at(x, y) = word;
        }
    return words;
}

inline void naiveBall(Surface &dst, const NaiveBubble &b) {
    if (b.size == 0)
        return;
    const int step = (b.resourceSize << 20) / b.size;
    const int radius = b.size >> 1;
    const int left = b.cx - radius;
    const int top = b.cy - radius;
    for (int y = std::max(top, 0); y < std::min(top + b.size, b.height); ++y)
        for (int x = std::max(left, 0); x < std::min(left + b.size, b.width); ++x) {
            const int dx = x - left - radius;
            const int dy = y - top - radius;
            if (dx * dx + dy * dy > radius * radius)
                continue;
            const q_ulong texel = b.resource[((y - top) * step >> 20) * b.resourcePitch + ((x - left) * step >> 20)];
            dst.at(x, y) = naiveChannels([&](int shift) {
                return std::min(255, (byteAt(texel, 0) * byteAt(b.color, shift) >> 7) + byteAt(texel, 16));
            });
        }
}

} // namespace naive::bubbles

#endif
