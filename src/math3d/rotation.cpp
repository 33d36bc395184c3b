#include "base/rotation.h"

#include "q_Mur/math3d.h"

namespace {

using namespace qmur;

void turn(int &a, int &b, const TableTurn &angle) {
    const IntPair pair = turned(a, b, angle);
    a = pair.a;
    b = pair.b;
}

/// Turns about an axis through (centreA, 0).
void turnAround(float &a, float &b, const SineCosine &angle, int centreA) {
    const WidePair pair = turned(static_cast<Wide>(a) - centreA, b, angle);
    a = static_cast<float>(pair.a + centreA);
    b = static_cast<float>(pair.b);
}

void turnAround(int &a, int &b, const TableTurn &angle, int centreA) {
    const IntPair pair = turned(wrapSubtract(a, centreA), b, angle);
    a = wrapAdd(pair.a, centreA);
    b = pair.b;
}

} // namespace

void fRotate3DByX(float *a, float *b, float angle) {
    atFullWidth([=] { turn(*a, *b, sineCosine(angle)); });
}

void fRotate3DByX(float *a, float *b, float angle, int centre) {
    atFullWidth([=] { turnAround(*a, *b, sineCosine(angle), centre); });
}

void fRotate3DByY(float *a, float *b, float angle) {
    atFullWidth([=] { turn(*a, *b, reversed(sineCosine(angle))); });
}

void fRotate3DByY(float *a, float *b, float angle, int centre) {
    atFullWidth([=] { turnAround(*a, *b, reversed(sineCosine(angle)), centre); });
}

void fRotate3DByZ(float *a, float *b, float angle) {
    atFullWidth([=] { turn(*a, *b, sineCosine(angle)); });
}

// Meant: of the three axes Z alone has a centre for both coordinates.
void fRotate3DByZ(float *a, float *b, float angle, int centreA, int centreB) {
    atFullWidth([=] {
        const WidePair pair =
            turned(static_cast<Wide>(*a) - centreA, static_cast<Wide>(*b) - centreB, sineCosine(angle));
        *a = static_cast<float>(pair.a + centreA);
        *b = static_cast<float>(pair.b + centreB);
    });
}

void iRotate3DByX(int *a, int *b, unsigned short angle) {
    turn(*a, *b, TableTurn(angle));
}

void iRotate3DByX(int *a, int *b, unsigned short angle, int centre) {
    turnAround(*a, *b, TableTurn(angle), centre);
}

void iRotate3DByY(int *a, int *b, unsigned short angle) {
    turn(*a, *b, reversed(TableTurn(angle)));
}

void iRotate3DByY(int *a, int *b, unsigned short angle, int centre) {
    turnAround(*a, *b, reversed(TableTurn(angle)), centre);
}

void iRotate3DByZ(int *a, int *b, unsigned short angle) {
    turn(*a, *b, TableTurn(angle));
}

void iRotate3DByZ(int *a, int *b, unsigned short angle, int centreA, int centreB) {
    turnAbout(*a, *b, TableTurn(angle), centreA, centreB);
}

void fRotate3D(float *x, float *y, float *z, float angleX, float angleY, float angleZ) {
    atFullWidth([=] { ThreeTurns(angleX, angleY, angleZ).apply(*x, *y, *z); });
}

void iRotate3D(int *x, int *y, int *z, unsigned short angleX, unsigned short angleY, unsigned short angleZ) {
    iRotate3DByX(y, z, angleX);
    iRotate3DByY(x, z, angleY);
    iRotate3DByZ(x, y, angleZ);
}

// The line is laid along Y by a turn about Z and one about X, and laid back behind the turn proper.

void fRotate3D(_POINT3DFLOAT *p, _POINT3DFLOAT *a, _POINT3DFLOAT *q, float angle) {
    atFullWidth([=] {
        p->x -= q->x;
        p->y -= q->y;
        p->z -= q->z;
        // Meant: x runs from q to a, y and z from a to q.
        const Wide dx = static_cast<Wide>(a->x) - q->x;
        const Wide dy = static_cast<Wide>(q->y) - a->y;
        const Wide dz = static_cast<Wide>(q->z) - a->z;
        const SineCosine aboutZ = sineCosine(static_cast<float>(arcTangent(dx, dy)));
        const SineCosine aboutX = sineCosine(static_cast<float>(arcTangent(dz, squareRoot(dx * dx + dy * dy))));
        turn(p->x, p->y, aboutZ);
        turn(p->y, p->z, aboutX);
        turn(p->x, p->z, reversed(sineCosine(angle)));
        turn(p->y, p->z, reversed(aboutX));
        turn(p->x, p->y, reversed(aboutZ));
        p->x += q->x;
        p->y += q->y;
        p->z += q->z;
    });
}

void iRotate3D(_POINT3D *p, _POINT3D *a, _POINT3D *q, unsigned short angle) {
    p->x = wrapSubtract(p->x, q->x);
    p->y = wrapSubtract(p->y, q->y);
    p->z = wrapSubtract(p->z, q->z);
    // Meant: x runs from q to a, y and z from a to q.
    const int dx = wrapSubtract(a->x, q->x);
    const int dy = wrapSubtract(q->y, a->y);
    const int dz = wrapSubtract(q->z, a->z);
    struct Turns {
        unsigned short aboutZ;
        unsigned short aboutX;
    };
    const Turns turns = atFullWidth([=] {
        constexpr double unitsToRadian = 10430.3805204495; // 65536 over 6.283184
        static_assert(unitsToRadian == 0x1.45f30b4e4e308p+13);
        const auto units = [](Wide radians) {
            return static_cast<unsigned short>(truncateToInt(radians * static_cast<Wide>(unitsToRadian)));
        };
        const Wide wideDx = dx;
        const Wide wideDy = dy;
        return Turns{units(arcTangent(wideDx, wideDy)),
                     units(arcTangent(dz, squareRoot(wideDx * wideDx + wideDy * wideDy)))};
    });
    const auto negated = [](unsigned short units) { return static_cast<unsigned short>(-units); };
    iRotate3DByZ(&p->x, &p->y, turns.aboutZ);
    iRotate3DByX(&p->y, &p->z, turns.aboutX);
    iRotate3DByY(&p->x, &p->z, angle);
    iRotate3DByX(&p->y, &p->z, negated(turns.aboutX));
    iRotate3DByZ(&p->x, &p->y, negated(turns.aboutZ));
    p->x = wrapAdd(p->x, q->x);
    p->y = wrapAdd(p->y, q->y);
    p->z = wrapAdd(p->z, q->z);
}
