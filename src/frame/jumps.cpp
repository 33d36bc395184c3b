/// \file
/// The jumps themselves. `q_Mur_jumps.inc`, which the build writes, holds
///
///     Q_MUR_JUMP(<slot>, "<name>")                  for each function that the sets define, in the order of the slots
///     Q_MUR_SAME(<number>, "<name>", "<another>")   for each further name of one of them
///
/// A set's own function is called `<name>.<set>`.
#include "jumps.h"

#include <atomic>
#include <cstddef>

// How an assembler knows what the compiler calls `name`.
#define Q_MUR_SYMBOL(name) Q_MUR_TEXT(__USER_LABEL_PREFIX__) name
#define Q_MUR_TEXT(value) Q_MUR_TEXT_OF(value)
#define Q_MUR_TEXT_OF(value) #value

using Function = void (*)();

// Nothing here is reached through tables that a system's loader would have to fill by name.
#if !defined(_WIN32)
#pragma GCC visibility push(hidden)
#endif

#define Q_MUR_SAME(number, name, another)
#define Q_MUR_JUMP(slot, name)                                                                                         \
    extern "C" void q_MurSse2##slot() __asm__(Q_MUR_SYMBOL(name ".sse2"));                                             \
    extern "C" void q_MurV3##slot() __asm__(Q_MUR_SYMBOL(name ".v3"));                                                 \
    extern "C" void q_MurV4##slot() __asm__(Q_MUR_SYMBOL(name ".v4"));
#include <q_Mur_jumps.inc>
#undef Q_MUR_JUMP

// The jumps know it by this name.
extern "C" std::atomic<Function> q_MurSlots[];

#if !defined(_WIN32)
#pragma GCC visibility pop
#endif

namespace {

#define Q_MUR_JUMP(slot, name) q_MurSse2##slot,
constexpr Function sse2Functions[] = {
#include <q_Mur_jumps.inc>
};
#undef Q_MUR_JUMP

#define Q_MUR_JUMP(slot, name) q_MurV3##slot,
constexpr Function v3Functions[] = {
#include <q_Mur_jumps.inc>
};
#undef Q_MUR_JUMP

#define Q_MUR_JUMP(slot, name) q_MurV4##slot,
constexpr Function v4Functions[] = {
#include <q_Mur_jumps.inc>
};
#undef Q_MUR_JUMP

constexpr std::size_t slotCount = sizeof(sse2Functions) / sizeof(Function);

} // namespace

#define Q_MUR_JUMP(slot, name) q_MurSse2##slot,
constinit std::atomic<Function> q_MurSlots[slotCount] = {
#include <q_Mur_jumps.inc>
};
#undef Q_MUR_JUMP
#undef Q_MUR_SAME

static_assert(sizeof(std::atomic<Function>) == sizeof(Function) && std::atomic<Function>::is_always_lock_free);

void qmur::setJumps(InstructionSet set) {
    const Function *const functions = set == InstructionSet::v4   ? v4Functions
                                      : set == InstructionSet::v3 ? v3Functions
                                                                  : sse2Functions;
    for (std::size_t slot = 0; slot < slotCount; ++slot)
        q_MurSlots[slot].store(functions[slot], std::memory_order_relaxed);
}

// A jump leaves the stack as it is, and every register that is a function's to be handed or to keep.

#if defined(__x86_64__)
#define Q_MUR_GO(slot) "jmp *" Q_MUR_SYMBOL("q_MurSlots") "+8*" #slot "(%rip)"
#elif defined(_WIN32)
#define Q_MUR_GO(slot) "jmp *" Q_MUR_SYMBOL("q_MurSlots") "+4*" #slot
#else
#define Q_MUR_GO(slot) "call q_MurReturnAddress\n0: jmp *" Q_MUR_SYMBOL("q_MurSlots") "+4*" #slot "-0b(%eax)"

extern "C" __attribute__((naked)) void q_MurReturnAddress() {
    __asm__("movl (%esp), %eax\nret");
}
#endif

#if defined(_WIN32)
#define Q_MUR_SHOWN
#else
#define Q_MUR_SHOWN , visibility("default")
#endif

#define Q_MUR_JUMP(slot, name)                                                                                         \
    extern "C" __attribute__((naked Q_MUR_SHOWN)) void q_MurJump##slot() noexcept __asm__(Q_MUR_SYMBOL(name));         \
    void q_MurJump##slot() noexcept {                                                                                  \
        __asm__(Q_MUR_GO(slot));                                                                                       \
    }
#define Q_MUR_SAME(number, name, another)                                                                              \
    extern "C"                                                                                                         \
        __attribute__((alias(another) Q_MUR_SHOWN)) void q_MurSame##number() noexcept __asm__(Q_MUR_SYMBOL(name));
#include <q_Mur_jumps.inc>
