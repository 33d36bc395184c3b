/// \file
/// Colours as the screen takes them, of photographs that mean other ones.
#ifndef QMUR_SHOW_COLOUR_PROFILE_H
#define QMUR_SHOW_COLOUR_PROFILE_H

#include "input_file.h"
#include "surface.h"

namespace show {

/// Converts the pixels from an ICC profile's colours to sRGB; top bytes stay. Nothing happens where the profile is
/// damaged, of no red, green and blue, or says that it is sRGB.
void convertToScreen(const Surface &picture, Bytes profile);

} // namespace show

#endif
