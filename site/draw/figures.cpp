#include "figures.h"

#include "picture.h"

#include <cmath>
#include <cstdlib>

namespace gallery {

using catalogue::Call;
using catalogue::Plane;
using catalogue::Row;
using catalogue::Scene;
using catalogue::Stage;

namespace {
constexpr q_ulong background = 0x141A22;
} // namespace

Sheet::Sheet() : surface(Plane::surface(stageWidth, stageHeight, background)) {}

void Sheet::line(double x1, double y1, double x2, double y2, q_ulong colour, int width) const {
    tagRECT clip = surface.rect();
    const auto place = [](double from, int middle) { return static_cast<int>(std::lround(from)) + middle; };
    iLine_AntiAliasing(surface.as<q_ulong>(), &clip, surface.pitch(), place(x1, stageWidth / 2),
                       place(y1, stageHeight / 2), place(x2, stageWidth / 2), place(y2, stageHeight / 2), colour,
                       width);
}

void Sheet::dot(double x, double y, int radius, q_ulong colour) const {
    tagRECT clip = surface.rect();
    iFill_Circle_Safe(surface.as<q_ulong>(), &clip, surface.pitch(), static_cast<int>(std::lround(x)) + stageWidth / 2,
                      static_cast<int>(std::lround(y)) + stageHeight / 2, radius, colour);
}

Plane figureOf(const Row &, const Scene &, double) {
    return Sheet().plane();
}

} // namespace gallery
