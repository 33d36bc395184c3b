#include "base/integers.h"
#include "base/vector.h"
#include "q_Mur/math3d.h"

#include <climits>

namespace {

using namespace qmur;

_POINT3D difference(const _POINT3D &a, const _POINT3D &b) {
    return {wrapSubtract(a.x, b.x), wrapSubtract(a.y, b.y), wrapSubtract(a.z, b.z), 0};
}

} // namespace

void fBubSun(_POINT3DFLOAT *out, _POINT3DFLOAT *p1, _POINT3DFLOAT *p2, _POINT3DFLOAT *p3) {
    const _POINT3DFLOAT normal = atFullWidth([=] { return faceNormal(*p1, *p2, *p3); });
    out->x = normal.x;
    out->y = normal.y;
    out->z = normal.z;
}

// Meant: the normal points the other way than that of fBubSun.
void iBubSun(_POINT3D *out, _POINT3D *p1, _POINT3D *p2, _POINT3D *p3) {
    _POINT3D a = difference(*p3, *p1);
    _POINT3D b = difference(*p2, *p1);
    _POINT3D normal = {};
    iCross_Product(&normal, &a, &b);
    const int squares = iDot_Product(&normal, &normal);
    // Squares that wrapped below zero have no root; the processor's answer is the least of all ints.
    const int length = squares < 0 ? INT_MIN : atFullWidth([=] { return truncateToInt(squareRoot(squares)); });
    const auto component = [length](int value) { return length == 0 ? 0 : (value << 8) / length; };
    out->x = component(normal.x);
    out->y = component(normal.y);
    out->z = component(normal.z);
}

bool IsFront(_POINT3DFLOAT *p1, _POINT3DFLOAT *p2, _POINT3DFLOAT *p3) {
    return atFullWidth([=] { return facesFront(*p1, *p2, *p3); });
}
