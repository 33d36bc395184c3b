/// \file
/// Words for what calls read and write, and for the steps in which they are arranged.
#ifndef Q_MUR_CATALOGUE_AREAS_H
#define Q_MUR_CATALOGUE_AREAS_H

#include "row.h"

#include <algorithm>
#include <type_traits>
#include <utility>

namespace catalogue {

/// Extents in 32 bits, which wrap where the sides lie further apart.
constexpr int extentOf(q_long begin, q_long end) {
    return static_cast<int>(static_cast<std::uint32_t>(end) - static_cast<std::uint32_t>(begin));
}

constexpr int widthOf(const tagRECT &rect) {
    return extentOf(rect.left, rect.right);
}

constexpr int heightOf(const tagRECT &rect) {
    return extentOf(rect.top, rect.bottom);
}

constexpr tagRECT common(const tagRECT &a, const tagRECT &b) {
    return {std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right), std::min(a.bottom, b.bottom)};
}

constexpr Box common(const Box &a, const Box &b) {
    return {std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right), std::min(a.bottom, b.bottom)};
}

/// A box by its corner and its size.
constexpr Box boxOf(std::int64_t left, std::int64_t top, std::int64_t width, std::int64_t height) {
    return {left, top, left + width, top + height};
}

/// The box around a centre, as many elements to each side and the centre itself.
constexpr Box around(std::int64_t x, std::int64_t y, std::int64_t reach) {
    return {x - reach, y - reach, x + reach + 1, y + reach + 1};
}

/// A box that grows by so many elements on each side; an empty one stays empty.
constexpr Box grown(const Box &box, int left, int top, int right, int bottom) {
    return box.isEmpty() ? box : Box{box.left - left, box.top - top, box.right + right, box.bottom + bottom};
}

/// The area of a picture that begins at the first pixel of a surface.
inline Box frameOf(const Call &call) {
    return boxOf(0, 0, call["width"].whole(), call["height"].whole());
}

/// The box around a line from (`x1`, `y1`) to (`x2`, `y2`), both ends included.
inline Box lineBox(const Call &call) {
    const auto [left, right] = std::minmax({call["x1"].whole(), call["x2"].whole()});
    const auto [top, bottom] = std::minmax({call["y1"].whole(), call["y2"].whole()});
    return {left, top, right + std::int64_t{1}, bottom + std::int64_t{1}};
}

/// So many words of an array, and so many points or other records of four words.
inline Area words(std::string_view name, std::int64_t count) {
    return {name, {0, 0, count, 1}};
}
inline Area records(std::string_view name, std::int64_t count) {
    return words(name, 4 * count);
}

/// What `box` says of a call is the region of an argument; a name says that it is the rectangle of this name.
template <class MakeBox>
Region on(std::string_view argument, MakeBox box) {
    return [=](const Call &call) -> Areas {
        if constexpr (std::is_convertible_v<MakeBox, std::string_view>)
            return {{argument, call[box].rect()}};
        else
            return {{argument, box(call)}};
    };
}

/// The part of a box that lies inside the rectangle of an argument.
template <class MakeBox>
auto inside(std::string_view rect, MakeBox box) {
    return [=](const Call &call) { return common(Box(call[rect].rect()), box(call)); };
}

/// The same of which calls may touch a part only.
inline Region atMost(Region region) {
    return [region = std::move(region)](const Call &call) {
        Areas areas = region(call);
        for (Area &area : areas)
            area.isAtMost = true;
        return areas;
    };
}

/// Areas that are the same in every call.
inline Region always(Areas areas) {
    return [areas = std::move(areas)](const Call &) { return areas; };
}

inline Areas operator+(Areas areas, const Areas &more) {
    areas.insert(areas.end(), more.begin(), more.end());
    return areas;
}
/// Either may be empty.
inline Region operator+(Region first, Region second) {
    if (!first || !second)
        return first ? first : second;
    return
        [first = std::move(first), second = std::move(second)](const Call &call) { return first(call) + second(call); };
}

constexpr std::string_view beyondFormat = "{srcRect} is beyond the format of source positions";

/// Forbids that what a call writes is touched by it through another argument, too.
inline Row apart(Row row) {
    const auto isApart = [](const Call &call) {
        const Areas written = call.row().writes(call);
        const Areas all = written + call.row().reads(call);
        for (const Area &area : written)
            for (const Area &other : all) {
                const Plane *plane = call[area.argument].surface();
                const Plane *otherPlane = call[other.argument].surface();
                const bool matters = plane && otherPlane && other.argument != area.argument && !other.isAtMost;
                if (matters && plane->meets(area.part, *otherPlane, other.part))
                    return false;
            }
        return true;
    };
    row.overlap = Overlap::notPromised;
    row.rules.push_back({"surfaces that must be apart lie over each other", isApart});
    return row;
}

/// Several steps made into one, of a call's arrangement or of a scene. Steps may be empty.
template <class... Steps>
auto inTurn(Steps... steps) {
    return [=](Call &call, auto &origin) {
        const auto take = [&](const auto &step) {
            if constexpr (requires { bool(step); })
                if (!step)
                    return;
            step(call, origin);
        };
        (take(steps), ...);
    };
}

/// A step that gives an argument a value, each call one of its own: calls in two threads share no plane.
inline auto set(std::string_view name, const Value &value) {
    return [=](Call &call, auto &) {
        Copies copies;
        call[name] = value.copy(copies);
    };
}

/// Makes a surface at least so large each way, and opens the clip.
inline void openWide(Call &call, Random &random, int least, std::string_view surface = "dst") {
    const Plane &dst = call[surface].plane();
    const int width = std::max(dst.width(), random.between(least, 16));
    const int height = std::max(dst.height(), random.between(least, 16));
    if (dst.width() < least || dst.height() < least)
        call[surface] = Plane::randomSurface(random, width, height);
    if (call.row().argument("clip"))
        call["clip"] = call[surface].plane().rect();
}

/// A step that chooses whole numbers.
inline auto chooseWhole(std::initializer_list<std::string_view> names, int low, int high) {
    return [names = std::vector<std::string_view>(names), low, high](Call &call, Random &random) {
        for (const std::string_view name : names)
            call[name] = random.between(low, high);
    };
}

} // namespace catalogue

#endif
