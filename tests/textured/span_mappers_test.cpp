#include "naive.h"

#include <gtest/gtest.h>

#include <climits>

namespace {

using test::allMappers;
using test::Band;
using test::BandEnds;
using test::bandOf;
using test::callMapper;
using test::Case;
using test::DepthPlane;
using test::forEachCase;
using test::Light;
using test::Mapper;
using test::naiveMap;
using test::Surface;
using test::Target;
using test::Texture;

constexpr tagRECT everywhere = {0, 0, 16, 16};

/// A surface and its Z plane.
struct Screen {
    Surface surface;
    DepthPlane depths;

    explicit Screen(q_ulong colour = 0x55555555, short depth = test::emptyDepth)
        : surface(16, 16, colour), depths(surface, depth) {}

    Target target() { return {surface, depths}; }
};

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
    callMapper(mapper, screen.target(), {texels}, everywhere, band.ends());
    return screen.surface.at(3, 3);
}

/// A black texel that is drawn: for a keyed mapper one with a top byte.
q_ulong blackOf(const Mapper &mapper) {
    return mapper.keyed ? 0xFF000000 : 0;
}

int randomValue(test::Random &random, bool wild, int low, int high) {
    return wild ? static_cast<int>(random.word()) : random.between(low, high);
}

/// Bands of all kinds: within the formats and far beyond them, over textures in either row order.
void agreesWithNaiveMapper(const Mapper &mapper) {
    forEachCase(
        mapper.name,
        [&mapper](Case &c) {
            test::Random &random = c.random;
            Surface surface = Surface::random(random, 10);
            DepthPlane depths(surface);
            const bool closeBy = random.oneIn(2);
            for (short &entry : depths.all())
                entry = random.oneIn(3) ? test::emptyDepth : static_cast<short>(random.between(-100, 400));
            Surface texels = Surface::randomOfSize(random, 8, 8);
            if (mapper.keyed)
                for (int y = 0; y < 8; ++y)
                    for (int x = 0; x < 8; ++x)
                        if (!random.oneIn(4))
                            texels.at(x, y) = 0;
            const Texture texture = {texels, random.between(0, 7), random.between(0, 7), random.oneIn(4) ? -1 : 1};

            // Texels are trusted: a position may not leave the texture, and where other values may run wild, it stands.
            const bool wild = random.oneIn(8);
            const int unit = mapper.filtered ? 16 : 1;
            const auto texelEnds = [&](int low, int high) {
                const auto one = [&] { return random.between(low * unit, high * unit); };
                const int all = one();
                return wild ? test::Ends{all, all, all, all} : test::Ends{one(), one(), one(), one()};
            };
            const int firstRow = texture.rowStep > 0 ? -texture.y : texture.y - 7;
            const auto ends = [&](int low, int high) {
                const bool wildOne = wild && random.oneIn(2);
                const auto one = [&] { return randomValue(random, wildOne, low, high); };
                return test::Ends{one(), one(), one(), one()};
            };
            Band band;
            band.u = texelEnds(-texture.x, 7 - texture.x);
            band.v = texelEnds(firstRow, firstRow + 7);
            band.x = ends(-4, 14);
            if (random.oneIn(2)) { // most often the right edge stands to the right
                band.x.right0 = randomValue(random, false, band.x.left0, 14);
                band.x.right1 = randomValue(random, false, band.x.left1, 14);
            }
            band.y = ends(-4, 14);
            if (!wild) {
                band.y.left1 = random.between(band.y.left0, 16);
                band.y.right1 = random.between(band.y.right0, 16);
            }
            band.add = ends(-40, 300);
            band.mul = ends(-100, 600);
            band.z = closeBy ? ends(-200, 500) : ends(0, 3000);
            const tagRECT clip = random.rectInsideOrEmpty(surface.width(), surface.height());

            Surface expected = surface;
            DepthPlane expectedDepths = depths;
            const int nearLimit = random.oneIn(2) ? 0 : random.between(-100, 100);
            naiveMap(mapper, {expected, expectedDepths, nearLimit}, texture, clip, band.ends());
            callMapper(mapper, {surface, depths, nearLimit}, texture, clip, band.ends());
            c.expectEqual(surface, expected);
            expectEqual(c, depths, expectedDepths);
        },
        20000);
}

TEST(VKD_i3D_Mapping_Linear_HPE, agrees_with_a_naive_mapper) {
    agreesWithNaiveMapper(test::pipelineLinearHPE);
}

TEST(VKD_i3D_Mapping_Linear_HPE_KeySrc, agrees_with_a_naive_mapper) {
    agreesWithNaiveMapper(test::pipelineLinearHPEKeySrc);
}

TEST(VKD_i3D_Mapping_Near_HPE, agrees_with_a_naive_mapper) {
    agreesWithNaiveMapper(test::pipelineNearHPE);
}

TEST(i3D_Mapping_Linear_HPE, agrees_with_a_naive_mapper) {
    agreesWithNaiveMapper(test::linearHPE);
}

TEST(i3D_Mapping_Linear_HPE_KeySrc, agrees_with_a_naive_mapper) {
    agreesWithNaiveMapper(test::linearHPEKeySrc);
}

TEST(i3D_Mapping_Near_HPE, agrees_with_a_naive_mapper) {
    agreesWithNaiveMapper(test::nearHPE);
}

TEST(i3D_Mapping_Linear_NoHPE, agrees_with_a_naive_mapper) {
    agreesWithNaiveMapper(test::linearNoHPE);
}

TEST(i3D_Mapping_Near_NoHPE, agrees_with_a_naive_mapper) {
    agreesWithNaiveMapper(test::nearNoHPE);
}

TEST(i3D_Mapping_Near_NoLight_NoHPE, agrees_with_a_naive_mapper) {
    agreesWithNaiveMapper(test::nearNoLightNoHPE);
}

TEST(span_mappers, the_format_ends_where_its_fraction_bits_leave_no_room) {
    // The right edge at the largest number of whole pixels is reached; one more turns negative, and the row is empty.
    for (const Mapper &mapper : allMappers) {
        SCOPED_TRACE(mapper.name);
        Surface texels = texelsOf(0x123456);
        const int limit = 1 << (31 - mapper.fractionBits);
        for (const int right : {limit - 1, limit}) {
            Screen screen;
            Band band = bandOf({0, 2, 1, 3});
            band.x.right0 = band.x.right1 = right;
            callMapper(mapper, screen.target(), {texels}, everywhere, band.ends());
            EXPECT_EQ(screen.surface.at(0, 2), right < limit ? 0x123456u : 0x55555555u);
        }
    }
}

TEST(span_mappers, depth_wraps_where_its_fraction_bits_leave_no_room) {
    // What turns negative stands nearer than anything.
    for (const Mapper &mapper : allMappers) {
        if (!mapper.testsDepth)
            continue;
        SCOPED_TRACE(mapper.name);
        Surface texels = texelsOf(0x123456);
        const int limit = 1 << (31 - mapper.fractionBits);
        for (const int depth : {limit - 1, limit}) {
            Screen screen(0, 100);
            Band band = bandOf({0, 2, 1, 3});
            band.z = {depth, depth, depth, depth};
            callMapper(mapper, screen.target(), {texels}, everywhere, band.ends());
            EXPECT_EQ(screen.surface.at(0, 2), depth < limit ? 0u : 0x123456u);
            EXPECT_EQ(screen.depths.at(0, 2), depth < limit ? 100 : static_cast<short>(-depth));
        }
    }
}

TEST(span_mappers, edges_that_share_no_row_draw_nothing) {
    for (const Mapper &mapper : allMappers) {
        SCOPED_TRACE(mapper.name);
        Screen screen;
        Surface texels = texelsOf(0x123456);
        Band band = bandOf({2, 0, 9, 0});
        band.y = {1, 4, 4, 9};
        callMapper(mapper, screen.target(), {texels}, everywhere, band.ends());
        EXPECT_EQ(screen.surface.differenceFrom(Screen().surface), "");
        EXPECT_TRUE(screen.depths == Screen().depths);
    }
}

TEST(span_mappers, an_edge_without_height_draws_nothing) {
    for (const Mapper &mapper : allMappers) {
        SCOPED_TRACE(mapper.name);
        Screen screen;
        Surface texels = texelsOf(0x123456);
        Band band = bandOf({2, 0, 9, 0});
        band.y = {4, 4, 2, 9};
        callMapper(mapper, screen.target(), {texels}, everywhere, band.ends());
        EXPECT_EQ(screen.surface.differenceFrom(Screen().surface), "");
    }
}

TEST(span_mappers, a_right_edge_left_of_the_left_edge_draws_nothing) {
    for (const Mapper &mapper : allMappers) {
        SCOPED_TRACE(mapper.name);
        Screen screen;
        Surface texels = texelsOf(0x123456);
        callMapper(mapper, screen.target(), {texels}, everywhere, bandOf({9, 2, 3, 8}).ends());
        EXPECT_EQ(screen.surface.differenceFrom(Screen().surface), "");
    }
}

TEST(span_mappers, less_than_a_pixel_across_a_boundary_draws_one_pixel) {
    // At row 6 of 10 the edges stand at 2.6 and 3.2, at row 4 at 2.4 and 2.8: the latter cross no boundary.
    for (const Mapper &mapper : allMappers) {
        SCOPED_TRACE(mapper.name);
        Screen screen;
        Surface texels = texelsOf(0x123456);
        Band band = bandOf({2, 0, 2, 10});
        band.x = {2, 3, 2, 4};
        callMapper(mapper, screen.target(), {texels}, everywhere, band.ends());
        for (int x = 0; x < 8; ++x) {
            EXPECT_EQ(screen.surface.at(x, 4), 0x55555555u);
            EXPECT_EQ(screen.surface.at(x, 6), x == 2 ? 0x123456u : 0x55555555u);
        }
    }
}

TEST(span_mappers, a_cut_span_keeps_the_values_of_the_whole_one) {
    for (const Mapper &mapper : allMappers) {
        SCOPED_TRACE(mapper.name);
        for (int seed = 0; seed < 50; ++seed) {
            test::Random random(static_cast<std::uint64_t>(seed));
            Surface texels = Surface::randomOfSize(random, 16, 16);
            const int unit = mapper.filtered ? 16 : 1;
            const auto ends = [&random](int low, int high) {
                return test::Ends{random.between(low, high), random.between(low, high), random.between(low, high),
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
            callMapper(mapper, whole.target(), {texels}, everywhere, band.ends());
            const tagRECT clip = random.rectInside(16, 16);
            Screen cut;
            callMapper(mapper, cut.target(), {texels}, clip, band.ends());
            for (int y = 0; y < 16; ++y)
                for (int x = 0; x < 16; ++x) {
                    const bool inside = x >= clip.left && x < clip.right && y >= clip.top && y < clip.bottom;
                    ASSERT_EQ(cut.surface.at(x, y), inside ? whole.surface.at(x, y) : 0x55555555u);
                    ASSERT_EQ(cut.depths.at(x, y), inside ? whole.depths.at(x, y) : test::emptyDepth);
                }
        }
    }
}

TEST(span_mappers, right_column_and_lower_row_are_left_to_the_neighbours) {
    for (const Mapper &mapper : allMappers) {
        SCOPED_TRACE(mapper.name);
        Screen screen;
        Surface texels = texelsOf(0x123456);
        callMapper(mapper, screen.target(), {texels}, everywhere, bandOf({3, 2, 7, 5}).ends());
        for (int y = 0; y < 16; ++y)
            for (int x = 0; x < 16; ++x)
                EXPECT_EQ(screen.surface.at(x, y) == 0x123456, x >= 3 && x < 7 && y >= 2 && y < 5) << x << ", " << y;
    }
}

TEST(span_mappers, of_two_equal_depths_the_first_drawn_stays) {
    for (const Mapper &mapper : allMappers) {
        if (!mapper.testsDepth)
            continue;
        SCOPED_TRACE(mapper.name);
        Screen screen;
        Surface first = texelsOf(0x111111);
        Surface second = texelsOf(0x222222);
        Band band = bandOf({3, 3, 6, 6});
        band.z = {50, 50, 50, 50};
        callMapper(mapper, screen.target(), {first}, everywhere, band.ends());
        callMapper(mapper, screen.target(), {second}, everywhere, band.ends());
        EXPECT_EQ(screen.surface.at(4, 4), 0x111111u);
        EXPECT_EQ(screen.depths.at(4, 4), 50);
        band.z = {49, 49, 49, 49};
        callMapper(mapper, screen.target(), {second}, everywhere, band.ends());
        EXPECT_EQ(screen.surface.at(4, 4), 0x222222u);
        EXPECT_EQ(screen.depths.at(4, 4), 49);
    }
}

TEST(span_mappers, mappers_without_HPE_neither_test_nor_write_depth) {
    for (const Mapper &mapper : allMappers) {
        if (mapper.testsDepth)
            continue;
        SCOPED_TRACE(mapper.name);
        Screen screen(0, -32768);
        Surface texels = texelsOf(0x123456);
        callMapper(mapper, screen.target(), {texels}, everywhere, bandOf({3, 3, 6, 6}).ends());
        EXPECT_EQ(screen.surface.at(4, 4), 0x123456u);
        EXPECT_TRUE(screen.depths == DepthPlane(screen.surface, -32768));
    }
}

TEST(span_mappers, a_depth_below_16_bits_passes_and_is_stored_wrapped) {
    for (const Mapper &mapper : {test::pipelineLinearHPE, test::pipelineNearHPE}) {
        SCOPED_TRACE(mapper.name);
        Screen screen(0, -32768);
        Surface texels = texelsOf(0x123456);
        Band band = bandOf({3, 3, 6, 6});
        band.z = {-40000, -40000, -40000, -40000};
        callMapper(mapper, screen.target(), {texels}, everywhere, band.ends());
        EXPECT_EQ(screen.surface.at(4, 4), 0x123456u);
        EXPECT_EQ(screen.depths.at(4, 4), 25536);
    }
}

TEST(span_mappers, only_two_mappers_leave_out_what_is_not_beyond_the_near_limit) {
    for (const Mapper &mapper : allMappers) {
        SCOPED_TRACE(mapper.name);
        Screen screen;
        Surface texels = texelsOf(0x123456);
        Band band = bandOf({3, 3, 6, 6});
        band.z = {9, 9, 11, 11}; // 9, 9.67 and 10.33
        Target target = screen.target();
        target.nearLimit = 9;
        callMapper(mapper, target, {texels}, everywhere, band.ends());
        const bool limited = mapper.pipeline && !mapper.keyed;
        EXPECT_EQ(screen.surface.at(3, 4), limited ? 0x55555555u : 0x123456u);
        EXPECT_EQ(screen.surface.at(4, 4), limited ? 0x55555555u : 0x123456u);
        EXPECT_EQ(screen.surface.at(5, 4), 0x123456u); // a polygon across the limit loses only its near part
    }
}

TEST(span_mappers, light_multiplies_adds_and_caps) {
    for (const Mapper &mapper : allMappers) {
        SCOPED_TRACE(mapper.name);
        if (mapper.light == Light::none) {
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
    for (const Mapper &mapper : allMappers) {
        SCOPED_TRACE(mapper.name);
        if (mapper.light == Light::none)
            continue;
        // -1 fills its channel and all above it; 255 less 1 is 0xFE.
        EXPECT_EQ(drawnPixel(mapper, 0x00FFFF, 256, -1), 0xFFFFFEFEu);
        EXPECT_EQ(drawnPixel(mapper, 0xFF00FF, 256, -1), 0xFFFFFFFEu);
        EXPECT_EQ(drawnPixel(mapper, 0xFFFF00, 256, -1), 0xFFFFFFFFu);
    }
}

TEST(span_mappers, a_negative_multiplier_is_signed_when_filtered_and_full_when_nearest) {
    for (const Mapper &mapper : allMappers) {
        SCOPED_TRACE(mapper.name);
        if (mapper.light == Light::none)
            continue;
        EXPECT_EQ(drawnPixel(mapper, 0x010101, -1, 0), mapper.filtered ? 0xFFFFFFFFu : 0xFFFFFFu);
    }
}

TEST(span_mappers, nearest_green_is_multiplied_in_its_place_and_wraps_before_blue) {
    // 0xFF00 * 66048 is 2^32 + 0xFE0000; blue has eight more bits of room and is capped.
    for (const Mapper &mapper : {test::pipelineNearHPE, test::nearNoHPE}) {
        SCOPED_TRACE(mapper.name);
        EXPECT_EQ(drawnPixel(mapper, 0x00FFFF, 66048, 0), 0x00FEFFu);
    }
}

TEST(span_mappers, a_top_byte_runs_red_full_in_one_mapper_only) {
    for (const Mapper &mapper : allMappers) {
        SCOPED_TRACE(mapper.name);
        if (mapper.light == Light::none)
            continue;
        const bool unmasked = mapper.pipeline && !mapper.filtered;
        EXPECT_EQ(drawnPixel(mapper, 0x01203040, 256, 0), unmasked ? 0xFF3040u : 0x203040u);
    }
}

TEST(span_mappers, flat_light_is_that_of_the_start_of_the_left_edge) {
    for (const Mapper &mapper : {test::linearNoHPE, test::nearNoHPE}) {
        SCOPED_TRACE(mapper.name);
        Screen screen;
        Surface texels = texelsOf(0x808080);
        Band band = bandOf({3, 3, 9, 9});
        band.mul = {128, 256, 256, 256};
        band.add = {3, 99, 99, 99};
        callMapper(mapper, screen.target(), {texels}, everywhere, band.ends());
        EXPECT_EQ(screen.surface.at(3, 3), 0x434343u);
        EXPECT_EQ(screen.surface.at(8, 8), 0x434343u);
    }
}

TEST(span_mappers, interpolated_light_runs_from_edge_to_edge_and_end_to_end) {
    for (const Mapper &mapper : allMappers) {
        if (mapper.light != Light::interpolated)
            continue;
        SCOPED_TRACE(mapper.name);
        Screen screen;
        Surface texels = texelsOf(0x010101);
        Band band = bandOf({0, 0, 8, 8});
        band.mul = {0, 0, 0, 0};
        band.add = {0, 64, 16, 80}; // 2 for each column, 8 for each row
        callMapper(mapper, screen.target(), {texels}, everywhere, band.ends());
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
    for (const Mapper &mapper : allMappers) {
        SCOPED_TRACE(mapper.name);
        const int unit = mapper.filtered ? 16 : 1;
        Screen screen;
        Band band = bandOf({0, 0, 4, 4});
        band.u = {unit, unit, 5 * unit, 5 * unit};
        band.v = {2 * unit, 6 * unit, 2 * unit, 6 * unit};
        callMapper(mapper, screen.target(), {texels}, everywhere, band.ends());
        for (int y = 0; y < 4; ++y)
            for (int x = 0; x < 4; ++x)
                EXPECT_EQ(screen.surface.at(x, y), static_cast<q_ulong>(0x100 * (y + 2) + x + 1));
    }
}

TEST(span_mappers, all_sixteenths_weigh_the_four_texels) {
    test::Random random(1);
    Surface texels = Surface::randomOfSize(random, 2, 2);
    for (const Mapper &mapper : allMappers) {
        if (!mapper.filtered)
            continue;
        SCOPED_TRACE(mapper.name);
        for (int v = 0; v < 16; ++v)
            for (int u = 0; u < 16; ++u) {
                Screen screen;
                callMapper(mapper, screen.target(), {texels}, everywhere, bandOf({3, 3, 4, 4}, u, v).ends());
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
    for (const Mapper &mapper : allMappers) {
        SCOPED_TRACE(mapper.name);
        Screen screen;
        callMapper(mapper, screen.target(), {texels}, everywhere, bandOf({3, 3, 4, 4}).ends());
        EXPECT_EQ(screen.surface.at(3, 3), 0x123456u);
    }
}

TEST(span_mappers, the_key_looks_at_four_whole_texels_and_not_at_the_colour) {
    for (const Mapper &mapper : {test::linearHPEKeySrc, test::pipelineLinearHPEKeySrc}) {
        SCOPED_TRACE(mapper.name);
        for (int weightless = 0; weightless < 4; ++weightless) {
            Surface texels(2, 2, 0);
            texels.at(weightless % 2, weightless / 2) = 0x01000000; // black, but not 0
            Screen screen;
            callMapper(mapper, screen.target(), {texels}, everywhere, bandOf({3, 3, 4, 4}).ends());
            EXPECT_EQ(screen.surface.at(3, 3), 0u);
            EXPECT_EQ(screen.depths.at(3, 3), 0);
        }
        Surface texels(2, 2, 0);
        Screen screen;
        callMapper(mapper, screen.target(), {texels}, everywhere, bandOf({3, 3, 4, 4}).ends());
        EXPECT_EQ(screen.surface.at(3, 3), 0x55555555u);
        EXPECT_EQ(screen.depths.at(3, 3), test::emptyDepth);
    }
}

TEST(span_mappers, mappers_without_a_key_draw_zeros) {
    for (const Mapper &mapper : allMappers) {
        if (mapper.keyed)
            continue;
        EXPECT_EQ(drawnPixel(mapper, 0, 256, 0), 0u) << mapper.name;
    }
}

TEST(span_mappers, negative_positions_read_left_of_and_above_the_texture_pointer) {
    test::Random random(1);
    Surface texels(8, 8);
    for (int i = 0; i < 64; ++i)
        texels.at(i % 8, i / 8) = random.word() | 1; // no key
    for (const Mapper &mapper : allMappers) {
        SCOPED_TRACE(mapper.name);
        const int unit = mapper.filtered ? 16 : 1;
        Screen screen;
        Band band = bandOf({0, 0, 4, 4});
        band.u = {0, 0, -4 * unit, -4 * unit};
        band.v = {0, -4 * unit, 0, -4 * unit};
        callMapper(mapper, screen.target(), {texels, 4, 4}, everywhere, band.ends());
        for (int y = 0; y < 4; ++y)
            for (int x = 0; x < 4; ++x) {
                const q_ulong texel = texels.at(4 - x, 4 - y);
                const q_ulong colour = mapper.redIsUpperHalf && texel >> 24 != 0 ? texel | 0xFF0000 : texel;
                const q_ulong drawn = mapper.light == Light::none ? texel : colour & 0xFFFFFF;
                EXPECT_EQ(screen.surface.at(x, y), drawn);
            }
    }
}

TEST(span_mappers, a_row_as_wide_as_minus_one_divides_without_a_trap) {
    // Edges so far apart that their distance wraps to just below 0, and a quantity of which the least number is left.
    for (const Mapper &mapper : allMappers) {
        SCOPED_TRACE(mapper.name);
        Screen screen;
        Surface texels = texelsOf(0x123456);
        const int half = 1 << (30 - mapper.fractionBits);
        Band band = bandOf({0, 3, 1, 4});
        band.x = {-2 * half, -2 * half, 2 * half - 1, 2 * half - 1};
        band.add = {0, 0, -2 * half, -2 * half};
        const BandEnds ends = band.ends();
        Screen expected;
        callMapper(mapper, screen.target(), {texels}, everywhere, ends);
        naiveMap(mapper, expected.target(), {texels}, everywhere, ends);
        EXPECT_EQ(screen.surface.differenceFrom(expected.surface), "");
    }
}

} // namespace
