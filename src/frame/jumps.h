/// \file
/// The exported names of functions that are there once for each instruction set: jumps through a table of slots.
#ifndef Q_MUR_FRAME_JUMPS_H
#define Q_MUR_FRAME_JUMPS_H

#include "instruction_sets.h"

namespace qmur {

/// Leads every jump to the functions of a set.
void setJumps(InstructionSet set);

} // namespace qmur

#endif
