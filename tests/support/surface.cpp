#include "surface.h"

#include <cstdio>

namespace test {

std::string Surface::differenceFrom(const Surface &expected) const {
    if (stride != expected.stride || buffer.size() != expected.buffer.size())
        return "the surfaces have different shapes";
    for (std::size_t i = 0; i < buffer.size(); ++i) {
        if (buffer[i] == expected.buffer[i])
            continue;
        const int x = static_cast<int>(i) % stride - margin;
        const int y = static_cast<int>(i) / stride - margin;
        char text[160];
        std::snprintf(text, sizeof text, "(%d, %d) of a %d x %d picture is 0x%08X instead of 0x%08X", x, y, columns,
                      rows, static_cast<unsigned>(buffer[i]), static_cast<unsigned>(expected.buffer[i]));
        return text;
    }
    return {};
}

} // namespace test
