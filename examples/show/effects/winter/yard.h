/// \file
/// Where things stand in the winter's night.
#ifndef QMUR_SHOW_EFFECTS_WINTER_YARD_H
#define QMUR_SHOW_EFFECTS_WINTER_YARD_H

#include "sprites.h"

namespace show::winter {

struct Yard {
    Yard() = default;
    Yard(int frameWidth, int frameHeight);

    int width = 0;
    int height = 0;
    double unit = 1; ///< what measures a pixel in a frame of 1280 by 720
    tagRECT screen = {};
    Point fire = {};
};

/// What does not move: the sky, the hills, the screen without its photograph, and the hearth without its fire.
Canvas sceneryOf(const Yard &yard);

} // namespace show::winter

#endif
