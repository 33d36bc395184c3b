#include "catalogue/bound.h"
#include "plain/span_mappers.h"
#include "proofs/proofs.h"
#include "support/screen.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <functional>

namespace {

using plain::MappedLight;
using plain::MapperKind;
using test::DepthPlane;
using test::Screen;
using test::Surface;

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

/// A mapper of either module.
struct Mapper {
    const char *name;
    const MapperKind &kind;
    QM3DSpanMapper older = nullptr;
    QM3DSpanMapper plainOlder = nullptr;
    QMGLSpanMapper pipeline = nullptr;
    QMGLSpanMapper plainPipeline = nullptr;

    Mapper(const char *called, const MapperKind &of, QM3DSpanMapper mapper, QM3DSpanMapper twin)
        : name(called), kind(of), older(mapper), plainOlder(twin) {}
    Mapper(const char *called, const MapperKind &of, QMGLSpanMapper mapper, QMGLSpanMapper twin)
        : name(called), kind(of), pipeline(mapper), plainPipeline(twin) {}

    /// The unit of positions: sixteenths where texels are filtered.
    int unit() const { return kind.isFiltered ? 16 : 1; }
};

const Mapper mappers[] = {
    {"i3D_Mapping_Linear_HPE", plain::linearHPE, olderMapper(plain::litMode, false), plain::i3D_Mapping_Linear_HPE},
    {"i3D_Mapping_Linear_HPE_KeySrc", plain::linearHPEKeySrc, olderMapper(plain::keyedMode, false),
     plain::i3D_Mapping_Linear_HPE_KeySrc},
    {"i3D_Mapping_Near_HPE", plain::nearHPE, olderMapper(plain::litMode, true), plain::i3D_Mapping_Near_HPE},
    {"i3D_Mapping_Linear_NoHPE", plain::linearNoHPE, olderMapper(plain::flatMode, false),
     plain::i3D_Mapping_Linear_NoHPE},
    {"i3D_Mapping_Near_NoHPE", plain::nearNoHPE, olderMapper(plain::flatMode, true), plain::i3D_Mapping_Near_NoHPE},
    {"i3D_Mapping_Near_NoLight_NoHPE", plain::nearNoLightNoHPE, olderMapper(plain::unlitMode, false),
     plain::i3D_Mapping_Near_NoLight_NoHPE},
    {"VKD_i3D_Mapping_Linear_HPE", plain::pipelineLinearHPE, VKD_i3D_Mapping_Linear_HPE,
     plain::VKD_i3D_Mapping_Linear_HPE},
    {"VKD_i3D_Mapping_Linear_HPE_KeySrc", plain::linearHPEKeySrc, VKD_i3D_Mapping_Linear_HPE_KeySrc,
     plain::VKD_i3D_Mapping_Linear_HPE_KeySrc},
    {"VKD_i3D_Mapping_Near_HPE", plain::pipelineNearHPE, VKD_i3D_Mapping_Near_HPE, plain::VKD_i3D_Mapping_Near_HPE},
};

/// Calls `test` with each mapper, or with those of a kind.
template <class Test, class Applies>
void forMappers(Applies applies, Test test) {
    for (const Mapper &mapper : mappers)
        if (std::invoke(applies, mapper.kind)) {
            SCOPED_TRACE(mapper.name);
            test(mapper);
        }
}
template <class Test>
void forMappers(Test test) {
    forMappers([](const MapperKind &) { return true; }, test);
}
bool isLit(const MapperKind &kind) {
    return kind.light != MappedLight::none;
}
template <MappedLight light>
bool hasLight(const MapperKind &kind) {
    return kind.light == light;
}

/// One number of a band at the upper and lower end of its left and of its right edge.
struct Ends {
    int left0 = 0;
    int left1 = left0;
    int right0 = left0;
    int right1 = left0;
};

struct Band {
    Ends u = {};
    Ends v = {};
    Ends x = {};
    Ends y = {};
    Ends add = {};
    Ends mul = {256};
    Ends z = {};
};

/// A rectangle of the screen.
Band bandOf(int left, int top, int right, int bottom) {
    return {.x = {left, left, right, right}, .y = {top, bottom, top, bottom}};
}

constexpr tagRECT everywhere = {0, 0, 16, 16};

template <class Function, class Data>
void map(Function function, Data &data, Screen &screen, q_ulong *texels, int texelPitch, const Band &b, tagRECT clip) {
    function(&data, screen.surface.pixels(), texels, &clip, screen.pitch(), static_cast<q_ulong>(texelPitch), b.u.left0,
             b.u.left1, b.u.right0, b.u.right1, b.v.left0, b.v.left1, b.v.right0, b.v.right1, b.x.left0, b.x.left1,
             b.x.right0, b.x.right1, b.y.left0, b.y.left1, b.y.right0, b.y.right1, b.add.left0, b.add.left1,
             b.add.right0, b.add.right1, b.mul.left0, b.mul.left1, b.mul.right0, b.mul.right1, b.z.left0, b.z.left1,
             b.z.right0, b.z.right1);
}
void map(const Mapper &mapper, Screen &screen, q_ulong *texels, int texelPitch, const Band &band, const tagRECT &clip) {
    if (mapper.older)
        map(mapper.older, screen.older, screen, texels, texelPitch, band, clip);
    else
        map(mapper.pipeline, screen.pipeline, screen, texels, texelPitch, band, clip);
}
void map(const Mapper &mapper, Screen &screen, Surface &texels, const Band &band, const tagRECT &clip = everywhere) {
    map(mapper, screen, texels.pixels(), texels.pitch(), band, clip);
}
/// With texels of one colour.
void map(const Mapper &mapper, Screen &screen, const Band &band, q_ulong texel = 0x123456) {
    Surface texels(4, 4, texel);
    map(mapper, screen, texels, band);
}

/// What a mapper makes of one texel.
q_ulong drawnPixel(const Mapper &mapper, q_ulong texel, int mul, int add) {
    Screen screen;
    Band band = bandOf(3, 3, 4, 4);
    band.mul = {mul};
    band.add = {add};
    map(mapper, screen, band, texel);
    return screen.surface.at(3, 3);
}

/// The row that a mapper of the older module would have.
catalogue::Row rowOf(const Mapper &mapper) {
    catalogue::Row row = {.functions = catalogue::callOf(mapper.older, mapper.plainOlder)};
    catalogue::forEachRow([&row](const catalogue::Row &each) {
        if (each.name == "VKD_i3D_Mapping_Linear_HPE")
            row = each;
    });
    row.name = mapper.name;
    row.functions = catalogue::callOf(mapper.older, mapper.plainOlder);
    if (row.name.find("Near") != std::string_view::npos)
        row.lookup = catalogue::Lookup::nearest;
    if (!isLit(mapper.kind)) {
        row.fractions = catalogue::Fractions::none;
        row.topByte = catalogue::TopByte::copied;
        row.sums = catalogue::Sum::stayInside;
    }
    return row;
}

TEST(span_mappers, those_without_a_name_keep_what_is_proved_of_rows) {
    forMappers([](const Mapper &mapper) {
        if (!mapper.older)
            return;
        const catalogue::Row row = rowOf(mapper);
        for (const proofs::Proof &proof : proofs::allProofs())
            if (proofs::applies(proof, row))
                proof.prove(row);
    });
}

TEST(span_mappers, the_format_ends_where_its_fraction_bits_leave_no_room) {
    forMappers([](const Mapper &mapper) {
        const int limit = 1 << (31 - mapper.kind.fractionBits);
        for (const int end : {limit - 1, limit}) {
            // A right edge at the largest number of whole pixels is reached; one more turns negative, and the row is
            // empty.
            Screen screen;
            Band band = bandOf(0, 2, end, 3);
            map(mapper, screen, band);
            EXPECT_EQ(screen.surface.at(0, 2), end < limit ? 0x123456u : test::background);
            if (!mapper.kind.testsDepth)
                continue;
            // A depth that turns negative stands nearer than anything.
            Screen deep(16, 16, 0, 100);
            band = bandOf(0, 2, 1, 3);
            band.z = {end};
            map(mapper, deep, band);
            EXPECT_EQ(deep.surface.at(0, 2), end < limit ? 0u : 0x123456u);
            EXPECT_EQ(deep.depths.at(0, 2), end < limit ? 100 : static_cast<short>(-end));
        }
    });
}

TEST(span_mappers, bands_without_rows_or_columns_draw_nothing) {
    forMappers([](const Mapper &mapper) {
        Screen screen;
        Band apart = bandOf(2, 0, 9, 0);
        apart.y = {1, 4, 4, 9};
        map(mapper, screen, apart);
        Band withoutHeight = bandOf(2, 0, 9, 0);
        withoutHeight.y = {4, 4, 2, 9};
        map(mapper, screen, withoutHeight);
        map(mapper, screen, bandOf(9, 2, 3, 8)); // the right edge left of the left one
        EXPECT_TRUE(screen.untouched());
    });
}

TEST(span_mappers, less_than_a_pixel_across_a_boundary_draws_one_pixel) {
    // At row 6 of 10 the edges stand at 2.6 and 3.2, at row 4 at 2.4 and 2.8: the latter cross no boundary.
    forMappers([](const Mapper &mapper) {
        Screen screen;
        Band band = bandOf(2, 0, 2, 10);
        band.x = {2, 3, 2, 4};
        map(mapper, screen, band);
        for (int x = 0; x < 8; ++x) {
            EXPECT_EQ(screen.surface.at(x, 4), test::background);
            EXPECT_EQ(screen.surface.at(x, 6), x == 2 ? 0x123456u : test::background);
        }
    });
}

TEST(span_mappers, a_cut_span_keeps_the_values_of_the_whole_one) {
    forMappers([](const Mapper &mapper) {
        test::Random random(1);
        Surface texels = Surface::randomOfSize(random, 16, 16);
        Band band = {.u = {0, 15 * mapper.unit(), 7 * mapper.unit(), mapper.unit()},
                     .v = {9 * mapper.unit(), 0, mapper.unit(), 15 * mapper.unit()},
                     .x = {1, 5, 15, 9},
                     .y = {0, 16, 0, 16},
                     .add = {0, 60, 17, 33},
                     .mul = {300, 20, 100, 256},
                     .z = {0, 3000, 1000, 77}};
        Screen whole;
        map(mapper, whole, texels, band);
        for (int round = 0; round < 20; ++round) {
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
    });
}

TEST(span_mappers, right_column_and_lower_row_are_left_to_the_neighbours) {
    forMappers([](const Mapper &mapper) {
        Screen screen;
        map(mapper, screen, bandOf(3, 2, 7, 5));
        const Surface expected = test::painted(Screen().surface, {3, 2, 7, 5}, 0x123456);
        EXPECT_EQ(screen.surface.differenceFrom(expected), "");
    });
}

TEST(span_mappers, a_z_plane_within_the_picture_is_read_and_written_pixel_by_pixel) {
    forMappers(&MapperKind::testsDepth, [](const Mapper &mapper) {
        constexpr int depth = 1000;
        constexpr q_ulong colour = 0x123456;
        test::Random random(78);
        Screen screen;
        for (int offset = 60; offset < 400; ++offset) { // in depths from the picture's first pixel on
            Surface expected = Surface::randomOfSize(random, 16, 16);
            screen.surface = expected;
            auto *const pixels = reinterpret_cast<char *>(expected.pixels());
            for (int y = 4; y < 8; ++y)
                for (int x = 2; x < 14; ++x) {
                    const std::ptrdiff_t place = static_cast<std::ptrdiff_t>(y) * expected.pitch() + x;
                    const short drawn = depth;
                    short found = 0;
                    std::memcpy(&found, pixels + 2 * (offset + place), sizeof(found));
                    if (depth >= found)
                        continue;
                    std::memcpy(pixels + 4 * place, &colour, sizeof(colour));
                    std::memcpy(pixels + 2 * (offset + place), &drawn, sizeof(drawn));
                }
            screen.older.zBuffer = screen.pipeline.zBuffer =
                reinterpret_cast<short *>(screen.surface.pixels()) + offset;
            Band band = bandOf(2, 4, 14, 8);
            band.z = {depth};
            map(mapper, screen, band, colour);
            ASSERT_EQ(screen.surface.differenceFrom(expected), "") << offset;
        }
    });
}

TEST(span_mappers, of_two_equal_depths_the_first_drawn_stays) {
    forMappers(&MapperKind::testsDepth, [](const Mapper &mapper) {
        Screen screen;
        Band band = bandOf(3, 3, 6, 6);
        band.z = {50};
        map(mapper, screen, band, 0x111111);
        map(mapper, screen, band, 0x222222);
        EXPECT_EQ(screen.surface.at(4, 4), 0x111111u);
        EXPECT_EQ(screen.depths.at(4, 4), 50);
        band.z = {49};
        map(mapper, screen, band, 0x222222);
        EXPECT_EQ(screen.surface.at(4, 4), 0x222222u);
        EXPECT_EQ(screen.depths.at(4, 4), 49);
    });
}

TEST(span_mappers, texels_of_hidden_pixels_are_not_read) {
    forMappers(&MapperKind::testsDepth, [](const Mapper &mapper) {
        constexpr int shown = 18;
        test::PageEndPixels texels(2 * (shown + 1));
        std::fill_n(texels.data(), 2 * (shown + 1), 0x808080);
        Screen screen(64, 1, 0, -32768);
        for (int x = 0; x < shown; ++x)
            screen.depths.at(x, 0) = 1;
        Band band = bandOf(0, 0, 64, 1);
        band.u = {0, 0, 64 * mapper.unit(), 64 * mapper.unit()};
        map(mapper, screen, texels.data(), shown + 1, band, {0, 0, 64, 1});
        for (int x = 0; x < 64; ++x)
            EXPECT_EQ(screen.surface.at(x, 0), x < shown ? 0x808080u : 0u) << x;
    });
}

TEST(span_mappers, mappers_without_HPE_neither_test_nor_write_depth) {
    forMappers([](const MapperKind &kind) { return !kind.testsDepth; },
               [](const Mapper &mapper) {
                   Screen screen(16, 16, 0, -32768);
                   map(mapper, screen, bandOf(3, 3, 6, 6));
                   EXPECT_EQ(screen.surface.at(4, 4), 0x123456u);
                   EXPECT_TRUE(screen.depths == DepthPlane(screen.surface, -32768));
               });
}

TEST(span_mappers, a_depth_below_16_bits_passes_and_is_stored_wrapped) {
    // With 16 fraction bits a number of 32 bits has no room for it.
    const auto hasRoom = [](const MapperKind &kind) { return kind.testsDepth && kind.fractionBits < 16; };
    forMappers(hasRoom, [](const Mapper &mapper) {
        Screen screen(16, 16, 0, -32768);
        Band band = bandOf(3, 3, 6, 6);
        band.z = {-40000};
        map(mapper, screen, band);
        EXPECT_EQ(screen.surface.at(4, 4), 0x123456u);
        EXPECT_EQ(screen.depths.at(4, 4), 25536);
    });
}

TEST(span_mappers, only_two_mappers_leave_out_what_is_not_beyond_the_near_limit) {
    forMappers([](const Mapper &mapper) {
        Screen screen;
        Band band = bandOf(3, 3, 6, 6);
        band.z = {9, 9, 11, 11}; // 9, 9.67 and 10.33
        screen.pipeline.nearLimit = 9;
        map(mapper, screen, band);
        const bool limited = mapper.pipeline && !mapper.kind.isKeyed;
        EXPECT_EQ(screen.surface.at(3, 4), limited ? test::background : 0x123456u);
        EXPECT_EQ(screen.surface.at(4, 4), limited ? test::background : 0x123456u);
        EXPECT_EQ(screen.surface.at(5, 4), 0x123456u); // a polygon across the limit loses only its near part
    });
}

TEST(span_mappers, light_multiplies_adds_and_caps_above_alone) {
    forMappers(isLit, [](const Mapper &mapper) {
        const q_ulong black = mapper.kind.isKeyed ? 0xFF000000 : 0;
        EXPECT_EQ(drawnPixel(mapper, 0xC08040, 256, 0), 0xC08040u);
        EXPECT_EQ(drawnPixel(mapper, 0xC08040, 128, 10), 0x6A4A2Au); // half and ten more
        EXPECT_EQ(drawnPixel(mapper, 0xC08041, 511, 0), 0xFFFF81u);  // 0xC0 and 0x80 double are too much: 255 each
        EXPECT_EQ(drawnPixel(mapper, 0xFFFFFF, 255, 0), 0xFEFEFEu);  // truncated
        EXPECT_EQ(drawnPixel(mapper, black, 256, 300), 0xFFFFFFu);
        // -1 fills its channel and all above it; 255 less 1 is 0xFE.
        EXPECT_EQ(drawnPixel(mapper, 0x00FFFF, 256, -1), 0xFFFFFEFEu);
        EXPECT_EQ(drawnPixel(mapper, 0xFF00FF, 256, -1), 0xFFFFFFFEu);
        EXPECT_EQ(drawnPixel(mapper, 0xFFFF00, 256, -1), 0xFFFFFFFFu);
        // A negative multiplier is signed when filtered and full when nearest.
        EXPECT_EQ(drawnPixel(mapper, 0x010101, -1, 0), mapper.kind.isFiltered ? 0xFFFFFFFFu : 0xFFFFFFu);
    });
    forMappers(hasLight<MappedLight::none>,
               [](const Mapper &mapper) { EXPECT_EQ(drawnPixel(mapper, 0x99C08040, 128, 10), 0x99C08040u); });
}

TEST(span_mappers, filtered_light_has_as_many_bits_as_are_left_where_it_is_walked) {
    const auto isFilteredAndLit = [](const MapperKind &kind) { return isLit(kind) && kind.isFiltered; };
    forMappers(isFilteredAndLit, [](const Mapper &mapper) {
        for (const int mul : {16383, 16384, 32767, 32768, 65536, 100000, 131071, -1, -16384, -16385, -32769, -100000}) {
            const int lost = hasLight<MappedLight::flat>(mapper.kind) ? 0 : mapper.kind.fractionBits;
            const int walked = static_cast<int>(static_cast<unsigned>(mul) << lost) >> lost;
            const auto lit = [walked](int channel) {
                return static_cast<q_ulong>(std::min(channel * walked >> 8, 255));
            };
            EXPECT_EQ(drawnPixel(mapper, 0x010203, mul, 0), lit(1) << 16 | lit(2) << 8 | lit(3)) << mul;
        }
    });
}

TEST(span_mappers, nearest_green_is_multiplied_in_its_place_and_wraps_before_blue) {
    // 0xFF00 * 66048 is 2^32 + 0xFE0000; blue has eight more bits of room and is capped.
    const auto isNearestAndLit = [](const MapperKind &kind) { return isLit(kind) && !kind.isFiltered; };
    forMappers(isNearestAndLit, [](const Mapper &mapper) {
        // Where light runs along in 18 fraction bits, it is never as strong.
        if (hasLight<MappedLight::flat>(mapper.kind) || mapper.kind.fractionBits < 15) {
            EXPECT_EQ(drawnPixel(mapper, 0x00FFFF, 66048, 0), 0x00FEFFu);
        }
    });
}

TEST(span_mappers, a_top_byte_runs_red_full_in_one_mapper_only) {
    forMappers(isLit, [](const Mapper &mapper) {
        const bool unmasked = mapper.pipeline && !mapper.kind.isFiltered;
        EXPECT_EQ(drawnPixel(mapper, 0x01203040, 256, 0), unmasked ? 0xFF3040u : 0x203040u);
    });
}

TEST(span_mappers, flat_light_is_that_of_the_start_of_the_left_edge) {
    forMappers(hasLight<MappedLight::flat>, [](const Mapper &mapper) {
        Screen screen;
        Band band = bandOf(3, 3, 9, 9);
        band.mul = {128, 256, 256, 256};
        band.add = {3, 99, 99, 99};
        map(mapper, screen, band, 0x808080);
        EXPECT_EQ(screen.surface.at(3, 3), 0x434343u);
        EXPECT_EQ(screen.surface.at(8, 8), 0x434343u);
    });
}

TEST(span_mappers, interpolated_light_runs_from_edge_to_edge_and_end_to_end) {
    forMappers(hasLight<MappedLight::interpolated>, [](const Mapper &mapper) {
        Screen screen;
        Band band = bandOf(0, 0, 8, 8);
        band.mul = {0};
        band.add = {0, 64, 16, 80}; // 2 for each column, 8 for each row
        map(mapper, screen, band, 0x010101);
        for (int y = 0; y < 8; ++y)
            for (int x = 0; x < 8; ++x)
                EXPECT_EQ(screen.surface.at(x, y), static_cast<q_ulong>(2 * x + 8 * y) * 0x010101u);
    });
}

TEST(span_mappers, filtered_positions_count_sixteenths_and_nearest_ones_texels) {
    Surface texels =
        test::painted(Surface(8, 8), {0, 0, 8, 8}, [](int x, int y) { return static_cast<q_ulong>(0x100 * y + x); });
    forMappers([&texels](const Mapper &mapper) {
        const int unit = mapper.unit();
        Screen screen;
        Band band = bandOf(0, 0, 4, 4);
        band.u = {unit, unit, 5 * unit, 5 * unit};
        band.v = {2 * unit, 6 * unit, 2 * unit, 6 * unit};
        map(mapper, screen, texels, band);
        for (int y = 0; y < 4; ++y)
            for (int x = 0; x < 4; ++x)
                EXPECT_EQ(screen.surface.at(x, y), texels.at(x + 1, y + 2));
    });
}

TEST(span_mappers, the_key_looks_at_four_whole_texels_and_not_at_the_colour) {
    forMappers(&MapperKind::isKeyed, [](const Mapper &mapper) {
        for (int weightless = 0; weightless < 4; ++weightless) {
            Surface texels(2, 2, 0);
            texels.at(weightless % 2, weightless / 2) = 0x01000000; // black, but not 0
            Screen screen;
            map(mapper, screen, texels, bandOf(3, 3, 4, 4));
            EXPECT_EQ(screen.surface.at(3, 3), 0u);
            EXPECT_EQ(screen.depths.at(3, 3), 0);
        }
    });
    forMappers([](const Mapper &mapper) {
        Screen screen;
        map(mapper, screen, bandOf(3, 3, 4, 4), 0);
        EXPECT_EQ(screen.surface.at(3, 3), mapper.kind.isKeyed ? test::background : 0u);
        EXPECT_EQ(screen.untouched(), mapper.kind.isKeyed);
    });
}

TEST(span_mappers, a_row_as_wide_as_minus_one_divides_without_a_trap) {
    // Edges so far apart that their distance wraps to just below 0, and a quantity of which the least number is left.
    forMappers([](const Mapper &mapper) {
        const int half = 1 << (30 - mapper.kind.fractionBits);
        Band band = bandOf(-2 * half, 3, 2 * half - 1, 4);
        band.add = {0, 0, -2 * half, -2 * half};
        Screen screen;
        map(mapper, screen, band);
        Screen expected;
        Surface texels(4, 4, 0x123456);
        if (mapper.older)
            map(mapper.plainOlder, expected.older, expected, texels.pixels(), texels.pitch(), band, everywhere);
        else
            map(mapper.plainPipeline, expected.pipeline, expected, texels.pixels(), texels.pitch(), band, everywhere);
        EXPECT_EQ(screen.surface.differenceFrom(expected.surface), "");
    });
}

} // namespace
