/// \file
/// Signed 32-bit arithmetic that wraps around, as the contract of every fixed-point format asks.
///
/// The detour through unsigned keeps the wrap-around out of the compiler's hands. Right shifts of signed values are
/// arithmetic and left shifts wrap by the language itself.
#ifndef Q_MUR_BASE_INTEGERS_H
#define Q_MUR_BASE_INTEGERS_H

#include "q_Mur/types.h"

namespace qmur {

constexpr int wrapAdd(int a, int b) {
    return static_cast<int>(static_cast<unsigned>(a) + static_cast<unsigned>(b));
}

constexpr int wrapSubtract(int a, int b) {
    return static_cast<int>(static_cast<unsigned>(a) - static_cast<unsigned>(b));
}

constexpr int wrapMultiply(int a, int b) {
    return static_cast<int>(static_cast<unsigned>(a) * static_cast<unsigned>(b));
}

/// The magnitude of a number. That of the least int does not fit: it wraps to the least int itself.
constexpr int magnitudeOf(int value) {
    return value < 0 ? wrapSubtract(0, value) : value;
}

/// Truncated toward zero. The least int over -1 wraps, where the processor would trap.
constexpr int quotient(int value, int divisor) {
    return divisor == -1 ? wrapSubtract(0, value) : value / divisor;
}

constexpr int quotient(int value, long long divisor) {
    return static_cast<int>(value / divisor);
}

constexpr q_ulong quotient(q_ulong value, q_ulong divisor) {
    return value / divisor;
}

/// A divisor, 1 standing in for 0.
template <class Integer>
constexpr Integer oneIfZero(Integer divisor) {
    return divisor == 0 ? 1 : divisor;
}

constexpr int smaller(int a, int b) {
    return b < a ? b : a;
}

constexpr int larger(int a, int b) {
    return a < b ? b : a;
}

} // namespace qmur

#endif
