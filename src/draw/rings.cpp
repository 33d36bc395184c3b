#include "blending.h"
#include "q_Mur/draw.h"
#include "walks/round.h"

#include <algorithm>
#include <iterator>

namespace {

using namespace qmur;

/// A band around a circle: full weight on the circle, none at 2 * thickness pixels to either side. Distances come from
/// the table at a quarter of their square, which gives them 9 fraction bits. Not for a thickness of 0.
class Band {
public:
    Band(int radius, int thickness)
        : reach(wrapAdd(radius, wrapMultiply(2, thickness))), circle(radius << 9), halfWidth(thickness << 10),
          inverse(32768 / wrapMultiply(2, thickness)) {
        // The table rises, so the band is a stretch of it, and of squared distances.
        const int *const tableEnd = std::cend(iSqrt);
        const int *const first = std::upper_bound(std::cbegin(iSqrt), tableEnd, wrapSubtract(circle, halfWidth));
        const int *const end = std::lower_bound(first, tableEnd, wrapAdd(circle, halfWidth));
        lowSquare = static_cast<int>(first - iSqrt) * 4;
        highSquare = static_cast<int>(end - iSqrt) * 4 - 1;
    }

    /// Calls `pixel(pixel, weight in 1/256)` for every pixel of the band. What lies beyond the table is left out.
    template <class Pixel>
    void forEachPixel(const Centre &centre, const Window &offsets, Pixel pixel) const {
        if (reach < 0)
            return;
        forEachInRing(centre, squareThrough(reach).within(offsets), lowSquare, highSquare,
                      [&pixel, band = *this](q_ulong &d, int square) { pixel(d, band.weightAt(square)); });
    }

private:
    q_ulong weightAt(int square) const {
        const int fromCircle = wrapSubtract(iSqrt[square >> 2], circle);
        const int fromEdge = wrapSubtract(halfWidth, magnitudeOf(fromCircle));
        return static_cast<q_ulong>(wrapMultiply(fromEdge, inverse) >> 16);
    }

    int reach;
    int circle;    ///< the radius in 9 fraction bits
    int halfWidth; ///< likewise
    int inverse;
    int lowSquare;
    int highSquare;
};

} // namespace

void Draw_Anti_Aliasing_Circle_NoFillInside(q_ulong *surface, int pitch, int cx, int cy, int radius, int thickness,
                                            q_ulong colour) {
    if (thickness < 1)
        return;
    const auto blend = [colour](q_ulong &d, q_ulong weight) {
        const auto mixed = [weight](q_ulong old, q_ulong c) { return mixture256(old, c, weight) >> 8; };
        // Meant: red is blended together with the top byte, which fades instead of being cleared.
        d = upperHalfChannelwise(mixed, d, colour);
    };
    const Centre centre = {surface, pitch, cx, cy};
    const Band band(radius, thickness);
    band.forEachPixel(centre, unclipped, blend);
    // Meant: a centre inside the band is blended four times.
    for (int again = 0; again < 3; ++again)
        band.forEachPixel(centre, squareThrough(0), blend);
}

void Draw_Ring_Safe(q_ulong *surface, int pitch, tagRECT *clip, int cx, int cy, int radius, int thickness,
                    q_ulong colour) {
    if (thickness < 1)
        return;
    const Centre centre = {surface, pitch, cx, cy};
    Band(radius, thickness)
        .forEachPixel(centre, offsetsFrom(centre, windowOf(*clip)),
                      [colour](q_ulong &d, q_ulong weight) { d = upperHalfAdd(d, colour, weight); });
}

void Draw_Ring(q_ulong *surface, int pitch, int cx, int cy, int radius, q_ulong colour, q_ulong intensity) {
    constexpr int widestBand = 16;
    if (radius < 1)
        return;
    const int inner = larger(radius - widestBand, radius >> 1);
    const int middle = (inner + radius) >> 1;
    const int halfBand = radius - middle;
    const int step = 65536 / halfBand;
    q_ulong weights[widestBand + 1]; // by whole pixels from the inner circle
    for (int distance = inner; distance <= radius; ++distance) {
        const int fromMiddle = distance < middle ? middle - distance : distance - middle;
        weights[distance - inner] = static_cast<q_ulong>((halfBand - fromMiddle) * step) * intensity >> 16;
    }
    // Meant: the circle's last column and last row are left out.
    forEachInRing({surface, pitch, cx, cy}, squareUpTo(radius), inner * inner, radius * radius,
                  [=, distance = radius](q_ulong &d, int square) mutable {
                      // From pixel to pixel the whole root changes little: it is followed, not taken anew.
                      while (distance * distance > square)
                          --distance;
                      while ((distance + 1) * (distance + 1) <= square)
                          ++distance;
                      d = scaledAdd<7>(d, colour, weights[distance - inner]);
                  });
}
