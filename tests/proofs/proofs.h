/// \file
/// What holds for every row of the catalogue. Each proof stands in a file of its own and is run for each row to which
/// it applies, as the test `<proof>.<row>`.
#ifndef Q_MUR_TESTS_PROOFS_H
#define Q_MUR_TESTS_PROOFS_H

#include "regions.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace proofs {

struct Proof {
    std::string_view name;

    /// Why the proof has nothing to say of a row, in a word; empty if it has.
    std::string_view (*reasonAgainst)(const Row &);

    void (*prove)(const Row &);

    /// The proof is of what a row states, which is true of every build if it is of one, and not of a build's bytes.
    bool isOfStatement = false;
};

extern const Proof agreesWithTwin;
extern const Proof overlappingSurfaces;
extern const Proof everyPlaceAndSize;
extern const Proof writesNothingOutside;
extern const Proof readsNothingOutside;
extern const Proof endsOfNumbers;
extern const Proof channelPairs;
extern const Proof topBytes;
extern const Proof sums;
extern const Proof fractions;
extern const Proof uniform;
extern const Proof lookup;
extern const Proof steps;
extern const Proof positions;
extern const Proof places;
extern const Proof wholeNumbers;
extern const Proof twoThreads;
extern const Proof storedBottomUp;
extern const Proof clipsHold;
extern const Proof emptyClips;
extern const Proof largeSizes;
extern const Proof readsTables;

const std::vector<Proof> &allProofs();

/// The reason of the proof or of the row itself.
std::string_view reasonAgainst(const Proof &proof, const Row &row);

/// Whether the proof is run for a row: one of a statement may be left out where a twin answers for the bytes.
bool applies(const Proof &proof, const Row &row);

/// Counts the calls of a proof and those of them that change something: where none does, a proof proves nothing.
class Tally {
public:
    void add(const Call &before, const Call &after);

    /// Expects calls, and of a row that writes anything one in twenty that changes something.
    void expectDrawn(const Row &row, const std::string &what) const;

private:
    int tried = 0;
    int drawn = 0;
};

/// Whether a row's function can draw here: without a rasteriser there are no letters.
inline bool canDraw(const Row &row) {
    return Q_MUR_TESTS_TEXT || row.name != "iTextOut";
}

/// Runs both functions of a row on copies of `call` and reports what differs, as the test's failure.
/// \return whether they agree
bool agree(const Call &call, const std::string &what, Tally *tally = nullptr);

/// Makes each cell of the matrix that has an answer of its own a test; called before the tests run.
void registerTests();

} // namespace proofs

#endif
