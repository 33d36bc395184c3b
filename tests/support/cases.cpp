#include "cases.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstdio>

namespace test {
namespace {

struct Golden {
    std::string_view name;
    std::uint64_t checksum;
    std::uint64_t prefix = 0; ///< the checksum of the first cases
};

constexpr Golden goldens[] = {
#include "../golden/blit.inc"
#include "../golden/draw.inc"
#include "../golden/filter.inc"
#include "../golden/frame.inc"
#include "../golden/math3d.inc"
#include "../golden/pipeline.inc"
#include "../golden/region.inc"
#include "../golden/sprite.inc"
#include "../golden/textured.inc"
#include "../golden/warp.inc"
    {"", 0},
};

int replayed = -1;
int most = 1000000000;
bool statementsAreLeftOut = false;
bool comparesSums = true;

const Golden *goldenOf(std::string_view name) {
    for (const Golden &golden : goldens)
        if (golden.name == name)
            return &golden;
    return nullptr;
}

} // namespace

void replayCase(int number) {
    replayed = number;
}

bool replaysOneCase() {
    return replayed >= 0;
}

void limitCases(int count) {
    most = count < prefixLength ? prefixLength : count;
}

void limitCasesWithoutSums(int count) {
    most = count;
    comparesSums = false;
}

void leaveOutStatements() {
    statementsAreLeftOut = true;
}

bool leavesOutStatements() {
    return statementsAreLeftOut;
}

void Case::fold(std::uint32_t word) {
    for (int shift = 0; shift < 32; shift += 8)
        checksum = (checksum ^ (word >> shift & 0xFF)) * 0x100000001B3u; // FNV-1a
}

void Case::report(const std::string &difference) {
    differs = true;
    ADD_FAILURE() << "case " << number << ": " << difference << "\nreplay it alone with --case=" << number;
}

void Case::expectEqual(const Surface &result, const Surface &expected) {
    for (const q_ulong word : result.words())
        fold(static_cast<std::uint32_t>(word));
    if (!(result == expected))
        report(result.differenceFrom(expected));
}

void Case::expectEqual(std::int64_t result, std::int64_t expected) {
    fold(static_cast<std::uint32_t>(result));
    fold(static_cast<std::uint32_t>(result >> 32));
    if (result != expected)
        report(std::to_string(result) + " instead of " + std::to_string(expected));
}

void Case::expectEqual(float result, float expected) {
    const auto bits = std::bit_cast<std::uint32_t>(result);
    fold(bits);
    if (bits != std::bit_cast<std::uint32_t>(expected))
        report(std::to_string(result) + " instead of " + std::to_string(expected) +
               ", or they differ in the last bits");
}

void forEachCase(std::string_view name, const std::function<void(Case &)> &body, int count) {
    std::uint64_t checksum = 0xCBF29CE484222325u;
    std::uint64_t prefix = 0;
    const Golden *golden = goldenOf(name);
    const bool cut = most < count && (name.empty() || !comparesSums || (golden && golden->prefix != 0));
    const int first = replayed >= 0 ? replayed : 0;
    const int end = replayed >= 0 ? replayed + 1 : cut ? most : count;
    for (int number = first; number < end; ++number) {
        Case one(number, checksum);
        body(one);
        if (one.failed() || testing::Test::HasFatalFailure())
            return;
        if (number + 1 == prefixLength)
            prefix = checksum;
    }
    if (replayed >= 0 || name.empty() || !comparesSums)
        return;
    const bool prefixHolds = golden && (golden->prefix == 0 || golden->prefix == prefix);
    if (prefixHolds && (cut || golden->checksum == checksum))
        return;
    char text[64];
    std::snprintf(text, sizeof text, "0x%016llX, 0x%016llX", static_cast<unsigned long long>(checksum),
                  static_cast<unsigned long long>(prefix));
    ADD_FAILURE() << "golden: {\"" << name << "\", " << text
                  << "},\nis not the checksum written down for this function; "
                  << "if the change is wanted, run tools/accept-golden";
}

void forEachCaseUnsummed(const std::function<void(Case &)> &body, int count) {
    forEachCase("", body, count);
}

} // namespace test
