/// \file
/// The control word of the x87 unit, with which hosts differ: programs of other compilers and threads of Windows run
/// with 53 bits of precision, and some graphics drivers leave 24 behind.
#ifndef Q_MUR_TESTS_PRECISION_H
#define Q_MUR_TESTS_PRECISION_H

#if defined(__GNUC__) && (defined(__i386__) || defined(__x86_64__))
#define Q_MUR_TESTS_X87 1
#else
#define Q_MUR_TESTS_X87 0
#endif

namespace test {

#if Q_MUR_TESTS_X87

constexpr unsigned short precision24Bits = 0x007F;
constexpr unsigned short precision53Bits = 0x027F;
constexpr unsigned short precision64Bits = 0x037F;

/// Sets the control word for the life of the object.
class X87ControlWord {
public:
    explicit X87ControlWord(unsigned short word) : before(current()) { set(word); }
    ~X87ControlWord() { set(before); }
    X87ControlWord(const X87ControlWord &) = delete;
    X87ControlWord &operator=(const X87ControlWord &) = delete;

    static unsigned short current() {
        unsigned short word;
        asm volatile("fnstcw %0" : "=m"(word));
        return word;
    }

private:
    static void set(unsigned short word) { asm volatile("fldcw %0" : : "m"(word) : "memory"); }

    unsigned short before;
};

/// While it lives, the unit rounds to 53 bits.
struct ReducedPrecision : X87ControlWord {
    ReducedPrecision() : X87ControlWord(precision53Bits) {}
};

#else

struct [[maybe_unused]] ReducedPrecision {};

#endif

} // namespace test

#endif
