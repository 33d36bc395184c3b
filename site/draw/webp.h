/// \file
/// WebP files, still or moving.
#ifndef Q_MUR_GALLERY_WEBP_H
#define Q_MUR_GALLERY_WEBP_H

#include "catalogue/plane.h"

#include <filesystem>
#include <vector>

namespace gallery {

/// Writes pictures one after the other, which are shown for so long each, again and again. Throws where the file cannot
/// be written.
void writeWebP(const std::filesystem::path &file, const std::vector<catalogue::Plane> &pictures, int milliseconds);

} // namespace gallery

#endif
