#include "lettering.h"

#include "painting.h"

#include <algorithm>
#include <array>
#include <utility>

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define QMUR_SHOW_DETECT_LEAKS
#include <sanitizer/lsan_interface.h>
#endif
#endif

namespace show {

namespace {

/// Characters above 127 of code page 1252 that are not those of the same number.
constexpr std::array<std::pair<unsigned, unsigned char>, 27> others = {
    {{0x20AC, 0x80}, {0x201A, 0x82}, {0x0192, 0x83}, {0x201E, 0x84}, {0x2026, 0x85}, {0x2020, 0x86}, {0x2021, 0x87},
     {0x02C6, 0x88}, {0x2030, 0x89}, {0x0160, 0x8A}, {0x2039, 0x8B}, {0x0152, 0x8C}, {0x017D, 0x8E}, {0x2018, 0x91},
     {0x2019, 0x92}, {0x201C, 0x93}, {0x201D, 0x94}, {0x2022, 0x95}, {0x2013, 0x96}, {0x2014, 0x97}, {0x02DC, 0x98},
     {0x2122, 0x99}, {0x0161, 0x9A}, {0x203A, 0x9B}, {0x0153, 0x9C}, {0x017E, 0x9E}, {0x0178, 0x9F}}};

/// The text as the library takes it; what it has no letter for becomes a question mark.
std::string letters1252(const std::string &utf8) {
    std::string text;
    for (std::size_t i = 0; i < utf8.size();) {
        const auto first = static_cast<unsigned char>(utf8[i]);
        const std::size_t length = first < 0xC0 ? 1 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
        unsigned character = length == 1 ? first : first & (0xFFU >> (length + 1));
        for (std::size_t k = 1; k < length && i + k < utf8.size(); ++k)
            character = character << 6 | (static_cast<unsigned char>(utf8[i + k]) & 0x3FU);
        i += length;
        const auto found =
            std::find_if(others.begin(), others.end(), [=](const auto &pair) { return pair.first == character; });
        if (character == '&')
            text += "&&";
        else if (found != others.end())
            text += static_cast<char>(found->second);
        else if (character >= ' ' && (character < 0x7F || (character >= 0xA0 && character <= 0xFF)))
            text += static_cast<char>(character);
        else
            text += '?';
    }
    return text;
}

} // namespace

int widthOf(const tagRECT &rect) {
    return static_cast<int>(rect.right - rect.left);
}

int heightOf(const tagRECT &rect) {
    return static_cast<int>(rect.bottom - rect.top);
}

tagRECT boundsOf(const Surface &surface) {
    tagRECT bounds = {surface.width, surface.height, 0, 0};
    for (q_long y = 0; y < surface.height; ++y)
        for (q_long x = 0; x < surface.width; ++x)
            if (*surface.at(static_cast<int>(x), static_cast<int>(y)) != 0)
                bounds = {std::min(bounds.left, x), std::min(bounds.top, y), std::max(bounds.right, x + 1),
                          std::max(bounds.bottom, y + 1)};
    return bounds;
}

bool writeLine(const Surface &out, const std::string &line, const tagRECT &place) {
    const Canvas scratch(out.width, out.height);
    const Surface paper = scratch.surface();
    tagRECT whole = paper.rect();
    std::string text = letters1252(line);
    if (text.empty())
        return false;
    char face[] = "Verdana";
    const auto write = [&](int size) {
#if defined(QMUR_SHOW_DETECT_LEAKS)
        // fontconfig keeps its settings behind offsets that a leak detector does not follow.
        const __lsan::ScopedDisabler disabler;
#endif
        fill(paper, 0);
        return size > 0 && iTextOut(paper.pixels, &whole, paper.pitch, text.data(), ink, 0, 0, size, face) != 0;
    };
    // First small enough to be seen whole, then to measure.
    const int tried = std::min(widthOf(place) / static_cast<int>(text.size() + 1), heightOf(place));
    if (!write(tried))
        return false;
    const tagRECT trial = boundsOf(paper);
    if (trial.left >= trial.right)
        return false;
    const double growth = std::min(static_cast<double>(widthOf(place)) / widthOf(trial),
                                   static_cast<double>(heightOf(place)) / heightOf(trial));
    if (!write(static_cast<int>(tried * growth)))
        return false;
    tagRECT letters = boundsOf(paper);
    if (letters.left >= letters.right)
        return false;
    const q_long left = place.left + (widthOf(place) - widthOf(letters)) / 2;
    const q_long top = place.top + (heightOf(place) - heightOf(letters)) / 2;
    iBltFast32_Advanced(out.pixels, paper.pixels, static_cast<int>(left), static_cast<int>(top), &letters, out.pitch,
                        paper.pitch, out.width, out.height);
    return true;
}

} // namespace show
