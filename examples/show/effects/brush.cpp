// Broad strokes of a bristly brush paint the next photograph over the last. The paint is wet at first and shows the
// brush's grain in the light; then it flows together.
//
// Uses iLine_AntiAliasing_Max (bristles), Rect_Safe (paint that flows together), Hor_Blur and Ver_Blur,
// iBltFast32AlphaChannelSafe.

#include "../angle.h"
#include "../effect.h"
#include "../painting.h"
#include "../point.h"
#include "../random.h"

#include <algorithm>
#include <cmath>

namespace show {

namespace {

constexpr int sections = 60;            // straight pieces of a stroke
constexpr double paintingTime = 0.77;   // of the transition; then the last paint flows together
constexpr double flowingTime = 0.2;     // from the end of a stroke on
constexpr double dryingTime = 0.22;     // until the grain is gone
constexpr double covering = 132;        // a thickness of paint through which nothing shows
constexpr double strokeOverlap = 1.4;   // thickness of a stroke in distances between strokes
constexpr double strokeDuration = 1.45; // in the time from one stroke to the next

/// The strokes of one transition, each beside the last and in the opposite direction.
struct Strokes {
    int count;
    double distance; // between two strokes, in pixels
    double first;    // height of the first one's middle
    double slope;
    double swing; // how far a stroke bends up and down
    int width;    // of the frame

    Strokes(int frameWidth, int frameHeight, Random &random) : width(frameWidth) {
        slope = random.onEitherSide(0.1, 0.2);
        const double rise = std::abs(slope) * frameWidth;
        count = std::clamp(static_cast<int>((frameHeight + rise) * 4 / frameHeight + 0.5), 3, 12);
        distance = (frameHeight + rise) / count;
        first = (distance - rise) / 2;
        swing = 0.13 * distance;
    }

    /// From 0 to 1 of the way from left to right, a little beyond the frame on both sides.
    double column(double along) const { return mix(-0.12, 1.12, along) * width; }

    double row(int stroke, double along) const {
        const double bend = sineOf((2.3 * along + stroke) / 2);
        return first + stroke * distance + slope * (column(along) - width / 2.0) + swing * bend;
    }
};

/// One hair of the brush, or a few that stick together.
struct Bristle {
    double offset; // from -1 to 1 across the stroke
    double lag;    // how far it stays behind the brush, in lengths of the stroke
    double dryness;
    double paint;
    int thickness;
    std::uint64_t seed;

    Bristle(Random &random, double place, double unit) : offset(place + random.between(-0.02, 0.02)) {
        const double rim = std::abs(place);
        lag = 0.035 * (1 - std::sqrt(1 - std::min(rim * rim, 1.0))) + random.between(0, 0.035);
        dryness = random.between(0.1, 0.65) + 0.45 * stretch(rim, 0.7, 1);
        paint = random.between(covering + 8, 250);
        thickness = std::max(static_cast<int>(unit * random.between(1, 4.5) + 0.5), 1);
        seed = random.next();
    }
};

class Brush : public Effect {
    void render(Stage &stage, const Surface &out, const Moment &moment) const override {
        const Stage::Plane after = stage.plane();
        const Stage::Plane paint = stage.plane();
        drawShot(stage, out, moment.a);
        drawShot(stage, after, moment.b);
        layPaint(stage, paint, moment);
        shade(after, paint);
        lay(out, after, 0, 0);
        clearOpacity(out);
    }

    /// Paint as thick as the blue channel says, and as wet as the green one.
    static void layPaint(Stage &stage, const Surface &paint, const Moment &moment) {
        const double unit = paint.height / 720.0;
        Random random(moment.b.seed);
        const Strokes strokes(paint.width, paint.height, random);
        const std::uint64_t seed = random.next();

        const double step = paintingTime / (strokes.count - 1 + strokeDuration);
        const auto endOf = [&](int stroke) { return step * (stroke + strokeDuration); };
        fill(paint, 0);
        // The older, the more it has flowed together: so the older ones last.
        for (int stroke = strokes.count; stroke-- > 0;) {
            const double flowed = easeInOut(stretch(moment.t, endOf(stroke), endOf(stroke) + flowingTime));
            if (flowed > 0)
                layFlowed(paint, strokes, stroke, covering * flowed);
        }
        for (int stroke = 0; stroke < strokes.count; ++stroke) {
            const double way = stretch(moment.t, step * stroke, endOf(stroke));
            const double wet = 1 - easeInOut(stretch(moment.t, endOf(stroke), endOf(stroke) + dryingTime));
            Random chance(seedOf(seed, stroke));
            const auto count = static_cast<int>(strokeOverlap * strokes.distance / (2.2 * unit)) + 2;
            for (int i = 0; i < count && way > 0; ++i) {
                const Bristle bristle(chance, 2.0 * i / (count - 1) - 1, unit);
                drag(paint, strokes, stroke, bristle, mix(way, easeInOut(way), 0.7), 255 * wet);
            }
        }

        // Along the strokes more than across them.
        const Stage::Plane rows = stage.plane();
        const int softness = std::min({static_cast<int>(5 * unit), paint.width - 1, paint.height - 1});
        Hor_Blur(rows->pixels, paint.pixels, softness, paint.width, paint.height, paint.pitch);
        Ver_Blur(paint.pixels, rows->pixels, softness / 3, paint.width, paint.height, paint.pitch);
        extendEdges(paint);
    }

    static void drag(const Surface &paint, const Strokes &strokes, int stroke, const Bristle &bristle, double way,
                     double wet) {
        // Lines stay away from the end of their clip, which is why it reaches into the margin.
        constexpr int margin = PlaneLayout::margin;
        tagRECT clip = {-margin, -margin, paint.width + margin, paint.height + margin};
        const double reach = 1.1 * way - bristle.lag;
        const double offset = bristle.offset * strokeOverlap * strokes.distance / 2;
        const auto pointAt = [&](double along) {
            const double fromLeft = stroke % 2 == 0 ? along : 1 - along;
            return pixelUnder({strokes.column(fromLeft), strokes.row(stroke, fromLeft) + offset});
        };
        // How well the bristle touches the canvas changes along its way.
        constexpr int sectionsToAChange = 5;
        Random random(bristle.seed);
        double touch = random.unit();
        double nextTouch = random.unit();
        tagPOINT from = pointAt(0);
        for (int i = 0; i < sections && i < reach * sections; ++i) {
            if (i % sectionsToAChange == 0) {
                touch = nextTouch;
                nextTouch = random.unit();
            }
            const double along = static_cast<double>(i) / sections;
            const tagPOINT to = pointAt(std::min(reach, along + 1.0 / sections));
            // Toward its end the brush has less to give.
            const double pressed = mix(touch, nextTouch, i % sectionsToAChange / double{sectionsToAChange});
            const double given = clampUnit((pressed - bristle.dryness * mix(0.25, 0.85, along)) * 4 + 1);
            if (given > 0.1)
                iLine_AntiAliasing_Max(paint.pixels, &clip, paint.pitch, static_cast<int>(from.x),
                                       static_cast<int>(from.y), static_cast<int>(to.x), static_cast<int>(to.y),
                                       colourOf(0, wet, bristle.paint * given), bristle.thickness);
            from = to;
        }
    }

    static void layFlowed(const Surface &paint, const Strokes &strokes, int stroke, double thickness) {
        auto colour = static_cast<q_ulong>(thickness);
        tagRECT clip = paint.rect();
        // Neighbours may bend away from each other.
        const double half = strokes.distance / 2 + strokes.swing + 1;
        for (int i = 0; i < sections; ++i) {
            const double ends[] = {static_cast<double>(i) / sections, static_cast<double>(i + 1) / sections};
            tagPOINT points[4];
            for (int corner = 0; corner < 4; ++corner) {
                const double along = ends[corner == 1 || corner == 2];
                const double row = strokes.row(stroke, along) + (corner < 2 ? -half : half);
                points[corner] = pixelUnder({strokes.column(along), row});
            }
            Rect_Safe(paint.pixels, &clip, paint.pitch, &points[0], &points[1], &points[2], &points[3], &colour);
        }
    }

    /// Gives the picture the paint's opacity, and the light, from the upper left, on the grain of what is wet.
    static void shade(const Surface &picture, const Surface &paint) {
        for (int y = 0; y < picture.height; ++y) {
            const q_ulong *const row = paint.at(0, y);
            q_ulong *const pixels = picture.at(0, y);
            for (int x = 0; x < picture.width; ++x) {
                const int opacity = std::min(2 * channelOf(row[x], 0), 255);
                const int wet = channelOf(row[x], 8);
                const q_ulong *const around = row + x;
                const int slope = channelOf(around[paint.pitch + 1], 0) - channelOf(around[-paint.pitch - 1], 0);
                const int gain = slope * wet / 512;
                const q_ulong lit = eachChannel([&](int shift) { return channelOf(pixels[x], shift) + gain; });
                pixels[x] = opacity == 0 ? 0 : opacityOf(opacity) | lit;
            }
        }
    }
};

const Registered<Brush> registered("brush", Effect::Kind::transition, Use::inTurn,
                                   "strokes of a brush paint the next photograph");

} // namespace

} // namespace show
