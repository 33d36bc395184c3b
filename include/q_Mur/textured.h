/// \file
/// Textured 3D: lit, textured, depth-tested meshes, in two modules side by side.
///
/// The older module works on #_PRIVATE_QM3D_DATA and takes points that the host has brought to the screen; the matrix
/// pipeline's module (`VKD_`) works on #_PRIVATE_QMGL_DATA and takes points from VKD_Mapping3Dto2D(). Points stand in
/// screen space: x and y in pixels, z in the units of the Z plane, smaller nearer.
///
/// The road of a mesh: reset the Z plane, then call a renderer. It lights the vertices (FindLuminenceTerm()), walks
/// the cells of the grid and draws each with i3D_Blt_Rect() or i3D_Blt_Tri(); those choose a span mapper and hand it
/// the cell band by band. Nothing divides by depth: a cell is mapped affinely, and the perspective comes from the
/// mesh. Nothing is culled either; the Z plane decides what stays visible, and of two equal depths the first drawn.
///
/// Light is two numbers: a pixel becomes `texel * mul / 256 + add` in each channel, capped at 255, top byte 0. Only the
/// upper end is capped: with a negative `mul` or `add` a channel below 0 runs into those above it and the top byte.
/// Without light the texel is copied whole, top byte included.
///
/// Only `clip` bounds what is written; the Z plane has the destination's pitch. Texture reads are trusted: filtered
/// sampling reads one column and one row beyond the texels that are shown. One private block serves one call at a
/// time. Pitches count pixels.
#ifndef Q_MUR_TEXTURED_H
#define Q_MUR_TEXTURED_H

#include "types.h"

/// \name Private block and Z plane
/// The matrix pipeline's block and reset are GetPrivate_QMGL_Data() and VKD_ResetZBuffer().
/// @{

/// Allocates the private block of the older module in a slot (see FindNotUsedMemory()), shaped by the record's
/// `limits3D` and `frameGeometry`. The mapper slot is empty; the vertex arrays and the Z plane are not initialised.
/// \return null if `data` is null or memory is exhausted
Q_MUR_API _PRIVATE_QM3D_DATA *GetPrivate_QM3D_Data(_TRANSFERDATA *data, int slot);

/// Sets a rectangle of the Z plane to empty, 0x7FFF, in pairs of entries: an odd left starts one entry earlier, an odd
/// width loses its last entry, and an odd pitch drifts, so the host uses an even one. `rect` is not clipped.
/// \return 1, or 0 if the block has no Z plane
Q_MUR_API int ResetZBuffer(_PRIVATE_QM3D_DATA *data, tagRECT *rect, int pitch);

/// @}
/// \name Light
/// @{

/// Lights a grid of `rows` by `cols` points, each at least 2, row after row: writes the highlight of each vertex to
/// `vertexArray0` and the multiplier to `vertexArray1`, which must have that many entries.
///
/// The normal of a cell is that of its upper left triangle: the step to the next point of the row x the step to the
/// next row. Where rows run to the right and columns downward on the screen it points along +z, away from the viewer;
/// mirrored, it points toward him. A vertex on the border takes the mean of the two cells beside it, a corner that of
/// its one cell, and an interior vertex the mean of the two cells to its right alone. The means are not renormalised:
/// where a surface bends it darkens.
/// \param light a unit vector on the side of the normals, in the axes of the points. With normals that point away from
///        the viewer it does too: it is the direction in which the light shines, *away* from the lamp. (0.577, 0.577,
///        0.577) lights the upper left of what bulges toward the viewer, (-0.577, -0.577, 0.577) the lower right, and
///        (0, 0, 1) comes from the viewer. With the other normals it is the direction toward the lamp, and highlights
///        go astray. A longer one gives more light; (0, 0, -1) has no highlight direction and must not be passed.
/// \param ambient added to every multiplier; 256 is unity
/// \param specular highlight in channel levels where the surface mirrors the light to a viewer at +z, the side on which
///        the normals stand
/// \param shininess how many times the highlight is squared; 0 or less: not at all
Q_MUR_API void FindLuminenceTerm(_PRIVATE_QM3D_DATA *data, _POINT3DFLOAT *points, int rows, int cols,
                                 _POINT3DFLOAT *light, int ambient, int specular, int shininess);

/// The same for the matrix pipeline's block.
Q_MUR_API void VKD_FindLuminenceTerm(_PRIVATE_QMGL_DATA *data, _POINT3DFLOAT *points, int rows, int cols,
                                     _POINT3DFLOAT *light, int ambient, int specular, int shininess);

/// @}
/// \name Span mappers
/// A mapper fills the area between two edges row by row: the rows that both edges cover, from `xL` up to, not
/// including, `xR`, inside `clip`. For each of the two edges (L, R) and each of its ends (0 the upper, 1 the lower) it
/// takes the texture position (`u` column, `v` row), the pixel (`x`, `y`), the light (`add`, `mul`) and the depth `z`.
/// The lower row and the right column are not drawn, so that neighbours meet without gap or overdraw.
///
/// A pixel is drawn if its depth is less than its entry in the Z plane; its depth is then written there, cut to 16
/// bits. Values are held in 32 bits with the fraction bits named below and wrap beyond that.
/// @{

/// Filtered; `u` and `v` in sixteenths of a texel. 14 fraction bits: values and their differences stay below 131072.
/// Leaves out pixels whose depth is not above `nearLimit`.
Q_MUR_API void VKD_i3D_Mapping_Linear_HPE(_PRIVATE_QMGL_DATA *data, q_ulong *dst, q_ulong *tex, tagRECT *clip,
                                          q_ulong dstPitch, q_ulong texPitch, int uL0, int uL1, int uR0, int uR1,
                                          int vL0, int vL1, int vR0, int vR1, int xL0, int xL1, int xR0, int xR1,
                                          int yL0, int yL1, int yR0, int yR1, int addL0, int addL1, int addR0,
                                          int addR1, int mulL0, int mulL1, int mulR0, int mulR1, int zL0, int zL1,
                                          int zR0, int zR1);

/// Filtered; `u` and `v` in sixteenths of a texel. 16 fraction bits: values and their differences stay below 32768.
/// Leaves out pixels of which all four texels are 0 (in all 32 bits). Knows no near limit.
Q_MUR_API void VKD_i3D_Mapping_Linear_HPE_KeySrc(_PRIVATE_QMGL_DATA *data, q_ulong *dst, q_ulong *tex, tagRECT *clip,
                                                 q_ulong dstPitch, q_ulong texPitch, int uL0, int uL1, int uR0, int uR1,
                                                 int vL0, int vL1, int vR0, int vR1, int xL0, int xL1, int xR0, int xR1,
                                                 int yL0, int yL1, int yR0, int yR1, int addL0, int addL1, int addR0,
                                                 int addR1, int mulL0, int mulL1, int mulR0, int mulR1, int zL0,
                                                 int zL1, int zR0, int zR1);

/// Nearest texel; `u` and `v` in whole texels. 12 fraction bits: values and their differences stay below 524288.
/// Leaves out pixels whose depth is not above `nearLimit`. Red is taken with the texel's top byte, which brightens
/// it, up to full red.
Q_MUR_API void VKD_i3D_Mapping_Near_HPE(_PRIVATE_QMGL_DATA *data, q_ulong *dst, q_ulong *tex, tagRECT *clip,
                                        q_ulong dstPitch, q_ulong texPitch, int uL0, int uL1, int uR0, int uR1, int vL0,
                                        int vL1, int vR0, int vR1, int xL0, int xL1, int xR0, int xR1, int yL0, int yL1,
                                        int yR0, int yR1, int addL0, int addL1, int addR0, int addR1, int mulL0,
                                        int mulL1, int mulR0, int mulR1, int zL0, int zL1, int zR0, int zR1);

/// @}
/// \name Quads and triangles
/// One textured convex polygon whose corners stand in screen space, given in any order. Coordinates are truncated to
/// whole pixels and depths. A corner's texture position (`t`: `x` the column, `y` the row), `add` and `mul` go with it.
///
/// `flags` is the mode, of which the bits 0xFFFF0 are looked at:
///
/// | Mode    | Sampling         | Light                                                    | Z plane | Texels of 0 |
/// |---------|------------------|----------------------------------------------------------|---------|-------------|
/// | 0x200   | chosen by shrink | interpolated                                             | tested  | drawn       |
/// | 0x10100 | filtered         | interpolated                                             | tested  | left out    |
/// | 0x1010  | nearest          | none                                                     | unused  | drawn       |
/// | 0x2210  | chosen by shrink | of the upper end of a band's left edge, flat in the band | unused  | drawn       |
///
/// Chosen by shrink: filtered, or nearest where the polygon shows more than one texel for two pixels of its bounding
/// box. Texture positions count sixteenths of a texel, but whole texels in mode 0x1010. A mapper left in `spanMapper`
/// is the one that was used last.
/// @{

/// Draws a quad in one of the four modes; in any other mode nothing.
Q_MUR_API void i3D_Blt_Rect(_PRIVATE_QM3D_DATA *data, q_ulong *dst, _POINT3DFLOAT *p0, _POINT3DFLOAT *p1,
                            _POINT3DFLOAT *p2, _POINT3DFLOAT *p3, q_ulong *tex, _POINTINT *t0, _POINTINT *t1,
                            _POINTINT *t2, _POINTINT *t3, tagRECT *clip, q_ulong dstPitch, q_ulong texPitch, int add0,
                            int add1, int add2, int add3, int mul0, int mul1, int mul2, int mul3, q_ulong flags);

/// Draws a quad in mode 0x200 or 0x10100; in any other mode nothing.
Q_MUR_API void VKD_i3D_Blt_Rect(_PRIVATE_QMGL_DATA *data, q_ulong *dst, _POINT3DFLOAT *p0, _POINT3DFLOAT *p1,
                                _POINT3DFLOAT *p2, _POINT3DFLOAT *p3, q_ulong *tex, _POINTINT *t0, _POINTINT *t1,
                                _POINTINT *t2, _POINTINT *t3, tagRECT *clip, q_ulong dstPitch, q_ulong texPitch,
                                int add0, int add1, int add2, int add3, int mul0, int mul1, int mul2, int mul3,
                                q_ulong flags);

/// Draws a triangle in one of the four modes; in any other mode nothing.
Q_MUR_API void i3D_Blt_Tri(_PRIVATE_QM3D_DATA *data, q_ulong *dst, _POINT3DFLOAT *p0, _POINT3DFLOAT *p1,
                           _POINT3DFLOAT *p2, q_ulong *tex, _POINTINT *t0, _POINTINT *t1, _POINTINT *t2, tagRECT *clip,
                           q_ulong dstPitch, q_ulong texPitch, int add0, int add1, int add2, int mul0, int mul1,
                           int mul2, q_ulong flags);

/// Draws a triangle in mode 0x200. In any other mode it calls the mapper that `spanMapper` holds, with the texture
/// positions as given; an empty slot draws nothing.
Q_MUR_API void VKD_i3D_Blt_Tri(_PRIVATE_QMGL_DATA *data, q_ulong *dst, _POINT3DFLOAT *p0, _POINT3DFLOAT *p1,
                               _POINT3DFLOAT *p2, q_ulong *tex, _POINTINT *t0, _POINTINT *t1, _POINTINT *t2,
                               tagRECT *clip, q_ulong dstPitch, q_ulong texPitch, int add0, int add1, int add2,
                               int mul0, int mul1, int mul2, q_ulong flags);

/// @}
/// \name Quads of plain texels
/// A convex quad of texel copies, top byte included, without private block, light or depth; only x and y of the points
/// are read. Corners may be given in any order, texture positions count whole texels. The texture is stretched end to
/// end over the drawn pixels: the last row and the last pixel of a row reach the far texture position, or stop one
/// texel short of it where a reciprocal is truncated.
///
/// `clip` bounds the destination and the texture positions alike: both are taken to be of like extents. Nothing is read
/// or written outside it.
/// @{

/// Leaves a pixel whose texel lies outside `clip` as it was.
Q_MUR_API void i3D_Blt_Rect_Nearest_NoLight_NoHPE_Safe(q_ulong *dst, _POINT3DFLOAT *p0, _POINT3DFLOAT *p1,
                                                       _POINT3DFLOAT *p2, _POINT3DFLOAT *p3, q_ulong *tex,
                                                       _POINTINT *t0, _POINTINT *t1, _POINTINT *t2, _POINTINT *t3,
                                                       tagRECT *clip, q_ulong dstPitch, q_ulong texPitch);

/// Writes 0 to a pixel whose texel lies outside `clip`.
Q_MUR_API void i3D_Blt_Rect_Nearest_NoLight_NoHPE_SafeBlack(q_ulong *dst, _POINT3DFLOAT *p0, _POINT3DFLOAT *p1,
                                                            _POINT3DFLOAT *p2, _POINT3DFLOAT *p3, q_ulong *tex,
                                                            _POINTINT *t0, _POINTINT *t1, _POINTINT *t2, _POINTINT *t3,
                                                            tagRECT *clip, q_ulong dstPitch, q_ulong texPitch);

/// @}
/// \name Meshes
/// A grid of `rows` by `cols` points, row after row, covered by the part `texRect` of a texture, depth-tested and lit
/// as by FindLuminenceTerm(): both vertex arrays are overwritten. The cells divide `texRect` evenly to the texel. With
/// less than 2 rows or columns nothing is drawn.
/// \param texRect must leave two columns and two rows of the texture to its right and below, which may be read
/// \param light a unit vector, *away* from the lamp where rows run to the right and columns downward on the screen:
///        (0.577, 0.577, 0.577) lights the upper left; see FindLuminenceTerm()
/// \param lightColor not read, may be null
/// \param ambientColor its length is the ambient light; 256 is unity
/// \param specular strength of the highlight; 1.0 is 256 levels
/// \param shininess how many times the highlight is squared
/// @{

/// Draws each cell as a quad.
Q_MUR_API void Render_Texture_3D(_PRIVATE_QM3D_DATA *data, q_ulong *dst, q_ulong *tex, tagRECT *clip, tagRECT *texRect,
                                 q_ulong dstPitch, q_ulong texPitch, _POINT3DFLOAT *points, int rows, int cols,
                                 _POINT3DFLOAT *light, _POINT3D *lightColor, _POINT3D *ambientColor, float specular,
                                 int shininess);

/// Draws each cell as a quad and leaves out pixels of which all four texels are 0 (in all 32 bits).
Q_MUR_API void Render_Texture_3D_KeySrc(_PRIVATE_QM3D_DATA *data, q_ulong *dst, q_ulong *tex, tagRECT *clip,
                                        tagRECT *texRect, q_ulong dstPitch, q_ulong texPitch, _POINT3DFLOAT *points,
                                        int rows, int cols, _POINT3DFLOAT *light, _POINT3D *lightColor,
                                        _POINT3D *ambientColor, float specular, int shininess);

/// Draws each cell as two triangles, then a glint over one bright vertex, without regard to depth: five additive
/// crosses in blue-white, inside `clip`. The vertex is the last whose highlight exceeds the index of the one chosen
/// before it (at first 0), of all but the last row and column; without a highlight there is no glint.
Q_MUR_API void Render_Texture_3D_Tri(_PRIVATE_QM3D_DATA *data, q_ulong *dst, q_ulong *tex, tagRECT *clip,
                                     tagRECT *texRect, q_ulong dstPitch, q_ulong texPitch, _POINT3DFLOAT *points,
                                     int rows, int cols, _POINT3DFLOAT *light, _POINT3D *lightColor,
                                     _POINT3D *ambientColor, float specular, int shininess);

/// Draws each cell as a quad.
Q_MUR_API void VKD_Render_Texture_3D(_PRIVATE_QMGL_DATA *data, q_ulong *dst, q_ulong *tex, tagRECT *clip,
                                     tagRECT *texRect, q_ulong dstPitch, q_ulong texPitch, _POINT3DFLOAT *points,
                                     int rows, int cols, _POINT3DFLOAT *light, _POINT3D *lightColor,
                                     _POINT3D *ambientColor, float specular, int shininess);

/// Draws each cell as a quad: with `tex` where it faces the viewer (IsFront()), and with `backTex` mirrored left to
/// right where it does not, so that a mesh turned over shows the second picture the right way round. The mirrored
/// positions begin at column `right` of `texRect` and run to the left. Both textures have the pitch `texPitch`.
Q_MUR_API void VKD_Render_Texture_3D(_PRIVATE_QMGL_DATA *data, q_ulong *dst, q_ulong *tex, q_ulong *backTex,
                                     tagRECT *clip, tagRECT *texRect, q_ulong dstPitch, q_ulong texPitch,
                                     _POINT3DFLOAT *points, int rows, int cols, _POINT3DFLOAT *light,
                                     _POINT3D *lightColor, _POINT3D *ambientColor, float specular, int shininess);

/// Draws each cell as a quad and leaves out pixels of which all four texels are 0 (in all 32 bits).
Q_MUR_API void VKD_Render_Texture_3D_KeySrc(_PRIVATE_QMGL_DATA *data, q_ulong *dst, q_ulong *tex, tagRECT *clip,
                                            tagRECT *texRect, q_ulong dstPitch, q_ulong texPitch, _POINT3DFLOAT *points,
                                            int rows, int cols, _POINT3DFLOAT *light, _POINT3D *lightColor,
                                            _POINT3D *ambientColor, float specular, int shininess);

/// Draws each cell as two triangles. There is no glint.
Q_MUR_API void VKD_Render_Texture_3D_Tri(_PRIVATE_QMGL_DATA *data, q_ulong *dst, q_ulong *tex, tagRECT *clip,
                                         tagRECT *texRect, q_ulong dstPitch, q_ulong texPitch, _POINT3DFLOAT *points,
                                         int rows, int cols, _POINT3DFLOAT *light, _POINT3D *lightColor,
                                         _POINT3D *ambientColor, float specular, int shininess);

/// @}

#endif
