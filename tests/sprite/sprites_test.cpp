#include "sprite/tables.h"
#include "support/surface.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <set>
#include <span>

namespace {

using test::Surface;

constexpr q_ulong untouched = 0xFF123456; // no sprite has a top byte

/// A sprite's table without its sizes in the type, and the function that writes it.
struct Table {
    const char *name;
    void (*load)(q_ulong *dst, int width, int height, int pitch);
    int width;
    int height;
    int stride;
    std::span<const q_ulong> palette;
    std::span<const unsigned char> pixels;

    template <int colours, int bytes>
    Table(const char *function, decltype(load) loader, const qmur::Sprite<colours, bytes> &sprite)
        : name(function), load(loader), width(sprite.width), height(sprite.height), stride(sprite.stride),
          palette(sprite.palette), pixels(sprite.pixels) {}

    /// The pixel that stands `index` pixels behind the first.
    q_ulong pixel(int index) const {
        const auto i = static_cast<std::size_t>(index);
        return i < pixels.size() ? palette[pixels[i]] : 0;
    }
};

const Table &table(int index) {
    static const Table tables[] = {{"LoadResourceAirplane", LoadResourceAirplane, qmur::airplane},
                                   {"LoadResourceChristmasTree", LoadResourceChristmasTree, qmur::christmasTree},
                                   {"LoadResourceFootMark", LoadResourceFootMark, qmur::footMark},
                                   {"LoadResourceMusicSymbol", LoadResourceMusicSymbol, qmur::musicSymbol},
                                   {"LoadResourceRedFires", LoadResourceRedFires, qmur::redFires}};
    return tables[index];
}

class Sprites : public testing::TestWithParam<int> {
protected:
    const Table &sprite = table(GetParam());
};

INSTANTIATE_TEST_SUITE_P(All, Sprites, testing::Range(0, 5), [](const auto &each) { return table(each.param).name; });

TEST(SpriteTables, have_these_sizes) {
    const int sizes[5][3] = {{156, 114, 255}, {512, 384, 255}, {122, 166, 172}, {128, 128, 255}, {330, 360, 255}};
    for (int i = 0; i < 5; ++i) {
        const Table &sprite = table(i);
        EXPECT_EQ(sprite.width, sizes[i][0]) << sprite.name;
        EXPECT_EQ(sprite.height, sizes[i][1]) << sprite.name;
        EXPECT_EQ(sprite.palette.size(), static_cast<std::size_t>(sizes[i][2])) << sprite.name;
        EXPECT_EQ(sprite.stride, sprite.width) << sprite.name;
        EXPECT_EQ(sprite.pixels.size(), static_cast<std::size_t>(sprite.height * sprite.stride)) << sprite.name;
    }
}

TEST_P(Sprites, palette_begins_with_nothing_and_white_and_has_no_top_bytes) {
    EXPECT_EQ(sprite.palette[0], 0u);
    EXPECT_EQ(sprite.palette[1], 0xFFFFFFu);
    for (const q_ulong colour : sprite.palette)
        EXPECT_EQ(colour >> 24, 0u);
}

TEST_P(Sprites, no_colour_but_the_first_is_the_key) {
    EXPECT_EQ(std::count(sprite.palette.begin(), sprite.palette.end(), q_ulong{0}), 1);
}

TEST_P(Sprites, indices_stay_in_the_palette_and_use_all_of_it) {
    std::set<int> used(sprite.pixels.begin(), sprite.pixels.end());
    EXPECT_LT(*used.rbegin(), static_cast<int>(sprite.palette.size()));
    used.insert(1); // a picture may do without white
    EXPECT_EQ(used.size(), sprite.palette.size());
}

TEST_P(Sprites, figure_stands_on_a_free_ground) {
    const auto free = std::count(sprite.pixels.begin(), sprite.pixels.end(), 0);
    EXPECT_GT(free, static_cast<int>(sprite.pixels.size()) / 5);
    EXPECT_LT(free, static_cast<int>(sprite.pixels.size()) * 4 / 5);
    EXPECT_EQ(sprite.pixels.front(), 0);
    EXPECT_EQ(sprite.pixels[static_cast<std::size_t>(sprite.width) - 1], 0);
}

TEST_P(Sprites, whole_sprite_is_written_and_nothing_beside_it) {
    Surface dst(sprite.width, sprite.height, untouched);
    Surface expected = dst;
    for (int y = 0; y < sprite.height; ++y)
        for (int x = 0; x < sprite.width; ++x)
            expected.at(x, y) = sprite.pixel(y * sprite.width + x);
    sprite.load(dst.pixels(), sprite.width, sprite.height, dst.pitch());
    EXPECT_EQ(dst.differenceFrom(expected), "");
}

TEST(LoadResourceMusicSymbol, writes_16384_pixels) {
    Surface dst(128, 128 * 2, untouched, -2 * Surface::margin); // rows without a gap
    LoadResourceMusicSymbol(dst.pixels(), 128, 128, 128);
    const std::vector<q_ulong> &words = dst.words();
    EXPECT_EQ(std::count(words.begin(), words.end(), untouched), static_cast<std::ptrdiff_t>(words.size()) - 16384);
}

TEST_P(Sprites, a_smaller_part_is_the_top_left_one) {
    Surface dst(5, 4, untouched);
    const int y = sprite.height / 2;
    sprite.load(&dst.at(0, 0), 5, 1, dst.pitch());
    for (int x = 0; x < 5; ++x)
        EXPECT_EQ(dst.at(x, 0), sprite.pixel(x));
    // The first column, all the way down to where the figure is.
    Surface column(1, y + 1, untouched);
    sprite.load(column.pixels(), 1, y + 1, column.pitch());
    EXPECT_EQ(column.at(0, y), sprite.pixel(y * sprite.width));
    EXPECT_EQ(dst.at(5, 0), untouched);
}

TEST_P(Sprites, columns_beyond_the_width_read_on_into_the_next_row) {
    Surface dst(sprite.width + 3, 2, untouched);
    sprite.load(dst.pixels(), sprite.width + 3, 2, dst.pitch());
    for (int x = 0; x < 3; ++x)
        EXPECT_EQ(dst.at(sprite.width + x, 0), dst.at(x, 1));
}

TEST_P(Sprites, what_lies_behind_the_last_pixel_is_nothing) {
    Surface dst(sprite.width + 2, sprite.height + 2, untouched);
    sprite.load(dst.pixels(), sprite.width + 2, sprite.height + 2, dst.pitch());
    EXPECT_EQ(dst.at(sprite.width - 1, sprite.height - 1), sprite.pixel(sprite.width * sprite.height - 1));
    EXPECT_EQ(dst.at(sprite.width, sprite.height - 1), 0u);
    EXPECT_EQ(dst.at(sprite.width + 1, sprite.height - 1), 0u);
    for (int y = sprite.height; y < sprite.height + 2; ++y)
        for (int x = 0; x < sprite.width + 2; ++x)
            EXPECT_EQ(dst.at(x, y), 0u) << x << ", " << y;
}

TEST_P(Sprites, sizes_below_one_write_nothing) {
    const Surface before(4, 4, untouched);
    for (int height = -2; height <= 4; ++height)
        for (int width = -2; width <= 4; ++width) {
            if (width > 0 && height > 0)
                continue;
            Surface dst = before;
            sprite.load(dst.pixels(), width, height, dst.pitch());
            ASSERT_EQ(dst.differenceFrom(before), "") << width << " by " << height;
        }
}

TEST_P(Sprites, a_negative_pitch_stores_the_bottom_row_first) {
    Surface dst(sprite.width, sprite.height);
    sprite.load(&dst.at(0, sprite.height - 1), sprite.width, sprite.height, -dst.pitch());
    for (int y = 0; y < sprite.height; ++y)
        for (int x = 0; x < sprite.width; ++x)
            ASSERT_EQ(dst.at(x, sprite.height - 1 - y), sprite.pixel(y * sprite.width + x));
}

TEST(SetSpriteInstance, takes_any_handle) {
    SetSpriteInstance(nullptr);
    int something = 0;
    SetSpriteInstance(reinterpret_cast<HINSTANCE__ *>(&something));
    Surface dst(1, 1, untouched);
    LoadResourceAirplane(dst.pixels(), 1, 1, dst.pitch());
    EXPECT_EQ(dst.at(0, 0), 0u);
    SetSpriteInstance(nullptr);
}

} // namespace
