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
template <class Load>
std::vector<q_ulong> pixelsOfSprite(Load load, int width, int height) {
    std::vector<q_ulong> pixels(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    load(pixels.data(), width, height, width);
    return pixels;
}

inline void forSprite(Pixels dst, int width, int height, const std::vector<q_ulong> &sprite, int spriteWidth) {
    for (Number y = 0; y < height && width > 0; ++y)
        for (Number x = 0; x < width; ++x) {
            const auto index = static_cast<std::size_t>(y * spriteWidth + x);
            dst.at(x, y) = index < sprite.size() ? sprite[index] : 0;
        }
}

inline void LoadResourceAirplane(q_ulong *dst, int width, int height, int pitch) {
    static const auto sprite = pixelsOfSprite(::LoadResourceAirplane, 156, 114);
    forSprite({dst, pitch}, width, height, sprite, 156);
}

inline void LoadResourceChristmasTree(q_ulong *dst, int width, int height, int pitch) {
    static const auto sprite = pixelsOfSprite(::LoadResourceChristmasTree, 512, 384);
    forSprite({dst, pitch}, width, height, sprite, 512);
}

inline void LoadResourceFootMark(q_ulong *dst, int width, int height, int pitch) {
    static const auto sprite = pixelsOfSprite(::LoadResourceFootMark, 122, 166);
    forSprite({dst, pitch}, width, height, sprite, 122);
}

inline void LoadResourceMusicSymbol(q_ulong *dst, int width, int height, int pitch) {
    static const auto sprite = pixelsOfSprite(::LoadResourceMusicSymbol, 128, 128);
    forSprite({dst, pitch}, width, height, sprite, 128);
}

inline void LoadResourceRedFires(q_ulong *dst, int width, int height, int pitch) {
    static const auto sprite = pixelsOfSprite(::LoadResourceRedFires, 330, 360);
    forSprite({dst, pitch}, width, height, sprite, 330);
}

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
