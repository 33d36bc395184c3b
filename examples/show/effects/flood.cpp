// A flower of light draws itself over the photograph. The next one springs up in its middle, runs from petal to petal
// and fills them, and at last breaks over the rim and floods the frame.
//
// Uses bPolyBesier (the dams), Region_Src_Fill, bscan_left and bscan_right (the flood), iLine_AntiAliasing_Max (the
// lines of light), Draw_Star_Type1_Safe (their tips); drawHalved, Blur_Rect and iBltBilinear32_Add make them glow.

#include "../angle.h"
#include "../effect.h"
#include "../glow.h"
#include "../painting.h"
#include "../point.h"
#include "../random.h"
#include "../space.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace show {

namespace {

using Outline = std::vector<Point>;

Point polar(Point centre, double turns, double radius) {
    return {centre.x + radius * sineOf(turns), centre.y - radius * cosineOf(turns)};
}

/// A plane of bytes on which dams are drawn, and the two surfaces between which pixels flow within them.
///
/// What is drawn between two clearings must hang together: around an island the flood would go without end. The fills
/// call themselves for each row on their way, and any thread's stack holds the rows of the largest frames. They leave
/// the first and the last row of their limits alone, and a curve that leaves its clip follows the edge: so the limits
/// reach into the margins of the surfaces, where neither is seen.
class Basin {
public:
    Basin(const Surface &scratch, const Surface &to, const Surface &from)
        : plane(reinterpret_cast<unsigned char *>(scratch.pixels)), target(to),
          source(from), limits{0, 0, to.width + 2 * beyond, to.height + 2 * beyond}, pitch(to.pitch) {
        SetRegionSrcFill(&fill, to.at(-beyond, -beyond), pitch, from.at(-beyond, -beyond), pitch, plane, &limits,
                         pitch);
        clear();
    }
    Basin(const Basin &) = delete;
    Basin &operator=(const Basin &) = delete;

    void clear() { clearRows(-beyond, limits.bottom); }

    /// Takes away the dams in the rows of the frame from `top` to `bottom`.
    void clearRows(double top, double bottom) {
        const double last = limits.bottom;
        const auto first = static_cast<std::ptrdiff_t>(std::clamp(top - 2, 0.0, last));
        const auto end = static_cast<std::ptrdiff_t>(std::clamp(bottom + 2 * beyond + 2, 0.0, last));
        std::fill(plane + first * pitch, plane + std::max(first, end) * pitch, static_cast<unsigned char>(0));
    }

    void build(const Outline &outline, bool isOpen) {
        constexpr q_long farthest = 12000; // the curves count in 16 bits
        std::vector<short> xs;
        std::vector<short> ys;
        for (const Point &point : outline) {
            const tagPOINT pixel = pixelAt(point);
            xs.push_back(static_cast<short>(std::clamp<q_long>(pixel.x + beyond, -farthest, farthest)));
            ys.push_back(static_cast<short>(std::clamp<q_long>(pixel.y + beyond, -farthest, farthest)));
        }
        bPolyBesier(plane, &limits, pitch, xs.data(), ys.data(), static_cast<int>(xs.size()), dam, isOpen ? 1 : 0);
    }

    /// Floods what is dammed in around `seed`, but for a seed that no dam stands beside.
    void floodFrom(Point seed) {
        const tagPOINT pixel = pixelAt(seed);
        const auto x = static_cast<int>(pixel.x) + beyond;
        const auto y = static_cast<int>(pixel.y) + beyond;
        const bool isInside = x > limits.left && x < limits.right - 1 && y > limits.top && y < limits.bottom - 1;
        if (isInside && bscan_left(&fill, x, y, dam) > limits.left && bscan_right(&fill, x, y, dam) < limits.right - 1)
            Region_Src_Fill(&fill, x, y, dam, 0, 0, 0);
        else
            return;
        // The dams are flooded with what they hold, or a dotted line would stay behind.
        for (int row = beyond; row < limits.bottom - beyond; ++row)
            for (int column = beyond; column < limits.right - beyond; ++column)
                if (plane[static_cast<std::ptrdiff_t>(row) * pitch + column] == dam)
                    *target.at(column - beyond, row - beyond) = *source.at(column - beyond, row - beyond);
    }

private:
    static constexpr unsigned char dam = 1;
    static constexpr int beyond = 2;

    unsigned char *plane;
    Surface target;
    Surface source;
    tagRECT limits;
    int pitch;
    _PRIVATE_QMGP_DATA fill = {};
};

/// Points on the curve that the library draws through an outline.
Outline curveThrough(const Outline &points, bool isOpen) {
    constexpr int chords = 3;
    const auto count = static_cast<int>(points.size());
    const auto pointAt = [&](int i) {
        return points[static_cast<std::size_t>(isOpen ? std::clamp(i, 0, count - 1) : (i + count) % count)];
    };
    const auto handleAt = [&](int i) -> Point {
        if (isOpen && i == 0)
            return {0, 0};
        const Point before = pointAt(i - 1);
        const Point behind = pointAt(i + 1);
        return {(behind.x - before.x) * 15 / 64, (behind.y - before.y) * 15 / 64};
    };
    Outline curve = {points.front()};
    for (int i = 0; i < (isOpen ? count - 1 : count); ++i) {
        const Point from = pointAt(i);
        const Point to = pointAt(i + 1);
        const Point leaving = handleAt(i);
        const Point arriving = handleAt(isOpen ? i + 1 : (i + 1) % count);
        for (int k = 1; k <= chords; ++k) {
            const double t = static_cast<double>(k) / chords;
            const double s = 1 - t;
            const auto along = [=](double a, double b, double c, double d) {
                return a * s * s * s + b * 3 * s * s * t + c * 3 * s * t * t + d * t * t * t;
            };
            curve.push_back({along(from.x, from.x + leaving.x, to.x - arriving.x, to.x),
                             along(from.y, from.y + leaving.y, to.y - arriving.y, to.y)});
        }
    }
    return curve;
}

/// Where light is drawn: at twice the frame's size where that can be, since lines begin and end on whole pixels.
struct Lights {
    Surface surface;
    int scale;

    tagPOINT pixelAt(Point point) const { return show::pixelAt({scale * point.x, scale * point.y}); }

    /// Draws the lines between a curve's points, each in the colour that `colourAt` its middle says.
    template <class ColourAt>
    void drawLine(const Outline &curve, double width, ColourAt colourAt) const {
        tagRECT clip = surface.rect();
        for (std::size_t i = 0; i + 1 < curve.size(); ++i) {
            const q_ulong colour = colourAt(between(curve[i], curve[i + 1], 0.5));
            if (colour == 0)
                continue;
            const tagPOINT from = pixelAt(curve[i]);
            const tagPOINT to = pixelAt(curve[i + 1]);
            iLine_AntiAliasing_Max(surface.pixels, &clip, surface.pitch, static_cast<int>(from.x),
                                   static_cast<int>(from.y), static_cast<int>(to.x), static_cast<int>(to.y), colour,
                                   std::max(rounded(scale * width), 1));
        }
    }

    void addStar(Point place, double reach, q_ulong colour, double intensity) const {
        const tagPOINT pixel = pixelAt(place);
        star(surface, static_cast<int>(pixel.x), static_cast<int>(pixel.y), static_cast<int>(scale * reach), colour,
             intensity);
    }
};

/// A ring of petals. Radii are shares of the flower's.
struct Ring {
    double base;
    double tip;
    double halfWidth;
    double turn;   ///< of the first petal
    double drawn;  ///< when it begins to draw itself,
    double filled; ///< and when the first petal begins to fill
};

constexpr int petals = 8;
constexpr double drawTime = 0.2;
constexpr double fillTime = 0.13;
constexpr double petalDelay = 0.013;
constexpr std::array<Ring, 3> rings = {{{0.22, 1.00, 0.185, 0.5 / petals, 0.20, 0.42},
                                        {0.12, 0.66, 0.155, 0.0, 0.09, 0.34},
                                        {0.07, 0.34, 0.075, 0.5 / petals, 0.03, 0.28}}};
constexpr double waveBegin = 0.56;

constexpr q_ulong gold = 0xFFD48A;
constexpr q_ulong foam = 0xD8F2FF;

struct Petal {
    static constexpr int steps = 12;

    Point centre;
    double turns;
    double base;
    double tip;
    double halfWidth;

    /// A share of the way along the petal, and of its width to the side.
    Point at(double along, double aside) const {
        const Point axis = polar(centre, turns, mix(base, tip, along));
        return {axis.x + halfWidth * aside * cosineOf(turns), axis.y + halfWidth * aside * sineOf(turns)};
    }

    static double widthAt(double along) {
        // Slender at the base, widest beyond the middle, drawn out to a point.
        constexpr std::array<double, steps + 1> widths = {0,    0.21, 0.41, 0.60, 0.77, 0.90, 0.98,
                                                          1.00, 0.92, 0.73, 0.46, 0.20, 0};
        const double place = clampUnit(along) * steps;
        const auto index = std::min(static_cast<std::size_t>(place), widths.size() - 2);
        return mix(widths[index], widths[index + 1], place - static_cast<double>(index));
    }

    /// The left side from the base to the tip, or the right one back: each begins where the other ends, so that nothing
    /// runs out between them.
    Outline side(int sign) const {
        Outline points;
        for (int i = 0; i <= steps; ++i) {
            const double along = static_cast<double>(sign < 0 ? i : steps - i) / steps;
            points.push_back(at(along, sign * widthAt(along)));
        }
        return points;
    }

    /// How far along the water's edge is, at a share of the width to the side.
    static double frontAt(double along, double aside, double ripple) {
        return along + 0.05 - 0.10 * aside * aside + 0.018 * sineOf(aside * 0.8 + ripple);
    }

    /// The water's edge, from beyond the one side to beyond the other.
    Outline front(double along, double ripple) const {
        Outline points;
        for (int i = -6; i <= 6; ++i)
            points.push_back(at(frontAt(along, i / 4.5, ripple), i / 4.5));
        return points;
    }

    /// The part of it that lies between the sides.
    Outline edge(double along, double ripple) const {
        Outline points;
        for (int i = -24; i <= 24; ++i) {
            const double aside = i / 24.0;
            const double here = frontAt(along, aside, ripple);
            if (here > 0 && here < 1 && std::abs(aside) <= widthAt(here))
                points.push_back(at(here, aside));
        }
        return points;
    }
};

class Flood : public Effect {
    void render(Stage &stage, const Surface &out, const Moment &moment) const override {
        const Flower flower(out, moment);
        if (flower.smallestWave() > flower.farthest) {
            drawShot(stage, out, moment.b);
            return;
        }
        const Stage::Plane after = stage.plane();
        drawShot(stage, out, moment.a);
        drawShot(stage, after, moment.b);
        dim(out, mix(1, 0.5, easeInOut(stretch(moment.t, 0.0, 0.4))));

        Space &space = stage.space();
        const Lights lights = {space.surface().cropped(out.width * space.scale(), out.height * space.scale()),
                               space.scale()};
        const Stage::Plane light = stage.plane();
        const Stage::Plane scratch = stage.plane();
        fill(lights.surface, 0);
        {
            Basin basin(scratch, out, after);
            flower.draw(basin, lights);
        }
        space.show(light);
        const Surface close = softened(scratch, light, flower.scaled(2));
        const Surface wide = softened(after, close, flower.scaled(9));
        // In a small frame the lines are wide for their length as it is.
        addLight(out, wide, 1.0);
        addLight(out, wide, flower.unit);
        addLight(out, close, 0.9);
        add(out, light);
    }

    /// The flower at a moment.
    struct Flower {
        Point centre;
        double radius;
        double unit;
        double t;
        double seconds;
        double farthest; ///< farther from the centre than any corner
        double wave;     ///< radius of the flood that has left the flower, 0 before it has
        std::array<double, 4> phases;

        Flower(const Surface &out, const Moment &moment)
            : unit(unitOf(out.width, out.height)), t(moment.t), seconds(1.5 * moment.t) {
            Random random(moment.b.seed);
            centre.x = out.width * random.between(0.47, 0.53);
            centre.y = out.height * random.between(0.49, 0.51);
            for (double &phase : phases)
                phase = random.unit();
            radius = 0.46 * std::min(out.width, out.height);
            const double x = std::max(centre.x, out.width - centre.x);
            const double y = std::max(centre.y, out.height - centre.y);
            farthest = std::sqrt(x * x + y * y) + 8;
            const double way = stretch(t, waveBegin, 0.97);
            wave = way > 0 ? mix(0.1 * radius, farthest * 1.12, mix(way, easeIn(way), 0.6)) : 0;
        }

        /// Thinner than a pixel lines would be dark.
        double lineWidth(double pixels) const { return std::max(pixels * unit, 1.0); }

        int scaled(double pixels) const { return std::max(static_cast<int>(pixels * unit + 0.5), 1); }

        /// The wave's swell, up to 5 parts in 100.
        double waveAt(double turns, double time) const {
            const double swell = 0.024 * sineOf(3 * turns + phases[0] + 0.3 * time) +
                                 0.018 * sineOf(7 * turns + phases[1] - 0.5 * time) +
                                 0.007 * sineOf(16 * turns + phases[2] + 0.9 * time);
            return wave * (1 + swell);
        }
        double smallestWave() const { return wave * 0.95; }

        Petal petal(const Ring &ring, int index) const {
            return {centre, ring.turn + static_cast<double>(index) / petals, ring.base * radius, ring.tip * radius,
                    ring.halfWidth * radius};
        }

        /// Lines are submerged when the wave has passed them.
        double shineAt(Point point) const {
            const double depth = wave - distance(point, centre);
            return wave > 0 ? 1 - clampUnit(depth / (0.35 * radius)) : 1;
        }

        void draw(Basin &basin, const Lights &light) const {
            for (const Ring &ring : rings)
                for (int i = 0; i < petals; ++i) {
                    fillPetal(basin, light, ring, i);
                    drawPetal(light, ring, i);
                }
            fillWave(basin, light);
        }

        void fillPetal(Basin &basin, const Lights &light, const Ring &ring, int index) const {
            const Petal shape = petal(ring, index);
            const double begin = ring.filled + petalDelay * index;
            const double along = 1.1 * easeInOut(stretch(t, begin, begin + fillTime));
            // Until there is room around the seed within the dams the petal stays dry.
            constexpr double room = 4;
            const double seed = 0.6 * std::min(along, 0.8);
            if (Petal::widthAt(seed) * shape.halfWidth < room || (along - seed) * (shape.tip - shape.base) < room)
                return;
            basin.clearRows(shape.centre.y - shape.tip - room, shape.centre.y + shape.tip + room);
            basin.build(shape.side(-1), true);
            basin.build(shape.side(1), true);
            const double ripple = seconds + phases[3] + 0.37 * index;
            const bool isFull = along > 1.02;
            if (!isFull)
                basin.build(shape.front(along, ripple), true);
            basin.floodFrom(shape.at(seed, 0));
            if (!isFull)
                light.drawLine(shape.edge(along, ripple), lineWidth(3), [](Point) { return foam; });
        }

        /// Both sides at once, from the base to the tip.
        void drawPetal(const Lights &light, const Ring &ring, int index) const {
            const double begin = ring.drawn + 0.004 * index;
            const double drawn = easeInOut(stretch(t, begin, begin + drawTime));
            if (drawn <= 0)
                return;
            const Petal shape = petal(ring, index);
            const auto colourAt = [this](Point point) { return mixColours(0, gold, shineAt(point)); };
            for (const int sign : {-1, 1}) {
                Outline side = shape.side(sign);
                if (sign > 0)
                    std::reverse(side.begin(), side.end());
                Outline curve = curveThrough(side, true);
                const Point tip = cutTo(curve, drawn);
                light.drawLine(curve, lineWidth(2), colourAt);
                if (drawn < 1)
                    light.addStar(tip, 20 * unit, 0xFFE4B0, 44 * stretch(drawn, 0.0, 0.4));
            }
            Outline rib = {shape.at(0.1, 0), shape.at(0.3, 0), shape.at(0.5, 0), shape.at(0.72, 0)};
            cutTo(rib, drawn);
            light.drawLine(rib, lineWidth(1), [&](Point point) { return mixColours(0, colourAt(point), 0.5); });
        }

        /// Leaves the first part of a curve and returns where it ends.
        static Point cutTo(Outline &curve, double share) {
            const double place = share * static_cast<double>(curve.size() - 1);
            const auto index = std::min(static_cast<std::size_t>(place), curve.size() - 2);
            const Point end = between(curve[index], curve[index + 1], place - static_cast<double>(index));
            curve.resize(index + 1);
            curve.push_back(end);
            return end;
        }

        /// The front, or a ripple behind it, which has a swell of its own.
        Outline waveLine(double share) const {
            constexpr int count = 96;
            Outline line;
            for (int i = 0; i < count; ++i) {
                const double turns = static_cast<double>(i) / count;
                line.push_back(polar(centre, turns, share * waveAt(turns, seconds - 3 * (1 - share))));
            }
            return line;
        }

        void fillWave(Basin &basin, const Lights &light) const {
            // The spring in the middle, before the wave comes from it.
            const double spring = easeInOut(stretch(t, 0.0, 0.25)) * (1 - stretch(t, waveBegin, waveBegin + 0.15));
            light.addStar(centre, 110 * unit, 0xFFD898, 30 * spring);
            if (wave < 8)
                return;
            const Outline line = waveLine(1);
            basin.clear();
            basin.build(line, false);
            basin.floodFrom(centre);
            // Foam thins out behind the front, and ripples follow it.
            const double swelling = mix(0.4, 1, stretch(wave, 0.1 * radius, 0.35 * radius));
            const auto addLine = [&](const Outline &points, double width, double shine) {
                const q_ulong colour = mixColours(0, foam, shine * swelling);
                light.drawLine(curveThrough(points, false), width, [colour](Point) { return colour; });
            };
            constexpr int strips = 18;
            for (int i = strips; i > 0; --i) {
                const double thinness = 1 - static_cast<double>(i) / (strips + 1);
                Outline strip;
                for (const Point &point : line)
                    strip.push_back(towardsCentre(point, 2 * unit * i));
                addLine(strip, lineWidth(6), 0.26 * thinness * thinness);
            }
            for (const double share : {0.72, 0.81, 0.90})
                addLine(waveLine(share), lineWidth(2), 0.3 * share * share);
            addLine(line, lineWidth(3), 1);
        }

        Point towardsCentre(Point point, double way) const {
            return between(centre, point, std::max(1 - way / wave, 0.0));
        }
    };
};

const Registered<Flood> registered("flood", Effect::Kind::transition, Use::inTurn,
                                   "the next photograph floods in through a flower drawn with light");

} // namespace

} // namespace show
