/// \file
/// 2D drawing: lines, circles, stars, balls, bubbles and convex quads on a 32-bit surface.
///
/// Common to all of them: pitches count pixels, positions and radii are whole pixels, and nothing but the pixels of the
/// shape is written. A function that takes a clip writes nothing outside of it, unless it says so. Any other trusts the
/// caller to keep the whole shape inside the surface. A negative radius, size or thickness and one that a function
/// would have to divide by when it is 0 are the caller's mistake: most functions draw nothing then. Blends truncate.
#ifndef Q_MUR_DRAW_H
#define Q_MUR_DRAW_H

#include "types.h"

/// \name Lines
/// A line runs along the axis of its greater extent, along y where both are equal.
///
/// The `iLine_AntiAliasing` family carries its minor position in 1/256 of a pixel and divides the colour between the
/// two *edge* pixels that this falls between; a `width` above 1 moves the edges apart and puts `width` - 1 *core*
/// pixels between them. With 0 both edges fall on one pixel; a negative `width` is of no use, but stays inside `clip`.
/// There are no end caps, and a line whose ends coincide leaves no pixel. Clipping does not bend a line. It keeps a
/// margin inside `clip`: columns and rows along the line reach from left (top) + `width` / 2 + 1 to right (bottom) -
/// (`width` + 1) / 2 - 1, positions across it stay below that end. Coordinates and their differences lie within 8388607
/// (24.8 fixed point).
///
/// An edge pixel's weight w runs from 0 to 256, the two of a cross-section add up to 256. Even with a weight of 0 the
/// pixel is written: its top byte is cleared, except where the old red wins in iLine_AntiAliasing_Max().
/// @{

/// Adds `colour` to the pixel (`x`, `y`); each channel saturates, top byte 0. Nothing is clipped.
Q_MUR_API void Draw_Pixel_Add(q_ulong *surface, int pitch, int x, int y, q_ulong colour);

/// A line of width 1: iLine_AntiAliasing() with `width` 1.
Q_MUR_API void iLine_AntiAliasing(q_ulong *surface, tagRECT *clip, int pitch, int x1, int y1, int x2, int y2,
                                  q_ulong colour);

/// A line that covers what is below. Edge: (old * (256 - w) + c * w) / 256 in each channel, top byte 0. Core: `colour`
/// as given, top byte included.
Q_MUR_API void iLine_AntiAliasing(q_ulong *surface, tagRECT *clip, int pitch, int x1, int y1, int x2, int y2,
                                  q_ulong colour, int width);

/// A line of one eighth of full strength. Edge: as iLine_AntiAliasing() with w / 8. Core: seven eighths of the old
/// pixel and one of the colour, each eighth truncated, so no channel rises above 0xF8 and white darkens. Top byte 0.
Q_MUR_API void iLine_AntiAliasing_Alpha(q_ulong *surface, tagRECT *clip, int pitch, int x1, int y1, int x2, int y2,
                                        q_ulong colour, int width);

/// A glowing line. Edge: each channel gains w * c / 256. Core: each gains c. All saturate; top byte 0. Red is taken as
/// the upper half of the word: a top byte in the pixel or the colour drives red to 255.
Q_MUR_API void iLine_AntiAliasing_Add(q_ulong *surface, tagRECT *clip, int pitch, int x1, int y1, int x2, int y2,
                                      q_ulong colour, int width);

/// A line that only brightens. Edge: the greater of old and w * c / 256 in each channel. Core: the greater of old and
/// c. Red is compared and kept as the upper half of the word, so the winner's top byte stays with it.
Q_MUR_API void iLine_AntiAliasing_Max(q_ulong *surface, tagRECT *clip, int pitch, int x1, int y1, int x2, int y2,
                                      q_ulong colour, int width);

/// A glowing line that fades from (`x1`, `y1`) to nothing at (`x2`, `y2`). Edges as in iLine_AntiAliasing_Add() with w
/// scaled down along the line; there is no core, so `width` only moves the edges apart. The scale is coarse: with n
/// the length along the major axis, strength starts at n * (1024 / n) / 1024 of full, and a line with n of 1025 or
/// more adds no colour.
Q_MUR_API void iLine_AntiAliasing_AddSome(q_ulong *surface, tagRECT *clip, int pitch, int x1, int y1, int x2, int y2,
                                          q_ulong colour, int width);

/// A shaded tube: across the line the pixels go from white in the middle through the colour to black, on either side.
/// Red and blue of `colour` are exchanged; top byte 0. The shades lie along the minor axis, k pixels to both sides.
///
/// Nothing is drawn if (`x1`, `y1`) lies outside `clip` along the major axis; elsewhere sections outside are left out.
/// Along the minor axis the two pixels k to the sides are written only if both lie inside `clip`, but the centre pixel
/// is not clipped: the caller keeps the minor coordinate inside the surface.
/// \param halfWidth shades beside the middle one, 0 or more; with 0 the line is black. Takes 4 * (`halfWidth` + 1)
///                  bytes from the heap for the call, and draws nothing if they are not to be had.
Q_MUR_API void DDLine_Fat(q_ulong *surface, tagRECT *clip, int pitch, int x1, int y1, int x2, int y2, q_ulong colour,
                          int halfWidth);

/// A line whose colour changes from `colour1` towards `colour2`, which it never quite reaches; equal ends write one
/// pixel. The first pixel is `colour1` as given, the second repeats it with a top byte of 0, and so has every other. A
/// top byte in either colour bends the change of red. Nothing is clipped.
Q_MUR_API void DDLine_Color_Change(q_ulong *surface, int pitch, int x1, int y1, int x2, int y2, q_ulong colour1,
                                   q_ulong colour2);

/// Adds a line that fades to nothing, clipped to the columns 0 up to `width` and rows 0 up to `height`. The first end
/// is not drawn; the pixel after it gets the whole colour. All channels saturate; top byte 0. A top byte in `colour`
/// makes its red that much stronger, one in a pixel has no influence.
Q_MUR_API void iLineAddSome(q_ulong *surface, int pitch, int x1, int y1, int x2, int y2, q_ulong colour, int width,
                            int height);

/// @}
/// \name Circles, rings and ellipses
/// A disc of radius r is the pixels at a distance of at most r from the centre pixel. Mind the order of `clip` and
/// `pitch`, which differs.
/// @{

/// Fills a disc with `colour` as given, top byte included. Radius 0 is one pixel. Nothing is clipped.
Q_MUR_API void Draw_Circle_FillInside(q_ulong *surface, int pitch, int cx, int cy, int radius, q_ulong colour);

/// Draws a circle with `colour` as given: each row runs from the rim up to the first pixel at a distance of
/// |`radius` - `thickness`| or less, that pixel included. A `thickness` beyond the radius makes the ring thinner again.
/// Nothing is clipped. The radius is at most 32767.
Q_MUR_API void Draw_Circle_NoFillInside(q_ulong *surface, int pitch, int cx, int cy, int radius, int thickness,
                                        q_ulong colour);

/// Fills a disc with `colour` as given, inside `clip`. Beyond a radius of 32767 its squared distances wrap at 32 bits.
Q_MUR_API void iFill_Circle_Safe(q_ulong *surface, tagRECT *clip, int pitch, int cx, int cy, int radius,
                                 q_ulong colour);

/// Blends a disc inside `clip`: (old * (256 - `alpha`) + c * `alpha`) / 256 in each channel, top byte 0. Outside 0 to
/// 256 each channel wraps within its byte. Radius as in iFill_Circle_Safe().
Q_MUR_API void iFill_Circle_Alpha(q_ulong *surface, tagRECT *clip, int pitch, int cx, int cy, int radius,
                                  q_ulong colour, int alpha);

/// Blends a disc inside `clip` that is clear at the centre and solid at the rim, with the square of the distance; top
/// byte 0. The share of the colour has 16 fraction bits of 1 / r^2: beyond a radius of 256 the disc stays clear.
Q_MUR_API void Draw_Bubble_Circle(q_ulong *surface, tagRECT *clip, int pitch, int cx, int cy, int radius,
                                  q_ulong colour);

/// Draws an opaque disc that goes from white at the centre to the colour at the rim, with the square of the distance.
/// Top byte 0 if the colour's is; otherwise red is computed on the upper half of the word. Beyond a radius of 256 the
/// disc is white. Nothing is clipped.
Q_MUR_API void Draw_Metal_Circle(q_ulong *surface, int pitch, int cx, int cy, int radius, q_ulong colour);

/// Blends a soft band around a circle: the full colour on it, falling to nothing 2 * `thickness` pixels to either side.
/// Red is blended together with the top byte, as one 16-bit number. A centre that lies inside the band is blended four
/// times. Nothing is clipped. Reads #iSqrt.
/// \param thickness 1 or more; 0 draws nothing. `radius` + 2 * `thickness` is at most 181, where the distance table
///                  ends: what lies farther from the centre is left out.
Q_MUR_API void Draw_Anti_Aliasing_Circle_NoFillInside(q_ulong *surface, int pitch, int cx, int cy, int radius,
                                                      int thickness, q_ulong colour);

/// Adds a ring of up to 16 pixels' width inside the circle, brightest on its middle; a radius below 32 makes it half
/// the radius wide. Each channel gains w * c / 128 and saturates; top byte 0. The last column and the last row, at
/// +`radius`, are left out. Nothing is clipped. The radius is at most 32767.
/// \param intensity the weight w on the middle of the ring; 128 is the full colour
Q_MUR_API void Draw_Ring(q_ulong *surface, int pitch, int cx, int cy, int radius, q_ulong colour, q_ulong intensity);

/// Adds the band of Draw_Anti_Aliasing_Circle_NoFillInside() inside `clip`, with the same limits on `radius` and
/// `thickness`. Each channel gains w * c / 256 and saturates; top byte 0. Red is taken as the upper half of the word: a
/// top byte in the pixel drives red to 255. Reads #iSqrt.
Q_MUR_API void Draw_Ring_Safe(q_ulong *surface, int pitch, tagRECT *clip, int cx, int cy, int radius, int thickness,
                              q_ulong colour);

/// Draws, inside `clip`, the outline of the ellipse through the corners of `box`, with `colour` as given. Each row runs
/// as in Draw_Circle_NoFillInside(). A `box` of no width or no height draws nothing; of 2048 pixels or more in width it
/// is beyond the format.
/// \param thickness in horizontal pixels; squeezed vertically with the ellipse
Q_MUR_API void Draw_Outer_Ellipse_NoFillInside(q_ulong *surface, int pitch, tagRECT *clip, tagRECT *box, int thickness,
                                               q_ulong colour);

/// Fills the ellipse through the corners of `box` at half strength: old / 2 + c / 2 in each channel, top byte 0.
///
/// The two axes are drawn apart from the rest: they stop one pixel short of their right and lower end, and the centre
/// is blended twice. An axis that lies outside `clip` is drawn along the nearest column or row inside it. The vertical
/// axis is clipped at row 0 instead of the top of `clip`: it may be written above a `clip` that starts further down.
/// Limits of `box` as in Draw_Outer_Ellipse_NoFillInside().
/// \param unused not read
Q_MUR_API void Draw_Outer_Ellipse_AlphaFast(q_ulong *surface, int pitch, tagRECT *clip, tagRECT *box, int unused,
                                            q_ulong colour);

/// @}
/// \name Stars, lights, balls and crosses
/// Small glowing sprites, computed on the fly. "Adds" means that each channel gains w * c / 256 and saturates, for a
/// weight w that the shape gives each pixel; top byte 0, and the old pixel's has no influence.
///
/// Draw_Star_Type1(), Draw_Star_Type2() and Draw_Light() lie inside the circle of their radius as #iSqrt has it: one of
/// radius 3 or less draws nothing. They and their `_Safe` forms read the table, which PrepareSinTable() must have
/// filled. Their last column and last row are left out, and their radius is at most 362, where the table ends; their
/// weights are a little low where the radius does not divide a power of two. The `_Safe` forms cut the radius to 256
/// and write inside `clip` without its first row and its first column.
/// @{

/// Adds a star with four spikes: the weight is the product of the squares of (r - |dx|) / r and (r - |dy|) / r.
/// \param intensity a quarter of the weight at the centre: 64 is the full colour; below 1024
Q_MUR_API void Draw_Star_Type1(q_ulong *surface, int pitch, int cx, int cy, int radius, q_ulong colour,
                               q_ulong intensity);

/// Draw_Star_Type1() inside `clip`, but for its first row and first column.
Q_MUR_API void Draw_Star_Type1_Safe(q_ulong *surface, int pitch, tagRECT *clip, int cx, int cy, int radius,
                                    q_ulong colour, q_ulong intensity);

/// Adds the star of Draw_Star_Type1() with a brighter cross: the centre's row and column are added twice and the centre
/// pixel four times. The first column and row are left out like the last.
Q_MUR_API void Draw_Star_Type2(q_ulong *surface, int pitch, int cx, int cy, int radius, q_ulong colour,
                               q_ulong intensity);

/// Adds a diamond with a core of a fifth of its radius, in which the weight rises sixteen times as steeply. The
/// rightmost column of each row, and the last row, are left out. Reads no table: a radius of 1 draws two pixels. Beyond
/// a radius of 1024 nothing is added. \param intensity 32 is the full colour at the centre
Q_MUR_API void Draw_Star_Type3(q_ulong *surface, int pitch, int cx, int cy, int radius, q_ulong colour,
                               q_ulong intensity);

/// Adds a round light, whose weight falls with the square of the distance to nothing at the rim.
/// \param intensity half the weight at the centre: 128 is the full colour; below 4096
Q_MUR_API void Draw_Light(q_ulong *surface, int pitch, int cx, int cy, int radius, q_ulong colour, q_ulong intensity);

/// Draw_Light() inside `clip`, but for its first row and first column.
Q_MUR_API void Draw_Light_Safe(q_ulong *surface, int pitch, tagRECT *clip, int cx, int cy, int radius, q_ulong colour,
                               q_ulong intensity);

/// Draws an opaque ball lit from the upper left: twice the colour at the highlight, half a radius away from the centre
/// in both directions, capped at 255, and dark at the lower right; top byte 0. The whole disc is drawn, rim included.
/// A radius of 0 becomes 1, one above 256 becomes 256. Nothing is clipped.
/// \param unused not read
Q_MUR_API void Draw_3DBall(q_ulong *surface, int pitch, int cx, int cy, int radius, q_ulong colour, q_ulong unused);

/// Draw_3DBall() inside `clip`, but for its first row and first column.
/// \param unused not read
Q_MUR_API void Draw_3DBall_Safe(q_ulong *surface, int pitch, tagRECT *clip, int cx, int cy, int radius, q_ulong colour,
                                q_ulong unused);

/// Blends a disc that is solid at its centre and clear at its rim, with the square of the distance; top byte 0. Old red
/// is taken as the upper half of the word, so a top byte disturbs it. Beyond a radius of 256 the whole disc is solid.
/// The radius is at most 32767. Nothing is clipped.
Q_MUR_API void Draw_Circle_Light(q_ulong *surface, int pitch, int cx, int cy, int radius, unsigned char red,
                                 unsigned char green, unsigned char blue);

/// Adds a horizontal and a vertical spike, one pixel wide, from the full colour at (`x`, `y`) to nothing `size` pixels
/// away, inside `clip`. The centre is in both and takes the colour twice. All channels saturate; top byte 0. Nothing at
/// all is drawn if the centre lies outside `clip` or in its last column or row.
/// \param red 0 to 255, as `green` and `blue`
Q_MUR_API void Draw_One_Star_Add(q_ulong *surface, int pitch, tagRECT *clip, int x, int y, int size, int red, int green,
                                 int blue);

/// Adds `colour` to (`x`, `y`) and the two pixels on each of its four sides. All channels saturate; top byte 0. Nothing
/// is clipped.
Q_MUR_API void Draw_Cross(q_ulong *surface, int pitch, int x, int y, q_ulong colour);

/// Adds `colour` to the pixel (`x`, `y`) and writes the sum over the cross of Draw_Cross(), whatever it held, but for
/// the right tip. All channels saturate; top byte 0. Nothing is clipped.
Q_MUR_API void Draw_Cross_Fast(q_ulong *surface, int pitch, int x, int y, q_ulong colour);

/// @}
/// \name Convex quads
/// @{

/// Fills a convex shape of four corners, given in any order, with the word at `color`, all 32 bits as given. Writes
/// inside `clip` only. The corners' rows and the columns of both edges are included; where both middle corners lie to
/// the left of the line from the topmost to the lowest, the rows below the first of them end one pixel short of
/// that line. Corners that are not convex give what the walk between their edges gives. Edges have 18 fraction bits:
/// one of 8192 columns or more is beyond the format.
Q_MUR_API void Rect_Safe(q_ulong *surface, tagRECT *clip, int pitch, tagPOINT *p0, tagPOINT *p1, tagPOINT *p2,
                         tagPOINT *p3, q_ulong *color);

/// On which side of the line from a to b the point p lies: 1 if (py - ay)(bx - ax) is greater than (by - ay)(px - ax),
/// else 0. For a line that goes down the screen 1 means to the left; a point on the line gives 0. Products wrap beyond
/// 32 bits.
Q_MUR_API int DecisionLine2(int *px, int *py, int *ax, int *ay, int *bx, int *by);

/// Another name of DecisionLine2().
Q_MUR_API int DecisionLines(int *px, int *py, int *ax, int *ay, int *bx, int *by);

/// Another name of DecisionLine2().
Q_MUR_API int VKD_DecisionLines(int *px, int *py, int *ax, int *ay, int *bx, int *by);

/// The same test with its factors turned round: 1 if (bx - ax)(ay - py) is less than (ay - by)(px - ax), else 0. It
/// differs from DecisionLine2() only where a product wraps.
Q_MUR_API int DecisionLine(int *px, int *py, int *ax, int *ay, int *bx, int *by);

/// @}

/// \name Bubbles
/// Glass spheres over a picture, and solid balls, from a resource that is rendered once and drawn in any size and hue.
///
/// **Resource.** A square image of `resourceSize` by `resourceSize` words that hold three maps in place of a colour: in
/// bits 0-7 the light on the surface, 128 standing for the colour as given; in bits 8-15 the tint, how much of the lit
/// colour replaces the background in 1/256; in bits 16-23 the highlight, which is added to all channels. Only words
/// inside the disc around the image's centre are read; outside of it they mean nothing.
///
/// **Drawing.** The bubble has its centre at (`cx`, `cy`) and covers `size` columns and rows from half of that,
/// truncated, before the centre; the resource is stretched over them without filtering. Nothing is written outside the
/// surface's `width` and `height`; the resource's extent is trusted. Channels saturate; top byte 0. A `size` of 0 or
/// less draws nothing.
/// @{

/// Renders a resource with its corner at (`x`, `y`) of a surface: a sphere with light and highlight at the upper left.
/// \param size            side of the resource, up to 5793; 1 or less writes nothing
/// \param secondHighlight if not 0, the lower right quadrant shows the weaker highlight of the far side, and that alone
Q_MUR_API void MakeBubbleResource(q_ulong *surface, int pitch, int x, int y, int size, int secondHighlight);

/// Renders a resource whose lights are spots of a fixed extent, whatever the size: the light at the upper right reaches
/// 90 pixels, the highlight there 22. Arguments as for MakeBubbleResource().
/// \param secondHighlight if not 0, there is a weaker highlight at the lower left, which goes before the first
Q_MUR_API void MakeBubbleResource2(q_ulong *surface, int pitch, int x, int y, int size, int secondHighlight);

/// Draws a bubble that refracts the picture behind it: magnified around the centre, compressed near the rim. Where the
/// ray leaves the surface the background is black. The rim is softened over one pixel; this reads #iSqrt, which
/// PrepareSinTable() must have filled.
/// \param scratch      room for a word for each pixel of the disc that lies on the surface
/// \param size         up to 181, where the table ends
/// \param resourceSize up to 8191; rows of the resource are `resourceSize` words long
Q_MUR_API void DrawRealBubble(q_ulong *surface, q_ulong *scratch, int pitch, int cx, int cy, int size,
                              q_ulong *resource, int resourceSize, q_ulong color, int width, int height);

/// As DrawRealBubble() with a hard rim, which needs no table and knows no largest `size`; from 257 on it magnifies
/// evenly. The resource's rows are `pitch` words long: it lies in an image as wide as the surface.
/// \param resourceSize up to 32767
Q_MUR_API void DrawRealBubbleOld(q_ulong *surface, q_ulong *scratch, int pitch, int cx, int cy, int size,
                                 q_ulong *resource, int resourceSize, q_ulong color, int width, int height);

/// Draws a solid ball: the lit colour with the highlight, the tint being ignored. Pixels exactly on the rim belong to
/// it, unlike to a bubble.
/// \param resourceSize up to 2047; rows of the resource are `resourceSize` words long
Q_MUR_API void DrawReal3DBall(q_ulong *surface, int pitch, int cx, int cy, int size, q_ulong *resource,
                              int resourceSize, q_ulong color, int width, int height);

/// @}

#endif
