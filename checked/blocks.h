/// \file
/// The blocks of hosts' records: which there are, and which have been freed.
#ifndef Q_MUR_CHECKED_BLOCKS_H
#define Q_MUR_CHECKED_BLOCKS_H

#include "given.h"

#include <string>

namespace checked {

/// What is wrong with a call of the block manager; empty if nothing is.
std::string faultOfRecord(const catalogue::Row &row, std::span<const Given> given);

/// What is wrong with a private block; empty if nothing is.
std::string faultOfBlock(std::string_view name, const void *block);

/// Takes notice of what a call is about to free, and of what it has allocated.
void noteBefore(const catalogue::Row &row, std::span<const Given> given);
void noteAfter(const catalogue::Row &row, std::span<const Given> given, const void *allocated);

/// What stands in the entries of a Z plane that nobody has reset.
inline constexpr short neverReset = -0x5556;

} // namespace checked

#endif
