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

constexpr std::string_view nameOf(Sums sums) {
    constexpr std::string_view names[] = {"stay inside", "saturate", "wrap", "carry over", "none"};
    static_assert(std::size(names) == static_cast<std::size_t>(Sums::none) + 1);
    return names[static_cast<std::size_t>(sums)];
}

} // namespace catalogue

#endif
