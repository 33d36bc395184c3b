/// \file
/// Naive second computations of the matrix pipeline, pixel by pixel and vertex by vertex.
#ifndef Q_MUR_TESTS_PIPELINE_NAIVE_H
#define Q_MUR_TESTS_PIPELINE_NAIVE_H

#include "support/surface.h"

#include <vector>

namespace test {

enum class Way { draw, blend, mix, add };

/// The ends of one number on both edges, in the order of the arguments.
struct Ends {
    int a0;
    int a1;
    int b0;
    int b1;
};

struct Band {
    Ends x;
    Ends y;
    Ends red;
    Ends green;
    Ends blue;
    Ends depth;
};

/// Asks of every pixel of the clip whether the band covers it, and what it makes of it.
void naiveBand(Surface &picture, Surface &depths, const tagRECT &clip, const Band &band, int nearLimit, Way way,
               int opacity);

/// Sorts three points and hands two bands to naiveBand().
void naiveTriangle(Surface &picture, Surface &depths, const tagRECT &clip, const _POINT3DFLOAT *points,
                   const q_ulong *colours, int nearLimit, Way way, int opacity);

/// The lit colours of a grid.
std::vector<q_ulong> naiveLight(const std::vector<_POINT3DFLOAT> &points, std::vector<q_ulong> colours, int columns,
                                int rows, const _POINT3DFLOAT &light, const _POINT3D &ambient, float specular,
                                int shininess);

} // namespace test

#endif
