/// \file
/// The photographs that come with the project.
#ifndef QMUR_SHOW_BUNDLED_PHOTOS_H
#define QMUR_SHOW_BUNDLED_PHOTOS_H

#include <filesystem>
#include <vector>

namespace show {

/// In the order of the default show. Throws Failure if they are not found.
std::vector<std::filesystem::path> bundledPhotos(const char *programName);

} // namespace show

#endif
