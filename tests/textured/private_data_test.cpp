#include "screen.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace {

using test::DepthPlane;
using test::Surface;

/// A host's record with frame and limits of its own.
class Host {
public:
    Host() {
        data.frameGeometry = &frame;
        data.limits3D = &limits;
    }
    ~Host() { DeleteMemoryBlocks(&data); }
    Host(const Host &) = delete;
    Host &operator=(const Host &) = delete;

    _TRANSFERDATA data = {};
    TransferFrameGeometry frame = {{0, 0, 0}, 1000, 50};
    TransferLimits3D limits = {11, 22, 300, 0};
};

std::uintptr_t addressOf(const void *pointer) {
    return reinterpret_cast<std::uintptr_t>(pointer);
}

TEST(GetPrivate_QM3D_Data, null_record_gives_null) {
    EXPECT_EQ(GetPrivate_QM3D_Data(nullptr, 0), nullptr);
}

TEST(GetPrivate_QM3D_Data, one_block_holds_record_arrays_and_plane_in_order) {
    Host host;
    const _PRIVATE_QM3D_DATA *block = GetPrivate_QM3D_Data(&host.data, 0);
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(host.data.blockCount, 1);
    EXPECT_EQ(host.data.blocks[0]->work, block);
    EXPECT_EQ(host.data.blocks[0]->size, sizeof(_PRIVATE_QM3D_DATA) + 2 * 300 * 4 + 1000 * 2);
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
    ASSERT_NE(FindNotUsedMemory(&host.data, 0, 16), nullptr);
    host.limits.vertexArrayEntries = 0x30000000; // more than 2 GB, and less than nothing in 32 bits
    EXPECT_EQ(GetPrivate_QM3D_Data(&host.data, 1), nullptr);
    EXPECT_EQ(host.data.blockCount, 0);
    EXPECT_EQ(host.data.blocks[0], nullptr);
    EXPECT_EQ(host.data.blocks[1], nullptr);
}

/// Resets a part of a Z plane of zeros, and tells which entries are empty now.
DepthPlane resetPart(const Surface &shape, tagRECT part) {
    DepthPlane plane(shape, 0);
    auto data = test::blockOver<_PRIVATE_QM3D_DATA>(plane);
    EXPECT_EQ(ResetZBuffer(&data, &part, shape.pitch()), 1);
    return plane;
}

TEST(ResetZBuffer, odd_left_and_odd_width_reset_whole_pairs) {
    const Surface shape(8, 2); // an even pitch
    DepthPlane expected(shape, 0);
    for (int y = 0; y < 2; ++y)
        expected.at(2, y) = expected.at(3, y) = test::emptyDepth;
    EXPECT_TRUE(resetPart(shape, {3, 0, 6, 2}) == expected);
}

TEST(ResetZBuffer, odd_pitch_drifts_by_an_entry_every_other_row) {
    const Surface shape(8, 4, 0, 1);
    ASSERT_EQ(shape.pitch() % 2, 1);
    DepthPlane expected(shape, 0);
    for (int y = 0; y < 3; ++y) // each row starts an even number of entries further
        expected.at(4 - y, y) = expected.at(5 - y, y) = test::emptyDepth;
    EXPECT_TRUE(resetPart(shape, {4, 0, 6, 3}) == expected);
}

TEST(ResetZBuffer, empty_rectangles_reset_nothing_and_give_1_and_a_block_without_a_plane_gives_0) {
    const Surface shape(8, 4);
    EXPECT_TRUE(resetPart(shape, {3, 0, 3, 4}) == DepthPlane(shape, 0));
    EXPECT_TRUE(resetPart(shape, {0, 2, 8, 2}) == DepthPlane(shape, 0));
    _PRIVATE_QM3D_DATA data = {};
    for (tagRECT rect : {tagRECT{0, 0, 4, 4}, tagRECT{0, 0, 4, 0}})
        EXPECT_EQ(ResetZBuffer(&data, &rect, 4), 0);
}

} // namespace
