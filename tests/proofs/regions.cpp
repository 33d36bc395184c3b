#include "regions.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace proofs {
namespace {

/// What a call needs of a plane: the smallest rectangle around all that it reads and writes there.
Box needed(const Areas &areas, std::string_view argument) {
    Box all;
    for (const Area &area : areas) {
        if (area.argument != argument)
            continue;
        if (all.isEmpty())
            all = area.part;
        all = {std::min(all.left, area.part.left), std::min(all.top, area.part.top),
               std::max(all.right, area.part.right), std::max(all.bottom, area.part.bottom)};
    }
    return all;
}

/// Whether a place is that of an element in one of the areas, which lies in another row where it is beyond the pitch.
bool isElementOf(const Areas &areas, std::string_view argument, const tagPOINT &place, std::int64_t pitch) {
    const std::int64_t element = place.y * pitch + place.x;
    for (const Area &area : areas)
        for (std::int64_t y = area.part.top; area.argument == argument && y < area.part.bottom; ++y)
            if (const std::int64_t x = element - y * pitch; x >= area.part.left && x < area.part.right)
                return true;
    return false;
}

} // namespace

void runSeeded(const std::function<catalogue::Run(Call &)> &function, Call &call, unsigned seed) {
    if (call.row().drawsRandomNumbers)
        std::srand(seed);
    function(call)();
}

std::string described(const Call &call) {
    std::string text;
    for (std::size_t i = 0; i < call.size(); ++i) {
        const Value &value = call[i];
        text += std::string(i ? ", " : "") + std::string(call.row().arguments[i].name) + " ";
        char part[80] = "...";
        if (value.is<double>())
            std::snprintf(part, sizeof part, "%.17g", value.number());
        else if (value.is<tagRECT>())
            std::snprintf(part, sizeof part, "{%d, %d, %d, %d}", static_cast<int>(value.rect().left),
                          static_cast<int>(value.rect().top), static_cast<int>(value.rect().right),
                          static_cast<int>(value.rect().bottom));
        else if (value.is<tagPOINT>())
            std::snprintf(part, sizeof part, "{%d, %d}", static_cast<int>(value.point().x),
                          static_cast<int>(value.point().y));
        else if (value.is<Plane>())
            std::snprintf(part, sizeof part, "[%d x %d]", value.plane().width(), value.plane().height());
        text += part;
    }
    return text;
}

bool isInside(const Areas &areas, std::string_view argument, const tagPOINT &place) {
    return std::any_of(areas.begin(), areas.end(),
                       [&](const Area &area) { return area.argument == argument && area.part.contains(place); });
}

std::string writtenOutside(const Plane &before, const Plane &after, const Areas &areas, std::string_view argument) {
    const auto was = before.bytes();
    const auto is = after.bytes();
    for (auto at = std::mismatch(is.begin(), is.end(), was.begin()); at.first != is.end();
         at = std::mismatch(at.first + 1, is.end(), at.second + 1)) {
        const tagPOINT place = after.placeOf(static_cast<std::size_t>(at.first - is.begin()));
        if (!isInside(areas, argument, place) && !isElementOf(areas, argument, place, after.pitch()))
            return std::string(argument) + " (" + std::to_string(place.x) + ", " + std::to_string(place.y) + ")";
    }
    return {};
}

Areas touched(const Call &call) {
    Areas all;
    for (const auto &areas : {call.row().writes, call.row().reads})
        if (areas)
            for (const Area &area : areas(call))
                if (!area.part.isEmpty())
                    all.push_back(area);
    return all;
}

const Plane *fencedPlane(const Call &call, std::size_t index) {
    const Plane *plane = call[index].surface();
    return plane && call.row().arguments[index].kind != Kind::hostRecord ? plane : nullptr;
}

bool sharesMemory(const Call &call) {
    for (std::size_t i = 0; i < call.size(); ++i)
        for (std::size_t j = 0; j < i; ++j)
            if (call[i].is<Plane>() && call[j].is<Plane>() && !call[i].plane().isNull() &&
                call[i].plane().bytes().data() == call[j].plane().bytes().data())
                return true;
    return false;
}

Call cutTo(const Call &call, const Areas &areas, Fence fence) {
    Call cut = call;
    for (std::size_t i = 0; i < call.size(); ++i)
        if (const Plane *plane = fencedPlane(call, i))
            *cut[i].surface() = plane->cutTo(needed(areas, call.row().arguments[i].name), fence);
    return cut;
}

} // namespace proofs
