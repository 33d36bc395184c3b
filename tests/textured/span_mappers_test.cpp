#include "catalogue/bound.h"
#include "plain/span_mappers.h"
#include "proofs/proofs.h"
#include "screen.h"
#include "support/random.h"

#include <gtest/gtest.h>

#include <array>

namespace {

using plain::MappedLight;
using plain::MapperKind;
using test::DepthPlane;
using test::Screen;
using test::Surface;

constexpr tagRECT everywhere = {0, 0, 16, 16};

/// The older module's mappers have no names of their own: a blit over no columns leaves one in the slot.
QM3DSpanMapper olderMapper(q_ulong flags, bool isShrunk) {
    _PRIVATE_QM3D_DATA data = {};
    tagRECT clip = {0, 0, 0, 1};
    _POINT3DFLOAT p[] = {{0, 0, 0, 0}, {1, 0, 0, 0}, {1, 1, 0, 0}, {0, 1, 0, 0}};
    const int extent = isShrunk ? 16 : 0;
    _POINTINT t[] = {{0, 0}, {extent, 0}, {extent, extent}, {0, extent}};
    i3D_Blt_Rect(&data, nullptr, &p[0], &p[1], &p[2], &p[3], nullptr, &t[0], &t[1], &t[2], &t[3], &clip, 0, 0, 0, 0, 0,
                 0, 0, 0, 0, 0, flags);
    return data.spanMapper;
}

struct Mapper {
    const char *name;
    const MapperKind &kind;
    QM3DSpanMapper older;
    QMGLSpanMapper pipeline;
    QM3DSpanMapper plainOlder = nullptr;
    QMGLSpanMapper plainPipeline = nullptr;

    bool isLit() const { return kind.light != MappedLight::none; }
};

const Mapper linearHPE = {"i3D_Mapping_Linear_HPE", plain::linearHPE, olderMapper(0x200, false), nullptr,
                          plain::i3D_Mapping_Linear_HPE};
const Mapper linearHPEKeySrc = {"i3D_Mapping_Linear_HPE_KeySrc", plain::linearHPEKeySrc, olderMapper(0x10100, false),
                                nullptr, plain::i3D_Mapping_Linear_HPE_KeySrc};
const Mapper nearHPE = {"i3D_Mapping_Near_HPE", plain::nearHPE, olderMapper(0x200, true), nullptr,
                        plain::i3D_Mapping_Near_HPE};
const Mapper linearNoHPE = {"i3D_Mapping_Linear_NoHPE", plain::linearNoHPE, olderMapper(0x2210, false), nullptr,
                            plain::i3D_Mapping_Linear_NoHPE};
const Mapper nearNoHPE = {"i3D_Mapping_Near_NoHPE", plain::nearNoHPE, olderMapper(0x2210, true), nullptr,
                          plain::i3D_Mapping_Near_NoHPE};
const Mapper nearNoLightNoHPE = {"i3D_Mapping_Near_NoLight_NoHPE", plain::nearNoLightNoHPE, olderMapper(0x1010, false),
                                 nullptr, plain::i3D_Mapping_Near_NoLight_NoHPE};
const Mapper pipelineLinearHPE = {
    "VKD_i3D_Mapping_Linear_HPE",     plain::pipelineLinearHPE, nullptr, VKD_i3D_Mapping_Linear_HPE, nullptr,
    plain::VKD_i3D_Mapping_Linear_HPE};
const Mapper pipelineLinearHPEKeySrc = {"VKD_i3D_Mapping_Linear_HPE_KeySrc",
                                        plain::linearHPEKeySrc,
                                        nullptr,
                                        VKD_i3D_Mapping_Linear_HPE_KeySrc,
                                        nullptr,
                                        plain::VKD_i3D_Mapping_Linear_HPE_KeySrc};
const Mapper pipelineNearHPE = {
    "VKD_i3D_Mapping_Near_HPE",     plain::pipelineNearHPE, nullptr, VKD_i3D_Mapping_Near_HPE, nullptr,
    plain::VKD_i3D_Mapping_Near_HPE};

const Mapper *const olderMappers[] = {&linearHPE,   &linearHPEKeySrc, &nearHPE,
                                      &linearNoHPE, &nearNoHPE,       &nearNoLightNoHPE};
const Mapper *const allMappers[] = {&linearHPE,      &linearHPEKeySrc,  &nearHPE,           &linearNoHPE,
                                    &nearNoHPE,      &nearNoLightNoHPE, &pipelineLinearHPE, &pipelineLinearHPEKeySrc,
                                    &pipelineNearHPE};

/// One number of a band at the upper and lower end of its left and of its right edge.
struct Ends {
    int left0;
    int left1;
    int right0;
    int right1;
};

struct Band {
    Ends u = {0, 0, 0, 0};
    Ends v = {0, 0, 0, 0};
    Ends x = {0, 0, 0, 0};
    Ends y = {0, 0, 0, 0};
    Ends add = {0, 0, 0, 0};
    Ends mul = {256, 256, 256, 256};
    Ends z = {0, 0, 0, 0};
};

/// A rectangle of the screen as a band; u and v the same everywhere.
Band bandOf(const tagRECT &rect, int u = 0, int v = 0) {
    const int left = static_cast<int>(rect.left), top = static_cast<int>(rect.top);
    const int right = static_cast<int>(rect.right), bottom = static_cast<int>(rect.bottom);
    Band band;
    band.u = {u, u, u, u};
    band.v = {v, v, v, v};
    band.x = {left, left, right, right};
    band.y = {top, bottom, top, bottom};
    return band;
}

template <class Function, class Data>
void map(Function function, Data &data, Screen &screen, q_ulong *tex, q_ulong texPitch, tagRECT clip, const Band &b) {
    function(&data, screen.surface.pixels(), tex, &clip, screen.pitch(), texPitch, b.u.left0, b.u.left1, b.u.right0,
             b.u.right1, b.v.left0, b.v.left1, b.v.right0, b.v.right1, b.x.left0, b.x.left1, b.x.right0, b.x.right1,
             b.y.left0, b.y.left1, b.y.right0, b.y.right1, b.add.left0, b.add.left1, b.add.right0, b.add.right1,
             b.mul.left0, b.mul.left1, b.mul.right0, b.mul.right1, b.z.left0, b.z.left1, b.z.right0, b.z.right1);
}

/// Calls the library with the texels from (u, v) of a texture on.
void map(const Mapper &mapper, Screen &screen, Surface &texture, const Band &band, const tagRECT &clip = everywhere,
         tagPOINT first = {0, 0}) {
    q_ulong *const tex = &texture.at(static_cast<int>(first.x), static_cast<int>(first.y));
    const auto pitch = static_cast<q_ulong>(texture.pitch());
    if (mapper.older)
        map(mapper.older, screen.older, screen, tex, pitch, clip, band);
    else
        map(mapper.pipeline, screen.pipeline, screen, tex, pitch, clip, band);
}

/// The first texel, and those to its right and below.
Surface texelsOf(q_ulong texel) {
    return Surface(4, 4, texel);
}

/// What a mapper makes of one texel.
q_ulong drawnPixel(const Mapper &mapper, q_ulong texel, int mul, int add) {
    Screen screen;
    Surface texels = texelsOf(texel);
    Band band = bandOf({3, 3, 4, 4});
    band.mul = {mul, mul, mul, mul};
    band.add = {add, add, add, add};
    map(mapper, screen, texels, band);
    return screen.surface.at(3, 3);
}

/// A black texel that is drawn: for a keyed mapper one with a top byte.
q_ulong blackOf(const Mapper &mapper) {
    return mapper.kind.isKeyed ? 0xFF000000 : 0;
}

/// The row that a mapper of the older module would have.
catalogue::Row rowOf(const Mapper &mapper) {
    catalogue::Row row;
    catalogue::forEachRow([&row](const catalogue::Row &each) {
        if (each.name == "VKD_i3D_Mapping_Linear_HPE")
            row = each;
    });
    row.name = mapper.name;
    row.call = catalogue::callOf(mapper.older, mapper.plainOlder);
    return row;
}

TEST(span_mappers, those_without_a_name_keep_what_is_proved_of_rows) {
    for (const Mapper *mapper : olderMappers) {
        SCOPED_TRACE(mapper->name);
        const catalogue::Row row = rowOf(*mapper);
        for (const proofs::Proof &proof : proofs::allProofs())
            if (proofs::reasonAgainst(proof, row).empty())
                proof.prove(row);
    }
}

TEST(span_mappers, the_format_ends_where_its_fraction_bits_leave_no_room) {
    // The right edge at the largest number of whole pixels is reached; one more turns negative, and the row is empty.
    for (const Mapper *each : allMappers) {
        const Mapper &mapper = *each;
        SCOPED_TRACE(mapper.name);
        Surface texels = texelsOf(0x123456);
        const int limit = 1 << (31 - mapper.kind.fractionBits);
        for (const int right : {limit - 1, limit}) {
            Screen screen;
            Band band = bandOf({0, 2, 1, 3});
            band.x.right0 = band.x.right1 = right;
            map(mapper, screen, texels, band);
            EXPECT_EQ(screen.surface.at(0, 2), right < limit ? 0x123456u : test::background);
        }
    }
}

TEST(span_mappers, depth_wraps_where_its_fraction_bits_leave_no_room) {
    // What turns negative stands nearer than anything.
    for (const Mapper *each : allMappers) {
        const Mapper &mapper = *each;
        if (!mapper.kind.testsDepth)
            continue;
        SCOPED_TRACE(mapper.name);
        Surface texels = texelsOf(0x123456);
        const int limit = 1 << (31 - mapper.kind.fractionBits);
        for (const int depth : {limit - 1, limit}) {
            Screen screen(16, 16, 0, 100);
            Band band = bandOf({0, 2, 1, 3});
            band.z = {depth, depth, depth, depth};
            map(mapper, screen, texels, band);
            EXPECT_EQ(screen.surface.at(0, 2), depth < limit ? 0u : 0x123456u);
            EXPECT_EQ(screen.depths.at(0, 2), depth < limit ? 100 : static_cast<short>(-depth));
        }
    }
}

TEST(span_mappers, edges_that_share_no_row_draw_nothing) {
    for (const Mapper *each : allMappers) {
        const Mapper &mapper = *each;
        SCOPED_TRACE(mapper.name);
        Screen screen;
        Surface texels = texelsOf(0x123456);
        Band band = bandOf({2, 0, 9, 0});
        band.y = {1, 4, 4, 9};
        map(mapper, screen, texels, band);
        EXPECT_TRUE(screen.untouched());
    }
}

TEST(span_mappers, an_edge_without_height_draws_nothing) {
    for (const Mapper *each : allMappers) {
        const Mapper &mapper = *each;
        SCOPED_TRACE(mapper.name);
        Screen screen;
        Surface texels = texelsOf(0x123456);
        Band band = bandOf({2, 0, 9, 0});
        band.y = {4, 4, 2, 9};
        map(mapper, screen, texels, band);
        EXPECT_TRUE(screen.untouched());
    }
}

TEST(span_mappers, a_right_edge_left_of_the_left_edge_draws_nothing) {
    for (const Mapper *each : allMappers) {
        const Mapper &mapper = *each;
        SCOPED_TRACE(mapper.name);
        Screen screen;
        Surface texels = texelsOf(0x123456);
        map(mapper, screen, texels, bandOf({9, 2, 3, 8}));
        EXPECT_TRUE(screen.untouched());
    }
}

TEST(span_mappers, less_than_a_pixel_across_a_boundary_draws_one_pixel) {
    // At row 6 of 10 the edges stand at 2.6 and 3.2, at row 4 at 2.4 and 2.8: the latter cross no boundary.
    for (const Mapper *each : allMappers) {
        const Mapper &mapper = *each;
        SCOPED_TRACE(mapper.name);
        Screen screen;
        Surface texels = texelsOf(0x123456);
        Band band = bandOf({2, 0, 2, 10});
        band.x = {2, 3, 2, 4};
        map(mapper, screen, texels, band);
        for (int x = 0; x < 8; ++x) {
            EXPECT_EQ(screen.surface.at(x, 4), test::background);
            EXPECT_EQ(screen.surface.at(x, 6), x == 2 ? 0x123456u : test::background);
        }
    }
}

TEST(span_mappers, a_cut_span_keeps_the_values_of_the_whole_one) {
    for (const Mapper *each : allMappers) {
        const Mapper &mapper = *each;
        SCOPED_TRACE(mapper.name);
        for (int seed = 0; seed < 50; ++seed) {
            test::Random random(static_cast<std::uint64_t>(seed));
            Surface texels = Surface::randomOfSize(random, 16, 16);
            const int unit = mapper.kind.isFiltered ? 16 : 1;
            const auto ends = [&random](int low, int high) {
                return Ends{random.between(low, high), random.between(low, high), random.between(low, high),
                            random.between(low, high)};
            };
            Band band;
            band.u = ends(0, 15 * unit);
            band.v = ends(0, 15 * unit);
            band.x = {random.between(0, 5), random.between(0, 5), random.between(9, 16), random.between(9, 16)};
            band.y = {0, 16, 0, 16};
            band.add = ends(0, 60);
            band.mul = ends(0, 300);
            band.z = ends(0, 3000);
            Screen whole;
            map(mapper, whole, texels, band);
            const tagRECT clip = random.rectInside(16, 16);
            Screen cut;
            map(mapper, cut, texels, band, clip);
            for (int y = 0; y < 16; ++y)
                for (int x = 0; x < 16; ++x) {
                    const bool inside = x >= clip.left && x < clip.right && y >= clip.top && y < clip.bottom;
                    ASSERT_EQ(cut.surface.at(x, y), inside ? whole.surface.at(x, y) : test::background);
                    ASSERT_EQ(cut.depths.at(x, y), inside ? whole.depths.at(x, y) : test::emptyDepth);
                }
        }
    }
}

TEST(span_mappers, right_column_and_lower_row_are_left_to_the_neighbours) {
    for (const Mapper *each : allMappers) {
        const Mapper &mapper = *each;
        SCOPED_TRACE(mapper.name);
        Screen screen;
        Surface texels = texelsOf(0x123456);
        map(mapper, screen, texels, bandOf({3, 2, 7, 5}));
        for (int y = 0; y < 16; ++y)
            for (int x = 0; x < 16; ++x)
                EXPECT_EQ(screen.surface.at(x, y) == 0x123456, x >= 3 && x < 7 && y >= 2 && y < 5) << x << ", " << y;
    }
}

TEST(span_mappers, of_two_equal_depths_the_first_drawn_stays) {
    for (const Mapper *each : allMappers) {
        const Mapper &mapper = *each;
        if (!mapper.kind.testsDepth)
            continue;
        SCOPED_TRACE(mapper.name);
        Screen screen;
        Surface first = texelsOf(0x111111);
        Surface second = texelsOf(0x222222);
        Band band = bandOf({3, 3, 6, 6});
        band.z = {50, 50, 50, 50};
        map(mapper, screen, first, band);
        map(mapper, screen, second, band);
        EXPECT_EQ(screen.surface.at(4, 4), 0x111111u);
        EXPECT_EQ(screen.depths.at(4, 4), 50);
        band.z = {49, 49, 49, 49};
        map(mapper, screen, second, band);
        EXPECT_EQ(screen.surface.at(4, 4), 0x222222u);
        EXPECT_EQ(screen.depths.at(4, 4), 49);
    }
}

TEST(span_mappers, mappers_without_HPE_neither_test_nor_write_depth) {
    for (const Mapper *each : allMappers) {
        const Mapper &mapper = *each;
        if (mapper.kind.testsDepth)
            continue;
        SCOPED_TRACE(mapper.name);
        Screen screen(16, 16, 0, -32768);
        Surface texels = texelsOf(0x123456);
        map(mapper, screen, texels, bandOf({3, 3, 6, 6}));
        EXPECT_EQ(screen.surface.at(4, 4), 0x123456u);
        EXPECT_TRUE(screen.depths == DepthPlane(screen.surface, -32768));
    }
}

TEST(span_mappers, a_depth_below_16_bits_passes_and_is_stored_wrapped) {
    for (const Mapper *each : {&pipelineLinearHPE, &pipelineNearHPE}) {
        const Mapper &mapper = *each;
        SCOPED_TRACE(mapper.name);
        Screen screen(16, 16, 0, -32768);
        Surface texels = texelsOf(0x123456);
        Band band = bandOf({3, 3, 6, 6});
        band.z = {-40000, -40000, -40000, -40000};
        map(mapper, screen, texels, band);
        EXPECT_EQ(screen.surface.at(4, 4), 0x123456u);
        EXPECT_EQ(screen.depths.at(4, 4), 25536);
    }
}

TEST(span_mappers, only_two_mappers_leave_out_what_is_not_beyond_the_near_limit) {
    for (const Mapper *each : allMappers) {
        const Mapper &mapper = *each;
        SCOPED_TRACE(mapper.name);
        Screen screen;
        Surface texels = texelsOf(0x123456);
        Band band = bandOf({3, 3, 6, 6});
        band.z = {9, 9, 11, 11}; // 9, 9.67 and 10.33
        screen.pipeline.nearLimit = 9;
        map(mapper, screen, texels, band);
        const bool limited = mapper.pipeline && !mapper.kind.isKeyed;
        EXPECT_EQ(screen.surface.at(3, 4), limited ? test::background : 0x123456u);
        EXPECT_EQ(screen.surface.at(4, 4), limited ? test::background : 0x123456u);
        EXPECT_EQ(screen.surface.at(5, 4), 0x123456u); // a polygon across the limit loses only its near part
    }
}

TEST(span_mappers, light_multiplies_adds_and_caps) {
    for (const Mapper *each : allMappers) {
        const Mapper &mapper = *each;
        SCOPED_TRACE(mapper.name);
        if (!mapper.isLit()) {
            EXPECT_EQ(drawnPixel(mapper, 0x99C08040, 128, 10), 0x99C08040u); // copied whole
            continue;
        }
        EXPECT_EQ(drawnPixel(mapper, 0xC08040, 256, 0), 0xC08040u);
        EXPECT_EQ(drawnPixel(mapper, 0xC08040, 128, 10), 0x6A4A2Au); // half and ten more
        EXPECT_EQ(drawnPixel(mapper, 0xC08041, 511, 0), 0xFFFF81u);  // 0xC0 and 0x80 double are too much: 255 each
        EXPECT_EQ(drawnPixel(mapper, 0xFFFFFF, 255, 0), 0xFEFEFEu);  // truncated
        EXPECT_EQ(drawnPixel(mapper, blackOf(mapper), 256, 300), 0xFFFFFFu);
    }
}

TEST(span_mappers, nothing_caps_a_channel_below) {
    for (const Mapper *each : allMappers) {
        const Mapper &mapper = *each;
        SCOPED_TRACE(mapper.name);
        if (!mapper.isLit())
            continue;
        // -1 fills its channel and all above it; 255 less 1 is 0xFE.
        EXPECT_EQ(drawnPixel(mapper, 0x00FFFF, 256, -1), 0xFFFFFEFEu);
        EXPECT_EQ(drawnPixel(mapper, 0xFF00FF, 256, -1), 0xFFFFFFFEu);
        EXPECT_EQ(drawnPixel(mapper, 0xFFFF00, 256, -1), 0xFFFFFFFFu);
    }
}

TEST(span_mappers, a_negative_multiplier_is_signed_when_filtered_and_full_when_nearest) {
    for (const Mapper *each : allMappers) {
        const Mapper &mapper = *each;
        SCOPED_TRACE(mapper.name);
        if (!mapper.isLit())
            continue;
        EXPECT_EQ(drawnPixel(mapper, 0x010101, -1, 0), mapper.kind.isFiltered ? 0xFFFFFFFFu : 0xFFFFFFu);
    }
}

TEST(span_mappers, nearest_green_is_multiplied_in_its_place_and_wraps_before_blue) {
    // 0xFF00 * 66048 is 2^32 + 0xFE0000; blue has eight more bits of room and is capped.
    for (const Mapper *each : {&pipelineNearHPE, &nearNoHPE}) {
        const Mapper &mapper = *each;
        SCOPED_TRACE(mapper.name);
        EXPECT_EQ(drawnPixel(mapper, 0x00FFFF, 66048, 0), 0x00FEFFu);
    }
}

TEST(span_mappers, a_top_byte_runs_red_full_in_one_mapper_only) {
    for (const Mapper *each : allMappers) {
        const Mapper &mapper = *each;
        SCOPED_TRACE(mapper.name);
        if (!mapper.isLit())
            continue;
        const bool unmasked = mapper.pipeline && !mapper.kind.isFiltered;
        EXPECT_EQ(drawnPixel(mapper, 0x01203040, 256, 0), unmasked ? 0xFF3040u : 0x203040u);
    }
}

TEST(span_mappers, flat_light_is_that_of_the_start_of_the_left_edge) {
    for (const Mapper *each : {&linearNoHPE, &nearNoHPE}) {
        const Mapper &mapper = *each;
        SCOPED_TRACE(mapper.name);
        Screen screen;
        Surface texels = texelsOf(0x808080);
        Band band = bandOf({3, 3, 9, 9});
        band.mul = {128, 256, 256, 256};
        band.add = {3, 99, 99, 99};
        map(mapper, screen, texels, band);
        EXPECT_EQ(screen.surface.at(3, 3), 0x434343u);
        EXPECT_EQ(screen.surface.at(8, 8), 0x434343u);
    }
}

TEST(span_mappers, interpolated_light_runs_from_edge_to_edge_and_end_to_end) {
    for (const Mapper *each : allMappers) {
        const Mapper &mapper = *each;
        if (mapper.kind.light != MappedLight::interpolated)
            continue;
        SCOPED_TRACE(mapper.name);
        Screen screen;
        Surface texels = texelsOf(0x010101);
        Band band = bandOf({0, 0, 8, 8});
        band.mul = {0, 0, 0, 0};
        band.add = {0, 64, 16, 80}; // 2 for each column, 8 for each row
        map(mapper, screen, texels, band);
        for (int y = 0; y < 8; ++y)
            for (int x = 0; x < 8; ++x)
                EXPECT_EQ(screen.surface.at(x, y), static_cast<q_ulong>(2 * x + 8 * y) * 0x010101u);
    }
}

TEST(span_mappers, filtered_positions_count_sixteenths_and_nearest_ones_texels) {
    Surface texels(8, 8);
    for (int y = 0; y < 8; ++y)
        for (int x = 0; x < 8; ++x)
            texels.at(x, y) = static_cast<q_ulong>(0x100 * y + x);
    for (const Mapper *each : allMappers) {
        const Mapper &mapper = *each;
        SCOPED_TRACE(mapper.name);
        const int unit = mapper.kind.isFiltered ? 16 : 1;
        Screen screen;
        Band band = bandOf({0, 0, 4, 4});
        band.u = {unit, unit, 5 * unit, 5 * unit};
        band.v = {2 * unit, 6 * unit, 2 * unit, 6 * unit};
        map(mapper, screen, texels, band);
        for (int y = 0; y < 4; ++y)
            for (int x = 0; x < 4; ++x)
                EXPECT_EQ(screen.surface.at(x, y), static_cast<q_ulong>(0x100 * (y + 2) + x + 1));
    }
}

TEST(span_mappers, all_sixteenths_weigh_the_four_texels) {
    test::Random random(1);
    Surface texels = Surface::randomOfSize(random, 2, 2);
    for (const Mapper *each : allMappers) {
        const Mapper &mapper = *each;
        if (!mapper.kind.isFiltered)
            continue;
        SCOPED_TRACE(mapper.name);
        for (int v = 0; v < 16; ++v)
            for (int u = 0; u < 16; ++u) {
                Screen screen;
                map(mapper, screen, texels, bandOf({3, 3, 4, 4}, u, v));
                q_ulong expected = 0;
                for (int shift = 0; shift < 24; shift += 8) {
                    int sum = 0;
                    for (int y = 0; y < 2; ++y)
                        for (int x = 0; x < 2; ++x)
                            sum +=
                                (y ? v : 16 - v) * (x ? u : 16 - u) * static_cast<int>(texels.at(x, y) >> shift & 0xFF);
                    expected |= static_cast<q_ulong>(sum / 256) << shift;
                }
                ASSERT_EQ(screen.surface.at(3, 3), expected) << u << ", " << v;
            }
    }
}

TEST(span_mappers, at_a_whole_texel_its_neighbours_weigh_nothing) {
    Surface texels(1, 1, 0xFFFFFF);
    texels.at(0, 0) = 0x123456;
    for (const Mapper *each : allMappers) {
        const Mapper &mapper = *each;
        SCOPED_TRACE(mapper.name);
        Screen screen;
        map(mapper, screen, texels, bandOf({3, 3, 4, 4}));
        EXPECT_EQ(screen.surface.at(3, 3), 0x123456u);
    }
}

TEST(span_mappers, the_key_looks_at_four_whole_texels_and_not_at_the_colour) {
    for (const Mapper *each : {&linearHPEKeySrc, &pipelineLinearHPEKeySrc}) {
        const Mapper &mapper = *each;
        SCOPED_TRACE(mapper.name);
        for (int weightless = 0; weightless < 4; ++weightless) {
            Surface texels(2, 2, 0);
            texels.at(weightless % 2, weightless / 2) = 0x01000000; // black, but not 0
            Screen screen;
            map(mapper, screen, texels, bandOf({3, 3, 4, 4}));
            EXPECT_EQ(screen.surface.at(3, 3), 0u);
            EXPECT_EQ(screen.depths.at(3, 3), 0);
        }
        Surface texels(2, 2, 0);
        Screen screen;
        map(mapper, screen, texels, bandOf({3, 3, 4, 4}));
        EXPECT_EQ(screen.surface.at(3, 3), test::background);
        EXPECT_EQ(screen.depths.at(3, 3), test::emptyDepth);
    }
}

TEST(span_mappers, mappers_without_a_key_draw_zeros) {
    for (const Mapper *each : allMappers) {
        const Mapper &mapper = *each;
        if (mapper.kind.isKeyed)
            continue;
        EXPECT_EQ(drawnPixel(mapper, 0, 256, 0), 0u) << mapper.name;
    }
}

TEST(span_mappers, negative_positions_read_left_of_and_above_the_texture_pointer) {
    test::Random random(1);
    Surface texels(8, 8);
    for (int i = 0; i < 64; ++i)
        texels.at(i % 8, i / 8) = random.word() | 1; // no key
    for (const Mapper *each : allMappers) {
        const Mapper &mapper = *each;
        SCOPED_TRACE(mapper.name);
        const int unit = mapper.kind.isFiltered ? 16 : 1;
        Screen screen;
        Band band = bandOf({0, 0, 4, 4});
        band.u = {0, 0, -4 * unit, -4 * unit};
        band.v = {0, -4 * unit, 0, -4 * unit};
        map(mapper, screen, texels, band, everywhere, {4, 4});
        for (int y = 0; y < 4; ++y)
            for (int x = 0; x < 4; ++x) {
                const q_ulong texel = texels.at(4 - x, 4 - y);
                const q_ulong colour = mapper.kind.redIsUpperHalf && texel >> 24 != 0 ? texel | 0xFF0000 : texel;
                const q_ulong drawn = !mapper.isLit() ? texel : colour & 0xFFFFFF;
                EXPECT_EQ(screen.surface.at(x, y), drawn);
            }
    }
}

TEST(span_mappers, a_texture_with_its_rows_from_bottom_to_top_is_mapped_as_its_mirror) {
    for (int seed = 0; seed < 50; ++seed) {
        test::Random random(static_cast<std::uint64_t>(seed));
        Surface upright = Surface::randomOfSize(random, 9, 9);
        Surface mirrored = upright;
        for (int y = 0; y < 9; ++y)
            for (int x = 0; x < 9; ++x)
                mirrored.at(x, 8 - y) = upright.at(x, y);
        const int right = random.between(8, 16);
        for (const Mapper *each : allMappers) {
            const Mapper &mapper = *each;
            SCOPED_TRACE(mapper.name);
            const int last = mapper.kind.isFiltered ? 7 * 16 : 7;
            Band band = bandOf({0, 0, right, 16});
            band.u = {0, random.between(0, last), last, random.between(0, last)};
            band.v = {random.between(0, last), last, 0, random.between(0, last)};
            Screen expected;
            map(mapper, expected, upright, band);
            Screen screen;
            const q_ulong pitch = q_ulong{0} - static_cast<q_ulong>(mirrored.pitch());
            q_ulong *const lastRow = &mirrored.at(0, 8);
            if (mapper.older)
                map(mapper.older, screen.older, screen, lastRow, pitch, everywhere, band);
            else
                map(mapper.pipeline, screen.pipeline, screen, lastRow, pitch, everywhere, band);
            ASSERT_EQ(screen.surface.differenceFrom(expected.surface), "");
            ASSERT_FALSE(screen.untouched());
        }
    }
}

TEST(span_mappers, a_row_as_wide_as_minus_one_divides_without_a_trap) {
    // Edges so far apart that their distance wraps to just below 0, and a quantity of which the least number is left.
    for (const Mapper *each : allMappers) {
        const Mapper &mapper = *each;
        SCOPED_TRACE(mapper.name);
        Screen screen;
        Surface texels = texelsOf(0x123456);
        const int half = 1 << (30 - mapper.kind.fractionBits);
        Band band = bandOf({0, 3, 1, 4});
        band.x = {-2 * half, -2 * half, 2 * half - 1, 2 * half - 1};
        band.add = {0, 0, -2 * half, -2 * half};
        map(mapper, screen, texels, band);
        Screen expected;
        const auto pitch = static_cast<q_ulong>(texels.pitch());
        if (mapper.older)
            map(mapper.plainOlder, expected.older, expected, texels.pixels(), pitch, everywhere, band);
        else
            map(mapper.plainPipeline, expected.pipeline, expected, texels.pixels(), pitch, everywhere, band);
        EXPECT_EQ(screen.surface.differenceFrom(expected.surface), "");
    }
}

} // namespace
