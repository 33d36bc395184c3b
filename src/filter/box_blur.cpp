#include "base/pixel.h"
#include "base/scratch.h"
#include "base/surface.h"
#include "q_Mur/filter.h"

namespace {

using namespace qmur;

/// The sums of a window of pixels, red and green in their places in the word. Red limits the window: 257 pixels of 255
/// are the most that it holds.
struct ColourSums {
    static constexpr int channels = 3;

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

/// A window that reaches `back` pixels back and `forward` pixels forward.
struct SlidingWindow {
    int back;
    int forward;

    int size() const { return back + forward + 1; }
    q_ulong reciprocal() const { return 65536 / static_cast<q_ulong>(size()); }
};

/// Slides a window along a line of `length` pixels: it shrinks at both ends, where `Edge` takes the mean over the
/// pixels that exist; between them every sum is multiplied by one reciprocal. `line.add(x)` and `line.subtract(x)` move
/// a pixel into and out of the sums, `line.store(x, mean)` writes one. Meant: the edge at the start runs its `back`
/// steps on a line of any length.
template <class Line, class Edge>
void slide(Line &line, int length, SlidingWindow window, Edge edgeMean) {
    const auto [back, forward] = window;
    length = larger(length, 0);
    for (int x = 0; x < forward; ++x)
        line.add(x);
    for (int x = 0; x < back; ++x) {
        line.add(x + forward);
        line.store(x, edgeMean(x + forward + 1));
    }
    const auto middleMean = [reciprocal = window.reciprocal()](const auto &sums) { return sums.times(reciprocal); };
    for (int x = back; x < length - forward; ++x) {
        line.add(x + forward);
        line.store(x, middleMean);
        line.subtract(x - back);
    }
    for (int x = larger(length - forward, 0); x < length; ++x) {
        line.store(x, edgeMean(length - x + back));
        line.subtract(x - back);
    }
}

/// A row, its sums kept at hand.
template <class Sums>
struct Row {
    q_ulong *dst;
    const q_ulong *src;
    Sums sums = {};

    void add(int x) { sums.add(src[x]); }
    void subtract(int x) { sums.subtract(src[x]); }
    template <class Mean>
    void store(int x, Mean mean) {
        dst[x] = mean(sums);
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
    template <class Mean>
    void store(int y, Mean mean) {
        q_ulong *const row = dst + y * dstPitch;
        for (int x = 0; x < count; ++x) {
            Sums sums;
            sums.load(planes, x);
            row[x] = mean(sums);
        }
    }
};

/// A picture to read, one to write, and their common size.
struct Pictures {
    q_ulong *dst;
    Distance dstPitch;
    const q_ulong *src;
    Distance srcPitch;
    int width;
    int height;
};

template <class Sums, class Edge>
void blurRows(const Pictures &pictures, SlidingWindow window, Edge edgeMean) {
    for (Distance y = 0; y < pictures.height; ++y) {
        Row<Sums> row = {pictures.dst + y * pictures.dstPitch, pictures.src + y * pictures.srcPitch};
        slide(row, pictures.width, window, edgeMean);
    }
}

template <class Sums, class Edge>
void blurColumns(const Pictures &pictures, SlidingWindow window, Edge edgeMean) {
    for (int x = 0; x < pictures.width; x += Columns<Sums>::most) {
        Columns<Sums> columns = {.dst = pictures.dst + x,
                                 .dstPitch = pictures.dstPitch,
                                 .src = pictures.src + x,
                                 .srcPitch = pictures.srcPitch,
                                 .count = smaller(pictures.width - x, Columns<Sums>::most)};
        slide(columns, pictures.height, window, edgeMean);
    }
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
    const Scratch<q_ulong> blurred(static_cast<long long>(width) * height);
    if (!blurred)
        return;
    q_ulong *const first = pixelAt(surface, pitch, rect->left, rect->top);
    // At the edges the mean is a true division, which the reciprocal of the middle does not always reach.
    const auto edgeMean = [](int count) {
        return [divisor = static_cast<q_ulong>(count)](const ColourSums &sums) { return sums.dividedBy(divisor); };
    };
    const SlidingWindow window = {radius, radius};
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
