#include "photo.h"

#include "easing.h"
#include "image_file.h"
#include "random.h"

#include <algorithm>

namespace show {

namespace {

constexpr double widestShot = 1.02;
constexpr double zoomOfAShot = 1.22;

/// The size of the largest view of the frame's proportions that the photograph holds.
View largestView(const Surface &photo, int frameWidth, int frameHeight) {
    const double width =
        std::min(static_cast<double>(photo.width), static_cast<double>(photo.height) * frameWidth / frameHeight);
    return {0, 0, width, width * frameHeight / frameWidth};
}

/// The view enlarged by `zoom` whose place is given from -1 to 1 of the room that is left in either direction.
View placedView(const Surface &photo, const View &largest, double zoom, double placeX, double placeY) {
    const double width = largest.width / zoom;
    const double height = largest.height / zoom;
    return {(photo.width - width) * (1 + placeX) / 2, (photo.height - height) * (1 + placeY) / 2, width, height};
}

} // namespace

Photo loadPhoto(const std::filesystem::path &path, const PhotoFrame &frame, int mostMegapixels) {
    constexpr int mostDoublings = 2;
    Canvas photo = readImage(path, mostMegapixels).picture;
    if (isMounted(frame.fit, photo.width(), photo.height(), frame.width, frame.height))
        return {mounted(photo, frame.width, frame.height), true};
    const auto shownWidth = [&] { return largestView(photo, frame.width, frame.height).width; };
    while (shownWidth() >= 2.0 * frame.width)
        photo = halved(photo.surface());
    // Less than twice the frame's width would still be read with gaps: that is brought to what a shot shows at last.
    if (shownWidth() > 1.3 * frame.width) {
        const double share = 1.25 * frame.width / shownWidth();
        photo = resampled(photo.surface(), std::max(static_cast<int>(photo.width() * share), 1),
                          std::max(static_cast<int>(photo.height() * share), 1));
    }
    for (int i = 0; i < mostDoublings && shownWidth() * 1.5 < frame.width; ++i)
        photo = doubled(photo.surface());
    extendEdges(photo.surface());
    return {std::move(photo), false};
}

View Camera::at(double progress) const {
    // Never quite at rest, but without a jerk at either end.
    const double way = mix(progress, easeInOut(progress), 0.5);
    return {mix(from.left, to.left, way), mix(from.top, to.top, way), mix(from.width, to.width, way),
            mix(from.height, to.height, way)};
}

Camera cameraOver(const Photo &shown, const PhotoFrame &frame, std::uint64_t seed, bool closesIn) {
    Random random(seed);
    const Surface photo = shown.picture;
    const View largest = largestView(photo, frame.width, frame.height);
    if (shown.isMounted) {
        // Nothing of the photograph may leave the frame.
        const View wide = placedView(photo, largest, 1.01, 0, 0);
        const View close = placedView(photo, largest, mountRoom * 0.99, 0, 0);
        return closesIn ? Camera{wide, close} : Camera{close, wide};
    }
    const double placeX = random.between(0.25, 0.55) * (random.below(2) == 0 ? -1 : 1);
    const double placeY = random.between(0.25, 0.55) * (random.below(2) == 0 ? -1 : 1);
    const double widest = widestShot + random.between(0, 0.15);
    const View wide = placedView(photo, largest, widest, -placeX, -placeY);
    const View close = placedView(photo, largest, widest * zoomOfAShot, placeX, placeY);
    return closesIn ? Camera{wide, close} : Camera{close, wide};
}

} // namespace show
