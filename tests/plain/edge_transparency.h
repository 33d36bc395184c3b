/// \file
/// Pictures cross-faded along an edge once more, pixel by pixel.
#ifndef Q_MUR_TESTS_PLAIN_EDGE_TRANSPARENCY_H
#define Q_MUR_TESTS_PLAIN_EDGE_TRANSPARENCY_H

#include "real.h"
#include "words.h"

namespace plain {

/// Red together with whatever stands above it in the word. Where the weight lies beyond 0 to 4096, blue reaches up.
inline q_ulong mix4096(q_ulong low, q_ulong high, Number t) {
    const auto sum = [t](Number a, Number b) { return unsigned32(a * (4096 - t) + b * t); };
    const Number red = sum(low >> 12 & 0xFFFF0, high >> 12 & 0xFFFF0) & 0xFF0000;
    const Number green = sum(greenOf(low), greenOf(high)) & 0xFF000;
    const Number blue = sum(blueOf(low), blueOf(high)) >> 8;
    return word(red | (green | blue) >> 4);
}

/// The strip along a line.
struct Strip {
    bool isSteep; ///< walked by rows
    Number band;  ///< half of it along a column, or a row where it is steep
};

inline Strip stripOf(const tagPOINT &p1, const tagPOINT &p2, int edgeWidth) {
    const FullWidth precision;
    const Number width = signed32(std::max(p1.x, p2.x) - Number{std::min(p1.x, p2.x)});
    const Number height = signed32(std::max(p1.y, p2.y) - Number{std::min(p1.y, p2.y)});
    const Real theta = arcTangent(static_cast<Real>(height), static_cast<Real>(width));
    const bool isSteep = truncated(theta * static_cast<Real>(57.29577791868204)) > 45;
    return {isSteep, truncated(edgeWidth / 2 / (isSteep ? sine(theta) : cosine(theta)))};
}

inline void Edge_Transparency(q_ulong *out, q_ulong *imageA, q_ulong *imageB, tagPOINT *p1, tagPOINT *p2, int edgeWidth,
                              int pitch, int, int, int swapImages, tagRECT *clip) {
    const Strip strip = stripOf(*p1, *p2, edgeWidth);
    const bool isSteep = strip.isSteep;
    // Along the line and across it.
    const tagPOINT from = isSteep ? tagPOINT{p1->y, p1->x} : *p1;
    const tagPOINT to = isSteep ? tagPOINT{p2->y, p2->x} : *p2;
    const Number extent = signed32(2 * strip.band);
    if (from.x == to.x || extent == 0)
        return;
    const Number slope = signed32((Number{to.y} - from.y) * 32768) / signed32(Number{to.x} - from.x);
    const Number ramp = 16777216 / extent;
    const q_ulong *const low = swapImages ? imageB : imageA;
    const q_ulong *const high = swapImages ? imageA : imageB;
    // Either walk leaves out the last row and includes the last column.
    const auto mixAt = [&](Number along, Number across) {
        const Number start = signed32((signed32((along - from.x) * slope) >> 15) - strip.band + from.y);
        const Number end = signed32(start + extent);
        if (along < std::min(from.x, to.x) || along > std::max(from.x, to.x) - (isSteep ? 1 : 0) || across < start ||
            across > end - (isSteep ? 0 : 1))
            return;
        const Number index = isSteep ? along * pitch + across : across * pitch + along;
        out[index] = mix4096(low[index], high[index], signed32(across * ramp - start * ramp) / 4096);
    };
    const Number lastRow = Number{clip->bottom} - 1;
    if (isSteep)
        for (Number y = clip->top; y < lastRow; ++y)
            for (Number x = clip->left; x < clip->right; ++x)
                mixAt(y, x);
    else
        for (Number x = clip->left; x < clip->right; ++x)
            for (Number y = clip->top; y < lastRow; ++y)
                mixAt(x, y);
}

/// The root of a square, toward zero; 0 of one that has wrapped below 0.
inline Number rootOf(Number square) {
    auto root = static_cast<Number>(std::sqrt(static_cast<double>(std::max<Number>(square, 0))));
    while (root * root > square && root > 0)
        --root;
    while (square >= (root + 1) * (root + 1))
        ++root;
    return root;
}

inline void Edge_Transparency_Circle(q_ulong *out, q_ulong *imageA, q_ulong *imageB, tagPOINT *centre, int radius,
                                     int band, int width, int height, int pitch) {
    const Number bandWidth = signed32(2 * Number{band});
    if (bandWidth == 0)
        return;
    const auto squareOf = [](Number value) { return signed32(value * value); };
    const Number outer = signed32(Number{radius} + band);
    const Number inner = std::max<Number>(signed32(Number{radius} - band), 0);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const Number index = Number{y} * pitch + x;
            const Number square =
                signed32(squareOf(signed32(Number{x} - centre->x)) + squareOf(signed32(Number{y} - centre->y)));
            if (square >= squareOf(outer)) {
                out[index] = imageB[index];
            } else if (square <= squareOf(inner)) {
                out[index] = imageA[index];
            } else {
                const Number t = unsigned32((outer - rootOf(square)) * (134217728 / bandWidth)) >> 15;
                out[index] = mix4096(imageB[index], imageA[index], t);
            }
        }
}

} // namespace plain

#endif
