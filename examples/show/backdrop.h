/// \file
/// What stands behind photographs that leave a part of the frame free: their own light, dimmed and far out of focus.
#ifndef QMUR_SHOW_BACKDROP_H
#define QMUR_SHOW_BACKDROP_H

#include "easing.h"
#include "picture.h"
#include "stage.h"

#include <algorithm>

namespace show {

/// Fills `out` with the blurred mixture of two pictures of its size, `t` of the second one, at `brightness`. A soft
/// shadow lies on it around `shade`.
inline void drawBackdrop(Stage &stage, const Surface &out, const Surface &first, const Surface &second, double t,
                         double brightness, const View &shade) {
    // All of it at an eighth of the size, which is the larger part of the blur.
    constexpr int halvings = 3;
    const Stage::Plane planes[] = {stage.plane(), stage.plane(), stage.plane()};
    const auto reduce = [&](const Surface &picture, const Surface &result) {
        Surface large = picture;
        for (int i = 0; i < halvings; ++i) {
            const Surface &target = i + 1 < halvings ? static_cast<const Surface &>(planes[i]) : result;
            const Surface half = target.cropped((large.width + 1) / 2, (large.height + 1) / 2);
            drawHalved(half, large);
            large = half;
        }
        return large;
    };
    const Surface small = reduce(first, planes[2]);
    const Surface other = reduce(second, out);
    tagRECT whole = small.rect();
    iBltFast32Alpha(small.pixels, other.pixels, 0, 0, &whole, small.pitch, other.pitch, static_cast<float>(t));

    const int least = std::min(small.width, small.height);
    const auto blur = [&](int radius) { Blur_Rect(small.pixels, &whole, small.pitch, radius); };
    blur(std::min(6, least / 2));
    iFadeOut32(small.pixels, &whole, small.pitch, static_cast<float>(brightness));

    const auto column = [&](double x) {
        return std::clamp(static_cast<q_long>(x * small.width / out.width), q_long{0}, q_long{small.width});
    };
    const auto row = [&](double y) {
        return std::clamp(static_cast<q_long>(y * small.height / out.height), q_long{0}, q_long{small.height});
    };
    tagRECT dark = {column(shade.left), row(shade.top), column(shade.left + shade.width),
                    row(shade.top + shade.height)};
    iFadeOut32(small.pixels, &dark, small.pitch, 0.3F);
    blur(std::min(4, least / 2));
    blur(std::min(2, least / 2));

    extendEdges(small);
    drawView(out, small, wholeOf(small));
}

} // namespace show

#endif
