#include "base/channels.h"
#include "base/wide.h"
#include "q_Mur/blit.h"
#include "walks/placed.h"

#include <algorithm>

namespace {

using namespace qmur;

/// Calls `store(pixel)` for every pixel of a rectangle in place.
template <class Store>
void forEachPixelOf(q_ulong *surface, Distance pitch, const tagRECT &rect, Store store) {
    if (isEmpty(rect))
        return;
    q_ulong *const first = pixelAt(surface, pitch, rect.left, rect.top);
    const int width = widthOf(rect);
    const int height = heightOf(rect);
    for (Distance y = 0; y < height; ++y) {
        q_ulong *const row = first + y * pitch;
        for (Distance x = 0; x < width; ++x)
            store(row[x]);
    }
}

/// Stores `operation(pixels)`, which works on lanes, in every pixel of a rectangle.
template <class Operation>
void changePixelsOf(q_ulong *surface, Distance pitch, const tagRECT &rect, Operation operation) {
    constexpr int atOnce = sizeof(MostPixels) / sizeof(q_ulong);
    if (isEmpty(rect))
        return;
    q_ulong *const first = pixelAt(surface, pitch, rect.left, rect.top);
    const int width = widthOf(rect);
    const int height = heightOf(rect);
    for (Distance y = 0; y < height; ++y) {
        q_ulong *const row = first + y * pitch;
        int x = 0;
        for (; x <= width - atOnce; x += atOnce)
            operation(MostPixels::load(row + x)).store(row + x);
        if (x < width)
            operation(MostPixels::loadFirst(row + x, width - x)).storeFirst(row + x, width - x);
    }
}

/// Several stores to a turn: a loop of a single vector store runs at full or half speed depending on where the linker
/// puts it.
void fillRow(q_ulong *row, Distance count, q_ulong colour) {
    constexpr Distance turn = widestBytes > 32 ? 32 : 16;
    for (; count >= turn; count -= turn, row += turn)
        std::fill_n(row, turn, colour);
    std::fill_n(row, count, colour);
}

} // namespace

void iFillRect(q_ulong *dst, tagRECT *rect, int pitch, q_ulong colour) {
    const int width = widthOf(*rect);
    const int height = heightOf(*rect);
    if (width < 1 || height < 1)
        return;
    q_ulong *const first = pixelAt(dst, pitch, rect->left, rect->top);
    if (pitch == width) {
        fillRow(first, static_cast<Distance>(width) * height, colour);
        return;
    }
    for (Distance y = 0; y < height; ++y)
        fillRow(first + y * pitch, width, colour);
}

void iFadeOut32(q_ulong *dst, tagRECT *rect, int pitch, float factor) {
    const auto scale = static_cast<q_ulong>(truncateToInt(static_cast<double>(factor) * 256));
    if (scale == 0) {
        // Meant as the gentlest fade step, not as a clear to black.
        forEachPixelOf(dst, pitch, *rect, [](q_ulong &d) { d = (d >> 4 & 0x0F0F0F) * 15; });
        return;
    }
    if (scale > 256) {
        forEachPixelOf(dst, pitch, *rect, [scale](q_ulong &d) { d = blend256(0, 0, d, scale); });
        return;
    }
    changePixelsOf(dst, pitch, *rect, [scale]<int count>(Numbers<count> d) {
        if constexpr (multipliesInPlace) {
            const auto weight = Words<count * 2>::all(static_cast<std::uint16_t>(scale));
            return pixelsOfProducts(redBlueWords(d) * weight, greenWords(d) * weight);
        }
        // The upper 16 bits of channel * 256 * scale; red and blue lie in words of their own, green above a byte.
        const auto scaled = [scale](Words<count * 2> channels) {
            return as<std::uint32_t>(highProduct(channels, Words<count * 2>::all(static_cast<std::uint16_t>(scale))));
        };
        const auto green = as<std::uint16_t>(d & Numbers<count>::all(greenMask));
        return scaled(as<std::uint16_t>(d) << 8) | scaled(green) << 8;
    });
}
