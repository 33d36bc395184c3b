/// \file
/// How a camera was held, as noted in its JPEG files.
#ifndef QMUR_SHOW_EXIF_H
#define QMUR_SHOW_EXIF_H

#include <span>

namespace show {

/// The Exif orientation of a JPEG file, 1 to 8; 1, which is upright, if there is none.
int exifOrientation(std::span<const unsigned char> file);

} // namespace show

#endif
