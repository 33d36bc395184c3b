#include "proofs.h"

#include <algorithm>

namespace proofs {
namespace {

std::string_view reason(const Row &row) {
    if (!row.functions.twin)
        return "no twin";
    const auto isPicture = [](const Argument &argument) { return isSurface(argument.kind); };
    return std::any_of(row.arguments.begin(), row.arguments.end(), isPicture) ? "" : "no surface";
}

/// Surfaces of every width up to several vector registers, and long and high ones: the call gives what the twin gives.
void prove(const Row &row) {
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

} // namespace

const Proof largeSizes = {"large_sizes", reason, prove};

} // namespace proofs
