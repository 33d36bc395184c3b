#include "q_Mur/warp.h"
#include "walks/lines.h"

void ImageLine(q_ulong *dst, q_ulong *src, int pitch, int x1, int y1, int x2, int y2, int width) {
    using namespace qmur;
    const int low = width / 2;
    const int high = wrapAdd(width, 1) / 2;
    if (high <= -low)
        return;
    const auto copyRun = [=](int x, int y, Distance stride) {
        Distance index = y * Distance{pitch} + x - low * stride;
        for (int i = -low; i < high; ++i, index += stride)
            dst[index] = src[index];
    };
    forEachPixelBetween(
        {x1, y1}, {x2, y2}, [=](int x, int y) { copyRun(x, y, pitch); }, [=](int x, int y) { copyRun(x, y, 1); });
}
