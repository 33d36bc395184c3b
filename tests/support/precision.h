/// \file
/// The floating unit as some hosts set it.
#ifndef Q_MUR_TESTS_PRECISION_H
#define Q_MUR_TESTS_PRECISION_H

namespace test {

/// While it lives, the x87 unit rounds to 53 bits, as it does in a new thread of a Windows host.
class ReducedPrecision {
public:
#if defined(__GNUC__) && (defined(__i386__) || defined(__x86_64__))
    ReducedPrecision() {
        const unsigned short reduced = 0x027F;
        asm volatile("fnstcw %0\n\tfldcw %1" : "=&m"(before) : "m"(reduced) : "memory");
    }
    ~ReducedPrecision() {
        asm volatile("fldcw %0" : : "m"(before) : "memory");
    }

    /// The control word now in force.
    static unsigned short controlWord() {
        unsigned short word;
        asm volatile("fnstcw %0" : "=m"(word));
        return word;
    }

private:
    unsigned short before;
#else
    ReducedPrecision() = default;
    static unsigned short controlWord() {
        return 0x027F;
    }
#endif

public:
    ReducedPrecision(const ReducedPrecision &) = delete;
    ReducedPrecision &operator=(const ReducedPrecision &) = delete;
};

} // namespace test

#endif
