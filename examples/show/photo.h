/// \file
/// A photograph, ready to be shown, and the camera that moves over it.
#ifndef QMUR_SHOW_PHOTO_H
#define QMUR_SHOW_PHOTO_H

#include "picture.h"

#include <cstdint>
#include <filesystem>

namespace show {

/// Reads a photograph and brings it near the size at which a frame shows it, so that neither moiré nor blocks appear.
/// Its margin repeats its edges. Throws Failure.
Canvas loadPhoto(const std::filesystem::path &path, int frameWidth, int frameHeight, int mostMegapixels);

/// The camera's way over a photograph, from one view of the frame's proportions to another.
struct Camera {
    View from;
    View to;

    /// The view at `progress` from 0 to 1.
    View at(double progress) const;
};

/// A slow way across the photograph that closes in, or draws back, within it.
Camera cameraOver(const Surface &photo, int frameWidth, int frameHeight, std::uint64_t seed, bool closesIn);

} // namespace show

#endif
