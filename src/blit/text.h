/// \file
/// Laying a text in pixels over a surface: what is common to all rasterisers, the platform's and those of tests.
#ifndef Q_MUR_BLIT_TEXT_H
#define Q_MUR_BLIT_TEXT_H

#include "base/surface.h"
#include "q_Mur/blit.h"

#include <limits>

namespace qmur {

/// A text in pixels as a rasteriser delivers it: rows top to bottom, as far apart as they are wide, 0 where there is no
/// ink. Without pixels it could not be had.
struct TextRaster {
    q_ulong *pixels;
    int width;
    int height;
};

/// True for sizes that a raster may have: some pixels, and no more bytes than a signed number counts.
constexpr bool canBeRaster(long long width, long long height) {
    constexpr long long most = std::numeric_limits<int>::max() / static_cast<int>(sizeof(q_ulong));
    return width > 0 && height > 0 && width <= most && height <= most / width;
}

/// Rasterises a text and lays it over `dst` with its top left corner on (x, y). A `Rasteriser` is made of the text, its
/// colour, the height and the name of its font; its `raster()` is valid for as long as it lives.
template <class Rasteriser>
int drawText(q_ulong *dst, const tagRECT &clipRect, int pitch, const char *text, q_ulong colour, int x, int y,
             int fontHeight, const char *fontName) {
    const Rasteriser rasteriser(text, colour, fontHeight, fontName);
    const TextRaster raster = rasteriser.raster();
    if (!raster.pixels)
        return 0;
    tagRECT whole = {0, 0, raster.width, raster.height};
    // Meant: of the clip only the size counts, and the blit, which places by the centre, leaves out the last column or
    // row of an odd extent.
    iBltFast32SafeKeySrc(dst, raster.pixels, wrapAdd(raster.width / 2, x), wrapAdd(raster.height / 2, y), &whole, pitch,
                         raster.width, widthOf(clipRect), heightOf(clipRect));
    return 1;
}

} // namespace qmur

#endif
