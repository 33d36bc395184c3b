/// \file
/// Drawing at twice the size, so that what the library draws without filtering has neither steps nor flicker.
#ifndef QMUR_SHOW_SUPERSAMPLING_H
#define QMUR_SHOW_SUPERSAMPLING_H

#include "picture.h"
#include "stage.h"

#include <algorithm>

namespace show {

/// Fills `out`, of the stage's size, with the means of four pixels each, or of 16 with a `factor` of 4. The picture
/// that is so many times as large is drawn in parts, of which each fits on a plane: `draw(part, left, top)` is to fill
/// `part`, whose first pixel is the large picture's pixel (`left`, `top`). The parts overlap by a rim, since many
/// drawings leave out the end of what they are clipped by. So the large picture begins before (0, 0). A part of `out`
/// is left to `isFilled(area)` if that answers true; it must fill it then, since its neighbours write over its edges.
template <int factor = 2, class Draw, class IsFilled>
void drawSupersampled(Stage &stage, const Surface &out, const Draw &draw, const IsFilled &isFilled) {
    static_assert(factor == 2 || factor == 4);
    constexpr int rim = factor;
    constexpr int parts = factor == 2 ? 2 : 8; // small enough for a plane, with the rim and what filters read beyond
    const Stage::Plane plane = stage.plane();
    const Stage::Plane between = stage.plane();
    const auto start = [](int extent, int part) { return static_cast<int>((extent + parts - 1LL) * part / parts); };
    for (int row = 0; row < parts; ++row)
        for (int column = 0; column < parts; ++column) {
            const int left = start(out.width, column);
            const int top = start(out.height, row);
            const int width = std::min(start(out.width, column + 1), out.width) - left;
            const int height = std::min(start(out.height, row + 1), out.height) - top;
            if (width <= 0 || height <= 0 || isFilled(tagRECT{left, top, left + width, top + height}))
                continue;
            const Surface wide = {plane->at(-rim, -rim), factor * width + 2 * rim, factor * height + 2 * rim,
                                  plane->pitch};
            draw(wide, factor * left - rim, factor * top - rim);
            // As drawHalved() does, whose edges around the part the margin would not hold then.
            Surface large = plane->cropped(factor * width, factor * height);
            if constexpr (factor == 4) {
                const Surface half = between->cropped(2 * width, 2 * height);
                drawView(half, large, {0.5, 0.5, 4.0 * width, 4.0 * height});
                large = half;
            }
            drawView({out.at(left, top), width, height, out.pitch}, large, {0.5, 0.5, 2.0 * width, 2.0 * height});
        }
}

template <int factor = 2, class Draw>
void drawSupersampled(Stage &stage, const Surface &out, const Draw &draw) {
    drawSupersampled<factor>(stage, out, draw, [](const tagRECT &) { return false; });
}

/// Fills a part of the picture `factor` times as large with `picture`, each of its pixels so often. Around the edges of
/// the picture its margin is shown.
template <int factor = 2>
void drawEnlarged(const Surface &part, const Surface &picture, int left, int top) {
    // The margin has the room of a few pixels: from there on places are not negative.
    constexpr int margin = PlaneLayout::margin;
    q_ulong *const from = picture.at(-margin, -margin);
    tagRECT dstRect = part.rect();
    tagRECT srcRect = {left / factor + margin, top / factor + margin, (left + part.width) / factor + margin,
                       (top + part.height) / factor + margin};
    iBltNear32(part.pixels, from, &dstRect, &srcRect, part.pitch, picture.pitch);
}

} // namespace show

#endif
