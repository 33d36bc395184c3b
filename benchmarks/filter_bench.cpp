#include "filter/naive_box_blur.h"
#include "filter/naive_gaussian_blur.h"
#include "filter/naive_light_map.h"
#include "support/job.h"
#include "support/naive.h"
#include "support/row.h"

#include <algorithm>
#include <cmath>

namespace bench {
namespace {

/// (low * (4096 - t) + high * t) / 4096 in each channel; the sources have no top bytes.
q_ulong mix(q_ulong low, q_ulong high, int t) {
    return naive::weightedMean(low, 4096 - t, high, t, 4096);
}

/// A strip as high or wide as half the picture along a line that is not quite level, or not quite upright.
struct Edge {
    tagPOINT from;
    tagPOINT to;
    int width;
    bool steep;

    int rise() const { return static_cast<int>(steep ? to.x - from.x : to.y - from.y); }
    int run() const { return static_cast<int>(steep ? to.y - from.y : to.x - from.x); }

    /// Half the strip, measured along the columns (or rows, where it is steep).
    int band() const { return static_cast<int>(width / 2 / std::cos(std::atan2(std::abs(rise()), run()))); }
};

Edge levelEdge(const Scene &scene) {
    return {{0, scene.height * 3 / 8}, {scene.width, scene.height * 5 / 8}, scene.height / 2, false};
}

Edge steepEdge(const Scene &scene) {
    return {{scene.width * 5 / 8, 0}, {scene.width * 3 / 8, scene.height}, scene.height / 2, true};
}

void draw(Scene &scene, Edge edge) {
    tagRECT clip = {0, 0, scene.width, scene.height + 1}; // the row that a clip loses is one below the picture
    Edge_Transparency(scene.dst.pixels(), scene.picture.pixels(), scene.other.pixels(), &edge.from, &edge.to,
                      edge.width, scene.pitch, 0, 0, 0, &clip);
}

/// Positions along and across the line, whichever way it is walked.
q_ulong expected(const Scene &scene, const Edge &edge, int x, int y) {
    const int along = edge.steep ? y - static_cast<int>(edge.from.y) : x - static_cast<int>(edge.from.x);
    const int fixedPoint = static_cast<int>(edge.steep ? edge.from.x : edge.from.y);
    const int slope = (edge.rise() * 32768) / edge.run();
    const int start = (along * slope >> 15) - edge.band() + fixedPoint;
    const int step = (edge.steep ? x : y) - start;
    // The last step is left out of the walk by columns, and part of the walk by rows.
    if (step < 0 || step > 2 * edge.band() || (step == 2 * edge.band() && !edge.steep))
        return scene.before.at(x, y);
    const int ramp = 16777216 / (2 * edge.band());
    return mix(scene.picture.at(x, y), scene.other.at(x, y), step * ramp / 4096);
}

q_ulong expectedCircle(const Scene &scene, int x, int y) {
    const int dx = x - scene.width / 2;
    const int dy = y - scene.height / 2;
    const int radius = scene.height / 2;
    const int band = scene.height / 4;
    const int square = dx * dx + dy * dy;
    if (square >= (radius + band) * (radius + band))
        return scene.other.at(x, y);
    if (square <= (radius - band) * (radius - band))
        return scene.picture.at(x, y);
    const int distance = static_cast<int>(std::sqrt(square));
    return mix(scene.other.at(x, y), scene.picture.at(x, y),
               (radius + band - distance) * (134217728 / (2 * band)) >> 15);
}

using test::Surface;

struct Size {
    int width;
    int height;

    std::string work() const { return std::to_string(width) + " x " + std::to_string(height); }
};

constexpr Size blurred = {1024, 768};
constexpr Size fullFrame = {1920, 1080};

/// A job that brings a picture of noise to another.
template <class Draw, class Compute>
Job filtering(Size size, Draw draw, Compute compute) {
    const auto src = std::make_shared<Surface>(noise(size.width, size.height, 2));
    return drawing(
        noise(size.width, size.height), [=](Surface &dst) { draw(dst, *src); },
        [=](Surface &dst) { compute(dst, *src); });
}

/// `blurSize` or `sigma` as the library's functions take them.
template <class Blur, class Amount>
auto blurring(Blur blur, Amount amount) {
    return [=](Surface &dst, Surface &src) {
        blur(dst.pixels(), src.pixels(), amount, src.width(), src.height(), src.pitch());
    };
}

Job rectBlur(int radius) {
    return drawing(
        noise(blurred.width, blurred.height),
        [radius](Surface &dst) {
            tagRECT rect = dst.rect();
            Blur_Rect(dst.pixels(), &rect, dst.pitch(), radius);
        },
        [radius](Surface &dst) { ::naive::boxBlur::blurRect(dst, dst.rect(), radius); });
}

template <class Variant, class Amount>
Job naivelyChecked(const Variant &variant, Amount amount) {
    return filtering(blurred, blurring(variant.blur, amount),
                     [=](Surface &dst, Surface &src) { variant.naive(dst, src, amount, src.width(), src.height()); });
}

/// Ver_Blur() told column by column, down the whole column with running sums: what its walk along the rows is measured
/// against.
void boxColumnByColumn(Surface &dst, Surface &src, int blurSize) {
    const int pitch = src.pitch();
    const int length = src.height();
    const int forward = (blurSize + 1) / 2;
    std::vector<q_ulong> reciprocals = {0};
    while (static_cast<int>(reciprocals.size()) <= blurSize + 1)
        reciprocals.push_back(65536 / static_cast<q_ulong>(reciprocals.size()));
    for (int x = 0; x < src.width(); ++x) {
        const q_ulong *const in = src.pixels() + x;
        q_ulong *const out = dst.pixels() + x;
        q_ulong red = 0;
        q_ulong green = 0;
        q_ulong blue = 0;
        const auto move = [&](int y, q_ulong sign) {
            const q_ulong pixel = in[y * pitch];
            red += sign * (pixel >> 16 & 0xFF);
            green += sign * (pixel >> 8 & 0xFF);
            blue += sign * (pixel & 0xFF);
        };
        int first = 0; // of the window, which reaches up to, not including, `end`
        int end = 0;
        for (int y = 0; y < length; ++y) {
            while (end < std::min(y + forward + 1, length))
                move(end++, 1);
            while (first < y - blurSize / 2)
                move(first++, static_cast<q_ulong>(-1));
            const q_ulong reciprocal = reciprocals[static_cast<std::size_t>(end - first)];
            out[y * pitch] =
                (red * reciprocal & 0xFF0000) | (green * reciprocal >> 8 & 0xFF00) | blue * reciprocal >> 16;
        }
    }
}

/// Ver_GaussBlur() in the same way, tap by tap.
void gaussColumnByColumn(Surface &dst, Surface &src, float sigma) {
    const ::naive::gaussianBlur::Weights weights = ::naive::gaussianBlur::weightsOf(sigma);
    const int pitch = src.pitch();
    const int length = src.height();
    for (int x = 0; x < src.width(); ++x) {
        const q_ulong *const in = src.pixels() + x;
        const auto inside = [=](int y) { return in[y * pitch]; };
        const auto mirrored = [=](int y) { return in[(y < 0 ? -y : y < length ? y : 2 * length - 1 - y) * pitch]; };
        const auto meanAt = [&weights](int y, const auto &pixelAt) {
            // Red and blue side by side: a sum takes 16 bits.
            q_ulong redBlue = (pixelAt(y) & 0xFF00FF) * static_cast<q_ulong>(weights.centre);
            q_ulong green = (pixelAt(y) & 0xFF00) * static_cast<q_ulong>(weights.centre);
            for (int k = 1; k <= weights.radius; ++k) {
                const q_ulong before = pixelAt(y - k);
                const q_ulong behind = pixelAt(y + k);
                const auto weight = static_cast<q_ulong>(weights.side[k]);
                redBlue += ((before & 0xFF00FF) + (behind & 0xFF00FF)) * weight;
                green += ((before & 0xFF00) + (behind & 0xFF00)) * weight;
            }
            return (redBlue >> 8 & 0xFF00FF) | (green >> 8 & 0xFF00);
        };
        for (int y = 0; y < length; ++y) {
            const bool atEnd = y < weights.radius || y >= length - weights.radius;
            dst.pixels()[y * pitch + x] = atEnd ? meanAt(y, mirrored) : meanAt(y, inside);
        }
    }
}

/// A vertical pass on a full frame both ways, each checked by the other.
template <class Blur, class Amount>
void addVerticalRows(std::vector<JobRow> &rows, const std::string &name, Blur blur,
                     void (*columnByColumn)(Surface &, Surface &, Amount), Amount amount, const std::string &work) {
    const auto byColumns = [=](Surface &dst, Surface &src) { columnByColumn(dst, src, amount); };
    rows.push_back({name, fullFrame.work() + ", " + work, "",
                    [=] { return filtering(fullFrame, blurring(blur, amount), byColumns); }});
    rows.push_back({name + " column by column", fullFrame.work() + ", " + work, "",
                    [=] { return filtering(fullFrame, byColumns, blurring(blur, amount)); }});
}

/// An ellipse of 600 by 160 pixels, as wide as a line of large letters.
Surface anyShape() {
    Surface surface(640, 200);
    test::Random random(1);
    for (int y = 0; y < 200; ++y)
        for (int x = 0; x < 640; ++x) {
            const double dx = (x - 319.5) / 300;
            const double dy = (y - 99.5) / 80;
            surface.at(x, y) = dx * dx + dy * dy < 1 ? random.word() | 1 : 0;
        }
    return surface;
}

Job lightMap(const ::naive::lightMap::Settings &settings) {
    return drawing(
        anyShape(),
        [=](Surface &surface) {
            ::naive::lightMap::convert(surface.pixels(), surface.rect(), surface.pitch(), settings);
        },
        [=](Surface &surface) {
            ::naive::lightMap::naiveMap(surface.pixels(), surface.rect(), surface.pitch(), settings);
        });
}

/// The number of the first square ring around each pixel that has black on it, by steps to the eight neighbours: a
/// pixel's is one more than the least of them.
Surface ringNumbers(const Surface &shape) {
    Surface rings = shape;
    const auto take = [&rings](int x, int y, std::initializer_list<tagPOINT> neighbours) {
        if (rings.at(x, y) == 0)
            return;
        q_ulong least = 0xFFFF;
        for (const tagPOINT &offset : neighbours)
            least = std::min(least, rings.at(x + static_cast<int>(offset.x), y + static_cast<int>(offset.y)));
        rings.at(x, y) = std::min(rings.at(x, y), least + 1);
    };
    for (int y = 0; y < shape.height(); ++y)
        for (int x = 0; x < shape.width(); ++x)
            rings.at(x, y) = rings.at(x, y) == 0 ? 0 : 0xFFFF;
    for (int y = 0; y < shape.height(); ++y)
        for (int x = 0; x < shape.width(); ++x)
            take(x, y, {{-1, 0}, {-1, -1}, {0, -1}, {1, -1}});
    for (int y = shape.height() - 1; y >= 0; --y)
        for (int x = shape.width() - 1; x >= 0; --x)
            take(x, y, {{1, 0}, {1, 1}, {0, 1}, {-1, 1}});
    return rings;
}

/// The literal search of the light maps: for each pixel of the shape, ring after ring until black is found. The squared
/// distances are drawn.
Job ringSearch(bool withLimit) {
    const auto shape = std::make_shared<Surface>(anyShape());
    return drawing(
        Surface(shape->width(), shape->height()),
        [=](Surface &dst) {
            const int pitch = shape->pitch();
            const int blockWords = pitch * shape->height();
            for (int y = 0; y < shape->height(); ++y)
                for (int x = 0; x < shape->width(); ++x) {
                    if (shape->at(x, y) == 0)
                        continue;
                    int square = 0;
                    for (int ring = 1, goesOn = 1; goesOn; ++ring)
                        goesOn = withLimit ? FindNearBlackDistanceSquare(shape->pixels(), blockWords, y * pitch + x,
                                                                         pitch, ring, &square, 2000000)
                                           : FindNearBlackDistanceSquare(shape->pixels(), blockWords, y * pitch + x,
                                                                         pitch, ring, &square);
                    dst.at(x, y) = static_cast<q_ulong>(square);
                }
        },
        [=](Surface &dst) {
            const Surface rings = ringNumbers(*shape);
            const int pitch = shape->pitch();
            for (int y = 0; y < shape->height(); ++y)
                for (int x = 0; x < shape->width(); ++x) {
                    const q_ulong ring = rings.at(x, y);
                    if (ring == 0)
                        continue;
                    const auto nearest =
                        test::nearestBlackOnRing(shape->pixels(), pitch * shape->height(), y * pitch + x, pitch, ring);
                    dst.at(x, y) = withLimit ? static_cast<q_ulong>(nearest) : ring * ring;
                }
        });
}

void addBlurRows() {
    std::vector<JobRow> rows;
    for (const int radius : {3, 15, 60}) {
        const std::string work = blurred.work() + ", radius " + std::to_string(radius);
        rows.push_back({"Blur_Rect", work, "", [radius] { return rectBlur(radius); }});
        using namespace ::naive::boxBlur;
        for (const auto &[name, variant] : {std::pair{"Hor_Blur", ::naive::boxBlur::rows},
                                            {"Ver_Blur", columns},
                                            {"Hor_Blur32", rows32},
                                            {"Ver_Blur32", columns32}})
            rows.push_back(
                {name, work, "", [variant = variant, radius] { return naivelyChecked(variant, 2 * radius); }});
    }
    for (const int sigma : {2, 8, 20})
        for (const auto &[name, variant] : {std::pair{"Hor_GaussBlur", ::naive::gaussianBlur::alongRows},
                                            {"Ver_GaussBlur", ::naive::gaussianBlur::alongColumns}})
            rows.push_back({name, blurred.work() + ", sigma " + std::to_string(sigma), "",
                            [variant = variant, sigma] { return naivelyChecked(variant, static_cast<float>(sigma)); }});
    addVerticalRows(rows, "Ver_Blur", Ver_Blur, boxColumnByColumn, 30, "radius 15");
    addVerticalRows(rows, "Ver_GaussBlur", Ver_GaussBlur, gaussColumnByColumn, 8.0F, "sigma 8");
    addJobs(rows);
}

void addLightRows() {
    using ::naive::lightMap::Form;
    const char *const work = "ellipse of 600 x 160";
    addJobs({
        {"ConvertBlock2LightInfom limit", work, "",
         [] {
             return lightMap({Form::blockWithLimit, 3, 40, 2000000});
         }},
        {"ConvertBlock2LightInfom", work, "",
         [] {
             return lightMap({Form::block, 3, 40, 0});
         }},
        {"ConvertSrc2LightInfom", work, "",
         [] {
             return lightMap({Form::source, 3, 40, 2});
         }},
        {"FindNearBlackDistanceSquare limit", work, "", [] { return ringSearch(true); }},
        {"FindNearBlackDistanceSquare", work, "", [] { return ringSearch(false); }},
    });
}

/// A function that draws nothing.
template <class Call>
void addEmptyRow(const std::string &name, Call call) {
    static q_ulong pixel = 0x01234567;
    addCall(
        name, [call] { call(pixel); },
        [call] {
            call(pixel);
            return pixel == 0x01234567;
        });
}

} // namespace

void addFilterRows() {
    addRows({
        {"Edge_Transparency", Traffic::readsTwoSources, [](Scene &scene) { draw(scene, levelEdge(scene)); },
         [](const Scene &scene, int x, int y) { return expected(scene, levelEdge(scene), x, y); }, 0,
         [](const Scene &scene) { return scene.width * 2 * levelEdge(scene).band(); }},
        {"Edge_Transparency steep", Traffic::readsTwoSources, [](Scene &scene) { draw(scene, steepEdge(scene)); },
         [](const Scene &scene, int x, int y) { return expected(scene, steepEdge(scene), x, y); }, 0,
         [](const Scene &scene) { return scene.height * (2 * steepEdge(scene).band() + 1); }},
        {"Edge_Transparency_Circle", Traffic::readsTwoSources,
         [](Scene &scene) {
             tagPOINT centre = {scene.width / 2, scene.height / 2};
             Edge_Transparency_Circle(scene.dst.pixels(), scene.picture.pixels(), scene.other.pixels(), &centre,
                                      scene.height / 2, scene.height / 4, scene.width, scene.height, scene.pitch);
         },
         expectedCircle},
    });
    addBlurRows();
    addLightRows();
    addEmptyRow("Blur_Ring", [](q_ulong &pixel) { Blur_Ring(&pixel, {0, 0}, 1, 1, 1, 1); });
    addEmptyRow("Blur_Parallelogram", [](q_ulong &pixel) {
        tagRECT rect = {0, 0, 1, 1};
        Blur_Parallelogram(&pixel, 0, 0, 1, 1, 1, 1, &rect, 1, 1);
    });
}

} // namespace bench
