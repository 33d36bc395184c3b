#include "sprite/tables.h"
#include "support/pictures.h"

#include <algorithm>
#include <cstddef>
#include <set>
#include <span>

namespace {

using namespace test;

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

TEST_P(Sprites, palette_begins_with_nothing_and_white_nothing_else_is_the_key_and_all_of_it_is_used) {
    EXPECT_EQ(sprite.palette[0], 0u);
    EXPECT_EQ(sprite.palette[1], 0xFFFFFFu);
    for (const q_ulong colour : sprite.palette)
        EXPECT_EQ(colour >> 24, 0u);
    EXPECT_EQ(std::count(sprite.palette.begin(), sprite.palette.end(), q_ulong{0}), 1);
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

/// The twins show such a picture again; here it is held against the table.
TEST_P(Sprites, whole_sprite_is_written_and_nothing_behind_it) {
    Pixels expected;
    for (const unsigned char index : sprite.pixels)
        expected.push_back(sprite.palette[index]);
    Pixels dst(expected.size() + 1, 0xFF123456);
    expected.push_back(0xFF123456);
    sprite.load(dst.data(), sprite.width, sprite.height, sprite.width);
    EXPECT_TRUE(dst == expected);
}

TEST(LoadResourceMusicSymbol, writes_16384_pixels) {
    Pixels dst(128 * 256, 0xFF123456);
    LoadResourceMusicSymbol(dst.data(), 128, 128, 128);
    EXPECT_EQ(std::count(dst.begin(), dst.end(), 0xFF123456), 16384);
}

TEST_P(Sprites, columns_beyond_the_width_read_on_into_the_next_row) {
    Surface dst(sprite.width + 3, 2, 0xFF123456);
    sprite.load(dst.pixels(), sprite.width + 3, 2, dst.pitch());
    for (int x = 0; x < 3; ++x)
        EXPECT_EQ(dst.at(sprite.width + x, 0), dst.at(x, 1));
}

TEST(SetSpriteInstance, takes_any_handle) {
    int something = 0;
    for (HINSTANCE__ *const handle : {static_cast<HINSTANCE__ *>(nullptr), reinterpret_cast<HINSTANCE__ *>(&something),
                                      static_cast<HINSTANCE__ *>(nullptr)}) {
        SetSpriteInstance(handle);
        q_ulong pixel = 0xFF123456;
        LoadResourceAirplane(&pixel, 1, 1, 1);
        EXPECT_EQ(pixel, 0u);
    }
}

} // namespace
