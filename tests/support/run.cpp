#include "run.h"

#include "proofs/proofs.h"

#include <gtest/gtest.h>

int test::run(int argc, char **argv) {
    testing::InitGoogleTest(&argc, argv);
    if (!takesArguments(argc, argv))
        return 2;
    Init_qMur_GlobalData(nullptr, nullptr);
    proofs::registerTests();
    return RUN_ALL_TESTS();
}
