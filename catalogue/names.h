/// \file
/// How the catalogue's enumerations are written in words.
#ifndef Q_MUR_CATALOGUE_NAMES_H
#define Q_MUR_CATALOGUE_NAMES_H

#include "row.h"

#include <iterator>

namespace catalogue {

constexpr std::string_view nameOf(Kind kind) {
    constexpr std::string_view names[] = {
        "destination", "source",  "scratch", "plane",  "rectangle",     "clip",        "point",
        "position",    "pitch",   "extent",  "radius", "count",         "colour",      "key",
        "weight",      "alpha",   "angle",   "scale",  "number",        "choice",      "unused",
        "points",      "colours", "numbers", "matrix", "private block", "host record", "text"};
    static_assert(std::size(names) == static_cast<std::size_t>(Kind::text) + 1);
    return names[static_cast<std::size_t>(kind)];
}

constexpr std::string_view nameOf(Overlap overlap) {
    constexpr std::string_view names[] = {"row order", "none", "not promised"};
    static_assert(std::size(names) == static_cast<std::size_t>(Overlap::notPromised) + 1);
    return names[static_cast<std::size_t>(overlap)];
}

constexpr std::string_view nameOf(TopByte topByte) {
    constexpr std::string_view names[] = {"cleared",           "cleared by light", "copied",   "blended",
                                          "set by the colour", "disturbs red",     "no pixels"};
    static_assert(std::size(names) == static_cast<std::size_t>(TopByte::noPixels) + 1);
    return names[static_cast<std::size_t>(topByte)];
}

constexpr std::string_view nameOf(Sum sum) {
    constexpr std::string_view names[] = {"stay inside", "saturate", "wrap", "carry over", "none"};
    static_assert(std::size(names) == static_cast<std::size_t>(Sum::none) + 1);
    return names[static_cast<std::size_t>(sum)];
}

constexpr std::string_view nameOf(Fractions fractions) {
    constexpr std::string_view names[] = {"none", "cut off", "rounded up", "not counted"};
    static_assert(std::size(names) == static_cast<std::size_t>(Fractions::notCounted) + 1);
    return names[static_cast<std::size_t>(fractions)];
}

constexpr std::string_view nameOf(Uniform uniform) {
    constexpr std::string_view names[] = {"stays", "darkens", "none"};
    static_assert(std::size(names) == static_cast<std::size_t>(Uniform::none) + 1);
    return names[static_cast<std::size_t>(uniform)];
}

constexpr std::string_view nameOf(Lookup lookup) {
    constexpr std::string_view names[] = {"nearest", "filtered", "none"};
    static_assert(std::size(names) == static_cast<std::size_t>(Lookup::none) + 1);
    return names[static_cast<std::size_t>(lookup)];
}

} // namespace catalogue

#endif
