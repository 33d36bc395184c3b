/// \file
/// A photograph, ready to be shown, and the camera that moves over it.
#ifndef QMUR_SHOW_PHOTO_H
#define QMUR_SHOW_PHOTO_H

#include "fit.h"
#include "picture.h"

#include <cstdint>
#include <filesystem>

namespace show {

struct Photo {
    Canvas picture; ///< with a margin that repeats its edges
    bool isMounted; ///< shown whole before a backdrop, which its picture holds
};

/// The frame for which photographs are made ready, and how.
struct PhotoFrame {
    int width;
    int height;
    Fit fit;
};

/// Reads a photograph and brings it near the size at which a frame shows it, so that neither moiré nor blocks appear.
/// Throws Failure.
Photo loadPhoto(const std::filesystem::path &path, const PhotoFrame &frame, int mostMegapixels);

/// The camera's way over a photograph, from one view of the frame's proportions to another.
struct Camera {
    View from;
    View to;

    /// The view at `progress` from 0 to 1.
    View at(double progress) const;
};

/// A slow way across the photograph that closes in, or draws back, within it.
Camera cameraOver(const Photo &photo, const PhotoFrame &frame, std::uint64_t seed, bool closesIn);

} // namespace show

#endif
