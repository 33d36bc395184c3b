/// \file
/// Sprites and raw pixels once more, looked up pixel by pixel.
#ifndef Q_MUR_TESTS_PLAIN_SPRITE_H
#define Q_MUR_TESTS_PLAIN_SPRITE_H

#include "words.h"

#include <algorithm>
#include <cstddef>
#include <vector>

namespace plain {

/// The pixels of a sprite row after row, as they are when the whole of it is loaded. What they are is data; tests hold
/// them against the tables.
template <auto load, int spriteWidth, int spriteHeight>
void loadSprite(q_ulong *dst, int width, int height, int pitch) {
    static const auto sprite = [] {
        std::vector<q_ulong> pixels(spriteWidth * spriteHeight);
        load(pixels.data(), spriteWidth, spriteHeight, spriteWidth);
        return pixels;
    }();
    for (Number y = 0; y < height && width > 0; ++y)
        for (Number x = 0; x < width; ++x) {
            const auto index = static_cast<std::size_t>(y * spriteWidth + x);
            Pixels{dst, pitch}.at(x, y) = index < sprite.size() ? sprite[index] : 0;
        }
}

inline constexpr auto LoadResourceAirplane = loadSprite<::LoadResourceAirplane, 156, 114>;
inline constexpr auto LoadResourceChristmasTree = loadSprite<::LoadResourceChristmasTree, 512, 384>;
inline constexpr auto LoadResourceFootMark = loadSprite<::LoadResourceFootMark, 122, 166>;
inline constexpr auto LoadResourceMusicSymbol = loadSprite<::LoadResourceMusicSymbol, 128, 128>;
inline constexpr auto LoadResourceRedFires = loadSprite<::LoadResourceRedFires, 330, 360>;

/// The source column or row of a destination's: 15 fraction bits in numbers that wrap at 32 bits.
inline Number fittedPlace(Number index, int srcExtent, int dstExtent) {
    const Number step = signed32(Number{srcExtent} * 32768) / dstExtent;
    return flooredQuotient(signed32(index * step), 32768);
}

inline void _FitOn32RAW_24RAW_Nearest(unsigned char *dst, int dstWidth, int dstHeight, int dstPitchBytes,
                                      unsigned char *src, int srcWidth, int srcHeight, int srcPitchBytes) {
    for (Number y = 0; y < dstHeight && dstWidth > 0; ++y)
        for (Number x = 0; x < dstWidth; ++x) {
            const unsigned char *triple =
                src + fittedPlace(y, srcHeight, dstHeight) * srcPitchBytes + fittedPlace(x, srcWidth, dstWidth) * 3;
            unsigned char *pixel = dst + y * dstPitchBytes + x * 4;
            std::copy(triple, triple + 3, pixel);
            pixel[3] = 0;
        }
}

} // namespace plain

#endif
