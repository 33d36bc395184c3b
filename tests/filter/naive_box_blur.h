/// \file
/// Box blurs, each mean over its own window.
#ifndef Q_MUR_TESTS_FILTER_NAIVE_BOX_BLUR_H
#define Q_MUR_TESTS_FILTER_NAIVE_BOX_BLUR_H

#include "support/surface.h"

#include <cstdint>
#include <vector>

namespace naive::boxBlur {

using test::Surface;

/// A run of pixels in a buffer: a row, or a column.
struct Line {
    const q_ulong *src;
    q_ulong *dst;
    int srcStep;
    int dstStep;
    int length;
};

/// The four bytes of the mean over the pixels from `first` to `last`; `scaled(sum, count)` makes a mean of a sum.
template <class Scaled>
q_ulong meanOf(const Line &line, int first, int last, Scaled scaled) {
    std::uint64_t sums[4] = {};
    for (int x = first; x <= last; ++x)
        for (int channel = 0; channel < 4; ++channel)
            sums[channel] += line.src[x * line.srcStep] >> (8 * channel) & 0xFF;
    q_ulong mean = 0;
    for (int channel = 0; channel < 4; ++channel)
        mean |= static_cast<q_ulong>(scaled(sums[channel], static_cast<std::uint64_t>(last - first + 1)) & 0xFF)
                << (8 * channel);
    return mean;
}

inline std::uint64_t divided(std::uint64_t sum, std::uint64_t count) {
    return sum / count;
}

inline std::uint64_t timesReciprocal(std::uint64_t sum, std::uint64_t count) {
    return sum * (65536 / count) / 65536;
}

/// Every pixel becomes the mean over the pixels from `back` before it to `forward` behind it, as far as there are such.
template <class AtEdge>
void blurLine(const Line &line, int back, int forward, q_ulong mask, AtEdge atEdge) {
    for (int x = 0; x < line.length; ++x) {
        const int first = x < back ? 0 : x - back;
        const int last = x + forward >= line.length ? line.length - 1 : x + forward;
        const bool whole = last - first == back + forward;
        line.dst[x * line.dstStep] =
            (whole ? meanOf(line, first, last, timesReciprocal) : meanOf(line, first, last, atEdge)) & mask;
    }
}

inline void blurRect(Surface &surface, const tagRECT &rect, int radius) {
    const int width = static_cast<int>(rect.right - rect.left);
    const int height = static_cast<int>(rect.bottom - rect.top);
    if (width < 1 || height < 1)
        return;
    std::vector<q_ulong> between(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    const int pitch = surface.pitch();
    q_ulong *const first = &surface.at(static_cast<int>(rect.left), static_cast<int>(rect.top));
    for (int y = 0; y < height; ++y)
        blurLine({first + y * pitch, between.data() + y * width, 1, 1, width}, radius, radius, 0xFFFFFF, divided);
    for (int x = 0; x < width; ++x)
        blurLine({between.data() + x, first + x, width, pitch, height}, radius, radius, 0xFFFFFF, divided);
}

using Blur = void (*)(q_ulong *, q_ulong *, int, int, int, int);

struct Variant {
    Blur blur;
    bool alongColumns;
    q_ulong mask;

    void naive(Surface &dst, Surface &src, int blurSize, int width, int height) const {
        const int pitch = src.pitch();
        const int back = blurSize / 2;
        const int forward = blurSize - back;
        if (alongColumns)
            for (int x = 0; x < width; ++x)
                blurLine({src.pixels() + x, dst.pixels() + x, pitch, pitch, height}, back, forward, mask,
                         timesReciprocal);
        else
            for (int y = 0; y < height; ++y)
                blurLine({src.pixels() + y * pitch, dst.pixels() + y * pitch, 1, 1, width}, back, forward, mask,
                         timesReciprocal);
    }
};

const Variant rows = {Hor_Blur, false, 0xFFFFFF};
const Variant columns = {Ver_Blur, true, 0xFFFFFF};
const Variant rows32 = {Hor_Blur32, false, 0xFFFFFFFF};
const Variant columns32 = {Ver_Blur32, true, 0xFFFFFFFF};

} // namespace naive::boxBlur

#endif
