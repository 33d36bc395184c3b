/* A host in C: arguments and results of each kind go there and back as they do in C++. */
#include <q_Mur_c.h>

#include <math.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

enum { size = 16 };

static int failures = 0;

static void expect(int holds, const char *what) {
    if (!holds) {
        printf("FAILED: %s\n", what);
        ++failures;
    }
}

static int isNear(double a, double b) {
    return fabs(a - b) < 1e-4;
}

static void tables(void) {
    expect(iSin[2048] == 32768 && iCos[4096] == -32768 && iSqrt[4] == 2048, "tables are filled");
}

static void pixels(void) {
    static q_ulong dst[size * size], src[size * size];
    tagRECT part = {2, 2, 6, 6}, all = {0, 0, size, size};
    iFillRect(src, &all, size, 0x102030);
    iFillRect(dst, &all, size, 0x010101);
    iBltFast32(dst, src, 4, 5, &part, size, size);
    expect(dst[5 * size + 4] == 0x102030 && dst[8 * size + 7] == 0x102030, "a copy is there");
    expect(dst[4 * size + 4] == 0x010101 && dst[9 * size + 7] == 0x010101, "and nowhere else");
}

/* The two functions of one name in C++. */
static void overloads(void) {
    static q_ulong dst[size * size], src[size * size];
    tagRECT part = {0, 0, 4, 4}, all = {0, 0, size, size};
    iFillRect(src, &all, size, 0xF02010);
    iFillRect(dst, &all, size, 0x300102);
    iBltFast32_Add(dst, src, 0, 0, &part, size, size);
    expect(dst[0] == 0xFF2112, "sums are full");
    _I3DVECTOR vector = {2, 3, 6, 0};
    _POINT3DFLOAT point = {1, 4, 8, 0};
    expect(isNear(Magnitude(&vector), 7), "a vector is 7 long");
    expect(isNear(Magnitude_point(&point), 9), "a point is 9 away");
}

static void records(void) {
    _I3DVECTOR a = {1, 0, 0, 0}, b = {0, 1, 0, 0};
    const _I3DVECTOR c = CrossProduct(&a, &b);
    expect(isNear(c.x, 0) && isNear(c.y, 0) && isNear(c.z, 1), "a record comes back");
    _POINT3D low = {2, 0, 0, 0}, high = {4, 6, 8, 0};
    const _POINT3D mean = iMean2Vector(&low, &high);
    expect(mean.x == 3 && mean.y == 3 && mean.z == 4, "a point halfway");
}

static void blocks(void) {
    _TRANSFERDATA *data = calloc(1, sizeof *data);
    if (!data) {
        expect(0, "there is memory");
        return;
    }
    BeginMemoryManager(data);
    unsigned char *block = FindNotUsedMemory(data, 0, 100);
    expect(block != NULL && data->blockCount == 1, "a block is handed out");
    memset(block, 0xFF, 100);
    ClearMemory(data, 0);
    expect(block[0] == 0 && block[99] == 0, "and cleared");
    _PRIVATE_LUT_DATA *phase = GetPrivate_LUT_Data(data, 1);
    expect(phase != NULL && phase->phase == 0, "a private block begins with phase 0");
    DeleteMemoryBlocks(data);
    expect(data->blockCount == 0 && data->blocks[0] == NULL, "all are gone");
    free(data);
}

/* With an argument, a rectangle as wide as it says. */
int main(int argc, char **argv) {
    Init_qMur_GlobalData(NULL, NULL);
    if (argc > 1) {
        q_ulong few[size] = {0};
        tagRECT rect = {0, 0, atoi(argv[1]), 1};
        iFillRect(few, &rect, size, 1);
        return 0;
    }
    tables();
    pixels();
    overloads();
    records();
    blocks();
    puts(failures ? "the library for C does not work" : "the library for C works");
    return failures;
}
