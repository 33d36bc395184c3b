#include "cases.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string_view>

namespace proofs {

void registerTests();

} // namespace proofs

int main(int argc, char **argv) {
    testing::InitGoogleTest(&argc, argv);
    for (int i = 1; i < argc; ++i) {
        const std::string_view argument = argv[i];
        if (argument.starts_with("--case="))
            test::replayCase(std::atoi(argv[i] + 7));
        if (argument.starts_with("--cases="))
            test::limitCases(std::atoi(argv[i] + 8));
    }
    Init_qMur_GlobalData(nullptr, nullptr);
    proofs::registerTests();
    return RUN_ALL_TESTS();
}
