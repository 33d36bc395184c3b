/// \file
/// 3D maths: single points and vectors in a float and an integer family, and grid makers.
///
/// The float family (`f`) takes angles in radians and works in the floating unit's full width; each coordinate is
/// rounded once, when it is stored. The integer family (`i`) takes angles of 65536 units to the full circle and reads
/// #iSin and #iCos, which PrepareSinTable() must have filled; its products wrap beyond 32 bits and its shifts round
/// toward minus infinity, so a point 65536 or more away from the axis of a rotation is beyond its format.
///
/// A point is held as three pointers, whose coordinates are changed in place, or as a record of four words. The fourth
/// word is never read; where a record is returned by value it means nothing. No pointer may be null.
#ifndef Q_MUR_MATH3D_H
#define Q_MUR_MATH3D_H

#include "types.h"

/// \name Rotation about an axis
/// The two pointers are the coordinates that change: (y, z) for X, (x, z) for Y, (x, y) for Z. With c and s the cosine
/// and sine of the angle, X and Z make of (a, b) the pair (a c + b s, b c - a s), Y the pair (a c - b s, b c + a s).
/// With a single centre the axis goes through a = `centre`, b = 0; Z alone has a centre for each coordinate.
/// @{

/// Turns (y, z) about X by `angle` radians.
Q_MUR_API void fRotate3DByX(float *a, float *b, float angle);

/// Turns (y, z) about the axis along X through y = `centre` by `angle` radians.
Q_MUR_API void fRotate3DByX(float *a, float *b, float angle, int centre);

/// Turns (x, z) about Y by `angle` radians.
Q_MUR_API void fRotate3DByY(float *a, float *b, float angle);

/// Turns (x, z) about the axis along Y through x = `centre` by `angle` radians.
Q_MUR_API void fRotate3DByY(float *a, float *b, float angle, int centre);

/// Turns (x, y) about Z by `angle` radians.
Q_MUR_API void fRotate3DByZ(float *a, float *b, float angle);

/// Turns (x, y) about the axis along Z through (`centreA`, `centreB`) by `angle` radians.
Q_MUR_API void fRotate3DByZ(float *a, float *b, float angle, int centreA, int centreB);

/// Turns (y, z) about X by `angle` in 1/65536 of the circle, in steps of 8 units.
Q_MUR_API void iRotate3DByX(int *a, int *b, unsigned short angle);

/// Turns (y, z) about the axis along X through y = `centre` by `angle` in 1/65536 of the circle.
Q_MUR_API void iRotate3DByX(int *a, int *b, unsigned short angle, int centre);

/// Turns (x, z) about Y by `angle` in 1/65536 of the circle, in steps of 8 units.
Q_MUR_API void iRotate3DByY(int *a, int *b, unsigned short angle);

/// Turns (x, z) about the axis along Y through x = `centre` by `angle` in 1/65536 of the circle.
Q_MUR_API void iRotate3DByY(int *a, int *b, unsigned short angle, int centre);

/// Turns (x, y) about Z by `angle` in 1/65536 of the circle, in steps of 8 units.
Q_MUR_API void iRotate3DByZ(int *a, int *b, unsigned short angle);

/// Turns (x, y) about the axis along Z through (`centreA`, `centreB`) by `angle` in 1/65536 of the circle.
Q_MUR_API void iRotate3DByZ(int *a, int *b, unsigned short angle, int centreA, int centreB);

/// Turns a point about X, then Y, then Z, by angles in radians. The coordinates are rounded after each axis.
Q_MUR_API void fRotate3D(float *x, float *y, float *z, float angleX, float angleY, float angleZ);

/// Turns a point about X, then Y, then Z, by angles in 1/65536 of the circle.
Q_MUR_API void iRotate3D(int *x, int *y, int *z, unsigned short angleX, unsigned short angleY, unsigned short angleZ);

/// Turns `p` about the line through `a` and `q` by `angle` radians.
Q_MUR_API void fRotate3D(_POINT3DFLOAT *p, _POINT3DFLOAT *a, _POINT3DFLOAT *q, float angle);

/// Turns `p` about the line through `a` and `q` by `angle` in 1/65536 of the circle.
Q_MUR_API void iRotate3D(_POINT3D *p, _POINT3D *a, _POINT3D *q, unsigned short angle);

/// @}
/// \name Moving and projecting
/// The eye of a projection lies `distance` before z = 0. What is nearer to it than 16 units, or behind it, is scaled as
/// if it lay 16 units away: nothing is flipped or left out.
/// @{

/// Adds the three ints, as floats, to a point.
Q_MUR_API void fMove3D(float *x, float *y, float *z, int dx, int dy, int dz);

/// Adds the three ints to a point.
Q_MUR_API void iMove3D(int *x, int *y, int *z, int dx, int dy, int dz);

/// Scales x and y by `distance` / (`distance` + z). z is left alone.
Q_MUR_API void fConvertReal2Viewport(float *x, float *y, float *z, int distance);

/// The same about the centre (`centreX`, `centreY`).
Q_MUR_API void fConvertReal2Viewport(float *x, float *y, float *z, int centreX, int centreY, int distance);

/// Scales x and y by `distance` / (`distance` + z): a product of 32 bits, then a division toward zero. z is left alone.
Q_MUR_API void iConvertReal2Viewport(int *x, int *y, int *z, int distance);

/// The same about the centre (`centreX`, `centreY`).
Q_MUR_API void iConvertReal2Viewport(int *x, int *y, int *z, int centreX, int centreY, int distance);

/// Brings a point to the screen: turns it about X, Y and Z by angles in radians, adds `offsetZ` to z, projects it with
/// the eye `distance` before the origin, and adds `offsetX` and `offsetY` to what stands on the screen then.
Q_MUR_API void fMapping3D(float *x, float *y, float *z, float angleX, float angleY, float angleZ, int offsetX,
                          int offsetY, int offsetZ, int distance);

/// The same in ints, with angles in 1/65536 of the circle.
Q_MUR_API void iMapping3D(int *x, int *y, int *z, unsigned short angleX, unsigned short angleY, unsigned short angleZ,
                          int offsetX, int offsetY, int offsetZ, int distance);

/// @}
/// \name Products
/// @{

/// The dot product. On 32-bit builds the result keeps its full width until the caller stores it.
Q_MUR_API float DotProduct(_I3DVECTOR &a, _I3DVECTOR &b);

/// Another name of DotProduct().
Q_MUR_API float fDot_Product(_POINT3DFLOAT *a, _POINT3DFLOAT *b);

/// The dot product in 32 bits, wrapping.
Q_MUR_API int iDot_Product(_POINT3D *a, _POINT3D *b);

/// The cross product a x b.
Q_MUR_API _I3DVECTOR CrossProduct(_I3DVECTOR &a, _I3DVECTOR &b);

/// Sets x, y and z of `out` to the cross product a x b, one after the other: `out` must be neither `a` nor `b`.
Q_MUR_API void fCross_Product(_POINT3DFLOAT *out, _POINT3DFLOAT *a, _POINT3DFLOAT *b);

/// The same in 32 bits, wrapping.
Q_MUR_API void iCross_Product(_POINT3D *out, _POINT3D *a, _POINT3D *b);

/// The length of a vector. On 32-bit builds the result keeps its full width until the caller stores it.
Q_MUR_API float Magnitude(_I3DVECTOR &v);

/// Another name of Magnitude().
Q_MUR_API float Magnitude(_POINT3DFLOAT *v);

/// The vector brought to length 1. The zero vector stays zero.
Q_MUR_API _I3DVECTOR Normalize(_I3DVECTOR &v);

/// Another name of Normalize().
Q_MUR_API _POINT3DFLOAT Normalize(_POINT3DFLOAT *v);

/// @}
/// \name Normals and facing
/// BubSun is this library's word for a surface normal.
/// @{

/// Sets `out` to the unit normal (p1 - p2) x (p1 - p3) of a face; points on one line give zero.
Q_MUR_API void fBubSun(_POINT3DFLOAT *out, _POINT3DFLOAT *p1, _POINT3DFLOAT *p2, _POINT3DFLOAT *p3);

/// Sets `out` to the normal (p3 - p1) x (p2 - p1) of a face, of length 256, truncated toward zero; points on one line
/// give zero. It points the other way than that of fBubSun(). The squares of the cross product are added in 32 bits:
/// points that span 46341 square units or more are beyond the format.
Q_MUR_API void iBubSun(_POINT3D *out, _POINT3D *p1, _POINT3D *p2, _POINT3D *p3);

/// Whether three projected points run clockwise on a screen whose y grows downward. z is not read. Points on one line
/// give false.
Q_MUR_API bool IsFront(_POINT3DFLOAT *p1, _POINT3DFLOAT *p2, _POINT3DFLOAT *p3);

/// @}
/// \name Means
/// @{

/// The mean of two points, (a + b) / 2.
Q_MUR_API _POINT3DFLOAT fMean2Vector(_POINT3DFLOAT *a, _POINT3DFLOAT *b);

/// The mean of four points, (a + b + c + d) / 4, added in that order.
Q_MUR_API _POINT3DFLOAT fMean4Vector(_POINT3DFLOAT *a, _POINT3DFLOAT *b, _POINT3DFLOAT *c, _POINT3DFLOAT *d);

/// The mean of two points, (a + b) / 2, rounded toward minus infinity.
Q_MUR_API _POINT3D iMean2Vector(_POINT3D *a, _POINT3D *b);

/// The mean of four points, (a + b + c + d) / 4, rounded toward minus infinity.
Q_MUR_API _POINT3D iMean4Vector(_POINT3D *a, _POINT3D *b, _POINT3D *c, _POINT3D *d);

/// @}
/// \name Grids
/// A grid is an array of `rows` times `columns` points, row after row. What Flat3D() and Post3D() write are points on
/// the screen, brought there by fMapping3D() with the same angles (in radians), offsets and distance; z is the depth
/// before the projection. The fourth word of a point is left alone. Flat3D() and Post3D() need at least 2 rows and 2
/// columns: with 1 the steps are no numbers. With 0 or fewer nothing is written.
/// @{

/// A flat sheet around the origin in the plane z = 0, `width` by `height` times `scale` large. An odd width or height
/// puts it half a unit, times `scale`, off the centre.
Q_MUR_API void Flat3D(_POINT3DFLOAT *points, int columns, int rows, float scale, float angleX, float angleY,
                      float angleZ, int offsetX, int offsetY, int offsetZ, int distance, int width, int height);

/// A cylinder about the Y axis with a radius of 180 times `scale`, `height` times `scale` high. The columns run once
/// around it, the last one back at the first.
/// \param unusedWidth not read
Q_MUR_API void Post3D(_POINT3DFLOAT *points, int columns, int rows, float scale, float angleX, float angleY,
                      float angleZ, int offsetX, int offsetY, int offsetZ, int distance, int unusedWidth, int height);

/// The blend (b - a) t + a of two grids. `t` is not limited to 0 to 1. `out` may be `a` or `b`.
Q_MUR_API void Interpolate3DPoint(_POINT3DFLOAT *out, _POINT3DFLOAT *a, _POINT3DFLOAT *b, int columns, int rows,
                                  float t);

/// @}

#endif
