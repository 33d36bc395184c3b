/// \file
/// Plain lines, Bezier curves and region fills on 32-bit and 8-bit planes.
///
/// The functions of an `i` and a `b` prefix do the same on planes of 32-bit and of 8-bit elements; what they write
/// differs only in the element. A pitch counts elements of its plane.
#ifndef Q_MUR_REGION_H
#define Q_MUR_REGION_H

#include "types.h"

/// \name Lines and curves
/// Hard-edged outlines, written inside `clip` only. The value is stored as given, its top byte included.
/// @{

/// Draws a line from (x1, y1) to (x2, y2), both ends included. What lies outside `clip` is left out; the rest are the
/// pixels of the whole line. Ends more than 2^30 apart are beyond the format.
Q_MUR_API void iLine(q_ulong *surface, int x1, int y1, int x2, int y2, q_ulong color, tagRECT *clip, int pitch);

/// As iLine(), on an 8-bit plane.
Q_MUR_API void bLine(unsigned char *plane, int x1, int y1, int x2, int y2, unsigned char value, tagRECT *clip,
                     int pitch);

/// Draws the cubic curve from (x0, y0) to (x3, y3) with the control points (x1, y1) and (x2, y2) as 15 chords. Where
/// the curve leaves `clip` it is drawn along the clip's edge; only its first point is not moved there.
///
/// The chords end at the exact points of the parameters i * t, truncated toward zero, t being the float nearest to
/// 1/15. It is a little too large, so the last chord may end a pixel short of (x3, y3): that is where the truncation
/// takes a point that lies the least bit before it. Coordinates of more than 24 bits are rounded as floats are.
Q_MUR_API void iBesierLine(q_ulong *surface, int x0, int y0, int x1, int y1, int x2, int y2, int x3, int y3,
                           q_ulong color, tagRECT *clip, int pitch);

/// As iBesierLine(), on an 8-bit plane.
Q_MUR_API void bBesierLine(unsigned char *plane, int x0, int y0, int x1, int y1, int x2, int y2, int x3, int y3,
                           unsigned char value, tagRECT *clip, int pitch);

/// Draws a smooth curve through `count` points, an iBesierLine() between each two. The handles at a point are 15/64 of
/// the way from the point before it to the point behind it. Handles are of 16 bits, as the points are, and wrap.
/// \param openCurve 0 joins the last point to the first. Otherwise the curve ends there: its first point has no handle,
///                  its last one a handle along the way from the point before; a single point draws nothing.
Q_MUR_API void iPolyBesier(q_ulong *surface, tagRECT *clip, int pitch, short *xs, short *ys, int count, q_ulong color,
                           int openCurve);

/// As iPolyBesier(), on an 8-bit plane.
Q_MUR_API void bPolyBesier(unsigned char *plane, tagRECT *clip, int pitch, short *xs, short *ys, int count,
                           unsigned char value, int openCurve);

/// @}
/// \name Region fills
/// Seed fills of four-connected regions, span by span. The private block comes from GetPrivate_QMGP_Data(); a `Set`
/// function stores in it, by pointer, what a fill then works on, and the fill changes no field of it. All of that is
/// the caller's and must stay valid until the fill has returned. A block serves one fill at a time.
///
/// A fill is called with `direction` 0 at its seed (x, y), which must lie inside the limits; the parent's span is not
/// used then, and the result is of no use to a caller. Called with `direction` 1 a fill goes on upward from a span
/// below that reaches from `parentLeft` to `parentRight`, with 2 downward from a span above; that is how it calls
/// itself. It returns the last column of the span it has painted, x if it has marked a single pixel, and x - 1 if the
/// pixel at (x, y) is boundary and lies between them.
///
/// What all fills have in common:
/// - The left limit is painted if it is open, the right one never is.
/// - In the first row within the limits and above, and in the last row and below, nothing is scanned: a pixel there is
///   marked by itself when the row next to it reaches it, or as a seed. The pixels of the top are marked in row 0,
///   where they belong only if the limits begin there.
/// - A pixel that is boundary is never entered; a seed on the first or last row is marked even if it is.
/// - What has been painted stops a fill only if it is boundary from then on. Otherwise the region must have no island
///   in it: the fill would go round the island without end, until the stack is full.
///
/// **Stack.** A fill calls itself once for each span on its way; a region that winds makes the way long. A level takes
/// 32 bytes on Linux, 48 on 32-bit and 64 on 64-bit Windows: 8 MiB of stack, the main thread's on Linux, hold 262,000
/// levels; 1 MiB, a thread's on Windows, holds 21,800 levels (16,000 with 64 bits). Nothing checks the depth; a full
/// stack ends the process. See docs/region-fills.md.
/// @{

/// Stores the surfaces of Region_Fill(): the one that receives the colour, and the one on which the boundary is found.
/// Both may be the same.
Q_MUR_API void SetRegionFill(_PRIVATE_QMGP_DATA *data, q_ulong *destSurface, int destPitch, q_ulong *testSurface,
                             int testPitch);

/// Stores the plane of bRegion_Fill() and its limits.
Q_MUR_API void bSetRegionFill(_PRIVATE_QMGP_DATA *data, unsigned char *plane, tagRECT *planeRect, int planePitch);

/// Stores the surfaces and the plane of Region_Src_Fill(): `testSurface` is what is copied to `destSurface`, the plane
/// is where the boundary is found. `planePitch` and `testPitch` must be equal.
Q_MUR_API void SetRegionSrcFill(_PRIVATE_QMGP_DATA *data, q_ulong *destSurface, int destPitch, q_ulong *testSurface,
                                int testPitch, unsigned char *plane, tagRECT *planeRect, int planePitch);

/// The first column of the span through (x, y) on the test surface: behind the next `border` pixel to the left, and
/// `limit` at the lowest. From an x below the limit, x. x + 1 if the pixel is boundary itself.
Q_MUR_API int scan_left(_PRIVATE_QMGP_DATA *data, int x, int y, q_ulong border, int limit);

/// The last column of the span through (x, y) on the test surface: before the next `border` pixel to the right, and
/// `limit` - 1 at the highest. From an x at or beyond the limit, x. x - 1 if the pixel is boundary itself.
Q_MUR_API int scan_right(_PRIVATE_QMGP_DATA *data, int x, int y, q_ulong border, int limit);

/// As scan_left() on the plane, `value` being the boundary and the left of the plane's limits the limit.
Q_MUR_API int bscan_left(_PRIVATE_QMGP_DATA *data, int x, int y, unsigned char value);

/// As scan_right() on the plane, `value` being the boundary and the right of the plane's limits the limit.
Q_MUR_API int bscan_right(_PRIVATE_QMGP_DATA *data, int x, int y, unsigned char value);

/// Paints the region around (x, y) on the destination surface with `fill`, all 32 bits as given. It ends at pixels that
/// are `border` in all 32 bits on the test surface. Islands need both surfaces to be the same and `fill` to be
/// `border`. \param rect the limits
Q_MUR_API int Region_Fill(_PRIVATE_QMGP_DATA *data, int x, int y, q_ulong fill, q_ulong border, int parentLeft,
                          int parentRight, int direction, tagRECT *rect);

/// Paints the region around (x, y) on the plane with `value`, which is its boundary too. Islands do no harm.
Q_MUR_API int bRegion_Fill(_PRIVATE_QMGP_DATA *data, int x, int y, unsigned char value, int parentLeft, int parentRight,
                           int direction);

/// Copies the region around (x, y) from the test surface to the destination, all 32 bits of each pixel. It ends where
/// the plane is `value`. The first and the last row are not copied: their pixels are marked with `value` on the plane.
/// There must be no islands.
Q_MUR_API int Region_Src_Fill(_PRIVATE_QMGP_DATA *data, int x, int y, unsigned char value, int parentLeft,
                              int parentRight, int direction);

/// @}

#endif
