#include "base/extent.h"
#include "base/lanes.h"
#include "base/pixel.h"
#include "base/wide.h"
#include "q_Mur/filter.h"
#include "walks/stretch.h"

#include <cmath>
#include <cstring>

namespace {

using namespace qmur;

/// (low * (4096 - t) + high * t) / 4096, truncated, in each channel, for t from 0 to 4096.
/// Meant: red is masked together with what a top byte leaves beside it, which disturbs red.
constexpr q_ulong mix4096(q_ulong low, q_ulong high, q_ulong t) {
    const q_ulong u = 4096 - t;
    const q_ulong red = (low >> 12 & 0xFFFF0) * u + (high >> 12 & 0xFFFF0) * t;
    const q_ulong green = greenOf(low) * u + greenOf(high) * t;
    const q_ulong blue = blueOf(low) * u + blueOf(high) * t;
    return (red & redMask) | ((green & 0xFF000) | blue >> 8) >> 4;
}

/// A line through `through` with its slope in 1/32768 of the other axis, and the strip around it.
struct Strip {
    int slope;
    int band; ///< half the strip, measured along the inner walk
    int ramp; ///< growth of the mix along the inner walk, in 1/4096 of its steps

    /// Where the strip starts, on the line `distance` away from its fixed point.
    int startAt(int distance, int fixedPoint) const {
        return wrapAdd(wrapSubtract(wrapMultiply(distance, slope) >> 15, band), fixedPoint);
    }
};

/// The part within `clip` of a stretch whose last pixel belongs to it. The clip must not be empty.
constexpr Span includingLast(Span stretch, Span clip) {
    return {larger(stretch.begin, clip.begin), smaller(stretch.end, clip.end - 1) + 1};
}

/// Mixes `count` pixels, `stride` apart, with a mix that starts at `value` and grows by the strip's ramp.
void mixRun(q_ulong *out, const q_ulong *low, const q_ulong *high, Distance stride, int count, int value, int ramp) {
    for (; count > 0; --count, out += stride, low += stride, high += stride, value = wrapAdd(value, ramp))
        *out = mix4096(*low, *high, static_cast<q_ulong>(value / 4096));
}

/// The pictures of a call.
struct Pictures {
    q_ulong *out;
    const q_ulong *low;
    const q_ulong *high;
    Distance pitch;

    /// Whether the pixels of a window may be mixed in any order, for none of them is read after it was written.
    bool leaveOrderOpen(const Window &window) const {
        const Extent written = extentOf(out, pitch, window);
        const auto keepsClear = [&](const q_ulong *picture) {
            return picture == out || written.isApartFrom(extentOf(picture, pitch, window));
        };
        return keepsPixelsApart(pitch, window.columns.length()) && keepsClear(low) && keepsClear(high);
    }
};

/// Mixes a strip along columns row by row, as it lies in memory. Says no if the strip does not lie plainly enough, or
/// if the pictures overlap so that the order of the columns shows.
bool mixByRows(const Pictures &pictures, const Strip &strip, tagPOINT fixedPoint, Span columns, Span clipRows) {
    const auto [out, low, high, pitch] = pictures;
    const auto [slope, band, ramp] = strip;
    // A column starts at its position's whole part, moved by the offset.
    const int position = wrapMultiply(wrapSubtract(columns.begin, static_cast<int>(fixedPoint.x)), slope);
    const int offset = wrapSubtract(static_cast<int>(fixedPoint.y), band);
    const int count = columns.length();
    constexpr Bounds plain = {-(1 << 29), 1 << 29}; // sums of any two and a whole part stay within 32 bits
    if (columns.empty() || count < 1 || band < 1 || !plain.contain(offset) || !plain.contain(band) ||
        !staysIn32Bits(position, slope, count))
        return false;
    const int firstStart = (position >> 15) + offset;
    const int lastStart = (wrapAdd(position, wrapMultiply(count - 1, slope)) >> 15) + offset;
    const int extent = 2 * band;
    const Span rows = intersection({smaller(firstStart, lastStart), larger(firstStart, lastStart) + extent}, clipRows);
    if (rows.empty())
        return true;
    if (!pictures.leaveOrderOpen({columns, rows}))
        return false;
    for (int y = rows.begin; y < rows.end; ++y) {
        const Span inside = stretchInside(position, slope, scaledBounds(y - extent + 1, y + 1, offset, 15), {0, count});
        const Distance row = y * pitch + columns.begin;
        int here = wrapAdd(position, wrapMultiply(inside.begin, slope));
        for (int x = inside.begin; x < inside.end; ++x, here = wrapAdd(here, slope)) {
            const int value = wrapMultiply(y - (here >> 15) - offset, ramp);
            out[row + x] = mix4096(low[row + x], high[row + x], static_cast<q_ulong>(value / 4096));
        }
    }
    return true;
}

/// mix4096() of several pixels whose top bytes are the same in both pictures: low + (high - low) * t / 4096, rounded
/// down, in each channel.
Numbers<widestBytes / 4> mixAbreast(Numbers<widestBytes / 4> low, Numbers<widestBytes / 4> high,
                                    Numbers<widestBytes / 4> t) {
    const auto mean = [](auto lowWords, auto highWords, auto weights) {
        return lowWords + highSignedProduct((highWords - lowWords) << 4, as<std::uint16_t>(weights));
    };
    const auto lowChannels = [](Numbers<widestBytes / 4> pixels) {
        return as<std::uint16_t>(pixels & Numbers<widestBytes / 4>::all(redBlueMask));
    };
    const auto green = [](Numbers<widestBytes / 4> pixels) {
        return as<std::uint16_t>(pixels >> 8 & Numbers<widestBytes / 4>::all(0xFF));
    };
    const auto inPairs = t | t << 16;
    const auto blueAndRed = as<std::uint32_t>(mean(lowChannels(low), lowChannels(high), inPairs));
    return blueAndRed | as<std::uint32_t>(mean(green(low), green(high), t)) << 8;
}

/// A ring in which one picture fades into another.
struct FadingRing {
    int centreX;
    int centreY;
    int outer;
    int scale;

    /// How much of the inner picture is seen at a squared distance inside the ring, in 1/4096.
    q_ulong mixAt(int square) const {
        // The double root of a 32-bit number truncates as the exact root does.
        const int distance = truncateToInt(std::sqrt(static_cast<double>(square)));
        return static_cast<q_ulong>(wrapMultiply(wrapSubtract(outer, distance), scale)) >> 15;
    }
};

/// Mixes the columns of a row that lie in the ring, a stretch at a time. The ring's radius fits 16 bits with its sign,
/// and so do all factors.
void mixRing(q_ulong *out, const q_ulong *inside, const q_ulong *outside, const FadingRing &ring, int dy,
             Span columns) {
    constexpr int stretch = 32;
    constexpr int lanes = widestBytes / 4;
    using Pixels = Numbers<lanes>;
    const auto all = [](int number) { return Pixels::all(static_cast<std::uint32_t>(number)); };
    const auto products = [](Pixels a, Pixels b) { return pairSums(as<std::uint16_t>(a), as<std::uint16_t>(b)); };
    const Pixels outer = all(ring.outer);
    const Pixels lowScale = all(ring.scale & 0x7FFF);
    const Pixels highScale = all(ring.scale >> 15);
    const Pixels rowOffset = all(dy << 16);
    for (int start = columns.begin; start < columns.end; start += stretch) {
        const int count = smaller(columns.end - start, stretch);
        alignas(widestBytes) std::int32_t squares[stretch];
        alignas(widestBytes) std::int32_t roots[stretch];
        Pixels dx = all(start - ring.centreX) + Pixels::counted();
        for (int i = 0; i < stretch; i += lanes, dx = dx + all(lanes)) {
            const Pixels offsets = (dx & Pixels::all(0xFFFF)) | rowOffset;
            products(offsets, offsets).store(squares + i);
        }
        // Never below the whole root, and at most 1 above it: a float's own is less than a hundredth off.
        for (int i = 0; i < stretch; ++i)
            roots[i] = static_cast<int>(std::sqrt(static_cast<float>(squares[i])) + 0.015625F);
        const auto mixesAt = [&](int i) {
            const Pixels root = Pixels::load(roots + i);
            const Pixels excess = shiftedSigned(Pixels::load(squares + i) - products(root, root), 31);
            const Pixels depth = outer - root - excess;
            return (products(depth, lowScale) >> 15) + products(depth, highScale);
        };
        q_ulong tops = 0;
        for (int i = 0; i < count; ++i)
            tops |= inside[start + i] ^ outside[start + i];
        if (topByteOf(tops) != 0) {
            alignas(widestBytes) q_ulong mixes[stretch];
            for (int i = 0; i < stretch; i += lanes)
                mixesAt(i).store(mixes + i);
            for (int i = 0; i < count; ++i)
                out[start + i] = mix4096(outside[start + i], inside[start + i], mixes[i]);
            continue;
        }
        const auto mixed = [&](Pixels low, Pixels high, int i) { return mixAbreast(low, high, mixesAt(i)); };
        const q_ulong *const low = outside + start;
        const q_ulong *const high = inside + start;
        int i = 0;
        for (; i + lanes <= count; i += lanes)
            mixed(Pixels::load(low + i), Pixels::load(high + i), i).store(out + start + i);
        if (i < count)
            mixed(Pixels::loadFirst(low + i, count - i), Pixels::loadFirst(high + i, count - i), i)
                .storeFirst(out + start + i, count - i);
    }
}

/// The largest root of a number whose square is not above it; below 0 there is none, which is -1.
int wholeRoot(int square) {
    return square < 0 ? -1 : truncateToInt(std::sqrt(static_cast<double>(square)));
}

/// Draws row by row what lies outside the ring, in it, and inside, all in its place.
void drawRing(const Pictures &pictures, const FadingRing &ring, int inner, int width, int height) {
    const auto [out, outside, inside, pitch] = pictures;
    const Span all = {0, width};
    for (int y = 0; y < height; ++y) {
        const Distance row = y * pitch;
        const auto copy = [=, to = out](const q_ulong *from, Span columns) {
            if (!columns.empty() && from != to)
                std::memcpy(to + row + columns.begin, from + row + columns.begin,
                            static_cast<std::size_t>(columns.length()) * sizeof(q_ulong));
        };
        const int dy = y - ring.centreY;
        const int outerReach = wholeRoot(ring.outer * ring.outer - 1 - dy * dy);
        const int innerReach = wholeRoot(inner * inner - dy * dy);
        // Without a reach the spans meet in the middle.
        const Span faded = intersection({ring.centreX - outerReach, ring.centreX + outerReach + 1}, all);
        const int fadedEnd = larger(faded.begin, faded.end);
        if (faded.empty()) {
            copy(outside, all);
            continue;
        }
        Span whole = intersection({ring.centreX - innerReach, ring.centreX + innerReach + 1}, faded);
        if (whole.empty())
            whole = {fadedEnd, fadedEnd};
        copy(outside, {0, faded.begin});
        mixRing(out + row, inside + row, outside + row, ring, dy, {faded.begin, whole.begin});
        copy(inside, whole);
        mixRing(out + row, inside + row, outside + row, ring, dy, {whole.end, faded.end});
        copy(outside, {faded.end, width});
    }
}

} // namespace

void Edge_Transparency(q_ulong *out, q_ulong *imageA, q_ulong *imageB, tagPOINT *p1, tagPOINT *p2, int edgeWidth,
                       int pitch, int, int, int swapImages, tagRECT *clip) {
    const int x1 = static_cast<int>(p1->x);
    const int y1 = static_cast<int>(p1->y);
    const int dx = wrapSubtract(static_cast<int>(p2->x), x1);
    const int dy = wrapSubtract(static_cast<int>(p2->y), y1);
    const Span columns = {smaller(x1, wrapAdd(x1, dx)), larger(x1, wrapAdd(x1, dx))};
    const Span rows = {smaller(y1, wrapAdd(y1, dy)), larger(y1, wrapAdd(y1, dy))};
    const int half = edgeWidth / 2;

    struct Direction {
        bool steep;
        int band;
    };
    const Direction direction = atFullWidth([=] {
        const Wide theta = arcTangent(rows.length(), columns.length());
        const bool steep = truncateToInt(theta * 57.29577791868204) > 45;
        const SineCosine unit = sineCosine(theta);
        return Direction{steep, truncateToInt(half / (steep ? unit.sine : unit.cosine))};
    });

    const int rise = direction.steep ? dx : dy;
    const int run = direction.steep ? dy : dx;
    const Span clipColumns = columnsOf(*clip);
    const Span clipRows = rowsOf(*clip);
    const int extent = wrapMultiply(2, direction.band);
    // Without a direction, a width or a clip there is no strip.
    if (run == 0 || extent == 0 || clipColumns.empty() || clipRows.empty())
        return;

    const q_ulong *const high = swapImages ? imageA : imageB;
    const q_ulong *const low = swapImages ? imageB : imageA;
    const Strip strip = {wrapDivide(rise << 15, run), direction.band, 16777216 / extent};
    const Span clipRowsButLast = {clipRows.begin, clipRows.end - 1};

    // Meant: either walk includes its last column and leaves out its last row.
    if (direction.steep) {
        const Span walked = intersection(rows, clipRowsButLast);
        for (int y = walked.begin; y < walked.end; ++y) {
            const int start = strip.startAt(wrapSubtract(y, y1), x1);
            const Span across = includingLast({start, wrapAdd(start, extent)}, clipColumns);
            if (across.empty())
                continue;
            const Distance index = static_cast<Distance>(y) * pitch + across.begin;
            mixRun(out + index, low + index, high + index, 1, across.length(),
                   wrapMultiply(wrapSubtract(across.begin, start), strip.ramp), strip.ramp);
        }
    } else {
        const Span walked = includingLast(columns, clipColumns);
        if (mixByRows({out, low, high, pitch}, strip, *p1, walked, clipRowsButLast))
            return;
        for (int x = walked.begin; x < walked.end; ++x) {
            const int start = strip.startAt(wrapSubtract(x, x1), y1);
            const Span across = intersection({start, wrapAdd(start, extent)}, clipRowsButLast);
            if (across.empty())
                continue;
            const Distance index = static_cast<Distance>(across.begin) * pitch + x;
            mixRun(out + index, low + index, high + index, pitch, across.length(),
                   wrapMultiply(wrapSubtract(across.begin, start), strip.ramp), strip.ramp);
        }
    }
}

void Edge_Transparency_Circle(q_ulong *out, q_ulong *imageA, q_ulong *imageB, tagPOINT *centre, int radius, int band,
                              int width, int height, int pitch) {
    const int centreX = static_cast<int>(centre->x);
    const int centreY = static_cast<int>(centre->y);
    const int outer = wrapAdd(radius, band);
    const int inner = larger(wrapSubtract(radius, band), 0);
    const int outerSquare = wrapMultiply(outer, outer);
    const int innerSquare = wrapMultiply(inner, inner);
    const int bandWidth = wrapMultiply(2, band);
    if (bandWidth == 0)
        return;
    const int scale = 134217728 / bandWidth;
    const FadingRing ring = {centreX, centreY, outer, scale};
    // Where no square leaves 32 bits, what lies where is known row by row.
    constexpr Bounds plain = {-16383, 16383};
    const Pictures pictures = {out, imageB, imageA, pitch};
    if (plain.contain(centreX) && plain.contain(centreY) && plain.contain(width) && plain.contain(height) &&
        plain.contain(outer) && outer > 0 && radius >= 0 && band > 0 && width > 0 && height > 0 &&
        pictures.leaveOrderOpen(windowOf(width, height))) {
        drawRing(pictures, ring, inner, width, height);
        return;
    }
    for (int y = 0; y < height; ++y) {
        const int dy = wrapSubtract(y, centreY);
        const int dySquare = wrapMultiply(dy, dy);
        const Distance row = static_cast<Distance>(y) * pitch;
        for (int x = 0; x < width; ++x) {
            const int dx = wrapSubtract(x, centreX);
            const int square = wrapAdd(wrapMultiply(dx, dx), dySquare);
            q_ulong &d = out[row + x];
            const q_ulong a = imageA[row + x];
            const q_ulong b = imageB[row + x];
            if (square >= outerSquare) {
                d = b;
            } else if (square <= innerSquare) {
                d = a;
            } else {
                d = mix4096(b, a, ring.mixAt(square));
            }
        }
    }
}
