#include "base/pixel.h"
#include "base/surface.h"
#include "q_Mur/draw.h"

#include <initializer_list>

using namespace qmur;

void Draw_Cross(q_ulong *surface, int pitch, int x, int y, q_ulong colour) {
    q_ulong *const centre = pixelAt(surface, pitch, x, y);
    const Distance row = pitch;
    for (const Distance arm :
         {-2 * row, -row, Distance{-2}, Distance{-1}, Distance{0}, Distance{1}, Distance{2}, row, 2 * row})
        centre[arm] = saturatingAdd(centre[arm], colour);
}

void Draw_Cross_Fast(q_ulong *surface, int pitch, int x, int y, q_ulong colour) {
    q_ulong *const centre = pixelAt(surface, pitch, x, y);
    const Distance row = pitch;
    const q_ulong sum = saturatingAdd(*centre, colour);
    // Meant: the centre's sum overwrites the arms, and the right tip is missing.
    for (const Distance arm : {-2 * row, -row, Distance{-2}, Distance{-1}, Distance{0}, Distance{1}, row, 2 * row})
        centre[arm] = sum;
}
