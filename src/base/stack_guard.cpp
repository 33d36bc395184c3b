/// \file
/// For WebAssembly: what Debian's arithmetic on 128 bits asks for and its C library does not have. Weak, so that a C
/// library which is linked for its own is none too many.
#include <cstdint>

extern "C" {
extern std::uintptr_t __stack_chk_guard;
[[noreturn]] void __stack_chk_fail();

[[gnu::weak]] std::uintptr_t __stack_chk_guard = 0x0A0DFF00;
[[gnu::weak]] void __stack_chk_fail() {
    __builtin_trap();
}
}
