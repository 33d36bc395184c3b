#include "base/extent.h"
#include "base/pixel.h"
#include "base/scratch.h"
#include "q_Mur/filter.h"
#include "walks/abreast.h"

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
        const auto quotient = [=](Channels sums) {
            // The product is at most 1 low; then the remainder still holds the divisor, and the difference no sign.
            const Channels low = highProduct(sums, reciprocal);
            const Channels sign = (sums - low * divisor - divisor) >> 15;
            return low + (Channels::all(1) - sign);
        };
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

/// A window that reaches `back` pixels back and `forward` pixels forward.
struct SlidingWindow {
    int back;
    int forward;

    int size() const { return back + forward + 1; }
    q_ulong reciprocal() const { return 65536 / static_cast<q_ulong>(size()); }
};

/// Slides a window along a line of `length` pixels: it shrinks at both ends, where `Edge` takes the mean over the
/// pixels that exist; between them every sum is multiplied by one reciprocal. `line.add(x)` takes a pixel into the
/// sums, `line.template move<enters, leaves>(entering, x, leaving, mean)` takes in the one, writes another and takes
/// out the third. Meant: the edge at the start runs its `back` steps on a line of any length.
template <class Line, class Edge>
void slide(Line &line, int length, SlidingWindow window, Edge edgeMean) {
    const auto [back, forward] = window;
    length = larger(length, 0);
    for (int x = 0; x < forward; ++x)
        line.add(x);
    for (int x = 0; x < back; ++x)
        line.template move<true, false>(x + forward, x, 0, edgeMean(x + forward + 1));
    const auto middleMean = [reciprocal = window.reciprocal()](const auto &sums) { return sums.times(reciprocal); };
    for (int x = back; x < length - forward; ++x)
        line.template move<true, true>(x + forward, x, x - back, middleMean);
    for (int x = larger(length - forward, 0); x < length; ++x)
        line.template move<false, true>(0, x, x - back, edgeMean(length - x + back));
}

/// A row, its sums kept at hand.
template <class Sums>
struct Row {
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
/// lies, with the same bytes.
template <class Sums>
struct Columns {
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

template <class Sums, class Edge>
void blurRows(const Pictures &pictures, SlidingWindow window, Edge edgeMean) {
    Distance y = 0;
    if (canGoAbreast(pictures, window, pictures.width))
        y = blurRowsAbreast<Sums, widestBytes>(pictures, y, window, edgeMean);
    for (; y < pictures.height; ++y) {
        Row<Sums> row = {pictures.dst + y * pictures.dstPitch, pictures.src + y * pictures.srcPitch};
        slide(row, pictures.width, window, edgeMean);
    }
}

/// Columns side by side, in registers where there are enough of them. `rowAt(y)` is the row to read; rows are asked for
/// in their order, and those under the window again.
template <class Sums, int bytes, class RowAt>
struct ColumnsAbreast {
    using WindowSums = SumsAbreast<Sums, bytes>;
    using Channels = typename WindowSums::Channels;
    static constexpr int pixels = bytes / 4;

    static constexpr int channelsFor(int count) { return (count + pixels - 1) / pixels * 2; }

    q_ulong *dst;
    Distance dstPitch;
    int count; ///< at least `pixels`
    Channels *sums;
    RowAt rowAt;

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
    template <bool enters, bool leaves, class Mean>
    void move(int entering, int y, int leaving, Mean mean) {
        const q_ulong *const in = enters ? rowAt(entering) : nullptr;
        const q_ulong *const out = leaves ? rowAt(leaving) : nullptr;
        q_ulong *const row = dst + y * dstPitch;
        forEach([=](WindowSums &sum, int x) {
            if constexpr (enters)
                sum.add(WindowSums::Pixels::load(in + x));
            mean(sum).store(row + x);
            if constexpr (leaves)
                sum.subtract(WindowSums::Pixels::load(out + x));
        });
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
    for (int x = 0; x < pictures.width; x += Columns<Sums>::most) {
        Columns<Sums> columns = {.dst = pictures.dst + x,
                                 .dstPitch = pictures.dstPitch,
                                 .src = pictures.src + x,
                                 .srcPitch = pictures.srcPitch,
                                 .count = smaller(pictures.width - x, Columns<Sums>::most)};
        slide(columns, pictures.height, window, edgeMean);
    }
}

/// Blurs a picture in place along its rows and then its columns, where only the rows under the window are kept: a row
/// is written when no window needs what it showed. Says no if there is no memory for them.
template <class Sums, int bytes, class Edge>
bool blurInPlace(q_ulong *first, Distance pitch, int width, int height, SlidingWindow window, Edge edgeMean) {
    if constexpr (bytes > 16)
        if (width < bytes / 4)
            return blurInPlace<Sums, bytes / 2>(first, pitch, width, height, window, edgeMean);
    if (width < bytes / 4 || !keepsPixelsApart(pitch, width))
        return false;
    constexpr int together = Tile<bytes>::rows;
    const int ringSize = (window.size() + 2 * together - 1) / together * together;
    const Scratch<q_ulong> ring(static_cast<long long>(ringSize) * width);
    int blurred = 0;
    const auto rowAt = [&](int y) {
        for (; blurred <= y; blurred += together)
            blurRows<Sums>({.dst = ring.data() + static_cast<Distance>(blurred % ringSize) * width,
                            .dstPitch = width,
                            .src = first + blurred * pitch,
                            .srcPitch = pitch,
                            .width = width,
                            .height = smaller(height - blurred, together)},
                           window, edgeMean);
        return ring.data() + static_cast<Distance>(y % ringSize) * width;
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

/// The window of the one-directional filters and the reciprocals of the counts at its edges.
struct ReciprocalBlur {
    static constexpr int largestSize = 255;

    SlidingWindow window;
    q_ulong reciprocals[largestSize + 1];

    explicit ReciprocalBlur(int blurSize) : window{blurSize / 2, (blurSize + 1) / 2} {
        for (int count = 1; count < window.size(); ++count)
            reciprocals[count] = 65536 / static_cast<q_ulong>(count);
    }

    auto edgeMean() const {
        return [this](int count) {
            return [reciprocal = reciprocals[count]](const auto &sums) { return sums.times(reciprocal); };
        };
    }
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
    // At the edges the mean is a true division, which the reciprocal of the middle does not always reach.
    const auto edgeMean = [](int count) {
        return [divisor = static_cast<q_ulong>(count)](const auto &sums) { return sums.dividedBy(divisor); };
    };
    const SlidingWindow window = {radius, radius};
    if (window.size() <= largestAbreast &&
        blurInPlace<ColourSums, widestBytes>(first, pitch, width, height, window, edgeMean))
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
