/// \file
/// The ring searches as they are told, word by word.
#ifndef Q_MUR_TESTS_FILTER_NAIVE_RINGS_H
#define Q_MUR_TESTS_FILTER_NAIVE_RINGS_H

#include "support/random.h"

#include <cstdint>
#include <ostream>

namespace test {

/// What a search of one ring tells.
struct Found {
    int goesOn;
    int distanceSquare;

    friend bool operator==(const Found &, const Found &) = default;
    friend std::ostream &operator<<(std::ostream &out, const Found &found) {
        return out << (found.goesOn ? "going on at " : "ending at ") << found.distanceSquare;
    }
};

/// The smallest squared distance below 1000000 to a word of 0 on one square ring around `index`, 1000000 if none.
inline std::int64_t nearestBlackOnRing(const q_ulong *block, std::int64_t blockWords, std::int64_t index,
                                       std::int64_t pitch, std::int64_t ring) {
    std::int64_t best = 1000000;
    for (std::int64_t dy = -ring; dy <= ring; ++dy)
        for (std::int64_t dx = -ring; dx <= ring; dx += dy == -ring || dy == ring || ring == 0 ? 1 : 2 * ring) {
            const std::int64_t neighbour = index + dy * pitch + dx;
            if (neighbour >= 0 && neighbour < blockWords && block[neighbour] == 0 && dx * dx + dy * dy < best)
                best = dx * dx + dy * dy;
        }
    return best;
}

inline Found findNearBlack(const q_ulong *block, int blockWords, int index, int pitch, int ring, int limit) {
    const auto best = static_cast<int>(nearestBlackOnRing(block, blockWords, index, pitch, ring));
    if (best == 1000000)
        return limit < 1000000 ? Found{0, limit} : Found{1, 1000000};
    return {0, best > limit ? limit : best};
}

inline Found findNearBlack(const q_ulong *block, int blockWords, int index, int pitch, int ring) {
    const bool found = nearestBlackOnRing(block, blockWords, index, pitch, ring) < 1000000;
    return {found ? 0 : 1, ring * ring};
}

/// A word that is part of a shape; at times its colour is black or its top byte 0.
inline q_ulong anyNonZero(Random &random) {
    const q_ulong bit = 1u << random.between(0, 31);
    return random.oneIn(4) ? bit : bit | random.word();
}

} // namespace test

#endif
