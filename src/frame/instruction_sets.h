/// \file
/// Which processor's instructions the exported functions run on.
#ifndef Q_MUR_FRAME_INSTRUCTION_SETS_H
#define Q_MUR_FRAME_INSTRUCTION_SETS_H

namespace qmur {

/// Narrowest first. `floor` is what all of the library needs: SSE2 on x86, if the build does not say otherwise.
enum class InstructionSet { floor, v3, v4 };

/// The widest set that this library holds.
InstructionSet widestInLibrary();

/// The widest set that the library holds and both the processor and the system allow.
InstructionSet widestRunnable();

/// The set that calls go to: the floor until useWidestInstructionSet() has run.
InstructionSet instructionSetInUse();

/// Takes calls to the widest runnable set up to the limit.
void useWidestInstructionSet();

/// Has useWidestInstructionSet() choose nothing wider. For tests and measurements: the library never calls it.
void limitInstructionSets(InstructionSet widest);

} // namespace qmur

#endif
