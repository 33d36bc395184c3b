/// \file
/// The surfaces that a benchmark draws with.
#ifndef Q_MUR_BENCH_SCENE_H
#define Q_MUR_BENCH_SCENE_H

#include <q_Mur.h>

#include <cstddef>
#include <vector>

namespace bench {

/// A picture with memory all around it that may be read, so that filters may reach over its edges.
class Surface {
public:
    Surface(int width, int height, int pitch);

    q_ulong *pixels() { return buffer.data() + originOffset; }
    q_ulong &at(int x, int y) { return buffer[index(x, y)]; }
    q_ulong at(int x, int y) const { return buffer[index(x, y)]; }
    bool contains(std::size_t word) const;
    std::vector<q_ulong> &words() { return buffer; }
    const std::vector<q_ulong> &words() const { return buffer; }

private:
    std::size_t index(int x, int y) const { return originOffset + static_cast<std::size_t>(y) * pitch + x; }

    std::size_t width;
    std::size_t height;
    std::size_t pitch;
    std::size_t originOffset;
    std::vector<q_ulong> buffer;
};

/// A destination and its sources, all of one size and pitch.
class Scene {
public:
    explicit Scene(int pictureWidth, int pictureHeight, int extraPitch = 0);

    const int width;
    const int height;
    const int pitch;
    Surface dst;
    Surface before;  ///< what `dst` held before the checked call
    Surface picture; ///< plain colours, none of them 0
    Surface other;   ///< likewise, other colours
    Surface sprite;  ///< discs on zeros, with a soft rim of alphas in the top byte

    tagRECT whole() const { return {0, 0, width, height}; }

    /// The three quarters of a source that scaling functions stretch over the whole destination.
    tagRECT part() const { return {0, 0, width * 3 / 4, height * 3 / 4}; }

    int pixelCount() const { return width * height; }
};

} // namespace bench

#endif
