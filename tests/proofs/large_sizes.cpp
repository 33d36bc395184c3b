#include "proofs.h"

#include <algorithm>

namespace proofs {
namespace {

std::string_view reason(const Row &row) {
    if (!row.functions.twin)
        return "no twin";
    const auto leadsToPicture = [](const Argument &argument) {
        return isSurface(argument.kind) || argument.kind == Kind::plane || argument.unit == "_PRIVATE_QMGP_DATA";
    };
    return std::any_of(row.arguments.begin(), row.arguments.end(), leadsToPicture) ? "" : "no surface";
}

/// Surfaces of every width up to several vector registers, and long and high ones: the call gives what the twin gives.
void proveSurfaces(const Row &row) {
    int tried = 0;
    for (int number = 0; number < 200; ++number) {
        Random random(static_cast<std::uint64_t>(number));
        const int length = number < 48 ? 17 + number : random.between(65, 700);
        const int other = number < 48 ? random.between(1, 40) : random.between(1, 12);
        const bool isHigh = number % 6 == 0;
        const Call call =
            catalogue::randomCall(row, random, isHigh ? tagPOINT{other, length} : tagPOINT{length, other});
        if (!catalogue::keepsToContract(call)) // what does not grow along
            continue;
        ++tried;
        if (!agree(call, "on a large surface"))
            return;
    }
    EXPECT_GT(tried, 0) << "no call kept to the contract";
}

/// So do figures, quads, meshes, light maps and fills as large as scenes have them, on stages of odd sizes.
void proveScenes(const Row &row) {
    Tally tally;
    for (const catalogue::Scene &scene : {catalogue::scenesOf(row).front(), catalogue::pictureOf(row)})
        for (const tagPOINT &size : {tagPOINT{203, 121}, tagPOINT{331, 187}})
            for (const double time : {0.0, 0.37, 0.81}) {
                const Call call = catalogue::sceneCall(
                    row, scene, {.width = static_cast<int>(size.x), .height = static_cast<int>(size.y), .time = time});
                if (catalogue::keepsToContract(call) && !agree(call, "as a scene", &tally))
                    return;
            }
    tally.expectDrawn(row, "scenes");
}

void prove(const Row &row) {
    proveSurfaces(row);
    if (!testing::Test::HasFailure())
        proveScenes(row);
}

} // namespace

const Proof largeSizes = {"large_sizes", reason, prove};

} // namespace proofs
