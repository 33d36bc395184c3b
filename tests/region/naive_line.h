/// \file
/// The line, computed a second time for the tests of lines and curves, and where a curve's chords end, in integers.
#ifndef Q_MUR_TESTS_REGION_NAIVE_LINE_H
#define Q_MUR_TESTS_REGION_NAIVE_LINE_H

#include <q_Mur.h>

#include <cstdint>
#include <cstdlib>

namespace test {

/// Calls `store(x, y)` for each pixel of the line from (x1, y1) to (x2, y2) that lies inside `clip`.
template <class Store>
void naiveLine(int x1, int y1, int x2, int y2, const tagRECT &clip, Store store) {
    const auto dot = [&](int x, int y) {
        if (x >= clip.left && x < clip.right && y >= clip.top && y < clip.bottom)
            store(x, y);
    };
    const int adx = std::abs(x2 - x1);
    const int ady = std::abs(y2 - y1);
    const int sx = x2 < x1 ? -1 : 1;
    const int sy = y2 < y1 ? -1 : 1;
    int x = x1;
    int y = y1;
    dot(x, y);
    if (adx <= ady) {
        int d = 2 * adx - ady;
        for (int i = 0; i < ady; ++i) {
            if (d >= 0) {
                x += sx;
                d += 2 * (adx - ady);
            } else {
                d += 2 * adx;
            }
            y += sy;
            dot(x, y);
        }
    } else {
        int d = 2 * ady - adx;
        for (int i = 0; i < adx; ++i) {
            if (d >= 0) {
                y += sy;
                d += 2 * (ady - adx);
            } else {
                d += 2 * ady;
            }
            x += sx;
            dot(x, y);
        }
    }
}

/// A signed number of 128 bits, as far as the sum of a curve's weighted points needs it.
class Int128 {
public:
    explicit Int128(std::int64_t value) {
        for (int i = 0; i < limbCount; ++i)
            limbs[i] = static_cast<std::uint32_t>(i == 0 ? value : i == 1 ? value >> 32 : value >> 63);
    }

    friend Int128 operator+(const Int128 &a, const Int128 &b) {
        Int128 sum(0);
        std::uint64_t carry = 0;
        for (int i = 0; i < limbCount; ++i) {
            carry += static_cast<std::uint64_t>(a.limbs[i]) + b.limbs[i];
            sum.limbs[i] = static_cast<std::uint32_t>(carry);
            carry >>= 32;
        }
        return sum;
    }

    friend Int128 operator*(const Int128 &a, const Int128 &b) {
        Int128 product(0);
        for (int i = 0; i < limbCount; ++i) {
            std::uint64_t carry = 0;
            for (int j = 0; i + j < limbCount; ++j) {
                carry += static_cast<std::uint64_t>(a.limbs[i]) * b.limbs[j] + product.limbs[i + j];
                product.limbs[i + j] = static_cast<std::uint32_t>(carry);
                carry >>= 32;
            }
        }
        return product;
    }

    bool negative() const { return limbs[limbCount - 1] >> 31 != 0; }

    /// Divided by 2^81, truncated toward zero.
    std::int64_t over2To81() const {
        if (negative())
            return -(*this * Int128(-1)).over2To81();
        return static_cast<std::int64_t>(limbs[2] >> 17 | static_cast<std::uint64_t>(limbs[3]) << 15);
    }

private:
    static constexpr int limbCount = 4;
    std::uint32_t limbs[limbCount];
};

/// One coordinate of the end of chord i: the sum of the four points times s^3, 3 s^2 t, 3 s t^2 and t^3, exact, with
/// t = i * (1/15 as a float) and s = 1 - t, all times 2^81.
inline int naiveChordEnd(int i, int p0, int p1, int p2, int p3) {
    const auto unit = static_cast<std::int64_t>(0.06666667F * 134217728.0F); // exact: the float has 27 binary places
    const Int128 t(i * unit);
    const Int128 s(134217728 - i * unit);
    const Int128 three(3);
    const auto point = [](int p) { return Int128(static_cast<std::int64_t>(static_cast<float>(p))); };
    const Int128 sum =
        point(p0) * s * s * s + point(p1) * three * s * s * t + point(p2) * three * s * t * t + point(p3) * t * t * t;
    return static_cast<int>(sum.over2To81());
}

/// Calls `store(x, y)` for each pixel of the curve's 15 chords that lies inside `clip`.
template <class Store>
void naiveCurve(const int (&xs)[4], const int (&ys)[4], const tagRECT &clip, Store store) {
    int x = xs[0];
    int y = ys[0];
    for (int i = 1; i <= 15; ++i) {
        int nextX = naiveChordEnd(i, xs[0], xs[1], xs[2], xs[3]);
        int nextY = naiveChordEnd(i, ys[0], ys[1], ys[2], ys[3]);
        if (nextX < clip.left)
            nextX = static_cast<int>(clip.left);
        if (nextX > clip.right - 1)
            nextX = static_cast<int>(clip.right - 1);
        if (nextY < clip.top)
            nextY = static_cast<int>(clip.top);
        if (nextY > clip.bottom - 1)
            nextY = static_cast<int>(clip.bottom - 1);
        naiveLine(x, y, nextX, nextY, clip, store);
        x = nextX;
        y = nextY;
    }
}

} // namespace test

#endif
