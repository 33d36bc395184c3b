/// \file
/// A stroke of an image, position by position.
#ifndef Q_MUR_TESTS_WARP_NAIVE_IMAGE_LINE_H
#define Q_MUR_TESTS_WARP_NAIVE_IMAGE_LINE_H

#include "support/surface.h"

#include <algorithm>
#include <cstdlib>

namespace naive::imageLine {

using test::Surface;

inline void copy(Surface &dst, const Surface &src, int x, int y) {
    dst.at(x, y) = src.at(x, y);
}

/// Walks the line position by position and copies a run across it at each.
inline void naiveLine(Surface &dst, const Surface &src, int x1, int y1, int x2, int y2, int width) {
    const int low = width / 2;
    const int high = (width + 1) / 2;
    const int adx = std::abs(x2 - x1);
    const int ady = std::abs(y2 - y1);
    const int stepX = x2 < x1 ? -1 : 1;
    const int stepY = y2 < y1 ? -1 : 1;
    const bool yMajor = adx <= ady;
    const int major = std::max(adx, ady);
    const int minor = std::min(adx, ady);
    int x = x1;
    int y = y1;
    int d = 2 * minor - major;
    for (int position = 0;; ++position) {
        for (int across = -low; across <= high - 1; ++across)
            copy(dst, src, yMajor ? x + across : x, yMajor ? y : y + across);
        if (position == major)
            return;
        if (d >= 0) {
            (yMajor ? x : y) += yMajor ? stepX : stepY;
            d += 2 * (minor - major);
        } else {
            d += 2 * minor;
        }
        (yMajor ? y : x) += yMajor ? stepY : stepX;
    }
}

} // namespace naive::imageLine

#endif
