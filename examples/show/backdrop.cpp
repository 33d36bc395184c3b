#include "backdrop.h"

#include "painting.h"

#include <algorithm>

namespace show {

namespace {

/// The picture at an eighth of its size, which is the larger part of a blur, in the upper left of `result`. Writes the
/// picture's margin and what `between` holds.
Surface eighthOf(const Surface &picture, const Stage::Plane (&between)[2], const Surface &result) {
    Surface large = picture;
    for (const Surface &target : {static_cast<Surface>(between[0]), static_cast<Surface>(between[1]), result}) {
        const Surface half = target.cropped((large.width + 1) / 2, (large.height + 1) / 2);
        drawHalved(half, large);
        large = half;
    }
    return large;
}

/// Stretches the picture over `out`. Writes its margin.
void spread(const Surface &out, const Surface &picture) {
    extendEdges(picture);
    drawView(out, picture, wholeOf(picture));
}

} // namespace

void drawBackdrop(Stage &stage, const Surface &out, const Surface &picture, double brightness) {
    const Stage::Plane between[] = {stage.plane(), stage.plane()};
    const Stage::Plane result = stage.plane();
    const Surface small = eighthOf(picture, between, result);
    blur(small, std::max(small.height / 10, 1), 2);
    dim(small, brightness);
    spread(out, small);
}

void drawBackdrop(Stage &stage, const Surface &out, const Surface &first, const Surface &second, double t,
                  double brightness, const View &shade) {
    const Stage::Plane between[] = {stage.plane(), stage.plane()};
    const Stage::Plane result = stage.plane();
    const Surface small = eighthOf(first, between, result);
    const Surface other = eighthOf(second, between, out);
    blend(small, other, t);
    blur(small, 6);
    dim(small, brightness);

    const auto column = [&](double x) {
        return std::clamp(static_cast<q_long>(x * small.width / out.width), q_long{0}, q_long{small.width});
    };
    const auto row = [&](double y) {
        return std::clamp(static_cast<q_long>(y * small.height / out.height), q_long{0}, q_long{small.height});
    };
    dim(small, {column(shade.left), row(shade.top), column(shade.left + shade.width), row(shade.top + shade.height)},
        0.3);
    blur(small, 4);
    blur(small, 2);
    spread(out, small);
}

} // namespace show
