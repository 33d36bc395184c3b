#include "proofs.h"

#include <algorithm>

namespace proofs {
namespace {

std::string_view reason(const Row &row) {
    if (!row.writes)
        return "writes no surface";
    const auto hasPitch = [](const Argument &argument) {
        return argument.kind == Kind::pitch || argument.unit == "_PRIVATE_QMGP_DATA";
    };
    return std::any_of(row.arguments.begin(), row.arguments.end(), hasPitch) ? "" : "no pitch";
}

/// With all planes stored bottom-up, under pitches of the other sign, the same is drawn.
void prove(const Row &row) {
    Tally tally;
    for (int number = 0; number < 300; ++number) {
        Random random(static_cast<std::uint64_t>(number));
        const Call call = catalogue::randomCall(row, random);
        Call expected = call;
        Call turned = expected.turnedOver();
        runSeeded(row.functions.library, expected, 1);
        runSeeded(row.functions.library, turned, 1);
        tally.add(call, expected);
        ASSERT_EQ(turned.turnedOver().differenceFrom(expected), "") << "case " << number << ": " << described(call);
    }
    tally.expectDrawn(row, "stored bottom-up");
}

} // namespace

const Proof storedBottomUp = {"pictures_stored_bottom_up", reason, prove};

} // namespace proofs
