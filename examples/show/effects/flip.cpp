// The photograph falls into square cards that flip over in a wave, catch the light, and carry the next photograph on
// their backs.
//
// Uses iBltNear32_X_Roto, iFadeOut32 and iBltBilinear32_Add (light), iBltFast32, Blur_Rect (the backdrop).

#include "../angle.h"
#include "../backdrop.h"
#include "../effect.h"
#include "../painting.h"
#include "../random.h"
#include "../supersampling.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace show {

namespace {

constexpr int cardsAcross = 4; // the frame's shorter side

/// How much larger the near edge of a card that stands upright appears, as a share.
constexpr double nearness = 0.2;

constexpr double flipTime = 0.46; // of the transition

struct Card {
    tagRECT place;
    double angle;
    double size;
};

class Flip : public Effect {
    void prepare(int width, int height) override {
        // A streak of light across the card that moves from one of its ends to the other: dark rows on both sides.
        gloss = Canvas(glossColumns, glossRows);
        for (int row = 0; row < glossRows; ++row) {
            const double distance = std::abs(row + 0.5 - glossRows / 2.0) / (cardRows / 2.0);
            fill(gloss, {0, row, glossColumns, row + 1}, greyOf(105 * easeInOut(clampUnit(1 - distance))));
        }
        const double side = std::min(width, height) / static_cast<double>(cardsAcross);
        columns = static_cast<int>(width / side + 0.5);
        rows = static_cast<int>(height / side + 0.5);
    }

    void render(Stage &stage, const Surface &out, const Moment &moment) const override {
        const Stage::Plane before = stage.plane();
        const Stage::Plane after = stage.plane();
        const Stage::Plane still = stage.plane();
        drawShot(stage, before, moment.a);
        drawShot(stage, after, moment.b);
        drawBackdrop(stage, still, before, after, moment.t, 0.45, {});
        extendEdges(after); // the back of a card is read one row further than the card

        std::vector<Card> moving;
        Random random(moment.b.seed);
        const bool fromRight = random.below(2) == 1;
        for (int row = 0; row < rows; ++row)
            for (int column = 0; column < columns; ++column) {
                const double across = (column + 0.5) / columns;
                const double along = 0.72 * (fromRight ? 1 - across : across) + 0.28 * (row + 0.5) / rows;
                const double start = (1 - flipTime) * clampUnit(along + random.between(-0.04, 0.04));
                const double way = stretch(moment.t, start, start + flipTime);
                const tagRECT place = {out.width * column / columns, out.height * row / rows,
                                       out.width * (column + 1) / columns, out.height * (row + 1) / rows};
                if (way <= 0)
                    copy(still, before, place);
                else if (way >= 1)
                    copy(still, after, place);
                else
                    moving.push_back(lit(before, after, place, way));
            }

        extendEdges(still);
        drawSupersampled(stage, out, [&](const Surface &part, int left, int top) {
            drawEnlarged(part, still, left, top);
            for (const Card &card : moving)
                lay(part, left, top, before, after, card);
        });
    }

    /// The card at `way` from 0 to 1 of its own way. Both of its faces take on the light in which it stands.
    Card lit(const Surface &before, const Surface &after, tagRECT place, double way) const {
        const double angle = easeInOut(stretch(way, 0.08, 0.92)) / 2;
        const double drawnBack = easeInOut(clampUnit(std::min(way, 1 - way) * 5));
        // Light falls from above. The front turns towards it and flares up; the back comes out of the shadow.
        const double facing = cosineOf(angle);
        constexpr double brightest = 0.27; // of the half turn
        const double passed = (2 * angle - brightest) / 0.24;
        if (std::abs(passed) < 1) {
            const auto top = static_cast<q_long>((glossRows - cardRows) / 2.0 * (1 + passed));
            addStretched(before, place, gloss, {0, top, glossColumns, top + cardRows});
        }
        dim(before, place, mix(0.62, 1, clampUnit(facing * 1.6)));
        dim(after, place, mix(0.3, 1, clampUnit(-facing)));
        return {place, angle, mix(1, 0.9, drawnBack)};
    }

    static void lay(const Surface &part, int left, int top, const Surface &before, const Surface &after,
                    const Card &card) {
        // Edge-on there is nothing to be seen.
        if (std::abs(cosineOf(card.angle)) < 0.004)
            return;
        const tagRECT &place = card.place;
        const double scale = 2 * card.size;
        // The blit's own unit of perspective is a depth of 1024 pixels of what it draws.
        const double perspective = nearness * 1024 / (scale * static_cast<double>(place.bottom - place.top) / 2);
        const tagPOINT pivot = {(place.left + place.right) / 2, (place.top + place.bottom) / 2};
        const tagPOINT centre = {place.left + place.right - left, place.top + place.bottom - top};
        // The row of the back is counted from the bottom of the card upward, and from the first row of its surface.
        iBltNear32_X_Roto(part.pixels, before.pixels, after.at(0, static_cast<int>(place.top)), nullptr,
                          radiansIn(card.angle), scale, perspective, place, centre, pivot, 0, 0, 0, part.pitch,
                          part.width, part.height);
    }

    static constexpr int glossColumns = 4;
    static constexpr int cardRows = 256; // of the streak's picture that a card shows
    static constexpr int glossRows = 3 * cardRows;

    Canvas gloss;
    int columns = 1;
    int rows = 1;
};

const Registered<Flip> registered("flip", Effect::Kind::transition, Use::inTurn,
                                  "cards flip over in a wave and show the next photograph");

} // namespace

} // namespace show
