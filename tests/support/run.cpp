#include "run.h"

#include "cases.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string_view>

namespace proofs {

void registerTests();

} // namespace proofs

int test::run(int argc, char **argv) {
    testing::InitGoogleTest(&argc, argv);
    // Builds whose whole checksums others have computed run fewer cases of each function, unless all are asked for.
    if (const char *count = std::getenv("Q_MUR_TESTS_CASES"); count && !std::getenv("Q_MUR_TESTS_ALL_CASES"))
        limitCases(std::atoi(count));
    for (int i = 1; i < argc; ++i) {
        const std::string_view argument = argv[i];
        if (argument.starts_with("--case="))
            replayCase(std::atoi(argv[i] + 7));
        if (argument.starts_with("--cases="))
            limitCases(std::atoi(argv[i] + 8));
    }
    Init_qMur_GlobalData(nullptr, nullptr);
    proofs::registerTests();
    return RUN_ALL_TESTS();
}
