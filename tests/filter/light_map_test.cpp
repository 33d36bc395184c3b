#include "plain/light_map.h"
#include "support/painting.h"

#include <gtest/gtest.h>

#include <climits>
#include <vector>

namespace {

using Form = plain::Relief;
using test::painted;
using test::Surface;

struct Settings {
    Form form;
    int heightScale;
    int bevelSize;
    int limitOrProfile;
};

void convert(q_ulong *surface, tagRECT rect, int pitch, const Settings &settings) {
    const auto &[form, heightScale, bevelSize, limitOrProfile] = settings;
    if (form == Form::blockWithLimit)
        ConvertBlock2LightInfom(surface, &rect, pitch, heightScale, bevelSize, 99, limitOrProfile);
    else if (form == Form::block)
        ConvertBlock2LightInfom(surface, &rect, pitch, heightScale, bevelSize, 99);
    else
        ConvertSrc2LightInfom(surface, &rect, pitch, heightScale, bevelSize, limitOrProfile);
}
void convertPlainly(q_ulong *surface, const tagRECT &rect, int pitch, const Settings &settings) {
    plain::LightMap(settings.form, surface, rect, pitch, settings.heightScale, settings.bevelSize,
                    settings.limitOrProfile)
        .draw();
}

Surface converted(Surface surface, const tagRECT &rect, const Settings &settings) {
    convert(surface.pixels(), rect, surface.pitch(), settings);
    return surface;
}
Surface converted(const Surface &surface, const Settings &settings) {
    return converted(surface, surface.rect(), settings);
}

constexpr Form forms[] = {Form::blockWithLimit, Form::block, Form::source};

/// A profile where the form has one, else a limit, of which small ones end a search at once.
int profileOrLimit(Form form, int profile, int limit) {
    return form == Form::source ? profile : limit;
}

/// A disc on black, in the middle of a picture.
Surface discOf(int side, int radius) {
    return painted(Surface(side, side), {0, 0, side, side}, [=](int x, int y) {
        const int dx = x - side / 2;
        const int dy = y - side / 2;
        return dx * dx + dy * dy < radius * radius ? 1u : 0u;
    });
}

TEST(LightMaps, shapes_of_every_kind_agree_with_a_naive_map_in_every_bit) {
    test::Random random(93);
    for (int number = 0; number < 400; ++number) {
        const Form form = forms[number % 3];
        const int width = random.between(1, 60);
        const int height = random.between(1, 40);
        Surface surface(width, height);
        const int seldom = random.between(2, 200);
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                surface.at(x, y) = random.oneIn(seldom) ? 0 : random.word() | 1;
        surface.at(random.between(0, width - 1), random.between(0, height - 1)) = 0;
        Surface expected = surface;
        Settings settings = {form, random.between(-8, 8), random.between(-10, 120), random.between(0, 2)};
        if (number % 5 == 0)
            settings.heightScale = random.between(-0x7FFFFFFF, 0x7FFFFFFF);
        if (form == Form::blockWithLimit)
            settings.limitOrProfile = random.oneIn(2) ? random.between(-3, 90) : random.between(999990, 1000010);
        const tagRECT rect = surface.rect();
        convertPlainly(expected.pixels(), rect, surface.pitch(), settings);
        convert(surface.pixels(), rect, surface.pitch(), settings);
        ASSERT_EQ(surface.differenceFrom(expected), "") << number;
    }
}

TEST(LightMaps, a_rectangle_of_zeros_stays) {
    const tagRECT rect = {1, 2, 7, 8};
    const Surface before = painted(Surface(9, 9, 5), rect, 0);
    for (const Form form : forms) {
        for (const int limitOrProfile : {0, 2, 2000000})
            EXPECT_EQ(converted(before, rect, {form, 4, 20, limitOrProfile}).differenceFrom(before), "");
        EXPECT_EQ(converted(Surface(9, 9), {form, 4, 20, 2}).differenceFrom(Surface(9, 9)), "") << "nor black near it";
    }
}

TEST(LightMaps, a_rectangle_without_black_stays_where_the_search_has_no_limit) {
    const Surface before(8, 8, 3);
    for (const Settings &settings : {Settings{Form::blockWithLimit, 4, 20, 1000000}, Settings{Form::block, 4, 20, 0},
                                     Settings{Form::source, 4, 20, 2}})
        EXPECT_EQ(converted(before, settings).differenceFrom(before), "");
    const Surface flat = painted(before, before.rect(), 0x00020117);
    EXPECT_EQ(converted(before, {Form::blockWithLimit, 0, 20, 999999}).differenceFrom(flat), "");
}

/// The diffuse light of a flat spot is 256 * 0.7 = 179.2 and 100, its highlight 256 * (1.7 / 1.967)^32 = 2.4. In the
/// source form 256 and 100 are limited to 255, and the highlight is 512 * (2 / 6^0.5)^32 = 0.8.
constexpr q_ulong flatWord(Form form) {
    return form == Form::source ? 0x000000FF : 0x00020117;
}

/// Expects a shape, all but its every third diagonal, to become flat words.
void expectFlat(const Settings &settings) {
    const auto shape = [](const auto &colour) {
        return painted(Surface(11, 9), {0, 0, 11, 9},
                       [&](int x, int y) { return (x + y) % 3 != 0 ? static_cast<q_ulong>(colour(x)) : 0; });
    };
    const Surface before = shape([](int x) { return (x + 1) << 24 | 0x777777; });
    const Surface flat = shape([&](int) { return flatWord(settings.form); });
    EXPECT_EQ(converted(before, settings).differenceFrom(flat), "");
}

TEST(LightMaps, raised_shapes_are_lit_from_the_upper_left_and_hollow_ones_look_lit_from_the_lower_right) {
    for (const Form form : forms)
        for (const int heightScale : {1, -1}) {
            const Surface disc = converted(discOf(41, 16), {form, heightScale, 16, profileOrLimit(form, 2, 1000000)});
            const auto diffuse = [&](int x, int y) {
                return static_cast<int>(disc.at(x, y) & (form == Form::source ? 0xFF : 0xFFFF)) - 100;
            };
            const int flat = form == Form::source ? 155 : 179;
            EXPECT_EQ(diffuse(20, 20), flat);
            // A source map has no room for more light than a flat spot has.
            const int brightest = form == Form::source ? flat : flat + 100;
            EXPECT_GE(heightScale > 0 ? diffuse(11, 11) : diffuse(29, 29), brightest);
            EXPECT_EQ(heightScale > 0 ? diffuse(29, 29) : diffuse(11, 11), 0);
        }
}

TEST(ConvertSrc2LightInfom, slopes_are_positive_where_the_relief_rises_to_the_right_and_downward) {
    const Surface disc = converted(discOf(41, 16), {Form::source, 1, 16, 2});
    const auto slopeX = [&](int x, int y) { return static_cast<signed char>(disc.at(x, y) >> 24); };
    const auto slopeY = [&](int x, int y) { return static_cast<signed char>(disc.at(x, y) >> 16 & 0xFF); };
    EXPECT_GT(slopeX(6, 20), 0);
    EXPECT_LT(slopeX(34, 20), 0);
    EXPECT_GT(slopeY(20, 6), 0);
    EXPECT_LT(slopeY(20, 34), 0);
}

TEST(LightMaps, settings_that_leave_no_relief_make_all_of_it_flat) {
    for (const Form form : forms)
        for (const int bevelSize : {0, 7, 40})
            for (const int limitOrProfile : {0, 1, 2, 9, 1000000})
                expectFlat({form, 0, bevelSize, limitOrProfile});
    // A bevel of 0, in all but two profiles of the source form.
    expectFlat({Form::blockWithLimit, 12, 0, 0});
    expectFlat({Form::blockWithLimit, 12, 1, 50});
    expectFlat({Form::block, 12, 0, 0});
    expectFlat({Form::source, 12, 0, 2});
    // A profile that does not exist.
    for (const int profile : {3, 4, -1, INT_MIN, INT_MAX})
        expectFlat({Form::source, 12, 40, profile});
    // A negative bevel of 8 and more smooths over no pixel at all.
    expectFlat({Form::source, 12, -8, 0});
    expectFlat({Form::source, 12, -100, 1});
}

/// A shape of 41 by 41 pixels but for one black line along one of its sides, converted; the pixel `depth` away from
/// that line. The far ends of the rows are black too.
enum class Side { left, top, right, bottom };
q_ulong wordBeside(Side side, int depth, const Settings &settings) {
    constexpr tagRECT lines[] = {{0, 0, 1, 41}, {0, 0, 41, 1}, {40, 0, 41, 41}, {0, 40, 41, 41}};
    const int places[][2] = {{depth, 20}, {20, depth}, {40 - depth, 20}, {20, 40 - depth}};
    const auto index = static_cast<std::size_t>(side);
    const Surface result = converted(painted(Surface(41, 41, 1), lines[index], 0), settings);
    return result.at(places[index][0], places[index][1]);
}

TEST(ConvertSrc2LightInfom, words_of_straight_slopes_by_hand) {
    // Heights 2 f rise by 2 to the pixel. The normal of a slope that rises to the right is (2, 0, -1) / 5^0.5: 64 times
    // 0.894 is 57, the light 256 * 1.34 and 100 are beyond 255, and the highlight is 512 * 0.73^32.
    const Settings settings = {Form::source, 1, 7, 0};
    for (const int depth : {1, 2, 3, 8}) {
        EXPECT_EQ(wordBeside(Side::left, depth, settings), 0x390000FFu);
        EXPECT_EQ(wordBeside(Side::top, depth, settings), 0x003900FFu);
        // Turned away from the light, which leaves 100: -57 is 0xC7.
        EXPECT_EQ(wordBeside(Side::right, depth, settings), 0xC7000064u);
    }
}

TEST(ConvertSrc2LightInfom, a_normal_with_a_negative_y_has_0xFF_in_the_top_byte) {
    const Settings settings = {Form::source, 1, 7, 0};
    for (const int depth : {1, 2, 3, 8})
        EXPECT_EQ(wordBeside(Side::bottom, depth, settings), 0xFFC70064u);
    // Also where x is positive: at a lower left corner, heights of 4 above and to the right, of 2 elsewhere. The normal
    // is (1, -1, -1) over 5^0.5, x 28 and y -28.
    Surface surface = painted(Surface(9, 9), {3, 0, 9, 6}, 1);
    surface.at(3, 5) = 0;
    EXPECT_EQ(converted(surface, settings).at(4, 4), 0xFFE400D6u);
}

TEST(ConvertSrc2LightInfom, a_search_passes_over_black_whose_square_is_a_million_and_more) {
    // A slope that rises to the right from a column of black. The pixel's ring 708 has black in a corner, which is
    // 708 * 708 * 2 away; so its ring is 710, as those of its neighbours fit the slope.
    constexpr int pitch = 2000, height = 710, x = 710, y = 1;
    Surface surface = painted(Surface(pitch, height), {1, 0, pitch, height}, 1);
    surface.at(x + 708, y + 708) = 0;
    EXPECT_EQ(converted(surface, {0, 0, 716, height}, {Form::source, 1, 7, 0}).at(x, y), 0x390000FFu);
}

TEST(ConvertSrc2LightInfom, words_of_the_other_profiles_by_hand) {
    // f f / 2 is 0, 0.5 and 2: slopes of 0.5 and 1.5, mean normal (0.6396, 0, -0.7246), highlight 512 * 0.8527^32.
    EXPECT_EQ(wordBeside(Side::left, 1, {Form::source, 1, 7, 1}), 0x280003FFu);
    // A circle of radius 3, followed down its other side: 3, 8^0.5 and 5^0.5. Mean normal (-0.3394, 0, -0.9230), light
    // 256 * 0.5836 and 100.
    EXPECT_EQ(wordBeside(Side::left, 4, {Form::source, 1, 7, 2}), 0xEB0000F9u);
    // From 6 pixels on it is as high as in the middle.
    EXPECT_EQ(wordBeside(Side::left, 8, {Form::source, 1, 7, 2}), 0x000000FFu);
}

TEST(ConvertBlock2LightInfom, words_of_a_smoothed_step_by_hand) {
    // With half a bevel of 1 every height is 1. The 5 by 5 squares soften the step to 0.6, 0.8 and 1 behind black.
    const Settings limited = {Form::blockWithLimit, 1, 2, 50};
    EXPECT_EQ(wordBeside(Side::left, 1, limited), 0x00120148u); // mean normal (0.3553, 0, -0.9190)
    EXPECT_EQ(wordBeside(Side::left, 2, limited), 0x00100136u); // (0.1961, 0, -0.9806)
    EXPECT_EQ(wordBeside(Side::left, 3, limited), 0x00060127u); // (0.0981, 0, -0.9903)
    EXPECT_EQ(wordBeside(Side::left, 4, limited), 0x00020117u);
    // Across the diagonals the slope is half the way from 0 to 0.8: (0.3714, 0, -0.9285).
    EXPECT_EQ(wordBeside(Side::left, 1, {Form::block, 1, 2, 0}), 0x001D014Cu);
    EXPECT_EQ(wordBeside(Side::left, 4, {Form::block, 1, 2, 0}), 0x00020117u);
}

TEST(ConvertBlock2LightInfom, a_shape_of_one_pixel_by_hand) {
    // Its height of 1 is smoothed to 0.04 and scaled to 1. The faces (1, 1, -1) and (-1, -1, -1) over 3^0.5 have the
    // mean (0, 0, -0.577), whose light is 256 * 0.404 and 100.
    Surface surface(5, 5);
    surface.at(2, 2) = 0xFF000000;
    const Surface limited = converted(surface, {Form::blockWithLimit, 25, 2, 50});
    EXPECT_EQ(limited.differenceFrom(painted(surface, {2, 2, 3, 3}, 203)), "");
    // The diagonal neighbours know nothing of it.
    const Surface flat = converted(surface, {Form::block, 25, 2, 50});
    EXPECT_EQ(flat.differenceFrom(painted(surface, {2, 2, 3, 3}, 0x00020117)), "");
}

TEST(ConvertBlock2LightInfom, with_a_limit_below_1000000_the_bevel_is_one_pixel_deep) {
    // Only the pixels that touch black are lower than 20. The 5 by 5 squares carry that to depth 3, the slopes to 4.
    const Settings deep = {Form::blockWithLimit, 1, 40, 999999};
    for (const int depth : {5, 6, 10, 15})
        EXPECT_EQ(wordBeside(Side::left, depth, deep), 0x00020117u) << depth;
    EXPECT_NE(wordBeside(Side::left, 4, deep), 0x00020117u);
    const Settings search = {Form::blockWithLimit, 1, 40, 1000000};
    for (const int depth : {2, 4, 5, 10, 15})
        EXPECT_NE(wordBeside(Side::left, depth, search), 0x00020117u) << depth;
}

TEST(LightMaps, searches_wrap_round_at_the_ends_of_rows) {
    // Rows of 8, black at their start alone: their last pixel lies beside the next row's black one.
    Surface surface(8 * 6, 1, 1);
    for (int y = 0; y < 6; ++y)
        surface.at(8 * y, 0) = 0;
    convert(surface.pixels(), {0, 0, 8, 6}, 8, {Form::source, 1, 7, 0});
    for (int y = 1; y < 5; ++y) {
        EXPECT_EQ(surface.at(8 * y + 1, 0), 0x390000FFu); // rises from 0 by 2 and 4
        EXPECT_EQ(surface.at(8 * y + 2, 0), 0x390000FFu);
        EXPECT_EQ(surface.at(8 * y + 6, 0), 0xC7000064u);
        EXPECT_EQ(surface.at(8 * y + 7, 0), 0xC7000064u);
    }
}

TEST(LightMaps, a_rectangle_may_run_over_the_end_of_its_rows) {
    test::Random random(91);
    for (int round = 0; round < 1500; ++round) {
        const Form form = forms[round % 3];
        const int pitch = random.between(2, 12);
        const int left = random.between(1, pitch - 1);
        const tagRECT rect = {left, 1, left + pitch, random.between(3, 6)};
        const Settings settings = {form, random.between(-4, 12), random.between(0, 47), random.between(0, 2)};
        Surface result = painted(Surface(pitch * 8, 1), {0, 0, pitch * 8, 1},
                                 [&](int i, int) { return random.oneIn(6) || i == pitch * 2 ? 0 : random.word() | 1; });
        Surface expected = result;
        convertPlainly(expected.pixels(), rect, pitch, settings);
        convert(result.pixels(), rect, pitch, settings);
        ASSERT_EQ(result.differenceFrom(expected), "") << "round " << round;
    }
}

TEST(LightMaps, only_words_that_a_search_comes_to_are_read) {
    // A rectangle in the last rows of a surface, away from its left: the block ends in a row that is not there.
    for (const Form form : forms)
        for (const int x : {1, 2, 3}) {
            test::PageEndPixels pixels(20 * 5);
            std::vector<q_ulong> expected(20 * 6);
            for (const int index : {20 * 4 + 10 + x, 20 * 3 + 10 + x, 20 * 2 + 10})
                pixels.data()[index] = expected[static_cast<std::size_t>(index)] = 7;
            const Settings settings = {form, 2, 9, profileOrLimit(form, 0, 1000000)};
            convertPlainly(expected.data(), {10, 0, 15, 5}, 20, settings);
            convert(pixels.data(), {10, 0, 15, 5}, 20, settings);
            expected.resize(20 * 5);
            ASSERT_EQ(std::vector<q_ulong>(pixels.data(), pixels.data() + 20 * 5), expected);
        }
}

TEST(LightMaps, a_rectangle_wider_than_the_pitch_stays) {
    for (const Form form : forms) {
        Surface surface(200, 1, 7);
        surface.at(3, 0) = 0;
        const Surface before = surface;
        convert(surface.pixels(), {0, 0, 150, 2}, 4, {form, 2, 9, 0});
        EXPECT_EQ(surface.differenceFrom(before), "");
    }
}

} // namespace
