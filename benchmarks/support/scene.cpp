#include "scene.h"

#include <cmath>
#include <cstdint>

namespace bench {
namespace {

constexpr int marginRows = 4;

q_ulong noise(int x, int y, std::uint32_t seed) {
    std::uint32_t bits =
        (static_cast<std::uint32_t>(x) * 0x9E3779B1u) ^ (static_cast<std::uint32_t>(y) * 0x85EBCA77u) ^ seed;
    bits = (bits ^ bits >> 15) * 0x2C1B3C6Du;
    return (bits ^ bits >> 13) * 0x297A2D39u >> 8;
}

/// A disc of 48 pixels in every square of 64, its alpha falling over the last eighth of the radius.
q_ulong discs(int x, int y) {
    const double distance = std::hypot(x % 64 - 31.5, y % 64 - 31.5);
    if (distance >= 24)
        return 0;
    const q_ulong alpha = distance < 21 ? 255 : static_cast<q_ulong>((24 - distance) * 85);
    return alpha << 24 | noise(x, y, 3) | 0x010101;
}

} // namespace

Surface::Surface(int pictureWidth, int pictureHeight, int picturePitch)
    : width(static_cast<std::size_t>(pictureWidth)), height(static_cast<std::size_t>(pictureHeight)),
      pitch(static_cast<std::size_t>(picturePitch)), originOffset(pitch * marginRows),
      buffer(pitch * (height + 2 * marginRows)) {}

bool Surface::contains(std::size_t word) const {
    return word >= originOffset && word < originOffset + pitch * height && (word - originOffset) % pitch < width;
}

Scene::Scene(int pictureWidth, int pictureHeight, int extraPitch)
    : width(pictureWidth), height(pictureHeight), pitch(pictureWidth + extraPitch), dst(width, height, pitch),
      before(width, height, pitch), picture(width, height, pitch), other(width, height, pitch),
      sprite(width, height, pitch) {
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            dst.at(x, y) = noise(x, y, 0);
            picture.at(x, y) = noise(x, y, 1) | 0x010101;
            other.at(x, y) = noise(x, y, 2) | 0x010101;
            sprite.at(x, y) = discs(x, y);
        }
    }
}

} // namespace bench
