// The photograph goes out of focus until only its light is left, which swells, and out of which the next one becomes
// sharp.
//
// Uses Hor_GaussBlur, Ver_GaussBlur, iBltFast32Alpha, iBltBilinear32_Add with brightness.

#include "../effect.h"
#include "../painting.h"

#include <algorithm>
#include <cmath>

namespace show {

namespace {

class Dissolve : public Effect {
    void render(Stage &stage, const Surface &out, const Moment &moment) const override {
        // The two are mixed only while both of them are about as far out of focus.
        const double mixture = easeInOut(stretch(moment.t, 0.3, 0.7));
        const double unfocused = easeInOut(clampUnit(std::min(moment.t, 1 - moment.t) * 2));
        const Stage::Plane next = stage.plane();
        drawShot(stage, out, mixture < 1 ? moment.a : moment.b);
        if (mixture > 0 && mixture < 1) {
            drawShot(stage, next, moment.b);
            blend(out, next, mixture);
        }

        blur(stage, out, unfocused * std::min(out.width, out.height) / 22.0);

        // Light swells where it is bright: the unfocused picture once more over itself.
        const double swelling = 0.27 * unfocused;
        copy(next, out);
        addStretched(out, out.rect(), next, out.rect(), swelling, swelling, swelling);
    }

    static void blur(Stage &stage, const Surface &picture, double sigma) {
        constexpr double leastSigma = 0.3;
        constexpr double leastSigmaAtHalf = 4; // from here on nobody sees that half of the pixels would do
        if (sigma < leastSigma)
            return;
        if (sigma < leastSigmaAtHalf) {
            blurAll(stage, picture, sigma);
            return;
        }
        const Stage::Plane plane = stage.plane();
        const Surface half = plane->cropped((picture.width + 1) / 2, (picture.height + 1) / 2);
        drawHalved(half, picture);
        blur(stage, half, sigma / 2);
        // Each pixel lies a quarter of a small one beside the small one's middle: the first one in the margin.
        extendEdges(half);
        Surface shifted = half;
        shifted.pixels = half.at(-1, -1);
        drawView(picture, shifted, {0.75, 0.75, picture.width / 2.0, picture.height / 2.0});
    }

    static void blurAll(Stage &stage, const Surface &picture, double sigma) {
        // The kernel's whole weights cut its ends off, which leaves boxes around lights. Three passes round them.
        constexpr int passes = 3;
        const Stage::Plane rows = stage.plane();
        const auto deviation = static_cast<float>(sigma / std::sqrt(passes));
        for (int i = 0; i < passes; ++i) {
            Hor_GaussBlur(rows->pixels, picture.pixels, deviation, picture.width, picture.height, picture.pitch);
            Ver_GaussBlur(picture.pixels, rows->pixels, deviation, picture.width, picture.height, picture.pitch);
        }
    }
};

const Registered<Dissolve> registered("dissolve", Effect::Kind::transition, Use::inTurn,
                                      "the photograph goes out of focus and turns into the next");

} // namespace

} // namespace show
