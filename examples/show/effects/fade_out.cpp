// The last photograph sinks into black.
//
// Uses iFadeOut32, iFillRect.

#include "../effect.h"
#include "../painting.h"

namespace show {

namespace {

class FadeOut : public Effect {
    void render(Stage &stage, const Surface &out, const Moment &moment) const override {
        drawShot(stage, out, moment.a);
        dim(out, 1 - easeInOut(moment.t));
    }
};

const Registered<FadeOut> registered("fade-out", Effect::Kind::ending, Use::inTurn,
                                     "the last photograph sinks into black");

} // namespace

} // namespace show
