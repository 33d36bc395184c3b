#include "base/channels.h"
#include "base/sampling.h"
#include "base/wide.h"
#include "q_Mur/warp.h"
#include "walks/stretch.h"

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
        const int radius = truncateToInt(squareRoot(squares) * scale * 0.5L);
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

/// Walks the destination and calls `pixel(dst pixel, u, v)` wherever the source position lies within the bounds.
template <class Pixel>
void forEachRotated(q_ulong *dst, Distance dstPitch, const Rotation &rotation, Bounds boundsU, Bounds boundsV,
                    Pixel pixel) {
    const auto [columns, rows, centreY, inverseScale, sine, cosine, rowStartU, rowStartV, stepU, stepV] = rotation;
    for (int y = rows.begin; y < rows.end; ++y) {
        const int rowTerm = wrapSubtract(wrapMultiply(y, inverseScale), wrapMultiply(centreY, inverseScale)) >> 8;
        const Track u = {wrapAdd(wrapMultiply(rowTerm, sine), rowStartU), stepU, boundsU};
        const Track v = {wrapSubtract(wrapMultiply(rowTerm, cosine), rowStartV), wrapSubtract(0, stepV), boundsV};
        q_ulong *const row = pixelAt(dst, dstPitch, columns.begin, y);
        forEachInside(u, v, columns.length(),
                      [row, pixel](int x, int uHere, int vHere) { pixel(row[x], uHere, vHere); });
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
};

/// Calls `store(dst pixel, src pixel)` with the nearest source pixel.
template <class Store>
void rotateNearest(const Scene &scene, Store store) {
    if (scene.empty())
        return;
    const tagRECT &srcRect = scene.srcRect;
    const Distance srcPitch = scene.srcPitch;
    const int centreX = scene.srcCentreX();
    const int centreY = scene.srcCentreY();
    const q_ulong *const centre = pixelAt(scene.src, srcPitch, centreX, centreY);
    const Rotation rotation =
        rotationOf(scene.clipRect, srcRect, scene.centreX, scene.centreY, scene.angle, scene.scale);
    forEachRotated(scene.dst, scene.dstPitch, rotation,
                   scaledBounds(srcRect.left, srcRect.right, centreX, fractionBits),
                   scaledBounds(srcRect.top, srcRect.bottom, centreY, fractionBits),
                   [centre, srcPitch, store](q_ulong &d, int u, int v) {
                       store(d, centre[static_cast<Distance>(v >> fractionBits) * srcPitch + (u >> fractionBits)]);
                   });
}

/// Calls `store(dst pixel, filtered colour)`.
template <class Store>
void rotateFiltered(const Scene &scene, Store store) {
    if (scene.empty())
        return;
    constexpr int sixteenthBits = fractionBits - 4;
    const tagRECT &srcRect = scene.srcRect;
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
        [=](q_ulong &d, int u, int v) {
            const int column = (u >> sixteenthBits) + centreX;
            const int row = (v >> sixteenthBits) + centreY;
            const q_ulong *const tap = pixelAt(src, srcPitch, column >> 4, row >> 4);
            store(d, fourTaps(tap, tap + srcPitch, static_cast<q_ulong>(column & 15), static_cast<q_ulong>(row & 15))
                         .pixel());
        });
}

constexpr auto copyPixel = [](q_ulong &d, q_ulong s) { d = s; };

/// Calls `rotate` with a store that mixes by a constant alpha.
template <class Rotate>
void withMix(float alpha, Rotate rotate) {
    const AlphaWeights weights = alphaWeights(alpha);
    if (weights.areWithinRange())
        rotate([blend = PixelBlend(weights)](q_ulong &d, q_ulong s) { d = blend(d, s); });
    else
        rotate([weights](q_ulong &d, q_ulong s) {
            d = mixedRedGreen(d, s, weights) | weightedByte(blueOf(d), blueOf(s), weights) >> 8;
        });
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
                  copyPixel);
}

void iBltNear32_Z_Roto_KeySrc(q_ulong *dst, int dstPitch, q_ulong *src, int srcPitch, tagRECT *clipRect,
                              tagRECT *srcRect, int centreX, int centreY, float angle, float scale) {
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
                  [](q_ulong &d, q_ulong s) { d = s == 0 ? d : s; });
}

void iBltNear32_Z_Roto_KeySrc_Add(q_ulong *dst, int dstPitch, q_ulong *src, int srcPitch, tagRECT *clipRect,
                                  tagRECT *srcRect, int centreX, int centreY, float angle, float scale) {
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
                  [](q_ulong &d, q_ulong s) { d = saturatingBytes(d, s) & (s == 0 ? 0xFFFFFFFF : 0xFFFFFF); });
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
    withMix(alpha, [&scene](auto store) { rotateNearest(scene, store); });
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
                   copyPixel);
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
    withMix(alpha, [&scene](auto store) { rotateFiltered(scene, store); });
}
