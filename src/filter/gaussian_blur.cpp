#include "base/pixel.h"
#include "gaussian_abreast.h"
#include "gaussian_pairs.h"
#include "q_Mur/filter.h"

namespace {

using namespace qmur;
using namespace qmur::gaussian;

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

bool filterColumnsAbreast(const Pictures &pictures, const Kernel &kernel) {
    static_assert(ColumnsAbreast<widestBytes>::count <= blockSize); // fewer are for filterFewColumns()
    if (pictures.width < ColumnsAbreast<widestBytes>::count)
        return false;
    ColumnsAbreast<widestBytes>(kernel).run(pictures);
    return true;
}

/// A line after the other, each from its start to its end: what is read may have been written before.
void filterInOrder(const Pictures &pictures, const Kernel &kernel, Along along) {
    const auto [dst, src, width, height, pitch] = pictures;
    const bool isRows = along == Along::rows;
    const int lines = isRows ? height : width;
    const int length = isRows ? width : height;
    const Distance nextLine = isRows ? pitch : 1;
    const Distance nextPixel = isRows ? 1 : pitch;
    for (int line = 0; line < lines; ++line)
        for (int i = 0; i < length; ++i) {
            q_ulong redAndBlue = 0;
            q_ulong green = 0;
            for (int k = -kernel.radius; k <= kernel.radius; ++k) {
                const q_ulong pixel = src[line * nextLine + reflected(i + k, length) * nextPixel];
                const auto weight = static_cast<q_ulong>(k == 0 ? kernel.centre : kernel.weights[k < 0 ? -k : k]);
                redAndBlue += (pixel & redBlueMask) * weight;
                green += (pixel & greenMask) * weight;
            }
            dst[line * nextLine + i * nextPixel] = (redAndBlue >> 8 & redBlueMask) | (green >> 8 & greenMask);
        }
}

/// Too few rows to fill registers, in blocks of pixels.
[[maybe_unused]] void filterFewRows(const Pictures &pictures, const Kernel &kernel) {
    const auto [dst, src, width, height, pitch] = pictures;
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

/// Too few columns to fill registers: they go down row by row, the way memory lies; the rows that the kernel spans are
/// kept in a ring.
[[maybe_unused]] void filterFewColumns(const Pictures &pictures, const Kernel &kernel) {
    const auto [dst, src, width, height, pitch] = pictures;
    constexpr int ringSize = 2 * Kernel::room;
    Channels<blockSize> ring[ringSize];
    Channels<blockSize> sums;
    const auto take = [&, src = src, width = width, height = height, pitch = pitch](int y) {
        const q_ulong *const row = src + reflected(y, height) * pitch;
        Channels<blockSize> &taken = ring[y & (ringSize - 1)];
        for (int x = 0; x < blockSize; ++x)
            taken.set(x, x < width ? row[x] : 0);
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
        storeBlock(dst + y * pitch, sums, width);
    }
}

void filter(const Pictures &pictures, float sigma, Along along) {
    if (pictures.width < 1 || pictures.height < 1)
        return;
    const Kernel kernel = kernelOf(sigma);
    if (kernel.radius == Kernel::room)
        return;
    const bool isRows = along == Along::rows;
    if (!pictures.areApart())
        return filterInOrder(pictures, kernel, along);
    if (filterPairs<widestBytes>(pictures, kernel, along) ||
        (isRows ? filterRowsAbreast<registerBytes>(pictures, kernel) : filterColumnsAbreast(pictures, kernel)))
        return;
    if constexpr (staysSmall)
        filterInOrder(pictures, kernel, along);
    else if (isRows)
        filterFewRows(pictures, kernel);
    else
        filterFewColumns(pictures, kernel);
}

} // namespace

void Hor_GaussBlur(q_ulong *dst, q_ulong *src, float sigma, int width, int height, int pitch) {
    filter({dst, src, width, height, pitch}, sigma, Along::rows);
}

void Ver_GaussBlur(q_ulong *dst, q_ulong *src, float sigma, int width, int height, int pitch) {
    filter({dst, src, width, height, pitch}, sigma, Along::columns);
}
