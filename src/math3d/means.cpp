#include "base/integers.h"
#include "base/vector.h"
#include "q_Mur/math3d.h"

using namespace qmur;

_POINT3DFLOAT fMean2Vector(_POINT3DFLOAT *a, _POINT3DFLOAT *b) {
    return atFullWidth([=] { return meanOf(*a, *b); });
}

_POINT3DFLOAT fMean4Vector(_POINT3DFLOAT *a, _POINT3DFLOAT *b, _POINT3DFLOAT *c, _POINT3DFLOAT *d) {
    return atFullWidth([=] { return meanOf(*a, *b, *c, *d); });
}

_POINT3D iMean2Vector(_POINT3D *a, _POINT3D *b) {
    return {wrapAdd(a->x, b->x) >> 1, wrapAdd(a->y, b->y) >> 1, wrapAdd(a->z, b->z) >> 1, 0};
}

_POINT3D iMean4Vector(_POINT3D *a, _POINT3D *b, _POINT3D *c, _POINT3D *d) {
    const auto mean = [](int p, int q, int r, int s) { return wrapAdd(wrapAdd(wrapAdd(p, q), r), s) >> 2; };
    return {mean(a->x, b->x, c->x, d->x), mean(a->y, b->y, c->y, d->y), mean(a->z, b->z, c->z, d->z), 0};
}
