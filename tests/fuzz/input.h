/// \file
/// How an input of the fuzzer becomes calls: in pieces of equal length, so that a change of one byte leaves the other
/// calls as they are.
#ifndef Q_MUR_TESTS_FUZZ_INPUT_H
#define Q_MUR_TESTS_FUZZ_INPUT_H

#include "catalogue/row.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <span>
#include <string>
#include <vector>

namespace fuzz {

using Bytes = std::span<const unsigned char>;

inline constexpr std::size_t pieceBytes = 64;
inline constexpr std::size_t mostPieces = 8;

/// Calls `visit(piece)` for the pieces of an input.
template <class Visit>
void forEachPiece(Bytes input, Visit visit) {
    for (std::size_t piece = 0; piece < mostPieces && !input.empty(); ++piece) {
        const std::size_t length = std::min(input.size(), pieceBytes);
        visit(input.first(length));
        input = input.subspan(length);
    }
}

/// All rows, each under a number.
inline const std::vector<const catalogue::Row *> &rows() {
    static const auto all = [] {
        std::vector<const catalogue::Row *> found;
        catalogue::forEachRow([&found](const catalogue::Row &row) { found.push_back(&row); });
        return found;
    }();
    return all;
}

inline const catalogue::Row &chosenRow(catalogue::Random &random) {
    return *rows()[static_cast<std::size_t>(random.between(0, static_cast<int>(rows().size()) - 1))];
}

/// Mostly as small as seeded calls are, at times long, high, or anything between.
inline tagPOINT chosenSize(catalogue::Random &random) {
    switch (random.between(0, 7)) {
    case 0:
    case 1:
        return {random.between(1, 64), 1 + random.between(0, 63)};
    case 2:
        return {random.between(65, 700), 1 + random.between(0, 11)};
    case 3:
        return {random.between(1, 12), 65 + random.between(0, 635)};
    default:
        return {0, 0};
    }
}

/// A number of a range, often at one of its ends or near 0.
inline double chosenNumber(const catalogue::Range &range, bool isReal, catalogue::Random &random) {
    const bool isUp = random.oneIn(2);
    const int distance = random.between(0, 255);
    switch (random.between(0, 3)) {
    case 0:
        return isUp ? range.high - (isReal ? 0 : distance) : range.low + (isReal ? 0 : distance);
    case 1:
        return isUp ? distance : -distance;
    case 2:
        return std::ldexp(isUp ? 1 + distance : -1 - distance, random.between(isReal ? -140 : 0, isReal ? 119 : 24));
    default:
        return static_cast<std::int32_t>(random.word());
    }
}

/// Such a number as a function gets it in 32 bits.
inline int chosenWord(const catalogue::Range &range, catalogue::Random &random) {
    return static_cast<int>(static_cast<std::uint32_t>(static_cast<std::int64_t>(chosenNumber(range, false, random))));
}

/// Says what is wrong with a call and ends the program, so that the fuzzer keeps the input.
[[noreturn]] inline void fail(const catalogue::Row &row, const std::string &what) {
    std::fprintf(stderr, "%s: %s\n", row.fullName().c_str(), what.c_str());
    std::abort();
}

/// Whether each call is to be printed before it is made: what a crash would not say.
inline bool tellsCalls() {
    static const bool tells = std::getenv("Q_MUR_FUZZ_TELL");
    return tells;
}

} // namespace fuzz

#endif
