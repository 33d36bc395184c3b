/// \file
/// Blits: rectangles of one surface brought onto another, plain, scaled, added, colour-keyed or blended.
///
/// Common to all of them: rows run top to bottom and columns left to right, also where source and destination overlap;
/// pitches count pixels; the destination comes first; an empty destination writes nothing. Scaling has no half-pixel
/// offset: the first destination pixel shows the first source pixel, and steps are truncated. A source of no width or
/// height repeats its first column or row, except in the additive and alpha blits, where it draws nothing. A function
/// without a clip trusts its rectangles to lie inside their surfaces.
///
/// Filtered functions take four taps with weights in sixteenths, which add up to 256, and truncate: see
/// docs/sampling.md. Scaling uses up to 64 KB of the stack.
#ifndef Q_MUR_BLIT_H
#define Q_MUR_BLIT_H

#include "types.h"

/// \name Copy and fill
/// @{

/// Copies `srcRect` to (`dstX`, `dstY`), all 32 bits of each pixel. Nothing is clipped.
Q_MUR_API void iBltFast32(q_ulong *dst, q_ulong *src, q_ulong dstX, q_ulong dstY, tagRECT *srcRect, int dstPitch,
                          int srcPitch);

/// Copies `srcRect` to (`dstX`, `dstY`), all 32 bits of each pixel, clipped to the destination columns 0 up to
/// `clipWidth` and rows 0 up to `clipHeight`. What is written is what would stand there unclipped.
Q_MUR_API void iBltFast32_Advanced(q_ulong *dst, q_ulong *src, int dstX, int dstY, tagRECT *srcRect, int dstPitch,
                                   int srcPitch, int clipWidth, int clipHeight);

/// Writes `colour`, all 32 bits as given, to every pixel of `rect`.
Q_MUR_API void iFillRect(q_ulong *dst, tagRECT *rect, int pitch, q_ulong colour);

/// Scales the colours of `rect` by `factor`, in steps of 1/256, truncated; the top byte becomes 0. A factor between
/// -1/256 and 1/256 is a gentle fade step: each byte c becomes (c / 16) * 15. A factor above 1 is not clamped: red
/// wraps, green is dropped and blue spills into green.
Q_MUR_API void iFadeOut32(q_ulong *dst, tagRECT *rect, int pitch, float factor);

/// @}
/// \name Scaling copies
/// @{

/// Scales `srcRect` onto `dstRect`, nearest pixel, all 32 bits. Positions have 20 fraction bits: a source of 4096
/// pixels or more in either direction is beyond the format. Nothing is clipped.
Q_MUR_API void iBltNear32(q_ulong *dst, q_ulong *src, tagRECT *dstRect, tagRECT *srcRect, int dstPitch, int srcPitch);

/// As iBltNear32(), writing inside `clipRect` only; what is written is what would stand there unclipped. A source of
/// 2048 pixels or more in either direction is beyond the format. One that is turned inside out is walked to the left or
/// up, as in iBltNear32_Add().
Q_MUR_API void iBltNear32Safe(q_ulong *dst, q_ulong *src, tagRECT *dstRect, tagRECT *srcRect, tagRECT *clipRect,
                              int dstPitch, int srcPitch);

/// Scales `srcRect` onto `dstRect`, filtered; top byte 0. Positions and their limit are those of iBltNear32(). Reads
/// one column and one row beyond `srcRect`, and what stands there bleeds in: enlarged by k, the last k - 1 columns and
/// rows run over into it. In a buffer of just the size of `srcRect` that is the start of the next row, and memory that
/// is not the picture's behind the last. Where nothing may bleed, iBltBilinear32_KeySrc() repeats the last column and
/// row instead; with the key 0xFF000000, which never matches, it leaves nothing out.
Q_MUR_API void iBltBilinear32(q_ulong *dst, q_ulong *src, tagRECT *dstRect, tagRECT *srcRect, q_ulong dstPitch,
                              q_ulong srcPitch);

/// As iBltBilinear32(), but reading nothing behind the last source row: a pixel whose taps would reach the last pixel
/// of the source area, or go beyond, is copied unfiltered, its top byte included. So is the whole last row, and with a
/// pitch of the width, or one more, the end of the row above. The area is `srcPitch` times the height of `srcRect`,
/// counted from the top left of `srcRect`; the right edge still reads one pixel beyond and bleeds. A source with a
/// negative pitch is not filtered.
Q_MUR_API void iBltBilinear32Safe(q_ulong *dst, q_ulong *src, tagRECT *dstRect, tagRECT *srcRect, q_ulong dstPitch,
                                  q_ulong srcPitch);

/// Chooses by size: equal sizes iBltFast32(), an area enlarged by half or more iBltBilinear32Safe(), with what bleeds
/// at its right edge, anything else iBltNear32(). Areas are compared in 32 bits and should stay below 2^29 pixels.
Q_MUR_API void iBltAdaptive32(q_ulong *dst, q_ulong *src, tagRECT *dstRect, tagRECT *srcRect, q_ulong dstPitch,
                              q_ulong srcPitch);

/// A filtered copy whose rectangles count sixteenths of a pixel, for motion smoother than whole pixels; top byte 0.
/// Writes one column and one row more than the whole pixels of `dstRect`, and reads one beyond those; a destination
/// phase greater than the source phase reads one to the left of, or above, the source. Whole pixels are truncated
/// toward zero. An extent of 0 writes nothing, nor does a negative one of a pixel or more. Positions have 17 fraction
/// bits: a source of 1024 pixels or more in either direction is beyond the format.
Q_MUR_API void iBltPerfect32(q_ulong *dst, q_ulong *src, tagRECT *dstRect, tagRECT *srcRect, q_ulong dstPitch,
                             q_ulong srcPitch);

/// @}
/// \name Additive blits
/// The source colour is added to the destination, channel by channel; top byte 0. "Saturates" means capped at 255,
/// "wraps" that a carry is dropped. The forms with three scales multiply the source channel by scale / 256 first.
///
/// A source of no width or height adds nothing. One that is turned inside out, its right below its left or its bottom
/// below its top, adds nothing either, except in iBltNear32_Add() without scales and iBltNear32SafeKeySrcAdd(): these
/// begin at (left, top) and go left or up, positions rounded down, so that column `right` or row `bottom` can be read.
/// @{

/// Adds `srcRect` at (`dstX`, `dstY`). All channels saturate.
Q_MUR_API void iBltFast32_Add(q_ulong *dst, q_ulong *src, q_ulong dstX, q_ulong dstY, tagRECT *srcRect,
                              q_ulong dstPitch, q_ulong srcPitch);

/// Adds `srcRect` scaled in brightness at (`dstX`, `dstY`). Blue saturates, red and green wrap.
Q_MUR_API void iBltFast32_Add(q_ulong *dst, q_ulong *src, q_ulong dstX, q_ulong dstY, tagRECT *srcRect,
                              q_ulong dstPitch, q_ulong srcPitch, unsigned char scaleRed, unsigned char scaleGreen,
                              unsigned char scaleBlue);

/// Adds `srcRect` scaled onto `dstRect`, nearest pixel. Red and green saturate; a blue sum above 255 sets the lowest
/// bit of green instead. Positions have 15 fraction bits, as in all scaling blits of this section but one: a source of
/// 65536 pixels or more in either direction is beyond the format.
Q_MUR_API void iBltNear32_Add(q_ulong *dst, q_ulong *src, tagRECT *dstRect, tagRECT *srcRect, q_ulong dstPitch,
                              q_ulong srcPitch);

/// The same scaled in brightness. Blue saturates, red and green wrap.
Q_MUR_API void iBltNear32_Add(q_ulong *dst, q_ulong *src, tagRECT *dstRect, tagRECT *srcRect, q_ulong dstPitch,
                              q_ulong srcPitch, unsigned char scaleRed, unsigned char scaleGreen,
                              unsigned char scaleBlue);

/// Adds `srcRect` scaled onto `dstRect`, filtered. All channels saturate. Reads nothing outside `srcRect`.
Q_MUR_API void iBltBilinear32_Add(q_ulong *dst, q_ulong *src, tagRECT *dstRect, tagRECT *srcRect, q_ulong dstPitch,
                                  q_ulong srcPitch);

/// The same scaled in brightness. All channels saturate.
Q_MUR_API void iBltBilinear32_Add(q_ulong *dst, q_ulong *src, tagRECT *dstRect, tagRECT *srcRect, q_ulong dstPitch,
                                  q_ulong srcPitch, unsigned char scaleRed, unsigned char scaleGreen,
                                  unsigned char scaleBlue);

/// Adds the pixels of `srcRect` that are not 0 (in all 32 bits) at (`dstX`, `dstY`). All channels saturate.
/// \param key not read: the key is 0
Q_MUR_API void iBltFast32_KeySrc_Add(q_ulong *dst, q_ulong *src, int dstX, int dstY, tagRECT *srcRect, int dstPitch,
                                     int srcPitch, q_ulong key);

/// Adds `srcRect` scaled onto `dstRect`, nearest pixel, leaving out pixels that are 0, clipped to the destination
/// columns 0 up to `clipWidth` and rows 0 up to `clipHeight`. All channels saturate. Positions have 16 fraction bits: a
/// source of 32768 pixels or more in either direction is beyond the format.
Q_MUR_API void iBltNear32SafeKeySrcAdd(q_ulong *dst, q_ulong *src, tagRECT *dstRect, tagRECT *srcRect, int dstPitch,
                                       int srcPitch, int clipWidth, int clipHeight);

/// Adds `srcRect` at its own size with its middle, halves rounded down, on (`centreX`, `centreY`), leaving out pixels
/// that are 0, inside `clipRect`. All channels saturate. Only what lies within half the source's diagonal is drawn,
/// truncated to whole pixels, in either direction: an odd size can lose its last column or row, a single pixel is not
/// drawn. A source with a diagonal of 46341 pixels or more is beyond the format.
Q_MUR_API void iBltNear32_Add_KeySrc(q_ulong *dst, int dstPitch, q_ulong *src, int srcPitch, tagRECT *clipRect,
                                     tagRECT *srcRect, int centreX, int centreY);

/// @}
/// \name Colour-key blits
/// Pixels equal to the key in all 32 bits are left out; the others are copied whole, top byte included.
/// @{

/// Copies `srcRect` to (`dstX`, `dstY`) without the pixels equal to `key`.
Q_MUR_API void iBltFast32_KeySrc(q_ulong *dst, q_ulong *src, q_ulong dstX, q_ulong dstY, tagRECT *srcRect,
                                 q_ulong dstPitch, q_ulong srcPitch, q_ulong key);

/// Scales `srcRect` onto `dstRect`, nearest pixel, without the pixels equal to `key`. Positions have 15 fraction bits.
Q_MUR_API void iBltNear32_KeySrc(q_ulong *dst, q_ulong *src, tagRECT *dstRect, tagRECT *srcRect, q_ulong dstPitch,
                                 q_ulong srcPitch, q_ulong key);

/// Scales `srcRect` onto `dstRect`, filtered, and leaves out what filters to exactly `key`; top byte 0, so that a key
/// with a top byte never matches. Reads nothing outside `srcRect`. Positions have 15 fraction bits.
Q_MUR_API void iBltBilinear32_KeySrc(q_ulong *dst, q_ulong *src, tagRECT *dstRect, tagRECT *srcRect, q_ulong dstPitch,
                                     q_ulong srcPitch, q_ulong key);

/// Copies `srcRect` centred on (`centreX`, `centreY`) without the pixels that are 0, clipped to the destination columns
/// 0 up to `clipWidth` and rows 0 up to `clipHeight`. An odd width loses its last column, an odd height its last row.
Q_MUR_API void iBltFast32SafeKeySrc(q_ulong *dst, q_ulong *src, int centreX, int centreY, tagRECT *srcRect,
                                    int dstPitch, int srcPitch, int clipWidth, int clipHeight);

/// @}
/// \name Alpha blits
/// Blends truncate; top byte 0 except where a pixel is copied whole. `alpha` counts in steps of 1/256 and is not
/// clamped: outside 0 to 1 the channels wrap into each other under their masks.
/// @{

/// Blends the rectangle `rect`, moved by (`offsetX`, `offsetY`), of `src` over the same place of `dst`.
Q_MUR_API void iBltFast32Alpha(q_ulong *dst, q_ulong *src, int offsetX, int offsetY, tagRECT *rect, int dstPitch,
                               int srcPitch, float alpha);

/// Scales `srcRect` onto `dstRect`, filtered as in iBltBilinear32(), edges included, and blends it over the
/// destination. With an `alpha` outside 0 to 1 red and green wrap in place and blue runs over into them; the top byte
/// is 0 all the same.
Q_MUR_API void iBltBilinear32_Alpha(q_ulong *dst, q_ulong *src, tagRECT *dstRect, tagRECT *srcRect, q_ulong dstPitch,
                                    q_ulong srcPitch, float alpha);

/// Mixes the pixels of `srcRect` that are not 0 (in all 32 bits) half and half with the destination at (`dstX`,
/// `dstY`). The lowest bit of each channel is dropped before the sum. \param key not read: the key is 0
Q_MUR_API void iBltFast32_KeySrc_AlphaFast(q_ulong *dst, q_ulong *src, int dstX, int dstY, tagRECT *srcRect,
                                           int dstPitch, int srcPitch, q_ulong key);

/// Blends the pixels of `srcRect` that are not 0 (in all 32 bits) over the destination at (`dstX`, `dstY`).
/// \param key not read: the key is 0
Q_MUR_API void iBltFast32_KeySrc_Alpha(q_ulong *dst, q_ulong *src, int dstX, int dstY, tagRECT *srcRect, int dstPitch,
                                       int srcPitch, q_ulong key, float alpha);

/// Blends `srcRect`, centred and clipped as in iBltFast32SafeKeySrc(), by the top byte of each source pixel. Pixels
/// that are 0 (in all 32 bits) are left out, pixels of alpha 255 copied whole; between, the weights are alpha and
/// 255 - alpha, which leaves the blend slightly dark: a colour of alpha 0 dims the destination by 1/256.
Q_MUR_API void iBltFast32SafeAlpha_Channel(q_ulong *dst, q_ulong *src, int centreX, int centreY, tagRECT *srcRect,
                                           int dstPitch, int srcPitch, int clipWidth, int clipHeight);

/// Copies the sprite `srcRect`, centred and clipped as in iBltFast32SafeKeySrc() but without its last row, and softens
/// its outline: a pixel with an empty (0) neighbour in the four directions is blended by the count of non-empty pixels
/// in the 3 by 3 block around it, 42/256 for each but itself. With seven of them that exceeds 1, and the channels wrap.
/// All other pixels that are not 0 are copied whole. Reads one row and column around `srcRect`.
Q_MUR_API void iBltFast32SafeKeySrcAntiAliasing(q_ulong *dst, q_ulong *src, int centreX, int centreY, tagRECT *srcRect,
                                                int dstPitch, int srcPitch, int clipWidth, int clipHeight);

/// Blends a source of the size of `srcRect` at (`dstX`, `dstY`), inside `clipRect`, by the top byte of each source
/// pixel with the weights alpha and 256 - alpha; alpha 0 is left out. The source is read from the start of `src`: the
/// left and top of `srcRect` are not added.
Q_MUR_API void iBltFast32AlphaChannelSafe(q_ulong *dst, q_ulong *src, int dstX, int dstY, tagRECT *srcRect,
                                          tagRECT *clipRect, int dstPitch, int srcPitch);

/// @}
/// \name Text
/// @{

/// Writes `text` in the bold face that comes nearest to `fontName`, its top left corner on (`x`, `y`), clipped to the
/// destination columns 0 up to the width of `clipRect` and rows 0 up to its height; where `clipRect` stands makes no
/// difference. A pixel with ink replaces the destination whole, top byte 0: edges are smoothed toward black and not
/// blended with what lies below, and ink of colour 0 is left out. Where the text's width or height in pixels is odd,
/// its last column or row is missing.
///
/// \param text 8-bit characters of code page 1252, ending with a zero. Line breaks begin new lines, each centred in the
/// width of the widest. An `&` underlines the character behind it, of several in a line only the last one; `&&` stands
/// for one `&`
/// \param colour 0x00BBGGRR: red in the lowest byte, the reverse of a pixel. The top byte is 0; what anything else
/// there means is the platform's affair
/// \param fontHeight in pixels: positive the height of a line, negative that of its letters, 0 whatever is usual
/// \param fontName the name of a face as the system knows it; empty leaves the choice to the system
/// \return 1 if the text was drawn, also where the clip left nothing of it; 0 if it could not be had: it is empty or
/// null or too large, there is no font, or the library was built without a way to draw letters
///
/// The letters are the platform's: their bytes and sizes differ from system to system. The font is made on each call,
/// which keeps a picture of each character of the text, and of the whole text, until it returns.
Q_MUR_API int iTextOut(q_ulong *dst, tagRECT *clipRect, int pitch, char *text, q_ulong colour, int x, int y,
                       int fontHeight, char *fontName);

/// @}

/// Does nothing; kept because hosts link against it.
Q_MUR_API void i3DBltNear32();

#endif
