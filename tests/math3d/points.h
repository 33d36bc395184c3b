/// \file
/// Points as tests write and compare them.
#ifndef Q_MUR_TESTS_MATH3D_POINTS_H
#define Q_MUR_TESTS_MATH3D_POINTS_H

#include <q_Mur.h>

#include <array>

namespace test {

using Ints = std::array<int, 3>;
using Floats = std::array<float, 3>;

inline Ints xyz(const _POINT3D &p) {
    return {static_cast<int>(p.x), static_cast<int>(p.y), static_cast<int>(p.z)};
}
inline Floats xyz(const _POINT3DFLOAT &p) {
    return {p.x, p.y, p.z};
}
inline Floats xyz(const _I3DVECTOR &p) {
    return {p.x, p.y, p.z};
}

} // namespace test

#endif
