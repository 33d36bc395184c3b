/// \file
/// Seeded random cases: each is computed by the library and by a naive second computation in the test, compared bit by
/// bit, and folded into a checksum that every build must reproduce.
///
/// A failing case is replayed alone with `q_Mur_tests --gtest_filter=... --case=NUMBER`. After a wanted change,
/// `tools/accept-golden` writes the new checksums down.
#ifndef Q_MUR_TESTS_CASES_H
#define Q_MUR_TESTS_CASES_H

#include "random.h"
#include "surface.h"

#include <cstdint>
#include <functional>
#include <string_view>

namespace test {

/// One seeded case. Its outcome goes into the function's checksum.
class Case {
public:
    Case(int seed, std::uint64_t &sum) : random(static_cast<std::uint64_t>(seed)), number(seed), checksum(sum) {}

    /// Compares a result with the naive one, pixel by pixel, margins included.
    void expectEqual(const Surface &result, const Surface &expected);

    /// Compares a number with the naive one.
    void expectEqual(std::int64_t result, std::int64_t expected);

    /// Compares two floats bit by bit.
    void expectEqual(float result, float expected);

    /// What the outcomes are folded into, and what says that one differs: for outcomes of other kinds.
    std::uint64_t &sum() { return checksum; }
    void report(const std::string &difference);

    bool failed() const { return differs; }

    Random random;
    const int number;

private:
    void fold(std::uint32_t word);

    std::uint64_t &checksum;
    bool differs = false;
};

inline constexpr int usualCases = 20000;

/// Runs `count` cases and compares their checksum with the one written down under `name`: the exported function's name,
/// for an overload with a word behind it. Stops at the first case that differs.
void forEachCase(std::string_view name, const std::function<void(Case &)> &body, int count = usualCases);

/// The same without a checksum, for what is not the same in every build.
void forEachCaseUnsummed(const std::function<void(Case &)> &body, int count = usualCases);

/// Replays one case only; -1 runs them all.
void replayCase(int number);
bool replaysOneCase();

/// Runs so many cases at the most, no fewer than `prefixLength`; a second checksum is written down for these.
void limitCases(int count);

/// Runs so many cases at the most, be they ever so few, and compares no checksums: for where each takes very long.
void limitCasesWithoutSums(int count);
inline constexpr int prefixLength = 2000;

/// Leaves out proofs of what rows state, for where another build runs them.
void leaveOutStatements();
bool leavesOutStatements();

} // namespace test

#endif
