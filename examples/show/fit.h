/// \file
/// Photographs of other proportions than the frame's.
#ifndef QMUR_SHOW_FIT_H
#define QMUR_SHOW_FIT_H

#include "surface.h"

namespace show {

enum class Fit {
    automatic, ///< covered, but for photographs of which too little would be seen then
    cover,     ///< the photograph fills the frame, which cuts some of it off
    contain,   ///< all of the photograph is shown
};

/// Whether the photograph is to be shown whole, before a backdrop of itself.
bool isMounted(Fit fit, int photoWidth, int photoHeight, int frameWidth, int frameHeight);

/// How much a camera may close in on a mounted photograph without cutting anything off.
constexpr double mountRoom = 1.12;

/// The photograph before itself, blurred, darkened and filling a picture of the frame's proportions, a little larger
/// than the frame. Writes the photograph's margin.
Canvas mounted(const Surface &photo, int frameWidth, int frameHeight);

} // namespace show

#endif
