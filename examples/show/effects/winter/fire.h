/// \file
/// The camp fire.
#ifndef QMUR_SHOW_EFFECTS_WINTER_FIRE_H
#define QMUR_SHOW_EFFECTS_WINTER_FIRE_H

#include "yard.h"

#include "../../effect.h"

namespace show::winter {

class Fire {
public:
    void prepare(const Yard &yard);

    /// The flames row by row: each rises and sways later than the one below.
    void draw(Stage &stage, const Surface &scene, const Shot &shot, double seconds) const;

private:
    void drawSparks(const Surface &scene, const Shot &shot, double seconds) const;

    double unit = 1;
    Point place = {};
    Glow glow;
    Canvas warmth;
    Canvas flames;
};

} // namespace show::winter

#endif
