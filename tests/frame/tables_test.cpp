#include "frame/at_load.h"
#include "support/precision.h"
#include "support/cases.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <thread>
#include <vector>

namespace {

struct Tables {
    std::vector<int> sines{iSin, iSin + 8192};
    std::vector<int> cosines{iCos, iCos + 8192};
    std::vector<int> roots{iSqrt, iSqrt + 8192};

    bool operator==(const Tables &) const = default;
};

void clearTables() {
    std::fill(iSin, iSin + 8192, 0);
    std::fill(iCos, iCos + 8192, 0);
    std::fill(iSqrt, iSqrt + 8192, 0);
}

TEST(Tables, are_zero_until_the_host_fills_them) {
    EXPECT_TRUE(test::atLoad.sinesAreZero);
    EXPECT_TRUE(test::atLoad.cosinesAreZero);
    EXPECT_TRUE(test::atLoad.rootsAreZero);
}

TEST(Tables, hold_these_exact_entries) {
    const struct {
        int index;
        int sine;
        int cosine;
        int root;
    } entries[] = {{0, 0, 32768, 0},         {1, 25, 32767, 1024},     {1024, 23170, 23170, 32768},
                   {2048, 32768, 0, 46340},  {4096, 0, -32768, 65536}, {6144, -32768, 0, 80264},
                   {8191, -25, 32767, 92676}};
    for (const auto &entry : entries) {
        EXPECT_EQ(iSin[entry.index], entry.sine) << entry.index;
        EXPECT_EQ(iCos[entry.index], entry.cosine) << entry.index;
        EXPECT_EQ(iSqrt[entry.index], entry.root) << entry.index;
    }
    EXPECT_EQ(iSqrt[2], 1448);
}

TEST(Tables, every_sine_and_cosine_is_the_truncated_function) {
    // The double whose bytes are 3F 39 21 FB 54 52 45 50: 3.141592654 over 8192.
    const auto step = std::bit_cast<double>(0x3F3921FB54524550u);
    EXPECT_EQ(step, 3.141592654 / 8192);
    const auto truncated = [](long double value) { return static_cast<int>(static_cast<double>(value * 32768)); };
    test::forEachCase(
        "PrepareSinTable",
        [=](test::Case &c) {
            const long double angle = 2 * c.number * static_cast<long double>(step);
            c.expectEqual(std::int64_t{iSin[c.number]}, truncated(std::sin(angle)));
            c.expectEqual(std::int64_t{iCos[c.number]}, truncated(std::cos(angle)));
        },
        8192);
}

TEST(Tables, every_root_is_the_largest_number_whose_square_is_not_above) {
    for (long long i = 0; i < 8192; ++i) {
        const long long root = iSqrt[i];
        ASSERT_LE(root * root, i << 20) << i;
        ASSERT_GT((root + 1) * (root + 1), i << 20) << i;
    }
}

TEST(Tables, entries_are_truncated_toward_zero_on_both_sides) {
    // One step before the half circle the sine is +25.1, one step behind it -25.1.
    EXPECT_EQ(iSin[4095], 25);
    EXPECT_EQ(iSin[4097], -25);
    EXPECT_EQ(iCos[2047], 25);
    EXPECT_EQ(iCos[2049], -25);
    EXPECT_EQ(*std::max_element(iSin, iSin + 8192), 32768);
    EXPECT_EQ(*std::min_element(iSin, iSin + 8192), -32768);
    EXPECT_EQ(std::count(iSin, iSin + 8192, 32768), 1);
    EXPECT_EQ(std::count(iCos, iCos + 8192, -32768), 1);
}

TEST(PrepareSinTable, filling_again_gives_the_same) {
    const Tables before;
    PrepareSinTable();
    EXPECT_EQ(Tables(), before);
    clearTables();
    PrepareSinTable();
    EXPECT_EQ(Tables(), before);
}

TEST(Init_qMur_GlobalData, fills_the_tables_with_null_arguments_and_again) {
    const Tables before;
    clearTables();
    Init_qMur_GlobalData(nullptr, nullptr);
    EXPECT_EQ(Tables(), before);
    char path[] = "somewhere";
    Init_qMur_GlobalData(reinterpret_cast<HINSTANCE__ *>(path), path);
    EXPECT_EQ(Tables(), before);
    EXPECT_STREQ(path, "somewhere");
}

TEST(PrepareSinTable, a_thread_with_its_own_floating_environment_fills_the_same) {
    const Tables before;
    clearTables();
    std::thread(PrepareSinTable).join();
    EXPECT_EQ(Tables(), before);
}

#if Q_MUR_TESTS_X87
TEST(PrepareSinTable, fills_the_same_at_any_precision_of_the_host_and_leaves_the_unit_as_it_was) {
    const Tables before;
    for (const unsigned short word : {test::precision24Bits, test::precision53Bits, test::precision64Bits}) {
        clearTables();
        {
            const test::X87ControlWord host(word);
            PrepareSinTable();
            EXPECT_EQ(test::X87ControlWord::current(), word);
        }
        EXPECT_EQ(Tables(), before) << word;
    }
}
#endif

} // namespace
