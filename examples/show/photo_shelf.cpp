#include "photo_shelf.h"

#include <algorithm>

namespace show {

std::shared_ptr<const Photo> PhotoShelf::photo(const std::filesystem::path &path) {
    std::shared_ptr<Place> place;
    {
        const std::lock_guard lock(mutex);
        const auto found =
            std::find_if(places.begin(), places.end(), [&](const auto &one) { return one->path == path; });
        if (found != places.end()) {
            places.splice(places.begin(), places, found);
        } else {
            places.push_front(std::make_shared<Place>());
            places.front()->path = path;
            if (places.size() > mostPlaces)
                places.pop_back();
        }
        place = places.front();
    }
    const std::lock_guard lock(place->loading);
    if (!place->photo)
        place->photo = std::make_shared<const Photo>(loadPhoto(path, frame, mostMegapixels));
    return place->photo;
}

} // namespace show
