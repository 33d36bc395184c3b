#include "base/channels.h"
#include "base/wide.h"
#include "q_Mur/warp.h"
#include "walks/turned.h"

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

/// Walks the rows of the destination wherever the source position lies within the bounds; `sampling` is as
/// forEachTurned() asks for it.
template <class Sampling>
void forEachRotated(q_ulong *dst, Distance dstPitch, const Rotation &rotation, Bounds boundsU, Bounds boundsV,
                    const Sampling &sampling) {
    const auto [columns, rows, centreY, inverseScale, sine, cosine, rowStartU, rowStartV, stepU, stepV] = rotation;
    for (int y = rows.begin; y < rows.end; ++y) {
        const int rowTerm = wrapSubtract(wrapMultiply(y, inverseScale), wrapMultiply(centreY, inverseScale)) >> 8;
        const Track u = {wrapAdd(wrapMultiply(rowTerm, sine), rowStartU), stepU, boundsU};
        const Track v = {wrapSubtract(wrapMultiply(rowTerm, cosine), rowStartV), wrapSubtract(0, stepV), boundsV};
        forEachTurned(pixelAt(dst, dstPitch, columns.begin, y), dstPitch, u, v, columns.length(), sampling);
    }
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
    int srcCentreX() const { return wrapAdd(static_cast<int>(srcRect.left), static_cast<int>(srcRect.right)) >> 1; }
    int srcCentreY() const { return wrapAdd(static_cast<int>(srcRect.top), static_cast<int>(srcRect.bottom)) >> 1; }
    const q_ulong *srcCentre() const { return pixelAt(src, srcPitch, srcCentreX(), srcCentreY()); }
};

struct CopyPixels {
    template <int count>
    Numbers<count> operator()(Numbers<count>, Numbers<count> s) const {
        return s;
    }
};

/// The nearest source pixels: `store(dst pixel, src pixel)`, or `operation(dst pixels, src pixels)` on lanes.
template <class Store, class Operation>
struct Nearest {
    static constexpr int count = staysSmall ? 1 : nearestCount;
    TurnedSource<fractionBits, 0> source;
    Store store;
    Operation operation;

    void operator()(q_ulong &d, int u, int v) const { store(d, *source.pixelOf(u, v)); }
    void operator()(q_ulong *first, Numbers<count> u, Numbers<count> v) const {
        if constexpr (std::is_same_v<Operation, CopyPixels>) { // nothing to do in a register
            copyTurned(first, source, u, v);
        } else {
            q_ulong pixels[count];
            copyTurned(pixels, source, u, v);
            operation(Numbers<count>::load(first), Numbers<count>::load(pixels)).store(first);
        }
    }
};

/// The same with filtered colours.
template <class Store, class Operation>
struct Filtered {
    static constexpr int count = staysSmall ? 1 : filteredCount;
    TurnedSource<fractionBits, 1> source;
    Store store;
    Operation operation;

    void operator()(q_ulong &d, int u, int v) const { store(d, filteredTurned(source, u, v).pixel()); }
    void operator()(q_ulong *first, Numbers<count> u, Numbers<count> v) const {
        const Numbers<count> colours = filteredTurned(source, u, v) & Numbers<count>::all(0xFFFFFF);
        operation(Numbers<count>::load(first), colours).store(first);
    }
};

template <class Store, class Operation>
void rotateNearest(const Scene &scene, Store store, Operation operation) {
    const tagRECT &srcRect = scene.srcRect;
    if (scene.empty() || windowOf(srcRect).empty())
        return;
    const int centreX = scene.srcCentreX();
    const int centreY = scene.srcCentreY();
    forEachRotated(scene.dst, scene.dstPitch,
                   rotationOf(scene.clipRect, srcRect, scene.centreX, scene.centreY, scene.angle, scene.scale),
                   scaledBounds(srcRect.left, srcRect.right, centreX, fractionBits),
                   scaledBounds(srcRect.top, srcRect.bottom, centreY, fractionBits),
                   Nearest<Store, Operation>{{scene.srcCentre(), scene.srcPitch}, store, operation});
}

template <class Store, class Operation>
void rotateFiltered(const Scene &scene, Store store, Operation operation) {
    constexpr int sixteenthBits = fractionBits - 4;
    const tagRECT &srcRect = scene.srcRect;
    if (scene.empty() || windowOf(srcRect).empty())
        return;
    const int centreX = wrapMultiply(scene.srcCentreX(), 16);
    const int centreY = wrapMultiply(scene.srcCentreY(), 16);
    forEachRotated(scene.dst, scene.dstPitch,
                   rotationOf(scene.clipRect, srcRect, scene.centreX, scene.centreY, scene.angle, scene.scale),
                   scaledBounds(srcRect.left * 16LL, srcRect.right * 16LL - 16, centreX, sixteenthBits),
                   scaledBounds(srcRect.top * 16LL, srcRect.bottom * 16LL - 16, centreY, sixteenthBits),
                   Filtered<Store, Operation>{{scene.srcCentre(), scene.srcPitch}, store, operation});
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
