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

} // namespace

EffectInfo pan() {
    return {"pan", Effect::Kind::scene, "the camera wanders slowly over the photograph", makeEffect<Pan>};
}

} // namespace show
