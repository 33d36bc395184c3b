#include "frame/at_load.h"
#include "support/cases.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <string_view>

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
    for (int i = 1; i < argc; ++i) {
        const std::string_view argument = argv[i];
        if (argument.starts_with("--case="))
            test::replayCase(std::atoi(argv[i] + 7));
    }
    return RUN_ALL_TESTS();
}
