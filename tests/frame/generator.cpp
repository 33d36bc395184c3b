#include "frame/generator.h"

#include <cstdlib>

#if defined(__GLIBC__)
#define Q_MUR_TESTS_NOTHROW noexcept
#else
#define Q_MUR_TESTS_NOTHROW
#endif

namespace {

std::uint32_t state = 1;
std::vector<int> script;
bool scripted = false;
int taken = 0;

} // namespace

namespace test {

void seedDraws(std::uint32_t seed) {
    state = seed;
    scripted = false;
    taken = 0;
}

void scriptDraws(std::vector<int> draws) {
    script = std::move(draws);
    scripted = true;
    taken = 0;
}

int drawsTaken() {
    return taken;
}

} // namespace test

extern "C" int rand() Q_MUR_TESTS_NOTHROW {
    const auto index = static_cast<std::size_t>(taken++);
    if (scripted)
        return index < script.size() ? script[index] : 0;
    state = state * 214013 + 2531011;
    return static_cast<int>(state >> 16 & 0x7FFF);
}
