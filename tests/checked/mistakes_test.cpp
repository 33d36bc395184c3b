/// \file
/// Mistakes that hosts make, each in a process of its own, and the line in which the checked library names it.
#include <gtest/gtest.h>
#include <q_Mur.h>
#include <q_Mur/checked.h>

#if defined(_WIN32)
#include <windows.h>
#else
#include <sys/mman.h>
#include <unistd.h>
#endif

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace {

constexpr int aborted = 99; // what a process ends with here that calls abort

/// That a call ends the program with one line.
#define EXPECT_NAMED(call, line)                                                                                       \
    EXPECT_EXIT(call, testing::ExitedWithCode(aborted), testing::Eq(std::string(line "\n")))

/// A surface as large as its picture, of which the library is told unless the host leaves it to the heap.
struct Picture {
    Picture(int width, int height, bool isTold = true)
        : pixels(static_cast<std::size_t>(width) * static_cast<std::size_t>(height)), all{0, 0, width, height} {
        if (isTold)
            q_Mur_checked_surface(pixels.data(), width, height);
    }
    Picture(const Picture &) = delete;
    Picture &operator=(const Picture &) = delete;
    ~Picture() { q_Mur_checked_surface(pixels.data(), 1, 0); }

    q_ulong *data() { return pixels.data(); }

    std::vector<q_ulong> pixels;
    tagRECT all;
};

void copy(Picture &dst, Picture &src, tagRECT rect, int dstPitch = 64, int srcPitch = 64, int x = 0, int y = 0) {
    iBltFast32(dst.data(), src.data(), static_cast<q_ulong>(x), static_cast<q_ulong>(y), &rect,
               static_cast<q_ulong>(dstPitch), static_cast<q_ulong>(srcPitch));
}

TEST(mistakes, tables_are_empty) {
    std::memset(iSin, 0, sizeof iSin);
    EXPECT_NAMED(randRainbowColor(), "randRainbowColor: the tables are empty, which Init_qMur_GlobalData fills");
    Init_qMur_GlobalData(nullptr, nullptr);
}

TEST(mistakes, pitch_in_bytes) {
    Picture dst(64, 48), src(64, 48);
    EXPECT_NAMED(copy(dst, src, src.all, 256), "iBltFast32: dstPitch 256 is not 64, the pitch of dst");
}

#if defined(_WIN32)
#define Q_MUR_ROWS_HELD(exactly, roundedUp) exactly
#else // whose heap rounds sizes up, and so begins a further row
#define Q_MUR_ROWS_HELD(exactly, roundedUp) roundedUp
#endif

TEST(mistakes, pitch_in_bytes_on_the_heap) {
    Picture dst(640, 480, false);
    EXPECT_NAMED(iFillRect(dst.data(), &dst.all, 4 * 640, 0),
                 "iFillRect: rect.bottom 480 exceeds the " Q_MUR_ROWS_HELD("120", "121") " rows of dst");
    Picture low(64, 48, false);
    EXPECT_NAMED(iFillRect(low.data(), &low.all, 4 * 64, 0),
                 "iFillRect: rect.bottom 48 exceeds the " Q_MUR_ROWS_HELD("12", "13") " rows of dst");
}

#if defined(__GLIBC__)
TEST(mistakes, pitch_in_bytes_on_the_heap_where_a_page_begins) {
    // Blocks of three pages and their own head: each stands 16 bytes further on in its page than the one before.
    std::vector<std::unique_ptr<Picture>> pictures;
    do {
        pictures.push_back(std::make_unique<Picture>(64, 48, false));
    } while (reinterpret_cast<std::uintptr_t>(pictures.back()->data()) % 4096 != 0 && pictures.size() < 600);
    ASSERT_EQ(reinterpret_cast<std::uintptr_t>(pictures.back()->data()) % 4096, 0U);
    EXPECT_NAMED(iFillRect(pictures.back()->data(), &pictures.back()->all, 4 * 64, 0),
                 "iFillRect: rect.bottom 48 exceeds the 13 rows of dst");
}
#endif

TEST(mistakes, swapped_pitches) {
    Picture dst(64, 48), src(80, 48);
    EXPECT_NAMED(copy(dst, src, {0, 0, 64, 48}, 80, 64), "iBltFast32: dstPitch 80 is not 64, the pitch of dst");
}

TEST(mistakes, width_for_pitch) {
    Picture dst(64, 48);
    tagRECT part = {0, 0, 60, 48};
    EXPECT_NAMED(iFillRect(dst.data(), &part, 60, 0), "iFillRect: pitch 60 is not 64, the pitch of dst");
}

TEST(mistakes, null_pointers) {
    Picture dst(64, 48);
    EXPECT_NAMED(iFillRect(nullptr, &dst.all, 64, 0), "iFillRect: dst is null");
    EXPECT_NAMED(iFillRect(dst.data(), nullptr, 64, 0), "iFillRect: rect is null");
    EXPECT_NAMED(iBltFast32(dst.data(), nullptr, 0, 0, &dst.all, 64, 64), "iBltFast32: src is null");
}

TEST(mistakes, rectangle_outside) {
    Picture dst(64, 48), src(64, 48);
    EXPECT_NAMED(copy(dst, src, {50, 0, 90, 48}), "iBltFast32: srcRect.right 90 exceeds srcPitch 64");
    EXPECT_NAMED(copy(dst, src, {0, 40, 64, 60}), "iBltFast32: srcRect.bottom 60 exceeds the 48 rows of src");
    EXPECT_NAMED(copy(dst, src, {0, 0, 10, 10}, 64, 64, 60, 0),
                 "iBltFast32: dst is written up to column 69, beyond dstPitch 64");
}

TEST(mistakes, rectangle_outside_of_what_nobody_told) {
    q_ulong dst[900];
    tagRECT rect = {0, 0, 40, 30};
    EXPECT_NAMED(iFillRect(dst, &rect, 30, 0), "iFillRect: rect.right 40 exceeds pitch 30");
}

TEST(mistakes, negative_position) {
    Picture dst(64, 48), src(64, 48);
    EXPECT_NAMED(copy(dst, src, {0, 0, 10, 10}, 64, 64, -5, 0), "iBltFast32: dstX -5 is below 0");
    EXPECT_NAMED(copy(dst, src, {0, -3, 10, 10}), "iBltFast32: srcRect.top -3 is below 0");
}

TEST(mistakes, one_pixel_beyond_an_exact_surface) {
    Picture dst(64, 48), src(32, 24);
    EXPECT_NAMED(iBltBilinear32(dst.data(), src.data(), &dst.all, &src.all, 64, 32),
                 "iBltBilinear32: src is read up to column 32 of row 24, which leaves its memory");
}

TEST(mistakes, rows_upward_from_the_first_one) {
    std::vector<q_ulong> memory(64 * 48);
    q_Mur_checked_surface(memory.data(), 64 * 48, 1);
    tagRECT all = {0, 0, 64, 48};
    EXPECT_NAMED(iFillRect(memory.data(), &all, -64, 7),
                 "iFillRect: dst is written up to column 63 of row 47, which leaves its memory");
    iFillRect(&memory[64 * 47], &all, -64, 7);
    EXPECT_EQ(memory[0], 7u);
    q_Mur_checked_surface(memory.data(), 64, 0);
}

TEST(mistakes, rectangle_that_is_inverted_into_a_large_one) {
    Picture dst(64, 48), src(64, 48);
    tagRECT rect = {0, 40, 64, -2147483628};
    EXPECT_NAMED(iBltBilinear32_Alpha(dst.data(), src.data(), &rect, &src.all, 64, 64, 0.5F),
                 "iBltBilinear32_Alpha: dstRect.bottom -2147483628 is too far from dstRect.top 40");
    tagRECT wide = {2147483437, 0, -2147483624, 4};
    EXPECT_NAMED(iBltBilinear32_Add(dst.data(), src.data(), &dst.all, &wide, 64, 64),
                 "iBltBilinear32_Add: srcRect.right -2147483624 is too far from srcRect.left 2147483437");
}

TEST(mistakes, pitch_in_bytes_of_no_whole_pixels) {
    // 25 rows, 99 bytes apart, end at byte 24 * 99 + 4 = 2380.
    std::vector<unsigned char> memory(2384), src(75);
    const auto fit = [&](unsigned char *dst) { _FitOn32RAW_24RAW_Nearest(dst, 1, 25, 99, src.data(), 1, 25, 3); };
    q_Mur_checked_surface(memory.data(), 595, 1);
    fit(memory.data());
    q_Mur_checked_surface(memory.data(), 594, 1); // 2376 bytes
    EXPECT_NAMED(fit(memory.data()),
                 "_FitOn32RAW_24RAW_Nearest: dst is written up to column 3 of row 24, which leaves its memory");
    q_Mur_checked_surface(memory.data(), 595, 0);
}

TEST(mistakes, surface_smaller_than_a_bitmap_file) {
    // Two rows of 16 are 32 pixels.
    std::vector<q_ulong> memory(31);
    std::string name = "no such file";
    q_Mur_checked_surface(memory.data(), 31, 1);
    EXPECT_NAMED(LoadBitmap24(memory.data(), name.data(), 16, 2),
                 "LoadBitmap24: dst holds 31 elements, of which 32 are written");
    EXPECT_EQ(LoadBitmap24(memory.data(), name.data(), 31, 1), 0);
    EXPECT_EQ(LoadBitmap24(memory.data(), name.data(), 16, -1), 0);
    q_Mur_checked_surface(memory.data(), 31, 0);
}

TEST(mistakes, row_beyond_all_addresses) {
    // Nothing is drawn, but rows are counted from the first one: 2^20 rows of 2^25 pixels are more than there are.
    Picture dst(64, 48);
    tagRECT empty = {8, -1048576, 5, -1048570};
    EXPECT_NAMED(iFillRect(dst.data(), &empty, 33554432, 7),
                 "iFillRect: rect.top -1048576 is beyond all memory with pitch 33554432");
    iFillRect(dst.data(), &empty, 64, 7);
    EXPECT_NAMED(MakeBubbleResource(dst.data(), -536870912, 0, 2147483645, -1, 0),
                 "MakeBubbleResource: y 2147483645 is beyond all memory with pitch -536870912");
    MakeBubbleResource(dst.data(), 64, 0, 2147483645, -1, 0);
}

void rotate(Picture &dst, Picture &src, tagRECT rect, decltype(iRotate) *rotator) {
    const int pitch = static_cast<int>(src.all.right);
    rotator(dst.data(), &dst.all, 64, src.data(), &rect, pitch, 32, 24, 0, 64, 48);
}

TEST(mistakes, source_whose_bounds_wrap) {
    // Of positions 12 bits are left, or 16: 109568 is 27 * 4096 - 1024, and 4 with the row behind it is the end.
    Picture dst(64, 48), src(64, 48);
    EXPECT_NAMED(rotate(dst, src, {0, 109568, 64, 4}, iRotateLinear),
                 "iRotateLinear: src is read from row -1024 on, before its first");
    EXPECT_NAMED(rotate(dst, src, {65536 - 5, 0, 64, 48}, iRotate),
                 "iRotate: src is read from column -5 on, before its first");
    // 2100 is -1996, and 2110 with the two rows behind it is -1984.
    Picture high(8, 2200);
    EXPECT_NAMED(rotate(dst, high, {0, 2100, 8, 2110}, iRotateLinear),
                 "iRotateLinear: src is read from row -1996 on, before its first");
    EXPECT_NAMED(rotate(dst, high, {2, 2, 6, 2100}, iRotateMapping),
                 "iRotateMapping: src is read from row -2048 on, before its first");
}

TEST(mistakes, bubble_on_a_surface_stored_bottom_up) {
    Picture dst(64, 48), scratch(64, 48), resource(64, 10);
    const auto draw = [&](q_ulong *last) {
        DrawRealBubbleOld(dst.data() + 64 * 47, scratch.data(), -64, 32, 24, 10, last, 10, 0, 64, 48);
    };
    EXPECT_NAMED(draw(resource.data()), "DrawRealBubbleOld: resource is read from column -576 on, before its first");
    draw(resource.data() + 64 * 9);
}

TEST(mistakes, bubble_beyond_its_table) {
    Picture dst(300, 300), scratch(300, 300), resource(100, 100);
    EXPECT_NAMED(DrawRealBubble(dst.data(), scratch.data(), 300, 150, 150, 240, resource.data(), 100, 0, 300, 300),
                 "DrawRealBubble: size 240 exceeds 181");
}

TEST(mistakes, scratch_too_small) {
    Picture dst(300, 300), scratch(20, 1), resource(100, 100);
    // Of the offsets from -5 to 4 along x and y, 69 pairs lie at a distance below 5.
    EXPECT_NAMED(DrawRealBubble(dst.data(), scratch.data(), 300, 150, 150, 10, resource.data(), 100, 0, 300, 300),
                 "DrawRealBubble: scratch holds 20 elements, of which 69 are written");
}

TEST(mistakes, alpha_of_2_or_128) {
    Picture dst(64, 48), src(64, 48);
    EXPECT_NAMED(iBltFast32Alpha(dst.data(), src.data(), 0, 0, &src.all, 64, 64, 2),
                 "iBltFast32Alpha: alpha 2 exceeds 1");
    EXPECT_NAMED(iBltFast32Alpha(dst.data(), src.data(), 0, 0, &src.all, 64, 64, 128),
                 "iBltFast32Alpha: alpha 128 exceeds 1");
}

TEST(mistakes, radius_of_0) {
    Picture dst(64, 48);
    EXPECT_NAMED(Draw_Light(dst.data(), 64, 30, 20, 0, 0xFFFFFF, 128), "Draw_Light: radius 0 is below 1");
}

TEST(mistakes, band_of_0) {
    Picture dst(64, 48), a(64, 48), b(64, 48);
    tagPOINT centre = {32, 24};
    EXPECT_NAMED(Edge_Transparency_Circle(dst.data(), a.data(), b.data(), &centre, 10, 0, 64, 48, 64),
                 "Edge_Transparency_Circle: band 0 is below 1");
}

TEST(mistakes, negative_radius) {
    Picture dst(64, 48);
    EXPECT_NAMED(Draw_Circle_FillInside(dst.data(), 64, 30, 20, -4, 0), "Draw_Circle_FillInside: radius -4 is below 0");
}

TEST(mistakes, division_by_0) {
    EXPECT_NAMED(randIntGauss(0, 10, 0), "randIntGauss: count 0 is below 1");
    EXPECT_NAMED(randInt(5, 5), "randInt: low 5 equals high 5");
}

TEST(mistakes, clip_outside_the_surface) {
    Picture dst(64, 48);
    tagRECT clip = {0, 0, 64, 100};
    EXPECT_NAMED(iLine(dst.data(), 0, 0, 63, 80, 0xFFFFFF, &clip, 64),
                 "iLine: clip.bottom 100 exceeds the 48 rows of surface");
}

TEST(mistakes, sprite_on_a_surface_too_small) {
    Picture dst(100, 114);
    EXPECT_NAMED(LoadResourceAirplane(dst.data(), 156, 114, 100),
                 "LoadResourceAirplane: dst is written up to column 155, beyond pitch 100");
    Picture low(156, 100);
    EXPECT_NAMED(LoadResourceAirplane(low.data(), 156, 114, 156),
                 "LoadResourceAirplane: dst is written up to column 155 of row 113, which leaves its memory");
}

TEST(mistakes, mesh_of_one_row) {
    std::vector<_POINT3DFLOAT> points(8);
    EXPECT_NAMED(Flat3D(points.data(), 8, 1, 1, 0, 0, 0, 0, 0, 0, 240, 100, 100), "Flat3D: rows 1 is below 2");
}

TEST(mistakes, fill_without_its_plane) {
    _PRIVATE_QMGP_DATA data = {};
    EXPECT_NAMED(bRegion_Fill(&data, 5, 5, 1, 0, 0, 0),
                 "bRegion_Fill: data has no plane with limits, which a Set function gives it");
}

TEST(mistakes, fill_from_outside_its_limits) {
    Picture dst(64, 48);
    _PRIVATE_QMGP_DATA data = {};
    tagRECT limits = {1, 0, 63, 48};
    SetRegionFill(&data, dst.data(), 64, dst.data(), 64);
    EXPECT_NAMED(Region_Fill(&data, 70, 5, 1, 1, 0, 0, 0, &limits), "Region_Fill: the seed or the limits lie outside");
}

TEST(mistakes, fill_without_limits) {
    Picture dst(64, 48);
    _PRIVATE_QMGP_DATA data = {};
    SetRegionFill(&data, dst.data(), 64, dst.data(), 64);
    EXPECT_NAMED(Region_Fill(&data, 5, 5, 1, 1, 0, 0, 0, nullptr), "Region_Fill: rect is null");
}

TEST(mistakes, fill_with_two_pitches) {
    Picture dst(64, 48), test(64, 48);
    std::vector<unsigned char> plane(80 * 48);
    _PRIVATE_QMGP_DATA data = {};
    tagRECT limits = {1, 0, 63, 48};
    SetRegionSrcFill(&data, dst.data(), 64, test.data(), 64, plane.data(), &limits, 80);
    EXPECT_NAMED(Region_Src_Fill(&data, 5, 5, 1, 0, 0, 0),
                 "Region_Src_Fill: the pitches of the plane and of the test surface differ");
}

TEST(mistakes, blur_over_its_source) {
    Picture dst(64, 48), both(64, 48);
    EXPECT_NAMED(Hor_Blur(both.data(), both.data(), 4, 64, 48, 64),
                 "Hor_Blur: surfaces that must be apart lie over each other");
    EXPECT_NAMED(Ver_GaussBlur(both.data() + 64, both.data(), 1, 64, 47, 64),
                 "Ver_GaussBlur: surfaces that must be apart lie over each other");
    EXPECT_NAMED(Hor_Blur32(both.data() + 31, both.data(), 4, 32, 48, 64),
                 "Hor_Blur32: surfaces that must be apart lie over each other");
    EXPECT_NAMED(iPsudoBilinearMapping(dst.data(), both.data(), dst.data(), 64, 64, 48, 0, 0, 63, 63, 0, 0, 0, 47, 47),
                 "iPsudoBilinearMapping: surfaces that must be apart lie over each other");
}

TEST(mistakes, source_with_a_diagonal_that_wraps) {
    Picture dst(64, 48), src(64, 48);
    tagRECT wide = {0, 0, 2147483647, 10};
    EXPECT_NAMED(iBltNear32_Add_KeySrc(dst.data(), 64, src.data(), 64, &dst.all, &wide, 0, 0),
                 "iBltNear32_Add_KeySrc: srcRect of 2147483647 x 10 has a diagonal of 46341 pixels or more");
}

TEST(mistakes, fill_that_begins_beside_its_parent) {
    Picture dst(64, 48);
    _PRIVATE_QMGP_DATA data = {};
    tagRECT limits = {1, 0, 63, 48};
    SetRegionFill(&data, dst.data(), 64, dst.data(), 64);
    EXPECT_NAMED(Region_Fill(&data, 5, 5, 1, 1, 6, 20, 1, &limits),
                 "Region_Fill: x 5 is not within the parent's span, parentLeft 6 to parentRight 20");
    EXPECT_NAMED(Region_Fill(&data, 5, 5, 1, 1, 0, 20, 1, &limits),
                 "Region_Fill: the parent's span, parentLeft 0 to parentRight 20, leaves the limits");
}

// Records and private blocks

struct Host {
    explicit Host(int width = 64, int height = 48, int entries = 64, int depth = 2)
        : geometry{{}, width * height, 0}, limits{0, 0, entries, depth} {
        record.frameGeometry = &geometry;
        record.limits3D = &limits;
    }
    Host(const Host &) = delete;
    Host &operator=(const Host &) = delete;
    ~Host() { DeleteMemoryBlocks(&record); }

    TransferFrameGeometry geometry;
    TransferLimits3D limits;
    _TRANSFERDATA record = {};
};

TEST(mistakes, record_that_is_not_cleared) {
    _TRANSFERDATA record;
    std::memset(&record, 0xCD, sizeof record);
    EXPECT_NAMED(FindNotUsedMemory(&record, 0, 100),
                 "FindNotUsedMemory: data.blocks[0] is no block: the record was not cleared");
}

TEST(mistakes, record_whose_frame_has_no_size) {
    Host host;
    host.geometry.planeElements = -100;
    EXPECT_NAMED(GetPrivate_QMGL_Data(&host.record, 0),
                 "GetPrivate_QMGL_Data: frameGeometry.planeElements -100 is below 0");
    EXPECT_NAMED(GetPrivate_QM3D_Data(&host.record, 0),
                 "GetPrivate_QM3D_Data: frameGeometry.planeElements -100 is below 0");
}

TEST(mistakes, limits_not_set) {
    _TRANSFERDATA record = {};
    EXPECT_NAMED(GetPrivate_QMGL_Data(&record, 0), "GetPrivate_QMGL_Data: limits3D is null");
}

TEST(mistakes, block_freed_twice) {
    Host host;
    FindNotUsedMemory(&host.record, 0, 100);
    _TRANSFERDATA another = host.record;
    DeleteMemoryBlocks(&host.record);
    EXPECT_NAMED(DeleteMemoryBlocks(&another), "DeleteMemoryBlocks: data.blocks[0] has been freed before");
}

TEST(mistakes, private_block_after_its_end) {
    Host host;
    _PRIVATE_QMGL_DATA *data = GetPrivate_QMGL_Data(&host.record, 0);
    DeleteMemoryBlocks(&host.record);
    EXPECT_NAMED(VKD_glLoadIdentity(data), "VKD_glLoadIdentity: data has been freed with its record's blocks");
}

TEST(mistakes, matrix_stack_overflows) {
    Host host;
    _PRIVATE_QMGL_DATA *data = GetPrivate_QMGL_Data(&host.record, 0);
    VKD_glPushMatrix(data);
    EXPECT_NAMED(VKD_glPushMatrix(data), "VKD_glPushMatrix: the current stack holds no further matrix");
}

TEST(mistakes, matrix_stack_underflows) {
    Host host;
    _PRIVATE_QMGL_DATA *data = GetPrivate_QMGL_Data(&host.record, 0);
    EXPECT_NAMED(VKD_glPopMatrix(data), "VKD_glPopMatrix: the current stack holds one matrix alone");
}

TEST(mistakes, stacks_that_are_not_there) {
    _PRIVATE_QMGL_DATA data = {};
    data.viewportRight = 64;
    _POINT3DFLOAT point = {};
    EXPECT_NAMED(VKD_glLoadIdentity(&data), "VKD_glLoadIdentity: the current stack has no entry of its depth");
    EXPECT_NAMED(VKD_glTranslatef(&data, 1, 2, 3), "VKD_glTranslatef: the current stack has no entry of its depth");
    EXPECT_NAMED(VKD_gluLookAt(&data, 1, 2, 3, 0, 0, 0, 0, 1, 0),
                 "VKD_gluLookAt: the view stack has no entry of its depth");
    EXPECT_NAMED(VKD_Mapping3Dto2D(&data, &point, 1, 1),
                 "VKD_Mapping3Dto2D: the view or the model stack has no entry of its depth");
}

TEST(mistakes, place_with_three_words_on_too_small_a_texture) {
    Host host;
    Picture dst(64, 48), tex(8, 8);
    _PRIVATE_QM3D_DATA *data = GetPrivate_QM3D_Data(&host.record, 0);
    ResetZBuffer(data, &dst.all, 64);
    std::array<_POINT3DFLOAT, 4> points = {{{1, 1, 5, 0}, {40, 1, 5, 0}, {40, 40, 5, 0}, {1, 40, 5, 0}}};
    std::array<_POINTINT, 4> texels = {{{0, 0}, {200, 0}, {200, 200}, {0, 200}}};
    q_Mur_checked_surface(&points[3], 3, 1); // the fourth word of a point is not read
    EXPECT_NAMED(i3D_Blt_Rect(data, dst.data(), &points[0], &points[1], &points[2], &points[3], tex.data(), &texels[0],
                              &texels[1], &texels[2], &texels[3], &dst.all, 64, 8, 0, 0, 0, 0, 256, 256, 256, 256,
                              0x200),
                 "i3D_Blt_Rect: tex is read up to column 13 of row 13, which leaves its memory");
    q_Mur_checked_surface(&points[3], 3, 0);
}

TEST(mistakes, vertex_arrays_too_small) {
    Host host(64, 48, 20);
    _PRIVATE_QMGL_DATA *data = GetPrivate_QMGL_Data(&host.record, 0);
    std::vector<_POINT3DFLOAT> points(25);
    _POINT3DFLOAT light = {0, 0, 1, 0};
    EXPECT_NAMED(VKD_FindLuminenceTerm(data, points.data(), 5, 5, &light, 64, 128, 3),
                 "VKD_FindLuminenceTerm: the vertex arrays of data hold fewer entries than the grid has points");
}

TEST(mistakes, light_is_null) {
    Host host;
    _PRIVATE_QMGL_DATA *data = GetPrivate_QMGL_Data(&host.record, 0);
    std::vector<_POINT3DFLOAT> points(25);
    EXPECT_NAMED(VKD_FindLuminenceTerm(data, points.data(), 5, 5, nullptr, 64, 128, 3),
                 "VKD_FindLuminenceTerm: light is null");
}

TEST(mistakes, viewport_is_missing) {
    Host host;
    _PRIVATE_QMGL_DATA *data = GetPrivate_QMGL_Data(&host.record, 0);
    EXPECT_NAMED(VKD_gluPerspective(data, 45, 1, 0, 1000), "VKD_gluPerspective: no viewport has been set");
}

void drawTriangle(_PRIVATE_QMGL_DATA *data, Picture &dst) {
    std::array<_POINT3DFLOAT, 3> points = {{{1, 1, 5, 0}, {40, 3, 5, 0}, {20, 40, 5, 0}}};
    q_ulong colour = 0xFFFFFF;
    VKD_Render_Tri(data, dst.data(), &dst.all, static_cast<int>(dst.all.right), &points[0], &points[1], &points[2],
                   &colour, &colour, &colour);
}

TEST(mistakes, z_plane_never_reset) {
    Host host;
    Picture dst(64, 48);
    _PRIVATE_QMGL_DATA *data = GetPrivate_QMGL_Data(&host.record, 0);
    EXPECT_NAMED(drawTriangle(data, dst), "VKD_Render_Tri: the Z plane of data has never been reset");
    VKD_ResetZBuffer(data, &dst.all, 64);
    drawTriangle(data, dst);
    EXPECT_EQ(dst.data()[10 * 64 + 20], 0xFFFFFFu);
}

TEST(mistakes, private_block_of_a_smaller_frame) {
    Host host(32, 24);
    Picture dst(64, 48);
    _PRIVATE_QMGL_DATA *data = GetPrivate_QMGL_Data(&host.record, 0);
    EXPECT_NAMED(drawTriangle(data, dst),
                 "VKD_Render_Tri: the Z plane of data is written up to column 63 of row 47, which leaves its memory");
}

TEST(mistakes, corners_of_fewer_words) {
    Host host;
    Picture dst(64, 48), tex(8, 8);
    _PRIVATE_QMGL_DATA *data = GetPrivate_QMGL_Data(&host.record, 0);
    VKD_ResetZBuffer(data, &dst.all, 64);
    std::array<_POINT3DFLOAT, 3> points = {{{1, 1, 5, 0}, {40, 3, 5, 0}, {20, 40, 5, 0}}};
    std::array<_POINTINT, 3> texels = {};
    q_Mur_checked_surface(&texels[1], 1, 1);
    EXPECT_NAMED(VKD_i3D_Blt_Tri(data, dst.data(), &points[0], &points[1], &points[2], tex.data(), &texels[0],
                                 &texels[1], &texels[2], &dst.all, 64, 8, 0, 0, 0, 256, 256, 256, 0),
                 "VKD_i3D_Blt_Tri: t1 holds 1 elements, of which 2 are read");
    q_Mur_checked_surface(&texels[1], 1, 0);
}

// What is no mistake: a message would end these

TEST(correct, blocks_are_cleared) {
    Host host;
    auto *first = static_cast<unsigned char *>(FindNotUsedMemory(&host.record, 0, 100));
    auto *second = static_cast<unsigned char *>(FindNotUsedMemory(&host.record, 1, 100));
    std::memset(first, 1, 100);
    std::memset(second, 2, 100);
    ClearMemory(&host.record, 0);
    EXPECT_EQ(host.record.blocks[0]->start, first);
    EXPECT_EQ(first[0] + first[99], 0);
    EXPECT_EQ(second[0] + second[99], 4);
}

TEST(correct, depths_are_reset_where_they_are_drawn) {
    Host host;
    Picture dst(64, 48);
    _PRIVATE_QMGL_DATA *data = GetPrivate_QMGL_Data(&host.record, 0);
    tagRECT part = {2, 2, 50, 42};
    VKD_ResetZBuffer(data, &part, 64);
    drawTriangle(data, dst);
    EXPECT_EQ(dst.data()[10 * 64 + 20], 0xFFFFFFu);
}

TEST(correct, halves_of_a_surface_are_apart) {
    Picture both(64, 48);
    tagRECT left = {0, 0, 32, 48}, low = {0, 24, 64, 48};
    iFillRect(both.data(), &left, 64, 0x808080);
    Hor_Blur(both.data() + 32, both.data(), 4, 32, 48, 64);
    EXPECT_NE(both.data()[63], 0u);
    iFillRect(both.data(), &low, 64, 0);
    Hor_Blur(both.data(), both.data() + 24 * 64, 4, 64, 24, 64);
    EXPECT_EQ(both.data()[63], 0u);
}

TEST(correct, sources_of_no_pixels_draw_nothing) {
    Picture dst(64, 48), src(64, 48);
    src.pixels.assign(src.pixels.size(), 0xFFFFFF);
    for (const tagRECT rect : {tagRECT{40, 0, 20, 48}, tagRECT{0, 4000, 64, 10}, tagRECT{0, 10, 64, 10}}) {
        rotate(dst, src, rect, iRotate);
        tagRECT source = rect;
        iBltNear32_Z_Roto(dst.data(), 64, src.data(), 64, &dst.all, &source, 32, 24, 1, 2);
        iBltLinear32_Z_Roto(dst.data(), 64, src.data(), 64, &dst.all, &source, 32, 24, 1, 2);
    }
    rotate(dst, src, {40, 0, 20, 48}, iRotateLinear);
    rotate(dst, src, {40, 0, 20, 48}, iRotateLinearAA);
    EXPECT_EQ(dst.data()[24 * 64 + 32], 0u);
}

TEST(correct, edge_over_its_image_or_a_part_of_it) {
    Picture first(64, 48), second(64, 48);
    first.pixels.assign(first.pixels.size(), 0xFFFFFF);
    tagPOINT p1 = {0, 20}, p2 = {63, 20};
    Edge_Transparency(first.data(), first.data(), second.data(), &p1, &p2, 10, 64, 0, 0, 0, &first.all);
    EXPECT_NE(first.data()[20 * 64 + 30], 0xFFFFFFu);
    tagRECT clip = {0, 0, 64, 40};
    first.pixels.assign(first.pixels.size(), 0xFFFFFF);
    Edge_Transparency(first.data() + 64, first.data(), second.data(), &p1, &p2, 10, 64, 0, 0, 0, &clip);
    EXPECT_NE(first.data()[21 * 64 + 30], 0xFFFFFFu);
}

/// Boundary all around, and in the middle.
void drawBounds(Picture &picture, q_ulong border) {
    tagRECT inside = {1, 1, picture.all.right - 1, picture.all.bottom - 1};
    iFillRect(picture.data(), &picture.all, static_cast<int>(picture.all.right), border);
    iFillRect(picture.data(), &inside, static_cast<int>(picture.all.right), 0);
}

TEST(correct, fill_equals_border) { // which leads past islands
    Picture dst(16, 12), test(16, 12);
    _PRIVATE_QMGP_DATA data = {};
    drawBounds(test, 5);
    SetRegionFill(&data, dst.data(), 16, test.data(), 16);
    Region_Fill(&data, 4, 4, 5, 5, 0, 0, 0, &dst.all);
    EXPECT_EQ(std::count(dst.pixels.begin(), dst.pixels.end(), 5u), 14 * 10);
    test.data()[6 * 16 + 8] = 5;
    SetRegionFill(&data, test.data(), 16, test.data(), 16);
    Region_Fill(&data, 4, 4, 5, 5, 0, 0, 0, &test.all);
    EXPECT_EQ(std::count(test.pixels.begin(), test.pixels.end(), 5u), 16 * 12);
}

/// As many bytes that may not be read as behind them may be.
struct Fenced {
    static constexpr std::size_t bytes = 65536; // whole pages everywhere

#if defined(_WIN32)
    Fenced() : pages(static_cast<std::byte *>(VirtualAlloc(nullptr, 2 * bytes, MEM_RESERVE, PAGE_NOACCESS))) {
        VirtualAlloc(pages + bytes, bytes, MEM_COMMIT, PAGE_READWRITE);
    }
    ~Fenced() {
        VirtualFree(pages, 0, MEM_RELEASE);
    }
#else
    Fenced()
        : pages(static_cast<std::byte *>(mmap(nullptr, 2 * bytes, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0))) {
        mprotect(pages + bytes, bytes, PROT_READ | PROT_WRITE);
    }
    ~Fenced() {
        munmap(pages, 2 * bytes);
    }
#endif
    Fenced(const Fenced &) = delete;
    Fenced &operator=(const Fenced &) = delete;

    std::byte *const pages;
};

TEST(correct, what_lies_before_a_picture_is_not_read) {
    Fenced memory;
    auto *first = reinterpret_cast<q_ulong *>(memory.pages + memory.bytes);
    // The picture's origin lies 60 pixels before it, where nobody draws.
    tagRECT part = {60, 0, 64, 1};
    iFillRect(first - 60, &part, 64, 7);
    EXPECT_EQ(first[0] + first[3], 14u);
}

TEST(correct, pixels_that_look_like_the_heads_of_blocks) {
    for (const std::size_t count : {64U * 48, 640U * 480}) {
        for (const q_ulong head : {0x31U, 0x20002U, 0x1002U}) {
            auto *pixels = static_cast<q_ulong *>(std::malloc(count * sizeof(q_ulong)));
            ASSERT_NE(pixels, nullptr);
            for (std::size_t i = 0; i < count; ++i)
                pixels[i] = i % 4 == 2 || (i % 4 == 0 && head == 0x31) ? head : 0;
            for (std::size_t i = 4; i < 1028 + 64; i += 4) {
                tagRECT part = {0, 0, 16, 20};
                if (i + 64 * 20 <= count)
                    iBltFast32(pixels + i, pixels + i, 0, 0, &part, 64, 64);
            }
            std::free(pixels);
        }
    }
}

TEST(correct, a_told_surface_goes_on_behind_one_within_it) {
    std::vector<q_ulong> memory(64 * 48);
    q_Mur_checked_surface(memory.data(), 64, 48);
    q_Mur_checked_surface(&memory[64], 64, 2);
    tagRECT part = {0, 0, 64, 45};
    iFillRect(&memory[64 * 3], &part, 64, 7);
    part.bottom = 46;
    EXPECT_NAMED(iFillRect(&memory[64 * 3], &part, 64, 7), "iFillRect: rect.bottom 46 exceeds the 45 rows of dst");
    q_Mur_checked_surface(&memory[64], 64, 0);
    q_Mur_checked_surface(memory.data(), 64, 0);
}

TEST(correct, forgetting_a_part_that_was_not_told_leaves_what_is_told_around_it) {
    std::vector<q_ulong> memory(64 * 50);
    tagRECT rows = {0, 0, 64, 49};
    const auto fill = [&] { iFillRect(memory.data(), &rows, 64, 7); };
    q_Mur_checked_surface(memory.data(), 64, 48);
    q_Mur_checked_surface(&memory[64 * 10], 64, 0);
    EXPECT_NAMED(fill(), "iFillRect: rect.bottom 49 exceeds the 48 rows of dst");
    q_Mur_checked_surface(&memory[64 * 47], -64, 48); // the same rows, stored bottom-up
    q_Mur_checked_surface(memory.data(), 64, 0);
    EXPECT_NAMED(fill(), "iFillRect: rect.bottom 49 exceeds the 48 rows of dst");
    q_Mur_checked_surface(&memory[64 * 47], -64, 0);
    fill();
}

/// The messages of calls, which are made nevertheless if these are doubts.
template <class Calls>
std::vector<std::string> messagesOf(const Calls &calls) {
    std::vector<std::string> messages;
    q_Mur_checked_handle(
        [](const char *message, void *all) { static_cast<std::vector<std::string> *>(all)->push_back(message); },
        &messages);
    calls();
    q_Mur_checked_handle(nullptr, nullptr);
    return messages;
}

TEST(doubts, what_headers_promise_is_no_breach) {
    Picture dst(64, 48);
    std::vector<unsigned char> raw(3 * 16 * 16);
    std::vector<_POINT3DFLOAT> points(8);
    char empty[] = "";
    const auto calls = [&] {
        auto *bytes = reinterpret_cast<unsigned char *>(dst.data());
        _FitOn32RAW_24RAW_Nearest(bytes, -4, 10, 256, raw.data(), 16, 16, 48);
        _FitOn32RAW_24RAW_Nearest(bytes, 10, -4, 256, raw.data(), 16, 16, 48);
        Flat3D(points.data(), 8, 0, 1, 0, 0, 0, 0, 0, 0, 240, 100, 100);
        Post3D(points.data(), -3, 8, 1, 0, 0, 0, 0, 0, 0, 240, 100, 100);
        Draw_Anti_Aliasing_Circle_NoFillInside(dst.data(), 64, -300, -300, 10, 0, 7);
        Draw_Bubble_Circle(dst.data(), &dst.all, 64, 30, 20, 65536, 7);
        iTextOut(dst.data(), &dst.all, 64, empty, 0xFF000000, 0, 0, 10, empty);
    };
    EXPECT_EQ(messagesOf(calls),
              (std::vector<std::string>{
                  "_FitOn32RAW_24RAW_Nearest: dstWidth -4 is below 1",
                  "_FitOn32RAW_24RAW_Nearest: dstHeight -4 is below 1", "Flat3D: rows 0 is below 2",
                  "Post3D: columns -3 is below 2", "Draw_Anti_Aliasing_Circle_NoFillInside: thickness 0 is below 1",
                  "Draw_Bubble_Circle: radius 65536 exceeds 32767", "iTextOut: colour 4278190080 exceeds 16777215"}));
    q_Mur_checked_doubts(0);
    EXPECT_EQ(messagesOf(calls), std::vector<std::string>());
    q_Mur_checked_doubts(1);
}

TEST(doubts, sources_beyond_the_format_of_positions) {
    Picture dst(64, 48), wide(4096, 2);
    tagRECT half = {0, 0, 2048, 2}, part = {0, 0, 1000, 2}, small = {0, 0, 64, 2};
    const auto scaled = [&](tagRECT &srcRect) {
        iBltNear32(dst.data(), wide.data(), &dst.all, &srcRect, 64, 4096);
        iBltAdaptive32(wide.data(), wide.data(), &srcRect, &srcRect, 4096, 4096);
        iRotateLinear(dst.data(), &dst.all, 64, wide.data(), &srcRect, 4096, 32, 24, 0, 64, 2);
    };
    const auto turned = [&](tagRECT &srcRect, float scale, int centreX) {
        iBltNear32_Z_Roto(dst.data(), 64, wide.data(), 4096, &dst.all, &srcRect, centreX, 24, 0, scale);
    };
    EXPECT_EQ(messagesOf([&] { scaled(part); }), std::vector<std::string>());
    EXPECT_EQ(
        messagesOf([&] { scaled(half); }),
        (std::vector<std::string>{"iRotateLinear: srcRect of 2048 x 2 is beyond the format of source positions"}));
    EXPECT_EQ(
        messagesOf([&] { scaled(wide.all); }),
        (std::vector<std::string>{"iBltNear32: srcRect of 4096 x 2 is beyond the format of source positions",
                                  "iRotateLinear: srcRect of 4096 x 2 is beyond the format of source positions"}));
    // Of a row of 64 pixels each goes 16 pixels on, or 17; or there are few in the clip.
    EXPECT_EQ(messagesOf([&] { turned(half, 1 / 16.0F, 32); }), std::vector<std::string>());
    EXPECT_EQ(messagesOf([&] { turned(small, 1 / 17.0F, 32); }), std::vector<std::string>());
    EXPECT_EQ(messagesOf([&] { turned(half, 1 / 17.0F, 32); }),
              (std::vector<std::string>{"iBltNear32_Z_Roto: a row goes through more source pixels than the format of "
                                        "their positions holds"}));
    EXPECT_EQ(messagesOf([&] { turned(half, 1 / 17.0F, 90); }), std::vector<std::string>());
    tagRECT box = {-1000, 10, 1048, 40};
    EXPECT_EQ(
        messagesOf([&] { Draw_Outer_Ellipse_NoFillInside(dst.data(), 64, &dst.all, &box, 2, 7); }),
        (std::vector<std::string>{"Draw_Outer_Ellipse_NoFillInside: box of 2048 x 30 is 2048 pixels wide or wider, "
                                  "beyond the format of positions"}));
}

// What a host may wish

TEST(wishes, goes_on_after_messages_and_leaves_the_calls_out) {
    const auto callThrice = [] {
        Picture dst(64, 48);
        tagRECT outside = {0, 0, 64, 49};
        q_Mur_checked_go_on(2);
        for (int i = 0; i < 3; ++i)
            iFillRect(dst.data(), &outside, 64, 7);
    };
    EXPECT_NAMED(callThrice(), "iFillRect: rect.bottom 49 exceeds the 48 rows of dst\n"
                               "iFillRect: rect.bottom 49 exceeds the 48 rows of dst\n"
                               "iFillRect: rect.bottom 49 exceeds the 48 rows of dst");
}

TEST(wishes, hands_messages_over) {
    Picture dst(64, 48);
    std::vector<std::string> messages;
    q_Mur_checked_handle(
        [](const char *message, void *all) { static_cast<std::vector<std::string> *>(all)->push_back(message); },
        &messages);
    tagRECT outside = {0, 0, 65, 48};
    iFillRect(dst.data(), &outside, 64, 7);
    EXPECT_EQ(dst.data()[0], 0u);
    EXPECT_EQ(randInt(5, 5), 0);
    q_Mur_checked_handle(nullptr, nullptr);
    EXPECT_EQ(messages,
              (std::vector<std::string>{"iFillRect: rect.right 65 exceeds pitch 64", "randInt: low 5 equals high 5"}));
}

TEST(wishes, doubts_are_silent_when_switched_off) {
    Picture dst(64, 48), src(64, 48);
    q_Mur_checked_doubts(0);
    src.pixels.assign(src.pixels.size(), 0x102030);
    iBltFast32Alpha(dst.data(), src.data(), 0, 0, &src.all, 64, 64, 2);
    q_Mur_checked_doubts(1);
    EXPECT_NE(dst.data()[0], 0u); // the call was made
}

TEST(wishes, surfaces_with_margins_and_those_stored_bottom_up) {
    std::vector<q_ulong> memory(80 * 60);
    q_ulong *const first = &memory[6 * 80 + 8];
    tagRECT all = {-8, -6, 72, 54};
    q_Mur_checked_surface(memory.data(), 80, 60);
    iFillRect(first, &all, 80, 7);
    EXPECT_EQ(memory.front(), 7u);
    EXPECT_EQ(memory.back(), 7u);
    tagRECT more = {-9, -6, 72, 54};
    EXPECT_NAMED(iFillRect(first, &more, 80, 7), "iFillRect: rect.left -9 is below -8");
    q_ulong *const lastRow = &memory[59 * 80];
    q_Mur_checked_surface(lastRow, -80, 60);
    tagRECT upward = {0, 0, 80, 60};
    iFillRect(lastRow, &upward, -80, 9);
    EXPECT_EQ(memory.front(), 9u);
    upward.bottom = 61;
    EXPECT_NAMED(iFillRect(lastRow, &upward, -80, 9), "iFillRect: rect.bottom 61 exceeds the 60 rows of dst");
    q_Mur_checked_surface(memory.data(), 80, 0);
}

} // namespace

int main(int argc, char **argv) {
    testing::InitGoogleTest(&argc, argv);
    std::signal(SIGABRT, [](int) { std::_Exit(aborted); });
    Init_qMur_GlobalData(nullptr, nullptr);
    return RUN_ALL_TESTS();
}
