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

struct Colour {
    double red;
    double green;
    double blue;

    Colour mixed(const Colour &other, double share) const {
        return {red + (other.red - red) * share, green + (other.green - green) * share,
                blue + (other.blue - blue) * share};
    }
};

/// The light of a landscape: in the sky from above to below, of sun or moon, on hills from the farthest to the nearest.
struct Light {
    Colour above;
    Colour below;
    Colour sun;
    Colour farthest;
    Colour nearest;
};
constexpr Light lights[] = {
    {{0.07, 0.10, 0.25}, {0.50, 0.30, 0.38}, {0.98, 0.93, 0.80}, {0.22, 0.22, 0.36}, {0.05, 0.08, 0.11}}, // dusk
    {{0.24, 0.53, 0.86}, {0.84, 0.92, 0.96}, {1.00, 0.96, 0.70}, {0.48, 0.66, 0.46}, {0.16, 0.32, 0.18}}, // day
    {{0.93, 0.60, 0.36}, {1.00, 0.88, 0.68}, {1.00, 0.98, 0.88}, {0.82, 0.48, 0.32}, {0.36, 0.16, 0.16}}, // morning
};

/// Hills one behind the other under a sky with a sun, in the light of the number.
Plane landscape(int width, int height, int number) {
    constexpr int hills = 4;
    Plane plane = Plane::surface(width, height);
    const double phase = number * 2.1;
    const Light &light = lights[number % 3];
    for (int y = -Plane::usualMargin; y < height + Plane::usualMargin; ++y) {
        for (int x = -Plane::usualMargin; x < width + Plane::usualMargin; ++x) {
            const double u = static_cast<double>(x) / width;
            const double v = static_cast<double>(y) / height;
            Colour colour = light.above.mixed(light.below, std::clamp(v * 1.6, 0.0, 1.0));
            const double place = 0.7 - 0.15 * (number % 3);
            const double sun = std::hypot((u - place) * width / height, v - 0.26);
            if (sun < 0.1)
                colour = light.sun;
            for (int hill = 0; hill < hills; ++hill) {
                const double ridge =
                    0.45 + 0.13 * hill + 0.09 * std::sin(u * (5 + 2 * hill) + hill * 1.7 + phase) / (hill + 1);
                if (v > ridge) {
                    colour = light.farthest.mixed(light.nearest, static_cast<double>(hill) / (hills - 1));
                    colour = colour.mixed({0, 0, 0}, 0.2 * (grain(x / 2, y / 2) - 0.5));
                }
            }
            plane.at(x, y) = packed(colour.red, colour.green, colour.blue);
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
