/// \file
/// Pictures brought to another size, all by iBltPerfect32().
#ifndef QMUR_SHOW_PICTURE_H
#define QMUR_SHOW_PICTURE_H

#include "surface.h"

namespace show {

/// A part of a picture, in its pixels. The edges may lie between pixels.
struct View {
    double left;
    double top;
    double width;
    double height;
};

/// The whole of a picture.
View wholeOf(const Surface &picture);

/// Fills `out` with what the view shows of `picture`, its edges placed to a sixteenth of a pixel.
void drawView(const Surface &out, const Surface &picture, const View &view);

/// Fills `out`, of half the picture's size or a little more, with the means of four pixels each. Writes the picture's
/// margin.
void drawHalved(const Surface &out, const Surface &picture);

/// The picture at half its size, rounded up. Writes the picture's margin.
Canvas halved(const Surface &picture);

/// The picture at twice its size, each pixel mixed from the four nearest by nine, three, three and one sixteenths.
/// Writes the picture's margin.
Canvas doubled(const Surface &picture);

/// The picture brought to a smaller size, or to its own, without leaving a pixel out. Writes the picture's margin.
Canvas reduced(const Surface &picture, int width, int height);

/// The picture brought to a size between half of its own and its own, as the mean of all pixels that a new one covers.
/// Writes the picture's margin.
Canvas resampled(const Surface &picture, int width, int height);

/// Repeats the picture's outermost pixels into the margin around it.
void extendEdges(const Surface &picture);

} // namespace show

#endif
