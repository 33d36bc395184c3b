/// \file
/// What stands behind things that leave a part of the frame free: the photographs' own light, dimmed and far out of
/// focus.
#ifndef QMUR_SHOW_BACKDROP_H
#define QMUR_SHOW_BACKDROP_H

#include "picture.h"
#include "stage.h"

namespace show {

/// Fills `out` with a picture of its size, out of focus and darkened to `brightness`. Writes the picture's margin.
void drawBackdrop(Stage &stage, const Surface &out, const Surface &picture, double brightness);

/// Fills `out` with the mixture of two pictures of its size, `t` of the second one, out of focus and darkened to
/// `brightness`. A soft shadow lies on it around `shade`. Writes the pictures' margins.
void drawBackdrop(Stage &stage, const Surface &out, const Surface &first, const Surface &second, double t,
                  double brightness, const View &shade);

} // namespace show

#endif
