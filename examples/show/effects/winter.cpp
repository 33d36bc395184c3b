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
#include "../random.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace show {

namespace {

using LoadSprite = void (*)(q_ulong *dst, int width, int height, int pitch);

constexpr std::array<q_ulong, 5> lampColours = {0xFF5038, 0xFFC040, 0x48D860, 0x5090FF, 0xFF60C8};

struct Place {
    double x;
    double y;
};

int rounded(double value) {
    return static_cast<int>(std::floor(value + 0.5));
}

/// A length in whole pixels, not less than `least`.
int lengthOf(double value, int least) {
    return std::max(rounded(value), least);
}

q_ulong colourOf(double red, double green, double blue) {
    const auto level = [](double value) { return static_cast<q_ulong>(std::clamp(value, 0.0, 255.0)); };
    return level(red) << 16 | level(green) << 8 | level(blue);
}

q_ulong dimmed(q_ulong colour, double share) {
    const double factor = clampUnit(share);
    return colourOf((colour >> 16) * factor, (colour >> 8 & 0xFF) * factor, (colour & 0xFF) * factor);
}

q_ulong between(q_ulong from, q_ulong to, double t) {
    return colourOf(mix(from >> 16, to >> 16, t), mix(from >> 8 & 0xFF, to >> 8 & 0xFF, t),
                    mix(from & 0xFF, to & 0xFF, t));
}

void fill(const Surface &out, tagRECT rect, q_ulong colour) {
    rect = {std::max<q_long>(rect.left, 0), std::max<q_long>(rect.top, 0), std::min<q_long>(rect.right, out.width),
            std::min<q_long>(rect.bottom, out.height)};
    iFillRect(out.pixels, &rect, out.pitch, colour);
}

void disc(const Surface &out, double x, double y, double radius, q_ulong colour) {
    tagRECT clip = out.rect();
    iFill_Circle_Safe(out.pixels, &clip, out.pitch, rounded(x), rounded(y), rounded(radius), colour);
}

void light(const Surface &out, double x, double y, double radius, q_ulong colour, q_ulong intensity) {
    tagRECT clip = {-1, -1, out.width, out.height};
    Draw_Light_Safe(out.pixels, out.pitch, &clip, rounded(x), rounded(y), lengthOf(radius, 4), colour, intensity);
}

/// A sprite without what lies loose around its largest figure.
Canvas loadFigure(LoadSprite load, int width, int height) {
    Canvas canvas(width, height);
    const Surface sprite = canvas.surface();
    load(sprite.pixels, width, height, sprite.pitch);

    std::vector<int> figures(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    const auto figureAt = [&](int x, int y) -> int & {
        return figures[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x)];
    };
    int count = 0;
    int largest = 0;
    std::size_t largestSize = 0;
    std::vector<tagPOINT> reached;
    const auto reach = [&](int x, int y) {
        if (x < 0 || y < 0 || x >= width || y >= height || *sprite.at(x, y) == 0 || figureAt(x, y) != 0)
            return;
        figureAt(x, y) = count;
        reached.push_back({x, y});
    };
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            if (*sprite.at(x, y) == 0 || figureAt(x, y) != 0)
                continue;
            ++count;
            reached.clear();
            reach(x, y);
            for (std::size_t next = 0; next < reached.size(); ++next) {
                const int column = static_cast<int>(reached[next].x);
                const int row = static_cast<int>(reached[next].y);
                reach(column - 1, row);
                reach(column + 1, row);
                reach(column, row - 1);
                reach(column, row + 1);
            }
            if (reached.size() > largestSize) {
                largestSize = reached.size();
                largest = count;
            }
        }
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            if (figureAt(x, y) != largest)
                *sprite.at(x, y) = 0;
    return canvas;
}

/// The picture in another light.
Canvas tinted(const Canvas &picture, double red, double green, double blue) {
    const auto level = [](double share) { return static_cast<unsigned char>(share * 255 + 0.5); };
    Canvas result(picture.width(), picture.height());
    const Surface from = picture.surface();
    const Surface to = result.surface();
    tagRECT all = from.rect();
    iBltFast32_Add(to.pixels, from.pixels, 0, 0, &all, static_cast<q_ulong>(to.pitch), static_cast<q_ulong>(from.pitch),
                   level(red), level(green), level(blue));
    return result;
}

Canvas mirrored(const Canvas &picture) {
    Canvas result(picture.width(), picture.height());
    const Surface from = picture.surface();
    const Surface to = result.surface();
    for (int x = 0; x < from.width; ++x) {
        tagRECT column = {x, 0, x + 1, from.height};
        iBltFast32(to.pixels, from.pixels, static_cast<q_ulong>(from.width - 1 - x), 0, &column, to.pitch, from.pitch);
    }
    return result;
}

/// The picture turned about its middle, on a square that holds it at every angle.
Canvas turned(const Canvas &picture, double angle) {
    const int side = picture.width() + picture.height();
    Canvas result(side, side);
    const Surface from = picture.surface();
    const Surface to = result.surface();
    tagRECT clip = to.rect();
    tagRECT all = from.rect();
    iBltLinear32_Z_Roto(to.pixels, to.pitch, from.pixels, from.pitch, &clip, &all, side / 2, side / 2,
                        static_cast<float>(angle), 1);
    return result;
}

/// A sprite brought to a size, with its coverage in the top byte: what is 0 is outside of the figure.
Canvas cutOut(const Canvas &figure, int width, int height) {
    const Canvas shape(figure.width(), figure.height());
    for (int y = 0; y < figure.height(); ++y)
        for (int x = 0; x < figure.width(); ++x)
            *shape.surface().at(x, y) = *figure.surface().at(x, y) == 0 ? 0 : 0xFFFFFF;
    const Canvas coverage = reduced(shape.surface(), width, height);
    Canvas result = reduced(figure.surface(), width, height);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const q_ulong covered = *coverage.surface().at(x, y) & 0xFF;
            q_ulong &pixel = *result.surface().at(x, y);
            // The black around the figure has been mixed in, by as much as is not covered.
            const auto pure = [&](q_ulong channel) {
                return covered == 0 ? 0 : std::min<q_ulong>(channel * 255 / covered, 255);
            };
            pixel = covered << 24 | pure(pixel >> 16 & 0xFF) << 16 | pure(pixel >> 8 & 0xFF) << 8 | pure(pixel & 0xFF);
        }
    return result;
}

void lay(const Surface &out, const Surface &sprite, int x, int y, tagRECT clip) {
    tagRECT all = sprite.rect();
    iBltFast32AlphaChannelSafe(out.pixels, sprite.pixels, x, y, &all, &clip, out.pitch, sprite.pitch);
}

/// Lays a sprite around a place, with less than its own coverage.
void layFaded(Stage &stage, const Surface &out, const Surface &sprite, double x, double y, double opacity) {
    const auto share = static_cast<q_ulong>(clampUnit(opacity) * 256);
    const Stage::Plane plane = stage.plane();
    const Surface faded = plane->cropped(std::min(sprite.width, out.width), std::min(sprite.height, out.height));
    for (int row = 0; row < faded.height; ++row)
        for (int column = 0; column < faded.width; ++column) {
            const q_ulong pixel = *sprite.at(column, row);
            *faded.at(column, row) = (pixel & 0xFFFFFF) | (pixel >> 24) * share >> 8 << 24;
        }
    lay(out, faded, rounded(x) - faded.width / 2, rounded(y) - faded.height / 2, out.rect());
}

/// A disc that is clear at its rim.
Canvas softDot(int size, q_ulong colour) {
    Canvas result(size, size);
    for (int y = 0; y < size; ++y)
        for (int x = 0; x < size; ++x) {
            const double dx = (x + 0.5) * 2 / size - 1;
            const double dy = (y + 0.5) * 2 / size - 1;
            const double covered = clampUnit(1.5 * (1 - dx * dx - dy * dy));
            *result.surface().at(x, y) = static_cast<q_ulong>(250 * covered) << 24 | colour;
        }
    return result;
}

/// An ellipse that fades from its middle to its rim.
Canvas softGlow(int width, int height, q_ulong colour, double opacity) {
    Canvas result(width, height);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const double dx = (x + 0.5) * 2 / width - 1;
            const double dy = (y + 0.5) * 2 / height - 1;
            const double covered = clampUnit(1 - dx * dx - dy * dy);
            *result.surface().at(x, y) = static_cast<q_ulong>(255 * opacity * covered * covered) << 24 | colour;
        }
    return result;
}

/// Blends a dot whose place and radius lie between pixels.
void dot(const Surface &out, Place at, double radius, q_ulong colour, double opacity) {
    const int left = static_cast<int>(std::floor(at.x - radius));
    const int top = static_cast<int>(std::floor(at.y - radius));
    const int side = static_cast<int>(2 * radius) + 3;
    for (int y = std::max(top, 0); y < std::min(top + side, out.height); ++y)
        for (int x = std::max(left, 0); x < std::min(left + side, out.width); ++x) {
            const double dx = x + 0.5 - at.x;
            const double dy = y + 0.5 - at.y;
            const double covered = clampUnit(radius + 0.5 - std::sqrt(dx * dx + dy * dy)) * clampUnit(opacity);
            *out.at(x, y) = between(*out.at(x, y), colour, covered);
        }
}

/// A picture that stands on its lower edge.
struct Placed {
    Canvas sprite;
    int left = 0;
    int top = 0;
};

struct Print {
    Canvas sprite;
    double x;
    double y;
};

class Winter : public Effect {
    static constexpr int glowSize = 256;
    static constexpr int noteTilts = 15;
    static constexpr int prints = 13;

    void prepare(int frameWidth, int frameHeight) override {
        width = frameWidth;
        height = frameHeight;
        unit = std::min(height / 720.0, width / 1100.0);
        screen = {rounded(0.055 * width), rounded(0.125 * height), 0, 0};
        screen.right = screen.left + lengthOf(0.6 * width, 1);
        screen.bottom = screen.top + lengthOf(0.6 * height, 1);
        fireX = 0.155 * width;
        fireY = 0.925 * height;

        // Drawn at twice the size, so that halving smooths the edges; very large frames do without.
        const int scale = width <= 2048 && height <= 2048 ? 2 : 1;
        const Canvas scenery(width * scale, height * scale);
        drawScenery(scenery.surface(), scale);
        backdrop = reduced(scenery.surface(), width, height);

        glow = Canvas(glowSize, glowSize);
        light(glow.surface(), glowSize / 2.0, glowSize / 2.0, glowSize / 2.0, 0xFFFFFF, 127);

        prepareTree();
        prepareFire();
        preparePrints();
        const Canvas airliner = tinted(loadFigure(LoadResourceAirplane, 156, 114), 0.66, 0.70, 0.88);
        airplane = cutOut(airliner, lengthOf(100 * unit, 2), lengthOf(73 * unit, 2));
        const Canvas note = loadFigure(LoadResourceMusicSymbol, 128, 128);
        for (int i = 0; i < noteTilts; ++i) {
            const int size = lengthOf(92 * unit, 2);
            notes.push_back(cutOut(turned(note, 0.5 * (2.0 * i / (noteTilts - 1) - 1)), size, size));
        }
        for (const double radius : {1.5, 2.1, 3.0, 5.0, 8.0}) {
            const int size = lengthOf(2 * radius * unit, 2);
            flakes.push_back(softDot(size, 0xEEF3FF));
        }
    }

    void render(Stage &stage, const Surface &out, const Moment &moment) const override {
        const Shot &shot = moment.a;
        const double seconds = shot.progress * shot.seconds;
        const Stage::Plane plane = stage.plane();
        const Surface &scene = plane;
        tagRECT frame = scene.rect();
        iBltFast32(scene.pixels, backdrop.surface().pixels, 0, 0, &frame, scene.pitch, backdrop.surface().pitch);
        drawPhoto(stage, scene, shot);
        drawAirplane(scene, shot.progress, seconds);
        drawChain(scene, seconds);
        drawPrints(stage, scene, shot.progress);
        lay(scene, tree.sprite.surface(), tree.left, tree.top, frame);
        drawTreeLamps(scene, seconds);
        drawNotes(stage, scene, shot, seconds);
        drawFire(stage, scene, shot, seconds);
        drawSnowfall(scene, shot, seconds);

        // The camera draws back from the screen.
        extendEdges(scene);
        const double way = mix(shot.progress, easeInOut(shot.progress), 0.6);
        const double zoom = mix(1.13, 1.01, way);
        const double viewWidth = width / zoom;
        const double viewHeight = height / zoom;
        drawView(out, scene,
                 {(width - viewWidth) * mix(0.18, 0.45, way), (height - viewHeight) * mix(0.55, 0.6, way), viewWidth,
                  viewHeight});
    }

    // What does not move.

    /// A rise in the ground, the top of a large circle, that darkens downward.
    static void drawHill(const Surface &out, double x, double top, double radius, double depth, q_ulong high,
                         q_ulong low) {
        constexpr int shades = 48;
        const double bounded = std::min(radius, 30000.0);
        for (int i = 0; i < shades; ++i)
            disc(out, x, top + bounded + depth * i / shades, bounded, between(high, low, i / (shades - 1.0)));
    }

    /// A fir far away: three roofs, the upper over the lower.
    static void drawFir(const Surface &out, double x, double bottom, double size, q_ulong colour) {
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

    void drawScenery(const Surface &out, int scale) const {
        const double u = unit * scale;
        const double w = out.width;
        const double h = out.height;
        Random random(20);
        for (int y = 0; y < out.height; ++y)
            fill(out, {0, y, out.width, y + 1}, between(0x060A20, 0x35427C, easeIn(std::min(y / (0.72 * h), 1.0))));
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
            drawFir(out, x, bottom, size, between(0x1E2A52, 0x2C3A68, random.unit()));
        }
        drawHill(out, 0.30 * w, 0.675 * h, 2.6 * w, 0.22 * h, 0x8094CE, 0x485A98);
        drawHill(out, 0.80 * w, 0.715 * h, 1.9 * w, 0.24 * h, 0x8A9ED6, 0x4C5E9C);
        drawScreen(out, scale);
        drawHill(out, 0.10 * w, 0.80 * h, 1.7 * w, 0.20 * h, 0x8296D0, 0x465894);
        drawHearth(out, fireX * scale, fireY * scale, u);
    }

    static void drawMoon(const Surface &out, double x, double y, double radius) {
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
                iFill_Circle_Alpha(out.pixels, &clip, out.pitch, rounded(x + sea[0] * radius),
                                   rounded(y + sea[1] * radius), rounded(radius * sea[2] * (1 - 0.07 * ring)), 0xB4B8C4,
                                   16);
    }

    /// Half an ellipse that lies on its straight side.
    static void drawMound(const Surface &out, double x, double bottom, double reach, double rise, q_ulong colour) {
        const int rows = rounded(rise);
        for (int row = 0; row < rows; ++row) {
            const double share = static_cast<double>(row) / rows;
            const int half = rounded(reach * std::sqrt(1 - share * share));
            const int y = rounded(bottom) - row;
            fill(out, {rounded(x) - half, y, rounded(x) + half, y + 1}, colour);
        }
    }

    /// The posts, the frame and the snow that lies on it.
    void drawScreen(const Surface &out, int scale) const {
        const double u = unit * scale;
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
                fill(out, {x + i, inner.bottom, x + i + 1, foot}, between(0x6A4A3A, 0x22161A, i / (post - 0.5)));
            for (int i = 0; i < 14; ++i)
                drawMound(out, x + post / 2.0, foot + i * u, (34 + i) * u, 11 * u,
                          between(0xA0B2E4, 0x6C7EBA, i / 13.0));
        }
        // From the outside in: lit from above.
        for (int i = border; i > 0; --i) {
            const double in = 1 - static_cast<double>(i) / border;
            const tagRECT ring = grown(i);
            const double rounding = 1 - (2 * in - 1) * (2 * in - 1);
            fill(out, ring, between(0x3A241E, 0x8A5C42, rounding));
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
                     between(0x8496CC, 0xDCE6FA, layer / 2.0));
            }
    }

    /// Logs in a ring of stones, where the snow has melted.
    static void drawHearth(const Surface &out, double x, double y, double u) {
        tagRECT clip = {-1, -1, out.width, out.height};
        for (int i = 0; i < 12; ++i) {
            const int half = rounded((92 - 3 * i) * u);
            const int rise = lengthOf((22 - 0.8 * i) * u, 1);
            const q_ulong colour = between(0x56689E, 0x1C181E, i / 11.0);
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

    void prepareTree() {
        const Canvas figure = loadFigure(LoadResourceChristmasTree, 512, 384);
        const int treeWidth = lengthOf(480 * unit, 2);
        const int treeHeight = lengthOf(360 * unit, 2);
        tree.sprite = cutOut(tinted(figure, 0.68, 0.74, 0.94), treeWidth, treeHeight);
        tree.left = width - treeWidth - rounded(6 * unit);
        tree.top = rounded(0.968 * height) - treeHeight;

        // Lamps hang where the chains of the tree shine golden, well apart.
        constexpr int mostLamps = 46;
        constexpr int nearest = 19;
        const Surface from = figure.surface();
        std::vector<tagPOINT> golden;
        q_long starTop = from.height;
        q_long starColumn = from.width / 2;
        for (int y = 0; y < from.height; ++y)
            for (int x = 0; x < from.width; ++x) {
                const q_ulong pixel = *from.at(x, y);
                if (pixel != 0 && starTop == from.height) {
                    starTop = y;
                    starColumn = x;
                }
                if ((pixel >> 16) > 225 && (pixel >> 8 & 0xFF) > 140 && (pixel & 0xFF) < 110 && y > 80 && y < 325 &&
                    std::abs(x - starColumn) < 140)
                    golden.push_back({x, y});
            }
        const auto placed = [&](tagPOINT at) {
            return Place{tree.left + (at.x + 0.5) * treeWidth / from.width,
                         tree.top + (at.y + 0.5) * treeHeight / from.height};
        };
        star = placed({starColumn, starTop + 27});
        Random random(6);
        std::vector<tagPOINT> chosen;
        for (int tries = 0; tries < 4000 && !golden.empty() && static_cast<int>(chosen.size()) < mostLamps; ++tries) {
            const tagPOINT at = golden[static_cast<std::size_t>(random.below(static_cast<int>(golden.size())))];
            const bool isApart = std::all_of(chosen.begin(), chosen.end(), [&](tagPOINT other) {
                const q_long dx = other.x - at.x;
                const q_long dy = other.y - at.y;
                return dx * dx + dy * dy > nearest * nearest;
            });
            if (isApart) {
                chosen.push_back(at);
                treeLamps.push_back(placed(at));
            }
        }
    }

    void prepareFire() {
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

    void preparePrints() {
        // Snow has no colour of its own: the print's shades in the blue of the shadows.
        const Canvas foot(122, 166);
        const Surface print = foot.surface();
        LoadResourceFootMark(print.pixels, print.width, print.height, print.pitch);
        for (int y = 0; y < print.height; ++y)
            for (int x = 0; x < print.width; ++x) {
                q_ulong &pixel = *print.at(x, y);
                const double shade =
                    ((pixel >> 16 & 0xFF) * 0.3 + (pixel >> 8 & 0xFF) * 0.5 + (pixel & 0xFF) * 0.2) / 255.0;
                if (pixel != 0)
                    pixel = colourOf(22 + 80 * shade, 32 + 92 * shade, 76 + 130 * shade);
            }
        constexpr double heading = 1.15; // to the right, and away from the eye
        const Canvas left = turned(mirrored(foot), heading);
        const Canvas right = turned(foot, heading);
        for (int i = 0; i < prints; ++i) {
            const double way = static_cast<double>(i) / (prints - 1);
            const double size = mix(88, 62, way) * unit;
            const double side = (i % 2 == 0 ? -1 : 1) * size;
            footsteps.push_back({cutOut(i % 2 == 0 ? left : right, lengthOf(size, 2), lengthOf(0.5 * size, 2)),
                                 mix(0.30, 0.635, way) * width + 0.07 * side,
                                 mix(0.965, 0.885, easeOut(way)) * height + 0.085 * side});
        }
    }

    // What happens.

    void drawPhoto(Stage &stage, const Surface &scene, const Shot &shot) const {
        const Stage::Plane whole = stage.plane();
        const Stage::Plane small = stage.plane();
        drawView(whole, shot.photo, shot.camera.at(shot.progress));
        extendEdges(whole);
        const Surface picture =
            small->cropped(static_cast<int>(screen.right - screen.left), static_cast<int>(screen.bottom - screen.top));
        drawView(picture, whole, wholeOf(whole));
        tagRECT all = picture.rect();
        iBltFast32(scene.pixels, picture.pixels, static_cast<q_ulong>(screen.left), static_cast<q_ulong>(screen.top),
                   &all, scene.pitch, picture.pitch);

        // The snow before the screen takes its colour.
        Surface mean = picture;
        for (int i = 0; mean.width > 1 || mean.height > 1; ++i) {
            const Surface half = (i % 2 == 0 ? whole : small)->cropped((mean.width + 1) / 2, (mean.height + 1) / 2);
            drawHalved(half, mean);
            mean = half;
        }
        shine(scene, (screen.left + screen.right) / 2.0, 0.80 * height, 0.42 * width, 0.13 * height,
              *mean.pixels & 0xFFFFFF, 0.42);
    }

    /// Adds round light, stretched to an ellipse, as far as it lies within the frame.
    void shine(const Surface &out, double x, double y, double reachX, double reachY, q_ulong colour,
               double brightness) const {
        tagRECT from = {0, 0, glowSize, glowSize};
        const auto cut = [](double middle, double reach, int extent, q_long &low, q_long &high, q_long &dstLow,
                            q_long &dstHigh) {
            dstLow = std::max(rounded(middle - reach), 0);
            dstHigh = std::min(rounded(middle + reach), extent);
            low = rounded((dstLow - (middle - reach)) * glowSize / (2 * reach));
            high = glowSize - rounded((middle + reach - dstHigh) * glowSize / (2 * reach));
            low = std::clamp<q_long>(low, 0, glowSize);
            high = std::clamp<q_long>(high, 0, glowSize);
        };
        tagRECT to = {};
        cut(x, reachX, out.width, from.left, from.right, to.left, to.right);
        cut(y, reachY, out.height, from.top, from.bottom, to.top, to.bottom);
        if (to.left >= to.right || to.top >= to.bottom || from.left >= from.right || from.top >= from.bottom)
            return;
        const q_ulong scaled = dimmed(colour, brightness);
        iBltBilinear32_Add(out.pixels, glow.surface().pixels, &to, &from, static_cast<q_ulong>(out.pitch),
                           static_cast<q_ulong>(glow.surface().pitch), static_cast<unsigned char>(scaled >> 16),
                           static_cast<unsigned char>(scaled >> 8 & 0xFF), static_cast<unsigned char>(scaled & 0xFF));
    }

    /// It comes forth from behind the screen and climbs past the moon.
    void drawAirplane(const Surface &scene, double progress, double seconds) const {
        const Surface sprite = airplane.surface();
        const double t = stretch(progress, 0.20, 0.98);
        const q_long edge = screen.right + rounded(11 * unit);
        const double from = static_cast<double>(edge) - sprite.width;
        const double x = mix(from, 1.06 * width, t);
        const double y = 0.345 * height - 0.30 * (x - from);
        if (t <= 0 || t >= 1)
            return;
        lay(scene, sprite, rounded(x), rounded(y), {edge, 0, scene.width, scene.height});

        // Lamps at the tip of a wing, on the tail and at the nose: red ones pulse, white ones flash.
        const auto lamp = [&](double column, double row, double radius, q_ulong colour, double brightness) {
            const double lampX = std::floor(x) + column * sprite.width;
            if (lampX < edge)
                return;
            const Place at = {lampX, std::floor(y) + row * sprite.height};
            light(scene, at.x, at.y, 3 * radius * unit, dimmed(colour, brightness), 34);
            light(scene, at.x, at.y, 1.4 * radius * unit, dimmed(colour, brightness), 60);
            dot(scene, at, 0.35 * radius * unit, 0xFFFFFF, brightness);
        };
        const double pulse = clampUnit(1.6 * sineOf(0.8 * seconds) - 0.4);
        const double flash = clampUnit(4 * sineOf(1.1 * seconds + 0.3) - 3);
        lamp(0.42, 0.84, 9, 0xFF3020, pulse);
        lamp(0.06, 0.16, 9, 0xFFFFFF, flash);
        lamp(0.93, 0.17, 7, 0xFFF0C0, 0.8);
    }

    /// Lamps all around the screen, through which colours run.
    void drawChain(const Surface &scene, double seconds) const {
        const double outward = 5.5 * unit;
        const double left = screen.left - outward;
        const double top = screen.top - outward;
        const double across = screen.right - screen.left + 2 * outward;
        const double down = screen.bottom - screen.top + 2 * outward;
        const double around = 2 * (across + down);
        const int lamps = std::max(static_cast<int>(around / (46 * std::max(unit, 0.1))) / 5 * 5, 5);
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
            lamp(scene, {x, y}, 6.5, lampColours[static_cast<std::size_t>(i) % lampColours.size()],
                 0.30 + 0.70 * easeIn(wave));
        }
    }

    void lamp(const Surface &scene, Place at, double radius, q_ulong colour, double brightness) const {
        light(scene, at.x, at.y, 4.2 * radius * unit, dimmed(colour, brightness), 26);
        light(scene, at.x, at.y, 1.9 * radius * unit, dimmed(colour, brightness), 60);
        const q_ulong core = between(colour, 0xFFFFFF, 0.55 * brightness);
        dot(scene, at, 0.62 * radius * unit, dimmed(core, 0.3 + 0.7 * brightness), 1);
    }

    void drawTreeLamps(const Surface &scene, double seconds) const {
        for (std::size_t i = 0; i < treeLamps.size(); ++i) {
            const double phase = static_cast<double>(i % 4) / 4;
            const double wave = 0.5 + 0.5 * sineOf(0.36 * seconds + phase);
            lamp(scene, treeLamps[i], 6.2, lampColours[i % lampColours.size()], 0.06 + 0.94 * easeInOut(wave));
        }
        const double pulse = 0.75 + 0.25 * sineOf(0.5 * seconds);
        tagRECT clip = {-1, -1, scene.width, scene.height};
        light(scene, star.x, star.y, 90 * unit, dimmed(0xFFC860, pulse), 30);
        Draw_Star_Type1_Safe(scene.pixels, scene.pitch, &clip, rounded(star.x), rounded(star.y),
                             lengthOf(74 * pulse * unit, 4), dimmed(0xFFE8B0, pulse), 60);
    }

    void drawPrints(Stage &stage, const Surface &scene, double progress) const {
        for (std::size_t i = 0; i < footsteps.size(); ++i) {
            const double start = mix(0.10, 0.80, static_cast<double>(i) / prints);
            const double shown = easeInOut(stretch(progress, start, start + 0.05));
            if (shown > 0)
                layFaded(stage, scene, footsteps[i].sprite.surface(), footsteps[i].x, footsteps[i].y, shown);
        }
    }

    /// They rise from the snowman's mouth.
    void drawNotes(Stage &stage, const Surface &scene, const Shot &shot, double seconds) const {
        constexpr double life = 3.4;
        constexpr double interval = 0.85;
        const Surface figure = tree.sprite.surface();
        for (int i = -3; i * interval < shot.seconds; ++i) {
            const double t = (seconds - i * interval) / life;
            if (t <= 0 || t >= 1)
                continue;
            Random random(seedOf(shot.seed, 1000 + i));
            const double phase = random.unit();
            const double lean = random.between(-46, 30);
            const double sway = sineOf(phase + 0.34 * seconds);
            const double x = tree.left + 0.175 * figure.width + unit * (lean * t + 20 * t * sway);
            const double y = tree.top + 0.60 * figure.height - unit * (30 + 245 * t);
            const double tilt = 0.5 + 0.42 * sineOf(phase + 0.34 * seconds + 0.25);
            const Surface note = notes[static_cast<std::size_t>(tilt * noteTilts)].surface();
            const double shown = stretch(t, 0, 0.18) * (1 - easeInOut(stretch(t, 0.6, 1)));
            light(scene, x, y, 64 * unit, dimmed(0x6040C0, shown), 22);
            layFaded(stage, scene, note, x, y, easeInOut(shown));
        }
    }

    /// The flames row by row: each rises and sways later than the one below.
    void drawFire(Stage &stage, const Surface &scene, const Shot &shot, double seconds) const {
        const Surface sprite = flames.surface();
        const double flicker = 0.84 + 0.08 * sineOf(1.9 * seconds) + 0.05 * sineOf(4.3 * seconds + 0.3) +
                               0.03 * sineOf(7.1 * seconds + 0.6);
        layFaded(stage, scene, warmth.surface(), fireX, fireY - 12 * unit, flicker);
        shine(scene, fireX, fireY - 12 * unit, 250 * unit, 70 * unit, 0xC06010, 0.40 * flicker);
        shine(scene, fireX, fireY - 70 * unit, 250 * unit, 190 * unit, 0xD06010, 0.28 * flicker);

        const int margin = lengthOf(30 * unit, 1);
        const Stage::Plane large = stage.plane();
        const Stage::Plane blurred = stage.plane();
        const Surface swaying = large->cropped(std::min(sprite.width + 2 * margin, scene.width),
                                               std::min(sprite.height * 6 / 5, scene.height));
        tagRECT all = swaying.rect();
        iFillRect(swaying.pixels, &all, swaying.pitch, 0);
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
            tagRECT strip = {0, row, span, row + 1};
            iBltFast32(swaying.pixels, sprite.pixels, static_cast<q_ulong>(margin + shift), static_cast<q_ulong>(y),
                       &strip, swaying.pitch, sprite.pitch);
        }
        // Halved with their coverage.
        if (swaying.width > 2 && swaying.height > 2) {
            Hor_Blur32(blurred->pixels, swaying.pixels, 1, swaying.width, swaying.height, swaying.pitch);
            Ver_Blur32(swaying.pixels, blurred->pixels, 1, swaying.width, swaying.height, swaying.pitch);
        }
        const Surface small = blurred->cropped((swaying.width + 1) / 2, (swaying.height + 1) / 2);
        tagRECT half = small.rect();
        iBltNear32(small.pixels, swaying.pixels, &half, &all, small.pitch, swaying.pitch);
        lay(scene, small, rounded(fireX) - small.width / 2, rounded(fireY) - small.height + rounded(8 * unit),
            scene.rect());
        light(scene, fireX, fireY - 34 * unit, 74 * unit, dimmed(0xFFC050, flicker), 40);
        drawSparks(scene, shot, seconds);
    }

    void drawSparks(const Surface &scene, const Shot &shot, double seconds) const {
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
            const double x = fireX + unit * (start * (1 - 0.5 * t) + drift * t + 9 * sineOf(2 * t + phase));
            const double y = fireY - unit * (40 + rise * easeOut(t));
            const double brightness = stretch(t, 0, 0.12) * (1 - t);
            light(scene, x, y, 3.5 * size * unit, dimmed(0xFF6010, brightness), 26);
            dot(scene, {x, y}, 0.55 * size * unit, 0xFFC060, brightness);
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
            const double speed = mix(38, 150, closeness) * random.between(0.8, 1.2) * unit;
            const Surface flake =
                flakes[static_cast<std::size_t>(closeness * static_cast<double>(flakes.size()))].surface();
            const double spanX = width + 2.0 * flake.width;
            const double spanY = height + 2.0 * flake.height;
            const double x =
                column * spanX + 0.22 * speed * seconds + unit * mix(5, 22, closeness) * sineOf(phase + 0.17 * seconds);
            const double y = row * spanY + speed * seconds;
            lay(scene, flake, static_cast<int>(x - spanX * std::floor(x / spanX)) - flake.width,
                static_cast<int>(y - spanY * std::floor(y / spanY)) - flake.height, scene.rect());
        }
    }

    int width = 0;
    int height = 0;
    double unit = 1;
    tagRECT screen = {};
    double fireX = 0;
    double fireY = 0;
    Canvas backdrop;
    Canvas glow;
    Placed tree;
    std::vector<Place> treeLamps;
    Place star = {};
    Canvas warmth;
    Canvas flames;
    Canvas airplane;
    std::vector<Print> footsteps;
    std::vector<Canvas> notes;
    std::vector<Canvas> flakes;
};

} // namespace

EffectInfo winter() {
    return {"winter", Effect::Kind::scene, "the photograph on a screen in the snow, by a tree and a fire",
            makeEffect<Winter>};
}

} // namespace show
