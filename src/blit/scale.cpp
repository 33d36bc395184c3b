#include "q_Mur/blit.h"
#include "walks/scaled.h"

namespace {

using namespace qmur;

constexpr auto storeFiltered = [](q_ulong &d, ChannelSums sums) { d = sums.pixel(); };

constexpr auto filteredPixels = []<int count>(Numbers<count>, PixelWords<count> sums) { return pixelsOf(sums); };

template <class Position>
void copyFiltered(const ScaledWalk<Position> &walk) {
    if (!drawFiltered(walk, filteredPixels))
        forEachFiltered(walk, storeFiltered);
}

} // namespace

void iBltNear32(q_ulong *dst, q_ulong *src, tagRECT *dstRect, tagRECT *srcRect, int dstPitch, int srcPitch) {
    copyNearest(scaledOnto<Unsigned12_20>(dst, dstPitch, *dstRect, src, srcPitch, *srcRect));
}

void iBltNear32Safe(q_ulong *dst, q_ulong *src, tagRECT *dstRect, tagRECT *srcRect, tagRECT *clipRect, int dstPitch,
                    int srcPitch) {
    copyNearest(scaledWithin<Signed12_20>(windowOf(*clipRect), dst, dstPitch, *dstRect, src, srcPitch, *srcRect));
}

void iBltBilinear32(q_ulong *dst, q_ulong *src, tagRECT *dstRect, tagRECT *srcRect, q_ulong dstPitch,
                    q_ulong srcPitch) {
    copyFiltered(scaledOnto<Unsigned12_20>(dst, asDistance(dstPitch), *dstRect, src, asDistance(srcPitch), *srcRect));
}

void iBltBilinear32Safe(q_ulong *dst, q_ulong *src, tagRECT *dstRect, tagRECT *srcRect, q_ulong dstPitch,
                        q_ulong srcPitch) {
    using Position = Unsigned12_20;
    const auto walk = scaledOnto<Position>(dst, asDistance(dstPitch), *dstRect, src, asDistance(srcPitch), *srcRect);
    const Distance areaEnd = heightOf(*srcRect) * walk.srcPitch;
    // In a row, the pixels whose taps would come within a pixel of the area's end are copied as they are.
    const auto filteredIn = [&walk, areaEnd](Position positionY) {
        const Distance offset = static_cast<Distance>(positionY.whole()) * walk.srcPitch;
        const Distance lowerOffset = offset + walk.srcPitch;
        return countBefore(areaEnd - 2 - (offset < lowerOffset ? lowerOffset : offset), walk.stepX, walk.width);
    };
    // Most rows have none of these.
    auto upper = walk;
    Position positionY;
    for (upper.height = 0; upper.height < walk.height && filteredIn(positionY) == walk.width; ++upper.height)
        positionY = positionY.plus(walk.stepY);
    if (!drawFiltered(upper, filteredPixels)) {
        upper.height = 0;
        positionY = {};
    }
    for (Distance y = upper.height; y < walk.height; ++y, positionY = positionY.plus(walk.stepY)) {
        const int filtered = filteredIn(positionY);
        const q_ulong *const row0 = walk.src + static_cast<Distance>(positionY.whole()) * walk.srcPitch;
        q_ulong *const dstRow = walk.dst + y * walk.dstPitch;
        filterRow(dstRow, filtered, row0, row0 + walk.srcPitch, positionY.sixteenths(), Position{}, walk.stepX,
                  storeFiltered);
        Position positionX = walk.stepX.times(filtered);
        for (Distance x = filtered; x < walk.width; ++x, positionX = positionX.plus(walk.stepX))
            dstRow[x] = row0[positionX.whole()];
    }
}

void iBltAdaptive32(q_ulong *dst, q_ulong *src, tagRECT *dstRect, tagRECT *srcRect, q_ulong dstPitch,
                    q_ulong srcPitch) {
    const int dstWidth = widthOf(*dstRect);
    const int dstHeight = heightOf(*dstRect);
    const int srcWidth = widthOf(*srcRect);
    const int srcHeight = heightOf(*srcRect);
    const auto plainDstPitch = static_cast<int>(dstPitch);
    const auto plainSrcPitch = static_cast<int>(srcPitch);
    const int dstArea = wrapMultiply(wrapMultiply(2, dstWidth), dstHeight);
    const int srcArea = wrapMultiply(wrapMultiply(3, srcWidth), srcHeight);
    if (dstWidth == srcWidth && dstHeight == srcHeight)
        iBltFast32(dst, src, static_cast<q_ulong>(dstRect->left), static_cast<q_ulong>(dstRect->top), srcRect,
                   plainDstPitch, plainSrcPitch);
    else if (dstArea >= srcArea)
        iBltBilinear32Safe(dst, src, dstRect, srcRect, dstPitch, srcPitch);
    else
        iBltNear32(dst, src, dstRect, srcRect, plainDstPitch, plainSrcPitch);
}

void iBltPerfect32(q_ulong *dst, q_ulong *src, tagRECT *dstRect, tagRECT *srcRect, q_ulong dstPitch, q_ulong srcPitch) {
    using Position = Signed15_17;
    const int dstWidth = widthOf(*dstRect);
    const int dstHeight = heightOf(*dstRect);
    const int width = dstWidth / 16 + 1;
    const int height = dstHeight / 16 + 1;
    if (dstWidth == 0 || dstHeight == 0 || width < 1 || height < 1)
        return;
    // The phase within a pixel, from sixteenths to the fraction bits of a position.
    const auto startOf = [](q_long srcEdge, q_long dstEdge) {
        return Position{static_cast<q_ulong>((srcEdge & 15) - (dstEdge & 15)) << (Position::fraction - 4)};
    };
    const Distance dstStride = asDistance(dstPitch);
    const Distance srcStride = asDistance(srcPitch);
    const ScaledWalk<Position> walk = {.dst = pixelAt(dst, dstStride, dstRect->left / 16, dstRect->top / 16),
                                       .dstPitch = dstStride,
                                       .src = pixelAt(src, srcStride, srcRect->left / 16, srcRect->top / 16),
                                       .srcPitch = srcStride,
                                       .width = width,
                                       .height = height,
                                       .startX = startOf(srcRect->left, dstRect->left),
                                       .startY = startOf(srcRect->top, dstRect->top),
                                       .stepX = Position::step(widthOf(*srcRect), dstWidth),
                                       .stepY = Position::step(heightOf(*srcRect), dstHeight)};
    copyFiltered(walk);
}
