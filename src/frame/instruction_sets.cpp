/// \file
/// Asks the processor and the system for their widest instructions, and takes the exported names there.
#include "instruction_sets.h"
#include "jumps.h"

#include <algorithm>
#include <atomic>
#include <cpuid.h>
#include <cstdint>

namespace {

using namespace qmur;

/// One of the numbers that the processor says of itself; 0 where it knows nothing of the leaf.
struct Leaf {
    unsigned eax = 0, ebx = 0, ecx = 0, edx = 0;

    explicit Leaf(unsigned leaf) {
        if (__get_cpuid_max(leaf & 0x80000000, nullptr) >= leaf)
            __cpuid_count(leaf, 0, eax, ebx, ecx, edx);
    }
};

constexpr bool holdsAll(std::uint64_t bits, std::uint64_t wanted) {
    return (bits & wanted) == wanted;
}

/// The registers that the system keeps for each thread. Only for processors that have XGETBV.
std::uint64_t keptRegisters() {
    unsigned low, high;
    __asm__ volatile("xgetbv" : "=a"(low), "=d"(high) : "c"(0));
    return static_cast<std::uint64_t>(high) << 32 | low;
}

InstructionSet widestOfProcessor() {
    constexpr unsigned v3Basic = bit_SSE3 | bit_SSSE3 | bit_FMA | bit_SSE4_1 | bit_SSE4_2 | bit_MOVBE | bit_POPCNT |
                                 bit_OSXSAVE | bit_AVX | bit_F16C;
    constexpr unsigned v3Extended = bit_BMI | bit_AVX2 | bit_BMI2;
    constexpr unsigned v4Extended = bit_AVX512F | bit_AVX512DQ | bit_AVX512CD | bit_AVX512BW | bit_AVX512VL;
    constexpr std::uint64_t vectors256 = 0x6;  // XMM, and the upper halves of YMM
    constexpr std::uint64_t vectors512 = 0xE6; // besides the masks, the upper halves of ZMM, and ZMM 16 to 31

    if (!holdsAll(Leaf(1).ecx, v3Basic) || !holdsAll(Leaf(7).ebx, v3Extended) ||
        !holdsAll(Leaf(0x80000001).ecx, bit_LZCNT) || !holdsAll(keptRegisters(), vectors256))
        return InstructionSet::floor;
    if (!holdsAll(Leaf(7).ebx, v4Extended) || !holdsAll(keptRegisters(), vectors512))
        return InstructionSet::v3;
    return InstructionSet::v4;
}

// Calls may run beside the set-up: each finds one set's function or the other's, which write the same.
std::atomic<InstructionSet> limit = InstructionSet::v4;
std::atomic<InstructionSet> inUse = InstructionSet::floor;

} // namespace

qmur::InstructionSet qmur::widestInLibrary() {
    return InstructionSet::v4;
}

qmur::InstructionSet qmur::widestRunnable() {
    return std::min(widestOfProcessor(), widestInLibrary());
}

qmur::InstructionSet qmur::instructionSetInUse() {
    return inUse.load(std::memory_order_relaxed);
}

void qmur::useWidestInstructionSet() {
    const InstructionSet chosen = std::min(widestRunnable(), limit.load(std::memory_order_relaxed));
    setJumps(chosen);
    inUse.store(chosen, std::memory_order_relaxed);
}

void qmur::limitInstructionSets(InstructionSet widest) {
    limit.store(widest, std::memory_order_relaxed);
}
