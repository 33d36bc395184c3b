/// \file
/// Flat pieces of a photograph that tumble through the air above another one, and their shadows on it.
#ifndef QMUR_SHOW_FLIGHT_H
#define QMUR_SHOW_FLIGHT_H

#include "angle.h"
#include "painting.h"
#include "point.h"
#include "stage.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace show {

/// How a piece lies in the air.
struct Attitude {
    Point middle; ///< of the piece, on the frame
    double rise;  ///< its height above the photograph, in pixels
    double roll;  ///< its turn in its plane; angles are in turns
    double axis;  ///< the direction of the line in the frame's plane about which it is tilted then
    double tilt;
};

/// Where a point of a piece appears, and where its shadow falls.
struct SeenPoint {
    Point place;
    Point shadow;
};

/// `fromMiddle` is the point's place in the piece, `eye` the height from which all is seen.
inline SeenPoint seenPoint(const Attitude &attitude, Point fromMiddle, double eye) {
    const double x = fromMiddle.x * cosineOf(attitude.roll) - fromMiddle.y * sineOf(attitude.roll);
    const double y = fromMiddle.x * sineOf(attitude.roll) + fromMiddle.y * cosineOf(attitude.roll);
    // What lies beside the axis leaves the plane.
    const double along = x * cosineOf(attitude.axis) + y * sineOf(attitude.axis);
    const double beside = y * cosineOf(attitude.axis) - x * sineOf(attitude.axis);
    const double across = beside * cosineOf(attitude.tilt);
    const double tiltedX = along * cosineOf(attitude.axis) - across * sineOf(attitude.axis);
    const double tiltedY = along * sineOf(attitude.axis) + across * cosineOf(attitude.axis);
    const double scale = eye / (eye - attitude.rise - beside * sineOf(attitude.tilt));
    const Point &middle = attitude.middle;
    return {{middle.x + tiltedX * scale, middle.y + tiltedY * scale},
            {middle.x + 0.2 * attitude.rise + tiltedX, middle.y + 0.35 * attitude.rise + tiltedY}};
}

/// A shadow with four corners, of which two may be the same; its opacity goes up to 255.
struct Shadow {
    std::array<Point, 4> corners;
    double opacity;
};

/// Lays shadows over `out`, of the stage's size, whose edges are `softness` pixels wide. Leaves top bytes as they come.
inline void castShadows(Stage &stage, const Surface &out, const std::vector<Shadow> &shadows, int softness) {
    if (shadows.empty())
        return;
    const Stage::Plane layer = stage.plane();
    const Stage::Plane blurred = stage.plane();
    tagRECT frame = out.rect();
    fill(layer, 0);
    for (const Shadow &shadow : shadows) {
        std::array<tagPOINT, 4> points;
        for (std::size_t i = 0; i < 4; ++i)
            points[i] = pixelAt(shadow.corners[i]);
        q_ulong colour = opacityOf(shadow.opacity);
        Rect_Safe(layer->pixels, &frame, layer->pitch, &points[0], &points[1], &points[2], &points[3], &colour);
    }
    blurWithOpacity(layer, blurred, softness);
    lay(out, layer, 0, 0);
}

} // namespace show

#endif
