/// \file
/// Where a destination pixel looks into a source that is laid over four corners.
#ifndef Q_MUR_WARP_BILINEAR_PATCH_H
#define Q_MUR_WARP_BILINEAR_PATCH_H

#include "base/lanes.h"
#include "base/wide.h"

#include <bit>
#include <cmath>
#include <cstdint>

namespace qmur {

/// A source pixel, which may lie outside the source.
struct SourcePlace {
    int x;
    int y;
};

/// The patch P0 + s (P1 - P0) + t (P3 - P0) + s t (P0 - P1 - P3 + P2), which is a quadratic in s.
struct BilinearPatch {
    int width;
    int height;
    Wide a, b, g, startX;
    Wide d, e, f, startY;
    Wide q, k1, k2;

    BilinearPatch(int sourceWidth, int sourceHeight, const int (&x)[4], const int (&y)[4]);

    /// The source pixel that a destination pixel shows.
    SourcePlace placeOf(int column, int row) const {
        const Wide twoQ = 2 * q;
        const Wide linear = column * d + k1 - row * a;
        const Wide constant = column * f + k2 - row * g;
        const Wide square = linear * linear;
        const Wide product = constant * (4 * q);
        const Wide middle = -linear / twoQ;
        const Wide root = product <= square ? squareRoot(square - product) / twoQ : 0;
        Wide s = middle + root;
        if ((s <= 0 || s >= 1) && product < square)
            s = middle - root;
        Wide denominator = s * a + g;
        if (denominator == 0)
            denominator = 1e-09;
        return {truncateToInt(width * s + 0.5), truncateToInt(height * (column - s * b - startX) / denominator + 0.5)};
    }

    bool contains(SourcePlace place) const {
        return place.x >= 0 && place.x < width && place.y >= 0 && place.y < height;
    }
};

/// Such a patch in doubles, with bounds on how far these may lie from what full width makes of the same formulas. Each
/// is counted in units of rounding errors and somewhat too large, so that full width's own errors are within. A result
/// that lies nearer than that to where it would become another is left open, as is all that is no number. What the
/// formulas call s is counted in source columns.
class DoubledPatch {
public:
    DoubledPatch(const BilinearPatch &patch, int surfacePitch);

    /// So many columns are worked out side by side: what is known of them stays in the nearest cache.
    static constexpr int mostColumns = 64;

    /// Indices beyond those of pixels: the column shows none, or that is left open.
    static constexpr std::int64_t outside = std::int64_t{1} << 50;
    static constexpr std::int64_t open = outside + 1;

    /// What is known of some columns of a row: s and the nearest whole number; whether s is known to be nearest to
    /// that, as a number above 0; and the root that doubts are multiplied by, which saves a division.
    struct Places {
        alignas(widestBytes) double s[mostColumns];
        alignas(widestBytes) double x[mostColumns];
        alignas(widestBytes) double spareX[mostColumns];
        alignas(widestBytes) double extents[mostColumns];

        /// Whether a column lies so far away that it shows nothing, although ints wrap.
        bool isFarOutside(int i, int sourceWidth) const {
            if (!(spareX[i] > 0 && std::fabs(x[i]) >= wrapping))
                return false;
            const int wrapped = truncateToInt(x[i]);
            return wrapped < -1 || wrapped >= sourceWidth;
        }
    };

    /// Works out the columns from `first` on, `count` of them and some more up to a whole number of lanes, and writes
    /// the indices of their pixels in the source. In two goes: a processor does not look ahead far enough to do much
    /// else while it waits for all of a column's results.
    void find(Places &places, std::int64_t *indices, int first, int count, int row) const {
        const Doubles columns = all(first) + Doubles::counted();
        findX(places, columns, count, row);
        const auto settle = [&places, indices, this](int i, Doubles x, Doubles inside) {
            const Doubles fromMiddle = magnitudeOf(x - all(width / 2 - 1));
            const Doubles found = settled(fromMiddle, Doubles::load(places.spareX + i), width, inside);
            const auto bits = as<std::uint64_t>(found + all(wholeNumbers));
            (bits - decltype(bits)::all(std::bit_cast<std::uint64_t>(wholeNumbers))).store(indices + i);
        };
        if (leavesRowsOpen) {
            for (int i = 0; i < count; i += lanes)
                settle(i, Doubles::load(places.x + i), all(open));
            return;
        }
        Doubles column = columns;
        for (int i = 0; i < count; i += lanes, column = column + all(lanes)) {
            const Doubles s = Doubles::load(places.s + i);
            const Doubles denominator = s * all(a) + all(g);
            const Doubles quotient = (column * all(height) - s * all(b) - all(start)) / denominator;
            const Doubles y = wholeNumber(quotient);
            const Doubles fromHalves = all(0.5) - magnitudeOf(quotient - y);
            const Doubles spareY =
                (fromHalves * magnitudeOf(denominator) - all(plainDoubtY)) * Doubles::load(places.extents + i) -
                all(rootDoubtY);
            const Doubles x = Doubles::load(places.x + i);
            const Doubles index = greater(y, all(0)) * all(pitch) + greater(x, all(0));
            settle(i, x, settled(magnitudeOf(y - all(height / 2 - 1)), spareY, height, index));
        }
    }

private:
    static constexpr int lanes = sizeof(Doubles) / sizeof(double);
    static constexpr double unit = 0x1p-53;
    static constexpr double mostS = 2;               ///< more than any s of a place within the source
    static constexpr double wrapping = 0x1p30;       ///< no int of up to so much has wrapped
    static constexpr double wholeNumbers = 0x1.8p52; ///< so large that only whole numbers are left of what is added

    /// What changes evenly over columns and rows.
    struct Plane {
        double perColumn;
        double first;
        double perRow;
    };

    void findX(Places &places, Doubles column, int count, int row) const {
        const Doubles firstMiddle = all(middle.first + row * middle.perRow);
        const Doubles firstProduct = all(product.first + row * product.perRow);
        for (int i = 0; i < count; i += lanes, column = column + all(lanes)) {
            const Doubles middles = column * all(middle.perColumn) + firstMiddle;
            const Doubles discriminant = middles * middles - (column * all(product.perColumn) + firstProduct);
            const Doubles extent = squareRoot(magnitudeOf(discriminant));
            const Doubles root = selectBelow(all(0), discriminant, extent, all(0)) * all(rootSign);
            const Doubles oneS = middles + root;
            const Doubles fromEnds = all(width / 2) - magnitudeOf(oneS - all(width / 2)); // above 0 between the ends
            const Doubles s = selectBelow(all(0), fromEnds, oneS, middles - root);
            const Doubles x = wholeNumber(s);
            const Doubles fraction = greater(all(0.5) - magnitudeOf(fromEnds), magnitudeOf(s - x));
            const Doubles spareX = (all(mostFraction) - fraction) * extent - all(rootDoubt);
            s.store(places.s + i);
            x.store(places.x + i);
            spareX.store(places.spareX + i);
            extent.store(places.extents + i);
        }
    }

    /// What comes of whole numbers that are so far from the middle of a source's extent, which reaches from -1, as half
    /// is added and cut off, up to its last pixel.
    static Doubles settled(Doubles fromMiddle, Doubles spare, double extent, Doubles inside) {
        const Doubles known = smaller(all(wrapping) - fromMiddle, spare);
        return selectBelow(all(0), known, selectBelow(fromMiddle, all(extent / 2 + 0.25), inside, all(outside)),
                           all(open));
    }

    double largest(const Plane &plane) const;

    static Doubles all(double number) { return Doubles::all(number); }
    static Doubles magnitudeOf(Doubles value) {
        const auto bits = as<std::uint64_t>(value);
        return as<double>(bits & decltype(bits)::all(~std::uint64_t{0} >> 1));
    }
    // Where the second is no number, it is what both return.
    static Doubles greater(Doubles a, Doubles b) { return selectBelow(b, a, a, b); }
    static Doubles smaller(Doubles a, Doubles b) { return selectBelow(a, b, a, b); }
    static Doubles wholeNumber(Doubles value) { return value + all(wholeNumbers) - all(wholeNumbers); }

    double width;
    double height;
    double pitch;
    double rootSign;
    double a, g, b, start; ///< of rows: (column * height - s * b - start) / (s * a + g)
    Plane middle;
    Plane product;
    double mostFraction; ///< so far from the nearest whole number s may be
    double rootDoubt;    ///< of s, times the root
    double plainDoubtY;  ///< of y, times the denominator
    double rootDoubtY;   ///< of y, times the denominator and the root
    bool leavesRowsOpen; ///< no denominator is large enough for a y to be known, as for an upright rectangle
};

} // namespace qmur

#endif
