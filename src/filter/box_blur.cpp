#include "base/extent.h"
#include "base/pixel.h"
#include "base/scratch.h"
#include "q_Mur/filter.h"
#include "walks/abreast.h"

#include <cstring>
#include <type_traits>

namespace {

using namespace qmur;

/// The sums of a window of pixels, red and green in their places in the word. Red limits the window: 257 pixels of 255
/// are the most that it holds.
struct ColourSums {
    static constexpr int channels = 3;
    static constexpr q_ulong kept = 0xFFFFFF;

    q_ulong red = 0;
    q_ulong green = 0;
    q_ulong blue = 0;

    /// The sums of one of many columns, kept plane by plane.
    template <class Planes>
    void load(const Planes &planes, int x) {
        red = planes[0][x];
        green = planes[1][x];
        blue = planes[2][x];
    }
    template <class Planes>
    void save(Planes &planes, int x) const {
        planes[0][x] = red;
        planes[1][x] = green;
        planes[2][x] = blue;
    }

    void add(q_ulong pixel) {
        red += pixel & redMask;
        green += pixel & greenMask;
        blue += pixel & blueMask;
    }

    void subtract(q_ulong pixel) {
        red -= pixel & redMask;
        green -= pixel & greenMask;
        blue -= pixel & blueMask;
    }

    /// Each sum times `reciprocal` / 65536. Red is shifted down first, so that nothing overflows.
    q_ulong times(q_ulong reciprocal) const {
        return ((red >> 16) * reciprocal & redMask) | ((green >> 8) * reciprocal >> 8 & greenMask) |
               blue * reciprocal >> 16;
    }

    q_ulong dividedBy(q_ulong count) const {
        return (red / count & redMask) | (green / count & greenMask) | (blue / count & blueMask);
    }
};

/// The same with the top byte blurred like a colour.
struct FourSums : ColourSums {
    static constexpr int channels = 4;
    static constexpr q_ulong kept = 0xFFFFFFFF;

    q_ulong top = 0;

    template <class Planes>
    void load(const Planes &planes, int x) {
        ColourSums::load(planes, x);
        top = planes[3][x];
    }
    template <class Planes>
    void save(Planes &planes, int x) const {
        ColourSums::save(planes, x);
        planes[3][x] = top;
    }

    void add(q_ulong pixel) {
        ColourSums::add(pixel);
        top += topByteOf(pixel);
    }

    void subtract(q_ulong pixel) {
        ColourSums::subtract(pixel);
        top -= topByteOf(pixel);
    }

    q_ulong times(q_ulong reciprocal) const { return ColourSums::times(reciprocal) | (top * reciprocal >> 16) << 24; }
};

/// Sums divided by `divisor`. The product with its reciprocal is at most 1 low; then the remainder still holds the
/// divisor, and its difference from `limit`, which is the divisor again, has no sign. A limit of 0x8000 leaves the
/// product as it is.
template <int count>
Words<count> quotientOf(Words<count> sums, Words<count> reciprocal, Words<count> divisor, Words<count> limit) {
    const Words<count> low = highProduct(sums, reciprocal);
    const Words<count> sign = (sums - low * divisor - limit) >> 15;
    return low + (Words<count>::all(1) - sign);
}

/// A reciprocal for each channel of pixels that stand as words. What `Sums` does not keep has a factor of 0.
template <class Sums, int bytes>
Words<bytes / 2> keptFactor(q_ulong reciprocal) {
    constexpr std::uint64_t places = Sums::kept == 0xFFFFFFFF ? 0x1000100010001 : 0x100010001;
    return as<std::uint16_t>(target::Lanes<std::uint64_t, bytes / 8>::all(reciprocal * places));
}

/// The sums of the windows of several pixels, with all four channels, of which the means keep those of `Sums`. The 257
/// pixels of the largest window just fit 16 bits.
template <class Sums, int bytes>
class SumsAbreast {
public:
    using Pixels = Numbers<bytes / 4>;
    using Channels = Words<bytes / 2>;

    /// From and to two sets of channels. The compiler might move both together, in other pieces than they are used in.
    static SumsAbreast load(const Channels *from) {
        SumsAbreast sums;
        sums.blueAndRed = from[0];
        sums.greenAndTop = from[1];
        return sums;
    }
    void store(Channels *to) const {
        to[0] = blueAndRed;
        to[1] = greenAndTop;
    }

    void exchange(Pixels entering, Pixels leaving) {
        add(entering);
        subtract(leaving);
    }
    void add(Pixels pixels) {
        blueAndRed = blueAndRed + blueAndRedOf(pixels);
        greenAndTop = greenAndTop + greenAndTopOf(pixels);
    }

    void subtract(Pixels pixels) {
        blueAndRed = blueAndRed - blueAndRedOf(pixels);
        greenAndTop = greenAndTop - greenAndTopOf(pixels);
    }

    Pixels times(q_ulong reciprocal) const {
        if (reciprocal == 65536)
            return pixelsOf(blueAndRed, greenAndTop);
        const auto factor = static_cast<std::uint16_t>(reciprocal);
        // What is not kept has a factor of 0.
        const auto ofTop = Sums::kept == 0xFFFFFFFF ? factor * 0x10001U : factor;
        return as<std::uint32_t>(highProduct(blueAndRed, Channels::all(factor))) |
               as<std::uint32_t>(highProduct(greenAndTop, as<std::uint16_t>(Pixels::all(ofTop)))) << 8;
    }

    /// For a count above 1.
    Pixels dividedBy(q_ulong count) const {
        const auto divisor = Channels::all(static_cast<std::uint16_t>(count));
        const auto reciprocal = Channels::all(static_cast<std::uint16_t>(65536 / count));
        const auto quotient = [=](Channels sums) { return quotientOf(sums, reciprocal, divisor, divisor); };
        return pixelsOf(quotient(blueAndRed), quotient(greenAndTop));
    }

private:
    static Channels blueAndRedOf(Pixels pixels) { return as<std::uint16_t>(pixels & Pixels::all(redBlueMask)); }
    static Channels greenAndTopOf(Pixels pixels) { return as<std::uint16_t>(pixels) >> 8; }
    static Pixels pixelsOf(Channels means, Channels otherMeans) {
        return as<std::uint32_t>(means | otherMeans << 8) & Pixels::all(Sums::kept);
    }

    Channels blueAndRed = Channels::all(0);
    Channels greenAndTop = Channels::all(0);
};

/// The same for targets that add up pairs of bytes: channels stand as words, of the lower and of the upper half of each
/// 16 bytes.
template <class Sums, int bytes>
class SumsInHalves {
public:
    using Pixels = Numbers<bytes / 4>;
    using Channels = Words<bytes / 2>;

    static SumsInHalves load(const Channels *from) {
        SumsInHalves sums;
        sums.low = from[0];
        sums.high = from[1];
        return sums;
    }
    void store(Channels *to) const {
        to[0] = low;
        to[1] = high;
    }

    void exchange(Pixels entering, Pixels leaving) {
        // Each byte of the one with that of the other behind it.
        const auto plusAndMinus = as<std::uint8_t>(Channels::all(0xFF01));
        const auto in = as<std::uint8_t>(entering);
        const auto out = as<std::uint8_t>(leaving);
        low = low + pairSums(interleavedLow(in, out), plusAndMinus);
        high = high + pairSums(interleavedHigh(in, out), plusAndMinus);
    }
    void add(Pixels pixels) {
        low = low + widenedLow(as<std::uint8_t>(pixels));
        high = high + widenedHigh(as<std::uint8_t>(pixels));
    }
    void subtract(Pixels pixels) {
        low = low - widenedLow(as<std::uint8_t>(pixels));
        high = high - widenedHigh(as<std::uint8_t>(pixels));
    }

    Pixels times(q_ulong reciprocal) const {
        if (reciprocal == 65536)
            return as<std::uint32_t>(narrowed(low, high)) & Pixels::all(Sums::kept);
        const Channels factor = keptFactor<Sums, bytes>(reciprocal);
        return as<std::uint32_t>(narrowed(highProduct(low, factor), highProduct(high, factor)));
    }

    /// For a count above 1.
    Pixels dividedBy(q_ulong count) const {
        const auto divisor = Channels::all(static_cast<std::uint16_t>(count));
        const auto reciprocal = Channels::all(static_cast<std::uint16_t>(65536 / count));
        const auto quotient = [=](Channels sums) { return quotientOf(sums, reciprocal, divisor, divisor); };
        return as<std::uint32_t>(narrowed(quotient(low), quotient(high))) & Pixels::all(Sums::kept);
    }

private:
    Channels low = Channels::all(0);
    Channels high = Channels::all(0);
};

/// A window that reaches `back` pixels back and `forward` pixels forward.
struct SlidingWindow {
    int back;
    int forward;

    bool reachesBack() const { return back > 0; }
    int size() const { return back + forward + 1; }
    q_ulong reciprocal() const { return 65536 / static_cast<q_ulong>(size()); }
};

/// Slides a window along a line of `length` pixels: it shrinks at both ends, where `Edge` takes the mean over the
/// pixels that exist; between them every sum is multiplied by one reciprocal. `line.add(x)` takes a pixel into the
/// sums, `line.template move<enters, leaves>(entering, x, leaving, mean)` takes in the one, writes another and takes
/// out the third; where a line has it, `moveTwice` does so for two pixels. Meant: the edge at the start runs its `back`
/// steps on a line of any length.
template <class Line, class Edge>
void slide(Line &line, int length, SlidingWindow window, Edge edgeMean) {
    const auto [back, forward] = window;
    length = larger(length, 0);
    for (int x = 0; x < forward; ++x)
        line.add(x);
    for (int x = 0; x < back; ++x)
        line.template move<true, false>(x + forward, x, 0, edgeMean(x + forward + 1));
    const auto middleMean = [reciprocal = window.reciprocal()](const auto &sums) { return sums.times(reciprocal); };
    int middle = back;
    const auto moveOne = [&line, middleMean, back = back, forward = forward](int x) {
        line.template move<true, true>(x + forward, x, x - back, middleMean);
    };
    if constexpr (Line::movesTwice)
        if (middle < length - forward)
            for (moveOne(middle++); middle < length - forward - 1; middle += 2)
                line.moveTwice(middle + forward, middle, middle - back, middleMean);
    for (; middle < length - forward; ++middle)
        moveOne(middle);
    for (int x = larger(length - forward, 0); x < length; ++x)
        line.template move<false, true>(0, x, x - back, edgeMean(length - x + back));
}

/// A row, its sums kept at hand.
template <class Sums>
struct Row {
    static constexpr bool movesTwice = false;

    q_ulong *dst;
    const q_ulong *src;
    Sums sums = {};

    void add(int x) { sums.add(src[x]); }
    template <bool enters, bool leaves, class Mean>
    void move(int entering, int x, int leaving, Mean mean) {
        if constexpr (enters)
            sums.add(src[entering]);
        dst[x] = mean(sums);
        if constexpr (leaves)
            sums.subtract(src[leaving]);
    }
};

/// Columns side by side, each with its own sums: what is told column by column is done row by row, the way memory
/// lies. As long as no two rows share a pixel that gives the same bytes.
template <class Sums>
struct Columns {
    static constexpr bool movesTwice = false;
    static constexpr int most = 128;

    q_ulong *dst;
    Distance dstPitch;
    const q_ulong *src;
    Distance srcPitch;
    int count;
    q_ulong planes[Sums::channels][most] = {};

    template <class Update>
    void forEach(Update update) {
        for (int x = 0; x < count; ++x) {
            Sums sums;
            sums.load(planes, x);
            update(sums, x);
            sums.save(planes, x);
        }
    }
    void add(int y) {
        const q_ulong *const row = src + y * srcPitch;
        forEach([row](Sums &sums, int x) { sums.add(row[x]); });
    }
    void subtract(int y) {
        const q_ulong *const row = src + y * srcPitch;
        forEach([row](Sums &sums, int x) { sums.subtract(row[x]); });
    }
    template <bool enters, bool leaves, class Mean>
    void move(int entering, int y, int leaving, Mean mean) {
        if constexpr (enters)
            add(entering);
        q_ulong *const row = dst + y * dstPitch;
        for (int x = 0; x < count; ++x) {
            Sums sums;
            sums.load(planes, x);
            row[x] = mean(sums);
        }
        if constexpr (leaves)
            subtract(leaving);
    }
};

/// The largest window whose sums of bytes fit 16 bits: 257 * 255 is 65535.
constexpr int largestAbreast = 257;

/// A picture to read, one to write, and their common size.
struct Pictures {
    q_ulong *dst;
    Distance dstPitch;
    const q_ulong *src;
    Distance srcPitch;
    int width;
    int height;
};

/// Whether rows and columns may be taken side by side: windows fit the lines and their sums 16 bits, and whatever is
/// written can be read by nothing that is still to come.
bool canGoAbreast(const Pictures &pictures, SlidingWindow window, int length) {
    const auto [dst, dstPitch, src, srcPitch, width, height] = pictures;
    if (width < 1 || height < 1 || length < window.size() - 1 || window.size() > largestAbreast ||
        !keepsPixelsApart(dstPitch, width))
        return false;
    const Window whole = windowOf(width, height);
    return extentOf(dst, dstPitch, whole).isApartFrom(extentOf(src, srcPitch, whole));
}

/// Blurs as many rows as a register has pixels. The columns under the window, and those that come with them four at a
/// time, are kept in a ring.
template <class Sums, int bytes, class Edge>
void blurRowsAbreast(q_ulong *dst, Distance dstPitch, const q_ulong *src, Distance srcPitch, int width,
                     SlidingWindow window, Edge edgeMean) {
    using Columns = Tile<bytes>;
    constexpr int four = Columns::width;
    typename Columns::Column ring[512 + four]; // behind the last column stand the first four once more
    int ringSize = 16;
    while (ringSize < window.size() + 2 * four)
        ringSize *= 2;
    const int mask = ringSize - 1;
    int taken = 0;
    const auto take = [&, src](int end) {
        for (; taken < end; taken += four) {
            const Columns tile = taken + four <= width ? Columns::load(src + taken, srcPitch)
                                                       : Columns::loadPart(src + taken, srcPitch, width - taken);
            const int place = taken & mask;
            for (int i = 0; i < four; ++i)
                ring[place + i] = tile.columns[i];
            if (place == 0)
                for (int i = 0; i < four; ++i)
                    ring[ringSize + i] = tile.columns[i];
        }
    };

    const auto [back, forward] = window;
    SumsAbreast<Sums, bytes> sums;
    take(forward);
    for (int x = 0; x < forward; ++x)
        sums.add(ring[x & mask]);
    const q_ulong reciprocal = window.reciprocal();
    for (int start = 0; start < width; start += four) {
        take(smaller(start + four + forward, width));
        Columns means;
        if (start >= back && start + four <= width - forward) {
            const auto *const entering = ring + ((start + forward) & mask);
            const auto *const leaving = ring + ((start - back) & mask);
            for (int i = 0; i < four; ++i) {
                sums.add(entering[i]);
                means.columns[i] = sums.times(reciprocal);
                sums.subtract(leaving[i]);
            }
            means.store(dst + start, dstPitch);
            continue;
        }
        const int count = smaller(width - start, four);
        for (int i = 0; i < count; ++i) {
            const int x = start + i;
            if (x < width - forward)
                sums.add(ring[(x + forward) & mask]);
            means.columns[i] = x < back              ? edgeMean(x + forward + 1)(sums)
                               : x < width - forward ? sums.times(reciprocal)
                                                     : edgeMean(width - x + back)(sums);
            if (x >= back)
                sums.subtract(ring[(x - back) & mask]);
        }
        means.storePart(dst + start, dstPitch, count);
    }
}

/// The pixels of a row from column `x` on, which may lie before its start; 0 where it has none.
template <class Pixels>
Pixels loadWithin(const q_ulong *row, int width, int x) {
    constexpr int count = sizeof(Pixels) / sizeof(q_ulong);
    if (x <= -count || x >= width)
        return Pixels::all(0);
    if (x >= 0)
        return Pixels::loadFirst(row + x, smaller(width - x, count));
    q_ulong pixels[count] = {};
    std::memcpy(pixels - x, row, static_cast<std::size_t>(smaller(count + x, width)) * sizeof(q_ulong));
    return Pixels::load(pixels);
}

/// Blurs two rows at a time from left to right, for windows that reach back. Of every four pixels of both rows the
/// first ones stand beside each other as words, the second ones in the next register, and so on; each 16 bytes have
/// four pixels of their own.
template <class Sums, int bytes>
class RowsInTurn {
public:
    /// `divides` says whether means at the edges are true divisions.
    RowsInTurn(int rowWidth, SlidingWindow ofMeans, bool divides)
        : width(rowWidth), window(ofMeans), factor(keptFactor<Sums, bytes>(ofMeans.reciprocal())) {
        const auto [back, forward] = window;
        leftEdge = (back + pixels) / pixels;
        rightEdge = larger((width - forward) / pixels, leftEdge);
        for (int x = 0; x < width; x += pixels) {
            if (!isAtEdge(x / pixels))
                continue;
            q_ulong numbers[3][pixels];
            for (int i = 0; i < pixels; ++i) {
                const int column = smaller(x + i, width - 1);
                const bool isMiddle = column >= back && column < width - forward;
                const int count = smaller(column + forward, width - 1) - larger(column - back, 0) + 1;
                numbers[0][i] = 65536 / static_cast<q_ulong>(count);
                numbers[1][i] = static_cast<q_ulong>(count);
                numbers[2][i] = isMiddle || !divides ? 0x8000 : static_cast<q_ulong>(count);
            }
            Edge &edge = edgeOf(x / pixels);
            const auto inBothHalves = [](const q_ulong *of) { return Pixels::load(of) * Pixels::all(0x10001); };
            edge = {inBothHalves(numbers[0]), inBothHalves(numbers[1]), inBothHalves(numbers[2])};
        }
    }

    void blur(q_ulong *dst, q_ulong *otherDst, const q_ulong *src, const q_ulong *otherSrc) const {
        Channels carried = Channels::all(0);
        int x = -(window.forward + pixels - 1) / pixels * pixels;
        const auto within = [&] {
            const auto from = [this](const q_ulong *row, int first) { return loadWithin<Pixels>(row, width, first); };
            return sumsOf(from(src, x + window.forward), from(otherSrc, x + window.forward),
                          from(src, x - window.back - 1), from(otherSrc, x - window.back - 1), carried);
        };
        const auto blurEdge = [&](int end) {
            for (; x < end; x += pixels) {
                const Means means = atEdge(within(), edgeOf(x / pixels));
                const int count = smaller(width - x, pixels);
                means.row.storeFirst(dst + x, count);
                means.other.storeFirst(otherDst + x, count);
            }
        };
        for (; x < 0; x += pixels)
            within();
        blurEdge(smaller(leftEdge * pixels, width));
        x = blurMiddle(x, dst, otherDst, src, otherSrc, carried);
        blurEdge(width);
    }

private:
    using Pixels = Numbers<bytes / 4>;
    using Channels = Words<bytes / 2>;
    static constexpr int pixels = bytes / 4;

    struct Quarters {
        Channels channels[4];
    };
    struct Means {
        Pixels row;
        Pixels other;
    };
    /// For each column the reciprocal, the divisor and the limit that quotientOf() takes, as two words.
    struct Edge {
        Pixels reciprocals;
        Pixels divisors;
        Pixels limits;
    };

    bool isAtEdge(int group) const { return group < leftEdge || group >= rightEdge; }
    const Edge &edgeOf(int group) const { return edges[group < leftEdge ? group : group - rightEdge + leftEdge]; }
    Edge &edgeOf(int group) { return edges[group < leftEdge ? group : group - rightEdge + leftEdge]; }

    int blurMiddle(int begin, q_ulong *dst, q_ulong *otherDst, const q_ulong *src, const q_ulong *otherSrc,
                   Channels &carried) const {
        const Distance in = window.forward;
        const Distance out = -1 - window.back;
        const Distance end = Distance{rightEdge} * pixels;
        const Channels kept = factor;
        Channels sums = carried;
        Distance x = begin;
        for (; x < end; x += pixels) {
            const auto from = [x](const q_ulong *row) { return Pixels::load(row + x); };
            const Means means = inMiddle(
                sumsOf(from(src + in), from(otherSrc + in), from(src + out), from(otherSrc + out), sums), kept);
            means.row.store(dst + x);
            means.other.store(otherDst + x);
        }
        carried = sums;
        return static_cast<int>(x);
    }

    /// The sums of the next windows, those of the last ones being carried along.
    static Quarters sumsOf(Pixels in, Pixels otherIn, Pixels out, Pixels otherOut, Channels &carried) {
        const auto plusAndMinus = as<std::uint8_t>(Channels::all(0xFF01));
        const auto inLow = as<std::uint8_t>(interleavedLow(in, otherIn));
        const auto inHigh = as<std::uint8_t>(interleavedHigh(in, otherIn));
        const auto outLow = as<std::uint8_t>(interleavedLow(out, otherOut));
        const auto outHigh = as<std::uint8_t>(interleavedHigh(out, otherOut));
        const Channels first = pairSums(interleavedLow(inLow, outLow), plusAndMinus);
        const Channels second = first + pairSums(interleavedHigh(inLow, outLow), plusAndMinus);
        const Channels third = second + pairSums(interleavedLow(inHigh, outHigh), plusAndMinus);
        const Channels fourth = third + pairSums(interleavedHigh(inHigh, outHigh), plusAndMinus);
        Channels ends = fourth + target::sixteensMovedUp<1>(fourth);
        if constexpr (bytes > 32)
            ends = ends + target::sixteensMovedUp<2>(ends);
        const Channels before = carried + (ends - fourth);
        carried = carried + target::lastSixteen(ends);
        return {{before + first, before + second, before + third, before + fourth}};
    }

    static Means meansOf(Channels first, Channels second, Channels third, Channels fourth) {
        const auto firstHalf = as<std::uint32_t>(narrowed(first, second));
        const auto secondHalf = as<std::uint32_t>(narrowed(third, fourth));
        return {target::evenLanes(firstHalf, secondHalf), target::oddLanes(firstHalf, secondHalf)};
    }

    static Means inMiddle(const Quarters &sums, Channels factor) {
        const auto mean = [&](int i) { return highProduct(sums.channels[i], factor); };
        return meansOf(mean(0), mean(1), mean(2), mean(3));
    }

    static Means atEdge(const Quarters &sums, const Edge &edge) {
        const auto mean = [&]<int i>(std::integral_constant<int, i>) {
            const auto of = [](Pixels numbers) { return as<std::uint16_t>(target::broadcastInFours<i>(numbers)); };
            return quotientOf(sums.channels[i], of(edge.reciprocals), of(edge.divisors), of(edge.limits));
        };
        const Means means = meansOf(mean(std::integral_constant<int, 0>()), mean(std::integral_constant<int, 1>()),
                                    mean(std::integral_constant<int, 2>()), mean(std::integral_constant<int, 3>()));
        return {means.row & Pixels::all(Sums::kept), means.other & Pixels::all(Sums::kept)};
    }

    int width;
    SlidingWindow window;
    int leftEdge;  ///< the first group of columns whose windows have all their pixels
    int rightEdge; ///< the first behind them
    Channels factor;
    Edge edges[2 * (largestAbreast / 2 / pixels + 2)];
};

/// Blurs rows from `y` on, as long as there are enough of them to fill a register, and returns the first that is left.
template <class Sums, int bytes, class Edge>
Distance blurRowsAbreast(const Pictures &pictures, Distance y, SlidingWindow window, Edge edgeMean) {
    const auto [dst, dstPitch, src, srcPitch, width, height] = pictures;
    for (; y + Tile<bytes>::rows <= height; y += Tile<bytes>::rows)
        blurRowsAbreast<Sums, bytes>(dst + y * dstPitch, dstPitch, src + y * srcPitch, srcPitch, width, window,
                                     edgeMean);
    if constexpr (bytes > 16)
        return blurRowsAbreast<Sums, bytes / 2>(pictures, y, window, edgeMean);
    return y;
}

/// Blurs all rows, two by two; an odd one is blurred twice. A template, so that targets which lack pairSums() of bytes
/// do not compile it.
template <class Rows>
void blurRowsInTurn(const Pictures &pictures, const Rows &rows) {
    const auto [dst, dstPitch, src, srcPitch, width, height] = pictures;
    for (Distance y = 0; y < height; y += 2) {
        const Distance other = smaller(static_cast<int>(y) + 1, height - 1);
        rows.blur(dst + y * dstPitch, dst + other * dstPitch, src + y * srcPitch, src + other * srcPitch);
    }
}

template <class Sums, class Edge>
void blurRows(const Pictures &pictures, SlidingWindow window, Edge edgeMean) {
    Distance y = 0;
    if (canGoAbreast(pictures, window, pictures.width)) {
        if constexpr (sumsPairs)
            if (window.reachesBack())
                return blurRowsInTurn(pictures, RowsInTurn<Sums, widestBytes>(pictures.width, window, Edge::divides));
        y = blurRowsAbreast<Sums, widestBytes>(pictures, y, window, edgeMean);
    }
    for (; y < pictures.height; ++y) {
        Row<Sums> row = {pictures.dst + y * pictures.dstPitch, pictures.src + y * pictures.srcPitch};
        slide(row, pictures.width, window, edgeMean);
    }
}

/// Columns side by side, in registers where there are enough of them. `rowAt(y)` is the row to read; rows are asked for
/// in their order, and those under the window again.
template <class Sums, int bytes, class RowAt>
struct ColumnsAbreast {
    using WindowSums = std::conditional_t<sumsPairs, SumsInHalves<Sums, bytes>, SumsAbreast<Sums, bytes>>;
    using Channels = typename WindowSums::Channels;
    static constexpr bool movesTwice = sumsPairs;
    static constexpr int pixels = bytes / 4;

    static constexpr int channelsFor(int count) { return (count + pixels - 1) / pixels * 2; }

    q_ulong *dst;
    Distance dstPitch;
    int count; ///< at least `pixels`
    Channels *sums;
    RowAt rowAt;
    const q_ulong *left = nullptr; ///< the row that the window has left, if the sums still have it

    void clear() {
        for (int i = 0; i < channelsFor(count); ++i)
            sums[i] = Channels::all(0);
    }

    /// The last columns are taken together with some before them, so that nothing beyond them is touched.
    template <class Treat>
    void forEach(Treat treat) {
        Channels *place = sums;
        for (int x = 0; x < count; x += pixels, place += 2) {
            WindowSums sum = WindowSums::load(place);
            treat(sum, smaller(x, count - pixels));
            sum.store(place);
        }
    }
    void add(int y) {
        const q_ulong *const row = rowAt(y);
        forEach([row](WindowSums &sum, int x) { sum.add(WindowSums::Pixels::load(row + x)); });
    }
    /// A row leaves the sums when the next one enters: both at once cost less.
    template <bool enters, bool leaves, class Mean>
    void move(int entering, int y, int leaving, Mean mean) {
        const q_ulong *const in = enters ? rowAt(entering) : nullptr;
        const q_ulong *const out = left;
        q_ulong *const row = dst + y * dstPitch;
        const auto pixelsOf = [](const q_ulong *from) { return WindowSums::Pixels::load(from); };
        if (enters && out)
            forEach([=](WindowSums &sum, int x) {
                sum.exchange(pixelsOf(in + x), pixelsOf(out + x));
                mean(sum).store(row + x);
            });
        else
            forEach([=](WindowSums &sum, int x) {
                if (in)
                    sum.add(pixelsOf(in + x));
                if (out)
                    sum.subtract(pixelsOf(out + x));
                mean(sum).store(row + x);
            });
        left = leaves ? rowAt(leaving) : nullptr;
    }
    /// The same for that row and the next one, where a row enters and one has left: the sums stay in their registers.
    template <class Mean>
    void moveTwice(int entering, int y, int leaving, Mean mean) {
        const q_ulong *const in = rowAt(entering);
        const q_ulong *const nextIn = rowAt(entering + 1);
        const q_ulong *const out = left;
        const q_ulong *const nextOut = rowAt(leaving);
        q_ulong *const row = dst + y * dstPitch;
        q_ulong *const nextRow = row + dstPitch;
        const auto pixelsOf = [](const q_ulong *from) { return WindowSums::Pixels::load(from); };
        forEach([=](WindowSums &sum, int x) {
            sum.exchange(pixelsOf(in + x), pixelsOf(out + x));
            mean(sum).store(row + x);
            sum.exchange(pixelsOf(nextIn + x), pixelsOf(nextOut + x));
            mean(sum).store(nextRow + x);
        });
        left = rowAt(leaving + 1);
    }
};

/// Blurs some columns, few enough for their sums to stay at hand.
template <class Sums, int bytes, class Edge>
void blurColumnsAbreast(const Pictures &pictures, SlidingWindow window, Edge edgeMean) {
    const auto rowAt = [src = pictures.src, pitch = pictures.srcPitch](int y) { return src + y * pitch; };
    using Line = ColumnsAbreast<Sums, bytes, decltype(rowAt)>;
    constexpr int most = 512;
    typename Line::Channels sums[Line::channelsFor(most)];
    for (int x = 0; x < pictures.width; x += most) {
        const int count = larger(smaller(pictures.width - x, most), Line::pixels);
        const int start = smaller(x, pictures.width - count);
        const auto startingAt = [rowAt, start](int y) { return rowAt(y) + start; };
        ColumnsAbreast<Sums, bytes, decltype(startingAt)> line = {pictures.dst + start, pictures.dstPitch, count, sums,
                                                                  startingAt};
        line.clear();
        slide(line, pictures.height, window, edgeMean);
    }
}

/// With the widest register that the columns fill; says no if they fill none.
template <class Sums, int bytes, class Edge>
bool blurColumnsInRegisters(const Pictures &pictures, SlidingWindow window, Edge edgeMean) {
    if (pictures.width >= bytes / 4) {
        blurColumnsAbreast<Sums, bytes>(pictures, window, edgeMean);
        return true;
    }
    if constexpr (bytes > 16)
        return blurColumnsInRegisters<Sums, bytes / 2>(pictures, window, edgeMean);
    return false;
}

template <class Sums, class Edge>
void blurColumns(const Pictures &pictures, SlidingWindow window, Edge edgeMean) {
    if (canGoAbreast(pictures, window, pictures.height) &&
        blurColumnsInRegisters<Sums, widestBytes>(pictures, window, edgeMean))
        return;
    // Where rows run into each other, a column is to be finished before the next one is written.
    const int together = keepsPixelsApart(pictures.dstPitch, pictures.width) ? Columns<Sums>::most : 1;
    for (int x = 0; x < pictures.width; x += together) {
        Columns<Sums> columns = {.dst = pictures.dst + x,
                                 .dstPitch = pictures.dstPitch,
                                 .src = pictures.src + x,
                                 .srcPitch = pictures.srcPitch,
                                 .count = smaller(pictures.width - x, together)};
        slide(columns, pictures.height, window, edgeMean);
    }
}

/// Blurs a picture in place along its rows and then its columns, where only the rows under the window are kept: a row
/// is written when no window needs what it showed. `blurRowsOf(pictures)` blurs so many rows `together`. Says no if
/// there is no memory for them.
template <class Sums, int bytes, class Edge, class BlurRows>
bool blurInPlace(const Pictures &pictures, SlidingWindow window, Edge edgeMean, int together, BlurRows blurRowsOf) {
    const auto [first, pitch, src, srcPitch, width, height] = pictures;
    const int ringSize = (window.size() + 2 * together) / together * together;
    using Pixels = Numbers<bytes / 4>;
    const int registersAcross = (width + bytes / 4 - 1) / (bytes / 4);
    const Scratch<Pixels> ring(static_cast<long long>(ringSize) * registersAcross);
    const auto ringRow = [&](int y) {
        return reinterpret_cast<q_ulong *>(ring.data() + static_cast<Distance>(y % ringSize) * registersAcross);
    };
    int blurred = 0;
    const auto rowAt = [&, src = src, srcPitch = srcPitch, width = width, height = height](int y) {
        for (; blurred <= y; blurred += together)
            blurRowsOf(Pictures{.dst = ringRow(blurred),
                                .dstPitch = Distance{registersAcross} * (bytes / 4),
                                .src = src + blurred * srcPitch,
                                .srcPitch = srcPitch,
                                .width = width,
                                .height = smaller(height - blurred, together)});
        return ringRow(y);
    };
    using Line = ColumnsAbreast<Sums, bytes, decltype(rowAt)>;
    const Scratch<typename Line::Channels> sums(Line::channelsFor(width));
    if (!ring || !sums)
        return false;
    Line line = {first, pitch, width, sums.data(), rowAt};
    line.clear();
    slide(line, height, window, edgeMean);
    return true;
}

template <class Sums, int bytes, class Edge>
bool blurInPlace(const Pictures &pictures, SlidingWindow window, Edge edgeMean) {
    if constexpr (bytes > 16)
        if (pictures.width < bytes / 4)
            return blurInPlace<Sums, bytes / 2>(pictures, window, edgeMean);
    if (pictures.width < bytes / 4 || !keepsPixelsApart(pictures.dstPitch, pictures.width))
        return false;
    if constexpr (sumsPairs)
        if (window.reachesBack())
            return blurInPlace<Sums, bytes>(pictures, window, edgeMean, 2,
                                            [rows = RowsInTurn<Sums, bytes>(pictures.width, window, Edge::divides)](
                                                const Pictures &two) { blurRowsInTurn(two, rows); });
    return blurInPlace<Sums, bytes>(pictures, window, edgeMean, Tile<bytes>::rows,
                                    [=](const Pictures &several) { blurRows<Sums>(several, window, edgeMean); });
}

/// What a mean at the edges of a picture is: a true division, which the reciprocal of the middle does not always reach.
struct DividedEdges {
    [[maybe_unused]] static constexpr bool divides = true;

    auto operator()(int count) const {
        return [divisor = static_cast<q_ulong>(count)](const auto &sums) { return sums.dividedBy(divisor); };
    }
};

/// The same by reciprocals of the counts.
struct MultipliedEdges {
    [[maybe_unused]] static constexpr bool divides = false;

    const q_ulong *reciprocals;

    auto operator()(int count) const {
        return [reciprocal = reciprocals[count]](const auto &sums) { return sums.times(reciprocal); };
    }
};

/// The window of the one-directional filters and the reciprocals of the counts at its edges.
struct ReciprocalBlur {
    static constexpr int largestSize = 255;

    SlidingWindow window;
    q_ulong reciprocals[largestSize + 1];

    explicit ReciprocalBlur(int blurSize) : window{blurSize / 2, (blurSize + 1) / 2} {
        for (int count = 1; count < window.size(); ++count)
            reciprocals[count] = 65536 / static_cast<q_ulong>(count);
    }

    MultipliedEdges edgeMean() const { return {reciprocals}; }
};

constexpr bool holdsWindow(int blurSize) {
    return blurSize >= 0 && blurSize <= ReciprocalBlur::largestSize;
}

template <class Sums>
void blurHorizontally(q_ulong *dst, const q_ulong *src, int blurSize, int width, int height, Distance pitch) {
    if (height < 1 || !holdsWindow(blurSize))
        return;
    const ReciprocalBlur blur(blurSize);
    blurRows<Sums>({.dst = dst, .dstPitch = pitch, .src = src, .srcPitch = pitch, .width = width, .height = height},
                   blur.window, blur.edgeMean());
}

template <class Sums>
void blurVertically(q_ulong *dst, const q_ulong *src, int blurSize, int width, int height, Distance pitch) {
    if (width < 1 || !holdsWindow(blurSize))
        return;
    const ReciprocalBlur blur(blurSize);
    blurColumns<Sums>({.dst = dst, .dstPitch = pitch, .src = src, .srcPitch = pitch, .width = width, .height = height},
                      blur.window, blur.edgeMean());
}

} // namespace

void Blur_Rect(q_ulong *surface, tagRECT *rect, int pitch, int radius) {
    const int width = widthOf(*rect);
    const int height = heightOf(*rect);
    if (radius < 0 || width < 1 || height < 1 || radius > width / 2 || radius > height / 2)
        return;
    q_ulong *const first = pixelAt(surface, pitch, rect->left, rect->top);
    const DividedEdges edgeMean;
    const SlidingWindow window = {radius, radius};
    const Pictures inPlace = {
        .dst = first, .dstPitch = pitch, .src = first, .srcPitch = pitch, .width = width, .height = height};
    if (window.size() <= largestAbreast && blurInPlace<ColourSums, widestBytes>(inPlace, window, edgeMean))
        return;
    const Scratch<q_ulong> blurred(static_cast<long long>(width) * height);
    if (!blurred)
        return;
    blurRows<ColourSums>(
        {.dst = blurred.data(), .dstPitch = width, .src = first, .srcPitch = pitch, .width = width, .height = height},
        window, edgeMean);
    blurColumns<ColourSums>(
        {.dst = first, .dstPitch = pitch, .src = blurred.data(), .srcPitch = width, .width = width, .height = height},
        window, edgeMean);
}

void Hor_Blur(q_ulong *dst, q_ulong *src, int blurSize, int width, int height, int pitch) {
    blurHorizontally<ColourSums>(dst, src, blurSize, width, height, pitch);
}

void Ver_Blur(q_ulong *dst, q_ulong *src, int blurSize, int width, int height, int pitch) {
    blurVertically<ColourSums>(dst, src, blurSize, width, height, pitch);
}

void Hor_Blur32(q_ulong *dst, q_ulong *src, int blurSize, int width, int height, int pitch) {
    blurHorizontally<FourSums>(dst, src, blurSize, width, height, pitch);
}

void Ver_Blur32(q_ulong *dst, q_ulong *src, int blurSize, int width, int height, int pitch) {
    blurVertically<FourSums>(dst, src, blurSize, width, height, pitch);
}
