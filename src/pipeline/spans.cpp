#include "spans.h"

#include "base/extent.h"
#include "base/pixel.h"
#include "q_Mur/pipeline.h"

#include <bit>

namespace qmur {
namespace {

/// Shades side by side in a row, in fixed point.
template <class Lanes>
struct Shades {
    Lanes red;
    Lanes green;
    Lanes blue;
    Lanes depth;

    template <class Operation>
    Shades each(Operation operation) const {
        return {operation(red), operation(green), operation(blue), operation(depth)};
    }
    Shades advanced(const Shades &by) const {
        return {red + by.red, green + by.green, blue + by.blue, depth + by.depth};
    }
};

/// All lanes of a group, as a type of its own: what is drawn by it knows no mask.
template <class Lanes>
struct EveryLane {
    operator typename Lanes::Set() const { return Lanes::Set::all(); }
};

/// Draws the pixels of a row from `begin` on in groups while one fits before `end`, or before `accessible` where it is
/// the last. Returns where it stopped. Lanes that the last group leaves out may be written with what they hold.
///
/// `draw(index, lanes, shades)` draws a set of lanes of the group that begins at a pixel.
template <class Lanes, class Draw>
Distance drawGroups(Distance begin, Distance end, Distance accessible, const Running<ShadedColumn> &from, Draw draw) {
    constexpr int count = sizeof(Lanes) / 4;
    const auto spread = [](Numbers<4> shade) {
        return Shades<Lanes>{Lanes::all(shade[0]), Lanes::all(shade[1]), Lanes::all(shade[2]), Lanes::all(shade[3])};
    };
    const Shades<Lanes> step = spread(from.step.shade);
    Shades<Lanes> shades = spread(from.value.shade).advanced(step.each([](Lanes a) { return timesIndex(a); }));
    Distance i = begin;
    if (end - i >= count) {
        const Shades<Lanes> groupStep = step.each([](Lanes a) { return a << std::countr_zero(unsigned{count}); });
        for (; end - i >= count; i += count, shades = shades.advanced(groupStep))
            draw(i, EveryLane<Lanes>(), shades);
    }
    if (count == 1 || i == end || (!touchesSomeLanes<Lanes> && accessible - i < count))
        return i;
    draw(i, Lanes::Set::first(static_cast<int>(end - i)), shades);
    return end;
}

/// Calls `draw(index, lanes, shades)` for groups of pixels until every pixel of a band inside the clip was in one; for
/// one pixel after the other unless groups are allowed. `approach(index)` hears a while before where a row begins.
template <int fractionBits, class Draw, class Approach>
void forEachGroup(const tagRECT &clip, q_ulong pitch, const SteppedEdge<fractionBits, ShadedColumn> &left,
                  const SteppedEdge<fractionBits, ShadedColumn> &right, Draw draw, Approach approach,
                  bool allowsGroups = true) {
    const Distance rowStep = asDistance(pitch);
    const Window window = windowOf(clip);
    const auto drawRow = [=](int y, Span columns, const Running<ShadedColumn> &shade) {
        const Distance row = y * rowStep;
        const Distance begin = row + columns.begin;
        const Distance end = row + columns.end;
        Distance drawn = begin;
        Running<ShadedColumn> rest = shade;
        if (allowsGroups) {
            drawn = drawGroups<SpanPixels>(begin, end, row + window.columns.end, shade, draw);
            rest.advance(static_cast<int>(drawn - begin));
        }
        if (!touchesSomeLanes<SpanPixels> || !allowsGroups)
            drawGroups<SinglePixel>(drawn, end, end, rest, draw);
    };
    forEachSteppedRow<fractionBits>(left, right, window, drawRow,
                                    [=](int y, int column) { approach(y * rowStep + column); });
}

/// Not masked: a channel outside 0 to 255 runs into its neighbours.
template <class Lanes>
Lanes packed(const Shades<Lanes> &shades, int bits) {
    return shiftedSigned(shades.red, bits) << 16 | shiftedSigned(shades.green, bits) << 8 |
           shiftedSigned(shades.blue, bits);
}

/// Half of the pixel and half of the shade, each halved before the sum.
template <class Lanes>
Lanes halfMixed(Lanes d, const Shades<Lanes> &shades) {
    return (d >> 1 & Lanes::all(0x7F7F7F)) + packed(shades, depthFractionBits + 1);
}

/// The weighted mean of the pixel and of a shade of 15 bits, each channel with the pixel's a sum of two products.
/// `weights` are the shade's in the upper half, and the pixel's.
template <class Lanes>
Lanes blendedInPairs(Lanes d, const Shades<Lanes> &shades, std::uint32_t weights) {
    const auto sums = [weights](Lanes shade, Lanes part) {
        const Lanes pairs = (shade << (16 - depthFractionBits) & Lanes::all(0xFFFF0000)) | part;
        return as<std::uint32_t>(pairSums(as<std::uint16_t>(pairs), as<std::uint16_t>(Lanes::all(weights))));
    };
    const Lanes byte = Lanes::all(0xFF);
    // Meant: red takes the pixel's top byte along. As the factors have a sign, half of their range is added afterwards.
    const Lanes red = sums(shades.red, d >> 16 ^ Lanes::all(0x8000)) + Lanes::all((weights & 0xFFFF) << 15);
    const Lanes green = sums(shades.green, d >> 8 & byte);
    const Lanes blue = sums(shades.blue, d & byte);
    return (red << 8 & Lanes::all(0xFFFF0000)) | (green & Lanes::all(0xFFFFFF00)) | blue >> 8;
}

/// Replaces a set of lanes by `colourOf(dst pixels)`. Called, it would have all shades wait in memory.
template <class Lanes, class ColourOf>
[[gnu::always_inline]] inline void change(q_ulong *dst, typename Lanes::Set lanes, ColourOf colourOf) {
    Lanes d;
    loadWhere(lanes, dst, d);
    storeWhere(lanes, colourOf(d), d, dst);
}

/// What draws with a depth: `draw(first dst pixel, lanes, shades)` for the pixels that pass both tests. A depth that is
/// a pixel before it as well is read when that pixel has been drawn.
template <class Draw>
void drawNearest(const _PRIVATE_QMGL_DATA &data, const q_ulong *dst, const tagRECT &clip, q_ulong pitch,
                 const ShadedEdge &left, const ShadedEdge &right, Draw draw) {
    short *const zBuffer = data.zBuffer;
    const Window window = windowOf(clip);
    const Distance rowStep = asDistance(pitch);
    const bool isApart =
        !window.empty() && extentOf(dst, rowStep, window).isApartFrom(extentOf(zBuffer, rowStep, window));
    const auto nearLimit = static_cast<std::uint32_t>(data.nearLimit);
    forEachGroup<depthFractionBits>(
        clip, pitch, left, right,
        [=]<class Lanes>(Distance i, auto lanes, const Shades<Lanes> &shades) {
            const Lanes z = shiftedSigned(shades.depth, depthFractionBits);
            using Set = typename Lanes::Set;
            Lanes depths;
            loadSignedWhere(Set(lanes), zBuffer + i, depths);
            const Set nearest = lanes & Set::below(Lanes::all(nearLimit), z) & Set::below(z, depths);
            if (nearest.empty())
                return;
            draw(i, nearest, shades);
            storeLowWhere(nearest, z, depths, zBuffer + i);
        },
        [=](Distance i) {
            willWrite(zBuffer + i);
            willWrite(dst + i);
        },
        isApart);
}

} // namespace

void drawBand(const _PRIVATE_QMGL_DATA &data, q_ulong *dst, const tagRECT &clip, q_ulong pitch, const ShadedEdge &left,
              const ShadedEdge &right) {
    drawNearest(data, dst, clip, pitch, left, right,
                [dst]<class Lanes>(Distance i, auto lanes, const Shades<Lanes> &shades) {
                    change<Lanes>(dst + i, lanes, [&](Lanes) { return packed(shades, depthFractionBits); });
                });
}

void drawBand(const _PRIVATE_QMGL_DATA &data, q_ulong *dst, const tagRECT &clip, q_ulong pitch, const ShadedEdge &left,
              const ShadedEdge &right, int opacity, bool isModest) {
    if (opacity == 128) {
        forEachGroup<depthFractionBits>(
            clip, pitch, left, right,
            [dst]<class Lanes>(Distance i, auto lanes, const Shades<Lanes> &shades) {
                change<Lanes>(dst + i, lanes, [&](Lanes d) { return halfMixed(d, shades); });
            },
            [dst](Distance i) { willWrite(dst + i); });
        return;
    }
    const auto shadeWeight = static_cast<std::uint32_t>(opacity);
    const std::uint32_t dstWeight = 256 - shadeWeight;
    if (isModest && shadeWeight <= 256) {
        const std::uint32_t weights = shadeWeight << 16 | dstWeight;
        drawNearest(data, dst, clip, pitch, left, right,
                    [=]<class Lanes>(Distance i, auto lanes, const Shades<Lanes> &shades) {
                        change<Lanes>(dst + i, lanes, [&](Lanes d) { return blendedInPairs(d, shades, weights); });
                    });
        return;
    }
    drawNearest(data, dst, clip, pitch, left, right,
                [=]<class Lanes>(Distance i, auto lanes, const Shades<Lanes> &shades) {
                    const auto weighted = [shadeWeight](Lanes value) {
                        return shiftedSigned(value, depthFractionBits) * Lanes::all(shadeWeight);
                    };
                    const auto part = [dstWeight](Lanes d, int bits, std::uint32_t mask) {
                        return (d >> bits & Lanes::all(mask)) * Lanes::all(dstWeight);
                    };
                    change<Lanes>(dst + i, lanes, [&](Lanes d) {
                        // Meant: red takes the destination's top byte along.
                        const Lanes red = (weighted(shades.red) << 8) + part(d, 8, 0xFFFF00);
                        const Lanes green = weighted(shades.green) + part(d, 8, 0xFF);
                        const Lanes blue = weighted(shades.blue) + part(d, 0, 0xFF);
                        return (red & Lanes::all(0xFFFF00FF)) | (green & Lanes::all(0xFFFFFF00)) | blue >> 8;
                    });
                });
}

void mixBand(const _PRIVATE_QMGL_DATA &data, q_ulong *dst, const tagRECT &clip, q_ulong pitch, const ShadedEdge &left,
             const ShadedEdge &right) {
    const auto nearLimit = static_cast<std::uint32_t>(data.nearLimit);
    forEachGroup<depthFractionBits>(
        clip, pitch, left, right,
        [=]<class Lanes>(Distance i, auto lanes, const Shades<Lanes> &shades) {
            const typename Lanes::Set visible =
                lanes & Lanes::Set::below(Lanes::all(nearLimit), shiftedSigned(shades.depth, depthFractionBits));
            if (!visible.empty())
                change<Lanes>(dst + i, visible, [&](Lanes d) { return halfMixed(d, shades); });
        },
        [dst](Distance i) { willWrite(dst + i); });
}

void addBand(q_ulong *dst, const tagRECT &clip, q_ulong pitch, const AdditiveEdge &left, const AdditiveEdge &right) {
    forEachGroup<additiveFractionBits>(
        clip, pitch, left, right,
        [dst]<class Lanes>(Distance i, auto lanes, const Shades<Lanes> &shades) {
            // Meant: a sum below 0 reads as a large one and saturates, and red is taken with the top byte.
            const auto sum = [](Lanes value, Lanes d) {
                return cappedAt255(shiftedSigned(value, additiveFractionBits) + d);
            };
            change<Lanes>(dst + i, lanes, [&](Lanes d) {
                const Lanes byte = Lanes::all(0xFF);
                return sum(shades.red, d >> 16) << 16 | sum(shades.green, d >> 8 & byte) << 8 |
                       sum(shades.blue, d & byte);
            });
        },
        [dst](Distance i) { willWrite(dst + i); });
}

} // namespace qmur

using namespace qmur;

namespace {

template <class Stepped>
Stepped edgeBetween(const Corner<ShadedColumn> &upper, const Corner<ShadedColumn> &lower) {
    return Stepped(Edge<ShadedColumn>{upper, lower});
}

} // namespace

void VKD_3D_Render(_PRIVATE_QMGL_DATA *data, q_ulong *dst, tagRECT *clip, q_ulong pitch, int xA0, int xA1, int xB0,
                   int xB1, int yA0, int yA1, int yB0, int yB1, int rA0, int rA1, int rB0, int rB1, int gA0, int gA1,
                   int gB0, int gB1, int bA0, int bA1, int bB0, int bB1, int zA0, int zA1, int zB0, int zB1) {
    drawBand(
        *data, dst, *clip, pitch,
        edgeBetween<ShadedEdge>(shadedCorner(xA0, yA0, rA0, gA0, bA0, zA0), shadedCorner(xA1, yA1, rA1, gA1, bA1, zA1)),
        edgeBetween<ShadedEdge>(shadedCorner(xB0, yB0, rB0, gB0, bB0, zB0),
                                shadedCorner(xB1, yB1, rB1, gB1, bB1, zB1)));
}

void VKD_3D_Render(_PRIVATE_QMGL_DATA *data, q_ulong *dst, tagRECT *clip, q_ulong pitch, int xA0, int xA1, int xB0,
                   int xB1, int yA0, int yA1, int yB0, int yB1, int rA0, int rA1, int rB0, int rB1, int gA0, int gA1,
                   int gB0, int gB1, int bA0, int bA1, int bB0, int bB1, int zA0, int zA1, int zB0, int zB1,
                   int opacity) {
    const Corner<ShadedColumn> a0 = shadedCorner(xA0, yA0, rA0, gA0, bA0, zA0);
    const Corner<ShadedColumn> a1 = shadedCorner(xA1, yA1, rA1, gA1, bA1, zA1);
    const Corner<ShadedColumn> b0 = shadedCorner(xB0, yB0, rB0, gB0, bB0, zB0);
    const Corner<ShadedColumn> b1 = shadedCorner(xB1, yB1, rB1, gB1, bB1, zB1);
    drawBand(*data, dst, *clip, pitch, edgeBetween<ShadedEdge>(a0, a1), edgeBetween<ShadedEdge>(b0, b1), opacity,
             areModest(a0, a1, b0, b1));
}

void VKD_3D_Render_Alpha(_PRIVATE_QMGL_DATA *data, q_ulong *dst, tagRECT *clip, q_ulong pitch, int xA0, int xA1,
                         int xB0, int xB1, int yA0, int yA1, int yB0, int yB1, int rA0, int rA1, int rB0, int rB1,
                         int gA0, int gA1, int gB0, int gB1, int bA0, int bA1, int bB0, int bB1, int zA0, int zA1,
                         int zB0, int zB1) {
    mixBand(
        *data, dst, *clip, pitch,
        edgeBetween<ShadedEdge>(shadedCorner(xA0, yA0, rA0, gA0, bA0, zA0), shadedCorner(xA1, yA1, rA1, gA1, bA1, zA1)),
        edgeBetween<ShadedEdge>(shadedCorner(xB0, yB0, rB0, gB0, bB0, zB0),
                                shadedCorner(xB1, yB1, rB1, gB1, bB1, zB1)));
}

void VKD_3D_Render_Add(q_ulong *dst, tagRECT *clip, q_ulong pitch, int xA0, int xA1, int xB0, int xB1, int yA0, int yA1,
                       int yB0, int yB1, int rA0, int rA1, int rB0, int rB1, int gA0, int gA1, int gB0, int gB1,
                       int bA0, int bA1, int bB0, int bB1) {
    addBand(
        dst, *clip, pitch,
        edgeBetween<AdditiveEdge>(shadedCorner(xA0, yA0, rA0, gA0, bA0, 0), shadedCorner(xA1, yA1, rA1, gA1, bA1, 0)),
        edgeBetween<AdditiveEdge>(shadedCorner(xB0, yB0, rB0, gB0, bB0, 0), shadedCorner(xB1, yB1, rB1, gB1, bB1, 0)));
}
