#include "fire.h"

#include "../../angle.h"
#include "../../picture.h"
#include "../../random.h"

#include <algorithm>
#include <cmath>

namespace show::winter {

void Fire::prepare(const Yard &yard) {
    unit = yard.unit;
    place = yard.fire;
    const Canvas figure = loadFigure(LoadResourceRedFires, 330, 360);
    warmth = softGlow(lengthOf(720 * unit, 2), lengthOf(190 * unit, 2), 0xF0A860, 0.62);
    flames = cutOut(figure, lengthOf(264 * unit, 2), lengthOf(300 * unit, 2));
    // Thin toward the tips and the sides; the bytes of the coverage are already smooth.
    const Surface all = flames.surface();
    for (int y = 0; y < all.height; ++y) {
        const double high = 1 - static_cast<double>(y) / all.height;
        const auto share = static_cast<q_ulong>(256 * mix(0.97, 0.55, high));
        for (int x = 0; x < all.width; ++x) {
            q_ulong &pixel = *all.at(x, y);
            pixel = (pixel & 0xFFFFFF) | (pixel >> 24) * share >> 8 << 24;
        }
    }
}

void Fire::draw(Stage &stage, const Surface &scene, const Shot &shot, double seconds) const {
    const Surface sprite = flames.surface();
    const double flicker =
        0.84 + 0.08 * sineOf(1.9 * seconds) + 0.05 * sineOf(4.3 * seconds + 0.3) + 0.03 * sineOf(7.1 * seconds + 0.6);
    layFaded(stage, scene, warmth.surface(), place.x, place.y - 12 * unit, flicker);
    glow.shine(scene, place.x, place.y - 12 * unit, 250 * unit, 70 * unit, 0xC06010, 0.40 * flicker);
    glow.shine(scene, place.x, place.y - 70 * unit, 250 * unit, 190 * unit, 0xD06010, 0.28 * flicker);

    const int margin = lengthOf(30 * unit, 1);
    const Stage::Plane large = stage.plane();
    const Stage::Plane blurred = stage.plane();
    const Surface swaying =
        large->cropped(std::min(sprite.width + 2 * margin, scene.width), std::min(sprite.height * 6 / 5, scene.height));
    tagRECT all = swaying.rect();
    fill(swaying, 0);
    const int span = std::min(sprite.width, swaying.width - 2 * margin);
    for (int y = 0; y < swaying.height && span > 0; ++y) {
        const double high = static_cast<double>(swaying.height - 1 - y) / sprite.height;
        const double lift =
            1.02 + 0.07 * sineOf(1.15 * seconds - 0.5 * high) + 0.05 * sineOf(2.7 * seconds - 1.1 * high + 0.4);
        const int row = sprite.height - 1 - rounded(high / lift * sprite.height);
        if (row < 0)
            continue;
        const double sway = 0.55 * sineOf(0.85 * seconds - 0.8 * high) +
                            0.30 * sineOf(1.75 * seconds - 1.5 * high + 0.2) +
                            0.15 * sineOf(3.1 * seconds - 2.6 * high + 0.7);
        const int shift = rounded(margin * sway * std::min(high * 1.4, 1.0));
        copy(swaying, margin + shift, y, sprite, {0, row, span, row + 1});
    }
    // Halved with their coverage.
    if (swaying.width > 2 && swaying.height > 2)
        blurWithOpacity(swaying, blurred, 1);
    const Surface small = blurred->cropped((swaying.width + 1) / 2, (swaying.height + 1) / 2);
    tagRECT half = small.rect();
    iBltNear32(small.pixels, swaying.pixels, &half, &all, small.pitch, swaying.pitch);
    lay(scene, small, rounded(place.x) - small.width / 2, rounded(place.y) - small.height + rounded(8 * unit));
    lightAround(scene, {place.x, place.y - 34 * unit}, 74 * unit, dimmed(0xFFC050, flicker), 40);
    drawSparks(scene, shot, seconds);
}

void Fire::drawSparks(const Surface &scene, const Shot &shot, double seconds) const {
    Random random(seedOf(shot.seed, 1));
    for (int i = 0; i < 26; ++i) {
        const double life = random.between(1.2, 2.4);
        const double phase = random.unit();
        const double start = random.between(-34, 34);
        const double drift = random.between(-30, 40);
        const double rise = random.between(130, 250);
        const double size = random.between(2.2, 4.2);
        const double turns = seconds / life + phase;
        const double t = turns - std::floor(turns);
        const double x = place.x + unit * (start * (1 - 0.5 * t) + drift * t + 9 * sineOf(2 * t + phase));
        const double y = place.y - unit * (40 + rise * easeOut(t));
        const double brightness = stretch(t, 0, 0.12) * (1 - t);
        lightAround(scene, {x, y}, 3.5 * size * unit, dimmed(0xFF6010, brightness), 26);
        dot(scene, {x, y}, 0.55 * size * unit, 0xFFC060, brightness);
    }
}

} // namespace show::winter
