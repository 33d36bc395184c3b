/// \file
/// Matrix pipeline: matrix stacks, camera, projection, Z-buffered shaded triangles, surfaces and lines.
///
/// The calls of a host, in order:
///
/// 1. Once: GetPrivate_QMGL_Data(), VKD_glViewPort(), and then VKD_gluPerspective(), which reads the viewport.
/// 2. For every frame: VKD_ResetZBuffer() for what is drawn; VKD_glMatrixMode() with 0, VKD_glLoadIdentity() and
///    VKD_gluLookAt() for the camera, which looks along +z without it.
/// 3. For every mesh: VKD_glMatrixMode() with 1, VKD_glLoadIdentity(), and the turns and moves that place it.
/// 4. VKD_Mapping3Dto2D() on a copy of its points, which it overwrites, and a renderer for what comes out.
///
/// The names are those of OpenGL's fixed-function matrix calls, but the meaning is this library's own:
///
/// - Matrices are row-major and act on column vectors; the translation stands in elements 3, 7 and 11.
/// - Every operation comes behind those before it: a point goes through the calls in the order in which they were made.
/// - A positive angle about +Z takes +X toward -Y.
/// - There are two stacks, model (mode 1) and view (any other mode), and no projection matrix: the division is done by
///   VKD_Mapping3Dto2D().
/// - Screen y grows downward with world y. z grows away from the viewer.
/// - On the plane z = 0 of the camera a unit is a pixel. What VKD_gluLookAt() calls the eye lies on this plane; the
///   viewer's own eye, toward which the rays run together, lies a focal length behind it, at z = -`focalLength`.
/// - Depth is the camera's z in world units, an int in the Z plane, smaller is nearer.
/// - VKD_Mapping3Dto2D() takes rows before columns, the renderers take columns before rows.
///
/// Nothing is checked: neither the depth of the stacks, nor a surface, which `clip` alone bounds, nor the sizes of
/// arrays. Inside `clip` a surface and the Z plane may be read anywhere, and written with what they hold: threads that
/// share a surface need clips that lie apart. A private block serves one thread at a time. Pitches count pixels; the
/// Z plane has the same.
#ifndef Q_MUR_PIPELINE_H
#define Q_MUR_PIPELINE_H

#include "types.h"

/// \name Private block
/// @{

/// Allocates the private block of the pipeline in a slot of the host's record, with stacks, vertex arrays and Z plane
/// of the sizes in `limits3D` and `frameGeometry`. Both stacks hold the identity, the mode is 1 and the mapper slot
/// empty; viewport, perspective and Z plane have to be set before they are used. Null if `transfer` is null or memory
/// is exhausted: all blocks of the record are freed then.
Q_MUR_API _PRIVATE_QMGL_DATA *GetPrivate_QMGL_Data(_TRANSFERDATA *transfer, int slot);

/// Empties a rectangle of the Z plane, in pairs of entries: the first pair of the area is (top * pitch + left) / 2, a
/// row has (right - left) / 2 pairs, and rows lie pitch / 2 pairs apart, all rounded down. So an odd left starts one
/// entry early, an odd width loses its last entry, and the pitch should be even. \return 1, or 0 if there is no Z plane
Q_MUR_API int VKD_ResetZBuffer(_PRIVATE_QMGL_DATA *data, tagRECT *rect, int pitch);

/// @}
/// \name Matrices
/// @{

/// Sets the identity.
Q_MUR_API void SetIdentityMatrix(_I3DMATRIX &m);

/// Sets a rotation by `radians` about `axis`, of any length. An axis of length 0 gives a uniform scale by the cosine.
Q_MUR_API void SetRotationMatrix(_I3DMATRIX &m, _I3DVECTOR &axis, float radians);

/// Sets `out` to a x b, each element summed at full width and rounded once. `out` may be `a` or `b`.
Q_MUR_API void MatrixMultiply(_I3DMATRIX &out, _I3DMATRIX &a, _I3DMATRIX &b);

/// @}
/// \name Matrix stacks
/// The calls act on the top of the model stack in mode 1, otherwise on that of the view stack. Multiplying
/// operations leave their matrix in `workMatrix`; loading, pushing and popping do not use it.
/// @{

/// Chooses the stack: 1 the model stack, every other value the view stack.
Q_MUR_API void VKD_glMatrixMode(_PRIVATE_QMGL_DATA *data, int mode);

/// Sets the current matrix to the identity.
Q_MUR_API void VKD_glLoadIdentity(_PRIVATE_QMGL_DATA *data);

/// Sets the current matrix to 16 floats, row after row.
Q_MUR_API void glLoadMatrixf(_PRIVATE_QMGL_DATA *data, const float *m);

/// Lets the matrix of 16 floats, row after row, act behind the current one: current := m x current.
Q_MUR_API void glMultMatrixf(_PRIVATE_QMGL_DATA *data, const float *m);

/// Copies the current matrix to the next entry of its stack, which becomes the top. A stack holds `matrixStackDepth`
/// matrices; what is pushed beyond overwrites what lies behind the stack.
Q_MUR_API void VKD_glPushMatrix(_PRIVATE_QMGL_DATA *data);

/// Goes back to the entry below, which must be there.
Q_MUR_API void VKD_glPopMatrix(_PRIVATE_QMGL_DATA *data);

/// Turns about the axis (x, y, z), of any length, by an angle in degrees. An angle of 0 does nothing at all.
Q_MUR_API void VKD_glRotatef(_PRIVATE_QMGL_DATA *data, float angleDegrees, float x, float y, float z);

/// Moves by (x, y, z).
Q_MUR_API void VKD_glTranslatef(_PRIVATE_QMGL_DATA *data, float x, float y, float z);

/// Scales by x, y and z.
Q_MUR_API void VKD_glScalef(_PRIVATE_QMGL_DATA *data, float x, float y, float z);

/// @}
/// \name Camera and projection
/// @{

/// Places the picture: its middle is where the axis of the camera stands. Clips nothing.
/// Takes left, top, right and bottom in pixels.
Q_MUR_API void VKD_glViewPort(_PRIVATE_QMGL_DATA *data, int left, int top, int right, int bottom);

/// Sets the focal length so that the viewport, as it stands now, is `fovyDegrees` high as a whole, and the depth limit
/// to `-zNear`. Opening angles of no tangent, such as 0, give a focal length of 32768.
///
/// Depth is counted from the plane z = 0 of the camera, not from the viewer's eye, and a pixel is drawn where it is
/// above `-zNear`. So a `zNear` of 0 cuts off everything before that plane, the focal length nothing before the
/// viewer's eye (a little less is best: what comes nearer than 1 is no longer in perspective), and a negative one cuts
/// deeper.
/// \param aspect not read: one scale serves x and y
/// \param zFar stored, but nothing clips at the far side
Q_MUR_API void VKD_gluPerspective(_PRIVATE_QMGL_DATA *data, float fovyDegrees, float aspect, float zNear, float zFar);

/// Moves the camera to the eye and turns it to the centre, in the view stack whatever the mode. The z of all three
/// vectors is negated, that of points is not: eye (0, 0, 100) stands where a point (0, 0, -100) does. With eye and
/// centre in one place nothing happens.
///
/// The eye is where a unit is a pixel, not where the viewer stands, which is a focal length behind: to look from a
/// point, pass one that lies a focal length ahead of it, and a centre beyond that. The up vector names the direction
/// that runs *down* the screen, as y does: with (0, 1, 0) the picture stands as without a camera, with (0, -1, 0) it is
/// turned by half a circle. Give it a length of about 1. Along the line of sight it gives way to world Y, unless it is
/// so long that rounding leaves a rest of it, which then counts. Where the camera looks along world Y as well, all x
/// and y become NaN, or huge if it looks the least bit beside.
Q_MUR_API void VKD_gluLookAt(_PRIVATE_QMGL_DATA *data, float eyeX, float eyeY, float eyeZ, float centerX, float centerY,
                             float centerZ, float upX, float upY, float upZ);

/// Brings a grid of points from model space to the screen, in place: x and y become pixels, z the depth from the
/// camera, undivided. The fourth word is left alone. No point is left out: one that is nearer to the viewer's eye than
/// 1, or behind it, is scaled by the whole focal length. Leaves view x model in `workMatrix`.
Q_MUR_API void VKD_Mapping3Dto2D(_PRIVATE_QMGL_DATA *data, _POINT3DFLOAT *points, int rows, int columns);

/// @}
/// \name Bands
/// The area between a left edge A and a right edge B, within `clip`: the rows that both edges cover, from the first up
/// to, not including, the last, and in each the pixels from floor(A) up to, not including, floor(B). Nothing is swapped
/// where the edges cross. Each edge has a start (0) and an end (1) with x, y, a red, green and blue of 0 to 255 each,
/// and a depth z; all are interpolated, with 12 fraction bits, along the edges and across the row: coordinates and
/// differences of 524288 or more are beyond the format. A channel outside 0 to 255 runs into its neighbours.
///
/// "Tested" means that a pixel is drawn only if its depth is greater than `nearLimit` and less than its entry in the Z
/// plane, which takes the depth then. Of two equal depths the first drawn stays.
/// @{

/// Draws the colours, tested. The top byte becomes 0.
Q_MUR_API void VKD_3D_Render(_PRIVATE_QMGL_DATA *data, q_ulong *dst, tagRECT *clip, q_ulong pitch, int xA0, int xA1,
                             int xB0, int xB1, int yA0, int yA1, int yB0, int yB1, int rA0, int rA1, int rB0, int rB1,
                             int gA0, int gA1, int gB0, int gB1, int bA0, int bA1, int bB0, int bB1, int zA0, int zA1,
                             int zB0, int zB1);

/// Blends the colours over the destination by `opacity` in 1/256, tested. The destination's top byte adds into red and
/// into the top byte of the result. An opacity of exactly 128 draws without any test, leaves the Z plane alone, halves
/// both colours before it adds them and clears the top byte.
Q_MUR_API void VKD_3D_Render(_PRIVATE_QMGL_DATA *data, q_ulong *dst, tagRECT *clip, q_ulong pitch, int xA0, int xA1,
                             int xB0, int xB1, int yA0, int yA1, int yB0, int yB1, int rA0, int rA1, int rB0, int rB1,
                             int gA0, int gA1, int gB0, int gB1, int bA0, int bA1, int bB0, int bB1, int zA0, int zA1,
                             int zB0, int zB1, int opacity);

/// Mixes the colours half and half with the destination where their depth is greater than `nearLimit`. The Z plane is
/// neither read nor written. The lowest bit of each channel is dropped before the sum; the top byte becomes 0.
Q_MUR_API void VKD_3D_Render_Alpha(_PRIVATE_QMGL_DATA *data, q_ulong *dst, tagRECT *clip, q_ulong pitch, int xA0,
                                   int xA1, int xB0, int xB1, int yA0, int yA1, int yB0, int yB1, int rA0, int rA1,
                                   int rB0, int rB1, int gA0, int gA1, int gB0, int gB1, int bA0, int bA1, int bB0,
                                   int bB1, int zA0, int zA1, int zB0, int zB1);

/// Adds the colours to the destination, without depth. Channels saturate, also those that fall below 0, and a
/// destination with a top byte saturates red; the top byte becomes 0. Interpolates with 18 fraction bits: coordinates
/// and differences of 8192 or more are beyond the format.
Q_MUR_API void VKD_3D_Render_Add(q_ulong *dst, tagRECT *clip, q_ulong pitch, int xA0, int xA1, int xB0, int xB1,
                                 int yA0, int yA1, int yB0, int yB1, int rA0, int rA1, int rB0, int rB1, int gA0,
                                 int gA1, int gB0, int gB1, int bA0, int bA1, int bB0, int bB1);

/// @}
/// \name Triangles
/// Three projected points, in any order and sense, each with the colour at its pointer. x, y and z are truncated toward
/// zero to whole pixels and depths; what lies between is shaded as a band. Pixels on a shared edge belong to one of two
/// triangles: neither gap nor overlap. Red is taken with the top byte of a colour.
/// @{

/// Draws a shaded triangle, depth tested, as VKD_3D_Render() does.
Q_MUR_API void VKD_Render_Tri(_PRIVATE_QMGL_DATA *data, q_ulong *dst, tagRECT *clip, int pitch, _POINT3DFLOAT *p1,
                              _POINT3DFLOAT *p2, _POINT3DFLOAT *p3, q_ulong *c1, q_ulong *c2, q_ulong *c3);

/// Blends a shaded triangle over the destination by `opacity` in 1/256. An opacity of exactly 128 knows no depth.
Q_MUR_API void VKD_Render_Tri(_PRIVATE_QMGL_DATA *data, q_ulong *dst, tagRECT *clip, int pitch, _POINT3DFLOAT *p1,
                              _POINT3DFLOAT *p2, _POINT3DFLOAT *p3, q_ulong *c1, q_ulong *c2, q_ulong *c3, int opacity);

/// Mixes a shaded triangle half and half with the destination, beyond the near limit, without the Z plane.
Q_MUR_API void VKD_Render_Tri_Alpha(_PRIVATE_QMGL_DATA *data, q_ulong *dst, tagRECT *clip, int pitch, _POINT3DFLOAT *p1,
                                    _POINT3DFLOAT *p2, _POINT3DFLOAT *p3, q_ulong *c1, q_ulong *c2, q_ulong *c3);

/// Adds a shaded triangle to the destination, saturating, without depth.
Q_MUR_API void VKD_Render_Tri_Add(q_ulong *dst, tagRECT *clip, q_ulong pitch, _POINT3DFLOAT *p1, _POINT3DFLOAT *p2,
                                  _POINT3DFLOAT *p3, q_ulong *c1, q_ulong *c2, q_ulong *c3);

/// @}
/// \name Surfaces
/// A grid of `rows` times `columns` projected points, row after row, with one colour for each, drawn as two triangles
/// for every cell. A wrap flag of exactly 1 closes the grid: `wrapRows` joins the last row to the first, `wrapColumns`
/// the last column to the first.
///
/// Where a surface is lit, its colours are replaced by lit ones before anything is drawn: fill them anew for each call.
/// A vertex at a corner of the grid takes the normal of its cell, one at a border the mean of its two cells, one inside
/// the mean of the two cells to its right, all computed from the points as they stand on the screen. A colour is
/// multiplied by 256 times light . normal (0 where that is negative) plus the length of `ambientVector`, over 256, and
/// a highlight is added; red is taken with the top byte, channels stop at 255, and the top byte becomes 0. A negative
/// `specular` can take a channel below 0, which then runs into those above it. Both sides of a surface are drawn,
/// lit alike. The grid must be at least 2 by 2, otherwise nothing is done.
///
/// Normals follow the grid: a row's direction x a column's. Where rows run to the right and columns downward, they
/// point along +z, away from the viewer, and so must the light.
///
/// \param light of length 1, in the axes of the screen: with normals as above, the direction in which the light shines,
///        *away* from the lamp. (0.577, 0.577, 0.577) lights the upper left of what bulges toward the viewer, (-0.577,
///        -0.577, 0.577) the lower right, and (0, 0, 1) comes from the viewer. On a grid of the other sense it is the
///        direction toward the lamp, with z below 0, and highlights go astray. Not (0, 0, -1).
/// \param unusedVector not read, may be null
/// \param ambientVector its length is the ambient level, 256 is unity
/// \param specular strength of the highlight, 1.0 stands for 256 channel levels
/// \param shininess how often the highlight term is squared; 0 leaves it linear
/// \param unusedValue not read
/// @{

/// Lights and draws a surface with VKD_Render_Tri().
Q_MUR_API void VKD_Render_3D_Surface(_PRIVATE_QMGL_DATA *data, q_ulong *dst, tagRECT *clip, q_ulong pitch,
                                     _POINT3DFLOAT *points, q_ulong *colours, int wrapRows, int wrapColumns,
                                     int columns, int rows, _POINT3DFLOAT *light, _POINT3D *unusedVector,
                                     _POINT3D *ambientVector, float specular, int shininess, int unusedValue);

/// The same, blended over the destination by `opacity` in 1/256. An opacity of exactly 128 knows no depth.
Q_MUR_API void VKD_Render_3D_Surface(_PRIVATE_QMGL_DATA *data, q_ulong *dst, tagRECT *clip, q_ulong pitch,
                                     _POINT3DFLOAT *points, q_ulong *colours, int wrapRows, int wrapColumns,
                                     int columns, int rows, _POINT3DFLOAT *light, _POINT3D *unusedVector,
                                     _POINT3D *ambientVector, float specular, int shininess, int unusedValue,
                                     int opacity);

/// Draws a surface of exactly 20 rows of 64 points with VKD_Render_Tri_Alpha(), unlit: the colours are left alone.
/// \param unusedRows not read
/// \param unusedColumns not read
Q_MUR_API void VKD_Render_3D_Surface_Alpha(_PRIVATE_QMGL_DATA *data, q_ulong *dst, tagRECT *clip, q_ulong pitch,
                                           _POINT3DFLOAT *points, q_ulong *colours, int unusedRows, int unusedColumns,
                                           int wrapRows, int wrapColumns);

/// @}
/// \name Lines and dots
/// @{

/// Draws a small cross: the pixel at (x, y) plus `colour`, saturating, top byte 0, in eight pixels from y - 2 to y + 2
/// and from x - 2 to x + 1. A cross nearer than 3 pixels to a side of `clip` is left out as a whole.
Q_MUR_API void VKD_3D_Draw_Cross(q_ulong *dst, tagRECT *clip, q_ulong pitch, int x, int y, q_ulong colour);

/// Draws a cross at every point of a grid, x and y truncated, in the order of the grid, without depth.
Q_MUR_API void VKD_Render_3D_Dot_Add(q_ulong *dst, tagRECT *clip, q_ulong pitch, _POINT3DFLOAT *points,
                                     q_ulong *colours, int columns, int rows);

/// Draws a line with a core of two pixels and an anti-aliased fringe, each pixel depth tested against the Z plane,
/// which takes its depth; there is no near limit. The core takes the colour's word as given, the fringe clears the top
/// byte. The end with the greater coordinate, along the longer axis, is not drawn, and what comes nearer to a side of
/// `clip` than the fringe reaches is left out. Positions have 8 fraction bits: coordinates and differences of 8388608
/// or more are beyond the format.
/// \param colourB not read: a line has one colour
Q_MUR_API void VKD_3D_Line(_PRIVATE_QMGL_DATA *data, q_ulong *dst, tagRECT *clip, q_ulong pitch, _POINT3D *a,
                           _POINT3D *b, q_ulong *colourA, q_ulong *colourB);

/// Lights a grid as VKD_Render_3D_Surface() does, with the same arguments, and draws its lines with VKD_3D_Line(), each
/// in the colour of its first point.
Q_MUR_API void VKD_Render_3D_Line(_PRIVATE_QMGL_DATA *data, q_ulong *dst, tagRECT *clip, q_ulong pitch,
                                  _POINT3DFLOAT *points, q_ulong *colours, int wrapRows, int wrapColumns, int columns,
                                  int rows, _POINT3DFLOAT *light, _POINT3D *unusedVector, _POINT3D *ambientVector,
                                  float specular, int shininess, int unusedValue);

/// @}

#endif
