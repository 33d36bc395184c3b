#include "frame/at_load.h"
#include "support/cases.h"
#include "support/precision.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <vector>

#if !defined(__wasm__)
#include <thread>
#endif

namespace {

struct Tables {
    std::vector<int> sines{iSin, iSin + 8192};
    std::vector<int> cosines{iCos, iCos + 8192};
    std::vector<int> roots{iSqrt, iSqrt + 8192};

    bool operator==(const Tables &) const = default;
};

TEST(Tables, are_zero_until_the_host_fills_them) {
    EXPECT_TRUE(test::atLoad.sinesAreZero);
    EXPECT_TRUE(test::atLoad.cosinesAreZero);
    EXPECT_TRUE(test::atLoad.rootsAreZero);
}

TEST(Tables, hold_these_exact_entries_truncated_toward_zero_on_both_sides) {
    // The index, and the sine, cosine and root.
    const std::array<int, 4> entries[] = {
        {0, 0, 32768, 0},         {1, 25, 32767, 1024},     {1024, 23170, 23170, 32768}, {2048, 32768, 0, 46340},
        {4096, 0, -32768, 65536}, {6144, -32768, 0, 80264}, {8191, -25, 32767, 92676}};
    for (const auto &[i, sine, cosine, root] : entries)
        EXPECT_EQ((std::array{i, iSin[i], iCos[i], iSqrt[i]}), (std::array{i, sine, cosine, root}));
    EXPECT_EQ(iSqrt[2], 1448);
    // One step before the half circle the sine is +25.1, one step behind it -25.1.
    EXPECT_EQ(iSin[4095], 25);
    EXPECT_EQ(iSin[4097], -25);
    EXPECT_EQ(iCos[2047], 25);
    EXPECT_EQ(iCos[2049], -25);
    EXPECT_EQ(std::count(iSin, iSin + 8192, 32768), 1);
    EXPECT_EQ(std::count(iCos, iCos + 8192, -32768), 1);
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

/// Whether a filling of empty tables gives what they hold, and so does another one on top of it.
template <class Fill>
void expectSameTables(Fill fill) {
    const Tables before;
    for (int *const table : {iSin, iCos, iSqrt})
        std::fill(table, table + 8192, 0);
    fill();
    EXPECT_EQ(Tables(), before);
    fill();
    EXPECT_EQ(Tables(), before);
}

TEST(PrepareSinTable, fills_the_same_again_and_in_a_thread_with_its_own_floating_environment) {
    expectSameTables(PrepareSinTable);
#if !defined(__wasm__) // where a program is one thread
    expectSameTables([] { std::thread(PrepareSinTable).join(); });
#endif
}

TEST(Init_qMur_GlobalData, fills_the_tables_whatever_its_arguments) {
    expectSameTables([] { Init_qMur_GlobalData(nullptr, nullptr); });
    char path[] = "somewhere";
    expectSameTables([&path] { Init_qMur_GlobalData(reinterpret_cast<HINSTANCE__ *>(path), path); });
    EXPECT_STREQ(path, "somewhere");
}

#if Q_MUR_TESTS_X87
TEST(PrepareSinTable, fills_the_same_at_any_precision_of_the_host_and_leaves_the_unit_as_it_was) {
    for (const unsigned short word : {test::precision24Bits, test::precision53Bits, test::precision64Bits})
        expectSameTables([word] {
            const test::X87ControlWord host(word);
            PrepareSinTable();
            EXPECT_EQ(test::X87ControlWord::current(), word);
        });
}
#endif

} // namespace
