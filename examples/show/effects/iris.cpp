// A round opening with a soft rim grows and shows the next photograph.
//
// Uses Edge_Transparency_Circle.

#include "../effect.h"
#include "../random.h"

#include <algorithm>

namespace show {

namespace {

class Iris : public Effect {
    void render(Stage &stage, const Surface &out, const Moment &moment) const override {
        const Stage::Plane before = stage.plane();
        const Stage::Plane after = stage.plane();
        drawShot(stage, before, moment.a);
        drawShot(stage, after, moment.b);

        // It opens a little off the centre; width plus height is farther from there than any corner.
        Random random(moment.b.seed);
        tagPOINT centre = {static_cast<q_long>(out.width * random.between(0.4, 0.6)),
                           static_cast<q_long>(out.height * random.between(0.4, 0.6))};
        const int rim = std::max(out.height / 10, 2);
        const int reach = (out.width + out.height) * 11 / 25 + rim;
        const int radius = static_cast<int>(mix(-rim, reach, mix(moment.t, easeIn(moment.t), 0.6)));
        Edge_Transparency_Circle(out.pixels, after->pixels, before->pixels, &centre, radius, rim, out.width, out.height,
                                 out.pitch);
    }
};

const Registered<Iris> registered("iris", Effect::Kind::transition, Use::inTurn,
                                  "a round opening with a soft rim shows the next photograph");

} // namespace

} // namespace show
