/// \file
/// The host as a Windows program without a C runtime, without the platform's headers and with no import library but
/// those of q_Mur and kernel32: what a foreign compiler needs to use the library, and nothing else.
#include "host.h"

extern "C" {

[[noreturn]] __declspec(dllimport) void __stdcall ExitProcess(unsigned status);
__declspec(dllimport) void *__stdcall GetStdHandle(unsigned long which);
__declspec(dllimport) int __stdcall WriteFile(void *file, const void *bytes, unsigned long count,
                                              unsigned long *written, void *overlapped);

/// The compiler refers to it wherever floating point is used.
int _fltused = 0;

[[noreturn]] void bareProgram();
}

namespace {

void print(const char *text) {
    constexpr auto standardError = static_cast<unsigned long>(-12);
    unsigned long length = 0;
    while (text[length] != '\0')
        ++length;
    WriteFile(GetStdHandle(standardError), text, length, &length, nullptr);
}

} // namespace

void bareProgram() {
    const char *failed = checkLibrary();
    print(failed ? "failed: " : "the library answers as it should");
    print(failed ? failed : "");
    print("\n");
    ExitProcess(failed ? 1 : 0);
}
