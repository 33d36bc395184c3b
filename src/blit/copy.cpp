#include "q_Mur/blit.h"
#include "walks/placed.h"

#include <cstdint>
#include <cstring>

namespace {

using namespace qmur;

/// Copies pixels in rising order. memmove gives the same bytes, except where the destination starts inside the source:
/// there the first pixels repeat.
void copyRow(q_ulong *dst, const q_ulong *src, Distance count) {
    const auto ahead = reinterpret_cast<std::uintptr_t>(dst) - reinterpret_cast<std::uintptr_t>(src);
    const auto bytes = static_cast<std::size_t>(count) * sizeof(q_ulong);
    if (ahead >= bytes || ahead == 0) {
        std::memmove(dst, src, bytes);
        return;
    }
    for (Distance x = 0; x < count; ++x)
        dst[x] = src[x];
}

void copyRows(const Placement &placement) {
    const auto [dst, dstPitch, src, srcPitch, width, height] = placement;
    if (width < 1 || height < 1)
        return;
    if (dstPitch == width && srcPitch == width) {
        copyRow(dst, src, static_cast<Distance>(width) * height);
        return;
    }
    for (Distance y = 0; y < height; ++y)
        copyRow(dst + y * dstPitch, src + y * srcPitch, width);
}

} // namespace

void iBltFast32(q_ulong *dst, q_ulong *src, q_ulong dstX, q_ulong dstY, tagRECT *srcRect, int dstPitch, int srcPitch) {
    copyRows(placedAt({dst, dstPitch, src, srcPitch}, asDistance(dstX), asDistance(dstY), *srcRect));
}

void iBltFast32_Advanced(q_ulong *dst, q_ulong *src, int dstX, int dstY, tagRECT *srcRect, int dstPitch, int srcPitch,
                         int clipWidth, int clipHeight) {
    const Window target = {{dstX, wrapAdd(dstX, widthOf(*srcRect))}, {dstY, wrapAdd(dstY, heightOf(*srcRect))}};
    copyRows(placedWithin({dst, dstPitch, src, srcPitch}, target, srcRect->left, srcRect->top,
                          windowOf(clipWidth, clipHeight)));
}
