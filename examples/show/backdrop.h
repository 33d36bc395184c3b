/// \file
/// What lies behind things that stand before the photographs.
#ifndef QMUR_SHOW_BACKDROP_H
#define QMUR_SHOW_BACKDROP_H

#include "stage.h"

namespace show {

/// Fills `out` with a picture of its size, far out of focus and darkened to `brightness`. Writes the picture's margin.
void drawBackdrop(Stage &stage, const Surface &out, const Surface &picture, double brightness);

} // namespace show

#endif
