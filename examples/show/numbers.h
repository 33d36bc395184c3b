/// \file
/// Whole numbers in files of either byte order.
#ifndef QMUR_SHOW_NUMBERS_H
#define QMUR_SHOW_NUMBERS_H

#include "input_file.h"

#include <algorithm>
#include <string_view>

namespace show {

/// Numbers at places that may lie outside the bytes; there they are 0.
struct Numbers {
    Bytes bytes;
    bool littleEndian;

    std::uint32_t at(std::size_t place, int size) const {
        if (place > bytes.size() || bytes.size() - place < static_cast<std::size_t>(size))
            return 0;
        std::uint32_t value = 0;
        for (int i = 0; i < size; ++i)
            value = value << 8 | bytes[place + static_cast<std::size_t>(littleEndian ? size - 1 - i : i)];
        return value;
    }
};

/// Up to `count` bytes from a place that may lie behind the end.
inline Bytes part(Bytes bytes, std::size_t place, std::size_t count) {
    place = std::min(place, bytes.size());
    return bytes.subspan(place, std::min(count, bytes.size() - place));
}

inline bool standsAt(Bytes bytes, std::size_t place, std::string_view text) {
    const Bytes found = part(bytes, place, text.size());
    return found.size() == text.size() &&
           std::equal(text.begin(), text.end(), found.begin(),
                      [](char a, unsigned char b) { return static_cast<unsigned char>(a) == b; });
}

} // namespace show

#endif
