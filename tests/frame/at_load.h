/// \file
/// What the library shows before its tables are filled.
#ifndef Q_MUR_TESTS_FRAME_AT_LOAD_H
#define Q_MUR_TESTS_FRAME_AT_LOAD_H

#include "frame/instruction_sets.h"

#include <q_Mur.h>

namespace test {

struct AtLoad {
    bool sinesAreZero;
    bool cosinesAreZero;
    bool rootsAreZero;
    qmur::InstructionSet set;
    q_ulong rainbowColour;
    int gaussRand[40]; ///< the first results of GaussRand()
};

/// Taken down before anything else is called.
extern AtLoad atLoad;

} // namespace test

#endif
