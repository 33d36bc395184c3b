#include "host.h"

#include <gtest/gtest.h>

#include <array>
#include <vector>

namespace {

using test::Host;

using Mapped = std::array<float, 3>;

Mapped mapped(Host &host, _POINT3DFLOAT p) {
    VKD_Mapping3Dto2D(host.data, &p, 1, 1);
    EXPECT_EQ(p.w, 42);
    return {p.x, p.y, p.z};
}

/// A viewport of 640 by 480 pixels, a quarter turn high.
struct Camera : Host {
    Camera() {
        VKD_glViewPort(data, 0, 0, 640, 480);
        VKD_gluPerspective(data, 90, 1, 1, 1000);
    }
};

TEST(VKD_Mapping3Dto2D, the_viewports_middle_is_the_origin) {
    Camera camera;
    EXPECT_EQ(mapped(camera, {1, 0, 0, 42}), (Mapped{321, 240, 0}));
    EXPECT_EQ(mapped(camera, {0, 1, 0, 42}), (Mapped{320, 241, 0})) << "y grows downward";
    EXPECT_EQ(mapped(camera, {2, 2, 240, 42}), (Mapped{321, 241, 240})) << "the depth is not divided";
}

TEST(VKD_Mapping3Dto2D, an_odd_sum_puts_the_middle_between_two_pixels) {
    Camera camera;
    VKD_glViewPort(camera.data, 1, 2, 4, -7);
    EXPECT_EQ(mapped(camera, {0, 0, 0, 42}), (Mapped{2.5F, -2.5F, 0}));
}

TEST(VKD_Mapping3Dto2D, points_at_or_behind_the_eye_swell_by_the_focal_length) {
    Camera camera;
    for (const float z : {-239.0F, -239.5F, -240.0F, -1000.0F})
        EXPECT_EQ(mapped(camera, {2, -1, z, 42}), (Mapped{320 + 480, 240 - 240, z}));
    EXPECT_EQ(mapped(camera, {2, -1, -238, 42}), (Mapped{320 + 240, 240 - 120, -238}));
}

TEST(VKD_Mapping3Dto2D, the_view_acts_behind_the_model_and_is_left_in_the_work_matrix) {
    Camera camera;
    VKD_glRotatef(camera.data, 90, 0, 0, 1);
    VKD_glMatrixMode(camera.data, 0);
    VKD_glTranslatef(camera.data, 10, 0, 0);
    const auto [x, y, z] = mapped(camera, {1, 0, 0, 42});
    EXPECT_NEAR(x, 330, 1e-3);
    EXPECT_NEAR(y, 239, 1e-3);
    EXPECT_EQ(z, 0);
    EXPECT_EQ(camera.data->workMatrix.m[3], 10);
    EXPECT_NEAR(camera.data->workMatrix.m[4], -1, 1e-6);
}

TEST(VKD_Mapping3Dto2D, the_last_row_is_never_read) {
    Camera camera;
    const float matrix[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 5, 6, 7, 1};
    glLoadMatrixf(camera.data, matrix);
    EXPECT_EQ(mapped(camera, {1, 0, 0, 42}), (Mapped{321, 240, 0}));
}

TEST(VKD_Mapping3Dto2D, uses_the_tops_of_both_stacks) {
    Camera camera;
    VKD_glTranslatef(camera.data, 1000, 0, 0);
    VKD_glPushMatrix(camera.data);
    VKD_glLoadIdentity(camera.data);
    VKD_glMatrixMode(camera.data, 0);
    VKD_glTranslatef(camera.data, 1000, 0, 0);
    VKD_glPushMatrix(camera.data);
    VKD_glLoadIdentity(camera.data);
    EXPECT_EQ(mapped(camera, {1, 0, 0, 42}), (Mapped{321, 240, 0}));
}

} // namespace
