/// \file
/// The blurs once more, each mean over its own window.
#ifndef Q_MUR_TESTS_PLAIN_BLURS_H
#define Q_MUR_TESTS_PLAIN_BLURS_H

#include "real.h"
#include "sampling.h"

#include <vector>

namespace plain {

/// A run of pixels in a buffer, a row or a column.
struct Run {
    q_ulong *first;
    Number step;

    q_ulong &operator[](Number i) const { return first[i * step]; }
};

inline Run rowOf(q_ulong *pixels, Number pitch, Number y) {
    return {pixels + y * pitch, 1};
}
inline Run columnOf(q_ulong *pixels, Number pitch, Number x) {
    return {pixels + x, pitch};
}

// Neighbours

/// Calls `filtered(x, y, before)` for the interior of a rectangle; `before` has the pixels as they were.
template <class Filtered>
void replaceInterior(Pixels surface, const tagRECT &rect, Filtered filtered) {
    const Number width = widthOf(rect);
    const Number height = heightOf(rect);
    if (width < 3 || height < 3)
        return;
    std::vector<q_ulong> copy(static_cast<std::size_t>(width * height));
    for (Number y = 0; y < height; ++y)
        for (Number x = 0; x < width; ++x)
            copy[static_cast<std::size_t>(y * width + x)] = surface.at(rect.left + x, rect.top + y);
    const Pixels before = {copy.data(), width};
    for (Number y = 1; y < height - 1; ++y)
        for (Number x = 1; x < width - 1; ++x)
            surface.at(rect.left + x, rect.top + y) = filtered(x, y, before);
}

/// The mean of the neighbours at (dx, dy) and opposite, which FastBlur_Rect() draws one of four for.
inline void blurAlong(Pixels surface, const tagRECT &rect, int dx, int dy) {
    replaceInterior(surface, rect, [=](Number x, Number y, Pixels before) {
        return halfMix(before.at(x + dx, y + dy), before.at(x - dx, y - dy));
    });
}

inline q_ulong quarters(std::array<q_ulong, 4> taps) {
    const auto quarter = [&](Number (*channelOf)(q_ulong)) {
        Number sum = 0;
        for (const q_ulong tap : taps)
            sum += channelOf(tap) / 4;
        return sum;
    };
    return pixelOf(quarter(redOf), quarter(greenOf), quarter(blueOf));
}

inline void CrossBlur_Rect(_PRIVATE_LUT_DATA *lut, q_ulong *surface, tagRECT *rect, int pitch) {
    const bool corners = lut->phase != 0;
    lut->phase = corners ? 0 : 1;
    replaceInterior({surface, pitch}, *rect, [=](Number x, Number y, Pixels p) {
        return corners ? quarters({p.at(x - 1, y - 1), p.at(x + 1, y - 1), p.at(x - 1, y + 1), p.at(x + 1, y + 1)})
                       : quarters({p.at(x, y - 1), p.at(x - 1, y), p.at(x + 1, y), p.at(x, y + 1)});
    });
}

// Box blurs

inline Number divided(Number sum, Number count) {
    return sum / count;
}
inline Number timesReciprocal(Number sum, Number count) {
    return sum * (65536 / count) / 65536;
}

/// Every pixel becomes the mean over the pixels from `back` before it to `forward` behind it, as far as there are such.
/// `atEdge(sum, count)` makes a mean of a sum where some are missing.
template <class AtEdge>
void blurRun(Run dst, Run src, Number length, Number back, Number forward, q_ulong mask, AtEdge atEdge) {
    std::vector<std::array<Number, 4>> sums = {{}}; // of all pixels before the one of that number
    for (Number i = 0; i < length; ++i) {
        sums.push_back(sums.back());
        for (int channel = 0; channel < 4; ++channel)
            sums.back()[static_cast<std::size_t>(channel)] += src[i] >> 8 * channel & 0xFF;
    }
    for (Number i = 0; i < length; ++i) {
        const Number first = std::max<Number>(i - back, 0);
        const Number end = std::min(i + forward + 1, length);
        const bool isWhole = end - first == back + 1 + forward;
        q_ulong mean = 0;
        for (std::size_t channel = 0; channel < 4; ++channel) {
            const Number sum =
                sums[static_cast<std::size_t>(end)][channel] - sums[static_cast<std::size_t>(first)][channel];
            mean |= word(isWhole ? timesReciprocal(sum, end - first) : atEdge(sum, end - first)) << 8 * channel;
        }
        dst[i] = mean & mask;
    }
}

inline bool isBlurred(const tagRECT &rect, int radius) {
    return widthOf(rect) > 0 && heightOf(rect) > 0 && radius >= 0 && radius <= 128 &&
           2 * radius <= std::min(widthOf(rect), heightOf(rect));
}

inline void Blur_Rect(q_ulong *surface, tagRECT *rect, int pitch, int radius) {
    if (!isBlurred(*rect, radius))
        return;
    const Number width = widthOf(*rect);
    const Number height = heightOf(*rect);
    q_ulong *const first = surface + rect->top * Number{pitch} + rect->left;
    std::vector<q_ulong> between(static_cast<std::size_t>(width * height));
    for (Number y = 0; y < height; ++y)
        blurRun(rowOf(between.data(), width, y), rowOf(first, pitch, y), width, radius, radius, 0xFFFFFF, divided);
    for (Number x = 0; x < width; ++x)
        blurRun(columnOf(first, pitch, x), columnOf(between.data(), width, x), height, radius, radius, 0xFFFFFF,
                divided);
}

inline void Blur_Ring(q_ulong *, tagPOINT, int, int, int, int) {}

inline void Blur_Parallelogram(q_ulong *, int, int, int, int, int, int, tagRECT *, int, int) {}

inline bool isBlurSize(int blurSize) {
    return blurSize >= 0 && blurSize <= 255;
}

/// Calls `blur(dst, src, length)` for each line of a picture, its rows or its columns.
template <bool columns, class Blur>
void forLines(q_ulong *dst, q_ulong *src, int width, int height, int pitch, Blur blur) {
    for (int line = 0; line < (columns ? width : height); ++line)
        if constexpr (columns)
            blur(columnOf(dst, pitch, line), columnOf(src, pitch, line), height);
        else
            blur(rowOf(dst, pitch, line), rowOf(src, pitch, line), width);
}

template <bool columns, q_ulong mask>
void boxBlur(q_ulong *dst, q_ulong *src, int blurSize, int width, int height, int pitch) {
    if (isBlurSize(blurSize))
        forLines<columns>(dst, src, width, height, pitch, [=](Run to, Run from, Number length) {
            blurRun(to, from, length, blurSize / 2, (blurSize + 1) / 2, mask, timesReciprocal);
        });
}
inline constexpr auto Hor_Blur = boxBlur<false, 0xFFFFFF>;
inline constexpr auto Ver_Blur = boxBlur<true, 0xFFFFFF>;
inline constexpr auto Hor_Blur32 = boxBlur<false, 0xFFFFFFFF>;
inline constexpr auto Ver_Blur32 = boxBlur<true, 0xFFFFFFFF>;

// Gaussian blurs

/// Integer weights of a normal density: `side[k]` for the pixels k before and behind the centre.
struct GaussWeights {
    int radius = 1; ///< 128 if the density does not end before that
    int centre = 256;
    int side[128] = {};
};

inline GaussWeights gaussWeightsOf(float sigma) {
    const FullWidth precision;
    GaussWeights weights;
    const auto t = static_cast<float>(Real{sigma} * sigma + Real{sigma} * sigma);
    const auto n = static_cast<float>(rootOf(Real{t} * 3.1415927F));
    const auto density = [=](int k) { return static_cast<float>(powerOfE(-static_cast<Real>(k * k) / t) / n); };
    while (weights.radius < 128 && !(density(weights.radius) <= 0.00009999999747378752F))
        ++weights.radius;
    if (weights.radius == 128)
        return weights;
    Real sum = 1 / Real{n};
    for (int k = 1; k <= weights.radius; ++k)
        sum += 2 * Real{density(k)};
    for (int k = 1; k <= weights.radius; ++k) {
        weights.side[k] = truncated(Real{density(k)} * 256 / sum);
        weights.centre -= 2 * weights.side[k];
    }
    return weights;
}

/// Mirrored about the first pixel and behind the last; what mirroring cannot reach is the nearest of the run.
inline void gaussRun(Run dst, Run src, Number length, const GaussWeights &weights) {
    for (Number x = 0; x < length; ++x) {
        Sums sums;
        sums.add(src[x], weights.centre);
        for (int k = 1; k <= weights.radius; ++k) {
            const Number before = x - k < 0 ? k - x : x - k;
            const Number behind = x + k < length ? x + k : 2 * length - 1 - (x + k);
            sums.add(src[std::min(before, length - 1)], weights.side[k]);
            sums.add(src[std::max<Number>(behind, 0)], weights.side[k]);
        }
        dst[x] = sums.pixel();
    }
}

template <bool columns>
void gaussBlur(q_ulong *dst, q_ulong *src, float sigma, int width, int height, int pitch) {
    const GaussWeights weights = gaussWeightsOf(sigma);
    if (weights.radius < 128 && width > 0 && height > 0) // billions of lines that have no pixel take a while
        forLines<columns>(dst, src, width, height, pitch,
                          [&](Run to, Run from, Number length) { gaussRun(to, from, length, weights); });
}
inline constexpr auto Hor_GaussBlur = gaussBlur<false>;
inline constexpr auto Ver_GaussBlur = gaussBlur<true>;

} // namespace plain

#endif
