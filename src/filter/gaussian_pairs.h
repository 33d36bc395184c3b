/// \file
/// A Gaussian blur by products of bytes, added up two by two, for narrow kernels and targets that have these.
#ifndef Q_MUR_FILTER_GAUSSIAN_PAIRS_H
#define Q_MUR_FILTER_GAUSSIAN_PAIRS_H

#include "gaussian_kernel.h"
#include "walks/abreast.h"

namespace qmur::gaussian {

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

} // namespace qmur::gaussian

#endif
