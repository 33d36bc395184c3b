/// \file
/// The built-in sprites. tools/sprites draws them and writes their tables.
#ifndef Q_MUR_SPRITE_TABLES_H
#define Q_MUR_SPRITE_TABLES_H

#include "q_Mur/types.h"

namespace qmur {

/// A picture of palette indices, row by row from the top. Entry 0 of a palette is 0, what blits with that key leave
/// out; entry 1 is white.
template <int colours, int bytes>
struct Sprite {
    int width;
    int height;
    int stride; ///< bytes from one row to the next
    q_ulong palette[colours];
    unsigned char pixels[bytes];
};

constexpr Sprite<255, 156 * 114> airplane = {
#include "airplane.inc"
};

constexpr Sprite<255, 512 * 384> christmasTree = {
#include "christmas_tree.inc"
};

constexpr Sprite<172, 122 * 166> footMark = {
#include "foot_mark.inc"
};

constexpr Sprite<255, 128 * 128> musicSymbol = {
#include "music_symbol.inc"
};

constexpr Sprite<255, 330 * 360> redFires = {
#include "red_fires.inc"
};

} // namespace qmur

#endif
