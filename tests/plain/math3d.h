/// \file
/// Points, vectors and grids once more, each formula written out.
#ifndef Q_MUR_TESTS_PLAIN_MATH3D_H
#define Q_MUR_TESTS_PLAIN_MATH3D_H

#include "vectors.h"

#include <limits>
#include <optional>

namespace plain {

// Rotations

/// Turns (a, b) about a centre; `sense` is the sign of the sine. Where a coordinate has no centre, none is added
/// either: -0 + 0 would be 0.
inline void turn(float *a, float *b, float angle, int sense, std::optional<int> centreA = {},
                 std::optional<int> centreB = {}) {
    wide([&] {
        const Real c = cosine(Real{angle});
        const Real s = sense * sine(Real{angle});
        const Real fromA = Real{*a} - centreA.value_or(0);
        const Real fromB = Real{*b} - centreB.value_or(0);
        const Real newA = fromA * c + fromB * s;
        const Real newB = fromB * c - fromA * s;
        *a = static_cast<float>(centreA ? newA + *centreA : newA);
        *b = static_cast<float>(centreB ? newB + *centreB : newB);
    });
}

inline void turn(int *a, int *b, unsigned short angle, int sense, int centreA = 0, int centreB = 0) {
    const Number c = iCos[angle / 8];
    const Number s = sense * Number{iSin[angle / 8]};
    const Number fromA = signed32(Number{*a} - centreA);
    const Number fromB = signed32(Number{*b} - centreB);
    *a = int32(flooredQuotient(signed32(fromA * c + fromB * s), 32768) + centreA);
    *b = int32(flooredQuotient(signed32(fromB * c - fromA * s), 32768) + centreB);
}

// Each stands for two functions: with a centre and without one.
template <class... Centre>
void fRotate3DByX(float *a, float *b, float angle, Centre... centre) {
    turn(a, b, angle, 1, centre...);
}
template <class... Centre>
void fRotate3DByY(float *a, float *b, float angle, Centre... centre) {
    turn(a, b, angle, -1, centre...);
}
template <class... Centre>
void fRotate3DByZ(float *a, float *b, float angle, Centre... centre) {
    turn(a, b, angle, 1, centre...);
}
template <class... Centre>
void iRotate3DByX(int *a, int *b, unsigned short angle, Centre... centre) {
    turn(a, b, angle, 1, centre...);
}
template <class... Centre>
void iRotate3DByY(int *a, int *b, unsigned short angle, Centre... centre) {
    turn(a, b, angle, -1, centre...);
}
template <class... Centre>
void iRotate3DByZ(int *a, int *b, unsigned short angle, Centre... centre) {
    turn(a, b, angle, 1, centre...);
}

inline void fRotate3D(float *x, float *y, float *z, float angleX, float angleY, float angleZ) {
    turn(y, z, angleX, 1);
    turn(x, z, angleY, -1);
    turn(x, y, angleZ, 1);
}

inline void iRotate3D(int *x, int *y, int *z, unsigned short angleX, unsigned short angleY, unsigned short angleZ) {
    turn(y, z, angleX, 1);
    turn(x, z, angleY, -1);
    turn(x, y, angleZ, 1);
}

/// Turns a point about Y, its axis brought there by t1 about Z and t2 about X.
template <class Point, class Angle>
void turnAboutLine(Point &p, Angle t1, Angle t2, Angle angle, Angle minusT2, Angle minusT1) {
    turn(&p.x, &p.y, t1, 1);
    turn(&p.y, &p.z, t2, 1);
    turn(&p.x, &p.z, angle, -1);
    turn(&p.y, &p.z, minusT2, 1);
    turn(&p.x, &p.y, minusT1, 1);
}

inline void fRotate3D(_POINT3DFLOAT *p, _POINT3DFLOAT *a, _POINT3DFLOAT *q, float angle) {
    float t1 = 0;
    float t2 = 0;
    wide([&] {
        const Real dx = Real{a->x} - q->x;
        const Real dy = Real{q->y} - a->y;
        const Real dz = Real{q->z} - a->z;
        t1 = static_cast<float>(arcTangent(dx, dy));
        t2 = static_cast<float>(arcTangent(dz, rootOf(dx * dx + dy * dy)));
    });
    p->x = p->x - q->x;
    p->y = p->y - q->y;
    p->z = p->z - q->z;
    turnAboutLine(*p, t1, t2, angle, -t2, -t1);
    p->x = p->x + q->x;
    p->y = p->y + q->y;
    p->z = p->z + q->z;
}

inline void iRotate3D(_POINT3D *p, _POINT3D *a, _POINT3D *q, unsigned short angle) {
    int t1 = 0;
    int t2 = 0;
    wide([&] {
        const Real unitsPerRadian = Real{10430.3805204495};
        const Real dx = int32(Number{a->x} - q->x);
        const Real dy = int32(Number{q->y} - a->y);
        const Real dz = int32(Number{q->z} - a->z);
        t1 = truncated(arcTangent(dx, dy) * unitsPerRadian);
        t2 = truncated(arcTangent(dz, rootOf(dx * dx + dy * dy)) * unitsPerRadian);
    });
    const auto low16 = [](int units) { return static_cast<unsigned short>(units); };
    *p = {int32(Number{p->x} - q->x), int32(Number{p->y} - q->y), int32(Number{p->z} - q->z), p->w};
    turnAboutLine(*p, low16(t1), low16(t2), angle, low16(-t2), low16(-t1));
    *p = {int32(Number{p->x} + q->x), int32(Number{p->y} + q->y), int32(Number{p->z} + q->z), p->w};
}

// Moving and projecting

inline void fMove3D(float *x, float *y, float *z, int dx, int dy, int dz) {
    *x = *x + static_cast<float>(dx);
    *y = *y + static_cast<float>(dy);
    *z = *z + static_cast<float>(dz);
}

inline void iMove3D(int *x, int *y, int *z, int dx, int dy, int dz) {
    *x = int32(Number{*x} + dx);
    *y = int32(Number{*y} + dy);
    *z = int32(Number{*z} + dz);
}

/// The distance over the depth; to be used at full width.
inline Real perspective(float z, int distance) {
    const Real depth = distance + Real{z};
    return distance / (depth > 16 ? depth : 16);
}

inline void fConvertReal2Viewport(float *x, float *y, float *z, int distance) {
    wide([&] {
        const Real k = perspective(*z, distance);
        *x = static_cast<float>(*x * k);
        *y = static_cast<float>(*y * k);
    });
}

inline void fConvertReal2Viewport(float *x, float *y, float *z, int centreX, int centreY, int distance) {
    wide([&] {
        const Real k = perspective(*z, distance);
        const auto wayX = static_cast<float>(Real{*x} - static_cast<Real>(centreX));
        const auto wayY = static_cast<float>(Real{*y} - static_cast<Real>(centreY));
        *x = static_cast<float>(wayX * k + centreX);
        *y = static_cast<float>(wayY * k + centreY);
    });
}

inline void iConvertReal2Viewport(int *x, int *y, int *z, int centreX, int centreY, int distance) {
    const Number depth = std::max<Number>(signed32(Number{distance} + *z), 16);
    const auto projected = [=](Number way) { return signed32(signed32(way) * distance) / depth; };
    *x = int32(projected(Number{*x} - centreX) + centreX);
    *y = int32(projected(Number{*y} - centreY) + centreY);
}

inline void iConvertReal2Viewport(int *x, int *y, int *z, int distance) {
    iConvertReal2Viewport(x, y, z, 0, 0, distance);
}

inline void fMapping3D(float *x, float *y, float *z, float angleX, float angleY, float angleZ, int offsetX, int offsetY,
                       int offsetZ, int distance) {
    fRotate3D(x, y, z, angleX, angleY, angleZ);
    fMove3D(x, y, z, 0, 0, offsetZ);
    fConvertReal2Viewport(x, y, z, distance);
    fMove3D(x, y, z, offsetX, offsetY, 0);
}

inline void iMapping3D(int *x, int *y, int *z, unsigned short angleX, unsigned short angleY, unsigned short angleZ,
                       int offsetX, int offsetY, int offsetZ, int distance) {
    iRotate3D(x, y, z, angleX, angleY, angleZ);
    iMove3D(x, y, z, 0, 0, offsetZ);
    iConvertReal2Viewport(x, y, z, distance);
    iMove3D(x, y, z, offsetX, offsetY, 0);
}

// Products. What takes references and what takes pointers does the same.

inline float DotProduct(_I3DVECTOR &a, _I3DVECTOR &b) {
    return wide([&] { return static_cast<float>(dot(a, b)); });
}

inline float fDot_Product(_POINT3DFLOAT *a, _POINT3DFLOAT *b) {
    return wide([&] { return static_cast<float>(dot(*a, *b)); });
}

inline int iDot_Product(_POINT3D *a, _POINT3D *b) {
    return int32(signed32(Number{a->z} * b->z) + signed32(Number{a->y} * b->y) + signed32(Number{a->x} * b->x));
}

/// Puts a vector into the place of another, whose fourth word stays.
template <class Point>
void put(Point &out, const Vector &v) {
    out = {v.x, v.y, v.z, out.w};
}

inline _I3DVECTOR CrossProduct(_I3DVECTOR &a, _I3DVECTOR &b) {
    _I3DVECTOR out = {};
    wide([&] { put(out, cross(a, b)); });
    return out;
}

inline void fCross_Product(_POINT3DFLOAT *out, _POINT3DFLOAT *a, _POINT3DFLOAT *b) {
    wide([&] { put(*out, cross(*a, *b)); });
}

inline void iCross_Product(_POINT3D *out, _POINT3D *a, _POINT3D *b) {
    const auto minor = [](Number p, Number q, Number r, Number s) { return int32(signed32(p * q) - signed32(r * s)); };
    out->x = minor(a->y, b->z, a->z, b->y);
    out->y = minor(a->z, b->x, a->x, b->z);
    out->z = minor(a->x, b->y, a->y, b->x);
}

inline float Magnitude(_I3DVECTOR &v) {
    return wide([&] { return static_cast<float>(lengthOf(v)); });
}
inline float Magnitude(_POINT3DFLOAT *v) {
    return wide([&] { return static_cast<float>(lengthOf(*v)); });
}

inline _I3DVECTOR Normalize(_I3DVECTOR &v) {
    _I3DVECTOR out = v;
    wide([&] { put(out, unit(v)); });
    return out;
}
inline _POINT3DFLOAT Normalize(_POINT3DFLOAT *v) {
    _POINT3DFLOAT out = *v;
    wide([&] { put(out, unit(*v)); });
    return out;
}

// Normals and facing

inline void fBubSun(_POINT3DFLOAT *out, _POINT3DFLOAT *p1, _POINT3DFLOAT *p2, _POINT3DFLOAT *p3) {
    wide([&] { put(*out, faceNormal(*p1, *p2, *p3)); });
}

inline void iBubSun(_POINT3D *out, _POINT3D *p1, _POINT3D *p2, _POINT3D *p3) {
    const auto difference = [](const _POINT3D &p, const _POINT3D &q) {
        return _POINT3D{int32(Number{p.x} - q.x), int32(Number{p.y} - q.y), int32(Number{p.z} - q.z), 0};
    };
    _POINT3D a = difference(*p3, *p1);
    _POINT3D b = difference(*p2, *p1);
    plain::iCross_Product(out, &a, &b);
    const Number squares = plain::iDot_Product(out, out);
    Number length = std::numeric_limits<int>::min();
    if (squares >= 0) {
        length = static_cast<Number>(std::sqrt(static_cast<double>(squares)));
        length += (length + 1) * (length + 1) <= squares;
        length -= length * length > squares;
    }
    const auto component = [length](Number value) { return length == 0 ? 0 : int32(signed32(value * 256) / length); };
    *out = {component(out->x), component(out->y), component(out->z), out->w};
}

inline bool IsFront(_POINT3DFLOAT *p1, _POINT3DFLOAT *p2, _POINT3DFLOAT *p3) {
    return wide([&] {
        const Real x = p1->x;
        const Real y = p1->y;
        return (x - p2->x) * (y - p3->y) - (x - p3->x) * (y - p2->y) > 0;
    });
}

// Means

template <class... Coordinates>
float mean(Coordinates... coordinates) {
    return wide([&] { return static_cast<float>((... + Real{coordinates}) / sizeof...(coordinates)); });
}

template <class... Coordinates>
int flooredMean(Coordinates... coordinates) {
    return int32(flooredQuotient(signed32((... + Number{coordinates})), sizeof...(coordinates)));
}

inline _POINT3DFLOAT fMean2Vector(_POINT3DFLOAT *a, _POINT3DFLOAT *b) {
    return {mean(a->x, b->x), mean(a->y, b->y), mean(a->z, b->z), 0};
}

inline _POINT3DFLOAT fMean4Vector(_POINT3DFLOAT *a, _POINT3DFLOAT *b, _POINT3DFLOAT *c, _POINT3DFLOAT *d) {
    return {mean(a->x, b->x, c->x, d->x), mean(a->y, b->y, c->y, d->y), mean(a->z, b->z, c->z, d->z), 0};
}

inline _POINT3D iMean2Vector(_POINT3D *a, _POINT3D *b) {
    return {flooredMean(a->x, b->x), flooredMean(a->y, b->y), flooredMean(a->z, b->z), 0};
}

inline _POINT3D iMean4Vector(_POINT3D *a, _POINT3D *b, _POINT3D *c, _POINT3D *d) {
    return {flooredMean(a->x, b->x, c->x, d->x), flooredMean(a->y, b->y, c->y, d->y),
            flooredMean(a->z, b->z, c->z, d->z), 0};
}

// Grids

inline float stepOver(Real length, int count) {
    return wide([&] { return static_cast<float>(length / (count - 1)); });
}

/// Where a column or row of a sheet lies.
inline float placeOnSheet(int index, int length, int count, float scale) {
    const Real step = stepOver(length, count);
    return wide([&] { return static_cast<float>((index * step - length / 2) * scale); });
}

/// Calls `visit` for each point of a grid, row after row.
template <class Visit>
void forGrid(int columns, int rows, Visit visit) {
    for (int row = 0; row < rows; ++row)
        for (int column = 0; column < columns; ++column)
            visit(Number{row} * columns + column, row, column);
}

inline void Flat3D(_POINT3DFLOAT *points, int columns, int rows, float scale, float angleX, float angleY, float angleZ,
                   int offsetX, int offsetY, int offsetZ, int distance, int width, int height) {
    forGrid(columns, rows, [&](Number index, int row, int column) {
        _POINT3DFLOAT &p = points[index];
        p.x = placeOnSheet(column, width, columns, scale);
        p.y = placeOnSheet(row, height, rows, scale);
        p.z = 0;
        fMapping3D(&p.x, &p.y, &p.z, angleX, angleY, angleZ, offsetX, offsetY, offsetZ, distance);
    });
}

inline void Post3D(_POINT3DFLOAT *points, int columns, int rows, float scale, float angleX, float angleY, float angleZ,
                   int offsetX, int offsetY, int offsetZ, int distance, int, int height) {
    forGrid(columns, rows, [&](Number index, int row, int column) {
        _POINT3DFLOAT &p = points[index];
        p.x = 0;
        p.y = placeOnSheet(row, height, rows, scale);
        p.z = scale * 180;
        turn(&p.x, &p.z, static_cast<float>(column) * stepOver(6.2831855F, columns), -1);
        fMapping3D(&p.x, &p.y, &p.z, angleX, angleY, angleZ, offsetX, offsetY, offsetZ, distance);
    });
}

inline void Interpolate3DPoint(_POINT3DFLOAT *out, _POINT3DFLOAT *a, _POINT3DFLOAT *b, int columns, int rows, float t) {
    const auto blend = [t](float p, float q) {
        return wide([&] { return static_cast<float>((Real{q} - p) * t + p); });
    };
    forGrid(columns, rows, [&](Number i, int, int) {
        out[i].x = blend(a[i].x, b[i].x);
        out[i].y = blend(a[i].y, b[i].y);
        out[i].z = blend(a[i].z, b[i].z);
    });
}

} // namespace plain

#endif
