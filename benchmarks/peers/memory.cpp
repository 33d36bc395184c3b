#include "worker.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <cwchar>

// No library of pictures: what the bare memory takes.

namespace peers {
namespace {

constexpr char traffic[] = "traffic alone"; // it draws nothing

Run fill(const Stage &stage) {
    static_assert(sizeof(wchar_t) == sizeof(Pixel));
    return [dst = stage.dst] {
        std::wmemset(reinterpret_cast<wchar_t *>(dst.pixels), static_cast<wchar_t>(fillColour), dst.size());
    };
}

Run copy(const Stage &stage) {
    return [stage] { std::memcpy(stage.dst.pixels, stage.src.pixels, stage.dst.size() * 4); };
}

/// Fetches a row by one word of each of its cache lines.
Pixel fetch(const Surface &surface, int row) {
    constexpr int step = 64 / sizeof(Pixel);
    const Pixel *pixel = surface.pixels + std::ptrdiff_t{row} * surface.width;
    Pixel sum = 0;
    for (int x = 0; x < surface.width; x += step)
        sum += pixel[x];
    return sum;
}

/// Fetches each row of the source that the picture shows, once, and writes the picture's rows. A filter needs the row
/// below as well, unless the two heights go into each other.
template <bool isFiltered>
Run scale(const Stage &stage) {
    return [src = stage.src, dst = stage.dst] {
        int next = 0; // the first row that has not been fetched
        for (int y = 0; y < dst.height; ++y) {
            const int row = y * src.height / dst.height;
            const int last = row + (isFiltered && y * src.height % dst.height != 0 && row + 1 < src.height ? 1 : 0);
            Pixel sum = 0;
            for (next = std::max(next, row); next <= last; ++next)
                sum += fetch(src, next);
            std::memset(dst.pixels + std::ptrdiff_t{y} * dst.width, static_cast<int>(sum), dst.pitch());
        }
    };
}

} // namespace

Peer peer(const std::string &) {
    return {"memory",
            {{"fill", "wmemset", fill},
             {"copy", "memcpy", copy},
             {"add", "memcpy", copy, traffic},
             {"fade", "wmemset", fill, traffic},
             {"constant alpha", "memcpy", copy, traffic},
             {"pixel alpha", "memcpy", copy, traffic},
             {"colour key", "memcpy", copy, traffic},
             {"nearest", "fetched rows, memset", scale<false>, traffic},
             {"bilinear", "fetched rows, memset", scale<true>, traffic}}};
}

} // namespace peers
