/// \file
/// Ring searches and light maps once more, word by word and stage by stage.
#ifndef Q_MUR_TESTS_PLAIN_LIGHT_MAP_H
#define Q_MUR_TESTS_PLAIN_LIGHT_MAP_H

#include "vectors.h"

#include <vector>

namespace plain {

// Ring searches

constexpr Number noDistance = 1000000;

/// The smallest squared distance below noDistance to a word of 0 on one square ring around `index`.
inline Number nearestBlackOnRing(const q_ulong *block, Number blockWords, Number index, Number pitch, Number ring) {
    Number best = noDistance;
    if (ring >= 1000) // whose every square is too large
        return best;
    for (Number dy = -ring; dy <= ring; ++dy)
        for (Number dx = -ring; dx <= ring; dx += dy == -ring || dy == ring ? 1 : 2 * ring) {
            const Number neighbour = index + dy * pitch + dx;
            if (neighbour >= 0 && neighbour < blockWords && block[neighbour] == 0)
                best = std::min(best, dx * dx + dy * dy);
        }
    return best;
}

inline int FindNearBlackDistanceSquare(q_ulong *block, int blockWords, int index, int pitch, int ring,
                                       int *distanceSquare, int limit) {
    const Number best = nearestBlackOnRing(block, blockWords, index, pitch, ring);
    *distanceSquare = int32(std::min<Number>(best, limit));
    return best == noDistance && limit >= noDistance ? 1 : 0;
}

inline int FindNearBlackDistanceSquare(q_ulong *block, int blockWords, int index, int pitch, int ring,
                                       int *distanceSquare) {
    *distanceSquare = int32(Number{ring} * ring);
    return nearestBlackOnRing(block, blockWords, index, pitch, ring) == noDistance ? 1 : 0;
}

inline int FindNearSrcDistanceSquare(q_ulong *surface, int width, int height, int x, int y, int ring,
                                     int *distanceSquare) {
    Number best = noDistance;
    for (Number row = 0; row < height; ++row)
        for (Number column = 0; column < width; ++column) {
            const Number dx = std::abs(column - x);
            const Number dy = std::abs(row - y);
            if (std::max(dx, dy) == ring && surface[row * width + column] % 16777216 != 0)
                best = std::min(best, dx * dx + dy * dy);
        }
    *distanceSquare = int32(best);
    return best == noDistance ? 1 : 0;
}

// Light maps

enum class Relief { blockWithLimit, block, source };

class LightMap {
public:
    LightMap(Relief relief, q_ulong *surface, const tagRECT &rect, int surfacePitch, int scaleOfHeights, int bevelSize,
             int limitOrProfileNumber)
        : form(relief), block(surface + rect.top * Number{surfacePitch} + rect.left), width(widthOf(rect)),
          height(plain::heightOf(rect)), pitch(surfacePitch), heightScale(scaleOfHeights), bevel(bevelSize),
          limitOrProfile(limitOrProfileNumber) {}

    void draw() {
        const FullWidth precision;
        if (width < 1 || height < 1 || width > pitch || !raise())
            return;
        smooth();
        light();
    }

private:
    Number blockWords() const { return height * pitch; }
    float &heightAt(Number index) { return heights.at(static_cast<std::size_t>(pitch + 3 + index)); }

    template <class Treat>
    void forEachPixel(Treat treat) const {
        for (Number y = 0; y < height; ++y)
            for (Number x = 0; x < width; ++x)
                if (block[y * pitch + x] != 0)
                    treat(x, y, y * pitch + x);
    }

    /// What the searches report, ring after ring; -1 where all of the block has been searched in vain.
    Number distanceSquareOf(Number index) const {
        const bool isLimited = form == Relief::blockWithLimit;
        for (Number ring = form == Relief::source ? 0 : 1; ring <= pitch + height; ++ring) {
            const Number best = nearestBlackOnRing(block, blockWords(), index, pitch, ring);
            if (isLimited && (best < noDistance || limitOrProfile < noDistance))
                return std::min<Number>(best, limitOrProfile);
            if (best < noDistance)
                return ring * ring;
        }
        return -1;
    }

    Real profileAt(Number d2) const {
        const Number half = bevel >> 1;
        const Real f = rootOf(static_cast<Real>(d2));
        const auto circle = [=] { return rootOf((2 * static_cast<Real>(half) - f) * f); };
        if (form != Relief::source)
            return d2 < half * half ? circle() : static_cast<Real>(half);
        switch (limitOrProfile) {
        case 0:
            return f + f;
        case 1:
            return static_cast<Real>(d2) / 2;
        case 2:
            return f < static_cast<Real>(2 * half) ? circle() : static_cast<Real>(half);
        default:
            return 0;
        }
    }

    /// False if the shape has no black to be seen.
    bool raise() {
        heights.assign(static_cast<std::size_t>((height + 2) * (pitch + 2)), 0);
        bool isBounded = true;
        forEachPixel([&](Number, Number, Number index) {
            const Number d2 = isBounded ? distanceSquareOf(index) : -1;
            // A negative limit is a distance as well; only a search without one ends in vain.
            isBounded = isBounded && (d2 >= 0 || (form == Relief::blockWithLimit && limitOrProfile < noDistance));
            heightAt(index) = isBounded ? static_cast<float>(profileAt(d2)) : 0;
        });
        return isBounded;
    }

    void smooth() {
        const Number reach = form == Relief::source ? bevel / 8 : 2;
        const auto side = static_cast<Real>(2 * reach + 1);
        const Real scale = form == Relief::source ? static_cast<float>(1 / (side * side)) : Real{0.04};
        std::vector<float> smoothed(heights.size(), 0);
        forEachPixel([&](Number, Number, Number index) {
            Real sum = 0;
            for (Number dy = -reach; dy <= reach; ++dy)
                for (Number dx = -reach; dx <= reach; ++dx) {
                    const Number neighbour = index + dy * pitch + dx;
                    if (neighbour >= 0 && neighbour < blockWords())
                        sum += heightAt(neighbour);
                }
            smoothed.at(static_cast<std::size_t>(pitch + 3 + index)) = static_cast<float>(sum * scale);
        });
        heights = smoothed;
    }

    Vector pointAt(Number x, Number y) {
        return {static_cast<float>(x), static_cast<float>(y),
                static_cast<float>(static_cast<Real>(heightScale) * heightAt(y * pitch + x))};
    }

    Vector normalAt(Number x, Number y) {
        if (form == Relief::block) {
            const Vector lowerLeft = pointAt(x - 1, y + 1);
            const Vector upperRight = pointAt(x + 1, y - 1);
            return mean(faceNormal(pointAt(x - 1, y - 1), lowerLeft, upperRight),
                        faceNormal(upperRight, lowerLeft, pointAt(x + 1, y + 1)));
        }
        const Vector centre = pointAt(x, y);
        return mean(faceNormal(pointAt(x, y - 1), pointAt(x - 1, y), centre),
                    faceNormal(pointAt(x, y + 1), pointAt(x + 1, y), centre));
    }

    q_ulong wordOf(const Vector &n) const {
        const bool isSource = form == Relief::source;
        const float l = isSource ? 1 : 0.7F;
        const Real length = rootOf(isSource ? Real{6} : Real{3.869999926090241});
        const auto half = static_cast<float>(l / length);
        const Number diffuse = std::max(truncated(256 * dot(Vector{l, l, -l}, n)), 0);
        Real s = dot(Vector{half, half, static_cast<float>((-Real{l} - 1) / length)}, n);
        Number specular = 0;
        if (s > 0) {
            for (int squaring = 0; squaring < 5; ++squaring)
                s *= s;
            specular = truncated((isSource ? 512 : 256) * s);
        }
        if (!isSource)
            return word(specular * 65536 + diffuse + 100);
        const q_ulong below = word(std::min<Number>(specular, 255) * 256 + std::min<Number>(diffuse + 100, 255));
        return word(truncated(64 * Real{n.x}) * Number{16777216}) | word(truncated(64 * Real{n.y}) * Number{65536}) |
               below;
    }

    void light() {
        // The words are the mask as well, so all of them are known before the first is written.
        std::vector<q_ulong> words;
        forEachPixel([&](Number x, Number y, Number) { words.push_back(wordOf(normalAt(x, y))); });
        auto next = words.begin();
        forEachPixel([&](Number, Number, Number index) { block[index] = *next++; });
    }

    Relief form;
    q_ulong *block;
    Number width;
    Number height;
    Number pitch;
    int heightScale;
    int bevel;
    int limitOrProfile;
    std::vector<float> heights; ///< with a margin of one row and three elements
};

inline void ConvertBlock2LightInfom(q_ulong *surface, tagRECT *rect, int pitch, int heightScale, int bevelSize, int,
                                    int limit) {
    LightMap(Relief::blockWithLimit, surface, *rect, pitch, heightScale, bevelSize, limit).draw();
}

inline void ConvertBlock2LightInfom(q_ulong *surface, tagRECT *rect, int pitch, int heightScale, int bevelSize, int) {
    LightMap(Relief::block, surface, *rect, pitch, heightScale, bevelSize, 0).draw();
}

inline void ConvertSrc2LightInfom(q_ulong *surface, tagRECT *rect, int pitch, int heightScale, int bevelSize,
                                  int profile) {
    LightMap(Relief::source, surface, *rect, pitch, heightScale, bevelSize, profile).draw();
}

} // namespace plain

#endif
