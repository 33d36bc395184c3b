/// \file
/// A straight line as a run along its major axis, whichever of the two that is, and the Bresenham walk of it.
#ifndef Q_MUR_WALKS_LINES_H
#define Q_MUR_WALKS_LINES_H

#include "base/surface.h"

namespace qmur {

/// A line seen along one axis.
struct Axis {
    int first;       ///< coordinate of the line's first end
    int second;      ///< coordinate of its second end
    Span clip;       ///< columns or rows of the clip
    Distance stride; ///< pixels from one coordinate to the next

    constexpr int difference() const { return wrapSubtract(second, first); }
    constexpr unsigned extent() const { return static_cast<unsigned>(magnitudeOf(difference())); }
};

struct Line {
    Axis major;
    Axis minor;

    /// Index of the pixel at a major and a minor coordinate.
    constexpr Distance indexOf(int majorAt, int minorAt) const {
        return majorAt * major.stride + minorAt * minor.stride;
    }
};

/// A line of equal extents runs along y, and an extent that no int holds is the greatest.
/// Without a clip the axes' own are empty and mean nothing.
constexpr Line lineBetween(int x1, int y1, int x2, int y2, Distance pitch, const Window &clip = {}) {
    const Axis x = {x1, x2, clip.columns, 1};
    const Axis y = {y1, y2, clip.rows, pitch};
    return x.extent() > y.extent() ? Line{x, y} : Line{y, x};
}

/// How a coordinate runs along a Bresenham line.
struct Course {
    int first;
    int step; ///< 1 or -1
    unsigned extent;
};

/// Calls `visit(major, minor)` after each Bresenham step, as many times as the major extent. The first end itself is
/// not visited.
template <class Visit>
void forEachStep(Course major, Course minor, Visit visit) {
    const int straight = static_cast<int>(2 * minor.extent);
    const int diagonal = static_cast<int>(2 * (minor.extent - major.extent));
    int error = static_cast<int>(2 * minor.extent - major.extent);
    int majorAt = major.first;
    int minorAt = minor.first;
    for (unsigned step = 0; step < major.extent; ++step) {
        const bool moves = error >= 0;
        minorAt = wrapAdd(minorAt, moves ? minor.step : 0);
        error = wrapAdd(error, moves ? diagonal : straight);
        majorAt = wrapAdd(majorAt, major.step);
        visit(majorAt, minorAt);
    }
}

template <class Visit>
void forEachStep(const Line &line, Visit visit) {
    const auto courseAlong = [](const Axis &axis) {
        return Course{axis.first, axis.difference() < 0 ? -1 : 1, axis.extent()};
    };
    forEachStep(courseAlong(line.major), courseAlong(line.minor), visit);
}

struct Point {
    int x;
    int y;
};

/// Calls `flat(x, y)` or, where the line is at least as high as wide, `steep(x, y)` for every pixel of a Bresenham
/// line, both ends included. An extent that no int holds counts as less than any other.
template <class Flat, class Steep>
void forEachPixelBetween(Point from, Point to, Flat flat, Steep steep) {
    const auto courseBetween = [](int first, int second) {
        return Course{first, second < first ? -1 : 1, static_cast<unsigned>(magnitudeOf(wrapSubtract(second, first)))};
    };
    const Course alongX = courseBetween(from.x, to.x);
    const Course alongY = courseBetween(from.y, to.y);
    const auto width = static_cast<int>(alongX.extent);
    const auto height = static_cast<int>(alongY.extent);
    if (width > height) {
        flat(from.x, from.y);
        forEachStep(alongX, alongY, flat);
    } else {
        steep(from.x, from.y);
        if (height > 0)
            forEachStep(alongY, alongX, [&steep](int y, int x) { steep(x, y); });
    }
}

} // namespace qmur

#endif
