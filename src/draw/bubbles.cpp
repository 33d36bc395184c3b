#include "base/channels.h"
#include "base/doubled.h"
#include "base/extent.h"
#include "base/pixel.h"
#include "base/vector.h"
#include "base/wide.h"
#include "q_Mur/draw.h"
#include "q_Mur/frame.h"

#include <cmath>
#include <cstring>

namespace {

using namespace qmur;

// A word of the resource has the highlight in the place of red, the tint in that of green, and the light on the surface
// in that of blue.

constexpr q_ulong highlightOf(q_ulong word) {
    return redOf(word);
}
constexpr q_ulong tintOf(q_ulong word) {
    return greenOf(word);
}
constexpr q_ulong lightOf(q_ulong word) {
    return blueOf(word);
}

constexpr q_ulong resourceWord(int light, int tint, int highlight) {
    return pixelOf(static_cast<q_ulong>(highlight), static_cast<q_ulong>(tint), static_cast<q_ulong>(light));
}

constexpr int squaredDistance(int dx, int dy) {
    return wrapAdd(wrapMultiply(dx, dx), wrapMultiply(dy, dy));
}

/// The sphere of a resource whose highlight the light's direction makes.
class LitSphere {
public:
    explicit LitSphere(int sphereRadius) : squaredRadius(wrapMultiply(sphereRadius, sphereRadius)) {}

    /// The normal of the facet between a point and its neighbours to the left and above.
    _POINT3DFLOAT normalAt(int dx, int dy) const {
        return faceNormal(surfacePoint(dx, dy), surfacePoint(dx - 1, dy), surfacePoint(dx, dy - 1));
    }

    static int light(const _POINT3DFLOAT &normal) {
        const Wide cosine = static_cast<Wide>(normal.z) - normal.y - normal.x;
        return 80 + (cosine >= 0 ? truncateToInt(80 * cosine) : 0);
    }

    /// Highest where the normal lies halfway between the light and the eye.
    static int highlight(const _POINT3DFLOAT &normal, int strength) {
        Wide power = (2 * static_cast<Wide>(normal.z) - normal.y - normal.x) / squareRoot(6);
        if (!(power > 0))
            return 0;
        for (int squarings = 0; squarings < 7; ++squarings)
            power *= power;
        return truncateToInt(strength * power);
    }

private:
    _POINT3DFLOAT surfacePoint(int dx, int dy) const {
        const int squared = squaredDistance(dx, dy);
        const Wide height = squared < squaredRadius ? squareRoot(wrapSubtract(squaredRadius, squared)) : 0;
        return {static_cast<float>(dx), static_cast<float>(dy), static_cast<float>(height), 0};
    }

    int squaredRadius;
};

/// A spot of light, brightest at its centre and dark from a squared distance on that does not depend on the resource.
struct Spot {
    int x;
    int y;
    int darkFrom;
    float angle; ///< a quarter turn over `darkFrom`

    bool reaches(int squared) const { return squared < darkFrom; }

    /// `strength` times the cosine, squared `squarings` times.
    int brightness(int squared, int strength, int squarings) const {
        Wide power = sineCosine(static_cast<Wide>(squared) * angle).cosine;
        for (int i = 0; i < squarings; ++i)
            power *= power;
        return truncateToInt(strength * power);
    }
};

/// Places of a row whose words are found together.
constexpr int stretch = 32;

/// The light and the highlight on a stretch, and whether they are known.
struct Shading {
    int light[stretch];
    int highlight[stretch];
    int open[stretch]; ///< 0 where they are
};

/// What doubles may be off by, and full width with them, before they are truncated: far less than this.
constexpr double doubt = 0x1p-30;

/// 0 if every number within the doubt truncates to the same int.
inline int openAround(double value) {
    return static_cast<int>(value - doubt) ^ static_cast<int>(value + doubt);
}

/// LitSphere in floats and doubles.
class QuickSphere {
public:
    QuickSphere(int sphereRadius, bool withSecondHighlight)
        : radius(sphereRadius), hasSecondHighlight(withSecondHighlight) {
        const LitSphere sphere(radius);
        const _POINT3DFLOAT flat = sphere.normalAt(4 * radius, 4 * radius);
        flatLight = LitSphere::light(flat);
        flatHighlight = LitSphere::highlight(flat, 200);
        flatMirrored = LitSphere::highlight(flat, 50);
    }

    /// Whether no square wraps and all positions are floats.
    static bool serves(int sphereRadius) { return sphereRadius >= 1 && sphereRadius < 8192; }

    /// Shades the places (i, j) from `start` on.
    void shade(int start, int j, int count, Shading &shading) const {
        const int dy = j - radius;
        float heights[stretch + 1];
        float above[stretch];
        float doubts[stretch + 1];
        float doubtsAbove[stretch];
        for (int i = 0; i <= count; ++i)
            heights[i] = heightOver(start + i - 1 - radius, dy, doubts[i]);
        for (int i = 0; i < count; ++i)
            above[i] = heightOver(start + i - radius, dy - 1, doubtsAbove[i]);
        // The normals of the facets; differences of floats are the same rounded from any wider format.
        float normalsX[stretch];
        float normalsY[stretch];
        float normalsZ[stretch];
        for (int i = 0; i < count; ++i) {
            const double x = -(heights[i + 1] - heights[i]);
            const double y = -(heights[i + 1] - above[i]);
            const double factor = 1 / std::sqrt(1 + y * y + x * x);
            const Doubled normalX(x * factor);
            const Doubled normalY(y * factor);
            const Doubled normalZ(factor);
            doubts[i] += doubts[i + 1] + doubtsAbove[i] + normalX.doubt() + normalY.doubt() + normalZ.doubt();
            normalsX[i] = normalX.nearest();
            normalsY[i] = normalY.nearest();
            normalsZ[i] = normalZ.nearest();
        }
        // From the first mirrored column on.
        const int mirrored = hasSecondHighlight && j > radius ? larger(smaller(radius + 1 - start, count), 0) : count;
        const auto light = [&](int from, int to, double sign, double strength) {
            const double root = std::sqrt(6.0);
            for (int i = from; i < to; ++i) {
                const double slope = static_cast<double>(normalsY[i]) + normalsX[i];
                const double z = normalsZ[i];
                const double fallen = 80 * positive(z - slope);
                double shine = positive(2 * z - sign * slope) / root;
                shine *= shine;
                shine *= shine;
                shine *= shine;
                shine *= shine;
                shine *= shine;
                shine *= shine;
                shine *= shine;
                shine *= strength;
                shading.light[i] = 80 + static_cast<int>(fallen);
                shading.highlight[i] = static_cast<int>(shine);
                shading.open[i] = openAround(fallen) | openAround(shine);
            }
        };
        light(0, mirrored, 1, 200);
        light(mirrored, count, -1, 50);
        for (int i = 0; i < count; ++i) {
            if (normalsX[i] == 0 && normalsY[i] == 0) {
                shading.light[i] = flatLight;
                shading.highlight[i] = i < mirrored ? flatHighlight : flatMirrored;
                shading.open[i] = 0;
            }
            shading.open[i] |= doubts[i] != 0;
        }
    }

private:
    static double positive(double value) { return 0.5 * (value + std::fabs(value)); }

    float heightOver(int dx, int dy, float &unsettled) const {
        const int left = radius * radius - dx * dx - dy * dy;
        const Doubled height(std::sqrt(static_cast<double>(left > 0 ? left : 0)));
        unsettled = height.doubt();
        return height.nearest();
    }

    int radius;
    bool hasSecondHighlight;
    int flatLight;
    int flatHighlight;
    int flatMirrored;
};

/// The cosine of an angle from 0 to a quarter turn, within 2^-48.
inline double quickCosine(double angle) {
    // The series up to the 20th power; the next of its terms is below 2^-55.
    constexpr double reciprocals[] = {-1.0 / 6402373705728000,
                                      1.0 / 20922789888000,
                                      -1.0 / 87178291200,
                                      1.0 / 479001600,
                                      -1.0 / 3628800,
                                      1.0 / 40320,
                                      -1.0 / 720,
                                      1.0 / 24,
                                      -1.0 / 2,
                                      1};
    const double square = angle * angle;
    double sum = 1.0 / 2432902008176640000.0;
    for (const double reciprocal : reciprocals)
        sum = sum * square + reciprocal;
    return sum;
}

/// The spots of a resource, their light found in doubles.
struct SpottedResource {
    Spot first;
    Spot second;
    Spot glow;
    bool hasSecond;

    void shade(int start, int j, int count, Shading &shading) const {
        const auto isLitBy = [=](const Spot &spot) {
            const int dx = larger(larger(start - spot.x, spot.x - (start + count - 1)), 0);
            return spot.reaches(squaredDistance(dx, j - spot.y));
        };
        for (int i = 0; i < count; ++i) {
            shading.light[i] = 55;
            shading.highlight[i] = 0;
            shading.open[i] = 0;
        }
        if (isLitBy(glow))
            for (int i = 0; i < count; ++i) {
                const int dx = start + i - glow.x;
                const int dy = j - glow.y;
                const int squared = dx * dx + dy * dy;
                const int reached = reachedMask(glow, squared);
                const double fallen =
                    200 * quickCosine(smaller(squared, glow.darkFrom) * static_cast<double>(glow.angle));
                shading.light[i] = 55 + (static_cast<int>(fallen) & reached);
                shading.open[i] = openAround(fallen) & reached;
            }
        if (isLitBy(first))
            addSpot(first, 200, start, j, count, shading);
        if (hasSecond && isLitBy(second))
            addSpot(second, 64, start, j, count, shading);
    }

private:
    /// All bits where a spot reaches, none elsewhere: with a branch, loops would not be made of lanes.
    static int reachedMask(const Spot &spot, int squared) { return -static_cast<int>(spot.reaches(squared)); }

    static void addSpot(const Spot &spot, int strength, int start, int j, int count, Shading &shading) {
        for (int i = 0; i < count; ++i) {
            const int dx = start + i - spot.x;
            const int dy = j - spot.y;
            const int squared = dx * dx + dy * dy;
            const int reached = reachedMask(spot, squared);
            double power = quickCosine(smaller(squared, spot.darkFrom) * static_cast<double>(spot.angle));
            power *= power;
            power *= power;
            power *= power;
            power *= power;
            power *= strength;
            shading.highlight[i] = (static_cast<int>(power) & reached) | (shading.highlight[i] & ~reached);
            shading.open[i] |= openAround(power) & reached;
        }
    }
};

/// Writes `word(i, j, tint)` to every place of a resource, or what `quick` finds, where that serves and knows it.
template <class Word, class Quick>
void renderResource(q_ulong *surface, int pitch, int x, int y, int size, Word word, bool quickServes,
                    const Quick &quick) {
    const int radius = size >> 1;
    const int squaredRadius = wrapMultiply(radius, radius);
    if (squaredRadius == 0)
        return;
    q_ulong *const first = pixelAt(surface, Distance{pitch}, Distance{x}, Distance{y});
    const auto tintAt = [=](int i, int j) { return (squaredDistance(i - radius, j - radius) << 7) / squaredRadius; };
    for (int j = 0; j < size; ++j) {
        q_ulong *const row = first + j * Distance{pitch};
        if (!quickServes) {
            for (int i = 0; i < size; ++i)
                row[i] = word(i, j, tintAt(i, j));
            continue;
        }
        for (int start = 0; start < size; start += stretch) {
            const int count = smaller(size - start, stretch);
            Shading shading;
            quick.shade(start, j, count, shading);
            int tints[stretch];
            // Quotients of ints that doubles hold never round up to the next whole number.
            for (int i = 0; i < count; ++i)
                tints[i] = static_cast<int>(static_cast<double>(squaredDistance(start + i - radius, j - radius) << 7) /
                                            squaredRadius);
            for (int i = 0; i < count; ++i)
                row[start + i] = shading.open[i] == 0 ? resourceWord(shading.light[i], tints[i], shading.highlight[i])
                                                      : word(start + i, j, tints[i]);
        }
    }
}

/// color * light / 128 in each channel, saturated, for a light of one byte; top byte 0.
constexpr q_ulong lit(q_ulong color, q_ulong light) {
    const q_ulong redBlue = (color & redBlueMask) * light >> 7 & 0x1FF01FF;
    const q_ulong green = (color & greenMask) * light >> 7 & 0x1FF00;
    const q_ulong carries = (redBlue & 0x1000100) | (green & 0x10000);
    return (redBlue & redBlueMask) | (green & greenMask) | (carries - (carries >> 8));
}

constexpr q_ulong highlit(q_ulong pixel, q_ulong highlight) {
    return saturatingAdd(pixel, highlight * 0x10101);
}

/// The part of a disc that lies on a surface.
struct Disc {
    int left;
    int top;
    int radius;
    Window window;

    int centreX() const { return wrapAdd(left, radius); }
    int centreY() const { return wrapAdd(top, radius); }
};

Disc discAround(int cx, int cy, int size, int width, int height) {
    const int radius = size >> 1;
    const int left = wrapSubtract(cx, radius);
    const int top = wrapSubtract(cy, radius);
    const Window square = {{left, wrapAdd(left, size)}, {top, wrapAdd(top, size)}};
    return {left, top, radius, square.within(windowOf(width, height))};
}

/// Calls `draw(y, columns)` for every row, with the columns whose squared distance is at most `squaredReach`.
template <class Draw>
void forEachRowOf(const Disc &disc, long long squaredReach, Draw draw) {
    const int cx = disc.centreX();
    int reach = 0;
    for (int y = disc.window.rows.begin; y < disc.window.rows.end; ++y) {
        const long long dy = static_cast<long long>(y) - disc.centreY();
        const long long squared = squaredReach - dy * dy;
        if (squared < 0)
            continue;
        while ((reach + 1LL) * (reach + 1LL) <= squared)
            ++reach;
        while (static_cast<long long>(reach) * reach > squared)
            --reach;
        draw(y, intersection(disc.window.columns, {wrapSubtract(cx, reach), wrapAdd(cx, reach + 1)}));
    }
}

/// The resource stretched over a bubble; positions have `fraction` fraction bits.
template <int fraction>
struct StretchedResource {
    static constexpr int fractionBits = fraction;

    const q_ulong *words;
    Distance pitch;
    int step;

    StretchedResource(const q_ulong *resource, Distance resourcePitch, int resourceSize, int size)
        : words(resource), pitch(resourcePitch), step((resourceSize << fraction) / size) {}

    const q_ulong *row(int y) const { return words + (wrapMultiply(y, step) >> fraction) * pitch; }
    int column(int x) const { return wrapMultiply(x, step) >> fraction; }
};

/// A picture with a bubble on it.
struct Scene {
    q_ulong *surface;
    Distance pitch;
    int width;
    int height;
    Disc disc;

    /// Pixels on the rim itself are outside.
    template <class Draw>
    void forEachRow(Draw draw) const {
        forEachRowOf(disc, static_cast<long long>(disc.radius) * disc.radius - 1, draw);
    }
};

/// Works out all pixels of the bubble before any is drawn, as they still show the background.
template <int fraction>
void refract(const Scene &scene, const StretchedResource<fraction> &resource, int size, q_ulong color,
             q_ulong *scratch) {
    const int squaredSize = wrapMultiply(size, size);
    const int unit = squaredSize == 0 ? 0 : 65536 / squaredSize;
    scene.forEachRow([=, next = scratch](int y, Span columns) mutable {
        const auto [surface, pitch, width, height, disc] = scene;
        const int cx = disc.centreX();
        const int cy = disc.centreY();
        const int dy = y - cy;
        const q_ulong *const words = resource.row(y - disc.top);
        for (int x = columns.begin; x < columns.end; ++x) {
            const int dx = x - cx;
            // In 1/128: below 1 the picture is magnified, above 1 it is compressed.
            const int bend = 48 - (wrapMultiply(-29, wrapMultiply(squaredDistance(dx, dy), unit)) >> 12);
            const int seenX = wrapAdd(cx, wrapMultiply(dx, bend) >> 7);
            const int seenY = wrapAdd(cy, wrapMultiply(dy, bend) >> 7);
            const bool onSurface = seenX >= 0 && seenX < width && seenY >= 0 && seenY < height;
            const q_ulong background = onSurface ? *pixelAt(surface, pitch, seenX, seenY) : 0;
            const q_ulong word = words[resource.column(x - disc.left)];
            const q_ulong tint = tintOf(word);
            *next++ = highlit(blend256(background, 256 - tint, lit(color, lightOf(word)), tint), highlightOf(word));
        }
    });
}

/// What a stretch of a bubble shows: pixels of the background, and words of the resource.
struct Shown {
    alignas(widestBytes) q_ulong backgrounds[stretch];
    alignas(widestBytes) q_ulong words[stretch];
};

/// Where the rays of any bubble come from.
class Rays {
public:
    static bool serve(const Scene &, int) { return true; }

    Rays(const Scene &drawn, int size) : scene(drawn), unit(65536 / oneIfZero(wrapMultiply(size, size))) {}

    /// Finds what the pixels from (x, y) on show; `words` are the resource's row.
    template <class Resource>
    void find(Shown &shown, int x, int y, int count, const Resource &resource, const q_ulong *words) const {
        const auto &[surface, pitch, width, height, disc] = scene;
        const int cx = disc.centreX();
        const int cy = disc.centreY();
        const int dy = y - cy;
        int seenX[stretch];
        int seenY[stretch];
        int texels[stretch];
        for (int i = 0; i < stretch; ++i) {
            const int dx = wrapSubtract(wrapAdd(x, i), cx);
            const int bend = 48 - (wrapMultiply(-29, wrapMultiply(squaredDistance(dx, dy), unit)) >> 12);
            seenX[i] = wrapAdd(cx, wrapMultiply(dx, bend) >> 7);
            seenY[i] = wrapAdd(cy, wrapMultiply(dy, bend) >> 7);
            texels[i] = resource.column(wrapSubtract(wrapAdd(x, i), disc.left));
        }
        for (int i = 0; i < count; ++i) {
            const bool onSurface = static_cast<unsigned>(seenX[i]) < static_cast<unsigned>(width) &&
                                   static_cast<unsigned>(seenY[i]) < static_cast<unsigned>(height);
            shown.backgrounds[i] = onSurface ? *pixelAt(surface, pitch, seenX[i], seenY[i]) : 0;
            shown.words[i] = words[texels[i]];
        }
    }

private:
    const Scene &scene;
    int unit;
};

/// The same for bubbles so small that all factors fit 16 bits with their signs.
class ShortRays {
public:
    static bool serve(const Scene &scene, int size) {
        constexpr int mostPitch = 32767;
        constexpr int mostLength = 1 << 30;
        return size >= 2 && scene.disc.radius <= 181 && scene.pitch >= -mostPitch && scene.pitch <= mostPitch &&
               scene.width <= mostLength && scene.height <= mostLength;
    }

    ShortRays(const Scene &drawn, int size)
        : scene(drawn),
          centre(pixelAt(drawn.surface, drawn.pitch, Distance{drawn.disc.centreX()}, Distance{drawn.disc.centreY()})),
          unit(static_cast<std::uint32_t>(65536 / (size * size))) {
        const int reach = (165 * drawn.disc.radius >> 7) + 1;
        const auto covers = [reach](int length, int middle) { return middle >= reach && middle + reach < length; };
        staysOnSurface = covers(drawn.width, drawn.disc.centreX()) && covers(drawn.height, drawn.disc.centreY());
    }

    template <class Resource>
    void find(Shown &shown, int x, int y, int count, const Resource &resource, const q_ulong *words) const {
        constexpr int lanes = sizeof(Pixels) / sizeof(q_ulong);
        const Disc &disc = scene.disc;
        const int cx = disc.centreX();
        const int cy = disc.centreY();
        const auto all = [](int number) { return Pixels::all(static_cast<std::uint32_t>(number)); };
        const auto products = [](Pixels a, Pixels b) { return pairSums(as<std::uint16_t>(a), as<std::uint16_t>(b)); };
        const auto pairsOf = [](Pixels low, Pixels high) { return (low & Pixels::all(0xFFFF)) | high << 16; };
        const Pixels dy = all(y - cy);
        const Pixels steps = Pixels::all(1 | static_cast<std::uint32_t>(scene.pitch) << 16);
        Pixels dx = all(x - cx) + Pixels::counted();
        Pixels texel = all(wrapMultiply(x - disc.left, resource.step)) + Pixels::counted() * all(resource.step);
        const Pixels texelStep = all(wrapMultiply(resource.step, lanes));
        alignas(widestBytes) std::int32_t places[stretch];
        alignas(widestBytes) std::int32_t texels[stretch];
        alignas(widestBytes) std::int32_t outside[stretch]; // below 0 where it is
        for (int i = 0; i < count; i += lanes, dx = dx + all(lanes), texel = texel + texelStep) {
            const Pixels position = pairsOf(dx, dy);
            const Pixels square = products(position, position);
            const Pixels bend = ((products(products(square, Pixels::all(unit)), all(29)) + all(4095)) >> 12) + all(48);
            const Pixels seenX = shiftedSigned(products(dx, bend), 7);
            const Pixels seenY = shiftedSigned(products(dy, bend), 7);
            products(pairsOf(seenX, seenY), steps).store(places + i);
            shiftedSigned(texel, Resource::fractionBits).store(texels + i);
            if (!staysOnSurface)
                ((seenX + all(cx)) | (all(scene.width - 1 - cx) - seenX) | (seenY + all(cy)) |
                 (all(scene.height - 1 - cy) - seenY))
                    .store(outside + i);
        }
        for (int i = 0; i < count; ++i)
            shown.words[i] = words[texels[i]];
        if (staysOnSurface)
            for (int i = 0; i < count; ++i)
                shown.backgrounds[i] = centre[places[i]];
        else
            for (int i = 0; i < count; ++i)
                shown.backgrounds[i] = outside[i] < 0 ? 0 : centre[places[i]];
    }

private:
    const Scene &scene;
    const q_ulong *centre;
    std::uint32_t unit;
    bool staysOnSurface;
};

/// Works out the same pixels a stretch at a time: what they show, and then their colours side by side.
template <class RaysOf, int fraction>
void refractAbreast(const Scene &scene, const StretchedResource<fraction> &resource, int size, q_ulong color,
                    q_ulong *scratch) {
    constexpr int lanes = registerBytes / 4;
    using Bytes = qmur::Bytes<registerBytes>;
    using Words = qmur::Words<registerBytes / 2>;
    const RaysOf rays(scene, size);
    const Words colorWords = widenedLow(as<std::uint8_t>(Pixels::all(color & 0xFFFFFF)));
    const auto mixed = [colorWords](Pixels background, Pixels word) {
        const auto inPairs = [](Pixels number) { return number | number << 16; };
        const Pixels lights = inPairs(word & Pixels::all(0xFF));
        const Pixels tints = inPairs(word >> 8 & Pixels::all(0xFF));
        const Bytes tinted = narrowed(colorWords * as<std::uint16_t>(interleavedLow(lights, lights)) >> 7,
                                      colorWords * as<std::uint16_t>(interleavedHigh(lights, lights)) >> 7);
        const auto mean = [](Words d, Words s, Words tint) { return (d * (Words::all(256) - tint) + s * tint) >> 8; };
        const Bytes behind = as<std::uint8_t>(background);
        const Bytes glass =
            narrowed(mean(widenedLow(behind), widenedLow(tinted), as<std::uint16_t>(interleavedLow(tints, tints))),
                     mean(widenedHigh(behind), widenedHigh(tinted), as<std::uint16_t>(interleavedHigh(tints, tints))));
        const Pixels highlight = word >> 16 & Pixels::all(0xFF);
        const Pixels highlights = inPairs(highlight) | highlight << 8;
        return as<std::uint32_t>(saturatingSum(glass, as<std::uint8_t>(highlights))) & Pixels::all(0xFFFFFF);
    };
    scene.forEachRow([&, next = scratch](int y, Span columns) mutable {
        const q_ulong *const words = resource.row(y - scene.disc.top);
        for (int start = columns.begin; start < columns.end; start += stretch) {
            const int count = smaller(columns.end - start, stretch);
            Shown shown;
            rays.find(shown, start, y, count, resource, words);
            const auto mixedAt = [&](int i) {
                return mixed(Pixels::load(shown.backgrounds + i), Pixels::load(shown.words + i));
            };
            int i = 0;
            for (; i + lanes <= count; i += lanes)
                mixedAt(i).store(next + i);
            if (i < count) {
                for (int behind = count; behind < i + lanes; ++behind)
                    shown.backgrounds[behind] = shown.words[behind] = 0;
                mixedAt(i).storeFirst(next + i, count - i);
            }
            next += count;
        }
    });
}

/// Whether nothing that is read shares memory with the scratch, which has a pixel for each of the window's at most.
bool scratchIsApart(const Scene &scene, const q_ulong *scratch, const q_ulong *resource, Distance resourcePitch,
                    int resourceSize) {
    const Window &window = scene.disc.window;
    if (window.empty() || scene.width < 1 || scene.height < 1 || resourceSize < 1 || scene.disc.radius > 16384)
        return false;
    const long long pixels = static_cast<long long>(window.columns.length()) * window.rows.length();
    const Extent first = extentOf(scratch, 0, {{0, 1}, {0, 1}});
    const Extent written = {first.begin, first.end + pixels};
    return written.isApartFrom(extentOf(scene.surface, scene.pitch, windowOf(scene.width, scene.height))) &&
           written.isApartFrom(extentOf(resource, resourcePitch, windowOf(resourceSize, resourceSize)));
}

/// Works out all pixels of a bubble in one of the ways; true if that was not the one pixel by pixel.
template <int fraction>
bool refractInto(q_ulong *scratch, const Scene &scene, const StretchedResource<fraction> &resource, int resourceSize,
                 int size, q_ulong color) {
    if (!scratchIsApart(scene, scratch, resource.words, resource.pitch, resourceSize)) {
        refract(scene, resource, size, color, scratch);
        return false;
    }
    if (!staysSmall && ShortRays::serve(scene, size))
        refractAbreast<ShortRays>(scene, resource, size, color, scratch);
    else
        refractAbreast<Rays>(scene, resource, size, color, scratch);
    return true;
}

} // namespace

void MakeBubbleResource(q_ulong *surface, int pitch, int x, int y, int size, int secondHighlight) {
    atFullWidth([=] {
        const int radius = size >> 1;
        const LitSphere sphere(radius);
        const QuickSphere quick(QuickSphere::serves(radius) ? radius : 1, secondHighlight != 0);
        const auto word = [&](int i, int j, int tint) {
            _POINT3DFLOAT normal = sphere.normalAt(i - radius, j - radius);
            const int light = LitSphere::light(normal);
            int strength = 200;
            if (secondHighlight != 0 && i > radius && j > radius) {
                // Meant: this quadrant shows the light from the far side instead of the first one.
                normal.x = -normal.x;
                normal.y = -normal.y;
                strength = 50;
            }
            return resourceWord(light, tint, LitSphere::highlight(normal, strength));
        };
        renderResource(surface, pitch, x, y, size, word, QuickSphere::serves(radius), quick);
    });
}

void MakeBubbleResource2(q_ulong *surface, int pitch, int x, int y, int size, int secondHighlight) {
    // Meant: the spots keep their extent in pixels whatever the size.
    constexpr float quarterTurnOver512 = 0.00306796096265316F;
    constexpr float quarterTurnOver8192 = 0.0001917475601658225F;
    atFullWidth([=] {
        const int radius = size >> 1;
        const int third = radius / 3;
        const int twoThirds = wrapMultiply(2, radius) / 3;
        const Spot first = {radius + third, radius - third, 512, quarterTurnOver512};
        const Spot second = {radius - third, radius + third, 512, quarterTurnOver512};
        const Spot glow = {radius + twoThirds, radius - twoThirds, 8192, quarterTurnOver8192};
        const auto word = [&](int i, int j, int tint) {
            const auto from = [i, j](const Spot &spot) { return squaredDistance(i - spot.x, j - spot.y); };
            int highlight = 0;
            if (second.reaches(from(second)) && secondHighlight != 0)
                highlight = second.brightness(from(second), 64, 4);
            else if (first.reaches(from(first)))
                highlight = first.brightness(from(first), 200, 4);
            const int light = glow.reaches(from(glow)) ? larger(0, glow.brightness(from(glow), 200, 0)) : 0;
            return resourceWord(55 + light, tint, highlight);
        };
        renderResource(surface, pitch, x, y, size, word, radius < 8192,
                       SpottedResource{first, second, glow, secondHighlight != 0});
    });
}

void DrawRealBubble(q_ulong *surface, q_ulong *scratch, int pitch, int cx, int cy, int size, q_ulong *resource,
                    int resourceSize, q_ulong color, int width, int height) {
    if (size < 1)
        return;
    const Scene scene = {.surface = surface,
                         .pitch = pitch,
                         .width = width,
                         .height = height,
                         .disc = discAround(cx, cy, size, width, height)};
    const StretchedResource<18> stretched(resource, resourceSize, resourceSize, size);
    const bool isApart = refractInto(scratch, scene, stretched, resourceSize, size, color);
    scene.forEachRow([=, next = scratch](int y, Span columns) mutable {
        q_ulong *const row = surface + y * scene.pitch;
        const int *const roots = iSqrt;
        const int dy = y - scene.disc.centreY();
        const int centreX = scene.disc.centreX();
        const int rim = scene.disc.radius << 8;
        const auto fromRimAt = [=](int x) { return rim - (roots[squaredDistance(x - centreX, dy)] >> 2); };
        const auto draw = [=](int x, int fromRim, q_ulong word) {
            const auto cover = static_cast<q_ulong>(fromRim);
            row[x] = fromRim < 256 ? blend256(row[x], 256 - cover, word, cover) : word;
        };
        const q_ulong *const line = next;
        const int first = columns.begin;
        next += columns.end > first ? columns.end - first : 0;
        int x = first;
        if (isApart) {
            // Distances from the rim grow up to the middle of the row: where both ends are inside, all between them is.
            for (; x < columns.end && fromRimAt(x) < 256; ++x)
                draw(x, fromRimAt(x), line[x - first]);
            int end = columns.end;
            for (; end > x && fromRimAt(end - 1) < 256; --end)
                draw(end - 1, fromRimAt(end - 1), line[end - 1 - first]);
            if (end > x)
                std::memcpy(row + x, line + (x - first), static_cast<std::size_t>(end - x) * sizeof(q_ulong));
            return;
        }
        for (; x < columns.end; ++x)
            draw(x, fromRimAt(x), line[x - first]);
    });
}

void DrawRealBubbleOld(q_ulong *surface, q_ulong *scratch, int pitch, int cx, int cy, int size, q_ulong *resource,
                       int resourceSize, q_ulong color, int width, int height) {
    if (size < 1)
        return;
    const Scene scene = {.surface = surface,
                         .pitch = pitch,
                         .width = width,
                         .height = height,
                         .disc = discAround(cx, cy, size, width, height)};
    // Meant: the resource's rows are as long as the surface's.
    const StretchedResource<16> stretched(resource, pitch, resourceSize, size);
    refractInto(scratch, scene, stretched, resourceSize, size, color);
    scene.forEachRow([=, next = scratch](int y, Span columns) mutable {
        q_ulong *const row = surface + y * scene.pitch;
        for (int x = columns.begin; x < columns.end; ++x)
            row[x] = *next++;
    });
}

void DrawReal3DBall(q_ulong *surface, int pitch, int cx, int cy, int size, q_ulong *resource, int resourceSize,
                    q_ulong color, int width, int height) {
    if (size < 1)
        return;
    const Disc disc = discAround(cx, cy, size, width, height);
    const StretchedResource<20> stretched(resource, resourceSize, resourceSize, size);
    // Meant: pixels on the rim itself belong to a ball.
    forEachRowOf(disc, static_cast<long long>(disc.radius) * disc.radius, [=](int y, Span columns) {
        q_ulong *const row = surface + y * Distance{pitch};
        const q_ulong *const words = stretched.row(y - disc.top);
        for (int x = columns.begin; x < columns.end; ++x) {
            const q_ulong word = words[stretched.column(x - disc.left)];
            row[x] = highlit(lit(color, lightOf(word)), highlightOf(word));
        }
    });
}
