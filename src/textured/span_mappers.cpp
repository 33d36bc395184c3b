#include "span_mappers.h"

#include "base/channels.h"
#include "base/extent.h"
#include "base/sampling.h"
#include "base/surface.h"
#include "base/z_plane.h"
#include "q_Mur/textured.h"
#include "walks/turned.h"

namespace {

using namespace qmur;

enum class Sampling { nearest, filtered };
enum class Light { none, flat, interpolated };
enum class Depth { untested, tested, testedBehindNearLimit };
enum class Key { none, zero };
enum class Red { byte, upperHalf };

/// What a mapper does. The fraction bits are those of all values that it walks.
struct Mapping {
    int fractionBits;
    Sampling sampling;
    Light light;
    Depth depth;
    Key key = Key::none;
    Red red = Red::byte;
    bool hasShortLight = fractionBits >= 16; ///< whether a multiplier has no more than 16 bits, as walked
};

// The fraction bits differ from mapper to mapper, and with them the range of coordinates.
constexpr Mapping olderLinearHPE = {16, Sampling::filtered, Light::interpolated, Depth::tested};
constexpr Mapping olderLinearHPEKeySrc = {.fractionBits = 16,
                                          .sampling = Sampling::filtered,
                                          .light = Light::interpolated,
                                          .depth = Depth::tested,
                                          .key = Key::zero};
constexpr Mapping olderNearHPE = {18, Sampling::nearest, Light::interpolated, Depth::tested};
constexpr Mapping olderLinearNoHPE = {18, Sampling::filtered, Light::flat, Depth::untested};
constexpr Mapping olderNearNoHPE = {18, Sampling::nearest, Light::flat, Depth::untested};
constexpr Mapping olderNearNoLightNoHPE = {18, Sampling::nearest, Light::none, Depth::untested};
constexpr Mapping pipelineLinearHPE = {14, Sampling::filtered, Light::interpolated, Depth::testedBehindNearLimit};
// Meant: neither the near limit nor the 14 bits of its sibling.
constexpr Mapping pipelineLinearHPEKeySrc = olderLinearHPEKeySrc;
// Meant: red is the upper half of the texel, so that a top byte runs it full.
constexpr Mapping pipelineNearHPE = {.fractionBits = 12,
                                     .sampling = Sampling::nearest,
                                     .light = Light::interpolated,
                                     .depth = Depth::testedBehindNearLimit,
                                     .red = Red::upperHalf};

/// A column with its depth and, side by side, u, v, the multiplier and the highlight.
struct WalkedColumn {
    int x;
    int z;
    Numbers<4> values;

    template <class Operation, class... Columns>
    static WalkedColumn each(Operation operation, const Columns &...c) {
        return {operation(c.x...), operation(c.z...), operation(c.values...)};
    }
};

/// The mapping for bands whose multipliers need no more than 16 bits.
constexpr Mapping withShortLight(Mapping mapping) {
    mapping.hasShortLight = true;
    return mapping;
}

/// Channels of a byte times a multiplier.
template <Mapping mapping>
Numbers<4> multiplied(Numbers<4> channels, Numbers<4> mul) {
    if constexpr (mapping.light == Light::interpolated && mapping.hasShortLight)
        return pairSums(as<std::uint16_t>(channels), as<std::uint16_t>(mul));
    else
        return channels * mul;
}

/// A filtered colour, lit with signed products.
template <Mapping mapping>
q_ulong litColour(ChannelSums colour, Numbers<4> mul, Numbers<4> add) {
    return packedPixel(shiftedSigned(multiplied<mapping>(colour.numbers(), mul), 8) + add);
}

/// A texel, lit with unsigned products: a negative multiplier gives full channels. Green is multiplied in its place,
/// where 24 bits are left for the product.
template <Mapping mapping>
q_ulong litTexel(q_ulong texel, Numbers<4> mul, Numbers<4> add) {
    Numbers<4> channels = channelNumbers(texel);
    if constexpr (mapping.red == Red::upperHalf)
        channels = withLane<2>(channels, std::uint32_t{upperHalfOf(texel)});
    return packedPixel(((multiplied<mapping>(channels, mul) & Numbers<4>::of(~0U, 0xFFFFFF, ~0U, 0)) >> 8) + add);
}

/// What the pixels of a call share.
struct Scene {
    const q_ulong *tex;
    Distance texPitch;
    Numbers<4> flatMul;
    Numbers<4> flatAdd;
    int nearLimit;
};

/// Draws a pixel, or leaves it out: it keeps its colour and its depth.
template <Mapping mapping>
void drawPixel(q_ulong &pixel, DepthEntry *entry, const WalkedColumn &column, const Scene &scene) {
    constexpr int fractionBits = mapping.fractionBits;
    const int depth = column.z >> fractionBits;
    if constexpr (mapping.depth == Depth::testedBehindNearLimit) {
        if (depth <= scene.nearLimit)
            return;
    }
    if constexpr (mapping.depth != Depth::untested) {
        if (depth >= *entry)
            return;
    }

    const Numbers<4> whole = shiftedSigned(column.values, fractionBits);
    const auto u = static_cast<int>(whole[0]);
    const auto v = static_cast<int>(whole[1]);
    const Numbers<4> mul = mapping.light == Light::flat ? scene.flatMul : broadcast<2>(whole);
    const Numbers<4> add = mapping.light == Light::flat ? scene.flatAdd : broadcast<3>(whole);
    if constexpr (mapping.sampling == Sampling::filtered) {
        const q_ulong *const upper = pixelAt(scene.tex, scene.texPitch, u >> 4, v >> 4);
        const q_ulong *const lower = upper + scene.texPitch;
        if constexpr (mapping.key == Key::zero) {
            if ((upper[0] | upper[1] | lower[0] | lower[1]) == 0)
                return;
        }
        const ChannelSums sums = fourTaps(upper, lower, static_cast<q_ulong>(u & 15), static_cast<q_ulong>(v & 15));
        pixel = litColour<mapping>(sums, mul, add);
    } else {
        const q_ulong texel = *pixelAt(scene.tex, scene.texPitch, u, v);
        pixel = mapping.light == Light::none ? texel : litTexel<mapping>(texel, mul, add);
    }
    if constexpr (mapping.depth != Depth::untested)
        *entry = static_cast<short>(depth);
}

/// Whether several pixels of a mapping are drawn at once. Four of them would save less than they cost to set up.
constexpr bool drawsGroups(const Mapping &mapping) {
    return filteredCount > 4 && mapping.sampling == Sampling::filtered && mapping.light != Light::none &&
           mapping.key == Key::none;
}

using Several = Numbers<filteredCount>;

/// Columns side by side, each of their numbers in lanes of its own.
struct WalkedGroup {
    Several z;
    Several u;
    Several v;
    Several mul;
    Several add;

    template <class LanesOf>
    static WalkedGroup of(const WalkedColumn &column, LanesOf lanesOf) {
        const Numbers<4> values = column.values;
        return {lanesOf(static_cast<std::uint32_t>(column.z)), lanesOf(values[0]), lanesOf(values[1]),
                lanesOf(values[2]), lanesOf(values[3])};
    }
    WalkedGroup operator+(const WalkedGroup &by) const {
        return {z + by.z, u + by.u, v + by.v, mul + by.mul, add + by.add};
    }
};

/// The lit colours of several pixels, of which none that is told by `mul` and `add` needs more than 15 bits. False if
/// a channel is negative: it would spill over those above it.
template <int count>
bool lightSeveral(Numbers<count> &colours, Numbers<count> mul, Numbers<count> add) {
    const auto inWords = [](Numbers<count> numbers) { return (numbers & Numbers<count>::all(0xFFFF)) | numbers << 16; };
    // The products lie 8 bits higher than they are wanted, where their upper halves are what is.
    const Numbers<count> factors = inWords(mul << 1);
    const Numbers<count> summands = inWords(add);
    const auto lit = [](auto channels, Numbers<count> factor, Numbers<count> summand) {
        return highSignedProduct(channels << 7, as<std::uint16_t>(factor)) + as<std::uint16_t>(summand);
    };
    const auto bytes = as<std::uint8_t>(colours);
    const auto low = lit(widenedLow(bytes), doubledLow(factors), doubledLow(summands));
    const auto high = lit(widenedHigh(bytes), doubledHigh(factors), doubledHigh(summands));
    colours = as<std::uint32_t>(narrowed(low, high)) & Numbers<count>::all(0xFFFFFF);
    // The top byte's words stand in the upper halves of the odd lanes.
    const Numbers<count> signs = Numbers<count>::all(0x80008000) ^ Numbers<count>::counted() << 31;
    return lanesBelow(Numbers<count>::all(0), (as<std::uint32_t>(low | high) & signs) >> 1) == 0;
}

/// Draws a row of `filteredCount` pixels or more in groups. The last one ends with the row, so that some of its pixels
/// are drawn twice: as nothing that is drawn is read, and no depth is nearer than itself, that shows nowhere.
template <Mapping mapping>
void drawGroups(q_ulong *dst, DepthEntry *depths, Span pixels, const Running<WalkedColumn> &walk, const Scene &scene) {
    constexpr int fractionBits = mapping.fractionBits;
    constexpr unsigned all = (1U << filteredCount) - 1;
    const auto constant = [](std::uint32_t number) { return Several::all(number); };
    const auto rising = [](std::uint32_t step) { return timesIndex(Several::all(step)); };
    const WalkedGroup offsets = WalkedGroup::of(walk.step, rising);
    const WalkedGroup step = WalkedGroup::of(walk.step * filteredCount, constant);
    WalkedGroup group = WalkedGroup::of(walk.value, constant) + offsets;
    const TurnedSource<fractionBits + 4, 1> source = {scene.tex, scene.texPitch};
    for (int x = pixels.begin;;) {
        unsigned drawn = all;
        const Several z = shiftedSigned(group.z, fractionBits);
        if constexpr (mapping.depth != Depth::untested) {
            Several found;
            loadSignedWhere(Several::Set::all(), depths + x, found);
            drawn = lanesBelow(z, found);
        }
        if constexpr (mapping.depth == Depth::testedBehindNearLimit)
            drawn &= lanesBelow(Several::all(static_cast<std::uint32_t>(scene.nearLimit)), z);
        const auto drawAll = [&] {
            Several colours = filteredTurned(source, group.u, group.v);
            const bool isFlat = mapping.light == Light::flat;
            if (!lightSeveral(colours, isFlat ? Several::all(scene.flatMul[0]) : shiftedSigned(group.mul, fractionBits),
                              isFlat ? Several::all(scene.flatAdd[0]) : shiftedSigned(group.add, fractionBits)))
                return false;
            colours.store(dst + x);
            if constexpr (mapping.depth != Depth::untested)
                storeLowWhere(Several::Set::all(), z, z, depths + x);
            return true;
        };
        // Texels of pixels that are left out may lie in no memory.
        if (drawn != 0 && !(drawn == all && drawAll()))
            for (int lane = 0; lane < filteredCount; ++lane)
                drawPixel<mapping>(dst[x + lane], depths ? depths + x + lane : nullptr,
                                   walk.value + walk.step * (x + lane - pixels.begin), scene);
        const int left = pixels.end - x - filteredCount;
        if (left >= filteredCount) {
            x += filteredCount;
            group = group + step;
        } else if (left > 0) {
            x += left;
            group = WalkedGroup::of(walk.value + walk.step * (x - pixels.begin), constant) + offsets;
        } else {
            break;
        }
    }
}

/// Draws the pixels of a row.
template <Mapping mapping>
void drawRow(q_ulong *dst, DepthEntry *depths, Span pixels, Running<WalkedColumn> walk, Scene scene) {
    for (int x = pixels.begin; x < pixels.end; ++x, walk.advance())
        drawPixel<mapping>(dst[x], mapping.depth == Depth::untested ? nullptr : depths + x, walk.value, scene);
}

/// The one walk of all mappers. What a mapping does not use stands still at 0, and the compiler leaves it out.
template <Mapping mapping, class Data>
void mapBand(Data *data, q_ulong *dst, q_ulong *tex, tagRECT *clip, q_ulong dstPitch, q_ulong texPitch, int uL0,
             int uL1, int uR0, int uR1, int vL0, int vL1, int vR0, int vR1, int xL0, int xL1, int xR0, int xR1, int yL0,
             int yL1, int yR0, int yR1, int addL0, int addL1, int addR0, int addR1, int mulL0, int mulL1, int mulR0,
             int mulR1, int zL0, int zL1, int zR0, int zR1) {
    constexpr bool testsDepth = mapping.depth != Depth::untested;
    constexpr bool walksLight = mapping.light == Light::interpolated;

    const auto corner = [=](int x, int y, int u, int v, int z, int add, int mul) -> Corner<WalkedColumn> {
        return {y, {x, testsDepth ? z : 0, Numbers<4>::of(u, v, walksLight ? mul : 0, walksLight ? add : 0)}};
    };
    Scene scene = {.tex = tex,
                   .texPitch = asDistance(texPitch),
                   .flatMul = Numbers<4>::all(static_cast<unsigned>(mulL0)),
                   .flatAdd = Numbers<4>::all(static_cast<unsigned>(addL0)),
                   .nearLimit = 0};
    if constexpr (mapping.depth == Depth::testedBehindNearLimit)
        scene.nearLimit = data->nearLimit;
    const Distance step = asDistance(dstPitch);
    DepthEntry *const depths = testsDepth ? data->zBuffer : nullptr;

    // Where nothing wraps along the edges, what is walked stays between the corners.
    constexpr bool hasOneWidth = !walksLight || mapping.hasShortLight || mapping.red == Red::upperHalf;
    constexpr Mapping shortened = hasOneWidth ? mapping : withShortLight(mapping);
    const auto allWithin = [](int limit, auto... numbers) {
        return ((static_cast<unsigned>(wrapAdd(numbers, limit)) < 2U * static_cast<unsigned>(limit)) && ...);
    };
    const bool hasShortLight = !hasOneWidth && allWithin(1 << (29 - mapping.fractionBits), xL0, xL1, xR0, xR1) &&
                               allWithin(1 << 29, yL0, yL1, yR0, yR1) && allWithin(1 << 14, mulL0, mulL1, mulR0, mulR1);

    using Stepped = SteppedEdge<mapping.fractionBits, WalkedColumn>;
    const Stepped left(Edge<WalkedColumn>{corner(xL0, yL0, uL0, vL0, zL0, addL0, mulL0),
                                          corner(xL1, yL1, uL1, vL1, zL1, addL1, mulL1)});
    const Stepped right(Edge<WalkedColumn>{corner(xR0, yR0, uR0, vR0, zR0, addR0, mulR0),
                                           corner(xR1, yR1, uR1, vR1, zR1, addR1, mulR1)});
    // Where no value wraps either, the texels that are seen lie between those of the corners.
    bool isGrouped = false;
    if constexpr (drawsGroups(mapping)) {
        constexpr int mostLight = smaller(1 << 14, 1 << (30 - mapping.fractionBits));
        const Window window = windowOf(*clip);
        const int widest = larger(wrapSubtract(xR0, xL0), wrapSubtract(xR1, xL1));
        if (widest >= filteredCount && !window.empty() &&
            allWithin(1 << (29 - mapping.fractionBits), xL0, xL1, xR0, xR1) && allWithin(1 << 29, yL0, yL1, yR0, yR1) &&
            allWithin(1 << (30 - mapping.fractionBits), uL0, uL1, uR0, uR1, vL0, vL1, vR0, vR1) &&
            allWithin(mostLight, mulL0, mulL1, mulR0, mulR1, addL0, addL1, addR0, addR1) &&
            allWithin(0x7FFF, static_cast<int>(scene.texPitch))) {
            const auto seen = [](int a, int b, int c, int d) {
                return Span{smaller(smaller(a, b), smaller(c, d)) >> 4, (larger(larger(a, b), larger(c, d)) >> 4) + 2};
            };
            const Extent texels =
                extentOf(scene.tex, scene.texPitch, {seen(uL0, uL1, uR0, uR1), seen(vL0, vL1, vR0, vR1)});
            const Extent pixels = extentOf(dst, step, window);
            isGrouped = pixels.isApartFrom(texels);
            if constexpr (testsDepth) {
                const Extent entries = extentOf(data->zBuffer, step, window);
                isGrouped = isGrouped && entries.isApartFrom(pixels) && entries.isApartFrom(texels);
            }
        }
    }
    const auto drawColumns = [=](int y, Span columns, const Running<WalkedColumn> &walk) {
        DepthEntry *const depthRow = testsDepth ? depths + y * step : nullptr;
        if constexpr (drawsGroups(mapping)) {
            if (isGrouped && columns.length() >= filteredCount)
                return drawGroups<shortened>(dst + y * step, depthRow, columns, walk, scene);
        }
        if (hasShortLight)
            drawRow<shortened>(dst + y * step, depthRow, columns, walk, scene);
        else
            drawRow<mapping>(dst + y * step, depthRow, columns, walk, scene);
    };
    forEachSteppedRow<mapping.fractionBits>(left, right, windowOf(*clip), drawColumns, [](int, int) {});
}

} // namespace

const QM3DSpanMapper qmur::mapLinearHPE = mapBand<olderLinearHPE>;
const QM3DSpanMapper qmur::mapLinearHPEKeySrc = mapBand<olderLinearHPEKeySrc>;
const QM3DSpanMapper qmur::mapNearHPE = mapBand<olderNearHPE>;
const QM3DSpanMapper qmur::mapLinearNoHPE = mapBand<olderLinearNoHPE>;
const QM3DSpanMapper qmur::mapNearNoHPE = mapBand<olderNearNoHPE>;
const QM3DSpanMapper qmur::mapNearNoLightNoHPE = mapBand<olderNearNoLightNoHPE>;

void VKD_i3D_Mapping_Linear_HPE(_PRIVATE_QMGL_DATA *data, q_ulong *dst, q_ulong *tex, tagRECT *clip, q_ulong dstPitch,
                                q_ulong texPitch, int uL0, int uL1, int uR0, int uR1, int vL0, int vL1, int vR0,
                                int vR1, int xL0, int xL1, int xR0, int xR1, int yL0, int yL1, int yR0, int yR1,
                                int addL0, int addL1, int addR0, int addR1, int mulL0, int mulL1, int mulR0, int mulR1,
                                int zL0, int zL1, int zR0, int zR1) {
    mapBand<pipelineLinearHPE>(data, dst, tex, clip, dstPitch, texPitch, uL0, uL1, uR0, uR1, vL0, vL1, vR0, vR1, xL0,
                               xL1, xR0, xR1, yL0, yL1, yR0, yR1, addL0, addL1, addR0, addR1, mulL0, mulL1, mulR0,
                               mulR1, zL0, zL1, zR0, zR1);
}

void VKD_i3D_Mapping_Linear_HPE_KeySrc(_PRIVATE_QMGL_DATA *data, q_ulong *dst, q_ulong *tex, tagRECT *clip,
                                       q_ulong dstPitch, q_ulong texPitch, int uL0, int uL1, int uR0, int uR1, int vL0,
                                       int vL1, int vR0, int vR1, int xL0, int xL1, int xR0, int xR1, int yL0, int yL1,
                                       int yR0, int yR1, int addL0, int addL1, int addR0, int addR1, int mulL0,
                                       int mulL1, int mulR0, int mulR1, int zL0, int zL1, int zR0, int zR1) {
    mapBand<pipelineLinearHPEKeySrc>(data, dst, tex, clip, dstPitch, texPitch, uL0, uL1, uR0, uR1, vL0, vL1, vR0, vR1,
                                     xL0, xL1, xR0, xR1, yL0, yL1, yR0, yR1, addL0, addL1, addR0, addR1, mulL0, mulL1,
                                     mulR0, mulR1, zL0, zL1, zR0, zR1);
}

void VKD_i3D_Mapping_Near_HPE(_PRIVATE_QMGL_DATA *data, q_ulong *dst, q_ulong *tex, tagRECT *clip, q_ulong dstPitch,
                              q_ulong texPitch, int uL0, int uL1, int uR0, int uR1, int vL0, int vL1, int vR0, int vR1,
                              int xL0, int xL1, int xR0, int xR1, int yL0, int yL1, int yR0, int yR1, int addL0,
                              int addL1, int addR0, int addR1, int mulL0, int mulL1, int mulR0, int mulR1, int zL0,
                              int zL1, int zR0, int zR1) {
    mapBand<pipelineNearHPE>(data, dst, tex, clip, dstPitch, texPitch, uL0, uL1, uR0, uR1, vL0, vL1, vR0, vR1, xL0, xL1,
                             xR0, xR1, yL0, yL1, yR0, yR1, addL0, addL1, addR0, addR1, mulL0, mulL1, mulR0, mulR1, zL0,
                             zL1, zR0, zR1);
}
