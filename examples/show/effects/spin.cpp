// The photograph spins away into the depth and fades, and uncovers the next.
//
// Uses iBltLinear32_Z_Roto_Alpha, iFadeOut32.

#include "../effect.h"
#include "../painting.h"

#include <cmath>

namespace show {

namespace {

// The rotator holds source positions up to 1024 pixels from the centre in a row. With a half diagonal of 720 pixels
// even the corners of the square that it walks stay inside that, and half a row spans no more than 720.
constexpr double longestDiagonal = 1440;

class Spin : public Effect {
    void render(Stage &stage, const Surface &out, const Moment &moment) const override {
        const Stage::Plane whole = stage.plane();
        const Stage::Plane small = stage.plane();
        drawShot(stage, whole, moment.a);
        const double diagonal = std::sqrt(static_cast<double>(out.width) * out.width + out.height * out.height);
        const double share = std::min(1.0, longestDiagonal / diagonal);
        const Surface picture =
            small->cropped(static_cast<int>(out.width * share), static_cast<int>(out.height * share));
        drawView(picture, whole, wholeOf(whole));

        drawShot(stage, out, moment.b);
        dim(out, mix(0.35, 1.0, easeOut(moment.t)));

        const double fall = easeInOut(moment.t);
        const double angle = 4.5 * easeIn(moment.t);
        // A hundredth larger at first, so that the rim which the filter leaves out lies outside the frame.
        const double scale = mix(1.01, 0.06, fall) / share;
        const double alpha = 1 - stretch(moment.t, 0.45, 1.0);
        tagRECT photo = picture.rect();
        const q_long middle = out.width / 2;
        for (tagRECT clip : {tagRECT{0, 0, middle, out.height}, tagRECT{middle, 0, out.width, out.height}})
            iBltLinear32_Z_Roto_Alpha(out.pixels, out.pitch, picture.pixels, picture.pitch, &clip, &photo,
                                      out.width / 2, out.height / 2, static_cast<float>(angle),
                                      static_cast<float>(scale), static_cast<float>(alpha));
        // It begins with the photograph itself, which the rotator softens and enlarges a little.
        blend(out, whole, 1 - easeInOut(stretch(moment.t, 0, 0.12)));
    }
};

const Registered<Spin> registered("spin", Effect::Kind::transition, Use::inTurn,
                                  "the photograph spins away into the depth");

} // namespace

} // namespace show
