#include "base/pixel.h"
#include "base/surface.h"
#include "q_Mur/draw.h"

void Draw_Pixel_Add(q_ulong *surface, int pitch, int x, int y, q_ulong colour) {
    q_ulong &d = *qmur::pixelAt(surface, pitch, x, y);
    d = qmur::saturatingAdd(d, colour);
}
