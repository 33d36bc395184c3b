// Slow pan and zoom over a photograph, in steps far below a pixel.
//
// Uses iBltPerfect32 (by drawView).

#include "../effect.h"

namespace show {

namespace {

class Pan : public Effect {
    void render(Stage &, const Surface &out, const Moment &moment) const override {
        drawView(out, moment.a.photo, moment.a.camera.at(moment.a.progress));
    }
};

const Registered<Pan> registered("pan", Effect::Kind::scene, Use::often,
                                 "the camera wanders slowly over the photograph");

} // namespace

} // namespace show
