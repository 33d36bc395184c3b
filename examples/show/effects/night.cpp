// Night falls over the photograph. The stars come out one by one and twinkle while the sky turns slowly; far lights
// glow and throb below; fireflies wander by, and now and then a star falls.
//
// Uses Draw_Star_Type1_Safe, Draw_Star_Type2, Draw_Star_Type3, Draw_One_Star_Add, Draw_Cross and Draw_Pixel_Add
// (stars), Draw_Light_Safe (falling stars and bright ones), iLine_AntiAliasing_AddSome and iLine_AntiAliasing_Add
// (falling stars), iBltFast32_Add with brightness and iFillRect (the dark).

#include "../angle.h"
#include "../effect.h"
#include "../glow.h"
#include "../painting.h"
#include "../point.h"
#include "../random.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <vector>

namespace show {

namespace {

constexpr std::array<q_ulong, 6> starColours = {0xFFFFFF, 0xDCE6FF, 0xBFD2FF, 0xFFF0D8, 0xFFDCB8, 0xE8F0FF};
constexpr std::array<q_ulong, 6> lampColours = {0xFFA040, 0xFFB860, 0xFF8830, 0xFFC890, 0xFFA848, 0xA0C8FF};

/// Draws something additive that knows whole places alone between pixels: shared out among the four nearest, in
/// colours dimmed by their part.
template <class Draw>
void between(double x, double y, q_ulong colour, Draw draw) {
    const double left = std::floor(x);
    const double top = std::floor(y);
    for (const int row : {0, 1})
        for (const int column : {0, 1}) {
            const double part = (column ? x - left : left + 1 - x) * (row ? y - top : top + 1 - y);
            if (const q_ulong shared = dimmed(colour, part))
                draw(static_cast<int>(left) + column, static_cast<int>(top) + row, shared);
        }
}

/// Where in the photograph the sky is, as far as its colours tell: even, without warm colours, and reaching down from
/// the upper edge.
class Sky {
public:
    Sky(Stage &stage, const Surface &out, const Shot &shot)
        : view(shot.camera.at(shot.progress)), photoWidth(shot.photo.width), photoHeight(shot.photo.height),
          frameWidth(out.width), frameHeight(out.height) {
        const Stage::Plane planes[] = {stage.plane(), stage.plane()};
        drawView(planes[0], shot.photo, wholeOf(shot.photo));
        Surface small = planes[0];
        for (int i = 1; small.width > 96 || small.height > 96; ++i) {
            const Surface half = planes[i % 2]->cropped((small.width + 1) / 2, (small.height + 1) / 2);
            drawHalved(half, small);
            small = half;
        }
        columns = small.width;
        rows = small.height;
        reach(small);
        soften();
    }

    /// From 0 to 1 at a place of the frame.
    double at(Point place) const {
        const double x = (view.left + place.x * view.width / frameWidth) * columns / photoWidth - 0.5;
        const double y = (view.top + place.y * view.height / frameHeight) * rows / photoHeight - 0.5;
        const auto column = static_cast<int>(std::floor(x));
        const auto row = static_cast<int>(std::floor(y));
        return mix(mix(shareAt(column, row), shareAt(column + 1, row), x - column),
                   mix(shareAt(column, row + 1), shareAt(column + 1, row + 1), x - column), y - row);
    }

private:
    /// How much it costs to come to each place from the upper edge: what colours differ, and warmth.
    void reach(const Surface &small) {
        constexpr double farthest = 60;
        std::vector<double> costs(static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows), farthest);
        const auto costAt = [&](int x, int y) -> double & { return costs[index(x, y)]; };
        const auto warmth = [&](int x, int y) {
            const q_ulong pixel = *small.at(x, y);
            return std::max(channelOf(pixel, 16) - channelOf(pixel, 0) - 12, 0) * 0.8;
        };
        const auto step = [&](int x, int y, int fromX, int fromY) {
            double difference = 0;
            for (const int shift : {16, 8, 0})
                difference += std::abs(channelOf(*small.at(x, y), shift) - channelOf(*small.at(fromX, fromY), shift));
            return std::max(difference - 14, 0.0) + 0.3 * warmth(x, y);
        };
        for (int x = 0; x < columns; ++x)
            costAt(x, 0) = std::min(warmth(x, 0), farthest);
        for (bool changed = true; changed;) {
            changed = false;
            const auto improve = [&](int x, int y, int fromX, int fromY) {
                if (fromX < 0 || fromY < 0 || fromX >= columns || fromY >= rows)
                    return;
                const double cost = costAt(fromX, fromY) + step(x, y, fromX, fromY);
                if (cost < costAt(x, y)) {
                    costAt(x, y) = cost;
                    changed = true;
                }
            };
            for (int y = 0; y < rows; ++y)
                for (int x = 0; x < columns; ++x)
                    for (const int aside : {-1, 1}) {
                        improve(x, y, x + aside, y);
                        improve(x, y, x, y + aside);
                    }
        }
        for (const double cost : costs)
            shares.push_back(1 - stretch(cost, 10, 45));
    }

    void soften() {
        const std::vector<double> before = shares;
        const auto beforeAt = [&](int x, int y) { return before[index(x, y)]; };
        for (int y = 0; y < rows; ++y)
            for (int x = 0; x < columns; ++x) {
                double sum = 0;
                for (int dy = -1; dy <= 1; ++dy)
                    for (int dx = -1; dx <= 1; ++dx)
                        sum += beforeAt(x + dx, y + dy);
                shares[index(x, y)] = sum / 9;
            }
    }

    double shareAt(int x, int y) const { return shares[index(x, y)]; }

    std::size_t index(int x, int y) const {
        return static_cast<std::size_t>(std::clamp(y, 0, rows - 1)) * static_cast<std::size_t>(columns) +
               static_cast<std::size_t>(std::clamp(x, 0, columns - 1));
    }

    View view;
    int photoWidth;
    int photoHeight;
    int frameWidth;
    int frameHeight;
    int columns = 1;
    int rows = 1;
    std::vector<double> shares;
};

class Night : public Effect {
    void prepare(int width, int height) override { unit = std::min(width, height) / 720.0; }

    void render(Stage &stage, const Surface &out, const Moment &moment) const override {
        const Shot &shot = moment.a;
        const double seconds = shot.progress * shot.seconds;
        // Dusk takes the first part of the shot, but never longer than three seconds.
        const double dusk = easeInOut(stretch(seconds, 0, std::min(3.0, 0.5 * shot.seconds)));
        const Stage::Plane day = stage.plane();
        drawView(day, shot.photo, shot.camera.at(shot.progress));
        darken(out, day, dusk);

        const Sky sky(stage, out, shot);
        drawSky(out, sky, shot, seconds, dusk);
        drawLamps(out, shot, seconds, dusk);
        drawFireflies(out, shot, seconds, dusk);
        drawFallingStars(out, sky, shot, seconds);
    }

    /// Row by row, the darker and bluer the higher, in air that glows a little by itself. Red goes last at dusk.
    static void darken(const Surface &out, const Surface &day, double dusk) {
        const double afterglow = 4 * dusk * (1 - dusk);
        for (int y = 0; y < out.height; ++y) {
            const double low = static_cast<double>(y) / out.height;
            tagRECT row = {0, y, out.width, y + 1};
            const q_ulong air = levelOf(mix(0.010, 0.060, low * low) * dusk) << 16 |
                                levelOf(mix(0.018, 0.066, low * low) * dusk) << 8 |
                                levelOf(mix(0.080, 0.130, low) * dusk);
            fill(out, row, air);
            const double red = mix(1, mix(0.20, 0.31, low), dusk) + 0.10 * afterglow * low;
            const double green = mix(1, mix(0.26, 0.34, low), dusk);
            const double blue = mix(1, mix(0.43, 0.47, low), dusk) - 0.10 * afterglow * low;
            add(out, day, row, red, green, blue);
        }
    }

    /// The sky turns about a point far below the frame. A milky way crosses it.
    void drawSky(const Surface &out, const Sky &sky, const Shot &shot, double seconds, double dusk) const {
        constexpr int clouds = 46;
        constexpr int stars = 330;
        constexpr int faintStars = 260;
        const double poleX = 0.35 * out.width;
        const double poleY = 1.25 * out.height;
        const double turned = 0.009 * (shot.progress - 0.5);
        const double across = cosineOf(turned);
        const double down = sineOf(turned);
        const auto inFrame = [&](double column, double row) {
            const double x = column * out.width - poleX;
            const double y = row * out.height - poleY;
            return Point{poleX + x * across - y * down, poleY + x * down + y * across};
        };
        Random random(seedOf(shot.seed, 0));
        const double leans = random.below(2) == 0 ? -1 : 1;
        // Denser toward the middle of the band.
        const auto inMilkyWay = [&] {
            const double along = random.between(-0.1, 1.1);
            double beside = random.unit();
            beside += random.unit();
            beside += random.unit();
            return inFrame(along, 0.26 + leans * 0.38 * (along - 0.5) + 0.30 * (beside - 1.5));
        };

        // There is less to be seen through the haze further down.
        const auto haze = [&](const Point &place) { return 1 - stretch(place.y / out.height, 0.40, 0.92); };
        for (int i = 0; i < clouds; ++i) {
            const Point place = inMilkyWay();
            const double size = random.between(60, 150);
            const q_ulong colour = random.below(3) == 0 ? 0xA088D0 : 0x7890E0;
            addGlow(out, place, 1.6 * size * unit, colour, 0.10 * easeIn(dusk) * haze(place) * sky.at(place));
        }
        for (int i = 0; i < stars + faintStars; ++i) {
            const bool faint = i >= stars;
            const double column = random.between(-0.06, 1.06);
            const double row = random.between(-0.08, 0.95);
            const Point place = faint ? inMilkyWay() : inFrame(column, row);
            const double size = faint ? random.between(0, 0.5) : random.unit();
            const double speed = random.between(0.25, 1.1);
            const double phase = random.unit();
            const double late = random.between(0.2, 0.8);
            const q_ulong colour = starColours[static_cast<std::size_t>(random.below(starColours.size()))];
            const double shown = easeInOut(stretch(dusk, late, std::min(late + 0.25, 1.0)));
            const double twinkle =
                0.72 + 0.28 * sineOf(phase + speed * seconds) * sineOf(2.7 * speed * seconds - phase);
            if (place.x > -40 * unit && place.x < out.width + 40 * unit && place.y > -40 * unit)
                drawStar(out, place.x, place.y, size, colour, shown * haze(place) * twinkle * sky.at(place));
        }
    }

    /// From specks to bright ones with rays. \param size 0 to 1, evenly distributed
    void drawStar(const Surface &out, double x, double y, double size, q_ulong colour, double brightness) const {
        tagRECT clip = {-1, -1, out.width, out.height};
        const auto inside = [&](int column, int row, int margin) {
            return column >= margin && row >= margin && column < out.width - margin && row < out.height - margin;
        };
        const auto radius = [&](double at720, int least) { return std::max(static_cast<int>(at720 * unit), least); };
        if (size < 0.62) {
            between(x, y, dimmed(colour, brightness * (0.30 + size)), [&](int column, int row, q_ulong shared) {
                if (unit < 1.5 && inside(column, row, 0))
                    Draw_Pixel_Add(out.pixels, out.pitch, column, row, shared);
                else if (unit >= 1.5 && inside(column, row, radius(1.2, 1)))
                    Draw_Star_Type3(out.pixels, out.pitch, column, row, radius(1.2, 1), shared, 32);
            });
        } else if (size < 0.76) {
            const int reach = radius(3, 2);
            between(x, y, dimmed(colour, brightness), [&](int column, int row, q_ulong shared) {
                if (inside(column, row, reach))
                    Draw_Star_Type3(out.pixels, out.pitch, column, row, reach, shared, 28);
            });
        } else if (size < 0.92) {
            const int reach = radius(mix(5, 9, (size - 0.76) * 6), 4);
            between(x, y, dimmed(colour, brightness),
                    [&](int column, int row, q_ulong shared) { star(out, column, row, reach, shared, 80); });
        } else if (size < 0.975) {
            const int reach = radius(mix(10, 16, (size - 0.92) * 17), 4);
            between(x, y, dimmed(colour, brightness), [&](int column, int row, q_ulong shared) {
                if (inside(column, row, reach))
                    Draw_Star_Type2(out.pixels, out.pitch, column, row, reach, shared, 64);
                if (inside(column, row, 2))
                    Draw_Cross(out.pixels, out.pitch, column, row, dimmed(shared, 0.25));
            });
        } else {
            const int rays = radius(mix(18, 32, (size - 0.975) * 40) * (0.6 + 0.4 * brightness), 4);
            between(x, y, dimmed(colour, brightness), [&](int column, int row, q_ulong shared) {
                light(out, column, row, rays, shared, 11);
                star(out, column, row, rays, shared, 70);
                Draw_One_Star_Add(out.pixels, out.pitch, &clip, column, row, rays, channelOf(shared, 16),
                                  channelOf(shared, 8), channelOf(shared, 0));
            });
        }
    }

    /// Far lights along the lower part of the frame. They move with the photograph, but less.
    void drawLamps(const Surface &out, const Shot &shot, double seconds, double dusk) const {
        constexpr int lamps = 24;
        constexpr double distance = 0.3;
        const View view = shot.camera.at(shot.progress);
        const View rest = shot.camera.at(0.5);
        const double panX = distance * (rest.left - view.left) / view.width;
        const double panY = distance * (rest.top - view.top) / view.height;
        Random random(seedOf(shot.seed, 1));
        for (int i = 0; i < lamps; ++i) {
            const double place = i * 0.6180339887498949 + random.between(0, 0.03);
            const double depth = random.unit();
            const double column = mix(-0.1, 1.1, place - std::floor(place));
            const double row = mix(0.74, 1.0, depth);
            const double size = mix(12, 40, depth * depth) * random.between(0.8, 1.2);
            const double phase = random.unit();
            const double speed = random.between(0.12, 0.3);
            const double late = random.between(0.3, 0.85);
            const q_ulong colour = lampColours[static_cast<std::size_t>(random.below(lampColours.size()))];
            const double lit = easeInOut(stretch(dusk, late, std::min(late + 0.12, 1.0)));
            const double pulse = 0.8 + 0.2 * sineOf(phase + speed * seconds);
            const double x = (column + panX) * out.width;
            const double y = (row + panY) * out.height;
            glow(out, x, y, unit * size * (0.9 + 0.1 * pulse), colour, lit * pulse);
        }
    }

    /// A core, and the light around it, which falls off ever more slowly.
    void glow(const Surface &out, double x, double y, double radius, q_ulong colour, double brightness) const {
        addGlow(out, {x, y}, 4.2 * radius, colour, 0.55 * brightness);
        addGlow(out, {x, y}, 1.4 * radius, colour, 0.8 * brightness);
        addGlow(out, {x, y}, std::max(0.5 * radius, 2.0), 0xFFF0D8, 2.2 * brightness);
    }

    void drawFireflies(const Surface &out, const Shot &shot, double seconds, double dusk) const {
        constexpr int fireflies = 16;
        Random random(seedOf(shot.seed, 2));
        for (int i = 0; i < fireflies; ++i) {
            const double column = random.between(0.03, 0.97);
            const double row = random.between(0.42, 0.95);
            const double reach = random.between(0.05, 0.13);
            const double side = random.below(2) == 0 ? -1 : 1;
            const double speed = side * random.between(0.07, 0.15);
            const double phase = random.unit();
            const double blink = random.between(0.25, 0.45);
            const double size = random.between(5, 9);
            const double turns = phase + speed * seconds;
            const double x =
                column * out.width + reach * out.height * (sineOf(turns) + 0.4 * sineOf(2.6 * turns + phase));
            const double y =
                row * out.height + reach * out.height * (0.6 * cosineOf(1.3 * turns) + 0.25 * sineOf(3.1 * turns));
            const double pulse = clampUnit(0.55 + 0.65 * sineOf(blink * seconds + 3 * phase));
            const double brightness = easeInOut(pulse) * stretch(dusk, 0.7, 1);
            const Point place = {x, y};
            addGlow(out, place, std::max(5 * size * unit, 6.0), 0x9CC840, 0.3 * brightness);
            addGlow(out, place, std::max(1.8 * size * unit, 3.0), 0xE0FF70, 1.4 * brightness);
        }
    }

    /// Two of them in a shot, across the upper sky.
    void drawFallingStars(const Surface &out, const Sky &sky, const Shot &shot, double seconds) const {
        constexpr double duration = 0.8;
        Random random(seedOf(shot.seed, 3));
        for (const double share : {0.5, 0.74}) {
            const double start = share * shot.seconds + random.between(-0.2, 0.2);
            const double side = random.below(2) == 0 ? -1 : 1;
            const double fromX = out.width * (0.5 - side * random.between(0.1, 0.4));
            const double fromY = out.height * random.between(0.03, 0.2);
            const double slope = random.between(0.3, 0.6);
            const double t = (seconds - start) / duration;
            if (t > 0 && t < 1)
                drawFallingStar(out, sky, fromX, fromY, side, slope, t);
        }
    }

    void drawFallingStar(const Surface &out, const Sky &sky, double fromX, double fromY, double side, double slope,
                         double t) const {
        // The fading of a line is coarse unless its length is a power of two.
        int length = 16;
        while (length < 512 && 1.5 * length < 250 * unit)
            length *= 2;
        const double travelled = 560 * unit * t;
        const int x = static_cast<int>(std::floor(fromX + side * travelled));
        const int y = static_cast<int>(std::floor(fromY + slope * travelled));
        const int tailX = x - static_cast<int>(side) * length;
        const int tailY = y - static_cast<int>(slope * length);
        const double brightness = 4 * t * (1 - t) * sky.at({static_cast<double>(x), static_cast<double>(y)});
        if (brightness <= 0)
            return;

        tagRECT frame = out.rect();
        const int beside = std::max(static_cast<int>(1.2 * unit), 1);
        for (int i = -beside; i <= beside; ++i)
            iLine_AntiAliasing_AddSome(out.pixels, &frame, out.pitch, x, y + i, tailX, tailY + i,
                                       dimmed(0xA8C4FF, brightness * (1 - std::abs(i) / (beside + 0.7))), 1);
        iLine_AntiAliasing_Add(out.pixels, &frame, out.pitch, x, y, x + (tailX - x) / 8, y + (tailY - y) / 8,
                               dimmed(0x8098C0, brightness), 1);
        const auto radius = [&](double at720) { return std::max(static_cast<int>(at720 * unit), 4); };
        light(out, x, y, radius(34), dimmed(0x90B0FF, brightness), 30);
        star(out, x, y, radius(20), dimmed(0xFFFFFF, brightness), 90);
    }

    double unit = 1;
};

const Registered<Night> registered("night", Effect::Kind::scene, Use::inTurn,
                                   "night falls over the photograph, with stars and lights");

} // namespace

} // namespace show
