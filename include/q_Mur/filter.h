/// \file
/// Filters: whole-rectangle operations on pixels.
#ifndef Q_MUR_FILTER_H
#define Q_MUR_FILTER_H

#include "types.h"

/// \name Edge transparency
/// Two pictures cross-faded along a soft edge. `out`, `imageA` and `imageB` share one `pitch`, in pixels. A mixed pixel
/// has a top byte of 0; a top byte of either source disturbs the red of the mix. `out` may be one of the images or
/// overlap them: each pixel is mixed from what stands there when the walk comes to it.
/// @{

/// Writes a soft straight edge: the strip of `out` along the line from `p1` to `p2`, inside `clip`. Across the strip
/// `imageB` fades into `imageA` on the way to larger coordinates (the other way round if `swapImages` is 0); what lies
/// on either side is not touched. The mix is counted from where the strip begins, also where the clip cuts that off.
///
/// Below 46 degrees the strip is walked by columns, from the one point's column to the other's, both included; from
/// there on by rows, the row of the lower point left out. Either walk includes the last column of `clip` and leaves out
/// its last row.
/// \param p1 one end of the line, whose shorter extent must stay below 65536
/// \param p2 the other end; equal ends draw nothing
/// \param edgeWidth width of the strip across the line, in pixels; below 2 nothing is drawn
/// \param unused1 not read
/// \param unused2 not read
Q_MUR_API void Edge_Transparency(q_ulong *out, q_ulong *imageA, q_ulong *imageB, tagPOINT *p1, tagPOINT *p2,
                                 int edgeWidth, int pitch, int unused1, int unused2, int swapImages, tagRECT *clip);

/// Writes the whole area of `width` by `height` pixels: `imageA` inside a circle, `imageB` outside, mixed where the
/// distance to `centre` is within `band` of `radius`. Pixels outside the band are copied whole. Distances are squared
/// in 32 bits: beyond 46340 pixels from `centre` they wrap.
/// \param radius 0 or more. Below 0 only the outer part of the edge is left, and at -`band` nothing; from there on its
///        square grows again, and a disc of meaningless colours appears.
/// \param band half the width of the soft edge, in pixels; 0 draws nothing, a negative one a hard edge at `radius` +
///        `band`
Q_MUR_API void Edge_Transparency_Circle(q_ulong *out, q_ulong *imageA, q_ulong *imageB, tagPOINT *centre, int radius,
                                        int band, int width, int height, int pitch);

/// @}
/// \name Blurs in place
/// Each treats `rect` of `surface`; the top byte of what it writes becomes 0.
/// @{

/// Averages the neighbours on either side of each pixel, in one of four directions drawn from the runtime's `rand` at
/// each call. The outermost pixels of `rect` stay; a rectangle of fewer than three rows or columns stays whole. Each
/// channel loses its lowest bit before the sum.
Q_MUR_API void FastBlur_Rect(q_ulong *surface, tagRECT *rect, int pitch);

/// Averages the four neighbours of each pixel: those beside it and those at its corners, call by call in turn. The
/// outermost pixels of `rect` stay. White falls to 0xFCFCFC.
/// \param lut keeps whose turn it is (GetPrivate_LUT_Data()); it changes even where `rect` is too small to be blurred
Q_MUR_API void CrossBlur_Rect(_PRIVATE_LUT_DATA *lut, q_ulong *surface, tagRECT *rect, int pitch);

/// Box blur over windows of 2 `radius` + 1 pixels in both directions; windows shrink at the edges of `rect`. The cost
/// does not depend on the radius. Inside, means are taken by a reciprocal and come out up to 1 low in each direction;
/// along the edges they are exact divisions. It takes memory for at most 288 rows, each rounded up to a cache
/// line, and one more of double length; without it, as much as the rectangle has, and without that nothing is drawn.
/// \param radius 0 to 128; a larger one overflows red. With one below 0 or above half of `rect` in either direction
///        nothing is drawn.
Q_MUR_API void Blur_Rect(q_ulong *surface, tagRECT *rect, int pitch, int radius);

/// Does nothing; kept because hosts link against it.
Q_MUR_API void Blur_Ring(q_ulong *surface, tagPOINT centre, int, int, int, int);

/// Does nothing; kept because hosts link against it.
Q_MUR_API void Blur_Parallelogram(q_ulong *surface, int, int, int, int, int, int, tagRECT *rect, int, int);

/// @}
/// \name Blurs from buffer to buffer
/// Each filters an area of `width` by `height` pixels that starts at the first pixel of either buffer. `dst` and `src`
/// share one `pitch` and must not overlap.
/// @{

/// Box blur along rows over windows of `blurSize` + 1 pixels, leaning one pixel to the right where that is even;
/// windows shrink at the ends. All means are taken by reciprocals and come out up to 1 low. Top byte 0.
/// \param blurSize 0 to 255, less than `width`; above 255 and below 0 nothing is drawn
/// \param width not checked: `blurSize` / 2 pixels are written from the start of every row even if it has none
Q_MUR_API void Hor_Blur(q_ulong *dst, q_ulong *src, int blurSize, int width, int height, int pitch);

/// The same along columns; `blurSize` is less than `height`, which is the one that is not checked.
Q_MUR_API void Ver_Blur(q_ulong *dst, q_ulong *src, int blurSize, int width, int height, int pitch);

/// As Hor_Blur(), the top byte blurred like a colour.
Q_MUR_API void Hor_Blur32(q_ulong *dst, q_ulong *src, int blurSize, int width, int height, int pitch);

/// As Ver_Blur(), the top byte blurred like a colour.
Q_MUR_API void Ver_Blur32(q_ulong *dst, q_ulong *src, int blurSize, int width, int height, int pitch);

/// Gaussian blur along rows, with integer weights that add up to 256: a uniform area stays as it is. Beyond the ends of
/// a row its pixels are mirrored, about the first pixel on the left and behind the last one on the right. Top byte 0.
/// \param sigma standard deviation in pixels, above 0. From about 42.1 upward nothing is drawn; from about 3990, where
///        the search for the kernel's radius ends at once, each pixel is averaged with its two neighbours.
/// \param width at least twice the kernel's radius, which is about 3 `sigma`; pixels that mirroring cannot reach are
///        replaced by the nearest of the row
Q_MUR_API void Hor_GaussBlur(q_ulong *dst, q_ulong *src, float sigma, int width, int height, int pitch);

/// The same along columns; `height` is at least twice the kernel's radius.
Q_MUR_API void Ver_GaussBlur(q_ulong *dst, q_ulong *src, float sigma, int width, int height, int pitch);

/// @}

/// \name Distance fields and light maps
/// A light map turns a flat mask into the lighting of a raised shape: what is not 0 in a rectangle is the shape, the
/// distance to its outside becomes a height, heights become slopes, and each pixel of the shape is overwritten by a
/// word that holds the light on that spot of the relief. Pixels outside stay 0. A rectangle wider than the pitch is
/// left as it is. A map takes memory while it is made: up to 24 bytes for each word from the first row of the rectangle
/// to the last, and some rows more; without it the rectangle is left as it is.
///
/// **Light.** It comes from the upper left, 35 degrees above the picture, and the viewer looks straight down. With a
/// negative `heightScale` the shape is a hollow, whose lower right side is the bright one.
///
/// **Neutral.** A flat spot is 0x20117 in both maps of ConvertBlock2LightInfom(): a diffuse light of 179, stored as
/// 279, and a highlight of 2. In those of ConvertSrc2LightInfom() it is 0xFF: 256 and the 100 reach the limit, so that
/// slopes toward the light are no brighter than a flat spot but for their highlight. A slope that the light does not
/// reach has the diffuse light 0, stored as 100.
///
/// **Applying.** No function reads a map; the host lays it over a picture of its own where words are not 0, channel by
/// channel, capped at 255: `colour * (word & 0xFFFF) / 279 + (word >> 16)` for the first two maps, `colour * (word &
/// 0xFF) / 255 + (word >> 8 & 0xFF)` for the third. The 100 is light from all around: without it, 179 and 155 are the
/// divisors and slopes in the shade turn black.
/// @{

/// Searches one square ring around a word for black (0 in all 32 bits). Neighbours are found by adding to the index, so
/// that a ring wraps round at the ends of rows. Black at a squared distance of 1000000 and above is passed over. A
/// caller asks for ring 1, 2, 3 ... until the answer is 0.
/// \param block the first of the words that count
/// \param blockWords how many they are
/// \param index the word in the middle
/// \param ring half the side of the square
/// \param[out] distanceSquare the smallest squared distance to black on this ring, at most `limit`. Where the ring has
///        no black it is `limit` and the search ends, or, for a limit of 1000000 and above, 1000000 and it goes on.
/// \return 1 to go on searching, 0 at the end
Q_MUR_API int FindNearBlackDistanceSquare(q_ulong *block, int blockWords, int index, int pitch, int ring,
                                          int *distanceSquare, int limit);

/// The same without a limit; `distanceSquare` is the square of `ring` in any case. It does not end by itself where
/// nothing is black.
Q_MUR_API int FindNearBlackDistanceSquare(q_ulong *block, int blockWords, int index, int pitch, int ring,
                                          int *distanceSquare);

/// Searches one square ring around (`x`, `y`) for a pixel whose colour is not 0, on a surface of `width` by `height`
/// pixels whose pitch is its width; rings end at the surface's sides.
/// \param[out] distanceSquare the smallest squared distance on this ring, 1000000 if there is none
/// \return 1 if nothing was found, else 0
Q_MUR_API int FindNearSrcDistanceSquare(q_ulong *surface, int width, int height, int x, int y, int ring,
                                        int *distanceSquare);

/// Light map with a bevel by true distance: bits 0-15 hold the diffuse light plus 100, bits 16 and up the highlight,
/// neither limited. The bevel is one pixel deep unless `limit` is very large.
/// \param heightScale what heights are multiplied by; 1 keeps them in pixels
/// \param bevelSize width of the bevel, in pixels; its profile is a quarter circle of half that radius
/// \param limit the largest squared distance; from 1000000 upward the nearest black is sought however far it lies, and
///        a rectangle without any word of 0 is left as it is
Q_MUR_API void ConvertBlock2LightInfom(q_ulong *surface, tagRECT *rect, int pitch, int heightScale, int bevelSize,
                                       int unused, int limit);

/// The same with a bevel of square contours. A rectangle without any word of 0 is left as it is.
Q_MUR_API void ConvertBlock2LightInfom(q_ulong *surface, tagRECT *rect, int pitch, int heightScale, int bevelSize,
                                       int unused);

/// Light map with slopes: from bit 0 a byte each of diffuse light plus 100 and highlight, both at most 255, and of the
/// normal's y and x times 64, signed: positive where the relief rises downward and to the right. A negative y sets the
/// whole byte of x. The relief has square contours. A rectangle without any word of 0 is left as it is.
/// \param bevelSize width of the bevel in pixels; an eighth of it is how far heights are smoothed
/// \param profile the height by distance f: 0 is 2 f, 1 is f f / 2, 2 a half circle as wide as the bevel, as high as
///        its middle again where that ends; anything else is flat
Q_MUR_API void ConvertSrc2LightInfom(q_ulong *surface, tagRECT *rect, int pitch, int heightScale, int bevelSize,
                                     int profile);

/// @}

#endif
