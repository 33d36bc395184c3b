// The photograph lies on a table and is seen from above. Shaded balls are thrown onto it from all sides; they bounce
// lower and lower, roll out and come to rest. What is high is near the eye and large; the shadows tell how high.
//
// Uses MakeBubbleResource and DrawReal3DBall (polished balls), Draw_3DBall (dull ones), Draw_Light_Safe (on both),
// Draw_Circle_Light (shadows), iBltFast32AlphaChannelSafe and iBltPerfect32 (by layDisc and drawView).

#include "../disc.h"
#include "../effect.h"
#include "../painting.h"
#include "../random.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>
#include <vector>

namespace show {

namespace {

// Lengths count pixels of a frame of 720 rows.
constexpr double gravity = 1500;
constexpr double eyeHeight = 1500;
constexpr double slowestBounce = 45;  // a ball that would leave the table more slowly rolls on
constexpr double keptByBounce = 0.86; // of the speed along the table
constexpr double rollingSeconds = 1.3;
constexpr double lightX = 0.62; // how far a shadow lies from what throws it, by its height
constexpr double lightY = 0.50;

constexpr std::array<q_ulong, 9> colours = {0xD8201C, 0x2068C8, 0xF2B81E, 0xEDE6D8, 0x189048,
                                            0x6C38B8, 0xF07814, 0x14A8A8, 0x40444C};

/// How a ball bounces: its height above the table and the share of its way that it has made, by the time since it was
/// highest.
struct Bounces {
    double height; ///< at first
    double restitution;

    struct State {
        double height;
        double way; ///< in seconds at the first speed along the table
    };

    double firstFall() const { return std::sqrt(2 * height / gravity); }

    State at(double seconds) const {
        if (seconds <= firstFall())
            return {height - gravity / 2 * seconds * seconds, seconds};
        double left = seconds - firstFall();
        double way = firstFall();
        double kept = keptByBounce;
        for (double speed = gravity * firstFall() * restitution; speed >= slowestBounce; speed *= restitution) {
            const double flight = 2 * speed / gravity;
            if (left < flight)
                return {left * (speed - gravity / 2 * left), way + kept * left};
            left -= flight;
            way += kept * flight;
            kept *= keptByBounce;
        }
        const double rolled = std::min(left, rollingSeconds);
        return {0, way + kept * rolled * (1 - rolled / (2 * rollingSeconds))};
    }

    double wholeWay() const { return at(1000).way; }
};

struct Ball {
    double start; ///< the second in which it is highest
    double radius;
    Bounces bounces;
    double fromX;
    double fromY;
    double toX;
    double toY;
    int look;

    struct Place {
        double x;
        double y;
        double height; ///< of its middle
    };

    bool isThrown(double seconds) const { return seconds - start > -bounces.firstFall(); }

    Place at(double seconds) const {
        const Bounces::State state = bounces.at(seconds - start);
        const double share = state.way / bounces.wholeWay();
        return {mix(fromX, toX, share), mix(fromY, toY, share), state.height + radius};
    }
};

/// The balls of a shot on a table of `width` by `height`.
class Throw {
public:
    Throw(std::uint64_t seed, double width, double height, double seconds, int looks) : showSeconds(seconds) {
        constexpr int most = 11;
        constexpr int attempts = 40;
        Random random(seed);
        for (int i = 0; i < attempts && thrown.size() < most; ++i) {
            const double turn = static_cast<double>(thrown.size()) / most;
            const Ball ball = ballFrom(random, width, height, mix(-0.7, 0.62 * seconds, turn), looks);
            const bool isFree =
                std::none_of(thrown.begin(), thrown.end(), [&](const Ball &other) { return meet(ball, other); });
            if (isFree)
                thrown.push_back(ball);
        }
    }

    const std::vector<Ball> &balls() const { return thrown; }

private:
    Ball ballFrom(Random &random, double width, double height, double start, int looks) const {
        Ball ball = {};
        ball.start = start;
        ball.radius = random.between(38, 76);
        ball.bounces.height = random.between(260, 430);
        ball.bounces.restitution = random.between(0.62, 0.74);
        ball.toX = width * random.between(0.1, 0.9);
        ball.toY = height * random.between(0.13, 0.87);
        // It comes from beyond the left or the right edge, by its own choice, or from above or below.
        const double beyond = 2 * ball.radius;
        const int side = random.below(6);
        const double along = random.between(-0.1, 1.1);
        ball.fromX = side < 2 ? -beyond : side < 4 ? width + beyond : width * along;
        ball.fromY = side < 4 ? height * along : side < 5 ? -beyond : height + beyond;
        ball.look = (static_cast<int>(thrown.size()) * 2 + random.below(2)) % looks;
        return ball;
    }

    bool meet(const Ball &first, const Ball &second) const {
        constexpr double step = 1.0 / 30;
        constexpr double longestCourse = 9; // by then both lie still
        const double room = (first.radius + second.radius) * 1.12;
        const double from = std::max(first.start, second.start) - 0.3;
        const double until = std::min(showSeconds + 1, from + longestCourse);
        for (double seconds = from; seconds < until; seconds += step) {
            const Ball::Place a = first.at(seconds);
            const Ball::Place b = second.at(seconds);
            const double x = a.x - b.x;
            const double y = a.y - b.y;
            const double z = a.height - b.height;
            if (x * x + y * y + z * z < room * room)
                return true;
        }
        return false;
    }

    double showSeconds;
    std::vector<Ball> thrown;
};

/// A round sprite in sizes that halve from one to the next.
class RoundSprite {
public:
    static constexpr int largest = 256;

    RoundSprite() = default;
    explicit RoundSprite(Canvas first) {
        canvases.push_back(std::move(first));
        while (canvases.back().width() > 64)
            canvases.push_back(halved(canvases.back().surface()));
    }

    /// Where a disc of this radius is taken from: from the smallest canvas that is not smaller.
    Surface pictureFor(double radius) const { return canvases[levelFor(radius)].surface(); }

    /// The disc in that canvas, without its outermost pixel, which is mixed with what is around.
    Disc discFor(double radius) const {
        const double shrunk = 1.0 / (1 << levelFor(radius));
        const double middle = (room + largest + 0.5) * shrunk - 0.5;
        return {middle, middle, largest * shrunk - 1};
    }

    static constexpr int room = 32; // around the largest
    static constexpr int side = 2 * (largest + room);

private:
    std::size_t levelFor(double radius) const {
        std::size_t level = 0;
        while (level + 1 < canvases.size() && largest * (1.0 / (2 << level)) >= radius)
            ++level;
        return level;
    }

    std::vector<Canvas> canvases;
};

class Balls : public Effect {
    void prepare(int width, int height) override {
        unit = std::min(width, height) / 720.0;
        std::vector<q_ulong> resource(static_cast<std::size_t>(resourceSize * resourceSize));
        MakeBubbleResource(resource.data(), resourceSize, 0, 0, resourceSize, 0);
        for (const q_ulong colour : colours) {
            looks.push_back(polished(resource, colour));
            looks.push_back(dull(colour));
        }
        shadow = softDisc();
    }

    static constexpr int resourceSize = 512;
    static constexpr int middle = RoundSprite::room + RoundSprite::largest;

    /// The resource's light takes a colour to almost twice its strength, and so does the dull ball's highlight.
    static RoundSprite polished(std::vector<q_ulong> &resource, q_ulong colour) {
        Canvas canvas(RoundSprite::side, RoundSprite::side);
        const Surface surface = canvas.surface();
        DrawReal3DBall(surface.pixels, surface.pitch, middle, middle, 2 * RoundSprite::largest, resource.data(),
                       resourceSize, scaled(colour, 160), surface.width, surface.height);
        shine(surface, 110, 160, colour, 13);
        shine(surface, 120, 205, colour, 13);
        shine(surface, 120, 250, colour, 13);
        shine(surface, -104, 84, 0xFFFFFF, 70);
        return RoundSprite(std::move(canvas));
    }

    static RoundSprite dull(q_ulong colour) {
        Canvas canvas(RoundSprite::side, RoundSprite::side);
        const Surface surface = canvas.surface();
        Draw_3DBall(surface.pixels, surface.pitch, middle, middle, RoundSprite::largest, scaled(colour, 116), 0);
        shine(surface, 60, 256, colour, 30);
        shine(surface, 150, 180, colour, 24);
        shine(surface, -110, 150, 0xFFFFFF, 26);
        shine(surface, -108, 76, 0xFFFFFF, 46);
        return RoundSprite(std::move(canvas));
    }

    static void shine(const Surface &surface, int away, int radius, q_ulong colour, double intensity) {
        light(surface, middle + away, middle + away, radius, colour, intensity);
    }

    /// A disc that goes from white in the middle to black at the rim, with the square of the distance.
    static RoundSprite softDisc() {
        Canvas canvas(RoundSprite::side, RoundSprite::side);
        const Surface surface = canvas.surface();
        Draw_Circle_Light(surface.pixels, surface.pitch, middle, middle, RoundSprite::largest, 255, 255, 255);
        return RoundSprite(std::move(canvas));
    }

    void render(Stage &, const Surface &out, const Moment &moment) const override {
        const Shot &shot = moment.a;
        const double seconds = shot.progress * shot.seconds;
        // The table moves less than photographs do by themselves: there is enough to follow.
        const View view = shot.camera.at(mix(0.32, 0.68, shot.progress));
        const View rest = shot.camera.at(0.5);
        drawView(out, shot.photo, view);

        // From the table to the frame, as far as the camera has come.
        const double zoom = rest.width / view.width;
        const double panX = (rest.left - view.left) / view.width * out.width;
        const double panY = (rest.top - view.top) / view.height * out.height;
        const auto onTable = [&](double x, double y, double radius) {
            return Disc{x * unit * zoom + panX, y * unit * zoom + panY, radius * unit * zoom};
        };

        const Throw table(shot.seed, out.width / unit, out.height / unit, shot.seconds, static_cast<int>(looks.size()));
        struct Flying {
            Disc disc;
            double height;
            int look;
        };
        std::vector<Flying> flying;
        for (const Ball &ball : table.balls()) {
            if (!ball.isThrown(seconds))
                continue;
            const Ball::Place place = ball.at(seconds);
            const double above = place.height - ball.radius;
            // Where it touches the table, and the sharper and darker the nearer it is.
            const double closeness = 1 / (1 + above / 90);
            layShadow(out, onTable(place.x, place.y, ball.radius * mix(1.5, 1.12, closeness)),
                      0.55 * closeness * closeness, 1);
            layShadow(out,
                      onTable(place.x + lightX * place.height, place.y + lightY * place.height,
                              ball.radius + 6 + 0.10 * place.height),
                      mix(0.34, 0.62, closeness), (12 + 0.2 * place.height) / (ball.radius + 6 + 0.1 * place.height));

            const Disc ground = onTable(place.x, place.y, ball.radius);
            const double nearer = eyeHeight / (eyeHeight - place.height);
            flying.push_back({{mix(out.width / 2.0, ground.x, nearer), mix(out.height / 2.0, ground.y, nearer),
                               ground.radius * nearer},
                              place.height,
                              ball.look});
        }
        std::stable_sort(flying.begin(), flying.end(),
                         [](const Flying &a, const Flying &b) { return a.height < b.height; });
        for (const Flying &ball : flying) {
            const RoundSprite &sprite = looks[static_cast<std::size_t>(ball.look)];
            layDisc(out, ball.disc, sprite.pictureFor(ball.disc.radius), sprite.discFor(ball.disc.radius));
        }
    }

    /// Darkens a disc. Its rim is soft over the share `softness` of its radius.
    void layShadow(const Surface &out, const Disc &place, double strength, double softness) const {
        const double inner = 1 - softness;
        const double solid = 1 - inner * inner;
        std::array<int, 256> opacities = {};
        for (std::size_t i = 0; i < opacities.size(); ++i)
            opacities[i] =
                static_cast<int>(easeInOut(std::min(static_cast<double>(i) / 255 / solid, 1.0)) * strength * 255 + 0.5);
        layDisc(out, place, shadow.pictureFor(place.radius), shadow.discFor(place.radius),
                [&](q_ulong &colour, double distance) {
                    const int opacity = distance < place.radius ? opacities[colour & 0xFF] : 0;
                    colour = 0;
                    return opacity;
                });
    }

    double unit = 1;
    std::vector<RoundSprite> looks;
    RoundSprite shadow;
};

const Registered<Balls> registered("balls", Effect::Kind::scene, Use::inTurn,
                                   "balls bounce on the photograph, which lies on a table");

} // namespace

} // namespace show
