/// \file
/// Random numbers that depend on a seed alone. The library's own draw from the runtime's shared generator, so that what
/// one thread gets would depend on what the others draw.
#ifndef QMUR_SHOW_RANDOM_H
#define QMUR_SHOW_RANDOM_H

#include <cstdint>

namespace show {

/// SplitMix64.
class Random {
public:
    explicit Random(std::uint64_t seed) : state(seed) {}

    std::uint64_t next() {
        state += 0x9E3779B97F4A7C15;
        std::uint64_t mixed = state;
        mixed = (mixed ^ (mixed >> 30)) * 0xBF58476D1CE4E5B9;
        mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EB;
        return mixed ^ (mixed >> 31);
    }

    /// From 0 up to, not including, 1.
    double unit() { return static_cast<double>(next() >> 11) / 9007199254740992.0; }

    double between(double low, double high) { return low + (high - low) * unit(); }

    /// The same, on either side of 0.
    double onEitherSide(double low, double high) {
        const double size = between(low, high);
        return below(2) == 0 ? -size : size;
    }

    /// From 0 up to, not including, `count`.
    int below(int count) { return static_cast<int>(unit() * count); }

private:
    std::uint64_t state;
};

/// The seed of the `index`-th thing within what `seed` governs.
inline std::uint64_t seedOf(std::uint64_t seed, int index) {
    Random random(seed + 0x632BE59BD9B4E019 * static_cast<std::uint64_t>(index + 1));
    return random.next();
}

} // namespace show

#endif
