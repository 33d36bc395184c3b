/// \file
/// Built-in sprites and bitmap files.
#ifndef Q_MUR_SPRITE_H
#define Q_MUR_SPRITE_H

#include "types.h"

/// \name Sprites
/// Pictures that the library carries along. Pixels around the figure are 0, so that the colour-key blits with key 0 lay
/// it over an image; no pixel of the figure is. Every top byte is 0.
///
/// The sprite's first `width` columns and `height` rows are written, its top left pixel to the first one of `dst`:
/// nothing is scaled, and nothing is held against the sprite's own size. Columns beyond it read on into the row below,
/// and what lies behind the sprite's last pixel is 0. Nothing is clipped: `dst` must have room for `height` rows of
/// `width` pixels, `pitch` pixels apart. A width or height below 1 writes nothing.
/// @{

/// Writes an airliner in the climb, 156 by 114.
Q_MUR_API void LoadResourceAirplane(q_ulong *dst, int width, int height, int pitch);

/// Writes a Christmas tree in the snow, 512 by 384.
Q_MUR_API void LoadResourceChristmasTree(q_ulong *dst, int width, int height, int pitch);

/// Writes the print of a bare foot, 122 by 166.
Q_MUR_API void LoadResourceFootMark(q_ulong *dst, int width, int height, int pitch);

/// Writes two beamed notes, 128 by 128.
Q_MUR_API void LoadResourceMusicSymbol(q_ulong *dst, int width, int height, int pitch);

/// Writes red flames, 330 by 360.
Q_MUR_API void LoadResourceRedFires(q_ulong *dst, int width, int height, int pitch);

/// Takes the module handle down. Nothing reads it.
Q_MUR_API void SetSpriteInstance(HINSTANCE__ *module);

/// @}
/// \name Bitmap files
/// @{

/// Sets what LoadBitmap24() puts before every name: a directory with its final separator, or any other prefix. The text
/// is copied. One of 512 characters or more makes every load answer 0 until a shorter one is set. Not to be called
/// while another thread loads a bitmap.
Q_MUR_API void SetSpriteDir(char *path);

/// Reads an uncompressed bitmap file of 24 bits, top row first, into `dst`: `height` rows of `width` pixels without a
/// gap between them, top bytes 0.
///
/// How far the rows of the file lie apart is worked out from its header: the bytes between the data's offset and the
/// file's size, divided by the height, truncated. A file whose size field counts anything else is read at a slant.
/// Compression and the other fields are not looked at. Nothing is trusted: pixels that the file is too short for are
/// black, and so are rows that would begin 2 GiB or more behind its start.
///
/// \param name what follows the text of SetSpriteDir(), or the whole path if that was never called. It is opened as
///             `fopen` does it, on Windows in the system's code page.
///
/// \return 1 if the picture was read. 0, with `dst` untouched, if prefix and name have more than 511 characters
///         together, if there is no such file, if it does not begin with `BM` and the whole of a header that states 24
///         bits, if its width or height is not the one asked for, if the latter are negative or the height is 0, or if
///         between the data's offset and the file's size, as the header states them, there is no room for the picture.
Q_MUR_API int LoadBitmap24(q_ulong *dst, char *name, int width, int height);

/// Fits raw 24-bit pixels, blue first, onto a 32-bit surface: to the nearest pixel at the left and above, top bytes 0.
/// The whole of `src` is shown on the whole of `dst`. Unlike everywhere else **both pitches count bytes**.
/// Source positions have 15 fraction bits and a sign: a source of 65536 columns or rows is beyond them. Both buffers
/// are trusted, nothing is clipped, and neither need be aligned.
/// \param dstWidth must not be 0, nor must `dstHeight`: they divide, which faults on x86. Below 0 nothing is written.
/// \param srcWidth at 0 the first column is repeated, and with a `srcHeight` of 0 the first row, of which 3 bytes are
///        read all the same. Below 0 the positions walk out of `src`, to the left or upward.
Q_MUR_API void _FitOn32RAW_24RAW_Nearest(unsigned char *dst, int dstWidth, int dstHeight, int dstPitchBytes,
                                         unsigned char *src, int srcWidth, int srcHeight, int srcPitchBytes);

/// @}

#endif
