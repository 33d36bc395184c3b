// A broad nib writes one long flourish over the photograph. Its ink is the next photograph, which shows as it dries,
// and bleeds into the paper until nothing of the old one is left.
//
// Uses iBesierLine (the strokes of the nib, one beside the other), iFill_Circle_Safe (the ink that bleeds) and
// iBltFast32SafeAlpha_Channel (which lays it on); Rect_Safe (the pen), iBltFast32AlphaChannelSafe and
// Draw_Star_Type1_Safe (the pen on the paper and the glint of its nib).

#include "../angle.h"
#include "../effect.h"
#include "../painting.h"
#include "../point.h"
#include "../random.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <vector>

namespace show {

namespace {

/// A cubic curve by its ends and handles.
struct Curve {
    Point a;
    Point b;
    Point c;
    Point d;

    Point at(double t) const { return upTo(t).d; }

    /// The part from `begin` to `end` as a curve of its own.
    Curve part(double begin, double end) const { return upTo(end).turned().upTo(1 - begin / end).turned(); }

private:
    Curve turned() const { return {d, c, b, a}; }
    Curve upTo(double t) const {
        const Point ab = between(a, b, t);
        const Point bc = between(b, c, t);
        const Point cd = between(c, d, t);
        const Point abc = between(ab, bc, t);
        const Point bcd = between(bc, cd, t);
        return {a, ab, abc, between(abc, bcd, t)};
    }
};

/// The flourish, in shares of the frame's width and height: three loops and a way in and out.
constexpr std::array<Point, 20> flourish = {{{-0.10, 0.80}, {0.09, 0.62},  {0.27, 0.22},  {0.215, 0.07}, {0.13, 0.25},
                                             {0.165, 0.68}, {0.29, 0.90},  {0.43, 0.63},  {0.57, 0.20},  {0.515, 0.06},
                                             {0.43, 0.25},  {0.465, 0.70}, {0.59, 0.92},  {0.73, 0.64},  {0.87, 0.21},
                                             {0.815, 0.07}, {0.73, 0.26},  {0.765, 0.70}, {0.90, 0.88},  {1.12, 0.50}}};

/// A short piece of the flourish, and when the nib is there.
struct Stroke {
    Curve curve;
    double begin;
    double end;
};

constexpr double writingBegin = 0.06;
constexpr double writingEnd = 0.66;
constexpr double allInked = 0.86; ///< when the last of the paper has taken ink

std::vector<Stroke> strokesOver(double width, double height) {
    constexpr int pieces = 16; // of each curve
    const auto pointAt = [=](int i) -> Point {
        const Point share = flourish[static_cast<std::size_t>(std::clamp<int>(i, 0, flourish.size() - 1))];
        return {share.x * width, share.y * height};
    };
    std::vector<Stroke> strokes;
    double length = 0;
    for (int i = 0; i + 1 < static_cast<int>(flourish.size()); ++i) {
        const auto handleAt = [&](int k) -> Point {
            constexpr double reach = 0.19;
            return {(pointAt(k + 1).x - pointAt(k - 1).x) * reach, (pointAt(k + 1).y - pointAt(k - 1).y) * reach};
        };
        const Point from = pointAt(i);
        const Point to = pointAt(i + 1);
        const Curve whole = {from,
                             {from.x + handleAt(i).x, from.y + handleAt(i).y},
                             {to.x - handleAt(i + 1).x, to.y - handleAt(i + 1).y},
                             to};
        for (int k = 0; k < pieces; ++k) {
            const Curve part = whole.part(static_cast<double>(k) / pieces, (k + 1.0) / pieces);
            const double begin = length;
            length += distance(part.a, part.d);
            strokes.push_back({part, begin, length});
        }
    }
    for (Stroke &stroke : strokes)
        for (double *const time : {&stroke.begin, &stroke.end})
            *time = mix(writingBegin, writingEnd, mix(*time / length, easeInOut(*time / length), 0.35));
    return strokes;
}

/// Ink that has spread so far at one time.
struct Spread {
    q_ulong time; ///< of 65536 for the whole transition
    Point middle;
    int radius;
};

/// Numbers on a grid.
class Map {
public:
    Map(int ownColumns, int ownRows)
        : columns(ownColumns), rows(ownRows),
          values(static_cast<std::size_t>(ownColumns) * static_cast<std::size_t>(ownRows)) {}

    int width() const { return columns; }
    int height() const { return rows; }

    /// Beyond the grid its edges go on.
    double &at(int x, int y) { return values[index(x, y)]; }
    double at(int x, int y) const { return values[index(x, y)]; }

    /// Between the places; whole coordinates are the middles of cells.
    double between(double x, double y) const {
        const double left = std::floor(x);
        const double top = std::floor(y);
        const auto column = static_cast<int>(left);
        const auto row = static_cast<int>(top);
        return mix(mix(at(column, row), at(column + 1, row), x - left),
                   mix(at(column, row + 1), at(column + 1, row + 1), x - left), y - top);
    }

    /// Each value becomes what `combine` makes of it and those up to `reach` beside it in its row, and then likewise in
    /// its column.
    template <class Combine>
    void filter(int reach, Combine combine) {
        for (const bool isRow : {true, false}) {
            const Map before = *this;
            std::vector<double> around(static_cast<std::size_t>(2 * reach + 1));
            for (int y = 0; y < rows; ++y)
                for (int x = 0; x < columns; ++x) {
                    for (int i = -reach; i <= reach; ++i)
                        around[static_cast<std::size_t>(i + reach)] = isRow ? before.at(x + i, y) : before.at(x, y + i);
                    at(x, y) = combine(around);
                }
        }
    }

    void smooth(int times) {
        for (int i = 0; i < times; ++i)
            filter(1, [](const std::vector<double> &three) { return (three[0] + three[1] + three[2]) / 3; });
    }

private:
    std::size_t index(int x, int y) const {
        return static_cast<std::size_t>(std::clamp(y, 0, rows - 1)) * static_cast<std::size_t>(columns) +
               static_cast<std::size_t>(std::clamp(x, 0, columns - 1));
    }

    int columns;
    int rows;
    std::vector<double> values;
};

/// When the ink arrives at each pixel of the frame, in 1/65536 of the transition: where the nib is led over it, and
/// where it spreads by itself.
///
/// Both are worked out by drawing with the time for a colour: what comes later first, so that what comes earlier covers
/// it. Around the frame there is room for the ends of the flourish.
class Paper {
public:
    static constexpr double wholeTime = 65536;

    void prepare(int width, int height) {
        const auto size = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
        written.reserve(size);
        coverage.reserve(size);
        bled.reserve(size);
        const double scale = std::max(width / 1280.0, height / 720.0);
        write(width, height, std::max(scale, 1.0));
        bleed(width, height, std::max(2 * scale, 1.0));
    }

    // Row by row.
    std::vector<std::uint16_t> written;
    std::vector<std::uint8_t> coverage; ///< how much of the pixel the nib has been on
    std::vector<std::uint16_t> bled;

private:
    /// A drawing of the frame, one to `grain` of the frame's pixels, with a border.
    struct Sheet {
        Sheet(int width, int height, double ownGrain)
            : grain(ownGrain), unit(unitOf(width, height) / grain), columns(static_cast<int>(width / grain) + 2),
              rows(static_cast<int>(height / grain) + 2), border(columns / 5 + 8),
              canvas(columns + 2 * border, rows + 2 * border) {}

        q_ulong at(int x, int y) const { return *canvas.surface().at(x + border, y + border); }

        double grain;
        double unit; ///< pixels of the sheet to one of a frame of 1280 by 720
        int columns;
        int rows;
        int border;
        Canvas canvas;
    };

    static q_ulong inkTime(double time) { return static_cast<q_ulong>(time * wholeTime); }

    static std::uint16_t timeOf(double time) {
        return static_cast<std::uint16_t>(std::clamp(time, 0.0, wholeTime - 1));
    }

    /// Takes what `valueAt` the places of a sheet for each pixel of the frame.
    template <class Value, class ValueAt>
    static void stretchOver(int width, int height, double grain, std::vector<Value> &values, ValueAt valueAt) {
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                values.push_back(static_cast<Value>(valueAt((x + 0.5) / grain - 0.5, (y + 0.5) / grain - 0.5)));
    }

    /// The strokes of the nib.
    void write(int width, int height, double grain) {
        const Sheet sheet(width, height, grain);
        fill(sheet.canvas, 0);
        const std::vector<Stroke> strokes = strokesOver(width / grain, height / grain);
        // The ink flows from under the nib. The colour 0 stands for dry paper.
        for (auto stroke = strokes.rbegin(); stroke != strokes.rend(); ++stroke)
            drawStroke(sheet, stroke->curve, inkTime(stroke->begin - 0.006) + 1);

        Map inked(sheet.columns, sheet.rows);
        Map times(sheet.columns, sheet.rows);
        for (int y = 0; y < sheet.rows; ++y)
            for (int x = 0; x < sheet.columns; ++x) {
                const q_ulong colour = sheet.at(x, y);
                inked.at(x, y) = colour == 0 ? 0 : 1;
                times.at(x, y) = colour == 0 ? 0 : static_cast<double>(colour - 1);
            }
        // Means over what is inked alone, and an edge about a pixel wide where half of the surroundings are.
        inked.smooth(2);
        times.smooth(2);
        stretchOver(width, height, grain, written, [&](double x, double y) {
            const double share = inked.between(x, y);
            return timeOf(share > 0 ? times.between(x, y) / share : 0);
        });
        stretchOver(width, height, grain, coverage,
                    [&](double x, double y) { return 255 * clampUnit(2.5 * (inked.between(x, y) - 0.5) + 0.5); });
    }

    /// The nib is a slanted edge of some thickness: its stroke is the same curve many times, one beside the other.
    static void drawStroke(const Sheet &sheet, const Curve &curve, q_ulong colour) {
        const Surface surface = sheet.canvas;
        tagRECT clip = surface.rect();
        const int reach = std::max(rounded(34 * sheet.unit), 1);
        const int thickness = std::max(rounded(7 * sheet.unit), 1);
        const auto &[a, b, c, d] = curve;
        for (int i = -2 * reach; i <= 2 * reach; ++i)
            for (int k = 0; k < thickness; ++k) {
                const int right = sheet.border + (i >> 1) + (i & 1) + k / 2 + k % 2;
                const int down = sheet.border - (i >> 1) + k / 2;
                iBesierLine(surface.pixels, rounded(a.x) + right, rounded(a.y) + down, rounded(b.x) + right,
                            rounded(b.y) + down, rounded(c.x) + right, rounded(c.y) + down, rounded(d.x) + right,
                            rounded(d.y) + down, colour, &clip, surface.pitch);
            }
    }

    /// Ink spreads from where the nib has been, slowly at first.
    void bleed(int width, int height, double grain) {
        const Sheet sheet(width, height, grain);
        const int farthest = std::max(sheet.columns, sheet.rows) / 2;
        const int first = std::max(rounded(34 * sheet.unit) / 3, 1);
        std::vector<Spread> spreads;
        for (const Stroke &stroke : strokesOver(width / grain, height / grain))
            for (int radius = first; radius < farthest; radius += 1 + radius / 24) {
                const double share =
                    static_cast<double>(radius - first) / std::max(250 * sheet.unit, sheet.columns / 8.0);
                const double delay = 0.13 + 0.26 * std::sqrt(share);
                spreads.push_back({inkTime(stroke.end + delay), stroke.curve.d, radius});
                if (delay > 0.45)
                    break;
            }
        std::stable_sort(spreads.begin(), spreads.end(),
                         [](const Spread &a, const Spread &b) { return a.time > b.time; });
        const Surface surface = sheet.canvas;
        tagRECT clip = surface.rect();
        fill(surface, inkTime(1.2));
        for (const Spread &spread : spreads)
            iFill_Circle_Safe(surface.pixels, &clip, surface.pitch, rounded(spread.middle.x) + sheet.border,
                              rounded(spread.middle.y) + sheet.border, spread.radius, spread.time);

        Map times(sheet.columns, sheet.rows);
        for (int y = 0; y < sheet.rows; ++y)
            for (int x = 0; x < sheet.columns; ++x)
                times.at(x, y) = static_cast<double>(sheet.at(x, y));
        times.smooth(2);
        roughen(times, sheet.unit);
        // Islands that would stay dry for long are inked with what is around them.
        const int island = std::max(rounded(16 * sheet.unit), 1);
        times.filter(island, [](const std::vector<double> &row) { return *std::min_element(row.begin(), row.end()); });
        times.filter(island, [](const std::vector<double> &row) { return *std::max_element(row.begin(), row.end()); });
        times.smooth(4);
        settle(times);
        stretchOver(width, height, grain, bled, [&](double x, double y) { return timeOf(times.between(x, y)); });
    }

    /// Paper does not take ink evenly: its fibres hurry it or hold it up.
    static void roughen(Map &times, double unit) {
        for (const double size : {64.0, 22.0, 8.0}) {
            const double cell = std::max(size * unit, 1.0);
            const auto cells = static_cast<int>(times.width() / cell) + 2;
            for (int y = 0; y < times.height(); ++y)
                for (int x = 0; x < times.width(); ++x)
                    times.at(x, y) += roughness(x / cell, y / cell, cells) * wholeTime * (0.004 + 0.0002 * size);
        }
    }

    /// From -1 to 1, running smoothly from one lattice point to the next.
    static double roughness(double x, double y, int cells) {
        const auto column = static_cast<int>(x);
        const auto row = static_cast<int>(y);
        const auto valueAt = [=](int right, int down) {
            return Random(seedOf(7, (row + down) * cells + column + right)).between(-1, 1);
        };
        const double across = easeInOut(x - column);
        return mix(mix(valueAt(0, 0), valueAt(1, 0), across), mix(valueAt(0, 1), valueAt(1, 1), across),
                   easeInOut(y - row));
    }

    /// The last pixels take ink in time.
    static void settle(Map &times) {
        double last = writingEnd * wholeTime + 1;
        for (int y = 0; y < times.height(); ++y)
            for (int x = 0; x < times.width(); ++x)
                last = std::max(last, times.at(x, y));
        const double begun = writingEnd * wholeTime;
        const double room = allInked * wholeTime - begun;
        for (int y = 0; y < times.height(); ++y)
            for (int x = 0; x < times.width(); ++x)
                if (double &time = times.at(x, y); time > begun)
                    time = begun + (time - begun) * std::min(room / (last - begun), 1.0);
    }
};

/// A fountain pen, with its point where it touches the paper.
class PenSprite {
public:
    void draw(double frameUnit) {
        unit = frameUnit;
        fine = unit > 1.2 ? 2 : 4;
        const Canvas colours(columnsOf(fine), rowsOf(fine));
        const Canvas shape(columnsOf(fine), rowsOf(fine));
        // A little fatter below, so that the edges mix with the pen's own colour.
        for (const Section &section : sections) {
            drawSection(colours.surface(), section, 3, [&](double) { return section.dark; });
            drawSection(shape.surface(), section, 0, [](double) { return q_ulong{0xFFFFFF}; });
        }
        for (const Section &section : sections)
            drawSection(colours.surface(), section, 0, [&](double aside) { return section.colourAt(aside); });
        drawSlit(colours.surface());

        pen = reduced(colours.surface(), columnsOf(1), rowsOf(1));
        shadow = reduced(shape.surface(), columnsOf(1), rowsOf(1));
        putAlpha(pen.surface(), shadow.surface(), 1, 0xFFFFFF);
        blur(shadow, rounded(7 * unit));
        putAlpha(shadow.surface(), shadow.surface(), 0.45, 0);
    }

    void lay(const Surface &out, Point point, double lift) const {
        const auto layAt = [&](const Canvas &sprite, double x, double y) {
            show::lay(out, sprite, rounded(x - before * unit), rounded(y - above * unit));
        };
        layAt(shadow, point.x + (7 + lift) * unit, point.y + (9 + lift) * unit);
        layAt(pen, point.x, point.y);
    }

private:
    /// A length of the pen, as it is lit from the upper left. Lengths are pixels of a frame of 1280 by 720.
    struct Section {
        double begin;
        double end;
        double halfBegin; ///< half its width where it begins
        double halfEnd;
        q_ulong dark;
        q_ulong own;
        q_ulong shine;

        q_ulong colourAt(double aside) const {
            const double lit = clampUnit(1 - std::abs(aside + 0.25) / 0.9);
            const double glint = clampUnit(1 - std::abs(aside + 0.38) / 0.2);
            return mixColours(mixColours(dark, own, lit), shine, glint * glint);
        }
    };

    static constexpr q_ulong darkGold = 0x6A4312;
    static constexpr q_ulong gold = 0xE9B64C;
    static constexpr q_ulong lightGold = 0xFFF6CC;
    static constexpr std::array<Section, 10> sections = {{{0, 5, 1.5, 2.2, darkGold, gold, lightGold},
                                                          {5, 34, 2.2, 9, darkGold, gold, lightGold},
                                                          {34, 62, 9, 16, darkGold, gold, lightGold},
                                                          {62, 76, 16, 15, darkGold, gold, lightGold},
                                                          {76, 92, 13, 13.5, 0x0A0B14, 0x272A3C, 0xA8B0D0},
                                                          {92, 170, 13.5, 18, 0x0A0B14, 0x272A3C, 0xA8B0D0},
                                                          {170, 177, 20, 20, darkGold, gold, lightGold},
                                                          {177, 420, 20, 23, 0x070B28, 0x1E2E78, 0xB4C4FF},
                                                          {420, 428, 24, 24, darkGold, gold, lightGold},
                                                          {428, 470, 23, 14, 0x070B28, 0x1E2E78, 0xB4C4FF}}};

    // The sprite's extent around the point.
    static constexpr double before = 26;
    static constexpr double above = 400;
    static constexpr double behind = 344;
    static constexpr double below = 24;
    static constexpr double slant = 0.107; // of the pen against the upright, in turns

    int columnsOf(int scale) const { return std::max(rounded((before + behind) * unit), 1) * scale; }
    int rowsOf(int scale) const { return std::max(rounded((above + below) * unit), 1) * scale; }

    tagPOINT place(double along, double aside) const {
        const double x = before + along * sineOf(slant) + aside * cosineOf(slant);
        const double y = above - along * cosineOf(slant) + aside * sineOf(slant);
        return pixelUnder({x * unit * fine, y * unit * fine});
    }

    template <class ColourAt>
    void drawSection(const Surface &surface, const Section &section, double fatter, ColourAt colourAt) const {
        constexpr int strips = 28;
        tagRECT clip = surface.rect();
        for (int i = 0; i < strips; ++i) {
            const double from = 2.0 * i / strips - 1;
            const double to = 2.0 * (i + 1) / strips - 1;
            tagPOINT corners[] = {place(section.begin - fatter, from * (section.halfBegin + fatter)),
                                  place(section.begin - fatter, to * (section.halfBegin + fatter)),
                                  place(section.end + fatter, to * (section.halfEnd + fatter)),
                                  place(section.end + fatter, from * (section.halfEnd + fatter))};
            q_ulong colour = colourAt((from + to) / 2);
            Rect_Safe(surface.pixels, &clip, surface.pitch, &corners[0], &corners[1], &corners[2], &corners[3],
                      &colour);
        }
    }

    /// The nib's slit, with the hole at its end.
    void drawSlit(const Surface &surface) const {
        tagRECT clip = surface.rect();
        q_ulong ink = 0x2A1A08;
        tagPOINT corners[] = {place(4, -0.5), place(4, 0.5), place(46, 0.9), place(46, -0.9)};
        Rect_Safe(surface.pixels, &clip, surface.pitch, &corners[0], &corners[1], &corners[2], &corners[3], &ink);
        const tagPOINT hole = place(48, 0);
        iFill_Circle_Safe(surface.pixels, &clip, surface.pitch, static_cast<int>(hole.x), static_cast<int>(hole.y),
                          rounded(3 * unit * fine), ink);
    }

    /// Takes the blue of `shape` for the top byte, and of the colour what `mask` lets pass.
    static void putAlpha(const Surface &sprite, const Surface &shape, double strength, q_ulong mask) {
        const auto factor = static_cast<q_ulong>(strength * 256);
        for (int y = 0; y < sprite.height; ++y)
            for (int x = 0; x < sprite.width; ++x)
                *sprite.at(x, y) = ((*shape.at(x, y) & 0xFF) * factor >> 8) << 24 | (*sprite.at(x, y) & mask);
    }

    double unit = 1;
    int fine = 1; ///< the pen is drawn that much larger
    Canvas pen;
    Canvas shadow;
};

class Pen : public Effect {
    void prepare(int width, int height) override {
        strokes = strokesOver(width, height);
        paper.prepare(width, height);
        unit = unitOf(width, height);
        sprite.draw(unit);
        for (std::size_t i = 0; i < wetness.size(); ++i) {
            const double wet = 1 - static_cast<double>(i) / static_cast<double>(wetness.size());
            wetness[i] = 0.92 * wet * wet * wet;
        }
    }

    void render(Stage &stage, const Surface &out, const Moment &moment) const override {
        const Stage::Plane inked = stage.plane();
        drawShot(stage, out, moment.a);
        drawShot(stage, inked, moment.b);
        takeInk(inked, moment.t);

        // The blit leaves out the last column and row of odd sizes; beyond the frame it is clipped.
        const int width = out.width + (out.width & 1);
        const int height = out.height + (out.height & 1);
        tagRECT rect = {0, 0, width, height};
        iBltFast32SafeAlpha_Channel(out.pixels, inked->pixels, width / 2, height / 2, &rect, out.pitch, inked->pitch,
                                    out.width, out.height);
        // Whole pixels were copied with their opacity.
        clearOpacity(out);
        if (moment.t < writingEnd + 0.05)
            drawPen(out, moment.t);
    }

    /// Gives the pixels their opacity, and those on which the ink is wet its colour.
    void takeInk(const Surface &picture, double t) const {
        constexpr q_ulong ink = 0x161A4A;
        constexpr auto drying = static_cast<int>(0.10 * Paper::wholeTime);
        constexpr double arrival = 0.006 * Paper::wholeTime;
        const auto now = static_cast<int>(t * Paper::wholeTime);
        for (int y = 0; y < picture.height; ++y) {
            q_ulong *const row = picture.at(0, y);
            const std::size_t first = static_cast<std::size_t>(y) * static_cast<std::size_t>(picture.width);
            const std::size_t below = y + 1 < picture.height ? static_cast<std::size_t>(picture.width) : 0;
            for (int x = 0; x < picture.width; ++x) {
                const std::size_t at = first + static_cast<std::size_t>(x);
                const int bledAge = now - paper.bled[at];
                if (bledAge >= drying) {
                    row[x] |= 0xFF000000;
                    continue;
                }
                const int writtenAge = now - paper.written[at];
                // The front is no sharper than the pixels are fine.
                const int beside = std::abs(paper.bled[at + (x + 1 < picture.width ? 1 : 0)] - paper.bled[at]);
                const int under = std::abs(paper.bled[at + below] - paper.bled[at]);
                const double front = std::max<double>(arrival, 1.4 * std::max(beside, under));
                const double byNib = clampUnit(writtenAge / arrival) * paper.coverage[at] / 255;
                const double byItself = (1 - byNib) * easeInOut(clampUnit(bledAge / front));
                const double opacity = byNib + byItself;
                if (opacity * 255 < 1) {
                    row[x] = 0;
                    continue;
                }
                const auto wetAt = [&](int age) {
                    return age >= drying
                               ? 0
                               : wetness[static_cast<std::size_t>(std::max(age, 0)) * wetness.size() / drying];
                };
                const double wet = (byNib * wetAt(writtenAge) + byItself * wetAt(bledAge)) / opacity;
                row[x] = opacityOf(255 * opacity) | mixColours(row[x], ink, wet);
            }
        }
    }

    void drawPen(const Surface &out, double t) const {
        Point point = strokes.front().curve.a;
        double lift = 0;
        if (t < writingBegin) {
            // It comes in from the left, above the paper.
            lift = 60 * (1 - easeOut(t / writingBegin));
            point.x -= lift * 9 * unit;
            point.y -= lift * 2 * unit;
        }
        for (const Stroke &stroke : strokes)
            if (t >= stroke.begin)
                point = stroke.curve.at(stretch(t, stroke.begin, stroke.end));
        sprite.lay(out, point, lift);
        const double twinkle = 0.5 + 0.5 * sineOf(9 * t);
        star(out, rounded(point.x + 14 * unit), rounded(point.y - 30 * unit), rounded(mix(16, 30, twinkle) * unit),
             0xFFF4D0, 40 * twinkle);
    }

    std::vector<Stroke> strokes;
    Paper paper;
    double unit = 1;
    PenSprite sprite;
    std::array<double, 512> wetness = {}; ///< by age
};

const Registered<Pen> registered("pen", Effect::Kind::transition, Use::inTurn,
                                 "a pen writes a flourish whose ink is the next photograph");

} // namespace

} // namespace show
