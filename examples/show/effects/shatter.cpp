// The photograph breaks like a pane of glass: cracks run from where it was hit, the shards fly toward the viewer,
// turning and catching the light, and fall out of the frame before the next photograph, on which they cast shadows.
//
// Uses i3D_Blt_Rect_Nearest_NoLight_NoHPE_Safe, the matrix stacks, the camera and VKD_Mapping3Dto2D of the pipeline (by
// Space), fBubSun, fMean4Vector, Hor_Blur32, Ver_Blur32, iBltNear32, iBltFast32AlphaChannelSafe, iFadeOut32,
// iBltFast32, iBltFast32Alpha, iFillRect, iBltPerfect32 (by drawSupersampled).

#include "../effect.h"
#include "../painting.h"
#include "../point.h"
#include "../random.h"
#include "../space.h"
#include "../supersampling.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <type_traits>
#include <vector>

namespace show {

namespace {

constexpr q_ulong glassEdge = 0xBCD2DC;
constexpr q_ulong shadow = 0x8C000000;

/// A pane's brightness, and how much of the white light behind the viewer it mirrors.
struct Gloss {
    double brightness;
    double glare;
};
constexpr std::array<Gloss, 7> glosses = {{{0.50, 0}, {0.63, 0}, {0.76, 0}, {0.88, 0}, {1, 0}, {1, 0.13}, {1, 0.30}}};
constexpr std::size_t untouched = 4;

using Corners = std::array<_POINT3DFLOAT, 4>;

/// A piece of the pane, and its way.
struct Shard {
    std::array<Point, 4> corners; ///< 0 to 1 of the frame
    double start;                 ///< when the crack reaches it
    double speedX, speedY, speedZ;
    double fall;
    double axisX, axisY, axisZ;
    double degrees;
};

/// Cuts along spokes that lead from the point of impact to the border of the frame, through its corners too, and along
/// rings around that point.
std::vector<Shard> breakPane(Random &random, double aspect) {
    constexpr int spokesToASide = 6;
    constexpr int spokeCount = 4 * spokesToASide;
    constexpr std::array<double, 7> rings = {0, 0.09, 0.21, 0.36, 0.55, 0.78, 1};
    constexpr double looseness = 0.42;

    const double impactX = random.between(0.38, 0.62);
    const double impactY = random.between(0.35, 0.55);
    const Point impact = {impactX, impactY};
    std::array<std::array<Point, rings.size()>, spokeCount> nodes;
    for (int spoke = 0; spoke < spokeCount; ++spoke) {
        const int side = spoke / spokesToASide;
        const int place = spoke % spokesToASide;
        const double share = (place + (place == 0 ? 0 : random.between(-0.36, 0.36))) / spokesToASide;
        const Point border = side == 0   ? Point{share, 0}
                             : side == 1 ? Point{1, share}
                             : side == 2 ? Point{1 - share, 1}
                                         : Point{0, 1 - share};
        for (std::size_t ring = 0; ring < rings.size(); ++ring) {
            double reach = rings[ring];
            if (ring > 0 && ring + 1 < rings.size())
                reach += looseness * random.between(rings[ring - 1] - reach, rings[ring + 1] - reach);
            nodes[static_cast<std::size_t>(spoke)][ring] = {mix(impact.x, border.x, reach),
                                                            mix(impact.y, border.y, reach)};
        }
    }

    std::vector<Shard> shards;
    for (std::size_t spoke = 0; spoke < nodes.size(); ++spoke)
        for (std::size_t ring = 0; ring + 1 < rings.size(); ++ring) {
            const auto &here = nodes[spoke];
            const auto &next = nodes[(spoke + 1) % nodes.size()];
            Shard shard = {};
            shard.corners = {here[ring], next[ring], next[ring + 1], here[ring + 1]};
            double awayX = -4 * impact.x;
            double awayY = -4 * impact.y;
            for (const Point &corner : shard.corners) {
                awayX += corner.x;
                awayY += corner.y;
            }
            awayX *= aspect / 4;
            awayY /= 4;
            const double distance = std::sqrt(awayX * awayX + awayY * awayY) + 0.02;
            const double force = 1 / (1 + 1.6 * distance);
            const double push = random.between(0.55, 1.15) * force;
            shard.start = 0.05 + 0.13 * distance + random.between(0, 0.10) * distance;
            shard.speedX = push * awayX / distance + random.between(-0.08, 0.08);
            shard.speedY = push * awayY / distance * 0.8 - random.between(0, 0.25);
            shard.speedZ = random.between(0.12, 0.62) * force + 0.06;
            shard.fall = random.between(2.2, 2.9);
            // They tip outward, as the blow has it, and a little any way they like.
            shard.axisX = awayY / distance + random.between(-0.6, 0.6);
            shard.axisY = -awayX / distance + random.between(-0.6, 0.6);
            shard.axisZ = random.between(-0.7, 0.7);
            shard.degrees = random.between(120, 420) * mix(0.5, 1, force);
            shards.push_back(shard);
        }
    return shards;
}

class Shatter : public Effect {
    void render(Stage &stage, const Surface &out, const Moment &moment) const override {
        Random random(moment.b.seed);
        const std::vector<Shard> shards = breakPane(random, static_cast<double>(out.width) / out.height);

        Space &space = stage.space();
        space.begin(40);
        space.look({0, 0, static_cast<float>(-space.focalLength()), 0}, {0, 0, 0, 0});
        std::vector<Flight> flights;
        for (const Shard &shard : shards)
            flights.push_back(flightOf(space, shard, out, moment.t));
        // The painter's order: what is far away comes first.
        std::stable_sort(flights.begin(), flights.end(),
                         [](const Flight &a, const Flight &b) { return a.depth > b.depth; });

        const Stage::Plane ground = stage.plane();
        drawShot(stage, ground, moment.b);
        dim(ground, mix(0.55, 1, easeInOut(stretch(moment.t, 0.15, 0.95))));
        castShadows(stage, ground, flights, space.scale());

        // The pane in every gloss, where shards have it, and the colour of its broken edges.
        const Stage::Plane plane = stage.plane();
        drawShot(stage, plane, moment.a);
        const std::array<Stage::Plane, glosses.size()> panes = {
            stage.plane(), stage.plane(), stage.plane(), stage.plane(), stage.plane(), stage.plane(), stage.plane()};
        const Stage::Plane edges = stage.plane();
        for (const Flight &flight : flights) {
            if (!flight.isCracked || flight.gloss == untouched)
                continue;
            const Surface &pane = panes[flight.gloss];
            const tagRECT area = boundsOf(flight.texels, out);
            copy(pane, plane, area);
            dim(pane, area, glosses[flight.gloss].brightness);
            if (glosses[flight.gloss].glare > 0) {
                fill(edges, area, 0xFFFFFF);
                blend(pane, edges, area, glosses[flight.gloss].glare);
            }
        }
        fill(edges, glassEdge);
        blend(edges, plane, 0.4);

        // What the cracks have not reached is the photograph itself.
        for (const Shard &shard : shards)
            if (moment.t <= shard.start) {
                std::array<Point, 4> corners = shard.corners;
                for (Point &corner : corners)
                    corner = {corner.x * out.width, corner.y * out.height};
                copyWithin(ground, plane, corners);
            }
        extendEdges(ground);

        // Cracks are thin, and shards that are seen edge-on thinner still: the finer, the less they break up into dots.
        const auto drawPart = [&]<int factor>(const Surface &part, int left, int top) {
            drawEnlarged<factor>(part, ground, left, top);
            // Onto whole pixels, by the same rule in every part.
            const auto placed = [&](const Corners &corners) {
                Corners moved = corners;
                for (_POINT3DFLOAT &corner : moved) {
                    corner.x =
                        std::floor(corner.x * factor / static_cast<float>(space.scale())) - static_cast<float>(left);
                    corner.y =
                        std::floor(corner.y * factor / static_cast<float>(space.scale())) - static_cast<float>(top);
                }
                return moved;
            };
            for (Flight &flight : flights) {
                if (!flight.isCracked)
                    continue;
                draw(part, edges, placed(flight.edge), flight.texels);
                draw(part, flight.gloss == untouched ? plane : panes[flight.gloss], placed(flight.face), flight.texels);
            }
        };
        const auto isWhole = [&](const tagRECT &area) {
            const auto scale = static_cast<float>(space.scale());
            for (const Flight &flight : flights)
                if (flight.isCracked && (meets(flight.face, area, scale) || meets(flight.edge, area, scale)))
                    return false;
            copy(out, ground, area);
            return true;
        };
        const auto draw = [&]<int factor>(std::integral_constant<int, factor>) {
            drawSupersampled<factor>(
                stage, out, [&](auto &&...place) { drawPart.template operator()<factor>(place...); }, isWhole);
        };
        if (space.scale() > 1)
            draw(std::integral_constant<int, 4>());
        else
            draw(std::integral_constant<int, 2>());
    }

    /// A shard at one moment, on the screen.
    struct Flight {
        Corners face;
        Corners edge;  ///< what is seen of the broken edge lies beneath the face
        Corners shade; ///< where its shadow falls
        std::array<_POINTINT, 4> texels;
        double depth;
        std::size_t gloss;
        bool isCracked;
    };

    static tagRECT boundsOf(const std::array<_POINTINT, 4> &texels, const Surface &frame) {
        const auto [left, right] = std::minmax({texels[0].x, texels[1].x, texels[2].x, texels[3].x});
        const auto [top, bottom] = std::minmax({texels[0].y, texels[1].y, texels[2].y, texels[3].y});
        return {left, top, std::min(right + 1, frame.width), std::min(bottom + 1, frame.height)};
    }

    /// Whether some of the quad, of points `scale` times as far apart as pixels, may show in an area or just beside it.
    static bool meets(const Corners &quad, const tagRECT &area, float scale) {
        const auto [left, right] = std::minmax({quad[0].x, quad[1].x, quad[2].x, quad[3].x});
        const auto [top, bottom] = std::minmax({quad[0].y, quad[1].y, quad[2].y, quad[3].y});
        return right / scale > static_cast<float>(area.left - 1) && left / scale < static_cast<float>(area.right + 1) &&
               bottom / scale > static_cast<float>(area.top - 1) && top / scale < static_cast<float>(area.bottom + 1);
    }

    static Flight flightOf(Space &space, const Shard &shard, const Surface &frame, double t) {
        _PRIVATE_QMGL_DATA *const data = space.pipeline();
        const double width = frame.width * space.scale();
        const double height = frame.height * space.scale();
        const double flown = stretch(t, shard.start, 1);
        const double way = mix(flown, easeIn(flown), 0.55);

        Flight flight = {};
        for (std::size_t i = 0; i < 4; ++i) {
            const Point &corner = shard.corners[i];
            flight.face[i] = {static_cast<float>((corner.x - 0.5) * width),
                              static_cast<float>((corner.y - 0.5) * height), 0, 0};
            flight.texels[i] = {std::min(static_cast<int>(corner.x * frame.width), frame.width - 1),
                                std::min(static_cast<int>(corner.y * frame.height), frame.height - 1)};
        }
        flight.isCracked = flown > 0;
        const _POINT3DFLOAT middle = fMean4Vector(&flight.face[0], &flight.face[1], &flight.face[2], &flight.face[3]);

        // The face shrinks a little, all around, to what the crack leaves of it.
        if (flight.isCracked) {
            flight.edge = flight.face;
            const double crack = std::min(1.0, flown * 12) * 0.0016 * (width + height);
            for (_POINT3DFLOAT &corner : flight.face) {
                const double x = corner.x - middle.x;
                const double y = corner.y - middle.y;
                const double length = std::sqrt(x * x + y * y) + 1;
                const double kept = std::max(0.5, 1 - crack / length);
                corner.x = static_cast<float>(middle.x + x * kept);
                corner.y = static_cast<float>(middle.y + y * kept);
            }
            const auto thickness = static_cast<float>(0.0024 * (width + height) * std::min(1.0, flown * 4));
            for (_POINT3DFLOAT &corner : flight.edge)
                corner.z = thickness;
        }

        VKD_glPushMatrix(data);
        VKD_glTranslatef(data, -middle.x, -middle.y, 0);
        VKD_glRotatef(data, static_cast<float>(shard.degrees * flown * mix(flown, 1, 0.4)),
                      static_cast<float>(shard.axisX), static_cast<float>(shard.axisY),
                      static_cast<float>(shard.axisZ));
        const double awayX = shard.speedX * way * height;
        const double awayY = (shard.speedY * way + shard.fall * way * way) * height;
        const double awayZ = -shard.speedZ * way * space.focalLength();
        VKD_glTranslatef(data, static_cast<float>(middle.x + awayX), static_cast<float>(middle.y + awayY),
                         static_cast<float>(awayZ));
        flight.shade = flight.face;
        VKD_Mapping3Dto2D(data, flight.face.data(), 1, 4);
        VKD_Mapping3Dto2D(data, flight.edge.data(), 1, 4);

        // The shadow lies on the next photograph, a little behind the pane, away from a light at the upper left.
        const float *const m = data->workMatrix.m;
        const double lift = 0.03 * height;
        for (_POINT3DFLOAT &corner : flight.shade) {
            const double x = m[0] * corner.x + m[1] * corner.y + m[3];
            const double y = m[4] * corner.x + m[5] * corner.y + m[7];
            const double z = m[8] * corner.x + m[9] * corner.y + m[11];
            const double slant = 0.35 * (lift - z) * std::min(1.0, flown * 6);
            corner.x = static_cast<float>(x + width / 2 + 0.6 * slant);
            corner.y = static_cast<float>(y + height / 2 + slant);
        }
        VKD_glPopMatrix(data);
        flight.depth = awayZ;
        flight.gloss = flight.isCracked ? glossOf(flight.face) : untouched;
        return flight;
    }

    /// By where the face looks: darker as it turns away, white where it mirrors a light at the upper left.
    static std::size_t glossOf(Corners face) {
        _POINT3DFLOAT normal;
        fBubSun(&normal, &face[0], &face[2], &face[3]); // the first two meet in the middle of the pane
        const double facing = std::fabs(normal.z);
        const double toward = normal.z < 0 ? -1 : 1;
        const double mirrored = toward * (-0.38 * normal.x - 0.50 * normal.y) + 0.78 * facing;
        if (mirrored > 0.985)
            return untouched + 2;
        if (mirrored > 0.95)
            return untouched + 1;
        return static_cast<std::size_t>(std::min(facing * 1.15, 1.0) * untouched + 0.5);
    }

    /// The shards' shadows, drawn and blurred at half the frame's size in the top byte of black pixels.
    static void castShadows(Stage &stage, const Surface &out, std::vector<Flight> &flights, int scale) {
        const Stage::Plane planes[] = {stage.plane(), stage.plane(), stage.plane()};
        const int width = (out.width + 1) / 2;
        const int height = (out.height + 1) / 2;
        const Surface mask = planes[0]->cropped(width, height);
        const Surface ink = planes[1]->cropped(width, height);
        fill(mask, 0);
        fill(ink, shadow);
        for (Flight &flight : flights) {
            Corners shade = flight.shade;
            for (_POINT3DFLOAT &corner : shade) {
                corner.x /= static_cast<float>(2 * scale);
                corner.y /= static_cast<float>(2 * scale);
            }
            draw(mask, ink, shade, {});
        }
        blurWithOpacity(mask, ink, std::max(std::min(width, height) / 16, 1), 2);
        tagRECT area = mask.rect();
        tagRECT whole = {0, 0, 2 * width, 2 * height};
        iBltNear32(planes[2]->pixels, mask.pixels, &whole, &area, planes[2]->pitch, mask.pitch);
        lay(out, planes[2], 0, 0);
    }

    static void draw(const Surface &to, const Surface &texture, Corners points, std::array<_POINTINT, 4> texels) {
        const auto [leftmost, rightmost] = std::minmax({points[0].x, points[1].x, points[2].x, points[3].x});
        const auto [topmost, lowest] = std::minmax({points[0].y, points[1].y, points[2].y, points[3].y});
        if (rightmost < 0 || lowest < 0 || leftmost > static_cast<float>(to.width) ||
            topmost > static_cast<float>(to.height))
            return;
        // The clip bounds the texels as well: they are counted from the corner of those that are shown.
        const tagRECT shown = boundsOf(texels, texture);
        for (_POINTINT &texel : texels)
            texel = {texel.x - static_cast<int>(shown.left), texel.y - static_cast<int>(shown.top)};
        tagRECT clip = {0, 0, std::max<q_long>(to.width, shown.right - shown.left),
                        std::max<q_long>(to.height, shown.bottom - shown.top)};
        i3D_Blt_Rect_Nearest_NoLight_NoHPE_Safe(to.pixels, &points[0], &points[1], &points[2], &points[3],
                                                texture.at(static_cast<int>(shown.left), static_cast<int>(shown.top)),
                                                &texels[0], &texels[1], &texels[2], &texels[3], &clip,
                                                to.unsignedPitch(), texture.unsignedPitch());
    }
};

const Registered<Shatter> registered("shatter", Effect::Kind::transition, Use::inTurn,
                                     "the photograph breaks like a pane and falls before the next");

} // namespace

} // namespace show
