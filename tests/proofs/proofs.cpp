#include "proofs.h"

#include "support/cases.h"

#include <cctype>

namespace proofs {

const std::vector<Proof> &allProofs() {
    static const std::vector<Proof> all = {
        agreesWithTwin,
        overlappingSurfaces,
        everyPlaceAndSize,
        writesNothingOutside,
        readsNothingOutside,
        endsOfNumbers,
        channelPairs,
        topBytes,
        sums,
        fractions,
        uniform,
        lookup,
        steps,
        positions,
        places,
        wholeNumbers,
        storedBottomUp,
        clipsHold,
        emptyClips,
        largeSizes,
        readsTables,
#if !defined(__wasm__) // where a program is one thread
        twoThreads,
#endif
    };
    return all;
}

std::string_view reasonAgainst(const Proof &proof, const Row &row) {
    for (const catalogue::Waiver &waiver : row.waived)
        if (waiver.proof == proof.name || waiver.proof == "every proof")
            return waiver.reason;
    return proof.reasonAgainst(row);
}

bool applies(const Proof &proof, const Row &row) {
    const bool isLeftOut = proof.isOfStatement && row.functions.twin && test::leavesOutStatements();
    return !isLeftOut && reasonAgainst(proof, row).empty();
}

void Tally::add(const Call &before, const Call &after) {
    ++tried;
    bool changed = false;
    for (std::size_t i = 0; i < before.size() && !changed; ++i)
        changed = !after[i].differenceFrom(before[i]).empty();
    drawn += changed;
}

void Tally::expectDrawn(const Row &row, const std::string &what) const {
    EXPECT_GT(tried, 0) << what << ": no call kept to the contract";
    if (row.writes && canDraw(row)) {
        EXPECT_GE(20 * drawn, tried) << what << ": of " << tried << " calls " << drawn << " change anything";
    }
}

bool agree(const Call &call, const std::string &what, Tally *tally) {
    Call result = call;
    Call expected = call;
    runSeeded(call.row().functions.library, result, 1);
    runSeeded(call.row().functions.twin, expected, 1);
    if (tally)
        tally->add(call, result);
    const std::string difference = result.differenceFrom(expected);
    if (!difference.empty())
        ADD_FAILURE() << what << ": " << difference << "\n" << described(call);
    return difference.empty();
}

namespace {

class RowTest : public testing::Test {
public:
    RowTest(const Proof &tested, const Row &about) : proof(tested), row(about) {}
    void TestBody() override { proof.prove(row); }

private:
    const Proof &proof;
    const Row &row;
};

/// A name as tests may have it.
std::string testName(const Row &row) {
    std::string name = row.fullName();
    for (char &c : name)
        if (!std::isalnum(static_cast<unsigned char>(c)))
            c = '_';
    return name;
}

} // namespace

void registerTests() {
    for (const Proof &proof : allProofs())
        catalogue::forEachRow([&proof](const Row &row) {
            if (applies(proof, row))
                testing::RegisterTest(std::string(proof.name).c_str(), testName(row).c_str(), nullptr, nullptr,
                                      __FILE__, __LINE__,
                                      [&proof, &row]() -> testing::Test * { return new RowTest(proof, row); });
        });
}

} // namespace proofs
