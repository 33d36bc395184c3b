/// \file
/// Private blocks that are carved out of one allocation.
#ifndef Q_MUR_BASE_PRIVATE_BLOCK_H
#define Q_MUR_BASE_PRIVATE_BLOCK_H

#include <climits>

namespace qmur {

/// A size as the block manager takes it. One that an int cannot hold becomes the largest that is no code of a plane
/// when read as unsigned, which no heap has.
constexpr int requestedBytes(long long bytes) {
    return bytes >= 0 && bytes <= INT_MAX ? static_cast<int>(bytes) : -4;
}

} // namespace qmur

#endif
