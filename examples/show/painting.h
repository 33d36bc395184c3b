/// \file
/// The words in which effects paint: surfaces and parts of them that are filled, copied, mixed, dimmed, blurred and
/// lit. Each is a call of the library or two.
#ifndef QMUR_SHOW_PAINTING_H
#define QMUR_SHOW_PAINTING_H

#include "colour.h"
#include "point.h"
#include "surface.h"

#include <span>

namespace show {

void fill(const Surface &out, q_ulong colour);

/// Fills what of the area lies on the surface.
void fill(const Surface &out, tagRECT area, q_ulong colour);

/// Fills `out` from a surface that is no smaller.
void copy(const Surface &out, const Surface &from);

/// Copies an area to the same place.
void copy(const Surface &out, const Surface &from, tagRECT area);

/// Copies a part of a surface to the place with the corner (x, y).
void copy(const Surface &out, int x, int y, const Surface &from, tagRECT part);

/// Copies the pixels whose middles lie within a convex polygon to the same place. Neighbours leave no gap.
void copyWithin(const Surface &out, const Surface &from, std::span<const Point> corners);

/// Mixes `out` with a surface that is no smaller, of which it then holds `share`. Nothing happens to it at 0.
void blend(const Surface &out, const Surface &from, double share);
void blend(const Surface &out, const Surface &from, tagRECT area, double share);

/// Brings the surface to a brightness from 0 to 1.
void dim(const Surface &out, double brightness);
void dim(const Surface &out, tagRECT area, double brightness);

/// Lays a sprite over `out`, by the opacity in its top byte.
void lay(const Surface &out, const Surface &sprite, int x, int y);
void lay(const Surface &out, const Surface &sprite, int x, int y, tagRECT clip);

/// Adds a surface that is no smaller.
void add(const Surface &out, const Surface &from);

/// The same in shares of its channels, which are never quite whole. Sums of red and green must stay below 256.
void add(const Surface &out, const Surface &from, double red, double green, double blue);
void add(const Surface &out, const Surface &from, tagRECT area, double red, double green, double blue);

/// Adds a part of a surface, stretched over an area.
void addStretched(const Surface &out, tagRECT area, const Surface &from, tagRECT part);
void addStretched(const Surface &out, tagRECT area, const Surface &from, tagRECT part, double red, double green,
                  double blue);

/// Takes the means of the squares around the pixels, `times` one after the other; `radius` becomes what the surface has
/// room for.
void blur(const Surface &out, int radius, int times = 1);

/// The same with the top byte, and half as wide. What `scratch`, of the same pitch, holds is lost.
void blurWithOpacity(const Surface &out, const Surface &scratch, int size, int times = 1);

/// Takes away the opacity that the top bytes hold.
void clearOpacity(const Surface &out);

/// A light around a point. Intensities are truncated.
void light(const Surface &out, int x, int y, int radius, q_ulong colour, double intensity);

/// A star whose rays reach `radius` pixels far.
void star(const Surface &out, int x, int y, int radius, q_ulong colour, double intensity);

} // namespace show

#endif
