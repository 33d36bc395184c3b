/// \file
/// The direct path of a point: turned about the three axes, pushed back, projected and moved on the screen.
#ifndef Q_MUR_MATH3D_PROJECTION_H
#define Q_MUR_MATH3D_PROJECTION_H

#include "base/rotation.h"

namespace qmur {

/// Nothing is projected as if it lay nearer to the eye than this.
constexpr int nearestDistance = 16;

/// The factor of a projection with the eye `distance` in front of z = 0.
inline Wide perspective(float z, int distance) {
    const Wide depth = static_cast<Wide>(distance) + z;
    return distance / (depth > nearestDistance ? depth : static_cast<Wide>(nearestDistance));
}

/// Where a grid's points are brought. Stands, and is used, inside atFullWidth().
class FloatPlacement {
public:
    FloatPlacement(float angleX, float angleY, float angleZ, int offsetX, int offsetY, int offsetZ, int distanceOfEye)
        : turns(angleX, angleY, angleZ), dx(static_cast<float>(offsetX)), dy(static_cast<float>(offsetY)),
          dz(static_cast<float>(offsetZ)), distance(distanceOfEye) {}

    void apply(float &x, float &y, float &z) const {
        turns.apply(x, y, z);
        z += dz;
        const Wide factor = perspective(z, distance);
        x = static_cast<float>(x * factor) + dx;
        y = static_cast<float>(y * factor) + dy;
    }

private:
    ThreeTurns turns;
    float dx;
    float dy;
    float dz;
    int distance;
};

} // namespace qmur

#endif
