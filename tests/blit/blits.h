/// \file
/// The arguments that blits have in common.
#ifndef Q_MUR_TESTS_BLIT_BLITS_H
#define Q_MUR_TESTS_BLIT_BLITS_H

#include "support/pictures.h"

#include <type_traits>

namespace test {

// Which overload of an add is meant.
using Add = void (*)(q_ulong *, q_ulong *, tagRECT *, tagRECT *, q_ulong, q_ulong);
using ScaledAdd = void (*)(q_ulong *, q_ulong *, tagRECT *, tagRECT *, q_ulong, q_ulong, unsigned char, unsigned char,
                           unsigned char);

/// An area of the source at a place of the destination, pixel on pixel.
template <class Place, class Pitch, class... More>
void place(void (*blit)(q_ulong *, q_ulong *, Place, Place, tagRECT *, Pitch, Pitch, More...), Surface &dst, int x,
           int y, Surface &src, tagRECT srcRect, std::type_identity_t<More>... more) {
    blit(dst.pixels(), src.pixels(), static_cast<Place>(x), static_cast<Place>(y), &srcRect,
         static_cast<Pitch>(dst.pitch()), static_cast<Pitch>(src.pitch()), more...);
}

/// An area of the source over one of the destination, larger or smaller.
template <class Pitch, class... More>
void stretch(void (*blit)(q_ulong *, q_ulong *, tagRECT *, tagRECT *, Pitch, Pitch, More...), Surface &dst,
             tagRECT dstRect, Surface &src, tagRECT srcRect, std::type_identity_t<More>... more) {
    blit(dst.pixels(), src.pixels(), &dstRect, &srcRect, static_cast<Pitch>(dst.pitch()),
         static_cast<Pitch>(src.pitch()), more...);
}

/// The pixels of a destination with an area of the source over the whole of it.
template <class Pitch, class... More>
Pixels areaOver(Surface dst, Surface src, const tagRECT &srcRect,
                void (*blit)(q_ulong *, q_ulong *, tagRECT *, tagRECT *, Pitch, Pitch, More...),
                std::type_identity_t<More>... more) {
    stretch(blit, dst, dst.rect(), src, srcRect, more...);
    return pixelsOf(dst);
}

/// The same with the whole of the source.
template <class Pitch, class... More>
Pixels over(Surface dst, const Surface &src,
            void (*blit)(q_ulong *, q_ulong *, tagRECT *, tagRECT *, Pitch, Pitch, More...),
            std::type_identity_t<More>... more) {
    return areaOver(dst, src, src.rect(), blit, more...);
}

/// Calls `check` with sources, what whole steps of columns and of half rows show of them when filtered, and a picture
/// of that size to draw on. \param mask the bits that the sources have
template <class Check>
void atWholeSteps(q_ulong mask, Check check) {
    Random random(1);
    for (const int columns : {1, 2, 3, 4, 5})
        for (const int halves : {2, 3, 4, 6, 7})
            for (const int width : {1, 7, 16, 33, 130, 700}) {
                constexpr int height = 8;
                SCOPED_TRACE(testing::Message() << columns << ' ' << halves << ' ' << width);
                const Surface old = Surface::randomOfSize(random, width, height);
                Surface src = Surface::randomOfSize(random, width * columns, height * halves / 2);
                for (int y = 0; y < src.height(); ++y)
                    for (int x = 0; x < src.width(); ++x)
                        src.at(x, y) &= mask;
                Surface shown = old;
                for (int y = 0; y < height; ++y)
                    for (int x = 0; x < width; ++x) {
                        shown.at(x, y) = 0;
                        const q_ulong upper = src.at(x * columns, y * halves / 2);
                        const q_ulong lower = src.at(x * columns, (y * halves + 1) / 2);
                        for (int shift = 0; shift < 24; shift += 8)
                            shown.at(x, y) |= ((upper >> shift & 255) + (lower >> shift & 255)) / 2 << shift;
                    }
                check(src, shown, old);
            }
}

/// Two pictures of one size, channel by channel, with the top bytes 0.
template <class Channel>
Surface mixed(Surface dst, const Surface &shown, Channel channel) {
    for (int y = 0; y < dst.height(); ++y)
        for (int x = 0; x < dst.width(); ++x) {
            const q_ulong old = dst.at(x, y);
            dst.at(x, y) = 0;
            for (int shift = 0; shift < 24; shift += 8)
                dst.at(x, y) |= channel(old >> shift & 255, shown.at(x, y) >> shift & 255) << shift;
        }
    return dst;
}

} // namespace test

#endif
