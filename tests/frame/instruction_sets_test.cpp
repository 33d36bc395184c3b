#include "frame/instruction_sets.h"

#include "frame/at_load.h"

#include <gtest/gtest.h>

namespace {

using qmur::InstructionSet;

#if Q_MUR_TESTS_SETS

/// What the compiler's own runtime finds, which asks for each extension by itself.
InstructionSet widestByTheCompiler() {
    __builtin_cpu_init();
    if (__builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") && __builtin_cpu_supports("avx512cd") &&
        __builtin_cpu_supports("avx512dq") && __builtin_cpu_supports("avx512vl"))
        return InstructionSet::v4;
    if (__builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma") && __builtin_cpu_supports("bmi") &&
        __builtin_cpu_supports("bmi2"))
        return InstructionSet::v3;
    return InstructionSet::floor;
}

TEST(InstructionSets, the_widest_that_the_compiler_finds_too_is_chosen_at_set_up) {
    EXPECT_EQ(qmur::widestInLibrary(), InstructionSet::v4);
    EXPECT_EQ(qmur::widestRunnable(), widestByTheCompiler());
    EXPECT_EQ(qmur::instructionSetInUse(), widestByTheCompiler());
}

TEST(InstructionSets, a_limit_holds_from_the_next_set_up_on) {
    const InstructionSet before = qmur::instructionSetInUse();
    for (const InstructionSet limit : {InstructionSet::floor, InstructionSet::v3, InstructionSet::v4}) {
        const InstructionSet last = qmur::instructionSetInUse();
        qmur::limitInstructionSets(limit);
        EXPECT_EQ(qmur::instructionSetInUse(), last);
        PrepareSinTable();
        EXPECT_EQ(qmur::instructionSetInUse(), limit < before ? limit : before);
    }
    EXPECT_EQ(qmur::instructionSetInUse(), before);
}

#else

TEST(InstructionSets, there_is_one_alone) {
    EXPECT_EQ(qmur::widestInLibrary(), InstructionSet::floor);
    EXPECT_EQ(qmur::widestRunnable(), InstructionSet::floor);
    EXPECT_EQ(qmur::instructionSetInUse(), InstructionSet::floor);
}

#endif

TEST(InstructionSets, loading_chooses_nothing) {
    EXPECT_EQ(test::atLoad.set, InstructionSet::floor);
}

} // namespace
