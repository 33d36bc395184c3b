#include <q_Mur.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define Q_MUR_TESTS_ADDRESS_SANITIZER 1
#endif
#endif
#if defined(__SANITIZE_ADDRESS__)
#define Q_MUR_TESTS_ADDRESS_SANITIZER 1
#endif

#if defined(Q_MUR_TESTS_ADDRESS_SANITIZER)
// Requests that no heap can meet return null here too, as they do elsewhere.
extern "C" const char *__asan_default_options() {
    return "allocator_may_return_null=1";
}
#endif

namespace {

constexpr q_ulong hostPattern = 0xABCD1234;

/// Sizes that no heap has.
constexpr int impossibleSizes[] = {-4, -5, -1000, std::numeric_limits<int>::min(), std::numeric_limits<int>::min() + 1};

class BlockManager : public testing::Test {
protected:
    BlockManager() {
        std::fill(std::begin(data.hostHead), std::end(data.hostHead), hostPattern);
        data.memoryUsedFlag = -7;
        data.blockCount = -7;
        data.frameGeometry = &geometry;
        data.limits3D = &limits;
    }

    ~BlockManager() override {
        DeleteMemoryBlocks(&data);
        EXPECT_EQ(std::count(std::begin(data.hostHead), std::end(data.hostHead), hostPattern), 47);
        EXPECT_EQ(data.frameGeometry, &geometry);
        EXPECT_EQ(data.limits3D, &limits);
    }

    void startEmpty() { DeleteMemoryBlocks(&data); }

    int filledSlots() const {
        return 16 - static_cast<int>(std::count(std::begin(data.blocks), std::end(data.blocks), nullptr));
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

TEST_F(BlockManager, a_plain_block_is_as_long_as_asked_and_starts_at_its_start) {
    startEmpty();
    void *memory = FindNotUsedMemory(&data, 0, 1000);
    ASSERT_NE(memory, nullptr);
    const MemoryBlock &block = *data.blocks[0];
    EXPECT_EQ(block.start, memory);
    EXPECT_EQ(block.work, memory);
    EXPECT_EQ(block.size, 1000u);
    EXPECT_EQ(block.reserved, 0u);
    EXPECT_EQ(data.blockCount, 1);
    std::memset(memory, 0xFF, 1000);
}

TEST_F(BlockManager, the_three_codes_ask_for_planes_of_the_hosts_frame) {
    startEmpty();
    const struct {
        int code;
        q_ulong size;
        int origin;
    } planes[] = {{-1, 2560, 400}, {-2, 1280, 200}, {-3, 640, 100}};
    for (int slot = 0; slot < 3; ++slot) {
        const auto &plane = planes[slot];
        auto *memory = static_cast<char *>(FindNotUsedMemory(&data, slot, plane.code));
        ASSERT_NE(memory, nullptr);
        const MemoryBlock &block = *data.blocks[slot];
        EXPECT_EQ(block.size, plane.size);
        EXPECT_EQ(block.work, memory);
        EXPECT_EQ(memory - static_cast<char *>(block.start), plane.origin);
        std::memset(block.start, 0xFF, plane.size);
    }
    EXPECT_EQ(data.blockCount, 3);
}

TEST_F(BlockManager, a_frame_whose_first_pixel_lies_before_its_plane_keeps_its_sign) {
    startEmpty();
    geometry.originElement = -3;
    for (int code = -1; code >= -3; --code) {
        void *memory = FindNotUsedMemory(&data, 0, code);
        const auto start = reinterpret_cast<std::uintptr_t>(data.blocks[0]->start);
        const std::uintptr_t elementSize = code == -1 ? 4 : code == -2 ? 2 : 1;
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(memory), start - 3 * elementSize) << code;
    }
}

TEST_F(BlockManager, a_plane_of_negative_length_cannot_be_had) {
    startEmpty();
    geometry.planeElements = -3;
    for (int code = -1; code >= -3; --code) {
        EXPECT_EQ(FindNotUsedMemory(&data, 0, code), nullptr) << code;
        EXPECT_EQ(filledSlots(), 0);
    }
}

TEST_F(BlockManager, a_block_of_no_bytes_is_a_block) {
    startEmpty();
    EXPECT_NE(FindNotUsedMemory(&data, 0, 0), nullptr);
    EXPECT_EQ(data.blocks[0]->size, 0u);
    ClearMemory(&data, 0);
}

TEST_F(BlockManager, slot_0_starts_a_new_set) {
    startEmpty();
    FindNotUsedMemory(&data, 0, 100);
    FindNotUsedMemory(&data, 1, 100);
    FindNotUsedMemory(&data, 2, 100);
    EXPECT_EQ(data.blockCount, 3);
    FindNotUsedMemory(&data, 0, 200);
    EXPECT_EQ(data.blockCount, 1);
    EXPECT_EQ(filledSlots(), 1);
    FindNotUsedMemory(&data, 0, 300);
    EXPECT_EQ(data.blockCount, 1);
    EXPECT_EQ(filledSlots(), 1);
    EXPECT_EQ(data.blocks[0]->size, 300u);
}

TEST_F(BlockManager, a_failed_allocation_drops_the_whole_set) {
    for (const int size : impossibleSizes) {
        startEmpty();
        for (int slot = 0; slot < 3; ++slot)
            ASSERT_NE(FindNotUsedMemory(&data, slot, 100), nullptr);
        EXPECT_EQ(FindNotUsedMemory(&data, 3, size), nullptr) << size;
        EXPECT_EQ(filledSlots(), 0) << size;
        EXPECT_EQ(data.blockCount, 0) << size;
        EXPECT_EQ(FindNotUsedMemory(&data, 0, size), nullptr) << size;
        EXPECT_EQ(filledSlots(), 0) << size;
        EXPECT_EQ(data.blockCount, 0) << size;
    }
}

TEST_F(BlockManager, a_block_in_another_slot_than_0_is_overwritten_and_lost_but_stays_allocated) {
    startEmpty();
    FindNotUsedMemory(&data, 0, 100);
    auto *kept = static_cast<unsigned char *>(FindNotUsedMemory(&data, 1, 100));
    std::memset(kept, 0x5A, 100);
    MemoryBlock *lost = data.blocks[1];
    EXPECT_NE(FindNotUsedMemory(&data, 1, 100), kept);
    EXPECT_NE(data.blocks[1], lost);
    EXPECT_EQ(data.blockCount, 3);
    EXPECT_EQ(lost->start, kept);
    EXPECT_EQ(std::count(kept, kept + 100, 0x5A), 100);
    freeLost(lost);
}

TEST_F(BlockManager, clearing_zeroes_a_plane_from_its_start_to_its_end) {
    startEmpty();
    FindNotUsedMemory(&data, 0, 100);
    FindNotUsedMemory(&data, 1, -2);
    const MemoryBlock before = *data.blocks[1];
    auto *start = static_cast<unsigned char *>(before.start);
    auto *other = static_cast<unsigned char *>(data.blocks[0]->start);
    EXPECT_EQ(static_cast<unsigned char *>(before.work), start + 200);
    std::memset(start, 0xFF, before.size);
    std::memset(other, 0xFF, 100);
    ClearMemory(&data, 1);
    EXPECT_EQ(std::count(start, start + before.size, 0), 1280);
    EXPECT_EQ(std::count(other, other + 100, 0xFF), 100);
    EXPECT_EQ(std::memcmp(data.blocks[1], &before, sizeof before), 0);
    EXPECT_EQ(data.blockCount, 2);
}

TEST_F(BlockManager, a_frame_with_a_notice_keeps_its_blocks_and_one_without_drops_them) {
    startEmpty();
    FindNotUsedMemory(&data, 0, 100);
    FindNotUsedMemory(&data, 1, 100);
    BeginMemoryManager(&data);
    EXPECT_EQ(data.memoryUsedFlag, 0);
    NoticeMemUsed(&data);
    EXPECT_EQ(data.memoryUsedFlag, 1);
    EndMemoryManager(&data);
    EXPECT_EQ(filledSlots(), 2);
    EXPECT_EQ(data.blockCount, 2);
    EXPECT_EQ(data.memoryUsedFlag, 1);
    BeginMemoryManager(&data);
    EXPECT_EQ(filledSlots(), 2);
    EndMemoryManager(&data);
    EXPECT_EQ(filledSlots(), 0);
    EXPECT_EQ(data.blockCount, 0);
}

TEST_F(BlockManager, any_flag_but_0_keeps_the_blocks) {
    startEmpty();
    FindNotUsedMemory(&data, 0, 100);
    data.memoryUsedFlag = -1;
    EndMemoryManager(&data);
    EXPECT_EQ(filledSlots(), 1);
}

TEST_F(BlockManager, deleting_an_empty_table_sets_the_count_to_0) {
    EXPECT_EQ(data.blockCount, -7);
    DeleteMemoryBlocks(&data);
    EXPECT_EQ(data.blockCount, 0);
    EXPECT_EQ(data.memoryUsedFlag, -7);
}

TEST_F(BlockManager, both_names_delete_all_blocks) {
    for (const auto deleteAll : {DeleteMemoryBlocks, FreeMemoryBlocks}) {
        startEmpty();
        for (int slot = 0; slot < 15; ++slot)
            ASSERT_NE(FindNotUsedMemory(&data, slot, 10 + slot), nullptr);
        EXPECT_EQ(data.blockCount, 15);
        deleteAll(&data);
        EXPECT_EQ(filledSlots(), 0);
        EXPECT_EQ(data.blockCount, 0);
    }
}

TEST_F(BlockManager, blocks_behind_a_gap_stay) {
    startEmpty();
    FindNotUsedMemory(&data, 0, 100);
    FindNotUsedMemory(&data, 1, 100);
    auto *memory = static_cast<unsigned char *>(FindNotUsedMemory(&data, 3, 100));
    std::memset(memory, 0x5A, 100);
    DeleteMemoryBlocks(&data);
    EXPECT_EQ(filledSlots(), 1);
    EXPECT_EQ(data.blockCount, 0);
    ASSERT_NE(data.blocks[3], nullptr);
    EXPECT_EQ(data.blocks[3]->work, memory);
    EXPECT_EQ(std::count(memory, memory + 100, 0x5A), 100);
    freeLost(data.blocks[3]);
    data.blocks[3] = nullptr;
}

TEST_F(BlockManager, a_full_table_does_not_lead_beyond_its_end) {
    startEmpty();
    for (int slot = 0; slot < 16; ++slot)
        ASSERT_NE(FindNotUsedMemory(&data, slot, 10), nullptr);
    DeleteMemoryBlocks(&data);
    EXPECT_EQ(filledSlots(), 0);
}

TEST_F(BlockManager, a_null_record_has_no_blocks_to_delete) {
    DeleteMemoryBlocks(nullptr);
    FreeMemoryBlocks(nullptr);
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

/// Fills the heap's free memory of a size, so that what is not zeroed shows.
void dirtyHeap(_TRANSFERDATA *data, int size) {
    for (int slot = 0; slot < 15; ++slot)
        std::memset(FindNotUsedMemory(data, slot, size), 0xEE, static_cast<std::size_t>(size));
    DeleteMemoryBlocks(data);
}

TEST_F(BlockManager, private_blocks_of_the_region_fills_are_zeroed) {
    startEmpty();
    dirtyHeap(&data, static_cast<int>(sizeof(_PRIVATE_QMGP_DATA)));
    for (int slot = 0; slot < 5; ++slot) {
        _PRIVATE_QMGP_DATA *block = GetPrivate_QMGP_Data(&data, slot);
        ASSERT_NE(block, nullptr);
        EXPECT_EQ(data.blocks[slot]->start, block);
        EXPECT_EQ(data.blocks[slot]->work, block);
        EXPECT_EQ(data.blocks[slot]->size, sizeof(_PRIVATE_QMGP_DATA));
        EXPECT_EQ(block->plane, nullptr);
        EXPECT_EQ(block->planeRect, nullptr);
        EXPECT_EQ(block->destSurface, nullptr);
        EXPECT_EQ(block->testSurface, nullptr);
        EXPECT_EQ(block->planePitch, 0);
        EXPECT_EQ(block->destPitch, 0);
        EXPECT_EQ(block->testPitch, 0);
    }
    EXPECT_EQ(data.blockCount, 5);
}

TEST_F(BlockManager, private_blocks_of_the_cross_blur_start_with_phase_0) {
    startEmpty();
    dirtyHeap(&data, static_cast<int>(sizeof(_PRIVATE_LUT_DATA)));
    for (int slot = 0; slot < 5; ++slot) {
        _PRIVATE_LUT_DATA *block = GetPrivate_LUT_Data(&data, slot);
        ASSERT_NE(block, nullptr);
        EXPECT_EQ(data.blocks[slot]->size, 4u);
        EXPECT_EQ(data.blocks[slot]->work, block);
        EXPECT_EQ(block->phase, 0);
    }
    GetPrivate_LUT_Data(&data, 0);
    EXPECT_EQ(filledSlots(), 1);
    EXPECT_EQ(data.blockCount, 1);
}

} // namespace
