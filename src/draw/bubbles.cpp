#include "base/pixel.h"
#include "base/surface.h"
#include "base/vector.h"
#include "base/wide.h"
#include "q_Mur/draw.h"
#include "q_Mur/frame.h"

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

/// Writes `word(i, j, tint)` to every place of a resource.
template <class Word>
void renderResource(q_ulong *surface, int pitch, int x, int y, int size, Word word) {
    const int radius = size >> 1;
    const int squaredRadius = wrapMultiply(radius, radius);
    if (squaredRadius == 0)
        return;
    q_ulong *const first = pixelAt(surface, Distance{pitch}, Distance{x}, Distance{y});
    for (int j = 0; j < size; ++j) {
        q_ulong *const row = first + j * Distance{pitch};
        for (int i = 0; i < size; ++i) {
            const int tint = (squaredDistance(i - radius, j - radius) << 7) / squaredRadius;
            row[i] = word(i, j, tint);
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

} // namespace

void MakeBubbleResource(q_ulong *surface, int pitch, int x, int y, int size, int secondHighlight) {
    atFullWidth([=] {
        const int radius = size >> 1;
        const LitSphere sphere(radius);
        renderResource(surface, pitch, x, y, size, [&](int i, int j, int tint) {
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
        });
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
        renderResource(surface, pitch, x, y, size, [&](int i, int j, int tint) {
            const auto from = [i, j](const Spot &spot) { return squaredDistance(i - spot.x, j - spot.y); };
            int highlight = 0;
            if (second.reaches(from(second)) && secondHighlight != 0)
                highlight = second.brightness(from(second), 64, 4);
            else if (first.reaches(from(first)))
                highlight = first.brightness(from(first), 200, 4);
            const int light = glow.reaches(from(glow)) ? larger(0, glow.brightness(from(glow), 200, 0)) : 0;
            return resourceWord(55 + light, tint, highlight);
        });
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
    refract(scene, StretchedResource<18>(resource, resourceSize, resourceSize, size), size, color, scratch);
    scene.forEachRow([=, next = scratch](int y, Span columns) mutable {
        q_ulong *const row = surface + y * scene.pitch;
        const int *const roots = iSqrt;
        const int dy = y - scene.disc.centreY();
        const int centreX = scene.disc.centreX();
        const int rim = scene.disc.radius << 8;
        for (int x = columns.begin; x < columns.end; ++x) {
            const q_ulong word = *next++;
            const int fromRim = rim - (roots[squaredDistance(x - centreX, dy)] >> 2);
            const auto cover = static_cast<q_ulong>(fromRim);
            row[x] = fromRim < 256 ? blend256(row[x], 256 - cover, word, cover) : word;
        }
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
    refract(scene, StretchedResource<16>(resource, pitch, resourceSize, size), size, color, scratch);
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
