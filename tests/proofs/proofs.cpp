#include "proofs.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>

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

void runSeeded(const std::function<catalogue::Run(Call &)> &function, Call &call, unsigned seed) {
    if (call.row().drawsRandomNumbers)
        std::srand(seed);
    function(call)();
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
        if (!isInside(areas, argument, place))
            return std::string(argument) + " (" + std::to_string(place.x) + ", " + std::to_string(place.y) + ")";
    }
    return {};
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
            if (reasonAgainst(proof, row).empty())
                testing::RegisterTest(std::string(proof.name).c_str(), testName(row).c_str(), nullptr, nullptr,
                                      __FILE__, __LINE__,
                                      [&proof, &row]() -> testing::Test * { return new RowTest(proof, row); });
        });
}

} // namespace proofs
