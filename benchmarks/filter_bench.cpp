#include "support/naive.h"
#include "support/row.h"

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
    addEmptyRow("Blur_Ring", [](q_ulong &pixel) { Blur_Ring(&pixel, {0, 0}, 1, 1, 1, 1); });
    addEmptyRow("Blur_Parallelogram", [](q_ulong &pixel) {
        tagRECT rect = {0, 0, 1, 1};
        Blur_Parallelogram(&pixel, 0, 0, 1, 1, 1, 1, &rect, 1, 1);
    });
}

} // namespace bench
