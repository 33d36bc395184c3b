#include "fit.h"

#include "painting.h"
#include "picture.h"

#include <algorithm>

namespace show {

namespace {

/// What covers the frame of a photograph that is more than this much longer one way loses heads and feet.
constexpr double leastShown = 0.6;

constexpr double brightness = 0.42;

/// The photograph's middle, in the proportions of the picture.
View coveringView(const Surface &photo, const Surface &picture) {
    const double share =
        std::min(static_cast<double>(photo.width) / picture.width, static_cast<double>(photo.height) / picture.height);
    const double width = share * picture.width;
    const double height = share * picture.height;
    return {(photo.width - width) / 2, (photo.height - height) / 2, width, height};
}

/// The photograph brought to a size, larger or smaller.
Canvas sized(const Surface &photo, int width, int height) {
    if (photo.width >= 2 * width && photo.height >= 2 * height) {
        const Canvas half = halved(photo);
        return sized(half, width, height);
    }
    return resampled(photo, width, height);
}

void drawBlurred(const Surface &out, const Surface &photo) {
    // At a small size, which is the larger part of the blur.
    constexpr int smallest = 2;
    constexpr int shrinking = 16;
    const Canvas small(std::max(out.width / shrinking, smallest), std::max(out.height / shrinking, smallest));
    const View view = coveringView(photo, out);
    const Canvas whole = sized(photo, std::max(static_cast<int>(small.width() * photo.width / view.width), smallest),
                               std::max(static_cast<int>(small.height() * photo.height / view.height), smallest));
    extendEdges(whole);
    drawView(small, whole, coveringView(whole, small));
    blur(small, std::max(small.height() / 16, 1), 3);
    dim(small, brightness);
    extendEdges(small);
    drawView(out, small, wholeOf(small));
}

/// Darkens what lies around an area, the more the nearer.
void castShadow(const Surface &out, const tagRECT &area) {
    const Canvas shadow(out.width, out.height);
    const Canvas scratch(out.width, out.height);
    fill(shadow, area, opacityOf(190));
    blurWithOpacity(shadow, scratch, std::max(out.height / 24, 1), 2);
    lay(out, shadow, 0, 0);
}

} // namespace

bool isMounted(Fit fit, int photoWidth, int photoHeight, int frameWidth, int frameHeight) {
    const double photo = static_cast<double>(photoWidth) / photoHeight;
    const double frame = static_cast<double>(frameWidth) / frameHeight;
    return fit == Fit::contain || (fit == Fit::automatic && std::min(photo / frame, frame / photo) < leastShown);
}

Canvas mounted(const Surface &photo, int frameWidth, int frameHeight) {
    Canvas picture(static_cast<int>(frameWidth * mountRoom), static_cast<int>(frameHeight * mountRoom));
    const Surface out = picture;
    const double share = std::min(out.width / mountRoom / photo.width, out.height / mountRoom / photo.height);
    const int width = std::max(static_cast<int>(photo.width * share), 1);
    const int height = std::max(static_cast<int>(photo.height * share), 1);
    const int left = (out.width - width) / 2;
    const int top = (out.height - height) / 2;
    drawBlurred(out, photo);
    castShadow(out, {left, top, left + width, top + height});
    const Canvas whole = sized(photo, width, height);
    copy(out, left, top, whole, whole.rect());
    extendEdges(out);
    return picture;
}

} // namespace show
