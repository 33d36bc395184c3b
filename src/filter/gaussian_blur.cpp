#include "base/extent.h"
#include "base/pixel.h"
#include "base/wide.h"
#include "q_Mur/filter.h"
#include "walks/abreast.h"

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

/// The channels of as many pixels as a register holds, 16 bits each.
template <int bytes>
struct ChannelsAbreast {
    using Words = qmur::Words<bytes / 2>;
    using Pixels = Numbers<bytes / 4>;

    Words blueAndRed;
    Words green;

    void set(Pixels pixels) {
        blueAndRed = as<std::uint16_t>(pixels & Pixels::all(redBlueMask));
        green = as<std::uint16_t>(pixels) >> 8;
    }
};

/// A kernel that goes along lines side by side. `stride` is from a pixel to the next of its line. All sums are exact in
/// 16 bits, and what goes beyond in between comes back.
template <int bytes>
class LineFilter {
public:
    using Channels = ChannelsAbreast<bytes>;
    using Pixels = typename Channels::Pixels;
    using Words = typename Channels::Words;

    explicit LineFilter(const Kernel &kernel)
        : centre(Words::all(static_cast<Sum>(kernel.centre))),
          excess(Words::all(static_cast<Sum>(kernel.centre - kernel.weights[1]))) {
        for (int k = 1; k <= kernel.radius && kernel.weights[k] != 0; ++k)
            sides[reach = k] = Words::all(static_cast<Sum>(kernel.weights[k]));
        const auto step = [&](int k) { return kernel.weights[k] - (k < reach ? kernel.weights[k + 1] : 0); };
        for (int k = 1; k <= reach; ++k)
            if (step(k) == 1)
                steps[stepCount++] = k;
        singleSteps = stepCount;
        for (int k = 1; k <= reach; ++k)
            if (step(k) > 1) {
                heights[stepCount] = Words::all(static_cast<Sum>(step(k)));
                steps[stepCount++] = k;
            }
        isStaircase = 4 * singleSteps + 6 * (stepCount - singleSteps) + 6 < 6 * reach;
    }

    /// The pixels of a line that are asked for before and behind.
    int before() const { return reach + 1; }
    int behind() const { return reach; }

    /// Filters the first `count` pixels from `line` on. `sums` is kept from one stretch of a line to the next.
    void run(const Channels *line, Distance stride, int count, Pixels *out, Distance outStride, Channels &sums,
             bool isStart) const {
        if (!isStaircase) {
            for (int i = 0; i < count; ++i)
                out[i * outStride] = weighted(line + i * stride, stride);
            return;
        }
        Words blueAndRed = sums.blueAndRed;
        Words green = sums.green;
        for (int i = 0; i < count; ++i) {
            const Channels *const here = line + i * stride;
            if (isStart && i == 0)
                start(here, stride, blueAndRed, green);
            else
                move(here, stride, blueAndRed, green);
            out[i * outStride] = pixelsOf(blueAndRed + here->blueAndRed * excess, green + here->green * excess);
        }
        sums.blueAndRed = blueAndRed;
        sums.green = green;
    }

private:
    static Pixels pixelsOf(Words blueAndRed, Words green) {
        return as<std::uint32_t>(blueAndRed >> 8) | (as<std::uint32_t>(green) & Pixels::all(greenMask));
    }

    void addSides(const Channels *here, Distance stride, Words &blueAndRed, Words &green) const {
        const Channels *before = here;
        const Channels *behind = here;
        for (int k = 1; k <= reach; ++k) {
            before -= stride;
            behind += stride;
            blueAndRed = blueAndRed + (before->blueAndRed + behind->blueAndRed) * sides[k];
            green = green + (before->green + behind->green) * sides[k];
        }
    }

    Pixels weighted(const Channels *here, Distance stride) const {
        Words blueAndRed = here->blueAndRed * centre;
        Words green = here->green * centre;
        addSides(here, stride, blueAndRed, green);
        return pixelsOf(blueAndRed, green);
    }

    // A staircase of weights is the sum of boxes, each of which loses a pixel and gains one from place to place. In
    // their middle all of them have the weight of the neighbours; what the centre has beyond that is its excess.

    void start(const Channels *here, Distance stride, Words &blueAndRed, Words &green) const {
        blueAndRed = here->blueAndRed * sides[1];
        green = here->green * sides[1];
        addSides(here, stride, blueAndRed, green);
    }

    void move(const Channels *here, Distance stride, Words &blueAndRed, Words &green) const {
        const Channels *const previous = here - stride;
        int i = 0;
        for (; i < singleSteps; ++i) {
            const Channels &gained = here[steps[i] * stride];
            const Channels &lost = previous[-steps[i] * stride];
            blueAndRed = blueAndRed + gained.blueAndRed - lost.blueAndRed;
            green = green + gained.green - lost.green;
        }
        for (; i < stepCount; ++i) {
            const Channels &gained = here[steps[i] * stride];
            const Channels &lost = previous[-steps[i] * stride];
            blueAndRed = blueAndRed + (gained.blueAndRed - lost.blueAndRed) * heights[i];
            green = green + (gained.green - lost.green) * heights[i];
        }
    }

    Words centre;
    Words excess;
    int reach = 0;                ///< of the weights that are not 0
    Words sides[Kernel::room];    ///< from 1 to `reach`
    bool isStaircase = false;     ///< whether boxes cost less than weights
    Distance steps[Kernel::room]; ///< where weights fall, first those that fall by 1
    Words heights[Kernel::room];  ///< by how much, behind `singleSteps`
    int singleSteps = 0;
    int stepCount = 0;
};

/// A stretch of lines side by side, with what the filter asks for around it.
template <int bytes, int width>
class Stretch {
public:
    using Filter = LineFilter<bytes>;
    using Channels = typename Filter::Channels;
    using Pixels = typename Filter::Pixels;
    static constexpr int length = 64;

    explicit Stretch(const Kernel &kernel) : filter(kernel) {}

    /// Filters lines of `count` pixels. `take(position, end, channels)` sets those of one position or more, as many as
    /// it returns; `store(position, count, pixels)` writes.
    template <class Take, class Store>
    void run(int count, Take take, Store store) {
        const int before = filter.before();
        int taken = -before;
        for (int start = 0; start < count; start += length) {
            const int end = smaller(count - start, length) + start;
            while (taken < end + filter.behind())
                taken += take(taken, end + filter.behind(), channels + (taken - start + before) * width);
            for (int i = 0; i < width; ++i)
                filter.run(channels + before * width + i, width, end - start, pixels + i, width, sums[i], start == 0);
            store(start, end - start, pixels);
            // What the next stretch asks for before it.
            const int kept = taken - end + before;
            for (int i = 0; i < kept * width; ++i) {
                channels[i].blueAndRed = channels[i + (end - start) * width].blueAndRed;
                channels[i].green = channels[i + (end - start) * width].green;
            }
        }
    }

private:
    const Filter filter;
    Channels channels[(length + 2 * Kernel::room) * width];
    Pixels pixels[length * width];
    Channels sums[width];
};

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

/// Filters rows from `y` on, as long as there are enough of them to fill a register, and returns the first that is
/// left.
template <int bytes>
int filterRowsAbreast(const Pictures &pictures, const Kernel &kernel, int y) {
    using Columns = Tile<bytes>;
    if (y + Columns::rows <= pictures.height) {
        const int width = pictures.width;
        const Distance pitch = pictures.pitch;
        Stretch<bytes, 1> stretch(kernel);
        for (; y + Columns::rows <= pictures.height; y += Columns::rows) {
            const q_ulong *const from = pictures.src + y * pitch;
            q_ulong *const to = pictures.dst + y * pitch;
            stretch.run(
                width,
                [=](int position, int end, ChannelsAbreast<bytes> *channels) {
                    if (position < 0 || position + Columns::width > smaller(end, width)) {
                        channels->set(Columns::loadPart(from + reflected(position, width), pitch, 1).columns[0]);
                        return 1;
                    }
                    const Columns tile = Columns::load(from + position, pitch);
                    for (int i = 0; i < Columns::width; ++i)
                        channels[i].set(tile.columns[i]);
                    return Columns::width;
                },
                [=](int start, int count, const typename Columns::Column *pixels) {
                    for (int x = 0; x < count; x += Columns::width) {
                        Columns tile;
                        for (int i = 0; i < Columns::width; ++i)
                            tile.columns[i] = pixels[x + i];
                        if (x + Columns::width <= count)
                            tile.store(to + start + x, pitch);
                        else
                            tile.storePart(to + start + x, pitch, count - x);
                    }
                });
        }
    }
    if constexpr (bytes > 16)
        return filterRowsAbreast<bytes / 2>(pictures, kernel, y);
    return y;
}

/// Filters columns in strips of two cache lines, if there is one.
bool filterColumnsAbreast(const Pictures &pictures, const Kernel &kernel) {
    constexpr int strip = 32;
    constexpr int pixels = widestBytes / 4;
    constexpr int registers = strip / pixels;
    const int width = pictures.width;
    const int height = pictures.height;
    const Distance pitch = pictures.pitch;
    if (width < strip)
        return false;
    using Strip = Stretch<widestBytes, registers>;
    Strip stretch(kernel);
    for (int x = 0; x < width; x += strip) {
        // The last strip begins early enough to end with the picture.
        const q_ulong *const from = pictures.src + smaller(x, width - strip);
        q_ulong *const to = pictures.dst + smaller(x, width - strip);
        stretch.run(
            height,
            [=](int position, int, typename Strip::Channels *channels) {
                const q_ulong *const row = from + reflected(position, height) * pitch;
                // No processor sees that a strip is going to be asked for: its rows are too far apart.
                constexpr int ahead = 16;
                __builtin_prefetch(from + smaller(larger(position + ahead, 0), height - 1) * pitch);
                __builtin_prefetch(to + smaller(larger(position, 0), height - 1) * pitch, 1);
                for (int i = 0; i < registers; ++i)
                    channels[i].set(Strip::Pixels::load(row + i * pixels));
                return 1;
            },
            [=](int start, int count, const typename Strip::Pixels *filtered) {
                for (int y = 0; y < count; ++y)
                    for (int i = 0; i < registers; ++i)
                        filtered[y * registers + i].store(to + (start + y) * pitch + i * pixels);
            });
    }
    return true;
}

} // namespace

void Hor_GaussBlur(q_ulong *dst, q_ulong *src, float sigma, int width, int height, int pitch) {
    const Kernel kernel = kernelOf(sigma);
    if (kernel.radius == Kernel::room || width < 1)
        return;
    const Pictures pictures = {dst, src, width, height, pitch};
    const int first = height > 0 && pictures.areApart() ? filterRowsAbreast<widestBytes>(pictures, kernel, 0) : 0;
    constexpr int stretch = 8 * blockSize; // taken apart at a time, with its neighbours on either side
    Channels<stretch + 2 *Kernel::room> taps = {};
    Channels<blockSize> sums;
    for (Distance y = first; y < height; ++y) {
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
    const Pictures pictures = {dst, src, width, height, pitch};
    if (width > 0 && pictures.areApart() && filterColumnsAbreast(pictures, kernel))
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
