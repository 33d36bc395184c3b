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
inline Argument point(std::string_view name, std::string_view of) {
    return {.name = name, .kind = Kind::point, .unit = "pixels", .of = of};
}
/// A column or row; its way is a share of the stage's width or height.
inline Argument position(std::string_view name, std::string_view of, Way inScene = {0.5, 0.5},
                         Range contract = anyInt) {
    return {.name = name, .kind = Kind::position, .unit = "pixels", .contract = contract, .inScene = inScene, .of = of};
}
inline Argument extent(std::string_view name, std::string_view of, Range contract = anyInt) {
    return {.name = name, .kind = Kind::extent, .unit = "pixels", .contract = contract, .of = of};
}
inline Argument radius(std::string_view name, Range contract, Way inScene) {
    return {.name = name, .kind = Kind::radius, .unit = "pixels", .contract = contract, .inScene = inScene};
}
inline Argument count(std::string_view name, std::string_view unit, Range contract = anyInt, Way inScene = {0, 0}) {
    return {.name = name, .kind = Kind::count, .unit = unit, .contract = contract, .inScene = inScene};
}
inline Argument colour(std::string_view name = "colour") {
    return {.name = name, .kind = Kind::colour, .unit = "0x00RRGGBB", .contract = anyWord};
}
inline Argument key(std::string_view name = "key") {
    return {.name = name, .kind = Kind::key, .unit = "0x00RRGGBB", .contract = anyWord};
}
/// A factor of a channel in 1/256.
inline Argument channelWeight(std::string_view name) {
    return {.name = name, .kind = Kind::weight, .unit = "1/256", .contract = anyByte, .inScene = {64, 255}};
}
/// An alpha that is not clamped.
inline Argument alpha(Way inScene = {0.1, 0.9}) {
    return {.name = "alpha",
            .kind = Kind::alpha,
            .unit = "1",
            .contract = anyReal,
            .inScene = inScene,
            .meant = {0, 1},
            .fractionBits = 8};
}
inline Argument angle(std::string_view name = "angle", Range contract = anyReal, Way inScene = {0, fullTurn}) {
    return {.name = name, .kind = Kind::angle, .unit = "radians", .contract = contract, .inScene = inScene};
}
inline Argument scale(std::string_view name, Range contract, Way inScene) {
    return {.name = name, .kind = Kind::scale, .unit = "1", .contract = contract, .inScene = inScene};
}
/// Any other number.
inline Argument number(std::string_view name, std::string_view unit, Range contract, Way inScene) {
    return {.name = name, .kind = Kind::number, .unit = unit, .contract = contract, .inScene = inScene};
}
inline Argument choice(std::string_view name, Range contract = anyInt, double inScene = 0) {
    return {.name = name, .kind = Kind::choice, .unit = "", .contract = contract, .inScene = {inScene, inScene}};
}
inline Argument unused(std::string_view name) {
    return {.name = name, .kind = Kind::unused, .unit = ""};
}

// Arrays, records and other memory that is no surface.

inline Argument plane(std::string_view name) {
    return {.name = name, .kind = Kind::plane, .unit = "bytes"};
}
inline Argument points(std::string_view name, std::string_view unit = "pixels", std::string_view of = {}) {
    return {.name = name, .kind = Kind::points, .unit = unit, .of = of};
}
inline Argument colours(std::string_view name) {
    return {.name = name, .kind = Kind::colours, .unit = "0x00RRGGBB"};
}
inline Argument numbers(std::string_view name, std::string_view unit) {
    return {.name = name, .kind = Kind::numbers, .unit = unit};
}
inline Argument text(std::string_view name, std::string_view unit) {
    return {.name = name, .kind = Kind::text, .unit = unit};
}
inline Argument privateBlock(std::string_view name, std::string_view unit, std::string_view of = {}) {
    return {.name = name, .kind = Kind::privateBlock, .unit = unit, .of = of};
}
inline Argument hostRecord(std::string_view name, std::string_view unit) {
    return {.name = name, .kind = Kind::hostRecord, .unit = unit};
}
inline Argument orNull(Argument argument) {
    argument.mayBeNull = true;
    return argument;
}

/// A surface with the pitch of another.
inline Argument alike(Argument surface, std::string_view other) {
    surface.of = other;
    return surface;
}

/// Says what makes sense of a number.
inline Argument meant(Argument argument, Range range) {
    argument.meant = range;
    return argument;
}
/// A number with which nothing is written, which is allowed and not meant.
inline Argument idle(Argument argument, Range range) {
    argument.idle = range;
    return meant(argument, argument.contract);
}

/// Several arguments that are alike but for their names.
inline Arguments each(std::initializer_list<std::string_view> names, Argument argument) {
    Arguments all;
    for (const std::string_view name : names) {
        argument.name = name;
        all.push_back(argument);
    }
    return all;
}

// Arguments one behind the other: `destination() + source() + pitches`.

inline Arguments operator+(Arguments first, const Arguments &then) {
    first.insert(first.end(), then.begin(), then.end());
    return first;
}
inline Arguments operator+(Arguments first, const Argument &then) {
    first.push_back(then);
    return first;
}
inline Arguments operator+(const Argument &first, const Arguments &then) {
    return Arguments{first} + then;
}
inline Arguments operator+(const Argument &first, const Argument &then) {
    return {first, then};
}

} // namespace catalogue

#endif
