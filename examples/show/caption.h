/// \file
/// A line of text below a photograph.
#ifndef QMUR_SHOW_CAPTION_H
#define QMUR_SHOW_CAPTION_H

#include "surface.h"

#include <string>

namespace show {

/// The letters, white on 0 with a soft shadow, and their opacity in the top byte. Of no size for an empty line, or
/// where there are no letters to be had.
Canvas captionFor(const std::string &line, int frameWidth, int frameHeight);

/// Lays a caption into the lower part of the frame.
void layCaption(const Surface &out, const Canvas &caption, double opacity);

} // namespace show

#endif
