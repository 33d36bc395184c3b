/// \file
/// All tests on one set of instructions: `--set sse2`, `--set v3` or `--set v4` stands before their other arguments.
#include "support/chosen_set.h"
#include "support/run.h"

#include <cstdio>
#include <string_view>

int main(int argc, char **argv) {
    if (argc < 3 || std::string_view(argv[1]) != "--set") {
        std::fputs("usage: q_Mur_set_tests --set sse2|v3|v4 [--cases=N] [--gtest_...]\n", stderr);
        return 2;
    }
    constexpr int skipped = 77;
    if (const std::string reason = test::runOnSet(argv[2]); !reason.empty()) {
        std::printf("%s\n", reason.c_str());
        return reason.starts_with("this ") ? skipped : 1;
    }
    std::printf("the library runs on %s\n", test::setInUse().c_str());
    argv[2] = argv[0];
    return test::run(argc - 2, argv + 2);
}
