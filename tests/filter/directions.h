/// \file
/// Blurs that run along rows or along columns, seen as one.
#ifndef Q_MUR_TESTS_FILTER_DIRECTIONS_H
#define Q_MUR_TESTS_FILTER_DIRECTIONS_H

#include "support/painting.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <vector>

namespace test {

/// A blur and its plain twin.
template <class Size>
struct Blur {
    using Function = void(q_ulong *dst, q_ulong *src, Size size, int width, int height, int pitch);

    const char *name;
    Function *blur;
    Function *twin;
    bool alongColumns;
    q_ulong mask = 0xFFFFFF;

    /// What the blur makes of `src`, drawn into a part of `dst` of the same pitch.
    Surface blurred(Surface dst, Surface src, Size size, int width, int height) const {
        blur(dst.pixels(), src.pixels(), size, width, height, src.pitch());
        return dst;
    }
    Surface blurred(const Surface &dst, const Surface &src, Size size) const {
        return blurred(dst, src, size, src.width(), src.height());
    }
    Surface blurredPlainly(Surface dst, Surface src, Size size) const {
        twin(dst.pixels(), src.pixels(), size, src.width(), src.height(), src.pitch());
        return dst;
    }

    /// The same of a picture whose rows begin before the ones above have ended, or run upward: pixels from the first to
    /// the last address.
    using Pixels = std::vector<q_ulong>;
    static Pixels drawnWith(Function *function, Pixels dst, Pixels src, Size size, int width, int height, int pitch) {
        const int first = pitch < 0 ? -pitch * (height - 1) : 0;
        function(dst.data() + first, src.data() + first, size, width, height, pitch);
        return dst;
    }
    void expectRowsMayRunIntoEachOther(Size size, int width, int height, int pitch) const {
        Random random(84);
        Pixels src(static_cast<std::size_t>(width + std::abs(pitch) * (height - 1)));
        for (q_ulong &pixel : src)
            pixel = random.word();
        const Pixels dst(src.size(), 0x12345678);
        EXPECT_EQ(drawnWith(blur, dst, src, size, width, height, pitch),
                  drawnWith(twin, dst, src, size, width, height, pitch))
            << name << ", size " << size << ", " << width << " x " << height << ", pitch " << pitch;
    }

    /// A line of pixels along the blur, in the colours of `colourAt(i)`.
    template <class ColourAt>
    Surface line(int length, ColourAt colourAt) const {
        const Surface empty = alongColumns ? Surface(1, length) : Surface(length, 1);
        return painted(empty, empty.rect(), [&](int x, int y) { return static_cast<q_ulong>(colourAt(x + y)); });
    }
};

} // namespace test

#endif
