#include "caption.h"

#include "lettering.h"
#include "painting.h"
#include "picture.h"

#include <algorithm>

namespace show {

Canvas captionFor(const std::string &line, int frameWidth, int frameHeight) {
    // Written at twice the size, so that halving smooths the edges.
    const int height = std::max(frameHeight / 20, 8);
    const int width = frameWidth * 9 / 10;
    const int room = height / 2; // for the shadow
    const Canvas large(2 * (width + 2 * room), 2 * (height + 2 * room));
    if (line.empty() || !writeLine(large, line, {2 * room, 2 * room, 2 * (room + width), 2 * (room + height)}))
        return {};
    const Canvas letters = reduced(large, width + 2 * room, height + 2 * room);
    Canvas caption(letters.width(), letters.height());
    Canvas shade(letters.width(), letters.height());
    const Surface white = letters;
    const Surface dark = shade;
    for (int y = 0; y < white.height; ++y)
        for (int x = 0; x < white.width; ++x)
            *dark.at(x, y) = opacityOf(channelOf(*white.at(x, y), 0));
    blurWithOpacity(dark, caption, std::max(height / 3, 1), 2);
    const Surface out = caption;
    for (int y = 0; y < white.height; ++y)
        for (int x = 0; x < white.width; ++x) {
            // The letter over its shadow, which is made stronger than the blur leaves it.
            const double letter = channelOf(*white.at(x, y), 0) / 255.0;
            const double shadow = std::min(channelOf(*dark.at(x, y), 24) * 2.2 / 255, 0.8) * (1 - letter);
            const double opacity = letter + shadow;
            *out.at(x, y) = opacity > 0 ? opacityOf(255 * opacity) | greyOf(255 * letter / opacity) : 0;
        }
    return caption;
}

void layCaption(const Surface &out, const Canvas &caption, double opacity) {
    if (opacity <= 0)
        return;
    const Canvas faded(caption.width(), caption.height());
    const Surface from = caption;
    const Surface to = faded;
    for (int y = 0; y < from.height; ++y)
        for (int x = 0; x < from.width; ++x) {
            const q_ulong pixel = *from.at(x, y);
            *to.at(x, y) = (pixel & 0xFFFFFF) | opacityOf(channelOf(pixel, 24) * opacity);
        }
    lay(out, faded, (out.width - to.width) / 2, out.height - to.height - out.height / 30);
}

} // namespace show
