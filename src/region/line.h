/// \file
/// The line that the curves are made of too, for any element.
#ifndef Q_MUR_REGION_LINE_H
#define Q_MUR_REGION_LINE_H

#include "base/surface.h"

namespace qmur {

struct Point {
    int x;
    int y;
};

/// A value and the part of a plane on which it may be left.
template <class Element>
struct Pen {
    Element *plane;
    Distance pitch;
    Window clip;
    Element value;

    void dot(int x, int y) const {
        if (clip.contains(x, y))
            *pixelAt(plane, pitch, x, y) = value;
    }
};

template <class Element>
void drawLine(Pen<Element> pen, Point from, Point to) {
    const auto distance = [](int a, int b) {
        const int difference = wrapSubtract(b, a);
        return difference < 0 ? wrapSubtract(0, difference) : difference;
    };
    const int width = distance(from.x, to.x);
    const int height = distance(from.y, to.y);
    const int towardX = to.x < from.x ? -1 : 1;
    const int towardY = to.y < from.y ? -1 : 1;

    const bool steep = width <= height;
    const int major = steep ? height : width;
    const int minor = steep ? width : height;
    const Point majorStep = steep ? Point{0, towardY} : Point{towardX, 0};
    const Point minorStep = steep ? Point{towardX, 0} : Point{0, towardY};
    const int straight = wrapMultiply(2, minor);
    const int diagonal = wrapMultiply(2, wrapSubtract(minor, major));

    auto [x, y] = from;
    pen.dot(x, y);
    int error = wrapSubtract(straight, major);
    for (int left = major; left > 0; --left) {
        if (error >= 0) {
            x = wrapAdd(x, minorStep.x);
            y = wrapAdd(y, minorStep.y);
            error = wrapAdd(error, diagonal);
        } else {
            error = wrapAdd(error, straight);
        }
        x = wrapAdd(x, majorStep.x);
        y = wrapAdd(y, majorStep.y);
        pen.dot(x, y);
    }
}

} // namespace qmur

#endif
