// A title rises out of the photograph, as if it were of glass: bevelled letters that bend what lies below and throw a
// soft shadow, while a light passes over them. Where there are no letters to be had, an ornament takes their place.
//
// Uses iTextOut for the letters and ConvertBlock2LightInfom for their light from four sides, which moves by mixing;
// ConvertSrc2LightInfom for the slopes that bend the picture; Hor_GaussBlur and Ver_GaussBlur for the shadow;
// iBltFast32_Advanced, iFadeOut32. The ornament is drawn by Draw_Circle_NoFillInside, Draw_Circle_FillInside and
// Rect_Safe.

#include "../angle.h"
#include "../effect.h"
#include "../lettering.h"
#include "../painting.h"
#include "../point.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string>
#include <vector>

namespace show {

namespace {

constexpr double slopeOfOne = 64; // a slope of 1 in a light map

/// In steps of 1/256. A share beyond 0 to 1 is cut off there.
int share(double value) {
    return rounded(256 * clampUnit(value));
}

/// \param waist where the points part, in radii
void drawStar(const Surface &out, double x, double y, double radius, int points, double waist) {
    tagRECT clip = out.rect();
    q_ulong colour = ink;
    const auto point = [&](double turns, double distance) {
        return tagPOINT{rounded(x + distance * sineOf(turns)), rounded(y - distance * cosineOf(turns))};
    };
    for (int i = 0; i < points; ++i) {
        tagPOINT middle = point(0, 0);
        tagPOINT before = point((i - 0.5) / points, waist * radius);
        tagPOINT tip = point(static_cast<double>(i) / points, radius);
        tagPOINT behind = point((i + 0.5) / points, waist * radius);
        Rect_Safe(out.pixels, &clip, out.pitch, &middle, &before, &tip, &behind, &colour);
    }
}

/// A star in a ring, and two sparks beside it where there is room.
void drawOrnament(const Surface &out) {
    const int x = out.width / 2;
    const int y = out.height / 2;
    const int radius = std::min(out.width, out.height) * 34 / 100;
    if (radius < 2)
        return;
    Draw_Circle_NoFillInside(out.pixels, out.pitch, x, y, radius, radius / 9, ink);
    drawStar(out, x, y, 0.80 * radius, 8, 0.48);
    Draw_Circle_FillInside(out.pixels, out.pitch, x, y, radius / 4, 0);
    Draw_Circle_FillInside(out.pixels, out.pitch, x, y, radius / 6, ink);
    const int aside = radius * 165 / 100;
    if (x > aside + radius / 2)
        for (const int side : {-1, 1})
            drawStar(out, x + side * aside, y, 0.45 * radius, 4, 0.32);
}

Canvas flipped(const Surface &picture, bool acrossX, bool acrossY) {
    Canvas result(picture.width, picture.height);
    for (int y = 0; y < picture.height; ++y)
        for (int x = 0; x < picture.width; ++x)
            *result.surface().at(acrossX ? picture.width - 1 - x : x, acrossY ? picture.height - 1 - y : y) =
                *picture.at(x, y);
    return result;
}

/// The map that `convert` makes of a shape, with the light from another corner: the shape is turned over for it, and
/// the map turned back.
template <class Convert>
Canvas mapOf(const Surface &shape, bool acrossX, bool acrossY, Convert convert) {
    const Canvas turned = flipped(shape, acrossX, acrossY);
    const Surface map = turned.surface();
    tagRECT whole = map.rect();
    convert(map.pixels, &whole, map.pitch);
    return flipped(map, acrossX, acrossY);
}

int signedByte(q_ulong word) {
    return static_cast<int>((word & 0xFF) ^ 0x80) - 0x80;
}

class Title : public Effect {
    static constexpr int corners = 4;

    /// What light and slopes there are on a pixel, each in a byte of one of four pictures, weighted by its coverage.
    struct Spot {
        std::array<int, corners> diffuse; ///< half of it
        std::array<int, corners> specular;
        int coverage;
        int slopeX; ///< 128 is flat
        int slopeY;
    };

    void write(const std::string &title, const std::string &subtitle) override {
        line = title;
        secondLine = subtitle;
    }

    void prepare(int width, int height) override {
        // At twice the frame's size, so that halving smooths the edges, but no larger than is soon made.
        constexpr double widest = 2600;
        constexpr double largest = 2600.0 * 1500;
        const double frameSize = static_cast<double>(width) * height;
        const double scale = std::min({2.0, widest / width, std::sqrt(largest / frameSize)});
        const int mapWidth = std::max(static_cast<int>(width * scale), 1);
        const int mapHeight = std::max(static_cast<int>(height * scale), 1);
        for (Canvas &map : maps)
            map = Canvas(mapWidth, mapHeight);

        const auto band = [&](double left, double top, double right, double bottom) {
            return tagRECT{static_cast<q_long>(left * mapWidth), static_cast<q_long>(top * mapHeight),
                           static_cast<q_long>(right * mapWidth), static_cast<q_long>(bottom * mapHeight)};
        };
        const Canvas title(mapWidth, mapHeight);
        const Canvas subtitle(mapWidth, mapHeight);
        // Alone, it stands in the middle.
        const double lower = secondLine.empty() ? 0.08 : 0;
        const bool hasLetters = !line.empty() && writeLine(title, line, band(0.10, 0.22 + lower, 0.90, 0.64 + lower));
        if (hasLetters) {
            emboss(title.surface(), 0.17, 0.30);
            if (!secondLine.empty() && writeLine(subtitle, secondLine, band(0.16, 0.70, 0.84, 0.78)))
                emboss(subtitle.surface(), 0.14, 0.25);
        } else {
            const Canvas ornament(mapWidth, mapHeight);
            drawOrnament(ornament.surface());
            emboss(ornament.surface(), 0.08, 0.20);
        }
        smooth(std::clamp(0.0060 * mapHeight, 0.4, 12.0));
        for (Canvas &map : maps)
            map = reduced(map.surface(), width, height);
        castShadow(width, height);
    }

    /// Adds what is written on `shape` to the maps.
    /// \param bevel,lens widths of the bevelled edge and of the slopes that bend light, in heights of the shape
    void emboss(const Surface &shape, double bevel, double lens) {
        const tagRECT bounds = boundsOf(shape);
        if (bounds.left >= bounds.right)
            return;
        // With a border of zeros all around: the smoothing of the relief looks a few pixels far.
        constexpr int border = 4;
        const Canvas cut(widthOf(bounds) + 2 * border, heightOf(bounds) + 2 * border);
        const Surface letters = cut.surface();
        copy(letters, border, border, shape, bounds);

        const int bevelSize = std::max(static_cast<int>(bevel * heightOf(bounds)), 2);
        const int lensSize = std::max(static_cast<int>(lens * heightOf(bounds)), 2);
        std::array<Canvas, corners> lights;
        for (int corner = 0; corner < corners; ++corner)
            lights[static_cast<std::size_t>(corner)] = mapOf(
                letters, corner % 2 == 1, corner / 2 == 1, [bevelSize](q_ulong *surface, tagRECT *rect, int pitch) {
                    constexpr int unlimited = 1000000;
                    ConvertBlock2LightInfom(surface, rect, pitch, 1, bevelSize, 0, unlimited);
                });
        // A slope upward covers the one to the side. Upside down it is a slope downward.
        const auto slopes = [lensSize](q_ulong *surface, tagRECT *rect, int pitch) {
            constexpr int halfCircle = 2;
            ConvertSrc2LightInfom(surface, rect, pitch, 1, lensSize, halfCircle);
        };
        const Canvas upright = mapOf(letters, false, false, slopes);
        const Canvas upsideDown = mapOf(letters, false, true, slopes);

        for (int y = 0; y < letters.height; ++y)
            for (int x = 0; x < letters.width; ++x) {
                const q_ulong written = *letters.at(x, y);
                const int toX = static_cast<int>(bounds.left) + x - border;
                const int toY = static_cast<int>(bounds.top) + y - border;
                if (written == 0 || toX < 0 || toY < 0 || toX >= maps[0].width() || toY >= maps[0].height())
                    continue;
                Spot spot = {};
                spot.coverage = static_cast<int>(written & 0xFF);
                for (std::size_t corner = 0; corner < corners; ++corner) {
                    const q_ulong word = *lights[corner].surface().at(x, y);
                    spot.diffuse[corner] = (static_cast<int>(word & 0xFFFF) - 100) / 2;
                    spot.specular[corner] = std::min(static_cast<int>(word >> 16), 255);
                }
                const q_ulong word = *upright.surface().at(x, y);
                const q_ulong turned = *upsideDown.surface().at(x, y);
                const int slopeY = signedByte(word >> 16);
                const bool isCovered = slopeY < 0;
                const int slopeX = !isCovered                      ? signedByte(word >> 24)
                                   : signedByte(turned >> 16) >= 0 ? signedByte(turned >> 24)
                                                                   : 0;
                spot.slopeX = 128 + slopeX;
                spot.slopeY = 128 + slopeY;
                store(toX, toY, spot);
            }
    }

    void store(int x, int y, const Spot &spot) {
        const auto level = [&](int value) { return static_cast<q_ulong>(value * spot.coverage / 255); };
        const auto packed = [](q_ulong high, q_ulong middle, q_ulong low) { return high << 16 | middle << 8 | low; };
        *maps[0].surface().at(x, y) = packed(level(spot.diffuse[0]), level(spot.diffuse[1]), level(spot.diffuse[2]));
        *maps[1].surface().at(x, y) = packed(level(spot.specular[0]), level(spot.specular[1]), level(spot.specular[2]));
        *maps[2].surface().at(x, y) = packed(level(spot.diffuse[3]), level(spot.specular[3]), level(255));
        *maps[3].surface().at(x, y) = packed(level(spot.slopeX), level(spot.slopeY), 0);
    }

    /// Takes the grain out of the maps: the bevel's contours go round slanting edges in steps. What is blurred is
    /// weighted by its coverage, as the maps hold it, and then brought back to the coverage that was there.
    void smooth(double sigma) {
        const Surface packed = maps[2].surface();
        const int width = packed.width;
        const int height = packed.height;
        const Canvas scratch(width, height);
        std::array<Canvas, 4> blurred;
        for (std::size_t i = 0; i < blurred.size(); ++i) {
            blurred[i] = Canvas(width, height);
            const auto deviation = static_cast<float>(sigma);
            Hor_GaussBlur(scratch.surface().pixels, maps[i].surface().pixels, deviation, width, height, packed.pitch);
            Ver_GaussBlur(blurred[i].surface().pixels, scratch.surface().pixels, deviation, width, height,
                          packed.pitch);
        }
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x) {
                const int coverage = channelOf(*packed.at(x, y), 0);
                const int around = channelOf(*blurred[2].surface().at(x, y), 0);
                if (coverage == 0 || around == 0)
                    continue;
                for (std::size_t i = 0; i < blurred.size(); ++i) {
                    const q_ulong mean = *blurred[i].surface().at(x, y);
                    *maps[i].surface().at(x, y) =
                        eachChannel([&](int shift) { return channelOf(mean, shift) * coverage / around; });
                }
                *packed.at(x, y) = (*packed.at(x, y) & 0xFFFF00) | static_cast<q_ulong>(coverage);
            }
    }

    /// The blurred coverage, moved to the lower right, in the byte that is left.
    void castShadow(int width, int height) {
        const Canvas dark(width, height);
        const Canvas blurred(width, height);
        const Surface shape = maps[2].surface();
        const Surface work = dark.surface();
        const Surface between = blurred.surface();
        tagRECT whole = shape.rect();
        const int fall = rounded(0.016 * height);
        iBltFast32_Advanced(work.pixels, shape.pixels, fall * 2 / 3, fall, &whole, work.pitch, shape.pitch, width,
                            height);
        const auto sigma = static_cast<float>(std::clamp(0.013 * height, 0.5, 40.0));
        Hor_GaussBlur(between.pixels, work.pixels, sigma, width, height, work.pitch);
        Ver_GaussBlur(work.pixels, between.pixels, sigma, width, height, work.pitch);
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                *maps[3].surface().at(x, y) |= *work.at(x, y) & 0xFF;
    }

    /// The weights of the four corners for a light that stands between them, in steps of 1/256, and the courses of the
    /// effect over the frame's columns.
    struct Lighting {
        std::array<int, corners> weights;
        std::vector<int> risen; ///< for each column
        std::vector<int> sheen; ///< for each column plus half the row
        double reach;           ///< how far the slopes bend, in pixels for a slope of 1
    };

    static Lighting lightingAt(const Surface &out, double progress) {
        Lighting lighting;
        const double right = easeInOut(stretch(progress, 0.18, 0.82));
        const double low = 0.12 + 0.10 * sineOf(progress);
        lighting.weights = {share((1 - right) * (1 - low)), share(right * (1 - low)), share((1 - right) * low),
                            share(right * low)};
        for (int x = 0; x < out.width; ++x) {
            const double late = 0.14 * x / out.width;
            const double appeared = easeInOut(stretch(progress, 0.06 + late, 0.26 + late));
            const double gone = easeInOut(stretch(progress, 0.66 + late, 0.80 + late));
            lighting.risen.push_back(share(appeared * (1 - gone)));
        }
        const double half = 0.13 * out.width + 1;
        const double middle =
            mix(-2 * half, out.width + out.height / 2.0 + half, easeInOut(stretch(progress, 0.22, 0.76)));
        for (int along = 0; along <= out.width + out.height / 2; ++along) {
            const double distance = std::abs(along - middle) / half;
            lighting.sheen.push_back(share(easeInOut(clampUnit(1 - distance))));
        }
        lighting.reach = 0.030 * out.height;
        return lighting;
    }

    void render(Stage &stage, const Surface &out, const Moment &moment) const override {
        const Shot &shot = moment.a;
        const Stage::Plane plane = stage.plane();
        const Surface &picture = plane;
        drawView(picture, shot.photo, shot.camera.at(shot.progress));
        const double shown =
            easeInOut(stretch(shot.progress, 0.06, 0.34)) * (1 - easeInOut(stretch(shot.progress, 0.68, 0.94)));
        dim(picture, 1 - 0.34 * shown);
        extendEdges(picture);

        const Lighting lighting = lightingAt(out, shot.progress);
        for (int y = 0; y < out.height; ++y)
            for (int x = 0; x < out.width; ++x)
                *out.at(x, y) = pixelAt(picture, lighting, x, y);
    }

    q_ulong pixelAt(const Surface &picture, const Lighting &lighting, int x, int y) const {
        const q_ulong below = *picture.at(x, y) & 0xFFFFFF;
        const int risen = lighting.risen[static_cast<std::size_t>(x)];
        const q_ulong slopes = *maps[3].surface().at(x, y);
        const q_ulong rest = *maps[2].surface().at(x, y);
        const int coverage = static_cast<int>(rest & 0xFF);
        const int shadow = static_cast<int>(slopes & 0xFF);
        if (risen == 0 || (coverage == 0 && shadow == 0))
            return below;
        constexpr int darkest = 170;
        const int lit = 256 - (shadow * risen * darkest >> 16);
        if (coverage == 0)
            return eachChannel([&](int shift) { return channelOf(below, shift) * lit >> 8; });

        const auto weighted = [&](q_ulong three, int fourth) {
            return (channelOf(three, 16) * lighting.weights[0] + channelOf(three, 8) * lighting.weights[1] +
                    channelOf(three, 0) * lighting.weights[2] + fourth * lighting.weights[3]) /
                   coverage; // weights add up to 256 and coverage is one of 255: the two all but cancel out
        };
        const int diffuse = 2 * weighted(*maps[0].surface().at(x, y), channelOf(rest, 16));
        const int specular = weighted(*maps[1].surface().at(x, y), channelOf(rest, 8));
        const auto slope = [&](int shift) {
            return (channelOf(slopes, shift) * 255.0 / coverage - 128) / slopeOfOne * lighting.reach * risen / 256;
        };
        const q_ulong bent = sampled(picture, x + slope(16), y + slope(8));

        // A flat top has seven tenths of 256.
        constexpr int flat = 179;
        const int brightness = 256 + (diffuse - flat) * 256 * 9 / (flat * 10);
        const int sheen = lighting.sheen[static_cast<std::size_t>(x + y / 2)];
        const int highlight = std::min(specular * (200 + sheen * 3 / 4) >> 8, 255) + sheen * 44 / 256;
        const int opacity = coverage * risen / 255;
        return eachChannel([&](int shift) {
            const int warmth = shift == 16 ? 256 : shift == 8 ? 248 : 228;
            const int clear = std::min(channelOf(bent, shift) * 304 >> 8, 255);
            const int frost = 58 + (255 - clear) / 5; // more where it is dark, so that letters stand out there too
            const int glass = ((clear + frost) * std::max(brightness, 40) >> 8) + (highlight * warmth >> 8);
            const int ground = channelOf(below, shift) * lit >> 8;
            return ground + ((std::min(glass, 255) - ground) * opacity >> 8);
        });
    }

    /// The picture between its pixels.
    static q_ulong sampled(const Surface &picture, double x, double y) {
        const int fineX = static_cast<int>(std::clamp(x, 0.0, picture.width - 1.0) * 16);
        const int fineY = static_cast<int>(std::clamp(y, 0.0, picture.height - 1.0) * 16);
        const int right = fineX & 15;
        const int lower = fineY & 15;
        const q_ulong *const at = picture.at(fineX >> 4, fineY >> 4);
        return eachChannel([&](int shift) {
            const int above = channelOf(at[0], shift) * (16 - right) + channelOf(at[1], shift) * right;
            const int under =
                channelOf(at[picture.pitch], shift) * (16 - right) + channelOf(at[picture.pitch + 1], shift) * right;
            return (above * (16 - lower) + under * lower) >> 8;
        });
    }

    std::string line;
    std::string secondLine;
    std::array<Canvas, 4> maps;
};

const Registered<Title> registered("title", Effect::Kind::scene, Use::onRequest,
                                   "a title of glass rises out of the photograph");

} // namespace

} // namespace show
