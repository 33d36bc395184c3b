/// \file
/// The library's frame: tables, the block manager, random numbers and random colours.
#ifndef Q_MUR_FRAME_H
#define Q_MUR_FRAME_H

#include "types.h"

/// \name Tables
/// Arrays of 8192 ints, all 0 until PrepareSinTable() has run.
/// @{

/// Sine, 8192 steps to the full circle, 1.0 is 32768. A 16-bit angle indexes it shifted right by 3.
extern Q_MUR_API int iSin[8192];

/// Cosine; steps and scale as in #iSin.
extern Q_MUR_API int iCos[8192];

/// Square root of the index, 1.0 is 1024.
extern Q_MUR_API int iSqrt[8192];

/// Fills the three tables, and has the library run on the widest vector instructions that it holds and that processor
/// and system allow; until then it runs on those that every processor has, and writes the same. May be called again;
/// the result is the same. Must have run once before any function that reads a table, and before other threads use the
/// library.
Q_MUR_API void PrepareSinTable();

/// Same as PrepareSinTable(). Both arguments are ignored and may be null.
Q_MUR_API void Init_qMur_GlobalData(HINSTANCE__ *module, char *path);

/// @}
/// \name Block manager
/// Working memory that hangs in the 16 numbered slots of the host's record and lives as long as some effect gives
/// notice of using it. Slots are filled from 0 upward without a hole; slot 15 stays empty. A record serves one thread
/// at a time. `data` must not be null except where said.
/// @{

/// Starts a frame: nobody has given notice yet.
Q_MUR_API void BeginMemoryManager(_TRANSFERDATA *data);

/// Gives notice that the record's blocks are used in this frame.
Q_MUR_API void NoticeMemUsed(_TRANSFERDATA *data);

/// Ends a frame: frees all blocks if nobody gave notice since BeginMemoryManager().
Q_MUR_API void EndMemoryManager(_TRANSFERDATA *data);

/// Allocates the block of a slot and counts it in `blockCount`. Nothing is searched, despite the name: a block that the
/// slot held is lost and stays allocated, except that slot 0 frees all blocks first.
///
/// \param slot 0 to 14
///
/// \param size bytes, or the code of a plane shaped like the host's frame, `planeElements` long: -1 for elements of 32
/// bits, -2 for 16, -3 for 8. No heap has any other negative size.
///
/// \return the memory, not zeroed; for a plane the frame's first pixel, `originElement` elements behind the start. Null
/// if memory is exhausted: all blocks of the record are freed then.
Q_MUR_API void *FindNotUsedMemory(_TRANSFERDATA *data, int slot, int size);

/// Zeroes the whole allocation of a slot, from its start (not from the work pointer). The slot must hold a block.
Q_MUR_API void ClearMemory(_TRANSFERDATA *data, int slot);

/// Same as DeleteMemoryBlocks().
Q_MUR_API void FreeMemoryBlocks(_TRANSFERDATA *data);

/// Frees the blocks from slot 0 up to the first empty slot, empties their slots and sets the block count to 0. Blocks
/// behind an empty slot stay. Null is allowed.
Q_MUR_API void DeleteMemoryBlocks(_TRANSFERDATA *data);

/// Allocates the private block of the region fills in a slot, all zero. Null if memory is exhausted.
Q_MUR_API _PRIVATE_QMGP_DATA *GetPrivate_QMGP_Data(_TRANSFERDATA *data, int slot);

/// Allocates the private block of the cross blur in a slot, its phase 0. Null if memory is exhausted.
Q_MUR_API _PRIVATE_LUT_DATA *GetPrivate_LUT_Data(_TRANSFERDATA *data, int slot);

/// @}
/// \name Random numbers
/// All but GaussRand() draw 15-bit numbers from `rand`, which the library never seeds. It is that of the C runtime that
/// the library is linked with: the process's own on Linux and for the static library, the system's msvcrt.dll for the
/// DLLs. A Windows host on another runtime (that of Visual C++) seeds that one, by `srand` out of msvcrt.dll: its own
/// has no effect here. There each thread has a sequence of its own.
/// @{

/// Not random: the next entry of 0, -2, 0, 0, 0, 1, 0, -1, 0, 0, 0, 2, 0, 0, 0, 0, in a cycle shared by all callers.
Q_MUR_API int GaussRand();

/// A number from `low` up to, not including, `high`, uniform for spans of up to 32768. Wider spans are not covered: the
/// result stays within 32767 of `low`. Equal bounds never return. With `high` below `low` the result is `low` plus a
/// draw from 0 to 32767.
Q_MUR_API int randInt(int low, int high);

/// A value from `low` to `high`, both reached.
Q_MUR_API float randFloat(float low, float high);

/// A value from `low` to `high`, both reached.
Q_MUR_API double randDouble(double low, double high);

/// The mean of `count` draws, scaled to `low` to `high`, both reached; more draws make a narrower bell around the
/// middle. Truncated toward zero before `low` is added. `count` times the span should stay below 65536, where the
/// product wraps. A `count` of 0 divides by zero, which faults on x86; below 0 the result is `low`.
Q_MUR_API int randIntGauss(int low, int high, int count);

/// The mean of `count` draws, scaled to `low` to `high`. A `count` of 0 gives no number, below 0 the result is `low`.
/// The sum of the draws is a 32-bit number, which can wrap from 65539 draws on; its divisor never does.
Q_MUR_API float randFloatGauss(float low, float high, int count);

/// As randFloatGauss(), in double.
Q_MUR_API double randDoubleGauss(double low, double high, int count);

/// A random colour, top byte 0; red is drawn first, then green, then blue.
Q_MUR_API q_ulong randColor();

/// A random saturated colour from #iSin and #iCos: a hue on the circle. A channel at its very peak is 256, and its
/// carry is or-ed onto the lowest bit of the one above: red sets the top byte to 1. With tables not filled it is
/// 0x808080.
Q_MUR_API q_ulong randRainbowColor();

/// @}

#endif
