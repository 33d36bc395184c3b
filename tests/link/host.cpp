#include "host.h"

#include <q_Mur.h>

#define REQUIRE(condition)                                                                                             \
    do {                                                                                                               \
        if (!(condition))                                                                                              \
            return #condition;                                                                                         \
    } while (false)

namespace {

constexpr int width = 16;
constexpr int height = 8;

q_ulong pixels[width * height];
q_ulong sources[width * height];
_TRANSFERDATA transferData;

void clear(q_ulong *surface, q_ulong value) {
    for (int i = 0; i < width * height; ++i)
        surface[i] = value;
}

const char *tablesAreEmptyUntilTheHostFillsThem() {
    for (int i = 0; i < 8192; ++i)
        REQUIRE(iSin[i] == 0 && iCos[i] == 0 && iSqrt[i] == 0);
    return nullptr;
}

const char *tablesAreReadAsData() {
    Init_qMur_GlobalData(nullptr, nullptr);
    REQUIRE(iSin[0] == 0 && iSin[1] == 25 && iSin[1024] == 23170 && iSin[2048] == 32768);
    REQUIRE(iSin[4096] == 0 && iSin[6144] == -32768 && iSin[8191] == -25);
    REQUIRE(iCos[0] == 32768 && iCos[1] == 32767 && iCos[1024] == 23170 && iCos[2048] == 0);
    REQUIRE(iCos[4096] == -32768 && iCos[6144] == 0 && iCos[8191] == 32767);
    REQUIRE(iSqrt[0] == 0 && iSqrt[1] == 1024 && iSqrt[2] == 1448 && iSqrt[1024] == 32768);
    REQUIRE(iSqrt[2048] == 46340 && iSqrt[4096] == 65536 && iSqrt[6144] == 80264 && iSqrt[8191] == 92676);
    return nullptr;
}

const char *fillsARectangle() {
    clear(pixels, 0x01020304);
    tagRECT rect = {3, 2, 9, 5};
    iFillRect(pixels, &rect, width, 0x80A0B0C0);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            REQUIRE(pixels[y * width + x] == (x >= 3 && x < 9 && y >= 2 && y < 5 ? 0x80A0B0C0 : 0x01020304));
    return nullptr;
}

const char *callsBothOverloads() {
    clear(pixels, 0x00F00102);
    clear(sources, 0x00402010);
    tagRECT rect = {0, 0, 1, 1};
    iBltFast32_Add(pixels, sources, 0, 0, &rect, width, width);
    REQUIRE(pixels[0] == 0x00FF2112);
    // Halved, quartered and almost kept: 0x20, 0x08, 0x0F. Red wraps.
    iBltFast32_Add(pixels, sources, 1, 0, &rect, width, width, 128, 64, 255);
    REQUIRE(pixels[1] == 0x00100911);
    REQUIRE(pixels[2] == 0x00F00102);
    return nullptr;
}

const char *passesARecordByValue() {
    clear(pixels, 7);
    const tagPOINT centre = {4, 4};
    for (int i = 0; i < 1000; ++i)
        Blur_Ring(pixels, centre, 1, 2, 3, 4);
    for (const q_ulong pixel : pixels)
        REQUIRE(pixel == 7);
    return nullptr;
}

const char *receivesFloats() {
    REQUIRE(randFloat(2.5F, 2.5F) == 2.5F);
    REQUIRE(randFloatGauss(-0.75F, -0.75F, 3) == -0.75F);
    REQUIRE(randDouble(4.25, 4.25) == 4.25);
    // Were a result left on the floating unit's stack, its eight registers would run over.
    float sum = 0;
    for (int i = 0; i < 100; ++i)
        sum += randFloat(0.5F, 0.5F);
    REQUIRE(sum == 50.0F);
    return nullptr;
}

const char *sharesItsRecordWithTheLibrary() {
    transferData.memoryUsedFlag = 5;
    BeginMemoryManager(&transferData);
    REQUIRE(transferData.memoryUsedFlag == 0);
    auto *bytes = static_cast<unsigned char *>(FindNotUsedMemory(&transferData, 0, 100));
    REQUIRE(bytes != nullptr && transferData.blockCount == 1);
    REQUIRE(transferData.blocks[0]->start == bytes && transferData.blocks[0]->size == 100);
    bytes[0] = bytes[99] = 1;
    ClearMemory(&transferData, 0);
    REQUIRE(bytes[0] == 0 && bytes[99] == 0);
    NoticeMemUsed(&transferData);
    EndMemoryManager(&transferData);
    REQUIRE(transferData.blocks[0] != nullptr);
    BeginMemoryManager(&transferData);
    EndMemoryManager(&transferData);
    REQUIRE(transferData.blocks[0] == nullptr && transferData.blockCount == 0);
    return nullptr;
}

#if Q_MUR_HAS_STRUCT_RESULTS
const char *receivesRecordsByValue() {
    _POINT3DFLOAT a = {1, 2, 3, 0};
    _POINT3DFLOAT b = {3, -2, 0.5F, 0};
    for (int i = 0; i < 1000; ++i) {
        const _POINT3DFLOAT mean = fMean2Vector(&a, &b);
        REQUIRE(mean.x == 2 && mean.y == 0 && mean.z == 1.75F);
    }
    _POINT3D c = {-1, 7, 10, 0};
    _POINT3D d = {0, 9, -20, 0};
    const _POINT3D wholeMean = iMean2Vector(&c, &d);
    REQUIRE(wholeMean.x == -1 && wholeMean.y == 8 && wholeMean.z == -5);

    _POINT3DFLOAT point = {0, -4, 0, 0};
    const _POINT3DFLOAT unitPoint = Normalize(&point);
    REQUIRE(unitPoint.x == 0 && unitPoint.y == -1 && unitPoint.z == 0);
    _I3DVECTOR vector = {0, 0, 8, 0};
    const _I3DVECTOR unitVector = Normalize(vector);
    REQUIRE(unitVector.x == 0 && unitVector.y == 0 && unitVector.z == 1);
    REQUIRE(Magnitude(vector) == 8 && Magnitude(&point) == 4);

    _I3DVECTOR u = {1, 2, 3, 0};
    _I3DVECTOR v = {4, 5, 6, 0};
    const _I3DVECTOR product = CrossProduct(u, v);
    REQUIRE(product.x == -3 && product.y == 6 && product.z == -3);
    REQUIRE(DotProduct(u, v) == 32);
    return nullptr;
}

const char *receivesTruthValues() {
    _POINT3DFLOAT p1 = {0, 0, 0, 0};
    _POINT3DFLOAT p2 = {-1, 0, 0, 0};
    _POINT3DFLOAT p3 = {0, -1, 0, 0};
    REQUIRE(IsFront(&p1, &p2, &p3));
    REQUIRE(!IsFront(&p1, &p3, &p2));
    return nullptr;
}
#endif

} // namespace

const char *checkLibrary() {
    constexpr const char *(*checks[])() = {
        tablesAreEmptyUntilTheHostFillsThem,
        tablesAreReadAsData,
        fillsARectangle,
        callsBothOverloads,
        passesARecordByValue,
        receivesFloats,
        sharesItsRecordWithTheLibrary,
#if Q_MUR_HAS_STRUCT_RESULTS
        receivesRecordsByValue,
        receivesTruthValues,
#endif
    };
    for (const auto check : checks)
        if (const char *failed = check())
            return failed;
    return nullptr;
}
