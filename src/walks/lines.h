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

/// A line of equal extents runs along y. The clip is for those who ask for it.
constexpr Line lineBetween(int x1, int y1, int x2, int y2, Distance pitch, const Window &clip = {}) {
    const Axis x = {x1, x2, clip.columns, 1};
    const Axis y = {y1, y2, clip.rows, pitch};
    return x.extent() > y.extent() ? Line{x, y} : Line{y, x};
}

/// Calls `visit(major, minor)` after each Bresenham step, as many times as the major extent. The first end itself is
/// not visited.
template <class Visit>
void forEachStep(const Line &line, Visit visit) {
    const int majorStep = line.major.difference() < 0 ? -1 : 1;
    const int minorStep = line.minor.difference() < 0 ? -1 : 1;
    const unsigned steps = line.major.extent();
    const int straight = static_cast<int>(2 * line.minor.extent());
    const int diagonal = static_cast<int>(2 * (line.minor.extent() - steps));
    int error = static_cast<int>(2 * line.minor.extent() - steps);
    int major = line.major.first;
    int minor = line.minor.first;
    for (unsigned step = 0; step < steps; ++step) {
        const bool moves = error >= 0;
        minor = wrapAdd(minor, moves ? minorStep : 0);
        error = wrapAdd(error, moves ? diagonal : straight);
        major = wrapAdd(major, majorStep);
        visit(major, minor);
    }
}

} // namespace qmur

#endif
