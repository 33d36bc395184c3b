#include "support/job.h"
#include "support/row.h"
#include "warp/naive_axis_rotation.h"
#include "warp/naive_centre_rotation.h"
#include "warp/naive_image_line.h"
#include "warp/naive_quad_mapping.h"
#include "warp/naive_triangle.h"
#include "warp/naive_z_rotation.h"

namespace bench {
namespace {

using test::Surface;

constexpr int width = 1280;
constexpr int height = 960;
constexpr tagRECT frame = {0, 0, width, height};
constexpr tagRECT srcRect = {0, 0, 1024, 768};
constexpr const char *fromPart = "1024 x 768 into 1280 x 960";
constexpr const char *fromFrame = "1280 x 960 into 1280 x 960"; // where both are of one size

/// A source of the destination's size and pitch, which some warps demand, with a hole of zeros in every square of 64.
Surface anySource() {
    Surface src = noise(width, height, 2);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            src.at(x, y) = x % 64 < 24 && y % 64 < 24 ? 0 : src.at(x, y) | 1;
    return src;
}

/// A job that calls `draw(dst, src)` and `compute(dst, src)`.
template <class Draw, class Compute>
Job warping(Draw draw, Compute compute) {
    const auto src = std::make_shared<Surface>(anySource());
    return drawing(
        noise(width, height), [=](Surface &dst) { draw(dst, *src); }, [=](Surface &dst) { compute(dst, *src); });
}

Job zRotation(const naive::zRotation::Rotator &rotator) {
    using namespace naive::zRotation;
    // Turned a little and enlarged until the source covers the whole frame.
    constexpr naive::zRotation::Scene scene = {frame, srcRect, width / 2, height / 2, 0.4F, 1.85F, 0.375F};
    return warping([=](Surface &dst, Surface &src) { rotator.draw(dst, src.pixels(), src.pitch(), scene); },
                   [=](Surface &dst, const Surface &src) {
                       RowCount rows;
                       naiveRotation(dst, src, scene, rotator.filtered, rotator.store, rows);
                   });
}

Job axisRotation(naive::axisRotation::Axis axis) {
    using namespace naive::axisRotation;
    const auto turnOf = [](Surface &src) {
        Turn turn;
        turn.angle = 0.5;
        turn.scale = 1.25;
        turn.perspective = 0.25;
        turn.srcRect = srcRect;
        turn.destCentre = {width / 2, height / 2};
        turn.pivot = {srcRect.right / 2, srcRect.bottom / 2};
        turn.clearOutside = 1;
        turn.width = width;
        turn.height = height;
        turn.front = &src;
        return turn;
    };
    return warping([=](Surface &dst, Surface &src) { turnOf(src).draw(axis, dst); },
                   [=](Surface &dst, Surface &src) { turnOf(src).drawNaively(axis, dst); });
}

Job frameRotation(naive::axisRotation::FrameTurn::Kind kind) {
    using namespace naive::axisRotation;
    const auto background = std::make_shared<Surface>(noise(width, height, 3));
    const auto turnOf = [=](Surface &src) {
        return FrameTurn{kind, 0.5, 1, 0.25, width, height, &src, background.get()};
    };
    return warping([=](Surface &dst, Surface &src) { turnOf(src).draw(dst); },
                   [=](Surface &dst, Surface &src) { turnOf(src).drawNaively(dst); });
}

constexpr naive::quadMapping::Quad quad = {{{40, 70}, {1200, 20}, {1250, 930}, {90, 880}}};
constexpr naive::quadMapping::Quad trapezoid = {{{200, 10}, {1000, 10}, {1270, 950}, {20, 950}}};

Job bilinearMapping() {
    using namespace naive::quadMapping;
    return warping([](Surface &dst, Surface &src) { drawBilinear(dst, src, width, height, quad); },
                   [](Surface &dst, const Surface &src) { naiveBilinear(dst, src, width, height, quad); });
}

Job pseudoMapping() {
    using namespace naive::quadMapping;
    const auto scratch = std::make_shared<Surface>(width, height);
    return warping([=](Surface &dst, Surface &src) { drawPseudo(dst, src, *scratch, width, height, 0, quad); },
                   [=](Surface &dst, const Surface &src) { naivePseudo(dst, src, *scratch, width, height, 0, quad); });
}

Job affineMapping() {
    using namespace naive::quadMapping;
    return warping([](Surface &dst, Surface &src) { drawAffine(dst, src, srcRect, frame, trapezoid, 10, 200); },
                   [](Surface &dst, const Surface &src) { naiveAffine(dst, src, srcRect, frame, trapezoid, 10, 200); });
}

/// Turned, and stretched over most of the frame.
naive::centreRotation::Scene centreScene() {
    return {frame, srcRect, width / 2, height / 2, 0.4, 1600, 1200};
}

Job centreRotation(naive::centreRotation::Rotator *rotator, naive::centreRotation::Mapper mapper) {
    return warping(
        [=](Surface &dst, Surface &src) { naive::centreRotation::draw(rotator, dst, src, centreScene()); },
        [=](Surface &dst, Surface &src) { naive::centreRotation::naiveMapper(mapper, dst, src, centreScene()); });
}

Job tracedRotation() {
    return warping(
        [](Surface &dst, Surface &src) { naive::centreRotation::draw(iRotateMapping, dst, src, centreScene()); },
        [](Surface &dst, const Surface &src) { naive::centreRotation::naiveMapping(dst, src, centreScene()); });
}

Job discRotation() {
    constexpr int radius = 470;
    return warping(
        [](Surface &dst, Surface &src) {
            tagRECT clip = frame;
            iRotateCircleMapping(dst.pixels(), &clip, dst.pitch(), src.pixels(), nullptr, src.pitch(), width / 2,
                                 height / 2, radius, 0.4);
        },
        [](Surface &dst, const Surface &src) {
            naive::centreRotation::naiveCircle(dst, src, {0, 0}, frame, {width / 2, height / 2}, radius, 0.4);
        });
}

Job mappedTriangle() {
    using namespace naive::triangle;
    static constexpr Corners corners = {{{10, 20, 0, 0}, {1270, 300, 1023, 100}, {300, 950, 200, 767}}};
    return warping([](Surface &dst, Surface &src) { draw(dst, frame, src, corners); },
                   [](Surface &dst, const Surface &src) { naiveTriangle(dst, frame, src, corners); });
}

Job imageStroke() {
    return warping(
        [](Surface &dst, Surface &src) { ImageLine(dst.pixels(), src.pixels(), dst.pitch(), 100, 90, 1180, 870, 41); },
        [](Surface &dst, const Surface &src) { naive::imageLine::naiveLine(dst, src, 100, 90, 1180, 870, 41); });
}

} // namespace

void addWarpRows() {
    using naive::axisRotation::FrameTurn;
    std::vector<JobRow> rows;
    for (const auto &rotator : naive::zRotation::rotators)
        rows.push_back({rotator.name, fromPart, "", [rotator] { return zRotation(rotator); }});
    const std::vector<JobRow> others = {
        {"iBltNear32_X_Roto", fromPart, "", [] { return axisRotation(naive::axisRotation::axisX); }},
        {"iBltNear32_Y_Roto", fromPart, "", [] { return axisRotation(naive::axisRotation::axisY); }},
        {"iBltNear32_X_Roto_Fast", fromFrame, "", [] { return frameRotation(FrameTurn::oneFace); }},
        {"iBltNear32_X_Roto_Fast background", fromFrame, "", [] { return frameRotation(FrameTurn::withBackground); }},
        {"iBltNear32_Y_Roto_Fast", fromFrame, "", [] { return frameRotation(FrameTurn::aboutY); }},
        {"iBilinearMapping", fromFrame, "", bilinearMapping},
        {"iPsudoBilinearMapping", fromFrame, "", pseudoMapping},
        {"iAffineMapping", fromPart, "", affineMapping},
        {"iRotateMapping", fromPart, "", tracedRotation},
        {"iRotate", fromPart, "", [] { return centreRotation(iRotate, naive::centreRotation::nearest); }},
        {"iRotateLinear", fromPart, "", [] { return centreRotation(iRotateLinear, naive::centreRotation::linear); }},
        {"iRotateLinearAA", fromPart, "",
         [] { return centreRotation(iRotateLinearAA, naive::centreRotation::softened); }},
        {"iRotateCircleMapping", "disc of radius 470", "", discRotation},
        {"Blt_Triangle", fromPart, "", mappedTriangle},
        {"ImageLine", "stroke of width 41", "", imageStroke},
    };
    rows.insert(rows.end(), others.begin(), others.end());
    addJobs(rows);
}

} // namespace bench
