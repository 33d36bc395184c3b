/// \file
/// Image files in and out.
#ifndef QMUR_SHOW_IMAGE_FILE_H
#define QMUR_SHOW_IMAGE_FILE_H

#include "surface.h"

#include <filesystem>
#include <string>
#include <vector>

namespace show {

constexpr int usualMegapixels = 400;

struct ImageFile {
    Canvas picture;      ///< upright, where the camera noted how it was held; where it is clear, on a dark ground
    std::string comment; ///< what somebody wrote of it, in a line
    std::string taken;   ///< when, as text that sorts by time; empty if that is not known
};

/// Reads a picture of any kind that this build knows, and of up to that many millions of pixels. Throws Failure.
ImageFile readImage(const std::filesystem::path &path, int mostMegapixels = usualMegapixels);

/// The surface as the bytes of a PNG file. Throws std::bad_alloc.
std::vector<unsigned char> encodePng(const Surface &picture);

} // namespace show

#endif
