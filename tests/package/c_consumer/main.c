#include <q_Mur_c.h>

#include <stdio.h>

int main(void) {
    Init_qMur_GlobalData(NULL, NULL);
    q_ulong pixels[16] = {0};
    tagRECT rect = {1, 1, 3, 3};
    iFillRect(pixels, &rect, 4, 0x123456);
    const bool works = pixels[0] == 0 && pixels[5] == 0x123456 && pixels[10] == 0x123456 && iSin[2048] == 32768;
    puts(works ? "the installed library for C works" : "the installed library for C does not work");
    return works ? 0 : 1;
}
