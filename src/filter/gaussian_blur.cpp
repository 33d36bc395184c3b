#include "base/pixel.h"
#include "base/surface.h"
#include "base/wide.h"
#include "q_Mur/filter.h"

namespace {

using namespace qmur;

/// A normal density in integer weights that add up to exactly 256.
struct Kernel {
    static constexpr int room = 128;

    int radius; ///< `room` if the density is too wide to hold
    unsigned centre;
    unsigned weights[room]; ///< from 1 to `radius`, for either side
};

Kernel kernelOf(float sigma) {
    Kernel kernel = {};
    atFullWidth([sigma, &kernel] {
        constexpr float smallestDensity = 0.0001F;
        constexpr float pi = 3.1415927F;
        const Wide square = static_cast<Wide>(sigma) * sigma;
        const auto twiceVariance = static_cast<float>(square + square);
        const auto divisor = static_cast<float>(squareRoot(static_cast<Wide>(twiceVariance) * pi));

        float densities[Kernel::room];
        Wide sum = static_cast<Wide>(1) / divisor;
        for (kernel.radius = 1; kernel.radius < Kernel::room; ++kernel.radius) {
            const int k = kernel.radius;
            densities[k] = static_cast<float>(exponential(-static_cast<Wide>(k * k) / twiceVariance) / divisor);
            sum += 2 * static_cast<Wide>(densities[k]);
            if (densities[k] <= smallestDensity)
                break;
        }
        if (kernel.radius == Kernel::room)
            return;
        // The centre takes up what truncation leaves over.
        kernel.centre = 256;
        for (int k = 1; k <= kernel.radius; ++k) {
            kernel.weights[k] = static_cast<unsigned>(truncateToInt(static_cast<Wide>(densities[k]) * 256 / sum));
            kernel.centre -= 2 * kernel.weights[k];
        }
    });
    return kernel;
}

/// A weighted sum of one channel stays below 65536, for the weights add up to 256 and none is negative.
using Sum = unsigned short;

/// Pixels that are filtered at a time, few enough for their sums to stay in registers.
constexpr int blockSize = 32;

/// A run of pixels taken apart into channels.
template <int capacity>
struct Channels {
    Sum red[capacity];
    Sum green[capacity];
    Sum blue[capacity];

    void set(int x, q_ulong pixel) {
        red[x] = static_cast<Sum>(redOf(pixel));
        green[x] = static_cast<Sum>(greenOf(pixel));
        blue[x] = static_cast<Sum>(blueOf(pixel));
    }
};

/// Filters one channel of a block; `tapsAt(k)` are the block's pixels moved by k.
template <class Taps>
void filterChannel(Sum *out, const Kernel &kernel, Taps tapsAt) {
    Sum sums[blockSize];
    const Sum *const centre = tapsAt(0);
    for (int x = 0; x < blockSize; ++x)
        sums[x] = static_cast<Sum>(centre[x] * kernel.centre);
    for (int k = 1; k <= kernel.radius; ++k) {
        const Sum *const before = tapsAt(-k);
        const Sum *const behind = tapsAt(k);
        const unsigned weight = kernel.weights[k];
        for (int x = 0; x < blockSize; ++x)
            sums[x] = static_cast<Sum>(sums[x] + (before[x] + behind[x]) * weight);
    }
    for (int x = 0; x < blockSize; ++x)
        out[x] = sums[x];
}

void storeBlock(q_ulong *dst, const Channels<blockSize> &sums, int count) {
    for (int x = 0; x < count; ++x)
        dst[x] = (static_cast<q_ulong>(sums.red[x]) << 8 & redMask) | (sums.green[x] & greenMask) |
                 static_cast<q_ulong>(sums.blue[x] >> 8);
}

/// The position that stands in for one outside a line. Meant: before the start the first pixel is the mirror, behind
/// the end the mirror lies half a pixel beyond the last. Lines too short to be mirrored into keep to their ends.
constexpr int reflected(int position, int length) {
    const int mirrored = position < 0 ? -position : position < length ? position : length - 1 - (position - length);
    return mirrored < 0 ? 0 : mirrored < length ? mirrored : length - 1;
}

} // namespace

void Hor_GaussBlur(q_ulong *dst, q_ulong *src, float sigma, int width, int height, int pitch) {
    const Kernel kernel = kernelOf(sigma);
    if (kernel.radius == Kernel::room || width < 1)
        return;
    constexpr int stretch = 8 * blockSize; // taken apart at a time, with its neighbours on either side
    Channels<stretch + 2 *Kernel::room> taps = {};
    Channels<blockSize> sums;
    for (Distance y = 0; y < height; ++y) {
        const q_ulong *const row = src + y * pitch;
        for (int start = 0; start < width; start += stretch) {
            const int end = smaller(width - start, stretch);
            for (int x = -kernel.radius; x < end + kernel.radius; ++x)
                taps.set(Kernel::room + x, row[reflected(start + x, width)]);
            for (int x = 0; x < end; x += blockSize) {
                const auto filter = [&kernel, x](Sum *out, const Sum *channel) {
                    filterChannel(out, kernel, [=](int k) { return channel + Kernel::room + x + k; });
                };
                filter(sums.red, taps.red);
                filter(sums.green, taps.green);
                filter(sums.blue, taps.blue);
                storeBlock(dst + y * pitch + start + x, sums, smaller(end - x, blockSize));
            }
        }
    }
}

void Ver_GaussBlur(q_ulong *dst, q_ulong *src, float sigma, int width, int height, int pitch) {
    const Kernel kernel = kernelOf(sigma);
    if (kernel.radius == Kernel::room || height < 1)
        return;
    // A block of columns goes down row by row, the way memory lies; the rows that the kernel spans are kept in a ring.
    constexpr int ringSize = 2 * Kernel::room;
    Channels<blockSize> ring[ringSize];
    Channels<blockSize> sums;
    for (int start = 0; start < width; start += blockSize) {
        const int count = smaller(width - start, blockSize);
        const auto take = [&, start](int y) {
            const q_ulong *const row = src + static_cast<Distance>(reflected(y, height)) * pitch + start;
            Channels<blockSize> &taken = ring[y & (ringSize - 1)];
            for (int x = 0; x < blockSize; ++x)
                taken.set(x, x < count ? row[x] : 0);
        };
        for (int y = -kernel.radius; y < kernel.radius; ++y)
            take(y);
        for (int y = 0; y < height; ++y) {
            take(y + kernel.radius);
            const auto filter = [&kernel, &ring, y](Sum *out, Sum(Channels<blockSize>::*channel)[blockSize]) {
                filterChannel(out, kernel, [&](int k) { return ring[(y + k) & (ringSize - 1)].*channel; });
            };
            filter(sums.red, &Channels<blockSize>::red);
            filter(sums.green, &Channels<blockSize>::green);
            filter(sums.blue, &Channels<blockSize>::blue);
            storeBlock(dst + static_cast<Distance>(y) * pitch + start, sums, count);
        }
    }
}
