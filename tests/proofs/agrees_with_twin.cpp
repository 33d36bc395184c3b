#include "proofs.h"

#include "support/cases.h"
#include "support/precision.h"

#include <algorithm>
#include <optional>

namespace proofs {
namespace {

std::string_view reason(const Row &row) {
    return row.functions.twin ? "" : "no twin";
}

/// 20,000 calls, or as many as the row says, drawn from the case's number give the same bytes as the plain twin; every
/// other one comes from a host that has left the floating unit at 53 bits.
void prove(const Row &row) {
    Tally tally;
    const auto compare = [&](test::Case &c) {
        const auto seed = static_cast<unsigned>(c.number);
        const Call call = catalogue::randomCall(row, c.random);
        ASSERT_TRUE(catalogue::keepsToContract(call)) << "case " << c.number << ": " << described(call);
        Call result = call;
        {
            std::optional<test::ReducedPrecision> precision;
            if (c.number % 2 == 1)
                precision.emplace();
            runSeeded(row.functions.library, result, seed);
        }
        Call expected = call;
        runSeeded(row.functions.twin, expected, seed);
        tally.add(call, result);
        result.addTo(c.sum());
        const std::string difference = result.differenceFrom(expected);
        if (!difference.empty())
            c.report(difference + "\n" + described(call));
    };
    // Platforms draw other random numbers, and a record with pointers has another size on each.
    const bool hasRecord = std::any_of(row.arguments.begin(), row.arguments.end(),
                                       [](const Argument &argument) { return argument.kind == Kind::hostRecord; });
    if (row.drawsRandomNumbers || hasRecord)
        test::forEachCaseUnsummed(compare, row.cases);
    else
        test::forEachCase(row.fullName(), compare, row.cases);
    if (!testing::Test::HasFailure() && !test::replaysOneCase())
        tally.expectDrawn(row, "seeded cases");
}

} // namespace

const Proof agreesWithTwin = {"agrees_with_its_twin", reason, prove};

} // namespace proofs
