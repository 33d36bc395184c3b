// Night falls over the photograph. Three neon tubes wind around each other across it and throw sparks where they grow,
// rockets burst above, and all of their light falls on the picture.
//
// Uses DDLine_Fat (tubes), iLine_AntiAliasing_Max (rockets, trails of sparks, and tubes that burn down),
// Draw_Star_Type1_Safe (embers), Draw_Light_Safe (bursts); drawHalved, Blur_Rect and iBltBilinear32 spread the light,
// iBltBilinear32_Add and iBltFast32_Add lay it on.

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
#include <cstdlib>
#include <vector>

namespace show {

namespace {

/// Where something is that was thrown from `start`, is held back by the air, and falls. Lengths are pixels.
Point thrown(Point start, Point velocity, double drag, double gravity, double seconds) {
    const double way = seconds / (1 + drag * seconds);
    return {start.x + velocity.x * way, start.y + velocity.y * way + gravity * seconds * way / 2};
}

constexpr int strands = 3;
constexpr std::array<q_ulong, strands> neon = {0x18C8FF, 0xFF2A9C, 0xFFA014};
constexpr double tubeSeconds = 2.1;  // how long a piece of the tubes shines
constexpr double wireSeconds = 0.45; // and how long of that as a wire

/// The way of the tubes: a slow figure over the frame, around which they wind.
struct Braid {
    double width;
    double height;
    double unit;
    double start; ///< where on its figure it sets off, in turns
    double lean;  ///< how far the figure leans to one side
    double twist;
    double side; ///< 1, or -1 for the figure seen in a mirror

    Braid(Random &random, const Surface &out)
        : width(out.width), height(out.height), unit(unitOf(out.width, out.height)) {
        start = random.unit();
        lean = random.between(-0.1, 0.1);
        twist = random.unit();
        side = random.unit() < 0.5 ? -1 : 1;
    }

    /// Before and behind the picture's plane, from -1 to 1.
    double depthAt(double seconds) const { return sineOf(0.31 * seconds + start + 0.2); }

    double scaleAt(double seconds) const { return unit * (1 + 0.35 * depthAt(seconds)); }

    /// A figure of eight, which never stands still: where it did, the tubes would tangle.
    Point centreAt(double seconds) const {
        const double turns = 0.18 * seconds + start;
        return {width * (0.5 + side * 0.40 * sineOf(turns)), height * (0.5 + 0.32 * sineOf(2 * turns + lean))};
    }

    struct Place {
        Point point;
        double nearness; ///< what is nearer covers what is farther
    };

    Place strandAt(int strand, double seconds) const {
        const Point here = centreAt(seconds);
        const Point next = centreAt(seconds + 0.01);
        const double length = distance(here, next) + 0.001;
        const Point along = {(next.x - here.x) / length, (next.y - here.y) / length};
        const double turn = 0.85 * seconds + twist + static_cast<double>(strand) / strands;
        const double aside = 44 * scaleAt(seconds) * sineOf(turn);
        return {{here.x - along.y * aside, here.y + along.x * aside}, cosineOf(turn) + 4 * depthAt(seconds)};
    }
};

/// A straight piece of a tube.
struct Piece {
    double nearness;
    int index;
    tagPOINT from;
    tagPOINT to;
    int halfWidth; ///< 0 where the tube has burnt down to a wire
    q_ulong colour;
    double shine; ///< of the wire
};

/// The width of a fine line.
int lineWidth(const Surface &light) {
    return std::max(static_cast<int>(unitOf(light.width, light.height) + 0.5), 1);
}

/// A line of light. Where it crosses another one, the brighter one is seen.
void drawLine(const Surface &light, tagPOINT from, tagPOINT to, q_ulong colour, int width) {
    tagRECT clip = light.rect();
    iLine_AntiAliasing_Max(light.pixels, &clip, light.pitch, static_cast<int>(from.x), static_cast<int>(from.y),
                           static_cast<int>(to.x), static_cast<int>(to.y), colour, width);
}

/// The way on which something has come in the last `seconds`, `placeAt(age)` seconds ago, fading toward its beginning.
template <class PlaceAt>
void drawTrail(const Surface &light, double seconds, q_ulong colour, int width, PlaceAt placeAt) {
    constexpr int pieces = 8;
    tagPOINT from = placeAt(0.0);
    for (int i = 1; i <= pieces; ++i) {
        const tagPOINT to = placeAt(seconds * i / pieces);
        const double left = 1 - (i - 0.5) / pieces;
        drawLine(light, from, to, dimmed(colour, left * left), width);
        from = to;
    }
}

bool isSteep(const tagPOINT &from, const tagPOINT &to) {
    return std::abs(to.y - from.y) >= std::abs(to.x - from.x);
}

double lengthOf(const tagPOINT &from, const tagPOINT &to) {
    return distance({static_cast<double>(from.x), static_cast<double>(from.y)},
                    {static_cast<double>(to.x), static_cast<double>(to.y)});
}

/// The pieces of a strand that shine between two times.
void addPieces(std::vector<Piece> &pieces, const Braid &braid, int strand, double begin, double end) {
    constexpr double step = 0.02;
    const auto first = static_cast<int>(std::floor(begin / step));
    const auto last = static_cast<int>(std::floor(end / step)) + 1;
    const auto timeOf = [=](int i) { return std::clamp(i * step, begin, end); };
    tagPOINT from = pixelAt(braid.strandAt(strand, timeOf(first)).point);
    for (int i = first + 1; i <= last; ++i) {
        const double time = timeOf(i);
        const Braid::Place place = braid.strandAt(strand, time);
        const tagPOINT to = pixelAt(place.point);
        // Pointed at the tail, where a wire is left that dies down, and a little at the head.
        const double taper = std::min((time - begin - wireSeconds) / 0.35, 0.5 + (end - time) / 0.12);
        // Shades along an axis make a tube that is slanted thinner.
        const double slant =
            lengthOf(from, to) / std::max({std::abs(to.x - from.x), std::abs(to.y - from.y), q_long{1}});
        const int halfWidth = static_cast<int>(10 * braid.scaleAt(time) * clampUnit(taper) * slant + 0.5);
        const auto shineAt = [=](double at) { return clampUnit((at - begin) / (wireSeconds + 0.1)); };
        pieces.push_back({place.nearness, strand * 100000 + i, from, to, halfWidth < 2 ? 0 : halfWidth,
                          neon[static_cast<std::size_t>(strand)], shineAt(time)});
        from = to;
    }
}

/// A tube's shades lie along one axis. Where the tube turns from one axis to the other its piece is drawn on a little,
/// or a notch would show.
void lengthen(Piece &piece) {
    const double dx = piece.to.x - piece.from.x;
    const double dy = piece.to.y - piece.from.y;
    const double length = lengthOf(piece.from, piece.to);
    if (length < 1)
        return;
    const double more = piece.halfWidth / length;
    const auto moved = [=](tagPOINT point, double by) { return pixelAt({point.x + dx * by, point.y + dy * by}); };
    piece.from = moved(piece.from, -more);
    piece.to = moved(piece.to, more);
}

/// Takes the steps off the tubes' edges.
void soften(const Surface &light, const std::vector<Piece> &pieces) {
    tagRECT bounds = {light.width, light.height, 0, 0};
    for (const Piece &piece : pieces) {
        const q_long reach = piece.halfWidth + 4;
        for (const tagPOINT point : {piece.from, piece.to})
            bounds = {std::min(bounds.left, point.x - reach), std::min(bounds.top, point.y - reach),
                      std::max(bounds.right, point.x + reach), std::max(bounds.bottom, point.y + reach)};
    }
    bounds = {std::max<q_long>(bounds.left, 0), std::max<q_long>(bounds.top, 0),
              std::min<q_long>(bounds.right, light.width), std::min<q_long>(bounds.bottom, light.height)};
    Blur_Rect(light.pixels, &bounds, light.pitch, 1);
}

void drawTubes(const Surface &light, const Braid &braid, double begin, double end) {
    std::vector<Piece> pieces;
    for (int strand = 0; strand < strands; ++strand) {
        const std::size_t first = pieces.size();
        addPieces(pieces, braid, strand, begin, end);
        std::vector<bool> turns(pieces.size() - first);
        for (std::size_t i = first + 1; i < pieces.size(); ++i)
            if (isSteep(pieces[i - 1].from, pieces[i - 1].to) != isSteep(pieces[i].from, pieces[i].to))
                turns[i - 1 - first] = turns[i - first] = true;
        for (std::size_t i = first; i < pieces.size(); ++i)
            if (turns[i - first])
                lengthen(pieces[i]);
    }
    std::sort(pieces.begin(), pieces.end(), [](const Piece &a, const Piece &b) {
        return a.nearness != b.nearness ? a.nearness < b.nearness : a.index < b.index;
    });
    tagRECT clip = light.rect();
    const int wire = lineWidth(light);
    const auto holds = [&](tagPOINT point) {
        return point.x >= 0 && point.x < light.width && point.y >= 0 && point.y < light.height;
    };
    for (const Piece &piece : pieces) {
        if (piece.halfWidth == 0) {
            drawLine(light, piece.from, piece.to, mixColours(0, piece.colour, piece.shine), wire);
            continue;
        }
        // A tube's ends must lie within the surface, and its red and blue are exchanged.
        if (!holds(piece.from) || !holds(piece.to))
            continue;
        const q_ulong exchanged = (piece.colour & 0xFF) << 16 | (piece.colour & 0xFF00) | piece.colour >> 16;
        DDLine_Fat(light.pixels, &clip, light.pitch, static_cast<int>(piece.from.x), static_cast<int>(piece.from.y),
                   static_cast<int>(piece.to.x), static_cast<int>(piece.to.y), exchanged, piece.halfWidth);
    }
    soften(light, pieces);
}

/// The sparks that fly from the tubes' heads, each gone after its own time.
void drawWelding(const Surface &light, const Braid &braid, std::uint64_t seed, double growing, double now) {
    constexpr double rate = 260;
    constexpr double longest = 1.1;
    const auto first = static_cast<int>(std::max(now - longest, 0.0) * rate);
    const auto last = static_cast<int>(std::min(now, growing) * rate);
    for (int i = first; i < last; ++i) {
        Random random(seedOf(seed, i));
        const double born = (i + random.unit()) / rate;
        const double age = now - born;
        const double life = random.between(0.35, longest);
        const double direction = random.unit();
        const double speed = braid.unit * random.between(60, 520);
        if (age <= 0 || age >= life)
            continue;
        const Point start = braid.strandAt(i % strands, born).point;
        const Point velocity = {speed * cosineOf(direction), speed * sineOf(direction) - 120 * braid.unit};
        const auto at = [&](double seconds) {
            return pixelAt(thrown(start, velocity, 1.2, 1500 * braid.unit, std::max(seconds, 0.0)));
        };
        const tagPOINT head = at(age);
        const double share = age / life;
        q_ulong colour = share < 0.4 ? mixColours(0xFFFFFF, 0xFFD060, share / 0.4)
                                     : mixColours(0xFFD060, 0xA02000, (share - 0.4) / 0.6);
        colour = mixColours(colour, 0, (share - 0.75) / 0.25);
        drawTrail(light, 0.07, colour, lineWidth(light), [&](double ago) { return at(age - ago); });
        star(light, static_cast<int>(head.x), static_cast<int>(head.y), static_cast<int>(7 * braid.unit), colour, 64);
    }
    if (now >= growing)
        return;
    for (int strand = 0; strand < strands; ++strand) {
        const tagPOINT head = pixelAt(braid.strandAt(strand, now).point);
        Random random(seedOf(seed, static_cast<int>(now * 60) * strands + strand));
        const int radius = static_cast<int>(braid.unit * random.between(24, 40));
        star(light, static_cast<int>(head.x), static_cast<int>(head.y), radius, 0xFFF0D8, 100);
    }
}

constexpr std::array<q_ulong, 6> burstColours = {0xFFC85A, 0x5AB4FF, 0xFF5A8C, 0x8CFFB4, 0xC88CFF, 0xFF8246};

/// A rocket that rises and bursts.
struct Rocket {
    static constexpr double rise = 0.55;
    static constexpr double longestLife = 2.0;

    double burst; ///< when, in seconds
    Point place;
    Point foot;
    double size; ///< speed of its fastest sparks
    std::uint64_t seed;
    q_ulong colour;
    q_ulong secondColour;
    bool isRing;

    Rocket(std::uint64_t ownSeed, const Surface &out, double when) : seed(ownSeed) {
        Random random(seed);
        const double unit = unitOf(out.width, out.height);
        burst = when + random.between(-0.12, 0.12);
        place.x = out.width * random.between(0.12, 0.88);
        place.y = out.height * random.between(0.16, 0.48);
        foot.x = place.x + out.width * random.between(-0.08, 0.08);
        foot.y = out.height;
        size = unit * random.between(640, 980);
        const int hue = random.below(static_cast<int>(burstColours.size()));
        const int other = random.below(static_cast<int>(burstColours.size()));
        colour = burstColours[static_cast<std::size_t>(hue)];
        secondColour = burstColours[static_cast<std::size_t>(other)];
        isRing = random.unit() < 0.3;
    }

    Point riseAt(double seconds) const {
        const double share = easeOut(clampUnit(1 + seconds / rise));
        return {mix(foot.x, place.x, share), mix(foot.y, place.y, share)};
    }
};

/// A tail that cools down on its way up.
void drawRise(const Surface &light, const Rocket &rocket, double seconds) {
    const auto placeAt = [&](double ago) { return pixelAt(rocket.riseAt(seconds - ago)); };
    const int width = lineWidth(light);
    drawTrail(light, 0.16, 0xA06828, 3 * width, placeAt);
    drawTrail(light, 0.12, 0xFFF6E0, width, placeAt);
}

void drawBurst(const Surface &light, const Rocket &rocket, double seconds) {
    const double unit = unitOf(light.width, light.height);
    const int sparks = rocket.isRing ? 80 : 130;
    // Close together at first, they would make a white ball.
    const double parted = mix(0.15, 1, stretch(seconds, 0.0, 0.2));
    Random random(rocket.seed + 1);
    for (int i = 0; i < sparks; ++i) {
        const double direction = (i + random.between(-0.3, 0.3)) * 0.6180339887498949;
        const double reach = std::sqrt(random.unit());
        const double life = Rocket::longestLife * random.between(0.55, 1.0);
        const double flicker = random.unit();
        const double speed = rocket.size * (rocket.isRing ? (i % 4 == 0 ? 0.45 : mix(0.9, 1.0, reach)) : reach);
        const bool isInner = rocket.isRing ? i % 4 == 0 : reach < 0.45;
        if (seconds >= life)
            continue;
        const Point velocity = {speed * cosineOf(direction), speed * sineOf(direction)};
        const auto at = [&](double time) {
            return pixelAt(thrown(rocket.place, velocity, 1.9, 330 * unit, std::max(time, 0.0)));
        };
        const double share = seconds / life;
        const q_ulong own = isInner ? rocket.secondColour : rocket.colour;
        q_ulong colour = mixColours(0xFFFFFF, own, share / 0.22);
        colour = mixColours(colour, 0x701C00, (share - 0.7) / 0.3);
        colour = mixColours(colour, 0, (share - 0.8) / 0.2);
        const tagPOINT head = at(seconds);
        drawTrail(light, 0.2 * mix(1, 0.7, share), dimmed(colour, parted), lineWidth(light),
                  [&](double ago) { return at(seconds - ago); });
        // Embers glitter toward their end.
        const double glitter = sineOf(flicker + 5 * seconds);
        const int radius = static_cast<int>(unit * mix(7, 11, clampUnit(glitter)));
        const double shine = mix(0.55, 1.0, clampUnit(glitter)) * (1 - share * share) * parted;
        star(light, static_cast<int>(head.x), static_cast<int>(head.y), radius, mixColours(own, 0xFFFFFF, 0.3),
             64 * shine);
    }
    // A glare with a cross in it, which shrinks as the sparks part.
    const double flash = easeInOut(std::min(stretch(seconds, 0.55, 0.1), stretch(seconds, 0, 0.2)));
    const auto x = static_cast<int>(rocket.place.x);
    const auto y = static_cast<int>(rocket.place.y);
    const q_ulong glare = mixColours(rocket.colour, 0xFFFFFF, flash * 0.6);
    show::light(light, x, y, static_cast<int>(190 * unit), glare, 22 * flash);
    for (const int reach : {250, 110})
        star(light, x, y, static_cast<int>(reach * mix(0.6, 1, flash) * unit), glare, 17 * flash);
}

/// The picture in the dark: of each channel as much as there is light of its colour.
void illuminate(const Surface &out, const Surface &light, double ambient) {
    const auto dark = static_cast<int>(ambient * 256);
    constexpr int gain = 2;
    for (int y = 0; y < out.height; ++y) {
        q_ulong *const row = out.at(0, y);
        const q_ulong *const shine = light.at(0, y);
        for (int x = 0; x < out.width; ++x) {
            row[x] = eachChannel([d = row[x], s = shine[x], dark](int shift) {
                return channelOf(d, shift) * (dark + gain * channelOf(s, shift)) >> 8;
            });
        }
    }
}

class Sparks : public Effect {
    void render(Stage &stage, const Surface &out, const Moment &moment) const override {
        const Shot &shot = moment.a;
        const double now = shot.progress * shot.seconds;
        const double dusk = easeInOut(std::min(stretch(shot.progress, 0.0, 0.16), stretch(shot.progress, 1.0, 0.88)));
        drawView(out, shot.photo, shot.camera.at(shot.progress));

        // Drawn at twice the size where that can be, so that lines are smooth and move smoothly.
        Space &space = stage.space();
        const Surface large = space.surface().cropped(out.width * space.scale(), out.height * space.scale());
        fill(large, 0);
        Random random(shot.seed);
        const Braid braid(random, large);
        // The tubes set off when it has become dark, and end before it dawns.
        const double start = 0.08 * shot.seconds;
        const double growing = 0.78 * shot.seconds - start;
        const double time = now - start;
        if (time > 0) {
            const double end = std::min(time, growing);
            const double begin = std::max(time - tubeSeconds, 0.0) + std::max(2 * (time - growing), 0.0);
            if (begin < end)
                drawTubes(large, braid, begin, end);
        }
        drawRockets(large, shot, now);
        if (time > 0)
            drawWelding(large, braid, shot.seed, growing, time);
        const Stage::Plane light = stage.plane();
        space.show(light);

        // The light close around what shines, and what of it reaches farther over the picture.
        const Stage::Plane planes[] = {stage.plane(), stage.plane(), stage.plane()};
        const double unit = unitOf(out.width, out.height);
        const auto scaled = [unit](double pixels) { return std::max(static_cast<int>(pixels * unit), 1); };
        const Surface half = softened(planes[0], light, scaled(3));
        const Surface close = softened(planes[1], half, scaled(5));
        const Surface strong = planes[0]->cropped(close.width, close.height);
        copy(strong, close);
        for (int i = 0; i < 2; ++i)
            add(strong, strong);
        const Surface distant = softened(planes[2], strong, scaled(18));
        extendEdges(distant);
        const Surface spread = planes[0];
        tagRECT frame = out.rect();
        tagRECT whole = distant.rect();
        iBltBilinear32(spread.pixels, distant.pixels, &frame, &whole, spread.unsignedPitch(), distant.unsignedPitch());
        illuminate(out, spread, mix(1, 0.24, dusk));
        addLight(out, close, 0.75);
        add(out, light);
    }

    static void drawRockets(const Surface &light, const Shot &shot, double now) {
        constexpr double interval = 0.62;
        const auto count = static_cast<int>((shot.seconds * 0.80 - 0.9) / interval);
        for (int i = 0; i < count; ++i) {
            const Rocket rocket(seedOf(shot.seed, 1000 + i), light, 0.9 + interval * i);
            const double seconds = now - rocket.burst;
            if (seconds > -Rocket::rise && seconds < 0)
                drawRise(light, rocket, seconds);
            if (seconds >= 0 && seconds < Rocket::longestLife)
                drawBurst(light, rocket, seconds);
        }
    }
};

const Registered<Sparks> registered("sparks", Effect::Kind::scene, Use::inTurn,
                                    "neon tubes and fireworks shine on the darkened photograph");

} // namespace

} // namespace show
