/// \file
/// Gaussian blurs, channel by channel and tap by tap.
#ifndef Q_MUR_TESTS_FILTER_NAIVE_GAUSSIAN_BLUR_H
#define Q_MUR_TESTS_FILTER_NAIVE_GAUSSIAN_BLUR_H

#include "base/wide.h"
#include "support/surface.h"

#include <cmath>

namespace naive::gaussianBlur {

using test::Surface;

/// Integer weights of a normal density: `side[k]` for the pixels k before and behind the centre.
struct Weights {
    int radius = 1;
    int centre = 256;
    int side[128] = {};
};

/// The weights of `sigma`; a radius of 128 if none below is wide enough.
inline Weights weightsOf(float sigma) {
    Weights weights;
    qmur::atFullWidth([sigma, &weights] {
        using Real = long double;
        const auto t = static_cast<float>(static_cast<Real>(sigma) * sigma + static_cast<Real>(sigma) * sigma);
        const auto n = static_cast<float>(std::sqrt(static_cast<Real>(t) * 3.1415927F));
        const auto density = [=](int k) { return static_cast<float>(std::exp(-static_cast<Real>(k * k) / t) / n); };
        int r = 1;
        while (r < 128 && !(density(r) <= 0.00009999999747378752F))
            ++r;
        weights.radius = r;
        if (r == 128)
            return;
        Real sum = 1 / static_cast<Real>(n);
        for (int k = 1; k <= r; ++k)
            sum += 2 * static_cast<Real>(density(k));
        int sides = 0;
        for (int k = 1; k <= r; ++k) {
            weights.side[k] = static_cast<int>(static_cast<Real>(density(k)) * 256 / sum);
            sides += weights.side[k];
        }
        weights.centre = 256 - 2 * sides;
    });
    return weights;
}

/// Filters a line of pixels that lie `step` apart.
inline void filterLine(q_ulong *dst, const q_ulong *src, int step, int length, const Weights &weights) {
    for (int x = 0; x < length; ++x) {
        q_ulong result = 0;
        for (int shift = 0; shift < 24; shift += 8) {
            const auto channel = [=](int at) { return static_cast<int>(src[at * step] >> shift & 0xFF); };
            int sum = channel(x) * weights.centre;
            for (int k = 1; k <= weights.radius; ++k) {
                const int before = x - k < 0 ? k - x : x - k;
                const int behind = x + k < length ? x + k : 2 * length - 1 - (x + k);
                sum += (channel(before) + channel(behind)) * weights.side[k];
            }
            result |= static_cast<q_ulong>(sum / 256) << shift;
        }
        dst[x * step] = result;
    }
}

using Blur = void (*)(q_ulong *, q_ulong *, float, int, int, int);

struct Variant {
    Blur blur;
    bool alongColumns;

    void naive(Surface &dst, Surface &src, float sigma, int width, int height) const {
        const Weights weights = weightsOf(sigma);
        if (weights.radius == 128)
            return;
        const int pitch = src.pitch();
        if (alongColumns)
            for (int x = 0; x < width; ++x)
                filterLine(dst.pixels() + x, src.pixels() + x, pitch, height, weights);
        else
            for (int y = 0; y < height; ++y)
                filterLine(dst.pixels() + y * pitch, src.pixels() + y * pitch, 1, width, weights);
    }
};

const Variant alongRows = {Hor_GaussBlur, false};
const Variant alongColumns = {Ver_GaussBlur, true};

} // namespace naive::gaussianBlur

#endif
