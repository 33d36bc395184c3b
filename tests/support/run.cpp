#include "run.h"

#include "proofs/proofs.h"

#include "q_Mur/checked.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>

#if defined(_WIN32)
#include <windows.h>
#elif !defined(__wasm__)
#include <dlfcn.h>
#endif

namespace {

#if !defined(__wasm__)

/// A function of a library that is loaded already.
void *loadedFunction(const char *name) {
#if defined(_WIN32)
    const HMODULE library = GetModuleHandleA("q_Mur.dll");
    return library ? reinterpret_cast<void *>(GetProcAddress(library, name)) : nullptr;
#else
    return dlsym(RTLD_DEFAULT, name);
#endif
}

decltype(&q_Mur_checked_surface) tellOfSurface = nullptr;

/// Where these tests run on the checked library, it is to know all memory of theirs: pictures lie within margins.
/// \return whether it is there if it is asked for
bool tellCheckedLibrary() {
    void *const found = loadedFunction("q_Mur_checked_surface");
    if (!found)
        return !std::getenv("Q_MUR_TESTS_ARE_CHECKED");
    tellOfSurface = reinterpret_cast<decltype(tellOfSurface)>(found);
    catalogue::tellOfMemory = [](const void *memory, std::size_t bytes) {
        const auto words = static_cast<int>((bytes + 3) / 4);
        tellOfSurface(memory, words, words > 0 ? 1 : 0);
    };
    return true;
}

#else
bool tellCheckedLibrary() {
    return true;
}
#endif

} // namespace

int test::run(int argc, char **argv) {
    testing::InitGoogleTest(&argc, argv);
    if (!takesArguments(argc, argv))
        return 2;
    if (!tellCheckedLibrary()) {
        std::fputs("the checked library is not loaded\n", stderr);
        return 2;
    }
    Init_qMur_GlobalData(nullptr, nullptr);
    proofs::registerTests();
    return RUN_ALL_TESTS();
}
