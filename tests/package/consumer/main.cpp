#include <q_Mur.h>

#include <cstdio>

int main() {
    Init_qMur_GlobalData(nullptr, nullptr);
    q_ulong pixels[16] = {};
    tagRECT rect = {1, 1, 3, 3};
    iFillRect(pixels, &rect, 4, 0x123456);
    const bool filled = pixels[0] == 0 && pixels[5] == 0x123456 && pixels[10] == 0x123456 && pixels[15] == 0;
    std::puts(filled && iSin[2048] == 32768 ? "the installed library works" : "the installed library does not work");
    return filled && iSin[2048] == 32768 ? 0 : 1;
}
