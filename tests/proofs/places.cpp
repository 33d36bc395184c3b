#include "levels.h"

#include <algorithm>
#include <cstdlib>

namespace proofs {
namespace {

/// The surface that places lie on: the one destination, where no frame of it begins at its first pixel.
const Argument *surfaceOf(const Row &row) {
    const Argument *found = nullptr;
    for (const Argument &argument : row.arguments) {
        if (argument.kind == Kind::destination)
            found = found ? nullptr : &argument;
        if (argument.kind == Kind::extent && argument.of != "src" && argument.of != "resource")
            return nullptr;
    }
    return found;
}

bool isPlace(const Argument &argument, const Argument &surface) {
    const bool isPlaced = argument.kind == Kind::position || argument.kind == Kind::rectangle ||
                          argument.kind == Kind::clip || argument.kind == Kind::point;
    return isPlaced && argument.of == surface.name;
}

std::string_view reason(const Row &row) {
    for (const Argument &argument : row.arguments)
        if (argument.kind == Kind::privateBlock || argument.kind == Kind::points)
            return "places in memory";
    const Argument *surface = surfaceOf(row);
    if (!surface)
        return "no places";
    const bool hasPlace = std::any_of(row.arguments.begin(), row.arguments.end(),
                                      [surface](const Argument &argument) { return isPlace(argument, *surface); });
    return hasPlace ? "" : "no places";
}

/// Whether a place lies where it could not be counted from elsewhere in 32 bits.
bool hasPlaceAtTheEndOfNumbers(const Call &call, const Argument &surface) {
    const auto isAtEnd = [](std::int64_t number) { return std::abs(number) > 1 << 30; };
    for (std::size_t i = 0; i < call.size(); ++i) {
        if (!isPlace(call.row().arguments[i], surface))
            continue;
        if (call[i].is<tagRECT>()) {
            const tagRECT rect = call[i].rect();
            if (isAtEnd(rect.left) || isAtEnd(rect.top) || isAtEnd(rect.right) || isAtEnd(rect.bottom))
                return true;
        } else if (call[i].is<tagPOINT>()) {
            if (isAtEnd(call[i].point().x) || isAtEnd(call[i].point().y))
                return true;
        } else if (isAtEnd(call[i].whole())) {
            return true;
        }
    }
    return false;
}

/// The same call on the same memory, whose surface begins some pixels further to the right and down.
Call seenFromFurther(const Call &call, const Argument &surface) {
    constexpr int columns = 5;
    constexpr int rows = 3;
    const int unit = call.row().name == "iBltPerfect32" ? 16 : 1;
    Call moved = call;
    moved[surface.name] = moved[surface.name].plane().movedBy(columns, rows);
    for (std::size_t i = 0; i < call.size(); ++i) {
        const Argument &argument = call.row().arguments[i];
        if (!isPlace(argument, surface))
            continue;
        if (moved[i].is<tagRECT>()) {
            const tagRECT rect = moved[i].rect();
            moved[i] = tagRECT{rect.left - columns * unit, rect.top - rows * unit, rect.right - columns * unit,
                               rect.bottom - rows * unit};
        } else if (moved[i].is<tagPOINT>()) {
            const tagPOINT point = moved[i].point();
            moved[i] = tagPOINT{point.x - columns, point.y - rows};
        } else {
            const bool isRow = argument.name.find_first_of("yY") != std::string_view::npos;
            moved[i] = moved[i].whole() - (isRow ? rows : columns);
        }
    }
    return moved;
}

/// Nothing but a clip bounds what is drawn: left of and above a surface's first pixel is drawn what lies there.
void prove(const Row &row) {
    const Argument &surface = *surfaceOf(row);
    Tally tally;
    for (int number = 0; number < 400; ++number) {
        Random random(static_cast<std::uint64_t>(number));
        const Call before = catalogue::randomCall(row, random);
        if (hasPlaceAtTheEndOfNumbers(before, surface))
            continue;
        const Call expected = ran(before);
        const Call result = ran(seenFromFurther(before, surface));
        tally.add(before, expected);
        const std::span<const std::byte> should = expected[surface.name].plane().bytes();
        const std::span<const std::byte> is = result[surface.name].plane().bytes();
        ASSERT_TRUE(std::equal(is.begin(), is.end(), should.begin())) << "case " << number << "\n" << described(before);
    }
    tally.expectDrawn(row, "seen from further");
}

} // namespace

const Proof places = {"places_are_bounded_by_clips_alone", reason, prove};

} // namespace proofs
