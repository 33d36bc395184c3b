#include "proofs.h"

#include <algorithm>

namespace proofs {
namespace {

constexpr int reach = 3;

std::string_view reason(const Row &row) {
    if (!row.functions.twin)
        return "no twin";
    if (row.overlap == Overlap::none)
        return "one surface";
    return row.overlap == Overlap::notPromised ? "not promised" : "";
}

bool isLaidOver(const Argument &argument) {
    return argument.kind == Kind::destination || argument.kind == Kind::source;
}

/// Lays the surfaces of a call into one, the first source moved by (dx, dy) from the destination, and each further one
/// by as much or by as little as may be.
void overlap(Call &call, int dx, int dy, Random &random) {
    int width = 0;
    int height = 0;
    for (std::size_t i = 0; i < call.size(); ++i)
        if (isLaidOver(call.row().arguments[i]) && call[i].is<Plane>()) {
            width = std::max(width, call[i].plane().width());
            height = std::max(height, call[i].plane().height());
        }
    Plane shared = Plane::randomSurface(random, width + 2 * reach, height + 2 * reach).movedBy(reach, reach);
    for (std::size_t i = 0; i < call.size(); ++i) {
        const Argument &argument = call.row().arguments[i];
        if (!isLaidOver(argument) || !call[i].is<Plane>() || call[i].plane().isNull())
            continue;
        call[i] = argument.kind == Kind::source ? shared.movedBy(dx, dy) : shared;
        if (argument.kind == Kind::source && random.oneIn(2)) {
            dx = random.between(-reach, reach);
            dy = random.between(-reach, reach);
        }
    }
    call.settle();
}

/// Lays the surfaces of a call on one sheet: the destination in its middle, each source beside it by a little, or above
/// or below it by about its height, or on another sheet. A pitch below the width lays rows over each other, too.
void layOnSheet(Call &call, Random &random) {
    const int pitch = random.between(1, 48);
    const Plane sheet = Plane(4, pitch, 1600 / pitch + 64).movedBy(0, 800 / pitch + 32);
    for (std::byte &byte : Plane(sheet).bytes())
        byte = static_cast<std::byte>(random.word());
    for (std::size_t i = 0; i < call.size(); ++i) {
        const Argument &argument = call.row().arguments[i];
        if (!isLaidOver(argument) || !call[i].is<Plane>() || call[i].plane().isNull())
            continue;
        const int dy = random.between(-6, 6);
        const int beyond = random.oneIn(2) ? dy < 0 ? -8 : 8 : 0;
        const Plane moved = sheet.movedBy(random.between(-6, 6), dy + beyond);
        Copies copies;
        call[i] = argument.kind == Kind::destination ? sheet : random.oneIn(2) ? moved : moved.copy(copies);
    }
    call.settle();
}

/// Source and destination in one surface, up to three pixels apart each way: what is drawn is what rows from top to
/// bottom and pixels from left to right give. So it is where they begin anywhere on one sheet.
void prove(const Row &row) {
    Tally moved;
    int seed = 0;
    for (int number = 0; number < 20; ++number)
        for (int dy = -reach; dy <= reach; ++dy)
            for (int dx = -reach; dx <= reach; ++dx) {
                Random random(static_cast<std::uint64_t>(seed++));
                Call call = catalogue::randomCall(row, random);
                overlap(call, dx, dy, random);
                if (!catalogue::keepsToContract(call))
                    continue;
                if (!agree(call, "moved by " + std::to_string(dx) + ", " + std::to_string(dy), &moved))
                    return;
            }
    moved.expectDrawn(row, "in one surface");
    Tally laid;
    for (int number = 0; number < 400; ++number) {
        Random random(static_cast<std::uint64_t>(number));
        Call call = catalogue::randomCall(row, random);
        layOnSheet(call, random);
        if (catalogue::keepsToContract(call) && !agree(call, "on one sheet", &laid))
            return;
    }
    laid.expectDrawn(row, "on one sheet");
}

} // namespace

const Proof overlappingSurfaces = {"overlapping_surfaces_run_in_row_and_column_order", reason, prove};

} // namespace proofs
