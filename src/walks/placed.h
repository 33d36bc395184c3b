/// \file
/// The walk of the unscaled blits: a rectangle of source pixels laid over destination pixels of the same size.
#ifndef Q_MUR_WALKS_PLACED_H
#define Q_MUR_WALKS_PLACED_H

#include "base/lanes.h"
#include "base/surface.h"

#include <cstdint>

namespace qmur {

/// Where the rows of a blit start and how far they reach.
struct Placement {
    q_ulong *dst;
    Distance dstPitch;
    const q_ulong *src;
    Distance srcPitch;
    int width;
    int height;
};

/// A surface to write and one to read.
struct Surfaces {
    q_ulong *dst;
    Distance dstPitch;
    const q_ulong *src;
    Distance srcPitch;
};

/// `srcRect` with its corner on (dstX, dstY), unclipped.
inline Placement placedAt(const Surfaces &surfaces, Distance dstX, Distance dstY, const tagRECT &srcRect) {
    if (isEmpty(srcRect)) // it may lie beyond what addresses hold
        return {};
    return {.dst = pixelAt(surfaces.dst, surfaces.dstPitch, dstX, dstY),
            .dstPitch = surfaces.dstPitch,
            .src = pixelAt(surfaces.src, surfaces.srcPitch, srcRect.left, srcRect.top),
            .srcPitch = surfaces.srcPitch,
            .width = widthOf(srcRect),
            .height = heightOf(srcRect)};
}

/// True for a span that stands for pixels. An extent near the least number gives one that has wrapped: it ends behind
/// its begin, but its length is below 1.
constexpr bool coversPixels(Span span) {
    return !span.empty() && span.length() > 0;
}

/// The part within `window` of a `target` whose corner shows the source pixel (srcX, srcY).
inline Placement placedWithin(const Surfaces &surfaces, const Window &target, Distance srcX, Distance srcY,
                              const Window &window) {
    const auto [columns, rows] = target.within(window);
    if (!coversPixels(target.columns) || !coversPixels(target.rows) || columns.empty() || rows.empty())
        return {};
    return {.dst = pixelAt(surfaces.dst, surfaces.dstPitch, columns.begin, rows.begin),
            .dstPitch = surfaces.dstPitch,
            .src = pixelAt(surfaces.src, surfaces.srcPitch, srcX + columns.begin - target.columns.begin,
                           srcY + rows.begin - target.rows.begin),
            .srcPitch = surfaces.srcPitch,
            .width = columns.length(),
            .height = rows.length()};
}

/// The columns or rows that an extent covers around its centre: an odd extent loses its last one.
constexpr Span centredSpan(int centre, int extent) {
    return {wrapSubtract(centre, extent >> 1), wrapAdd(centre, extent >> 1)};
}

/// `srcRect` placed by its centre, within `window`.
inline Placement centredAt(const Surfaces &surfaces, int centreX, int centreY, const tagRECT &srcRect,
                           const Window &window) {
    const Window target = {centredSpan(centreX, widthOf(srcRect)), centredSpan(centreY, heightOf(srcRect))};
    return placedWithin(surfaces, target, srcRect.left, srcRect.top, window);
}

/// Calls `store(dst pixel, src pixel)` for every pixel, rows top to bottom, columns left to right.
/// Pitches and counts are copied out first: read through memory, they would have to be read again after each store.
template <class Store>
void forEachPixel(const Placement &placement, Store store) {
    const auto [firstDst, dstPitch, firstSrc, srcPitch, width, height] = placement;
    for (Distance y = 0; y < height; ++y) {
        q_ulong *const dst = firstDst + y * dstPitch;
        const q_ulong *const src = firstSrc + y * srcPitch;
        for (Distance x = 0; x < width; ++x)
            store(dst[x], src[x]);
    }
}

/// An operation on lanes done for one pixel.
template <class Operation>
q_ulong ofOnePixel(Operation operation, q_ulong d, q_ulong s) {
    return operation(Numbers<4>::front(d), Numbers<4>::front(s))[0];
}

/// Stores `operation(dst pixel, src pixel)` in the pixels of a row that lies apart from the other.
template <class Operation>
void combineRow(q_ulong *dst, const q_ulong *src, int count, Operation operation) {
    constexpr int atOnce = sizeof(MostPixels) / sizeof(std::uint32_t);
    int x = 0;
    for (; x <= count - atOnce; x += atOnce)
        operation(MostPixels::load(dst + x), MostPixels::load(src + x)).store(dst + x);
    if (x < count)
        operation(MostPixels::loadFirst(dst + x, count - x), MostPixels::loadFirst(src + x, count - x))
            .storeFirst(dst + x, count - x);
}

/// The same with `operation(d, s)` on lanes: as many pixels at once as the target takes, then two, then one in the
/// first lanes. A row whose destination starts fewer pixels than the target takes behind its source feeds on what it
/// has just written and is done pixel by pixel.
template <class Operation>
void combinePixels(const Placement &placement, Operation operation) {
    const auto [firstDst, dstPitch, firstSrc, srcPitch, width, height] = placement;
    constexpr Distance atOnce = sizeof(MostPixels) / sizeof(q_ulong);
    constexpr Distance cacheLine = 64 / sizeof(q_ulong);
    using Few = Numbers<4>;
    // By itself a processor fetches too little ahead of itself where both pictures are more, together, than the nearer
    // caches hold, some 4 MB.
    const bool areFar = !isWebAssembly && static_cast<long long>(width) * height > 1 << 19;
    for (Distance y = 0; y < height; ++y) {
        q_ulong *const dst = firstDst + y * dstPitch;
        const q_ulong *const src = firstSrc + y * srcPitch;
        const auto ahead = reinterpret_cast<std::uintptr_t>(dst) - reinterpret_cast<std::uintptr_t>(src);
        const Distance several = ahead == 0 || ahead >= sizeof(MostPixels) ? width : 0;
        const Distance dstAhead = y + 1 < height ? dstPitch : 0;
        const Distance srcAhead = y + 1 < height ? srcPitch : 0;
        Distance x = 0;
        const auto combine = [=](Distance at) {
            operation(MostPixels::load(dst + at), MostPixels::load(src + at)).store(dst + at);
        };
        const auto combineLine = [=](Distance at) {
            for (Distance i = 0; i < cacheLine; i += atOnce)
                combine(at + i);
        };
        for (; areFar && x <= several - cacheLine; x += cacheLine) {
            willWrite(dst + x + dstAhead);
            willRead(src + x + srcAhead);
            combineLine(x);
        }
        for (; x <= several - cacheLine; x += cacheLine)
            combineLine(x);
        for (; x <= several - atOnce; x += atOnce)
            combine(x);
        for (; x <= several - 2; x += 2)
            operation(Few::loadEightBytes(dst + x), Few::loadEightBytes(src + x)).storeEightBytes(dst + x);
        for (; x < width; ++x)
            dst[x] = operation(Few::front(dst[x]), Few::front(src[x]))[0];
    }
}

} // namespace qmur

#endif
