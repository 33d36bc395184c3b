#include "picture.h"

#include "painting.h"

namespace show {

namespace {

// iBltPerfect32() holds sources of fewer than 1024 pixels: larger ones are drawn in tiles.
constexpr int largestTile = 1000;

int tilesFor(double srcExtent) {
    return static_cast<int>(srcExtent) / largestTile + 1;
}

/// A position that is not negative, in sixteenths of a pixel.
q_long sixteenths(double position) {
    return static_cast<q_long>(position * 16 + 0.5);
}

} // namespace

View wholeOf(const Surface &picture) {
    return {0, 0, static_cast<double>(picture.width), static_cast<double>(picture.height)};
}

void drawView(const Surface &out, const Surface &picture, const View &view) {
    const int columns = tilesFor(view.width);
    const int rows = tilesFor(view.height);
    const auto srcX = [&](int x) { return sixteenths(view.left + view.width * x / out.width); };
    const auto srcY = [&](int y) { return sixteenths(view.top + view.height * y / out.height); };
    // Each tile writes one column and row too many; the tiles that follow draw over them.
    for (int row = 0; row < rows; ++row) {
        const int top = out.height * row / rows;
        const int bottom = out.height * (row + 1) / rows;
        for (int column = 0; column < columns; ++column) {
            const int left = out.width * column / columns;
            const int right = out.width * (column + 1) / columns;
            tagRECT dstRect = {left * 16, top * 16, right * 16, bottom * 16};
            tagRECT srcRect = {srcX(left), srcY(top), srcX(right), srcY(bottom)};
            iBltPerfect32(out.pixels, picture.pixels, &dstRect, &srcRect, out.unsignedPitch(), picture.unsignedPitch());
        }
    }
}

void drawHalved(const Surface &out, const Surface &picture) {
    extendEdges(picture);
    // Half a pixel further each of the four taps weighs a quarter.
    drawView(out, picture, {0.5, 0.5, out.width * 2.0, out.height * 2.0});
}

Canvas halved(const Surface &picture) {
    Canvas half((picture.width + 1) / 2, (picture.height + 1) / 2);
    drawHalved(half.surface(), picture);
    return half;
}

Canvas doubled(const Surface &picture) {
    extendEdges(picture);
    Canvas twice(picture.width * 2, picture.height * 2);
    // The first pixel lies a quarter of a pixel before the source's first, in the margin.
    Surface shifted = picture;
    shifted.pixels = picture.at(-1, -1);
    drawView(twice.surface(), shifted, {0.75, 0.75, picture.width * 1.0, picture.height * 1.0});
    return twice;
}

Canvas reduced(const Surface &picture, int width, int height) {
    if (picture.width >= 2 * width && picture.height >= 2 * height) {
        const Canvas half = halved(picture);
        return reduced(half.surface(), width, height);
    }
    Canvas result(width, height);
    drawView(result.surface(), picture, wholeOf(picture));
    return result;
}

Canvas resampled(const Surface &picture, int width, int height) {
    extendEdges(picture);
    // Twice the new size is not smaller than the picture, so that mixing neighbours leaves no pixel out.
    const Canvas twice(2 * width, 2 * height);
    drawView(twice.surface(), picture, wholeOf(picture));
    Canvas result(width, height);
    drawHalved(result.surface(), twice.surface());
    return result;
}

void extendEdges(const Surface &picture) {
    constexpr int margin = PlaneLayout::margin;
    // From the margin's own corner, since places in a surface are not negative.
    Surface whole = picture;
    whole.pixels = picture.at(-margin, -margin);
    const auto repeat = [&](int x, int y, tagRECT from) {
        const tagRECT moved = {from.left + margin, from.top + margin, from.right + margin, from.bottom + margin};
        copy(whole, x + margin, y + margin, whole, moved);
    };
    for (int i = 1; i <= margin; ++i) {
        repeat(-i, 0, {0, 0, 1, picture.height});
        repeat(picture.width - 1 + i, 0, {picture.width - 1, 0, picture.width, picture.height});
    }
    for (int i = 1; i <= margin; ++i) {
        repeat(-margin, -i, {-margin, 0, picture.width + margin, 1});
        repeat(-margin, picture.height - 1 + i, {-margin, picture.height - 1, picture.width + margin, picture.height});
    }
}

} // namespace show
