// Bubbles of glass rise and sway before the photograph. Each shows it the way a lens does, and the bubbles behind it,
// with light on its rim, a gleam, and a spot of gathered light on what lies beneath.
//
// Uses MakeBubbleResource, DrawRealBubble and, for large frames, DrawRealBubbleOld, Draw_Ring_Safe (rim),
// Draw_Light_Safe (gathered light), Draw_Star_Type1_Safe (gleam), iBltFast32AlphaChannelSafe and iBltPerfect32 (by
// layDisc and drawView).

#include "../angle.h"
#include "../disc.h"
#include "../effect.h"
#include "../painting.h"
#include "../random.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <vector>

namespace show {

namespace {

/// The sizes at which bubbles are drawn, to be scaled down from there, or up from the last. The lens has a whole number
/// for 65536 / size^2; where the truncated rest of that is small, it is as strong as in any other size.
constexpr std::array<int, 6> drawnSizes = {45, 64, 90, 128, 181, 256};
constexpr int largestSoftSize = 181; // beyond it only DrawRealBubbleOld() works
constexpr int resourceSize = 256;

/// How much farther than the rim the lens sees.
constexpr double reachOfLens = 1.3;

constexpr int middleOfGlass(int size) {
    return static_cast<int>(size / 2 * reachOfLens) + 6;
}

constexpr std::array<q_ulong, 5> hues = {0xBFE6FF, 0xD8D0FF, 0xC8FFF0, 0xFFE0F0, 0xFFF2D0};

/// One bubble's way. It depends on its own random numbers alone.
struct Bubble {
    /// How many times its radius it has at the bottom, and above.
    static constexpr double smallest = 0.86;
    static constexpr double largest = 1.08;

    double nearness; ///< 0 far, 1 close
    double column;   ///< 0 to 1 of the frame's width
    double start;    ///< 0 to 1 of the way up
    double speed;    ///< pixels per second
    double radius;
    double sway;
    double swayTurns;
    double swayPhase;
    q_ulong colour;

    Bubble(Random &random, double unit, double nearnessOfIt, double columnOfIt)
        : nearness(nearnessOfIt), column(columnOfIt), start(random.unit()),
          speed(unit * mix(70, 190, nearness) * random.between(0.9, 1.15)), radius(unit * mix(19, 74, nearness)),
          sway(unit * mix(10, 30, nearness) * random.between(0.7, 1.2)), swayTurns(random.between(0.18, 0.34)),
          swayPhase(random.unit()), colour(hues[static_cast<std::size_t>(random.below(hues.size()))]) {}

    Disc at(double seconds, const Surface &out) const {
        const double reach = radius * 1.4;
        const double way = out.height + 2 * reach;
        const double risen = start + speed * seconds / way;
        const double share = risen - std::floor(risen);
        const double phase = swayPhase + swayTurns * seconds;
        return {column * out.width + sway * (sineOf(phase) + 0.35 * sineOf(2.3 * phase)),
                out.height + reach - share * way + 0.2 * sway * sineOf(1.7 * phase),
                radius * mix(smallest, largest, share)};
    }
};

class Bubbles : public Effect {
    static constexpr int count = 30;

    void prepare(int width, int height) override {
        unit = std::min(width, height) / 720.0;
        resource = makeResource(resourceSize);
        wideResource = makeResource(glassLayout(drawnSizes.back()).pitch());
    }

    static PlaneLayout glassLayout(int size) { return {2 * middleOfGlass(size), 2 * middleOfGlass(size)}; }

    static std::unique_ptr<q_ulong[]> makeResource(int pitch) {
        auto words = std::make_unique<q_ulong[]>(static_cast<std::size_t>(resourceSize * pitch));
        MakeBubbleResource(words.get(), pitch, 0, 0, resourceSize, 1);
        return words;
    }

    void render(Stage &, const Surface &out, const Moment &moment) const override {
        const Shot &shot = moment.a;
        const double seconds = shot.progress * shot.seconds;
        drawView(out, shot.photo, shot.camera.at(shot.progress));
        dim(out, 0.9);
        // What lenses at the frame's edge are filled with reads a pixel beyond it.
        extendEdges(out);

        Random random(shot.seed);
        for (int i = 0; i < count; ++i) {
            // From far to close. The columns are spread evenly by the golden section.
            const double nearness = static_cast<double>(i) / (count - 1);
            const double column = 0.13 + i * 0.6180339887498949 + random.between(-0.03, 0.03);
            const Bubble bubble(random, unit, nearness * nearness, column - std::floor(column));
            const Disc place = bubble.at(seconds, out);
            if (place.touches(out))
                draw(out, place, bubble);
        }
    }

    void draw(const Surface &out, const Disc &place, const Bubble &bubble) const {
        gatherLight(out, place);
        const auto fits = [&](int size) { return size / 2 - 1 >= bubble.radius * Bubble::largest; };
        const auto found = std::find_if(drawnSizes.begin(), drawnSizes.end() - 1, fits);
        const int size = *found;
        const int radius = size / 2;
        const int middle = middleOfGlass(size);
        const Canvas lens(glassLayout(size).width, glassLayout(size).height);
        const Surface glass = lens.surface();
        const Disc part = {middle * 1.0, middle * 1.0, radius - 1.0};
        look(glass, part, out, place);

        std::vector<q_ulong> scratch(static_cast<std::size_t>(size * size));
        tagRECT clip = glass.rect();
        const bool soft = size <= largestSoftSize;
        (soft ? DrawRealBubble : DrawRealBubbleOld)(glass.pixels, scratch.data(), glass.pitch, middle, middle, size,
                                                    (soft ? resource : wideResource).get(), resourceSize, bubble.colour,
                                                    glass.width, glass.height);
        // A band about the ring, to both sides. Its table ends at 127, where the largest bubble has its rim.
        const int thickness = soft ? std::max(radius / 22, 1) : 2;
        const int ring = std::min(radius - thickness, 127 - 2 * thickness);
        Draw_Ring_Safe(glass.pixels, glass.pitch, &clip, middle, middle, ring, thickness, 0x38424A);
        const int gleam = middle - radius * 21 / 50;
        star(glass, gleam, gleam, radius * 2 / 5, 0xFFFFFF, 40);
        layDisc(out, place, glass, part);
    }

    /// Fills the glass with what lies behind the bubble. Beyond the frame its edges go on.
    static void look(const Surface &glass, const Disc &part, const Surface &out, const Disc &place) {
        const double scale = place.radius / part.radius;
        const auto first = [&](double middle, double centre) {
            return std::clamp(static_cast<int>(std::ceil(middle - centre / scale)), 0, glass.width - 1);
        };
        const auto end = [&](double middle, double centre, int extent) {
            return std::clamp(static_cast<int>(std::floor(middle + (extent - 1 - centre) / scale)), 1, glass.width);
        };
        const int left = first(part.x, place.x);
        const int top = first(part.y, place.y);
        const int right = std::max(end(part.x, place.x, out.width), left + 1);
        const int bottom = std::max(end(part.y, place.y, out.height), top + 1);
        const auto within = [](double position, int extent) { return std::clamp(position, 0.0, extent - 1.0); };
        Surface inFrame = glass.cropped(right - left, bottom - top);
        inFrame.pixels = glass.at(left, top);
        drawView(inFrame, out,
                 {within(place.x + (left - part.x) * scale, out.width),
                  within(place.y + (top - part.y) * scale, out.height), (right - left) * scale,
                  (bottom - top) * scale});

        const auto repeat = [&](int x, int y, tagRECT from) { copy(glass, x, y, glass, from); };
        for (int x = 0; x < left; ++x)
            repeat(x, top, {left, top, left + 1, bottom});
        for (int x = right; x < glass.width; ++x)
            repeat(x, top, {right - 1, top, right, bottom});
        for (int y = 0; y < top; ++y)
            repeat(0, y, {0, top, glass.width, top + 1});
        for (int y = bottom; y < glass.height; ++y)
            repeat(0, y, {0, bottom - 1, glass.width, bottom});
    }

    /// The light comes from the upper left; the bubble throws it together on the other side.
    static void gatherLight(const Surface &out, const Disc &place) {
        const int x = static_cast<int>(std::floor(place.x + 0.78 * place.radius));
        const int y = static_cast<int>(std::floor(place.y + 0.84 * place.radius));
        for (const double share : {0.85, 0.5})
            light(out, x, y, static_cast<int>(share * place.radius), 0xFFF0D8, 16);
    }

    double unit = 1;
    std::unique_ptr<q_ulong[]> resource;     // its rows as long as itself
    std::unique_ptr<q_ulong[]> wideResource; // as long as those of the largest glass
};

const Registered<Bubbles> registered("bubbles", Effect::Kind::scene, Use::inTurn,
                                     "bubbles of glass rise before the photograph");

} // namespace

} // namespace show
