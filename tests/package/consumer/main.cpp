#include <q_Mur.h>
#if defined(IS_CHECKED)
#include <q_Mur/checked.h>
#endif

#include <cstdio>

/// Whether the checked library names a call that breaks its contract; the usual one has nothing to say.
static bool namesMistakes() {
#if defined(IS_CHECKED)
    bool isNamed = false;
    q_Mur_checked_handle([](const char *, void *named) { *static_cast<bool *>(named) = true; }, &isNamed);
    q_ulong pixels[16] = {};
    tagRECT beyond = {0, 0, 5, 1};
    iFillRect(pixels, &beyond, 4, 0x123456);
    q_Mur_checked_handle(nullptr, nullptr);
    return isNamed && pixels[0] == 0;
#else
    return true;
#endif
}

int main() {
    Init_qMur_GlobalData(nullptr, nullptr);
    q_ulong pixels[16] = {};
    tagRECT rect = {1, 1, 3, 3};
    iFillRect(pixels, &rect, 4, 0x123456);
    const bool filled = pixels[0] == 0 && pixels[5] == 0x123456 && pixels[10] == 0x123456 && pixels[15] == 0;
    char text[] = "";
    char face[] = "";
    const bool silent = iTextOut(pixels, &rect, 4, text, 0xFFFFFF, 0, 0, 16, face) == 0;
    const bool works = filled && silent && iSin[2048] == 32768 && namesMistakes();
    std::puts(works ? "the installed library works" : "the installed library does not work");
    return works ? 0 : 1;
}
