/// \file
/// Words for the arguments of rows. Those that look the same in many functions have a word of their own; the others are
/// written out as an Argument.
#ifndef Q_MUR_CATALOGUE_ARGUMENTS_H
#define Q_MUR_CATALOGUE_ARGUMENTS_H

#include "row.h"

namespace catalogue {

inline Argument destination(std::string_view name = "dst") {
    return {.name = name, .kind = Kind::destination, .unit = "pixels"};
}
inline Argument source(std::string_view name = "src") {
    return {.name = name, .kind = Kind::source, .unit = "pixels"};
}
inline Argument scratch(std::string_view name = "scratch") {
    return {.name = name, .kind = Kind::scratch, .unit = "pixels"};
}
inline Argument pitch(std::string_view name, std::string_view of) {
    return {.name = name, .kind = Kind::pitch, .unit = "pixels", .of = of};
}
inline Argument rectangle(std::string_view name, std::string_view of) {
    return {.name = name, .kind = Kind::rectangle, .unit = "pixels", .of = of};
}
inline Argument clip(std::string_view name, std::string_view of) {
    return {.name = name, .kind = Kind::clip, .unit = "pixels", .of = of};
}
/// A column or row, `drawn` from one place of the stage to another, both as a part of its width or height.
inline Argument position(std::string_view name, std::string_view of, Range drawn = {0.5, 0.5}) {
    return {.name = name, .kind = Kind::position, .unit = "pixels", .drawn = drawn, .of = of};
}
inline Argument extent(std::string_view name, std::string_view of) {
    return {.name = name, .kind = Kind::extent, .unit = "pixels", .of = of};
}
inline Argument radius(std::string_view name, Range contract, Range drawn) {
    return {.name = name, .kind = Kind::radius, .unit = "pixels", .contract = contract, .drawn = drawn};
}
inline Argument colour(std::string_view name = "colour") {
    return {.name = name, .kind = Kind::colour, .unit = "0x00RRGGBB", .contract = anyWord};
}
inline Argument key(std::string_view name = "key") {
    return {.name = name, .kind = Kind::key, .unit = "0x00RRGGBB", .contract = anyWord};
}
/// A factor of a channel in 1/256.
inline Argument channelWeight(std::string_view name) {
    return {.name = name, .kind = Kind::weight, .unit = "1/256", .contract = anyByte, .drawn = {64, 255}};
}
inline Argument alpha(std::string_view name = "alpha", Range drawn = {0.1, 0.9}) {
    return {.name = name, .kind = Kind::alpha, .unit = "1", .contract = {0, 1}, .drawn = drawn};
}
inline Argument angle(std::string_view name = "angle", Range drawn = {0, 6.2831853}) {
    return {.name = name, .kind = Kind::angle, .unit = "radians", .contract = anyReal, .drawn = drawn};
}
/// Any other whole number.
inline Argument number(std::string_view name, std::string_view unit, Range contract, Range drawn) {
    return {.name = name, .kind = Kind::number, .unit = unit, .contract = contract, .drawn = drawn};
}
inline Argument choice(std::string_view name, Range contract, double drawn = 0) {
    return {.name = name, .kind = Kind::choice, .unit = "", .contract = contract, .drawn = {drawn, drawn}};
}
inline Argument unused(std::string_view name) {
    return {.name = name, .kind = Kind::unused, .unit = ""};
}

} // namespace catalogue

#endif
