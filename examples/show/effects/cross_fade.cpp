// One photograph melts into the next.
//
// Uses iBltFast32Alpha.

#include "../effect.h"

namespace show {

namespace {

class CrossFade : public Effect {
    void render(Stage &stage, const Surface &out, const Moment &moment) const override {
        const Stage::Plane next = stage.plane();
        drawShot(stage, out, moment.a);
        drawShot(stage, next, moment.b);
        tagRECT frame = out.rect();
        iBltFast32Alpha(out.pixels, next->pixels, 0, 0, &frame, out.pitch, next->pitch,
                        static_cast<float>(easeInOut(moment.t)));
    }
};

} // namespace

EffectInfo crossFade() {
    return {"cross-fade", Effect::Kind::transition, "one photograph melts into the next", makeEffect<CrossFade>};
}

} // namespace show
