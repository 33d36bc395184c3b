#include "proofs.h"

#include <algorithm>
#include <climits>

namespace proofs {
namespace {

const Argument *clipOf(const Row &row) {
    const auto isClip = [](const Argument &argument) { return argument.kind == Kind::clip; };
    const auto found = std::find_if(row.arguments.begin(), row.arguments.end(), isClip);
    return found == row.arguments.end() ? nullptr : &*found;
}

std::string_view reason(const Row &row) {
    if (!row.call.twin)
        return "no twin";
    return clipOf(row) ? "" : "no clip";
}

/// Whether a function draws outside of its clip by contract.
bool leavesItsClip(const Row &row) {
    const Argument &clip = *clipOf(row);
    for (int number = 0; number < 200; ++number) {
        Random random(static_cast<std::uint64_t>(number));
        const Call call = catalogue::randomCall(row, random);
        const Box inside = call[clip.name].rect();
        for (const Area &area : row.writes(call))
            if (area.argument == clip.of && !area.part.isEmpty() &&
                (area.part.left < inside.left || area.part.top < inside.top || area.part.right > inside.right ||
                 area.part.bottom > inside.bottom))
                return true;
    }
    return false;
}

/// What is drawn may begin and end anywhere, beyond what the contract allows; where it is read from is trusted.
void sendFarAway(Call &call, Random &random) {
    const auto far = [&random] {
        const int distance = random.oneIn(2) ? 0 : random.between(0, 20);
        return random.oneIn(2) ? INT_MIN + distance : INT_MAX - distance;
    };
    for (std::size_t i = 0; i < call.size(); ++i) {
        const Argument &argument = call.row().arguments[i];
        const Argument *surface = call.row().argument(argument.of);
        const bool isDrawn = surface && surface->kind == Kind::destination;
        if (random.oneIn(2))
            continue;
        if (argument.kind == Kind::position || argument.kind == Kind::radius)
            call[i] = far();
        else if (argument.kind == Kind::rectangle && isDrawn) {
            tagRECT &rect = call[i].rect();
            q_long *const sides[] = {&rect.left, &rect.top, &rect.right, &rect.bottom};
            *sides[random.between(0, 3)] = far();
        }
    }
}

/// Whether a call changes nothing on the clip's surface and its Z plane but inside the clip.
bool staysInside(const Call &before) {
    const Row &row = before.row();
    const Argument &clip = *clipOf(row);
    Call after = before;
    row.call.library(after)();
    for (std::size_t i = 0; i < after.size(); ++i) {
        const std::string_view name = row.arguments[i].name;
        const Plane *plane = after[i].surface();
        if (!plane || (name != clip.of && row.arguments[i].kind != Kind::privateBlock))
            continue;
        const std::string place =
            writtenOutside(*before[i].surface(), *plane, {{name, before[clip.name].rect()}}, name);
        if (!place.empty()) {
            ADD_FAILURE() << place << " is written: " << described(before);
            return false;
        }
    }
    return true;
}

/// Clips turned inside out at the ends of numbers draw what the twin draws. Figures that begin or end there, whether
/// they keep to the contract or not, draw nothing outside of their clip.
void prove(const Row &row) {
    constexpr tagRECT insideOut[] = {{INT_MAX, 0, 9, 9},
                                     {0, INT_MAX, 9, 9},
                                     {0, 0, INT_MIN, 9},
                                     {0, 0, 9, INT_MIN},
                                     {INT_MAX, INT_MAX, INT_MIN, INT_MIN}};
    const bool isHeld = !leavesItsClip(row);
    for (int number = 0; number < 200; ++number) {
        Random random(static_cast<std::uint64_t>(number));
        Call call = catalogue::randomCall(row, random);
        sendFarAway(call, random);
        if (isHeld && !staysInside(call))
            return;
        call = catalogue::randomCall(row, random);
        call[clipOf(row)->name] = insideOut[number % 5];
        if (!agree(call, "a clip turned inside out"))
            return;
    }
}

} // namespace

const Proof clipsHold = {"clips_hold_at_the_ends_of_numbers", reason, prove};

} // namespace proofs
