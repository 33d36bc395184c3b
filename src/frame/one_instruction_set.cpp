/// \file
/// The library holds one set, and there is nothing to choose.
#include "instruction_sets.h"

qmur::InstructionSet qmur::widestInLibrary() {
    return InstructionSet::floor;
}

qmur::InstructionSet qmur::widestRunnable() {
    return InstructionSet::floor;
}

qmur::InstructionSet qmur::instructionSetInUse() {
    return InstructionSet::floor;
}

void qmur::useWidestInstructionSet() {}

void qmur::limitInstructionSets(InstructionSet) {}
