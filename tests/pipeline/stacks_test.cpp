#include "host.h"

#include <gtest/gtest.h>

namespace {

using test::Host;

/// Where the current matrix of the model stack takes a point.
_POINT3DFLOAT moved(Host &host, _POINT3DFLOAT p) {
    const float *m = host.data->modelStack[host.data->modelDepth].m;
    return {m[0] * p.x + m[1] * p.y + m[2] * p.z + m[3], m[4] * p.x + m[5] * p.y + m[6] * p.z + m[7],
            m[8] * p.x + m[9] * p.y + m[10] * p.z + m[11], 0};
}

void expectNear(_POINT3DFLOAT p, float x, float y, float z) {
    EXPECT_NEAR(p.x, x, 1e-5);
    EXPECT_NEAR(p.y, y, 1e-5);
    EXPECT_NEAR(p.z, z, 1e-5);
}

TEST(VKD_glMatrixMode, mode_1_is_the_model_stack_and_every_other_the_view_stack) {
    for (const int mode : {1, 0, 2, 0x1700, -1}) {
        Host host;
        VKD_glMatrixMode(host.data, mode);
        EXPECT_EQ(host.data->matrixMode, mode);
        VKD_glTranslatef(host.data, 5, 6, 7);
        EXPECT_EQ(host.data->modelStack[0].m[3], mode == 1 ? 5 : 0);
        EXPECT_EQ(host.data->viewStack[0].m[3], mode == 1 ? 0 : 5);
        VKD_glPushMatrix(host.data);
        EXPECT_EQ(host.data->modelDepth, mode == 1 ? 1 : 0);
        EXPECT_EQ(host.data->viewDepth, mode == 1 ? 0 : 1);
    }
}

TEST(VKD_glTranslatef, a_point_goes_through_the_calls_in_the_order_in_which_they_were_made) {
    Host host;
    VKD_glTranslatef(host.data, 10, 0, 0);
    VKD_glRotatef(host.data, 90, 0, 0, 1);
    expectNear(moved(host, {1, 0, 0, 0}), 0, -11, 0);

    Host other;
    VKD_glRotatef(other.data, 90, 0, 0, 1);
    VKD_glTranslatef(other.data, 10, 0, 0);
    expectNear(moved(other, {1, 0, 0, 0}), 10, -1, 0);

    VKD_glScalef(other.data, 2, 3, 4);
    expectNear(moved(other, {1, 0, 5, 0}), 20, -3, 20);
}

TEST(VKD_glPushMatrix, copies_the_top_and_pop_copies_nothing) {
    Host host(16, 0, 2, 1); // the last entry of a stack can be used
    VKD_glTranslatef(host.data, 1, 2, 3);
    VKD_glPushMatrix(host.data);
    VKD_glTranslatef(host.data, 10, 20, 30);
    EXPECT_EQ(host.data->viewStack[0].m[3], 0);
    EXPECT_EQ(host.data->modelStack[1].m[3], 11);
    EXPECT_EQ(host.data->modelStack[0].m[3], 1);
    VKD_glPopMatrix(host.data);
    EXPECT_EQ(host.data->modelDepth, 0);
    expectNear(moved(host, {0, 0, 0, 0}), 1, 2, 3);
    EXPECT_EQ(host.data->modelStack[1].m[3], 11) << "what was above stays in memory";
}

TEST(glLoadMatrixf, elements_are_read_row_after_row) {
    Host host;
    const float rows[16] = {1, 0, 0, 5, 0, 1, 0, 6, 0, 0, 1, 7, 0, 0, 0, 1};
    glLoadMatrixf(host.data, rows);
    expectNear(moved(host, {1, 1, 1, 0}), 6, 7, 8);
    const float transposed[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 5, 6, 7, 1};
    glLoadMatrixf(host.data, transposed);
    expectNear(moved(host, {1, 1, 1, 0}), 1, 1, 1);
    EXPECT_EQ(host.data->modelStack[0].m[12], 5);
    VKD_glLoadIdentity(host.data);
    EXPECT_EQ(host.data->modelStack[0].m[12], 0);
}

TEST(VKD_glRotatef, an_angle_of_0_does_nothing_at_all) {
    Host host;
    VKD_glRotatef(host.data, 30, 1, 2, 3);
    const _I3DMATRIX model = host.data->modelStack[0];
    const _I3DMATRIX work = host.data->workMatrix;
    VKD_glRotatef(host.data, 0, 7, 8, 9);
    VKD_glRotatef(host.data, -0.0F, 7, 8, 9);
    EXPECT_EQ(host.data->workAxis.x, 1);
    EXPECT_EQ(host.data->workAxis.y, 2);
    EXPECT_EQ(host.data->workAxis.z, 3);
    for (int i = 0; i < 16; ++i) {
        EXPECT_EQ(host.data->modelStack[0].m[i], model.m[i]);
        EXPECT_EQ(host.data->workMatrix.m[i], work.m[i]);
    }
}

TEST(VKD_glRotatef, a_degree_is_the_float_below_the_nearest) {
    // 180 degrees are 180 * 0.0174532905 rounded to a float, one step short of pi's own: the sine is not yet 0.
    Host host;
    VKD_glRotatef(host.data, 180, 0, 0, 1);
    _I3DMATRIX expected;
    _I3DVECTOR axis = {0, 0, 1, 0};
    SetRotationMatrix(expected, axis, 180 * 0.0174532905F);
    for (int i = 0; i < 16; ++i)
        EXPECT_EQ(host.data->workMatrix.m[i], expected.m[i]);
    _I3DMATRIX nearest;
    SetRotationMatrix(nearest, axis, 180 * 0.01745329252F);
    EXPECT_NE(nearest.m[1], expected.m[1]);
}

TEST(VKD_glScalef, operations_leave_their_matrix_in_the_work_matrix) {
    Host host;
    VKD_glTranslatef(host.data, 1, 2, 3);
    EXPECT_EQ(host.data->workMatrix.m[11], 3);
    EXPECT_EQ(host.data->workMatrix.m[10], 1);
    VKD_glScalef(host.data, 4, 5, 6);
    EXPECT_EQ(host.data->workMatrix.m[11], 0);
    EXPECT_EQ(host.data->workMatrix.m[10], 6);
    EXPECT_EQ(host.data->workMatrix.m[15], 1);
    const float given[16] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16};
    glMultMatrixf(host.data, given);
    EXPECT_EQ(host.data->workMatrix.m[15], 16);
}

} // namespace
