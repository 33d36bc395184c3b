/// \file
/// Signed 32-bit arithmetic that wraps around, as the contract of every fixed-point format asks.
///
/// The detour through unsigned keeps the wrap-around out of the compiler's hands. Right shifts of signed values are
/// arithmetic and left shifts wrap by the language itself.
#ifndef Q_MUR_BASE_INTEGERS_H
#define Q_MUR_BASE_INTEGERS_H

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

constexpr int smaller(int a, int b) {
    return b < a ? b : a;
}

constexpr int larger(int a, int b) {
    return a < b ? b : a;
}

} // namespace qmur

#endif
