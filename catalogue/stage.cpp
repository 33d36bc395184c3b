#include "row.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <tuple>

namespace catalogue {
namespace {

q_ulong packed(double red, double green, double blue) {
    const auto channel = [](double value) {
        return static_cast<q_ulong>(std::lround(std::clamp(value, 0.0, 1.0) * 255));
    };
    return channel(red) << 16 | channel(green) << 8 | channel(blue);
}

/// A number from 0 to 1 that looks random, for a place.
double grain(int x, int y) {
    Random random(static_cast<std::uint64_t>(x) << 32 ^ static_cast<std::uint64_t>(y));
    return random.between(0, 255) / 255.0;
}

/// Hills one behind the other under a sky with a sun, lit and coloured by the number.
Plane landscape(int width, int height, int number) {
    Plane plane = Plane::surface(width, height);
    const double hue = number * 2.1;
    for (int y = -Plane::usualMargin; y < height + Plane::usualMargin; ++y) {
        for (int x = -Plane::usualMargin; x < width + Plane::usualMargin; ++x) {
            const double u = static_cast<double>(x) / width;
            const double v = static_cast<double>(y) / height;
            double red = 0.95 - 0.5 * v + 0.2 * std::sin(hue);
            double green = 0.55 + 0.3 * v + 0.15 * std::sin(hue + 2);
            double blue = 0.55 + 0.4 * (1 - v) + 0.3 * std::sin(hue + 4);
            const double sun = std::hypot((u - 0.7) * width / height, v - 0.3);
            if (sun < 0.12)
                red = green = 1, blue = 0.8;
            for (int hill = 0; hill < 4; ++hill) {
                const double ridge =
                    0.45 + 0.13 * hill + 0.09 * std::sin(u * (5 + 2 * hill) + hill * 1.7 + hue) / (hill + 1);
                if (v > ridge) {
                    const double light = 0.75 - 0.15 * hill + 0.12 * (grain(x / 2, y / 2) - 0.5);
                    red = light * (0.55 + 0.3 * std::sin(hue + hill));
                    green = light * (0.7 + 0.2 * std::sin(hue + 1 + hill));
                    blue = light * (0.5 + 0.3 * std::sin(hue + 3 + hill));
                }
            }
            plane.at(x, y) = packed(red, green, blue);
        }
    }
    return plane;
}

/// A flower with a soft rim.
Plane flower(int width, int height) {
    Plane plane = Plane::surface(width, height);
    const double radius = std::min(width, height) * 0.45;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const double dx = x + 0.5 - width / 2.0;
            const double dy = y + 0.5 - height / 2.0;
            const double petal = radius * (0.75 + 0.25 * std::cos(5 * std::atan2(dy, dx)));
            const double inside = petal - std::hypot(dx, dy);
            if (inside <= 0)
                continue;
            const double depth = inside / radius;
            const auto alpha = static_cast<q_ulong>(std::lround(std::min(inside / 4, 1.0) * 255));
            plane.at(x, y) = std::max<q_ulong>(alpha, 1) << 24 | packed(0.95, 0.35 + depth * 0.6, 0.2 + depth * 0.3);
        }
    }
    return plane;
}

/// Makes a plane once for each size and number, and copies it from then on. Each `make` has a map of its own, since its
/// type is its own.
template <class Make>
Plane madeOnce(int width, int height, int number, Make make) {
    static std::map<std::tuple<int, int, int>, Plane> made;
    Plane &plane = made[{width, height, number}];
    if (plane.isNull())
        plane = make();
    Copies copies;
    return plane.copy(copies);
}

} // namespace

Plane Stage::picture(int number) const {
    return madeOnce(width, height, number, [&] { return landscape(width, height, number); });
}

Plane Stage::sprite() const {
    return madeOnce(width, height, 0, [&] { return flower(width, height); });
}

} // namespace catalogue
