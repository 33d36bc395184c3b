#include "points.h"

#include <gtest/gtest.h>

namespace {

using test::Floats;
using test::Ints;
using test::xyz;

Floats projected(_POINT3DFLOAT p, int distance) {
    fConvertReal2Viewport(&p.x, &p.y, &p.z, distance);
    return xyz(p);
}

Ints projected(_POINT3D p, int distance) {
    iConvertReal2Viewport(&p.x, &p.y, &p.z, distance);
    return xyz(p);
}

TEST(fConvertReal2Viewport, what_is_nearer_than_16_is_scaled_as_at_16) {
    for (const float z : {-240.0F, -500.0F, -224.0F, -224.5F})
        EXPECT_EQ(projected(_POINT3DFLOAT{2, -3, z, 0}, 240), (Floats{30, -45, z}));
    EXPECT_EQ(projected(_POINT3DFLOAT{32, 0, -208, 0}, 240), (Floats{240, 0, -208})) << "32 away is not clamped";
}

TEST(fConvertReal2Viewport, the_centre_stays_where_it_is) {
    _POINT3DFLOAT p = {110, 45, 240, 0};
    fConvertReal2Viewport(&p.x, &p.y, &p.z, 100, 50, 240);
    EXPECT_EQ(xyz(p), (Floats{105, 47.5F, 240}));
    p = {100, 50, 1234, 0};
    fConvertReal2Viewport(&p.x, &p.y, &p.z, 100, 50, 240);
    EXPECT_EQ(xyz(p), (Floats{100, 50, 1234}));
}

TEST(fConvertReal2Viewport, the_way_from_the_centre_is_rounded_to_a_float) {
    // 16777218.5 is no float; 16777218 is what the way becomes, ties going to the even one.
    _POINT3DFLOAT p = {0.5F, 0, 0, 0};
    fConvertReal2Viewport(&p.x, &p.y, &p.z, -16777218, 0, 240);
    EXPECT_EQ(p.x, 0);
}

TEST(iConvertReal2Viewport, the_division_goes_toward_zero) {
    EXPECT_EQ(projected(_POINT3D{5, -5, 0, 0}, 3), (Ints{0, 0, 0})) << "15 / 16";
    EXPECT_EQ(projected(_POINT3D{6, -6, 0, 0}, 3), (Ints{1, -1, 0}));
    EXPECT_EQ(projected(_POINT3D{7, 0, -100, 0}, 100), (Ints{43, 0, -100})) << "700 / 16";
    EXPECT_EQ(projected(_POINT3D{7, 0, -83, 0}, 100), (Ints{41, 0, -83})) << "700 / 17";
}

TEST(fMapping3D, offsets_of_x_and_y_come_behind_the_projection_and_that_of_z_before) {
    _POINT3DFLOAT p = {10, 20, 0, 0};
    fMapping3D(&p.x, &p.y, &p.z, 0, 0, 0, 300, 200, 100, 100);
    EXPECT_EQ(xyz(p), (Floats{305, 210, 100}));
    _POINT3D i = {10, 20, 0, 0};
    iMapping3D(&i.x, &i.y, &i.z, 0, 0, 0, 300, 200, 100, 100);
    EXPECT_EQ(xyz(i), (Ints{305, 210, 100}));
}

} // namespace
