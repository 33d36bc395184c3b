// One photograph melts into the next.
//
// Uses iBltFast32Alpha.

#include "../effect.h"
#include "../painting.h"

namespace show {

namespace {

class CrossFade : public Effect {
    void render(Stage &stage, const Surface &out, const Moment &moment) const override {
        const Stage::Plane next = stage.plane();
        drawShot(stage, out, moment.a);
        drawShot(stage, next, moment.b);
        blend(out, next, easeInOut(moment.t));
    }
};

const Registered<CrossFade> registered("cross-fade", Effect::Kind::transition, Use::inTurn,
                                       "one photograph melts into the next");

} // namespace

} // namespace show
