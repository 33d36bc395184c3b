/// \file
/// Pins the layout of the records that hosts on 32-bit systems share with the library word by word.
#include "q_Mur/types.h"

#include <cstddef>

static_assert(sizeof(q_ulong) == 4 && sizeof(q_long) == 4);
static_assert(sizeof(tagRECT) == 16 && sizeof(tagPOINT) == 8 && sizeof(_POINTINT) == 8);
static_assert(sizeof(_POINT3DFLOAT) == 16 && sizeof(_I3DVECTOR) == 16 && sizeof(_POINT3D) == 16);
static_assert(sizeof(_I3DMATRIX) == 64);
static_assert(sizeof(TransferFrameGeometry) == 20 && offsetof(TransferFrameGeometry, planeElements) == 12);
static_assert(sizeof(TransferLimits3D) == 16 && sizeof(_PRIVATE_LUT_DATA) == 4);

#if !defined(_WIN64) && !defined(__LP64__)
constexpr std::size_t word = 4;

static_assert(sizeof(MemoryBlock) == 4 * word);
static_assert(offsetof(_TRANSFERDATA, memoryUsedFlag) == 47 * word);
static_assert(offsetof(_TRANSFERDATA, blockCount) == 48 * word);
static_assert(offsetof(_TRANSFERDATA, frameGeometry) == 49 * word);
static_assert(offsetof(_TRANSFERDATA, blocks) == 50 * word);
static_assert(offsetof(_TRANSFERDATA, limits3D) == 66 * word);
static_assert(sizeof(_TRANSFERDATA) == 67 * word);
static_assert(sizeof(_PRIVATE_QMGP_DATA) == 7 * word);
static_assert(offsetof(_PRIVATE_QMGP_DATA, planePitch) == 4 * word);
static_assert(sizeof(_PRIVATE_QM3D_DATA) == 8 * word);
static_assert(offsetof(_PRIVATE_QM3D_DATA, spanMapper) == 3 * word);
static_assert(offsetof(_PRIVATE_QMGL_DATA, modelDepth) == 20 * word);
static_assert(offsetof(_PRIVATE_QMGL_DATA, nearLimit) == 27 * word);
static_assert(offsetof(_PRIVATE_QMGL_DATA, spanMapper) == 33 * word);
static_assert(sizeof(_PRIVATE_QMGL_DATA) == 40 * word);
#endif
