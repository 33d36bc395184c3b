/// \file
/// Rotation of a point about an axis, with floats at full width and with ints from the tables.
///
/// A rotation changes the two coordinates a and b that its axis leaves free: (y, z) for X, (x, z) for Y, (x, y) for Z.
/// Meant: Y turns the other way round than X and Z.
#ifndef Q_MUR_BASE_ROTATION_H
#define Q_MUR_BASE_ROTATION_H

#include "base/integers.h"
#include "base/wide.h"
#include "q_Mur/frame.h"

namespace qmur {

/// A turned pair at full width, not rounded yet: a c + b s and b c - a s.
struct WidePair {
    Wide a;
    Wide b;
};

inline WidePair turned(Wide a, Wide b, const SineCosine &angle) {
    return {a * angle.cosine + b * angle.sine, b * angle.cosine - a * angle.sine};
}

inline SineCosine reversed(const SineCosine &angle) {
    return {-angle.sine, angle.cosine};
}

/// Turns a pair about its origin, as X and Z do.
inline void turn(float &a, float &b, const SineCosine &angle) {
    const WidePair pair = turned(a, b, angle);
    a = static_cast<float>(pair.a);
    b = static_cast<float>(pair.b);
}

/// Sines and cosines of a rotation about all three axes, X first.
struct ThreeTurns {
    SineCosine x;
    SineCosine y;
    SineCosine z;

    ThreeTurns(float angleX, float angleY, float angleZ)
        : x(sineCosine(angleX)), y(reversed(sineCosine(angleY))), z(sineCosine(angleZ)) {}

    void apply(float &px, float &py, float &pz) const {
        turn(py, pz, x);
        turn(px, pz, y);
        turn(px, py, z);
    }
};

/// A sine and a cosine from the tables, 1.0 is 32768.
struct TableTurn {
    int sine;
    int cosine;

    explicit TableTurn(unsigned short angle) : sine(iSin[angle >> 3]), cosine(iCos[angle >> 3]) {}
};

/// A turned pair: (a c + b s) >> 15 and (b c - a s) >> 15, products wrapping.
struct IntPair {
    int a;
    int b;
};

inline IntPair turned(int a, int b, const TableTurn &angle) {
    return {wrapAdd(wrapMultiply(a, angle.cosine), wrapMultiply(b, angle.sine)) >> 15,
            wrapSubtract(wrapMultiply(b, angle.cosine), wrapMultiply(a, angle.sine)) >> 15};
}

/// Turns a pair about (centreA, centreB), as Z does.
inline void turnAbout(int &a, int &b, const TableTurn &angle, int centreA, int centreB) {
    const IntPair pair = turned(wrapSubtract(a, centreA), wrapSubtract(b, centreB), angle);
    a = wrapAdd(pair.a, centreA);
    b = wrapAdd(pair.b, centreB);
}

inline TableTurn reversed(TableTurn angle) {
    angle.sine = -angle.sine;
    return angle;
}

} // namespace qmur

#endif
