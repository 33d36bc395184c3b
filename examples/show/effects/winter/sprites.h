/// \file
/// What stands in the winter's night: sprites cut out of their ground, soft dots and lights.
#ifndef QMUR_SHOW_EFFECTS_WINTER_SPRITES_H
#define QMUR_SHOW_EFFECTS_WINTER_SPRITES_H

#include "../../painting.h"
#include "../../point.h"
#include "../../stage.h"

#include <array>

namespace show::winter {

using LoadSprite = void (*)(q_ulong *dst, int width, int height, int pitch);

constexpr std::array<q_ulong, 5> lampColours = {0xFF5038, 0xFFC040, 0x48D860, 0x5090FF, 0xFF60C8};

/// A length in whole pixels, not less than `least`.
int lengthOf(double value, int least);

/// A sprite without what lies loose around its largest figure.
Canvas loadFigure(LoadSprite load, int width, int height);

/// The picture in another light.
Canvas tinted(const Canvas &picture, double red, double green, double blue);

Canvas mirrored(const Canvas &picture);

/// The picture turned about its middle, on a square that holds it at every angle.
Canvas turned(const Canvas &picture, double angle);

/// A sprite brought to a size, with its coverage in the top byte: what is 0 is outside of the figure.
Canvas cutOut(const Canvas &figure, int width, int height);

/// Lays a sprite around a place, with less than its own coverage.
void layFaded(Stage &stage, const Surface &out, const Surface &sprite, double x, double y, double opacity);

/// A disc that is clear at its rim.
Canvas softDot(int size, q_ulong colour);

/// An ellipse that fades from its middle to its rim.
Canvas softGlow(int width, int height, q_ulong colour, double opacity);

/// Blends a dot whose place and radius lie between pixels.
void dot(const Surface &out, Point at, double radius, q_ulong colour, double opacity);

/// Fills a disc.
void disc(const Surface &out, double x, double y, double radius, q_ulong colour);

void lightAround(const Surface &out, Point at, double radius, q_ulong colour, double intensity);

/// A lamp of a radius for a frame of 1280 by 720, and its light.
void drawLamp(const Surface &out, Point at, double radius, q_ulong colour, double brightness, double unit);

/// Round light that is stretched to ellipses.
class Glow {
public:
    Glow();

    /// Adds it, as far as it lies within the frame.
    void shine(const Surface &out, double x, double y, double reachX, double reachY, q_ulong colour,
               double brightness) const;

private:
    static constexpr int size = 256;

    Canvas round;
};

} // namespace show::winter

#endif
