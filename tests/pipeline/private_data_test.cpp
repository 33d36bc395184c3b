#include "host.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

namespace {

using test::addressOf;
using test::Host;

bool isIdentity(const _I3DMATRIX &matrix) {
    for (int i = 0; i < 16; ++i)
        if (matrix.m[i] != (i % 5 == 0 ? 1 : 0))
            return false;
    return true;
}

/// The block of either module, behind whose record lie so many bytes of stacks.
template <class Data>
void expectCarvedInOrder(Data *(*getBlock)(_TRANSFERDATA *, int), std::uintptr_t stackBytes) {
    test::HostRecord host(1000, 37, 5, 17);
    const Data *data = getBlock(&host.record, 0);
    ASSERT_NE(data, nullptr);
    EXPECT_EQ(addressOf(data->vertexArray0), addressOf(data) + sizeof(Data) + stackBytes);
    EXPECT_EQ(addressOf(data->vertexArray1), addressOf(data->vertexArray0) + 17 * 4);
    EXPECT_EQ(addressOf(data->zPlane), addressOf(data->vertexArray1) + 17 * 4);
    EXPECT_EQ(addressOf(data->zBuffer), addressOf(data->zPlane) + 37 * 2);
    ASSERT_NE(host.record.blocks[0], nullptr);
    EXPECT_EQ(host.record.blocks[0]->work, data);
    EXPECT_EQ(host.record.blocks[0]->size, addressOf(data->zPlane) + 1000 * 2 - addressOf(data));
    EXPECT_EQ(host.record.blockCount, 1);
    EXPECT_EQ(data->limitValue0, 11);
    EXPECT_EQ(data->limitValue1, 22);
    EXPECT_EQ(data->vertexArrayEntries, 17);
    EXPECT_TRUE(data->spanMapper == nullptr) << "no mapper yet";
}

TEST(GetPrivate_QMGL_Data, one_block_is_carved_in_order_without_gaps_as_that_of_the_older_module_is) {
    expectCarvedInOrder(GetPrivate_QM3D_Data, 0);
    expectCarvedInOrder(GetPrivate_QMGL_Data, 2 * 5 * 64);
    const Host host(1000, 37, 5, 17);
    EXPECT_EQ(addressOf(host.data->modelStack), addressOf(host.data) + sizeof(_PRIVATE_QMGL_DATA));
    EXPECT_EQ(addressOf(host.data->viewStack), addressOf(host.data->modelStack) + 5 * 64);
}

TEST(GetPrivate_QMGL_Data, stacks_hold_the_identity) {
    const Host host(10, 0, 3, 2);
    const _PRIVATE_QMGL_DATA &data = *host.data;
    EXPECT_TRUE(isIdentity(data.modelStack[0]));
    EXPECT_TRUE(isIdentity(data.viewStack[0]));
    EXPECT_EQ(data.modelDepth, 0);
    EXPECT_EQ(data.viewDepth, 0);
    EXPECT_EQ(data.matrixMode, 1);
}

TEST(GetPrivate_QMGL_Data, the_slot_is_empty_also_in_memory_that_was_used_before) {
    Host host(10, 0, 3, 2);
    std::memset(host.data, 0xAA, sizeof *host.data);
    host.data = GetPrivate_QMGL_Data(&host.record, 0);
    EXPECT_EQ(host.data->spanMapper, nullptr);
    EXPECT_EQ(host.data->matrixMode, 1);
}

template <class Data>
void expectNoBlock(Data *(*getBlock)(_TRANSFERDATA *, int)) {
    EXPECT_EQ(getBlock(nullptr, 0), nullptr);
    // More than 2 GB, and less than nothing in 32 bits, among them.
    for (const int entries : {0x7FFFFFFF, 0x30000000, 0x20000000, 0x1FFFFFFF}) {
        Host host;
        host.limits.vertexArrayEntries = entries;
        EXPECT_EQ(getBlock(&host.record, 1), nullptr);
        EXPECT_EQ(host.record.blockCount, 0);
        EXPECT_EQ(host.record.blocks[0], nullptr);
        EXPECT_EQ(host.record.blocks[1], nullptr);
    }
}

TEST(GetPrivate_QMGL_Data, without_a_record_there_is_no_block_and_a_size_that_cannot_be_had_drops_all) {
    expectNoBlock(GetPrivate_QM3D_Data);
    expectNoBlock(GetPrivate_QMGL_Data);
}

/// The entries that the resets of both modules empty of a plane, counted from that of pixel (0, 0), an odd one.
std::vector<int> emptied(tagRECT rect, int pitch) {
    constexpr int origin = 251;
    std::vector<short> plane(600, 1);
    std::vector<short> olderPlane = plane;
    _PRIVATE_QMGL_DATA data = {};
    data.zBuffer = plane.data() + origin;
    _PRIVATE_QM3D_DATA older = {};
    older.zBuffer = olderPlane.data() + origin;
    EXPECT_EQ(VKD_ResetZBuffer(&data, &rect, pitch), 1);
    EXPECT_EQ(ResetZBuffer(&older, &rect, pitch), 1);
    EXPECT_EQ(plane, olderPlane);
    std::vector<int> entries;
    for (int i = 0; i < 600; ++i)
        if (plane[static_cast<std::size_t>(i)] == 0x7FFF)
            entries.push_back(i - origin);
    return entries;
}

TEST(VKD_ResetZBuffer, works_in_whole_pairs) {
    EXPECT_EQ(emptied({3, 1, 6, 3}, 20), (std::vector<int>{22, 23, 42, 43}));
}

TEST(VKD_ResetZBuffer, an_odd_pitch_drifts_every_other_row) {
    // The rows lie five pairs apart, also where they begin at an odd entry.
    EXPECT_EQ(emptied({0, 0, 4, 4}, 11),
              (std::vector<int>{0, 1, 2, 3, 10, 11, 12, 13, 20, 21, 22, 23, 30, 31, 32, 33}));
}

TEST(VKD_ResetZBuffer, shifts_are_arithmetic) {
    EXPECT_EQ(emptied({-3, -1, 1, 0}, 20), (std::vector<int>{-24, -23, -22, -21}));
    EXPECT_EQ(emptied({0, 0, 2, 3}, -21), (std::vector<int>{-44, -43, -22, -21, 0, 1}));
}

TEST(VKD_ResetZBuffer, an_empty_rectangle_resets_nothing_and_without_a_plane_the_answer_is_0) {
    EXPECT_TRUE(emptied({5, 2, 5, 6}, 20).empty());
    EXPECT_TRUE(emptied({5, 2, 9, 2}, 20).empty());
    EXPECT_TRUE(emptied({5, 2, 6, 6}, 20).empty()) << "a single column is no pair";
    _PRIVATE_QMGL_DATA data = {};
    _PRIVATE_QM3D_DATA older = {};
    for (tagRECT rect : {tagRECT{0, 0, 4, 4}, tagRECT{0, 0, 4, 0}}) {
        EXPECT_EQ(VKD_ResetZBuffer(&data, &rect, 20), 0);
        EXPECT_EQ(ResetZBuffer(&older, &rect, 20), 0);
    }
}

} // namespace
