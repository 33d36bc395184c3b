#include "mesh.h"

#include <gtest/gtest.h>

#include <set>
#include <utility>

namespace {

using test::Mesh;
using test::Screen;

template <class... Opacity>
void render(Screen &screen, Mesh &mesh, Opacity... opacity) {
    test::renderLit<Opacity...>(VKD_Render_3D_Surface, screen, screen.surface.rect(), mesh, opacity...);
}

void renderAlpha(Screen &screen, tagRECT clip, Mesh &mesh) {
    VKD_Render_3D_Surface_Alpha(&screen.pipeline, screen.surface.pixels(), &clip, screen.pitch(), mesh.points.data(),
                                mesh.colours.data(), 3, 5, mesh.wrapRows, mesh.wrapColumns);
}

TEST(VKD_Render_3D_Surface, two_triangles_make_the_smallest_grid) {
    Mesh mesh(2, 2);
    Screen screen(12, 12, 0);
    render(screen, mesh);
    for (int y = 0; y < 12; ++y)
        for (int x = 0; x < 12; ++x)
            EXPECT_EQ(screen.surface.at(x, y), x < 10 && y < 10 ? 0x804020u : 0u) << x << ", " << y;
}

TEST(VKD_Render_3D_Surface, a_wrap_flag_counts_only_if_it_is_1) {
    for (const int wrapRows : {-1, 0, 1, 2, 256})
        for (const int wrapColumns : {-1, 0, 1, 2, 256}) {
            // The middle is pushed back; a strip that closes the grid passes before it.
            Mesh mesh(3, 3, 8);
            mesh.point(1, 1).z = 100;
            mesh.wrapRows = wrapRows;
            mesh.wrapColumns = wrapColumns;
            Screen screen(20, 20, 0);
            render(screen, mesh);
            EXPECT_EQ(screen.depths.at(8, 8), wrapRows == 1 || wrapColumns == 1 ? 0 : 100)
                << wrapRows << ", " << wrapColumns;
        }
}

TEST(VKD_Render_3D_Surface, the_corner_is_closed_only_if_both_flags_are_1) {
    // Only the corner cell has an area: every point but the four corners stands on a corner.
    Mesh mesh(3, 3);
    const _POINT3DFLOAT upperLeft = {0, 0, 0, 0};
    mesh.points.assign(9, upperLeft);
    mesh.point(0, 2) = {8, 0, 0, 0};
    mesh.point(2, 0) = {0, 8, 0, 0};
    mesh.point(2, 2) = {8, 8, 0, 0};
    std::set<std::pair<int, int>> drawn;
    for (int flags = 0; flags < 4; ++flags) {
        Mesh copy = mesh;
        copy.ambient = {256, 0, 0, 0};
        copy.wrapRows = flags & 1;
        copy.wrapColumns = flags >> 1;
        Screen screen(10, 10, 0);
        Mesh lit = copy;
        render(screen, lit);
        if (screen.surface.at(6, 6) != 0 && screen.surface.at(1, 6) != 0 && screen.surface.at(6, 1) != 0)
            drawn.insert({copy.wrapRows, copy.wrapColumns});
    }
    EXPECT_EQ(drawn, (std::set<std::pair<int, int>>{{1, 1}}));
}

TEST(VKD_Render_3D_Surface_Alpha, the_third_and_fourth_number_close_the_grid) {
    Mesh mesh(64, 20, 1, 0x202020);
    for (int row = 0; row < 20; ++row)
        mesh.point(row, 0).x = 90; // the first column beyond the last: a strip from 63 to 90 closes it
    const auto painted = [&mesh](int wrapRows, int wrapColumns, int x) {
        mesh.wrapRows = wrapRows;
        mesh.wrapColumns = wrapColumns;
        Screen screen(100, 24, 0);
        renderAlpha(screen, screen.surface.rect(), mesh);
        return screen.surface.at(x, 10);
    };
    EXPECT_NE(painted(0, 0, 75), 0u) << "the first cell reaches from column 1 to 90";
    EXPECT_EQ(painted(0, 0, 75), 0x101010u);
    EXPECT_EQ(painted(0, 1, 75), 0x181818u) << "a second layer over the first";
    EXPECT_EQ(painted(1, 0, 75), 0x181818u) << "from the last row to the first";
    EXPECT_EQ(painted(2, 2, 75), 0x101010u);
}

} // namespace
