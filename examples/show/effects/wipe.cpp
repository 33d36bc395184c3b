// A slanted soft edge sweeps across the frame and leaves the next photograph behind it.
//
// Uses iBltFast32, Edge_Transparency.

#include "../effect.h"
#include "../painting.h"

#include <algorithm>

namespace show {

namespace {

class Wipe : public Effect {
    void render(Stage &stage, const Surface &out, const Moment &moment) const override {
        const Stage::Plane before = stage.plane();
        const Stage::Plane after = stage.plane();
        drawShot(stage, before, moment.a);
        drawShot(stage, after, moment.b);

        // The edge leans by a quarter of the height. It comes from outside the frame on the left and leaves it on the
        // right, with all of its softness.
        const int lean = out.height / 4;
        const int softness = std::max(out.width / 5, 4);
        const int beyond = softness / 2 + lean;
        const int middle = static_cast<int>(mix(-beyond, out.width + beyond, easeInOut(moment.t)));
        tagPOINT upper = {middle + lean, -1};
        tagPOINT lower = {middle - lean, out.height + 1};

        // Either side up to the edge's middle line, on which the strip is laid then.
        for (int y = 0; y < out.height; ++y) {
            const int edge = std::clamp(middle + lean - 2 * lean * y / out.height, 0, out.width);
            copy(out, after, {0, y, edge, y + 1});
            copy(out, before, {edge, y, out.width, y + 1});
        }
        // The strip leaves out the last row of its clip.
        tagRECT clip = {0, 0, out.width, out.height + 1};
        Edge_Transparency(out.pixels, before->pixels, after->pixels, &upper, &lower, softness, out.pitch, 0, 0, 1,
                          &clip);
    }
};

const Registered<Wipe> registered("wipe", Effect::Kind::transition, Use::inTurn,
                                  "a soft slanted edge brings the next photograph in");

} // namespace

} // namespace show
