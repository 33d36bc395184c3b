/// \file
/// A Gaussian blur of lines side by side, each channel in 16 bits, by weights or by what boxes gain and lose.
#ifndef Q_MUR_FILTER_GAUSSIAN_ABREAST_H
#define Q_MUR_FILTER_GAUSSIAN_ABREAST_H

#include "gaussian_kernel.h"
#include "walks/abreast.h"

namespace qmur::gaussian {

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

} // namespace qmur::gaussian

#endif
