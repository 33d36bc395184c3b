#include "host.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

using test::Host;

/// The focal length under a viewport of so many rows and a field of so many degrees.
int focalLength(int top, int bottom, float degrees) {
    Host host;
    VKD_glViewPort(host.data, 0, top, 640, bottom);
    VKD_gluPerspective(host.data, degrees, 1, 1, 1000);
    return host.data->focalLength;
}

TEST(VKD_gluPerspective, the_focal_length_follows_from_the_viewport_as_it_stands) {
    EXPECT_EQ(focalLength(0, 480, 90), 240);
    EXPECT_EQ(focalLength(0, 0, 10), 0);
    EXPECT_EQ(focalLength(0, 7, 90), 3) << "half the height is a whole number toward zero";
    EXPECT_EQ(focalLength(7, 0, 90), -3);
    EXPECT_EQ(focalLength(0, 480, 0), 32768) << "an angle without a tangent";
    EXPECT_EQ(focalLength(0, 0, -0.0F), 32768);
    Host host;
    VKD_glViewPort(host.data, 0, 0, 640, 480);
    VKD_gluPerspective(host.data, 90, 1, 1, 1000);
    VKD_glViewPort(host.data, 0, 0, 100, 100);
    EXPECT_EQ(host.data->focalLength, 240);
}

TEST(VKD_gluPerspective, limits_are_negated_and_truncated_and_the_aspect_is_not_read) {
    Host host;
    VKD_glViewPort(host.data, 0, 0, 640, 480);
    VKD_gluPerspective(host.data, 90, std::numeric_limits<float>::quiet_NaN(), 1.9F, -2000.9F);
    EXPECT_EQ(host.data->nearLimit, -1);
    EXPECT_EQ(host.data->farLimit, 2000);
    EXPECT_EQ(host.data->focalLength, 240);
}

void expectElements(const _I3DMATRIX &matrix, const float (&expected)[16]) {
    for (int i = 0; i < 16; ++i)
        EXPECT_NEAR(matrix.m[i], expected[i], 1e-5) << i;
}

TEST(VKD_gluLookAt, negates_z_and_looks_along_the_cameras_z) {
    // The eye stands at z = -10 and looks toward +z; an up vector along the line of sight, or none, gives way to world
    // Y.
    constexpr float ups[3][3] = {{0, 1, 0}, {0, 0, 1}, {0, 0, 0}};
    for (const auto &up : ups) {
        Host host;
        VKD_gluLookAt(host.data, 0, 0, 10, 0, 0, 0, up[0], up[1], up[2]);
        expectElements(host.data->viewStack[0], {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 10, 0, 0, 0, 1});
    }
}

TEST(VKD_gluLookAt, acts_on_the_view_stack_whatever_the_mode) {
    for (const int mode : {0, 1}) {
        Host host;
        VKD_glMatrixMode(host.data, mode);
        VKD_gluLookAt(host.data, 10, 0, 0, 0, 0, 0, 0, 1, 0);
        // Forward is -x, down y; right is y x -x = z.
        expectElements(host.data->viewStack[0], {0, 0, 1, 0, 0, 1, 0, 0, -1, 0, 0, 10, 0, 0, 0, 1});
        EXPECT_EQ(host.data->modelStack[0].m[0], 1);
        expectElements(host.data->workMatrix, {0, 0, 1, 0, 0, 1, 0, 0, -1, 0, 0, 10, 0, 0, 0, 1});
    }
}

TEST(VKD_gluLookAt, comes_behind_what_the_view_stack_holds) {
    Host host;
    VKD_glMatrixMode(host.data, 0);
    VKD_glTranslatef(host.data, 1, 2, 3);
    VKD_gluLookAt(host.data, 10, 0, 0, 0, 0, 0, 0, 1, 0);
    expectElements(host.data->viewStack[0], {0, 0, 1, 3, 0, 1, 0, 2, -1, 0, 0, 9, 0, 0, 0, 1});
}

TEST(VKD_gluLookAt, an_eye_at_the_centre_changes_nothing) {
    Host host;
    host.data->workMatrix.m[0] = 77;
    VKD_gluLookAt(host.data, 3, 4, 5, 3, 4, 5, 0, 1, 0);
    VKD_gluLookAt(host.data, 0, 0, 0, 0.000001F, 0, 0, 0, 1, 0);
    EXPECT_EQ(host.data->workMatrix.m[0], 77);
    for (int i = 0; i < 16; ++i)
        EXPECT_EQ(host.data->viewStack[0].m[i], i % 5 == 0 ? 1 : 0);
    VKD_gluLookAt(host.data, 0, 0, 0, 0.0000011F, 0, 0, 0, 1, 0);
    EXPECT_NE(host.data->workMatrix.m[0], 77) << "a little more than nothing is a direction";
}

TEST(VKD_gluLookAt, looking_along_world_y_divides_by_the_tiny_length_that_is_left) {
    Host host;
    VKD_gluLookAt(host.data, 0, 10, 0, 0, 0, 0, 0, 1, 0);
    EXPECT_TRUE(std::isinf(host.data->viewStack[0].m[6]) || std::isnan(host.data->viewStack[0].m[6]));
    EXPECT_TRUE(std::isinf(host.data->workMatrix.m[6])) << "1 / 0 in the row of the up vector";

    // A little off the line of sight the length is tiny instead of 0 and the matrix huge instead of infinite.
    Host beside;
    VKD_gluLookAt(beside.data, 0, 10, 0, 0.000002F, 0, 0, 0, 1, 0);
    EXPECT_GT(beside.data->workMatrix.m[6], 1e6F);
    EXPECT_FALSE(std::isinf(beside.data->workMatrix.m[6]));
}

/// Where a point lands on a screen of 640 by 480, under a focal length of 240.
_POINT3DFLOAT onScreen(const float (&view)[9], _POINT3DFLOAT point) {
    Host host;
    VKD_glViewPort(host.data, 0, 0, 640, 480);
    VKD_gluPerspective(host.data, 90, 1, 0, 0);
    VKD_gluLookAt(host.data, view[0], view[1], view[2], view[3], view[4], view[5], view[6], view[7], view[8]);
    VKD_Mapping3Dto2D(host.data, &point, 1, 1);
    return point;
}

TEST(VKD_gluLookAt, at_its_eye_a_unit_is_a_pixel_and_the_viewer_stands_a_focal_length_behind) {
    constexpr float view[9] = {0, 0, 100, 0, 0, 0, 0, 1, 0};
    const _POINT3DFLOAT atEye = onScreen(view, {50, 20, -100, 0});
    EXPECT_FLOAT_EQ(atEye.x, 370);
    EXPECT_FLOAT_EQ(atEye.y, 260);
    EXPECT_FLOAT_EQ(atEye.z, 0);
    // Twice as far on the ray that begins at (0, 0, -340).
    const _POINT3DFLOAT behind = onScreen(view, {100, 40, 140, 0});
    EXPECT_FLOAT_EQ(behind.x, 370);
    EXPECT_FLOAT_EQ(behind.y, 260);
    EXPECT_FLOAT_EQ(behind.z, 240);
}

TEST(VKD_gluLookAt, the_up_vector_runs_down_the_screen) {
    // 240 / 340 of 170 is 120.
    EXPECT_FLOAT_EQ(onScreen({0, 0, 100, 0, 0, 0, 0, 1, 0}, {0, 170, 0, 0}).y, 360);
    EXPECT_FLOAT_EQ(onScreen({0, 0, 100, 0, 0, 0, 0, 1, 0}, {170, 0, 0, 0}).x, 440);
    EXPECT_FLOAT_EQ(onScreen({0, 0, 100, 0, 0, 0, 0, -1, 0}, {0, 170, 0, 0}).y, 120);
    EXPECT_FLOAT_EQ(onScreen({0, 0, 100, 0, 0, 0, 0, -1, 0}, {170, 0, 0, 0}).x, 200);
}

TEST(VKD_gluLookAt, along_world_y_under_a_like_up_vector_nothing_has_a_place_on_the_screen) {
    for (const float y : {10.0F, -10.0F}) {
        const _POINT3DFLOAT point = onScreen({0, y, 0, 0, 0, 0, 0, 1, 0}, {1, 2, 3, 0});
        EXPECT_TRUE(std::isnan(point.x));
        EXPECT_TRUE(std::isnan(point.y));
    }
}

} // namespace
