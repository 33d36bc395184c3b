#include "pipeline/mesh.h"
#include "plain/texture_renderers.h"
#include "support/screen.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

namespace {

using test::Mesh;
using test::painted;
using test::Screen;
using test::Surface;

/// Textures, of which the back one has the pitch of the front one, and their part.
struct Textures {
    Surface front;
    Surface back;
    tagRECT rect;
};

/// A renderer of one of the modules, with one texture or two.
struct Renderer {
    using Older = decltype(&Render_Texture_3D);
    using Pipeline = decltype(&VKD_Render_Texture_3D_Tri);
    using TwoTextures = void (*)(_PRIVATE_QMGL_DATA *, q_ulong *, q_ulong *, q_ulong *, tagRECT *, tagRECT *, q_ulong,
                                 q_ulong, _POINT3DFLOAT *, int, int, _POINT3DFLOAT *, _POINT3D *, _POINT3D *, float,
                                 int);

    const char *name;
    Older older;
    Pipeline pipeline = nullptr;
    TwoTextures twoTextures = nullptr;

    void draw(Screen &screen, Textures &textures, Mesh mesh, tagRECT clip) const {
        std::vector<int> add(mesh.points.size());
        std::vector<int> mul(mesh.points.size());
        const auto call = [&](auto function, auto &data, auto... texels) {
            data.vertexArray0 = add.data();
            data.vertexArray1 = mul.data();
            function(&data, screen.surface.pixels(), texels..., &clip, &textures.rect, screen.pitch(),
                     static_cast<q_ulong>(textures.front.pitch()), mesh.points.data(), mesh.rows, mesh.columns,
                     &mesh.light, nullptr, &mesh.ambient, mesh.specular, mesh.shininess);
        };
        if (older)
            call(older, screen.older, textures.front.pixels());
        else if (pipeline)
            call(pipeline, screen.pipeline, textures.front.pixels());
        else
            call(twoTextures, screen.pipeline, textures.front.pixels(), textures.back.pixels());
    }
    void draw(Screen &screen, Textures &textures, const Mesh &mesh) const {
        draw(screen, textures, mesh, screen.surface.rect());
    }
};

constexpr Renderer olderQuads = {"Render_Texture_3D", Render_Texture_3D};
constexpr Renderer olderTriangles = {"Render_Texture_3D_Tri", Render_Texture_3D_Tri};
constexpr Renderer twoTextures = {"VKD_Render_Texture_3D two textures", nullptr, nullptr, VKD_Render_Texture_3D};
constexpr Renderer pipelineTriangles = {"VKD_Render_Texture_3D_Tri", nullptr, VKD_Render_Texture_3D_Tri};
constexpr Renderer renderers[] = {
    olderQuads,       {"Render_Texture_3D_KeySrc", Render_Texture_3D_KeySrc},
    olderTriangles,   {"VKD_Render_Texture_3D", nullptr, VKD_Render_Texture_3D},
    twoTextures,      {"VKD_Render_Texture_3D_KeySrc", nullptr, VKD_Render_Texture_3D_KeySrc},
    pipelineTriangles};

/// Calls `test` with each renderer and a screen of its own.
template <class Test>
void forRenderers(Test test) {
    for (const Renderer &renderer : renderers) {
        SCOPED_TRACE(renderer.name);
        Screen screen(64, 32);
        test(renderer, screen);
    }
}

/// A flat mesh of whole cells of `cellWidth` by `cellHeight` pixels, lit by 256 / 256 and no highlight.
Mesh flatMesh(int rows, int cols, int cellWidth, int cellHeight, int left = 0, int top = 0) {
    return {cols, rows, {cellWidth, cellHeight}, {left, top}};
}

/// The same turned over from left to right, lit by 256 / 256 all the same.
Mesh turnedOver(Mesh mesh) {
    const float right = mesh.points.back().x;
    for (_POINT3DFLOAT &point : mesh.points)
        point.x = right - point.x;
    mesh.ambient = {256, 0, 0, 0};
    return mesh;
}

Textures plainTextures(q_ulong texel) {
    return {Surface(4, 4, texel), Surface(4, 4, texel), {0, 0, 4, 4}};
}

/// Each texel tells its place; the back texture's green is full.
Textures numberedTextures(int width, int height) {
    const tagRECT all = {0, 0, width, height};
    const auto texel = [](int x, int y) { return static_cast<q_ulong>(0x10000 * (y + 1) + x); };
    return {painted(Surface(width, height), all, texel),
            painted(Surface(width, height), all, [&](int x, int y) { return 0xFF00 | texel(x, y); }), all};
}

TEST(Render_Texture_3D, one_cell_shows_the_whole_texture) {
    // 8 pixels over 4 texels: every second pixel stands on a texel.
    forRenderers([](const Renderer &renderer, Screen &screen) {
        Textures textures = numberedTextures(4, 4);
        renderer.draw(screen, textures, flatMesh(2, 2, 8, 8));
        for (int y = 0; y < 4; ++y)
            for (int x = 0; x < 4; ++x)
                EXPECT_EQ(screen.surface.at(2 * x, 2 * y), textures.front.at(x, y));
        EXPECT_EQ(screen.surface.at(8, 0), test::background);
        EXPECT_EQ(screen.surface.at(0, 8), test::background);
    });
}

TEST(Render_Texture_3D, one_cell_is_lit_by_one_normal) {
    forRenderers([](const Renderer &renderer, Screen &screen) {
        Textures textures = plainTextures(0x808080);
        Mesh mesh = flatMesh(2, 2, 8, 8);
        mesh.points[1].z = -6; // (0.6, 0, 0.8), whatever the fourth corner
        mesh.points[3].z = 500;
        const Surface lit = painted(screen.surface, {0, 0, 8, 8}, 0x666666); // 0x80 * 204 / 256
        renderer.draw(screen, textures, mesh);
        EXPECT_EQ(screen.surface.differenceFrom(lit), "");
    });
}

TEST(Render_Texture_3D, a_texture_narrower_than_the_cells_gives_some_a_single_column) {
    forRenderers([](const Renderer &renderer, Screen &screen) {
        Textures textures = numberedTextures(4, 4);
        renderer.draw(screen, textures, flatMesh(2, 9, 8, 8));
        for (int j = 0; j < 8; j += 2) // cells of columns j / 2 up to j / 2
            for (int x = 0; x < 8; ++x)
                EXPECT_EQ(screen.surface.at(8 * j + x, 0), textures.front.at(j / 2, 0));
    });
}

TEST(Render_Texture_3D, cells_of_uneven_width_tile_the_texture) {
    forRenderers([](const Renderer &renderer, Screen &screen) {
        Textures textures = numberedTextures(9, 9);
        textures.rect = {1, 1, 8, 8}; // 7 texels over 3 cells: from 0, 2 and 4 on
        renderer.draw(screen, textures, flatMesh(4, 4, 10, 10));
        for (int i = 0; i < 3; ++i)
            for (int j = 0; j < 3; ++j)
                EXPECT_EQ(screen.surface.at(10 * j, 10 * i), textures.front.at(1 + 2 * j, 1 + 2 * i));
    });
}

TEST(VKD_Render_Texture_3D, a_mesh_turned_over_shows_the_back_texture_the_right_way_round) {
    // As many pixels as texels: sampled nearest. Mirrored positions begin at `right` itself, less the cell's column,
    // and the left edge stands on the first texel of the rectangle.
    for (const int cells : {1, 2}) {
        Screen screen(64, 32);
        Textures textures = numberedTextures(8 * cells + 2, 10);
        textures.rect = {1, 1, 8 * cells + 1, 9};
        const Surface expected =
            painted(screen.surface, {0, 0, 8 * cells, 8}, [&](int x, int y) { return textures.back.at(1 + x, 1 + y); });
        twoTextures.draw(screen, textures, turnedOver(flatMesh(2, cells + 1, 8, 8)));
        EXPECT_EQ(screen.surface.differenceFrom(expected), "");
    }
}

TEST(VKD_Render_Texture_3D, only_two_textures_look_at_the_side_of_a_cell) {
    forRenderers([](const Renderer &renderer, Screen &screen) {
        Textures textures = numberedTextures(8, 8);
        renderer.draw(screen, textures, turnedOver(flatMesh(2, 2, 8, 8)));
        EXPECT_NE(screen.surface.at(3, 3), test::background);
        EXPECT_EQ(screen.surface.at(3, 3) & 0xFF00, renderer.twoTextures ? 0xFF00u : 0u);
    });
}

TEST(VKD_Render_Texture_3D, a_cell_seen_edge_on_takes_the_back_texture) {
    // The three vertices that are looked at lie on one line; the fourth gives the cell its area. With the second one
    // to the right of that line it faces the viewer.
    for (const bool isFront : {false, true}) {
        Screen screen(64, 32);
        Textures textures = numberedTextures(4, 4);
        Mesh mesh = flatMesh(2, 2, 8, 8);
        mesh.points[1] = {isFront ? 5.0F : 4.0F, 4, 0, 0};
        mesh.ambient = {256, 0, 0, 0};
        twoTextures.draw(screen, textures, mesh);
        EXPECT_EQ(screen.surface.at(1, 6) & 0xFF00, isFront ? 0u : 0xFF00u);
    }
}

/// What a mesh that the light runs along makes of a texel, lit by the ambient colour alone.
q_ulong litByAmbient(const Renderer &renderer, const _POINT3D &colour, q_ulong texel) {
    Screen screen(64, 32);
    Textures textures = plainTextures(texel);
    Mesh mesh = flatMesh(2, 2, 8, 8);
    mesh.light = {0, 1, 0, 0};
    mesh.ambient = colour;
    renderer.draw(screen, textures, mesh);
    return screen.surface.at(4, 4);
}

TEST(Render_Texture_3D, the_ambient_light_is_the_length_of_its_colour) {
    forRenderers([](const Renderer &renderer, Screen &) {
        EXPECT_EQ(litByAmbient(renderer, {3, 4, 0, 99}, 0xFFFFFF), 0x040404u);  // 255 * 5 / 256
        EXPECT_EQ(litByAmbient(renderer, {0, -64, 0, 0}, 0xFFFFFF), 0x3F3F3Fu); // the direction does not count
    });
    // A square that wraps below 0 gives no light.
    EXPECT_EQ(litByAmbient(olderQuads, {50000, 0, 0, 0}, 0xFFFFFF), 0u);
    // The square is rounded to a float before its root is taken: 6144 * 6144 - 2 lies between two floats and becomes
    // 6144 * 6144; its own root would be cut to 6143, and 6143 / 256 to 23.
    EXPECT_EQ(litByAmbient(olderQuads, {6141, 183, 58, 0}, 0x010101), 0x181818u);
}

TEST(Render_Texture_3D, the_specular_strength_counts_256_levels) {
    forRenderers([](const Renderer &renderer, Screen &screen) {
        Textures textures = plainTextures(0x010101);
        Mesh mesh = flatMesh(2, 2, 20, 20);
        mesh.specular = 0.3F; // 76.8
        renderer.draw(screen, textures, mesh);
        EXPECT_EQ(screen.surface.at(18, 10), 0x4D4D4Du); // between the arms of the glint
    });
}

TEST(Render_Texture_3D, of_cells_at_one_depth_the_first_in_the_grid_stays) {
    // The second column of cells is folded back over the first, and would end with texel column 4 here.
    forRenderers([](const Renderer &renderer, Screen &screen) {
        Textures textures = numberedTextures(4, 4);
        textures.back = textures.front;
        Mesh mesh = flatMesh(2, 3, 16, 16);
        mesh.points[2].x = mesh.points[5].x = 0;
        mesh.ambient = {256, 0, 0, 0};
        mesh.light = {0, 1, 0, 0};
        renderer.draw(screen, textures, mesh);
        EXPECT_EQ(screen.surface.at(0, 0), textures.front.at(0, 0));
    });
}

/// Draws over black texels, on which a highlight alone and the glint are seen.
void drawGlint(Screen &screen, Mesh mesh, float highlight, const tagRECT &clip,
               const Renderer &renderer = olderTriangles) {
    Textures textures = plainTextures(0);
    mesh.specular = highlight / 256;
    renderer.draw(screen, textures, mesh, clip);
}

TEST(Render_Texture_3D_Tri, the_glint_compares_a_highlight_with_an_index) {
    // All highlights are 5: vertex 1 exceeds index 0, vertex 2 index 1 and so on until index 5 is held.
    Screen screen(64, 32);
    Surface expected = painted(screen.surface, {0, 8, 60, 24}, 0x050505);
    drawGlint(screen, flatMesh(2, 11, 6, 16, 0, 8), 5, screen.surface.rect());
    EXPECT_EQ(screen.surface.at(30, 8), 0x8585FFu); // vertex 5: 5 + 2 * 0x40, blue full
    plain::addGlint({expected.pixels(), expected.pitch()}, expected.rect(), 30, 8, 5);
    EXPECT_EQ(screen.surface.differenceFrom(expected), "");
}

TEST(Render_Texture_3D_Tri, vertices_of_the_last_row_and_column_have_no_glint) {
    // One cell: its first vertex alone is looked at.
    Screen screen(64, 32);
    Surface expected = painted(screen.surface, {0, 0, 40, 20}, 0x808080);
    drawGlint(screen, flatMesh(2, 2, 40, 20), 128, screen.surface.rect());
    plain::addGlint({expected.pixels(), expected.pitch()}, expected.rect(), 0, 0, 128);
    EXPECT_EQ(screen.surface.differenceFrom(expected), "");
}

TEST(Render_Texture_3D_Tri, without_highlights_and_in_the_pipeline_there_is_no_glint) {
    Screen dull(64, 32);
    const Surface black = painted(dull.surface, {0, 0, 60, 16}, 0);
    drawGlint(dull, flatMesh(2, 11, 6, 16), 0, dull.surface.rect());
    EXPECT_EQ(dull.surface.differenceFrom(black), "");
    Screen pipeline(64, 32);
    drawGlint(pipeline, flatMesh(2, 11, 6, 16), 5, pipeline.surface.rect(), pipelineTriangles);
    EXPECT_EQ(pipeline.surface.differenceFrom(painted(black, {0, 0, 60, 16}, 0x050505)), "");
}

TEST(Render_Texture_3D_Tri, a_glint_on_the_last_column_loses_its_middle_but_not_its_left) {
    // Vertex 5 stands at (30, 8), the last column of the clip: the crosses at x - 1 and x - 2 alone are drawn.
    Screen screen(64, 32);
    drawGlint(screen, flatMesh(2, 11, 6, 16, 0, 8), 5, {0, 0, 31, 32});
    EXPECT_EQ(screen.surface.at(30, 8), 0x050505u);
    EXPECT_EQ(screen.surface.at(29, 7), 0xD5D5FFu); // over the background: 0x55 + 2 * 0x40
    EXPECT_EQ(screen.surface.at(28, 6), 0xD5D5FFu);
    EXPECT_EQ(screen.surface.at(31, 9), test::background);
    EXPECT_EQ(screen.surface.at(31, 7), test::background); // arms end with the clip
}

/// A glint in the middle of a large screen, at (100, 50).
Surface largeGlint(float highlight) {
    Screen screen(200, 100);
    drawGlint(screen, flatMesh(2, 2, 1, 1, 100, 50), highlight, screen.surface.rect());
    return screen.surface;
}

/// How many pixels of a glint's cross lie to the right of its centre. No radius divides 65536, so that the last pixel
/// of an arm still gains a little blue.
int armLength(const Surface &glint, int x, int y) {
    int length = 0;
    while ((glint.at(x + length + 1, y) & 0xFFFFFF) != 0x555555)
        ++length;
    return length;
}

TEST(Render_Texture_3D_Tri, one_cross_of_the_glint_is_twice_as_long) {
    // Highlight 40: radii 20, 15, 10, 30 and 10.
    const Surface glint = largeGlint(40);
    EXPECT_EQ(armLength(glint, 100, 50), 20);
    EXPECT_EQ(armLength(glint, 99, 49), 15);
    EXPECT_EQ(armLength(glint, 98, 48), 10);
    EXPECT_EQ(armLength(glint, 101, 51), 30);
    EXPECT_EQ(armLength(glint, 102, 52), 10);
}

TEST(Render_Texture_3D_Tri, the_glint_keeps_to_8_at_the_least_and_80_at_the_most) {
    // The cross below and to the right of the middle, whose radius is 3 * (half the highlight) / 2.
    const auto reach = [](float highlight) { return armLength(largeGlint(highlight), 101, 51); };
    EXPECT_EQ(reach(1), 6);
    EXPECT_EQ(reach(9), 6);
    EXPECT_EQ(reach(10), 7);
    EXPECT_EQ(reach(79), 58);
    EXPECT_EQ(reach(80), 60);
    EXPECT_EQ(reach(255), 60);
}

} // namespace
