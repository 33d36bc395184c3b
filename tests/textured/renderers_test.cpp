#include "plain/texture_renderers.h"
#include "screen.h"
#include "support/random.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace {

using test::Screen;
using test::Surface;

using Points = std::vector<_POINT3DFLOAT>;

enum class Cells { quads, triangles };

/// What sets one renderer apart from the others.
struct Renderer {
    const char *name;
    bool pipeline;
    Cells cells;
    q_ulong mode;
    bool twoTextures;
    bool glint;
};

constexpr Renderer olderQuads = {"Render_Texture_3D", false, Cells::quads, 0x200, false, false};
constexpr Renderer olderKeyed = {"Render_Texture_3D_KeySrc", false, Cells::quads, 0x10100, false, false};
constexpr Renderer olderTriangles = {"Render_Texture_3D_Tri", false, Cells::triangles, 0x200, false, true};
constexpr Renderer pipelineQuads = {"VKD_Render_Texture_3D", true, Cells::quads, 0x200, false, false};
constexpr Renderer pipelineTwoTextures = {"VKD_Render_Texture_3D two textures", true, Cells::quads, 0x200, true, false};
constexpr Renderer pipelineKeyed = {"VKD_Render_Texture_3D_KeySrc", true, Cells::quads, 0x10100, false, false};
constexpr Renderer pipelineTriangles = {"VKD_Render_Texture_3D_Tri", true, Cells::triangles, 0x200, false, false};

constexpr Renderer allRenderers[] = {olderQuads,          olderKeyed,    olderTriangles,   pipelineQuads,
                                     pipelineTwoTextures, pipelineKeyed, pipelineTriangles};

/// A mesh and its light.
struct Mesh {
    Points points;
    int rows;
    int cols;
    _POINT3DFLOAT light = {0, 0, 1, 0};
    _POINT3D ambientColor = {0, 0, 0, 0};
    float specular = 0;
    int shininess = 0;
};

/// Textures, of which the back one has the pitch of the front one, and their part.
struct Textures {
    Surface front;
    Surface back;
    tagRECT rect;
};

/// Draws with the library.
void render(const Renderer &renderer, Screen &screen, Textures &textures, tagRECT clip, Mesh mesh) {
    std::vector<int> add(mesh.points.size());
    std::vector<int> mul(mesh.points.size());
    q_ulong *const dst = screen.surface.pixels();
    q_ulong *const tex = textures.front.pixels();
    tagRECT rect = textures.rect;
    const auto dstPitch = static_cast<q_ulong>(screen.surface.pitch());
    const auto texPitch = static_cast<q_ulong>(textures.front.pitch());
    const auto call = [&](auto function, auto &data) {
        function(&data, dst, tex, &clip, &rect, dstPitch, texPitch, mesh.points.data(), mesh.rows, mesh.cols,
                 &mesh.light, nullptr, &mesh.ambientColor, mesh.specular, mesh.shininess);
    };
    if (renderer.pipeline) {
        _PRIVATE_QMGL_DATA &data = screen.pipeline;
        data.vertexArray0 = add.data();
        data.vertexArray1 = mul.data();
        using OneTexture = void (*)(_PRIVATE_QMGL_DATA *, q_ulong *, q_ulong *, tagRECT *, tagRECT *, q_ulong, q_ulong,
                                    _POINT3DFLOAT *, int, int, _POINT3DFLOAT *, _POINT3D *, _POINT3D *, float, int);
        if (renderer.twoTextures)
            VKD_Render_Texture_3D(&data, dst, tex, textures.back.pixels(), &clip, &rect, dstPitch, texPitch,
                                  mesh.points.data(), mesh.rows, mesh.cols, &mesh.light, nullptr, &mesh.ambientColor,
                                  mesh.specular, mesh.shininess);
        else if (renderer.mode == 0x10100)
            call(VKD_Render_Texture_3D_KeySrc, data);
        else if (renderer.cells == Cells::triangles)
            call(VKD_Render_Texture_3D_Tri, data);
        else
            call(static_cast<OneTexture>(VKD_Render_Texture_3D), data);
    } else {
        _PRIVATE_QM3D_DATA &data = screen.older;
        data.vertexArray0 = add.data();
        data.vertexArray1 = mul.data();
        if (renderer.mode == 0x10100)
            call(Render_Texture_3D_KeySrc, data);
        else if (renderer.cells == Cells::triangles)
            call(Render_Texture_3D_Tri, data);
        else
            call(Render_Texture_3D, data);
    }
}

/// A flat mesh of whole cells of `cellWidth` by `cellHeight` pixels at (0, 0), lit by 256 / 256 and no highlight.
Mesh flatMesh(int rows, int cols, int cellWidth, int cellHeight) {
    Mesh mesh = {{}, rows, cols};
    for (int i = 0; i < rows; ++i)
        for (int j = 0; j < cols; ++j)
            mesh.points.push_back({static_cast<float>(j * cellWidth), static_cast<float>(i * cellHeight), 0, 0});
    return mesh;
}

/// Each texel tells its place; the back texture's green is full.
Textures numberedTextures(int width, int height) {
    Textures textures = {Surface(width, height), Surface(width, height), {0, 0, width, height}};
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            textures.front.at(x, y) = static_cast<q_ulong>(0x10000 * (y + 1) + x);
            textures.back.at(x, y) = static_cast<q_ulong>(0xFF00 + 0x10000 * (y + 1) + x);
        }
    return textures;
}

TEST(Render_Texture_3D, one_cell_shows_the_whole_texture) {
    // 8 pixels over 4 texels: every second pixel stands on a texel.
    for (const Renderer &renderer : allRenderers) {
        SCOPED_TRACE(renderer.name);
        Screen screen(64, 32);
        Textures textures = numberedTextures(4, 4);
        render(renderer, screen, textures, screen.surface.rect(), flatMesh(2, 2, 8, 8));
        for (int y = 0; y < 4; ++y)
            for (int x = 0; x < 4; ++x)
                EXPECT_EQ(screen.surface.at(2 * x, 2 * y), textures.front.at(x, y));
        EXPECT_EQ(screen.surface.at(8, 0), test::background);
        EXPECT_EQ(screen.surface.at(0, 8), test::background);
    }
}

TEST(Render_Texture_3D, one_cell_is_lit_by_one_normal) {
    for (const Renderer &renderer : allRenderers) {
        SCOPED_TRACE(renderer.name);
        Screen screen(64, 32);
        Textures textures = numberedTextures(4, 4);
        textures.front = Surface(4, 4, 0x808080);
        Mesh mesh = flatMesh(2, 2, 8, 8);
        mesh.points[1].z = -6; // (0.6, 0, 0.8), whatever the fourth corner
        mesh.points[3].z = 500;
        render(renderer, screen, textures, screen.surface.rect(), mesh);
        for (int y = 0; y < 8; ++y)
            for (int x = 0; x < 8; ++x)
                EXPECT_EQ(screen.surface.at(x, y), 0x666666u); // 0x80 * 204 / 256
    }
}

TEST(Render_Texture_3D, a_texture_narrower_than_the_cells_gives_some_a_single_column) {
    for (const Renderer &renderer : allRenderers) {
        SCOPED_TRACE(renderer.name);
        Screen screen(64, 32);
        Textures textures = numberedTextures(4, 4);
        render(renderer, screen, textures, screen.surface.rect(), flatMesh(2, 9, 8, 8));
        for (int j = 0; j < 8; j += 2) // cells of columns j / 2 up to j / 2
            for (int x = 0; x < 8; ++x)
                EXPECT_EQ(screen.surface.at(8 * j + x, 0), textures.front.at(j / 2, 0));
    }
}

TEST(Render_Texture_3D, cells_of_uneven_width_tile_the_texture) {
    for (const Renderer &renderer : allRenderers) {
        SCOPED_TRACE(renderer.name);
        Screen screen(64, 32);
        Textures textures = numberedTextures(9, 9);
        textures.rect = {1, 1, 8, 8}; // 7 texels over 3 cells: from 0, 2 and 4 on
        render(renderer, screen, textures, screen.surface.rect(), flatMesh(4, 4, 10, 10));
        const int starts[] = {0, 2, 4};
        for (int i = 0; i < 3; ++i)
            for (int j = 0; j < 3; ++j)
                EXPECT_EQ(screen.surface.at(10 * j, 10 * i), textures.front.at(1 + starts[j], 1 + starts[i]));
    }
}

TEST(VKD_Render_Texture_3D, a_mesh_turned_over_shows_the_back_texture_the_right_way_round) {
    // As many pixels as texels: sampled nearest. The mirrored positions begin at `right` itself, and the left edge
    // stands on the first texel of the rectangle.
    Screen screen(64, 32);
    Textures textures = numberedTextures(10, 10);
    textures.rect = {1, 1, 9, 9};
    Mesh mesh = flatMesh(2, 2, 8, 8);
    std::swap(mesh.points[0], mesh.points[1]);
    std::swap(mesh.points[2], mesh.points[3]);
    mesh.ambientColor = {256, 0, 0, 0};
    render(pipelineTwoTextures, screen, textures, screen.surface.rect(), mesh);
    for (int y = 0; y < 8; ++y)
        for (int x = 0; x < 8; ++x)
            EXPECT_EQ(screen.surface.at(x, y), textures.back.at(1 + x, 1 + y));
}

TEST(VKD_Render_Texture_3D, mirrored_cells_begin_at_the_right_side_less_their_column) {
    Screen screen(64, 32);
    Textures textures = numberedTextures(17, 9);
    textures.rect = {1, 1, 17, 9};
    Mesh mesh = flatMesh(2, 3, 8, 8);
    for (_POINT3DFLOAT &point : mesh.points)
        point.x = 16 - point.x;
    mesh.ambientColor = {256, 0, 0, 0};
    render(pipelineTwoTextures, screen, textures, screen.surface.rect(), mesh);
    for (int x = 0; x < 16; ++x)
        EXPECT_EQ(screen.surface.at(x, 3), textures.back.at(1 + x, 4));
}

TEST(VKD_Render_Texture_3D, a_cell_seen_edge_on_takes_the_back_texture) {
    // The three vertices that are looked at lie on one line; the fourth gives the cell its area.
    Screen screen(64, 32);
    Textures textures = numberedTextures(4, 4);
    Mesh mesh = flatMesh(2, 2, 8, 8);
    mesh.points[1] = {4, 4, 0, 0};
    mesh.ambientColor = {256, 0, 0, 0};
    render(pipelineTwoTextures, screen, textures, screen.surface.rect(), mesh);
    EXPECT_EQ(screen.surface.at(1, 6) & 0xFF00, 0xFF00u);
    mesh.points[1] = {5, 4, 0, 0}; // and on the right of that line it faces the viewer
    Screen front(64, 32);
    render(pipelineTwoTextures, front, textures, front.surface.rect(), mesh);
    EXPECT_EQ(front.surface.at(1, 6) & 0xFF00, 0u);
}

TEST(VKD_Render_Texture_3D, only_two_textures_look_at_the_side_of_a_cell) {
    for (const Renderer &renderer : allRenderers) {
        if (renderer.twoTextures)
            continue;
        SCOPED_TRACE(renderer.name);
        Screen screen(64, 32);
        Textures textures = numberedTextures(8, 8);
        Mesh mesh = flatMesh(2, 2, 8, 8);
        std::swap(mesh.points[0], mesh.points[1]);
        std::swap(mesh.points[2], mesh.points[3]);
        mesh.ambientColor = {256, 0, 0, 0};
        render(renderer, screen, textures, screen.surface.rect(), mesh);
        EXPECT_NE(screen.surface.at(3, 3), test::background);
        EXPECT_EQ(screen.surface.at(3, 3) & 0xFF00, 0u);
    }
}

TEST(Render_Texture_3D, the_ambient_light_is_the_length_of_its_colour) {
    for (const Renderer &renderer : allRenderers) {
        SCOPED_TRACE(renderer.name);
        Screen screen(64, 32);
        Textures textures = {Surface(4, 4, 0xFFFFFF), Surface(4, 4, 0xFFFFFF), {0, 0, 4, 4}};
        Mesh mesh = flatMesh(2, 2, 8, 8);
        mesh.light = {0, 1, 0, 0}; // along the mesh
        mesh.ambientColor = {3, 4, 0, 99};
        render(renderer, screen, textures, screen.surface.rect(), mesh);
        EXPECT_EQ(screen.surface.at(4, 4), 0x040404u); // 255 * 5 / 256
        mesh.ambientColor = {0, -64, 0, 0};
        Screen direct(64, 32);
        render(renderer, direct, textures, direct.surface.rect(), mesh);
        EXPECT_EQ(direct.surface.at(4, 4), 0x3F3F3Fu); // the direction does not count
    }
}

TEST(Render_Texture_3D, an_ambient_colour_whose_square_wraps_below_0_gives_no_light) {
    Screen screen(64, 32);
    Textures textures = {Surface(4, 4, 0xFFFFFF), Surface(4, 4, 0xFFFFFF), {0, 0, 4, 4}};
    Mesh mesh = flatMesh(2, 2, 8, 8);
    mesh.light = {0, 1, 0, 0};
    mesh.ambientColor = {50000, 0, 0, 0};
    render(olderQuads, screen, textures, screen.surface.rect(), mesh);
    EXPECT_EQ(screen.surface.at(4, 4), 0u);
}

TEST(Render_Texture_3D, the_square_of_the_ambient_colour_is_rounded_to_a_float_before_its_root_is_taken) {
    // 6144 * 6144 - 2 lies between two floats and becomes 6144 * 6144; its own root would be cut to 6143.
    Screen screen(64, 32);
    Textures textures = {Surface(4, 4, 0x010101), Surface(4, 4, 0x010101), {0, 0, 4, 4}};
    Mesh mesh = flatMesh(2, 2, 8, 8);
    mesh.light = {0, 1, 0, 0};
    mesh.ambientColor = {6141, 183, 58, 0};
    render(olderQuads, screen, textures, screen.surface.rect(), mesh);
    EXPECT_EQ(screen.surface.at(4, 4), 0x181818u); // 6144 / 256, and 23 from 6143 down
}

TEST(Render_Texture_3D, the_specular_strength_counts_256_levels) {
    for (const Renderer &renderer : allRenderers) {
        SCOPED_TRACE(renderer.name);
        Screen screen(64, 32);
        Textures textures = {Surface(4, 4, 0x010101), Surface(4, 4, 0x010101), {0, 0, 4, 4}};
        Mesh mesh = flatMesh(2, 2, 20, 20);
        mesh.specular = 0.3F; // 76.8
        render(renderer, screen, textures, screen.surface.rect(), mesh);
        EXPECT_EQ(screen.surface.at(18, 10), 0x4D4D4Du); // between the arms of the glint
    }
}

TEST(Render_Texture_3D, meshes_without_cells_draw_nothing) {
    for (const Renderer &renderer : allRenderers) {
        SCOPED_TRACE(renderer.name);
        Screen screen(64, 32);
        Textures textures = numberedTextures(4, 4);
        Mesh mesh = flatMesh(1, 4, 8, 8);
        mesh.specular = 1;
        render(renderer, screen, textures, screen.surface.rect(), mesh);
        mesh = flatMesh(4, 1, 8, 8);
        mesh.specular = 1;
        render(renderer, screen, textures, screen.surface.rect(), mesh);
        EXPECT_TRUE(screen.untouched());
    }
}

TEST(Render_Texture_3D, of_cells_at_one_depth_the_first_in_the_grid_stays) {
    // The second column of cells is folded back over the first.
    for (const Renderer &renderer : allRenderers) {
        SCOPED_TRACE(renderer.name);
        Screen screen(64, 32);
        Textures textures = numberedTextures(4, 4);
        textures.back = textures.front;
        Mesh mesh = flatMesh(2, 3, 16, 16);
        mesh.points[2].x = mesh.points[5].x = 0;
        mesh.ambientColor = {256, 0, 0, 0};
        mesh.light = {0, 1, 0, 0};
        render(renderer, screen, textures, screen.surface.rect(), mesh);
        EXPECT_EQ(screen.surface.at(0, 0), textures.front.at(0, 0)); // the second cell would end with column 4 here
    }
}

/// A mesh on one row of cells, all highlights 5, over black: what is not glint is 0x050505.
Mesh glintMesh() {
    Mesh mesh = flatMesh(2, 11, 6, 16);
    mesh.specular = 5.0F / 256;
    return mesh;
}

Textures blackTextures() {
    return {Surface(4, 4), Surface(4, 4), {0, 0, 4, 4}};
}

TEST(Render_Texture_3D_Tri, the_glint_compares_a_highlight_with_an_index) {
    // All highlights are 5: vertex 1 exceeds index 0, vertex 2 index 1 and so on until index 5 is held.
    Screen screen(64, 32);
    Textures textures = blackTextures();
    Mesh mesh = glintMesh();
    for (_POINT3DFLOAT &point : mesh.points)
        point.y += 8;
    render(olderTriangles, screen, textures, screen.surface.rect(), mesh);
    EXPECT_EQ(screen.surface.at(30, 8), 0x8585FFu); // vertex 5: 5 + 2 * 0x40, blue full
    for (int j = 0; j < 9; ++j) {
        if (j == 5)
            continue;
        EXPECT_EQ(screen.surface.at(6 * j, 8), 0x050505u) << j;
    }
    Surface expected(64, 32, 0x55555555);
    for (int y = 8; y < 24; ++y)
        for (int x = 0; x < 60; ++x)
            expected.at(x, y) = 0x050505;
    plain::addGlint({expected.pixels(), expected.pitch()}, expected.rect(), 30, 8, 5);
    EXPECT_EQ(screen.surface.differenceFrom(expected), "");
}

TEST(Render_Texture_3D_Tri, vertices_of_the_last_row_and_column_have_no_glint) {
    // One cell: its first vertex alone is looked at.
    Screen screen(64, 32);
    Textures textures = blackTextures();
    Mesh mesh = flatMesh(2, 2, 40, 20);
    mesh.specular = 0.5F;
    render(olderTriangles, screen, textures, screen.surface.rect(), mesh);
    Surface expected(64, 32, 0x55555555);
    for (int y = 0; y < 20; ++y)
        for (int x = 0; x < 40; ++x)
            expected.at(x, y) = 0x808080;
    plain::addGlint({expected.pixels(), expected.pitch()}, expected.rect(), 0, 0, 128);
    EXPECT_EQ(screen.surface.differenceFrom(expected), "");
}

TEST(Render_Texture_3D_Tri, without_highlights_there_is_no_glint) {
    Textures textures = blackTextures();
    Mesh mesh = glintMesh();
    mesh.specular = 0;
    Screen screen(64, 32);
    render(olderTriangles, screen, textures, screen.surface.rect(), mesh);
    for (int y = 0; y < 16; ++y)
        for (int x = 0; x < 60; ++x)
            EXPECT_EQ(screen.surface.at(x, y), 0u);
}

TEST(Render_Texture_3D_Tri, a_glint_on_the_last_column_loses_its_middle_but_not_its_left) {
    // Vertex 5 stands at (30, 8), the last column of the clip: the crosses at x - 1 and x - 2 alone are drawn.
    Screen screen(64, 32);
    Textures textures = blackTextures();
    Mesh mesh = glintMesh();
    for (_POINT3DFLOAT &point : mesh.points)
        point.y += 8;
    const tagRECT clip = {0, 0, 31, 32};
    render(olderTriangles, screen, textures, clip, mesh);
    EXPECT_EQ(screen.surface.at(30, 8), 0x050505u);
    EXPECT_EQ(screen.surface.at(29, 7), 0xD5D5FFu); // over the background: 0x55 + 2 * 0x40
    EXPECT_EQ(screen.surface.at(28, 6), 0xD5D5FFu);
    EXPECT_EQ(screen.surface.at(31, 9), test::background);
    EXPECT_EQ(screen.surface.at(31, 7), test::background); // arms end with the clip
}

TEST(Render_Texture_3D_Tri, one_cross_of_the_glint_is_twice_as_long) {
    // Highlight 40: radii 20, 15, 10, 30 and 10.
    Screen screen(200, 100);
    Textures textures = blackTextures();
    Mesh mesh = flatMesh(2, 2, 1, 1);
    for (_POINT3DFLOAT &point : mesh.points) {
        point.x += 100;
        point.y += 50;
    }
    mesh.specular = 40.0F / 256;
    render(olderTriangles, screen, textures, screen.surface.rect(), mesh);
    // To the right of a centre. No radius divides 65536, so that the last pixel of an arm still gains a little blue.
    const auto reach = [&](int x, int y) {
        int length = 0;
        while ((screen.surface.at(x + length + 1, y) & 0xFFFFFF) != 0x555555)
            ++length;
        return length;
    };
    EXPECT_EQ(reach(100, 50), 20);
    EXPECT_EQ(reach(99, 49), 15);
    EXPECT_EQ(reach(98, 48), 10);
    EXPECT_EQ(reach(101, 51), 30);
    EXPECT_EQ(reach(102, 52), 10);
}

TEST(Render_Texture_3D_Tri, the_glint_keeps_to_8_at_the_least_and_80_at_the_most) {
    const auto drawn = [](float highlight) {
        Screen screen(200, 100);
        Textures textures = blackTextures();
        Mesh mesh = flatMesh(2, 2, 1, 1);
        for (_POINT3DFLOAT &point : mesh.points) {
            point.x += 100;
            point.y += 50;
        }
        mesh.specular = highlight / 256;
        render(olderTriangles, screen, textures, screen.surface.rect(), mesh);
        screen.surface.at(100, 50) = 0; // the mesh itself
        return screen.surface;
    };
    EXPECT_EQ(drawn(1).differenceFrom(drawn(9)), ""); // 9 / 2 is 4 as well
    EXPECT_FALSE(drawn(8) == drawn(10));
    EXPECT_FALSE(drawn(78) == drawn(80));
    EXPECT_EQ(drawn(80).differenceFrom(drawn(255)), "");
}

TEST(VKD_Render_Texture_3D_Tri, has_no_glint) {
    Screen screen(64, 32);
    Textures textures = blackTextures();
    render(pipelineTriangles, screen, textures, screen.surface.rect(), glintMesh());
    for (int y = 0; y < 16; ++y)
        for (int x = 0; x < 60; ++x)
            EXPECT_EQ(screen.surface.at(x, y), 0x050505u);
}

TEST(VKD_Render_Texture_3D, a_mesh_goes_from_the_model_to_the_screen) {
    TransferFrameGeometry frame = {{0, 0, 0}, 64 * 48 + 10, 10};
    TransferLimits3D limits = {0, 0, 9, 2};
    _TRANSFERDATA transfer = {};
    transfer.frameGeometry = &frame;
    transfer.limits3D = &limits;
    _PRIVATE_QMGL_DATA *data = GetPrivate_QMGL_Data(&transfer, 0);
    ASSERT_NE(data, nullptr);
    VKD_glViewPort(data, 0, 0, 64, 48);
    VKD_gluPerspective(data, 90, 1, 10, 1000); // 24 pixels from the eye to Z = 0
    VKD_glTranslatef(data, 0, 0, 24);          // twice as far: all is halved
    Mesh mesh = flatMesh(3, 3, 16, 16);
    for (_POINT3DFLOAT &point : mesh.points) {
        point.x -= 16;
        point.y -= 16;
    }
    VKD_Mapping3Dto2D(data, mesh.points.data(), 3, 3);
    tagRECT whole = {0, 0, 64, 48};
    EXPECT_EQ(VKD_ResetZBuffer(data, &whole, 64), 1);
    std::vector<q_ulong> pixels(64 * 48);
    Textures textures = {Surface(4, 4, 0x123456), Surface(4, 4), {0, 0, 4, 4}};
    VKD_Render_Texture_3D(data, pixels.data(), textures.front.pixels(), &whole, &textures.rect, 64,
                          static_cast<q_ulong>(textures.front.pitch()), mesh.points.data(), 3, 3, &mesh.light, nullptr,
                          &mesh.ambientColor, 0, 0);
    for (int y = 0; y < 48; ++y)
        for (int x = 0; x < 64; ++x) {
            const bool covered = x >= 24 && x < 40 && y >= 16 && y < 32;
            const auto i = static_cast<std::size_t>(y * 64 + x);
            ASSERT_EQ(pixels[i], covered ? 0x123456u : 0u) << x << ", " << y;
            ASSERT_EQ(data->zBuffer[i], covered ? 24 : test::emptyDepth);
        }
    DeleteMemoryBlocks(&transfer);
}

TEST(Render_Texture_3D, a_mesh_covers_its_area_without_a_gap) {
    for (const Renderer &renderer : allRenderers) {
        SCOPED_TRACE(renderer.name);
        for (int seed = 0; seed < 20; ++seed) {
            test::Random random(static_cast<std::uint64_t>(seed));
            Mesh mesh = flatMesh(5, 6, 9, 7);
            for (int i = 1; i < 4; ++i)
                for (int j = 1; j < 5; ++j) {
                    _POINT3DFLOAT &point = mesh.points[static_cast<std::size_t>(i * 6 + j)];
                    point.x += random.realBetween(-1.5F, 1.5F);
                    point.y += random.realBetween(-1.5F, 1.5F);
                }
            mesh.specular = 0;
            Textures textures = {Surface(4, 4, 0x123456), Surface(4, 4, 0x123456), {0, 0, 4, 4}};
            Screen screen(64, 32);
            render(renderer, screen, textures, screen.surface.rect(), mesh);
            for (int y = 0; y < 32; ++y)
                for (int x = 0; x < 64; ++x)
                    ASSERT_EQ(screen.surface.at(x, y) == 0x123456, x < 45 && y < 28) << x << ", " << y;
        }
    }
}

} // namespace
