/// \file
/// Image files in and out.
#ifndef QMUR_SHOW_IMAGE_FILE_H
#define QMUR_SHOW_IMAGE_FILE_H

#include "surface.h"

#include <filesystem>
#include <vector>

namespace show {

/// Reads a JPEG, PNG or BMP file, turned upright where the camera noted how it was held. Throws Failure.
Canvas readImage(const std::filesystem::path &path);

/// The surface as the bytes of a PNG file.
std::vector<unsigned char> encodePng(const Surface &picture);

} // namespace show

#endif
