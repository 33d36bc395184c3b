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

} // namespace test

#endif
