#include "pipeline/host.h"

#include <gtest/gtest.h>

namespace {

using test::addressOf;

struct Host : test::HostRecord {
    Host() : HostRecord(1000, 50, 0, 300) {}
};

TEST(GetPrivate_QM3D_Data, null_record_gives_null) {
    EXPECT_EQ(GetPrivate_QM3D_Data(nullptr, 0), nullptr);
}

TEST(GetPrivate_QM3D_Data, one_block_holds_record_arrays_and_plane_in_order) {
    Host host;
    const _PRIVATE_QM3D_DATA *block = GetPrivate_QM3D_Data(&host.record, 0);
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(host.record.blockCount, 1);
    EXPECT_EQ(host.record.blocks[0]->work, block);
    EXPECT_EQ(host.record.blocks[0]->size, sizeof(_PRIVATE_QM3D_DATA) + 2 * 300 * 4 + 1000 * 2);
    EXPECT_EQ(addressOf(block->vertexArray0), addressOf(block) + sizeof(_PRIVATE_QM3D_DATA));
    EXPECT_EQ(addressOf(block->vertexArray1), addressOf(block->vertexArray0) + 300 * 4);
    EXPECT_EQ(addressOf(block->zPlane), addressOf(block->vertexArray1) + 300 * 4);
    EXPECT_EQ(addressOf(block->zBuffer), addressOf(block->zPlane) + 50 * 2);
    EXPECT_EQ(block->limitValue0, 11);
    EXPECT_EQ(block->limitValue1, 22);
    EXPECT_EQ(block->vertexArrayEntries, 300);
    EXPECT_TRUE(block->spanMapper == nullptr) << "no mapper yet";
}

TEST(GetPrivate_QM3D_Data, a_block_that_cannot_be_had_gives_null_and_drops_all) {
    Host host;
    ASSERT_NE(FindNotUsedMemory(&host.record, 0, 16), nullptr);
    host.limits.vertexArrayEntries = 0x30000000; // more than 2 GB, and less than nothing in 32 bits
    EXPECT_EQ(GetPrivate_QM3D_Data(&host.record, 1), nullptr);
    EXPECT_EQ(host.record.blockCount, 0);
    EXPECT_EQ(host.record.blocks[0], nullptr);
    EXPECT_EQ(host.record.blocks[1], nullptr);
}

} // namespace
