/// \file
/// Which photographs are shown, of those that the user named, alone, in folders or in a playlist.
#ifndef QMUR_SHOW_PHOTO_LIST_H
#define QMUR_SHOW_PHOTO_LIST_H

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace show {

/// A photograph; as the user named it, it may be a folder of photographs.
struct ShownPhoto {
    std::filesystem::path path;
    std::optional<double> seconds = std::nullopt; ///< for each; nothing if the show's own are meant
    // Once it has been read:
    std::size_t bytes = 0;    ///< of its pixels in memory
    std::string comment = {}; ///< what somebody wrote of it, in a line
};

/// Reads a playlist. Each line is the number of seconds, or "-" for the show's own, then white space, then a photograph
/// or a folder, which counts from the playlist's directory; lines that are empty or begin with "#" are passed over.
/// Throws Failure.
std::vector<ShownPhoto> readPlaylist(const std::filesystem::path &path);

struct PhotoReading {
    int threads;
    int mostMegapixels;
    bool skipBad;
};

struct ReadPhotos {
    std::vector<ShownPhoto> photos;
    int leftOut; ///< so many could not be read
};

/// Reads every photograph once, to see that it can be. Those of a folder stand in the order in which they were taken,
/// behind them by name those that do not say; what cannot be read of a folder is left out, which is said. Throws
/// Failure if a photograph that was named itself cannot be read, unless these are to be skipped as well.
ReadPhotos readablePhotos(const std::vector<ShownPhoto> &named, const PhotoReading &reading);

} // namespace show

#endif
