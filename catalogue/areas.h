/// \file
/// Words for what calls read and write.
#ifndef Q_MUR_CATALOGUE_AREAS_H
#define Q_MUR_CATALOGUE_AREAS_H

#include "row.h"

#include <algorithm>

namespace catalogue {

constexpr int widthOf(const tagRECT &rect) {
    return static_cast<int>(rect.right - rect.left);
}

constexpr int heightOf(const tagRECT &rect) {
    return static_cast<int>(rect.bottom - rect.top);
}

constexpr tagRECT common(const tagRECT &a, const tagRECT &b) {
    return {std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right), std::min(a.bottom, b.bottom)};
}

constexpr Box common(const Box &a, const Box &b) {
    return {std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right), std::min(a.bottom, b.bottom)};
}

/// A box by its corner and its size.
constexpr Box boxOf(std::int64_t left, std::int64_t top, std::int64_t width, std::int64_t height) {
    return {left, top, left + width, top + height};
}

/// The box around a centre, as many elements to each side and the centre itself.
constexpr Box around(std::int64_t x, std::int64_t y, std::int64_t reach) {
    return {x - reach, y - reach, x + reach + 1, y + reach + 1};
}

/// A box that grows by so many elements on each side; an empty one stays empty.
constexpr Box grown(const Box &box, int left, int top, int right, int bottom) {
    return box.isEmpty() ? box : Box{box.left - left, box.top - top, box.right + right, box.bottom + bottom};
}

/// The whole of a surface.
inline Area wholeOf(const Call &call, std::string_view name) {
    return {name, call[name].plane().rect()};
}

} // namespace catalogue

#endif
