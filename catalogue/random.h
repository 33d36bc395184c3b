/// \file
/// Seeded random numbers: the same on every build. The seed of a test case is its number. What makes up calls of bytes
/// that it is handed draws its numbers from these.
#ifndef Q_MUR_CATALOGUE_RANDOM_H
#define Q_MUR_CATALOGUE_RANDOM_H

#include <q_Mur.h>

#include <cmath>
#include <cstdint>
#include <span>

namespace catalogue {

class Random {
public:
    explicit Random(std::uint64_t seed) : state(seed * 0x9E3779B97F4A7C15u + 0x1234567) {}

    /// Numbers out of bytes, as few for each as it takes, and behind their end those of seed 0.
    explicit Random(std::span<const unsigned char> bytes) : Random(0) { fed = bytes; }

    /// What many numbers of no weight are to be drawn from, pixels for example: itself, or where bytes are handed to it
    /// other random numbers, so that it keeps them for what matters.
    template <class Draw>
    void inBulk(Draw draw) {
        if (fed.empty()) {
            draw(*this);
        } else {
            Random other(static_cast<std::uint64_t>(between(0, 255)));
            draw(other);
        }
    }

    /// 32 random bits (SplitMix64).
    std::uint32_t word() {
        if (!fed.empty())
            return fedWord(4);
        state += 0x9E3779B97F4A7C15u;
        std::uint64_t z = state;
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
        return static_cast<std::uint32_t>((z ^ (z >> 31)) >> 16);
    }

    /// A number from `low` to `high`, both included.
    int between(int low, int high) {
        const std::uint64_t span = static_cast<std::uint64_t>(static_cast<std::int64_t>(high) - low + 1);
        const std::uint64_t drawn = fed.empty() ? word()
                                                : fedWord(span == 1         ? 0
                                                          : span <= 0x100   ? 1
                                                          : span <= 0x10000 ? 2
                                                                            : 4);
        return static_cast<int>(low + static_cast<std::int64_t>(drawn * span >> 32));
    }

    /// True once in `n` times.
    bool oneIn(int n) { return between(1, n) == 1; }

    /// A number from `low` to `high` in steps of 1/64, exact in a float.
    float realBetween(float low, float high) {
        return static_cast<float>(between(static_cast<int>(low * 64), static_cast<int>(high * 64))) / 64;
    }

    /// A float of up to 24 random bits and a size from about `2^-reach` to `2^reach`; at times 0.
    float real(int reach = 10) {
        if (oneIn(16))
            return 0;
        const int mantissa = between(-0xFFFFFF, 0xFFFFFF);
        return std::ldexp(static_cast<float>(mantissa), between(-reach, reach) - 24);
    }

    /// A mix of plain colours, zeros, full white, black with a top byte, and pixels with non-zero top bytes.
    q_ulong pixel() {
        switch (between(0, 9)) {
        case 0:
            return 0;
        case 1:
            return 0xFFFFFF;
        case 2:
            return 0xFFFFFFFF;
        case 3:
            return static_cast<q_ulong>(word()) << 24;
        case 4:
        case 5:
            return word();
        default:
            return word() & 0xFFFFFF;
        }
    }

    /// A rectangle that lies inside `width` by `height`, at least one pixel large.
    tagRECT rectInside(int width, int height) {
        const int left = between(0, width - 1);
        const int top = between(0, height - 1);
        const int right = between(left + 1, width);
        const int bottom = between(top + 1, height);
        return {left, top, right, bottom};
    }

    /// As rectInside(), but once in ten times without pixels: of zero or negative width or height.
    tagRECT rectInsideOrEmpty(int width, int height) {
        tagRECT rect = rectInside(width, height);
        if (oneIn(10)) {
            if (oneIn(2))
                rect.right = between(static_cast<int>(rect.left) - 3, static_cast<int>(rect.left));
            else
                rect.bottom = between(static_cast<int>(rect.top) - 3, static_cast<int>(rect.top));
        }
        return rect;
    }

private:
    /// The next bytes as the upper ones of a word.
    std::uint32_t fedWord(std::size_t bytes) {
        std::uint32_t drawn = 0;
        for (unsigned shift = 32; bytes > 0 && !fed.empty(); --bytes, fed = fed.subspan(1))
            drawn |= static_cast<std::uint32_t>(fed.front()) << (shift -= 8);
        return drawn;
    }

    std::uint64_t state;
    std::span<const unsigned char> fed;
};

constexpr double quarterTurn = 1.5707963267948966;
constexpr double fullTurn = 4 * quarterTurn;

/// An angle in radians: at or beside a multiple of a quarter turn or another limit, or anywhere.
inline double anyTurn(Random &random) {
    constexpr double beside[] = {0, 0, 0x1p-40, -0x1p-40, 0x1p-20, -0x1p-20, 0x1p-8, -0x1p-8};
    constexpr double limits[] = {1.570796, 4.712388, 6.283184, 0};
    switch (random.between(0, 3)) {
    case 0:
        return random.between(-6, 6) * quarterTurn + beside[random.between(0, 7)];
    case 1:
        return limits[random.between(0, 3)] + beside[random.between(0, 7)];
    case 2:
        return random.between(-1000000, 1000000) / 16384.0;
    default:
        return random.between(0, 6283184) / 1000000.0;
    }
}

} // namespace catalogue

#endif
