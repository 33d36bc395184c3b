/// \file
/// The pen that lines and curves are drawn with, for any element.
#ifndef Q_MUR_REGION_PEN_H
#define Q_MUR_REGION_PEN_H

#include "walks/lines.h"

namespace qmur {

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
void drawLine(const Pen<Element> &pen, Point from, Point to) {
    const auto dot = [pen](int x, int y) { pen.dot(x, y); };
    forEachPixelBetween(from, to, dot, dot);
}

} // namespace qmur

#endif
