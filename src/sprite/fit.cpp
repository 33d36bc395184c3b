#include "base/pixel.h"
#include "base/surface.h"
#include "q_Mur/sprite.h"

#include <cstring>

namespace {

using namespace qmur;

constexpr int fractionBits = 15;

/// Source pixels for one destination pixel.
int stepOf(int srcExtent, int dstExtent) {
    return wrapDivide(srcExtent << fractionBits, dstExtent);
}

} // namespace

void _FitOn32RAW_24RAW_Nearest(unsigned char *dst, int dstWidth, int dstHeight, int dstPitchBytes, unsigned char *src,
                               int srcWidth, int srcHeight, int srcPitchBytes) {
    const int stepX = stepOf(srcWidth, dstWidth);
    const int stepY = stepOf(srcHeight, dstHeight);
    if (dstWidth <= 0)
        return; // rows of nothing may lie beyond all memory
    int positionY = 0;
    for (Distance y = 0; y < dstHeight; ++y, positionY = wrapAdd(positionY, stepY)) {
        unsigned char *const dstRow = dst + y * dstPitchBytes;
        const unsigned char *const srcRow = src + Distance{positionY >> fractionBits} * srcPitchBytes;
        int positionX = 0;
        for (Distance x = 0; x < dstWidth; ++x, positionX = wrapAdd(positionX, stepX)) {
            const unsigned char *const bytes = srcRow + Distance{positionX >> fractionBits} * 3;
            const q_ulong pixel = pixelOf(bytes[2], bytes[1], bytes[0]);
            std::memcpy(dstRow + x * 4, &pixel, sizeof pixel); // a pitch in bytes need not keep pixels aligned
        }
    }
}
