// The next photograph comes in pieces that sail in from all sides, tumbling and casting shadows, and settle side by
// side.
//
// Uses iPsudoBilinearMapping (the pieces), Rect_Safe, Hor_Blur32 and Ver_Blur32 (shadows), iBltFast32AlphaChannelSafe,
// iBltFast32Alpha (edges), iFadeOut32 (light), iBltPerfect32 (by drawView).

#include "../effect.h"
#include "../flight.h"
#include "../painting.h"
#include "../random.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace show {

namespace {

constexpr int piecesAcross = 5;    // the frame's shorter side
constexpr double flightTime = 0.6; // of the transition

using Corners = std::array<Point, 4>;

/// What is left to chance in one piece.
struct Chance {
    double start;
    double direction;
    double axis;
    double tilt;
    double roll;

    explicit Chance(Random &random)
        : start(random.unit()), direction(random.between(-0.08, 0.08)), axis(random.unit()),
          tilt(random.between(0.175, 0.24)), roll(random.onEitherSide(0.1, 0.25)) {}
};

/// A piece at a moment of its flight.
struct Piece {
    tagRECT home;
    double height; ///< above the photograph, from 1 to 0
    double light;
    Corners corners;
    Corners shadow;
};

Piece pieceInFlight(tagRECT home, const Chance &chance, double way, int frameWidth, int frameHeight) {
    const double left = (1 - way) * (1 - way);
    const double unit = std::min(frameWidth, frameHeight);
    const Point middle = {(home.left + home.right) / 2.0, (home.top + home.bottom) / 2.0};

    // It comes from beyond the frame, on a bent path, and from the side on which it is to lie.
    // What lies near the middle of the frame takes whatever side chance gives it.
    const double besideX = middle.x - frameWidth / 2.0 + 0.12 * unit * cosineOf(chance.axis);
    const double besideY = middle.y - frameHeight / 2.0 + 0.12 * unit * sineOf(chance.axis);
    const double beside = std::sqrt(besideX * besideX + besideY * besideY) + 1;
    const double bend = chance.direction + 0.175 * left;
    const double away = left * std::max(frameWidth, frameHeight) * 0.7 / beside;
    const Point place = {middle.x + away * (besideX * cosineOf(bend) - besideY * sineOf(bend)),
                         middle.y + away * (besideX * sineOf(bend) + besideY * cosineOf(bend))};

    const double height = easeInOut(1 - way);
    const Attitude attitude = {place, 0.5 * unit * height, chance.roll * height, chance.axis, chance.tilt * height};
    Piece piece = {home, height, 1, {}, {}};
    const double sideX[] = {-1, 1, 1, -1};
    const double sideY[] = {-1, -1, 1, 1};
    for (std::size_t i = 0; i < 4; ++i) {
        const Point corner = {sideX[i] * static_cast<double>(home.right - home.left) / 2,
                              sideY[i] * static_cast<double>(home.bottom - home.top) / 2};
        const SeenPoint seen = seenPoint(attitude, corner, 1.6 * unit);
        piece.corners[i] = seen.place;
        piece.shadow[i] = seen.shadow;
    }
    // Brighter where it leans towards the light, from above, and darker away from it.
    piece.light = 0.86 + 0.14 * cosineOf(attitude.tilt) - 0.26 * sineOf(attitude.tilt) * cosineOf(chance.axis);
    return piece;
}

class FlyIn : public Effect {
    void prepare(int width, int height) override {
        const double side = std::min(width, height) / static_cast<double>(piecesAcross);
        columns = static_cast<int>(width / side + 0.5);
        rows = static_cast<int>(height / side + 0.5);
        white = Canvas(width, height);
        fill(white, 0xFBF8F2);
    }

    void render(Stage &stage, const Surface &out, const Moment &moment) const override {
        const Stage::Plane after = stage.plane();
        drawShot(stage, out, moment.a);
        drawShot(stage, after, moment.b);
        extendEdges(after);

        std::vector<Piece> flying;
        Random random(moment.b.seed);
        for (int row = 0; row < rows; ++row)
            for (int column = 0; column < columns; ++column) {
                const Chance chance(random);
                const double start = (1 - flightTime) * chance.start;
                const double way = stretch(moment.t, start, start + flightTime);
                tagRECT home = {out.width * column / columns, out.height * row / rows,
                                out.width * (column + 1) / columns, out.height * (row + 1) / rows};
                if (way >= 1)
                    copy(out, after, home);
                else if (way > 0)
                    flying.push_back(pieceInFlight(home, chance, way, out.width, out.height));
            }
        std::stable_sort(flying.begin(), flying.end(),
                         [](const Piece &lower, const Piece &higher) { return lower.height < higher.height; });
        std::vector<Shadow> shadows;
        for (const Piece &piece : flying)
            shadows.push_back({piece.shadow, 150 * clampUnit(piece.height * 6)});
        castShadows(stage, out, shadows, out.height / 24);
        for (const Piece &piece : flying)
            lay(stage, out, after, piece);

        clearOpacity(out);
    }

    void lay(Stage &stage, const Surface &out, const Surface &photo, const Piece &piece) const {
        // The rectangle around the piece, and the piece in it at twice its size.
        const auto compare = [](double Point::*member) {
            return [member](const Point &first, const Point &second) { return first.*member < second.*member; };
        };
        const auto [leftmost, rightmost] =
            std::minmax_element(piece.corners.begin(), piece.corners.end(), compare(&Point::x));
        const auto [topmost, lowest] =
            std::minmax_element(piece.corners.begin(), piece.corners.end(), compare(&Point::y));
        const int left = rounded(leftmost->x) - 1;
        const int top = rounded(topmost->y) - 1;
        const int width = rounded(rightmost->x) + 2 - left;
        const int height = rounded(lowest->y) + 2 - top;
        if (left >= out.width || top >= out.height || left + width <= 0 || top + height <= 0 || 2 * width > out.width ||
            2 * height > out.height)
            return;

        const Stage::Plane planes[] = {stage.plane(), stage.plane(), stage.plane()};
        const Surface source = planes[0]->cropped(2 * width, 2 * height);
        const Surface scratch = planes[1]->cropped(2 * width, 2 * height);
        const Surface warped = planes[2]->cropped(2 * width, 2 * height);
        drawSource(source, photo, piece, std::min(out.width, out.height) / 144);
        fill(scratch, 0);
        std::array<int, 4> x;
        std::array<int, 4> y;
        for (std::size_t i = 0; i < 4; ++i) {
            x[i] = rounded(2 * (piece.corners[i].x - left));
            y[i] = rounded(2 * (piece.corners[i].y - top));
        }
        iPsudoBilinearMapping(warped.pixels, source.pixels, scratch.pixels, warped.pitch, warped.width, warped.height,
                              0, x[0], x[1], x[2], x[3], y[0], y[1], y[2], y[3]);

        const Surface sprite = scratch.cropped(width, height);
        halve(sprite, warped);
        show::lay(out, sprite, left, top);
    }

    /// The piece of the photograph stretched over the whole of `source`, lit, with a bright edge while it is high up,
    /// `edge` pixels wide before it is stretched.
    void drawSource(const Surface &source, const Surface &photo, const Piece &piece, int edge) const {
        const tagRECT &home = piece.home;
        drawView(source, photo,
                 {static_cast<double>(home.left), static_cast<double>(home.top),
                  static_cast<double>(home.right - home.left), static_cast<double>(home.bottom - home.top)});
        const q_long width = source.width;
        const q_long height = source.height;
        const q_long edgeX = width * edge / (home.right - home.left);
        const q_long edgeY = height * edge / (home.bottom - home.top);
        const double strength = clampUnit(piece.height * 5);
        for (tagRECT band :
             {tagRECT{0, 0, width, edgeY}, tagRECT{0, height - edgeY, width, height},
              tagRECT{0, edgeY, edgeX, height - edgeY}, tagRECT{width - edgeX, edgeY, width, height - edgeY}})
            blend(source, white, band, strength);
        dim(source, clampUnit(piece.light));
        for (int y = 0; y < source.height; ++y)
            for (int x = 0; x < source.width; ++x)
                *source.at(x, y) |= 0xFF000000;
    }

    /// Means of four pixels each, of those that are not 0, with their number as opacity.
    static void halve(const Surface &half, const Surface &picture) {
        for (int y = 0; y < half.height; ++y)
            for (int x = 0; x < half.width; ++x) {
                q_ulong count = 0;
                q_ulong redBlue = 0;
                q_ulong green = 0;
                for (const int row : {2 * y, 2 * y + 1})
                    for (const int column : {2 * x, 2 * x + 1}) {
                        const q_ulong pixel = *picture.at(column, row);
                        count += pixel >> 31;
                        redBlue += pixel & 0xFF00FF;
                        green += pixel & 0x00FF00;
                    }
                if (count == 0) {
                    *half.at(x, y) = 0;
                    continue;
                }
                const q_ulong red = (redBlue >> 16) / count;
                const q_ulong blue = (redBlue & 0xFFFF) / count;
                *half.at(x, y) = (count * 64 - 1) << 24 | red << 16 | (green / count & 0xFF00) | blue;
            }
    }

    Canvas white;
    int columns = 1;
    int rows = 1;
};

const Registered<FlyIn> registered("fly-in", Effect::Kind::transition, Use::inTurn,
                                   "the next photograph flies in piece by piece");

} // namespace

} // namespace show
