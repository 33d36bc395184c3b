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

/// The furthest weight that is not 0: none grows further out.
int reachOf(const Kernel &kernel) {
    int reach = kernel.radius;
    while (reach > 1 && kernel.weights[reach] == 0)
        --reach;
    return reach;
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

/// The channels of as many pixels as two registers hold, 16 bits each: blue and red of either, and green of the second
/// ones where the first ones had their top bytes.
template <int bytes>
struct ChannelsAbreast {
    using Words = qmur::Words<bytes / 2>;
    using Pixels = Numbers<bytes / 4>;
    static constexpr int count = bytes / 2;

    Words first;
    Words second;
    Words green;

    static ChannelsAbreast of(Pixels a, Pixels b) {
        const auto redBlue = Pixels::all(redBlueMask);
        return {as<std::uint16_t>(a & redBlue), as<std::uint16_t>(b & redBlue),
                as<std::uint16_t>((a >> 8 & Pixels::all(0xFF)) | (b << 8 & Pixels::all(0xFF0000)))};
    }

    /// Set by set: the compiler might move all together, in other pieces than they are used in.
    void set(const ChannelsAbreast &from) {
        first = from.first;
        second = from.second;
        green = from.green;
    }

    /// The pixels of these sums.
    Pixels firstPixels() const {
        return as<std::uint32_t>(first >> 8) | (as<std::uint32_t>(green) & Pixels::all(greenMask));
    }
    Pixels secondPixels() const {
        return as<std::uint32_t>(second >> 8) | (as<std::uint32_t>(green) >> 16 & Pixels::all(greenMask));
    }

    friend ChannelsAbreast operator+(const ChannelsAbreast &a, const ChannelsAbreast &b) {
        return {a.first + b.first, a.second + b.second, a.green + b.green};
    }
    friend ChannelsAbreast operator-(const ChannelsAbreast &a, const ChannelsAbreast &b) {
        return {a.first - b.first, a.second - b.second, a.green - b.green};
    }
    friend ChannelsAbreast operator*(const ChannelsAbreast &a, Words b) {
        return {a.first * b, a.second * b, a.green * b};
    }
};

/// A kernel that goes along lines side by side. All sums are exact in 16 bits, and what goes beyond in between comes
/// back. `at(k)` are the pixels k places further on.
template <int bytes>
class LineFilter {
public:
    using Channels = ChannelsAbreast<bytes>;
    using Words = typename Channels::Words;

    /// Where the weights fall by the same, at one place or at two side by side.
    struct Step {
        int gained; ///< the place of the pixel that is gained, or of the latter of two
        int lost;   ///< the same of those lost
        bool isTwo;
    };

    explicit LineFilter(const Kernel &kernel)
        : excess(Words::all(static_cast<Sum>(kernel.centre - kernel.weights[1]))) {
        reach = reachOf(kernel);
        for (int k = 1; k <= reach; ++k)
            sides[k] = Words::all(static_cast<Sum>(kernel.weights[k]));
        const auto fall = [&](int k) { return kernel.weights[k] - (k < reach ? kernel.weights[k + 1] : 0); };
        const auto addSteps = [&](bool single) {
            for (int k = 1; k <= reach; ++k) {
                if (fall(k) == 0 || (fall(k) == 1) != single)
                    continue;
                heights[stepCount] = Words::all(static_cast<Sum>(fall(k)));
                const bool isTwo = takesTwos && k < reach && fall(k + 1) == fall(k);
                steps[stepCount++] = {isTwo ? k + 1 : k, -1 - k, isTwo};
                hasTwos |= isTwo;
                k += isTwo ? 1 : 0;
            }
        };
        addSteps(true);
        singleSteps = stepCount;
        addSteps(false);
        isStaircase = 4 * singleSteps + 6 * (stepCount - singleSteps) + 6 < 6 * reach;
    }

    // A staircase of weights is the sum of boxes, each of which loses a pixel and gains one from place to place. In
    // their middle all of them have the weight of the neighbours; what the centre has beyond that is its excess.

    template <class At>
    Channels boxes(At at) const {
        Channels sums = at(0) * sides[1];
        for (int k = 1, end = reach; k <= end; ++k)
            sums = sums + (at(-k) + at(k)) * sides[k];
        return sums;
    }

    /// What the next boxes have more: `gainedAt(i)` and `lostAt(i)` are what step i gains and loses.
    template <class GainedAt, class LostAt>
    Channels moved(GainedAt gainedAt, LostAt lostAt) const {
        Channels sums = {Words::all(0), Words::all(0), Words::all(0)};
        int i = 0;
        for (const int end = singleSteps; i < end; ++i)
            sums = sums + gainedAt(i) - lostAt(i);
        for (const int end = stepCount; i < end; ++i)
            sums = sums + (gainedAt(i) - lostAt(i)) * heights[i];
        return sums;
    }

    /// Whether the sums of neighbours are asked for.
    bool hasSums() const { return takesTwos && isStaircase && hasTwos; }

    Channels withExcess(const Channels &boxes, const Channels &here) const { return boxes + here * excess; }

    static constexpr bool takesTwos = !staysSmall;

    int reach = 0;            ///< of the weights that are not 0
    bool isStaircase = false; ///< whether boxes cost less than weights
    Step steps[Kernel::room]; ///< first those by 1
    int stepCount = 0;

private:
    Words excess;
    Words sides[Kernel::room];   ///< from 1 to `reach`
    Words heights[Kernel::room]; ///< by how much the weights fall
    bool hasTwos = false;        ///< whether a step is at two places
    int singleSteps = 0;
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

/// As many rows as two registers have pixels, from their start to their end. Columns stand one behind the other, each
/// with what the filter asks for around it; behind `distance` of them, their sums with the ones before.
template <int bytes>
class RowsAbreast {
public:
    static constexpr int count = 2 * Tile<bytes>::rows;

    explicit RowsAbreast(const Kernel &kernel) : filter(kernel) {
        for (int i = 0; i < filter.stepCount; ++i) {
            const auto [gainedAt, lostAt, isTwo] = filter.steps[i];
            gained[i] = gainedAt + (isTwo ? distance : 0);
            lost[i] = lostAt + (isTwo ? distance : 0);
        }
    }

    void run(q_ulong *dst, const q_ulong *src, Distance pitch, int width) {
        const Distance half = Columns::rows * pitch;
        const int before = filter.reach + 1;
        const int most = smaller(larger(room / (filter.hasSums() ? 2 : 1), 2 * before + 64), distance);
        int taken = -before;
        Channels *here = channels + before; // column x
        for (int x = 0; x < width; x += Columns::width) {
            const int columns = smaller(width - x, Columns::width);
            if (here - channels + 2 * Columns::width + filter.reach > most)
                here = moveToFront(here, taken - x);
            while (taken < x + columns + filter.reach)
                taken += take(taken, src, pitch, width, here + (taken - x));
            Columns first;
            Columns second;
            Channels boxes;
            boxes.set(carried);
            for (int i = 0; i < Columns::width; ++i) {
                const Channels sums = next(here + i, boxes, !filter.isStaircase || x + i == 0);
                first.columns[i] = sums.firstPixels();
                second.columns[i] = sums.secondPixels();
            }
            carried.set(boxes);
            if (columns == Columns::width) {
                first.store(dst + x, pitch);
                second.store(dst + half + x, pitch);
            } else {
                first.storePart(dst + x, pitch, columns);
                second.storePart(dst + half + x, pitch, columns);
            }
            here += Columns::width;
        }
    }

private:
    using Filter = LineFilter<bytes>;
    using Channels = typename Filter::Channels;
    using Columns = Tile<bytes>;
    static constexpr int distance = 2 * Kernel::room + 64;
    static constexpr int room = 40 * 1024 / sizeof(Channels);

    Channels next(const Channels *here, Channels &boxes, bool isStart) const {
        const auto at = [here](int k) -> const Channels & { return here[k]; };
        if (isStart)
            boxes = filter.boxes(at);
        else
            boxes = boxes + filter.moved([here, this](int i) -> const Channels & { return here[gained[i]]; },
                                         [here, this](int i) -> const Channels & { return here[lost[i]]; });
        return filter.withExcess(boxes, *here);
    }

    /// Takes a column, or several, and returns how many.
    int take(int position, const q_ulong *src, Distance pitch, int width, Channels *to) {
        if (position < 0 || position + Columns::width > width) {
            const q_ulong *from = src + reflected(position, width);
            q_ulong pixels[count];
            for (q_ulong &pixel : pixels) {
                pixel = *from;
                from += pitch;
            }
            set(to, Channels::of(Channels::Pixels::load(pixels), Channels::Pixels::load(pixels + count / 2)));
            return 1;
        }
        const Columns first = Columns::load(src + position, pitch);
        const Columns second = Columns::load(src + Columns::rows * pitch + position, pitch);
        for (int i = 0; i < Columns::width; ++i)
            set(to + i, Channels::of(first.columns[i], second.columns[i]));
        return Columns::width;
    }

    void set(Channels *to, const Channels &taken) {
        to->set(taken);
        if (filter.hasSums() && to > channels)
            to[distance].set(to[-1] + taken);
    }

    Channels *moveToFront(const Channels *here, int ahead) {
        const Channels *from = here - (filter.reach + 1);
        const int kept = filter.reach + 1 + ahead;
        for (int i = 0; i < kept; ++i)
            channels[i].set(from[i]);
        if (filter.hasSums())
            for (int i = 0; i < kept; ++i)
                channels[distance + i].set(from[distance + i]);
        return channels + filter.reach + 1;
    }

    const Filter filter;
    Distance gained[Kernel::room];
    Distance lost[Kernel::room];
    Channels channels[2 * distance];
    Channels carried;
};

/// Filters rows side by side, if there are enough of them. The last ones are taken together with some before them.
template <int bytes>
bool filterRowsAbreast(const Pictures &pictures, const Kernel &kernel) {
    const auto [dst, src, width, height, pitch] = pictures;
    constexpr int count = RowsAbreast<bytes>::count;
    if (height >= count) {
        RowsAbreast<bytes> rows(kernel);
        for (int y = 0; y < height; y += count) {
            const Distance first = smaller(y, height - count) * pitch;
            rows.run(dst + first, src + first, pitch, width);
        }
        return true;
    }
    if constexpr (bytes > 16)
        return filterRowsAbreast<bytes / 2>(pictures, kernel);
    return false;
}

/// Columns side by side, row by row. The rows that the filter asks for stand in a ring; behind each, if that is needed,
/// its sums with the one before.
template <int bytes>
class ColumnsAbreast {
public:
    static constexpr int count = bytes / 2;

    explicit ColumnsAbreast(const Kernel &kernel) : filter(kernel) {}

    void run(const Pictures &pictures) {
        const int width = pictures.width;
        // Of boxes not all rows are asked for at once.
        const int most = larger((filter.isStaircase ? room : room / 2) / ((filter.hasSums() ? 2 : 1) * rowCount()), 1);
        for (int x = 0; x < width; x += most * count) {
            const int columns = larger(smaller(width - x, most * count), count);
            run(pictures, smaller(x, width - columns), columns);
        }
    }

private:
    using Filter = LineFilter<bytes>;
    using Channels = typename Filter::Channels;
    using Pixels = typename Channels::Pixels;
    static constexpr int room = 56 * 1024 / sizeof(Channels);

    int rowCount() const { return 2 * filter.reach + 2; }

    void run(const Pictures &pictures, int start, int columns) {
        const auto [dst, src, width, height, pitch] = pictures;
        // The last columns are taken together with some before them, so that nothing beyond them is touched.
        const int across = (columns + count - 1) / count;
        const auto placeOf = [last = columns - count](int i) { return smaller(i * count, last); };
        const int reach = filter.reach;
        const int newest = 2 * reach + 1;
        const int sumOffset = across * rowCount();
        Channels *rows[2 * Kernel::room];
        for (int i = 0; i <= newest; ++i)
            rows[i] = ring + i * across;
        const auto take = [&, src = src, height = height, pitch = pitch](int y) {
            Channels *const gone = rows[0];
            for (int i = 0; i < newest; ++i)
                rows[i] = rows[i + 1];
            rows[newest] = gone;
            const q_ulong *const row = src + reflected(y, height) * pitch + start;
            const q_ulong *const ahead = src + reflected(y + 2, height) * pitch + start;
            for (int i = 0; i < across; ++i) {
                const int x = placeOf(i);
                willRead(ahead + x);
                willRead(ahead + x + count / 2);
                const Channels taken = Channels::of(Pixels::load(row + x), Pixels::load(row + x + count / 2));
                gone[i].set(taken);
                if (filter.hasSums())
                    gone[sumOffset + i].set(rows[newest - 1][i] + taken);
            }
        };
        for (int y = -reach - 1; y < reach; ++y)
            take(y);
        for (int y = 0; y < height; ++y) {
            take(y + reach);
            q_ulong *const to = dst + y * pitch + start;
            const Distance ahead = y + 2 < height ? 2 * pitch : 0;
            if (!filter.isStaircase || y == 0)
                writeFirst(to, ahead, columns, rows + (reach + 1));
            else
                writeNext(to, ahead, columns, rows + (reach + 1), sumOffset);
        }
    }

    // Functions by themselves, or the compiler has no registers left for the pointers that they step along.

    /// A row of a picture of whose rows `here[0]` is the one that is filtered.
    [[gnu::noinline]] void writeFirst(q_ulong *to, Distance ahead, int columns, const Channels *const *here) {
        write(to, ahead, columns, [=, this](int i) {
            const Channels boxes = filter.boxes([here, i](int k) -> const Channels & { return here[k][i]; });
            sums[i].set(boxes);
            return filter.withExcess(boxes, here[0][i]);
        });
    }

    /// The same by what has changed since the row before.
    [[gnu::noinline]] void writeNext(q_ulong *to, Distance ahead, int columns, const Channels *const *here,
                                     int sumOffset) {
        const Channels *gained[Kernel::room];
        const Channels *lost[Kernel::room];
        for (int i = 0; i < filter.stepCount; ++i) {
            const auto [gainedAt, lostAt, isTwo] = filter.steps[i];
            gained[i] = here[gainedAt] + (isTwo ? sumOffset : 0);
            lost[i] = here[lostAt] + (isTwo ? sumOffset : 0);
        }
        write(to, ahead, columns, [&, row = here[0]](int i) {
            const Channels boxes =
                sums[i] + filter.moved([&, i](int step) -> const Channels & { return gained[step][i]; },
                                       [&, i](int step) -> const Channels & { return lost[step][i]; });
            sums[i].set(boxes);
            return filter.withExcess(boxes, row[i]);
        });
    }

    template <class FilteredAt>
    static void write(q_ulong *to, Distance ahead, int columns, FilteredAt filteredAt) {
        for (int i = 0; i * count < columns; ++i) {
            const int x = smaller(i * count, columns - count);
            willWrite(to + ahead + x);
            willWrite(to + ahead + x + count / 2);
            const Channels filtered = filteredAt(i);
            filtered.firstPixels().store(to + x);
            filtered.secondPixels().store(to + x + count / 2);
        }
    }

    const Filter filter;
    Channels ring[larger(room, 4 * Kernel::room)];
    Channels sums[room / 4];
};

bool filterColumnsAbreast(const Pictures &pictures, const Kernel &kernel) {
    static_assert(ColumnsAbreast<widestBytes>::count <= blockSize); // fewer are for filterFewColumns()
    if (pictures.width < ColumnsAbreast<widestBytes>::count)
        return false;
    ColumnsAbreast<widestBytes>(kernel).run(pictures);
    return true;
}

/// The weights of a kernel for targets that add up products of bytes two by two. Pixels stand in pairs, each byte of
/// the one before that of the other. Both pixels of a pair are filtered with as many pairs around it, which begin one
/// pair further on for the second. A product of a pair fits 16 bits with a sign, for its two weights add up to 128 at
/// most; a sum fits them without.
template <int bytes>
class PairWeights {
public:
    using Channels = Words<bytes / 2>;

    /// The furthest weight that is not 0 for which pairs cost less than boxes.
    static constexpr int mostReach = bytes > 32 ? 17 : 13;
    static constexpr int mostPairs = mostReach + 1;

    static bool canHold(const Kernel &kernel) { return kernel.centre < 256 && reachOf(kernel) <= mostReach; }

    explicit PairWeights(const Kernel &kernel) : half((reachOf(kernel) + 2) / 2) {
        const auto weightAt = [&kernel](int k) { return k == 0 ? kernel.centre : kernel.weights[k < 0 ? -k : k]; };
        const unsigned own = kernel.centre < 127 ? kernel.centre : 127;
        const unsigned next = kernel.weights[1] < 128 - own ? kernel.weights[1] : 128 - own;
        isSplit = kernel.centre + kernel.weights[1] > own + next;
        rest[0] = weightsOf(kernel.centre - own, kernel.weights[1] - next);
        rest[1] = weightsOf(kernel.weights[1] - next, kernel.centre - own);
        for (int i = 0; i < count(); ++i) {
            const int k = 2 * (i - half);
            weights[i][0] = k == 0 ? weightsOf(own, next) : weightsOf(weightAt(k), weightAt(k + 1));
            weights[i][1] = k == -2 ? weightsOf(next, own) : weightsOf(weightAt(k + 1), weightAt(k + 2));
        }
    }

    /// The pairs before that of a pixel, and all for either.
    int before() const { return half; }
    int count() const { return 2 * half; }

    /// Calls `run.operator()<isSplit, count>()`. Of a few pairs the count is known to the compiler and the weights stay
    /// in registers; else it is 0.
    template <class Run>
    void choose(Run run) const {
        if (isSplit)
            run.template operator()<true, 0>();
        else if (count() == 6)
            run.template operator()<false, 6>();
        else if (count() == 8)
            run.template operator()<false, 8>();
        else
            run.template operator()<false, 0>();
    }

    /// Sums of the first and of the second pixels of pairs, for several registers of them.
    template <int registers>
    struct Sums {
        Channels first[registers];
        Channels second[registers];
    };

    /// `pairsAt(i, j)` are the pairs for register j, i pairs behind the first of all.
    template <int registers, bool splits, int fixedCount, class PairsAt>
    Sums<registers> sums(PairsAt pairsAt) const {
        const auto product = [](Bytes<bytes> pairs, Channels by) { return pairSums(pairs, as<std::uint8_t>(by)); };
        Sums<registers> sums;
        Bytes<bytes> pairs[registers];
        for (int j = 0; j < registers; ++j) {
            sums.first[j] = product(pairsAt(0, j), weights[0][0]);
            pairs[j] = pairsAt(1, j);
            sums.second[j] = product(pairs[j], weights[0][1]);
        }
        for (int i = 1, end = fixedCount == 0 ? count() : fixedCount; i < end; ++i)
            for (int j = 0; j < registers; ++j) {
                sums.first[j] = sums.first[j] + product(pairs[j], weights[i][0]);
                pairs[j] = pairsAt(i + 1, j);
                sums.second[j] = sums.second[j] + product(pairs[j], weights[i][1]);
            }
        if constexpr (splits)
            for (int j = 0; j < registers; ++j) {
                sums.first[j] = sums.first[j] + product(pairsAt(half, j), rest[0]);
                sums.second[j] = sums.second[j] + product(pairsAt(half, j), rest[1]);
            }
        return sums;
    }

private:
    /// For all pairs of a register, with nothing for the top bytes.
    static Channels weightsOf(unsigned first, unsigned second) {
        const std::uint64_t pair = first | second << 8;
        return as<std::uint16_t>(target::Lanes<std::uint64_t, bytes / 8>::all(pair * 0x100010001));
    }

    const int half;
    bool isSplit; ///< whether a pair of the centre and a weight has more than 128; `rest` is what it has beyond
    Channels rest[2];
    Channels weights[mostPairs][2];
};

/// A row taken apart into pairs, in stretches.
template <int bytes>
class PairedRow {
public:
    explicit PairedRow(const Kernel &kernel) : weights(kernel) {}

    /// `next` is how far off the row is that is soon to be filtered.
    void run(q_ulong *dst, const q_ulong *src, int width, Distance next) {
        for (int start = 0; start < width; start += most) {
            const int length = smaller(width - start, most);
            take(src, width, start - 2 * weights.before(), start + length + 2 * weights.before());
            weights.choose([&]<bool splits, int fixedCount>() {
                write<splits, fixedCount>(dst + start, length, dst + start + next, src + start + next);
            });
        }
    }

private:
    using Weights = PairWeights<bytes>;
    using Pixels = Numbers<bytes / 4>;
    static constexpr int most = 1024;
    static constexpr int count = bytes / 4;

    void take(const q_ulong *src, int width, int begin, int end) {
        lead = begin & (count - 1);
        Pixels *to = pairs;
        for (int x = begin - lead; x < end; x += count, ++to) {
            Pixels taken;
            if (x >= 0 && x + count <= width) {
                taken = Pixels::load(src + x);
            } else {
                q_ulong pixels[count] = {};
                for (int i = larger(begin - x, 0); i < smaller(end - x, count); ++i)
                    pixels[i] = src[reflected(x + i, width)];
                taken = Pixels::load(pixels);
            }
            *to = as<std::uint32_t>(pairedBytes(as<std::uint8_t>(taken)));
        }
    }

    template <bool splits, int fixedCount>
    void write(q_ulong *dst, int length, const q_ulong *nextDst, const q_ulong *nextSrc) const {
        constexpr int registers = fixedCount == 0 ? 2 : 1; // weights that are fetched serve two
        const q_ulong *const first = reinterpret_cast<const q_ulong *>(pairs) + lead;
        for (int start = 0; start < length; start += registers * count) {
            const auto sums = weights.template sums<registers, splits, fixedCount>(
                [=](int i, int j) { return Bytes<bytes>::load(first + start + j * count + 2 * i); });
            for (int j = 0; j < registers; ++j) {
                const int x = start + j * count;
                willRead(nextSrc + x);
                willWrite(nextDst + x);
                const auto both = sums.first[j] >> 8 | (sums.second[j] & Weights::Channels::all(0xFF00));
                const auto pixels = as<std::uint32_t>(unpairedBytes(as<std::uint8_t>(both)));
                if (x + count <= length)
                    pixels.store(dst + x);
                else if (x < length)
                    pixels.storeFirst(dst + x, length - x);
            }
        }
    }

    const Weights weights;
    int lead = 0; ///< pixels that stand before those asked for
    Pixels pairs[(most + 2 * Weights::mostPairs) / count + 4] = {};
};

/// Columns side by side, two rows at a time. Each two rows that the kernel asks for stand in a ring as pairs.
template <int bytes>
class PairedColumns {
public:
    explicit PairedColumns(const Kernel &kernel) : weights(kernel) {}

    void run(const Pictures &pictures) {
        const int width = pictures.width;
        const int most = room / (weights.count() + 1) * count;
        for (int x = 0; x < width; x += most) {
            const int columns = larger(smaller(width - x, most), count);
            const int start = smaller(x, width - columns);
            weights.choose(
                [&]<bool splits, int fixedCount>() { this->run<splits, fixedCount>(pictures, start, columns); });
        }
    }

private:
    using Weights = PairWeights<bytes>;
    using Pixels = Numbers<bytes / 4>;
    static constexpr int count = bytes / 4;
    static constexpr int room = 28 * 1024 / (2 * bytes); // few enough to stay at hand

    struct Pairs {
        Bytes<bytes> halves[2];
    };

    template <bool splits, int fixedCount>
    void run(const Pictures &pictures, int start, int columns) {
        const auto [dst, src, width, height, pitch] = pictures;
        // The last columns are taken together with some before them, so that nothing beyond them is touched.
        const int across = (columns + count - 1) / count;
        const auto placeOf = [last = columns - count](int i) { return smaller(i * count, last); };
        const int newest = weights.count();
        Pairs *rows[Weights::mostPairs + 1];
        for (int i = 0; i <= newest; ++i)
            rows[i] = ring + i * across;
        const auto take = [&, first = src + start, height = height, pitch = pitch](int y) {
            Pairs *const gone = rows[0];
            for (int i = 0; i < newest; ++i)
                rows[i] = rows[i + 1];
            rows[newest] = gone;
            const auto rowAt = [=](int of) { return first + reflected(of, height) * pitch; };
            const q_ulong *const upper = rowAt(y);
            const q_ulong *const lower = rowAt(y + 1);
            const q_ulong *const nextUpper = rowAt(y + 2);
            const q_ulong *const nextLower = rowAt(y + 3);
            for (int i = 0; i < across; ++i) {
                const int x = placeOf(i);
                willRead(nextUpper + x);
                willRead(nextLower + x);
                const auto a = Bytes<bytes>::load(upper + x);
                const auto b = Bytes<bytes>::load(lower + x);
                gone[i].halves[0] = interleavedLow(a, b);
                gone[i].halves[1] = interleavedHigh(a, b);
            }
        };
        for (int i = 0; i < newest; ++i)
            take(2 * (i - weights.before()));
        for (int y = 0; y < height; y += 2) {
            take(y + newest);
            q_ulong *const upper = dst + y * pitch + start;
            q_ulong *const lower = upper + (y + 1 < height ? pitch : 0); // if there is none, the upper is written last
            const Distance next = y + 3 < height ? 2 * pitch : 0;
            for (int i = 0; i < across; ++i) {
                const int x = placeOf(i);
                willWrite(upper + next + x);
                willWrite(lower + next + x);
                const auto sums = weights.template sums<2, splits, fixedCount>(
                    [&rows, i](int k, int j) { return rows[k][i].halves[j]; });
                pixelsOf(sums.second).store(lower + x);
                pixelsOf(sums.first).store(upper + x);
            }
        }
    }

    static Pixels pixelsOf(const typename Weights::Channels *sums) {
        return as<std::uint32_t>(narrowed(sums[0] >> 8, sums[1] >> 8));
    }

    const Weights weights;
    Pairs ring[room];
};

enum class Along { rows, columns };

/// Says no to kernels and pictures that are not for pairs. A template, so that targets which lack pairSums() of bytes
/// do not compile what it calls.
template <int bytes>
bool filterPairs(const Pictures &pictures, const Kernel &kernel, Along along) {
    if constexpr (sumsPairs) {
        if (!PairWeights<bytes>::canHold(kernel) || pictures.width < bytes / 4)
            return false;
        if (along == Along::columns) {
            PairedColumns<bytes>(kernel).run(pictures);
            return true;
        }
        PairedRow<bytes> row(kernel);
        for (int y = 0; y < pictures.height; ++y) {
            const Distance first = y * pictures.pitch;
            row.run(pictures.dst + first, pictures.src + first, pictures.width,
                    y + 1 < pictures.height ? pictures.pitch : 0);
        }
        return true;
    }
    return false;
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
