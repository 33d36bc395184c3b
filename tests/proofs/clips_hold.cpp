#include "proofs.h"
#include "support/numbers.h"

#include <algorithm>
#include <iterator>

namespace proofs {
namespace {

using test::greatestInt, test::leastInt;

/// The argument that says where the clip is, its width where it begins at (0, 0).
const Argument *clipOf(const Row &row) {
    const auto isClip = [](const Argument &argument) {
        return argument.kind == Kind::clip || argument.name == "clipWidth";
    };
    const auto found = std::find_if(row.arguments.begin(), row.arguments.end(), isClip);
    return found == row.arguments.end() ? nullptr : &*found;
}

std::string_view reason(const Row &row) {
    if (!row.functions.twin)
        return "no twin";
    return clipOf(row) ? "" : "no clip";
}

Box clipBox(const Call &call) {
    const Argument &clip = *clipOf(call.row());
    if (clip.kind == Kind::clip)
        return call[clip.name].rect();
    return {0, 0, call["clipWidth"].whole(), call["clipHeight"].whole()};
}

/// Whether a function draws outside of its clip by contract.
bool leavesItsClip(const Row &row) {
    const Argument &clip = *clipOf(row);
    for (int number = 0; number < 200; ++number) {
        Random random(static_cast<std::uint64_t>(number));
        const Call call = catalogue::randomCall(row, random);
        const Box inside = clipBox(call);
        for (const Area &area : row.writes(call))
            if (area.argument == clip.of && !area.part.isEmpty() &&
                (area.part.left < inside.left || area.part.top < inside.top || area.part.right > inside.right ||
                 area.part.bottom > inside.bottom))
                return true;
    }
    return false;
}

/// Sends a coordinate of one of the points far away that are drawn, floats or ints; the light's place is no pixels.
void sendPointFarAway(Call &call, std::size_t index, int place, Random &random) {
    const Plane &plane = call[index].plane();
    const int points = static_cast<int>(plane.bytes().size()) / 16;
    if (call.row().arguments[index].unit != "pixels" || points == 0)
        return;
    const int word = 4 * random.between(0, points - 1) + random.between(0, 1);
    if (call.row().functions.types[index] == catalogue::Type::reals)
        plane.as<float>()[word] = static_cast<float>(place);
    else
        plane.as<int>()[word] = place;
}

/// What is drawn may begin and end anywhere, beyond what the contract allows; where it is read from is trusted.
void sendFarAway(Call &call, Random &random) {
    const auto anEnd = [&random] {
        const int distance = random.between(0, random.oneIn(2) ? 2 : 20);
        return random.oneIn(2) ? leastInt + distance : greatestInt - distance;
    };
    for (std::size_t i = 0; i < call.size(); ++i) {
        const Argument &argument = call.row().arguments[i];
        const Argument *surface = call.row().argument(argument.of);
        if (random.oneIn(2))
            continue;
        if (argument.kind == Kind::position || argument.kind == Kind::radius)
            call[i] = anEnd();
        if (argument.kind == Kind::point && surface && surface->kind == Kind::destination)
            (random.oneIn(2) ? call[i].point().x : call[i].point().y) = anEnd();
        if (argument.kind == Kind::points)
            sendPointFarAway(call, i, anEnd(), random);
        if (argument.kind != Kind::rectangle || !surface)
            continue;
        tagRECT &rect = call[i].rect();
        q_long *const sides[] = {&rect.left, &rect.top, &rect.right, &rect.bottom};
        if (surface->kind == Kind::destination)
            *sides[random.between(0, 3)] = anEnd();
        else // an extent below 0 may lead from the one end of the numbers to the other
            (random.oneIn(2) ? rect.right : rect.bottom) -= random.between(0, 14);
    }
}

/// Whether the sources hold what a call reads: texels follow from places, and far away from these they are trusted.
bool sourcesHold(const Call &call) {
    const Areas read = call.row().reads ? call.row().reads(call) : Areas();
    return std::all_of(read.begin(), read.end(), [&call](const Area &area) {
        const Plane *plane = call[area.argument].surface();
        return call.row().argument(area.argument)->kind != Kind::source || !plane || plane->holds(area.part);
    });
}

/// Whether a call changes nothing on the clip's surface and its Z plane but inside the clip.
bool staysInside(const Call &before) {
    const Row &row = before.row();
    const Argument &clip = *clipOf(row);
    Call after = before;
    row.functions.library(after)();
    for (std::size_t i = 0; i < after.size(); ++i) {
        const std::string_view name = row.arguments[i].name;
        const Plane *plane = after[i].surface();
        if (!plane || (name != clip.of && row.arguments[i].kind != Kind::privateBlock))
            continue;
        const std::string place = writtenOutside(*before[i].surface(), *plane, {{name, clipBox(before)}}, name);
        if (!place.empty()) {
            ADD_FAILURE() << place << " is written: " << described(before);
            return false;
        }
    }
    return true;
}

/// Figures that begin or end at the ends of numbers, whether they keep to the contract or not, draw nothing outside of
/// their clip.
void prove(const Row &row) {
    int tried = 0;
    for (int number = 0; number < 1000; ++number) {
        Random random(static_cast<std::uint64_t>(number));
        Call call = catalogue::randomCall(row, random);
        sendFarAway(call, random);
        if (!sourcesHold(call))
            continue;
        ++tried;
        if (!staysInside(call))
            return;
    }
    EXPECT_GE(tried, 50) << "of 1000 calls so few have sources that hold what is read";
}

std::string_view reasonAgainstEmpty(const Row &row) {
    const std::string_view against = reason(row);
    return against.empty() && clipOf(row)->kind != Kind::clip ? "no rectangle" : against;
}

/// Empty clips at the ends of numbers draw what the twin draws.
void proveEmpty(const Row &row) {
    constexpr tagRECT empty[] = {{greatestInt, 0, 9, 9},
                                 {0, greatestInt, 9, 9},
                                 {0, 0, leastInt, 9},
                                 {0, 0, 9, leastInt},
                                 {greatestInt, 0, greatestInt, 9},
                                 {0, greatestInt, 9, greatestInt},
                                 {greatestInt, greatestInt, leastInt, leastInt},
                                 {leastInt, leastInt, leastInt, leastInt}};
    for (int number = 0; number < 200; ++number) {
        Random random(static_cast<std::uint64_t>(number));
        Call call = catalogue::randomCall(row, random);
        call[clipOf(row)->name] = empty[static_cast<std::size_t>(number) % std::size(empty)];
        if (!agree(call, "an empty clip at the ends of numbers"))
            return;
    }
}

TEST(ClipsHold, is_waived_for_the_rows_that_write_outside_of_their_clip) {
    catalogue::forEachRow([](const Row &row) {
        if (reason(row).empty() && leavesItsClip(row)) {
            EXPECT_NE(reasonAgainst(clipsHold, row), "") << row.fullName();
        }
    });
}

} // namespace

const Proof clipsHold = {"clips_hold_at_the_ends_of_numbers", reason, prove};
const Proof emptyClips = {"empty_clips_at_the_ends_of_numbers", reasonAgainstEmpty, proveEmpty};

} // namespace proofs
