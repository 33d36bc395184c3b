#include "base/channels.h"
#include "base/extent.h"
#include "base/sampling.h"
#include "base/wide.h"
#include "q_Mur/warp.h"
#include "walks/stretch.h"

#include <type_traits>

namespace {

using namespace qmur;

/// Source positions are measured from the source's centre with 21 fraction bits.
constexpr int fractionBits = 21;

/// The destination pixels to walk, and the source position as a function of them: along a row u grows by `stepU` and v
/// falls by `stepV`.
struct Rotation {
    Span columns;
    Span rows;
    int centreY;
    int inverseScale;
    int sine;   ///< 14 fraction bits
    int cosine; ///< 14 fraction bits
    int rowStartU;
    int rowStartV;
    int stepU;
    int stepV;
};

/// The walk from `low` up to `high` clipped on one axis. Meant: a low bound beyond the far edge is set one pixel
/// inside, where the source test decides.
Span clippedWalk(int low, int high, Span clip) {
    const auto raised = [clip](int bound) { return larger(bound, clip.begin); };
    const int first = raised(low);
    const int last = raised(high);
    return {first > clip.end ? wrapSubtract(clip.end, 1) : first, smaller(last, clip.end)};
}

Rotation rotationOf(const tagRECT &clipRect, const tagRECT &srcRect, int centreX, int centreY, float angle,
                    float scale) {
    const int width = widthOf(srcRect);
    const int height = heightOf(srcRect);
    const Span clipColumns = columnsOf(clipRect);
    const Span clipRows = rowsOf(clipRect);
    return atFullWidth([=] {
        Rotation rotation;
        const int squares = wrapAdd(wrapMultiply(width, width), wrapMultiply(height, height));
        const int radius = truncateToInt(squareRoot(squares) * scale * 0.5);
        const SineCosine unit = sineCosine(angle);
        rotation.columns = clippedWalk(wrapSubtract(centreX, radius), wrapAdd(centreX, radius), clipColumns);
        rotation.rows = clippedWalk(wrapSubtract(centreY, radius), wrapAdd(centreY, radius), clipRows);
        rotation.centreY = centreY;
        rotation.inverseScale = truncateToInt(32768 / static_cast<Wide>(scale));
        rotation.sine = truncateToInt(unit.sine * 16384);
        rotation.cosine = truncateToInt(unit.cosine * 16384);

        // The positions at the two ends of a row; the steps are what lies between them.
        const int left = wrapMultiply(wrapSubtract(rotation.columns.begin, centreX), rotation.inverseScale);
        const int right = wrapMultiply(wrapSubtract(rotation.columns.end, centreX), rotation.inverseScale);
        const Wide cosine = unit.cosine * 64;
        const Wide sine = unit.sine * 64;
        const int leftU = truncateToInt(left * cosine);
        const int rightU = truncateToInt(right * cosine);
        const int leftV = truncateToInt(left * sine);
        const int rightV = truncateToInt(right * sine);
        const int divisor = larger(wrapSubtract(rotation.columns.end, rotation.columns.begin), 1);
        rotation.rowStartU = leftU;
        rotation.rowStartV = leftV;
        rotation.stepU = wrapDivide(wrapSubtract(rightU, leftU), divisor);
        rotation.stepV = wrapDivide(wrapSubtract(rightV, leftV), divisor);
        return rotation;
    });
}

/// As many pixels as are turned at once, where the target does so faster than one by one: the widest register loses.
constexpr int groupSize = sizeof(Pixels) / sizeof(std::uint32_t);
using Group = Numbers<groupSize>;

/// Walks the destination wherever the source position lies within the bounds. Calls `pixel(dst pixel, u, v)`; if pixels
/// may be drawn in any order, `group(first dst pixel, u, v)` on lanes as far as there are as many in a row.
template <class Pixel, class OfGroup>
void forEachRotated(q_ulong *dst, Distance dstPitch, const Rotation &rotation, Bounds boundsU, Bounds boundsV,
                    bool isFreeOfOrder, Pixel pixel, OfGroup group) {
    const auto [columns, rows, centreY, inverseScale, sine, cosine, rowStartU, rowStartV, stepU, stepV] = rotation;
    const int width = columns.length();
    const bool grouped = sumsPairs && isFreeOfOrder && !boundsU.empty() && !boundsV.empty() && width >= groupSize;
    const auto lanesAt = [](int start, int step) {
        return Group::all(static_cast<q_ulong>(start)) + Group::counted() * Group::all(static_cast<q_ulong>(step));
    };
    for (int y = rows.begin; y < rows.end; ++y) {
        const int rowTerm = wrapSubtract(wrapMultiply(y, inverseScale), wrapMultiply(centreY, inverseScale)) >> 8;
        const Track u = {wrapAdd(wrapMultiply(rowTerm, sine), rowStartU), stepU, boundsU};
        const Track v = {wrapSubtract(wrapMultiply(rowTerm, cosine), rowStartV), wrapSubtract(0, stepV), boundsV};
        q_ulong *const row = pixelAt(dst, dstPitch, columns.begin, y);
        if (grouped && staysIn32Bits(u.start, u.step, width) && staysIn32Bits(v.start, v.step, width)) {
            Span inside = stretchInside(u.start, u.step, boundsU, {0, width});
            inside = stretchInside(v.start, v.step, boundsV, inside);
            const auto at = [](const Track &track, int x) { return wrapAdd(track.start, wrapMultiply(track.step, x)); };
            int x = inside.begin;
            const auto growthOf = [](const Track &track) {
                return Group::all(static_cast<q_ulong>(wrapMultiply(track.step, groupSize)));
            };
            const Group growthU = growthOf(u);
            const Group growthV = growthOf(v);
            Group uHere = lanesAt(at(u, x), u.step);
            Group vHere = lanesAt(at(v, x), v.step);
            for (; x <= inside.end - groupSize; x += groupSize) {
                group(row + x, uHere, vHere);
                uHere = uHere + growthU;
                vHere = vHere + growthV;
            }
            for (; x < inside.end; ++x)
                pixel(row[x], at(u, x), at(v, x));
        } else {
            forEachInside(u, v, width, [row, pixel](int x, int uHere, int vHere) { pixel(row[x], uHere, vHere); });
        }
    }
}

/// Where in memory the pixels of a group lie, as distances from the source's centre.
struct GroupPlaces {
    std::int32_t distances[groupSize];

    GroupPlaces(Group u, Group v, Distance srcPitch) {
        const Group rows = shiftedSigned(v, fractionBits) * Group::all(static_cast<q_ulong>(srcPitch));
        (rows + shiftedSigned(u, fractionBits)).store(distances);
    }
};

/// The filtered colours of a group.
Group filteredGroup(const q_ulong *centre, Distance srcPitch, Group u, Group v) {
    const GroupPlaces places(u, v, srcPitch);
    const auto fractionOf = [](Group position) { return position >> (fractionBits - 4) & Group::all(15); };
    const auto inWords = [](Group numbers) { return numbers | numbers << 16; };
    const Group fx = fractionOf(u);
    const Group pairs = inWords(Group::all(16) - fx + (fx << 8));
    const MixWeights<groupSize> across = {as<std::uint8_t>(doubledLow(pairs)), as<std::uint8_t>(doubledHigh(pairs))};
    const auto [upperLeft, upperRight] = loadNeighbours<groupSize>(centre, places.distances);
    const auto [lowerLeft, lowerRight] = loadNeighbours<groupSize>(centre + srcPitch, places.distances);
    const PixelWords<groupSize> upper = mixedPixels(upperLeft, upperRight, across);
    const PixelWords<groupSize> lower = mixedPixels(lowerLeft, lowerRight, across);
    const Group down = inWords(fractionOf(v));
    const auto mixed = [](auto upperWords, auto lowerWords, Group weights) {
        const auto weight = as<std::uint16_t>(weights);
        return upperWords * (decltype(weight)::all(16) - weight) + lowerWords * weight;
    };
    return pixelsOf(PixelWords<groupSize>{mixed(upper.low, lower.low, doubledLow(down)),
                                          mixed(upper.high, lower.high, doubledHigh(down))});
}

/// The arguments that all rotators share.
struct Scene {
    q_ulong *dst;
    int dstPitch;
    const q_ulong *src;
    int srcPitch;
    const tagRECT &clipRect;
    const tagRECT &srcRect;
    int centreX;
    int centreY;
    float angle;
    float scale;

    bool empty() const { return scale == 0.0F || windowOf(clipRect).empty(); }
    /// Whether the source lies apart from all that is drawn, and distances within it are small numbers.
    bool isFreeOfOrder(const Rotation &rotation) const {
        const Window drawn = {rotation.columns, rotation.rows};
        const Window seen = windowOf(srcRect);
        constexpr int most = 1 << 20;
        const bool isSmall = srcPitch > -most && srcPitch < most && srcRect.left > -most && srcRect.right < most &&
                             srcRect.top > -most && srcRect.bottom < most;
        return isSmall && !drawn.empty() && !seen.empty() && keepsPixelsApart(dstPitch, drawn.columns.length()) &&
               extentOf(dst, dstPitch, drawn).isApartFrom(extentOf(src, srcPitch, seen));
    }
    int srcCentreX() const { return wrapAdd(static_cast<int>(srcRect.left), static_cast<int>(srcRect.right)) >> 1; }
    int srcCentreY() const { return wrapAdd(static_cast<int>(srcRect.top), static_cast<int>(srcRect.bottom)) >> 1; }
};

struct CopyPixels {
    template <int count>
    Numbers<count> operator()(Numbers<count>, Numbers<count> s) const {
        return s;
    }
};

/// Calls `store(dst pixel, src pixel)` with the nearest source pixel, or stores `operation(dst pixels, src pixels)`,
/// which works on lanes.
template <class Store, class Operation>
void rotateNearest(const Scene &scene, Store store, Operation operation) {
    const tagRECT &srcRect = scene.srcRect;
    if (scene.empty() || windowOf(srcRect).empty())
        return;
    const Distance srcPitch = scene.srcPitch;
    const int centreX = scene.srcCentreX();
    const int centreY = scene.srcCentreY();
    const q_ulong *const centre = pixelAt(scene.src, srcPitch, centreX, centreY);
    const Rotation rotation =
        rotationOf(scene.clipRect, srcRect, scene.centreX, scene.centreY, scene.angle, scene.scale);
    forEachRotated(
        scene.dst, scene.dstPitch, rotation, scaledBounds(srcRect.left, srcRect.right, centreX, fractionBits),
        scaledBounds(srcRect.top, srcRect.bottom, centreY, fractionBits), scene.isFreeOfOrder(rotation),
        [centre, srcPitch, store](q_ulong &d, int u, int v) {
            store(d, centre[static_cast<Distance>(v >> fractionBits) * srcPitch + (u >> fractionBits)]);
        },
        [centre, srcPitch, operation](q_ulong *first, Group u, Group v) {
            const GroupPlaces places(u, v, srcPitch);
            if constexpr (std::is_same_v<Operation, CopyPixels>) { // nothing to do in a register
                for (int lane = 0; lane < groupSize; ++lane)
                    first[lane] = centre[places.distances[lane]];
                return;
            }
            q_ulong pixels[groupSize];
            for (int lane = 0; lane < groupSize; ++lane)
                pixels[lane] = centre[places.distances[lane]];
            operation(Group::load(first), Group::load(pixels)).store(first);
        });
}

/// Calls `store(dst pixel, filtered colour)`, or stores `operation(dst pixels, filtered colours)`, which works on
/// lanes.
template <class Store, class Operation>
void rotateFiltered(const Scene &scene, Store store, Operation operation) {
    constexpr int sixteenthBits = fractionBits - 4;
    const tagRECT &srcRect = scene.srcRect;
    if (scene.empty() || windowOf(srcRect).empty())
        return;
    const Distance srcPitch = scene.srcPitch;
    const int centreX = wrapMultiply(scene.srcCentreX(), 16);
    const int centreY = wrapMultiply(scene.srcCentreY(), 16);
    const q_ulong *const src = scene.src;
    const Rotation rotation =
        rotationOf(scene.clipRect, srcRect, scene.centreX, scene.centreY, scene.angle, scene.scale);
    forEachRotated(
        scene.dst, scene.dstPitch, rotation,
        scaledBounds(srcRect.left * 16LL, srcRect.right * 16LL - 16, centreX, sixteenthBits),
        scaledBounds(srcRect.top * 16LL, srcRect.bottom * 16LL - 16, centreY, sixteenthBits),
        scene.isFreeOfOrder(rotation),
        [=](q_ulong &d, int u, int v) {
            const int column = (u >> sixteenthBits) + centreX;
            const int row = (v >> sixteenthBits) + centreY;
            const q_ulong *const tap = pixelAt(src, srcPitch, column >> 4, row >> 4);
            store(d, fourTaps(tap, tap + srcPitch, static_cast<q_ulong>(column & 15), static_cast<q_ulong>(row & 15))
                         .pixel());
        },
        [operation, srcPitch,
         centre = pixelAt(src, srcPitch, scene.srcCentreX(), scene.srcCentreY())](q_ulong *first, Group u, Group v) {
            operation(Group::load(first), filteredGroup(centre, srcPitch, u, v)).store(first);
        });
}

constexpr auto copyPixel = [](q_ulong &d, q_ulong s) { d = s; };

struct Add {
    template <int count>
    Numbers<count> operator()(Numbers<count> d, Numbers<count> s) const {
        return saturatingAdd(d, s);
    }
};

/// Calls `rotate` with a store and an operation that mix by a constant alpha.
template <class Rotate>
void withMix(float alpha, Rotate rotate) {
    const AlphaWeights weights = alphaWeights(alpha);
    if (weights.areWithinRange())
        withBlend(weights, [&](auto operation) {
            rotate([blend = PixelBlend(weights)](q_ulong &d, q_ulong s) { d = blend(d, s); }, operation);
        });
    else {
        const auto mix = [weights](q_ulong &d, q_ulong s) {
            d = mixedRedGreen(d, s, weights) | weightedByte(blueOf(d), blueOf(s), weights) >> 8;
        };
        rotate(mix, [mix]<int count>(Numbers<count> d, Numbers<count> s) {
            q_ulong mixed[count];
            d.store(mixed);
            for (int lane = 0; lane < count; ++lane)
                mix(mixed[lane], s[lane]);
            return Numbers<count>::load(mixed);
        });
    }
}

} // namespace

void iBltNear32_Z_Roto(q_ulong *dst, int dstPitch, q_ulong *src, int srcPitch, tagRECT *clipRect, tagRECT *srcRect,
                       int centreX, int centreY, float angle, float scale) {
    rotateNearest({.dst = dst,
                   .dstPitch = dstPitch,
                   .src = src,
                   .srcPitch = srcPitch,
                   .clipRect = *clipRect,
                   .srcRect = *srcRect,
                   .centreX = centreX,
                   .centreY = centreY,
                   .angle = angle,
                   .scale = scale},
                  copyPixel, CopyPixels());
}

void iBltNear32_Z_Roto_KeySrc(q_ulong *dst, int dstPitch, q_ulong *src, int srcPitch, tagRECT *clipRect,
                              tagRECT *srcRect, int centreX, int centreY, float angle, float scale) {
    rotateNearest(
        {.dst = dst,
         .dstPitch = dstPitch,
         .src = src,
         .srcPitch = srcPitch,
         .clipRect = *clipRect,
         .srcRect = *srcRect,
         .centreX = centreX,
         .centreY = centreY,
         .angle = angle,
         .scale = scale},
        [](q_ulong &d, q_ulong s) { d = s == 0 ? d : s; },
        []<int count>(Numbers<count> d, Numbers<count> s) { return selectEqual(s, Numbers<count>::all(0), d, s); });
}

void iBltNear32_Z_Roto_KeySrc_Add(q_ulong *dst, int dstPitch, q_ulong *src, int srcPitch, tagRECT *clipRect,
                                  tagRECT *srcRect, int centreX, int centreY, float angle, float scale) {
    rotateNearest(
        {.dst = dst,
         .dstPitch = dstPitch,
         .src = src,
         .srcPitch = srcPitch,
         .clipRect = *clipRect,
         .srcRect = *srcRect,
         .centreX = centreX,
         .centreY = centreY,
         .angle = angle,
         .scale = scale},
        [](q_ulong &d, q_ulong s) { d = saturatingBytes(d, s) & (s == 0 ? 0xFFFFFFFF : 0xFFFFFF); }, UnlessZero<Add>());
}

void iBltNear32_Z_Roto_Alpha(q_ulong *dst, int dstPitch, q_ulong *src, int srcPitch, tagRECT *clipRect,
                             tagRECT *srcRect, int centreX, int centreY, float angle, float scale, float alpha) {
    const Scene scene = {.dst = dst,
                         .dstPitch = dstPitch,
                         .src = src,
                         .srcPitch = srcPitch,
                         .clipRect = *clipRect,
                         .srcRect = *srcRect,
                         .centreX = centreX,
                         .centreY = centreY,
                         .angle = angle,
                         .scale = scale};
    withMix(alpha, [&scene](auto store, auto operation) { rotateNearest(scene, store, operation); });
}

void iBltLinear32_Z_Roto(q_ulong *dst, int dstPitch, q_ulong *src, int srcPitch, tagRECT *clipRect, tagRECT *srcRect,
                         int centreX, int centreY, float angle, float scale) {
    rotateFiltered({.dst = dst,
                    .dstPitch = dstPitch,
                    .src = src,
                    .srcPitch = srcPitch,
                    .clipRect = *clipRect,
                    .srcRect = *srcRect,
                    .centreX = centreX,
                    .centreY = centreY,
                    .angle = angle,
                    .scale = scale},
                   copyPixel, CopyPixels());
}

void iBltLinear32_Z_Roto_Alpha(q_ulong *dst, int dstPitch, q_ulong *src, int srcPitch, tagRECT *clipRect,
                               tagRECT *srcRect, int centreX, int centreY, float angle, float scale, float alpha) {
    const Scene scene = {.dst = dst,
                         .dstPitch = dstPitch,
                         .src = src,
                         .srcPitch = srcPitch,
                         .clipRect = *clipRect,
                         .srcRect = *srcRect,
                         .centreX = centreX,
                         .centreY = centreY,
                         .angle = angle,
                         .scale = scale};
    withMix(alpha, [&scene](auto store, auto operation) { rotateFiltered(scene, store, operation); });
}
