/// \file
/// Kernels of a Gaussian blur, and what they are laid over.
#ifndef Q_MUR_FILTER_GAUSSIAN_KERNEL_H
#define Q_MUR_FILTER_GAUSSIAN_KERNEL_H

#include "base/extent.h"

namespace qmur::gaussian {

/// A normal density in integer weights that add up to exactly 256.
struct Kernel {
    static constexpr int room = 128;

    int radius; ///< `room` if the density is too wide to hold
    unsigned centre;
    unsigned weights[room]; ///< from 1 to `radius`, for either side
};

Kernel kernelOf(float sigma);

/// The furthest weight that is not 0: none grows further out.
int reachOf(const Kernel &kernel);

/// A weighted sum of one channel stays below 65536, for the weights add up to 256 and none is negative.
using Sum = unsigned short;

/// The position that stands in for one outside a line. Meant: before the start the first pixel is the mirror, behind
/// the end the mirror lies half a pixel beyond the last. Lines too short to be mirrored into keep to their ends.
constexpr int reflected(int position, int length) {
    const int mirrored = position < 0 ? -position : position < length ? position : length - 1 - (position - length);
    return mirrored < 0 ? 0 : mirrored < length ? mirrored : length - 1;
}

/// A picture to read, one to write, and their common size and pitch.
struct Pictures {
    q_ulong *dst;
    const q_ulong *src;
    int width;
    int height;
    Distance pitch;

    /// Whether whatever is written can be read by nothing that is still to come.
    bool areApart() const {
        const Window whole = windowOf(width, height);
        return keepsPixelsApart(pitch, width) && extentOf(dst, pitch, whole).isApartFrom(extentOf(src, pitch, whole));
    }
};

/// Along what a kernel goes.
enum class Along { rows, columns };

} // namespace qmur::gaussian

#endif
