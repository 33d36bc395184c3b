#include "frame/at_load.h"
#include "support/run.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace test {

AtLoad atLoad;

} // namespace test

int main(int argc, char **argv) {
    const auto isZero = [](int entry) { return entry == 0; };
    test::atLoad.sinesAreZero = std::all_of(iSin, iSin + 8192, isZero);
    test::atLoad.cosinesAreZero = std::all_of(iCos, iCos + 8192, isZero);
    test::atLoad.rootsAreZero = std::all_of(iSqrt, iSqrt + 8192, isZero);
    test::atLoad.set = qmur::instructionSetInUse();
    test::atLoad.rainbowColour = randRainbowColor();
    for (int &result : test::atLoad.gaussRand)
        result = GaussRand();
    Init_qMur_GlobalData(nullptr, nullptr);

    testing::InitGoogleTest(&argc, argv);
    return test::takesArguments(argc, argv) ? RUN_ALL_TESTS() : 2;
}
