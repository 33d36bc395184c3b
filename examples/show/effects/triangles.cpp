// The next photograph comes down in triangular shards that tumble, grow smaller as they fall away from the eye, and fit
// together.
//
// Uses Blt_Triangle (the shards), Rect_Safe, Hor_Blur32 and Ver_Blur32 (shadows), iBltFast32AlphaChannelSafe,
// iFadeOut32 and
// iLine_AntiAliasing_Add (light), iBltFast32Alpha.

#include "../effect.h"
#include "../flight.h"
#include "../painting.h"
#include "../random.h"
#include "../supersampling.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace show {

namespace {

constexpr int cellsAcross = 4;   // the frame's shorter side
constexpr double fallTime = 0.5; // of the transition
constexpr int lightLevels = 6;
constexpr double darkest = 0.45;
constexpr double overlap = 2.5; // in pixels at the corners, of shards that have all but landed

/// A shard of the photograph.
struct Shard {
    std::array<tagPOINT, 3> home;
    double start; ///< when it sets off: 0 to 1 of the time that is left before the last one does
    double axis;
    double turn; ///< turns through which it tumbles about an axis in its plane
    double spin; ///< and about its own middle
    double drift;
};

/// A shard at a moment of its fall.
struct FallingShard {
    std::array<tagPOINT, 3> home;
    std::array<Point, 3> corners;
    std::array<Point, 3> shadow;
    double height; ///< above the photograph, from 1 to 0
    std::size_t level;
};

class Triangles : public Effect {
    /// A grid whose inner points are moved by chance, each of its cells cut in two.
    void prepare(int width, int height) override {
        const double side = std::min(width, height) / static_cast<double>(cellsAcross);
        const int columns = static_cast<int>(width / side + 0.5);
        const int rows = static_cast<int>(height / side + 0.5);
        Random random(7);
        std::vector<tagPOINT> points;
        for (int row = 0; row <= rows; ++row)
            for (int column = 0; column <= columns; ++column) {
                const double x = random.between(-0.3, 0.3);
                const double y = random.between(-0.3, 0.3);
                const bool onSide = column == 0 || column == columns;
                const bool onEnd = row == 0 || row == rows;
                points.push_back({static_cast<q_long>((column + (onSide ? 0 : x)) * width / columns),
                                  static_cast<q_long>((row + (onEnd ? 0 : y)) * height / rows)});
            }
        for (int row = 0; row < rows; ++row)
            for (int column = 0; column < columns; ++column) {
                const auto upperLeft = points.begin() + row * (columns + 1) + column;
                const tagPOINT corners[] = {upperLeft[0], upperLeft[1], upperLeft[columns + 2], upperLeft[columns + 1]};
                const auto first = static_cast<std::size_t>(random.below(2));
                for (const std::size_t i : {first, first + 2})
                    shards.push_back(
                        shardOf({corners[i % 4], corners[(i + 1) % 4], corners[(i + 2) % 4]}, random, height));
            }
    }

    static Shard shardOf(const std::array<tagPOINT, 3> &home, Random &random, int height) {
        Shard shard = {home, 0, 0, 0, 0, 0};
        const double middle = static_cast<double>(home[0].y + home[1].y + home[2].y) / 3;
        // The lower ones first, though not in rank and file.
        shard.start = clampUnit(0.72 * (1 - middle / height) + random.between(0, 0.28));
        shard.axis = random.unit();
        shard.turn = random.onEitherSide(0.4, 0.95);
        shard.spin = random.onEitherSide(0.065, 0.22);
        shard.drift = random.between(-0.35, 0.35);
        return shard;
    }

    void render(Stage &stage, const Surface &out, const Moment &moment) const override {
        const Stage::Plane ground = stage.plane();
        const Stage::Plane levels[lightLevels] = {stage.plane(), stage.plane(), stage.plane(),
                                                  stage.plane(), stage.plane(), stage.plane()};
        drawShot(stage, ground, moment.a);
        drawShot(stage, levels[lightLevels - 1], moment.b);
        for (int i = 0; i + 1 < lightLevels; ++i) {
            const Surface &level = levels[i];
            copy(level, levels[lightLevels - 1]);
            dim(level, mix(darkest, 1, i / (lightLevels - 1.0)));
        }
        // Sampling reaches the lower end of a shard a little early, and what lies behind it.
        for (const Stage::Plane &level : levels)
            extendEdges(level);

        std::vector<FallingShard> lying;
        std::vector<FallingShard> falling;
        for (const Shard &shard : shards) {
            // The first ones have come some of their way already, and are not yet to be seen.
            const double start = mix(-0.05, 0.94 - fallTime, shard.start);
            const double way = stretch(moment.t, start, start + fallTime);
            if (way >= 1)
                lying.push_back(shardAt(shard, 1, out));
            else if (way > 0)
                falling.push_back(shardAt(shard, way, out));
        }
        std::stable_sort(falling.begin(), falling.end(), [](const FallingShard &lower, const FallingShard &higher) {
            return lower.height < higher.height;
        });
        for (const FallingShard &shard : lying) {
            std::array<Point, 3> home;
            std::transform(shard.home.begin(), shard.home.end(), home.begin(), [](const tagPOINT &corner) {
                return Point{static_cast<double>(corner.x), static_cast<double>(corner.y)};
            });
            copyWithin(ground, levels[lightLevels - 1], home);
        }
        std::vector<Shadow> shadows;
        for (const FallingShard &shard : falling)
            shadows.push_back({{shard.shadow[0], shard.shadow[1], shard.shadow[2], shard.shadow[2]},
                               140 * clampUnit(shard.height * 8)});
        castShadows(stage, ground, shadows, out.height / 30);

        extendEdges(ground);
        const auto drawPart = [&]<int factor>(const Surface &part, int left, int top) {
            drawEnlarged<factor>(part, ground, left, top);
            for (const FallingShard &shard : falling)
                lay(part, factor, left, top, levels[shard.level], shard);
        };
        constexpr int largestFine = 2560;
        if (std::max(out.width, out.height) <= largestFine)
            drawSupersampled<4>(stage, out, [&](auto &&...place) { drawPart.template operator()<4>(place...); });
        else
            drawSupersampled<2>(stage, out, [&](auto &&...place) { drawPart.template operator()<2>(place...); });
        // The triangles' sampling leaves shards up to a pixel beside the photograph that follows.
        blend(out, levels[lightLevels - 1], easeInOut(stretch(moment.t, 0.85, 1)));
    }

    static FallingShard shardAt(const Shard &shard, double way, const Surface &out) {
        const double unit = out.height;
        const double height = (1 - way) * (1 - way);
        Point middle = {0, 0};
        for (const tagPOINT &corner : shard.home) {
            middle.x += static_cast<double>(corner.x) / 3;
            middle.y += static_cast<double>(corner.y) / 3;
        }
        const Point place = {middle.x + shard.drift * unit * height, middle.y - 1.45 * unit * height};
        const Attitude attitude = {place, 0.75 * unit * height, shard.spin * height, shard.axis, shard.turn * height};
        FallingShard result = {shard.home, {}, {}, height, lightLevels - 1};
        for (std::size_t i = 0; i < 3; ++i) {
            const tagPOINT &corner = shard.home[i];
            const SeenPoint seen = seenPoint(
                attitude, {static_cast<double>(corner.x) - middle.x, static_cast<double>(corner.y) - middle.y},
                1.5 * unit);
            result.corners[i] = seen.place;
            result.shadow[i] = seen.shadow;
        }
        // What has all but landed reaches a little over its edge, or dotted lines would show between neighbours.
        const double reach = clampUnit(1 - height * 60);
        for (std::size_t i = 0; i < 3; ++i) {
            const double x = static_cast<double>(shard.home[i].x) - middle.x;
            const double y = static_cast<double>(shard.home[i].y) - middle.y;
            const double share = reach * overlap / (std::sqrt(x * x + y * y) + 1);
            result.corners[i] = between(result.corners[i], {result.corners[i].x + x, result.corners[i].y + y}, share);
        }
        // The face turned to the light, from above, is bright, and the back of a shard is dark.
        const double facing = cosineOf(attitude.tilt);
        const double light = clampUnit(mix(facing < 0 ? 0 : 0.35, 1, std::abs(facing)) -
                                       0.35 * sineOf(attitude.tilt) * cosineOf(shard.axis));
        result.level = static_cast<std::size_t>(light * (lightLevels - 1) + 0.5);
        return result;
    }

    static void lay(const Surface &part, int factor, int left, int top, const Surface &photo,
                    const FallingShard &shard) {
        std::array<_POINTINT, 3> home;
        std::array<_POINTINT, 3> corners;
        for (std::size_t i = 0; i < 3; ++i) {
            home[i] = {static_cast<int>(shard.home[i].x), static_cast<int>(shard.home[i].y)};
            corners[i] = {rounded(factor * shard.corners[i].x) - left, rounded(factor * shard.corners[i].y) - top};
        }
        // The clip bounds what is read of the photograph as well: that is counted from a little before the shard.
        constexpr int before = PlaneLayout::margin;
        const auto [first, last] = std::minmax({home[0].x, home[1].x, home[2].x});
        const auto [highest, lowest] = std::minmax({home[0].y, home[1].y, home[2].y});
        const Surface shown = {photo.at(first - before, highest - before), 0, 0, photo.pitch};
        const tagRECT clip = {0, 0, std::max(part.width, last - first + 2 * before),
                              std::max(part.height, lowest - highest + 2 * before)};
        for (_POINTINT &point : home)
            point = {point.x - first + before, point.y - highest + before};
        blit(part, clip, shown, corners, home);
        // The edges catch the light.
        tagRECT whole = part.rect();
        const q_ulong gleam = greyOf(90 * clampUnit(shard.height * 7));
        for (std::size_t i = 0; i < 3; ++i) {
            const _POINTINT &from = corners[i];
            const _POINTINT &to = corners[(i + 1) % 3];
            iLine_AntiAliasing_Add(part.pixels, &whole, part.pitch, from.x, from.y, to.x, to.y, gleam, factor);
        }
    }

    static void blit(const Surface &out, tagRECT clip, const Surface &photo, std::array<_POINTINT, 3> corners,
                     std::array<_POINTINT, 3> home) {
        Blt_Triangle(out.pixels, &clip, out.pitch, &corners[0], &corners[1], &corners[2], photo.pixels, photo.pitch,
                     &home[0], &home[1], &home[2]);
    }

    std::vector<Shard> shards;
};

const Registered<Triangles> registered("triangles", Effect::Kind::transition, Use::inTurn,
                                       "shards rain down and fit together to the next photograph");

} // namespace

} // namespace show
