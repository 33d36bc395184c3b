#include "base/surface.h"
#include "q_Mur/warp.h"

namespace {

using namespace qmur;

/// One step along an axis and how far to go.
struct Course {
    int distance;
    int step;

    Course(int from, int to)
        : distance(to < from ? wrapSubtract(from, to) : wrapSubtract(to, from)), step(to < from ? -1 : 1) {}
};

} // namespace

void ImageLine(q_ulong *dst, q_ulong *src, int pitch, int x1, int y1, int x2, int y2, int width) {
    const int low = width / 2;
    const int high = wrapAdd(width, 1) / 2;
    if (high <= -low)
        return;
    const Course alongX(x1, x2);
    const Course alongY(y1, y2);
    const bool steep = alongX.distance <= alongY.distance;
    const auto copyRun = [=](Distance index, Distance stride) {
        index -= low * stride;
        for (int i = -low; i < high; ++i, index += stride)
            dst[index] = src[index];
    };

    // Bresenham's line, the indexes kept as the distance from the start of the surfaces.
    const Course &major = steep ? alongY : alongX;
    const Course &minor = steep ? alongX : alongY;
    const Distance acrossStride = steep ? 1 : pitch;
    const Distance majorStep = major.step * (steep ? Distance{pitch} : 1);
    const Distance minorStep = minor.step * acrossStride;
    Distance index = static_cast<Distance>(y1) * pitch + x1;
    copyRun(index, acrossStride);
    int decision = wrapSubtract(wrapMultiply(2, minor.distance), major.distance);
    for (int i = 0; i < major.distance; ++i) {
        if (decision >= 0) {
            index += minorStep;
            decision = wrapAdd(decision, wrapMultiply(2, wrapSubtract(minor.distance, major.distance)));
        } else {
            decision = wrapAdd(decision, wrapMultiply(2, minor.distance));
        }
        index += majorStep;
        copyRun(index, acrossStride);
    }
}
