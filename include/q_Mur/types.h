/// \file
/// The records and number types that all of q_Mur's functions share.
///
/// **Pixel.** One #q_ulong: blue in bits 0-7, green in 8-15, red in 16-23, and a top byte in 24-31 that is no colour
/// channel. Colours passed by value have the same layout, 0x00RRGGBB. What a function does with the top byte
/// (copies it, clears it, reads it as alpha) stands with that function.
///
/// **Surface.** A pointer to the pixel at (0, 0) with a pitch beside it. Rows run top to bottom; pixel (x, y) has the
/// index `y * pitch + x`. The library knows no surface's size. A pitch counts pixels (elements, on planes of other
/// element sizes), never bytes, and may be negative for a picture stored bottom-up, whatever its declared type.
///
/// **Rectangle.** #tagRECT: left and top inclusive, right and bottom exclusive. Nothing swaps the sides of a
/// rectangle or checks it against a surface unless the function says so. An empty destination writes nothing.
#ifndef Q_MUR_TYPES_H
#define Q_MUR_TYPES_H

/// Marks what the library exports. A host that links the static library defines `Q_MUR_STATIC`.
#if defined(_WIN32) && !defined(Q_MUR_STATIC)
#define Q_MUR_API __declspec(dllimport)
#elif defined(__GNUC__) && !defined(_WIN32)
#define Q_MUR_API __attribute__((visibility("default")))
#else
#define Q_MUR_API
#endif

/// Unsigned and signed 32-bit numbers: `long` wherever that is 32 bits wide (both Windows ABIs, i386), `int` elsewhere.
#if defined(__LP64__)
typedef unsigned int q_ulong;
typedef int q_long; ///< signed, see #q_ulong
#else
typedef unsigned long q_ulong;
typedef long q_long;
#endif

// On Windows the platform's own tagRECT and tagPOINT are the library's; where its headers are at hand they are used,
// so that this header may stand before <windows.h>, behind it, or alone.
#if defined(_WIN32) && !defined(_WINDEF_) && defined(__has_include)
#if __has_include(<windef.h>)
#if !defined(_X86_) && !defined(_AMD64_)
#if defined(_M_AMD64) || defined(__x86_64__)
#define _AMD64_
#elif defined(_M_IX86) || defined(__i386__)
#define _X86_
#endif
#endif
#include <windef.h>
#endif
#endif

#if !defined(_WINDEF_)
/// A rectangle of pixels: `left` and `top` inclusive, `right` and `bottom` exclusive.
struct tagRECT {
    q_long left;   ///< first column
    q_long top;    ///< first row
    q_long right;  ///< column behind the last
    q_long bottom; ///< row behind the last
};

/// A pixel position.
struct tagPOINT {
    q_long x; ///< column
    q_long y; ///< row
};
#endif

/// The platform's module handle; accepted, never used.
struct HINSTANCE__;

/// A point of a texture: `x` the column, `y` the row.
struct _POINTINT {
    int x; ///< column
    int y; ///< row
};

/// A point in space. `w` is carried along and never given a meaning.
struct _POINT3DFLOAT {
    float x; ///< to the right
    float y; ///< down
    float z; ///< away from the viewer
    float w; ///< without a meaning
};

/// A vector, of the same four words as #_POINT3DFLOAT.
struct _I3DVECTOR {
    float x; ///< to the right
    float y; ///< down
    float z; ///< away from the viewer
    float w; ///< without a meaning
};

/// A point in space, in whole units. `w` is carried along and never given a meaning.
struct _POINT3D {
    int x; ///< to the right
    int y; ///< down
    int z; ///< away from the viewer
    int w; ///< without a meaning
};

/// A 4 by 4 matrix, row-major, for column vectors: element (row r, column c) is `m[4 * r + c]` and the translation
/// stands in `m[3]`, `m[7]` and `m[11]`.
struct _I3DMATRIX {
    float m[16]; ///< row after row
};

/// One block of a record's slot table; see FindNotUsedMemory().
struct MemoryBlock {
    void *start;      ///< the allocated memory; this is what is freed
    void *work;       ///< what the caller received: `start`, or the frame's first pixel within a plane
    q_ulong size;     ///< length of the allocation in bytes
    q_ulong reserved; ///< 0
};

/// Sizes of the host's frame planes. The host fills it.
struct TransferFrameGeometry {
    q_ulong hostWords[3]; ///< the host's own
    int planeElements;    ///< pixels of a whole frame plane, margins included
    int originElement;    ///< index within such a plane of the frame's first pixel
};

/// Sizes of the 3D working arrays. The host fills it.
struct TransferLimits3D {
    int value0;             ///< copied into the 3D private blocks and read by nothing
    int value1;             ///< likewise
    int vertexArrayEntries; ///< 32-bit entries in each of the two per-vertex arrays of a 3D private block
    int matrixStackDepth;   ///< matrices in each of the two stacks of #_PRIVATE_QMGL_DATA
};

/// The host's record, one for each effect instance. The library uses the fields below from `memoryUsedFlag` on, and
/// only in the block manager and the `GetPrivate_...` functions. What follows them is the host's.
struct _TRANSFERDATA {
    q_ulong hostHead[47];                 ///< the host's own
    int memoryUsedFlag;                   ///< 0 after BeginMemoryManager(), 1 after NoticeMemUsed()
    int blockCount;                       ///< blocks handed out since the last DeleteMemoryBlocks()
    TransferFrameGeometry *frameGeometry; ///< set by the host
    MemoryBlock *blocks[16];              ///< the slot table; the host clears it before first use; slot 15 stays empty
    TransferLimits3D *limits3D;           ///< set by the host, read by the 3D `GetPrivate_...` functions
};

/// Private block of the region fills.
struct _PRIVATE_QMGP_DATA {
    unsigned char *plane; ///< boundary map, and fill target of the 8-bit fill
    tagRECT *planeRect;   ///< limits of the 8-bit fills, kept by pointer
    q_ulong *destSurface; ///< receives pixels
    q_ulong *testSurface; ///< tested for the boundary colour; source of pixels in the source fill
    int planePitch;       ///< in elements
    int destPitch;        ///< in pixels
    int testPitch;        ///< in pixels
};

/// Private block of the cross blur.
struct _PRIVATE_LUT_DATA {
    int phase; ///< 0 or 1: which pattern the next call takes
};

struct _PRIVATE_QM3D_DATA;
struct _PRIVATE_QMGL_DATA;

/// A span mapper of the older textured module, as held in the slot of #_PRIVATE_QM3D_DATA.
typedef void (*QM3DSpanMapper)(_PRIVATE_QM3D_DATA *data, q_ulong *dst, q_ulong *tex, tagRECT *clip, q_ulong dstPitch,
                               q_ulong texPitch, int uL0, int uL1, int uR0, int uR1, int vL0, int vL1, int vR0, int vR1,
                               int xL0, int xL1, int xR0, int xR1, int yL0, int yL1, int yR0, int yR1, int addL0,
                               int addL1, int addR0, int addR1, int mulL0, int mulL1, int mulR0, int mulR1, int zL0,
                               int zL1, int zR0, int zR1);

/// A span mapper of the matrix pipeline, as held in the slot of #_PRIVATE_QMGL_DATA.
typedef void (*QMGLSpanMapper)(_PRIVATE_QMGL_DATA *data, q_ulong *dst, q_ulong *tex, tagRECT *clip, q_ulong dstPitch,
                               q_ulong texPitch, int uL0, int uL1, int uR0, int uR1, int vL0, int vL1, int vR0, int vR1,
                               int xL0, int xL1, int xR0, int xR1, int yL0, int yL1, int yR0, int yR1, int addL0,
                               int addL1, int addR0, int addR1, int mulL0, int mulL1, int mulR0, int mulR1, int zL0,
                               int zL1, int zR0, int zR1);

/// Private block of the older textured module: one allocation, the pointers point into it.
struct _PRIVATE_QM3D_DATA {
    int limitValue0;           ///< `value0` of the record's limits
    int limitValue1;           ///< `value1` of the limits
    int vertexArrayEntries;    ///< of each of the two vertex arrays
    QM3DSpanMapper spanMapper; ///< the mapper that the last textured blit selected
    int *vertexArray0;         ///< `add` of each grid vertex
    int *vertexArray1;         ///< `mul` of each grid vertex
    short *zPlane;             ///< the Z plane, margins included
    short *zBuffer;            ///< its entry of pixel (0, 0); same pitch as the destination; smaller is nearer
};

/// Private block of the matrix pipeline: one allocation, the pointers point into it.
struct _PRIVATE_QMGL_DATA {
    _I3DMATRIX workMatrix;     ///< matrix of the operation under way
    _I3DVECTOR workAxis;       ///< axis of the last rotation, as given
    int modelDepth;            ///< index of the top of the model stack
    int viewDepth;             ///< index of the top of the view stack
    int matrixMode;            ///< 1 selects the model stack, anything else the view stack
    int viewportLeft;          ///< first column of the picture
    int viewportRight;         ///< column behind its last
    int viewportTop;           ///< first row
    int viewportBottom;        ///< row behind the last
    int nearLimit;             ///< a pixel is drawn only if its depth is greater
    int farLimit;              ///< stored, never read
    int focalLength;           ///< pixels from the viewer's eye to the plane z = 0
    int limitValue0;           ///< `value0` of the record's limits
    int limitValue1;           ///< `value1` of the limits
    int vertexArrayEntries;    ///< of each of the two vertex arrays
    QMGLSpanMapper spanMapper; ///< the mapper that the last textured blit selected
    _I3DMATRIX *modelStack;    ///< as many matrices as the limits say
    _I3DMATRIX *viewStack;     ///< likewise
    int *vertexArray0;         ///< additive highlight of each grid vertex
    int *vertexArray1;         ///< multiplier of each grid vertex
    short *zPlane;             ///< the Z plane, margins included
    short *zBuffer;            ///< its entry of pixel (0, 0); same pitch as the destination; smaller is nearer
};

#endif
