#include "support/numbers.h"
#include "support/sanitizer.h"

#include <q_Mur.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

#if defined(Q_MUR_TESTS_ADDRESS_SANITIZER)
// Requests that no heap can meet return null here too, as they do elsewhere.
extern "C" const char *__asan_default_options() {
    return "allocator_may_return_null=1";
}
#endif

namespace {

constexpr q_ulong hostPattern = 0xABCD1234;

/// Sizes that no heap has.
constexpr int impossibleSizes[] = {-4, -5, -1000, test::leastInt, test::leastInt + 1};

class BlockManager : public testing::Test {
protected:
    BlockManager() {
        std::fill(std::begin(data.hostHead), std::end(data.hostHead), hostPattern);
        data.frameGeometry = &geometry;
        data.limits3D = &limits;
    }

    ~BlockManager() override {
        DeleteMemoryBlocks(&data);
        EXPECT_EQ(std::count(std::begin(data.hostHead), std::end(data.hostHead), hostPattern), 47);
        EXPECT_EQ(data.frameGeometry, &geometry);
        EXPECT_EQ(data.limits3D, &limits);
    }

    unsigned char *allocate(int slot, int size) {
        return static_cast<unsigned char *>(FindNotUsedMemory(&data, slot, size));
    }
    void allocateSlots(int count) {
        for (int slot = 0; slot < count; ++slot)
            ASSERT_NE(allocate(slot, 100), nullptr);
    }

    void expectBlocks(int filledSlots, int count) const {
        EXPECT_EQ(16 - std::count(std::begin(data.blocks), std::end(data.blocks), nullptr), filledSlots);
        EXPECT_EQ(data.blockCount, count);
    }

    /// Frees a block that the record has lost.
    static void freeLost(MemoryBlock *block) {
        _TRANSFERDATA other{};
        other.blocks[0] = block;
        DeleteMemoryBlocks(&other);
    }

    TransferFrameGeometry geometry{{1, 2, 3}, 640, 100};
    TransferLimits3D limits{4, 5, 6, 7};
    _TRANSFERDATA data{};
};

TEST_F(BlockManager, a_block_is_as_long_as_asked_and_three_codes_ask_for_planes_of_the_hosts_frame) {
    // The size asked for, that of the block, and that of an element, if it is a plane.
    const std::array<int, 3> blocks[] = {{1000, 1000, 0}, {0, 0, 0}, {-1, 2560, 4}, {-2, 1280, 2}, {-3, 640, 1}};
    for (const int origin : {100, -3}) // a frame may begin before its plane
        for (const auto &[asked, size, elementSize] : blocks) {
            geometry.originElement = origin;
            unsigned char *memory = allocate(0, asked);
            ASSERT_NE(memory, nullptr);
            const MemoryBlock &block = *data.blocks[0];
            EXPECT_EQ(block.size, static_cast<q_ulong>(size));
            EXPECT_EQ(block.reserved, 0u);
            EXPECT_EQ(block.work, memory);
            EXPECT_EQ(static_cast<unsigned char *>(block.start) + origin * elementSize, memory);
            std::memset(block.start, 0xFF, static_cast<std::size_t>(size));
            expectBlocks(1, 1);
        }
    geometry.planeElements = -3;
    for (int code = -1; code >= -3; --code) {
        EXPECT_EQ(allocate(0, code), nullptr) << code;
        expectBlocks(0, 0);
    }
}

TEST_F(BlockManager, slot_0_starts_a_new_set_and_a_failed_allocation_drops_the_whole_set) {
    allocateSlots(3);
    expectBlocks(3, 3);
    for (const int size : {200, 300}) {
        allocate(0, size);
        expectBlocks(1, 1);
        EXPECT_EQ(data.blocks[0]->size, static_cast<q_ulong>(size));
    }
    for (const int size : impossibleSizes)
        for (const int slot : {3, 0}) {
            allocateSlots(3);
            EXPECT_EQ(allocate(slot, size), nullptr) << size;
            expectBlocks(0, 0);
        }
}

TEST_F(BlockManager, a_block_in_another_slot_than_0_is_overwritten_and_lost_but_stays_allocated) {
    allocateSlots(1);
    unsigned char *kept = allocate(1, 100);
    std::memset(kept, 0x5A, 100);
    MemoryBlock *lost = data.blocks[1];
    EXPECT_NE(allocate(1, 100), kept);
    EXPECT_NE(data.blocks[1], lost);
    EXPECT_EQ(data.blockCount, 3);
    EXPECT_EQ(lost->start, kept);
    EXPECT_EQ(std::count(kept, kept + 100, 0x5A), 100);
    freeLost(lost);
}

TEST_F(BlockManager, clearing_zeroes_a_plane_from_its_start_to_its_end) {
    unsigned char *other = allocate(0, 100);
    allocate(1, -2);
    const MemoryBlock before = *data.blocks[1];
    auto *start = static_cast<unsigned char *>(before.start);
    EXPECT_EQ(before.work, start + 200);
    std::memset(start, 0xFF, before.size);
    std::memset(other, 0xFF, 100);
    ClearMemory(&data, 1);
    EXPECT_EQ(std::count(start, start + before.size, 0), 1280);
    EXPECT_EQ(std::count(other, other + 100, 0xFF), 100);
    EXPECT_EQ(std::memcmp(data.blocks[1], &before, sizeof before), 0);
    expectBlocks(2, 2);
}

TEST_F(BlockManager, a_frame_with_a_notice_keeps_its_blocks_and_one_without_drops_them) {
    allocateSlots(2);
    BeginMemoryManager(&data);
    EXPECT_EQ(data.memoryUsedFlag, 0);
    NoticeMemUsed(&data);
    EXPECT_EQ(data.memoryUsedFlag, 1);
    EndMemoryManager(&data);
    expectBlocks(2, 2);
    EXPECT_EQ(data.memoryUsedFlag, 1);
    BeginMemoryManager(&data);
    expectBlocks(2, 2);
    EndMemoryManager(&data);
    expectBlocks(0, 0);
    // Any flag but 0 is a notice.
    allocateSlots(1);
    data.memoryUsedFlag = -1;
    EndMemoryManager(&data);
    expectBlocks(1, 1);
}

TEST_F(BlockManager, both_names_delete_all_blocks_even_of_a_full_table_and_none_of_an_empty_or_null_record) {
    for (const auto deleteAll : {DeleteMemoryBlocks, FreeMemoryBlocks})
        for (const int count : {15, 16}) {
            allocateSlots(count);
            expectBlocks(count, count);
            deleteAll(&data);
            expectBlocks(0, 0);
            deleteAll(nullptr);
        }
    data.blockCount = data.memoryUsedFlag = -7;
    DeleteMemoryBlocks(&data);
    EXPECT_EQ(data.blockCount, 0);
    EXPECT_EQ(data.memoryUsedFlag, -7);
}

TEST_F(BlockManager, blocks_behind_a_gap_stay) {
    allocateSlots(2);
    unsigned char *memory = allocate(3, 100);
    std::memset(memory, 0x5A, 100);
    DeleteMemoryBlocks(&data);
    expectBlocks(1, 0);
    ASSERT_NE(data.blocks[3], nullptr);
    EXPECT_EQ(data.blocks[3]->work, memory);
    EXPECT_EQ(std::count(memory, memory + 100, 0x5A), 100);
    freeLost(data.blocks[3]);
    data.blocks[3] = nullptr;
}

#if defined(GTEST_HAS_DEATH_TEST) && !defined(_WIN32) && !defined(Q_MUR_TESTS_ADDRESS_SANITIZER)
TEST(BlockManagerDeathTest, beginning_a_frame_without_a_record_faults) {
    EXPECT_DEATH(BeginMemoryManager(nullptr), "");
}

TEST(BlockManagerDeathTest, clearing_an_empty_slot_faults) {
    _TRANSFERDATA data{};
    EXPECT_DEATH(ClearMemory(&data, 0), "");
}
#endif

/// Whether private blocks are zeroed, in memory of the heap that was not.
template <class Block>
void expectZeroed(_TRANSFERDATA &data, Block *(*get)(_TRANSFERDATA *, int)) {
    constexpr auto size = static_cast<int>(sizeof(Block));
    for (int slot = 0; slot < 15; ++slot)
        std::memset(FindNotUsedMemory(&data, slot, size), 0xEE, sizeof(Block));
    DeleteMemoryBlocks(&data);
    const Block zero = {};
    for (int slot = 0; slot < 5; ++slot) {
        const Block *block = get(&data, slot);
        ASSERT_NE(block, nullptr);
        EXPECT_EQ(data.blocks[slot]->start, block);
        EXPECT_EQ(data.blocks[slot]->work, block);
        EXPECT_EQ(data.blocks[slot]->size, sizeof(Block));
        EXPECT_EQ(std::memcmp(block, &zero, sizeof(Block)), 0);
    }
    EXPECT_EQ(data.blockCount, 5);
    get(&data, 0);
    EXPECT_EQ(data.blockCount, 1);
}

TEST_F(BlockManager, private_blocks_of_region_fills_and_cross_blurs_are_zeroed) {
    expectZeroed(data, GetPrivate_QMGP_Data);
    expectZeroed(data, GetPrivate_LUT_Data);
}

} // namespace
