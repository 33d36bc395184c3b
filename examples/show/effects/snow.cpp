// Snow drifts by in three depths: specks and soft dots far away, flakes with six arms that turn as they fall, and
// blurred ones that pass close to the lens.
//
// Uses iBltFast32SafeKeySrc (specks), iBltFast32SafeKeySrcAntiAliasing (dots), iBltNear32SafeKeySrcAdd (flakes) and
// iBltFast32SafeAlpha_Channel (blurred flakes); the sprites are drawn by iFillRect, iBltNear32_Z_Roto,
// iBltNear32_Z_Roto_KeySrc and iBltPerfect32 (by reduced); iFadeOut32 dims the photograph.

#include "../angle.h"
#include "../effect.h"
#include "../painting.h"
#include "../random.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace show {

namespace {

constexpr double circle = radiansIn(1);
constexpr q_ulong snowWhite = 0xF2F6FF;

/// A square turned through all angles around the middle of `out`: a disc. Every pixel carries the colour with `opacity`
/// in its top byte.
void layDisc(const Surface &out, double radius, double opacity) {
    constexpr int side = 256;
    constexpr int turns = 64;
    const Canvas square(side, side);
    fill(square, opacityOf(opacity) | snowWhite);
    tagRECT whole = square.rect();
    tagRECT clip = out.rect();
    const double scale = radius * 1.4142135623730951 / side;
    for (int i = 0; i < turns; ++i)
        iBltNear32_Z_Roto(out.pixels, out.pitch, square.surface().pixels, square.surface().pitch, &clip, &whole,
                          out.width / 2, out.height / 2, static_cast<float>(circle / 4 * i / turns),
                          static_cast<float>(scale));
}

Canvas drawDot(double radius) {
    const int reach = static_cast<int>(radius) + 2;
    Canvas dot(2 * reach, 2 * reach);
    layDisc(dot.surface(), radius, 0);
    return dot;
}

/// A disc that grows denser toward its middle in many small steps.
Canvas drawBlurredFlake(double radius) {
    constexpr int density = 120;
    constexpr int steps = 40;
    const int reach = static_cast<int>(radius) + 2;
    Canvas flake(2 * reach, 2 * reach);
    for (int i = 1; i <= steps; ++i) {
        const double inward = static_cast<double>(i) / steps;
        layDisc(flake.surface(), radius * (1 - 0.8 * inward), density * easeInOut(inward));
    }
    return flake;
}

/// Pairs of barbs along the arms of a flake: how far from its middle they grow, and how long they are.
struct FlakeStyle {
    std::array<int, 3> barbs;
    std::array<int, 3> lengths;
};

constexpr std::array<FlakeStyle, 3> flakeStyles = {{{{110, 165, 215}, {66, 52, 34}},   //
                                                    {{80, 150, 190}, {40, 78, 40}},    //
                                                    {{135, 175, 215}, {92, 60, 30}}}}; //
constexpr int masterSize = 512;

/// Lays `part` of a sprite over `out`, turned around (`x`, `y`).
void layTurned(const Surface &out, const Surface &sprite, tagRECT part, int x, int y, double angle) {
    tagRECT clip = out.rect();
    iBltNear32_Z_Roto_KeySrc(out.pixels, out.pitch, sprite.pixels, sprite.pitch, &clip, &part, x, y,
                             static_cast<float>(angle), 1);
}

/// A flake at a size from which the smaller ones are taken.
Canvas drawMasterFlake(const FlakeStyle &style) {
    constexpr int middle = masterSize / 2;
    constexpr int halfThickness = 12;

    // One arm, upward from the middle, with barbs at 60 degrees: bars turned about their own middle.
    const Canvas arm(masterSize, masterSize);
    const Canvas bar(masterSize, masterSize);
    fill(arm.surface(), {middle - halfThickness, 10, middle + halfThickness, middle}, snowWhite);
    for (std::size_t i = 0; i < style.barbs.size(); ++i) {
        const int length = style.lengths[i];
        const tagRECT barb = {0, 0, 2 * halfThickness, length};
        fill(bar.surface(), barb, snowWhite);
        for (const int side : {-1, 1})
            layTurned(arm.surface(), bar.surface(), barb, middle + side * length * 7 / 16,
                      middle - style.barbs[i] - length / 4, side * circle / 6);
    }

    Canvas flake(masterSize, masterSize);
    for (int i = 0; i < 6; ++i)
        layTurned(flake.surface(), arm.surface(), {0, 0, masterSize, masterSize}, middle, middle, circle / 6 * i);
    return flake;
}

Canvas turned(const Canvas &flake, double angle) {
    Canvas result(masterSize, masterSize);
    layTurned(result.surface(), flake.surface(), flake.rect(), masterSize / 2, masterSize / 2, angle);
    return result;
}

/// One flake's way. It depends on its own random numbers alone.
struct Flake {
    double column; ///< 0 to 1 of the frame's width
    double row;    ///< 0 to 1 of the way down, at the start
    double speed;  ///< pixels per second
    double sway;   ///< pixels to either side
    double swayTurns;
    double swayPhase;
    double size; ///< 0 to 1 of the sizes that there are
    double turn;
    double spin;
    int style;

    Flake(Random &random, double unit, double slowest, double fastest)
        : column(random.unit()), row(random.unit()), speed(unit * random.between(slowest, fastest)),
          sway(unit * random.between(6, 26)), swayTurns(random.between(0.1, 0.28)), swayPhase(random.unit()),
          size(random.unit()), turn(random.unit()), spin(random.between(-0.8, 0.8)),
          style(random.below(static_cast<int>(flakeStyles.size()))) {}

    /// Its place after `seconds`. What leaves the frame, by `reach` pixels, comes in again on the other side.
    tagPOINT at(double seconds, int width, int height, int reach) const {
        constexpr double wind = 0.35;
        const int angle = static_cast<int>((swayPhase + swayTurns * seconds) * 8192) & 8191;
        const double x = column * (width + 2 * reach) + sway * iSin[angle] / 32768 + wind * speed * seconds;
        const double y = row * (height + 2 * reach) + speed * seconds;
        return {wrapped(x, width + 2 * reach) - reach, wrapped(y, height + 2 * reach) - reach};
    }

    double turnAt(double seconds) const {
        const double turns = turn + spin * seconds;
        return turns - std::floor(turns);
    }

    static q_long wrapped(double value, int extent) {
        return static_cast<q_long>(value - extent * std::floor(value / extent));
    }
};

void addClipped(q_ulong *dst, q_ulong *src, int centreX, int centreY, tagRECT *srcRect, int dstPitch, int srcPitch,
                int clipWidth, int clipHeight) {
    const q_long width = srcRect->right - srcRect->left;
    const q_long height = srcRect->bottom - srcRect->top;
    const q_long left = centreX - width / 2;
    const q_long top = centreY - height / 2;
    tagRECT dstRect = {left, top, left + width, top + height};
    iBltNear32SafeKeySrcAdd(dst, src, &dstRect, srcRect, dstPitch, srcPitch, clipWidth, clipHeight);
}

class Snow : public Effect {
    static constexpr std::array<double, 3> speckRadii = {1, 1.5, 2};
    static constexpr std::array<double, 3> dotRadii = {2.5, 3.2, 4.2};
    static constexpr std::array<double, 4> flakeRadii = {12, 18, 25, 34};
    static constexpr std::array<double, 3> blurredRadii = {34, 56, 78};
    static constexpr int turnSteps = 16; // within the 60 degrees after which a flake looks the same

    void prepare(int, int height) override {
        unit = height / 720.0;
        for (const double radius : speckRadii)
            specks.push_back(drawDot(unit * radius));
        for (const double radius : dotRadii)
            dots.push_back(drawDot(unit * radius));
        for (const double radius : blurredRadii)
            blurred.push_back(drawBlurredFlake(unit * radius));
        for (const FlakeStyle &style : flakeStyles) {
            const Canvas master = drawMasterFlake(style);
            for (int turn = 0; turn < turnSteps; ++turn) {
                const Canvas large = turned(master, circle / 6 * turn / turnSteps);
                for (const double radius : flakeRadii) {
                    const int size = std::clamp(2 * static_cast<int>(unit * radius), 2, masterSize);
                    flakes.push_back(reduced(large.surface(), size, size));
                }
            }
        }
    }

    void render(Stage &, const Surface &out, const Moment &moment) const override {
        const Shot &shot = moment.a;
        const double seconds = shot.progress * shot.seconds;
        drawView(out, shot.photo, shot.camera.at(shot.progress));
        dim(out, 0.86);

        Random random(shot.seed);
        for (int i = 0; i < 90; ++i) {
            const Flake flake(random, unit, 45, 70);
            lay<iBltFast32SafeKeySrc>(out, specks[pick(flake.size, specks.size())], flake, seconds);
        }
        for (int i = 0; i < 50; ++i) {
            const Flake flake(random, unit, 70, 100);
            lay<iBltFast32SafeKeySrcAntiAliasing>(out, dots[pick(flake.size, dots.size())], flake, seconds);
        }
        for (int i = 0; i < 32; ++i) {
            const Flake flake(random, unit, 100, 170);
            const std::size_t turn =
                static_cast<std::size_t>(flake.style) * turnSteps + pick(flake.turnAt(seconds), turnSteps);
            lay<addClipped>(out, flakes[turn * flakeRadii.size() + pick(flake.size, flakeRadii.size())], flake,
                            seconds);
        }
        for (int i = 0; i < 7; ++i) {
            const Flake flake(random, unit, 230, 330);
            lay<iBltFast32SafeAlpha_Channel>(out, blurred[pick(flake.size, blurred.size())], flake, seconds);
        }
    }

    static std::size_t pick(double share, std::size_t count) {
        return static_cast<std::size_t>(share * static_cast<double>(count));
    }

    template <auto blit>
    static void lay(const Surface &out, const Canvas &sprite, const Flake &flake, double seconds) {
        const Surface src = sprite.surface();
        tagRECT whole = src.rect();
        const tagPOINT place = flake.at(seconds, out.width, out.height, src.width);
        blit(out.pixels, src.pixels, static_cast<int>(place.x), static_cast<int>(place.y), &whole, out.pitch, src.pitch,
             out.width, out.height);
    }

    double unit = 1;
    std::vector<Canvas> specks;
    std::vector<Canvas> dots;
    std::vector<Canvas> flakes; // by style, turn and size
    std::vector<Canvas> blurred;
};

const Registered<Snow> registered("snow", Effect::Kind::scene, Use::inTurn,
                                  "snow drifts by in three depths before the photograph");

} // namespace

} // namespace show
