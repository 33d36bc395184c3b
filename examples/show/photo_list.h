/// \file
/// Which photographs are shown, of those that the user named, alone, in folders or in a playlist.
#ifndef QMUR_SHOW_PHOTO_LIST_H
#define QMUR_SHOW_PHOTO_LIST_H

#include <cstddef>
#include <filesystem>
#include <optional>
#include <vector>

namespace show {

/// A photograph; as the user named it, it may be a folder of photographs.
struct ShownPhoto {
    std::filesystem::path path;
    std::optional<double> seconds = std::nullopt; ///< for each; nothing if the show's own are meant
    std::size_t bytes = 0;                        ///< of its pixels in memory, once it has been read
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

/// Reads every photograph once, to see that it can be. Those of a folder stand in the order in which they were taken,
/// behind them by name those that do not say. Throws Failure, which names all that cannot be read, unless these are to
/// be skipped, which is said.
std::vector<ShownPhoto> readablePhotos(const std::vector<ShownPhoto> &named, const PhotoReading &reading);

} // namespace show

#endif
