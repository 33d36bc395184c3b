#include "matrix.h"

#include "base/vector.h"
#include "q_Mur/pipeline.h"

using namespace qmur;

void SetIdentityMatrix(_I3DMATRIX &m) {
    m = identityMatrix;
}

// Meant: the transpose of the usual matrix, so that a positive angle about +Z takes +X toward -Y.
void SetRotationMatrix(_I3DMATRIX &m, _I3DVECTOR &axis, float radians) {
    m = atFullWidth([&axis, radians] {
        const SineCosine angle = sineCosine(radians);
        const auto cosine = static_cast<float>(angle.cosine);
        const Wide c = cosine;
        const Wide s = static_cast<float>(angle.sine);
        const Wide t = 1 - cosine;
        const _I3DVECTOR unit = scaled(axis, reciprocalMagnitude(axis));
        const Wide x = unit.x;
        const Wide y = unit.y;
        const Wide z = unit.z;
        const auto rounded = [](Wide value) { return static_cast<float>(value); };
        return _I3DMATRIX{{
            rounded(t * x * x + c), rounded(t * x * y + s * z), rounded(t * x * z - s * y), 0, //
            rounded(t * x * y - s * z), rounded(t * y * y + c), rounded(t * y * z + s * x), 0, //
            rounded(t * x * z + s * y), rounded(t * y * z - s * x), rounded(t * z * z + c), 0, //
            0, 0, 0, 1,                                                                        //
        }};
    });
}

void MatrixMultiply(_I3DMATRIX &out, _I3DMATRIX &a, _I3DMATRIX &b) {
    out = atFullWidth([&a, &b] { return matrixProduct(a, b); });
}
