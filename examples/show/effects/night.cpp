// Night falls over the photograph. The stars come out one by one and twinkle while the sky turns slowly; far lights
// glow and throb below; fireflies wander by, and now and then a star falls.
//
// Uses Draw_Star_Type1_Safe, Draw_Star_Type2, Draw_Star_Type3, Draw_One_Star_Add, Draw_Cross and Draw_Pixel_Add
// (stars), Draw_Light_Safe, Draw_Light and Draw_Ring_Safe (lights and their halos), iLine_AntiAliasing_AddSome and
// iLine_AntiAliasing_Add (falling stars), iBltFast32_Add with brightness and iFillRect (the dark).

#include "../effect.h"
#include "../random.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace show {

namespace {

constexpr std::array<q_ulong, 6> starColours = {0xFFFFFF, 0xDCE6FF, 0xBFD2FF, 0xFFF0D8, 0xFFDCB8, 0xE8F0FF};
constexpr std::array<q_ulong, 5> lampColours = {0xFFB050, 0xFFC878, 0xFF9040, 0xFFD8A0, 0x90C8FF};

int steps(double turns) {
    return static_cast<int>(std::floor(turns * 8192)) & 8191;
}

double sine(double turns) {
    return iSin[steps(turns)] / 32768.0;
}

double cosine(double turns) {
    return iCos[steps(turns)] / 32768.0;
}

q_ulong dimmed(q_ulong colour, double share) {
    const auto weight = static_cast<q_ulong>(clampUnit(share) * 256);
    return ((colour & 0xFF00FF) * weight >> 8 & 0xFF00FF) | ((colour & 0xFF00) * weight >> 8 & 0xFF00);
}

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

        Random random(shot.seed);
        drawSky(out, random, seconds, dusk);
        drawLamps(out, random, seconds, dusk);
        drawFireflies(out, random, seconds, dusk);
        drawFallingStars(out, random, seconds, shot.seconds);
    }

    /// Row by row, the darker and bluer the higher. Red goes last at dusk, and first where it gets dark.
    static void darken(const Surface &out, const Surface &day, double dusk) {
        tagRECT frame = out.rect();
        iFillRect(out.pixels, &frame, out.pitch, 0);
        const auto level = [](double share) { return static_cast<unsigned char>(share * 255 + 0.5); };
        const double afterglow = 4 * dusk * (1 - dusk);
        for (int y = 0; y < out.height; ++y) {
            const double low = static_cast<double>(y) / out.height;
            const double red = mix(1, mix(0.12, 0.24, low), dusk) + 0.10 * afterglow * low;
            const double green = mix(1, mix(0.17, 0.26, low), dusk);
            const double blue = mix(1, mix(0.36, 0.40, low), dusk) - 0.10 * afterglow * low;
            tagRECT row = {0, y, out.width, y + 1};
            iBltFast32_Add(out.pixels, day.pixels, 0, static_cast<q_ulong>(y), &row, static_cast<q_ulong>(out.pitch),
                           static_cast<q_ulong>(day.pitch), level(std::min(red, 1.0)), level(green), level(blue));
        }
    }

    /// The sky turns about a point far below the frame.
    void drawSky(const Surface &out, Random &random, double seconds, double dusk) const {
        const double reach = 0.75 * (out.width + out.height);
        const int stars = 260;
        const double poleX = 0.35 * out.width;
        const double poleY = 1.25 * out.height;
        const double turned = 0.0016 * seconds;
        const double across = cosine(turned);
        const double down = sine(turned);
        for (int i = 0; i < stars; ++i) {
            // Even over a square around the pole that holds the frame wherever it has turned.
            const double startX = random.between(-reach, reach) * 1.6;
            const double startY = random.between(-reach, 0) * 1.6;
            const double magnitude = random.unit();
            const double speed = random.between(0.25, 1.1);
            const double phase = random.unit();
            const double late = random.between(0.15, 0.8);
            const q_ulong colour = starColours[static_cast<std::size_t>(random.below(starColours.size()))];
            const double x = poleX + startX * across - startY * down;
            const double y = poleY + startX * down + startY * across;
            if (x < -40 * unit || y < -40 * unit || x > out.width + 40 * unit || y > out.height)
                continue;

            // Fewer are seen through the haze down there.
            const double haze = 1 - stretch(y / out.height, 0.35, 0.95);
            const double shownFrom = stretch(dusk, late, std::min(late + 0.25, 1.0));
            const double twinkle = 0.72 + 0.28 * sine(phase + speed * seconds) * sine(2.7 * speed * seconds - phase);
            drawStar(out, x, y, 1 - magnitude, colour, easeInOut(shownFrom) * haze * twinkle);
        }
    }

    /// From specks to bright ones with rays. \param size 0 to 1, evenly distributed
    void drawStar(const Surface &out, double x, double y, double size, q_ulong colour, double brightness) const {
        tagRECT clip = {-1, -1, out.width, out.height};
        const auto inside = [&](int column, int row, int margin) {
            return column >= margin && row >= margin && column < out.width - margin && row < out.height - margin;
        };
        const auto radius = [&](double at720, int least) { return std::max(static_cast<int>(at720 * unit), least); };
        if (size < 0.55) {
            between(x, y, dimmed(colour, brightness * (0.35 + size)), [&](int column, int row, q_ulong shared) {
                if (inside(column, row, 0))
                    Draw_Pixel_Add(out.pixels, out.pitch, column, row, shared);
            });
        } else if (size < 0.70) {
            const int reach = radius(3, 2);
            between(x, y, dimmed(colour, brightness), [&](int column, int row, q_ulong shared) {
                if (inside(column, row, reach))
                    Draw_Star_Type3(out.pixels, out.pitch, column, row, reach, shared, 28);
            });
        } else if (size < 0.90) {
            const int reach = radius(mix(5, 9, (size - 0.70) * 5), 4);
            between(x, y, dimmed(colour, brightness), [&](int column, int row, q_ulong shared) {
                Draw_Star_Type1_Safe(out.pixels, out.pitch, &clip, column, row, reach, shared, 80);
            });
        } else if (size < 0.97) {
            const int reach = radius(mix(10, 16, (size - 0.90) * 14), 4);
            between(x, y, dimmed(colour, brightness), [&](int column, int row, q_ulong shared) {
                if (inside(column, row, reach))
                    Draw_Star_Type2(out.pixels, out.pitch, column, row, reach, shared, 64);
                if (inside(column, row, 2))
                    Draw_Cross(out.pixels, out.pitch, column, row, dimmed(shared, 0.25));
            });
        } else {
            const int rays = radius(mix(22, 40, (size - 0.97) * 33) * (0.6 + 0.4 * brightness), 4);
            between(x, y, dimmed(colour, brightness), [&](int column, int row, q_ulong shared) {
                Draw_Light_Safe(out.pixels, out.pitch, &clip, column, row, rays, shared, 16);
                Draw_Star_Type1_Safe(out.pixels, out.pitch, &clip, column, row, rays, shared, 70);
                Draw_One_Star_Add(out.pixels, out.pitch, &clip, column, row, rays, static_cast<int>(shared >> 16),
                                  static_cast<int>(shared >> 8 & 0xFF), static_cast<int>(shared & 0xFF));
            });
        }
    }

    /// Far lights along the lower part of the frame, out of focus.
    void drawLamps(const Surface &out, Random &random, double seconds, double dusk) const {
        const int lamps = 22;
        for (int i = 0; i < lamps; ++i) {
            const double place = i * 0.6180339887498949 + random.between(0, 0.02);
            const double depth = random.unit();
            const double x = (place - std::floor(place)) * out.width;
            const double y = out.height * mix(0.72, 0.99, depth);
            const double size = unit * mix(12, 46, depth * depth) * random.between(0.8, 1.2);
            const double phase = random.unit();
            const double speed = random.between(0.12, 0.3);
            const double late = random.between(0.3, 0.85);
            const q_ulong colour = lampColours[static_cast<std::size_t>(random.below(lampColours.size()))];
            const double lit = easeInOut(stretch(dusk, late, std::min(late + 0.12, 1.0)));
            const double pulse = 0.78 + 0.22 * sine(phase + speed * seconds);
            glow(out, x, y, size * (0.9 + 0.1 * pulse), colour, lit * pulse);
        }
    }

    /// A core, the light around it and a wide halo.
    static void glow(const Surface &out, double x, double y, double radius, q_ulong colour, double brightness) {
        tagRECT clip = {-1, -1, out.width, out.height};
        const auto light = [&](double share, q_ulong lightColour, q_ulong intensity) {
            between(x, y, dimmed(lightColour, brightness), [&](int column, int row, q_ulong shared) {
                Draw_Light_Safe(out.pixels, out.pitch, &clip, column, row, static_cast<int>(share * radius), shared,
                                intensity);
            });
        };
        light(3, colour, 14);
        light(1.3, colour, 40);
        light(0.45, 0xFFF4E0, 150);
    }

    void drawFireflies(const Surface &, Random &, double, double) const {}

    void drawFallingStars(const Surface &, Random &, double, double) const {}

    double unit = 1;
};

} // namespace

EffectInfo night() {
    return {"night", Effect::Kind::scene, "night falls over the photograph, with stars and lights", makeEffect<Night>};
}

} // namespace show
