#include "cases.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string_view>

int main(int argc, char **argv) {
    testing::InitGoogleTest(&argc, argv);
    for (int i = 1; i < argc; ++i) {
        const std::string_view argument = argv[i];
        if (argument.starts_with("--case="))
            test::replayCase(std::atoi(argv[i] + 7));
    }
    Init_qMur_GlobalData(nullptr, nullptr);
    return RUN_ALL_TESTS();
}
