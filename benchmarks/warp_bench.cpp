#include "support/naive.h"
#include "support/row.h"

#include <cmath>
#include <cstdint>
#include <optional>

namespace bench {
namespace {

// Turned a little and enlarged until the source covers the whole destination.
constexpr float angle = 0.4F;
constexpr float scale = 1.75F;
constexpr float alpha = 0.375F; // 96 of 256, exactly
constexpr int alphaWeight = 96;

/// A source position, from the source's centre, with 21 fraction bits.
struct Position {
    std::int64_t u;
    std::int64_t v;
};

std::int64_t truncated(long double value) {
    return static_cast<std::int64_t>(value);
}

/// The position that belongs to a destination pixel: that of the row's start and as many steps.
Position positionOf(const Scene &scene, int x, int y) {
    const int centreX = scene.width / 2;
    const int centreY = scene.height / 2;
    const std::int64_t inverseScale = truncated(32768.0L / scale);
    const long double sine = std::sin(static_cast<long double>(angle));
    const long double cosine = std::cos(static_cast<long double>(angle));
    // The whole destination lies within the reach of the turned source, so a row starts and ends at its edges.
    const std::int64_t left = -centreX * inverseScale;
    const std::int64_t right = (scene.width - centreX) * inverseScale;
    const std::int64_t startU = truncated(static_cast<long double>(left) * (cosine * 64));
    const std::int64_t startV = truncated(static_cast<long double>(left) * (sine * 64));
    const std::int64_t stepU = (truncated(static_cast<long double>(right) * (cosine * 64)) - startU) / scene.width;
    const std::int64_t stepV = (truncated(static_cast<long double>(right) * (sine * 64)) - startV) / scene.width;
    const std::int64_t rowTerm = ((y - centreY) * inverseScale) >> 8;
    return {rowTerm * truncated(sine * 16384) + startU + x * stepU,
            rowTerm * truncated(cosine * 16384) - startV - x * stepV};
}

std::optional<q_ulong> nearest(const Surface &src, const Scene &scene, int x, int y) {
    const Position position = positionOf(scene, x, y);
    const auto column = static_cast<int>(position.u >> 21) + scene.width / 2;
    const auto row = static_cast<int>(position.v >> 21) + scene.height / 2;
    if (column < 0 || column >= scene.width || row < 0 || row >= scene.height)
        return {};
    return src.at(column, row);
}

std::optional<q_ulong> filtered(const Surface &src, const Scene &scene, int x, int y) {
    const Position position = positionOf(scene, x, y);
    const auto column = static_cast<int>(position.u >> 17) + scene.width / 2 * 16;
    const auto row = static_cast<int>(position.v >> 17) + scene.height / 2 * 16;
    if (column < 0 || column >= scene.width * 16 - 16 || row < 0 || row >= scene.height * 16 - 16)
        return {};
    return naive::filtered(src, column, row);
}

/// A row that calls `rotate(dst, dstPitch, src, srcPitch, clip, srcRect, centreX, centreY, angle, scale, more...)`.
template <class Rotate, class... More>
std::function<void(Scene &)> rotating(Rotate rotate, Surface Scene::*src, More... more) {
    return [=](Scene &scene) {
        tagRECT all = scene.whole();
        rotate(scene.dst.pixels(), scene.pitch, (scene.*src).pixels(), scene.pitch, &all, &all, scene.width / 2,
               scene.height / 2, angle, scale, more...);
    };
}

} // namespace

void addWarpRows() {
    addRows({
        {"iBltNear32_Z_Roto", Traffic::readsSrc, rotating(iBltNear32_Z_Roto, &Scene::picture),
         [](const Scene &scene, int x, int y) {
             return nearest(scene.picture, scene, x, y).value_or(scene.before.at(x, y));
         }},
        {"iBltNear32_Z_Roto_KeySrc", Traffic::readsDstAndSrc, rotating(iBltNear32_Z_Roto_KeySrc, &Scene::sprite),
         [](const Scene &scene, int x, int y) {
             const q_ulong s = nearest(scene.sprite, scene, x, y).value_or(0);
             return s ? s : scene.before.at(x, y);
         }},
        {"iBltNear32_Z_Roto_KeySrc_Add", Traffic::readsDstAndSrc,
         rotating(iBltNear32_Z_Roto_KeySrc_Add, &Scene::sprite),
         [](const Scene &scene, int x, int y) {
             const q_ulong s = nearest(scene.sprite, scene, x, y).value_or(0);
             const q_ulong d = scene.before.at(x, y);
             return s ? naive::saturatedSum(d, s) : d;
         }},
        {"iBltNear32_Z_Roto_Alpha", Traffic::readsDstAndSrc, rotating(iBltNear32_Z_Roto_Alpha, &Scene::picture, alpha),
         [](const Scene &scene, int x, int y) {
             const q_ulong d = scene.before.at(x, y);
             const std::optional<q_ulong> s = nearest(scene.picture, scene, x, y);
             return s ? naive::weightedMean(d, 256 - alphaWeight, *s, alphaWeight) : d;
         }},
        {"iBltLinear32_Z_Roto", Traffic::readsSrc, rotating(iBltLinear32_Z_Roto, &Scene::picture),
         [](const Scene &scene, int x, int y) {
             return filtered(scene.picture, scene, x, y).value_or(scene.before.at(x, y));
         }},
        {"iBltLinear32_Z_Roto_Alpha", Traffic::readsDstAndSrc,
         rotating(iBltLinear32_Z_Roto_Alpha, &Scene::picture, alpha),
         [](const Scene &scene, int x, int y) {
             const q_ulong d = scene.before.at(x, y);
             const std::optional<q_ulong> s = filtered(scene.picture, scene, x, y);
             return s ? naive::weightedMean(d, 256 - alphaWeight, *s, alphaWeight) : d;
         }},
    });
}

} // namespace bench
