// The photograph lies as a double page in an open book. Its right half rises, bends over and falls to the left, and the
// next photograph is on its back and below it.
//
// Uses iBltNear32_Y_Roto for each strip of the page that bends, iFadeOut32 (light and shadow), iFillRect (margins),
// Blur_Rect (the backdrop).

#include "../angle.h"
#include "../backdrop.h"
#include "../effect.h"
#include "../painting.h"
#include "../point.h"
#include "../supersampling.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace show {

namespace {

constexpr q_ulong paper = 0xF3F0E8;
constexpr int stripCount = 32;

/// How much larger what stands upright at the height of a page's width appears, as its share of the distance.
constexpr double nearness = 0.34;

/// A part of the page, as high as the book, that is flat in itself.
struct Strip {
    int left; // columns of the photograph
    int right;
    double angle;
    double place; // where it begins: pixels to the right of the spine in a book of full size
    double scale; // how large it appears there
    double reach; // how far it goes to the right
};

using Page = std::array<Strip, stripCount>;

/// The page at `t` from 0 to 1 of its way. Its outer edge sets off first.
Page bentPage(double t, int width) {
    Page page;
    const int spine = width / 2;
    const double pageWidth = width - spine;
    double place = 0;
    double scale = 1;
    for (int i = 0; i < stripCount; ++i) {
        constexpr double lag = 0.26;
        const double inward = 1 - (i + 0.5) / stripCount;
        Strip &strip = page[static_cast<std::size_t>(i)];
        strip.left = spine + (width - spine) * i / stripCount;
        strip.right = spine + (width - spine) * (i + 1) / stripCount;
        strip.angle = easeInOut(clampUnit(t * (1 + lag) - lag * inward)) / 2;
        strip.place = place;
        strip.scale = scale;
        const double extent = strip.right - strip.left;
        strip.reach = extent * cosineOf(strip.angle) * scale;
        place += strip.reach;
        scale += scale * scale * nearness * extent / pageWidth * sineOf(strip.angle);
    }
    return page;
}

/// How the page would stand at `place`, from 0 at the spine to 1, if it were not flat in strips.
double angleAt(const Page &page, double place) {
    const double position = std::clamp(place * stripCount - 0.5, 0.0, stripCount - 1.0);
    const auto strip = static_cast<std::size_t>(std::min(position, stripCount - 2.0));
    return mix(page[strip].angle, page[strip + 1].angle, position - static_cast<double>(strip));
}

void fadeColumns(const Surface &picture, int left, int right, double factor) {
    dim(picture, {left, 0, right, picture.height}, factor);
}

void layMargin(const Surface &picture, int thickness) {
    const q_long width = picture.width;
    const q_long height = picture.height;
    for (const tagRECT band : {tagRECT{0, 0, width, thickness}, tagRECT{0, height - thickness, width, height},
                               tagRECT{0, 0, thickness, height}, tagRECT{width - thickness, 0, width, height}})
        fill(picture, band, paper);
    extendEdges(picture);
}

class TurnPage : public Effect {
    void render(Stage &stage, const Surface &out, const Moment &moment) const override {
        const Stage::Plane before = stage.plane();
        const Stage::Plane after = stage.plane();
        const Stage::Plane backdrop = stage.plane();
        drawShot(stage, before, moment.a);
        drawShot(stage, after, moment.b);

        // It begins and ends with the photographs themselves, which the book softens a little.
        constexpr double blending = 0.08;
        const double share = 1 - std::min(moment.t, 1 - moment.t) / blending;
        const Stage::Plane photo = stage.plane();
        if (share > 0)
            copy(photo, moment.t < 0.5 ? before : after);

        // The book moves away while its page turns, and fills the frame before and afterwards.
        const double away = easeInOut(clampUnit(std::min(moment.t, 1 - moment.t) * 3));
        const double size = mix(1, 0.8, away);
        const double halfWidth = out.width * size / 2;
        const double halfHeight = out.height * size / 2;
        const double soft = out.height / 24.0;
        drawBackdrop(stage, backdrop, before, after, moment.t, 0.5,
                     {out.width / 2 - halfWidth - soft, out.height / 2 - halfHeight, 2 * (halfWidth + soft),
                      2 * (halfHeight + soft)});

        extendEdges(backdrop);

        const Page page = bentPage(stretch(moment.t, 0.06, 0.94), out.width);
        const int margin = static_cast<int>(away * out.height / 32);
        layMargin(before, margin);
        layMargin(after, margin);
        shade(before, after, page, away);

        const int spine = out.width / 2;
        const int pivotY = out.height / 2;
        drawSupersampled(stage, out, [&](const Surface &part, int left, int top) {
            drawEnlarged(part, backdrop, left, top);
            const auto lay = [&](q_ulong *front, q_ulong *back, double angle, double scale, double perspective,
                                 tagRECT rect, int pivotX, double place) {
                const tagPOINT centre = {rounded(2 * (spine + size * place)) - left, 2 * pivotY - top};
                iBltNear32_Y_Roto(part.pixels, front, back, nullptr, radiansIn(angle), 2 * size * scale, perspective,
                                  rect, centre, {pivotX, pivotY}, 0, 0, 0, part.pitch, part.width, part.height);
            };
            lay(before->pixels, before->pixels, 0, 1, 0, {0, 0, spine, out.height}, spine, 0);
            lay(after->pixels, after->pixels, 0, 1, 0, {spine, 0, out.width, out.height}, spine, 0);

            // The blit's own unit of perspective is a depth of 1024 pixels of what it draws.
            const double perspective = nearness * 1024 / (2 * size * (out.width - spine));
            for (const Strip &strip : page) {
                if (std::abs(2 * size * strip.reach) < 0.25)
                    continue;
                // A little more than the strip, so that no gap opens toward the next one, which covers it.
                const int right = std::min(strip.right + 2, out.width + 1);
                lay(before->pixels, after->pixels + (out.width - right), strip.angle, strip.scale, perspective,
                    {strip.left, 0, right, out.height}, strip.left, strip.place);
            }
        });

        if (share > 0)
            blend(out, photo, share);
    }

    /// Shades the halves that lie flat under the page, and the page by how it stands to the light.
    static void shade(const Surface &before, const Surface &after, const Page &page, double strength) {
        const int width = before.width;
        const int spine = width / 2;
        const double pageWidth = width - spine;
        const Strip &last = page.back();
        const double edge = (last.place + last.reach) / pageWidth;
        const auto gutter = [&](double distance) {
            const double inward = 1 - std::min(distance / 0.16, 1.0);
            return 1 - 0.42 * strength * inward * inward;
        };
        // The shadow begins at the page's outer edge and grows softer with the distance.
        const auto shadow = [&](double distance, double depth) {
            const double spread = 1 + std::max(distance, 0.0) * 3.2;
            return 1 - depth / (spread * spread);
        };
        const double onRight = 0.7 * stretch(edge, -0.55, 0.35);
        const double onLeft = 0.6 * stretch(-edge, -0.05, 0.8);
        const int step = std::max(width / 320, 1);
        for (int x = 0; x < width; x += step) {
            const int next = std::min(x + step, width);
            const double place = (x + 0.5 * step - spine) / pageWidth;
            if (place >= 0)
                fadeColumns(after, x, next, gutter(place) * shadow(place - edge, onRight));
            else if (x < spine)
                fadeColumns(before, x, std::min(next, spine), gutter(-place) * shadow(edge - place, onLeft));
        }
        for (int x = spine; x < width; x += step) {
            const int next = std::min(x + step, width);
            const double place = (x + 0.5 * step - spine) / pageWidth;
            const double facing = cosineOf(angleAt(page, place));
            // Light falls from the upper left: the front turns away from it, and the back comes out of the dark.
            const double front = 1 - 0.5 * (1 - facing) * (1 - 0.25 * facing);
            const double back = 1 - 0.42 * (1 + facing);
            fadeColumns(before, x, next, std::max(front, 0.2) * gutter(place));
            fadeColumns(after, width - next, width - x, back * gutter(place));
        }
    }
};

const Registered<TurnPage> registered("turn-page", Effect::Kind::transition, Use::inTurn,
                                      "a page of a book turns over to the next photograph");

} // namespace

} // namespace show
