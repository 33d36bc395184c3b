/// \file
/// How the catalogue's enumerations are written in words.
#ifndef Q_MUR_CATALOGUE_NAMES_H
#define Q_MUR_CATALOGUE_NAMES_H

#include "row.h"

namespace catalogue {

constexpr std::string_view nameOf(Kind kind) {
    switch (kind) {
    case Kind::destination:
        return "destination";
    case Kind::source:
        return "source";
    case Kind::scratch:
        return "scratch";
    case Kind::plane:
        return "plane";
    case Kind::depths:
        return "depths";
    case Kind::rectangle:
        return "rectangle";
    case Kind::clip:
        return "clip";
    case Kind::point:
        return "point";
    case Kind::position:
        return "position";
    case Kind::pitch:
        return "pitch";
    case Kind::extent:
        return "extent";
    case Kind::radius:
        return "radius";
    case Kind::count:
        return "count";
    case Kind::colour:
        return "colour";
    case Kind::key:
        return "key";
    case Kind::weight:
        return "weight";
    case Kind::alpha:
        return "alpha";
    case Kind::angle:
        return "angle";
    case Kind::scale:
        return "scale";
    case Kind::number:
        return "number";
    case Kind::choice:
        return "choice";
    case Kind::unused:
        return "unused";
    case Kind::points:
        return "points";
    case Kind::colours:
        return "colours";
    case Kind::numbers:
        return "numbers";
    case Kind::matrix:
        return "matrix";
    case Kind::privateBlock:
        return "private block";
    case Kind::hostRecord:
        return "host record";
    case Kind::text:
        return "text";
    }
    return "";
}

constexpr std::string_view nameOf(Overlap overlap) {
    switch (overlap) {
    case Overlap::rowOrder:
        return "row order";
    case Overlap::none:
        return "none";
    case Overlap::notPromised:
        return "not promised";
    }
    return "";
}

constexpr std::string_view nameOf(TopByte topByte) {
    switch (topByte) {
    case TopByte::cleared:
        return "cleared";
    case TopByte::copied:
        return "copied";
    case TopByte::kept:
        return "kept";
    case TopByte::blended:
        return "blended";
    case TopByte::setByColour:
        return "set by the colour";
    case TopByte::disturbsRed:
        return "disturbs red";
    case TopByte::noPixels:
        return "no pixels";
    }
    return "";
}

constexpr std::string_view nameOf(Sums sums) {
    switch (sums) {
    case Sums::stayInside:
        return "stay inside";
    case Sums::saturate:
        return "saturate";
    case Sums::wrap:
        return "wrap";
    case Sums::carryOver:
        return "carry over";
    case Sums::none:
        return "none";
    }
    return "";
}

} // namespace catalogue

#endif
