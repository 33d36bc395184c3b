/// \file
/// A host that loads the library at run time and finds its functions by their decorated names.
#include <q_Mur.h>

#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>

// The code of q_ulong within a decorated name.
#if defined(__LP64__)
#define Q "j"
#else
#define Q "m"
#endif

namespace {

void *library = nullptr;

void require(bool condition, const char *what) {
    if (!condition) {
        std::fprintf(stderr, "failed: %s\n", what);
        std::exit(1);
    }
}

template <class Pointer>
Pointer find(const char *name) {
    void *address = dlsym(library, name);
    require(address != nullptr, name);
    return reinterpret_cast<Pointer>(address);
}

} // namespace

int main(int argc, char **argv) {
    require(argc == 2, "usage: loading_host LIBRARY");
    library = dlopen(argv[1], RTLD_NOW | RTLD_LOCAL);
    require(library != nullptr, argv[1]);

    using Add = void (*)(q_ulong *, q_ulong *, q_ulong, q_ulong, tagRECT *, q_ulong, q_ulong);
    using AddScaled = void (*)(q_ulong *, q_ulong *, q_ulong, q_ulong, tagRECT *, q_ulong, q_ulong, unsigned char,
                               unsigned char, unsigned char);
    const auto initialise = find<decltype(&Init_qMur_GlobalData)>("_Z20Init_qMur_GlobalDataP11HINSTANCE__Pc");
    const auto fill = find<decltype(&iFillRect)>("_Z9iFillRectP" Q "P7tagRECTi" Q);
    const auto add = find<Add>("_Z14iBltFast32_AddP" Q "S_" Q Q "P7tagRECT" Q Q);
    const auto addScaled = find<AddScaled>("_Z14iBltFast32_AddP" Q "S_" Q Q "P7tagRECT" Q Q "hhh");
    const auto randomFloat = find<decltype(&randFloat)>("_Z9randFloatff");
    const auto sine = find<const int *>("iSin");

    require(sine[2048] == 0, "loading does not fill the tables");
    initialise(nullptr, nullptr);
    require(sine[1] == 25 && sine[2048] == 32768 && sine[6144] == -32768, "the sine table");

    q_ulong pixels[8] = {};
    tagRECT rect = {1, 0, 3, 2};
    fill(pixels, &rect, 4, 0x102030);
    for (int i = 0; i < 8; ++i)
        require(pixels[i] == (i % 4 == 1 || i % 4 == 2 ? 0x102030u : 0u), "the filled rectangle");

    q_ulong source[1] = {0x402010};
    tagRECT one = {0, 0, 1, 1};
    add(pixels, source, 1, 0, &one, 4, 1);
    addScaled(pixels, source, 2, 0, &one, 4, 1, 128, 64, 255);
    require(pixels[1] == 0x504040 && pixels[2] == 0x30283F, "both overloads");
    require(randomFloat(2.5F, 2.5F) == 2.5F, "the float");

    require(dlsym(library, "q_MurEmptyBody") == nullptr, "what is not listed is hidden");
    require(dlclose(library) == 0, "unloading");
    std::puts("the library answers as it should");
    return 0;
}
