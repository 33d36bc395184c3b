/// \file
/// Arithmetic on vectors of three floats at full width. What a function here returns as #Wide has not been rounded, so
/// all of it stands inside atFullWidth().
#ifndef Q_MUR_BASE_VECTOR_H
#define Q_MUR_BASE_VECTOR_H

#include "base/integers.h"
#include "base/wide.h"
#include "q_Mur/types.h"

namespace qmur {

/// a.z b.z + a.y b.y + a.x b.x, added in that order.
template <class A, class B>
Wide dotProduct(const A &a, const B &b) {
    return static_cast<Wide>(a.z) * b.z + static_cast<Wide>(a.y) * b.y + static_cast<Wide>(a.x) * b.x;
}

/// The same with ints, which wrap.
inline int dotProduct(const _POINT3D &a, const _POINT3D &b) {
    return wrapAdd(wrapAdd(wrapMultiply(a.z, b.z), wrapMultiply(a.y, b.y)), wrapMultiply(a.x, b.x));
}

template <class Vector>
Wide magnitude(const Vector &v) {
    return squareRoot(dotProduct(v, v));
}

/// What brings a vector to length 1. A vector without length gets a finite factor, which leaves it zero.
template <class Vector>
Wide reciprocalMagnitude(const Vector &v) {
    const Wide length = magnitude(v);
    return length == 0 ? 32768 : 1 / length;
}

template <class Vector>
Vector scaled(const Vector &v, Wide factor) {
    Vector result = {};
    result.x = static_cast<float>(v.x * factor);
    result.y = static_cast<float>(v.y * factor);
    result.z = static_cast<float>(v.z * factor);
    return result;
}

template <class Vector>
Vector dividedBy(const Vector &v, Wide divisor) {
    Vector result = {};
    result.x = static_cast<float>(v.x / divisor);
    result.y = static_cast<float>(v.y / divisor);
    result.z = static_cast<float>(v.z / divisor);
    return result;
}

template <class Vector>
Vector difference(const Vector &a, const Vector &b) {
    Vector result = {};
    result.x = a.x - b.x;
    result.y = a.y - b.y;
    result.z = a.z - b.z;
    return result;
}

/// p q - r s, a component of a cross product.
inline float minorOf(float p, float q, float r, float s) {
    return static_cast<float>(static_cast<Wide>(p) * q - static_cast<Wide>(r) * s);
}

template <class Vector>
Vector crossProduct(const Vector &a, const Vector &b) {
    Vector result = {};
    result.x = minorOf(a.y, b.z, a.z, b.y);
    result.y = minorOf(a.z, b.x, a.x, b.z);
    result.z = minorOf(a.x, b.y, a.y, b.x);
    return result;
}

/// The unit normal of a face, (p1 - p2) x (p1 - p3) over its length.
inline _POINT3DFLOAT faceNormal(const _POINT3DFLOAT &p1, const _POINT3DFLOAT &p2, const _POINT3DFLOAT &p3) {
    const _POINT3DFLOAT normal = crossProduct(difference(p1, p2), difference(p1, p3));
    return scaled(normal, reciprocalMagnitude(normal));
}

/// Whether a face's points run clockwise on the screen.
inline bool facesFront(const _POINT3DFLOAT &p1, const _POINT3DFLOAT &p2, const _POINT3DFLOAT &p3) {
    const Wide a = static_cast<Wide>(p1.x) - p2.x;
    const Wide b = static_cast<Wide>(p1.y) - p2.y;
    const Wide c = static_cast<Wide>(p1.x) - p3.x;
    const Wide d = static_cast<Wide>(p1.y) - p3.y;
    return a * d - c * b > 0;
}

inline _POINT3DFLOAT meanOf(const _POINT3DFLOAT &a, const _POINT3DFLOAT &b) {
    const auto mean = [](float p, float q) { return static_cast<float>((static_cast<Wide>(p) + q) * 0.5); };
    return {mean(a.x, b.x), mean(a.y, b.y), mean(a.z, b.z), 0};
}

inline _POINT3DFLOAT meanOf(const _POINT3DFLOAT &a, const _POINT3DFLOAT &b, const _POINT3DFLOAT &c,
                            const _POINT3DFLOAT &d) {
    const auto mean = [](float p, float q, float r, float s) {
        return static_cast<float>((static_cast<Wide>(p) + q + r + s) * 0.25);
    };
    return {mean(a.x, b.x, c.x, d.x), mean(a.y, b.y, c.y, d.y), mean(a.z, b.z, c.z, d.z), 0};
}

} // namespace qmur

#endif
