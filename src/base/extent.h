/// \file
/// Where areas of surfaces lie in memory: a walk may leave the order that it promises only where none can tell.
#ifndef Q_MUR_BASE_EXTENT_H
#define Q_MUR_BASE_EXTENT_H

#include "base/surface.h"

#include <cstdint>

namespace qmur {

/// The memory from the first to behind the last pixel of an area, in pixels from address 0.
struct Extent {
    long long begin;
    long long end;

    constexpr bool isApartFrom(Extent other) const { return end <= other.begin || other.end <= begin; }
};

/// The extent of a window that is not empty.
inline Extent extentOf(const q_ulong *surface, Distance pitch, const Window &window) {
    constexpr long long size = sizeof(q_ulong);
    const auto address = static_cast<long long>(reinterpret_cast<std::uintptr_t>(surface));
    const long long top = static_cast<long long>(window.rows.begin) * pitch;
    const long long bottom = (window.rows.end - 1LL) * pitch;
    return {address / size + (top < bottom ? top : bottom) + window.columns.begin,
            (address + size - 1) / size + (top < bottom ? bottom : top) + window.columns.end};
}

/// The same of 16-bit entries, in pixels too, rounded outward.
inline Extent extentOf(const short *plane, Distance pitch, const Window &window) {
    const Extent entries = extentOf(static_cast<const q_ulong *>(nullptr), pitch, window);
    const auto address = static_cast<long long>(reinterpret_cast<std::uintptr_t>(plane));
    return {((address >> 1) + entries.begin) >> 1, (((address + 1) >> 1) + entries.end + 1) >> 1};
}

/// Whether the pixels of a window of that width all lie at addresses of their own.
constexpr bool keepsPixelsApart(Distance pitch, int width) {
    return pitch >= width || pitch <= -width;
}

} // namespace qmur

#endif
