#include "mesh.h"

#include <gtest/gtest.h>

namespace {

using test::Mesh;
using test::Screen;

// What the light on a vertex is, the tests of FindLuminenceTerm() say; here, what becomes of colours.

/// Lights the colours in place; what is drawn does not matter here.
void light(Mesh &mesh) {
    Screen screen(1, 1, 0);
    test::renderLit<>(VKD_Render_3D_Surface, screen, {0, 0, 0, 0}, mesh);
}

TEST(VKD_Render_3D_Surface, light_straight_on_a_flat_grid_leaves_its_colours) {
    for (const int columns : {2, 3, 4})
        for (const int rows : {2, 3, 4}) {
            Mesh mesh(columns, rows);
            light(mesh);
            for (const q_ulong colour : mesh.colours)
                EXPECT_EQ(colour, 0x804020u);
        }
    Mesh cell(2, 2);
    cell.point(1, 1).z = 12345; // the fourth corner of a cell has no influence
    light(cell);
    EXPECT_EQ(cell.colours, Mesh(2, 2).colours);
}

TEST(VKD_Render_3D_Surface, a_grid_facing_away_has_ambient_light_alone) {
    Mesh mesh(3, 3);
    mesh.light = {0, 0, -0.5F, 0};
    light(mesh);
    for (const q_ulong colour : mesh.colours)
        EXPECT_EQ(colour, 0u);
    mesh.light = {0, 0, 1, 0};
    light(mesh);
    for (const q_ulong colour : mesh.colours)
        EXPECT_EQ(colour, 0u) << "colours stay black until they are filled again";

    Mesh ambient(3, 3);
    ambient.light = {0, 0, -0.5F, 0};
    ambient.ambient = {0, -128, 0, 0};
    light(ambient);
    for (const q_ulong colour : ambient.colours)
        EXPECT_EQ(colour, 0x402010u);
}

TEST(VKD_Render_3D_Surface, the_ambient_level_is_the_length_of_its_vector) {
    Mesh mesh(2, 2, 10, 0xFFFFFF);
    mesh.light = {0, 0, -0.5F, 0};
    mesh.ambient = {3, 4, 0, 1000};
    light(mesh);
    EXPECT_EQ(mesh.colours[0], 0x040404u) << "255 * 5 / 256";
}

TEST(VKD_Render_3D_Surface, the_root_of_a_large_ambient_vector_is_exact) {
    // The squares add up to 4098 * 4098 - 1, which is no float: rounded to one, its root would be 4098 instead of 4097.
    // 128 * 4097 / 256 is 2048, and a negative highlight brings that back into the channel.
    Mesh mesh(2, 2, 10, 0x000080);
    mesh.light = {0, 0, -0.5F, 0};
    mesh.ambient = {4097, 25, 87, 0};
    mesh.specular = -8;
    light(mesh);
    EXPECT_EQ(mesh.colours[0] & 0xFF, 0u);
    Mesh negative(2, 2);
    negative.light = {0, 0, -0.5F, 0};
    negative.ambient = {40000, 30000, 0, 0}; // the squares wrap below 0 and have no root
    light(negative);
    EXPECT_EQ(negative.colours[0], 0u);
}

TEST(VKD_Render_3D_Surface, channels_stop_at_255_and_the_top_byte_goes) {
    Mesh mesh(2, 2, 10, 0x00804020);
    mesh.ambient = {512, 0, 0, 0};
    mesh.colours[1] = 0x01000010;
    light(mesh);
    EXPECT_EQ(mesh.colours[0], 0xFFC060u) << "three times the colour";
    EXPECT_EQ(mesh.colours[1], 0xFF0030u) << "red is taken with the top byte";
}

TEST(VKD_Render_3D_Surface, a_highlight_falls_on_every_channel_alike) {
    Mesh mesh(2, 2, 10, 0x102030);
    mesh.specular = 0.25F;
    light(mesh);
    EXPECT_EQ(mesh.colours[0], 0x506070u);
    Mesh away(2, 2, 10, 0x102030);
    away.light = {0, 0, -2, 0}; // the half vector points away too
    away.specular = 0.25F;
    light(away);
    EXPECT_EQ(away.colours[0], 0u);
}

} // namespace
