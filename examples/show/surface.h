/// \file
/// Pixels in memory, as the library takes them: a pointer and a pitch, with the size that the library does not know.
#ifndef QMUR_SHOW_SURFACE_H
#define QMUR_SHOW_SURFACE_H

#include "q_Mur.h"

#include <cstddef>
#include <memory>

namespace show {

/// A view of pixels that somebody else owns. The pitch counts pixels.
struct Surface {
    q_ulong *pixels = nullptr;
    int width = 0;
    int height = 0;
    int pitch = 0;

    tagRECT rect() const { return {0, 0, width, height}; }
    /// As some of the library's functions take it.
    q_ulong unsignedPitch() const { return static_cast<q_ulong>(pitch); }
    q_ulong *at(int x, int y) const { return pixels + static_cast<std::ptrdiff_t>(y) * pitch + x; }
    /// The same pixels, of which only the upper left part counts.
    Surface cropped(int newWidth, int newHeight) const { return {pixels, newWidth, newHeight, pitch}; }
};

/// How the pixels of a picture lie in a plane: with a margin all around, since filtered blits read a pixel or two
/// beyond their source and iBltPerfect32() writes one column and one row beyond its destination.
struct PlaneLayout {
    static constexpr int margin = 4;

    int width;
    int height;

    int pitch() const { return width + 2 * margin; }
    int elements() const { return pitch() * (height + 2 * margin); }
    std::size_t bytes() const { return static_cast<std::size_t>(elements()) * sizeof(q_ulong); }
    int origin() const { return margin * pitch() + margin; }
    Surface at(q_ulong *origin) const { return {origin, width, height, pitch()}; }
};

/// A surface that owns its pixels, all 0 at first.
class Canvas {
public:
    Canvas() = default;
    Canvas(int width, int height)
        : layout{width, height}, plane(std::make_unique<q_ulong[]>(static_cast<std::size_t>(layout.elements()))) {}

    int width() const { return layout.width; }
    int height() const { return layout.height; }
    std::size_t bytes() const { return layout.bytes(); }
    Surface surface() const { return layout.at(plane.get() + layout.origin()); }
    operator Surface() const { return surface(); }
    tagRECT rect() const { return surface().rect(); }

private:
    PlaneLayout layout = {0, 0};
    std::unique_ptr<q_ulong[]> plane;
};

} // namespace show

#endif
