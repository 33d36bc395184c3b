// The last photograph sinks into black.
//
// Uses iFadeOut32, iFillRect.

#include "../effect.h"

namespace show {

namespace {

class FadeOut : public Effect {
    void render(Stage &stage, const Surface &out, const Moment &moment) const override {
        tagRECT frame = out.rect();
        const double brightness = 1 - easeInOut(moment.t);
        drawShot(stage, out, moment.a);
        // A factor below 1/256 would leave the picture standing: it asks for a gentle step, not for black.
        if (brightness * 256 >= 1)
            iFadeOut32(out.pixels, &frame, out.pitch, static_cast<float>(brightness));
        else
            iFillRect(out.pixels, &frame, out.pitch, 0);
    }
};

} // namespace

EffectInfo fadeOut() {
    return {"fade-out", Effect::Kind::ending, "the last photograph sinks into black", makeEffect<FadeOut>};
}

} // namespace show
