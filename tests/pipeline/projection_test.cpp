#include "host.h"
#include "math3d/full_width.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using test::anyFloat;
using test::anyPoint;
using test::callAtAnyPrecision;
using test::Case;
using test::forEachCase;
using test::Host;
using test::Real;

_POINT3DFLOAT mapped(Host &host, _POINT3DFLOAT p) {
    VKD_Mapping3Dto2D(host.data, &p, 1, 1);
    return p;
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
    const _POINT3DFLOAT p = mapped(camera, {1, 0, 0, 42});
    EXPECT_EQ(p.x, 321);
    EXPECT_EQ(p.y, 240);
    EXPECT_EQ(p.z, 0);
    EXPECT_EQ(p.w, 42);
    EXPECT_EQ(mapped(camera, {0, 1, 0, 0}).y, 241) << "y grows downward";
    EXPECT_EQ(mapped(camera, {2, 2, 240, 0}).x, 321);
    EXPECT_EQ(mapped(camera, {2, 2, 240, 0}).z, 240) << "the depth is not divided";
}

TEST(VKD_Mapping3Dto2D, an_odd_sum_puts_the_middle_between_two_pixels) {
    Camera camera;
    VKD_glViewPort(camera.data, 1, 2, 4, -7);
    EXPECT_EQ(mapped(camera, {0, 0, 0, 0}).x, 2.5F);
    EXPECT_EQ(mapped(camera, {0, 0, 0, 0}).y, -2.5F);
}

TEST(VKD_Mapping3Dto2D, points_at_or_behind_the_eye_swell_by_the_focal_length) {
    Camera camera;
    for (const float z : {-239.0F, -239.5F, -240.0F, -1000.0F}) {
        const _POINT3DFLOAT p = mapped(camera, {2, -1, z, 0});
        EXPECT_EQ(p.x, 320 + 480) << z;
        EXPECT_EQ(p.y, 240 - 240) << z;
        EXPECT_EQ(p.z, z);
    }
    EXPECT_EQ(mapped(camera, {2, -1, -238, 0}).x, 320 + 240);
}

TEST(VKD_Mapping3Dto2D, the_view_acts_behind_the_model_and_is_left_in_the_work_matrix) {
    Camera camera;
    VKD_glRotatef(camera.data, 90, 0, 0, 1);
    VKD_glMatrixMode(camera.data, 0);
    VKD_glTranslatef(camera.data, 10, 0, 0);
    const _POINT3DFLOAT p = mapped(camera, {1, 0, 0, 0});
    EXPECT_NEAR(p.x, 330, 1e-3);
    EXPECT_NEAR(p.y, 239, 1e-3);
    EXPECT_EQ(camera.data->workMatrix.m[3], 10);
    EXPECT_NEAR(camera.data->workMatrix.m[4], -1, 1e-6);
}

TEST(VKD_Mapping3Dto2D, the_last_row_is_never_read) {
    Camera camera;
    const float matrix[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 5, 6, 7, 1};
    glLoadMatrixf(camera.data, matrix);
    const _POINT3DFLOAT p = mapped(camera, {1, 0, 0, 0});
    EXPECT_EQ(p.x, 321);
    EXPECT_EQ(p.y, 240);
    EXPECT_EQ(p.z, 0);
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
    EXPECT_EQ(mapped(camera, {1, 0, 0, 0}).x, 321);
}

TEST(VKD_Mapping3Dto2D, rows_come_before_columns_and_none_are_no_points) {
    Camera camera;
    std::vector<_POINT3DFLOAT> points(7, {1, 1, 0, 0});
    VKD_Mapping3Dto2D(camera.data, points.data(), 2, 3);
    for (std::size_t i = 0; i < 7; ++i)
        EXPECT_EQ(points[i].x, i < 6 ? 321 : 1) << i;
    for (const auto &[rows, columns] : {std::pair(0, 5), std::pair(-1, 5), std::pair(5, 0), std::pair(5, -1)})
        VKD_Mapping3Dto2D(camera.data, points.data() + 6, rows, columns);
    EXPECT_EQ(points[6].x, 1);
}

TEST(VKD_Mapping3Dto2D, agrees_with_a_naive_projection) {
    forEachCase("VKD_Mapping3Dto2D", [](Case &c) {
        Host host;
        _PRIVATE_QMGL_DATA &data = *host.data;
        for (float &element : data.modelStack[0].m)
            element = anyFloat(c.random, 4);
        for (float &element : data.viewStack[0].m)
            element = anyFloat(c.random, 4);
        int viewport[4];
        for (int &side : viewport)
            side = c.random.between(-999, 999);
        VKD_glViewPort(&data, viewport[0], viewport[1], viewport[2], viewport[3]);
        data.focalLength = c.random.between(-100, 1000);
        _I3DMATRIX combined;
        MatrixMultiply(combined, data.viewStack[0], data.modelStack[0]);
        const int rows = c.random.between(1, 2);
        const int columns = c.random.between(1, 3);
        std::vector<_POINT3DFLOAT> points(static_cast<std::size_t>(rows * columns));
        for (_POINT3DFLOAT &point : points)
            point = anyPoint(c.random);
        std::vector<_POINT3DFLOAT> expected = points;
        qmur::atFullWidth([&] {
            const auto m = [&combined](int row, int column) -> Real { return combined.m[row * 4 + column]; };
            const Real f = data.focalLength;
            const float cx = static_cast<float>(data.viewportLeft + data.viewportRight) / 2;
            const float cy = static_cast<float>(data.viewportTop + data.viewportBottom) / 2;
            for (_POINT3DFLOAT &p : expected) {
                const Real x = p.x;
                const Real y = p.y;
                const Real z = p.z;
                const float X = static_cast<float>(((z * m(0, 2) + x * m(0, 0)) + y * m(0, 1)) + m(0, 3));
                const float Y = static_cast<float>(((y * m(1, 1) + x * m(1, 0)) + z * m(1, 2)) + m(1, 3));
                const Real Z = ((z * m(2, 2) + y * m(2, 1)) + x * m(2, 0)) + m(2, 3);
                Real D = f + Z;
                if (!(D > 1.0L))
                    D = 1.0L;
                const Real s = f / D;
                p.x = static_cast<float>(X * s + cx);
                p.y = static_cast<float>(Y * s + cy);
                p.z = static_cast<float>(Z);
            }
        });
        callAtAnyPrecision(c, [&] { VKD_Mapping3Dto2D(&data, points.data(), rows, columns); });
        for (std::size_t i = 0; i < points.size(); ++i)
            test::expectEqualPoints(c, points[i], expected[i]);
    });
}

} // namespace
