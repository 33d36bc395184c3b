#include "yard.h"

#include "../../angle.h"
#include "../../picture.h"
#include "../../random.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace show::winter {

namespace {

/// A rise in the ground, the top of a large circle, that darkens downward.
void drawHill(const Surface &out, double x, double top, double radius, double depth, q_ulong high, q_ulong low) {
    constexpr int shades = 48;
    const double bounded = std::min(radius, 30000.0);
    for (int i = 0; i < shades; ++i)
        disc(out, x, top + bounded + depth * i / shades, bounded, mixColours(high, low, i / (shades - 1.0)));
}

/// A fir far away: three roofs, the upper over the lower.
void drawFir(const Surface &out, double x, double bottom, double size, q_ulong colour) {
    tagRECT clip = out.rect();
    for (int i = 0; i < 3; ++i) {
        const double half = size * (0.26 - 0.06 * i);
        const int base = rounded(bottom - size * 0.26 * i);
        tagPOINT top = {rounded(x), rounded(base - size * 0.46)};
        tagPOINT left = {rounded(x - half), base};
        tagPOINT right = {rounded(x + half), base};
        Rect_Safe(out.pixels, &clip, out.pitch, &top, &left, &right, &right, &colour);
    }
}

void drawMoon(const Surface &out, double x, double y, double radius) {
    for (const double reach : {7.0, 3.0}) {
        const int size = lengthOf(2 * reach * radius, 2);
        const Canvas halo = softGlow(size, size, 0x7C8CCC, 0.42);
        lay(out, halo.surface(), rounded(x) - size / 2, rounded(y) - size / 2, out.rect());
    }
    disc(out, x, y, radius, 0xF2EEDC);
    tagRECT clip = out.rect();
    constexpr std::array<std::array<double, 3>, 7> seas = {{{-0.30, -0.34, 0.38},
                                                            {-0.44, 0.06, 0.36},
                                                            {0.16, -0.40, 0.28},
                                                            {0.40, -0.12, 0.30},
                                                            {0.50, 0.16, 0.22},
                                                            {-0.20, 0.44, 0.26},
                                                            {0.12, 0.68, 0.10}}};
    for (const auto &sea : seas)
        for (int ring = 0; ring < 8; ++ring)
            iFill_Circle_Alpha(out.pixels, &clip, out.pitch, rounded(x + sea[0] * radius), rounded(y + sea[1] * radius),
                               rounded(radius * sea[2] * (1 - 0.07 * ring)), 0xB4B8C4, 16);
}

/// Half an ellipse that lies on its straight side.
void drawMound(const Surface &out, double x, double bottom, double reach, double rise, q_ulong colour) {
    const int rows = rounded(rise);
    for (int row = 0; row < rows; ++row) {
        const double share = static_cast<double>(row) / rows;
        const int half = rounded(reach * std::sqrt(1 - share * share));
        const int y = rounded(bottom) - row;
        fill(out, {rounded(x) - half, y, rounded(x) + half, y + 1}, colour);
    }
}

/// The posts, the frame and the snow that lies on it.
void drawScreen(const Surface &out, const Yard &yard, int scale) {
    const double u = yard.unit * scale;
    const tagRECT &screen = yard.screen;
    const tagRECT inner = {screen.left * scale, screen.top * scale, screen.right * scale, screen.bottom * scale};
    const int border = lengthOf(11 * u, 1);
    const int post = lengthOf(20 * u, 1);
    const auto grown = [&](int by) {
        return tagRECT{inner.left - by, inner.top - by, inner.right + by, inner.bottom + by};
    };
    const q_long extent = inner.right - inner.left;
    for (const q_long x : {inner.left + extent / 8, inner.right - extent / 8}) {
        const auto foot = static_cast<q_long>(0.80 * out.height);
        for (int i = 0; i < post; ++i)
            fill(out, {x + i, inner.bottom, x + i + 1, foot}, mixColours(0x6A4A3A, 0x22161A, i / (post - 0.5)));
        for (int i = 0; i < 14; ++i)
            drawMound(out, x + post / 2.0, foot + i * u, (34 + i) * u, 11 * u,
                      mixColours(0xA0B2E4, 0x6C7EBA, i / 13.0));
    }
    // From the outside in: lit from above.
    for (int i = border; i > 0; --i) {
        const double in = 1 - static_cast<double>(i) / border;
        const tagRECT ring = grown(i);
        const double rounding = 1 - (2 * in - 1) * (2 * in - 1);
        fill(out, ring, mixColours(0x3A241E, 0x8A5C42, rounding));
    }
    fill(out, inner, 0);
    // Snow in three layers, the upper ones lighter.
    const auto left = static_cast<double>(inner.left - border);
    const auto right = static_cast<double>(inner.right + border);
    for (int layer = 0; layer < 3; ++layer)
        for (double x = left + 5 * u; u > 0.05 && x < right - 5 * u; x += u) {
            const double along = x / (90 * u);
            const double ends = std::min({(x - left) / (40 * u), (right - x) / (40 * u), 1.0});
            const double depth = mix(4, 8 + 3 * sineOf(0.37 * along) + 2 * sineOf(0.91 * along + 0.3), ends);
            disc(out, x, inner.top - border - (0.2 + 0.32 * layer) * depth * u, depth * (1 - 0.22 * layer) * u,
                 mixColours(0x8496CC, 0xDCE6FA, layer / 2.0));
        }
}

/// Logs in a ring of stones, where the snow has melted.
void drawHearth(const Surface &out, double x, double y, double u) {
    tagRECT clip = {-1, -1, out.width, out.height};
    for (int i = 0; i < 12; ++i) {
        const int half = rounded((92 - 3 * i) * u);
        const int rise = lengthOf((22 - 0.8 * i) * u, 1);
        const q_ulong colour = mixColours(0x56689E, 0x1C181E, i / 11.0);
        for (int row = -rise; row <= rise; ++row) {
            const double share = static_cast<double>(row) / rise;
            const int reach = rounded(half * std::sqrt(1 - share * share));
            fill(out, {rounded(x) - reach, rounded(y) + row, rounded(x) + reach, rounded(y) + row + 1}, colour);
        }
    }
    const auto stones = [&](bool behind) {
        for (int i = 0; i < 14; ++i) {
            const double turns = (i + 0.5) / 14;
            if ((sineOf(turns) < 0) == behind)
                Draw_3DBall_Safe(out.pixels, out.pitch, &clip, rounded(x + 70 * u * cosineOf(turns)),
                                 rounded(y + 17 * u * sineOf(turns)), rounded((9 + 3 * sineOf(5.3 * turns)) * u),
                                 0x3C3A46, 0);
        }
    };
    // A line's first end must lie within the frame, and its minor coordinates as well.
    const auto log = [&](double fromX, double fromY, double toX, double toY) {
        const int x1 = rounded(x + fromX * u);
        const int x2 = rounded(x + toX * u);
        const int y1 = rounded(y + fromY * u);
        const int y2 = rounded(y + toY * u);
        if (std::min({x1, x2, y1, y2}) >= 0 && std::max(x1, x2) < out.width && std::max(y1, y2) < out.height)
            DDLine_Fat(out.pixels, &clip, out.pitch, x1, y1, x2, y2, 0x223852, lengthOf(8 * u, 1));
    };
    stones(true);
    log(-56, 6, 44, -12);
    log(56, 6, -42, -12);
    log(-50, 0, 54, 2);
    stones(false);
}

void drawScenery(const Surface &out, const Yard &yard, int scale) {
    const double u = yard.unit * scale;
    const double w = out.width;
    const double h = out.height;
    Random random(20);
    for (int y = 0; y < out.height; ++y)
        fill(out, {0, y, out.width, y + 1}, mixColours(0x060A20, 0x35427C, easeIn(std::min(y / (0.72 * h), 1.0))));
    tagRECT clip = out.rect();
    for (int i = 0; i < 300; ++i) {
        const int x = rounded(random.between(0, w));
        const int y = rounded(random.between(0, 0.64 * h));
        const double size = random.unit();
        const int radius = rounded(mix(0.2, 2.3, size * size * size) * u);
        iFill_Circle_Alpha(out.pixels, &clip, out.pitch, x, y, radius, 0xDCE6FF, rounded(random.between(50, 230)));
    }
    drawMoon(out, 0.885 * w, 0.16 * h, 40 * u);

    drawHill(out, 0.16 * w, 0.60 * h, 0.80 * w, 0.10 * h, 0x404E88, 0x2C3868);
    drawHill(out, 0.98 * w, 0.55 * h, 0.62 * w, 0.12 * h, 0x48588F, 0x303E70);
    for (int i = 0; i < 70; ++i) {
        const double x = w * (i + random.unit()) / 70;
        const double size = random.between(26, 58) * u;
        const double bottom = 0.70 * h + 0.02 * h * random.unit();
        drawFir(out, x, bottom, size, mixColours(0x1E2A52, 0x2C3A68, random.unit()));
    }
    drawHill(out, 0.30 * w, 0.675 * h, 2.6 * w, 0.22 * h, 0x8094CE, 0x485A98);
    drawHill(out, 0.80 * w, 0.715 * h, 1.9 * w, 0.24 * h, 0x8A9ED6, 0x4C5E9C);
    drawScreen(out, yard, scale);
    drawHill(out, 0.10 * w, 0.80 * h, 1.7 * w, 0.20 * h, 0x8296D0, 0x465894);
    drawHearth(out, yard.fire.x * scale, yard.fire.y * scale, u);
}

} // namespace

Yard::Yard(int frameWidth, int frameHeight)
    : width(frameWidth), height(frameHeight),
      unit(std::min(frameHeight / 720.0, frameWidth / 1100.0)), fire{0.155 * frameWidth, 0.925 * frameHeight} {
    screen = {rounded(0.055 * width), rounded(0.125 * height), 0, 0};
    screen.right = screen.left + lengthOf(0.6 * width, 1);
    screen.bottom = screen.top + lengthOf(0.6 * height, 1);
}

Canvas sceneryOf(const Yard &yard) {
    // Drawn at twice the size, so that halving smooths the edges. What is too large for that is blurred by a pixel.
    const int scale = std::max(yard.width, yard.height) <= 4096 ? 2 : 1;
    const Canvas scenery(yard.width * scale, yard.height * scale);
    drawScenery(scenery, yard, scale);
    if (scale == 1)
        blur(scenery, 1);
    return reduced(scenery, yard.width, yard.height);
}

} // namespace show::winter
