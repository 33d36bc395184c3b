#include "base/pixel.h"
#include "base/scratch.h"
#include "base/surface.h"
#include "q_Mur/filter.h"

#include <cstdlib>
#include <cstring>
#include <utility>

namespace {

using namespace qmur;

/// Three rows as they were before the filter wrote them.
struct Neighbourhood {
    const q_ulong *above;
    const q_ulong *current;
    const q_ulong *below;
};

/// Replaces the interior of a rectangle, all but its outermost pixels, by `filtered(rows, x)` of the original rows.
template <class Filter>
void filterInterior(q_ulong *surface, const tagRECT &rect, Distance pitch, Filter filtered) {
    const int width = widthOf(rect);
    const int height = heightOf(rect);
    if (width < 3 || height < 3)
        return;
    // A row is overwritten while it and the one above are still wanted: two rows of originals are kept.
    const std::size_t rowBytes = static_cast<std::size_t>(width) * sizeof(q_ulong);
    const Scratch<q_ulong> originals(2LL * width);
    if (!originals)
        return;
    q_ulong *above = originals.data();
    q_ulong *current = above + width;
    q_ulong *row = pixelAt(surface, pitch, rect.left, rect.top);
    std::memcpy(above, row, rowBytes);
    for (int y = 1; y < height - 1; ++y) {
        row += pitch;
        std::memcpy(current, row, rowBytes);
        const Neighbourhood rows = {above, current, row + pitch};
        for (Distance x = 1; x < width - 1; ++x)
            row[x] = filtered(rows, x);
        std::swap(above, current);
    }
}

/// The sum of four quarters in each channel; white comes out as 0xFCFCFC.
constexpr q_ulong quarterMix(q_ulong a, q_ulong b, q_ulong c, q_ulong d) {
    constexpr q_ulong mask = 0x3F3F3F;
    return (a >> 2 & mask) + (b >> 2 & mask) + (c >> 2 & mask) + (d >> 2 & mask);
}

} // namespace

void FastBlur_Rect(q_ulong *surface, tagRECT *rect, int pitch) {
    switch (std::rand() & 3) {
    case 0:
        filterInterior(surface, *rect, pitch, [](const Neighbourhood &rows, Distance x) {
            return halfMix(rows.current[x + 1], rows.current[x - 1]);
        });
        break;
    case 1:
        filterInterior(surface, *rect, pitch,
                       [](const Neighbourhood &rows, Distance x) { return halfMix(rows.below[x], rows.above[x]); });
        break;
    case 2:
        filterInterior(surface, *rect, pitch, [](const Neighbourhood &rows, Distance x) {
            return halfMix(rows.above[x + 1], rows.below[x - 1]);
        });
        break;
    default:
        filterInterior(surface, *rect, pitch, [](const Neighbourhood &rows, Distance x) {
            return halfMix(rows.below[x + 1], rows.above[x - 1]);
        });
    }
}

void CrossBlur_Rect(_PRIVATE_LUT_DATA *lut, q_ulong *surface, tagRECT *rect, int pitch) {
    const bool corners = lut->phase != 0;
    lut->phase = corners ? 0 : 1;
    if (corners)
        filterInterior(surface, *rect, pitch, [](const Neighbourhood &rows, Distance x) {
            return quarterMix(rows.above[x - 1], rows.above[x + 1], rows.below[x - 1], rows.below[x + 1]);
        });
    else
        filterInterior(surface, *rect, pitch, [](const Neighbourhood &rows, Distance x) {
            return quarterMix(rows.above[x], rows.current[x - 1], rows.current[x + 1], rows.below[x]);
        });
}
