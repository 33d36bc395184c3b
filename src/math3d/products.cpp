#include "base/alias.h"
#include "base/integers.h"
#include "base/vector.h"
#include "q_Mur/math3d.h"

namespace {

using namespace qmur;

#if defined(__i386__)
/// A float is handed back in the floating unit, where it keeps its full width until the caller stores it.
using Unrounded = Wide;
#else
using Unrounded = float;
#endif

} // namespace

// One body for the vectors and the points: they have the same words, and a reference passes like a pointer.

extern "C" Unrounded q_MurDotProduct(const _POINT3DFLOAT *a, const _POINT3DFLOAT *b) {
    return atFullWidth([=] { return static_cast<Unrounded>(dotProduct(*a, *b)); });
}

extern "C" Unrounded q_MurMagnitude(const _POINT3DFLOAT *v) {
    return atFullWidth([=] { return static_cast<Unrounded>(magnitude(*v)); });
}

extern "C" _POINT3DFLOAT q_MurNormalize(const _POINT3DFLOAT *v) {
    return atFullWidth([=] { return scaled(*v, reciprocalMagnitude(*v)); });
}

float DotProduct(_I3DVECTOR &, _I3DVECTOR &) Q_MUR_ALIAS_OF(q_MurDotProduct);
float fDot_Product(_POINT3DFLOAT *, _POINT3DFLOAT *) Q_MUR_ALIAS_OF(q_MurDotProduct);

float Magnitude(_I3DVECTOR &) Q_MUR_ALIAS_OF(q_MurMagnitude);
float Magnitude(_POINT3DFLOAT *) Q_MUR_ALIAS_OF(q_MurMagnitude);

_I3DVECTOR Normalize(_I3DVECTOR &) Q_MUR_ALIAS_OF(q_MurNormalize);
_POINT3DFLOAT Normalize(_POINT3DFLOAT *) Q_MUR_ALIAS_OF(q_MurNormalize);

int iDot_Product(_POINT3D *a, _POINT3D *b) {
    return dotProduct(*a, *b);
}

_I3DVECTOR CrossProduct(_I3DVECTOR &a, _I3DVECTOR &b) {
    return atFullWidth([&a, &b] { return crossProduct(a, b); });
}

// The components are stored one by one: each is worked out from what then stands in the operands.

void fCross_Product(_POINT3DFLOAT *out, _POINT3DFLOAT *a, _POINT3DFLOAT *b) {
    atFullWidth([=] {
        out->x = minorOf(a->y, b->z, a->z, b->y);
        out->y = minorOf(a->z, b->x, a->x, b->z);
        out->z = minorOf(a->x, b->y, a->y, b->x);
    });
}

void iCross_Product(_POINT3D *out, _POINT3D *a, _POINT3D *b) {
    const auto minorOf = [](int p, int q, int r, int s) {
        return wrapSubtract(wrapMultiply(p, q), wrapMultiply(r, s));
    };
    out->x = minorOf(a->y, b->z, a->z, b->y);
    out->y = minorOf(a->z, b->x, a->x, b->z);
    out->z = minorOf(a->x, b->y, a->y, b->x);
}
