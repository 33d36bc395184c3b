#include "base/pixel.h"
#include "base/surface.h"
#include "base/wide.h"
#include "q_Mur/pipeline.h"

using namespace qmur;

void VKD_3D_Draw_Cross(q_ulong *dst, tagRECT *clip, q_ulong pitch, int x, int y, q_ulong colour) {
    const auto inside = [](int position, Span limits) {
        return position >= limits.begin + 3LL && position <= limits.end - 4LL;
    };
    if (!inside(x, columnsOf(*clip)) || !inside(y, rowsOf(*clip)))
        return;
    const Distance rowStep = asDistance(pitch);
    q_ulong *const centre = pixelAt(dst, rowStep, x, y);
    const q_ulong sum = saturatingAdd(*centre, colour);
    for (Distance row = -2; row <= 2; ++row)
        centre[row * rowStep] = sum;
    // Meant: the bar is one pixel shorter to the right.
    centre[-2] = centre[-1] = centre[1] = sum;
}

void VKD_Render_3D_Dot_Add(q_ulong *dst, tagRECT *clip, q_ulong pitch, _POINT3DFLOAT *points, q_ulong *colours,
                           int columns, int rows) {
    if (rows < 1 || columns < 1)
        return;
    const Distance count = static_cast<Distance>(rows) * columns;
    for (Distance i = 0; i < count; ++i)
        VKD_3D_Draw_Cross(dst, clip, pitch, truncateToInt(points[i].x), truncateToInt(points[i].y), colours[i]);
}
