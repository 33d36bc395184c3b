/// \file
/// Sizes of private blocks.
#ifndef Q_MUR_BASE_PRIVATE_BLOCK_H
#define Q_MUR_BASE_PRIVATE_BLOCK_H

#include <climits>

namespace qmur {

/// A size as FindNotUsedMemory() takes it: -1 to -3 name planes there, and any other negative int is read as unsigned.
/// What no int holds becomes -4, more than any heap can give.
constexpr int requestedBytes(long long bytes) {
    return bytes >= 0 && bytes <= INT_MAX ? static_cast<int>(bytes) : -4;
}

} // namespace qmur

#endif
