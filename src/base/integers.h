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

/// Truncates toward zero. The least number over -1 wraps, where the processor would trap.
constexpr int wrapDivide(int a, int b) {
    return b == -1 ? wrapSubtract(0, a) : a / b;
}

constexpr int wrapDivide(int a, long long b) {
    return static_cast<int>(a / b);
}

constexpr q_ulong wrapDivide(q_ulong a, q_ulong b) {
    return a / b;
}

/// The next number; after the largest, the largest.
constexpr int nextOrLargest(int value) {
    return value < wrapAdd(value, 1) ? wrapAdd(value, 1) : value;
}

/// The magnitude of a number. That of the least int does not fit: it wraps to the least int itself.
constexpr int magnitudeOf(int value) {
    return value < 0 ? wrapSubtract(0, value) : value;
}

/// A divisor, 1 standing in for 0. A sum: a branch would often be guessed wrong where edges meet.
template <class Integer>
constexpr Integer oneIfZero(Integer divisor) {
    return divisor + static_cast<Integer>(divisor == 0);
}

constexpr int smaller(int a, int b) {
    return b < a ? b : a;
}

constexpr int larger(int a, int b) {
    return a < b ? b : a;
}

} // namespace qmur

#endif
