// The photograph is shown on a screen that stands out in the snow at night, under a moon, within a chain of lamps.
// Beside it a tree twinkles, a snowman sings, a fire burns; steps appear in the snow and an airliner passes overhead.
//
// Uses LoadResourceChristmasTree, LoadResourceRedFires, LoadResourceAirplane, LoadResourceFootMark and
// LoadResourceMusicSymbol for what the scene holds; iBltFast32AlphaChannelSafe to lay it, iBltLinear32_Z_Roto to turn
// it and iBltFast32_Add with brightness to tint it; Hor_Blur32, Ver_Blur32 and iBltNear32 for the flames;
// iBltBilinear32_Add for the light on the snow; Draw_Light_Safe and Draw_Star_Type1_Safe for lamps and stars. The
// scenery is drawn by iFillRect, iFill_Circle_Safe, iFill_Circle_Alpha, Draw_3DBall_Safe, DDLine_Fat and Rect_Safe.

#include "../angle.h"
#include "../effect.h"
#include "winter/fire.h"
#include "winter/tree.h"

#include "../angle.h"
#include "../effect.h"
#include "../random.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace show {

namespace {

using namespace winter;

struct Print {
    Canvas sprite;
    double x;
    double y;
};

class Winter : public Effect {
    static constexpr int prints = 13;

    void prepare(int frameWidth, int frameHeight) override {
        yard = Yard(frameWidth, frameHeight);
        backdrop = sceneryOf(yard);
        tree.prepare(yard);
        fire.prepare(yard);
        preparePrints();
        const Canvas airliner = tinted(loadFigure(LoadResourceAirplane, 156, 114), 0.66, 0.70, 0.88);
        airplane = cutOut(airliner, lengthOf(100 * yard.unit, 2), lengthOf(73 * yard.unit, 2));
        for (const double radius : {1.5, 2.1, 3.0, 5.0, 8.0})
            flakes.push_back(softDot(lengthOf(2 * radius * yard.unit, 2), 0xEEF3FF));
    }

    void render(Stage &stage, const Surface &out, const Moment &moment) const override {
        const Shot &shot = moment.a;
        const double seconds = shot.progress * shot.seconds;
        const Stage::Plane plane = stage.plane();
        const Surface &scene = plane;
        copy(scene, backdrop);
        drawPhoto(stage, scene, shot);
        drawAirplane(scene, shot.progress, seconds);
        drawChain(scene, seconds);
        drawPrints(stage, scene, shot.progress);
        tree.draw(scene, seconds);
        tree.sing(stage, scene, shot, seconds);
        fire.draw(stage, scene, shot, seconds);
        drawSnowfall(scene, shot, seconds);

        // The camera draws back from the screen.
        extendEdges(scene);
        const double way = mix(shot.progress, easeInOut(shot.progress), 0.6);
        const double zoom = mix(1.13, 1.01, way);
        const double viewWidth = out.width / zoom;
        const double viewHeight = out.height / zoom;
        drawView(out, scene,
                 {(out.width - viewWidth) * mix(0.18, 0.45, way), (out.height - viewHeight) * mix(0.55, 0.6, way),
                  viewWidth, viewHeight});
    }

    void preparePrints() {
        // Snow has no colour of its own: the print's shades in the blue of the shadows.
        const Canvas foot(122, 166);
        const Surface print = foot.surface();
        LoadResourceFootMark(print.pixels, print.width, print.height, print.pitch);
        for (int y = 0; y < print.height; ++y)
            for (int x = 0; x < print.width; ++x) {
                q_ulong &pixel = *print.at(x, y);
                const double shade =
                    (channelOf(pixel, 16) * 0.3 + channelOf(pixel, 8) * 0.5 + channelOf(pixel, 0) * 0.2) / 255.0;
                if (pixel != 0)
                    pixel = colourOf(22 + 80 * shade, 32 + 92 * shade, 76 + 130 * shade);
            }
        constexpr double heading = 1.15; // to the right, and away from the eye
        const Canvas left = turned(mirrored(foot), heading);
        const Canvas right = turned(foot, heading);
        for (int i = 0; i < prints; ++i) {
            const double way = static_cast<double>(i) / (prints - 1);
            const double size = mix(88, 62, way) * yard.unit;
            const double side = (i % 2 == 0 ? -1 : 1) * size;
            footsteps.push_back({cutOut(i % 2 == 0 ? left : right, lengthOf(size, 2), lengthOf(0.5 * size, 2)),
                                 mix(0.30, 0.635, way) * yard.width + 0.07 * side,
                                 mix(0.965, 0.885, easeOut(way)) * yard.height + 0.085 * side});
        }
    }

    void drawPhoto(Stage &stage, const Surface &scene, const Shot &shot) const {
        const tagRECT &screen = yard.screen;
        const Stage::Plane whole = stage.plane();
        const Stage::Plane small = stage.plane();
        drawView(whole, shot.photo, shot.camera.at(shot.progress));
        extendEdges(whole);
        const Surface picture =
            small->cropped(static_cast<int>(screen.right - screen.left), static_cast<int>(screen.bottom - screen.top));
        drawView(picture, whole, wholeOf(whole));
        copy(scene, static_cast<int>(screen.left), static_cast<int>(screen.top), picture, picture.rect());

        // The snow before the screen takes its colour.
        Surface mean = picture;
        for (int i = 0; mean.width > 1 || mean.height > 1; ++i) {
            const Surface half = (i % 2 == 0 ? whole : small)->cropped((mean.width + 1) / 2, (mean.height + 1) / 2);
            drawHalved(half, mean);
            mean = half;
        }
        glow.shine(scene, (screen.left + screen.right) / 2.0, 0.80 * yard.height, 0.42 * yard.width, 0.13 * yard.height,
                   *mean.pixels & 0xFFFFFF, 0.42);
    }

    /// It comes forth from behind the screen and climbs past the moon.
    void drawAirplane(const Surface &scene, double progress, double seconds) const {
        const Surface sprite = airplane.surface();
        const double t = stretch(progress, 0.20, 0.98);
        const q_long edge = yard.screen.right + rounded(11 * yard.unit);
        const double from = static_cast<double>(edge) - sprite.width;
        const double x = mix(from, 1.06 * yard.width, t);
        const double y = 0.345 * yard.height - 0.30 * (x - from);
        if (t <= 0 || t >= 1)
            return;
        lay(scene, sprite, rounded(x), rounded(y), {edge, 0, scene.width, scene.height});

        // Lamps at the tip of a wing, on the tail and at the nose: red ones pulse, white ones flash.
        const auto lamp = [&](double column, double row, double radius, q_ulong colour, double brightness) {
            const double lampX = std::floor(x) + column * sprite.width;
            if (lampX < edge)
                return;
            const Point at = {lampX, std::floor(y) + row * sprite.height};
            lightAround(scene, at, 3 * radius * yard.unit, dimmed(colour, brightness), 34);
            lightAround(scene, at, 1.4 * radius * yard.unit, dimmed(colour, brightness), 60);
            dot(scene, at, 0.35 * radius * yard.unit, 0xFFFFFF, brightness);
        };
        const double pulse = clampUnit(1.6 * sineOf(0.8 * seconds) - 0.4);
        const double flash = clampUnit(4 * sineOf(1.1 * seconds + 0.3) - 3);
        lamp(0.42, 0.84, 9, 0xFF3020, pulse);
        lamp(0.06, 0.16, 9, 0xFFFFFF, flash);
        lamp(0.93, 0.17, 7, 0xFFF0C0, 0.8);
    }

    /// Lamps all around the screen, through which colours run.
    void drawChain(const Surface &scene, double seconds) const {
        const double outward = 5.5 * yard.unit;
        const double left = yard.screen.left - outward;
        const double top = yard.screen.top - outward;
        const double across = yard.screen.right - yard.screen.left + 2 * outward;
        const double down = yard.screen.bottom - yard.screen.top + 2 * outward;
        const double around = 2 * (across + down);
        const int lamps = std::max(static_cast<int>(around / (46 * std::max(yard.unit, 0.1))) / 5 * 5, 5);
        for (int i = 0; i < lamps; ++i) {
            double way = around * i / lamps;
            double x = left;
            double y = top;
            if (way < across) {
                x += way;
            } else if ((way -= across) < down) {
                x += across;
                y += way;
            } else if ((way -= down) < across) {
                x += across - way;
                y += down;
            } else {
                y += down - (way - across);
            }
            const double wave = 0.5 + 0.5 * sineOf(0.45 * seconds - i / 5.0);
            drawLamp(scene, {x, y}, 6.5, lampColours[static_cast<std::size_t>(i) % lampColours.size()],
                     0.30 + 0.70 * easeIn(wave), yard.unit);
        }
    }

    void drawPrints(Stage &stage, const Surface &scene, double progress) const {
        for (std::size_t i = 0; i < footsteps.size(); ++i) {
            const double start = mix(0.10, 0.80, static_cast<double>(i) / prints);
            const double shown = easeInOut(stretch(progress, start, start + 0.05));
            if (shown > 0)
                layFaded(stage, scene, footsteps[i].sprite.surface(), footsteps[i].x, footsteps[i].y, shown);
        }
    }

    void drawSnowfall(const Surface &scene, const Shot &shot, double seconds) const {
        constexpr int falling = 150;
        Random random(seedOf(shot.seed, 2));
        for (int i = 0; i < falling; ++i) {
            const double depth = random.unit();
            const double column = random.unit();
            const double row = random.unit();
            const double phase = random.unit();
            const double closeness = depth * depth * depth;
            const double speed = mix(38, 150, closeness) * random.between(0.8, 1.2) * yard.unit;
            const Surface flake =
                flakes[static_cast<std::size_t>(closeness * static_cast<double>(flakes.size()))].surface();
            const double spanX = yard.width + 2.0 * flake.width;
            const double spanY = yard.height + 2.0 * flake.height;
            const double x = column * spanX + 0.22 * speed * seconds +
                             yard.unit * mix(5, 22, closeness) * sineOf(phase + 0.17 * seconds);
            const double y = row * spanY + speed * seconds;
            lay(scene, flake, static_cast<int>(x - spanX * std::floor(x / spanX)) - flake.width,
                static_cast<int>(y - spanY * std::floor(y / spanY)) - flake.height);
        }
    }

    Yard yard;
    Canvas backdrop;
    Glow glow;
    Tree tree;
    Fire fire;
    Canvas airplane;
    std::vector<Print> footsteps;
    std::vector<Canvas> flakes;
};

const Registered<Winter> registered("winter", Effect::Kind::scene, Use::onRequest,
                                    "the photograph on a screen in the snow, by a tree and a fire");

} // namespace

} // namespace show
