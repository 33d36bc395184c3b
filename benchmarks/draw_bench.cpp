#include "draw/naive_bubbles.h"
#include "draw/naive_lines.h"
#include "draw/naive_shapes.h"
#include "support/job.h"
#include "support/row.h"

#include <algorithm>
#include <vector>

namespace bench {
namespace {

using naive::Number;
using test::Surface;

/// Ten thousand lines of length 10 to 300, all inside the picture.
Job lineJob(const naive::lines::Member &member, int width) {
    using naive::lines::Ends;
    struct Line {
        Ends ends;
        q_ulong colour;
    };
    const Surface picture = noise(1024, 768);
    test::Random random(1);
    std::vector<Line> lines;
    while (lines.size() < 10000) {
        Ends ends;
        ends.x1 = random.between(0, picture.width() - 1);
        ends.y1 = random.between(0, picture.height() - 1);
        ends.x2 = ends.x1 + random.between(-300, 300);
        ends.y2 = ends.y1 + random.between(-300, 300);
        const int dx = ends.x2 - ends.x1;
        const int dy = ends.y2 - ends.y1;
        const int square = dx * dx + dy * dy;
        if (naive::inside(picture.rect(), ends.x2, ends.y2) && square >= 10 * 10 && square <= 300 * 300)
            lines.push_back({ends, random.word() & 0xFFFFFF});
    }
    return drawing(
        picture,
        [=](Surface &dst) {
            tagRECT clip = dst.rect();
            for (const Line &line : lines)
                member.draw(dst.pixels(), &clip, dst.pitch(), line.ends.x1, line.ends.y1, line.ends.x2, line.ends.y2,
                            line.colour, width);
        },
        [=](Surface &dst) {
            for (const Line &line : lines)
                member.compute(dst, dst.rect(), line.ends, line.colour, width);
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
    void (*draw)(Surface &, tagRECT *clip, const Figure &);
    void (*compute)(Surface &, const tagRECT &clip, const Figure &);
    bool solid = true; ///< draws the whole disc, so that its pixels can be counted
};

constexpr int thickness = 3;
constexpr q_ulong intensity = 100;

template <class Value>
void naiveDisc(Surface &s, const tagRECT &clip, const Figure &f, Value value) {
    naive::shapes::naiveDisc(s, clip, f.x, f.y, f.radius, value);
}

constexpr Shape shapes[] = {
    {"Draw_Circle_FillInside", "circles",
     [](Surface &s, tagRECT *, const Figure &f) {
         Draw_Circle_FillInside(s.pixels(), s.pitch(), f.x, f.y, f.radius, f.colour);
     },
     [](Surface &s, const tagRECT &, const Figure &f) { naive::shapes::naiveFill(s, f.x, f.y, f.radius, f.colour); }},
    {"Draw_Circle_NoFillInside", "circles",
     [](Surface &s, tagRECT *, const Figure &f) {
         Draw_Circle_NoFillInside(s.pixels(), s.pitch(), f.x, f.y, f.radius, thickness, f.colour);
     },
     [](Surface &s, const tagRECT &, const Figure &f) {
         naive::shapes::naiveOutline(s, f.x, f.y, f.radius, thickness, f.colour);
     },
     false},
    {"iFill_Circle_Safe", "circles",
     [](Surface &s, tagRECT *clip, const Figure &f) {
         iFill_Circle_Safe(s.pixels(), clip, s.pitch(), f.x, f.y, f.radius, f.colour);
     },
     [](Surface &s, const tagRECT &clip, const Figure &f) {
         naiveDisc(s, clip, f, [&f](q_ulong, Number) { return f.colour; });
     }},
    {"iFill_Circle_Alpha", "circles",
     [](Surface &s, tagRECT *clip, const Figure &f) {
         iFill_Circle_Alpha(s.pixels(), clip, s.pitch(), f.x, f.y, f.radius, f.colour, 100);
     },
     [](Surface &s, const tagRECT &clip, const Figure &f) {
         naiveDisc(s, clip, f, [&f](q_ulong old, Number) { return naive::shapes::naiveAlpha(old, f.colour, 100); });
     }},
    {"Draw_Bubble_Circle", "circles",
     [](Surface &s, tagRECT *clip, const Figure &f) {
         Draw_Bubble_Circle(s.pixels(), clip, s.pitch(), f.x, f.y, f.radius, f.colour);
     },
     [](Surface &s, const tagRECT &clip, const Figure &f) {
         naiveDisc(s, clip, f, [&f](q_ulong old, Number square) {
             return naive::mixed(old, f.colour, naive::shapes::naiveShare(square, f.radius));
         });
     }},
    {"Draw_Metal_Circle", "circles",
     [](Surface &s, tagRECT *, const Figure &f) {
         Draw_Metal_Circle(s.pixels(), s.pitch(), f.x, f.y, f.radius, f.colour);
     },
     [](Surface &s, const tagRECT &clip, const Figure &f) {
         naiveDisc(s, clip, f,
                   [&f](q_ulong, Number square) { return naive::shapes::naiveMetal(square, f.radius, f.colour); });
     }},
    {"Draw_Anti_Aliasing_Circle_NoFillInside", "circles",
     [](Surface &s, tagRECT *, const Figure &f) {
         Draw_Anti_Aliasing_Circle_NoFillInside(s.pixels(), s.pitch(), f.x, f.y, f.radius, thickness, f.colour);
     },
     [](Surface &s, const tagRECT &, const Figure &f) {
         naive::shapes::naiveSoftCircle(s, f.x, f.y, f.radius, thickness, f.colour);
     },
     false},
    {"Draw_Ring", "rings",
     [](Surface &s, tagRECT *, const Figure &f) {
         Draw_Ring(s.pixels(), s.pitch(), f.x, f.y, f.radius, f.colour, intensity);
     },
     [](Surface &s, const tagRECT &, const Figure &f) {
         naive::shapes::naiveRing(s, f.x, f.y, f.radius, f.colour, intensity);
     },
     false},
    {"Draw_Ring_Safe", "rings",
     [](Surface &s, tagRECT *clip, const Figure &f) {
         Draw_Ring_Safe(s.pixels(), s.pitch(), clip, f.x, f.y, f.radius, thickness, f.colour);
     },
     [](Surface &s, const tagRECT &clip, const Figure &f) {
         naive::shapes::naiveRingSafe(s, clip, f.x, f.y, f.radius, thickness, f.colour);
     },
     false},
    {"Draw_Star_Type1", "stars",
     [](Surface &s, tagRECT *, const Figure &f) {
         Draw_Star_Type1(s.pixels(), s.pitch(), f.x, f.y, f.radius, f.colour, intensity);
     },
     [](Surface &s, const tagRECT &, const Figure &f) {
         naive::shapes::naiveType1(s, f.x, f.y, f.radius, f.colour, intensity, naive::shapes::anywhere);
     }},
    {"Draw_Star_Type1_Safe", "stars",
     [](Surface &s, tagRECT *clip, const Figure &f) {
         Draw_Star_Type1_Safe(s.pixels(), s.pitch(), clip, f.x, f.y, f.radius, f.colour, intensity);
     },
     [](Surface &s, const tagRECT &clip, const Figure &f) {
         naive::shapes::naiveType1Safe(s, clip, f.x, f.y, f.radius, f.colour, intensity);
     }},
    {"Draw_Star_Type2", "stars",
     [](Surface &s, tagRECT *, const Figure &f) {
         Draw_Star_Type2(s.pixels(), s.pitch(), f.x, f.y, f.radius, f.colour, intensity);
     },
     [](Surface &s, const tagRECT &, const Figure &f) {
         naive::shapes::naiveType2(s, f.x, f.y, f.radius, f.colour, intensity);
     }},
    {"Draw_Star_Type3", "stars",
     [](Surface &s, tagRECT *, const Figure &f) {
         Draw_Star_Type3(s.pixels(), s.pitch(), f.x, f.y, f.radius, f.colour, intensity);
     },
     [](Surface &s, const tagRECT &, const Figure &f) {
         naive::shapes::naiveType3(s, f.x, f.y, f.radius, f.colour, intensity);
     },
     false},
    {"Draw_Light", "lights",
     [](Surface &s, tagRECT *, const Figure &f) {
         Draw_Light(s.pixels(), s.pitch(), f.x, f.y, f.radius, f.colour, intensity);
     },
     [](Surface &s, const tagRECT &, const Figure &f) {
         naive::shapes::naiveLight(s, f.x, f.y, f.radius, f.colour, intensity, naive::shapes::anywhere);
     }},
    {"Draw_Light_Safe", "lights",
     [](Surface &s, tagRECT *clip, const Figure &f) {
         Draw_Light_Safe(s.pixels(), s.pitch(), clip, f.x, f.y, f.radius, f.colour, intensity);
     },
     [](Surface &s, const tagRECT &clip, const Figure &f) {
         naive::shapes::naiveLightSafe(s, clip, f.x, f.y, f.radius, f.colour, intensity);
     }},
    {"Draw_Circle_Light", "lights",
     [](Surface &s, tagRECT *, const Figure &f) {
         Draw_Circle_Light(s.pixels(), s.pitch(), f.x, f.y, f.radius, 0x40, 0x80, 0xC0);
     },
     [](Surface &s, const tagRECT &, const Figure &f) {
         naive::shapes::naiveCircleLight(s, f.x, f.y, f.radius, 0x40, 0x80, 0xC0);
     }},
    {"Draw_3DBall", "balls",
     [](Surface &s, tagRECT *, const Figure &f) {
         Draw_3DBall(s.pixels(), s.pitch(), f.x, f.y, f.radius, f.colour, 0);
     },
     [](Surface &s, const tagRECT &, const Figure &f) {
         naive::shapes::naiveBall(s, f.x, f.y, f.radius, f.colour, naive::shapes::anywhere);
     }},
    {"Draw_3DBall_Safe", "balls",
     [](Surface &s, tagRECT *clip, const Figure &f) {
         Draw_3DBall_Safe(s.pixels(), s.pitch(), clip, f.x, f.y, f.radius, f.colour, 0);
     },
     [](Surface &s, const tagRECT &clip, const Figure &f) {
         naive::shapes::naiveBallSafe(s, clip, f.x, f.y, f.radius, f.colour);
     }},
};

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
            for (const Figure &figure : figures)
                shape.compute(dst, dst.rect(), figure);
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
    return drawing(
        picture,
        [=, scratch = std::vector<q_ulong>(160 * 160)](Surface &dst) mutable {
            for (const Figure &f : figures) {
                if (kind == Bubble::ball)
                    DrawReal3DBall(dst.pixels(), dst.pitch(), f.x, f.y, 2 * f.radius, resource.data(), resourceSize,
                                   f.colour, dst.width(), dst.height());
                else
                    (kind == Bubble::soft ? DrawRealBubble : DrawRealBubbleOld)(
                        dst.pixels(), scratch.data(), dst.pitch(), f.x, f.y, 2 * f.radius, resource.data(),
                        resourceSize, f.colour, dst.width(), dst.height());
            }
        },
        [=](Surface &dst) {
            for (const Figure &f : figures) {
                const naive::bubbles::NaiveBubble bubble = {f.x,           f.y,          2 * f.radius, resource.data(),
                                                            resourcePitch, resourceSize, f.colour,     dst.width(),
                                                            dst.height()};
                if (kind == Bubble::ball)
                    naive::bubbles::naiveBall(dst, bubble);
                else
                    naive::bubbles::naiveGlass(dst, bubble, kind == Bubble::soft ? 18 : 16, kind == Bubble::soft);
            }
        },
        static_cast<double>(figures.size()), discPixels(figures));
}

using MakeResource = void (*)(q_ulong *, int, int, int, int, int);
using NaiveWord = q_ulong (*)(int, int, int, int);

Job resourceJob(MakeResource make, NaiveWord word) {
    constexpr int size = 160;
    return drawing(
        Surface(size, size), [=](Surface &dst) { make(dst.pixels(), dst.pitch(), 0, 0, size, 1); },
        [=](Surface &dst) {
            for (int y = 0; y < size; ++y)
                for (int x = 0; x < size; ++x)
                    dst.at(x, y) = word(x, y, size, 1);
        });
}

} // namespace

void addDrawRows() {
    std::vector<JobRow> rows;
    for (const naive::lines::Member &member : naive::lines::members)
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
                    [] { return resourceJob(MakeBubbleResource, naive::bubbles::naiveSphereWord); }});
    rows.push_back({"MakeBubbleResource2", "of size 160", "",
                    [] { return resourceJob(MakeBubbleResource2, naive::bubbles::naiveSpotsWord); }});
    addJobs(rows);
}

} // namespace bench
