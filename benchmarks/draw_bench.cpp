#include "plain/blended_lines.h"
#include "plain/bubbles.h"
#include "plain/round_shapes.h"
#include "plain/stars.h"
#include "support/job.h"
#include "support/row.h"

#include <algorithm>
#include <vector>

namespace bench {
namespace {

using test::Surface;

using Line = void (*)(q_ulong *, tagRECT *, int, int, int, int, int, q_ulong, int);

/// A member of the family, and the second computation.
struct Member {
    const char *name;
    Line draw;
    Line compute;
};

const Member members[] = {
    {"iLine_AntiAliasing", iLine_AntiAliasing, plain::iLine_AntiAliasing},
    {"iLine_AntiAliasing_Alpha", iLine_AntiAliasing_Alpha, plain::iLine_AntiAliasing_Alpha},
    {"iLine_AntiAliasing_Add", iLine_AntiAliasing_Add, plain::iLine_AntiAliasing_Add},
    {"iLine_AntiAliasing_Max", iLine_AntiAliasing_Max, plain::iLine_AntiAliasing_Max},
    {"iLine_AntiAliasing_AddSome", iLine_AntiAliasing_AddSome, plain::iLine_AntiAliasing_AddSome},
};

struct Ends {
    int x1;
    int y1;
    int x2;
    int y2;
};

/// Ten thousand lines of length 10 to 300, all inside the picture.
Job lineJob(const Member &member, int width) {
    struct Coloured {
        Ends ends;
        q_ulong colour;
    };
    const Surface picture = noise(1024, 768);
    test::Random random(1);
    std::vector<Coloured> lines;
    while (lines.size() < 10000) {
        Ends ends;
        ends.x1 = random.between(0, picture.width() - 1);
        ends.y1 = random.between(0, picture.height() - 1);
        ends.x2 = ends.x1 + random.between(-300, 300);
        ends.y2 = ends.y1 + random.between(-300, 300);
        const int dx = ends.x2 - ends.x1;
        const int dy = ends.y2 - ends.y1;
        const int square = dx * dx + dy * dy;
        if (plain::contains(picture.rect(), ends.x2, ends.y2) && square >= 10 * 10 && square <= 300 * 300)
            lines.push_back({ends, random.word() & 0xFFFFFF});
    }
    return drawing(
        picture,
        [=](Surface &dst) {
            tagRECT clip = dst.rect();
            for (const Coloured &line : lines)
                member.draw(dst.pixels(), &clip, dst.pitch(), line.ends.x1, line.ends.y1, line.ends.x2, line.ends.y2,
                            line.colour, width);
        },
        [=](Surface &dst) {
            tagRECT clip = dst.rect();
            for (const Coloured &line : lines)
                member.compute(dst.pixels(), &clip, dst.pitch(), line.ends.x1, line.ends.y1, line.ends.x2, line.ends.y2,
                               line.colour, width);
        },
        static_cast<double>(lines.size()), uncounted);
}

struct Figure {
    int x;
    int y;
    int radius;
    q_ulong colour;
};

/// A function that draws round figures, and the second computation.
struct Shape {
    const char *name;
    const char *figure;
    bool solid; ///< draws the whole disc, so that its pixels can be counted
    void (*draw)(Surface &, tagRECT *clip, const Figure &);
    void (*compute)(Surface &, tagRECT *clip, const Figure &);
};

constexpr int thickness = 3;
constexpr q_ulong intensity = 100;

#define SHAPE(name, figure, solid, ...)                                                                                \
    {                                                                                                                  \
#name, figure, solid,                                                                                          \
            []([[maybe_unused]] Surface & s, [[maybe_unused]] tagRECT * clip,                                          \
               const Figure &f) { name(__VA_ARGS__); },                                                                \
                                                     []([[maybe_unused]] Surface & s, [[maybe_unused]] tagRECT * clip, \
                                                        const Figure &f) { plain::name(__VA_ARGS__); }                 \
    }

constexpr Shape shapes[] = {
    SHAPE(Draw_Circle_FillInside, "circles", true, s.pixels(), s.pitch(), f.x, f.y, f.radius, f.colour),
    SHAPE(Draw_Circle_NoFillInside, "circles", false, s.pixels(), s.pitch(), f.x, f.y, f.radius, thickness, f.colour),
    SHAPE(iFill_Circle_Safe, "circles", true, s.pixels(), clip, s.pitch(), f.x, f.y, f.radius, f.colour),
    SHAPE(iFill_Circle_Alpha, "circles", true, s.pixels(), clip, s.pitch(), f.x, f.y, f.radius, f.colour, 100),
    SHAPE(Draw_Bubble_Circle, "circles", true, s.pixels(), clip, s.pitch(), f.x, f.y, f.radius, f.colour),
    SHAPE(Draw_Metal_Circle, "circles", true, s.pixels(), s.pitch(), f.x, f.y, f.radius, f.colour),
    SHAPE(Draw_Anti_Aliasing_Circle_NoFillInside, "circles", false, s.pixels(), s.pitch(), f.x, f.y, f.radius,
          thickness, f.colour),
    SHAPE(Draw_Ring, "rings", false, s.pixels(), s.pitch(), f.x, f.y, f.radius, f.colour, intensity),
    SHAPE(Draw_Ring_Safe, "rings", false, s.pixels(), s.pitch(), clip, f.x, f.y, f.radius, thickness, f.colour),
    SHAPE(Draw_Star_Type1, "stars", true, s.pixels(), s.pitch(), f.x, f.y, f.radius, f.colour, intensity),
    SHAPE(Draw_Star_Type1_Safe, "stars", true, s.pixels(), s.pitch(), clip, f.x, f.y, f.radius, f.colour, intensity),
    SHAPE(Draw_Star_Type2, "stars", true, s.pixels(), s.pitch(), f.x, f.y, f.radius, f.colour, intensity),
    SHAPE(Draw_Star_Type3, "stars", false, s.pixels(), s.pitch(), f.x, f.y, f.radius, f.colour, intensity),
    SHAPE(Draw_Light, "lights", true, s.pixels(), s.pitch(), f.x, f.y, f.radius, f.colour, intensity),
    SHAPE(Draw_Light_Safe, "lights", true, s.pixels(), s.pitch(), clip, f.x, f.y, f.radius, f.colour, intensity),
    SHAPE(Draw_Circle_Light, "lights", true, s.pixels(), s.pitch(), f.x, f.y, f.radius, 0x40, 0x80, 0xC0),
    SHAPE(Draw_3DBall, "balls", true, s.pixels(), s.pitch(), f.x, f.y, f.radius, f.colour, 0),
    SHAPE(Draw_3DBall_Safe, "balls", true, s.pixels(), s.pitch(), clip, f.x, f.y, f.radius, f.colour, 0),
};

#undef SHAPE

/// Figures whose radius is within limits; those that reach furthest have 2 * `thickness` pixels around them.
std::vector<Figure> anyFigures(int count, int least, int most, const Surface &picture) {
    test::Random random(2);
    std::vector<Figure> figures;
    for (int i = 0; i < count; ++i) {
        const int radius = random.between(least, most);
        const int reach = radius + 2 * thickness;
        const int x = random.between(reach, picture.width() - 1 - reach);
        const int y = random.between(reach, picture.height() - 1 - reach);
        figures.push_back({x, y, radius, random.word() & 0xFFFFFF});
    }
    return figures;
}

double discPixels(const std::vector<Figure> &figures) {
    double pixels = 0;
    for (const Figure &f : figures)
        for (int dy = -f.radius; dy <= f.radius; ++dy)
            for (int dx = -f.radius; dx <= f.radius; ++dx)
                pixels += dx * dx + dy * dy <= f.radius * f.radius;
    return pixels;
}

Job shapeJob(const Shape &shape) {
    const Surface picture = noise(400, 300);
    const std::vector<Figure> figures = anyFigures(200, 5, 60, picture);
    return drawing(
        picture,
        [=](Surface &dst) {
            tagRECT clip = dst.rect();
            for (const Figure &figure : figures)
                shape.draw(dst, &clip, figure);
        },
        [=](Surface &dst) {
            tagRECT clip = dst.rect();
            for (const Figure &figure : figures)
                shape.compute(dst, &clip, figure);
        },
        static_cast<double>(figures.size()), shape.solid ? discPixels(figures) : uncounted);
}

enum class Bubble { soft, old, ball };

Job bubbleJob(Bubble kind) {
    constexpr int resourceSize = 200;
    const Surface picture = noise(640, 480);
    const int resourcePitch = kind == Bubble::old ? picture.pitch() : resourceSize;
    std::vector<q_ulong> resource(static_cast<std::size_t>(resourcePitch * resourceSize));
    MakeBubbleResource(resource.data(), resourcePitch, 0, 0, resourceSize, 1);
    const std::vector<Figure> figures = anyFigures(40, 20, 80, picture);
    auto drawAll = [=, scratch = std::vector<q_ulong>(160 * 160)](Surface &dst, auto ball, auto glass) mutable {
        for (const Figure &f : figures) {
            if (kind == Bubble::ball)
                ball(dst.pixels(), dst.pitch(), f.x, f.y, 2 * f.radius, resource.data(), resourceSize, f.colour,
                     dst.width(), dst.height());
            else
                glass(dst.pixels(), scratch.data(), dst.pitch(), f.x, f.y, 2 * f.radius, resource.data(), resourceSize,
                      f.colour, dst.width(), dst.height());
        }
    };
    return drawing(
        picture,
        [=](Surface &dst) mutable {
            drawAll(dst, DrawReal3DBall, kind == Bubble::soft ? DrawRealBubble : DrawRealBubbleOld);
        },
        [=](Surface &dst) mutable {
            drawAll(dst, plain::DrawReal3DBall,
                    kind == Bubble::soft ? plain::DrawRealBubble : plain::DrawRealBubbleOld);
        },
        static_cast<double>(figures.size()), discPixels(figures));
}

using MakeResource = void (*)(q_ulong *, int, int, int, int, int);

Job resourceJob(MakeResource make, MakeResource compute) {
    constexpr int size = 160;
    return drawing(
        Surface(size, size), [=](Surface &dst) { make(dst.pixels(), dst.pitch(), 0, 0, size, 1); },
        [=](Surface &dst) { compute(dst.pixels(), dst.pitch(), 0, 0, size, 1); });
}

} // namespace

void addDrawRows() {
    std::vector<JobRow> rows;
    for (const Member &member : members)
        for (const int width : {1, 3})
            rows.push_back({member.name, "10,000 of width " + std::to_string(width), "lines",
                            [member, width] { return lineJob(member, width); }});
    for (const Shape &shape : shapes)
        rows.push_back({shape.name, "200 of radius 5 to 60", shape.figure, [shape] { return shapeJob(shape); }});
    struct Drawing {
        const char *name;
        Bubble kind;
    };
    for (const Drawing &bubble : {Drawing{"DrawRealBubble", Bubble::soft},
                                  {"DrawRealBubbleOld", Bubble::old},
                                  {"DrawReal3DBall", Bubble::ball}})
        rows.push_back(
            {bubble.name, "40 of size 40 to 160", "bubbles", [kind = bubble.kind] { return bubbleJob(kind); }});
    rows.push_back({"MakeBubbleResource", "of size 160", "",
                    [] { return resourceJob(MakeBubbleResource, plain::MakeBubbleResource); }});
    rows.push_back({"MakeBubbleResource2", "of size 160", "",
                    [] { return resourceJob(MakeBubbleResource2, plain::MakeBubbleResource2); }});
    addJobs(rows);
}

} // namespace bench
