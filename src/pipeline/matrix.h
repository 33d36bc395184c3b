/// \file
/// Matrix arithmetic at full width, to be used inside atFullWidth().
#ifndef Q_MUR_PIPELINE_MATRIX_H
#define Q_MUR_PIPELINE_MATRIX_H

#include "base/wide.h"
#include "q_Mur/types.h"

namespace qmur {

constexpr _I3DMATRIX identityMatrix = {{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}};

/// a x b, each element rounded once.
inline _I3DMATRIX matrixProduct(const _I3DMATRIX &a, const _I3DMATRIX &b) {
    _I3DMATRIX product;
    for (int row = 0; row < 4; ++row)
        for (int column = 0; column < 4; ++column) {
            Wide sum = 0;
            for (int k = 0; k < 4; ++k)
                sum += static_cast<Wide>(a.m[4 * row + k]) * b.m[4 * k + column];
            product.m[4 * row + column] = static_cast<float>(sum);
        }
    return product;
}

} // namespace qmur

#endif
