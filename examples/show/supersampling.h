/// \file
/// Drawing at twice the size, so that what the library draws without filtering has neither steps nor flicker.
#ifndef QMUR_SHOW_SUPERSAMPLING_H
#define QMUR_SHOW_SUPERSAMPLING_H

#include "picture.h"
#include "stage.h"

namespace show {

/// Fills `out`, of the stage's size, with the means of four pixels each. The picture of twice its size is drawn in
/// four parts, of which each fits on a plane: `draw(part, left, top)` is to fill `part`, whose first pixel is the large
/// picture's pixel (`left`, `top`).
template <class Draw>
void drawSupersampled(Stage &stage, const Surface &out, const Draw &draw) {
    const Stage::Plane plane = stage.plane();
    const int columns[] = {0, (out.width + 1) / 2, out.width};
    const int rows[] = {0, (out.height + 1) / 2, out.height};
    for (int row = 0; row < 2; ++row)
        for (int column = 0; column < 2; ++column) {
            const int left = columns[column];
            const int top = rows[row];
            const int width = columns[column + 1] - left;
            const int height = rows[row + 1] - top;
            // With an odd size this is a pixel more than the plane's own size, and still inside its margin.
            const Surface part = plane->cropped(2 * width, 2 * height);
            draw(part, 2 * left, 2 * top);
            // As drawHalved() does, whose edges around the part the margin would not hold then.
            drawView({out.at(left, top), width, height, out.pitch}, part, {0.5, 0.5, 2.0 * width, 2.0 * height});
        }
}

/// Fills a part of the picture of twice the size with `picture`, each of its pixels four times.
inline void drawDoubled(const Surface &part, const Surface &picture, int left, int top) {
    tagRECT dstRect = part.rect();
    tagRECT srcRect = {left / 2, top / 2, (left + part.width) / 2, (top + part.height) / 2};
    iBltNear32(part.pixels, picture.pixels, &dstRect, &srcRect, part.pitch, picture.pitch);
}

} // namespace show

#endif
