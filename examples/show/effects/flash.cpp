// The photograph begins to glow, a flash of light swallows it, and the next one cools down from the glare.
//
// Uses iBltBilinear32_Add with brightness, iBltPerfect32 (by drawHalved), Edge_Transparency_Circle, iFillRect.

#include "../effect.h"
#include "../painting.h"

#include <cmath>

namespace show {

namespace {

constexpr int lightSize = 256;
constexpr double peak = 0.45;
constexpr int halvings = 4;

class Flash : public Effect {
    /// A round light that fades out from its centre.
    void prepare(int, int) override {
        light = Canvas(lightSize, lightSize);
        const Canvas white(lightSize, lightSize);
        const Canvas black(lightSize, lightSize);
        fill(white, 0xFFFFFF);
        tagPOINT centre = {lightSize / 2, lightSize / 2};
        Edge_Transparency_Circle(light.surface().pixels, white.surface().pixels, black.surface().pixels, &centre,
                                 lightSize / 4, lightSize / 4, lightSize, lightSize, light.surface().pitch);
    }

    void render(Stage &stage, const Surface &out, const Moment &moment) const override {
        const bool before = moment.t < peak;
        drawShot(stage, out, before ? moment.a : moment.b);
        const double strength = before ? easeIn(moment.t / peak) : (1 - moment.t) / (1 - peak);

        // The glow: the picture's own light, blurred by a detour over a small size.
        const Stage::Plane planes[] = {stage.plane(), stage.plane()};
        Surface glow = out;
        for (int i = 0; i < halvings; ++i) {
            const Surface half = planes[i % 2]->cropped((glow.width + 1) / 2, (glow.height + 1) / 2);
            drawHalved(half, glow);
            glow = half;
        }
        for (int i = 0; i < 2; ++i)
            addStretched(out, out.rect(), glow, glow.rect(), strength, strength, strength);

        // The flash: the smaller the part of the light that fills the frame, the nearer it is.
        const double distance = before ? 1 - easeIn(moment.t / peak) : 0;
        const double half = mix(2, lightSize / 2 - 1, distance);
        const auto low = static_cast<q_long>(lightSize / 2 - half);
        const auto high = static_cast<q_long>(lightSize / 2 + half);
        const tagRECT part = {low, low, high, high};
        if (before) {
            addStretched(out, out.rect(), light, part, strength, strength * 0.97, strength * 0.90);
        } else {
            // Gone sooner than the glow, and turning blue, or it would lie over the next photograph like a fog.
            const double glare = strength * strength * strength;
            addStretched(out, out.rect(), light, part, glare * strength, glare * mix(strength, 1, 0.4), glare);
        }
        // At its height it leaves no colour.
        const double blinding = easeInOut(stretch(std::abs(moment.t - peak), 0.16, 0.03));
        if (blinding > 0) {
            fill(planes[0], 0xFFFFFF);
            blend(out, planes[0], blinding);
        }
    }

    Canvas light;
};

const Registered<Flash> registered("flash", Effect::Kind::transition, Use::inTurn,
                                   "a flash of light swallows the photograph and leaves the next");

} // namespace

} // namespace show
