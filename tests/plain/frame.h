/// \file
/// Random numbers and the block manager's counts once more.
#ifndef Q_MUR_TESTS_PLAIN_FRAME_H
#define Q_MUR_TESTS_PLAIN_FRAME_H

#include "real.h"
#include "words.h"

#include <bit>
#include <cstdlib>

namespace plain {

// Records without blocks, of which only the counts are left

inline void BeginMemoryManager(_TRANSFERDATA *data) {
    data->memoryUsedFlag = 0;
}

inline void NoticeMemUsed(_TRANSFERDATA *data) {
    data->memoryUsedFlag = 1;
}

inline void EndMemoryManager(_TRANSFERDATA *data) {
    if (data->memoryUsedFlag == 0)
        data->blockCount = 0;
}

inline void FreeMemoryBlocks(_TRANSFERDATA *data) {
    if (data)
        data->blockCount = 0;
}

inline constexpr auto DeleteMemoryBlocks = FreeMemoryBlocks;

// Random numbers, from the platform's generator

inline Number draw() {
    return std::rand() % 32768;
}

/// The sum of so many draws in 32 bits.
inline Number sumOfDraws(int count) {
    Number sum = 0;
    for (int i = 0; i < count; ++i)
        sum += draw();
    return signed32(sum);
}

inline int randInt(int low, int high) {
    const struct {
        Number above;
        Number mask;
    } ladder[] = {{8192, 32767}, {4096, 16383}, {2048, 8191}, {1024, 2047}, {512, 1023}, {256, 511}, {128, 255},
                  {64, 127},     {32, 63},      {16, 31},     {8, 15},      {4, 7},      {2, 3},     {0, 1}};
    const Number span = unsigned32(Number{high} - low);
    const auto *rung = ladder;
    while (span <= rung->above)
        ++rung;
    Number drawn = span;
    while (drawn >= span)
        drawn = draw() & rung->mask;
    return int32(low + drawn);
}

inline float randFloat(float low, float high) {
    const auto k = std::bit_cast<float>(0x38000100);
    return wide([&] { return static_cast<float>(low + draw() * (Real{high} - low) * k); });
}

inline double randDouble(double low, double high) {
    return wide([&] { return static_cast<double>(low + draw() * (Real{high} - low) * 3.051850947599719e-05); });
}

inline int randIntGauss(int low, int high, int count) {
    const Number product = signed32(sumOfDraws(count) * signed32(Number{high} - low));
    return int32(product / signed32(Number{count} * 32767) + low);
}

inline float randFloatGauss(float low, float high, int count) {
    return wide(
        [&] { return static_cast<float>(low + sumOfDraws(count) * (Real{high} - low) / (Real{32767} * count)); });
}

inline double randDoubleGauss(double low, double high, int count) {
    return wide(
        [&] { return static_cast<double>(low + sumOfDraws(count) * (Real{high} - low) / (Real{32767} * count)); });
}

inline q_ulong randColor() {
    const Number red = draw() % 256;
    const Number green = draw() % 256;
    return pixelOf(red, green, draw() % 256);
}

/// A channel from an entry of a table, which is rounded to a double before it is truncated; toward zero both times.
template <class Function>
Number rainbowChannel(Function function, Number index) {
    const int entry = wide([&] {
        const Real angle = static_cast<Real>(3.141592654 / 8192) * (2 * index);
        return truncated(static_cast<double>(function(angle) * 32768));
    });
    return entry / 256 + 128;
}

inline q_ulong randRainbowColor() {
    const Number index = draw() / 4;
    const Number red = rainbowChannel(cosine, index);
    const Number green = rainbowChannel(sine, index);
    const Number blue = rainbowChannel(cosine, (index + 4096) % 8192);
    return word(red * 65536 | green * 256 | blue);
}

} // namespace plain

#endif
