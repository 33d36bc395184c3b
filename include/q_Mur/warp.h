/// \file
/// Rotators and warps: images turned about an axis or mapped onto other shapes.
#ifndef Q_MUR_WARP_H
#define Q_MUR_WARP_H

#include "types.h"

/// \name Z-axis rotation
/// `srcRect` turned about its own centre and scaled, centred on (`centreX`, `centreY`), inside `clipRect`. The walk
/// maps each destination pixel back into the source, so there are no holes; what maps outside `srcRect` keeps its
/// value. The source and the clip rectangle bound all accesses.
///
/// `angle` is in radians, and a positive one turns the picture's right side down; `scale` 1.0 keeps the size, 2.0
/// doubles it, 0 and below draw nothing. `alpha` counts in steps of 1/256 and is not clamped: outside 0 to 1 red and
/// green wrap in place, and blue runs over into green and red. A pitch stands behind each surface and counts pixels.
///
/// The source's centre is half of left + right and half of top + bottom, rounded down. The walk covers a square around
/// the destination centre that reaches half the scaled source's diagonal, truncated, to the left and up, and one pixel
/// less to the right and down: a flat source can lose its last column, a single pixel at its own size is not drawn.
/// Where the square lies beyond the right or bottom edge of `clipRect`, the last column or row inside is walked all the
/// same; it shows the source only where positions wrap or stand still, as at a scale above 32768 of either sign.
///
/// Source positions are measured from the source's centre with 21 fraction bits in 32: a destination row that spans
/// more than 1024 source pixels (a source larger than that, or a small scale in a wide clip) is beyond the format.
///
/// Key variants leave out pixels that are 0 in all 32 bits. Filtered variants end one pixel earlier at the right and
/// bottom of the source, so that their four taps stay inside.
/// @{

/// Nearest pixel, copied whole.
Q_MUR_API void iBltNear32_Z_Roto(q_ulong *dst, int dstPitch, q_ulong *src, int srcPitch, tagRECT *clipRect,
                                 tagRECT *srcRect, int centreX, int centreY, float angle, float scale);

/// Nearest pixel, copied whole unless it is 0.
Q_MUR_API void iBltNear32_Z_Roto_KeySrc(q_ulong *dst, int dstPitch, q_ulong *src, int srcPitch, tagRECT *clipRect,
                                        tagRECT *srcRect, int centreX, int centreY, float angle, float scale);

/// Nearest pixel, added unless it is 0; all channels saturate, top byte 0.
Q_MUR_API void iBltNear32_Z_Roto_KeySrc_Add(q_ulong *dst, int dstPitch, q_ulong *src, int srcPitch, tagRECT *clipRect,
                                            tagRECT *srcRect, int centreX, int centreY, float angle, float scale);

/// Nearest pixel, blended by `alpha`; top byte 0.
Q_MUR_API void iBltNear32_Z_Roto_Alpha(q_ulong *dst, int dstPitch, q_ulong *src, int srcPitch, tagRECT *clipRect,
                                       tagRECT *srcRect, int centreX, int centreY, float angle, float scale,
                                       float alpha);

/// Filtered; top byte 0.
Q_MUR_API void iBltLinear32_Z_Roto(q_ulong *dst, int dstPitch, q_ulong *src, int srcPitch, tagRECT *clipRect,
                                   tagRECT *srcRect, int centreX, int centreY, float angle, float scale);

/// Filtered, then blended by `alpha`; top byte 0.
Q_MUR_API void iBltLinear32_Z_Roto_Alpha(q_ulong *dst, int dstPitch, q_ulong *src, int srcPitch, tagRECT *clipRect,
                                         tagRECT *srcRect, int centreX, int centreY, float angle, float scale,
                                         float alpha);

/// @}

/// \name X- and Y-axis rotation
/// An image turning in depth about a horizontal (X) or vertical (Y) axis, like a page, with a simple perspective. All
/// pixels are copied whole.
///
/// `angle` is in radians; `scale` 1.0 keeps the size, 0 draws nothing, nor does a face that stands edge-on;
/// `perspective` is the strength of the narrowing toward one edge, 0 a flat turn. Positions have 15 fraction bits.
/// @{

/// Draws the front or the back of `srcRect`, whichever is seen, turned about the horizontal line through `sourcePivot`,
/// which lands on `destCentre`. All four surfaces share one `pitch`.
/// \param front the one face
/// \param back the other; null is the plain colour `backColour`. The back view reads one row further than `srcRect`.
///        The same surface as `front` reads the same way up on both faces.
/// \param background what the face uncovers, at the same place as the destination; may be null
/// \param clearOutside without a background: not 0 sets what the face uncovers to 0, 0 leaves it
/// \param width the destination's columns 0 up to `width` may be written
/// \param height likewise its rows 0 up to `height`
Q_MUR_API void iBltNear32_X_Roto(q_ulong *dst, q_ulong *front, q_ulong *back, q_ulong *background, double angle,
                                 double scale, double perspective, tagRECT srcRect, tagPOINT destCentre,
                                 tagPOINT sourcePivot, int clearOutside, q_ulong backColour, int unused, int pitch,
                                 int width, int height);

/// As iBltNear32_X_Roto(), turned about the vertical line through `sourcePivot`; the back view reads one column
/// further.
Q_MUR_API void iBltNear32_Y_Roto(q_ulong *dst, q_ulong *front, q_ulong *back, q_ulong *background, double angle,
                                 double scale, double perspective, tagRECT srcRect, tagPOINT destCentre,
                                 tagPOINT sourcePivot, int clearOutside, q_ulong backColour, int unused, int pitch,
                                 int width, int height);

/// Turns a whole frame of `width` by `height` about the horizontal line through its middle, one face alone; what it
/// uncovers becomes 0. The margin below is one row higher than the one above: the last row is cleared even where the
/// face just fills the frame, and shows it only where that reaches past the frame by a whole row or more, above and
/// below. Source row 0 and column 0 are not shown.
Q_MUR_API void iBltNear32_X_Roto_Fast(q_ulong *dst, int dstPitch, q_ulong *src, int srcPitch, double angle,
                                      double scale, double perspective, int width, int height);

/// The same showing all of the source, and a background, read with `dstPitch`, where the frame is uncovered.
Q_MUR_API void iBltNear32_X_Roto_Fast(q_ulong *dst, int dstPitch, q_ulong *src, int srcPitch, q_ulong *background,
                                      int unused, double angle, double scale, double perspective, int width,
                                      int height);

/// Turns a whole frame of `width` by `height` about the vertical line through its middle, one face alone; what it
/// uncovers becomes 0. The last column is treated as the last row is in iBltNear32_X_Roto_Fast(). Shows all of the
/// source.
Q_MUR_API void iBltNear32_Y_Roto_Fast(q_ulong *dst, int dstPitch, q_ulong *src, int srcPitch, double angle,
                                      double scale, double perspective, int width, int height);

/// @}
/// \name Quad mappings
/// An image drawn into a figure of four free corners, which run round it: corner 0 to 1 is the top edge of the image,
/// 1 to 2 its right, 2 to 3 its bottom and 3 to 0 its left. Corners are destination pixels. All surfaces of one call
/// share the one `pitch`. Pixels are copied whole unless said otherwise.
/// @{

/// Inverts the bilinear patch exactly for every pixel, with one root per pixel. Source and destination are `width` by
/// `height` pixels; all of the destination is written, outside the figure with 0.
Q_MUR_API void iBilinearMapping(q_ulong *dst, q_ulong *src, int pitch, int width, int height, int x0, int x1, int x2,
                                int x3, int y0, int y1, int y2, int y3);

/// Approximates the patch in a row pass and a column pass. Source, destination and `scratch` are `width` by `height`
/// pixels; the destination is filled with `fillColour` first. A figure that lies wholly to the right of column 1024 or
/// to the left of column -1024 is drawn as if it reached there.
Q_MUR_API void iPsudoBilinearMapping(q_ulong *dst, q_ulong *src, q_ulong *scratch, int pitch, int width, int height,
                                     q_ulong fillColour, int x0, int x1, int x2, int x3, int y0, int y1, int y2,
                                     int y3);

/// Draws `srcRect` into a trapezoid of two horizontal or two vertical sides, inside `clipRect`; any other figure draws
/// nothing. Each channel is multiplied by `brightnessScale` / 256, `brightnessAdd` is added, and what leaves 0 to 255
/// at either end becomes 255; top byte 0. A source's top byte goes into the product of red. The left and top of
/// `srcRect` are counted a second time along the axis between the two parallel sides, so they should be 0.
Q_MUR_API void iAffineMapping(q_ulong *dst, q_ulong *src, int pitch, tagRECT *srcRect, tagRECT *clipRect, int x0,
                              int x1, int x2, int x3, int y0, int y1, int y2, int y3, int brightnessAdd,
                              int brightnessScale);

/// @}

/// \name Rotation about a centre
/// `srcRect` stretched onto a rectangle of `width` by `height` around (`centreX`, `centreY`), which is then turned by
/// `angle` (radians), inside `clipRect`. #iSin and #iCos must have been filled.
/// @{

/// Filtered, top byte 0, without a test on the source: taps reach one pixel beyond `srcRect`. The edges of the turned
/// rectangle are traced and the spans between them filled, so that no pixel needs a test. A zero size draws nothing;
/// columns and rows from -2048 to 63487 keep their order.
Q_MUR_API void iRotateMapping(q_ulong *dst, tagRECT *clipRect, int dstPitch, q_ulong *src, tagRECT *srcRect,
                              int srcPitch, int centreX, int centreY, double angle, int width, int height);

/// Turns a disc of the image on the spot, the other way round than the functions beside it: source and destination
/// share coordinates, and pixels are copied whole. Columns and rows from -1024 to 64511 keep their order. There is no
/// test on the source.
/// \param srcRect not used
/// \param radius a negative one is taken by its magnitude, down to -50; below that a part of the disc or nothing is
/// drawn
Q_MUR_API void iRotateCircleMapping(q_ulong *dst, tagRECT *clipRect, int dstPitch, q_ulong *src, tagRECT *srcRect,
                                    int srcPitch, int centreX, int centreY, int radius, double angle);

/// Nearest pixel, copied whole; what maps outside `srcRect` keeps its value. Every pixel of the turned rectangle's
/// bounding box is mapped back. The centre of rotation in the source is the point half of `clipRect`'s width and height
/// away from the source's (0, 0): meant for a source and a clip that both are the whole frame. The last column and row
/// are not drawn, and each pixel shows the source one step further along its row. Positions have 16 fraction bits.
Q_MUR_API void iRotate(q_ulong *dst, tagRECT *clipRect, int dstPitch, q_ulong *src, tagRECT *srcRect, int srcPitch,
                       int centreX, int centreY, double angle, int width, int height);

/// As iRotate(), filtered, top byte 0. Positions have 20 fraction bits, so that a source of 2048 pixels or more is
/// beyond the format.
Q_MUR_API void iRotateLinear(q_ulong *dst, tagRECT *clipRect, int dstPitch, q_ulong *src, tagRECT *srcRect,
                             int srcPitch, int centreX, int centreY, double angle, int width, int height);

/// As iRotateLinear(), with softened edges. **Writes to its source**: the top byte of every pixel of `srcRect` becomes
/// 0xFF, which serves as coverage; that of the two pixels around `srcRect`, which are read, should be 0. Partly
/// covered pixels take the brightest of their four taps, channel by channel, blended by their coverage.
Q_MUR_API void iRotateLinearAA(q_ulong *dst, tagRECT *clipRect, int dstPitch, q_ulong *src, tagRECT *srcRect,
                               int srcPitch, int centreX, int centreY, double angle, int width, int height);

/// @}
/// \name Triangles and image lines
/// @{

/// Maps a triangle of a source image onto a triangle of the destination, nearest pixel, copied whole. Lower and right
/// ends are left out. Source positions are tested against `clip` as well, and only against it: a source pixel outside
/// the clip is not drawn, and the source must be at least as large as the clip's extent.
/// \param p0 a corner on the destination, as `p1` and `p2`
/// \param t0 the source column and row of `p0`; `t1` and `t2` are those of the others
Q_MUR_API void Blt_Triangle(q_ulong *dst, tagRECT *clip, int dstPitch, _POINTINT *p0, _POINTINT *p1, _POINTINT *p2,
                            q_ulong *src, int srcPitch, _POINTINT *t0, _POINTINT *t1, _POINTINT *t2);

/// A straight stroke of `width` pixels from (`x1`, `y1`) to (`x2`, `y2`), both included, that reveals `src`: pixels are
/// copied whole to the same places of `dst`. Both surfaces share one `pitch`. Nothing is clipped. The stroke runs
/// across the row where the line is at least as steep as 45 degrees, else down the column.
Q_MUR_API void ImageLine(q_ulong *dst, q_ulong *src, int pitch, int x1, int y1, int x2, int y2, int width);

/// @}

#endif
