/// \file
/// Photographs that are loaded when they are needed and let go when others are.
#ifndef QMUR_SHOW_PHOTO_SHELF_H
#define QMUR_SHOW_PHOTO_SHELF_H

#include "photo.h"

#include <list>
#include <memory>
#include <mutex>
#include <vector>

namespace show {

class PhotoShelf {
public:
    PhotoShelf(const PhotoFrame &photoFrame, int largestMegapixels)
        : frame(photoFrame), mostMegapixels(largestMegapixels) {}

    /// The photograph, ready to be shown; it lives as long as somebody holds it. Any thread may ask. Throws Failure.
    std::shared_ptr<const Photo> photo(const std::filesystem::path &path);

private:
    /// A photograph that is loaded by the first who asks, while others who ask for it wait.
    struct Place {
        std::filesystem::path path;
        std::mutex loading;
        std::shared_ptr<const Photo> photo;
    };

    /// More than stand in any few neighbouring frames, so that none is loaded twice while a show goes its way.
    static constexpr std::size_t mostPlaces = 4;

    PhotoFrame frame;
    int mostMegapixels;
    std::mutex mutex;
    std::list<std::shared_ptr<Place>> places; ///< the last one asked for comes first
};

} // namespace show

#endif
