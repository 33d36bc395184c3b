#include "base/integers.h"
#include "base/pixel.h"
#include "base/wide.h"
#include "q_Mur/frame.h"

#include <cstdlib>

namespace {

constexpr int largestDraw = 32767;
constexpr float perDrawFloat = 3.0518509e-05F;
constexpr double perDrawDouble = 3.051850947599719e-05;

/// A 15-bit number, also where the runtime's generator is wider.
int draw() {
    return std::rand() & largestDraw;
}

int sumOfDraws(int count) {
    int sum = 0;
    for (int i = 0; i < count; ++i)
        sum = qmur::wrapAdd(sum, draw());
    return sum;
}

/// The mask under which draws are rejected until one lies within the span.
/// There is no rung for 4095: wide spans take a mask wider than they need.
int rejectionMask(unsigned span) {
    struct Rung {
        unsigned above;
        int mask;
    };
    constexpr Rung ladder[] = {{8192, 32767}, {4096, 16383}, {2048, 8191}, {1024, 2047}, {512, 1023},
                               {256, 511},    {128, 255},    {64, 127},    {32, 63},     {16, 31},
                               {8, 15},       {4, 7},        {2, 3}};
    for (const Rung &rung : ladder)
        if (span > rung.above)
            return rung.mask;
    return 1;
}

template <class Real>
Real uniform(Real low, Real high, Real perDraw) {
    const int drawn = draw();
    return qmur::atFullWidth([=] {
        const qmur::Wide span = static_cast<qmur::Wide>(high) - low;
        return static_cast<Real>(low + drawn * span * perDraw);
    });
}

template <class Real>
Real bell(Real low, Real high, int count) {
    const int sum = sumOfDraws(count);
    return qmur::atFullWidth([=] {
        const qmur::Wide span = static_cast<qmur::Wide>(high) - low;
        // Only the sum wraps.
        const qmur::Wide divisor = static_cast<qmur::Wide>(count) * largestDraw;
        return static_cast<Real>(low + sum * span / divisor);
    });
}

} // namespace

int GaussRand() {
    static constexpr int table[16] = {0, -2, 0, 0, 0, 1, 0, -1, 0, 0, 0, 2, 0, 0, 0, 0};
    static unsigned counter = 0;
    return table[counter++ & 15];
}

int randInt(int low, int high) {
    const auto span = static_cast<unsigned>(high) - static_cast<unsigned>(low);
    const int mask = rejectionMask(span);
    int drawn;
    do
        drawn = draw() & mask;
    while (static_cast<unsigned>(drawn) >= span);
    return qmur::wrapAdd(drawn, low);
}

float randFloat(float low, float high) {
    return uniform(low, high, perDrawFloat);
}

double randDouble(double low, double high) {
    return uniform(low, high, perDrawDouble);
}

int randIntGauss(int low, int high, int count) {
    // Meant: a count of 0 faults. Volatile, or the compiler concludes that a sum without draws needs no division.
    const volatile int scaled = qmur::wrapMultiply(sumOfDraws(count), qmur::wrapSubtract(high, low));
    return qmur::wrapAdd(qmur::wrapDivide(scaled, qmur::wrapMultiply(count, largestDraw)), low);
}

float randFloatGauss(float low, float high, int count) {
    return bell(low, high, count);
}

double randDoubleGauss(double low, double high, int count) {
    return bell(low, high, count);
}

q_ulong randColor() {
    const auto channel = [] { return static_cast<q_ulong>(draw() & 0xFF); };
    const q_ulong red = channel();
    const q_ulong green = channel();
    const q_ulong blue = channel();
    return qmur::pixelOf(red, green, blue);
}

q_ulong randRainbowColor() {
    const int angle = draw() * 2;
    const int index = (angle & 0xFFFF) >> 3;
    const int opposite = ((angle + 32768) & 0xFFFF) >> 3;
    // A peak of 256 is not clamped: it carries into the channel above.
    const auto channel = [](int entry) { return static_cast<q_ulong>(entry / 256 + 128); };
    return qmur::pixelOf(channel(iCos[index]), channel(iSin[index]), channel(iCos[opposite]));
}
